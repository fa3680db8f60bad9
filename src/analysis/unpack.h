// SPDX-License-Identifier: MIT
//
// JW_UNPACK: an argument of a macro that holds commas is handed over in parentheses; this takes
// them off.
#ifndef JW_ANALYSIS_UNPACK_H
#define JW_ANALYSIS_UNPACK_H

#define JW_UNPACK(...) __VA_ARGS__

#endif  // JW_ANALYSIS_UNPACK_H
