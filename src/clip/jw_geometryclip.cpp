// SPDX-License-Identifier: MIT
//
// The public clip functions of geometries, one line each.
#include "jw_geometryclip.h"

#include <algorithm>

#include "clip/clip_forms.h"

namespace jws {

using namespace detail;

namespace {

constexpr bool kTree = true;
constexpr bool kAllPairs = false;
constexpr int kAlone = 1;

}  // namespace

int JWGeometryClip::geometryClipByGeometry(JWGeometry* target, JWGeometry* cutter,
                                           std::vector<JWGeometry*>& pieces, bool checkWeird,
                                           bool useRTree) {
    return clipAny(target, cutter, pieces, nullptr,
                   {"geometryClipByGeometry", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::geometryClipByGeometry(JWGeometry* target, JWGeometry* cutter,
                                           std::vector<JWGeometry*>& pieces,
                                           std::vector<unsigned int>& inside, bool checkWeird,
                                           bool useRTree) {
    return clipAny(target, cutter, pieces, &inside,
                   {"geometryClipByGeometry", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::lineStringClipByRing(JWLineString* line, JWRing* ring,
                                         std::vector<JWLineString*>& pieces,
                                         std::vector<unsigned int>& inside, bool checkWeird) {
    return clipLines(line, ring, pieces, &inside,
                     {"lineStringClipByRing", checkWeird, kTree, kAlone});
}

int JWGeometryClip::lineStringClipByRingWithOutRTree(const JWLineString* line, JWRing* ring,
                                                     std::vector<JWLineString*>& pieces,
                                                     std::vector<unsigned int>& inside,
                                                     bool checkWeird) {
    return clipLines(line, ring, pieces, &inside,
                     {"lineStringClipByRingWithOutRTree", checkWeird, kAllPairs, kAlone});
}

int JWGeometryClip::lineStringClipByRing1(JWLineString* line, JWRing* ring,
                                          std::vector<JWLineString*>& pieces,
                                          std::vector<unsigned int>& inside, bool checkWeird,
                                          bool useRTree) {
    return clipLines(line, ring, pieces, &inside,
                     {"lineStringClipByRing1", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::lineStringClipByPolygon(JWLineString* line, JWPolygon* polygon,
                                            std::vector<JWLineString*>& pieces,
                                            std::vector<unsigned int>& inside, bool checkWeird,
                                            bool useRTree) {
    return clipLines(line, polygon, pieces, &inside,
                     {"lineStringClipByPolygon", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::lineStringClipByMultiPolygon(JWLineString* line, JWMultiPolygon* polygons,
                                                 std::vector<JWLineString*>& pieces,
                                                 std::vector<unsigned int>& inside, bool checkWeird,
                                                 bool useRTree) {
    return clipLines(line, polygons, pieces, &inside,
                     {"lineStringClipByMultiPolygon", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::multiLineStringClipByPolygon(JWMultiLineString* lines, JWPolygon* polygon,
                                                 std::vector<JWLineString*>& pieces,
                                                 std::vector<unsigned int>& inside, bool checkWeird,
                                                 bool useRTree) {
    return clipLines(lines, polygon, pieces, &inside,
                     {"multiLineStringClipByPolygon", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::multiLineStringClipByMultiPolygon(JWMultiLineString* lines,
                                                      JWMultiPolygon* polygons,
                                                      std::vector<JWLineString*>& pieces,
                                                      std::vector<unsigned int>& inside,
                                                      bool checkWeird, bool useRTree) {
    return clipLines(lines, polygons, pieces, &inside,
                     {"multiLineStringClipByMultiPolygon", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::lineStringClipByLineString(JWLineString* line, JWLineString* cutter,
                                               std::vector<JWLineString*>& pieces,
                                               bool checkWeird) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByLineString", checkWeird, kTree, kAlone});
}

int JWGeometryClip::lineStringClipByLineStringWithOutRTree(JWLineString* line, JWLineString* cutter,
                                                           std::vector<JWLineString*>& pieces,
                                                           bool checkWeird) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByLineStringWithOutRTree", checkWeird, kAllPairs, kAlone});
}

int JWGeometryClip::lineStringClipByLineString1(JWLineString* line, JWLineString* cutter,
                                                std::vector<JWLineString*>& pieces, bool checkWeird,
                                                bool useRTree) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByLineString1", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::lineStringClipByMultiLineString(JWLineString* line, JWMultiLineString* cutter,
                                                    std::vector<JWLineString*>& pieces,
                                                    bool checkWeird, bool useRTree) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByMultiLineString", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::multiLineStringClipBylineString(JWMultiLineString* lines, JWLineString* cutter,
                                                    std::vector<JWLineString*>& pieces,
                                                    bool checkWeird, bool useRTree) {
    return clipLines(lines, cutter, pieces, nullptr,
                     {"multiLineStringClipBylineString", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::multiLineStringClipByMultiLineString(JWMultiLineString* lines,
                                                         JWMultiLineString* cutter,
                                                         std::vector<JWLineString*>& pieces,
                                                         bool checkWeird, bool useRTree) {
    return clipLines(lines, cutter, pieces, nullptr,
                     {"multiLineStringClipByMultiLineString", checkWeird, useRTree, kAlone});
}

int JWGeometryClip::ringClipByLineString(JWRing* ring, JWLineString* line,
                                         std::vector<JWRing*>& pieces, bool checkWeird) {
    return clipAreaByLines(ring, line, pieces, nullptr,
                           {"ringClipByLineString", checkWeird, kTree, kAlone});
}

int JWGeometryClip::polygonClipByLineString(JWPolygon* polygon, JWLineString* line,
                                            std::vector<JWRing*>& rings,
                                            std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygon, line, rings, &holeFlags,
                           {"polygonClipByLineString", checkWeird, kTree, kAlone});
}

int JWGeometryClip::polygonClipByLineString1(JWPolygon* polygon, JWLineString* line,
                                             std::vector<JWRing*>& rings,
                                             std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygon, line, rings, &holeFlags,
                           {"polygonClipByLineString1", checkWeird, kTree, kAlone});
}

int JWGeometryClip::polygonClipByMultiLineString(JWPolygon* polygon, JWMultiLineString* lines,
                                                 std::vector<JWRing*>& rings,
                                                 std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygon, lines, rings, &holeFlags,
                           {"polygonClipByMultiLineString", checkWeird, kTree, kAlone});
}

int JWGeometryClip::multiPolygonClipBylineString(JWMultiPolygon* polygons, JWLineString* line,
                                                 std::vector<JWRing*>& rings,
                                                 std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygons, line, rings, &holeFlags,
                           {"multiPolygonClipBylineString", checkWeird, kTree, kAlone});
}

int JWGeometryClip::multiPolygonClipByMultiLineString(JWMultiPolygon* polygons,
                                                      JWMultiLineString* lines,
                                                      std::vector<JWRing*>& rings,
                                                      std::vector<int>& holeFlags,
                                                      bool checkWeird) {
    return clipAreaByLines(polygons, lines, rings, &holeFlags,
                           {"multiPolygonClipByMultiLineString", checkWeird, kTree, kAlone});
}

int JWGeometryClip::multiPointClipByRing(JWMultiPoint* points, JWRing* ring,
                                         std::vector<JWMultiPoint*>& pieces,
                                         std::vector<unsigned int>& inside, bool checkWeird) {
    return clipPoints(points, ring, pieces, inside,
                      {"multiPointClipByRing", checkWeird, kTree, kAlone});
}

int JWGeometryClip::multiPointClipByPolygon(JWMultiPoint* points, JWPolygon* polygon,
                                            std::vector<JWMultiPoint*>& pieces,
                                            std::vector<unsigned int>& inside, bool checkWeird) {
    return clipPoints(points, polygon, pieces, inside,
                      {"multiPointClipByPolygon", checkWeird, kTree, kAlone});
}

int JWGeometryClip::multiPointClipByMultiPolygon(JWMultiPoint* points, JWMultiPolygon* polygons,
                                                 std::vector<JWMultiPoint*>& pieces,
                                                 std::vector<unsigned int>& inside,
                                                 bool checkWeird) {
    return clipPoints(points, polygons, pieces, inside,
                      {"multiPointClipByMultiPolygon", checkWeird, kTree, kAlone});
}

bool JWGeometryClip::compare(const JWRawPoint& a, const JWRawPoint& b) { return a < b; }

int JWGeometryClip::removeDuplicate(std::vector<JWRawPoint>& points, int count) {
    const auto end = points.begin() + std::clamp(count, 0, static_cast<int>(points.size()));
    std::sort(points.begin(), end, compare);
    return static_cast<int>(std::unique(points.begin(), end) - points.begin());
}

}  // namespace jws
