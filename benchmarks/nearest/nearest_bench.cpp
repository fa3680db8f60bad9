// SPDX-License-Identifier: MIT
//
// Nearest features and distances of lines beside GEOS and Boost.Geometry, one thread, answers
// compared before times. Contenders begin with the geometries in their own representation; building
// the index counts.
//
//   nearest_bench [CASE...]     cases lines, points, search, distance; by default all
#include <algorithm>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/segment.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>
#include <string>
#include <vector>

#include "analysis/point_sets.h"
#include "jw_geometrynearest.h"
#include "support/contest.h"
#include "support/geos_handles.h"

namespace {

using namespace jws;
using bench::geos;
using bench::GeosPtr;
namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;
using BoostPoint = bg::model::d2::point_xy<double>;
using BoostSegment = bg::model::segment<BoostPoint>;
using List = std::vector<JWRawPoint>;

/// Lines of `points` points with steps of a fifth of their mean distance, or single points, spread
/// evenly over a square of side 1000.
std::vector<List> spread(int count, int points, std::uint64_t seed) {
    bench::Numbers numbers(seed);
    const double step = 200 / std::sqrt(count);
    std::vector<List> lists;
    for (int i = 0; i < count; ++i) {
        List list = {{numbers.uniform(0, 1000), numbers.uniform(0, 1000)}};
        for (int k = 1; k < points; ++k)
            list.emplace_back(list.back().x + numbers.uniform(-step, step),
                              list.back().y + numbers.uniform(-step, step));
        lists.push_back(std::move(list));
    }
    return lists;
}

JWFeatureClass featuresOf(const std::vector<List>& lists) {
    JWFeatureClass features;
    for (const List& list : lists) {
        auto* feature = new JWFeature();
        feature->setFID(features.getFeatureCount() + 1);
        if (list.size() == 1) {
            feature->setGeometryDirectly(new JWPoint(list[0]));
        } else {
            feature->setGeometryDirectly(new JWLineString(list));
        }
        features.addFeature(feature);
    }
    return features;
}

std::vector<GeosPtr> geosOf(const std::vector<List>& lists) {
    std::vector<GeosPtr> geometries;
    for (const List& list : lists) {
        geometries.push_back(
            list.size() == 1 ? GeosPtr(GEOSGeom_createPointFromXY_r(geos(), list[0].x, list[0].y))
                             : bench::geosLine(&list[0].x, list.size()));
    }
    return geometries;
}

int geosDistance(const void* a, const void* b, double* distance, void*) {
    return GEOSDistance_r(geos(), static_cast<const GEOSGeometry*>(a),
                          static_cast<const GEOSGeometry*>(b), distance);
}

double geosNearest(const std::vector<GeosPtr>& sources, const std::vector<GeosPtr>& targets) {
    GEOSSTRtree* tree = GEOSSTRtree_create_r(geos(), 10);
    for (const GeosPtr& target : targets) {
        GEOSSTRtree_insert_r(geos(), tree, target.get(), const_cast<GEOSGeometry*>(target.get()));
    }
    double sum = 0;
    for (const GeosPtr& source : sources) {
        const void* found = GEOSSTRtree_nearest_generic_r(geos(), tree, source.get(), source.get(),
                                                          geosDistance, nullptr);
        double distance = 0;
        geosDistance(source.get(), found, &distance, nullptr);
        sum += distance;
    }
    GEOSSTRtree_destroy_r(geos(), tree);
    return sum;
}

template <class Item>
double boostNearest(const std::vector<List>& sources, const std::vector<Item>& items) {
    const bgi::rtree<Item, bgi::linear<16>> tree(items);
    double sum = 0;
    for (const List& source : sources) {
        const BoostPoint p(source[0].x, source[0].y);
        tree.query(bgi::nearest(p, 1), boost::make_function_output_iterator([&](const Item& item) {
                       sum += bg::distance(p, item);
                   }));
    }
    return sum;
}

/// The nearest line or point for each of `n` points.
bool nearest(int n, int points, int rounds) {
    const std::vector<List> from = spread(n, 1, 1), to = spread(n, points, 2);
    const JWFeatureClass sources = featuresOf(from), targets = featuresOf(to);
    const std::vector<GeosPtr> geosSources = geosOf(from), geosTargets = geosOf(to);
    std::vector<BoostSegment> segments;
    std::vector<BoostPoint> single;
    for (const List& list : to) {
        single.emplace_back(list[0].x, list[0].y);
        for (std::size_t i = 0; i + 1 < list.size(); ++i)
            segments.emplace_back(BoostPoint(list[i].x, list[i].y),
                                  BoostPoint(list[i + 1].x, list[i + 1].y));
    }
    std::vector<JWNearestPair> pairs;
    double geosSum = 0, boostSum = 0;
    return bench::contest(
        std::string("nearest ") + (points > 1 ? "line " : "point ") + std::to_string(n),
        {{"jwcg",
          [&] {
              pairs.clear();
              JWGeometryNearest::nearestFeatures(&sources, &targets, {}, pairs);
          },
          [&] {
              double sum = 0;
              for (const JWNearestPair& pair : pairs) sum += pair.distance;
              return sum;
          }},
         {"boost",
          [&] {
              boostSum = points > 1 ? boostNearest(from, segments) : boostNearest(from, single);
          },
          [&] { return boostSum; }},
         {"geos", [&] { geosSum = geosNearest(geosSources, geosTargets); },
          [&] { return geosSum; }}},
        1e-9, rounds);
}

/// The established search beside the exact one, layers in memory, reading and writing included. The
/// answers differ by what the squares do not see.
bool search(int n, int points, int rounds) {
    const auto layerOf = [&](const std::vector<List>& lists) {
        JWDataSource* source = JWDataSource::createInMemory();
        JWFeatureLayer* layer = source->createLayer("layer", JWWKBUnknown, nullptr);
        const JWFeatureClass features = featuresOf(lists);
        layer->createFeatures(&features);
        JWDataSource::destroyDataSource(source);
        return layer;
    };
    JWFeatureLayer* sources = layerOf(spread(n, 1, 1));
    JWFeatureLayer* targets = layerOf(spread(n, points, 2));
    JWFeatureLayer* output = nullptr;
    const auto into = [&](const auto& operation) {
        return [&, operation] {
            if (output != nullptr) JWFeatureLayer::destroyFeatureLayer(output);
            output = layerOf({});
            operation();
        };
    };
    const auto count = [&] { return static_cast<double>(output->getFeatureCount()); };
    const bool agreed = bench::contest(
        (points > 1 ? "search, lines " : "search, points ") + std::to_string(n),
        {{"exact",
          into([&] { JWGeometryNearest::nearestFeatures(sources, targets, output, {}, nullptr); }),
          count},
         {"squares", into([&] {
              points > 1 ? JWGeometryNearest::shortestPointsToLines(sources, targets, output)
                         : JWGeometryNearest::shortestPointsToPoints(sources, targets, output);
          }),
          count}},
        0.01, rounds);
    for (JWFeatureLayer* layer : {sources, targets, output})
        JWFeatureLayer::destroyFeatureLayer(layer);
    return agreed;
}

/// Two lines of `n` points, the second beside the first.
bool distance(const std::string& set, int n, int rounds) {
    const List a = bench::pointSet(set, n);
    List b = a;
    double right = a[0].x, left = a[0].x;
    for (const JWRawPoint& p : a) {
        right = std::max(right, p.x);
        left = std::min(left, p.x);
    }
    for (JWRawPoint& p : b) p.set(p.x + (right - left) * 0.9 + 1, p.y + (right - left) * 0.5);
    const JWLineString lineA(a), lineB(b);
    const GeosPtr geosA = bench::geosLine(&a[0].x, a.size());
    const GeosPtr geosB = bench::geosLine(&b[0].x, b.size());
    double ours = 0, theirs = 0;
    JWRawPoint P(0, 0), Q(0, 0);
    return bench::contest(
        "distance " + set + " " + std::to_string(n),
        {{"jwcg",
          [&] { ours = JWGeometryNearest::shortestLineStringToLineString(&lineA, &lineB, &P, &Q); },
          [&] { return ours; }},
         {"geos", [&] { GEOSDistanceIndexed_r(geos(), geosA.get(), geosB.get(), &theirs); },
          [&] { return theirs; }}},
        1e-9, rounds);
}

}  // namespace

int main(int argc, char** argv) {
    const auto wanted = [&](const char* name) {
        return argc < 2 || std::find(argv + 1, argv + argc, std::string(name)) != argv + argc;
    };
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    bool agreed = true;
    for (int n : {10000, 100000}) {
        const int rounds = n > 10000 ? 5 : 11;
        if (wanted("lines")) agreed &= nearest(n, 10, rounds);
        if (wanted("points")) agreed &= nearest(n, 1, rounds);
        if (wanted("search")) agreed &= search(n, 10, rounds) & search(n, 1, rounds);
        if (!wanted("distance")) continue;
        for (const char* set : {"walk", "spiral"}) agreed &= distance(set, n, rounds);
    }
    return agreed ? 0 : 1;
}
