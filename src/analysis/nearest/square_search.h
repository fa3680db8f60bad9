// SPDX-License-Identifier: MIT
#ifndef JW_ANALYSIS_NEAREST_SQUARE_SEARCH_H
#define JW_ANALYSIS_NEAREST_SQUARE_SEARCH_H

#include <memory>

#include "analysis/nearest/nearest_method.h"
#include "jw_geometrynearest.h"

namespace jws::detail {

/// One of the eight operations.
struct ShortestOperation {
    const char* name;
    const char* sourceField;  ///< of the source's identifier
    const char* targetField;
};

/// The row of an operation; null for a number that is none.
const ShortestOperation* findShortestOperation(enumJWShortestOperation operation);

/// The established search of an operation, see JWGeometryNearest.
std::unique_ptr<NearestMethod> squareSearch(enumJWShortestOperation operation);

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_SQUARE_SEARCH_H
