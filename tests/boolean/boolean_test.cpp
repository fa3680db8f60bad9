// SPDX-License-Identifier: MIT
//
// JWBLGeometryBasic and JWGeometryBoolean: forms of results, ring flags, groupings, refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "jw_blgeometrybasic.h"
#include "jw_geometryboolean.h"
#include "jw_report.h"
#include "support/geos_oracle.h"
#include "support/random_rings.h"
#include "support/wkt.h"

namespace jwtest {

using namespace jws;

namespace {

const enumJWBooleanType kTypes[] = {JWBooleanDifference, JWBooleanIntersection, JWBooleanXor,
                                    JWBooleanUnion};

JWRing ring(const char* wkt) { return fromWktAs<JWRing>(wkt); }
const char* kSquare = "LINEARRING (0 0, 10 0, 10 10, 0 10, 0 0)";

std::unique_ptr<JWGeometry> clip(const JWGeometry& a, const JWGeometry& b, enumJWBooleanType type,
                                 bool toMultiPolygon = true, bool checkEnvelope = false) {
    std::vector<int> flags;
    return std::unique_ptr<JWGeometry>(JWBLGeometryBasic::twoSurfaceObjectsBoolean(
        &a, &b, type, flags, checkEnvelope, toMultiPolygon));
}

double area(const JWGeometry* geometry) {
    if (!geometry) return 0;
    if (geometry->getGeometryType() == JWGeometryPolygon) {
        return static_cast<const JWPolygon*>(geometry)->getArea();
    }
    return static_cast<const JWMultiPolygon*>(geometry)->getArea();
}

// --- Rings in, rings out -------------------------------------------------------------------------

/// The ring-level engine over owned rings, with clean-up.
struct RingLevel {
    std::vector<JWRing> a, b;
    std::vector<JWRing*> out;
    std::vector<int> flags;

