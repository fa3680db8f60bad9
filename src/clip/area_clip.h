// SPDX-License-Identifier: MIT
#ifndef JW_CLIP_AREA_CLIP_H
#define JW_CLIP_AREA_CLIP_H

#include <memory>
#include <optional>

#include "boolean/area_operand.h"
#include "clip/cutter.h"

namespace jws::detail {

enum class ClipSide { Inside, Outside };

/// An area that clips any number of geometries of any kind. Immutable: any number of threads may
/// clip by it at once.
class AreaClip {
  public:
    /// Rings without closing points, read by the even-odd rule, finite; borrowed from `owner`,
    /// which it keeps alive.
    AreaClip(const RingViews& rings, std::shared_ptr<const void> owner, AreaCut cut);
    /// The area of a rectangle. Points are decided by the rectangle itself, so that one without an
    /// area holds those that lie on it, but nothing of lines and areas.
    static AreaClip ofRectangle(const JWEnvelop& rectangle, AreaCut cut);

    /// The part of a geometry with finite coordinates that lies on one side; null for none. Lines
    /// give a multi line string, areas a polygon or multipolygon, bags a bag; points and
    /// multipoints stay what they are. Throws ClipFailure and std::bad_alloc.
    std::unique_ptr<JWGeometry> part(const JWGeometry& geometry, ClipSide side) const;

  private:
    bool holds(const JWRawPoint& p) const;
    bool isUncut(const JWEnvelop& box) const;
    std::unique_ptr<JWGeometry> partOfLines(const JWGeometry& lines, ClipSide side) const;
    std::unique_ptr<JWGeometry> partOfArea(const JWGeometry& area, ClipSide side) const;
    std::unique_ptr<JWGeometry> partOfBag(const JWGeometryCollection& bag, ClipSide side) const;

    Area m_area;
    Cutter m_edges;
    AreaCut m_cut;
    std::optional<JWEnvelop> m_rectangle;  ///< when the area is one
};

/// True for a valid rectangle with finite corners.
bool isClipRectangle(const JWEnvelop& rectangle);

/// What of a geometry lies in the rectangle that `clip` is made of. Throws ClipRefused for a
/// coordinate that is not finite, otherwise as `AreaClip::part`.
std::unique_ptr<JWGeometry> partInRectangle(const AreaClip& clip, const JWGeometry& geometry);

}  // namespace jws::detail

#endif  // JW_CLIP_AREA_CLIP_H
