// SPDX-License-Identifier: MIT
//
// Dissolve of a polygon layer beside the two unions of GEOS. Every contender first runs once in a
// process of its own, which gives its answer and its peak memory; answers are compared with those
// of the unary union (of the coverage union where that was not asked for), and who differs is named
// and not timed. Then they run in turn.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "overlay/dissolve_cases.h"
#include "support/child_process.h"
#include "support/run_main.h"
#include "support/stats.h"

namespace bench {

namespace {

constexpr double kAreaTolerance = 1e-9;  // relative
constexpr std::size_t kMost = 4;

struct Entry {
    const char* name;
    std::function<std::unique_ptr<DissolveRival>()> make;
};

const Entry entries[kMost] = {
    {"jwcg", [] { return makeOurDissolve(1); }},
    {"jwcg_mp", [] { return makeOurDissolve(8); }},
    {"geos-unary", [] { return makeGeosDissolve(GeosUnion::Unary); }},
    {"geos-coverage", [] { return makeGeosDissolve(GeosUnion::Coverage); }},
};

struct Probe {
    Summary summary;
    double peakMemory = 0;
};

struct Times {
    double median[kMost] = {};
    double ratio[kMost] = {};
};

ChildResult<Probe> probe(const Entry& entry, const GroupedPolygons& polygons) {
    return inChild<Probe>([&] {
        const auto rival = entry.make();
        rival->load(polygons);
        rival->run();
        Probe result;
        result.peakMemory = peakMemory();
        rival->summarize(result.summary);
        rival->clear();
        return result;
    });
}

Times timeTogether(const std::vector<const Entry*>& agreeing, const GroupedPolygons& polygons,
                   int rounds) {
    std::vector<std::unique_ptr<DissolveRival>> rivals;
    std::vector<Contender> contenders;
    for (const Entry* entry : agreeing) {
        rivals.push_back(entry->make());
        DissolveRival& rival = *rivals.back();
        rival.load(polygons);
        contenders.push_back({[&rival] { rival.run(); }, [&rival] { rival.clear(); }});
    }
    const auto samples = interleave(contenders, rounds);
    Times times;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        times.median[i] = median(samples[i]);
        times.ratio[i] = medianRatio(samples[i], samples[0]);
    }
    return times;
}

bool isChosen(const Entry& entry, const std::vector<std::string>& only) {
    return only.empty() || std::find(only.begin(), only.end(), entry.name) != only.end();
}

bool runCase(const std::string& name, const std::string& dataDirectory,
             const std::vector<std::string>& only, int rounds) {
    const GroupedPolygons polygons = makeDissolveCase(name, dataDirectory);
    const ChildResult<Probe> expected =
        probe(entries[isChosen(entries[2], only) ? 2 : 3], polygons);
    if (!expected.ok()) throw std::runtime_error(expected.error);
    std::printf("%s: %zu polygons, %lld groups, area %.15g\n", name.c_str(), polygons.wkb.size(),
                static_cast<long long>(expected.value.summary.features()),
                expected.value.summary.area());
    bool allAgree = true;
    std::vector<const Entry*> agreeing;
    std::vector<Probe> probes;
    for (const Entry& entry : entries) {
        if (!isChosen(entry, only)) continue;
        const ChildResult<Probe> result = probe(entry, polygons);
        const std::string trouble =
            result.ok() ? result.value.summary.difference(expected.value.summary, kAreaTolerance)
                        : std::string(result.error);
        if (trouble.empty()) {
            agreeing.push_back(&entry);
            probes.push_back(result.value);
        } else {
            std::printf("  %-14s LEFT OUT: %s\n", entry.name, trouble.c_str());
            allAgree = false;
        }
    }
    const auto times = inChild<Times>([&] { return timeTogether(agreeing, polygons, rounds); });
    if (!times.ok()) throw std::runtime_error(times.error);
    std::printf("  %-14s %10s %7s %9s\n", "contender", "median ms", "ratio", "peak MiB");
    for (std::size_t i = 0; i < agreeing.size(); ++i) {
        std::printf("  %-14s %10.1f %7.2f %9.0f\n", agreeing[i]->name, times.value.median[i],
                    times.value.ratio[i], probes[i].peakMemory);
    }
    return allAgree;
}

int run(int argc, char** argv) {
    std::vector<std::string> cases{"10000:100", "100000:1024", "100000:1", "counties"};
    std::string data = JWCG_EXAMPLE_DATA;
    std::vector<std::string> only;
    int rounds = 5;
    CLI::App app{"Dissolves a polygon layer with jwcg and GEOS: answers, times, memory."};
    app.add_option("CASE", cases, "\"N:G\", N generated polygons in G groups, or \"counties\"")
        ->capture_default_str();
    app.add_option("--only", only, "contenders, instead of all");
    app.add_option("--rounds", rounds, "timed runs of each")->capture_default_str();
    app.add_option("--data", data, "directory of the real layers")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    bool allAgree = true;
    for (const std::string& name : cases) allAgree = runCase(name, data, only, rounds) && allAgree;
    return allAgree ? 0 : 1;
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) { return bench::runMain("dissolve_bench", bench::run, argc, argv); }
