// SPDX-License-Identifier: MIT
//
// Makes an exact arrangement out of edges that cross, touch and overlap anyhow.
//
// Edges whose boxes meet are compared with exact predicates. A vertex on another edge splits it
// there; a proper crossing splits both edges at the crossing point, rounded to the unit u, the last
// place of the largest coordinate. A vertex that an edge passes within 2u splits it too: rounded
// crossings come back as vertices when a result is clipped once more, and edges meant to coincide
// would leave slivers thinner than the rounding. Where that happens a crossing of the two edges
// waits: mostly there is none left afterwards.
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

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "foundation/pulse.h"
#include "gpc/crossing.h"

namespace jws::gpc {
namespace {

constexpr double kShallow = 0x1p-7;
constexpr int kRounds = 8;           // of snap rounding
constexpr double kStray = 2.5;       // units, in x and y together
constexpr std::size_t kHeap = 4;     // splits that fall together, on the average
constexpr std::size_t kBundle = 64;  // pieces of an edge, on the average
constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

bool isWithin(const Point& p, const Point& a, const Point& b) {
    return p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) && p.y >= std::min(a.y, b.y) &&
           p.y <= std::max(a.y, b.y);
}

/// Tells whether ab is horizontal or vertical and p exactly on it.
bool isOnAxial(const Point& p, const Point& a, const Point& b) {
    return (a.x == b.x && p.x == a.x) || (a.y == b.y && p.y == a.y);
}

/// Tells whether two edges e and f that leave a point are further apart than `reach` at the end of
/// the shorter one, or leave to opposite sides.
bool opens(double ex, double ey, double fx, double fy, double reach) {
    if (ex * fx + ey * fy < 0) return true;
    const double longer = std::max(std::fabs(ex) + std::fabs(ey), std::fabs(fx) + std::fabs(fy));
    return std::fabs(ex * fy - ey * fx) > reach * longer;
}

}  // namespace

void Noder::run(ContourSet& source, int exponent, double aspect) {
    source_ = &source;
    doubles_.clear();
    grid_.fit(exponent - 53);
    near_ = {2 * grid_.step, aspect};
    stray_ = near_.within(kStray * grid_.step);
    snapped_ = false;
    tight_ = 32 * grid_.step;
    radius_ = 0x1p13 * grid_.step;
    scans_ = 0;
    snapped_ = !bend();
    if (!snapped_) return;
    snap();
    if (check()) throw std::logic_error("edges cross after snap rounding");
}

// Splits edges where they meet, until that leaves nothing to split; false if it takes too long.
bool Noder::bend() {
    set_ = source_;
    for (std::uint8_t& f : set_->flags) f |= kUnchecked;
    most_ = kNoLimit;
    for (pass_ = 1; check(); ++pass_) {
        if (splits_.size() > most_) return false;
        most_ = (most_ == kNoLimit ? set_->points.size() + splits_.size() : most_) / 2;
        if (pass_ == 1) findCrowds();
        const std::size_t before = set_->points.size();
        const bool any = rebuild();
        treeIsFresh_ = false;
        if (strayed_ || (pass_ == 1 && isHeap(set_->points.size() - before))) return false;
        if (!any) return true;
        findDoubles();
    }
    return true;
}

// Starts again from the source and snap rounds it.
void Noder::snap() {
    doubles_.clear();
    most_ = kNoLimit;
    set_ = source_;
    set_->flags.fill(set_->points.size(), kUnchecked);
    active_ = 1;  // so that the first target is 0
    for (int round = 1; round <= kRounds; ++round) {
        const int target = 1 - active_;
        tree_.build(*set_, near_.reach);
        rounder_.run(*set_, tree_, grid_, round == 1, work_[target], parents_[target]);
        if (round > 1) {
            if (work_[target].points.size() == set_->points.size()) break;
            for (std::uint32_t& parent : parents_[target]) parent = parents_[active_][parent];
            if (!keepsToOrigin(work_[target], parents_[target])) break;
        }
        active_ = target;
        set_ = &work_[target];
        if (set_->points.size() > kBundle * source_->points.size()) break;
    }
    set_->flags.fill(set_->points.size(), kUnchecked);
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
        for (const std::uint8_t f : set_->flags) count += (f & kMeeting) != 0;
        return count;
    };
    const std::size_t before = meetings();
    for (std::uint8_t& f : set_->flags) f = static_cast<std::uint8_t>((f | kUnchecked) & ~kDouble);
    doubles_.clear();
    most_ = kNoLimit;
    pass_ = 2;
    check();
    return splits_.size() + meetings() - before;
}

