// SPDX-License-Identifier: MIT
//
// Work in a process of its own: its peak memory is its own, what it leaves on the heap slows
// nothing that comes later, and a contender that crashes takes only itself down. The parent must
// not have started threads.
#ifndef JWCG_BENCH_CHILD_PROCESS_H
#define JWCG_BENCH_CHILD_PROCESS_H

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>
#include <type_traits>

namespace bench {

/// What a child hands back: a value, or a reason why there is none.
template <class T>
struct ChildResult {
    T value{};
    char error[240] = "";

    bool ok() const { return error[0] == '\0'; }
};

template <class T>
void setError(ChildResult<T>& result, const char* text) {
    std::snprintf(result.error, sizeof result.error, "%s", text);
}

/// Runs `work`, a callable returning `T`, in a forked process and returns its value. An exception
/// and the death of the child become the error. With `seconds` above 0 the child is stopped after
/// that time, which is an error too.
template <class T, class Work>
ChildResult<T> inChild(Work work, unsigned seconds = 0) {
    static_assert(std::is_trivially_copyable<T>::value, "T travels through a pipe as bytes");
    ChildResult<T> result;
    setError(result, "the process died");
    int ends[2];
    std::fflush(nullptr);
    if (pipe(ends) != 0) return result;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        alarm(seconds);  // its default action ends the process
        ChildResult<T> mine;
        try {
            mine.value = work();
        } catch (const std::exception& failure) {
            setError(mine, failure.what()[0] ? failure.what() : "an exception without a text");
        }
        std::fflush(nullptr);
        const bool sent = write(ends[1], &mine, sizeof mine) == ssize_t{sizeof mine};
        _exit(sent ? 0 : 1);
    }
    close(ends[1]);
    ChildResult<T> received;
    const bool whole = child > 0 && read(ends[0], &received, sizeof received) ==
                                        static_cast<ssize_t>(sizeof received);
    close(ends[0]);
    int status = 0;
    if (child > 0) waitpid(child, &status, 0);
    if (child > 0 && WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) {
        std::snprintf(result.error, sizeof result.error, "over %u s", seconds);
    }
    return whole ? received : result;
}

/// Peak resident memory of this process so far, MiB; 0 where the system does not tell.
inline double peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) / 1024.0;
    }
    return 0.0;
}

}  // namespace bench

#endif  // JWCG_BENCH_CHILD_PROCESS_H
