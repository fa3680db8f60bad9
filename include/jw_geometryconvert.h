// SPDX-License-Identifier: MIT
//
// JWGeometryConvert: layers of one kind of geometry made of layers of another kind: lines around
// and between polygons, points in, at the centre or at the vertices of anything.
#ifndef JW_GEOMETRYCONVERT_H
#define JW_GEOMETRYCONVERT_H

#include <vector>

#include "jw_export.h"
#include "jw_feature.h"
#include "jw_report.h"

namespace jws {

/// Which points stand for a geometry.
enum enumJWPointPlace {
    /// One point, the centre of mass: of areas by area (holes taken out), of lines by length, of
    /// points their mean. It may lie beside the geometry.
    JWPointCentroid = 0,
    /// One point that belongs to the geometry: half way along lines, the member nearest to the
    /// centre of points, within areas. For an area without extent, or with less of it than
    /// coordinates resolve, the centre of its boundary.
    JWPointInside = 1,
    /// Every vertex, in order.
    JWPointVertices = 2,
};

/// Settings of a conversion beyond the fixed signatures. The defaults are those of the plain forms.
struct JWConvertOptions {
    /// The result carries all fields of the input, behind those of the conversion.
    bool keepAttributes = false;
    /// Shared lines: boundaries this near become one, layer units; 0, less and NaN mean exact.
    double tolerance = 0;
    /// Shared lines: leaves out lines with a polygon on one side only.
    bool dropOuterBoundary = false;
    /// Vertices: every n-th vertex of each line, ring or list of points, from its first one on; 1
    /// and less mean all.
    int everyNth = 1;
    /// Vertices: the least distance, layer units, from the vertex taken last; 0, less and NaN mean
    /// none.
    double leastSpacing = 0;
    /// Features read at a time; 0 or less means all at once.
    int blockSize = 0;
    /// Threads of the team; 0 or less means one per core. The result is the same for any number.
    int threads = 1;
};

/// Conversion of layers, and of single geometries, to points and lines.
///
/// Layer operations make a result layer in the order of the input. The forms with fixed arguments
/// return 1, or 0 when a layer is missing, the output is not open for writing or has fields that
/// are not those of the results, is the input itself, or a layer cannot be read or written to its
/// end; `JWReport::lastError` says which. The forms with options return the number of features
/// written, or -1 (-3 for an output with other fields) in these cases.
///
/// - An output that begins with the fields of the results, by name and type and in their order,
///   such as that of the same conversion before, keeps its geometry type and its features; results
///   come behind them.
/// - The first field, "orig_fid" as a rule, is the identifier of the feature that a result comes
///   from, the source's own number; an integer, 64 bits wide where the source needs that.
/// - Features without a geometry have no results. Features that hold another kind of geometry, or a
///   coordinate that is not finite, are left out and listed: by the report, and the first of them
///   by the last error (kind `JWErrorFeatureRejected`).
/// - The layer is read by position, each feature once, however the source numbers its features.
///   `blockSize` is the number of features worked on at a time, below 1 all, as in `_old` forms.
/// - `_mp` forms work on a team of eight threads, of which one at a time reads and one writes.
///   Results are the same, bit for bit and in the same order, for any number of threads and any
///   block size.
/// - Results are written in one transaction: after a failure the output holds none of them.
/// - No state: different layers may be converted on different threads at once.
class JW_API JWGeometryConvert {
  public:
    /// @name Polygon layers to lines
    /// @{

