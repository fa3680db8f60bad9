// SPDX-License-Identifier: MIT
//
// The forms of simplification: each makes options of its arguments and hands them to one of four
// bodies, for a line in place, a line into another, a polygon and a feature class.
#include "jw_geometrysimplicify.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "analysis/coverage_layer.h"
#include "analysis/line_forms.h"
#include "analysis/line_simplifier.h"

namespace jws {

using namespace detail;

namespace {

using Forms = LineForms<LineSimplifier>;

JWSimplifyOptions with(enumJWSimplifyMethod method, double tolerance, int count = 0,
                       double maximum = 0) {
    JWSimplifyOptions options;
    options.method = method;
    options.tolerance = tolerance;
    options.count = count;
    options.maximumTolerance = maximum;
    return options;
}

int countOf(unsigned n) {
    constexpr unsigned most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(n, most));
}

int appendTo(const char* function, const JWLineString* line, JWLineString* out,
             const JWSimplifyOptions& options) {
    if (line == nullptr) return 0;
    return guarded(function, line->getPointCount(), [&] {
        std::vector<JWRawPoint> points;
        if (out == nullptr || !LineSimplifier(options).edit(line->getPointList(), points)) {
            return line->getPointCount();
        }
        out->addPoints(points);
        out->updateEnvelop();
        return static_cast<int>(points.size());
    });
}

void sayRefused(const JWGeometry&) {
    std::fputs("can not process geometry of this type \n", stderr);
}

template <class Line>
bool dropRepeated(Line* line) {
    if (line == nullptr || line->getPointCount() < 2) return false;
    std::vector<JWRawPoint>& points = line->getPointList();
    const auto end = std::unique(points.begin(), points.end());
    if (end == points.end()) return true;
    points.erase(end, points.end());
    line->updateEnvelop();
    return true;
}

}  // namespace

JWGeometrySimplicify::JWGeometrySimplicify() = default;
JWGeometrySimplicify::~JWGeometrySimplicify() = default;
JWGeometrySimplicify& JWGeometrySimplicify::operator=(const JWGeometrySimplicify&) = default;

// --- Lines ---------------------------------------------------------------------------------------

bool JWGeometrySimplicify::douglasPeucker(JWLineString* line, double tolerance) {
    return Forms::editLine("douglasPeucker", line, with(JWSimplifyDouglasPeucker, tolerance));
}

JW_COUNT_FORM(JWGeometrySimplicify, reumann_witkam, (double tolerance), with,
              (JWSimplifyReumannWitkam, tolerance))
JW_COUNT_FORM(JWGeometrySimplicify, lang, (double tolerance, int lookAhead), with,
              (JWSimplifyLang, tolerance, lookAhead))
JW_COUNT_FORM(JWGeometrySimplicify, vertex_reduction, (double tolerance), with,
              (JWSimplifyVertexReduction, tolerance))
JW_COUNT_FORM(JWGeometrySimplicify, nThPoint, (unsigned n), with,
              (JWSimplifyNthPoint, 0, countOf(n)))

int JWGeometrySimplicify::opheim(const JWLineString* line, double minimum, double maximum,
                                 JWLineString* out) {
    return appendTo("opheim", line, out, with(JWSimplifyOpheim, minimum, 0, maximum));
}

int JWGeometrySimplicify::perpendicularDistance(const JWLineString* line, double tolerance,
                                                JWLineString* out) {
    return appendTo("perpendicularDistance", line, out,
                    with(JWSimplifyPerpendicularDistance, tolerance));
}

bool JWGeometrySimplicify::removeDuplicate(JWLineString* line) { return dropRepeated(line); }

bool JWGeometrySimplicify::removeDuplicate(JWRing* ring) { return dropRepeated(ring); }

// --- Any geometry --------------------------------------------------------------------------------

bool JWGeometrySimplicify::geometrySimplicify(JWGeometry* geometry, double tolerance) {
    if (geometry == nullptr) return false;
    if (!hasLines(*geometry) && geometry->getGeometryType() != JWGeometryPoint) {
        sayRefused(*geometry);
    }
    return geometrySimplicify(geometry, with(JWSimplifyDouglasPeucker, tolerance));
}

bool JWGeometrySimplicify::geometrySimplicify(JWGeometry* geometry,
                                              const JWSimplifyOptions& options) {
    return Forms::editGeometry("geometrySimplicify", geometry, options);
}

// --- Polygons, feature classes, layers -----------------------------------------------------------

JW_LAYER_FORMS(JWGeometrySimplicify, jwPolygonSimpicify_ReumannWitkam, simplifyFeatures_rw,
               (double tolerance), with, (JWSimplifyReumannWitkam, tolerance))
JW_LAYER_FORMS(JWGeometrySimplicify, jwPolygonSimpicify_VertexReduction, simplifyFeatures_vr,
               (double tolerance), with, (JWSimplifyVertexReduction, tolerance))
JW_LAYER_FORMS(JWGeometrySimplicify, jwPolygonSimpicify_PerpendDistance, simplifyFeatures_per,
               (double tolerance), with, (JWSimplifyPerpendicularDistance, tolerance))
JW_LAYER_FORMS(JWGeometrySimplicify, jwPolygonSimpicify_Lang, simplifyFeatures_lang,
               (double tolerance, int lookAhead), with, (JWSimplifyLang, tolerance, lookAhead))
JW_LAYER_FORMS(JWGeometrySimplicify, jwPolygonSimpicify_Opheim, simplifyFeatures_op,
               (double minimum, double maximum), with, (JWSimplifyOpheim, minimum, 0, maximum))
JW_POLYGON_FORM(JWGeometrySimplicify, jwPolygonSimpicify_NthPoint, (int n), with,
                (JWSimplifyNthPoint, 0, n))
JW_CLASS_FORM(JWGeometrySimplicify, simplifyFeatures_nth, (unsigned n), with,
              (JWSimplifyNthPoint, 0, countOf(n)))
JW_POLYGON_FORM(JWGeometrySimplicify, jwPolygonSimpicify, (double tolerance), with,
                (JWSimplifyDouglasPeucker, tolerance))

void JWGeometrySimplicify::simplifyFeatures_dp(JWFeatureClass* features, double tolerance) {
    Forms::editClass("simplifyFeatures_dp", features, with(JWSimplifyDouglasPeucker, tolerance),
                     nullptr, sayRefused);
}

void JWGeometrySimplicify::simplifyFeatures_omp(JWFeatureClass* features, double tolerance) {
    JWSimplifyOptions options = with(JWSimplifyDouglasPeucker, tolerance);
    options.threads = 0;
    Forms::editClass("simplifyFeatures_omp", features, options, nullptr, sayRefused);
}

bool JWGeometrySimplicify::simplifyFeatures(JWFeatureClass* features,
                                            const JWSimplifyOptions& options,
                                            JWLayerReport* report) {
    return Forms::editClass("simplifyFeatures", features, options, report);
}

int JWGeometrySimplicify::simplifyLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                        const JWSimplifyOptions& options, JWLayerReport* report) {
    if (options.coverage) return simplifyCoverage(input, output, options, report);
    return Forms::editLayer("simplifyLayer", input, output, options, report);
}

}  // namespace jws
