// SPDX-License-Identifier: MIT
//
// The arrangement of two operands' edges on the integer grid.
//
// Edges are cut wherever they cross, touch or overlap. A crossing is rounded to the grid, which
// bends the two edges a little, and a bent edge may meet others that it missed before: so cutting
// is repeated with the new pieces until nothing meets except at end points. Every decision is
// exact, so that from there on the picture is a plane graph without exceptions (iterated snapping
// after Hobby 1999).
//
// An edge that passes a corner within a few grid steps is cut there, too. Rounded crossings come
// back as corners when a result is clipped once more: without this, edges meant to coincide would
// leave slivers thinner than a grid step, and holes would hang on their outer rings by them.
//
// A closed loop stays one when its edges are bent, so the even-odd parity stays well defined, and
// so does the winding number. Pieces that coincide are one segment that carries the parity of each
// operand, or the sum of their directions; where that is nothing there is no boundary.
//
// The sides are labelled in one sweep in lexicographic order: among the segments that the sweep
// line crosses, what lies right of a new segment is what lies left of the one below it. A vertical
// segment counts as the limit of ever steeper ones.
//
// Pairs that may meet are found by a sweep over boxes from left to right, in horizontal strips
// about as high as edges are on the average. O((n + k) log n) for the outlines of practice; edges
// as long as the whole extent are compared with one another.
#include "gpc/arrangement.h"

#include <algorithm>
#include <cmath>

namespace jws::detail {
namespace {

using Segment = Arrangement::Segment;

/// Lexicographic by a, then counter-clockwise around a, then by b.
bool precedes(const Segment& s, const Segment& t) {
    if (s.a != t.a) return s.a < t.a;
    if (s.b == t.b) return s.source[0] + s.source[1] < t.source[0] + t.source[1];
    const Wide turn = cross(s.b - s.a, t.b - t.a);
    return turn != 0 ? turn > 0 : s.b < t.b;
}

int sign(const Wide& w) { return w > 0 ? 1 : (w < 0 ? -1 : 0); }

/// A segment's direction and how far off, as a cross product, a point is still on it.
struct Ruler {
    GridPoint direction;
    Wide reach;

    explicit Ruler(const Segment& s) : direction(s.b - s.a), reach(cutReach(direction)) {}
};

/// `turn` is the cross product of the direction with s.a -> p.
bool passes(const Segment& s, const Ruler& ruler, const GridPoint& p, const Wide& turn) {
    if (turn > ruler.reach || turn < -ruler.reach || p == s.a || p == s.b) return false;
    return dot(p - s.a, ruler.direction) > 0 && dot(p - s.b, ruler.direction) < 0;
}

/// The crossing of two segments, rounded to the grid. `along` over `across` is where s.a -> s.b
/// meets t; 64 bits of mantissa place it within a thousandth of a grid step.
GridPoint crossing(const Segment& s, const Segment& t) {
    const GridPoint d = s.b - s.a;
    const GridPoint e = t.b - t.a;
    const long double share =
        static_cast<long double>(cross(t.a - s.a, e)) / static_cast<long double>(cross(d, e));
    return {s.a.x + std::llround(share * static_cast<long double>(d.x)),
            s.a.y + std::llround(share * static_cast<long double>(d.y))};
}

}  // namespace

void Arrangement::clear(Rule rule) {
    segments_.clear();
    sources_ = 0;
    rule_ = rule;
}

void Arrangement::addEdge(GridPoint from, GridPoint to, int operand) {
    if (from == to) return;
    const bool backward = to < from;
    if (backward) std::swap(from, to);
    const int step = rule_ == Rule::Parity ? 1 << operand : backward ? -1 : 1;
    Segment s = {from, to, {-1, -1}, step, 0, true};
    s.source[operand] = sources_++;
    segments_.push_back(s);
}

bool Arrangement::resolve() {
    constexpr int kRounds = 40;
    sortAndMerge();
    for (int round = 0; round < kRounds; ++round) {
        findCuts();
        if (cuts_.empty()) return true;
        applyCuts();
        sortAndMerge();
    }
    return false;
}

void Arrangement::sortAndMerge() {
    std::sort(segments_.begin(), segments_.end(), precedes);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < segments_.size();) {
        Segment merged = segments_[i];
        for (++i; i < segments_.size() && segments_[i].a == merged.a && segments_[i].b == merged.b;
             ++i) {
            const Segment& s = segments_[i];
            merged.step = sum(merged.step, s.step);
            merged.fresh = merged.fresh || s.fresh;
            for (int k = 0; k < 2; ++k) merged.source[k] = std::max(merged.source[k], s.source[k]);
        }
        for (int k = 0; k < 2 && rule_ == Rule::Parity; ++k) {
            if (!(merged.step >> k & 1)) merged.source[k] = -1;
        }
        if (merged.step != 0) segments_[kept++] = merged;
    }
    segments_.resize(kept);
}

