// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <numeric>

#include "jw_geometrydissolve.h"
#include "jw_geometryoverlay2.h"
#include "support/geos_oracle.h"
#include "support/layers.h"
#include "support/random_rings.h"
#include "support/test_paths.h"

using namespace jws;
using namespace jwtest;

namespace {

using Strings = std::vector<std::string>;
using AttributeForm = int (*)(JWFeatureLayer*, JWFeatureLayer*, std::vector<int>, int, int);

const AttributeForm dissolvePoints = &JWGeometryDissolve::dissolvePointLayerByAttributes;
const AttributeForm dissolveLines = &JWGeometryDissolve::dissolveLineLayerByAttributes;

constexpr const char* left = "POLYGON((0 0,10 0,10 10,0 10,0 0))";
constexpr const char* right = "POLYGON((10 0,20 0,20 10,10 10,10 0))";
constexpr const char* over = "POLYGON((5 5,15 5,15 8,5 8,5 5))";
constexpr const char* far = "POLYGON((90 0,99 0,99 9,90 9,90 0))";

/// All features of a layer, their geometries in normal form.
Strings normalContent(JWFeatureLayer& layer) {
    Strings content;
    for (int i = 0; i < layer.getFeatureCount(); ++i) {
        std::unique_ptr<JWFeature> feature(layer.getFeature(i));
        feature->setGeometryDirectly(normalized(*feature->getGeometryPtr()).release());
        content.push_back(describe(*feature));
    }
    return content;
}

class Dissolve : public testing::Test {
  protected:
    Strings run(JWFeatureLayer& input, const std::vector<int>& fields,
                const JWDissolveOptions& options) {
        LayerPtr output = emptyLayer("out");
        count = JWGeometryDissolve::dissolvePolygonLayer(&input, output.get(), fields, options,
                                                         &report);
        names = fieldNames(*output->getFieldsDefnPtr());
        return normalContent(*output);
    }
    Strings run(const std::vector<Row>& rows, bool multipart = true, double tolerance = 0) {
        JWDissolveOptions options;
        options.multipart = multipart;
        options.tolerance = tolerance;
        return run(*layerOf("in", rows), {0}, options);
    }

