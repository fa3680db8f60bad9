// SPDX-License-Identifier: MIT
#include "relation/chain_walk.h"

#include <algorithm>

namespace jws::detail {
namespace {

/// Where a direction at a vertex lies to the way through it.
enum class Sector { kLeft, kRight, kAlong };

bool isAhead(const JWRawPoint& center, const JWRawPoint& p, const JWRawPoint& q) {
    return p.x != center.x ? (p.x > center.x) == (q.x > center.x)
                           : (p.y > center.y) == (q.y > center.y);
}

/// `in` and `out` are the neighbours of the vertex, not in one direction from it.
Sector sectorOf(const JWRawPoint& vertex, const JWRawPoint& in, const JWRawPoint& out,
                const JWRawPoint& ray) {
    const int toOut = orientationSign(vertex, out, ray);
    const int toIn = orientationSign(vertex, in, ray);
    if (toOut == 0 && isAhead(vertex, out, ray)) return Sector::kAlong;
    if (toIn == 0 && isAhead(vertex, in, ray)) return Sector::kAlong;
    const int bend = orientationSign(vertex, out, in);
    if (bend == 0) return toOut > 0 ? Sector::kLeft : Sector::kRight;
    if (bend > 0) return toOut > 0 && toIn < 0 ? Sector::kLeft : Sector::kRight;
    return toIn > 0 && toOut < 0 ? Sector::kRight : Sector::kLeft;
}

/// Calls `visit` for the ends of the other edge that are not in the place itself.
template <class Visit>
void forRays(const EdgeEvent& event, Visit&& visit) {
    if (event.place != EdgePlace::kStart) visit(event.cut.other, event.sideOfStart);
    if (event.place != EdgePlace::kEnd) visit(event.cut.other + 1, event.sideOfEnd);
}

/// Two crossing lines through one place of ab, as the side of one that the left end of the other is
/// on. Both cross from right to left.
int compareLines(const JWRawPoint* x, bool xToLeft, const JWRawPoint* y, bool yToLeft) {
    const JWRawPoint& left = xToLeft ? x[1] : x[0];
    return yToLeft ? orientationSign(y[0], y[1], left) : orientationSign(y[1], y[0], left);
}

}  // namespace

const JWRawPoint& ChainWalk::before(std::uint32_t vertex) const {
    return points()[vertex == m_chain->first ? m_chain->last - 1 : vertex - 1];
}

const JWRawPoint& ChainWalk::after(std::uint32_t vertex) const {
    return points()[vertex == m_chain->last ? m_chain->first + 1 : vertex + 1];
}

void ChainWalk::walk(std::size_t chain, const EdgeEvent* begin, const EdgeEvent* end) {
    m_chain = &m_own.forest().chains()[chain];
    const JWRawPoint* start = points() + m_chain->first;
    Way way;
    way.own.sides = m_own.ownSides(chain);
    if (m_other != nullptr) way.other.sides = m_other->sidesAt(start[0], start[1]);

    Group atStart{begin, begin};
    if (begin != end && begin->point == m_chain->first && begin->atVertex)
        atStart = groupAt(begin, end);
    follow(atStart, way);
    const Way first = way;
    if (!m_chain->closed) addPlace(atStart, way, way, start);
    addStretch(way);

    bool ended = false;
    for (const EdgeEvent* next = atStart.end; next != end;) {
        const Group group = groupAt(next, end);
        next = group.end;
        ended = !m_chain->closed && group.begin->point == m_chain->last;
        const Way before = way;
        if (!ended) turn(group, way);
        addPlace(group, before, way, vertexOf(group));
        if (!ended) addStretch(way);
    }
    if (m_chain->closed) {
        if (atStart.begin != atStart.end) addPlace(atStart, way, first, start);
    } else if (!ended) {
        addPlace({end, end}, way, way, points() + m_chain->last);
    }
}

ChainWalk::Group ChainWalk::groupAt(const EdgeEvent* begin, const EdgeEvent* end) const {
    const EdgeEvent* stop = begin + 1;
    while (stop != end && samePlace(m_own.forest(), *begin, *stop)) ++stop;
    return {begin, stop};
}

/// Passes a place: the way before it becomes the way after it.
void ChainWalk::turn(const Group& group, Way& way) const {
    if (group.begin->atVertex) {
        turnAtVertex(group, way);
    } else {
        for (const EdgeEvent* event = group.begin; event != group.end; ++event) {
            if (!event->area) continue;
            Sides& sides = way.of(event->own).sides;
            forRays(*event, [&](const JWRawPoint*, int side) {
                sides.left ^= side > 0;
                sides.right ^= side < 0;
            });
        }
    }
    follow(group, way);
}

void ChainWalk::turnAtVertex(const Group& group, Way& way) const {
    const std::uint32_t vertex = group.begin->point;
    const JWRawPoint &center = points()[vertex], &in = before(vertex), &out = after(vertex);
    way.own.areaEdges = way.own.lineEdges = 0;
    way.other.areaEdges = way.other.lineEdges = 0;
    if (orientationSign(center, in, out) == 0 && isAhead(center, in, out)) {
        // The way turns back: its left is now where its right was.
        std::swap(way.own.sides.left, way.own.sides.right);
        std::swap(way.other.sides.left, way.other.sides.right);
        return;
    }
    for (const EdgeEvent* event = group.begin; event != group.end; ++event) {
        if (!event->area) continue;
        Sides& sides = way.of(event->own).sides;
        forRays(*event, [&](const JWRawPoint* ray, int) {
            const Sector sector = sectorOf(center, in, out, *ray);
            sides.left ^= sector == Sector::kLeft;
            sides.right ^= sector == Sector::kRight;
        });
    }
}

/// Counts the edges that run along from here on.
void ChainWalk::follow(const Group& group, Way& way) const {
    for (const EdgeEvent* event = group.begin; event != group.end; ++event) {
        Beside& beside = way.of(event->own);
        int& edges = event->area ? beside.areaEdges : beside.lineEdges;
        edges += event->begins;
        edges -= event->ends && !event->atVertex;
    }
}

Location ChainWalk::stretchLocation(const Way& way, bool own) const {
    const Beside& beside = way.of(own);
    if (beside.sides.inside()) return kInterior;
    if (beside.sides.differ() || beside.areaEdges > 0 || (own && m_chain->area)) return kBoundary;
    return beside.lineEdges > 0 || own ? kInterior : kExterior;
}

void ChainWalk::addStretch(const Way& way) {
    m_matrix.raise(stretchLocation(way, true), stretchLocation(way, false), 1);
    const Sides &own = way.own.sides, &other = way.other.sides;
    m_matrix.raise(own.left ? kInterior : kExterior, other.left ? kInterior : kExterior, 2);
    m_matrix.raise(own.right ? kInterior : kExterior, other.right ? kInterior : kExterior, 2);
}

void ChainWalk::addPlace(const Group& group, const Way& before, const Way& after,
                         const JWRawPoint* p) {
    m_matrix.raise(placeLocation(group, before, after, p, true),
                   placeLocation(group, before, after, p, false), 0);
}

/// The vertex in the place, null when there is none.
const JWRawPoint* ChainWalk::vertexOf(const Group& group) const {
    if (group.begin->atVertex) return points() + group.begin->point;
    for (const EdgeEvent* event = group.begin; event != group.end; ++event)
        if (event->cut.vertex != nullptr) return event->cut.vertex;
    return nullptr;
}

Location ChainWalk::placeLocation(const Group& group, const Way& before, const Way& after,
                                  const JWRawPoint* p, bool own) const {
    bool meetsArea = false;
    bool onLine = own ? !m_chain->area : before.other.lineEdges > 0 || after.other.lineEdges > 0;
    for (const EdgeEvent* event = group.begin; event != group.end; ++event) {
        if (event->own != own) continue;
        meetsArea |= event->area;
        onLine |= !event->area;
    }
    const Beside &in = before.of(own), &out = after.of(own);
    const bool onArea =
        meetsArea || (own && m_chain->area) || in.areaEdges > 0 || out.areaEdges > 0;
    if (in.sides.inside() && out.sides.inside()) {
        if (!meetsArea || raysPairAt(group, p, own)) return kInterior;
        return kBoundary;
    }
    if (onArea || in.sides.differ() || out.sides.differ()) return kBoundary;
    const RelateOperand* operand = own ? &m_own : m_other;
    if (operand == nullptr) return kExterior;
    if (onLine) return p != nullptr && operand->isBoundaryPoint(*p) ? kBoundary : kInterior;
    return p != nullptr && operand->isPoint(*p) ? kInterior : kExterior;
}

/// Tells whether the rays of one geometry's areas that leave the way in a place come in pairs of
/// one direction. Those along the way do, when the parity is the same on both sides of it.
bool ChainWalk::raysPairAt(const Group& group, const JWRawPoint* p, bool own) const {
    if (p == nullptr) return crossingsPair(group, own);
    const std::uint32_t at = group.begin->point;
    const bool vertex = group.begin->atVertex;
    const JWRawPoint* in = vertex ? &before(at) : points() + at;
    const JWRawPoint* out = vertex ? &after(at) : points() + at + 1;
    if (!m_chain->closed && at == m_chain->first && vertex) in = out;
    if (!m_chain->closed && at == m_chain->last) out = in;
    const auto isAlong = [p](const JWRawPoint* way, const JWRawPoint* ray) {
        return orientationSign(*p, *way, *ray) == 0 && isAhead(*p, *way, *ray);
    };
    Rays rays;
    for (const EdgeEvent* event = group.begin; event != group.end; ++event) {
        if (event->own != own || !event->area) continue;
        forRays(*event, [&](const JWRawPoint* ray, int) {
            if (!isAlong(in, ray) && !isAlong(out, ray)) rays.push_back(ray);
        });
    }
    return raysPair(*p, rays);
}

/// The same where no vertex is: every edge crosses the way.
bool ChainWalk::crossingsPair(const Group& group, bool own) const {
    std::vector<const EdgeEvent*> lines;
    for (const EdgeEvent* event = group.begin; event != group.end; ++event)
        if (event->own == own && event->area) lines.push_back(event);
    if (lines.size() % 2 != 0) return false;
    const auto compare = [](const EdgeEvent* x, const EdgeEvent* y) {
        return compareLines(x->cut.other, x->sideOfEnd > 0, y->cut.other, y->sideOfEnd > 0);
    };
    std::sort(lines.begin(), lines.end(),
              [&](const EdgeEvent* x, const EdgeEvent* y) { return compare(x, y) < 0; });
    for (std::size_t i = 0; i < lines.size(); i += 2)
        if (compare(lines[i], lines[i + 1]) != 0) return false;
    return true;
}

}  // namespace jws::detail
