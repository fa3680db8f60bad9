// SPDX-License-Identifier: MIT
//
// Workers take chunks of pairs from a common count; what a pair is depends on its number alone. A
// watch looks on: an engine that hangs is caught in the act, one that crashes leaves the name of
// the pair.
#include "campaign_run.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "support/clip_check.h"
#include "support/clip_families.h"
#include "support/reduce.h"

namespace jwtest {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::uint64_t kChunk = 64;
constexpr std::uint64_t kTold = 10000;  // pairs between words on progress

double secondsNow() {
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

/// Processor time of the whole process: a machine that is busy otherwise, or a process that is
/// stopped for a while, is no hang.
double secondsWorked() {
    return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC);
}

/// What is in a worker's hands, for the watch and the crash handler.
struct InHand {
    std::atomic<double> since{0};  // 0: nothing
    char name[160] = "";
};
thread_local InHand* inHand = nullptr;

void reportCrash(int signal) {
    const char* name = inHand ? inHand->name : "no pair";
    const char head[] = "\nCRASH in ";
    (void)!write(STDOUT_FILENO, head, sizeof head - 1);
    (void)!write(STDOUT_FILENO, name, std::strlen(name));
    (void)!write(STDOUT_FILENO, "\n", 1);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

volatile std::sig_atomic_t askedToEnd = 0;
void askToEnd(int) { askedToEnd = 1; }

/// A miss without its figures: what misses of one cause have in common.
std::string kindOf(const Miss& miss) {
    return miss.operation + ": " +
           miss.what.substr(0, std::min({miss.what.find(':'), miss.what.find('['),
                                         miss.what.find(" at "), miss.what.size()}));
}

struct Tally {
    std::uint64_t pairs = 0;
    std::uint64_t misses = 0;
    double seconds = 0;
    std::map<std::string, std::uint64_t> kinds;

    void add(const Tally& other) {
        pairs += other.pairs;
        misses += other.misses;
        seconds += other.seconds;
        for (const auto& [kind, count] : other.kinds) kinds[kind] += count;
    }
};

class Campaign {
  public:
    explicit Campaign(const CampaignSettings& settings) : m_settings(settings) {
        for (const std::string& name : settings.families) {
            const ClipFamily* family = familyNamed(name);
            if (!family) throw std::invalid_argument("no family is called " + name);
            m_families.push_back(family);
        }
        if (m_families.empty()) {
            for (const ClipFamily& family : clipFamilies()) m_families.push_back(&family);
        }
        m_tallies.resize(m_families.size());
        m_total = settings.only < 0 ? settings.pairs : m_families.size();
    }

    std::uint64_t run() {
        for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGBUS}) {
            std::signal(signal, reportCrash);
        }
        for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, askToEnd);
        const double start = secondsNow();
        std::vector<InHand> hands(static_cast<std::size_t>(m_settings.threads));
        std::atomic<int> running{m_settings.threads};
        std::vector<std::thread> team;
        for (InHand& hand : hands) {
            team.emplace_back([&] {
                work(hand);
                --running;
            });
        }
        while (running > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            for (const InHand& hand : hands) watch(hand);
            tellProgress();
        }
        for (std::thread& worker : team) worker.join();
        return summarize(secondsNow() - start);
    }

  private:
    void work(InHand& hand) {
        inHand = &hand;
        std::vector<Tally> mine(m_families.size());
        for (;;) {
            const std::uint64_t first = m_next.fetch_add(kChunk);
            if (first >= m_total || askedToEnd) break;
            for (std::uint64_t i = first; i < std::min(first + kChunk, m_total); ++i) {
                if (askedToEnd) break;
                const std::size_t f = i % m_families.size();
                const std::uint64_t pair = m_settings.only < 0
                                               ? i / m_families.size()
                                               : static_cast<std::uint64_t>(m_settings.only);
                one(*m_families[f], pair, mine[f], hand);
            }
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (std::size_t f = 0; f < mine.size(); ++f) m_tallies[f].add(mine[f]);
    }

    void one(const ClipFamily& family, std::uint64_t number, Tally& tally, InHand& hand) {
        std::snprintf(hand.name, sizeof hand.name, "--family %s --seed %llu --pair %llu",
                      family.name, static_cast<unsigned long long>(m_settings.seed),
                      static_cast<unsigned long long>(number));
        const double start = secondsNow();
        hand.since = secondsWorked() + 1e-9;
        RandomRings random = generatorOf(family, m_settings.seed, number);
        const RingPair pair = family.make(random);
        const Miss miss = check(pair, random);
        tally.seconds += secondsNow() - start;
        ++tally.pairs;
        if (miss) {
            ++tally.misses;
            ++tally.kinds[kindOf(miss)];
            if (tally.misses <= static_cast<std::uint64_t>(m_settings.show)) {
                print(hand.name, pair, random, miss);
            }
        }
        hand.since = 0;
        ++m_done;
    }

    Miss check(const RingPair& pair, RandomRings random) const {
        return checkPair(pair, random, {m_settings.geos});
    }

    void print(const char* name, RingPair pair, const RandomRings& random, Miss miss) {
        if (m_settings.reduce) {
            const std::string kind = kindOf(miss);
            pair = reduced(pair, [&](const RingPair& smaller) {
                return kindOf(check(smaller, random)) == kind;
            });
            miss = check(pair, random);
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::printf("# MISS %s\n# %s: %s\n%s\n%s\n\n", name, miss.operation.c_str(),
                    miss.what.c_str(), wktOf(pair.a).c_str(), wktOf(pair.b).c_str());
        std::fflush(stdout);
    }

    void watch(const InHand& hand) {
        const double since = hand.since;
        const double most = m_settings.limit * m_settings.threads;
        if (since == 0 || m_settings.reduce || secondsWorked() - since < most) return;
        std::printf("# HANG over %g s in %s\n", m_settings.limit, hand.name);
        std::fflush(stdout);
        std::_Exit(1);
    }

    void tellProgress() {
        const std::uint64_t done = m_done;
        if (done < m_told + kTold) return;
        m_told = done;
        std::printf("# %llu pairs done\n", static_cast<unsigned long long>(done));
        std::fflush(stdout);
    }

    std::uint64_t summarize(double elapsed) const {
        std::printf("%-22s %10s %8s %10s\n", "family", "pairs", "misses", "pairs/s");
        Tally all;
        for (std::size_t f = 0; f < m_families.size(); ++f) {
            const Tally& t = m_tallies[f];
            std::printf("%-22s %10llu %8llu %10.0f\n", m_families[f]->name,
                        static_cast<unsigned long long>(t.pairs),
                        static_cast<unsigned long long>(t.misses),
                        static_cast<double>(t.pairs) / std::max(t.seconds, 1e-9));
            for (const auto& [kind, count] : t.kinds) {
                std::printf("    %6llu  %s\n", static_cast<unsigned long long>(count),
                            kind.c_str());
            }
            all.add(t);
        }
        std::printf("%llu pairs, seed %llu, %llu misses; %.0f s, %.0f pairs/s on %d threads\n",
                    static_cast<unsigned long long>(all.pairs),
                    static_cast<unsigned long long>(m_settings.seed),
                    static_cast<unsigned long long>(all.misses), elapsed,
                    static_cast<double>(all.pairs) / elapsed, m_settings.threads);
        return all.misses;
    }

    const CampaignSettings& m_settings;
    std::vector<const ClipFamily*> m_families;
    std::vector<Tally> m_tallies;
    std::uint64_t m_total = 0;
    std::atomic<std::uint64_t> m_next{0};
    std::atomic<std::uint64_t> m_done{0};
    std::uint64_t m_told = 0;  // of them, at the last word
    std::mutex m_mutex;
};

}  // namespace

std::uint64_t runCampaign(const CampaignSettings& settings) { return Campaign(settings).run(); }

std::uint64_t checkFile(const CampaignSettings& settings) {
    std::ifstream file(settings.wktFile);
    if (!file) throw std::runtime_error("cannot read " + settings.wktFile);
    std::uint64_t pairs = 0, misses = 0;
    std::string a;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (a.empty()) {
            a = line;
            continue;
        }
        RandomRings random(settings.seed);
        const Miss miss = checkPair({ringsOf(a), ringsOf(line)}, random, {settings.geos});
        ++pairs;
        if (miss) {
            ++misses;
            std::printf("# MISS pair %llu of the file\n# %s: %s\n%s\n%s\n\n",
                        static_cast<unsigned long long>(pairs), miss.operation.c_str(),
                        miss.what.c_str(), a.c_str(), line.c_str());
        }
        a.clear();
    }
    std::printf("%llu pairs, %llu misses\n", static_cast<unsigned long long>(pairs),
                static_cast<unsigned long long>(misses));
    return misses;
}

}  // namespace jwtest
