// SPDX-License-Identifier: MIT
#include "foundation/field_value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace jws::detail {
namespace {

void* copyBytes(const void* bytes, std::size_t size) {
    void* copy = std::malloc(size > 0 ? size : 1);
    if (copy == nullptr) throw std::bad_alloc();
    if (size > 0) std::memcpy(copy, bytes, size);
    return copy;
}

/// Copies one of the union's list structures.
template <class List>
List copyList(const List& list) {
    List copy = list;
    using Item = std::remove_pointer_t<decltype(list.values)>;
    copy.count = list.values != nullptr && list.count > 0 ? list.count : 0;
    copy.values = static_cast<Item*>(
        copyBytes(list.values, static_cast<std::size_t>(copy.count) * sizeof(Item)));
    return copy;
}

std::string_view trimmed(const char* text) {
    std::string_view view(text != nullptr ? text : "");
    while (!view.empty() && std::strchr(" \t\r\n", view.front()) != nullptr) view.remove_prefix(1);
    while (!view.empty() && std::strchr(" \t\r\n", view.back()) != nullptr) view.remove_suffix(1);
    if (view.size() > 1 && view[0] == '+' && view[1] != '-') view.remove_prefix(1);
    return view;
}

template <class Number>
bool parseNumber(const char* text, Number& out) {
    const std::string_view view = trimmed(text);
    Number value;
    const auto [end, error] = std::from_chars(view.data(), view.data() + view.size(), value);
    if (error != std::errc() || end != view.data() + view.size()) return false;
    out = value;
    return true;
}

template <class Number>
std::string numberText(Number value) {
    char text[40];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::string quoted(const char* text) {
    std::string out = "\"";
    for (const char* c = text; *c != '\0'; ++c) {
        if (*c == '"' || *c == '\\') {
            out += '\\';
            out += *c;
        } else if (static_cast<unsigned char>(*c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(*c));
            out += escape;
        } else {
            out += *c;
        }
    }
    return out + '"';
}

template <class List, class Text>
std::string listText(const List& list, Text&& text) {
    std::string out = "[";
    for (int i = 0; i < list.count; ++i) out += (i > 0 ? "," : "") + text(list.values[i]);
    return out + "]";
}

std::string hexText(const unsigned char* bytes, int count) {
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(static_cast<std::size_t>(count) * 2);
    for (int i = 0; i < count; ++i) {
        out += digits[bytes[i] >> 4];
        out += digits[bytes[i] & 15];
    }
    return out;
}

std::string timeText(const unionJWField& value) {
    char text[40];
    const int second = static_cast<int>(value.date.second);
    const long rounded = std::lround((static_cast<double>(value.date.second) - second) * 1000);
    const long milliseconds = std::min(rounded, 999L);  // never the next second
    std::snprintf(text, sizeof text, milliseconds == 0 ? "%02d:%02d:%02d" : "%02d:%02d:%02d.%03ld",
                  value.date.hour, value.date.minute, second, milliseconds);
    std::string out = text;
    const int zone = value.date.timeZone;
    if (zone == 100) return out + "Z";
    if (zone > 1) {
        const int quarters = zone - 100;
        std::snprintf(text, sizeof text, "%c%02d:%02d", quarters < 0 ? '-' : '+',
                      std::abs(quarters) / 4, std::abs(quarters) % 4 * 15);
        out += text;
    }
    return out;
}

std::string dateText(enumJWFieldType type, const unionJWField& value) {
    if (type == JWFieldTime) return timeText(value);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", value.date.year, value.date.month,
                  value.date.day);
    return type == JWFieldDate ? text : std::string(text) + "T" + timeText(value);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Reads a number of one or two digits and goes on behind it.
bool readDigits(const char*& at, int& number) {
    if (!isDigit(*at)) return false;
    const char* const end = at + (isDigit(at[1]) ? 2 : 1);
    for (number = 0; at < end; ++at) number = number * 10 + (*at - '0');
    return true;
}

/// Reads "Z", "+hh", "+hhmm", "+hh:mm" or nothing, to the end of the text.
bool parseZone(const char* at, std::uint8_t& zone) {
    const char sign = *at;
    zone = sign == '\0' ? 0 : 100;
    if (sign == '\0') return true;
    ++at;
    if (sign == 'Z' || sign == 'z') return *at == '\0';
    int hours = 0, minutes = 0;
    if ((sign != '+' && sign != '-') || !readDigits(at, hours)) return false;
    if (*at == ':') ++at;
    if (at[-1] == ':' || *at != '\0') {
        if (!readDigits(at, minutes)) return false;
    }
    if (*at != '\0' || hours > 14 || minutes % 15 != 0 || minutes > 45) return false;
    const int quarters = hours * 4 + minutes / 15;
    zone = static_cast<std::uint8_t>(100 + (sign == '-' ? -quarters : quarters));
    return true;
}

/// Reads digits with a point or without, whatever the process's locale.
bool readSeconds(const char*& at, float& seconds) {
    const char* end = at;
    while (isDigit(*end) || *end == '.') ++end;
    const auto [stop, error] = std::from_chars(at, end, seconds, std::chars_format::fixed);
    at = stop;
    return error == std::errc() && stop == end;
}

/// Reads "hh:mm" or "hh:mm:ss.sss" and a zone.
bool parseClock(const char* at, unionJWField& out) {
    int hour = 0, minute = 0;
    float second = 0;
    if (!readDigits(at, hour) || *at++ != ':' || !readDigits(at, minute)) return false;
    if (*at == ':' && !readSeconds(++at, second)) return false;
    if (hour > 23 || minute > 59 || second >= 61) return false;
    out.date.hour = static_cast<std::uint8_t>(hour);
    out.date.minute = static_cast<std::uint8_t>(minute);
    out.date.second = second;
    return parseZone(at, out.date.timeZone);
}

}  // namespace

char* copyText(const char* text) {
    if (text == nullptr) text = "";
    return static_cast<char*>(copyBytes(text, std::strlen(text) + 1));
}

unionJWField copyValue(enumJWFieldType type, const unionJWField& value) {
    unionJWField copy = value;
    switch (type) {
        case JWFieldString:
            copy.string = copyText(value.string);
            break;
        case JWFieldIntegerList:
            copy.integerList = copyList(value.integerList);
            break;
        case JWFieldInteger64List:
            copy.integer64List = copyList(value.integer64List);
            break;
        case JWFieldRealList:
            copy.realList = copyList(value.realList);
            break;
        case JWFieldBinary:
            copy.binary = copyList(value.binary);
            break;
        case JWFieldStringList:
            copy.stringList = copyList(value.stringList);
            for (int i = 0; i < copy.stringList.count; ++i) {
                copy.stringList.values[i] = copyText(value.stringList.values[i]);
            }
            break;
        default:
            break;
    }
    return copy;
}

void freeValue(enumJWFieldType type, unionJWField& value) {
    switch (type) {
        case JWFieldString:
            std::free(value.string);
            break;
        case JWFieldIntegerList:
            std::free(value.integerList.values);
            break;
        case JWFieldInteger64List:
            std::free(value.integer64List.values);
            break;
        case JWFieldRealList:
            std::free(value.realList.values);
            break;
        case JWFieldBinary:
            std::free(value.binary.values);
            break;
        case JWFieldStringList:
            for (int i = 0; i < value.stringList.count; ++i) std::free(value.stringList.values[i]);
            std::free(value.stringList.values);
            break;
        default:
            break;
    }
}

std::size_t valueMemory(enumJWFieldType type, const unionJWField& value) {
    switch (type) {
        case JWFieldString:
            return std::strlen(value.string) + 1;
        case JWFieldIntegerList:
            return sizeof(int) * value.integerList.count;
        case JWFieldInteger64List:
            return sizeof(std::int64_t) * value.integer64List.count;
        case JWFieldRealList:
            return sizeof(double) * value.realList.count;
        case JWFieldBinary:
            return static_cast<std::size_t>(value.binary.count);
        case JWFieldStringList: {
            std::size_t bytes = sizeof(char*) * value.stringList.count;
            for (int i = 0; i < value.stringList.count; ++i) {
                bytes += std::strlen(value.stringList.values[i]) + 1;
            }
            return bytes;
        }
        default:
            return 0;
    }
}

std::string valueText(enumJWFieldType type, const unionJWField& value) {
    switch (type) {
        case JWFieldInteger:
            return numberText(value.integer);
        case JWFieldInteger64:
            return numberText(value.integer64);
        case JWFieldReal:
            return numberText(value.real);
        case JWFieldString:
            return value.string;
        case JWFieldIntegerList:
            return listText(value.integerList, numberText<int>);
        case JWFieldInteger64List:
            return listText(value.integer64List, numberText<std::int64_t>);
        case JWFieldRealList:
            return listText(value.realList, numberText<double>);
        case JWFieldStringList:
            return listText(value.stringList, quoted);
        case JWFieldBinary:
            return hexText(value.binary.values, value.binary.count);
        case JWFieldDate:
        case JWFieldTime:
        case JWFieldDateTime:
            return dateText(type, value);
    }
    return std::string();
}

bool parseInteger(const char* text, std::int64_t& out) { return parseNumber(text, out); }

bool parseReal(const char* text, double& out) { return parseNumber(text, out); }

bool parseDate(const char* text, enumJWFieldType type, unionJWField& out) {
    const std::string whole(trimmed(text));
    unionJWField value{};
    value.date = {};
    const char* rest = whole.c_str();
    if (type != JWFieldTime) {
        int year = 0, month = 0, day = 0, used = 0;
        if (std::sscanf(rest, "%5d%*1[-/]%2d%*1[-/]%2d%n", &year, &month, &day, &used) < 3 ||
            month < 1 || month > 12 || day < 1 || day > daysOfMonth(year, month) ||
            year < INT16_MIN || year > INT16_MAX) {
            return false;
        }
        value.date.year = static_cast<std::int16_t>(year);
        value.date.month = static_cast<std::uint8_t>(month);
        value.date.day = static_cast<std::uint8_t>(day);
        rest += used;
        if (*rest == '\0') {
            out = value;
            return true;
        }
        if (type == JWFieldDate || (*rest != 'T' && *rest != ' ')) return false;
        ++rest;
    }
    if (!parseClock(rest, value)) return false;
    out = value;
    return true;
}

}  // namespace jws::detail
