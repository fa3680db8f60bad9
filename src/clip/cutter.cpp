// SPDX-License-Identifier: MIT
#include "clip/cutter.h"

#include <cmath>

#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

constexpr int kLargest = 480;  // products of scaled coordinates below 2^480 are exact

bool isAreal(const JWGeometry& geometry) {
    const enumJWGeometryType type = geometry.getGeometryType();
    return type == JWGeometryRing || type == JWGeometryPolygon || type == JWGeometryMultiPolygon;
}

/// The lists of points of lines, or of rings that are long enough.
std::vector<PointSpan> chainsOf(const JWGeometry& geometry) {
    const std::size_t least = isAreal(geometry) ? 4 : 2;
    std::vector<PointSpan> chains;
    const enumJWGeometryType type = geometry.getGeometryType();
    if (!isAreal(geometry) && type != JWGeometryLineString && type != JWGeometryMultiLineString)
        return chains;
    everyVertexList(geometry, [&](const JWRawPoint* points, std::size_t n) {
        if (n >= least) chains.push_back({points, static_cast<int>(n)});
        return true;
    });
    return chains;
}

int exponentOf(double size) {
    int exponent = 0;
    std::frexp(size, &exponent);
    return exponent;
}

int exponentOf(const PointSpan& chain) {
    double most = 0;
    for (int i = 0; i < chain.count; ++i) {
        most = std::max({most, std::fabs(chain.points[i].x), std::fabs(chain.points[i].y)});
    }
    return exponentOf(most);
}

}  // namespace

Cutter::Cutter(const JWGeometry& geometry, EdgeSearch search)
    : m_chains(chainsOf(geometry)),
      m_kind(isAreal(geometry) ? EdgeIndex::Chains::Closed : EdgeIndex::Chains::Open),
      m_search(search),
      m_exponent(-2000) {
    for (const PointSpan& chain : m_chains) m_exponent = std::max(m_exponent, exponentOf(chain));
    m_edges = index(m_exponent);
}

Cutter::Cutter(const RingViews& area)
    : m_kind(EdgeIndex::Chains::Closed), m_search(EdgeSearch::Tree), m_exponent(-2000) {
    for (const RingView& ring : area) m_chains.push_back({ring.points, ring.count});
    for (const PointSpan& chain : m_chains) m_exponent = std::max(m_exponent, exponentOf(chain));
    m_edges = index(m_exponent);
}

std::unique_ptr<EdgeIndex> Cutter::index(int exponent) const {
    return std::make_unique<EdgeIndex>(m_chains, m_kind, scaleFor(exponent), m_search);
}

// A line of quite another magnitude than the cutter is met by edges of its own magnitude.
void Cutter::split(const JWLineString& line, AreaCut cut, const Team& team,
                   const PieceSink& sink) const {
    const PointSpan span{line.getPointsPtr(), line.getPointCount()};
    if (span.count == 0) return;
    const int exponent = exponentOf(span);
    const EdgeIndex* edges = m_edges.get();
    std::unique_ptr<const EdgeIndex> larger;
    if (exponent + exponentOf(edges->scale()) > kLargest) {
        larger = index(std::max(exponent, m_exponent));
        edges = larger.get();
    }
    const bool hasLength = isArea() ? splitByArea(span, *edges, cut, team, sink)
                                    : splitByLines(span, *edges, team, sink);
    if (hasLength) return;
    std::vector<JWRawPoint> points = line.getPointList();
    sink(points, !isArea() || holds(points.front()));
}

bool Cutter::mayReach(const JWEnvelop& box) const {
    JWEnvelop scaled = box;
    scaled *= m_edges->scale();
    return m_edges->mayReach(scaled);
}

bool Cutter::holds(const JWRawPoint& p) const { return isInArea(p, *m_edges); }

}  // namespace jws::detail
