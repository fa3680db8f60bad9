// SPDX-License-Identifier: MIT
//
// A hidden directory beside the final place of an output, ".jwcg-<process>-<n>". The output is
// written in there under its own name, so that formats made of several files find their parts, and
// moves out when it is complete. Being beside the final place it lies on the same file system:
// moving is renaming. Whatever happens otherwise, the directory goes with this object.
#ifndef JWCG_WORK_DIRECTORY_H
#define JWCG_WORK_DIRECTORY_H

#include <filesystem>
#include <memory>

#include "signals.h"

namespace jws::cli {

class WorkDirectory {
  public:
    /// Makes the directory for an output at `destination` and defers interrupts. Throws
    /// CommandFailure when the place cannot be written.
    explicit WorkDirectory(const std::filesystem::path& destination);
    ~WorkDirectory();
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

    /// Where the output is to be written; its last component is the destination's.
    std::filesystem::path output() const { return m_new / m_destination.filename(); }
    /// Copies the data set at the destination, all its files, to `output()`.
    void copyDestination() const;
    /// True when the file system has no room, or the process may not write more.
    bool isOutOfSpace() const;

    /// Writes all files out to the device and moves them to the destination. With `replace` what is
    /// there gives way; without, something that came there meanwhile is left and CommandFailure
    /// (output exists) thrown. A single file replaces a single file in one atomic step; several
    /// files move one by one, and the former ones come back when a step fails.
    void publish(bool replace);

  private:
    void syncAll() const;

    std::filesystem::path m_destination;
    std::filesystem::path m_root;
    std::filesystem::path m_new;
    std::filesystem::path m_old;
    std::unique_ptr<DeferredInterrupts> m_deferred;
};

}  // namespace jws::cli

#endif  // JWCG_WORK_DIRECTORY_H
