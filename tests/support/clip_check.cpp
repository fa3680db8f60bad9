// SPDX-License-Identifier: MIT
#include "support/clip_check.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>

#include "support/contour_check.h"
#include "support/slab_areas.h"

namespace jwtest {
namespace {

double reachOf(const RingPair& pair) {
    double reach = 0;
    for (const Rings* operand : {&pair.a, &pair.b}) {
        for (const Ring& ring : *operand) {
            for (const jws::JWRawPoint& p : ring) {
                reach = std::max({reach, std::fabs(p.x), std::fabs(p.y)});
            }
        }
    }
    return reach;
}

std::string differ(const char* what, double found, double expected, double tolerance) {
    char text[200];
    std::snprintf(text, sizeof text, "%s: %.17g, not %.17g (off by %.3g, tolerance %.3g)", what,
                  found, expected, found - expected, tolerance);
    return text;
}

Miss checkContours(const ClipCase& c) {
    for (int op = 0; op < 4; ++op) {
        if (c.of[op].failure != 0) {
            return {kClipNames[op], "gave up, errno " + std::to_string(c.of[op].failure)};
        }
        const std::string fault = contourFault(c.of[op]);
        if (!fault.empty()) return {kClipNames[op], fault};
    }
    return {};
}

Miss checkAreas(const ClipCase& c) {
    double area[4];
    for (int op = 0; op < 4; ++op) area[op] = c.of[op].area();
    const struct {
        const char* what;
        int op;
        double found, expected;
    } identities[] = {
        {"|A or B| + |A and B| against |A| + |B|", GPC_UNION, area[GPC_UNION] + area[GPC_INT],
         c.areaA + c.areaB},
        {"|A xor B| against |A or B| - |A and B|", GPC_XOR, area[GPC_XOR],
         area[GPC_UNION] - area[GPC_INT]},
        {"|A minus B| against |A| - |A and B|", GPC_DIFF, area[GPC_DIFF], c.areaA - area[GPC_INT]},
    };
    for (const auto& i : identities) {
        if (!c.sameArea(i.found, i.expected)) {
            return {kClipNames[i.op], differ(i.what, i.found, i.expected, c.tolerance)};
        }
    }
    if (c.vertices > kSlabVertices) return {};
    const FourAreas slabs = slabAreas(c.pair.a, c.pair.b);
    for (int op = 0; op < 4; ++op) {
        if (!c.sameArea(area[op], slabs.of[op])) {
            return {kClipNames[op], differ("area by slabs", area[op], slabs.of[op], c.tolerance)};
        }
    }
    return {};
}

/// Results come back as operands: rounded crossings must not make slivers or lose area.
Miss checkOnceMore(const ClipCase& c) {
    for (int op = 0; op < 4; ++op) {
        const ClipResult united = clip(GPC_UNION, c.of[op].contours, {});
        if (c.apart(op, united) > c.tolerance) {  // vertices closer than a step may become one
            return c.compare(op, united, "uniting the result with nothing");
        }
    }
    const Rings &rest = c.of[GPC_DIFF].contours, &common = c.of[GPC_INT].contours;
    const struct {
        const char* what;
        gpc_op op;
        const Rings &a, &b;
        double expected;
    } rows[] = {
        {"A minus (A and B)", GPC_DIFF, c.pair.a, common, c.of[GPC_DIFF].area()},
        {"(A minus B) and B", GPC_INT, rest, c.pair.b, 0},
        {"(A and B) minus A", GPC_DIFF, common, c.pair.a, 0},
        {"(A minus B) or (A and B)", GPC_UNION, rest, common, c.areaA},
    };
    for (const auto& row : rows) {
        const ClipResult again = clip(row.op, row.a, row.b);
        const std::string fault = contourFault(again);
        if (!fault.empty()) return {row.what, fault};
        if (!c.sameArea(again.area(), row.expected)) {
            return {row.what, differ("area", again.area(), row.expected, c.tolerance)};
        }
    }
    return {};
}

jws::JWRawPoint shifted(const jws::JWRawPoint& p, int exponent) {
    return {std::ldexp(p.x, exponent), std::ldexp(p.y, exponent)};
}

}  // namespace

ClipCase::ClipCase(const RingPair& operands)
    : pair(operands),
      cleanA(clip(GPC_UNION, operands.a, {})),
      cleanB(clip(GPC_UNION, {}, operands.b)),
      reach(reachOf(operands)) {
    for (int op = 0; op < 4; ++op) of[op] = clip(kClipOps[op], pair.a, pair.b);
    areaA = cleanA.area();
    areaB = cleanB.area();
    for (const Rings* operand : {&pair.a, &pair.b}) {
        for (const Ring& ring : *operand) {
            vertices += ring.size();
            for (std::size_t i = 0; i < ring.size(); ++i) {
                const jws::JWRawPoint &p = ring[i], &q = ring[(i + 1) % ring.size()];
                length += std::fabs(p.x - q.x) + std::fabs(p.y - q.y);
            }
        }
    }
    step = reach * 0x1p-52;
    tolerance = 1e-12 * (areaA + areaB) + 8 * length * step;
}

double ClipCase::apart(int op, const ClipResult& other) const {
    if (sameSet(other, of[op])) return 0;
    if (verticesOf(other.contours) + verticesOf(of[op].contours) > kSlabVertices) {
        return std::fabs(other.area() - of[op].area());
    }
    return slabAreas(other.contours, of[op].contours).of[GPC_XOR];
}

Miss ClipCase::compare(int op, const ClipResult& other, const char* change) const {
    if (sameSet(other, of[op])) return {};
    const double between = apart(op, other);
    char text[160];
    std::snprintf(text, sizeof text, "%s changes %s: area between them %.3g, tolerance %.3g",
                  change, between > tolerance ? "the set" : "its vertices", between, tolerance);
    return {kClipNames[op], text};
}

bool ClipCase::sameArea(double a, double b) const { return std::fabs(a - b) <= tolerance; }

Miss checkPair(const RingPair& original, RandomRings& random, const CheckOptions& options) {
    // Everything is looked at near 1, where squares neither overflow nor underflow.
    int exponent = 0;
    std::frexp(reachOf(original), &exponent);
    const auto nearOne = [&](const jws::JWRawPoint& p) { return shifted(p, -exponent); };
    const auto back = [&](const jws::JWRawPoint& p) { return shifted(p, exponent); };
    const RingPair pair = {mapped(original.a, nearOne), mapped(original.b, nearOne)};
    const ClipCase c(pair);
    if (mapped(pair.a, back) == original.a && mapped(pair.b, back) == original.b) {
        for (int op = 0; op < 4; ++op) {
            ClipResult as = clip(kClipOps[op], original.a, original.b);
            as.contours = mapped(as.contours, nearOne);
            if (!(as == c.of[op])) return {kClipNames[op], "not the scaled result"};
        }
    }
    Miss miss = checkContours(c);
    if (!miss) miss = checkAreas(c);
    if (!miss) miss = checkAgainstOperands(c, random);
    if (!miss) miss = checkInvariance(c, random);
    if (!miss) miss = checkEntries(c, random);
    if (!miss) miss = checkOnceMore(c);
    if (!miss) miss = checkGrouping(c);
    // Areas by slabs have spoken for small pairs; what GEOS adds there, some of them show.
    const bool small = c.vertices <= kSlabVertices;
    if (!miss && options.geos && (!small || random.oneIn(4))) miss = checkAgainstGeos(c, random);
    return miss;
}

}  // namespace jwtest
