// SPDX-License-Identifier: MIT
//
// The relation of two geometries, from which every predicate follows.
#ifndef JW_RELATION_RELATE_H
#define JW_RELATION_RELATE_H

#include <memory>
#include <vector>

#include "relation/chain_walk.h"

namespace jws::detail {

/// A resolved operand that is met by many others.
class PreparedOperand {
  public:
    /// Indexes and resolves an operand that was assigned.
    explicit PreparedOperand(RelateOperand&& operand);

    const RelateOperand& operand() const { return m_operand; }
    /// Raises what a node of the forest has outside the other operand when all of it is there.
    void addSummary(std::uint32_t node, RelationMatrix& matrix) const;

  private:
    RelateOperand m_operand;
    std::vector<RelationMatrix> m_summaries;  ///< of groups of chains
    std::uint32_t m_firstGroup = 0;
};

/// Working memory of relations; one object per thread.
class Relator {
  public:
    /// The relation matrix of two usable, resolved operands on one scale. An entry of `stop` that
    /// is found not to be empty ends the work: the matrix then holds that entry and others that
    /// were found before it.
    RelationMatrix relate(const PreparedOperand& a, const PreparedOperand& b, unsigned stop = 0);

    /// Tells whether two indexed operands on one scale have a point in common.
    static bool intersect(const RelateOperand& a, const RelateOperand& b);
    /// The same for their edges only.
    static bool edgesIntersect(const RelateOperand& a, const RelateOperand& b);
    /// Tells whether some chain or point of `a` begins in `b`.
    static bool anyStartInside(const RelateOperand& a, const RelateOperand& b);

  private:
    bool walkAll(const PreparedOperand& own, const PreparedOperand& other, EdgeEvents& events,
                 unsigned stop, RelationMatrix& matrix);
    bool walkNode(std::uint32_t node, unsigned stop, RelationMatrix& matrix);

    EdgeEvents m_eventsA;
    EdgeEvents m_eventsB;
    const PreparedOperand* m_own = nullptr;
    const PreparedOperand* m_other = nullptr;
    const EdgeEvents* m_events = nullptr;
};

}  // namespace jws::detail

#endif  // JW_RELATION_RELATE_H
