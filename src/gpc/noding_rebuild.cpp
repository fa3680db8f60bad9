// SPDX-License-Identifier: MIT
//
// Between two comparisons: edges are replaced by their pieces, and what need not be compared again
// is found out. Linear in the edges and their pieces but for the sorting along each edge.
#include <algorithm>
#include <cmath>

#include "gpc/noding.h"

namespace jws::gpc {
namespace {

constexpr std::size_t kHeap = 4;  // splits that fall together, on the average

}  // namespace

// Tells whether the splits beside edges, of which `made` points came, mostly fell together.
bool Noder::isHeap(std::size_t made) const {
    std::size_t moved = 0;
    for (const SplitPoint& s : m_splits) moved += s.moved;
    return moved > kHeap * made;
}

// Marks edges with two split points near each other, and the edges that split them there.
void Noder::findCrowds() {
    for (const Contour& c : m_set->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if (m_firstSplit[i] == 0 || m_splits[m_firstSplit[i] - 1].next == 0) continue;
            sortSplits(i);
            for (std::size_t k = 1; k < m_sorted.size(); ++k) {
                const SplitPoint& s = m_sorted[k - 1];
                const SplitPoint& t = m_sorted[k];
                if (std::fabs(s.p.x - t.p.x) > m_radius || std::fabs(s.p.y - t.p.y) > m_radius) {
                    continue;
                }
                suspect(s.by, i);
                suspect(t.by, i);
            }
        }
    }
}

// Of unchecked edges between the same two points all but one become doubles: a bundle that has
// been made one line is compared as one edge.
void Noder::findDoubles() {
    const Point* p = m_set->points.data();
    std::size_t unchecked = 0;
    for (const std::uint8_t f : m_set->flags) unchecked += (f & kUnchecked) != 0;
    constexpr std::size_t kFew = 64;
    if (unchecked < kFew) return;
    std::size_t size = 2 * kFew;
    while (size < 2 * unchecked) size *= 2;
    m_table.fill(size, 0);
    m_standIns.resize(m_set->points.size());
    for (const Contour& c : m_set->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if (!(m_set->flags[i] & kUnchecked)) continue;
            const auto isEqual = [&](std::uint32_t j) {
                return (p[i] == p[j] && p[i + 1] == p[j + 1]) ||
                       (p[i] == p[j + 1] && p[i + 1] == p[j]);
            };
            std::size_t slot = (hashOf(p[i]) + hashOf(p[i + 1])) & (size - 1);
            const auto isTaken = [&] { return m_table[slot].from != m_table[slot].to; };
            while (isTaken() && !isEqual(m_table[slot].from)) slot = (slot + 1) & (size - 1);
            if (!isTaken()) {
                m_table[slot] = {i, m_set->next(c, i)};
                continue;
            }
            m_standIns[i] = m_table[slot].from;
            m_doubles.push(i);
            m_set->flags[i] = static_cast<std::uint8_t>((m_set->flags[i] & ~kUnchecked) | kDouble);
            mark(i);
            mark(m_set->next(c, i));
            mark(m_table[slot].from);
            mark(m_table[slot].to);
        }
    }
}

// Copies the contours with their split points into the other work set. Pieces of edges that moved
// are unchecked, unless they were found harmless; true if any is.
bool Noder::rebuild() {
    const std::uint8_t doubtful = m_pass == 1 ? kSuspect : 0xFF;
    bool any = false;
    m_strayed = false;
    const int target = m_set == m_source ? 0 : 1 - m_active;
    const ContourSet& from = *m_set;
    ContourSet& to = m_work[target];
    std::size_t room = from.points.size() + m_splits.size();
    for (const std::uint32_t edge : m_doubles) {
        for (std::uint32_t s = splitsOf(edge); s != 0; s = m_splits[s - 1].next) ++room;
    }
    m_doubles.clear();
    to.clear();
    to.points.resize(room);
    to.flags.resize(room);
    m_parents[target].resize(room);
    std::uint32_t* parents = m_parents[target].data();
    const std::uint32_t* known = m_set == m_source ? nullptr : m_parents[m_active].data();
    std::uint32_t n = 0;
    for (const Contour& c : from.contours) {
        const std::uint32_t first = n;
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            const std::uint32_t parent = known ? known[i] : i;
            to.points[n] = from.points[i];
            parents[n] = parent;
            if (splitsOf(i) == 0) {
                to.flags[n++] = from.flags[i] & kMeeting;
                continue;
            }
            const bool look = sortSplits(i) && (doubtful == 0xFF || (from.flags[i] & doubtful));
            const std::uint8_t unchecked = look ? kUnchecked : 0;
            any |= look;
            to.flags[n++] = static_cast<std::uint8_t>((from.flags[i] & kMeeting) | unchecked);
            for (const SplitPoint& s : m_sorted) {
                if (s.p == to.points[n - 1]) continue;
                m_strayed |= s.moved && m_pass > 1 && !keepsTo(parent, s.p);
                to.points[n] = s.p;
                parents[n] = parent;
                to.flags[n++] = static_cast<std::uint8_t>(kMeeting | unchecked);
            }
        }
        to.points[n] = to.points[first];
        to.flags[n] = 0;
        to.contours.push({first, n, c.operand, 0});
        ++n;
    }
    to.points.resize(n);
    to.flags.resize(n);
    m_active = target;
    m_set = &to;
    return any;
}

// Puts the split points of an edge into m_sorted, in order along it; true if one lies beside it.
bool Noder::sortSplits(std::uint32_t edge) {
    m_sorted.clear();
    bool moved = false;
    for (std::uint32_t s = splitsOf(edge); s != 0; s = m_splits[s - 1].next) {
        m_sorted.push(m_splits[s - 1]);
        moved |= m_splits[s - 1].moved;
    }
    if (m_sorted.size() < 2) return moved;
    const Point a = m_set->points[edge];
    const Point b = m_set->points[edge + 1];
    const bool alongX = m_near.isAlongX(a, b);
    const bool right = a.x != b.x ? a.x < b.x : a.y < b.y;
    const bool up = a.y != b.y ? a.y < b.y : a.x < b.x;
    std::sort(m_sorted.begin(), m_sorted.end(), [=](const SplitPoint& u, const SplitPoint& v) {
        const bool xFirst = (u.p.x < v.p.x) == right;
        const bool yFirst = (u.p.y < v.p.y) == up;
        if (alongX) return u.p.x != v.p.x ? xFirst : u.p.y != v.p.y && yFirst;
        return u.p.y != v.p.y ? yFirst : u.p.x != v.p.x && xFirst;
    });
    return moved;
}

}  // namespace jws::gpc
