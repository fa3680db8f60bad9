// SPDX-License-Identifier: MIT
//
// `jwcg transform`: moves, turns, scales, shears and maps a layer. Steps are composed to one matrix
// in the order of the command line, so the layer is read once.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <optional>

#include "commands.h"
#include "control_points.h"
#include "jw_geometrytransform.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

/// x' = m[0] + m[1]·x + m[2]·y, y' = m[3] + m[4]·x + m[5]·y.
struct Affine {
    double m[6] = {0, 1, 0, 0, 0, 1};
};

/// The linear map (a b; c d) about a point.
Affine about(const JWRawPoint& o, double a, double b, double c, double d) {
    return {{o.x - a * o.x - b * o.y, a, b, o.y - c * o.x - d * o.y, c, d}};
}

/// First `a`, then `b`.
Affine composed(const Affine& a, const Affine& b) {
    const double *f = a.m, *g = b.m;
    return {{g[0] + g[1] * f[0] + g[2] * f[3], g[1] * f[1] + g[2] * f[4], g[1] * f[2] + g[2] * f[5],
             g[3] + g[4] * f[0] + g[5] * f[3], g[4] * f[1] + g[5] * f[4],
             g[4] * f[2] + g[5] * f[5]}};
}

/// Rotation by degrees; quarter turns are exact.
Affine rotation(const JWRawPoint& origin, double degrees) {
    const double turn = std::remainder(degrees, 360.0);
    double c = std::cos(turn * 0.017453292519943295), s = std::sin(turn * 0.017453292519943295);
    if (std::fmod(turn, 90.0) == 0) {
        c = std::round(c);
        s = std::round(s);
    }
    return about(origin, c, -s, s, c);
}

bool needsOrigin(const TransformStep& step) {
    return step.name == "--rotate" || step.name == "--scale" || step.name == "--shear";
}

Affine mapOf(const TransformStep& step, const JWRawPoint& origin,
             const std::optional<ControlFit>& fit) {
    const std::vector<double>& n = step.numbers;
    if (step.name == "--move") return {{n[0], 1, 0, n[1], 0, 1}};
    if (step.name == "--rotate") return rotation(origin, n[0]);
    if (step.name == "--scale") return about(origin, n[0], 0, 0, n.back());
    if (step.name == "--shear") return about(origin, 1, n[0], n.size() > 1 ? n[1] : 0, 1);
    const double* m = step.name == "--gcp" ? fit->matrix : n.data();
    return {{m[0], m[1], m[2], m[3], m[4], m[5]}};
}

/// What the command line comes to for a layer.
struct Transformation {
    std::optional<ControlFit> fit;
    std::optional<JWRawPoint> origin;
    Affine map;
};

/// The origin asked for, or the centre of the layer's extent, which costs a pass.
JWRawPoint originFor(const Settings& settings, JWFeatureLayer& layer) {
    if (!settings.transform.origin.empty())
        return JWRawPoint(settings.transform.origin[0], settings.transform.origin[1]);
    if (!layer.updateEnvelop()) throw libraryFailure(settings.input);
    const JWEnvelop extent = layer.getLayerEnvelop();
    if (!extent.isValid()) return JWRawPoint(0, 0);
    return JWRawPoint(extent.minX + (extent.maxX - extent.minX) / 2,
                      extent.minY + (extent.maxY - extent.minY) / 2);
}

void compose(const Settings& settings, JWFeatureLayer& layer, Transformation& made) {
    for (const TransformStep& step : settings.transform.steps) {
        if (needsOrigin(step) && !made.origin) made.origin = originFor(settings, layer);
        made.map = composed(made.map,
                            mapOf(step, made.origin ? *made.origin : JWRawPoint(0, 0), made.fit));
    }
    double* m = made.map.m;
    if (!std::all_of(m, m + 6, [](double number) { return std::isfinite(number); })) {
        throw CommandFailure(ExitUsage, "the transformation grows beyond all numbers");
    }
    if (!settings.transform.inverse) return;
    Affine inverse;
    if (!JWGeometryTransform::invertMatrix(made.map.m, inverse.m)) {
        throw CommandFailure(ExitUsage,
                             "--inverse: the transformation cannot be inverted; it maps "
                             "the plane to a line or a point, or nearly so");
    }
    made.map = inverse;
}

