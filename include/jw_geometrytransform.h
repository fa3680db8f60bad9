// SPDX-License-Identifier: MIT
//
// JWGeometryTransform: affine transformation of points and geometries, and its fit to control
// points.
#ifndef JW_GEOMETRYTRANSFORM_H
#define JW_GEOMETRYTRANSFORM_H

#include "jw_export.h"
#include "jw_feature.h"
#include "jw_geometry.h"
#include "jw_report.h"

namespace jws {

/// A ground control point: where a place is to go, and where it is.
struct JWGCP {
    double targetX;
    double targetY;
    double sourceX;
    double sourceY;
    double residual;  ///< room for the caller's own; not read
};

/// Moves, rotates, scales, reflects, shears and maps in place. No state; all functions may run on
/// any number of threads, each on geometries of its own.
///
/// A matrix is six numbers m0 ... m5: x' = m0 + m1·x + m2·y and y' = m3 + m4·x + m5·y. Angles are
/// degrees, counter-clockwise, turned into radians by the constant 0.0174532925199433, so that
/// (1, 0) by 90 becomes (-3.8e-16, 1).
///
/// The geometry forms do to every vertex what the point form does and bring the envelopes up to
/// date. The dispatchers `geometry...` take any of the six kinds, points (z and m stay) and bags of
/// these. Answers are false, and nothing is changed, for null, for a parameter that is NaN or
/// infinite, for a fit that fails, and for a geometry of another kind, alone or in a bag. A centre
/// may lie in the geometry. Cost: one pass; fits are made once for a geometry.
class JW_API JWGeometryTransform {
  public:
    JWGeometryTransform();
    ~JWGeometryTransform();
    JWGeometryTransform& operator=(const JWGeometryTransform&);

    /// @name Points and matrices
    /// @{
    static bool pointMove(JWRawPoint* point, double dx, double dy);
    /// Rotates about the centre by `angle` degrees.
    static bool pointRotate(JWRawPoint* point, const JWRawPoint* center, double angle);
    /// Same as `pointRotate`.
    static bool pointRotate1(JWRawPoint* point, const JWRawPoint* center, double angle);
    static bool pointScale1(JWRawPoint* point, const JWRawPoint* center, double sx, double sy);
    /// Turns by half a turn about the centre: (3, 4) about (1, 1) becomes (-1, -2).
    static bool pointReflect(JWRawPoint* point, const JWRawPoint* center);
    /// x becomes x + k·y with `alongX`, else y becomes y + k·x.
    static bool pointShear(JWRawPoint* point, double k, bool alongX);
    static bool pointAffineTransfromByMatrix(JWRawPoint* point, const double* matrix);
    /// Fits a matrix to n control points by `affineTransformFromGCP` and applies it.
    static bool pointAffineTransform(JWRawPoint* point, const JWGCP* points, int n);
    /// Fits the matrix that takes sources to targets.
    ///
    /// Two points give scales and a shift; they must differ in source x and in source y. Four that
    /// form an axis-parallel rectangle in both spaces, in the order (0,0),(1,0),(1,1),(0,1) or a
    /// mirror image of it, likewise, with m2 = m4 = 0 exactly. Otherwise it is the least-squares
    /// fit of all six numbers, computed relative to the mean of both spaces, so that projected
    /// coordinates keep their digits.
    /// \param matrix  six numbers, written only when the answer is true
    /// \return false for null, n < 2, source points on a line (centred determinant of the normal
    ///     equations at most 1e-14 of the squared trace) and a result that is not finite
    static bool affineTransformFromGCP(const JWGCP* points, int n, double* matrix);
    /// Inverts a matrix; `inverse` may be `matrix`.
    /// \return false, and nothing written, for a determinant m1·m5 - m2·m4 whose absolute value is
    ///     below 1e-15, whatever the scale of the matrix, for a determinant or one of the six
    ///     results that is not finite, and for a null pointer
    static bool inverseTransformMatrix(const double* matrix, double* inverse);
    /// Inverts a matrix of any scale; `inverse` may be `matrix`.
    /// \return false, and nothing written, for a matrix that maps the plane to a line or a point: a
    ///     determinant of at most 1e-15 times |m1·m5| + |m2·m4|, which is its rounding; for one of
    ///     the six results that is not finite, and for a null pointer
    static bool invertMatrix(const double* matrix, double* inverse);
    /// @}

    /// @name Move
    /// @{
    static bool multiPointMove(JWMultiPoint* points, double dx, double dy);
    static bool ringMove(JWRing* ring, double dx, double dy);
    static bool lineStringMove(JWLineString* line, double dx, double dy);
    static bool multiLineStringMove(JWMultiLineString* lines, double dx, double dy);
    static bool polygonMove(JWPolygon* polygon, double dx, double dy);
    static bool multiPolygonMove(JWMultiPolygon* polygons, double dx, double dy);
    static bool geometryMove(JWGeometry* geometry, double dx, double dy);
    /// @}

