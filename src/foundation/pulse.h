// SPDX-License-Identifier: MIT
//
// How a long computation notices that it is to stop. Whoever starts one says what is to be called
// every now and then, by a Pulse that lives as long as the computation does, on the same thread;
// loops that may run for long call `Pulse::tick` once in a few thousand steps. Neither hands the
// other anything, so that nothing in between need know. Without a Pulse a tick is one comparison.
//
// A beat stops the computation by an exception. Where none may pass, as in the clipping engine's C
// interface, it is answered as a failure of its own kind, and thrown again on the far side.
//
// The pulse of a thread belongs to the library that is compiled with this header.
#ifndef JW_FOUNDATION_PULSE_H
#define JW_FOUNDATION_PULSE_H

#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <utility>

namespace jws::detail {

class Pulse {
  public:
    /// Has `beat` called by ticks of this thread, ten times a second at most; it may throw. The one
    /// made last holds until its end.
    explicit Pulse(std::function<void()> beat) : m_beat(std::move(beat)), m_before(s_current) {
        s_current = this;
    }
    ~Pulse() { s_current = m_before; }
    Pulse(const Pulse&) = delete;
    Pulse& operator=(const Pulse&) = delete;

    static void tick() {
        if (s_current != nullptr) s_current->beatIfDue();
    }
    /// What the ticks of this thread call, for threads that help it; null when it has no Pulse.
    static const std::function<void()>* beatOfThread() {
        return s_current != nullptr ? &s_current->m_beat : nullptr;
    }
    /// The computation was stopped on this thread.
    static bool hasStopped() { return s_current != nullptr && s_current->m_thrown != nullptr; }
    /// Throws what stopped it; only then.
    [[noreturn]] static void throwAgain() { std::rethrow_exception(s_current->m_thrown); }

  private:
    using Clock = std::chrono::steady_clock;

    void beatIfDue() {
        constexpr std::chrono::milliseconds interval(100);
        const Clock::time_point now = Clock::now();
        if (now - m_last < interval) return;
        m_last = now;
        try {
            m_beat();
        } catch (...) {
            m_thrown = std::current_exception();
            throw;
        }
    }

    static inline thread_local Pulse* s_current = nullptr;

    std::function<void()> m_beat;
    Pulse* m_before;
    Clock::time_point m_last = Clock::now();
    std::exception_ptr m_thrown;
};

/// Ticks once in a few thousand steps of a loop.
class StepCounter {
  public:
    void step(std::size_t steps = 1) {
        m_steps += steps;
        if (m_steps < 4096) return;
        m_steps = 0;
        Pulse::tick();
    }

  private:
    std::size_t m_steps = 0;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_PULSE_H
