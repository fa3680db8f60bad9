// SPDX-License-Identifier: MIT
//
// Intersection of two polygon layers: for every pair of a feature of A and a feature of B whose
// interiors meet, one result feature, with the attributes that the mode asks for. One body over the
// layer driver serves the plain, the threaded and the in-memory forms.
#include <algorithm>
#include <climits>

#include "boolean/ring_clip.h"
#include "foundation/api_guard.h"
#include "foundation/parallel.h"
#include "jw_geometryoverlay2.h"
#include "overlay/block_filter.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_checks.h"
#include "overlay/layer_driver.h"

namespace jws {

using namespace detail;

namespace {

FeatureOperation intersection(double tolerance) {
    return [tolerance](const JWFeature& a, Candidates& candidates, Emitter& emitter) {
        while (const JWFeature* b = candidates.next()) {
            try {
                std::unique_ptr<JWGeometry> piece =
                    intersect(*a.getGeometryPtr(), *b->getGeometryPtr(), tolerance);
                if (piece) emitter.emit(std::move(piece), &a, b);
            } catch (const ClipFailure& failure) {
                emitter.reject(*b, failure.what());
            }
        }
    };
}

/// The last error after a run to the end: the first feature that is missing from the result, if
/// there is one. It stands in for the report where the caller has none.
void reportRejected(const std::vector<JWRejectedFeature>& rejected) {
    if (rejected.empty()) return JWReport::clearError();
    const JWRejectedFeature& first = rejected.front();
    std::string text = (first.source.empty() ? "" : first.source + ", ") + "layer " + first.layer +
                       ", feature " + std::to_string(first.fid) + ": " + first.reason;
    if (rejected.size() > 1) text += "; and " + std::to_string(rejected.size() - 1) + " more";
    JWReport::setError(JWErrorFeatureRejected, text, first.fid);
}

/// Runs the intersection; returns the number of features written or −1 with the last error set.
int runIntersection(FeatureInput& a, FeatureInput& b, FeatureOutput& output,
                    const JWOverlayOptions& options, JWLayerReport* report) {
    JWLayerReport account;
    int result = -1;
    try {
        const std::int64_t written =
            runLayerOverlay(a, b, output, intersection(options.tolerance), options, account);
        result = static_cast<int>(std::min<std::int64_t>(written, INT_MAX));
        reportRejected(account.rejected);
    } catch (const LayerFailure& failure) {
        JWReport::setError(failure.error.kind, failure.error.text, failure.error.feature);
    } catch (...) {
        keepCurrentException("intersectPolygonLayers");
    }
    if (report != nullptr) *report = std::move(account);
    return result;
}

JWOverlayOptions makeOptions(int attributeMode, double tolerance, int blockSize, int threads) {
    JWOverlayOptions options;
    options.attributeMode = attributeMode;
    options.tolerance = tolerance;
    options.blockSize = blockSize;
    options.threads = threads;
    return options;
}

}  // namespace

int JWGeometryOverlay2::intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output,
                                               const JWOverlayOptions& options,
                                               JWLayerReport* report) {
    return guarded("intersectPolygonLayers", -1, [&] {
        JWReport::clearError();
        if (report != nullptr) *report = JWLayerReport();
        const int refused = checkOverlayLayers(a, b, output);
        if (refused != 0) return refused;
        return runIntersection(*inputFrom(*a), *inputFrom(*b), *outputTo(*output), options, report);
    });
}

int JWGeometryOverlay2::intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, int attributeMode,
                                               double tolerance, int blockSize) {
    return intersectPolygonLayers(a, b, output, makeOptions(attributeMode, tolerance, blockSize, 1),
                                  nullptr);
}

int JWGeometryOverlay2::intersectPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                  JWFeatureLayer* output, int attributeMode,
                                                  double tolerance, int blockSize) {
    return intersectPolygonLayers(
        a, b, output, makeOptions(attributeMode, tolerance, blockSize, fixedTeamSize), nullptr);
}

JWFeatureClass* JWGeometryOverlay2::polygonsIntersectPolygons(const char* nameA, JWFeatureClass* a,
                                                              const char* nameB, JWFeatureClass* b,
                                                              int attributeMode, double tolerance) {
    return guarded("polygonsIntersectPolygons", static_cast<JWFeatureClass*>(nullptr), [&] {
        JWReport::clearError();
        auto result = std::make_unique<JWFeatureClass>();
        if (a == nullptr || b == nullptr) {
            JWReport::setError(JWErrorInvalidArgument, "a feature class of the overlay is missing");
            result.reset();
        } else if (!checkReferences(a->getSpatialReference(), nameA ? nameA : "A",
                                    b->getSpatialReference(), nameB ? nameB : "B")) {
            result.reset();
        } else {
            result->setSpatialReference(a->getSpatialReference());
            const JWOverlayOptions options = makeOptions(attributeMode, tolerance, 0, 1);
            if (runIntersection(*inputFrom(nameA, *a), *inputFrom(nameB, *b), *outputTo(*result),
                                options, nullptr) < 0) {
                result.reset();
            }
        }
        return result.release();
    });
}

int JWGeometryOverlay2::getFeaturesByFIDorWHERE(JWFeatureLayer* layer, const char* where,
                                                int firstFid, int lastFid, JWFeatureClass& out) {
    return guarded("getFeaturesByFIDorWHERE", -1, [&] {
        if (layer == nullptr) return -1;
        return readFeatures(*layer, where, firstFid, lastFid, out);
    });
}

// --- Compatibility names -------------------------------------------------------------------------

int JWGeometryOverlay2::intersectPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                   JWFeatureLayer* output, int attributeMode,
                                                   double tolerance, int blockSize) {
    return intersectPolygonLayers_mp(a, b, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonLayers_old_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                      JWFeatureLayer* output, int attributeMode,
                                                      double tolerance, int blockSize) {
    return intersectPolygonLayers_mp(a, b, output, attributeMode, tolerance, blockSize);
}

}  // namespace jws
