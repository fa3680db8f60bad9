// SPDX-License-Identifier: MIT
//
// The one body of every polygon clip: ring views and an operation in, contours out.
//
// Operands are handed to the engine without copying: a contour record points at the ring's own
// points, and the records lie in memory that each thread keeps. Before that, what cannot reach the
// answer is left out: an intersection lies in the rectangle common to both operands, a difference
// in the first operand's rectangle (ring_window.h). So a large polygon costs a small partner one
// scan.
#include "boolean/ring_clip.h"

#include <cerrno>
#include <cmath>
#include <cstddef>
#include <new>

#include "boolean/ring_window.h"
#include "foundation/pulse.h"
#include "jw_report.h"

namespace jws::detail {
namespace {

static_assert(sizeof(gpc_vertex) == sizeof(JWRawPoint) &&
                  offsetof(gpc_vertex, x) == offsetof(JWRawPoint, x) &&
                  offsetof(gpc_vertex, y) == offsetof(JWRawPoint, y),
              "the engine reads rings in place");

/// What a thread keeps between clips for one operand.
struct Operand {
    std::vector<JWEnvelop> envelops;  // one per view
    JWEnvelop envelop;
    RingViews kept;
    RingSet shortened;
    std::vector<int> holes;
    std::vector<gpc_vertex_list> contours;
};

/// Returns false when a coordinate is not finite.
bool measure(const RingViews& rings, Operand& operand) {
    double sum = 0;  // times zero: NaN as soon as one coordinate is not finite
    emptyKept(operand.envelops);
    operand.envelop = JWEnvelop::invalid();
    for (const RingView& ring : rings) {
        JWEnvelop e = JWEnvelop::invalid();
        if (ring.count > 0) e.set(ring.points->x, ring.points->y, ring.points->x, ring.points->y);
        for (int i = 0; i < ring.count; ++i) {
            const JWRawPoint p = ring.points[i];
            sum += p.x * 0.0 + p.y * 0.0;
            e.minX = p.x < e.minX ? p.x : e.minX;
            e.minY = p.y < e.minY ? p.y : e.minY;
            e.maxX = p.x > e.maxX ? p.x : e.maxX;
            e.maxY = p.y > e.maxY ? p.y : e.maxY;
        }
        operand.envelops.push_back(e);
        operand.envelop.inflates_to_contain(e);
    }
    return sum == 0;
}

void keepAll(const RingViews& rings, Operand& operand) {
    emptyKept(operand.kept);
    operand.kept.insert(operand.kept.end(), rings.begin(), rings.end());
}

void keepWithin(const RingViews& rings, const JWEnvelop& box, Operand& operand) {
    emptyKept(operand.kept);
    operand.shortened.clear();
    for (std::size_t i = 0; i < rings.size(); ++i) {
        if (operand.envelops[i].isDisjoin(box)) continue;
        if (box.isContain(operand.envelops[i])) {
            operand.kept.push_back(rings[i]);
        } else {
            Shortener shortener(box, operand.shortened);
            shortener.takeAll(rings[i]);
            shortener.end(rings[i].hole);
        }
    }
    for (int i = 0; i < operand.shortened.count(); ++i) {
        operand.kept.push_back(operand.shortened.view(i));
    }
}

::gpc_polygon borrow(Operand& operand) {
    emptyKept(operand.holes);
    emptyKept(operand.contours);
    for (const RingView& ring : operand.kept) {
        if (ring.count < 3) continue;
        auto* points = const_cast<JWRawPoint*>(ring.points);  // the engine only reads operands
        operand.holes.push_back(ring.hole);
        operand.contours.push_back({ring.count, reinterpret_cast<gpc_vertex*>(points)});
    }
    return {static_cast<int>(operand.contours.size()), operand.holes.data(),
            operand.contours.data()};
}

gpc_op engineOperation(enumJWBooleanType type) {
    switch (type) {
        case JWBooleanDifference:
            return GPC_DIFF;
        case JWBooleanIntersection:
            return GPC_INT;
        case JWBooleanXor:
            return GPC_XOR;
        default:
            return GPC_UNION;
    }
}

}  // namespace

RingView ClippedContours::view(int i) const {
    const gpc_vertex_list& contour = m_polygon.contour[i];
    return {reinterpret_cast<const JWRawPoint*>(contour.vertex), contour.num_vertices,
            m_polygon.hole[i]};
}

RingViews ClippedContours::views() const {
    RingViews all;
    all.reserve(static_cast<std::size_t>(count()));
    for (int i = 0; i < count(); ++i) all.push_back(view(i));
    return all;
}

JWRing ClippedContours::ring(int i) const {
    const RingView contour = view(i);
    return {contour.points, contour.count};
}

ClippedContours::ClippedContours(const ::gpc_polygon& polygon, int failure) : m_polygon(polygon) {
    if (failure == ENOMEM) throw std::bad_alloc();
    if (failure == ERANGE) throw ClipFailure();
    if (failure == ECANCELED) Pulse::throwAgain();
    if (failure == EDOM) {
        JWReport::setError(JWErrorInvalidArgument, "a coordinate of a polygon is not finite");
    }
}

ClippedContours clipPolygons(::gpc_polygon& a, ::gpc_polygon& b, enumJWBooleanType type) {
    ::gpc_polygon result = {};
    const int before = errno;
    errno = 0;
    gpc_polygon_clip(engineOperation(type), &a, &b, &result);
    const int failure = result.num_contours == 0 ? errno : 0;
    errno = before;
    return {result, failure};
}

double areaOf(const ClippedContours& contours) {
    double area = 0;
    for (int i = 0; i < contours.count(); ++i) {
        const double contour = areaOf(contours.view(i));
        area += contours.hole(i) == 0 ? contour : -contour;
    }
    return area;
}

ClippedContours clipRings(const RingViews& a, const RingViews& b, enumJWBooleanType type) {
    thread_local Operand operandA, operandB;
    const bool finiteA = measure(a, operandA);
    const bool finiteB = measure(b, operandB);
    if (!finiteA || !finiteB) {
        JWReport::setError(JWErrorInvalidArgument, "a coordinate of a polygon is not finite");
        return {};
    }
    if (type == JWBooleanIntersection) {
        JWEnvelop common;
        if (!common.intersect(operandA.envelop, operandB.envelop)) return {};
        keepWithin(a, common, operandA);
        keepWithin(b, common, operandB);
    } else {
        keepAll(a, operandA);
        if (type == JWBooleanDifference) {
            keepWithin(b, operandA.envelop, operandB);
        } else {
            keepAll(b, operandB);
        }
    }
    ::gpc_polygon subject = borrow(operandA);
    ::gpc_polygon clip = borrow(operandB);
    return clipPolygons(subject, clip, type);
}

}  // namespace jws::detail
