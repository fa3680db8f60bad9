// SPDX-License-Identifier: MIT
//
// What the program knows about output formats: which it can write, which files one of them is made
// of, and what it has to be told.
#ifndef JWCG_OUTPUT_FORMAT_H
#define JWCG_OUTPUT_FORMAT_H

#include <filesystem>
#include <string>
#include <vector>

#include "jw_codes.h"

namespace jws::cli {

/// Short names of the file formats that can be written, in alphabetic order. Databases, services
/// and raster containers are left out.
std::vector<std::string> writableFormats();

/// The format for an output: `format` when it is given (GDAL's short name in any case, or a file
/// ending), otherwise by the path's ending, GeoPackage when it has none. Throws CommandFailure
/// (usage) naming the known formats when there is none.
std::string chooseFormat(const std::filesystem::path& path, const std::string& format);

/// The ending that files of a format have first of all, without a dot.
std::string endingOf(const std::string& format);

/// The format name that is made of several files: all files beside `path` that belong to it,
/// itself first whether or not it exists, the others only as far as they exist. A shapefile's
/// table, projection and indexes; a database's journals.
std::vector<std::filesystem::path> filesOf(const std::filesystem::path& path);
/// The same as names that the format may create, existing or not.
std::vector<std::filesystem::path> possibleFilesOf(const std::filesystem::path& path);

/// Layer options without which a format would lose something of a layer of this type.
std::vector<std::string> layerOptions(const std::string& format, enumJWWKBGeometryType type);
/// True when a layer can be added to an existing file of the format.
bool takesSeveralLayers(const std::string& format);
/// True when the format's own transactions report every failed write, so that counting suffices to
/// verify a finished file; other files are read back once.
bool hasTransactions(const std::string& format);
/// True when a file of the format is read back feature for feature as it was written.
bool readsBackExactly(const std::string& format);

}  // namespace jws::cli

#endif  // JWCG_OUTPUT_FORMAT_H
