// SPDX-License-Identifier: MIT
//
// The commands that overlay two polygon layers, or one with itself. They differ in the library's
// operation, and in which options mean something to it.
#include <CLI/CLI.hpp>

#include "commands.h"
#include "jw_geometryoverlay2.h"
#include "jw_overlayoptions.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

using Overlay = JWGeometryOverlay2;
using TwoLayers = int (*)(JWFeatureLayer*, JWFeatureLayer*, JWFeatureLayer*,
                          const JWOverlayOptions&, JWLayerReport*);
using OneLayer = int (*)(JWFeatureLayer*, JWFeatureLayer*, const JWOverlayOptions&, JWLayerReport*);

int attributeMode(const std::string& attributes) {
    if (attributes == "fid") return 1;
    return attributes == "both" ? 2 : 0;
}

JWOverlayOptions optionsOf(const Settings& settings) {
    JWOverlayOptions options;
    options.attributeMode = attributeMode(settings.overlays.attributes);
    options.tolerance = settings.tolerance;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    options.multipart = !settings.overlays.singleParts;
    options.keepBorders = !settings.overlays.noBorders;
    options.keepUnmatched = !settings.overlays.dropUnmatched;
    options.rowPerPair = settings.overlays.rowPerPair;
    options.checkAreas = !settings.overlays.noCheck;
    options.promoteToMulti = true;
    options.areaField = settings.areaField;
    options.prefixA = settings.overlays.prefixA;
    options.prefixB = settings.overlays.prefixB;
    return options;
}

Json parametersOf(const Settings& settings) {
    return withAreaParameters(settings, {{"attributes", settings.overlays.attributes},
                                         {"prefix_a", settings.overlays.prefixA},
                                         {"prefix_b", settings.overlays.prefixB},
                                         {"single_parts", settings.overlays.singleParts},
                                         {"check", !settings.overlays.noCheck}});
}

int runTwo(const Settings& settings, const char* command, TwoLayers operation,
           const Json& own = Json::object()) {
    Json parameters = parametersOf(settings);
    parameters.update(own);
    return runLayerJob(settings,
                       {command, "overlaying", true, std::move(parameters), requirePolygons,
                        [&](const JobLayers& layers, JWLayerReport& report) {
                            return operation(&layers.input.layer(), &layers.overlay->layer(),
                                             &layers.output, optionsOf(settings), &report);
                        }});
}

int runOne(const Settings& settings, const char* command, OneLayer operation, const Json& own) {
    Json parameters = parametersOf(settings);
    parameters.update(own);
    return runLayerJob(settings,
                       {command, "overlaying", false, std::move(parameters), requirePolygons,
                        [&](const JobLayers& layers, JWLayerReport& report) {
                            return operation(&layers.input.layer(), &layers.output,
                                             optionsOf(settings), &report);
                        }});
}

/// What all of them take.
void setupPlain(CLI::App& app, Settings& settings, bool takesOverlay) {
    addLayerOptions(app, settings, takesOverlay);
    addRunOptions(app, settings);
    app.add_flag("--single-parts", settings.overlays.singleParts,
                 "Make each part of a result a feature of its own");
    app.add_flag("--no-check", settings.overlays.noCheck,
                 "Do not check that the areas add up, which costs up to as much as the operation");
}

/// What those take whose results carry attributes of two features.
void setupJoining(CLI::App& app, Settings& settings, bool takesOverlay) {
    setupPlain(app, settings, takesOverlay);
    addChoice(app, "--attributes", settings.overlays.attributes, {"all", "fid", "both"},
              "Attributes of the result: those of both source features, their two identifiers, or "
              "both");
    addText(app, "--prefix-a", settings.overlays.prefixA, "TEXT",
            "Put in front of the first feature's fields whose names collide");
    addText(app, "--prefix-b", settings.overlays.prefixB, "TEXT",
            "Put in front of the second feature's fields whose names collide");
}

void setupTwo(CLI::App& app, Settings& settings) { setupPlain(app, settings, true); }
void setupTwoJoining(CLI::App& app, Settings& settings) { setupJoining(app, settings, true); }

void setupUpdate(CLI::App& app, Settings& settings) {
    setupTwoJoining(app, settings);
    app.add_flag(
        "--no-borders", settings.overlays.noBorders,
        "Let the features of OVERLAY take in what they overlap: each feature of INPUT goes "
        "to the first of them");
}

void setupSpatialJoin(CLI::App& app, Settings& settings) {
    setupTwoJoining(app, settings);
    app.add_flag("--drop-unmatched", settings.overlays.dropUnmatched,
                 "Leave out features of INPUT that meet none of OVERLAY");
    app.add_flag("--row-per-pair", settings.overlays.rowPerPair,
                 "Write a row for every feature of OVERLAY that is met; default: one row for each "
                 "feature of INPUT, with the attributes of the first");
}

/// With this flag a result carries the attributes of one feature.
void excludeJoining(CLI::App& app, CLI::Option& flag) {
    for (const char* name : {"--attributes", "--prefix-a", "--prefix-b"}) {
        flag.excludes(app.get_option(name));
    }
}

void setupSelfUnion(CLI::App& app, Settings& settings) {
    setupJoining(app, settings, false);
    excludeJoining(
        app, *app.add_flag(
                 "--merge", settings.overlays.merge,
                 "Grow features that overlap together instead, with the attributes of the first"));
}

void setupSelfIntersect(CLI::App& app, Settings& settings) {
    setupJoining(app, settings, false);
    excludeJoining(
        app, *app.add_flag(
                 "--per-feature", settings.overlays.perFeature,
                 "Write for each feature what it shares with later ones, all in one, instead"));
}

}  // namespace

