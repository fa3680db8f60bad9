// SPDX-License-Identifier: MIT
//
// The parallel index loop of the library, and the only place with OpenMP pragmas.
//
// A loop over n items is cut into chunks of neighbouring items, which workers take in order.
// Workers write only into slots of their own items; whatever must happen one at a time (reading a
// layer, writing results) goes through `exclusive`, a critical section that must not be nested, or
// through `exclusiveReading`, where reading need not wait for writing.
// What a loop computes therefore does not depend on the number of threads, nor on who takes which
// chunk. An exception in a worker stops the loop and is thrown again by the caller's thread.
//
// A team may be larger than the machine: no more of it are started than there are cores. Eight
// threads taking turns on two cores would be a fifth slower than two, since again and again the one
// that holds the critical section is not the one that runs.
#ifndef JW_FOUNDATION_PARALLEL_H
#define JW_FOUNDATION_PARALLEL_H

#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>

#include "foundation/pulse.h"
#include "jw_report.h"

namespace jws::detail {

/// Size of the team of all `_mp`, `_lmp` and `_mp1` forms.
constexpr int fixedTeamSize = 8;

/// The number of threads that a wish for `threads` comes to: one per core for 0 or less, and at
/// most four per core (or the fixed team), since the runtime ends the process when it cannot start
/// one.
inline int teamSize(int threads) {
    if (threads == 1) return 1;  // asking for the cores is a call of the system
    const int cores = omp_get_num_procs();
    return threads > 0 ? std::min(threads, std::max(fixedTeamSize, 4 * cores)) : cores;
}

/// How many of a team of `threads` work at a time: one per core; two at least, so that a team works
/// in the same way everywhere.
inline int workersOf(int threads) {
    return threads == 1 ? 1 : std::min(threads, std::max(2, omp_get_num_procs()));
}

/// Holds a team of a given size for the length of a scope and puts the caller's OpenMP settings
/// back at its end. A team of one leaves them alone.
class Team {
  public:
    explicit Team(int threads) : m_threads(teamSize(threads)) {
        if (m_threads == 1) return;
        m_dynamicBefore = omp_get_dynamic();
        m_threadsBefore = omp_get_max_threads();
        omp_set_dynamic(0);
        if (omp_get_dynamic() != 0) {
            JWReport::message("Warning: dynamic adjustment of threads has been set\n");
        }
        omp_set_num_threads(m_threads);
    }
    ~Team() {
        if (m_threads == 1) return;
        omp_set_num_threads(m_threadsBefore);
        omp_set_dynamic(m_dynamicBefore);
    }
    Team(const Team&) = delete;
    Team& operator=(const Team&) = delete;

    int size() const { return m_threads; }

  private:
    int m_threads;
    int m_dynamicBefore = 0;
    int m_threadsBefore = 1;
};

/// Keeps what a body throws while it is inside a critical section, which no exception may leave.
class KeptException {
  public:
    template <class Body>
    void call(Body&& body) {
        try {
            body();
        } catch (...) {
            m_thrown = std::current_exception();
        }
    }
    void rethrow() const {
        if (m_thrown) std::rethrow_exception(m_thrown);
    }

  private:
    std::exception_ptr m_thrown;
};

/// Runs `body` inside the critical section of the layer operations.
template <class Body>
void exclusive(Body&& body) {
    KeptException kept;
#pragma omp critical(jw_layer_access)
    kept.call(body);
    kept.rethrow();
}

/// Runs `body` inside a critical section of its own: reading that needs not wait for writing. It
/// spins for a while, as the other one does: a thread that went to sleep would be late.
template <class Body>
void exclusiveReading(Body&& body) {
    KeptException kept;
#pragma omp critical(jw_layer_reading)
    kept.call(body);
    kept.rethrow();
}

/// Calls `body()` on the workers of the team, `most` of them at most, at the same time. An
/// exception of one is thrown again when all have come back. The caller's Pulse beats in all.
template <class Body>
void onEachWorker(const Team& team, std::int64_t most, Body&& body) {
    const int workers = static_cast<int>(
        std::min<std::int64_t>(workersOf(team.size()), std::max<std::int64_t>(most, 1)));
    if (workers == 1) return body();
    std::exception_ptr thrown;
    const std::function<void()>* beat = Pulse::beatOfThread();
#pragma omp parallel num_threads(workers)
    {
        try {
            if (beat == nullptr || omp_get_thread_num() == 0) {
                body();
            } else {
                const Pulse pulse(*beat);
                body();
            }
        } catch (...) {
#pragma omp critical(jw_parallel_exception)
            if (!thrown) thrown = std::current_exception();
        }
    }
    if (thrown) std::rethrow_exception(thrown);
}

/// Calls `body(begin, end)` for the chunks [begin, end) of 0 .. count − 1. A body that returns
/// false stops the loop: chunks not begun yet are left out. Returns false when it was stopped.
template <class Body>
bool parallelChunks(const Team& team, std::int64_t count, std::int64_t chunkSize, Body&& body) {
    std::atomic<std::int64_t> next{0};
    std::atomic<bool> stopped{false};
    // One worker for each chunk is enough.
    onEachWorker(team, (count + chunkSize - 1) / chunkSize, [&] {
        try {
            for (;;) {
                const std::int64_t begin = next.fetch_add(chunkSize);
                if (begin >= count || stopped.load(std::memory_order_relaxed)) return;
                if (!body(begin, std::min(begin + chunkSize, count))) stopped = true;
            }
        } catch (...) {
            stopped = true;
            throw;
        }
    });
    return !stopped;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_PARALLEL_H
