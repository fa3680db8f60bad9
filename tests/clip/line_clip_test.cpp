// SPDX-License-Identifier: MIT
//
// Lines cut by areas and by lines: tables of the ways in which they can meet, and random lines on a
// small lattice, where nearly everything touches, against a plain judge of stretches.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/clip_pieces.h"
#include "support/random_rings.h"

using namespace jws;
using namespace jwtest;

namespace {

const char* const kSquare = "POLYGON ((0 0,10 0,10 10,0 10,0 0))";

struct Row {
    const char* name;
    const char* line;
    const char* cutter;
    const char* pieces;  ///< "0:LINESTRING ...;1:..." without blanks around
};

std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }

std::string nameOf(const ::testing::TestParamInfo<Row>& info) { return info.param.name; }

/// The pieces as "0 -5,5 0,5; 1 0,5 10,5".
std::string shortText(const LineLists& lists) {
    std::string all;
    for (std::size_t i = 0; i < lists.pieces.size(); ++i) {
        if (i > 0) all += "; ";
        if (i < lists.inside.size()) all += std::to_string(lists.inside[i]) + ": ";
        const JWLineString& line = *lists.pieces[i];
        for (int k = 0; k < line.getPointCount(); ++k) {
            char text[64];
            std::snprintf(text, sizeof text, "%s%g %g", k > 0 ? ", " : "", line.getX(k),
                          line.getY(k));
            all += text;
        }
    }
    return all;
}

int clipLine(JWGeometry& line, JWGeometry& cutter, LineLists& lists, bool tree) {
    auto* one = dynamic_cast<JWLineString*>(&line);
    auto* many = dynamic_cast<JWMultiLineString*>(&line);
    if (auto* polygon = dynamic_cast<JWPolygon*>(&cutter))
        return one ? JWGeometryClip::lineStringClipByPolygon(one, polygon, lists.pieces,
                                                             lists.inside, false, tree)
                   : JWGeometryClip::multiLineStringClipByPolygon(many, polygon, lists.pieces,
                                                                  lists.inside, false, tree);
    if (auto* polygons = dynamic_cast<JWMultiPolygon*>(&cutter))
        return one ? JWGeometryClip::lineStringClipByMultiPolygon(one, polygons, lists.pieces,
                                                                  lists.inside, false, tree)
                   : JWGeometryClip::multiLineStringClipByMultiPolygon(many, polygons, lists.pieces,
                                                                       lists.inside, false, tree);
    if (auto* by = dynamic_cast<JWLineString*>(&cutter))
        return one ? JWGeometryClip::lineStringClipByLineString1(one, by, lists.pieces, false, tree)
                   : JWGeometryClip::multiLineStringClipBylineString(many, by, lists.pieces, false,
                                                                     tree);
    auto* by = dynamic_cast<JWMultiLineString*>(&cutter);
    return one ? JWGeometryClip::lineStringClipByMultiLineString(one, by, lists.pieces, false, tree)
               : JWGeometryClip::multiLineStringClipByMultiLineString(many, by, lists.pieces, false,
                                                                      tree);
}

class LineClip : public ::testing::TestWithParam<Row> {};

TEST_P(LineClip, PiecesAndMarkers) {
    const auto line = fromWkt(GetParam().line), cutter = fromWkt(GetParam().cutter);
    for (const bool tree : {true, false}) {
        LineLists lists;
        const int answer = clipLine(*line, *cutter, lists, tree);
        EXPECT_EQ(shortText(lists), GetParam().pieces);
        EXPECT_EQ(answer, static_cast<int>(lists.pieces.size()));
    }
}

const char* const kDonut = "POLYGON ((0 0,10 0,10 10,0 10,0 0),(4 4,6 4,6 6,4 6,4 4))";
const char* const kSpike = "POLYGON ((0 0,10 0,5 5,10 10,0 10,0 0))";

