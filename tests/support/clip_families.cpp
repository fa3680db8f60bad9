// SPDX-License-Identifier: MIT
#include "support/clip_families.h"

#include <cmath>

namespace jwtest {
namespace {

using jws::JWRawPoint;

RingPair stars(RandomRings& random) {
    const double low = random.flip() ? 0.2 : 0.9;
    const Ring a = random.star(random.corners(3, 60), {0, 0}, low, 1);
    const JWRawPoint c = random.point(-1, 1);
    return {{a}, {random.star(random.corners(3, 60), c, low, 1)}};
}

RingPair nearCopies(RandomRings& random) {
    const Ring a = random.star(random.corners(8, 60), {0, 0}, 0.7, 1);
    return {{a}, {random.jittered(a, random.smallPower(1, 15))}};
}

RingPair combs(RandomRings& random) {
    const auto operand = [&]() -> Rings {
        const int offset = random.integer(-2, 2);
        return {comb(random.corners(2, 10), offset, 1, [&](int) { return random.integer(1, 4); })};
    };
    Rings a = operand();
    return {std::move(a), operand()};
}

RingPair boards(RandomRings& random) {
    const auto operand = [&] {
        const int side = random.integer(2, random.oneIn(100) ? 20 : 6);
        const double offset = random.flip() ? random.integer(0, 2) : 0.5;
        Rings fields = chessboard(side, offset);
        for (int i = random.integer(0, side); i > 0; --i) {
            const int x = random.integer(0, side - 1), y = random.integer(0, side - 1);
            if ((x + y) % 2 == 0) continue;  // black already
            fields.push_back(rectangle(x + offset, y + offset, x + 1 + offset, y + 1 + offset));
        }
        return fields;
    };
    Rings a = operand();
    return {std::move(a), operand()};
}

RingPair identical(RandomRings& random) {
    const JWRawPoint c = random.point(-5, 5);
    Rings a = {random.star(random.corners(3, 50), c, 0.3, 1)};
    if (random.flip()) a.push_back(random.star(random.integer(3, 20), {0.2, 0.2}, 0.1, 0.9));
    return {a, random.shuffled(a)};
}

/// A stretch of B's outline leaves A's; the rest is shared.
RingPair shared(RandomRings& random) {
    const Ring a = random.star(random.corners(10, 60), {0, 0}, 0.6, 1);
    Ring b = a;
    const int n = static_cast<int>(a.size());
    const int from = random.integer(0, n - 1);
    for (int i = random.integer(1, n - 1); i > 0; --i) {
        JWRawPoint& p = b[static_cast<std::size_t>((from + i) % n)];
        const double factor = random.uniform(0.6, 1.4);
        p.set(p.x * factor, p.y * factor);
    }
    Rings other = {b};
    if (random.flip()) other.push_back(random.star(12, {0, 0}, 0.05, 0.2));
    return {{a}, random.shuffled(other)};
}

/// Two neighbours whose common border has other corners on each side of it, in decimal degrees.
RingPair neighbours(RandomRings& random) {
    const double scale = std::pow(10.0, random.integer(3, 12));
    const auto decimal = [scale](JWRawPoint p) {
        return JWRawPoint(std::round(p.x * scale) / scale, std::round(p.y * scale) / scale);
    };
    const JWRawPoint corner = random.point(-150, 150);
    const double size = random.smallPower(0, 2);
    Ring border;
    const int corners = random.corners(3, 30);
    for (int i = 0; i < corners; ++i) {
        border.push_back(
            decimal({corner.x + size * i / corners, corner.y + size * random.uniform(-0.1, 0.1)}));
    }
    const auto side = [&](double depth) {
        Ring ring;
        for (std::size_t i = 0; i < border.size(); ++i) {
            if (i == 0 || i + 1 == border.size() || !random.oneIn(3)) ring.push_back(border[i]);
            if (i + 1 < border.size() && random.oneIn(3)) {  // nearly on the border
                const JWRawPoint &p = border[i], &q = border[i + 1];
                const double t = random.uniform(0, 1);
                ring.push_back(decimal({p.x + t * (q.x - p.x), p.y + t * (q.y - p.y)}));
            }
        }
        ring.push_back(decimal({corner.x + size, corner.y + depth * size}));
        ring.push_back(decimal({corner.x, corner.y + depth * size}));
        return ring;
    };
    Ring a = side(1);
    return {{std::move(a)}, {side(-1)}};
}

RingPair holes(RandomRings& random) {
    const auto operand = [&] {
        const JWRawPoint c = random.point(-1, 1);
        Rings rings = {random.star(random.corners(8, 40), c, 2, 2.5)};
        for (int i = -1; i <= 1; ++i) {
            for (int k = -1; k <= 1; ++k) {
                if (random.oneIn(3)) continue;
                rings.push_back(random.star(random.integer(3, 9), {c.x + i, c.y + k}, 0.1, 0.45));
            }
        }
        return rings;
    };
    Rings a = operand();
    return {std::move(a), operand()};
}

/// Holes on a lattice: they touch one another and the outer ring at corners and along edges.
RingPair touchingHoles(RandomRings& random) {
    const auto operand = [&] {
        const int offset = random.integer(0, 3);
        Rings rings = {rectangle(offset, offset, offset + 10, offset + 10)};
        for (int i = random.integer(1, 5); i > 0; --i) {
            const int x = offset + random.integer(0, 8), y = offset + random.integer(0, 8);
            const int size = random.integer(1, 2);
            const double half = size / 2.0;
            rings.push_back(random.flip() ? diamond(x + half, y + half, half)
                                          : rectangle(x, y, x + size, y + size));
        }
        return rings;
    };
    Rings a = operand();
    return {std::move(a), operand()};
}

/// Rings in rings in rings: islands in holes in islands.
RingPair islands(RandomRings& random) {
    const auto operand = [&] {
        const bool lattice = random.flip();
        JWRawPoint c = random.point(-0.5, 0.5);
        if (lattice) c = {std::round(2 * c.x), std::round(2 * c.y)};
        Rings rings;
        for (int i = random.integer(2, 7); i > 0; --i) {
            const double s = lattice ? i : i + random.uniform(-0.3, 0.3);
            rings.push_back(random.flip() ? rectangle(c.x - s, c.y - s, c.x + s, c.y + s)
                                          : diamond(c.x, c.y, s));
        }
        return rings;
    };
    Rings a = operand();
    return {std::move(a), operand()};
}

RingPair boxes(RandomRings& random) {
    const auto operand = [&] {
        Rings rings;
        for (int i = random.corners(1, 6); i > 0; --i) rings.push_back(random.box(12));
        return rings;
    };
    Rings a = operand();
    return {std::move(a), operand()};
}

/// Far from the origin, where the distance between doubles is felt.
RingPair offsets(RandomRings& random) {
    const JWRawPoint c = random.point(-1e9, 1e9);
    const double size = random.smallPower(0, 6);
    const Ring a = random.star(random.corners(3, 40), c, 0.5 * size, size);
    const JWRawPoint d = random.point(-size, size);
    return {{a}, {random.star(random.corners(3, 40), {c.x + d.x, c.y + d.y}, 0.5 * size, size)}};
}

}  // namespace

std::vector<ClipFamily> shapeFamilies() {
    return {{"stars", stars},
            {"near-copies", nearCopies},
            {"combs", combs},
            {"boards", boards},
            {"identical", identical},
            {"shared", shared},
            {"neighbours", neighbours},
            {"holes", holes},
            {"touching-holes", touchingHoles},
            {"islands", islands},
            {"boxes", boxes},
            {"offsets", offsets}};
}

const std::vector<ClipFamily>& clipFamilies() {
    static const std::vector<ClipFamily> all = [] {
        std::vector<ClipFamily> families = shapeFamilies();
        for (const ClipFamily& family : degenerateFamilies()) families.push_back(family);
        return families;
    }();
    return all;
}

const ClipFamily* familyNamed(const std::string& name) {
    for (const ClipFamily& family : clipFamilies()) {
        if (name == family.name) return &family;
    }
    return nullptr;
}

RandomRings generatorOf(const ClipFamily& family, std::uint64_t seed, std::uint64_t pair) {
    std::uint64_t mixed = RandomRings(seed).bits();
    for (const char* c = family.name; *c; ++c) {
        mixed = RandomRings(mixed ^ static_cast<unsigned char>(*c)).bits();
    }
    return RandomRings(RandomRings(mixed ^ pair).bits());
}

}  // namespace jwtest
