// SPDX-License-Identifier: MIT
#include "buffer/geometry_buffer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "boolean/envelope_clusters.h"
#include "boolean/ring_clip.h"
#include "boolean/ring_grouping.h"
#include "buffer/piece_union.h"
#include "foundation/hilbert_order.h"

namespace jws::detail {
namespace {

constexpr const char* kNotFinite = "a coordinate is not finite or too large for the distance";
constexpr const char* kTooSmall = "the distance is too small for the coordinates' precision";
constexpr const char* kShortRing = "a ring has three points or fewer";
constexpr const char* kEmpty = "the geometry has no point";

bool isFiniteAt(const JWRawPoint& p, double distance) {
    return std::isfinite(p.x - distance) && std::isfinite(p.x + distance) &&
           std::isfinite(p.y - distance) && std::isfinite(p.y + distance);
}

Pieces noPieces(const BufferPlan& plan) { return {plan.distance, plan.arcs, {}, {}}; }

/// Appends the shapes along a list of points as one run; a repetition of the last shape is left
/// out.
void addRun(const std::vector<JWRawPoint>& points, Pieces& pieces) {
    for (const JWRawPoint& p : points) {
        if (!isFiniteAt(p, pieces.distance)) throw BadBuffer(kNotFinite);
    }
    const std::size_t first = pieces.list.size();
    if (points.size() == 1) pieces.list.push_back({points[0], points[0]});
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Piece piece = {points[i], points[i + 1]};
        const bool again = pieces.list.size() > first && pieces.list.back().from == piece.from &&
                           pieces.list.back().to == piece.to;
        if (!again) pieces.list.push_back(piece);
    }
    pieces.endRun();
}

/// Whether rounding has left nothing between the sides of a shape. Scaled, since products of small
/// numbers vanish.
bool hasCollapsed(const JWRing& ring) {
    const JWEnvelop e = ring.getEnvelop();
    const double width = e.maxX - e.minX, height = e.maxY - e.minY;
    if (width == 0 || height == 0) return true;
    const JWRawPoint o = ring[0];
    for (int i = 1; i + 2 < ring.getPointCount(); ++i) {
        const JWRawPoint &a = ring[i], &b = ring[i + 1];
        const double left = (a.x - o.x) / width * ((b.y - o.y) / height);
        if (left != (b.x - o.x) / width * ((a.y - o.y) / height)) return false;
    }
    return true;
}

FlaggedRings ringsOf(const Outline& area) {
    FlaggedRings result;
    result.rings.reserve(static_cast<std::size_t>(area.count()));
    for (int i = 0; i < area.count(); ++i) {
        const RingView ring = area.view(i);
        result.add(JWRing(ring.points, ring.count), ring.hole);
    }
    return result;
}

RingViews viewsOf(const FlaggedRings& rings) {
    RingViews views;
    for (std::size_t i = 0; i < rings.rings.size(); ++i) {
        views.push_back(viewOf(rings.rings[i], rings.flags[i]));
    }
    return views;
}

FlaggedRings unitedPieces(const Pieces& pieces, const Team& team) {
    if (pieces.list.empty()) throw BadBuffer(kEmpty);
    FlaggedRings result = ringsOf(unitePieces(pieces, team));
    const bool collapsed = std::any_of(result.rings.begin(), result.rings.end(), hasCollapsed);
    if (result.empty() || collapsed) throw BadBuffer(kTooSmall);
    return result;
}

FlaggedRings minus(const FlaggedRings& rings, const RingViews& subtracted) {
    return ringsOf(outlineOf(clipRings(viewsOf(rings), subtracted, JWBooleanDifference)));
}

/// Whether the first vertex of `ring` lies strictly inside `outline`, whose stored envelope may be
/// stale.
bool startsInside(const JWRing& ring, const JWRing& outline) {
    return outline.isPointInRing(ring[0]);
}

FlaggedRings bandOf(const JWRing& ring, const BufferPlan& plan) {
    if (ring.getPointCount() <= 3) throw BadBuffer(kShortRing);
    Pieces pieces = noPieces(plan);
    addRun(ring.getPointList(), pieces);
    return unitedPieces(pieces, plan.team);
}

/// The outer ring's band without its inner boundary, then what is left of each hole: the band
/// around a hole has it as a hole of its own that starts inside the hole. Another hole of that band
/// is a place that it closes off on the polygon's side.
FlaggedRings faceOf(const JWPolygon& polygon, const BufferPlan& plan) {
    if (polygon.getRingCount() == 0) throw BadBuffer(kEmpty);
    FlaggedRings result;
    for (int r = 0; r < polygon.getRingCount(); ++r) {
        const JWRing& outline = *polygon.getRingPtrAt(r);
        if (r > 0 && outline.getPointCount() <= 3) continue;
        FlaggedRings band = bandOf(outline, plan);
        for (std::size_t i = 0; i < band.rings.size(); ++i) {
            const bool hole = band.flags[i] != 0;
            const bool inside = hole && startsInside(band.rings[i], outline);
            const bool kept = r == 0 ? !inside : inside;
            if (kept) result.add(std::move(band.rings[i]), hole ? 1 : 0);
        }
    }
    return result;
}

/// The parts of a geometry buffered one by one and united.
template <class Part>
FlaggedRings unitedParts(int count, const BufferPlan& plan, Part&& part) {
    std::vector<FlaggedRings> groups(static_cast<std::size_t>(std::max(count, 0)));
    const Team alone(1);
    parallelChunks(teamFor(groups.size(), 2, plan.team), count, 1,
                   [&](std::int64_t i, std::int64_t) {
                       const BufferPlan mine = {plan.distance, plan.arcs, alone};
                       groups[static_cast<std::size_t>(i)] = part(static_cast<int>(i), mine);
                       return true;
                   });
    return uniteGroups(std::move(groups), plan.team);
}

}  // namespace

