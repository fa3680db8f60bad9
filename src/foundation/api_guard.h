// SPDX-License-Identifier: MIT
//
// The one place where an exception becomes a return value. Inside the library code may throw;
// every public function that can meet one runs its body through `guarded`, which keeps what
// happened as the thread's last error and answers the function's own failure value.
#ifndef JW_FOUNDATION_API_GUARD_H
#define JW_FOUNDATION_API_GUARD_H

#include <exception>
#include <new>
#include <string>

#include "jw_report.h"

namespace jws::detail {

/// Keeps the exception that is being handled as the thread's last error; without its text when
/// there is no memory for that.
inline void keepCurrentException(const char* function) noexcept {
    try {
        try {
            throw;
        } catch (const std::bad_alloc&) {
            JWReport::setError(JWErrorOutOfSpace, std::string(function) + ": out of memory");
        } catch (const std::exception& e) {
            JWReport::setError(JWErrorInternal, std::string(function) + ": " + e.what());
        } catch (...) {
            JWReport::setError(JWErrorInternal, std::string(function) + ": unknown exception");
        }
    } catch (...) {
        JWReport::setError(JWErrorOutOfSpace, std::string());
    }
}

/// Answers 0 and keeps the reason as the thread's last error.
inline int refused(const char* function, const char* reason) {
    JWReport::setError(JWErrorInvalidArgument, std::string(function) + ": " + reason);
    return 0;
}

/// Returns `body()`, or `failure` when it throws.
template <class Result, class Body>
Result guarded(const char* function, Result failure, Body&& body) {
    try {
        return body();
    } catch (...) {
        keepCurrentException(function);
        return failure;
    }
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_API_GUARD_H
