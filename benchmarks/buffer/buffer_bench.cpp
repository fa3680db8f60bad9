// SPDX-License-Identifier: MIT
//
// Buffers beside GEOS and Clipper: answers are compared before times. The three draw their arcs
// differently (our circles and half circles have 36 and 24 corners to a full turn, theirs 24), and
// GEOS simplifies its input a little, so that areas agree to about a hundredth only.
#include <cmath>
#include <random>
#include <stdexcept>
#include <utility>

#include "buffer/buffer_rival.h"
#include "jw_datasource.h"
#include "jw_feature.h"
#include "support/contest.h"
#include "support/run_cases.h"

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

/// Returns false when a rival's answer is not ours.
bool measure(const Case& chosen, int rounds) {
    const Geometries input = chosen.lines == 0 ? counties() : walks(chosen.lines, chosen.points);
    std::vector<std::unique_ptr<BufferRival>> rivals;
    std::vector<Entry> entries;
    const auto enter = [&](const char* name, std::unique_ptr<BufferRival> made) {
        BufferRival* rival = rivals.emplace_back(std::move(made)).get();
        rival->load(input);
        entries.push_back({name, [=] { rival->run(chosen.distance); },
                           [=] { return rival->area(); }, [=] { rival->clear(); }});
    };
    enter("jwcg", makeOursBuffer(false));
    enter("jwcg_mp", makeOursBuffer(true));
    if (chosen.rivals) {
        enter("geos", makeGeosBuffer());
        enter("clipper", makeClipperBuffer());
    }
    return contest(chosen.name, entries, kAreaTolerance, rounds);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    return bench::runCases("buffer_bench",
                           "Buffers beside GEOS and Clipper; areas are compared first.",
                           bench::kCases, bench::measure, argc, argv);
}
