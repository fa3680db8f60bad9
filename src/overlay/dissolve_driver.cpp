// SPDX-License-Identifier: MIT
#include "overlay/dissolve_driver.h"

#include <string>
#include <vector>

#include "layers/layer_checks.h"
#include "overlay/dissolve_run.h"
#include "overlay/group_statistics.h"

namespace jws::detail {
void DissolveRun::fail(enumJWErrorKind kind, const std::string& text) {
    JWReport::setError(kind, text);
    throw LayerFailure();
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

void DissolveRun::run() {
    createSchema();
    m_run.transact(m_output, [this] {
        {
            const Stopwatch watch(m_report.secondsIndex);
            read();
            group();
        }
        const Stopwatch watch(m_report.secondsOverlay);
        write();
    });
}

std::int64_t runDissolve(FeatureInput& input, FeatureOutput& output, DissolveKind kind,
                         const std::vector<int>& fields, const JWDissolveOptions& options,
                         JWLayerReport& report) {
    report = JWLayerReport();
    DissolveRun(input, output, kind, fields, options, report).run();
    if (kind == DissolveKind::Areas) judge(report, report.areaA);
    return report.written;
}

}  // namespace jws::detail
