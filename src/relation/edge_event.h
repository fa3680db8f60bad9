// SPDX-License-Identifier: MIT
//
// What happens along an edge: another edge meets it at a vertex or between two vertices, in a point
// or along a stretch. Every side is decided by exact orientations.
#ifndef JW_RELATION_EDGE_EVENT_H
#define JW_RELATION_EDGE_EVENT_H

#include <vector>

#include "relation/segment_cut.h"
#include "trees/edge_forest.h"

namespace jws::detail {

/// An edge meets another one in a place.
struct EdgeEvent {
    std::uint32_t point;  ///< the vertex, or the first point of the edge
    bool atVertex;        ///< at the vertex; in the middle of the edge otherwise
    bool own;             ///< the other edge is of the same geometry
    bool area;            ///< the other edge is of an area
    bool begins;          ///< the other edge runs along this one from here on
    bool ends;            ///< and up to here
    EdgePlace place;      ///< of the other edge
    /// On which side of this edge the ends of the other one lie: 1 left, −1 right, 0 on its line.
    std::int8_t sideOfStart;
    std::int8_t sideOfEnd;
    /// The other edge; in the middle of this one also where.
    SegmentCut cut;
};

using EdgeEvents = std::vector<EdgeEvent>;

/// An edge of a forest and where the events along it go.
struct EventEdge {
    const EdgeForest& forest;
    std::uint32_t edge;
    std::uint32_t chain;
    EdgeEvents* events;  ///< null: not wanted
};

/// Tells whether two edges have a point in common and notes it for both. An event at the end of an
/// edge is left to the edge that starts there, if there is one.
bool meetEdges(const EventEdge& e, const EventEdge& f, bool own);

/// The same without a note.
bool edgesMeet(const JWRawPoint* e, const JWRawPoint* f);

}  // namespace jws::detail

#endif  // JW_RELATION_EDGE_EVENT_H
