// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "jw_spatialindex.h"

namespace {

using namespace jws;

void* payload(std::intptr_t i) { return reinterpret_cast<void*>(i + 1); }

std::vector<JWEnvelop> randomRectangles(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> place(0, 200), size(0, 9);
    std::vector<JWEnvelop> rectangles;
    for (int i = 0; i < count; ++i) {
        const double x = place(random), y = place(random);
        rectangles.emplace_back(x, y, x + size(random), y + size(random));
    }
    return rectangles;
}

std::vector<void*> bruteForce(const std::vector<JWEnvelop>& rectangles, const JWEnvelop& query) {
    std::vector<void*> hits;
    for (std::size_t i = 0; i < rectangles.size(); ++i) {
        if (!rectangles[i].isDisjoin(query)) hits.push_back(payload(static_cast<std::intptr_t>(i)));
    }
    return hits;
}

TEST(SpatialIndexTest, FindsWhatBruteForceFindsInInsertionOrder) {
    const unsigned seed = 4711;
    SCOPED_TRACE(seed);
    for (const int count : {0, 1, 2, 17, 1000}) {
        const std::vector<JWEnvelop> rectangles = randomRectangles(count, seed);
        JWSpatialIndex index;
        ASSERT_TRUE(index.initRTreeIndex());
        for (int i = 0; i < count; ++i) {
            ASSERT_TRUE(index.addRect(rectangles[static_cast<std::size_t>(i)], payload(i)));
        }
        std::vector<void*> hits;
        for (const JWEnvelop& query : randomRectangles(200, seed + 1)) {
            index.spatialSearch(query, hits);
            EXPECT_EQ(hits, bruteForce(rectangles, query));
        }
        EXPECT_EQ(index.getCount(), count);
    }
}

TEST(SpatialIndexTest, TheArrayFormOwnsItsResultAndStoresNullForNoHit) {
    JWSpatialIndex index;
    void** result = reinterpret_cast<void**>(&index);
    ASSERT_TRUE(index.initRTreeIndex());
    EXPECT_EQ(index.spatialSearch(JWEnvelop(0, 0, 1, 1), &result), 0);
    EXPECT_EQ(result, nullptr);
    index.addRect(JWEnvelop(0, 0, 1, 1), payload(0));
    index.addRect(JWEnvelop(1, 1, 2, 2), payload(1));
    ASSERT_EQ(index.spatialSearch(JWEnvelop(1, 1, 1, 1), &result), 2) << "borders belong";
    EXPECT_EQ(result[0], payload(0));
    EXPECT_EQ(result[1], payload(1));
    ::operator delete(result);
    EXPECT_EQ(index.spatialSearch(JWEnvelop::invalid(), &result), 0);
    EXPECT_EQ(index.spatialSearch(JWEnvelop(0, 0, 1, 1), nullptr), 0);
}

TEST(SpatialIndexTest, UnusableRectanglesAreRefusedAndHugeOnesFound) {
    const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
    JWSpatialIndex index;
    EXPECT_FALSE(index.addRect(JWEnvelop(0, 0, 1, 1), payload(0))) << "not initialised";
    ASSERT_TRUE(index.initRTreeIndex());
    EXPECT_FALSE(index.addRect(JWEnvelop::invalid(), payload(0)));
    EXPECT_FALSE(index.addRect(JWEnvelop(nan, 0, 1, 1), payload(0)));
    EXPECT_FALSE(index.addRect(JWEnvelop(1, 0, 0, 1), payload(0)));
    EXPECT_TRUE(index.addRect(JWEnvelop(-inf, -inf, inf, inf), payload(0)));
    EXPECT_TRUE(index.addRect(JWEnvelop(5, 5, 6, 6), payload(1)));
    EXPECT_TRUE(index.addRect(JWEnvelop(0, 0, 1e308, 1), payload(2)));
    std::vector<void*> hits;
    index.spatialSearch(JWEnvelop(5, 0, 5, 9), hits);
    EXPECT_EQ(hits, (std::vector<void*>{payload(0), payload(1), payload(2)}));
    index.spatialSearch(JWEnvelop(-inf, 2, inf, inf), hits);
    EXPECT_EQ(hits, (std::vector<void*>{payload(0), payload(1)}));
    index.deleteRTreeIndex();
    EXPECT_EQ(index.getCount(), 0);
    index.spatialSearch(JWEnvelop(0, 0, 9, 9), hits);
    EXPECT_TRUE(hits.empty());
}

TEST(SpatialIndexTest, RectanglesAddedAfterASearchAreFound) {
    JWSpatialIndex index;
    index.initRTreeIndex();
    std::vector<void*> hits;
    for (int i = 0; i < 50; ++i) {
        index.addRect(JWEnvelop(0, 0, 1, 1), payload(i));
        index.spatialSearch(JWEnvelop(1, 1, 2, 2), hits);
        ASSERT_EQ(hits.size(), static_cast<std::size_t>(i) + 1);
    }
}

TEST(SpatialIndexTest, FirstSearchOnSeveralThreads) {
    const std::vector<JWEnvelop> rectangles = randomRectangles(20000, 5);
    const std::vector<JWEnvelop> queries = randomRectangles(500, 6);
    JWSpatialIndex index;
    index.initRTreeIndex();
    for (std::size_t i = 0; i < rectangles.size(); ++i) {
        index.addRect(rectangles[i], payload(static_cast<std::intptr_t>(i)));
    }
    std::vector<std::vector<std::vector<void*>>> found(8);
    std::vector<std::thread> threads;
    for (auto& mine : found) {
        threads.emplace_back([&index, &queries, &mine] {
            mine.resize(queries.size());
            for (std::size_t q = 0; q < queries.size(); ++q)
                index.spatialSearch(queries[q], mine[q]);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& mine : found) {
        for (std::size_t q = 0; q < queries.size(); ++q) {
            ASSERT_EQ(mine[q], bruteForce(rectangles, queries[q]));
        }
    }
}

}  // namespace
