// SPDX-License-Identifier: MIT
#include <cmath>
#include <stdexcept>

#include "buffer/buffer_rival.h"
#include "jw_geometrybuffer.h"

namespace bench {
namespace {

double areaOf(const jws::JWGeometry& geometry) {
    if (const auto* polygon = dynamic_cast<const jws::JWPolygon*>(&geometry)) {
        return polygon->getArea();
    }
    const auto& polygons = dynamic_cast<const jws::JWMultiPolygon&>(geometry);
    double sum = 0;
    for (int i = 0; i < polygons.getPolygonCount(); ++i) {
        sum += polygons.getPolygonPtrAt(i)->getArea();
    }
    return sum;
}

class OursBuffer final : public BufferRival {
  public:
    explicit OursBuffer(bool threads)
        : buffer_(threads ? jws::JWGeometryBuffer::geometryBuffer_mp
                          : jws::JWGeometryBuffer::geometryBuffer) {}

    void load(const Geometries& geometries) override { input_ = &geometries; }

    void run(double distance) override {
        for (const auto& geometry : *input_) {
            jws::JWGeometry* result = nullptr;
            if (buffer_(geometry.get(), distance, &result, jws::JWBufferFace) != 1) {
                throw std::runtime_error("no buffer");
            }
            results_.emplace_back(result);
        }
    }

    double area() const override {
        double sum = 0;
        for (const auto& result : results_) sum += areaOf(*result);
        return sum;
    }

    void clear() override { results_.clear(); }

  private:
    int (*buffer_)(const jws::JWGeometry*, double, jws::JWGeometry**, jws::enumJWBufferType);
    const Geometries* input_ = nullptr;
    Geometries results_;
};

}  // namespace

std::unique_ptr<BufferRival> makeOursBuffer(bool threads) {
    return std::make_unique<OursBuffer>(threads);
}

}  // namespace bench
