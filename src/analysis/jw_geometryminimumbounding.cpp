// SPDX-License-Identifier: MIT
//
// The forms of the bounding families. Each family has one body over the runs of points that every
// input comes to; a form turns its input into runs and calls it.
#include "jw_geometryminimumbounding.h"

#include <limits>
#include <utility>

#include "analysis/bounding_rectangle.h"
#include "analysis/feature_results.h"
#include "analysis/hull.h"
#include "analysis/minimum_circle.h"
#include "analysis/point_runs.h"
#include "foundation/api_guard.h"

namespace jws {

using namespace detail;

namespace {

/// Replaces a ring by a list of points; false when there is none.
bool replaceRing(std::vector<JWRawPoint> points, JWRing* ring) {
    if (points.empty()) return false;
    *ring = JWRing(std::move(points));
    return true;
}

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

bool minimumCircleForm(const PointRuns& points, JWRawPoint& center, double* radius,
                       JWRing* outline) {
    return circleForm(minimumCircle, points, center, radius, outline);
}

bool boundingBallForm(const PointRuns& points, JWRawPoint& center, double* radius,
                      JWRing* outline) {
    return circleForm(boundingBall, points, center, radius, outline);
}

// What the feature forms make of one geometry.

bool hullPolygon(const PointRuns& points, JWRing* ring) {
    return hullForm(points, ring) && ring->getPointCount() >= 4;
}

bool envelopPolygon(const PointRuns& points, JWRing* ring) {
    JWEnvelop e;
    if (!envelopForm(points, &e)) return false;
    return replaceRing({e.bottom_left(), e.bottom_right(), e.top_right(), e.top_left()}, ring);
}

bool minimumCirclePolygon(const PointRuns& points, JWRing* ring) {
    JWRawPoint center(0, 0);
    double radius = 0;
    return minimumCircleForm(points, center, &radius, ring);
}

bool boundingBallPolygon(const PointRuns& points, JWRing* ring) {
    JWRawPoint center(0, 0);
    double radius = 0;
    return boundingBallForm(points, center, &radius, ring);
}

bool perFeature(const char* function, JWFeatureClass* input, JWFeatureClass* output,
                JWLayerReport* report, bool (*form)(const PointRuns&, JWRing*)) {
    if (input == nullptr || output == nullptr) return false;
    return guarded(function, false, [&] {
        JWLayerReport unread;
        polygonPerFeature(*input, *output, report != nullptr ? *report : unread,
                          "no bounding geometry: it needs more distinct points, finite, of a "
                          "multi-point, line or polygon",
                          [form](const JWGeometry* geometry, JWRing* ring) {
                              return form(PointRuns(geometry), ring);
                          });
        return true;
    });
}

}  // namespace

JWGeometryMinimumBounding::JWGeometryMinimumBounding() = default;
JWGeometryMinimumBounding::~JWGeometryMinimumBounding() = default;
JWGeometryMinimumBounding& JWGeometryMinimumBounding::operator=(const JWGeometryMinimumBounding&) =
    default;

// One form of a family: its arguments after the input are DECLARED, and PASSED on to FORM.
#define JW_UNPACK(...) __VA_ARGS__
#define JW_POINTS_FORM(FAMILY, POINT, FORM, DECLARED, PASSED)                               \
    bool JWGeometryMinimumBounding::points##FAMILY(const std::vector<POINT>& points, int n, \
                                                   JW_UNPACK DECLARED) {                    \
        return guarded("points" #FAMILY, false,                                             \
                       [&] { return FORM(PointRuns(points, n), JW_UNPACK PASSED); });       \
    }
#define JW_GEOMETRY_FORM(KIND, CLASS, FAMILY, FORM, DECLARED, PASSED)                         \
    bool JWGeometryMinimumBounding::KIND##FAMILY(const CLASS* geometry, JW_UNPACK DECLARED) { \
        return guarded(#KIND #FAMILY, false,                                                  \
                       [&] { return FORM(PointRuns(geometry), JW_UNPACK PASSED); });          \
    }
#define JW_FAMILY(FAMILY, FORM, DECLARED, PASSED, POLYGON)                               \
    JW_POINTS_FORM(FAMILY, JWRawPoint, FORM, DECLARED, PASSED)                           \
    JW_POINTS_FORM(FAMILY, JWRawPoint*, FORM, DECLARED, PASSED)                          \
    JW_POINTS_FORM(FAMILY, JWPoint*, FORM, DECLARED, PASSED)                             \
    JW_GEOMETRY_FORM(lineString, JWLineString, FAMILY, FORM, DECLARED, PASSED)           \
    JW_GEOMETRY_FORM(multiLineString, JWMultiLineString, FAMILY, FORM, DECLARED, PASSED) \
    JW_GEOMETRY_FORM(ring, JWRing, FAMILY, FORM, DECLARED, PASSED)                       \
    JW_GEOMETRY_FORM(polygon, JWPolygon, FAMILY, FORM, DECLARED, PASSED)                 \
    JW_GEOMETRY_FORM(multiPolygon, JWMultiPolygon, FAMILY, FORM, DECLARED, PASSED)       \
    JW_GEOMETRY_FORM(multiPoint, JWMultiPoint, FAMILY, FORM, DECLARED, PASSED)           \
    JW_GEOMETRY_FORM(geometry, JWGeometry, FAMILY, FORM, DECLARED, PASSED)               \
    bool JWGeometryMinimumBounding::featureClass##FAMILY(                                \
        JWFeatureClass* input, JWFeatureClass* output, JWLayerReport* report) {          \
        return perFeature("featureClass" #FAMILY, input, output, report, POLYGON);       \
    }

JW_FAMILY(ContexHull, hullForm, (JWRing * hull), (hull), hullPolygon)
JW_FAMILY(Envelop, envelopForm, (JWEnvelop * envelop), (envelop), envelopPolygon)
JW_FAMILY(MinimumCircle, minimumCircleForm, (JWRawPoint & center, double* radius, JWRing* outline),
          (center, radius, outline), minimumCirclePolygon)
JW_FAMILY(FastBoundingBall, boundingBallForm,
          (JWRawPoint & center, double* radius, JWRing* outline), (center, radius, outline),
          boundingBallPolygon)
JW_FAMILY(MinimumAreaRect, minimumAreaRectForm, (JWRing * rectangle), (rectangle),
          minimumAreaRectForm)
JW_FAMILY(MinimumWidthRect, minimumWidthRectForm, (JWRing * rectangle), (rectangle),
          minimumWidthRectForm)

}  // namespace jws