    ~RingLevel() {
        for (JWRing* r : out) delete r;
    }
    int run(enumJWBooleanType type, int countA, int countB) {
        std::vector<JWRing*> ringsA, ringsB;
        for (JWRing& r : a) ringsA.push_back(&r);
        for (JWRing& r : b) ringsB.push_back(&r);
        std::vector<int> flagsA(a.size()), flagsB(b.size());
        return JWBLGeometryBasic::twoSurfaceObjectsBoolean(ringsA, flagsA, countA, ringsB, flagsB,
                                                           countB, type, out, flags);
    }
    double area() const {
        double sum = 0;
        for (std::size_t i = 0; i < out.size(); ++i) {
            sum += (flags[i] == 0 ? 1 : -1) * std::fabs(out[i]->getArea());
        }
        return sum;
    }
};

TEST(RingLevel, AppendsAndNeverClears) {
    RingLevel r{{ring(kSquare)}, {ring("LINEARRING (5 5, 15 5, 15 15, 5 15, 5 5)")}, {}, {}};
    EXPECT_EQ(r.run(JWBooleanIntersection, 1, 1), 1);
    EXPECT_EQ(r.run(JWBooleanXor, 1, 1), 2);
    EXPECT_EQ(r.out.size(), 3u);
    EXPECT_EQ(r.flags.size(), 3u);
    EXPECT_EQ(r.run(JWBooleanUnion, 2, 1), 0) << "a count beyond the list";
    EXPECT_EQ(r.out.size(), 3u);
}

TEST(RingLevel, ResultRingsAreClosedWithEnvelope) {
    RingLevel r{{ring(kSquare)}, {ring("LINEARRING (5 5, 15 5, 15 15, 5 15, 5 5)")}, {}, {}};
    ASSERT_EQ(r.run(JWBooleanIntersection, 1, 1), 1);
    EXPECT_EQ(r.out[0]->getPointCount(), 5);
    EXPECT_EQ(r.out[0]->getPointAt(0), r.out[0]->getPointAt(4));
    EXPECT_EQ(r.out[0]->getEnvelop(), JWEnvelop(5, 5, 10, 10));
}

TEST(RingLevel, LastPointIsTakenForTheClosingOne) {
    JWRing open;
    for (const JWRawPoint& p : {JWRawPoint(0, 0), {4, 0}, {4, 4}, {0, 4}}) open.addPoint(p);
    RingLevel r{{open}, {ring("LINEARRING (-1 -1, 9 -1, 9 9, -1 9, -1 -1)")}, {}, {}};
    EXPECT_EQ(r.run(JWBooleanIntersection, 1, 1), 1);
    EXPECT_EQ(r.area(), 8);
}

TEST(RingLevel, NoRingIsTheEmptyArea) {
    const double expected[] = {100, 0, 100, 100};
    for (const enumJWBooleanType type : kTypes) {
        RingLevel r{{ring(kSquare)}, {JWRing()}, {}, {}};
        r.run(type, 1, type % 2);  // no ring at all, or an empty one
        EXPECT_EQ(r.area(), expected[type - 1]);
    }
}

TEST(RingLevel, UnknownTypesAreUnions) {
    for (const int type : {0, 5, 9, -1}) {
        RingLevel r{{ring(kSquare)}, {ring("LINEARRING (5 5, 15 5, 15 15, 5 15, 5 5)")}, {}, {}};
        EXPECT_EQ(r.run(static_cast<enumJWBooleanType>(type), 1, 1), 1);
        EXPECT_EQ(r.area(), 175);
    }
}

TEST(RingLevel, NullRingIsRefused) {
    JWRing square = ring(kSquare);
    std::vector<JWRing*> a = {&square, nullptr}, b = {&square}, out;
    std::vector<int> flags = {0, 0}, outFlags;
    EXPECT_EQ(JWBLGeometryBasic::twoSurfaceObjectsBoolean(a, flags, 2, b, flags, 1, JWBooleanUnion,
                                                          out, outFlags),
              0);
    EXPECT_TRUE(out.empty());
}

TEST(RingAndRing, WeirdRingsAreRejectedOnDemand) {
    JWRing a = ring(kSquare), b = ring("LINEARRING (5 5, 15 5, 15 15, 5 15, 5 5)");
    std::vector<JWRing*> out = {nullptr};
    std::vector<int> flags = {7};
    EXPECT_EQ(JWGeometryBoolean::ringAndRingBoolean(&a, &b, JWBooleanUnion, out, flags, true), 0);
    EXPECT_TRUE(out.empty() && flags.empty());
    EXPECT_EQ(JWGeometryBoolean::ringAndRingBoolean(&a, &b, JWBooleanUnion, out, flags, false), 1);
    EXPECT_EQ(flags, std::vector<int>{0});
    EXPECT_EQ(JWGeometryBoolean::ringAndRingBoolean(nullptr, &b, JWBooleanUnion, out, flags, false),
              0);
    ASSERT_EQ(out.size(), 1u) << "a null ring touches nothing";
    delete out[0];
}

// --- Geometries ----------------------------------------------------------------------------------

struct Row {
    const char* name;
    const char* a;
    const char* b;
    enumJWBooleanType type;
    const char* expected;  // canonical text as a multipolygon; null for no result
};

const Row rows[] = {
    {"bare rings", "LINEARRING (0 0, 4 0, 4 4, 0 4, 0 0)", "LINEARRING (2 0, 6 0, 6 4, 2 4, 2 0)",
     JWBooleanDifference, "MULTIPOLYGON (((0 0, 2 0, 2 4, 0 4, 0 0)))"},
    {"island in a hole", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 8 2, 8 8, 2 8, 2 2))",
     "MULTIPOLYGON (((3 3, 7 3, 7 7, 3 7, 3 3), (4 4, 6 4, 6 6, 4 6, 4 4)))", JWBooleanUnion,
     "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 8 2, 8 8, 2 8, 2 2)),"
     " ((3 3, 7 3, 7 7, 3 7, 3 3), (4 4, 6 4, 6 6, 4 6, 4 4)))"},
    {"hole touching its outer ring", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))",
     "POLYGON ((0 5, 4 2, 4 8, 0 5))", JWBooleanDifference,
     "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 5, 0 0), (0 5, 4 8, 4 2, 0 5)))"},
    {"everything taken away", "POLYGON ((2 2, 4 2, 4 4, 2 4, 2 2), (2.5 2.5, 3 2.5, 3 3, 2.5 2.5))",
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))", JWBooleanDifference, nullptr},
    {"empty operand", "POLYGON EMPTY", "POLYGON ((0 0, 1 0, 1 1, 0 0))", JWBooleanUnion, nullptr},
    {"wrong kind", "LINESTRING (0 0, 1 0, 1 1, 0 0)", "POLYGON ((0 0, 1 0, 1 1, 0 0))",
     JWBooleanUnion, nullptr},
};

TEST(GeometryLevel, Table) {
    for (const Row& row : rows) {
        const auto result = clip(*fromWkt(row.a), *fromWkt(row.b), row.type);
        const std::string expected = row.expected ? normalizedWkt(row.expected) : "(null)";
        EXPECT_EQ(normalizedWkt(result.get()), expected) << row.name;
        EXPECT_TRUE(isValid(result.get())) << row.name;
    }
}

