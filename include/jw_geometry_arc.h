// SPDX-License-Identifier: MIT
//
// Curves that are not polylines: circular and elliptic arcs and Bézier curves. Operations of the
// library measure, copy and pass them through; they have no well-known form.
#ifndef JW_GEOMETRY_ARC_H
#define JW_GEOMETRY_ARC_H

#include <vector>

#include "jw_geometry_curve.h"

namespace jws {

/// What circular and elliptic arcs share: the points centre + u·cos t + v·sin t for t from the
/// start parameter over the sweep, with u and v two conjugate half-diameters. Every scaling and
/// rotation maps such an arc onto such an arc exactly, so none is approximated.
class JW_API JWArc : public JWCurve {
  public:
    enumJWGeometryType getGeometryType() const override { return JWGeometryCurve; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBUnknown; }
    /// True when the centre is NaN.
    bool isEmpty() const override;
    JWEnvelop getEnvelop() const override { return envelop; }
    void setEnvelop(const JWEnvelop& e) override { envelop = e; }
    void setEmpty() override;
    void geoNormalize() override {}
    void move(double dx, double dy) override;
    void scale(const JWRawPoint& about, double sx, double sy) override;
    void rotate(const JWRawPoint& about, double angle) override;
    /// Recomputes the tight rectangle of the arc, not of its ellipse.
    void updateEnvelop() override;

    const JWRawPoint* getFromPointPtr() const override { return isEmpty() ? nullptr : &fromPoint; }
    const JWRawPoint* getToPointPtr() const override { return isEmpty() ? nullptr : &toPoint; }
    void queryFromPoint(JWRawPoint& p) const override;
    void queryToPoint(JWRawPoint& p) const override;
    /// Starts the arc where its ellipse meets the ray from the centre through `p`; the end and the
    /// sense stay. A `p` at the centre, NaN, or a flat ellipse changes nothing.
    void setFromPoint(const JWRawPoint& p) override;
    /// Ends the arc where its ellipse meets the ray from the centre through `p`; as `setFromPoint`.
    void setToPoint(const JWRawPoint& p) override;
    void reverseOrientation() override;
    bool isClosed() const override { return false; }
    /// Returns the length: exact for a circle, else by adaptive Gauss–Legendre quadrature to about
    /// 1e-12 of the longer half-axis.
    double getLength() const override;

    const JWRawPoint& getCenterPoint() const { return center; }
    /// Returns the start parameter in radians; for a circle as constructed, the angle.
    double getStartAngle() const { return start; }
    /// Returns the sweep in radians, positive counter-clockwise as long as no mirroring took place.
    double getSweepAngle() const { return sweep; }
    /// Returns the point at `fraction` of the sweep: 0 the start, 1 the end.
    JWRawPoint getPointAlong(double fraction) const;

  protected:
    JWArc() { JWArc::setEmpty(); }
    JWArc(const JWRawPoint& center_, const JWRawPoint& u_, const JWRawPoint& v_, double start_,
          double sweep_);
    /// Longer and shorter half-axis of the ellipse.
    void axes(double& major, double& minor) const;

  private:
    JWRawPoint pointAt(double t) const;
    void refreshEnds();
    void setSweepEnds(double from, double to);
    bool parameterOf(const JWRawPoint& p, double& t) const;

    JWRawPoint center, u, v;
    double start, sweep;
    JWRawPoint fromPoint, toPoint;
    JWEnvelop envelop;
};

/// A circular arc. An unequal scaling makes its points those of an ellipse, without loss.
class JW_API JWCircular : public JWArc {
  public:
    /// Makes an empty arc.
    JWCircular() = default;
    /// \param startAngle  radians from the x axis, counter-clockwise
    /// \param sweepAngle  radians, negative for clockwise; ±2π is the whole circle
    JWCircular(const JWRawPoint& center_, double radius, double startAngle, double sweepAngle)
        : JWArc(center_, JWRawPoint(radius, 0), JWRawPoint(0, radius), startAngle, sweepAngle) {}

    JWCircular* clone() const override { return new JWCircular(*this); }
    /// Returns the radius; after an unequal scaling the longer half-axis.
    double getRadius() const;
};

/// An elliptic arc.
class JW_API JWElliptic : public JWArc {
  public:
    /// Makes an empty arc.
    JWElliptic() = default;
    /// \param a,b  half-axes; \param rotation  of the first from the x axis, radians
    /// \param startAngle,sweepAngle  of the parameter t in (a·cos t, b·sin t), radians
    JWElliptic(const JWRawPoint& center_, double a, double b, double rotation, double startAngle,
               double sweepAngle);

