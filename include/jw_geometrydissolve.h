// SPDX-License-Identifier: MIT
//
// JWGeometryDissolve: merges features of one layer that share attribute values.
#ifndef JW_GEOMETRYDISSOLVE_H
#define JW_GEOMETRYDISSOLVE_H

#include <string>
#include <vector>

#include "jw_export.h"
#include "jw_geometry.h"
#include "jw_report.h"

namespace jws {

class JWFeature;
class JWFeatureLayer;
class JWFields;

/// A statistic over the features of a group. Features without a value in the field are passed over,
/// and so is a real that is not a number.
enum enumJWStatistic {
    /// Sum of a numeric field. Integers are summed exactly into a 64-bit integer field; a sum that
    /// does not fit stays unset and is listed in the report. Reals are summed with compensation, in
    /// the order of the layer.
    JWStatisticSum = 0,
    /// Mean of a numeric field, a real: the sum before rounding by the number of values.
    JWStatisticMean = 1,
    /// Least and greatest value: numbers, texts (by their bytes), dates and times (as instants; a
    /// time without a zone counts as UTC). The field has the type of its source.
    JWStatisticMin = 2,
    JWStatisticMax = 3,
    /// Number of features, or of those that have a value in the field: a 64-bit integer.
    JWStatisticCount = 4,
    /// The value of the first feature, in the order of the layer, that has one. Any type.
    JWStatisticFirst = 5,
};

/// One statistic field of a dissolve.
struct JWDissolveStatistic {
    enumJWStatistic statistic = JWStatisticCount;
    /// Index of the source field; −1, for `JWStatisticCount` alone, counts features.
    int field = -1;
    /// Name of the result field; empty for "sum_<field>", "mean_<field>", …, "count".
    std::string name;
};

/// Settings of a dissolve beyond the fixed signatures. The defaults are those of the plain form.
struct JWDissolveOptions {
    /// True: one feature per group, whatever parts it has. False: one per polygon. Polygons only;
    /// points and lines always come as one feature.
    bool multipart = false;
    /// Groups equal values wherever they lie, instead of cluster by cluster. Polygons only.
    bool acrossClusters = false;
    /// Smallest absolute ring area kept in a union, square layer units; 0 and less keep every ring.
    double tolerance = 0;
    /// Has no effect: features are read some hundred at a time, and all of them stay in memory
    /// until their group is written.
    int blockSize = 0;
    /// Threads of the team; 0 or less means one per core. The result is the same for any number.
    int threads = 1;
    /// Fields behind the dissolve fields, in this order. They are those of a group: where it
    /// becomes several features, each of them has them.
    std::vector<JWDissolveStatistic> statistics;
    /// Name of a real field that receives the area of each result feature; empty for none.
    /// Polygons only.
    std::string areaField;
};

/// Dissolve of layers, and helpers that take geometries apart and put them together.
///
/// Groups. Two features belong together when for every dissolve field either both have no value
/// (unset or null) or both have equal values: integers as integers, reals as doubles (a NaN equals
/// a NaN), texts byte by byte, any other type by content.
///
/// Layer operations return the number of features written (2,147,483,647 for more), or −1 a layer
/// is missing, the output is not open for writing or is the input, a field index is out of range, a
/// layer cannot be read to its end or the run was stopped (`JWReport::lastError` says which); −3
/// the output has fields already; −2 the spatial references of input and output differ. The layers
/// are looked at in the order −1, −3, −2, and the field indexes after them; a count of fields
/// beyond the list comes before all.
///
/// - The first `fieldCount` of `fieldIndexes` are used; a count beyond the list is an error (−1). A
///   count below 1 means no field. The output gets just these fields, in the input's order, with
///   the source's name and type.
/// - Results come in the order of the layer, by the first feature of each cluster, then of each
///   group. They are the same, bit for bit, for any number of threads and any block size, and their
///   geometry does not depend on the order of the features in the layer.
/// - Features without a geometry are counted and passed over; features that hold another kind of
///   geometry or coordinates that are not finite are listed in the report as rejected, and the last
///   error tells the first of them (kind `JWErrorFeatureRejected`). So is the first feature of a
///   group of which nothing is left: without area, or without a ring that reaches the tolerance.
/// - Results are written in one transaction: after a failure the output holds no features.
/// - Layers are borrowed. Features are read once; all of them are in memory until their group is
///   written.
/// - No state: different layers may be dissolved on different threads at once.
class JW_API JWGeometryDissolve {
  public:
    /// @name Polygon layers
    /// @{

