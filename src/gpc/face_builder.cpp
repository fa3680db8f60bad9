// SPDX-License-Identifier: MIT
//
// The faces that lines cut an area into.
//
// A half-edge, a run with a direction, has one face on its left. At a node it is continued by the
// next one clockwise, which bounds the same wedge, so that a walk follows one connected boundary of
// one face. A line divides only where its two sides are different faces: runs that the same walk
// passes on both sides lead nowhere, such as ends inside the area and ties between boundaries, and
// go before the walks are made once more. There are none then: what is left is not connected by
// single runs.
//
// Walks are cut wherever they come back to a node, so that contours are simple. A walk around a
// face's outside has one counter-clockwise loop; one without it goes around an island in a face.
// Which face that is tells a sweep from left to right over all edges, which keeps those at hand
// sorted from bottom to top: the island's leftmost point lies above an edge of that face, or of
// another island in it that begins further left. Edges do not cross any more, so that the order of
// two is a matter of one exact orientation.
//
// O(n log n) for n edges in the arrangement.
#include "gpc/face_builder.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <set>

namespace jws::gpc {

bool FaceBuilder::build(const Arrangement& arrangement, const Scale& unscale, gpc_polygon& faces) {
    m_arrangement = &arrangement;
    choose();
    while (!trace()) {
    }
    bool cuts = false;
    for (std::size_t r = 0; r < m_keep.size() && !cuts; ++r) {
        cuts = m_keep[r] && arrangement.runs()[r].step == 0;
    }
    if (!cuts) return false;
    findFaces();
    // By face, its outer contour first.
    m_order.resize(m_loops.size());
    for (std::size_t i = 0; i < m_order.size(); ++i) m_order[i] = static_cast<std::uint32_t>(i);
    std::sort(m_order.begin(), m_order.end(), [this](std::uint32_t a, std::uint32_t b) {
        const std::uint32_t faceA = m_cycles[m_loops[a].cycle], faceB = m_cycles[m_loops[b].cycle];
        if (faceA != faceB) return faceA < faceB;
        return m_loops[a].isOuter != m_loops[b].isOuter ? m_loops[a].isOuter : a < b;
    });
    const std::size_t count = m_loops.size();
    faces.hole = static_cast<int*>(std::malloc(count * sizeof(int)));
    faces.contour = static_cast<gpc_vertex_list*>(std::malloc(count * sizeof(gpc_vertex_list)));
    if (!faces.hole || !faces.contour) throw std::bad_alloc();
    m_outerOf.fill(arrangement.nodes().size(), 0);
    for (const std::uint32_t i : m_order)
        write(m_loops[i], m_loops[i].isOuter ? 0 : 1, unscale, faces);
    return true;
}

bool FaceBuilder::isCutter(std::uint32_t run) const {
    const auto& runs = m_arrangement->runs();
    for (; run != kNone; run = runs[run].twin) {
        if (m_arrangement->set().contours[runs[run].contour].operand == 0) return true;
    }
    return false;
}

// Keeps the boundary of the area and the lines within it.
void FaceBuilder::choose() {
    const auto& runs = m_arrangement->runs();
    m_keep.resize(runs.size());
    for (std::uint32_t r = 0; r < runs.size(); ++r) {
        const bool bounds = runs[r].step != 0;
        m_keep[r] = !runs[r].merged && (bounds || ((runs[r].left & 1) && isCutter(r)));
    }
}

void FaceBuilder::link() {
    m_next.resize(2 * m_keep.size());
    for (std::uint32_t r = 0; r < m_keep.size(); ++r) {
        if (m_arrangement->runs()[r].from != kNone) continue;
        m_next[2 * r] = 2 * r;
        m_next[2 * r + 1] = 2 * r + 1;
    }
    for (const Arrangement::Node& n : m_arrangement->nodes()) {
        const HalfEdge* h = m_arrangement->around().data() + n.first;
        HalfEdge clockwise = kNone, first = kNone;
        for (std::uint32_t i = 0; i < n.count; ++i) {
            if (!m_keep[h[i] >> 1]) continue;
            if (first == kNone) {
                first = h[i];
            } else {
                m_next[h[i] ^ 1] = clockwise;
            }
            clockwise = h[i];
        }
        if (first != kNone) m_next[first ^ 1] = clockwise;
    }
}

// Makes the walks; false, and the runs are gone, where one passes both sides of a run.
bool FaceBuilder::trace() {
    link();
    m_cycle.fill(m_next.size(), 0xFF);
    m_onPath.fill(m_arrangement->nodes().size(), 0);
    m_steps.clear();
    m_loops.clear();
    m_cycles.clear();
    for (HalfEdge h = 0; h < m_next.size(); ++h) {
        if (isFace(h) && m_cycle[h] == kNone) splitCycle(h);
    }
    bool clean = true;
    for (std::uint32_t r = 0; r < m_keep.size(); ++r) {
        if (!m_keep[r] || m_cycle[2 * r] == kNone || m_cycle[2 * r] != m_cycle[2 * r + 1]) continue;
        m_keep[r] = 0;
        clean = false;
    }
    return clean;
}

// Walks from `start` on and takes a loop off the path whenever it comes back to a node.
void FaceBuilder::splitCycle(HalfEdge start) {
    const auto cycle = static_cast<std::uint32_t>(m_cycles.size());
    m_cycles.push(kNone);
    m_path.clear();
    for (HalfEdge h = start; m_cycle[h] == kNone; h = m_next[h]) {
        m_cycle[h] = cycle;
        const std::uint32_t node = m_arrangement->nodeOf(h);
        if (node != kNone) {
            if (m_onPath[node] != 0) addLoop(m_onPath[node] - 1, cycle);
            m_path.push(h);
            m_onPath[node] = static_cast<std::uint32_t>(m_path.size());
        } else {
            m_path.push(h);
        }
    }
    addLoop(0, cycle);
}

/// Calls `visit(p)` for the point a half-edge leaves from and for its inner points, in order.
template <class Visit>
void FaceBuilder::forPoints(HalfEdge h, const Visit& visit) const {
    const Arrangement::Run& r = m_arrangement->runs()[h >> 1];
    if (r.from != kNone) visit(m_arrangement->nodes()[m_arrangement->nodeOf(h)].p);
    for (std::uint32_t k = 0; k < r.count; ++k) {
        visit(m_arrangement->pointOf(r, (h & 1) ? r.count - 1 - k : k));
    }
}

// Takes the end of the path off it. A loop of fewer than three points goes there and back.
void FaceBuilder::addLoop(std::uint32_t from, std::uint32_t cycle) {
    Loop loop{};
    loop.first = static_cast<std::uint32_t>(m_steps.size());
    loop.cycle = cycle;
    m_turned.clear();
    for (std::size_t i = from; i < m_path.size(); ++i) {
        m_steps.push(m_path[i]);
        forPoints(m_path[i], [this](const Point& p) { m_turned.push(p); });
        const std::uint32_t node = m_arrangement->nodeOf(m_path[i]);
        if (node != kNone) m_onPath[node] = 0;
    }
    m_path.resize(from);
    loop.last = static_cast<std::uint32_t>(m_steps.size());
    loop.points = static_cast<std::uint32_t>(m_turned.size());
    if (loop.points < 3) return;
    const Point* p = m_turned.data();
    const std::size_t n = m_turned.size();
    const auto least = static_cast<std::size_t>(std::min_element(p, p + n) - p);
    loop.least = p[least];
    loop.isOuter = orientation(p[(least + n - 1) % n], p[least], p[(least + 1) % n]) > 0;
    if (loop.isOuter) m_cycles[cycle] = static_cast<std::uint32_t>(m_loops.size());
    m_loops.push(loop);
}

void FaceBuilder::gatherEdges() {
    m_edges.clear();
    for (std::uint32_t r = 0; r < m_keep.size(); ++r) {
        if (!m_keep[r]) continue;
        const Arrangement::Run& run = m_arrangement->runs()[r];
        const auto add = [&](const Point& a, const Point& b) {
            if (a.x < b.x) m_edges.push({a, b, m_cycle[2 * r]});
            if (a.x > b.x) m_edges.push({b, a, m_cycle[2 * r + 1]});
        };
        bool started = false;
        Point first{}, last{};
        forPoints(2 * r, [&](const Point& p) {
            if (started) add(last, p);
            if (!started) first = p;
            started = true;
            last = p;
        });
        add(last, run.from == kNone ? first : m_arrangement->nodes()[run.to].p);
    }
}

/// The order of edges from bottom to top where both are passed by the sweep.
struct FaceBuilder::Below {
    using is_transparent = void;
    bool operator()(const Edge* a, const Edge* b) const {
        if (a->left.x > b->left.x) {
            const int side = orientation(b->left, b->right, a->left);
            return side != 0 ? side < 0 : orientation(b->left, b->right, a->right) < 0;
        }
        const int side = orientation(a->left, a->right, b->left);
        return side != 0 ? side > 0 : orientation(a->left, a->right, b->right) > 0;
    }
    bool operator()(const Edge* e, const Point& p) const {
        return orientation(e->left, e->right, p) > 0;
    }
};

/// Finds the edge straight below a point, for points from left to right: immediately to the left of
/// the point, so that edges which end there count and edges which begin there do not.
class FaceBuilder::Sweep {
  public:
    explicit Sweep(const Buffer<Edge>& edges) {
        m_starts.reserve(edges.size());
        for (const Edge& e : edges) m_starts.push(&e);
        m_ends.reserve(edges.size());
        for (const Edge& e : edges) m_ends.push(&e);
        std::sort(m_starts.begin(), m_starts.end(),
                  [](const Edge* a, const Edge* b) { return a->left.x < b->left.x; });
        std::sort(m_ends.begin(), m_ends.end(),
                  [](const Edge* a, const Edge* b) { return a->right.x < b->right.x; });
    }

