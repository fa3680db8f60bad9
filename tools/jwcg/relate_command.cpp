// SPDX-License-Identifier: MIT
//
// `jwcg relate`: how the features of two layers lie to one another. Without an output the pairs are
// printed, one line each, and the account goes to standard error; with one they become the rows of a
// table, under the same rules as every other output.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "commands.h"
#include "jw_layerrelation.h"
#include "layer_job.h"
#include "progress_bar.h"

namespace jws::cli {
namespace {

JWLayerRelationOptions optionsOf(const Settings& settings) {
    JWLayerRelationOptions options;
    options.predicate = settings.predicate == "any" ? "" : settings.predicate;
    options.pattern = settings.pattern;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    return options;
}

Json parametersOf(const Settings& settings) {
    return {{"predicate", settings.predicate},
            {"pattern", settings.pattern.empty() ? Json(nullptr) : Json(settings.pattern)}};
}

Json pairAsJson(const JWRelatedPair& pair) {
    return {{"fid_a", pair.fidA},
            {"fid_b", pair.fidB},
            {"relation", JWLayerRelation::relationNames(pair.matrix)},
            {"matrix", pair.matrix.text()}};
}

void printPair(const JWRelatedPair& pair) {
    std::printf("%lld\t%lld\t%s\t%s\n", static_cast<long long>(pair.fidA),
                static_cast<long long>(pair.fidB), pair.matrix.text().c_str(),
                JWLayerRelation::relationNames(pair.matrix).c_str());
}

/// Prints the pairs, and with --json the account beside them.
int printRelations(const Settings& settings) {
    ProgressBar bar(!settings.quiet && !isTerminal(stdout));
    bar.attachToLibrary(settings.verbose);
    bar.startPhase("relating");
    Json pairs = Json::array();
    const auto show = [&](const JWRelatedPair& pair) {
        if (settings.json) {
            pairs.push_back(pairAsJson(pair));
        } else {
            printPair(pair);
        }
        return std::ferror(stdout) == 0;
    };
    if (!settings.json) std::puts("fid_a\tfid_b\tmatrix\trelation");
    const RunSummary summary =
        readLayerJob(settings, {"relate", parametersOf(settings)},
                     [&](InputLayer& a, InputLayer& b, JWLayerReport& report) {
                         return JWLayerRelation::relateLayers(&a.layer(), &b.layer(),
                                                              optionsOf(settings), show, &report);
                     });
    bar.clear();
    listRejected(summary, settings.verbose);
    if (settings.json) {
        Json object = asJson(summary);
        object["relations"] = std::move(pairs);
        printJson(object);
    }
    return summary.exitCode;
}

int writeRelations(const Settings& settings) {
    return runLayerJob(settings,
                       {"relate", "relating", true, parametersOf(settings),
                        [](InputLayer&) { return JWWKBNone; },
                        [&](const JobLayers& layers, JWLayerReport& report) {
                            const std::int64_t rows = JWLayerRelation::relateLayers(
                                &layers.input.layer(), &layers.overlay->layer(), &layers.output,
                                optionsOf(settings), &report);
                            return static_cast<int>(std::min<std::int64_t>(rows, INT_MAX));
                        }});
}

}  // namespace
}  // namespace jws::cli
