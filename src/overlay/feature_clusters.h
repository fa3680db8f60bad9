// SPDX-License-Identifier: MIT
//
// Clusters of features that overlap truly: two features do when what they have in common reaches
// the tolerance, and when their union has fewer outer rings than the two together.
//
// A cluster is what a region becomes that starts from its first feature, the seed, and takes in
// features that it overlaps truly until there are none left; seeds come in the order of the layer.
// A region overlaps truly what one of its features does. So features that overlap truly two by two
// are joined in a forest of positions first, on any number of threads, which makes the clusters for
// all layers but those with features that overlap by less than the tolerance: they may overlap a
// region truly that none of its features does. Such pairs are kept, and regions are tested against
// the partners of their features in the end.
//
// That a union has fewer outer rings holds for every two areas that overlap and whose rings are
// what they seem, so that the union need not be made; it can fail for outer rings that touch or
// cross themselves.
#ifndef JW_OVERLAY_FEATURE_CLUSTERS_H
#define JW_OVERLAY_FEATURE_CLUSTERS_H

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "boolean/ring_clip.h"
#include "overlay/layer_side.h"

namespace jws::detail {

class FeatureClusters {
  public:
    /// Of `count` features, none of which belong together yet.
    FeatureClusters(std::int64_t count, double tolerance);

    /// Puts two features into one cluster if they overlap truly. Any number of threads; the
    /// clusters do not depend on the order of the calls. Throws ClipFailure.
    void compare(const OverlayFeature& a, const OverlayFeature& b);
    /// Lets the clusters grow by what overlaps them truly, and lists them. One thread, when all
    /// pairs have been compared. Returns how many features had to be compared with a region.
    std::int64_t close(LayerSide& side);

    /// The members of the cluster with a seed, in order; none when the feature is no seed.
    Hits membersOf(std::int64_t seed) const;
    /// Why the cluster with a seed could not be compared with all that is around it; null when it
    /// could.
    const char* failureOf(std::int64_t seed) const;

  private:
    using Pair = std::pair<std::size_t, std::size_t>;
    class Region;

    std::size_t root(std::size_t i);
    void join(std::size_t i, std::size_t j);
    bool overlapTruly(const OverlayFeature& a, const OverlayFeature& b,
                      const ClippedContours& common);
    bool ringsHold(const OverlayFeature& feature);
    std::int64_t grow(std::size_t seed, LayerSide& side);
    void addPartners(std::size_t seed, const Hits& features, Region& region);
    void listMembers();

    double m_tolerance;
    std::mutex m_mutex;
    std::vector<std::size_t> m_parents;  ///< never behind the feature itself
    std::vector<Pair> m_doubtful;        ///< pairs that overlap, but not truly
    std::vector<std::size_t> m_first;    ///< of each seed's members in `m_members`
    Hits m_members;
    std::vector<std::atomic<char>> m_ringsHold;
    std::map<std::size_t, std::string> m_failures;  ///< of seeds
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_FEATURE_CLUSTERS_H
