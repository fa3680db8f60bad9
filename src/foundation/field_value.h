// SPDX-License-Identifier: MIT
//
// Deep copies, release and text form of single field values. Memory of values comes from malloc.
#ifndef JW_FOUNDATION_FIELD_VALUE_H
#define JW_FOUNDATION_FIELD_VALUE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "jw_feature_field.h"

namespace jws::detail {

/// Returns the value with its own memory. Throws std::bad_alloc. Null texts and lists become empty.
unionJWField copyValue(enumJWFieldType type, const unionJWField& value);
/// Releases the memory of a value that `copyValue` made.
void freeValue(enumJWFieldType type, unionJWField& value);
/// Returns a zero-terminated copy of a text, released by `freeValue`.
char* copyText(const char* text);
/// Bytes that the value holds outside the union.
std::size_t valueMemory(enumJWFieldType type, const unionJWField& value);

/// The value as text: numbers in their shortest exact form, dates and times as ISO 8601, lists as
/// JSON arrays, binary as hexadecimal digits.
std::string valueText(enumJWFieldType type, const unionJWField& value);

/// Read a whole text as a number or as a date or time of the given type; blanks around it are
/// allowed. False when it is none or does not fit.
bool parseInteger(const char* text, std::int64_t& out);
bool parseReal(const char* text, double& out);
bool parseDate(const char* text, enumJWFieldType type, unionJWField& out);

/// Number of days of a month of the Gregorian calendar, which is carried back before its time.
inline int daysOfMonth(int year, int month) {
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return days[month - 1] + (month == 2 && leap ? 1 : 0);
}

/// Minutes of a date, a time or both since the start of the year 1, in UTC; the zone counts as UTC
/// where it is not known.
inline std::int64_t minutesOf(const unionJWField& value) {
    const auto& date = value.date;
    const std::int64_t before = date.year - 1;
    const auto wholes = [before](std::int64_t n) {  // rounded down
        return before / n - (before % n < 0 ? 1 : 0);
    };
    std::int64_t days = before * 365 + wholes(4) - wholes(100) + wholes(400) + date.day;
    for (int month = 1; month < date.month && month <= 12; ++month)
        days += daysOfMonth(date.year, month);
    const int quarters = date.timeZone > 1 ? date.timeZone - 100 : 0;
    return (days * 24 + date.hour) * 60 + date.minute - quarters * 15;
}

/// True when `value` truncated fits 64 bits.
inline bool fitsInt64(double value) {
    return value >= -9223372036854775808.0 && value < 9223372036854775808.0;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_FIELD_VALUE_H
