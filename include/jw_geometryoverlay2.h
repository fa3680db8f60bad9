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
/// - What is smaller than about two units in the last place of the operands' largest coordinate may
///   vanish from a result without a word: a square of side 1 beside coordinates of 1e200.
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

    /// Unites the geometries of features, all at once, and appends the polygons of the union, each
    /// a geometry of its own: parts that touch in points only are different polygons. Null features
    /// and those without a finite area are skipped; the tolerance applies to the whole union.
    /// \return the number of polygons appended
    static int unionPolygons(std::vector<JWFeature*> features, std::vector<JWGeometry*>& geometries,
                             double tolerance);

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
    /// missing, the output cannot be written or is one of the operands, a layer cannot be read to
    /// its end, or the run was stopped (`JWReport::lastError` says which); −2 the spatial
    /// references of A and B differ; −3 the output has fields already.
    ///
    /// - Operands may have overlaps of their own, rings that cross themselves, and several parts;
    ///   each feature is read by the even-odd rule. What features of one layer have in common
    ///   counts for each of them. Features without a geometry are passed over; those that are no
    ///   areas or have coordinates that are not finite are passed over. They are listed in the
    ///   report, like pairs that could not be clipped and results that the output refused; the last
    ///   error tells the first of them, kind `JWErrorFeatureRejected`.
    /// - `attributeMode` 0: the fields of A, then of B. 1: the identifiers, in two integer fields
    ///   "FID_" and layer name (64 bits wide where an identifier needs it). 2: both identifiers,
    ///   then the fields of A and B. Others act as 0. Names that are taken get "_1", "_2", … behind
    ///   them.
    /// - `tolerance` is the smallest absolute ring area kept, square layer units.
    /// - `multipart`: a result of several parts stays one feature; otherwise each part is one.
    /// - `blockSize` features of an operand are held at a time, all for 0 and less. Of those around
    ///   them the layer's cache (`JWFeatureLayer::setCacheLimit`) keeps what fits.
    /// - Results come in the order of A, for each feature of A in the order of B, and where B has
    ///   results of its own these follow in the order of B: the same bit for bit for any block size
    ///   and any number of threads. They are written in one transaction: after a failure the output
    ///   has its fields, but no features (as far as its format can take features back, see
    ///   `JWFeatureLayer::rollbackTransaction`).
    /// - What lies outside of other features is computed from their union at once.
    /// - Console texts come in the order of the operand that is walked over. For each block
    ///   "block %d->" and its filter; for each feature "NO.:%d in %d\n" (its place in the block,
    ///   from 1), "i=%d search count:%d\n" (its position in the layer, from 0, and its candidates)
    ///   and "%d->%d in %d\n" (its position, its results, the block's features); then what the
    ///   block wrote. Union of this kind and update tell in the end how many features came out as
    ///   they were. `JWReport::setMessagesOn` spares making texts.
    /// - `_mp` forms run on a team of eight threads, of which no more work at a time than there are
    ///   cores (two at least); they may be called from one thread at a time for any one layer.
    ///   OpenMP settings of the caller are put back.
    /// - Forms that take options have all settings open, and account for every feature and area in
    ///   `report` (may be null). Each operation obeys an identity of areas, which they check if
    ///   asked to (`JWOverlayOptions::checkAreas`).
    /// @{

    /// Writes what each feature of A has in common with each feature of B, with the attributes of
    /// both.
    ///
    /// Identity: a feature of A is covered by its pieces, or each piece and the rest of the smaller
    /// of its two features make up that feature. Cost: one pass over A and B, O(log n) per feature
    /// for candidates, and one clip per pair of features whose envelopes meet.
    static int intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      int attributeMode, double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int intersectPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                         JWFeatureLayer* output, int attributeMode,
                                         double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int intersectPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes what of each feature of A lies outside of all of B, with the attributes of A. A
    /// feature that no feature of B comes near is copied unchanged.
    ///
    /// Identity: |A| = |A outside B| + |A in B|. Cost: as of `intersectPolygonLayers`, and the
    /// union of each feature's candidates.
    static int erasePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                 bool multipart, double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int erasePolygonLayer_mp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                    bool multipart, double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int erasePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                 const JWOverlayOptions& options, JWLayerReport* report);

    /// Grows features that overlap together, whichever layer they are of. A region starts from the
    /// first feature that is in none yet, A before B, and takes in features as long as there is one
    /// whose common part with the region reaches the tolerance, and whose union with it has fewer
    /// outer rings than both; touching is not enough. Every feature of A and B is in exactly one
    /// result; one that overlaps no other is copied unchanged. Results come in the order of their
    /// first feature, and carry the attributes of their first feature of A and of their first
    /// feature of B (mode 0). Rings below the tolerance are dropped from the grown region.
    ///
    /// Identity: a result's area is the sum of its features' areas less what further features cover
    /// again. Cost: one clip per pair whose envelopes meet, O(n log n) for the union of a cluster;
    /// and one clip, on one thread, for each feature that overlaps some of a region's by less than
    /// the tolerance.
    static int unionPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                  bool multipart, double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int unionPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                     bool multipart, double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int unionPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                  const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes the planar union: for each feature of A the pieces that `intersectPolygonLayers`
    /// makes and the rest outside of B, then what of each feature of B lies outside of A. The
    /// attributes of the side that is missing stay unset. What features of A and B have in common
    /// and does not reach the tolerance stays with A.
    ///
    /// Identity: those of `identityPolygonLayers` for A and of `erasePolygonLayer` for B.
    static int unionPolygonLayers2(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                   bool multipart, int attributeMode, double tolerance,
                                   int blockSize);
    /// Does the same on a team of eight threads.
    static int unionPolygonLayers2_mp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      bool multipart, int attributeMode, double tolerance,
                                      int blockSize);
    /// Does the same with all settings open.
    static int unionPolygonLayers2(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                   const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes the pieces of each feature of A in the features of B, with the attributes of both,
    /// then what of it lies outside of all of B, with those of A. What it has in common with a
    /// feature of B and does not reach the tolerance stays with it.
    ///
    /// Identity: |A| = |pieces| + |rest|; where the pieces overlap, |A| = |A in B| + |rest|, and
    /// that of `intersectPolygonLayers` for each piece.
    static int identityPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                     bool multipart, int attributeMode, double tolerance,
                                     int blockSize);
    /// Does the same on a team of eight threads.
    static int identityPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                        JWFeatureLayer* output, bool multipart, int attributeMode,
                                        double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int identityPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                     const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes what of each feature of A lies outside of B, then what of each feature of B lies
    /// outside of A, with the attributes of that side.
    ///
    /// Identity: that of `erasePolygonLayer`, for A and for B.
    static int symmetricalDifferencePolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                                  JWFeatureLayer* output, bool multipart,
                                                  int attributeMode, double tolerance,
                                                  int blockSize);
    /// Does the same on a team of eight threads.
    static int symmetricalDifferencePolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                     JWFeatureLayer* output, bool multipart,
                                                     int attributeMode, double tolerance,
                                                     int blockSize);
    /// Does the same with all settings open.
    static int symmetricalDifferencePolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                                  JWFeatureLayer* output,
                                                  const JWOverlayOptions& options,
                                                  JWLayerReport* report);

    /// Lays B over A, with the attributes of the side that a result comes from (mode 0).
    ///
    /// With borders: what of each feature of A lies outside of B, then the features of B as they
    /// are. Without: a feature of A that overlaps features of B goes, as far as it lies outside of
    /// B, to the first of them in the order of B, which grows by it; features of A that overlap
    /// none stay on their own.
    ///
    /// Identity: that of `erasePolygonLayer` for A; a grown feature of B is itself and the rests
    /// that it took in.
    static int updatePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                  bool keepBorders, double tolerance, int blockSize,
                                  bool multipart);
    /// Does the same on a team of eight threads.
    static int updatePolygonLayer_mp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                     bool keepBorders, double tolerance, int blockSize,
                                     bool multipart);
    /// Does the same with all settings open.
    static int updatePolygonLayer(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                  const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes the features of A, unchanged, with the attributes of features of B that they overlap
    /// (in an area that reaches the tolerance), and how many those are in an integer field
    /// "join_count" behind the others.
    ///
    /// \param keepUnmatched features of A that overlap none are written as well, count 0; so are
    ///     those without a geometry
    /// \param rowPerPair one row for each feature of B that is overlapped, in the order of B;
    ///     otherwise one row for each feature of A, with the attributes of the first
    ///
    /// Identity: none; no geometry changes.
    static int spatialJoinPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                        JWFeatureLayer* output, bool keepUnmatched, bool rowPerPair,
                                        int attributeMode, double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int spatialJoinPolygonLayers_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                           JWFeatureLayer* output, bool keepUnmatched,
                                           bool rowPerPair, int attributeMode, double tolerance,
                                           int blockSize);
    /// Does the same with all settings open.
    static int spatialJoinPolygonLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                        JWFeatureLayer* output, const JWOverlayOptions& options,
                                        JWLayerReport* report);

    /// @}

    /// @name Overlay within one layer
    ///
    /// As for two layers, with one operand: −1 and −3 are the codes. Features are compared with
    /// those in front of and behind them in the layer. Their texts name seeds, with the further
    /// features of a region that grows, or those around a feature that is cut into pieces: whose
    /// rectangles overlap its own.
    /// @{

    /// Grows features of one layer that overlap together, by the rule of `unionPolygonLayers`, with
    /// the attributes of the first feature of each cluster. For each region it prints "Seed:%d->"
    /// (position of its first feature), and for regions of several features
    /// "seedsi:%d->%d in %d\n" (how many), "i=%d union index=%d\n" for each further one, and
    /// "union:%d in %d\n" (their number, and that of the layer).
    static int unionPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                        double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int unionPolygonsInSameLayer_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                           double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int unionPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                        const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes the pieces into which the features of a layer cut one another: for every set of
    /// features what lies in all of them and in no other. No two pieces overlap, and together they
    /// cover what the layer covers. A piece carries the attributes of its first feature and, as
    /// those of B, of its second, if there is one. What features have in common below the tolerance
    /// stays with the first of them. Pieces come in the order of their first feature.
    ///
    /// Identity: the pieces whose first feature is a certain one make up that feature outside of
    /// those before it.
    static int unionPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                         int attributeMode, double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int unionPolygonsInSameLayer2_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                            int attributeMode, double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int unionPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                         const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes for each feature what it has in common with the features behind it, all in one, with
    /// its attributes; nothing for a feature that overlaps none of them.
    ///
    /// Identity: |feature| = |in those behind it| + |outside of them|.
    static int intersectPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                            double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int intersectPolygonsInSameLayer_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                               double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int intersectPolygonsInSameLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                            const JWOverlayOptions& options, JWLayerReport* report);

    /// Writes the pieces of `unionPolygonsInSameLayer2` that lie in two features or more: each
    /// overlap once.
    static int intersectPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                             int attributeMode, double tolerance, int blockSize);
    /// Does the same on a team of eight threads.
    static int intersectPolygonsInSameLayer2_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                int attributeMode, double tolerance, int blockSize);
    /// Does the same with all settings open.
    static int intersectPolygonsInSameLayer2(JWFeatureLayer* input, JWFeatureLayer* output,
                                             const JWOverlayOptions& options,
                                             JWLayerReport* report);

    /// @}

    /// @name Overlay of feature classes
    ///
    /// The same in memory. Names stand for those of the layers in the identifier fields; the first
    /// feature of a class gives its schema. Results are new classes with A's reference, owned by
    /// the caller; null for a null class and when the references differ.
    /// @{

    /// Does what `intersectPolygonLayers` does.
    static JWFeatureClass* polygonsIntersectPolygons(const char* nameA, JWFeatureClass* a,
                                                     const char* nameB, JWFeatureClass* b,
                                                     int attributeMode, double tolerance);
    /// Does what `erasePolygonLayer` does.
    static JWFeatureClass* polygonsErasePolygons(JWFeatureClass* a, JWFeatureClass* b,
                                                 bool multipart, double tolerance);
    /// Does the same on a team of eight threads.
    static JWFeatureClass* polygonsErasePolygons_mp(JWFeatureClass* a, JWFeatureClass* b,
                                                    bool multipart, double tolerance);
    /// Does what `identityPolygonLayers` does.
    static JWFeatureClass* polygonsIdentityPolygons(const char* nameA, JWFeatureClass* a,
                                                    const char* nameB, JWFeatureClass* b,
                                                    bool multipart, int attributeMode,
                                                    double tolerance);
    /// Does what `unionPolygonsInSameLayer2` does.
    static JWFeatureClass* unionPolygons(const char* name, JWFeatureClass* features,
                                         int attributeMode, double tolerance);
    /// Does what `symmetricalDifferencePolygonLayers` does. `result` is emptied first, whatever the
    /// answer, unless it is one of the operands, which is refused (−1).
    /// \return the number of features written; −1 for a null class, −2 when the references differ
    static int symmetricalDifferencePolygons(JWFeatureClass* a, JWFeatureClass* b,
                                             JWFeatureClass& result, bool multipart,
                                             double tolerance);
    /// @}

    /// @name Compatibility names
    /// Names with "mp" are the same as the `_mp` form of the operation, the others the same as its
    /// plain form.
    /// @{
    static int intersectPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                          JWFeatureLayer* output, int attributeMode,
                                          double tolerance, int blockSize);
    static int intersectPolygonLayers_old_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                             JWFeatureLayer* output, int attributeMode,
                                             double tolerance, int blockSize);
    static int erasePolygonLayer_lmp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                     bool multipart, double tolerance, int blockSize);
    static int erasePolygonLayer_mp_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                        JWFeatureLayer* output, bool multipart, double tolerance,
                                        int blockSize);
    static int unionPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      bool multipart, double tolerance, int blockSize);
    static int unionPolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      bool multipart, double tolerance, int blockSize);
    static int unionPolygonLayers_old_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                          JWFeatureLayer* output, bool multipart, double tolerance,
                                          int blockSize);
    static int unionPolygonLayers_new(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      bool multipart, double tolerance, int blockSize);
    static int unionPolygonLayers2_lmp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                       bool multipart, int attributeMode, double tolerance,
                                       int blockSize);
    static int unionPolygonLayers2_old(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                       bool multipart, int attributeMode, double tolerance,
                                       int blockSize);
    static int identityPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                         JWFeatureLayer* output, bool multipart, int attributeMode,
                                         double tolerance, int blockSize);
    static int identityPolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                         JWFeatureLayer* output, bool multipart, int attributeMode,
                                         double tolerance, int blockSize);
    static int symmetricalDifferencePolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                      JWFeatureLayer* output, bool multipart,
                                                      int attributeMode, double tolerance,
                                                      int blockSize);
    static int symmetricalDifferencePolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                                      JWFeatureLayer* output, bool multipart,
                                                      int attributeMode, double tolerance,
                                                      int blockSize);
    static int symmetricalDifferencePolygonLayers_new(JWFeatureLayer* a, JWFeatureLayer* b,
                                                      JWFeatureLayer* output, bool multipart,
                                                      int attributeMode, double tolerance,
                                                      int blockSize);
    static int updatePolygonLayer_lmp(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      bool keepBorders, double tolerance, int blockSize,
                                      bool multipart);
    static int updatePolygonLayer_old(JWFeatureLayer* a, JWFeatureLayer* b, JWFeatureLayer* output,
                                      bool keepBorders, double tolerance, int blockSize,
                                      bool multipart);
    static int spatialJoinPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                            JWFeatureLayer* output, bool keepUnmatched,
                                            bool rowPerPair, int attributeMode, double tolerance,
                                            int blockSize);
    static int spatialJoinPolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                            JWFeatureLayer* output, bool keepUnmatched,
                                            bool rowPerPair, int attributeMode, double tolerance,
                                            int blockSize);
    static int unionPolygonsInSameLayer_lmp(JWFeatureLayer* input, JWFeatureLayer* output,
                                            double tolerance, int blockSize);
    static int unionPolygonsInSameLayer_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                            double tolerance, int blockSize);
    static int unionPolygonsInSameLayer_old_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                               double tolerance, int blockSize);
    static int unionPolygonsInSameLayer_new(JWFeatureLayer* input, JWFeatureLayer* output,
                                            double tolerance, int blockSize);
    static int unionPolygonsInSameLayer2_lmp(JWFeatureLayer* input, JWFeatureLayer* output,
                                             int attributeMode, double tolerance, int blockSize);
    static int unionPolygonsInSameLayer2_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                             int attributeMode, double tolerance, int blockSize);
    static int unionPolygonsInSameLayer2_old_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                int attributeMode, double tolerance, int blockSize);
    static int unionPolygonsInSameLayer2_new(JWFeatureLayer* input, JWFeatureLayer* output,
                                             int attributeMode, double tolerance, int blockSize);
    static int intersectPolygonsInSameLayer_lmp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                double tolerance, int blockSize);
    static int intersectPolygonsInSameLayer_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                                double tolerance, int blockSize);
    static int intersectPolygonsInSameLayer_old_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                   double tolerance, int blockSize);
    static int intersectPolygonsInSameLayer_new(JWFeatureLayer* input, JWFeatureLayer* output,
                                                double tolerance, int blockSize);
    static int intersectPolygonsInSameLayer2_lmp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                 int attributeMode, double tolerance,
                                                 int blockSize);
    static int intersectPolygonsInSameLayer2_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                                 int attributeMode, double tolerance,
                                                 int blockSize);
    static int intersectPolygonsInSameLayer2_old_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                    int attributeMode, double tolerance,
                                                    int blockSize);
    static int intersectPolygonsInSameLayer2_new(JWFeatureLayer* input, JWFeatureLayer* output,
                                                 int attributeMode, double tolerance,
                                                 int blockSize);
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
