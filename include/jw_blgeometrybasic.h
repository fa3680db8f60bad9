// SPDX-License-Identifier: MIT
//
// JWBLGeometryBasic: set operations on rings, polygons and multipolygons. Every area operation of
// the library ends here.
#ifndef JW_BLGEOMETRYBASIC_H
#define JW_BLGEOMETRYBASIC_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

/// The set operation. Any value not named here clips as a union.
enum enumJWBooleanType : int {
    JWBooleanDifference = 1,    ///< A minus B
    JWBooleanIntersection = 2,  ///< what A and B have in common
    JWBooleanXor = 3,           ///< what just one of A and B has
    JWBooleanUnion = 4,         ///< what A or B has
};

struct gpc_polygon;  // the clipping engine's polygon, complete inside the library only

/// Static polygon clipping. The class holds no state; every function may run on any number of
/// threads at once.
///
/// Conventions:
/// - Each operand is an area by the even-odd rule over all its rings: neither order, direction,
///   nesting nor self-crossing matters, nor do the operands' ring flags. A point counts as inside
///   when it lies in an odd number of rings.
/// - A ring contributes its stored points but the last, which is taken for the closing one whether
///   it is or not: a ring that is not closed loses a corner.
/// - Ring flags are 0 for an outer ring, 1 for a hole.
/// - Result rings are simple, touch one another at points only, repeat their first point at the end
///   and have up-to-date envelopes. A ring comes before every ring around it. A vertex of an
///   operand keeps its bits. This holds for the library's own clipping engine; a foreign one
///   promises neither the order of rings nor where they start.
/// - What is smaller than about two units in the last place of the operands' largest coordinate may
///   vanish from a result without a word: a square of side 1 beside coordinates of 1e200.
/// - A coordinate that is not finite gives an empty result, and `JWReport::lastError` says so.
/// - Nothing throws: when memory runs out the answer is the failure value and the last error is
///   set.
///
/// Cost: O((n + k) log n) as a rule for n vertices and k crossings. An intersection or difference
/// reads, but does not clip, what lies outside the other operand's rectangle.
class JW_API JWBLGeometryBasic {
  public:
    JWBLGeometryBasic();
    virtual ~JWBLGeometryBasic();

    /// Clips the first `countA` rings of `ringsA` with the first `countB` of `ringsB`.
    /// \param flagsA,flagsB  one flag per ring; missing ones count as 0
    /// \param outRings,outFlags  new rings, owned by the caller, and their flags are appended; on a
    ///     failure both stay as they were
    /// \return the number of rings appended; 0 for an empty result, a null ring, or a count beyond
    ///     the list. A negative count is taken for 0. No ring at all is the empty area: A minus
    ///     nothing is A.
    static int twoSurfaceObjectsBoolean(std::vector<JWRing*>& ringsA, std::vector<int>& flagsA,
                                        int countA, std::vector<JWRing*>& ringsB,
                                        std::vector<int>& flagsB, int countB,
                                        enumJWBooleanType type, std::vector<JWRing*>& outRings,
                                        std::vector<int>& outFlags);

    /// Clips two areas, each a ring, a polygon or a multipolygon.
    /// \param outFlags  with `toMultiPolygon` false: cleared, then one flag per ring of the result;
    ///     otherwise left alone
    /// \param checkEnvelope  null at once when a stored envelope is invalid or the two are apart,
    ///     whatever the operation, so that a union of distant areas is null too
    /// \param toMultiPolygon  false: the result is one `JWPolygon` that holds every ring, several
    ///     outer ones perhaps, as `outFlags` tells. true: it is a `JWMultiPolygon` of one polygon
    ///     per outer ring, outer rings clockwise and holes counter-clockwise; a hole goes to the
    ///     first ring that it lies within
    /// \return a new geometry, owned by the caller; null for an empty result, and for an operand
    ///     that is null, empty or of another kind
    static JWGeometry* twoSurfaceObjectsBoolean(const JWGeometry* a, const JWGeometry* b,
                                                enumJWBooleanType type, std::vector<int>& outFlags,
                                                bool checkEnvelope, bool toMultiPolygon);

    /// Clips two rings and replaces the content of `out` by the result, as with `toMultiPolygon`.
    ///
    /// Rings whose envelopes are strictly apart are not clipped: `out` receives copies of A
    /// (difference), nothing (intersection), or A and B (exclusive-or, union); any other `type`
    /// returns 0 with `out` cleared.
    ///
    /// B is read with A's number of points: where B has more, the surplus is cut off, where it has
    /// fewer, its last corner is repeated. Let A be the ring with more points.
    /// \return 1, also for an empty result; 0 for a null argument or when both rings have fewer
    ///     than 4 points
    static int twoRingBoolean(const JWRing* a, const JWRing* b, enumJWBooleanType type,
                              JWMultiPolygon* out);

    /// Clips two multipolygons and replaces the content of `out`, which may be one of them.
    /// \return 1, also for an empty result; 0 for a null argument or when neither has a ring
    static int twoMultiPolygonBoolean(const JWMultiPolygon* a, const JWMultiPolygon* b,
                                      enumJWBooleanType type, JWMultiPolygon* out);

  private:
    static gpc_polygon* __malloc_gpcpolygon(int contourCount, int* vertexCounts);
    static void __free_gpcpolyon(gpc_polygon* polygon);
    static gpc_polygon* ringOperand(const JWRing& ring, int vertexCount);
};

}  // namespace jws

#endif  // JW_BLGEOMETRYBASIC_H
