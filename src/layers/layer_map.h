// SPDX-License-Identifier: MIT
//
// The driver of all operations that walk over one layer and make of each feature, by itself, none,
// one or more results: conversions, buffers, clips, bounding geometries, simplification, smoothing,
// transformation. It reads the layer block by block, has a team of threads map the features of a
// block, and writes the results in the order of the input.
//
// A map is what is done to one feature; everything else is here: features without a geometry are
// counted, those of an unsuitable kind or with a coordinate that is not finite are rejected with
// the reason, results carry attributes as the schema says.
//
// Guarantees. The result is the same, bit for bit and in the same order, for any number of threads
// and any block size. The layer is read and results are written by one thread at a time. Writing is
// one transaction: a run that fails or is stopped leaves nothing behind.
//
// Cost. One pass over the layer; memory for what waits to be written (ordered_work.h), however many
// results a feature has.
//
// A whole public function, points at the centres of polygons with all attributes:
//
//     return mapLayer("polygonsToCentres", in, out, {blockSize, threads}, report,
//                     [](LayerMapJob& job) {
//                         job.kinds = AreaKind;
//                         job.outputType = JWWKBPoint;
//                         job.schema.addFieldsOf(job.input);
//                         job.map = [](const JWFeature& feature, MapResults& results) {
//                             const JWGeometry& polygon = *feature.getGeometryPtr();
//                             results.add(std::make_unique<JWPoint>(centreOf(polygon)));
//                         };
//                     });
#ifndef JW_LAYERS_LAYER_MAP_H
#define JW_LAYERS_LAYER_MAP_H

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "layers/feature_io.h"
#include "layers/geometry_check.h"
#include "layers/pending_result.h"
#include "layers/result_schema.h"

namespace jws::detail {

/// Takes what a map makes of one feature, in order.
class MapResults {
  public:
    MapResults(const ResultSchema& schema, const JWFeature& source, std::int64_t position,
               PendingResults& results, std::vector<std::string>& failures, const Growth& grew)
        : m_schema(schema),
          m_source(source),
          m_position(position),
          m_results(results),
          m_failures(failures),
          m_grew(grew) {}

    /// The position of the feature at hand in its layer, from 0.
    std::int64_t position() const { return m_position; }

    /// Adds a result with the attributes that the schema takes from the feature at hand. Null is a
    /// feature without geometry.
    void add(std::unique_ptr<JWGeometry> geometry);
    /// Sets a field that the schema has of `addField`, in the result added last. A value that the
    /// field cannot hold puts the feature on the list of those not processed in full.
    template <class Value>
    void set(int field, const Value& value) {
        PendingResult& last = m_results.last();
        if (!last.feature->setFieldValue(field, value)) last.lostField = m_schema.nameOf(field);
    }
    /// Puts the feature at hand on the list of those that were not processed in full.
    void reject(std::string reason) { m_failures.push_back(std::move(reason)); }

  private:
    const ResultSchema& m_schema;
    const JWFeature& m_source;
    std::int64_t m_position;
    PendingResults& m_results;
    std::vector<std::string>& m_failures;
    const Growth& m_grew;
};

/// What an operation does to one feature.
using FeatureMap = std::function<void(const JWFeature& feature, MapResults& results)>;

struct LayerMapJob {
    LayerMapJob(FeatureInput& m_input, FeatureOutput& m_output)
        : input(m_input), output(m_output) {}

    FeatureInput& input;
    FeatureOutput& output;
    ResultSchema schema;
    enumJWWKBGeometryType outputType = JWWKBUnknown;
    unsigned kinds = AnyKind;  ///< of geometry that the map takes; others are rejected
    bool keepsEmpty = false;   ///< features without a geometry become results without one
    /// Called by many threads at once.
    FeatureMap map;
    /// In its place, for a map that needs memory of its own: makes the map of one worker, which has
    /// some neighbouring features to do. Called by many threads at once; what it makes by one.
    std::function<FeatureMap()> makeMap;
    /// Called before a block of `count` features, as far as the layer knows, from position `first`
    /// (from 0) on is mapped; may be empty.
    std::function<void(std::int64_t block, std::int64_t first, std::int64_t count)> onBlock;
};

struct LayerMapOptions {
    int blockSize = 0;  ///< features held at a time; 0 or less for all
    int threads = 1;    ///< 0 or less for one per core
};

/// Runs a job. Returns the number of features written. Throws LayerFailure after a failed read or
/// write and when the run was stopped; nothing is written then.
std::int64_t runLayerMap(LayerMapJob& job, const LayerMapOptions& options, JWLayerReport& report);

/// The course of a public layer function with a job: the checks with their codes, the run, the
/// account in `report` (may be null), the last error. `setUp` fills the job in, and may throw
/// LayerFailure after it set the last error. Returns the number of features written, −1 or −3.
int mapLayer(const char* function, JWFeatureLayer* input, JWFeatureLayer* output,
             const LayerMapOptions& options, JWLayerReport* report,
             const std::function<void(LayerMapJob&)>& setUp);

}  // namespace jws::detail

#endif  // JW_LAYERS_LAYER_MAP_H
