// SPDX-License-Identifier: MIT
//
// Relation matrices of pairs worked out by hand, and what must hold of them in every form of
// asking.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>

#include "jw_relationmatrix.h"
#include "jw_report.h"
#include "relation/random_geometries.h"

namespace {

using namespace jws;
using namespace jwtest;

std::string relation(const JWGeometry& a, const JWGeometry& b) {
    JWRelationMatrix matrix;
    return relateGeometries(&a, &b, &matrix) ? matrix.text() : "refused";
}

std::string preparedRelation(const JWGeometry& a, const JWGeometry& b) {
    JWRelationMatrix matrix;
    return JWPreparedRelation(&a).relate(&b, &matrix) ? matrix.text() : "refused";
}

struct Row {
    const char* name;
    const char* a;
    const char* b;
    const char* matrix;
};

constexpr const char* kSquare = "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))";
constexpr const char* kFrame = "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 8 2, 8 8, 2 8, 2 2))";

const Row kRows[] = {
    // areas
    {"one area twice", kSquare, kSquare, "2FFF1FFF2"},
    {"side by side", kSquare, "POLYGON ((10 0, 20 0, 20 10, 10 10, 10 0))", "FF2F11212"},
    {"side by side, other vertices", kSquare, "POLYGON ((10 2, 20 2, 20 8, 10 8, 10 2))",
     "FF2F11212"},
    {"corner to corner", kSquare, "POLYGON ((10 10, 20 10, 20 20, 10 10))", "FF2F01212"},
    {"inside along a side", kSquare, "POLYGON ((0 2, 5 2, 5 8, 0 8, 0 2))", "212F11FF2"},
    {"overlapping along a line", kSquare, "POLYGON ((5 0, 15 0, 15 10, 5 10, 5 0))", "212111212"},
    {"in the hole, touching it all round", kFrame, "POLYGON ((2 2, 8 2, 8 8, 2 8, 2 2))",
     "FF2F112F2"},
    {"in the hole, touching in two corners", kFrame, "POLYGON ((2 2, 8 8, 7 3, 2 2))", "FF2F01212"},
    {"over the hole", kFrame, "POLYGON ((1 1, 9 1, 9 9, 1 9, 1 1))", "2121F12F2"},
    {"hole touches the shell in a vertex",
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (0 0, 5 2, 5 4, 0 0))",
     "POLYGON ((0 0, 5 2, 5 4, 0 0))", "FF2F112F2"},
    {"parts that share an edge are one",
     "MULTIPOLYGON (((0 0, 5 0, 5 10, 0 10, 0 0)), ((5 0, 10 0, 10 10, 5 10, 5 0)))", kSquare,
     "2FFF1FFF2"},
    {"figure of eight", "POLYGON ((0 0, 2 2, 2 0, 0 2, 0 0))", "POINT (1 1)", "FF20F1FF2"},
    {"overlap of two turns cancels", "POLYGON ((0 0, 4 0, 4 4, 0 4, 0 0, 2 0, 2 2, 0 2, 0 0))",
     "POINT (1 1)", "FF2FF10F2"},
    {"collapsed ring", "POLYGON ((0 0, 5 0, 10 0, 0 0))", kSquare, "FFFF1F212"},
    // lines
    {"one line backwards", "LINESTRING (0 0, 5 1, 9 9)", "LINESTRING (9 9, 5 1, 0 0)", "1FFF0FFF2"},
    {"plain cross", "LINESTRING (0 0, 10 10)", "LINESTRING (0 10, 10 0)", "0F1FF0102"},
    {"end on the middle", "LINESTRING (0 0, 10 0)", "LINESTRING (5 0, 5 5)", "F01FF0102"},
    {"end to end", "LINESTRING (0 0, 10 0)", "LINESTRING (10 0, 20 5)", "FF1F00102"},
    {"in one line, overlapping", "LINESTRING (0 0, 10 10)", "LINESTRING (4 4, 14 14)", "1010F0102"},
    {"in one line, apart", "LINESTRING (0 0, 3 3)", "LINESTRING (4 4, 14 14)", "FF1FF0102"},
    {"closed lines have no end", "LINESTRING (0 0, 9 0, 9 9, 0 0)", "LINESTRING (0 0, -5 0)",
     "F01FFF102"},
    {"three ends in one place", "MULTILINESTRING ((0 0, 5 5), (5 5, 9 0), (5 5, 5 9))",
     "POINT (5 5)", "FF10F0FF2"},
    {"two ends in one place", "MULTILINESTRING ((0 0, 5 5), (5 5, 9 0))", "POINT (5 5)",
     "0F1FF0FF2"},
    {"end on another part", "MULTILINESTRING ((0 0, 10 0), (5 0, 5 5))", "POINT (5 0)",
     "FF10F0FF2"},
    {"line of no length", "LINESTRING (3 3, 3 3)", "LINESTRING (0 0, 9 9)", "0FFFFF102"},
    // lines and areas
    {"along a side", "LINESTRING (2 0, 8 0)", kSquare, "F1FF0F212"},
    {"over the corner", "LINESTRING (-5 5, 5 -5)", kSquare, "F01FF0212"},
    {"through", "LINESTRING (-5 5, 15 5)", kSquare, "101FF0212"},
    {"from side to side", "LINESTRING (0 5, 10 5)", kSquare, "1FFF0F212"},
    {"along a side and in", "LINESTRING (0 0, 5 0, 5 5)", kSquare, "11F00F212"},
    {"through the touching point of two holes", "LINESTRING (1 5, 9 5)",
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (3 3, 5 5, 3 7, 3 3), (7 3, 7 7, 5 5, 7 3))",
     "1010FF212"},
    {"over the edge that two parts share", "LINESTRING (1 5, 9 5)",
     "MULTIPOLYGON (((0 0, 5 0, 5 10, 0 10, 0 0)), ((5 0, 10 0, 10 10, 5 10, 5 0)))", "1FF0FF212"},
    {"there and back", "LINESTRING (-5 5, 5 5, -5 5)", kSquare, "101FFF212"},
    // points
    {"points", "MULTIPOINT ((0 0), (1 1))", "MULTIPOINT ((1 1), (2 2))", "0F0FFF0F2"},
    {"inside, on and outside", "MULTIPOINT ((5 5), (0 5), (20 20))", kSquare, "000FFF212"},
    {"on the ring of a hole", "POINT (2 5)", kFrame, "F0FFFF212"},
    // nothing, and mixtures
    {"empty and area", "POLYGON EMPTY", kSquare, "FFFFFF212"},
    {"two empties", "POINT EMPTY", "LINESTRING EMPTY", "FFFFFFFF2"},
    {"bag", "GEOMETRYCOLLECTION (POLYGON ((0 0, 4 0, 4 4, 0 4, 0 0)), LINESTRING (2 2, 9 2))",
     "LINESTRING (3 2, 9 2)", "102001FF2"},
};

