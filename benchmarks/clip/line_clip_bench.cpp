// SPDX-License-Identifier: MIT
//
// Lines clipped by an area, and an area cut along lines, beside GEOS with prepared geometries.
// Lengths and numbers of faces are compared before times.
#include <cmath>
#include <utility>

#include "clip/line_clip_rival.h"
#include "support/contest.h"
#include "support/random_rings.h"
#include "support/run_cases.h"

namespace bench {
namespace {

using jwtest::RandomRings;

constexpr double kRadius = 1000;

std::vector<jws::JWRawPoint> points(const jwtest::Ring& ring) {
    return std::vector<jws::JWRawPoint>(ring.begin(), ring.end());
}

jws::JWPolygon areaOf(int vertices, bool spiky) {
    RandomRings random(1);
    jws::JWRing ring(points(spiky ? random.star(vertices, {0, 0}, 0.8 * kRadius, kRadius)
                                  : random.outline(vertices, {0, 0}, kRadius, 0.3)));
    ring.closeRing();
    jws::JWPolygon polygon(ring);
    polygon.updateEnvelop();
    return polygon;
}

/// `count` lines of `n` points, each `step` or less from the one before in x and y; those that
/// leave the area by much turn back.
jws::JWMultiLineString linesOf(int count, int n, double step) {
    RandomRings random(2);
    jws::JWMultiLineString lines;
    for (int i = 0; i < count; ++i) {
        std::vector<jws::JWRawPoint> line;
        jws::JWRawPoint at(random.uniform(-kRadius, kRadius), random.uniform(-kRadius, kRadius));
        for (int k = 0; k < n; ++k) {
            line.push_back(at);
            at = {at.x + random.uniform(-step, step), at.y + random.uniform(-step, step)};
            if (std::hypot(at.x, at.y) > 1.5 * kRadius) at = {0, 0};
        }
        lines.addLineString(jws::JWLineString(std::move(line)));
    }
    lines.updateEnvelop();
    return lines;
}

struct Case {
    const char* name;
    bool spiky;
    int lines, points;
    double step;
    bool cutsArea;  ///< the lines cut the area, otherwise the area the lines
};

const Case kCases[] = {
    {"segments1e5", false, 100000, 2, 20, false}, {"segments1e4-star", true, 10000, 2, 20, false},
    {"long2e3", false, 2000, 2, 1000, false},     {"tracks1e5", false, 100, 1000, 5, false},
    {"oneline1e5", false, 1, 100000, 50, false},  {"cut20", false, 20, 50, 400, true},
    {"cut200", false, 200, 10, 400, true},
};

/// Returns false when the answers differ.
bool measure(const Case& one, int rounds) {
    const jws::JWPolygon area = areaOf(10000, one.spiky);
    const jws::JWMultiLineString lines = linesOf(one.lines, one.points, one.step);
    std::vector<std::unique_ptr<LineClipRival>> rivals;
    std::vector<Entry> entries;
    const auto enter = [&](const char* name, std::unique_ptr<LineClipRival> made) {
        LineClipRival* rival = rivals.emplace_back(std::move(made)).get();
        rival->load(lines, area);
        entries.push_back({name, [=] { one.cutsArea ? rival->cut() : rival->clip(); },
                           [=] { return rival->measure(); }, [=] { rival->clear(); }});
    };
    enter("jwcg", makeOursLineClip(false));
    enter("jwcg_mp", makeOursLineClip(true));
    enter("geos", makeGeosLineClip());
    return contest(one.name, entries, 1e-9, rounds);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    return bench::runCases("line_clip_bench",
                           "Lines clipped by an area of 10,000 vertices and areas cut along lines, "
                           "beside GEOS; answers are compared first.",
                           bench::kCases, bench::measure, argc, argv);
}
