// SPDX-License-Identifier: MIT
//
// From labels to contours.
//
// A run is part of the result's boundary if the result lies on just one side of it; it is followed
// with the result on its left. At a node every arriving run is continued by the next leaving run
// clockwise, the one that bounds the same wedge of interior, so a walk never crosses another and
// follows one connected piece of interior. Walks are cut wherever they come back to a node. Each
// loop is then simple: an outer contour runs counter-clockwise; where an interior touches itself
// the enclosed part comes out clockwise, as a hole that touches its contour.
//
// A point that was cut into an edge of the input and turned out to be no corner is dropped, unless
// the straight line would come too close to something else. Vertices of the input stay.
//
// Contours are put in order of area: a contour is smaller than every contour around it, so the
// deepest come first and a hole before its outer contour. Areas that the plain sum cannot tell
// apart are compared in double-double. Each contour starts at its lexicographically smallest
// vertex, moved on to the first one that no other contour has, such that vertex (n + 2) / 2 is
// unshared too if possible. None of this depends on the order of the input.
#include "gpc/contour_builder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace jws::gpc {

void ContourBuilder::build(const Arrangement& arrangement, Rule rule, const Scale& unscale,
                           gpc_polygon& result) {
    arrangement_ = &arrangement;
    rule_ = rule;
    unscale_ = unscale;
    choose();
    link();
    trace();
    dropInner();
    if (loops_.empty()) return;
    const std::size_t count = loops_.size();
    result.hole = static_cast<int*>(std::malloc(count * sizeof(int)));
    result.contour = static_cast<gpc_vertex_list*>(std::malloc(count * sizeof(gpc_vertex_list)));
    if (!result.hole || !result.contour) throw std::bad_alloc();
    for (Loop& loop : loops_) {
        loop.vertices = static_cast<gpc_vertex*>(std::malloc(loop.points * sizeof(gpc_vertex)));
        if (!loop.vertices) throw std::bad_alloc();
        gpc_vertex_list& list = result.contour[result.num_contours++];
        list.vertex = loop.vertices;
        list.num_vertices = static_cast<int>(loop.points);
        copy(loop, loop.vertices);
        measure(loop);
    }
    order_.resize(count);
    for (std::size_t i = 0; i < count; ++i) order_[i] = static_cast<std::uint32_t>(i);
    std::sort(order_.begin(), order_.end(), [this](std::uint32_t a, std::uint32_t b) {
        return comesBefore(loops_[a], loops_[b]);
    });
    for (std::size_t i = 0; i < count; ++i) {
        Loop& loop = loops_[order_[i]];
        place(loop);
        result.contour[i].vertex = loop.vertices;
        result.contour[i].num_vertices = static_cast<int>(loop.points);
        result.hole[i] = loop.hole ? 1 : 0;
    }
}

void ContourBuilder::choose() {
    const auto& runs = arrangement_->runs();
    direction_.resize(runs.size());
    for (std::size_t r = 0; r < runs.size(); ++r) {
        direction_[r] = 0;
        if (runs[r].merged || runs[r].step == 0) continue;
        const bool left = rule_.holds(runs[r].left);
        const bool right = rule_.holds(arrangement_->rightOf(runs[r]));
        if (left != right) direction_[r] = left ? 1 : -1;
    }
}

void ContourBuilder::link() {
    next_.resize(arrangement_->runs().size());
    for (const Arrangement::Node& n : arrangement_->nodes()) {
        const Arrangement::HalfEdge* h = arrangement_->around().data() + n.first;
        std::uint32_t leaving = Arrangement::kNone;
        std::uint32_t firstArriving = Arrangement::kNone;
        for (std::uint32_t i = 0; i < n.count; ++i) {
            const std::uint32_t run = h[i] >> 1;
            if (!isChosen(run)) continue;
            const bool leaves = (direction_[run] > 0) == ((h[i] & 1) == 0);
            if (leaves) {
                leaving = run;
            } else if (leaving == Arrangement::kNone) {
                firstArriving = run;
            } else {
                next_[run] = leaving;
            }
        }
        if (firstArriving != Arrangement::kNone) next_[firstArriving] = leaving;
    }
}

