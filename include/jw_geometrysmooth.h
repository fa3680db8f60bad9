// SPDX-License-Identifier: MIT
//
// JWGeometrySmooth: lines and polygons that look smoother.
#ifndef JW_GEOMETRYSMOOTH_H
#define JW_GEOMETRYSMOOTH_H

#include "jw_export.h"
#include "jw_feature.h"
#include "jw_geometry.h"
#include "jw_report.h"

namespace jws {

/// The six algorithms of `JWGeometrySmooth`.
enum enumJWSmoothMethod {
    JWSmoothBoyle = 1,
    JWSmoothSlidingAveraging = 2,
    JWSmoothDistanceWeighting = 3,
    JWSmoothChaiken = 4,
    JWSmoothBezier = 5,
    JWSmoothHermite = 6,
};

/// A method and its parameters; those that a method does not name do not count.
struct JWSmoothOptions {
    enumJWSmoothMethod method = JWSmoothBoyle;
    int lookAhead = 0;          ///< Boyle, sliding averaging, distance weighting
    double slide = 1;           ///< the latter two: weight of the average, 0 for the point itself
    double tolerance = 0;       ///< Chaiken, layer units
    int degree = 0;             ///< Bézier: segments of the line under each curve
    int points = 0;             ///< Bézier: points per curve
    double step = 0;            ///< Hermite, layer units
    double tangentScale = 0;    ///< Hermite
    double tangentMinimum = 0;  ///< Hermite, square layer units
    int minimumRingPoints = 3;  ///< a ring that would store fewer stays as it was
    /// Drop each result point that equals the one before it; a line that would come down to one
    /// point stays as it was.
    bool dropRepeated = false;
    int threads = 1;    ///< for feature classes and layers; 0 for one per core
    int blockSize = 0;  ///< for layers: features held at a time; 0 for all
};

/// Moves or adds vertices. No state; all functions may run on any number of threads, each on
/// geometries of its own.
///
/// First and last points stay. Polygons are smoothed ring by ring, each as the closed list it
/// stores, and closed again; so the first corner of a ring stays too, neighbours that share a
/// border may come apart, and rings may come to cross. A ring that would store fewer than 3 points
/// stays as it was.
///
/// Nothing changes for a null argument, a parameter out of range (NaN included), too few points, a
/// line with a coordinate that is NaN or infinite, or a result that would have such a coordinate,
/// or more than 134217727 points (2^27 - 1, 2 GiB) or than memory holds; the count returned is then
/// that of the points as they are, 0 for null; the last error tells which of the last three it was.
/// Envelopes of what was smoothed are up to date. Cost: O(points in and
/// out), times the look-ahead for distance weighting.
class JW_API JWGeometrySmooth {
  public:
    JWGeometrySmooth();
    ~JWGeometrySmooth();
    JWGeometrySmooth& operator=(const JWGeometrySmooth&);

    /// @name Lines
    /// All but `bezier` work in place and return the point count.
    /// @{

