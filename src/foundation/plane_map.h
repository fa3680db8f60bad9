// SPDX-License-Identifier: MIT
//
// The maps of the plane that every geometry class applies to its coordinates. Each holds its own
// copy of the centre, which may lie in the geometry that is being mapped.
#ifndef JW_FOUNDATION_PLANE_MAP_H
#define JW_FOUNDATION_PLANE_MAP_H

#include <cmath>

#include "jw_envelop.h"

namespace jws {

class Scaling {
  public:
    Scaling(const JWRawPoint& center, double sx, double sy) : center_(center), sx_(sx), sy_(sy) {}
    JWRawPoint vector(const JWRawPoint& v) const { return {v.x * sx_, v.y * sy_}; }
    JWRawPoint operator()(const JWRawPoint& p) const {
        return {center_.x + (p.x - center_.x) * sx_, center_.y + (p.y - center_.y) * sy_};
    }

  private:
    JWRawPoint center_;
    double sx_, sy_;
};

class Rotation {
  public:
    Rotation(const JWRawPoint& center, double angle)
        : center_(center), cos_(std::cos(angle)), sin_(std::sin(angle)) {}
    JWRawPoint vector(const JWRawPoint& v) const {
        return {v.x * cos_ - v.y * sin_, v.x * sin_ + v.y * cos_};
    }
    JWRawPoint operator()(const JWRawPoint& p) const {
        const JWRawPoint v = vector({p.x - center_.x, p.y - center_.y});
        return {center_.x + v.x, center_.y + v.y};
    }

  private:
    JWRawPoint center_;
    double cos_, sin_;
};

/// The rectangle of n points. NaN coordinates are skipped; where an axis has no other, and for no
/// points, the rectangle is invalid.
JWEnvelop envelopOf(const JWRawPoint* points, int n);

}  // namespace jws

#endif  // JW_FOUNDATION_PLANE_MAP_H
