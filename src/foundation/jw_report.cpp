// SPDX-License-Identifier: MIT
//
// Errors are thread-local; the message sink and the progress callback are process-wide and called
// under one mutex each, so that sinks need no locking of their own.
#include "jw_report.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace jws {
namespace {

thread_local JWError threadError;

std::atomic<bool> messagesOn{true};
std::mutex sinkMutex;
JWMessageSink messageSink = nullptr;
void* messageContext = nullptr;

std::mutex progressMutex;
JWProgressCallback progressCallback = nullptr;
void* progressContext = nullptr;

}  // namespace

const JWError& JWReport::lastError() { return threadError; }

void JWReport::clearError() { threadError = JWError(); }

void JWReport::setError(enumJWErrorKind kind, const std::string& text, std::int64_t feature) {
    threadError.kind = kind;
    threadError.feature = feature;
    try {
        threadError.text = text;
    } catch (...) {
        threadError.text.clear();  // no memory for the text: the kind alone tells
    }
}

void JWReport::setMessageSink(JWMessageSink sink, void* context) {
    std::lock_guard<std::mutex> lock(sinkMutex);
    messageSink = sink;
    messageContext = context;
}

void JWReport::setMessagesOn(bool on) { messagesOn = on; }

bool JWReport::messagesAreOn() { return messagesOn; }

void JWReport::message(const char* format, ...) {
    if (!messagesOn) return;
    std::lock_guard<std::mutex> lock(sinkMutex);
    va_list arguments;
    va_start(arguments, format);
    if (messageSink == nullptr) {
        std::vprintf(format, arguments);
    } else {
        char few[512];
        va_list again;
        va_copy(again, arguments);
        const int length = std::vsnprintf(few, sizeof few, format, again);
        va_end(again);
        if (length < static_cast<int>(sizeof few)) {
            messageSink(length < 0 ? "" : few, messageContext);
        } else {
            std::string text(static_cast<std::size_t>(length) + 1, '\0');
            std::vsnprintf(&text[0], text.size(), format, arguments);
            messageSink(text.c_str(), messageContext);
        }
    }
    va_end(arguments);
}

void JWReport::setProgress(JWProgressCallback callback, void* context) {
    std::lock_guard<std::mutex> lock(progressMutex);
    progressCallback = callback;
    progressContext = context;
}

bool JWReport::progress(std::int64_t done, std::int64_t total) {
    std::lock_guard<std::mutex> lock(progressMutex);
    return progressCallback == nullptr || progressCallback(done, total, progressContext);
}

}  // namespace jws
