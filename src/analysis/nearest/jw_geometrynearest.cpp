// SPDX-License-Identifier: MIT
//
// The distance functions under their names: null arguments, the guard, and the answer taken apart.
// The layer operations are in jw_geometrynearest_layers.cpp.
#include "jw_geometrynearest.h"

#include "analysis/nearest/geometry_distance.h"
#include "foundation/api_guard.h"

namespace jws {

using namespace detail;

namespace {

constexpr double kNoAnswer = -1.0;
constexpr double kNoLimit = std::numeric_limits<double>::max();

/// Writes the points and returns the distance of `measure()`, unless a pointer is null.
template <class Measure, class... Pointers>
double answer(const char* function, JWRawPoint* P, JWRawPoint* Q, const Measure& measure,
              const Pointers*... operands) {
    if (P == nullptr || Q == nullptr || (... || (operands == nullptr))) return kNoAnswer;
    return guarded(function, kNoAnswer, [&] {
        const LastLeast least = measure();
        if (!least.found()) return kNoAnswer;
        *P = least.closest().p;
        *Q = least.closest().q;
        return least.least();
    });
}

/// The same for a point against something, with one output.
template <class Measure, class... Pointers>
double pointAnswer(const char* function, JWRawPoint* P, const Measure& measure,
                   const Pointers*... operands) {
    JWRawPoint own;
    return answer(function, &own, P, measure, operands...);
}

}  // namespace

JWGeometryNearest::JWGeometryNearest() = default;
JWGeometryNearest::~JWGeometryNearest() = default;
JWGeometryNearest& JWGeometryNearest::operator=(const JWGeometryNearest&) = default;

double JWGeometryNearest::twoPointsDistance(const JWRawPoint* p, const JWRawPoint* q) {
    return p == nullptr || q == nullptr ? kNoAnswer : pointDistance(*p, *q);
}

double JWGeometryNearest::shortestPointToLine(const JWRawPoint* p, const JWRawPoint* a,
                                              const JWRawPoint* b, JWRawPoint* P) {
    if (p == nullptr || a == nullptr || b == nullptr || P == nullptr) return kNoAnswer;
    const JWRawPoint v = difference(*b, *a);
    const JWRawPoint foot = pointAlong(*a, v, dot(difference(*p, *a), v) / dot(v, v));
    const double distance = pointDistance(*p, foot);
    *P = foot;
    return distance;
}

double JWGeometryNearest::shortestPointToSegment(const JWRawPoint* p, const JWRawPoint* a,
                                                 const JWRawPoint* b, JWRawPoint* P) {
    if (p == nullptr || a == nullptr || b == nullptr || P == nullptr) return kNoAnswer;
    const Closest closest = fromPointToSegment(*p, *a, *b);
    *P = closest.q;
    return closest.distance;
}

double JWGeometryNearest::shortestPointToLineString(const JWRawPoint* p, const JWLineString* line,
                                                    JWRawPoint* P) {
    return pointAnswer(
        "shortestPointToLineString", P, [&] { return pointToLines(*p, *line); }, p, line);
}

double JWGeometryNearest::shortestPointToMultiLineString(const JWRawPoint* p,
                                                         const JWMultiLineString* lines,
                                                         JWRawPoint* P) {
    return pointAnswer(
        "shortestPointToMultiLineString", P, [&] { return pointToLines(*p, *lines); }, p, lines);
}

double JWGeometryNearest::shortestPointToRing(const JWRawPoint* p, const JWRing* ring,
                                              JWRawPoint* P) {
    return pointAnswer(
        "shortestPointToRing", P,
        [&] { return RingDistance(*ring, false).fromPoint(*p, kNoLimit); }, p, ring);
}

double JWGeometryNearest::shortestPointToPolygon(const JWRawPoint* p, const JWPolygon* polygon,
                                                 JWRawPoint* P) {
    return pointAnswer(
        "shortestPointToPolygon", P, [&] { return pointToAreas(*p, *polygon); }, p, polygon);
}

double JWGeometryNearest::shortestPointToMultiPolygon(const JWRawPoint* p,
                                                      const JWMultiPolygon* polygons,
                                                      JWRawPoint* P) {
    return pointAnswer(
        "shortestPointToMultiPolygon", P, [&] { return pointToAreas(*p, *polygons); }, p, polygons);
}

double JWGeometryNearest::shortestPointToMultiPoint(const JWRawPoint* p, const JWMultiPoint* points,
                                                    JWRawPoint* P) {
    return pointAnswer(
        "shortestPointToMultiPoint", P, [&] { return pointToPoints(*p, *points); }, p, points);
}

double JWGeometryNearest::shortestMultiPointToMultiPoint(const JWMultiPoint* a,
                                                         const JWMultiPoint* b, JWRawPoint* P,
                                                         JWRawPoint* Q) {
    return answer(
        "shortestMultiPointToMultiPoint", P, Q, [&] { return pointsToPoints(*a, *b); }, a, b);
}

double JWGeometryNearest::shortestMultiPointToLineString(const JWMultiPoint* points,
                                                         const JWLineString* line, JWRawPoint* P,
                                                         JWRawPoint* Q) {
    return answer(
        "shortestMultiPointToLineString", P, Q, [&] { return pointsToLines(*points, *line); },
        points, line);
}

double JWGeometryNearest::shortestMultiPointToMultiLineString(const JWMultiPoint* points,
                                                              const JWMultiLineString* lines,
                                                              JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestMultiPointToMultiLineString", P, Q, [&] { return pointsToLines(*points, *lines); },
        points, lines);
}

