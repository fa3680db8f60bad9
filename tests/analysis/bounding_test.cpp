// SPDX-License-Identifier: MIT
//
// Hulls, envelopes, circles, balls and rectangles: small cases by hand, every form against the form
// for values, large and nearly degenerate sets against GEOS, the plain incremental circle and all
// edges of the hull.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "foundation/orientation.h"
#include "jw_geometryminimumbounding.h"
#include "jw_hull.h"
#include "support/geos_oracle.h"
#include "support/random_rings.h"
#include "support/wkt.h"

namespace jwtest {

using namespace jws;
using Bounding = JWGeometryMinimumBounding;
using Points = std::vector<JWRawPoint>;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const char* kUntouched = "LINEARRING (7 7, 8 7, 8 8, 7 7)";

Points pointsOf(const char* wkt) {
    return wkt == nullptr ? Points() : fromWktAs<JWLineString>(wkt).getPointList();
}

template <class T>
std::vector<T*> addressesOf(std::vector<T>& values) {
    std::vector<T*> result;
    for (T& v : values) result.push_back(&v);
    return result;
}

GeosPtr geosLine(const Points& points) {
    GEOSContextHandle_t h = geosContext();
    const auto n = static_cast<unsigned>(points.size());
    GEOSCoordSequence* s = GEOSCoordSeq_create_r(h, n, 2);
    for (unsigned i = 0; i < n; ++i) GEOSCoordSeq_setXY_r(h, s, i, points[i].x, points[i].y);
    return GeosPtr(GEOSGeom_createLineString_r(h, s));
}

std::string hullText(const Points& points, bool throughHull) {
    JWRing ring = fromWktAs<JWRing>(kUntouched);
    const int n = static_cast<int>(points.size());
    const bool done = throughHull ? JWHull::create2DHull_AM(&points, n, &ring)
                                  : Bounding::pointsContexHull(points, n, &ring);
    EXPECT_TRUE(done || toWkt(ring) == kUntouched);
    return done ? toWkt(ring) : "false";
}

struct HullRow {
    const char* points;
    const char* hull;      ///< of both entries, where the next is null
    const char* bounding;  ///< of the bounding entry
};

TEST(Hull, SmallCases) {
    const HullRow rows[] = {
        {"LINESTRING (0 0, 1 0, 0 1)", "LINEARRING (0 0, 1 0, 0 1, 0 0)", "false"},
        {"LINESTRING (0 0, 1 1, 2 2)", "false", "false"},
        {"LINESTRING (0 0, 1e-200 0, 0 1e-200)", "LINEARRING (0 0, 1e-200 0, 0 1e-200, 0 0)",
         "false"},
        {"LINESTRING (-1e308 0, 1e308 0, 0 1e308)",
         "LINEARRING (-1e+308 0, 1e+308 0, 0 1e+308, -1e+308 0)", "false"},
        {"LINESTRING (0 0, 1e-200 1e-200, 3e-200 3e-200)", "false", "false"},
        {"LINESTRING (0 0, 1 1)", "false", "false"},
        {"LINESTRING (0 0, 1 1, 2 2, 3 3)", "LINEARRING (0 0, 3 3, 0 0)", nullptr},
        {"LINESTRING (1 1, 1 1, 1 1, 1 1)", "LINEARRING (1 1, 1 1)", nullptr},
        {"LINESTRING (2 3, 2 1, 2 9, 2 4)", "LINEARRING (2 1, 2 9, 2 1)", nullptr},
        {"LINESTRING (0 0, 1 -1, 2 0, 1 1, 0 0)", "LINEARRING (0 0, 1 -1, 2 0, 1 1, 0 0)", nullptr},
        {"LINESTRING (0 0, 2 0, 1 0, 2 2, 0 2, 0 1, 1 1, 2 1)",
         "LINEARRING (0 0, 2 0, 2 2, 0 2, 0 0)", nullptr},
        {"LINESTRING (1e200 0, -1e200 1, 0 1e200, 0 0, 1e199 1e199)",
         "LINEARRING (-1e+200 1, 0 0, 1e+200 0, 0 1e+200, -1e+200 1)", nullptr},
        {"LINESTRING (0 0, 1e-200 0, 1e-200 1e-200, 0 1e-200, 5e-201 5e-201)",
         "LINEARRING (0 0, 1e-200 0, 1e-200 1e-200, 0 1e-200, 0 0)", nullptr},
    };
    for (const HullRow& row : rows) {
        SCOPED_TRACE(row.points);
        const Points points = pointsOf(row.points);
        EXPECT_EQ(hullText(points, true), row.hull);
        EXPECT_EQ(hullText(points, false), row.bounding ? row.bounding : row.hull);
    }
    for (double bad : {kNaN, kInf, -kInf}) {
        const Points points = {{0, 0}, {1, 0}, {1, 1}, {0.5, bad}};
        EXPECT_EQ(hullText(points, true), "false");
        EXPECT_EQ(hullText(points, false), "false");
    }
}

/// Sets that are large, on a grid, on a circle, or nearly on a line.
std::vector<std::pair<std::string, Points>> pointSets(int n) {
    RandomRings random(7);
    std::vector<std::pair<std::string, Points>> sets;
    const auto add = [&](const char* name, const std::function<JWRawPoint(int)>& point) {
        Points points;
        for (int i = 0; i < n; ++i) points.push_back(point(i));
        sets.emplace_back(name, std::move(points));
    };
    const auto polar = [](double angle, double r) {
        return JWRawPoint(r * std::cos(angle), r * std::sin(angle));
    };
    add("square", [&](int) { return JWRawPoint(random.uniform(0, 1), random.uniform(0, 1)); });
    add("grid", [&](int) { return JWRawPoint(random.integer(0, 30), random.integer(0, 30)); });
    add("disc", [&](int) {
        return polar(random.uniform(0, 2 * M_PI), 1000 * std::sqrt(random.uniform(0, 1)));
    });
    add("circle in order", [&](int i) { return polar(2 * M_PI * i / n, 100); });
    add("stretches that overlap", [&](int i) {
        const int x = i % (n / 5);
        return JWRawPoint((i * 5 / n) % 2 ? -x : x, random.integer(0, 9));
    });
    add("near a circle",
        [&](int) { return polar(random.uniform(0, 2 * M_PI), 1 + random.uniform(0, 1e-9)); });
    add("near a line", [&](int) {
        const double t = random.uniform(0, 1);
        return JWRawPoint(0.1 + t, 0.3 + t * 3 + random.integer(-1, 1) * 1e-16);
    });
    add("far offset, micro steps", [&](int) {
        return JWRawPoint(1e9 + 1e-6 * random.integer(0, 40), -1e9 + 1e-6 * random.integer(0, 40));
    });
    return sets;
}

TEST(Hull, LargeSetsAreExactAndEqualGeos) {
    for (int n : {70, 20000}) {
        for (auto& [name, points] : pointSets(n)) {
            SCOPED_TRACE(name + " " + std::to_string(n));
            JWRing ring;
            ASSERT_TRUE(Bounding::pointsContexHull(points, n, &ring));
            const Points& hull = ring.getPointList();
            for (std::size_t i = 0; i + 2 < hull.size(); ++i) {
                ASSERT_EQ(orientationSign(hull[i], hull[i + 1], hull[i + 2]), 1);
            }
            for (std::size_t i = 0; i + 1 < hull.size(); i += 1 + hull.size() / 50) {
                for (const JWRawPoint& p : points) {
                    ASSERT_GE(orientationSign(hull[i], hull[i + 1], p), 0);
                }
            }
            // GEOS decides turns by double-double arithmetic, which is exact here.
            const GeosPtr geos(GEOSConvexHull_r(geosContext(), geosLine(points).get()));
            const double size = ring.getLength();
            EXPECT_NEAR(geosArea(geos.get()), ring.getArea(),
                        1e-12 * ring.getArea() + 1e-15 * size * size);
        }
    }
}

// --- Circles -------------------------------------------------------------------------------------

struct CircleRow {
    const char* points;
    double x, y, r;              ///< minimum circle
    double ballX, ballY, ballR;  ///< bounding ball
};

TEST(Circles, SmallCases) {
    const CircleRow rows[] = {
        {"LINESTRING (0 0, 4 0)", 2, 0, 2, 2, 0, 2},
        // Circumcentre of the triangle: x = 2, and 4 + y² = (3 − y)².
        {"LINESTRING (0 0, 4 0, 2 3)", 2, 5.0 / 6, 13.0 / 6, 2, 0.5, 2.5},
        {"LINESTRING (3 3, 3 3, 3 3)", 3, 3, 0, 3, 3, 0},
        {"LINESTRING (0 0, 1 0, 5 0, 2 0)", 2.5, 0, 2.5, 2.5, 0, 2.5},
        // Equal spread along x and y: the ball starts from the extremes in x.
        {"LINESTRING (0 1, 2 1, 1 0, 1 2)", 1, 1, 1, 1, 1, 1},
        // Outside by less than 1e-10 is inside.
        {"LINESTRING (0 0, 2 0, 2.00000000005 0)", 1, 0, 1, 1.000000000025, 0, 1.000000000025},
        {"LINESTRING (0 0, 1e-11 0)", 0, 0, 0, 5e-12, 0, 5e-12},
        {"LINESTRING (-1e200 0, 1e200 0, 0 1e200)", 0, 0, 1e200, 0, 0, 1e200},
    };
    for (const CircleRow& row : rows) {
        SCOPED_TRACE(row.points);
        const Points points = pointsOf(row.points);
        const int n = static_cast<int>(points.size());
        JWRawPoint c(0, 0);
        double r = -1;
        JWRing outline;
        ASSERT_TRUE(Bounding::pointsMinimumCircle(points, n, c, &r, &outline));
        const double eps = 1e-15 * std::max(1.0, row.r);
        EXPECT_NEAR(c.x, row.x, eps);
        EXPECT_NEAR(c.y, row.y, eps);
        EXPECT_NEAR(r, row.r, eps);
        EXPECT_EQ(outline.getPointCount(), 361);
        EXPECT_EQ(outline[0], outline[360]);
        ASSERT_TRUE(Bounding::pointsFastBoundingBall(points, n, c, &r));
        EXPECT_NEAR(c.x, row.ballX, eps);
        EXPECT_NEAR(c.y, row.ballY, eps);
        EXPECT_NEAR(r, row.ballR, eps);
    }
}

TEST(Circles, OutlineRunsClockwiseFromAngleZero) {
    JWRawPoint c(0, 0);
    double r = 0;
    JWRing outline;
    ASSERT_TRUE(Bounding::pointsMinimumCircle(Points{{-1, 0}, {1, 0}}, 2, c, &r, &outline));
    EXPECT_EQ(outline[0].x, 1);
    EXPECT_NEAR(outline[0].y, -2.4492935982947064e-16, 1e-30);  // the sine of 2π in doubles
    EXPECT_DOUBLE_EQ(outline[1].y, std::sin(359 * M_PI / 180));
    EXPECT_EQ(outline.getOrientation(), JWRingClockwise);
}

/// The incremental algorithm word for word.
void plainCircle(const Points& p, JWRawPoint& c, double& r) {
    const auto distance = [&](const JWRawPoint& q) {
        return std::sqrt((c.x - q.x) * (c.x - q.x) + (c.y - q.y) * (c.y - q.y));
    };
    c = p[0];
    r = 0;
    for (std::size_t i = 1; i < p.size(); ++i) {
        if (!(distance(p[i]) > r + 1e-10)) continue;
        c = p[i];
        r = 0;
        for (std::size_t j = 0; j < i; ++j) {
            if (!(distance(p[j]) > r + 1e-10)) continue;
            c.set((p[i].x + p[j].x) / 2, (p[i].y + p[j].y) / 2);
            r = distance(p[j]);
            for (std::size_t k = 0; k < j; ++k) {
                if (!(distance(p[k]) > r + 1e-10)) continue;
                const double a1 = p[j].x - p[i].x, b1 = p[j].y - p[i].y;
                const double a2 = p[k].x - p[i].x, b2 = p[k].y - p[i].y;
                const double e1 = (a1 * a1 + b1 * b1) / 2, e2 = (a2 * a2 + b2 * b2) / 2;
                const double d = a1 * b2 - a2 * b1;
                if (d == 0) continue;
                c.set(p[i].x + (e1 * b2 - e2 * b1) / d, p[i].y + (a1 * e2 - a2 * e1) / d);
                r = distance(p[k]);
            }
        }
    }
}

TEST(Circles, EqualTheIncrementalAlgorithm) {
    const unsigned long long seed = 11;
    RandomRings random(seed);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const int n = random.integer(2, 300);
        Points points;
        for (int i = 0; i < n; ++i) {
            points.emplace_back(random.uniform(0, 1), random.uniform(0, 1));
            if (round % 3 == 1) points.back().set(random.integer(0, 9), random.integer(0, 9));
            if (round % 3 == 2) points.back().y *= 1e-6;
        }
        JWRawPoint c(0, 0), expected(0, 0);
        double r = 0, expectedRadius = 0;
        ASSERT_TRUE(Bounding::pointsMinimumCircle(points, n, c, &r));
        plainCircle(points, expected, expectedRadius);
        EXPECT_NEAR(c.x, expected.x, 1e-10);
        EXPECT_NEAR(c.y, expected.y, 1e-10);
        EXPECT_NEAR(r, expectedRadius, 1e-10);
    }
}