TEST(RelationMatrix, HandCases) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        const auto a = fromWkt(row.a), b = fromWkt(row.b);
        EXPECT_EQ(relation(*a, *b), row.matrix);
        EXPECT_EQ(preparedRelation(*a, *b), row.matrix);
        JWRelationMatrix swapped;
        ASSERT_TRUE(relateGeometries(b.get(), a.get(), &swapped));
        EXPECT_EQ(swapped.transposed().text(), row.matrix);
    }
}

/// Puts the middle of every edge in: the same geometry with more points.
void addMiddles(JWPointSequence& line) {
    for (int i = line.getPointCount() - 1; i > 0; --i) {
        const JWRawPoint a = line.getPointAt(i - 1), b = line.getPointAt(i);
        const JWRawPoint middle((a.x + b.x) / 2, (a.y + b.y) / 2);
        line.insertPointsAt(&middle, 1, i);
    }
}

void addMiddles(JWGeometry& geometry) {
    if (auto* line = dynamic_cast<JWPointSequence*>(&geometry)) addMiddles(*line);
    if (auto* polygon = dynamic_cast<JWPolygon*>(&geometry))
        for (JWRing& ring : polygon->getRingList()) addMiddles(static_cast<JWPointSequence&>(ring));
    if (auto* all = dynamic_cast<JWGeometryCollection*>(&geometry))
        for (int i = 0; i < all->getGeometryCount(); ++i) addMiddles(*all->getGeometryPtrAt(i));
}