    CapturedMessages messages;
    JWLayerReport report;
    int count = 0;
    std::string names;
};

TEST_F(Dissolve, WhatBecomesOfGroups) {
    const std::string both = "POLYGON ((0 0,10 0,20 0,20 10,10 10,0 10,0 0))";
    const struct {
        const char* what;
        std::vector<Row> rows;
        bool multipart;
        double tolerance;
        Strings expected;  // geometry and value
    } rows[] = {
        {"a shared border vanishes", {{-1, left, "a"}, {-1, right, "a"}}, true, 0, {both + "|a"}},
        {"values keep neighbours apart",
         {{-1, right, "b"}, {-1, left, "a"}, {-1, over, "b"}},
         true,
         0,
         {"POLYGON ((5 5,10 5,10 0,20 0,20 10,10 10,10 8,5 8,5 5))|b", std::string(left) + "|a"}},
        {"a group of one is written, whatever the tolerance",
         {{-1, left, "a"}},
         false,
         1000,
         {std::string(left) + "|a"}},
        {"clusters are never merged",
         {{-1, left, "a"}, {-1, far, "a"}},
         true,
         0,
         {std::string(left) + "|a", std::string(far) + "|a"}},
        {"a chain of envelopes makes one cluster, one feature of two parts",
         {{-1, left, "a"}, {-1, "POLYGON((9 9,90 9,90 8,9 9))", "b"}, {-1, far, "a"}},
         true,
         0,
         {"MULTIPOLYGON (((0 0,10 0,10 10,0 10,0 0)),((90 0,99 0,99 9,90 9,90 0)))|a",
          "POLYGON((9 9,90 8,90 9,9 9))|b"}},
        {"parts that touch in a point",
         {{-1, left, "a"}, {-1, "POLYGON((10 10,20 10,20 20,10 20,10 10))", "a"}},
         false,
         0,
         {std::string(left) + "|a", "POLYGON((10 10,20 10,20 20,10 20,10 10))|a"}},
        {"what crosses itself is read by the even-odd rule",
         {{-1, "POLYGON((0 0,4 4,4 0,0 4,0 0))", "a"}},
         false,
         0,
         {"POLYGON ((0 0,2 2,0 4,0 0))|a", "POLYGON ((2 2,4 0,4 4,2 2))|a"}},
        {"direction does not count, nor does the place of a hole",
         {{-1, "POLYGON((0 0,0 9,9 9,9 0,0 0),(3 3,3 6,6 6,6 3,3 3))", "a"},
          {-1, "MULTIPOLYGON(((4 4,5 4,5 5,4 5,4 4)))", "a"}},
         true,
         0,
         {"MULTIPOLYGON (((0 0,9 0,9 9,0 9,0 0),(3 3,3 6,6 6,6 3,3 3)),"
          "((4 4,5 4,5 5,4 5,4 4)))|a"}},
        {"equal features count once",
         {{-1, left, "a"}, {-1, left, "a"}, {-1, left, "a"}},
         true,
         0,
         {std::string(left) + "|a"}},
        {"a border with other vertices on either side",
         {{-1, "POLYGON((0 0,10 0,10 3,10 10,0 10,0 0))", "a"},
          {-1, "POLYGON((10 0,20 0,20 10,10 10,10 6,10 0))", "a"}},
         true,
         0,
         {both + "|a"}},
        {"the tolerance is applied once, to the union",
         {{-1, box(0, 0, 1, 1), "a"}, {-1, box(1, 0, 2, 1), "a"}, {-1, box(1.5, 1, 2.5, 2), "a"}},
         true,
         2.5,
         {normalizedWkt("POLYGON((0 0,1 0,2 0,2 1,2.5 1,2.5 2,1.5 2,1.5 1,1 1,0 1,0 0))") + "|a"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Strings expected;
        for (const std::string& text : row.expected) {
            const std::size_t bar = text.find('|');
            std::unique_ptr<JWGeometry> geometry = fromWkt(text.substr(0, bar));
            if (row.multipart) {  // the output is declared so
                geometry.reset(
                    JWGeometryDissolve::convertSingleToMulti_Polygon(geometry.get(), nullptr));
            }
            expected.push_back(normalizedWkt(*geometry) + text.substr(bar));
        }
        EXPECT_EQ(expected, run(row.rows, row.multipart, row.tolerance));
        EXPECT_EQ(static_cast<int>(expected.size()), count);
        EXPECT_NEAR(0, report.residual, 1e-12);
    }
}

TEST_F(Dissolve, AreasBeyondAllNumbersAreUnitedToo) {
    for (const char* huge :
         {"POLYGON((-1.7e308 -1.7e308,1.7e308 -1.7e308,1.7e308 1.7e308,-1.7e308 1.7e308,"
          "-1.7e308 -1.7e308))",
          "POLYGON((-1.7e308 -1.7e308,1.7e308 1.7e308,1.7e308 -1.7e308,-1.7e308 1.7e308,"
          "-1.7e308 -1.7e308))"}) {
        LayerPtr output = emptyLayer("out");
        JWDissolveOptions options;
        options.multipart = true;
        LayerPtr input = layerOf("in", {{-1, huge, "a"}, {-1, box(1, 0, 3.5, 2.5), "a"}});
        ASSERT_EQ(1, JWGeometryDissolve::dissolvePolygonLayer(input.get(), output.get(), {0},
                                                              options, &report));
        EXPECT_TRUE(report.rejected.empty());
        const std::unique_ptr<JWFeature> united(output->getFeature(0));
        EXPECT_EQ(1.7e308, united->getGeometryPtr()->getEnvelop().maxX) << huge;
        EXPECT_EQ(-1.7e308, united->getGeometryPtr()->getEnvelop().minY) << huge;
    }
}

TEST_F(Dissolve, NullsAreEqualAndFieldsKeepTheInputsOrder) {
    LayerPtr input = emptyLayer("in");
    for (const auto& [name, type] : {std::pair("t", JWFieldString), std::pair("i", JWFieldInteger),
                                     std::pair("r", JWFieldReal), std::pair("d", JWFieldDate)}) {
        input->createField(JWField(name, type));
    }
    input->updateFieldsDefnRef();
    // Unset, null; 0, -0; not a number twice; two dates.
    const auto add = [&](int kind, double real, const char* date) {
        JWFeature feature(input->getFieldsDefnPtr());
        feature.setGeometry(fromWkt(left).get());
        if (kind == 1) feature.setFieldNull(1);
        if (kind > 1) feature.setFieldValue(1, kind);
        feature.setFieldValue(2, real);
        feature.setFieldValue(3, date);
        input->createFeature(&feature);
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double real : {0.0, -0.0, 1.5}) add(0, real, "2020-01-02");
    add(1, 0.0, "2020-01-02");
    add(2, nan, "2020-01-02");
    add(2, nan, "2020-01-03");
    JWDissolveOptions options;
    options.multipart = true;
    run(*input, {2, 1, 2}, options);
    EXPECT_EQ("i,r", names);
    EXPECT_EQ(3, count);  // (none, 0), (none, 1.5), (2, NaN)
    run(*input, {3}, options);
    EXPECT_EQ(2, count);
    run(*input, {}, options);
    EXPECT_EQ("", names);
    EXPECT_EQ(1, count);
}

TEST_F(Dissolve, CodesAndTheirOrder) {
    LayerPtr input = layerOf("in", {{-1, left, "a"}}, "name", "EPSG:4326");
    LayerPtr withFields = layerOf("out", {});
    LayerPtr elsewhere = emptyLayer("out");
    LayerPtr output = emptyLayer("out", "EPSG:4326");
    const struct {
        JWFeatureLayer *input, *output;
        std::vector<int> fields;
        int fieldCount, code;
        enumJWErrorKind kind;
        const char* says;
    } rows[] = {
        {nullptr, withFields.get(), {0}, 1, -1, JWErrorInvalidArgument, "the input layer"},
        {input.get(), nullptr, {0}, 1, -1, JWErrorInvalidArgument, "the result layer"},
        {input.get(), input.get(), {0}, 1, -1, JWErrorInvalidArgument, "layer in: "},
        {input.get(), withFields.get(), {0}, 1, -3, JWErrorOutputExists, "layer out: "},
        {input.get(), elsewhere.get(), {0}, 1, -2, JWErrorReferencesDiffer, ", layer out has"},
        {input.get(),
         output.get(),
         {0, 1},
         2,
         -1,
         JWErrorInvalidArgument,
         "layer in: there is no field 1 "},
        {input.get(), output.get(), {-1}, 1, -1, JWErrorInvalidArgument, "no field -1 "},
        {input.get(),
         output.get(),
         {0},
         2,
         -1,
         JWErrorInvalidArgument,
         "layer in: 2 dissolve fields"},
    };
    for (const auto& row : rows) {
        for (const AttributeForm form : {dissolvePoints, dissolveLines}) {
            EXPECT_EQ(row.code, form(row.input, row.output, row.fields, row.fieldCount, 0));
        }
        EXPECT_EQ(row.code, JWGeometryDissolve::dissolvePolygonLayer(
                                row.input, row.output, row.fields, row.fieldCount, true, 0, 10));
        EXPECT_EQ(row.kind, JWReport::lastError().kind);
        EXPECT_NE(std::string::npos, JWReport::lastError().text.find(row.says))
            << JWReport::lastError().text;
    }
    EXPECT_EQ("", messages.text());
    EXPECT_EQ(0, output->getFieldsDefnPtr()->getFieldCount());
    EXPECT_EQ(1, JWGeometryDissolve::dissolvePolygonLayer(input.get(), output.get(), {0, 77}, 1,
                                                          false, 0, 10));
}

TEST_F(Dissolve, CountsAndClustersArePrinted) {
    run({{-1, left, "a"}, {-1, far, "a"}, {-1, "", "a"}, {-1, over, "b"}});
    EXPECT_EQ("1\n2\n3\n4\n0,3,\n1,\n", messages.text());
}

TEST_F(Dissolve, WhatCannotTakePartIsListed) {
    const Strings content = run({{7, left, "a"},
                                 {8, "LINESTRING(0 0,1 1)", "a"},
                                 {9, "", "a"},
                                 {10, "POLYGON((0 0,1 0,nan 1,0 0))", "a"},
                                 {11, "POLYGON EMPTY", "b"},
                                 {12, "POLYGON((20 0,25 0,20 0,20 0))", "c"}});
    EXPECT_EQ(1u, content.size());
    EXPECT_EQ(6, report.readA);
    EXPECT_EQ(2, report.emptyA);
    ASSERT_EQ(3u, report.rejected.size());
    EXPECT_EQ(8, report.rejected[0].fid);
    EXPECT_EQ(10, report.rejected[1].fid);
    EXPECT_EQ(12, report.rejected[2].fid);
    EXPECT_EQ("its group has no area", report.rejected[2].reason);
    EXPECT_EQ(JWErrorFeatureRejected, JWReport::lastError().kind);

    EXPECT_TRUE(run({{7, left, "a"}, {8, left, "a"}}, true, 1000).empty());
    ASSERT_EQ(1u, report.rejected.size());
    EXPECT_EQ("no ring of its group reaches the tolerance", report.rejected[0].reason);
}

TEST_F(Dissolve, Statistics) {
    LayerPtr input = emptyLayer("in");
    input->createField(JWField("k", JWFieldString));
    input->createField(JWField("big", JWFieldInteger64));
    input->createField(JWField("h", JWFieldReal));
    input->updateFieldsDefnRef();
    const std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char *key, *text;
        std::int64_t big;
        double real;
    } rows[] = {{"a", "y", most - 1, 1e16}, {"a", "x", 1, 1.0},    {"a", "z", -5, -1e16},
                {"b", nullptr, most, nan},  {"b", "w", most, 2.5}, {"c", nullptr, 0, nan}};
    input->createField(JWField("t", JWFieldString));
    input->updateFieldsDefnRef();
    for (const auto& row : rows) {
        JWFeature feature(input->getFieldsDefnPtr());
        feature.setGeometry(fromWkt(left).get());
        feature.setFieldValue(0, row.key);
        if (row.big != 0) feature.setFieldValue(1, row.big);
        feature.setFieldValue(2, row.real);
        feature.setFieldValue(3, row.text);
        input->createFeature(&feature);
    }
    JWDissolveOptions options;
    options.statistics = {{JWStatisticSum, 1, ""},   {JWStatisticMean, 1, ""},
                          {JWStatisticSum, 2, ""},   {JWStatisticMin, 2, "low"},
                          {JWStatisticMax, 3, ""},   {JWStatisticFirst, 3, ""},
                          {JWStatisticCount, 3, ""}, {JWStatisticCount, -1, ""}};
    options.areaField = "size";
    Strings values;
    for (const std::string& feature : run(*input, {0}, options)) {
        values.push_back(feature.substr(feature.find('|')));
    }
    EXPECT_EQ("k,sum_big,mean_big,sum_h,low,max_t,first_t,count_t,count,size", names);
    EXPECT_EQ((Strings{"|a|9223372036854775802|3074457345618258432|1|-1e+16|z|y|3|3|100",
                       "|b|-|9223372036854775808|2.5|2.5|w|w|1|2|100", "|c|-|-|-|-|-|-|0|1|100"}),
              values);
    ASSERT_EQ(1u, report.rejected.size());  // the sum that does not fit
    EXPECT_NE(std::string::npos, report.rejected[0].reason.find("sum_big"));

    for (const JWDissolveStatistic& wrong :
         {JWDissolveStatistic{JWStatisticSum, 3, ""}, JWDissolveStatistic{JWStatisticMin, 9, ""},
          JWDissolveStatistic{JWStatisticFirst, -1, ""}}) {
        options.statistics = {wrong};
        run(*input, {0}, options);
        EXPECT_EQ(-1, count);
        EXPECT_EQ(JWErrorInvalidArgument, JWReport::lastError().kind);
    }
}

// Times are compared as instants; finite numbers have a finite mean.
TEST_F(Dissolve, StatisticsOfTimesAndOfLargeNumbers) {
    LayerPtr input = emptyLayer("in");
    input->createField(JWField("t", JWFieldDateTime));
    input->createField(JWField("v", JWFieldReal));
    input->updateFieldsDefnRef();
    const struct {
        const char* time;
        double real;
    } rows[] = {{"2020-01-01T02:00:00Z", 1e308},
                {"2020-01-01T03:00:00+02:00", 1e308},
                {"2019-12-31T21:30:00-05:00", 1.5e308},
                {"2020-01-01T02:00:00.5", -1e307}};
    for (const auto& row : rows) {
        JWFeature feature(input->getFieldsDefnPtr());
        feature.setGeometry(fromWkt(left).get());
        ASSERT_TRUE(feature.setFieldValue(0, row.time));
        feature.setFieldValue(1, row.real);
        input->createFeature(&feature);
    }
    JWDissolveOptions options;
    options.statistics = {
        {JWStatisticMin, 0, ""}, {JWStatisticMax, 0, ""}, {JWStatisticMean, 1, ""}};
    const Strings found = run(*input, {}, options);
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ("|2020-01-01T03:00:00+02:00|2019-12-31T21:30:00-05:00|8.5e+307",
              found[0].substr(found[0].find('|')));
}

/// Features with all that goes wrong in real layers, some of them far apart.
std::vector<Row> mixedRows(int number, unsigned seed) {
    std::vector<Row> rows = randomRows(number, seed);
    RandomRings random(seed);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].label = std::string(1, static_cast<char>('a' + i % 3));
        if (i % 4 != 0) continue;
        const bool tangle = i % 8 == 0;
        const double x = random.integer(0, 99), y = random.integer(0, 99);
        std::string ring, first;
        for (const JWRawPoint& p : tangle ? random.tangle(9, 6) : random.box(5)) {
            const std::string corner = std::to_string(x + p.x) + " " + std::to_string(y + p.y);
            if (first.empty()) first = corner;
            ring += corner + ",";
        }
        rows[i].wkt = "POLYGON((" + ring + first + "))";
    }
    return rows;
}

