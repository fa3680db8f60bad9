// SPDX-License-Identifier: MIT
//
// Decoded features by position, bounded in bytes; the least recently used ones go first. A feature
// that somebody still holds lives on outside the cache.
#ifndef JW_FOUNDATION_FEATURE_CACHE_H
#define JW_FOUNDATION_FEATURE_CACHE_H

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <unordered_map>

#include "jw_feature_class.h"

namespace jws::detail {

class FeatureCache {
  public:
    /// Drops what exceeds the new limit; 0 switches the cache off.
    void setLimit(std::size_t bytes) {
        m_limit = bytes;
        shrink();
    }

    /// The feature at `position`, null when it is not held; it becomes the most recently used.
    std::shared_ptr<const JWFeature> find(std::int64_t position) {
        const auto found = m_places.find(position);
        if (found == m_places.end()) return nullptr;
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        return found->second->feature;
    }

    /// Adds a feature that is not held yet. Returns false when there was no room, for it or for one
    /// that had to go.
    bool add(std::int64_t position, std::shared_ptr<const JWFeature> feature) {
        const std::size_t bytes = feature->memorySize() + overhead;
        if (bytes > m_limit) return false;
        const bool fits = m_bytes + bytes <= m_limit;
        m_entries.push_front({position, bytes, std::move(feature)});
        m_places[position] = m_entries.begin();
        m_bytes += bytes;
        shrink();
        return fits;
    }

    void clear() {
        m_places.clear();
        m_entries.clear();
        m_bytes = 0;
    }

  private:
    struct Entry {
        std::int64_t position;
        std::size_t bytes;
        std::shared_ptr<const JWFeature> feature;
    };
    /// List node, table node and reference count of one entry.
    static constexpr std::size_t overhead = 160;

    void shrink() {
        while (m_bytes > m_limit) {
            m_bytes -= m_entries.back().bytes;
            m_places.erase(m_entries.back().position);
            m_entries.pop_back();
        }
    }

    std::size_t m_limit = std::size_t{256} << 20;
    std::size_t m_bytes = 0;
    std::list<Entry> m_entries;
    std::unordered_map<std::int64_t, std::list<Entry>::iterator> m_places;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_FEATURE_CACHE_H