TEST(Circles, LargeSetsEqualGeosAndHoldEveryPoint) {
    for (auto& [name, points] : pointSets(20000)) {
        SCOPED_TRACE(name);
        JWRawPoint c(0, 0);
        double r = 0, ball = 0, geosRadius = 0;
        ASSERT_TRUE(Bounding::pointsMinimumCircle(points, 20000, c, &r));
        const double rounding = 4e-16 * std::max(std::fabs(points[0].x), std::fabs(points[0].y));
        for (const JWRawPoint& p : points) {
            ASSERT_LE(std::hypot(p.x - c.x, p.y - c.y), r + 1.01e-10 + 1e-12 * r + rounding);
        }
        // GEOS works on coordinates as they are, so it is no judge far from the origin.
        if (rounding < 1e-10) {
            const GeosPtr geos(GEOSMinimumBoundingCircle_r(geosContext(), geosLine(points).get(),
                                                           &geosRadius, nullptr));
            EXPECT_NEAR(r, geosRadius, 1e-10 * std::max(1.0, r));
        }
        ASSERT_TRUE(Bounding::pointsFastBoundingBall(points, 20000, c, &ball));
        EXPECT_GE(ball, r - 1e-10);
        EXPECT_LE(ball, 1.5 * r);
    }
}

// --- Rectangles ----------------------------------------------------------------------------------

