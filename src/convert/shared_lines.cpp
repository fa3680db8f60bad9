// SPDX-License-Identifier: MIT
//
// From rings to lines, once their vertices are numbered (boundary_vertices.h).
//
// A vertex is a node where more than two other vertices follow it along some ring, or where a ring
// turns back. At any other vertex every ring that comes along one of its two edges leaves along the
// other: the rings on both edges are the same, and no neighbour changes. So nodes need no look at
// polygons at all, and a stretch from node to node is known by its first edge. A ring without a
// node shares all of its vertices with another ring or none of them.
//
// Method: the vertex pairs of TopoJSON's joins (M. Bostock 2012), with edges matched beforehand.
#include "convert/shared_lines.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "convert/boundary_vertices.h"
#include "foundation/number_table.h"
#include "foundation/orientation.h"
#include "foundation/parallel.h"
#include "foundation/pulse.h"

namespace jws::detail {
namespace {

std::size_t at(int n) { return static_cast<std::size_t>(n); }

/// True when a ring runs counter-clockwise. Where rounding could turn the sign of the area, its
/// lowest vertex tells the direction of a simple ring without any; no area counts as true.
bool runsCounterClockwise(const RingView& ring) {
    const JWRawPoint o = ring.points[0];
    double sum = 0, size = 0;
    for (int i = 1; i + 1 < ring.count; ++i) {
        const JWRawPoint &a = ring.points[i], &b = ring.points[i + 1];
        const double plus = (a.x - o.x) * (b.y - o.y), minus = (b.x - o.x) * (a.y - o.y);
        sum += plus - minus;
        size += std::fabs(plus) + std::fabs(minus);
    }
    if (std::fabs(sum) > 4e-16 * ring.count * size) return sum > 0;
    const auto lowest =
        static_cast<int>(std::min_element(ring.points, ring.points + ring.count) - ring.points);
    const JWRawPoint& corner = ring.points[lowest];
    const auto other = [&](int step) {
        int i = lowest;
        do i = (i + step + ring.count) % ring.count;
        while (ring.points[i] == corner && i != lowest);
        return ring.points[i];
    };
    return orientationSign(other(-1), corner, other(1)) >= 0;
}

/// Which vertices are nodes.
std::vector<char> findNodes(const BoundaryVertices& rings) {
    std::vector<char> isNode(rings.points.size(), 0);
    std::vector<std::pair<int, int>> beside(rings.points.size(), {-1, -1});
    for (std::size_t r = 0; r < rings.ringCount(); ++r) {
        const int* begin = rings.begin(r);
        const int* end = rings.end(r);
        for (const int* v = begin; v != end; ++v) {
            const int before = v != begin ? v[-1] : end[-1];
            const int after = v + 1 != end ? v[1] : *begin;
            const std::pair<int, int> pair = std::minmax(before, after);
            std::pair<int, int>& known = beside[at(*v)];
            if (known.first == -1) known = pair;
            if (before == after || pair != known) isNode[at(*v)] = 1;
        }
    }
    return isNode;
}

/// Walks the rings and enters each line once.
class LineMaker {
  public:
    LineMaker(const BoundaryVertices& rings, SharedLines& result)
        : m_rings(rings),
          m_result(result),
          m_isNode(findNodes(rings)),
          m_starts(2 * nodePasses()),
          m_loops(rings.ringCount()) {}

    void makeLines() {
        StepCounter steps;
        for (std::size_t r = 0; r < m_rings.ringCount(); ++r) {
            steps.step(static_cast<std::size_t>(m_rings.end(r) - m_rings.begin(r)));
            const int* begin = m_rings.begin(r);
            const int* end = m_rings.end(r);
            const int* node = std::find_if(begin, end, [&](int v) { return m_isNode[at(v)] != 0; });
            if (node != end) {
                walkNodes(begin, end, node);
            } else if (begin != end) {
                walkLoop(begin, end);
            }
            m_result.rings.endList();
        }
    }

  private:
    /// A line as it leaves a node: the node, the vertex after it, and the line in that direction.
    struct Start {
        int node, next;
        LineStep step;
    };

    /// How often rings come through a node: no more lines than that begin or end there.
    std::size_t nodePasses() const {
        return static_cast<std::size_t>(std::count_if(m_rings.vertices.begin(),
                                                      m_rings.vertices.end(),
                                                      [&](int v) { return m_isNode[at(v)] != 0; }));
    }

    void walkNodes(const int* begin, const int* end, const int* first) {
        const auto count = static_cast<std::size_t>(end - begin);
        const auto offset = static_cast<std::size_t>(first - begin);
        const auto vertex = [&](std::size_t i) { return begin[(offset + i) % count]; };
        for (std::size_t from = 0; from < count;) {
            std::size_t to = from + 1;
            while (m_isNode[at(vertex(to))] == 0) ++to;
            addStep(lineBetween(vertex, from, to));
            from = to;
        }
    }

    template <class Vertex>
    LineStep lineBetween(const Vertex& vertex, std::size_t from, std::size_t to) {
        int& known = startAt(vertex(from), vertex(from + 1));
        if (known != -1) return m_startList[at(known)].step;
        const LineStep step{static_cast<int>(m_result.lines.count()), true};
        known = static_cast<int>(m_startList.size());
        m_startList.push_back({vertex(from), vertex(from + 1), step});
        for (std::size_t i = from; i <= to; ++i) addPoint(vertex(i));
        m_result.lines.endList();
        startAt(vertex(to), vertex(to - 1)) = static_cast<int>(m_startList.size());
        m_startList.push_back({vertex(to), vertex(to - 1), {step.line, false}});
        return step;
    }

