// SPDX-License-Identifier: MIT
//
// Clipper works on integers: coordinates are scaled by the power of two that fits the largest one
// into 30 bits, beyond which it takes slower arithmetic. Areas agree with the others' to about
// 1e-8.
#include <algorithm>
#include <cmath>
#include <polyclipping/clipper.hpp>
#include <stdexcept>

#include "gpc/pairwise_clip.h"

namespace bench {
namespace {

class ClipperClip final : public PairwiseClip<ClipperLib::Paths> {
  public:
    void load(const std::vector<ClipOperands>& pairs) override {
        double reach = 0;
        for (const ClipOperands& pair : pairs) {
            for (const ClipOperand* operand : {&pair.a, &pair.b}) {
                for (const ClipPolygon& polygon : *operand) {
                    for (const jws::JWRawPoint& p : polygon.outer) {
                        reach = std::max({reach, std::fabs(p.x), std::fabs(p.y)});
                    }
                }
            }
        }
        int exponent = 0;
        std::frexp(reach, &exponent);
        m_scale = std::ldexp(1.0, 29 - exponent);
        PairwiseClip::load(pairs);
    }

  private:
    ClipperLib::Paths clip(ClipOp op, const ClipperLib::Paths& a,
                           const ClipperLib::Paths& b) const override {
        constexpr ClipperLib::ClipType types[] = {ClipperLib::ctIntersection, ClipperLib::ctUnion,
                                                  ClipperLib::ctDifference, ClipperLib::ctXor};
        ClipperLib::Clipper clipper;
        clipper.AddPaths(a, ClipperLib::ptSubject, true);
        clipper.AddPaths(b, ClipperLib::ptClip, true);
        ClipperLib::Paths result;
        if (!clipper.Execute(types[static_cast<int>(op)], result)) {
            throw std::runtime_error("no result");
        }
        return result;
    }

    ClipperLib::Paths operand(const ClipOperand& polygons) const override {
        ClipperLib::Paths list;
        const auto add = [&](const jwtest::Ring& ring) {
            ClipperLib::Path path;
            for (const jws::JWRawPoint& p : ring) {
                path.emplace_back(std::llround(p.x * m_scale), std::llround(p.y * m_scale));
            }
            list.push_back(std::move(path));
        };
        for (const ClipPolygon& polygon : polygons) {
            add(polygon.outer);
            for (const jwtest::Ring& hole : polygon.holes) add(hole);
        }
        return list;
    }

    double areaOf(const ClipperLib::Paths& result) const override {
        double sum = 0;
        for (const ClipperLib::Path& path : result) sum += ClipperLib::Area(path);
        return sum / (m_scale * m_scale);
    }

    double m_scale = 1;
};

}  // namespace

std::unique_ptr<ClipRival> makeClipperClip() { return std::make_unique<ClipperClip>(); }

}  // namespace bench
