// SPDX-License-Identifier: MIT
//
// Reads operands into one array of closed contours.
//
// Repeated points are dropped, contours with fewer than three points too. An operand of which only
// the part near a window matters gives up its far vertices: a vertex goes if it and both its
// neighbours lie beyond the same side of the window, so the shortcut stays beyond that side and
// the area within the window does not change. Each vertex counts for one side only, so that
// shortcuts never cut a corner; what then lies beyond one side altogether goes as a whole. The rule
// looks at three consecutive vertices, which makes the outcome independent of where a contour
// starts and which way it runs.
#include "gpc/contour_set.h"

#include <cmath>

namespace jws::gpc {
namespace {

/// Sides of the window that `p` lies beyond, a bit each.
inline int sidesOf(const Point& p, const Box& w) {
    return (p.x < w.minX) | (p.x > w.maxX) << 1 | (p.y < w.minY) << 2 | (p.y > w.maxY) << 3;
}

/// The one side that counts.
inline int sideOf(int sides) { return sides & -sides; }

}  // namespace

void ContourSet::clear() {
    points.clear();
    flags.clear();
    contours.clear();
}

void ContourSet::release() {
    points.release();
    flags.release();
    contours.release();
}

bool boundsOf(const gpc_polygon& polygon, Box& box) {
    double finite = 0;
    for (int c = 0; c < polygon.num_contours; ++c) {
        const gpc_vertex_list& list = polygon.contour[c];
        Box own;
        double sumX = 0;
        double sumY = 0;
        for (int i = 0; i < list.num_vertices; ++i) {
            const gpc_vertex& v = list.vertex[i];
            own.include(Point{v.x, v.y});
            sumX += v.x * 0;
            sumY += v.y * 0;
        }
        finite += sumX + sumY;
        box.include(own);
    }
    return finite == 0;
}

bool isBeyond(const Box& box, const Box& w) {
    return box.maxX < w.minX || box.minX > w.maxX || box.maxY < w.minY || box.minY > w.maxY;
}

bool isOneSided(const Box& box, const Box& w) {
    if (box.maxX < w.minX || box.minX > w.maxX) return true;
    return box.minX >= w.minX && box.maxX <= w.maxX && (box.maxY < w.minY || box.minY > w.maxY);
}

void ContourSet::add(const gpc_polygon& polygon, int operand, const Scale& scale,
                     const Box* window) {
    for (int c = 0; c < polygon.num_contours; ++c) {
        const gpc_vertex_list& list = polygon.contour[c];
        const int n = list.num_vertices;
        if (n < 3) continue;
        const std::size_t first = points.size();
        points.resize(first + static_cast<std::size_t>(n));
        Point* out = points.data() + first;
        for (int i = 0; i < n; ++i) {
            out[i] = scale(list.vertex[i].x, list.vertex[i].y);
        }
        if (window) shorten(first, *window);
        close(first, operand);
    }
}

void ContourSet::addLine(const gpc_vertex_list& line, const Scale& scale) {
    const std::size_t first = points.size();
    for (int i = 0; i < line.num_vertices; ++i) {
        points.push(scale(line.vertex[i].x, line.vertex[i].y));
    }
    const std::size_t n = points.size() - first;
    if (n > 0 && points[first] != points.back()) {
        for (std::size_t i = n - 1; i > 1; --i) points.push(points[first + i - 1]);
    }
    close(first, 0);
}

void ContourSet::shorten(std::size_t first, const Box& window) {
    Point* p = points.data() + first;
    const std::size_t n = points.size() - first;
    const Point start = p[0];
    int before = sideOf(sidesOf(p[n - 1], window));
    int sides = sidesOf(start, window);
    int common = 15;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const int after = sidesOf(i + 1 < n ? p[i + 1] : start, window);
        const int side = sideOf(sides);
        const bool far = side != 0 && side == before && side == sideOf(after);
        if (!far) {
            common &= sides;
            p[kept++] = p[i];
        }
        before = side;
        sides = after;
    }
    points.resize(common != 0 ? first : first + kept);
}

void ContourSet::close(std::size_t first, int operand) {
    const std::size_t n = points.size() - first;
    Point* p = points.data() + first;
    std::size_t m = n > 0 ? 1 : 0;
    for (std::size_t i = 1; i < n; ++i) {
        const Point q = p[i];
        p[m] = q;
        m += q != p[m - 1];
    }
    while (m > 1 && p[m - 1] == p[0]) --m;
    if (m < (operand == 0 ? 2u : 3u)) {
        points.resize(first);
        return;
    }
    points.resize(first + m + 1);
    points[first + m] = points[first];
    contours.push(
        {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(first + m), operand, 0});
}

}  // namespace jws::gpc
