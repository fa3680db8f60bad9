// SPDX-License-Identifier: MIT
#include "layers/layer_checks.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "jw_report.h"

namespace jws::detail {
namespace {

int fail(int code, enumJWErrorKind kind, const std::string& text) {
    JWReport::setError(kind, text);
    return code;
}

std::string describe(const JWSpatialReference* reference) {
    if (reference == nullptr || reference->isEmpty()) return "none";
    char* text = reference->describe();
    const std::string description = text != nullptr ? text : "unnamed";
    JWSpatialReference::freeText(text);
    return description;
}

}  // namespace

std::string titleOf(const JWFeatureLayer& layer) {
    return std::string(layer.getDataSourceName()) + ", layer " + layer.getLayerName();
}

bool checkReferences(const JWSpatialReference* a, const char* nameA, const JWSpatialReference* b,
                     const char* nameB) {
    if (JWSpatialReference::areSame(a, b)) return true;
    fail(0, JWErrorReferencesDiffer,
         std::string("the spatial references differ: ") + nameA + " has " + describe(a) + ", " +
             nameB + " has " + describe(b));
    return false;
}

int checkOverlayLayers(const JWFeatureLayer* a, const JWFeatureLayer* b,
                       const JWFeatureLayer* output) {
    if (a == nullptr || b == nullptr || output == nullptr) {
        const char* which = a == nullptr ? "input" : b == nullptr ? "overlay" : "result";
        return fail(-1, JWErrorInvalidArgument, std::string("the ") + which + " layer is missing");
    }
    if (output->isOnLayerOf(*a) || output->isOnLayerOf(*b)) {
        return fail(-1, JWErrorInvalidArgument, titleOf(*output) + ": is input and result at once");
    }
    if (!output->isUpdateMode()) {
        return fail(-1, JWErrorOutputUnwritable, titleOf(*output) + ": is not open for writing");
    }
    if (output->getFieldsDefnPtr()->getFieldCount() > 0) {
        return fail(-3, JWErrorOutputExists,
                    titleOf(*output) + ": the result layer has fields already");
    }
    if (!checkReferences(a->getLayerSpatialRefPtr(), titleOf(*a).c_str(),
                         b->getLayerSpatialRefPtr(), titleOf(*b).c_str())) {
        return -2;
    }
    return 0;
}

void reportRejected(const std::vector<JWRejectedFeature>& rejected) {
    if (rejected.empty()) return JWReport::clearError();
    const JWRejectedFeature& first = rejected.front();
    std::string text = first.source;
    if (!first.layer.empty()) text += (text.empty() ? "layer " : ", layer ") + first.layer;
    if (first.fid >= 0) text += ", feature " + std::to_string(first.fid);
    text += ": " + first.reason;
    if (rejected.size() > 1) text += "; and " + std::to_string(rejected.size() - 1) + " more";
    JWReport::setError(JWErrorFeatureRejected, text, first.fid);
}

void judge(JWLayerReport& report, double input) {
    constexpr double most = 1e-9;
    if (!std::isfinite(report.areaA + report.areaB) || !std::isfinite(report.residual)) {
        report.residual = 0;
        report.warning = "the areas are beyond all numbers and were not checked";
        return;
    }
    report.checked = true;
    if (report.residual <= most * input) return;
    char text[160];
    std::snprintf(text, sizeof text,
                  "the areas do not add up: %.6g square units of %.6g are missing or counted twice",
                  report.residual, input);
    report.warning = text;
}

}  // namespace jws::detail