INSTANTIATE_TEST_SUITE_P(
    ByArea, LineClip,
    ::testing::Values(
        Row{"Crossing", "LINESTRING (-5 5,15 5)", kSquare,
            "0: -5 5, 0 5; 1: 0 5, 10 5; 0: 10 5, 15 5"},
        Row{"Inside", "LINESTRING (1 1,9 9)", kSquare, "1: 1 1, 9 9"},
        Row{"Outside", "LINESTRING (11 1,19 9)", kSquare, "0: 11 1, 19 9"},
        Row{"EnvelopesMeetOnly", "LINESTRING (8 13,13 8)", kSquare, "0: 8 13, 13 8"},
        Row{"TwiceInOneLine", "LINESTRING (-5 5,15 5,15 8,-5 8)", kSquare,
            "0: -5 5, 0 5; 1: 0 5, 10 5; 0: 10 5, 15 5, 15 8, 10 8; 1: 10 8, 0 8; 0: 0 8, -5 8"},
        Row{"ThroughTwoCorners", "LINESTRING (-5 -5,15 15)", kSquare,
            "0: -5 -5, 0 0; 1: 0 0, 10 10; 0: 10 10, 15 15"},
        Row{"TouchesACorner", "LINESTRING (-5 5,5 -5,15 -15)", "POLYGON ((0 0,9 0,9 9,0 9,0 0))",
            "0: -5 5, 0 0; 0: 0 0, 5 -5, 15 -15"},
        Row{"TouchesAnEdge", "LINESTRING (-5 5,0 5,-5 8)", kSquare, "0: -5 5, 0 5; 0: 0 5, -5 8"},
        Row{"TouchesAnEdgeFromInside", "LINESTRING (5 5,0 5,5 8)", kSquare,
            "1: 5 5, 0 5; 1: 0 5, 5 8"},
        Row{"PassesASpike", "LINESTRING (5 -5,5 15)", kSpike,
            "0: 5 -5, 5 0; 1: 5 0, 5 5; 1: 5 5, 5 10; 0: 5 10, 5 15"},
        Row{"VertexOnTheEdge", "LINESTRING (-5 5,0 5,5 5)", kSquare, "0: -5 5, 0 5; 1: 0 5, 5 5"},
        Row{"AlongAnEdge", "LINESTRING (-5 0,15 0)", kSquare,
            "0: -5 0, 0 0; 1: 0 0, 10 0; 0: 10 0, 15 0"},
        Row{"AlongThenIn", "LINESTRING (-5 0,5 0,5 5)", kSquare,
            "0: -5 0, 0 0; 1: 0 0, 5 0; 1: 5 0, 5 5"},
        Row{"AlongThenOut", "LINESTRING (5 5,5 0,8 0,8 -5)", kSquare,
            "1: 5 5, 5 0; 1: 5 0, 8 0; 0: 8 0, 8 -5"},
        Row{"AlongFromOutsideToOutside", "LINESTRING (2 -5,2 0,8 0,8 -5)", kSquare,
            "0: 2 -5, 2 0; 1: 2 0, 8 0; 0: 8 0, 8 -5"},
        Row{"AlongRoundACorner", "LINESTRING (5 0,10 0,10 5,15 5)", kSquare,
            "0: 5 0, 10 0, 10 5; 0: 10 5, 15 5"},
        Row{"BeginsAlongThenIn", "LINESTRING (0 2,0 8,5 8)", kSquare, "1: 0 2, 0 8; 1: 0 8, 5 8"},
        Row{"BeginsOnTheEdgeGoesOut", "LINESTRING (0 5,-5 5)", kSquare, "0: 0 5, -5 5"},
        Row{"BeginsOnTheEdgeGoesIn", "LINESTRING (0 5,5 5,15 5)", kSquare,
            "1: 0 5, 5 5, 10 5; 0: 10 5, 15 5"},
        Row{"BeginsOnACornerGoesIn", "LINESTRING (0 0,5 5)", kSquare, "1: 0 0, 5 5"},
        Row{"Chord", "LINESTRING (0 5,10 5)", kSquare, "1: 0 5, 10 5"},
        Row{"ChordThenOut", "LINESTRING (0 5,10 5,15 5)", kSquare, "1: 0 5, 10 5; 0: 10 5, 15 5"},
        Row{"EndsOnTheEdge", "LINESTRING (-5 5,0 5)", kSquare, "0: -5 5, 0 5"},
        Row{"AllAlong", "LINESTRING (0 0,10 0,10 10)", kSquare, "1: 0 0, 10 0, 10 10"},
        Row{"TheOutlineItself", "LINESTRING (0 0,10 0,10 10,0 10,0 0)", kSquare,
            "1: 0 0, 10 0, 10 10, 0 10, 0 0"},
        Row{"Loop", "LINESTRING (5 5,15 5,15 7,5 7,5 5)", kSquare,
            "1: 5 5, 10 5; 0: 10 5, 15 5, 15 7, 10 7; 1: 10 7, 5 7, 5 5"},
        Row{"ForthAndBack", "LINESTRING (-5 5,5 5,-5 5)", kSquare,
            "0: -5 5, 0 5; 1: 0 5, 5 5, 0 5; 0: 0 5, -5 5"},
        Row{"ForthAndBackOnTheEdge", "LINESTRING (-5 5,0 5,-5 5)", kSquare,
            "0: -5 5, 0 5; 0: 0 5, -5 5"},
        Row{"RepeatedPoints", "LINESTRING (-5 5,-5 5,0 5,0 5,5 5,5 5)", kSquare,
            "0: -5 5, -5 5, 0 5, 0 5; 1: 0 5, 5 5, 5 5"},
        Row{"Hole", "LINESTRING (1 5,9 5)", kDonut, "1: 1 5, 4 5; 0: 4 5, 6 5; 1: 6 5, 9 5"},
        Row{"AlongAHole", "LINESTRING (1 4,9 4)", kDonut, "1: 1 4, 4 4; 1: 4 4, 6 4; 1: 6 4, 9 4"},
        Row{"IntoAHoleByItsCorner", "LINESTRING (2 2,5 5)", kDonut, "1: 2 2, 4 4; 0: 4 4, 5 5"},
        Row{"BowTieCrossing", "LINESTRING (0 5,10 5)", "POLYGON ((0 0,10 10,10 0,0 10,0 0))",
            "1: 0 5, 5 5; 1: 5 5, 10 5"},
        Row{"BowTieAcross", "LINESTRING (5 0,5 10)", "POLYGON ((0 0,10 10,10 0,0 10,0 0))",
            "0: 5 0, 5 5; 0: 5 5, 5 10"},
        Row{"SharedBorderOfTwo", "LINESTRING (-5 5,25 5)",
            "MULTIPOLYGON (((0 0,10 0,10 10,0 10,0 0)),((10 0,20 0,20 10,10 10,10 0)))",
            "0: -5 5, 0 5; 1: 0 5, 10 5; 1: 10 5, 20 5; 0: 20 5, 25 5"},
        Row{"AlongTheSharedBorder", "LINESTRING (10 -5,10 15)",
            "MULTIPOLYGON (((0 0,10 0,10 10,0 10,0 0)),((10 0,20 0,20 10,10 10,10 0)))",
            "0: 10 -5, 10 0; 1: 10 0, 10 10; 0: 10 10, 10 15"},
        Row{"TwoMembers", "MULTILINESTRING ((-5 5,5 5),(1 1,2 2))", kSquare,
            "0: -5 5, 0 5; 1: 0 5, 5 5; 1: 1 1, 2 2"},
        Row{"OneMemberWithoutLength", "MULTILINESTRING ((3 3,3 3),(1 1,2 2))", kSquare,
            "1: 3 3, 3 3; 1: 1 1, 2 2"},
        Row{"NoLengthInside", "LINESTRING (3 3,3 3)", kSquare, "1: 3 3, 3 3"},
        Row{"NoLengthOutside", "LINESTRING (3 -3,3 -3,3 -3)", kSquare, "0: 3 -3, 3 -3, 3 -3"},
        Row{"RingWithoutArea", "LINESTRING (0 5,10 5)", "POLYGON ((5 0,5 10,5 0,5 0))",
            "0: 0 5, 5 5; 0: 5 5, 10 5"},
        Row{"RingTooShort", "LINESTRING (0 5,10 5)", "POLYGON ((5 0,5 10,5 0))", ""},
        Row{"VeryLarge", "LINESTRING (-5e200 5e200,15e200 5e200)",
            "POLYGON ((0 0,1e201 0,1e201 1e201,0 1e201,0 0))",
            "0: -5e+200 5e+200, 0 5e+200; 1: 0 5e+200, 1e+201 5e+200; 0: 1e+201 5e+200, 1.5e+201 "
            "5e+200"},
        Row{"VerySmall", "LINESTRING (-5e-200 5e-200,15e-200 5e-200)",
            "POLYGON ((0 0,1e-199 0,1e-199 1e-199,0 1e-199,0 0))",
            "0: -5e-200 5e-200, 0 5e-200; 1: 0 5e-200, 1e-199 5e-200; 0: 1e-199 5e-200, 1.5e-199 "
            "5e-200"},
        Row{"LargeLineSmallArea", "LINESTRING (-1e300 5,1e300 5)", kSquare,
            "0: -1e+300 5, 0 5; 1: 0 5, 10 5; 0: 10 5, 1e+300 5"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    ByLine, LineClip,
    ::testing::Values(
        Row{"Crossing", "LINESTRING (0 0,10 0)", "LINESTRING (5 -5,5 5)", "0 0, 5 0; 5 0, 10 0"},
        Row{"Apart", "LINESTRING (0 0,10 0)", "LINESTRING (5 1,5 5)", "0 0, 10 0"},
        Row{"ItsEndTouches", "LINESTRING (0 0,10 0)", "LINESTRING (5 0,5 5)",
            "0 0, 5 0; 5 0, 10 0"},
        Row{"ItsVertexTouches", "LINESTRING (0 0,10 0)", "LINESTRING (4 5,5 0,6 5)",
            "0 0, 5 0; 5 0, 10 0"},
        Row{"TouchedAtAVertex", "LINESTRING (0 0,5 0,10 1)", "LINESTRING (5 -5,5 0)",
            "0 0, 5 0; 5 0, 10 1"},
        Row{"AtTheEndsOnly", "LINESTRING (0 0,10 0)", "MULTILINESTRING ((0 -5,0 5),(10 -5,10 0))",
            "0 0, 10 0"},
        Row{"SharedStretch", "LINESTRING (0 0,10 0)", "LINESTRING (4 0,4 5,6 5,6 -5)",
            "0 0, 4 0; 4 0, 6 0; 6 0, 10 0"},
        Row{"RunsAlong", "LINESTRING (0 0,10 0)", "LINESTRING (3 5,3 0,5 0,7 0,7 5)",
            "0 0, 3 0; 3 0, 7 0; 7 0, 10 0"},
        Row{"RunsAlongPastAVertex", "LINESTRING (0 0,5 0,5 5)", "LINESTRING (2 0,5 0,5 3)",
            "0 0, 2 0; 2 0, 5 0, 5 3; 5 3, 5 5"},
        Row{"LeavesAtAVertex", "LINESTRING (0 0,5 0,5 5)", "LINESTRING (2 0,8 0)",
            "0 0, 2 0; 2 0, 5 0; 5 0, 5 5"},
        Row{"TheSameLine", "LINESTRING (0 0,5 0,5 5)", "LINESTRING (5 5,5 0,0 0)", "0 0, 5 0, 5 5"},
        Row{"ThroughAVertexOfBoth", "LINESTRING (0 0,5 5,10 0)", "LINESTRING (0 10,5 5,10 10)",
            "0 0, 5 5; 5 5, 10 0"},
        Row{"SeveralTimes", "LINESTRING (0 0,10 0)", "LINESTRING (2 -1,2 1,4 1,4 -1,6 -1,6 1)",
            "0 0, 2 0; 2 0, 4 0; 4 0, 6 0; 6 0, 10 0"},
        Row{"TwoCuttersInOnePlace", "LINESTRING (0 0,10 0)",
            "MULTILINESTRING ((5 -5,5 5),(4 -1,6 1))", "0 0, 5 0; 5 0, 10 0"},
        Row{"NoLength", "LINESTRING (5 5,5 5)", "LINESTRING (5 0,5 9)", "5 5, 5 5"},
        Row{"CutterWithoutLength", "LINESTRING (0 0,10 0)", "LINESTRING (5 0,5 0)", ""}),
    nameOf);

enum Place { kOut, kIn, kOn };

/// A part of a line between places where anything may change, judged by its middle.
struct Stretch {
    JWRawPoint start;
    double from, to;  ///< along the line
    Place place;      ///< edges that lie on one another in pairs are no boundary
    bool isCovered;   ///< by any edge
};

double distanceTo(JWRawPoint m, JWRawPoint p, JWRawPoint q) {
    const double ux = q.x - p.x, uy = q.y - p.y, length2 = ux * ux + uy * uy;
    const double t = length2 == 0 ? 0 : ((m.x - p.x) * ux + (m.y - p.y) * uy) / length2;
    const double at = std::clamp(t, 0.0, 1.0);
    return std::hypot(m.x - p.x - at * ux, m.y - p.y - at * uy);
}

bool isOnEdge(JWRawPoint m, JWRawPoint p, JWRawPoint q) { return distanceTo(m, p, q) < 1e-9; }

void judge(JWRawPoint m, const Ring& ring, Stretch& stretch) {
    bool odd = false, on = false;
    for (std::size_t k = 0; k < ring.size(); ++k) {
        const JWRawPoint p = ring[k], q = ring[(k + 1) % ring.size()];
        const bool covers = p != q && isOnEdge(m, p, q);
        on ^= covers;
        stretch.isCovered |= covers;
        if (!covers && (p.y > m.y) != (q.y > m.y) &&
            m.x < p.x + (m.y - p.y) / (q.y - p.y) * (q.x - p.x))
            odd = !odd;
    }
    stretch.place = on ? kOn : odd ? kIn : kOut;
}

/// Every stretch between parameters at which a segment meets the line of an edge or an end of it.
std::vector<Stretch> stretchesOf(const Ring& line, const Ring& ring) {
    std::vector<Stretch> all;
    double done = 0;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const JWRawPoint a = line[i], b = line[i + 1];
        const double ux = b.x - a.x, uy = b.y - a.y, length = std::hypot(ux, uy);
        if (length == 0) continue;
        std::vector<double> at = {0, 1};
        for (std::size_t k = 0; k < ring.size(); ++k) {
            const JWRawPoint p = ring[k], q = ring[(k + 1) % ring.size()];
            const double vx = q.x - p.x, vy = q.y - p.y, turn = ux * vy - uy * vx;
            if (turn != 0) at.push_back(((p.x - a.x) * vy - (p.y - a.y) * vx) / turn);
            at.push_back(((p.x - a.x) * ux + (p.y - a.y) * uy) / (length * length));
        }
        std::sort(at.begin(), at.end());
        for (std::size_t k = 0; k + 1 < at.size(); ++k) {
            const double from = std::clamp(at[k], 0.0, 1.0), to = std::clamp(at[k + 1], 0.0, 1.0);
            if (to - from < 1e-9) continue;
            Stretch stretch{{a.x + from * ux, a.y + from * uy},
                            done + from * length,
                            done + to * length,
                            kOut,
                            false};
            const double t = (from + to) / 2;
            judge({a.x + t * ux, a.y + t * uy}, ring, stretch);
            all.push_back(stretch);
        }
        done += length;
    }
    return all;
}

/// Length inside, boundary included; what the line begins with along it counts as what follows.
double lengthInside(const std::vector<Stretch>& stretches) {
    const auto first = std::find_if(stretches.begin(), stretches.end(),
                                    [](const Stretch& s) { return s.place != kOn; });
    const bool beginsOut = first != stretches.end() && first->place == kOut;
    double sum = 0;
    for (auto s = stretches.begin(); s != stretches.end(); ++s) {
        if (s->place != kOut && !(beginsOut && s < first)) sum += s->to - s->from;
    }
    return sum;
}

/// The line is cut where the ring meets it or begins or ceases to run along it, nowhere else. What
/// edges that lie on one another do is not judged.
void expectCuts(const LineLists& lists, const std::vector<Stretch>& stretches, const Ring& ring) {
    std::vector<double> cuts = {0};
    for (const auto& piece : lists.pieces) cuts.push_back(cuts.back() + piece->getLength());
    for (std::size_t i = 1; i < stretches.size(); ++i) {
        const Stretch &before = stretches[i - 1], &after = stretches[i];
        bool touches = false;
        for (std::size_t k = 0; k < ring.size(); ++k)
            touches |= isOnEdge(after.start, ring[k], ring[(k + 1) % ring.size()]);
        const int along = (before.place == kOn) + (after.place == kOn);
        if (touches && along == 0 && (before.isCovered || after.isCovered)) continue;
        const bool isCut = std::any_of(
            cuts.begin(), cuts.end(), [&](double at) { return std::fabs(at - after.from) < 1e-9; });
        EXPECT_EQ(isCut, touches && along != 2) << "at " << after.start.x << " " << after.start.y;
    }
}

JWLineString lineOf(const Ring& points) { return JWLineString(std::vector<JWRawPoint>(points)); }

TEST(LineClipRandom, MarkersLengthsAndSearches) {
    for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
        RandomRings random(seed);
        const int size = random.oneIn(3) ? 4 : 12;
        const Ring ring = random.tangle(random.integer(3, 9), size);
        const Ring points = random.tangle(random.integer(2, 8), size);
        JWLineString line = lineOf(points);
        if (line.getLength() == 0) continue;
        JWRing closed{std::vector<JWRawPoint>(ring)};
        closed.closeRing();
        if (closed.getPointCount() < 4 || closed.getLength() == 0) continue;
        LineLists tree, all;
        JWGeometryClip::lineStringClipByRing(&line, &closed, tree.pieces, tree.inside, false);
        JWGeometryClip::lineStringClipByRingWithOutRTree(&line, &closed, all.pieces, all.inside,
                                                         false);
        ASSERT_EQ(tree.text(), all.text()) << "seed " << seed;
        EXPECT_NEAR(tree.length(), line.getLength(), 1e-9 * line.getLength()) << "seed " << seed;
        const std::vector<Stretch> stretches = stretchesOf(points, ring);
        expectCuts(tree, stretches, ring);
        EXPECT_NEAR(tree.length(1), lengthInside(stretches), 1e-9) << "seed " << seed << "\n"
                                                                   << toWkt(line) << "\n"
                                                                   << toWkt(closed);
    }
}

