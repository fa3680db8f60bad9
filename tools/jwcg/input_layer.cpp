// SPDX-License-Identifier: MIT
#include "input_layer.h"

#include <ogr_spatialref.h>

#include <algorithm>

#include "exit_codes.h"

namespace jws::cli {

InputLayer::InputLayer(const std::string& path, const std::string& layer) : m_path(path) {
    JWReport::clearError();
    m_source.reset(JWDataSource::open(path.c_str()));
    if (!m_source) throw libraryFailure(path);
    m_layer.reset(m_source->openLayer(layer.c_str()));
    if (m_layer) {
        m_isShapefile = std::string(m_layer->getDriverName()) == "ESRI Shapefile";
        return;
    }
    const CommandFailure failure = libraryFailure(path);
    // A file without any layer is not what the command line got wrong.
    if (m_source->getLayerCount() == 0) throw CommandFailure(ExitInputUnreadable, failure.what());
    throw failure;
}

void InputLayer::restrictTo(const std::string& where, const JWEnvelop* rectangle) {
    if (where.empty() && rectangle == nullptr) return;
    JWReport::clearError();
    if (!m_layer->restrictTo(where.c_str(), rectangle)) throw libraryFailure(m_path);
}

enumJWWKBGeometryType InputLayer::kind() const { return singleType(m_layer->getGeometryType()); }

void InputLayer::require(std::initializer_list<enumJWWKBGeometryType> kinds,
                         const char* needed) const {
    if (kind() == JWWKBUnknown) return;
    if (std::find(kinds.begin(), kinds.end(), kind()) != kinds.end()) return;
    const enumJWWKBGeometryType type = m_layer->getGeometryType();
    const std::string what = type == JWWKBNone
                                 ? "has no geometries"
                                 : std::string("holds ") + geometryTypeName(type) + " geometries";
    throw CommandFailure(ExitUsage, m_path + ": layer " + layerName() + " " + what + "; " + needed);
}

enumJWWKBGeometryType InputLayer::widestType() const {
    const enumJWWKBGeometryType type = m_layer->getGeometryType();
    if (!m_isShapefile) return type;
    if (type == JWWKBLineString) return JWWKBMultiLineString;
    return type == JWWKBPolygon ? JWWKBMultiPolygon : type;
}

void requireSameReference(const InputLayer& a, const InputLayer& b) {
    if (JWSpatialReference::areSame(a.reference(), b.reference())) return;
    const auto tell = [](const InputLayer& input) {
        const std::string name = describe(input.reference());
        return input.path() + ": layer " + input.layerName() +
               (name.empty() ? " has no spatial reference" : " is in " + name);
    };
    throw CommandFailure(ExitReferencesDiffer,
                         tell(a) + ", but " + tell(b) + "; both must have the same");
}

enumJWWKBGeometryType singleType(enumJWWKBGeometryType type) {
    switch (type) {
        case JWWKBMultiPoint:
            return JWWKBPoint;
        case JWWKBMultiLineString:
            return JWWKBLineString;
        case JWWKBMultiPolygon:
            return JWWKBPolygon;
        default:
            return type;
    }
}

std::string describe(const JWSpatialReference* reference) {
    if (reference == nullptr || reference->isEmpty()) return {};
    char* text = reference->describe();
    std::string name = text != nullptr ? text : "";
    JWSpatialReference::freeText(text);
    return name;
}

std::string areaUnit(const JWSpatialReference* reference) {
    if (reference == nullptr || reference->isEmpty()) return "square units";
    if (reference->isGeographic() == 1) return "square degrees";
    const auto* definition =
        static_cast<const OGRSpatialReference*>(reference->getOGRSpatialRefPtr());
    const char* unit = nullptr;
    if (definition == nullptr || definition->GetLinearUnits(&unit) <= 0 || unit == nullptr) {
        return "square units";
    }
    return std::string("square ") + unit + "s";
}

const char* geometryTypeName(enumJWWKBGeometryType type) {
    switch (type) {
        case JWWKBPoint:
            return "point";
        case JWWKBLineString:
            return "line string";
        case JWWKBPolygon:
            return "polygon";
        case JWWKBMultiPoint:
            return "multi-point";
        case JWWKBMultiLineString:
            return "multi-line string";
        case JWWKBMultiPolygon:
            return "multi-polygon";
        case JWWKBGeometryCollection:
            return "geometry collection";
        case JWWKBNone:
            return "none";
        case JWWKBUnknown:
            break;
    }
    return "any";
}

}  // namespace jws::cli
