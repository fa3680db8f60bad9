// SPDX-License-Identifier: MIT
//
// CGAL's convex hull and smallest circle, where CGAL is installed.
#ifndef JWCG_BENCH_CGAL_BOUNDS_H
#define JWCG_BENCH_CGAL_BOUNDS_H

#include <memory>
#include <vector>

#include "jw_envelop.h"

namespace bench {

/// Points in CGAL's representation, and the last answer about them.
class CgalBounds {
  public:
    explicit CgalBounds(const std::vector<jws::JWRawPoint>& points);
    ~CgalBounds();
    void findHull();
    double hullArea() const;
    void findCircle();
    double circleRadius() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace bench

#endif  // JWCG_BENCH_CGAL_BOUNDS_H
