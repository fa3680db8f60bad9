// SPDX-License-Identifier: MIT
//
// What the reader and the writer of well-known binary share: sizes, byte order, words.
#ifndef JW_FOUNDATION_WKB_WORDS_H
#define JW_FOUNDATION_WKB_WORDS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "jw_envelop.h"

namespace jws::wkb {

inline constexpr std::size_t kHeaderSize = 5;
inline constexpr std::size_t kCountSize = 4;
inline constexpr std::size_t kPointSize = sizeof(JWRawPoint);
inline constexpr std::size_t kPointGeometrySize = kHeaderSize + kPointSize;

inline bool machineIsLittleEndian() {
    const std::uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

template <class Word>
Word swapped(Word value) {
    Word result = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i) {
        result = static_cast<Word>((result << 8) | (value & 0xff));
        value >>= 8;
    }
    return result;
}

}  // namespace jws::wkb

#endif  // JW_FOUNDATION_WKB_WORDS_H
