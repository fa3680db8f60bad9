// SPDX-License-Identifier: MIT
//
// The last step of a dissolve: the boundaries of large groups are summed by the team, patch by
// patch (group_union.h); then all groups are united by the team and written in order
// (ordered_work.h).
#include <algorithm>
#include <cmath>

#include "foundation/pulse.h"
#include "layers/geometry_check.h"
#include "overlay/dissolve_run.h"
#include "overlay/group_statistics.h"
#include "overlay/multi_parts.h"

namespace jws::detail {
namespace {

constexpr std::size_t kMostTogether = 1024;  // features whose groups are a chunk

}  // namespace

void DissolveRun::write() {
    m_run.setDone(m_total);
    if (m_kind == DissolveKind::Areas) {
        std::vector<std::pair<const int*, const int*>> groups;
        for (std::size_t g = 0; g < m_groups.count(); ++g) {
            groups.emplace_back(m_groups.begin(g), m_groups.end(g));
        }
        m_unions.prepare(m_team, std::move(groups), [this] { m_run.beat(); });
    }
    OrderedWork<Groups> work(m_team,
                             {[this](Groups& groups) { return take(groups); },
                              [&](Groups& groups) { unite(work, groups); },
                              [this](Groups& groups, std::size_t i) { writeResult(groups, i); },
                              [this] { return m_run.keepOn(); },
                              [this](Groups& groups, std::size_t i) {
                                  return groups.results[i].pieces.prepare(m_output);
                              },
                              [this](Groups& groups, std::size_t i) { writePart(groups, i); }});
    if (!work.run(m_groups.count())) m_run.stop();
}

/// As many groups as make a good piece of work.
bool DissolveRun::take(Groups& groups) {
    if (m_next == m_groups.count()) return false;
    const std::size_t wanted = std::clamp<std::size_t>(
        m_groups.positions.size() / (16 * static_cast<std::size_t>(m_team.size())), 1,
        kMostTogether);
    groups.first = m_next;
    for (std::size_t members = 0; m_next < m_groups.count() && members < wanted; ++m_next) {
        members += static_cast<std::size_t>(m_groups.end(m_next) - m_groups.begin(m_next));
    }
    groups.results.resize(m_next - groups.first);
    return true;
}

void DissolveRun::unite(OrderedWork<Groups>& work, Groups& groups) {
    const Pulse pulse([this] { m_run.beat(); });
    std::size_t atHand = 0;
    const Growth grew = [&](std::size_t bytes) { work.grew(groups, atHand, bytes); };
    for (; atHand < groups.size(); ++atHand) {
        Pulse::tick();
        makeResult(groups.first + atHand, groups.results[atHand], grew);
    }
}

void DissolveRun::makeResult(std::size_t group, GroupResult& result, const Growth& grew) {
    const int* begin = m_groups.begin(group);
    const int* end = m_groups.end(group);
    result.firstFid = m_items[static_cast<std::size_t>(*begin)].feature->getFID64();
    makeFeatures(group, geometriesOf(group, result), result, grew);
    for (const int* p = begin; p != end; ++p) {
        m_items[static_cast<std::size_t>(*p)].feature.reset();
    }
}

std::vector<std::unique_ptr<JWGeometry>> DissolveRun::geometriesOf(std::size_t group,
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
    GroupUnion united = m_unions.unite(group);
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
                               GroupResult& result, const Growth& grew) {
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
        PendingResult piece;
        piece.area = areaOf(*geometry);
        piece.feature = std::make_unique<JWFeature>(values);
        if (target < m_names.size()) {
            piece.feature->setFieldValue(static_cast<int>(target), piece.area);
        }
        piece.feature->setGeometryDirectly(geometry.release());
        result.areaMade += piece.area;
        result.pieces.add(std::move(piece), grew);
    }
    result.pieces.complete(grew);
}

void DissolveRun::writePieces(Groups& groups, std::size_t i) {
    GroupResult& result = groups.results[i];
    result.pieces.write(m_output, m_input, result.firstFid, m_report);
}

/// Those before it in the chunk are written.
void DissolveRun::writePart(Groups& groups, std::size_t i) {
    writePieces(groups, i);
    for (std::size_t k = 0; k <= i; ++k) groups.results[k].pieces.letGo();
}

void DissolveRun::writeResult(Groups& groups, std::size_t i) {
    GroupResult& result = groups.results[i];
    for (const auto& [fid, reason] : result.failures) m_run.reject(m_input, fid, reason);
    writePieces(groups, i);
    result.pieces.reportRefusals(m_report);
    m_report.areaA += result.areaBefore;
    m_report.areaOverlap += std::max(0.0, result.overlap);  // but for rounding
    m_report.areaDropped += result.dropped;
    m_report.residual +=
        std::fabs(result.areaBefore - result.overlap - result.dropped - result.areaMade);
    const std::size_t group = groups.first + i;
    m_run.addDone(m_groups.end(group) - m_groups.begin(group));
}

}  // namespace jws::detail
