// SPDX-License-Identifier: MIT
//
// Console texts that come by the thousand, such as one for each feature: gathered and handed on in
// batches, since a message each would cost more than the work that it tells of. Nothing is made of
// them while messages are off.
#ifndef JW_FOUNDATION_TEXT_BATCH_H
#define JW_FOUNDATION_TEXT_BATCH_H

#include <charconv>
#include <cstdint>
#include <string>

#include "jw_report.h"

namespace jws::detail {

class TextBatch {
  public:
    TextBatch() = default;
    ~TextBatch() { flush(); }
    TextBatch(const TextBatch&) = delete;
    TextBatch& operator=(const TextBatch&) = delete;

    /// Adds a text in which the numbers stand for "%d", one after the other.
    template <class... Numbers>
    void print(const char* format, Numbers... numbers) {
        if (!m_on) return;
        const std::int64_t values[] = {static_cast<std::int64_t>(numbers)..., 0};
        const std::int64_t* next = values;
        const char* from = format;
        for (const char* c = format; *c != '\0'; ++c) {
            if (*c != '%' || c[1] != 'd') continue;
            char digits[24];
            m_text.append(from, c);
            m_text.append(digits, std::to_chars(digits, digits + sizeof digits, *next++).ptr);
            from = ++c + 1;
        }
        m_text.append(from);
        if (m_text.size() > 8192) flush();
    }
    /// Hands on what has gathered, to come before messages by other ways.
    void flush() {
        if (!m_text.empty()) JWReport::message("%s", m_text.c_str());
        m_text.clear();
    }
    bool isOn() const { return m_on; }

  private:
    bool m_on = JWReport::messagesAreOn();
    std::string m_text;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_TEXT_BATCH_H
