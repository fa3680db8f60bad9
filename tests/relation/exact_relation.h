// SPDX-License-Identifier: MIT
//
// The relation of two geometries with small coordinates, halves of integers, by brute force:
// every edge is cut where it meets any other one, and every vertex, cut, middle between cuts, and
// place just beside such a middle is looked up in both geometries. Slow, and right for rings and
// lines that cross, cover or touch themselves, which other libraries refuse or round.
#ifndef JW_TESTS_RELATION_EXACT_RELATION_H
#define JW_TESTS_RELATION_EXACT_RELATION_H

#include <algorithm>
#include <cstdint>
#include <map>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "jw_geometry.h"

namespace jwtest {

class ExactRelation {
  public:
    ExactRelation(const jws::JWGeometry& a, const jws::JWGeometry& b) {
        m_sides[0].take(a);
        m_sides[1].take(b);
    }

    std::string matrix() {
        m_text = "FFFFFFFF2";
        for (const Side& side : m_sides) {
            for (const Fraction& p : side.points) see(p, '0');
            for (const Edge& edge : side.edges) walk(edge);
        }
        return m_text;
    }

  private:
    /// (x / d, y / d), d positive.
    struct Fraction {
        std::int64_t x, y, d;
    };
    struct Edge {
        std::int64_t x0, y0, x1, y1;
        bool area;
        std::int64_t dx() const { return x1 - x0; }
        std::int64_t dy() const { return y1 - y0; }
        std::int64_t side(const Fraction& p) const {
            return dx() * (p.y - y0 * p.d) - dy() * (p.x - x0 * p.d);
        }
        bool holds(const Fraction& p) const {
            const auto between = [&p](std::int64_t v, std::int64_t a, std::int64_t b) {
                return std::min(a, b) * p.d <= v && v <= std::max(a, b) * p.d;
            };
            return side(p) == 0 && between(p.x, x0, x1) && between(p.y, y0, y1);
        }
    };

    struct Side {
        std::vector<Edge> edges;
        std::vector<Fraction> points;
        std::map<std::pair<std::int64_t, std::int64_t>, int> ends;

        void take(const jws::JWGeometry& g) {
            if (const auto* point = dynamic_cast<const jws::JWPoint*>(&g)) {
                takePoint(point->getRawPoint());
            } else if (const auto* line = dynamic_cast<const jws::JWLineString*>(&g)) {
                takePath(line->getPointList(), false);
            } else if (const auto* polygon = dynamic_cast<const jws::JWPolygon*>(&g)) {
                for (const jws::JWRing& ring : polygon->getRingList())
                    takePath(ring.getPointList(), true);
            } else if (const auto* all = dynamic_cast<const jws::JWGeometryCollection*>(&g)) {
                for (int i = 0; i < all->getGeometryCount(); ++i) take(*all->getGeometryPtrAt(i));
            }
        }
        static std::int64_t twice(double v) { return static_cast<std::int64_t>(2 * v); }
        void takePoint(const jws::JWRawPoint& p) { points.push_back({twice(p.x), twice(p.y), 1}); }
        void takePath(const std::vector<jws::JWRawPoint>& path, bool area) {
            const std::size_t before = edges.size();
            for (std::size_t i = 0; i + 1 < path.size(); ++i) {
                if (path[i] == path[i + 1]) continue;
                edges.push_back({twice(path[i].x), twice(path[i].y), twice(path[i + 1].x),
                                 twice(path[i + 1].y), area});
            }
            if (edges.size() == before) {
                if (!path.empty()) takePoint(path[0]);
            } else if (!area && path.front() != path.back()) {
                ++ends[{twice(path.front().x), twice(path.front().y)}];
                ++ends[{twice(path.back().x), twice(path.back().y)}];
            }
        }

