// SPDX-License-Identifier: MIT
//
// Work of a team on chunks, finished in order. A worker takes the next chunk and works on it; then
// it finishes the chunks that are done from the front, in order, unless another worker is at that.
// Taking and finishing (which is where results are written) happen one at a time, and overlap the
// work of the others: inside the critical section, or each in its own where they may meet.
//
// What a worker allocates it also gives back, soon if possible: memory that one thread takes and
// another one returns has the two contend for the allocator, and what lies about grows cold. So a
// chunk is made and let go by one and the same worker. The output's form of a result is made a few
// results ahead by the worker that is going to write it, and gone when it is written; the form of
// small ones may as well come and go with the chunk.
//
// What waits to be finished is bounded. Work tells how much its chunk holds. At the front, a chunk
// that holds much has what is there of it finished before its work goes on. Behind the front, a
// worker waits while all that is held is more than allowed, to take a further chunk or, with a
// chunk that holds much itself, for its turn to come. The chunk at the front never waits. What is
// finished counts until its maker lets it go, which it does whenever it has made something.
//
// Guarantees. Chunks are taken and finished in order, each once, and within a chunk in its own
// order, whatever the number of threads. Cost. Memory for the limit, and for as many chunks as
// there are workers.
#ifndef JW_LAYERS_ORDERED_WORK_H
#define JW_LAYERS_ORDERED_WORK_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/parallel.h"
#include "foundation/pulse.h"

namespace jws::detail {

/// What every chunk carries for the work on it.
struct WorkChunk {
    std::size_t number = 0;
    std::size_t held = 0;                     ///< bytes of what waits in it
    std::deque<std::size_t>* mine = nullptr;  ///< chunks of its maker, to be let go in order
};

struct WorkLimits {
    std::size_t waiting = std::size_t{128} << 20;  ///< bytes that all chunks may hold
    std::size_t part = std::size_t{4} << 20;       ///< bytes at which a chunk holds much
};

/// `Chunk` is a WorkChunk with a `size`, the number of places that it is finished by.
template <class Chunk>
class OrderedWork {
  public:
    struct Actions {
        /// Fills the next chunk; inside the critical section unless `takesApart`, in order. False
        /// when there is none.
        std::function<bool(Chunk&)> take;
        /// Works on a chunk; on many threads at once. Calls `grew`.
        std::function<void(Chunk&)> work;
        /// Finishes place i of a chunk; inside the critical section, in order.
        std::function<void(Chunk&, std::size_t i)> finish;
        /// Called every now and then inside the critical section; false stops the work.
        std::function<bool()> keepOn;
        /// Prepares place i for `finish`, shortly before and outside of the critical section, and
        /// returns how many results that was; may be empty. Not called for a single worker.
        std::function<std::size_t(Chunk&, std::size_t i)> prepare = {};
        /// Finishes what place i has so far, its work being under way, and lets go what the chunk
        /// holds; those before it are finished. Inside the critical section; empty where `grew` is
        /// not called.
        std::function<void(Chunk&, std::size_t i)> finishPart = {};
        /// The bytes that a chunk holds besides those that `grew` was told; may be empty.
        std::function<std::size_t(const Chunk&)> sizeOf = {};
        WorkLimits limits = {};
        /// `take` and the other actions may happen at the same time.
        bool takesApart = false;
    };

    OrderedWork(const Team& team, Actions actions) : m_team(team), m_actions(std::move(actions)) {}

    /// Works on `chunks` chunks, fewer when there are no more. Returns false when it was stopped.
    /// What an action throws ends the work and is thrown again.
    bool run(std::size_t chunks) {
        m_chunks.clear();
        m_chunks.resize(chunks);
        m_done = std::vector<std::atomic<bool>>(chunks);
        m_atEnd = false;
        m_taken = m_front = 0;
        m_finished = 0;
        m_held = 0;
        onEachWorker(m_team, static_cast<std::int64_t>(chunks), [this] { takePart(); });
        m_chunks.clear();
        return !m_stopped;
    }

    /// To be told by `work` when place i of its chunk holds so many bytes more, those before it
    /// being done. May finish what is there, or wait.
    void grew(Chunk& chunk, std::size_t i, std::size_t bytes) {
        letGo(*chunk.mine);
        hold(chunk, bytes);
        if (chunk.held < m_actions.limits.part) return;
        if (chunk.number != m_front) {
            if (m_held <= m_actions.limits.waiting) return;
            waitUntil([&] { return chunk.number == m_front; });
        }
        finishBeginning(chunk, i);
    }

