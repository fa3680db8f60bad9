// SPDX-License-Identifier: MIT
//
// The order of contours and where each starts.
//
// Contours are put in order of area: a contour is smaller than every contour around it, so the
// deepest come first and a hole before its outer contour. Areas that the plain sum cannot tell
// apart are compared in double-double. Each contour starts at its lexicographically smallest
// vertex, moved on to the first one that no other contour has, such that vertex (n + 2) / 2 is
// unshared too if possible. None of this depends on the order of the input.
#include <algorithm>
#include <cmath>

#include "gpc/contour_builder.h"

namespace jws::gpc {

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
        m_turned.resize(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::uint32_t k = loop.least + (loop.hole ? n - i : i);
            const gpc_vertex& v = loop.vertices[k < n ? k : k - n];
            m_turned[i] = {v.x, v.y};
        }
        loop.wide = wideArea(m_turned.data(), static_cast<int>(n));
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
    const auto& runs = m_arrangement->runs();
    const std::uint32_t n = loop.points;
    std::uint32_t start = loop.least;
    bool any = false;
    std::uint32_t position = 0;
    for (std::uint32_t s = loop.first; s < loop.last; ++s) {
        const Arrangement::Run& r = runs[m_steps[s]];
        if (r.from == Arrangement::kNone) break;
        if (m_visits[startOf(m_steps[s])] > 1) {
            if (!any) m_shared.fill(n, 0);
            any = true;
            m_shared[position] = 1;
        }
        position += r.count + (m_dropped[s] ? 0 : 1);
    }
    if (any) {
        const std::uint32_t middle = (n + 2) / 2;
        bool found = false;
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::uint32_t k = loop.least + i < n ? loop.least + i : loop.least + i - n;
            if (m_shared[k]) continue;
            if (!found) start = k;
            found = true;
            if (!m_shared[(k + middle) % n]) {
                start = k;
                break;
            }
        }
    }
    if (start != 0) std::rotate(loop.vertices, loop.vertices + start, loop.vertices + n);
    for (std::uint32_t i = 0; i < n; ++i) {
        const Point p = m_unscale(loop.vertices[i].x, loop.vertices[i].y);
        loop.vertices[i] = {p.x, p.y};
    }
}

}  // namespace jws::gpc