TEST_F(Dissolve, AnyTeamAndAnyBlockGiveTheSame) {
    LayerPtr input = layerOf("in", mixedRows(1100, 5));  // together more than a patch
    JWDissolveOptions options;
    options.multipart = true;
    options.statistics = {{JWStatisticMax, 0, ""}, {JWStatisticCount, -1, ""}};
    LayerPtr first = emptyLayer("out");
    JWLayerReport expected;
    JWGeometryDissolve::dissolvePolygonLayer(input.get(), first.get(), {}, options, &expected);
    ASSERT_GT(expected.written, 0);
    for (const auto& [threads, blockSize] :
         {std::pair(1, 7), std::pair(2, 1), std::pair(8, 1000)}) {
        options.threads = threads;
        options.blockSize = blockSize;
        LayerPtr output = emptyLayer("out");
        JWGeometryDissolve::dissolvePolygonLayer(input.get(), output.get(), {}, options, &report);
        EXPECT_EQ(contentOf(*first), contentOf(*output));
        EXPECT_EQ(expected.residual, report.residual);
        EXPECT_EQ(expected.areaOverlap, report.areaOverlap);
    }
    // The fixed forms, and the layer from back to front.
    LayerPtr plain = emptyLayer("out"), team = emptyLayer("out"), old = emptyLayer("out");
    JWGeometryDissolve::dissolvePolygonLayer(input.get(), plain.get(), {0}, 1, false, 0.5, 100);
    JWGeometryDissolve::dissolvePolygonLayer_mp(input.get(), team.get(), {0}, 1, false, 0.5, 9);
    JWGeometryDissolve::dissolvePolygonLayer_old(input.get(), old.get(), {0}, 1, false, 0.5);
    EXPECT_EQ(contentOf(*plain), contentOf(*team));
    EXPECT_EQ(contentOf(*plain), contentOf(*old));
    std::vector<Row> reversed = mixedRows(1100, 5);
    std::reverse(reversed.begin(), reversed.end());
    LayerPtr backwards = emptyLayer("out");
    options.statistics.clear();
    LayerPtr again = emptyLayer("out");
    JWGeometryDissolve::dissolvePolygonLayer(input.get(), again.get(), {0}, options, nullptr);
    JWGeometryDissolve::dissolvePolygonLayer(layerOf("in", reversed).get(), backwards.get(), {0},
                                             options, nullptr);
    Strings one = contentOf(*again), two = contentOf(*backwards);
    std::sort(one.begin(), one.end());
    std::sort(two.begin(), two.end());
    EXPECT_EQ(one, two);
}

