// SPDX-License-Identifier: MIT
//
// Sums are taken relative to the first point of a geometry: products of projected coordinates as
// they are would lose all digits of a small parcel's centre.
//
// A point within an area, where the centre of mass lies outside: a horizontal line half way between
// two neighbouring heights of vertices meets no vertex, so that its crossings pair up to stretches
// inside; the middle of a widest one is taken. Of all such lines the one through the two heights
// about the middle of the area is used; where parts lie above one another that may run between
// them, and the nearest one that meets the area is used instead.
#include "convert/points_of.h"

#include <algorithm>
#include <cmath>

#include "foundation/ring_math.h"
#include "foundation/segment_math.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

/// Calls `visit(points, n, isHole)` for the rings of a polygon or multi-polygon in order, `n`
/// stored points each.
template <class Visit>
void everyRing(const JWGeometry& polygon, const Visit& visit) {
    const auto ringsOf = [&](const JWPolygon& part) {
        bool isHole = false;
        for (const JWRing& ring : part.getRingList()) {
            visit(ring.getPointsPtr(), ring.getPointCount(), isHole);
            isHole = true;
        }
    };
    if (polygon.getGeometryType() == JWGeometryPolygon) {
        ringsOf(static_cast<const JWPolygon&>(polygon));
    } else if (polygon.getGeometryType() == JWGeometryMultiPolygon) {
        for (const JWPolygon& part : static_cast<const JWMultiPolygon&>(polygon).getMemberList())
            ringsOf(part);
    }
}

/// A weighted mean of points, relative to the first of them.
class Mean {
  public:
    void add(const JWRawPoint& p, double weight) {
        if (!m_begun) m_origin = p;
        m_begun = true;
        m_sumX += (p.x - m_origin.x) * weight;
        m_sumY += (p.y - m_origin.y) * weight;
        m_weight += weight;
    }
    /// Adds the segments of a list, weighted by their length.
    void addSegments(const JWRawPoint* p, std::size_t n) {
        if (n > 0) add(p[0], 0);
        for (std::size_t i = 0; i + 1 < n; ++i) {
            const JWRawPoint segment = difference(p[i + 1], p[i]);
            add(pointAlong(p[i], segment, 0.5), length(segment));
        }
    }
    bool hasWeight() const { return m_weight > 0 && std::isfinite(m_weight); }
    /// Appends the mean; without a weight the first point there was.
    void appendTo(Points& result) const {
        if (!m_begun) return;
        result.push_back(m_origin);
        if (hasWeight()) result.back().move(m_sumX / m_weight, m_sumY / m_weight);
    }

  private:
    JWRawPoint m_origin{0, 0};
    bool m_begun = false;
    double m_sumX = 0, m_sumY = 0, m_weight = 0;
};

void appendLengthCentroid(const JWGeometry& geometry, Points& result) {
    Mean mean;
    everyVertexList(geometry, [&](const JWRawPoint* p, std::size_t n) {
        mean.addSegments(p, n);
        return true;
    });
    mean.appendTo(result);
}

/// Walks through lines until a length is used up; false when it is longer than they are.
class LengthWalk {
  public:
    explicit LengthWalk(double length) : m_left(length) {}

    bool endsIn(const JWRawPoint* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            m_place = p[i];
            if (i + 1 == n) break;
            const double segment = pointDistance(p[i], p[i + 1]);
            if (m_left <= segment) {
                if (segment > 0)
                    m_place = pointAlong(p[i], difference(p[i + 1], p[i]),
                                         std::max(m_left, 0.0) / segment);
                return true;
            }
            m_left -= segment;
        }
        return false;
    }
    /// Where the walk ended, or the last point there was.
    const JWRawPoint& place() const { return m_place; }

  private:
    double m_left;
    JWRawPoint m_place{0, 0};
};

double lengthOf(const JWGeometry& lines) {
    double sum = 0;
    everyVertexList(lines, [&](const JWRawPoint* p, std::size_t n) {
        for (std::size_t i = 0; i + 1 < n; ++i) sum += pointDistance(p[i], p[i + 1]);
        return true;
    });
    return sum;
}

/// The different heights of vertices, sorted.
std::vector<double> heightsOf(const JWGeometry& polygon) {
    std::vector<double> heights;
    everyRing(polygon, [&](const JWRawPoint* p, int n, bool) {
        for (int i = 0; i < n; ++i) heights.push_back(p[i].y);
    });
    std::sort(heights.begin(), heights.end());
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
    return heights;
}

/// Finds the middle of the widest stretch of a row inside an area; false when there is none. The
/// row meets no vertex.
bool findWidest(const JWGeometry& polygon, double row, JWRawPoint& middle) {
    std::vector<double> crossings;
    everyRing(polygon, [&](const JWRawPoint* p, int n, bool) {
        for (int i = 0; i + 1 < n; ++i) {
            const JWRawPoint &a = p[i], &b = p[i + 1];
            if ((a.y < row) != (b.y < row))
                crossings.push_back(a.x + (row - a.y) / (b.y - a.y) * (b.x - a.x));
        }
    });
    std::sort(crossings.begin(), crossings.end());
    double widest = 0;
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        if (!(crossings[i + 1] - crossings[i] > widest)) continue;
        widest = crossings[i + 1] - crossings[i];
        middle.set(0.5 * crossings[i] + 0.5 * crossings[i + 1], row);
    }
    return widest > 0;
}

