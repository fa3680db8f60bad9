// SPDX-License-Identifier: MIT
//
// Points that are no corners of the result, although the arrangement has them.
//
// A point that was cut into an edge of the input and turned out to be no corner is dropped, unless
// the straight line would come too close to something else. Vertices of the input stay.
#include <algorithm>
#include <cmath>

#include "gpc/contour_builder.h"

namespace jws::gpc {

// Marks the points that were cut into an edge of the input and are no corners of the result:
// there the loop arrives and leaves along that edge, and no other contour comes by. Points dropped
// in a row must lie on one edge, lest a slow bend be straightened step by step; and they stay if
// the straight line would pass another vertex too closely, or is there already.
void ContourBuilder::dropInner() {
    m_dropped.fill(m_steps.size(), 0);
    for (Loop& loop : m_loops) dropInner(loop);
}

void ContourBuilder::dropInner(Loop& loop) {
    const auto& runs = m_arrangement->runs();
    const std::uint32_t count = loop.last - loop.first;
    if (count < 2) return;
    const std::uint32_t* steps = m_steps.data() + loop.first;
    const auto pointAt = [&](std::uint32_t k) {
        return m_arrangement->nodes()[startOf(steps[k])].p;
    };
    // From the smallest point that follows a vertex of the input; if there is none, from the
    // smallest of all, which stays.
    std::uint32_t start = 0;
    bool keepStart = true;
    for (std::uint32_t k = 0; k < count; ++k) {
        const bool follows = runs[steps[(k + count - 1) % count]].count > 0;
        if (follows == keepStart ? follows : pointAt(k) < pointAt(start)) {
            start = k;
            keepStart = !follows;
        }
    }
    const auto innerPoint = [&](std::uint32_t run, bool first) {
        const Arrangement::Run& r = runs[run];
        return m_arrangement->pointOf(r, first == (m_direction[run] > 0) ? 0 : r.count - 1);
    };
    Point from = keepStart ? pointAt(start) : innerPoint(steps[(start + count - 1) % count], false);
    m_inner.clear();
    m_chain.clear();
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t k = (start + i) % count;
        const std::uint32_t before = steps[(k + count - 1) % count];
        const Point p = pointAt(k);
        if ((i == 0 && keepStart) || m_visits[startOf(steps[k])] > 1 ||
            !continues(before, steps[k], p)) {
            straighten(loop, start + i, from, p);
            from = p;
        } else {
            m_inner.push(p);
        }
        if (runs[steps[k]].count == 0) continue;
        straighten(loop, start + i + 1, from, innerPoint(steps[k], true));
        from = innerPoint(steps[k], false);
    }
    straighten(loop, start + count, from, pointAt(start));
}

// Drops the points gathered in `m_inner`, which start the steps before step `end`.
void ContourBuilder::straighten(Loop& loop, std::uint32_t end, const Point& from, const Point& to) {
    const std::uint32_t count = loop.last - loop.first;
    const std::uint32_t inner = static_cast<std::uint32_t>(m_inner.size());
    if (inner > 0 && loop.points >= inner + 3 && mayStraighten(from, to)) {
        loop.points -= inner;
        for (std::uint32_t i = end - inner; i < end; ++i) m_dropped[loop.first + i % count] = 1;
    }
    m_inner.clear();
    m_chain.clear();
}

bool ContourBuilder::mayStraighten(const Point& from, const Point& to) {
    Noder& noder = m_arrangement->noder();
    bool exact = true;
    for (const Point& p : m_inner) {
        if (orientation(from, to, p) == 0) continue;
        if (!noder.nearness().holds(p, from, to)) return false;
        exact = false;
    }
    if (exact) return true;
    std::sort(m_inner.begin(), m_inner.end());
    const double reach = 2 * noder.nearness().reach;
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double limit = 2 * reach * (std::fabs(dx) + std::fabs(dy));  // twice for rounding
    bool clear = true;
    noder.forEdgesFrom(from, to, reach, [&](const Point& p, const Point& next) {
        if (p == from || p == to) {
            clear = clear && next != from && next != to;  // the very line exists
            return;
        }
        if (std::fabs(dx * (p.y - from.y) - dy * (p.x - from.x)) > limit) return;
        clear = clear && std::binary_search(m_inner.begin(), m_inner.end(), p);
    });
    return clear;
}

// Tells whether an edge of the input, through all points dropped just before, runs on through `p`;
// leaves those that do in the chain.
bool ContourBuilder::continues(std::uint32_t before, std::uint32_t run, const Point& p) {
    const Arrangement& a = *m_arrangement;
    const Noder& noder = a.noder();
    const ContourSet& origin = noder.origin();
    const auto edgeOf = [&](std::uint32_t r, bool end) {
        return noder.originOf(end ? a.lastEdge(a.runs()[r]) : a.firstEdge(a.runs()[r]));
    };
    const std::size_t known = m_chain.size();
    std::size_t kept = 0;
    for (std::uint32_t r = before; r != Arrangement::kNone; r = a.runs()[r].twin) {
        const std::uint32_t edge = edgeOf(r, m_direction[before] > 0);
        bool leaves = false;
        for (std::uint32_t q = run; q != Arrangement::kNone; q = a.runs()[q].twin) {
            leaves = leaves || edgeOf(q, m_direction[run] < 0) == edge;
        }
        if (!leaves) continue;
        const Point& from = origin.points[edge];
        const Point& to = origin.points[edge + 1];
        if (orientation(from, to, p) != 0 && !noder.nearness().holds(p, from, to)) continue;
        if (known == 0) {
            m_chain.push(edge);
            continue;
        }
        for (std::size_t i = kept; i < known; ++i) {
            if (m_chain[i] == edge) std::swap(m_chain[kept++], m_chain[i]);
        }
    }
    if (known > 0) m_chain.resize(kept);
    return !m_chain.empty();
}

}  // namespace jws::gpc
