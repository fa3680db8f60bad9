// SPDX-License-Identifier: MIT
#include "support/gpc_call.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "support/geos_oracle.h"
#include "support/gpc_operand.h"
#include "support/wkt.h"

namespace jwtest {
namespace {

using DirectedEdge = std::pair<jws::JWRawPoint, jws::JWRawPoint>;

std::vector<DirectedEdge> sortedEdges(const Rings& rings) {
    std::vector<DirectedEdge> edges;
    for (const Ring& ring : rings) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            edges.emplace_back(ring[i], ring[(i + 1) % ring.size()]);
        }
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

}  // namespace

bool sameSet(const ClipResult& a, const ClipResult& b) {
    return a == b || sortedEdges(a.contours) == sortedEdges(b.contours);
}

ClipResult clip(gpc_op op, const Rings& a, const Rings& b) {
    GpcOperand subject(a), other(b);
    gpc_polygon out;
    std::memset(&out, 0x5a, sizeof(out));  // former values are to be ignored
    errno = 0;
    gpc_polygon_clip(op, subject.polygon(), other.polygon(), &out);
    return takeResult(out, errno);
}

std::string wktOf(const Rings& rings) {
    jws::JWPolygon polygon;
    for (const Ring& ring : rings) {
        polygon.addRing(jws::JWRing(ring.data(), static_cast<int>(ring.size())));
    }
    return toWkt(polygon);
}

Rings ringsOf(const std::string& wkt) {
    const auto polygon = fromWktAs<jws::JWPolygon>(wkt.c_str());
    Rings rings;
    for (int i = 0; i < polygon.getRingCount(); ++i) {
        rings.push_back(cornersOf(polygon.getRingAt(i)));
    }
    return rings;
}

}  // namespace jwtest
