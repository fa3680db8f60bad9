// SPDX-License-Identifier: MIT
//
// The vertices of boundaries, so that edges in common can be told by their ends alone.
//
// Two steps. First every point gets a number (vertex_numbers.h), with a tolerance that of a point
// near it. Then every different edge (edge_list.h) is compared with the vertices around it through
// a tree (vertex_search.h); those on the edge (or within the tolerance of it) are put into all
// rings that run along it, in their order. From then on boundaries that run along one another do so
// from vertex to vertex, whatever vertices each of them had.
//
// With a tolerance, the edges bent in this way are looked at once more, for vertices exactly on
// them; they are not bent again, since that could go on for ever. Edges that cross are not cut: a
// crossing is no vertex of either.
//
// A vertex near a corner may lie within the tolerance of both its edges, though not of the corner.
// Both are then bent through it, and the ring would run from it to the corner and straight back:
// the corner gives way to the vertex, unless it is so sharp that it reaches far beyond.
//
// A team shares out the comparison of edges with vertices, which takes most of the time, and makes
// the tree beside the list of edges.
//
// Cost: O(n log n) for n vertices, as long as edges have few vertices beside them.
#include "convert/boundary_vertices.h"

#include <climits>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <utility>

#include "convert/edge_list.h"
#include "convert/vertex_numbers.h"
#include "convert/vertex_search.h"
#include "foundation/pulse.h"

namespace jws::detail {
namespace {

/// What is to be put into edges, for each place of an edge list, found by a team: each worker has
/// some neighbouring vertices at a time, and a list for what it finds beside their edges.
class Insertions {
  public:
    Insertions(const EdgeList& edges, const VertexSearch& search, double tolerance,
               const Team& team)
        : m_ranges(edges.placeCount()) {
        constexpr std::int64_t chunk = 2048;
        const std::vector<int>& order = search.inOrder();
        const auto count = static_cast<std::int64_t>(order.size());
        m_lists.resize(static_cast<std::size_t>((count + chunk - 1) / chunk));
        parallelChunks(team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
            std::vector<int>& found = m_lists[static_cast<std::size_t>(begin / chunk)];
            std::vector<VertexSearch::Along> beside;
            for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i)
                for (std::size_t p = edges.begin(order[i]); p < edges.end(order[i]); ++p) {
                    const std::size_t before = found.size();
                    search.find(order[i], edges.to(p), tolerance, beside, found);
                    m_ranges[p] = {static_cast<int>(begin / chunk), static_cast<int>(before),
                                   static_cast<int>(found.size())};
                }
            Pulse::tick();
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
    StepCounter steps;
    for (std::size_t r = 0; r < rings.ringCount(); ++r) {
        steps.step(static_cast<std::size_t>(rings.end(r) - rings.begin(r)));
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
void splitEdges(const EdgeList& edges, const VertexSearch& search, double tolerance,
                const Team& team, BoundaryVertices& rings) {
    const Insertions found(edges, search, tolerance, team);
    if (found.count() > 0) insertVertices(edges, found, tolerance, rings);
}

}  // namespace

BoundaryVertices findBoundaryVertices(const RingViews& rings, double tolerance, const Team& team) {
    tolerance = usableTolerance(rings, tolerance);
    BoundaryVertices result = numberVertices(rings, tolerance);
    std::optional<EdgeList> edges;
    std::optional<VertexSearch> search;
    const auto prepare = [&](std::int64_t which, std::int64_t) {
        if (which == 0) search.emplace(result.points);
        if (which == 1) edges.emplace(result);
        Pulse::tick();
        return true;
    };
    parallelChunks(team, 2, 1, prepare);
    if (tolerance > 0) {
        splitEdges(*edges, *search, tolerance, team, result);
        edges.emplace(result);
    }
    splitEdges(*edges, *search, 0, team, result);
    return result;
}

}  // namespace jws::detail