    /// Unites the features of a polygon layer that have equal values and belong to one cluster.
    ///
    /// Clusters are made by contact of envelopes alone, borders included: two features are in one
    /// cluster when their envelopes meet, or are joined by a chain of features whose envelopes
    /// meet. Features of different clusters are never merged, even with `multipart`. Without a
    /// dissolve field a whole cluster is one group.
    ///
    /// Each feature is read by the even-odd rule over all its rings, so that rings which cross or
    /// touch themselves, or run any way, come out right; a group is all that is covered by at least
    /// one of its features. Borders that two features have in common vanish whether or not their
    /// vertices match exactly; where they do not match, gaps stay gaps. A group of one feature is
    /// written too: its geometry is resolved but not measured against the tolerance. The vertices
    /// of the features keep their bits.
    ///
    /// \param multipart true: one feature per group; false: one per polygon of the united group
    ///     (parts that touch in points only are different polygons)
    /// \param tolerance smallest absolute ring area kept, square layer units, once the whole group
    ///     is united
    /// \param blockSize has no effect: features are read some hundred at a time, and all of them
    ///     stay in memory until their group is written
    /// \return see above
    ///
    /// Prints the running count of features read, "%d\n" each, and for each cluster the positions
    /// of its members from 0, "%d," each, and a line break.
    ///
    /// Cost: O(n log n) as a rule for n vertices. Edges that two features of a group run along in
    /// opposite directions cancel by hashing; only the others are computed with. The sum of signed
    /// boundaries as a union is that of winding numbers: the result is where it is positive.
    static int dissolvePolygonLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                    std::vector<int> fieldIndexes, int fieldCount, bool multipart,
                                    double tolerance, int blockSize);
    /// Does the same on a team of eight threads, of which no more work at a time than there are
    /// cores (two at least). Call it from one thread at a time for any layer.
    static int dissolvePolygonLayer_mp(JWFeatureLayer* input, JWFeatureLayer* output,
                                       std::vector<int> fieldIndexes, int fieldCount,
                                       bool multipart, double tolerance, int blockSize);
    /// Does the same with the whole layer as one block.
    static int dissolvePolygonLayer_old(JWFeatureLayer* input, JWFeatureLayer* output,
                                        std::vector<int> fieldIndexes, int fieldCount,
                                        bool multipart, double tolerance);
    /// Does the same with all settings open, statistics included, and accounts for every feature in
    /// `report` (may be null). All of `fieldIndexes` are used.
    ///
    /// The identity: `areaA`, the sum of the features' areas, is `area` + `areaOverlap` +
    /// `areaDropped`. What each group misses by adds to `residual`. The overlap is measured on the
    /// cut edges, not on the result, so that a part lost or counted twice would show.
    static int dissolvePolygonLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                    const std::vector<int>& fieldIndexes,
                                    const JWDissolveOptions& options, JWLayerReport* report);

    /// Unites the features of one group.
    ///
    /// \param featureCount the number of features used from the list, all of them if it has fewer;
    ///     null features and features that are no finite areas are skipped
    /// \param outputFields schema of the new features: its field k takes the value of the k-th
    ///     dissolve field, in the order of their indexes, of the first feature. It must outlive the
    ///     new features.
    /// \param out receives the new features, which belong to the caller
    /// \return the number appended: 0 for fewer than two features, 1 with `multipart`, otherwise
    ///     one per polygon; 0 with the last error set when a dissolve field is no field of the
    ///     first feature, or there are more of them than `outputFields` can take
    static int dissolvePolygonsWithSameAttributes(std::vector<JWFeature*> features,
                                                  int featureCount, JWFields& outputFields,
                                                  std::vector<int> fieldIndexes, int fieldCount,
                                                  std::vector<JWFeature*>& out, bool multipart,
                                                  double tolerance);
    /// @}

    /// @name Point and line layers
    ///
    /// One feature for every set of values, wherever its features lie: a multi-point or multi-line
    /// string of all their parts, in the order of the layer; parts are not merged. A layer without
    /// a dissolve field prints "Do nothing for no fields specified!\n" and gives 0; the output gets
    /// no fields then. Returns as above.
    /// @{
    static int dissolvePointLayerByAttributes(JWFeatureLayer* input, JWFeatureLayer* output,
                                              std::vector<int> fieldIndexes, int fieldCount,
                                              int blockSize);
    static int dissolveLineLayerByAttributes(JWFeatureLayer* input, JWFeatureLayer* output,
                                             std::vector<int> fieldIndexes, int fieldCount,
                                             int blockSize);
    /// Do the same with statistics, and an account in `report` (may be null).
    static int dissolvePointLayerByAttributes(JWFeatureLayer* input, JWFeatureLayer* output,
                                              const std::vector<int>& fieldIndexes,
                                              const JWDissolveOptions& options,
                                              JWLayerReport* report);
    static int dissolveLineLayerByAttributes(JWFeatureLayer* input, JWFeatureLayer* output,
                                             const std::vector<int>& fieldIndexes,
                                             const JWDissolveOptions& options,
                                             JWLayerReport* report);
    /// @}

    /// @name Parts
    /// @{

    /// Cuts a line wherever it crosses or touches itself, so that no part meets itself but for its
    /// ends, and appends the parts in the order of the line. Vertices keep their bits; a crossing
    /// is rounded once. A line that does not meet itself, closed or not, gives a copy. Repeated
    /// points are passed over. The caller owns the parts.
    /// \return their number; 0 for null, for fewer than two different points and for coordinates
    ///     that are not finite
    static int lineStringDissolve(const JWLineString* line, std::vector<JWLineString*>& parts);
    /// Appends the simple rings around the area that the even-odd rule gives to a ring: one for a
    /// simple ring, one per lobe for a ring that crosses itself; outer rings run counter-clockwise,
    /// holes clockwise. The caller owns them.
    /// \return their number; 0 for null, a ring without area, coordinates that are not finite
    static int ringDissolve(const JWRing* ring, std::vector<JWRing*>& rings);

    /// Put the parts of `a`, then those of `b`, each a single or a multi-geometry of the kind, into
    /// a new multi-geometry, owned by the caller. A null or empty operand adds nothing.
    /// \return null when an operand is of another kind, or both are null
    static JWMultiPoint* convertSingleToMulti_Point(const JWGeometry* a, const JWGeometry* b);
    static JWMultiLineString* convertSingleToMulti_LineString(const JWGeometry* a,
                                                              const JWGeometry* b);
    static JWMultiPolygon* convertSingleToMulti_Polygon(const JWGeometry* a, const JWGeometry* b);
    /// @}
};

}  // namespace jws

#endif  // JW_GEOMETRYDISSOLVE_H
