// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_RUN_MAIN_H
#define JWCG_BENCH_RUN_MAIN_H

#include <cstdio>
#include <exception>

namespace bench {

/// The body of a benchmark's `main`: the answer of `run(argc, argv)`, or 1 after an exception,
/// which is told on standard error under the program's name.
template <class Run>
int runMain(const char* program, Run&& run, int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s: %s\n", program, failure.what());
        return 1;
    }
}

}  // namespace bench

#endif  // JWCG_BENCH_RUN_MAIN_H