    int& startAt(int node, int next) {
        return m_starts.find(
            hashOfWords(static_cast<std::uint64_t>(node), static_cast<std::uint64_t>(next)),
            [&](int i) {
                return m_startList[at(i)].node == node && m_startList[at(i)].next == next;
            });
    }

    /// A ring without nodes: the line of a ring that has its lowest vertex, or a new one.
    void walkLoop(const int* begin, const int* end) {
        const int lowest = *std::min_element(begin, end);
        int& known = m_loops.find(hashOfWords(static_cast<std::uint64_t>(lowest), 0),
                                  [&](int i) { return m_loopList[at(i)].lowest == lowest; });
        if (known != -1) {
            const Loop& loop = m_loopList[at(known)];
            const int* v = std::find(begin, end, loop.first);
            const int next = v + 1 != end ? v[1] : *begin;
            return addStep({loop.line, next == loop.second});
        }
        known = static_cast<int>(m_loopList.size());
        m_loopList.push_back(
            {lowest, begin[0], begin[1], static_cast<int>(m_result.lines.count())});
        addStep({m_loopList.back().line, true});
        for (const int* v = begin; v != end; ++v) addPoint(*v);
        addPoint(*begin);
        m_result.lines.endList();
    }

    void addPoint(int vertex) { m_result.lines.members.push_back(m_rings.points[at(vertex)]); }
    void addStep(LineStep step) { m_result.rings.members.push_back(step); }

    struct Loop {
        int lowest, first, second, line;
    };

    const BoundaryVertices& m_rings;
    SharedLines& m_result;
    std::vector<char> m_isNode;
    std::vector<Start> m_startList;
    NumberTable m_starts;
    std::vector<Loop> m_loopList;
    NumberTable m_loops;
};

/// A ring's run along a line: which polygon it bounds, and whether that lies on the line's left.
struct Side {
    int owner;
    bool isLeft;
};

/// For each ring whether its polygon lies on its left.
std::vector<char> findInteriors(const RingViews& rings, const SharedLines& result,
                                const Team& team) {
    constexpr std::int64_t chunk = 256;
    std::vector<char> isLeft(rings.size(), 0);
    const auto find = [&](std::int64_t begin, std::int64_t end) {
        for (auto r = static_cast<std::size_t>(begin); r < static_cast<std::size_t>(end); ++r) {
            if (result.rings[r].size() == 0) continue;
            isLeft[r] = runsCounterClockwise(rings[r]) == (rings[r].hole == 0) ? 1 : 0;
        }
        Pulse::tick();
        return true;
    };
    parallelChunks(team, static_cast<std::int64_t>(rings.size()), chunk, find);
    return isLeft;
}

/// The runs along each line, in the order of the rings.
ListOfLists<Side> findRuns(const RingViews& rings, const std::vector<int>& owners,
                           const SharedLines& result, const Team& team) {
    const std::vector<char> isLeft = findInteriors(rings, result, team);
    ListOfLists<Side> runs;
    std::vector<std::size_t> next(result.lines.count() + 1, 0);
    for (const LineStep& step : result.rings.members) ++next[at(step.line) + 1];
    for (std::size_t i = 1; i < next.size(); ++i) next[i] += next[i - 1];
    runs.ends.assign(next.begin() + 1, next.end());
    runs.members.resize(result.rings.members.size());
    for (std::size_t r = 0; r < rings.size(); ++r)
        for (const LineStep& step : result.rings[r])
            runs.members[next[at(step.line)]++] = {owners[r], (isLeft[r] != 0) == step.forward};
    return runs;
}

/// Names the polygons beside each line. A polygon that runs along it to and fro stands on the side
/// that prevails; where neither does, on both, but only if there is nobody else.
void findSides(const RingViews& rings, const std::vector<int>& owners, const Team& team,
               SharedLines& result) {
    const ListOfLists<Side> runs = findRuns(rings, owners, result, team);
    StepCounter steps;
    for (std::size_t line = 0; line < result.lines.count(); ++line) {
        const ListView<Side> along = runs[line];
        steps.step(along.size());
        const std::size_t left = result.left.members.size(), right = result.right.members.size();
        for (const Side& own : along) {
            const auto isSame = [&](const Side& other) { return other.owner == own.owner; };
            if (std::find_if(along.begin(), along.end(), isSame) != &own) continue;
            int balance = 0;
            for (const Side& other : along)
                if (isSame(other)) balance += other.isLeft ? 1 : -1;
            if (balance > 0) result.left.members.push_back(own.owner);
            if (balance < 0) result.right.members.push_back(own.owner);
        }
        if (result.left.members.size() == left && result.right.members.size() == right) {
            result.left.members.push_back(along[0].owner);
            result.right.members.push_back(along[0].owner);
        }
        result.left.endList();
        result.right.endList();
    }
}

}  // namespace

SharedLines findSharedLines(const RingViews& rings, const std::vector<int>& owners,
                            double tolerance, int threads) {
    SharedLines result;
    const Team team(threads);
    const BoundaryVertices vertices = findBoundaryVertices(rings, tolerance, team);
    LineMaker(vertices, result).makeLines();
    findSides(rings, owners, team, result);
    return result;
}

}  // namespace jws::detail
