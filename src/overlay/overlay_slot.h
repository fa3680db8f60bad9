// SPDX-License-Identifier: MIT
//
// What becomes of one feature on its way through an overlay: the slot that a worker fills, to be
// written when its turn comes, and the emitter through which an operation fills it.
#ifndef JW_OVERLAY_OVERLAY_SLOT_H
#define JW_OVERLAY_OVERLAY_SLOT_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "layers/feature_io.h"
#include "layers/pending_result.h"
#include "layers/result_schema.h"
#include "overlay/feature_check.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_side.h"

namespace jws::detail {

/// A feature that was to take part in the result of another one, and why it did not.
struct LostFeature {
    const FeatureInput* input;
    std::int64_t fid;
    std::string reason;
};

struct Slot {
    AreaCheck check = AreaCheck::Usable;
    JWEnvelop envelop = JWEnvelop::invalid();
    double inputArea = 0;
    bool isUnresolved = false;  ///< that area is of the rings as they stand: the engine gave up
    std::size_t pairs = 0;
    PendingResults results;
    int copies = 0;                     ///< results that are the feature as it is
    std::vector<std::int64_t> cluster;  ///< positions of what is united, the feature first
    double dropped = 0;
    double mismatch = 0;
    std::vector<std::string> failures;
    std::vector<LostFeature> lost;  ///< others that have no result because of this one
};

/// Takes what an operation makes of one feature, in order.
class Emitter {
  public:
    /// `others`: the operand that the feature is overlaid with. `multipart`: whether a result of
    /// several parts stays one feature. `grew`: told of the results; must outlive this object.
    Emitter(const ResultSchema& schema, FeatureInput& others, bool multipart, Slot& slot,
            const Growth& grew)
        : m_schema(schema), m_others(others), m_multipart(multipart), m_slot(slot), m_grew(grew) {}

    /// Adds the feature at hand as it is, with the attributes of `a` and `b`, either of which may
    /// be null; `joined` goes into the count field, if there is one. Where its parts become
    /// features of their own, they are those of what it encloses by the even-odd rule. Throws
    /// ClipFailure.
    void emitCopy(const OverlayFeature& self, const JWFeature* a, const JWFeature* b,
                  std::int64_t joined = 0);
    /// Adds a result without a geometry, with the attributes of `a`.
    void emitEmpty(const JWFeature& a);
    /// The area that the feature at hand encloses.
    double inputArea() const { return m_slot.inputArea; }
    /// Adds a clip result, if something of it reached the tolerance, and accounts for the rest:
    /// what was dropped below the tolerance, and what got lost on the way from contours to
    /// results.
    void emit(BuiltArea&& built, const JWFeature* a, const JWFeature* b);
    /// Puts the feature at hand on the list of those not processed in full: it and `other` could
    /// not be overlaid.
    void reject(const OverlayFeature& other, const char* reason);
    void reject(const char* reason) { m_slot.failures.emplace_back(reason); }
    /// Puts a feature of the other operand on that list.
    void lose(const OverlayFeature& other, const char* reason);
    /// Keeps for the console what was united with the feature at hand, itself first.
    void noteCluster(const Hits& members);
    /// Adds to what the areas of the results differ by from what they should be.
    void addMismatch(double area) { m_slot.mismatch += area; }

  private:
    /// What a result carries besides its geometry.
    struct Values {
        const JWFeature* a;
        const JWFeature* b;
        std::int64_t joined;
    };
    void emitBuilt(BuiltArea&& built, const Values& values);
    void emitParts(const OverlayFeature& self, const Values& values);
    /// Adds a geometry of a known area, in parts if need be; returns the area of what it added.
    double add(std::unique_ptr<JWGeometry> geometry, const Values& values, double area);
    void addResult(std::unique_ptr<JWGeometry> geometry, const Values& values, double area);

    const ResultSchema& m_schema;
    FeatureInput& m_others;
    bool m_multipart;
    Slot& m_slot;
    const Growth& m_grew;
    std::optional<BuiltArea>
        m_whole;  ///< what the feature at hand encloses, if copies of it were taken apart
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_OVERLAY_SLOT_H
