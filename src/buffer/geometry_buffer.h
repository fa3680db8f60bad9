// SPDX-License-Identifier: MIT
//
// Buffers of each kind of geometry, one body for both public classes. Arguments are what the public
// functions have checked: not null, a distance greater than 0 and finite. Functions throw when
// memory runs out or the engine gives up, and BadBuffer for what has no buffer; the public
// functions turn that into their failure values.
#ifndef JW_BUFFER_GEOMETRY_BUFFER_H
#define JW_BUFFER_GEOMETRY_BUFFER_H

#include <memory>
#include <stdexcept>
#include <vector>

#include "buffer/buffer_shape.h"
#include "foundation/parallel.h"
#include "jw_geometry.h"
#include "jw_geometrybuffer.h"

namespace jws::detail {

/// The geometry has no buffer; the text says why.
struct BadBuffer : std::invalid_argument {
    using std::invalid_argument::invalid_argument;
};

/// Rings with their flags: 0 outer ring, 1 hole. Empty when there is nothing.
struct FlaggedRings {
    std::vector<JWRing> rings;
    std::vector<int> flags;
    /// The rings do not cross one another, and the interior is on their right.
    bool isArea = false;

    bool empty() const { return rings.empty(); }
    void add(JWRing ring, int flag) {
        rings.push_back(std::move(ring));
        flags.push_back(flag);
    }
};

/// How a buffer is computed; the same for every kind.
struct BufferPlan {
    double distance;
    const ArcStyle& arcs;
    const Team& team;
};

FlaggedRings bufferPoint(const JWRawPoint& point, const BufferPlan& plan);
FlaggedRings bufferLine(const JWLineString& line, const BufferPlan& plan);
FlaggedRings bufferRing(const JWRing& ring, enumJWBufferType type, const BufferPlan& plan);
FlaggedRings bufferPolygon(const JWPolygon& polygon, enumJWBufferType type, const BufferPlan& plan);
FlaggedRings bufferPoints(const JWMultiPoint& points, const BufferPlan& plan);
FlaggedRings bufferLines(const JWMultiLineString& lines, const BufferPlan& plan);
FlaggedRings bufferPolygons(const JWMultiPolygon& polygons, enumJWBufferType type,
                            const BufferPlan& plan);
/// Of any of these kinds; nothing of others.
FlaggedRings bufferGeometry(const JWGeometry& geometry, enumJWBufferType type,
                            const BufferPlan& plan);

/// Unites ring sets, each read by the even-odd rule unless it is an area; a single one stays as it
/// is.
FlaggedRings uniteGroups(std::vector<FlaggedRings> groups, const Team& team);

/// Makes a polygon of one ring, a multipolygon of more, and null of none. A hole goes to the first
/// outer ring that its first vertex lies strictly inside.
std::unique_ptr<JWGeometry> polygonize(FlaggedRings rings);

/// The same, always as a multipolygon.
JWMultiPolygon polygonizeAll(FlaggedRings rings);

}  // namespace jws::detail

#endif  // JW_BUFFER_GEOMETRY_BUFFER_H