struct RectangleRow {
    const char* points;
    const char* area;  ///< and of minimum width; null for a flat one of length 3√2
};

TEST(Rectangles, SmallCases) {
    const RectangleRow rows[] = {
        {"LINESTRING (0 0, 4 0, 4 2, 0 2)", "LINEARRING (0 0, 4 0, 4 2, 0 2, 0 0)"},
        {"LINESTRING (0 0, 4 0, 1 2)", "LINEARRING (0 0, 4 0, 4 2, 0 2, 0 0)"},
        {"LINESTRING (2 5, 2 1)", "LINEARRING (2 1, 2 5, 2 5, 2 1, 2 1)"},
        {"LINESTRING (0 0, 1 1, 3 3)", nullptr},  // flat: measured below
        {"LINESTRING (1 1, 1 1)", "false"},
        // The square of the first edge's length vanishes.
        {"LINESTRING (0 0, 1e-200 -1e-200, 1 0, 1 1, 0 1)",
         "LINEARRING (0 -1e-200, 1 0, 1 1, -1e-200 1, 0 -1e-200)"},
        {"LINESTRING (-1e308 -1e308, 1e308 -1e308, 1e308 1e308, -1e308 1e308)",
         "LINEARRING (-1e+308 -1e+308, 1e+308 -1e+308, 1e+308 1e+308, -1e+308 1e+308, "
         "-1e+308 -1e+308)"},
        // Two corners lie beyond all numbers.
        {"LINESTRING (-1e308 0, 0 -1.7e308, 1e308 1.7e308)", "false"},
        // Edges 0 and 2 both allow width 4; the area 24 of edge 0 is the smaller.
        {"LINESTRING (0 0, 6 0, 6 4, 3 4)", "LINEARRING (0 0, 6 0, 6 4, 0 4, 0 0)"},
    };
    for (const RectangleRow& row : rows) {
        SCOPED_TRACE(row.points);
        const Points points = pointsOf(row.points);
        const int n = static_cast<int>(points.size());
        JWRing area, width;
        const bool done = Bounding::pointsMinimumAreaRect(points, n, &area);
        EXPECT_EQ(Bounding::pointsMinimumWidthRect(points, n, &width), done);
        if (row.area == nullptr) {
            EXPECT_NEAR(area.getLength(), 2 * std::sqrt(18.0), 1e-14);
            continue;
        }
        EXPECT_EQ(done ? toWkt(area) : "false", row.area);
        EXPECT_EQ(done ? toWkt(width) : "false", row.area);
        EXPECT_EQ(area.getPointCount(), done ? 5 : 0);
    }
}

