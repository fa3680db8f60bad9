// SPDX-License-Identifier: MIT
//
// Assigns holes to outer rings.
//
// Both groupings ask, for each hole, which ring comes first of those that contain it. Tested ring
// against ring that is quadratic in rings and reads all their points. A ring that contains a point
// has it in its rectangle, so an R-tree over the rectangles, bulk-loaded, names the few candidates;
// they are tried in ring order, so that the answer is the one of the plain scan. Few rings are
// scanned without a tree. A ring that is asked again and again gets a tree over its edges.
//
// Where a vertex lies is decided without rounding: holes may be slivers that touch their outer ring
// or run along it one unit in the last place away.
#include "boolean/ring_grouping.h"

#include <algorithm>
#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <memory>
#include <utility>

#include "foundation/edge_tree.h"
#include "foundation/exact_crossings.h"

namespace jws::detail {
namespace {

namespace bg = boost::geometry;

/// Finds rings by a point that they contain.
class RingFinder {
  public:
    explicit RingFinder(const std::vector<JWRing>& rings) : m_rings(rings) {
        if (rings.size() <= kScanned) return;
        std::vector<Entry> entries;
        entries.reserve(rings.size());
        for (std::size_t i = 0; i < rings.size(); ++i) {
            const JWEnvelop e = rings[i].getEnvelop();
            if (!e.isValid()) continue;
            entries.emplace_back(Box(Point(e.minX, e.minY), Point(e.maxX, e.maxY)),
                                 static_cast<int>(i));
        }
        m_tree = Tree(entries);
    }

    /// Returns the first ring whose envelope contains `p` and for which `test(index)` holds; -1 if
    /// there is none.
    template <class Test>
    int first(const JWRawPoint& p, Test test) {
        if (m_rings.size() <= kScanned) {
            for (std::size_t i = 0; i < m_rings.size(); ++i) {
                const int index = static_cast<int>(i);
                if (m_rings[i].getEnvelop().contains(p) && test(index)) return index;
            }
            return -1;
        }
        m_found.clear();
        const Box place(Point(p.x, p.y), Point(p.x, p.y));
        for (auto it = m_tree.qbegin(bg::index::intersects(place)); it != m_tree.qend(); ++it) {
            m_found.push_back(it->second);
        }
        std::sort(m_found.begin(), m_found.end());
        for (const int index : m_found) {
            if (test(index)) return index;
        }
        return -1;
    }

  private:
    using Point = bg::model::point<double, 2, bg::cs::cartesian>;
    using Box = bg::model::box<Point>;
    using Entry = std::pair<Box, int>;
    using Tree = bg::index::rtree<Entry, bg::index::rstar<16>>;
    static constexpr std::size_t kScanned = 32;

    const std::vector<JWRing>& m_rings;
    Tree m_tree;
    std::vector<int> m_found;
};

enum class Place { Outside, On, Inside };

/// Where points lie in each of some rings.
class RingPlaces {
  public:
    explicit RingPlaces(const std::vector<JWRing>& rings) : m_rings(rings), m_asked(rings.size()) {}

    Place of(const JWRawPoint& p, int index) {
        const JWRing& ring = m_rings[index];
        const JWRawPoint* points = ring.getPointsPtr();
        const int edges = ring.getPointCount() - 1;
        if (edges < 3) return Place::Outside;
        ExactCrossings crossings(p);
        const auto meets = [&](int i) { return crossings.meetsEdge(points[i], points[i + 1]); };
        Asked& asked = m_asked[index];
        if (edges >= kIndexed && !asked.tree && ++asked.times > kWalks) {
            asked.tree = std::make_unique<EdgeTree>(points, edges);
        }
        bool isOn = false;
        if (asked.tree) {
            isOn = asked.tree->visitRow(p.y, meets);
        } else {
            for (int i = 0; i < edges && !isOn; ++i) isOn = meets(i);
        }
        return isOn ? Place::On : crossings.odd() ? Place::Inside : Place::Outside;
    }

    /// Whether a ring that crosses ring `index` nowhere lies within it: its first vertex beside the
    /// other's boundary tells.
    bool holds(const JWRing& inner, int index) {
        for (int i = 0; i + 1 < inner.getPointCount(); ++i) {
            const Place place = of(inner[i], index);
            if (place != Place::On) return place == Place::Inside;
        }
        return inner.getPointCount() > 3;
    }

  private:
    static constexpr int kIndexed = 64;
    static constexpr int kWalks = 2;
    struct Asked {
        int times = 0;
        std::unique_ptr<EdgeTree> tree;
    };

    const std::vector<JWRing>& m_rings;
    std::vector<Asked> m_asked;
};

}  // namespace

JWMultiPolygon groupByContainment(std::vector<JWRing>&& rings, const std::vector<int>& flags,
                                  Orphans orphans) {
    const int count = static_cast<int>(rings.size());
    std::vector<std::vector<int>> children(rings.size());
    RingFinder finder(rings);
    RingPlaces places(rings);
    for (int i = 0; i < count; ++i) {
        if (flags[i] == 0) continue;
        int parent = finder.first(rings[i].getEnvelop().bottom_left(),
                                  [&](int j) { return j != i && places.holds(rings[i], j); });
        if (parent < 0 && orphans == Orphans::JoinFirstRing) parent = 0;
        if (parent >= 0) children[parent].push_back(i);
    }
    JWMultiPolygon result;
    for (int i = 0; i < count; ++i) {
        if (flags[i] != 0) continue;
        JWPolygon polygon(std::move(rings[i]));
        polygon.reserve(1 + static_cast<int>(children[i].size()));
        for (const int hole : children[i]) polygon.addRing(std::move(rings[hole]));
        result.addPolygon(std::move(polygon));
    }
    result.updateEnvelop();
    return result;
}

JWMultiPolygon groupFirstFit(std::vector<JWRing>& outers, std::vector<JWRing>& holes,
                             HoleCorners corners) {
    std::vector<std::vector<int>> children(outers.size());
    RingFinder finder(outers);
    RingPlaces places(outers);
    for (std::size_t h = 0; !holes.empty() && h < holes.size(); ++h) {
        const JWRing& hole = holes[h];
        int parent = -1;
        const int middle = corners == HoleCorners::First ? 0 : (hole.getPointCount() + 1) / 2;
        for (const int corner : {0, middle}) {
            const JWRawPoint p = hole[corner];
            const int found =
                finder.first(p, [&](int i) { return places.of(p, i) == Place::Inside; });
            if (found >= 0 && (parent < 0 || found < parent)) parent = found;
        }
        if (parent >= 0) children[parent].push_back(static_cast<int>(h));
    }
    JWMultiPolygon result;
    for (std::size_t i = 0; i < outers.size(); ++i) {
        JWPolygon polygon(std::move(outers[i]));
        polygon.reserve(1 + static_cast<int>(children[i].size()));
        for (const int hole : children[i]) polygon.addRing(std::move(holes[hole]));
        result.addPolygon(std::move(polygon));
    }
    result.updateEnvelop();
    outers.clear();
    holes.clear();
    return result;
}

}  // namespace jws::detail
