// SPDX-License-Identifier: MIT
//
// The vertices of boundaries, so that edges in common can be told by their ends alone.
//
// Two steps. First every point gets a number by a hash table; with a tolerance, a point within it
// of one that has a number already takes the nearest such number, found through a grid of cells as
// large as the tolerance. Points that keep a number of their own are therefore farther apart than
// the tolerance, and no point moves farther. Then every different edge is compared with the
// vertices around it through a tree; those on the edge (or within the tolerance of it) are put into
// all rings that run along it, in their order. From then on boundaries that run along one another
// do so from vertex to vertex, whatever vertices each of them had.
//
// "On the edge" is decided without rounding. With a tolerance, the edges bent in this way are
// looked at once more, for vertices exactly on them; they are not bent again, since that could go
// on for ever. Edges that cross are not cut: a crossing is no vertex of either.
//
// A vertex near a corner may lie within the tolerance of both its edges, though not of the corner.
// Both are then bent through it, and the ring would run from it to the corner and straight back:
// the corner gives way to the vertex, unless it is so sharp that it reaches far beyond.
//
// A team shares out the comparison of edges with vertices, which takes most of the time.
//
// Cost: O(n log n) for n vertices, as long as edges have few vertices beside them.
#include "convert/boundary_vertices.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "boolean/packed_tree.h"
#include "convert/number_table.h"
#include "foundation/orientation.h"
#include "foundation/parallel.h"
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
    for (const RingView& ring : rings) {
        const std::size_t first = result.vertices.size();
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

/// The different edges of rings, each from its lower vertex to the higher one, in the order of the
/// lower ones.
class EdgeList {
  public:
    explicit EdgeList(const BoundaryVertices& rings) : m_first(rings.points.size() + 1, 0) {
        forEach(rings, [&](int a, int) { ++m_first[at(a) + 1]; });
        for (std::size_t i = 1; i < m_first.size(); ++i) m_first[i] += m_first[i - 1];
        m_to.resize(m_first.back());
        std::vector<std::size_t> next(m_first.begin(), m_first.end() - 1);
        forEach(rings, [&](int a, int b) { m_to[next[at(a)]++] = b; });
        m_end = std::move(next);
        for (std::size_t a = 0; a + 1 < m_first.size(); ++a) {
            const auto from = m_to.begin() + static_cast<std::ptrdiff_t>(m_first[a]);
            const auto to = m_to.begin() + static_cast<std::ptrdiff_t>(m_end[a]);
            std::sort(from, to);
            m_end[a] = static_cast<std::size_t>(std::unique(from, to) - m_to.begin());
        }
    }

    /// Places of the edges from `a` to higher vertices.
    std::size_t begin(int a) const { return m_first[at(a)]; }
    std::size_t end(int a) const { return m_end[at(a)]; }
    int to(std::size_t place) const { return m_to[place]; }
    std::size_t placeCount() const { return m_to.size(); }
    std::size_t placeOf(int a, int b) const {
        const auto from = m_to.begin() + static_cast<std::ptrdiff_t>(begin(a));
        const auto to = m_to.begin() + static_cast<std::ptrdiff_t>(end(a));
        return static_cast<std::size_t>(std::lower_bound(from, to, b) - m_to.begin());
    }

  private:
    static std::size_t at(int n) { return static_cast<std::size_t>(n); }

    template <class Take>
    static void forEach(const BoundaryVertices& rings, const Take& take) {
        for (std::size_t r = 0; r < rings.ringCount(); ++r) {
            const int* end = rings.end(r);
            for (const int* v = rings.begin(r); v != end; ++v) {
                const int next = v + 1 != end ? v[1] : *rings.begin(r);
                take(std::min(*v, next), std::max(*v, next));
            }
        }
    }

    std::vector<std::size_t> m_first;
    std::vector<std::size_t> m_end;
    std::vector<int> m_to;
};

/// Finds the vertices beside edges.
class VertexSearch {
  public:
    explicit VertexSearch(const std::vector<JWRawPoint>& points) : m_points(points) {
        std::vector<JWEnvelop> boxes;
        boxes.reserve(points.size());
        for (const JWRawPoint& p : points) boxes.emplace_back(p.x, p.y, p.x, p.y);
        m_tree = PackedTree(boxes);
    }

    /// The vertices in an order in which neighbours lie near each other.
    const std::vector<int>& inOrder() const { return m_tree.items(); }

    /// A vertex, and how far along an edge it lies.
    using Along = std::pair<double, int>;

    /// Appends the vertices on the edge from a to b, or within `tolerance` of it, in the order from
    /// a to b. `beside` is memory that a worker uses again.
    void find(int a, int b, double tolerance, std::vector<Along>& beside,
              std::vector<int>& found) const {
        const JWRawPoint &from = point(a), &to = point(b);
        const JWEnvelop box(std::min(from.x, to.x) - tolerance, std::min(from.y, to.y) - tolerance,
                            std::max(from.x, to.x) + tolerance, std::max(from.y, to.y) + tolerance);
        beside.clear();
        const auto take = [&](int v) {
            if (v != a && v != b && isBeside(point(v), from, to, tolerance))
                beside.emplace_back(dot(difference(point(v), from), difference(to, from)), v);
            return false;
        };
        const auto mayHold = [&](const JWEnvelop& e) {
            return !e.isDisjoin(box) && !isClearOf(e, from, to, tolerance);
        };
        m_tree.search(mayHold, take);
        sortAlong(from, to, tolerance, beside);
        for (const auto& [along, v] : beside) found.push_back(v);
    }

  private:
    const JWRawPoint& point(int v) const { return m_points[static_cast<std::size_t>(v)]; }

    /// The line through a and b passes the rectangle by more than the tolerance and any rounding: a
    /// long slanting edge visits what lies along it, not all of its rectangle.
    static bool isClearOf(const JWEnvelop& e, const JWRawPoint& a, const JWRawPoint& b,
                          double tolerance) {
        const JWRawPoint v = difference(b, a), middle = e.center();
        const double dx = std::fabs(v.x), dy = std::fabs(v.y);
        const double reachX = 0.5 * e.width() + tolerance + 1e-14 * (dx + std::fabs(a.x));
        const double reachY = 0.5 * e.height() + tolerance + 1e-14 * (dy + std::fabs(a.y));
        return std::fabs(cross(v, difference(middle, a))) > 1.001 * (dx * reachY + dy * reachX);
    }

    static bool isBeside(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b,
                         double tolerance) {
        return tolerance > 0 ? segmentDistance(p, a, b) <= tolerance
                             : orientationSign(a, b, p) == 0;
    }

    /// Points exactly on the edge are sorted by their coordinates, which is exact too.
    void sortAlong(const JWRawPoint& from, const JWRawPoint& to, double tolerance,
                   std::vector<Along>& beside) const {
        if (beside.size() < 2) return;
        std::sort(beside.begin(), beside.end(), [&](const auto& u, const auto& v) {
            if (tolerance > 0) return u < v;
            return from < to ? point(u.second) < point(v.second)
                             : point(v.second) < point(u.second);
        });
    }

    const std::vector<JWRawPoint>& m_points;
    PackedTree m_tree;
};

/// What is to be put into edges, for each place of an edge list, found by a team: each worker has
/// some neighbouring vertices at a time, and a list for what it finds beside their edges.
class Insertions {
  public:
    Insertions(const EdgeList& edges, const VertexSearch& search, double tolerance, int threads)
        : m_ranges(edges.placeCount()) {
        constexpr std::int64_t chunk = 2048;
        const std::vector<int>& order = search.inOrder();
        const auto count = static_cast<std::int64_t>(order.size());
        m_lists.resize(static_cast<std::size_t>((count + chunk - 1) / chunk));
        parallelChunks(Team(threads), count, chunk, [&](std::int64_t begin, std::int64_t end) {
            std::vector<int>& found = m_lists[static_cast<std::size_t>(begin / chunk)];
            std::vector<VertexSearch::Along> beside;
            for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i)
                for (std::size_t p = edges.begin(order[i]); p < edges.end(order[i]); ++p) {
                    const std::size_t before = found.size();
                    search.find(order[i], edges.to(p), tolerance, beside, found);
                    m_ranges[p] = {static_cast<int>(begin / chunk), static_cast<int>(before),
                                   static_cast<int>(found.size())};
                }
            return true;
        });
    }

    std::size_t count() const {
        std::size_t count = 0;
        for (const std::vector<int>& list : m_lists) count += list.size();
        return count;
    }
    const int* begin(std::size_t place) const { return listOf(place) + m_ranges[place].begin; }
    const int* end(std::size_t place) const { return listOf(place) + m_ranges[place].end; }

  private:
    struct Range {
        int list = 0, begin = 0, end = 0;
    };
    const int* listOf(std::size_t place) const {
        return m_lists[static_cast<std::size_t>(m_ranges[place].list)].data();
    }

    std::vector<Range> m_ranges;
    std::vector<std::vector<int>> m_lists;
};

