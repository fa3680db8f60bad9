// SPDX-License-Identifier: MIT
#include "buffer/loop_levels.h"

#include <algorithm>
#include <cmath>

#include "foundation/orientation.h"
#include "foundation/segment_crossing.h"
#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

// Crossings to an edge: beyond that most of the line is covered, and the engine finds out cheaply.
constexpr std::size_t kMostCrossings = 4;
// A determinant of differences, each rounded, against its products: 6 half units in the last place.
constexpr double kRounding = 8e-16;
constexpr double kIllConditioned = 1e-10;

struct Determinant {
    double value;
    double size;

    Determinant(const JWRawPoint& u, const JWRawPoint& v)
        : value(cross(u, v)), size(std::fabs(u.x * v.y) + std::fabs(u.y * v.x)) {}
};

}  // namespace

bool LoopLevels::resolve(const RingView& loop, Outline& result) {
    if (!takeLoop(loop) || !findCrossings() || !orderPasses() || !setLevels()) return false;
    m_rings.clear();
    m_isDone.assign(m_passes.size(), false);
    for (std::size_t i = 0; i < m_passes.size(); ++i) {
        if (m_levels[i] == 0 && !m_isDone[i]) addCircle(i);
    }
    return handOut(result);
}

bool LoopLevels::takeLoop(const RingView& loop) {
    emptyKept(m_points);
    m_points.reserve(static_cast<std::size_t>(loop.count) + 1);
    for (int i = 0; i < loop.count; ++i) {
        if (i == 0 || m_points.back() != loop.points[i]) m_points.push_back(loop.points[i]);
    }
    if (m_points.empty()) return false;
    if (m_points.back() != m_points.front()) m_points.push_back(m_points.front());
    return edgeCount() >= 3;
}

bool LoopLevels::findCrossings() {
    emptyKept(m_crossings);
    emptyKept(m_passes);
    const auto isUncertain = [&](int i, int j) { return !takePair(i, j); };
    return !m_pairs.search(m_points.data(), edgeCount(), isUncertain);
}

/// False when the edges i < j meet otherwise than by crossing, or very nearly do.
bool LoopLevels::takePair(int i, int j) {
    const JWRawPoint* p = m_points.data();
    if (j == i + 1) return !foldsBack(p[i], p[j], p[j + 1]);
    if (i == 0 && j == edgeCount() - 1) return !foldsBack(p[j], p[0], p[1]);
    if (!segmentBoxesMeet(p[i], p[i + 1], p[j], p[j + 1])) return true;
    const int from = orientationSign(p[i], p[i + 1], p[j]);
    const int to = orientationSign(p[i], p[i + 1], p[j + 1]);
    if (from == 2 || to == 2) return false;
    if (from * to > 0) return true;
    const int first = orientationSign(p[j], p[j + 1], p[i]);
    const int second = orientationSign(p[j], p[j + 1], p[i + 1]);
    if (first == 2 || second == 2) return false;
    if (first * second > 0) return true;
    if (from * to == 0 || first * second == 0) return false;
    if (m_crossings.size() == kMostCrossings * m_points.size()) return false;
    m_crossings.push_back({{i, j}, {0, 0}, to > 0});
    return addPass(m_crossings.size() - 1, 0) && addPass(m_crossings.size() - 1, 1);
}

bool LoopLevels::addPass(std::size_t crossing, int which) {
    const JWRawPoint* mine = m_points.data() + m_crossings[crossing].edges[which];
    const JWRawPoint* other = m_points.data() + m_crossings[crossing].edges[1 - which];
    const JWRawPoint v = difference(other[1], other[0]);
    const Determinant part(difference(other[0], mine[0]), v);
    const Determinant whole(difference(mine[1], mine[0]), v);
    const double size = std::fabs(whole.value);
    if (!(size > kIllConditioned * whole.size) || !std::isfinite(part.size)) return false;
    const double share = part.value / whole.value;
    const double error = kRounding * (part.size + (1 + std::fabs(share)) * whole.size) / size;
    m_passes.push_back({m_crossings[crossing].edges[which], share, error, crossing, which});
    return true;
}

