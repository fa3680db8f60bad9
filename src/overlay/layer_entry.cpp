// SPDX-License-Identifier: MIT
#include "overlay/layer_entry.h"

#include <algorithm>

#include "foundation/api_guard.h"
#include "layers/layer_checks.h"

namespace jws::detail {

const LayerOperation intersectOperation = {"intersectPolygonLayers", Attributes::OfBoth,
                                           intersectPasses};
const LayerOperation eraseOperation = {"erasePolygonLayer", Attributes::OfA, erasePasses};
const LayerOperation identityOperation = {"identityPolygonLayers", Attributes::OfBoth,
                                          identityPasses};
const LayerOperation growOperation = {"unionPolygonLayers", Attributes::OfBoth, clusterPasses,
                                      true};
const LayerOperation planarUnionOperation = {"unionPolygonLayers2", Attributes::OfBoth,
                                             planarUnionPasses};
const LayerOperation symmetricalDifferenceOperation = {
    "symmetricalDifferencePolygonLayers", Attributes::OfBoth, symmetricalDifferencePasses};
const LayerOperation updateOperation = {"updatePolygonLayer", Attributes::OfBoth, updatePasses};
const LayerOperation spatialJoinOperation = {
    "spatialJoinPolygonLayers", Attributes::OfBothCount, spatialJoinPasses, false, false, false};
const LayerOperation growWithinOperation = {"unionPolygonsInSameLayer", Attributes::OfA,
                                            clusterWithinPasses, false, true};
const LayerOperation partitionWithinOperation = {"unionPolygonsInSameLayer2", Attributes::OfBoth,
                                                 partitionPasses, false, true};
const LayerOperation overlapWithinOperation = {"intersectPolygonsInSameLayer", Attributes::OfA,
                                               overlapPasses, false, true};
const LayerOperation overlapPiecesWithinOperation = {
    "intersectPolygonsInSameLayer2", Attributes::OfBoth, overlapPiecesPasses, false, true};

namespace {

ResultSchema schemaOf(const LayerOperation& operation, FeatureInput& a, FeatureInput& b,
                      const JWOverlayOptions& options) {
    if (operation.attributes == Attributes::OfA) return ResultSchema(a);
    ResultSchema schema(a, b, options);
    if (operation.attributes == Attributes::OfBothCount) schema.addJoinCount();
    return schema;
}

std::int64_t runJob(const LayerOperation& operation, FeatureInput& a, FeatureInput& b,
                    FeatureOutput& output, const JWOverlayOptions& options, JWLayerReport& report) {
    const std::unique_ptr<FeatureInput> joined =
        operation.joinsLayers ? joinedInput(a, b) : nullptr;
    FeatureInput& first = joined ? *joined : a;
    FeatureInput& second = joined ? *joined : b;
    OverlayJob job = {first, second, output, schemaOf(operation, a, b, options),
                      operation.passes(options, first.count())};
    const std::int64_t written = runLayerOverlay(job, options, report);
    if (options.checkAreas && operation.changesAreas) {
        const bool ofBoth = joined || std::any_of(job.passes.begin(), job.passes.end(),
                                                  [](const OverlayPass& p) { return p.overB; });
        judge(report, ofBoth ? report.areaA + report.areaB : report.areaA);
    } else {
        report.residual = 0;
    }
    return written;
}

std::string titleOf(const NamedClass& features, const char* role) {
    const std::string title = std::string("feature class ") + role;
    return features.name != nullptr ? title + " (" + features.name + ")" : title;
}

/// False with the last error set when the operand is missing or the result at once.
bool checkClass(const LayerOperation& operation, const NamedClass& features, const char* role,
                const JWFeatureClass& output) {
    const char* wrong = features.features == nullptr   ? ": is missing"
                        : features.features == &output ? ": is input and result at once"
                                                       : nullptr;
    if (wrong == nullptr) return true;
    JWReport::setError(JWErrorInvalidArgument,
                       std::string(operation.name) + ": " + titleOf(features, role) + wrong);
    return false;
}

}  // namespace

int overlayLayers(const LayerOperation& operation, JWFeatureLayer* a, JWFeatureLayer* b,
                  JWFeatureLayer* output, const JWOverlayOptions& options, JWLayerReport* report) {
    return accountedLayers(operation.name, a, b, output, report, [&](JWLayerReport& account) {
        return runJob(operation, *inputFrom(*a), *inputFrom(*b), *outputTo(*output), options,
                      account);
    });
}

int overlayWithinLayer(const LayerOperation& operation, JWFeatureLayer* input,
                       JWFeatureLayer* output, const JWOverlayOptions& options,
                       JWLayerReport* report) {
    const auto body = [&](JWLayerReport& account) {
        const std::unique_ptr<FeatureInput> features = inputFrom(*input);
        return runJob(operation, *features, *features, *outputTo(*output), options, account);
    };
    return accountedLayers(operation.name, input, input, output, report, body);
}

int overlayClasses(const LayerOperation& operation, const NamedClass& a, const NamedClass& b,
                   JWFeatureClass& output, const JWOverlayOptions& options) {
    return guarded(operation.name, -1, [&] {
        JWReport::clearError();
        if (a.features != &output && b.features != &output) output = JWFeatureClass();
        if (!checkClass(operation, a, "A", output) || !checkClass(operation, b, "B", output)) {
            return -1;
        }
        if (!checkReferences(a.features->getSpatialReference(), titleOf(a, "A").c_str(),
                             b.features->getSpatialReference(), titleOf(b, "B").c_str())) {
            return -2;
        }
        output.setSpatialReference(a.features->getSpatialReference());
        const std::unique_ptr<FeatureInput> inputA =
            inputFrom(a.name, "feature class A", *a.features);
        const std::unique_ptr<FeatureInput> inputB =
            operation.withinLayer ? nullptr : inputFrom(b.name, "feature class B", *b.features);
        return accounted(operation.name, nullptr, [&](JWLayerReport& account) {
            return runJob(operation, *inputA, inputB ? *inputB : *inputA, *outputTo(output),
                          options, account);
        });
    });
}

JWFeatureClass* overlayClasses(const LayerOperation& operation, const NamedClass& a,
                               const NamedClass& b, const JWOverlayOptions& options) {
    return guarded(operation.name, static_cast<JWFeatureClass*>(nullptr), [&] {
        auto result = std::make_unique<JWFeatureClass>();
        if (overlayClasses(operation, a, b, *result, options) < 0) result.reset();
        return result.release();
    });
}

}  // namespace jws::detail
