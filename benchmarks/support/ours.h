// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_OURS_H
#define JWCG_BENCH_OURS_H

#include <memory>

#include "support/rival.h"

namespace bench {

/// Which of the two forms of `intersectPolygonLayers` runs.
enum class OurForm { Plain, Mp };

/// `intersectPolygonLayers` from in-memory layers into an in-memory layer, attributes of both
/// sides. `blockSize`: features of A held at a time.
std::unique_ptr<Rival> makeOursMemory(OurForm form, int blockSize);

/// The same from GeoPackage to GeoPackage, opening and closing included.
std::unique_ptr<Rival> makeOursFile(OurForm form, int blockSize);

}  // namespace bench

#endif  // JWCG_BENCH_OURS_H
