// SPDX-License-Identifier: MIT
//
// JWFeatureLayer: a layer of a data source, read and written feature by feature, in blocks by
// position, by attribute filter and by rectangle.
//
// Positions and numbers. A source numbers its features as it pleases: from 0, from 1, with gaps,
// beyond 32 bits. `JWFeature::getFID` is that number. A position is the ordinal of a feature, from
// 0, in the order in which the source hands its features out; blocks and `getFeature(i)` use
// positions, so that every feature is read exactly once whatever the numbering. Layers in memory
// number from 0, as shapefiles do; GeoPackages from 1.
#ifndef JW_FEATURE_LAYER_H
#define JW_FEATURE_LAYER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jw_codes.h"
#include "jw_export.h"
#include "jw_feature_class.h"
#include "jw_feature_field.h"
#include "jw_geometry.h"

namespace jws {

class JWSpatialIndex;
class JWSpatialReference;
/// A feature in the form that a layer stores it in; see `JWFeatureLayer::prepareFeature`.
struct JWFeatureRecord;
/// A feature in the form that a layer read it in; see `JWFeatureLayer::readAhead`.
struct JWSourceRecord;

/// A feature that was read and perhaps not decoded yet: one of the two is null.
struct JWReadFeature {
    std::shared_ptr<const JWFeature> feature;
    std::shared_ptr<JWSourceRecord> record;
};

/// Base of all layers: a name and a kind.
class JW_API JWLayer {
  public:
    virtual ~JWLayer();
    virtual enumJWLayerType getLayerType() const = 0;
    const char* getLayerName() const { return m_name.c_str(); }
    /// Name for people; the layer's name until another one is set.
    const char* getAlias() const { return m_alias.empty() ? m_name.c_str() : m_alias.c_str(); }
    void setAlias(const char* alias) { m_alias = alias ? alias : ""; }

  protected:
    std::string m_name;
    std::string m_alias;
};

/// A layer of features. Not thread-safe: one thread at a time, also among layers of one source.
///
/// Operations that fail answer their failure value and set the thread's last error and the layer's
/// error number. A source that is damaged or cut short makes reading fail; it never ends early in
/// silence. Files of formats that are written as text or in one go (GeoJSON, CSV, GML, KML,
/// FlatGeobuf) can be read only after the new file was closed: until then `getFeatureCount` counts
/// what was written, and reading fails.
class JW_API JWFeatureLayer : public JWLayer {
  public:
    ~JWFeatureLayer() override;
    JWFeatureLayer(const JWFeatureLayer&) = delete;
    JWFeatureLayer& operator=(const JWFeatureLayer&) = delete;
    /// Closes and deletes a layer; null gives false. A transaction that is still open when the
    /// source closes with it is rolled back. Returns false, with the last error set, then and when
    /// data could not be written.
    static bool destroyFeatureLayer(JWFeatureLayer* layer);

    // --- description -----------------------------------------------------------------------------
    enumJWLayerType getLayerType() const override { return JWLayerFeature; }
    const char* getDataSourceName() const;
    const char* getDriverName() const;
    enumJWDataDriverType getDriverType() const;
    /// True when the layer can be written.
    bool isUpdateMode() const;
    /// True when both objects are on one layer of one opened source: what is written to one of them
    /// is read from the other.
    bool isOnLayerOf(const JWFeatureLayer& other) const;
    /// True when both stand on layers of the same opened source, which one thread at a time may
    /// use.
    bool isOfSourceOf(const JWFeatureLayer& other) const;
    /// Declared geometry type; Z and M variants count as their plain type.
    enumJWWKBGeometryType getGeometryType() const;
    /// Declares the geometry type of an output layer. Takes effect where the format can still
    /// change it; a layer of a multi type stays what it is when its single type is asked for, since
    /// it holds both. Features of another type are adapted when they are written (single to multi,
    /// a multi of one member to single). A GeoPackage layer of a single type that is given a
    /// multi-geometry becomes one of any geometry. Returns false when the layer is not open for
    /// writing.
    bool setGeometryType(enumJWWKBGeometryType type);
    /// The layer's spatial reference, null when it has none; owned by the layer. The "undefined"
    /// systems of GeoPackages count as none.
    const JWSpatialReference* getLayerSpatialRefPtr() const;
    const JWSpatialReference* getSpatialReference() const { return getLayerSpatialRefPtr(); }
    /// Envelope of the whole layer as the source states it when first asked, after `updateEnvelop`
    /// as counted there; asked anew after features were written. Invalid when empty or not known.
    JWEnvelop getLayerEnvelop() const;
    /// Recomputes the envelope from the geometries, in one pass; as in `JWGeometry::updateEnvelop`,
    /// a NaN coordinate is skipped. Returns false when it fails.
    bool updateEnvelop();
    /// Schema of the layer, shared with its features; never null. It belongs to the layer and lives
    /// until the next `updateFieldsDefnRef`, or as long as a feature refers to it.
    JWFields* getFieldsDefnPtr() const;
    /// Makes a new schema object after fields were added; features read before keep the former one.
    void updateFieldsDefnRef();
    /// Kind of the layer's last failure (`enumJWErrorKind`), 0 when there was none since
    /// `clearErrNo`.
    int getErrNo() const;
    void clearErrNo();

