// SPDX-License-Identifier: MIT
//
// One operand while a run lasts: its features by position, the tree over their envelopes, and what
// was prepared of the large ones.
#ifndef JW_OVERLAY_LAYER_SIDE_H
#define JW_OVERLAY_LAYER_SIDE_H

#include <algorithm>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "boolean/area_operand.h"
#include "foundation/position_index.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// A feature of an operand with its area, ready for clips.
struct OverlayFeature {
    std::int64_t position = -1;
    std::shared_ptr<const JWFeature> feature;
    Area area;

    const JWFeature* operator->() const { return feature.get(); }
    const JWFeature* get() const { return feature.get(); }
    const JWGeometry& geometry() const { return *feature->getGeometryPtr(); }
};

class LayerSide {
  public:
    explicit LayerSide(FeatureInput& input) : m_input(input) {}

    FeatureInput& input() { return m_input; }

    /// Makes the tree ready; without it the operand cannot be searched. Throws LayerFailure.
    void startIndex();
    /// Enters the next feature of the first walk over the operand: into the tree, if there is one
    /// and the feature has an extent, and into memory, as far as the layer's cache goes. One thread
    /// at a time, inside the critical section, and not while another one searches. Throws
    /// LayerFailure.
    void enter(std::int64_t position, const std::shared_ptr<const JWFeature>& feature,
               const JWEnvelop& envelop);
    /// Every feature was read once.
    bool isRead() const { return m_isRead; }
    void setRead() { m_isRead = true; }

    /// Finds the features whose envelopes meet a rectangle, in their order. Any number of threads.
    void search(const JWEnvelop& envelop, Hits& hits) const { m_index.search(envelop, hits); }
    /// Appends the features of some hits, good as long as this operand. Any number of threads,
    /// outside the critical section. Throws LayerFailure.
    void fetch(void* const* hits, std::size_t count, std::vector<OverlayFeature>& features);
    /// Calls `visit` for the features of some hits, of which it holds a few hundred at a time.
    template <class Visit>
    void forEach(const Hits& hits, Visit&& visit) {
        std::vector<OverlayFeature> features;
        for (std::size_t i = 0; i < hits.size(); i += kFetched) {
            features.clear();
            fetch(&hits[i], std::min(kFetched, hits.size() - i), features);
            for (const OverlayFeature& feature : features) visit(feature);
        }
    }
    static constexpr std::size_t kFetched = 256;

  private:
    void readAll(OverlayFeature* features, std::size_t count);
    void shareChains(const std::vector<OverlayFeature*>& features);
    std::shared_ptr<const ChainBoxes> findChains(std::int64_t position) const;
    void keepChains(std::int64_t position, const std::shared_ptr<const ChainBoxes>& chains);

    FeatureInput& m_input;
    PositionIndex m_index;
    bool m_hasIndex = false;
    bool m_isRead = false;
    bool m_holdsAll = true;
    /// Every feature, while all of them have room in the layer's cache; none otherwise.
    std::vector<std::shared_ptr<const JWFeature>> m_held;
    std::unordered_map<std::int64_t, std::shared_ptr<const ChainBoxes>> m_chains;
    std::size_t m_chainBytes = 0;
};

/// What lies around one feature after the other of a run of features: those of the other operand
/// whose envelopes meet it, in their order. They are fetched a few hundred at a time across the
/// features of the run, so that the lock is taken seldom, and a feature with very many holds only
/// some of them in memory. One thread.
class Surroundings {
  public:
    Surroundings(LayerSide& own, LayerSide& others) : m_own(own), m_others(others) {}

    /// The next feature that meets the one at hand; null at the end. Good until the next call.
    const OverlayFeature* next();
    /// Starts over with the features that meet the one at hand.
    void restart() { m_next = m_begin; }
    /// Their number.
    std::size_t count() const { return m_end - m_begin; }
    /// The operand that they come from, and that of the feature at hand.
    LayerSide& others() { return m_others; }
    LayerSide& own() { return m_own; }

    /// For the driver: starts a run; adds the next feature's neighbours and returns their number;
    /// steps to a feature with `count` of them.
    void clear();
    std::size_t add(const JWEnvelop& envelop);
    std::size_t size() const { return m_hits.size(); }
    void startFeature(std::size_t count);

  private:
    LayerSide& m_own;
    LayerSide& m_others;
    Hits m_found;
    Hits m_hits;
    std::vector<OverlayFeature> m_batch;
    std::size_t m_batchBegin = 0;  ///< the hit that the batch begins with
    std::size_t m_begin = 0;       ///< the first hit of the feature at hand
    std::size_t m_next = 0;        ///< the hit that comes next
    std::size_t m_end = 0;         ///< behind the last hit of the feature at hand
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_LAYER_SIDE_H
