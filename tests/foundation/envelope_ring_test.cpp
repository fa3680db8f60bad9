// SPDX-License-Identifier: MIT
//
// Envelope and ring tests: tables on a square and a U, the two point-in-ring rules side by side,
// and the indexed ring-in-ring test against its definition.
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
using SR = JWSRGeometryBasic;
using GE = JWGeometryWithEnvelop;
using Points = std::vector<JWRawPoint>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Points kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
const Points kU = {{0, 0}, {6, 0}, {6, 6}, {5, 6}, {5, 1}, {1, 1}, {1, 6}, {0, 6}, {0, 0}};

JWRing boxRing(double low, double high) {
    return JWRing(Points{{low, low}, {high, low}, {high, high}, {low, high}});
}

JWPolygon polygonOf(const std::vector<JWRing>& rings) {
    JWPolygon polygon;
    for (const JWRing& ring : rings) polygon.addRing(ring);
    polygon.updateEnvelop();
    return polygon;
}

TEST(EnvelopTests, Containment) {
    const JWEnvelop box(0, 0, 10, 10);
    EXPECT_EQ(SR::isPointWithinEnvelop({10, 0}, box), 1);
    EXPECT_EQ(SR::isPointWithinEnvelop({10.1, 0}, box), 0);
    EXPECT_EQ(SR::isPointWithinEnvelop({kNaN, 0}, box), 0);
    EXPECT_EQ(SR::isSegmentWithinEnvelop({1, 1}, {11, 1}, box), 0);
    EXPECT_EQ(SR::isSegmentWithinEnvelop({11, 1}, {1, 1}, box), 0);
    EXPECT_EQ(SR::isEnvelopWithinEnvelop({0, 0, 10, 10.5}, box), 0);
    EXPECT_EQ(SR::isEnvelopWithinEnvelop({-1, 0, 10, 10}, box), 0);
}

TEST(EnvelopTests, NullAnswers) {
    const JWRawPoint p(1, 1);
    const JWEnvelop box(0, 0, 10, 10);
    const JWRing ring(kSquare), small(Points{{0, 0}, {1, 0}});
    for (int null = 0; null < 3; ++null) {  // neither argument, the first, the second
        const JWRawPoint* a = null == 1 ? nullptr : &p;
        const JWEnvelop *inner = null == 1 ? nullptr : &box, *outer = null == 2 ? nullptr : &box;
        const JWRing *first = null == 1 ? nullptr : &ring, *second = null == 2 ? nullptr : &ring;
        const int expected = null == 0 ? 1 : 9999;
        EXPECT_EQ(SR::isPointWithinEnvelop(a, outer), expected);
        EXPECT_EQ(SR::isSegmentWithinEnvelop(&p, a, outer), expected);
        EXPECT_EQ(SR::isEnvelopWithinEnvelop(inner, outer), expected);
        EXPECT_EQ(SR::isPointWithinRing(a, second), expected);
        EXPECT_EQ(SR::isRingWithinRing(first, second), expected);
    }
    EXPECT_EQ(SR::isRingWithinRing(&small, &ring), 9999);
    EXPECT_EQ(SR::isRingWithinRing(&ring, &small), 9999);
    JWRawPoint q(7, 7);
    EXPECT_EQ(SR::shortestPointToSegment(nullptr, &p, &p, &q), -1.0);
    EXPECT_EQ(SR::shortestPointToSegment(&p, &p, &p, nullptr), -1.0);
    EXPECT_EQ(SR::shortestPointToLine(&p, nullptr, &p, &q), -1.0);
    EXPECT_EQ(q, JWRawPoint(7, 7));
    EXPECT_TRUE(GE::isPolygonDisjoinWithEnvelop(nullptr, box));
    EXPECT_TRUE(GE::isMultiLineStringDisjoinWithEnvelop(nullptr, box));
    EXPECT_TRUE(GE::isMultiPolygonDisjoinWithEnvelop(nullptr, box));
    EXPECT_FALSE(GE::isLineStringWithinEnvelop(nullptr, box));
    EXPECT_FALSE(GE::point_in_ring(p, nullptr) || GE::point_in_polygon(p, nullptr));
}

