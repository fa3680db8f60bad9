// SPDX-License-Identifier: MIT
//
// Timing of things side by side: what is compared runs in turn, round by round, so that a slow
// minute of the machine hits all alike, and ratios are formed within a round.
#ifndef JWCG_BENCH_STATS_H
#define JWCG_BENCH_STATS_H

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

/// Median; the mean of the middle two for an even number, 0 for none.
inline double median(std::vector<double> values) {
    if (values.empty()) return 0.0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

/// Wall-clock milliseconds of one call.
inline double milliseconds(const std::function<void()>& call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

/// One competitor of an interleaved measurement.
struct Contender {
    std::function<void()> run;    ///< timed
    std::function<void()> reset;  ///< not timed, after each run: drops the result
};

/// Times every contender once a round. The one that begins moves on by one each round, so that none
/// always runs behind the same other. Returns times[contender][round], milliseconds.
inline std::vector<std::vector<double>> interleave(const std::vector<Contender>& contenders,
                                                   int rounds) {
    const std::size_t n = contenders.size();
    std::vector<std::vector<double>> times(n);
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t turn = (i + static_cast<std::size_t>(round)) % n;
            times[turn].push_back(milliseconds(contenders[turn].run));
            contenders[turn].reset();
        }
    }
    return times;
}

/// Median over the rounds of time / reference time.
inline double medianRatio(const std::vector<double>& times, const std::vector<double>& reference) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < times.size() && i < reference.size(); ++i) {
        ratios.push_back(times[i] / reference[i]);
    }
    return median(ratios);
}

}  // namespace bench

#endif  // JWCG_BENCH_STATS_H
