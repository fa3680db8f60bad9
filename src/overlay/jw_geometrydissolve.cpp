// SPDX-License-Identifier: MIT
#include "jw_geometrydissolve.h"

#include <algorithm>
#include <climits>
#include <memory>

#include "boolean/ring_clip.h"
#include "foundation/api_guard.h"
#include "foundation/parallel.h"
#include "layers/layer_checks.h"
#include "overlay/dissolve_driver.h"
#include "overlay/group_union.h"
#include "overlay/line_parts.h"
#include "overlay/multi_parts.h"

namespace jws {

using namespace detail;

namespace {

int invalidArgument(const std::string& text) {
    JWReport::setError(JWErrorInvalidArgument, text);
    return -1;
}

/// The first `count` of a list; false with the last error set when it has fewer.
bool takeFields(const JWFeatureLayer* input, std::vector<int>& fields, int count) {
    if (count > static_cast<int>(fields.size())) {
        invalidArgument((input != nullptr ? titleOf(*input) + ": " : std::string()) +
                        std::to_string(count) + " dissolve fields are asked for, but only " +
                        std::to_string(fields.size()) + " are listed");
        return false;
    }
    fields.resize(static_cast<std::size_t>(std::max(count, 0)));
    return true;
}

/// Puts indexes in ascending order, each once. Returns false with the last error set when one is
/// no field of the layer.
bool normalise(const JWFeatureLayer& layer, std::vector<int>& fields) {
    const JWFields& schema = *layer.getFieldsDefnPtr();
    std::sort(fields.begin(), fields.end());
    fields.erase(std::unique(fields.begin(), fields.end()), fields.end());
    for (const int field : fields) {
        if (schema.getFieldPtr(field) != nullptr) continue;
        invalidArgument(titleOf(layer) + ": there is no field " + std::to_string(field) +
                        " to dissolve by, of " + std::to_string(schema.getFieldCount()) +
                        " counted from 0");
        return false;
    }
    return true;
}

int dissolve(JWFeatureLayer* input, JWFeatureLayer* output, DissolveKind kind,
             std::vector<int> fields, const JWDissolveOptions& options, JWLayerReport* report) {
    return guarded("dissolve", -1, [&] {
        JWReport::clearError();
        if (report != nullptr) *report = JWLayerReport();
        const int refused = checkOverlayLayers(input, input, output);
        if (refused != 0) return refused;
        if (!checkReferences(input->getLayerSpatialRefPtr(), titleOf(*input).c_str(),
                             output->getLayerSpatialRefPtr(), titleOf(*output).c_str())) {
            return -2;
        }
        if (!normalise(*input, fields)) return -1;
        if (kind != DissolveKind::Areas && fields.empty()) {
            JWReport::message("Do nothing for no fields specified!\n");
            return 0;
        }
        return accounted("dissolve", report, [&](JWLayerReport& account) {
            return runDissolve(*inputFrom(*input), *outputTo(*output), kind, fields, options,
                               account);
        });
    });
}

/// A feature with what the first of some features has in the dissolve fields, which are in order. A
/// value that its field cannot hold stays unset. Null with the last error set when a field is
/// missing on either side.
std::unique_ptr<JWFeature> valuesOf(const JWFeature& first, const std::vector<int>& fields,
                                    JWFields& schema) {
    if (static_cast<int>(fields.size()) > schema.getFieldCount()) {
        invalidArgument(std::to_string(fields.size()) + " dissolve fields do not fit into " +
                        std::to_string(schema.getFieldCount()) + " result fields");
        return nullptr;
    }
    auto values = std::make_unique<JWFeature>(&schema);
    for (std::size_t k = 0; k < fields.size(); ++k) {
        if (fields[k] < 0 || fields[k] >= first.getFieldCount()) {
            invalidArgument("there is no field " + std::to_string(fields[k]) +
                            " to dissolve by, of " + std::to_string(first.getFieldCount()) +
                            " counted from 0");
            return nullptr;
        }
        if (!values->copyFieldFrom(static_cast<int>(k), first, fields[k])) {
            JWReport::setError(
                JWErrorFeatureRejected,
                "the result cannot hold the value of field " + std::to_string(fields[k]),
                first.getFID64());
        }
    }
    return values;
}

/// The fixed signatures.
int dissolve(JWFeatureLayer* input, JWFeatureLayer* output, DissolveKind kind,
             std::vector<int>&& fields, int fieldCount, const JWDissolveOptions& options) {
    JWReport::clearError();
    if (!takeFields(input, fields, fieldCount)) return -1;
    return dissolve(input, output, kind, std::move(fields), options, nullptr);
}

JWDissolveOptions makeOptions(bool multipart, double tolerance, int blockSize, int threads) {
    JWDissolveOptions options;
    options.multipart = multipart;
    options.tolerance = tolerance;
    options.blockSize = blockSize;
    options.threads = threads;
    return options;
}

/// Puts the parts of both into a new multi-geometry; null when one is of another kind.
template <class Multi, class Single>
Multi* gatherBoth(const char* function, const JWGeometry* a, const JWGeometry* b) {
    if (a == nullptr && b == nullptr) return nullptr;
    return guarded(function, static_cast<Multi*>(nullptr), [&]() -> Multi* {
        auto all = std::make_unique<Multi>();
        for (const JWGeometry* geometry : {a, b}) {
            if (geometry == nullptr) continue;
            if (!appendParts<Multi, Single>(*geometry, *all)) return nullptr;
        }
        all->updateEnvelop();
        return all.release();
    });
}

}  // namespace

int JWGeometryDissolve::dissolvePolygonLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                             const std::vector<int>& fieldIndexes,
                                             const JWDissolveOptions& options,
                                             JWLayerReport* report) {
    return dissolve(input, output, DissolveKind::Areas, fieldIndexes, options, report);
}

