// SPDX-License-Identifier: MIT
//
// The dissolve of a layer: features are read once and examined, split into clusters, split into
// groups of equal values, and each group becomes one feature or several. Polygons, points and lines
// differ in what they examine and in how a group's geometry is made.
//
// Reading is one thread's work at a time; while one reads, the others examine what was read before.
// Groups are dealt out to the team and written in their order beside the work, so that results and
// the features that they were made of do not pile up.
#ifndef JW_OVERLAY_DISSOLVE_DRIVER_H
#define JW_OVERLAY_DISSOLVE_DRIVER_H

#include <cstdint>
#include <vector>

#include "jw_geometrydissolve.h"
#include "jw_report.h"
#include "layers/feature_io.h"

namespace jws::detail {

enum class DissolveKind { Areas, Points, Lines };

/// Dissolves `input` by these fields, ascending and each once. Returns the number of features
/// written. Throws LayerFailure for a statistic that cannot be taken, after a failed read or write
/// and when the run was stopped; nothing is written then.
std::int64_t runDissolve(FeatureInput& input, FeatureOutput& output, DissolveKind kind,
                         const std::vector<int>& fields, const JWDissolveOptions& options,
                         JWLayerReport& report);

}  // namespace jws::detail

#endif  // JW_OVERLAY_DISSOLVE_DRIVER_H
