// SPDX-License-Identifier: MIT
//
// The commands that overlay two polygon layers. They share their options and one course of action:
// check what can be checked, open both inputs, start the output, run the library's operation, move
// the output into place, report. An operation is one library call.
#include <CLI/CLI.hpp>
#include <chrono>
#include <climits>

#include "commands.h"
#include "input_layer.h"
#include "jw_geometryoverlay2.h"
#include "jw_overlayoptions.h"
#include "output_file.h"
#include "progress_bar.h"
#include "run_summary.h"

namespace jws::cli {
namespace {

using LayerOverlay = int (*)(JWFeatureLayer*, JWFeatureLayer*, JWFeatureLayer*,
                             const JWOverlayOptions&, JWLayerReport*);

/// Seconds since the last call.
class Stopwatch {
  public:
    double lap() {
        const Clock::time_point now = Clock::now();
        const double seconds = std::chrono::duration<double>(now - m_last).count();
        m_last = now;
        return seconds;
    }

  private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_last = Clock::now();
};

int attributeMode(const std::string& attributes) {
    if (attributes == "fid") return 1;
    return attributes == "both" ? 2 : 0;
}

JWOverlayOptions optionsOf(const Settings& settings) {
    JWOverlayOptions options;
    options.attributeMode = attributeMode(settings.attributes);
    options.tolerance = settings.tolerance;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    options.promoteToMulti = true;
    options.areaField = settings.areaField;
    return options;
}

Json parametersOf(const Settings& settings) {
    return {{"attributes", settings.attributes},
            {"tolerance", settings.tolerance},
            {"block_size", settings.blockSize},
            {"threads", settings.threads},
            {"area_field", settings.areaField.empty() ? Json(nullptr) : Json(settings.areaField)},
            {"overwrite", settings.overwrite},
            {"append", settings.append}};
}

OutputRequest outputOf(const Settings& settings) {
    OutputRequest request;
    request.path = settings.output;
    request.format = settings.outputFormat;
    request.layer = settings.outputLayer;
    request.overwrite = settings.overwrite;
    request.append = settings.append;
    request.inputs = {settings.input, settings.overlay};
    return request;
}

/// Runs the library's operation into the output layer. Throws CommandFailure when it fails.
void overlay(LayerOverlay operation, InputLayer& a, InputLayer& b, JWFeatureLayer& result,
             const JWOverlayOptions& options, const OutputFile& output, JWLayerReport& report) {
    JWReport::clearError();
    if (operation(&a.layer(), &b.layer(), &result, options, &report) >= 0) return;
    if (report.cancelled || interruptRequested()) {
        throw CommandFailure(ExitInterrupted, "interrupted; nothing was written");
    }
    // The text names the input.
    if (JWReport::lastError().kind == JWErrorInputUnreadable) throw libraryFailure("");
    CommandFailure failure = output.writeFailure();
    // The place was fine when the output was started.
    const bool lateWrite = JWReport::lastError().kind == JWErrorOutputUnwritable;
    if (lateWrite && failure.code() == ExitUsage) {
        throw CommandFailure(ExitInternal, failure.what());
    }
    throw failure;
}

RunSummary runOverlay(const Settings& settings, LayerOverlay operation, ProgressBar& bar) {
    Stopwatch watch;
    RunSummary summary;
    bar.startPhase("opening");
    OutputFile output(outputOf(settings));
    InputLayer a(settings.input, settings.inputLayer);
    InputLayer b(settings.overlay, settings.overlayLayer);
    a.requirePolygons();
    b.requirePolygons();
    requireSameReference(a, b);
    output.checkInputLayer(a.path(), a.layerName());
    output.checkInputLayer(b.path(), b.layerName());
    JWFeatureLayer& result = output.createLayer(a.reference());
    const double opening = watch.lap();

    bar.startPhase("overlaying");
    JWLayerReport& report = summary.report;
    overlay(operation, a, b, result, optionsOf(settings), output, report);
    if (!report.rejected.empty() && output.isOutOfSpace()) {
        throw CommandFailure(ExitOutOfSpace, settings.output + ": out of disk space");
    }
    for (JWRejectedFeature& rejected : report.rejected) {
        rejected.reason = output.withFinalPath(rejected.reason);
    }
    const double running = watch.lap();

    bar.startPhase("finishing");
    for (JWRejectedFeature& lost : output.commit(report.written)) {
        lost.source = settings.output;
        report.rejected.push_back(std::move(lost));
    }
    bar.clear();

    summary.parameters = parametersOf(settings);
    summary.input = {a.path(), a.layerName(), report.readA, report.emptyA};
    summary.overlay = {b.path(), b.layerName(), report.readB, report.emptyB};
    summary.output = {settings.output, output.layerName(), report.written, 0};
    summary.format = output.format();
    summary.reference = describe(a.reference());
    summary.areaUnit = areaUnit(a.reference());
    const double writing = std::max(0.0, running - report.secondsIndex - report.secondsOverlay);
    summary.seconds = {{"open", opening},
                       {"index", report.secondsIndex},
                       {"overlay", report.secondsOverlay},
                       {"finish", writing + watch.lap()}};
    if (!report.rejected.empty()) summary.exitCode = ExitFeaturesRejected;
    return summary;
}

/// The common course of the overlay commands.
int runAndReport(const Settings& settings, const char* command, LayerOverlay operation) {
    ProgressBar bar(!settings.quiet);
    bar.attachToLibrary(settings.verbose);
    RunSummary summary = runOverlay(settings, operation, bar);
    summary.command = command;
    listRejected(summary, settings.verbose);
    if (settings.json) {
        printJson(asJson(summary));
    } else if (!settings.quiet) {
        const std::string text = asText(summary);
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    return summary.exitCode;
}

void setupOverlay(CLI::App& app, Settings& settings) {
    addFile(app, "INPUT", settings.input, "File with the input layer");
    addFile(app, "OVERLAY", settings.overlay, "File with the overlay layer");
    addFile(app, "OUTPUT", settings.output, "File that receives the result");
    addText(app, "--input-layer", settings.inputLayer, "NAME",
            "Layer of INPUT; default: the only one, or the first with geometries");
    addText(app, "--overlay-layer", settings.overlayLayer, "NAME", "Layer of OVERLAY; likewise");
    addText(app, "--output-layer", settings.outputLayer, "NAME",
            "Layer of OUTPUT; default: the name of the file");
    addText(app, "-f,--output-format", settings.outputFormat, "FORMAT",
            "GDAL's short name of the format, or a file ending; default: by the ending of OUTPUT");
    addChoice(app, "--attributes", settings.attributes, {"all", "fid", "both"},
              "Attributes of the result: those of both layers, the identifiers of the two source "
              "features, or both");
    addNonNegative(app, "--tolerance", settings.tolerance,
                   "Smallest area of a ring that is kept, square layer units");
    addText(app, "--area-field", settings.areaField, "NAME",
            "Add a field with the area of each result feature, square layer units");
    addInteger(app, "--block-size", settings.blockSize, 0, INT_MAX,
               "Features of INPUT held in memory at a time; 0 for all");
    addInteger(app, "--threads", settings.threads, 0, 1024,
               "Threads; 0 for one per core. The result is the same for any number");
    app.add_flag("--overwrite", settings.overwrite, "Replace OUTPUT, once the result is complete");
    app.add_flag("--append", settings.append,
                 "Add a layer to OUTPUT, if it exists; with --overwrite a layer of that name is "
                 "replaced");
}

int runIntersect(const Settings& settings) {
    return runAndReport(settings, "intersect", &JWGeometryOverlay2::intersectPolygonLayers);
}

}  // namespace

Command intersectCommand() {
    return {"intersect",
            "cut the polygons of one layer by those of another",
            "Writes, for every pair of a polygon of INPUT and a polygon of OVERLAY that share an "
            "area, the shared area as one multi-polygon with the attributes of both.",
            "jwcg intersect counties.gpkg climate_cells.gpkg county_cells.gpkg",
            setupOverlay,
            runIntersect};
}

}  // namespace jws::cli
