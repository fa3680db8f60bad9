// SPDX-License-Identifier: MIT
#ifndef JWCG_BENCH_OURS_H
#define JWCG_BENCH_OURS_H

#include <memory>

#include "support/rival.h"

namespace bench {

/// How an operation runs.
struct OurForm {
    Operation operation = Operation::Intersect;
    bool team = false;     ///< as its `_mp` form
    int blockSize = 4096;  ///< features held at a time
};

/// A layer operation from in-memory layers into an in-memory layer, attributes of both sides.
std::unique_ptr<Rival> makeOursMemory(const OurForm& form);

/// The same from GeoPackage to GeoPackage, opening and closing included.
std::unique_ptr<Rival> makeOursFile(const OurForm& form);

}  // namespace bench

#endif  // JWCG_BENCH_OURS_H
