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
    Scaling(const JWRawPoint& center, double sx, double sy)
        : m_center(center), m_sx(sx), m_sy(sy) {}
    JWRawPoint vector(const JWRawPoint& v) const { return {v.x * m_sx, v.y * m_sy}; }
    JWRawPoint operator()(const JWRawPoint& p) const {
        return {m_center.x + (p.x - m_center.x) * m_sx, m_center.y + (p.y - m_center.y) * m_sy};
    }

  private:
    JWRawPoint m_center;
    double m_sx, m_sy;
};

class Rotation {
  public:
    Rotation(const JWRawPoint& center, double angle)
        : m_center(center), m_cos(std::cos(angle)), m_sin(std::sin(angle)) {}
    JWRawPoint vector(const JWRawPoint& v) const {
        return {v.x * m_cos - v.y * m_sin, v.x * m_sin + v.y * m_cos};
    }
    JWRawPoint operator()(const JWRawPoint& p) const {
        const JWRawPoint v = vector({p.x - m_center.x, p.y - m_center.y});
        return {m_center.x + v.x, m_center.y + v.y};
    }

  private:
    JWRawPoint m_center;
    double m_cos, m_sin;
};

/// The rectangle of n points. NaN coordinates are skipped; where an axis has no other, and for no
/// points, the rectangle is invalid.
JWEnvelop envelopOf(const JWRawPoint* points, int n);

}  // namespace jws

#endif  // JW_FOUNDATION_PLANE_MAP_H
