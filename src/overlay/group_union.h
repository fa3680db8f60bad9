// SPDX-License-Identifier: MIT
//
// The union of groups of areas on a team of threads. Small groups are dealt out whole. A large one
// is split into patches of areas that lie close together: their boundaries are summed in parallel
// (area_sum.h), then those of a few neighbouring patches, and so on; as a patch keeps little but
// its outline, what is left in the end is united in no time. How a group is split depends on the
// group alone, so the result does not depend on the team.
#ifndef JW_OVERLAY_GROUP_UNION_H
#define JW_OVERLAY_GROUP_UNION_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "boolean/area_sum.h"
#include "foundation/parallel.h"
#include "foundation/pulse.h"
#include "jw_feature.h"

namespace jws::detail {

/// One feature of a dissolve: a finite area, unless it is of no use.
struct DissolveItem {
    std::shared_ptr<const JWFeature> feature;
    JWEnvelop envelop = JWEnvelop::invalid();
    PlainArea kind;
};

/// The union of a group and what it is made of.
struct GroupUnion {
    std::unique_ptr<JWGeometry> geometry;  ///< polygon or multipolygon, null when nothing is left
    double areaBefore = 0;                 ///< sum of the areas of the group's features
    double overlap = 0;                    ///< of this, what further features cover again
    double dropped = 0;                    ///< area of rings below the tolerance, holes negative
    /// Positions of features that could not be united, and why.
    std::vector<std::pair<int, std::string>> failures;
};

/// Sums the boundaries of large groups patch by patch; `unite` is then called for every group.
class GroupUnions {
  public:
    /// `items` by position; rings of a smaller area than `tolerance` are dropped from groups of two
    /// and more. All references must outlive this object.
    GroupUnions(const std::vector<DissolveItem>& items, double tolerance)
        : m_items(items), m_tolerance(tolerance) {}

    /// Starts over with these groups, each a list of positions [begin, end). Sums the patches of
    /// the large ones in parallel; `beat` is called now and then, on any thread, and may throw.
    template <class Beat>
    void prepare(const Team& team, std::vector<std::pair<const int*, const int*>> groups,
                 Beat&& beat) {
        plan(std::move(groups));
        for (bool more = !m_patches.empty(); more; more = planMerge()) {
            parallelChunks(team, static_cast<std::int64_t>(m_patches.size()), 1,
                           [&](std::int64_t i, std::int64_t) {
                               const Pulse pulse(beat);
                               sumPatch(m_patches[static_cast<std::size_t>(i)]);
                               beat();
                               return true;
                           });
        }
    }

    /// Computes the union of a group; on any number of threads at once.
    GroupUnion unite(std::size_t group) const;

  private:
    struct Sum {
        AreaSum::Edges edges;
        double area = 0;
        std::vector<std::pair<int, std::string>> failures;
    };
    struct Patch {
        std::vector<int> positions;
        std::vector<Sum> parts;  ///< sums of smaller patches that it consists of instead
        Sum sum;
    };
    struct Group {
        const int* begin;
        const int* end;
        std::size_t firstPatch = 0;
        std::size_t endPatch = 0;
    };

    void plan(std::vector<std::pair<const int*, const int*>> groups);
    void split(Group& group);
    /// Makes patches of neighbouring patches; false when each group has few enough.
    bool planMerge();
    void sumPatch(Patch& patch) const;
    static void addSum(const Sum& part, AreaSum& total, Sum& account);
    /// Adds the areas at these positions to `total`.
    void addAreas(const int* begin, const int* end, AreaSum& total, Sum& account) const;
    /// The union of a group's areas by the directed loops around them, and with an engine that
    /// takes two operands at a time; fill in the account.
    ClippedContours uniteDirected(const Group& group, GroupUnion& result) const;
    ClippedContours uniteInPairs(const Group& group, GroupUnion& result) const;

    const std::vector<DissolveItem>& m_items;
    double m_tolerance;
    std::vector<Group> m_groups;
    std::vector<Patch> m_patches;
};

/// The union of the features' areas, in this thread alone, without rings of an area below
/// `tolerance`; null when nothing is left. Null features and those that are no finite areas are
/// skipped. Throws ClipFailure and std::bad_alloc.
std::unique_ptr<JWGeometry> uniteFeatures(const std::vector<JWFeature*>& features,
                                          double tolerance);

}  // namespace jws::detail

#endif  // JW_OVERLAY_GROUP_UNION_H
