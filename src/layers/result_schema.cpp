// SPDX-License-Identifier: MIT
#include "layers/result_schema.h"

namespace jws::detail {
namespace {

JWField renamed(const JWField& field, const std::string& name) {
    JWField copy(name.c_str(), field.getFieldType(), field.getWidth(), field.getPrecision(),
                 field.getJustify());
    copy.setSubType(field.getSubType());
    return copy;
}

}  // namespace

ResultSchema::ResultSchema(FeatureInput& a, FeatureInput& b, const JWOverlayOptions& options) {
    const int mode = options.attributeMode;
    if (mode == 1 || mode == 2) {
        addIdentifier(a, Origin::IdentifierA, std::string("FID_") + a.name());
        addIdentifier(b, Origin::IdentifierB, std::string("FID_") + b.name());
    }
    if (mode != 1) {
        addFields(a, Origin::FieldA, {options.prefixA, b.fields()});
        addFields(b, Origin::FieldB, {options.prefixB, a.fields()});
    }
}

void ResultSchema::addJoinCount() {
    m_fields.emplace_back("join_count", JWFieldInteger);
    m_columns.push_back({Origin::JoinCount, 0});
}

void ResultSchema::addArea(const std::string& name) {
    if (name.empty()) return;
    m_fields.emplace_back(name.c_str(), JWFieldReal);
    m_columns.push_back({Origin::Area, 0});
}

int ResultSchema::addField(const JWField& field) {
    m_fields.push_back(field);
    m_columns.push_back({Origin::Given, 0});
    return static_cast<int>(m_fields.size()) - 1;
}

void ResultSchema::addIdentifier(FeatureInput& input, Origin origin, const std::string& name) {
    m_fields.emplace_back(name.c_str(),
                          input.identifiersFitInt() ? JWFieldInteger : JWFieldInteger64);
    m_columns.push_back({origin, 0});
}

void ResultSchema::addFields(const FeatureInput& input, Origin origin, const Prefix& prefix) {
    const JWFields* fields = input.fields();
    for (int i = 0; fields != nullptr && i < fields->getFieldCount(); ++i) {
        const JWField& field = *fields->getFieldPtr(i);
        const char* name = field.getFieldName();
        const bool shared = !prefix.text.empty() && prefix.other != nullptr &&
                            prefix.other->getFieldIndex(name) >= 0;
        m_fields.push_back(shared ? renamed(field, prefix.text + name) : field);
        m_columns.push_back({origin, i});
    }
}

void ResultSchema::create(FeatureOutput& output) { m_schema = output.createFields(m_fields); }

std::unique_ptr<JWFeature> ResultSchema::makeFeature(std::unique_ptr<JWGeometry> geometry,
                                                     const ResultValues& values,
                                                     std::string& lostField) const {
    auto feature = std::make_unique<JWFeature>(m_schema);
    feature->setGeometryDirectly(geometry.release());
    for (std::size_t k = 0; k < m_columns.size(); ++k) {
        const int field = static_cast<int>(k);
        if (!fill(*feature, field, m_columns[k], values)) lostField = m_fields[k].getFieldName();
    }
    return feature;
}

bool ResultSchema::fill(JWFeature& feature, int field, const Column& column,
                        const ResultValues& values) {
    const JWFeature *a = values.a, *b = values.b;
    switch (column.origin) {
        case Origin::IdentifierA:
            return a == nullptr || feature.setFieldValue(field, a->getFID64());
        case Origin::IdentifierB:
            return b == nullptr || feature.setFieldValue(field, b->getFID64());
        case Origin::FieldA:
            return a == nullptr || feature.copyFieldFrom(field, *a, column.sourceField);
        case Origin::FieldB:
            return b == nullptr || feature.copyFieldFrom(field, *b, column.sourceField);
        case Origin::JoinCount:
            return feature.setFieldValue(field, values.joined);
        case Origin::Area:
            return feature.setFieldValue(field, values.area);
        case Origin::Given:
            return true;
    }
    return false;
}

}  // namespace jws::detail
