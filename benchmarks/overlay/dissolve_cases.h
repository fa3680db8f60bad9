// SPDX-License-Identifier: MIT
//
// The inputs of the dissolve benchmark, and what contenders do with them.
#ifndef JWCG_BENCH_DISSOLVE_CASES_H
#define JWCG_BENCH_DISSOLVE_CASES_H

#include <memory>
#include <string>
#include <vector>

#include "support/summary.h"

namespace bench {

/// Polygons in well-known binary, each with the number of its group.
struct GroupedPolygons {
    std::vector<std::vector<unsigned char>> wkb;
    std::vector<int> group;
    bool scattered = false;  ///< a group may lie in several places
};

/// `name` is "N:G" (a tessellation of N cells in G groups, squares of cells) or "counties"
/// (counties of `dataDirectory` by state, as they are). Throws `std::runtime_error`.
GroupedPolygons makeDissolveCase(const std::string& name, const std::string& dataDirectory);

/// One way to unite the polygons of each group.
class DissolveRival {
  public:
    virtual ~DissolveRival() = default;
    /// Brings the input where the timed part expects it. Called once, not timed.
    virtual void load(const GroupedPolygons& polygons) = 0;
    /// The timed part; keeps its result.
    virtual void run() = 0;
    /// Adds the result, one geometry per group. Not timed.
    virtual void summarize(Summary& summary) = 0;
    /// Drops the result. Not timed.
    virtual void clear() = 0;
};

/// Dissolve of a layer in memory into a layer in memory, attributes included.
std::unique_ptr<DissolveRival> makeOurDissolve(int threads);

enum class GeosUnion {
    Unary,     ///< input repaired first, not timed
    Coverage,  ///< right on clean coverages only
};
/// A union per group, geometries parsed before.
std::unique_ptr<DissolveRival> makeGeosDissolve(GeosUnion form);

}  // namespace bench

#endif  // JWCG_BENCH_DISSOLVE_CASES_H
