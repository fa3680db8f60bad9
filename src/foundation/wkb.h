// SPDX-License-Identifier: MIT
//
// Well-known binary: the one reader and the one writer behind the operations of the geometry
// classes, which state the contract.
#ifndef JW_FOUNDATION_WKB_H
#define JW_FOUNDATION_WKB_H

#include <cstddef>
#include <memory>

#include "jw_geometry_base.h"

namespace jws::wkb {

enumJWDataErr read(JWGeometry& into, const unsigned char* bytes, std::size_t length,
                   bool allowTrailing);
enumJWDataErr create(const unsigned char* bytes, std::size_t length,
                     std::unique_ptr<JWGeometry>& geometry, std::size_t* used);
std::size_t sizeOf(const JWGeometry& geometry);
enumJWDataErr write(const JWGeometry& geometry, enumJWWKBByteOrder order, unsigned char* bytes);

}  // namespace jws::wkb

#endif  // JW_FOUNDATION_WKB_H
