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
        : m_buffer(threads ? jws::JWGeometryBuffer::geometryBuffer_mp
                           : jws::JWGeometryBuffer::geometryBuffer) {}

    void load(const Geometries& geometries) override { m_input = &geometries; }

    void run(double distance) override {
        for (const auto& geometry : *m_input) {
            jws::JWGeometry* result = nullptr;
            if (m_buffer(geometry.get(), distance, &result, jws::JWBufferFace) != 1) {
                throw std::runtime_error("no buffer");
            }
            m_results.emplace_back(result);
        }
    }

    double area() const override {
        double sum = 0;
        for (const auto& result : m_results) sum += areaOf(*result);
        return sum;
    }

    void clear() override { m_results.clear(); }

  private:
    int (*m_buffer)(const jws::JWGeometry*, double, jws::JWGeometry**, jws::enumJWBufferType);
    const Geometries* m_input = nullptr;
    Geometries m_results;
};

}  // namespace

std::unique_ptr<BufferRival> makeOursBuffer(bool threads) {
    return std::make_unique<OursBuffer>(threads);
}

}  // namespace bench
