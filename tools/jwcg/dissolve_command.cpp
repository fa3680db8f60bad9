// SPDX-License-Identifier: MIT
//
// `jwcg dissolve`: polygons, points or lines, as the layer has them.
#include <CLI/CLI.hpp>

#include "commands.h"
#include "jw_geometrydissolve.h"
#include "layer_job.h"

namespace jws::cli {
namespace {

int fieldOf(const InputLayer& input, const JWFields& fields, const std::string& name) {
    const int index = fields.getFieldIndex(name.c_str());
    if (index >= 0) return index;
    std::string known;
    for (int i = 0; i < fields.getFieldCount(); ++i) {
        known += (i == 0 ? "" : ", ") + std::string(fields.getFieldPtr(i)->getFieldName());
    }
    throw CommandFailure(ExitUsage, input.path() + ": layer " + input.layerName() +
                                        " has no field '" + name + "'; it has " +
                                        (known.empty() ? "none" : known));
}

/// The fields of `--by`, which was split at its commas: of the names that some members in a row may
/// be, the longest that is a field is meant.
std::vector<int> fieldsOf(const InputLayer& input, const JWFields& fields,
                          const std::vector<std::string>& members) {
    std::vector<int> found;
    for (std::size_t i = 0; i < members.size(); ++i) {
        std::size_t last = i;
        std::string name = members[i], longer = name;
        for (std::size_t k = i + 1; k < members.size(); ++k) {
            longer += "," + members[k];
            if (fields.getFieldIndex(longer.c_str()) < 0) continue;
            name = longer;
            last = k;
        }
        found.push_back(fieldOf(input, fields, name));
        i = last;
    }
    return found;
}

/// "sum:pop", "count:pop" or "count".
JWDissolveStatistic statisticOf(const InputLayer& input, const JWFields& fields,
                                const std::string& text) {
    const struct {
        const char* name;
        enumJWStatistic statistic;
    } known[] = {{"sum", JWStatisticSum}, {"mean", JWStatisticMean},   {"min", JWStatisticMin},
                 {"max", JWStatisticMax}, {"count", JWStatisticCount}, {"first", JWStatisticFirst}};
    const std::size_t colon = text.find(':');
    const bool hasField = colon != std::string::npos;
    for (const auto& row : known) {
        if (text.compare(0, colon, row.name) != 0) continue;
        if (!hasField && row.statistic != JWStatisticCount) break;
        const int field = hasField ? fieldOf(input, fields, text.substr(colon + 1)) : -1;
        return {row.statistic, field, ""};
    }
    throw CommandFailure(ExitUsage, "--stat: '" + text +
                                        "' is not sum:FIELD, mean:FIELD, min:FIELD, max:FIELD, "
                                        "first:FIELD, count:FIELD or count");
}

using Form = int (*)(JWFeatureLayer*, JWFeatureLayer*, const std::vector<int>&,
                     const JWDissolveOptions&, JWLayerReport*);

/// What the command line comes to for a layer.
struct Request {
    Form form = nullptr;
    enumJWWKBGeometryType type = JWWKBMultiPolygon;
    std::vector<int> fields;
    JWDissolveOptions options;
};

/// The kind of the layer as declared or, where no type is, that of its first geometry.
enumJWWKBGeometryType kindOf(InputLayer& input) {
    if (input.kind() != JWWKBUnknown) return input.kind();
    JWReport::clearError();
    std::shared_ptr<const JWFeature> feature;
    for (std::int64_t i = 0; input.layer().getNextSharedFeature(i, feature); ++i) {
        if (feature->isGeometryEmpty()) continue;
        return singleType(feature->getGeometryPtr()->getGeometryWKBType());
    }
    if (JWReport::lastError().kind != JWErrorNone) throw libraryFailure(input.path());
    return JWWKBUnknown;
}

/// Refuses what means nothing to points and lines.
void requireForParts(const Settings& settings, const InputLayer& input) {
    const std::string layer = input.path() + ": layer " + input.layerName() + " holds no polygons ";
    if (settings.dissolve.fields.empty()) throw CommandFailure(ExitUsage, layer + "and needs --by");
    const char* meaningless = settings.dissolve.multipart        ? "--multipart"
                              : settings.dissolve.acrossClusters ? "--across"
                              : settings.tolerance != 0          ? "--tolerance"
                              : !settings.areaField.empty()      ? "--area-field"
                                                                 : nullptr;
    if (meaningless == nullptr) return;
    throw CommandFailure(ExitUsage, layer + "for " + meaningless);
}

/// Chooses by the kind of the layer.
void chooseForm(const Settings& settings, InputLayer& input, Request& request) {
    switch (kindOf(input)) {
        case JWWKBPoint:
            request.form = &JWGeometryDissolve::dissolvePointLayerByAttributes;
            request.type = JWWKBMultiPoint;
            break;
        case JWWKBLineString:
            request.form = &JWGeometryDissolve::dissolveLineLayerByAttributes;
            request.type = JWWKBMultiLineString;
            break;
        default:
            input.requirePolygons();
            request.form = &JWGeometryDissolve::dissolvePolygonLayer;
            return;
    }
    requireForParts(settings, input);
}

Request requestFor(const Settings& settings, InputLayer& input) {
    Request request;
    chooseForm(settings, input, request);
    const JWFields& fields = *input.layer().getFieldsDefnPtr();
    request.fields = fieldsOf(input, fields, settings.dissolve.fields);
    request.options.multipart = settings.dissolve.multipart || settings.dissolve.acrossClusters;
    request.options.acrossClusters = settings.dissolve.acrossClusters;
    request.options.tolerance = settings.tolerance;
    request.options.blockSize = settings.blockSize;
    request.options.threads = settings.threads;
    request.options.areaField = settings.areaField;
    for (const std::string& text : settings.dissolve.statistics) {
        request.options.statistics.push_back(statisticOf(input, fields, text));
    }
    return request;
}

void setupDissolve(CLI::App& app, Settings& settings) {
    addLayerOptions(app, settings, false);
    addList(app, "--by", settings.dissolve.fields, "FIELD[,FIELD]",
            "Fields whose values must be equal; none: all that lies together");
    app.add_flag("--multipart", settings.dissolve.multipart,
                 "Write one feature per group; default: one per polygon");
    app.add_flag("--across", settings.dissolve.acrossClusters,
                 "Write one feature per set of values, wherever its polygons lie");
    addList(
        app, "--stat", settings.dissolve.statistics, "STATISTIC[:FIELD]",
        "Statistics over the features of a group, in each of its polygons: sum, mean, min, max, "
        "first or count of a field, or count alone");
    addRunOptions(app, settings);
}

int runDissolve(const Settings& settings) {
    Request request;
    Json parameters = {
        {"by", settings.dissolve.fields},
        {"multipart", settings.dissolve.multipart || settings.dissolve.acrossClusters},
        {"across", settings.dissolve.acrossClusters},
        {"stat", settings.dissolve.statistics}};
    return runLayerJob(settings, {"dissolve", "dissolving", false,
                                  withAreaParameters(settings, std::move(parameters)),
                                  [&](InputLayer& input) {
                                      request = requestFor(settings, input);
                                      return request.type;
                                  },
                                  [&](const JobLayers& layers, JWLayerReport& report) {
                                      return request.form(&layers.input.layer(), &layers.output,
                                                          request.fields, request.options, &report);
                                  }});
}

}  // namespace

Command dissolveCommand() {
    return {"dissolve",
            "merge features that share attribute values",
            "Unites the polygons of a layer that have equal values in the fields of --by and lie "
            "together: whose envelopes meet, directly or through other polygons. The result has "
            "these fields and the statistics asked for. Points and lines are gathered to "
            "multi-points and multi-lines, wherever they lie. A layer of no declared type is taken "
            "for what its first geometry is. Values that are missing are equal.",
            "jwcg dissolve counties.gpkg states.gpkg --by state --across --stat count,first:name",
            setupDissolve,
            runDissolve};
}

}  // namespace jws::cli
