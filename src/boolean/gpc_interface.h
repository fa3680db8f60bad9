// SPDX-License-Identifier: MIT
//
// The clipping engine's header, as C whichever engine it belongs to.
#ifndef JW_BOOLEAN_GPC_INTERFACE_H
#define JW_BOOLEAN_GPC_INTERFACE_H

extern "C" {
#include <gpc.h>
}

#endif  // JW_BOOLEAN_GPC_INTERFACE_H
