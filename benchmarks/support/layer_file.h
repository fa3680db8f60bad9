// SPDX-License-Identifier: MIT
//
// Layers in files, read and repaired through GDAL: the one way by which every contender's input is
// prepared and every result file is checked.
#ifndef JWCG_BENCH_LAYER_FILE_H
#define JWCG_BENCH_LAYER_FILE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace bench {

/// Calls `visit` with the well-known binary (little-endian) of every feature of a file's only
/// layer, in the file's order; features without a geometry are passed over. Throws
/// `std::runtime_error` when the file cannot be read.
void forEachWkb(const std::string& path,
                const std::function<void(const unsigned char* wkb, std::size_t size)>& visit);

/// Copies a polygon layer to a new GeoPackage of the same fields, features in order, in which
/// invalid geometries are repaired (GEOS's MakeValid, polygonal parts kept) and all are
/// multipolygons. Returns how many were repaired. Throws `std::runtime_error` on failure.
std::int64_t copyRepaired(const std::string& from, const std::string& to);

/// Writes the square cells between the meridians and parallels of every `degrees` degrees, which
/// must divide 180, as a GeoPackage. Throws `std::runtime_error` on failure.
void writeWorldCells(const std::string& path, int degrees);

/// Removes a file, if it is there, with the side files that SQLite may have left.
void removeGeoPackage(const std::string& path);

}  // namespace bench

#endif  // JWCG_BENCH_LAYER_FILE_H
