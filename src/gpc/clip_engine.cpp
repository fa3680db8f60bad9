// SPDX-License-Identifier: MIT
//
// The clipping engine.
//
// Four steps, each a file of its own: contour_set.h reads the operands; noding.h splits their
// edges until they meet at shared points only, exactly; arrangement.h labels what lies on either
// side of every stretch of boundary; contour_builder.h traces the result. Coordinates stay doubles
// throughout: an input vertex keeps its bits, only crossings are rounded, and the arrangement is
// exact after rounding, so that contours are valid without any tolerance.
//
// This file clips one operand by another; clip_many.cpp has what takes any number of them, frame.h
// the scale that all work in.
//
// O((n + k) log n) for n vertices and k crossings.
#include "gpc/clip_engine.h"

#include "gpc/clip_scratch.h"

namespace jws::gpc {
namespace {

Box overlapOf(const Box& a, const Box& b) {
    Box w;
    w.minX = a.minX > b.minX ? a.minX : b.minX;
    w.minY = a.minY > b.minY ? a.minY : b.minY;
    w.maxX = a.maxX < b.maxX ? a.maxX : b.maxX;
    w.maxY = a.maxY < b.maxY ? a.maxY : b.maxY;
    return w;
}

bool boundsOf(const Operand& o, Box& box) {
    if (!o.prepared) return !o.polygon || boundsOf(*o.polygon, box);
    box = o.prepared->box();
    return o.prepared->isFinite();
}

void add(const Operand& o, ContourSet& set, int mask, const Scale& scale, const Box* window) {
    if (o.prepared) {
        o.prepared->addTo(set, mask, scale, window);
    } else if (o.polygon) {
        set.add(*o.polygon, mask, scale, window);
    }
}

Rule ruleOf(gpc_op op) {
    switch (op) {
        case GPC_DIFF:
            return {Rule::kDifference};
        case GPC_INT:
            return {Rule::kIntersection};
        case GPC_XOR:
            return {Rule::kXor};
        default:
            return {Rule::kUnion};
    }
}

int clipInto(gpc_op op, const Operand& a, const Operand& b, gpc_polygon& result) {
    Box boxA;
    Box boxB;
    if (!boundsOf(a, boxA) || !boundsOf(b, boxB)) return EDOM;
    const bool meet = boxA.overlaps(boxB);
    if (op == GPC_INT && !meet) return 0;
    Box all = boxA;
    all.include(boxB);
    if (isEmpty(all)) return 0;
    const Frame frame(all);
    Engine& e = engine();
    const Trim trim;
    e.set.clear();
    const Box overlap = frame.to(overlapOf(boxA, boxB));
    const Box nearA = frame.to(boxA);
    add(a, e.set, 1, frame.to, op == GPC_INT ? &overlap : nullptr);
    if (op != GPC_DIFF || meet) {
        add(b, e.set, 2, frame.to, op == GPC_INT ? &overlap : op == GPC_DIFF ? &nearA : nullptr);
    }
    e.arrange(e.set, frame, false);
    e.builder.build(e.arrangement, ruleOf(op), frame.from, result);
    return 0;
}

}  // namespace

int clip(gpc_op op, const Operand& subject, const Operand& other, gpc_polygon& result) noexcept {
    return guarded(result, [&] { return clipInto(op, subject, other, result); });
}

}  // namespace jws::gpc
