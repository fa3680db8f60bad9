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

JW_COUNT_FORM(JWGeometrySmooth, boyle, (int lookAhead), boyleOptions, (lookAhead))
JW_COUNT_FORM(JWGeometrySmooth, sliding_averaging, (double slide, int lookAhead), windowOptions,
              (JWSmoothSlidingAveraging, slide, lookAhead))
JW_COUNT_FORM(JWGeometrySmooth, distance_weighting, (double slide, int lookAhead), windowOptions,
              (JWSmoothDistanceWeighting, slide, lookAhead))
JW_COUNT_FORM(JWGeometrySmooth, chaiken, (double tolerance), chaikenOptions, (tolerance))
JW_COUNT_FORM(JWGeometrySmooth, hermite, (double step, double tangentScale, double tangentMinimum),
              hermiteOptions, (step, tangentScale, tangentMinimum))

JWLineString* JWGeometrySmooth::bezier(const JWLineString* line, int degree, int points) {
    if (line == nullptr) return nullptr;
    return guarded("bezier", static_cast<JWLineString*>(nullptr), [&] {
        if (!allFinite(line->getPointList())) return line->clone();
        std::unique_ptr<JWLineString> curve(JWBezierCurve().makeBezierCurve(line, degree, points));
        const bool isSound = curve == nullptr || allFinite(curve->getPointList());
        return isSound ? curve.release() : line->clone();
    });
}

// --- Polygons, feature classes, layers and any geometry ------------------------------------------

JW_LAYER_FORMS(JWGeometrySmooth, jwPolygonSmooth_Boyle, smoothFeatures_boyle, (int lookAhead),
               boyleOptions, (lookAhead))
JW_LAYER_FORMS(JWGeometrySmooth, jwPolygonSmooth_SlidingMean, smoothFeatures_slideAve,
               (double slide, int lookAhead), windowOptions,
               (JWSmoothSlidingAveraging, slide, lookAhead))
JW_LAYER_FORMS(JWGeometrySmooth, jwPolygonSmooth_dw, smoothFeatures_dw,
               (double slide, int lookAhead), windowOptions,
               (JWSmoothDistanceWeighting, slide, lookAhead))
JW_LAYER_FORMS(JWGeometrySmooth, jwPolygonSmooth_Chaiken, smoothFeatures_chaiken,
               (double tolerance), chaikenOptions, (tolerance))
JW_LAYER_FORMS(JWGeometrySmooth, jwPolygonSmooth_Bezier, smoothFeatures_bezier,
               (int degree, int points), bezierOptions, (degree, points))
JW_LAYER_FORMS(JWGeometrySmooth, jwPolygonSmooth_Hermite, smoothFeatures_hermite,
               (double step, double tangentScale, double tangentMinimum), hermiteOptions,
               (step, tangentScale, tangentMinimum))

bool JWGeometrySmooth::geometrySmooth(JWGeometry* geometry, const JWSmoothOptions& options) {
    return Forms::editGeometry("geometrySmooth", geometry, options);
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
