// SPDX-License-Identifier: MIT
//
// The union of many shapes against their union by GEOS, and the tools for ring sets.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "jw_geometrybuffer.h"
#include "jw_report.h"
#include "support/buffer_pieces.h"
#include "support/random_rings.h"
#include "support/wkt.h"

namespace {

using namespace jws;
using namespace jwtest;

using Line = std::vector<JWRawPoint>;

Line walk(RandomRings& random, int points, double step, JWRawPoint at) {
    Line line;
    for (int i = 0; i < points; ++i) {
        line.push_back(at);
        const double angle = random.uniform(0, 2 * M_PI);
        at = {at.x + step * std::cos(angle), at.y + step * std::sin(angle)};
    }
    return line;
}

JWLineString lineOf(const Line& points) { return {points.data(), static_cast<int>(points.size())}; }

/// Valid, nothing of one outside the other, and the same bits from the team.
void expectUnion(const JWGeometry& input, const GEOSGeometry* expected, double distance) {
    JWGeometry* plain = nullptr;
    ASSERT_EQ(JWGeometryBuffer::geometryBuffer(&input, distance, &plain, JWBufferFace), 1)
        << JWReport::lastError().text;
    const std::unique_ptr<JWGeometry> result(plain);
    const GeosPtr ours = toGeos(result.get());
    ASSERT_TRUE(expected);
    EXPECT_TRUE(isValid(result.get())) << validReason(ours.get());
    const FourAreas areas = geosAreas(ours.get(), expected);
    EXPECT_LT(areas.of[2], 1e-9 * geosArea(expected)) << areas.of[0] << " beyond";
    JWGeometry* threaded = nullptr;
    ASSERT_EQ(JWGeometryBuffer::geometryBuffer_mp(&input, distance, &threaded, JWBufferFace), 1);
    EXPECT_EQ(toWkt(std::unique_ptr<JWGeometry>(threaded).get()), toWkt(*result));
}

TEST(BufferUnion, TeamRandomWalksAgainstGeos) {
    RandomRings random(20240521);
    const struct {
        int points;
        double distance;  // in steps
        double offset;
    } rows[] = {{3, 0.3, 0},   {17, 0.1, 0}, {40, 0.5, 1e6},  {40, 2, 0},    {200, 1, -3e5},
                {200, 5, 0},   {200, 40, 0}, {33, 1e3, 0},    {60, 0.26, 0}, {400, 3, 1e7},
                {90, 0.02, 0}, {400, 12, 0}, {120, 1e-3, 4e3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.points << " points, " << row.distance);
        const Line points = walk(random, row.points, 1, {row.offset, -row.offset});
        const GeosPtr expected = geosUnion(piecesAlong(points, row.distance));
        expectUnion(lineOf(points), expected.get(), row.distance);
    }
}

TEST(BufferUnion, TeamRegularLinesAgainstGeos) {
    // Shapes with common corners and edges; nearly straight, folded and smooth lines.
    RandomRings random(7);
    for (int i = 0; i < 60; ++i) {
        SCOPED_TRACE(i);
        const double d = i % 3 == 0 ? 1 : i % 3 == 1 ? 0.5 : 3;
        Line points;
        for (int k = 0; k < 25; ++k) {
            const double turn = k * 0.02 * i;
            if (i % 4 == 0) points.emplace_back(random.integer(0, 6), random.integer(0, 6));
            if (i % 4 == 1) points.emplace_back(k * 0.05, 0.001 * (k % 2));
            if (i % 4 == 2) points.emplace_back(k % 7, k % 3 == 0 ? 0 : 2);
            if (i % 4 == 3) points.emplace_back(10 * std::cos(turn), 10 * std::sin(turn));
        }
        expectUnion(lineOf(points), geosUnion(piecesAlong(points, d)).get(), d);
    }
}

TEST(BufferUnion, TeamManyPartsAgainstGeos) {
    RandomRings random(99);
    JWMultiPoint points;
    JWMultiLineString lines;
    std::vector<Ring> circles, capsules;
    for (int i = 0; i < 300; ++i) {
        const JWRawPoint p(random.uniform(0, 100), random.uniform(0, 100));
        points.addPoint(JWPoint(p.x, p.y));
        circles.push_back(circlePiece(p, 3));
    }
    for (int i = 0; i < 40; ++i) {
        const JWRawPoint start(random.uniform(0, 100), random.uniform(0, 100));
        const Line line = walk(random, 1 + random.integer(0, 30), 2, start);
        lines.addLineString(lineOf(line));
        for (const Ring& ring : piecesAlong(line, 2.5)) capsules.push_back(ring);
    }
    expectUnion(points, geosUnion(circles).get(), 3);
    expectUnion(lines, geosUnion(capsules).get(), 2.5);
}

/// The face is the polygon together with the shapes of its boundary.
void expectFace(const std::vector<Line>& rings, double d) {
    JWPolygon polygon;
    std::vector<Ring> pieces;
    for (Line ring : rings) {
        polygon.addRing(JWRing(ring.data(), static_cast<int>(ring.size())));
        ring.push_back(ring.front());
        for (const Ring& piece : piecesAlong(ring, d)) pieces.push_back(piece);
    }
    polygon.updateEnvelop();
    const GeosPtr band = geosUnion(pieces);
    const GeosPtr face(GEOSUnion_r(geosContext(), band.get(), toGeos(&polygon).get()));
    expectUnion(polygon, face.get(), d);
}

TEST(BufferUnion, TeamPolygonsAgainstGeos) {
    RandomRings random(4);
    for (int i = 0; i < 12; ++i) {
        SCOPED_TRACE(i);
        std::vector<Line> rings;
        for (const double radius : {50, 18}) {
            rings.push_back(random.star(4 + 3 * i, {50, 50}, radius));
        }
        expectFace(rings, 0.5 + i);
    }
}

TEST(BufferUnion, TeamHolesThatFillUpAgainstGeos) {
    const Line around = {{-9, -9}, {9, -9}, {9, 9}, {-9, 9}};
    for (const int corners : {3, 4, 5, 6, 8, 12}) {
        for (const double distance : {0.7, 0.95, 1.01, 1.3, 2.4}) {
            SCOPED_TRACE(testing::Message() << corners << " corners, distance " << distance);
            Line hole;
            for (int i = 0; i < corners; ++i) {
                const double angle = 0.1 + 6.283185307179586 * i / corners;
                hole.push_back({std::cos(angle), std::sin(angle)});
            }
            expectFace({around, hole}, distance);
            std::reverse(hole.begin(), hole.end());
            expectFace({around, hole}, distance);
        }
    }
}

/// A spiral of segments of length `step`, `pitch` from turn to turn.
Line spiral(int points, double step, double pitch) {
    Line line;
    double angle = 6;
    for (int i = 0; i < points; ++i) {
        const double radius = pitch * angle / (2 * M_PI);
        line.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
        angle += step / radius;
    }
    return line;
}

/// Both sides of a line, so far apart: a long bent area with two ends.
Line strip(const Line& middle, double width) {
    Line left, right;
    for (std::size_t i = 0; i + 1 < middle.size(); ++i) {
        const JWRawPoint &a = middle[i], &b = middle[i + 1];
        const double length = std::hypot(b.x - a.x, b.y - a.y);
        const double x = (a.y - b.y) / length * width / 2, y = (b.x - a.x) / length * width / 2;
        left.emplace_back(a.x + x, a.y + y);
        right.emplace_back(a.x - x, a.y - y);
    }
    left.insert(left.end(), right.rbegin(), right.rend());
    return left;
}

/// Has corners put into edges of a ring, some of them very close together.
Line withShortEdges(const Line& ring, RandomRings& random, double length) {
    Line result;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const JWRawPoint &a = ring[i], &b = ring[(i + 1) % ring.size()];
        result.push_back(a);
        if (random.integer(0, 3) > 0) continue;
        const double whole = std::hypot(b.x - a.x, b.y - a.y);
        const double at = random.uniform(0, 0.5), next = at + length / whole;
        const double bend = random.integer(0, 1) * 0.3 * length / whole;
        result.emplace_back(a.x + at * (b.x - a.x), a.y + at * (b.y - a.y));
        if (next > 0.9) continue;
        result.emplace_back(a.x + next * (b.x - a.x) - bend * (b.y - a.y),
                            a.y + next * (b.y - a.y) + bend * (b.x - a.x));
    }
    return result;
}

