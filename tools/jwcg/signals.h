// SPDX-License-Identifier: MIT
//
// Interrupts (SIGINT, SIGTERM, SIGHUP) and the file-size limit.
//
// Before any output is in the making an interrupt ends the program at once. While one is, the first
// interrupt only raises a flag that the progress callback reads, so that the run stops cleanly; a
// second one removes the known work files and ends the program. While the finished output is moved
// into place interrupts wait. The status is 130 in every case.
//
// An abort, such as GDAL's when memory runs out, removes the known work files too.
#ifndef JWCG_SIGNALS_H
#define JWCG_SIGNALS_H

#include <string>
#include <vector>

namespace jws::cli {

/// Installs the handlers; signals that the parent process ignores (nohup) stay ignored. A file that
/// meets the process's size limit then makes write calls fail instead of killing the program.
void installSignalHandlers();

/// True once an interrupt has come in.
bool interruptRequested();
/// Throws CommandFailure with status 130 once an interrupt has come in.
void throwIfInterrupted();
/// True once a write has met the limit on file size.
bool fileSizeLimitMet();

/// Makes interrupts wait for the run's own clean end, until destruction.
class DeferredInterrupts {
  public:
    DeferredInterrupts();
    ~DeferredInterrupts();
    DeferredInterrupts(const DeferredInterrupts&) = delete;
    DeferredInterrupts& operator=(const DeferredInterrupts&) = delete;

    /// Has a second interrupt remove `files`, then `directories` in their order, before it ends the
    /// program; paths beyond a fixed number are left.
    void removeInTheEnd(const std::vector<std::string>& files,
                        const std::vector<std::string>& directories);
};

/// Makes every interrupt wait, also the second. For a moment only.
class HeldInterrupts {
  public:
    HeldInterrupts();
    ~HeldInterrupts();
    HeldInterrupts(const HeldInterrupts&) = delete;
    HeldInterrupts& operator=(const HeldInterrupts&) = delete;
};

}  // namespace jws::cli

#endif  // JWCG_SIGNALS_H
