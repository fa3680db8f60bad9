// SPDX-License-Identifier: MIT
//
// `jwcg nearest`: the established search, or the exact one.
#include <CLI/CLI.hpp>
#include <climits>
#include <cmath>

#include "commands.h"
#include "jw_geometrynearest.h"
#include "layer_job.h"
#include "signals.h"

namespace jws::cli {
namespace {

void setupNearest(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, true);
    CLI::Option* exact = app.add_flag("--true", settings.nearest.exact,
                                      "Find what is really nearest, for features of any kind");
    addInteger(app, "--k", settings.nearest.count, 1, INT_MAX,
               "With --true: how many features for each of INPUT; ties are all kept");
    addNonNegative(app, "--max-distance", settings.nearest.maxDistance,
                   "With --true: leave out what is farther, layer units; default: none");
    app.add_flag("--others", settings.nearest.skipSame,
                 "With --true: leave out the feature of OVERLAY with the same identifier, for a "
                 "layer against itself")
        ->needs(exact);
    app.add_flag("--boundary", settings.nearest.toBoundary,
                 "Measure to the rings of polygons, not to their areas")
        ->excludes(exact);
    addThreadOptions(app, settings);
}

CommandFailure refusal(const InputLayer& layer, const std::string& what) {
    return CommandFailure(ExitUsage, layer.path() + ": layer " + layer.layerName() + " holds " +
                                         what + "; --true takes any");
}

/// The kind of geometry that the established search finds in a layer: as declared or, where no type
/// is, that of all features. Multi-points are a kind of their own. A layer without geometries has
/// no kind. Throws CommandFailure when there are several.
enumJWWKBGeometryType kindOf(InputLayer& input) {
    const auto kindOfType = [](enumJWWKBGeometryType type) {
        return type == JWWKBMultiPoint ? type : singleType(type);
    };
    enumJWWKBGeometryType kind = kindOfType(input.layer().getGeometryType());
    if (kind != JWWKBUnknown) return kind;
    kind = JWWKBNone;
    JWReport::clearError();
    std::shared_ptr<const JWFeature> feature;
    for (std::int64_t i = 0; input.layer().getNextSharedFeature(i, feature); ++i) {
        if (interruptRequested())
            throw CommandFailure(ExitInterrupted, "interrupted; nothing was written");
        if (feature->isGeometryEmpty()) continue;
        const auto found = kindOfType(feature->getGeometryPtr()->getGeometryWKBType());
        if (kind == JWWKBNone) kind = found;
        if (kind != found) throw refusal(input, "geometries of several kinds");
    }
    if (JWReport::lastError().kind != JWErrorNone) throw libraryFailure(input.path());
    return kind;
}

/// The operation for the kinds of two layers; throws CommandFailure when there is none. For a layer
/// without geometries any will do: the library says what is amiss.
enumJWShortestOperation operationFor(const Settings& settings, InputLayer& source,
                                     InputLayer& target) {
    const auto refuse = [](const InputLayer& layer, enumJWWKBGeometryType kind,
                           const char* needed) {
        return refusal(layer, std::string(geometryTypeName(kind)) + " geometries, not " + needed);
    };
    const enumJWWKBGeometryType from = kindOf(source), to = kindOf(target);
    const bool fromLines = from == JWWKBLineString;
    if (!fromLines && from != JWWKBPoint && from != JWWKBNone)
        throw refuse(source, from, "points or lines");
    switch (to) {
        case JWWKBPoint:
        case JWWKBNone:
            return fromLines ? JWShortestLinesToPoints : JWShortestPointsToPoints;
        case JWWKBLineString:
            return fromLines ? JWShortestLinesToLines : JWShortestPointsToLines;
        case JWWKBPolygon:
            if (settings.nearest.toBoundary)
                return fromLines ? JWShortestLinesToRings : JWShortestPointsToRings;
            return fromLines ? JWShortestLinesToPolygons : JWShortestPointsToPolygons;
        default:
            throw refuse(target, to, "points, lines or polygons");
    }
}

int findNearest(const Settings& settings, const JobLayers& layers, JWLayerReport& report) {
    JWFeatureLayer* source = &layers.input.layer();
    JWFeatureLayer* target = &layers.overlay->layer();
    if (!settings.nearest.exact) {
        return JWGeometryNearest::shortestFeatures(
            operationFor(settings, layers.input, *layers.overlay), source, target, &layers.output,
            settings.threads, &report, settings.blockSize);
    }
    JWNearestOptions options;
    options.blockSize = settings.blockSize;
    options.count = settings.nearest.count;
    options.maxDistance = settings.nearest.maxDistance;
    options.skipSameIdentifier = settings.nearest.skipSame;
    options.threads = settings.threads;
    return JWGeometryNearest::nearestFeatures(source, target, &layers.output, options, &report);
}

int runNearest(const Settings& settings) {
    const bool limited = std::isfinite(settings.nearest.maxDistance);
    if (!settings.nearest.exact && (settings.nearest.count > 1 || limited))
        throw CommandFailure(ExitUsage, "--k and --max-distance work with --true only");
    bool isGeographic = false;
    LayerJob job = {"nearest",
                    "searching",
                    true,
                    {{"true", settings.nearest.exact},
                     {"k", settings.nearest.count},
                     {"max_distance", limited ? Json(settings.nearest.maxDistance) : Json(nullptr)},
                     {"others", settings.nearest.skipSame},
                     {"boundary", settings.nearest.toBoundary}},
                    [&](InputLayer& input) {
                        const JWSpatialReference* reference = input.reference();
                        isGeographic = reference != nullptr && reference->isGeographic() != 0;
                        requireGeometries(input);
                        return JWWKBLineString;
                    },
                    [&](const JobLayers& layers, JWLayerReport& report) {
                        const int written = findNearest(settings, layers, report);
                        if (isGeographic)
                            report.warning +=
                                (report.warning.empty() ? "" : "; ") +
                                std::string(
                                    "the layers are in longitude and latitude: distances "
                                    "are in degrees, and nearest means nearest in degrees; "
                                    "distances along the earth are not offered yet");
                        return written;
                    },
                    AccountOfNothing,
                    {},
                    true};
    return runLayerJob(settings, job);
}

}  // namespace

Command nearestCommand() {
    return {"nearest",
            "draw lines to the nearest features of another layer",
            "Writes a line of two points from each feature of INPUT to the nearest of OVERLAY, "
            "with both identifiers and the distance. By default by the established search, from "
            "points or lines: the nearest among the features whose rectangles meet the first "
            "square around it, grown step by step, that meets any (1/16 of the larger side of "
            "OVERLAY's extent as a rule); a nearer feature just outside of the square is missed, "
            "and a feature of INPUT far outside of the extent in both directions may get no line. "
            "Its fields are named as ever, such as PointFid, LineFid and ShortestLength; to "
            "polygons from points PolygonFid is the point's identifier and PointFid the "
            "polygon's.\n\n"
            "With --true the search is exact, for points, lines and polygons in any pair: "
            "source_fid, target_fid, distance and rank. Polygons are areas; what lies inside is at "
            "distance 0. Features equally near are all written.\n\n"
            "Distances are planar, in the units of the layers: degrees where these are in "
            "longitude and latitude. Distances along the earth are not offered yet; project the "
            "layers first.",
            "jwcg nearest schools.gpkg roads.gpkg access.gpkg --true",
            setupNearest,
            runNearest};
}

}  // namespace jws::cli