TEST(BufferUnion, TeamRingsThatCloseInAgainstGeos) {
    // Necks and turns of a spiral nearly as far apart as the band reaches, just as far and farther;
    // distances from far below the edges' lengths to far above the whole.
    for (const double gap : {0.4, 1.9, 1.98, 2.0, 2.02, 2.6}) {
        SCOPED_TRACE(testing::Message() << "gap " << gap);
        const double w = gap / 2;
        expectFace({{{-9, -6},
                     {9, -6},
                     {9, 6},
                     {w, 6},
                     {w + 0.1, 1},
                     {5, -2},
                     {-5, -2},
                     {-w, 1},
                     {-w, 6},
                     {-9, 6}}},
                   1);
        for (const double step : {0.1, 0.4, 1.3}) {
            const Line line = spiral(static_cast<int>(30 / step), step, 0.5 + gap);
            expectFace({strip(line, 0.5)}, 1);
            expectUnion(lineOf(line), geosUnion(piecesAlong(line, 1)).get(), 1);
        }
    }
}

TEST(BufferUnion, TeamRoughRingsAgainstGeos) {
    RandomRings random(78);
    for (int i = 0; i < 60; ++i) {
        const double distance = std::pow(10, random.uniform(-2, 1.5));
        SCOPED_TRACE(testing::Message() << i << ", distance " << distance);
        const Line star = random.star(4 + i, {0, 0}, 10);
        const Line rough = withShortEdges(star, random, distance * random.uniform(0.005, 0.4));
        expectFace({rough}, distance);
        expectFace({random.star(6, {0, 0}, 40), rough}, distance);
    }
}

