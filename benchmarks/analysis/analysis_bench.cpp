// SPDX-License-Identifier: MIT
//
// Hulls, circles and Douglas-Peucker beside GEOS, Boost.Geometry and, where it is installed, CGAL,
// one thread, answers compared before times; and what a team of threads brings to features. All
// contenders begin with the points in their own representation.
//
//   analysis_bench [CASE...]     names of cases or how they begin, such as hull or "circle ring";
//                                by default all
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

#ifdef JWCG_BENCH_CGAL
#include "analysis/cgal_bounds.h"
#endif
#include "analysis/point_sets.h"
#include "jw_geometryminimumbounding.h"
#include "jw_geometrysimplicify.h"
#include "support/contest.h"
#include "support/geos_handles.h"

namespace {

using namespace jws;

/// How the names of the cases to run begin; none for all.
std::vector<std::string> wanted;

bool isWanted(const std::string& title) {
    return wanted.empty() || std::any_of(wanted.begin(), wanted.end(), [&](const auto& start) {
               return title.compare(0, start.size(), start) == 0;
           });
}
using bench::geos;
using bench::GeosPtr;
namespace bg = boost::geometry;
using BoostPoint = bg::model::d2::point_xy<double>;

GeosPtr geosLine(const std::vector<JWRawPoint>& points) {
    return bench::geosLine(&points[0].x, points.size());
}

bool hull(const std::string& set, int n, int rounds) {
    const std::string title = "hull " + set + " " + std::to_string(n);
    if (!isWanted(title)) return true;
    const std::vector<JWRawPoint> points = bench::pointSet(set, n);
    const GeosPtr line = geosLine(points);
    bg::model::multi_point<BoostPoint> multi;
    for (const JWRawPoint& p : points) multi.push_back(BoostPoint(p.x, p.y));
    JWRing ours;
    GeosPtr theirs;
    bg::model::polygon<BoostPoint> boosts;
    std::vector<bench::Entry> entries = {
        {"jwcg", [&] { JWGeometryMinimumBounding::pointsContexHull(points, n, &ours); },
         [&] { return ours.getArea(); }},
        {"boost", [&] { boosts.clear(), bg::convex_hull(multi, boosts); },
         [&] { return std::fabs(bg::area(boosts)); }},
        {"geos", [&] { theirs.reset(GEOSConvexHull_r(geos(), line.get())); },
         [&] {
             double area = 0;
             GEOSArea_r(geos(), theirs.get(), &area);
             return area;
         }}};
#ifdef JWCG_BENCH_CGAL
    bench::CgalBounds cgal(points);
    entries.push_back({"cgal", [&] { cgal.findHull(); }, [&] { return cgal.hullArea(); }});
#endif
    return bench::contest(title, entries, 1e-10, rounds);  // Boost rounds some turns
}

bool circle(const std::string& set, int n, int rounds) {
    const std::string title = "circle " + set + " " + std::to_string(n);
    if (!isWanted(title)) return true;
    const std::vector<JWRawPoint> points = bench::pointSet(set, n);
    const GeosPtr line = geosLine(points);
    JWRawPoint center(0, 0);
    double radius = 0, geosRadius = 0;
    std::vector<bench::Entry> entries = {
        {"jwcg",
         [&] { JWGeometryMinimumBounding::pointsMinimumCircle(points, n, center, &radius); },
         [&] { return radius; }},
        {"geos",
         [&] { GeosPtr(GEOSMinimumBoundingCircle_r(geos(), line.get(), &geosRadius, nullptr)); },
         [&] { return geosRadius; }}};
#ifdef JWCG_BENCH_CGAL
    bench::CgalBounds cgal(points);
    entries.push_back({"cgal", [&] { cgal.findCircle(); }, [&] { return cgal.circleRadius(); }});
#endif
    return bench::contest(title, entries, 1e-9, rounds);
}

/// Douglas-Peucker. Ours works in place, on a copy whose making is timed; the others make their
/// result.
bool simplify(const std::string& set, int n, double tolerance, int rounds) {
    const std::string title = "simplify " + set + " " + std::to_string(n) + " at " +
                              std::to_string(tolerance).substr(0, 4);
    if (!isWanted(title)) return true;
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
    return bench::contest(title, entries, 1e-3, rounds);
}

/// Douglas-Peucker of many lines by one thread, and by one per core. Works in place, on a copy
/// whose making is not timed.
bool features(int count, int n, double tolerance, int rounds) {
    const std::string title = "features " + std::to_string(count) + " of " + std::to_string(n);
    if (!isWanted(title)) return true;
    JWFeatureClass lines, copy;
    for (int i = 0; i < count; ++i) {
        auto feature = std::make_unique<JWFeature>();
        feature->setGeometryDirectly(new JWLineString(bench::pointSet("walk", n)));
        lines.addFeature(feature.release());
    }
    copy = lines;
    const auto pointsLeft = [&] {
        double points = 0;
        for (int i = 0; i < count; ++i) {
            points +=
                static_cast<JWLineString*>(copy.getFeatureAt(i)->getGeometryPtr())->getPointCount();
        }
        return points;
    };
    const auto entry = [&](const char* name, void (*simplify)(JWFeatureClass*, double)) {
        return bench::Entry{name, [&, simplify] { simplify(&copy, tolerance); }, pointsLeft,
                            [&] { copy = lines; }};
    };
    return bench::contest(title,
                          {entry("_dp", &JWGeometrySimplicify::simplifyFeatures_dp),
                           entry("_omp", &JWGeometrySimplicify::simplifyFeatures_omp)},
                          0, rounds);
}

}  // namespace

int main(int argc, char** argv) {
    wanted.assign(argv + 1, argv + argc);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    bool agreed = true;
    for (int n : {10000, 100000, 1000000}) {
        const int rounds = n > 100000 ? 5 : 11;
        for (const char* set : {"square", "disc", "ring", "circle", "shuffled"}) {
            agreed &= hull(set, n, rounds);
            agreed &= circle(set, n, rounds);
        }
    }
    for (int n : {10000, 100000, 1000000}) {
        const int rounds = n > 100000 ? 5 : 11;
        agreed &= simplify("walk", n, 5, rounds);
        agreed &= simplify("walk", n, 100, rounds);
        agreed &= simplify("spiral", n, 0.01, rounds);
        agreed &= simplify("zigzag", n, 0.5, rounds);
    }
    agreed &= features(20000, 100, 5, 9);
    agreed &= features(200, 20000, 5, 9);
    return agreed ? 0 : 1;
}
