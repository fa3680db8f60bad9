// SPDX-License-Identifier: MIT
//
// JWSpatialReference: the coordinate reference system of a layer.
#ifndef JW_SPATIALREFERENCE_H
#define JW_SPATIALREFERENCE_H

#include <memory>

#include "jw_codes.h"
#include "jw_export.h"

namespace jws {

/// A coordinate reference system. x is longitude or easting and y latitude or northing, whatever
/// order the authority states.
class JW_API JWSpatialReference {
  public:
    /// An empty reference, equal only to other empty ones.
    JWSpatialReference();
    JWSpatialReference(const JWSpatialReference& other);
    JWSpatialReference& operator=(const JWSpatialReference& other);
    ~JWSpatialReference();

    /// Reads WKT (1 or 2). Returns `JWDataErrUnsupportedSRS` when it cannot be understood.
    enumJWDataErr importFromWkt(const char* wkt);
    /// Reads anything GDAL understands: "EPSG:4326", WKT, PROJ strings, PROJJSON.
    enumJWDataErr importFromUserInput(const char* text);
    /// Writes WKT into a newly allocated text released with `freeText`.
    enumJWDataErr exportToWkt(char** wkt) const;
    static void freeText(char* text);
    /// Short name for people: "EPSG:4326 (WGS 84)", or the name alone; empty for an empty
    /// reference. The text is released with `freeText`.
    char* describe() const;

    bool isEmpty() const;
    /// True when both mean the same system: compared by definition, ignoring names and axis order.
    bool isSameSpatialReference(const JWSpatialReference* other) const;
    bool operator==(const JWSpatialReference& other) const {
        return isSameSpatialReference(&other);
    }
    bool operator!=(const JWSpatialReference& other) const {
        return !isSameSpatialReference(&other);
    }
    /// The same for two references that may be missing; two missing ones are the same.
    static bool areSame(const JWSpatialReference* a, const JWSpatialReference* b);

    /// 1 when coordinates are angles.
    int isGeographic() const;
    /// 1 when coordinates are lengths on a projected plane.
    int isProjected() const;

    /// The `OGRSpatialReference` object behind, for programs that use GDAL themselves; it belongs
    /// to this object. Null for an empty reference.
    void* getOGRSpatialRefPtr() const;
    /// Adopts a copy of an `OGRSpatialReference`, null for none.
    void setOGRSpatialRef(const void* reference);

  private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace jws

#endif  // JW_SPATIALREFERENCE_H
