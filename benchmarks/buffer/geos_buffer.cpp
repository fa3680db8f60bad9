// SPDX-License-Identifier: MIT
#include <geos_c.h>

#include <stdexcept>

#include "buffer/buffer_rival.h"

namespace bench {
namespace {

constexpr int kQuadrantSegments = 6;

class GeosBuffer final : public BufferRival {
  public:
    GeosBuffer() : m_context(GEOS_init_r()) {}
    ~GeosBuffer() override {
        clear();
        destroy(m_input);
        GEOS_finish_r(m_context);
    }

    void load(const Geometries& geometries) override {
        GEOSWKBReader* reader = GEOSWKBReader_create_r(m_context);
        for (const auto& geometry : geometries) {
            std::vector<unsigned char> wkb(static_cast<std::size_t>(geometry->getWKBSize()));
            geometry->exportToWkb(jws::JWWKBLittleEndian, wkb.data());
            m_input.push_back(GEOSWKBReader_read_r(m_context, reader, wkb.data(), wkb.size()));
        }
        GEOSWKBReader_destroy_r(m_context, reader);
    }

    void run(double distance) override {
        for (const GEOSGeometry* geometry : m_input) {
            m_results.push_back(GEOSBuffer_r(m_context, geometry, distance, kQuadrantSegments));
            if (m_results.back() == nullptr) throw std::runtime_error("GEOS: no buffer");
        }
    }

    double area() const override {
        double sum = 0;
        for (const GEOSGeometry* result : m_results) {
            double one = 0;
            GEOSArea_r(m_context, result, &one);
            sum += one;
        }
        return sum;
    }

    void clear() override { destroy(m_results); }

  private:
    void destroy(std::vector<GEOSGeometry*>& geometries) {
        for (GEOSGeometry* geometry : geometries) GEOSGeom_destroy_r(m_context, geometry);
        geometries.clear();
    }

    GEOSContextHandle_t m_context;
    std::vector<GEOSGeometry*> m_input;
    std::vector<GEOSGeometry*> m_results;
};

}  // namespace

std::unique_ptr<BufferRival> makeGeosBuffer() { return std::make_unique<GeosBuffer>(); }

}  // namespace bench
