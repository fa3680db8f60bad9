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
    arrangement_ = &arrangement;
    choose();
    while (!trace()) {
    }
    bool cuts = false;
    for (std::size_t r = 0; r < keep_.size() && !cuts; ++r) {
        cuts = keep_[r] && arrangement.runs()[r].step == 0;
    }
    if (!cuts) return false;
    findFaces();
    // By face, its outer contour first.
    order_.resize(loops_.size());
    for (std::size_t i = 0; i < order_.size(); ++i) order_[i] = static_cast<std::uint32_t>(i);
    std::sort(order_.begin(), order_.end(), [this](std::uint32_t a, std::uint32_t b) {
        const std::uint32_t faceA = cycles_[loops_[a].cycle], faceB = cycles_[loops_[b].cycle];
        if (faceA != faceB) return faceA < faceB;
        return loops_[a].isOuter != loops_[b].isOuter ? loops_[a].isOuter : a < b;
    });
    const std::size_t count = loops_.size();
    faces.hole = static_cast<int*>(std::malloc(count * sizeof(int)));
    faces.contour = static_cast<gpc_vertex_list*>(std::malloc(count * sizeof(gpc_vertex_list)));
    if (!faces.hole || !faces.contour) throw std::bad_alloc();
    outerOf_.fill(arrangement.nodes().size(), 0);
    for (const std::uint32_t i : order_)
        write(loops_[i], loops_[i].isOuter ? 0 : 1, unscale, faces);
    return true;
}

bool FaceBuilder::isCutter(std::uint32_t run) const {
    const auto& runs = arrangement_->runs();
    for (; run != kNone; run = runs[run].twin) {
        if (arrangement_->set().contours[runs[run].contour].operand == 0) return true;
    }
    return false;
}

// Keeps the boundary of the area and the lines within it.
void FaceBuilder::choose() {
    const auto& runs = arrangement_->runs();
    keep_.resize(runs.size());
    for (std::uint32_t r = 0; r < runs.size(); ++r) {
        const bool bounds = runs[r].step != 0;
        keep_[r] = !runs[r].merged && (bounds || ((runs[r].left & 1) && isCutter(r)));
    }
}

void FaceBuilder::link() {
    next_.resize(2 * keep_.size());
    for (std::uint32_t r = 0; r < keep_.size(); ++r) {
        if (arrangement_->runs()[r].from != kNone) continue;
        next_[2 * r] = 2 * r;
        next_[2 * r + 1] = 2 * r + 1;
    }
    for (const Arrangement::Node& n : arrangement_->nodes()) {
        const HalfEdge* h = arrangement_->around().data() + n.first;
        HalfEdge clockwise = kNone, first = kNone;
        for (std::uint32_t i = 0; i < n.count; ++i) {
            if (!keep_[h[i] >> 1]) continue;
            if (first == kNone) {
                first = h[i];
            } else {
                next_[h[i] ^ 1] = clockwise;
            }
            clockwise = h[i];
        }
        if (first != kNone) next_[first ^ 1] = clockwise;
    }
}

// Makes the walks; false, and the runs are gone, where one passes both sides of a run.
bool FaceBuilder::trace() {
    link();
    cycle_.fill(next_.size(), 0xFF);
    onPath_.fill(arrangement_->nodes().size(), 0);
    steps_.clear();
    loops_.clear();
    cycles_.clear();
    for (HalfEdge h = 0; h < next_.size(); ++h) {
        if (isFace(h) && cycle_[h] == kNone) splitCycle(h);
    }
    bool clean = true;
    for (std::uint32_t r = 0; r < keep_.size(); ++r) {
        if (!keep_[r] || cycle_[2 * r] == kNone || cycle_[2 * r] != cycle_[2 * r + 1]) continue;
        keep_[r] = 0;
        clean = false;
    }
    return clean;
}

// Walks from `start` on and takes a loop off the path whenever it comes back to a node.
void FaceBuilder::splitCycle(HalfEdge start) {
    const auto cycle = static_cast<std::uint32_t>(cycles_.size());
    cycles_.push(kNone);
    path_.clear();
    for (HalfEdge h = start; cycle_[h] == kNone; h = next_[h]) {
        cycle_[h] = cycle;
        const std::uint32_t node = arrangement_->nodeOf(h);
        if (node != kNone) {
            if (onPath_[node] != 0) addLoop(onPath_[node] - 1, cycle);
            path_.push(h);
            onPath_[node] = static_cast<std::uint32_t>(path_.size());
        } else {
            path_.push(h);
        }
    }
    addLoop(0, cycle);
}

/// Calls `visit(p)` for the point a half-edge leaves from and for its inner points, in order.
template <class Visit>
void FaceBuilder::forPoints(HalfEdge h, const Visit& visit) const {
    const Arrangement::Run& r = arrangement_->runs()[h >> 1];
    if (r.from != kNone) visit(arrangement_->nodes()[arrangement_->nodeOf(h)].p);
    for (std::uint32_t k = 0; k < r.count; ++k) {
        visit(arrangement_->pointOf(r, (h & 1) ? r.count - 1 - k : k));
    }
}

