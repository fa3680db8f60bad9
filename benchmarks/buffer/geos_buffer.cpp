// SPDX-License-Identifier: MIT
#include <geos_c.h>

#include <stdexcept>

#include "buffer/buffer_rival.h"

namespace bench {
namespace {

constexpr int kQuadrantSegments = 6;

class GeosBuffer final : public BufferRival {
  public:
    GeosBuffer() : context_(GEOS_init_r()) {}
    ~GeosBuffer() override {
        clear();
        destroy(input_);
        GEOS_finish_r(context_);
    }

    void load(const Geometries& geometries) override {
        GEOSWKBReader* reader = GEOSWKBReader_create_r(context_);
        for (const auto& geometry : geometries) {
            std::vector<unsigned char> wkb(static_cast<std::size_t>(geometry->getWKBSize()));
            geometry->exportToWkb(jws::JWWKBLittleEndian, wkb.data());
            input_.push_back(GEOSWKBReader_read_r(context_, reader, wkb.data(), wkb.size()));
        }
        GEOSWKBReader_destroy_r(context_, reader);
    }

    void run(double distance) override {
        for (const GEOSGeometry* geometry : input_) {
            results_.push_back(GEOSBuffer_r(context_, geometry, distance, kQuadrantSegments));
            if (results_.back() == nullptr) throw std::runtime_error("GEOS: no buffer");
        }
    }

    double area() const override {
        double sum = 0;
        for (const GEOSGeometry* result : results_) {
            double one = 0;
            GEOSArea_r(context_, result, &one);
            sum += one;
        }
        return sum;
    }

    void clear() override { destroy(results_); }

  private:
    void destroy(std::vector<GEOSGeometry*>& geometries) {
        for (GEOSGeometry* geometry : geometries) GEOSGeom_destroy_r(context_, geometry);
        geometries.clear();
    }

    GEOSContextHandle_t context_;
    std::vector<GEOSGeometry*> input_;
    std::vector<GEOSGeometry*> results_;
};

}  // namespace

std::unique_ptr<BufferRival> makeGeosBuffer() { return std::make_unique<GeosBuffer>(); }

}  // namespace bench
