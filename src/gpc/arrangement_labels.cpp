// SPDX-License-Identifier: MIT
//
// What lies left and right of every run, one connected component after the other. arrangement.cpp
// tells the idea. Every label follows from the arrangement alone, so the order of the walk does not
// matter: nodes wait in a queue, whose entries are asked for ahead of need.
#include <cassert>

#include "gpc/arrangement.h"

namespace jws::gpc {
namespace {

constexpr std::size_t kAhead = 8;

}  // namespace

std::int32_t Arrangement::outside(const Point& p, Noder& noder) const {
    return depth_ ? noder.depthLeftOf(p) : noder.parityLeftOf(p);
}

void Arrangement::labelWhole(Run& r, Noder& noder) {
    const Contour& c = set_->contours[r.contour];
    const Point* p = set_->points.data();
    std::uint32_t least = c.first;
    for (std::uint32_t i = c.first + 1; i < c.last; ++i) {
        if (p[i] < p[least]) least = i;
    }
    const Point& before = p[least == c.first ? c.last - 1 : least - 1];
    const std::int32_t west = outside(p[least], noder);
    const bool leftTurn = orientation(before, p[least], p[least + 1]) > 0;
    r.left = leftTurn ? combine(west, r.step) : west;
}

// Asks for what the nodes that wait in the queue lead to.
void Arrangement::fetchAhead(std::size_t head) const {
    if (head + 3 * kAhead < queue_.size()) prefetch(&nodes_[queue_[head + 3 * kAhead]]);
    if (head + 2 * kAhead < queue_.size()) {
        prefetch(&around_[nodes_[queue_[head + 2 * kAhead]].first]);
    }
    if (head + kAhead < queue_.size()) {
        const Node& n = nodes_[queue_[head + kAhead]];
        for (std::uint32_t i = 0; i < n.count; ++i) prefetch(&runs_[around_[n.first + i] >> 1]);
    }
}

// Labels relative to the sector that starts the walk, and finds the offset that makes them
// absolute.
void Arrangement::labelComponent(std::uint32_t start, std::uint32_t component, Noder& noder) {
    queue_.clear();
    queue_.push(start);
    visited_[start] = 1;
    bool haveSector = false;
    Point least = nodes_[start].p;
    std::int32_t westOfLeast = 0;
    const auto takeLeast = [&](const Point& p, std::int32_t west) {
        if (!haveSector || p < least) {
            haveSector = true;
            least = p;
            westOfLeast = west;
        }
    };
    for (std::size_t head = 0; head < queue_.size(); ++head) {
        fetchAhead(head);
        const Node n = nodes_[queue_[head]];
        const HalfEdge* h = around_.data() + n.first;
        // A run that is labelled already tells where to start; the very first node starts at 0.
        std::uint32_t known = n.count;
        for (std::uint32_t i = 0; i < n.count && known == n.count; ++i) {
            if (runs_[h[i] >> 1].component == component + 1) known = i;
        }
        std::int32_t state = 0;  // of the sector clockwise before h[i]
        std::uint32_t i = 0;
        if (known < n.count) {
            const Run& r = runs_[h[known] >> 1];
            state = (h[known] & 1) ? r.left : combine(r.left, -r.step);
            i = known;
        }
        for (std::uint32_t k = 0; k < n.count; ++k, i = i + 1 == n.count ? 0 : i + 1) {
            Run& r = runs_[h[i] >> 1];
            const bool forward = (h[i] & 1) == 0;
            if (i == 0) takeLeast(n.p, state);
            const std::int32_t after = combine(state, forward ? r.step : -r.step);
            if (r.component != component + 1) {
                r.component = component + 1;
                r.left = forward ? after : state;
                const Contour& c = set_->contours[r.contour];
                const Point* p = set_->points.data();
                std::uint32_t j = r.firstPoint;
                for (std::uint32_t m = 0; m < r.count; ++m) {
                    if (p[j] < least) {
                        const Point& before = p[j == c.first ? c.last - 1 : j - 1];
                        const bool leftTurn = orientation(before, p[j], p[j + 1]) > 0;
                        takeLeast(p[j], leftTurn ? combine(r.left, -r.step) : r.left);
                    }
                    if (++j == c.last) j = c.first;
                }
                const std::uint32_t far = forward ? r.to : r.from;
                if (!visited_[far]) {
                    visited_[far] = 1;
                    queue_.push(far);
                }
            }
            assert(r.left == (forward ? after : state));
            state = after;
        }
    }
    const std::int32_t west = outside(least, noder);
    offset_.push(depth_ ? west - westOfLeast : west ^ westOfLeast);
}

}  // namespace jws::gpc