// Compares all unchecked edges with their surroundings; true if there is something to split.
bool Noder::check() {
    splits_.clear();
    firstSplit_.fill(set_->points.size(), 0);
    tree_.build(*set_, near_.reach);
    treeIsFresh_ = true;
    detail::StepCounter pace;
    const auto visit = [this, &pace](std::uint32_t i, std::uint32_t ci, std::uint32_t j,
                                     std::uint32_t cj) {
        pace.step();
        if (splits_.size() > most_) return;  // too many to go on from
        if (j == i + 1 && ci == cj && isPlainCorner(set_->points.data() + i)) return;
        meet(i, set_->contours[ci], j, set_->contours[cj]);
    };
    tree_.joinSelf(*set_, visit);
    return !splits_.empty();
}

void Noder::split(std::uint32_t edge, const Point& p, bool moved, std::uint32_t by) {
    splits_.push({p, firstSplit_[edge], by, moved});
    firstSplit_[edge] = static_cast<std::uint32_t>(splits_.size());
}

// Tells whether the edges p[0] p[1] and p[1] p[2] of a contour meet in nothing but p[1], and at an
// angle that bending does not close.
bool Noder::isPlainCorner(const Point* p) const {
    return opens(p[0].x - p[1].x, p[0].y - p[1].y, p[2].x - p[1].x, p[2].y - p[1].y, radius_);
}

// The four sums are distances of ends from the other edge's line, times that edge's length.
void Noder::meet(std::uint32_t i, const Contour& ci, std::uint32_t j, const Contour& cj) {
    const std::uint32_t i1 = set_->next(ci, i);
    const std::uint32_t j1 = set_->next(cj, j);
    const Point* p = set_->points.data();
    const Point a = p[i];
    const Point b = p[i1];
    const Point c = p[j];
    const Point d = p[j1];
    if (a == c) return meetAtEnd(i, j, i1, j1, i, j, false);
    if (b == d) return meetAtEnd(i1, j1, i, j, i, j, false);
    if (b == c) return meetAtEnd(i1, j, i, j1, i, j, i1 == j);
    if (a == d) return meetAtEnd(i, j1, i1, j, i, j, i == j1);
    const double ex = b.x - a.x;
    const double ey = b.y - a.y;
    const double fx = d.x - c.x;
    const double fy = d.y - c.y;
    const double gx = c.x - a.x;
    const double gy = c.y - a.y;
    const double turn = ex * fy - ey * fx;
    const double sumC = ex * gy - ey * gx;
    const double sumD = sumC + turn;
    const double sumA = fx * gy - fy * gx;
    const double sumB = sumA + turn;
    const double e = std::fabs(ex) + std::fabs(ey);
    const double f = std::fabs(fx) + std::fabs(fy);
    const double offC = std::fabs(sumC) / e;
    const double offD = std::fabs(sumD) / e;
    const double offA = std::fabs(sumA) / f;
    const double offB = std::fabs(sumB) / f;
    const double nearest = std::min(std::min(offA, offB), std::min(offC, offD));
    if (nearest <= radius_) {
        suspect(i, j);
        if (nearest <= tight_) {
            bool cut = offC <= tight_ && cutAt(i, i1, j, j);
            cut |= offD <= tight_ && cutAt(i, i1, j1, j);
            cut |= offA <= tight_ && cutAt(j, j1, i, i);
            cut |= offB <= tight_ && cutAt(j, j1, i1, i);
            if (!cut) crossClosely(i, i1, j, j1);
            return;
        }
    }
    if ((sumC > 0) == (sumD > 0) || (sumA > 0) == (sumB > 0)) return;
    if (std::fabs(turn) <= kShallow * e * f) suspect(i, j);
    cross(i, i1, j, j1);
}

// The same for edges of which one has an end hardly off the other's line and yet not on that edge.
void Noder::crossClosely(std::uint32_t i, std::uint32_t i1, std::uint32_t j, std::uint32_t j1) {
    const Point* p = set_->points.data();
    if (orientation(p[i], p[i1], p[j]) * orientation(p[i], p[i1], p[j1]) >= 0) return;
    if (orientation(p[j], p[j1], p[i]) * orientation(p[j], p[j1], p[i1]) >= 0) return;
    suspect(i, j);
    cross(i, i1, j, j1);
}

