// SPDX-License-Identifier: MIT
//
// The forms of smoothing: each makes options of its arguments and hands them to the body for a
// line, a polygon or a feature class.
#include "jw_geometrysmooth.h"

#include "analysis/line_forms.h"
#include "analysis/line_smoother.h"

namespace jws {

using namespace detail;

namespace {

using Forms = LineForms<LineSmoother>;

JWSmoothOptions boyleOptions(int lookAhead) {
    JWSmoothOptions options;
    options.method = JWSmoothBoyle;
    options.lookAhead = lookAhead;
    return options;
}

JWSmoothOptions windowOptions(enumJWSmoothMethod method, double slide, int lookAhead) {
    JWSmoothOptions options;
    options.method = method;
    options.slide = slide;
    options.lookAhead = lookAhead;
    return options;
}

JWSmoothOptions chaikenOptions(double tolerance) {
    JWSmoothOptions options;
    options.method = JWSmoothChaiken;
    options.tolerance = tolerance;
    return options;
}

JWSmoothOptions bezierOptions(int degree, int points) {
    JWSmoothOptions options;
    options.method = JWSmoothBezier;
    options.degree = degree;
    options.points = points;
    return options;
}

JWSmoothOptions hermiteOptions(double step, double tangentScale, double tangentMinimum) {
    JWSmoothOptions options;
    options.method = JWSmoothHermite;
    options.step = step;
    options.tangentScale = tangentScale;
    options.tangentMinimum = tangentMinimum;
    return options;
}

}  // namespace

JWGeometrySmooth::JWGeometrySmooth() = default;
JWGeometrySmooth::~JWGeometrySmooth() = default;
JWGeometrySmooth& JWGeometrySmooth::operator=(const JWGeometrySmooth&) = default;

// --- Lines ---------------------------------------------------------------------------------------

int JWGeometrySmooth::boyle(JWLineString* line, int lookAhead) {
    return Forms::countAfter("boyle", line, boyleOptions(lookAhead));
}

int JWGeometrySmooth::sliding_averaging(JWLineString* line, double slide, int lookAhead) {
    return Forms::countAfter("sliding_averaging", line,
                             windowOptions(JWSmoothSlidingAveraging, slide, lookAhead));
}

int JWGeometrySmooth::distance_weighting(JWLineString* line, double slide, int lookAhead) {
    return Forms::countAfter("distance_weighting", line,
                             windowOptions(JWSmoothDistanceWeighting, slide, lookAhead));
}

int JWGeometrySmooth::chaiken(JWLineString* line, double tolerance) {
    return Forms::countAfter("chaiken", line, chaikenOptions(tolerance));
}

int JWGeometrySmooth::hermite(JWLineString* line, double step, double tangentScale,
                              double tangentMinimum) {
    return Forms::countAfter("hermite", line, hermiteOptions(step, tangentScale, tangentMinimum));
}

JWLineString* JWGeometrySmooth::bezier(const JWLineString* line, int degree, int points) {
    if (line == nullptr) return nullptr;
    return guarded("bezier", static_cast<JWLineString*>(nullptr), [&] {
        if (!allFinite(line->getPointList())) return line->clone();
        return JWBezierCurve().makeBezierCurve(line, degree, points);
    });
}

// --- Polygons and any geometry -------------------------------------------------------------------

bool JWGeometrySmooth::jwPolygonSmooth_Boyle(JWPolygon* polygon, int lookAhead) {
    return Forms::editPolygon("jwPolygonSmooth_Boyle", polygon, boyleOptions(lookAhead));
}

bool JWGeometrySmooth::jwPolygonSmooth_SlidingMean(JWPolygon* polygon, double slide,
                                                   int lookAhead) {
    return Forms::editPolygon("jwPolygonSmooth_SlidingMean", polygon,
                              windowOptions(JWSmoothSlidingAveraging, slide, lookAhead));
}

bool JWGeometrySmooth::jwPolygonSmooth_dw(JWPolygon* polygon, double slide, int lookAhead) {
    return Forms::editPolygon("jwPolygonSmooth_dw", polygon,
                              windowOptions(JWSmoothDistanceWeighting, slide, lookAhead));
}

bool JWGeometrySmooth::jwPolygonSmooth_Chaiken(JWPolygon* polygon, double tolerance) {
    return Forms::editPolygon("jwPolygonSmooth_Chaiken", polygon, chaikenOptions(tolerance));
}

bool JWGeometrySmooth::jwPolygonSmooth_Bezier(JWPolygon* polygon, int degree, int points) {
    return Forms::editPolygon("jwPolygonSmooth_Bezier", polygon, bezierOptions(degree, points));
}

bool JWGeometrySmooth::jwPolygonSmooth_Hermite(JWPolygon* polygon, double step, double tangentScale,
                                               double tangentMinimum) {
    return Forms::editPolygon("jwPolygonSmooth_Hermite", polygon,
                              hermiteOptions(step, tangentScale, tangentMinimum));
}

bool JWGeometrySmooth::geometrySmooth(JWGeometry* geometry, const JWSmoothOptions& options) {
    return Forms::editGeometry("geometrySmooth", geometry, options);
}

// --- Feature classes -----------------------------------------------------------------------------

void JWGeometrySmooth::smoothFeatures_boyle(JWFeatureClass* features, int lookAhead) {
    Forms::editClass("smoothFeatures_boyle", features, boyleOptions(lookAhead));
}

void JWGeometrySmooth::smoothFeatures_slideAve(JWFeatureClass* features, double slide,
                                               int lookAhead) {
    Forms::editClass("smoothFeatures_slideAve", features,
                     windowOptions(JWSmoothSlidingAveraging, slide, lookAhead));
}

void JWGeometrySmooth::smoothFeatures_dw(JWFeatureClass* features, double slide, int lookAhead) {
    Forms::editClass("smoothFeatures_dw", features,
                     windowOptions(JWSmoothDistanceWeighting, slide, lookAhead));
}

void JWGeometrySmooth::smoothFeatures_chaiken(JWFeatureClass* features, double tolerance) {
    Forms::editClass("smoothFeatures_chaiken", features, chaikenOptions(tolerance));
}

void JWGeometrySmooth::smoothFeatures_bezier(JWFeatureClass* features, int degree, int points) {
    Forms::editClass("smoothFeatures_bezier", features, bezierOptions(degree, points));
}

void JWGeometrySmooth::smoothFeatures_hermite(JWFeatureClass* features, double step,
                                              double tangentScale, double tangentMinimum) {
    Forms::editClass("smoothFeatures_hermite", features,
                     hermiteOptions(step, tangentScale, tangentMinimum));
}

bool JWGeometrySmooth::smoothFeatures(JWFeatureClass* features, const JWSmoothOptions& options,
                                      JWLayerReport* report) {
    return Forms::editClass("smoothFeatures", features, options, report);
}

int JWGeometrySmooth::smoothLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                  const JWSmoothOptions& options, JWLayerReport* report) {
    return Forms::editLayer("smoothLayer", input, output, options, report);
}

}  // namespace jws
