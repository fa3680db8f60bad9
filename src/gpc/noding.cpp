// SPDX-License-Identifier: MIT
//
// Makes an exact arrangement out of edges that cross, touch and overlap anyhow.
//
// Edges whose boxes meet are compared with exact predicates. A vertex on another edge splits it
// there; a proper crossing splits both edges at the crossing point, rounded to the unit u, the last
// place of the largest coordinate. A vertex that an edge passes within 2u splits it too, as a rule:
// rounded crossings come back as vertices when a result is clipped once more, and edges meant to
// coincide would leave slivers thinner than the rounding. Where that happens a crossing of the two
// edges waits: mostly there is none left afterwards.
//
// Splitting bends an edge by a hair, and a bent edge may have come to lie across a neighbour, so
// the pieces of bent edges are compared with everything around them again, until a pass finds
// nothing to split. Most bent edges need no second look. A conflict takes another edge or vertex
// within a few u of the place. The first pass meets every such pair and marks as suspect: edges
// that come within a far larger radius R of each other's ends; edges that cross at an angle below
// 2^-7; and where two split points on an edge lie within R, the edge and those that split it there.
// An edge that passes within 4u of a crossing without being marked would have to make an angle of
// 2^-8 with one of the two edges that cross, and so cross that one within 2^10 u, which is below R,
// or end before, near it: both are marked. An edge split beside its line is always suspect.
//
// Where edges crowd, as in bundles that are parallel to within rounding, bent edges may go on
// crossing one another, ever further along. Therefore the second pass may split half as often as
// there are points and splits in the first, and every further one half as often as the one before.
// What asks for more, or has most of its first splits fall together, goes back to the beginning and
// is snap rounded as a whole: snap_rounding.h says why no crossing is left then. Crossings go to
// the same grid there; what differs is that edges are led through every crowded pixel that they
// enter, and that vertices finer than the grid keep their place only where nothing else is within a
// pixel or two. Rounding the outcome again leads edges away from vertices that they pass within
// half a unit now (iterated snap rounding: Halperin and Packer 2002); that is repeated a few times,
// or until nothing changes. A last comparison marks where edges meet. Neither way may lead an edge
// further than kStray from its own line in the end: passes that do are given up, and so is a
// repetition of snap rounding.
//
// After the last pass any two edges are disjoint, equal, or share end points only, exactly, in
// the very doubles that are handed out; so contours made of them are valid without any tolerance.
// Unless the edges were snap rounded, no input vertex moves.
//
// With n edges and k splits in the first pass, at most log2(n + k) + 1 further passes make fewer
// than n + k splits in all; snap rounding takes at most kRounds + 1 comparisons more.
#include "gpc/noding.h"

#include <stdexcept>