int JWGeometryDissolve::dissolvePolygonLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                             std::vector<int> fieldIndexes, int fieldCount,
                                             bool multipart, double tolerance, int blockSize) {
    return dissolve(input, output, DissolveKind::Areas, std::move(fieldIndexes), fieldCount,
                    makeOptions(multipart, tolerance, blockSize, 1));
}

int JWGeometryDissolve::dissolvePolygonLayer_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                std::vector<int> fieldIndexes, int fieldCount,
                                                bool multipart, double tolerance, int blockSize) {
    return dissolve(input, output, DissolveKind::Areas, std::move(fieldIndexes), fieldCount,
                    makeOptions(multipart, tolerance, blockSize, fixedTeamSize));
}

int JWGeometryDissolve::dissolvePolygonLayer_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                                 std::vector<int> fieldIndexes, int fieldCount,
                                                 bool multipart, double tolerance) {
    return dissolvePolygonLayer(input, output, std::move(fieldIndexes), fieldCount, multipart,
                                tolerance, 0);
}

int JWGeometryDissolve::dissolvePolygonsWithSameAttributes(std::vector<JWFeature*> features,
                                                           int featureCount, JWFields& outputFields,
                                                           std::vector<int> fieldIndexes,
                                                           int fieldCount,
                                                           std::vector<JWFeature*>& out,
                                                           bool multipart, double tolerance) {
    return guarded("dissolvePolygonsWithSameAttributes", 0, [&] {
        JWReport::clearError();
        if (!takeFields(nullptr, fieldIndexes, fieldCount)) return 0;
        if (featureCount < static_cast<int>(features.size())) {
            features.resize(static_cast<std::size_t>(std::max(featureCount, 0)));
        }
        features.erase(std::remove(features.begin(), features.end(), nullptr), features.end());
        if (features.size() < 2) return 0;
        std::sort(fieldIndexes.begin(), fieldIndexes.end());
        fieldIndexes.erase(std::unique(fieldIndexes.begin(), fieldIndexes.end()),
                           fieldIndexes.end());
        const std::unique_ptr<JWFeature> values =
            valuesOf(*features.front(), fieldIndexes, outputFields);
        if (!values) return 0;
        std::unique_ptr<JWGeometry> united = uniteFeatures(features, tolerance);
        if (!united) return 0;
        std::vector<std::unique_ptr<JWGeometry>> geometries;
        if (multipart) {
            geometries.push_back(std::move(united));
        } else {
            geometries = splitPolygons(std::move(united));
        }
        out.reserve(out.size() + geometries.size());
        for (std::unique_ptr<JWGeometry>& geometry : geometries) {
            auto feature = std::make_unique<JWFeature>(*values);
            feature->setGeometryDirectly(geometry.release());
            out.push_back(feature.release());
        }
        return static_cast<int>(geometries.size());
    });
}

