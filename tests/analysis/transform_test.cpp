// SPDX-License-Identifier: MIT
//
// Transformation: small cases by hand, fits that recover known matrices, inverses, and every form.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "jw_geometrytransform.h"
#include "support/random_rings.h"
#include "support/wkt.h"

namespace jwtest {

using namespace jws;
using Transform = JWGeometryTransform;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct PointRow {
    const char* name;
    std::function<bool(JWRawPoint*)> map;
    JWRawPoint from, to;
};

const JWRawPoint kOrigin(0, 0), kOne(1, 1);
const double kMatrix[6] = {10, 2, 1, 20, 3, 4};

TEST(Transform, Points) {
    const PointRow rows[] = {
        {"move", [](auto* p) { return Transform::pointMove(p, 2, -3); }, {1, 1}, {3, -2}},
        {"rotate", [](auto* p) { return Transform::pointRotate(p, &kOrigin, 90); }, {1, 0}, {0, 1}},
        {"rotate1", [](auto* p) { return Transform::pointRotate1(p, &kOne, 90); }, {2, 1}, {1, 2}},
        {"scale", [](auto* p) { return Transform::pointScale1(p, &kOne, 2, 3); }, {2, 2}, {3, 4}},
        {"reflect", [](auto* p) { return Transform::pointReflect(p, &kOne); }, {3, 4}, {-1, -2}},
        {"shear y", [](auto* p) { return Transform::pointShear(p, 2, false); }, {3, 4}, {3, 10}},
        {"shear x", [](auto* p) { return Transform::pointShear(p, 2, true); }, {3, 4}, {11, 4}},
        {"matrix",
         [](auto* p) { return Transform::pointAffineTransfromByMatrix(p, kMatrix); },
         {3, 4},
         {20, 45}},
    };
    for (const PointRow& row : rows) {
        SCOPED_TRACE(row.name);
        JWRawPoint p = row.from;
        EXPECT_TRUE(row.map(&p));
        EXPECT_NEAR(p.x, row.to.x, 1e-14);
        EXPECT_NEAR(p.y, row.to.y, 1e-14);
        EXPECT_FALSE(row.map(nullptr));
    }
    JWRawPoint p(1, 0);
    EXPECT_TRUE(Transform::pointRotate(&p, &kOrigin, 90));
    EXPECT_NEAR(p.x, -3.8e-16, 1e-17);  // the constant is short of π/180 by 5e-18 of it
    EXPECT_FALSE(Transform::pointRotate(&p, nullptr, 90));
    EXPECT_FALSE(Transform::pointRotate(&p, &kOne, kNaN));
    EXPECT_FALSE(Transform::pointMove(&p, kNaN, 0));
    EXPECT_FALSE(Transform::pointAffineTransfromByMatrix(&p, nullptr));
    EXPECT_FALSE(Transform::pointAffineTransform(&p, nullptr, 3));
    EXPECT_EQ(p.y, 1);
}

struct InverseRow {
    double matrix[6];
    bool done;
    double inverse[6];
};

TEST(Transform, Inverses) {
    const InverseRow rows[] = {
        {{10, 2, 0, 20, 0, 4}, true, {-5, 0.5, 0, -5, 0, 0.25}},
        {{0, 3e-8, 0, 0, 0, 3e-8}, false, {}},  // the threshold does not look at the scale
        {{0, 4e-8, 0, 0, 0, 4e-8}, true, {0, 2.5e7, 0, 0, 0, 2.5e7}},
        {{0, 1, 2, 0, 2, 4}, false, {}},
        {{0, kNaN, 0, 0, 0, 1}, false, {}},
        {{0, 1e200, 0, 0, 0, 1e200}, false, {}},  // the determinant is infinite
        {{1e300, 1e-5, 0, 0, 0, 1e-9}, true, {-1e305, 1e5, 0, 0, 0, 1e9}},
        {{1e305, 1e-5, 0, 0, 0, 1e-9}, false, {}},  // the shift is infinite
    };
    for (const InverseRow& row : rows) {
        double inverse[6] = {7, 7, 7, 7, 7, 7};
        EXPECT_EQ(Transform::inverseTransformMatrix(row.matrix, inverse), row.done);
        for (int i = 0; i < 6; ++i) {
            EXPECT_NEAR(inverse[i], row.done ? row.inverse[i] : 7, 1e-9 * std::fabs(inverse[i]));
        }
    }
    EXPECT_FALSE(Transform::inverseTransformMatrix(kMatrix, nullptr));
    double inverse[6];
    const InverseRow anyScale[] = {
        {{10, 2, 0, 20, 0, 4}, true, {-5, 0.5, 0, -5, 0, 0.25}},
        {{3e-8, 3e-8, 0, 0, 0, 3e-8}, true, {-1, 1 / 3e-8, 0, 0, 0, 1 / 3e-8}},
        {{0, 1e200, 0, 0, 0, 1e-200}, true, {0, 1e-200, 0, 0, 0, 1e200}},
        {{0, 1e-300, 1e-300, 0, -1e300, 1e300}, true, {0, 5e299, -5e-301, 0, 5e299, 5e-301}},
        {{0, 1, 2, 0, 2, 4}, false, {}},
        {{0, 0.1, 0.3, 0, 0.3, 0.9}, false, {}},  // the determinant is 1e-17, rounding
        {{0, 1, 2, 0, 0, 0}, false, {}},
        {{0, 0, 0, 0, 0, 0}, false, {}},
        {{0, kNaN, 0, 0, 0, 1}, false, {}},
        {{0, 1e-310, 0, 0, 0, 1}, false, {}},  // the result is infinite
    };
    for (const InverseRow& row : anyScale) {
        double result[6] = {7, 7, 7, 7, 7, 7};
        EXPECT_EQ(Transform::invertMatrix(row.matrix, result), row.done);
        for (int i = 0; i < 6; ++i) {
            EXPECT_NEAR(result[i], row.done ? row.inverse[i] : 7, 1e-15 * std::fabs(result[i]));
        }
    }
    EXPECT_FALSE(Transform::invertMatrix(nullptr, inverse));
    EXPECT_FALSE(Transform::inverseTransformMatrix(nullptr, inverse));
    RandomRings random(23);
    for (int round = 0; round < 200; ++round) {
        double m[6];
        for (double& value : m) value = random.uniform(-5, 5);
        if (std::fabs(m[1] * m[5] - m[2] * m[4]) < 0.1) continue;
        ASSERT_TRUE(Transform::inverseTransformMatrix(m, inverse));
        JWRawPoint p(random.uniform(-9, 9), random.uniform(-9, 9));
        const JWRawPoint before = p;
        Transform::pointAffineTransfromByMatrix(&p, m);
        Transform::pointAffineTransfromByMatrix(&p, inverse);
        EXPECT_NEAR(p.x, before.x, 1e-11);
        EXPECT_NEAR(p.y, before.y, 1e-11);
    }
}

struct FitRow {
    const char* name;
    std::vector<JWGCP> points;  ///< target before source
    bool done;
    double matrix[6];
};

TEST(Transform, Fits) {
    const FitRow rows[] = {
        {"two", {{0, 0, 1, 1, 0}, {4, 9, 3, 4, 0}}, true, {-2, 2, 0, -3, 0, 3}},
        {"two, same source y", {{0, 0, 1, 1, 0}, {4, 9, 3, 1, 0}}, false, {}},
        {"two, same source x", {{0, 0, 1, 1, 0}, {4, 9, 1, 3, 0}}, false, {}},
        {"one", {{0, 0, 1, 1, 0}}, false, {}},
        {"rectangle",
         {{0, 0, 0, 0, 0}, {6, 0, 3, 0, 0}, {6, 8, 3, 2, 0}, {0, 8, 0, 2, 0}},
         true,
         {0, 2, 0, 0, 0, 4}},
        {"three", {{1, 2, 0, 0, 0}, {3, 5, 1, 0, 0}, {5, 9, 0, 1, 0}}, true, {1, 2, 4, 2, 3, 7}},
        {"on a line", {{0, 0, 0, 0, 0}, {1, 0, 1, 1, 0}, {2, 1, 2, 2, 0}}, false, {}},
        {"on a line, rounded",
         {{0, 0, 0.1, 0.3, 0}, {1, 0, 0.2, 0.6, 0}, {2, 1, 0.7, 2.1, 0}, {1, 1, 0.4, 1.2, 0}},
         false,
         {}},
        {"all one place", {{0, 0, 2, 2, 0}, {1, 0, 2, 2, 0}, {2, 1, 2, 2, 0}}, false, {}},
        {"NaN", {{0, 0, kNaN, 0, 0}, {1, 0, 1, 0, 0}, {0, 1, 0, 1, 0}}, false, {}},
        {"NaN target of two", {{kNaN, 0, 0, 0, 0}, {1, 1, 1, 1, 0}}, false, {}},
    };
    for (const FitRow& row : rows) {
        SCOPED_TRACE(row.name);
        double m[6] = {7, 7, 7, 7, 7, 7};
        const int n = static_cast<int>(row.points.size());
        EXPECT_EQ(Transform::affineTransformFromGCP(row.points.data(), n, m), row.done);
        for (int i = 0; i < 6; ++i) EXPECT_NEAR(m[i], row.done ? row.matrix[i] : 7, 1e-13);
        JWRawPoint p(row.points[0].sourceX, row.points[0].sourceY);
        EXPECT_EQ(Transform::pointAffineTransform(&p, row.points.data(), n), row.done);
        EXPECT_TRUE(!row.done || std::fabs(p.x - row.points[0].targetX) < 1e-13);
    }
    EXPECT_FALSE(Transform::affineTransformFromGCP(nullptr, 3, nullptr));
}

TEST(Transform, FitsRecoverMatricesAtProjectedOffsets) {
    RandomRings random(29);
    for (int round = 0; round < 200; ++round) {
        double m[6], fitted[6];
        for (double& value : m) value = random.uniform(-2, 2);
        std::vector<JWGCP> points;
        for (int i = random.integer(5, 20); i > 0; --i) {
            // Halves, so that targets are as exact as can be.
            const double x = 500000 + random.integer(0, 2000) / 2.0;
            const double y = 4649000 + random.integer(0, 2000) / 2.0;
            points.push_back({m[0] + m[1] * x + m[2] * y, m[3] + m[4] * x + m[5] * y, x, y, 0});
        }
        const int n = static_cast<int>(points.size());
        ASSERT_TRUE(Transform::affineTransformFromGCP(points.data(), n, fitted));
        for (int i : {1, 2, 4, 5}) EXPECT_NEAR(fitted[i], m[i], 1e-11);
        for (const JWGCP& g : points) {
            JWRawPoint p(g.sourceX, g.sourceY);
            Transform::pointAffineTransfromByMatrix(&p, fitted);
            EXPECT_NEAR(p.x, g.targetX, 1e-8);
            EXPECT_NEAR(p.y, g.targetY, 1e-8);
        }
    }
}

// --- Forms ---------------------------------------------------------------------------------------

const JWGCP kControls[2] = {{1, 2, 0, 0, 0}, {3, 5, 1, 1, 0}};

/// What the six forms of a family make of the six kinds, and the dispatcher when there is one.
template <class... Arguments, class... Values>
void expectForms(const std::function<void(JWRawPoint&)>& expected,
                 bool (*multiPoint)(JWMultiPoint*, Arguments...),
                 bool (*ring)(JWRing*, Arguments...), bool (*line)(JWLineString*, Arguments...),
                 bool (*lines)(JWMultiLineString*, Arguments...),
                 bool (*polygon)(JWPolygon*, Arguments...),
                 bool (*polygons)(JWMultiPolygon*, Arguments...),
                 bool (*geometry)(JWGeometry*, Arguments...), Values... values) {
    const auto run = [&](auto* typed, auto form, const char* wkt) {
        SCOPED_TRACE(wkt);
        using Class = std::remove_pointer_t<decltype(typed)>;
        auto byForm = fromWktAs<Class>(wkt), byDispatch = byForm;
        EXPECT_TRUE(form(&byForm, values...));
        EXPECT_FALSE(form(nullptr, values...));
        // The expected text: every pair of numbers mapped.
        std::string text;
        for (const char* c = wkt; *c != 0;) {
            if (std::isdigit(*c)) {
                char* end;
                JWRawPoint p(0, 0);
                p.x = std::strtod(c, &end);
                p.y = std::strtod(end, &end);
                expected(p);
                text += std::to_string(p.x) + " " + std::to_string(p.y);
                c = end;
            } else {
                text += *c++;
            }
        }
        auto wanted = fromWktAs<Class>(text.c_str());
        EXPECT_EQ(toWkt(byForm), toWkt(wanted));
        EXPECT_EQ(byForm.getEnvelop(), wanted.getEnvelop());
        if (geometry == nullptr) return;
        EXPECT_TRUE(geometry(&byDispatch, values...));
        EXPECT_EQ(toWkt(byDispatch), toWkt(byForm));
    };
    run(static_cast<JWMultiPoint*>(nullptr), multiPoint, "MULTIPOINT ((1 2), (3 4))");
    run(static_cast<JWRing*>(nullptr), ring, "LINEARRING (0 0, 4 0, 4 4, 0 0)");
    run(static_cast<JWLineString*>(nullptr), line, "LINESTRING (0 0, 4 1, 2 3)");
    run(static_cast<JWMultiLineString*>(nullptr), lines,
        "MULTILINESTRING ((0 0, 4 1), (2 3, 5 6))");
    run(static_cast<JWPolygon*>(nullptr), polygon,
        "POLYGON ((0 0, 9 0, 9 9, 0 0), (4 2, 5 2, 5 3, 4 2))");
    run(static_cast<JWMultiPolygon*>(nullptr), polygons,
        "MULTIPOLYGON (((0 0, 9 0, 9 9, 0 0)), ((14 2, 15 2, 15 3, 14 2)))");
    if (geometry == nullptr) return;
    auto bag = fromWkt("GEOMETRYCOLLECTION (POINT (1 2), LINESTRING (3 4, 5 6))");
    EXPECT_TRUE(geometry(bag.get(), values...));
    JWRawPoint p(1, 2);
    expected(p);
    EXPECT_EQ(toWkt(*static_cast<JWGeometryBag&>(*bag).getGeometryPtrAt(0)), toWkt(JWPoint(p)));
}

#define JW_SIX(FAMILY)                                                                     \
    Transform::multiPoint##FAMILY, Transform::ring##FAMILY, Transform::lineString##FAMILY, \
        Transform::multiLineString##FAMILY, Transform::polygon##FAMILY,                    \
        Transform::multiPolygon##FAMILY
#define JW_SEVEN(FAMILY) JW_SIX(FAMILY), Transform::geometry##FAMILY

TEST(TransformForms, DoToEveryVertexWhatThePointFormDoes) {
    // Whole numbers throughout, so that texts compare.
    expectForms([](auto& p) { p.move(5, 6); }, JW_SEVEN(Move), 5.0, 6.0);
    expectForms([](auto& p) { p.set(2 * p.x - 1, 3 * p.y - 2); }, JW_SEVEN(Scale), &kOne, 2.0, 3.0);
    expectForms([](auto& p) { Transform::pointAffineTransfromByMatrix(&p, kMatrix); },
                JW_SEVEN(AffineTransformByMatrix), kMatrix);
    expectForms([](auto& p) { p.set(1 + 2 * p.x, 2 + 3 * p.y); }, JW_SEVEN(AffineTransform),
                kControls, 2);
    bool (*none)(JWGeometry*, const JWRawPoint*) = nullptr;
    expectForms([](auto& p) { p.set(2 - p.x, 2 - p.y); }, JW_SIX(Reflect), none, &kOne);
    bool (*noShear)(JWGeometry*, double, bool) = nullptr;
    expectForms([](auto& p) { p.x += 2 * p.y; }, JW_SIX(Shear), noShear, 2.0, true);
    expectForms([](auto& p) { p.set(p.x, p.y); }, JW_SEVEN(Rotate), &kOrigin, 0.0);
}

TEST(TransformForms, RefuseOtherKindsAndBadParametersWhole) {
    JWGeometryBag bag;
    const JWPoint point(1, 2, 3, 4);
    bag.addGeometry(&point);
    EXPECT_TRUE(Transform::geometryMove(&bag, 1, 1));
    const auto& moved = static_cast<const JWPoint&>(*bag.getGeometryPtrAt(0));
    EXPECT_EQ(moved, JWPoint(2, 3));
    EXPECT_EQ(moved.getZ(), 3);
    EXPECT_EQ(moved.getM(), 4);
    const JWLine segment(0, 0, 1, 1);
    bag.addGeometry(&segment);
    EXPECT_FALSE(Transform::geometryMove(&bag, 1, 1));
    EXPECT_EQ(moved.getX(), 2);
    JWLine alone(0, 0, 1, 1);
    EXPECT_FALSE(Transform::geometryRotate(&alone, &kOne, 5));
    auto line = fromWktAs<JWLineString>("LINESTRING (0 0, 4 1)");
    EXPECT_FALSE(Transform::lineStringAffineTransform(&line, kControls, 1));
    EXPECT_FALSE(Transform::lineStringScale(&line, nullptr, 2, 2));
    EXPECT_FALSE(Transform::lineStringShear(&line, kNaN, true));
    EXPECT_EQ(toWkt(line), "LINESTRING (0 0, 4 1)");
    // A centre inside the geometry stays where it is.
    EXPECT_TRUE(Transform::lineStringRotate(&line, line.getPointPtrAt(1), 180));
    EXPECT_EQ(line.getPointAt(1), JWRawPoint(4, 1));
    EXPECT_NEAR(line.getX(0), 8, 1e-14);
}

}  // namespace

}  // namespace jwtest
