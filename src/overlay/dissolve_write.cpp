// SPDX-License-Identifier: MIT
//
// The last step of a dissolve: groups are united by the team, a window of them at a time, and the
// results written in order.
#include <algorithm>
#include <cmath>

#include "foundation/pulse.h"
#include "layers/geometry_check.h"
#include "overlay/dissolve_run.h"
#include "overlay/group_statistics.h"
#include "overlay/multi_parts.h"

namespace jws::detail {
namespace {

constexpr std::size_t kWindow = 32768;  // features whose groups are written together

}  // namespace

void DissolveRun::write() {
    m_done = m_total;
    for (std::size_t first = 0, end = 0; first < m_groups.count(); first = end) {
        std::size_t members = 0;
        for (end = first; end < m_groups.count() && members < kWindow; ++end) {
            members += static_cast<std::size_t>(m_groups.end(end) - m_groups.begin(end));
        }
        std::vector<GroupResult> results(end - first);
        if (!uniteWindow(first, end, results)) stop();
        for (std::size_t i = 0; i < results.size(); ++i) {
            writeResult(results[i]);
            if (i % 256 == 0) beat();
        }
        m_done += static_cast<std::int64_t>(members);
        beat();
    }
}

bool DissolveRun::uniteWindow(std::size_t first, std::size_t end,
                              std::vector<GroupResult>& results) {
    if (m_kind == DissolveKind::Areas) {
        std::vector<std::pair<const int*, const int*>> groups;
        for (std::size_t g = first; g < end; ++g) {
            groups.emplace_back(m_groups.begin(g), m_groups.end(g));
        }
        m_unions.prepare(m_team, std::move(groups), [this] { beat(); });
    }
    const auto count = static_cast<std::int64_t>(end - first);
    const std::int64_t chunk =
        std::clamp<std::int64_t>(count / (std::int64_t{8} * m_team.size()), 1, 64);
    return parallelChunks(m_team, count, chunk, [&](std::int64_t from, std::int64_t to) {
        const Pulse pulse([this] { beat(); });
        for (auto i = static_cast<std::size_t>(from); i < static_cast<std::size_t>(to); ++i) {
            results[i] = makeResult(first + i, i);
        }
        return keepOn();
    });
}

GroupResult DissolveRun::makeResult(std::size_t group, std::size_t inWindow) {
    GroupResult result;
    const int* begin = m_groups.begin(group);
    const int* end = m_groups.end(group);
    result.firstFid = m_items[static_cast<std::size_t>(*begin)].feature->getFID64();
    makeFeatures(group, geometriesOf(group, inWindow, result), result);
    for (const int* p = begin; p != end; ++p) {
        m_items[static_cast<std::size_t>(*p)].feature.reset();
    }
    return result;
}

std::vector<std::unique_ptr<JWGeometry>> DissolveRun::geometriesOf(std::size_t group,
                                                                   std::size_t inWindow,
                                                                   GroupResult& result) {
    std::vector<std::unique_ptr<JWGeometry>> geometries;
    if (m_kind != DissolveKind::Areas) {
        std::vector<const JWGeometry*> members;
        for (const int* p = m_groups.begin(group); p != m_groups.end(group); ++p) {
            members.push_back(m_items[static_cast<std::size_t>(*p)].feature->getGeometryPtr());
        }
        if (m_kind == DissolveKind::Points) {
            geometries.push_back(gatherParts<JWMultiPoint, JWPoint>(members));
        } else {
            geometries.push_back(gatherParts<JWMultiLineString, JWLineString>(members));
        }
        return geometries;
    }
    GroupUnion united = m_unions.unite(inWindow);
    result.areaBefore = united.areaBefore;
    result.overlap = united.overlap;
    result.dropped = united.dropped;
    for (const auto& [position, reason] : united.failures) {
        result.failures.emplace_back(
            m_items[static_cast<std::size_t>(position)].feature->getFID64(), reason);
    }
    if (!united.geometry) {
        if (result.failures.empty()) {
            result.failures.emplace_back(
                result.firstFid, united.dropped > 0 ? "no ring of its group reaches the tolerance"
                                                    : "its group has no area");
        }
        return geometries;
    }
    if (m_options.multipart) {
        geometries.push_back(std::move(united.geometry));
    } else {
        geometries = splitPolygons(std::move(united.geometry));
    }
    return geometries;
}

void DissolveRun::makeFeatures(std::size_t group,
                               std::vector<std::unique_ptr<JWGeometry>> geometries,
                               GroupResult& result) {
    if (geometries.empty()) return;
    std::vector<const JWFeature*> members;
    for (const int* p = m_groups.begin(group); p != m_groups.end(group); ++p) {
        members.push_back(m_items[static_cast<std::size_t>(*p)].feature.get());
    }
    JWFeature values(m_schema);
    std::size_t target = 0;
    const auto check = [&](bool filled) {
        if (!filled) {
            result.failures.emplace_back(
                members.front()->getFID64(),
                "the result cannot hold the value of field " + m_names[target]);
        }
        ++target;
    };
    for (const int field : m_fields) {
        check(values.copyFieldFrom(static_cast<int>(target), *members.front(), field));
    }
    for (const JWDissolveStatistic& statistic : m_options.statistics) {
        check(fillStatistic(statistic, members, static_cast<int>(target), values));
    }
    for (std::unique_ptr<JWGeometry>& geometry : geometries) {
        GroupResult::Piece piece{std::make_unique<JWFeature>(values), areaOf(*geometry), nullptr};
        if (target < m_names.size()) {
            piece.feature->setFieldValue(static_cast<int>(target), piece.area);
        }
        piece.feature->setGeometryDirectly(geometry.release());
        if (m_team.size() > 1) piece.record = m_output.prepare(*piece.feature);
        result.pieces.push_back(std::move(piece));
    }
}

void DissolveRun::writeResult(GroupResult& result) {
    for (const auto& [fid, reason] : result.failures) reject(fid, reason);
    double after = 0;
    for (GroupResult::Piece& piece : result.pieces) {
        if (m_output.write(piece.feature, piece.record)) {
            after += piece.area;
            ++m_report.written;
            m_report.area += piece.area;
        } else if (isRefusal(JWReport::lastError().kind)) {
            reject(result.firstFid, JWReport::lastError().text);
        } else {
            throw LayerFailure();
        }
        piece.feature.reset();
    }
    m_report.areaA += result.areaBefore;
    m_report.areaOverlap += result.overlap;
    m_report.areaDropped += result.dropped;
    m_report.residual += std::fabs(result.areaBefore - result.overlap - result.dropped - after);
}

}  // namespace jws::detail
