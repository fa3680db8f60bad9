// SPDX-License-Identifier: MIT
//
// The shapes to the digit, every kind of geometry by its figures, aliases, and arguments that have
// no buffer.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <limits>
#include <memory>

#include "jw_febufferbasic.h"
#include "jw_geometrybuffer.h"
#include "jw_report.h"
#include "support/geos_oracle.h"
#include "support/wkt.h"

namespace {

using namespace jws;
using namespace jwtest;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kSquare = "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))";
/// Hole [5,15]² without the block [7,13]² and a bridge that joins it to the right.
constexpr const char* kBridge =
    "POLYGON ((0 0, 20 0, 20 20, 0 20, 0 0),"
    "(5 5, 15 5, 15 9.5, 13 9.5, 13 7, 7 7, 7 13, 13 13, 13 10.5, 15 10.5, 15 15, 5 15, 5 5))";

using GeometryPtr = std::unique_ptr<JWGeometry>;

GeometryPtr bufferOf(const JWGeometry& geometry, double distance,
                     enumJWBufferType type = JWBufferFace) {
    JWGeometry* result = nullptr;
    const int answer = JWGeometryBuffer::geometryBuffer(&geometry, distance, &result, type);
    EXPECT_EQ(answer, result ? 1 : 0);
    return GeometryPtr(result);
}

double areaOf(const JWGeometry* geometry) { return geosArea(toGeos(geometry).get()); }

/// Class, number of polygons and of rings, area: "multi 1 2 43.1058285" or "null".
std::string figures(const JWGeometry* geometry) {
    if (!geometry) return "null";
    const auto* multi = dynamic_cast<const JWMultiPolygon*>(geometry);
    const auto* polygon = dynamic_cast<const JWPolygon*>(geometry);
    char text[64];
    std::snprintf(text, sizeof text, "%s %d %d %.7f", multi ? "multi" : "polygon",
                  multi ? multi->getPolygonCount() : 1,
                  multi ? multi->getRingCount() : polygon->getRingCount(), areaOf(geometry));
    return text;
}

/// Ring sets from the per-kind functions; owns its rings.
struct RingList {
    std::vector<JWRing*> rings;
    std::vector<int> flags;

