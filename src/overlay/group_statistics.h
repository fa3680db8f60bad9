// SPDX-License-Identifier: MIT
#ifndef JW_OVERLAY_GROUP_STATISTICS_H
#define JW_OVERLAY_GROUP_STATISTICS_H

#include <string>
#include <vector>

#include "jw_feature.h"
#include "jw_geometrydissolve.h"

namespace jws::detail {

/// The result field of a statistic over a field of `source`. Returns an empty text, or what is
/// wrong with it: no such field, or a field whose type it cannot be taken of.
std::string checkStatistic(const JWDissolveStatistic& statistic, const JWFields& source);
JWField statisticField(const JWDissolveStatistic& statistic, const JWFields& source);

/// Computes a statistic over the features of a group, in their order, into field `target` of
/// `result`; where no feature has a value it stays unset (a count is 0). False when the field
/// cannot hold the value.
bool fillStatistic(const JWDissolveStatistic& statistic, const std::vector<const JWFeature*>& group,
                   int target, JWFeature& result);

}  // namespace jws::detail

#endif  // JW_OVERLAY_GROUP_STATISTICS_H
