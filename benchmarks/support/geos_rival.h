// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_GEOS_RIVAL_H
#define JWCG_BENCH_GEOS_RIVAL_H

#include <memory>

#include "support/rival.h"

namespace bench {

/// How the GEOS loop treats a pair before it computes the intersection.
enum class GeosPretest {
    None,      ///< intersects every pair whose envelopes meet
    Prepared,  ///< with A's feature prepared: skips what misses it, copies what it contains
};

/// The loop that a programmer writes with GEOS: geometries in memory, an STRtree over B, the
/// intersection of each pair, polygonal parts kept. No attributes, one thread.
std::unique_ptr<Rival> makeGeosLoop(GeosPretest pretest);

}  // namespace bench

#endif  // JWCG_BENCH_GEOS_RIVAL_H