/// How far p lies outside a counter-clockwise rectangle.
double outside(const JWRing& rectangle, const JWRawPoint& p) {
    double most = 0;
    for (int i = 0; i < 4; ++i) {
        const JWLine side = rectangle.getSegmentAt(i);
        const double dx = side.getSpanX(), dy = side.getSpanY(), size = std::hypot(dx, dy);
        if (size == 0) continue;
        const double px = p.x - side.getFromPointX(), py = p.y - side.getFromPointY();
        most = std::max(most, (dy * px - dx * py) / size);
    }
    return most;
}

TEST(Rectangles, HoldEveryPointAndNoEdgeGivesASmallerOne) {
    for (int n : {20, 20000}) {
        for (auto& [name, points] : pointSets(n)) {
            SCOPED_TRACE(name + " " + std::to_string(n));
            JWRing hull, area, width;
            ASSERT_TRUE(Bounding::pointsContexHull(points, n, &hull));
            ASSERT_TRUE(Bounding::pointsMinimumAreaRect(points, n, &area));
            ASSERT_TRUE(Bounding::pointsMinimumWidthRect(points, n, &width));
            const double rounding = 4e-16 * (std::fabs(points[0].x) + std::fabs(points[0].y));
            const double size = area.getLength();
            for (const JWRawPoint& p : points) {
                ASSERT_LE(outside(area, p), 1e-12 * size + rounding);
                ASSERT_LE(outside(width, p), 1e-12 * size + rounding);
            }
            double leastArea = kInf, leastWidth = kInf;
            for (int i = 0; i + 1 < hull.getPointCount(); i += 1 + hull.getPointCount() / 300) {
                const JWLine edge = hull.getSegmentAt(i);
                const double dx = edge.getSpanX() / edge.getLength();
                const double dy = edge.getSpanY() / edge.getLength();
                double low = 0, high = 0, across = 0;
                for (const JWRawPoint& p : hull.getPointList()) {
                    const double x = p.x - edge.getFromPointX(), y = p.y - edge.getFromPointY();
                    low = std::min(low, x * dx + y * dy);
                    high = std::max(high, x * dx + y * dy);
                    across = std::max(across, y * dx - x * dy);
                }
                leastArea = std::min(leastArea, (high - low) * across);
                leastWidth = std::min(leastWidth, across);
            }
            EXPECT_LE(area.getArea(), leastArea + 1e-12 * leastArea + rounding * size);
            EXPECT_GE(area.getArea(), 0);
            const double found =
                std::min(width.getSegmentAt(0).getLength(), width.getSegmentAt(1).getLength());
            EXPECT_LE(found, leastWidth + 1e-12 * size + 2 * rounding);
        }
    }
}

