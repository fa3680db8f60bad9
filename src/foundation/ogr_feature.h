// SPDX-License-Identifier: MIT
//
// Features and schemas between this library and OGR.
#ifndef JW_FOUNDATION_OGR_FEATURE_H
#define JW_FOUNDATION_OGR_FEATURE_H

#include <ogr_feature.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/format_limits.h"
#include "jw_feature_class.h"

namespace jws::detail {

/// A new schema with the fields of an OGR definition; count 0.
std::unique_ptr<JWFields> fieldsFromOgr(OGRFeatureDefn& definition);

/// Copies a feature, marked by `markUnreadGeometry` or not, whose schema `fields` was made from its
/// definition. Returns null when its geometry cannot be expressed.
std::unique_ptr<JWFeature> featureFromOgr(OGRFeature& source, JWFields* fields);

/// Copies the values of `source` into `target`, field k to field k, converted to the target's
/// types; null and unset stay what they are. A value that the target or its format cannot hold
/// stays unset, and `lost` gets a sentence about it.
void valuesToOgr(const JWFeature& source, const FormatLimits& limits, OGRFeature& target,
                 std::vector<std::string>& lost);

/// Makes the field definition that a driver with the given list of types (GDAL's
/// "Integer Integer64 Real …", null for all) can store without loss: a type that it lacks becomes a
/// wider number or text.
std::unique_ptr<OGRFieldDefn> fieldToOgr(const JWField& field, const char* name,
                                         const char* driverTypes);

}  // namespace jws::detail

#endif  // JW_FOUNDATION_OGR_FEATURE_H