void ContourBuilder::trace() {
    const auto& runs = arrangement_->runs();
    onPath_.fill(arrangement_->nodes().size(), 0);
    visits_.fill(arrangement_->nodes().size(), 0);
    steps_.clear();
    loops_.clear();
    for (std::uint32_t start = 0; start < runs.size(); ++start) {
        if (!isChosen(start)) continue;
        if (runs[start].from == Arrangement::kNone) {
            path_.clear();
            path_.push(start);
            emit(0);
            continue;
        }
        if (direction_[start] > 1 || direction_[start] < -1) continue;
        path_.clear();
        for (std::uint32_t run = start; direction_[run] == 1 || direction_[run] == -1;
             run = next_[run]) {
            const std::uint32_t node = startOf(run);
            if (onPath_[node] != 0) emit(onPath_[node] - 1);
            path_.push(run);
            onPath_[node] = static_cast<std::uint32_t>(path_.size());
            direction_[run] = static_cast<std::int8_t>(2 * direction_[run]);
        }
        emit(0);
    }
}

// Takes the loop that ends the path off it.
void ContourBuilder::emit(std::uint32_t from) {
    if (path_.size() == from) return;
    const auto& runs = arrangement_->runs();
    Loop loop{};
    loop.first = static_cast<std::uint32_t>(steps_.size());
    std::uint32_t points = 0;
    for (std::size_t i = from; i < path_.size(); ++i) {
        const std::uint32_t run = path_[i];
        steps_.push(run);
        points += runs[run].count;
        if (runs[run].from == Arrangement::kNone) continue;
        ++points;
        onPath_[startOf(run)] = 0;
        ++visits_[startOf(run)];
    }
    path_.resize(from);
    loop.last = static_cast<std::uint32_t>(steps_.size());
    loop.points = points;
    if (points >= 3) loops_.push(loop);
}

// Marks the points that were cut into an edge of the input and are no corners of the result:
// there the loop arrives and leaves along that edge, and no other contour comes by. Points dropped
// in a row must lie on one edge, lest a slow bend be straightened step by step; and they stay if
// the straight line would pass another vertex too closely, or is there already.
void ContourBuilder::dropInner() {
    dropped_.fill(steps_.size(), 0);
    for (Loop& loop : loops_) dropInner(loop);
}

void ContourBuilder::dropInner(Loop& loop) {
    const auto& runs = arrangement_->runs();
    const std::uint32_t count = loop.last - loop.first;
    if (count < 2) return;
    const std::uint32_t* steps = steps_.data() + loop.first;
    const auto pointAt = [&](std::uint32_t k) {
        return arrangement_->nodes()[startOf(steps[k])].p;
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
        return arrangement_->pointOf(r, first == (direction_[run] > 0) ? 0 : r.count - 1);
    };
    Point from = keepStart ? pointAt(start) : innerPoint(steps[(start + count - 1) % count], false);
    inner_.clear();
    chain_.clear();
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t k = (start + i) % count;
        const std::uint32_t before = steps[(k + count - 1) % count];
        const Point p = pointAt(k);
        if ((i == 0 && keepStart) || visits_[startOf(steps[k])] > 1 ||
            !continues(before, steps[k], p)) {
            straighten(loop, start + i, from, p);
            from = p;
        } else {
            inner_.push(p);
        }
        if (runs[steps[k]].count == 0) continue;
        straighten(loop, start + i + 1, from, innerPoint(steps[k], true));
        from = innerPoint(steps[k], false);
    }
    straighten(loop, start + count, from, pointAt(start));
}

// Drops the points gathered in `inner_`, which start the steps before step `end`.
void ContourBuilder::straighten(Loop& loop, std::uint32_t end, const Point& from, const Point& to) {
    const std::uint32_t count = loop.last - loop.first;
    const std::uint32_t inner = static_cast<std::uint32_t>(inner_.size());
    if (inner > 0 && loop.points >= inner + 3 && mayStraighten(from, to)) {
        loop.points -= inner;
        for (std::uint32_t i = end - inner; i < end; ++i) dropped_[loop.first + i % count] = 1;
    }
    inner_.clear();
    chain_.clear();
}

