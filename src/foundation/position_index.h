// SPDX-License-Identifier: MIT
//
// The spatial index as the library itself uses it: rectangles with positions, and an exception
// where the public one answers false or nothing. An index that lost a rectangle for want of memory
// would make the operation above it give a wrong answer in silence.
#ifndef JW_FOUNDATION_POSITION_INDEX_H
#define JW_FOUNDATION_POSITION_INDEX_H

#include <cstdint>
#include <new>
#include <vector>

#include "jw_spatialindex.h"

namespace jws::detail {

/// What a search found, in the order of adding; `positionOf` reads one.
using Hits = std::vector<void*>;

/// No payload is null: it holds the position + 1.
inline void* payloadOf(std::int64_t position) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(position + 1));
}
inline std::int64_t positionOf(const void* payload) {
    return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(payload)) - 1;
}

/// Any number of threads may search at once, none while one adds. All but `positionOf` throw
/// std::bad_alloc.
class PositionIndex {
  public:
    /// Makes it ready; before that it cannot be added to, and nothing is found.
    void start() {
        if (!m_index.initRTreeIndex()) throw std::bad_alloc();
    }
    /// Invalid rectangles are passed over: nothing meets them.
    void add(std::int64_t position, const JWEnvelop& envelop) {
        if (envelop.isValid() && !m_index.addRect(envelop, payloadOf(position))) {
            throw std::bad_alloc();
        }
    }
    void search(const JWEnvelop& envelop, Hits& hits) const {
        if (!m_index.spatialSearch(envelop, hits)) throw std::bad_alloc();
    }

  private:
    JWSpatialIndex m_index;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_POSITION_INDEX_H
