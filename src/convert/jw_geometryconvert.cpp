// SPDX-License-Identifier: MIT
//
// The conversions of single geometries, and those of layers with all settings open; the forms with
// fixed arguments are in jw_geometryconvert_layers.cpp.
#include "jw_geometryconvert.h"

#include <cmath>
#include <memory>

#include "convert/layer_conversion.h"
#include "convert/points_of.h"
#include "foundation/api_guard.h"
#include "foundation/ring_position.h"
#include "foundation/vertex_lists.h"
#include "layers/block_filter.h"

namespace jws {

using namespace detail;

namespace {

// --- points of any kind of geometry
// ---------------------------------------------------------------

/// The function for the kind of a geometry.
void appendPoint(enumJWPointPlace place, const JWGeometry& geometry, Points& points) {
    const bool inside = place == JWPointInside;
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint:
        case JWGeometryMultiPoint:
            return inside ? appendMiddleMember(geometry, points) : appendMean(geometry, points);
        case JWGeometryLineString:
        case JWGeometryMultiLineString:
            return inside ? appendMiddleOfLine(geometry, points)
                          : appendLineCentroid(geometry, points);
        default:
            return inside ? appendPointInArea(geometry, points)
                          : appendAreaCentroid(geometry, points);
    }
}

// --- geometries
// -----------------------------------------------------------------------------------

bool isOfKind(const JWGeometry* geometry, enumJWGeometryType single, enumJWGeometryType multi) {
    return geometry != nullptr &&
           (geometry->getGeometryType() == single || geometry->getGeometryType() == multi);
}
bool isLine(const JWGeometry* g) {
    return isOfKind(g, JWGeometryLineString, JWGeometryMultiLineString);
}
bool isPoint(const JWGeometry* g) { return isOfKind(g, JWGeometryPoint, JWGeometryMultiPoint); }
bool isArea(const JWGeometry* g) { return isOfKind(g, JWGeometryPolygon, JWGeometryMultiPolygon); }

/// The one point that `append` makes of a geometry, new; null for none.
JWRawPoint* newPoint(const char* function, bool isUsable, const JWGeometry* geometry,
                     void (*append)(const JWGeometry&, Points&)) {
    return guarded(function, static_cast<JWRawPoint*>(nullptr), [&]() -> JWRawPoint* {
        Points points;
        if (isUsable) append(*geometry, points);
        return points.empty() ? nullptr : new JWRawPoint(points[0]);
    });
}

/// Appends to the caller's list what `append` makes; all of it or, when memory is short, nothing.
template <class Append>
int newPoints(const char* function, bool isUsable, std::vector<JWRawPoint*>& list,
              const Append& append) {
    return guarded(function, 0, [&] {
        Points points;
        if (isUsable) append(points);
        std::vector<std::unique_ptr<JWRawPoint>> made;
        made.reserve(points.size());
        for (const JWRawPoint& p : points) made.push_back(std::make_unique<JWRawPoint>(p));
        list.reserve(list.size() + made.size());
        for (auto& p : made) list.push_back(p.release());
        return static_cast<int>(made.size());
    });
}

}  // namespace

int JWGeometryConvert::convertPolygonLayerToLineLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                                      bool shared, const JWConvertOptions& options,
                                                      JWLayerReport* report) {
    const char* function = "convertPolygonLayerToLineLayer";
    return shared ? convertToSharedLines(function, in, out, true, options, report)
                  : convertToOwnLines(function, in, out, options, report);
}

int JWGeometryConvert::convertLayerToPointLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                                enumJWPointPlace place,
                                                const JWConvertOptions& options,
                                                JWLayerReport* report) {
    PointConversion conversion{
        "convertLayerToPointLayer", PointKind | LineKind | AreaKind,
        [&](const JWGeometry& geometry, Points& points) { appendPoint(place, geometry, points); },
        "orig_fid", options.keepAttributes};
    if (place == JWPointVertices) {
        conversion.numbersPoints = true;
        conversion.pointsOf = [&](const JWGeometry& geometry, Points& points) {
            appendVertices(geometry, options.everyNth, options.leastSpacing, points);
        };
    }
    return convertToPoints(in, out, conversion, {options.blockSize, options.threads}, report);
}

