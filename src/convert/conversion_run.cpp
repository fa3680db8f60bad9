// SPDX-License-Identifier: MIT
#include "convert/conversion_run.h"

#include "layers/layer_checks.h"

namespace jws::detail {
namespace {

constexpr int kHasFields = -3;

/// A layer that may have fields. They fit when they begin with those of the results, by name and
/// type.
class FittingOutput : public FeatureOutput {
  public:
    explicit FittingOutput(JWFeatureLayer& layer)
        : m_layer(layer),
          m_output(outputTo(layer)),
          m_hasFields(layer.getFieldsDefnPtr()->getFieldCount() > 0) {}

    const JWFeatureLayer* layer() const override { return &m_layer; }
    JWFields* createFields(const std::vector<JWField>& fields) override {
        if (!m_hasFields) return m_output->createFields(fields);
        const JWFields& there = *m_layer.getFieldsDefnPtr();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (fits(there, static_cast<int>(i), fields[i])) continue;
            JWReport::setError(JWErrorOutputExists,
                               titleOf(m_layer) +
                                   ": the result layer has fields already, of which " +
                                   std::to_string(i + 1) + " is not the field " +
                                   fields[i].getFieldName() + " of the results");
            throw LayerFailure();
        }
        return m_layer.getFieldsDefnPtr();
    }
    /// A layer with fields keeps its type: it may hold features.
    void setGeometryType(enumJWWKBGeometryType type) override {
        if (!m_hasFields) m_output->setGeometryType(type);
    }
    std::shared_ptr<JWFeatureRecord> prepare(const JWFeature& feature) const override {
        return m_output->prepare(feature);
    }
    bool write(std::unique_ptr<JWFeature>& feature,
               const std::shared_ptr<JWFeatureRecord>& record) override {
        return m_output->write(feature, record);
    }
    const std::vector<std::string>& lostValues() const override { return m_output->lostValues(); }
    void begin() override { m_output->begin(); }
    void commit() override { m_output->commit(); }
    void rollback() override { m_output->rollback(); }

  private:
    static bool fits(const JWFields& there, int i, const JWField& field) {
        if (i >= there.getFieldCount() || there.getFieldIndex(field.getFieldName()) != i)
            return false;
        const enumJWFieldType has = there.getFieldPtr(i)->getFieldType();
        const enumJWFieldType needs = field.getFieldType();
        return has == needs || (has == JWFieldInteger64 && needs == JWFieldInteger);
    }

    JWFeatureLayer& m_layer;
    std::unique_ptr<FeatureOutput> m_output;
    bool m_hasFields;
};

}  // namespace

int convertLayers(
    const char* function, JWFeatureLayer* in, JWFeatureLayer* out, JWLayerReport* report,
    const std::function<std::int64_t(FeatureInput&, FeatureOutput&, JWLayerReport&)>& body) {
    return guarded(function, -1, [&] {
        JWReport::clearError();
        if (report != nullptr) *report = JWLayerReport();
        const int refused = checkOverlayLayers(in, in, out);
        if (refused != 0 && refused != kHasFields) return refused;
        const int written = accounted(function, report, [&](JWLayerReport& account) {
            FittingOutput output(*out);
            return body(*inputFrom(*in), output, account);
        });
        const bool isMisfit = written < 0 && JWReport::lastError().kind == JWErrorOutputExists;
        return isMisfit ? kHasFields : written;
    });
}

}  // namespace jws::detail
