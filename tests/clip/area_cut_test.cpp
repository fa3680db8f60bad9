// SPDX-License-Identifier: MIT
//
// Areas cut along lines: tables of what divides and what does not, random lines on a lattice and
// off it, with GEOS as the judge of how many faces there are and whether they are valid.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "jw_geometrybuffer.h"
#include "support/clip_pieces.h"
#include "support/geos_oracle.h"
#include "support/random_rings.h"

using namespace jws;
using namespace jwtest;

namespace {

std::vector<std::unique_ptr<JWGeometry>> cut(JWGeometry& area, JWGeometry& lines) {
    std::vector<JWGeometry*> pieces;
    JWGeometryClip::geometryClipByGeometry(&area, &lines, pieces, false, true);
    return {pieces.begin(), pieces.end()};
}

double areaOf(const JWGeometry& geometry) {
    if (geometry.getGeometryType() == JWGeometryPolygon)
        return static_cast<const JWPolygon&>(geometry).getArea();
    double sum = 0;
    for (const JWPolygon& p : static_cast<const JWMultiPolygon&>(geometry).getMemberList())
        sum += p.getArea();
    return sum;
}

/// The forms that fill ring lists, and what `polygonizeRing` makes of the rings.
std::vector<std::unique_ptr<JWGeometry>> cutAndPolygonize(JWGeometry& area, JWGeometry& lines) {
    std::vector<JWRing*> rings;
    std::vector<int> flags;
    auto* line = dynamic_cast<JWLineString*>(&lines);
    auto* many = dynamic_cast<JWMultiLineString*>(&lines);
    if (auto* polygon = dynamic_cast<JWPolygon*>(&area)) {
        line ? JWGeometryClip::polygonClipByLineString1(polygon, line, rings, flags, false)
             : JWGeometryClip::polygonClipByMultiLineString(polygon, many, rings, flags, false);
    } else {
        auto* polygons = static_cast<JWMultiPolygon*>(&area);
        line ? JWGeometryClip::multiPolygonClipBylineString(polygons, line, rings, flags, false)
             : JWGeometryClip::multiPolygonClipByMultiLineString(polygons, many, rings, flags,
                                                                 false);
    }
    JWGeometry* result = nullptr;
    JWGeometryBuffer::polygonizeRing(rings, flags, &result);
    std::vector<std::unique_ptr<JWGeometry>> polygons;
    if (result == nullptr) return polygons;
    if (result->getGeometryType() == JWGeometryPolygon) {
        polygons.emplace_back(result);
        return polygons;
    }
    for (const JWPolygon& p : static_cast<JWMultiPolygon*>(result)->getMemberList())
        polygons.emplace_back(p.clone());
    delete result;
    return polygons;
}

std::string sortedText(const std::vector<std::unique_ptr<JWGeometry>>& polygons) {
    std::vector<std::string> texts;
    for (const auto& polygon : polygons) texts.push_back(normalizedWkt(*polygon));
    std::sort(texts.begin(), texts.end());
    std::string all;
    for (const std::string& text : texts) all += text + "\n";
    return all;
}

struct Row {
    const char* name;
    const char* area;
    const char* lines;
    std::vector<double> areas;  ///< of the faces, ascending
};

std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }

class AreaCut : public ::testing::TestWithParam<Row> {};

TEST_P(AreaCut, Faces) {
    const auto area = fromWkt(GetParam().area), lines = fromWkt(GetParam().lines);
    const auto faces = cut(*area, *lines);
    std::vector<double> areas;
    for (const auto& face : faces) {
        areas.push_back(areaOf(*face));
        EXPECT_TRUE(isValid(face.get())) << toWkt(*face);
    }
    std::sort(areas.begin(), areas.end());
    ASSERT_EQ(areas.size(), GetParam().areas.size());
    for (std::size_t i = 0; i < areas.size(); ++i)
        EXPECT_NEAR(areas[i], GetParam().areas[i], 1e-12);
    EXPECT_EQ(sortedText(cutAndPolygonize(*area, *lines)), sortedText(faces));
}

const char* const kSquare = "POLYGON ((0 0,10 0,10 10,0 10,0 0))";
const char* const kDonut = "POLYGON ((0 0,10 0,10 10,0 10,0 0),(4 4,6 4,6 6,4 6,4 4))";

