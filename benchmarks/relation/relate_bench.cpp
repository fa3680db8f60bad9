// SPDX-License-Identifier: MIT
//
// Relations of geometries beside GEOS, plain and prepared, one thread, answers compared before
// times. All contenders begin with the geometries in their own representation.
//
//   relate_bench [CASE...]     points, matrix, intersects, contains; by default all
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "analysis/point_sets.h"
#include "jw_relationmatrix.h"
#include "jw_spatialrelation.h"
#include "support/contest.h"
#include "support/geos_handles.h"

namespace {

using namespace jws;
using bench::geos;
using bench::GeosPtr;

struct PreparedDeleter {
    void operator()(const GEOSPreparedGeometry* g) const { GEOSPreparedGeom_destroy_r(geos(), g); }
};
using GeosPrepared = std::unique_ptr<const GEOSPreparedGeometry, PreparedDeleter>;

/// A wavy, jagged outline about a place.
JWPolygon outline(int n, double x, double y, unsigned seed) {
    bench::Numbers numbers(seed);
    std::vector<JWRawPoint> points;
    for (int i = 0; i < n; ++i) {
        const double angle = 2 * M_PI * i / n;
        const double r = 1 + 0.2 * std::sin(7 * angle) + numbers.uniform(0, 3.0 / n);
        points.emplace_back(x + r * std::cos(angle), y + r * std::sin(angle));
    }
    return JWPolygon(JWRing(std::move(points)));
}

GeosPtr toGeos(const JWPolygon& polygon) {
    const JWRing& ring = polygon.getExteriorRing();
    GEOSCoordSequence* s = GEOSCoordSeq_copyFromBuffer_r(
        geos(), &ring.getPointsPtr()->x, static_cast<unsigned>(ring.getPointCount()), 0, 0);
    return GeosPtr(
        GEOSGeom_createPolygon_r(geos(), GEOSGeom_createLinearRing_r(geos(), s), nullptr, 0));
}

bool points(int vertices, int count, int rounds) {
    const JWPolygon polygon = outline(vertices, 0, 0, 1);
    bench::Numbers numbers(2);
    std::vector<JWRawPoint> list;
    std::vector<GeosPtr> theirs;
    for (int i = 0; i < count; ++i) {
        list.emplace_back(numbers.uniform(-1.2, 1.2), numbers.uniform(-1.2, 1.2));
        theirs.emplace_back(GEOSGeom_createPointFromXY_r(geos(), list.back().x, list.back().y));
    }
    const GeosPtr shape = toGeos(polygon);
    long inside = 0, geosInside = 0;
    return bench::contest("points " + std::to_string(count) + " in " + std::to_string(vertices),
                          {{"jwcg",
                            [&] {
                                const JWPreparedRelation prepared(&polygon);
                                inside = 0;
                                for (const JWRawPoint& p : list) inside += prepared.contains(p);
                            },
                            [&] { return static_cast<double>(inside); }},
                           {"geos-prepared",
                            [&] {
                                const GeosPrepared prepared(GEOSPrepare_r(geos(), shape.get()));
                                geosInside = 0;
                                for (const GeosPtr& p : theirs)
                                    geosInside += GEOSPreparedContains_r(geos(), prepared.get(),
                                                                         p.get()) == 1;
                            },
                            [&] { return static_cast<double>(geosInside); }}},
                          0, rounds);
}

/// Pairs of outlines at growing distances, so that they cross, hold one another or are apart.
struct Pairs {
    Pairs(int vertices, int count) {
        for (int i = 0; i < count; ++i) {
            const auto seed = static_cast<unsigned>(i);
            first.push_back(outline(vertices, 0, 0, 2 * seed));
            second.push_back(outline(vertices, 2.5 * i / count, 0.1, 2 * seed + 1));
            if (i % 4 == 0) second.back().scale(JWRawPoint(0, 0), 0.3, 0.3);
            geosFirst.push_back(toGeos(first.back()));
            geosSecond.push_back(toGeos(second.back()));
        }
    }
    std::size_t size() const { return first.size(); }
    std::vector<JWPolygon> first, second;
    std::vector<GeosPtr> geosFirst, geosSecond;
};

template <class Ours, class Geos>
bool pairwise(const std::string& title, const Pairs& pairs, int rounds, Ours&& ours, Geos&& geos) {
    double figure = 0, geosFigure = 0;
    return bench::contest(title,
                          {{"jwcg",
                            [&] {
                                figure = 0;
                                for (std::size_t i = 0; i < pairs.size(); ++i)
                                    figure += ours(pairs.first[i], pairs.second[i]);
                            },
                            [&] { return figure; }},
                           {"geos",
                            [&] {
                                geosFigure = 0;
                                for (std::size_t i = 0; i < pairs.size(); ++i)
                                    geosFigure +=
                                        geos(pairs.geosFirst[i].get(), pairs.geosSecond[i].get());
                            },
                            [&] { return geosFigure; }}},
                          0, rounds);
}

/// Tells matrices apart, roughly.
double figureOf(const std::string& matrix) {
    double figure = 0;
    for (const char c : matrix) figure = 4 * figure + (c == 'F' ? 0 : c - '0' + 1);
    return figure;
}

bool matrices(int vertices, int rounds) {
    const Pairs pairs(vertices, std::max(8, 20000 / vertices));
    return pairwise(
        "matrix " + std::to_string(pairs.size()) + " x " + std::to_string(vertices), pairs, rounds,
        [](const JWPolygon& a, const JWPolygon& b) {
            JWRelationMatrix matrix;
            relateGeometries(&a, &b, &matrix);
            return figureOf(matrix.text());
        },
        [](const GEOSGeometry* a, const GEOSGeometry* b) {
            char* text = GEOSRelate_r(geos(), a, b);
            const double figure = figureOf(text);
            GEOSFree_r(geos(), text);
            return figure;
        });
}

bool intersecting(int vertices, int rounds) {
    const Pairs pairs(vertices, std::max(8, 20000 / vertices));
    return pairwise(
        "intersects " + std::to_string(pairs.size()) + " x " + std::to_string(vertices), pairs,
        rounds,
        [](const JWPolygon& a, const JWPolygon& b) {
            return JWSpatialRelation().isPolygonsIntersect(&a, &b);
        },
        [](const GEOSGeometry* a, const GEOSGeometry* b) {
            return GEOSIntersects_r(geos(), a, b) == 1;
        });
}

/// One polygon against many small ones.
bool prepared(int vertices, int count, int rounds) {
    const JWPolygon whole = outline(vertices, 0, 0, 1);
    bench::Numbers numbers(3);
    std::vector<JWPolygon> parts;
    std::vector<GeosPtr> theirs;
    for (int i = 0; i < count; ++i) {
        JWPolygon part = outline(12, 0, 0, static_cast<unsigned>(i));
        part.scale(JWRawPoint(0, 0), 0.02, 0.02);
        part.move(numbers.uniform(-1.2, 1.2), numbers.uniform(-1.2, 1.2));
        theirs.push_back(toGeos(part));
        parts.push_back(std::move(part));
    }
    const GeosPtr shape = toGeos(whole);
    const std::string title = std::to_string(count) + " by " + std::to_string(vertices);
    double ours = 0, geosFigure = 0;
    const auto run = [&](const char* name, auto&& mine, auto&& geosCall) {
        return bench::contest(name + title,
                              {{"jwcg",
                                [&] {
                                    const JWPreparedRelation p(&whole);
                                    ours = 0;
                                    for (const JWPolygon& part : parts) ours += mine(p, part);
                                },
                                [&] { return ours; }},
                               {"geos-prepared",
                                [&] {
                                    const GeosPrepared p(GEOSPrepare_r(geos(), shape.get()));
                                    geosFigure = 0;
                                    for (const GeosPtr& part : theirs)
                                        geosFigure += geosCall(geos(), p.get(), part.get()) == 1;
                                },
                                [&] { return geosFigure; }}},
                              0, rounds);
    };
    bool agreed = run(
        "contains ",
        [](const JWPreparedRelation& p, const JWPolygon& part) { return p.contains(&part); },
        GEOSPreparedContains_r);
    agreed &= run(
        "intersects ",
        [](const JWPreparedRelation& p, const JWPolygon& part) { return p.intersects(&part); },
        GEOSPreparedIntersects_r);
    return agreed;
}

}  // namespace

int main(int argc, char** argv) {
    const auto wanted = [&](const char* name) {
        return argc < 2 || std::find(argv + 1, argv + argc, std::string(name)) != argv + argc;
    };
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    bool agreed = true;
    for (int n : {100, 1000, 10000, 100000})
        if (wanted("points")) agreed &= points(n, 1000000, 5);
    for (int n : {8, 100, 1000, 10000}) {
        if (wanted("matrix")) agreed &= matrices(n, 5);
        if (wanted("intersects")) agreed &= intersecting(n, 5);
    }
    for (int n : {100, 10000})
        if (wanted("contains")) agreed &= prepared(n, 20000, 5);
    return agreed ? 0 : 1;
}
