// SPDX-License-Identifier: MIT
//
// Buffers beside GEOS and Clipper: answers are compared before times. The three draw their arcs
// differently (our circles and half circles have 36 and 24 corners to a full turn, theirs 24), and
// GEOS simplifies its input a little, so that areas agree to about a hundredth only.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <stdexcept>
#include <string>

#include "buffer/buffer_rival.h"
#include "jw_datasource.h"
#include "jw_feature.h"
#include "support/run_main.h"
#include "support/stats.h"

namespace bench {
namespace {

constexpr double kStep = 10;
constexpr double kTurn = 0.5;  // radians
constexpr double kAreaTolerance = 0.01;

/// A line that turns by up to kTurn either way at every step.
std::unique_ptr<jws::JWGeometry> walk(int points, std::mt19937& random, jws::JWRawPoint at) {
    std::uniform_real_distribution<double> turn(-kTurn, kTurn);
    std::vector<jws::JWRawPoint> line;
    double heading = std::uniform_real_distribution<double>(0, 2 * M_PI)(random);
    for (int i = 0; i < points; ++i) {
        line.push_back(at);
        heading += turn(random);
        at = {at.x + kStep * std::cos(heading), at.y + kStep * std::sin(heading)};
    }
    return std::make_unique<jws::JWLineString>(std::move(line));
}

Geometries walks(int lines, int points) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(0, lines > 1 ? 1e5 : 0);
    Geometries all;
    for (int i = 0; i < lines; ++i) {
        const double x = place(random);
        all.push_back(walk(points, random, {x, place(random)}));
    }
    return all;
}

Geometries counties() {
    Geometries all;
    jws::JWDataSource* source = jws::JWDataSource::open(JWCG_EXAMPLE_DATA "/us_counties.gpkg");
    if (source == nullptr) throw std::runtime_error("us_counties.gpkg cannot be read");
    jws::JWFeatureLayer* layer = source->openLayer(0);
    jws::JWFeatureClass features;
    layer->getFeaturesByPosition(0, layer->getFeatureCount(), features);
    for (int i = 0; i < features.getFeatureCount(); ++i) {
        const jws::JWGeometry* geometry = features.getFeatureAt(i)->getGeometryPtr();
        if (!geometry->isEmpty()) all.emplace_back(geometry->clone());
    }
    jws::JWFeatureLayer::destroyFeatureLayer(layer);
    jws::JWDataSource::destroyDataSource(source);
    return all;
}

struct Case {
    const char* name;
    int lines;  ///< 0: counties
    int points;
    double distance;
    bool rivals;  ///< whether they end in a minute
};

const Case kCases[] = {
    {"walk1e3-50", 1, 1000, 50, true},      {"walk1e4-50", 1, 10000, 50, true},
    {"walk1e4-500", 1, 10000, 500, true},   {"walk1e5-50", 1, 100000, 50, true},
    {"walk1e5-500", 1, 100000, 500, false}, {"lines1e5-50", 100000, 10, 50, true},
    {"counties", 0, 0, 0.02, true},
};

struct Entry {
    const char* name;
    std::unique_ptr<BufferRival> rival;
};

/// Returns false when a rival's answer is not ours.
bool measure(const Case& chosen, int rounds) {
    const Geometries input = chosen.lines == 0 ? counties() : walks(chosen.lines, chosen.points);
    std::vector<Entry> entries;
    entries.push_back({"jwcg", makeOursBuffer(false)});
    entries.push_back({"jwcg_mp", makeOursBuffer(true)});
    if (chosen.rivals) {
        entries.push_back({"geos", makeGeosBuffer()});
        entries.push_back({"clipper", makeClipperBuffer()});
    }
    std::vector<Contender> contenders;
    std::vector<double> areas;
    for (Entry& entry : entries) {
        BufferRival* rival = entry.rival.get();
        rival->load(input);
        rival->run(chosen.distance);
        areas.push_back(rival->area());
        rival->clear();
        contenders.push_back({[=] { rival->run(chosen.distance); }, [=] { rival->clear(); }});
    }
    const auto times = interleave(contenders, rounds);
    bool same = true;
    std::printf("%s\n", chosen.name);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const bool equal = std::fabs(areas[i] / areas[0] - 1) < kAreaTolerance;
        same = same && equal;
        std::printf("  %-8s %10.1f ms  ratio %6.2f  area %.10g%s\n", entries[i].name,
                    median(times[i]), medianRatio(times[i], times[0]), areas[i],
                    equal ? "" : "  DIFFERS");
    }
    return same;
}

int run(int argc, char** argv) {
    CLI::App app("Buffers beside GEOS and Clipper; areas are compared first.");
    std::vector<std::string> names;
    int rounds = 3;
    app.add_option("cases", names, "cases by name; all without");
    app.add_option("--rounds", rounds, "rounds in which the contenders run in turn");
    CLI11_PARSE(app, argc, argv);
    bool same = true;
    for (const Case& one : kCases) {
        if (!names.empty() && std::find(names.begin(), names.end(), one.name) == names.end()) {
            continue;
        }
        same = measure(one, rounds) && same;
    }
    return same ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) { return bench::runMain("buffer_bench", bench::run, argc, argv); }
