// SPDX-License-Identifier: MIT
//
// Overlays of two polygon layers (intersection, erase, union, identity, symmetrical difference),
// beside a hand-written GEOS loop and, for the intersection, GDAL's layer algebra.
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
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "overlay/overlay_cases.h"
#include "support/child_process.h"
#include "support/gdal_rival.h"
#include "support/geos_rival.h"
#include "support/ours.h"
#include "support/run_main.h"
#include "support/stats.h"

namespace bench {

namespace {

constexpr double kAreaTolerance = 1e-9;          // relative
constexpr std::int64_t kQuadraticLimit = 20000;  // GDAL without an index: 10 minutes at 100,000
constexpr std::size_t kMostContenders = 8;

struct Settings {
    CaseSettings input;
    std::vector<std::string> cases{"1000", "10000", "counties", "countries"};
    std::vector<std::string> operations;
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

struct NamedOperation {
    const char* name;
    Operation operation;
};

constexpr NamedOperation kOperations[] = {
    {"intersect", Operation::Intersect},
    {"erase", Operation::Erase},
    {"union", Operation::Union},
    {"identity", Operation::Identity},
    {"symdiff", Operation::SymmetricalDifference},
};

std::vector<Group> groupsOf(Operation operation, const Settings& settings) {
    const OurForm plain{operation, false, settings.blockSize};
    const OurForm team{operation, true, settings.blockSize};
    const auto memory = [](const OurForm& form) { return [form] { return makeOursMemory(form); }; };
    const auto file = [](const OurForm& form) { return [form] { return makeOursFile(form); }; };
    const auto geos = [operation](GeosPretest pretest) {
        return [=] { return makeGeosLoop(operation, pretest); };
    };
    std::vector<Group> groups{
        {"memory",
         {{"jwcg", memory(plain)},
          {"geos", geos(GeosPretest::None)},
          {"geos-prepared", geos(GeosPretest::Prepared)}}},
        {"threads", {{"jwcg", memory(plain)}, {"jwcg_mp", memory(team), INT64_MAX, true}}},
        {"threads-file",
         {{"jwcg-file", file(plain)}, {"jwcg_mp-file", file(team), INT64_MAX, true}}},
    };
    if (operation == Operation::Intersect) {
        groups[0].entries.push_back({"gdal", makeGdalMemory, kQuadraticLimit});
        groups.push_back({"file", {{"jwcg-file", file(plain)}, {"gdal-file", makeGdalFile}}});
    }
    return groups;
}

ChildResult<Probe> probe(const Entry& entry, const OverlayCase& input) {
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

Times timeTogether(const std::vector<const Entry*>& entries, const OverlayCase& input, int rounds) {
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

int roundsFor(const Settings& settings, const OverlayCase& input) {
    if (settings.rounds > 0) return settings.rounds;
    return input.polygonsA <= 5000 ? 9 : input.polygonsA <= 20000 ? 5 : 3;
}

bool listed(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The contenders of a group whose answers hold; says of the others why they are left out.
std::vector<const Entry*> agreeing(const Group& group, const Settings& settings,
                                   const OverlayCase& input, const Summary& expected,
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

bool runGroup(const Group& group, const Settings& settings, const OverlayCase& input,
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

bool runOperation(const NamedOperation& named, const std::string& caseName,
                  const Settings& settings, const OverlayCase& input) {
    const Entry geos{"geos",
                     [&named] { return makeGeosLoop(named.operation, GeosPretest::Prepared); }};
    const ChildResult<Probe> reference = probe(geos, input);
    if (!reference.ok()) throw std::runtime_error(std::string("reference: ") + reference.error);
    const Summary& expected = reference.value.summary;
    std::printf("%s, %s: %lld x %lld polygons; %lld results above %.3g square units, area %.15g\n",
                named.name, caseName.c_str(), static_cast<long long>(input.polygonsA),
                static_cast<long long>(input.polygonsB),
                static_cast<long long>(expected.features() - expected.slivers()), input.sliver,
                expected.area());
    bool allAgree = true;
    for (const Group& group : groupsOf(named.operation, settings)) {
        if (!settings.groups.empty() && !listed(settings.groups, group.name)) continue;
        if (!runGroup(group, settings, input, expected)) allAgree = false;
    }
    return allAgree;
}

bool runCase(const std::string& name, const Settings& settings) {
    const OverlayCase input = prepareCase(name, settings.input);
    bool allAgree = true;
    for (const NamedOperation& named : kOperations) {
        if (!settings.operations.empty() && !listed(settings.operations, named.name)) continue;
        if (!runOperation(named, name, settings, input)) allAgree = false;
    }
    std::filesystem::remove(input.pair.a);
    std::filesystem::remove(input.pair.b);
    return allAgree;
}

// A directory that goes with this object.
struct TemporaryDirectory {
    TemporaryDirectory()
        : path((std::filesystem::temp_directory_path() / "jwcg-bench-XXXXXX").string()) {
        if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("cannot create " + path);
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string path;
};

int run(int argc, char** argv) {
    Settings settings;
    settings.input.dataDirectory = JWCG_EXAMPLE_DATA;
    CLI::App app{"Overlays two polygon layers with jwcg, GEOS and GDAL: answers, times, memory."};
    app.add_option("CASE", settings.cases,
                   "numbers of generated polygons, \"counties\", \"countries\"")
        ->capture_default_str();
    app.add_option("--operation", settings.operations,
                   "intersect, erase, union, identity, symdiff; default: all")
        ->check(CLI::IsMember({"intersect", "erase", "union", "identity", "symdiff"}));
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

    std::optional<TemporaryDirectory> temporary;
    if (settings.input.workDirectory.empty()) {
        settings.input.workDirectory = temporary.emplace().path;
    }
    bool allAgree = true;
    for (const std::string& name : settings.cases) allAgree = runCase(name, settings) && allAgree;
    return allAgree ? 0 : 1;
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    return bench::runMain("layer_overlay_bench", bench::run, argc, argv);
}
