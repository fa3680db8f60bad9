// SPDX-License-Identifier: MIT
//
// Union and partition of many ring sets at once, on a lattice where areas are counts of
// cells.
#include "boolean/ring_clip.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <string>

#include "jw_report.h"
#include "support/random_rings.h"

namespace jwtest {

using namespace jws;
using jws::detail::ClippedContours;
using jws::detail::RingViews;

namespace {

constexpr int kSize = 8;
using Rings = std::vector<std::vector<JWRawPoint>>;

double area(const ClippedContours& contours) {
    double sum = 0;
    for (int i = 0; i < contours.count(); ++i) {
        const double ring = std::fabs(contours.ring(i).getArea());
        sum += contours.hole(i) == 0 ? ring : -ring;
    }
    return sum;
}

RingViews viewsOf(const Rings& rings) {
    RingViews views;
    for (const auto& r : rings) views.push_back({r.data(), static_cast<int>(r.size()), 0});
    return views;
}

/// Even-odd over boxes.
bool covers(const Rings& boxes, int x, int y) {
    bool inside = false;
    for (const auto& b : boxes) {
        if (b[0].x <= x && x < b[2].x && b[0].y <= y && y < b[2].y) inside = !inside;
    }
    return inside;
}

TEST(RingSets, UnionAndPartitionOfMany) {
    const unsigned long long seed = 4;
    RandomRings random(seed);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        std::vector<Rings> sets(random.integer(0, 9));
        for (Rings& set : sets) {
            for (int i = random.integer(0, 3); i > 0; --i) set.push_back(random.box(kSize));
        }
        const Rings subject = {random.box(kSize), random.box(kSize)};
        int united = 0;
        std::map<std::uint32_t, double> parts, expected;
        for (int x = 0; x < kSize; ++x) {
            for (int y = 0; y < kSize; ++y) {
                std::uint32_t in = 0;
                for (std::size_t i = 0; i < sets.size(); ++i)
                    in |= covers(sets[i], x, y) ? 1u << i : 0;
                const bool any = in != 0;
                if (covers(subject, x, y)) ++expected[in];
                united += any;
            }
        }
        std::vector<RingViews> views;
        for (const Rings& set : sets) views.push_back(viewsOf(set));
        EXPECT_EQ(area(detail::uniteRings(views)), united);
        for (const auto& part : detail::partitionRings(viewsOf(subject), views)) {
            parts[part.sets] += area(part.contours);
        }
        EXPECT_EQ(parts, expected);
    }
}

TEST(RingSets, NonFiniteCoordinateGivesNothingAndSaysSo) {
    const Rings good = {{{0, 0}, {1, 0}, {0, 1}}};
    const Rings bad = {{{5, 5}, {std::numeric_limits<double>::quiet_NaN(), 6}, {5, 6}}};
    JWReport::clearError();
    EXPECT_EQ(detail::uniteRings({viewsOf(good), viewsOf(bad)}).count(), 0);
    EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument);
}

}  // namespace
#ifdef JWCG_GPC_BUILTIN
TEST(RingSets, DirectedLoopsThatPassCornersClosely) {
    // A corner of each lies beside a steep edge of the other: cut there, a piece runs backwards.
    const std::vector<JWRawPoint> a = {{7.7478329770207681, 4.7960839188725899},
                                       {7.9657992493340339, 5.5482978717675975},
                                       {-1.9816512040204115, 0.6687054217714512}};
    const std::vector<JWRawPoint> b = {{-1.7478329770207686, 2.2039160811274097},
                                       {-1.9816512040204111, 0.66870542177144987},
                                       {-1.7943085565646184, -0.091714106673426832}};
    double overlap = 0;
    const double directed = area(detail::uniteDirected(viewsOf({a, b}), overlap));
    EXPECT_NEAR(directed, area(detail::uniteRings({viewsOf({a}), viewsOf({b})})), 1e-12);
}
#endif

}  // namespace jwtest
