// SPDX-License-Identifier: MIT
//
// The clipping engine by itself: areas and contours of awkward input, the promises about contours,
// and areas beside GEOS on random input.
#include <gpc.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

#include "support/geos_oracle.h"
#include "support/random_rings.h"

namespace jwtest {
using jws::JWMultiPolygon;
using jws::JWPolygon;
using jws::JWRawPoint;
using jws::JWRing;

namespace {

using Rings = std::vector<Ring>;
constexpr const char* kNames[] = {"difference", "intersection", "xor", "union"};

/// A clip result as rings and flags.
struct Result {
    Rings contours;
    std::vector<int> holes;
    int failure = 0;

    double area() const {
        double sum = 0;
        for (const Ring& c : contours) sum += signedArea(c);
        return sum;
    }
    int count(int flag) const {
        int n = 0;
        for (const int hole : holes) n += hole == flag;
        return n;
    }
    static double signedArea(const Ring& ring) {
        double sum = 0;
        const JWRawPoint o = ring[0];
        for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
            sum += (ring[i].x - o.x) * (ring[i + 1].y - o.y) -
                   (ring[i + 1].x - o.x) * (ring[i].y - o.y);
        }
        return sum / 2;
    }
};

Result clip(int op, const Rings& a, const Rings& b) {
    std::vector<gpc_vertex> vertices[2];
    std::vector<gpc_vertex_list> lists[2];
    std::vector<int> holes[2];
    gpc_polygon operands[2];
    for (int k = 0; k < 2; ++k) {
        const Rings& rings = k == 0 ? a : b;
        for (const Ring& r : rings) {
            for (const JWRawPoint& p : r) vertices[k].push_back({p.x, p.y});
        }
        std::size_t from = 0;
        for (const Ring& r : rings) {
            lists[k].push_back({static_cast<int>(r.size()), vertices[k].data() + from});
            from += r.size();
        }
        holes[k].assign(rings.size(), 1);  // must not matter
        operands[k] = {static_cast<int>(rings.size()), holes[k].data(), lists[k].data()};
    }
    gpc_polygon out;
    std::memset(&out, 0x5a, sizeof(out));
    errno = 0;
    gpc_polygon_clip(static_cast<gpc_op>(op), &operands[0], &operands[1], &out);
    Result result;
    result.failure = errno;
    for (int c = 0; c < out.num_contours; ++c) {
        Ring ring;
        for (int i = 0; i < out.contour[c].num_vertices; ++i) {
            ring.emplace_back(out.contour[c].vertex[i].x, out.contour[c].vertex[i].y);
        }
        result.contours.push_back(ring);
        result.holes.push_back(out.hole[c]);
    }
    gpc_free_polygon(&out);
    return result;
}

bool operator==(const Result& a, const Result& b) {
    return a.contours == b.contours && a.holes == b.holes;
}

Ring box(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

struct Row {
    const char* name;
    Rings a, b;
    double areas[4];  // difference, intersection, xor, union
    int outers[4];
    int holes[4];
};

const Ring sq = box(0, 0, 10, 10);

const Row rows[] = {
    {"overlap", {sq}, {box(5, 5, 15, 15)}, {75, 25, 150, 175}, {1, 1, 2, 1}, {0, 0, 0, 0}},
    {"identical", {sq}, {sq}, {0, 100, 0, 100}, {0, 1, 0, 1}, {0, 0, 0, 0}},
    {"apart", {sq}, {box(20, 0, 21, 1)}, {100, 0, 101, 101}, {1, 0, 2, 2}, {0, 0, 0, 0}},
    {"nested", {sq}, {box(2, 2, 4, 4)}, {96, 4, 96, 100}, {1, 1, 1, 1}, {1, 0, 1, 0}},
    {"shared edge", {sq}, {box(10, 0, 20, 10)}, {100, 0, 200, 200}, {1, 0, 1, 1}, {0, 0, 0, 0}},
    {"part of an edge shared",
     {sq},
     {box(10, 3, 12, 6)},
     {100, 0, 106, 106},
     {1, 0, 1, 1},
     {0, 0, 0, 0}},
    {"touching at a corner",
     {sq},
     {box(10, 10, 12, 12)},
     {100, 0, 104, 104},
     {1, 0, 2, 2},
     {0, 0, 0, 0}},
    {"corner in an edge",
     {sq},
     {{{10, 5}, {14, 2}, {14, 8}}},
     {100, 0, 112, 112},
     {1, 0, 2, 2},
     {0, 0, 0, 0}},
    {"hole touches the outer ring",
     {sq},
     {{{0, 5}, {4, 2}, {4, 8}}},
     {88, 12, 88, 100},
     {1, 1, 1, 1},
     {1, 0, 1, 0}},
    {"cut in two by corners in edges",
     {sq},
     {{{0, 5}, {5, 0}, {10, 5}, {5, 10}}},
     {50, 50, 50, 100},
     {4, 1, 4, 1},
     {0, 0, 0, 0}},
    {"island in a hole",
     {sq, box(2, 2, 8, 8)},
     {box(4, 4, 6, 6)},
     {64, 0, 68, 68},
     {1, 0, 2, 2},
     {1, 0, 1, 1}},
    {"self-crossing",
     {{{0, 0}, {10, 10}, {10, 0}, {0, 10}}},
     {box(0, 0, 5, 10)},
     {25, 25, 50, 75},
     {1, 1, 3, 2},
     {0, 0, 0, 0}},
    {"ring twice is nothing",
     {sq, sq},
     {box(0, 0, 1, 1)},
     {0, 0, 1, 1},
     {0, 0, 1, 1},
     {0, 0, 0, 0}},
    {"repeated points and a spike",
     {{{0, 0}, {0, 0}, {10, 0}, {15, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}}},
     {box(5, 5, 15, 15)},
     {75, 25, 150, 175},
     {1, 1, 2, 1},
     {0, 0, 0, 0}},
    {"no contour", {}, {sq}, {0, 0, 100, 100}, {0, 0, 1, 1}, {0, 0, 0, 0}},
    {"two points and a line",
     {{{0, 0}, {5, 5}}, {{0, 0}, {5, 5}, {9, 9}}},
     {sq},
     {0, 0, 100, 100},
     {0, 0, 1, 1},
     {0, 0, 0, 0}},
    {"four squares around a gap",
     {box(0, 0, 2, 1), box(2, 0, 3, 2)},
     {box(1, 2, 3, 3), box(0, 1, 1, 3)},
     {4, 0, 8, 8},
     {1, 0, 1, 1},
     {0, 0, 1, 1}},
};

class GpcRows : public testing::TestWithParam<Row> {};

TEST_P(GpcRows, AreasAndContours) {
    const Row& row = GetParam();
    for (int op = 0; op < 4; ++op) {
        const Result r = clip(op, row.a, row.b);
        EXPECT_NEAR(r.area(), row.areas[op], 1e-9) << kNames[op];
        EXPECT_EQ(r.count(0), row.outers[op]) << kNames[op];
        EXPECT_EQ(r.count(1), row.holes[op]) << kNames[op];
    }
}

// The same answers at scales where squares and products leave the range of doubles.
TEST_P(GpcRows, ScaledToTheEndsOfTheRange) {
    for (const int exponent : {1000, -1040}) {
        Row row = GetParam();
        for (Rings* rings : {&row.a, &row.b}) {
            for (Ring& ring : *rings) {
                for (JWRawPoint& p : ring) {
                    p.set(std::ldexp(p.x, exponent), std::ldexp(p.y, exponent));
                }
            }
        }
        for (int op = 0; op < 4; ++op) {
            Result r = clip(op, row.a, row.b);
            for (Ring& ring : r.contours) {
                for (JWRawPoint& p : ring) {
                    p.set(std::ldexp(p.x, -exponent), std::ldexp(p.y, -exponent));
                }
            }
            EXPECT_NEAR(r.area(), row.areas[op], 1e-6) << kNames[op] << " 2^" << exponent;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Table, GpcRows, testing::ValuesIn(rows), [](const auto& row) {
    std::string name = row.param.name;
    for (char& c : name) c = std::isalnum(c) ? c : '_';
    return name;
});

bool contains(const Ring& ring, const JWRawPoint& p) {
    bool inside = false;
    for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
        const JWRawPoint &a = ring[i], &b = ring[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

/// What the header promises of every result.
void expectContract(const Result& r) {
    for (std::size_t i = 0; i < r.contours.size(); ++i) {
        const Ring& ring = r.contours[i];
        ASSERT_GE(ring.size(), 3u);
        EXPECT_EQ(Result::signedArea(ring) < 0, r.holes[i] == 1);
        auto shared = [&](const JWRawPoint& p) {
            for (std::size_t j = 0; j < r.contours.size(); ++j) {
                const Ring& other = r.contours[j];
                if (j != i && std::find(other.begin(), other.end(), p) != other.end()) return true;
            }
            return false;
        };
        const bool startShared = shared(ring[0]);
        EXPECT_TRUE(!startShared || std::all_of(ring.begin(), ring.end(), shared));
        for (std::size_t k = 0; k < ring.size(); ++k) {
            for (std::size_t l = k + 1; l < ring.size(); ++l) EXPECT_FALSE(ring[k] == ring[l]);
        }
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_FALSE(!startShared && contains(r.contours[j], ring[0])) << j << " " << i;
        }
    }
}

/// The areas of the four operations by vertical slabs between all corners and crossings: slow, but
/// nothing can go wrong with it.
FourAreas slabAreas(const Rings& a, const Rings& b) {
    struct Edge {
        JWRawPoint p, q;
        int operand;
    };
    std::vector<Edge> edges;
    std::vector<double> xs;
    for (int k = 0; k < 2; ++k) {
        for (const Ring& r : k == 0 ? a : b) {
            for (std::size_t i = 0; i < r.size(); ++i) {
                JWRawPoint p = r[i], q = r[(i + 1) % r.size()];
                if (q.x < p.x) std::swap(p, q);
                xs.insert(xs.end(), {p.x, q.x});
                if (p.x != q.x) edges.push_back({p, q, k});
            }
        }
    }
    for (const Edge& e : edges) {
        for (const Edge& f : edges) {
            const double dx = e.q.x - e.p.x, dy = e.q.y - e.p.y;
            const double fx = f.q.x - f.p.x, fy = f.q.y - f.p.y;
            const double turn = dx * fy - dy * fx;
            if (turn == 0) continue;
            const double t = ((f.p.x - e.p.x) * fy - (f.p.y - e.p.y) * fx) / turn;
            if (t > 0 && t < 1) xs.push_back(e.p.x + t * dx);
        }
    }
    std::sort(xs.begin(), xs.end());
    FourAreas areas = {};
    for (std::size_t i = 0; i + 1 < xs.size(); ++i) {
        const double x = (xs[i] + xs[i + 1]) / 2, width = xs[i + 1] - xs[i];
        std::vector<std::pair<double, int>> ys;
        for (const Edge& e : edges) {
            if (e.p.x >= x || e.q.x <= x) continue;
            const double share = (x - e.p.x) / (e.q.x - e.p.x);
            ys.emplace_back(e.p.y + share * (e.q.y - e.p.y), e.operand);
        }
        std::sort(ys.begin(), ys.end());
        bool in[2] = {false, false};
        for (std::size_t k = 0; k + 1 < ys.size(); ++k) {
            in[ys[k].second] = !in[ys[k].second];
            const double area = width * (ys[k + 1].first - ys[k].first);
            const bool holds[] = {in[0] && !in[1], in[0] && in[1], in[0] != in[1], in[0] || in[1]};
            for (int op = 0; op < 4; ++op) areas.of[op] += holds[op] ? area : 0;
        }
    }
    return areas;
}

/// The contours as polygons of GEOS, each hole in the smallest outer contour around it.
GeosPtr asGeos(const Result& r) {
    JWMultiPolygon polygons;
    std::vector<int> outers;
    for (std::size_t i = 0; i < r.contours.size(); ++i) {
        if (r.holes[i]) continue;
        outers.push_back(static_cast<int>(i));
        polygons.addPolygon(
            JWPolygon(JWRing(r.contours[i].data(), static_cast<int>(r.contours[i].size()))));
    }
    for (std::size_t i = 0; i < r.contours.size(); ++i) {
        if (!r.holes[i]) continue;
        const Ring& hole = r.contours[i];
        for (std::size_t k = 0; k < outers.size(); ++k) {
            const Ring& outer = r.contours[outers[k]];
            const std::size_t middle = (hole.size() + 2) / 2 % hole.size();
            if (!contains(outer, hole[0]) && !contains(outer, hole[middle])) continue;
            polygons.getPolygonPtrAt(static_cast<int>(k))
                ->addRing(JWRing(hole.data(), static_cast<int>(hole.size())));
            break;
        }
    }
    return toGeos(&polygons);
}

/// Clips by all operations and checks areas, the promises about contours, and validity.
void check(const Rings& a, const Rings& b) {
    const FourAreas expected = slabAreas(a, b);
    const double scale = expected.of[3];
    for (int op = 0; op < 4; ++op) {
        SCOPED_TRACE(kNames[op]);
        const Result r = clip(op, a, b);
        EXPECT_NEAR(r.area(), expected.of[op], 1e-9 * scale);
        expectContract(r);
        const GeosPtr polygons = asGeos(r);
        EXPECT_EQ(validReason(polygons.get()), "Valid Geometry");
        EXPECT_NEAR(geosArea(polygons.get()), expected.of[op], 1e-9 * scale) << "hole lost";
    }
}

TEST(GpcRandom, Stars) {
    const unsigned long long seed = 20240611;
    RandomRings random(seed);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const JWRawPoint center(500000 + random.uniform(-1, 1), 4649776 + random.uniform(-1, 1));
        const Rings a = {random.star(random.integer(3, 60), center, 100)};
        const JWRawPoint other(center.x + random.uniform(-150, 150),
                               center.y + random.uniform(-150, 150));
        check(a, {random.star(random.integer(3, 60), other, 100)});
    }
}

TEST(GpcRandom, TanglesOnALattice) {
    const unsigned long long seed = 31;
    RandomRings random(seed);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        Rings a, b;
        for (int i = random.integer(1, 2); i > 0; --i) a.push_back(random.tangle(6, 5));
        for (int i = random.integer(1, 2); i > 0; --i) b.push_back(random.tangle(6, 5));
        check(a, b);
    }
}

TEST(GpcRandom, BoxesOnALattice) {
    const unsigned long long seed = 77;
    RandomRings random(seed);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        Rings a, b;
        for (int i = random.integer(1, 6); i > 0; --i) a.push_back(random.box(6));
        for (int i = random.integer(1, 6); i > 0; --i) b.push_back(random.box(6));
        check(a, b);
    }
}

// Outlines that differ by a few units in the last place everywhere: corners must not be lost.
TEST(GpcRandom, NearlyIdenticalOutlines) {
    const unsigned long long seed = 8;
    RandomRings random(seed);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const Ring a = random.star(random.integer(3, 40), {100, 100}, 1);
        Ring b = a;
        for (JWRawPoint& p : b)
            p.move(random.integer(-2, 2) * 0x1p-46, random.integer(-2, 2) * 0x1p-46);
        const double area = Result::signedArea(a);
        const double expected[] = {0, area, 0, area};
        for (int op = 0; op < 4; ++op) {
            EXPECT_NEAR(clip(op, {a}, {b}).area(), expected[op], 1e-11) << kNames[op];
        }
    }
}

// Rounded crossings come back as corners: no sliver may arise and no area get lost.
TEST(GpcRandom, ResultsClipCleanlyOnceMore) {
    const unsigned long long seed = 15;
    RandomRings random(seed);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const Rings a = {random.star(random.integer(3, 60), {0, 0}, 1)};
        const Rings b = {random.star(random.integer(3, 60), {random.uniform(-1, 1), 0.3}, 1)};
        const Result rest = clip(GPC_DIFF, a, b);
        const Result common = clip(GPC_INT, a, b);
        EXPECT_TRUE(clip(GPC_INT, rest.contours, b).contours.empty());
        EXPECT_TRUE(clip(GPC_DIFF, common.contours, a).contours.empty());
        EXPECT_TRUE(clip(GPC_XOR, common.contours, common.contours).contours.empty());
        EXPECT_NEAR(clip(GPC_DIFF, a, common.contours).area(), rest.area(), 1e-12);
        EXPECT_TRUE(clip(GPC_UNION, a, b) == clip(GPC_UNION, b, a)) << "union commutes bit by bit";
    }
}

