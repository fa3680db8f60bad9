// SPDX-License-Identifier: MIT
//
// JWGeometrySimplicify: fewer vertices for lines and polygons of the same shape.
#ifndef JW_GEOMETRYSIMPLICIFY_H
#define JW_GEOMETRYSIMPLICIFY_H

#include "jw_export.h"
#include "jw_feature.h"
#include "jw_geometry.h"
#include "jw_report.h"

namespace jws {

/// The seven algorithms of `JWGeometrySimplicify`.
enum enumJWSimplifyMethod {
    JWSimplifyDouglasPeucker = 1,
    JWSimplifyReumannWitkam = 2,
    JWSimplifyLang = 3,
    JWSimplifyVertexReduction = 4,
    JWSimplifyOpheim = 5,
    JWSimplifyNthPoint = 6,
    JWSimplifyPerpendicularDistance = 7,
};

/// A method and its parameters; those that a method does not name do not count.
struct JWSimplifyOptions {
    enumJWSimplifyMethod method = JWSimplifyDouglasPeucker;
    double tolerance = 0;         ///< layer units; Opheim's minimum
    double maximumTolerance = 0;  ///< layer units; Opheim's maximum
    int count = 0;                ///< Lang's look-ahead; n of the n-th point
    int minimumRingPoints = 3;    ///< a ring that would store fewer stays as it was
    int threads = 1;              ///< for feature classes and layers; 0 for one per core
    int blockSize = 0;            ///< for layers: features held at a time; 0 for all
    /// For layers of polygons: borders that polygons share are simplified once, for both.
    bool coverage = false;
    /// With `coverage`: vertices this near to one another become one first, layer units; 0 or less
    /// for none.
    double coverageTolerance = 0;
};

/// Removes vertices. No state; all functions may run on any number of threads, each on geometries
/// of its own.
///
/// Ends stay, no point is added or moved, and kept points have their own bits. Distances are
/// planar, tolerances in layer units. Every point that Douglas-Peucker, Lang, vertex reduction and
/// perpendicular distance drop lies within the tolerance of what they leave there; Reumann-Witkam,
/// Opheim and the n-th point promise nothing of the kind: the former two cut corners by more.
///
/// Polygons are simplified ring by ring, each as the closed list it stores, so neighbours that
/// share a border may come apart, and rings may come to cross. A ring that would store fewer than 3
/// points stays as it was: (0,0),(10,0),(10,.1),(0,.1),(0,0) at 1 becomes (0,0),(10,.1),(0,0).
///
/// Nothing changes for a null argument, a parameter out of range (NaN included), too few points, or
/// a line with a coordinate that is NaN or infinite; the count returned is then that of the points
/// as they are, 0 for null. Envelopes of what was simplified are up to date.
class JW_API JWGeometrySimplicify {
  public:
    JWGeometrySimplicify();
    ~JWGeometrySimplicify();
    JWGeometrySimplicify& operator=(const JWGeometrySimplicify&);

    /// @name Lines
    /// @{

    /// Drops points by Douglas and Peucker's algorithm (1973), in place: between two kept points
    /// the one farthest from their segment is kept, the first on a tie, if it is farther than
    /// `tolerance`. So (0,0),(1,1),(2,1),(3,0) at 0.9 gives (0,0),(1,1),(3,0), at 1 the ends.
    /// \param tolerance  above 0
    /// \return true when the line has more than 3 points and was processed
    /// Cost: O(n log n), on spirals and zigzags too, where the plain form is quadratic. Once ties
    /// have taken 4 million + n log n steps, the first of those that tie to rounding is kept.
    static bool douglasPeucker(JWLineString* line, double tolerance);
    /// Drops points in a strip, in place (K. Reumann, A. P. M. Witkam, 1974): the strip is around
    /// the line through two neighbours; the first point that leaves it is kept and begins, with the
    /// point before it, the next. A strip of length 0 is a disc. Needs more than 2 points.
    /// \param tolerance  half the width, above 0
    /// \return the points kept. Cost: O(n).
    static int reumann_witkam(JWLineString* line, double tolerance);
    /// Drops points in place (T. Lang, Rules for the robot draughtsmen, 1969): from a kept point,
    /// the farthest of the next `lookAhead` points is kept for which all between lie within
    /// `tolerance` of the segment. Needs more than 2 points.
    /// \param tolerance  above 0
    /// \param lookAhead  above 1; more than there are points means all
    /// \return the points kept. Cost: O(n) times the look-ahead, as a rule far less.
    static int lang(JWLineString* line, double tolerance, int lookAhead);
    /// Drops points that are within `tolerance` of the last kept one, in place; the last point
    /// stays all the same. Needs more than 2 points.
    /// \param tolerance  above 0
    /// \return the points kept. Cost: O(n).
    static int vertex_reduction(JWLineString* line, double tolerance);
    /// Appends to `out` the points that Opheim's algorithm keeps (H. Opheim, 1982).
    ///
    /// From a kept point, the first neighbours farther than `minimum` give the direction of a ray;
    /// the point before the first that is `maximum` away, or too far from the ray, is kept next.
    /// "Too far" means that the squared distance reaches `minimum` itself, not its square: the band
    /// is √minimum wide to each side. Lines of up to 2 points are copied.
    /// \param minimum,maximum  0 < minimum <= maximum
    /// \param out  the points are appended, its envelope is brought up to date
    /// \return the points written; where a parameter is out of range nothing is written and the
    ///     count of `line` returned, so look at `out`. Cost: O(n).
    static int opheim(const JWLineString* line, double minimum, double maximum, JWLineString* out);
    /// Keeps the points whose index is a multiple of n, and the last, in place; 6 points and n = 2
    /// give the indices 0, 2, 4, 5. Needs more than 2 points.
    /// \param n  above 0
    /// \return the points kept. Cost: O(n).
    static int nThPoint(JWLineString* line, unsigned n);
    /// Appends to `out` the line without points near the segment of their neighbours: one pass, in
    /// which the point after a dropped one is not tested, so a straight line loses every other
    /// point. Needs more than 2 points.
    /// \param tolerance  above 0
    /// \return the points written; where nothing is written, the count of `line`. Cost: O(n).
    static int perpendicularDistance(const JWLineString* line, double tolerance, JWLineString* out);
    /// Removes every point equal to the one before it, exactly. A ring of one place only becomes
    /// one point.
    /// \return true for a line or ring of more than 1 point. Cost: O(n).
    static bool removeDuplicate(JWLineString* line);
    static bool removeDuplicate(JWRing* ring);
    /// @}

