// SPDX-License-Identifier: MIT
//
// Labels both sides of every stretch of boundary with the operands that lie there.
//
// Most vertices have one edge in and one out, and nothing changes there. So contours are cut into
// runs at meeting points only; all work below is per run, not per edge. Around each meeting point
// the run ends are sorted by angle, exactly. Walking round a point, what lies in a sector changes
// by the operands of the runs crossed; following runs carries sectors to the next point. Within a
// connected component everything is therefore known relative to one sector.
//
// That sector is the one west of the component's lexicographically smallest vertex. A ray from
// there towards smaller x never meets the component itself, so the number of edges left of it,
// per operand, tells what the sector is in. One ray per component: nothing is swept, and no ring
// is tested against another ring.
#include "gpc/arrangement.h"

#include <algorithm>
#include <cmath>

namespace jws::gpc {
namespace {

constexpr std::size_t kAhead = 8;

inline bool isRightward(const Point& origin, const Point& p) { return origin < p; }

}  // namespace

void Arrangement::build(Noder& noder, bool depth) {
    depth_ = depth;
    noder_ = &noder;
    set_ = &noder.result();
    makeRuns();
    gatherHalfEdges();
    for (std::uint32_t n = 0; n < nodes_.size(); ++n) sortAround(n);
    for (std::uint32_t n = 0; n < nodes_.size(); ++n) mergeEqual(n);
    visited_.fill(nodes_.size(), 0);
    offset_.clear();
    for (std::uint32_t n = 0; n < nodes_.size(); ++n) {
        if (!visited_[n]) labelComponent(n, static_cast<std::uint32_t>(offset_.size()), noder);
    }
    for (Run& r : runs_) {
        if (r.from == kNone) {
            labelWhole(r, noder);
        } else if (!r.merged) {
            r.left = combine(r.left, offset_[r.component - 1]);
        }
    }
}

void Arrangement::growTable(std::size_t size) {
    table_.fill(size, 0);
    const std::size_t mask = size - 1;
    for (std::uint32_t n = 0; n < nodes_.size(); ++n) {
        std::size_t i = hashOf(nodes_[n].p) & mask;
        while (table_[i] != 0) i = (i + 1) & mask;
        table_[i] = n + 1;
    }
}

std::uint32_t Arrangement::nodeAt(const Point& p, std::uint64_t hash) {
    if (2 * (nodes_.size() + 1) > table_.size()) growTable(table_.size() * 2);
    const std::size_t mask = table_.size() - 1;
    std::size_t i = hash & mask;
    for (; table_[i] != 0; i = (i + 1) & mask) {
        Point& q = nodes_[table_[i] - 1].p;
        if (q == p) {
            if (std::signbit(q.x) != std::signbit(p.x)) q.x = 0;
            if (std::signbit(q.y) != std::signbit(p.y)) q.y = 0;
            return table_[i] - 1;
        }
    }
    nodes_.push({p, 0, 0});
    table_[i] = static_cast<std::uint32_t>(nodes_.size());
    return table_[i] - 1;
}

// Gives every meeting point its node. What lies at random places in memory is asked for in advance.
void Arrangement::makeNodes() {
    nodes_.clear();
    meetings_.clear();
    const ContourSet& set = *set_;
    for (const Contour& c : set.contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if (set.flags[i] & kMeeting) meetings_.push({hashOf(set.points[i]), i, kNone});
        }
    }
    std::size_t size = 64;
    while (size < meetings_.size()) size *= 2;
    table_.fill(size, 0);
    const std::size_t count = meetings_.size();
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t mask = table_.size() - 1;
        if (k + 2 * kAhead < count) prefetch(&table_[meetings_[k + 2 * kAhead].hash & mask]);
        if (k + kAhead < count) {
            const std::uint32_t node = table_[meetings_[k + kAhead].hash & mask];
            if (node != 0) prefetch(&nodes_[node - 1]);
        }
        meetings_[k].node = nodeAt(set.points[meetings_[k].point], meetings_[k].hash);
    }
}

