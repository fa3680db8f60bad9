// SPDX-License-Identifier: MIT
//
// The union of any number of areas by the sum of their boundaries.
//
// An area that is walked around with its interior on the left winds once around each of its points
// and not at all around any other. Summed over many areas, the winding number of a point tells how
// many of them cover it, and their union is where it is at least 1. An edge that one area runs
// along forwards and another one backwards adds nothing to any point's number: it can be left out
// before anything is computed. In a clean coverage that leaves just the outline of the whole; in a
// layer with gaps, overlaps and borders that do not match, whatever does not cancel is left to the
// clipping engine, which needs no cleanness. So the clean case is fast and the others are right.
//
// The sum does not depend on the order in which areas are added, nor does the union: bit for bit.
#ifndef JW_BOOLEAN_AREA_SUM_H
#define JW_BOOLEAN_AREA_SUM_H

#include <cstdint>
#include <vector>

#include "boolean/plain_area.h"
#include "boolean/ring_clip.h"
#include "foundation/pulse.h"
#include "jw_geometry.h"

namespace jws::detail {

/// Sums boundaries, twins cancelled. A value to keep for many sums; one thread at a time.
class AreaSum {
  public:
    /// A boundary edge that is left, interior on its left, and how often it is there.
    struct Edge {
        JWRawPoint from;
        JWRawPoint to;
        int times;
    };
    using Edges = std::vector<Edge>;

    /// Starts a new sum. Memory stays.
    void clear();
    /// Finds out how a polygon or multipolygon has to be added. Changes nothing of the sum, and the
    /// answer is good for any sum.
    PlainArea classify(const JWGeometry& area);
    /// Adds a polygon or multipolygon, read by the even-odd rule over all its rings; coordinates
    /// must be finite, and `kind` what `classify` says. Returns its area. An area that is not plain
    /// is resolved by the clipping engine first. Throws ClipFailure, with nothing added, when the
    /// engine gives up.
    double add(const JWGeometry& area, PlainArea kind);
    /// Adds an area given by its rings, classified on the way; otherwise the same.
    double add(const RingViews& rings);
    /// Adds what another sum left.
    void add(const Edges& edges);
    /// What is left, in an order that depends on what was added and in which order.
    Edges rest() const;
    /// The same into a list that is kept.
    void rest(Edges& left) const;

    /// Computes the union of all that a sum left; `edges` is sorted on the way. `overlap` is that
    /// of `uniteDirected`. Throws ClipFailure and std::bad_alloc.
    static ClippedContours unite(Edges& edges, double& overlap);

  private:
    void gather(const JWGeometry& area);
    void dropPoints();
    double addGathered(PlainArea kind);
    double addPlain(const RingViews& rings, PlainArea kind);
    double addResolved(const RingViews& rings);
    void addRing(const RingView& ring, bool forward);
    void addEdge(const JWRawPoint& from, const JWRawPoint& to, int times);
    void grow();

    Edges m_edges;                       ///< each with `from` before `to`; `times` has the sign
    std::vector<std::uint32_t> m_slots;  ///< a hash table of places in `m_edges`, plus 1
    std::size_t m_used = 0;              ///< the slots of the table that are in use
    PlainAreaTest m_test;
    StepCounter m_pace;
    RingViews m_rings;
};

}  // namespace jws::detail

#endif  // JW_BOOLEAN_AREA_SUM_H
