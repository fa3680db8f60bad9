// SPDX-License-Identifier: MIT
//
// The layer operations as the world calls them. Each has three forms over one row of the
// operations' table: plain, on a team of eight, and with all settings open.
#include "foundation/api_guard.h"
#include "foundation/parallel.h"
#include "jw_geometryoverlay2.h"
#include "layers/block_filter.h"
#include "overlay/layer_entry.h"

namespace jws {

using namespace detail;

namespace {

constexpr int onCaller = 1;

/// The settings that fixed signatures have.
JWOverlayOptions settings(bool multipart, int attributeMode, double tolerance, int blockSize,
                          int threads) {
    JWOverlayOptions options;
    options.multipart = multipart;
    options.attributeMode = attributeMode;
    options.tolerance = tolerance;
    options.blockSize = blockSize;
    options.threads = threads;
    return options;
}

JWOverlayOptions updateSettings(bool keepBorders, bool multipart, double tolerance, int blockSize,
                                int threads) {
    JWOverlayOptions options = settings(multipart, 0, tolerance, blockSize, threads);
    options.keepBorders = keepBorders;
    return options;
}

JWOverlayOptions joinSettings(bool keepUnmatched, bool rowPerPair, int attributeMode,
                              double tolerance, int blockSize, int threads) {
    JWOverlayOptions options = settings(true, attributeMode, tolerance, blockSize, threads);
    options.keepUnmatched = keepUnmatched;
    options.rowPerPair = rowPerPair;
    return options;
}

}  // namespace

int JWGeometryOverlay2::intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output,
                                               const JWOverlayOptions& options,
                                               JWLayerReport* report) {
    return overlayLayers(intersectOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, int attributeMode,
                                               double tolerance, int blockSize) {
    return overlayLayers(intersectOperation, a, b, output,
                         settings(true, attributeMode, tolerance, blockSize, onCaller), nullptr);
}

int JWGeometryOverlay2::intersectPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                  JWFeatureLayer* output, int attributeMode,
                                                  double tolerance, int blockSize) {
    return overlayLayers(intersectOperation, a, b, output,
                         settings(true, attributeMode, tolerance, blockSize, fixedTeamSize),
                         nullptr);
}

int JWGeometryOverlay2::erasePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b,
                                          JWFeatureLayer* output, const JWOverlayOptions& options,
                                          JWLayerReport* report) {
    return overlayLayers(eraseOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::erasePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b,
                                          JWFeatureLayer* output, bool multipart, double tolerance,
                                          int blockSize) {
    return overlayLayers(eraseOperation, a, b, output,
                         settings(multipart, 0, tolerance, blockSize, onCaller), nullptr);
}

int JWGeometryOverlay2::erasePolygonLayer_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                             JWFeatureLayer* output, bool multipart,
                                             double tolerance, int blockSize) {
    return overlayLayers(eraseOperation, a, b, output,
                         settings(multipart, 0, tolerance, blockSize, fixedTeamSize), nullptr);
}

int JWGeometryOverlay2::unionPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                           JWFeatureLayer* output, const JWOverlayOptions& options,
                                           JWLayerReport* report) {
    return overlayLayers(growOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::unionPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                           JWFeatureLayer* output, bool multipart, double tolerance,
                                           int blockSize) {
    return overlayLayers(growOperation, a, b, output,
                         settings(multipart, 0, tolerance, blockSize, onCaller), nullptr);
}

int JWGeometryOverlay2::unionPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                              JWFeatureLayer* output, bool multipart,
                                              double tolerance, int blockSize) {
    return overlayLayers(growOperation, a, b, output,
                         settings(multipart, 0, tolerance, blockSize, fixedTeamSize), nullptr);
}

int JWGeometryOverlay2::unionPolygonLayers2(JWFeatureLayer* a, JWFeatureLayer* b,
                                            JWFeatureLayer* output, const JWOverlayOptions& options,
                                            JWLayerReport* report) {
    return overlayLayers(planarUnionOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::unionPolygonLayers2(JWFeatureLayer* a, JWFeatureLayer* b,
                                            JWFeatureLayer* output, bool multipart,
                                            int attributeMode, double tolerance, int blockSize) {
    return overlayLayers(planarUnionOperation, a, b, output,
                         settings(multipart, attributeMode, tolerance, blockSize, onCaller),
                         nullptr);
}

int JWGeometryOverlay2::unionPolygonLayers2_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, bool multipart,
                                               int attributeMode, double tolerance, int blockSize) {
    return overlayLayers(planarUnionOperation, a, b, output,
                         settings(multipart, attributeMode, tolerance, blockSize, fixedTeamSize),
                         nullptr);
}

int JWGeometryOverlay2::identityPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                              JWFeatureLayer* output,
                                              const JWOverlayOptions& options,
                                              JWLayerReport* report) {
    return overlayLayers(identityOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::identityPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                              JWFeatureLayer* output, bool multipart,
                                              int attributeMode, double tolerance, int blockSize) {
    return overlayLayers(identityOperation, a, b, output,
                         settings(multipart, attributeMode, tolerance, blockSize, onCaller),
                         nullptr);
}

int JWGeometryOverlay2::identityPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                 JWFeatureLayer* output, bool multipart,
                                                 int attributeMode, double tolerance,
                                                 int blockSize) {
    return overlayLayers(identityOperation, a, b, output,
                         settings(multipart, attributeMode, tolerance, blockSize, fixedTeamSize),
                         nullptr);
}