// --- Forms ---------------------------------------------------------------------------------------

/// Everything that the families say of one input, as text.
template <class Input, class... More>
std::string allOf(bool (*hull)(Input, More..., JWRing*), bool (*area)(Input, More..., JWRing*),
                  bool (*width)(Input, More..., JWRing*),
                  bool (*envelop)(Input, More..., JWEnvelop*),
                  bool (*circle)(Input, More..., JWRawPoint&, double*, JWRing*),
                  bool (*ball)(Input, More..., JWRawPoint&, double*, JWRing*),
                  std::common_type_t<Input> input, std::common_type_t<More>... more) {
    std::string text;
    for (auto form : {hull, area, width}) {
        JWRing ring;
        text += form(input, more..., &ring) ? toWkt(ring) : "false";
        EXPECT_FALSE(form(input, more..., nullptr));
    }
    JWEnvelop e;
    if (envelop(input, more..., &e)) {
        for (double v : {e.minX, e.minY, e.maxX, e.maxY}) text += " " + std::to_string(v);
    }
    EXPECT_FALSE(envelop(input, more..., nullptr));
    for (auto form : {circle, ball}) {
        JWRawPoint c(0, 0);
        double r = 0;
        JWRing ring;
        text += form(input, more..., c, &r, &ring) ? toWkt(ring) + std::to_string(r) : "false";
        EXPECT_FALSE(form(input, more..., c, nullptr, nullptr));
    }
    return text;
}

