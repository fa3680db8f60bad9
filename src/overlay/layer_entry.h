// SPDX-License-Identifier: MIT
//
// How a public layer operation starts and ends: the checks with their codes, the schema, the run,
// the account, the last error. Every operation is one row of what is particular to it.
#ifndef JW_OVERLAY_LAYER_ENTRY_H
#define JW_OVERLAY_LAYER_ENTRY_H

#include "overlay/layer_operations.h"

namespace jws::detail {

/// Which attributes the results of an operation carry.
enum class Attributes {
    OfA,          ///< the fields of A
    OfBoth,       ///< of A and B, as the attribute mode says; within one layer of two features
    OfBothCount,  ///< these and "join_count"
};

struct LayerOperation {
    const char* name;
    Attributes attributes;
    MakePasses passes;
    bool joinsLayers = false;  ///< works on the features of two layers as on those of one
    bool withinLayer = false;  ///< has one operand
    bool changesAreas = true;  ///< has an identity of areas to obey
};

extern const LayerOperation intersectOperation;
extern const LayerOperation eraseOperation;
extern const LayerOperation identityOperation;
extern const LayerOperation growOperation;
extern const LayerOperation planarUnionOperation;
extern const LayerOperation symmetricalDifferenceOperation;
extern const LayerOperation updateOperation;
extern const LayerOperation spatialJoinOperation;
extern const LayerOperation growWithinOperation;
extern const LayerOperation partitionWithinOperation;
extern const LayerOperation overlapWithinOperation;
extern const LayerOperation overlapPiecesWithinOperation;

// All return the number of features written, or −1, −2, −3 with the last error set; `report` may be
// null.

int overlayLayers(const LayerOperation& operation, JWFeatureLayer* a, JWFeatureLayer* b,
                  JWFeatureLayer* output, const JWOverlayOptions& options, JWLayerReport* report);

int overlayWithinLayer(const LayerOperation& operation, JWFeatureLayer* input,
                       JWFeatureLayer* output, const JWOverlayOptions& options,
                       JWLayerReport* report);

/// One operand in memory: a name for identifier fields, and its features.
struct NamedClass {
    const char* name;
    JWFeatureClass* features;
};

/// Replaces what `output` holds, unless that is an operand; it takes A's reference. Within one
/// layer, `b` is `a` again.
int overlayClasses(const LayerOperation& operation, const NamedClass& a, const NamedClass& b,
                   JWFeatureClass& output, const JWOverlayOptions& options);

/// The same into a new class; null when the overlay fails.
JWFeatureClass* overlayClasses(const LayerOperation& operation, const NamedClass& a,
                               const NamedClass& b, const JWOverlayOptions& options);

}  // namespace jws::detail

#endif  // JW_OVERLAY_LAYER_ENTRY_H
