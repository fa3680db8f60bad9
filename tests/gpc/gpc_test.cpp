// SPDX-License-Identifier: MIT
//
// The clipping engine by itself: areas and contours of awkward input, its promises on random pairs,
// and pairs that it once got wrong.
#include <gpc.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <limits>
#include <thread>

#include "support/clip_check.h"
#include "support/clip_families.h"
#include "support/test_paths.h"

namespace jwtest {
using jws::JWRawPoint;

namespace {

constexpr std::uint64_t kPairsEach = 120;

/// A name that a test may have.
std::string identifier(std::string name) {
    for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

struct Row {
    const char* name;
    Rings a, b;
    double areas[4];  // difference, intersection, xor, union
    int outers[4];
    int holes[4];
};

const Ring sq = rectangle(0, 0, 10, 10);

const Row rows[] = {
    {"overlap", {sq}, {rectangle(5, 5, 15, 15)}, {75, 25, 150, 175}, {1, 1, 2, 1}, {0, 0, 0, 0}},
    {"identical", {sq}, {sq}, {0, 100, 0, 100}, {0, 1, 0, 1}, {0, 0, 0, 0}},
    {"apart", {sq}, {rectangle(20, 0, 21, 1)}, {100, 0, 101, 101}, {1, 0, 2, 2}, {0, 0, 0, 0}},
    {"nested", {sq}, {rectangle(2, 2, 4, 4)}, {96, 4, 96, 100}, {1, 1, 1, 1}, {1, 0, 1, 0}},
    {"shared edge",
     {sq},
     {rectangle(10, 0, 20, 10)},
     {100, 0, 200, 200},
     {1, 0, 1, 1},
     {0, 0, 0, 0}},
    {"part of an edge shared",
     {sq},
     {rectangle(10, 3, 12, 6)},
     {100, 0, 106, 106},
     {1, 0, 1, 1},
     {0, 0, 0, 0}},
    {"touching at a corner",
     {sq},
     {rectangle(10, 10, 12, 12)},
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
     {sq, rectangle(2, 2, 8, 8)},
     {rectangle(4, 4, 6, 6)},
     {64, 0, 68, 68},
     {1, 0, 2, 2},
     {1, 0, 1, 1}},
    {"self-crossing",
     {{{0, 0}, {10, 10}, {10, 0}, {0, 10}}},
     {rectangle(0, 0, 5, 10)},
     {25, 25, 50, 75},
     {1, 1, 3, 2},
     {0, 0, 0, 0}},
    {"ring twice is nothing",
     {sq, sq},
     {rectangle(0, 0, 1, 1)},
     {0, 0, 1, 1},
     {0, 0, 1, 1},
     {0, 0, 0, 0}},
    {"repeated points and a spike",
     {{{0, 0}, {0, 0}, {10, 0}, {15, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}}},
     {rectangle(5, 5, 15, 15)},
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
     {rectangle(0, 0, 2, 1), rectangle(2, 0, 3, 2)},
     {rectangle(1, 2, 3, 3), rectangle(0, 1, 1, 3)},
     {4, 0, 8, 8},
     {1, 0, 1, 1},
     {0, 0, 1, 1}},
};

class GpcRows : public testing::TestWithParam<Row> {};

TEST_P(GpcRows, AreasAndContours) {
    const Row& row = GetParam();
    for (int op = 0; op < 4; ++op) {
        const ClipResult r = clip(kClipOps[op], row.a, row.b);
        EXPECT_NEAR(r.area(), row.areas[op], 1e-9) << kClipNames[op];
        EXPECT_EQ(r.count(0), row.outers[op]) << kClipNames[op];
        EXPECT_EQ(r.count(1), row.holes[op]) << kClipNames[op];
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
            ClipResult r = clip(kClipOps[op], row.a, row.b);
            for (Ring& ring : r.contours) {
                for (JWRawPoint& p : ring) {
                    p.set(std::ldexp(p.x, -exponent), std::ldexp(p.y, -exponent));
                }
            }
            EXPECT_NEAR(r.area(), row.areas[op], 1e-6) << kClipNames[op] << " 2^" << exponent;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Table, GpcRows, testing::ValuesIn(rows),
                         [](const auto& row) { return identifier(row.param.name); });

class GpcFamily : public testing::TestWithParam<ClipFamily> {};

// What the campaign checks for as long as one likes, on a few pairs of every family.
TEST_P(GpcFamily, RandomPairs) {
    constexpr std::uint64_t kSeed = 20240611;
    for (std::uint64_t pair = 0; pair < kPairsEach; ++pair) {
        RandomRings random = generatorOf(GetParam(), kSeed, pair);
        const RingPair operands = GetParam().make(random);
        const Miss miss = checkPair(operands, random);
        ASSERT_FALSE(miss) << "clip-campaign --family " << GetParam().name << " --seed " << kSeed
                           << " --pair " << pair << "\n"
                           << miss.operation << ": " << miss.what << "\n"
                           << wktOf(operands.a) << "\n"
                           << wktOf(operands.b);
    }
}

INSTANTIATE_TEST_SUITE_P(All, GpcFamily, testing::ValuesIn(clipFamilies()),
                         [](const auto& family) { return identifier(family.param.name); });

// Pairs that an engine got wrong once: the file names the fault before each.
TEST(Gpc, FormerMisses) {
    std::ifstream file(testData("clip_misses.wkt"));
    ASSERT_TRUE(file);
    std::string a;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (a.empty()) {
            a = line;
            continue;
        }
        RandomRings random(1);
        const Miss miss = checkPair({ringsOf(a), ringsOf(line)}, random);
        EXPECT_FALSE(miss) << miss.operation << ": " << miss.what << "\n" << a << "\n" << line;
        a.clear();
    }
    EXPECT_EQ(a, "") << "an operand without its partner";
}

// Each axis has its own rounding: stretched by powers of two, the result is the stretched one.
TEST(GpcRandom, AxesOfDifferentMagnitude) {
    const unsigned long long seed = 23;
    RandomRings random(seed);
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const Rings a = {random.star(random.integer(3, 60), {0.3, 0.1}, 1)};
        const Rings b = {random.star(random.integer(3, 60), {random.uniform(-1, 1), 0.3}, 1)};
        const auto stretched = [](Rings rings) {
            for (Ring& ring : rings) {
                for (JWRawPoint& p : ring) p.set(p.x * 0x1p24, p.y * 0x1p-10);
            }
            return rings;
        };
        for (int op = 0; op < 4; ++op) {
            ClipResult expected = clip(kClipOps[op], a, b);
            expected.contours = stretched(expected.contours);
            EXPECT_TRUE(clip(kClipOps[op], stretched(a), stretched(b)) == expected)
                << kClipNames[op];
        }
    }
}

// Coordinates of all magnitudes in one operand: whatever is too small to count beside the largest,
// the four results must still add up.
TEST(GpcRandom, MagnitudesMixed) {
    const unsigned long long seed = 29;
    RandomRings random(seed);
    const auto coordinate = [&](double least, double most) {
        const double size = std::pow(10.0, random.uniform(least, most));
        return random.integer(0, 1) == 0 ? size : -size;
    };
    const double ranges[][2] = {{-310, 308}, {0, 200}, {-200, 0}, {-310, -290}, {290, 308}};
    for (int round = 0; round < 500; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const auto& [least, most] = ranges[round % 5];
        Rings operands[2];
        for (Rings& rings : operands) {
            rings.emplace_back();
            for (int i = random.integer(3, 12); i > 0; --i) {
                rings[0].push_back({coordinate(least, most), coordinate(least, most)});
            }
        }
        // Sums in units of the largest cannot overflow.
        const double unit = std::pow(10.0, -most);
        double areas[4];
        for (int op = 0; op < 4; ++op) {
            ClipResult r = clip(kClipOps[op], operands[0], operands[1]);
            ASSERT_EQ(r.failure, 0);
            for (Ring& ring : r.contours) {
                for (JWRawPoint& p : ring) p.set(p.x * unit, p.y * unit);
            }
            areas[op] = r.area();
        }
        const auto& [difference, intersection, either, all] = areas;
        EXPECT_NEAR(either + intersection, all, 1e-9);
        EXPECT_LE(difference, either + 1e-9);
    }
}

TEST(Gpc, InputVerticesKeepTheirBits) {
    // Magnitudes so different that no common grid of doubles holds all of them.
    const Ring a = {{1e-9, 0.1}, {3e5 + 0.1, -0.2}, {2e5 + 0.3, 1.0 / 3}, {-0.0, 123456.789}};
    const ClipResult r = clip(GPC_UNION, {a}, {});
    ASSERT_EQ(r.contours.size(), 1u);
    for (const JWRawPoint& p : a) {
        EXPECT_TRUE(std::any_of(r.contours[0].begin(), r.contours[0].end(), [&](const auto& q) {
            return q == p && std::signbit(q.x) == std::signbit(p.x);
        }));
    }
    EXPECT_EQ(r.contours[0].size(), a.size());
}

TEST(Gpc, CollinearVerticesStay) {
    const Ring a = {{0, 0}, {5, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(clip(GPC_INT, {a}, {rectangle(-1, -1, 11, 11)}).contours[0].size(), 5u);
}

TEST(Gpc, NonFiniteInputGivesNothingAndSaysSo) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        for (int op = 0; op < 4; ++op) {
            const ClipResult r = clip(kClipOps[op], {sq, {{0, 0}, {1, bad}, {1, 1}}}, {sq});
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
    const ClipResult expected = clip(GPC_XOR, a, b);
    std::vector<ClipResult> found(4);
    std::vector<std::thread> team;
    for (ClipResult& slot : found) team.emplace_back([&] { slot = clip(GPC_XOR, a, b); });
    for (std::thread& t : team) t.join();
    for (const ClipResult& r : found) EXPECT_TRUE(r == expected);
}

}  // namespace
}  // namespace jwtest
