// SPDX-License-Identifier: MIT
#include "boolean/line_cut.h"

#include "gpc/clip_engine.h"

namespace jws::detail {
namespace {

/// Lists of points in the engine's form, which only reads them.
std::vector<gpc_vertex_list> borrow(const RingViews& views) {
    std::vector<gpc_vertex_list> lists;
    lists.reserve(views.size());
    for (const RingView& view : views) {
        auto* points = const_cast<JWRawPoint*>(view.points);
        lists.push_back({view.count, reinterpret_cast<gpc_vertex*>(points)});
    }
    return lists;
}

}  // namespace

ClippedContours cutAlongLines(const RingViews& area, const RingViews& lines) {
    std::vector<gpc_vertex_list> rings = borrow(area), chains = borrow(lines);
    const ::gpc_polygon outline = {static_cast<int>(rings.size()), nullptr, rings.data()};
    const ::gpc_polygon cutters = {static_cast<int>(chains.size()), nullptr, chains.data()};
    ::gpc_polygon faces = {};
    const int failure = gpc::cutFaces(outline, cutters, faces);
    return {faces, failure};
}

}  // namespace jws::detail