    /// Writes the boundaries of polygons as lines, each stretch that several polygons have in
    /// common once.
    ///
    /// A line ends where the neighbour changes, where three or more boundaries meet, and where a
    /// boundary turns back on itself; a ring without such a place is one closed line. Lines run as
    /// the first polygon in the order of the layer has them, which is also the one that "orig_fid"
    /// names, and stand in that order. Boundaries are recognised as common also where the vertices
    /// of neighbours do not match: a vertex exactly on a neighbour's edge becomes one of it.
    /// Rings may run either way.
    ///
    /// \param keepAttributes    lines carry the fields of that polygon, behind the others
    /// \param dropOuterBoundary leaves out lines with a polygon on one side only
    /// \param tolerance         layer units; vertices this near to one another become one (the
    ///     first of them), and edges are bent through vertices this near: boundaries that nearly
    ///     meet become common. A corner sharper than the tolerance may draw back by up to twice of
    ///     it. 0, less and NaN mean exact.
    ///
    /// Prints "spatial index initialize failed!" and returns 0 when memory does not suffice.
    ///
    /// Cost: O(n log n) for n vertices; the layer is in memory, and the lines.
    static int convertPolygonLayerToLineLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                              bool keepAttributes, bool dropOuterBoundary,
                                              double tolerance, int blockSize);
    static int convertPolygonLayerToLineLayer_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                 bool keepAttributes, bool dropOuterBoundary,
                                                 double tolerance, int blockSize);
    static int convertPolygonLayerToLineLayer_old(JWFeatureLayer* in, JWFeatureLayer* out,
                                                  bool keepAttributes, bool dropOuterBoundary,
                                                  double tolerance);
    /// Does the same, with the fields "left_fid" and "right_fid" behind "orig_fid": the polygons on
    /// the left and the right of each line, -1 where there is none.
    ///
    /// Polygons that overlap: a line names the polygons that it is a boundary of, not those that it
    /// runs through, and is not cut where it crosses another one. Where several polygons have the
    /// same boundary on the same side, the first of them in the order of the layer is named. A line
    /// that a polygon runs along to and fro is no boundary of it; where it is nobody's, both sides
    /// name that polygon. A ring that crosses itself has its polygon on one side all along.
    static int convertPolygonLayerToLineLayerWithAttributes(JWFeatureLayer* in, JWFeatureLayer* out,
                                                            bool keepAttributes,
                                                            bool dropOuterBoundary,
                                                            double tolerance, int blockSize);
    static int convertPolygonLayerToLineLayerWithAttributes_mp(JWFeatureLayer* in,
                                                               JWFeatureLayer* out,
                                                               bool keepAttributes,
                                                               bool dropOuterBoundary,
                                                               double tolerance, int blockSize);
    static int convertPolygonLayerToLineLayerWithAttributes_old(JWFeatureLayer* in,
                                                                JWFeatureLayer* out,
                                                                bool keepAttributes,
                                                                bool dropOuterBoundary,
                                                                double tolerance);
    /// Writes one multi-line string for each polygon feature: its rings, as `convertPolygonToLines`
    /// gives them.
    static int convertPolygonLayerToLineLayer_Simple(JWFeatureLayer* in, JWFeatureLayer* out,
                                                     bool keepAttributes, int blockSize);
    static int convertPolygonLayerToLineLayer_Simple_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                        bool keepAttributes, int blockSize);
    static int convertPolygonLayerToLineLayer_Simple_old(JWFeatureLayer* in, JWFeatureLayer* out,
                                                         bool keepAttributes);
    /// Writes shared lines with their neighbours, or each polygon's own, with all settings open and
    /// an account in `report` (may be null).
    static int convertPolygonLayerToLineLayer(JWFeatureLayer* in, JWFeatureLayer* out, bool shared,
                                              const JWConvertOptions& options,
                                              JWLayerReport* report);
    /// @}

    /// @name Layers to points
    /// @{

    /// Writes one point for each line or multi-line string: `lineToPointInside`, or `lineCentroid`.
    static int convertLineLayerToPointLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                            bool pointInside, int blockSize);
    static int convertLineLayerToPointLayer_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                               bool pointInside, int blockSize);
    static int convertLineLayerToPointLayer_old(JWFeatureLayer* in, JWFeatureLayer* out,
                                                bool pointInside);
    /// Writes the points of `lineVerticesToPoints`.
    static int convertLineLayerToPointLayerByVertices(JWFeatureLayer* in, JWFeatureLayer* out,
                                                      int everyNth, double leastSpacing,
                                                      int blockSize);
    static int convertLineLayerToPointLayerByVertices_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                         int everyNth, double leastSpacing,
                                                         int blockSize);
    static int convertLineLayerToPointLayerByVertices_old(JWFeatureLayer* in, JWFeatureLayer* out,
                                                          int everyNth, double leastSpacing);
    /// Writes one point for each multi-point: `multiPointsToPointInside`, or `multiPointsCentroid`.
    static int convertMultiPointLayerToPointLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                                  bool pointInside, int blockSize);
    static int convertMultiPointLayerToPointLayer_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                     bool pointInside, int blockSize);
    static int convertMultiPointLayerToPointLayer_old(JWFeatureLayer* in, JWFeatureLayer* out,
                                                      bool pointInside);
    /// Writes the points of `polygonCentroid`: without attributes one for each ring, with the
    /// identifier in a field "ogig_fid"; with attributes one for each feature, with the input's
    /// fields and no identifier.
    static int convertPolygonLayerToPointLayerByCentroid(JWFeatureLayer* in, JWFeatureLayer* out,
                                                         bool keepAttributes, int blockSize);
    static int convertPolygonLayerToPointLayerByCentroid_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                            bool keepAttributes, int blockSize);
    static int convertPolygonLayerToPointLayerByCentroid_old(JWFeatureLayer* in,
                                                             JWFeatureLayer* out,
                                                             bool keepAttributes);
    /// Writes the points of `polygonVerticesToPoints`; fields as for the centroids.
    static int convertPolygonLayerToPointLayerByVertices(JWFeatureLayer* in, JWFeatureLayer* out,
                                                         bool keepAttributes, int blockSize);
    static int convertPolygonLayerToPointLayerByVertices_mp(JWFeatureLayer* in, JWFeatureLayer* out,
                                                            bool keepAttributes, int blockSize);
    static int convertPolygonLayerToPointLayerByVertices_old(JWFeatureLayer* in,
                                                             JWFeatureLayer* out,
                                                             bool keepAttributes);
    /// Writes points for a layer of points, lines or polygons, also mixed, with all settings open
    /// and an account in `report` (may be null). Vertices carry their order in a field "vertex",
    /// from 0 for the first one of the feature.
    static int convertLayerToPointLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                        enumJWPointPlace place, const JWConvertOptions& options,
                                        JWLayerReport* report);
    /// @}

    /// @name Geometries to points and lines
    ///
    /// New objects belong to the caller. Single and multi-geometries are taken alike; null, empty
    /// and other kinds give null or 0. Computed relative to a first point, so that digits do not
    /// depend on where a geometry lies.
    /// @{

    /// Returns the mean of the segments' middles weighted by their length, over all members; of
    /// lines without length their first point.
    static JWRawPoint* lineCentroid(const JWGeometry* line);
    /// Returns the point at half the length, walking through the members in order.
    static JWRawPoint* lineToPointInside(const JWGeometry* line);
    /// Returns the mean of the members.
    static JWRawPoint* multiPointsCentroid(const JWGeometry* points);
    /// Returns the member nearest to the mean, the first of several.
    static JWRawPoint* multiPointsToPointInside(const JWGeometry* points);
    /// Appends centroids of a polygon and returns their number.
    ///
    /// \param weighted false: one for each ring, the exterior one first, polygon by polygon; true:
    ///     one for the whole area, holes taken out and parts together, whatever the directions of
    ///     its rings. Without an area: the centroid of the boundary.
    static int polygonCentroid(const JWGeometry* polygon, std::vector<JWRawPoint*>& points,
                               bool weighted);
    /// Appends the corners of all rings in order, closing points left out, and returns their
    /// number.
    static int polygonVerticesToPoints(const JWGeometry* polygon, std::vector<JWRawPoint*>& points);
    /// Appends vertices of a line and returns their number.
    ///
    /// \param everyNth     vertices 0, n, 2n, ... of each member; 1 and less mean all
    /// \param leastSpacing of these, the first and each that lies this far (layer units, straight)
    ///     from the one taken before it; 0, less and NaN mean all
    static int lineVerticesToPoints(const JWGeometry* line, std::vector<JWRawPoint*>& points,
                                    int everyNth, double leastSpacing);
    /// Returns the point at `length` (layer units) along a line: the first point below 0, the last
    /// beyond the end. Null for null, an empty line and NaN.
    static JWRawPoint* lineStringMiddleLengthPoint(JWLineString* line, double length);
    /// Appends the rings of a polygon as closed lines, in order, and returns their number.
    static int convertPolygonToLines(const JWGeometry* polygon, std::vector<JWLineString*>& lines);
    /// @}

  private:
    /// Reads the features at positions `first` to `last`, counted from 1, into `out`, which is
    /// given the layer's geometry type; for an empty range those that satisfy `where`. Returns
    /// their count, -1 when reading failed.
    static int getFeaturesByFIDorWHERE(JWFeatureLayer* layer, const char* where, int first,
                                       int last, JWFeatureClass& out);
    static JWRawPoint* getLineStringMiddleLengthPoint(const JWLineString* line, double length);
    /// True within a polygon by the even-odd rule and within `tolerance` of its boundary.
    static bool isPointWithInPolygon(const JWRawPoint* point, const JWGeometry* polygon,
                                     double tolerance);
};

}  // namespace jws

#endif  // JW_GEOMETRYCONVERT_H
