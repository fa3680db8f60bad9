// SPDX-License-Identifier: MIT
//
// JWFeatureClass, features in memory: it owns them and copies of it are deep. The envelope is that
// of the last call that worked it out.
#include <utility>

#include "jw_feature.h"

namespace jws {

JWFeatureClass::JWFeatureClass() : m_envelop(JWEnvelop::invalid()) {}

JWFeatureClass::JWFeatureClass(const JWFeatureClass& other)
    : m_geometryType(other.m_geometryType), m_envelop(other.m_envelop) {
    m_features.reserve(other.m_features.size());
    for (const auto& feature : other.m_features) {
        m_features.push_back(std::make_unique<JWFeature>(*feature));
    }
    setSpatialReference(other.getSpatialReference());
}

JWFeatureClass& JWFeatureClass::operator=(const JWFeatureClass& other) {
    if (this == &other) return *this;
    JWFeatureClass copy(other);
    m_features.swap(copy.m_features);
    m_geometryType = copy.m_geometryType;
    m_envelop = copy.m_envelop;
    m_reference = std::move(copy.m_reference);
    return *this;
}

JWFeatureClass::~JWFeatureClass() = default;

JWFeature* JWFeatureClass::getFeatureAt(int i) const {
    return i >= 0 && i < getFeatureCount() ? m_features[static_cast<std::size_t>(i)].get()
                                           : nullptr;
}

void JWFeatureClass::addFeature(JWFeature* feature) {
    if (feature == nullptr) return;
    std::unique_ptr<JWFeature> owned(feature);
    m_features.push_back(std::move(owned));
}

void JWFeatureClass::deleteFeatureAt(int i) {
    if (i >= 0 && i < getFeatureCount()) m_features.erase(m_features.begin() + i);
}

void JWFeatureClass::clearAll() { m_features.clear(); }

void JWFeatureClass::updateEnvelop() {
    m_envelop.setInvalid();
    for (const auto& feature : m_features) {
        JWGeometry* geometry = feature->getGeometryPtr();
        if (geometry == nullptr) continue;
        geometry->updateEnvelop();
        m_envelop.inflates_to_contain(geometry->getEnvelop());
    }
}

void JWFeatureClass::setSpatialReference(const JWSpatialReference* reference) {
    if (reference == m_reference.get()) return;
    m_reference = reference != nullptr ? std::make_unique<JWSpatialReference>(*reference) : nullptr;
}

}  // namespace jws
