// SPDX-License-Identifier: MIT
//
// The relation matrix from two walks.
//
// The trees over both geometries' edges name the pairs of edges that may meet; exact orientations
// say where they do. Each geometry is then walked chain by chain, past these meetings. Every place,
// stretch and side at which the interior, boundary or exterior of one meets that of the other lies
// on or beside an edge of one of them, or is a point of its own, so the walks see them all. What
// lies outside the other geometry's rectangle is not walked again but added from a summary.
//
// Nothing is rounded: the matrix is that of the given coordinates. Cost: about
// O((n + m + k) log(n + m)) for k pairs of edges whose rectangles meet, less for the parts of a
// prepared operand that lie far from the other one.
#include "relation/relate.h"

#include <algorithm>

namespace jws::detail {
namespace {

/// Events along a chain.
std::pair<const EdgeEvent*, const EdgeEvent*> eventsOf(const EdgeEvents& events,
                                                       const EdgeChain& chain) {
    const auto before = [](const EdgeEvent& e, std::uint32_t point) { return e.point < point; };
    const auto begin = std::lower_bound(events.begin(), events.end(), chain.first, before);
    const auto end = std::lower_bound(begin, events.end(), chain.last + 1, before);
    return {events.data() + (begin - events.begin()), events.data() + (end - events.begin())};
}

}  // namespace

PreparedOperand::PreparedOperand(RelateOperand&& operand) : m_operand(std::move(operand)) {
    m_operand.index();
    m_operand.resolve();
    const EdgeForest& forest = m_operand.forest();
    if (forest.chains().size() < 2) return;
    m_firstGroup = forest.root();
    while (forest.node(m_firstGroup - 1).kind == EdgeForest::kGroup) --m_firstGroup;
    m_summaries.resize(forest.root() + 1 - m_firstGroup);
    for (std::uint32_t i = m_firstGroup; i <= forest.root(); ++i) {
        const EdgeForest::Node& node = forest.node(i);
        for (std::uint32_t child = node.first; child < node.last; ++child)
            addSummary(child, m_summaries[i - m_firstGroup]);
    }
}

void PreparedOperand::addSummary(std::uint32_t index, RelationMatrix& matrix) const {
    const EdgeForest::Node& node = m_operand.forest().node(index);
    if (node.kind == EdgeForest::kGroup) {
        matrix.raiseAll(m_summaries[index - m_firstGroup]);
        return;
    }
    const auto [begin, end] =
        eventsOf(m_operand.ownEvents(), m_operand.forest().chains()[node.chain]);
    ChainWalk(m_operand, nullptr, matrix).walk(node.chain, begin, end);
}

bool Relator::edgesIntersect(const RelateOperand& a, const RelateOperand& b) {
    const JWRawPoint *pa = a.forest().points(), *pb = b.forest().points();
    const auto meet = [&](std::uint32_t i, std::uint32_t, std::uint32_t j, std::uint32_t) {
        return edgesMeet(pa + i, pb + j);
    };
    return a.forest().visitPairs(b.forest(), meet);
}

bool Relator::anyStartInside(const RelateOperand& a, const RelateOperand& b) {
    const auto isInside = [&b](const JWRawPoint& p) {
        return b.box().contains(p) && b.locate(p) != kExterior;
    };
    const std::vector<EdgeChain>& chains = a.forest().chains();
    return std::any_of(
               chains.begin(), chains.end(),
               [&](const EdgeChain& c) { return isInside(a.forest().points()[c.first]); }) ||
           std::any_of(a.points().begin(), a.points().end(), isInside);
}

/// A chain of which no edge meets the other geometry lies on one side of all its boundaries, as its
/// first point does.
bool Relator::intersect(const RelateOperand& a, const RelateOperand& b) {
    return !a.box().isDisjoin(b.box()) &&
           (edgesIntersect(a, b) || anyStartInside(a, b) || anyStartInside(b, a));
}

RelationMatrix Relator::relate(const PreparedOperand& a, const PreparedOperand& b, unsigned stop) {
    RelationMatrix matrix;
    matrix.raise(kExterior, kExterior, 2);
    m_eventsA.clear();
    m_eventsB.clear();
    const EdgeForest &fa = a.operand().forest(), &fb = b.operand().forest();
    const auto meet = [&](std::uint32_t i, std::uint32_t c, std::uint32_t j, std::uint32_t d) {
        meetEdges({fa, i, c, &m_eventsA}, {fb, j, d, &m_eventsB}, false);
        return false;
    };
    fa.visitPairs(fb, meet);
    if (walkAll(a, b, m_eventsA, stop, matrix)) return matrix;
    // The second walk fills the matrix with the operands swapped.
    RelationMatrix swapped = matrix.transposed();
    const auto turned = [](unsigned entries) {
        unsigned result = 0;
        for (int i = 0; i < 9; ++i)
            if (entries & RelationMatrix::bit(i / 3, i % 3))
                result |= RelationMatrix::bit(i % 3, i / 3);
        return result;
    };
    walkAll(b, a, m_eventsB, turned(stop), swapped);
    return swapped.transposed();
}

/// Walks all of one operand; true when an entry of `stop` was found.
bool Relator::walkAll(const PreparedOperand& own, const PreparedOperand& other, EdgeEvents& events,
                      unsigned stop, RelationMatrix& matrix) {
    m_own = &own;
    m_other = &other;
    const RelateOperand& operand = own.operand();
    for (const JWRawPoint& p : operand.points()) {
        matrix.raise(operand.forest().isEmpty() ? kInterior : operand.locate(p),
                     other.operand().locate(p), 0);
        if (matrix.set() & stop) return true;
    }
    if (operand.forest().isEmpty()) return false;
    if (!operand.ownEvents().empty() && !events.empty())
        events.insert(events.end(), operand.ownEvents().begin(), operand.ownEvents().end());
    sortEvents(operand.forest(), events);
    m_events = events.empty() ? &operand.ownEvents() : &events;
    return walkNode(operand.forest().root(), stop, matrix);
}

bool Relator::walkNode(std::uint32_t index, unsigned stop, RelationMatrix& matrix) {
    const RelateOperand& own = m_own->operand();
    const EdgeForest::Node& node = own.forest().node(index);
    if (node.box.isDisjoin(m_other->operand().box())) {
        m_own->addSummary(index, matrix);
        return (matrix.set() & stop) != 0;
    }
    if (node.kind == EdgeForest::kGroup) {
        for (std::uint32_t child = node.first; child < node.last; ++child)
            if (walkNode(child, stop, matrix)) return true;
        return false;
    }
    const auto [begin, end] = eventsOf(*m_events, own.forest().chains()[node.chain]);
    ChainWalk(own, &m_other->operand(), matrix).walk(node.chain, begin, end);
    return (matrix.set() & stop) != 0;
}

}  // namespace jws::detail