// Everything is exact, so a matrix survives what leaves the point sets as they are.
TEST(RelationMatrix, SurvivesMovesScalesAndMoreVertices) {
    RandomGeometries random(7, 5);
    for (int i = 0; i < 600; ++i) {
        auto a = random.nextWild(), b = random.nextWild();
        const std::string expected = relation(*a, *b);
        SCOPED_TRACE(toWkt(*a) + "\n" + toWkt(*b));
        addMiddles(*a);
        EXPECT_EQ(relation(*a, *b), expected);
        for (auto* g : {a.get(), b.get()}) g->move(1048576, -4194304);
        EXPECT_EQ(relation(*a, *b), expected);
        for (const double scale : {0x1p-700, 0x1p900, 0x1p700}) {
            for (auto* g : {a.get(), b.get()}) g->scale(JWRawPoint(0, 0), scale, scale);
            EXPECT_EQ(relation(*a, *b), expected) << scale;
            EXPECT_EQ(preparedRelation(*a, *b), expected) << scale;
        }
    }
}

TEST(RelationMatrix, PredicatesOfAPreparedGeometryFollowFromTheMatrix) {
    RandomGeometries random(11, 4);
    for (int i = 0; i < 1500; ++i) {
        const auto a = random.nextWild(), b = random.nextWild();
        SCOPED_TRACE(toWkt(*a) + "\n" + toWkt(*b));
        JWRelationMatrix matrix;
        ASSERT_TRUE(relateGeometries(a.get(), b.get(), &matrix));
        const JWPreparedRelation prepared(a.get()), other = JWPreparedRelation::borrowing(b.get());
        EXPECT_EQ(prepared.intersects(b.get()), matrix.isIntersecting());
        EXPECT_EQ(prepared.contains(b.get()), matrix.isContaining());
        EXPECT_EQ(prepared.covers(b.get()), matrix.isCovering());
        EXPECT_EQ(prepared.touches(b.get()), matrix.isTouching());
        JWRelationMatrix both;
        ASSERT_TRUE(prepared.relate(other, &both));
        EXPECT_EQ(both, matrix);
        const JWPoint p(random.below(9) / 2.0, random.below(9) / 2.0);
        ASSERT_TRUE(relateGeometries(&p, a.get(), &matrix));
        EXPECT_GE(matrix.at(JWRelationMatrix::Interior, prepared.partAt(p.getRawPoint())), 0);
    }
}

