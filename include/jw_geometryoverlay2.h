// SPDX-License-Identifier: MIT
//
// JWGeometryOverlay2: overlay of two polygon geometries, and of whole polygon layers.
#ifndef JW_GEOMETRYOVERLAY2_H
#define JW_GEOMETRYOVERLAY2_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"
#include "jw_overlayoptions.h"
#include "jw_report.h"

namespace jws {

class JWFeature;
class JWFeatureClass;
class JWFeatureLayer;

/// Intersection, difference, union, identity, symmetrical difference and update of two areas.
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
class JW_API JWGeometryOverlay2 {
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

    /// Does what `polygonSymmetricalDifferencePolygon` does with a single clip. Besides the
    /// geometries with code 0 (of A only) and 1 (of B only) there may be a third with code 2: where
    /// a part of A and one of B meet along an edge they form one polygon.
    /// \return the number of geometries appended; 0 for a null operand
    static int polygonSymmetricalDifferencePolygon_new(const JWGeometry* a, const JWGeometry* b,
                                                       std::vector<JWGeometry*>& outGeometries,
                                                       std::vector<int>& outCodes,
                                                       double tolerance);
    /// @}

    /// @name Overlay of two layers
    ///
    /// Layer A is overlaid with layer B; the result features go to `output`, which must be open for
    /// writing and have no fields yet. Layers are borrowed and stay open.
    ///
    /// Return values: the number of features written (2,147,483,647 for more), or −1 a layer is
    /// missing, the output cannot be written, a layer cannot be read to its end, or the run was
    /// stopped (`JWReport::lastError` says which); −2 the spatial references of A and B differ; −3
    /// the output has fields already.
    ///
    /// - Operands may have overlaps of their own, rings that cross themselves, and several parts;
    ///   each feature is read by the even-odd rule. Features without a geometry are passed over;
    ///   those that are no areas or have coordinates that are not finite are passed over. They are
    ///   listed in the report, like pairs that could not be clipped and results that the output
    ///   refused; the last error tells the first of them, kind `JWErrorFeatureRejected`.
    /// - `blockSize` features of A are held at a time; 0 or less means all. B is read once; of its
    ///   features the layer's cache (`JWFeatureLayer::setCacheLimit`) keeps what fits.
    /// - Results come in the order of A, for each feature of A in the order of B, the same bit for
    ///   bit for any block size and any number of threads. They are written in one transaction:
    ///   after a failure the output has its fields, but no features (as far as its format can take
    ///   features back, see `JWFeatureLayer::rollbackTransaction`).
    /// - `_mp` forms run on a team of eight threads; they may be called from one thread at a time
    ///   for any one layer. OpenMP settings of the caller are put back.
    /// @{

    /// Writes what each feature of A has in common with each feature of B.
    ///
    /// \param attributeMode 0: the fields of A, then of B. 1: the identifiers, in two integer
    ///     fields "FID_" and layer name (64 bits wide where an identifier needs it). 2: both
    ///     identifiers, then the fields of A and B. Others act as 0. Names that are taken get "_1",
    ///     "_2", … behind them.
    /// \param tolerance smallest absolute ring area kept, square layer units
    /// \return see above
    ///
    /// Cost: one pass over A and B, O(log n) per feature for candidates, and one clip per pair of
    /// features whose envelopes meet.
    static int intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      int attributeMode, double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int intersectPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                         JWFeatureLayer* output, int attributeMode,
                                         double tolerance, int blockSize);
    /// Does the same with all settings open, and accounts for every feature in `report` (may be
    /// null).
    static int intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      const JWOverlayOptions& options, JWLayerReport* report);

    /// Does the same in memory. `nameA` and `nameB` stand for the layers' names in the identifier
    /// fields; the first feature of a class gives its schema.
    /// \return a new class with A's reference, owned by the caller; null for a null class or when
    ///     the references differ
    static JWFeatureClass* polygonsIntersectPolygons(const char* nameA, JWFeatureClass* a,
                                                     const char* nameB, JWFeatureClass* b,
                                                     int attributeMode, double tolerance);

    // Compatibility names
    /// Same as `intersectPolygonLayers_mp`.
    static int intersectPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                          JWFeatureLayer* output, int attributeMode,
                                          double tolerance, int blockSize);
    /// Same as `intersectPolygonLayers_mp`.
    static int intersectPolygonLayers_old_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                             JWFeatureLayer* output, int attributeMode,
                                             double tolerance, int blockSize);
    /// @}

  private:
    /// Reads the features at positions `firstFid` to `lastFid`, counted from 1, into `out`; for an
    /// empty range those that satisfy `where`. Returns their count, −1 when reading failed.
    static int getFeaturesByFIDorWHERE(JWFeatureLayer* layer, const char* where, int firstFid,
                                       int lastFid, JWFeatureClass& out);
    static bool feature_attributes_clone(JWFeature* source, JWFeature& target);
    static int getExteriorRingCount(const JWGeometry* geometry);
    static int getGeometryPointCount(const JWGeometry* geometry);
};

}  // namespace jws

#endif  // JW_GEOMETRYOVERLAY2_H
