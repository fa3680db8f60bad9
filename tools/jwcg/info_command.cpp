// SPDX-License-Identifier: MIT
//
// `jwcg info`: what is in a file. The description is one structure, kept as JSON; the text for
// people is made from it, so that both say the same.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>

#include "commands.h"
#include "input_layer.h"
#include "run_summary.h"

namespace jws::cli {
namespace {

const char* fieldTypeName(enumJWFieldType type) {
    switch (type) {
        case JWFieldInteger:
            return "integer";
        case JWFieldIntegerList:
            return "integer list";
        case JWFieldReal:
            return "real";
        case JWFieldRealList:
            return "real list";
        case JWFieldString:
            return "text";
        case JWFieldStringList:
            return "text list";
        case JWFieldBinary:
            return "binary";
        case JWFieldDate:
            return "date";
        case JWFieldTime:
            return "time";
        case JWFieldDateTime:
            return "date and time";
        case JWFieldInteger64:
            return "integer64";
        case JWFieldInteger64List:
            return "integer64 list";
    }
    return "unknown";
}

Json fieldsOf(const JWFeatureLayer& layer) {
    Json list = Json::array();
    const JWFields& fields = *layer.getFieldsDefnPtr();
    for (int i = 0; i < fields.getFieldCount(); ++i) {
        const JWField& field = *fields.getFieldPtr(i);
        list.push_back({{"name", field.getFieldName()},
                        {"type", fieldTypeName(field.getFieldType())},
                        {"width", field.getWidth()},
                        {"precision", field.getPrecision()}});
    }
    return list;
}

Json extentOf(const JWFeatureLayer& layer) {
    const JWEnvelop extent = layer.getLayerEnvelop();
    if (!extent.isValid()) return nullptr;
    return {extent.minX, extent.minY, extent.maxX, extent.maxY};
}

/// Reads every feature: how many have no geometry or an empty one, and which types the others have.
Json scan(JWFeatureLayer& layer, const std::string& path) {
    constexpr std::int64_t blockSize = 4096;
    std::int64_t read = 0;
    std::int64_t missing = 0;
    std::int64_t empty = 0;
    std::map<std::string, std::int64_t> types;
    JWFeatureClass block;
    for (int count = blockSize; count == blockSize; read += count) {
        count = layer.getFeaturesByPosition(read, blockSize, block);
        if (count < 0) throw libraryFailure(path);
        for (int i = 0; i < count; ++i) {
            const JWGeometry* geometry = block.getFeatureAt(i)->getGeometryPtr();
            if (geometry == nullptr) {
                ++missing;
            } else if (geometry->isEmpty()) {
                ++empty;
            } else {
                ++types[geometryTypeName(geometry->getGeometryWKBType())];
            }
        }
    }
    return {{"features", read},
            {"without_geometry", missing},
            {"empty_geometry", empty},
            {"geometry_types", types}};
}

Json describeLayer(JWDataSource& source, int position, const Settings& settings) {
    const LayerPointer layer(source.openLayer(position));
    if (!layer) throw libraryFailure(settings.input);
    const std::int64_t count = layer->getFeatureCount64();
    if (count < 0) throw libraryFailure(settings.input);
    const std::string reference = describe(layer->getSpatialReference());
    Json description = {{"name", layer->getLayerName()},
                        {"features", count},
                        {"geometry_type", geometryTypeName(layer->getGeometryType())},
                        {"extent", extentOf(*layer)},
                        {"spatial_reference", reference.empty() ? Json(nullptr) : Json(reference)},
                        {"fields", fieldsOf(*layer)}};
    if (settings.scan) description["scan"] = scan(*layer, settings.input);
    return description;
}

Json describeFile(const Settings& settings) {
    JWReport::clearError();
    const SourcePointer source(JWDataSource::open(settings.input.c_str()));
    if (!source) throw libraryFailure(settings.input);
    Json layers = Json::array();
    for (int i = 0; i < source->getLayerCount(); ++i) {
        layers.push_back(describeLayer(*source, i, settings));
    }
    return {{"command", "info"},
            {"version", version()},
            {"file", settings.input},
            {"format", source->getDriverName()},
            {"layers", std::move(layers)}};
}

std::string extentText(const Json& extent) {
    if (extent.is_null()) return "none";
    char text[128];
    std::snprintf(text, sizeof text, "%.10g, %.10g to %.10g, %.10g", extent[0].get<double>(),
                  extent[1].get<double>(), extent[2].get<double>(), extent[3].get<double>());
    return text;
}

std::string fieldText(const Json& field) {
    std::string text = field["name"].get<std::string>() + " " + field["type"].get<std::string>();
    const int width = field["width"];
    const int precision = field["precision"];
    if (width > 0) {
        text += " (" + std::to_string(width) +
                (precision > 0 ? "." + std::to_string(precision) : std::string()) + ")";
    }
    return text;
}

std::string layerText(const Json& layer) {
    std::string text = "\nlayer     " + layer["name"].get<std::string>() + "\nfeatures  " +
                       grouped(layer["features"]) + "\ngeometry  " +
                       layer["geometry_type"].get<std::string>() + "\nextent    " +
                       extentText(layer["extent"]) + "\nreference ";
    const Json& reference = layer["spatial_reference"];
    text += reference.is_null() ? "none" : reference.get<std::string>();
    const char* label = "\nfields    ";
    for (const Json& field : layer["fields"]) {
        text += label + fieldText(field);
        label = "\n          ";
    }
    if (const auto found = layer.find("scan"); found != layer.end()) {
        text += "\nread      " + grouped((*found)["features"]) + " features, " +
                grouped((*found)["without_geometry"]) + " without geometry, " +
                grouped((*found)["empty_geometry"]) + " with an empty one";
        for (const auto& [type, count] : (*found)["geometry_types"].items()) {
            text += "\n          " + grouped(count) + " " + type;
        }
    }
    return text + "\n";
}

void setupInfo(CLI::App& app, Settings& settings) {
    addFile(app, "FILE", settings.input, "File to describe");
    app.add_flag("--scan", settings.scan,
                 "Read every feature: count those without geometry and the types of the others");
}

int runInfo(const Settings& settings) {
    JWReport::setMessagesOn(false);
    const Json file = describeFile(settings);
    if (settings.json) {
        printJson(file);
        return ExitComplete;
    }
    std::string text = "file      " + file["file"].get<std::string>() + "\nformat    " +
                       file["format"].get<std::string>() + "\n";
    for (const Json& layer : file["layers"]) text += layerText(layer);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return ExitComplete;
}

}  // namespace

Command infoCommand() {
    return {"info",
            "tell what is in a file",
            "Lists the layers of a file with their counts, geometry types, extents, spatial "
            "references and fields.",
            "jwcg info counties.gpkg",
            setupInfo,
            runInfo};
}

}  // namespace jws::cli
