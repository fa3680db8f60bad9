// SPDX-License-Identifier: MIT
#include "layers/feature_io.h"

#include <algorithm>
#include <climits>

namespace jws::detail {
namespace {

class LayerInput : public FeatureInput {
  public:
    explicit LayerInput(JWFeatureLayer& layer) : m_layer(layer) {}

    const JWFeatureLayer* layer() const override { return &m_layer; }
    const char* name() const override { return m_layer.getLayerName(); }
    const char* source() const override { return m_layer.getDataSourceName(); }
    enumJWWKBGeometryType geometryType() const override { return m_layer.getGeometryType(); }
    const JWFields* fields() const override { return m_layer.getFieldsDefnPtr(); }
    bool identifiersFitInt() override { return m_layer.getMaximumFID() <= INT_MAX; }

    std::int64_t count() override {
        if (m_count < 0) m_count = m_layer.getFeatureCount64();
        if (m_count < 0) throw LayerFailure();
        return m_count;
    }

    void read(std::int64_t first, std::int64_t count, bool decode,
              std::vector<JWReadFeature>& features) override {
        const std::size_t before = features.size();
        if (!m_layer.readAhead(first, count, decode, features)) throw LayerFailure();
        const auto more = static_cast<std::int64_t>(features.size() - before);
        if (more > 0 && first + more > this->count()) failForMore();
    }

    void readAt(std::int64_t position, JWReadFeature& feature) override {
        if (!m_layer.readFeature(position, feature)) throw LayerFailure();
    }

    void decode(std::int64_t, JWReadFeature& feature) const override {
        if (!m_layer.decodeFeature(feature)) throw LayerFailure();
    }

    bool keep(std::int64_t position, const std::shared_ptr<const JWFeature>& feature) override {
        return m_layer.keepFeature(position, feature);
    }

  private:
    [[noreturn]] void failForMore() const {
        JWReport::setError(JWErrorInputUnreadable,
                           std::string(source()) + ", layer " + name() + ": has more than the " +
                               std::to_string(m_count) + " features that it states");
        throw LayerFailure();
    }

    JWFeatureLayer& m_layer;
    std::int64_t m_count = -1;  ///< of the whole run
};

class ClassInput : public FeatureInput {
  public:
    ClassInput(const char* name, const char* title, const JWFeatureClass& features)
        : m_name(name != nullptr ? name : ""), m_title(title), m_features(features) {}

    const char* name() const override { return m_name.c_str(); }
    const char* source() const override { return m_title.c_str(); }
    enumJWWKBGeometryType geometryType() const override { return m_features.getGeometryType(); }
    std::int64_t count() override { return m_features.getFeatureCount(); }

    /// The first feature's schema stands for all.
    const JWFields* fields() const override {
        const JWFeature* first = m_features.getFeatureAt(0);
        return first != nullptr ? first->getFieldsDefPtr() : nullptr;
    }

    bool identifiersFitInt() override {
        for (int i = 0; i < m_features.getFeatureCount(); ++i) {
            if (m_features.getFeatureAt(i)->getFID64() > INT_MAX) return false;
        }
        return true;
    }

    void read(std::int64_t first, std::int64_t count, bool,
              std::vector<JWReadFeature>& features) override {
        const std::int64_t end = std::min(first + count, this->count());
        for (std::int64_t i = first; i < end; ++i) {
            features.push_back({borrowed(static_cast<int>(i)), nullptr});
        }
    }

    void readAt(std::int64_t position, JWReadFeature& feature) override {
        feature.feature = borrowed(static_cast<int>(position));
    }

    void decode(std::int64_t, JWReadFeature&) const override {}
    bool keep(std::int64_t, const std::shared_ptr<const JWFeature>&) override { return true; }

  private:
    /// A pointer that owns nothing: the class outlives the run.
    std::shared_ptr<const JWFeature> borrowed(int i) const {
        return std::shared_ptr<const JWFeature>(std::shared_ptr<void>(),
                                                m_features.getFeatureAt(i));
    }

    std::string m_name;
    std::string m_title;
    const JWFeatureClass& m_features;
};

class JoinedInput : public FeatureInput {
  public:
    JoinedInput(FeatureInput& a, FeatureInput& b) : m_a(a), m_b(b), m_first(a.count()) {}

    FeatureOrigin originOf(std::int64_t position) override {
        return {position < m_first ? &m_a : &m_b, position >= m_first};
    }
    const char* name() const override { return m_a.name(); }
    const char* source() const override { return m_a.source(); }
    std::int64_t count() override { return m_first + m_b.count(); }
    enumJWWKBGeometryType geometryType() const override { return m_a.geometryType(); }
    const JWFields* fields() const override { return m_a.fields(); }
    bool identifiersFitInt() override { return m_a.identifiersFitInt() && m_b.identifiersFitInt(); }

