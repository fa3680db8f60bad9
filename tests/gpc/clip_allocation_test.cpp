// SPDX-License-Identifier: MIT
//
// A clip of small operands allocates its result and nothing else, once the thread's memory has
// grown. The linker passes every call of the C allocator by the engine through the counters below.
#include <gpc.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <list>

#include "gpc/clip_engine.h"
#include "support/clip_families.h"
#include "support/gpc_operand.h"

namespace {

thread_local std::size_t allocations = 0;

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
void* __wrap_malloc(std::size_t size) {
    ++allocations;
    return __real_malloc(size);
}
void* __wrap_realloc(void* memory, std::size_t size) {
    ++allocations;
    return __real_realloc(memory, size);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace jwtest {
namespace {

constexpr std::uint64_t kSeed = 8;
constexpr std::uint64_t kPairs = 60;
constexpr std::size_t kMost = 64;  // vertices of an operand

struct Pair {
    explicit Pair(const RingPair& rings)
        : a(rings.a), b(rings.b), preparedA(*a.polygon()), preparedB(*b.polygon()) {}
    GpcOperand a, b;
    jws::gpc::PreparedOperand preparedA, preparedB;
};

std::size_t verticesOf(const Rings& rings) {
    std::size_t count = 0;
    for (const Ring& ring : rings) count += ring.size();
    return count;
}

/// Allocations of one clip beyond those of its result: a list of flags, one of contours, and the
/// vertices of each contour.
template <class Clip>
long allocationsBeyondResult(Clip&& clip) {
    gpc_polygon result;
    allocations = 0;
    clip(result);
    const long contours = result.num_contours;
    const long made = static_cast<long>(allocations);
    gpc_free_polygon(&result);
    return made - (contours == 0 ? 0 : contours + 2);
}

TEST(ClipAllocation, WarmCallsAllocateTheirResultOnly) {
    std::list<Pair> pairs;
    for (const ClipFamily& family : clipFamilies()) {
        for (std::uint64_t k = 0; k < kPairs; ++k) {
            RandomRings random = generatorOf(family, kSeed, k);
            const RingPair rings = family.make(random);
            if (std::max(verticesOf(rings.a), verticesOf(rings.b)) <= kMost) {
                pairs.emplace_back(rings);
            }
        }
    }
    ASSERT_GT(pairs.size(), 200u);
    for (const bool warm : {false, true}) {
        long beyond = 0;
        for (Pair& p : pairs) {
            for (const gpc_op op : kClipOps) {
                beyond += allocationsBeyondResult([&](gpc_polygon& result) {
                    gpc_polygon_clip(op, p.a.polygon(), p.b.polygon(), &result);
                });
                beyond += allocationsBeyondResult([&](gpc_polygon& result) {
                    jws::gpc::clip(op, {nullptr, &p.preparedA}, {nullptr, &p.preparedB}, result);
                });
            }
        }
        if (warm) {
            EXPECT_EQ(beyond, 0) << "seed " << kSeed;
        } else {
            EXPECT_GT(beyond, 0) << "nothing is counted";
        }
    }
}

}  // namespace
}  // namespace jwtest
