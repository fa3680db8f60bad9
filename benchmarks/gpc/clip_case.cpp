// SPDX-License-Identifier: MIT
#include "gpc/clip_case.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "support/random_rings.h"

namespace bench {
namespace {

using jwtest::RandomRings;
using jwtest::Ring;

constexpr double kRadius = 100;
constexpr double kWave = 0.3;
constexpr std::uint64_t kSeed = 42;

ClipOperands simple(Ring a, Ring b) { return {{{std::move(a), {}}}, {{std::move(b), {}}}}; }

ClipOperands squares(RandomRings& random, int) {
    const jws::JWRawPoint p = random.point(-5, 5);
    return simple(jwtest::rectangle(-10, -10, 10, 10),
                  jwtest::rectangle(p.x, p.y, p.x + 20, p.y + 20));
}

ClipOperands star(RandomRings& random, int n) {
    Ring a = random.outline(n, {0, 0}, kRadius, kWave);
    return simple(std::move(a), random.outline(n, {20, 10}, kRadius, kWave));
}

ClipOperands fuzz(RandomRings& random, int n) {
    const Ring outline = random.outline(n, {0, 0}, kRadius, kWave);
    const double distance = 0.2 * 6.283 * kRadius / n;
    Ring a = random.jittered(outline, distance);
    return simple(std::move(a), random.jittered(outline, distance));
}

ClipOperand withHoles(RandomRings& random, int n, double x, double y) {
    const int perHole = std::clamp(n / 8, 4, 20);
    const int side = std::max(1, static_cast<int>(std::sqrt(n / 2.0 / perHole)));
    ClipPolygon polygon = {random.outline(n / 2, {x, y}, kRadius, 0.1), {}};
    const double cell = kRadius / side;
    for (int i = 0; i < side; ++i) {
        for (int k = 0; k < side; ++k) {
            const jws::JWRawPoint c(x - kRadius / 2 + cell * (i + 0.5),
                                    y - kRadius / 2 + cell * (k + 0.5));
            polygon.holes.push_back(random.outline(perHole, c, 0.3 * cell, 0.2));
        }
    }
    return {polygon};
}

ClipOperands holes(RandomRings& random, int n) {
    ClipOperand a = withHoles(random, n, 0, 0);
    return {std::move(a), withHoles(random, n, 3.3, 2.1)};
}

ClipOperands board(RandomRings&, int n) {
    const int side = std::max(1, static_cast<int>(std::sqrt(n / 2.0)));
    const auto operand = [side](double offset) {
        ClipOperand polygons;
        for (Ring& field : jwtest::chessboard(side, offset)) {
            polygons.push_back({std::move(field), {}});
        }
        return polygons;
    };
    return {operand(0), operand(0.5)};
}

ClipOperands combs(RandomRings&, int n) {
    const auto height = [](int) { return 10; };
    return simple(jwtest::comb(n / 4, 0, 5, height), jwtest::comb(n / 4, 0.5, 5, height));
}

ClipOperands identical(RandomRings& random, int n) {
    const Ring ring = random.outline(n, {0, 0}, kRadius, kWave);
    return simple(ring, ring);
}

ClipOperands shared(RandomRings& random, int n) {
    const Ring a = random.outline(n, {0, 0}, kRadius, kWave);
    Ring b = a;
    for (int i = n / 3; i < n / 2; ++i) {
        jws::JWRawPoint& p = b[static_cast<std::size_t>(i)];
        p.set(1.1 * p.x, 1.1 * p.y);
    }
    return simple(a, b);
}

struct Family {
    std::string name;
    ClipOperands (*make)(RandomRings& random, int n);
};
const Family kFamilies[] = {{"squares", squares},     {"star", star},    {"fuzz", fuzz},
                            {"holes", holes},         {"board", board},  {"comb", combs},
                            {"identical", identical}, {"shared", shared}};

}  // namespace

const std::vector<std::string>& clipCaseFamilies() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (const Family& family : kFamilies) list.push_back(family.name);
        return list;
    }();
    return names;
}

std::vector<ClipOperands> makeClipCase(const std::string& family, int n) {
    const int pairs = std::clamp(4096 / n, 1, 64);
    RandomRings random(kSeed + static_cast<std::uint64_t>(n));
    for (const Family& f : kFamilies) {
        if (f.name != family) continue;
        std::vector<ClipOperands> made;
        for (int i = 0; i < pairs; ++i) made.push_back(f.make(random, n));
        return made;
    }
    throw std::invalid_argument("no family is called " + family);
}

}  // namespace bench
