// SPDX-License-Identifier: MIT
//
// JWGeometryOverlay: overlay of two polygon geometries.
#ifndef JW_GEOMETRYOVERLAY_H
#define JW_GEOMETRYOVERLAY_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

class JWFeature;
class JWFeatureClass;
class JWGeometryOverlay2;

/// Intersection, difference, union, identity, symmetrical difference and update of two areas.
/// `JWGeometryOverlay2` has the same functions, and the overlay of whole layers besides.
///
/// Conventions:
/// - Operands are `JWPolygon` or `JWMultiPolygon`; other geometries count as having no area. They
///   are read by the even-odd rule over all their rings and never changed.
/// - `tolerance` is an area in square layer units: a result ring, outer ring or hole, whose area is
///   below it is dropped. 0, a negative number and NaN keep everything. Copies made because
///   envelopes do not overlap are not looked at.
/// - Results are new objects and belong to the caller: a `JWPolygon` for one outer ring, which
///   takes every hole of the result, otherwise a `JWMultiPolygon`, in which each hole goes to the
///   first polygon that contains it and a hole that none contains is dropped. Their envelopes are
///   up to date. A vertex of an operand keeps its bits.
/// - Stored envelopes are trusted where they are valid; otherwise a fresh one is computed.
/// - Lists of results and of their codes are appended to.
/// - A coordinate that is not finite gives an empty result, and `JWReport::lastError` says so.
///   Nothing throws: when memory runs out the answer is the failure value and the last error is
///   set.
/// - No state: every function may run on any number of threads at once.
///
/// Cost: O((n + k) log n) as a rule for n vertices and k crossings. An intersection reads, but does
/// not clip, what lies outside the other operand's rectangle.
class JW_API JWGeometryOverlay {
  public:
    /// @name Overlay of two geometries
    /// @{

    /// Returns what A and B have in common.
    /// \return a new geometry; null for a null operand, when the envelopes do not overlap (touching
    ///     ones do not), and when no piece reaches the tolerance
    static JWGeometry* polygonIntersectPolygon(const JWGeometry* a, const JWGeometry* b,
                                               double tolerance);

    /// Returns A minus B.
    /// \return a new geometry, a copy of A when the envelopes do not overlap; null for a null
    ///     operand and when nothing of A is left
    static JWGeometry* polygonErasePolygon(const JWGeometry* a, const JWGeometry* b,
                                           double tolerance);

    /// Returns A and B as one geometry. Commutative.
    /// \return a new geometry, a copy of the other when one operand is null; null when both are, or
    ///     when nothing is left
    static JWGeometry* polygonUnionPolygonToOne(const JWGeometry* a, const JWGeometry* b,
                                                double tolerance);

    /// Appends A minus B (code 0), then B minus A (code 1), each at most one geometry; copies of
    /// both when the envelopes do not overlap.
    /// \return the number of geometries appended; 0 for a null operand
    static int polygonSymmetricalDifferencePolygon(const JWGeometry* a, const JWGeometry* b,
                                                   std::vector<JWGeometry*>& outGeometries,
                                                   std::vector<int>& outCodes, double tolerance);

    /// Appends the part of A that lies in B (code 1), then the rest of A (code 0). Where they have
    /// nothing in common that reaches the tolerance, a copy of A (code 0). Rings of the common part
    /// that are dropped are missing from the rest as well.
    /// \return the number of geometries appended; 0 for a null operand
    static int polygonIdentityPolygon(const JWGeometry* a, const JWGeometry* b,
                                      std::vector<JWGeometry*>& outGeometries,
                                      std::vector<int>& outCodes, double tolerance);

    /// Puts B in the place of what A has there.
    ///
    /// Appends A minus B (code 0) and a copy of B (code 1). Without borders, where the two have
    /// something in common that reaches the tolerance, it appends their union (code 2) instead.
    /// \return the number of geometries appended; 0 for a null operand
    static int polygonUpdatePolygon(const JWGeometry* a, const JWGeometry* b,
                                    std::vector<JWGeometry*>& outGeometries,
                                    std::vector<int>& outCodes, bool keepBorders, double tolerance);

    /// Unites a list: neighbours pairwise, then the results, until one is left. Null members are
    /// skipped; a single geometry is copied as it is.
    /// \return a new geometry; null when the list is empty or nothing is left
    static JWGeometry* unionPolygonsToOne(std::vector<JWGeometry*> geometries, double tolerance);
    /// Unites the geometries of features; null features and features without one are skipped.
    static JWGeometry* unionPolygonsToOne(std::vector<JWFeature*> features, double tolerance);
    /// Unites the geometries of a feature class.
    /// \return a new feature that holds the union and has no fields, owned by the caller; null for
    ///     a null class and when nothing is left
    static JWFeature* unionPolygonsToOne(JWFeatureClass* features, double tolerance);
    /// @}

  private:
    friend class JWGeometryOverlay2;
    static bool feature_attributes_clone(JWFeature* source, JWFeature& target);
};

}  // namespace jws

#endif  // JW_GEOMETRYOVERLAY_H
