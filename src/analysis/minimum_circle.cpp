// SPDX-License-Identifier: MIT
//
// The minimum circle.
//
// The answer is that of the incremental algorithm: go through the points, and whenever one lies
// outside the circle by more than 1e-10, start again with that point on the boundary, over the
// points before it; within that likewise with two points on it, and with three, which fix the
// circle. It keeps no order of its own, so points that come sorted along a circle cost it a cube of
// their number, and where a thousand points lie on the circle to the last bit it may end with three
// that fix it badly.
//
// So there are two computations. The first takes the farthest point into a support of at most three
// until none is outside (B. Gärtner, Fast and robust smallest enclosing balls, 1999): some ten
// passes whatever the order, and a radius that is right to rounding. The second is the incremental
// algorithm with a bound on its work. Its answer is taken if it comes to an end and agrees with
// the first: all points inside and the radius equal, to 1e-10 and the rounding. Points within the
// tolerance of the circle therefore count as inside it, as stated, and otherwise the two are the
// same circle.
//
// Both work on the points that the hull's filter leaves, relative to the first point: the bisector
// equations miss the centre by 6e-6 at an offset of 5e6, and by 0.2 at 1e9. Cost: O(n).
#include "analysis/minimum_circle.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "analysis/hull.h"
#include "foundation/segment_math.h"

namespace jws::detail {

namespace {

constexpr double kTolerance = 1e-10;

double squaredDistance(const JWRawPoint& a, const JWRawPoint& b) {
    const JWRawPoint v = difference(a, b);
    return dot(v, v);
}

Circle circleOf(const JWRawPoint& a, const JWRawPoint& b) {
    const JWRawPoint center((a.x + b.x) / 2, (a.y + b.y) / 2);
    return {center, pointDistance(center, a)};
}

/// The circle through three points from the equations of two bisectors; none when they are on a
/// line.
std::optional<Circle> circleOf(const JWRawPoint& a, const JWRawPoint& b, const JWRawPoint& c) {
    const JWRawPoint u = difference(b, a), v = difference(c, a);
    const double d = 2 * cross(u, v);
    if (d == 0) return std::nullopt;
    const double uu = dot(u, u), vv = dot(v, v);
    const JWRawPoint center(a.x + (v.y * uu - u.y * vv) / d, a.y + (u.x * vv - v.x * uu) / d);
    return Circle{center, pointDistance(center, c)};
}

/// The incremental algorithm, given up when it costs more than its allowance.
class Incremental {
  public:
    explicit Incremental(const std::vector<JWRawPoint>& points, double tolerance)
        : m_points(points), m_tolerance(tolerance), m_allowance(2 * points.size() + 20000) {}

    std::optional<Circle> run() {
        m_circle = {m_points[0], 0};
        const std::size_t n = m_points.size();
        for (std::size_t i = 1; (i = firstOutside(i, n)) < n; ++i) {
            m_circle = {m_points[i], 0};
            for (std::size_t j = 0; (j = firstOutside(j, i)) < i; ++j) {
                m_circle = circleOf(m_points[i], m_points[j]);
                for (std::size_t k = 0; (k = firstOutside(k, j)) < j; ++k) {
                    m_circle = circleOf(m_points[i], m_points[j], m_points[k]).value_or(m_circle);
                }
            }
        }
        if (m_spent > m_allowance) return std::nullopt;
        return m_circle;
    }

  private:
    /// The first of the points from `begin` on whose distance is above radius and tolerance; `end`
    /// when there is none, or when the allowance is spent. Distances are compared after the square
    /// root where squares do not settle it.
    std::size_t firstOutside(std::size_t begin, std::size_t end) {
        if (m_spent > m_allowance) return end;
        const double limit = m_circle.radius + m_tolerance;
        const double inside = limit * limit * (1 - 1e-15), outside = limit * limit * (1 + 1e-15);
        std::size_t i = begin;
        for (; i < end; ++i) {
            const double square = squaredDistance(m_circle.center, m_points[i]);
            if (square < inside) continue;
            if (square > outside || std::sqrt(square) > limit) break;
        }
        m_spent += i - begin + 1;
        return i;
    }

