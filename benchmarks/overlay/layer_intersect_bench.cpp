// SPDX-License-Identifier: MIT
//
// Intersection of two polygon layers, beside a hand-written GEOS loop and GDAL's layer algebra.
//
// Every contender first runs once in a process of its own: that gives its answer and its peak
// memory. Answers are compared with those of the GEOS loop, and who differs is named and not timed.
// The others then run interleaved in one further process per group; a group compares like with like
// (memory to memory, file to file, one thread with the team), and its first contender is the one
// that the ratios refer to.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "overlay/intersect_cases.h"
#include "support/child_process.h"
#include "support/gdal_rival.h"
#include "support/geos_rival.h"
#include "support/ours.h"
#include "support/stats.h"

namespace bench {

namespace {

constexpr double kAreaTolerance = 1e-9;          // relative
constexpr std::int64_t kQuadraticLimit = 20000;  // GDAL without an index: 10 minutes at 100,000
constexpr std::size_t kMostContenders = 8;

struct Settings {
    CaseSettings input;
    std::vector<std::string> cases{"1000", "10000", "100000", "counties"};
    std::vector<std::string> groups;
    std::vector<std::string> skip;
    int rounds = 0;
    int blockSize = 4096;
};

struct Entry {
    const char* name;
    std::function<std::unique_ptr<Rival>()> make;
    std::int64_t mostPolygons = INT64_MAX;
    bool sameBytesAsFirst = false;  // the result must equal that of the group's first contender
};

struct Group {
    const char* name;
    std::vector<Entry> entries;
};

// What a contender's own process tells of it.
struct Probe {
    Summary summary;
    double loadedMemory = 0.0;
    double peakMemory = 0.0;
};

struct Times {
    double median[kMostContenders] = {};
    double fastest[kMostContenders] = {};
    double ratio[kMostContenders] = {};
};

std::vector<Group> groupsOf(const Settings& settings) {
    const int block = settings.blockSize;
    const auto memory = [block](OurForm form) {
        return [=] { return makeOursMemory(form, block); };
    };
    const auto file = [block](OurForm form) { return [=] { return makeOursFile(form, block); }; };
    return {
        {"memory",
         {{"jwcg", memory(OurForm::Plain)},
          {"geos", [] { return makeGeosLoop(GeosPretest::None); }},
          {"geos-prepared", [] { return makeGeosLoop(GeosPretest::Prepared); }},
          {"gdal", makeGdalMemory, kQuadraticLimit}}},
        {"file", {{"jwcg-file", file(OurForm::Plain)}, {"gdal-file", makeGdalFile}}},
        {"threads",
         {{"jwcg", memory(OurForm::Plain)}, {"jwcg_mp", memory(OurForm::Mp), INT64_MAX, true}}},
        {"threads-file",
         {{"jwcg-file", file(OurForm::Plain)},
          {"jwcg_mp-file", file(OurForm::Mp), INT64_MAX, true}}},
    };
}

ChildResult<Probe> probe(const Entry& entry, const IntersectCase& input) {
    return inChild<Probe>([&] {
        Probe result;
        const std::unique_ptr<Rival> rival = entry.make();
        rival->load(input.pair);
        result.loadedMemory = peakMemory();
        rival->run();
        result.peakMemory = peakMemory();
        result.summary = Summary(input.sliver);
        rival->summarize(result.summary);
        rival->clear();
        return result;
    });
}

Times timeTogether(const std::vector<const Entry*>& entries, const IntersectCase& input,
                   int rounds) {
    std::vector<std::unique_ptr<Rival>> rivals;
    std::vector<Contender> contenders;
    for (const Entry* entry : entries) {
        rivals.push_back(entry->make());
        Rival& rival = *rivals.back();
        rival.load(input.pair);
        contenders.push_back({[&rival] { rival.run(); }, [&rival] { rival.clear(); }});
    }
    const auto samples = interleave(contenders, rounds);
    Times times;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        times.median[i] = median(samples[i]);
        times.fastest[i] = *std::min_element(samples[i].begin(), samples[i].end());
        times.ratio[i] = medianRatio(samples[i], samples[0]);
    }
    return times;
}

int roundsFor(const Settings& settings, const IntersectCase& input) {
    if (settings.rounds > 0) return settings.rounds;
    return input.polygonsA <= 5000 ? 9 : input.polygonsA <= 20000 ? 5 : 3;
}

bool listed(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The contenders of a group whose answers hold; says of the others why they are left out.
std::vector<const Entry*> agreeing(const Group& group, const Settings& settings,
                                   const IntersectCase& input, const Summary& expected,
                                   std::vector<Probe>& probes, bool& allAgree) {
    std::vector<const Entry*> agreed;
    for (const Entry& entry : group.entries) {
        if (listed(settings.skip, entry.name)) continue;
        if (input.polygonsA > entry.mostPolygons) {
            std::printf("  %-14s not run: quadratic\n", entry.name);
            continue;
        }
        const ChildResult<Probe> result = probe(entry, input);
        std::string trouble = result.ok()
                                  ? result.value.summary.difference(expected, kAreaTolerance)
                                  : std::string(result.error);
        if (trouble.empty() && entry.sameBytesAsFirst && !probes.empty() &&
            result.value.summary.hash() != probes.front().summary.hash()) {
            trouble = "not the bytes of the plain form";
        }
        if (trouble.empty()) {
            agreed.push_back(&entry);
            probes.push_back(result.value);
        } else {
            std::printf("  %-14s LEFT OUT: %s\n", entry.name, trouble.c_str());
            allAgree = false;
        }
    }
    return agreed;
}

void printTable(const std::vector<const Entry*>& entries, const std::vector<Probe>& probes,
                const Times& times) {
    std::printf("  %-14s %10s %8s %10s %10s %7s %11s %9s\n", "contender", "pieces", "slivers",
                "median ms", "fastest", "ratio", "loaded MiB", "peak MiB");
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::printf("  %-14s %10lld %8lld %10.1f %10.1f %7.2f %11.0f %9.0f\n", entries[i]->name,
                    static_cast<long long>(probes[i].summary.features()),
                    static_cast<long long>(probes[i].summary.slivers()), times.median[i],
                    times.fastest[i], times.ratio[i], probes[i].loadedMemory, probes[i].peakMemory);
    }
}

bool runGroup(const Group& group, const Settings& settings, const IntersectCase& input,
              const Summary& expected) {
    const int rounds = roundsFor(settings, input);
    std::printf(" %s (%d rounds)\n", group.name, rounds);
    bool allAgree = true;
    std::vector<Probe> probes;
    const auto entries = agreeing(group, settings, input, expected, probes, allAgree);
    if (entries.empty()) return allAgree;
    const auto times = inChild<Times>([&] { return timeTogether(entries, input, rounds); });
    if (!times.ok()) {
        std::printf("  timing failed: %s\n", times.error);
        return false;
    }
    printTable(entries, probes, times.value);
    return allAgree;
}

bool runCase(const std::string& name, const Settings& settings) {
    const IntersectCase input = prepareCase(name, settings.input);
    const Entry geos{"geos", [] { return makeGeosLoop(GeosPretest::None); }};
    const ChildResult<Probe> reference = probe(geos, input);
    if (!reference.ok()) throw std::runtime_error(std::string("reference: ") + reference.error);
    const Summary& expected = reference.value.summary;
    std::printf("%s: %lld x %lld polygons; %lld pieces above %.3g square units, area %.15g\n",
                name.c_str(), static_cast<long long>(input.polygonsA),
                static_cast<long long>(input.polygonsB),
                static_cast<long long>(expected.features() - expected.slivers()), input.sliver,
                expected.area());
    bool allAgree = true;
    for (const Group& group : groupsOf(settings)) {
        if (!settings.groups.empty() && !listed(settings.groups, group.name)) continue;
        if (!runGroup(group, settings, input, expected)) allAgree = false;
    }
    std::filesystem::remove(input.pair.a);
    std::filesystem::remove(input.pair.b);
    return allAgree;
}

std::string makeWorkDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "jwcg-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot create " + name);
    return name;
}

