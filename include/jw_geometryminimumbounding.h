// SPDX-License-Identifier: MIT
//
// JWGeometryMinimumBounding: envelopes, convex hulls, enclosing circles and rectangles.
#ifndef JW_GEOMETRYMINIMUMBOUNDING_H
#define JW_GEOMETRYMINIMUMBOUNDING_H

#include <vector>

#include "jw_export.h"
#include "jw_feature.h"
#include "jw_geometry.h"
#include "jw_report.h"

namespace jws {

/// The families of `JWGeometryMinimumBounding`.
enum enumJWBounding {
    JWBoundingHull = 1,
    JWBoundingEnvelop = 2,
    JWBoundingMinimumCircle = 3,
    JWBoundingFastBall = 4,
    JWBoundingMinimumAreaRect = 5,
    JWBoundingMinimumWidthRect = 6,
};

/// What `JWGeometryMinimumBounding::boundLayer` makes of a layer.
struct JWBoundingOptions {
    enumJWBounding kind = JWBoundingHull;
    /// One geometry around all features; otherwise one around each. Not for the bounding ball.
    bool wholeLayer = false;
    /// Adds real fields: "center_x", "center_y", "radius" of a circle; "length", "width" and
    /// "angle" of a rectangle, the direction of its longer side in degrees, 0 to below 180,
    /// counter-clockwise from the x axis; none for the others.
    bool measures = false;
    int blockSize = 0;  ///< features held at a time; 0 or less for all
    int threads = 1;    ///< 0 or less for one per core; one geometry around all takes one
};

/// What encloses a set of points or the vertices of a geometry. No state.
///
/// Six families, each for the same inputs:
/// - `points...`: the first n points of a vector of values or of pointers. n below 1 or above the
///   size of the vector and a null pointer among the n give false.
/// - `lineString...`, `multiLineString...`, `ring...`, `polygon...`, `multiPolygon...`,
///   `multiPoint...`: all stored vertices of the geometry, closing points included; of a polygon
///   those of its exterior ring only.
/// - `geometry...`: any of these six, by `getGeometryType`; every other kind, a single point
///   included, gives false.
/// - `featureClass...`: for each feature of `input`, in order, a feature with the same identifier,
///   schema and attributes and the result as a polygon is appended to `output`; a circle is its
///   outline. A feature without a result (no geometry, a kind as above, too few points, a
///   coordinate that is not finite, a hull without an area) gives none and is counted:
///   `report`, which may be null, receives features read, empty, written and the rejected ones with
///   their reasons. The output takes the spatial reference of the input, type polygon and a fresh
///   envelope. False for a null class. `output` may be `input`.
///
/// Answers are false, and outputs as they were, for null arguments, too few points and, but for
/// envelopes, for a coordinate that is NaN or infinite. All
/// functions may run on any number of threads; inputs are borrowed. Envelopes and balls take one or
/// two passes over the points; the others O(n log n) at worst, for points in general position O(n).
class JW_API JWGeometryMinimumBounding {
  public:
    JWGeometryMinimumBounding();
    ~JWGeometryMinimumBounding();
    JWGeometryMinimumBounding& operator=(const JWGeometryMinimumBounding&);

