// SPDX-License-Identifier: MIT
//
// A walk of a team over the features of an operand, in chunks of neighbours. A worker reads the
// next chunk, decodes it and works on it; then it finishes the chunks that are done from the front,
// in order, unless another worker is at that. Reading and finishing (which is where results are
// written) happen one at a time inside the critical section, and overlap the work of the others.
// Nobody waits for anybody before the end of the walk.
//
// What a worker allocates it also gives back, soon if possible: memory that one thread takes and
// another one returns has the two contend for the allocator, and what lies about grows cold. So a
// chunk is made and let go by one and the same worker, and the output's form of a result is made,
// by the worker that is going to write it, a few results ahead.
//
// Guarantees. Features are read in order, each once, and finished in order, whatever the number of
// threads. Cost. Memory for the chunks that are read and not finished; at most the walk's range.
#ifndef JW_LAYERS_ORDERED_WALK_H
#define JW_LAYERS_ORDERED_WALK_H

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/parallel.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// Neighbouring features, and what becomes of each.
template <class Slot>
struct FeatureChunk {
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
    struct Actions {
        /// Works on the features of a chunk and fills their slots; on many threads at once.
        std::function<void(Chunk&)> work;
        /// Finishes feature i of a chunk; inside the critical section, in order.
        std::function<void(Chunk&, std::size_t i)> finish;
        /// Called every now and then inside the critical section; false stops the walk.
        std::function<bool()> keepOn;
        /// Prepares feature i for `finish`, shortly before and outside of the critical section, and
        /// returns how many results it has; may be empty. Not called for a single worker.
        std::function<std::size_t(Chunk&, std::size_t i)> prepare = {};
        /// Neighbours that make a chunk, at most: many where little is done to each.
        std::int64_t chunkSize = 32;
    };

    OrderedWalk(const Team& team, FeatureInput& input, Actions actions)
        : m_team(team), m_input(input), m_actions(std::move(actions)) {}

    /// Walks over the features at positions `first` to `first + count - 1`, fewer at the end.
    /// Returns false when it was stopped. What an action throws ends the walk and is thrown again.
    bool run(std::int64_t first, std::int64_t count) {
        m_position = first;
        m_end = first + count;
        m_atEnd = false;
        const std::int64_t stated = m_input.count();
        while (m_position < m_end && !m_atEnd && !m_stopped) {
            // One more than the source states, to meet the end or what it did not know of.
            plan(std::min(m_end - m_position, std::max<std::int64_t>(stated - m_position, 0) + 1));
            onEachWorker(m_team, static_cast<std::int64_t>(m_chunks.size()),
                         [this] { takePart(); });
        }
        m_chunks.clear();
        return !m_stopped;
    }
    /// Behind the last feature that was read.
    std::int64_t position() const { return m_position; }

  private:
    static constexpr std::size_t kPrepared = 32;  // results and features

    void plan(std::int64_t features) {
        m_chunkSize = std::clamp<std::int64_t>(features / (std::int64_t{8} * m_team.size()), 1,
                                               m_actions.chunkSize);
        const auto chunks = static_cast<std::size_t>((features + m_chunkSize - 1) / m_chunkSize);
        m_chunks.clear();
        m_chunks.resize(chunks);
        m_done = std::vector<std::atomic<bool>>(chunks);
        m_taken = 0;
        m_front = 0;
        m_finished = 0;
    }

    void takePart() {
        std::vector<std::size_t> mine;
        try {
            for (std::size_t i = 0; take(i);) {
                mine.push_back(i);
                Chunk& chunk = *m_chunks[i];
                for (std::size_t k = 0; k < chunk.size(); ++k) {
                    if (chunk.read[k].record) m_input.decode(chunk.position(k), chunk.read[k]);
                }
                chunk.slots.resize(chunk.size());
                m_actions.work(chunk);
                m_done[i] = true;
                finishDone();
                letGo(mine);
            }
        } catch (...) {
            m_failed = true;
            throw;
        }
    }

    /// Reads the next chunk; false when there is none.
    bool take(std::size_t& index) {
        bool taken = false;
        exclusive([&] {
            if (m_stopped || m_failed || m_atEnd || m_taken == m_chunks.size()) return;
            index = m_taken++;
            m_chunks[index] = std::make_unique<Chunk>();
            Chunk& chunk = *m_chunks[index];
            const std::int64_t wanted = std::min(m_chunkSize, m_end - m_position);
            chunk.first = m_position;
            // A single worker decodes each feature while it is at hand.
            m_input.read(m_position, wanted, m_team.size() == 1, chunk.read);
            m_position += static_cast<std::int64_t>(chunk.size());
            m_atEnd = m_position < chunk.first + wanted;
            taken = true;
        });
        return taken;
    }

    bool isFrontDone() const {
        const std::size_t front = m_front;
        return !m_stopped && !m_failed && front < m_done.size() && m_done[front];
    }

    /// A few at a time, so that others get at the critical section in between. A worker leaves at
    /// once when another one is finishing: that one looks again after it has given the turn back,
    /// so nothing is left lying. That needs sequential consistency: with weaker orders two workers
    /// that complete neighbouring chunks may each miss the other's. After a failure the turn is not
    /// given back, and nothing more is finished.
    void finishDone() {
        while (isFrontDone() && !m_finishing.exchange(true)) {
            while (isFrontDone()) finishSome();
            m_finishing.exchange(false);
        }
    }

    void finishSome() {
        Chunk& chunk = *m_chunks[m_front];
        std::size_t end = m_finished;
        for (std::size_t n = 0; end < chunk.size() && n < kPrepared; ++n, ++end) {
            if (m_actions.prepare && m_team.size() > 1) n += m_actions.prepare(chunk, end);
        }
        exclusive([&] {
            for (; m_finished < end; ++m_finished) m_actions.finish(chunk, m_finished);
            if (!m_actions.keepOn()) m_stopped = true;
        });
        if (m_finished < chunk.size()) return;
        m_finished = 0;
        ++m_front;
    }

    void letGo(std::vector<std::size_t>& mine) {
        const std::size_t front = m_front;
        const auto kept = std::remove_if(mine.begin(), mine.end(), [&](std::size_t i) {
            if (i >= front) return false;
            m_chunks[i].reset();
            return true;
        });
        mine.erase(kept, mine.end());
    }

    const Team& m_team;
    FeatureInput& m_input;
    Actions m_actions;
    std::int64_t m_chunkSize = 1;
    std::int64_t m_position = 0;  ///< of the feature to be read next
    std::int64_t m_end = 0;
    std::atomic<bool> m_atEnd{false};
    std::vector<std::unique_ptr<Chunk>> m_chunks;
    std::vector<std::atomic<bool>> m_done;
    std::size_t m_taken = 0;              ///< chunks that were read
    std::atomic<std::size_t> m_front{0};  ///< chunks that are finished
    std::size_t m_finished = 0;           ///< features of the chunk after them that are
    std::atomic<bool> m_finishing{false};
    std::atomic<bool> m_stopped{false};
    std::atomic<bool> m_failed{false};
};

}  // namespace jws::detail

#endif  // JW_LAYERS_ORDERED_WALK_H
