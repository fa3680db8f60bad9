// SPDX-License-Identifier: MIT
#include "buffer/cut_shape.h"

#include <algorithm>
#include <cmath>

namespace jws::detail {
namespace {

double dot(const JWRawPoint& a, const JWRawPoint& b) { return a.x * b.x + a.y * b.y; }

JWRawPoint minus(const JWRawPoint& a, const JWRawPoint& b) { return {a.x - b.x, a.y - b.y}; }

}  // namespace

void CutShape::make(const Shape& piece, double distance, const ArcStyle& arcs,
                    const JWRawPoint& origin) {
    m_origin = origin;
    m_start = minus(piece.from, origin);
    m_direction = minus(piece.to, piece.from);
    m_length2 = dot(m_direction, m_direction);
    m_perLength2 = m_length2 > 1e-300 ? 1 / m_length2 : 0;
    m_visible = m_count = cornerCount(piece, arcs);
    m_whole = true;
    writeCorners(piece, distance, arcs, m_exact);
    for (int k = 0; k < m_count; ++k) m_corners[k] = minus(m_exact[k], origin);
    for (int k = 0; k < m_count; ++k) {
        const JWRawPoint edge = minus(m_corners[after(k)], m_corners[k]);
        const double length = std::sqrt(dot(edge, edge));
        const double scale = length > 0 ? 1 / length : 0;
        m_normals[k] = {edge.y * scale, -edge.x * scale};
        m_from[k] = 0;
        m_to[k] = 1;
    }
}

JWRawPoint CutShape::fromAxis(const JWRawPoint& p) const {
    const JWRawPoint w = minus(p, m_start);
    const double share = std::min(std::max(dot(w, m_direction) * m_perLength2, 0.0), 1.0);
    return {w.x - share * m_direction.x, w.y - share * m_direction.y};
}

double CutShape::distance2(const JWRawPoint& p) const {
    const JWRawPoint way = fromAxis(p);
    return dot(way, way);
}

double CutShape::depth(const JWRawPoint& p) const {
    double least = HUGE_VAL;
    for (int k = 0; k < m_count; ++k) {
        least = std::min(least, dot(m_normals[k], minus(p, m_corners[k])));
    }
    return least;
}

JWRawPoint CutShape::along(const JWRawPoint* points, int edge, double share) const {
    const JWRawPoint &a = points[edge], &b = points[after(edge)];
    if (share == 0) return a;
    if (share == 1) return b;
    return {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)};
}

/// How much of the way between two points is deep; the first one is.
double CutShape::shareWithin(const JWRawPoint& from, const JWRawPoint& to, double margin) const {
    double share = 1;
    for (int k = 0; k < m_count; ++k) {
        const double first = dot(m_normals[k], minus(from, m_corners[k])) - margin;
        const double last = dot(m_normals[k], minus(to, m_corners[k])) - margin;
        if (last < 0) share = std::min(share, std::max(first, 0.0) / (first - last));
    }
    return share;
}

void CutShape::coverBy(const CutShape& other, const CoverMeasure& measure) {
    const auto isDeep = [&](const JWRawPoint& p) {
        const double away2 = other.distance2(p);
        return away2 < measure.near2 || (away2 < measure.far2 && other.depth(p) > measure.margin);
    };
    int asked = -1;  // the corner that two edges share is looked at once
    bool answer = false;
    const auto isCornerDeep = [&](int k) {
        if (k != asked) answer = isDeep(m_corners[k]);
        asked = k;
        return answer;
    };
    for (int k = 0; k < m_count; ++k) {
        if (isHidden(k)) continue;
        const JWRawPoint from = along(m_corners, k, m_from[k]);
        const JWRawPoint to = along(m_corners, k, m_to[k]);
        const bool fromDeep = m_from[k] == 0 ? isCornerDeep(k) : isDeep(from);
        const bool toDeep = m_to[k] == 1 ? isCornerDeep(after(k)) : isDeep(to);
        if (!fromDeep && !toDeep) continue;
        m_whole = false;
        const double extent = m_to[k] - m_from[k];
        if (fromDeep && toDeep) {
            m_from[k] = m_to[k];
        } else if (fromDeep) {
            m_from[k] += extent * other.shareWithin(from, to, measure.margin);
        } else {
            m_to[k] -= extent * other.shareWithin(to, from, measure.margin);
        }
        if (isHidden(k)) --m_visible;
    }
}

/// Part of the way from a point of the shape to the axis.
JWRawPoint CutShape::inward(const JWRawPoint& p, double share) const {
    const JWRawPoint way = fromAxis(minus(p, m_origin));
    return {p.x - share * way.x, p.y - share * way.y};
}

bool CutShape::startsStretch(int edge) const {
    const int before = edge > 0 ? edge - 1 : m_count - 1;
    return !isHidden(edge) && (m_from[edge] > 0 || isHidden(before) || m_to[before] < 1);
}

int CutShape::edgesOfStretch(int first) const {
    int edges = 1;
    for (int k = first; m_to[k] == 1 && edges < m_count; ++edges) {
        k = after(k);
        if (isHidden(k) || m_from[k] > 0) break;
    }
    return edges;
}

void CutShape::addSliver(int first, double depth, RingSet& slivers) const {
    const int edges = edgesOfStretch(first);
    const int last = (first + edges - 1) % m_count;
    const JWRawPoint start = along(m_exact, first, m_from[first]);
    const JWRawPoint end = along(m_exact, last, m_to[last]);
    slivers.addPoint(start);
    for (int k = 1; k < edges; ++k) slivers.addPoint(m_exact[(first + k) % m_count]);
    slivers.addPoint(end);
    if (edges == 1) {
        slivers.addPoint(inward({0.5 * (start.x + end.x), 0.5 * (start.y + end.y)}, depth));
    } else {
        slivers.addPoint(inward(m_exact[last], depth));
        if (edges > 2) slivers.addPoint(inward(m_exact[after(first)], depth));
    }
    slivers.endRing(0);
}

void CutShape::addSlivers(double depth, RingSet& slivers) const {
    if (m_whole) {
        for (int k = 0; k < m_count; ++k) slivers.addPoint(m_exact[k]);
        slivers.endRing(0);
        return;
    }
    for (int k = 0; k < m_count; ++k) {
        if (startsStretch(k)) addSliver(k, depth, slivers);
    }
}

}  // namespace jws::detail