// --- geometries
// -----------------------------------------------------------------------------------

JWRawPoint* JWGeometryConvert::lineCentroid(const JWGeometry* line) {
    return newPoint("lineCentroid", isLine(line), line, appendLineCentroid);
}

JWRawPoint* JWGeometryConvert::lineToPointInside(const JWGeometry* line) {
    return newPoint("lineToPointInside", isLine(line), line, appendMiddleOfLine);
}

JWRawPoint* JWGeometryConvert::multiPointsCentroid(const JWGeometry* points) {
    return newPoint("multiPointsCentroid", isPoint(points), points, appendMean);
}

JWRawPoint* JWGeometryConvert::multiPointsToPointInside(const JWGeometry* points) {
    return newPoint("multiPointsToPointInside", isPoint(points), points, appendMiddleMember);
}

int JWGeometryConvert::polygonCentroid(const JWGeometry* polygon, std::vector<JWRawPoint*>& points,
                                       bool weighted) {
    return newPoints("polygonCentroid", isArea(polygon), points, [&](Points& list) {
        weighted ? appendAreaCentroid(*polygon, list) : appendRingCentroids(*polygon, list);
    });
}

int JWGeometryConvert::polygonVerticesToPoints(const JWGeometry* polygon,
                                               std::vector<JWRawPoint*>& points) {
    return newPoints("polygonVerticesToPoints", isArea(polygon), points,
                     [&](Points& list) { appendVertices(*polygon, 1, 0, list); });
}

int JWGeometryConvert::lineVerticesToPoints(const JWGeometry* line,
                                            std::vector<JWRawPoint*>& points, int everyNth,
                                            double leastSpacing) {
    return newPoints("lineVerticesToPoints", isLine(line), points,
                     [&](Points& list) { appendVertices(*line, everyNth, leastSpacing, list); });
}

JWRawPoint* JWGeometryConvert::lineStringMiddleLengthPoint(JWLineString* line, double length) {
    return getLineStringMiddleLengthPoint(line, length);
}

JWRawPoint* JWGeometryConvert::getLineStringMiddleLengthPoint(const JWLineString* line,
                                                              double length) {
    if (line == nullptr || line->isEmpty() || std::isnan(length)) return nullptr;
    return guarded("lineStringMiddleLengthPoint", static_cast<JWRawPoint*>(nullptr),
                   [&] { return new JWRawPoint(pointAtLength(*line, length)); });
}

int JWGeometryConvert::convertPolygonToLines(const JWGeometry* polygon,
                                             std::vector<JWLineString*>& lines) {
    if (!isArea(polygon)) return 0;
    return guarded("convertPolygonToLines", 0, [&] {
        std::vector<std::unique_ptr<JWLineString>> made;
        everyVertexList(*polygon, [&](const JWRawPoint* p, std::size_t n) {
            if (n > 0) made.push_back(std::make_unique<JWLineString>(p, static_cast<int>(n)));
            return true;
        });
        lines.reserve(lines.size() + made.size());
        for (auto& line : made) lines.push_back(line.release());
        return static_cast<int>(made.size());
    });
}

int JWGeometryConvert::getFeaturesByFIDorWHERE(JWFeatureLayer* layer, const char* where, int first,
                                               int last, JWFeatureClass& out) {
    return guarded("getFeaturesByFIDorWHERE", -1, [&] {
        if (layer == nullptr) return -1;
        out.setGeometryType(layer->getGeometryType());
        return readFeatures(*layer, where, first, last, out);
    });
}

bool JWGeometryConvert::isPointWithInPolygon(const JWRawPoint* point, const JWGeometry* polygon,
                                             double tolerance) {
    if (point == nullptr || !isArea(polygon)) return false;
    return isWithinArea(*point, *polygon) ||
           !everyVertexList(*polygon, [&](const JWRawPoint* p, std::size_t n) {
               return !nearAnyEdge(*point, p, static_cast<int>(n), tolerance);
           });
}

}  // namespace jws