TEST(GeometryLevel, OnePolygonOfAllRingsWithFlags) {
    const auto a = fromWkt("POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))");
    const auto b = fromWkt("POLYGON ((20 0, 30 0, 30 10, 20 10, 20 0))");
    std::vector<int> flags = {7};
    std::unique_ptr<JWGeometry> r(JWBLGeometryBasic::twoSurfaceObjectsBoolean(
        a.get(), b.get(), JWBooleanUnion, flags, false, false));
    ASSERT_TRUE(r && r->getGeometryType() == JWGeometryPolygon);
    EXPECT_EQ(static_cast<JWPolygon&>(*r).getRingCount(), 2);
    EXPECT_EQ(flags, (std::vector<int>{0, 0}));
    EXPECT_EQ(r->getEnvelop(), JWEnvelop(0, 0, 30, 10));
    EXPECT_FALSE(clip(*a, *b, JWBooleanUnion, false, true)) << "apart, with checkEnvelope";
}

TEST(GeometryLevel, MultiPolygonsHaveClockwiseOuterRings) {
    const auto r = clip(*fromWkt("POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))"),
                        *fromWkt("POLYGON ((2 2, 4 2, 4 4, 2 4, 2 2))"), JWBooleanDifference);
    const JWPolygon& polygon = static_cast<JWMultiPolygon&>(*r).getPolygonAt(0);
    EXPECT_EQ(polygon.getAreaAt(0), -100);
    EXPECT_EQ(polygon.getAreaAt(1), 4);
}

TEST(GeometryLevel, CheckEnvelopeLooksAtStoredOnes) {
    auto a = fromWkt("POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))");
    const auto b = fromWkt("POLYGON ((10 0, 20 0, 20 10, 10 10, 10 0))");
    EXPECT_TRUE(clip(*a, *b, JWBooleanUnion, true, true)) << "touching is not apart";
    a->setEnvelop(JWEnvelop::invalid());
    EXPECT_FALSE(clip(*a, *b, JWBooleanUnion, true, true));
    EXPECT_TRUE(clip(*a, *b, JWBooleanUnion, true, false));
}

TEST(GeometryLevel, ManyHolesFindTheirRings) {
    // 20 x 20 frames in one multipolygon: more rings than are scanned without a tree.
    JWMultiPolygon frames;
    for (int i = 0; i < 400; ++i) {
        const double x = 10 * (i % 20), y = 10 * (i / 20);
        JWPolygon frame;
        for (const double inset : {1.0, 3.0}) {
            const JWRawPoint corners[] = {{x + inset, y + inset},
                                          {x + 10 - inset, y + inset},
                                          {x + 10 - inset, y + 10 - inset},
                                          {x + inset, y + 10 - inset}};
            frame.addRing(JWRing(corners, 4));
        }
        frames.addPolygon(std::move(frame));
    }
    frames.updateEnvelop();
    const auto r = clip(frames, *fromWkt("POLYGON ((0 0, 200 0, 200 200, 0 200, 0 0))"),
                        JWBooleanIntersection);
    EXPECT_EQ(normalizedWkt(r.get()), normalizedWkt(frames));
}

TEST(GeometryLevel, NonFiniteCoordinatesGiveNullAndAnError) {
    auto a = fromWkt("POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))");
    const auto b = fromWkt("POLYGON ((5 5, 15 5, 15 15, 5 15, 5 5))");
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        static_cast<JWPolygon&>(*a).getRingPtrAt(0)->getPointPtrAt(2)->y = bad;
        for (const enumJWBooleanType type : kTypes) {
            JWReport::clearError();
            EXPECT_FALSE(clip(*a, *b, type));
            EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument);
        }
    }
}

// --- Two rings, two multipolygons ----------------------------------------------------------------

TEST(TwoRings, SecondRingIsReadWithTheFirstOnesCount) {
    const JWRing t = ring("LINEARRING (0 0, 10 0, 0 10, 0 0)");
    const JWRing s = ring("LINEARRING (1 1, 3 1, 3 3, 1 3, 1 1)");
    JWMultiPolygon out;
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&t, &s, JWBooleanIntersection, &out), 1);
    EXPECT_EQ(out.getArea(), 2);
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&s, &t, JWBooleanIntersection, &out), 1);
    EXPECT_EQ(out.getArea(), 4);
}