// So many that a team shares the search for those that meet.
TEST_F(Dissolve, ClustersOfManyRectanglesOnATeamToo) {
    const struct {
        const char* what;
        std::function<std::string(int i)> at;
        int clusters;
    } rows[] = {
        {"bars", [](int i) { return box(0, 2 * i, 9999, 2 * i + 1); }, 5000},
        {"standing bars", [](int i) { return box(2 * i, 0, 2 * i + 1, 9999); }, 5000},
        {"pairs of bars",
         [](int i) { return box(0, 3 * (i / 2) + i % 2, 1, 3 * (i / 2) + 1 + i % 2); }, 2500},
        {"fours",
         [](int i) {
             const int x = i % 100 + i % 100 / 2, y = i / 100 + i / 200;
             return box(x, y, x + 1, y + 1);
         },
         1250},
        {"stairs", [](int i) { return box(i, i, i + 1, i + 1); }, 1},
        {"bars across a bar",
         [](int i) { return i == 4321 ? box(5, 0, 6, 9999) : box(0, 2 * i, 9999, 2 * i + 1); }, 1}};
    for (const auto& row : rows) {
        std::vector<Row> features;
        for (int i = 0; i < 5000; ++i) features.push_back({-1, row.at(i), "a"});
        LayerPtr input = layerOf("in", features);
        for (const int threads : {1, 8}) {
            JWDissolveOptions options;
            options.multipart = true;
            options.threads = threads;
            run(*input, {0}, options);
            EXPECT_EQ(row.clusters, count) << row.what << ", " << threads;
        }
    }
}

