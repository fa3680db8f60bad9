// SPDX-License-Identifier: MIT
#include "analysis/bounding_shape.h"

#include <cmath>
#include <limits>
#include <utility>

#include "analysis/bounding_rectangle.h"
#include "analysis/hull.h"
#include "analysis/minimum_circle.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

/// Replaces a ring by a list of points; false when there is none.
bool replaceRing(std::vector<JWRawPoint> points, JWRing* ring) {
    if (points.empty()) return false;
    *ring = JWRing(std::move(points));
    return true;
}

template <class Find>
bool circleForm(const Find& find, const PointRuns& points, JWRawPoint& center, double* radius,
                JWRing* outline) {
    Circle circle{center, 0};
    if (radius == nullptr || !find(points, circle)) return false;
    center = circle.center;
    *radius = circle.radius;
    if (outline != nullptr) *outline = circleOutline(circle);
    return true;
}

template <class Find>
bool circlePolygon(const Find& find, const PointRuns& points, JWRing* ring,
                   BoundingMeasures* measures) {
    JWRawPoint center(0, 0);
    double radius = 0;
    if (!circleForm(find, points, center, &radius, ring)) return false;
    if (measures != nullptr) *measures = {{center.x, center.y, radius}};
    return true;
}

void measureRectangle(const JWRing& ring, BoundingMeasures& measures) {
    const std::vector<JWRawPoint>& p = ring.getPointList();
    double dx = p[1].x - p[0].x, dy = p[1].y - p[0].y;
    double length = std::hypot(dx, dy);
    double width = std::hypot(p[2].x - p[1].x, p[2].y - p[1].y);
    if (width > length) {
        std::swap(length, width);
        dx = p[2].x - p[1].x;
        dy = p[2].y - p[1].y;
    }
    constexpr double degrees = 57.29577951308232;
    double angle = std::atan2(dy, dx) * degrees;
    if (angle < 0) angle += 180;
    measures = {{length, width, angle >= 180 ? 0 : angle}};
}

}  // namespace

bool hullForm(const PointRuns& points, JWRing* hull) {
    if (hull == nullptr || points.count() < 4) return false;
    return replaceRing(convexHull(points), hull);
}

bool minimumAreaRectForm(const PointRuns& points, JWRing* rectangle) {
    if (rectangle == nullptr) return false;
    return replaceRing(boundingRectangle(points, RectangleMeasure::kArea), rectangle);
}

bool minimumWidthRectForm(const PointRuns& points, JWRing* rectangle) {
    if (rectangle == nullptr) return false;
    return replaceRing(boundingRectangle(points, RectangleMeasure::kWidth), rectangle);
}

bool envelopForm(const PointRuns& points, JWEnvelop* envelop) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    JWEnvelop all(infinity, infinity, -infinity, -infinity);
    points.forEach([&](const JWRawPoint& p) {
        if (p.x < all.minX) all.minX = p.x;
        if (p.x > all.maxX) all.maxX = p.x;
        if (p.y < all.minY) all.minY = p.y;
        if (p.y > all.maxY) all.maxY = p.y;
    });
    if (envelop == nullptr || !all.isValid()) return false;
    *envelop = all;
    return true;
}

bool minimumCircleForm(const PointRuns& points, JWRawPoint& center, double* radius,
                       JWRing* outline) {
    return circleForm(minimumCircle, points, center, radius, outline);
}

bool boundingBallForm(const PointRuns& points, JWRawPoint& center, double* radius,
                      JWRing* outline) {
    return circleForm(boundingBall, points, center, radius, outline);
}

bool hullPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures*) {
    return hullForm(points, ring) && ring->getPointCount() >= 4;
}

bool anyHullPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures*) {
    std::vector<JWRawPoint> hull = convexHull(points);
    return hull.size() >= 4 && replaceRing(std::move(hull), ring);
}

bool envelopPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures*) {
    JWEnvelop e;
    bool isSound = true;
    points.forEachRun([&](const JWRawPoint* begin, const JWRawPoint* end) {
        isSound = isSound && areFinite(begin, static_cast<std::size_t>(end - begin));
    });
    if (!isSound || !envelopForm(points, &e)) return false;
    // The first corner is said again: a flat list counts as closed already.
    return replaceRing(
        {e.bottom_left(), e.bottom_right(), e.top_right(), e.top_left(), e.bottom_left()}, ring);
}

bool minimumCirclePolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures) {
    return circlePolygon(minimumCircle, points, ring, measures);
}

bool boundingBallPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures) {
    return circlePolygon(boundingBall, points, ring, measures);
}

bool minimumAreaRectPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures) {
    if (!minimumAreaRectForm(points, ring)) return false;
    if (measures != nullptr) measureRectangle(*ring, *measures);
    return true;
}

bool minimumWidthRectPolygon(const PointRuns& points, JWRing* ring, BoundingMeasures* measures) {
    if (!minimumWidthRectForm(points, ring)) return false;
    if (measures != nullptr) measureRectangle(*ring, *measures);
    return true;
}

}  // namespace jws::detail
