// SPDX-License-Identifier: MIT
#include "analysis/cgal_bounds.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Min_sphere_of_points_d_traits_2.h>
#include <CGAL/Min_sphere_of_spheres_d.h>
#include <CGAL/Polygon_2_algorithms.h>
#include <CGAL/convex_hull_2.h>

#include <iterator>

namespace bench {

namespace {
using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_2;
using Circle = CGAL::Min_sphere_of_spheres_d<CGAL::Min_sphere_of_points_d_traits_2<Kernel, double>>;
}  // namespace

struct CgalBounds::Impl {
    std::vector<Point> points;
    std::vector<Point> hull;
    double radius = 0;
};

CgalBounds::CgalBounds(const std::vector<jws::JWRawPoint>& points)
    : m_impl(std::make_unique<Impl>()) {
    for (const jws::JWRawPoint& p : points) m_impl->points.emplace_back(p.x, p.y);
}

CgalBounds::~CgalBounds() = default;

void CgalBounds::findHull() {
    m_impl->hull.clear();
    CGAL::convex_hull_2(m_impl->points.begin(), m_impl->points.end(),
                        std::back_inserter(m_impl->hull));
}

double CgalBounds::hullArea() const {
    return CGAL::polygon_area_2(m_impl->hull.begin(), m_impl->hull.end(), Kernel());
}

void CgalBounds::findCircle() {
    Circle circle(m_impl->points.begin(), m_impl->points.end());
    m_impl->radius = CGAL::to_double(circle.radius());
}

double CgalBounds::circleRadius() const { return m_impl->radius; }

}  // namespace bench
