// SPDX-License-Identifier: MIT
//
// The course that every command from layers to a layer takes: check what can be checked, open the
// inputs, start the output, run the library's operation, move the output into place, report. A
// command says what is its own in a job; the options that they share are declared here.
#ifndef JWCG_LAYER_JOB_H
#define JWCG_LAYER_JOB_H

#include <functional>

#include "command_table.h"
#include "input_layer.h"
#include "jw_report.h"
#include "run_summary.h"

namespace CLI {
class App;
}

namespace jws::cli {

/// What a job works on.
struct JobLayers {
    InputLayer& input;
    InputLayer* overlay;  ///< null for jobs with one input
    JWFeatureLayer& output;
};

struct LayerJob {
    const char* command;
    const char* phase;  ///< what the progress line says while the operation runs
    bool takesOverlay;
    Json parameters;  ///< of its own, beside the shared ones
    /// Looks at the input before the output is started; throws CommandFailure. Returns the type of
    /// the output.
    std::function<enumJWWKBGeometryType(InputLayer& input)> prepare;
    /// Runs the library's operation and returns its code.
    std::function<int(const JobLayers& layers, JWLayerReport& report)> operation;
    /// What the summary says about areas and vertices.
    enumAccount account = AccountOfAreas;
    /// Adds what the command has to say besides, once it is done; may be empty.
    std::function<void(RunSummary& summary)> describe = {};
    bool anyOverlay = false;   ///< takes an overlay of any geometries, not of polygons only
    bool makesPoints = false;  ///< the points of the output are not those of the input
};

/// A job on two layers that writes none.
struct ReadJob {
    const char* command;
    const char* phase;
    Json parameters;
    /// Runs the library's operation; a negative code is a failure.
    std::function<std::int64_t(InputLayer& input, InputLayer& overlay, JWLayerReport& report)>
        operation;
};

/// Runs a job, prints its account, and returns the exit status; throws CommandFailure.
int runLayerJob(const Settings& settings, const LayerJob& job);
/// Runs a job without an output, lists what was rejected, and returns its account, which has no
/// output either; throws CommandFailure.
RunSummary runReadJob(const Settings& settings, const ReadJob& job);

/// Declares the positional arguments and the options that choose files, layers and features. An
/// output that `mayBeMissing` is not asked for.
void addLayerOptions(CLI::App& app, Settings& settings, bool takesOverlay,
                     bool mayBeMissing = false);
/// Of these, those that choose layers, features of INPUT and of the file called `overlay` (null for
/// none), and the format.
void addFileOptions(CLI::App& app, Settings& settings, const char* overlay);
/// Of these, --overwrite and --append.
void addOutputOptions(CLI::App& app, Settings& settings);
/// Declares --block-size and --threads.
void addThreadOptions(CLI::App& app, Settings& settings);
/// These, and --tolerance and --area-field before them.
void addRunOptions(CLI::App& app, Settings& settings);
/// The parameters of the latter two, for `LayerJob::parameters`.
Json withAreaParameters(const Settings& settings, Json parameters);

// For `prepare`.

/// Polygons in, multi-polygons out.
enumJWWKBGeometryType requirePolygons(InputLayer& input);
/// Lines or polygons in, the same out.
enumJWWKBGeometryType requireLinesOrPolygons(InputLayer& input);
/// Any geometries in, the same out.
enumJWWKBGeometryType requireGeometries(InputLayer& input);

}  // namespace jws::cli

#endif  // JWCG_LAYER_JOB_H
