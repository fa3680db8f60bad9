// SPDX-License-Identifier: MIT
#include "support/test_paths.h"

namespace jwtest {

std::string testData(const std::string& name) { return JW_CHECKOUT "/tests/data/" + name; }

std::string exampleData(const std::string& name) { return JW_CHECKOUT "/examples/data/" + name; }

}  // namespace jwtest