    const Edge* below(const Point& p) {
        while (m_start < m_starts.size() && m_starts[m_start]->left.x < p.x) {
            const Edge* next = m_starts[m_start++];
            removeUpTo(next->left.x);
            m_passed.insert(next);
        }
        while (m_end < m_ends.size() && m_ends[m_end]->right.x < p.x)
            m_passed.erase(m_ends[m_end++]);
        const auto above = m_passed.lower_bound(p);
        return above == m_passed.begin() ? nullptr : *std::prev(above);
    }

  private:
    void removeUpTo(double x) {
        while (m_end < m_ends.size() && m_ends[m_end]->right.x <= x)
            m_passed.erase(m_ends[m_end++]);
    }

    Buffer<const Edge*> m_starts, m_ends;
    std::size_t m_start = 0, m_end = 0;
    std::set<const Edge*, Below> m_passed;
};

// Gives each walk around an island the outer loop of the face that it lies in.
void FaceBuilder::findFaces() {
    m_order.clear();
    for (std::uint32_t i = 0; i < m_loops.size(); ++i) {
        if (m_cycles[m_loops[i].cycle] == kNone) m_order.push(i);
    }
    if (m_order.empty()) return;
    gatherEdges();
    Sweep sweep(m_edges);
    std::sort(m_order.begin(), m_order.end(), [this](std::uint32_t a, std::uint32_t b) {
        return m_loops[a].least < m_loops[b].least;
    });
    for (const std::uint32_t i : m_order) {
        std::uint32_t& face = m_cycles[m_loops[i].cycle];
        if (face != kNone) continue;
        const Edge* below = sweep.below(m_loops[i].least);
        if (below != nullptr && below->above != kNone) face = m_cycles[below->above];
    }
}

// A hole starts at a point that is not on its outer contour.
void FaceBuilder::write(const Loop& loop, int hole, const Scale& unscale, gpc_polygon& faces) {
    const std::uint32_t mark = m_cycles[loop.cycle] + 1;
    gpc_vertex_list& list = faces.contour[faces.num_contours];
    list.vertex = static_cast<gpc_vertex*>(std::malloc(loop.points * sizeof(gpc_vertex)));
    if (!list.vertex) throw std::bad_alloc();
    list.num_vertices = static_cast<int>(loop.points);
    faces.hole[faces.num_contours++] = hole;
    gpc_vertex* out = list.vertex;
    gpc_vertex* start = nullptr;
    for (std::uint32_t s = loop.first; s < loop.last; ++s) {
        const std::uint32_t node = m_arrangement->nodeOf(m_steps[s]);
        bool shared = false;
        if (node != kNone) {
            shared = hole && m_outerOf[node] == mark;
            if (!hole) m_outerOf[node] = mark;
        }
        forPoints(m_steps[s], [&](const Point& p) {
            if (!shared && start == nullptr) start = out;
            shared = false;
            const Point q = unscale(p.x, p.y);
            *out++ = {q.x, q.y};
        });
    }
    if (start != nullptr) std::rotate(list.vertex, start, out);
}

void FaceBuilder::release() {
    m_keep.release();
    m_next.release();
    m_cycle.release();
    m_onPath.release();
    m_path.release();
    m_steps.release();
    m_loops.release();
    m_cycles.release();
    m_edges.release();
    m_order.release();
    m_outerOf.release();
    m_turned.release();
}

}  // namespace jws::gpc