    RingList() = default;
    RingList(const RingList&) = delete;
    RingList& operator=(const RingList&) = delete;
    ~RingList() {
        for (JWRing* ring : rings) delete ring;
    }
    std::string text() const {
        std::string all;
        for (std::size_t i = 0; i < rings.size(); ++i) {
            all += std::to_string(flags[i]) + toWkt(JWPolygon(*rings[i])) + "\n";
        }
        return all;
    }
};

TEST(GeometryBuffer, ringsThatAreNotClosedCountAsClosed) {
    auto closed = fromWktAs<JWPolygon>(kBridge);
    JWPolygon open = closed;
    for (int r = 0; r < 2; ++r) {
        open.getRingPtrAt(r)->deletePointAt(open.getRingPtrAt(r)->getPointCount() - 1);
    }
    for (const enumJWBufferType type : {JWBufferFace, JWBufferEdge}) {
        EXPECT_EQ(toWkt(*bufferOf(open, 0.7, type)), toWkt(*bufferOf(closed, 0.7, type)));
        RingList ofOpen, ofClosed;
        JWGeometryBuffer::ringBuffer(open.getRingPtrAt(0), 1, type, ofOpen.rings, ofOpen.flags);
        JWGeometryBuffer::ringBuffer(closed.getRingPtrAt(0), 1, type, ofClosed.rings,
                                     ofClosed.flags);
        EXPECT_EQ(ofOpen.text(), ofClosed.text());
    }
}

TEST(BufferShapes, circleStartsEastAndRunsClockwise) {
    const GeometryPtr circle = bufferOf(JWPoint(0, 0), 1);
    const JWRing& ring = static_cast<const JWPolygon&>(*circle).getExteriorRing();
    ASSERT_EQ(ring.getPointCount(), 37);
    EXPECT_EQ(ring[0], ring[36]);
    EXPECT_DOUBLE_EQ(ring[0].x, 1);
    EXPECT_NEAR(ring[0].y, -1.5587e-11, 1e-15);
    EXPECT_EQ(ring[1], JWRawPoint(std::cos(35 * 0.174532925199), std::sin(35 * 0.174532925199)));
    EXPECT_NEAR(ring.getArea(), -3.1256671980, 1e-10);
    EXPECT_EQ(circle->getEnvelop().maxX, ring[0].x);
}

TEST(BufferShapes, capsulesInEveryDirection) {
    for (const JWRawPoint end :
         {JWRawPoint(10, 0), JWRawPoint(-10, 0), JWRawPoint(0, 10), JWRawPoint(0, -10),
          JWRawPoint(6, 8), JWRawPoint(-6, 8), JWRawPoint(6, -8), JWRawPoint(-6, -8)}) {
        SCOPED_TRACE(testing::Message() << end.x << " " << end.y);
        const JWRawPoint points[] = {{0, 0}, end};
        const GeometryPtr capsule = bufferOf(JWLineString(points, 2), 1);
        const JWRing& ring = static_cast<const JWPolygon&>(*capsule).getExteriorRing();
        ASSERT_EQ(ring.getPointCount(), 27);
        EXPECT_NEAR(ring.getArea(), -23.1058285412, 1e-10);
        EXPECT_TRUE(isValid(capsule.get()));
        // The first side runs along the line, one to its left.
        EXPECT_NEAR(ring[1].x - ring[0].x, end.x, 1e-14);
        EXPECT_NEAR(ring[0].x * end.y - ring[0].y * end.x, -10, 1e-13);
        if (end.x == 0) {
            EXPECT_EQ(std::fabs(ring[0].x), 1);
        }
        if (end.y == 0) {
            EXPECT_EQ(std::fabs(ring[0].y), 1);
        }
    }
}

struct FineShapes : JWFEBufferBasic {
    using JWFEBufferBasic::__pointBuffer;
    using JWFEBufferBasic::__segmentBuffer;
};

TEST(BufferShapes, finerFamily) {
    JWRing ring;
    EXPECT_EQ(FineShapes::__segmentBuffer(0, 0, 10, 0, -1, &ring), 1);
    EXPECT_EQ(ring.getPointCount(), 39);
    EXPECT_NEAR(ring.getArea(), -20 - 18 * std::sin(M_PI / 18), 1e-12);
    EXPECT_EQ(FineShapes::__pointBuffer(3, 4, 2, &ring), 1);
    EXPECT_EQ(ring.getPointCount(), 37);
    EXPECT_NEAR(ring.getArea(), -4 * 18 * std::sin(M_PI / 18), 1e-12);
    EXPECT_EQ(FineShapes::__pointBuffer(3, 4, 2, nullptr), 0);
}

// Figures by calculation, two half circles of radius 1 being 12 sin 15° = 3.1058285 and a circle
// 3.1256672; where there is none, just that the result is valid.
const struct {
    const char* name;
    const char* wkt;
    double distance;
    enumJWBufferType type;
    const char* figures;
} kRows[] = {
    {"point", "POINT (5 5)", 1, JWBufferFace, "polygon 1 1 3.1256672"},
    {"line of one point", "LINESTRING (5 5)", 1, JWBufferFace, "polygon 1 1 3.1256672"},
    {"line of no length", "LINESTRING (5 5, 5 5)", 1, JWBufferFace, "polygon 1 1 3.1256672"},
    {"all points equal", "LINESTRING (5 5, 5 5, 5 5)", 1, JWBufferFace, "polygon 1 1 3.1256672"},
    {"collinear", "LINESTRING (0 0, 5 0, 10 0)", 1, JWBufferFace, "polygon 1 1 23.1058285"},
    {"there and back", "LINESTRING (0 0, 10 0, 0 0)", 1, JWBufferFace, "polygon 1 1 23.1058285"},
    {"line, any type", "LINESTRING (0 0, 10 0)", 1, enumJWBufferType(7), "polygon 1 1 23.1058285"},
    {"square, face", kSquare, 1, JWBufferFace, "polygon 1 1 143.1058285"},
    {"square, edge", kSquare, 1, JWBufferEdge, "multi 1 2 43.1058285"},
    {"square, no such type", kSquare, 1, enumJWBufferType(3), "null"},
    {"hole shrinks", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 8 2, 8 8, 2 8, 2 2))", 1,
     JWBufferFace, "multi 1 2 127.1058285"},
    {"hole closes", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (4 4, 6 4, 6 6, 4 6, 4 4))", 1,
     JWBufferFace, "polygon 1 1 143.1058285"},
    {"hole closes, edge", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (4 4, 6 4, 6 6, 4 6, 4 4))", 1,
     JWBufferEdge, "multi 2 3 47.1058285"},
    {"hole of no area", "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (4 4, 6 4, 4 4))", 1, JWBufferFace,
     "polygon 1 1 143.1058285"},
    // A mouth of width 1 closes; of the hollow 6 x 7 there remain 4 x 5.
    {"outline closes off a hollow",
     "POLYGON ((0 0, 10 0, 10 10, 5.5 10, 5.5 9, 8 9, 8 2, 2 2, 2 9, 4.5 9, 4.5 10, 0 10, 0 0))", 1,
     JWBufferFace, nullptr},
    // The band around the hole closes off the middle of the block, solid polygon: no hole there.
    {"band of a hole closes off solid polygon", kBridge, 0.9, JWBufferFace, nullptr},
    {"far points", "MULTIPOINT (0 0, 10 0)", 3, JWBufferFace, "multi 2 2 56.2620096"},
    {"points in a chain", "MULTIPOINT (0 0, 10 0, 5 0)", 3, JWBufferFace, nullptr},
    {"equal points", "MULTIPOINT (0 0, 0 0)", 1, JWBufferFace, "polygon 1 1 3.1256672"},
    {"lines apart, one empty", "MULTILINESTRING ((0 0, 10 0), EMPTY, (0 5, 10 5))", 1, JWBufferFace,
     "multi 2 2 46.2116571"},
    {"polygons apart, one too short",
     "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 0)), ((5 5, 6 6, 5 5)),"
     "((20 0, 30 0, 30 10, 20 10, 20 0)))",
     1, JWBufferFace, "multi 2 2 286.2116571"},
    {"ring", nullptr, 1, JWBufferFace, "null"},
    {"collection", "GEOMETRYCOLLECTION (POINT (1 1))", 1, JWBufferFace, "null"},
    {"empty line", "LINESTRING EMPTY", 1, JWBufferFace, "null"},
    {"empty polygon", "POLYGON EMPTY", 1, JWBufferFace, "null"},
    {"empty points", "MULTIPOINT EMPTY", 1, JWBufferFace, "null"},
    {"empty polygons", "MULTIPOLYGON EMPTY", 1, JWBufferFace, "null"},
    {"two corners", "POLYGON ((0 0, 1 1, 0 0))", 1, JWBufferFace, "null"},
    {"zero", "LINESTRING (0 0, 1 0)", 0, JWBufferFace, "null"},
    {"negative", "LINESTRING (0 0, 1 0)", -5, JWBufferFace, "null"},
    {"not a number", "LINESTRING (0 0, 1 0)", kNaN, JWBufferFace, "null"},
    {"infinite", "LINESTRING (0 0, 1 0)", kInfinity, JWBufferFace, "null"},
    {"beyond the number range", "LINESTRING (1e308 0, 1.7e308 0)", 1e308, JWBufferFace, "null"},
    {"below the precision", "POINT (1e6 1e6)", 1e-11, JWBufferFace, "null"},
    {"below it, slanting", "LINESTRING (1e6 1e6, 2e6 3e6)", 1e-11, JWBufferFace, "null"},
    {"below it, bent", "LINESTRING (1e6 1e6, 2e6 3e6, 1e6 4e6)", 1e-11, JWBufferFace, "null"},
};

