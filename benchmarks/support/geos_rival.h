// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_GEOS_RIVAL_H
#define JWCG_BENCH_GEOS_RIVAL_H

#include <memory>

#include "support/rival.h"

namespace bench {

/// How the GEOS loop treats a pair before it computes anything.
enum class GeosPretest {
    None,      ///< overlays every pair whose envelopes meet
    Prepared,  ///< with the feature at hand prepared: skips what misses it, copies what it contains
};

/// The loop that a programmer writes with GEOS: geometries in memory, an STRtree over the other
/// layer, the intersection of each pair, the difference with all that a feature meets (taken off
/// one by one where they are few, united first where they are many), polygonal parts kept. No
/// attributes, one thread.
std::unique_ptr<Rival> makeGeosLoop(Operation operation, GeosPretest pretest);

}  // namespace bench

#endif  // JWCG_BENCH_GEOS_RIVAL_H
