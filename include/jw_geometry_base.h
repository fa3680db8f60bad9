// SPDX-License-Identifier: MIT
//
// The root of the geometry classes and the point.
#ifndef JW_GEOMETRY_BASE_H
#define JW_GEOMETRY_BASE_H

#include <cmath>
#include <cstddef>
#include <type_traits>

#include "jw_codes.h"
#include "jw_envelop.h"
#include "jw_export.h"

namespace jws {

/// The abstract root of all geometries; holds the virtual-table pointer only.
///
/// Geometries are made with `new` or as locals, copied with `clone`, copy constructors and
/// assignment, and deleted through the virtual destructor. Containers store copies of what is added
/// by reference or pointer to a constant; rvalue overloads take the content over instead.
///
/// The stored envelope is not kept up by list edits (adding, inserting, replacing, removing points
/// or members, setting an end of a curve): it is stale until `updateEnvelop`. Constructors and
/// `setEmpty` store the invalid envelope; `move`, `scale`, `rotate`, `geoNormalize` and the imports
/// leave it up to date.
///
/// Copies, `clone` and list edits take memory as the standard containers do: when there is none
/// they throw `std::bad_alloc` and leave the object as it was. All other operations report it by
/// their answer.
///
/// The encoding operations (`getWKBSize` to `exportToWkt`) have one body each, here, that switches
/// on `getGeometryType` and takes the object for the class that the code names. A class of one's
/// own derived directly from an abstract class overrides them.
class JW_API JWGeometry {
  public:
    virtual ~JWGeometry();
    /// Returns 2: coordinates are two-dimensional.
    virtual int getDimension() const;
    virtual enumJWGeometryType getGeometryType() const = 0;
    /// Returns the well-known binary type, `JWWKBUnknown` for classes without one of their own.
    virtual enumJWWKBGeometryType getGeometryWKBType() const = 0;
    /// True when the point or member list is empty; for a point, when both coordinates are NaN.
    virtual bool isEmpty() const = 0;
    /// Returns the stored envelope as it is, stale or not. Points and segments have no stored one:
    /// theirs always fits.
    virtual JWEnvelop getEnvelop() const = 0;
    /// Stores an envelope. Does nothing for points and segments.
    virtual void setEnvelop(const JWEnvelop& envelop) = 0;
    /// Removes all coordinates and stores the invalid envelope.
    virtual void setEmpty() = 0;
    /// Brings rings into standard form: closes each; turns a bare ring and the exterior ring of a
    /// polygon counter-clockwise and holes clockwise. Nothing is dropped, no ring starts elsewhere;
    /// a ring of zero or undefined area keeps its direction. Members of collections likewise; other
    /// geometries have no other form.
    virtual void geoNormalize() = 0;
    /// Shifts every coordinate.
    virtual void move(double dx, double dy) = 0;
    /// Scales about `center` by `sx` along x and `sy` along y. `center` may lie in this geometry.
    virtual void scale(const JWRawPoint& center, double sx, double sy) = 0;
    /// Rotates about `center` by `angle` radians counter-clockwise. `center` may lie in this
    /// geometry.
    virtual void rotate(const JWRawPoint& center, double angle) = 0;
    /// Returns a new copy of the most derived type; the caller owns it.
    virtual JWGeometry* clone() const = 0;
    /// Recomputes the stored envelope from the coordinates, members first. A NaN coordinate is
    /// skipped; where an axis has no other, as in an empty geometry, the envelope is invalid.
    virtual void updateEnvelop() = 0;