TEST(BufferUnion, TeamThinPolygonsAgainstGeos) {
    // Slits, blades, spikes and steps, from far thinner than an arc's edge is deep to wider than
    // the distance; as outer rings in either direction and as holes.
    for (const double w : {1e-4, 3e-3, 8e-3, 1.2e-2, 0.1, 0.14, 0.5, 2.5}) {
        const Line shapes[] = {
            {{0, 0}, {20, 0}, {20, 10}, {10 + w, 10}, {10 + w, 2}, {10, 2}, {10, 10}, {0, 10}},
            {{0, 0}, {20, 0}, {20 - w, 5}, {10, w}},
            {{0, 0}, {20, 0}, {20, 5}, {10 + w, 5}, {10, 25}, {10 - w, 5}, {0, 5}},
            {{0, 0}, {20, 0}, {20, 9}, {10 + w, 9}, {10 + w, 9 + w}, {10, 9 + w}, {10, 9}, {0, 9}},
            {{0, 0}, {20, 0}, {20, 9}, {12, 9}, {11, w}, {10, 9}, {0, 9}},
            // A corner of the lower side's arc reaches where the upper side's arc has an edge.
            {{1.9696, -0.3473},
             {0, 0},
             {-1.9696, -0.3473},
             {-1.8353, -0.4917 - w},
             {0, -w},
             {1.8353, -0.4917 - w}},
        };
        for (Line shape : shapes) {
            SCOPED_TRACE(testing::Message() << w << " " << shape[2].y << " " << shape.size());
            for (JWRawPoint& p : shape) p = {p.x - 0.3 * p.y, p.y + 0.3 * p.x};
            const Line around = {{-50, -50}, {80, -50}, {80, 80}, {-50, 80}};
            expectFace({shape}, 1);
            expectFace({around, shape}, 1);
            std::reverse(shape.begin(), shape.end());
            expectFace({shape}, 1);
        }
    }
}

/// Ring sets on their way through the tools.
struct Reduction {
    std::vector<std::vector<JWRing*>> groups;
    std::vector<std::vector<int>> groupFlags;
    std::vector<JWRing*> rings;
    std::vector<int> flags;

    std::string polygonized() {
        JWGeometry* result = nullptr;
        JWGeometryBuffer::polygonizeRing_mp(rings, flags, &result);
        EXPECT_TRUE(rings.empty() && flags.empty());
        const std::unique_ptr<JWGeometry> owned(result);
        return owned ? toWkt(*normalized(*owned)) : "null";
    }
};

std::vector<JWRing*> ringsOf(const char* polygon) {
    std::vector<JWRing*> rings;
    const auto geometry = fromWktAs<JWPolygon>(polygon);
    for (int i = 0; i < geometry.getRingCount(); ++i) {
        rings.push_back(new JWRing(geometry.getRingAt(i)));
    }
    return rings;
}