INSTANTIATE_TEST_SUITE_P(
    Rows, AreaCut,
    ::testing::Values(
        Row{"Across", kSquare, "LINESTRING (-5 5,15 5)", {50, 50}},
        Row{"FromCornerToCorner", kSquare, "LINESTRING (0 0,10 10)", {50, 50}},
        Row{"FromEdgeToEdgeExactly", kSquare, "LINESTRING (0 5,10 5)", {50, 50}},
        Row{"EndsInside", kSquare, "LINESTRING (-5 5,5 5)", {100}},
        Row{"Inside", kSquare, "LINESTRING (2 5,5 5)", {100}},
        Row{"Outside", kSquare, "LINESTRING (20 5,25 5)", {100}},
        Row{"AlongAnEdge", kSquare, "LINESTRING (0 0,10 0)", {100}},
        Row{"TouchesACorner", kSquare, "LINESTRING (-5 5,5 -5)", {100}},
        Row{"Snake", kSquare, "LINESTRING (-1 2,11 2,11 5,-1 5)", {20, 30, 50}},
        Row{"LoopInside", kSquare, "LINESTRING (2 2,4 2,4 4,2 4,2 2)", {4, 96}},
        Row{"LoopOnAStalk", kSquare, "LINESTRING (5 -1,5 5,7 5,7 7,5 7,5 5)", {4, 96}},
        Row{"LoopTouchingTheOutline", kSquare, "LINESTRING (0 5,2 4,2 6,0 5)", {2, 98}},
        Row{"LoopInALoop",
            kSquare,
            "MULTILINESTRING ((1 1,9 1,9 9,1 9,1 1),(3 3,5 3,5 5,3 5,3 3))",
            {4, 36, 60}},
        Row{"TwoThatCross", kSquare, "MULTILINESTRING ((-1 5,11 5),(5 -1,5 11))", {25, 25, 25, 25}},
        Row{"ACrossWithEndsInside", kSquare, "MULTILINESTRING ((2 5,8 5),(5 2,5 8))", {100}},
        Row{"ThatMeetInAT", kSquare, "MULTILINESTRING ((-1 5,11 5),(5 5,5 11))", {25, 25, 50}},
        Row{"ThatCloseAFaceTogether",
            kSquare,
            "MULTILINESTRING ((2 1,2 9),(8 1,8 9),(1 2,9 2),(1 8,9 8))",
            {36, 64}},
        Row{"TheSameTwice", kSquare, "MULTILINESTRING ((-1 5,11 5),(11 5,-1 5))", {50, 50}},
        Row{"ThroughAHole", kDonut, "LINESTRING (-1 5,11 5)", {48, 48}},
        Row{"FromTheOutlineToAHole", kDonut, "LINESTRING (-1 5,5 5)", {96}},
        Row{"TwiceToAHole", kDonut, "MULTILINESTRING ((-1 5,5 5),(5 5,5 11))", {24, 72}},
        Row{"PastAHole", kDonut, "LINESTRING (-1 2,11 2)", {20, 76}},
        Row{"AroundAHole", kDonut, "LINESTRING (2 2,8 2,8 8,2 8,2 2)", {32, 64}},
        Row{"AlongAHole", kDonut, "LINESTRING (-1 4,11 4)", {40, 56}},
        Row{"BowTie",
            "POLYGON ((0 0,10 10,10 0,0 10,0 0))",
            "LINESTRING (-1 5,11 5)",
            {12.5, 12.5, 12.5, 12.5}},
        Row{"TwoMembers",
            "MULTIPOLYGON (((0 0,10 0,10 10,0 10,0 0)),((20 0,30 0,30 10,20 10,20 0)))",
            "LINESTRING (-1 4,15 4)",
            {40, 60, 100}},
        Row{"OneInTheHoleOfAnother",
            "MULTIPOLYGON (((0 0,20 0,20 20,0 20,0 0),(4 4,16 4,16 16,4 16,4 4)),"
            "((6 6,14 6,14 14,6 14,6 6),(8 8,12 8,12 12,8 12,8 8)))",
            "LINESTRING (-1 2,21 2)",
            {40, 48, 216}},
        Row{"AFarLine", kSquare, "LINESTRING (-1e12 5,1e12 5)", {50, 50}},
        Row{"AVeryFarLine", kSquare, "LINESTRING (-1e200 5,1e200 5)", {50, 50}}),
    [](const ::testing::TestParamInfo<Row>& row) { return std::string(row.param.name); });

TEST(AreaCutForms, RingPiecesAddUpBySign) {
    JWRing ring = fromWktAs<JWPolygon>(kSquare).getExteriorRing();
    auto loop = fromWktAs<JWLineString>("LINESTRING (2 2,4 2,4 4,2 4,2 2)");
    RingLists lists;
    ASSERT_EQ(JWGeometryClip::ringClipByLineString(&ring, &loop, lists.pieces, false), 3);
    double sum = 0;
    for (const JWRing* piece : lists.pieces) sum += piece->getArea();
    EXPECT_DOUBLE_EQ(sum, 100);
}

TEST(AreaCutForms, WhatIsNotDividedStaysAsItIs) {
    auto polygon =
        fromWktAs<JWPolygon>("POLYGON ((0 0,0 10,10 10,10 0,0 0),(4 4,6 4,6 6,4 6,4 4))");
    auto line = fromWktAs<JWLineString>("LINESTRING (-5 5,2 5)");
    const auto faces = cut(polygon, line);
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_TRUE(static_cast<JWPolygon&>(*faces.front()) == polygon);
}

