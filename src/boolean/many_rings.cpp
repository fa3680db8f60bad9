// SPDX-License-Identifier: MIT
//
// Union and partition of many ring sets by the engine's own entries: all sets in one
// arrangement, where every two boundaries are compared once, however many sets there are.
#include <cstddef>

#include "boolean/ring_clip.h"
#include "gpc/clip_engine.h"

namespace jws::detail {
namespace {

/// Ring sets in the engine's form, without copies of points.
class EngineSets {
  public:
    void add(const RingViews& rings) {
        for (const RingView& ring : rings) {
            auto* points = const_cast<JWRawPoint*>(ring.points);  // the engine only reads operands
            m_contours.push_back({ring.count, reinterpret_cast<gpc_vertex*>(points)});
        }
        m_ends.push_back(m_contours.size());
    }
    /// The sets added so far; good until the next `add`.
    const std::vector<const ::gpc_polygon*>& polygons() {
        m_polygons.clear();
        m_pointers.clear();
        std::size_t from = 0;
        for (const std::size_t end : m_ends) {
            m_polygons.push_back({static_cast<int>(end - from), nullptr, m_contours.data() + from});
            from = end;
        }
        for (const ::gpc_polygon& polygon : m_polygons) m_pointers.push_back(&polygon);
        return m_pointers;
    }

  private:
    std::vector<gpc_vertex_list> m_contours;
    std::vector<std::size_t> m_ends;
    std::vector<::gpc_polygon> m_polygons;
    std::vector<const ::gpc_polygon*> m_pointers;
};

}  // namespace

ClippedContours uniteRings(const std::vector<RingViews>& sets) {
    EngineSets operands;
    for (const RingViews& rings : sets) operands.add(rings);
    const auto& polygons = operands.polygons();
    ::gpc_polygon result = {};
    const int failure = gpc::uniteAll(polygons.data(), polygons.size(), result);
    return {result, failure};
}

static_assert(kMostSets <= gpc::kMostSets);

std::vector<PartOfSets> partitionRings(const RingViews& subject,
                                       const std::vector<RingViews>& sets) {
    EngineSets operands;
    operands.add(subject);
    for (const RingViews& rings : sets) operands.add(rings);
    const auto& polygons = operands.polygons();
    std::vector<gpc::Part> parts;
    const int failure =
        gpc::partition(*polygons.front(), polygons.data() + 1, polygons.size() - 1, parts);
    if (failure != 0) ClippedContours({}, failure);
    std::vector<PartOfSets> result;
    result.reserve(parts.size());
    for (const gpc::Part& part : parts) {
        result.push_back({part.sets, ClippedContours(part.polygon, 0)});
    }
    return result;
}

ClippedContours uniteDirected(const RingViews& loops, double& overlap) {
    EngineSets operands;
    operands.add(loops);
    ::gpc_polygon result = {};
    const int failure = gpc::uniteDirected(*operands.polygons().front(), result, overlap);
    return {result, failure};
}

}  // namespace jws::detail
