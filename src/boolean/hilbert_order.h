// SPDX-License-Identifier: MIT
#ifndef JW_BOOLEAN_HILBERT_ORDER_H
#define JW_BOOLEAN_HILBERT_ORDER_H

#include <vector>

#include "jw_envelop.h"

namespace jws::detail {

/// Sorts positions of rectangles along Hilbert's curve through their middles, so that neighbours in
/// the order are neighbours in the plane; those in one cell of a 65536 x 65536 grid by position.
void sortAlongHilbertCurve(const std::vector<JWEnvelop>& envelops, std::vector<int>& positions);

}  // namespace jws::detail

#endif  // JW_BOOLEAN_HILBERT_ORDER_H
