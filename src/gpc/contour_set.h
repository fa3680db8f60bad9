// SPDX-License-Identifier: MIT
#ifndef JW_GPC_CONTOUR_SET_H
#define JW_GPC_CONTOUR_SET_H

#include <gpc.h>

#include <cmath>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "gpc/buffer.h"
#include "gpc/exact.h"

namespace jws::gpc {

using ::gpc_polygon;

struct Box {
    double minX = 1e308 * 10;
    double minY = 1e308 * 10;
    double maxX = -1e308 * 10;
    double maxY = -1e308 * 10;

    void include(const Point& p) {
#ifdef __SSE2__
        const __m128d at = _mm_loadu_pd(&p.x);
        _mm_storeu_pd(&minX, _mm_min_pd(at, _mm_loadu_pd(&minX)));
        _mm_storeu_pd(&maxX, _mm_max_pd(at, _mm_loadu_pd(&maxX)));
#else
        minX = p.x < minX ? p.x : minX;
        minY = p.y < minY ? p.y : minY;
        maxX = p.x > maxX ? p.x : maxX;
        maxY = p.y > maxY ? p.y : maxY;
#endif
    }
    void include(const Box& b) {
        minX = b.minX < minX ? b.minX : minX;
        minY = b.minY < minY ? b.minY : minY;
        maxX = b.maxX > maxX ? b.maxX : maxX;
        maxY = b.maxY > maxY ? b.maxY : maxY;
    }
    void grow(double margin) {
        minX -= margin;
        minY -= margin;
        maxX += margin;
        maxY += margin;
    }
    bool holds(const Point& p) const {
        return (p.x >= minX) & (p.x <= maxX) & (p.y >= minY) & (p.y <= maxY);
    }
    bool overlaps(const Box& b) const {
#ifdef __SSE2__  // x and y at once: most of the work of finding pairs is done here
        const __m128d below = _mm_cmple_pd(_mm_loadu_pd(&minX), _mm_loadu_pd(&b.maxX));
        const __m128d above = _mm_cmple_pd(_mm_loadu_pd(&b.minX), _mm_loadu_pd(&maxX));
        return _mm_movemask_pd(_mm_and_pd(below, above)) == 3;
#else
        return (minX <= b.maxX) & (b.minX <= maxX) & (minY <= b.maxY) & (b.minY <= maxY);
#endif
    }
};

/// Powers of two that bring coordinates to a convenient magnitude, for each axis in two factors,
/// since one alone may overflow.
struct Scale {
    double x[2] = {1, 1};
    double y[2] = {1, 1};
    double least = 0;  ///< what is smaller becomes 0, of its sign

    Point operator()(double px, double py) const {
        return {kept(px * x[0] * x[1]), kept(py * y[0] * y[1])};
    }
    Box operator()(const Box& box) const {
        Box scaled;
        scaled.include((*this)(box.minX, box.minY));
        scaled.include((*this)(box.maxX, box.maxY));
        return scaled;
    }

  private:
    double kept(double v) const { return std::fabs(v) < least ? std::copysign(0.0, v) : v; }
};

/// What is known of a point, and of the edge that leaves it.
enum PointFlag : std::uint8_t {
    kMeeting = 1,    ///< another contour, or another part of this one, comes here
    kSuspect = 4,    ///< the edge from here may get into trouble when it is bent
    kUnchecked = 2,  ///< the edge from here has not been compared with its surroundings
    kDouble = 8,     ///< the edge from here lies on another, which is compared for both
};

/// One closed contour: edge i runs from point i to point i + 1 for i in [first, last), and point
/// `last` repeats point `first`.
struct Contour {
    std::uint32_t first;
    std::uint32_t last;
    std::int32_t operand;  ///< 1 subject, 2 clip; or what the inside counts as; 0 for a line
    std::uint32_t tree;    ///< the box tree's node over its edges
};

/// Contours of both operands in one array of points. No edge has zero length.
struct ContourSet {
    Buffer<Point> points;
    Buffer<std::uint8_t> flags;  ///< of `PointFlag`, one per point
    Buffer<Contour> contours;

    void clear();
    void release();
    std::uint32_t next(const Contour& c, std::uint32_t i) const {
        return i + 1 == c.last ? c.first : i + 1;
    }
    /// Appends a polygon's contours, scaled. Where `window` is given, stretches on one side of it
    /// are cut short: the area inside the window, and on its border, stays as it is.
    void add(const gpc_polygon& polygon, int operand, const Scale& scale, const Box* window);

    /// Cuts the points from `first` on, which become a contour, short in the same way.
    void shorten(std::size_t first, const Box& window);
    /// Appends a line, scaled: a contour of operand 0, which goes there and back unless the line
    /// is closed.
    void addLine(const gpc_vertex_list& line, const Scale& scale);
    /// Makes a contour of the points from `first` on; drops repeated points, and all of them if
    /// fewer than three are left, of a line two.
    void close(std::size_t first, int operand);
};

/// Tells whether the box lies beyond one side of the window.
bool isBeyond(const Box& box, const Box& window);
/// Tells whether all of the box counts as beyond one and the same side of the window.
bool isOneSided(const Box& box, const Box& window);

/// Box of all vertices; false if a coordinate is not finite. An empty polygon leaves `box` as
/// it is.
bool boundsOf(const gpc_polygon& polygon, Box& box);

}  // namespace jws::gpc

#endif  // JW_GPC_CONTOUR_SET_H
