// SPDX-License-Identifier: MIT
//
// Simplification of coverages: with every method, however large the tolerance, no gap, no overlap,
// no polygon that vanishes, nothing on another side than before.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

#include "jw_geometrydissolve.h"
#include "jw_geometrysimplicify.h"
#include "support/layers.h"
#include "support/test_paths.h"

namespace jwtest {

using namespace jws;

namespace {

struct Method {
    const char* name;
    JWSimplifyOptions options;
};

/// All methods at a tolerance; the n-th point takes what corresponds.
std::vector<Method> methodsAt(double tolerance, int every) {
    const struct {
        const char* name;
        enumJWSimplifyMethod method;
        int count;
    } rows[] = {{"Douglas-Peucker", JWSimplifyDouglasPeucker, 0},
                {"Reumann-Witkam", JWSimplifyReumannWitkam, 0},
                {"Lang", JWSimplifyLang, 30},
                {"vertex reduction", JWSimplifyVertexReduction, 0},
                {"Opheim", JWSimplifyOpheim, 0},
                {"n-th point", JWSimplifyNthPoint, every},
                {"perpendicular distance", JWSimplifyPerpendicularDistance, 0}};
    std::vector<Method> methods;
    for (const auto& row : rows) {
        JWSimplifyOptions options;
        options.method = row.method;
        options.tolerance = tolerance;
        options.maximumTolerance = 1000 * tolerance;
        options.count = row.count;
        options.coverage = true;
        methods.push_back({row.name, options});
    }
    return methods;
}

LayerPtr simplified(JWFeatureLayer& input, const JWSimplifyOptions& options,
                    JWLayerReport* report = nullptr) {
    const SourcePtr memory(JWDataSource::createInMemory());
    LayerPtr output(memory->createLayer("out", JWWKBUnknown, input.getSpatialReference()));
    EXPECT_LE(0, JWGeometrySimplicify::simplifyLayer(&input, output.get(), options, report));
    return output;
}

/// What tells whether the polygons of a layer still fit together.
struct Fit {
    double area = 0, overlap = 0, united = 0;
    int unitedParts = 0, unitedRings = 0;
    int parts = 0, rings = 0, flat = 0;
};

void countRings(const JWPolygon& polygon, int& parts, int& rings, int& flat) {
    ++parts;
    rings += polygon.getRingCount();
    for (const JWRing& ring : polygon.getRingList()) flat += ring.getArea() == 0 ? 1 : 0;
}

void countRings(JWFeatureLayer& layer, int& parts, int& rings, int& flat) {
    JWFeatureClass features;
    layer.getFeaturesByPosition(0, layer.getFeatureCount(), features);
    for (int i = 0; i < features.getFeatureCount(); ++i) {
        const JWGeometry* geometry = features.getFeatureAt(i)->getGeometryPtr();
        if (geometry == nullptr) continue;
        if (geometry->getGeometryType() == JWGeometryPolygon) {
            countRings(static_cast<const JWPolygon&>(*geometry), parts, rings, flat);
            continue;
        }
        for (const JWPolygon& part : static_cast<const JWMultiPolygon&>(*geometry).getMemberList())
            countRings(part, parts, rings, flat);
    }
}

Fit fitOf(JWFeatureLayer& layer) {
    Fit fit;
    countRings(layer, fit.parts, fit.rings, fit.flat);
    JWDissolveOptions options;
    options.acrossClusters = options.multipart = true;
    const SourcePtr memory(JWDataSource::createInMemory());
    const LayerPtr united(memory->createLayer("united", JWWKBUnknown, layer.getSpatialReference()));
    const CapturedMessages silence;
    JWLayerReport report;
    EXPECT_LE(0,
              JWGeometryDissolve::dissolvePolygonLayer(&layer, united.get(), {}, options, &report));
    fit.area = report.areaA;
    fit.overlap = report.areaOverlap;
    fit.united = report.area;
    int flat = 0;
    countRings(*united, fit.unitedParts, fit.unitedRings, flat);
    return fit;
}

/// A coverage of n × n cells whose borders are random walks of many points, with an island polygon
/// in a hole of every fourth cell. Borders stay within the band around their straight course that
/// is theirs, so nothing crosses; bends reach far into bends of their neighbours.
std::vector<Row> raggedCells(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> wild(-0.45, 0.45);
    std::map<std::pair<int, int>, std::vector<JWRawPoint>> borders;
    const auto border = [&](int x, int y, bool vertical) -> const std::vector<JWRawPoint>& {
        std::vector<JWRawPoint>& points = borders[{2 * x + (vertical ? 1 : 0), y}];
        if (!points.empty()) return points;
        const int steps = 20;
        for (int k = 0; k <= steps; ++k) {
            const double t = static_cast<double>(k) / steps;
            const double reach = std::min(t, 1 - t);  // nothing at the corners
            const double off = wild(random) * reach;
            points.emplace_back(vertical ? x + off : x + t, vertical ? y + t : y + off);
        }
        return points;
    };
    const auto text = [](const std::vector<JWRawPoint>& points) {
        std::string list;
        char pair[64];
        for (const JWRawPoint& p : points) {
            std::snprintf(pair, sizeof pair, "%s%.17g %.17g", list.empty() ? "" : ",", p.x, p.y);
            list += pair;
        }
        return "(" + list + ")";
    };
    std::vector<Row> rows;
    for (int x = 0; x < n; ++x) {
        for (int y = 0; y < n; ++y) {
            std::vector<JWRawPoint> ring;
            const auto append = [&](const std::vector<JWRawPoint>& line, bool forward) {
                for (std::size_t k = 0; k + 1 < line.size(); ++k) {
                    ring.push_back(forward ? line[k] : line[line.size() - 1 - k]);
                }
            };
            append(border(x, y, false), true);
            append(border(x + 1, y, true), true);
            append(border(x, y + 1, false), false);
            append(border(x, y, true), false);
            ring.push_back(ring.front());
            std::string rings = text(ring);
            if ((x + y) % 4 == 0) {
                std::vector<JWRawPoint> island;
                for (int k = 0; k < 24; ++k) {
                    const double r = 0.04 + 0.08 * (k % 2), a = 0.2617993877991494 * k;
                    island.emplace_back(x + 0.5 + r * std::cos(a), y + 0.5 + r * std::sin(a));
                }
                island.push_back(island.front());
                rings += "," + text(island);
                rows.push_back({-1, "POLYGON(" + text(island) + ")", "island"});
            }
            rows.push_back({-1, "POLYGON(" + rings + ")", "cell"});
        }
    }
    return rows;
}

TEST(Coverage, NothingComesApartByAnyMethod) {
    const LayerPtr input = layerOf("cells", raggedCells(6, 11));
    const Fit before = fitOf(*input);
    ASSERT_NEAR(before.area, before.united, 1e-9);
    for (const double tolerance : {0.01, 0.1, 10.0}) {
        for (const Method& method : methodsAt(tolerance, tolerance < 1 ? 4 : 1000)) {
            SCOPED_TRACE(std::string(method.name) + " at " + std::to_string(tolerance));
            JWLayerReport report;
            const LayerPtr output = simplified(*input, method.options, &report);
            EXPECT_LE(report.vertices, report.verticesA);
            const Fit after = fitOf(*output);
            EXPECT_NEAR(0, after.overlap, 1e-12 * after.area);
            EXPECT_NEAR(after.area, after.united, 1e-12 * after.area);
            // No gap: a gap would be a hole of the union, or part it.
            EXPECT_EQ(1, after.unitedParts);
            EXPECT_EQ(1, after.unitedRings);
            EXPECT_EQ(before.parts, after.parts);
            EXPECT_EQ(before.rings, after.rings);
            EXPECT_EQ(0, after.flat);
        }
    }
}

TEST(Coverage, ThreadsTeamGivesTheSame) {
    const LayerPtr input = layerOf("cells", raggedCells(8, 3));
    for (Method& method : methodsAt(0.3, 7)) {
        SCOPED_TRACE(method.name);
        const LayerPtr plain = simplified(*input, method.options);
        method.options.threads = 4;
        method.options.blockSize = 10;
        EXPECT_EQ(contentOf(*plain), contentOf(*simplified(*input, method.options)));
    }
}

TEST(Coverage, ByHand) {
    const struct {
        const char* what;
        std::vector<Row> rows;
        double tolerance;
        std::vector<std::string> result;
    } cases[] = {
        {"a border that both have, with a vertex that only one has",
         {{-1, "POLYGON((0 0,5 0,5 1,5.1 2,5 3,5 5,0 5,0 0))", ""},
          {-1, "POLYGON((5 0,9 0,9 5,5 5,5 4,5 3,5.1 2,5 1,5 0))", ""}},
         0.2,
         {"POLYGON ((5 0, 5 5, 0 5, 0 0, 5 0))", "POLYGON ((5 0, 9 0, 9 5, 5 5, 5 0))"}},
        {"a bay is not cut off while an island is in it",
         {{-1, "POLYGON((0 0,4 0,4 3,6 3,6 0,10 0,10 9,0 9,0 0))", ""},
          {-1, "POLYGON((4.5 1,5.5 1,5 2,4.5 1))", ""}},
         4,
         {"POLYGON ((0 0, 4 3, 10 0, 10 9, 0 9, 0 0))", "POLYGON ((4.5 1, 5.5 1, 5 2, 4.5 1))"}},
        {"a thin polygon between two others stays open",
         {{-1, "POLYGON((0 0,8 0,4 -1,0 0))", ""}, {-1, "POLYGON((0 0,4 0.1,8 0,0 0))", ""}},
         5,
         {"POLYGON ((0 0, 8 0, 4 -1, 0 0))", "POLYGON ((0 0, 4 0.1, 8 0, 0 0))"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const LayerPtr input = layerOf("in", c.rows);
        const LayerPtr output = simplified(*input, methodsAt(c.tolerance, 0).front().options);
        std::vector<std::string> found;
        for (const std::string& feature : contentOf(*output)) {
            found.push_back(feature.substr(0, feature.find('|')));
        }
        EXPECT_EQ(c.result, found);
    }
}

TEST(Coverage, TakesWhatComes) {
    const LayerPtr input = layerOf("in", {{1, "", "none"},
                                          {2, "LINESTRING(0 0,1 1)", "line"},
                                          {3, "POLYGON((0 0,0 0,0 0,0 0))", "place"},
                                          {4, "POLYGON((0 0,4 4,8 8,0 0))", "flat"},
                                          {5, "POLYGON((0 0,4 4,4 0,0 4,0 0))", "crossing"},
                                          {6, "POLYGON((0 0,4 4,4 0,0 4,0 0))", "twin"}});
    for (const Method& method : methodsAt(0.5, 2)) {
        SCOPED_TRACE(method.name);
        JWLayerReport report;
        const LayerPtr output = simplified(*input, method.options, &report);
        EXPECT_EQ(5, output->getFeatureCount());
        ASSERT_EQ(1u, report.rejected.size());
        EXPECT_EQ(2, report.rejected[0].fid);
        const std::vector<std::string> content = contentOf(*output);
        EXPECT_EQ("-|none", content[0]);
        EXPECT_EQ(content[3].substr(0, content[3].find('|')),
                  content[4].substr(0, content[4].find('|')));
    }
}

TEST(Coverage, Counties) {
    JWDataSource* opened = JWDataSource::open(exampleData("us_counties.gpkg").c_str());
    ASSERT_NE(nullptr, opened);
    const SourcePtr source(opened);
    const LayerPtr input(source->openLayer(""));
    const Fit before = fitOf(*input);
    for (const Method& method : methodsAt(0.5, 50)) {
        SCOPED_TRACE(method.name);
        JWLayerReport report;
        const LayerPtr output = simplified(*input, method.options, &report);
        EXPECT_LT(report.vertices, report.verticesA * 2 / 3);
        EXPECT_TRUE(report.rejected.empty());
        const Fit after = fitOf(*output);
        // The counties overlap by 3e-5 square degrees as they come.
        EXPECT_GE(before.overlap, after.overlap);
        EXPECT_NEAR(after.area - after.overlap, after.united, 1e-12 * after.area);
        EXPECT_EQ(before.parts, after.parts);
        EXPECT_EQ(before.rings, after.rings);
        EXPECT_EQ(0, after.flat);
        EXPECT_EQ(before.unitedParts, after.unitedParts);
        EXPECT_GE(before.unitedRings, after.unitedRings);
    }
}

}  // namespace
}  // namespace jwtest