    const std::vector<JWRawPoint>& m_points;
    Circle m_circle{JWRawPoint(0, 0), 0};
    double m_tolerance;
    std::size_t m_allowance;
    std::size_t m_spent = 0;
};

/// The largest squared distance from a centre. Four running maxima, so that none waits for the one
/// before it.
double largestSquare(const JWRawPoint* points, std::size_t n, const JWRawPoint& center) {
    double most[4] = {-1, -1, -1, -1};
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        for (std::size_t lane = 0; lane < 4; ++lane) {
            const double square = squaredDistance(points[i + lane], center);
            most[lane] = square > most[lane] ? square : most[lane];
        }
    }
    for (; i < n; ++i) most[0] = std::max(most[0], squaredDistance(points[i], center));
    return std::max(std::max(most[0], most[1]), std::max(most[2], most[3]));
}

/// The point farthest from a centre, the first of several.
const JWRawPoint& farthestPoint(const std::vector<JWRawPoint>& points, const JWRawPoint& center) {
    constexpr std::size_t block = 1024;
    double best = -1;
    std::size_t at = 0;
    for (std::size_t begin = 0; begin < points.size(); begin += block) {
        const std::size_t size = std::min(block, points.size() - begin);
        const double square = largestSquare(&points[begin], size, center);
        if (square > best) {
            best = square;
            at = begin;
        }
    }
    while (squaredDistance(points[at], center) < best) ++at;
    return points[at];
}

/// The points that a circle is spanned by, two or three.
struct Support {
    std::vector<JWRawPoint> points;
    Circle circle;
};

/// The smallest circle around a support and one more point, which is on it.
std::optional<Support> smallestWith(const Support& support, const JWRawPoint& p) {
    std::optional<Support> best;
    const auto consider = [&](const Circle& circle, std::vector<JWRawPoint> spanning) {
        const double limit = circle.radius * (1 + 1e-12);
        for (const JWRawPoint& q : support.points) {
            if (pointDistance(circle.center, q) > limit) return;
        }
        if (!best || circle.radius < best->circle.radius) best = {std::move(spanning), circle};
    };
    for (std::size_t i = 0; i < support.points.size(); ++i) {
        const JWRawPoint& a = support.points[i];
        consider(circleOf(p, a), {p, a});
        for (std::size_t j = 0; j < i; ++j) {
            const JWRawPoint& b = support.points[j];
            if (const auto circle = circleOf(p, a, b)) consider(*circle, {p, a, b});
        }
    }
    return best;
}

/// The smallest circle, to rounding; it holds every point.
Circle smallestCircle(const std::vector<JWRawPoint>& points) {
    const JWRawPoint& a = points.front();
    const JWRawPoint& b = farthestPoint(points, a);
    Support support{{a, b}, circleOf(a, b)};
    for (;;) {
        const JWRawPoint& p = farthestPoint(points, support.circle.center);
        const double distance = pointDistance(support.circle.center, p);
        if (distance > support.circle.radius) {
            const auto larger = smallestWith(support, p);
            // The radius grows with every step; where rounding ends that, this is the circle.
            if (larger && larger->circle.radius > support.circle.radius) {
                support = *larger;
                continue;
            }
        }
        return {support.circle.center, std::max(distance, support.circle.radius)};
    }
}

/// True for a circle that holds the points and is as small as the smallest, to the tolerance.
bool agree(const Circle& circle, const Circle& smallest, const std::vector<JWRawPoint>& points,
           double tolerance) {
    const double slack = tolerance + 1e-12 * smallest.radius;
    const double farthest = pointDistance(farthestPoint(points, circle.center), circle.center);
    return std::fabs(circle.radius - smallest.radius) <= slack && farthest <= circle.radius + slack;
}

bool isFinite(const Circle& circle) {
    return std::isfinite(circle.center.x) && std::isfinite(circle.center.y) &&
           std::isfinite(circle.radius);
}

}  // namespace

bool minimumCircle(const PointRuns& points, Circle& result) {
    if (points.count() < 2) return false;
    std::vector<JWRawPoint> outer = outerPoints(points);
    const double size = magnitude(outer);
    if (!std::isfinite(size)) return false;
    const double scale = safeScale(size);
    const JWRawPoint origin = outer[0];
    for (JWRawPoint& p : outer) {
        p.set(p.x * scale - origin.x * scale, p.y * scale - origin.y * scale);
    }
    Circle circle = smallestCircle(outer);
    const double tolerance = kTolerance * scale;
    const std::optional<Circle> incremental = Incremental(outer, tolerance).run();
    if (incremental && agree(*incremental, circle, outer, tolerance)) circle = *incremental;
    circle.center.set(origin.x + circle.center.x / scale, origin.y + circle.center.y / scale);
    circle.radius /= scale;
    if (!isFinite(circle)) return false;
    result = circle;
    return true;
}

bool boundingBall(const PointRuns& points, Circle& result) {
    if (points.count() < 2) return false;
    JWRawPoint left = points.first(), right = left, low = left, high = left;
    double check = 0;
    points.forEach([&](const JWRawPoint& p) {
        if (p.x < left.x) {
            left = p;
        } else if (p.x > right.x) {
            right = p;
        }
        if (p.y < low.y) {
            low = p;
        } else if (p.y > high.y) {
            high = p;
        }
        check += (p.x - p.x) + (p.y - p.y);
    });
    if (check != 0) return false;
    const double scale = safeScale(
        std::max({std::fabs(left.x), std::fabs(right.x), std::fabs(low.y), std::fabs(high.y)}));
    const auto scaled = [scale](const JWRawPoint& p) {
        return JWRawPoint(p.x * scale, p.y * scale);
    };
    const JWRawPoint dx = difference(scaled(right), scaled(left));
    const JWRawPoint dy = difference(scaled(high), scaled(low));
    const bool upright = dot(dy, dy) > dot(dx, dx);
    JWRawPoint center =
        upright ? pointAlong(scaled(low), dy, 0.5) : pointAlong(scaled(left), dx, 0.5);
    double square = squaredDistance(upright ? scaled(high) : scaled(right), center);
    double radius = std::sqrt(square);
    points.forEach([&](const JWRawPoint& point) {
        const JWRawPoint p = scaled(point);
        const double d2 = squaredDistance(p, center);
        if (!(d2 > square)) return;
        const double d = std::sqrt(d2);
        radius = (radius + d) / 2;
        square = radius * radius;
        center = pointAlong(center, difference(p, center), (d - radius) / d);
    });
    const Circle ball{JWRawPoint(center.x / scale, center.y / scale), radius / scale};
    if (!isFinite(ball)) return false;
    result = ball;
    return true;
}

JWRing circleOutline(const Circle& circle) {
    constexpr double pi = 3.14159265358979323846;
    const double radius = std::fabs(circle.radius);
    std::vector<JWRawPoint> points;
    points.reserve(361);
    for (int k = 360; k > 0; --k) {
        const double angle = k * pi / 180;
        points.emplace_back(circle.center.x + radius * std::cos(angle),
                            circle.center.y + radius * std::sin(angle));
    }
    points.push_back(points.front());
    return JWRing(std::move(points));
}

}  // namespace jws::detail