void Arrangement::makeRuns() {
    makeNodes();
    const ContourSet& set = *set_;
    const std::size_t count = meetings_.size();
    runs_.clear();
    runs_.reserve(count + set.contours.size());
    std::size_t k = 0;
    for (std::uint32_t c = 0; c < set.contours.size(); ++c) {
        const Contour& contour = set.contours[c];
        const std::uint32_t n = contour.last - contour.first;
        if (k == count || meetings_[k].point >= contour.last) {
            runs_.push({kNone, kNone, c, contour.first, n, contour.operand, 0, 0, false, kNone});
            continue;
        }
        const Meeting& start = meetings_[k];
        for (; k < count && meetings_[k].point < contour.last; ++k) {
            const Meeting& at = meetings_[k];
            const bool ends = k + 1 == count || meetings_[k + 1].point >= contour.last;
            const Meeting& next = ends ? start : meetings_[k + 1];
            const std::uint32_t inner = (ends ? n : 0) + next.point - at.point - 1;
            runs_.push({at.node, next.node, c, set.next(contour, at.point), inner, contour.operand,
                        0, 0, false, kNone});
        }
    }
}

void Arrangement::gatherHalfEdges() {
    for (const Run& r : runs_) {
        if (r.from == kNone) continue;
        ++nodes_[r.from].count;
        ++nodes_[r.to].count;
    }
    std::uint32_t total = 0;
    cursor_.resize(nodes_.size());
    for (std::uint32_t n = 0; n < nodes_.size(); ++n) {
        nodes_[n].first = cursor_[n] = total;
        total += nodes_[n].count;
    }
    around_.resize(total);
    for (std::uint32_t r = 0; r < runs_.size(); ++r) {
        if (runs_[r].from == kNone) continue;
        around_[cursor_[runs_[r].from]++] = 2 * r;
        around_[cursor_[runs_[r].to]++] = 2 * r + 1;
    }
}

Point Arrangement::directionOf(HalfEdge h) const {
    const Run& r = runs_[h >> 1];
    if (r.count == 0) return nodes_[(h & 1) ? r.from : r.to].p;
    return pointOf(r, (h & 1) ? r.count - 1 : 0);
}

// Counter-clockwise from just after straight down.
bool Arrangement::before(const Point& origin, const Point& a, const Point& b) const {
    const bool rightA = isRightward(origin, a);
    const bool rightB = isRightward(origin, b);
    if (rightA != rightB) return rightA;
    if (a == b) return false;
    return orientation(origin, a, b) > 0;
}

void Arrangement::sortAround(std::uint32_t node) {
    const Node& n = nodes_[node];
    HalfEdge* h = around_.data() + n.first;
    directions_.resize(n.count);
    Point* d = directions_.data();
    if (n.count <= 16) {
        for (std::uint32_t i = 0; i < n.count; ++i) {
            const HalfEdge edge = h[i];
            const Point direction = directionOf(edge);
            std::uint32_t k = i;
            for (; k > 0 && before(n.p, direction, d[k - 1]); --k) {
                h[k] = h[k - 1];
                d[k] = d[k - 1];
            }
            h[k] = edge;
            d[k] = direction;
        }
        return;
    }
    std::sort(h, h + n.count, [this, &n](HalfEdge a, HalfEdge b) {
        const Point da = directionOf(a);
        const Point db = directionOf(b);
        if (before(n.p, da, db)) return true;
        return !before(n.p, db, da) && a < b;
    });
}

// Runs that lie on each other are single edges between the same two nodes. The first stands for
// all; the others leave the arrangement.
void Arrangement::mergeEqual(std::uint32_t node) {
    Node& n = nodes_[node];
    HalfEdge* h = around_.data() + n.first;
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < n.count; ++i) {
        Run& r = runs_[h[i] >> 1];
        const std::uint32_t far = (h[i] & 1) ? r.from : r.to;
        bool equal = false;
        if (kept > 0 && r.count == 0) {
            const HalfEdge other = h[kept - 1];
            Run& s = runs_[other >> 1];
            equal = s.count == 0 && ((other & 1) ? s.from : s.to) == far;
            if (equal && node < far) {
                const bool sameWay = ((h[i] ^ other) & 1) == 0;
                s.step = depth_ ? s.step + (sameWay ? r.step : -r.step) : s.step ^ r.step;
                r.merged = true;
                r.twin = s.twin;
                s.twin = h[i] >> 1;
            }
        }
        if (!equal) h[kept++] = h[i];
    }
    n.count = kept;
}

std::size_t Arrangement::bytes() const {
    return runs_.bytes() + nodes_.bytes() + meetings_.bytes() + table_.bytes() + around_.bytes() +
           queue_.bytes();
}

void Arrangement::release() {
    runs_.release();
    nodes_.release();
    meetings_.release();
    table_.release();
    around_.release();
    directions_.release();
    visited_.release();
    queue_.release();
    offset_.release();
    cursor_.release();
}

}  // namespace jws::gpc
