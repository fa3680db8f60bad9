// SPDX-License-Identifier: MIT
//
// `jwcg clip`: by the areas of another layer, along its lines, or by a rectangle.
#include <CLI/CLI.hpp>

#include "commands.h"
#include "input_layer.h"
#include "jw_geometryclip.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

void setupClip(CLI::App& app, Settings& settings) {
    addFile(app, "INPUT", settings.input, "File with the input layer");
    app.add_option("CUTTER", settings.overlay,
                   "File with the areas to clip by, or the lines to cut along; none with --bbox")
        ->type_name("")
        ->required();
    app.add_option("OUTPUT", settings.output, "File that receives the result")->type_name("");
    addFileOptions(app, settings, "CUTTER");
    addRectangle(app, "--bbox", settings.clip.box,
                 "Clip by a rectangle, in the coordinates of INPUT, in the place of CUTTER");
    app.add_flag("--outside", settings.clip.outside, "Keep what lies outside instead");
    addOutputOptions(app, settings);
    addThreadOptions(app, settings);
}

/// With --bbox the second file is the output.
Settings withFilesInPlace(const Settings& given) {
    Settings settings = given;
    const bool byBox = !given.clip.box.empty();
    if (byBox != given.output.empty()) {
        throw CommandFailure(ExitUsage, byBox ? "clip: with --bbox there is no CUTTER"
                                              : "clip: CUTTER or --bbox is needed");
    }
    if (!byBox) return settings;
    if (!given.overlayLayer.empty() || !given.overlayWhere.empty()) {
        throw CommandFailure(ExitUsage, "clip: with --bbox there is no CUTTER to choose from");
    }
    settings.output.swap(settings.overlay);
    return settings;
}

/// Whether the cutters are lines. A layer that declares no type has areas.
bool cutsAlongLines(const Settings& settings) {
    if (!settings.clip.box.empty()) return false;
    const InputLayer cutter(settings.overlay, settings.overlayLayer);
    if (cutter.kind() != JWWKBLineString) return false;
    if (settings.clip.outside)
        throw CommandFailure(ExitUsage, "clip: lines have no outside to keep");
    return true;
}

/// Pieces that lines cut are features of their own.
enumJWWKBGeometryType pieceType(InputLayer& input) {
    input.require({JWWKBLineString, JWWKBPolygon}, "lines or polygons are needed");
    return singleType(input.widestType());
}

enumJWWKBGeometryType resultType(InputLayer& input) {
    switch (requireGeometries(input)) {
        case JWWKBLineString:
        case JWWKBMultiLineString:
            return JWWKBMultiLineString;
        case JWWKBPolygon:
        case JWWKBMultiPolygon:
            return JWWKBMultiPolygon;
        default:
            return input.widestType();
    }
}

int runClip(const Settings& given) {
    const Settings settings = withFilesInPlace(given);
    JWClipOptions options;
    options.outside = settings.clip.outside;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    const std::vector<double>& box = settings.clip.box;
    const bool alongLines = cutsAlongLines(settings);
    const auto clip = [&](const JobLayers& layers, JWLayerReport& report) {
        JWFeatureLayer* input = &layers.input.layer();
        if (alongLines) {
            return JWGeometryClip::featureLayerCutByLayer(input, &layers.overlay->layer(),
                                                          &layers.output, options, &report);
        }
        if (layers.overlay != nullptr) {
            return JWGeometryClip::featureLayerClipByLayer(input, &layers.overlay->layer(),
                                                           &layers.output, options, &report);
        }
        return JWGeometryClip::featureLayerClipByEnvelop(
            input, &layers.output, JWEnvelop(box[0], box[1], box[2], box[3]), options, &report);
    };
    return runLayerJob(settings, {"clip",
                                  "clipping",
                                  box.empty(),
                                  {{"bbox", box.empty() ? Json(nullptr) : Json(box)},
                                   {"outside", settings.clip.outside}},
                                  alongLines ? pieceType : resultType,
                                  clip,
                                  AccountOfNothing,
                                  {},
                                  alongLines});
}

}  // namespace

Command clipCommand() {
    return {
        "clip",
        "keep what lies inside the areas of another layer, or cut along its lines",
        "Writes what of each point, line or polygon of INPUT lies in the areas of CUTTER, all of "
        "them taken together, with its attributes; borders that two areas share cut nothing, "
        "and what lies on the boundary is inside. With --bbox a rectangle takes the place of "
        "CUTTER: jwcg clip INPUT OUTPUT --bbox X1,Y1,X2,Y2. Lines become multi-lines.\n\nWhere "
        "CUTTER "
        "is a layer of lines, they cut the lines and polygons of INPUT instead: each piece becomes "
        "a feature with the attributes of what it is a piece of, and nothing is left out.",
        "jwcg clip roads.gpkg state.gpkg state_roads.gpkg",
        setupClip,
        runClip};
}

}  // namespace jws::cli
