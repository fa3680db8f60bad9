// SPDX-License-Identifier: MIT
//
// Control points in a text file, and what a fit leaves over at each.
#ifndef JWCG_CONTROL_POINTS_H
#define JWCG_CONTROL_POINTS_H

#include <string>
#include <vector>

#include "jw_geometrytransform.h"
#include "run_summary.h"

namespace jws::cli {

/// Reads control points: on each line target x, target y, source x, source y, with commas,
/// semicolons or white space between them; what follows is left alone. Lines that start with '#',
/// empty ones and a first line of names are passed over. Where the first line names a column
/// "enable", points with a 0 there are left out, as geo-referencing programs write them. Throws
/// CommandFailure: input unreadable.
std::vector<JWGCP> readControlPoints(const std::string& path);

/// The fit of control points: its matrix, and how far from its target it brings each source.
struct ControlFit {
    std::vector<JWGCP> points;  ///< `residual` is the distance
    double matrix[6];
    double rootMeanSquare = 0;
};

/// Throws CommandFailure (usage) when the points determine no transformation.
ControlFit fitControlPoints(const std::string& path);

/// One line a point and one for the root mean square.
std::string asText(const ControlFit& fit);
Json asJson(const ControlFit& fit);

}  // namespace jws::cli

#endif  // JWCG_CONTROL_POINTS_H