TEST(GeometryBuffer, figures) {
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.name);
        const GeometryPtr input = row.wkt ? fromWkt(row.wkt) : GeometryPtr(new JWRing());
        const GeometryPtr result = bufferOf(*input, row.distance, row.type);
        if (row.figures) {
            EXPECT_EQ(figures(result.get()), row.figures);
        } else {
            EXPECT_TRUE(result);
        }
        if (result) {
            EXPECT_TRUE(isValid(result.get()));
        }
    }
    const auto holes = [](const char* wkt, double d) {
        const GeometryPtr result = bufferOf(*fromWkt(wkt), d);
        const auto* multi = dynamic_cast<const JWMultiPolygon*>(result.get());
        return multi ? multi->getRingCount() - multi->getPolygonCount() : 0;
    };
    EXPECT_EQ(holes(kRows[14].wkt, 1), 1) << kRows[14].name;
    EXPECT_EQ(holes(kBridge, 0.9), 1) << "a channel of 0.2 around the block";
    EXPECT_EQ(holes("MULTIPOINT (0 0, 10 0, 5 0)", 3), 0);
}

TEST(GeometryBuffer, anyScale) {
    // A line that closes off a hole, neither vanishing nor overflowing.
    for (const double scale : {1e-200, 1e-20, 1.0, 1e20, 1e200}) {
        SCOPED_TRACE(scale);
        JWLineString line;
        for (const JWRawPoint p : {JWRawPoint(0, 0), JWRawPoint(1, 0), JWRawPoint(1, 1),
                                   JWRawPoint(0, 1), JWRawPoint(0, 0.25)}) {
            line.addPoint(p.x * scale, p.y * scale);
        }
        const GeometryPtr result = bufferOf(line, 0.25 * scale);
        ASSERT_TRUE(result);
        EXPECT_EQ(dynamic_cast<JWMultiPolygon&>(*result).getRingCount(), 2);
        const JWEnvelop e = result->getEnvelop();
        EXPECT_NEAR(e.maxX / scale - e.minX / scale, 1.5, 1e-9);
        EXPECT_NEAR(e.maxY / scale - e.minY / scale, 1.5, 1e-9);
    }
}

