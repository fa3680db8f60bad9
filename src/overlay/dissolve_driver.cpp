// SPDX-License-Identifier: MIT
#include "overlay/dissolve_driver.h"

#include <chrono>
#include <string>
#include <vector>

#include "layers/layer_checks.h"
#include "overlay/dissolve_run.h"
#include "overlay/group_statistics.h"

namespace jws::detail {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace

void DissolveRun::fail(enumJWErrorKind kind, const std::string& text) {
    JWReport::setError(kind, text);
    throw LayerFailure();
}

void DissolveRun::stop() {
    m_stopped = true;
    fail(JWErrorCancelled, "the run was stopped; nothing was written");
}

void DissolveRun::createSchema() {
    std::vector<JWField> fields;
    const JWFields none;
    const JWFields& source = m_input.fields() != nullptr ? *m_input.fields() : none;
    for (const int field : m_fields) fields.push_back(*source.getFieldPtr(field));
    for (const JWDissolveStatistic& statistic : m_options.statistics) {
        const std::string wrong = checkStatistic(statistic, source);
        if (!wrong.empty()) {
            fail(JWErrorInvalidArgument,
                 std::string(m_input.source()) + ", layer " + m_input.name() + ": " + wrong);
        }
        fields.push_back(statisticField(statistic, source));
    }
    if (!m_options.areaField.empty() && m_kind == DissolveKind::Areas) {
        fields.emplace_back(m_options.areaField.c_str(), JWFieldReal);
    }
    for (const JWField& field : fields) m_names.emplace_back(field.getFieldName());
    switch (m_kind) {
        case DissolveKind::Areas:
            m_output.setGeometryType(m_options.multipart ? JWWKBMultiPolygon : JWWKBPolygon);
            break;
        case DissolveKind::Points:
            m_output.setGeometryType(JWWKBMultiPoint);
            break;
        case DissolveKind::Lines:
            m_output.setGeometryType(JWWKBMultiLineString);
            break;
    }
    m_schema = m_output.createFields(fields);
}

std::int64_t runDissolve(FeatureInput& input, FeatureOutput& output, DissolveKind kind,
                         const std::vector<int>& fields, const JWDissolveOptions& options,
                         JWLayerReport& report) {
    report = JWLayerReport();
    DissolveRun run(input, output, kind, fields, options, report);
    run.createSchema();
    output.begin();
    try {
        const Clock::time_point readStart = Clock::now();
        run.read();
        run.group();
        report.secondsIndex = secondsSince(readStart);
        const Clock::time_point uniteStart = Clock::now();
        run.write();
        output.commit();
        report.secondsOverlay = secondsSince(uniteStart);
    } catch (...) {
        output.rollback();
        report.written = 0;
        report.area = report.areaOverlap = report.areaDropped = report.residual = 0;
        report.cancelled = run.isStopped();
        throw;
    }
    if (kind == DissolveKind::Areas) judge(report);
    return report.written;
}

}  // namespace jws::detail
