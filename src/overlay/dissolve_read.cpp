// SPDX-License-Identifier: MIT
//
// The first steps of a dissolve: features are read, decoded and examined by the team, and put into
// clusters and groups.
#include <algorithm>
#include <climits>

#include "foundation/pulse.h"
#include "foundation/text_batch.h"
#include "overlay/dissolve_run.h"
#include "overlay/feature_check.h"
#include "overlay/multi_parts.h"
#include "overlay/value_groups.h"

namespace jws::detail {
namespace {

constexpr std::int64_t kBeyond = 256;  // places for features that a source does not state

}  // namespace

void DissolveRun::read() {
    if (m_total > INT_MAX) {
        fail(JWErrorInvalidArgument, std::string(m_input.source()) + ", layer " + m_input.name() +
                                         ": has more features than a dissolve can hold");
    }
    TextBatch texts;
    const auto examineAll = [this](Chunk& chunk) {
        const Pulse pulse([this] { m_run.beat(); });
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            const auto position = static_cast<std::size_t>(chunk.position(i));
            m_items[position].feature = std::move(chunk.read[i].feature);
            examine(position);
            Pulse::tick();
        }
    };
    const auto count = [&](Chunk&, std::size_t) {
        m_run.setDone(++m_report.readA);
        if (m_kind == DissolveKind::Areas) texts.print("%d\n", m_report.readA);
    };
    OrderedWalk<NoSlot> walk(m_team, m_input,
                             {examineAll, count, [this] { return m_run.keepOn(); }, {}, 64});
    std::int64_t end = 0;
    do {
        end += std::max<std::int64_t>(m_total - end, 0) + kBeyond;
        const auto places = static_cast<std::size_t>(end);
        m_items.resize(places);
        m_examined.resize(places);
        m_keys.resize(places);
        if (!walk.run(walk.position(), end - walk.position())) m_run.stop();
    } while (walk.position() == end);
    keepAccount();
}

void DissolveRun::examine(std::size_t position) {
    DissolveItem& item = m_items[position];
    Examination& examined = m_examined[position];
    examined = examineGeometry(item);
    if (examined.empty || examined.reason != nullptr) {
        item.envelop = JWEnvelop::invalid();
        return;
    }
    m_keys[position] = valueKey(*item.feature, m_fields);
}

Examination DissolveRun::examineGeometry(DissolveItem& item) {
    if (item.feature->isGeometryUnread()) return {false, kUnreadGeometry};
    if (item.feature->isGeometryEmpty()) return {true, nullptr};
    const JWGeometry& geometry = *item.feature->getGeometryPtr();
    if (m_kind != DissolveKind::Areas) {
        const char* reason = m_kind == DissolveKind::Points ? checkPoints(geometry, item.envelop)
                                                            : checkLines(geometry, item.envelop);
        return {false, reason};
    }
    const AreaCheck check = checkArea(*item.feature);
    if (check != AreaCheck::Usable) return {check == AreaCheck::Empty, reasonOf(check)};
    item.envelop = envelopOf(geometry);
    if (!item.envelop.isValid()) return {true, nullptr};  // rings without points
    thread_local AreaSum classifier;
    item.kind = classifier.classify(geometry);
    return {};
}

void DissolveRun::keepAccount() {
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (!m_items[i].feature) continue;
        if (m_examined[i].empty) ++m_report.emptyA;
        if (m_examined[i].reason != nullptr) {
            m_run.reject(m_input, m_items[i].feature->getFID64(), m_examined[i].reason);
        }
    }
}

/// Everything usable in one list, or cluster by cluster.
PositionLists DissolveRun::clusters() const {
    if (m_kind == DissolveKind::Areas && !m_options.acrossClusters) {
        std::vector<JWEnvelop> envelops;
        envelops.reserve(m_items.size());
        for (const DissolveItem& item : m_items) envelops.push_back(item.envelop);
        PositionLists made = clusterByContact(m_team, envelops);
        TextBatch texts;
        for (std::size_t c = 0; c < made.count(); ++c) {
            for (const int* p = made.begin(c); p != made.end(c); ++p) texts.print("%d,", *p);
            texts.print("\n");
        }
        return made;
    }
    PositionLists all;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i].envelop.isValid()) all.positions.push_back(static_cast<int>(i));
    }
    if (!all.positions.empty()) all.ends.push_back(all.positions.size());
    return all;
}

void DissolveRun::group() {
    const Pulse pulse([this] { m_run.beat(); });
    m_groups = groupByValue(clusters(), m_keys);
    m_keys = {};
}

}  // namespace jws::detail
