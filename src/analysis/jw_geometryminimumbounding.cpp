// SPDX-License-Identifier: MIT
//
// The forms of the bounding families. Each family has one body over the runs of points that every
// input comes to; a form turns its input into runs and calls it.
#include "jw_geometryminimumbounding.h"

#include "analysis/bounding_layer.h"
#include "analysis/bounding_shape.h"
#include "analysis/feature_results.h"
#include "analysis/point_runs.h"
#include "analysis/unpack.h"
#include "foundation/api_guard.h"

namespace jws {

using namespace detail;

namespace {

bool perFeature(const char* function, JWFeatureClass* input, JWFeatureClass* output,
                JWLayerReport* report, BoundingShape shape) {
    if (input == nullptr || output == nullptr) return false;
    return guarded(function, false, [&] {
        JWLayerReport unread;
        polygonPerFeature(*input, *output, report != nullptr ? *report : unread,
                          "no bounding geometry: it needs more distinct points, finite, of a "
                          "multi-point, line or polygon",
                          [shape](const JWGeometry* geometry, JWRing* ring) {
                              return shape(PointRuns(geometry), ring, nullptr);
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
          minimumAreaRectPolygon)
JW_FAMILY(MinimumWidthRect, minimumWidthRectForm, (JWRing * rectangle), (rectangle),
          minimumWidthRectPolygon)

int JWGeometryMinimumBounding::boundLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                          const JWBoundingOptions& options, JWLayerReport* report) {
    return detail::boundLayer(input, output, options, report);
}

}  // namespace jws
