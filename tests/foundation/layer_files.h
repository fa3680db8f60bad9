// SPDX-License-Identifier: MIT
//
// Layer files in a directory of their own, which goes with the fixture.
#ifndef JW_TESTS_FOUNDATION_LAYER_FILES_H
#define JW_TESTS_FOUNDATION_LAYER_FILES_H

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/layers.h"

namespace jwtest {

class LayerFiles : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "jw_layers_XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        m_directory = name;
    }
    void TearDown() override { std::filesystem::remove_all(m_directory); }

    std::string path(const std::string& name) const { return (m_directory / name).string(); }

    /// An empty layer "layer" in a new file; in memory for an empty name.
    LayerPtr newLayer(const std::string& file,
                      jws::enumJWWKBGeometryType type = jws::JWWKBPolygon) const {
        const SourcePtr source(file.empty() ? jws::JWDataSource::createInMemory()
                                            : jws::JWDataSource::create(path(file).c_str()));
        EXPECT_NE(source, nullptr) << jws::JWReport::lastError().text;
        if (!source) return nullptr;
        return LayerPtr(source->createLayer("layer", type, nullptr));
    }

    /// The only layer of a file.
    LayerPtr openLayer(const std::string& file, bool update = false) const {
        const SourcePtr source(jws::JWDataSource::open(path(file).c_str(), update));
        return LayerPtr(source ? source->openLayer("") : nullptr);
    }

    /// Writes `count` squares with field "n" = 0, 1, 2, … into a file and closes it.
    void writeSquares(const std::string& file, int count) const {
        LayerPtr layer = newLayer(file);
        ASSERT_TRUE(layer) << jws::JWReport::lastError().text;
        fillSquares(*layer, count);
        ASSERT_TRUE(jws::JWFeatureLayer::destroyFeatureLayer(layer.release()))
            << jws::JWReport::lastError().text;
    }

    /// Adds squares with corners (3i, 0) and (3i + 2, 2).
    static void fillSquares(jws::JWFeatureLayer& layer, int count) {
        ASSERT_TRUE(layer.createField(jws::JWField("n", jws::JWFieldInteger)));
        layer.updateFieldsDefnRef();
        jws::JWFeatureClass features;
        for (int i = 0; i < count; ++i) features.addFeature(square(layer, i));
        ASSERT_TRUE(layer.createFeatures(&features)) << jws::JWReport::lastError().text;
    }

    static jws::JWFeature* square(jws::JWFeatureLayer& layer, int i) {
        const double x = 3.0 * i;
        const jws::JWRawPoint corners[] = {{x, 0}, {x, 2}, {x + 2, 2}, {x + 2, 0}};
        auto* feature = new jws::JWFeature(layer.getFieldsDefnPtr());
        feature->setGeometryDirectly(new jws::JWPolygon(jws::JWRing(corners, 4)));
        feature->setFieldValue(0, i);
        return feature;
    }

    /// Value of field "n", −1 when it has none.
    static int number(const jws::JWFeature& feature) {
        int n = -1;
        feature.getFieldAsInt(feature.getFieldIndex("n"), n);
        return n;
    }

    static std::vector<int> numbers(const jws::JWFeatureClass& features) {
        std::vector<int> result;
        for (int i = 0; i < features.getFeatureCount(); ++i) {
            result.push_back(number(*features.getFeatureAt(i)));
        }
        return result;
    }

    /// The numbers of a whole layer, read in blocks.
    static std::vector<int> readInBlocks(jws::JWFeatureLayer& layer, int size) {
        std::vector<int> result;
        jws::JWFeatureClass block;
        for (;;) {
            const int read =
                layer.getFeaturesByPosition(static_cast<int>(result.size()), size, block);
            EXPECT_GE(read, 0) << jws::JWReport::lastError().text;
            if (read <= 0) return result;
            const std::vector<int> part = numbers(block);
            result.insert(result.end(), part.begin(), part.end());
        }
    }

  private:
    std::filesystem::path m_directory;
};

/// 0, 1, …, count − 1.
inline std::vector<int> upTo(int count) {
    std::vector<int> result;
    for (int i = 0; i < count; ++i) result.push_back(i);
    return result;
}

}  // namespace jwtest

#endif  // JW_TESTS_FOUNDATION_LAYER_FILES_H