void Arrangement::findCuts() {
    cuts_.clear();
    boxes_.clear();
    if (segments_.empty()) return;
    std::int64_t bottom = segments_[0].a.y;
    std::int64_t top = bottom;
    double heights = 0;
    for (std::size_t i = 0; i < segments_.size(); ++i) {
        const Segment& s = segments_[i];
        const Box box = {s.a.x, s.b.x + kCutSteps, std::min(s.a.y, s.b.y),
                         std::max(s.a.y, s.b.y) + kCutSteps, static_cast<int>(i)};
        boxes_.push_back(box);
        bottom = std::min(bottom, box.bottom);
        top = std::max(top, box.top);
        heights += static_cast<double>(box.top - box.bottom);
    }
    const double n = static_cast<double>(segments_.size());
    const double extent = static_cast<double>(top - bottom);
    const double wanted = std::min(n / 16, heights > 0 ? extent * n / heights : n / 16);
    constexpr double kFew = 256;  // compared in one strip
    const auto strips = n < kFew ? 1 : static_cast<std::int64_t>(std::max(1.0, wanted));
    const std::int64_t height = (top - bottom) / strips + 1;
    if (strips == 1) {
        sweepStrip(boxes_.data(), boxes_.data() + boxes_.size(), bottom, top);
        return;
    }
    // The boxes of each strip, strip by strip, still from left to right (a counting sort).
    auto forEachStrip = [&](auto visit) {
        for (const Box& box : boxes_) {
            const std::int64_t last = (box.top - bottom) / height;
            for (std::int64_t k = (box.bottom - bottom) / height; k <= last; ++k) visit(k, box);
        }
    };
    stripEnds_.assign(strips + 1, 0);
    forEachStrip([&](std::int64_t k, const Box&) { ++stripEnds_[k + 1]; });
    for (std::int64_t k = 0; k < strips; ++k) stripEnds_[k + 1] += stripEnds_[k];
    inStrips_.resize(stripEnds_[strips]);
    forEachStrip([&](std::int64_t k, const Box& box) { inStrips_[stripEnds_[k]++] = box; });
    std::size_t from = 0;
    for (std::int64_t k = 0; k < strips; ++k) {
        sweepStrip(inStrips_.data() + from, inStrips_.data() + stripEnds_[k], bottom + k * height,
                   bottom + (k + 1) * height - 1);
        from = stripEnds_[k];
    }
}

// Compares the boxes of a strip. A pair that shares several strips belongs to the lowest.
void Arrangement::sweepStrip(const Box* begin, const Box* end, std::int64_t bottom,
                             std::int64_t top) {
    for (const Box* p = begin; p != end; ++p) {
        const bool fresh = segments_[p->segment].fresh;
        for (const Box* q = p + 1; q != end && q->left <= p->right; ++q) {
            if (q->bottom > p->top || q->top < p->bottom) continue;
            const std::int64_t common = std::max(p->bottom, q->bottom);
            if (common < bottom || common > top) continue;
            if (fresh || segments_[q->segment].fresh) meet(p->segment, q->segment);
        }
    }
}

