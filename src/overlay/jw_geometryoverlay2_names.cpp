// SPDX-License-Identifier: MIT
//
// Names under which the layer operations are known besides their own: forwards, all of them.
#include "jw_geometryoverlay2.h"

namespace jws {

int JWGeometryOverlay2::intersectPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                   JWFeatureLayer* output, int attributeMode,
                                                   double tolerance, int blockSize) {
    return intersectPolygonLayers_mp(a, b, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonLayers_old_mp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                      JWFeatureLayer* output, int attributeMode,
                                                      double tolerance, int blockSize) {
    return intersectPolygonLayers_mp(a, b, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::erasePolygonLayer_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                              JWFeatureLayer* output, bool multipart,
                                              double tolerance, int blockSize) {
    return erasePolygonLayer_mp(a, b, output, multipart, tolerance, blockSize);
}

int JWGeometryOverlay2::erasePolygonLayer_mp_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                                 JWFeatureLayer* output, bool multipart,
                                                 double tolerance, int blockSize) {
    return erasePolygonLayer_mp(a, b, output, multipart, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, bool multipart,
                                               double tolerance, int blockSize) {
    return unionPolygonLayers_mp(a, b, output, multipart, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, bool multipart,
                                               double tolerance, int blockSize) {
    return unionPolygonLayers(a, b, output, multipart, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonLayers_old_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                                   JWFeatureLayer* output, bool multipart,
                                                   double tolerance, int blockSize) {
    return unionPolygonLayers(a, b, output, multipart, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonLayers_new(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, bool multipart,
                                               double tolerance, int blockSize) {
    return unionPolygonLayers(a, b, output, multipart, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonLayers2_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                JWFeatureLayer* output, bool multipart,
                                                int attributeMode, double tolerance,
                                                int blockSize) {
    return unionPolygonLayers2_mp(a, b, output, multipart, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonLayers2_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                                JWFeatureLayer* output, bool multipart,
                                                int attributeMode, double tolerance,
                                                int blockSize) {
    return unionPolygonLayers2(a, b, output, multipart, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::identityPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                  JWFeatureLayer* output, bool multipart,
                                                  int attributeMode, double tolerance,
                                                  int blockSize) {
    return identityPolygonLayers_mp(a, b, output, multipart, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::identityPolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                                  JWFeatureLayer* output, bool multipart,
                                                  int attributeMode, double tolerance,
                                                  int blockSize) {
    return identityPolygonLayers(a, b, output, multipart, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::symmetricalDifferencePolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                               JWFeatureLayer* output,
                                                               bool multipart, int attributeMode,
                                                               double tolerance, int blockSize) {
    return symmetricalDifferencePolygonLayers_mp(a, b, output, multipart, attributeMode, tolerance,
                                                 blockSize);
}

int JWGeometryOverlay2::symmetricalDifferencePolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                                               JWFeatureLayer* output,
                                                               bool multipart, int attributeMode,
                                                               double tolerance, int blockSize) {
    return symmetricalDifferencePolygonLayers(a, b, output, multipart, attributeMode, tolerance,
                                              blockSize);
}

int JWGeometryOverlay2::symmetricalDifferencePolygonLayers_new(JWFeatureLayer* a, JWFeatureLayer* b,
                                                               JWFeatureLayer* output,
                                                               bool multipart, int attributeMode,
                                                               double tolerance, int blockSize) {
    return symmetricalDifferencePolygonLayers(a, b, output, multipart, attributeMode, tolerance,
                                              blockSize);
}

int JWGeometryOverlay2::updatePolygonLayer_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, bool keepBorders,
                                               double tolerance, int blockSize, bool multipart) {
    return updatePolygonLayer_mp(a, b, output, keepBorders, tolerance, blockSize, multipart);
}

int JWGeometryOverlay2::updatePolygonLayer_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                               JWFeatureLayer* output, bool keepBorders,
                                               double tolerance, int blockSize, bool multipart) {
    return updatePolygonLayer(a, b, output, keepBorders, tolerance, blockSize, multipart);
}

int JWGeometryOverlay2::spatialJoinPolygonLayers_lmp(JWFeatureLayer* a, JWFeatureLayer* b,
                                                     JWFeatureLayer* output, bool keepUnmatched,
                                                     bool rowPerPair, int attributeMode,
                                                     double tolerance, int blockSize) {
    return spatialJoinPolygonLayers_mp(a, b, output, keepUnmatched, rowPerPair, attributeMode,
                                       tolerance, blockSize);
}

int JWGeometryOverlay2::spatialJoinPolygonLayers_old(JWFeatureLayer* a, JWFeatureLayer* b,
                                                     JWFeatureLayer* output, bool keepUnmatched,
                                                     bool rowPerPair, int attributeMode,
                                                     double tolerance, int blockSize) {
    return spatialJoinPolygonLayers(a, b, output, keepUnmatched, rowPerPair, attributeMode,
                                    tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer_lmp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                     double tolerance, int blockSize) {
    return unionPolygonsInSameLayer_mp(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                                     double tolerance, int blockSize) {
    return unionPolygonsInSameLayer(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer_old_mp(JWFeatureLayer* input,
                                                        JWFeatureLayer* output, double tolerance,
                                                        int blockSize) {
    return unionPolygonsInSameLayer_mp(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer_new(JWFeatureLayer* input, JWFeatureLayer* output,
                                                     double tolerance, int blockSize) {
    return unionPolygonsInSameLayer(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer2_lmp(JWFeatureLayer* input, JWFeatureLayer* output,
                                                      int attributeMode, double tolerance,
                                                      int blockSize) {
    return unionPolygonsInSameLayer2_mp(input, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer2_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                                      int attributeMode, double tolerance,
                                                      int blockSize) {
    return unionPolygonsInSameLayer2(input, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer2_old_mp(JWFeatureLayer* input,
                                                         JWFeatureLayer* output, int attributeMode,
                                                         double tolerance, int blockSize) {
    return unionPolygonsInSameLayer2_mp(input, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::unionPolygonsInSameLayer2_new(JWFeatureLayer* input, JWFeatureLayer* output,
                                                      int attributeMode, double tolerance,
                                                      int blockSize) {
    return unionPolygonsInSameLayer2(input, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer_lmp(JWFeatureLayer* input,
                                                         JWFeatureLayer* output, double tolerance,
                                                         int blockSize) {
    return intersectPolygonsInSameLayer_mp(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer_old(JWFeatureLayer* input,
                                                         JWFeatureLayer* output, double tolerance,
                                                         int blockSize) {
    return intersectPolygonsInSameLayer(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer_old_mp(JWFeatureLayer* input,
                                                            JWFeatureLayer* output,
                                                            double tolerance, int blockSize) {
    return intersectPolygonsInSameLayer_mp(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer_new(JWFeatureLayer* input,
                                                         JWFeatureLayer* output, double tolerance,
                                                         int blockSize) {
    return intersectPolygonsInSameLayer(input, output, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer2_lmp(JWFeatureLayer* input,
                                                          JWFeatureLayer* output, int attributeMode,
                                                          double tolerance, int blockSize) {
    return intersectPolygonsInSameLayer2_mp(input, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer2_old(JWFeatureLayer* input,
                                                          JWFeatureLayer* output, int attributeMode,
                                                          double tolerance, int blockSize) {
    return intersectPolygonsInSameLayer2(input, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer2_old_mp(JWFeatureLayer* input,
                                                             JWFeatureLayer* output,
                                                             int attributeMode, double tolerance,
                                                             int blockSize) {
    return intersectPolygonsInSameLayer2_mp(input, output, attributeMode, tolerance, blockSize);
}

int JWGeometryOverlay2::intersectPolygonsInSameLayer2_new(JWFeatureLayer* input,
                                                          JWFeatureLayer* output, int attributeMode,
                                                          double tolerance, int blockSize) {
    return intersectPolygonsInSameLayer2(input, output, attributeMode, tolerance, blockSize);
}

}  // namespace jws
