// SPDX-License-Identifier: MIT
//
// `jwcg buffer`: the area within a distance of each feature, or of all together.
#include <CLI/CLI.hpp>

#include "commands.h"
#include "jw_geometrybuffer.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

void setupBuffer(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    addNumbers(
        app, "--distance", {1}, "NUMBER",
        "Distance in layer units (degrees for longitude and latitude), above 0",
        [&settings](const std::vector<double>& numbers) { settings.buffer.distance = numbers; });
    addText(app, "--distance-field", settings.buffer.distanceField, "NAME",
            "Field with the distance of each feature; --distance serves where it is null");
    app.add_flag("--edge", settings.buffer.edge,
                 "Leave the polygons themselves out of their buffers");
    app.add_flag("--dissolve", settings.buffer.dissolve,
                 "Unite all buffers to one feature, without attributes");
    addThreadOptions(app, settings);
}

int runBuffer(const Settings& settings) {
    if (settings.buffer.distance.empty() && settings.buffer.distanceField.empty()) {
        throw CommandFailure(ExitUsage, "buffer: --distance or --distance-field is needed");
    }
    JWBufferOptions options;
    if (!settings.buffer.distance.empty()) options.distance = settings.buffer.distance.front();
    if (!settings.buffer.distance.empty() && !(options.distance > 0)) {
        throw CommandFailure(ExitUsage, "buffer: the distance must be greater than 0");
    }
    options.distanceField = settings.buffer.distanceField;
    options.type = settings.buffer.edge ? JWBufferEdge : JWBufferFace;
    options.dissolve = settings.buffer.dissolve;
    options.blockSize = settings.blockSize;
    options.threads = settings.threads;
    const auto prepare = [&](InputLayer& input) {
        requireGeometries(input);
        const JWFields& fields = *input.layer().getFieldsDefnPtr();
        if (!options.distanceField.empty() &&
            fields.getFieldIndex(options.distanceField.c_str()) < 0) {
            throw CommandFailure(ExitUsage, input.path() + ": layer " + input.layerName() +
                                                " has no field '" + options.distanceField + "'");
        }
        return JWWKBMultiPolygon;
    };
    const auto buffer = [&](const JobLayers& layers, JWLayerReport& report) {
        return JWGeometryBuffer::bufferLayer(&layers.input.layer(), &layers.output, options,
                                             &report);
    };
    Json parameters = {
        {"distance", settings.buffer.distance.empty() ? Json(nullptr) : Json(options.distance)},
        {"distance_field", settings.buffer.distanceField.empty()
                               ? Json(nullptr)
                               : Json(settings.buffer.distanceField)},
        {"edge", settings.buffer.edge},
        {"dissolve", settings.buffer.dissolve}};
    return runLayerJob(settings, {"buffer", "buffering", false, std::move(parameters), prepare,
                                  buffer, AccountOfNothing});
}

}  // namespace

Command bufferCommand() {
    return {"buffer",
            "draw the area within a distance of each feature, or of all together",
            "Writes the area within --distance of each point, line or polygon, with its "
            "attributes. Arcs have a corner every 10 degrees around points and every 15 degrees at "
            "lines. Features for which --distance-field has a distance of 0 or less, or none and "
            "there is no --distance, are listed and make the exit status 4.",
            "jwcg buffer rivers.gpkg banks.gpkg --distance 50 --dissolve",
            setupBuffer,
            runBuffer};
}

}  // namespace jws::cli