// Takes the end of the path off it. A loop of fewer than three points goes there and back.
void FaceBuilder::addLoop(std::uint32_t from, std::uint32_t cycle) {
    Loop loop{};
    loop.first = static_cast<std::uint32_t>(steps_.size());
    loop.cycle = cycle;
    turned_.clear();
    for (std::size_t i = from; i < path_.size(); ++i) {
        steps_.push(path_[i]);
        forPoints(path_[i], [this](const Point& p) { turned_.push(p); });
        const std::uint32_t node = arrangement_->nodeOf(path_[i]);
        if (node != kNone) onPath_[node] = 0;
    }
    path_.resize(from);
    loop.last = static_cast<std::uint32_t>(steps_.size());
    loop.points = static_cast<std::uint32_t>(turned_.size());
    if (loop.points < 3) return;
    const Point* p = turned_.data();
    const std::size_t n = turned_.size();
    const auto least = static_cast<std::size_t>(std::min_element(p, p + n) - p);
    loop.least = p[least];
    loop.isOuter = orientation(p[(least + n - 1) % n], p[least], p[(least + 1) % n]) > 0;
    if (loop.isOuter) cycles_[cycle] = static_cast<std::uint32_t>(loops_.size());
    loops_.push(loop);
}

void FaceBuilder::gatherEdges() {
    edges_.clear();
    for (std::uint32_t r = 0; r < keep_.size(); ++r) {
        if (!keep_[r]) continue;
        const Arrangement::Run& run = arrangement_->runs()[r];
        const auto add = [&](const Point& a, const Point& b) {
            if (a.x < b.x) edges_.push({a, b, cycle_[2 * r]});
            if (a.x > b.x) edges_.push({b, a, cycle_[2 * r + 1]});
        };
        bool started = false;
        Point first{}, last{};
        forPoints(2 * r, [&](const Point& p) {
            if (started) add(last, p);
            if (!started) first = p;
            started = true;
            last = p;
        });
        add(last, run.from == kNone ? first : arrangement_->nodes()[run.to].p);
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
        starts_.reserve(edges.size());
        for (const Edge& e : edges) starts_.push(&e);
        ends_.reserve(edges.size());
        for (const Edge& e : edges) ends_.push(&e);
        std::sort(starts_.begin(), starts_.end(),
                  [](const Edge* a, const Edge* b) { return a->left.x < b->left.x; });
        std::sort(ends_.begin(), ends_.end(),
                  [](const Edge* a, const Edge* b) { return a->right.x < b->right.x; });
    }

    const Edge* below(const Point& p) {
        while (start_ < starts_.size() && starts_[start_]->left.x < p.x) {
            const Edge* next = starts_[start_++];
            removeUpTo(next->left.x);
            passed_.insert(next);
        }
        while (end_ < ends_.size() && ends_[end_]->right.x < p.x) passed_.erase(ends_[end_++]);
        const auto above = passed_.lower_bound(p);
        return above == passed_.begin() ? nullptr : *std::prev(above);
    }

  private:
    void removeUpTo(double x) {
        while (end_ < ends_.size() && ends_[end_]->right.x <= x) passed_.erase(ends_[end_++]);
    }

    Buffer<const Edge*> starts_, ends_;
    std::size_t start_ = 0, end_ = 0;
    std::set<const Edge*, Below> passed_;
};

// Gives each walk around an island the outer loop of the face that it lies in.
void FaceBuilder::findFaces() {
    order_.clear();
    for (std::uint32_t i = 0; i < loops_.size(); ++i) {
        if (cycles_[loops_[i].cycle] == kNone) order_.push(i);
    }
    if (order_.empty()) return;
    gatherEdges();
    Sweep sweep(edges_);
    std::sort(order_.begin(), order_.end(), [this](std::uint32_t a, std::uint32_t b) {
        return loops_[a].least < loops_[b].least;
    });
    for (const std::uint32_t i : order_) {
        std::uint32_t& face = cycles_[loops_[i].cycle];
        if (face != kNone) continue;
        const Edge* below = sweep.below(loops_[i].least);
        if (below != nullptr && below->above != kNone) face = cycles_[below->above];
    }
}

// A hole starts at a point that is not on its outer contour.
void FaceBuilder::write(const Loop& loop, int hole, const Scale& unscale, gpc_polygon& faces) {
    const std::uint32_t mark = cycles_[loop.cycle] + 1;
    gpc_vertex_list& list = faces.contour[faces.num_contours];
    list.vertex = static_cast<gpc_vertex*>(std::malloc(loop.points * sizeof(gpc_vertex)));
    if (!list.vertex) throw std::bad_alloc();
    list.num_vertices = static_cast<int>(loop.points);
    faces.hole[faces.num_contours++] = hole;
    gpc_vertex* out = list.vertex;
    gpc_vertex* start = nullptr;
    for (std::uint32_t s = loop.first; s < loop.last; ++s) {
        const std::uint32_t node = arrangement_->nodeOf(steps_[s]);
        bool shared = false;
        if (node != kNone) {
            shared = hole && outerOf_[node] == mark;
            if (!hole) outerOf_[node] = mark;
        }
        forPoints(steps_[s], [&](const Point& p) {
            if (!shared && start == nullptr) start = out;
            shared = false;
            const Point q = unscale(p.x, p.y);
            *out++ = {q.x, q.y};
        });
    }
    if (start != nullptr) std::rotate(list.vertex, start, out);
}

void FaceBuilder::release() {
    keep_.release();
    next_.release();
    cycle_.release();
    onPath_.release();
    path_.release();
    steps_.release();
    loops_.release();
    cycles_.release();
    edges_.release();
    order_.release();
    outerOf_.release();
    turned_.release();
}

}  // namespace jws::gpc
