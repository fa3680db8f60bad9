// SPDX-License-Identifier: MIT
//
// The course of a run over layers: how far it is and whether it is to stop, which features it reads
// and leaves out, how long its phases take, and the one transaction in which everything is written
// or nothing.
#ifndef JW_LAYERS_LAYER_RUN_H
#define JW_LAYERS_LAYER_RUN_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "layers/feature_io.h"
#include "layers/geometry_check.h"

namespace jws::detail {

/// Progress is told and asked by any number of threads, everything else by one at a time.
class LayerRun {
  public:
    /// `steps`: of the whole run, as progress counts them.
    explicit LayerRun(JWLayerReport& report, std::int64_t steps = 0)
        : m_report(report), m_steps(steps) {}
    ~LayerRun() {
        if (m_stopped) m_report.cancelled = true;
    }
    LayerRun(const LayerRun&) = delete;
    LayerRun& operator=(const LayerRun&) = delete;

    void setSteps(std::int64_t steps) { m_steps = steps; }
    void setDone(std::int64_t steps) { m_done = steps; }
    void addDone(std::int64_t steps) { m_done += steps; }
    /// False when the progress callback asks to stop.
    bool keepOn() const { return JWReport::progress(m_done, m_steps); }
    /// Ends the run because of that: throws LayerFailure.
    [[noreturn]] void stop();
    /// Asks in the midst of a long computation.
    void beat() {
        if (m_stopped || !keepOn()) stop();
    }

    /// Counts a feature of the input layer that is read, and lists it when the check of its
    /// geometry, for which these kinds are usable, rejects it.
    void countRead(const FeatureInput& input, const JWFeature& feature, GeometryCheck check,
                   unsigned kinds);
    void reject(const FeatureInput& input, std::int64_t fid, const std::string& reason);

    /// Writes by `body` in one transaction, which nothing is left of when it throws: neither
    /// results nor the report's figures of them (its list of rejected features stays). Returns the
    /// number of features written.
    template <class Body>
    std::int64_t transact(FeatureOutput& output, Body&& body) {
        output.begin();
        try {
            body();
            output.commit();
        } catch (...) {
            output.rollback();
            forgetResults();
            throw;
        }
        return m_report.written;
    }

  private:
    void forgetResults();

    JWLayerReport& m_report;
    std::atomic<std::int64_t> m_steps;
    std::atomic<std::int64_t> m_done{0};
    std::atomic<bool> m_stopped{false};
};

/// Adds the length of a scope to a number of seconds.
class Stopwatch {
  public:
    explicit Stopwatch(double& seconds) : m_seconds(seconds) {}
    ~Stopwatch() { m_seconds += std::chrono::duration<double>(Clock::now() - m_start).count(); }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

  private:
    using Clock = std::chrono::steady_clock;
    double& m_seconds;
    Clock::time_point m_start = Clock::now();
};

}  // namespace jws::detail

#endif  // JW_LAYERS_LAYER_RUN_H