// Splits an edge at a vertex that it passes through or closely by.
bool Noder::cutAt(std::uint32_t edge, std::uint32_t end, std::uint32_t point, std::uint32_t by) {
    const Point& a = set_->points[edge];
    const Point& b = set_->points[end];
    const Point& p = set_->points[point];
    const bool on = orientation(a, b, p) == 0;
    if (!(on ? isWithin(p, a, b) : isNear(p, a, b))) return false;
    touch(edge, point, !on, by);
    return true;
}

// Edges i and j share a point, `shared` of i and `sharedOther` of j; their other ends are farI and
// farJ. `neighbours` tells that the point is one and the same vertex of a contour.
void Noder::meetAtEnd(std::uint32_t shared, std::uint32_t sharedOther, std::uint32_t farI,
                      std::uint32_t farJ, std::uint32_t i, std::uint32_t j, bool neighbours) {
    if (!neighbours) {
        mark(shared);
        mark(sharedOther);
    }
    const Point s = set_->points[shared];
    const Point u = set_->points[farI];
    const Point w = set_->points[farJ];
    const double ex = u.x - s.x;
    const double ey = u.y - s.y;
    const double fx = w.x - s.x;
    const double fy = w.y - s.y;
    if (opens(ex, ey, fx, fy, radius_)) return;
    suspect(i, j);
    if (opens(ex, ey, fx, fy, tight_)) return;
    if (u == w) {
        mark(farI);
        mark(farJ);
    } else if (orientation(s, u, w) != 0) {
        if (isNear(w, s, u)) {
            touch(i, farJ, true, j);
        } else if (isNear(u, s, w)) {
            touch(j, farI, true, i);
        } else {
            return;
        }
    } else if (isWithin(w, s, u)) {
        touch(i, farJ, false, j);
    } else if (isWithin(u, s, w)) {
        touch(j, farI, false, i);
    } else {
        return;  // collinear, but leaving the point in opposite directions
    }
    mark(shared);
    mark(sharedOther);
}

void Noder::cross(std::uint32_t i, std::uint32_t i1, std::uint32_t j, std::uint32_t j1) {
    const Point* p = set_->points.data();
    const Point at = crossingPoint(p[i], p[i1], p[j], p[j1], grid_);
    const bool moved = !isOnAxial(at, p[i], p[i1]) || !isOnAxial(at, p[j], p[j1]);
    if (at == p[i]) {
        mark(i);
    } else if (at == p[i1]) {
        mark(i1);
    } else {
        split(i, at, moved, j);
    }
    if (at == p[j]) {
        mark(j);
    } else if (at == p[j1]) {
        mark(j1);
    } else {
        split(j, at, moved, i);
    }
}

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

// A ray or two are shot quicker without building a tree for them.
bool Noder::useTree() {
    constexpr std::size_t kFewEdges = 300;
    if (!treeIsFresh_ && set_->points.size() > kFewEdges && ++scans_ > 2) {
        tree_.build(*set_, near_.reach);
        treeIsFresh_ = true;
    }
    return treeIsFresh_;
}

std::int32_t Noder::parityLeftOf(const Point& p) {
    if (useTree()) return tree_.parityLeftOf(*set_, p);
    std::int32_t odd = 0;
    const Point* q = set_->points.data();
    for (const Contour& c : set_->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if ((q[i].y > p.y) != (q[i + 1].y > p.y) && isLeftOf(q[i], q[i + 1], p)) {
                odd ^= c.operand;
            }
        }
    }
    return odd;
}

std::int32_t Noder::depthLeftOf(const Point& p) {
    if (useTree()) return tree_.depthLeftOf(*set_, p);
    std::int32_t depth = 0;
    const Point* q = set_->points.data();
    for (const Contour& c : set_->contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            if ((q[i].y > p.y) != (q[i + 1].y > p.y) && isLeftOf(q[i], q[i + 1], p)) {
                depth += q[i].y > p.y ? c.operand : -c.operand;
            }
        }
    }
    return depth;
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

std::size_t Noder::bytes() const {
    std::size_t sum = tree_.bytes() + splits_.bytes() + firstSplit_.bytes() + rounder_.bytes();
    for (int i = 0; i < 2; ++i) {
        sum += work_[i].points.bytes() + work_[i].flags.bytes() + parents_[i].bytes();
    }
    return sum;
}

void Noder::release() {
    tree_.release();
    for (int i = 0; i < 2; ++i) {
        work_[i].points.release();
        work_[i].flags.release();
        work_[i].contours.release();
        parents_[i].release();
    }
    rounder_.release();
    splits_.release();
    firstSplit_.release();
    sorted_.release();
}

}  // namespace jws::gpc
