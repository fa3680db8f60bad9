// SPDX-License-Identifier: MIT
//
// Geometries on their way into files in which they stand as text. GDAL writes 15 digits.
#ifndef JW_FOUNDATION_EXACT_WKT_H
#define JW_FOUNDATION_EXACT_WKT_H

#include <ogr_geometry.h>

#include <memory>
#include <string>

namespace jws::detail {

/// Returns a geometry that answers every request for its well-known text by that of `geometry`, in
/// the shortest digits that read back as the same bits, with Z and M where it has them.
std::unique_ptr<OGRGeometry> asExactText(const OGRGeometry& geometry);

}  // namespace jws::detail

#endif  // JW_FOUNDATION_EXACT_WKT_H
