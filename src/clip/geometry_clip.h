// SPDX-License-Identifier: MIT
//
// Clipping of two geometries, one body for all forms. Functions throw when memory runs out or the
// engine gives up, and ClipRefused for operands that have no answer.
#ifndef JW_CLIP_GEOMETRY_CLIP_H
#define JW_CLIP_GEOMETRY_CLIP_H

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "boolean/area_operand.h"
#include "boolean/ring_clip.h"
#include "clip/cutter.h"
#include "clip/line_index.h"
#include "foundation/parallel.h"
#include "jw_geometry.h"

namespace jws::detail {

/// Why there is no answer.
struct ClipRefused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The operands are fine, but there is no piece.
struct EmptyClip : ClipRefused {
    EmptyClip() : ClipRefused("the result is empty") {}
};

/// The rings of an area as they are, closed; those of fewer than four points are left out.
RingViews closedRings(const JWGeometry& area);

/// A piece with its marker: 1 inside, 0 outside.
template <class Geometry>
struct MarkedPiece {
    std::unique_ptr<Geometry> geometry;
    unsigned inside;
};
template <class Geometry>
using MarkedPieces = std::vector<MarkedPiece<Geometry>>;

/// A geometry that cuts many others: checked once, its edges read once, when first asked for. Any
/// number of threads may use it at once.
class PreparedCutter {
  public:
    /// `forMany`: prepares a large area to be met by many others.
    PreparedCutter(const JWGeometry& geometry, EdgeSearch search, bool forMany = false)
        : m_geometry(geometry), m_search(search), m_forMany(forMany) {}

    const JWGeometry& geometry() const { return m_geometry; }
    /// Throws ClipRefused when the geometry is empty, not finite or, where that is asked for,
    /// weird.
    void check(bool forWeird);
    /// Throws ClipRefused when there are no edges.
    const Cutter& edges();
    /// Of lines that cut areas. Throws ClipRefused when there are none.
    const LineIndex& lines();
    /// What an area has in common with this one, a polygon or multipolygon.
    ClippedContours commonWith(const Area& area);

  private:
    const JWGeometry& m_geometry;
    EdgeSearch m_search;
    bool m_forMany;
    std::once_flag m_checked, m_judged, m_read, m_indexed, m_gathered;
    bool m_isWeird = false;
    std::unique_ptr<const Cutter> m_edges;
    std::unique_ptr<const LineIndex> m_lines;
    std::unique_ptr<const Area> m_area;
};

/// Throws ClipRefused as `PreparedCutter::check` does.
void checkOperand(const JWGeometry& geometry, bool forWeird);

/// The rectangle around all points of a geometry, whatever envelope it has stored.
JWEnvelop boxAround(const JWGeometry& geometry);

/// The pieces of a line string or multi line string.
MarkedPieces<JWLineString> cutLines(const JWGeometry& lines, const Cutter& cutter,
                                    const Team& team);

/// The points of a multipoint inside and outside.
MarkedPieces<JWMultiPoint> cutPoints(const JWMultiPoint& points, const Cutter& cutter,
                                     const Team& team);

/// A face: its outer ring, then its holes.
using Face = std::vector<JWRing>;
/// The faces that lines cut a ring, polygon or multipolygon into, the smaller ones first.
std::vector<Face> cutArea(const JWGeometry& area, const LineIndex& lines, const Team& team);

/// Does what `JWGeometryClip::geometryClipByGeometry` does. Throws EmptyClip when there is no
/// piece.
MarkedPieces<JWGeometry> clipGeometry(const JWGeometry& target, PreparedCutter& cutter,
                                      bool checkWeird, const Team& team);

/// Runs a part of a larger task, such as the clip of one feature of many. What has no answer leaves
/// its reason.
template <class Body>
void attempt(std::string& reason, Body&& body) {
    try {
        body();
    } catch (const ClipRefused& refusal) {
        reason = refusal.what();
    } catch (const ClipFailure& failure) {
        reason = failure.what();
    }
}

}  // namespace jws::detail

#endif  // JW_CLIP_GEOMETRY_CLIP_H
