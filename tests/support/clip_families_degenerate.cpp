// SPDX-License-Identifier: MIT
#include <cmath>

#include "support/clip_families.h"
#include "support/gpc_call.h"

namespace jwtest {
namespace {

using jws::JWRawPoint;

/// Two operands of `low` to `high` rings each.
template <class MakeRing>
RingPair ringsEach(RandomRings& random, int low, int high, MakeRing make) {
    RingPair pair;
    for (Rings* operand : {&pair.a, &pair.b}) {
        for (int i = random.integer(low, high); i > 0; --i) operand->push_back(make());
    }
    return pair;
}

/// Self-crossing contours on a lattice so small that corners and edges coincide all the time.
RingPair tangles(RandomRings& random) {
    const int size = random.integer(2, 12);
    return ringsEach(random, 1, 3, [&] { return random.tangle(random.integer(3, 12), size); });
}

RingPair scatters(RandomRings& random) {
    return ringsEach(random, 1, 2, [&] { return random.scatter(random.integer(3, 16), -1, 1); });
}

RingPair spikes(RandomRings& random) {
    return ringsEach(random, 1, 1, [&] {
        Ring ring;
        const JWRawPoint center(random.uniform(-0.3, 0.3), 0);
        for (const JWRawPoint& p : random.star(random.integer(4, 15), center, 0.5, 1)) {
            ring.push_back(p);
            if (random.oneIn(3)) {  // out and back, all the way or half of it
                const JWRawPoint tip = random.point(-1.5, 1.5);
                ring.push_back(tip);
                ring.push_back(random.flip() ? p
                                             : JWRawPoint((p.x + tip.x) / 2, (p.y + tip.y) / 2));
            }
            if (random.oneIn(8)) ring.push_back(p);
        }
        return ring;
    });
}

/// Corners on a few common lines, most of them within edges of other rings.
RingPair collinear(RandomRings& random) {
    const int across = random.integer(-3, 3);
    const JWRawPoint d(across, random.integer(1, 3));
    const double unit = random.flip() ? 1.0 : 0.1;  // exact, or off by rounding
    return ringsEach(random, 1, 3, [&] {
        Ring ring;
        const int row = random.integer(0, 1);
        for (const int y : {row, row + 1}) {
            Ring line;
            int x = random.integer(0, 3);
            for (int i = random.integer(2, 5); i > 0; --i, x += random.integer(1, 3)) {
                line.emplace_back((x * d.y + y * d.x) * unit, (y * d.y - x * d.x) * unit);
            }
            if (y != row) std::reverse(line.begin(), line.end());
            ring.insert(ring.end(), line.begin(), line.end());
        }
        return ring;
    });
}

/// Near-parallel edges, closer together than doubles can tell or nearly so.
RingPair bundles(RandomRings& random) {
    const double slope = random.uniform(-2, 2);
    return ringsEach(random, 1, 5, [&] {
        const double width = random.smallPower(10, 17);
        const auto onLine = [&](double x, double off) {
            return JWRawPoint(x, x * slope + random.uniform(-off, off));
        };
        Ring ring = {onLine(random.uniform(-1, 0), width), onLine(random.uniform(0.1, 1), width),
                     onLine(random.uniform(-1, 1), width)};
        if (random.flip()) ring.push_back(onLine(random.uniform(-1, 1), 1));
        return ring;
    });
}

/// Every corner one or two doubles beside another's.
RingPair neighbouringDoubles(RandomRings& random) {
    const JWRawPoint c = random.point(-2, 2);
    const Ring a = random.star(random.corners(3, 30), c, 0.4, 1);
    Rings b = {random.nudged(a, 2)};
    if (random.flip()) b.push_back(random.nudged(a, 1));
    return {{a}, b};
}

/// Tiny and huge extents, to the ends of the range of doubles.
RingPair extremes(RandomRings& random) {
    const double scale = std::pow(10.0, random.integer(-290, 306));
    const auto scaled = [scale](JWRawPoint p) { return JWRawPoint(p.x * scale, p.y * scale); };
    const Ring a = random.star(random.corners(3, 30), {0.3, 0.1}, 0.5, 1);
    const JWRawPoint c = random.point(-0.5, 0.5);
    const Ring b = random.star(random.corners(3, 30), c, 0.5, 1);
    return {mapped({a}, scaled), mapped({b}, scaled)};
}

/// Detail near the origin, where doubles are finer than any common grid.
RingPair origin(RandomRings& random) {
    const double small = random.smallPower(1, 14);
    Rings a = {random.star(random.integer(3, 20), {0, 0}, 0.5, 1)};
    Rings b = {random.star(random.integer(3, 20), {0, 0}, 0.5 * small, small)};
    const JWRawPoint beside(random.uniform(-small, small), 0);
    b.push_back(random.star(random.integer(3, 20), beside, 0.5 * small, small));
    if (random.flip()) a.push_back(random.star(9, {0, 0}, 0.3 * small, small));
    for (int i = random.flip() ? 4 : 0; i > 0; --i) {
        const JWRawPoint p = random.pick(a[0]);
        b.push_back({{-p.x, -p.y}, p, {p.y * small, -p.x * small}});
    }
    return {a, b};
}

/// Many edges through nearly one point.
RingPair fans(RandomRings& random) {
    const JWRawPoint c = random.point(-1, 1);
    return ringsEach(random, 1, 6, [&] {
        const double t = random.uniform(0, 6.3), u = t + random.uniform(-0.3, 0.3);
        const double back = random.uniform(0.3, 2), ahead = random.uniform(0.3, 2);
        const auto at = [&](double r, double angle) {
            return JWRawPoint(c.x + r * std::cos(angle), c.y + r * std::sin(angle));
        };
        return Ring{at(-back, t), at(ahead, t), at(ahead, u), at(-back, u)};
    });
}

/// Slivers along one line, over a few points in common.
RingPair slivers(RandomRings& random) {
    Ring points;
    const double slope = random.uniform(-3, 3);
    const int places = random.integer(0, 3);
    for (int i = 0; i < 8; ++i) {
        const double x = random.uniform(-1, 1);
        points.emplace_back(x, random.nudged(x * slope, places));
    }
    for (int i = 0; i < 3; ++i) points.push_back(random.point(-1, 1));
    return ringsEach(random, 1, 4, [&] {
        Ring ring;
        for (int k = random.integer(3, 6); k > 0; --k) ring.push_back(random.pick(points));
        return ring;
    });
}

/// Results clipped once more: their crossings are rounded and lie on nobody's edge.
RingPair results(RandomRings& random) {
    const auto any = [&] { return kClipOps[random.integer(0, 3)]; };
    Rings c = {random.star(random.integer(4, 25), {0, 0}, 0.4, 1)};
    const JWRawPoint beside = random.point(-0.4, 0.4);
    const Rings d = {random.star(random.integer(4, 25), beside, 0.4, 1)};
    if (random.flip()) c.push_back(random.scatter(6, -1, 1));
    Rings a = clip(any(), c, d).contours;
    Rings b = random.flip() ? c : clip(any(), c, d).contours;
    if (random.oneIn(3)) {
        b = clip(any(), b, {random.star(random.integer(4, 25), {0.1, 0}, 0.4, 1)}).contours;
    }
    return {a, b};
}

}  // namespace

std::vector<ClipFamily> degenerateFamilies() {
    return {{"tangles", tangles},   {"scatters", scatters},
            {"spikes", spikes},     {"collinear", collinear},
            {"bundles", bundles},   {"neighbouring-doubles", neighbouringDoubles},
            {"extremes", extremes}, {"origin", origin},
            {"fans", fans},         {"slivers", slivers},
            {"results", results}};
}

}  // namespace jwtest
