// SPDX-License-Identifier: MIT
#include "overlay/result_schema.h"

namespace jws::detail {

ResultSchema::ResultSchema(FeatureInput& a, FeatureInput& b, int attributeMode,
                           const std::string& areaField) {
    if (attributeMode == 1 || attributeMode == 2) {
        addIdentifier(a, Origin::IdentifierA);
        addIdentifier(b, Origin::IdentifierB);
    }
    if (attributeMode != 1) {
        addFields(a, Origin::FieldA);
        addFields(b, Origin::FieldB);
    }
    if (!areaField.empty()) {
        m_fields.emplace_back(areaField.c_str(), JWFieldReal);
        m_columns.push_back({Origin::Area, 0});
    }
}

void ResultSchema::addIdentifier(FeatureInput& input, Origin origin) {
    const std::string name = std::string("FID_") + input.name();
    m_fields.emplace_back(name.c_str(),
                          input.identifiersFitInt() ? JWFieldInteger : JWFieldInteger64);
    m_columns.push_back({origin, 0});
}

void ResultSchema::addFields(const FeatureInput& input, Origin origin) {
    const JWFields* fields = input.fields();
    for (int i = 0; fields != nullptr && i < fields->getFieldCount(); ++i) {
        m_fields.push_back(*fields->getFieldPtr(i));
        m_columns.push_back({origin, i});
    }
}

void ResultSchema::create(FeatureOutput& output) { m_schema = output.createFields(m_fields); }

std::unique_ptr<JWFeature> ResultSchema::makeFeature(std::unique_ptr<JWGeometry> geometry,
                                                     const JWFeature* a, const JWFeature* b,
                                                     double area, std::string& lostField) const {
    auto feature = std::make_unique<JWFeature>(m_schema);
    feature->setGeometryDirectly(geometry.release());
    for (std::size_t k = 0; k < m_columns.size(); ++k) {
        const int field = static_cast<int>(k);
        if (!fill(*feature, field, m_columns[k], a, b, area))
            lostField = m_fields[k].getFieldName();
    }
    return feature;
}

bool ResultSchema::fill(JWFeature& feature, int field, const Column& column, const JWFeature* a,
                        const JWFeature* b, double area) {
    switch (column.origin) {
        case Origin::IdentifierA:
            return a == nullptr || feature.setFieldValue(field, a->getFID64());
        case Origin::IdentifierB:
            return b == nullptr || feature.setFieldValue(field, b->getFID64());
        case Origin::FieldA:
            return a == nullptr || feature.copyFieldFrom(field, *a, column.sourceField);
        case Origin::FieldB:
            return b == nullptr || feature.copyFieldFrom(field, *b, column.sourceField);
        case Origin::Area:
            return feature.setFieldValue(field, area);
    }
    return false;
}

}  // namespace jws::detail
