// SPDX-License-Identifier: MIT
//
// What can be wrong with a segment that takes the place of a stretch of a line: it meets others
// where it should not, or something comes to lie on its other side. Decided with exact
// orientations.
#ifndef JW_ANALYSIS_SHORTCUT_CHECKS_H
#define JW_ANALYSIS_SHORTCUT_CHECKS_H

#include <optional>
#include <vector>

#include "foundation/edge_tree.h"
#include "jw_envelop.h"

namespace jws::detail {

/// The rectangle around some points, one at least.
JWEnvelop boxOf(const JWRawPoint* begin, const JWRawPoint* end);

/// The rectangles have a point in common, borders included.
inline bool meet(const JWEnvelop& a, const JWEnvelop& b) { return !a.isDisjoin(b); }

/// Segments a and b have more in common than an end point of both.
bool conflict(const JWRawPoint& a0, const JWRawPoint& a1, const JWRawPoint& b0,
              const JWRawPoint& b1);

/// What a shortcut cuts off: the ring of the points that it skips.
class CutOff {
  public:
    CutOff(const JWRawPoint* first, const JWRawPoint* last);

    /// Strictly inside by the even-odd rule.
    bool contains(const JWRawPoint& p) const;

  private:
    int edgeCount() const { return static_cast<int>(m_ring.size()) - 1; }

    std::vector<JWRawPoint> m_ring;
    std::optional<EdgeTree> m_tree;  ///< of long rings
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_SHORTCUT_CHECKS_H
