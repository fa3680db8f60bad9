// SPDX-License-Identifier: MIT
//
// The commands that turn a layer into one of lines or of points.
#include <CLI/CLI.hpp>
#include <climits>

#include "commands.h"
#include "jw_geometryconvert.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

JWConvertOptions optionsOf(const Settings& settings) {
    JWConvertOptions options;
    options.keepAttributes = true;
    options.tolerance = settings.tolerance;
    options.dropOuterBoundary = settings.convert.innerOnly;
    options.everyNth = settings.convert.everyNth;
    options.leastSpacing = settings.convert.spacing;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    return options;
}

void setupToLines(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    CLI::Option* shared = app.add_flag(
        "--shared", settings.convert.shared,
        "Write each stretch of boundary once, with the polygons on its left and right");
    app.add_flag("--inner", settings.convert.innerOnly,
                 "Leave out lines with a polygon on one side only (with --shared)")
        ->needs(shared);
    addNonNegative(app, "--snap", settings.tolerance,
                   "Make boundaries this near one, layer units (with --shared)");
    addThreadOptions(app, settings);
}

int runToLines(const Settings& settings) {
    if (settings.tolerance > 0 && !settings.convert.shared)
        throw CommandFailure(ExitUsage, "--snap works with --shared only");
    const bool shared = settings.convert.shared;
    LayerJob job = {
        "to-lines",
        "converting",
        false,
        {{"shared", shared}, {"inner", settings.convert.innerOnly}, {"snap", settings.tolerance}},
        [=](InputLayer& input) {
            input.requirePolygons();
            return shared ? JWWKBLineString : JWWKBMultiLineString;
        },
        [&](const JobLayers& layers, JWLayerReport& report) {
            return JWGeometryConvert::convertPolygonLayerToLineLayer(
                &layers.input.layer(), &layers.output, shared, optionsOf(settings), &report);
        },
        AccountOfNothing};
    return runLayerJob(settings, job);
}

void setupToPoints(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    CLI::Option* centroid =
        app.add_flag("--centroid",
                     "One point each: the centre of mass (default); it may lie beside the feature");
    CLI::Option* inside = app.add_flag(
        "--inside", settings.convert.placeInside,
        "One point each that belongs to the feature: half way along lines, within polygons");
    CLI::Option* vertices = app.add_flag("--vertices", settings.convert.placeVertices,
                                         "Every vertex, with its order from 0 in a field vertex");
    inside->excludes(centroid);
    vertices->excludes(centroid)->excludes(inside);
    addInteger(app, "--every", settings.convert.everyNth, 1, INT_MAX,
               "With --vertices: every n-th vertex of each line or ring, from the first on");
    addNonNegative(app, "--spacing", settings.convert.spacing,
                   "With --vertices: the least distance from the vertex before, layer units");
    addThreadOptions(app, settings);
}

int runToPoints(const Settings& settings) {
    const enumJWPointPlace place = settings.convert.placeVertices ? JWPointVertices
                                   : settings.convert.placeInside ? JWPointInside
                                                                  : JWPointCentroid;
    if (place != JWPointVertices && (settings.convert.everyNth > 1 || settings.convert.spacing > 0))
        throw CommandFailure(ExitUsage, "--every and --spacing work with --vertices only");
    const char* const names[] = {"centroid", "inside", "vertices"};
    LayerJob job = {"to-points",
                    "converting",
                    false,
                    {{"place", names[place]},
                     {"every", settings.convert.everyNth},
                     {"spacing", settings.convert.spacing}},
                    [](InputLayer& input) {
                        input.require({JWWKBPoint, JWWKBLineString, JWWKBPolygon},
                                      "points, lines or polygons are needed");
                        return JWWKBPoint;
                    },
                    [&, place](const JobLayers& layers, JWLayerReport& report) {
                        return JWGeometryConvert::convertLayerToPointLayer(
                            &layers.input.layer(), &layers.output, place, optionsOf(settings),
                            &report);
                    },
                    AccountOfNothing};
    job.makesPoints = true;
    return runLayerJob(settings, job);
}

}  // namespace

Command toLinesCommand() {
    return {"to-lines",
            "make lines of the boundaries of polygons",
            "Writes the rings of each polygon as lines, with its attributes and its identifier in "
            "orig_fid. With --shared each stretch of boundary is written once, however many "
            "polygons run along it and whether or not their vertices match; it ends where the "
            "neighbour changes. left_fid and right_fid name the polygons beside it, -1 for none; "
            "orig_fid and the attributes are those of the first of them. Where polygons overlap, "
            "a line names those that it bounds.",
            "jwcg to-lines counties.gpkg borders.gpkg --shared",
            setupToLines,
            runToLines};
}

Command toPointsCommand() {
    return {"to-points",
            "make points of lines, polygons and multi-points",
            "Writes one point for each feature, its centre of mass or with --inside a point of its "
            "own, or with --vertices every vertex. Points carry the attributes of their feature, "
            "and its identifier in orig_fid.",
            "jwcg to-points counties.gpkg labels.gpkg --inside",
            setupToPoints,
            runToPoints};
}

}  // namespace jws::cli