/// A polygon of rings that cross themselves, by the even-odd rule: the triangles from the first
/// corner of each ring to its edges, added with exclusive or.
GeosPtr evenOdd(const JWGeometry& geometry) {
    GEOSContextHandle_t h = geosContext();
    std::vector<JWPolygon> polygons;
    if (geometry.getGeometryType() == JWGeometryMultiPolygon) {
        polygons = static_cast<const JWMultiPolygon&>(geometry).getMemberList();
    } else {
        polygons.push_back(static_cast<const JWPolygon&>(geometry));
    }
    GeosPtr area(GEOSGeom_createEmptyPolygon_r(h));
    if (isValid(&geometry)) return toGeos(&geometry);
    for (const JWPolygon& polygon : polygons) {
        for (const JWRing& ring : polygon.getRingList()) {
            const Ring corners = cornersOf(ring);
            for (std::size_t i = 1; i + 1 < corners.size(); ++i) {
                const GeosPtr triangle(GEOSGeom_createPolygon_r(
                    h, geosRing({corners[0], corners[i], corners[i + 1]}), nullptr, 0));
                if (geosArea(triangle.get()) == 0) continue;
                area.reset(GEOSSymDifference_r(h, area.get(), triangle.get()));
            }
        }
    }
    return area;
}

/// The area of the union of polygons given by their layer, group by group; `sum` receives the sum
/// of their areas.
std::map<std::string, double> unionAreas(JWFeatureLayer& layer, int field,
                                         GeosPtr (*repair)(const JWGeometry&), double& sum) {
    GEOSContextHandle_t h = geosContext();
    std::map<std::string, std::vector<GEOSGeometry*>> groups;
    for (int i = 0; i < layer.getFeatureCount(); ++i) {
        const std::unique_ptr<JWFeature> feature(layer.getFeature(i));
        std::string label;
        feature->getFieldAsString(field, label);
        groups[label].push_back(repair(*feature->getGeometryPtr()).release());
        sum += geosArea(groups[label].back());
    }
    std::map<std::string, double> areas;
    for (auto& [label, members] : groups) {
        const GeosPtr all(GEOSGeom_createCollection_r(h, GEOS_GEOMETRYCOLLECTION, members.data(),
                                                      static_cast<unsigned>(members.size())));
        areas[label] = geosArea(GeosPtr(GEOSUnaryUnion_r(h, all.get())).get());
    }
    return areas;
}