Command intersectCommand() {
    return {"intersect",
            "cut the polygons of one layer by those of another",
            "Writes, for every pair of a polygon of INPUT and a polygon of OVERLAY that share an "
            "area, the shared area as one multi-polygon with the attributes of both.",
            "jwcg intersect counties.gpkg climate_cells.gpkg county_cells.gpkg",
            setupTwoJoining,
            [](const Settings& settings) {
                return runTwo(settings, "intersect", &Overlay::intersectPolygonLayers);
            }};
}

Command unionCommand() {
    return {"union",
            "cut two layers at each other's borders and keep everything",
            "Writes the pieces that polygons of INPUT and OVERLAY share, with the attributes of "
            "both, then what lies in one of the layers only; attributes of the side that is "
            "missing stay unset.",
            "jwcg union counties.gpkg climate_cells.gpkg everything.gpkg",
            setupTwoJoining,
            [](const Settings& settings) {
                return runTwo(settings, "union", &Overlay::unionPolygonLayers2);
            }};
}

Command mergeCommand() {
    return {"merge",
            "grow overlapping polygons of two layers together",
            "Writes one multi-polygon for every set of polygons of INPUT and OVERLAY that overlap "
            "one another, directly or through others, with the attributes of the first of each "
            "layer. Polygons that touch stay apart.",
            "jwcg merge burnt_2020.gpkg burnt_2021.gpkg burnt.gpkg",
            setupTwoJoining,
            [](const Settings& settings) {
                return runTwo(settings, "merge", &Overlay::unionPolygonLayers);
            }};
}

Command eraseCommand() {
    return {"erase",
            "take the polygons of one layer out of another",
            "Writes what of each polygon of INPUT lies outside of all of OVERLAY, with its "
            "attributes.",
            "jwcg erase countries.gpkg lakes.gpkg land.gpkg",
            setupTwo,
            [](const Settings& settings) {
                return runTwo(settings, "erase", &Overlay::erasePolygonLayer);
            }};
}

Command identityCommand() {
    return {"identity",
            "cut the polygons of one layer by those of another and keep the rest",
            "Writes the pieces of each polygon of INPUT in the polygons of OVERLAY, with the "
            "attributes of both, then what of it lies outside of OVERLAY.",
            "jwcg identity counties.gpkg climate_cells.gpkg counties_cut.gpkg",
            setupTwoJoining,
            [](const Settings& settings) {
                return runTwo(settings, "identity", &Overlay::identityPolygonLayers);
            }};
}

Command symdiffCommand() {
    return {"symdiff",
            "keep what lies in just one of two layers",
            "Writes what of each polygon of INPUT lies outside of OVERLAY, then what of each "
            "polygon of OVERLAY lies outside of INPUT, with the attributes of that layer.",
            "jwcg symdiff land_2010.gpkg land_2020.gpkg changed.gpkg",
            setupTwoJoining,
            [](const Settings& settings) {
                return runTwo(settings, "symdiff", &Overlay::symmetricalDifferencePolygonLayers);
            }};
}

Command updateCommand() {
    return {"update",
            "lay the polygons of one layer over another",
            "Writes what of each polygon of INPUT lies outside of OVERLAY, then the polygons of "
            "OVERLAY, with the attributes of the layer that a result comes from.",
            "jwcg update parcels.gpkg new_parcels.gpkg parcels_now.gpkg",
            setupUpdate,
            [](const Settings& settings) {
                return runTwo(settings, "update", &Overlay::updatePolygonLayer,
                              {{"borders", !settings.overlays.noBorders}});
            }};
}

Command spatialJoinCommand() {
    return {"spatial-join",
            "give polygons the attributes of those that they overlap",
            "Writes the polygons of INPUT, unchanged, with the attributes of the first polygon of "
            "OVERLAY that each overlaps, and how many those are in a field join_count.",
            "jwcg spatial-join counties.gpkg climate_cells.gpkg joined.gpkg",
            setupSpatialJoin,
            [](const Settings& settings) {
                return runTwo(settings, "spatial-join", &Overlay::spatialJoinPolygonLayers,
                              {{"drop_unmatched", settings.overlays.dropUnmatched},
                               {"row_per_pair", settings.overlays.rowPerPair}});
            }};
}

Command selfUnionCommand() {
    return {"self-union",
            "cut the polygons of a layer at each other's borders",
            "Writes the pieces into which the polygons of a layer cut one another: each overlap "
            "once, with the attributes of its first two polygons, and each remainder once. No two "
            "pieces overlap.",
            "jwcg self-union permits.gpkg permits_flat.gpkg",
            setupSelfUnion,
            [](const Settings& settings) {
                return runOne(settings, "self-union",
                              settings.overlays.merge
                                  ? OneLayer(&Overlay::unionPolygonsInSameLayer)
                                  : OneLayer(&Overlay::unionPolygonsInSameLayer2),
                              {{"merge", settings.overlays.merge}});
            }};
}

Command selfIntersectCommand() {
    return {"self-intersect",
            "find where the polygons of a layer overlap",
            "Writes each area that two or more polygons of a layer share, once, with the "
            "attributes of its first two polygons.",
            "jwcg self-intersect permits.gpkg conflicts.gpkg",
            setupSelfIntersect,
            [](const Settings& settings) {
                return runOne(settings, "self-intersect",
                              settings.overlays.perFeature
                                  ? OneLayer(&Overlay::intersectPolygonsInSameLayer)
                                  : OneLayer(&Overlay::intersectPolygonsInSameLayer2),
                              {{"per_feature", settings.overlays.perFeature}});
            }};
}

}  // namespace jws::cli
