// SPDX-License-Identifier: MIT
//
// Snap rounding: an arrangement that is exact after one step, whatever the input.
//
// Pixels of the grid that hold a vertex or a crossing are hot (Hobby 1999; Guibas and Marimont
// 1998). Every edge is led through the middles of all hot pixels that it enters, in order. Then no
// two edges cross, for the following reason. Let all hot pixels shrink to their middles at one
// speed, while the stretches of edges between them, straight, are drawn along by their ends. A
// stretch lies outside all hot pixels, for edges cross nowhere else. At time t its points q have
// moved by t w, where w is a mean of two vectors from a pixel's border to its middle, that is -w is
// in the pixel D around the origin. Should one meet the shrunken pixel around h, then
// q + t w = h + (1 - t) d with d in D, so that q - h = (1 - t) d + t (-w) is in D, as D is convex:
// q was in the pixel of h. So nothing is ever passed over, what did not cross does not cross, and
// no hot point comes to lie within a stretch of edge. What is true at every time before the last is
// true of the last one but for coinciding: stretches may become one line, and they cancel.
//
// The argument asks for no grid, only for squares of one size around the hot points that do not
// overlap and together hold all vertices and crossings. A vertex off the grid, as those near the
// origin are, which alone makes its pixel hot while the eight around it are cold, is therefore its
// own hot point, with the square around itself: it keeps its bits. All vertices of the grid do.
//
// What falls into which square is decided without rounding (pixel.h), as the argument demands.
// The result depends on the edges alone, not on their order or direction.
//
// O((n + k) log n + m) for n edges, k crossings and m corners of the result.
#include "gpc/snap_rounding.h"

#include <algorithm>

#include "foundation/pulse.h"
#include "gpc/crossing.h"
#include "gpc/pixel.h"

namespace jws::gpc {
namespace {

constexpr std::size_t kFewSpots = 4096;

bool crossProperly(const Point& a, const Point& b, const Point& c, const Point& d) {
    return orientation(a, b, c) * orientation(a, b, d) < 0 &&
           orientation(c, d, a) * orientation(c, d, b) < 0;
}

}  // namespace

void SnapRounder::run(const ContourSet& from, const BoxTree& tree, const CrossingGrid& grid,
                      bool crossing, ContourSet& to, Buffer<std::uint32_t>& parents) {
    m_grid = grid;
    m_spots.clear();
    m_crowd = kFewSpots;
    addVertices(from);
    if (crossing) addCrossings(from, tree);
    compact();
    chooseHotPoints();
    stopEdges(from, tree);
    to.clear();
    parents.clear();
    for (const Contour& c : from.contours) {
        const std::size_t first = to.points.size();
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            sortStops(from.points[i], from.points[i + 1], m_firstStop[i]);
            for (std::size_t k = 0; k + 1 < m_way.size(); ++k) {
                to.points.push(m_way[k]);
                parents.push(i);
            }
        }
        if (to.points.size() < first + (c.operand == 0 ? 2 : 3)) {
            to.points.resize(first);
            parents.resize(first);
            continue;
        }
        const std::uint32_t last = static_cast<std::uint32_t>(to.points.size());
        to.points.push(to.points[first]);
        parents.push(c.last);
        to.contours.push({static_cast<std::uint32_t>(first), last, c.operand, 0});
    }
    to.flags.fill(to.points.size(), 0);
}

void SnapRounder::addVertices(const ContourSet& from) {
    for (const Contour& c : from.contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            add({pixelOf(from.points[i], m_grid), from.points[i]});
        }
    }
}

void SnapRounder::addCrossings(const ContourSet& from, const BoxTree& tree) {
    const Point* p = from.points.data();
    detail::StepCounter pace;
    const auto visit = [&](std::uint32_t i, std::uint32_t, std::uint32_t j, std::uint32_t) {
        pace.step();
        if (!crossProperly(p[i], p[i + 1], p[j], p[j + 1])) return;
        const Point pixel = crossingPixel(p[i], p[i + 1], p[j], p[j + 1], m_grid);
        add({pixel, pixel});
    };
    tree.joinSelf(from, visit);
}

void SnapRounder::add(const Spot& spot) {
    m_spots.push(spot);
    if (m_spots.size() < m_crowd) return;
    compact();
    m_crowd = std::max(kFewSpots, 2 * m_spots.size());
}

void SnapRounder::compact() {
    std::sort(m_spots.begin(), m_spots.end(), [](const Spot& s, const Spot& t) {
        return s.pixel < t.pixel || (s.pixel == t.pixel && s.at < t.at);
    });
    const Spot* end = std::unique(m_spots.begin(), m_spots.end(), [](const Spot& s, const Spot& t) {
        return s.pixel == t.pixel && s.at == t.at;
    });
    m_spots.resize(static_cast<std::size_t>(end - m_spots.begin()));
}

// Tells whether the eight pixels around are cold.
bool SnapRounder::isAlone(const Point& pixel) const {
    for (const double x : {pixel.x - m_grid.step, pixel.x, pixel.x + m_grid.step}) {
        const Spot* s = std::lower_bound(
            m_spots.begin(), m_spots.end(), Point{x, pixel.y - m_grid.step},
            [](const Spot& spot, const Point& least) { return spot.pixel < least; });
        for (; s != m_spots.end() && s->pixel.x == x && s->pixel.y <= pixel.y + m_grid.step; ++s) {
            if (s->pixel != pixel) return false;
        }
    }
    return true;
}

void SnapRounder::chooseHotPoints() {
    m_hot.clear();
    for (std::size_t i = 0, end = 0; i < m_spots.size(); i = end) {
        const Spot& s = m_spots[i];
        for (end = i + 1; end < m_spots.size() && m_spots[end].pixel == s.pixel;) ++end;
        const bool keeps = end == i + 1 && s.at != s.pixel && isAlone(s.pixel);
        m_hot.push(keeps ? s.at : s.pixel);
    }
}

void SnapRounder::stopEdges(const ContourSet& from, const BoxTree& tree) {
    m_stops.clear();
    m_firstStop.fill(from.points.size(), 0);
    detail::StepCounter pace;
    for (std::uint32_t k = 0; k < m_hot.size(); ++k) {
        const Point h = m_hot[k];
        pace.step();
        tree.query(from, edgeBox(h, h, m_grid.step), [&](std::uint32_t edge) {
            if (!entersPixel(from.points[edge], from.points[edge + 1], h, m_grid.step)) return;
            m_stops.push({k, m_firstStop[edge]});
            m_firstStop[edge] = static_cast<std::uint32_t>(m_stops.size());
        });
    }
}

// Puts an edge's stops into m_way, in order from a to b: of two squares that do not overlap, one
// lies wholly before the other in x or in y, where their middles are further apart.
void SnapRounder::sortStops(const Point& a, const Point& b, std::uint32_t first) {
    m_way.clear();
    for (std::uint32_t s = first; s != 0; s = m_stops[s - 1].next)
        m_way.push(m_hot[m_stops[s - 1].hot]);
    const bool right = a.x < b.x;
    const bool up = a.y < b.y;
    std::sort(m_way.begin(), m_way.end(), [=](const Point& u, const Point& v) {
        const double x = std::fabs(u.x - v.x);
        const double y = std::fabs(u.y - v.y);
        return x >= y ? x > 0 && (u.x < v.x) == right : (u.y < v.y) == up;
    });
}

void SnapRounder::release() {
    m_spots.release();
    m_hot.release();
    m_stops.release();
    m_firstStop.release();
    m_way.release();
}

}  // namespace jws::gpc
