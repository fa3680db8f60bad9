// SPDX-License-Identifier: MIT
#include "layers/pending_result.h"

namespace jws::detail {

std::size_t prepareResults(const FeatureOutput& output, std::vector<PendingResult>& results) {
    for (PendingResult& result : results) result.record = output.prepare(*result.feature);
    return results.size();
}

void writeResult(FeatureOutput& output, PendingResult& result, const FeatureInput& input,
                 std::int64_t fid, JWLayerReport& report) {
    const auto reject = [&](const std::string& reason) {
        report.rejected.push_back({input.source(), input.name(), fid, reason});
    };
    if (!result.lostField.empty()) {
        reject("the result cannot hold the value of field " + result.lostField);
    }
    if (output.write(result.feature, result.record)) {
        ++report.written;
        if (result.isEmpty) ++report.writtenEmpty;
        report.area += result.area;
        report.vertices += result.vertices;
    } else if (isRefusal(JWReport::lastError().kind)) {
        reject(JWReport::lastError().text);
    } else {
        throw LayerFailure();
    }
    result.record.reset();
}

}  // namespace jws::detail
