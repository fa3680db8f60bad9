// SPDX-License-Identifier: MIT
//
// The public buffer functions: one function per kind with the number of threads, and forwards.
#include "jw_geometrybuffer.h"

#include "buffer/ring_lists.h"

namespace jws {

using namespace detail;

namespace {

using Rings = std::vector<JWRing*>;
using Flags = std::vector<int>;

constexpr int kAlone = 1;

int bufferToGeometry(const JWGeometry* geometry, double distance, JWGeometry** result,
                     enumJWBufferType type, int threads) {
    constexpr const char* name = "geometryBuffer";
    if (!result) return refused(name, "the result is null");
    *result = nullptr;
    if (!geometry) return refused(name, "the geometry is null");
    if (!isDistance(name, distance)) return 0;
    return deliver(
        name,
        [&] {
            const Team team(threads);
            return bufferGeometry(*geometry, type, {distance, kPlainArcs, team});
        },
        [&](FlaggedRings&& rings) { *result = polygonize(std::move(rings)).release(); });
}

int lineRings(const JWLineString* line, double distance, Rings& rings, Flags& flags, int threads) {
    return fillLists("lineStringBuffer", line, distance, kPlainArcs, threads, rings, flags,
                     bufferLine);
}

int ringRings(const JWRing* ring, double distance, enumJWBufferType type, Rings& rings,
              Flags& flags, int threads) {
    return fillLists("ringBuffer", ring, distance, kPlainArcs, threads, rings, flags,
                     [type](const JWRing& input, const BufferPlan& plan) {
                         return bufferRing(input, type, plan);
                     });
}

int polygonRings(const JWPolygon* polygon, double distance, enumJWBufferType type, Rings& rings,
                 Flags& flags, int threads) {
    return fillLists("polygonBuffer", polygon, distance, kPlainArcs, threads, rings, flags,
                     [type](const JWPolygon& input, const BufferPlan& plan) {
                         return bufferPolygon(input, type, plan);
                     });
}

int pointsRings(const JWMultiPoint* points, double distance, Rings& rings, Flags& flags,
                int threads) {
    return fillLists("multiPointBuffer", points, distance, kPlainArcs, threads, rings, flags,
                     bufferPoints);
}

int linesRings(const JWMultiLineString* lines, double distance, Rings& rings, Flags& flags,
               int threads) {
    return fillLists("multiLineStringBuffer", lines, distance, kPlainArcs, threads, rings, flags,
                     bufferLines);
}

int polygonsRings(const JWMultiPolygon* polygons, double distance, enumJWBufferType type,
                  Rings& rings, Flags& flags, int threads) {
    return fillLists("multiPolygonBuffer", polygons, distance, kPlainArcs, threads, rings, flags,
                     [type](const JWMultiPolygon& input, const BufferPlan& plan) {
                         return bufferPolygons(input, type, plan);
                     });
}

/// Ring sets taken over from a caller; deletes the rings.
class TakenGroups {
  public:
    explicit TakenGroups(std::vector<Rings>& groups) { m_groups.swap(groups); }
    TakenGroups(const TakenGroups&) = delete;
    TakenGroups& operator=(const TakenGroups&) = delete;
    ~TakenGroups() {
        for (const Rings& group : m_groups) {
            for (const JWRing* ring : group) delete ring;
        }
    }

    std::size_t count() const { return m_groups.size(); }
    /// Hands on what a group's rings hold, closed; those that are null or without points are left
    /// out.
    FlaggedRings group(std::size_t i, const Flags& flags) const {
        FlaggedRings taken;
        for (std::size_t k = 0; k < m_groups[i].size(); ++k) {
            JWRing* ring = m_groups[i][k];
            if (ring == nullptr || ring->isEmpty()) continue;
            ring->closeRing();
            taken.add(std::move(*ring), k < flags.size() ? flags[k] : 0);
        }
        return taken;
    }

