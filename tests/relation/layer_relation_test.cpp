// SPDX-License-Identifier: MIT
//
// Relations of layers against every pair one by one.
#include <gtest/gtest.h>

#include <cmath>

#include "jw_layerrelation.h"
#include "relation/random_geometries.h"
#include "support/layers.h"

namespace {

using namespace jws;
using namespace jwtest;

std::vector<Row> randomFeatures(int count, unsigned seed) {
    RandomGeometries random(seed, 3);
    std::vector<Row> rows;
    for (int i = 0; i < count; ++i) {
        auto geometry = random.nextWild();
        geometry->move(random.below(12), random.below(12));
        rows.push_back({10 + 3 * i, i % 17 == 5 ? "" : toWkt(*geometry), ""});
    }
    return rows;
}

std::string textOf(const JWRelatedPair& pair) {
    return std::to_string(pair.fidA) + " " + std::to_string(pair.fidB) + " " + pair.matrix.text() +
           "\n";
}

std::string relate(JWFeatureLayer& a, JWFeatureLayer& b, const JWLayerRelationOptions& options,
                   JWLayerReport* report = nullptr) {
    std::string text;
    const std::int64_t count = JWLayerRelation::relateLayers(
        &a, &b, options,
        [&](const JWRelatedPair& pair) {
            text += textOf(pair);
            return true;
        },
        report);
    EXPECT_EQ(count, std::count(text.begin(), text.end(), '\n'));
    return text;
}

/// The geometries of a list of rows; null where there is none.
std::vector<std::unique_ptr<JWGeometry>> geometriesOf(const std::vector<Row>& rows) {
    std::vector<std::unique_ptr<JWGeometry>> geometries;
    for (const Row& row : rows) geometries.push_back(row.wkt.empty() ? nullptr : fromWkt(row.wkt));
    return geometries;
}

std::string byEveryPair(const std::vector<Row>& a, const std::vector<Row>& b, const char* pattern) {
    const auto first = geometriesOf(a), second = geometriesOf(b);
    std::string text;
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) {
            if (!first[i] || !second[j]) continue;
            if (first[i]->getEnvelop().isDisjoin(second[j]->getEnvelop())) continue;
            JWRelatedPair pair{a[i].fid, b[j].fid, {}};
            relateGeometries(first[i].get(), second[j].get(), &pair.matrix);
            if (pair.matrix.matches(pattern)) text += textOf(pair);
        }
    }
    return text;
}

TEST(LayerRelation, TeamsAndBlocksGiveEveryPairInOrder) {
    const std::vector<Row> rowsA = randomFeatures(120, 1), rowsB = randomFeatures(80, 2);
    const LayerPtr a = layerOf("a", rowsA), b = layerOf("b", rowsB);
    const std::string all = byEveryPair(rowsA, rowsB, "*********");
    const std::string contained = byEveryPair(rowsA, rowsB, "T*****FF*");
    ASSERT_FALSE(contained.empty());
    for (const int blockSize : {0, 7, 4096}) {
        for (const int threads : {1, 3}) {
            JWLayerRelationOptions options;
            options.blockSize = blockSize;
            options.threads = threads;
            JWLayerReport report;
            EXPECT_EQ(relate(*a, *b, options, &report), all);
            EXPECT_EQ(report.pairs, std::count(all.begin(), all.end(), '\n'));
            EXPECT_TRUE(report.readA == 120 && report.readB == 80 && report.rejected.empty());
            EXPECT_TRUE(report.emptyA == 7 && report.emptyB == 5);
            options.pattern = "T*****FF*";
            EXPECT_EQ(relate(*a, *b, options), contained);
            options.pattern.clear();
            options.predicate = "contains";
            EXPECT_EQ(relate(*a, *b, options), contained);
        }
    }
    EXPECT_EQ(relate(*a, *a, {}), byEveryPair(rowsA, rowsA, "*********"));
}

