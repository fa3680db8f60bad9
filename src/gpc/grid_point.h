// SPDX-License-Identifier: MIT
//
// Points of the clipping engine's integer grid and the exact predicates on them. Coordinates lie
// within ±2^53, so that differences fit 64 bits and their products 128.
#ifndef JW_GPC_GRID_POINT_H
#define JW_GPC_GRID_POINT_H

#include <cstdint>

namespace jws::detail {

__extension__ typedef __int128 Wide;

struct GridPoint {
    std::int64_t x;
    std::int64_t y;
};

inline bool operator==(const GridPoint& a, const GridPoint& b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(const GridPoint& a, const GridPoint& b) { return !(a == b); }
/// Lexicographic: by x, then by y.
inline bool operator<(const GridPoint& a, const GridPoint& b) {
    return a.x != b.x ? a.x < b.x : a.y < b.y;
}
inline GridPoint operator-(const GridPoint& a, const GridPoint& b) {
    return {a.x - b.x, a.y - b.y};
}

inline Wide cross(const GridPoint& a, const GridPoint& b) {
    return static_cast<Wide>(a.x) * b.y - static_cast<Wide>(a.y) * b.x;
}

inline Wide dot(const GridPoint& a, const GridPoint& b) {
    return static_cast<Wide>(a.x) * b.x + static_cast<Wide>(a.y) * b.y;
}

/// An edge is cut at corners that it passes within this many grid steps.
constexpr int kCutSteps = 2;

/// The largest cross product of an edge's direction with the way to a point that is cut there.
inline Wide cutReach(const GridPoint& direction) {
    const std::int64_t x = direction.x < 0 ? -direction.x : direction.x;
    const std::int64_t y = direction.y < 0 ? -direction.y : direction.y;
    return kCutSteps * (static_cast<Wide>(x) + y);
}

/// 1 when a, b, c turn left, -1 when they turn right, 0 when they are collinear.
inline int orientation(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
    const Wide turn = cross(b - a, c - a);
    return turn > 0 ? 1 : (turn < 0 ? -1 : 0);
}

}  // namespace jws::detail

#endif  // JW_GPC_GRID_POINT_H