/// One long line is shared out by its segments; batches end in the midst of meetings.
TEST(LineClipRandom, TeamCutsALongLineAlike) {
    RandomRings random(11);
    JWLineString line{std::vector<JWRawPoint>(random.tangle(70000, 40))};
    auto donut = fromWktAs<JWPolygon>(
        "POLYGON ((5 5,35 5,35 35,5 35,5 5),(10 10,30 10,30 30,10 30,10 10),(30 30,32 31,31 32,30 "
        "30))");
    JWLineString across{{{-1, 7}, {41, 7}, {20, 20}, {20, -1}}};
    for (JWGeometry* cutter :
         {static_cast<JWGeometry*>(&donut), static_cast<JWGeometry*>(&across)}) {
        ClipLists<JWGeometry> plain, team;
        const int pieces = JWGeometryClip::geometryClipByGeometry(&line, cutter, plain.pieces,
                                                                  plain.inside, false, true);
        EXPECT_EQ(JWGeometryClip::geometryClipByGeometry_mp(&line, cutter, team.pieces, team.inside,
                                                            false, true),
                  pieces);
        EXPECT_EQ(plain.text(), team.text());
    }
}

/// Long lines by a large area, and by a line: what many nodes of the tree answer.
TEST(LineClipRandom, LargeOperandsInEverySearchAndTeam) {
    for (std::uint64_t seed = 1; seed <= 4; ++seed) {
        RandomRings random(seed);
        const double offset = seed % 3 == 0 ? 5e6 : 0;
        JWRing ring{std::vector<JWRawPoint>(random.star(600, {offset, offset}, 100))};
        ring.closeRing();
        ring.updateEnvelop();
        JWMultiLineString lines;
        JWRawPoint at(offset, offset);
        for (int k = 0; k < 12; ++k) {
            std::vector<JWRawPoint> points;
            const double step = random.oneIn(2) ? 1 : 60;
            for (int i = 0; i < 200; ++i) {
                points.push_back(at);
                at = {at.x + random.uniform(-step, step), at.y + random.uniform(-step, step)};
                if (std::hypot(at.x - offset, at.y - offset) > 150) at = {offset, offset};
            }
            lines.addLineString(JWLineString(points));
        }
        JWPolygon polygon;
        polygon.addRing(ring);
        JWLineString outline{std::vector<JWRawPoint>(ring.getPointList())};
        for (JWGeometry* cutter :
             {static_cast<JWGeometry*>(&polygon), static_cast<JWGeometry*>(&outline)}) {
            LineLists tree, all, team;
            clipLine(lines, *cutter, tree, true);
            clipLine(lines, *cutter, all, false);
            ASSERT_EQ(tree.text(), all.text()) << "seed " << seed;
            double whole = 0;
            for (const JWLineString& line : lines.getMemberList()) whole += line.getLength();
            EXPECT_NEAR(tree.length(), whole, 1e-9 * whole);
            if (cutter == &polygon) {
                JWGeometryClip::multiLineStringClipByPolygon_mp(&lines, &polygon, team.pieces,
                                                                team.inside, false, true);
                EXPECT_EQ(tree.text(), team.text());
            }
        }
    }
}

}  // namespace