/// One ring on its way into the result, while vertices are put in.
class BentRing {
  public:
    /// `mayTurnBack(v, corner)` tells whether a ring may run from an inserted vertex to a corner
    /// and back.
    template <class MayTurnBack>
    void add(int vertex, bool isInserted, const MayTurnBack& mayTurnBack) {
        const std::size_t n = m_vertices.size();
        // One of the two is inserted: what the ring turns back to by itself it keeps.
        if (n >= 2 && m_vertices[n - 2] == vertex && (isInserted || m_isInserted[n - 2] != 0) &&
            !mayTurnBack(vertex, m_vertices[n - 1])) {
            m_vertices.pop_back();
            m_isInserted.pop_back();
            if (!isInserted) m_isInserted.back() = 0;
            return;
        }
        m_vertices.push_back(vertex);
        m_isInserted.push_back(isInserted ? 1 : 0);
    }
    /// The same about the first vertex; then hands the ring out.
    template <class MayTurnBack>
    void moveTo(std::vector<int>& vertices, const MayTurnBack& mayTurnBack) {
        std::size_t first = 0, end = m_vertices.size();
        while (end - first > 2 && m_vertices[first + 1] == m_vertices[end - 1] &&
               (m_isInserted[first + 1] != 0 || m_isInserted[end - 1] != 0) &&
               !mayTurnBack(m_vertices[end - 1], m_vertices[first])) {
            ++first;
            --end;
        }
        vertices.insert(vertices.end(), m_vertices.begin() + static_cast<std::ptrdiff_t>(first),
                        m_vertices.begin() + static_cast<std::ptrdiff_t>(end));
        m_vertices.clear();
        m_isInserted.clear();
    }