#define JW_ALL(KIND)                                                                               \
    Bounding::KIND##ContexHull, Bounding::KIND##MinimumAreaRect, Bounding::KIND##MinimumWidthRect, \
        Bounding::KIND##Envelop, Bounding::KIND##MinimumCircle, Bounding::KIND##FastBoundingBall

template <class Geometry>
std::string allOfPoints(std::vector<Geometry>& points, int n) {
    return allOf<const std::vector<Geometry>&, int>(JW_ALL(points), points, n);
}

const char* kNothing = "falsefalsefalsefalsefalse";

TEST(BoundingForms, AllSayTheSameOfTheSamePoints) {
    const char* list = "(0 0, 7 1, 5 6, 1 5, 3 3, 0 0)";
    Points points = pointsOf("LINESTRING (0 0, 7 1, 5 6, 1 5, 3 3, 0 0)");
    const std::string expected = allOfPoints(points, 6);
    EXPECT_NE(expected.find("LINEARRING"), std::string::npos);

    std::vector<JWRawPoint*> addresses = addressesOf(points);
    std::vector<JWPoint> objects(points.begin(), points.end());
    std::vector<JWPoint*> objectAddresses = addressesOf(objects);
    EXPECT_EQ(allOfPoints(addresses, 6), expected);
    EXPECT_EQ(allOfPoints(objectAddresses, 6), expected);
    JWRing a, b, c;
    EXPECT_TRUE(JWHull::create2DHull_AM(points, 6, &a));
    EXPECT_TRUE(JWHull::create2DHull(addresses, 6, &b));
    EXPECT_TRUE(JWHull::create2DHull(&objectAddresses, 6, &c));
    EXPECT_TRUE(a == b && b == c);

    const std::string l = list;
    const auto line = fromWkt("LINESTRING " + l), lines = fromWkt("MULTILINESTRING (" + l + ")"),
               polygon = fromWkt("POLYGON (" + l + ")"), ring = fromWkt("LINEARRING " + l),
               polygons = fromWkt("MULTIPOLYGON ((" + l + ", (50 50, 60 50, 60 60, 50 50)))"),
               multi = fromWkt("MULTIPOINT " + l);
    const auto of = [](auto* typed, auto... forms) { return allOf(forms..., typed); };
    const auto as = [](auto* typed, const auto& g) {
        return static_cast<decltype(typed)>(g.get());
    };
    const JWLineString* asLine = nullptr;
    const JWMultiLineString* asLines = nullptr;
    const JWRing* asRing = nullptr;
    const JWPolygon* asPolygon = nullptr;
    const JWMultiPolygon* asPolygons = nullptr;
    const JWMultiPoint* asMulti = nullptr;
    EXPECT_EQ(of(as(asLine, line), JW_ALL(lineString)), expected);
    EXPECT_EQ(of(as(asLines, lines), JW_ALL(multiLineString)), expected);
    EXPECT_EQ(of(as(asRing, ring), JW_ALL(ring)), expected);
    EXPECT_EQ(of(as(asPolygon, polygon), JW_ALL(polygon)), expected);
    EXPECT_EQ(of(as(asPolygons, polygons), JW_ALL(multiPolygon)), expected);
    EXPECT_EQ(of(as(asMulti, multi), JW_ALL(multiPoint)), expected);
    for (const auto* g : {&line, &lines, &ring, &polygon, &polygons, &multi}) {
        EXPECT_EQ(of(static_cast<const JWGeometry*>(g->get()), JW_ALL(geometry)), expected);
    }
    EXPECT_EQ(of(asLine, JW_ALL(lineString)), kNothing);
    const JWPoint single(1, 2);
    const JWGeometryBag bag;
    EXPECT_EQ(of(static_cast<const JWGeometry*>(&single), JW_ALL(geometry)), kNothing);
    EXPECT_EQ(of(static_cast<const JWGeometry*>(&bag), JW_ALL(geometry)), kNothing);
}

