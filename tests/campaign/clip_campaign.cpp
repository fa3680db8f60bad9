// SPDX-License-Identifier: MIT
//
// Hunts faults of the clipping engine over random pairs of operands: the same checks as the suite,
// for as many pairs as one has patience for. A miss is printed with the arguments that repeat it.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "campaign_run.h"
#include "support/clip_families.h"

namespace {

std::vector<std::string> familyNames() {
    std::vector<std::string> names;
    for (const jwtest::ClipFamily& family : jwtest::clipFamilies()) names.push_back(family.name);
    return names;
}

}  // namespace

int main(int argc, char** argv) {
    jwtest::CampaignSettings settings;
    bool noGeos = false;
    CLI::App app{"Checks the clipping engine on random pairs of operands, by all operations."};
    app.add_option("--pairs", settings.pairs, "how many, over all families")->capture_default_str();
    app.add_option("--seed", settings.seed, "of the pairs")->capture_default_str();
    app.add_option("--family", settings.families, "only these; default: all")
        ->check(CLI::IsMember(familyNames()));
    app.add_option("--pair", settings.only, "only this pair of each family");
    app.add_option("--threads", settings.threads, "how many work")
        ->capture_default_str()
        ->check(CLI::Range(1, 256));
    app.add_option("--show", settings.show, "misses printed of each family, on each thread")
        ->capture_default_str();
    app.add_option("--limit", settings.limit, "seconds that one pair may take")
        ->capture_default_str();
    app.add_flag("--reduce", settings.reduce, "make the operands of printed misses small");
    app.add_flag("--no-geos", noGeos, "do not compare with GEOS, except for validity");
    app.add_option("--wkt", settings.wktFile,
                   "check the pairs of this file instead: a polygon per line, A then B");
    CLI11_PARSE(app, argc, argv);
    settings.geos = !noGeos;
    try {
        const auto misses =
            settings.wktFile.empty() ? jwtest::runCampaign(settings) : jwtest::checkFile(settings);
        return misses == 0 ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "clip_campaign: %s\n", failure.what());
        return 2;
    }
}