TEST_F(Dissolve, AreasAreThoseOfGeosAndTheAccountCloses) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        LayerPtr input = layerOf("in", mixedRows(seed % 4 == 0 ? 1500 : 60, seed));
        double sum = 0, united = 0;
        for (const auto& [label, area] : unionAreas(*input, 0, &evenOdd, sum)) united += area;
        JWDissolveOptions options;
        options.multipart = true;
        options.acrossClusters = seed % 2 == 0;
        LayerPtr output = emptyLayer("out");
        JWGeometryDissolve::dissolvePolygonLayer(input.get(), output.get(), {0}, options, &report);
        EXPECT_NEAR(united, report.area, 1e-9 * sum);
        EXPECT_NEAR(sum, report.areaA, 1e-9 * sum);
        EXPECT_NEAR(0, report.residual, 1e-11 * sum);
        EXPECT_TRUE(report.rejected.empty());
        if (options.acrossClusters) {
            EXPECT_EQ(3, report.written);
        }
        for (int i = 0; i < output->getFeatureCount(); ++i) {
            std::unique_ptr<JWFeature> feature(output->getFeature(i));
            EXPECT_TRUE(isValid(feature->getGeometryPtr()));
        }
    }
}

TEST_F(Dissolve, CleanCoverageLeavesItsOutline) {
    // 60 x 60 squares of 4 groups, more than one patch each; every corner keeps its bits.
    std::vector<Row> rows;
    for (int i = 0; i < 3600; ++i) {
        const int x = i % 60, y = i / 60;
        rows.push_back({-1, box(x, y, x + 1, y + 1), std::to_string(x / 30 + 2 * (y / 30))});
    }
    for (const Row& row : {rows[0], rows[59], rows[3540], rows[3599]}) rows.push_back(row);
    const Strings content = run(rows);
    ASSERT_EQ(4u, content.size());
    EXPECT_EQ(3600, report.area);
    EXPECT_EQ(4, report.areaOverlap);  // the four that are there twice
    EXPECT_EQ(0, report.residual);
    for (const std::string& feature : content) {
        EXPECT_EQ(120, std::count(feature.begin(), feature.end(), ','));
    }
}

TEST_F(Dissolve, CountiesByState) {
    SourcePtr source(JWDataSource::open(exampleData("us_counties.gpkg").c_str()));
    ASSERT_TRUE(source) << JWReport::lastError().text;
    LayerPtr counties(source->openLayer(0));
    const int field = counties->getFieldsDefnPtr()->getFieldIndex("state");
    double sum = 0;
    const auto makeValid = [](const JWGeometry& county) {
        return GeosPtr(GEOSMakeValid_r(geosContext(), toGeos(&county).get()));
    };
    std::map<std::string, double> expected = unionAreas(*counties, field, makeValid, sum);
    ASSERT_EQ(56u, expected.size());
    JWDissolveOptions options;
    options.multipart = true;
    options.acrossClusters = true;
    SourcePtr memory(JWDataSource::createInMemory());
    LayerPtr output(memory->createLayer("out", JWWKBUnknown, counties->getLayerSpatialRefPtr()));
    EXPECT_EQ(static_cast<int>(expected.size()),
              JWGeometryDissolve::dissolvePolygonLayer(counties.get(), output.get(), {field},
                                                       options, &report));
    EXPECT_TRUE(report.rejected.empty());
    EXPECT_LT(std::fabs(report.residual), 1e-12 * report.areaA);
    for (int i = 0; i < output->getFeatureCount(); ++i) {
        std::unique_ptr<JWFeature> state(output->getFeature(i));
        std::string code;
        state->getFieldAsString(0, code);
        EXPECT_NEAR(expected[code], geosArea(toGeos(state->getGeometryPtr()).get()), 1e-9) << code;
        EXPECT_TRUE(isValid(state->getGeometryPtr())) << code;
    }
}

