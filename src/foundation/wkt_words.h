// SPDX-License-Identifier: MIT
//
// The words, numbers and signs of well-known text. Numbers are read by std::from_chars, which knows
// no locale. What a text lacks or has too much is kept as the first error.
#ifndef JW_FOUNDATION_WKT_WORDS_H
#define JW_FOUNDATION_WKT_WORDS_H

#include <charconv>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include "jw_codes.h"

namespace jws::wkt {

class Words {
  public:
    explicit Words(const char* text) : m_at(text), m_end(text + std::strlen(text)) {}

    enumJWDataErr error() const { return m_error; }
    const char* position() const { return m_at; }

    /// True when nothing but white space is left.
    bool atEnd() {
        skipSpace();
        return m_at == m_end;
    }

    bool fail(enumJWDataErr err) {
        if (m_error == JWDataErrNone) m_error = err;
        return false;
    }

    /// Something else stands here, or nothing any more.
    bool unexpected() { return fail(atEnd() ? JWDataErrNotEnoughData : JWDataErrCorruptData); }

    /// The next sign that is no white space; 0 at the end.
    char peek() {
        skipSpace();
        return m_at < m_end ? *m_at : '\0';
    }

    /// Reads letters, as capitals; empty when there is none.
    std::string word() {
        skipSpace();
        std::string letters;
        while (m_at < m_end && isLetter(*m_at)) letters.push_back(upper(*m_at++));
        return letters;
    }

    bool skipIf(char c) {
        skipSpace();
        if (m_at == m_end || *m_at != c) return false;
        ++m_at;
        return true;
    }

    /// This word stands here.
    bool isWord(std::string_view expected) {
        const char* start = m_at;
        const bool is = skipWord(expected);
        m_at = start;
        return is;
    }
    /// Skips this word when it stands here.
    bool skipWord(std::string_view expected) {
        skipSpace();
        const auto size = static_cast<std::ptrdiff_t>(expected.size());
        if (m_end - m_at < size || (m_end - m_at > size && isLetter(m_at[size]))) return false;
        for (std::ptrdiff_t i = 0; i < size; ++i) {
            if (upper(m_at[i]) != expected[static_cast<std::size_t>(i)]) return false;
        }
        m_at += size;
        return true;
    }

    bool open() { return skipIf('(') || unexpected(); }
    bool close() { return skipIf(')') || unexpected(); }

    bool number(double& value) {
        skipSpace();
        if (m_end - m_at > 1 && m_at[0] == '+' && m_at[1] != '-') ++m_at;
        const auto [next, err] = std::from_chars(m_at, m_end, value);
        if (err == std::errc::invalid_argument) return unexpected();
        if (err == std::errc::result_out_of_range) value = outOfRange(m_at, next);
        m_at = next;
        // Numbers stand apart: "1-2" and "1.2.3" are not two.
        return m_at == m_end || isSpace(*m_at) || std::strchr(",);", *m_at) != nullptr ||
               unexpected();
    }

  private:
    static bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
    static char upper(char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    static bool isLetter(char c) { return upper(c) >= 'A' && upper(c) <= 'Z'; }

    void skipSpace() {
        while (m_at < m_end && isSpace(*m_at)) ++m_at;
    }

    /// A number too large for a double is infinite, one too small is zero: which of the two, says
    /// the place of its first digit other than zero.
    static double outOfRange(const char* first, const char* last) {
        const bool negative = *first == '-';
        const char* at = negative ? first + 1 : first;
        long long place = 0;
        bool counting = false, fraction = false;
        for (; at < last && upper(*at) != 'E'; ++at) {
            fraction = fraction || *at == '.';
            counting = counting || (*at >= '1' && *at <= '9');
            if (counting && !fraction) ++place;
            if (!counting && fraction && *at == '0') --place;
        }
        int exponent = 0;
        if (at < last) {
            at += at[1] == '+' ? 2 : 1;
            const bool huge = std::from_chars(at, last, exponent).ec != std::errc();
            if (huge) exponent = *at == '-' ? -2000000000 : 2000000000;
        }
        const double size = place + exponent < 0 ? 0.0 : std::numeric_limits<double>::infinity();
        return negative ? -size : size;
    }

    const char* m_at;
    const char* m_end;
    enumJWDataErr m_error = JWDataErrNone;
};

}  // namespace jws::wkt

#endif  // JW_FOUNDATION_WKT_WORDS_H
