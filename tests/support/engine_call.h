// SPDX-License-Identifier: MIT
//
// The engine's entries beside the GPC interface, as the tests call them.
#ifndef JW_TESTS_SUPPORT_ENGINE_CALL_H
#define JW_TESTS_SUPPORT_ENGINE_CALL_H

#include "support/gpc_call.h"

namespace jwtest {

/// Clips with prepared operands: bit 0 of `which` prepares A, bit 1 B.
ClipResult clipPrepared(gpc_op op, const Rings& a, const Rings& b, int which);

/// Unites any number of operands at once.
ClipResult uniteAll(const std::vector<Rings>& operands);

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_ENGINE_CALL_H
