// SPDX-License-Identifier: MIT
#ifndef JW_BUFFER_PIECE_UNION_H
#define JW_BUFFER_PIECE_UNION_H

#include <cstddef>
#include <vector>

#include "buffer/buffer_shape.h"
#include "buffer/outline_union.h"

namespace jws::detail {

/// Shapes of one distance to be united. Those of one run follow one another, as along a line.
struct Shapes {
    double distance;
    const ArcStyle& arcs;
    std::vector<Shape> list;
    std::vector<std::size_t> runEnds;

    void endRun() {
        if (list.size() > (runEnds.empty() ? 0 : runEnds.back())) runEnds.push_back(list.size());
    }
};

/// The largest of all coordinates of shapes, in size.
double largestCoordinate(const Shapes& shapes);
/// Whether all shapes can be reasoned about in doubles.
bool isAmple(const Shapes& pieces);

/// The union of all shapes, exactly as if each were an operand of its own. A shape that meets no
/// other keeps its corners in their order. Every corner of every shape must be finite. Throws
/// ClipFailure and std::bad_alloc.
Outline unitePieces(const Shapes& pieces, const Team& team);

}  // namespace jws::detail

#endif  // JW_BUFFER_PIECE_UNION_H