TEST_F(Dissolve, PointsAndLines) {
    const struct {
        AttributeForm form;
        std::vector<Row> rows;
        Strings expected;
        int rejected;
    } rows[] = {
        {dissolvePoints,
         {{-1, "POINT(1 2)", "b"},
          {-1, "MULTIPOINT(5 6,7 8)", "a"},
          {-1, "POINT(99 9)", "b"},
          {-1, "POINT EMPTY", "c"},
          {-1, "LINESTRING(0 0,1 1)", "a"}},
         {"MULTIPOINT ((1 2),(99 9))|b", "MULTIPOINT ((5 6),(7 8))|a"},
         1},
        {dissolveLines,
         {{-1, "LINESTRING(0 0,1 1)", "a"},
          {-1, "MULTILINESTRING((5 5,6 6),(7 7,8 8))", "a"},
          {-1, "POINT(1 1)", "a"},
          {-1, "LINESTRING(0 0,nan 1)", "a"}},
         {"MULTILINESTRING ((0 0,1 1),(5 5,6 6),(7 7,8 8))|a"},
         2},
    };
    for (const auto& row : rows) {
        LayerPtr input = layerOf("in", row.rows);
        LayerPtr output = emptyLayer("out");
        Strings expected;
        for (const std::string& text : row.expected) {
            const std::size_t bar = text.find('|');
            expected.push_back(toWkt(*fromWkt(text.substr(0, bar))) + text.substr(bar));
        }
        EXPECT_EQ(static_cast<int>(expected.size()),
                  row.form(input.get(), output.get(), {0}, 1, 2));
        EXPECT_EQ(expected, contentOf(*output));
        EXPECT_EQ(JWErrorFeatureRejected, JWReport::lastError().kind);
        LayerPtr untouched = emptyLayer("out");
        EXPECT_EQ(0, row.form(input.get(), untouched.get(), {0}, 0, 2));
        EXPECT_EQ(0, untouched->getFieldsDefnPtr()->getFieldCount());
    }
    const std::string nothing = "Do nothing for no fields specified!\n";
    EXPECT_NE(std::string::npos, messages.text().find(nothing));
    EXPECT_NE(messages.text().find(nothing), messages.text().rfind(nothing));
}

TEST_F(Dissolve, OneGroupByHand) {
    LayerPtr layer = layerOf("in", {{-1, left, "a"}, {-1, right, "a"}, {-1, far, "b"}});
    std::vector<std::unique_ptr<JWFeature>> owners;
    std::vector<JWFeature*> features;
    for (int i = 0; i < 3; ++i) {
        owners.emplace_back(layer->getFeature(i));
        features.push_back(owners.back().get());
    }
    features.push_back(nullptr);
    JWFields schema;
    schema.addField(JWField("name", JWFieldString));
    const struct {
        int count;
        bool multipart;
        int expected;
    } rows[] = {{1, true, 0},  {2, true, 1},   {3, true, 1},
                {3, false, 2}, {99, false, 2}, {-1, true, 0}};
    for (const auto& row : rows) {
        std::vector<JWFeature*> out;
        EXPECT_EQ(row.expected, JWGeometryDissolve::dissolvePolygonsWithSameAttributes(
                                    features, row.count, schema, {0}, 1, out, row.multipart, 0));
        for (JWFeature* feature : out) {
            std::string value;
            EXPECT_TRUE(feature->getFieldAsString(0, value));
            EXPECT_EQ("a", value);
            JWFeature::destroyFeature(feature);
        }
        EXPECT_EQ(row.expected, static_cast<int>(out.size()));
    }
    const struct {
        std::vector<int> fields;
        const char* says;
    } refused[] = {{{1}, "no field 1 "}, {{-1}, "no field -1 "}, {{0, 1}, "2 dissolve fields"}};
    for (const auto& row : refused) {
        std::vector<JWFeature*> out;
        const int listed = static_cast<int>(row.fields.size());
        EXPECT_EQ(0, JWGeometryDissolve::dissolvePolygonsWithSameAttributes(
                         features, 3, schema, row.fields, listed, out, true, 0));
        EXPECT_TRUE(out.empty());
        EXPECT_NE(std::string::npos, JWReport::lastError().text.find(row.says))
            << JWReport::lastError().text;
    }
    std::vector<JWGeometry*> polygons;
    EXPECT_EQ(2, JWGeometryOverlay2::unionPolygons(features, polygons, 0));
    for (JWGeometry* polygon : polygons) delete polygon;
}

