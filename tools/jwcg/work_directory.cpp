// SPDX-License-Identifier: MIT
#include "work_directory.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>
#include <vector>

#include "exit_codes.h"
#include "output_format.h"

namespace jws::cli {
namespace fs = std::filesystem;
namespace {

bool meansNoSpace(int error) { return error == ENOSPC || error == EDQUOT || error == EFBIG; }

CommandFailure systemFailure(const fs::path& path, const char* action, int error) {
    const ExitCode code = meansNoSpace(error) || error == ENOMEM ? ExitOutOfSpace : ExitInternal;
    return CommandFailure(code, path.string() + ": cannot " + action + ": " + std::strerror(error));
}

fs::path parentOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// Renames without replacing anything that may have come to `to` meanwhile.
int renameToFree(const fs::path& from, const fs::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    struct stat status {};  // the file system cannot do it in one step
    if (::lstat(to.c_str(), &status) == 0) return EEXIST;
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

/// Writes one file or directory out to the device.
void sync(const fs::path& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) throw systemFailure(path, "open", errno);
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    // Some network file systems cannot sync directories.
    if (error != 0 && error != EINVAL && error != ENOTSUP) {
        throw systemFailure(path, "write", error);
    }
}

/// Renames in order and takes everything back unless `keep` is called.
class Moves {
  public:
    ~Moves() {
        for (auto move = m_done.rbegin(); move != m_done.rend(); ++move) {
            ::rename(move->second.c_str(), move->first.c_str());
        }
    }
    void move(const fs::path& from, const fs::path& to) {
        const int error = renameToFree(from, to);
        if (error == EEXIST || error == ENOTEMPTY) {
            throw CommandFailure(ExitOutputExists, to.string() + ": exists already");
        }
        if (error != 0) throw systemFailure(to, "put the result there", error);
        m_done.emplace_back(from, to);
    }
    void keep() { m_done.clear(); }

  private:
    std::vector<std::pair<fs::path, fs::path>> m_done;
};

}  // namespace

WorkDirectory::WorkDirectory(const fs::path& destination) : m_destination(destination) {
    m_deferred = std::make_unique<DeferredInterrupts>();
    const fs::path parent = parentOf(destination);
    const std::string stem = ".jwcg-" + std::to_string(::getpid()) + "-";
    for (int attempt = 0;; ++attempt) {
        m_root = parent / (stem + std::to_string(attempt));
        if (::mkdir(m_root.c_str(), 0700) == 0) break;
        if (errno == EEXIST && attempt < 1000) continue;
        const int error = errno;
        const ExitCode code = meansNoSpace(error) ? ExitOutOfSpace : ExitUsage;
        throw CommandFailure(code, destination.string() + ": directory " + parent.string() +
                                       " cannot be written: " + std::strerror(error));
    }
    m_new = m_root / "new";
    m_old = m_root / "old";
    std::vector<std::string> files;
    for (const fs::path& file : possibleFilesOf(output())) files.push_back(file.string());
    m_deferred->removeInTheEnd(files, {m_new.string(), m_root.string()});
    if (::mkdir(m_new.c_str(), 0777) != 0) {
        const int error = errno;
        ::rmdir(m_root.c_str());
        throw systemFailure(destination, "create a directory beside it", error);
    }
}

WorkDirectory::~WorkDirectory() {
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

void WorkDirectory::copyDestination() const {
    try {
        for (const fs::path& file : filesOf(m_destination)) {
            fs::copy(file, m_new / file.filename(), fs::copy_options::recursive);
        }
    } catch (const fs::filesystem_error& error) {
        throw systemFailure(m_destination, "copy", error.code().value());
    }
}

bool WorkDirectory::isOutOfSpace() const {
    if (fileSizeLimitMet()) return true;
    const fs::path probe = m_root / "probe";
    const int descriptor = ::open(probe.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) return meansNoSpace(errno);
    const std::vector<char> block(1 << 18);
    bool full = false;
    for (int i = 0; i < 4 && !full; ++i) {
        full =
            ::write(descriptor, block.data(), block.size()) != static_cast<ssize_t>(block.size());
    }
    full = full || (::fsync(descriptor) != 0 && meansNoSpace(errno));
    ::close(descriptor);
    ::unlink(probe.c_str());
    return full;
}

void WorkDirectory::syncAll() const {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_new)) {
        sync(entry.path());
    }
    sync(m_new);
}

void WorkDirectory::publish(bool replace) {
    try {
        syncAll();
        struct stat status {};
        if (::stat(m_destination.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
            ::chmod(output().c_str(), status.st_mode & 07777);
        }
        std::vector<fs::path> fresh;
        for (const fs::directory_entry& entry : fs::directory_iterator(m_new)) {
            fresh.push_back(entry.path());
        }
        std::vector<fs::path> former;
        if (replace) former = filesOf(m_destination);

        const HeldInterrupts held;
        if (replace && fresh.size() == 1 && former.size() == 1 && !fs::is_directory(fresh[0]) &&
            !fs::is_directory(former[0])) {
            if (::rename(fresh[0].c_str(), m_destination.c_str()) != 0) {
                throw systemFailure(m_destination, "put the result there", errno);
            }
        } else {
            Moves moves;
            fs::create_directory(m_old);
            for (const fs::path& file : former) {
                if (fs::exists(fs::symlink_status(file))) moves.move(file, m_old / file.filename());
            }
            for (const fs::path& file : fresh) {
                moves.move(file, parentOf(m_destination) / file.filename());
            }
            moves.keep();
        }
        sync(parentOf(m_destination));
    } catch (const fs::filesystem_error& error) {
        throw systemFailure(m_destination, "put the result there", error.code().value());
    }
}

}  // namespace jws::cli