TEST(RelationMatrix, PlacesAtAnyMagnitude) {
    const struct {
        const char* wkt;
        JWRawPoint p;
        JWRelationMatrix::Part part;
    } rows[] = {
        {"POLYGON ((0 1e-70, 10 0, 10 10, 0 10, 0 1e-70))", {15, 15}, JWRelationMatrix::Exterior},
        {"POLYGON ((0 1e-70, 10 0, 10 10, 0 10, 0 1e-70))", {10, 5}, JWRelationMatrix::Boundary},
        {"POLYGON ((0 1e-70, 10 0, 10 10, 0 10, 0 1e-70))", {5, 5}, JWRelationMatrix::Interior},
        {"POLYGON ((0 0, 1e80 0, 1e80 1e80, 0 0))", {5e79, 5e79}, JWRelationMatrix::Boundary},
        {"POLYGON ((0 0, 1e80 0, 1e80 1e80, 0 0))", {1, 0.5}, JWRelationMatrix::Interior},
        {"POLYGON ((0 0, 1e80 0, 1e80 1e80, 0 0))", {2e80, 1e79}, JWRelationMatrix::Exterior},
        {"POLYGON ((-1 0, 1 -1, 1 1, -1 0))", {1e-100, 1e-100}, JWRelationMatrix::Interior},
        {"POLYGON ((0 0, 1 0, 1 1, 0 0))", {1e-100, 1e-100}, JWRelationMatrix::Boundary},
        {"POLYGON ((0 0, 1 0, 1 1, 0 0))", {1e-100, 2e-100}, JWRelationMatrix::Exterior},
        {"POLYGON ((0 0, 1 0, 1 1, 0 0))", {0.5, NAN}, JWRelationMatrix::Exterior},
    };
    for (const auto& row : rows)
        EXPECT_EQ(JWPreparedRelation(fromWkt(row.wkt).get()).partAt(row.p), row.part)
            << row.wkt << " " << row.p.x << " " << row.p.y;
}

struct PatternRow {
    const char* a;
    const char* b;
    const char* names;
};

TEST(RelationMatrix, NamesOfPredicates) {
    const PatternRow rows[] = {
        {kSquare, kSquare, "equals contains covers within coveredby"},
        {kSquare, "POINT (50 50)", "disjoint"},
        {kSquare, "POINT (0 5)", "touches covers"},
        {kSquare, "POINT (5 5)", "contains covers"},
        {"LINESTRING (-5 5, 5 5)", kSquare, "crosses"},
        {kSquare, "LINESTRING (-5 5, 5 5)", "crosses"},
        {"LINESTRING (0 0, 10 10)", "LINESTRING (0 10, 10 0)", "crosses"},
        {"LINESTRING (0 0, 10 10)", "LINESTRING (4 4, 14 14)", "overlaps"},
        {kSquare, "POLYGON ((5 5, 15 5, 15 15, 5 5))", "overlaps"},
        {"MULTIPOINT ((0 0), (1 1))", "MULTIPOINT ((1 1), (2 2))", "overlaps"},
        {"MULTIPOINT ((5 5), (50 5))", kSquare, "crosses"},
        {"LINESTRING (0 0, 10 0)", kSquare, "touches coveredby"},
        {"POINT EMPTY", "POINT EMPTY", "disjoint"},
    };
    for (const PatternRow& row : rows) {
        JWRelationMatrix matrix;
        ASSERT_TRUE(relateGeometries(fromWkt(row.a).get(), fromWkt(row.b).get(), &matrix));
        std::string names;
        for (int i = 0; i < JWRelationMatrix::kPredicates; ++i)
            if (matrix.holds(i))
                names += (names.empty() ? "" : " ") + std::string(matrix.predicateName(i));
        EXPECT_EQ(names, row.names) << row.a << " " << row.b;
    }
    EXPECT_EQ(JWRelationMatrix::predicateName(JWRelationMatrix::kPredicates), nullptr);
    const JWRelationMatrix empty;
    EXPECT_TRUE(empty.matches("FFFFFFFF2") && empty.matches("*******FT"));
    for (const char* pattern : {"FFFFFFFF1", "TFFFFFFF2", "FFFFFFFF", "FFFFFFFFX", ""})
        EXPECT_FALSE(empty.matches(pattern)) << pattern;
    EXPECT_FALSE(empty.matches(nullptr));
}

