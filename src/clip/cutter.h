// SPDX-License-Identifier: MIT
//
// Cutter: a geometry that cuts others, read once and used any number of times.
#ifndef JW_CLIP_CUTTER_H
#define JW_CLIP_CUTTER_H

#include <memory>
#include <vector>

#include "clip/edge_index.h"
#include "clip/line_split.h"
#include "foundation/ring_set.h"
#include "jw_geometry.h"

namespace jws::detail {

class Cutter {
  public:
    /// Reads a ring, polygon or multipolygon (an area), a line string or a multi line string; other
    /// kinds have no edges. The points are borrowed, coordinates must be finite.
    Cutter(const JWGeometry& geometry, EdgeSearch search);
    /// Reads an area from its rings, without closing points.
    explicit Cutter(const RingViews& area);

    /// True when there is nothing that could cut.
    bool isEmpty() const { return m_edges->isEmpty(); }
    bool isArea() const { return m_kind == EdgeIndex::Chains::Closed; }
    /// Cuts a line, by a team. One of no length is a piece that lies where its point does.
    /// Coordinates must be finite.
    void split(const JWLineString& line, AreaCut cut, const Team& team,
               const PieceSink& sink) const;
    /// Tells whether a point is in the area or on its boundary.
    bool holds(const JWRawPoint& p) const;

    /// Tells whether an edge may reach a rectangle.
    bool mayReach(const JWEnvelop& box) const;

  private:
    std::unique_ptr<EdgeIndex> index(int exponent) const;

    std::vector<PointSpan> m_chains;
    EdgeIndex::Chains m_kind;
    EdgeSearch m_search;
    int m_exponent;  ///< all coordinates are below 2^m_exponent
    std::unique_ptr<const EdgeIndex> m_edges;
};

}  // namespace jws::detail

#endif  // JW_CLIP_CUTTER_H
