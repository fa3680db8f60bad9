// SPDX-License-Identifier: MIT
#include "output_format.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>

#include "exit_codes.h"
#include "jw_datasource.h"

namespace jws::cli {
namespace fs = std::filesystem;
namespace {

/// Endings of the files that form one data set with a file of the first ending.
struct Companions {
    const char* ending;
    std::vector<std::string> others;
};

const std::vector<Companions>& companions() {
    static const std::vector<Companions> table = {
        {".shp",
         {".shx", ".dbf", ".prj", ".cpg", ".qix", ".sbn", ".sbx", ".idm", ".ind", ".qpj",
          ".shp.xml"}},
        {".tab", {".dat", ".map", ".id", ".ind"}},
        {".mif", {".mid"}},
        {".gml", {".xsd", ".gfs"}},
    };
    return table;
}

const char* const journalSuffixes[] = {"-journal", "-wal", "-shm"};

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool is(GDALDriver& driver, const char* capability) {
    const char* value = driver.GetMetadataItem(capability);
    return value != nullptr && std::strcmp(value, "YES") == 0;
}

bool hasText(GDALDriver& driver, const char* item) {
    const char* value = driver.GetMetadataItem(item);
    return value != nullptr && *value != '\0';
}

/// A vector format whose layers are files of their own, readable afterwards.
bool isWritable(GDALDriver& driver) {
    return is(driver, GDAL_DCAP_VECTOR) && is(driver, GDAL_DCAP_CREATE) &&
           is(driver, GDAL_DCAP_CREATE_LAYER) && is(driver, GDAL_DCAP_CREATE_FIELD) &&
           is(driver, GDAL_DCAP_OPEN) && !hasText(driver, GDAL_DMD_CONNECTION_PREFIX) &&
           (hasText(driver, GDAL_DMD_EXTENSIONS) || hasText(driver, GDAL_DMD_EXTENSION)) &&
           (!is(driver, GDAL_DCAP_RASTER) || EQUAL(driver.GetDescription(), "GPKG"));
}

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

bool isOneOf(const std::string& format, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char* name) { return format == name; });
}

}  // namespace

std::vector<std::string> writableFormats() {
    GDALAllRegister();
    GDALDriverManager& manager = *GetGDALDriverManager();
    std::vector<std::string> names;
    for (int i = 0; i < manager.GetDriverCount(); ++i) {
        GDALDriver& driver = *manager.GetDriver(i);
        if (isWritable(driver)) names.emplace_back(driver.GetDescription());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string chooseFormat(const fs::path& path, const std::string& format) {
    const std::vector<std::string> known = writableFormats();
    const auto find = [&](const std::string& name) {
        const auto found = std::find_if(known.begin(), known.end(), [&](const std::string& other) {
            return lower(other) == lower(name);
        });
        return found != known.end() ? *found : std::string();
    };
    if (!format.empty()) {
        std::string name = find(format);
        if (name.empty()) name = find(JWDataSource::driverForPath(("x." + format).c_str()));
        if (!name.empty()) return name;
        throw CommandFailure(ExitUsage,
                             "output format '" + format +
                                 "' is not one of those that can be written: " + join(known));
    }
    if (path.extension().empty()) return "GPKG";
    const std::string name = find(JWDataSource::driverForPath(path.c_str()));
    // ".txt" says nothing of the one format that claims it.
    if (!name.empty() && lower(path.extension().string()) != ".txt") return name;
    throw CommandFailure(ExitUsage, path.string() + ": no format has the ending '" +
                                        path.extension().string() +
                                        "'; name one with --output-format: " + join(known));
}

std::string endingOf(const std::string& format) {
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(format.c_str());
    const char* endings =
        driver != nullptr ? driver->GetMetadataItem(GDAL_DMD_EXTENSIONS) : nullptr;
    const std::string list = endings != nullptr ? endings : "";
    return list.substr(0, list.find(' '));
}

std::vector<fs::path> possibleFilesOf(const fs::path& path) {
    std::vector<fs::path> files{path};
    const std::string ending = lower(path.extension().string());
    for (const Companions& row : companions()) {
        if (ending != row.ending) continue;
        for (const std::string& other : row.others) {
            files.push_back(path.parent_path() / (path.stem().string() + other));
        }
    }
    for (const char* suffix : journalSuffixes) files.emplace_back(path.string() + suffix);
    return files;
}

std::vector<fs::path> filesOf(const fs::path& path) {
    std::vector<fs::path> files = possibleFilesOf(path);
    files.erase(std::remove_if(std::next(files.begin()), files.end(),
                               [](const fs::path& file) {
                                   std::error_code ignored;
                                   return !fs::exists(fs::symlink_status(file, ignored));
                               }),
                files.end());
    return files;
}

std::vector<std::string> layerOptions(const std::string& format, enumJWWKBGeometryType type) {
    if (format == "CSV" && type != JWWKBNone) return {"GEOMETRY=AS_WKT"};
    return {};
}

bool takesSeveralLayers(const std::string& format) {
    return isOneOf(format, {"GPKG", "SQLite", "OpenFileGDB"});
}

bool hasTransactions(const std::string& format) { return isOneOf(format, {"GPKG", "SQLite"}); }

bool readsBackExactly(const std::string& format) {
    return isOneOf(format,
                   {"CSV", "ESRI Shapefile", "FlatGeobuf", "GML", "GPKG", "GeoJSON", "GeoJSONSeq",
                    "KML", "LIBKML", "MapInfo File", "OpenFileGDB", "SQLite"});
}

}  // namespace jws::cli