TEST(RingSets, TeamReduce) {
    const char* a = "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 2 8, 8 8, 8 2, 2 2))";
    const char* b = "POLYGON ((5 4, 15 4, 15 6, 5 6, 5 4))";
    const char* far = "POLYGON ((50 50, 51 50, 51 51, 50 51, 50 50))";
    using B = JWGeometryBuffer;
    const auto second = [](auto* g, auto* f, auto& rings, auto& flags) {
        return B::reduceUnionRing2(*g, *f, rings, flags);
    };
    using Reduce = int (*)(std::vector<std::vector<JWRing*>>*, std::vector<std::vector<int>>*,
                           std::vector<JWRing*>&, std::vector<int>&);
    for (const Reduce reduce :
         {Reduce(B::reduceUnionRing), Reduce(second), Reduce(B::reduceUnionRing_mp)}) {
        Reduction r;
        r.groups = {ringsOf(a), {}, ringsOf(b), {nullptr}, ringsOf(far)};
        r.groups[0].push_back(nullptr);
        r.groups[2][0]->deletePointAt(4);  // the closing one
        r.groupFlags = {{0, 1, 0}, {}, {0}};
        EXPECT_EQ(reduce(&r.groups, &r.groupFlags, r.rings, r.flags), 1);
        EXPECT_TRUE(r.groups.empty() && r.groupFlags.empty());
        const auto expected = fromWkt(
            "MULTIPOLYGON (((0 0, 10 0, 10 4, 15 4, 15 6, 10 6, 10 10, 0 10, 0 0),"
            "(2 2, 2 8, 8 8, 8 6, 5 6, 5 4, 8 4, 8 2, 2 2)),((50 50, 51 50, 51 51, 50 51, 50 "
            "50)))");
        EXPECT_EQ(r.polygonized(), toWkt(*normalized(*expected)));
        EXPECT_EQ(reduce(&r.groups, &r.groupFlags, r.rings, r.flags), 0) << "no group";
        // A coordinate that is no number fails the whole union.
        r.groups = {ringsOf(a), ringsOf(b)};
        r.groups[1][0]->getPointPtrAt(1)->x = NAN;
        r.groupFlags = {{0, 1}, {0}};
        EXPECT_EQ(reduce(&r.groups, &r.groupFlags, r.rings, r.flags), 0);
        EXPECT_TRUE(r.rings.empty() && r.flags.empty());
        // One group goes through untouched, a crossing ring and its flag included.
        r.groups = {{nullptr}, ringsOf("POLYGON ((0 0, 4 4, 4 0, 0 4, 0 0))")};
        r.groupFlags = {{0}, {1}};
        EXPECT_EQ(reduce(&r.groups, &r.groupFlags, r.rings, r.flags), 1);
        EXPECT_EQ(r.flags, std::vector<int>{1});
        ASSERT_EQ(r.rings.size(), 1u);
        EXPECT_EQ(toWkt(JWPolygon(*r.rings[0])), "POLYGON ((0 0, 4 4, 4 0, 0 4, 0 0))");
        delete r.rings[0];
    }
}

TEST(RingSets, polygonize) {
    const struct {
        const char* name;
        std::vector<const char*> rings;
        std::vector<int> flags;
        const char* result;
    } rows[] = {
        {"nothing", {}, {}, nullptr},
        {"one ring", {"POLYGON ((0 0, 4 0, 4 4, 0 0))"}, {1}, "POLYGON ((0 0, 4 0, 4 4, 0 0))"},
        {"hole outside is lost",
         {"POLYGON ((0 0, 4 0, 4 4, 0 0))", "POLYGON ((7 7, 8 7, 8 8, 7 7))"},
         {0, 1},
         "MULTIPOLYGON (((0 0, 4 0, 4 4, 0 0)))"},
        {"first outer ring with the first vertex strictly inside",
         {"POLYGON ((1 1, 2 1, 2 2, 1 1))", "POLYGON ((1 1, 9 1, 9 9, 1 9, 1 1))",
          "POLYGON ((0 0, 9 0, 9 9, 0 9, 0 0))", "POLYGON ((-1 -1, 20 -1, 20 20, -1 20, -1 -1))"},
         {1, 0, 0, 0},
         "MULTIPOLYGON (((-1 -1, 20 -1, 20 20, -1 20, -1 -1)), ((1 1, 9 1, 9 9, 1 9, 1 1)),"
         "((0 0, 9 0, 9 9, 0 9, 0 0), (1 1, 2 1, 2 2, 1 1)))"},
    };
    for (const auto& row : rows) {
        Reduction r;
        for (const char* ring : row.rings) r.rings.push_back(ringsOf(ring)[0]);
        r.flags = row.flags;
        const std::string expected =
            row.result ? toWkt(*normalized(*fromWkt(row.result))) : std::string("null");
        EXPECT_EQ(r.polygonized(), expected) << row.name;
    }
}

}  // namespace
