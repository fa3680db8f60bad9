// SPDX-License-Identifier: MIT
//
// `jwcg simplify` and `jwcg smooth`. A method is one row: its name, the parameters that it takes,
// and what the help says about it; a parameter is one row for each command.
#include <CLI/CLI.hpp>
#include <climits>
#include <cmath>

#include "commands.h"
#include "jw_geometrysimplicify.h"
#include "jw_geometrysmooth.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

/// What a parameter may be.
enum class Range { Positive, NotNegative, Any, Count, CountFrom2, OddFrom3, Degree };

constexpr int kMostDegree = 170;  // the factorial of more is beyond all numbers

struct Parameter {
    const char* name;
    const char* type;
    Range range;
    const char* help;
};

/// A parameter of a method; one that has a standard need not be given.
struct Use {
    const char* name;
    bool required = true;
    double standard = 0;
    Range range = Range::Any;  ///< narrower than that of the parameter, for this method
};

struct Method {
    const char* name;
    int code;
    std::vector<Use> uses;
    const char* text;  ///< what it does, and what its parameters mean to it
    const char* example;
};

/// One of the two commands.
struct Family {
    const char* command;
    std::string Settings::*method;
    std::vector<Parameter> parameters;
    std::vector<Method> methods;
};

const Family& simplification() {
    static const Family family = {
        "simplify",
        &Settings::simplifyMethod,
        {{"tolerance", "DISTANCE", Range::Positive, "Distance in layer units; see the methods"},
         {"max-tolerance", "DISTANCE", Range::Positive, "Longest step of opheim, layer units"},
         {"look-ahead", "N", Range::CountFrom2, "Points that lang looks ahead"},
         {"every", "N", Range::Count, "The n of nth-point"}},
        {{"douglas-peucker",
          JWSimplifyDouglasPeucker,
          {{"tolerance"}},
          "keeps the points that matter most; what it drops lies within --tolerance of the result",
          "--tolerance 100"},
         {"lang",
          JWSimplifyLang,
          {{"tolerance"}, {"look-ahead"}},
          "from a kept point to the farthest of the next --look-ahead points such that all between "
          "lie within --tolerance of the straight line",
          "--tolerance 100 --look-ahead 8"},
         {"perpendicular-distance",
          JWSimplifyPerpendicularDistance,
          {{"tolerance"}},
          "drops points within --tolerance of the line between their neighbours, at most every "
          "other",
          "--tolerance 5"},
         {"vertex-reduction",
          JWSimplifyVertexReduction,
          {{"tolerance"}},
          "drops points within --tolerance of the last one kept",
          "--tolerance 50"},
         {"reumann-witkam",
          JWSimplifyReumannWitkam,
          {{"tolerance"}},
          "follows a strip, --tolerance wide to each side, until the line leaves it; fast, but "
          "cuts "
          "corners by more",
          "--tolerance 50"},
         {"opheim",
          JWSimplifyOpheim,
          {{"tolerance"}, {"max-tolerance"}},
          "follows a ray until the line is farther from it than the square root of --tolerance, or "
          "has gone --max-tolerance; points nearer than --tolerance to the start only give the "
          "direction",
          "--tolerance 50 --max-tolerance 2000"},
         {"nth-point",
          JWSimplifyNthPoint,
          {{"every"}},
          "keeps every n-th point, whatever it is",
          "--every 5"}}};
    return family;
}

const Family& smoothing() {
    static const Family family = {
        "smooth",
        &Settings::smoothMethod,
        {{"tolerance", "DISTANCE", Range::Positive, "Distance in layer units, for chaiken"},
         {"look-ahead", "N", Range::CountFrom2, "Points taken together; odd but for boyle"},
         {"weight", "NUMBER", Range::Any,
          "Weight of the mean, usually 0 (no change) to 1 (default 1)"},
         {"degree", "N", Range::Degree, "Segments of the line under each Bezier curve, up to 170"},
         {"points", "N", Range::Count, "Points on each Bezier curve"},
         {"step", "DISTANCE", Range::Positive, "Spacing of the points of hermite, layer units"},
         {"tangent-scale", "NUMBER", Range::Positive, "Length of hermite's tangents (default 0.5)"},
         {"tangent-minimum", "NUMBER", Range::NotNegative,
          "Square of a length, layer units, below which hermite has no tangent (default 0)"}},
        {{"chaiken",
          JWSmoothChaiken,
          {{"tolerance"}},
          "cuts corners until the new points lie within --tolerance of one another; stays close to "
          "the line",
          "--tolerance 100"},
         {"sliding-mean",
          JWSmoothSlidingAveraging,
          {{"look-ahead", true, 0, Range::OddFrom3}, {"weight", false, 1}},
          "moves points to the mean of the --look-ahead points around them, by --weight",
          "--look-ahead 5"},
         {"distance-weighting",
          JWSmoothDistanceWeighting,
          {{"look-ahead", true, 0, Range::OddFrom3}, {"weight", false, 1}},
          "the same, near points counting more",
          "--look-ahead 5 --weight 0.5"},
         {"boyle",
          JWSmoothBoyle,
          {{"look-ahead"}},
          "drags each point towards the one --look-ahead places ahead; shifts and shrinks",
          "--look-ahead 3"},
         {"bezier",
          JWSmoothBezier,
          {{"degree"}, {"points"}},
          "curves over --degree segments each, of --points points",
          "--degree 3 --points 10"},
         {"hermite",
          JWSmoothHermite,
          {{"step"}, {"tangent-scale", false, 0.5}, {"tangent-minimum", false, 0}},
          "curves through the points of the line, a point every --step along it",
          "--step 50"}}};
    return family;
}

