// SPDX-License-Identifier: MIT
//
// Features from features: the loop of all operations that make one polygon of each feature.
#ifndef JW_ANALYSIS_FEATURE_RESULTS_H
#define JW_ANALYSIS_FEATURE_RESULTS_H

#include <memory>
#include <string>
#include <utility>

#include "jw_feature.h"
#include "jw_report.h"
#include "layers/feature_like.h"
#include "layers/geometry_check.h"

namespace jws::detail {

/// Counts a feature as rejected.
inline void reject(JWLayerReport& report, const JWFeature& feature, std::string reason) {
    report.rejected.push_back({"", "", feature.getFID64(), std::move(reason)});
}

/// Makes the last rejected feature the thread's last error.
inline void keepLastRejected(const JWLayerReport& report) {
    if (report.rejected.empty()) return;
    const JWRejectedFeature& last = report.rejected.back();
    JWReport::setError(JWErrorFeatureRejected,
                       "feature " + std::to_string(last.fid) + ": " + last.reason, last.fid);
}

/// Appends to `output` a polygon for each feature of `input` that `ringOf(geometry, ring)` makes a
/// ring for, and rejects the others for `reason`.
template <class RingOf>
void polygonPerFeature(JWFeatureClass& input, JWFeatureClass& output, JWLayerReport& report,
                       const char* reason, const RingOf& ringOf) {
    output.setSpatialReference(input.getSpatialReference());
    output.setGeometryType(JWWKBPolygon);
    const int count = input.getFeatureCount();
    for (int i = 0; i < count; ++i) {
        JWFeature& source = *input.getFeatureAt(i);
        ++report.readA;
        if (source.isGeometryUnread()) {
            reject(report, source, kUnreadGeometry);
            continue;
        }
        if (source.isGeometryEmpty()) {
            ++report.emptyA;
            continue;
        }
        JWRing ring;
        if (!ringOf(source.getGeometryPtr(), &ring)) {
            reject(report, source, reason);
            continue;
        }
        std::unique_ptr<JWFeature> feature = featureLike(source);
        feature->setGeometryDirectly(new JWPolygon(std::move(ring)));
        output.addFeature(feature.release());
        ++report.written;
    }
    output.updateEnvelop();
    keepLastRejected(report);
}

}  // namespace jws::detail

#endif  // JW_ANALYSIS_FEATURE_RESULTS_H