    /// @name Convex hull
    /// @{
    /// Finds the convex hull of at least 4 points, closing points and repetitions counted.
    ///
    /// The ring is replaced: counter-clockwise from the lexicographically smallest corner, closed,
    /// no corner on the line of its neighbours; orientation is decided without rounding, corners
    /// have the bits of the input. Points on one line give their two extremes and the first again,
    /// equal points that point twice: (0,0),(1,1),(2,2),(3,3) gives (0,0),(3,3),(0,0).
    static bool pointsContexHull(const std::vector<JWRawPoint>& points, int n, JWRing* hull);
    static bool pointsContexHull(const std::vector<JWRawPoint*>& points, int n, JWRing* hull);
    static bool pointsContexHull(const std::vector<JWPoint*>& points, int n, JWRing* hull);
    static bool lineStringContexHull(const JWLineString* line, JWRing* hull);
    static bool multiLineStringContexHull(const JWMultiLineString* lines, JWRing* hull);
    static bool ringContexHull(const JWRing* ring, JWRing* hull);
    static bool polygonContexHull(const JWPolygon* polygon, JWRing* hull);
    static bool multiPolygonContexHull(const JWMultiPolygon* polygons, JWRing* hull);
    static bool multiPointContexHull(const JWMultiPoint* points, JWRing* hull);
    static bool geometryContexHull(const JWGeometry* geometry, JWRing* hull);
    /// Writes the hull of each feature; one of fewer than 4 stored points has no area and is
    /// rejected.
    static bool featureClassContexHull(JWFeatureClass* input, JWFeatureClass* output,
                                       JWLayerReport* report = nullptr);
    /// @}

    /// @name Envelope
    /// @{
    /// Finds the smallest and largest x and y. NaN coordinates are skipped; false when an axis has
    /// no other coordinate.
    static bool pointsEnvelop(const std::vector<JWRawPoint>& points, int n, JWEnvelop* envelop);
    static bool pointsEnvelop(const std::vector<JWRawPoint*>& points, int n, JWEnvelop* envelop);
    static bool pointsEnvelop(const std::vector<JWPoint*>& points, int n, JWEnvelop* envelop);
    static bool lineStringEnvelop(const JWLineString* line, JWEnvelop* envelop);
    static bool multiLineStringEnvelop(const JWMultiLineString* lines, JWEnvelop* envelop);
    static bool ringEnvelop(const JWRing* ring, JWEnvelop* envelop);
    static bool polygonEnvelop(const JWPolygon* polygon, JWEnvelop* envelop);
    static bool multiPolygonEnvelop(const JWMultiPolygon* polygons, JWEnvelop* envelop);
    static bool multiPointEnvelop(const JWMultiPoint* points, JWEnvelop* envelop);
    static bool geometryEnvelop(const JWGeometry* geometry, JWEnvelop* envelop);
    /// Writes the envelope of each feature: five points, counter-clockwise from the lower left; it
    /// may be flat.
    static bool featureClassEnvelop(JWFeatureClass* input, JWFeatureClass* output,
                                    JWLayerReport* report = nullptr);
    /// @}

    /// @name Minimum circle
    /// @{
    /// Finds the smallest circle around at least 2 points; its radius is 0 where these are at one
    /// place.
    ///
    /// The answer is that of the incremental algorithm with a tolerance of 1e-10: a point outside
    /// an intermediate circle by no more counts as inside it. Where hundreds of points lie on the
    /// circle it is the exact circle instead, the same to 1e-10. Every point lies within 1e-10 of
    /// the circle, besides rounding, 1e-12 of its radius. Works relative to the first point, so
    /// that far offsets cost no digits.
    /// \param radius   must not be null
    /// \param outline  may be null; receives 361 points, clockwise from angle 0, that lie on the
    ///     circle, so the outline falls short of it by up to 3.8e-5 of the radius. False when there
    ///     is no memory for it, after centre and radius were written.
    static bool pointsMinimumCircle(const std::vector<JWRawPoint>& points, int n,
                                    JWRawPoint& center, double* radius, JWRing* outline = nullptr);
    static bool pointsMinimumCircle(const std::vector<JWRawPoint*>& points, int n,
                                    JWRawPoint& center, double* radius, JWRing* outline = nullptr);
    static bool pointsMinimumCircle(const std::vector<JWPoint*>& points, int n, JWRawPoint& center,
                                    double* radius, JWRing* outline = nullptr);
    static bool lineStringMinimumCircle(const JWLineString* line, JWRawPoint& center,
                                        double* radius, JWRing* outline = nullptr);
    static bool multiLineStringMinimumCircle(const JWMultiLineString* lines, JWRawPoint& center,
                                             double* radius, JWRing* outline = nullptr);
    static bool ringMinimumCircle(const JWRing* ring, JWRawPoint& center, double* radius,
                                  JWRing* outline = nullptr);
    static bool polygonMinimumCircle(const JWPolygon* polygon, JWRawPoint& center, double* radius,
                                     JWRing* outline = nullptr);
    static bool multiPolygonMinimumCircle(const JWMultiPolygon* polygons, JWRawPoint& center,
                                          double* radius, JWRing* outline = nullptr);
    static bool multiPointMinimumCircle(const JWMultiPoint* points, JWRawPoint& center,
                                        double* radius, JWRing* outline = nullptr);
    static bool geometryMinimumCircle(const JWGeometry* geometry, JWRawPoint& center,
                                      double* radius, JWRing* outline = nullptr);
    /// Writes the circle of each feature; one of radius 0 is 361 times its centre.
    static bool featureClassMinimumCircle(JWFeatureClass* input, JWFeatureClass* output,
                                          JWLayerReport* report = nullptr);
    /// @}

