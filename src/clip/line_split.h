// SPDX-License-Identifier: MIT
#ifndef JW_CLIP_LINE_SPLIT_H
#define JW_CLIP_LINE_SPLIT_H

#include <functional>
#include <vector>

#include "clip/edge_index.h"

namespace jws::detail {

/// Receives the pieces of a line in order; the points may be taken.
using PieceSink = std::function<void(std::vector<JWRawPoint>& points, bool inside)>;

/// What counts as inside where a line begins by running along the boundary of the area.
enum class Beginning {
    LikeWhatFollows,  ///< such a stretch belongs to the piece that leaves the boundary
    Inside,           ///< it belongs to the area as everywhere else
};

/// Cuts a line where it goes from inside an area to outside or back. `edges` are those of the area,
/// which is read by the even-odd rule; the boundary belongs to it, but for what `beginning` says.
///
/// Pieces follow one another without a gap, alternate between inside and outside, and share their
/// end points bit for bit; vertices keep their bits. A line that lies wholly on the boundary is
/// inside. Returns false, without a piece, for a line of no length. Coordinates must be finite and,
/// times the scale of the edges, of a size whose products do not overflow.
bool splitByArea(const PointSpan& line, const EdgeIndex& edges, Beginning beginning,
                 const PieceSink& sink);

/// Cuts a line wherever edges cross it, touch it or begin to run along it; where edges and line run
/// together, at the ends of what they share. Otherwise as `splitByArea`; pieces count as inside.
bool splitByLines(const PointSpan& line, const EdgeIndex& edges, const PieceSink& sink);

/// Tells whether a point is in the area or on its boundary.
bool isInArea(const JWRawPoint& p, const EdgeIndex& edges);

}  // namespace jws::detail

#endif  // JW_CLIP_LINE_SPLIT_H
