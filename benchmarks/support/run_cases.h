// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_RUN_CASES_H
#define JWCG_BENCH_RUN_CASES_H

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "support/run_main.h"

namespace bench {

/// The body of a benchmark's `main` over a table of cases that have a name: calls
/// `measure(one, rounds)` for those that the command line names, or for all of them. The exit
/// status is 1 when one answers false, or throws.
template <class Case, std::size_t N, class Measure>
int runCases(const char* program, const char* description, const Case (&cases)[N],
             const Measure& measure, int argc, char** argv) {
    const auto run = [&](int count, char** arguments) {
        CLI::App app(description);
        std::vector<std::string> names;
        int rounds = 3;
        app.add_option("cases", names, "cases by name; all without");
        app.add_option("--rounds", rounds, "rounds in which the contenders run in turn");
        CLI11_PARSE(app, count, arguments);
        bool same = true;
        for (const Case& one : cases) {
            const bool isNamed = std::find(names.begin(), names.end(), one.name) != names.end();
            if (names.empty() || isNamed) same = measure(one, rounds) && same;
        }
        return same ? 0 : 1;
    };
    return runMain(program, run, argc, argv);
}

}  // namespace bench

#endif  // JWCG_BENCH_RUN_CASES_H
