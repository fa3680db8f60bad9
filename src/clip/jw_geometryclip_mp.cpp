// SPDX-License-Identifier: MIT
//
// The same functions on the fixed team.
#include "clip/clip_forms.h"
#include "foundation/parallel.h"
#include "jw_geometryclip.h"

namespace jws {

using namespace detail;

namespace {

constexpr bool kTree = true;
constexpr bool kAllPairs = false;
constexpr int kTeam = fixedTeamSize;

}  // namespace

int JWGeometryClip::geometryClipByGeometry_mp(JWGeometry* target, JWGeometry* cutter,
                                              std::vector<JWGeometry*>& pieces, bool checkWeird,
                                              bool useRTree) {
    return clipAny(target, cutter, pieces, nullptr,
                   {"geometryClipByGeometry_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::geometryClipByGeometry_mp(JWGeometry* target, JWGeometry* cutter,
                                              std::vector<JWGeometry*>& pieces,
                                              std::vector<unsigned int>& inside, bool checkWeird,
                                              bool useRTree) {
    return clipAny(target, cutter, pieces, &inside,
                   {"geometryClipByGeometry_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::lineStringClipByRing_mp(JWLineString* line, JWRing* ring,
                                            std::vector<JWLineString*>& pieces,
                                            std::vector<unsigned int>& inside, bool checkWeird) {
    return clipLines(line, ring, pieces, &inside,
                     {"lineStringClipByRing_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::lineStringClipByRingWithOutRTree_mp(const JWLineString* line, JWRing* ring,
                                                        std::vector<JWLineString*>& pieces,
                                                        std::vector<unsigned int>& inside,
                                                        bool checkWeird) {
    return clipLines(line, ring, pieces, &inside,
                     {"lineStringClipByRingWithOutRTree_mp", checkWeird, kAllPairs, kTeam});
}

int JWGeometryClip::lineStringClipByRing1_mp(JWLineString* line, JWRing* ring,
                                             std::vector<JWLineString*>& pieces,
                                             std::vector<unsigned int>& inside, bool checkWeird,
                                             bool useRTree) {
    return clipLines(line, ring, pieces, &inside,
                     {"lineStringClipByRing1_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::lineStringClipByPolygon_mp(JWLineString* line, JWPolygon* polygon,
                                               std::vector<JWLineString*>& pieces,
                                               std::vector<unsigned int>& inside, bool checkWeird,
                                               bool useRTree) {
    return clipLines(line, polygon, pieces, &inside,
                     {"lineStringClipByPolygon_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::lineStringClipByMultiPolygon_mp(JWLineString* line, JWMultiPolygon* polygons,
                                                    std::vector<JWLineString*>& pieces,
                                                    std::vector<unsigned int>& inside,
                                                    bool checkWeird, bool useRTree) {
    return clipLines(line, polygons, pieces, &inside,
                     {"lineStringClipByMultiPolygon_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::multiLineStringClipByPolygon_mp(JWMultiLineString* lines, JWPolygon* polygon,
                                                    std::vector<JWLineString*>& pieces,
                                                    std::vector<unsigned int>& inside,
                                                    bool checkWeird, bool useRTree) {
    return clipLines(lines, polygon, pieces, &inside,
                     {"multiLineStringClipByPolygon_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::multiLineStringClipByMultiPolygon_mp(JWMultiLineString* lines,
                                                         JWMultiPolygon* polygons,
                                                         std::vector<JWLineString*>& pieces,
                                                         std::vector<unsigned int>& inside,
                                                         bool checkWeird, bool useRTree) {
    return clipLines(lines, polygons, pieces, &inside,
                     {"multiLineStringClipByMultiPolygon_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::lineStringClipByLineString_mp(JWLineString* line, JWLineString* cutter,
                                                  std::vector<JWLineString*>& pieces,
                                                  bool checkWeird) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByLineString_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::lineStringClipByLineStringWithOutRTree_mp(JWLineString* line,
                                                              JWLineString* cutter,
                                                              std::vector<JWLineString*>& pieces,
                                                              bool checkWeird) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByLineStringWithOutRTree_mp", checkWeird, kAllPairs, kTeam});
}

int JWGeometryClip::lineStringClipByLineString1_mp(JWLineString* line, JWLineString* cutter,
                                                   std::vector<JWLineString*>& pieces,
                                                   bool checkWeird, bool useRTree) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByLineString1_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::lineStringClipByMultiLineString_mp(JWLineString* line,
                                                       JWMultiLineString* cutter,
                                                       std::vector<JWLineString*>& pieces,
                                                       bool checkWeird, bool useRTree) {
    return clipLines(line, cutter, pieces, nullptr,
                     {"lineStringClipByMultiLineString_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::multiLineStringClipBylineString_mp(JWMultiLineString* lines,
                                                       JWLineString* cutter,
                                                       std::vector<JWLineString*>& pieces,
                                                       bool checkWeird, bool useRTree) {
    return clipLines(lines, cutter, pieces, nullptr,
                     {"multiLineStringClipBylineString_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::multiLineStringClipByMultiLineString_mp(JWMultiLineString* lines,
                                                            JWMultiLineString* cutter,
                                                            std::vector<JWLineString*>& pieces,
                                                            bool checkWeird, bool useRTree) {
    return clipLines(lines, cutter, pieces, nullptr,
                     {"multiLineStringClipByMultiLineString_mp", checkWeird, useRTree, kTeam});
}

int JWGeometryClip::ringClipByLineString_mp(JWRing* ring, JWLineString* line,
                                            std::vector<JWRing*>& pieces, bool checkWeird) {
    return clipAreaByLines(ring, line, pieces, nullptr,
                           {"ringClipByLineString_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::polygonClipByLineString_mp(JWPolygon* polygon, JWLineString* line,
                                               std::vector<JWRing*>& rings,
                                               std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygon, line, rings, &holeFlags,
                           {"polygonClipByLineString_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::polygonClipByLineString1_mp(JWPolygon* polygon, JWLineString* line,
                                                std::vector<JWRing*>& rings,
                                                std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygon, line, rings, &holeFlags,
                           {"polygonClipByLineString1_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::polygonClipByMultiLineString_mp(JWPolygon* polygon, JWMultiLineString* lines,
                                                    std::vector<JWRing*>& rings,
                                                    std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygon, lines, rings, &holeFlags,
                           {"polygonClipByMultiLineString_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::multiPolygonClipBylineString_mp(JWMultiPolygon* polygons, JWLineString* line,
                                                    std::vector<JWRing*>& rings,
                                                    std::vector<int>& holeFlags, bool checkWeird) {
    return clipAreaByLines(polygons, line, rings, &holeFlags,
                           {"multiPolygonClipBylineString_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::multiPolygonClipByMultiLineString_mp(JWMultiPolygon* polygons,
                                                         JWMultiLineString* lines,
                                                         std::vector<JWRing*>& rings,
                                                         std::vector<int>& holeFlags,
                                                         bool checkWeird) {
    return clipAreaByLines(polygons, lines, rings, &holeFlags,
                           {"multiPolygonClipByMultiLineString_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::multiPointClipByRing_mp(JWMultiPoint* points, JWRing* ring,
                                            std::vector<JWMultiPoint*>& pieces,
                                            std::vector<unsigned int>& inside, bool checkWeird) {
    return clipPoints(points, ring, pieces, inside,
                      {"multiPointClipByRing_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::multiPointClipByPolygon_mp(JWMultiPoint* points, JWPolygon* polygon,
                                               std::vector<JWMultiPoint*>& pieces,
                                               std::vector<unsigned int>& inside, bool checkWeird) {
    return clipPoints(points, polygon, pieces, inside,
                      {"multiPointClipByPolygon_mp", checkWeird, kTree, kTeam});
}

int JWGeometryClip::multiPointClipByMultiPolygon_mp(JWMultiPoint* points, JWMultiPolygon* polygons,
                                                    std::vector<JWMultiPoint*>& pieces,
                                                    std::vector<unsigned int>& inside,
                                                    bool checkWeird) {
    return clipPoints(points, polygons, pieces, inside,
                      {"multiPointClipByMultiPolygon_mp", checkWeird, kTree, kTeam});
}

}  // namespace jws
