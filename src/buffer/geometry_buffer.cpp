// SPDX-License-Identifier: MIT
#include "buffer/geometry_buffer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "boolean/ring_clip.h"
#include "boolean/ring_grouping.h"
#include "buffer/piece_union.h"
#include "buffer/ring_growth.h"
#include "foundation/hilbert_order.h"
#include "trees/envelope_clusters.h"

namespace jws::detail {
namespace {

constexpr const char* kNotFinite = "a coordinate is not finite or too large for the distance";
constexpr const char* kTooSmall = "the distance is too small for the coordinates' precision";
constexpr const char* kShortRing = "a ring has three points or fewer";
constexpr std::size_t kWorthSharing = 1000;  // points

constexpr const char* kEmpty = "the geometry has no point";

bool isFiniteAt(const JWRawPoint& p, double distance) {
    return std::isfinite(p.x - distance) && std::isfinite(p.x + distance) &&
           std::isfinite(p.y - distance) && std::isfinite(p.y + distance);
}

Shapes noPieces(const BufferPlan& plan) { return {plan.distance, plan.arcs, {}, {}}; }

/// Appends the shapes along a list of points as one run; a repetition of the last shape is left
/// out.
void addRun(const std::vector<JWRawPoint>& points, Shapes& pieces) {
    for (const JWRawPoint& p : points) {
        if (!isFiniteAt(p, pieces.distance)) throw BadBuffer(kNotFinite);
    }
    const std::size_t first = pieces.list.size();
    if (points.size() == 1) pieces.list.push_back({points[0], points[0]});
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Shape piece = {points[i], points[i + 1]};
        const bool again = pieces.list.size() > first && pieces.list.back().from == piece.from &&
                           pieces.list.back().to == piece.to;
        if (!again) pieces.list.push_back(piece);
    }
    pieces.endRun();
}

/// Whether rounding has left nothing between the sides of a shape. Scaled, since products of small
/// numbers vanish.
bool hasCollapsed(const RingView& ring) {
    JWEnvelop e = JWEnvelop::invalid();
    for (int i = 0; i < ring.count; ++i) e.inflates_to_contain(ring.points[i]);
    const double width = e.maxX - e.minX, height = e.maxY - e.minY;
    if (width == 0 || height == 0) return true;
    const JWRawPoint o = ring.points[0];
    for (int i = 1; i + 1 < ring.count; ++i) {
        const JWRawPoint &a = ring.points[i], &b = ring.points[i + 1];
        const double left = (a.x - o.x) / width * ((b.y - o.y) / height);
        if (left != (b.x - o.x) / width * ((a.y - o.y) / height)) return false;
    }
    return true;
}

FlaggedRings flagged(const Outline& area) {
    FlaggedRings result;
    result.isArea = true;
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

/// Throws for an area without any.
void refuseCollapsed(const Outline& area) {
    bool collapsed = area.count() == 0;
    for (int i = 0; i < area.count() && !collapsed; ++i) collapsed = hasCollapsed(area.view(i));
    if (collapsed) throw BadBuffer(kTooSmall);
}

Outline unitedPieces(const Shapes& pieces, const Team& team) {
    if (pieces.list.empty()) throw BadBuffer(kEmpty);
    if (isTooSmall(pieces.distance, largestCoordinate(pieces))) throw BadBuffer(kTooSmall);
    Outline result = unitePieces(pieces, team);
    refuseCollapsed(result);
    return result;
}

RingViews ringsOf(const JWPolygon& polygon) {
    RingViews rings;
    appendRings(polygon, rings);
    return rings;
}

Outline minus(const Outline& area, const RingViews& subtracted) {
    return outlineOf(clipRings(viewsOf(area), subtracted, JWBooleanDifference));
}

bool isOpen(const JWRing& ring) {
    const std::vector<JWRawPoint>& points = ring.getPointList();
    return points.size() > 3 && points.front() != points.back();
}

Shapes piecesOf(const JWRing& ring, const BufferPlan& plan) {
    if (ring.getPointCount() <= 3) throw BadBuffer(kShortRing);
    Shapes pieces = noPieces(plan);
    addRun(ring.getPointList(), pieces);
    return pieces;
}

/// Appends the rings of a band that count for a face: of the outer ring all but the holes that
/// start inside it; of a hole those that do. Another hole of a hole's band is a place that it
/// closes off on the polygon's side.
void addBandRings(const JWRing& ring, RingSide side, const Outline& band, Outline& face) {
    for (int i = 0; i < band.count(); ++i) {
        const RingView made = band.view(i);
        // The ring's stored envelope may be stale.
        const bool inside = made.hole != 0 && ring.isPointInRing(made.points[0]);
        if (inside == (side == RingSide::Inner)) addRing(made, false, made.hole, face);
    }
}

Outline faceOf(const JWPolygon& polygon, const BufferPlan& plan) {
    if (polygon.getRingCount() == 0) throw BadBuffer(kEmpty);
    Outline face;
    for (int r = 0; r < polygon.getRingCount(); ++r) {
        const JWRing& ring = *polygon.getRingPtrAt(r);
        if (r > 0 && ring.getPointCount() <= 3) continue;
        const RingSide side = r == 0 ? RingSide::Outer : RingSide::Inner;
        const Shapes pieces = piecesOf(ring, plan);
        if (growRing(pieces, side, face)) continue;
        addBandRings(ring, side, unitedPieces(pieces, plan.team), face);
    }
    return face;
}

Outline areaOf(const JWPolygon& polygon, enumJWBufferType type, const BufferPlan& plan) {
    const std::vector<JWRing>& rings = polygon.getRingList();
    if (std::any_of(rings.begin(), rings.end(), isOpen)) {
        JWPolygon closed = polygon;
        for (int r = 0; r < closed.getRingCount(); ++r) {
            if (isOpen(rings[static_cast<std::size_t>(r)])) closed.getRingPtrAt(r)->closeRing();
        }
        return areaOf(closed, type, plan);
    }
    Outline face = faceOf(polygon, plan);
    return type == JWBufferFace ? face : minus(face, ringsOf(polygon));
}

std::size_t pointsOf(const JWMultiPolygon& polygons) {
    RingViews rings;
    appendRings(polygons, rings);
    std::size_t points = 0;
    for (const RingView& ring : rings) points += static_cast<std::size_t>(ring.count);
    return points;
}

/// Whether rings that `areaOf` made cannot lie across one another. The faces of a polygon whose
/// holes do not lie in its outer ring can.
bool isClean(const JWPolygon& polygon, enumJWBufferType type) {
    return type == JWBufferEdge || polygon.getRingCount() == 1;
}

}  // namespace

FlaggedRings bufferPoint(const JWRawPoint& point, const BufferPlan& plan) {
    Shapes pieces = noPieces(plan);
    addRun({point}, pieces);
    return flagged(unitedPieces(pieces, plan.team));
}

FlaggedRings bufferLine(const JWLineString& line, const BufferPlan& plan) {
    Shapes pieces = noPieces(plan);
    addRun(line.getPointList(), pieces);
    return flagged(unitedPieces(pieces, plan.team));
}

FlaggedRings bufferRing(const JWRing& ring, enumJWBufferType type, const BufferPlan& plan) {
    if (type != JWBufferFace && type != JWBufferEdge) return {};
    if (isOpen(ring)) {
        JWRing closed = ring;
        closed.closeRing();
        return bufferRing(closed, type, plan);
    }
    Outline band = unitedPieces(piecesOf(ring, plan), plan.team);
    return flagged(type == JWBufferEdge ? band : minus(band, {viewOf(ring, 0)}));
}

FlaggedRings bufferPolygon(const JWPolygon& polygon, enumJWBufferType type,
                           const BufferPlan& plan) {
    if (type != JWBufferFace && type != JWBufferEdge) return {};
    FlaggedRings result = flagged(areaOf(polygon, type, plan));
    result.isArea = isClean(polygon, type);
    return result;
}

FlaggedRings bufferPoints(const JWMultiPoint& points, const BufferPlan& plan) {
    const double d = plan.distance;
    std::vector<JWEnvelop> envelops;
    for (int i = 0; i < points.getGeometryCount(); ++i) {
        const JWRawPoint p = points.getPointPtrAt(i)->getRawPoint();
        if (!isFiniteAt(p, d)) throw BadBuffer(kNotFinite);
        envelops.emplace_back(p.x - d, p.y - d, p.x + d, p.y + d);
    }
    Shapes pieces = noPieces(plan);
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
    return flagged(unitedPieces(pieces, plan.team));
}

FlaggedRings bufferLines(const JWMultiLineString& lines, const BufferPlan& plan) {
    Shapes pieces = noPieces(plan);
    for (int i = 0; i < lines.getGeometryCount(); ++i) {
        addRun(lines.getLineStringPtrAt(i)->getPointList(), pieces);
    }
    return flagged(unitedPieces(pieces, plan.team));
}

FlaggedRings bufferPolygons(const JWMultiPolygon& polygons, enumJWBufferType type,
                            const BufferPlan& plan) {
    if (type != JWBufferFace && type != JWBufferEdge) return {};
    std::vector<Outline> areas(static_cast<std::size_t>(polygons.getPolygonCount()));
    const Team alone(1);
    const BufferPlan mine = {plan.distance, plan.arcs, alone};
    parallelChunks(teamFor(pointsOf(polygons), kWorthSharing, plan.team),
                   static_cast<std::int64_t>(areas.size()), 1, [&](std::int64_t i, std::int64_t) {
                       const JWPolygon& polygon = *polygons.getPolygonPtrAt(static_cast<int>(i));
                       if (polygon.getRingCount() == 0) return true;
                       if (polygon.getRingPtrAt(0)->getPointCount() <= 3) return true;
                       Outline area = areaOf(polygon, type, mine);
                       areas[static_cast<std::size_t>(i)] =
                           isClean(polygon, type) ? std::move(area) : resolved(viewsOf(area));
                       return true;
                   });
    return flagged(uniteOutlines(std::move(areas), plan.team));
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
    std::vector<SetToUnite> sets;
    for (const FlaggedRings& group : groups) {
        for (const JWRing& ring : group.rings) {
            for (const JWRawPoint& p : ring.getPointList()) {
                if (!isFiniteAt(p, 0)) throw BadBuffer(kNotFinite);
            }
        }
        sets.push_back({viewsOf(group), group.isArea});
    }
    return flagged(uniteRingSets(sets, team));
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