    /// @name Bounding ball
    /// @{
    /// Finds a circle around at least 2 points that is quick to compute and some per cent too
    /// large: from the two extremes of the longer axis (x on a tie), grown by each point outside,
    /// in order (J. Ritter, An efficient bounding sphere, 1990). (0,0),(4,0),(2,3) gives centre
    /// (2,0.5), radius 2.5. Parameters as for the minimum circle.
    static bool pointsFastBoundingBall(const std::vector<JWRawPoint>& points, int n,
                                       JWRawPoint& center, double* radius,
                                       JWRing* outline = nullptr);
    static bool pointsFastBoundingBall(const std::vector<JWRawPoint*>& points, int n,
                                       JWRawPoint& center, double* radius,
                                       JWRing* outline = nullptr);
    static bool pointsFastBoundingBall(const std::vector<JWPoint*>& points, int n,
                                       JWRawPoint& center, double* radius,
                                       JWRing* outline = nullptr);
    static bool lineStringFastBoundingBall(const JWLineString* line, JWRawPoint& center,
                                           double* radius, JWRing* outline = nullptr);
    static bool multiLineStringFastBoundingBall(const JWMultiLineString* lines, JWRawPoint& center,
                                                double* radius, JWRing* outline = nullptr);
    static bool ringFastBoundingBall(const JWRing* ring, JWRawPoint& center, double* radius,
                                     JWRing* outline = nullptr);
    static bool polygonFastBoundingBall(const JWPolygon* polygon, JWRawPoint& center,
                                        double* radius, JWRing* outline = nullptr);
    static bool multiPolygonFastBoundingBall(const JWMultiPolygon* polygons, JWRawPoint& center,
                                             double* radius, JWRing* outline = nullptr);
    static bool multiPointFastBoundingBall(const JWMultiPoint* points, JWRawPoint& center,
                                           double* radius, JWRing* outline = nullptr);
    static bool geometryFastBoundingBall(const JWGeometry* geometry, JWRawPoint& center,
                                         double* radius, JWRing* outline = nullptr);
    /// Writes the ball of each feature.
    static bool featureClassFastBoundingBall(JWFeatureClass* input, JWFeatureClass* output,
                                             JWLayerReport* report = nullptr);
    /// @}

