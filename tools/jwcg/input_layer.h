// SPDX-License-Identifier: MIT
//
// An input of a command: a file, the layer of it that is read, and what people are told about them.
#ifndef JWCG_INPUT_LAYER_H
#define JWCG_INPUT_LAYER_H

#include <string>

#include "output_file.h"

namespace jws::cli {

class InputLayer {
  public:
    /// Opens layer `layer` of the file at `path`; empty means its only layer, or the first one with
    /// geometries. Throws CommandFailure: input unreadable; usage when there is no such layer.
    InputLayer(const std::string& path, const std::string& layer);

    JWFeatureLayer& layer() { return *m_layer; }
    const std::string& path() const { return m_path; }
    std::string layerName() const { return m_layer->getLayerName(); }
    /// Null when there is none.
    const JWSpatialReference* reference() const { return m_layer->getSpatialReference(); }
    /// Throws CommandFailure (usage) unless the layer may hold polygons.
    void requirePolygons() const;

  private:
    std::string m_path;
    SourcePointer m_source;
    LayerPointer m_layer;
};

/// Throws CommandFailure (references differ) unless both layers have the same spatial reference or
/// neither has one.
void requireSameReference(const InputLayer& a, const InputLayer& b);

/// A spatial reference for people; empty for a missing one.
std::string describe(const JWSpatialReference* reference);
/// The unit of areas under a spatial reference: "square degrees", "square metres", "square units".
std::string areaUnit(const JWSpatialReference* reference);
/// "polygon", "multi-polygon" ...
const char* geometryTypeName(enumJWWKBGeometryType type);

}  // namespace jws::cli

#endif  // JWCG_INPUT_LAYER_H