int JWGeometryOverlay2::symmetricalDifferencePolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                                           JWFeatureLayer* output,
                                                           const JWOverlayOptions& options,
                                                           JWLayerReport* report) {
    return overlayLayers(symmetricalDifferenceOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::symmetricalDifferencePolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                                           JWFeatureLayer* output, bool multipart,
                                                           int attributeMode, double tolerance,
                                                           int blockSize) {
    return overlayLayers(symmetricalDifferenceOperation, a, b, output,
                         settings(multipart, attributeMode, tolerance, blockSize, onCaller),
                         nullptr);
}

int JWGeometryOverlay2::symmetricalDifferencePolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                              JWFeatureLayer* output,
                                                              bool multipart, int attributeMode,
                                                              double tolerance, int blockSize) {
    return overlayLayers(symmetricalDifferenceOperation, a, b, output,
                         settings(multipart, attributeMode, tolerance, blockSize, fixedTeamSize),
                         nullptr);
}

int JWGeometryOverlay2::updatePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b,
                                           JWFeatureLayer* output, const JWOverlayOptions& options,
                                           JWLayerReport* report) {
    return overlayLayers(updateOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::updatePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b,
                                           JWFeatureLayer* output, bool keepBorders,
                                           double tolerance, int blockSize, bool multipart) {
    return overlayLayers(updateOperation, a, b, output,
                         updateSettings(keepBorders, multipart, tolerance, blockSize, onCaller),
                         nullptr);
}

int JWGeometryOverlay2::updatePolygonLayer_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                              JWFeatureLayer* output, bool keepBorders,
                                              double tolerance, int blockSize, bool multipart) {
    return overlayLayers(
        updateOperation, a, b, output,
        updateSettings(keepBorders, multipart, tolerance, blockSize, fixedTeamSize), nullptr);
}

int JWGeometryOverlay2::spatialJoinPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                                 JWFeatureLayer* output,
                                                 const JWOverlayOptions& options,
                                                 JWLayerReport* report) {
    return overlayLayers(spatialJoinOperation, a, b, output, options, report);
}

int JWGeometryOverlay2::spatialJoinPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                                 JWFeatureLayer* output, bool keepUnmatched,
                                                 bool rowPerPair, int attributeMode,
                                                 double tolerance, int blockSize) {
    return overlayLayers(
        spatialJoinOperation, a, b, output,
        joinSettings(keepUnmatched, rowPerPair, attributeMode, tolerance, blockSize, onCaller),
        nullptr);
}

