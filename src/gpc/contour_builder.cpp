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
// contour_corners.cpp then drops points that are no corners, contour_order.cpp puts the contours in
// order.
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
