// SPDX-License-Identifier: MIT
#include "layers/layer_run.h"

namespace jws::detail {

void LayerRun::stop() {
    m_stopped = true;
    JWReport::setError(JWErrorCancelled, "the run was stopped; nothing was written");
    throw LayerFailure();
}

void LayerRun::countRead(const FeatureInput& input, const JWFeature& feature, GeometryCheck check,
                         unsigned kinds) {
    ++m_report.readA;
    if (check == GeometryCheck::Empty) ++m_report.emptyA;
    const std::string reason = reasonOf(check, feature, kinds);
    if (!reason.empty()) reject(input, feature.getFID64(), reason);
}

void LayerRun::reject(const FeatureInput& input, std::int64_t fid, const std::string& reason) {
    m_report.rejected.push_back({input.source(), input.name(), fid, reason});
}

void LayerRun::forgetResults() {
    m_report.written = m_report.writtenEmpty = m_report.vertices = 0;
    m_report.area = m_report.areaDropped = m_report.areaRefused = 0;
    m_report.areaOverlap = m_report.residual = 0;
}

}  // namespace jws::detail
