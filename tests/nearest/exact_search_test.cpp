// SPDX-License-Identifier: MIT
//
// The exact search of the nearest features: small cases, and random layers of all kinds against
// measuring every pair with GEOS.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <string>

#include "jw_geometrynearest.h"
#include "support/geos_oracle.h"
#include "support/layers.h"

namespace {

using namespace jws;
using namespace jwtest;
using Nearest = JWGeometryNearest;

JWFeatureClass classOf(const std::vector<std::string>& geometries) {
    JWFeatureClass features;
    for (const std::string& wkt : geometries) {
        auto* feature = new JWFeature();
        feature->setFID(features.getFeatureCount() + 1);
        if (!wkt.empty()) feature->setGeometry(fromWkt(wkt).get());
        features.addFeature(feature);
    }
    return features;
}

/// "source-target distance (from, to); ...".
std::string describe(const std::vector<JWNearestPair>& pairs) {
    std::string text;
    for (const JWNearestPair& pair : pairs) {
        char row[200];
        std::snprintf(row, sizeof row, "%s%d-%d %.6g (%.6g %.6g, %.6g %.6g)",
                      text.empty() ? "" : "; ", pair.source, pair.target, pair.distance,
                      pair.fromPoint.x, pair.fromPoint.y, pair.toPoint.x, pair.toPoint.y);
        text += row;
    }
    return text;
}

struct Case {
    std::vector<std::string> sources, targets;
    int count;
    double most;
    const char* expected;
};

class ExactSearch : public testing::TestWithParam<Case> {};

TEST_P(ExactSearch, Features) {
    JWNearestOptions options;
    options.count = GetParam().count;
    options.maxDistance = GetParam().most;
    std::vector<JWNearestPair> pairs;
    const JWFeatureClass sources = classOf(GetParam().sources);
    const JWFeatureClass targets = classOf(GetParam().targets);
    Nearest::nearestFeatures(&sources, &targets, options, pairs);
    EXPECT_EQ(describe(pairs), GetParam().expected);
}

constexpr double kAny = HUGE_VAL;
const char* const kFrame = "POLYGON((0 0,10 0,10 10,0 10,0 0),(2 2,8 2,8 8,2 8,2 2))";

INSTANTIATE_TEST_SUITE_P(
    Cases, ExactSearch,
    testing::Values(
        Case{{"POINT(0 0)"},
             {"POINT(3 4)", "POINT(9 9)", "LINESTRING(-5 5,-5 -5)", "POINT(1 0)"},
             2,
             kAny,
             "0-3 1 (0 0, 1 0); 0-0 5 (0 0, 3 4); 0-2 5 (0 0, -5 0)"},
        Case{{"POINT(0 0)"},
             {"POINT(3 4)", "POINT(0 1)", "POINT(1 0)"},
             1,
             kAny,
             "0-1 1 (0 0, 0 1); 0-2 1 (0 0, 1 0)"},
        Case{
            {"POINT(0 0)", "POINT(50 50)"}, {"POINT(3 4)", "POINT(9 9)"}, 9, 5, "0-0 5 (0 0, 3 4)"},
        // The square of the established search would not see (9.01 8).
        Case{{"POINT(8 8)"},
             {"POINT(0 0)", "POINT(16 16)", "POINT(8.9 8.9)", "POINT(9.01 8)"},
             1,
             kAny,
             "0-3 1.01 (8 8, 9.01 8)"},
        // Crossings with horizontal segments count.
        Case{{"LINESTRING(0 0,10 0)"}, {"LINESTRING(4 -3,6 3)"}, 1, kAny, "0-0 0 (5 0, 5 0)"},
        Case{{"POINT(1 1)", "POINT(5 5)", "POINT(2 5)", "LINESTRING(4 4,5 5)"},
             {kFrame},
             1,
             kAny,
             "0-0 0 (1 1, 1 1); 1-0 3 (5 5, 5 2); 2-0 0 (2 5, 2 5); 3-0 2 (4 4, 4 2)"},
        Case{{kFrame},
             {"MULTIPOINT(5 5,1 1)", "LINESTRING(20 0,20 5)", "POLYGON((3 3,4 3,4 4,3 3))"},
             3,
             kAny,
             "0-0 0 (1 1, 1 1); 0-2 1 (3 2, 3 3); 0-1 10 (10 0, 20 0)"},
        Case{{"", "POINT(0 0)", "GEOMETRYCOLLECTION(POINT(1 1))"},
             {"", "POINT(0 0)"},
             1,
             kAny,
             "1-1 0 (0 0, 0 0); 2-1 1.41421 (1 1, 0 0)"},
        // Areas of a collection that overlap do not cancel.
        Case{{"POINT(4 4)", "GEOMETRYCOLLECTION(LINESTRING(20 0,20 5),POINT(5 5))"},
             {"GEOMETRYCOLLECTION(POLYGON((0 0,9 0,9 9,0 0)),POLYGON((0 0,9 0,9 9,0 9,0 "
              "0)),POINT(20 2))"},
             1,
             kAny,
             "0-0 0 (4 4, 4 4); 1-0 0 (5 5, 5 5)"},
        Case{{"POINT(0 0)"}, {}, 1, kAny, ""}));

std::string randomWkt(std::mt19937& random, double size) {
    std::uniform_real_distribution<double> place(0, 100), offset(-size, size);
    const double x = place(random), y = place(random);
    const auto at = [&] {
        return std::to_string(x + offset(random)) + " " + std::to_string(y + offset(random));
    };
    const auto list = [&](int n) {
        std::string line = at();
        for (int i = 1; i < n; ++i) line += "," + at();
        return line;
    };
    switch (random() % 5) {
        case 0:
            return "POINT(" + at() + ")";
        case 1:
            return "MULTIPOINT(" + list(3) + ")";
        case 2:
            return "LINESTRING(" + list(2 + static_cast<int>(random() % 50)) + ")";
        default: {
            std::string ring, first;
            const int corners = 3 + static_cast<int>(random() % 60);
            for (int i = 0; i < corners; ++i) {
                const double angle = 6.283185307179586 * i / corners;
                const double r = size * (1 + static_cast<double>(random() % 5));
                const std::string corner = std::to_string(x + r * std::cos(angle)) + " " +
                                           std::to_string(y + r * std::sin(angle));
                if (i == 0) first = corner;
                ring += corner + ",";
            }
            return "POLYGON((" + ring + first + "))";
        }
    }
}

double geosDistance(const std::string& a, const std::string& b) {
    const GeosPtr first(GEOSGeomFromWKT_r(geosContext(), a.c_str()));
    const GeosPtr second(GEOSGeomFromWKT_r(geosContext(), b.c_str()));
    double distance = -1;
    GEOSDistance_r(geosContext(), first.get(), second.get(), &distance);
    return distance;
}

TEST(ExactSearchClasses, RandomFeaturesEqualAllPairs) {
    std::mt19937 random(41);
    for (int round = 0; round < 12; ++round) {
        std::vector<std::string> a, b;
        for (int i = 0; i < 30; ++i) a.push_back(randomWkt(random, 4));
        for (int i = 0; i < 60; ++i) b.push_back(randomWkt(random, round % 2 == 0 ? 0.5 : 4));
        const JWFeatureClass sources = classOf(a), targets = classOf(b);
        JWNearestOptions options;
        options.count = 1 + round % 4;
        std::vector<JWNearestPair> pairs;
        Nearest::nearestFeatures(&sources, &targets, options, pairs);
        std::map<int, std::vector<double>> found;
        for (const JWNearestPair& pair : pairs) {
            found[pair.source].push_back(pair.distance);
            const double measured = geosDistance(a[static_cast<std::size_t>(pair.source)],
                                                 b[static_cast<std::size_t>(pair.target)]);
            EXPECT_NEAR(pair.distance, measured, 1e-9);
            EXPECT_NEAR(
                pair.distance,
                std::hypot(pair.fromPoint.x - pair.toPoint.x, pair.fromPoint.y - pair.toPoint.y),
                1e-12);
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            std::vector<double> all;
            for (const std::string& wkt : b) all.push_back(geosDistance(a[i], wkt));
            std::sort(all.begin(), all.end());
            const std::vector<double>& mine = found[static_cast<int>(i)];
            ASSERT_GE(mine.size(), static_cast<std::size_t>(options.count));
            const double last = all[static_cast<std::size_t>(options.count) - 1];
            EXPECT_NEAR(mine.back(), last, 1e-9);
            const auto within = std::upper_bound(all.begin(), all.end(), last + 1e-9);
            EXPECT_EQ(static_cast<std::ptrdiff_t>(mine.size()), within - all.begin());
        }
    }
}

/// A line that goes up and down across y, or with `upright` to and fro across x.
std::string zigzag(double x, double y, bool upright) {
    std::string wkt = "LINESTRING (";
    for (int i = 0; i < 12; ++i) {
        const double along = 0.3 * i, across = i % 2;
        wkt += (i > 0 ? ", " : "") + std::to_string(x + (upright ? across : along)) + " " +
               std::to_string(y + (upright ? along : across));
    }
    return wkt + ")";
}

// Of the crossings of two lines one is written, whatever was found for the source before.
TEST(ExactSearchLayers, CrossingsDoNotDependOnTeamsOrBlocks) {
    std::vector<Row> a, b;
    for (int i = 0; i < 200; ++i) {
        const double x = 1.7 * (i % 14), y = 1.9 * (i / 14);
        a.push_back({i, zigzag(x, y, false), ""});
        b.push_back({i, zigzag(x + 0.4, y - 0.8, true), ""});
    }
    LayerPtr source = layerOf("a", a), target = layerOf("b", b);
    std::vector<std::string> first;
    for (const auto& [threads, blockSize] : {std::pair(1, 0), {1, 1}, {1, 7}, {3, 0}, {8, 16}}) {
        JWNearestOptions options;
        options.count = 2;
        options.threads = threads;
        options.blockSize = blockSize;
        LayerPtr out = emptyLayer("out");
        EXPECT_GT(Nearest::nearestFeatures(source.get(), target.get(), out.get(), options, nullptr),
                  200);
        if (first.empty()) first = contentOf(*out);
        EXPECT_EQ(contentOf(*out), first) << threads << " " << blockSize;
    }
}

TEST(ExactSearchLayers, FieldsRanksAndTeams) {
    std::mt19937 random(6);
    std::vector<Row> a, b;
    for (int i = 0; i < 300; ++i) a.push_back({3 * i + 1, randomWkt(random, 2), ""});
    for (int i = 0; i < 200; ++i) b.push_back({2 * i + 5, randomWkt(random, 2), ""});
    LayerPtr source = layerOf("a", a), target = layerOf("b", b);
    std::vector<std::string> first;
    for (const int threads : {1, 8}) {
        JWNearestOptions options;
        options.count = 2;
        options.threads = threads;
        LayerPtr out = emptyLayer("out");
        JWLayerReport report;
        EXPECT_GE(Nearest::nearestFeatures(source.get(), target.get(), out.get(), options, &report),
                  600);
        EXPECT_EQ(report.readA, 300);
        EXPECT_EQ(report.readB, 200);
        EXPECT_EQ(fieldNames(*out->getFieldsDefnPtr()), "source_fid,target_fid,distance,rank");
        if (threads == 1) first = contentOf(*out);
        EXPECT_EQ(contentOf(*out), first);
    }
}

TEST(ExactSearchLayers, HugeCoordinatesAreRefused) {
    LayerPtr source = layerOf(
        "a", {{1, "LINESTRING(-1e200 0,1e200 0)", ""}, {2, "LINESTRING(-1e149 0,1e149 0)", ""}});
    LayerPtr target = layerOf("b", {{1, "LINESTRING(0 -1e149,0 1e149)", ""}});
    LayerPtr out = emptyLayer("out");
    JWLayerReport report;
    EXPECT_EQ(Nearest::nearestFeatures(source.get(), target.get(), out.get(), {}, &report), 1);
    EXPECT_EQ(contentOf(*out), (std::vector<std::string>{"LINESTRING (0 0, 0 0)|2|1|0|1"}));
    ASSERT_EQ(report.rejected.size(), 1u);
    EXPECT_EQ(report.rejected[0].fid, 1);
}

TEST(ExactSearchLayers, OneLayerAgainstItself) {
    LayerPtr layer = layerOf("a", {{4, "POINT(0 0)", ""}, {5, "POINT(1 0)", ""}});
    JWNearestOptions options;
    options.skipSameIdentifier = true;
    LayerPtr out = emptyLayer("out");
    EXPECT_EQ(Nearest::nearestFeatures(layer.get(), layer.get(), out.get(), options, nullptr), 2);
    EXPECT_EQ(contentOf(*out), (std::vector<std::string>{"LINESTRING (0 0, 1 0)|4|5|1|1",
                                                         "LINESTRING (1 0, 0 0)|5|4|1|1"}));
    options.count = 0;
    LayerPtr none = emptyLayer("none");
    EXPECT_EQ(Nearest::nearestFeatures(layer.get(), layer.get(), none.get(), options, nullptr), -1);
    EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument);
}

}  // namespace
