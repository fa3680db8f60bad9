// SPDX-License-Identifier: MIT
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/multi_polygon.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

#include "gpc/pairwise_clip.h"

namespace bench {
namespace {

namespace bg = boost::geometry;
using Point = bg::model::d2::point_xy<double>;
using Polygon = bg::model::polygon<Point, false, true>;  // counter-clockwise, closed
using MultiPolygon = bg::model::multi_polygon<Polygon>;

class BoostClip final : public PairwiseClip<MultiPolygon> {
    MultiPolygon clip(ClipOp op, const MultiPolygon& a, const MultiPolygon& b) const override {
        MultiPolygon result;
        switch (op) {
            case ClipOp::Intersection:
                bg::intersection(a, b, result);
                break;
            case ClipOp::Union:
                bg::m_union(a, b, result);
                break;
            case ClipOp::Difference:
                bg::difference(a, b, result);
                break;
            case ClipOp::Xor:
                bg::sym_difference(a, b, result);
                break;
        }
        return result;
    }

    static void append(const jwtest::Ring& from, Polygon::ring_type& to) {
        for (const jws::JWRawPoint& p : from) to.emplace_back(p.x, p.y);
    }

    MultiPolygon operand(const ClipOperand& polygons) const override {
        MultiPolygon multi;
        for (const ClipPolygon& polygon : polygons) {
            Polygon one;
            append(polygon.outer, one.outer());
            for (const jwtest::Ring& hole : polygon.holes) {
                one.inners().emplace_back();
                append(hole, one.inners().back());
            }
            multi.push_back(std::move(one));
        }
        bg::correct(multi);  // closes rings and turns holes round
        return multi;
    }

    double areaOf(const MultiPolygon& result) const override { return bg::area(result); }
};

}  // namespace

std::unique_ptr<ClipRival> makeBoostClip() { return std::make_unique<BoostClip>(); }

}  // namespace bench