namespace jws::gpc {
namespace {

constexpr int kRounds = 8;           // of snap rounding
constexpr double kStray = 2.5;       // units, in x and y together
constexpr std::size_t kBundle = 64;  // pieces of an edge, on the average
constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

}  // namespace

void Noder::run(ContourSet& source, int exponent, double aspect) {
    m_source = &source;
    m_doubles.clear();
    m_grid.fit(exponent - 53);
    m_near = {2 * m_grid.step, aspect};
    m_stray = m_near.within(kStray * m_grid.step);
    m_snapped = false;
    m_tight = 32 * m_grid.step;
    m_radius = 0x1p13 * m_grid.step;
    m_scans = 0;
    m_snapped = !bend();
    if (!m_snapped) return;
    snap();
    if (check()) throw std::logic_error("edges cross after snap rounding");
}

// Splits edges where they meet, until that leaves nothing to split; false if it takes too long.
bool Noder::bend() {
    m_set = m_source;
    for (std::uint8_t& f : m_set->flags) f |= kUnchecked;
    m_most = kNoLimit;
    for (m_pass = 1; check(); ++m_pass) {
        if (m_splits.size() > m_most) return false;
        m_most = (m_most == kNoLimit ? m_set->points.size() + m_splits.size() : m_most) / 2;
        if (m_pass == 1) findCrowds();
        const std::size_t before = m_set->points.size();
        const bool any = rebuild();
        m_treeIsFresh = false;
        if (m_strayed || (m_pass == 1 && isHeap(m_set->points.size() - before))) return false;
        if (!any) return true;
        findDoubles();
    }
    return true;
}

// Starts again from the source and snap rounds it.
void Noder::snap() {
    m_doubles.clear();
    m_most = kNoLimit;
    m_set = m_source;
    m_set->flags.fill(m_set->points.size(), kUnchecked);
    m_active = 1;  // so that the first target is 0
    for (int round = 1; round <= kRounds; ++round) {
        const int target = 1 - m_active;
        m_tree.build(*m_set, m_near.reach);
        m_rounder.run(*m_set, m_tree, m_grid, round == 1, m_work[target], m_parents[target]);
        if (round > 1) {
            if (m_work[target].points.size() == m_set->points.size()) break;
            for (std::uint32_t& parent : m_parents[target]) parent = m_parents[m_active][parent];
            if (!keepsToOrigin(m_work[target], m_parents[target])) break;
        }
        m_active = target;
        m_set = &m_work[target];
        if (m_set->points.size() > kBundle * m_source->points.size()) break;
    }
    m_set->flags.fill(m_set->points.size(), kUnchecked);
    findDoubles();
}

bool Noder::keepsToOrigin(const ContourSet& set, const Buffer<std::uint32_t>& parents) const {
    for (const Contour& c : set.contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if (!keepsTo(parents[i], set.points[i]) || !keepsTo(parents[i], set.points[i + 1])) {
                return false;
            }
        }
    }
    return true;
}

std::size_t Noder::countConflicts() {
    const auto meetings = [this] {
        std::size_t count = 0;
        for (const std::uint8_t f : m_set->flags) count += (f & kMeeting) != 0;
        return count;
    };
    const std::size_t before = meetings();
    for (std::uint8_t& f : m_set->flags) f = static_cast<std::uint8_t>((f | kUnchecked) & ~kDouble);
    m_doubles.clear();
    m_most = kNoLimit;
    m_pass = 2;
    check();
    return m_splits.size() + meetings() - before;
}

// A ray or two are shot quicker without building a tree for them.
bool Noder::useTree() {
    constexpr std::size_t kFewEdges = 300;
    if (!m_treeIsFresh && m_set->points.size() > kFewEdges && ++m_scans > 2) {
        m_tree.build(*m_set, m_near.reach);
        m_treeIsFresh = true;
    }
    return m_treeIsFresh;
}

std::int32_t Noder::parityLeftOf(const Point& p) {
    if (useTree()) return m_tree.parityLeftOf(*m_set, p);
    std::int32_t odd = 0;
    const Point* q = m_set->points.data();
    for (const Contour& c : m_set->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if ((q[i].y > p.y) != (q[i + 1].y > p.y) && isLeftOf(q[i], q[i + 1], p)) {
                odd ^= c.operand;
            }
        }
    }
    return odd;
}

std::int32_t Noder::depthLeftOf(const Point& p) {
    if (useTree()) return m_tree.depthLeftOf(*m_set, p);
    std::int32_t depth = 0;
    const Point* q = m_set->points.data();
    for (const Contour& c : m_set->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if ((q[i].y > p.y) != (q[i + 1].y > p.y) && isLeftOf(q[i], q[i + 1], p)) {
                depth += q[i].y > p.y ? c.operand : -c.operand;
            }
        }
    }
    return depth;
}

std::size_t Noder::bytes() const {
    std::size_t sum = m_tree.bytes() + m_splits.bytes() + m_firstSplit.bytes() + m_rounder.bytes();
    for (int i = 0; i < 2; ++i) {
        sum += m_work[i].points.bytes() + m_work[i].flags.bytes() + m_parents[i].bytes();
    }
    return sum;
}

void Noder::release() {
    m_tree.release();
    for (int i = 0; i < 2; ++i) {
        m_work[i].points.release();
        m_work[i].flags.release();
        m_work[i].contours.release();
        m_parents[i].release();
    }
    m_rounder.release();
    m_splits.release();
    m_firstSplit.release();
    m_sorted.release();
    m_table.release();
    m_doubles.release();
    m_standIns.release();
}

}  // namespace jws::gpc