    /// @name Any geometry
    /// @{

    /// Simplifies a line string, multi-line string, polygon or multi-polygon in place by
    /// Douglas-Peucker.
    /// \return for a line string as `douglasPeucker`; true for the others when `tolerance` is above
    ///     0, and for a point, which has nothing to simplify. Any other type is left as it is and
    ///     gives false; a line on the standard error stream says so. Null gives false.
    static bool geometrySimplicify(JWGeometry* geometry, double tolerance);
    /// Same with any method, and without the message.
    static bool geometrySimplicify(JWGeometry* geometry, const JWSimplifyOptions& options);

    /// Simplify every ring in place; false for null and parameters out of range.
    static bool jwPolygonSimpicify(JWPolygon* polygon, double tolerance);
    static bool jwPolygonSimpicify_Lang(JWPolygon* polygon, double tolerance, int lookAhead);
    static bool jwPolygonSimpicify_ReumannWitkam(JWPolygon* polygon, double tolerance);
    static bool jwPolygonSimpicify_VertexReduction(JWPolygon* polygon, double tolerance);
    static bool jwPolygonSimpicify_PerpendDistance(JWPolygon* polygon, double tolerance);
    static bool jwPolygonSimpicify_Opheim(JWPolygon* polygon, double minimum, double maximum);
    static bool jwPolygonSimpicify_NthPoint(JWPolygon* polygon, int n);
    /// @}

    /// @name Feature classes
    /// @{

    /// Simplify the lines and polygons of all features in place; other geometries stay.
    /// `simplifyFeatures_dp` and `simplifyFeatures_omp` call `geometrySimplicify` for each.
    static void simplifyFeatures_dp(JWFeatureClass* features, double tolerance);
    static void simplifyFeatures_rw(JWFeatureClass* features, double tolerance);
    static void simplifyFeatures_vr(JWFeatureClass* features, double tolerance);
    static void simplifyFeatures_per(JWFeatureClass* features, double tolerance);
    static void simplifyFeatures_lang(JWFeatureClass* features, double tolerance, int lookAhead);
    static void simplifyFeatures_op(JWFeatureClass* features, double minimum, double maximum);
    static void simplifyFeatures_nth(JWFeatureClass* features, unsigned n);
    /// Same as `simplifyFeatures_dp` with one thread per core, and the same result; features are
    /// handed out in small runs as threads become free.
    static void simplifyFeatures_omp(JWFeatureClass* features, double tolerance);
    /// Same with any method and number of threads, without messages.
    /// \param report  may be null; receives features read, empty, written (those whose geometry
    ///     could be simplified, points included) and the rejected ones: other kinds of geometry,
    ///     which stay, and those with a line that has a coordinate that is not finite: that line
    ///     stays, the others of the feature are simplified
    /// \return false for null, parameters out of range, and when memory is short
    static bool simplifyFeatures(JWFeatureClass* features, const JWSimplifyOptions& options,
                                 JWLayerReport* report = nullptr);
    /// @}

    /// Writes each feature of `input`, simplified, with its attributes to `output`, a layer without
    /// fields, in the order of the input and in one transaction. Points and features without a
    /// geometry go through as they are, and so does a line that the method cannot take (too few
    /// points). The output is declared of the input's type.
    ///
    /// With `coverage` no gap and no overlap comes up between polygons that had none: a border is
    /// simplified once, whatever the vertices of the two neighbours; places where three polygons or
    /// more meet stay; and where a method would have lines cross or touch, a ring lose its area, or
    /// something change sides, points come back until it does not. Kept points have their own bits;
    /// a vertex may be added where a neighbour has one on an edge. Polygons that cross themselves
    /// or overlap beforehand still do so. Other geometries than polygons are rejected; the whole
    /// layer is held in memory, about 200 bytes a vertex.
    ///
    /// The result is the same, bit for bit, for any number of threads and any block size.
    /// \param report  may be null; receives features read, empty, written, the rejected ones (other
    ///     kinds of geometry, and coordinates that are not finite: they are missing from the
    ///     output), areas and vertices
    /// \return the number of features written; −1 with the last error set, and nothing written,
    ///     for null, parameters out of range, a failed read or write, and when the progress
    ///     callback stopped it; −3 when the output has fields already
    static int simplifyLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                             const JWSimplifyOptions& options, JWLayerReport* report = nullptr);
};

}  // namespace jws

#endif  // JW_GEOMETRYSIMPLICIFY_H