    // --- reading ---------------------------------------------------------------------------------
    /// Number of features, at most 2,147,483,647; −1 when the source cannot be read.
    int getFeatureCount();
    std::int64_t getFeatureCount64();
    /// Largest identifier in use, −1 for an empty layer. Cost: one look at the source's index where
    /// it has one (GeoPackage), one pass without geometries otherwise.
    std::int64_t getMaximumFID();
    /// Reads the feature at position `i` (from 0). The caller destroys it with
    /// `JWFeature::destroyFeature`. Null with the last error set when there is none or it cannot be
    /// read. Cost: the first access out of order costs one pass over the layer; formats without
    /// random access (CSV, GML, KML) are read on from the last position, or from the start for one
    /// before it.
    JWFeature* getFeature(int i);
    /// Geometry of the feature at position `i`, owned by the caller; null when it has none.
    JWGeometry* getGeometry(int i);
    /// The feature at position `i` as `getFeature` gives it, shared with the layer's cache: reading
    /// it again decodes nothing as long as the cache holds it, and the holder keeps it alive.
    std::shared_ptr<const JWFeature> getSharedFeature(int i);
    /// Bound of the cache of decoded features, bytes; 256 MiB by default. Least recently used ones
    /// go first. 0 switches it off.
    void setCacheLimit(std::size_t bytes);

    /// Reads the features at positions `first` to `first + count - 1` into `out`, which is cleared
    /// first, and returns how many there were; −1 with the last error set when reading failed.
    /// Consecutive calls continue one cursor: reading a layer in blocks is one pass.
    int getFeaturesByPosition(std::int64_t first, std::int64_t count, JWFeatureClass& out);
    /// Visits the features from position `first` on without copying: fills `feature` with the next
    /// one, entered into the cache, false at the end or on failure (last error set then).
    bool getNextSharedFeature(std::int64_t position, std::shared_ptr<const JWFeature>& feature);

    /// Appends the features at positions `first` to `first + count - 1`, fewer at the end, to
    /// `features`: those that the cache holds, others as records. Decoding these with
    /// `decodeFeature` is left to the caller, who may have many threads for it; with `decode` it is
    /// done here. Consecutive calls continue one cursor. Returns false with the last error set when
    /// reading failed; what was read before stays in `features`.
    bool readAhead(std::int64_t first, std::int64_t count, bool decode,
                   std::vector<JWReadFeature>& features);
    /// Reads the feature at `position` alone in the same way. Returns false with the last error set
    /// when there is none or it cannot be read.
    bool readFeature(std::int64_t position, JWReadFeature& feature);
    /// Decodes a feature that was read as a record. Any number of threads may do this, each with
    /// features of its own, and while another one reads. Returns false with the last error set when
    /// its geometry is of no known kind.
    bool decodeFeature(JWReadFeature& feature) const;
    /// Enters a decoded feature into the cache, unless it holds that position already. Returns
    /// false when the cache had no room for it, or let others go.
    bool keepFeature(std::int64_t position, std::shared_ptr<const JWFeature> feature);

    /// Reads the features that satisfy a condition (a WHERE clause in the source's own dialect)
    /// into `out`, which is cleared first unless `append`. "fid" names the identifier in every
    /// source, also beside an attribute of that name. White space at the end is ignored; null and
    /// empty conditions take every feature. Returns their count, −1 with the last error set, and
    /// nothing added, when the condition is not understood or reading failed.
    int getFeaturesByAttributeFilter(const char* where, JWFeatureClass& out, bool append = false);
    /// Reads the features that stand in `relation` to `rectangle`, geometry first: 1 equal,
    /// 2 disjoint, 6 the geometry contains the rectangle, 7 it lies within, 8 (and 3 to 5) it meets
    /// the rectangle. Borders belong to geometry and rectangle; equal ones also contain, lie within
    /// and meet. Features without a geometry or with an empty one stand in no relation. They come
    /// in the order of their positions. `out` is cleared first unless `append`. Returns their
    /// count, −1 on failure, and for an invalid rectangle or a relation that is none of these.
    int getFeaturesByEnvelopFilter(const JWEnvelop& rectangle, enumJWSpatialRelation relation,
                                   JWFeatureClass& out, bool append = false);
    /// Leaves only the features that satisfy a condition (as above; null or empty for all) and meet
    /// a rectangle (null for everywhere; else only features with a geometry do): from now on the
    /// layer object has these, in their order, at positions from 0 on; its envelope is theirs, and
    /// what is asked by condition or rectangle is asked of them. The source is not changed. May be
    /// repeated. Sources with an index keep 8 bytes for each feature that is left, others test each
    /// one while they read. Returns false with the last error set when the condition is not
    /// understood, the rectangle is not valid or reading failed, and for a condition on a database
    /// view whose rows have no identifier, or share one. Features written afterwards may or may not
    /// be seen: it is for layers that are read. Cost: one pass.
    bool restrictTo(const char* where, const JWEnvelop* rectangle = nullptr);
    /// Builds the layer's spatial index over positions, in memory; the source is not changed.
    /// Rectangle queries use it until the layer is written to. Cost: one pass without attributes.
    bool createSpatialIndex();
    const JWSpatialIndex* getSpatialIndexPtr() const;

