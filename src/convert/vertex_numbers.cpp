// SPDX-License-Identifier: MIT
#include "convert/vertex_numbers.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <stdexcept>

#include "foundation/number_table.h"
#include "foundation/pulse.h"
#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

bool isFinite(const RingView& ring) {
    double check = 0;
    for (int i = 0; i < ring.count; ++i) {
        const JWRawPoint& p = ring.points[i];
        check += (p.x - p.x) + (p.y - p.y);
    }
    return check == 0;
}

std::size_t pointCountOf(const RingViews& rings) {
    std::size_t count = 0;
    for (const RingView& ring : rings) count += static_cast<std::size_t>(std::max(ring.count, 0));
    if (count > INT_MAX) throw std::length_error("more boundary points than can be counted");
    return count;
}

/// Numbers points that are equal.
class ExactNumbers {
  public:
    ExactNumbers(std::vector<JWRawPoint>& points, std::size_t most)
        : m_points(points), m_table(most) {}

    int numberOf(const JWRawPoint& p) {
        int& number = m_table.find(hashOfNumbers(p.x, p.y), [&](int n) {
            return m_points[static_cast<std::size_t>(n)] == p;
        });
        if (number == -1) {
            number = static_cast<int>(m_points.size());
            m_points.push_back(p);
        }
        return number;
    }

  private:
    std::vector<JWRawPoint>& m_points;
    NumberTable m_table;
};

/// Numbers points that are near each other: the nearest that has a number, the first of several.
class NearNumbers {
  public:
    NearNumbers(std::vector<JWRawPoint>& points, std::size_t most, double tolerance)
        : m_points(points), m_table(most), m_tolerance(tolerance) {}

    int numberOf(const JWRawPoint& p) {
        const double column = std::floor(p.x / m_tolerance), row = std::floor(p.y / m_tolerance);
        int nearest = -1;
        double least = m_tolerance;
        for (int i = -1; i <= 1; ++i) {
            for (int j = -1; j <= 1; ++j) {
                for (int n = cell(column + i, row + j); n != -1; n = m_next[at(n)]) {
                    const double distance = pointDistance(p, m_points[at(n)]);
                    if (distance > least || (distance == least && nearest != -1 && n > nearest))
                        continue;
                    least = distance;
                    nearest = n;
                }
            }
        }
        if (nearest != -1) return nearest;
        const int number = static_cast<int>(m_points.size());
        m_points.push_back(p);
        int& first = cell(column, row);
        m_next.push_back(first);
        first = number;
        return number;
    }

  private:
    static std::size_t at(int n) { return static_cast<std::size_t>(n); }

    /// The last vertex entered into a cell. A slot without one is good for a new cell.
    int& cell(double column, double row) {
        return m_table.find(hashOfNumbers(column, row), [&](int n) {
            const JWRawPoint& p = m_points[at(n)];
            return std::floor(p.x / m_tolerance) == column && std::floor(p.y / m_tolerance) == row;
        });
    }

    std::vector<JWRawPoint>& m_points;
    std::vector<int> m_next;  ///< the vertex entered before it into the same cell
    NumberTable m_table;
    double m_tolerance;
};

template <class Numbers>
void numberRings(const RingViews& rings, Numbers&& numbers, BoundaryVertices& result) {
    StepCounter steps;
    for (const RingView& ring : rings) {
        const std::size_t first = result.vertices.size();
        steps.step(static_cast<std::size_t>(std::max(ring.count, 0)));
        if (isFinite(ring)) {
            for (int i = 0; i < ring.count; ++i) {
                const int number = numbers.numberOf(ring.points[i]);
                if (result.vertices.size() == first || result.vertices.back() != number)
                    result.vertices.push_back(number);
            }
        }
        std::size_t end = result.vertices.size();
        while (end > first + 1 && result.vertices[end - 1] == result.vertices[first]) --end;
        result.vertices.resize(end < first + 2 ? first : end);
        result.ends.push_back(result.vertices.size());
    }
}

}  // namespace

BoundaryVertices numberVertices(const RingViews& rings, double tolerance) {
    BoundaryVertices result;
    const std::size_t most = pointCountOf(rings);
    result.vertices.reserve(most);
    if (tolerance > 0) {
        numberRings(rings, NearNumbers(result.points, most, tolerance), result);
    } else {
        numberRings(rings, ExactNumbers(result.points, most), result);
    }
    return result;
}

double usableTolerance(const RingViews& rings, double tolerance) {
    if (!(tolerance > 0)) return 0;
    double largest = 0;
    for (const RingView& ring : rings) {
        if (!isFinite(ring)) continue;
        for (int i = 0; i < ring.count; ++i) {
            largest = std::max({largest, std::fabs(ring.points[i].x), std::fabs(ring.points[i].y)});
        }
    }
    return std::isfinite(tolerance) && tolerance > 1e-15 * largest ? tolerance : 0;
}

}  // namespace jws::detail