    /// @name Rectangles of minimum area and of minimum width
    /// @{
    /// Finds the rectangle of least area around at least 2 distinct points.
    ///
    /// The ring is replaced: five points, counter-clockwise, closed; its first side is along an
    /// edge of the hull, the first such edge on a tie. Every point lies in it to 1e-12 of its size,
    /// besides the rounding of the coordinates as such. Points on one line give a flat rectangle.
    /// False also where a corner would lie beyond all numbers.
    static bool pointsMinimumAreaRect(const std::vector<JWRawPoint>& points, int n,
                                      JWRing* rectangle);
    static bool pointsMinimumAreaRect(const std::vector<JWRawPoint*>& points, int n,
                                      JWRing* rectangle);
    static bool pointsMinimumAreaRect(const std::vector<JWPoint*>& points, int n,
                                      JWRing* rectangle);
    static bool lineStringMinimumAreaRect(const JWLineString* line, JWRing* rectangle);
    static bool multiLineStringMinimumAreaRect(const JWMultiLineString* lines, JWRing* rectangle);
    static bool ringMinimumAreaRect(const JWRing* ring, JWRing* rectangle);
    static bool polygonMinimumAreaRect(const JWPolygon* polygon, JWRing* rectangle);
    static bool multiPolygonMinimumAreaRect(const JWMultiPolygon* polygons, JWRing* rectangle);
    static bool multiPointMinimumAreaRect(const JWMultiPoint* points, JWRing* rectangle);
    static bool geometryMinimumAreaRect(const JWGeometry* geometry, JWRing* rectangle);
    /// Writes the rectangle of each feature; it may be flat.
    static bool featureClassMinimumAreaRect(JWFeatureClass* input, JWFeatureClass* output,
                                            JWLayerReport* report = nullptr);
    /// Finds the narrowest rectangle, of several the one of least area; otherwise as the rectangle
    /// of least area.
    static bool pointsMinimumWidthRect(const std::vector<JWRawPoint>& points, int n,
                                       JWRing* rectangle);
    static bool pointsMinimumWidthRect(const std::vector<JWRawPoint*>& points, int n,
                                       JWRing* rectangle);
    static bool pointsMinimumWidthRect(const std::vector<JWPoint*>& points, int n,
                                       JWRing* rectangle);
    static bool lineStringMinimumWidthRect(const JWLineString* line, JWRing* rectangle);
    static bool multiLineStringMinimumWidthRect(const JWMultiLineString* lines, JWRing* rectangle);
    static bool ringMinimumWidthRect(const JWRing* ring, JWRing* rectangle);
    static bool polygonMinimumWidthRect(const JWPolygon* polygon, JWRing* rectangle);
    static bool multiPolygonMinimumWidthRect(const JWMultiPolygon* polygons, JWRing* rectangle);
    static bool multiPointMinimumWidthRect(const JWMultiPoint* points, JWRing* rectangle);
    static bool geometryMinimumWidthRect(const JWGeometry* geometry, JWRing* rectangle);
    /// Writes the rectangle of each feature; it may be flat.
    static bool featureClassMinimumWidthRect(JWFeatureClass* input, JWFeatureClass* output,
                                             JWLayerReport* report = nullptr);
    /// @}

    /// Writes what encloses each feature of `input`, or all of them together, to `output`, a layer
    /// without fields, as polygons, in the order of the input and in one transaction.
    ///
    /// What encloses a feature carries its attributes; what encloses all has their number in a
    /// field "count", and points count, too. Only the exterior rings of polygons count. The result
    /// is the same, bit for bit, for any number of threads and any block size. Memory holds one
    /// block.
    /// A circle has a radius of 0, and an envelope is flat, where all points are at one place.
    /// \param report  may be null; receives features read, empty, written and the rejected ones
    ///     (another kind of geometry, a coordinate that is not finite, too few distinct points, and
    ///     for a hull, which needs no fourth point here, points on one line); the layer as a whole
    ///     is rejected under the identifier −1
    /// \return the number of features written; −1 with the last error set, and nothing written,
    ///     for null, options that contradict each other, a failed read or write, and when the
    ///     progress callback stopped it; −3 when the output has fields already
    static int boundLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                          const JWBoundingOptions& options, JWLayerReport* report = nullptr);
};

}  // namespace jws

#endif  // JW_GEOMETRYMINIMUMBOUNDING_H
