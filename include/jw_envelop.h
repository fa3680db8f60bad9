// SPDX-License-Identifier: MIT
//
// The two value types under the geometry classes: a bare coordinate pair and an axis-parallel
// rectangle. Neither has a virtual table; both are trivially copyable.
#ifndef JW_ENVELOP_H
#define JW_ENVELOP_H

#include <type_traits>

#include "jw_codes.h"
#include "jw_export.h"

namespace jws {

/// A bare coordinate pair. Not a geometry: it has no virtual table and lies in arrays of two
/// doubles each.
class JWRawPoint {
  public:
    double x;
    double y;

    /// Leaves both coordinates unset, so that arrays of points cost nothing to make.
    JWRawPoint() noexcept {}  // NOLINT(modernize-use-equals-default): "= default" would zero
    JWRawPoint(double x_, double y_) noexcept : x(x_), y(y_) {}

    int getDimension() const noexcept { return 2; }
    /// Returns `JWGeometryNone`: a raw point is no geometry.
    enumJWGeometryType getGeometryType() const noexcept { return JWGeometryNone; }

    void set(double x_, double y_) noexcept {
        x = x_;
        y = y_;
    }
    /// Shifts this point.
    void move(double dx, double dy) noexcept {
        x += dx;
        y += dy;
    }
    /// Returns a shifted copy.
    JWRawPoint move_new(double dx, double dy) const noexcept { return {x + dx, y + dy}; }

    /// Compares exactly, without a tolerance. A NaN equals nothing.
    bool operator==(const JWRawPoint& o) const noexcept { return x == o.x && y == o.y; }
    bool operator!=(const JWRawPoint& o) const noexcept { return !(*this == o); }
    /// Orders by x, and by y where the x values are exactly equal.
    bool operator<(const JWRawPoint& o) const noexcept { return x < o.x || (x == o.x && y < o.y); }
    bool operator>(const JWRawPoint& o) const noexcept { return o < *this; }
};

static_assert(std::is_trivially_copyable_v<JWRawPoint> && std::is_standard_layout_v<JWRawPoint> &&
                  sizeof(JWRawPoint) == 2 * sizeof(double),
              "arrays of points are read and written as arrays of doubles");

/// An axis-parallel rectangle, borders included. An envelope of nothing is invalid (`setInvalid`);
/// predicates on an invalid envelope compare its four values as they are.
class JWEnvelop {
  public:
    double minX;
    double minY;
    double maxX;
    double maxY;

    /// Leaves all four values unset.
    JWEnvelop() noexcept {}  // NOLINT(modernize-use-equals-default)
    JWEnvelop(double minX_, double minY_, double maxX_, double maxY_) noexcept
        : minX(minX_), minY(minY_), maxX(maxX_), maxY(maxY_) {}

    /// Returns an envelope that holds nothing, as `setInvalid` leaves it.
    static JWEnvelop invalid() noexcept {
        return {kInvalidBound, kInvalidBound, -kInvalidBound, -kInvalidBound};
    }

    void set(double minX_, double minY_, double maxX_, double maxY_) noexcept {
        *this = JWEnvelop(minX_, minY_, maxX_, maxY_);
    }
    /// Same as `set`.
    void setValue(double minX_, double minY_, double maxX_, double maxY_) noexcept {
        set(minX_, minY_, maxX_, maxY_);
    }

    /// True when min <= max on both axes; a NaN makes it false.
    bool isValid() const noexcept { return minX <= maxX && minY <= maxY; }
    /// Makes the envelope hold nothing. The bounds are plus and minus the single-precision maximum.
    void setInvalid() noexcept { *this = invalid(); }

    /// True when the interiors overlap. Rectangles that only touch, and rectangles without an
    /// interior of their own, such as that of a point with itself, are not intersected.
    bool intersected(const JWEnvelop& o) const noexcept {
        return o.maxX > minX && o.minX < maxX && o.maxY > minY && o.minY < maxY;
    }
    /// True when one rectangle lies strictly beyond the other on some axis: touching rectangles are
    /// neither `intersected` nor disjoint.
    bool isDisjoin(const JWEnvelop& o) const noexcept {
        return o.minX > maxX || o.maxX < minX || o.minY > maxY || o.maxY < minY;
    }
    /// True when this rectangle encloses `o`, borders included.
    bool isContain(const JWEnvelop& o) const noexcept {
        return minX <= o.minX && minY <= o.minY && o.maxX <= maxX && o.maxY <= maxY;
    }
    /// Same as `isContain`.
    bool contains(const JWEnvelop& o) const noexcept { return isContain(o); }
    /// True when `p` lies in the rectangle or on its border.
    bool contains(const JWRawPoint& p) const noexcept {
        return minX <= p.x && p.x <= maxX && minY <= p.y && p.y <= maxY;
    }
    /// True when `o` encloses this rectangle, borders included.
    bool isWithin(const JWEnvelop& o) const noexcept { return o.isContain(*this); }