TEST(BoundingForms, CountsAndNullPointsAreChecked) {
    Points points = {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {9, 9}};
    for (int n : {-1, 0, 6}) EXPECT_EQ(allOfPoints(points, n), kNothing);
    JWRing ring;
    EXPECT_TRUE(Bounding::pointsContexHull(points, 4, &ring));  // the fifth does not count
    EXPECT_EQ(ring.getArea(), 16);
    std::vector<JWRawPoint*> addresses = addressesOf(points);
    addresses[2] = nullptr;
    EXPECT_EQ(allOfPoints(addresses, 5), kNothing);
    points[1].x = kNaN;
    JWEnvelop e;
    EXPECT_TRUE(Bounding::pointsEnvelop(points, 5, &e));
    EXPECT_EQ(e, JWEnvelop(0, 0, 9, 9));
    JWRawPoint c(5, 5);
    double r = 5;
    EXPECT_FALSE(Bounding::pointsMinimumCircle(points, 5, c, &r));
    EXPECT_FALSE(Bounding::pointsFastBoundingBall(points, 5, c, &r));
    EXPECT_FALSE(Bounding::pointsMinimumAreaRect(points, 5, &ring));
    EXPECT_EQ(r, 5);
}

TEST(BoundingForms, FeatureClassesKeepAttributesAndCountTheRest) {
    auto* fields = new JWFields;
    fields->addField(JWField("name", JWFieldString));
    JWFeatureClass input, output;
    const char* geometries[] = {"LINESTRING (0 0, 4 0, 4 4, 1 3)", "LINESTRING (0 0, 4 0)",
                                "POINT (1 1)", "LINESTRING EMPTY",
                                "LINESTRING (0 0, 4 0, 4 4, 1 3)"};
    for (int i = 0; i < 5; ++i) {
        auto* feature = new JWFeature(fields);
        feature->setFID(10 * i);
        feature->setFieldValue(0, ("f" + std::to_string(i)).c_str());
        feature->setGeometryDirectly(fromWkt(geometries[i]).release());
        input.addFeature(feature);
    }
    auto* infinite = static_cast<JWLineString*>(input.getFeatureAt(4)->getGeometryPtr());
    infinite->getPointList()[2].x = kInf;
    const std::pair<decltype(&Bounding::featureClassContexHull), int> forms[] = {
        {Bounding::featureClassContexHull, 1},       {Bounding::featureClassEnvelop, 2},
        {Bounding::featureClassMinimumCircle, 2},    {Bounding::featureClassMinimumAreaRect, 2},
        {Bounding::featureClassFastBoundingBall, 2}, {Bounding::featureClassMinimumWidthRect, 2},
    };
    for (const auto& [form, written] : forms) {
        JWLayerReport report;
        output.clearAll();
        ASSERT_TRUE(form(&input, &output, &report));
        EXPECT_EQ(report.readA, 5);
        EXPECT_EQ(report.emptyA, 1);
        EXPECT_EQ(report.written, written);
        ASSERT_EQ(static_cast<int>(report.rejected.size()), 4 - written);
        EXPECT_EQ(report.rejected[report.rejected.size() - 2].fid, 20);
        EXPECT_EQ(report.rejected.back().fid, 40);
        ASSERT_EQ(output.getFeatureCount(), written);
        EXPECT_EQ(output.getGeometryType(), JWWKBPolygon);
        const JWFeature* last = output.getFeatureAt(written - 1);
        std::string name;
        EXPECT_TRUE(last->getFieldAsString(0, name));
        EXPECT_EQ(name, "f" + std::to_string(written - 1));
        EXPECT_EQ(last->getFID(), 10 * (written - 1));
        EXPECT_EQ(last->getGeometryType(), JWGeometryPolygon);
        EXPECT_FALSE(form(nullptr, &output, nullptr));
    }
    JWFields::destroyFields(fields);
}

}  // namespace

}  // namespace jwtest
