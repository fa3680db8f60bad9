// SPDX-License-Identifier: MIT
//
// What a layer operation reads from and writes to, as it sees it. Operands come from feature layers
// or from feature classes in memory, results go to either; the driver and its operations know only
// the three interfaces below, so that every form of an operation has one body.
//
// None of the classes locks anything. One thread at a time reads, and one at a time writes; both at
// once only where input and output are apart. `decode`, `prepare`, `name` and `source` may be
// called at any time, by many threads.
#ifndef JW_LAYERS_FEATURE_IO_H
#define JW_LAYERS_FEATURE_IO_H

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "jw_feature.h"
#include "jw_report.h"

namespace jws::detail {

/// A source could not be read, a result not be written, or the run was stopped. Carries the last
/// error of the thread that met it to the one that reports it.
struct LayerFailure : std::runtime_error {
    LayerFailure() : std::runtime_error(JWReport::lastError().text), error(JWReport::lastError()) {}
    JWError error;
};

/// A result layer refused one feature and can take the next; any other failure ends the run.
inline bool isRefusal(enumJWErrorKind kind) {
    return kind == JWErrorFeatureRejected || kind == JWErrorWrongGeometryType;
}

class FeatureInput;

/// Which layer a feature of an operand belongs to.
struct FeatureOrigin {
    FeatureInput* input;
    bool second;  ///< it is the second of two layers that make one operand
};

/// One operand: features by position, in a fixed order.
class FeatureInput {
  public:
    virtual ~FeatureInput() = default;
    virtual FeatureOrigin originOf(std::int64_t /*position*/) { return {this, false}; }
    /// The layer that the features are of; null for features in memory and for two layers at once.
    virtual const JWFeatureLayer* layer() const { return nullptr; }
    virtual const char* name() const = 0;
    /// Name of the data source; for features in memory what stands for one.
    virtual const char* source() const = 0;
    virtual std::int64_t count() = 0;
    virtual enumJWWKBGeometryType geometryType() const = 0;
    /// Schema of the features, null when there is none.
    virtual const JWFields* fields() const = 0;
    /// True when every identifier fits an `int`.
    virtual bool identifiersFitInt() = 0;
    /// Appends features `first` to `first + count - 1` (fewer at the end) to `features`, as part of
    /// a walk; decoded where it costs nothing, and all of them with `decode`. Throws LayerFailure.
    virtual void read(std::int64_t first, std::int64_t count, bool decode,
                      std::vector<JWReadFeature>& features) = 0;
    /// Fills `block` with the same features, decoded. Throws LayerFailure.
    void readBlock(std::int64_t first, std::int64_t count,
                   std::vector<std::shared_ptr<const JWFeature>>& block) {
        std::vector<JWReadFeature> features;
        read(first, count, true, features);
        block.clear();
        for (JWReadFeature& feature : features) block.push_back(std::move(feature.feature));
    }
    /// The decoded feature at `position` while walking on; null at the end. Throws LayerFailure.
    std::shared_ptr<const JWFeature> next(std::int64_t position) {
        std::vector<JWReadFeature> features;
        read(position, 1, true, features);
        return features.empty() ? nullptr : std::move(features.front().feature);
    }
    /// The decoded feature at `position` by itself. Throws LayerFailure.
    std::shared_ptr<const JWFeature> feature(std::int64_t position) {
        JWReadFeature feature;
        readAt(position, feature);
        if (feature.record) decode(position, feature);
        return std::move(feature.feature);
    }
    /// Reads the feature at `position` alone as `read` does. Throws LayerFailure.
    virtual void readAt(std::int64_t position, JWReadFeature& feature) = 0;
    /// Decodes a feature read at `position`: a call that many threads may make at a time, and while
    /// another one reads. Throws LayerFailure.
    virtual void decode(std::int64_t position, JWReadFeature& feature) const = 0;
    /// Remembers a decoded feature, so that reading it again costs nothing. Returns false when
    /// memory does not allow it, for this one or for one that had to go.
    virtual bool keep(std::int64_t position, const std::shared_ptr<const JWFeature>& feature) = 0;
};

/// Where result features go.
class FeatureOutput {
  public:
    virtual ~FeatureOutput() = default;
    /// The layer that they go to; null for features in memory.
    virtual const JWFeatureLayer* layer() const { return nullptr; }
    /// Gives the result its fields, in order; names are made unique. Returns the schema that result
    /// features carry. Throws LayerFailure.
    virtual JWFields* createFields(const std::vector<JWField>& fields) = 0;
    virtual void setGeometryType(enumJWWKBGeometryType type) = 0;
    /// Does what can be done of writing a feature before its turn comes: the one call that many
    /// threads may make at a time, and while another one writes. Null when there is nothing.
    virtual std::shared_ptr<JWFeatureRecord> prepare(const JWFeature& feature) const = 0;
    /// Writes one feature, `record` being what `prepare` made of it or null. Returns false with the
    /// last error set when it is refused. An output that keeps features takes it over, another
    /// leaves it to the caller.
    virtual bool write(std::unique_ptr<JWFeature>& feature,
                       const std::shared_ptr<JWFeatureRecord>& record) = 0;
    /// A sentence for each value of the feature written last that the output could not hold and
    /// left out.
    virtual const std::vector<std::string>& lostValues() const = 0;
    virtual void begin() = 0;
    /// Throws LayerFailure when the results could not be stored.
    virtual void commit() = 0;
    virtual void rollback() = 0;
};

/// Reading the one and writing the other may happen at the same time: they are layers of different
/// sources.
bool areApart(const FeatureInput& input, const FeatureOutput& output);
std::unique_ptr<FeatureInput> inputFrom(JWFeatureLayer& layer);
/// `name`, null for none, stands for the layer's name, `title` for its file; `features` must
/// outlive the input.
std::unique_ptr<FeatureInput> inputFrom(const char* name, const char* title,
                                        const JWFeatureClass& features);
/// The features of `a`, then those of `b`, as one operand; both must outlive it.
std::unique_ptr<FeatureInput> joinedInput(FeatureInput& a, FeatureInput& b);
std::unique_ptr<FeatureOutput> outputTo(JWFeatureLayer& layer);
std::unique_ptr<FeatureOutput> outputTo(JWFeatureClass& features);

}  // namespace jws::detail

#endif  // JW_LAYERS_FEATURE_IO_H
