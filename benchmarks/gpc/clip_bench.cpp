// SPDX-License-Identifier: MIT
//
// The clipping engine beside GEOS, Clipper and Boost.Geometry: pairs of polygons, four operations,
// growing sizes, one thread.
//
// Each contender first clips in a process of its own with a time limit, which gives its area and
// tells whether it ends; who passes the limit is not asked again for more vertices. Areas are
// compared before anything is timed, and who differs is named instead of timed. The others run in
// turn in one process; a ratio is the median over the rounds of a rival's time by ours. The floor
// (grid_floor.cpp) stands beside them without an area.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "gpc/clip_rival.h"
#include "support/child_process.h"
#include "support/run_main.h"
#include "support/stats.h"

namespace bench {
namespace {

constexpr std::size_t kContenders = 5;
constexpr const char* kOpNames[] = {"intersection", "union", "difference", "xor"};
constexpr double kOursTolerance = 1e-9;   // of |A| + |B|, against GEOS
constexpr double kRivalTolerance = 1e-6;  // the others round more

struct Entry {
    const char* name;
    std::unique_ptr<ClipRival> (*make)();
    double tolerance;
};
constexpr Entry kAll[kContenders] = {{"ours", makeOursClip, kOursTolerance},
                                     {"geos", makeGeosClip, kOursTolerance},
                                     {"clipper", makeClipperClip, kRivalTolerance},
                                     {"boost", makeBoostClip, kRivalTolerance},
                                     {"floor", makeGridFloor, HUGE_VAL}};

struct Settings {
    std::vector<std::string> families;
    std::vector<int> sizes;
    std::vector<std::string> ops;
    std::vector<std::string> skip;
    bool large = false;
    unsigned limit = 20;
    double budget = 400;
};

/// What one contender says before it is timed.
struct Probe {
    double area = 0;
    double sum = 0;  // |A or B| + |A and B|, asked of the first contender that answers
    double milliseconds = 0;
};

struct Times {
    double median[kContenders] = {};
    double ratio[kContenders] = {};
};

bool listed(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Everything about one table: the settings, and what has been learnt so far.
class ClipBench {
  public:
    explicit ClipBench(const Settings& settings) : m_settings(settings) {}

    bool run() {
        std::printf("times in microseconds a call; rivals as multiples of ours\n");
        std::printf("%-10s %8s %-13s %12s", "family", "n", "operation", "ours");
        for (std::size_t i = 1; i < kContenders; ++i) std::printf(" %10s", kAll[i].name);
        std::printf("\n");
        for (const std::string& family : m_settings.families) {
            for (const int n : m_settings.sizes) {
                if (family == "squares" && n != m_settings.sizes.front()) continue;
                const std::vector<ClipOperands> pairs = makeClipCase(family, n);
                for (int op = 0; op < 4; ++op) {
                    if (m_settings.ops.empty() || listed(m_settings.ops, kOpNames[op])) {
                        row(family, n, static_cast<ClipOp>(op), pairs);
                    }
                }
            }
        }
        summary();
        return m_agreed;
    }

  private:
    void row(const std::string& family, int n, ClipOp op, const std::vector<ClipOperands>& pairs) {
        const std::string name = kOpNames[static_cast<int>(op)];
        std::vector<std::string> notes(kContenders);
        std::vector<Probe> probes(kContenders);
        for (std::size_t i = 0; i < kContenders; ++i) notes[i] = ask(i, family, op, pairs, probes);
        compare(probes, notes);
        std::vector<std::size_t> timed;
        for (std::size_t i = 0; i < kContenders; ++i) {
            if (notes[i].empty()) timed.push_back(i);
        }
        std::printf("%-10s %8d %-13s", family.c_str(), n, name.c_str());
        if (!timed.empty() && timed.front() == 0) {
            const Times times = measure(timed, op, pairs, probes);
            std::printf(" %12.2f", 1000 * times.median[0] / static_cast<double>(pairs.size()));
            for (std::size_t i = 1; i < kContenders; ++i) {
                if (notes[i].empty()) {
                    std::printf(" %10.2f", times.ratio[i]);
                    keep(family, i, times.ratio[i]);
                } else {
                    std::printf(" %10s", notes[i].c_str());
                }
            }
            m_ours[family + " " + name].emplace_back(n, times.median[0] / pairs.size());
        } else {
            std::printf(" %12s", notes[0].c_str());
        }
        std::printf("\n");
        std::fflush(stdout);
    }

    /// Lets a contender clip once. Returns why it is not timed, empty if it may be.
    std::string ask(std::size_t i, const std::string& family, ClipOp op,
                    const std::vector<ClipOperands>& pairs, std::vector<Probe>& probes) {
        if (listed(m_settings.skip, kAll[i].name)) return "-";
        const std::string key = family + " " + kOpNames[static_cast<int>(op)] + " " + kAll[i].name;
        if (m_stopped.count(key)) return "-";
        const auto probe = inChild<Probe>(
            [&] {
                const auto rival = kAll[i].make();
                rival->load(pairs);
                Probe p;
                p.milliseconds = milliseconds([&] { p.area = rival->area(op); });
                if (i < 2) p.sum = rival->area(ClipOp::Union) + rival->area(ClipOp::Intersection);
                return p;
            },
            m_settings.limit);
        if (probe.ok()) {
            probes[i] = probe.value;
            return {};
        }
        const std::string error = probe.error;
        if (error.rfind("over", 0) != 0) return "failed";
        m_stopped.insert(key);
        return ">" + std::to_string(m_settings.limit) + " s";
    }

    /// Notes who differs: from GEOS, or where that has no answer, from ours.
    void compare(const std::vector<Probe>& probes, std::vector<std::string>& notes) {
        const std::size_t reference = notes[1].empty() ? 1 : 0;
        if (!notes[reference].empty()) return;
        const double whole = probes[reference].sum;
        for (std::size_t i = 0; i < kContenders; ++i) {
            if (!notes[i].empty()) continue;
            const double off = std::fabs(probes[i].area - probes[reference].area) / whole;
            if (off <= kAll[i].tolerance) continue;
            char text[32];
            std::snprintf(text, sizeof text, "off %.0e", off);
            notes[i] = text;
            if (i == 0) m_agreed = false;
        }
    }

    Times measure(const std::vector<std::size_t>& timed, ClipOp op,
                  const std::vector<ClipOperands>& pairs, const std::vector<Probe>& probes) const {
        double once = 0;
        for (const std::size_t i : timed) once += probes[i].milliseconds;
        const int rounds = static_cast<int>(std::clamp(m_settings.budget / once, 3.0, 101.0));
        const auto result = inChild<Times>([&] {
            std::vector<std::unique_ptr<ClipRival>> rivals;
            std::vector<Contender> contenders;
            for (const std::size_t i : timed) {
                rivals.push_back(kAll[i].make());
                ClipRival& rival = *rivals.back();
                rival.load(pairs);
                rival.run(op);  // warm
                contenders.push_back({[&rival, op] { rival.run(op); }, [] {}});
            }
            const auto samples = interleave(contenders, rounds);
            Times times;
            for (std::size_t k = 0; k < timed.size(); ++k) {
                times.median[timed[k]] = median(samples[k]);
                times.ratio[timed[k]] = medianRatio(samples[k], samples[0]);
            }
            return times;
        });
        if (!result.ok()) throw std::runtime_error(result.error);
        return result.value;
    }

    void keep(const std::string& family, std::size_t rival, double ratio) {
        const auto at = m_least.emplace(family, std::map<std::size_t, double>()).first;
        const auto entry = at->second.emplace(rival, ratio).first;
        entry->second = std::min(entry->second, ratio);
    }

    /// The least ratio by family and rival, and how our time grows from 10,000 vertices on.
    void summary() const {
        std::printf("\nleast multiple of ours, over sizes and operations\n%-10s", "family");
        for (std::size_t i = 1; i < kContenders; ++i) std::printf(" %10s", kAll[i].name);
        std::printf("\n");
        for (const std::string& family : m_settings.families) {
            std::printf("%-10s", family.c_str());
            for (std::size_t i = 1; i < kContenders; ++i) {
                const auto f = m_least.find(family);
                const bool known = f != m_least.end() && f->second.count(i);
                if (known) std::printf(" %10.2f", f->second.at(i));
                if (!known) std::printf(" %10s", "-");
            }
            std::printf("\n");
        }
        for (const auto& [name, times] : m_ours) {
            if (times.back().first < 100000) continue;
            for (const auto& [n, time] : times) {
                if (n < 10000 || n == times.back().first) continue;
                std::printf("%-24s grows as n^%.2f from %d to %d\n", name.c_str(),
                            std::log(times.back().second / time) /
                                std::log(static_cast<double>(times.back().first) / n),
                            n, times.back().first);
                break;
            }
        }
    }

    const Settings& m_settings;
    bool m_agreed = true;
    std::set<std::string> m_stopped;
    std::map<std::string, std::map<std::size_t, double>> m_least;
    std::map<std::string, std::vector<std::pair<int, double>>> m_ours;
};

int run(int argc, char** argv) {
    Settings settings;
    settings.sizes = {8, 16, 32, 64, 1000, 10000};
    settings.families = clipCaseFamilies();
    CLI::App app{
        "Clips pairs of polygons with jwcg, GEOS, Clipper and Boost.Geometry, one thread."};
    app.add_option("FAMILY", settings.families, "default: all")
        ->check(CLI::IsMember(clipCaseFamilies()));
    const auto* sizes = app.add_option("--size", settings.sizes, "vertices of each operand")
                            ->check(CLI::Range(4, 10000000))
                            ->capture_default_str();
    app.add_flag("--large", settings.large, "also 100,000 and 1,000,000 vertices");
    app.add_option("--op", settings.ops, "operations; default: all")
        ->check(CLI::IsMember({"intersection", "union", "difference", "xor"}));
    app.add_option("--skip", settings.skip, "rivals to leave out")
        ->check(CLI::IsMember({"geos", "clipper", "boost", "floor"}));
    app.add_option("--limit", settings.limit, "seconds that one contender's first answer may take")
        ->capture_default_str();
    app.add_option("--budget", settings.budget, "milliseconds of timing per row, at least 3 rounds")
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    if (settings.large && sizes->count() == 0) {
        settings.sizes.insert(settings.sizes.end(), {100000, 1000000});
    }
    return ClipBench(settings).run() ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) { return bench::runMain("clip_bench", bench::run, argc, argv); }
