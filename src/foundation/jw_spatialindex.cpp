// SPDX-License-Identifier: MIT
//
// The index stands on Boost.Geometry's R-tree, packed from all rectangles at once (sort-tile-
// recursive): that tree is better filled than one grown by insertion and takes O(n log n).
// Inserting only appends to a list; the first search afterwards packs the tree under a mutex, later
// ones see by an atomic flag that it is ready and take no lock.
//
// Rectangles with coordinates beyond ±1e300 would overflow the packing's arithmetic; they are kept
// in a list of their own that each search walks.
#include "jw_spatialindex.h"

#include <algorithm>
#include <atomic>
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <new>

#include "foundation/api_guard.h"

namespace jws {
namespace {

namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;

using Corner = bg::model::point<double, 2, bg::cs::cartesian>;
using Box = bg::model::box<Corner>;
using Entry = std::pair<Box, std::uint32_t>;
using RTree = bgi::rtree<Entry, bgi::linear<16>>;

Box boxOf(const JWEnvelop& e) { return Box(Corner(e.minX, e.minY), Corner(e.maxX, e.maxY)); }

bool isHuge(const JWEnvelop& e) {
    constexpr double limit = 1e300;
    return !(e.minX >= -limit && e.minY >= -limit && e.maxX <= limit && e.maxY <= limit);
}

}  // namespace

struct JWSpatialIndex::Tree {
    std::vector<JWEnvelop> rectangles;
    std::vector<void*> payloads;
    std::vector<std::uint32_t> huge;
    RTree rtree;
    std::mutex mutex;
    std::atomic<bool> packed{true};

    void pack() {
        if (packed.load(std::memory_order_acquire)) return;
        std::lock_guard<std::mutex> lock(mutex);
        if (packed.load(std::memory_order_relaxed)) return;
        std::vector<Entry> entries;
        entries.reserve(rectangles.size() - huge.size());
        for (std::size_t i = 0; i < rectangles.size(); ++i) {
            if (!isHuge(rectangles[i])) {
                entries.emplace_back(boxOf(rectangles[i]), static_cast<std::uint32_t>(i));
            }
        }
        rtree = RTree(entries);
        packed.store(true, std::memory_order_release);
    }

    /// Fills `result` with the payloads in insertion order. Indices travel in the result's own
    /// slots until they are sorted, so that no other memory is needed.
    void search(const JWEnvelop& query, std::vector<void*>& result) {
        pack();
        const auto take = [&result](std::uint32_t i) {
            result.push_back(reinterpret_cast<void*>(static_cast<std::uintptr_t>(i)));
        };
        rtree.query(bgi::intersects(boxOf(query)),
                    boost::make_function_output_iterator(
                        [&take](const Entry& entry) { take(entry.second); }));
        for (const std::uint32_t i : huge) {
            if (!rectangles[i].isDisjoin(query)) take(i);
        }
        const auto indexOf = [](const void* slot) {
            return reinterpret_cast<std::uintptr_t>(slot);
        };
        std::sort(result.begin(), result.end(),
                  [&indexOf](const void* a, const void* b) { return indexOf(a) < indexOf(b); });
        for (void*& slot : result) slot = payloads[indexOf(slot)];
    }
};

JWSpatialIndex::JWSpatialIndex() = default;
JWSpatialIndex::~JWSpatialIndex() = default;

bool JWSpatialIndex::initRTreeIndex() {
    return detail::guarded("initRTreeIndex", false, [this] {
        m_tree = std::make_unique<Tree>();
        return true;
    });
}

bool JWSpatialIndex::addRect(const JWEnvelop& envelop, void* payload) {
    return detail::guarded("addRect", false, [&] {
        if (!m_tree || !envelop.isValid() || m_tree->rectangles.size() >= INT32_MAX) return false;
        if (isHuge(envelop)) {
            m_tree->huge.push_back(static_cast<std::uint32_t>(m_tree->rectangles.size()));
        }
        m_tree->payloads.push_back(payload);
        m_tree->rectangles.push_back(envelop);
        m_tree->packed.store(false, std::memory_order_release);
        return true;
    });
}

int JWSpatialIndex::spatialSearch(const JWEnvelop& query, void*** result) const {
    if (result == nullptr) return 0;
    *result = nullptr;
    return detail::guarded("spatialSearch", 0, [&] {
        std::vector<void*> hits;
        if (!spatialSearch(query, hits) || hits.empty()) return 0;
        const std::size_t bytes = hits.size() * sizeof(void*);
        *result = static_cast<void**>(::operator new(bytes));
        std::memcpy(*result, hits.data(), bytes);
        return static_cast<int>(hits.size());
    });
}

bool JWSpatialIndex::spatialSearch(const JWEnvelop& query, std::vector<void*>& result) const {
    result.clear();
    const bool complete = detail::guarded("spatialSearch", false, [&] {
        if (m_tree && query.isValid()) m_tree->search(query, result);
        return true;
    });
    if (!complete) result.clear();  // it may hold indices
    return complete;
}

int JWSpatialIndex::getCount() const {
    return m_tree ? static_cast<int>(m_tree->rectangles.size()) : 0;
}

void JWSpatialIndex::deleteRTreeIndex() { m_tree.reset(); }

}  // namespace jws