bool ContourBuilder::mayStraighten(const Point& from, const Point& to) {
    Noder& noder = arrangement_->noder();
    bool exact = true;
    for (const Point& p : inner_) {
        if (orientation(from, to, p) == 0) continue;
        if (!noder.nearness().holds(p, from, to)) return false;
        exact = false;
    }
    if (exact) return true;
    std::sort(inner_.begin(), inner_.end());
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
        clear = clear && std::binary_search(inner_.begin(), inner_.end(), p);
    });
    return clear;
}

// Tells whether an edge of the input, through all points dropped just before, runs on through `p`;
// leaves those that do in the chain.
bool ContourBuilder::continues(std::uint32_t before, std::uint32_t run, const Point& p) {
    const Arrangement& a = *arrangement_;
    const Noder& noder = a.noder();
    const ContourSet& origin = noder.origin();
    const auto edgeOf = [&](std::uint32_t r, bool end) {
        return noder.originOf(end ? a.lastEdge(a.runs()[r]) : a.firstEdge(a.runs()[r]));
    };
    const std::size_t known = chain_.size();
    std::size_t kept = 0;
    for (std::uint32_t r = before; r != Arrangement::kNone; r = a.runs()[r].twin) {
        const std::uint32_t edge = edgeOf(r, direction_[before] > 0);
        bool leaves = false;
        for (std::uint32_t q = run; q != Arrangement::kNone; q = a.runs()[q].twin) {
            leaves = leaves || edgeOf(q, direction_[run] < 0) == edge;
        }
        if (!leaves) continue;
        const Point& from = origin.points[edge];
        const Point& to = origin.points[edge + 1];
        if (orientation(from, to, p) != 0 && !noder.nearness().holds(p, from, to)) continue;
        if (known == 0) {
            chain_.push(edge);
            continue;
        }
        for (std::size_t i = kept; i < known; ++i) {
            if (chain_[i] == edge) std::swap(chain_[kept++], chain_[i]);
        }
    }
    if (known > 0) chain_.resize(kept);
    return !chain_.empty();
}

void ContourBuilder::append(const Arrangement& arrangement, Rule rule, ContourSet& set,
                            std::int32_t operand) {
    arrangement_ = &arrangement;
    rule_ = rule;
    choose();
    link();
    trace();
    dropInner();
    for (const Loop& loop : loops_) {
        const std::size_t first = set.points.size();
        set.points.resize(first + loop.points);
        copy(loop, set.points.data() + first);
        set.close(first, operand);
    }
}

template <class Vertex>
void ContourBuilder::copy(const Loop& loop, Vertex* out) const {
    const ContourSet& set = arrangement_->set();
    const Point* p = set.points.data();
    const auto put = [&](const Point& q) { *out++ = {q.x, q.y}; };
    for (std::uint32_t s = loop.first; s < loop.last; ++s) {
        const Arrangement::Run& r = arrangement_->runs()[steps_[s]];
        const Contour& c = set.contours[r.contour];
        const bool forward = direction_[steps_[s]] > 0;
        if (r.from != Arrangement::kNone && !dropped_[s]) {
            put(arrangement_->nodes()[forward ? r.from : r.to].p);
        }
        if (r.count == 0) continue;
        const std::uint32_t beforeWrap = std::min(r.count, c.last - r.firstPoint);
        const Point* head = p + r.firstPoint;
        const Point* tail = p + c.first;
        const std::uint32_t afterWrap = r.count - beforeWrap;
        if (forward) {
            for (std::uint32_t i = 0; i < beforeWrap; ++i) put(head[i]);
            for (std::uint32_t i = 0; i < afterWrap; ++i) put(tail[i]);
        } else {
            for (std::uint32_t i = afterWrap; i > 0; --i) put(tail[i - 1]);
            for (std::uint32_t i = beforeWrap; i > 0; --i) put(head[i - 1]);
        }
    }
}

