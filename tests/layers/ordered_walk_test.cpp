// SPDX-License-Identifier: MIT
//
// The walk under all layer operations, over a made-up operand.
#include "layers/ordered_walk.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <numeric>
#include <string>
#include <thread>

#include "layers/numbers.h"

using namespace jws;
using namespace jws::detail;

namespace {

struct Course {
    std::int64_t worked = 0;
    std::int64_t result = 0;  ///< what `work` made
};

class OrderedWalkThreads : public testing::Test {
  protected:
    using Walk = OrderedWalk<Course>;

    Walk::Actions actions() {
        Walk::Actions made;
        made.work = [this](Walk::Chunk& chunk) {
            for (std::size_t i = 0; i < chunk.size(); ++i) {
                if (chunk.position(i) % 50 == 0) {  // some take longer, so that others overtake
                    std::this_thread::sleep_for(std::chrono::microseconds(300));
                }
                EXPECT_FALSE(chunk.read[i].record);
                ++chunk.slots[i].worked;
                chunk.slots[i].result = chunk.feature(i)->getFID64() * 2;
                if (chunk.position(i) == failsAt) throw std::logic_error("work");
            }
        };
        made.prepare = [this](Walk::Chunk& chunk, std::size_t i) {
            EXPECT_EQ(1, chunk.slots[i].worked);
            ++prepared;
            return std::size_t{1};
        };
        made.finish = [this](Walk::Chunk& chunk, std::size_t i) {
            EXPECT_EQ(chunk.position(i) * 2, chunk.slots[i].result);
            finished.push_back(chunk.position(i));
            if (chunk.position(i) == finishFailsAt) throw std::logic_error("finish");
        };
        made.keepOn = [this] { return static_cast<std::int64_t>(finished.size()) < stopsAfter; };
        return made;
    }

    Numbers input;
    std::vector<std::int64_t> finished;
    std::atomic<std::int64_t> prepared{0};
    std::int64_t failsAt = -1;
    std::int64_t finishFailsAt = -1;
    std::int64_t stopsAfter = INT64_MAX;
};

TEST_F(OrderedWalkThreads, EveryFeatureOnceInOrderWhateverTheTeamAndTheSourceStates) {
    const struct {
        std::int64_t stated, actual, first, count;
    } rows[] = {{1000, 1000, 0, INT64_MAX / 2},
                {1000, 1000, 0, 1000},
                {1000, 1000, 993, 7},
                {1000, 1000, 300, 77},
                {1000, 1000, 995, 77},
                {1000, 1000, 1000, 5},
                {0, 0, 0, 10},
                {1, 1, 0, 10},
                {500, 1000, 0, INT64_MAX / 2},
                {0, 300, 0, INT64_MAX / 2},
                {1000, 400, 0, 1000},
                {1000, 0, 0, 1000}};
    for (const auto& row : rows) {
        for (const int threads : {1, 2, 8}) {
            for (const std::int64_t chunkSize : {-1, 1, -7, 7, -256, 256}) {
                SCOPED_TRACE(std::to_string(row.stated) + " " + std::to_string(row.actual) + " " +
                             std::to_string(row.first) + " " + std::to_string(threads));
                input.stated = row.stated;
                input.actual = row.actual;
                input.rewindTo(row.first);
                input.decoded = prepared = 0;
                finished.clear();
                const Team team(threads);
                Walk::Actions what = actions();
                what.chunkSize = std::abs(chunkSize);
                what.takesApart = chunkSize < 0;
                Walk walk(team, input, what);
                EXPECT_TRUE(walk.run(row.first, row.count));
                const std::int64_t end =
                    std::max(row.first, std::min(row.first + row.count, row.actual));
                std::vector<std::int64_t> expected(static_cast<std::size_t>(end - row.first));
                std::iota(expected.begin(), expected.end(), row.first);
                EXPECT_EQ(expected, finished);
                EXPECT_EQ(end, walk.position());
                const auto thirds = std::count_if(expected.begin(), expected.end(),
                                                  [](std::int64_t i) { return i % 3 == 0; });
                EXPECT_EQ(threads == 1 ? 0 : thirds, input.decoded);
                EXPECT_EQ(threads == 1 ? 0 : static_cast<std::int64_t>(expected.size()), prepared);
            }
        }
    }
}

TEST_F(OrderedWalkThreads, AStopOrAFailureEndsTheWalkInOrder) {
    const struct {
        std::int64_t breaksAt, failsAt, finishFailsAt, stopsAfter;
        const char* thrown;  // null for a stop
    } rows[] = {{600, -1, -1, INT64_MAX, "cannot be read"},
                {-1, 600, -1, INT64_MAX, "work"},
                {-1, -1, 600, INT64_MAX, "finish"},
                {-1, -1, -1, 600, nullptr}};
    for (const auto& row : rows) {
        for (const int threads : {1, 2, -2, 8, -8}) {
            input.stated = input.actual = 100000;
            input.rewindTo(0);
            input.readers = 0;
            finished.clear();
            input.breaksAt = row.breaksAt;
            failsAt = row.failsAt;
            finishFailsAt = row.finishFailsAt;
            stopsAfter = row.stopsAfter;
            const Team team(std::abs(threads));
            Walk::Actions what = actions();
            what.takesApart = threads < 0;
            Walk walk(team, input, what);
            std::string thrown;
            try {
                EXPECT_FALSE(walk.run(0, INT64_MAX / 2));
            } catch (const std::exception& failure) {
                thrown = failure.what();
            }
            EXPECT_EQ(row.thrown != nullptr ? row.thrown : "", thrown);
            // What was finished is a beginning of it all, and not much more than asked for.
            for (std::size_t i = 0; i < finished.size(); ++i) {
                ASSERT_EQ(static_cast<std::int64_t>(i), finished[i]);
            }
            EXPECT_GE(700u, finished.size());
            if (row.finishFailsAt >= 0) {
                EXPECT_EQ(601u, finished.size());
            }
        }
    }
}

/// A walk whose features make many results, ten bytes each; every so many are finished as a part.
class OrderedWalkResultsThreads : public testing::Test {
  protected:
    struct Results {
        std::vector<std::int64_t> waiting;
    };
    using Walk = OrderedWalk<Results>;
    static constexpr std::size_t kBytes = 10, kPart = 200, kWaiting = 1000;
    static constexpr std::int64_t kTooMany = 100000;