TEST(LayerRelation, ListsWhatCannotBeComparedAndStops) {
    const LayerPtr a = layerOf("a", {{1, "POLYGON ((0 0, 9 0, 9 9, 0 0))", ""}});
    const LayerPtr b = layerOf("b", {{1, "POINT (3 1)", ""}, {2, "POINT (4 1)", ""}});
    JWFeature bad(b->getFieldsDefnPtr());
    bad.setGeometry(fromWkt("LINESTRING (0 0, 5 5, inf 5)").get());
    b->createFeature(&bad);
    JWLayerReport report;
    EXPECT_EQ(relate(*a, *b, {}, &report), "1 1 0F2FF1FF2\n1 2 0F2FF1FF2\n");
    ASSERT_EQ(report.rejected.size(), 1u);
    EXPECT_EQ(report.rejected[0].layer, "b");
    const auto stopAtOnce = [](const JWRelatedPair&) { return false; };
    EXPECT_EQ(JWLayerRelation::relateLayers(a.get(), b.get(), {}, stopAtOnce, &report), -1);
    EXPECT_TRUE(report.cancelled);
    EXPECT_EQ(JWReport::lastError().kind, JWErrorCancelled);
}

TEST(LayerRelation, WritesATableOrNothing) {
    const LayerPtr a = layerOf("a", {{1, "POLYGON ((0 0, 9 0, 9 9, 0 0))", ""}});
    const LayerPtr b = layerOf("b", {{7, "POINT (3 1)", ""}, {8, "POINT (9 9)", ""}});
    const LayerPtr output = emptyLayer("out");
    JWLayerReport report;
    EXPECT_EQ(JWLayerRelation::relateLayers(a.get(), b.get(), output.get(), {}, &report), 2);
    EXPECT_EQ(report.written, 2);
    EXPECT_EQ(contentOf(*output), (std::vector<std::string>{"-|1|7|contains covers|0F2FF1FF2",
                                                            "-|1|8|touches covers|FF20F1FF2"}));
    EXPECT_EQ(JWLayerRelation::relateLayers(a.get(), b.get(), output.get(), {}, nullptr), -3);

    const LayerPtr other = layerOf("c", {{1, "POINT (3 1)", ""}}, "name", "EPSG:4326");
    const LayerPtr empty = emptyLayer("empty");
    JWLayerRelationOptions unknown;
    unknown.predicate = "beside";
    const struct {
        JWFeatureLayer *a, *b;
        JWLayerRelationOptions options;
        int code;
    } rows[] = {{nullptr, b.get(), {}, -1},
                {a.get(), nullptr, {}, -1},
                {a.get(), other.get(), {}, -2},
                {a.get(), b.get(), unknown, -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(JWLayerRelation::relateLayers(row.a, row.b, empty.get(), row.options), row.code);
        const auto take = [](const JWRelatedPair&) { return true; };
        EXPECT_EQ(JWLayerRelation::relateLayers(row.a, row.b, row.options, take), row.code);
    }
    EXPECT_EQ(empty->getFieldsDefnPtr()->getFieldCount(), 0);
}

// The rectangle filter of layers stands in the other library, and must say the same.
TEST(LayerRelation, RectangleFiltersAgreeWithTheMatrix) {
    RandomGeometries random(3, 4);
    std::vector<Row> rows;
    for (int i = 0; i < 400; ++i) rows.push_back({i + 1, toWkt(*random.next()), ""});
    rows.push_back({401, "POLYGON ((1 1, 3 1, 3 2, 1 2, 1 1))", ""});
    const LayerPtr layer = layerOf("a", rows);
    const JWRing ring(std::vector<JWRawPoint>{{1, 1}, {3, 1}, {3, 2}, {1, 2}});
    const JWPolygon rectangle{JWRing(ring)};
    using Predicate = bool (JWRelationMatrix::*)() const;
    const std::pair<enumJWSpatialRelation, Predicate> tests[] = {
        {JWRelationEqual, &JWRelationMatrix::isEqual},
        {JWRelationDisjoint, &JWRelationMatrix::isDisjoint},
        {JWRelationContain, &JWRelationMatrix::isCovering},
        {JWRelationWithin, &JWRelationMatrix::isCoveredBy},
        {JWRelationOverlap, &JWRelationMatrix::isIntersecting},
    };
    for (const auto& [code, test] : tests) {
        std::vector<std::int64_t> expected, found;
        for (const Row& row : rows) {
            JWRelationMatrix matrix;
            relateGeometries(fromWkt(row.wkt).get(), &rectangle, &matrix);
            if ((matrix.*test)()) expected.push_back(row.fid);
        }
        JWFeatureClass features;
        layer->getFeaturesByEnvelopFilter(rectangle.getEnvelop(), code, features);
        for (int i = 0; i < features.getFeatureCount(); ++i)
            found.push_back(features.getFeatureAt(i)->getFID64());
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(found, expected) << "code " << code;
    }
}

}  // namespace
