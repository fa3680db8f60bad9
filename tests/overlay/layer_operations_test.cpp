// SPDX-License-Identifier: MIT
//
// The layer operations beside intersection, which has a file of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <map>
#include <set>

#include "jw_geometryoverlay2.h"
#include "support/geos_oracle.h"
#include "support/layers.h"

using namespace jws;
using namespace jwtest;
using O = JWGeometryOverlay2;

namespace {

using Operation = std::function<int(JWFeatureLayer*, JWFeatureLayer*, JWFeatureLayer*,
                                    const JWOverlayOptions&, JWLayerReport*)>;

/// The options form of an operation on two layers, or of one within a layer that passes B over.
template <int (*Form)(JWFeatureLayer*, JWFeatureLayer*, JWFeatureLayer*, const JWOverlayOptions&,
                      JWLayerReport*)>
Operation two() {
    return Form;
}
template <int (*Form)(JWFeatureLayer*, JWFeatureLayer*, const JWOverlayOptions&, JWLayerReport*)>
Operation one() {
    return [](JWFeatureLayer* a, JWFeatureLayer*, JWFeatureLayer* output,
              const JWOverlayOptions& options,
              JWLayerReport* report) { return Form(a, output, options, report); };
}

const std::map<std::string, Operation> operations = {
    {"intersect", two<&O::intersectPolygonLayers>()},
    {"erase", two<&O::erasePolygonLayer>()},
    {"grow", two<&O::unionPolygonLayers>()},
    {"union", two<&O::unionPolygonLayers2>()},
    {"identity", two<&O::identityPolygonLayers>()},
    {"symdiff", two<&O::symmetricalDifferencePolygonLayers>()},
    {"update", two<&O::updatePolygonLayer>()},
    {"join", two<&O::spatialJoinPolygonLayers>()},
    {"grow within", one<&O::unionPolygonsInSameLayer>()},
    {"partition within", one<&O::unionPolygonsInSameLayer2>()},
    {"overlap within", one<&O::intersectPolygonsInSameLayer>()},
    {"overlaps within", one<&O::intersectPolygonsInSameLayer2>()},
};

class LayerOperations : public testing::Test {
  protected:
    /// Runs an operation with its areas checked; returns what it wrote.
    std::vector<std::string> run(const std::string& operation, JWFeatureLayer& a, JWFeatureLayer& b,
                                 JWOverlayOptions options = {}) {
        options.checkAreas = true;
        output = emptyLayer("out");
        count = operations.at(operation)(&a, &b, output.get(), options, &report);
        EXPECT_EQ(report.checked, operation != "join");  // which changes no area
        EXPECT_EQ(report.warning, "") << operation;
        return contentOf(*output);
    }

    /// The same as area and attributes, "50|A1|B1".
    std::vector<std::string> areas(const std::string& operation, JWFeatureLayer& a,
                                   JWFeatureLayer& b, const JWOverlayOptions& options = {}) {
        std::vector<std::string> rows;
        for (const std::string& text : run(operation, a, b, options)) {
            const std::size_t bar = text.find('|');
            char area[32];
            std::snprintf(area, sizeof area, "%g",
                          geosArea(toGeos(fromWkt(text.substr(0, bar).c_str()).get()).get()));
            rows.push_back(area + text.substr(bar));
        }
        return rows;
    }