TEST(RingTests, PointInPolygon) {
    const JWPolygon polygon = polygonOf({boxRing(0, 10), boxRing(3, 7), boxRing(8, 9)});
    EXPECT_TRUE(GE::point_in_polygon({1, 1}, &polygon));
    EXPECT_FALSE(GE::point_in_polygon({5, 5}, &polygon));
    EXPECT_FALSE(GE::point_in_polygon({8.5, 8.5}, &polygon));
    EXPECT_FALSE(GE::point_in_polygon({11, 1}, &polygon));
}

TEST(RingTests, RingWithinRing) {
    const struct {
        Points inner, outer;
        int within;
    } rows[] = {
        {{{0.5, 5}, {0.5, 0.5}, {5.5, 0.5}, {5.5, 5}}, kU, 1},  // an edge leaves the U
        {{{0.5, 5}, {0.5, 0.5}, {5.5, 0.5}, {3, 3}}, kU, 0},    // a vertex leaves it
        {kU, kU, 1},
        {kSquare, kU, 0},
        {kU, kSquare, 1},
        {{{0, 5}, {5, 0}, {10, 5}, {5, 10}}, kSquare, 1},
        {{{2, 5}, {5, 2}, {8, 5}, {5, 10.5}}, kSquare, 0},
    };
    for (const auto& r : rows) {
        const JWRing inner(r.inner), outer(r.outer);
        EXPECT_EQ(SR::isRingWithinRing(&inner, &outer), r.within) << &r - rows;
    }
}

// Large rings are indexed: the answer is that of asking for each vertex.
TEST(RingTests, IndexedRingWithinRingEqualsVertexByVertex) {
    const unsigned seed = 4711;
    std::mt19937 random(seed);
    int within = 0;
    for (int round = 0; round < 300; ++round) {
        const double shift = round % 2 * 5e5;
        const size_t n = 64 + round;
        Points outerPoints, innerPoints;
        for (size_t i = 0; i < n; ++i) {
            const double turn = 2 * std::acos(-1.0) * i / n, r = 5 + random() % 1000 / 1000.0;
            outerPoints.emplace_back(shift + r * std::cos(turn), shift + r * std::sin(turn));
        }
        for (int i = 0; i < 16; ++i) {  // vertices, edge midpoints and points inside
            const size_t at = random() % n;
            const JWRawPoint &a = outerPoints[at], &b = outerPoints[(at + 1) % n];
            const double t = round % 3 * 0.5, f = i > 4 + round % 12 ? 0.5 : 1;
            innerPoints.emplace_back(shift + f * (a.x + t * (b.x - a.x) - shift),
                                     shift + f * (a.y + t * (b.y - a.y) - shift));
        }
        const JWRing inner(innerPoints), outer(outerPoints);
        int expected = 1;
        for (const JWRawPoint& p : innerPoints) expected &= SR::isPointWithinRing(p, outer);
        within += expected;
        ASSERT_EQ(SR::isRingWithinRing(&inner, &outer), expected)
            << "seed " << seed << " round " << round;
    }
    EXPECT_GT(within, 50);
    EXPECT_LT(within, 250);
}

// The library's assertions are on exactly when the library was built without NDEBUG, as the tests.
TEST(EnvelopTests, HardStops) {
    const auto pointOnSegment = [] {
        return GE::segmentIntersected({0, 0}, {2, 0}, {1, 0}, {1, 0});
    };
    const auto pointBeyond = [] { return GE::segmentIntersected({0, 0}, {2, 0}, {3, 0}, {3, 0}); };
    const auto noRings = [] {
        const JWPolygon empty;
        return GE::point_in_polygon({0, 0}, &empty);
    };
#ifdef NDEBUG
    EXPECT_TRUE(pointOnSegment());
    EXPECT_FALSE(pointBeyond());
    EXPECT_FALSE(noRings());
#else
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(pointOnSegment(), "d_uu != 0 && d_vv != 0");
    EXPECT_DEATH(pointBeyond(), "d_uu != 0 && d_vv != 0");
    EXPECT_DEATH(noRings(), "er");
#endif
}

