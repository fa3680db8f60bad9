// SPDX-License-Identifier: MIT
//
// The computational primitives: tables of figures worked out by hand, the null answers, and the two
// searches that leave edges out (ring positions, self-intersection) against the plain definition.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "jw_cpgeometrybasic.h"
#include "jw_geometrywithenvelop.h"
#include "jw_srgeometrybasic.h"

namespace {

using namespace jws;
using CP = JWCPGeometryBasic;
using SR = JWSRGeometryBasic;
using GE = JWGeometryWithEnvelop;
using Points = std::vector<JWRawPoint>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const double kPi = std::acos(-1.0);

const Points kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
const Points kU = {{0, 0}, {6, 0}, {6, 6}, {5, 6}, {5, 1}, {1, 1}, {1, 6}, {0, 6}, {0, 0}};

/// The points as they are: nothing is closed.
template <class Curve>
Curve curveOf(const Points& points) {
    Curve curve;
    for (const JWRawPoint& p : points) curve.addPoint(p);
    curve.updateEnvelop();
    return curve;
}
JWRing ringOf(const Points& points) { return curveOf<JWRing>(points); }
JWLineString lineOf(const Points& points) { return curveOf<JWLineString>(points); }

TEST(Primitives, NullAnswersDiffer) {
    const JWRawPoint p(1, 2);
    JWRawPoint out(7, 7);
    const JWRing ring = ringOf(kSquare), emptyRing;
    const JWLineString line = lineOf(kSquare), emptyLine;
    for (int null = 0; null < 3; ++null) {
        const JWRawPoint *a = null == 0 ? nullptr : &p, *b = null == 1 ? nullptr : &p,
                         *c = null == 2 ? nullptr : &p;
        for (const double distance :
             {CP::pointSegmentDistance(a, b, c), CP::pointLineDistance(a, b, c),
              CP::pointRayDistance(a, b, c), CP::threePointsIncludedAngle(a, b, c)})
            EXPECT_EQ(distance, -1.0);
        for (const int on : {CP::isPointLeftOfLine(a, b, c, 0),
                             CP::threePointsCollinear(a, b, c, 0), CP::isPointOnLine(a, b, c, 0),
                             CP::isPointOnSegment(a, b, c, 0), CP::isPointOnRay(a, b, c, 0)})
            EXPECT_EQ(on, -2);
        EXPECT_EQ(CP::triangleArea(a, b, c), 0.0);
        EXPECT_FALSE(CP::isClockWise(a, b, c));
        EXPECT_FALSE(CP::isSegmentsIntersect(&p, a, b, c));
        EXPECT_EQ(CP::segmentIntersect(&p, a, b, c, &out, &out), -3);
        if (null == 0) continue;
        JWRawPoint *I0 = null == 1 ? nullptr : &out, *I1 = null == 2 ? nullptr : &out;
        EXPECT_EQ(CP::segmentIntersect(&p, &p, &p, &p, I0, I1), -3);
        EXPECT_EQ(CP::twoPointsDistance(b, c), -1.0);
        EXPECT_EQ(CP::twoPointsGreateCircle1(b, c), -1.0);
        EXPECT_EQ(CP::twoPointsGreateCircle2(b, c), 9999.0);
        EXPECT_EQ(CP::segmentXAxisAngle(b, c), 9999.0);
        const JWRing* r = null == 1 ? nullptr : &ring;
        const JWLineString* l = null == 1 ? nullptr : &line;
        const JWEnvelop envelop(0, 0, 1, 1), *e = null == 1 ? nullptr : &envelop;
        EXPECT_EQ(CP::isPointWithinEnvelop(c, e), -2);
        EXPECT_EQ(CP::isPointOnLineString(c, l, 0), -2);
        EXPECT_EQ(CP::isPointOnRing(c, r, 0), -2);
        EXPECT_EQ(CP::isPointWithinRingCN(c, r), -1);
        EXPECT_EQ(CP::isPointWithinRingWN(c, r), -2);
        EXPECT_EQ(CP::isPointWithinClosedLineCN(c, l), -1);
    }
    EXPECT_EQ(CP::isPointOnLineString(&p, &emptyLine, 0), -2);
    EXPECT_EQ(CP::isPointOnRing(&p, &emptyRing, 0), -2);
    EXPECT_EQ(CP::ringArea(nullptr), 0.0);
    EXPECT_TRUE(CP::isLineStringWeird(nullptr) && CP::isRingWeird(nullptr));
    for (const JWRing* r : {static_cast<const JWRing*>(nullptr), &emptyRing})
        EXPECT_FALSE(CP::getPointInRing(r, &out) || CP::ringCentroid(r, &out));
    for (const JWLineString* l : {static_cast<const JWLineString*>(nullptr), &emptyLine})
        EXPECT_FALSE(CP::getPointInClosedLine(l, &out) || CP::lineStringCentroid(l, &out));
    EXPECT_FALSE(CP::getPointInRing(&ring, nullptr) || CP::ringCentroid(&ring, nullptr));
    EXPECT_EQ(out, JWRawPoint(7, 7));
}

TEST(Primitives, Distances) {
    const struct {
        JWRawPoint p, a, b;
        double segment, line, ray;
    } rows[] = {
        {{3, 4}, {0, 0}, {10, 0}, 4, 4, 4},  {{-3, 4}, {0, 0}, {10, 0}, 5, 4, 5},
        {{13, 4}, {0, 0}, {10, 0}, 5, 4, 4}, {{3, 4}, {0, 0}, {0, 0}, 5, 5, 5},
        {{10, 0}, {0, 0}, {10, 0}, 0, 0, 0}, {{0, -7}, {0, 0}, {3, 4}, 7, 4.2, 7},
    };
    for (const auto& r : rows) {
        EXPECT_DOUBLE_EQ(CP::pointSegmentDistance(&r.p, &r.a, &r.b), r.segment);
        EXPECT_DOUBLE_EQ(CP::pointLineDistance(&r.p, &r.a, &r.b), r.line);
        EXPECT_DOUBLE_EQ(CP::pointRayDistance(&r.p, &r.a, &r.b), r.ray);
        JWRawPoint q(0, 0);  // the closest point, as far away as the answer says
        EXPECT_DOUBLE_EQ(SR::shortestPointToSegment(r.p, r.a, r.b, q), r.segment);
        EXPECT_DOUBLE_EQ(CP::twoPointsDistance(&r.p, &q), r.segment);
        EXPECT_LT(CP::pointSegmentDistance(&q, &r.a, &r.b), 1e-15);
        const double foot = SR::shortestPointToLine(r.p, r.a, r.b, q);
        EXPECT_TRUE(r.a == r.b ? std::isnan(foot) : std::fabs(foot - r.line) < 1e-15);
        EXPECT_EQ(CP::isPointOnLine(&q, &r.a, &r.b, 1e-15), r.a != r.b);
        // Each on-test changes its answer at exactly its distance, whatever the tolerance's sign.
        for (const double factor : {0.999, 1.001, -0.999, -1.001}) {
            const int on = std::fabs(factor) > 1;
            if (r.segment == 0) continue;
            EXPECT_EQ(CP::isPointOnSegment(&r.p, &r.a, &r.b, factor * r.segment), on);
            EXPECT_EQ(CP::isPointOnLine(&r.p, &r.a, &r.b, factor * r.line), on);
            EXPECT_EQ(CP::threePointsCollinear(&r.p, &r.a, &r.b, factor * r.line), on);
            EXPECT_EQ(CP::isPointOnRay(&r.p, &r.a, &r.b, factor * r.ray), on);
        }
    }
    const JWRawPoint a(0, 0), b(3, 4), end(10, 0);
    EXPECT_EQ(CP::twoPointsDistance(&a, &b), 5);
    EXPECT_EQ(CP::isPointOnSegment(&end, &a, &end, 0), 1);
    // Beside a line at projected coordinates: products of the coordinates themselves would leave
    // 0.03 mm of noise.
    const JWRawPoint from(500000.3, 4649776.7), to(500007.3, 4649783.7),
        beside(500001.3, 4649775.7);
    EXPECT_NEAR(CP::pointLineDistance(&beside, &from, &to), std::sqrt(2.0), 1e-8);
    EXPECT_EQ(CP::isPointOnLine(&to, &from, &to, 0), 1);
    JWRawPoint p(3, 4);
    EXPECT_EQ(SR::shortestPointToSegment(p, a, end, p), 4);  // the output is the point
    EXPECT_EQ(p, JWRawPoint(3, 0));
}

TEST(Primitives, GreatCircles) {
    const struct {
        JWRawPoint a, b;
        double degrees;
    } rows[] = {{{0, 0}, {90, 0}, 90},
                {{0, 0}, {0, 60}, 60},
                {{170, 0}, {-170, 0}, 20},
                {{0, 80}, {180, 80}, 20},
                {{0, 0}, {180, 0}, 180}};
    for (const auto& r : rows) {
        const double kilometres = 6371.009 * r.degrees * kPi / 180;
        EXPECT_NEAR(CP::twoPointsGreateCircle1(&r.a, &r.b), kilometres, 1e-6);
        EXPECT_NEAR(CP::twoPointsGreateCircle2(&r.a, &r.b), kilometres, 1e-9);
    }
    for (int latitude = -90; latitude <= 90; ++latitude) {  // the cosine sum may exceed 1
        const JWRawPoint p(13, latitude);
        EXPECT_LT(CP::twoPointsGreateCircle1(&p, &p), 2e-4) << latitude;
        EXPECT_LT(CP::twoPointsGreateCircle2(&p, &p), 1e-11) << latitude;
    }
    EXPECT_EQ(CP::twoPointsGreateCircle1(&rows[0].a, &rows[0].a), 0);
}

TEST(Primitives, SideOfLine) {
    const struct {
        JWRawPoint p, a, b;
        double tol;
        int side;
    } rows[] = {
        {{0, 1}, {0, 0}, {1, 0}, 0, 1},     {{0, -1}, {0, 0}, {1, 0}, 0, -1},
        {{9, 0}, {0, 0}, {1, 0}, 0, 0},     {{0, 0.5}, {0, 0}, {1, 0}, -1, 0},
        {{0, 0.5}, {0, 0}, {1, 0}, 0.5, 0}, {{0, 0.5}, {0, 0}, {1, 0}, 0.4, 1},
        {{1, 0}, {0, 0}, {0, 0}, 0, -2},    {{1, 0}, {0, 0}, {0, 0}, 1, 0},
        {{kNaN, 0}, {0, 0}, {1, 0}, 0, -2},
    };
    for (const auto& r : rows) EXPECT_EQ(CP::isPointLeftOfLine(&r.p, &r.a, &r.b, r.tol), r.side);
    const JWRawPoint a(0, 0), b(1, 0), c(1, 1), d(2, 0);
    EXPECT_EQ(CP::triangleArea(&a, &c, &b), -0.5);
    EXPECT_TRUE(CP::isClockWise(&a, &c, &b));
    EXPECT_FALSE(CP::isClockWise(&a, &b, &c));
    EXPECT_FALSE(CP::isClockWise(&a, &b, &d));
}

TEST(Primitives, Angles) {
    const struct {
        JWRawPoint to;
        double angle;
    } rows[] = {{{1, 0}, 0},
                {{2, 2}, kPi / 4},
                {{0, 3}, kPi / 2},
                {{-1, 0}, kPi},
                {{-1, -1}, 5 * kPi / 4},
                {{0, -1}, 3 * kPi / 2},
                {{0, 0}, 0},
                {{1, -1e-20}, 6.283185307179586},
                {{1e-200, 1e-200}, kPi / 4}};
    const JWRawPoint origin(0, 0), east(1, 0);
    for (const auto& r : rows) EXPECT_DOUBLE_EQ(CP::segmentXAxisAngle(&origin, &r.to), r.angle);
    const JWRawPoint north(0, 2), west(-3, 0), far(1e-200, 0);
    EXPECT_DOUBLE_EQ(CP::threePointsIncludedAngle(&east, &origin, &north), kPi / 2);
    EXPECT_DOUBLE_EQ(CP::threePointsIncludedAngle(&east, &origin, &west), kPi);
    EXPECT_EQ(CP::threePointsIncludedAngle(&east, &origin, &origin), 0);
    EXPECT_EQ(CP::threePointsIncludedAngle(&far, &origin, &far), 0);
    for (int i = 1; i < 200; ++i) {  // equal arms: the quotient may exceed 1
        const JWRawPoint arm(i * 0.1, 1.0 / i);
        EXPECT_LT(CP::threePointsIncludedAngle(&arm, &origin, &arm), 1e-7);
    }
}

TEST(Primitives, SegmentIntersect) {
    const JWRawPoint kUnset(-99, -99);
    const struct {
        JWRawPoint a0, a1, b0, b1;
        int code;
        JWRawPoint I0, I1;
        bool cross;  ///< `isSegmentsIntersect`
    } rows[] = {
        // crossing, touching, missing
        {{0, 0}, {2, 2}, {0, 2}, {2, 0}, 1, {1, 1}, kUnset, true},
        {{0, 0}, {2, 0}, {1, 0}, {1, 1}, 1, {1, 0}, kUnset, false},
        {{0, 0}, {2, 0}, {1, 0}, {1, -1}, 1, {1, 0}, kUnset, true},
        {{0, 0}, {2, 0}, {2, 0}, {3, 5}, 1, {2, 0}, kUnset, false},
        {{0, 0}, {2, 0}, {3, -1}, {3, 1}, 0, kUnset, kUnset, false},
        {{0, 0}, {2, 0}, {1, 1}, {1, 2}, 0, kUnset, kUnset, false},
        // parallel and collinear
        {{0, 0}, {1, 0}, {0, 1}, {1, 1}, 3, kUnset, kUnset, false},
        {{0, 0}, {2, 0}, {1, 0}, {3, 0}, 2, {1, 0}, {2, 0}, false},
        {{0, 0}, {2, 0}, {3, 0}, {1, 0}, 2, {2, 0}, {1, 0}, false},
        {{0, 0}, {0, 9}, {0, 1}, {0, 3}, 2, {0, 1}, {0, 3}, false},
        {{0, 0}, {1, 0}, {1, 0}, {2, 0}, 5, {1, 0}, kUnset, false},
        {{0, 0}, {1, 1}, {-1, -1}, {0, 0}, 5, {0, 0}, kUnset, false},
        {{0, 0}, {1, 0}, {2, 0}, {3, 0}, 4, kUnset, kUnset, false},
        // points
        {{1, 1}, {1, 1}, {1, 1}, {1, 1}, -1, {1, 1}, kUnset, false},
        {{1, 1}, {1, 1}, {2, 1}, {2, 1}, -2, {1, 1}, {2, 1}, false},
        {{1, 0}, {1, 0}, {0, 0}, {2, 0}, 1, {1, 0}, kUnset, false},
        {{0, 0}, {2, 0}, {1, 0}, {1, 0}, 1, {1, 0}, kUnset, false},
        {{0, 0}, {2, 0}, {5, 0}, {5, 0}, 0, kUnset, kUnset, false},
        {{0, 0}, {2, 0}, {0, 1}, {0, 1}, 3, kUnset, kUnset, false},
        // no answer to be had
        {{kNaN, 0}, {2, 0}, {1, -1}, {1, 1}, 0, kUnset, kUnset, false},
        {{-kInf, 0}, {2, 0}, {1, -1}, {1, 1}, 0, kUnset, kUnset, false},
    };
    for (const auto& r : rows) {
        const std::string row = "row " + std::to_string(&r - rows);
        JWRawPoint I0 = kUnset, I1 = kUnset;
        EXPECT_EQ(CP::segmentIntersect(&r.a0, &r.a1, &r.b0, &r.b1, &I0, &I1), r.code) << row;
        EXPECT_EQ(I0, r.I0) << row;
        EXPECT_EQ(I1, r.I1) << row;
        if (r.code == 0 && !std::isfinite(r.a0.x)) continue;
        EXPECT_EQ(CP::isSegmentsIntersect(&r.a0, &r.a1, &r.b0, &r.b1), r.cross) << row;
        EXPECT_EQ(GE::isSegmentIntersect(r.a0, r.a1, r.b0, r.b1), r.cross) << row;
        const bool isPoint = r.a0 == r.a1 || r.b0 == r.b1;
        if (isPoint && r.code != 3) continue;  // a hard stop, tested with the others
        const bool meet = r.code == 1 || r.code == 2 || r.code == 5;
        EXPECT_EQ(GE::segmentIntersected(r.a0, r.a1, r.b0, r.b1), meet) << row;
    }
    JWRawPoint a0(0, 0), a1(2, 0), b0(1, 0), b1(3, 0);  // outputs in place of arguments
    EXPECT_EQ(CP::segmentIntersect(&a0, &a1, &b0, &b1, &b0, &a1), 2);
    EXPECT_EQ(b0, JWRawPoint(1, 0));
    EXPECT_EQ(a1, JWRawPoint(2, 0));
}

// On a straight line cut at values that are not representable, the direction of two pieces differs
// by rounding and their parameters are noise. Pieces that are far apart must not meet.
TEST(Primitives, NearlyCollinearPiecesFarApartDoNotMeet) {
    Points points;
    for (int i = 0; i < 200; ++i) points.emplace_back(i / 3.0, i / 7.0);
    JWRawPoint I0, I1;
    for (size_t i = 0; i + 3 < points.size(); ++i)
        for (size_t j = i + 2; j + 1 < points.size(); ++j) {
            const int code = CP::segmentIntersect(&points[i], &points[i + 1], &points[j],
                                                  &points[j + 1], &I0, &I1);
            ASSERT_TRUE(code == 0 || code == 3 || code == 4) << i << ' ' << j << ' ' << code;
        }
    const JWLineString line = lineOf(points);
    EXPECT_FALSE(CP::isLineStringWeird(&line));
}

TEST(Primitives, PointsOnCurves) {
    const struct {
        Points points;
        JWRawPoint p;
        double tol;
        int onLine, onRing;
    } rows[] = {
        {{{0, 0}, {10, 0}}, {5, 0.001}, 0.01, 0, 0},  // outside the envelope
        {{{0, 0}, {10, 0}, {10, 1}}, {5, 0.5}, -0.5, 1, 1},
        {{{0, 0}, {10, 0}, {10, 1}}, {5, 0.5}, 0.49, 0, 0},
        {{{0, 0}, {10, 0}}, {5, 0}, 0, 1, 0},  // below 3 points a ring is its first point
        {{{0, 0}, {10, 0}}, {5, 0}, 5, 1, 1},
        {{{3, 3}}, {3, 3}, 0, 1, 1},
        {kSquare, {10, 5}, 0, 1, 1},
        {kSquare, {5, 5}, 4.99, 0, 0},
        {kSquare, {5, 5}, 5, 1, 1},
        {kSquare, {kNaN, 5}, 5, 0, 0},
    };
    for (const auto& r : rows) {
        const std::string row = "row " + std::to_string(&r - rows);
        const JWLineString line = lineOf(r.points);
        const JWRing ring = ringOf(r.points);
        EXPECT_EQ(CP::isPointOnLineString(&r.p, &line, r.tol), r.onLine) << row;
        EXPECT_EQ(CP::isPointOnRing(&r.p, &ring, r.tol), r.onRing) << row;
    }
    const JWEnvelop envelop(0, 0, 10, 10);
    const JWRawPoint border(10, 3), outside(10.5, 3);
    EXPECT_EQ(CP::isPointWithinEnvelop(&border, &envelop), 1);
    EXPECT_EQ(CP::isPointWithinEnvelop(&outside, &envelop), 0);
}

// Edges far from the point are passed over without computing the distance.
TEST(Primitives, PointsOnCurvesEqualTheWalkOverAllEdges) {
    const unsigned seed = 20240117;
    std::mt19937 random(seed);
    for (int round = 0; round < 3000; ++round) {
        const double unit = round % 2 != 0 ? 0.1 : 1, shift = round % 3 == 0 ? 4e6 : 0;
        const auto place = [&] { return static_cast<int>(random() % 13) * unit; };
        Points points;
        for (int i = 0; i < 6; ++i) points.emplace_back(shift + place(), place());
        const JWLineString line = lineOf(points);
        JWRawPoint p(shift + place(), place());
        if (round % 5 == 0) p.set((p.x + points[0].x) / 2, (p.y + points[0].y) / 2);
        const double tol = round % 4 * 0.5 * unit;
        int expected = 0;
        if (line.getEnvelop().contains(p))
            for (size_t i = 0; i + 1 < points.size(); ++i)
                expected |= CP::isPointOnSegment(&p, &points[i], &points[i + 1], tol);
        ASSERT_EQ(CP::isPointOnLineString(&p, &line, tol), expected)
            << "seed " << seed << " round " << round;
    }
}

// All rules for a point in a ring side by side: they differ on the boundary.
TEST(Primitives, PointsInRings) {
    // The crossing formula alone puts the first vertex of this ring inside.
    const Points slanted = {{0.9, 1.7}, {1.2, 1.0}, {2.5, 2.3}, {0.9, 1.7}};
    const Points pentagram = {{0, 0}, {4, 8}, {8, 0}, {-1, 5}, {9, 5}, {0, 0}};
    const struct {
        Points points;
        JWRawPoint p;
        int crossing, winding;
        bool parity, boundary;
    } rows[] = {
        {kSquare, {5, 5}, 1, 1, true, false},     {kSquare, {15, 5}, 0, 0, false, false},
        {kSquare, {0, 0}, 0, 1, true, true},      {kSquare, {10, 10}, 0, 0, false, true},
        {kSquare, {0, 5}, 0, 1, true, true},      {kSquare, {10, 5}, 0, 0, false, true},
        {kSquare, {5, 0}, 0, 1, true, true},      {kSquare, {5, 10}, 0, 0, false, true},
        {kU, {0.5, 3}, 1, 1, true, false},        {kU, {4, 2}, 0, 0, false, false},
        {pentagram, {4, 4}, 0, 1, false, false},  {kSquare, {kNaN, 5}, 0, 0, false, false},
        {slanted, {0.9, 1.7}, 0, 1, true, true},  {slanted, {2.5, 2.3}, 0, 0, false, true},
        {slanted, {1.2, 1.5}, 1, 1, true, false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(&r - rows);
        JWRing ring = ringOf(r.points);
        EXPECT_EQ(CP::isPointWithinRingCN(&r.p, &ring), r.crossing);
        EXPECT_EQ(CP::isPointWithinRingWN(&r.p, &ring), r.winding);
        EXPECT_EQ(SR::isPointWithinRing(r.p, ring), r.crossing || r.boundary);
        EXPECT_EQ(GE::point_in_ring(r.p, &ring), r.parity);
        EXPECT_EQ(ring.isPointInRing(r.p), r.crossing == 1);
        EXPECT_EQ(ring.isPointOnRingBoundary(r.p), r.boundary);
        JWLineString line = lineOf(r.points);
        EXPECT_EQ(CP::isPointWithinClosedLineCN(&r.p, &line), r.crossing);
        // A stale envelope is used by the ring, but by the line only when it is valid.
        line.setEnvelop(JWEnvelop::invalid());
        ring.setEnvelop(JWEnvelop::invalid());
        EXPECT_EQ(CP::isPointWithinClosedLineCN(&r.p, &line), r.crossing);
        EXPECT_EQ(CP::isPointWithinRingCN(&r.p, &ring), 0);
        EXPECT_EQ(CP::isPointWithinRingWN(&r.p, &ring), 0);
    }
    const JWRawPoint inside(3, 1);
    const JWLineString open = lineOf({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
    EXPECT_EQ(CP::isPointWithinClosedLineCN(&inside, &open), -1);
    const JWRing three = ringOf({{0, 0}, {4, 0}, {4, 4}});
    EXPECT_EQ(CP::isPointWithinRingCN(&inside, &three), 0);
    EXPECT_EQ(CP::isPointWithinRingWN(&inside, &three), 0);
}

TEST(Primitives, AreasAndCentroids) {
    // Only stored edges are summed; an open ring's centroid is that of the closed one.
    const JWRing open = ringOf({{10, 10}, {14, 10}, {14, 14}, {10, 14}});
    const JWRing flat = ringOf({{0, 0}, {1, 1}, {2, 2}, {0, 0}}), u = ringOf(kU);
    JWRawPoint c(-7, -7);
    EXPECT_EQ(CP::ringArea(&open), 36);
    EXPECT_EQ(CP::ringArea(&flat), 0);
    EXPECT_FALSE(CP::ringCentroid(&flat, &c));
    EXPECT_EQ(c, JWRawPoint(-7, -7));
    EXPECT_TRUE(CP::ringCentroid(&open, &c));
    EXPECT_EQ(c, JWRawPoint(12, 12));
    EXPECT_EQ(CP::ringArea(&u), 16);
    EXPECT_TRUE(CP::ringCentroid(&u, &c));
    EXPECT_EQ(c, JWRawPoint(3, 2.375));
    // A parcel of 1 m at projected coordinates, clockwise, keeps its digits.
    const JWRing parcel = ringOf({{500000.3, 4649776.7},
                                  {500000.3, 4649777.7},
                                  {500001.3, 4649777.7},
                                  {500001.3, 4649776.7},
                                  {500000.3, 4649776.7}});
    EXPECT_NEAR(CP::ringArea(&parcel), -1, 1e-8);
}

TEST(Primitives, RepresentativePoints) {
    JWRawPoint p(0, 0);
    const JWRing square = ringOf(kSquare), u = ringOf(kU), two = ringOf({{0, 0}, {4, 2}});
    EXPECT_TRUE(CP::getPointInRing(&square, &p));
    EXPECT_EQ(p, JWRawPoint(5, 5));
    EXPECT_TRUE(CP::getPointInRing(&u, &p));  // the mean of three points, outside the U
    EXPECT_EQ(p, JWRawPoint(4, 2));
    EXPECT_TRUE(CP::getPointInRing(&two, &p));
    EXPECT_EQ(p, JWRawPoint(2, 1));
    const JWLineString line = lineOf({{0, 0}, {3, 0}, {3, 6}, {9, 9}}), one = lineOf({{3, 4}});
    EXPECT_TRUE(CP::getPointInClosedLine(&line, &p));
    EXPECT_EQ(p, JWRawPoint(2, 2));
    EXPECT_TRUE(CP::getPointInClosedLine(&one, &p));
    EXPECT_EQ(p, JWRawPoint(3, 4));
    EXPECT_FALSE(CP::lineStringCentroid(&one, &p));
    const JWLineString bend = lineOf({{0, 0}, {4, 0}, {4, 2}}), still = lineOf({{1, 1}, {1, 1}});
    EXPECT_TRUE(CP::lineStringCentroid(&bend, &p));
    EXPECT_DOUBLE_EQ(p.x, (2 * 4 + 4 * 2) / 6.0);
    EXPECT_DOUBLE_EQ(p.y, 1 * 2 / 6.0);
    EXPECT_TRUE(CP::lineStringCentroid(&still, &p));
    EXPECT_TRUE(std::isnan(p.x) && std::isnan(p.y));
}

TEST(Primitives, EllipsoidalQuadrangle) {
    EXPECT_NEAR(CP::TrapezoidAreaWGS84(0, 0, 1, 1), 12308448678.8524, 12308448678.8524e-12);
    EXPECT_NEAR(CP::TrapezoidAreaWGS84(-180, -90, 180, 90), 5.07800888510448e14, 5.1e2);
    EXPECT_EQ(CP::TrapezoidAreaWGS84(1, 0, 0, 1), -CP::TrapezoidAreaWGS84(0, 0, 1, 1));
    EXPECT_NEAR(CP::TrapezoidAreaWGS84(0, 1, 1, 0), -12308448678.8524, 12308448678.8524e-12);
    EXPECT_EQ(CP::TrapezoidAreaWGS84(3, 4, 3, 9), 0);
}

TEST(Weird, Table) {
    const struct {
        Points points;
        bool line, ring;
    } rows[] = {
        {{}, true, true},
        {{{0, 0}, {1, 0}}, true, true},
        {{{0, 0}, {1, 0}, {1, 1}}, false, true},
        {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}, false, false},
        {kSquare, true, true},  // closed: first and last edge meet
        {kU, true, true},
        {{{0, 0}, {1, 0}, {1, 0}, {2, 0}}, true, true},           // a point twice, inside
        {{{0, 0}, {0, 0}, {1, 0}, {2, 1}}, false, false},         // a point twice, at the start
        {{{0, 0}, {0, 0}, {0, 0}, {2, 1}}, true, true},           // three times
        {{{0, 0}, {4, 0}, {2, 0}, {2, 5}}, true, true},           // turns back on itself
        {{{0, 0}, {1, 0}, {2, 0}, {3, 0}}, false, false},         // straight on
        {{{0, 0}, {4, 0}, {4, 4}, {2, 4}, {2, -1}}, true, true},  // crosses
        {{{0, 0}, {4, 0}, {4, 4}, {2, 4}, {2, 0}}, true, true},   // touches
        {{{0, 0}, {4, 0}, {4, 4}, {2, 4}, {2, 1}}, false, false},
        {{{0, 0}, {kNaN, 0}, {4, 4}, {2, 4}}, false, false},
    };
    for (const auto& r : rows) {
        const std::string row = "row " + std::to_string(&r - rows);
        const JWLineString line = lineOf(r.points);
        const JWRing ring = ringOf(r.points);
        EXPECT_EQ(CP::isLineStringWeird(&line), r.line) << row;
        EXPECT_EQ(CP::isRingWeird(&ring), r.ring) << row;
    }
}

/// The definition: every pair by its code.
bool weirdByAllPairs(const Points& points) {
    JWRawPoint I0, I1;
    for (size_t i = 0; i + 1 < points.size(); ++i)
        for (size_t j = i + 1; j + 1 < points.size(); ++j) {
            const int code = CP::segmentIntersect(&points[i], &points[i + 1], &points[j],
                                                  &points[j + 1], &I0, &I1);
            if (code == 2 || code == -1) return true;
            if (j > i + 1 && (code == 1 || code == 5)) return true;
        }
    return false;
}

/// Lines of many segments that mostly do not meet themselves; `kind` chooses the shape, `count` the
/// number of points.
Points longLine(int kind, int count, std::mt19937& random) {
    std::uniform_real_distribution<double> unit(0, 1);
    Points points;
    double x = 0, y = 0;
    for (int i = 0; i < count; ++i) {
        const double turn = 6.2 * i / count;
        if (kind == 0) {  // spikes of random length around a point
            const double r = 0.5 + unit(random);
            points.emplace_back(r * std::cos(turn), r * std::sin(turn));
        } else if (kind == 1) {  // hatching at 45 degrees, far from the origin
            points.emplace_back(5e5 + i % 2 - 20.0 * i / count, 4e6 + i % 2 + 20.0 * i / count);
        } else if (kind == 2) {  // spiral
            points.emplace_back(turn * std::cos(40 * turn), turn * std::sin(40 * turn));
        } else if (kind == 3) {  // a walk that rarely comes back
            points.emplace_back(x += unit(random) - 0.02, y += unit(random) - 0.5);
        } else {  // straight, in steps that are not representable
            points.emplace_back(i / 3.0, i / 7.0);
        }
    }
    return points;
}

/// Many touches, overlaps and repeated points: steps to the right on three close rows.
Points gridLine(int round, std::mt19937& random) {
    Points points;
    int x = 0;
    for (int i = 0; i < 28 + round % 8; ++i)
        points.emplace_back(x += random() % (2 + round % 40) == 0 ? 0 : 1, random() % 3 * 0.1);
    return points;
}

TEST(Weird, EqualsAllPairs) {
    const unsigned seed = 977;
    std::mt19937 random(seed);
    int weird = 0, plain = 0;
    for (int round = 0; round < 1200; ++round) {
        Points points = round % 3 != 0 ? gridLine(round, random)
                                       : longLine(round % 5, 30 + round % 170, random);
        // One vertex, half of the time, goes near or onto another part of the line.
        if (round % 2 == 0) {
            const size_t from = random() % points.size(), to = random() % (points.size() - 1);
            const double t = round % 4 == 0 ? 0 : 0.5;
            points[from].set(points[to].x + t * (points[to + 1].x - points[to].x),
                             points[to].y + t * (points[to + 1].y - points[to].y));
        }
        const JWRing ring = ringOf(points);
        const bool expected = weirdByAllPairs(points);
        ++(expected ? weird : plain);
        ASSERT_EQ(CP::isRingWeird(&ring), expected) << "seed " << seed << " round " << round;
    }
    EXPECT_GT(weird, 200);
    EXPECT_GT(plain, 100);
}

// Would take minutes by all pairs.
TEST(Weird, LongLinesAreAnswered) {
    std::mt19937 random(5);
    for (const int kind : {0, 1, 2, 4}) {
        const JWLineString line = lineOf(longLine(kind, 100000, random));
        EXPECT_FALSE(CP::isLineStringWeird(&line)) << "kind " << kind;
    }
}

}  // namespace
