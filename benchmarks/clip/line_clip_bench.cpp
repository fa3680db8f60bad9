// SPDX-License-Identifier: MIT
//
// Lines clipped by an area, and an area cut along lines, beside GEOS with prepared geometries.
// Lengths and numbers of faces are compared before times.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "clip/line_clip_rival.h"
#include "support/random_rings.h"
#include "support/stats.h"

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
    struct Entry {
        const char* name;
        std::unique_ptr<LineClipRival> rival;
    } entries[] = {{"jwcg", makeOursLineClip(false)},
                   {"jwcg_mp", makeOursLineClip(true)},
                   {"geos", makeGeosLineClip()}};
    std::vector<Contender> contenders;
    std::vector<double> measures;
    for (Entry& entry : entries) {
        LineClipRival* rival = entry.rival.get();
        const auto run = [rival, &one] { one.cutsArea ? rival->cut() : rival->clip(); };
        rival->load(lines, area);
        run();
        measures.push_back(rival->measure());
        rival->clear();
        contenders.push_back({run, [rival] { rival->clear(); }});
    }
    const auto times = interleave(contenders, rounds);
    bool same = true;
    std::printf("%s\n", one.name);
    for (std::size_t i = 0; i < measures.size(); ++i) {
        const bool equal = std::fabs(measures[i] - measures[0]) <= 1e-9 * std::fabs(measures[0]);
        same = same && equal;
        std::printf("  %-8s %10.1f ms  ratio %6.2f  %s %.10g%s\n", entries[i].name,
                    median(times[i]), medianRatio(times[i], times[0]),
                    one.cutsArea ? "faces" : "length", measures[i], equal ? "" : "  DIFFERS");
    }
    std::fflush(stdout);
    return same;
}

int run(int argc, char** argv) {
    CLI::App app(
        "Lines clipped by an area of 10,000 vertices and areas cut along lines, beside "
        "GEOS; answers are compared first.");
    std::vector<std::string> names;
    int rounds = 3;
    app.add_option("cases", names, "cases by name; all without");
    app.add_option("--rounds", rounds, "rounds in which the contenders run in turn");
    CLI11_PARSE(app, argc, argv);
    bool same = true;
    for (const Case& one : kCases) {
        const bool chosen =
            names.empty() || std::find(names.begin(), names.end(), one.name) != names.end();
        if (chosen) same = measure(one, rounds) && same;
    }
    return same ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) { return bench::run(argc, argv); }
