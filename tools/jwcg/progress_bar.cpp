// SPDX-License-Identifier: MIT
#include "progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "jw_report.h"
#include "signals.h"

namespace jws::cli {
namespace {

bool isTerminal() {
    const char* terminal = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) == 1 && terminal != nullptr &&
           std::strcmp(terminal, "dumb") != 0;
}

std::size_t terminalWidth() {
    struct winsize size {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col - 1u
                                                                             : 79u;
}

void showMessage(const char* text, void* context) {
    static_cast<ProgressBar*>(context)->clear();
    std::fputs(text, stderr);
}

bool showProgress(std::int64_t done, std::int64_t total, void* context) {
    static_cast<ProgressBar*>(context)->update(done, total);
    return !interruptRequested();
}

}  // namespace

std::string durationText(double seconds) {
    const long all = std::lround(std::fmax(0, std::fmin(seconds, 3.6e8)));
    char text[48];
    if (all < 60) {
        std::snprintf(text, sizeof text, "%ld s", all);
    } else if (all < 3600) {
        std::snprintf(text, sizeof text, "%ld min %02ld s", all / 60, all % 60);
    } else {
        std::snprintf(text, sizeof text, "%ld h %02ld min", all / 3600, all % 3600 / 60);
    }
    return text;
}

ProgressBar::ProgressBar(bool wanted) : m_active(wanted && isTerminal()) {}

ProgressBar::~ProgressBar() {
    if (m_attached) {
        JWReport::setProgress(nullptr, nullptr);
        JWReport::setMessageSink(nullptr, nullptr);
        JWReport::setMessagesOn(true);
    }
    clear();
}

void ProgressBar::attachToLibrary(bool verbose) {
    m_attached = true;
    JWReport::setMessageSink(showMessage, this);
    JWReport::setMessagesOn(verbose);
    JWReport::setProgress(showProgress, this);
}

void ProgressBar::startPhase(const char* name) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_phase = name;
    m_phaseStart = Clock::now();
    if (m_active) draw(std::string(name) + " ...");
}

void ProgressBar::update(std::int64_t done, std::int64_t total) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_active) return;
    const Clock::time_point now = Clock::now();
    if (m_drawn && now - m_lastDrawn < std::chrono::milliseconds(100)) return;
    const double seconds = std::chrono::duration<double>(now - m_phaseStart).count();
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    char text[160];
    const int used = std::snprintf(text, sizeof text, "%s %lld of %lld features", m_phase,
                                   static_cast<long long>(done), static_cast<long long>(total));
    std::string line(text, used);
    if (done > 0 && rate > 0) {
        std::snprintf(text, sizeof text, ", %.0f/s, ", rate);
        line += text + durationText(static_cast<double>(total - done) / rate) + " left";
    }
    draw(line);
}

void ProgressBar::clear() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    erase();
}

void ProgressBar::draw(const std::string& text) {
    std::fprintf(stderr, "\r%s\033[K", text.substr(0, terminalWidth()).c_str());
    std::fflush(stderr);
    m_lastDrawn = Clock::now();
    m_drawn = true;
}

void ProgressBar::erase() {
    if (!m_drawn) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    m_drawn = false;
}

}  // namespace jws::cli
