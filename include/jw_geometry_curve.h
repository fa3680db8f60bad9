// SPDX-License-Identifier: MIT
//
// One-dimensional geometries: the abstract curves, the straight segment, and the point sequences,
// which are the line string and the ring. Arcs and Bézier curves are in jw_geometry_arc.h.
#ifndef JW_GEOMETRY_CURVE_H
#define JW_GEOMETRY_CURVE_H

#include <cassert>
#include <utility>
#include <vector>

#include "jw_geometry_base.h"

namespace jws {

/// The abstract curve: a geometry that runs from a point to a point.
class JW_API JWCurve : public JWGeometry {
  public:
    /// Returns the address of the first point inside the curve, valid until the curve changes; null
    /// when the curve is empty.
    virtual const JWRawPoint* getFromPointPtr() const = 0;
    /// Returns the address of the last point; as `getFromPointPtr`.
    virtual const JWRawPoint* getToPointPtr() const = 0;
    /// Copies the first point into `p`; an empty curve leaves `p` as it is.
    virtual void queryFromPoint(JWRawPoint& p) const = 0;
    /// Copies the last point into `p`; an empty curve leaves `p` as it is.
    virtual void queryToPoint(JWRawPoint& p) const = 0;
    /// Replaces the first point; an empty curve stays empty.
    virtual void setFromPoint(const JWRawPoint& p) = 0;
    /// Replaces the last point; an empty curve stays empty.
    virtual void setToPoint(const JWRawPoint& p) = 0;
    /// Makes the curve run the other way.
    virtual void reverseOrientation() = 0;
    /// Tells whether curves of this class are closed: decided by the class, not by the coordinates.
    virtual bool isClosed() const = 0;
    /// Returns the length in layer units, 0 when empty.
    virtual double getLength() const = 0;
};

/// The abstract curve of two points.
class JW_API JWSegment : public JWCurve {};

/// A straight segment.
class JW_API JWLine : public JWSegment {
  public:
    /// Makes an empty segment.
    JWLine();
    JWLine(const JWRawPoint& from, const JWRawPoint& to) : fromPoint(from), toPoint(to) {}
    JWLine(double x1, double y1, double x2, double y2) : fromPoint(x1, y1), toPoint(x2, y2) {}

    enumJWGeometryType getGeometryType() const override { return JWGeometryLine; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBUnknown; }
    /// True when all four coordinates are NaN.
    bool isEmpty() const override;
    JWEnvelop getEnvelop() const override;
    void setEnvelop(const JWEnvelop&) override {}
    /// Makes all four coordinates NaN.
    void setEmpty() override;
    void geoNormalize() override {}
    void move(double dx, double dy) override;
    void scale(const JWRawPoint& center, double sx, double sy) override;
    void rotate(const JWRawPoint& center, double angle) override;
    JWLine* clone() const override { return new JWLine(*this); }
    void updateEnvelop() override {}

    const JWRawPoint* getFromPointPtr() const override { return &fromPoint; }
    const JWRawPoint* getToPointPtr() const override { return &toPoint; }
    void queryFromPoint(JWRawPoint& p) const override { p = fromPoint; }
    void queryToPoint(JWRawPoint& p) const override { p = toPoint; }
    void setFromPoint(const JWRawPoint& p) override { fromPoint = p; }
    void setToPoint(const JWRawPoint& p) override { toPoint = p; }
    void reverseOrientation() override { std::swap(fromPoint, toPoint); }
    bool isClosed() const override { return false; }
    double getLength() const override;

