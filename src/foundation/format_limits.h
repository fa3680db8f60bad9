// SPDX-License-Identifier: MIT
//
// What formats do not hold although their drivers take it without a word: what would come back as
// another value, as none, or somewhere else. Such values and geometries are found here before they
// are handed to the driver.
#ifndef JW_FOUNDATION_FORMAT_LIMITS_H
#define JW_FOUNDATION_FORMAT_LIMITS_H

#include <ogr_feature.h>

#include <cstddef>
#include <string>

#include "jw_geometry.h"

namespace jws {
class JWSpatialReference;
}

namespace jws::detail {

/// The limits of one format. Thread-safe.
class FormatLimits {
  public:
    static constexpr std::size_t shapefileNameBytes = 10;
    static constexpr std::size_t shapefileTextBytes = 254;

    /// `driver` is GDAL's short name, `reference` the layer's, null for none.
    FormatLimits(const std::string& driver, const JWSpatialReference* reference);

    bool isShapefile() const { return m_format == Format::Shapefile; }
    bool isCsv() const { return m_format == Format::Csv; }
    /// GDAL's list of the field types that lose nothing, given the driver's own (null for all).
    const char* fieldTypes(const char* driverTypes) const;
    /// Why a geometry cannot be stored; null when nothing is against it. Cost: a pass over its
    /// vertices.
    const char* refusalOf(const JWGeometry& geometry) const;
    /// What is wrong with value `k`, which is set; null when it comes back as it is, or rounded to
    /// the decimals of its field.
    const char* lossOf(const OGRFeature& feature, int k) const;

  private:
    enum class Format { Other, Memory, Shapefile, Csv, Kml, Database, GeoJson };
    static const char* lossInShapefile(const OGRFieldDefn& field, const OGRField& value);

    Format m_format = Format::Other;
    bool m_needsDegrees = false;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_FORMAT_LIMITS_H
