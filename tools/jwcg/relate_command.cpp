// SPDX-License-Identifier: MIT
//
// `jwcg relate`: how the features of two layers lie to one another. Without an output the pairs are
// printed, one line each; with one they become the rows of a table, under the same rules as every
// other output.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "commands.h"
#include "jw_layerrelation.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

JWLayerRelationOptions optionsOf(const Settings& settings) {
    JWLayerRelationOptions options;
    options.predicate = settings.relate.predicate == "any" ? "" : settings.relate.predicate;
    options.pattern = settings.relate.pattern;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    return options;
}

Json parametersOf(const Settings& settings) {
    return {{"predicate", settings.relate.predicate},
            {"pattern",
             settings.relate.pattern.empty() ? Json(nullptr) : Json(settings.relate.pattern)}};
}

Json pairAsJson(const JWRelatedPair& pair) {
    return {{"fid_a", pair.fidA},
            {"fid_b", pair.fidB},
            {"relation", JWLayerRelation::relationNames(pair.matrix)},
            {"matrix", pair.matrix.text()}};
}

/// False when standard output takes no more.
bool printPair(const JWRelatedPair& pair) {
    return 0 <= std::printf("%lld\t%lld\t%s\t%s\n", static_cast<long long>(pair.fidA),
                            static_cast<long long>(pair.fidB),
                            JWLayerRelation::relationNames(pair.matrix).c_str(),
                            pair.matrix.text().c_str());
}

/// Prints the pairs; with --json in the account.
int printRelations(const Settings& settings) {
    Json pairs = Json::array();
    int failure = 0;
    const auto show = [&](const JWRelatedPair& pair) {
        if (settings.json) {
            pairs.push_back(pairAsJson(pair));
        } else if (!printPair(pair)) {
            failure = errno;
        }
        return failure == 0;
    };
    const auto relate = [&](InputLayer& a, InputLayer& b, JWLayerReport& report) {
        if (!settings.json) std::puts("fid_a\tfid_b\trelation\tmatrix");
        return JWLayerRelation::relateLayers(&a.layer(), &b.layer(), optionsOf(settings), show,
                                             &report);
    };
    RunSummary summary;
    try {
        summary = runReadJob(settings, {"relate", "relating", parametersOf(settings), relate});
    } catch (const CommandFailure&) {
        if (failure == 0) throw;
        throw CommandFailure(ExitOutOfSpace,
                             std::string("standard output: ") + std::strerror(failure));
    }
    if (settings.json) {
        Json object = asJson(summary);
        object.erase("output");
        object["relations"] = std::move(pairs);
        printJson(object);
    }
    return summary.exitCode;
}

int writeRelations(const Settings& settings) {
    const auto relate = [&](const JobLayers& layers, JWLayerReport& report) {
        const std::int64_t rows =
            JWLayerRelation::relateLayers(&layers.input.layer(), &layers.overlay->layer(),
                                          &layers.output, optionsOf(settings), &report);
        return static_cast<int>(std::min<std::int64_t>(rows, INT_MAX));
    };
    LayerJob job{"relate",
                 "relating",
                 true,
                 parametersOf(settings),
                 [](InputLayer&) { return JWWKBNone; },
                 relate,
                 AccountOfNothing,
                 {},
                 true};
    return runLayerJob(settings, job);
}

int runRelate(const Settings& settings) {
    if (!settings.output.empty()) return writeRelations(settings);
    if (settings.overwrite || settings.append || !settings.outputLayer.empty() ||
        !settings.outputFormat.empty()) {
        throw CommandFailure(ExitUsage, "options about the output need an OUTPUT");
    }
    return printRelations(settings);
}

std::vector<std::string> predicateChoices() {
    std::vector<std::string> choices = {"any", "intersects"};
    for (int i = 0; i < JWRelationMatrix::kPredicates; ++i) {
        choices.emplace_back(JWRelationMatrix::predicateName(i));
    }
    return choices;
}

void setupRelate(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, true, true);
    addChoice(app, "--predicate", settings.relate.predicate, predicateChoices(),
              "Only pairs for which this holds of the feature of INPUT to that of OVERLAY; "
              "disjoint names those whose envelopes meet all the same");
    addText(app, "--pattern", settings.relate.pattern, "MATRIX",
            "Only pairs whose matrix fits nine characters: T for something, F for nothing, 0 to 2 "
            "for a dimension, * for either, as in 'T*F**F***'");
    addThreadOptions(app, settings);
}

}  // namespace

Command relateCommand() {
    return {
        "relate",
        "tell how the features of two layers lie to one another",
        "For every pair of a feature of INPUT and a feature of OVERLAY whose envelopes meet, of "
        "any kinds of geometry, prints their identifiers, the names of the relations that "
        "hold (equals, disjoint, touches, crosses, overlaps, contains, covers, within, coveredby), "
        "and the matrix of dimensions in which interior, boundary and exterior of the first meet "
        "those of the second (DE-9IM). All other pairs are disjoint.\n\n"
        "Lines of the printed table are separated by tabs. With OUTPUT the pairs become the "
        "rows of a table without geometry instead, with the fields fid_a, fid_b, relation and "
        "matrix.\n\n"
        "Nothing is rounded: features touch when they touch exactly.",
        "jwcg relate counties.gpkg states.gpkg --predicate within",
        setupRelate,
        runRelate};
}

}  // namespace jws::cli
