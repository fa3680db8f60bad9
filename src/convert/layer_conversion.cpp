// SPDX-License-Identifier: MIT
//
// The conversions that look at one feature at a time.
#include "convert/layer_conversion.h"

#include "convert/conversion_run.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

/// Maps each feature of a layer by itself.
template <class SetUp>
int mapConverted(const char* function, JWFeatureLayer* in, JWFeatureLayer* out,
                 const LayerMapOptions& options, JWLayerReport* report, const SetUp& setUp) {
    return convertLayers(function, in, out, report,
                         [&](FeatureInput& input, FeatureOutput& output, JWLayerReport& account) {
                             LayerMapJob job(input, output);
                             setUp(job);
                             return runLayerMap(job, options, account);
                         });
}

}  // namespace

int convertToPoints(JWFeatureLayer* in, JWFeatureLayer* out, const PointConversion& conversion,
                    const LayerMapOptions& options, JWLayerReport* report) {
    return mapConverted(conversion.function, in, out, options, report, [&](LayerMapJob& job) {
        job.kinds = conversion.kinds;
        job.outputType = JWWKBPoint;
        if (conversion.identifier != nullptr)
            job.schema.addIdentifierOf(job.input, conversion.identifier);
        const int order =
            conversion.numbersPoints ? job.schema.addField(JWField("vertex", JWFieldInteger)) : -1;
        if (conversion.keepAttributes) job.schema.addFieldsOf(job.input);
        const auto pointsOf = conversion.pointsOf;
        job.map = [pointsOf, order](const JWFeature& feature, MapResults& results) {
            Points points;
            pointsOf(*feature.getGeometryPtr(), points);
            for (std::size_t i = 0; i < points.size(); ++i) {
                results.add(std::make_unique<JWPoint>(points[i]));
                if (order >= 0) results.set(order, static_cast<int>(i));
            }
        };
    });
}

int convertToOwnLines(const char* function, JWFeatureLayer* in, JWFeatureLayer* out,
                      const JWConvertOptions& options, JWLayerReport* report) {
    const LayerMapOptions how{options.blockSize, options.threads};
    return mapConverted(function, in, out, how, report, [&](LayerMapJob& job) {
        job.kinds = AreaKind;
        job.outputType = JWWKBMultiLineString;
        job.schema.addIdentifierOf(job.input, "orig_fid");
        if (options.keepAttributes) job.schema.addFieldsOf(job.input);
        job.map = [](const JWFeature& feature, MapResults& results) {
            auto lines = std::make_unique<JWMultiLineString>();
            everyVertexList(*feature.getGeometryPtr(), [&](const JWRawPoint* p, std::size_t n) {
                if (n > 0) lines->addLineString(JWLineString(p, static_cast<int>(n)));
                return true;
            });
            lines->updateEnvelop();
            if (!lines->isEmpty()) results.add(std::move(lines));
        };
    });
}

}  // namespace jws::detail
