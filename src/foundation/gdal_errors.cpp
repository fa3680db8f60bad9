// SPDX-License-Identifier: MIT
//
// Drivers report a full disk in words of their own, through errno only, or not at all. The first
// message of a series names the cause, later ones its consequences; the first is kept, and any of
// them may reveal that space ran out.
#include "foundation/gdal_errors.h"

#include <gdal_priv.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>

namespace jws::detail {
namespace {

bool meansOutOfSpace(const char* text, CPLErrorNum number, int systemError) {
    if (number == CPLE_OutOfMemory) return true;
    for (const char* sign :
         {"disk is full", "o space left", "File too large", "disk quota", "out of memory"}) {
        if (std::strstr(text, sign) != nullptr) return true;
    }
    return systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
}

/// The file has grown to the size that the system allows this process, but for a write buffer.
bool fileLimitReached(const std::string& path) {
    constexpr rlim_t buffer = 1 << 16;
    rlimit limit;
    struct stat file;
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
           stat(path.c_str(), &file) == 0 &&
           static_cast<rlim_t>(file.st_size) + buffer >= limit.rlim_cur;
}

/// Less than a write buffer of free space where `path` lies.
bool diskIsFull(const std::string& path) {
    if (path.empty() || path.compare(0, 4, "/vsi") == 0) return false;
    if (fileLimitReached(path)) return true;
    const std::size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    struct statvfs disk;
    return statvfs(folder.c_str(), &disk) == 0 && disk.f_bavail < 16;
}

/// One line of moderate length. Databases quote the statement that failed, however long it is, and
/// say what is wrong behind it.
std::string shortened(std::string text) {
    constexpr std::size_t head = 120, tail = 280;
    std::replace(text.begin(), text.end(), '\n', ' ');
    if (text.size() <= head + tail) return text;
    // Letters of several bytes stay whole.
    const auto letterFrom = [&](std::size_t at) {
        while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) ++at;
        return at;
    };
    return text.substr(0, letterFrom(head)) + " ... " + text.substr(letterFrom(text.size() - tail));
}

}  // namespace

GdalErrors::GdalErrors() {
    errno = 0;
    CPLPushErrorHandlerEx(&GdalErrors::take, this);
    CPLSetCurrentErrorHandlerCatchDebug(FALSE);
}

GdalErrors::~GdalErrors() { CPLPopErrorHandler(); }

void GdalErrors::clear() {
    m_failed = false;
    m_outOfSpace = false;
    m_text.clear();
    errno = 0;
}

void CPL_STDCALL GdalErrors::take(CPLErr level, CPLErrorNum number, const char* text) {
    const int systemError = errno;
    auto* self = static_cast<GdalErrors*>(CPLGetErrorHandlerUserData());
    if (self == nullptr || level < CE_Failure) return;
    self->m_outOfSpace |= meansOutOfSpace(text, number, systemError);
    if (!self->m_failed) self->m_text = text;
    self->m_failed = true;
}

std::string GdalErrors::describe(const std::string& what) const {
    return m_text.empty() ? what : what + ": " + shortened(m_text);
}

bool GdalErrors::isOutOfSpace(const std::string& path) const {
    return m_outOfSpace || diskIsFull(path);
}

void GdalErrors::report(enumJWErrorKind kind, const std::string& what, const std::string& path,
                        std::int64_t feature) const {
    const bool full = !path.empty() && isOutOfSpace(path);
    JWReport::setError(full ? JWErrorOutOfSpace : kind,
                       describe(full ? what + " (no space left)" : what), feature);
}

void registerDrivers() {
    static std::once_flag once;
    std::call_once(once, [] { GDALAllRegister(); });
}

}  // namespace jws::detail