  private:
    std::vector<Rings> m_groups;
};

int unite(std::vector<Rings>* groups, std::vector<Flags>* groupFlags, Rings& rings, Flags& flags,
          int threads) {
    constexpr const char* name = "reduceUnionRing";
    if (!groups || !groupFlags) return refused(name, "a list of groups is null");
    const TakenGroups given(*groups);
    std::vector<Flags> givenFlags;
    givenFlags.swap(*groupFlags);
    rings.clear();
    flags.clear();
    return deliver(
        name,
        [&] {
            givenFlags.resize(given.count());
            std::vector<FlaggedRings> sets;
            for (std::size_t i = 0; i < given.count(); ++i) {
                sets.push_back(given.group(i, givenFlags[i]));
            }
            const Team team(threads);
            return uniteGroups(std::move(sets), team);
        },
        [&](FlaggedRings&& made) { handOver(std::move(made), rings, flags); });
}

}  // namespace

int JWGeometryBuffer::geometryBuffer(const JWGeometry* geometry, double distance,
                                     JWGeometry** result, enumJWBufferType type) {
    return bufferToGeometry(geometry, distance, result, type, kAlone);
}

int JWGeometryBuffer::geometryBuffer_mp(const JWGeometry* geometry, double distance,
                                        JWGeometry** result, enumJWBufferType type) {
    return bufferToGeometry(geometry, distance, result, type, fixedTeamSize);
}

int JWGeometryBuffer::pointBuffer(const JWPoint* point, double distance, Rings& rings,
                                  Flags& flags) {
    return fillLists("pointBuffer", point, distance, kPlainArcs, kAlone, rings, flags,
                     [](const JWPoint& input, const BufferPlan& plan) {
                         return bufferPoint(input.getRawPoint(), plan);
                     });
}

int JWGeometryBuffer::lineStringBuffer1(const JWLineString* line, double distance, Rings& rings,
                                        Flags& flags) {
    return lineRings(line, distance, rings, flags, kAlone);
}

int JWGeometryBuffer::ringBuffer(const JWRing* ring, double distance, enumJWBufferType type,
                                 Rings& rings, Flags& flags) {
    return ringRings(ring, distance, type, rings, flags, kAlone);
}

int JWGeometryBuffer::polygonBufferFace1(const JWPolygon* polygon, double distance, Rings& rings,
                                         Flags& flags) {
    return polygonRings(polygon, distance, JWBufferFace, rings, flags, kAlone);
}

int JWGeometryBuffer::polygonBuffer1(const JWPolygon* polygon, double distance, Rings& rings,
                                     Flags& flags) {
    return polygonRings(polygon, distance, JWBufferEdge, rings, flags, kAlone);
}

int JWGeometryBuffer::multiPointBuffer2(const JWMultiPoint* points, double distance, Rings& rings,
                                        Flags& flags) {
    return pointsRings(points, distance, rings, flags, kAlone);
}

int JWGeometryBuffer::multiLineStringBuffer1(const JWMultiLineString* lines, double distance,
                                             Rings& rings, Flags& flags) {
    return linesRings(lines, distance, rings, flags, kAlone);
}

int JWGeometryBuffer::multiPolygonBufferFace1(const JWMultiPolygon* polygons, double distance,
                                              Rings& rings, Flags& flags) {
    return polygonsRings(polygons, distance, JWBufferFace, rings, flags, kAlone);
}

int JWGeometryBuffer::multiPolygonBuffer1(const JWMultiPolygon* polygons, double distance,
                                          Rings& rings, Flags& flags) {
    return polygonsRings(polygons, distance, JWBufferEdge, rings, flags, kAlone);
}

int JWGeometryBuffer::reduceUnionRing(std::vector<Rings>* groups, std::vector<Flags>* groupFlags,
                                      Rings& rings, Flags& flags) {
    return unite(groups, groupFlags, rings, flags, kAlone);
}

int JWGeometryBuffer::polygonizeRing(Rings& rings, Flags& flags, JWGeometry** result) {
    constexpr const char* name = "polygonizeRing";
    if (!result) return refused(name, "the result is null");
    *result = nullptr;
    Flags givenFlags;
    givenFlags.swap(flags);
    return deliver(
        name,
        [&] {
            std::vector<Rings> groups(1);
            groups.front().swap(rings);
            return TakenGroups(groups).group(0, givenFlags);
        },
        [&](FlaggedRings&& taken) { *result = polygonize(std::move(taken)).release(); });
}

// Compatibility names.

int JWGeometryBuffer::lineStringBuffer(const JWLineString* line, double distance, Rings& rings,
                                       Flags& flags) {
    return lineStringBuffer1(line, distance, rings, flags);
}

int JWGeometryBuffer::lineStringBuffer_mp(const JWLineString* line, double distance, Rings& rings,
                                          Flags& flags) {
    return lineRings(line, distance, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::lineStringBuffer_mp1(const JWLineString* line, double distance, Rings& rings,
                                           Flags& flags) {
    return lineRings(line, distance, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::ringBuffer_mp(const JWRing* ring, double distance, enumJWBufferType type,
                                    Rings& rings, Flags& flags) {
    return ringRings(ring, distance, type, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::polygonBuffer(const JWPolygon* polygon, double distance, Rings& rings,
                                    Flags& flags) {
    return polygonBuffer1(polygon, distance, rings, flags);
}

int JWGeometryBuffer::polygonBuffer_mp(const JWPolygon* polygon, double distance, Rings& rings,
                                       Flags& flags) {
    return polygonRings(polygon, distance, JWBufferEdge, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::polygonBuffer_mp1(const JWPolygon* polygon, double distance, Rings& rings,
                                        Flags& flags) {
    return polygonRings(polygon, distance, JWBufferEdge, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::polygonBufferFace(const JWPolygon* polygon, double distance, Rings& rings,
                                        Flags& flags) {
    return polygonBufferFace1(polygon, distance, rings, flags);
}

int JWGeometryBuffer::polygonBufferFace_mp1(const JWPolygon* polygon, double distance, Rings& rings,
                                            Flags& flags) {
    return polygonRings(polygon, distance, JWBufferFace, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::multiPointBuffer(const JWMultiPoint* points, double distance, Rings& rings,
                                       Flags& flags) {
    return multiPointBuffer2(points, distance, rings, flags);
}

int JWGeometryBuffer::multiPointBuffer1(const JWMultiPoint* points, double distance, Rings& rings,
                                        Flags& flags) {
    return multiPointBuffer2(points, distance, rings, flags);
}

int JWGeometryBuffer::multiPointBuffer_mp(const JWMultiPoint* points, double distance, Rings& rings,
                                          Flags& flags) {
    return pointsRings(points, distance, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::multiPointBuffer_mp1(const JWMultiPoint* points, double distance,
                                           Rings& rings, Flags& flags) {
    return pointsRings(points, distance, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::multiLineStringBuffer(const JWMultiLineString* lines, double distance,
                                            Rings& rings, Flags& flags) {
    return multiLineStringBuffer1(lines, distance, rings, flags);
}

int JWGeometryBuffer::multiLineStringBuffer2(const JWMultiLineString* lines, double distance,
                                             Rings& rings, Flags& flags) {
    return multiLineStringBuffer1(lines, distance, rings, flags);
}

int JWGeometryBuffer::multiLineStringBuffer_mp(const JWMultiLineString* lines, double distance,
                                               Rings& rings, Flags& flags) {
    return linesRings(lines, distance, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::multiLineStringBuffer_mp1(const JWMultiLineString* lines, double distance,
                                                Rings& rings, Flags& flags) {
    return linesRings(lines, distance, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::multiPolygonBuffer(const JWMultiPolygon* polygons, double distance,
                                         Rings& rings, Flags& flags) {
    return multiPolygonBuffer1(polygons, distance, rings, flags);
}

int JWGeometryBuffer::multiPolygonBuffer_mp(const JWMultiPolygon* polygons, double distance,
                                            Rings& rings, Flags& flags) {
    return polygonsRings(polygons, distance, JWBufferEdge, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::multiPolygonBuffer_mp1(const JWMultiPolygon* polygons, double distance,
                                             Rings& rings, Flags& flags) {
    return polygonsRings(polygons, distance, JWBufferEdge, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::multiPolygonBufferFace_mp1(const JWMultiPolygon* polygons, double distance,
                                                 Rings& rings, Flags& flags) {
    return polygonsRings(polygons, distance, JWBufferFace, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::reduceUnionRing2(std::vector<Rings>& groups, std::vector<Flags>& groupFlags,
                                       Rings& rings, Flags& flags) {
    return unite(&groups, &groupFlags, rings, flags, kAlone);
}

int JWGeometryBuffer::reduceUnionRing_mp(std::vector<Rings>* groups, std::vector<Flags>* groupFlags,
                                         Rings& rings, Flags& flags) {
    return unite(groups, groupFlags, rings, flags, fixedTeamSize);
}

int JWGeometryBuffer::polygonizeRing_mp(Rings& rings, Flags& flags, JWGeometry** result) {
    return polygonizeRing(rings, flags, result);
}

int JWGeometryBuffer::__pointBuffer(double x, double y, double distance, JWRing* ring) {
    return makeShape({{x, y}, {x, y}}, distance, kPlainArcs, ring);
}

int JWGeometryBuffer::__segmentBuffer(double x1, double y1, double x2, double y2, double distance,
                                      JWRing* ring) {
    return makeShape({{x1, y1}, {x2, y2}}, distance, kPlainArcs, ring);
}

int JWGeometryBuffer::__ringBuffer(const JWRing* ring, double distance, Rings& rings,
                                   Flags& flags) {
    return ringBuffer(ring, distance, JWBufferEdge, rings, flags);
}

int JWGeometryBuffer::__ringBufferface(const JWRing* ring, double distance, Rings& rings,
                                       Flags& flags) {
    return ringBuffer(ring, distance, JWBufferFace, rings, flags);
}

}  // namespace jws
