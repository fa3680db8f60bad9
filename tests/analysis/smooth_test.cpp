// SPDX-License-Identifier: MIT
//
// Smoothing: small cases of each method worked out by hand, what each promises on random lines, bad
// input, and every form.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "jw_geometrysmooth.h"
#include "support/random_rings.h"
#include "support/wkt.h"

namespace jwtest {

using namespace jws;
using Smooth = JWGeometrySmooth;
using Points = std::vector<JWRawPoint>;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

/// A method with parameters in all its forms.
struct Call {
    std::string name;
    std::function<int(JWLineString*)> line;
    std::function<bool(JWPolygon*)> polygon;
    std::function<void(JWFeatureClass*)> features;
};

int runBezier(JWLineString* line, int degree, int points) {
    const std::unique_ptr<JWLineString> result(Smooth::bezier(line, degree, points));
    if (line == nullptr) return result == nullptr ? 0 : -1;
    *line = *result;
    return line->getPointCount();
}

Call boyle(int look) {
    return {"boyle", [=](auto* l) { return Smooth::boyle(l, look); },
            [=](auto* p) { return Smooth::jwPolygonSmooth_Boyle(p, look); },
            [=](auto* f) { Smooth::smoothFeatures_boyle(f, look); }};
}
Call sliding(double slide, int look) {
    return {"sliding", [=](auto* l) { return Smooth::sliding_averaging(l, slide, look); },
            [=](auto* p) { return Smooth::jwPolygonSmooth_SlidingMean(p, slide, look); },
            [=](auto* f) { Smooth::smoothFeatures_slideAve(f, slide, look); }};
}
Call weighting(double slide, int look) {
    return {"weighting", [=](auto* l) { return Smooth::distance_weighting(l, slide, look); },
            [=](auto* p) { return Smooth::jwPolygonSmooth_dw(p, slide, look); },
            [=](auto* f) { Smooth::smoothFeatures_dw(f, slide, look); }};
}
Call chaiken(double tolerance) {
    return {"chaiken", [=](auto* l) { return Smooth::chaiken(l, tolerance); },
            [=](auto* p) { return Smooth::jwPolygonSmooth_Chaiken(p, tolerance); },
            [=](auto* f) { Smooth::smoothFeatures_chaiken(f, tolerance); }};
}
Call bezier(int degree, int points) {
    return {"bezier", [=](auto* l) { return runBezier(l, degree, points); },
            [=](auto* p) { return Smooth::jwPolygonSmooth_Bezier(p, degree, points); },
            [=](auto* f) { Smooth::smoothFeatures_bezier(f, degree, points); }};
}
Call hermite(double step, double scale, double minimum) {
    return {"hermite", [=](auto* l) { return Smooth::hermite(l, step, scale, minimum); },
            [=](auto* p) { return Smooth::jwPolygonSmooth_Hermite(p, step, scale, minimum); },
            [=](auto* f) { Smooth::smoothFeatures_hermite(f, step, scale, minimum); }};
}

struct Row {
    Call call;
    const char* line;
    const char* expected;  ///< null: unchanged
};

TEST(Smooth, SmallCases) {
    const char* z = "LINESTRING (0 0, 1 1, 2 0, 3 1, 4 0)";
    const char* roof = "LINESTRING (0 0, 2 2, 4 0)";
    const char* corner = "LINESTRING (0 0, 4 0, 4 4)";
    const char* far = "LINESTRING (1000000000.3 0, 1000000000.3 2, 1000000000.3 4)";
    const Row rows[] = {
        {boyle(2), z, "LINESTRING (0 0, 2 0, 3 1, 4 0, 4 0)"},
        {boyle(3), z, "LINESTRING (0 0, 1.5 0.5, 2.75 0.25, 3.375 0.125, 4 0)"},
        // L = n: a quarter of the last point each time.
        {boyle(5), z, "LINESTRING (0 0, 1 0, 1.75 0, 2.3125 0, 4 0)"},
        {boyle(6), z, nullptr},
        {boyle(1), z, nullptr},
        {sliding(1, 3), z,
         "LINESTRING (0 0, 1 0.333333333333, 2 0.666666666667, "
         "3 0.333333333333, 4 0)"},
        {sliding(0, 3), z, nullptr},
        {sliding(1, 4), z, nullptr},
        {sliding(1, 5), z, nullptr},
        {sliding(1, 1), z, nullptr},
        {sliding(1, -3), z, nullptr},
        {sliding(1, 3), roof, nullptr},
        {sliding(1, 3), "LINESTRING (-1e+308 0, 1e+308 1, -1e+308 2, 1e+308 3)", nullptr},
        {weighting(1, 3), z, "LINESTRING (0 0, 1 0, 2 1, 3 0, 4 0)"},
        // The neighbours are 1 and √18 away: 4/(√18 + 1) and 3/(√18 + 1).
        {weighting(1, 3), "LINESTRING (0 0, 1 0, 4 3)",
         "LINESTRING (0 0, 0.762974279322 0.572230709492, 4 3)"},
        {weighting(1, 3), "LINESTRING (1 1, 1 1, 1 1)", nullptr},
        {weighting(1, 5), roof, nullptr},
        {weighting(9, 3), "LINESTRING (0 0, 1e+308 0, 0 1, 1e+308 3)", nullptr},
        {weighting(1, -1), z, nullptr},
        {chaiken(100), roof, "LINESTRING (0 0, 3 1, 4 0, 4 0)"},
        {chaiken(2), roof, "LINESTRING (0 0, 0.9375 0.8125, 1.75 1.25, 3 1, 4 0, 4 0)"},
        {chaiken(-2), roof, "LINESTRING (0 0, 0.9375 0.8125, 1.75 1.25, 3 1, 4 0, 4 0)"},
        {chaiken(0), roof, nullptr},
        {chaiken(1), "LINESTRING (0 0, 1.7e+308 0, 1.7e+308 1, 0 1)", nullptr},
        {bezier(2, 2), "LINESTRING (0 0, 1 2, 2 0)", "LINESTRING (0 0, 1 1, 2 0)"},
        {bezier(1, 1), z, nullptr},
        {bezier(0, 2), z, nullptr},
        // More points than are made: nothing is allocated for them.
        {bezier(2, (1 << 27) - 1), roof, nullptr},
        {bezier(1, 1 << 26), roof, nullptr},
        {hermite(0x1p-24, 0.5, 0), corner, nullptr},
        {hermite(2, 0.5, 0), corner, "LINESTRING (0 0, 2.25 0, 4 0, 4 2.25, 4 4)"},
        // Tangents below the minimum are zero, so points stay on the segments.
        {hermite(2, 0.5, 100), corner, "LINESTRING (0 0, 2 0, 4 0, 4 2, 4 4)"},
        {hermite(99, 0.5, 0), corner, "LINESTRING (0 0, 4 4)"},
        {hermite(1e-12, 0.5, 0), corner, nullptr},
        // Far away, a straight line stays straight to the last digit.
        {boyle(3), far, "LINESTRING (1000000000.3 0, 1000000000.3 2, 1000000000.3 4)"},
        {boyle(2), far, "LINESTRING (1000000000.3 0, 1000000000.3 4, 1000000000.3 4)"},
        {bezier(2, 5), far,
         "LINESTRING (1000000000.3 0, 1000000000.3 0.8, 1000000000.3 1.6, 1000000000.3 2.4, "
         "1000000000.3 3.2, 1000000000.3 4)"},
        {hermite(1.4, 0.5, 0), far,
         "LINESTRING (1000000000.3 0, 1000000000.3 1.547, 1000000000.3 2.848, 1000000000.3 4)"},
        {hermite(2, 0, 0), corner, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call.name + " " + row.line);
        auto line = fromWktAs<JWLineString>(row.line);
        const auto expected = fromWktAs<JWLineString>(row.expected ? row.expected : row.line);
        EXPECT_EQ(row.call.line(&line), expected.getPointCount());
        ASSERT_EQ(line.getPointCount(), expected.getPointCount());
        for (int i = 0; i < line.getPointCount(); ++i) {
            EXPECT_NEAR(line.getX(i), expected.getX(i), 1e-12);
            EXPECT_NEAR(line.getY(i), expected.getY(i), 1e-12);
        }
        EXPECT_TRUE(row.expected || toWkt(line) == row.line);
        JWLineString fresh = line;
        fresh.updateEnvelop();
        EXPECT_EQ(line.getEnvelop(), fresh.getEnvelop());
    }
}

const std::vector<Call>& usableCalls() {
    static const std::vector<Call> calls = {boyle(3),     sliding(0.7, 3), weighting(0.7, 3),
                                            chaiken(0.5), bezier(3, 4),    hermite(0.5, 0.4, 0)};
    return calls;
}

TEST(Smooth, BadInputChangesNothing) {
    const char* text = "LINESTRING (0 0, 1 1, 2 0, 3 1, 4 0)";
    for (const Call& call : {sliding(kNaN, 3), sliding(kInf, 3), weighting(kNaN, 3), chaiken(kNaN),
                             hermite(kNaN, 1, 0), hermite(-1, 1, 0), hermite(1, kNaN, 0),
                             hermite(1, 1, kNaN), bezier(-1, 1), bezier(1, -1)}) {
        auto line = fromWktAs<JWLineString>(text);
        EXPECT_EQ(call.line(&line), 5);
        EXPECT_EQ(toWkt(line), text);
    }
    for (const Call& call : usableCalls()) {
        SCOPED_TRACE(call.name);
        EXPECT_EQ(call.line(nullptr), 0);
        EXPECT_FALSE(call.polygon(nullptr));
        call.features(nullptr);
        for (double bad : {kNaN, kInf}) {
            auto line = fromWktAs<JWLineString>(text);
            line.getPointList()[2].y = bad;
            EXPECT_EQ(call.line(&line), 5);
            EXPECT_EQ(line.getX(0) + line.getX(1) + line.getX(3), 4);
        }
        for (const char* tiny : {"LINESTRING EMPTY", "LINESTRING (1 1)"}) {
            auto line = fromWktAs<JWLineString>(tiny);
            call.line(&line);
            EXPECT_EQ(toWkt(line), tiny);
        }
    }
}

TEST(Smooth, ChaikenComesToAnEnd) {
    // Tolerances at and below the resolution of projected coordinates.
    RandomRings random(13);
    for (int round = 0; round < 300; ++round) {
        Points points;
        for (int i = 0; i < 6; ++i) {
            points.emplace_back(5e6 + random.uniform(0, 9), 5e6 + random.uniform(0, 9));
        }
        JWLineString line(points);
        const int count = Smooth::chaiken(&line, round % 2 ? 1e-10 : 1e-300);
        EXPECT_GT(count, 6);
        EXPECT_LT(count, 1000);
    }
}

TEST(Smooth, KeepsEndsAndDoesNotDependOnTheOffset) {
    RandomRings random(17);
    for (int round = 0; round < 100; ++round) {
        Points points, far;
        for (int i = random.integer(4, 40); i > 0; --i) {
            // Multiples of 2^-8, so that the shift is exact.
            points.emplace_back(random.integer(0, 2560) / 256.0, random.integer(0, 2560) / 256.0);
            far.emplace_back(points.back().x + 0x1p+22, points.back().y - 0x1p+22);
        }
        for (const Call& call : usableCalls()) {
            SCOPED_TRACE(call.name + " seed 17 round " + std::to_string(round));
            JWLineString line(points), farLine(far);
            ASSERT_EQ(call.line(&line), call.line(&farLine));
            EXPECT_EQ(*line.getFromPointPtr(), points.front());
            EXPECT_EQ(*line.getToPointPtr(), points.back());
            for (int i = 0; i < line.getPointCount(); ++i) {
                EXPECT_NEAR(line.getX(i), farLine.getX(i) - 0x1p+22, 1e-8);
                EXPECT_NEAR(line.getY(i), farLine.getY(i) + 0x1p+22, 1e-8);
            }
        }
    }
}

TEST(SmoothKinds, EveryFormDoesWhatTheLineFormDoes) {
    const std::string a = "(0 0, 9 1, 8 7, 4 3, 1 8, 0 0)", b = "(3 1, 5 1, 4 2, 3 1)";
    const char* open = "(0 0, 2 3, 4 0, 6 3, 8 0)";
    const auto smoothed = [](const Call& call, const std::string& points) {
        auto line = fromWktAs<JWLineString>(("LINESTRING " + points).c_str());
        call.line(&line);
        return toWkt(line).substr(11);
    };
    for (const Call& call : usableCalls()) {
        SCOPED_TRACE(call.name);
        const std::string ringA = smoothed(call, a), ringB = smoothed(call, b);
        const std::string line = smoothed(call, open);
        const std::pair<std::string, std::string> rows[] = {
            {"LINESTRING " + std::string(open), "LINESTRING " + line},
            {"MULTILINESTRING (" + a + ", " + open + ")",
             "MULTILINESTRING (" + ringA + ", " + line + ")"},
            {"POLYGON (" + a + ", " + b + ")", "POLYGON (" + ringA + ", " + ringB + ")"},
            {"MULTIPOLYGON ((" + a + "), (" + b + "))",
             "MULTIPOLYGON ((" + ringA + "), (" + ringB + "))"},
            {"POINT (1 1)", "POINT (1 1)"},
            {"MULTIPOINT ((1 1))", "MULTIPOINT ((1 1))"},
        };
        JWFeatureClass features;
        for (const auto& row : rows) {
            auto* feature = new JWFeature;
            feature->setGeometryDirectly(fromWkt(row.first).release());
            features.addFeature(feature);
        }
        call.features(&features);
        for (int i = 0; i < features.getFeatureCount(); ++i) {
            EXPECT_EQ(toWkt(features.getFeatureAt(i)->getGeometryPtr()), rows[i].second);
        }
        auto polygon = fromWktAs<JWPolygon>(rows[2].first.c_str());
        EXPECT_TRUE(call.polygon(&polygon));
        EXPECT_EQ(toWkt(polygon), rows[2].second);
    }
}

TEST(SmoothKinds, OptionsDropRepeatedPointsAndCountFeatures) {
    JWSmoothOptions options;
    options.method = JWSmoothChaiken;
    options.tolerance = 100;
    options.dropRepeated = true;
    options.step = options.tangentScale = 100;
    options.degree = 5;
    options.points = 1;
    const struct {
        enumJWSmoothMethod method;
        const char* line;
        const char* expected;  ///< null: unchanged, for it would come down to a point
    } rows[] = {
        {JWSmoothChaiken, "LINESTRING (0 0, 2 2, 4 0)", "LINESTRING (0 0, 3 1, 4 0)"},
        {JWSmoothChaiken, "LINESTRING (1 1, 1 1, 1 1)", nullptr},
        {JWSmoothHermite, "LINESTRING (0 0, 4 0, 4 4, 0 0)", nullptr},
        {JWSmoothBezier, "LINESTRING (0 0, 4 0, 4 4, 0 0)", nullptr},
        {JWSmoothBezier, "MULTILINESTRING ((1 1, 1 1), (0 0, 4 0, 4 4))",
         "MULTILINESTRING ((1 1, 1 1), (0 0, 4 4))"},
    };
    for (const auto& row : rows) {
        options.method = row.method;
        auto line = fromWkt(row.line);
        const bool isMulti = line->getGeometryType() == JWGeometryMultiLineString;
        EXPECT_EQ(Smooth::geometrySmooth(line.get(), options), isMulti || row.expected != nullptr);
        EXPECT_EQ(toWkt(*line), row.expected != nullptr ? row.expected : row.line);
    }
    options.method = JWSmoothChaiken;
    JWFeatureClass features;
    for (const char* text : {"LINESTRING (0 0, 2 2, 4 0)", "MULTIPOINT (1 1)", "POLYGON EMPTY"}) {
        auto* feature = new JWFeature;
        feature->setGeometryDirectly(fromWkt(text).release());
        features.addFeature(feature);
    }
    JWLayerReport report;
    EXPECT_TRUE(Smooth::smoothFeatures(&features, options, &report));
    EXPECT_EQ(report.readA, 3);
    EXPECT_EQ(report.emptyA, 1);
    EXPECT_EQ(report.written, 1);
    EXPECT_EQ(report.rejected.size(), 1u);
    EXPECT_FALSE(Smooth::smoothFeatures(nullptr, options, &report));
    options.method = JWSmoothHermite;
    options.step = 1e-12;
    report = JWLayerReport();
    EXPECT_TRUE(Smooth::smoothFeatures(&features, options, &report));
    ASSERT_EQ(report.rejected.size(), 2u);
    EXPECT_EQ(report.rejected[0].reason, "a line would have more than 134217727 points");
}

}  // namespace

}  // namespace jwtest
