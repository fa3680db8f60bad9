// SPDX-License-Identifier: MIT
#ifndef JW_ANALYSIS_NEAREST_EXACT_SEARCH_H
#define JW_ANALYSIS_NEAREST_EXACT_SEARCH_H

#include <memory>

#include "analysis/nearest/nearest_method.h"
#include "jw_geometrynearest.h"

namespace jws::detail {

/// The search for what is really nearest; connections come by distance, then by target.
std::unique_ptr<NearestMethod> exactSearch(const JWNearestOptions& options);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_EXACT_SEARCH_H