  private:
    std::vector<int> m_vertices;
    std::vector<char> m_isInserted;
};

void insertVertices(const EdgeList& edges, const Insertions& found, double tolerance,
                    BoundaryVertices& rings) {
    const auto mayTurnBack = [&](int v, int corner) {
        const auto pointOf = [&](int n) { return rings.points[static_cast<std::size_t>(n)]; };
        return !(pointDistance(pointOf(v), pointOf(corner)) <= 2 * tolerance);
    };
    std::vector<int> vertices;
    vertices.reserve(rings.vertices.size() + found.count());
    std::vector<std::size_t> ends;
    BentRing ring;
    for (std::size_t r = 0; r < rings.ringCount(); ++r) {
        const int* end = rings.end(r);
        for (const int* v = rings.begin(r); v != end; ++v) {
            const int next = v + 1 != end ? v[1] : *rings.begin(r);
            const std::size_t place = edges.placeOf(std::min(*v, next), std::max(*v, next));
            ring.add(*v, false, mayTurnBack);
            const int *from = found.begin(place), *to = found.end(place);
            if (*v < next) {
                while (from != to) ring.add(*from++, true, mayTurnBack);
            } else {
                while (from != to) ring.add(*--to, true, mayTurnBack);
            }
        }
        ring.moveTo(vertices, mayTurnBack);
        ends.push_back(vertices.size());
    }
    if (vertices.size() > INT_MAX)
        throw std::length_error("more boundary points than can be counted");
    rings.vertices = std::move(vertices);
    rings.ends = std::move(ends);
}

/// Puts vertices into the edges that they lie beside.
void splitEdges(const VertexSearch& search, double tolerance, int threads,
                BoundaryVertices& rings) {
    const EdgeList edges(rings);
    const Insertions found(edges, search, tolerance, threads);
    if (found.count() > 0) insertVertices(edges, found, tolerance, rings);
}

/// The tolerance, or 0 where it is below what the coordinates resolve.
double usableTolerance(const RingViews& rings, double tolerance) {
    double largest = 0;
    for (const RingView& ring : rings) {
        if (!isFinite(ring)) continue;
        for (int i = 0; i < ring.count; ++i) {
            largest = std::max({largest, std::fabs(ring.points[i].x), std::fabs(ring.points[i].y)});
        }
    }
    return std::isfinite(tolerance) && tolerance > 1e-15 * largest ? tolerance : 0;
}

}  // namespace

BoundaryVertices findBoundaryVertices(const RingViews& rings, double tolerance, int threads) {
    BoundaryVertices result;
    const std::size_t most = pointCountOf(rings);
    tolerance = tolerance > 0 ? usableTolerance(rings, tolerance) : 0;
    result.vertices.reserve(most);
    if (tolerance > 0) {
        numberRings(rings, NearNumbers(result.points, most, tolerance), result);
    } else {
        numberRings(rings, ExactNumbers(result.points, most), result);
    }
    const VertexSearch search(result.points);
    if (tolerance > 0) splitEdges(search, tolerance, threads, result);
    splitEdges(search, 0, threads, result);
    return result;
}

}  // namespace jws::detail
