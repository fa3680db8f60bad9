// SPDX-License-Identifier: MIT
#ifndef JW_OVERLAY_LINE_PARTS_H
#define JW_OVERLAY_LINE_PARTS_H

#include <vector>

#include "jw_geometry.h"

namespace jws::detail {

/// Cuts a line where it crosses or touches itself; the parts in order, each closed at most at its
/// ends. Repeated points are passed over. Empty below two different points and for coordinates that
/// are not finite.
std::vector<std::vector<JWRawPoint>> simpleParts(const JWLineString& line);

}  // namespace jws::detail

#endif  // JW_OVERLAY_LINE_PARTS_H
