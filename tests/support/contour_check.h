// SPDX-License-Identifier: MIT
//
// Whether contours keep the engine's promises, decided exactly, by plain means.
#ifndef JW_TESTS_SUPPORT_CONTOUR_CHECK_H
#define JW_TESTS_SUPPORT_CONTOUR_CHECK_H

#include <string>

#include "support/gpc_call.h"

namespace jwtest {

/// Says which promise the contours of a result break; nothing if they keep all of them:
/// - at least three vertices, all finite, none twice in a contour;
/// - edges meet at vertices of both only, and contours do not cross at them;
/// - outer contours run counter-clockwise and holes clockwise; a contour within an even number of
///   others is an outer one;
/// - a contour comes before every contour around it;
/// - it starts at a vertex that no other contour has, where there is one, and so that vertex
///   (v + 2) / 2 of its v is unshared too, where that can be.
std::string contourFault(const ClipResult& result);

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_CONTOUR_CHECK_H
