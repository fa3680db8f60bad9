// SPDX-License-Identifier: MIT
//
// The codes and predicates of JWSpatialRelation.
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "jw_spatialrelation.h"
#include "relation/random_geometries.h"

namespace {

using namespace jws;
using namespace jwtest;

class Tolerant : public JWSpatialRelation {
  public:
    Tolerant() { openTolerance(); }
    void close() { closeTolerance(); }
    bool isOn() const { return isUseTolerance(); }
};

const JWSpatialRelation kRelation;

TEST(SpatialRelation, Envelopes) {
    struct Row {
        JWEnvelop a, b;
        int code;
    };
    const Row rows[] = {
        {{0, 0, 10, 10}, {0, 0, 10, 10}, 1},   {{0, 0, 1, 1}, {5, 5, 9, 9}, 2},
        {{0, 0, 10, 10}, {2, 2, 3, 3}, 6},     {{2, 2, 3, 3}, {0, 0, 10, 10}, 7},
        {{0, 0, 10, 10}, {0, 2, 3, 3}, 6},     {{0, 0, 10, 10}, {10, 0, 20, 10}, 8},
        {{0, 0, 10, 10}, {10, 10, 20, 20}, 8}, {{0, 0, 10, 10}, {5, 5, 15, 15}, 8},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(kRelation.getEnvelopAndEnvelop(&row.a, &row.b), row.code);
        EXPECT_EQ(kRelation.isEnvelopsDisjoint(&row.a, &row.b), row.code == 2);
        EXPECT_EQ(kRelation.isEnvelopsEqual(&row.a, &row.b), row.code == 1);
        EXPECT_FALSE(kRelation.isEnvelopsDisjoint(&row.a, &row.a));
        EXPECT_EQ(kRelation.getEnvelopAndEnvelop(nullptr, &row.b), 0);
        EXPECT_EQ(kRelation.getEnvelopAndEnvelop(&row.a, nullptr), 0);
        EXPECT_FALSE(kRelation.isEnvelopsEqual(nullptr, &row.b) ||
                     kRelation.isEnvelopsDisjoint(&row.a, nullptr));
    }
}

TEST(SpatialRelation, ToleranceIsOneSided) {
    Tolerant tolerant;
    EXPECT_EQ(tolerant.getTolerance(), 1e-10);
    const JWEnvelop low(0, 0, 1, 1), high(5, 5, 9, 9), near(1e-11, 0, 1, 1);
    EXPECT_EQ(tolerant.getEnvelopAndEnvelop(&low, &high), 1);
    EXPECT_EQ(tolerant.getEnvelopAndEnvelop(&high, &low), 2);
    EXPECT_TRUE(tolerant.isEnvelopsEqual(&near, &low) && tolerant.isEnvelopsEqual(&low, &near));
    EXPECT_FALSE(kRelation.isEnvelopsEqual(&near, &low));
    tolerant.setTolerance(1e-12);
    EXPECT_FALSE(tolerant.isEnvelopsEqual(&near, &low));
    EXPECT_TRUE(tolerant.isOn() && !Tolerant(tolerant).isEnvelopsEqual(&near, &low));
    tolerant.close();
    EXPECT_FALSE(tolerant.isOn() || tolerant.isEnvelopsEqual(&low, &high));
}

TEST(SpatialRelation, PointsAndSegmentsAgainstEnvelopes) {
    const JWEnvelop e(0, 0, 10, 10);
    for (const auto& [x, y, code] : {std::tuple(5, 5, 7), {0, 5, 7}, {10, 10, 7}, {11, 5, 2}}) {
        const JWRawPoint raw(x, y);
        const JWPoint p(x, y);
        EXPECT_EQ(kRelation.getRawPointAndEnvelopSR(&raw, &e), code);
        EXPECT_EQ(kRelation.getPointAndEnvelopSR(&p, &e), code);
    }
    struct Row {
        JWLine line;
        int code;
    };
    const Row rows[] = {{{1, 1, 9, 9}, 7},   {{0, 0, 10, 10}, 7},   {{-5, 5, 15, 5}, 8},
                        {{5, 5, 15, 5}, 8},  {{-5, 5, 5, -5}, 8},   {{-6, 5, 5, -6}, 2},
                        {{20, 0, 20, 9}, 2}, {{10, -5, 10, 15}, 8}, {{3, 3, 3, 3}, 7}};
    for (const Row& row : rows)
        EXPECT_EQ(kRelation.getSegmentAndEnvelopSR(&row.line, &e), row.code);
    const JWPoint p(1, 2), same(1, 2, 3, 4), other(1, 2.0000000001);
    EXPECT_EQ(kRelation.getPointAndPointSR(&p, &same), 1);
    EXPECT_EQ(kRelation.getPointAndPointSR(&p, &other), 2);
    EXPECT_EQ(kRelation.getPointAndPointSR(&p, nullptr), 0);
    EXPECT_EQ(kRelation.getPointAndEnvelopSR(nullptr, &e), 0);
    EXPECT_EQ(kRelation.getRawPointAndEnvelopSR(nullptr, &e), 0);
    EXPECT_EQ(kRelation.getSegmentAndEnvelopSR(&rows[0].line, nullptr), 0);
}

constexpr const char* kSquare = "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))";
constexpr const char* kFrame = "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 8 2, 8 8, 2 8, 2 2))";

TEST(SpatialRelation, ObjectsOfAllKinds) {
    struct Row {
        const char* a;
        const char* b;
        int code;
    };
    const Row rows[] = {
        {"POINT (1 1)", "POINT (1 1)", 8},
        {"POINT (1 1)", "POINT (1 2)", 2},
        {"POINT (5 0)", "LINESTRING (0 0, 10 0)", 8},
        {"POINT (5 5)", kSquare, 8},
        {"POINT (0 5)", kSquare, 2},  // on the exterior ring
        {"POINT (2 5)", kFrame, 8},   // on the ring of a hole
        {"POINT (5 5)", kFrame, 2},
        {"POINT (1 1)", "MULTIPOINT ((0 0), (1 1))", 8},
        {"POINT (10 0)", "MULTILINESTRING ((0 0, 10 0), (0 5, 5 5))", 8},
        {"POINT (0 5)", "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 0)))", 8},
        {"LINESTRING (0 0, 9 9)", "LINESTRING (0 9, 9 0)", 8},
        {"LINESTRING (0 0, 9 9)", "LINESTRING (1 0, 9 8)", 2},
        {"LINESTRING (-5 5, 0 5)", kSquare, 8},
        {"LINESTRING (4 4, 6 6)", kFrame, 2},
        // Inverted on purpose.
        {"LINESTRING (0 0, 10 0)", "MULTIPOINT ((5 0))", 2},
        {"LINESTRING (0 0, 10 0)", "MULTIPOINT ((50 50))", 8},
        {"MULTILINESTRING ((0 0, 10 0))", "MULTIPOINT ((5 0))", 8},
        {"MULTILINESTRING ((0 0, 10 0))", "MULTIPOINT ((50 50))", 2},
        {"LINESTRING (0 0, 9 9)", "MULTILINESTRING ((5 0, 9 0), (0 9, 9 0))", 8},
        {"LINESTRING (20 20, 30 30)", "MULTIPOLYGON (((0 0, 9 0, 0 9, 0 0)))", 2},
        {kSquare, "POLYGON ((10 10, 20 10, 20 20, 10 10))", 8},
        {kFrame, "POLYGON ((3 3, 7 3, 7 7, 3 3))", 2},
        {kSquare, "MULTIPOINT ((0 5), (50 5))", 8},
        {kSquare, "MULTILINESTRING ((20 20, 30 30), (3 3, 4 4))", 8},
        {kSquare, "MULTIPOLYGON (((20 20, 30 20, 30 30, 20 20)))", 2},
        {"MULTIPOINT ((0 0), (1 1))", "MULTIPOINT ((1 1))", 8},
        {"MULTIPOINT ((0 0))", "MULTIPOINT ((1 1))", 2},
        {"MULTIPOINT ((5 5))", "MULTIPOLYGON (((0 0, 9 0, 9 9, 0 9, 0 0)))", 8},
        // parts that overlap do not cancel
        {"MULTIPOINT ((2 2))",
         "MULTIPOLYGON (((0 0, 9 0, 9 9, 0 9, 0 0)), ((1 1, 3 1, 3 3, 1 3, 1 1)))", 8},
        {"MULTILINESTRING ((0 0, 1 1))", "MULTILINESTRING ((5 5, 6 6), (1 1, 2 0))", 8},
        {"MULTILINESTRING ((0 0, 1 1))", "MULTIPOLYGON (((0 0, 9 0, 0 9, 0 0)))", 8},
        {"MULTIPOLYGON (((0 0, 9 0, 0 9, 0 0)))", "MULTIPOLYGON (((9 9, 9 8, 8 9, 9 9)))", 2},
        {"POINT (1 1)", "GEOMETRYCOLLECTION (POINT (1 1))", 0},
        {"POINT EMPTY", kSquare, 2},
        {"LINESTRING EMPTY", "MULTIPOINT ((1 1))", 8},  // inverted
    };
    for (const Row& row : rows) {
        const auto a = fromWkt(row.a), b = fromWkt(row.b);
        EXPECT_EQ(kRelation.getObjectsSR(a.get(), b.get()), row.code) << row.a << " " << row.b;
        EXPECT_EQ(kRelation.getObjectsSR(b.get(), a.get()), row.code) << row.b << " " << row.a;
    }
    const JWPoint p(5, 5);
    EXPECT_EQ(kRelation.getObjectsSR(nullptr, &p), 0);
    EXPECT_EQ(kRelation.getObjectsSR(&p, nullptr), 0);
    const auto square = fromWktAs<JWPolygon>(kSquare);
    const JWRing ring = square.getExteriorRing();
    EXPECT_EQ(kRelation.getObjectsSR(&ring, &p), 8);
    EXPECT_EQ(kRelation.getObjectsSR(&ring, &ring), 8);
    const JWCircular arc(JWRawPoint(0, 0), 5, 0, 1);
    EXPECT_EQ(kRelation.getObjectsSR(&p, &arc), 0);
}

/// A predicate with the kinds of its operands, taken from any geometries.
struct Named {
    const char* name;
    int kindA, kindB;
    std::function<bool(const JWGeometry*, const JWGeometry*)> ask;
    std::function<bool(const JWRelationMatrix&)> meaning;  ///< by the matrix of the two
};

template <class A, class B>
Named named(const char* name, bool (JWSpatialRelation::*predicate)(const A*, const B*) const,
            std::function<bool(const JWRelationMatrix&)> meaning) {
    return {name, A().getGeometryType(), B().getGeometryType(),
            [=](const JWGeometry* a, const JWGeometry* b) {
                return (kRelation.*predicate)(static_cast<const A*>(a), static_cast<const B*>(b));
            },
            std::move(meaning)};
}

#define NAMED(predicate, meaning) \
    named(#predicate, &JWSpatialRelation::predicate, &JWRelationMatrix::meaning)

/// All but those that count the exterior ring as outside.
std::vector<Named> namedPredicates() {
    return {
        NAMED(isPointsDisjoint, isDisjoint),
        NAMED(isPointMultiPointDisjoint, isDisjoint),
        NAMED(isPointLinestringDisjoint, isDisjoint),
        NAMED(isMultiPointsDisjoint, isDisjoint),
        NAMED(isMultiPointLinestringDisjoint, isDisjoint),
        NAMED(isMultiPointPolygonDisjoint, isDisjoint),
        NAMED(isLinestringPolygonDisjoint, isDisjoint),
        NAMED(isPolygonsDisjoint, isDisjoint),
        NAMED(isPointLinestringTouch, isTouching),
        NAMED(isMultiPointLinestringTouch, isTouching),
        NAMED(isPointPolygonTouch, isTouching),
        NAMED(isMultiPointPolygonTouch, isTouching),
        NAMED(isLinestringsTouch, isTouching),
        NAMED(isMulPointLinestringCross, isCrossing),
        NAMED(isLinestringsCross, isCrossing),
        NAMED(isLinestringPolygonCross, isCrossing),
        NAMED(isMulPointContainPoint, isContaining),
        NAMED(isMulPointContainMultiPoint, isContaining),
        NAMED(isLinestringContainPoint, isCovering),
        NAMED(isLinestringContainMultiPoint, isCovering),
        NAMED(isPolygonContainPoint, isContaining),
        NAMED(isPolygonContainMultiPoint, isContaining),
        NAMED(isPointsIntersect, isIntersecting),
        NAMED(isPointMultiPointIntersect, isIntersecting),
        NAMED(isMultiPointsIntersect, isIntersecting),
        NAMED(isPointLinestringIntersect, isIntersecting),
        NAMED(isMultiPointLinestringIntersect, isIntersecting),
        NAMED(isPointPolygonIntersect, isIntersecting),
        NAMED(isMultiPointPolygonIntersect, isIntersecting),
        NAMED(isLinestringsIntersect, isIntersecting),
        NAMED(isLinestringsPolygonIntersect, isIntersecting),
        NAMED(isPolygonsIntersect, isIntersecting),
    };
}

TEST(SpatialRelation, PredicatesMeanWhatTheMatrixSays) {
    std::vector<Named> predicates = namedPredicates();
    RandomGeometries random(5, 4);
    std::vector<std::unique_ptr<JWGeometry>> kinds[7];
    for (int i = 0; i < 240; ++i) {
        auto geometry = random.next();
        kinds[geometry->getGeometryType()].push_back(std::move(geometry));
    }
    for (const Named& predicate : predicates) {
        int hits = 0;
        for (const auto& a : kinds[predicate.kindA]) {
            for (const auto& b : kinds[predicate.kindB]) {
                JWRelationMatrix matrix;
                ASSERT_TRUE(relateGeometries(a.get(), b.get(), &matrix));
                const bool answer = predicate.ask(a.get(), b.get());
                hits += answer;
                ASSERT_EQ(answer, predicate.meaning(matrix)) << predicate.name << "\n"
                                                             << toWkt(*a) << "\n"
                                                             << toWkt(*b);
            }
        }
        EXPECT_GT(hits, 0) << predicate.name;
        EXPECT_FALSE(predicate.ask(nullptr, kinds[predicate.kindB].front().get()) ||
                     predicate.ask(kinds[predicate.kindA].front().get(), nullptr))
            << predicate.name;
    }
}

/// Few points are placed one by one, many by an index: the answers are the same.
TEST(SpatialRelation, OddRingsForFewPointsAndMany) {
    const auto spiked =
        fromWktAs<JWPolygon>("POLYGON ((0 0, 10 0, 10 10, 5 10, 5 5, 5 10, 0 10, 0 0))");
    const auto place = fromWktAs<JWPolygon>("POLYGON ((3 3, 3 3, 3 3))");
    const auto fine = fromWktAs<JWPolygon>("POLYGON ((1 1e-70, 10 1e-70, 10 10, 1 1e-70))");
    for (const char* points :
         {"MULTIPOINT ((2 2), (5 7))", "MULTIPOINT ((2 2), (5 7), (2 3), (2 4))"}) {
        const auto on = fromWktAs<JWMultiPoint>(points);
        EXPECT_TRUE(kRelation.isMulPointsPolygonCross(&on, &spiked)) << points;
    }
    for (const char* points : {"MULTIPOINT ((5 5))", "MULTIPOINT ((5 5), (5 5), (5 5), (5 5))"}) {
        const auto tip = fromWktAs<JWMultiPoint>(points);
        EXPECT_FALSE(kRelation.isMultiPointPolygonTouch(&tip, &spiked)) << points;
    }
    for (const char* points : {"MULTIPOINT ((3 3))", "MULTIPOINT ((3 3), (3 3), (3 3), (3 3))"}) {
        const auto at = fromWktAs<JWMultiPoint>(points);
        EXPECT_FALSE(kRelation.isMultiPointPolygonTouch(&at, &place)) << points;
        EXPECT_TRUE(kRelation.isPolygonContainMultiPoint(&place, &at)) << points;
    }
    const JWPoint at(3, 3);
    EXPECT_FALSE(kRelation.isPointPolygonTouch(&at, &place));
    EXPECT_FALSE(kRelation.isPolygonContainPolygon(&fine, &fine));
    const auto finite = fromWktAs<JWMultiPoint>("MULTIPOINT ((3 3), (1 1))");
    JWMultiPoint notFinite = finite;
    notFinite.addPoint(JWPoint(std::numeric_limits<double>::infinity(), 0));
    EXPECT_TRUE(kRelation.isPointMultiPointIntersect(&at, &finite));
    EXPECT_FALSE(kRelation.isPointMultiPointIntersect(&at, &notFinite));
    EXPECT_EQ(kRelation.getObjectsSR(&at, &notFinite), JWRelationDisjoint);
}

TEST(SpatialRelation, ExteriorRingCountsAsOutside) {
    const auto square = fromWktAs<JWPolygon>(kSquare), frame = fromWktAs<JWPolygon>(kFrame);
    const JWPoint onRing(0, 5), corner(10, 10), onHole(2, 5), inside(1, 1);
    EXPECT_TRUE(kRelation.isPointPolygonDisjoint(&onRing, &square));
    EXPECT_TRUE(kRelation.isPointPolygonDisjoint(&corner, &square));
    EXPECT_FALSE(kRelation.isPointPolygonDisjoint(&onHole, &frame));
    EXPECT_TRUE(kRelation.isPointPolygonIntersect(&onRing, &square));
    EXPECT_FALSE(kRelation.isPolygonContainPoint(&frame, &onHole) ||
                 kRelation.isPolygonContainPoint(&square, &corner));
    EXPECT_TRUE(kRelation.isPolygonContainPoint(&frame, &inside));

    struct CrossRow {
        const char* points;
        bool cross;
    };
    const CrossRow crosses[] = {
        {"MULTIPOINT ((1 1), (50 50))", true},
        {"MULTIPOINT ((1 1), (0 5))", true},
        {"MULTIPOINT ((1 1), (2 5))", false},
        {"MULTIPOINT ((1 1), (9 9))", false},
        {"MULTIPOINT ((50 50), (0 5))", false},
        {"MULTIPOINT ((5 5), (1 1))", true},
        {"MULTIPOINT ((1 1), (9 9), (1 2), (2 1), (1 9), (0 0))", true},
        {"MULTIPOINT ((1 1), (9 9), (1 2), (2 1), (1 9), (2 2))", false},
    };
    for (const CrossRow& row : crosses) {
        const auto points = fromWktAs<JWMultiPoint>(row.points);
        EXPECT_EQ(kRelation.isMulPointsPolygonCross(&points, &frame), row.cross) << row.points;
    }

    struct ContainRow {
        const char* line;
        bool contained;
    };
    const ContainRow lines[] = {
        {"LINESTRING (1 1, 9 1)", true},
        {"LINESTRING (0 5, 1 5)", false},  // a vertex on the exterior ring
        {"LINESTRING (2 5, 1 5)", true},   // one on the ring of the hole
        {"LINESTRING (1 1, 5 5)", false},  // into the hole
        {"LINESTRING (2 3, 2 7)", false},  // along the hole, never inside
        {"LINESTRING (2 3, 2 7, 1 8)", true},
        {"LINESTRING (1 1, 20 1)", false},
    };
    for (const ContainRow& row : lines) {
        const auto line = fromWktAs<JWLineString>(row.line);
        EXPECT_EQ(kRelation.isPolygonContainLinestring(&frame, &line), row.contained) << row.line;
    }
    const ContainRow polygons[] = {
        {kSquare, false},  // itself
        {"POLYGON ((1 1, 9 1, 9 9, 1 1))", true},
        {"POLYGON ((0 0, 9 1, 9 9, 0 0))", false},
        {"POLYGON ((5 5, 15 5, 15 15, 5 5))", false},
    };
    for (const ContainRow& row : polygons) {
        const auto polygon = fromWktAs<JWPolygon>(row.line);
        EXPECT_EQ(kRelation.isPolygonContainPolygon(&square, &polygon), row.contained) << row.line;
    }
}

TEST(SpatialRelation, OperandsWithoutPointsAreDisjoint) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto square = fromWktAs<JWPolygon>(kSquare);
    JWPolygon bad = square;
    bad.getRingPtrAt(0)->updatePointAt(JWRawPoint(nan, 0), 1);
    const JWPoint nowhere(nan, nan), half(5, nan), p(5, 5);
    const JWPolygon none;
    EXPECT_TRUE(kRelation.isPointPolygonDisjoint(&nowhere, &square));
    EXPECT_TRUE(kRelation.isPointPolygonDisjoint(&half, &square));
    EXPECT_TRUE(kRelation.isPointPolygonDisjoint(&p, &bad));
    EXPECT_TRUE(kRelation.isPointPolygonDisjoint(&p, &none));
    EXPECT_TRUE(kRelation.isPolygonsDisjoint(&square, &bad));
    EXPECT_TRUE(kRelation.isPolygonsDisjoint(&square, &none));
    EXPECT_FALSE(kRelation.isPolygonContainPolygon(&square, &none) ||
                 kRelation.isPolygonContainPolygon(&none, &square) ||
                 kRelation.isPolygonsIntersect(&bad, &bad) ||
                 kRelation.isPointsIntersect(&nowhere, &nowhere));
    EXPECT_EQ(kRelation.getObjectsSR(&square, &bad), 2);
}

// A point some units in the last place beside a long edge is beside it.
TEST(SpatialRelation, PointsBesideAnEdgeAreTold) {
    const auto triangle = fromWktAs<JWPolygon>("POLYGON ((0 0, 1e6 3e5, 0 3e5, 0 0))");
    for (const double x : {333333.3, 1e5 / 3, 0.7, 999999.9}) {
        const double y = x * 0.3;
        int inside = 0;
        for (const double shifted : {y - 1e-9, y + 1e-9}) {
            const JWPoint p(x, shifted);
            inside += kRelation.isPolygonContainPoint(&triangle, &p);
        }
        EXPECT_EQ(inside, 1) << x;
    }
    const JWPoint on(500000, 150000);
    EXPECT_TRUE(kRelation.isPointPolygonTouch(&on, &triangle));
}

}  // namespace