TEST(GeometryBuffer, coordinatesThatAreNoNumbers) {
    for (const double bad : {kNaN, kInfinity}) {
        JWLineString line;
        for (const double x : {0.0, 1.0, bad, 3.0}) line.addPoint(x, 0);
        JWReport::clearError();
        EXPECT_FALSE(bufferOf(line, 1));
        EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument);
        EXPECT_FALSE(bufferOf(JWPoint(0, bad), 1));
        JWPolygon polygon = fromWktAs<JWPolygon>(kSquare);
        const JWRawPoint hole[] = {{2, 2}, {3, 2}, {3, bad}};
        polygon.addRing(JWRing(hole, 3));
        EXPECT_FALSE(bufferOf(polygon, 1)) << "no part of it is handed out";
    }
}

TEST(GeometryBuffer, faceIsPolygonAndEdge) {
    for (const char* wkt :
         {kSquare, kBridge, "POLYGON ((0 0, 6 0, 6 6, 5 6, 5 1, 1 1, 1 6, 0 6, 0 0))"}) {
        const GeometryPtr polygon = fromWkt(wkt);
        // An envelope that is not up to date must not turn a filled polygon into a band.
        static_cast<JWPolygon&>(*polygon).getRingPtrAt(0)->setEnvelop(JWEnvelop::invalid());
        for (const double d : {0.1, 0.49, 0.9, 2.0, 30.0}) {
            const double face = areaOf(bufferOf(*polygon, d).get());
            const double edge = areaOf(bufferOf(*polygon, d, JWBufferEdge).get());
            EXPECT_NEAR(areaOf(polygon.get()) + edge, face, 1e-9 * face) << wkt << " " << d;
        }
    }
}