TEST(EnvelopTests, Lines) {
    const JWEnvelop box(0, 0, 10, 10);
    const struct {
        Points line;
        JWEnvelop envelop;
        bool disjoint, within;
    } rows[] = {
        {{{0, 0}, {10, 0}}, box, true, false},  // along the border: the envelopes only touch
        {{{2, 2}, {8, 8}}, box, false, true},
        {{{0, 0}, {10, 10}}, box, false, true},
        {{{-5, 5}, {15, 6}}, box, false, false},  // passes through
        {{{-5, 6}, {4, 15}}, box, true, false},   // passes outside a corner
        {{{-5, 4}, {4, 11}}, box, false, false},
        {{{2, 2}, {18, 8}}, box, false, false},
        {{{20, 20}, {30, 30}}, box, true, false},
        {{}, box, true, false},
        {{{2, 2}, {8, 8}}, {kNaN, 0, 10, 10}, true, false},
    };
    for (const auto& r : rows) {
        const JWLineString line(r.line);
        EXPECT_EQ(GE::isLineStringDisjoinWithEnvelop(line, r.envelop), r.disjoint) << &r - rows;
        EXPECT_EQ(GE::isLineStringWithinEnvelop(&line, r.envelop), r.within) << &r - rows;
        JWMultiLineString lines;
        lines.addLineString(JWLineString(Points{{-50, -50}, {-49, -40}}));
        lines.addLineString(line);
        lines.updateEnvelop();
        if (r.disjoint) lines.setEnvelop({-50, -50, 30, 30});
        EXPECT_EQ(GE::isMultiLineStringDisjoinWithEnvelop(&lines, r.envelop), r.disjoint)
            << &r - rows;
        EXPECT_FALSE(GE::isMultiLineStringWithinEnvelop(&lines, r.envelop));
    }
    JWMultiLineString stale;  // the stored envelope decides first
    stale.addLineString(JWLineString(Points{{2, 2}, {8, 8}}));
    EXPECT_TRUE(GE::isMultiLineStringDisjoinWithEnvelop(&stale, box));
    EXPECT_FALSE(GE::isMultiLineStringWithinEnvelop(nullptr, box));
}

TEST(EnvelopTests, RingsAndPolygons) {
    const JWPolygon holed = polygonOf({JWRing(kSquare), boxRing(3, 7)});
    const JWPolygon u = polygonOf({JWRing(kU)});
    const struct {
        const JWPolygon* polygon;
        JWEnvelop envelop;
        bool ringDisjoint, withinRing, polygonDisjoint;
    } rows[] = {
        {&holed, {1, 1, 2, 2}, false, true, false},
        {&holed, {0, 0, 10, 10}, false, false, false},
        {&holed, {3, 3, 7, 7}, false, true, false},    // fills the hole: not "in" it
        {&holed, {4, 4, 6, 6}, false, true, true},     // inside the hole
        {&holed, {4, 4, 8, 6}, false, true, false},    // leaves the hole
        {&holed, {10, 0, 20, 10}, true, false, true},  // touches
        {&holed, {-5, -5, 20, 20}, false, false, false},
        {&holed, {5, 5, 20, 6}, false, false, false},
        {&holed, {-5, 1, 20, 2}, false, false, false},  // across, no vertex and no corner inside
        {&u, {2, 2, 4, 5}, true, false, true},          // in the bay
        {&u, {2, 0.25, 4, 0.75}, false, true, false},
        {&u, {0.5, 2, 5.5, 3}, false, false, false},  // all corners in, edges cross
    };
    for (const auto& r : rows) {
        const std::string row = "row " + std::to_string(&r - rows);
        const JWRing& ring = r.polygon->getExteriorRing();
        EXPECT_EQ(GE::isRingDisjoinWithEnvelop(ring, r.envelop), r.ringDisjoint) << row;
        EXPECT_EQ(GE::isEnvelopWithinRing(r.envelop, ring), r.withinRing) << row;
        EXPECT_EQ(GE::isPolygonDisjoinWithEnvelop(r.polygon, r.envelop), r.polygonDisjoint) << row;
        JWMultiPolygon polygons;
        polygons.addPolygon(polygonOf({boxRing(-100, -90)}));
        polygons.addPolygon(*r.polygon);
        polygons.updateEnvelop();
        EXPECT_EQ(GE::isMultiPolygonDisjoinWithEnvelop(&polygons, r.envelop), r.polygonDisjoint)
            << row;
    }
    JWPolygon emptied = holed;  // no rings under a stale envelope
    emptied.clearAllRings();
    EXPECT_TRUE(GE::isPolygonDisjoinWithEnvelop(&emptied, {1, 1, 2, 2}));
}

}  // namespace
