// SPDX-License-Identifier: MIT
#include "overlay/overlay_slot.h"

#include <utility>

namespace jws::detail {

void Emitter::emit(std::unique_ptr<JWGeometry> geometry, const JWFeature* a, const JWFeature* b,
                   std::int64_t joined) {
    if (m_multipart || geometry->getGeometryType() != JWGeometryMultiPolygon) {
        add(std::move(geometry), a, b, joined);
        return;
    }
    auto& parts = static_cast<JWMultiPolygon&>(*geometry);
    for (int i = 0; i < parts.getPolygonCount(); ++i) {
        add(std::make_unique<JWPolygon>(std::move(*parts.getPolygonPtrAt(i))), a, b, joined);
    }
}

void Emitter::emit(BuiltArea&& built, const JWFeature* a, const JWFeature* b) {
    m_slot.dropped += built.dropped;
    if (built.geometry) emit(std::move(built.geometry), a, b);
}

void Emitter::add(std::unique_ptr<JWGeometry> geometry, const JWFeature* a, const JWFeature* b,
                  std::int64_t joined) {
    Slot::Result result;
    result.area = areaOf(*geometry);
    result.feature =
        m_schema.makeFeature(std::move(geometry), {a, b, joined, result.area}, result.lostField);
    if (m_prepareFor != nullptr) result.record = m_prepareFor->prepare(*result.feature);
    m_slot.results.push_back(std::move(result));
}

void Emitter::reject(const OverlayFeature& other, const char* reason) {
    m_slot.failures.push_back("with feature " + std::to_string(other->getFID64()) + " of layer " +
                              m_others.originOf(other.position).input->name() + ": " + reason);
}

}  // namespace jws::detail