/// A per-kind function with its geometry filled in.
using Kind = std::function<int(RingList&)>;
template <class Input>
Kind kind(int (*f)(const Input*, double, std::vector<JWRing*>&, std::vector<int>&),
          const Input& input) {
    return [f, &input](RingList& list) { return f(&input, 1.25, list.rings, list.flags); };
}
Kind kind(int (*f)(const JWRing*, double, enumJWBufferType, std::vector<JWRing*>&,
                   std::vector<int>&),
          const JWRing& input, enumJWBufferType type) {
    return [=, &input](RingList& list) { return f(&input, 1.25, type, list.rings, list.flags); };
}

TEST(BufferNames, TeamAndEarlierFormsGiveTheSameBits) {
    using B = JWGeometryBuffer;
    const auto line = fromWktAs<JWLineString>("LINESTRING (0 0, 9 2, 3 4, 4 -3, 20 1)");
    const auto lines =
        fromWktAs<JWMultiLineString>("MULTILINESTRING ((0 0, 9 2, 3 4), (1 1, 8 8))");
    const auto polygon =
        fromWktAs<JWPolygon>("POLYGON ((0 0, 30 0, 30 30, 0 30, 0 0), (9 9, 20 8, 15 20, 9 9))");
    const auto polygons = fromWktAs<JWMultiPolygon>(
        "MULTIPOLYGON (((0 0, 9 0, 9 9, 0 0)), ((10 0, 19 0, 19 9, 10 0)))");
    const auto points = fromWktAs<JWMultiPoint>("MULTIPOINT (0 0, 1 1, 5 5, 9 9, 9 8)");
    const JWRing ring = polygon.getExteriorRing();
    const std::vector<std::vector<Kind>> families = {
        {kind(B::lineStringBuffer1, line), kind(B::lineStringBuffer, line),
         kind(B::lineStringBuffer_mp, line), kind(B::lineStringBuffer_mp1, line)},
        {kind(B::polygonBuffer1, polygon), kind(B::polygonBuffer, polygon),
         kind(B::polygonBuffer_mp, polygon), kind(B::polygonBuffer_mp1, polygon)},
        {kind(B::polygonBufferFace1, polygon), kind(B::polygonBufferFace, polygon),
         kind(B::polygonBufferFace_mp1, polygon)},
        {kind(B::multiPointBuffer2, points), kind(B::multiPointBuffer, points),
         kind(B::multiPointBuffer1, points), kind(B::multiPointBuffer_mp, points),
         kind(B::multiPointBuffer_mp1, points)},
        {kind(B::multiLineStringBuffer1, lines), kind(B::multiLineStringBuffer, lines),
         kind(B::multiLineStringBuffer2, lines), kind(B::multiLineStringBuffer_mp, lines),
         kind(B::multiLineStringBuffer_mp1, lines)},
        {kind(B::multiPolygonBuffer1, polygons), kind(B::multiPolygonBuffer, polygons),
         kind(B::multiPolygonBuffer_mp, polygons), kind(B::multiPolygonBuffer_mp1, polygons)},
        {kind(B::multiPolygonBufferFace1, polygons), kind(B::multiPolygonBufferFace_mp1, polygons)},
        {kind(B::ringBuffer, ring, JWBufferFace), kind(B::ringBuffer_mp, ring, JWBufferFace)},
    };
    for (std::size_t f = 0; f < families.size(); ++f) {
        RingList first;
        ASSERT_EQ(families[f][0](first), 1) << f;
        for (std::size_t i = 1; i < families[f].size(); ++i) {
            RingList other;
            EXPECT_EQ(families[f][i](other), 1) << f << " " << i;
            EXPECT_EQ(other.text(), first.text()) << f << " " << i;
        }
    }
}

