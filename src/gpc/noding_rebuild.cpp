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
    for (const SplitPoint& s : splits_) moved += s.moved;
    return moved > kHeap * made;
}

// Marks edges with two split points near each other, and the edges that split them there.
void Noder::findCrowds() {
    for (const Contour& c : set_->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if (firstSplit_[i] == 0 || splits_[firstSplit_[i] - 1].next == 0) continue;
            sortSplits(i);
            for (std::size_t k = 1; k < sorted_.size(); ++k) {
                const SplitPoint& s = sorted_[k - 1];
                const SplitPoint& t = sorted_[k];
                if (std::fabs(s.p.x - t.p.x) > radius_ || std::fabs(s.p.y - t.p.y) > radius_) {
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
    const Point* p = set_->points.data();
    std::size_t unchecked = 0;
    for (const std::uint8_t f : set_->flags) unchecked += (f & kUnchecked) != 0;
    constexpr std::size_t kFew = 64;
    if (unchecked < kFew) return;
    std::size_t size = 2 * kFew;
    while (size < 2 * unchecked) size *= 2;
    table_.fill(size, 0);
    standIns_.resize(set_->points.size());
    for (const Contour& c : set_->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if (!(set_->flags[i] & kUnchecked)) continue;
            const auto isEqual = [&](std::uint32_t j) {
                return (p[i] == p[j] && p[i + 1] == p[j + 1]) ||
                       (p[i] == p[j + 1] && p[i + 1] == p[j]);
            };
            std::size_t slot = (hashOf(p[i]) + hashOf(p[i + 1])) & (size - 1);
            const auto isTaken = [&] { return table_[slot].from != table_[slot].to; };
            while (isTaken() && !isEqual(table_[slot].from)) slot = (slot + 1) & (size - 1);
            if (!isTaken()) {
                table_[slot] = {i, set_->next(c, i)};
                continue;
            }
            standIns_[i] = table_[slot].from;
            doubles_.push(i);
            set_->flags[i] = static_cast<std::uint8_t>((set_->flags[i] & ~kUnchecked) | kDouble);
            mark(i);
            mark(set_->next(c, i));
            mark(table_[slot].from);
            mark(table_[slot].to);
        }
    }
}

// Copies the contours with their split points into the other work set. Pieces of edges that moved
// are unchecked, unless they were found harmless; true if any is.
bool Noder::rebuild() {
    const std::uint8_t doubtful = pass_ == 1 ? kSuspect : 0xFF;
    bool any = false;
    strayed_ = false;
    const int target = set_ == source_ ? 0 : 1 - active_;
    const ContourSet& from = *set_;
    ContourSet& to = work_[target];
    std::size_t room = from.points.size() + splits_.size();
    for (const std::uint32_t edge : doubles_) {
        for (std::uint32_t s = splitsOf(edge); s != 0; s = splits_[s - 1].next) ++room;
    }
    doubles_.clear();
    to.clear();
    to.points.resize(room);
    to.flags.resize(room);
    parents_[target].resize(room);
    std::uint32_t* parents = parents_[target].data();
    const std::uint32_t* known = set_ == source_ ? nullptr : parents_[active_].data();
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
            for (const SplitPoint& s : sorted_) {
                if (s.p == to.points[n - 1]) continue;
                strayed_ |= s.moved && pass_ > 1 && !keepsTo(parent, s.p);
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
    active_ = target;
    set_ = &to;
    return any;
}

// Puts the split points of an edge into sorted_, in order along it; true if one lies beside it.
bool Noder::sortSplits(std::uint32_t edge) {
    sorted_.clear();
    bool moved = false;
    for (std::uint32_t s = splitsOf(edge); s != 0; s = splits_[s - 1].next) {
        sorted_.push(splits_[s - 1]);
        moved |= splits_[s - 1].moved;
    }
    if (sorted_.size() < 2) return moved;
    const Point a = set_->points[edge];
    const Point b = set_->points[edge + 1];
    const bool alongX = near_.isAlongX(a, b);
    const bool right = a.x != b.x ? a.x < b.x : a.y < b.y;
    const bool up = a.y != b.y ? a.y < b.y : a.x < b.x;
    std::sort(sorted_.begin(), sorted_.end(), [=](const SplitPoint& u, const SplitPoint& v) {
        const bool xFirst = (u.p.x < v.p.x) == right;
        const bool yFirst = (u.p.y < v.p.y) == up;
        if (alongX) return u.p.x != v.p.x ? xFirst : u.p.y != v.p.y && yFirst;
        return u.p.y != v.p.y ? yFirst : u.p.x != v.p.x && xFirst;
    });
    return moved;
}

}  // namespace jws::gpc