    /// Returns the exact number of bytes that `exportToWkb` writes; 0 for a geometry that it
    /// refuses.
    virtual std::size_t getWKBSize() const;
    /// Replaces the content by the geometry in a buffer of unknown length.
    ///
    /// Same as the form with a length, but trusts the counts in the data: only for buffers that are
    /// known to be whole. The flag has no effect here, as the end is not known.
    virtual enumJWDataErr importFromWkb(const unsigned char* wkb, bool allowTrailing);
    /// Writes well-known binary in the byte order given, `getWKBSize` bytes, two-dimensional: the
    /// z and m of points are not written. An empty point is written with NaN coordinates. A ring is
    /// written as a polygon of one ring, a segment as a line string of two points; arcs, Bézier
    /// curves and dynamic points, and bags that hold one, give
    /// `JWDataErrUnsupportedGeometryType` and write nothing. More members or points than 32 bits
    /// count do not occur.
    /// \param order  one that is neither gives `JWDataErrUnsupportedOperation`
    /// \param wkb  at least `getWKBSize` bytes; null gives `JWDataErrInvalidHandle`
    virtual enumJWDataErr exportToWkb(enumJWWKBByteOrder order, unsigned char* wkb) const;
    /// Replaces the content by the geometry in a text ended by a zero byte.
    ///
    /// Tags in any case, `EMPTY`, `Z`, `M`, `ZM` joined or apart, three or four ordinates without a
    /// tag, `LINEARRING`, both forms of `MULTIPOINT`, and a leading `SRID=n;`, which is skipped. A
    /// point keeps z and m, others drop them. Rings are closed; the envelope is up to date. The
    /// text must be of this class's own type; a ring also takes a polygon of one ring, a segment a
    /// line string of two points. Collections nest at most 128 deep.
    /// \param allowTrailing  true: whatever follows the geometry is ignored; false: only white
    ///     space may follow, anything else gives `JWDataErrCorruptData`
    /// \return as `importFromWkb`; on an error the geometry is left empty
    virtual enumJWDataErr importFromWkt(const char* wkt, bool allowTrailing = false);
    /// Writes well-known text, two-dimensional, each coordinate in the shortest form that reads
    /// back as the same bits, e.g. `POLYGON ((0 0, 10 0, 10 10, 0 0))`. A bare ring is written as
    /// `LINEARRING`, a segment as `LINESTRING`; what has no well-known form gives
    /// `JWDataErrUnsupportedGeometryType`.
    /// \param wkt  receives a new text, released with `freeWkt`; null on an error
    virtual enumJWDataErr exportToWkt(char** wkt) const;

    /// Replaces the content by the geometry in `length` bytes of well-known binary.
    ///
    /// Either byte order, changing between members; the ISO (1000, 2000, 3000) and extended (high
    /// bits, SRID skipped) forms of z and m. Points keep z and m, others drop them; a point of NaN
    /// coordinates is empty. Rings are closed; the envelope is up to date. The data must be of this
    /// class's own type; a ring also takes a polygon of at most one ring, a segment a line string
    /// of two points or none. Counts are checked against the bytes that are left before anything is
    /// allocated. Collections nest at most 128 deep.
    /// \param allowTrailing  true: bytes after the geometry are ignored; false: they give
    ///     `JWDataErrCorruptData`
    /// \return `JWDataErrNone`; `JWDataErrNotEnoughData` (cut short), `JWDataErrCorruptData`,
    ///     `JWDataErrUnsupportedGeometryType` (another type), `JWDataErrNotEnoughMemory`,
    ///     `JWDataErrInvalidHandle` (null with a length). On an error the geometry is left empty.
    /// Cost: one pass; points in the machine's own byte order are copied in one piece.
    enumJWDataErr importFromWkb(const unsigned char* wkb, std::size_t length,
                                bool allowTrailing = false);
    /// Same, for a length of any other integer type, so that none is taken for the flag of the form
    /// without a length. A negative length is 0.
    template <
        class Length,
        std::enable_if_t<std::is_integral_v<Length> && !std::is_same_v<Length, bool>, int> = 0>
    enumJWDataErr importFromWkb(const unsigned char* wkb, Length length,
                                bool allowTrailing = false) {
        const std::size_t size = length > 0 ? static_cast<std::size_t>(length) : 0;
        return importFromWkb(wkb, size, allowTrailing);
    }

    /// Releases a text from `exportToWkt`; null is allowed.
    static void freeWkt(char* wkt);

  protected:
    JWGeometry() = default;
    JWGeometry(const JWGeometry&) = default;
    JWGeometry(JWGeometry&&) = default;
    JWGeometry& operator=(const JWGeometry&) = default;
    JWGeometry& operator=(JWGeometry&&) = default;
};

/// A point with x, y, z and m. Operations work on x and y; z and m are carried along.
class JW_API JWPoint : public JWGeometry {
  public:
    /// Makes the point (0, 0, 0, 0), which is not empty.
    JWPoint() : x(0), y(0), z(0), m(0) {}
    JWPoint(double x_, double y_) : x(x_), y(y_), z(0), m(0) {}
    JWPoint(double x_, double y_, double z_, double m_) : x(x_), y(y_), z(z_), m(m_) {}
    explicit JWPoint(const JWRawPoint& p) : x(p.x), y(p.y), z(0), m(0) {}