FlaggedRings bufferPoint(const JWRawPoint& point, const BufferPlan& plan) {
    Pieces pieces = noPieces(plan);
    addRun({point}, pieces);
    return unitedPieces(pieces, plan.team);
}

FlaggedRings bufferLine(const JWLineString& line, const BufferPlan& plan) {
    Pieces pieces = noPieces(plan);
    addRun(line.getPointList(), pieces);
    return unitedPieces(pieces, plan.team);
}

FlaggedRings bufferRing(const JWRing& ring, enumJWBufferType type, const BufferPlan& plan) {
    if (type != JWBufferFace && type != JWBufferEdge) return {};
    FlaggedRings band = bandOf(ring, plan);
    return type == JWBufferEdge ? band : minus(band, {viewOf(ring, 0)});
}

FlaggedRings bufferPolygon(const JWPolygon& polygon, enumJWBufferType type,
                           const BufferPlan& plan) {
    if (type != JWBufferFace && type != JWBufferEdge) return {};
    FlaggedRings face = faceOf(polygon, plan);
    if (type == JWBufferFace) return face;
    RingViews rings;
    appendRings(polygon, rings);
    return minus(face, rings);
}

FlaggedRings bufferPoints(const JWMultiPoint& points, const BufferPlan& plan) {
    const double d = plan.distance;
    std::vector<JWEnvelop> envelops;
    for (int i = 0; i < points.getGeometryCount(); ++i) {
        const JWRawPoint p = points.getPointPtrAt(i)->getRawPoint();
        if (!isFiniteAt(p, d)) throw BadBuffer(kNotFinite);
        envelops.emplace_back(p.x - d, p.y - d, p.x + d, p.y + d);
    }
    Pieces pieces = noPieces(plan);
    const PositionLists clusters = clusterByContact(envelops);
    std::vector<int> cluster;
    for (std::size_t i = 0; i < clusters.count(); ++i) {
        cluster.assign(clusters.begin(i), clusters.end(i));
        sortAlongHilbertCurve(envelops, cluster);
        for (const int position : cluster) {
            const JWRawPoint p = points.getPointPtrAt(position)->getRawPoint();
            pieces.list.push_back({p, p});
        }
        pieces.endRun();
    }
    return unitedPieces(pieces, plan.team);
}

