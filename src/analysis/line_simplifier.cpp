// SPDX-License-Identifier: MIT
//
// Kept points move to the front of their list in order. The place where one goes is never behind
// the place where it was, and the algorithms that look back hold on to copies of what they need, so
// one list is enough. Each returns how many points it kept.
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
    const double tolerance = options_.tolerance;
    switch (options_.method) {
        case JWSimplifyDouglasPeucker:
        case JWSimplifyReumannWitkam:
        case JWSimplifyVertexReduction:
        case JWSimplifyPerpendicularDistance:
            return tolerance > 0;
        case JWSimplifyLang:
            return tolerance > 0 && options_.count > 1;
        case JWSimplifyOpheim:
            return tolerance > 0 && options_.maximumTolerance >= tolerance;
        case JWSimplifyNthPoint:
            return options_.count > 0;
    }
    return false;
}

bool LineSimplifier::edit(std::vector<JWRawPoint>& points) {
    const std::size_t least = options_.method == JWSimplifyDouglasPeucker ? 4
                              : options_.method == JWSimplifyOpheim       ? 0
                                                                          : 3;
    if (!isUsable() || points.size() < least || !allFinite(points)) return false;
    if (points.size() < 3) return true;
    switch (options_.method) {
        case JWSimplifyDouglasPeucker:
            points.resize(douglasPeucker(points));
            break;
        case JWSimplifyReumannWitkam:
            points.resize(reumannWitkam(points));
            break;
        case JWSimplifyLang:
            points.resize(lang(points));
            break;
        case JWSimplifyVertexReduction:
            points.resize(vertexReduction(points));
            break;
        case JWSimplifyOpheim:
            points.resize(opheim(points));
            break;
        case JWSimplifyNthPoint:
            points.resize(nthPoint(points));
            break;
        case JWSimplifyPerpendicularDistance:
            points.resize(perpendicularDistance(points));
            break;
    }
    return true;
}

std::size_t LineSimplifier::douglasPeucker(std::vector<JWRawPoint>& points) {
    farthest_.setLine(points.data(), points.size());
    farthest_.keep(options_.tolerance, kept_);
    for (std::size_t i = 0; i < kept_.size(); ++i) points[i] = points[kept_[i]];
    return kept_.size();
}

std::size_t LineSimplifier::reumannWitkam(std::vector<JWRawPoint>& points) const {
    const double limit = options_.tolerance * options_.tolerance;
    const std::size_t n = points.size();
    JWRawPoint start = points[0], previous = points[1];
    JWRawPoint direction = difference(previous, start);
    std::size_t kept = 1;
    for (std::size_t i = 2; i < n; ++i) {
        const JWRawPoint p = points[i];
        if (squaredLineDistance(p, start, direction) > limit) {
            start = previous;
            direction = difference(p, start);
            if (i + 1 < n) points[kept++] = p;
        }
        previous = p;
    }
    points[kept++] = previous;
    return kept;
}

std::size_t LineSimplifier::lang(std::vector<JWRawPoint>& points) const {
    const std::size_t n = points.size();
    const auto look = static_cast<std::size_t>(options_.count);
    const auto isFar = [&](std::size_t i, const JWRawPoint& a, std::size_t to) {
        return segmentDistance(points[i], a, points[to]) > options_.tolerance;
    };
    JWRawPoint start = points[0];
    std::size_t kept = 1, from = 0, lastFar = 0;
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
        points[kept++] = start;
        from = to;
    }
    return kept;
}

std::size_t LineSimplifier::vertexReduction(std::vector<JWRawPoint>& points) const {
    const double limit = options_.tolerance * options_.tolerance;
    const std::size_t n = points.size();
    std::size_t kept = 1;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        if (squaredLength(difference(points[i], points[kept - 1])) > limit) {
            points[kept++] = points[i];
        }
    }
    points[kept++] = points[n - 1];
    return kept;
}

std::size_t LineSimplifier::opheim(std::vector<JWRawPoint>& points) const {
    const double minimum = options_.tolerance, maximum = options_.maximumTolerance;
    const std::size_t n = points.size();
    JWRawPoint key = points[0], previous = points[1], through = key;
    bool hasRay = false;
    std::size_t kept = 1;
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
                points[kept++] = key;
                hasRay = false;
            }
        }
        previous = p;
    }
    points[kept++] = previous;
    return kept;
}

std::size_t LineSimplifier::nthPoint(std::vector<JWRawPoint>& points) const {
    const std::size_t n = points.size();
    const auto step = static_cast<std::size_t>(options_.count);
    std::size_t kept = 1;
    for (std::size_t i = step; i + 1 < n; i += step) points[kept++] = points[i];
    points[kept++] = points[n - 1];
    return kept;
}

std::size_t LineSimplifier::perpendicularDistance(std::vector<JWRawPoint>& points) const {
    const std::size_t n = points.size();
    JWRawPoint previous = points[0];
    std::size_t kept = 1;
    std::size_t i = 1;
    while (i + 1 < n) {
        const JWRawPoint p = points[i];
        if (segmentDistance(p, previous, points[i + 1]) <= options_.tolerance) {
            // The next one is kept untested, unless it is the last, which the end writes.
            previous = points[i + 1];
            if (i + 2 < n) points[kept++] = previous;
            i += 2;
        } else {
            points[kept++] = p;
            previous = p;
            ++i;
        }
    }
    points[kept++] = points[n - 1];
    return kept;
}

}  // namespace jws::detail
