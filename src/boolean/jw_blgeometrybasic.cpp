// SPDX-License-Identifier: MIT
//
// The public clipping functions: each gathers ring views, calls the one clip of ring_clip.h, and
// builds its own form of result. twoRingBoolean alone owns its operands, in the engine's form,
// since it may have to cut or stretch the second ring.
#include "jw_blgeometrybasic.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "boolean/ring_clip.h"
#include "boolean/ring_grouping.h"
#include "foundation/api_guard.h"

namespace jws {

struct gpc_polygon : ::gpc_polygon {};

namespace {

using namespace detail;

/// The views of the first `count` rings of a list; false when one is missing.
bool gatherRings(const std::vector<JWRing*>& rings, const std::vector<int>& flags, int count,
                 RingViews& views) {
    if (count > static_cast<int>(rings.size())) {
        JWReport::setError(JWErrorInvalidArgument, "the ring count exceeds the list of rings");
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (!rings[i]) return false;
        views.push_back(viewOf(*rings[i], i < static_cast<int>(flags.size()) ? flags[i] : 0));
    }
    return true;
}

RingViews gatherArea(const JWGeometry& geometry) {
    RingViews views;
    if (geometry.getGeometryType() == JWGeometryRing) {
        views.push_back(viewOf(static_cast<const JWRing&>(geometry), 0));
    } else {
        appendRings(geometry, views);
    }
    return views;
}

/// Turns outer rings clockwise and holes counter-clockwise and groups them into polygons.
JWMultiPolygon toPolygons(const ClippedContours& contours, Orphans orphans) {
    std::vector<JWRing> rings;
    std::vector<int> flags;
    rings.reserve(contours.count());
    for (int i = 0; i < contours.count(); ++i) {
        rings.push_back(contours.ring(i));
        flags.push_back(contours.hole(i));
        const double area = rings.back().getArea();
        if (flags.back() == 0 ? area > 0 : area < 0) rings.back().reverseOrientation();
    }
    return groupByContainment(std::move(rings), flags, orphans);
}

std::unique_ptr<JWPolygon> toOnePolygon(const ClippedContours& contours,
                                        std::vector<int>& outFlags) {
    auto polygon = std::make_unique<JWPolygon>();
    outFlags.clear();
    polygon->reserve(contours.count());
    for (int i = 0; i < contours.count(); ++i) {
        polygon->addRing(contours.ring(i));
        outFlags.push_back(contours.hole(i));
    }
    polygon->updateEnvelop();
    return polygon;
}

/// The result for rings that are apart; false for an operation that is none.
bool combineApart(const JWRing& a, const JWRing& b, enumJWBooleanType type, JWMultiPolygon& out) {
    switch (type) {
        case JWBooleanIntersection:
            return true;
        case JWBooleanDifference:
            out.addPolygon(JWPolygon(a));
            break;
        case JWBooleanXor:
        case JWBooleanUnion:
            out.addPolygon(JWPolygon(a));
            out.addPolygon(JWPolygon(b));
            break;
        default:
            return false;
    }
    out.updateEnvelop();
    return true;
}

}  // namespace

JWBLGeometryBasic::JWBLGeometryBasic() = default;
JWBLGeometryBasic::~JWBLGeometryBasic() = default;

int JWBLGeometryBasic::twoSurfaceObjectsBoolean(
    std::vector<JWRing*>& ringsA, std::vector<int>& flagsA, int countA,
    std::vector<JWRing*>& ringsB, std::vector<int>& flagsB, int countB, enumJWBooleanType type,
    std::vector<JWRing*>& outRings, std::vector<int>& outFlags) {
    return guarded("twoSurfaceObjectsBoolean", 0, [&] {
        RingViews a, b;
        if (!gatherRings(ringsA, flagsA, countA, a)) return 0;
        if (!gatherRings(ringsB, flagsB, countB, b)) return 0;
        const ClippedContours contours = clipRings(a, b, type);
        std::vector<std::unique_ptr<JWRing>> rings;
        rings.reserve(contours.count());
        for (int i = 0; i < contours.count(); ++i) {
            rings.push_back(std::make_unique<JWRing>(contours.ring(i)));
        }
        outRings.reserve(outRings.size() + rings.size());
        outFlags.reserve(outFlags.size() + rings.size());
        for (int i = 0; i < contours.count(); ++i) {
            outRings.push_back(rings[i].release());
            outFlags.push_back(contours.hole(i));
        }
        return contours.count();
    });
}

JWGeometry* JWBLGeometryBasic::twoSurfaceObjectsBoolean(const JWGeometry* a, const JWGeometry* b,
                                                        enumJWBooleanType type,
                                                        std::vector<int>& outFlags,
                                                        bool checkEnvelope, bool toMultiPolygon) {
    return guarded(
        "twoSurfaceObjectsBoolean", static_cast<JWGeometry*>(nullptr), [&]() -> JWGeometry* {
            if (!a || !b || a->isEmpty() || b->isEmpty()) return nullptr;
            if (checkEnvelope) {
                const JWEnvelop envelopA = a->getEnvelop();
                const JWEnvelop envelopB = b->getEnvelop();
                if (!envelopA.isValid() || !envelopB.isValid() || envelopA.isDisjoin(envelopB)) {
                    return nullptr;
                }
            }
            const RingViews ringsA = gatherArea(*a);
            const RingViews ringsB = gatherArea(*b);
            if (ringsA.empty() || ringsB.empty()) return nullptr;
            const ClippedContours contours = clipRings(ringsA, ringsB, type);
            if (contours.count() == 0) return nullptr;
            if (!toMultiPolygon) return toOnePolygon(contours, outFlags).release();
            return new JWMultiPolygon(toPolygons(contours, Orphans::Drop));
        });
}

int JWBLGeometryBasic::twoRingBoolean(const JWRing* a, const JWRing* b, enumJWBooleanType type,
                                      JWMultiPolygon* out) {
    return guarded("twoRingBoolean", 0, [&] {
        if (!a || !b || !out) return 0;
        if (a->getPointCount() < 4 && b->getPointCount() < 4) return 0;
        JWMultiPolygon result;  // built apart: the rings may lie in `out`
        const JWEnvelop envelopA = envelopOf(*a);
        const JWEnvelop envelopB = envelopOf(*b);
        if (envelopA.isValid() && envelopB.isValid() && envelopA.isDisjoin(envelopB)) {
            const bool known = combineApart(*a, *b, type, result);
            *out = std::move(result);
            return known ? 1 : 0;
        }
        using OperandPtr = std::unique_ptr<gpc_polygon, void (*)(gpc_polygon*)>;
        const OperandPtr operandA(ringOperand(*a, a->getSegmentCount()), __free_gpcpolyon);
        const OperandPtr operandB(ringOperand(*b, a->getSegmentCount()), __free_gpcpolyon);
        *out = toPolygons(clipPolygons(*operandA, *operandB, type), Orphans::JoinFirstRing);
        return 1;
    });
}

int JWBLGeometryBasic::twoMultiPolygonBoolean(const JWMultiPolygon* a, const JWMultiPolygon* b,
                                              enumJWBooleanType type, JWMultiPolygon* out) {
    return guarded("twoMultiPolygonBoolean", 0, [&] {
        if (!a || !b || !out) return 0;
        if (a->getRingCount() == 0 && b->getRingCount() == 0) return 0;
        const ClippedContours contours = clipRings(gatherArea(*a), gatherArea(*b), type);
        *out = toPolygons(contours, Orphans::JoinFirstRing);
        return 1;
    });
}

// Makes a one-contour operand of `vertexCount` vertices: the ring's corners, cut off or its last
// corner repeated to fit.
gpc_polygon* JWBLGeometryBasic::ringOperand(const JWRing& ring, int vertexCount) {
    const int corners = ring.getSegmentCount();
    int count = corners > 0 ? vertexCount : 0;
    gpc_polygon* operand = __malloc_gpcpolygon(1, &count);
    if (!operand) throw std::bad_alloc();
    operand->hole[0] = ring.getArea() > 0 ? 1 : 0;
    operand->contour[0].num_vertices = count;
    for (int i = 0; i < count; ++i) {
        const JWRawPoint& p = ring[std::min(i, corners - 1)];
        operand->contour[0].vertex[i] = {p.x, p.y};
    }
    return operand;
}

gpc_polygon* JWBLGeometryBasic::__malloc_gpcpolygon(int contourCount, int* vertexCounts) {
    const std::size_t count = std::max(contourCount, 0);
    auto* polygon = static_cast<gpc_polygon*>(std::malloc(sizeof(gpc_polygon)));
    if (!polygon) return nullptr;
    polygon->num_contours = static_cast<int>(count);
    polygon->hole = static_cast<int*>(std::calloc(count + 1, sizeof(int)));
    polygon->contour =
        static_cast<gpc_vertex_list*>(std::calloc(count + 1, sizeof(gpc_vertex_list)));
    bool complete = polygon->hole && polygon->contour;
    if (!polygon->contour) polygon->num_contours = 0;
    for (std::size_t i = 0; complete && i < count; ++i) {
        const std::size_t vertices = std::max(vertexCounts[i], 0);
        void* memory = std::malloc(std::max<std::size_t>(vertices * sizeof(gpc_vertex), 1));
        polygon->contour[i].vertex = static_cast<gpc_vertex*>(memory);
        complete = memory != nullptr;
    }
    if (complete) return polygon;
    __free_gpcpolyon(polygon);
    return nullptr;
}

void JWBLGeometryBasic::__free_gpcpolyon(gpc_polygon* polygon) {
    if (!polygon) return;
    for (int i = 0; i < polygon->num_contours; ++i) std::free(polygon->contour[i].vertex);
    std::free(polygon->contour);
    std::free(polygon->hole);
    std::free(polygon);
}

}  // namespace jws
