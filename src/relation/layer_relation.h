// SPDX-License-Identifier: MIT
#ifndef JW_RELATION_LAYER_RELATION_H
#define JW_RELATION_LAYER_RELATION_H

#include <atomic>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "foundation/parallel.h"
#include "foundation/position_index.h"
#include "jw_layerrelation.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// Tells whether a matrix is wanted.
class PairFilter {
  public:
    /// Nothing, with the last error set, for an unknown predicate or a text that is no pattern.
    static std::optional<PairFilter> from(const JWLayerRelationOptions& options);
    bool takes(const JWRelationMatrix& matrix) const;

  private:
    int m_predicate = -1;
    bool m_intersecting = false;
    std::string m_pattern;
};

/// One run over two layers.
class LayerRelationRun {
  public:
    LayerRelationRun(FeatureInput& a, FeatureInput& b, const JWLayerRelationOptions& options,
                     const PairFilter& filter, JWLayerReport& report);

    /// Calls `visit` for every wanted pair and returns their number. Throws LayerFailure.
    std::int64_t run(const JWLayerRelation::Visitor& visit);
    bool isStopped() const { return m_stopped; }

  private:
    using Features = std::vector<std::shared_ptr<const JWFeature>>;
    struct Partner {
        std::shared_ptr<const JWFeature> feature;  ///< what is prepared is its geometry
        std::unique_ptr<const JWPreparedRelation> prepared;
        std::size_t points = 0;
    };
    /// A feature of A on its way.
    struct Slot {
        Hits near;
        std::vector<JWRelatedPair> pairs;
    };

    void indexB();
    bool canTake(FeatureInput& input, const JWFeature& feature, std::int64_t& empty);
    void readBlock(std::int64_t first, std::int64_t count);
    void preparePartners();
    void relateBlock();
    void relateFeature(std::size_t i);
    std::int64_t handOut(const JWLayerRelation::Visitor& visit);
    void keepOn();
    [[noreturn]] void stop();

    FeatureInput& m_a;
    FeatureInput& m_b;
    PairFilter m_filter;
    JWLayerReport& m_report;
    Team m_team;
    std::int64_t m_blockSize;
    PositionIndex m_index;
    Features m_block;
    std::vector<Slot> m_slots;
    std::unordered_map<std::int64_t, Partner> m_partners;
    std::size_t m_points = 0;  ///< of the partners that are kept
    std::int64_t m_done = 0;
    std::int64_t m_total = 0;
    std::atomic<bool> m_stopped{false};
};

}  // namespace jws::detail

#endif  // JW_RELATION_LAYER_RELATION_H