bool isWithin(Range range, double value) {
    const bool isCount = value == std::floor(value) && value >= 1 && value <= INT_MAX;
    switch (range) {
        case Range::Positive:
            return value > 0;
        case Range::NotNegative:
            return value >= 0;
        case Range::Any:
            return true;
        case Range::Count:
            return isCount;
        case Range::CountFrom2:
            return isCount && value >= 2;
        case Range::OddFrom3:
            return isCount && value >= 3 && std::fmod(value, 2) == 1;
        case Range::Degree:
            return isCount && value <= kMostDegree;
    }
    return false;
}

const char* nameOf(Range range) {
    switch (range) {
        case Range::Positive:
            return "a number above 0";
        case Range::NotNegative:
            return "a number of at least 0";
        case Range::Any:
            return "a number";
        case Range::Count:
            return "an integer of at least 1";
        case Range::CountFrom2:
            return "an integer of at least 2";
        case Range::OddFrom3:
            return "an odd integer of at least 3";
        case Range::Degree:
            return "an integer from 1 to 170";
    }
    return "";
}

void setupFamily(const Family& family, CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    std::vector<std::string> names;
    for (const Method& method : family.methods) names.emplace_back(method.name);
    addChoice(app, "--method", settings.*family.method, names, "How; see below");
    for (const Parameter& parameter : family.parameters) {
        const std::string option = std::string("--") + parameter.name;
        addNumbers(app, option, {1}, parameter.type, parameter.help,
                   [&settings, &parameter, option](const std::vector<double>& numbers) {
                       if (!isWithin(parameter.range, numbers[0])) {
                           throw CLI::ValidationError(
                               option, std::string("must be ") + nameOf(parameter.range));
                       }
                       settings.parameters[parameter.name] = numbers[0];
                   });
    }
    addThreadOptions(app, settings);
}

const Method& methodOf(const Family& family, const Settings& settings) {
    for (const Method& method : family.methods) {
        if (settings.*family.method == method.name) return method;
    }
    return family.methods.front();
}

/// The parameters that a method runs with. Throws CommandFailure where one is missing, out of the
/// method's range or means nothing to it.
std::map<std::string, double> parametersFor(const Method& method, const Settings& settings) {
    std::map<std::string, double> known;
    for (const Use& use : method.uses) {
        const auto given = settings.parameters.find(use.name);
        if (given == settings.parameters.end() && use.required) {
            throw CommandFailure(ExitUsage,
                                 std::string("--method ") + method.name + " needs --" + use.name);
        }
        known[use.name] = given != settings.parameters.end() ? given->second : use.standard;
        if (!isWithin(use.range, known[use.name])) {
            throw CommandFailure(ExitUsage, std::string("--") + use.name + " must be " +
                                                nameOf(use.range) + " for --method " + method.name);
        }
    }
    for (const auto& [name, value] : settings.parameters) {
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

enumJWWKBGeometryType requireFor(const Settings& settings, InputLayer& input) {
    if (settings.snap > 0 && !settings.coverage) {
        throw CommandFailure(ExitUsage, "--snap means nothing without --coverage");
    }
    if (settings.coverage) input.requirePolygons();
    return requireLinesOrPolygons(input);
}

using Run = std::function<int(const JobLayers&, const Method&, std::map<std::string, double>&,
                              JWLayerReport&)>;

int runFamily(const Family& family, const Settings& settings, const Run& run) {
    const Method& method = methodOf(family, settings);
    std::map<std::string, double> values = parametersFor(method, settings);
    Json parameters = {{"method", method.name}};
    for (const Use& use : method.uses) parameters[use.name] = values[use.name];
    if (settings.coverage) parameters.update({{"coverage", true}, {"snap", settings.snap}});
    LayerJob job = {family.command,
                    family.command == simplification().command ? "simplifying" : "smoothing",
                    false,
                    std::move(parameters),
                    [&](InputLayer& input) { return requireFor(settings, input); },
                    [&](const JobLayers& layers, JWLayerReport& report) {
                        return run(layers, method, values, report);
                    },
                    AccountOfVertices};
    return runLayerJob(settings, job);
}

void setupSimplify(CLI::App& app, Settings& settings) {
    setupFamily(simplification(), app, settings);
    app.add_flag("--coverage", settings.coverage,
                 "Simplify borders that polygons share once, for both: no gaps, no overlaps");
    addNonNegative(
        app, "--snap", settings.snap,
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
                         options.count = static_cast<int>(values["look-ahead"] + values["every"]);
                         options.minimumRingPoints = kLeastRing;
                         options.threads = settings.threads;
                         options.blockSize = settings.blockSize;
                         options.coverage = settings.coverage;
                         options.coverageTolerance = settings.snap;
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
