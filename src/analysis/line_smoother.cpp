// SPDX-License-Identifier: MIT
//
// Averages are formed of differences to a point of the line, not of coordinates: weights add up to
// one, so the result is the same, and a line of micro steps far from the origin keeps its digits.
#include "analysis/line_smoother.h"

#include <algorithm>
#include <cmath>

#include "analysis/line_edit.h"
#include "foundation/segment_math.h"

namespace jws::detail {

namespace {

JWRawPoint middle(const JWRawPoint& a, const JWRawPoint& b) {
    return JWRawPoint((a.x + b.x) / 2, (a.y + b.y) / 2);
}

/// Throws TooManyPoints when a result would have more points than are made.
void requireRoomFor(double count) {
    if (!(count <= static_cast<double>(kMostMadePoints))) throw TooManyPoints();
}

bool isWindow(int lookAhead) { return lookAhead % 2 == 1 && lookAhead >= 3; }

}  // namespace

bool LineSmoother::isUsable() const {
    const JWSmoothOptions& o = m_options;
    switch (o.method) {
        case JWSmoothBoyle:
            return o.lookAhead > 1;
        case JWSmoothSlidingAveraging:
        case JWSmoothDistanceWeighting:
            return isWindow(o.lookAhead) && std::isfinite(o.slide);
        case JWSmoothChaiken:
            return o.tolerance != 0 && !std::isnan(o.tolerance);
        case JWSmoothBezier:
            return o.degree >= 1 && o.points >= 1;
        case JWSmoothHermite:
            return o.step > 0 && o.tangentScale > 0 && std::isfinite(o.tangentScale) &&
                   !std::isnan(o.tangentMinimum);
    }
    return false;
}

bool LineSmoother::edit(const Points& points, Points& smooth) const {
    if (!isUsable() || points.size() < 2 || !allFinite(points)) return false;
    const auto isSmoothed = [&] {
        switch (m_options.method) {
            case JWSmoothBoyle:
                return boyle(points, smooth);
            case JWSmoothSlidingAveraging:
                return slidingAveraging(points, smooth);
            case JWSmoothDistanceWeighting:
                return distanceWeighting(points, smooth);
            case JWSmoothChaiken:
                return chaiken(points, smooth);
            case JWSmoothBezier:
                return bezier(points, smooth);
            case JWSmoothHermite:
                return hermite(points, smooth);
        }
        return false;
    };
    if (!isSmoothed()) return false;
    if (m_options.dropRepeated) {
        smooth.erase(std::unique(smooth.begin(), smooth.end()), smooth.end());
    }
    return true;
}

bool LineSmoother::boyle(const Points& points, Points& smooth) const {
    const std::size_t n = points.size();
    const auto look = static_cast<std::size_t>(m_options.lookAhead);
    if (look > n) return false;
    const double c2 = static_cast<double>(look - 2) / static_cast<double>(look - 1);
    JWRawPoint previous = points[0];
    smooth.assign(1, previous);
    for (std::size_t i = 0; i + 2 < n; ++i) {
        const JWRawPoint& ahead = points[std::min(i + look, n - 1)];
        previous = pointAlong(ahead, difference(previous, ahead), c2);
        smooth.push_back(previous);
    }
    smooth.push_back(points[n - 1]);
    return true;
}

bool LineSmoother::slidingAveraging(const Points& points, Points& smooth) const {
    const std::size_t n = points.size();
    const auto look = static_cast<std::size_t>(m_options.lookAhead);
    if (look >= n) return false;
    const std::size_t half = look / 2;
    const double weight = m_options.slide / static_cast<double>(look);
    const JWRawPoint origin = points[0];
    JWRawPoint sum(0, 0);
    const auto add = [&](const JWRawPoint& p, double sign) {
        sum.move(sign * (p.x - origin.x), sign * (p.y - origin.y));
    };
    for (std::size_t i = 0; i < look; ++i) add(points[i], 1);
    smooth.assign(points.begin(), points.begin() + half);
    for (std::size_t i = half; i + half < n; ++i) {
        const JWRawPoint p = difference(points[i], origin);
        smooth.emplace_back(origin.x + (1 - m_options.slide) * p.x + weight * sum.x,
                            origin.y + (1 - m_options.slide) * p.y + weight * sum.y);
        if (i + 1 + half >= n) break;
        add(points[i - half], -1);
        add(points[i + 1 + half], 1);
    }
    smooth.insert(smooth.end(), points.end() - half, points.end());
    return true;
}

bool LineSmoother::distanceWeighting(const Points& points, Points& smooth) const {
    const std::size_t n = points.size();
    const std::size_t half = static_cast<std::size_t>(m_options.lookAhead) / 2;
    if (n <= 2 * half) return false;
    smooth.assign(points.begin(), points.begin() + half);
    for (std::size_t i = half; i + half < n; ++i) {
        const JWRawPoint& p = points[i];
        JWRawPoint sum(0, 0);
        double weights = 0;
        for (std::size_t j = i - half; j <= i + half; ++j) {
            const JWRawPoint v = difference(points[j], p);
            const double d = length(v);
            if (j == i || !(d >= 1e-10)) continue;
            weights += 1 / d;
            sum.move(v.x / d, v.y / d);
        }
        const double factor = weights > 0 ? m_options.slide / weights : 0;
        smooth.emplace_back(p.x + factor * sum.x, p.y + factor * sum.y);
    }
    smooth.insert(smooth.end(), points.end() - half, points.end());
    return true;
}

/// Each step adds its points in front of those it added before, so that the coarsest, which the
/// next step starts from, comes last.
bool LineSmoother::chaiken(const Points& points, Points& smooth) const {
    const std::size_t n = points.size();
    if (n < 3) return false;
    const double limit = m_options.tolerance * m_options.tolerance;
    smooth.assign(1, points[0]);
    JWRawPoint anchor = points[0];
    for (std::size_t i = 2; i <= n; ++i) {
        const auto stepBegin = static_cast<std::ptrdiff_t>(smooth.size());
        JWRawPoint p1 = points[i - 1], p2 = points[std::min(i, n - 1)];
        JWRawPoint m = middle(p1, p2);
        for (;;) {
            requireRoomFor(static_cast<double>(smooth.size()) + 2);
            smooth.push_back(m);
            if (!areFinite(&m, 1)) break;
            const JWRawPoint v = difference(anchor, m);
            if (dot(v, v) <= limit) break;
            p2 = middle(p1, m);
            p1 = middle(p1, anchor);
            const JWRawPoint before = m;
            m = middle(p1, p2);
            // Below the resolution of coordinates nothing moves any more.
            if (m == before) break;
        }
        std::reverse(smooth.begin() + stepBegin, smooth.end());
        anchor = smooth.back();
    }
    smooth.push_back(points[n - 1]);
    return true;
}

bool LineSmoother::hermite(const Points& points, Points& smooth) const {
    const std::size_t n = points.size();
    if (n < 3) return false;
    const auto tangent = [&](std::size_t k) {
        const JWRawPoint t = difference(points[std::min(k + 2, n - 1)], points[k]);
        const double scale = dot(t, t) >= m_options.tangentMinimum ? m_options.tangentScale : 0;
        return JWRawPoint(scale * t.x, scale * t.y);
    };
    double total = 0;
    for (std::size_t k = 0; k + 1 < n; ++k) total += pointDistance(points[k], points[k + 1]);
    requireRoomFor(total / m_options.step + 2);
    smooth.assign(1, points[0]);
    double begin = 0;
    double count = 1;
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const JWRawPoint& p = points[k];
        const JWRawPoint& q = points[k + 1];
        const double size = pointDistance(p, q), end = begin + size;
        if (count * m_options.step <= end) {
            const JWRawPoint s = tangent(k), t = tangent(k + 1);
            for (double at; (at = count * m_options.step) <= end && at < total; ++count) {
                const double u = std::min((at - begin) / size, 1.0), u2 = u * u, u3 = u2 * u;
                const double b = u3 - 2 * u2 + u, d = u3 - u2;
                // From the nearer end, so that both ends come out with their own bits.
                const bool isFirstHalf = u < 0.5;
                const double c = isFirstHalf ? 3 * u2 - 2 * u3 : 2 * u3 - 3 * u2 + 1;
                const JWRawPoint& near = isFirstHalf ? p : q;
                const JWRawPoint v = difference(isFirstHalf ? q : p, near);
                smooth.emplace_back(near.x + (c * v.x + b * s.x + d * t.x),
                                    near.y + (c * v.y + b * s.y + d * t.y));
            }
        }
        begin = end;
    }
    smooth.push_back(points[n - 1]);
    return true;
}

bool LineSmoother::bezier(const Points& points, Points& smooth) const {
    const std::size_t degree = std::min(m_options.degree, JWBezierCurve::kMaxDegree);
    const std::size_t curves = (points.size() + degree - 2) / degree;
    requireRoomFor(static_cast<double>(curves) * m_options.points + 1);
    return JWBezierCurve().smoothPoints(points, m_options.degree, m_options.points, smooth);
}

}  // namespace jws::detail