int JWGeometryDissolve::dissolvePointLayerByAttributes(JWFeatureLayer* input,
                                                       JWFeatureLayer* output,
                                                       const std::vector<int>& fieldIndexes,
                                                       const JWDissolveOptions& options,
                                                       JWLayerReport* report) {
    return dissolve(input, output, DissolveKind::Points, fieldIndexes, options, report);
}

int JWGeometryDissolve::dissolveLineLayerByAttributes(JWFeatureLayer* input, JWFeatureLayer* output,
                                                      const std::vector<int>& fieldIndexes,
                                                      const JWDissolveOptions& options,
                                                      JWLayerReport* report) {
    return dissolve(input, output, DissolveKind::Lines, fieldIndexes, options, report);
}

int JWGeometryDissolve::dissolvePointLayerByAttributes(JWFeatureLayer* input,
                                                       JWFeatureLayer* output,
                                                       std::vector<int> fieldIndexes,
                                                       int fieldCount, int blockSize) {
    return dissolve(input, output, DissolveKind::Points, std::move(fieldIndexes), fieldCount,
                    makeOptions(true, 0, blockSize, 1));
}

int JWGeometryDissolve::dissolveLineLayerByAttributes(JWFeatureLayer* input, JWFeatureLayer* output,
                                                      std::vector<int> fieldIndexes, int fieldCount,
                                                      int blockSize) {
    return dissolve(input, output, DissolveKind::Lines, std::move(fieldIndexes), fieldCount,
                    makeOptions(true, 0, blockSize, 1));
}

int JWGeometryDissolve::lineStringDissolve(const JWLineString* line,
                                           std::vector<JWLineString*>& parts) {
    if (line == nullptr) return 0;
    return guarded("lineStringDissolve", 0, [&] {
        std::vector<std::unique_ptr<JWLineString>> made;
        for (const std::vector<JWRawPoint>& points : simpleParts(*line)) {
            made.push_back(std::make_unique<JWLineString>());
            made.back()->addPoints(points.data(), static_cast<int>(points.size()));
            made.back()->updateEnvelop();
        }
        parts.reserve(parts.size() + made.size());
        for (auto& part : made) parts.push_back(part.release());
        return static_cast<int>(made.size());
    });
}

int JWGeometryDissolve::ringDissolve(const JWRing* ring, std::vector<JWRing*>& rings) {
    if (ring == nullptr) return 0;
    return guarded("ringDissolve", 0, [&] {
        const ClippedContours contours = clipRings({viewOf(*ring, 0)}, {}, JWBooleanUnion);
        rings.reserve(rings.size() + static_cast<std::size_t>(contours.count()));
        for (int i = 0; i < contours.count(); ++i) {
            rings.push_back(std::make_unique<JWRing>(contours.ring(i)).release());
        }
        return contours.count();
    });
}

JWMultiPoint* JWGeometryDissolve::convertSingleToMulti_Point(const JWGeometry* a,
                                                             const JWGeometry* b) {
    return gatherBoth<JWMultiPoint, JWPoint>("convertSingleToMulti_Point", a, b);
}

JWMultiLineString* JWGeometryDissolve::convertSingleToMulti_LineString(const JWGeometry* a,
                                                                       const JWGeometry* b) {
    return gatherBoth<JWMultiLineString, JWLineString>("convertSingleToMulti_LineString", a, b);
}

JWMultiPolygon* JWGeometryDissolve::convertSingleToMulti_Polygon(const JWGeometry* a,
                                                                 const JWGeometry* b) {
    return gatherBoth<JWMultiPolygon, JWPolygon>("convertSingleToMulti_Polygon", a, b);
}

}  // namespace jws
