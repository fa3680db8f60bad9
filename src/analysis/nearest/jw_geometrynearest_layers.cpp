// SPDX-License-Identifier: MIT
//
// The layer operations under their names: their checks, and the search that each of them has.
#include <climits>

#include "analysis/nearest/exact_search.h"
#include "analysis/nearest/nearest_layers.h"
#include "analysis/nearest/square_search.h"
#include "foundation/api_guard.h"
#include "jw_geometrynearest.h"
#include "layers/layer_checks.h"

namespace jws {

using namespace detail;

namespace {

constexpr const char* kLengthField = "ShortestLength";

bool refuse(enumJWErrorKind kind, const std::string& text) {
    JWReport::setError(kind, text);
    return false;
}

/// The checks of the established search, which may write behind fields that are there.
bool checkLayers(const ShortestOperation& operation, const JWFeatureLayer* source,
                 const JWFeatureLayer* target, const JWFeatureLayer* output) {
    const std::string name = operation.name;
    if (source == nullptr || target == nullptr || output == nullptr)
        return refuse(JWErrorInvalidArgument, name + ": a layer is missing");
    const std::string title =
        std::string(output->getDataSourceName()) + ", layer " + output->getLayerName();
    if (output == source || output == target)
        return refuse(JWErrorInvalidArgument, title + ": is input and result at once");
    if (!output->isUpdateMode())
        return refuse(JWErrorOutputUnwritable, title + ": is not open for writing");
    for (const char* field : {operation.sourceField, operation.targetField, kLengthField}) {
        if (output->getFieldsDefnPtr()->getFieldIndex(field) >= 0)
            return refuse(JWErrorOutputExists, title + ": has a field " + field + " already");
    }
    return true;
}

bool checkOptions(const JWNearestOptions& options) {
    if (options.count >= 1 && options.maxDistance >= 0) return true;
    return refuse(JWErrorInvalidArgument,
                  "nearestFeatures: the number of features is below 1, or the largest distance is "
                  "negative or no number");
}

/// Outputs that can be read only once they are closed have no envelope before: no error of a run
/// that did all it should.
void updateEnvelopOf(JWFeatureLayer& output) {
    const JWError error = JWReport::lastError();
    output.updateEnvelop();
    if (error.kind == JWErrorNone) return JWReport::clearError();
    JWReport::setError(error.kind, error.text, error.feature);
}

bool runShortest(enumJWShortestOperation operation, JWFeatureLayer* source, JWFeatureLayer* target,
                 JWFeatureLayer* output) {
    return JWGeometryNearest::shortestFeatures(operation, source, target, output, 1, nullptr) >= 0;
}

}  // namespace

int JWGeometryNearest::shortestFeatures(enumJWShortestOperation operation, JWFeatureLayer* source,
                                        JWFeatureLayer* target, JWFeatureLayer* output, int threads,
                                        JWLayerReport* report, int blockSize) {
    JWReport::clearError();
    if (report != nullptr) *report = JWLayerReport();
    const ShortestOperation* row = findShortestOperation(operation);
    if (row == nullptr) {
        JWReport::setError(JWErrorInvalidArgument, "shortestFeatures: no such operation");
        return -1;
    }
    if (!guarded(row->name, false, [&] { return checkLayers(*row, source, target, output); }))
        return -1;
    const int written = accounted(row->name, report, [&](JWLayerReport& account) {
        const std::unique_ptr<FeatureInput> from = inputFrom(*source), to = inputFrom(*target);
        const std::unique_ptr<FeatureOutput> result = outputTo(*output);
        const std::unique_ptr<NearestMethod> method = squareSearch(operation);
        NearestJob job{*from,
                       *to,
                       *result,
                       *method,
                       {row->sourceField, row->targetField, kLengthField},
                       output->getFieldsDefnPtr()->getFieldCount(),
                       threads,
                       blockSize};
        return runNearest(job, account);
    });
    if (written >= 0) updateEnvelopOf(*output);
    return written;
}

bool JWGeometryNearest::shortestPointsToPoints(JWFeatureLayer* source, JWFeatureLayer* target,
                                               JWFeatureLayer* output) {
    return runShortest(JWShortestPointsToPoints, source, target, output);
}
bool JWGeometryNearest::shortestPointsToLines(JWFeatureLayer* source, JWFeatureLayer* target,
                                              JWFeatureLayer* output) {
    return runShortest(JWShortestPointsToLines, source, target, output);
}
bool JWGeometryNearest::shortestPointsToRings(JWFeatureLayer* source, JWFeatureLayer* target,
                                              JWFeatureLayer* output) {
    return runShortest(JWShortestPointsToRings, source, target, output);
}
bool JWGeometryNearest::shortestPointsToPolygons(JWFeatureLayer* source, JWFeatureLayer* target,
                                                 JWFeatureLayer* output) {
    return runShortest(JWShortestPointsToPolygons, source, target, output);
}
bool JWGeometryNearest::shortestLinesToPoints(JWFeatureLayer* source, JWFeatureLayer* target,
                                              JWFeatureLayer* output) {
    return runShortest(JWShortestLinesToPoints, source, target, output);
}
bool JWGeometryNearest::shortestLinesToLines(JWFeatureLayer* source, JWFeatureLayer* target,
                                             JWFeatureLayer* output) {
    return runShortest(JWShortestLinesToLines, source, target, output);
}
bool JWGeometryNearest::shortestLinesToRings(JWFeatureLayer* source, JWFeatureLayer* target,
                                             JWFeatureLayer* output) {
    return runShortest(JWShortestLinesToRings, source, target, output);
}
bool JWGeometryNearest::shortestLinesToPolygons(JWFeatureLayer* source, JWFeatureLayer* target,
                                                JWFeatureLayer* output) {
    return runShortest(JWShortestLinesToPolygons, source, target, output);
}

int JWGeometryNearest::nearestFeatures(const JWFeatureClass* source, const JWFeatureClass* target,
                                       const JWNearestOptions& options,
                                       std::vector<JWNearestPair>& pairs) {
    return guarded("nearestFeatures", -1, [&] {
        JWReport::clearError();
        if (source == nullptr || target == nullptr) {
            JWReport::setError(JWErrorInvalidArgument, "nearestFeatures: a class is missing");
            return -1;
        }
        if (!checkOptions(options)) return -1;
        const std::size_t before = pairs.size();
        findNearestPairs(*source, *target, *exactSearch(options), options.threads, pairs);
        return static_cast<int>(std::min<std::size_t>(pairs.size() - before, INT_MAX));
    });
}

int JWGeometryNearest::nearestFeatures(JWFeatureLayer* source, JWFeatureLayer* target,
                                       JWFeatureLayer* output, const JWNearestOptions& options,
                                       JWLayerReport* report) {
    return accountedLayers(
        "nearestFeatures", source, target, output, report, [&](JWLayerReport& account) {
            if (!checkOptions(options)) throw LayerFailure();
            const std::unique_ptr<FeatureInput> from = inputFrom(*source), to = inputFrom(*target);
            const std::unique_ptr<FeatureOutput> result = outputTo(*output);
            const std::unique_ptr<NearestMethod> method = exactSearch(options);
            NearestJob job{*from,
                           *to,
                           *result,
                           *method,
                           {"source_fid", "target_fid", "distance", true},
                           0,
                           options.threads,
                           options.blockSize};
            return runNearest(job, account);
        });
}

}  // namespace jws
