// SPDX-License-Identifier: MIT
//
// The commands that draw what encloses features: hull, circle, rectangle, envelope. They differ in
// the kind of shape.
#include <CLI/CLI.hpp>

#include "commands.h"
#include "jw_geometryminimumbounding.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

void setupShape(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    app.add_flag("--all", settings.bounding.wholeLayer,
                 "Draw one shape around the whole layer; default: one around each feature");
    addThreadOptions(app, settings);
}

void setupMeasuredShape(CLI::App& app, Settings& settings, const char* fields) {
    setupShape(app, settings);
    app.add_flag("--measures", settings.bounding.measures, std::string("Add fields ") + fields);
}

void setupCircle(CLI::App& app, Settings& settings) {
    setupMeasuredShape(app, settings, "center_x, center_y and radius");
}

void setupRectangle(CLI::App& app, Settings& settings) {
    addChoice(app, "--smallest", settings.bounding.smallest, {"area", "width"},
              "What of the rectangle is to be as small as can be");
    setupMeasuredShape(app, settings,
                       "length, width and angle (degrees, counter-clockwise from the x axis to the "
                       "longer side)");
}

int runShape(const Settings& settings, const char* command, enumJWBounding kind,
             Json parameters = Json::object()) {
    JWBoundingOptions options;
    options.kind = kind;
    options.wholeLayer = settings.bounding.wholeLayer;
    options.measures = settings.bounding.measures;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    parameters["all"] = settings.bounding.wholeLayer;
    parameters["measures"] = settings.bounding.measures;
    LayerJob job = {command,
                    "bounding",
                    false,
                    std::move(parameters),
                    [](InputLayer& input) {
                        requireGeometries(input);
                        return JWWKBPolygon;
                    },
                    [&](const JobLayers& layers, JWLayerReport& report) {
                        return JWGeometryMinimumBounding::boundLayer(
                            &layers.input.layer(), &layers.output, options, &report);
                    },
                    AccountOfNothing};
    return runLayerJob(settings, job);
}

int runHull(const Settings& settings) { return runShape(settings, "hull", JWBoundingHull); }

int runCircle(const Settings& settings) {
    return runShape(settings, "mincircle", JWBoundingMinimumCircle);
}

int runRectangle(const Settings& settings) {
    const bool isWidth = settings.bounding.smallest == "width";
    return runShape(settings, "minrect",
                    isWidth ? JWBoundingMinimumWidthRect : JWBoundingMinimumAreaRect,
                    {{"smallest", settings.bounding.smallest}});
}

int runEnvelope(const Settings& settings) {
    return runShape(settings, "envelope", JWBoundingEnvelop);
}

}  // namespace

Command hullCommand() {
    return {"hull",
            "draw the convex hull of each feature, or of all together",
            "Writes the smallest convex polygon around each feature, with its attributes. With "
            "--all one around the whole layer, with the number of features in a field count. "
            "Features without an area of their own, such as single points, have no hull but count "
            "with --all.",
            "jwcg hull sightings.gpkg range.gpkg --all",
            setupShape,
            runHull};
}

Command minCircleCommand() {
    return {"mincircle",
            "draw the smallest circle around each feature, or around all together",
            "Writes the smallest circle around each feature, as a polygon of 360 sides, with its "
            "attributes. With --all one around the whole layer, with the number of features in a "
            "field count.",
            "jwcg mincircle parcels.gpkg circles.gpkg --measures",
            setupCircle,
            runCircle};
}

Command minRectCommand() {
    return {"minrect",
            "draw the smallest rectangle around each feature, or around all together",
            "Writes the smallest rectangle around each feature, in any direction, with its "
            "attributes: the one of least area, or with --smallest width the narrowest. With --all "
            "one around the whole layer, with the number of features in a field count.",
            "jwcg minrect buildings.gpkg boxes.gpkg --measures",
            setupRectangle,
            runRectangle};
}

Command envelopeCommand() {
    return {"envelope",
            "draw the extent of each feature, or of all together",
            "Writes the rectangle along the axes around each feature, with its attributes. With "
            "--all one around the whole layer, with the number of features in a field count.",
            "jwcg envelope counties.gpkg extents.gpkg",
            setupShape,
            runEnvelope};
}

}  // namespace jws::cli
