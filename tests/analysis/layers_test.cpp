// SPDX-License-Identifier: MIT
//
// Bounding geometries, simplification, smoothing and transformation from layer to layer: the same
// result for any team and block size, the account of every feature, and what is refused.
#include "support/layers.h"

#include <gtest/gtest.h>

#include <functional>

#include "jw_geometryminimumbounding.h"
#include "jw_geometrysimplicify.h"
#include "jw_geometrysmooth.h"
#include "jw_geometrytransform.h"

namespace jwtest {

using namespace jws;

namespace {

struct Team {
    int blockSize, threads;
};

/// A layer function as all of them are called here.
struct Operation {
    const char* name;
    std::function<int(JWFeatureLayer*, JWFeatureLayer*, Team, JWLayerReport*)> run;
};

int simplify(JWFeatureLayer* in, JWFeatureLayer* out, Team team, JWLayerReport* report,
             double tolerance = 2) {
    JWSimplifyOptions options;
    options.tolerance = tolerance;
    options.blockSize = team.blockSize;
    options.threads = team.threads;
    return JWGeometrySimplicify::simplifyLayer(in, out, options, report);
}

int smooth(JWFeatureLayer* in, JWFeatureLayer* out, Team team, JWLayerReport* report) {
    JWSmoothOptions options;
    options.method = JWSmoothSlidingAveraging;
    options.lookAhead = 3;
    options.blockSize = team.blockSize;
    options.threads = team.threads;
    return JWGeometrySmooth::smoothLayer(in, out, options, report);
}

int transform(JWFeatureLayer* in, JWFeatureLayer* out, Team team, JWLayerReport* report) {
    const double matrix[6] = {1, 0, -2, 5, 2, 0};
    return JWGeometryTransform::transformLayer(in, out, matrix, team.blockSize, team.threads,
                                               report);
}

Operation bound(const char* name, enumJWBounding kind, bool wholeLayer) {
    return {name, [=](JWFeatureLayer* in, JWFeatureLayer* out, Team team, JWLayerReport* report) {
                JWBoundingOptions options;
                options.kind = kind;
                options.wholeLayer = wholeLayer;
                options.measures = true;
                options.blockSize = team.blockSize;
                options.threads = team.threads;
                return JWGeometryMinimumBounding::boundLayer(in, out, options, report);
            }};
}

std::vector<Operation> operations() {
    return {{"simplify", [](auto... a) { return simplify(a...); }},
            {"smooth", smooth},
            {"transform", transform},
            bound("hull", JWBoundingHull, false),
            bound("circle", JWBoundingMinimumCircle, false),
            bound("ball", JWBoundingFastBall, false),
            bound("rectangle", JWBoundingMinimumAreaRect, false),
            bound("hull of all", JWBoundingHull, true),
            bound("circle of all", JWBoundingMinimumCircle, true)};
}

struct Outcome {
    int code;
    std::vector<std::string> content;
    std::string fields;
    JWLayerReport report;
};

Outcome run(const Operation& operation, JWFeatureLayer& input, Team team = {0, 1}) {
    const LayerPtr output = emptyLayer("out");
    Outcome outcome;
    outcome.code = operation.run(&input, output.get(), team, &outcome.report);
    outcome.content = contentOf(*output);
    outcome.fields = fieldNames(*output->getFieldsDefnPtr());
    return outcome;
}

std::string geometryOf(const std::string& described) {
    return described.substr(0, described.find('|'));
}

TEST(AnalysisLayers, TeamsAndBlocksGiveTheSame) {
    const LayerPtr input = layerOf("in", randomRows(300, 7));
    for (const Operation& operation : operations()) {
        SCOPED_TRACE(operation.name);
        const Outcome plain = run(operation, *input);
        EXPECT_LT(0, plain.code);
        EXPECT_TRUE(plain.report.rejected.empty());
        for (const Team team : {Team{7, 1}, Team{0, 2}, Team{64, 8}, Team{1, 2}, Team{300, 0}}) {
            const Outcome other = run(operation, *input, team);
            EXPECT_EQ(plain.content, other.content);
            EXPECT_EQ(plain.report.area, other.report.area);
            EXPECT_EQ(plain.report.vertices, other.report.vertices);
        }
    }
}

TEST(AnalysisLayers, EachFeatureComesOutOrIsAccountedFor) {
    const LayerPtr input = layerOf("in", {{5, "POLYGON((0 0,4 0,4 4,2 4.5,0 4,0 0))", "area"},
                                          {6, "", "none"},
                                          {7, "POLYGON EMPTY", "empty"},
                                          {8, "POINT(1 2)", "point"},
                                          {9, "LINESTRING(0 0,1 1)", "line"},
                                          {12, "GEOMETRYCOLLECTION(POINT(1 1))", "bag"}});
    const struct {
        const char* name;
        std::string labels;           // of what is written
        std::vector<long long> lost;  // identifiers of what is not
    } rows[] = {
        {"simplify", "area none empty point line ", {12}},
        {"smooth", "area none empty point line ", {12}},
        {"transform", "area none empty point line bag ", {}},
        {"hull", "area ", {8, 9, 12}},
        {"circle", "area line ", {8, 12}},
        {"ball", "area line ", {8, 12}},
        {"rectangle", "area line ", {8, 12}},
        {"hull of all", "3 ", {12}},
        {"circle of all", "3 ", {12}},
    };
    const std::vector<Operation> all = operations();
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(all[i].name);
        ASSERT_STREQ(rows[i].name, all[i].name);
        const Outcome outcome = run(all[i], *input);
        std::string labels;
        for (const std::string& feature : outcome.content) {
            const std::string rest = feature.substr(feature.find('|') + 1);
            labels += rest.substr(0, rest.find('|')) + " ";
        }
        EXPECT_EQ(rows[i].labels, labels);
        EXPECT_EQ(static_cast<int>(outcome.content.size()), outcome.code);
        EXPECT_EQ(outcome.code, outcome.report.written);
        EXPECT_EQ(6, outcome.report.readA);
        EXPECT_EQ(2, outcome.report.emptyA);
        EXPECT_EQ(rows[i].labels.find("none") < 9 ? 2 : 0, outcome.report.writtenEmpty);
        std::vector<long long> lost;
        for (const JWRejectedFeature& feature : outcome.report.rejected)
            lost.push_back(feature.fid);
        EXPECT_EQ(rows[i].lost, lost);
    }
}

TEST(AnalysisLayers, ResultsAreThoseOfTheGeometryForms) {
    const LayerPtr input = layerOf("in", {{-1, "POLYGON((0 0,4 0,4 2,2 2.5,0 2,0 0))", "a"},
                                          {-1, "MULTILINESTRING((0 0,5 0),(9 9,9 3))", "b"}});
    const struct {
        std::size_t operation;
        const char *one, *two, *fields;
    } rows[] = {
        {0, "POLYGON ((0 0, 4 2, 0 0))", nullptr, "name"},
        {2, "POLYGON ((1 5, 1 13, -3 13, -4 9, -3 5, 1 5))",
         "MULTILINESTRING ((1 5, 1 15), (-17 23, -5 23))", "name"},
        {3, "POLYGON ((0 0, 4 0, 4 2, 2 2.5, 0 2, 0 0))", "POLYGON ((0 0, 5 0, 9 3, 9 9, 0 0))",
         "name"},
        {6, "POLYGON ((0 0, 4 0, 4 2.5, 0 2.5, 0 0))", nullptr, "name,length,width,angle"},
        {7, "POLYGON ((0 0, 5 0, 9 3, 9 9, 0 2, 0 0))", nullptr, "count"},
    };
    for (const auto& row : rows) {
        const Operation operation = operations()[row.operation];
        SCOPED_TRACE(operation.name);
        const Outcome outcome = run(operation, *input);
        ASSERT_FALSE(outcome.content.empty());
        EXPECT_EQ(row.one, geometryOf(outcome.content[0]));
        if (row.two != nullptr) {
            EXPECT_EQ(row.two, geometryOf(outcome.content[1]));
        }
        EXPECT_EQ(row.fields, outcome.fields);
    }
    const Outcome circle = run(bound("circle", JWBoundingMinimumCircle, false), *input);
    EXPECT_EQ("name,center_x,center_y,radius", circle.fields);
    EXPECT_NE(std::string::npos, circle.content[1].find("|b|4.5|4.5|6.36396103067892"));

    // Points at one place have a circle, of a feature class and of a layer.
    const LayerPtr place = layerOf("in", {{-1, "MULTIPOINT(3 5,3 5)", "c"}});
    for (const bool isWhole : {false, true}) {
        const Outcome dot = run(bound("circle", JWBoundingMinimumCircle, isWhole), *place);
        ASSERT_EQ(1, dot.code);
        EXPECT_NE(std::string::npos, dot.content[0].find("|3|5|0"));
    }
}

TEST(AnalysisLayers, PointsAreBoundTogether) {
    const struct {
        std::vector<Row> rows;
        enumJWBounding kind;
        const char* geometry;    // null for none
        const char* error = "";  // the end of the last error
    } cases[] = {
        {{{-1, "POINT(0 0)", ""}, {-1, "POINT(4 0)", ""}, {-1, "POINT(0 3)", ""}},
         JWBoundingHull,
         "POLYGON ((0 0, 4 0, 0 3, 0 0))"},
        {{{-1, "POINT(0 0)", ""}, {-1, "MULTIPOINT(4 1,2 7)", ""}},
         JWBoundingEnvelop,
         "POLYGON ((0 0, 4 0, 4 7, 0 7, 0 0))"},
        {{{-1, "POINT(1 1)", ""}, {-1, "POINT(2 2)", ""}, {-1, "POINT(3 3)", ""}},
         JWBoundingHull,
         nullptr,
         "layer in: the layer as a whole: its points lie on one line"},
        {{{-1, "POINT(1 1)", ""}, {-1, "POINT(1 1)", ""}},
         JWBoundingMinimumWidthRect,
         nullptr,
         "it has too few distinct points for a bounding geometry"},
        {{{-1, "MULTIPOINT(-1e308 0,0 -1.7e308,1e308 1.7e308)", ""}},
         JWBoundingMinimumAreaRect,
         nullptr,
         "a coordinate grows beyond all numbers"},
        {{{-1, "POINT(0 0)", ""}, {-1, "POINT(5 0)", ""}},
         JWBoundingEnvelop,
         "POLYGON ((0 0, 5 0, 5 0, 0 0, 0 0))"},
        {{}, JWBoundingHull, nullptr},
    };
    for (const auto& c : cases) {
        const LayerPtr input = layerOf("in", c.rows);
        const Outcome outcome = run(bound("all", c.kind, true), *input);
        EXPECT_EQ(c.geometry != nullptr ? 1 : 0, outcome.code);
        EXPECT_EQ(c.geometry == nullptr && !c.rows.empty(), !outcome.report.rejected.empty());
        const std::string error = JWReport::lastError().text, expected = c.error;
        EXPECT_EQ(expected, error.substr(error.size() - std::min(error.size(), expected.size())));
        if (outcome.code == 1) {
            EXPECT_EQ(c.geometry, geometryOf(outcome.content[0]));
        }
    }
}

TEST(AnalysisLayers, RefusalsLeaveNothing) {
    const LayerPtr input = layerOf("in", randomRows(50, 3));
    const LayerPtr output = emptyLayer("out");
    const LayerPtr filled = layerOf("filled", {});
    const double unknown[6] = {0, 1, 0, std::nan(""), 0, 1};
    EXPECT_EQ(-1, simplify(nullptr, output.get(), {0, 1}, nullptr));
    EXPECT_EQ(-1, simplify(input.get(), nullptr, {0, 1}, nullptr));
    EXPECT_EQ(-1, simplify(input.get(), input.get(), {0, 1}, nullptr));
    EXPECT_EQ(-3, simplify(input.get(), filled.get(), {0, 1}, nullptr));
    for (const double tolerance : {0.0, -1.0, std::nan("")}) {
        EXPECT_EQ(-1, simplify(input.get(), output.get(), {0, 1}, nullptr, tolerance));
        EXPECT_EQ(JWErrorInvalidArgument, JWReport::lastError().kind);
    }
    EXPECT_EQ(-1, JWGeometryTransform::transformLayer(input.get(), output.get(), nullptr));
    EXPECT_EQ(-1, JWGeometryTransform::transformLayer(input.get(), output.get(), unknown));
    EXPECT_EQ(-1,
              bound("", JWBoundingFastBall, true).run(input.get(), output.get(), {0, 1}, nullptr));
    EXPECT_EQ(0, output->getFeatureCount());
}

TEST(AnalysisLayers, StoppedRunsLeaveNothing) {
    const LayerPtr input = layerOf("in", randomRows(200, 5));
    JWReport::setProgress([](std::int64_t done, std::int64_t, void*) { return done < 100; },
                          nullptr);
    for (const Operation& operation : operations()) {
        SCOPED_TRACE(operation.name);
        const Outcome outcome = run(operation, *input, {32, 2});
        EXPECT_EQ(-1, outcome.code);
        EXPECT_EQ(JWErrorCancelled, JWReport::lastError().kind);
        EXPECT_TRUE(outcome.report.cancelled);
        EXPECT_EQ(0, outcome.report.written);
        EXPECT_TRUE(outcome.content.empty());
    }
    JWReport::setProgress(nullptr, nullptr);
}

TEST(AnalysisLayers, CoordinatesThatGrowBeyondNumbersAreRejected) {
    const LayerPtr input =
        layerOf("in", {{-1, "POINT(1e300 0)", "far"}, {-1, "POINT(1 0)", "near"}});
    const double matrix[6] = {0, 1e10, 0, 0, 0, 1};
    const LayerPtr output = emptyLayer("out");
    JWLayerReport report;
    EXPECT_EQ(
        1, JWGeometryTransform::transformLayer(input.get(), output.get(), matrix, 0, 1, &report));
    EXPECT_EQ(1u, report.rejected.size());
    EXPECT_EQ("POINT (1e+10 0)|near", contentOf(*output)[0]);

    const LayerPtr lines =
        layerOf("in", {{-1, "LINESTRING(-1e308 0,1e308 0,-1e308 1,1e308 1)", "far"},
                       {-1, "LINESTRING(0 0,1 0,0 1,1 1)", "near"}});
    const LayerPtr smooth = emptyLayer("out");
    JWSmoothOptions options;
    options.method = JWSmoothDistanceWeighting;
    options.lookAhead = 3;
    EXPECT_EQ(1, JWGeometrySmooth::smoothLayer(lines.get(), smooth.get(), options, &report));
    ASSERT_EQ(1u, report.rejected.size());
    EXPECT_EQ("a coordinate grows beyond all numbers", report.rejected[0].reason);
}

}  // namespace
}  // namespace jwtest
