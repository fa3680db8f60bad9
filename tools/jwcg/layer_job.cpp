// SPDX-License-Identifier: MIT
#include "layer_job.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstdio>
#include <optional>

#include "output_file.h"
#include "progress_bar.h"

namespace jws::cli {
namespace {

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

/// A layer of this type has an area, or may have one.
bool isAreal(enumJWWKBGeometryType type) {
    return type == JWWKBPolygon || type == JWWKBMultiPolygon || type == JWWKBUnknown;
}

Json textOrNull(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

/// The shared parameters behind a command's own.
Json withSharedParameters(const Settings& settings, const Json& own, bool takesOverlay) {
    Json parameters = own.is_null() ? Json::object() : own;
    parameters["block_size"] = settings.blockSize;
    parameters["threads"] = settings.threads;
    parameters["where"] = textOrNull(settings.where);
    if (takesOverlay) parameters["overlay_where"] = textOrNull(settings.overlayWhere);
    if (!parameters.contains("bbox")) {
        parameters["bbox"] = settings.bbox.empty() ? Json(nullptr) : Json(settings.bbox);
    }
    return parameters;
}

Json parametersOf(const Settings& settings, const LayerJob& job) {
    Json parameters = withSharedParameters(settings, job.parameters, job.takesOverlay);
    parameters["overwrite"] = settings.overwrite;
    parameters["append"] = settings.append;
    return parameters;
}

OutputRequest outputOf(const Settings& settings, const LayerJob& job) {
    OutputRequest request;
    request.path = settings.output;
    request.format = settings.outputFormat;
    request.layer = settings.outputLayer;
    request.overwrite = settings.overwrite;
    request.append = settings.append;
    request.inputs = {settings.input};
    if (job.takesOverlay) request.inputs.push_back(settings.overlay);
    for (const TransformStep& step : settings.transform.steps) {
        if (!step.file.empty()) request.inputs.push_back(step.file);
    }
    return request;
}

void restrictInput(const Settings& settings, InputLayer& a) {
    std::optional<JWEnvelop> window;
    if (!settings.bbox.empty()) {
        window.emplace(settings.bbox[0], settings.bbox[1], settings.bbox[2], settings.bbox[3]);
    }
    a.restrictTo(settings.where, window ? &*window : nullptr);
}

void throwInterrupt(const JWLayerReport& report) {
    if (report.cancelled || interruptRequested()) {
        throw CommandFailure(ExitInterrupted, "interrupted; nothing was written");
    }
}

/// The files of a job, checked and open.
struct JobFiles {
    JobFiles(const Settings& settings, const LayerJob& job);

    OutputFile output;
    InputLayer a;
    std::optional<InputLayer> b;
    enumJWWKBGeometryType type;
    JWFeatureLayer* result;
};

JobFiles::JobFiles(const Settings& settings, const LayerJob& job)
    : output(outputOf(settings, job)), a(settings.input, settings.inputLayer) {
    restrictInput(settings, a);  // what is left may decide how the rest is done
    type = job.prepare(a);
    if (job.takesOverlay) {
        b.emplace(settings.overlay, settings.overlayLayer);
        if (!job.anyOverlay) b->requirePolygons();
        requireSameReference(a, *b);
        output.checkInputLayer(b->path(), b->layerName(), b->files());
    }
    output.checkInputLayer(a.path(), a.layerName(), a.files());
    if (b) b->restrictTo(settings.overlayWhere, nullptr);
    const bool keepsPoints = a.kind() == JWWKBPoint && !job.makesPoints;
    result = &output.createLayer(type, a.reference(), keepsPoints ? &a.layer() : nullptr);
}

/// Why the operation failed.
CommandFailure operationFailure(const OutputFile& output) {
    // The text names the input.
    const enumJWErrorKind kind = JWReport::lastError().kind;
    if (kind == JWErrorInputUnreadable || kind == JWErrorInvalidArgument) return libraryFailure("");
    CommandFailure failure = output.writeFailure();
    // The place was fine when the output was started.
    if (kind == JWErrorOutputUnwritable && failure.code() == ExitUsage) {
        return CommandFailure(ExitInternal, failure.what());
    }
    return failure;
}

/// Runs the library's operation into the output layer. Throws CommandFailure when it fails.
void operate(const LayerJob& job, JobFiles& files, JWLayerReport& report) {
    JWReport::clearError();
    if (job.operation({files.a, files.b ? &*files.b : nullptr, *files.result}, report) < 0) {
        throwInterrupt(report);
        throw operationFailure(files.output);
    }
    if (!report.rejected.empty() && files.output.isOutOfSpace()) {
        throw CommandFailure(ExitOutOfSpace, files.output.path() + ": out of disk space");
    }
    for (JWRejectedFeature& rejected : report.rejected) {
        rejected.reason = files.output.withFinalPath(rejected.reason);
    }
}

/// Moves the output into place, and lists what its format lost.
void complete(OutputFile& output, JWLayerReport& report) {
    for (JWRejectedFeature& lost : output.commit(report.written, report.writtenEmpty)) {
        lost.source = output.path();
        report.rejected.push_back(std::move(lost));
    }
}

/// Fills in what is known of a job that is done, but for the seconds.
void summarise(const Settings& settings, const LayerJob& job, const JobFiles& files,
               RunSummary& summary) {
    const InputLayer& a = files.a;
    const JWLayerReport& report = summary.report;
    summary.command = job.command;
    summary.parameters = parametersOf(settings, job);
    summary.input = {a.path(), a.layerName(), report.readA, report.emptyA};
    if (const auto& b = files.b) {
        summary.overlay = LayerSummary{b->path(), b->layerName(), report.readB, report.emptyB};
    }
    summary.output = {settings.output, files.output.layerName(), report.written, 0};
    summary.format = files.output.format();
    summary.reference = describe(a.reference());
    summary.areaUnit = areaUnit(a.reference());
    summary.account = job.account;
    summary.hasAreas = isAreal(files.type) && std::isfinite(report.area);
    if (job.describe) job.describe(summary);
    if (!report.rejected.empty()) summary.exitCode = ExitFeaturesRejected;
}

RunSummary runJob(const Settings& settings, const LayerJob& job, ProgressBar& bar) {
    Stopwatch watch;
    RunSummary summary;
    JWLayerReport& report = summary.report;
    bar.startPhase("opening");
    JobFiles files(settings, job);
    summary.seconds.emplace_back("open", watch.lap());

    bar.startPhase(job.phase);
    operate(job, files, report);
    const double running = watch.lap();

    bar.startPhase("finishing");
    complete(files.output, report);
    bar.clear();
    const bool isOverlay = job.account == AccountOfAreas;
    if (report.secondsIndex > 0 || isOverlay) {
        summary.seconds.emplace_back("index", report.secondsIndex);
    }
    summary.seconds.emplace_back(isOverlay ? "overlay" : "run", report.secondsOverlay);
    const double writing = std::max(0.0, running - report.secondsIndex - report.secondsOverlay);
    summary.seconds.emplace_back("finish", writing + watch.lap());
    summarise(settings, job, files, summary);
    return summary;
}

}  // namespace

int runLayerJob(const Settings& settings, const LayerJob& job) {
    ProgressBar bar(!settings.quiet);
    bar.attachToLibrary(settings.verbose);
    const RunSummary summary = runJob(settings, job, bar);
    listRejected(summary, settings.verbose);
    if (!summary.report.warning.empty()) {
        std::fprintf(stderr, "jwcg: warning: %s\n", summary.report.warning.c_str());
    }
    if (settings.json) {
        printJson(asJson(summary));
    } else if (!settings.quiet) {
        const std::string text = asText(summary);
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    return summary.exitCode;
}

RunSummary runReadJob(const Settings& settings, const ReadJob& job) {
    ProgressBar bar(!settings.quiet);
    bar.attachToLibrary(settings.verbose);
    Stopwatch watch;
    RunSummary summary;
    bar.startPhase("opening");
    InputLayer a(settings.input, settings.inputLayer);
    InputLayer b(settings.overlay, settings.overlayLayer);
    requireSameReference(a, b);
    restrictInput(settings, a);
    b.restrictTo(settings.overlayWhere, nullptr);
    summary.seconds.emplace_back("open", watch.lap());

    bar.startPhase(job.phase);
    JWReport::clearError();
    JWLayerReport& report = summary.report;
    if (job.operation(a, b, report) < 0) {
        throwInterrupt(report);
        throw libraryFailure("");
    }
    bar.clear();
    summary.seconds.emplace_back("run", watch.lap());
    summary.command = job.command;
    summary.parameters = withSharedParameters(settings, job.parameters, true);
    summary.input = {a.path(), a.layerName(), report.readA, report.emptyA};
    summary.overlay = LayerSummary{b.path(), b.layerName(), report.readB, report.emptyB};
    summary.reference = describe(a.reference());
    summary.account = AccountOfNothing;
    summary.hasAreas = false;
    if (!report.rejected.empty()) summary.exitCode = ExitFeaturesRejected;
    listRejected(summary, settings.verbose);
    return summary;
}

enumJWWKBGeometryType requirePolygons(InputLayer& input) {
    input.requirePolygons();
    return JWWKBMultiPolygon;
}

enumJWWKBGeometryType requireLinesOrPolygons(InputLayer& input) {
    input.require({JWWKBLineString, JWWKBPolygon}, "lines or polygons are needed");
    return input.widestType();
}

enumJWWKBGeometryType requireGeometries(InputLayer& input) {
    input.require({JWWKBPoint, JWWKBLineString, JWWKBPolygon, JWWKBGeometryCollection},
                  "geometries are needed");
    return input.widestType();
}

Json withAreaParameters(const Settings& settings, Json parameters) {
    parameters["tolerance"] = settings.tolerance;
    parameters["area_field"] = textOrNull(settings.areaField);
    return parameters;
}

void addLayerOptions(CLI::App& app, Settings& settings, bool takesOverlay, bool mayBeMissing) {
    addFile(app, "INPUT", settings.input, "File with the input layer");
    if (takesOverlay) addFile(app, "OVERLAY", settings.overlay, "File with the overlay layer");
    if (mayBeMissing) {
        addOptionalFile(app, "OUTPUT", settings.output,
                        "File that receives the result; without it the result is printed");
    } else {
        addFile(app, "OUTPUT", settings.output, "File that receives the result");
    }
    addFileOptions(app, settings, takesOverlay ? "OVERLAY" : nullptr);
    addRectangle(app, "--bbox", settings.bbox,
                 "Take the features of INPUT that meet a rectangle, in its coordinates");
    addOutputOptions(app, settings);
}

void addFileOptions(CLI::App& app, Settings& settings, const char* overlay) {
    addText(app, "--input-layer", settings.inputLayer, "NAME",
            "Layer of INPUT; default: the only one, or the first with geometries");
    if (overlay != nullptr) {
        addText(app, "--overlay-layer", settings.overlayLayer, "NAME",
                std::string("Layer of ") + overlay + "; likewise");
    }
    addText(app, "--output-layer", settings.outputLayer, "NAME",
            "Layer of OUTPUT; default: the name of the file");
    addText(app, "-f,--output-format", settings.outputFormat, "FORMAT",
            "GDAL's short name of the format, or a file ending; default: by the ending of OUTPUT");
    addText(app, "--where", settings.where, "SQL",
            "Take the features of INPUT that satisfy a condition, such as \"pop > 1000\"; fid is "
            "the identifier");
    if (overlay != nullptr) {
        addText(app, "--overlay-where", settings.overlayWhere, "SQL",
                std::string("Take the features of ") + overlay + " that satisfy a condition");
    }
}

void addOutputOptions(CLI::App& app, Settings& settings) {
    app.add_flag("--overwrite", settings.overwrite, "Replace OUTPUT, once the result is complete");
    app.add_flag("--append", settings.append,
                 "Add a layer to OUTPUT, if it exists; with --overwrite a layer of that name is "
                 "replaced");
}

void addRunOptions(CLI::App& app, Settings& settings) {
    addNonNegative(app, "--tolerance", settings.tolerance,
                   "Smallest area of a ring that is kept, square layer units");
    addText(app, "--area-field", settings.areaField, "NAME",
            "Add a field with the area of each result feature, square layer units");
    addThreadOptions(app, settings);
}

void addThreadOptions(CLI::App& app, Settings& settings) {
    addInteger(app, "--block-size", settings.blockSize, 0, INT_MAX,
               "Features of INPUT read at a time; 0 for all");
    addInteger(app, "--threads", settings.threads, 0, 1024,
               "Threads; 0 for one per core. The result is the same for any number");
}

}  // namespace jws::cli