TEST(DissolveParts, LinesAreCutWhereTheyMeetThemselves) {
    const struct {
        const char* line;
        Strings parts;
    } rows[] = {
        {"LINESTRING(0 0,4 0,4 4)", {"LINESTRING(0 0,4 0,4 4)"}},
        {"LINESTRING(0 0,4 0,4 4,0 0)", {"LINESTRING(0 0,4 0,4 4,0 0)"}},
        {"LINESTRING(0 0,4 0,4 4,2 4,2 -2)",
         {"LINESTRING(0 0,2 0)", "LINESTRING(2 0,4 0,4 4,2 4,2 0)", "LINESTRING(2 0,2 -2)"}},
        {"LINESTRING(0 0,4 4,4 0,0 4)",
         {"LINESTRING(0 0,2 2)", "LINESTRING(2 2,4 4,4 0,2 2)", "LINESTRING(2 2,0 4)"}},
        {"LINESTRING(0 0,4 0,4 4,2 0)",  // ends on itself
         {"LINESTRING(0 0,2 0)", "LINESTRING(2 0,4 0,4 4,2 0)"}},
        {"LINESTRING(0 0,4 0,4 0,1 0)",  // turns back
         {"LINESTRING(0 0,1 0)", "LINESTRING(1 0,4 0)", "LINESTRING(4 0,1 0)"}},
        {"LINESTRING(1 1,1 1)", {}},
        {"LINESTRING(0 0,nan 1)", {}},
    };
    for (const auto& row : rows) {
        const auto line = fromWktAs<JWLineString>(row.line);
        std::vector<JWLineString*> parts;
        EXPECT_EQ(static_cast<int>(row.parts.size()),
                  JWGeometryDissolve::lineStringDissolve(&line, parts));
        Strings texts, expected;
        for (JWLineString* part : parts) {
            texts.push_back(toWkt(*part));
            delete part;
        }
        for (const std::string& part : row.parts) expected.push_back(toWkt(*fromWkt(part)));
        EXPECT_EQ(expected, texts) << row.line;
    }
    std::vector<JWLineString*> parts;
    EXPECT_EQ(0, JWGeometryDissolve::lineStringDissolve(nullptr, parts));
    // Edges that cross, though their directions' determinant rounds to 0.
    for (const char* text :
         {"LINESTRING(0 0,912292310 912292302,0 912292302,-1 -1,912292311 912292303)",
          "LINESTRING(0 0,998780234 998780219,0 998780219,-1 -1,998780235 998780220)"}) {
        const auto line = fromWktAs<JWLineString>(text);
        EXPECT_LT(2, JWGeometryDissolve::lineStringDissolve(&line, parts));
        double most = 0;
        for (const JWLineString* part : parts) {
            for (const JWRawPoint& p : part->getPointList()) {
                most = std::max({most, std::fabs(p.x), std::fabs(p.y)});
                EXPECT_TRUE(std::isfinite(p.x) && std::isfinite(p.y));
            }
            delete part;
        }
        EXPECT_LT(most, 998780236) << text;
        parts.clear();
    }
}

TEST(DissolveParts, RingsComeApartAndSinglesTogether) {
    JWRing bow;
    for (const JWRawPoint& p :
         {JWRawPoint(0, 0), JWRawPoint(4, 4), JWRawPoint(4, 0), JWRawPoint(0, 4)}) {
        bow.addPoint(p.x, p.y);
    }
    bow.closeRing();
    std::vector<JWRing*> rings;
    EXPECT_EQ(2, JWGeometryDissolve::ringDissolve(&bow, rings));
    for (JWRing* ring : rings) {
        EXPECT_EQ(4, ring->getArea());
        delete ring;
    }
    EXPECT_EQ(0, JWGeometryDissolve::ringDissolve(nullptr, rings));

    const auto point = fromWkt("POINT(1 2)"), points = fromWkt("MULTIPOINT(3 4,5 6)");
    const auto line = fromWkt("LINESTRING(0 0,1 1)"), polygon = fromWkt(left);
    const std::unique_ptr<JWGeometry> made[] = {
        std::unique_ptr<JWGeometry>(
            JWGeometryDissolve::convertSingleToMulti_Point(point.get(), points.get())),
        std::unique_ptr<JWGeometry>(
            JWGeometryDissolve::convertSingleToMulti_LineString(line.get(), line.get())),
        std::unique_ptr<JWGeometry>(
            JWGeometryDissolve::convertSingleToMulti_Polygon(nullptr, polygon.get())),
    };
    const char* const expected[] = {"MULTIPOINT(1 2,3 4,5 6)",
                                    "MULTILINESTRING((0 0,1 1),(0 0,1 1))",
                                    "MULTIPOLYGON(((0 0,10 0,10 10,0 10,0 0)))"};
    for (int i = 0; i < 3; ++i) EXPECT_EQ(toWkt(*fromWkt(expected[i])), toWkt(made[i].get()));
    EXPECT_EQ(nullptr, JWGeometryDissolve::convertSingleToMulti_Point(nullptr, nullptr));
    EXPECT_EQ(nullptr, JWGeometryDissolve::convertSingleToMulti_Point(point.get(), line.get()));
}

}  // namespace