    CapturedMessages messages;
    LayerPtr output;
    JWLayerReport report;
    int count = 0;
};

using Rows = std::vector<std::string>;

TEST_F(LayerOperations, WhatEachMakesOfOverlappingLayers) {
    // A1 and A2 overlap in 5..10; B1 covers 8..12 of both, B2 half of A2 and land of its own; A3
    // and B3 meet nobody.
    LayerPtr a = layerOf("a", {{1, box(0, 0, 10, 10), "A1"},
                               {2, box(5, 0, 15, 10), "A2"},
                               {3, box(100, 0, 101, 1), "A3"}});
    LayerPtr b = layerOf("b", {{1, box(8, 0, 12, 10), "B1"},
                               {2, box(10, 5, 20, 15), "B2"},
                               {3, box(200, 0, 201, 1), "B3"}});
    JWOverlayOptions merged, matched, pairs;
    merged.keepBorders = false;
    matched.keepUnmatched = false;
    pairs.rowPerPair = true;
    const struct {
        const char* operation;
        JWOverlayOptions options;
        Rows rows;
    } table[] = {
        {"intersect", {}, {"20|A1|B1", "40|A2|B1", "25|A2|B2"}},
        {"erase", {}, {"80|A1", "45|A2", "1|A3"}},
        {"identity", {}, {"20|A1|B1", "80|A1|-", "40|A2|B1", "25|A2|B2", "45|A2|-", "1|A3|-"}},
        {"union",
         {},
         {"20|A1|B1", "80|A1|-", "40|A2|B1", "25|A2|B2", "45|A2|-", "1|A3|-", "75|-|B2", "1|-|B3"}},
        {"symdiff", {}, {"80|A1|-", "45|A2|-", "1|A3|-", "75|-|B2", "1|-|B3"}},
        {"update", {}, {"80|A1|-", "45|A2|-", "1|A3|-", "40|-|B1", "100|-|B2", "1|-|B3"}},
        // B1 takes 0..8 from A1 and, once more, 5..8 and 12..15 from A2
        {"update", merged, {"1|A3|-", "135|-|B1", "100|-|B2", "1|-|B3"}},
        {"join", {}, {"100|A1|B1|1", "100|A2|B1|2", "1|A3|-|0"}},
        {"join", matched, {"100|A1|B1|1", "100|A2|B1|2"}},
        {"join", pairs, {"100|A1|B1|1", "100|A2|B1|2", "100|A2|B2|2", "1|A3|-|0"}},
        {"grow", {}, {"225|A1|B1", "1|A3|-", "1|-|B3"}},
        {"grow within", {}, {"150|A1", "1|A3"}},
        {"overlap within", {}, {"50|A1"}},
        {"partition within", {}, {"50|A1|-", "50|A1|A2", "50|A2|-", "1|A3|-"}},
        {"overlaps within", {}, {"50|A1|A2"}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(areas(row.operation, *a, *b, row.options), row.rows) << row.operation;
        EXPECT_EQ(count, static_cast<int>(row.rows.size())) << row.operation;
        EXPECT_EQ(report.readA, 3) << row.operation;
        EXPECT_DOUBLE_EQ(report.areaA, 201) << row.operation;
    }
}

TEST_F(LayerOperations, OverlapsBelowTheToleranceTakeNothing) {
    LayerPtr a = layerOf("a", {{1, box(0, 0, 10, 10), "A1"}});
    LayerPtr sliver = layerOf("b", {{1, box(4, 4, 4.5, 5), "B1"}});
    LayerPtr both = layerOf("b", {{1, box(4, 4, 4.5, 5), "B1"}, {2, box(9, 0, 12, 10), "B2"}});
    JWOverlayOptions options;
    options.tolerance = 1;
    EXPECT_EQ(areas("identity", *a, *sliver, options), (Rows{"100|A1|-"}));
    EXPECT_EQ(areas("identity", *a, *both, options), (Rows{"10|A1|B2", "90|A1|-"}));
    EXPECT_EQ(areas("union", *a, *both, options), (Rows{"10|A1|B2", "90|A1|-", "20|-|B2"}));
    EXPECT_EQ(report.areaDropped, 0);
    LayerPtr one = layerOf("c", {{1, box(0, 0, 10, 10), "1"},
                                 {2, box(9.95, 0, 20, 10), "2"},
                                 {3, box(0, 0, 2, 10), "3"},
                                 {4, box(4, 4, 4.5, 5), "4"}});
    EXPECT_EQ(areas("partition within", *one, *one, options),
              (Rows{"80|1|-", "20|1|3", "100|2|-"}));
    EXPECT_EQ(report.areaDropped, 0);
    EXPECT_EQ(areas("overlaps within", *one, *one, options), (Rows{"20|1|3"}));
    EXPECT_NEAR(report.areaDropped, 1, 1e-12);
}

TEST_F(LayerOperations, WithinALayer) {
    const auto square = [](double x, double y) { return box(x, y, x + 10, y + 10); };
    const struct {
        const char* name;
        std::vector<Row> layer;
        Rows grown, pieces;
    } table[] = {
        {"a row, each overlapping the next",
         {{-1, square(0, 0), "1"}, {-1, square(16, 0), "3"}, {-1, square(8, 0), "2"}},
         {"260|1"},
         {"80|1|-", "20|1|2", "80|3|-", "20|3|2", "60|2|-"}},
        {"touching",
         {{-1, square(0, 0), "1"}, {-1, square(10, 0), "2"}},
         {"100|1", "100|2"},
         {"100|1|-", "100|2|-"}},
        {"threefold",
         {{-1, square(0, 0), "1"}, {-1, square(5, 0), "2"}, {-1, square(2, 5), "3"}},
         {"200|1"},
         {"35|1|-", "25|1|2", "25|1|2", "15|1|3", "40|2|-", "10|2|3", "50|3|-"}},
        {"one on the other",
         {{-1, square(0, 0), "1"}, {-1, square(0, 0), "2"}, {-1, square(0, 0), "3"}},
         {"100|1"},
         {"100|1|2"}},
        {"inside, and in a hole",
         {{-1, "POLYGON((0 0,10 0,10 10,0 10,0 0),(4 4,6 4,6 6,4 6,4 4))", "1"},
          {-1, box(4, 4, 6, 6), "2"},
          {-1, box(1, 1, 2, 2), "3"}},
         {"96|1", "4|2"},
         {"95|1|-", "1|1|3", "4|2|-"}},
        {"one alone", {{-1, square(0, 0), "1"}}, {"100|1"}, {"100|1|-"}},
        {"nobody", {}, {}, {}},
    };
    for (const auto& row : table) {
        LayerPtr layer = layerOf("layer", row.layer);
        EXPECT_EQ(areas("grow within", *layer, *layer), row.grown) << row.name;
        EXPECT_EQ(areas("partition within", *layer, *layer), row.pieces) << row.name;
    }
}

// In the order of the layer: what a region of several features overlaps truly comes to it, even if
// none of them does by itself.
TEST_F(LayerOperations, RegionsGrowAgainstTheTolerance) {
    const struct {
        const char* name;
        double tolerance;
        std::vector<Row> layer;
        Rows grown;
    } table[] = {
        {"two small overlaps make a large one",
         8,
         {{-1, box(0, 0, 10, 10), "1"}, {-1, box(0, 8, 10, 18), "2"}, {-1, box(9, 5, 20, 14), "3"}},
         {"270|1"}},
        {"which takes its own region along, and what that reaches",
         8,
         {{-1, box(0, 0, 10, 10), "1"},
          {-1, box(15, 10, 25, 20), "5"},
          {-1, box(0, 8, 10, 18), "2"},
          {-1, box(19, 7, 40, 11), "6"},
          {-1, box(9, 5, 20, 14), "3"}},
         {"425|1"}},
        {"not when nothing of the region is large enough",
         10,
         {{-1, box(0, 0, 10, 10), "1"}, {-1, box(0, 8, 10, 18), "2"}, {-1, box(9, 5, 20, 14), "3"}},
         {"180|1", "99|3"}},
        {"a hole below the tolerance belongs to the region",
         8,
         {{-1, "POLYGON((0 0,20 0,20 9,8 9,8 11,20 11,20 20,0 20,0 0))", "1"},
          {-1, box(11, 0, 20, 20), "2"},
          {-1, box(7, 8.5, 11, 11.5), "3"}},
         {"400|1"}},
    };
    for (const auto& row : table) {
        LayerPtr layer = layerOf("layer", row.layer);
        JWOverlayOptions options;
        options.tolerance = row.tolerance;
        EXPECT_EQ(areas("grow within", *layer, *layer, options), row.grown) << row.name;
    }
}

TEST_F(LayerOperations, AreasAddUpWhereFeaturesCrossThemselvesAndOneAnother) {
    const auto bow = [](double x, double y, const char* name) {
        const auto at = [](double px, double py) {
            return std::to_string(px) + " " + std::to_string(py);
        };
        return Row{-1,
                   "POLYGON((" + at(x, y) + "," + at(x + 10.3, y + 7.7) + "," + at(x + 10.3, y) +
                       "," + at(x, y + 7.7) + "," + at(x, y) + "))",
                   name};
    };
    std::vector<Row> a, b;
    for (int i = 0; i < 40; ++i) {
        a.push_back(bow(5e6 + 1.7 * i, 4e6 + 0.9 * (i % 7), "a"));
        b.push_back(bow(5e6 + 2.3 * i, 4e6 + 1.1 * (i % 5), "b"));
    }
    LayerPtr layerA = layerOf("a", a), layerB = layerOf("b", b);
    JWOverlayOptions options;
    options.keepBorders = false;
    for (const auto& entry : operations) {
        run(entry.first, *layerA, *layerB, options);
        EXPECT_LE(report.residual, 1e-10 * report.areaA) << entry.first;
    }
}

TEST_F(LayerOperations, ALayerWithItself) {
    LayerPtr a = layerOf("a", {{1, box(0, 0, 2, 1), "1"}, {2, box(1, 0, 3, 1), "2"}});
    const Rows common = {"2|1|1", "1|1|2", "1|2|1", "2|2|2"};
    EXPECT_EQ(areas("union", *a, *a), common);
    EXPECT_EQ(areas("symdiff", *a, *a), Rows());
    EXPECT_EQ(areas("grow", *a, *a), Rows{"3|1|1"});
}

TEST_F(LayerOperations, ManyFeaturesOnTopOfOneAnother) {
    LayerPtr layer = layerOf("pile", std::vector<Row>(300, {-1, box(0, 0, 1, 1), "x"}));
    EXPECT_EQ(areas("partition within", *layer, *layer), (Rows{"1|x|x"}));
    EXPECT_EQ(areas("grow within", *layer, *layer), (Rows{"1|x"}));
}

TEST_F(LayerOperations, FieldsByModePrefixAndOperation) {
    LayerPtr a = layerOf("towns", {{7, box(0, 0, 2, 2), "A"}});
    LayerPtr b = layerOf("zones", {{9, box(1, 0, 3, 2), "B"}}, "NAME");
    JWOverlayOptions options;
    options.prefixA = "a_";
    options.areaField = "size";
    const struct {
        const char* operation;
        int mode;
        const char* fields;
        std::size_t row;
        const char* values;
    } table[] = {
        {"union", 0, "a_name,NAME,size", 2, "|-|B|2"},
        {"union", 1, "FID_towns,FID_zones,size", 1, "|7|-|2"},
        {"symdiff", 2, "FID_towns,FID_zones,a_name,NAME,size", 1, "|-|9|-|B|2"},
        {"erase", 1, "name,size", 0, "|A|2"},
        {"join", 1, "FID_towns,FID_zones,join_count,size", 0, "|7|9|1|4"},
        {"partition within", 2, "FID_towns,FID_towns_1,a_name,name,size", 0, "|7|-|A|-|4"},
        {"overlap within", 1, "name,size", 1, ""},
    };
    for (const auto& row : table) {
        options.attributeMode = row.mode;
        const auto content = run(row.operation, *a, *b, options);
        EXPECT_EQ(fieldNames(*output->getFieldsDefnPtr()), row.fields) << row.operation;
        if (row.row >= content.size()) continue;
        EXPECT_EQ(content[row.row].substr(content[row.row].find('|')), row.values);
    }
}

TEST_F(LayerOperations, PartsBecomeFeaturesOfTheirOwn) {
    LayerPtr a = layerOf("a", {{1, box(0, 0, 9, 1), "A"}});
    LayerPtr b = layerOf("b", {{1, box(2, -1, 3, 2), "B"}, {2, box(5, -1, 7, 2), "C"}});
    EXPECT_EQ(areas("erase", *a, *b), (Rows{"6|A"}));
    JWOverlayOptions options;
    options.multipart = false;
    EXPECT_EQ(areas("erase", *a, *b, options), (Rows{"2|A", "2|A", "2|A"}));
    options.tolerance = 1.5;
    EXPECT_EQ(areas("identity", *a, *b, options), (Rows{"2|A|C", "2|A|-", "5|A|-"}));
    EXPECT_EQ(report.areaDropped, 0);
    // What is dropped is accounted for.
    EXPECT_EQ(areas("intersect", *a, *b, options), (Rows{"2|A|C"}));
    EXPECT_DOUBLE_EQ(report.areaDropped, 1);
}

// What nobody meets is copied: parts of what it encloses, with its area, checked or not.
TEST_F(LayerOperations, PartsAndAreasOfCopiesAreThoseOfTheEvenOddRule) {
    const std::string overlapping =
        "MULTIPOLYGON(((0 0,10 0,10 10,0 10,0 0)),((5 0,15 0,15 10,5 10,5 0)))";
    LayerPtr a =
        layerOf("a", {{1, overlapping, "A"}, {2, "POLYGON((20 0,30 10,30 0,20 10,20 0))", "X"}});
    LayerPtr b = layerOf("b", {{1, box(100, 0, 101, 1), "B"}});
    JWOverlayOptions options;
    options.areaField = "size";
    for (const char* operation : {"erase", "identity", "union", "symdiff", "update", "grow", "join",
                                  "grow within", "partition within"}) {
        for (const bool multipart : {true, false}) {
            options.multipart = multipart;
            const Rows checked = run(operation, *a, *b, options);
            ASSERT_GE(checked.size(), multipart ? 2u : 3u) << operation;
            for (std::size_t i = 0; i < (multipart ? 2u : 3u); ++i) {
                const std::string size = checked[i].substr(checked[i].rfind('|'));
                EXPECT_EQ(size, multipart && i == 0 ? "|100" : "|50") << operation;
            }
            LayerPtr unchecked = emptyLayer("unchecked");
            operations.at(operation)(a.get(), b.get(), unchecked.get(), options, &report);
            EXPECT_EQ(contentOf(*unchecked), checked) << operation;
        }
    }
}

TEST_F(LayerOperations, EveryRowOfAJoinHasAllPartsOfTheFeature) {
    LayerPtr a = layerOf(
        "a", {{1, "MULTIPOLYGON(((0 0,10 0,10 10,0 10,0 0)),((5 0,15 0,15 10,5 10,5 0)))", "A"},
              {2, "MULTIPOLYGON(((0 20,10 20,10 30,0 30,0 20)))", "M"}});
    LayerPtr b = layerOf(
        "b", {{1, box(0, 0, 2, 2), "B"}, {2, box(1, 1, 3, 40), "C"}, {3, box(11, 0, 12, 1), "D"}});
    JWOverlayOptions options;
    options.rowPerPair = true;
    options.multipart = false;
    EXPECT_EQ(areas("join", *a, *b, options), (Rows{"50|A|B|3", "50|A|B|3", "50|A|C|3", "50|A|C|3",
                                                    "50|A|D|3", "50|A|D|3", "100|M|C|1"}));
    for (const std::string& row : run("join", *a, *b, options)) {
        EXPECT_EQ(row.substr(0, 7), "POLYGON") << row;
    }
}

TEST_F(LayerOperations, ChecksInTheOrderMissingThenFieldsThenReferences) {
    LayerPtr a = layerOf("a", {}, "name", "EPSG:4326"), b = layerOf("b", {}, "name", "EPSG:32633");
    LayerPtr withFields = layerOf("out", {}), empty = emptyLayer("out");
    for (const auto& [name, operation] : operations) {
        const bool within = name.find("within") != std::string::npos;
        const JWOverlayOptions options;
        EXPECT_EQ(operation(nullptr, b.get(), withFields.get(), options, nullptr), -1) << name;
        EXPECT_EQ(operation(a.get(), b.get(), nullptr, options, nullptr), -1) << name;
        EXPECT_EQ(operation(a.get(), b.get(), a.get(), options, nullptr), -1) << name;
        EXPECT_EQ(operation(a.get(), b.get(), withFields.get(), options, nullptr), -3) << name;
        if (within) continue;
        EXPECT_EQ(operation(a.get(), b.get(), empty.get(), options, nullptr), -2) << name;
    }
}

TEST_F(LayerOperations, Announce) {
    LayerPtr a = layerOf("a", randomRows(3, 1)), b = layerOf("b", randomRows(3, 2));
    const struct {
        const char* operation;
        std::vector<const char*> texts;
    } table[] = {
        {"erase",
         {"block 0->input layer block 0 where:fid >= 1 and fid <= 4\n\nNO.:1 in 3\n"
          "i=0 search count:0\n0->1 in 3\nNO.:2 in 3\n",
          "2->1 in 3\nblock 0 wrote 3 features to result layer!\n"}},
        {"identity",
         {"do identity in group 1\n",
          "group 0 checking results 2 in 2\ngroup 0 writted 2 features to result layer!\n"}},
        {"symdiff",
         {"do symmetrical difference in group 0\n", "group 1 doing step ONE...\n",
          "group 1 doing step TWO...\n", "group 1 checking results 1 in 1\n"}},
        {"union",
         {"group 0 doing erase step TWO...\n", "6 features wrote to result layer!\n",
          "group 1 writted 1 features to result layer\n"}},
        {"update",
         {"3 input features wrote to result layer!\n"
          "3 original input features wrote to result layer!\n"}},
        {"grow",
         {"looping un-compared feature count:0\n",
          "4 original input features wrote to result layer!\n"}},
        {"grow within", {"Seed:0->Seed:1->block 0 wrote 2"}},
    };
    JWOverlayOptions options;
    for (const auto& row : table) {
        options.blockSize = std::string(row.operation) == "erase" ? 0 : 2;
        options.threads = 1 + options.blockSize;
        run(row.operation, *a, *b, options);
        for (const char* text : row.texts) {
            EXPECT_NE(messages.text().find(text), std::string::npos) << text << messages.text();
        }
    }
}

TEST_F(LayerOperations, AnnounceWhatGrowsTogether) {
    LayerPtr layer = layerOf(
        "row", {{-1, box(0, 0, 2, 1), ""}, {-1, box(5, 0, 6, 1), ""}, {-1, box(1, 0, 3, 1), ""}});
    run("grow within", *layer, *layer);
    EXPECT_NE(messages.text().find("Seed:0->seedsi:0->2 in 3\ni=0 union index=2\nunion:1 in 3\n"
                                   "Seed:1->block 0 wrote 2"),
              std::string::npos)
        << messages.text();
    EXPECT_EQ(messages.text().find("block 0->"), messages.text().rfind("block 0->"));
    EXPECT_EQ(messages.text().find("wrote 0 features"), std::string::npos);
    EXPECT_EQ(report.pairs, 1);
    run("partition within", *layer, *layer);
    EXPECT_EQ(report.pairs, 1);
    EXPECT_NE(messages.text().find("Seed:0->seedsi:0->2 in 3\ni=0 union index=2\nunion:1 in 3\n"
                                   "Seed:1->Seed:2->seedsi:2->2 in 3\ni=2 union index=0\n"
                                   "union:1 in 3\nblock 0 wrote 4"),
              std::string::npos)
        << messages.text();
    run("overlap within", *layer, *layer);
    EXPECT_NE(messages.text().find("\nunion:1 in 3\nblock 0 wrote 1"), std::string::npos)
        << messages.text();
    const std::size_t before = messages.text().size();
    JWReport::setMessagesOn(false);
    run("grow within", *layer, *layer);
    JWReport::setMessagesOn(true);
    EXPECT_EQ(messages.text().size(), before);
}

// Combs whose teeth cross: one clip that takes much longer than the callback lets it. It is called
// a few times for each feature, and then only from within the clip.
TEST_F(LayerOperations, StoppingALongClipOnAThreadTeamToo) {
    const auto comb = [](bool upright) {
        constexpr int teeth = 1500;
        std::string ring;
        const auto add = [&](double along, double across) {
            ring += std::to_string(upright ? across : along) + " " +
                    std::to_string(upright ? along : across) + ",";
        };
        for (int i = 0; i < teeth; ++i) {
            add(-1, i);
            add(teeth, i + 0.013 * (i % 7));
            add(teeth, i + 0.5);
            add(-1, i + 0.5);
        }
        add(-2, teeth);
        add(-2, 0);
        return "POLYGON((" + ring + (upright ? "0 -1" : "-1 0") + "))";
    };
    LayerPtr a = layerOf("a", {{1, comb(false), "a"}}), b = layerOf("b", {{1, comb(true), "b"}});
    for (const char* operation : {"intersect", "union", "grow", "update"}) {
        for (const int threads : {1, 2}) {
            static int calls;
            calls = 0;
            JWReport::setProgress([](std::int64_t, std::int64_t, void*) { return ++calls < 6; },
                                  nullptr);
            JWOverlayOptions options;
            options.threads = threads;
            options.keepBorders = false;
            LayerPtr result = emptyLayer("out");
            EXPECT_EQ(operations.at(operation)(a.get(), b.get(), result.get(), options, &report),
                      -1)
                << operation;
            JWReport::setProgress(nullptr, nullptr);
            EXPECT_TRUE(report.cancelled);
            EXPECT_EQ(JWReport::lastError().kind, JWErrorCancelled);
            EXPECT_TRUE(report.rejected.empty());
        }
    }
}

TEST_F(LayerOperations, WhatCannotBeProcessedIsListedOnce) {
    LayerPtr a = layerOf("a", {{1, "", "none"},
                               {2, "POINT(1 1)", "point"},
                               {3, box(0, 0, 2, 2), "good"},
                               {4, "POLYGON((0 0,1 0,nan 1,0 0))", "?"}});
    LayerPtr b = layerOf("b", {{5, "LINESTRING(0 0,1 1)", "line"}, {6, box(1, 0, 3, 2), "good"}});
    for (const auto& [name, operation] : operations) {
        run(name, *a, *b);
        EXPECT_EQ(report.emptyA, 1) << name;
        EXPECT_EQ(report.writtenEmpty, name == "join" ? 1 : 0) << name;
        std::set<std::string> listed;
        for (const auto& r : report.rejected) listed.insert(r.layer + std::to_string(r.fid));
        std::set<std::string> expected = {"a2", "a4"};
        if (name.find("within") == std::string::npos) expected.insert("b5");
        EXPECT_EQ(listed, expected) << name;
        EXPECT_EQ(report.rejected.size(), expected.size()) << name;
    }
}

TEST_F(LayerOperations, StoppingInTheSecondPassLeavesNothingBehind) {
    LayerPtr a = layerOf("a", randomRows(20, 8)), b = layerOf("b", randomRows(90, 9));
    LayerPtr result = emptyLayer("out");
    JWReport::setProgress([](std::int64_t done, std::int64_t, void*) { return done < 60; },
                          nullptr);
    JWOverlayOptions options;
    options.blockSize = 10;
    EXPECT_EQ(O::unionPolygonLayers2(a.get(), b.get(), result.get(), options, &report), -1);
    JWReport::setProgress(nullptr, nullptr);
    EXPECT_TRUE(report.cancelled);
    EXPECT_EQ(report.written, 0);
    EXPECT_EQ(result->getFeatureCount(), 0);
}

// --- Beside GEOS ---------------------------------------------------------------------------------

GeosPtr unionOf(const std::vector<GeosPtr>& parts) {
    GeosPtr all(GEOSGeom_createEmptyPolygon_r(geosContext()));
    for (const GeosPtr& part : parts) {
        all.reset(GEOSUnion_r(geosContext(), all.get(), part.get()));
    }
    return all;
}

double differenceArea(const GEOSGeometry* a, const GEOSGeometry* b) {
    return geosArea(GeosPtr(GEOSDifference_r(geosContext(), a, b)).get());
}

double commonArea(const GEOSGeometry* a, const GEOSGeometry* b) {
    return geosArea(GeosPtr(GEOSIntersection_r(geosContext(), a, b)).get());
}

/// A layer as GEOS sees it, and figures of it.
struct Judge {
    std::vector<GeosPtr> features;
    GeosPtr all;

    explicit Judge(const std::vector<Row>& rows) {
        for (const Row& row : rows) features.push_back(toGeos(fromWkt(row.wkt.c_str()).get()));
        all = unionOf(features);
    }

    /// Features and their area outside of another layer.
    std::pair<int, double> outside(const Judge& other) const {
        std::pair<int, double> sum(0, 0);
        for (const GeosPtr& feature : features) {
            const double area = differenceArea(feature.get(), other.all.get());
            sum.first += area > 0 ? 1 : 0;
            sum.second += area;
        }
        return sum;
    }

    /// Pairs with features of another layer, or of this behind each, and their common area.
    std::pair<int, double> common(const Judge& other) const {
        std::pair<int, double> sum(0, 0);
        for (std::size_t i = 0; i < features.size(); ++i) {
            for (std::size_t k = &other == this ? i + 1 : 0; k < other.features.size(); ++k) {
                const double area = commonArea(features[i].get(), other.features[k].get());
                sum.first += area > 1e-12 ? 1 : 0;
                sum.second += area;
            }
        }
        return sum;
    }

    /// For every set of features that have land of their own together: how many features it has.
    std::vector<std::size_t> sets() const {
        GEOSContextHandle_t h = geosContext();
        GeosPtr lines(GEOSGeom_createEmptyCollection_r(h, GEOS_GEOMETRYCOLLECTION));
        for (const GeosPtr& feature : features) {
            const GeosPtr border(GEOSBoundary_r(h, feature.get()));
            lines.reset(GEOSUnion_r(h, lines.get(), border.get()));
        }
        const GEOSGeometry* noded = lines.get();
        const GeosPtr faces(GEOSPolygonize_r(h, &noded, 1));
        std::set<std::vector<std::size_t>> found;
        for (int i = 0; i < GEOSGetNumGeometries_r(h, faces.get()); ++i) {
            const GeosPtr point(GEOSPointOnSurface_r(h, GEOSGetGeometryN_r(h, faces.get(), i)));
            std::vector<std::size_t> covering;
            for (std::size_t k = 0; k < features.size(); ++k) {
                if (GEOSContains_r(h, features[k].get(), point.get()) == 1) covering.push_back(k);
            }
            if (!covering.empty()) found.insert(covering);
        }
        std::vector<std::size_t> sizes;
        for (const auto& set : found) sizes.push_back(set.size());
        return sizes;
    }

    /// Groups of features that overlap.
    int clusters() const {
        std::vector<std::size_t> group(features.size());
        for (std::size_t i = 0; i < group.size(); ++i) group[i] = i;
        for (std::size_t i = 0; i < group.size(); ++i) {
            for (std::size_t k = 0; k < i; ++k) {
                if (commonArea(features[i].get(), features[k].get()) < 1e-12) continue;
                std::replace(group.begin(), group.end(), std::size_t(group[i]),
                             std::size_t(group[k]));
            }
        }
        return static_cast<int>(std::set<std::size_t>(group.begin(), group.end()).size());
    }
};

TEST_F(LayerOperations, AreasAndCountsAsGeosHasThem) {
    for (const unsigned seed : {3u, 4u, 5u}) {
        const auto rowsA = randomRows(45, seed), rowsB = randomRows(55, seed + 100);
        auto both = rowsA;
        both.insert(both.end(), rowsB.begin(), rowsB.end());
        LayerPtr a = layerOf("a", rowsA), b = layerOf("b", rowsB);
        const Judge judgeA(rowsA), judgeB(rowsB), judge(both);
        const auto common = judgeA.common(judgeB), ofA = judgeA.outside(judgeB),
                   ofB = judgeB.outside(judgeA);
        const auto sets = judgeA.sets();
        const auto shared = std::count_if(sets.begin(), sets.end(), [](auto n) { return n > 1; });
        double areaB = 0;
        for (const GeosPtr& feature : judgeB.features) areaB += geosArea(feature.get());
        const double single = [&] {
            double area = 0;
            for (std::size_t i = 0; i < judgeA.features.size(); ++i) {
                GeosPtr rest(GEOSGeom_clone_r(geosContext(), judgeA.features[i].get()));
                for (std::size_t k = 0; k < judgeA.features.size(); ++k) {
                    if (i == k) continue;
                    rest.reset(
                        GEOSDifference_r(geosContext(), rest.get(), judgeA.features[k].get()));
                }
                area += geosArea(rest.get());
            }
            return area;
        }();
        const double areaOfA = geosArea(judgeA.all.get());
        const struct {
            const char* operation;
            int count;
            double area;
        } table[] = {
            {"intersect", common.first, common.second},
            {"erase", ofA.first, ofA.second},
            {"identity", common.first + ofA.first, common.second + ofA.second},
            {"union", common.first + ofA.first + ofB.first,
             common.second + ofA.second + ofB.second},
            {"symdiff", ofA.first + ofB.first, ofA.second + ofB.second},
            {"update", ofA.first + 55, ofA.second + areaB},
            {"grow", judge.clusters(), geosArea(judge.all.get())},
            {"grow within", judgeA.clusters(), areaOfA},
            {"partition within", static_cast<int>(sets.size()), areaOfA},
            {"overlaps within", static_cast<int>(shared), areaOfA - single},
        };
        for (const auto& row : table) {
            run(row.operation, *a, *b);
            EXPECT_EQ(count, row.count) << row.operation << ", seed " << seed;
            EXPECT_NEAR(report.area, row.area, 1e-9 * row.area) << row.operation;
            for (int i = 0; i < output->getFeatureCount(); ++i) {
                std::unique_ptr<JWFeature> feature(output->getFeature(i));
                EXPECT_TRUE(isValid(feature->getGeometryPtr())) << row.operation;
            }
        }
    }
}

// A star of 4,000 corners and 900 cells: prepared for many partners, it gives what each pair by
// itself gives.
TEST_F(LayerOperations, AHugeFeatureAndThousandsOfSmallOnes) {
    std::string ring;
    for (int i = 0; i <= 4000; ++i) {
        const double angle = 6.283185307179586 * (i % 4000) / 4000;
        const double r = 50 + 20 * std::sin(7 * angle) + (i % 3);
        ring += (i ? "," : "") + std::to_string(r * std::cos(angle)) + " " +
                std::to_string(r * std::sin(angle));
    }
    const Row star = {-1, "POLYGON((" + ring + "))", "star"};
    std::vector<Row> cells;
    for (int i = 0; i < 900; ++i) {
        const double x = -75 + 5 * (i % 30), y = -75 + 5 * (i / 30);
        cells.push_back({-1, box(x, y, x + 5, y + 5), "cell"});
    }
    LayerPtr stars = layerOf("stars", {star}), grid = layerOf("grid", cells);
    const auto whole = fromWkt(star.wkt.c_str());
    const double area = geosArea(toGeos(whole.get()).get());
    const auto cut = areas("intersect", *stars, *grid);
    EXPECT_NEAR(report.area, area, 1e-9 * area);
    std::size_t next = 0;
    for (const Row& cell : cells) {
        const auto geometry = fromWkt(cell.wkt.c_str());
        const std::unique_ptr<JWGeometry> piece(
            O::polygonIntersectPolygon(whole.get(), geometry.get(), 0));
        if (!piece) continue;
        ASSERT_LT(next, cut.size());
        EXPECT_NEAR(std::stod(cut[next++]), geosArea(toGeos(piece.get()).get()), 1e-4);
    }
    EXPECT_EQ(next, cut.size());
    for (const char* operation : {"union", "identity", "symdiff"}) {
        run(operation, *stars, *grid);
        run(operation, *grid, *stars);
        EXPECT_LT(report.residual, 1e-9 * area) << operation;
    }
    EXPECT_NEAR(report.area, 150 * 150 - area, 1e-9 * area);
}

// --- Forms ---------------------------------------------------------------------------------------

TEST_F(LayerOperations, EveryThreadCountAndBlockSizeGivesTheSameFeatures) {
    LayerPtr a = layerOf("a", randomRows(60, 31)), b = layerOf("b", randomRows(50, 32));
    for (const auto& [name, operation] : operations) {
        JWOverlayOptions options;
        options.attributeMode = 2;
        options.keepBorders = false;
        options.rowPerPair = true;
        const auto expected = run(name, *a, *b, options);
        const JWLayerReport first = report;
        ASSERT_GT(expected.size(), name.find("grow") == 0 ? 3u : 10u) << name;
        const struct {
            int threads, blockSize;
            std::size_t cache;  // bytes, of the operands
        } rows[] = {{1, 1, 1 << 20}, {1, 7, 0},    {1, 1000, 5000},  {2, 1, 5000},
                    {2, 7, 1 << 20}, {2, 1000, 0}, {8, 1, 1 << 20},  {8, 7, 0},
                    {8, 1000, 5000}, {0, 0, 5000}, {INT_MAX, -3, 0}, {3, INT_MAX, 1}};
        for (const auto& [threads, blockSize, cache] : rows) {
            options.threads = threads;
            options.blockSize = blockSize;
            a->setCacheLimit(cache);
            b->setCacheLimit(cache);
            EXPECT_TRUE(run(name, *a, *b, options) == expected)
                << name << ", " << threads << " threads, blocks of " << blockSize << ", cache of "
                << cache;
            EXPECT_EQ(report.area, first.area) << name;
            EXPECT_EQ(report.residual, first.residual) << name;
        }
    }
}

// A long text goes into so many results that these are written in parts while more are made.
TEST_F(LayerOperations, ThreadsWriteTheResultsOfALongTextInParts) {
    const std::string text(400000, 'x');
    std::vector<Row> rows = randomRows(6, 33);
    LayerPtr b = layerOf("b", randomRows(40, 34));
    rows.insert(rows.begin() + 2, {-1, box(-1000, -1000, 1000, 1000), "short"});
    LayerPtr a = layerOf("a", rows);
    rows[2].label = text;
    LayerPtr longA = layerOf("long", rows);
    for (const char* name : {"intersect", "join"}) {
        JWOverlayOptions options;
        options.rowPerPair = true;
        const auto expected = run(name, *a, *b, options);
        ASSERT_LT(40u, expected.size()) << name;
        for (const int threads : {1, 2, 8}) {
            options.threads = threads;
            auto made = run(name, *longA, *b, options);
            for (std::string& line : made) {
                const std::size_t at = line.find(text);
                if (at != std::string::npos) line.replace(at, text.size(), "short");
            }
            EXPECT_TRUE(made == expected) << name << ", " << threads;
        }
    }
}

using L = JWFeatureLayer*;

TEST_F(LayerOperations, EveryFormGivesTheSameFeaturesOnAThreadTeamToo) {
    LayerPtr a = layerOf("a", randomRows(40, 41)), b = layerOf("b", randomRows(40, 42));
    const auto compare = [&](const char* name, const JWOverlayOptions& options, auto forms,
                             auto call) {
        const auto expected = run(name, *a, *b, options);
        for (const auto form : forms) {
            LayerPtr result = emptyLayer("out");
            EXPECT_EQ(call(form, result.get()), static_cast<int>(expected.size())) << name;
            EXPECT_TRUE(contentOf(*result) == expected) << name;
        }
    };
    JWOverlayOptions options;
    options.attributeMode = 2;
    compare("intersect", options,
            std::vector<int (*)(L, L, L, int, double, int)>{
                &O::intersectPolygonLayers, &O::intersectPolygonLayers_mp,
                &O::intersectPolygonLayers_lmp, &O::intersectPolygonLayers_old_mp},
            [&](auto form, L out) { return form(a.get(), b.get(), out, 2, 0, 7); });
    options.attributeMode = 0;
    options.tolerance = 0.5;
    const auto simple = [&](auto form, L out) { return form(a.get(), b.get(), out, true, 0.5, 7); };
    using Simple = std::vector<int (*)(L, L, L, bool, double, int)>;
    compare("erase", options,
            Simple{&O::erasePolygonLayer, &O::erasePolygonLayer_mp, &O::erasePolygonLayer_lmp,
                   &O::erasePolygonLayer_mp_old},
            simple);
    compare("grow", options,
            Simple{&O::unionPolygonLayers, &O::unionPolygonLayers_mp, &O::unionPolygonLayers_lmp,
                   &O::unionPolygonLayers_old, &O::unionPolygonLayers_old_old,
                   &O::unionPolygonLayers_new},
            simple);
    options.attributeMode = 1;
    options.multipart = false;
    const auto moded = [&](auto form, L out) {
        return form(a.get(), b.get(), out, false, 1, 0.5, 7);
    };
    using Moded = std::vector<int (*)(L, L, L, bool, int, double, int)>;
    compare("union", options,
            Moded{&O::unionPolygonLayers2, &O::unionPolygonLayers2_mp, &O::unionPolygonLayers2_lmp,
                  &O::unionPolygonLayers2_old},
            moded);
    compare("identity", options,
            Moded{&O::identityPolygonLayers, &O::identityPolygonLayers_mp,
                  &O::identityPolygonLayers_lmp, &O::identityPolygonLayers_old},
            moded);
    compare("symdiff", options,
            Moded{&O::symmetricalDifferencePolygonLayers, &O::symmetricalDifferencePolygonLayers_mp,
                  &O::symmetricalDifferencePolygonLayers_lmp,
                  &O::symmetricalDifferencePolygonLayers_old,
                  &O::symmetricalDifferencePolygonLayers_new},
            moded);
    options = {};
    options.keepBorders = false;
    using Update = std::vector<int (*)(L, L, L, bool, double, int, bool)>;
    compare("update", options,
            Update{&O::updatePolygonLayer, &O::updatePolygonLayer_mp, &O::updatePolygonLayer_lmp,
                   &O::updatePolygonLayer_old},
            [&](auto form, L out) { return form(a.get(), b.get(), out, false, 0, 7, true); });
    options.keepUnmatched = false;
    options.rowPerPair = true;
    using Join = std::vector<int (*)(L, L, L, bool, bool, int, double, int)>;
    compare("join", options,
            Join{&O::spatialJoinPolygonLayers, &O::spatialJoinPolygonLayers_mp,
                 &O::spatialJoinPolygonLayers_lmp, &O::spatialJoinPolygonLayers_old},
            [&](auto form, L out) { return form(a.get(), b.get(), out, false, true, 0, 0, 7); });
    options = {};
    using Within = std::vector<int (*)(L, L, double, int)>;
    const auto within = [&](auto form, L out) { return form(a.get(), out, 0, 7); };
    compare("grow within", options,
            Within{&O::unionPolygonsInSameLayer, &O::unionPolygonsInSameLayer_mp,
                   &O::unionPolygonsInSameLayer_lmp, &O::unionPolygonsInSameLayer_old,
                   &O::unionPolygonsInSameLayer_old_mp, &O::unionPolygonsInSameLayer_new},
            within);
    compare("overlap within", options,
            Within{&O::intersectPolygonsInSameLayer, &O::intersectPolygonsInSameLayer_mp,
                   &O::intersectPolygonsInSameLayer_lmp, &O::intersectPolygonsInSameLayer_old,
                   &O::intersectPolygonsInSameLayer_old_mp, &O::intersectPolygonsInSameLayer_new},
            within);
    options.attributeMode = 2;
    using Within2 = std::vector<int (*)(L, L, int, double, int)>;
    const auto within2 = [&](auto form, L out) { return form(a.get(), out, 2, 0, 7); };
    compare("partition within", options,
            Within2{&O::unionPolygonsInSameLayer2, &O::unionPolygonsInSameLayer2_mp,
                    &O::unionPolygonsInSameLayer2_lmp, &O::unionPolygonsInSameLayer2_old,
                    &O::unionPolygonsInSameLayer2_old_mp, &O::unionPolygonsInSameLayer2_new},
            within2);
    compare(
        "overlaps within", options,
        Within2{&O::intersectPolygonsInSameLayer2, &O::intersectPolygonsInSameLayer2_mp,
                &O::intersectPolygonsInSameLayer2_lmp, &O::intersectPolygonsInSameLayer2_old,
                &O::intersectPolygonsInSameLayer2_old_mp, &O::intersectPolygonsInSameLayer2_new},
        within2);
}

TEST_F(LayerOperations, FeatureClassesGiveWhatLayersGiveOnAThreadTeamToo) {
    LayerPtr a = layerOf("a", randomRows(30, 51)), b = layerOf("b", randomRows(30, 52));
    JWFeatureClass classA, classB, symdiff;
    a->getFeaturesByPosition(0, 30, classA);
    b->getFeaturesByPosition(0, 30, classB);
    const auto contentOfClass = [](const JWFeatureClass& features) {
        std::vector<std::string> content;
        for (int i = 0; i < features.getFeatureCount(); ++i) {
            content.push_back(describe(*features.getFeatureAt(i)));
        }
        return content;
    };
    JWOverlayOptions parts, both;
    parts.multipart = false;
    both.attributeMode = 2;
    using Class = std::unique_ptr<JWFeatureClass>;
    EXPECT_EQ(contentOfClass(*Class(O::polygonsErasePolygons(&classA, &classB, false, 0))),
              run("erase", *a, *b, parts));
    EXPECT_EQ(contentOfClass(*Class(O::polygonsErasePolygons_mp(&classA, &classB, false, 0))),
              contentOf(*output));
    EXPECT_EQ(
        contentOfClass(*Class(O::polygonsIntersectPolygons("a", &classA, "b", &classB, 2, 0))),
        run("intersect", *a, *b, both));
    EXPECT_EQ(
        contentOfClass(*Class(O::polygonsIdentityPolygons("a", &classA, "b", &classB, true, 2, 0))),
        run("identity", *a, *b, both));
    EXPECT_EQ(contentOfClass(*Class(O::unionPolygons("a", &classA, 2, 0))),
              run("partition within", *a, *a, both));
    for (int round = 0; round < 2; ++round) {
        const int written = O::symmetricalDifferencePolygons(&classA, &classB, symdiff, true, 0);
        EXPECT_EQ(written, symdiff.getFeatureCount());
        EXPECT_EQ(contentOfClass(symdiff), run("symdiff", *a, *b));
    }
    symdiff.setGeometryType(JWWKBPolygon);
    EXPECT_EQ(O::symmetricalDifferencePolygons(&classA, nullptr, symdiff, true, 0), -1);
    EXPECT_EQ(symdiff.getFeatureCount(), 0);
    EXPECT_EQ(symdiff.getGeometryType(), JWWKBUnknown);
    EXPECT_FALSE(symdiff.getEnvelop().isValid());
    EXPECT_EQ(O::symmetricalDifferencePolygons(&classA, &classB, classB, true, 0), -1);
    EXPECT_EQ(classB.getFeatureCount(), 30);
    EXPECT_NE(JWReport::lastError().text.find("feature class B: is input and result"),
              std::string::npos);
    EXPECT_EQ(O::polygonsIntersectPolygons("a", nullptr, "b", &classB, 0, 0), nullptr);
    EXPECT_NE(JWReport::lastError().text.find("feature class A (a): is missing"),
              std::string::npos);
    JWSpatialReference wgs84;
    wgs84.importFromUserInput("EPSG:4326");
    symdiff.setSpatialReference(&wgs84);
    EXPECT_EQ(O::polygonsIntersectPolygons("a", &classA, "c", &symdiff, 0, 0), nullptr);
    EXPECT_EQ(JWReport::lastError().kind, JWErrorReferencesDiffer);
    JWFeature point(*classB.getFeatureAt(0));
    point.setFID(7);
    point.setGeometry(fromWkt("POINT(1 1)").get());
    classB.addFeature(new JWFeature(point));
    delete O::polygonsErasePolygons(&classA, &classB, true, 0);
    EXPECT_EQ(JWReport::lastError().text.find("feature class B, feature 7: "), 0u)
        << JWReport::lastError().text;
}

}  // namespace
