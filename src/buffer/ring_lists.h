// SPDX-License-Identifier: MIT
//
// The public buffer functions' way in and out: arguments checked, exceptions turned into answers,
// rings handed over as pointers.
#ifndef JW_BUFFER_RING_LISTS_H
#define JW_BUFFER_RING_LISTS_H

#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "buffer/geometry_buffer.h"
#include "foundation/api_guard.h"

namespace jws::detail {

/// True for a distance that a buffer can have; otherwise keeps the reason as the last error.
inline bool isDistance(const char* function, double distance) {
    if (distance > 0 && std::isfinite(distance)) return true;
    refused(function, "the distance is not greater than 0 and finite");
    return false;
}

/// Runs `body`, which makes rings, and gives them to `take` unless there are none. Returns 1, or 0
/// for no rings and for a failure.
template <class Body, class Take>
int deliver(const char* function, Body&& body, Take&& take) {
    return guarded(function, 0, [&] {
        try {
            FlaggedRings rings = body();
            if (rings.empty()) return refused(function, "the result is empty");
            take(std::move(rings));
            return 1;
        } catch (const BadBuffer& bad) {
            return refused(function, bad.what());
        }
    });
}

/// Replaces the points of a caller's ring by a shape. Returns 1; 0 for null, −1 when memory runs
/// out.
inline int makeShape(const Shape& piece, double distance, const ArcStyle& arcs, JWRing* ring) {
    if (!ring) return 0;
    return guarded("makeShape", -1, [&] {
        fillRing(piece, distance, arcs, *ring);
        return 1;
    });
}

/// Replaces the contents of a caller's lists.
inline void handOver(FlaggedRings&& from, std::vector<JWRing*>& rings, std::vector<int>& flags) {
    std::vector<std::unique_ptr<JWRing>> made;
    made.reserve(from.rings.size());
    for (JWRing& ring : from.rings) made.push_back(std::make_unique<JWRing>(std::move(ring)));
    rings.reserve(made.size());
    flags = std::move(from.flags);
    for (auto& ring : made) rings.push_back(ring.release());
}

/// Runs a buffer into a caller's lists. `threads` 1 or a team's size; `input` is a geometry.
template <class Input, class Body>
int fillLists(const char* function, const Input* input, double distance, const ArcStyle& arcs,
              int threads, std::vector<JWRing*>& rings, std::vector<int>& flags, Body&& body) {
    if (!input) return refused(function, "the geometry is null");
    if (!isDistance(function, distance)) return 0;
    rings.clear();
    flags.clear();
    return deliver(
        function,
        [&] {
            const Team team(threads);
            return body(*input, BufferPlan{distance, arcs, team});
        },
        [&](FlaggedRings&& made) { handOver(std::move(made), rings, flags); });
}

}  // namespace jws::detail

#endif  // JW_BUFFER_RING_LISTS_H
