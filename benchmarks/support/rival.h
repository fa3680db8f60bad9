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

/// What is done to two polygon layers A and B.
enum class Operation { Intersect, Erase, Union, Identity, SymmetricalDifference };

/// What becomes of the features: one result for each pair that shares an area (pieces), and one for
/// what of a feature lies outside of the other layer (rest).
struct Parts {
    bool pieces;
    bool restOfA;
    bool restOfB;
};

inline Parts partsOf(Operation operation) {
    switch (operation) {
        case Operation::Intersect:
            return {true, false, false};
        case Operation::Erase:
            return {false, true, false};
        case Operation::Union:
            return {true, true, true};
        case Operation::Identity:
            return {true, true, false};
        default:
            return {false, true, true};
    }
}

/// One way to overlay two polygon layers.
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
