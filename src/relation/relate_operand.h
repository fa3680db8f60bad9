// SPDX-License-Identifier: MIT
//
// RelateOperand: a geometry made ready for relations. Its lines and rings are chains of a forest of
// edges; what is only a point stands beside them.
//
// An area is what its rings enclose by the even-odd rule, all rings of a polygon, multi-polygon or
// bag together, with the rings themselves: a spike or a fold belongs to its boundary. An edge that
// two members share, or any even number of edges between inside and inside, is interior. Rings that
// are not closed are closed by a straight edge. The boundary of lines are the ends at which an odd
// number of them end; a closed line has none. A line or ring of no length is a point, and points
// are interior. In a bag areas come before lines, and lines before points.
#ifndef JW_RELATION_RELATE_OPERAND_H
#define JW_RELATION_RELATE_OPERAND_H

#include <vector>

#include "jw_geometry.h"
#include "relation/edge_event.h"
#include "relation/relation_matrix.h"

namespace jws::detail {

/// The parity of an area on both sides of a stretch.
struct Sides {
    bool left = false;
    bool right = false;
    bool differ() const { return left != right; }
    bool inside() const { return left && right; }
};

/// A direction in which an edge of an area leaves a place: towards this point.
using Rays = std::vector<const JWRawPoint*>;

class RelateOperand {
  public:
    enum Status { kUsable, kEmpty, kNotFinite, kUnsupported };

    /// What the coordinates need so that nothing exact overflows or underflows: a range of
    /// magnitudes, joined over both operands.
    struct Range {
        double largest = 0;
        double smallest = 0;  ///< of those that are not 0; 0 when there is none
        void add(double v);
        void add(const Range& o);
        /// Products of four coordinates are exact as they are.
        bool isPlain() const;
        /// The power of two that brings the largest where they are.
        int shift() const;
    };

    /// Takes a geometry in, its coordinates copied and multiplied by 2^shift. After a shift, those
    /// more than 140 decimal orders smaller than the largest lose digits, down to 0. Keeps its
    /// memory between calls.
    Status assign(const JWGeometry& geometry, int shift = 0);
    const Range& range() const { return m_range; }
    /// Holds all coordinates.
    const JWEnvelop& box() const { return m_box; }
    bool isEmpty() const { return m_points.empty() && m_forest.isEmpty(); }

    /// Makes places and edges ready to be found. All that follows needs it.
    void index();
    /// Finds out how the geometry meets itself; `relate` needs it.
    void resolve();
    /// What `resolve` found.
    const EdgeEvents& ownEvents() const { return m_ownEvents; }
    /// On both sides of a chain's first edge.
    Sides ownSides(std::size_t chain) const { return m_chainSides[chain]; }

    const EdgeForest& forest() const { return m_forest; }
    /// Those that are nothing but points, sorted, each once.
    const std::vector<JWRawPoint>& points() const { return m_points; }
    std::size_t pointCount() const { return m_points.size() + m_forest.pointCount(); }

    Location locate(const JWRawPoint& p) const;
    /// Tells whether a point lies on an edge, ends included.
    bool isOnEdge(const JWRawPoint& p) const;
    /// The parities on both sides of the first edge of a chain of any geometry; left and right by
    /// its direction.
    Sides sidesAt(const JWRawPoint& start, const JWRawPoint& next) const;
    bool isBoundaryPoint(const JWRawPoint& p) const;
    bool isPoint(const JWRawPoint& p) const;

  private:
    Status take(const JWGeometry& geometry);
    Status takePoint(const JWRawPoint& p);
    Status takeChain(const JWRawPoint* points, int count, bool area);
    bool read(const JWRawPoint& p, JWRawPoint& taken);
    Status finish(Status status);
    void addEndEvents(const JWRawPoint& end);
    void findBoundary();

    EdgeForest m_forest;
    std::vector<JWRawPoint> m_points;
    std::vector<JWRawPoint> m_boundary;  ///< of lines, sorted
    JWEnvelop m_box = JWEnvelop::invalid();
    Range m_range;
    double m_extent[4] = {0, 0, 0, 0};
    int m_shift = 0;
    bool m_hasArea = false;
    bool m_hasLine = false;
    bool m_indexed = false;
    EdgeEvents m_ownEvents;
    std::vector<Sides> m_chainSides;
};

/// Tells whether the rays from `center` come in pairs of one direction.
bool raysPair(const JWRawPoint& center, Rays& rays);

/// Sorts events along a forest.
void sortEvents(const EdgeForest& forest, EdgeEvents& events);
/// Tells whether two sorted neighbours happen in one place.
bool samePlace(const EdgeForest& forest, const EdgeEvent& x, const EdgeEvent& y);

}  // namespace jws::detail

#endif  // JW_RELATION_RELATE_OPERAND_H
