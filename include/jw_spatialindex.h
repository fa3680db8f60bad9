// SPDX-License-Identifier: MIT
//
// JWSpatialIndex: an R-tree over rectangles, each with one untyped payload.
#ifndef JW_SPATIALINDEX_H
#define JW_SPATIALINDEX_H

#include <memory>
#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

/// R-tree over rectangles with one payload each.
///
/// Rectangles are collected first; the tree is packed in one go by the first search after an insert
/// (sort-tile-recursive, O(n log n)). Searches may run at the same time on several threads, the
/// first one included; inserting while another thread searches is not allowed.
///
/// Convention of the library: feature i of a list is stored with payload i + 1, carried in the
/// pointer, so that no payload is null.
class JW_API JWSpatialIndex {
  public:
    JWSpatialIndex();
    ~JWSpatialIndex();
    JWSpatialIndex(const JWSpatialIndex&) = delete;
    JWSpatialIndex& operator=(const JWSpatialIndex&) = delete;

    /// Makes the index ready and empty. Returns false when memory is short.
    bool initRTreeIndex();
    /// Adds a rectangle. Returns false for an invalid envelope (NaN, or minimum above maximum) or
    /// an index that was not initialised.
    bool addRect(const JWEnvelop& envelop, void* payload);
    /// Finds the payloads whose rectangles meet `query`, borders included, in the order in which
    /// they were added. Returns their count and stores a new array of them that the caller releases
    /// with
    /// `::operator delete`; no hit stores null. An invalid query finds nothing.
    int spatialSearch(const JWEnvelop& query, void*** result) const;
    /// The same into a vector that is cleared first: no allocation once it has grown. Returns
    /// false, with an empty vector, when memory is short.
    bool spatialSearch(const JWEnvelop& query, std::vector<void*>& result) const;
    /// Number of rectangles.
    int getCount() const;
    /// Empties the index; `initRTreeIndex` makes it usable again.
    void deleteRTreeIndex();

  private:
    struct Tree;
    std::unique_ptr<Tree> m_tree;
};

}  // namespace jws

#endif  // JW_SPATIALINDEX_H