void describe(const Transformation& made, RunSummary& summary) {
    double m[6];
    for (int i = 0; i < 6; ++i) m[i] = made.map.m[i] + 0.0;  // no "-0"
    char text[240];
    std::snprintf(text, sizeof text, "matrix   %.15g,%.15g,%.15g,%.15g,%.15g,%.15g\n", m[0], m[1],
                  m[2], m[3], m[4], m[5]);
    summary.notes = text;
    summary.details = {{"matrix", Json(std::vector<double>(m, m + 6))}};
    if (made.origin) summary.details["origin"] = {made.origin->x, made.origin->y};
    if (!made.fit) return;
    summary.notes += asText(*made.fit);
    summary.details["control"] = asJson(*made.fit);
}

Json parametersOf(const Settings& settings) {
    Json steps = Json::array();
    for (const TransformStep& step : settings.transform.steps) {
        steps.push_back({{"step", step.name.substr(2)},
                         {"value", step.file.empty() ? Json(step.numbers) : Json(step.file)}});
    }
    return {{"steps", std::move(steps)}, {"inverse", settings.transform.inverse}};
}

void setupTransform(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    const auto addStep = [&](const std::string& name, const std::vector<std::size_t>& counts,
                             const std::string& type, const std::string& help) {
        addNumbers(app, name, counts, type, help, [&settings, name](const auto& numbers) {
            settings.transform.steps.push_back({name, numbers, ""});
        });
    };
    addStep("--move", {2}, "DX,DY", "Move, in layer units");
    addStep("--rotate", {1}, "DEGREES", "Turn counter-clockwise about the origin");
    addStep("--scale", {1, 2}, "SX[,SY]",
            "Scale about the origin, one number for both axes; -1,1 mirrors left and right");
    addStep("--shear", {1, 2}, "KX[,KY]",
            "Shear about the origin: x grows by KX times y, y by KY times x");
    addStep("--matrix", {6}, "M0,M1,M2,M3,M4,M5",
            "Map x to M0 + M1 x + M2 y, and y to M3 + M4 x + M5 y");
    app.add_option_function<std::string>(
           "--gcp",
           [&settings](const std::string& path) {
               settings.transform.steps.push_back({"--gcp", {}, path});
           },
           "Fit to control points: lines of target x, target y, source x, source y; prints what "
           "is left over at each")
        ->type_name("FILE")
        ->trigger_on_parse();
    addNumbers(app, "--origin", {2}, "X,Y",
               "Fixed point of --rotate, --scale and --shear; default: the centre of the layer",
               [&settings](const auto& numbers) { settings.transform.origin = numbers; });
    app.add_flag("--inverse", settings.transform.inverse, "Do the reverse of all that");
    addThreadOptions(app, settings);
}

int runTransform(const Settings& settings) {
    if (settings.transform.steps.empty()) {
        throw CommandFailure(ExitUsage,
                             "nothing to do: give one or more of --move, --rotate, "
                             "--scale, --shear, --matrix and --gcp");
    }
    Transformation made;
    for (const TransformStep& step : settings.transform.steps) {
        if (step.name != "--gcp") continue;
        if (made.fit) throw CommandFailure(ExitUsage, "--gcp may be given once");
        made.fit = fitControlPoints(step.file);
    }
    LayerJob job = {"transform",
                    "transforming",
                    false,
                    parametersOf(settings),
                    requireGeometries,
                    [&](const JobLayers& layers, JWLayerReport& report) {
                        compose(settings, layers.input.layer(), made);
                        return JWGeometryTransform::transformLayer(
                            &layers.input.layer(), &layers.output, made.map.m, settings.blockSize,
                            settings.threads, &report);
                    },
                    AccountOfVertices,
                    [&](RunSummary& summary) { describe(made, summary); }};
    return runLayerJob(settings, job);
}

}  // namespace

Command transformCommand() {
    return {"transform",
            "move, turn, scale, shear or fit a layer to control points",
            "Writes the features of a layer at their new places, with their attributes. The steps "
            "are done in the order of the command line. With --gcp the layer is fitted to control "
            "points: two give scales and a shift, more the best fit by least squares, and the "
            "residual of each point and their root mean square are printed. Coordinates are those "
            "of the layer; the spatial reference stays.",
            "jwcg transform plan.gpkg placed.gpkg --rotate 12.5 --move 2600000,1200000",
            setupTransform,
            runTransform};
}

}  // namespace jws::cli
