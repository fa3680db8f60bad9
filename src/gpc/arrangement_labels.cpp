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
    return m_depth ? noder.depthLeftOf(p) : noder.parityLeftOf(p);
}

void Arrangement::labelWhole(Run& r, Noder& noder) {
    const Contour& c = m_set->contours[r.contour];
    const Point* p = m_set->points.data();
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
    if (head + 3 * kAhead < m_queue.size()) prefetch(&m_nodes[m_queue[head + 3 * kAhead]]);
    if (head + 2 * kAhead < m_queue.size()) {
        prefetch(&m_around[m_nodes[m_queue[head + 2 * kAhead]].first]);
    }
    if (head + kAhead < m_queue.size()) {
        const Node& n = m_nodes[m_queue[head + kAhead]];
        for (std::uint32_t i = 0; i < n.count; ++i) prefetch(&m_runs[m_around[n.first + i] >> 1]);
    }
}

// Labels relative to the sector that starts the walk, and finds the offset that makes them
// absolute.
void Arrangement::labelComponent(std::uint32_t start, std::uint32_t component, Noder& noder) {
    m_queue.clear();
    m_queue.push(start);
    m_visited[start] = 1;
    bool haveSector = false;
    Point least = m_nodes[start].p;
    std::int32_t westOfLeast = 0;
    const auto takeLeast = [&](const Point& p, std::int32_t west) {
        if (!haveSector || p < least) {
            haveSector = true;
            least = p;
            westOfLeast = west;
        }
    };
    for (std::size_t head = 0; head < m_queue.size(); ++head) {
        fetchAhead(head);
        const Node n = m_nodes[m_queue[head]];
        const HalfEdge* h = m_around.data() + n.first;
        // A run that is labelled already tells where to start; the very first node starts at 0.
        std::uint32_t known = n.count;
        for (std::uint32_t i = 0; i < n.count && known == n.count; ++i) {
            if (m_runs[h[i] >> 1].component == component + 1) known = i;
        }
        std::int32_t state = 0;  // of the sector clockwise before h[i]
        std::uint32_t i = 0;
        if (known < n.count) {
            const Run& r = m_runs[h[known] >> 1];
            state = (h[known] & 1) ? r.left : combine(r.left, -r.step);
            i = known;
        }
        for (std::uint32_t k = 0; k < n.count; ++k, i = i + 1 == n.count ? 0 : i + 1) {
            Run& r = m_runs[h[i] >> 1];
            const bool forward = (h[i] & 1) == 0;
            if (i == 0) takeLeast(n.p, state);
            const std::int32_t after = combine(state, forward ? r.step : -r.step);
            if (r.component != component + 1) {
                r.component = component + 1;
                r.left = forward ? after : state;
                const Contour& c = m_set->contours[r.contour];
                const Point* p = m_set->points.data();
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
                if (!m_visited[far]) {
                    m_visited[far] = 1;
                    m_queue.push(far);
                }
            }
            assert(r.left == (forward ? after : state));
            state = after;
        }
    }
    const std::int32_t west = outside(least, noder);
    m_offset.push(m_depth ? west - westOfLeast : west ^ westOfLeast);
}

}  // namespace jws::gpc