    bool operator==(const JWEnvelop& o) const noexcept {
        return minX == o.minX && minY == o.minY && maxX == o.maxX && maxY == o.maxY;
    }
    bool operator!=(const JWEnvelop& o) const noexcept { return !(*this == o); }

    /// Extent along x; 0 when invalid.
    double width() const noexcept { return isValid() ? maxX - minX : 0.0; }
    /// Extent along y; 0 when invalid.
    double height() const noexcept { return isValid() ? maxY - minY : 0.0; }
    /// Width times height; 0 when invalid.
    double area() const noexcept { return width() * height(); }
    double x_center() const noexcept { return 0.5 * minX + 0.5 * maxX; }
    double y_center() const noexcept { return 0.5 * minY + 0.5 * maxY; }
    JWRawPoint center() const noexcept { return {x_center(), y_center()}; }
    JWRawPoint bottom_left() const noexcept { return {minX, minY}; }
    JWRawPoint bottom_right() const noexcept { return {maxX, minY}; }
    JWRawPoint top_left() const noexcept { return {minX, maxY}; }
    JWRawPoint top_right() const noexcept { return {maxX, maxY}; }

    /// Widens every side by `margin` (layer units); a negative margin narrows.
    void inflates(double margin) noexcept { inflates(margin, margin, margin, margin); }
    /// Widens left and right by `marginX`, bottom and top by `marginY`.
    void inflates(double marginX, double marginY) noexcept {
        inflates(marginX, marginY, marginX, marginY);
    }
    /// Widens each side by its own margin.
    void inflates(double left, double bottom, double right, double top) noexcept {
        set(minX - left, minY - bottom, maxX + right, maxY + top);
    }
    /// Grows to include `o`. An invalid `o` changes nothing; an invalid envelope becomes `o`.
    void inflates_to_contain(const JWEnvelop& o) noexcept {
        if (!o.isValid()) return;
        if (!isValid()) {
            *this = o;
            return;
        }
        minX = o.minX < minX ? o.minX : minX;
        minY = o.minY < minY ? o.minY : minY;
        maxX = o.maxX > maxX ? o.maxX : maxX;
        maxY = o.maxY > maxY ? o.maxY : maxY;
    }
    /// Grows to include `p`. An invalid envelope becomes that of `p`. A point with a NaN coordinate
    /// changes nothing.
    void inflates_to_contain(const JWRawPoint& p) noexcept {
        inflates_to_contain(JWEnvelop(p.x, p.y, p.x, p.y));
    }

    /// Becomes the overlap of `a` and `b`, which may be this object, and returns true. Touching
    /// rectangles share a segment or a point, which is valid. Without a common point the envelope
    /// becomes invalid and the answer is false.
    bool intersect(const JWEnvelop& a, const JWEnvelop& b) noexcept {
        const JWEnvelop overlap(
            a.minX > b.minX ? a.minX : b.minX, a.minY > b.minY ? a.minY : b.minY,
            a.maxX < b.maxX ? a.maxX : b.maxX, a.maxY < b.maxY ? a.maxY : b.maxY);
        *this = overlap.isValid() && a.isValid() && b.isValid() ? overlap : invalid();
        return isValid();
    }

    /// Moves the rectangle.
    void shift(double dx, double dy) noexcept { set(minX + dx, minY + dy, maxX + dx, maxY + dy); }
    JWEnvelop shift_new(double dx, double dy) const noexcept {
        JWEnvelop e = *this;
        e.shift(dx, dy);
        return e;
    }
    /// Reflects the rectangle through `about`, by default the origin: (x, y) becomes
    /// (2·about.x − x, 2·about.y − y). A valid envelope stays valid.
    void mirror(const JWRawPoint& about = JWRawPoint(0, 0)) noexcept {
        set(2 * about.x - maxX, 2 * about.y - maxY, 2 * about.x - minX, 2 * about.y - minY);
    }
    JWEnvelop mirror_new(const JWRawPoint& about = JWRawPoint(0, 0)) const noexcept {
        JWEnvelop e = *this;
        e.mirror(about);
        return e;
    }
    /// Swaps minimum and maximum on each axis where they are reversed. Turns the invalid envelope
    /// into a huge valid one: meant for rectangles given by two opposite corners.
    void normalize() noexcept {
        if (minX > maxX) set(maxX, minY, minX, maxY);
        if (minY > maxY) set(minX, maxY, maxX, minY);
    }
    /// Scales the rectangle with the plane about the origin, so by a negative factor through it. An
    /// invalid envelope stays as it is.
    JWEnvelop& operator*=(double factor) noexcept {
        if (isValid()) {
            set(minX * factor, minY * factor, maxX * factor, maxY * factor);
            normalize();
        }
        return *this;
    }

  private:
    static constexpr double kInvalidBound = 3.4028234663852886e+38;
};

static_assert(std::is_trivially_copyable_v<JWEnvelop> && sizeof(JWEnvelop) == 4 * sizeof(double),
              "envelopes are plain values");

}  // namespace jws

#endif  // JW_ENVELOP_H
