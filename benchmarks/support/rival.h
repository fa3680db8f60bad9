// SPDX-License-Identifier: MIT
//
// What the driver sees of a contender. Each library has one source that implements this; failures
// are `std::exception`s, which the driver reports as that contender's.
#ifndef JWCG_BENCH_RIVAL_H
#define JWCG_BENCH_RIVAL_H

#include <memory>
#include <string>

#include "support/summary.h"

namespace bench {

/// The input of one case: two GeoPackages of one polygon layer each, valid geometries.
struct LayerPair {
    std::string a;
    std::string b;
    std::string workDirectory;  ///< for results
};

/// An intersection of two polygon layers: one result feature per pair that shares an area.
class Rival {
  public:
    virtual ~Rival() = default;
    /// Brings the input where the timed part expects it. Called once, not timed.
    virtual void load(const LayerPair& pair) = 0;
    /// The timed part; keeps its result.
    virtual void run() = 0;
    /// Adds the result's features in their order. Not timed.
    virtual void summarize(Summary& summary) = 0;
    /// Drops the result. Not timed.
    virtual void clear() = 0;
};

}  // namespace bench

#endif  // JWCG_BENCH_RIVAL_H
