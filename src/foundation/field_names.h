// SPDX-License-Identifier: MIT
//
// Field names that are free in a schema. Comparison ignores the case of ASCII letters, as databases
// do.
#ifndef JW_FOUNDATION_FIELD_NAMES_H
#define JW_FOUNDATION_FIELD_NAMES_H

#include <cstddef>
#include <functional>
#include <string>

namespace jws::detail {

/// True when both names are equal but for the case of ASCII letters.
bool sameName(const char* a, const char* b);

/// Returns `wanted`, or the first of "wanted_1", "wanted_2", … that is not taken, at most
/// `maximumBytes` long (0: no limit); the part before the number gives way. An empty name becomes
/// "field". UTF-8 sequences are never cut in the middle.
std::string freeFieldName(const std::string& wanted, std::size_t maximumBytes,
                          const std::function<bool(const char*)>& isTaken);

}  // namespace jws::detail

#endif  // JW_FOUNDATION_FIELD_NAMES_H
