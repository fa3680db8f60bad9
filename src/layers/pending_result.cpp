// SPDX-License-Identifier: MIT
#include "layers/pending_result.h"

#include <iterator>

namespace jws::detail {
namespace {

constexpr std::size_t kSmall = 4096;  // bytes of a result that may lie about in both forms

/// Writes a result and accounts for it, but for refusals, which go to a list.
void write(FeatureOutput& output, PendingResult& result, const FeatureInput& input,
           std::int64_t fid, JWLayerReport& report, std::vector<JWRejectedFeature>& refusals) {
    const auto reject = [&](const std::string& reason) {
        refusals.push_back({input.source(), input.name(), fid, reason});
    };
    if (!result.lostField.empty()) {
        reject("the result cannot hold the value of field " + result.lostField);
    }
    if (output.write(result.feature, result.record)) {
        ++report.written;
        if (result.isEmpty) ++report.writtenEmpty;
        report.area += result.area;
        report.vertices += result.vertices;
        for (const std::string& lost : output.lostValues()) reject(lost + "; it is left out");
    } else if (isRefusal(JWReport::lastError().kind)) {
        reject(JWReport::lastError().text);
        report.areaRefused += result.area;
    } else {
        throw LayerFailure();
    }
    if (!result.isPreparedEarly) result.record.reset();
}

}  // namespace

bool prepareResult(PendingResult& result, const FeatureOutput& output) {
    if (result.isPreparedEarly) return false;
    result.record = output.prepare(*result.feature);
    return true;
}

std::size_t prepareEarly(PendingResult& result, const FeatureOutput* output) {
    const std::size_t bytes = result.feature->memorySize();
    if (output == nullptr || bytes > kSmall) return bytes;
    prepareResult(result, *output);
    result.isPreparedEarly = true;
    return result.record ? 2 * bytes : bytes;
}

void writeResult(FeatureOutput& output, PendingResult& result, const FeatureInput& input,
                 std::int64_t fid, JWLayerReport& report) {
    write(output, result, input, fid, report, report.rejected);
}

void PendingResults::add(PendingResult&& result, const Growth& grew) {
    complete(grew);
    m_waiting.push_back(std::move(result));
    ++m_count;
}

void PendingResults::complete(const Growth& grew) {
    if (!m_waiting.empty()) grew(prepareEarly(m_waiting.back(), m_early));
}

std::size_t PendingResults::prepare(const FeatureOutput& output) {
    std::size_t prepared = 0;
    for (PendingResult& result : m_waiting) prepared += prepareResult(result, output) ? 1 : 0;
    return prepared;
}

void PendingResults::write(FeatureOutput& output, const FeatureInput& input, std::int64_t fid,
                           JWLayerReport& report) {
    for (PendingResult& result : m_waiting) {
        detail::write(output, result, input, fid, report, m_refusals);
    }
}

void PendingResults::reportRefusals(JWLayerReport& report) {
    report.rejected.insert(report.rejected.end(), std::make_move_iterator(m_refusals.begin()),
                           std::make_move_iterator(m_refusals.end()));
    m_refusals.clear();
}

}  // namespace jws::detail