/// Faces of outline and lines that lie in the area, above a size, by GEOS.
int geosFaces(const GEOSGeometry* area, const JWMultiLineString& lines, double least) {
    GEOSContextHandle_t h = geosContext();
    std::vector<GEOSGeometry*> parts = {GEOSBoundary_r(h, area)};
    for (const JWLineString& line : lines.getMemberList()) {
        GEOSCoordSequence* s =
            GEOSCoordSeq_create_r(h, static_cast<unsigned>(line.getPointCount()), 2);
        for (int i = 0; i < line.getPointCount(); ++i)
            GEOSCoordSeq_setXY_r(h, s, static_cast<unsigned>(i), line.getX(i), line.getY(i));
        parts.push_back(GEOSGeom_createLineString_r(h, s));
    }
    const GeosPtr all(GEOSGeom_createCollection_r(h, GEOS_GEOMETRYCOLLECTION, parts.data(),
                                                  static_cast<unsigned>(parts.size())));
    const GeosPtr noded(GEOSUnaryUnion_r(h, all.get()));
    const GEOSGeometry* input = noded.get();
    const GeosPtr faces(GEOSPolygonize_r(h, &input, 1));
    int count = 0;
    for (int i = 0; i < GEOSGetNumGeometries_r(h, faces.get()); ++i) {
        const GEOSGeometry* face = GEOSGetGeometryN_r(h, faces.get(), i);
        const GeosPtr place(GEOSPointOnSurface_r(h, face));
        count += geosArea(face) > least && GEOSIntersects_r(h, area, place.get()) == 1;
    }
    return count;
}

TEST(AreaCutRandom, FacesAddUpAndAreValid) {
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        RandomRings random(seed);
        const bool lattice = seed % 2 == 0;
        const double offset = seed % 5 == 0 ? 4e6 : 0;
        JWPolygon polygon;
        if (lattice) {
            polygon = fromWktAs<JWPolygon>(
                "POLYGON ((0 0,12 0,12 12,6 8,0 12,0 0),(2 2,4 2,4 4,2 4,2 2),(6 2,10 2,8 6,6 2))");
            polygon.move(offset, offset);
        } else {
            Ring star = random.star(random.integer(5, 60), {offset + 6, offset + 6}, 6);
            polygon.addRing(JWRing(std::vector<JWRawPoint>(star)));
            Ring hole = random.star(random.integer(3, 20), {offset + 6, offset + 6}, 2);
            polygon.addRing(JWRing(std::vector<JWRawPoint>(hole)));
            for (JWRing& ring : polygon.getRingList()) ring.closeRing();
        }
        polygon.updateEnvelop();
        JWMultiLineString lines;
        for (int k = random.integer(1, 4); k > 0; --k) {
            Ring points = lattice ? random.tangle(random.integer(2, 7), 12)
                                  : random.scatter(random.integer(2, 12), -2, 14);
            for (JWRawPoint& p : points) p = {p.x + offset, p.y + offset};
            lines.addLineString(JWLineString(std::vector<JWRawPoint>(points)));
        }
        const auto faces = cut(polygon, lines);
        double sum = 0;
        const double least = offset > 0 ? 1e-6 : 1e-9;
        int large = 0;
        for (const auto& face : faces) {
            sum += areaOf(*face);
            large += areaOf(*face) > least;
            EXPECT_TRUE(isValid(face.get())) << "seed " << seed << " " << toWkt(*face);
        }
        EXPECT_NEAR(sum, polygon.getArea(), offset > 0 ? 1e-7 : 1e-11) << "seed " << seed;
        EXPECT_EQ(large, geosFaces(toGeos(&polygon).get(), lines, least)) << "seed " << seed;
        EXPECT_EQ(sortedText(cutAndPolygonize(polygon, lines)), sortedText(faces))
            << "seed " << seed;
    }
}

TEST(AreaCutRandom, MembersInTeamsGiveTheSame) {
    RandomRings random(7);
    JWMultiPolygon polygons;
    for (int i = 0; i < 40; ++i) {
        JWRing ring{std::vector<JWRawPoint>(random.star(30, {4.0 * (i % 8), 4.0 * (i / 8)}, 2))};
        ring.closeRing();
        polygons.addPolygon(JWPolygon(ring));
    }
    polygons.updateEnvelop();
    JWLineString line{std::vector<JWRawPoint>(random.scatter(30, -2, 30))};
    RingLists plain, team;
    ASSERT_GT(JWGeometryClip::multiPolygonClipBylineString(&polygons, &line, plain.pieces,
                                                           plain.holes, false),
              40);
    JWGeometryClip::multiPolygonClipBylineString_mp(&polygons, &line, team.pieces, team.holes,
                                                    false);
    EXPECT_EQ(plain.text(), team.text());
    EXPECT_EQ(plain.holes, team.holes);
}

}  // namespace
