// SPDX-License-Identifier: MIT
#include "overlay/overlay_slot.h"

#include <cmath>
#include <utility>

namespace jws::detail {
namespace {

bool isMulti(const JWGeometry& geometry) {
    return geometry.getGeometryType() == JWGeometryMultiPolygon;
}

}  // namespace

void Emitter::emitCopy(const OverlayFeature& self, const JWFeature* a, const JWFeature* b,
                       std::int64_t joined) {
    const Values values = {a, b, joined};
    // Parts that overlap, or lie in one another, are not what the feature encloses.
    if (!m_multipart && isMulti(self.geometry()) &&
        static_cast<const JWMultiPolygon&>(self.geometry()).getPolygonCount() > 1) {
        emitParts(self, values);
    } else {
        add(std::unique_ptr<JWGeometry>(self.geometry().clone()), values, m_slot.inputArea);
    }
    ++m_slot.copies;
}

/// A join copies one feature for each that it overlaps: the engine is asked once.
void Emitter::emitParts(const OverlayFeature& self, const Values& values) {
    if (!m_whole) m_whole = buildArea(clipRings(self.area.rings(), {}, JWBooleanUnion), 0);
    std::unique_ptr<JWGeometry> copy(m_whole->geometry ? m_whole->geometry->clone() : nullptr);
    emitBuilt({std::move(copy), m_whole->area, m_whole->dropped}, values);
}

void Emitter::emit(BuiltArea&& built, const JWFeature* a, const JWFeature* b) {
    emitBuilt(std::move(built), {a, b, 0});
}

void Emitter::emitBuilt(BuiltArea&& built, const Values& values) {
    m_slot.dropped += built.dropped;
    double added = 0;
    if (built.geometry) {
        const double area = areaOf(*built.geometry);
        added = add(std::move(built.geometry), values, area);
    }
    m_slot.mismatch += std::fabs(built.area - built.dropped - added);
}

double Emitter::add(std::unique_ptr<JWGeometry> geometry, const Values& values, double area) {
    if (m_multipart || !isMulti(*geometry)) {
        addResult(std::move(geometry), values, area);
        return area;
    }
    double sum = 0;
    auto& parts = static_cast<JWMultiPolygon&>(*geometry);
    const bool isOne = parts.getPolygonCount() == 1;
    for (int i = 0; i < parts.getPolygonCount(); ++i) {
        auto part = std::make_unique<JWPolygon>(std::move(*parts.getPolygonPtrAt(i)));
        const double partArea = isOne ? area : part->getArea();
        addResult(std::move(part), values, partArea);
        sum += partArea;
    }
    return sum;
}

void Emitter::addResult(std::unique_ptr<JWGeometry> geometry, const Values& values, double area) {
    PendingResult result;
    result.area = area;
    result.feature = m_schema.makeFeature(
        std::move(geometry), {values.a, values.b, values.joined, area}, result.lostField);
    m_slot.results.add(std::move(result), m_grew);
}

void Emitter::emitEmpty(const JWFeature& a) {
    PendingResult result;
    result.isEmpty = true;
    result.feature = m_schema.makeFeature(nullptr, {&a}, result.lostField);
    m_slot.results.add(std::move(result), m_grew);
}

void Emitter::lose(const OverlayFeature& other, const char* reason) {
    m_slot.lost.push_back({m_others.originOf(other.position).input, other->getFID64(), reason});
}

void Emitter::noteCluster(const Hits& members) {
    if (!JWReport::messagesAreOn()) return;
    for (void* member : members) m_slot.cluster.push_back(positionOf(member));
}

void Emitter::reject(const OverlayFeature& other, const char* reason) {
    m_slot.failures.push_back("with feature " + std::to_string(other->getFID64()) + " of layer " +
                              m_others.originOf(other.position).input->name() + ": " + reason);
}

}  // namespace jws::detail
