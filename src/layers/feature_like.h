// SPDX-License-Identifier: MIT
#ifndef JW_LAYERS_FEATURE_LIKE_H
#define JW_LAYERS_FEATURE_LIKE_H

#include <memory>

#include "jw_feature.h"

namespace jws::detail {

/// A feature with the identifier, schema and attributes of `source` and no geometry.
inline std::unique_ptr<JWFeature> featureLike(const JWFeature& source) {
    auto feature = std::make_unique<JWFeature>(const_cast<JWFields*>(source.getFieldsDefPtr()));
    feature->setFID64(source.getFID64());
    for (int i = 0; i < source.getFieldCount(); ++i) feature->copyFieldFrom(i, source, i);
    return feature;
}

}  // namespace jws::detail

#endif  // JW_LAYERS_FEATURE_LIKE_H
