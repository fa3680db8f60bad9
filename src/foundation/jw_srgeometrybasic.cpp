// SPDX-License-Identifier: MIT
//
// Containment tests coded 1, 0 and 9999, and closest points. The vertices of a ring are located in
// another one through a RingLocator once the work of the plain walks would exceed building it; both
// answer the same.
#include "jw_srgeometrybasic.h"

#include "foundation/api_guard.h"
#include "foundation/ring_position.h"
#include "foundation/segment_math.h"
#include "jw_cpgeometrybasic.h"

namespace jws {

using namespace detail;

namespace {

/// From this many edges of the outer ring on, it gets an index.
constexpr int kIndexedRingPoints = 64;

template <class... Pointers>
bool anyNull(const Pointers*... pointers) {
    return (... || (pointers == nullptr));
}

template <class IsWithin>
bool everyVertex(const JWRing& ring, IsWithin&& isWithin) {
    const JWRawPoint* points = ring.getPointsPtr();
    const int vertices = ring.getPointCount() - 1;
    for (int i = 0; i < vertices; ++i)
        if (!isWithin(points[i])) return false;
    return true;
}

bool everyVertexIndexed(const JWRing& inner, const JWRing& outer) {
    const RingLocator locator(outer.getPointsPtr(), outer.getPointCount());
    const JWEnvelop envelop = outer.getEnvelop();
    return everyVertex(inner, [&](const JWRawPoint& p) {
        return envelop.contains(p) && (locator.contains(p) || locator.onBoundary(p));
    });
}

double closestPoint(const JWRawPoint& p, const JWRawPoint& closest, JWRawPoint& q) {
    const double distance = pointDistance(p, closest);
    q = closest;
    return distance;
}

}  // namespace

JWSRGeometryBasic::JWSRGeometryBasic() = default;
JWSRGeometryBasic::JWSRGeometryBasic(const JWSRGeometryBasic&) = default;
JWSRGeometryBasic& JWSRGeometryBasic::operator=(const JWSRGeometryBasic&) = default;
JWSRGeometryBasic::~JWSRGeometryBasic() = default;

int JWSRGeometryBasic::isPointWithinEnvelop(const JWRawPoint& p, const JWEnvelop& envelop) {
    return envelop.contains(p);
}

int JWSRGeometryBasic::isSegmentWithinEnvelop(const JWRawPoint& a, const JWRawPoint& b,
                                              const JWEnvelop& envelop) {
    return envelop.contains(a) && envelop.contains(b);
}

int JWSRGeometryBasic::isEnvelopWithinEnvelop(const JWEnvelop& inner, const JWEnvelop& outer) {
    return outer.contains(inner.bottom_left()) && outer.contains(inner.top_right());
}

int JWSRGeometryBasic::isPointWithinRing(const JWRawPoint& p, const JWRing& ring) {
    if (!ring.getEnvelop().contains(p)) return 0;
    return JWCPGeometryBasic::isPointWithinRingCN(&p, &ring) == 1 ||
           JWCPGeometryBasic::isPointOnRing(&p, &ring, 0) == 1;
}

int JWSRGeometryBasic::isRingWithinRing(const JWRing* inner, const JWRing* outer) {
    if (anyNull(inner, outer)) return kNoAnswer;
    if (inner->getPointCount() < 4 || outer->getPointCount() < 4) return kNoAnswer;
    if (!isEnvelopWithinEnvelop(inner->getEnvelop(), outer->getEnvelop())) return 0;
    if (inner->getPointCount() < 8 || outer->getPointCount() < kIndexedRingPoints)
        return everyVertex(*inner,
                           [&](const JWRawPoint& p) { return isPointWithinRing(p, *outer); });
    return guarded("isRingWithinRing", kNoAnswer,
                   [&]() -> int { return everyVertexIndexed(*inner, *outer); });
}

double JWSRGeometryBasic::shortestPointToSegment(const JWRawPoint& p, const JWRawPoint& a,
                                                 const JWRawPoint& b, JWRawPoint& q) {
    return closestPoint(p, closestOnSegment(p, a, b), q);
}

double JWSRGeometryBasic::shortestPointToLine(const JWRawPoint& p, const JWRawPoint& a,
                                              const JWRawPoint& b, JWRawPoint& q) {
    const JWRawPoint v = difference(b, a);
    return closestPoint(p, pointAlong(a, v, dot(difference(p, a), v) / dot(v, v)), q);
}

// The pointer forms.

int JWSRGeometryBasic::isPointWithinEnvelop(const JWRawPoint* p, const JWEnvelop* envelop) {
    if (p == nullptr || envelop == nullptr) return kNoAnswer;
    return isPointWithinEnvelop(*p, *envelop);
}

int JWSRGeometryBasic::isSegmentWithinEnvelop(const JWRawPoint* a, const JWRawPoint* b,
                                              const JWEnvelop* envelop) {
    if (anyNull(a, b) || envelop == nullptr) return kNoAnswer;
    return isSegmentWithinEnvelop(*a, *b, *envelop);
}

int JWSRGeometryBasic::isEnvelopWithinEnvelop(const JWEnvelop* inner, const JWEnvelop* outer) {
    return anyNull(inner, outer) ? kNoAnswer : isEnvelopWithinEnvelop(*inner, *outer);
}

int JWSRGeometryBasic::isPointWithinRing(const JWRawPoint* p, const JWRing* ring) {
    if (p == nullptr || ring == nullptr) return kNoAnswer;
    return isPointWithinRing(*p, *ring);
}

double JWSRGeometryBasic::shortestPointToSegment(const JWRawPoint* p, const JWRawPoint* a,
                                                 const JWRawPoint* b, JWRawPoint* q) {
    return anyNull(p, a, b, q) ? -1.0 : shortestPointToSegment(*p, *a, *b, *q);
}

double JWSRGeometryBasic::shortestPointToLine(const JWRawPoint* p, const JWRawPoint* a,
                                              const JWRawPoint* b, JWRawPoint* q) {
    return anyNull(p, a, b, q) ? -1.0 : shortestPointToLine(*p, *a, *b, *q);
}

}  // namespace jws
