// SPDX-License-Identifier: MIT
//
// Small layers in memory for the tests of layer operations, and their content as text.
#ifndef JW_TESTS_SUPPORT_LAYERS_H
#define JW_TESTS_SUPPORT_LAYERS_H

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jw_feature.h"
#include "jw_report.h"
#include "support/wkt.h"

namespace jwtest {

struct LayerCloser {
    void operator()(jws::JWFeatureLayer* layer) const {
        jws::JWFeatureLayer::destroyFeatureLayer(layer);
    }
};
using LayerPtr = std::unique_ptr<jws::JWFeatureLayer, LayerCloser>;

struct SourceCloser {
    void operator()(jws::JWDataSource* source) const {
        jws::JWDataSource::destroyDataSource(source);
    }
};
using SourcePtr = std::unique_ptr<jws::JWDataSource, SourceCloser>;

/// One feature of a test layer: its number (−1: fresh), its geometry ("" for none) and the value of
/// its text field.
struct Row {
    std::int64_t fid;
    std::string wkt;
    std::string label;
};

/// A rectangle as a WKT polygon.
inline std::string box(double x, double y, double right, double top) {
    const auto corner = [](double cx, double cy) {
        return std::to_string(cx) + " " + std::to_string(cy);
    };
    return "POLYGON((" + corner(x, y) + "," + corner(right, y) + "," + corner(right, top) + "," +
           corner(x, top) + "," + corner(x, y) + "))";
}

/// An empty memory layer of polygons without fields.
inline LayerPtr emptyLayer(const char* name, const char* reference = nullptr) {
    SourcePtr source(jws::JWDataSource::createInMemory());
    jws::JWSpatialReference srs;
    if (reference != nullptr) srs.importFromUserInput(reference);
    return LayerPtr(source->createLayer(name, jws::JWWKBUnknown, reference ? &srs : nullptr));
}

/// A memory layer of `rows` with one text field.
inline LayerPtr layerOf(const char* name, const std::vector<Row>& rows, const char* field = "name",
                        const char* reference = nullptr) {
    LayerPtr layer = emptyLayer(name, reference);
    layer->createField(jws::JWField(field, jws::JWFieldString));
    layer->updateFieldsDefnRef();
    for (const Row& row : rows) {
        jws::JWFeature feature(layer->getFieldsDefnPtr());
        feature.setFID64(row.fid);
        if (!row.wkt.empty()) feature.setGeometry(fromWkt(row.wkt.c_str()).get());
        feature.setFieldValue(0, row.label.c_str());
        layer->createFeature(&feature, row.fid >= 0);
    }
    return layer;
}

/// Axis-parallel rectangles and stars with 3 to 40 corners, overlapping at will.
inline std::vector<Row> randomRows(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(0, 100), size(1, 12);
    std::vector<Row> rows;
    for (int i = 0; i < count; ++i) {
        const double x = place(random), y = place(random), r = size(random);
        const int corners = 3 + static_cast<int>(random() % 38);
        std::string ring, first;
        for (int k = 0; k < corners; ++k) {
            const double angle = 6.283185307179586 * k / corners;
            const double radius = r * (0.5 + 0.05 * static_cast<double>(random() % 10));
            const std::string corner = std::to_string(x + radius * std::cos(angle)) + " " +
                                       std::to_string(y + radius * std::sin(angle));
            if (k == 0) first = corner;
            ring += corner + ",";
        }
        rows.push_back({-1, "POLYGON((" + ring + first + "))", "f" + std::to_string(i)});
    }
    return rows;
}

/// Field names of a layer, "a,b,c".
inline std::string fieldNames(const jws::JWFields& fields) {
    std::string names;
    for (int i = 0; i < fields.getFieldCount(); ++i) {
        if (i > 0) names += ",";
        names += fields.getFieldPtr(i)->getFieldName();
    }
    return names;
}

/// Geometry and attributes of one feature in full precision: "wkt|value|value"; "-" for no value.
inline std::string describe(const jws::JWFeature& feature) {
    std::string text = feature.getGeometryPtr() ? toWkt(*feature.getGeometryPtr()) : "-";
    for (int i = 0; i < feature.getFieldCount(); ++i) {
        std::string value;
        text += "|" + (feature.getFieldAsString(i, value) ? value : "-");
    }
    return text;
}

/// All features of a layer, one `describe` each, in order.
inline std::vector<std::string> contentOf(jws::JWFeatureLayer& layer) {
    jws::JWFeatureClass features;
    layer.getFeaturesByPosition(0, layer.getFeatureCount(), features);
    std::vector<std::string> content;
    for (int i = 0; i < features.getFeatureCount(); ++i) {
        content.push_back(describe(*features.getFeatureAt(i)));
    }
    return content;
}

/// Collects the library's console texts for the length of a scope.
class CapturedMessages {
  public:
    CapturedMessages() { jws::JWReport::setMessageSink(&CapturedMessages::take, this); }
    ~CapturedMessages() { jws::JWReport::setMessageSink(nullptr, nullptr); }
    const std::string& text() const { return m_text; }

  private:
    static void take(const char* text, void* self) {
        static_cast<CapturedMessages*>(self)->m_text += text;
    }
    std::string m_text;
};

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_LAYERS_H
