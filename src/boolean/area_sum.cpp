// SPDX-License-Identifier: MIT
#include "boolean/area_sum.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace jws::detail {
namespace {

constexpr std::size_t kFirstSlots = 1024;

std::uint64_t bitsOf(double v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return bits;
}

std::uint64_t hashOf(const JWRawPoint& a, const JWRawPoint& b) {
    std::uint64_t h = bitsOf(a.x) * 0x9E3779B97F4A7C15u;
    h = (h ^ (h >> 29) ^ bitsOf(a.y)) * 0xBF58476D1CE4E5B9u;
    h = (h ^ (h >> 32) ^ bitsOf(b.x)) * 0x94D049BB133111EBu;
    h = (h ^ (h >> 29) ^ bitsOf(b.y)) * 0x9E3779B97F4A7C15u;
    return h ^ (h >> 32);
}

/// The same point with one zero only, so that equal points have equal bits.
JWRawPoint plainZero(const JWRawPoint& p) { return {p.x + 0.0, p.y + 0.0}; }

bool startsBefore(const AreaSum::Edge& a, const AreaSum::Edge& b) {
    return a.from != b.from ? a.from < b.from : a.to < b.to;
}

/// Strings directed edges together to loops. Each place is left as often as it is reached. A value
/// to keep for many calls.
class LoopTracer {
  public:
    /// `edges` are sorted by their start.
    void trace(const AreaSum::Edges& edges, RingSet& loops) {
        emptyKept(m_left);
        emptyKept(m_cursor);
        m_left.reserve(edges.size());
        m_cursor.reserve(edges.size());
        for (std::size_t i = 0; i < edges.size(); ++i) {
            m_left.push_back(edges[i].times);
            m_cursor.push_back(i);
        }
        StepCounter pace;
        for (std::size_t i = 0; i < edges.size(); ++i) {
            pace.step();
            while (m_left[i] > 0) follow(edges, i, loops);
        }
    }

  private:
    void follow(const AreaSum::Edges& edges, std::size_t first, RingSet& loops) {
        for (std::size_t i = first; i < edges.size(); i = leaving(edges, edges[i].to)) {
            --m_left[i];
            loops.addPoint(edges[i].from);
            if (edges[i].to == edges[first].from) break;
        }
        loops.endRing(0);
    }

    /// An edge that starts at `p` and is still there.
    std::size_t leaving(const AreaSum::Edges& edges, const JWRawPoint& p) {
        const auto found = std::lower_bound(
            edges.begin(), edges.end(), p,
            [](const AreaSum::Edge& edge, const JWRawPoint& q) { return edge.from < q; });
        if (found == edges.end()) return edges.size();
        std::size_t& i = m_cursor[static_cast<std::size_t>(found - edges.begin())];
        while (i < edges.size() && m_left[i] == 0) ++i;
        return i;
    }

    std::vector<std::size_t> m_cursor;  ///< at the first edge of each start: the next one to take
    std::vector<int> m_left;
};

}  // namespace

void AreaSum::clear() {
    emptyKept(m_edges);
    if (m_slots.size() > (std::size_t{1} << 18)) m_slots = {};
    m_used = 0;
}

void AreaSum::grow() {
    const std::size_t size = std::max(kFirstSlots, 2 * m_used);
    m_used = size;
    if (m_slots.size() < size) m_slots.resize(size);
    std::fill_n(m_slots.begin(), size, 0u);
    for (std::size_t k = 0; k < m_edges.size(); ++k) {
        std::size_t i = hashOf(m_edges[k].from, m_edges[k].to) & (size - 1);
        while (m_slots[i] != 0) i = (i + 1) & (size - 1);
        m_slots[i] = static_cast<std::uint32_t>(k + 1);
    }
}