    /// @name Rotate
    /// @{
    static bool multiPointRotate(JWMultiPoint* points, const JWRawPoint* center, double angle);
    static bool ringRotate(JWRing* ring, const JWRawPoint* center, double angle);
    static bool lineStringRotate(JWLineString* line, const JWRawPoint* center, double angle);
    static bool multiLineStringRotate(JWMultiLineString* lines, const JWRawPoint* center,
                                      double angle);
    static bool polygonRotate(JWPolygon* polygon, const JWRawPoint* center, double angle);
    static bool multiPolygonRotate(JWMultiPolygon* polygons, const JWRawPoint* center,
                                   double angle);
    static bool geometryRotate(JWGeometry* geometry, const JWRawPoint* center, double angle);
    /// @}

    /// @name Scale
    /// @{
    static bool multiPointScale(JWMultiPoint* points, const JWRawPoint* center, double sx,
                                double sy);
    static bool ringScale(JWRing* ring, const JWRawPoint* center, double sx, double sy);
    static bool lineStringScale(JWLineString* line, const JWRawPoint* center, double sx, double sy);
    static bool multiLineStringScale(JWMultiLineString* lines, const JWRawPoint* center, double sx,
                                     double sy);
    static bool polygonScale(JWPolygon* polygon, const JWRawPoint* center, double sx, double sy);
    static bool multiPolygonScale(JWMultiPolygon* polygons, const JWRawPoint* center, double sx,
                                  double sy);
    static bool geometryScale(JWGeometry* geometry, const JWRawPoint* center, double sx, double sy);
    /// @}

    /// @name Reflect
    /// @{
    static bool multiPointReflect(JWMultiPoint* points, const JWRawPoint* center);
    static bool ringReflect(JWRing* ring, const JWRawPoint* center);
    static bool lineStringReflect(JWLineString* line, const JWRawPoint* center);
    static bool multiLineStringReflect(JWMultiLineString* lines, const JWRawPoint* center);
    static bool polygonReflect(JWPolygon* polygon, const JWRawPoint* center);
    static bool multiPolygonReflect(JWMultiPolygon* polygons, const JWRawPoint* center);
    /// @}

    /// @name Shear
    /// @{
    static bool multiPointShear(JWMultiPoint* points, double k, bool alongX);
    static bool ringShear(JWRing* ring, double k, bool alongX);
    static bool lineStringShear(JWLineString* line, double k, bool alongX);
    static bool multiLineStringShear(JWMultiLineString* lines, double k, bool alongX);
    static bool polygonShear(JWPolygon* polygon, double k, bool alongX);
    static bool multiPolygonShear(JWMultiPolygon* polygons, double k, bool alongX);
    /// @}

    /// @name Fit to control points and apply
    /// @{
    static bool multiPointAffineTransform(JWMultiPoint* multiPoint, const JWGCP* points, int n);
    static bool ringAffineTransform(JWRing* ring, const JWGCP* points, int n);
    static bool lineStringAffineTransform(JWLineString* line, const JWGCP* points, int n);
    static bool multiLineStringAffineTransform(JWMultiLineString* lines, const JWGCP* points,
                                               int n);
    static bool polygonAffineTransform(JWPolygon* polygon, const JWGCP* points, int n);
    static bool multiPolygonAffineTransform(JWMultiPolygon* polygons, const JWGCP* points, int n);
    static bool geometryAffineTransform(JWGeometry* geometry, const JWGCP* points, int n);
    /// @}

    /// @name Apply a matrix
    /// @{
    static bool multiPointAffineTransformByMatrix(JWMultiPoint* points, const double* matrix);
    static bool ringAffineTransformByMatrix(JWRing* ring, const double* matrix);
    static bool lineStringAffineTransformByMatrix(JWLineString* line, const double* matrix);
    static bool multiLineStringAffineTransformByMatrix(JWMultiLineString* lines,
                                                       const double* matrix);
    static bool polygonAffineTransformByMatrix(JWPolygon* polygon, const double* matrix);
    static bool multiPolygonAffineTransformByMatrix(JWMultiPolygon* polygons, const double* matrix);
    static bool geometryAffineTransformByMatrix(JWGeometry* geometry, const double* matrix);
    /// @}

    /// Writes each feature of `input`, mapped by a matrix, with its attributes to `output`, a layer
    /// without fields, in the order of the input and in one transaction. Features without a
    /// geometry go through as they are. The output is declared of the input's type.
    ///
    /// The result is the same, bit for bit, for any number of threads and any block size.
    /// \param blockSize  features held at a time; 0 or less for all
    /// \param threads    0 or less for one per core
    /// \param report     may be null; receives features read, empty, written, the rejected ones
    ///     (a coordinate that is not finite, before or after: they are missing from the output),
    ///     areas and vertices
    /// \return the number of features written; −1 with the last error set, and nothing written,
    ///     for null, a matrix that is not finite, a failed read or write, and when the progress
    ///     callback stopped it; −3 when the output has fields already
    static int transformLayer(JWFeatureLayer* input, JWFeatureLayer* output, const double* matrix,
                              int blockSize = 0, int threads = 1, JWLayerReport* report = nullptr);
};

}  // namespace jws

#endif  // JW_GEOMETRYTRANSFORM_H
