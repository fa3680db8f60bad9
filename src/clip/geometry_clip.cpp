// SPDX-License-Identifier: MIT
#include "clip/geometry_clip.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>

#include "boolean/area_union.h"
#include "clip/area_cut.h"
#include "foundation/vertex_lists.h"
#include "jw_cpgeometrybasic.h"
#include "overlay/geometry_overlay.h"

namespace jws::detail {
namespace {

constexpr std::int64_t kPointsAtATime = 1024;

constexpr const char* kWeird = "a line or ring crosses or touches itself";

bool isWeird(const JWGeometry& geometry) {
    switch (geometry.getGeometryType()) {
        case JWGeometryLineString:
            return JWCPGeometryBasic::isLineStringWeird(
                static_cast<const JWLineString*>(&geometry));
        case JWGeometryRing:
            return JWCPGeometryBasic::isRingWeird(static_cast<const JWRing*>(&geometry));
        case JWGeometryPolygon: {
            const std::vector<JWRing>& rings =
                static_cast<const JWPolygon&>(geometry).getRingList();
            return std::any_of(rings.begin(), rings.end(),
                               [](const JWRing& ring) { return isWeird(ring); });
        }
        case JWGeometryMultiLineString:
        case JWGeometryMultiPolygon: {
            const auto& members = static_cast<const JWGeometryCollection&>(geometry);
            for (int i = 0; i < members.getGeometryCount(); ++i) {
                if (isWeird(*members.getGeometryPtrAt(i))) return true;
            }
            return false;
        }
        default:
            return false;
    }
}

void cutLine(const JWLineString& line, const Cutter& cutter, const Team& team,
             MarkedPieces<JWLineString>& pieces) {
    cutter.split(line, AreaCut::EveryMeeting, team,
                 [&](std::vector<JWRawPoint>& points, bool inside) {
                     auto piece = std::make_unique<JWLineString>(std::move(points));
                     piece->updateEnvelop();
                     pieces.push_back({std::move(piece), inside ? 1u : 0u});
                 });
}

bool isLine(enumJWGeometryType type) {
    return type == JWGeometryLineString || type == JWGeometryMultiLineString;
}
bool isPolygonal(enumJWGeometryType type) {
    return type == JWGeometryPolygon || type == JWGeometryMultiPolygon;
}

template <class Geometry>
void moveInto(MarkedPieces<JWGeometry>& all, MarkedPieces<Geometry>&& pieces) {
    for (MarkedPiece<Geometry>& piece : pieces)
        all.push_back({std::move(piece.geometry), piece.inside});
}

}  // namespace

RingViews closedRings(const JWGeometry& area) {
    RingViews rings;
    everyVertexList(area, [&](const JWRawPoint* points, std::size_t n) {
        if (n < 4) return true;
        const auto count = static_cast<int>(points[0] == points[n - 1] ? n - 1 : n);
        rings.push_back({points, count, 0});
        return true;
    });
    return rings;
}

void checkOperand(const JWGeometry& geometry, bool forWeird) {
    if (geometry.isEmpty()) throw ClipRefused("a geometry is empty");
    if (!isFinite(geometry)) throw ClipRefused("a coordinate is not finite");
    if (forWeird && isWeird(geometry)) throw ClipRefused(kWeird);
}

void PreparedCutter::check(bool forWeird) {
    std::call_once(m_checked, [this] { checkOperand(m_geometry, false); });
    if (!forWeird) return;
    std::call_once(m_judged, [this] { m_isWeird = isWeird(m_geometry); });
    if (m_isWeird) throw ClipRefused(kWeird);
}

const Cutter& PreparedCutter::edges() {
    std::call_once(m_read,
                   [this] { m_edges = std::make_unique<const Cutter>(m_geometry, m_search); });
    if (m_edges->isEmpty()) throw ClipRefused("the cutter has no edge");
    return *m_edges;
}

const LineIndex& PreparedCutter::lines() {
    edges();
    std::call_once(m_indexed, [this] { m_lines = std::make_unique<const LineIndex>(m_geometry); });
    return *m_lines;
}

ClippedContours PreparedCutter::commonWith(const Area& area) {
    std::call_once(m_gathered, [this] {
        auto mine = std::make_unique<Area>(closedRings(m_geometry));
        if (m_forMany) mine->prepare();
        m_area = std::move(mine);
    });
    if (m_area->chains()) return intersectAreas(area, *m_area);
    if (!area.overlaps(*m_area)) return {};
    return clipRings(area.rings(), m_area->rings(), JWBooleanIntersection);
}

JWEnvelop boxAround(const JWGeometry& geometry) {
    JWEnvelop box = JWEnvelop::invalid();
    everyVertexList(geometry, [&](const JWRawPoint* points, std::size_t n) {
        box.inflates_to_contain(boxOf(points, static_cast<int>(n)));
        return true;
    });
    return box;
}

MarkedPieces<JWLineString> cutLines(const JWGeometry& lines, const Cutter& cutter,
                                    const Team& team) {
    MarkedPieces<JWLineString> all;
    if (lines.getGeometryType() == JWGeometryLineString) {
        cutLine(static_cast<const JWLineString&>(lines), cutter, team, all);
        return all;
    }
    const auto& members = static_cast<const JWMultiLineString&>(lines).getMemberList();
    const Team alone(1);
    const auto count = static_cast<std::int64_t>(members.size());
    const bool isFew = count < 4 * team.size();  // each is then cut by the whole team
    const std::int64_t chunk = std::clamp<std::int64_t>(count / (8 * team.size()), 1, 64);
    std::vector<MarkedPieces<JWLineString>> ofChunks(
        static_cast<std::size_t>((count + chunk - 1) / chunk));
    parallelChunks(isFew ? alone : team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
        MarkedPieces<JWLineString>& pieces = ofChunks[static_cast<std::size_t>(begin / chunk)];
        for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i)
            cutLine(members[i], cutter, isFew ? team : alone, pieces);
        return true;
    });
    std::size_t total = 0;
    for (const MarkedPieces<JWLineString>& pieces : ofChunks) total += pieces.size();
    all.reserve(total);
    for (MarkedPieces<JWLineString>& pieces : ofChunks)
        std::move(pieces.begin(), pieces.end(), std::back_inserter(all));
    return all;
}

