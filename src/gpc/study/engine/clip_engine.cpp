// SPDX-License-Identifier: MIT
//
// The clipping engine.
//
// Four steps, each a file of its own: contour_set.h reads the operands; noding.h splits their
// edges until they meet at shared points only, exactly; arrangement.h labels what lies on either
// side of every stretch of boundary; contour_builder.h traces the result. Coordinates stay doubles
// throughout: an input vertex keeps its bits, only crossings are rounded, and the arrangement is
// exact after rounding, so that no tolerance appears anywhere.
//
// A union of many polygons first resolves each for itself, so that its contours run with the
// inside on their left; then one arrangement of all of them counts how many polygons cover each
// area. Every pair of boundaries is compared once, where unions two by two would compare the
// growing result again and again.
//
// Magnitudes far from one are brought near it by a power of two, lest products overflow.
// Scratch memory belongs to the thread and is kept between calls unless it has grown large.
#include "clip_engine.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <new>

#include "contour_builder.h"

namespace jws::gpc {
namespace {

constexpr std::size_t kKeptScratch = std::size_t{64} << 20;

struct Engine {
    ContourSet set;
    ContourSet resolved;
    Noder noder;
    Arrangement arrangement;
    ContourBuilder builder;

    void trim() {
        if (set.points.bytes() + resolved.points.bytes() + noder.bytes() + arrangement.bytes() +
                builder.bytes() <=
            kKeptScratch) {
            return;
        }
        set.release();
        resolved.release();
        noder.release();
        arrangement.release();
        builder.release();
    }

    void arrange(ContourSet& contours, int exponent, bool depth) {
        contours.flags.fill(contours.points.size(), 0);
        noder.run(contours, exponent);
#ifdef JW_GPC_SELF_CHECK
        if (noder.countConflicts() != 0) std::abort();
#endif
        arrangement.build(noder, depth);
    }
};

Engine& engine() {
    thread_local Engine scratch;
    return scratch;
}

struct Trim {
    ~Trim() { engine().trim(); }
};

/// Factors that bring the coordinates within a box near one, and back; ones where they are near.
/// `exponent`: scaled coordinates are below 2^exponent.
struct Scale {
    double to[2];
    double from[2];
    int exponent = 0;

    explicit Scale(const Box& box) {
        const double reach = std::fmax(std::fmax(std::fabs(box.minX), std::fabs(box.maxX)),
                                       std::fmax(std::fabs(box.minY), std::fabs(box.maxY)));
        std::frexp(reach, &exponent);
        const int shift = exponent > -200 && exponent < 200 ? 0 : -exponent;
        exponent += shift;
        to[0] = std::ldexp(1.0, shift / 2);
        to[1] = std::ldexp(1.0, shift - shift / 2);
        from[0] = std::ldexp(1.0, -(shift / 2));
        from[1] = std::ldexp(1.0, -(shift - shift / 2));
    }
};

Box overlapOf(const Box& a, const Box& b) {
    Box w;
    w.minX = a.minX > b.minX ? a.minX : b.minX;
    w.minY = a.minY > b.minY ? a.minY : b.minY;
    w.maxX = a.maxX < b.maxX ? a.maxX : b.maxX;
    w.maxY = a.maxY < b.maxY ? a.maxY : b.maxY;
    return w;
}

bool isEmpty(const Box& box) { return !(box.minX <= box.maxX); }

bool boundsOf(const Operand& o, Box& box) {
    if (!o.prepared) return !o.polygon || boundsOf(*o.polygon, box);
    box = o.prepared->box();
    return o.prepared->isFinite();
}

void add(const Operand& o, ContourSet& set, int mask, const Scale& scale, const Box* window) {
    if (o.prepared) {
        o.prepared->addTo(set, mask, scale.to, window);
    } else if (o.polygon) {
        set.add(*o.polygon, mask, scale.to, window);
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
    const Scale scale(all);
    Engine& e = engine();
    const Trim trim;
    e.set.clear();
    const Box overlap = scaledBox(overlapOf(boxA, boxB), scale.to);
    const Box nearA = scaledBox(boxA, scale.to);
    add(a, e.set, 1, scale, op == GPC_INT ? &overlap : nullptr);
    if (op != GPC_DIFF || meet) {
        add(b, e.set, 2, scale, op == GPC_INT ? &overlap : op == GPC_DIFF ? &nearA : nullptr);
    }
    e.arrange(e.set, scale.exponent, false);
    e.builder.build(e.arrangement, ruleOf(op), scale.from, result);
    return 0;
}

int uniteInto(const gpc_polygon* const* polygons, std::size_t count, gpc_polygon& result) {
    Box all;
    for (std::size_t i = 0; i < count; ++i) {
        if (polygons[i] && !boundsOf(*polygons[i], all)) return EDOM;
    }
    if (isEmpty(all)) return 0;
    const Scale scale(all);
    Engine& e = engine();
    const Trim trim;
    e.resolved.clear();
    for (std::size_t i = 0; i < count; ++i) {
        if (!polygons[i]) continue;
        e.set.clear();
        e.set.add(*polygons[i], 1, scale.to, nullptr);
        e.arrange(e.set, scale.exponent, false);
        e.builder.append(e.arrangement, {Rule::kUnion}, e.resolved);
    }
    e.arrange(e.resolved, scale.exponent, true);
    e.builder.build(e.arrangement, {Rule::kCovered}, scale.from, result);
    return 0;
}

template <class F>
int guarded(gpc_polygon& result, F&& work) noexcept {
    result = {0, nullptr, nullptr};
    try {
        return work();
    } catch (const std::bad_alloc&) {
        gpc_free_polygon(&result);
        return ENOMEM;
    } catch (...) {
        gpc_free_polygon(&result);
        return ERANGE;
    }
}

}  // namespace

int clip(gpc_op op, const Operand& subject, const Operand& other, gpc_polygon& result) noexcept {
    return guarded(result, [&] { return clipInto(op, subject, other, result); });
}

int uniteAll(const gpc_polygon* const* polygons, std::size_t count, gpc_polygon& result) noexcept {
    return guarded(result, [&] { return uniteInto(polygons, count, result); });
}

}  // namespace jws::gpc