    const JWRawPoint& getFromPoint() const { return fromPoint; }
    const JWRawPoint& getToPoint() const { return toPoint; }
    double getFromPointX() const { return fromPoint.x; }
    double getFromPointY() const { return fromPoint.y; }
    double getToPointX() const { return toPoint.x; }
    double getToPointY() const { return toPoint.y; }
    /// Returns to minus from along x.
    double getSpanX() const { return toPoint.x - fromPoint.x; }
    /// Returns to minus from along y.
    double getSpanY() const { return toPoint.y - fromPoint.y; }
    void putCoords(double x1, double y1, double x2, double y2) {
        fromPoint.set(x1, y1);
        toPoint.set(x2, y2);
    }
    /// Either point may be one of this segment's own.
    void putCoords(const JWRawPoint& from, const JWRawPoint& to) {
        putCoords(from.x, from.y, to.x, to.y);
    }
    void putFromPointCoords(double x, double y) { fromPoint.set(x, y); }
    void putToPointCoords(double x, double y) { toPoint.set(x, y); }
    void queryCoords(JWRawPoint& from, JWRawPoint& to) const {
        from = fromPoint;
        to = toPoint;
    }
    /// Returns the from-point for 0, the to-point for 1.
    JWRawPoint& operator[](int i) {
        assert(i == 0 || i == 1);
        return i == 0 ? fromPoint : toPoint;
    }
    const JWRawPoint& operator[](int i) const {
        assert(i == 0 || i == 1);
        return i == 0 ? fromPoint : toPoint;
    }
    /// True when both points are exactly equal, in the same order.
    bool operator==(const JWLine& o) const {
        return fromPoint == o.fromPoint && toPoint == o.toPoint;
    }
    bool operator!=(const JWLine& o) const { return !(*this == o); }

  private:
    JWRawPoint fromPoint, toPoint;
};

/// The abstract curve made of a point sequence.
class JW_API JWPolyCurve : public JWCurve {
  public:
    /// Drops points in place by Douglas and Peucker's algorithm (1973): every dropped point lies
    /// within `tolerance` of the segment that replaces it. End points stay; a ring that would fall
    /// below 4 stored points stays as it is, and so does each such ring of a polygon. A point whose
    /// distance is not a number stays. The envelope is up to date afterwards when something
    /// changed. Cost: O(n log n) as a rule, O(n²) at worst; no recursion.
    /// \param tolerance  layer units; zero, negative or NaN changes nothing
    /// \return true when a point was dropped
    virtual bool generalizeByDouglasPoiker(double tolerance) = 0;
    /// Replaces the points by Bézier curves over them, as `JWBezierCurve::makeBezierCurve`; rings
    /// are smoothed as the closed list that they store, and one that would fall below 4 stored
    /// points stays as it is. The envelope is up to date afterwards when something changed.
    /// \param degree  segments of the input under each curve, at least 1
    /// \param steps   points per curve, at least 1
    /// \return false, and nothing changed, for fewer than 2 points, a bad parameter or more result
    ///     points than memory holds
    virtual bool soomthByBeizer(int degree, int steps) = 0;
    /// Cuts the curve at the place nearest to `p`, the first of several.
    ///
    /// The cut point, which is the foot of the perpendicular or a vertex, ends the first part and
    /// starts the second. Parts are line strings, those of a ring too, whose course starts at its
    /// first point; their envelopes are up to date. Both belong to the caller.
    /// \param first,second  receive the parts, null where the answer is false
    /// \return false when an output is missing, for fewer than 2 points, when the place is an end
    /// of the curve, when `p` or a
    ///     coordinate makes every distance NaN, and for polygons, which have no single course
    virtual bool splitAtPoint(const JWRawPoint& p, JWPolyCurve** first,
                              JWPolyCurve** second) const = 0;
    /// Cuts the curve at `distance` (layer units) along it; otherwise as `splitAtPoint`.
    /// \return false also for distances that are not between 0 and the length
    virtual bool splitAtDistance(double distance, JWPolyCurve** first,
                                 JWPolyCurve** second) const = 0;
    /// Returns the area in square layer units; 0 for a line string.
    virtual double getArea() const = 0;
};

/// What line strings and rings share: a contiguous list of raw points and the stored envelope.
/// Indices are counted from 0; accessors assert theirs in debug builds and check nothing else.
/// Addresses of points stay valid until the list is next changed.
class JW_API JWPointSequence : public JWPolyCurve {
  public:
    bool isEmpty() const override { return pointList.empty(); }
    JWEnvelop getEnvelop() const override { return envelop; }
    void setEnvelop(const JWEnvelop& e) override { envelop = e; }
    void setEmpty() override;
    void move(double dx, double dy) override;
    void scale(const JWRawPoint& center, double sx, double sy) override;
    void rotate(const JWRawPoint& center, double angle) override;
    void updateEnvelop() override;

