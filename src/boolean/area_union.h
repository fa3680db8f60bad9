// SPDX-License-Identifier: MIT
//
// Clips of areas that are met many times, and the union of many areas.
#ifndef JW_BOOLEAN_AREA_UNION_H
#define JW_BOOLEAN_AREA_UNION_H

#include <vector>

#include "boolean/area_operand.h"
#include "boolean/ring_clip.h"

namespace jws::detail {

/// Returns what two areas have in common. A large area costs what of it lies in the rectangle that
/// the two have in common, once it is prepared. No contours when the envelopes do not overlap.
/// Throws ClipFailure and std::bad_alloc.
ClippedContours intersectAreas(const Area& a, const Area& b);

/// Tells whether an outer ring of a clip result reaches the tolerance.
bool reaches(const ClippedContours& contours, double tolerance);

/// A rectangle that leaves nothing out.
JWEnvelop everywhere();

/// The union of areas that come one after the other, as far as it decides about a rectangle.
///
/// A few hundred areas at a time are united by the sum of their boundaries, in which borders that
/// two of them share cancel before anything is clipped; these unions are united in pairs, and so
/// on: each area takes part in a number of unions that grows with the logarithm of their count, and
/// memory holds some areas and the outlines so far, not all areas. Functions throw ClipFailure and
/// std::bad_alloc.
class AreaUnion {
  public:
    /// `check`: whether every union is compared with what goes into it, see `mismatch`.
    explicit AreaUnion(const JWEnvelop& window, bool check = false)
        : m_window(window), m_check(check) {}
    /// Adds an area; one whose envelope does not overlap the window is passed over. What it borrows
    /// must live as long as the union unless the area owns it.
    void add(const Area& area);
    /// No area was added so far, but for those passed over.
    bool isEmpty() const { return m_batch.empty() && m_united.empty(); }
    /// The rings of the union, to be read by the even-odd rule; good until the next `add`.
    const RingViews& rings();
    /// The same as contours, simple and with hole flags.
    ClippedContours contours();
    /// What the areas of the unions so far miss those of their parts by, once what parts have in
    /// common is taken off; 0 if there was no check.
    double mismatch() const { return m_mismatch; }

  private:
    struct United {
        ClippedContours contours;
        int rank;  ///< unions of two unions below it
    };
    void flush();
    ClippedContours uniteBatch();
    void mergeLast();

    JWEnvelop m_window;
    bool m_check;
    double m_mismatch = 0;
    std::vector<Area> m_batch;
    std::vector<United> m_united;  ///< ranks fall from the first to the last but one
    RingSet m_shortened;
    RingViews m_rings;
};

/// Returns A minus a union; the rings of A when the union is empty.
ClippedContours eraseUnion(const Area& a, AreaUnion& cutters);

}  // namespace jws::detail

#endif  // JW_BOOLEAN_AREA_UNION_H
