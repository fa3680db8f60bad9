// SPDX-License-Identifier: MIT
//
// A walk of a team over the features of an operand, in chunks of neighbours: a worker reads the
// next chunk, decodes it and works on it, and chunks are finished in order (ordered_work.h).
//
// Guarantees. Features are read in order, each once, and finished in order, whatever the number of
// threads. Cost. Memory for a chunk of each worker, and for what the limits let wait.
#ifndef JW_LAYERS_ORDERED_WALK_H
#define JW_LAYERS_ORDERED_WALK_H

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "layers/feature_io.h"
#include "layers/ordered_work.h"

namespace jws::detail {

/// Neighbouring features, and what becomes of each.
template <class Slot>
struct FeatureChunk : WorkChunk {
    std::int64_t first = 0;  ///< position of the first one
    std::vector<JWReadFeature> read;
    std::vector<Slot> slots;

    std::size_t size() const { return read.size(); }
    const std::shared_ptr<const JWFeature>& feature(std::size_t i) const { return read[i].feature; }
    std::int64_t position(std::size_t i) const { return first + static_cast<std::int64_t>(i); }
};

template <class Slot>
class OrderedWalk {
  public:
    using Chunk = FeatureChunk<Slot>;
    /// As those of OrderedWork, feature by feature.
    struct Actions {
        /// Works on the features of a chunk and fills their slots.
        std::function<void(Chunk&)> work;
        std::function<void(Chunk&, std::size_t i)> finish;
        std::function<bool()> keepOn;
        std::function<std::size_t(Chunk&, std::size_t i)> prepare = {};
        /// Neighbours that make a chunk, at most: many where little is done to each.
        std::int64_t chunkSize = 32;
        std::function<void(Chunk&, std::size_t i)> finishPart = {};
        WorkLimits limits = {};
        bool takesApart = false;  ///< reading and `finish` may happen at the same time
    };

    OrderedWalk(const Team& team, FeatureInput& input, const Actions& actions)
        : m_team(team),
          m_input(input),
          m_mostInChunk(actions.chunkSize),
          m_work(team, {[this](Chunk& chunk) { return read(chunk); },
                        [this, work = actions.work](Chunk& chunk) {
                            decode(chunk);
                            work(chunk);
                        },
                        actions.finish, actions.keepOn, actions.prepare, actions.finishPart, sizeOf,
                        actions.limits, actions.takesApart}) {}

    /// Walks over the features at positions `first` to `first + count - 1`, fewer at the end.
    /// Returns false when it was stopped. What an action throws ends the walk and is thrown again.
    bool run(std::int64_t first, std::int64_t count) {
        m_position = first;
        m_end = first + count;
        m_atEnd = false;
        const std::int64_t stated = m_input.count();
        while (m_position < m_end && !m_atEnd) {
            // One more than the source states, to meet the end or what it did not know of.
            const std::int64_t features =
                std::min(m_end - m_position, std::max<std::int64_t>(stated - m_position, 0) + 1);
            m_chunkSize = std::clamp<std::int64_t>(features / (std::int64_t{8} * m_team.size()), 1,
                                                   m_mostInChunk);
            if (!m_work.run(static_cast<std::size_t>((features + m_chunkSize - 1) / m_chunkSize))) {
                return false;
            }
        }
        return true;
    }
    /// Behind the last feature that was read.
    std::int64_t position() const { return m_position; }
    /// To be told by `work`, see OrderedWork.
    void grew(Chunk& chunk, std::size_t i, std::size_t bytes) { m_work.grew(chunk, i, bytes); }

  private:
    /// The last chunk may be without features.
    bool read(Chunk& chunk) {
        if (m_atEnd) return false;
        const std::int64_t wanted = std::min(m_chunkSize, m_end - m_position);
        chunk.first = m_position;
        // A single worker decodes each feature while it is at hand.
        m_input.read(m_position, wanted, m_team.size() == 1, chunk.read);
        m_position += static_cast<std::int64_t>(chunk.size());
        m_atEnd = m_position < chunk.first + wanted;
        return true;
    }

    void decode(Chunk& chunk) {
        for (std::size_t k = 0; k < chunk.size(); ++k) {
            if (chunk.read[k].record) m_input.decode(chunk.position(k), chunk.read[k]);
        }
        chunk.slots.resize(chunk.size());
    }

    static std::size_t sizeOf(const Chunk& chunk) {
        std::size_t bytes = 0;
        for (const JWReadFeature& read : chunk.read) {
            if (read.feature) bytes += read.feature->memorySize();
        }
        return bytes;
    }

    const Team& m_team;
    FeatureInput& m_input;
    std::int64_t m_mostInChunk;
    std::int64_t m_chunkSize = 1;
    std::int64_t m_position = 0;  ///< of the feature to be read next
    std::int64_t m_end = 0;
    bool m_atEnd = false;
    OrderedWork<Chunk> m_work;
};

}  // namespace jws::detail

#endif  // JW_LAYERS_ORDERED_WALK_H