    // --- writing ---------------------------------------------------------------------------------
    /// Adds a field. A name that is taken (ignoring case), reserved by the driver or too long for
    /// it is made unique and short enough ("name", "name_1"); `getFieldsDefnPtr()` after
    /// `updateFieldsDefnRef()` has the name as it is. A type that the driver lacks is stored as the
    /// nearest one that loses nothing (64-bit integers as text at worst); CSV files have all but
    /// integers as text, in exact digits and ISO 8601. Returns false with the
    /// last error set on failure.
    bool createField(const JWField& field);
    /// Writes one feature, by field position: its field k goes to the layer's field k, converted
    /// where the types differ. With `keepFID` it keeps its identifier in databases and in memory
    /// (formats without stored identifiers number on), otherwise it gets a fresh one. Refused are
    /// features that could be stored with a loss only: a geometry of a kind that the layer does not
    /// hold, or with holes but an empty outer ring; a coordinate that is not finite (not in
    /// memory), or outside of longitudes and latitudes in KML without a projected reference; a
    /// number, text or date too large for its field, in a shapefile also a real below all of 15
    /// decimals, NaN where the format has none; an identifier that is taken. Returns false with the
    /// last error set then; the feature is unchanged either way.
    ///
    /// Left to the formats: GML and KML write 15 digits, GeoJSON 15 decimals, shapefiles
    /// the decimals of the field, or 15, of reals (coordinates exactly); shapefiles drop blanks
    /// around texts and know no empty text, MapInfo and GMT know no missing value and store 0 or ""
    /// for it. Databases, FlatGeobuf, CSV and memory keep the bits of coordinates and reals.
    bool createFeature(const JWFeature* feature, bool keepFID = false);
    /// Converts a feature into the layer's own form, so that `createFeature` with it has less left
    /// to do. Any number of threads may do this while one of them writes. Returns null where that
    /// cannot be done ahead; `createFeature` then does it all, or says why it cannot.
    std::shared_ptr<JWFeatureRecord> prepareFeature(const JWFeature& feature) const;
    /// The same as `createFeature(&feature)`, with what `prepareFeature` made of it; `record` may
    /// be null and is used up. With `lost` a value that cannot be stored does not refuse the
    /// feature: it stays unset, and a sentence about it is added to `lost`.
    bool createFeature(const JWFeature& feature, std::shared_ptr<JWFeatureRecord> record,
                       std::vector<std::string>* lost = nullptr);
    /// Writes all features of a class in order, in one transaction. Returns false when one of them
    /// was refused (the others are written).
    bool createFeatures(const JWFeatureClass* features, bool keepFID = false);
    /// Deletes all features. Returns false when the layer cannot be written.
    bool clearAll();
    /// One transaction around many writes, for all layers of the source; calls nest. Writes outside
    /// of one are gathered, and stored at the latest by `flush`, by the next transaction and when
    /// the source closes. In formats without transactions `rollbackTransaction` deletes what was
    /// written since `beginTransaction`, and answers false where the format cannot delete, or
    /// has no room left for it (shapefiles are copied). It ends the outermost transaction, whatever
    /// the depth. Without one begun, `commitTransaction` stores what was gathered and
    /// `rollbackTransaction` does nothing; a layer that is not open for writing answers true to all
    /// three.
    bool beginTransaction();
    /// Returns false with the last error set when data could not be written (disk full).
    bool commitTransaction();
    bool rollbackTransaction();
    /// Writes buffered data out. Returns false with the last error set on failure.
    bool flush();

  private:
    friend class JWDataSource;
    struct Impl;
    explicit JWFeatureLayer(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

}  // namespace jws

#endif  // JW_FEATURE_LAYER_H
