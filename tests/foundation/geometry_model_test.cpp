// SPDX-License-Identifier: MIT
//
// The geometry model: values, lists, closing, envelopes, measures and maps.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <type_traits>

#include "foundation/orientation.h"
#include "foundation/ring_math.h"
#include "jw_geometry.h"
#include "support/wkt.h"

namespace jws {
namespace {

using jwtest::fromWkt;
using jwtest::fromWktAs;
using jwtest::toWkt;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kPi = 3.14159265358979323846;
constexpr char kSquare[] = "LINEARRING (0 0, 10 0, 10 10, 0 10, 0 0)";

std::string show(const JWEnvelop& e) {
    return e.isValid() ? toWkt(JWLine(e.bottom_left(), e.top_right())) : "invalid";
}

static_assert(sizeof(JWGeometry) == sizeof(void*), "the root holds the table pointer only");
static_assert(sizeof(JWPoint) == sizeof(void*) + 4 * sizeof(double));
static_assert(sizeof(JWRing) ==
              sizeof(void*) + sizeof(std::vector<JWRawPoint>) + sizeof(JWEnvelop));
static_assert(!std::is_base_of_v<JWLineString, JWRing> && std::is_base_of_v<JWPolyCurve, JWRing> &&
              std::is_base_of_v<JWPolyCurve, JWPolygon> && std::is_base_of_v<JWSegment, JWLine>);
static_assert(std::is_nothrow_move_constructible_v<JWRing> &&
                  std::is_nothrow_move_constructible_v<JWPolygon>,
              "lists of rings grow by moving");

TEST(RawPoint, OrdersByXThenY) {
    EXPECT_LT(JWRawPoint(1, 2), JWRawPoint(1, 3));
    EXPECT_GT(JWRawPoint(2, 0), JWRawPoint(1, 3));
    EXPECT_NE(JWRawPoint(1, 2), JWRawPoint(1, 2.0000000001));
    EXPECT_EQ(JWRawPoint(1, 2).move_new(1, -1), JWRawPoint(2, 1));
}

TEST(Envelop, Predicates) {
    const struct {
        JWEnvelop a, b;
        bool intersected, disjoint, contain;
        const char* overlap;
    } rows[] = {
        {{0, 0, 2, 2}, {1, 1, 3, 3}, true, false, false, "LINESTRING (1 1, 2 2)"},
        {{0, 0, 1, 1}, {1, 0, 2, 1}, false, false, false, "LINESTRING (1 0, 1 1)"},  // an edge
        {{0, 0, 1, 1}, {1, 1, 2, 2}, false, false, false, "LINESTRING (1 1, 1 1)"},  // a corner
        {{0, 0, 1, 1}, {2, 0, 3, 1}, false, true, false, "invalid"},
        {{0, 5, 1, 6}, {0, 0, 1, 1}, false, true, false, "invalid"},
        {{0, 0, 4, 4}, {0, 1, 2, 2}, true, false, true, "LINESTRING (0 1, 2 2)"},
        {{5, 5, 5, 5}, {5, 5, 5, 5}, false, false, true, "LINESTRING (5 5, 5 5)"},
        {{0, 0, 1, 1}, JWEnvelop::invalid(), false, true, true, "invalid"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        for (const bool swap : {false, true}) {
            const JWEnvelop &a = swap ? row.b : row.a, &b = swap ? row.a : row.b;
            EXPECT_EQ(a.intersected(b), row.intersected);
            EXPECT_EQ(a.isDisjoin(b), row.disjoint);
            JWEnvelop overlap = a;
            const bool meet = overlap.intersect(overlap, b);
            EXPECT_EQ(meet, overlap.isValid());
            EXPECT_EQ(show(overlap), row.overlap);
        }
        EXPECT_EQ(row.a.isContain(row.b), row.contain);
        EXPECT_EQ(row.b.isWithin(row.a), row.contain);
    }
}

TEST(Envelop, InvalidGrowsToWhatItIsGiven) {
    JWEnvelop e;
    e.setInvalid();
    EXPECT_EQ(e.minX, 3.4028234663852886e+38);
    EXPECT_EQ(e.maxY, -3.4028234663852886e+38);
    EXPECT_EQ(e.area(), 0.0);
    e.inflates_to_contain(JWEnvelop::invalid());
    e.inflates_to_contain(JWRawPoint(kNaN, 1));
    EXPECT_FALSE(e.isValid());
    e.inflates_to_contain(JWRawPoint(1e300, -7));  // beyond the invalid bounds
    EXPECT_EQ(e, JWEnvelop(1e300, -7, 1e300, -7));
    EXPECT_FALSE(JWEnvelop(0, 0, kNaN, 1).isValid());
}

TEST(Envelop, Edits) {
    JWEnvelop e(1, 2, 3, 5);
    e.inflates(1, 2, 3, 4);
    EXPECT_EQ(e, JWEnvelop(0, 0, 6, 9));
    EXPECT_EQ(e.center(), JWRawPoint(3, 4.5));
    EXPECT_EQ(e.shift_new(1, 1), JWEnvelop(1, 1, 7, 10));
    EXPECT_EQ(e.mirror_new(), JWEnvelop(-6, -9, 0, 0));
    EXPECT_EQ(e.mirror_new(JWRawPoint(6, 0)), JWEnvelop(6, -9, 12, 0));
    e *= -2;
    EXPECT_EQ(e, JWEnvelop(-12, -18, 0, 0));
    e.set(4, 1, 0, 2);
    e.normalize();
    EXPECT_EQ(e, JWEnvelop(0, 1, 4, 2));
}

TEST(Ring, AddPointsLeavesTheRingClosed) {
    const JWRawPoint points[] = {{0, 0}, {4, 0}, {4, 4}, {0, 0}};
    JWRing open;
    open.addPoints(points, 3);
    EXPECT_EQ(open.getPointList().capacity(), 4u) << "one allocation, closing point included";
    JWRing closed(points, 4);
    EXPECT_EQ(closed, open);
    const JWRawPoint more[] = {{1, 3}, {0, 2}};
    closed.addPoints(more, 2);
    EXPECT_EQ(toWkt(closed), "LINEARRING (0 0, 4 0, 4 4, 1 3, 0 2, 0 0)");
    closed.closeRing();
    EXPECT_EQ(closed.getPointCount(), 6);

    JWRing lone;
    lone.addPoints(points, 1);
    EXPECT_EQ(lone.getPointCount(), 1);
    lone.addPoints(more, 1);  // a lone point is no closing point
    EXPECT_EQ(toWkt(lone), "LINEARRING (0 0, 1 3, 0 0)");
    lone.addPoints(nullptr, 3);
    lone.addPoints(more, 0);
    EXPECT_EQ(lone.getPointCount(), 3);

    open.addPoints(open.getPointList());
    EXPECT_EQ(toWkt(open), "LINEARRING (0 0, 4 0, 4 4, 0 0, 4 0, 4 4, 0 0)");

    JWRing undefined;
    undefined.addPoint(kNaN, kNaN);
    undefined.addPoint(1, 1);
    undefined.closeRing();
    undefined.closeRing();
    EXPECT_EQ(undefined.getPointCount(), 3);
}

TEST(PointList, EditsAndSelfInsertion) {
    auto line = fromWktAs<JWLineString>("LINESTRING (0 0, 1 1, 2 2)");
    line.addPoints(line.getPointList());
    EXPECT_EQ(toWkt(line), "LINESTRING (0 0, 1 1, 2 2, 0 0, 1 1, 2 2)");
    line.insertPointsAt(line.getPointsPtr() + 1, 2, 0);
    EXPECT_EQ(toWkt(line), "LINESTRING (1 1, 2 2, 0 0, 1 1, 2 2, 0 0, 1 1, 2 2)");
    line.deletePointAt(0);
    line.updatePointAt(JWRawPoint(9, 9), 0);
    line.insertPointAt(*line.getPointPtrAt(0), 1);
    EXPECT_EQ(line.getPointAt(1), JWRawPoint(9, 9));
    EXPECT_EQ(line.getSegmentCount(), 7);
    EXPECT_EQ(JWLineString().getSegmentCount(), 0);
    JWRawPoint* all = line.getAllPoints();
    EXPECT_EQ(all[2], JWRawPoint(0, 0));
    ::operator delete(all);
    JWRawPoint* none = JWRing().getAllPoints();
    EXPECT_NE(none, nullptr);
    ::operator delete(none);
}

TEST(Ring, EndsMoveTogetherAndInsertTakesTheEnd) {
    auto ring = fromWktAs<JWRing>("LINEARRING (0 0, 4 0, 4 4, 0 0)");
    ring.setToPoint(JWRawPoint(-1, -1));
    EXPECT_EQ(toWkt(ring), "LINEARRING (-1 -1, 4 0, 4 4, -1 -1)");
    ring.insertPointAt(JWRawPoint(7, 7), ring.getPointCount());
    EXPECT_EQ(ring[4], JWRawPoint(7, 7));
    JWRawPoint p(3, 3);
    JWRing().queryFromPoint(p);
    JWPolygon().queryToPoint(p);
    EXPECT_EQ(p, JWRawPoint(3, 3));
    EXPECT_EQ(JWPolygon().getFromPointPtr(), nullptr);
}

TEST(StoredEnvelop, IsStaleUntilUpdated) {
    auto ring = fromWktAs<JWRing>(kSquare);
    ring.addPoint(20, 5);
    EXPECT_EQ(ring.getEnvelop(), JWEnvelop(0, 0, 10, 10));
    ring.updateEnvelop();
    EXPECT_EQ(ring.getEnvelop(), JWEnvelop(0, 0, 20, 10));
    JWPolygon polygon;
    EXPECT_FALSE(polygon.getEnvelop().isValid());
    polygon.addRing(ring);
    EXPECT_FALSE(polygon.getEnvelop().isValid());
    polygon.getRingPtrAt(0)->setEnvelop(JWEnvelop(7, 7, 7, 7));
    JWMultiPolygon multi;
    multi.addPolygon(polygon);
    multi.updateEnvelop();
    EXPECT_EQ(multi.getEnvelop(), JWEnvelop(0, 0, 20, 10));
    EXPECT_EQ(multi.getPolygonAt(0).getRingAt(0).getEnvelop(), JWEnvelop(0, 0, 20, 10));
    multi.setEmpty();
    EXPECT_FALSE(multi.getEnvelop().isValid());
}

TEST(StoredEnvelop, SkipsNaN) {
    JWLineString line;
    line.addPoint(kNaN, 5);
    line.updateEnvelop();
    EXPECT_EQ(line.getEnvelop(), JWEnvelop::invalid());
    line.addPoint(1, kNaN);
    line.addPoint(3, 2);
    line.updateEnvelop();
    EXPECT_EQ(line.getEnvelop(), JWEnvelop(1, 2, 3, 5));
    EXPECT_EQ(JWPoint(kNaN, kNaN).getEnvelop(), JWEnvelop::invalid());
}

TEST(Ring, AreaCentroidOrientation) {
    const struct {
        const char* wkt;
        double area;
        JWRawPoint centroid;
        enumJWRingOrientation orientation;
    } rows[] = {
        {kSquare, 100, {5, 5}, JWRingCounterClockwise},
        {"LINEARRING (0 0, 0 10, 10 10, 10 0, 0 0)", -100, {5, 5}, JWRingClockwise},
        {"LINEARRING (0 0, 6 0, 0 3, 0 0)", 9, {2, 1}, JWRingCounterClockwise},
        {"LINEARRING (1 1, 3 3, 5 5, 1 1)", 0, {3, 3}, JWRingUndefined},  // vertex mean
        {"LINEARRING (0 0, 4 0, 0 0)", 0, {2, 0}, JWRingUndefined},
        // One square metre far from the origin: the digits do not cancel.
        {"LINEARRING (500000.25 4649776.5, 500001.25 4649776.5, 500001.25 4649777.5, "
         "500000.25 4649777.5, 500000.25 4649776.5)",
         1,
         {500000.75, 4649777},
         JWRingCounterClockwise},
    };
    for (const auto& row : rows) {
        const auto ring = fromWktAs<JWRing>(row.wkt);
        EXPECT_EQ(ring.getArea(), row.area) << row.wkt;
        EXPECT_EQ(ring.getOrientation(), row.orientation) << row.wkt;
        EXPECT_NEAR(ring.getCentroid().x, row.centroid.x, 1e-9) << row.wkt;
        EXPECT_NEAR(ring.getCentroid().y, row.centroid.y, 1e-9) << row.wkt;
    }
    EXPECT_TRUE(std::isnan(JWRing().getCentroid().x));
    const JWRawPoint open[] = {{10, 10}, {14, 10}, {14, 14}, {10, 14}};
    EXPECT_EQ(ringAreaLocal(open, 4), 16.0);
}

TEST(LineString, PointOnLineIsExact) {
    const auto line = fromWktAs<JWLineString>("LINESTRING (0 0, 3 1, 3 1, 9 1)");
    EXPECT_TRUE(line.isPointOnLine(JWRawPoint(1.5, 0.5)));
    EXPECT_TRUE(line.isPointOnLine(JWRawPoint(9, 1)));
    EXPECT_FALSE(line.isPointOnLine(JWRawPoint(1.5, std::nextafter(0.5, 1))));
    EXPECT_FALSE(line.isPointOnLine(JWRawPoint(0.1, 0.1 / 3))) << "rounded, so beside the line";
    EXPECT_FALSE(fromWktAs<JWLineString>("LINESTRING (1 1)").isPointOnLine(JWRawPoint(1, 1)));
}

TEST(Orientation, SignIsExactWhereRoundingLies) {
    // Around (0.5, 0.5) on the line from (12, 12) to (24, 24): the plain determinant gives wrong
    // signs here (Kettner, Mehlhorn, Pion, Schirra and Yap 2008); the truth is the sign of j - i.
    const double ulp = 0x1p-53;  // the spacing of doubles there
    for (int i = 0; i < 32; ++i) {
        for (int j = 0; j < 32; ++j) {
            const JWRawPoint p(0.5 + i * ulp, 0.5 + j * ulp);
            const int truth = j > i ? 1 : j < i ? -1 : 0;
            ASSERT_EQ(orientationSign(JWRawPoint(12, 12), JWRawPoint(24, 24), p), truth)
                << i << " " << j;
        }
    }
    EXPECT_EQ(orientationSign(JWRawPoint(0, 0), JWRawPoint(1, kNaN), JWRawPoint(0, 1)), 2);
    EXPECT_EQ(orientationSign(JWRawPoint(0, 0), JWRawPoint(4, 0), JWRawPoint(2, 1)), 1);
}

TEST(Polygon, AreaIgnoresDirections) {
    const char* texts[] = {"POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (1 1, 3 1, 3 3, 1 3, 1 1))",
                           "POLYGON ((0 0, 0 10, 10 10, 10 0, 0 0), (1 1, 3 1, 3 3, 1 3, 1 1))"};
    for (const char* text : texts) {
        auto polygon = fromWktAs<JWPolygon>(text);
        EXPECT_EQ(polygon.getArea(), 96.0);
        EXPECT_EQ(polygon.getLength(), 48.0);
        EXPECT_EQ(std::abs(polygon.getAreaAt(1)), 4.0);
        EXPECT_EQ(polygon.getInteriorRingAt(0).getPointCount(), 5);
        polygon.geoNormalize();
        EXPECT_EQ(polygon.getOrientationAt(0), JWRingCounterClockwise);
        EXPECT_EQ(polygon.getOrientationAt(1), JWRingClockwise);
        EXPECT_EQ(polygon.getArea(), 96.0);
        polygon.reverseOrientationAt(1);
        EXPECT_EQ(polygon.getOrientationAt(1), JWRingCounterClockwise);
    }
}

TEST(Polygon, ListEdits) {
    auto polygon = fromWktAs<JWPolygon>("POLYGON ((0 0, 9 0, 9 9, 0 0))");
    polygon.addRings(polygon.getRingList());
    polygon.addRing(polygon.getRingAt(0));
    EXPECT_EQ(polygon.getRingCount(), 3);
    const JWRing other = fromWktAs<JWRing>("LINEARRING (1 1, 2 1, 2 2, 1 1)");
    polygon.insertRingAt(other, 3);
    polygon.updateRingAt(other, 0);
    EXPECT_EQ(polygon.getRingAt(3), polygon.getExteriorRing());
    JWRing moved = other;
    const JWRawPoint* data = moved.getPointsPtr();
    polygon.addRing(std::move(moved));
    EXPECT_EQ(polygon.getRingPtrAt(4)->getPointsPtr(), data) << "taken over, not copied";
    polygon.deleteRingAt(4);
    polygon.addRings(std::move(polygon.getRingList()));
    EXPECT_EQ(polygon.getRingCount(), 8);
    EXPECT_EQ(polygon.getRingAt(7), other);
}

TEST(Collections, HoldOneKindAndCopy) {
    const auto point = fromWkt("POINT (1 2)");
    const auto polygon = fromWkt("POLYGON ((0 0, 9 0, 9 9, 0 0))");
    JWMultiPoint points;
    EXPECT_TRUE(points.addGeometry(point.get()));
    EXPECT_FALSE(points.addGeometry(polygon.get()));
    EXPECT_FALSE(points.insertGeometryAt(nullptr, 0));
    EXPECT_TRUE(points.isContained(1, 2));
    EXPECT_FALSE(points.isContained(1, 2.0000001));
    points.addPoints(points.getPointList());
    EXPECT_EQ(points.getGeometryCount(), 2);
    JWPoint untouched(8, 8);
    points.queryPointAt(untouched, 2);  // out of range: the guard lets it pass, nothing happens
    points.deletePointAt(-1);
    points.updatePointAt(untouched, 99);
    EXPECT_EQ(untouched, JWPoint(8, 8));
    EXPECT_EQ(points.getGeometryCount(), 2);

    JWMultiPolygon polygons;
    EXPECT_TRUE(polygons.insertGeometryAt(polygon.get(), 0));
    polygons.addPolygons(polygons.getMemberList());
    EXPECT_EQ(polygons.getRingCount(), 2);
    EXPECT_EQ(polygons.getArea(), 81.0);

    JWGeometryBag bag;
    EXPECT_TRUE(bag.addGeometry(point.get()));
    EXPECT_FALSE(bag.addGeometry(nullptr));
    EXPECT_TRUE(bag.addGeometry(&bag));
    JWGeometryBag copy;
    copy = bag;
    bag.move(1, 1);
    EXPECT_EQ(toWkt(copy), "GEOMETRYCOLLECTION (POINT (1 2), GEOMETRYCOLLECTION (POINT (1 2)))");
    EXPECT_EQ(toWkt(bag), "GEOMETRYCOLLECTION (POINT (2 3), GEOMETRYCOLLECTION (POINT (2 3)))");
    EXPECT_EQ(bag.getEnvelop(), JWEnvelop(2, 3, 2, 3));
    EXPECT_EQ(toWkt(*bag.releaseGeometryAt(0)), "POINT (2 3)");
    bag = std::move(static_cast<JWGeometryBag&>(*bag.getGeometryPtrAt(0)));
    EXPECT_EQ(toWkt(bag), "GEOMETRYCOLLECTION (POINT (2 3))");
    EXPECT_EQ(bag.getEnvelop(), JWEnvelop(2, 3, 2, 3));
}

TEST(Geometry, CodesAndClones) {
    const struct {
        const char* wkt;
        int type, wkb;
    } rows[] = {
        {"POINT (1 2)", 1, 1},
        {"LINESTRING (0 0, 1 1)", 2, 2},
        {"POLYGON ((0 0, 1 0, 1 1, 0 0))", 3, 3},
        {"MULTIPOINT ((0 0))", 4, 4},
        {"MULTILINESTRING ((0 0, 1 1))", 5, 5},
        {"MULTIPOLYGON (((0 0, 1 0, 1 1, 0 0)))", 6, 6},
        {"GEOMETRYCOLLECTION (POINT (1 2))", 7, 7},
        {"LINEARRING (0 0, 1 0, 1 1, 0 0)", 14, 0},
    };
    for (const auto& row : rows) {
        const auto geometry = fromWkt(row.wkt);
        const std::unique_ptr<JWGeometry> copy(geometry->clone());
        EXPECT_EQ(geometry->getGeometryType(), row.type);
        EXPECT_EQ(geometry->getGeometryWKBType(), row.wkb);
        EXPECT_EQ(geometry->getDimension(), 2);
        EXPECT_EQ(copy->getEnvelop(), geometry->getEnvelop());
        geometry->setEmpty();
        EXPECT_TRUE(geometry->isEmpty());
        EXPECT_FALSE(geometry->getEnvelop().isValid());
        EXPECT_EQ(toWkt(*copy), row.wkt);
        const std::unique_ptr<JWGeometry> made(
            JWGeometryFactory::createGeometry(static_cast<enumJWGeometryType>(row.type)));
        EXPECT_EQ(made->getGeometryType(), row.type);
    }
    EXPECT_EQ(JWGeometryFactory::createGeometry(JWGeometryNone), nullptr);
    const std::unique_ptr<JWGeometry> line(JWGeometryFactory::createGeometry(JWGeometryLine));
    EXPECT_TRUE(line->isEmpty());
    EXPECT_FALSE(fromWktAs<JWLineString>("LINESTRING (0 0, 1 1, 0 0)").isClosed());
    EXPECT_TRUE(JWRing().isClosed() && JWPolygon().isClosed());  // by class, not by coordinates
}

TEST(Geometry, MapsTakeACentreOfTheirOwn) {
    auto line = fromWktAs<JWLineString>("LINESTRING (2 2, 4 2, 4 6)");
    line.scale(*line.getPointPtrAt(0), 2, -1);
    EXPECT_EQ(toWkt(line), "LINESTRING (2 2, 6 2, 6 -2)");
    EXPECT_EQ(line.getEnvelop(), JWEnvelop(2, -2, 6, 2));
    auto polygon = fromWktAs<JWPolygon>("POLYGON ((1 1, 2 1, 2 2, 1 1), (5 1, 6 1, 6 2, 5 1))");
    polygon.rotate(*polygon.getFromPointPtr(), kPi / 2);
    EXPECT_EQ(polygon.getRingAt(0).getPointAt(0), JWRawPoint(1, 1));
    EXPECT_NEAR(polygon.getRingAt(1).getX(0), 1, 1e-15);
    EXPECT_NEAR(polygon.getRingAt(1).getY(0), 5, 1e-15);
    JWPoint p(1, 0, 7, 8);
    p.rotate(JWRawPoint(0, 0), kPi / 2);
    EXPECT_NEAR(p.getX(), 0, 1e-15);
    EXPECT_EQ(p.getZ() + p.getM(), 15);
}

TEST(PolyCurve, Split) {
    constexpr char bend[] = "LINESTRING (0 0, 4 0, 4 4)";
    const struct {
        const char* wkt;
        double distance;
        JWRawPoint place;  ///< cuts like the distance
        const char *first, *second;
    } rows[] = {
        {bend, 6, {5, 2}, "LINESTRING (0 0, 4 0, 4 2)", "LINESTRING (4 2, 4 4)"},
        {bend, 4, {5, -1}, "LINESTRING (0 0, 4 0)", "LINESTRING (4 0, 4 4)"},
        {bend, 1, {1, 3}, "LINESTRING (0 0, 1 0)", "LINESTRING (1 0, 4 0, 4 4)"},  // not (4 3)
        {bend, 8, {4, 9}, "(null)", "(null)"},
        {bend, 0, {-3, -3}, "(null)", "(null)"},
        {bend, kNaN, {kNaN, 0}, "(null)", "(null)"},
        {"LINESTRING (0 0, 4 0, 4 0)", 4, {5, 0}, "(null)", "(null)"},
        {"LINEARRING (0 0, 4 0, 4 4, 0 0)",
         4,
         {9, 0},
         "LINESTRING (0 0, 4 0)",
         "LINESTRING (4 0, 4 4, 0 0)"},
        {"POLYGON ((0 0, 4 0, 4 4, 0 0))", 4, {4, 0}, "(null)", "(null)"},
        {"LINESTRING EMPTY", 1, {1, 1}, "(null)", "(null)"},
    };
    for (const auto& row : rows) {
        const auto geometry = fromWkt(row.wkt);
        const auto& curve = dynamic_cast<const JWPolyCurve&>(*geometry);
        for (const bool byDistance : {true, false}) {
            SCOPED_TRACE(row.wkt + std::to_string(byDistance ? row.distance : row.place.x));
            JWPolyCurve *a, *b;
            const bool cut = byDistance ? curve.splitAtDistance(row.distance, &a, &b)
                                        : curve.splitAtPoint(row.place, &a, &b);
            const std::unique_ptr<JWPolyCurve> first(a), second(b);
            EXPECT_EQ(toWkt(a), row.first);
            EXPECT_EQ(toWkt(b), row.second);
            EXPECT_EQ(cut, a != nullptr);
            EXPECT_FALSE(curve.splitAtDistance(2, &a, nullptr));
            EXPECT_EQ(a, nullptr);
        }
    }
}

/// What the simplification of layers has in common with it is tested there.
TEST(PolyCurve, DouglasPeucker) {
    const struct {
        const char* wkt;
        double tolerance;
        const char* expected;
    } rows[] = {
        {"LINESTRING (0 0, 1 1, 2 1, 3 0)", kNaN, "LINESTRING (0 0, 1 1, 2 1, 3 0)"},
        {"LINESTRING (0 0, 4 nan, 8 7, 9 0)", 1, "LINESTRING (0 0, 4 nan, 8 7, 9 0)"},
        {"LINESTRING (nan 0, 5 8, 9 0)", 1, "LINESTRING (nan 0, 5 8, 9 0)"},
        {"LINEARRING (0 0, 5 0.1, 10 0, 10 10, 0 10, 0 0)", 1,
         "LINEARRING (0 0, 10 0, 10 10, 0 10, 0 0)"},
        {"LINEARRING (0 0, 1 0, 1 1, 0 1, 0 0)", 2, "LINEARRING (0 0, 1 0, 1 1, 0 1, 0 0)"},
        {"LINESTRING EMPTY", 1, "LINESTRING EMPTY"},
    };
    for (const auto& row : rows) {
        const auto geometry = fromWkt(row.wkt);
        const bool changed =
            dynamic_cast<JWPolyCurve&>(*geometry).generalizeByDouglasPoiker(row.tolerance);
        EXPECT_EQ(toWkt(*geometry), row.expected) << row.tolerance;
        EXPECT_EQ(changed, std::string(row.wkt) != row.expected);
    }
}

TEST(Bezier, SmoothsInPiecesOfOneDegree) {
    const JWBezierCurve maker;
    const struct {
        const char* wkt;
        int degree, steps;
        const char* expected;
    } rows[] = {
        {"LINESTRING (0 0, 1 2, 2 0, 4 0)", 2, 2, "LINESTRING (0 0, 1 1, 2 0, 3 0, 4 0)"},
        {"LINESTRING (0 0, 2 0, 2 2)", 1, 2, "LINESTRING (0 0, 1 0, 2 0, 2 1, 2 2)"},
        {"LINESTRING (0 0, 1 2, 2 0)", 2, 1, "LINESTRING (0 0, 2 0)"},
        {"LINESTRING (0 0, 1 2, 2 0)", 0, 2, "LINESTRING (0 0, 1 2, 2 0)"},
        {"LINESTRING (0 0, 1 2, 2 0)", 1, 2147483647, "LINESTRING (0 0, 1 2, 2 0)"},
        {"LINESTRING (3 3)", 2, 2, "LINESTRING (3 3)"},
    };
    for (const auto& row : rows) {
        const auto line = fromWktAs<JWLineString>(row.wkt);
        const std::unique_ptr<JWLineString> smooth(
            maker.makeBezierCurve(line, row.degree, row.steps));
        EXPECT_EQ(toWkt(*smooth), row.expected) << row.degree << " " << row.steps;
    }
    EXPECT_EQ(maker.makeBezierCurve(nullptr, 2, 2), nullptr);
    auto ring = fromWktAs<JWRing>("LINEARRING (0 0, 4 0, 4 4, 0 0)");
    EXPECT_TRUE(ring.soomthByBeizer(3, 3));
    EXPECT_EQ(ring[0], ring[3]);
    EXPECT_FALSE(ring.soomthByBeizer(3, 1)) << "would leave two points";
    EXPECT_EQ(ring.getPointCount(), 4);
}

TEST(Bezier, EvaluatesAndMeasures) {
    // A parabola as a quadratic curve: y = x(2 - x), length by its closed form.
    const JWBezierCurve parabola({{0, 0}, {1, 2}, {2, 0}});
    EXPECT_EQ(parabola.getPointAt(0.5), JWRawPoint(1, 1));
    EXPECT_NEAR(parabola.getLength(), std::sqrt(5.0) + std::asinh(2.0) / 2, 1e-12);
    EXPECT_EQ(parabola.samplePoints(4).size(), 5u);
    EXPECT_TRUE(parabola.samplePoints(std::numeric_limits<int>::max()).empty());
    const JWBezierCurve cusp({{0, 0}, {1, 0}, {0, 0}});  // there and back: twice 1/2
    EXPECT_NEAR(cusp.getLength(), 1.0, 1e-9);
    EXPECT_EQ(JWBezierCurve().getLength(), 0.0);
    EXPECT_TRUE(JWBezierCurve(std::vector<JWRawPoint>(172, JWRawPoint(0, 0))).isEmpty());
    const JWBezierCurve steep(std::vector<JWRawPoint>(171, JWRawPoint(1, 1)));
    EXPECT_NEAR(steep.getPointAt(0.3).x, 1.0, 1e-12);
}

TEST(Arc, QuarterCircle) {
    JWCircular arc(JWRawPoint(1, 1), 2, 0, kPi / 2);
    EXPECT_DOUBLE_EQ(arc.getLength(), kPi);
    EXPECT_NEAR(arc.getEnvelop().minX, 1, 1e-15);
    EXPECT_EQ(arc.getEnvelop().minY, 1);
    EXPECT_EQ(arc.getEnvelop().top_right(), JWRawPoint(3, 3));
    arc.reverseOrientation();
    EXPECT_NEAR(arc.getFromPointPtr()->y, 3, 1e-15);
    EXPECT_NEAR(arc.getSweepAngle(), -kPi / 2, 1e-15);
    arc.setToPoint(JWRawPoint(1, -100));  // clockwise on to the south
    EXPECT_NEAR(arc.getLength(), 2 * kPi, 1e-12);
    EXPECT_NEAR(arc.getToPointPtr()->y, -1, 1e-15);
    arc.updateEnvelop();
    EXPECT_NEAR(arc.getEnvelop().minY, -1, 1e-15);
    EXPECT_NEAR(arc.getEnvelop().maxX, 3, 1e-15);
    arc.rotate(arc.getCenterPoint(), 1);
    arc.scale(arc.getCenterPoint(), 3, 3);
    EXPECT_NEAR(arc.getRadius(), 6, 1e-14);
    EXPECT_EQ(arc.getCenterPoint(), JWRawPoint(1, 1));
    EXPECT_EQ(arc.getGeometryType(), JWGeometryCurve);
    EXPECT_TRUE(JWCircular().isEmpty());
    EXPECT_EQ(JWCircular().getLength(), 0.0);
}

TEST(Arc, UnequalScalingOfACircleIsAnEllipse) {
    JWCircular circle(JWRawPoint(0, 0), 1, 0, 2 * kPi);
    circle.scale(JWRawPoint(0, 0), 2, 1);
    const JWElliptic ellipse(JWRawPoint(0, 0), 1, 2, kPi / 2, 0.3, -2 * kPi);
    // Perimeter of the ellipse with half-axes 2 and 1: 8·E(sqrt(3)/2).
    const double perimeter = 8 * std::comp_ellint_2(std::sqrt(3.0) / 2);
    EXPECT_NEAR(circle.getLength(), perimeter, 1e-11);
    EXPECT_NEAR(ellipse.getLength(), perimeter, 1e-11);
    EXPECT_NEAR(ellipse.getSemiMinorAxis(), 1, 1e-15);
    EXPECT_NEAR(ellipse.getEnvelop().maxX, 2, 1e-15);
    EXPECT_NEAR(ellipse.getEnvelop().minY, -1, 1e-15);
}

TEST(DynamicPoint, MovesWithTime) {
    JWDynamicPoint p(JWRawPoint(1, 1), 2, -1, 10);
    EXPECT_EQ(p.getPositionAt(12), JWRawPoint(5, -1));
    p.scale(JWRawPoint(0, 0), 2, 2);
    p.advanceTo(11);
    EXPECT_EQ(p.getEnvelop(), JWEnvelop(6, 0, 6, 0));
}

#ifndef NDEBUG
TEST(GuardsDeathTest, StopWithTheirText) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto line = fromWktAs<JWLineString>("LINESTRING (0 0, 1 1)");
    auto polygon = fromWktAs<JWPolygon>("POLYGON ((0 0, 9 0, 9 9, 0 0))");
    const JWRing& ring = polygon.getRingAt(0);
    auto points = fromWktAs<JWMultiPoint>("MULTIPOINT ((0 0))");
    JWRawPoint p(0, 0);
    // The text of the condition, whole up to the quote that ends it.
    const auto text = [](std::string condition) {
        for (std::size_t at = 0; (at = condition.find_first_of("()", at)) != std::string::npos;)
            condition.insert(at, "\\"), at += 2;
        return condition + "'";
    };
    const std::string at = "atLocation >= 0 && atLocation ";
    EXPECT_DEATH(JWLineString().queryToPoint(p), text("!pointList.empty()"));
    EXPECT_DEATH(JWLineString().setFromPoint(p), text("!pointList.empty()"));
    EXPECT_DEATH(line.insertPointAt(p, 2), text(at + "< getPointCount()"));
    EXPECT_DEATH(line.getX(-1), text(at + "< getPointCount()"));
    EXPECT_DEATH(ring.getPointAt(4), text(at + "< getPointCount()"));
    EXPECT_DEATH(polygon.insertRingAt(ring, 2), text(at + "<= getRingCount()"));
    EXPECT_DEATH(polygon.getAreaAt(1), text(at + "< getRingCount()"));
    EXPECT_DEATH(polygon.getInteriorRingPtrAt(0), text(at + "< getRingCount() - 1"));
    EXPECT_DEATH(points.insertPointAt(JWPoint(), 2), text(at + "<= getGeometryCount()"));
    EXPECT_DEATH(points.getPointPtrAt(1), text(at + "< getGeometryCount()"));
    EXPECT_DEATH(JWMultiPolygon().getGeometryPtrAt(0), text(at + "< getGeometryCount()"));
}
#endif

}  // namespace
}  // namespace jws