FlaggedRings bufferLines(const JWMultiLineString& lines, const BufferPlan& plan) {
    Pieces pieces = noPieces(plan);
    for (int i = 0; i < lines.getGeometryCount(); ++i) {
        addRun(lines.getLineStringPtrAt(i)->getPointList(), pieces);
    }
    return unitedPieces(pieces, plan.team);
}

FlaggedRings bufferPolygons(const JWMultiPolygon& polygons, enumJWBufferType type,
                            const BufferPlan& plan) {
    return unitedParts(polygons.getPolygonCount(), plan, [&](int i, const BufferPlan& mine) {
        const JWPolygon& polygon = *polygons.getPolygonPtrAt(i);
        const bool usable =
            polygon.getRingCount() > 0 && polygon.getRingPtrAt(0)->getPointCount() > 3;
        return usable ? bufferPolygon(polygon, type, mine) : FlaggedRings();
    });
}

FlaggedRings bufferGeometry(const JWGeometry& geometry, enumJWBufferType type,
                            const BufferPlan& plan) {
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint:
            return bufferPoint(static_cast<const JWPoint&>(geometry).getRawPoint(), plan);
        case JWGeometryLineString:
            return bufferLine(static_cast<const JWLineString&>(geometry), plan);
        case JWGeometryPolygon:
            return bufferPolygon(static_cast<const JWPolygon&>(geometry), type, plan);
        case JWGeometryMultiPoint:
            return bufferPoints(static_cast<const JWMultiPoint&>(geometry), plan);
        case JWGeometryMultiLineString:
            return bufferLines(static_cast<const JWMultiLineString&>(geometry), plan);
        case JWGeometryMultiPolygon:
            return bufferPolygons(static_cast<const JWMultiPolygon&>(geometry), type, plan);
        default:
            return {};
    }
}

FlaggedRings uniteGroups(std::vector<FlaggedRings> groups, const Team& team) {
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [](const FlaggedRings& group) { return group.empty(); }),
                 groups.end());
    if (groups.empty()) return {};
    if (groups.size() == 1) return std::move(groups.front());
    std::vector<RingViews> sets;
    for (const FlaggedRings& group : groups) {
        for (const JWRing& ring : group.rings) {
            for (const JWRawPoint& p : ring.getPointList()) {
                if (!isFiniteAt(p, 0)) throw BadBuffer(kNotFinite);
            }
        }
        sets.push_back(viewsOf(group));
    }
    return ringsOf(uniteRingSets(sets, team));
}

JWMultiPolygon polygonizeAll(FlaggedRings rings) {
    std::vector<JWRing> outers, holes;
    for (std::size_t i = 0; i < rings.rings.size(); ++i) {
        rings.rings[i].updateEnvelop();
        if (rings.rings[i].isEmpty()) continue;
        (rings.flags[i] == 0 ? outers : holes).push_back(std::move(rings.rings[i]));
    }
    return groupFirstFit(outers, holes, HoleCorners::First);
}

std::unique_ptr<JWGeometry> polygonize(FlaggedRings rings) {
    if (rings.empty()) return nullptr;
    std::unique_ptr<JWGeometry> result;
    if (rings.rings.size() == 1) {
        result = std::make_unique<JWPolygon>(std::move(rings.rings.front()));
    } else {
        result = std::make_unique<JWMultiPolygon>(polygonizeAll(std::move(rings)));
    }
    result->updateEnvelop();
    return result;
}

}  // namespace jws::detail