TEST(TwoRings, ApartIsNotClipped) {
    const JWRing a = ring(kSquare);
    const JWRing b = ring("LINEARRING (20 0, 30 0, 30 10, 20 10, 20 0)");
    const int polygons[] = {1, 0, 2, 2};
    for (const enumJWBooleanType type : kTypes) {
        JWMultiPolygon out;
        EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, &b, type, &out), 1);
        ASSERT_EQ(out.getPolygonCount(), polygons[type - 1]);
        EXPECT_TRUE(type == JWBooleanIntersection || out.getPolygonAt(0).getRingAt(0) == a);
    }
    JWMultiPolygon out;
    const auto unknown = static_cast<enumJWBooleanType>(9);
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, &b, unknown, &out), 0);
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, &a, unknown, &out), 1) << "clips as a union";
    EXPECT_EQ(out.getArea(), 100);
}

TEST(TwoRings, TouchingIsClipped) {
    const JWRing a = ring(kSquare);
    const JWRing b = ring("LINEARRING (10 0, 20 0, 20 10, 10 10, 10 0)");
    JWMultiPolygon out;
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, &b, JWBooleanUnion, &out), 1);
    EXPECT_EQ(out.getPolygonCount(), 1);
    EXPECT_EQ(out.getArea(), 200);
}

TEST(TwoRings, ShortRings) {
    const JWRing a = ring(kSquare), none;
    JWMultiPolygon out;
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&none, &none, JWBooleanUnion, &out), 0);
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, &none, JWBooleanUnion, &out), 1);
    EXPECT_EQ(out.getArea(), 100);
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, nullptr, JWBooleanUnion, &out), 0);
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, &a, JWBooleanUnion, nullptr), 0);
}

TEST(TwoRings, StaleEnvelopesAreNotTrusted) {
    JWRing a = ring(kSquare), b = ring("LINEARRING (5 5, 15 5, 15 15, 5 15, 5 5)");
    a.setEnvelop(JWEnvelop::invalid());
    JWMultiPolygon out;
    EXPECT_EQ(JWBLGeometryBasic::twoRingBoolean(&a, &b, JWBooleanIntersection, &out), 1);
    EXPECT_EQ(out.getArea(), 25);
}

TEST(TwoMultiPolygons, OutMayBeAnOperand) {
    auto a = fromWktAs<JWMultiPolygon>("MULTIPOLYGON (((0 0, 4 0, 4 4, 0 4, 0 0)))");
    const auto b = fromWktAs<JWMultiPolygon>("MULTIPOLYGON (((2 0, 6 0, 6 4, 2 4, 2 0)))");
    EXPECT_EQ(JWBLGeometryBasic::twoMultiPolygonBoolean(&a, &b, JWBooleanUnion, &a), 1);
    EXPECT_EQ(a.getArea(), 24);
    const JWMultiPolygon none;
    EXPECT_EQ(JWBLGeometryBasic::twoMultiPolygonBoolean(&none, &none, JWBooleanUnion, &a), 0);
    EXPECT_EQ(JWBLGeometryBasic::twoMultiPolygonBoolean(&a, &none, JWBooleanDifference, &a), 1);
    EXPECT_EQ(a.getArea(), 24);
    EXPECT_EQ(JWBLGeometryBasic::twoMultiPolygonBoolean(&a, nullptr, JWBooleanUnion, &a), 0);
}

// --- Properties ----------------------------------------------------------------------------------

JWPolygon randomPolygon(RandomRings& random) {
    const JWRawPoint center(random.uniform(-40, 40), random.uniform(-40, 40));
    const Ring outer = random.star(random.integer(4, 80), center, 100);
    const Ring hole = random.star(random.integer(3, 20), center, 35);
    JWPolygon polygon(JWRing(outer.data(), static_cast<int>(outer.size())));
    polygon.addRing(JWRing(hole.data(), static_cast<int>(hole.size())));
    polygon.updateEnvelop();
    return polygon;
}

TEST(BooleanProperties, AreasValidityAndCommutation) {
    const unsigned long long seed = 4711;
    RandomRings random(seed);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const JWPolygon a = randomPolygon(random), b = randomPolygon(random);
        const FourAreas expected = geosAreas(toGeos(&a).get(), toGeos(&b).get());
        for (const enumJWBooleanType type : kTypes) {
            const auto ab = clip(a, b, type), ba = clip(b, a, type);
            EXPECT_NEAR(area(ab.get()), expected.of[type - 1], 1e-9 * expected.of[3]);
            EXPECT_TRUE(isValid(ab.get())) << validReason(toGeos(ab.get()).get());
            if (type == JWBooleanDifference) continue;
            EXPECT_NEAR(area(ab.get()), area(ba.get()), 1e-9 * expected.of[3]);
        }
    }
}

}  // namespace
}  // namespace jwtest