void ContourBuilder::measure(Loop& loop) {
    const gpc_vertex* v = loop.vertices;
    const std::uint32_t n = loop.points;
    double sum = 0;
    double size = 0;
    std::uint32_t least = 0;
    double x = v[n - 1].x - v[0].x;
    double y = v[n - 1].y - v[0].y;
    for (std::uint32_t i = 0; i < n; ++i) {
        const double nextX = v[i].x - v[0].x;
        const double nextY = v[i].y - v[0].y;
        const double left = x * nextY;
        const double right = y * nextX;
        sum += left - right;
        size += std::fabs(left) + std::fabs(right);
        x = nextX;
        y = nextY;
        if (v[i].x < v[least].x || (v[i].x == v[least].x && v[i].y < v[least].y)) least = i;
    }
    loop.least = least;
    const gpc_vertex& a = v[least == 0 ? n - 1 : least - 1];
    const gpc_vertex& b = v[least];
    const gpc_vertex& c = v[least + 1 == n ? 0 : least + 1];
    loop.hole = orientation({a.x, a.y}, {b.x, b.y}, {c.x, c.y}) < 0;
    loop.area = std::fabs(sum);
    loop.error = size * (n + 4.0) * 2.3e-16;
}

// From the smallest vertex on, counter-clockwise: independent of where the trace began.
WideArea ContourBuilder::wideOf(Loop& loop) {
    if (!loop.measuredWide) {
        const std::uint32_t n = loop.points;
        turned_.resize(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::uint32_t k = loop.least + (loop.hole ? n - i : i);
            const gpc_vertex& v = loop.vertices[k < n ? k : k - n];
            turned_[i] = {v.x, v.y};
        }
        loop.wide = wideArea(turned_.data(), static_cast<int>(n));
        loop.measuredWide = true;
    }
    return loop.wide;
}

bool ContourBuilder::comesBefore(Loop& a, Loop& b) {
    if (a.area + a.error < b.area - b.error) return true;
    if (b.area + b.error < a.area - a.error) return false;
    const WideArea areaA = wideOf(a);
    const WideArea areaB = wideOf(b);
    if (areaA.high != areaB.high) return areaA.high < areaB.high;
    if (areaA.low != areaB.low) return areaA.low < areaB.low;
    if (a.points != b.points) return a.points < b.points;
    if (a.hole != b.hole) return a.hole;
    for (std::uint32_t i = 0; i < a.points; ++i) {
        const gpc_vertex& va = a.vertices[(a.least + i) % a.points];
        const gpc_vertex& vb = b.vertices[(b.least + i) % b.points];
        if (va.x != vb.x) return va.x < vb.x;
        if (va.y != vb.y) return va.y < vb.y;
    }
    return false;
}

// Turns the contour to its starting vertex and gives it its own scale again.
void ContourBuilder::place(Loop& loop) {
    const auto& runs = arrangement_->runs();
    const std::uint32_t n = loop.points;
    std::uint32_t start = loop.least;
    bool any = false;
    std::uint32_t position = 0;
    for (std::uint32_t s = loop.first; s < loop.last; ++s) {
        const Arrangement::Run& r = runs[steps_[s]];
        if (r.from == Arrangement::kNone) break;
        if (visits_[startOf(steps_[s])] > 1) {
            if (!any) shared_.fill(n, 0);
            any = true;
            shared_[position] = 1;
        }
        position += r.count + (dropped_[s] ? 0 : 1);
    }
    if (any) {
        const std::uint32_t middle = (n + 2) / 2;
        bool found = false;
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::uint32_t k = loop.least + i < n ? loop.least + i : loop.least + i - n;
            if (shared_[k]) continue;
            if (!found) start = k;
            found = true;
            if (!shared_[(k + middle) % n]) {
                start = k;
                break;
            }
        }
    }
    if (start != 0) std::rotate(loop.vertices, loop.vertices + start, loop.vertices + n);
    for (std::uint32_t i = 0; i < n; ++i) {
        const Point p = unscale_(loop.vertices[i].x, loop.vertices[i].y);
        loop.vertices[i] = {p.x, p.y};
    }
}

void ContourBuilder::release() {
    direction_.release();
    next_.release();
    onPath_.release();
    visits_.release();
    path_.release();
    steps_.release();
    loops_.release();
    dropped_.release();
    chain_.release();
    inner_.release();
    shared_.release();
    turned_.release();
    order_.release();
}

}  // namespace jws::gpc