int JWGeometryOverlay2::spatialJoinPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                    JWFeatureLayer* output, bool keepUnmatched,
                                                    bool rowPerPair, int attributeMode,
                                                    double tolerance, int blockSize) {
    return overlayLayers(
        spatialJoinOperation, a, b, output,
        joinSettings(keepUnmatched, rowPerPair, attributeMode, tolerance, blockSize, fixedTeamSize),
        nullptr);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                                 const JWOverlayOptions& options,
                                                 JWLayerReport* report) {
    return overlayWithinLayer(growWithinOperation, input, output, options, report);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                                 double tolerance, int blockSize) {
    return overlayWithinLayer(growWithinOperation, input, output,
                              settings(true, 0, tolerance, blockSize, onCaller), nullptr);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                    double tolerance, int blockSize) {
    return overlayWithinLayer(growWithinOperation, input, output,
                              settings(true, 0, tolerance, blockSize, fixedTeamSize), nullptr);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                                  const JWOverlayOptions& options,
                                                  JWLayerReport* report) {
    return overlayWithinLayer(partitionWithinOperation, input, output, options, report);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                                  int attributeMode, double tolerance,
                                                  int blockSize) {
    return overlayWithinLayer(partitionWithinOperation, input, output,
                              settings(true, attributeMode, tolerance, blockSize, onCaller),
                              nullptr);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer2_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                     int attributeMode, double tolerance,
                                                     int blockSize) {
    return overlayWithinLayer(partitionWithinOperation, input, output,
                              settings(true, attributeMode, tolerance, blockSize, fixedTeamSize),
                              nullptr);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                                     const JWOverlayOptions& options,
                                                     JWLayerReport* report) {
    return overlayWithinLayer(overlapWithinOperation, input, output, options, report);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                                     double tolerance, int blockSize) {
    return overlayWithinLayer(overlapWithinOperation, input, output,
                              settings(true, 0, tolerance, blockSize, onCaller), nullptr);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer_mp(JWFeatureLayer* input,
                                                        JWFeatureLayer* output, double tolerance,
                                                        int blockSize) {
    return overlayWithinLayer(overlapWithinOperation, input, output,
                              settings(true, 0, tolerance, blockSize, fixedTeamSize), nullptr);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                                      const JWOverlayOptions& options,
                                                      JWLayerReport* report) {
    return overlayWithinLayer(overlapPiecesWithinOperation, input, output, options, report);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                                      int attributeMode, double tolerance,
                                                      int blockSize) {
    return overlayWithinLayer(overlapPiecesWithinOperation, input, output,
                              settings(true, attributeMode, tolerance, blockSize, onCaller),
                              nullptr);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer2_mp(JWFeatureLayer* input,
                                                         JWFeatureLayer* output, int attributeMode,
                                                         double tolerance, int blockSize) {
    return overlayWithinLayer(overlapPiecesWithinOperation, input, output,
                              settings(true, attributeMode, tolerance, blockSize, fixedTeamSize),
                              nullptr);
}

int JWGeometryOverlay2::getFeaturesByFIDorWHERE(JWFeatureLayer* layer, const char* where,
                                                int firstFid, int lastFid, JWFeatureClass& out) {
    return guarded("getFeaturesByFIDorWHERE", -1, [&] {
        JWReport::clearError();
        if (layer == nullptr) {
            JWReport::setError(JWErrorInvalidArgument,
                               "getFeaturesByFIDorWHERE: the layer is missing");
            return -1;
        }
        return readFeatures(*layer, where, firstFid, lastFid, out);
    });
}

// --- Feature classes -----------------------------------------------------------------------------

JWFeatureClass* JWGeometryOverlay2::polygonsIntersectPolygons(const char* nameA, JWFeatureClass* a,
                                                              const char* nameB, JWFeatureClass* b,
                                                              int attributeMode, double tolerance) {
    return overlayClasses(intersectOperation, {nameA, a}, {nameB, b},
                          settings(true, attributeMode, tolerance, 0, onCaller));
}

JWFeatureClass* JWGeometryOverlay2::polygonsErasePolygons(JWFeatureClass* a, JWFeatureClass* b,
                                                          bool multipart, double tolerance) {
    return overlayClasses(eraseOperation, {nullptr, a}, {nullptr, b},
                          settings(multipart, 0, tolerance, 0, onCaller));
}

JWFeatureClass* JWGeometryOverlay2::polygonsErasePolygons_mp(JWFeatureClass* a, JWFeatureClass* b,
                                                             bool multipart, double tolerance) {
    return overlayClasses(eraseOperation, {nullptr, a}, {nullptr, b},
                          settings(multipart, 0, tolerance, 0, fixedTeamSize));
}

JWFeatureClass* JWGeometryOverlay2::polygonsIdentityPolygons(const char* nameA, JWFeatureClass* a,
                                                             const char* nameB, JWFeatureClass* b,
                                                             bool multipart, int attributeMode,
                                                             double tolerance) {
    return overlayClasses(identityOperation, {nameA, a}, {nameB, b},
                          settings(multipart, attributeMode, tolerance, 0, onCaller));
}

JWFeatureClass* JWGeometryOverlay2::unionPolygons(const char* name, JWFeatureClass* features,
                                                  int attributeMode, double tolerance) {
    return overlayClasses(partitionWithinOperation, {name, features}, {name, features},
                          settings(true, attributeMode, tolerance, 0, onCaller));
}

int JWGeometryOverlay2::symmetricalDifferencePolygons(JWFeatureClass* a, JWFeatureClass* b,
                                                      JWFeatureClass& result, bool multipart,
                                                      double tolerance) {
    return overlayClasses(symmetricalDifferenceOperation, {nullptr, a}, {nullptr, b}, result,
                          settings(multipart, 0, tolerance, 0, onCaller));
}

}  // namespace jws
