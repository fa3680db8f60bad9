// SPDX-License-Identifier: MIT
//
// The feature and layer model: attribute schemas and values, features, in-memory feature classes,
// layers of a data source, the spatial index and spatial references. This header gathers the parts.
#ifndef JW_FEATURE_H
#define JW_FEATURE_H

#include "jw_datasource.h"
#include "jw_feature_class.h"
#include "jw_feature_field.h"
#include "jw_feature_layer.h"
#include "jw_spatialindex.h"
#include "jw_spatialreference.h"

#endif  // JW_FEATURE_H