    void read(std::int64_t first, std::int64_t count, bool decode,
              std::vector<JWReadFeature>& features) override {
        const std::int64_t end = first + count;
        // One more than A states, so that A notices if it has more.
        const std::int64_t endOfA = std::min(end, m_first + 1);
        if (first < endOfA) m_a.read(first, endOfA - first, decode, features);
        if (end <= m_first) return;
        const std::int64_t from = std::max(first, m_first);
        m_b.read(from - m_first, end - from, decode, features);
    }

    void readAt(std::int64_t position, JWReadFeature& feature) override {
        inputOf(position).readAt(placeOf(position), feature);
    }

    void decode(std::int64_t position, JWReadFeature& feature) const override {
        inputOf(position).decode(placeOf(position), feature);
    }

    bool keep(std::int64_t position, const std::shared_ptr<const JWFeature>& feature) override {
        return inputOf(position).keep(placeOf(position), feature);
    }

  private:
    FeatureInput& inputOf(std::int64_t position) const { return position < m_first ? m_a : m_b; }
    /// The position within its own input.
    std::int64_t placeOf(std::int64_t position) const {
        return position < m_first ? position : position - m_first;
    }

    FeatureInput& m_a;
    FeatureInput& m_b;
    std::int64_t m_first;
};

class LayerOutput : public FeatureOutput {
  public:
    explicit LayerOutput(JWFeatureLayer& layer) : m_layer(layer) {}

    const JWFeatureLayer* layer() const override { return &m_layer; }
    JWFields* createFields(const std::vector<JWField>& fields) override {
        for (const JWField& field : fields) {
            if (!m_layer.createField(field)) throw LayerFailure();
        }
        m_layer.updateFieldsDefnRef();
        return m_layer.getFieldsDefnPtr();
    }

    void setGeometryType(enumJWWKBGeometryType type) override { m_layer.setGeometryType(type); }

    std::shared_ptr<JWFeatureRecord> prepare(const JWFeature& feature) const override {
        return m_layer.prepareFeature(feature);
    }

    bool write(std::unique_ptr<JWFeature>& feature,
               const std::shared_ptr<JWFeatureRecord>& record) override {
        m_lost.clear();
        return m_layer.createFeature(*feature, record, &m_lost);
    }

    const std::vector<std::string>& lostValues() const override { return m_lost; }

    void begin() override {
        if (!m_layer.beginTransaction()) throw LayerFailure();
    }

    void commit() override {
        if (!m_layer.commitTransaction()) throw LayerFailure();
    }

    void rollback() override { m_layer.rollbackTransaction(); }

  private:
    JWFeatureLayer& m_layer;
    std::vector<std::string> m_lost;
};

class ClassOutput : public FeatureOutput {
  public:
    explicit ClassOutput(JWFeatureClass& features) : m_features(features) {}
    ~ClassOutput() override {
        if (m_fields != nullptr) JWFields::destroyFields(m_fields);
    }

    JWFields* createFields(const std::vector<JWField>& fields) override {
        m_fields = new JWFields();
        for (const JWField& field : fields) m_fields->addUniqueField(field);
        return m_fields;
    }

    void setGeometryType(enumJWWKBGeometryType type) override { m_features.setGeometryType(type); }

    std::shared_ptr<JWFeatureRecord> prepare(const JWFeature&) const override { return nullptr; }

    bool write(std::unique_ptr<JWFeature>& feature,
               const std::shared_ptr<JWFeatureRecord>&) override {
        feature->setFID(m_features.getFeatureCount() + 1);
        m_features.addFeature(feature.release());
        return true;
    }

    const std::vector<std::string>& lostValues() const override { return m_none; }
    void begin() override {}
    void commit() override { m_features.updateEnvelop(); }
    void rollback() override { m_features.clearAll(); }

  private:
    JWFeatureClass& m_features;
    JWFields* m_fields = nullptr;
    std::vector<std::string> m_none;
};

}  // namespace

bool areApart(const FeatureInput& input, const FeatureOutput& output) {
    const JWFeatureLayer *from = input.layer(), *to = output.layer();
    return from != nullptr && to != nullptr && !from->isOfSourceOf(*to);
}

std::unique_ptr<FeatureInput> inputFrom(JWFeatureLayer& layer) {
    return std::make_unique<LayerInput>(layer);
}

std::unique_ptr<FeatureInput> inputFrom(const char* name, const char* title,
                                        const JWFeatureClass& features) {
    return std::make_unique<ClassInput>(name, title, features);
}

std::unique_ptr<FeatureInput> joinedInput(FeatureInput& a, FeatureInput& b) {
    return std::make_unique<JoinedInput>(a, b);
}

std::unique_ptr<FeatureOutput> outputTo(JWFeatureLayer& layer) {
    return std::make_unique<LayerOutput>(layer);
}

std::unique_ptr<FeatureOutput> outputTo(JWFeatureClass& features) {
    return std::make_unique<ClassOutput>(features);
}

}  // namespace jws::detail