/// False when two crossings of an edge lie so close together that either may come first.
bool LoopLevels::orderPasses() {
    std::sort(m_passes.begin(), m_passes.end(), [](const Pass& a, const Pass& b) {
        return a.edge != b.edge ? a.edge < b.edge : a.share < b.share;
    });
    for (std::size_t i = 0; i < m_passes.size(); ++i) {
        const Pass& pass = m_passes[i];
        m_crossings[pass.crossing].places[pass.which] = i;
        if (i == 0 || m_passes[i - 1].edge != pass.edge) continue;
        const Pass& last = m_passes[i - 1];
        if (!(pass.share - last.share > pass.error + last.error)) return false;
    }
    return true;
}

/// The level of each way from crossing to crossing; of a line without, of the whole.
bool LoopLevels::setLevels() {
    const JWRawPoint* p = m_points.data();
    const auto isLower = [](const JWRawPoint& a, const JWRawPoint& b) {
        return a.y != b.y ? a.y < b.y : a.x < b.x;
    };
    const auto lowest = static_cast<int>(std::min_element(p, p + edgeCount(), isLower) - p);
    const int before = (lowest == 0 ? edgeCount() : lowest) - 1;
    const int turn = orientationSign(p[before], p[lowest], p[lowest + 1]);
    if (turn != 1 && turn != -1) return false;
    int level = 0;
    emptyKept(m_levels);
    for (const Pass& pass : m_passes) {
        const bool otherGoesLeft = m_crossings[pass.crossing].leftwards == (pass.which == 0);
        level += otherGoesLeft ? 1 : -1;
        m_levels.push_back(level);
    }
    // The lowest corner has nothing on its left, when it turns right, or on its right.
    const auto isBefore = [](int edge, const Pass& pass) { return edge < pass.edge; };
    const auto next = std::upper_bound(m_passes.begin(), m_passes.end(), before, isBefore);
    const std::size_t place = static_cast<std::size_t>(next - m_passes.begin());
    const int here = m_levels.empty() ? 0 : m_levels[(place > 0 ? place : m_levels.size()) - 1];
    const int there = turn < 0 ? 0 : -1;
    for (int& one : m_levels) one += there - here;
    if (m_levels.empty()) m_levels.push_back(there);
    return true;
}

JWRawPoint LoopLevels::pointOf(const Pass& pass) const {
    const Crossing& crossing = m_crossings[pass.crossing];
    const JWRawPoint* a = m_points.data() + crossing.edges[0];
    const JWRawPoint* b = m_points.data() + crossing.edges[1];
    return crossingOf(a[0], a[1], b[0], b[1]);
}

/// The corners from a pass to the next one, the crossing passed included.
void LoopLevels::addWay(std::size_t pass) {
    const auto add = [&](const JWRawPoint& p) {
        if (m_ring.empty() || m_ring.back() != p) m_ring.push_back(p);
    };
    const bool isLast = pass + 1 == m_passes.size();
    add(pointOf(m_passes[pass]));
    const int end = isLast ? edgeCount() : m_passes[pass + 1].edge + 1;
    for (int i = m_passes[pass].edge + 1; i < end; ++i) add(m_points[static_cast<std::size_t>(i)]);
    if (!isLast) return;
    for (int i = 0; i <= m_passes[0].edge; ++i) add(m_points[static_cast<std::size_t>(i)]);
}

/// Each way goes on behind the same crossing's other pass.
void LoopLevels::addCircle(std::size_t start) {
    emptyKept(m_ring);
    for (std::size_t i = start; !m_isDone[i];) {
        m_isDone[i] = true;
        addWay(i);
        const Pass& next = m_passes[i + 1 == m_passes.size() ? 0 : i + 1];
        i = m_crossings[next.crossing].places[1 - next.which];
    }
    while (m_ring.size() > 1 && m_ring.back() == m_ring.front()) m_ring.pop_back();
    addRing({m_ring.data(), static_cast<int>(m_ring.size()), 0}, false, 0, m_rings);
}

bool LoopLevels::handOut(Outline& result) {
    if (m_passes.empty()) {
        if (m_levels[0] != 0) return true;
        addRing({m_points.data(), edgeCount(), 0}, false, 0, result);
        return true;
    }
    const PlainArea known = m_test.test(viewsOf(m_rings));
    if (!known.plain || known.interiorLeft != 0) return false;
    for (int i = 0; i < m_rings.count(); ++i) {
        addRing(m_rings.view(i), false, static_cast<int>(known.holes >> i & 1u), result);
    }
    return true;
}

}  // namespace jws::detail