    const JWRawPoint* getFromPointPtr() const override {
        return pointList.empty() ? nullptr : &pointList.front();
    }
    const JWRawPoint* getToPointPtr() const override {
        return pointList.empty() ? nullptr : &pointList.back();
    }
    void reverseOrientation() override;
    double getLength() const override;
    bool splitAtPoint(const JWRawPoint& p, JWPolyCurve** first,
                      JWPolyCurve** second) const override;
    bool splitAtDistance(double distance, JWPolyCurve** first, JWPolyCurve** second) const override;

    /// Returns the number of stored points; that of a closed ring includes the closing one.
    int getPointCount() const { return static_cast<int>(pointList.size()); }
    /// Returns points − 1, and 0 when that is not positive.
    int getSegmentCount() const { return pointList.empty() ? 0 : getPointCount() - 1; }
    JWRawPoint getPointAt(int atLocation) const { return *getPointPtrAt(atLocation); }
    JWRawPoint* getPointPtrAt(int atLocation) {
        assert(atLocation >= 0 && atLocation < getPointCount());
        return pointList.data() + atLocation;
    }
    const JWRawPoint* getPointPtrAt(int atLocation) const {
        assert(atLocation >= 0 && atLocation < getPointCount());
        return pointList.data() + atLocation;
    }
    /// Copies point `atLocation` into `p`.
    void queryPointAt(JWRawPoint& p, int atLocation) const { p = *getPointPtrAt(atLocation); }
    double getX(int atLocation) const { return getPointPtrAt(atLocation)->x; }
    double getY(int atLocation) const { return getPointPtrAt(atLocation)->y; }
    /// Returns the contiguous array of the points, to read or to edit in place.
    const JWRawPoint* getPointsPtr() const { return pointList.data(); }
    JWRawPoint* getPointsPtr() { return pointList.data(); }
    /// Returns the list itself. Editing it leaves the envelope stale and a ring as open or closed
    /// as the edit makes it.
    const std::vector<JWRawPoint>& getPointList() const { return pointList; }
    std::vector<JWRawPoint>& getPointList() { return pointList; }
    /// Returns a new array of all points, allocated with `::operator new` and released by the
    /// caller with `::operator delete`; not null even when there is no point, null when memory is
    /// short.
    JWRawPoint* getAllPoints() const;
    /// Returns the segment from point `atLocation` to the next, which must exist.
    JWLine getSegmentAt(int atLocation) const {
        assert(atLocation >= 0 && atLocation < getSegmentCount());
        return {pointList[atLocation], pointList[atLocation + 1]};
    }

    /// Appends a point as it is; a ring is not closed by it. The point may be one of this list.
    void addPoint(const JWRawPoint& p) { pointList.push_back(p); }
    void addPoint(double x, double y) { pointList.emplace_back(x, y); }
    /// Makes room for `n` points in all.
    void reserve(int n) {
        if (n > 0) pointList.reserve(n);
    }
    /// Inserts before point `atLocation`; a null array or n <= 0 inserts nothing. The points may be
    /// of this list.
    void insertPointsAt(const JWRawPoint* points, int n, int atLocation);
    void insertPointsAt(const std::vector<JWRawPoint>& points, int atLocation) {
        insertPointsAt(points.data(), static_cast<int>(points.size()), atLocation);
    }
    void updatePointAt(const JWRawPoint& p, int atLocation) { *getPointPtrAt(atLocation) = p; }
    void deletePointAt(int atLocation);
    /// Removes all points; the envelope becomes stale.
    void clearAllPoints() { pointList.clear(); }