TEST(Gpc, InputVerticesKeepTheirBits) {
    // Magnitudes so different that no common grid of doubles holds all of them.
    const Ring a = {{1e-9, 0.1}, {3e5 + 0.1, -0.2}, {2e5 + 0.3, 1.0 / 3}, {0.7, 123456.789}};
    const Result r = clip(GPC_UNION, {a}, {});
    ASSERT_EQ(r.contours.size(), 1u);
    for (const JWRawPoint& p : a) {
        EXPECT_EQ(std::count(r.contours[0].begin(), r.contours[0].end(), p), 1);
    }
    EXPECT_EQ(r.contours[0].size(), a.size());
}

TEST(Gpc, CollinearVerticesStay) {
    const Ring a = {{0, 0}, {5, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(clip(GPC_INT, {a}, {box(-1, -1, 11, 11)}).contours[0].size(), 5u);
}

TEST(Gpc, NonFiniteInputGivesNothingAndSaysSo) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        for (int op = 0; op < 4; ++op) {
            const Result r = clip(op, {sq, {{0, 0}, {1, bad}, {1, 1}}}, {sq});
            EXPECT_TRUE(r.contours.empty());
            EXPECT_EQ(r.failure, EDOM);
        }
    }
    EXPECT_EQ(clip(GPC_UNION, {sq}, {sq}).failure, 0);
}

TEST(Gpc, SameBitsOnEveryThread) {
    RandomRings random(5);
    const Rings a = {random.star(200, {0, 0}, 1)};
    const Rings b = {random.star(200, {0.1, 0.1}, 1)};
    const Result expected = clip(GPC_XOR, a, b);
    std::vector<Result> found(4);
    std::vector<std::thread> team;
    for (Result& slot : found) team.emplace_back([&] { slot = clip(GPC_XOR, a, b); });
    for (std::thread& t : team) t.join();
    for (const Result& r : found) EXPECT_TRUE(r == expected);
}

}  // namespace
}  // namespace jwtest