double JWGeometryNearest::shortestMultiPointToPolygon(const JWMultiPoint* points,
                                                      const JWPolygon* polygon, JWRawPoint* P,
                                                      JWRawPoint* Q) {
    return answer(
        "shortestMultiPointToPolygon", P, Q, [&] { return pointsToAreas(*points, *polygon); },
        points, polygon);
}

double JWGeometryNearest::shortestMultiPointToMultiPolygon(const JWMultiPoint* points,
                                                           const JWMultiPolygon* polygons,
                                                           JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestMultiPointToMultiPolygon", P, Q, [&] { return pointsToAreas(*points, *polygons); },
        points, polygons);
}

double JWGeometryNearest::shortestSegmentToSegment(const JWRawPoint* a, const JWRawPoint* b,
                                                   const JWRawPoint* c, const JWRawPoint* d,
                                                   JWRawPoint* P, JWRawPoint* Q) {
    const auto measure = [&] {
        LastLeast least;
        least.take(fromSegmentToSegment(*a, *b, *c, *d));
        return least;
    };
    return answer("shortestSegmentToSegment", P, Q, measure, a, b, c, d);
}

double JWGeometryNearest::shortestSegmentToLineString(const JWRawPoint* a, const JWRawPoint* b,
                                                      const JWLineString* line, JWRawPoint* P,
                                                      JWRawPoint* Q) {
    return answer(
        "shortestSegmentToLineString", P, Q,
        [&] {
            return segmentToLines({*a, *b}, *line);
        },
        a, b, line);
}

double JWGeometryNearest::shortestSegmentToMultiLineString(const JWRawPoint* a, const JWRawPoint* b,
                                                           const JWMultiLineString* lines,
                                                           JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestSegmentToMultiLineString", P, Q,
        [&] {
            return segmentToLines({*a, *b}, *lines);
        },
        a, b, lines);
}

double JWGeometryNearest::shortestSegmentToRing(const JWRawPoint* a, const JWRawPoint* b,
                                                const JWRing* ring, JWRawPoint* P, JWRawPoint* Q) {
    const auto measure = [&] {
        if (ring->isPointInRing(*P) == ring->isPointInRing(*Q))
            return segmentToRing({*a, *b}, *ring);
        LastLeast untouched;
        untouched.take(Closest{0, *P, *Q});
        return untouched;
    };
    return answer("shortestSegmentToRing", P, Q, measure, a, b, ring);
}

double JWGeometryNearest::shortestSegmentToPolygon(const JWRawPoint* a, const JWRawPoint* b,
                                                   const JWPolygon* polygon, JWRawPoint* P,
                                                   JWRawPoint* Q) {
    const auto measure = [&] {
        return AreaDistance(*polygon, false).fromSegment(*a, *b, kNoLimit, {0, *P, *Q});
    };
    return answer("shortestSegmentToPolygon", P, Q, measure, a, b, polygon);
}

double JWGeometryNearest::shortestSegmentToMultiPolygon(const JWRawPoint* a, const JWRawPoint* b,
                                                        const JWMultiPolygon* polygons,
                                                        JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestSegmentToMultiPolygon", P, Q,
        [&] {
            return segmentsToAreas({{*a, *b}}, *polygons);
        },
        a, b, polygons);
}

double JWGeometryNearest::shortestLineStringToLineString(const JWLineString* a,
                                                         const JWLineString* b, JWRawPoint* P,
                                                         JWRawPoint* Q) {
    return answer(
        "shortestLineStringToLineString", P, Q, [&] { return linesToLines(*a, *b); }, a, b);
}

double JWGeometryNearest::shortestLineStringToMultiLineString(const JWLineString* line,
                                                              const JWMultiLineString* lines,
                                                              JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestLineStringToMultiLineString", P, Q, [&] { return linesToLines(*line, *lines); },
        line, lines);
}

double JWGeometryNearest::shortestMultiLineStringToMultiLineString(const JWMultiLineString* a,
                                                                   const JWMultiLineString* b,
                                                                   JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestMultiLineStringToMultiLineString", P, Q, [&] { return linesToLines(*a, *b); }, a,
        b);
}

double JWGeometryNearest::shortestLineStringToPolygon(const JWLineString* line,
                                                      const JWPolygon* polygon, JWRawPoint* P,
                                                      JWRawPoint* Q) {
    return answer(
        "shortestLineStringToPolygon", P, Q,
        [&] { return segmentsToAreas(segmentsOf(*line), *polygon); }, line, polygon);
}

double JWGeometryNearest::shortestLineStringToMultiPolygon(const JWLineString* line,
                                                           const JWMultiPolygon* polygons,
                                                           JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestLineStringToMultiPolygon", P, Q,
        [&] { return segmentsToAreas(segmentsOf(*line), *polygons); }, line, polygons);
}

double JWGeometryNearest::shortestMultiLineStringToPolygon(const JWMultiLineString* lines,
                                                           const JWPolygon* polygon, JWRawPoint* P,
                                                           JWRawPoint* Q) {
    return answer(
        "shortestMultiLineStringToPolygon", P, Q,
        [&] { return segmentsToAreas(segmentsOf(*lines), *polygon); }, lines, polygon);
}

double JWGeometryNearest::shortestMultiLineStringToMultiPolygon(const JWMultiLineString* lines,
                                                                const JWMultiPolygon* polygons,
                                                                JWRawPoint* P, JWRawPoint* Q) {
    return answer(
        "shortestMultiLineStringToMultiPolygon", P, Q,
        [&] { return segmentsToAreas(segmentsOf(*lines), *polygons); }, lines, polygons);
}

}  // namespace jws
