// SPDX-License-Identifier: MIT
#include "signals.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "exit_codes.h"

namespace jws::cli {
namespace {

enum Mode : int { EndAtOnce, Deferred, Held };
std::atomic<int> mode{EndAtOnce};
std::atomic<int> interrupts{0};
std::atomic<bool> sizeLimitMet{false};
static_assert(std::atomic<int>::is_always_lock_free, "the handlers need lock-free atomics");

/// Paths that a handler may touch: plain arrays, filled before the mode changes.
constexpr int pathCapacity = 24;
constexpr int pathLength = 4096;
char filesToRemove[pathCapacity][pathLength];
char directoriesToRemove[pathCapacity][pathLength];
std::atomic<int> fileCount{0};
std::atomic<int> directoryCount{0};

void store(const std::vector<std::string>& paths, char (*table)[pathLength],
           std::atomic<int>& count) {
    int stored = 0;
    for (const std::string& path : paths) {
        if (stored == pathCapacity) break;
        if (path.size() >= pathLength) continue;
        std::memcpy(table[stored++], path.c_str(), path.size() + 1);
    }
    count = stored;
}

void removeKnownFiles() {
    for (int i = 0; i < fileCount; ++i) ::unlink(filesToRemove[i]);
    for (int i = 0; i < directoryCount; ++i) ::rmdir(directoriesToRemove[i]);
}

extern "C" void onInterrupt(int) {
    const int earlier = interrupts.fetch_add(1);
    if (mode == Held || (mode == Deferred && earlier == 0)) return;
    if (mode == Deferred) removeKnownFiles();
    ::_exit(ExitInterrupted);
}

/// GDAL aborts when a small allocation fails. Returning from here lets the abort take its course.
extern "C" void onAbort(int) {
    const bool outOfMemory = errno == ENOMEM;
    removeKnownFiles();
    if (outOfMemory) ::_exit(ExitOutOfSpace);
}

extern "C" void onFileSizeLimit(int) { sizeLimitMet = true; }

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
}

}  // namespace

void installSignalHandlers() {
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(signal)) handle(signal, onInterrupt);
    }
    handle(SIGXFSZ, onFileSizeLimit);
    handle(SIGABRT, onAbort);
}

bool interruptRequested() { return interrupts != 0; }

void throwIfInterrupted() {
    if (interruptRequested()) throw CommandFailure(ExitInterrupted, "interrupted");
}

bool fileSizeLimitMet() { return sizeLimitMet; }

DeferredInterrupts::DeferredInterrupts() {
    std::signal(SIGPIPE, SIG_IGN);
    mode = Deferred;
}

void DeferredInterrupts::removeInTheEnd(const std::vector<std::string>& files,
                                        const std::vector<std::string>& directories) {
    store(files, filesToRemove, fileCount);
    store(directories, directoriesToRemove, directoryCount);
}

DeferredInterrupts::~DeferredInterrupts() {
    mode = EndAtOnce;
    fileCount = 0;
    directoryCount = 0;
    std::signal(SIGPIPE, SIG_DFL);
}

HeldInterrupts::HeldInterrupts() { mode = Held; }
HeldInterrupts::~HeldInterrupts() { mode = Deferred; }

}  // namespace jws::cli