TEST(BufferNames, finerFamily) {
    using F = JWFEBufferBasic;
    const double cap = 18 * std::sin(M_PI / 18);  // two half circles of radius 1
    const auto line = fromWktAs<JWLineString>("LINESTRING (0 0, 5 0, 10 0)");
    const auto lines = fromWktAs<JWMultiLineString>("MULTILINESTRING ((0 0, 10 0), (0 5, 10 5))");
    const auto polygon = fromWktAs<JWPolygon>(kSquare);
    const auto polygons =
        fromWktAs<JWMultiPolygon>("MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 0)))");
    const auto points = fromWktAs<JWMultiPoint>("MULTIPOINT (0 0, 9 9)");
    const JWRing ring = polygon.getExteriorRing();
    const JWPoint point(1, 2);
    JWMultiPolygon out;
    const auto check = [&out](int answer, double area) {
        EXPECT_EQ(answer, 1);
        EXPECT_NEAR(areaOf(&out), area, 1e-9);
        for (int i = 0; i < out.getPolygonCount(); ++i) {
            const JWPolygon& member = *out.getPolygonPtrAt(i);
            for (int r = 0; r < member.getRingCount(); ++r) {
                EXPECT_EQ(member.getAreaAt(r) < 0, r == 0) << "direction";
            }
        }
    };
    check(F::pointBuffer(1, 2, 1, &out), cap);
    check(F::lineStringBuffer(&line, 1, &out), 20 + cap);
    check(F::ringBufferFace(&ring, 1, &out), 40 + cap);
    check(F::ringBufferEdge(&ring, 1, &out), 76 + cap);
    check(F::polygonBufferFace(&polygon, 1, &out), 140 + cap);
    check(F::multiPointBuffer(&points, 1, &out), 2 * cap);
    check(F::multiLineStringBuffer(&lines, 1, &out), 40 + 2 * cap);
    check(F::multiPolygonBufferFace(&polygons, 1, &out), 140 + cap);
    const std::unique_ptr<JWRing> circle(F::pointBuffer(&point, 1));
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->getPointCount(), 37);
    RingList list;
    EXPECT_EQ(F::lineStringBuffer(&line, 1, list.rings, list.flags), 1);
    EXPECT_EQ(list.flags, std::vector<int>{0});
    EXPECT_EQ(F::lineStringBuffer(&line, 0, &out), 0);
    EXPECT_EQ(F::lineStringBuffer(nullptr, 1, &out), 0);
    EXPECT_EQ(F::lineStringBuffer(&line, 1, nullptr), 0);
    EXPECT_EQ(F::pointBuffer(nullptr, 1), nullptr);
    EXPECT_EQ(F::pointBuffer(kNaN, 0, 1, &out), 0);
    EXPECT_TRUE(out.isEmpty());
}

TEST(BufferNames, argumentsThatAreNone) {
    RingList list;
    list.rings.push_back(new JWRing());
    list.flags.push_back(0);
    const JWPoint point(0, 0);
    const JWRing shortRing;
    JWGeometry* made = nullptr;
    using B = JWGeometryBuffer;
    EXPECT_EQ(B::geometryBuffer(nullptr, 1, &made, JWBufferFace), 0);
    EXPECT_EQ(B::geometryBuffer(&point, 1, nullptr, JWBufferFace), 0);
    EXPECT_EQ(B::pointBuffer(nullptr, 1, list.rings, list.flags), 0);
    EXPECT_EQ(B::pointBuffer(&point, 0, list.rings, list.flags), 0);
    EXPECT_EQ(B::lineStringBuffer(nullptr, 1, list.rings, list.flags), 0);
    EXPECT_EQ(B::reduceUnionRing(nullptr, nullptr, list.rings, list.flags), 0);
    EXPECT_EQ(B::polygonizeRing(list.rings, list.flags, nullptr), 0);
    EXPECT_EQ(list.rings.size(), 1u) << "left alone";
    RingList none;
    EXPECT_EQ(B::ringBuffer(&shortRing, 1, JWBufferEdge, none.rings, none.flags), 0);
    const JWRing square = fromWktAs<JWPolygon>(kSquare).getExteriorRing();
    EXPECT_EQ(B::ringBuffer(&square, 1, enumJWBufferType(5), none.rings, none.flags), 0);
}

}  // namespace
