// SPDX-License-Identifier: MIT
//
// Each method appends the points that it keeps, in order, to a list that has the first.
#include "analysis/line_simplifier.h"

#include <algorithm>
#include <cmath>

#include "analysis/line_edit.h"
#include "foundation/segment_math.h"

namespace jws::detail {

namespace {

double squaredLength(const JWRawPoint& v) { return dot(v, v); }

/// The squared distance of p to the line through a and a + v, to a itself where v is zero.
double squaredLineDistance(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& v) {
    const JWRawPoint w = difference(p, a);
    const double square = squaredLength(v);
    if (square == 0) return squaredLength(w);
    const double area = cross(v, w);
    return area * area / square;
}

}  // namespace

bool LineSimplifier::isUsable() const {
    const double tolerance = m_options.tolerance;
    switch (m_options.method) {
        case JWSimplifyDouglasPeucker:
        case JWSimplifyReumannWitkam:
        case JWSimplifyVertexReduction:
        case JWSimplifyPerpendicularDistance:
            return tolerance > 0;
        case JWSimplifyLang:
            return tolerance > 0 && m_options.count > 1;
        case JWSimplifyOpheim:
            return tolerance > 0 && m_options.maximumTolerance >= tolerance;
        case JWSimplifyNthPoint:
            return m_options.count > 0;
    }
    return false;
}

bool LineSimplifier::edit(const Points& points, Points& left) {
    const std::size_t least = m_options.method == JWSimplifyDouglasPeucker ? 4
                              : m_options.method == JWSimplifyOpheim       ? 0
                                                                           : 3;
    if (!isUsable() || points.size() < least || !allFinite(points)) return false;
    if (points.size() < 3) {
        left = points;
        return true;
    }
    left.assign(1, points[0]);
    switch (m_options.method) {
        case JWSimplifyDouglasPeucker:
            douglasPeucker(points, left);
            break;
        case JWSimplifyReumannWitkam:
            reumannWitkam(points, left);
            break;
        case JWSimplifyLang:
            lang(points, left);
            break;
        case JWSimplifyVertexReduction:
            vertexReduction(points, left);
            break;
        case JWSimplifyOpheim:
            opheim(points, left);
            break;
        case JWSimplifyNthPoint:
            nthPoint(points, left);
            break;
        case JWSimplifyPerpendicularDistance:
            perpendicularDistance(points, left);
            break;
    }
    return true;
}

void LineSimplifier::douglasPeucker(const Points& points, Points& left) {
    m_farthest.setLine(points.data(), points.size());
    m_farthest.keep(m_options.tolerance, m_kept);
    for (std::size_t i = 1; i < m_kept.size(); ++i) left.push_back(points[m_kept[i]]);
}

void LineSimplifier::reumannWitkam(const Points& points, Points& left) const {
    const double limit = m_options.tolerance * m_options.tolerance;
    const std::size_t n = points.size();
    JWRawPoint start = points[0], previous = points[1];
    JWRawPoint direction = difference(previous, start);
    for (std::size_t i = 2; i < n; ++i) {
        const JWRawPoint p = points[i];
        if (squaredLineDistance(p, start, direction) > limit) {
            start = previous;
            direction = difference(p, start);
            if (i + 1 < n) left.push_back(p);
        }
        previous = p;
    }
    left.push_back(previous);
}

void LineSimplifier::lang(const Points& points, Points& left) const {
    const std::size_t n = points.size();
    const auto look = static_cast<std::size_t>(m_options.count);
    const auto isFar = [&](std::size_t i, const JWRawPoint& a, std::size_t to) {
        return segmentDistance(points[i], a, points[to]) > m_options.tolerance;
    };
    JWRawPoint start = points[0];
    std::size_t from = 0, lastFar = 0;
    while (from < n - 1) {
        std::size_t to = std::min(look, n - 1 - from) + from;
        // The point that was too far from the last segment is likely to be so from the next.
        for (; to > from + 1; --to) {
            if (lastFar > from && lastFar < to && isFar(lastFar, start, to)) continue;
            std::size_t i = from + 1;
            while (i < to && !isFar(i, start, to)) ++i;
            if (i == to) break;
            lastFar = i;
        }
        start = points[to];
        left.push_back(start);
        from = to;
    }
}

void LineSimplifier::vertexReduction(const Points& points, Points& left) const {
    const double limit = m_options.tolerance * m_options.tolerance;
    const std::size_t n = points.size();
    for (std::size_t i = 1; i + 1 < n; ++i) {
        if (squaredLength(difference(points[i], left.back())) > limit) {
            left.push_back(points[i]);
        }
    }
    left.push_back(points[n - 1]);
}

void LineSimplifier::opheim(const Points& points, Points& left) const {
    const double minimum = m_options.tolerance, maximum = m_options.maximumTolerance;
    const std::size_t n = points.size();
    JWRawPoint key = points[0], previous = points[1], through = key;
    bool hasRay = false;
    for (std::size_t i = 2; i < n; ++i) {
        const JWRawPoint p = points[i];
        const double square = squaredLength(difference(p, key));
        if (!hasRay && square >= minimum * minimum) {
            hasRay = true;
            through = previous;
        }
        if (hasRay) {
            const double distance = rayDistance(p, key, through);
            if (square >= maximum * maximum || distance * distance >= minimum) {
                key = previous;
                left.push_back(key);
                hasRay = false;
            }
        }
        previous = p;
    }
    left.push_back(previous);
}

void LineSimplifier::nthPoint(const Points& points, Points& left) const {
    const std::size_t n = points.size();
    const auto step = static_cast<std::size_t>(m_options.count);
    for (std::size_t i = step; i + 1 < n; i += step) left.push_back(points[i]);
    left.push_back(points[n - 1]);
}

void LineSimplifier::perpendicularDistance(const Points& points, Points& left) const {
    const std::size_t n = points.size();
    JWRawPoint previous = points[0];
    std::size_t i = 1;
    while (i + 1 < n) {
        const JWRawPoint p = points[i];
        if (segmentDistance(p, previous, points[i + 1]) <= m_options.tolerance) {
            // The next one is kept untested, unless it is the last, which the end writes.
            previous = points[i + 1];
            if (i + 2 < n) left.push_back(previous);
            i += 2;
        } else {
            left.push_back(p);
            previous = p;
            ++i;
        }
    }
    left.push_back(points[n - 1]);
}

}  // namespace jws::detail
