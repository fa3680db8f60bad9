// SPDX-License-Identifier: MIT
//
// Clipper works on integers: coordinates are scaled by the power of two that fits the largest one
// into 28 bits, so that the buffer stays below the 30 bits beyond which it takes slower arithmetic.
#include <algorithm>
#include <cmath>
#include <polyclipping/clipper.hpp>

#include "buffer/buffer_rival.h"

namespace bench {
namespace {

struct Path {
    ClipperLib::Path points;
    ClipperLib::EndType end;
};

class ClipperBuffer final : public BufferRival {
  public:
    void load(const Geometries& geometries) override {
        double reach = 0;
        for (const auto& geometry : geometries) {
            const jws::JWEnvelop e = geometry->getEnvelop();
            for (const double v : {e.minX, e.minY, e.maxX, e.maxY}) {
                reach = std::max(reach, std::fabs(v));
            }
        }
        int exponent = 0;
        std::frexp(reach, &exponent);
        m_scale = std::ldexp(1.0, 27 - exponent);
        for (const auto& geometry : geometries) {
            m_input.emplace_back();
            addPaths(*geometry, m_input.back());
        }
    }

    void run(double distance) override {
        const double radius = distance * m_scale;
        const double flatness = radius * (1 - std::cos(M_PI / 24));
        for (const std::vector<Path>& paths : m_input) {
            ClipperLib::ClipperOffset offset(2.0, flatness);
            for (const Path& path : paths) {
                offset.AddPath(path.points, ClipperLib::jtRound, path.end);
            }
            m_results.emplace_back();
            offset.Execute(m_results.back(), radius);
        }
    }

    double area() const override {
        double sum = 0;
        for (const ClipperLib::Paths& result : m_results) {
            for (const ClipperLib::Path& path : result) sum += ClipperLib::Area(path);
        }
        return sum / (m_scale * m_scale);
    }

    void clear() override { m_results.clear(); }

  private:
    ClipperLib::Path pathOf(const std::vector<jws::JWRawPoint>& points) const {
        ClipperLib::Path path;
        for (const jws::JWRawPoint& p : points) {
            path.emplace_back(std::llround(p.x * m_scale), std::llround(p.y * m_scale));
        }
        return path;
    }

    void addPolygon(const jws::JWPolygon& polygon, std::vector<Path>& paths) const {
        for (int i = 0; i < polygon.getRingCount(); ++i) {
            ClipperLib::Path path = pathOf(polygon.getRingPtrAt(i)->getPointList());
            if (ClipperLib::Orientation(path) != (i == 0)) ClipperLib::ReversePath(path);
            paths.push_back({std::move(path), ClipperLib::etClosedPolygon});
        }
    }

    void addPaths(const jws::JWGeometry& geometry, std::vector<Path>& paths) const {
        if (const auto* line = dynamic_cast<const jws::JWLineString*>(&geometry)) {
            paths.push_back({pathOf(line->getPointList()), ClipperLib::etOpenRound});
        } else if (const auto* polygon = dynamic_cast<const jws::JWPolygon*>(&geometry)) {
            addPolygon(*polygon, paths);
        } else {
            const auto& polygons = dynamic_cast<const jws::JWMultiPolygon&>(geometry);
            for (int i = 0; i < polygons.getPolygonCount(); ++i) {
                addPolygon(*polygons.getPolygonPtrAt(i), paths);
            }
        }
    }

    double m_scale = 1;
    std::vector<std::vector<Path>> m_input;
    std::vector<ClipperLib::Paths> m_results;
};

}  // namespace

std::unique_ptr<BufferRival> makeClipperBuffer() { return std::make_unique<ClipperBuffer>(); }

}  // namespace bench
