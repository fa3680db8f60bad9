// SPDX-License-Identifier: MIT
//
// The driver of maps, over a made-up operand.
#include "layers/layer_map.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "foundation/parallel.h"
#include "layers/numbers.h"

using namespace jws;
using namespace jws::detail;

namespace {

/// Notes what is written and lets it go.
class Noted : public FeatureOutput {
  public:
    std::vector<double> written;  ///< first x of each result

    ~Noted() override {
        if (m_fields != nullptr) JWFields::destroyFields(m_fields);
    }
    JWFields* createFields(const std::vector<JWField>&) override {
        return m_fields = new JWFields();
    }
    void setGeometryType(enumJWWKBGeometryType) override {}
    std::shared_ptr<JWFeatureRecord> prepare(const JWFeature&) const override { return nullptr; }
    bool write(std::unique_ptr<JWFeature>& feature,
               const std::shared_ptr<JWFeatureRecord>&) override {
        written.push_back(feature->getGeometryPtr()->getEnvelop().minX);
        ++count;
        return true;
    }
    const std::vector<std::string>& lostValues() const override { return m_none; }
    void begin() override {}
    void commit() override {}
    void rollback() override {}

    std::atomic<std::int64_t> count{0};

  private:
    JWFields* m_fields = nullptr;
    std::vector<std::string> m_none;
};

/// While the first feature takes its time, the one result of each of the others waits.
TEST(LayerMapThreads, WhatWaitsIsBoundedAlsoWithOneResultAFeature) {
    constexpr std::int64_t features = 8000;
    constexpr int vertices = 2048;  // 32 KB: all of it would be 256 MB
    constexpr std::int64_t limit = (std::int64_t{128} << 20) / (vertices * sizeof(JWRawPoint));
    for (const int threads : {2, 8}) {
        Numbers input;
        input.stated = input.actual = features;
        Noted output;
        LayerMapJob job(input, output);
        std::atomic<std::int64_t> made{0};
        std::int64_t waiting = 0;
        const auto waitForOthers = [&] {
            for (std::int64_t before = -1; before != made;) {
                before = made;
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            }
            waiting = made - output.count;
        };
        job.map = [&](const JWFeature& feature, MapResults& results) {
            if (feature.getFID64() == 0) waitForOthers();
            std::vector<JWRawPoint> line(vertices, JWRawPoint{0, 0});
            for (JWRawPoint& point : line) point.x = static_cast<double>(feature.getFID64());
            ++made;
            results.add(std::make_unique<JWLineString>(line.data(), vertices));
        };
        JWLayerReport report;
        EXPECT_EQ(features, runLayerMap(job, {0, threads}, report));
        // One chunk of each worker is past the limit.
        EXPECT_GE(limit + 32 * workersOf(threads), waiting) << threads;
        ASSERT_EQ(static_cast<std::size_t>(features), output.written.size());
        for (std::size_t i = 0; i < output.written.size(); ++i) {
            ASSERT_EQ(static_cast<double>(i), output.written[i]);
        }
    }
}

}  // namespace
