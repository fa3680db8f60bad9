// SPDX-License-Identifier: MIT
#include "support/gpc_call.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "support/geos_oracle.h"
#include "support/wkt.h"

namespace jwtest {
namespace {

/// An operand in the interface's form, with the memory behind it.
class Operand {
  public:
    explicit Operand(const Rings& rings) : holes_(rings.size(), 1) {
        std::size_t count = 0;
        for (const Ring& ring : rings) count += ring.size();
        vertices_.reserve(count);
        for (const Ring& ring : rings) {
            lists_.push_back({static_cast<int>(ring.size()), vertices_.data() + vertices_.size()});
            for (const jws::JWRawPoint& p : ring) vertices_.push_back({p.x, p.y});
        }
        polygon_ = {static_cast<int>(rings.size()), holes_.data(), lists_.data()};
    }
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;

    gpc_polygon* polygon() { return &polygon_; }

  private:
    std::vector<gpc_vertex> vertices_;
    std::vector<gpc_vertex_list> lists_;
    std::vector<int> holes_;
    gpc_polygon polygon_;
};

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
    Operand subject(a), other(b);
    gpc_polygon out;
    std::memset(&out, 0x5a, sizeof(out));  // former values are to be ignored
    errno = 0;
    gpc_polygon_clip(op, subject.polygon(), other.polygon(), &out);
    ClipResult result;
    result.failure = errno;
    for (int c = 0; c < out.num_contours; ++c) {
        const gpc_vertex_list& list = out.contour[c];
        Ring ring;
        ring.reserve(static_cast<std::size_t>(list.num_vertices));
        for (int i = 0; i < list.num_vertices; ++i) {
            ring.emplace_back(list.vertex[i].x, list.vertex[i].y);
        }
        result.contours.push_back(std::move(ring));
        result.holes.push_back(out.hole[c]);
    }
    gpc_free_polygon(&out);
    return result;
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
