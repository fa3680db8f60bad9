// SPDX-License-Identifier: MIT
//
// Whether the clipping engine is right about one pair of operands: everything that can be known of
// its four answers without trusting it. The suite, the campaign and the fuzz target ask here.
#ifndef JW_TESTS_SUPPORT_CLIP_CHECK_H
#define JW_TESTS_SUPPORT_CLIP_CHECK_H

#include <string>

#include "support/gpc_call.h"
#include "support/random_rings.h"

namespace jwtest {

/// What is wrong, and with which operation. Empty: nothing.
struct Miss {
    std::string operation;
    std::string what;

    explicit operator bool() const { return !what.empty(); }
};

/// The most vertices for which areas by slabs are quick enough.
constexpr std::size_t kSlabVertices = 160;

struct CheckOptions {
    bool geos = true;  ///< also compares with GEOS; its validity test runs always
};

/// What the checks share: a pair, its four results, and how exact areas can be.
struct ClipCase {
    explicit ClipCase(const RingPair& operands);

    const RingPair& pair;
    ClipResult cleanA, cleanB;  ///< each operand united with nothing
    ClipResult of[4];
    double areaA = 0, areaB = 0;
    double reach = 0;          ///< largest absolute coordinate
    double step = 0;           ///< distance of doubles at `reach`: about the grid's
    double length = 0;         ///< of all edges
    std::size_t vertices = 0;  ///< of both operands
    /// Crossings are rounded, which moves edges by about a grid step: areas are known to within
    /// that step times the length of the edges, and 1e-12 of the operands' area.
    double tolerance = 0;

    bool sameArea(double a, double b) const;
    /// The area between `other` and the result of `op`; 0 if they are the same set bit for bit.
    /// Of large ones it is the difference of their areas only.
    double apart(int op, const ClipResult& other) const;
    /// A miss if `other`, which came of some change to the operands, is not the same set as the
    /// result of `op`, vertices included.
    Miss compare(int op, const ClipResult& other, const char* change) const;
};

/// Clips a pair in every way and returns the first thing that is wrong. In turn:
/// - the promises about contours (`contourFault`), and those about where their vertices come from;
/// - the identities between the four areas, and the areas by slabs where operands are small;
/// - points of the plane lie in the results as they lie in the operands;
/// - rings in another order, with other starts and directions, and swapped operands, give the same
///   set; scaling by powers of two gives the scaled result, turning by 90 degrees the turned one;
/// - prepared operands give the same bits, the union of any number at once the same set;
/// - results clip cleanly once more: they are their own unions, and A minus (A and B) is A minus B;
/// - grouped into polygons by the callers' rules nothing is lost and GEOS finds them valid;
/// - GEOS agrees in areas and in a symmetric difference, where it gives a consistent answer (large
///   pairs, and one small pair in four).
/// `random` picks points and orders.
Miss checkPair(const RingPair& pair, RandomRings& random, const CheckOptions& options = {});

/// The parts of `checkPair` that have a source of their own.
Miss checkAgainstOperands(const ClipCase& c, RandomRings& random);
Miss checkInvariance(const ClipCase& c, RandomRings& random);
Miss checkEntries(const ClipCase& c, RandomRings& random);
Miss checkGrouping(const ClipCase& c);
Miss checkAgainstGeos(const ClipCase& c, RandomRings& random);

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_CLIP_CHECK_H