  protected:
    JWPointSequence() : envelop(JWEnvelop::invalid()) {}
    /// Appends n points, which may lie in this list, keeping room for `spare` more; a null array or
    /// n <= 0 appends nothing.
    void appendPoints(const JWRawPoint* points, int n, int spare);
    /// Douglas–Peucker; changes nothing when fewer than `minimum` points would remain.
    bool generalize(double tolerance, int minimum);
    /// Bézier smoothing; changes nothing when fewer than `minimum` points would come out.
    bool smooth(int degree, int steps, std::size_t minimum);

    std::vector<JWRawPoint> pointList;
    JWEnvelop envelop;
};

/// An open polyline. A line whose ends coincide is still an open one.
class JW_API JWLineString : public JWPointSequence {
  public:
    JWLineString() = default;
    /// Copies n points; the envelope is up to date.
    JWLineString(const JWRawPoint* points, int n);
    /// Takes the points over; the envelope is up to date.
    explicit JWLineString(std::vector<JWRawPoint> points);

    enumJWGeometryType getGeometryType() const override { return JWGeometryLineString; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBLineString; }
    void geoNormalize() override {}
    JWLineString* clone() const override { return new JWLineString(*this); }
    void queryFromPoint(JWRawPoint& p) const override {
        assert(!pointList.empty());
        if (!pointList.empty()) p = pointList.front();
    }
    void queryToPoint(JWRawPoint& p) const override {
        assert(!pointList.empty());
        if (!pointList.empty()) p = pointList.back();
    }
    void setFromPoint(const JWRawPoint& p) override {
        assert(!pointList.empty());
        if (!pointList.empty()) pointList.front() = p;
    }
    void setToPoint(const JWRawPoint& p) override {
        assert(!pointList.empty());
        if (!pointList.empty()) pointList.back() = p;
    }
    bool isClosed() const override { return false; }
    bool generalizeByDouglasPoiker(double tolerance) override { return generalize(tolerance, 2); }
    bool soomthByBeizer(int degree, int steps) override;
    double getArea() const override { return 0.0; }

    /// Appends n points, which may lie in this list; a null array or n <= 0 appends nothing.
    void addPoints(const JWRawPoint* points, int n) { appendPoints(points, n, 0); }
    void addPoints(const std::vector<JWRawPoint>& points) {
        appendPoints(points.data(), static_cast<int>(points.size()), 0);
    }
    /// Inserts before an existing point: unlike the other inserts this one does not take the end,
    /// for which there is `addPoint`.
    void insertPointAt(const JWRawPoint& p, int atLocation) {
        assert(atLocation >= 0 && atLocation < getPointCount());
        insertPointsAt(&p, 1, atLocation);
    }
    /// True when `p` lies exactly on one of the segments, decided without rounding; false for fewer
    /// than 2 points. Cost: O(n).
    bool isPointOnLine(const JWRawPoint& p) const;
    /// True when the points are exactly equal, in the same order.
    bool operator==(const JWLineString& o) const { return pointList == o.pointList; }
    bool operator!=(const JWLineString& o) const { return !(*this == o); }
};

/// A closed polyline: the first and the last stored point are equal, so a ring of n corners stores
/// n + 1 points and has n segments. Not a `JWLineString`, and as a geometry an area of type 14.
///
/// `addPoints`, the constructors and the imports close the ring; single-point edits and edits of
/// the list do not, `closeRing` does.
class JW_API JWRing : public JWPointSequence {
  public:
    JWRing() = default;
    /// Copies n points, in one allocation, and closes the ring; the envelope is up to date.
    JWRing(const JWRawPoint* points, int n);
    /// Takes the points over and closes the ring; the envelope is up to date.
    explicit JWRing(std::vector<JWRawPoint> points);

