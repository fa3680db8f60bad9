// SPDX-License-Identifier: MIT
//
// Well-known text: the one reader and the one writer behind the operations of the geometry classes,
// which state the contract.
#ifndef JW_FOUNDATION_WKT_H
#define JW_FOUNDATION_WKT_H

#include <cstddef>
#include <memory>
#include <string>

#include "jw_geometry_base.h"

namespace jws::wkt {

enumJWDataErr read(JWGeometry& into, const char* text, bool allowTrailing);
enumJWDataErr create(const char* text, std::unique_ptr<JWGeometry>& geometry, std::size_t* used);
/// Appends the text of the geometry to `out`; `out` is of no use on an error.
enumJWDataErr write(const JWGeometry& geometry, std::string& out);

}  // namespace jws::wkt

#endif  // JW_FOUNDATION_WKT_H
