// SPDX-License-Identifier: MIT
//
// One line on standard error that shows how far a run is: phase, features done of all, rate, time
// left. It is redrawn at most ten times a second and leaves no trace.
#ifndef JWCG_PROGRESS_BAR_H
#define JWCG_PROGRESS_BAR_H

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace jws::cli {

/// Thread-safe.
class ProgressBar {
  public:
    /// `wanted` false switches it off; so does a standard error that is no terminal.
    explicit ProgressBar(bool wanted);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Starts a phase whose length is not known until the first `update`.
    void startPhase(const char* name);
    void update(std::int64_t done, std::int64_t total);
    /// Takes the line away, for other output; the next `update` draws it again.
    void clear();

    /// Sends every console text of the library to standard error (or nowhere when not `verbose`)
    /// and its progress to this bar, until destruction. The run stops when an interrupt has come
    /// in.
    void attachToLibrary(bool verbose);

  private:
    using Clock = std::chrono::steady_clock;
    void draw(const std::string& text);
    void erase();

    std::mutex m_mutex;
    bool m_active;
    bool m_attached = false;
    bool m_drawn = false;
    const char* m_phase = "";
    Clock::time_point m_phaseStart;
    Clock::time_point m_lastDrawn;
};

/// "3 s", "2 min 05 s", "1 h 12 min".
std::string durationText(double seconds);

}  // namespace jws::cli

#endif  // JWCG_PROGRESS_BAR_H
