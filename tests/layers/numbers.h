// SPDX-License-Identifier: MIT
//
// A made-up operand that knows what is done to it.
#ifndef JW_TESTS_LAYERS_NUMBERS_H
#define JW_TESTS_LAYERS_NUMBERS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "foundation/feature_layer_impl.h"
#include "jw_geometry.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// Features numbered from 0, every third of which comes undecoded. It may have more or fewer than
/// it states, and break off.
class Numbers : public FeatureInput {
  public:
    std::int64_t stated = 0;
    std::int64_t actual = 0;
    std::int64_t breaksAt = -1;
    mutable std::atomic<std::int64_t> decoded{0};
    std::atomic<int> readers{0};

    const char* name() const override { return "numbers"; }
    const char* source() const override { return ""; }
    std::int64_t count() override { return stated; }
    enumJWWKBGeometryType geometryType() const override { return JWWKBPoint; }
    const JWFields* fields() const override { return nullptr; }
    bool identifiersFitInt() override { return true; }
    void read(std::int64_t first, std::int64_t count, bool decode,
              std::vector<JWReadFeature>& features) override {
        EXPECT_EQ(0, readers++) << "one thread reads at a time";
        EXPECT_EQ(m_next, first) << "in one go";
        for (; m_next < std::min(first + count, actual); ++m_next) {
            if (m_next == breaksAt) throw std::runtime_error("cannot be read");
            JWReadFeature read{numbered(m_next), nullptr};
            if (m_next % 3 == 0 && !decode) read.record = std::make_shared<JWSourceRecord>();
            features.push_back(std::move(read));
        }
        --readers;
    }
    void readAt(std::int64_t position, JWReadFeature& feature) override {
        feature.feature = numbered(position);
    }
    void decode(std::int64_t position, JWReadFeature& feature) const override {
        EXPECT_EQ(position, feature.feature->getFID64());
        feature.record.reset();
        ++decoded;
    }
    bool keep(std::int64_t, const std::shared_ptr<const JWFeature>&) override { return true; }
    void rewindTo(std::int64_t position) { m_next = position; }

  private:
    static std::shared_ptr<const JWFeature> numbered(std::int64_t number) {
        auto feature = std::make_shared<JWFeature>(nullptr);
        feature->setFID64(number);
        feature->setGeometryDirectly(new JWPoint(static_cast<double>(number), 0));
        return feature;
    }
    std::int64_t m_next = 0;
};

}  // namespace jws::detail

#endif  // JW_TESTS_LAYERS_NUMBERS_H
