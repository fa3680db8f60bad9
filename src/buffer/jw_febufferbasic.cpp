// SPDX-License-Identifier: MIT
#include "jw_febufferbasic.h"

#include "buffer/ring_lists.h"

namespace jws {

using namespace detail;

namespace {

/// Runs a buffer into a caller's multipolygon.
template <class Input, class Body>
int fill(const char* function, const Input* input, double distance, JWMultiPolygon* result,
         Body&& body) {
    if (!input || !result) return refused(function, "an argument is null");
    if (!isDistance(function, distance)) return 0;
    JWMultiPolygon made;  // the result may be the input
    const int answer = deliver(
        function,
        [&] {
            const Team alone(1);
            return body(*input, BufferPlan{distance, kFineArcs, alone});
        },
        [&](FlaggedRings&& rings) { made = polygonizeAll(std::move(rings)); });
    *result = std::move(made);
    return answer;
}

int fillFromRing(const JWRing* ring, double distance, enumJWBufferType type,
                 JWMultiPolygon* result) {
    return fill("ringBuffer", ring, distance, result,
                [type](const JWRing& input, const BufferPlan& plan) {
                    return bufferRing(input, type, plan);
                });
}

}  // namespace

JWFEBufferBasic::JWFEBufferBasic() = default;
JWFEBufferBasic::JWFEBufferBasic(const JWFEBufferBasic&) = default;
JWFEBufferBasic& JWFEBufferBasic::operator=(const JWFEBufferBasic&) = default;
JWFEBufferBasic::~JWFEBufferBasic() = default;

int JWFEBufferBasic::pointBuffer(double x, double y, double distance, JWMultiPolygon* result) {
    const JWRawPoint point(x, y);
    return fill("pointBuffer", &point, distance, result, bufferPoint);
}

JWRing* JWFEBufferBasic::pointBuffer(const JWPoint* point, double distance) {
    std::vector<JWRing*> rings;
    std::vector<int> flags;
    fillLists("pointBuffer", point, distance, kFineArcs, 1, rings, flags,
              [](const JWPoint& input, const BufferPlan& plan) {
                  return bufferPoint(input.getRawPoint(), plan);
              });
    return rings.empty() ? nullptr : rings.front();
}

int JWFEBufferBasic::lineStringBuffer(const JWLineString* line, double distance,
                                      JWMultiPolygon* result) {
    return fill("lineStringBuffer", line, distance, result, bufferLine);
}

int JWFEBufferBasic::lineStringBuffer(const JWLineString* line, double distance,
                                      std::vector<JWRing*>& rings, std::vector<int>& flags) {
    return fillLists("lineStringBuffer", line, distance, kFineArcs, 1, rings, flags, bufferLine);
}

int JWFEBufferBasic::ringBufferFace(const JWRing* ring, double distance, JWMultiPolygon* result) {
    return fillFromRing(ring, distance, JWBufferFace, result);
}

int JWFEBufferBasic::ringBufferEdge(const JWRing* ring, double distance, JWMultiPolygon* result) {
    return fillFromRing(ring, distance, JWBufferEdge, result);
}

int JWFEBufferBasic::polygonBufferFace(const JWPolygon* polygon, double distance,
                                       JWMultiPolygon* result) {
    return fill("polygonBufferFace", polygon, distance, result,
                [](const JWPolygon& input, const BufferPlan& plan) {
                    return bufferPolygon(input, JWBufferFace, plan);
                });
}

int JWFEBufferBasic::multiPointBuffer(const JWMultiPoint* points, double distance,
                                      JWMultiPolygon* result) {
    return fill("multiPointBuffer", points, distance, result, bufferPoints);
}

int JWFEBufferBasic::multiLineStringBuffer(const JWMultiLineString* lines, double distance,
                                           JWMultiPolygon* result) {
    return fill("multiLineStringBuffer", lines, distance, result, bufferLines);
}

int JWFEBufferBasic::multiPolygonBufferFace(const JWMultiPolygon* polygons, double distance,
                                            JWMultiPolygon* result) {
    return fill("multiPolygonBufferFace", polygons, distance, result,
                [](const JWMultiPolygon& input, const BufferPlan& plan) {
                    return bufferPolygons(input, JWBufferFace, plan);
                });
}

int JWFEBufferBasic::__pointBuffer(double x, double y, double distance, JWRing* ring) {
    return makeShape({{x, y}, {x, y}}, distance, kFineArcs, ring);
}

int JWFEBufferBasic::__segmentBuffer(double x1, double y1, double x2, double y2, double distance,
                                     JWRing* ring) {
    return makeShape({{x1, y1}, {x2, y2}}, distance, kFineArcs, ring);
}

}  // namespace jws
