// SPDX-License-Identifier: MIT
//
// Where the data of the tests lies. Only the source behind this header knows the checkout's path,
// so that the others compile to the same in every checkout and come from a compiler cache.
#ifndef JW_TESTS_SUPPORT_TEST_PATHS_H
#define JW_TESTS_SUPPORT_TEST_PATHS_H

#include <string>

namespace jwtest {

/// The path of a file of tests/data.
std::string testData(const std::string& name);
/// The path of a file of examples/data.
std::string exampleData(const std::string& name);

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_TEST_PATHS_H
