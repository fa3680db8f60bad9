// SPDX-License-Identifier: MIT
//
// The bodies of the conversions of layers. Each returns the number of features written, or a
// negative code with the last error set, as `convertLayers` does.
#ifndef JW_CONVERT_LAYER_CONVERSION_H
#define JW_CONVERT_LAYER_CONVERSION_H

#include <functional>

#include "convert/points_of.h"
#include "jw_geometryconvert.h"
#include "layers/geometry_check.h"
#include "layers/layer_map.h"

namespace jws::detail {

/// What a conversion to points does, and which fields its result has, in this order.
struct PointConversion {
    const char* function;
    unsigned kinds;  ///< of geometry that it takes
    std::function<void(const JWGeometry&, Points&)> pointsOf;
    const char* identifier;       ///< name of the field for the source's identifier; null for none
    bool keepAttributes = false;  ///< all fields of the source
    bool numbersPoints = false;   ///< a field "vertex" with the order of each point
};
int convertToPoints(JWFeatureLayer* in, JWFeatureLayer* out, const PointConversion& conversion,
                    const LayerMapOptions& options, JWLayerReport* report);

/// One multi-line string for each polygon feature.
int convertToOwnLines(const char* function, JWFeatureLayer* in, JWFeatureLayer* out,
                      const JWConvertOptions& options, JWLayerReport* report);

/// The lines between polygons, once each; with `namesNeighbours` the polygons beside them.
int convertToSharedLines(const char* function, JWFeatureLayer* in, JWFeatureLayer* out,
                         bool namesNeighbours, const JWConvertOptions& options,
                         JWLayerReport* report);

}  // namespace jws::detail

#endif  // JW_CONVERT_LAYER_CONVERSION_H
