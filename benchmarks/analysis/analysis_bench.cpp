// SPDX-License-Identifier: MIT
//
// Hulls, circles and Douglas-Peucker beside GEOS and Boost.Geometry, one thread, answers compared
// before times. All contenders begin with the points in their own representation.
//
//   analysis_bench [CASE...]     cases such as hull, circle, simplify; by default all
#include <algorithm>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/multi_point.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "analysis/point_sets.h"
#include "jw_geometryminimumbounding.h"
#include "jw_geometrysimplicify.h"
#include "support/contest.h"
#include "support/geos_handles.h"

namespace {

using namespace jws;
using bench::geos;
using bench::GeosPtr;
namespace bg = boost::geometry;
using BoostPoint = bg::model::d2::point_xy<double>;

GeosPtr geosLine(const std::vector<JWRawPoint>& points) {
    return bench::geosLine(&points[0].x, points.size());
}

bool hull(const std::string& set, int n, int rounds) {
    const std::vector<JWRawPoint> points = bench::pointSet(set, n);
    const GeosPtr line = geosLine(points);
    bg::model::multi_point<BoostPoint> multi;
    for (const JWRawPoint& p : points) multi.push_back(BoostPoint(p.x, p.y));
    JWRing ours;
    GeosPtr theirs;
    bg::model::polygon<BoostPoint> boosts;
    return bench::contest(
        "hull " + set + " " + std::to_string(n),
        {{"jwcg", [&] { JWGeometryMinimumBounding::pointsContexHull(points, n, &ours); },
          [&] { return ours.getArea(); }},
         {"boost", [&] { boosts.clear(), bg::convex_hull(multi, boosts); },
          [&] { return std::fabs(bg::area(boosts)); }},
         {"geos", [&] { theirs.reset(GEOSConvexHull_r(geos(), line.get())); },
          [&] {
              double area = 0;
              GEOSArea_r(geos(), theirs.get(), &area);
              return area;
          }}},
        1e-12, rounds);
}

bool circle(const std::string& set, int n, int rounds) {
    const std::vector<JWRawPoint> points = bench::pointSet(set, n);
    const GeosPtr line = geosLine(points);
    JWRawPoint center(0, 0);
    double radius = 0, geosRadius = 0;
    return bench::contest(
        "circle " + set + " " + std::to_string(n),
        {{"jwcg",
          [&] { JWGeometryMinimumBounding::pointsMinimumCircle(points, n, center, &radius); },
          [&] { return radius; }},
         {"geos",
          [&] { GeosPtr(GEOSMinimumBoundingCircle_r(geos(), line.get(), &geosRadius, nullptr)); },
          [&] { return geosRadius; }}},
        1e-9, rounds);
}

/// Douglas-Peucker. Ours works in place, on a copy whose making is timed; the others make their
/// result.
bool simplify(const std::string& set, int n, double tolerance, int rounds) {
    const JWLineString points(bench::pointSet(set, n));
    const GeosPtr line = geosLine(points.getPointList());
    bg::model::linestring<BoostPoint> boostLine, boosts;
    for (const JWRawPoint& p : points.getPointList()) boostLine.push_back(BoostPoint(p.x, p.y));
    JWLineString ours;
    GeosPtr theirs;
    std::vector<bench::Entry> entries = {
        {"jwcg",
         [&] {
             ours = points;
             JWGeometrySimplicify::douglasPeucker(&ours, tolerance);
         },
         [&] { return ours.getPointCount(); }},
        {"boost", [&] { boosts.clear(), bg::simplify(boostLine, boosts, tolerance); },
         [&] { return static_cast<double>(boosts.size()); }},
        {"geos", [&] { theirs.reset(GEOSSimplify_r(geos(), line.get(), tolerance)); },
         [&] { return GEOSGeomGetNumPoints_r(geos(), theirs.get()); }}};
    // The textbook form takes minutes for a long zigzag, and recurses as deep as the line is long.
    if ((set == "zigzag" && n > 20000) || (set == "spiral" && n > 200000)) entries.resize(1);
    return bench::contest("simplify " + set + " " + std::to_string(n) + " at " +
                              std::to_string(tolerance).substr(0, 4),
                          entries, 1e-3, rounds);
}

}  // namespace

int main(int argc, char** argv) {
    const auto wanted = [&](const char* name) {
        return argc < 2 || std::find(argv + 1, argv + argc, std::string(name)) != argv + argc;
    };
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    bool agreed = true;
    for (int n : {10000, 100000, 1000000}) {
        const int rounds = n > 100000 ? 5 : 11;
        for (const char* set : {"square", "disc", "ring", "circle"}) {
            if (wanted("hull")) agreed &= hull(set, n, rounds);
            if (wanted("circle")) agreed &= circle(set, n, rounds);
        }
    }
    for (int n : {10000, 100000, 1000000}) {
        if (!wanted("simplify")) break;
        const int rounds = n > 100000 ? 5 : 11;
        agreed &= simplify("walk", n, 5, rounds);
        agreed &= simplify("walk", n, 100, rounds);
        agreed &= simplify("spiral", n, 0.01, rounds);
        agreed &= simplify("zigzag", n, 0.5, rounds);
    }
    return agreed ? 0 : 1;
}
