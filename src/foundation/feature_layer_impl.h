// SPDX-License-Identifier: MIT
//
// What a JWFeatureLayer consists of. Its operations are spread over several sources: description,
// reading, filters and writing.
#ifndef JW_FOUNDATION_FEATURE_LAYER_IMPL_H
#define JW_FOUNDATION_FEATURE_LAYER_IMPL_H

#include <ogrsf_frmts.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "foundation/api_guard.h"
#include "foundation/feature_cache.h"
#include "foundation/format_limits.h"
#include "foundation/layer_condition.h"
#include "foundation/layer_reader.h"
#include "foundation/source_handle.h"
#include "jw_feature.h"

namespace jws {

struct JWFeatureLayer::Impl {
    Impl(std::shared_ptr<JWSourceHandle> handle, OGRLayer& ogrLayer);
    ~Impl();

    /// Runs an operation through the guard and keeps the number of an error that it sets. An error
    /// from before stays the thread's last one when the operation sets none.
    template <class Result, class Body>
    Result run(const char* function, Result failure, Body&& body) {
        JWError before;
        const bool pending = JWReport::lastError().kind != JWErrorNone;
        if (pending) {
            before = JWReport::lastError();
            JWReport::clearError();
        }
        Result result = detail::guarded(function, failure, body);
        if (JWReport::lastError().kind != JWErrorNone) {
            errorNumber = JWReport::lastError().kind;
        } else if (pending) {
            JWReport::setError(before.kind, before.text, before.feature);
        }
        return result;
    }

    /// "file, layer name" for error texts.
    std::string title() const { return source->name() + ", layer " + layer.GetName(); }
    enumJWWKBGeometryType geometryType() const;
    const JWSpatialReference* referencePtr() const {
        return reference.isEmpty() ? nullptr : &reference;
    }
    /// Makes a class empty and one of this layer's type and reference.
    void prepare(JWFeatureClass& out) const;
    bool canWrite() const { return writable; }
    /// Sets the last error and returns false when the layer cannot be written.
    bool requireWritable() const;
    /// The same for reading.
    bool requireReadable();
    /// Reads the definition of the OGR layer into a new schema.
    void refreshFields();
    bool isEmptyShapefile(detail::GdalErrors& errors);
    /// Drops what was kept of features when the layer was written to.
    void noticeChanges();
    /// Reads the feature at `position` alone; false with the last error set when there is none.
    bool readAt(std::int64_t position, OGRFeatureUniquePtr& feature, detail::GdalErrors& errors);
    /// Decodes a feature; null with the last error set when its geometry is of no known kind.
    std::unique_ptr<JWFeature> decode(OGRFeature& feature) const;
    bool createField(const JWField& field);
    /// `record`: what `prepareFeature` made of the feature, or null. With `lost` values that cannot
    /// be stored are left out, and named there.
    bool createFeature(const JWFeature& feature, bool keepFID, JWFeatureRecord* record,
                       std::vector<std::string>* lost = nullptr);
    /// The layer's name as a text in SQL, without the quotes around it.
    std::string quotedName() const;
    /// False when a file database has no table for the layer.
    bool hasTable();
    /// Hands a record to the driver; false, with the reason, when it is not in the layer then.
    bool writeRecord(OGRFeature& record, std::int64_t number, const detail::GdalErrors& errors,
                     const char*& why);
    /// The geometry as the layer can store it; null, with the reason, when it cannot.
    std::unique_ptr<OGRGeometry> storableGeometry(const JWGeometry& geometry, std::string& why);
    /// The same for a layer that declares `declared`, which is left as it is.
    std::unique_ptr<OGRGeometry> geometryFor(OGRwkbGeometryType declared,
                                             const JWGeometry& geometry) const;
    /// Puts a geometry of its own into a record, in the form that the driver keeps exactly.
    void setGeometry(OGRFeature& record, std::unique_ptr<OGRGeometry> geometry) const;
    /// Gives the layer a type that holds single and multi geometries alike, where that is possible.
    bool widenGeometryType();
    bool alterGeometryType(OGRwkbGeometryType type);
    bool alterGeoPackageType(OGRwkbGeometryType type);
    /// Sets the last error and returns false.
    bool notUnderstood(const detail::LayerCondition& condition,
                       const detail::GdalErrors& errors) const;
    bool visitSatisfying(const detail::LayerCondition& condition, const JWEnvelop* rectangle,
                         const std::function<bool(OGRFeature&)>& visit, detail::GdalErrors& errors);
    bool chooseFeatures(const char* where, const JWEnvelop* rectangle, detail::GdalErrors& errors);
    bool filterFeatures(const char* where, const JWEnvelop* rectangle, detail::GdalErrors& errors);
    /// Reads the candidates of a rectangle query in position order.
    bool visitCandidates(const JWEnvelop& rectangle, bool all,
                         const std::function<void(std::unique_ptr<JWFeature>)>& visit);

    std::shared_ptr<JWSourceHandle> source;
    OGRLayer& layer;
    detail::LayerReader reader;
    const bool writable;
    JWSpatialReference reference;
    const detail::FormatLimits limits;
    detail::FeatureCache cache;
    JWFields* fields = nullptr;
    JWEnvelop envelop;
    bool envelopKnown = false;
    /// Type asked for where the OGR layer takes any.
    enumJWWKBGeometryType wantedType = JWWKBUnknown;
    /// The OGR layer's type, for threads that prepare features while another one may change it.
    std::atomic<OGRwkbGeometryType> declaredType;
    std::unique_ptr<JWSpatialIndex> index;
    std::uint64_t changesSeen = 0;
    int errorNumber = 0;
};

/// A feature in the form of the layer that it was prepared for.
struct JWFeatureRecord {
    JWFeatureRecord(OGRFeatureDefn* definition, OGRwkbGeometryType type)
        : feature(definition), declaredType(type) {}

    OGRFeature feature;
    OGRwkbGeometryType declaredType;  ///< of the layer at the time
    std::vector<std::string> lost;    ///< a sentence for each value that the format cannot hold
};

/// A feature as the driver handed it out.
struct JWSourceRecord {
    OGRFeatureUniquePtr feature;
};

}  // namespace jws

#endif  // JW_FOUNDATION_FEATURE_LAYER_IMPL_H