  private:
    static constexpr std::size_t kPrepared = 32;  // results and places

    /// Ends a worker's part when the work was stopped, or has failed elsewhere. No std::exception:
    /// it is no failure of what the worker was at.
    struct Abandoned {};

    void takePart() {
        std::deque<std::size_t> mine;
        try {
            for (std::size_t i = 0; take(i, mine);) {
                mine.push_back(i);
                Chunk& chunk = *m_chunks[i];
                m_actions.work(chunk);
                if (m_actions.sizeOf && m_team.size() > 1) hold(chunk, m_actions.sizeOf(chunk));
                m_done[i] = true;
                finishDone();
                letGo(mine);
            }
        } catch (const Abandoned&) {
        } catch (...) {
            m_failed = true;
            throw;
        }
    }

    void hold(Chunk& chunk, std::size_t bytes) {
        chunk.held += bytes;
        m_held += bytes;
    }
    void release(Chunk& chunk) {
        m_held -= chunk.held;
        chunk.held = 0;
    }

    /// Takes the next chunk; false when there is none.
    bool take(std::size_t& index, std::deque<std::size_t>& mine) {
        waitUntil([&] {
            letGo(mine);
            return m_held <= m_actions.limits.waiting || m_taken == m_front;
        });
        bool taken = false;
        const auto takeNext = [&] {
            if (m_stopped || m_failed || m_atEnd || m_taken == m_chunks.size()) return;
            index = m_taken;
            auto chunk = std::make_unique<Chunk>();
            chunk->number = index;
            chunk->mine = &mine;
            m_atEnd = true;  // also when it throws: nobody takes after that
            taken = m_actions.take(*chunk);
            m_atEnd = !taken;
            if (!taken) return;
            m_chunks[index] = std::move(chunk);
            ++m_taken;
        };
        if (m_actions.takesApart) {
            exclusiveReading(takeNext);
        } else {
            exclusive(takeNext);
        }
        return taken;
    }

    /// Waits for others, which is rare, and finishes meanwhile what is done.
    template <class Condition>
    void waitUntil(Condition&& holds) {
        while (!holds()) {
            endIfOver();
            finishDone();
            Pulse::tick();
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
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
        finishUpTo(chunk, chunk.size());
        if (m_finished < chunk.size()) return;
        m_finished = 0;
        ++m_front;
    }

    /// Finishes the next places of the chunk at the front, some of those before `limit`.
    void finishUpTo(Chunk& chunk, std::size_t limit) {
        std::size_t end = m_finished;
        for (std::size_t n = 0; end < limit && n < kPrepared; ++n, ++end) n += prepare(chunk, end);
        exclusive([&] {
            for (; m_finished < end; ++m_finished) m_actions.finish(chunk, m_finished);
            if (!m_actions.keepOn()) m_stopped = true;
        });
    }

    std::size_t prepare(Chunk& chunk, std::size_t i) {
        return m_actions.prepare && m_team.size() > 1 ? m_actions.prepare(chunk, i) : 0;
    }

    /// Finishes what is there of a chunk at the front, whose work has come to place i. Nobody else
    /// finishes anything: the front is not done.
    void finishBeginning(Chunk& chunk, std::size_t i) {
        for (endIfOver(); m_finished < i; endIfOver()) finishUpTo(chunk, i);
        prepare(chunk, i);
        exclusive([&] {
            m_actions.finishPart(chunk, i);
            if (!m_actions.keepOn()) m_stopped = true;
        });
        release(chunk);
        endIfOver();
    }

    void endIfOver() const {
        if (m_stopped || m_failed) throw Abandoned();
    }

    void letGo(std::deque<std::size_t>& mine) {
        for (; !mine.empty() && mine.front() < m_front; mine.pop_front()) {
            release(*m_chunks[mine.front()]);
            m_chunks[mine.front()].reset();
        }
    }

    const Team& m_team;
    Actions m_actions;
    std::vector<std::unique_ptr<Chunk>> m_chunks;
    std::vector<std::atomic<bool>> m_done;
    bool m_atEnd = false;
    std::atomic<std::size_t> m_taken{0};  ///< chunks
    std::atomic<std::size_t> m_front{0};  ///< chunks that are finished
    std::size_t m_finished = 0;           ///< places of the chunk after them that are
    std::atomic<std::size_t> m_held{0};   ///< bytes
    std::atomic<bool> m_finishing{false};
    std::atomic<bool> m_stopped{false};
    std::atomic<bool> m_failed{false};
};

}  // namespace jws::detail

#endif  // JW_LAYERS_ORDERED_WORK_H