int run(int argc, char** argv) {
    Settings settings;
    settings.input.dataDirectory = JWCG_EXAMPLE_DATA;
    CLI::App app{"Intersects two polygon layers with jwcg, GEOS and GDAL: answers, times, memory."};
    app.add_option("CASE", settings.cases, "numbers of generated polygons, or \"counties\"")
        ->capture_default_str();
    app.add_option("--group", settings.groups, "memory, file, threads, threads-file; default: all")
        ->check(CLI::IsMember({"memory", "file", "threads", "threads-file"}));
    app.add_option("--skip", settings.skip, "contenders to leave out, by name");
    app.add_option("--rounds", settings.rounds, "timed runs of each; default: 3 to 9 by size")
        ->check(CLI::Range(1, 1000));
    app.add_option("--block-size", settings.blockSize, "features of A that jwcg holds at a time")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--seed", settings.input.seed, "of the generated layers")->capture_default_str();
    app.add_option("--data", settings.input.dataDirectory, "directory of the real layers")
        ->capture_default_str();
    app.add_option("--work", settings.input.workDirectory,
                   "existing directory for inputs and results; default: a temporary one");
    CLI11_PARSE(app, argc, argv);

    const bool temporary = settings.input.workDirectory.empty();
    if (temporary) settings.input.workDirectory = makeWorkDirectory();
    bool allAgree = true;
    try {
        for (const std::string& name : settings.cases) {
            if (!runCase(name, settings)) allAgree = false;
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "layer_intersect_bench: %s\n", failure.what());
        allAgree = false;
    }
    if (temporary) std::filesystem::remove_all(settings.input.workDirectory);
    return allAgree ? 0 : 1;
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    try {
        return bench::run(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "layer_intersect_bench: %s\n", failure.what());
        return 1;
    }
}
