// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_GDAL_RIVAL_H
#define JWCG_BENCH_GDAL_RIVAL_H

#include <memory>

#include "support/rival.h"

namespace bench {

/// `OGR_L_Intersection` from Memory layers into a Memory layer, attributes of both sides, one
/// thread. Memory layers have no spatial index: the time grows with the product of the layers'
/// sizes.
std::unique_ptr<Rival> makeGdalMemory();

/// `OGR_L_Intersection` from GeoPackage to GeoPackage, opening and closing included: reads through
/// B's spatial index, writes in one transaction, builds the result's spatial index.
std::unique_ptr<Rival> makeGdalFile();

}  // namespace bench

#endif  // JWCG_BENCH_GDAL_RIVAL_H