void AreaSum::addEdge(const JWRawPoint& from, const JWRawPoint& to, int times) {
    if (from == to) return;
    if (to < from) return addEdge(to, from, -times);
    if (2 * (m_edges.size() + 1) > m_used) grow();
    const std::size_t mask = m_used - 1;
    std::size_t i = hashOf(from, to) & mask;
    for (; m_slots[i] != 0; i = (i + 1) & mask) {
        Edge& edge = m_edges[m_slots[i] - 1];
        if (edge.from == from && edge.to == to) {
            edge.times += times;
            return;
        }
    }
    m_edges.push_back({from, to, times});
    m_slots[i] = static_cast<std::uint32_t>(m_edges.size());
}

void AreaSum::addRing(const RingView& ring, bool forward) {
    m_pace.step(static_cast<std::size_t>(ring.count));
    JWRawPoint last = plainZero(ring.points[ring.count - 1]);
    for (int i = 0; i < ring.count; ++i) {
        const JWRawPoint p = plainZero(ring.points[i]);
        addEdge(last, p, forward ? 1 : -1);
        last = p;
    }
}

void AreaSum::gather(const JWGeometry& area) {
    emptyKept(m_rings);
    appendRings(area, m_rings);
    dropPoints();
}

/// Leaves out rings that enclose nothing.
void AreaSum::dropPoints() {
    m_rings.erase(std::remove_if(m_rings.begin(), m_rings.end(),
                                 [](const RingView& ring) { return ring.count < 3; }),
                  m_rings.end());
}

PlainArea AreaSum::classify(const JWGeometry& area) {
    gather(area);
    return m_test.test(m_rings);
}

double AreaSum::add(const JWGeometry& area, PlainArea kind) {
    gather(area);
    return addGathered(kind);
}

double AreaSum::add(const RingViews& rings) {
    m_rings = rings;
    dropPoints();
    return addGathered(m_test.test(m_rings));
}

double AreaSum::addGathered(PlainArea kind) {
    if (m_rings.empty()) return 0;
    return kind.plain ? addPlain(m_rings, kind) : addResolved(m_rings);
}

double AreaSum::addPlain(const RingViews& rings, PlainArea kind) {
    double twice = 0;
    for (std::size_t i = 0; i < rings.size(); ++i) {
        const bool forward = (kind.interiorLeft >> i & 1u) != 0;
        addRing(rings[i], forward);
        twice += forward ? twiceArea(rings[i]) : -twiceArea(rings[i]);
    }
    return 0.5 * twice;
}

/// The engine's contours have their interior on the left, by its own promise. Their areas would not
/// tell: those of huge ones are no numbers, and those of slivers may round to the wrong side of 0.
double AreaSum::addResolved(const RingViews& rings) {
    const ClippedContours contours = clipRings(rings, {}, JWBooleanUnion);
    double twice = 0;
    for (int i = 0; i < contours.count(); ++i) {
        const RingView ring = contours.view(i);
        addRing(ring, true);
        twice += twiceArea(ring);
    }
    return 0.5 * twice;
}

void AreaSum::add(const Edges& edges) {
    m_pace.step(edges.size());
    for (const Edge& edge : edges) addEdge(edge.from, edge.to, edge.times);
}

AreaSum::Edges AreaSum::rest() const {
    Edges left;
    rest(left);
    return left;
}

void AreaSum::rest(Edges& left) const {
    emptyKept(left);
    left.reserve(static_cast<std::size_t>(
        std::count_if(m_edges.begin(), m_edges.end(), [](const Edge& e) { return e.times != 0; })));
    for (const Edge& edge : m_edges) {
        if (edge.times > 0) left.push_back(edge);
        if (edge.times < 0) left.push_back({edge.to, edge.from, -edge.times});
    }
}

ClippedContours AreaSum::unite(Edges& edges, double& overlap) {
    thread_local LoopTracer tracer;
    thread_local RingSet loops;
    thread_local RingViews views;
    std::sort(edges.begin(), edges.end(), startsBefore);
    loops.clear();
    tracer.trace(edges, loops);
    emptyKept(views);
    views.reserve(static_cast<std::size_t>(loops.count()));
    for (int i = 0; i < loops.count(); ++i) views.push_back(loops.view(i));
    return uniteDirected(views, overlap);
}

}  // namespace jws::detail
