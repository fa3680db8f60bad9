// SPDX-License-Identifier: MIT
//
// The forms of the layer conversions with fixed arguments. Plain, `_mp` and `_old` forms differ in
// threads and block size alone: what each of them does is said once, in a function that makes the
// description of the conversion from its arguments.
#include "convert/layer_conversion.h"
#include "convert/points_of.h"
#include "foundation/parallel.h"
#include "jw_geometryconvert.h"

namespace jws {

using namespace detail;

namespace {

constexpr int kAll = 0;  // as a block size

LayerMapOptions plain(int blockSize) { return {blockSize, 1}; }
LayerMapOptions team(int blockSize) { return {blockSize, fixedTeamSize}; }

/// The answer of the forms with fixed arguments.
int succeeded(int written) { return written >= 0 ? 1 : 0; }

// Conversions by their fixed arguments

int polygonsToLines(JWFeatureLayer* in, JWFeatureLayer* out, bool namesNeighbours,
                    bool keepAttributes, bool dropOuterBoundary, double tolerance,
                    const LayerMapOptions& how) {
    JWConvertOptions options;
    options.keepAttributes = keepAttributes;
    options.dropOuterBoundary = dropOuterBoundary;
    options.tolerance = tolerance;
    options.blockSize = how.blockSize;
    options.threads = how.threads;
    return succeeded(convertToSharedLines(namesNeighbours
                                              ? "convertPolygonLayerToLineLayerWithAttributes"
                                              : "convertPolygonLayerToLineLayer",
                                          in, out, namesNeighbours, options, nullptr));
}

int polygonsToOwnLines(JWFeatureLayer* in, JWFeatureLayer* out, bool keepAttributes,
                       const LayerMapOptions& how) {
    JWConvertOptions options;
    options.keepAttributes = keepAttributes;
    options.blockSize = how.blockSize;
    options.threads = how.threads;
    return succeeded(
        convertToOwnLines("convertPolygonLayerToLineLayer_Simple", in, out, options, nullptr));
}

int toPoints(JWFeatureLayer* in, JWFeatureLayer* out, const PointConversion& conversion,
             const LayerMapOptions& how) {
    return succeeded(convertToPoints(in, out, conversion, how, nullptr));
}

PointConversion pointsOfLines(bool pointInside) {
    return {"convertLineLayerToPointLayer", LineKind,
            pointInside ? appendMiddleOfLine : appendLineCentroid, "orig_fid"};
}

PointConversion pointsOfMultiPoints(bool pointInside) {
    return {"convertMultiPointLayerToPointLayer", PointKind,
            pointInside ? appendMiddleMember : appendMean, "orig_fid"};
}

PointConversion verticesOfLines(int everyNth, double leastSpacing) {
    return {"convertLineLayerToPointLayerByVertices", LineKind,
            [everyNth, leastSpacing](const JWGeometry& line, Points& points) {
                appendVertices(line, everyNth, leastSpacing, points);
            },
            "orig_fid"};
}

/// The one field name of its kind; where it would stand, the attributes stand instead.
const char* identifierBeside(bool keepAttributes) { return keepAttributes ? nullptr : "ogig_fid"; }

PointConversion centroidsOfPolygons(bool keepAttributes) {
    return {"convertPolygonLayerToPointLayerByCentroid", AreaKind,
            keepAttributes ? appendAreaCentroid : appendRingCentroids,
            identifierBeside(keepAttributes), keepAttributes};
}

void appendAllVertices(const JWGeometry& geometry, Points& points) {
    appendVertices(geometry, 1, 0, points);
}

PointConversion verticesOfPolygons(bool keepAttributes) {
    return {"convertPolygonLayerToPointLayerByVertices", AreaKind, appendAllVertices,
            identifierBeside(keepAttributes), keepAttributes};
}

}  // namespace

int JWGeometryConvert::convertPolygonLayerToLineLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                                      bool keepAttributes, bool dropOuterBoundary,
                                                      double tolerance, int blockSize) {
    return polygonsToLines(in, out, false, keepAttributes, dropOuterBoundary, tolerance,
                           plain(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToLineLayer_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                         bool keepAttributes,
                                                         bool dropOuterBoundary, double tolerance,
                                                         int blockSize) {
    return polygonsToLines(in, out, false, keepAttributes, dropOuterBoundary, tolerance,
                           team(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToLineLayer_old(JWFeatureLayer* in, JWFeatureLayer* out,
                                                          bool keepAttributes,
                                                          bool dropOuterBoundary,
                                                          double tolerance) {
    return polygonsToLines(in, out, false, keepAttributes, dropOuterBoundary, tolerance,
                           plain(kAll));
}

int JWGeometryConvert::convertPolygonLayerToLineLayerWithAttributes(
    JWFeatureLayer* in, JWFeatureLayer* out, bool keepAttributes, bool dropOuterBoundary,
    double tolerance, int blockSize) {
    return polygonsToLines(in, out, true, keepAttributes, dropOuterBoundary, tolerance,
                           plain(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToLineLayerWithAttributes_mp(
    JWFeatureLayer* in, JWFeatureLayer* out, bool keepAttributes, bool dropOuterBoundary,
    double tolerance, int blockSize) {
    return polygonsToLines(in, out, true, keepAttributes, dropOuterBoundary, tolerance,
                           team(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToLineLayerWithAttributes_old(JWFeatureLayer* in,
                                                                        JWFeatureLayer* out,
                                                                        bool keepAttributes,
                                                                        bool dropOuterBoundary,
                                                                        double tolerance) {
    return polygonsToLines(in, out, true, keepAttributes, dropOuterBoundary, tolerance,
                           plain(kAll));
}

int JWGeometryConvert::convertPolygonLayerToLineLayer_Simple(JWFeatureLayer* in,
                                                             JWFeatureLayer* out,
                                                             bool keepAttributes, int blockSize) {
    return polygonsToOwnLines(in, out, keepAttributes, plain(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToLineLayer_Simple_mp(JWFeatureLayer* in,
                                                                JWFeatureLayer* out,
                                                                bool keepAttributes,
                                                                int blockSize) {
    return polygonsToOwnLines(in, out, keepAttributes, team(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToLineLayer_Simple_old(JWFeatureLayer* in,
                                                                 JWFeatureLayer* out,
                                                                 bool keepAttributes) {
    return polygonsToOwnLines(in, out, keepAttributes, plain(kAll));
}

int JWGeometryConvert::convertLineLayerToPointLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                                    bool pointInside, int blockSize) {
    return toPoints(in, out, pointsOfLines(pointInside), plain(blockSize));
}
int JWGeometryConvert::convertLineLayerToPointLayer_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                       bool pointInside, int blockSize) {
    return toPoints(in, out, pointsOfLines(pointInside), team(blockSize));
}
int JWGeometryConvert::convertLineLayerToPointLayer_old(JWFeatureLayer* in, JWFeatureLayer* out,
                                                        bool pointInside) {
    return toPoints(in, out, pointsOfLines(pointInside), plain(kAll));
}

int JWGeometryConvert::convertLineLayerToPointLayerByVertices(JWFeatureLayer* in,
                                                              JWFeatureLayer* out, int everyNth,
                                                              double leastSpacing, int blockSize) {
    return toPoints(in, out, verticesOfLines(everyNth, leastSpacing), plain(blockSize));
}
int JWGeometryConvert::convertLineLayerToPointLayerByVertices_mp(JWFeatureLayer* in,
                                                                 JWFeatureLayer* out, int everyNth,
                                                                 double leastSpacing,
                                                                 int blockSize) {
    return toPoints(in, out, verticesOfLines(everyNth, leastSpacing), team(blockSize));
}
int JWGeometryConvert::convertLineLayerToPointLayerByVertices_old(JWFeatureLayer* in,
                                                                  JWFeatureLayer* out, int everyNth,
                                                                  double leastSpacing) {
    return toPoints(in, out, verticesOfLines(everyNth, leastSpacing), plain(kAll));
}

int JWGeometryConvert::convertMultiPointLayerToPointLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                                          bool pointInside, int blockSize) {
    return toPoints(in, out, pointsOfMultiPoints(pointInside), plain(blockSize));
}
int JWGeometryConvert::convertMultiPointLayerToPointLayer_mp(JWFeatureLayer* in,
                                                             JWFeatureLayer* out, bool pointInside,
                                                             int blockSize) {
    return toPoints(in, out, pointsOfMultiPoints(pointInside), team(blockSize));
}
int JWGeometryConvert::convertMultiPointLayerToPointLayer_old(JWFeatureLayer* in,
                                                              JWFeatureLayer* out,
                                                              bool pointInside) {
    return toPoints(in, out, pointsOfMultiPoints(pointInside), plain(kAll));
}

int JWGeometryConvert::convertPolygonLayerToPointLayerByCentroid(JWFeatureLayer* in,
                                                                 JWFeatureLayer* out,
                                                                 bool keepAttributes,
                                                                 int blockSize) {
    return toPoints(in, out, centroidsOfPolygons(keepAttributes), plain(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToPointLayerByCentroid_mp(JWFeatureLayer* in,
                                                                    JWFeatureLayer* out,
                                                                    bool keepAttributes,
                                                                    int blockSize) {
    return toPoints(in, out, centroidsOfPolygons(keepAttributes), team(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToPointLayerByCentroid_old(JWFeatureLayer* in,
                                                                     JWFeatureLayer* out,
                                                                     bool keepAttributes) {
    return toPoints(in, out, centroidsOfPolygons(keepAttributes), plain(kAll));
}

int JWGeometryConvert::convertPolygonLayerToPointLayerByVertices(JWFeatureLayer* in,
                                                                 JWFeatureLayer* out,
                                                                 bool keepAttributes,
                                                                 int blockSize) {
    return toPoints(in, out, verticesOfPolygons(keepAttributes), plain(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToPointLayerByVertices_mp(JWFeatureLayer* in,
                                                                    JWFeatureLayer* out,
                                                                    bool keepAttributes,
                                                                    int blockSize) {
    return toPoints(in, out, verticesOfPolygons(keepAttributes), team(blockSize));
}
int JWGeometryConvert::convertPolygonLayerToPointLayerByVertices_old(JWFeatureLayer* in,
                                                                     JWFeatureLayer* out,
                                                                     bool keepAttributes) {
    return toPoints(in, out, verticesOfPolygons(keepAttributes), plain(kAll));
}

}  // namespace jws