// Products of these coordinates round; signs must not.
TEST(RelationMatrix, IsExactWhereProductsRound) {
    const double third = 1.0 / 3;
    const JWLineString line(std::vector<JWRawPoint>{{0, 0}, {3 * 0.1, 3 * third * 0.1}});
    for (const double ulps : {-1.0, 0.0, 1.0}) {
        // On a diagonal: one unit in the last place beside it is beside it.
        const double x = 0.7, y = ulps == 0 ? x : std::nextafter(x, x + ulps);
        const JWLineString diagonal(std::vector<JWRawPoint>{{-1, -1}, {1e6, 1e6}});
        EXPECT_EQ(relation(JWPoint(x, y), diagonal), ulps == 0 ? "0FFFFF102" : "FF0FFF102");
    }
    // Three lines through one place that no double holds: 0.1-steps of two slopes.
    const auto a = fromWkt("LINESTRING (0 0, 3 1)");
    const auto b = fromWkt("MULTILINESTRING ((0 1, 2 0), (1 -1, 1.4 1.8))");
    EXPECT_EQ(relation(*a, *b), "0F1FF0102");
    EXPECT_EQ(relation(line, line), "1FFF0FFF2");
}

TEST(RelationMatrix, RefusesWhatHasNoRelation) {
    JWRelationMatrix matrix;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    const auto square = fromWkt(kSquare);
    const JWLineString bad(std::vector<JWRawPoint>{{0, 0}, {nan, 1}, {2, 2}});
    const JWPoint far(infinite, 0);
    const JWCircular arc(JWRawPoint(0, 0), 5, 0, 1);
    for (const JWGeometry* g :
         {static_cast<const JWGeometry*>(nullptr), static_cast<const JWGeometry*>(&bad),
          static_cast<const JWGeometry*>(&far)}) {
        JWReport::clearError();
        EXPECT_FALSE(relateGeometries(square.get(), g, &matrix));
        EXPECT_EQ(matrix.text(), "FFFFFFFF2");
        EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument);
        EXPECT_FALSE(relateGeometries(g, square.get(), &matrix));
        const JWPreparedRelation prepared(g);
        EXPECT_FALSE(prepared.isUsable());
        EXPECT_FALSE(prepared.relate(square.get(), &matrix) || prepared.intersects(square.get()));
        EXPECT_FALSE(prepared.intersects(JWRawPoint(0, 0)));
    }
    EXPECT_FALSE(relateGeometries(square.get(), square.get(), nullptr));
    const JWPreparedRelation prepared(square.get());
    EXPECT_FALSE(prepared.contains(JWRawPoint(nan, 5)) || prepared.intersects(&bad));
}

TEST(RelationMatrix, OpenRingsAreClosedAndRingsAreAreas) {
    JWRing open;
    for (const JWRawPoint p : {JWRawPoint(0, 0), JWRawPoint(10, 0), JWRawPoint(10, 10)})
        open.addPoint(p);
    EXPECT_EQ(relation(open, JWPoint(5, 5)), "FF20F1FF2");
    EXPECT_EQ(relation(open, JWPoint(8, 5)), "0F2FF1FF2");
    EXPECT_EQ(relation(JWLine(0, 0, 4, 4), JWPoint(2, 2)), "0F1FF0FF2");
    EXPECT_EQ(relation(JWDynamicPoint(JWRawPoint(1, 2), 0, 0, 0), JWPoint(1, 2)), "0FFFFFFF2");
}

TEST(RelationMatrix, OnePreparedGeometryServesManyThreads) {
    const auto frame = fromWkt(kFrame);
    const JWPreparedRelation prepared(frame.get());
    int counts[4] = {};
    std::vector<std::thread> threads;
    for (int& count : counts) {
        threads.emplace_back([&] {
            const auto part = fromWkt("POLYGON ((1 1, 3 1, 3 3, 1 3, 1 1))");
            for (int x = -2; x <= 12; ++x) {
                for (int y = -2; y <= 12; ++y) count += prepared.contains(JWRawPoint(x, y));
                JWRelationMatrix matrix;
                count += 1000 * (prepared.relate(part.get(), &matrix) && matrix.isOverlapping());
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    // 9 x 9 inside the shell, of which 7 x 7 lie in the hole or on its ring; 15 relations.
    for (const int count : counts) EXPECT_EQ(count, 81 - 49 + 15000);
}

}  // namespace
