// SPDX-License-Identifier: MIT
//
// Result features between the worker that makes them and the writing of them, in order.
#ifndef JW_LAYERS_PENDING_RESULT_H
#define JW_LAYERS_PENDING_RESULT_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "layers/feature_io.h"

namespace jws::detail {

/// A result feature that waits for its turn.
struct PendingResult {
    std::unique_ptr<JWFeature> feature;
    std::shared_ptr<JWFeatureRecord> record;  ///< what the output prepared of it; may be null
    bool isPreparedEarly = false;  ///< by the worker that made it: the record lasts as long
    double area = 0;
    std::int64_t vertices = 0;
    bool isEmpty = false;   ///< it has no geometry
    std::string lostField;  ///< name of a field whose value the result cannot hold
};

/// Has the output prepare a complete result: for the worker to do that is going to write it, which
/// lets go at once what was prepared. Returns false for one that was prepared early.
bool prepareResult(PendingResult& result, const FeatureOutput& output);
/// The same for the worker that made it, if the result is small. Null is no output: nothing is
/// prepared. Returns the bytes that wait.
std::size_t prepareEarly(PendingResult& result, const FeatureOutput* output);

/// Writes a result and accounts for it: area and vertices, a lost value, a refusal, under the
/// feature `fid` of `input` that it comes from. Throws LayerFailure when the output cannot go on.
void writeResult(FeatureOutput& output, PendingResult& result, const FeatureInput& input,
                 std::int64_t fid, JWLayerReport& report);

/// Told the bytes of each result that waits, and of what the output prepared of it.
using Growth = std::function<void(std::size_t bytes)>;

/// The results of one feature. They may be written in any number of parts: what the report says
/// does not depend on it.
class PendingResults {
  public:
    /// Has each result prepared for `output` when it is complete, if it is small.
    void prepareEarlyFor(const FeatureOutput& output) { m_early = &output; }
    /// Adds a result. The one before it is complete now.
    void add(PendingResult&& result, const Growth& grew);
    /// The result added last is complete; to be called once, after the last one. `grew` is told the
    /// size of each that is complete, and may write what is there.
    void complete(const Growth& grew);
    /// The result added last.
    PendingResult& last() { return m_waiting.back(); }
    /// Results added so far.
    std::size_t count() const { return m_count; }

    /// As prepareResult does for those that wait; returns how many that were.
    std::size_t prepare(const FeatureOutput& output);
    /// Writes those that wait, as `writeResult` does, but keeps refusals back.
    void write(FeatureOutput& output, const FeatureInput& input, std::int64_t fid,
               JWLayerReport& report);
    /// Lets go those that were written, which is for the worker to do that made them.
    void letGo() { m_waiting.clear(); }
    /// Reports the refusals, all results being written.
    void reportRefusals(JWLayerReport& report);

  private:
    std::vector<PendingResult> m_waiting;
    std::size_t m_count = 0;
    const FeatureOutput* m_early = nullptr;
    std::vector<JWRejectedFeature> m_refusals;
};

}  // namespace jws::detail

#endif  // JW_LAYERS_PENDING_RESULT_H
