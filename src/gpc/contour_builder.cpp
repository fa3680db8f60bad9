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
    m_arrangement = &arrangement;
    m_rule = rule;
    m_unscale = unscale;
    choose();
    link();
    trace();
    dropInner();
    if (m_loops.empty()) return;
    const std::size_t count = m_loops.size();
    result.hole = static_cast<int*>(std::malloc(count * sizeof(int)));
    result.contour = static_cast<gpc_vertex_list*>(std::malloc(count * sizeof(gpc_vertex_list)));
    if (!result.hole || !result.contour) throw std::bad_alloc();
    for (Loop& loop : m_loops) {
        loop.vertices = static_cast<gpc_vertex*>(std::malloc(loop.points * sizeof(gpc_vertex)));
        if (!loop.vertices) throw std::bad_alloc();
        gpc_vertex_list& list = result.contour[result.num_contours++];
        list.vertex = loop.vertices;
        list.num_vertices = static_cast<int>(loop.points);
        copy(loop, loop.vertices);
        measure(loop);
    }
    m_order.resize(count);
    for (std::size_t i = 0; i < count; ++i) m_order[i] = static_cast<std::uint32_t>(i);
    std::sort(m_order.begin(), m_order.end(), [this](std::uint32_t a, std::uint32_t b) {
        return comesBefore(m_loops[a], m_loops[b]);
    });
    for (std::size_t i = 0; i < count; ++i) {
        Loop& loop = m_loops[m_order[i]];
        place(loop);
        result.contour[i].vertex = loop.vertices;
        result.contour[i].num_vertices = static_cast<int>(loop.points);
        result.hole[i] = loop.hole ? 1 : 0;
    }
}

void ContourBuilder::choose() {
    const auto& runs = m_arrangement->runs();
    m_direction.resize(runs.size());
    for (std::size_t r = 0; r < runs.size(); ++r) {
        m_direction[r] = 0;
        if (runs[r].merged || runs[r].step == 0) continue;
        const bool left = m_rule.holds(runs[r].left);
        const bool right = m_rule.holds(m_arrangement->rightOf(runs[r]));
        if (left != right) m_direction[r] = left ? 1 : -1;
    }
}

void ContourBuilder::link() {
    m_next.resize(m_arrangement->runs().size());
    for (const Arrangement::Node& n : m_arrangement->nodes()) {
        const Arrangement::HalfEdge* h = m_arrangement->around().data() + n.first;
        std::uint32_t leaving = Arrangement::kNone;
        std::uint32_t firstArriving = Arrangement::kNone;
        for (std::uint32_t i = 0; i < n.count; ++i) {
            const std::uint32_t run = h[i] >> 1;
            if (!isChosen(run)) continue;
            const bool leaves = (m_direction[run] > 0) == ((h[i] & 1) == 0);
            if (leaves) {
                leaving = run;
            } else if (leaving == Arrangement::kNone) {
                firstArriving = run;
            } else {
                m_next[run] = leaving;
            }
        }
        if (firstArriving != Arrangement::kNone) m_next[firstArriving] = leaving;
    }
}

void ContourBuilder::trace() {
    const auto& runs = m_arrangement->runs();
    m_onPath.fill(m_arrangement->nodes().size(), 0);
    m_visits.fill(m_arrangement->nodes().size(), 0);
    m_steps.clear();
    m_loops.clear();
    for (std::uint32_t start = 0; start < runs.size(); ++start) {
        if (!isChosen(start)) continue;
        if (runs[start].from == Arrangement::kNone) {
            m_path.clear();
            m_path.push(start);
            emit(0);
            continue;
        }
        if (m_direction[start] > 1 || m_direction[start] < -1) continue;
        m_path.clear();
        for (std::uint32_t run = start; m_direction[run] == 1 || m_direction[run] == -1;
             run = m_next[run]) {
            const std::uint32_t node = startOf(run);
            if (m_onPath[node] != 0) emit(m_onPath[node] - 1);
            m_path.push(run);
            m_onPath[node] = static_cast<std::uint32_t>(m_path.size());
            m_direction[run] = static_cast<std::int8_t>(2 * m_direction[run]);
        }
        emit(0);
    }
}

// Takes the loop that ends the path off it.
void ContourBuilder::emit(std::uint32_t from) {
    if (m_path.size() == from) return;
    const auto& runs = m_arrangement->runs();
    Loop loop{};
    loop.first = static_cast<std::uint32_t>(m_steps.size());
    std::uint32_t points = 0;
    for (std::size_t i = from; i < m_path.size(); ++i) {
        const std::uint32_t run = m_path[i];
        m_steps.push(run);
        points += runs[run].count;
        if (runs[run].from == Arrangement::kNone) continue;
        ++points;
        m_onPath[startOf(run)] = 0;
        ++m_visits[startOf(run)];
    }
    m_path.resize(from);
    loop.last = static_cast<std::uint32_t>(m_steps.size());
    loop.points = points;
    if (points >= 3) m_loops.push(loop);
}

void ContourBuilder::append(const Arrangement& arrangement, Rule rule, ContourSet& set,
                            std::int32_t operand) {
    m_arrangement = &arrangement;
    m_rule = rule;
    choose();
    link();
    trace();
    dropInner();
    for (const Loop& loop : m_loops) {
        const std::size_t first = set.points.size();
        set.points.resize(first + loop.points);
        copy(loop, set.points.data() + first);
        set.close(first, operand);
    }
}

template <class Vertex>
void ContourBuilder::copy(const Loop& loop, Vertex* out) const {
    const ContourSet& set = m_arrangement->set();
    const Point* p = set.points.data();
    const auto put = [&](const Point& q) { *out++ = {q.x, q.y}; };
    for (std::uint32_t s = loop.first; s < loop.last; ++s) {
        const Arrangement::Run& r = m_arrangement->runs()[m_steps[s]];
        const Contour& c = set.contours[r.contour];
        const bool forward = m_direction[m_steps[s]] > 0;
        if (r.from != Arrangement::kNone && !m_dropped[s]) {
            put(m_arrangement->nodes()[forward ? r.from : r.to].p);
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
    m_direction.release();
    m_next.release();
    m_onPath.release();
    m_visits.release();
    m_path.release();
    m_steps.release();
    m_loops.release();
    m_dropped.release();
    m_chain.release();
    m_inner.release();
    m_shared.release();
    m_turned.release();
    m_order.release();
}

}  // namespace jws::gpc
