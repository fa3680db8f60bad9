// SPDX-License-Identifier: MIT
//
// Lines that cut many areas: what of them lies near an area is found by a tree over runs of
// segments, so that each area costs what comes near it, not all the lines.
#ifndef JW_CLIP_LINE_INDEX_H
#define JW_CLIP_LINE_INDEX_H

#include <vector>

#include "jw_geometry.h"
#include "trees/packed_tree.h"

namespace jws::detail {

/// Immutable: any number of threads may use it at once.
class LineIndex {
  public:
    /// Reads a line string or multi line string with finite coordinates, which must stay as it is.
    explicit LineIndex(const JWGeometry& lines);

    /// The parts of the lines in a rectangle, in the order of the lines.
    std::vector<std::vector<JWRawPoint>> within(const JWEnvelop& window) const;

  private:
    /// Neighbouring points of a line; the next run of the line begins with the last of them.
    struct Run {
        const JWRawPoint* first;
        const JWRawPoint* last;
    };

    std::vector<Run> m_runs;
    PackedTree m_tree;
};

}  // namespace jws::detail

#endif  // JW_CLIP_LINE_INDEX_H
