// SPDX-License-Identifier: MIT
#ifndef JW_GEOMETRY_FACTORY_H
#define JW_GEOMETRY_FACTORY_H

#include <cstddef>

#include "jw_geometry_base.h"

namespace jws {

/// Makes geometries of a kind that is known only when running. All operations are static and may be
/// called from several threads at once; created geometries belong to the caller.
class JW_API JWGeometryFactory {
  public:
    JWGeometryFactory() = delete;

    /// Returns a new geometry of the type as its class makes it by default: points at the origin,
    /// all others empty. Null for `JWGeometryNone`, for `JWGeometryCurve`, which names several
    /// classes, for codes that no class has, and when memory is short.
    static JWGeometry* createGeometry(enumJWGeometryType type);

    /// Makes the geometry in `length` bytes of well-known binary, of the class that the type in it
    /// names; a geometry collection becomes a `JWGeometryBag`. What is read, and the errors, are as
    /// in `JWGeometry::importFromWkb`.
    /// \param geometry  receives the geometry, null on an error; must not be null itself
    /// \param used      receives the number of bytes read when not null; bytes beyond them are then
    ///     allowed. When null, bytes after the geometry give `JWDataErrCorruptData`.
    static enumJWDataErr createFromWkb(const unsigned char* wkb, std::size_t length,
                                       JWGeometry** geometry, std::size_t* used = nullptr);

    /// Makes the geometry in a text ended by a zero byte; as `createFromWkb`. `LINEARRING` becomes
    /// a `JWRing`.
    static enumJWDataErr createFromWkt(const char* wkt, JWGeometry** geometry,
                                       std::size_t* used = nullptr);
};

}  // namespace jws

#endif  // JW_GEOMETRY_FACTORY_H
