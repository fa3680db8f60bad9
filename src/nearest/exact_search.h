// SPDX-License-Identifier: MIT
#ifndef JW_NEAREST_EXACT_SEARCH_H
#define JW_NEAREST_EXACT_SEARCH_H

#include <memory>

#include "jw_geometrynearest.h"
#include "nearest/nearest_method.h"

namespace jws::detail {

/// The search for what is really nearest; connections come by distance, then by target.
std::unique_ptr<NearestMethod> exactSearch(const JWNearestOptions& options);

}  // namespace jws::detail

#endif  // JW_NEAREST_EXACT_SEARCH_H
