// SPDX-License-Identifier: MIT
//
// What a result has to do with its operands, place by place. Only places are judged that no
// rounding can touch: points and corners far from every other edge, by many grid steps.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "support/clip_check.h"
#include "support/exact_sign.h"

namespace jwtest {
namespace {

using jws::JWRawPoint;

constexpr int kPoints = 24;    // points of the plane per pair
constexpr int kCorners = 48;   // corners looked at per ring set, all if it has fewer
constexpr double kClear = 64;  // grid steps that rounding never bridges
constexpr double kNear = 4;    // grid steps from an edge that rounding explains

std::string text(const char* what, const JWRawPoint& p) {
    char buffer[160];
    std::snprintf(buffer, sizeof buffer, "%s: %.17g %.17g", what, p.x, p.y);
    return buffer;
}

long double distance(const JWRawPoint& p, const JWRawPoint& a, const JWRawPoint& b) {
    const long double dx = static_cast<long double>(b.x) - a.x;
    const long double dy = static_cast<long double>(b.y) - a.y;
    const long double px = static_cast<long double>(p.x) - a.x;
    const long double py = static_cast<long double>(p.y) - a.y;
    const long double squared = dx * dx + dy * dy;
    long double t = squared > 0 ? (px * dx + py * dy) / squared : 0;
    t = std::min(1.0L, std::max(0.0L, t));
    return std::sqrt((px - t * dx) * (px - t * dx) + (py - t * dy) * (py - t * dy));
}

/// Calls `visit(p, q)` for every edge of contours that count.
template <class Visit>
void forEachEdge(const Rings& rings, Visit visit) {
    for (const Ring& ring : rings) {
        for (std::size_t i = 0; ring.size() > 2 && i < ring.size(); ++i) {
            visit(ring[i], ring[(i + 1) % ring.size()]);
        }
    }
}

bool contains(const Rings& rings, const JWRawPoint& p) {
    bool inside = false;
    forEachEdge(rings, [&](const JWRawPoint& a, const JWRawPoint& b) {
        if ((a.y > p.y) == (b.y > p.y)) return;
        if ((turnOf(a, b, p) > 0) == (b.y > a.y)) inside = !inside;
    });
    return inside;
}

/// How many edges of both operands come closer to p than `limit`.
int edgesNear(const ClipCase& c, const JWRawPoint& p, double limit) {
    int count = 0;
    for (const Rings* operand : {&c.pair.a, &c.pair.b}) {
        forEachEdge(*operand, [&](const JWRawPoint& a, const JWRawPoint& b) {
            if (std::min(a.x, b.x) - limit > p.x || std::max(a.x, b.x) + limit < p.x ||
                std::min(a.y, b.y) - limit > p.y || std::max(a.y, b.y) + limit < p.y) {
                return;
            }
            count += distance(p, a, b) <= limit;
        });
    }
    return count;
}

bool holds(int op, bool inA, bool inB) {
    switch (op) {
        case GPC_DIFF:
            return inA && !inB;
        case GPC_INT:
            return inA && inB;
        case GPC_XOR:
            return inA != inB;
        default:
            return inA || inB;
    }
}

/// Points in triangles of the operands' corners.
Miss checkPlane(const ClipCase& c, RandomRings& random) {
    for (int i = 0; i < kPoints; ++i) {
        const Rings& operand = random.flip() || c.pair.b.empty() ? c.pair.a : c.pair.b;
        if (operand.empty()) continue;
        const Ring& ring = random.pick(operand);
        if (ring.size() < 3) continue;
        const JWRawPoint p = random.pick(ring), q = random.pick(ring), r = random.pick(ring);
        const double s = random.uniform(0, 1), t = random.uniform(0, 1 - s);
        const JWRawPoint at(p.x + s * (q.x - p.x) + t * (r.x - p.x),
                            p.y + s * (q.y - p.y) + t * (r.y - p.y));
        if (edgesNear(c, at, kClear * c.step) > 0) continue;
        const bool inA = contains(c.pair.a, at), inB = contains(c.pair.b, at);
        for (int op = 0; op < 4; ++op) {
            if (contains(c.of[op].contours, at) != holds(op, inA, inB)) {
                return {kClipNames[op], text("a point on the wrong side", at)};
            }
        }
    }
    return {};
}

/// All corners of rings, or a random choice of them.
template <class Visit>
void forSomeCorners(const Rings& rings, RandomRings& random, Visit visit) {
    std::size_t count = 0;
    for (const Ring& ring : rings) count += ring.size();
    const int share = static_cast<int>(count / kCorners) + 1;
    for (const Ring& ring : rings) {
        for (std::size_t i = 0; ring.size() > 2 && i < ring.size(); ++i) {
            if (random.oneIn(share)) visit(ring, i);
        }
    }
}

/// Whether the corner's edges leave it in clearly different directions. The tip of a sliver is
/// not a safe corner: for some way it is thinner than a grid step.
bool isOpen(const JWRawPoint& before, const JWRawPoint& at, const JWRawPoint& after) {
    const double ux = before.x - at.x, uy = before.y - at.y;
    const double vx = after.x - at.x, vy = after.y - at.y;
    const double lengths = std::hypot(ux, uy) * std::hypot(vx, vy);
    return lengths > 0 && (ux * vx + uy * vy < 0 || std::fabs(ux * vy - uy * vx) > 1e-3 * lengths);
}

/// A corner that no other edge comes near is a corner of the result, bit for bit, exactly where
/// the result's border follows it.
Miss checkOwnCorners(const ClipCase& c, RandomRings& random, const std::vector<Ring>& sorted) {
    const double clear = kClear * c.step;
    Miss miss;
    for (const Rings* operand : {&c.pair.a, &c.pair.b}) {
        const bool first = operand == &c.pair.a;
        const Rings& other = first ? c.pair.b : c.pair.a;
        forSomeCorners(*operand, random, [&](const Ring& ring, std::size_t i) {
            const std::size_t n = ring.size();
            const JWRawPoint& p = ring[i];
            if (miss || !isOpen(ring[(i + n - 1) % n], p, ring[(i + 1) % n])) return;
            if (edgesNear(c, p, clear) != 2) return;
            const bool in = contains(other, p);
            for (int op = 0; op < 4 && !miss; ++op) {
                const bool wanted = first ? holds(op, true, in) != holds(op, false, in)
                                          : holds(op, in, true) != holds(op, in, false);
                if (std::binary_search(sorted[op].begin(), sorted[op].end(), p) != wanted) {
                    miss = {kClipNames[op], text(wanted ? "an input vertex is not in the result"
                                                        : "an input vertex should not be here",
                                                 p)};
                }
            }
        });
    }
    return miss;
}

/// A new vertex is where edges of the operands meet.
Miss checkNewCorners(const ClipCase& c, RandomRings& random) {
    Ring own;
    for (const Rings* operand : {&c.pair.a, &c.pair.b}) {
        for (const Ring& ring : *operand) own.insert(own.end(), ring.begin(), ring.end());
    }
    std::sort(own.begin(), own.end());
    Miss miss;
    for (int op = 0; op < 4; ++op) {
        forSomeCorners(c.of[op].contours, random, [&](const Ring& ring, std::size_t i) {
            const JWRawPoint& p = ring[i];
            if (miss || std::binary_search(own.begin(), own.end(), p)) return;
            if (edgesNear(c, p, kNear * c.step) < 2) {
                miss = {kClipNames[op], text("a new vertex where no edges meet", p)};
            }
        });
    }
    return miss;
}

}  // namespace

Miss checkAgainstOperands(const ClipCase& c, RandomRings& random) {
    std::vector<Ring> sorted(4);
    for (int op = 0; op < 4; ++op) {
        for (const Ring& ring : c.of[op].contours) {
            sorted[op].insert(sorted[op].end(), ring.begin(), ring.end());
        }
        std::sort(sorted[op].begin(), sorted[op].end());
    }
    Miss miss = checkPlane(c, random);
    if (!miss) miss = checkOwnCorners(c, random, sorted);
    if (!miss) miss = checkNewCorners(c, random);
    return miss;
}

}  // namespace jwtest