    /// Boyle's forward-looking interpolation (A. R. Boyle, 1970): with c = 1/(L − 1), point i + 1
    /// becomes (1 − c) times the new point i plus c times the old point i + L, or the last one. L =
    /// 2 therefore shifts the line by one point.
    /// \param lookAhead  L, from 2 to the point count
    static int boyle(JWLineString* line, int lookAhead);
    /// Sliding mean (R. B. McMaster, 1989): a point becomes (1 − slide) times itself plus slide
    /// times the mean of the lookAhead points around it. The first and last lookAhead/2 points
    /// stay.
    /// \param slide      usually 0 to 1
    /// \param lookAhead  odd, at least 3, below the point count
    static int sliding_averaging(JWLineString* line, double slide, int lookAhead);
    /// Inverse-distance weighting (R. B. McMaster, 1989): as the sliding mean, with the mean of the
    /// neighbours weighted by 1/distance to the point, which itself and neighbours nearer than
    /// 1e-10 do not count in. A point without other neighbours stays.
    /// \param slide      usually 0 to 1
    /// \param lookAhead  odd, at least 3
    static int distance_weighting(JWLineString* line, double slide, int lookAhead);
    /// Cuts corners (G. M. Chaikin, An algorithm for high speed curve generation, 1974): from each
    /// segment points are added towards the last point of the result so far, until one is within
    /// `tolerance` of it. The list begins with the first point and ends with the last, twice: the
    /// last corner is cut on a segment of length 0. So (0,0),(2,2),(4,0) at 100 gives
    /// (0,0),(3,1),(4,0),(4,0); `removeDuplicate` drops the repetition. Needs more than 2 points.
    /// \param tolerance  used by absolute value; 0 is out of range
    static int chaiken(JWLineString* line, double tolerance);
    /// Cubic Hermite curves, sampled every `step` of arc length of the line.
    ///
    /// At p_k the tangent is T_k = tangentScale · (p_{k+2} − p_k), the last point standing in
    /// beyond the end, or 0 where the squared length of the difference is below `tangentMinimum`.
    /// The point at the fraction u of segment k is (2u³ − 3u² + 1) p_k + (u³ − 2u² + u) T_k + (3u²
    /// − 2u³) p_{k+1} + (u³ − u²) T_{k+1}. The result is the first point, those at the multiples of
    /// `step`, and the last; it may have fewer points than the line. (0,0),(4,0),(4,4) with step 2,
    /// scale 0.5, minimum 0 gives (0,0),(2.25,0),(4,0),(4,2.25),(4,4). Needs more than 2 points.
    /// \param step,tangentScale  above 0
    static int hermite(JWLineString* line, double step, double tangentScale, double tangentMinimum);
    /// Returns a new line of Bézier curves over `degree` segments each, `points` points to a curve,
    /// sharing their ends: those at u = k/points of Σ C(n,i) u^i (1 − u)^(n−i) p_i. The last curve
    /// has what segments remain. (0,0),(1,2),(2,0) with 2 and 2 gives (0,0),(1,1),(2,0). The same
    /// as `JWBezierCurve::makeBezierCurve`; the caller owns the line.
    /// \param degree,points  at least 1; a degree beyond 170 counts as 170
    /// \return a copy of the line where nothing can be smoothed, null for null
    static JWLineString* bezier(const JWLineString* line, int degree, int points);
    /// @}

    /// @name Polygons and any geometry
    /// @{

    /// Smooth every ring in place; false for null and parameters out of range of any line.
    static bool jwPolygonSmooth_Boyle(JWPolygon* polygon, int lookAhead);
    static bool jwPolygonSmooth_SlidingMean(JWPolygon* polygon, double slide, int lookAhead);
    static bool jwPolygonSmooth_dw(JWPolygon* polygon, double slide, int lookAhead);
    static bool jwPolygonSmooth_Chaiken(JWPolygon* polygon, double tolerance);
    static bool jwPolygonSmooth_Bezier(JWPolygon* polygon, int degree, int points);
    static bool jwPolygonSmooth_Hermite(JWPolygon* polygon, double step, double tangentScale,
                                        double tangentMinimum);
    /// Smooths a line string, multi-line string, polygon or multi-polygon in place; leaves a point
    /// as it is. False for null, other kinds, parameters out of range and a line string that stays
    /// as it was.
    static bool geometrySmooth(JWGeometry* geometry, const JWSmoothOptions& options);
    /// @}

    /// @name Feature classes
    /// @{

    /// Smooth the lines and polygons of all features in place; other geometries stay.
    static void smoothFeatures_boyle(JWFeatureClass* features, int lookAhead);
    static void smoothFeatures_slideAve(JWFeatureClass* features, double slide, int lookAhead);
    static void smoothFeatures_dw(JWFeatureClass* features, double slide, int lookAhead);
    static void smoothFeatures_chaiken(JWFeatureClass* features, double tolerance);
    static void smoothFeatures_bezier(JWFeatureClass* features, int degree, int points);
    static void smoothFeatures_hermite(JWFeatureClass* features, double step, double tangentScale,
                                       double tangentMinimum);
    /// Same with any method and number of threads.
    /// \param report  may be null; receives features read, empty, written (those whose geometry
    ///     could be smoothed, points included) and the rejected ones: other kinds of geometry,
    ///     which stay, and those with a line that has a coordinate that is not finite, or would
    ///     have one or too many points: these lines stay, the others of the feature are smoothed
    /// \return false for null, parameters out of range, and when memory is short
    static bool smoothFeatures(JWFeatureClass* features, const JWSmoothOptions& options,
                               JWLayerReport* report = nullptr);
    /// @}

    /// Writes each feature of `input`, smoothed, with its attributes to `output`; otherwise the
    /// same as `JWGeometrySimplicify::simplifyLayer`.
    static int smoothLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                           const JWSmoothOptions& options, JWLayerReport* report = nullptr);
};

}  // namespace jws

#endif  // JW_GEOMETRYSMOOTH_H