        /// 0 interior, 1 boundary, 2 exterior.
        int locate(const Fraction& p) const {
            bool odd = false, onArea = false, onLine = false;
            std::map<std::pair<std::int64_t, std::int64_t>, int> rays;
            for (const Edge& e : edges) {
                if (e.holds(p)) {
                    (e.area ? onArea : onLine) = true;
                    if (e.area) addRays(e, p, rays);
                    continue;
                }
                const bool up = e.y0 * p.d <= p.y && e.y1 * p.d > p.y;
                const bool down = e.y1 * p.d <= p.y && e.y0 * p.d > p.y;
                if (e.area && ((up && e.side(p) > 0) || (down && e.side(p) < 0))) odd = !odd;
            }
            if (onArea) {
                // The parity above is that of the sector above the ray to the right.
                for (const auto& [direction, count] : rays)
                    if (count % 2 != 0) return 1;
                return odd ? 0 : 1;
            }
            if (odd) return 0;
            if (onLine) {
                if (p.x % p.d != 0 || p.y % p.d != 0) return 0;
                const auto found = ends.find({p.x / p.d, p.y / p.d});
                return found != ends.end() && found->second % 2 != 0 ? 1 : 0;
            }
            return std::any_of(
                       points.begin(), points.end(),
                       [&](const Fraction& q) { return q.x * p.d == p.x && q.y * p.d == p.y; })
                       ? 0
                       : 2;
        }
        static void addRays(const Edge& e, const Fraction& p,
                            std::map<std::pair<std::int64_t, std::int64_t>, int>& rays) {
            const std::int64_t g = std::gcd(e.dx(), e.dy());
            const auto isAt = [&p](std::int64_t x, std::int64_t y) {
                return p.x == x * p.d && p.y == y * p.d;
            };
            if (!isAt(e.x1, e.y1)) ++rays[{e.dx() / g, e.dy() / g}];
            if (!isAt(e.x0, e.y0)) ++rays[{-e.dx() / g, -e.dy() / g}];
        }
    };

    using Parameter = std::pair<std::int64_t, std::int64_t>;  // numerator, positive denominator

    static Fraction at(const Edge& e, const Parameter& t) {
        return {e.x0 * t.second + e.dx() * t.first, e.y0 * t.second + e.dy() * t.first, t.second};
    }

    void see(const Fraction& p, char dimension) {
        char& entry =
            m_text[static_cast<std::size_t>(3 * m_sides[0].locate(p) + m_sides[1].locate(p))];
        if (entry == 'F' || entry < dimension) entry = dimension;
    }

    void walk(const Edge& e) {
        std::vector<Parameter> cuts = {{0, 1}, {1, 1}};
        for (const Side& side : m_sides) {
            for (const Edge& f : side.edges) cut(e, f, cuts);
            for (const Fraction& p : side.points)
                if (e.holds(p)) addCut(along(e, p.x, p.y), lengthOf(e), cuts);
        }
        const auto before = [](const Parameter& a, const Parameter& b) {
            return a.first * b.second < b.first * a.second;
        };
        std::sort(cuts.begin(), cuts.end(), before);
        for (std::size_t i = 0; i < cuts.size(); ++i) {
            see(at(e, cuts[i]), '0');
            if (i + 1 == cuts.size() || !before(cuts[i], cuts[i + 1])) continue;
            const Fraction m =
                at(e, {cuts[i].first * cuts[i + 1].second + cuts[i + 1].first * cuts[i].second,
                       2 * cuts[i].second * cuts[i + 1].second});
            see(m, '1');
            const std::int64_t k = 1'000'000'000;  // closer than any other edge
            see({m.x * k - e.dy() * m.d, m.y * k + e.dx() * m.d, m.d * k}, '2');
            see({m.x * k + e.dy() * m.d, m.y * k - e.dx() * m.d, m.d * k}, '2');
        }
    }

    static std::int64_t along(const Edge& e, std::int64_t x, std::int64_t y) {
        return (x - e.x0) * e.dx() + (y - e.y0) * e.dy();
    }
    static std::int64_t lengthOf(const Edge& e) { return along(e, e.x1, e.y1); }
    static void addCut(std::int64_t n, std::int64_t d, std::vector<Parameter>& cuts) {
        if (d < 0) n = -n, d = -d;
        if (n > 0 && n < d) cuts.emplace_back(n, d);
    }

    static void cut(const Edge& e, const Edge& f, std::vector<Parameter>& cuts) {
        const std::int64_t cross = e.dx() * f.dy() - e.dy() * f.dx();
        const std::int64_t wx = f.x0 - e.x0, wy = f.y0 - e.y0;
        if (cross != 0) {
            const std::int64_t other = wx * e.dy() - wy * e.dx();
            const bool onF =
                cross > 0 ? other >= 0 && other <= cross : other <= 0 && other >= cross;
            if (onF) addCut(wx * f.dy() - wy * f.dx(), cross, cuts);
        } else if (wx * e.dy() == wy * e.dx()) {
            addCut(along(e, f.x0, f.y0), lengthOf(e), cuts);
            addCut(along(e, f.x1, f.y1), lengthOf(e), cuts);
        }
    }

    Side m_sides[2];
    std::string m_text;
};

}  // namespace jwtest

#endif  // JW_TESTS_RELATION_EXACT_RELATION_H
