// SPDX-License-Identifier: MIT
//
// JWGeometryOverlay: overlay of two polygon geometries.
#ifndef JW_GEOMETRYOVERLAY_H
#define JW_GEOMETRYOVERLAY_H

#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

class JWFeature;
class JWFeatureClass;
class JWGeometryOverlay2;

/// Overlay of two areas: the functions of `JWGeometryOverlay2` under their first name. Each is the
/// same function with the same answer; conventions, ownership, errors and cost are told there.
class JW_API JWGeometryOverlay {
  public:
    /// Same as `JWGeometryOverlay2::polygonIntersectPolygon`.
    static JWGeometry* polygonIntersectPolygon(const JWGeometry* a, const JWGeometry* b,
                                               double tolerance);
    /// Same as `JWGeometryOverlay2::polygonErasePolygon`.
    static JWGeometry* polygonErasePolygon(const JWGeometry* a, const JWGeometry* b,
                                           double tolerance);
    /// Same as `JWGeometryOverlay2::polygonUnionPolygonToOne`.
    static JWGeometry* polygonUnionPolygonToOne(const JWGeometry* a, const JWGeometry* b,
                                                double tolerance);
    /// Same as `JWGeometryOverlay2::polygonSymmetricalDifferencePolygon`.
    static int polygonSymmetricalDifferencePolygon(const JWGeometry* a, const JWGeometry* b,
                                                   std::vector<JWGeometry*>& outGeometries,
                                                   std::vector<int>& outCodes, double tolerance);
    /// Same as `JWGeometryOverlay2::polygonIdentityPolygon`.
    static int polygonIdentityPolygon(const JWGeometry* a, const JWGeometry* b,
                                      std::vector<JWGeometry*>& outGeometries,
                                      std::vector<int>& outCodes, double tolerance);
    /// Same as `JWGeometryOverlay2::polygonUpdatePolygon`.
    static int polygonUpdatePolygon(const JWGeometry* a, const JWGeometry* b,
                                    std::vector<JWGeometry*>& outGeometries,
                                    std::vector<int>& outCodes, bool keepBorders, double tolerance);
    /// Same as `JWGeometryOverlay2::unionPolygonsToOne` of geometries.
    static JWGeometry* unionPolygonsToOne(std::vector<JWGeometry*> geometries, double tolerance);
    /// Same as `JWGeometryOverlay2::unionPolygonsToOne` of features.
    static JWGeometry* unionPolygonsToOne(std::vector<JWFeature*> features, double tolerance);
    /// Same as `JWGeometryOverlay2::unionPolygonsToOne` of a feature class.
    static JWFeature* unionPolygonsToOne(JWFeatureClass* features, double tolerance);

  private:
    friend class JWGeometryOverlay2;
    static bool feature_attributes_clone(JWFeature* source, JWFeature& target);
};

}  // namespace jws

#endif  // JW_GEOMETRYOVERLAY_H