    enumJWGeometryType getGeometryType() const override { return JWGeometryPoint; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBPoint; }
    bool isEmpty() const override { return std::isnan(x) && std::isnan(y); }
    JWEnvelop getEnvelop() const override;
    void setEnvelop(const JWEnvelop&) override {}
    /// Makes x and y NaN, z and m 0.
    void setEmpty() override;
    void geoNormalize() override {}
    void move(double dx, double dy) override;
    void scale(const JWRawPoint& center, double sx, double sy) override;
    void rotate(const JWRawPoint& center, double angle) override;
    JWPoint* clone() const override { return new JWPoint(*this); }
    void updateEnvelop() override {}

    double getX() const { return x; }
    double getY() const { return y; }
    double getZ() const { return z; }
    double getM() const { return m; }
    double& getX() { return x; }
    double& getY() { return y; }
    double& getZ() { return z; }
    double& getM() { return m; }
    void setX(double v) { x = v; }
    void setY(double v) { y = v; }
    void setZ(double v) { z = v; }
    void setM(double v) { m = v; }
    void setXY(double x_, double y_) {
        x = x_;
        y = y_;
    }
    /// Copies x and y into `p`.
    void queryRawPoint(JWRawPoint& p) const { p.set(x, y); }
    JWRawPoint getRawPoint() const { return {x, y}; }

    /// Compares x and y exactly, as everything here works in the plane; z and m do not count.
    bool operator==(const JWPoint& o) const { return x == o.x && y == o.y; }
    bool operator!=(const JWPoint& o) const { return !(*this == o); }
    /// Orders by x, and by y where the x values are exactly equal.
    bool operator<(const JWPoint& o) const { return x < o.x || (x == o.x && y < o.y); }
    bool operator>(const JWPoint& o) const { return o < *this; }

  private:
    double x, y, z, m;
};

/// A point that moves: where it is at its own time, and how fast it goes. The geometry operations
/// see the position at that time; scaling and rotation take the velocity along.
class JW_API JWDynamicPoint : public JWGeometry {
  public:
    /// Makes a resting point at (0, 0), time 0.
    JWDynamicPoint() : JWDynamicPoint(JWRawPoint(0, 0), 0, 0, 0) {}
    /// \param vx,vy  velocity, layer units per unit of time
    JWDynamicPoint(const JWRawPoint& position_, double vx, double vy, double time_)
        : position(position_), velocity(vx, vy), time(time_) {}

    enumJWGeometryType getGeometryType() const override { return JWGeometryDynamicPoint; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBUnknown; }
    bool isEmpty() const override { return std::isnan(position.x) && std::isnan(position.y); }
    JWEnvelop getEnvelop() const override;
    void setEnvelop(const JWEnvelop&) override {}
    /// Makes the position NaN and stops the point at time 0.
    void setEmpty() override;
    void geoNormalize() override {}
    void move(double dx, double dy) override { position.move(dx, dy); }
    void scale(const JWRawPoint& center, double sx, double sy) override;
    void rotate(const JWRawPoint& center, double angle) override;
    JWDynamicPoint* clone() const override { return new JWDynamicPoint(*this); }
    void updateEnvelop() override {}

    const JWRawPoint& getPosition() const { return position; }
    /// Returns the velocity as a vector.
    const JWRawPoint& getVelocity() const { return velocity; }
    double getTime() const { return time; }
    void setPosition(const JWRawPoint& p) { position = p; }
    void setVelocity(double vx, double vy) { velocity.set(vx, vy); }
    void setTime(double t) { time = t; }
    /// Returns the position at time `t`, before or after the point's own time.
    JWRawPoint getPositionAt(double t) const {
        return {position.x + velocity.x * (t - time), position.y + velocity.y * (t - time)};
    }
    /// Lets the point travel until time `t`, which becomes its own.
    void advanceTo(double t) {
        position = getPositionAt(t);
        time = t;
    }

  private:
    JWRawPoint position, velocity;
    double time;
};

}  // namespace jws

#endif  // JW_GEOMETRY_BASE_H