    enumJWGeometryType getGeometryType() const override { return JWGeometryRing; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBUnknown; }
    void geoNormalize() override;
    JWRing* clone() const override { return new JWRing(*this); }
    void queryFromPoint(JWRawPoint& p) const override {
        if (!pointList.empty()) p = pointList.front();
    }
    void queryToPoint(JWRawPoint& p) const override {
        if (!pointList.empty()) p = pointList.back();
    }
    /// Replaces the first point, and the last with it when the ring is closed.
    void setFromPoint(const JWRawPoint& p) override { setEnd(p, false); }
    /// Replaces the last point, and the first with it when the ring is closed.
    void setToPoint(const JWRawPoint& p) override { setEnd(p, true); }
    bool isClosed() const override { return true; }
    bool generalizeByDouglasPoiker(double tolerance) override { return generalize(tolerance, 4); }
    bool soomthByBeizer(int degree, int steps) override;
    /// Returns the signed area, positive for counter-clockwise rings; 0 for 3 stored points or
    /// fewer. Computed relative to the first point, so exact digits do not depend on where the ring
    /// lies; an open list counts as closed by a straight edge.
    double getArea() const override;

    JWRawPoint& operator[](int atLocation) { return *getPointPtrAt(atLocation); }
    const JWRawPoint& operator[](int atLocation) const { return *getPointPtrAt(atLocation); }

    /// Appends n points, which may lie in this list, and leaves the ring closed: the closing point
    /// of a ring already closed (at least two points, the first equal to the last) is taken off
    /// first, and the first point is repeated at the end if the last differs from it. An empty ring
    /// allocates once. A null array or n <= 0 changes nothing.
    void addPoints(const JWRawPoint* points, int n);
    void addPoints(const std::vector<JWRawPoint>& points) {
        addPoints(points.data(), static_cast<int>(points.size()));
    }
    /// Repeats the first point at the end if the last differs from it. On a closed or an empty ring
    /// it does nothing.
    void closeRing();
    /// Inserts before point `atLocation`, which may be the point count.
    void insertPointAt(const JWRawPoint& p, int atLocation) { insertPointsAt(&p, 1, atLocation); }

    /// True when `p` lies strictly inside by the crossing number; points of the boundary are
    /// outside, and so is everything for fewer than 4 stored points. Reads no stored envelope.
    /// Cost: O(n).
    bool isPointInRing(const JWRawPoint& p) const;
    bool isPointInRing(const JWPoint& p) const { return isPointInRing(p.getRawPoint()); }
    bool isPointInRing(double x, double y) const { return isPointInRing(JWRawPoint(x, y)); }
    /// True when `p` lies exactly on one of the segments, decided without rounding. Cost: O(n).
    bool isPointOnRingBoundary(const JWRawPoint& p) const;
    bool isPointOnRingBoundary(const JWPoint& p) const {
        return isPointOnRingBoundary(p.getRawPoint());
    }
    bool isPointOnRingBoundary(double x, double y) const {
        return isPointOnRingBoundary(JWRawPoint(x, y));
    }
    /// Returns the area centroid, computed relative to the first point. At zero or undefined area,
    /// and for 3 stored points or fewer, it is the mean of the corners, the closing point counted
    /// once; NaN for an empty ring.
    JWRawPoint getCentroid() const;
    /// Returns the direction by the sign of `getArea`.
    enumJWRingOrientation getOrientation() const;
    /// True when the points are exactly equal, in the same order.
    bool operator==(const JWRing& o) const { return pointList == o.pointList; }
    bool operator!=(const JWRing& o) const { return !(*this == o); }

  private:
    /// True when at least two points are stored, the last a repetition of the first; here NaN
    /// repeats NaN, so that such a ring is closed once only.
    bool hasClosingPoint() const;
    void setEnd(const JWRawPoint& p, bool last);
};

}  // namespace jws

#endif  // JW_GEOMETRY_CURVE_H
