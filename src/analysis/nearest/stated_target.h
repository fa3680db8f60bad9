// SPDX-License-Identifier: MIT
//
// A target feature of the established search: its parts in the form that their operation measures
// them in, with trees over the large ones.
#ifndef JW_ANALYSIS_NEAREST_STATED_TARGET_H
#define JW_ANALYSIS_NEAREST_STATED_TARGET_H

#include <memory>
#include <vector>

#include "analysis/nearest/area_distance.h"

namespace jws::detail {

/// What an operation takes a target for.
enum class TargetKind { Point, Lines, Rings, Areas };

/// A source as it is measured from: a point, or the segments of one line (a line of one point is
/// that point, where the target is a point).
struct StatedSource {
    bool isPoint = false;
    Segments pieces;
    JWEnvelop box = JWEnvelop::invalid();
};

class StatedTarget {
  public:
    /// Views `geometry`, which must be of the kind, stay in place and unchanged; `box` is the
    /// rectangle around it.
    StatedTarget(TargetKind kind, const JWGeometry& geometry, const JWEnvelop& box);

    /// The first of the least distances up to `limit`, in the order of the source's segments and
    /// the target's parts; from the source to the target, but to a point target from a line, where
    /// the connection begins at the target. There may be none where it is larger.
    FirstLeast measure(const StatedSource& source, double limit) const;

  private:
    FirstLeast fromSourcePoint(const JWRawPoint& p, double limit) const;
    FirstLeast fromSourceLine(const Segments& segments, double limit) const;

    TargetKind m_kind;
    Segments m_pieces;  ///< the point, or the segments of lines
    std::vector<RingDistance> m_rings;
    std::vector<AreaDistance> m_areas;
    std::unique_ptr<const SegmentTree> m_lineTree;  ///< over the segments of long lines
    JWEnvelop m_box;
    BoxDistance m_bound;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_STATED_TARGET_H
