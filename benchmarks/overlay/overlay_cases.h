// SPDX-License-Identifier: MIT
//
// The inputs of the layer overlay benchmark: generated pairs of any size and a real one.
#ifndef JWCG_BENCH_OVERLAY_CASES_H
#define JWCG_BENCH_OVERLAY_CASES_H

#include <cstdint>
#include <string>

#include "support/rival.h"

namespace bench {

/// A prepared pair of layers.
struct OverlayCase {
    LayerPair pair;
    std::int64_t polygonsA = 0;
    std::int64_t polygonsB = 0;
    double sliver = 0.0;  ///< pieces no larger than this do not have to agree in number
};

/// Where inputs come from and go to.
struct CaseSettings {
    std::string dataDirectory;  ///< holds the real layers
    std::string workDirectory;  ///< receives prepared inputs and results
    std::uint64_t seed = 1;     ///< of layer A; layer B takes the next one
};

/// Writes the two layers of a case into the work directory, in a process of its own. `name` is a
/// number n (two tessellations of n polygons each, the second shifted by half a cell), "counties"
/// (counties repaired, half-degree climate cells) or "countries" (countries repaired, two-degree
/// cells of the whole world). Throws `std::runtime_error` on failure.
OverlayCase prepareCase(const std::string& name, const CaseSettings& settings);

}  // namespace bench

#endif  // JWCG_BENCH_OVERLAY_CASES_H
