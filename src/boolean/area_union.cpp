// SPDX-License-Identifier: MIT
#include "boolean/area_union.h"

#include <cmath>
#include <limits>
#include <utility>

#include "boolean/area_sum.h"

namespace jws::detail {
namespace {

constexpr std::size_t kBatch = 256;

/// The rings of an area as far as they decide about a rectangle, in lists that outlive the call.
struct Extract {
    RingSet shortened;
    RingViews rings;
    void take(const Area& area, const JWEnvelop& window) {
        shortened.clear();
        emptyKept(rings);
        area.appendWithin(window, shortened, rings);
    }
};

/// Unites areas as far as they decide about a rectangle, by calls that any engine answers.
ClippedContours uniteInPairs(const std::vector<Area>& areas, const JWEnvelop& window) {
    std::vector<Extract> extracts(areas.size());
    std::vector<RingViews> sets;
    sets.reserve(areas.size());
    for (std::size_t i = 0; i < areas.size(); ++i) {
        extracts[i].take(areas[i], window);
        sets.push_back(extracts[i].rings);
    }
    return uniteRings(sets);
}

/// The same in one go. `surplus` receives what the parts have beyond the union, which is what they
/// have in common, minus what the engine found them to have in common.
ClippedContours uniteAtOnce(const std::vector<Area>& areas, const JWEnvelop& window,
                            double& surplus) {
    thread_local AreaSum sum;
    thread_local Extract extract;
    sum.clear();
    double parts = 0;
    for (const Area& area : areas) {
        extract.take(area, window);
        parts += sum.add(extract.rings);
    }
    thread_local AreaSum::Edges edges;
    sum.rest(edges);
    double overlap = 0;
    ClippedContours united = AreaSum::unite(edges, overlap);
    surplus = parts - overlap - areaOf(united);
    return united;
}

}  // namespace

ClippedContours intersectAreas(const Area& a, const Area& b) {
    thread_local Extract fromA, fromB;
    JWEnvelop common;
    if (!a.overlaps(b) || !common.intersect(a.envelop(), b.envelop())) return {};
    fromA.take(a, common);
    fromB.take(b, common);
    return clipRings(fromA.rings, fromB.rings, JWBooleanIntersection);
}

bool reaches(const ClippedContours& contours, double tolerance) {
    for (int i = 0; i < contours.count(); ++i) {
        if (contours.hole(i) == 0 && !(areaOf(contours.view(i)) < tolerance)) return true;
    }
    return false;
}

JWEnvelop everywhere() {
    constexpr double most = std::numeric_limits<double>::max();
    return JWEnvelop(-most, -most, most, most);
}

void AreaUnion::add(const Area& area) {
    if (area.isEmpty() || !area.envelop().intersected(m_window)) return;
    m_batch.push_back(area);
    // What areas have in common two at a time can be clipped with any engine.
    const std::size_t batch = m_check && !canUniteDirected ? 1 : kBatch;
    if (m_batch.size() >= batch) flush();
}

ClippedContours AreaUnion::uniteBatch() {
    if (!canUniteDirected) return uniteInPairs(m_batch, m_window);
    double surplus = 0;
    ClippedContours united = uniteAtOnce(m_batch, m_window, surplus);
    if (m_check) m_mismatch += std::fabs(surplus);
    return united;
}

void AreaUnion::flush() {
    if (m_batch.empty()) return;
    m_united.push_back({uniteBatch(), 0});
    m_batch.clear();
    while (m_united.size() > 1 && m_united.back().rank >= m_united[m_united.size() - 2].rank) {
        mergeLast();
    }
}

void AreaUnion::mergeLast() {
    const ClippedContours last = std::move(m_united.back().contours);
    m_united.pop_back();
    const United before = std::move(m_united.back());
    m_united.pop_back();
    const RingViews a = before.contours.views(), b = last.views();
    m_united.push_back({clipRings(a, b, JWBooleanUnion), before.rank + 1});
    if (!m_check) return;
    const double common = areaOf(clipRings(a, b, JWBooleanIntersection));
    m_mismatch += std::fabs(areaOf(before.contours) + areaOf(last) - common -
                            areaOf(m_united.back().contours));
}

const RingViews& AreaUnion::rings() {
    m_rings.clear();
    if (m_united.empty() && m_batch.size() == 1) {
        m_shortened.clear();
        m_batch.front().appendWithin(m_window, m_shortened, m_rings);
        return m_rings;
    }
    flush();
    while (m_united.size() > 1) mergeLast();
    if (!m_united.empty()) m_rings = m_united.front().contours.views();
    return m_rings;
}

ClippedContours AreaUnion::contours() {
    flush();
    while (m_united.size() > 1) mergeLast();
    if (m_united.empty()) return {};
    ClippedContours all = std::move(m_united.front().contours);
    m_united.clear();
    return all;
}

ClippedContours eraseUnion(const Area& a, AreaUnion& cutters) {
    return clipRings(a.rings(), cutters.rings(), JWBooleanDifference);
}

}  // namespace jws::detail