    static std::int64_t resultsOf(std::int64_t position) {
        return position == 0 ? 700 : position % 7 == 0 ? 90 : position % 5;
    }

    /// Ends early once a feature behind has failed, and by itself after far too many.
    void resultsBesideAFailure(Walk& walk, Walk::Chunk& chunk) {
        while (!hasFailed) std::this_thread::yield();
        for (std::int64_t k = 0; k < kTooMany; ++k) {
            if (k % 1000 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
            chunk.slots[0].waiting.push_back(k);
            walk.grew(chunk, 0, kBytes);
        }
    }

    void work(Walk& walk, Walk::Chunk& chunk) {
        if (failsAt > 0 && chunk.position(0) == 0) resultsBesideAFailure(walk, chunk);
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            const std::int64_t position = chunk.position(i);
            // The rest could be through with everything before the first feature is.
            if (position == 0) std::this_thread::sleep_for(std::chrono::milliseconds(30));
            for (std::int64_t k = 0; k < resultsOf(position); ++k) {
                chunk.slots[i].waiting.push_back(position * 1000 + k);
                const std::size_t now = held += kBytes;
                for (std::size_t most = mostHeld; now > most;) {
                    if (mostHeld.compare_exchange_weak(most, now)) break;
                }
                walk.grew(chunk, i, kBytes);
            }
            if (position == failsAt) {
                hasFailed = true;
                throw std::logic_error("work");
            }
        }
    }
    void write(Results& results) {
        written.insert(written.end(), results.waiting.begin(), results.waiting.end());
        held -= kBytes * results.waiting.size();
        results.waiting.clear();
    }
    bool run(int threads) {
        input.stated = input.actual = 2000;
        input.rewindTo(0);
        written.clear();
        held = mostHeld = 0;
        hasFailed = false;
        const Team team(threads);
        Walk walk(team, input,
                  {[&](Walk::Chunk& chunk) { work(walk, chunk); },
                   [&](Walk::Chunk& chunk, std::size_t i) { write(chunk.slots[i]); },
                   [&] { return static_cast<std::int64_t>(written.size()) < stopsAfter; },
                   {},
                   8,
                   [&](Walk::Chunk& chunk, std::size_t i) { write(chunk.slots[i]); },
                   {kWaiting, kPart}});
        return walk.run(0, INT64_MAX / 2);
    }

    Numbers input;
    std::vector<std::int64_t> written;
    std::atomic<std::size_t> held{0}, mostHeld{0};
    std::atomic<bool> hasFailed{false};
    std::int64_t failsAt = -1;
    std::int64_t stopsAfter = INT64_MAX;
};

TEST_F(OrderedWalkResultsThreads, ResultsComeInOrderAndWhatWaitsIsBounded) {
    std::vector<std::int64_t> expected;
    for (std::int64_t position = 0; position < 2000; ++position) {
        for (std::int64_t k = 0; k < resultsOf(position); ++k) {
            expected.push_back(position * 1000 + k);
        }
    }
    for (const int threads : {1, 2, 8}) {
        EXPECT_TRUE(run(threads));
        EXPECT_EQ(expected, written) << threads;
        // Each worker may be at a chunk that holds less than much.
        const auto workers = static_cast<std::size_t>(workersOf(threads));
        EXPECT_GE((threads == 1 ? 0 : kWaiting) + workers * (kPart + kBytes), mostHeld) << threads;
    }
}

TEST_F(OrderedWalkResultsThreads, AFailureOrAStopAtTheFrontEndsThoseThatWait) {
    for (const int threads : {1, 2, 8}) {
        failsAt = 0;
        stopsAfter = INT64_MAX;
        EXPECT_THROW(run(threads), std::logic_error);
        failsAt = -1;
        stopsAfter = 50;
        EXPECT_FALSE(run(threads));
        EXPECT_GE(150u, written.size());
    }
}

TEST_F(OrderedWalkResultsThreads, AFailureBehindTheFrontEndsIt) {
    failsAt = 9;
    for (const int threads : {2, 8}) {
        EXPECT_THROW(run(threads), std::logic_error);
        EXPECT_GT(static_cast<std::size_t>(kTooMany), written.size());
    }
}

}  // namespace
