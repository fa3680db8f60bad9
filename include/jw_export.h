// SPDX-License-Identifier: MIT
//
// The one export macro of libjwbasic and libjwcg. Both are built with hidden visibility: a class or
// function without JW_API is private to its library.
#ifndef JW_EXPORT_H
#define JW_EXPORT_H

#if defined(_WIN32)
#if defined(JW_BUILDING_LIBRARY)
#define JW_API __declspec(dllexport)
#else
#define JW_API __declspec(dllimport)
#endif
#else
#define JW_API __attribute__((visibility("default")))
#endif

#endif  // JW_EXPORT_H