    JWElliptic* clone() const override { return new JWElliptic(*this); }
    double getSemiMajorAxis() const;
    double getSemiMinorAxis() const;
};

/// A Bézier curve over its control points, of degree points − 1, and a maker of smoothed lines.
/// Degrees go up to 170, the last whose factorial is a finite double.
class JW_API JWBezierCurve : public JWCurve {
  public:
    static constexpr int kMaxDegree = 170;

    /// Makes an empty curve and its factorial table.
    JWBezierCurve();
    /// Makes the curve over the points; more than `kMaxDegree` + 1 leave it empty. The envelope is
    /// up to date.
    explicit JWBezierCurve(const std::vector<JWRawPoint>& controlPoints_);

    enumJWGeometryType getGeometryType() const override { return JWGeometryCurve; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBUnknown; }
    bool isEmpty() const override { return controlPoints.empty(); }
    /// Returns the stored rectangle of the control points, which holds the curve.
    JWEnvelop getEnvelop() const override { return envelop; }
    void setEnvelop(const JWEnvelop& e) override { envelop = e; }
    void setEmpty() override;
    void geoNormalize() override {}
    void move(double dx, double dy) override;
    void scale(const JWRawPoint& about, double sx, double sy) override;
    void rotate(const JWRawPoint& about, double angle) override;
    JWBezierCurve* clone() const override { return new JWBezierCurve(*this); }
    void updateEnvelop() override;

    const JWRawPoint* getFromPointPtr() const override {
        return isEmpty() ? nullptr : &controlPoints.front();
    }
    const JWRawPoint* getToPointPtr() const override {
        return isEmpty() ? nullptr : &controlPoints.back();
    }
    void queryFromPoint(JWRawPoint& p) const override;
    void queryToPoint(JWRawPoint& p) const override;
    void setFromPoint(const JWRawPoint& p) override;
    void setToPoint(const JWRawPoint& p) override;
    void reverseOrientation() override;
    bool isClosed() const override { return false; }
    /// Returns the length by adaptive Gauss–Legendre quadrature, to about 1e-12 of the length of
    /// the control polygon.
    double getLength() const override;

    const std::vector<JWRawPoint>& getControlPoints() const { return controlPoints; }
    /// Returns the point at `u` from 0 to 1; the end points are exact. NaN for an empty curve.
    JWRawPoint getPointAt(double u) const;
    /// Returns the points at u = k/steps, k = 0 to steps; empty for an empty curve, steps < 1, and
    /// more than 134217727 (2^27 - 1) points or than memory holds.
    std::vector<JWRawPoint> samplePoints(int steps) const;

    /// Returns a new line of Bézier curves over the points of `line`; the caller owns it, and its
    /// envelope is up to date.
    ///
    /// Each curve has `degree` segments of the line under it, the last what remains, and shares its
    /// ends with its neighbours; it contributes the points at u = k/steps. So (0,0),(1,2),(2,0)
    /// with degree 2 and 2 steps gives (0,0),(1,1),(2,0). The control points of this curve play no
    /// part.
    ///
    /// \param degree  at least 1; beyond `kMaxDegree` as `kMaxDegree`
    /// \param steps   at least 1
    /// \return a copy of the line for fewer than 2 points, a bad parameter or more than 134217727
    ///     (2^27 - 1) result points or than memory holds; null for a null line
    JWLineString* makeBezierCurve(const JWLineString* line, int degree, int steps) const;
    JWLineString* makeBezierCurve(const JWLineString& line, int degree, int steps) const {
        return makeBezierCurve(&line, degree, steps);
    }
    /// Does the same on a list of points. Returns false, and leaves `result` as it is, where
    /// `makeBezierCurve` copies the line.
    bool smoothPoints(const std::vector<JWRawPoint>& points, int degree, int steps,
                      std::vector<JWRawPoint>& result) const;

  private:
    double bernstein(int degree, int k, double u) const;
    JWRawPoint evaluate(const JWRawPoint* points, int degree, double u) const;

    std::vector<JWRawPoint> controlPoints;
    std::vector<double> factorials;
    JWEnvelop envelop;
};

}  // namespace jws

#endif  // JW_GEOMETRY_ARC_H
