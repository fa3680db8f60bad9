// SPDX-License-Identifier: MIT
#ifndef JW_CLIP_LINE_SPLIT_H
#define JW_CLIP_LINE_SPLIT_H

#include <functional>
#include <vector>

#include "clip/edge_index.h"
#include "foundation/parallel.h"

namespace jws::detail {

/// Receives the pieces of a line in order; the points may be taken.
using PieceSink = std::function<void(std::vector<JWRawPoint>& points, bool inside)>;

/// Where an area cuts a line.
enum class AreaCut {
    /// Wherever the line meets the boundary, touching included; where it runs along it, at both
    /// ends of that stretch. A stretch that the line begins with is marked like what follows.
    EveryMeeting,
    /// Where it goes from inside to outside or back; what lies on the boundary is inside.
    InsideOut,
};

/// Cuts a line by an area, which is read by the even-odd rule and has its boundary; `edges` are
/// those of the area. A line of many segments is shared out to the team.
///
/// Pieces follow one another without a gap and share their end points bit for bit; vertices keep
/// their bits. A line that lies wholly on the boundary is inside. Returns false, without a piece,
/// for a line of no length. Coordinates must be finite and, times the scale of the edges, of a size
/// whose products do not overflow.
bool splitByArea(const PointSpan& line, const EdgeIndex& edges, AreaCut cut, const Team& team,
                 const PieceSink& sink);

/// Cuts a line wherever edges cross it, touch it or begin to run along it; where edges and line run
/// together, at the ends of what they share. Otherwise as `splitByArea`; pieces count as inside.
bool splitByLines(const PointSpan& line, const EdgeIndex& edges, const Team& team,
                  const PieceSink& sink);

/// Tells whether a point is in the area or on its boundary.
bool isInArea(const JWRawPoint& p, const EdgeIndex& edges);

}  // namespace jws::detail

#endif  // JW_CLIP_LINE_SPLIT_H
