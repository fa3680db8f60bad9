// SPDX-License-Identifier: MIT
//
// Overlay of two polygon geometries: clip their rings, drop slivers, build polygons.
//
// No ring is made before it is known to be wanted: rings of the operands are borrowed, contours
// stay in the engine's memory, and each one that is kept becomes a ring once and is moved into its
// polygon. The lists in between belong to the thread and keep their memory, so that a call
// allocates for the engine and for its result only.
#include "overlay/geometry_overlay.h"

#include <cmath>
#include <utility>

#include "boolean/ring_clip.h"
#include "boolean/ring_grouping.h"

namespace jws::detail {
namespace {

/// Touching envelopes count as apart: what they have in common has no area.
bool overlap(const JWGeometry& a, const JWGeometry& b) {
    return envelopOf(a).intersected(envelopOf(b));
}

std::unique_ptr<JWGeometry> copyOf(const JWGeometry& geometry) {
    return std::unique_ptr<JWGeometry>(geometry.clone());
}

void append(OverlayPieces& pieces, std::unique_ptr<JWGeometry> geometry, int origin) {
    if (geometry) pieces.push_back({std::move(geometry), origin});
}

OverlayPieces copiesOfBoth(const JWGeometry& a, const JWGeometry& b) {
    OverlayPieces pieces;
    append(pieces, copyOf(a), OriginA);
    append(pieces, copyOf(b), OriginB);
    return pieces;
}

/// The rings of both operands, in lists that each thread keeps. Good until the thread's next call
/// of it.
struct Operands {
    RingViews a;
    RingViews b;
};

const Operands& gather(const JWGeometry& a, const JWGeometry& b) {
    thread_local Operands operands;
    emptyKept(operands.a);
    emptyKept(operands.b);
    appendRings(a, operands.a);
    appendRings(b, operands.b);
    return operands;
}

/// One outer ring takes every hole, untested.
std::unique_ptr<JWGeometry> assembleOne(JWRing&& outer, std::vector<JWRing>& holes) {
    auto polygon = std::make_unique<JWPolygon>(std::move(outer));
    if (holes.empty()) return polygon;
    JWEnvelop envelop = polygon->getEnvelop();
    polygon->reserve(1 + static_cast<int>(holes.size()));
    for (JWRing& hole : holes) {
        envelop.inflates_to_contain(hole.getEnvelop());
        polygon->addRing(std::move(hole));
    }
    polygon->setEnvelop(envelop);
    holes.clear();
    return polygon;
}

std::unique_ptr<JWGeometry> build(const ClippedContours& contours, double tolerance) {
    return buildArea(contours, tolerance).geometry;
}

std::unique_ptr<JWGeometry> clip(const RingViews& a, const RingViews& b, enumJWBooleanType type,
                                 double tolerance) {
    return build(clipRings(a, b, type), tolerance);
}

RingViews viewsOf(const ClippedContours& contours) {
    RingViews views;
    for (int i = 0; i < contours.count(); ++i) views.push_back(contours.view(i));
    return views;
}

/// Tells where a polygon of A xor B comes from: by how much of its area lies in A. One that is
/// neither wholly nor not at all in A holds a part of each, meeting along an edge, or a hole below
/// the tolerance was filled in it; then what lies in just one of the two decides.
int originOf(const JWPolygon& piece, const Operands& operands) {
    constexpr double rounding = 1e-9;
    RingViews rings;
    appendRings(piece, rings);
    const ClippedContours inA = clipRings(rings, operands.a, JWBooleanIntersection);
    const double share = areaOf(inA) / piece.getArea();
    if (share > 1 - rounding) return OriginA;
    if (share < rounding) return OriginB;
    const ClippedContours inB = clipRings(rings, operands.b, JWBooleanIntersection);
    const double limit = rounding * piece.getArea();
    if (areaOf(clipRings(viewsOf(inB), operands.a, JWBooleanDifference)) < limit) return OriginA;
    if (areaOf(clipRings(viewsOf(inA), operands.b, JWBooleanDifference)) < limit) return OriginB;
    return OriginMerged;
}

}  // namespace

BuiltArea buildArea(const ClippedContours& contours, double tolerance) {
    thread_local std::vector<JWRing> outers, holes;
    emptyKept(outers);
    emptyKept(holes);
    BuiltArea built;
    for (int i = 0; i < contours.count(); ++i) {
        JWRing ring = contours.ring(i);
        const double area = std::fabs(ring.getArea());
        built.area += contours.hole(i) == 0 ? area : -area;
        if (area < tolerance) {
            built.dropped += contours.hole(i) == 0 ? area : -area;
        } else {
            (contours.hole(i) == 0 ? outers : holes).push_back(std::move(ring));
        }
    }
    if (outers.size() == 1) {
        built.geometry = assembleOne(std::move(outers.front()), holes);
    } else if (outers.size() > 1) {
        built.geometry = std::make_unique<JWMultiPolygon>(groupFirstFit(outers, holes));
    }
    return built;
}

std::unique_ptr<JWGeometry> intersect(const JWGeometry& a, const JWGeometry& b, double tolerance) {
    if (!overlap(a, b)) return nullptr;
    const Operands& rings = gather(a, b);
    return clip(rings.a, rings.b, JWBooleanIntersection, tolerance);
}

std::unique_ptr<JWGeometry> erase(const JWGeometry& a, const JWGeometry& b, double tolerance) {
    if (!overlap(a, b)) return copyOf(a);
    const Operands& rings = gather(a, b);
    return clip(rings.a, rings.b, JWBooleanDifference, tolerance);
}

std::unique_ptr<JWGeometry> unite(const JWGeometry& a, const JWGeometry& b, double tolerance) {
    const Operands& rings = gather(a, b);
    return clip(rings.a, rings.b, JWBooleanUnion, tolerance);
}

std::unique_ptr<JWGeometry> uniteAll(const std::vector<const JWGeometry*>& geometries,
                                     double tolerance) {
    struct Item {
        const JWGeometry* geometry;
        std::unique_ptr<JWGeometry> owned;
    };
    std::vector<Item> items;
    for (const JWGeometry* geometry : geometries) {
        if (geometry) items.push_back({geometry, nullptr});
    }
    while (items.size() > 1) {
        std::vector<Item> next;
        next.reserve(items.size() / 2 + 1);
        for (std::size_t i = 0; i + 1 < items.size(); i += 2) {
            auto united = unite(*items[i].geometry, *items[i + 1].geometry, tolerance);
            const JWGeometry* geometry = united.get();
            if (geometry) next.push_back({geometry, std::move(united)});
        }
        if (items.size() % 2 == 1) next.push_back(std::move(items.back()));
        items = std::move(next);
    }
    if (items.empty()) return nullptr;
    if (items.front().owned) return std::move(items.front().owned);
    return copyOf(*items.front().geometry);
}

OverlayPieces symmetricalDifference(const JWGeometry& a, const JWGeometry& b, double tolerance) {
    if (!overlap(a, b)) return copiesOfBoth(a, b);
    const Operands& rings = gather(a, b);
    OverlayPieces pieces;
    append(pieces, clip(rings.a, rings.b, JWBooleanDifference, tolerance), OriginA);
    append(pieces, clip(rings.b, rings.a, JWBooleanDifference, tolerance), OriginB);
    return pieces;
}

OverlayPieces symmetricalDifferenceAtOnce(const JWGeometry& a, const JWGeometry& b,
                                          double tolerance) {
    if (!overlap(a, b)) return copiesOfBoth(a, b);
    const Operands& rings = gather(a, b);
    std::unique_ptr<JWGeometry> whole = clip(rings.a, rings.b, JWBooleanXor, tolerance);
    OverlayPieces pieces;
    if (!whole) return pieces;
    if (whole->getGeometryType() == JWGeometryPolygon) {
        const int origin = originOf(static_cast<const JWPolygon&>(*whole), rings);
        append(pieces, std::move(whole), origin);
        return pieces;
    }
    auto& polygons = static_cast<JWMultiPolygon&>(*whole);
    std::vector<JWPolygon> byOrigin[3];
    for (int i = 0; i < polygons.getPolygonCount(); ++i) {
        JWPolygon& polygon = *polygons.getPolygonPtrAt(i);
        byOrigin[originOf(polygon, rings)].push_back(std::move(polygon));
    }
    for (const int origin : {OriginA, OriginB, OriginMerged}) {
        if (byOrigin[origin].size() == 1) {
            append(pieces, std::make_unique<JWPolygon>(std::move(byOrigin[origin].front())),
                   origin);
        } else if (!byOrigin[origin].empty()) {
            auto multi = std::make_unique<JWMultiPolygon>();
            multi->addPolygons(std::move(byOrigin[origin]));
            multi->updateEnvelop();
            append(pieces, std::move(multi), origin);
        }
    }
    return pieces;
}

OverlayPieces identity(const JWGeometry& a, const JWGeometry& b, double tolerance) {
    OverlayPieces pieces;
    if (overlap(a, b)) {
        const Operands& rings = gather(a, b);
        const ClippedContours common = clipRings(rings.a, rings.b, JWBooleanIntersection);
        append(pieces, build(common, tolerance), OriginB);
        if (!pieces.empty()) {
            // The rest is A without the common part, rings below the tolerance included.
            append(pieces, clip(rings.a, viewsOf(common), JWBooleanDifference, tolerance), OriginA);
            return pieces;
        }
    }
    append(pieces, copyOf(a), OriginA);
    return pieces;
}

OverlayPieces update(const JWGeometry& a, const JWGeometry& b, bool keepBorders, double tolerance) {
    if (!overlap(a, b)) return copiesOfBoth(a, b);
    OverlayPieces pieces;
    if (!keepBorders && intersect(a, b, tolerance)) {
        append(pieces, unite(a, b, tolerance), OriginMerged);
        return pieces;
    }
    append(pieces, erase(a, b, tolerance), OriginA);
    append(pieces, copyOf(b), OriginB);
    return pieces;
}

int handOver(OverlayPieces&& pieces, std::vector<JWGeometry*>& geometries,
             std::vector<int>& origins) {
    geometries.reserve(geometries.size() + pieces.size());
    origins.reserve(origins.size() + pieces.size());
    for (OverlayPiece& piece : pieces) {
        geometries.push_back(piece.geometry.release());
        origins.push_back(piece.origin);
    }
    return static_cast<int>(pieces.size());
}

}  // namespace jws::detail
