// SPDX-License-Identifier: MIT
//
// An input of a command: a file, the layer of it that is read, and what people are told about them.
#ifndef JWCG_INPUT_LAYER_H
#define JWCG_INPUT_LAYER_H

#include <initializer_list>
#include <string>
#include <vector>

#include "output_file.h"

namespace jws::cli {

class InputLayer {
  public:
    /// Opens layer `layer` of the file at `path`; empty means its only layer, or the first one with
    /// geometries. Throws CommandFailure: input unreadable; usage when there is no such layer.
    InputLayer(const std::string& path, const std::string& layer);

    /// Leaves the features that satisfy `where` (a condition in SQL; empty for all) and whose
    /// geometries meet a rectangle (null for all), with their identifiers. Throws CommandFailure:
    /// usage for a condition that is not understood.
    void restrictTo(const std::string& where, const JWEnvelop* rectangle);

    JWFeatureLayer& layer() { return *m_layer; }
    const std::string& path() const { return m_path; }
    std::string layerName() const { return m_layer->getLayerName(); }
    /// All files that the input consists of.
    std::vector<std::string> files() const { return m_source->getFiles(); }
    /// Null when there is none.
    const JWSpatialReference* reference() const { return m_layer->getSpatialReference(); }
    /// What the layer may hold: 3 polygons, 1 points, 2 lines, 0 any, 100 none; multi-types count
    /// as their single ones.
    enumJWWKBGeometryType kind() const;
    /// Throws CommandFailure (usage) unless the layer may hold one of these kinds; `needed` says
    /// so.
    void require(std::initializer_list<enumJWWKBGeometryType> kinds, const char* needed) const;
    void requirePolygons() const { require({JWWKBPolygon}, "polygons are needed"); }
    /// The type of a layer that holds what this one holds: its own, but for shapefiles, which call
    /// a layer that has multi-geometries by the single type, the multi-type.
    enumJWWKBGeometryType widestType() const;

  private:
    std::string m_path;
    SourcePointer m_source;
    LayerPointer m_layer;
    bool m_isShapefile = false;  ///< the file is one
};

/// Throws CommandFailure (references differ) unless both layers have the same spatial reference or
/// neither has one.
void requireSameReference(const InputLayer& a, const InputLayer& b);

/// The single type of a multi-type; any other as it is.
enumJWWKBGeometryType singleType(enumJWWKBGeometryType type);
/// A spatial reference for people; empty for a missing one.
std::string describe(const JWSpatialReference* reference);
/// The unit of areas under a spatial reference: "square degrees", "square metres", "square units".
std::string areaUnit(const JWSpatialReference* reference);
/// "polygon", "multi-polygon" ...
const char* geometryTypeName(enumJWWKBGeometryType type);

}  // namespace jws::cli

#endif  // JWCG_INPUT_LAYER_H
