// SPDX-License-Identifier: MIT
//
// ChainWalk: goes along a chain of one geometry and raises the entries of the relation matrix for
// every place, stretch and side that it passes.
//
// On the way it carries the parity of both geometries' areas on its left and on its right. They
// change only where an edge is met; there, the rays of that edge which leave into the sector on the
// left (right) of the way swap the left (right) parity. So two point locations, one in each
// geometry, at the start of a chain are all that is ever located, and every step is decided by the
// signs of orientations of given vertices. That holds for rings that cross or cover themselves as
// well, since the geometry's own edges are met in the same way.
//
// Cost: O(e log e) for the e events along the chain; vertices at which nothing is met cost nothing.
#ifndef JW_RELATION_CHAIN_WALK_H
#define JW_RELATION_CHAIN_WALK_H

#include "relation/relate_operand.h"

namespace jws::detail {

class ChainWalk {
  public:
    /// `other` null: everything but the geometry itself is exterior. Raises entries of `matrix`,
    /// whose rows are those of `own`.
    ChainWalk(const RelateOperand& own, const RelateOperand* other, RelationMatrix& matrix)
        : m_own(own), m_other(other), m_matrix(matrix) {}

    /// Walks along one chain; `events` from `begin` to `end` are those along it, sorted.
    void walk(std::size_t chain, const EdgeEvent* begin, const EdgeEvent* end);

  private:
    /// What lies on and beside the way with regard to one geometry.
    struct Beside {
        Sides sides;
        int areaEdges = 0;  ///< edges of its areas that run along
        int lineEdges = 0;
    };
    struct Way {
        Beside own;
        Beside other;
        Beside& of(bool isOwn) { return isOwn ? own : other; }
        const Beside& of(bool isOwn) const { return isOwn ? own : other; }
    };
    /// Events in one place.
    struct Group {
        const EdgeEvent* begin;
        const EdgeEvent* end;
    };

    Group groupAt(const EdgeEvent* begin, const EdgeEvent* end) const;
    void turn(const Group& group, Way& way) const;
    void turnAtVertex(const Group& group, Way& way) const;
    void follow(const Group& group, Way& way) const;

    void addStretch(const Way& way);
    void addPlace(const Group& group, const Way& before, const Way& after, const JWRawPoint* p);
    Location stretchLocation(const Way& way, bool own) const;
    Location placeLocation(const Group& group, const Way& before, const Way& after,
                           const JWRawPoint* p, bool own) const;
    bool raysPairAt(const Group& group, const JWRawPoint* p, bool own) const;
    const JWRawPoint* vertexOf(const Group& group) const;
    bool crossingsPair(const Group& group, bool own) const;

    const JWRawPoint* points() const { return m_own.forest().points(); }
    /// Vertices before and after one on the way; only within the chain, or around a closed one.
    const JWRawPoint& before(std::uint32_t vertex) const;
    const JWRawPoint& after(std::uint32_t vertex) const;

    const RelateOperand& m_own;
    const RelateOperand* m_other;
    RelationMatrix& m_matrix;
    const EdgeChain* m_chain = nullptr;
};

}  // namespace jws::detail

#endif  // JW_RELATION_CHAIN_WALK_H