/// Calls `take(row)` for heights half way between two neighbouring ones, the one about the middle
/// first, then the others by their distance from it, until it returns true; a hundred at most,
/// since rows between the parts of an area alternate with rows through them.
template <class Take>
void everyRow(const std::vector<double>& heights, const Take& take) {
    if (heights.size() < 2) return;
    const double middle = 0.5 * heights.front() + 0.5 * heights.back();
    const auto rowAt = [&](std::size_t i) { return 0.5 * heights[i - 1] + 0.5 * heights[i]; };
    const auto first = static_cast<std::size_t>(
        std::upper_bound(heights.begin() + 1, heights.end() - 1, middle) - heights.begin());
    std::size_t above = first + 1, below = first - 1;  // rows to come, below counts down to 0
    std::size_t next = first;
    for (int tries = 0; tries < 100; ++tries) {
        const double row = rowAt(next);
        if (heights[next - 1] < row && row < heights[next] && take(row)) return;
        if (above == heights.size() && below == 0) return;
        const bool goesUp =
            below == 0 || (above < heights.size() && rowAt(above) - middle < middle - rowAt(below));
        next = goesUp ? above++ : below--;
    }
}

}  // namespace

void appendMean(const JWGeometry& points, Points& result) {
    Mean mean;
    everyVertexList(points, [&](const JWRawPoint* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) mean.add(p[i], 1);
        return true;
    });
    mean.appendTo(result);
}

void appendMiddleMember(const JWGeometry& points, Points& result) {
    Points mean;
    appendMean(points, mean);
    if (mean.empty()) return;
    double least = HUGE_VAL;
    JWRawPoint nearest = mean[0];
    everyVertexList(points, [&](const JWRawPoint* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            const double distance = pointDistance(p[i], mean[0]);
            if (!(distance < least)) continue;
            least = distance;
            nearest = p[i];
        }
        return true;
    });
    result.push_back(nearest);
}

void appendLineCentroid(const JWGeometry& lines, Points& result) {
    appendLengthCentroid(lines, result);
}

void appendMiddleOfLine(const JWGeometry& lines, Points& result) {
    LengthWalk walk(lengthOf(lines) / 2);
    bool any = false;
    everyVertexList(lines, [&](const JWRawPoint* p, std::size_t n) {
        any |= n > 0;
        return !walk.endsIn(p, n);
    });
    if (any) result.push_back(walk.place());
}

JWRawPoint pointAtLength(const JWLineString& line, double length) {
    LengthWalk walk(length);
    walk.endsIn(line.getPointsPtr(), line.getPointList().size());
    return walk.place();
}

void appendRingCentroids(const JWGeometry& polygon, Points& result) {
    everyRing(polygon, [&](const JWRawPoint* p, int n, bool) {
        JWRawPoint centre;
        if (ringCentroid(p, n, centre)) return result.push_back(centre);
        Mean mean;
        mean.addSegments(p, static_cast<std::size_t>(n));
        mean.appendTo(result);
    });
}

void appendAreaCentroid(const JWGeometry& polygon, Points& result) {
    Mean mean;
    everyRing(polygon, [&](const JWRawPoint* p, int n, bool isHole) {
        JWRawPoint centre;
        if (!ringCentroid(p, n, centre)) return;
        const double area = std::fabs(ringAreaLocal(p, n));
        mean.add(centre, isHole ? -area : area);
    });
    if (mean.hasWeight()) return mean.appendTo(result);
    appendLengthCentroid(polygon, result);
}

bool isWithinArea(const JWRawPoint& p, const JWGeometry& polygon) {
    CrossingCounter counter(p);
    bool isOnBoundary = false;
    everyRing(polygon, [&](const JWRawPoint* points, int n, bool) {
        for (int i = 0; i + 1 < n && !isOnBoundary; ++i)
            isOnBoundary = counter.meetsEdge(points[i], points[i + 1]);
    });
    return counter.odd() && !isOnBoundary;
}

void appendPointInArea(const JWGeometry& polygon, Points& result) {
    const std::size_t before = result.size();
    appendAreaCentroid(polygon, result);
    if (result.size() == before || isWithinArea(result.back(), polygon)) return;
    everyRow(heightsOf(polygon),
             [&](double row) { return findWidest(polygon, row, result.back()); });
}

void appendVertices(const JWGeometry& geometry, int everyNth, double leastSpacing, Points& result) {
    const auto step = static_cast<std::size_t>(std::max(everyNth, 1));
    const auto append = [&](const JWRawPoint* p, std::size_t n) {
        for (std::size_t i = 0; i < n; i += step) {
            if (i > 0 && leastSpacing > 0 && pointDistance(p[i], result.back()) < leastSpacing)
                continue;
            result.push_back(p[i]);
        }
        return true;
    };
    switch (geometry.getGeometryType()) {
        case JWGeometryPolygon:
        case JWGeometryMultiPolygon:
            everyRing(geometry, [&](const JWRawPoint* p, int n, bool) {
                const bool isClosed = n > 1 && p[0] == p[n - 1];
                append(p, static_cast<std::size_t>(isClosed ? n - 1 : n));
            });
            break;
        case JWGeometryMultiPoint: {
            Points members;
            everyVertexList(geometry, [&](const JWRawPoint* p, std::size_t n) {
                members.insert(members.end(), p, p + n);
                return true;
            });
            append(members.data(), members.size());
            break;
        }
        default:
            everyVertexList(geometry, append);
    }
}

}  // namespace jws::detail
