// SPDX-License-Identifier: MIT
//
// Tells whole files from files that were cut short, where a driver would not notice or only after
// having handed out part of the features.
#ifndef JW_FOUNDATION_SOURCE_CHECK_H
#define JW_FOUNDATION_SOURCE_CHECK_H

#include <string>

namespace jws::detail {

/// Compares what the headers of a file state with its size: SQLite databases (GeoPackage) and the
/// parts of shapefiles; sees whether a CSV file ends within a quoted text. Returns what is wrong,
/// empty when nothing is or the format is another one. Cost: a few reads, whatever the size; one
/// pass over a CSV file whose last line has no end.
std::string damageOf(const std::string& path, const std::string& driver);

/// As `damageOf`, for a file just written and closed; text formats must also end as they should,
/// because their drivers do not look at the outcome of their writes.
std::string damageOfWrittenFile(const std::string& path, const std::string& driver);

}  // namespace jws::detail

#endif  // JW_FOUNDATION_SOURCE_CHECK_H
