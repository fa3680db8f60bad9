// SPDX-License-Identifier: MIT
//
// A table of attributes of a shapefile holds numbers as decimal digits, of which the driver cuts
// those behind, texts of 254 bytes at most, and dates of four-digit years; a column of integers of
// 19 characters is read back as one of reals. Text and database formats have no NaN, or no number
// that is not finite. KML is in degrees, and its drivers bring other longitudes into their range.
#include "foundation/format_limits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "foundation/vertex_lists.h"
#include "jw_spatialreference.h"

namespace jws::detail {
namespace {

constexpr int realWidth = 24;  // of shapefiles, where the field states none
constexpr int realDecimals = 15;
constexpr int fieldBytes = 255;                        // of any field at most
constexpr long long integerEnd = 1000000000000000000;  // of 18 digits, sign included
constexpr double mostCut = 1e-6;                       // of a value, by digits left out

/// No vertex is NaN or infinite; an empty point, which is NaN twice, is no vertex.
bool areFiniteOrEmpty(const JWRawPoint* points, std::size_t n) {
    return areFinite(points, n) || (n == 1 && std::isnan(points->x) && std::isnan(points->y));
}

bool areDegrees(const JWRawPoint* points, std::size_t n) {
    bool within = true;
    for (std::size_t i = 0; i < n; ++i) {
        within = within && !(std::fabs(points[i].x) > 180 || std::fabs(points[i].y) > 90);
    }
    return within;
}

/// A real is written with its field's decimals, as the field's owner wants it, and cut behind the
/// field's width.
const char* lossOfReal(const OGRFieldDefn& field, double value) {
    if (!std::isfinite(value)) return "is not a finite number";
    const int width = std::min(field.GetWidth() > 0 ? field.GetWidth() : realWidth, fieldBytes);
    const int decimals =
        std::min(field.GetWidth() > 0 ? field.GetPrecision() : realDecimals, fieldBytes);
    char text[640];  // 309 digits before the point
    const char* end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals).ptr;
    if (std::find<const char*>(text, end, '.') - text > width) {
        return "is too long for a shapefile";
    }
    double whole = 0, kept = 0;
    std::from_chars(text, end, whole);
    std::from_chars(text, std::min<const char*>(end, text + width), kept);
    if (std::fabs(kept - whole) > mostCut * std::fabs(whole)) return "is too long for a shapefile";
    return kept == 0 && value != 0 && decimals >= realDecimals
               ? "is too small for the decimals of a shapefile"
               : nullptr;
}

}  // namespace

FormatLimits::FormatLimits(const std::string& driver, const JWSpatialReference* reference) {
    const struct {
        const char* driver;
        Format format;
    } rows[] = {{"Memory", Format::Memory},     {"ESRI Shapefile", Format::Shapefile},
                {"CSV", Format::Csv},           {"LIBKML", Format::Kml},
                {"KML", Format::Kml},           {"GPKG", Format::Database},
                {"SQLite", Format::Database},   {"GeoJSON", Format::GeoJson},
                {"GeoJSONSeq", Format::GeoJson}};
    for (const auto& row : rows) {
        if (driver == row.driver) m_format = row.format;
    }
    // Coordinates of projected systems are converted by the driver.
    m_needsDegrees =
        m_format == Format::Kml && (reference == nullptr || reference->isGeographic() == 1);
}

/// A CSV file is text whatever its fields are called; as text they keep all digits.
const char* FormatLimits::fieldTypes(const char* driverTypes) const {
    return isCsv() ? "Integer Integer64 String" : driverTypes;
}

const char* FormatLimits::refusalOf(const JWGeometry& geometry) const {
    if (m_format != Format::Memory && !everyVertexList(geometry, areFiniteOrEmpty)) {
        return "a coordinate is not a finite number";
    }
    return m_needsDegrees && !everyVertexList(geometry, areDegrees)
               ? "a coordinate is no longitude or latitude, as KML needs"
               : nullptr;
}

const char* FormatLimits::lossInShapefile(const OGRFieldDefn& field, const OGRField& value) {
    switch (field.GetType()) {
        case OFTString:
            return std::strlen(value.String) > shapefileTextBytes ? "is too long for a shapefile"
                                                                  : nullptr;
        case OFTInteger64:
            return value.Integer64 >= integerEnd || value.Integer64 <= -integerEnd / 10
                       ? "has too many digits for a shapefile"
                       : nullptr;
        case OFTDate:
            return value.Date.Year < 0 || value.Date.Year > 9999 ? "is too far off for a shapefile"
                                                                 : nullptr;
        case OFTReal:
            return lossOfReal(field, value.Real);
        default:
            return nullptr;
    }
}

const char* FormatLimits::lossOf(const OGRFeature& feature, int k) const {
    const OGRFieldDefn& field = *feature.GetFieldDefnRef(k);
    const OGRField& value = *feature.GetRawFieldRef(k);
    switch (m_format) {
        case Format::Shapefile:
            return lossInShapefile(field, value);
        case Format::Database:
            return field.GetType() == OFTReal && std::isnan(value.Real)
                       ? "is not a number, which the format has no sign for"
                       : nullptr;
        case Format::GeoJson:
            return field.GetType() == OFTReal && !std::isfinite(value.Real)
                       ? "is not a finite number, which the format has no sign for"
                       : nullptr;
        default:
            return nullptr;
    }
}

}  // namespace jws::detail
