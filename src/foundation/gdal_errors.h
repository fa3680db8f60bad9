// SPDX-License-Identifier: MIT
//
// Keeps GDAL's error messages from the terminal and hands them to whoever called GDAL.
#ifndef JW_FOUNDATION_GDAL_ERRORS_H
#define JW_FOUNDATION_GDAL_ERRORS_H

#include <cpl_error.h>

#include <cstdint>
#include <string>

#include "jw_report.h"

namespace jws::detail {

/// Takes this thread's GDAL messages for the length of a scope; scopes nest like a stack. Warnings
/// are dropped, failures kept.
class GdalErrors {
  public:
    GdalErrors();
    ~GdalErrors();
    GdalErrors(const GdalErrors&) = delete;
    GdalErrors& operator=(const GdalErrors&) = delete;

    /// True when a failure was reported since the scope or the last `clear`.
    bool failed() const { return m_failed; }
    void clear();
    /// "what: GDAL's message", or `what` alone when there was none.
    std::string describe(const std::string& what) const;
    /// Sets the thread's last error: `describe(what)` with the kind given, or `JWErrorOutOfSpace`
    /// when the messages or the state of the disk that holds `path` say so.
    void report(enumJWErrorKind kind, const std::string& what, const std::string& path,
                std::int64_t feature = -1) const;

  private:
    static void CPL_STDCALL take(CPLErr level, CPLErrorNum number, const char* text);
    bool isOutOfSpace(const std::string& path) const;

    bool m_failed = false;
    bool m_outOfSpace = false;
    std::string m_text;
};

/// Registers GDAL's drivers once per process.
void registerDrivers();

}  // namespace jws::detail

#endif  // JW_FOUNDATION_GDAL_ERRORS_H