void Arrangement::meet(int i, int j) {
    const Segment& s = segments_[i];
    const Segment& t = segments_[j];
    const Ruler onS(s);
    const Ruler onT(t);
    const Wide ta = cross(onS.direction, t.a - s.a);
    const Wide tb = cross(onS.direction, t.b - s.a);
    if (ta > onS.reach && tb > onS.reach) return;
    if (ta < -onS.reach && tb < -onS.reach) return;
    const Wide sa = cross(onT.direction, s.a - t.a);
    const Wide sb = cross(onT.direction, s.b - t.a);
    const std::size_t before = cuts_.size();
    if (passes(s, onS, t.a, ta)) cuts_.push_back({i, t.a});
    if (passes(s, onS, t.b, tb)) cuts_.push_back({i, t.b});
    if (passes(t, onT, s.a, sa)) cuts_.push_back({j, s.a});
    if (passes(t, onT, s.b, sb)) cuts_.push_back({j, s.b});
    if (cuts_.size() > before) return;  // the pieces meet again in the next round
    if (sign(ta) * sign(tb) < 0 && sign(sa) * sign(sb) < 0) {
        const GridPoint p = crossing(s, t);
        cutAt(i, p);
        cutAt(j, p);
    }
}

void Arrangement::cutAt(int segment, const GridPoint& p) {
    if (p != segments_[segment].a && p != segments_[segment].b) cuts_.push_back({segment, p});
}

void Arrangement::applyCuts() {
    std::sort(cuts_.begin(), cuts_.end(), [this](const Cut& c, const Cut& d) {
        if (c.segment != d.segment) return c.segment < d.segment;
        if (c.point == d.point) return false;
        const Segment& s = segments_[c.segment];
        const Wide along = dot(d.point - c.point, s.b - s.a);
        return along != 0 ? along > 0 : c.point < d.point;
    });
    pieces_.clear();
    std::size_t next = 0;
    for (std::size_t i = 0; i < segments_.size(); ++i) {
        Segment piece = segments_[i];
        piece.fresh = next < cuts_.size() && cuts_[next].segment == static_cast<int>(i);
        GridPoint from = piece.a;
        const GridPoint end = piece.b;
        auto add = [&](const GridPoint& to) {
            if (to == from) return;
            piece.a = std::min(from, to);
            piece.b = std::max(from, to);
            pieces_.push_back(piece);
            from = to;
        };
        for (; next < cuts_.size() && cuts_[next].segment == static_cast<int>(i); ++next) {
            add(cuts_[next].point);
        }
        add(end);
    }
    segments_.swap(pieces_);
}

bool Arrangement::isBelow(int i, int j) const {
    const Segment& s = segments_[i];
    const Segment& t = segments_[j];
    if (s.a == t.a) return orientation(s.a, s.b, t.b) > 0;
    if (s.a < t.a) return orientation(s.a, s.b, t.a) > 0;
    return orientation(t.a, t.b, s.a) < 0;
}

void Arrangement::label() {
    const int count = static_cast<int>(segments_.size());
    byEnd_.resize(count);
    for (int i = 0; i < count; ++i) byEnd_[i] = i;
    std::sort(byEnd_.begin(), byEnd_.end(),
              [this](int i, int j) { return segments_[i].b < segments_[j].b; });
    active_.clear();
    auto placeOf = [this](int i) {
        return std::partition_point(active_.begin(), active_.end(),
                                    [this, i](int j) { return j != i && isBelow(j, i); });
    };
    std::size_t ended = 0;
    for (int i = 0; i < count; ++i) {
        Segment& s = segments_[i];
        while (!(s.a < segments_[byEnd_[ended]].b)) active_.erase(placeOf(byEnd_[ended++]));
        const auto place = placeOf(i);
        s.right = place == active_.begin() ? 0 : left(segments_[*(place - 1)]);
        active_.insert(place, i);
    }
}

}  // namespace jws::detail
