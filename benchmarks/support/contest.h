// SPDX-License-Identifier: MIT
//
// Contenders for one job in one process: answers compared, then times.
#ifndef JWCG_BENCH_CONTEST_H
#define JWCG_BENCH_CONTEST_H

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "support/stats.h"

namespace bench {

/// One contender: what is timed, and the figure that must agree with that of the first one.
struct Entry {
    std::string name;
    std::function<void()> run;
    std::function<double()> figure;
    /// Undoes what a run changed; called after each, not timed.
    std::function<void()> reset = [] {};
};

/// Runs every entry once, leaves out those whose figure is off by more than `tolerance` (relative),
/// times the others in turn and prints a line for each. Returns whether all agreed.
inline bool contest(const std::string& title, const std::vector<Entry>& entries, double tolerance,
                    int rounds) {
    std::vector<Contender> contenders;
    std::vector<std::string> names;
    bool agreed = true;
    double expected = 0;
    for (const Entry& entry : entries) {
        entry.run();
        const double figure = entry.figure();
        entry.reset();
        if (names.empty()) expected = figure;
        if (std::fabs(figure - expected) > tolerance * std::fabs(expected)) {
            std::printf("%-32s %-8s LEFT OUT: %.17g instead of %.17g\n", title.c_str(),
                        entry.name.c_str(), figure, expected);
            agreed = false;
            continue;
        }
        names.push_back(entry.name);
        contenders.push_back({entry.run, entry.reset});
    }
    const auto times = interleave(contenders, rounds);
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::printf("%-32s %-8s %10.2f ms   ratio %8.2f\n", title.c_str(), names[i].c_str(),
                    median(times[i]), medianRatio(times[i], times[0]));
    }
    return agreed;
}

}  // namespace bench

#endif  // JWCG_BENCH_CONTEST_H