MarkedPieces<JWMultiPoint> cutPoints(const JWMultiPoint& points, const Cutter& cutter,
                                     const Team& team) {
    const std::vector<JWPoint>& list = points.getPointList();
    std::vector<char> isInside(list.size());
    parallelChunks(team, static_cast<std::int64_t>(list.size()), kPointsAtATime,
                   [&](std::int64_t begin, std::int64_t end) {
                       for (auto i = static_cast<std::size_t>(begin);
                            i < static_cast<std::size_t>(end); ++i)
                           isInside[i] = cutter.holds(list[i].getRawPoint());
                       return true;
                   });
    auto inside = std::make_unique<JWMultiPoint>(), outside = std::make_unique<JWMultiPoint>();
    for (std::size_t i = 0; i < list.size(); ++i)
        (isInside[i] != 0 ? inside : outside)->addPoint(list[i]);
    MarkedPieces<JWMultiPoint> pieces;
    for (auto* part : {&inside, &outside}) {
        if ((*part)->isEmpty()) continue;
        (*part)->updateEnvelop();
        pieces.push_back({std::move(*part), part == &inside ? 1u : 0u});
    }
    return pieces;
}

std::vector<Face> cutArea(const JWGeometry& area, const LineIndex& lines, const Team& team) {
    std::vector<Face> faces;
    const auto cutRing = [&](const JWRing& ring) {
        JWPolygon polygon;
        polygon.addRing(ring);
        return cutPolygon(polygon, lines);
    };
    switch (area.getGeometryType()) {
        case JWGeometryRing:
            faces = cutRing(static_cast<const JWRing&>(area));
            break;
        case JWGeometryPolygon:
            faces = cutPolygon(static_cast<const JWPolygon&>(area), lines);
            break;
        default: {
            const auto& members = static_cast<const JWMultiPolygon&>(area).getMemberList();
            std::vector<std::vector<Face>> ofMembers(members.size());
            parallelChunks(team, static_cast<std::int64_t>(members.size()), 1,
                           [&](std::int64_t i, std::int64_t) {
                               const auto k = static_cast<std::size_t>(i);
                               ofMembers[k] = cutPolygon(members[k], lines);
                               return true;
                           });
            for (std::vector<Face>& some : ofMembers)
                for (Face& face : some) faces.push_back(std::move(face));
        }
    }
    // A face within a hole of another one is smaller than it. An area beyond the number range may
    // be no number.
    std::vector<std::pair<double, std::size_t>> order;
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const double size = std::fabs(faces[i].front().getArea());
        order.emplace_back(std::isnan(size) ? HUGE_VAL : size, i);
    }
    std::sort(order.begin(), order.end());
    std::vector<Face> sorted;
    for (const auto& place : order) sorted.push_back(std::move(faces[place.second]));
    return sorted;
}

MarkedPieces<JWGeometry> clipGeometry(const JWGeometry& target, PreparedCutter& cutter,
                                      bool checkWeird, const Team& team) {
    const enumJWGeometryType type = target.getGeometryType();
    const enumJWGeometryType cutterType = cutter.geometry().getGeometryType();
    const bool byArea = isPolygonal(cutterType);
    if (!byArea && !isLine(cutterType)) throw ClipRefused("the cutter is neither line nor area");
    if (!isLine(type) && !isPolygonal(type) && !(type == JWGeometryMultiPoint && byArea))
        throw ClipRefused("geometries of these kinds do not clip each other");
    const bool areas = isPolygonal(type) && byArea;
    checkOperand(target, checkWeird && !areas);
    cutter.check(checkWeird && !areas);
    MarkedPieces<JWGeometry> pieces;
    if (isLine(type)) {
        moveInto(pieces, cutLines(target, cutter.edges(), team));
    } else if (type == JWGeometryMultiPoint) {
        moveInto(pieces, cutPoints(static_cast<const JWMultiPoint&>(target), cutter.edges(), team));
    } else if (areas) {
        BuiltArea common = buildArea(cutter.commonWith(Area(closedRings(target))), 0);
        if (common.geometry) pieces.push_back({std::move(common.geometry), 1});
    } else {
        for (Face& face : cutArea(target, cutter.lines(), team)) {
            auto polygon = std::make_unique<JWPolygon>();
            polygon->addRings(std::move(face));
            polygon->updateEnvelop();
            pieces.push_back({std::move(polygon), 1});
        }
    }
    if (pieces.empty()) throw EmptyClip();
    return pieces;
}

}  // namespace jws::detail
