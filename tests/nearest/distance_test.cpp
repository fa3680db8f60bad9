// SPDX-License-Identifier: MIT
//
// Distances of geometries: worked examples, nulls, and random geometries against the stated steps
// over all pairs.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <string>

#include "jw_geometrynearest.h"
#include "support/stated_distances.h"
#include "support/wkt.h"

namespace {

using namespace jws;
using namespace jwtest;
using Nearest = JWGeometryNearest;

std::string describe(double distance, const JWRawPoint& P, const JWRawPoint& Q) {
    char text[160];
    std::snprintf(text, sizeof text, "%.6g P %.6g %.6g Q %.6g %.6g", distance, P.x, P.y, Q.x, Q.y);
    return text;
}

/// One operand of a call: a geometry, or the two points of a line as a segment.
template <class Geometry>
Geometry as(const std::string& wkt) {
    return fromWktAs<Geometry>(wkt.c_str());
}

using Call =
    std::function<double(const std::string& a, const std::string& b, JWRawPoint* P, JWRawPoint* Q)>;

template <class A, class B>
Call two(double (*function)(const A*, const B*, JWRawPoint*, JWRawPoint*)) {
    return [=](const std::string& a, const std::string& b, JWRawPoint* P, JWRawPoint* Q) {
        const A first = as<A>(a);
        const B second = as<B>(b);
        return function(&first, &second, P, Q);
    };
}
template <class B>
Call point(double (*function)(const JWRawPoint*, const B*, JWRawPoint*)) {
    return [=](const std::string& a, const std::string& b, JWRawPoint* P, JWRawPoint*) {
        const JWRawPoint first = as<JWPoint>(a).getRawPoint();
        const B second = as<B>(b);
        return function(&first, &second, P);
    };
}
template <class B>
Call segment(double (*function)(const JWRawPoint*, const JWRawPoint*, const B*, JWRawPoint*,
                                JWRawPoint*)) {
    return [=](const std::string& a, const std::string& b, JWRawPoint* P, JWRawPoint* Q) {
        const JWLineString first = as<JWLineString>(a);
        const B second = as<B>(b);
        return function(first.getPointPtrAt(0), first.getPointPtrAt(1), &second, P, Q);
    };
}
double segments(const std::string& a, const std::string& b, JWRawPoint* P, JWRawPoint* Q) {
    const JWLineString s = as<JWLineString>(a), t = as<JWLineString>(b);
    return Nearest::shortestSegmentToSegment(s.getPointPtrAt(0), s.getPointPtrAt(1),
                                             t.getPointPtrAt(0), t.getPointPtrAt(1), P, Q);
}

const char* const kSquare = "POLYGON((0 0,10 0,10 10,0 10,0 0))";
const char* const kFrame = "POLYGON((0 0,10 0,10 10,0 10,0 0),(2 2,8 2,8 8,2 8,2 2))";
const char* const kTwo = "MULTIPOLYGON(((0 0,10 0,10 10,0 10,0 0)),((20 0,21 0,21 1,20 0)))";
const char* const kFour = "LINESTRING(1 -1,1 1,-1 1,-1 -1)";

struct Case {
    Call call;
    const char* a;
    const char* b;
    const char* expected;  ///< outputs that are not written are 77
};

class Distance : public testing::TestWithParam<Case> {};

TEST_P(Distance, OfTwo) {
    JWRawPoint P(77, 77), Q(77, 77);
    const double distance = GetParam().call(GetParam().a, GetParam().b, &P, &Q);
    EXPECT_EQ(describe(distance, P, Q), GetParam().expected) << GetParam().a << GetParam().b;
}

INSTANTIATE_TEST_SUITE_P(
    Points, Distance,
    testing::Values(
        Case{point(&Nearest::shortestPointToLineString), "POINT(0 0)", kFour, "1 P -1 0 Q 77 77"},
        Case{point(&Nearest::shortestPointToLineString), "POINT(0 4)", "LINESTRING(3 0)",
             "5 P 3 0 Q 77 77"},
        Case{point(&Nearest::shortestPointToLineString), "POINT(0 0)", "LINESTRING EMPTY",
             "-1 P 77 77 Q 77 77"},
        Case{point(&Nearest::shortestPointToMultiLineString), "POINT(0 0)",
             "MULTILINESTRING(EMPTY,(3 4,5 6),(-3 -4,-9 -9))", "5 P -3 -4 Q 77 77"},
        Case{point(&Nearest::shortestPointToMultiPoint), "POINT(0 0)",
             "MULTIPOINT(3 4,5 0,0 5,9 9)", "5 P 0 5 Q 77 77"},
        Case{point(&Nearest::shortestPointToPolygon), "POINT(5 5)", kSquare, "0 P 5 5 Q 77 77"},
        Case{point(&Nearest::shortestPointToPolygon), "POINT(2 5)", kFrame, "0 P 2 5 Q 77 77"},
        Case{point(&Nearest::shortestPointToPolygon), "POINT(3 5)", kFrame, "1 P 2 5 Q 77 77"},
        Case{point(&Nearest::shortestPointToPolygon), "POINT(-3 -4)", kFrame, "5 P 0 0 Q 77 77"},
        Case{point(&Nearest::shortestPointToPolygon), "POINT(1 1)", "POLYGON EMPTY",
             "-1 P 77 77 Q 77 77"},
        Case{point(&Nearest::shortestPointToMultiPolygon), "POINT(16 0)", kTwo, "4 P 20 0 Q 77 77"},
        Case{two(&Nearest::shortestMultiPointToMultiPoint), "MULTIPOINT(0 0,1 0)",
             "MULTIPOINT(0 1,1 1)", "1 P 1 0 Q 1 1"},
        Case{two(&Nearest::shortestMultiPointToLineString), "MULTIPOINT(0 5,1 0)", kFour,
             "0 P 1 0 Q 1 0"},
        Case{two(&Nearest::shortestMultiPointToMultiLineString), "MULTIPOINT(0 5,3 0)",
             "MULTILINESTRING((1 -1,1 1),(4 4,4 9))", "2 P 3 0 Q 1 0"},
        Case{two(&Nearest::shortestMultiPointToPolygon), "MULTIPOINT(-1 5,5 12,5 5)", kFrame,
             "1 P -1 5 Q 0 5"},
        Case{two(&Nearest::shortestMultiPointToMultiPolygon), "MULTIPOINT(15 0,9 9)", kTwo,
             "0 P 9 9 Q 9 9"},
        Case{two(&Nearest::shortestMultiPointToMultiPoint), "MULTIPOINT EMPTY", "MULTIPOINT(0 1)",
             "-1 P 77 77 Q 77 77"}));

INSTANTIATE_TEST_SUITE_P(
    Segments, Distance,
    testing::Values(
        // A crossing with a horizontal segment is not found, a slanting one is.
        Case{segments, "LINESTRING(0 0,10 0)", "LINESTRING(4 -3,6 3)", "3 P 4 -3 Q 4 0"},
        Case{segments, "LINESTRING(0 0,10 1)", "LINESTRING(4 -3,6 3)",
             "0 P 5.17241 0.517241 Q 5.17241 0.517241"},
        Case{segments, "LINESTRING(0 0,10 0)", "LINESTRING(5 2,5 9)", "2 P 5 2 Q 5 0"},
        Case{segments, "LINESTRING(0 0,10 0)", "LINESTRING(0 0,0 9)", "0 P 0 0 Q 0 0"},
        Case{segments, "LINESTRING(0 0,0 0)", "LINESTRING(3 4,3 4)", "5 P 0 0 Q 3 4"},
        Case{segment(&Nearest::shortestSegmentToLineString), "LINESTRING(0 0,1 0)", kFour,
             "0 P 1 0 Q 1 0"},
        Case{segment(&Nearest::shortestSegmentToLineString), "LINESTRING(0 0,1 0)",
             "LINESTRING(5 5)", "-1 P 77 77 Q 77 77"},
        Case{segment(&Nearest::shortestSegmentToMultiLineString), "LINESTRING(0 0,1 0)",
             "MULTILINESTRING((0 2,1 2),(0 -2,1 -2))", "2 P 0 0 Q 0 -2"},
        Case{segment(&Nearest::shortestSegmentToPolygon), "LINESTRING(-5 5,15 5)", kSquare,
             "5 P 0 0 Q 0 5"},
        Case{segment(&Nearest::shortestSegmentToPolygon), "LINESTRING(5 1,15 5)", kFrame,
             "0 P 77 77 Q 77 77"},
        Case{segment(&Nearest::shortestSegmentToPolygon), "LINESTRING(5 5,6 5)", kFrame,
             "2 P 6 5 Q 8 5"},
        Case{segment(&Nearest::shortestSegmentToMultiPolygon), "LINESTRING(5 5,6 5)", kTwo,
             "0 P 5 5 Q 5 5"},
        Case{two(&Nearest::shortestLineStringToLineString), "LINESTRING(0 0,9 0)", kFour,
             "1 P 0 0 Q -1 0"},
        Case{two(&Nearest::shortestLineStringToMultiLineString), "LINESTRING(0 0,9 0)",
             "MULTILINESTRING((0 2,1 2),(5 1,6 4))", "1 P 5 1 Q 5 0"},
        Case{two(&Nearest::shortestMultiLineStringToMultiLineString),
             "MULTILINESTRING((9 9,9 8),(0 0,9 0))", "MULTILINESTRING((0 2,1 2),(5 1,6 4))",
             "1 P 5 1 Q 5 0"},
        Case{two(&Nearest::shortestLineStringToPolygon), "LINESTRING(3 3,4 4)", kSquare,
             "0 P 3 3 Q 3 3"},
        Case{two(&Nearest::shortestLineStringToMultiPolygon), "LINESTRING(30 0,30 9)", kTwo,
             "9 P 30 0 Q 21 0"},
        Case{two(&Nearest::shortestMultiLineStringToPolygon),
             "MULTILINESTRING((30 0,30 9),(0 12,9 12))", kSquare, "2 P 0 12 Q 0 10"},
        Case{two(&Nearest::shortestMultiLineStringToMultiPolygon),
             "MULTILINESTRING((30 0,30 9),(20 3,21 3))", kTwo, "2 P 21 3 Q 21 1"},
        Case{two(&Nearest::shortestLineStringToPolygon), "LINESTRING(3 3)", kSquare,
             "-1 P 77 77 Q 77 77"}));

TEST(Distances, RingsReadTheirOutputs) {
    const JWRing ring = JWRing(as<JWPolygon>(kSquare).getExteriorRing());
    const JWRawPoint a(100, 100), b(101, 101);
    JWRawPoint P(5, 5), Q(50, 50);
    EXPECT_EQ(Nearest::shortestSegmentToRing(&a, &b, &ring, &P, &Q), 0);
    EXPECT_EQ(describe(0, P, Q), "0 P 5 5 Q 50 50");
    Q = P;
    EXPECT_NEAR(Nearest::shortestSegmentToRing(&a, &b, &ring, &P, &Q), 127.2792206135786, 1e-12);
    EXPECT_EQ(describe(0, P, Q), "0 P 100 100 Q 10 10");
    EXPECT_EQ(Nearest::shortestPointToRing(&a, &ring, &P), 127.27922061357856);
}

TEST(Distances, PlainPointsAndNulls) {
    const JWRawPoint p(0, 5), a(-1, 0), b(3, 0);
    JWRawPoint P(77, 77), Q(77, 77);
    EXPECT_EQ(Nearest::twoPointsDistance(&a, &b), 4);
    EXPECT_EQ(Nearest::twoPointsDistance(&a, nullptr), -1);
    EXPECT_EQ(Nearest::shortestPointToLine(&p, &a, &b, &P), 5);
    EXPECT_EQ(P, JWRawPoint(0, 0));
    EXPECT_TRUE(std::isnan(Nearest::shortestPointToLine(&p, &a, &a, &P)));
    EXPECT_EQ(Nearest::shortestPointToSegment(&p, &b, &b, &P), std::sqrt(34.0));
    EXPECT_EQ(Nearest::shortestPointToSegment(&p, &a, &b, nullptr), -1);
    P = Q;
    const JWLineString line = as<JWLineString>(kFour);
    EXPECT_EQ(Nearest::shortestPointToLineString(nullptr, &line, &P), -1);
    EXPECT_EQ(Nearest::shortestLineStringToLineString(&line, nullptr, &P, &Q), -1);
    EXPECT_EQ(Nearest::shortestLineStringToLineString(&line, &line, &P, nullptr), -1);
    EXPECT_EQ(Nearest::shortestSegmentToSegment(&p, &a, &b, nullptr, &P, &Q), -1);
    EXPECT_EQ(P, JWRawPoint(77, 77));
    const JWLineString bad({JWRawPoint(NAN, 0), JWRawPoint(0, NAN)});
    EXPECT_EQ(Nearest::shortestLineStringToLineString(&line, &bad, &P, &Q), -1);
}

// --- against all pairs ---------------------------------------------------------------------------

/// Points on a coarse grid, so that ties and touches are common; `far` shifts them.
stated::Line randomLine(std::mt19937& random, int n, double grid, double far) {
    stated::Line line;
    for (int i = 0; i < n; ++i)
        line.emplace_back(far + grid * static_cast<double>(random() % 60),
                          far + grid * static_cast<double>(random() % 60));
    return line;
}

TEST(Distances, LinesEqualAllPairs) {
    std::mt19937 random(17);
    for (int round = 0; round < 60; ++round) {
        const double grid = round % 3 == 0 ? 1 : 0.37, far = round % 4 == 0 ? 4e6 : 0;
        const int n = 2 + static_cast<int>(random() % 90), m = 2 + static_cast<int>(random() % 90);
        const stated::Line a = randomLine(random, n, grid, far);
        stated::Line b = randomLine(random, m, grid, far);
        for (JWRawPoint& p : b) p.x += round % 2 == 0 ? 70 * grid : 0;
        double least = DBL_MAX;
        JWRawPoint P(0, 0), Q(0, 0), p, q;
        for (std::size_t i = 0; i + 1 < a.size(); ++i)
            for (std::size_t j = 0; j + 1 < b.size(); ++j) {
                const double d = stated::segmentSegment(a[i], a[i + 1], b[j], b[j + 1], p, q);
                if (d <= least) least = d, P = p, Q = q;
            }
        const JWLineString lineA(a), lineB(b);
        const double found = Nearest::shortestLineStringToLineString(&lineA, &lineB, &p, &q);
        EXPECT_EQ(found, least);
        EXPECT_EQ(p, P);
        EXPECT_EQ(q, Q);
    }
}

/// A star with a hole, its corners rounded to a grid.
JWPolygon randomPolygon(std::mt19937& random, int corners, double far) {
    const auto ring = [&](double from, double to) {
        stated::Line points;
        std::uniform_real_distribution<double> radius(from, to);
        for (int i = 0; i < corners; ++i) {
            const double r = radius(random), angle = 6.283185307179586 * i / corners;
            points.emplace_back(far + std::round(r * std::cos(angle)),
                                far + std::round(r * std::sin(angle)));
        }
        return JWRing(points);
    };
    JWPolygon polygon(ring(30, 50));
    polygon.addRing(ring(10, 20));
    polygon.updateEnvelop();
    return polygon;
}

TEST(Distances, PolygonsEqualAllPairs) {
    std::mt19937 random(23);
    for (int round = 0; round < 60; ++round) {
        const double far = round % 3 == 0 ? 5e5 : 0;
        const JWPolygon polygon = randomPolygon(random, 12 + round * 3, far);
        const int n = 1 + static_cast<int>(random() % 60);
        stated::Line line = randomLine(random, n, 2, far - 60);
        JWMultiPoint points;
        for (const JWRawPoint& p : line) points.addPoint(JWPoint(p));
        double least = DBL_MAX;
        JWRawPoint P(0, 0), Q(0, 0), p, q;
        for (const JWRawPoint& from : line) {
            const double d = stated::pointPolygon(from, polygon, q);
            if (d <= least) least = d, P = from, Q = q;
        }
        EXPECT_EQ(Nearest::shortestMultiPointToPolygon(&points, &polygon, &p, &q), least);
        EXPECT_EQ(p, P);
        EXPECT_EQ(q, Q);
        if (n < 2) continue;
        least = DBL_MAX;
        for (std::size_t i = 0; i + 1 < line.size(); ++i) {
            p = q = line[i];
            const double d = stated::segmentPolygon(line[i], line[i + 1], polygon, p, q);
            if (d <= least) least = d, P = p, Q = q;
        }
        const JWLineString whole(line);
        EXPECT_EQ(Nearest::shortestLineStringToPolygon(&whole, &polygon, &p, &q), least);
        EXPECT_EQ(p, P);
        EXPECT_EQ(q, Q);
    }
}

}  // namespace
