// SPDX-License-Identifier: MIT
//
// `jwcg simplify` and `jwcg smooth`: what is checked of the command line, and the run, once for
// both. The methods are rows of tables elsewhere.
#include <CLI/CLI.hpp>

#include "commands.h"
#include "jw_geometrysimplicify.h"
#include "jw_geometrysmooth.h"
#include "layer_job.h"
#include "line_methods.h"

namespace jws::cli {
namespace {

void setupFamily(const Family& family, CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    std::vector<std::string> names;
    for (const Method& method : family.methods) names.emplace_back(method.name);
    addChoice(app, "--method", (settings.*family.settings).method, names, "How; see below");
    for (const Parameter& parameter : family.parameters) {
        const std::string option = std::string("--") + parameter.name;
        addNumbers(app, option, {1}, parameter.type, parameter.help,
                   [&lines = settings.*family.settings, &parameter,
                    option](const std::vector<double>& numbers) {
                       if (!isWithin(parameter.range, numbers[0])) {
                           throw CLI::ValidationError(
                               option, std::string("must be ") + nameOf(parameter.range));
                       }
                       lines.parameters[parameter.name] = numbers[0];
                   });
    }
    addThreadOptions(app, settings);
}

const Method& methodOf(const Family& family, const LineSettings& lines) {
    for (const Method& method : family.methods) {
        if (lines.method == method.name) return method;
    }
    return family.methods.front();
}

/// The parameters that a method runs with. Throws CommandFailure where one is missing, out of the
/// method's range or means nothing to it.
std::map<std::string, double> parametersFor(const Method& method, const LineSettings& lines) {
    std::map<std::string, double> known;
    for (const Use& use : method.uses) {
        const auto given = lines.parameters.find(use.name);
        if (given == lines.parameters.end() && use.required) {
            throw CommandFailure(ExitUsage,
                                 std::string("--method ") + method.name + " needs --" + use.name);
        }
        known[use.name] = given != lines.parameters.end() ? given->second : use.standard;
        if (!isWithin(use.range, known[use.name])) {
            throw CommandFailure(ExitUsage, std::string("--") + use.name + " must be " +
                                                nameOf(use.range) + " for --method " + method.name);
        }
    }
    for (const auto& [name, value] : lines.parameters) {
        if (known.count(name) > 0) continue;
        throw CommandFailure(ExitUsage, "--" + name + " means nothing to --method " + method.name);
    }
    const auto most = known.find("max-tolerance");
    if (most != known.end() && most->second < known["tolerance"]) {
        throw CommandFailure(ExitUsage, "--max-tolerance must not be below --tolerance");
    }
    return known;
}

/// Names of methods, their parameters and examples, for the help.
std::string describe(const Family& family, const char* opening, const char* closing) {
    std::string text = opening;
    text += "\n";
    for (const Method& method : family.methods) {
        text += std::string("\n  --method ") + method.name + " " + method.example + "\n    " +
                method.text + "\n";
    }
    return text + "\n" + closing;
}

enumJWWKBGeometryType requireFor(const LineSettings& lines, InputLayer& input) {
    if (lines.snap > 0 && !lines.coverage) {
        throw CommandFailure(ExitUsage, "--snap means nothing without --coverage");
    }
    if (lines.coverage) input.requirePolygons();
    return requireLinesOrPolygons(input);
}

using Run = std::function<int(const JobLayers&, const Method&, std::map<std::string, double>&,
                              JWLayerReport&)>;

int runFamily(const Family& family, const Settings& settings, const Run& run) {
    const LineSettings& lines = settings.*family.settings;
    const Method& method = methodOf(family, lines);
    std::map<std::string, double> values = parametersFor(method, lines);
    Json parameters = {{"method", method.name}};
    for (const Use& use : method.uses) parameters[use.name] = values[use.name];
    if (lines.coverage) parameters.update({{"coverage", true}, {"snap", lines.snap}});
    LayerJob job = {family.command,
                    family.phase,
                    false,
                    std::move(parameters),
                    [&](InputLayer& input) { return requireFor(lines, input); },
                    [&](const JobLayers& layers, JWLayerReport& report) {
                        return run(layers, method, values, report);
                    },
                    AccountOfVertices};
    return runLayerJob(settings, job);
}

void setupSimplify(CLI::App& app, Settings& settings) {
    setupFamily(simplification(), app, settings);
    app.add_flag("--coverage", settings.simplify.coverage,
                 "Simplify borders that polygons share once, for both: no gaps, no overlaps");
    addNonNegative(
        app, "--snap", settings.simplify.snap,
        "With --coverage: make vertices this near to one another one first, layer units");
}

constexpr int kLeastRing = 4;  // a triangle and its closing point

int runSimplify(const Settings& settings) {
    return runFamily(simplification(), settings,
                     [&](const JobLayers& layers, const Method& method,
                         std::map<std::string, double>& values, JWLayerReport& report) {
                         JWSimplifyOptions options;
                         options.method = static_cast<enumJWSimplifyMethod>(method.code);
                         options.tolerance = values["tolerance"];
                         options.maximumTolerance = values["max-tolerance"];
                         const bool isNth = options.method == JWSimplifyNthPoint;
                         options.count = static_cast<int>(values[isNth ? "every" : "look-ahead"]);
                         options.minimumRingPoints = kLeastRing;
                         options.threads = settings.threads;
                         options.blockSize = settings.blockSize;
                         options.coverage = settings.simplify.coverage;
                         options.coverageTolerance = settings.simplify.snap;
                         return JWGeometrySimplicify::simplifyLayer(
                             &layers.input.layer(), &layers.output, options, &report);
                     });
}

int runSmooth(const Settings& settings) {
    return runFamily(smoothing(), settings,
                     [&](const JobLayers& layers, const Method& method,
                         std::map<std::string, double>& values, JWLayerReport& report) {
                         JWSmoothOptions options;
                         options.method = static_cast<enumJWSmoothMethod>(method.code);
                         options.lookAhead = static_cast<int>(values["look-ahead"]);
                         options.slide = values["weight"];
                         options.tolerance = values["tolerance"];
                         options.degree = static_cast<int>(values["degree"]);
                         options.points = static_cast<int>(values["points"]);
                         options.step = values["step"];
                         options.tangentScale = values["tangent-scale"];
                         options.tangentMinimum = values["tangent-minimum"];
                         options.minimumRingPoints = kLeastRing;
                         options.dropRepeated = true;
                         options.threads = settings.threads;
                         options.blockSize = settings.blockSize;
                         return JWGeometrySmooth::smoothLayer(&layers.input.layer(), &layers.output,
                                                              options, &report);
                     });
}

}  // namespace

Command simplifyCommand() {
    static const std::string description = describe(
        simplification(),
        "Writes the lines or polygons of a layer with fewer points, with their attributes. Points "
        "that stay are not moved. The methods and what their parameters mean:",
        "Polygons are simplified ring by ring, so neighbours that share a border may come apart; a "
        "ring that would have fewer than three corners stays as it was. With --coverage shared "
        "borders are simplified once, with any method, and points come back where polygons would "
        "come to cross or to vanish; the layer is held in memory.");
    return {"simplify",
            "take points out of lines and polygons",
            description.c_str(),
            "jwcg simplify coast.gpkg coast_small.gpkg --method douglas-peucker --tolerance 100",
            setupSimplify,
            runSimplify};
}

Command smoothCommand() {
    static const std::string description = describe(
        smoothing(),
        "Writes the lines or polygons of a layer, smoothed, with their attributes. The methods and "
        "what their parameters mean:",
        "The ends of lines stay, and the first corner of a ring. Polygons are smoothed ring by "
        "ring, so neighbours that share a border may come apart. A line that has too few points "
        "for the method stays as it was.");
    return {"smooth",
            "make lines and polygons look smoother",
            description.c_str(),
            "jwcg smooth rivers.gpkg rivers_round.gpkg --method chaiken --tolerance 25",
            [](CLI::App& app, Settings& settings) { setupFamily(smoothing(), app, settings); },
            runSmooth};
}

}  // namespace jws::cli
