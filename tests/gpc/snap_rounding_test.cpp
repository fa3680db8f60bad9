// SPDX-License-Identifier: MIT
//
// Snap rounding by itself, on input that the engine would never send there too: one step must leave
// no crossing, whatever the input, and lead no edge further than a pixel.
#include "gpc/snap_rounding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "gpc/pixel.h"
#include "support/clip_families.h"
#include "support/exact_sign.h"
#include "support/gpc_operand.h"

namespace jwtest {
namespace {

using jws::JWRawPoint;
using jws::gpc::Contour;
using jws::gpc::ContourSet;
using Edge = std::pair<JWRawPoint, JWRawPoint>;  // from the smaller end to the larger

constexpr std::uint64_t kSeed = 7;
constexpr std::uint64_t kPairs = 40;
constexpr std::size_t kMostEdges = 3000;  // compared with one another

JWRawPoint raw(const jws::gpc::Point& p) { return {p.x, p.y}; }

std::vector<Edge> edgesOf(const ContourSet& set) {
    std::vector<Edge> edges;
    for (const Contour& c : set.contours) {
        for (std::uint32_t i = c.first; i < c.last; ++i) {
            edges.push_back(std::minmax(raw(set.points[i]), raw(set.points[i + 1])));
        }
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    return edges;
}

bool within(const JWRawPoint& p, const Edge& e) {
    return e.first < p && p < e.second && turnOf(e.first, e.second, p) == 0;
}

bool conflict(const Edge& e, const Edge& f) {
    if (within(e.first, f) || within(e.second, f) || within(f.first, e) || within(f.second, e)) {
        return true;
    }
    return turnOf(e.first, e.second, f.first) * turnOf(e.first, e.second, f.second) < 0 &&
           turnOf(f.first, f.second, e.first) * turnOf(f.first, f.second, e.second) < 0;
}

/// A pair's contours on the way through snap rounding.
struct Snapped {
    ContourSet from, to;
    jws::gpc::CrossingGrid grid;
    jws::gpc::Buffer<std::uint32_t> parents;

    explicit Snapped(const RingPair& pair) {
        GpcOperand a(pair.a), b(pair.b);
        jws::gpc::Box box;
        boundsOf(*a.polygon(), box);
        boundsOf(*b.polygon(), box);
        int exponent = 0;
        std::frexp(std::max({-box.minX, -box.minY, box.maxX, box.maxY}), &exponent);
        grid.fit(exponent - 53);
        from.add(*a.polygon(), 1, {}, nullptr);
        from.add(*b.polygon(), 2, {}, nullptr);
        from.flags.fill(from.points.size(), jws::gpc::kUnchecked);
        jws::gpc::BoxTree tree;
        tree.build(from, grid.step);
        jws::gpc::SnapRounder().run(from, tree, grid, true, to, parents);
    }
};

class SnapRounding : public testing::TestWithParam<const char*> {};

TEST_P(SnapRounding, LeavesNoCrossing) {
    int compared = 0;
    for (std::uint64_t number = 0; number < kPairs; ++number) {
        SCOPED_TRACE(std::string(GetParam()) + " pair " + std::to_string(number));
        RandomRings random = generatorOf(*familyNamed(GetParam()), kSeed, number);
        const Snapped s(familyNamed(GetParam())->make(random));
        const std::vector<Edge> edges = edgesOf(s.to);
        if (edges.size() > kMostEdges) continue;
        ++compared;
        std::vector<Edge> open;  // those that reach the next one's left end
        for (const Edge& e : edges) {
            open.erase(std::remove_if(open.begin(), open.end(),
                                      [&](const Edge& f) { return f.second.x < e.first.x; }),
                       open.end());
            for (const Edge& f : open) {
                ASSERT_FALSE(conflict(e, f)) << e.first.x << " " << e.first.y;
            }
            open.push_back(e);
        }
    }
    EXPECT_GT(compared, static_cast<int>(kPairs) / 2);
}

TEST_P(SnapRounding, KeepsToPixels) {
    for (std::uint64_t number = 0; number < kPairs; ++number) {
        SCOPED_TRACE(std::string(GetParam()) + " pair " + std::to_string(number));
        RandomRings random = generatorOf(*familyNamed(GetParam()), kSeed, number);
        const Snapped s(familyNamed(GetParam())->make(random));
        for (const Contour& c : s.to.contours) {
            for (std::uint32_t i = c.first; i < c.last; ++i) {
                const std::uint32_t edge = s.parents[i];
                for (const jws::gpc::Point& p : {s.to.points[i], s.to.points[i + 1]}) {
                    ASSERT_TRUE(
                        entersPixel(s.from.points[edge], s.from.points[edge + 1], p, s.grid.step))
                        << p.x << " " << p.y;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Families, SnapRounding,
                         testing::Values("fans", "bundles", "slivers", "offsets", "origin",
                                         "tangles", "spikes", "results"),
                         [](const auto& row) { return std::string(row.param); });

// A segment through a corner belongs to the pixel whose lower left corner it is, and to no other.
TEST(Pixels, CornersAndSides) {
    const struct {
        jws::gpc::Point a, b, middle;
        bool enters;
    } rows[] = {
        {{-1, 1}, {1, -1}, {0.5, 0.5}, true},     // falling, through the lower left corner
        {{-1, 1}, {1, -1}, {-0.5, -0.5}, false},  // and through the upper right one of this
        {{-1, -1}, {1, 1}, {-0.5, 0.5}, false},   // rising, through the lower right corner
        {{-1, -1}, {1, 1}, {0.5, -0.5}, false},   // through the upper left one
        {{0, -2}, {0, 2}, {0.5, 0}, true},        // along the left side
        {{0, -2}, {0, 2}, {-0.5, 0}, false},      // along the right side
        {{-2, 0}, {0, 0}, {0.5, 0}, true},        // ends on the left side
        {{0, 0}, {2, 0}, {-0.5, 0}, false},       // starts on the right side
        {{-1, 1}, {-0x1p-60, 0x1p-60}, {0.5, 0.5}, false},  // ends just before the corner
    };
    for (const auto& row : rows) {
        EXPECT_EQ(jws::gpc::entersPixel(row.a, row.b, row.middle, 1), row.enters);
        EXPECT_EQ(jws::gpc::entersPixel(row.b, row.a, row.middle, 1), row.enters);
    }
    jws::gpc::CrossingGrid grid;
    grid.fit(0);
    EXPECT_EQ(jws::gpc::pixelOf({0.5, -0.5}, grid), (jws::gpc::Point{1, 0}));
    EXPECT_EQ(jws::gpc::pixelOf({-1.5, 2.5}, grid), (jws::gpc::Point{-1, 3}));
}

}  // namespace
}  // namespace jwtest
