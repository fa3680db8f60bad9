// SPDX-License-Identifier: MIT
#ifndef JW_FOUNDATION_OGR_ENVELOPE_H
#define JW_FOUNDATION_OGR_ENVELOPE_H

#include <ogr_feature.h>

#include "jw_envelop.h"

namespace jws::detail {

/// Envelope of a feature's geometry, by the rule of `JWGeometry::updateEnvelop`: a NaN coordinate
/// is skipped, and without any other on an axis the envelope is invalid. (OGR's own is that of the
/// first vertex where that is NaN.) Curves have the envelope that OGR gives them.
JWEnvelop envelopOfOgr(const OGRFeature& feature);

}  // namespace jws::detail

#endif  // JW_FOUNDATION_OGR_ENVELOPE_H
