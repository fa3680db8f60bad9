// SPDX-License-Identifier: MIT
//
// Layers: opening, closing and description.
#include <climits>

#include "foundation/feature_layer_impl.h"
#include "foundation/ogr_convert.h"
#include "foundation/ogr_envelope.h"
#include "foundation/ogr_feature.h"

namespace jws {

namespace {

/// GeoPackages name a system for layers without one: "Undefined geographic SRS" and the like.
bool isPlaceholder(const JWSourceHandle& source, const OGRSpatialReference& system) {
    const char* name = system.GetName();
    return source.isDriver("GPKG") && name != nullptr && STARTS_WITH(name, "Undefined ");
}

JWSpatialReference referenceOf(JWSourceHandle& source, OGRLayer& layer) {
    if (const auto& given = source.state(layer).reference) return *given;
    JWSpatialReference reference;
    const OGRSpatialReference* system = layer.GetSpatialRef();
    if (system != nullptr && !isPlaceholder(source, *system)) reference.setOGRSpatialRef(system);
    return reference;
}

}  // namespace

JWLayer::~JWLayer() = default;

JWFeatureLayer::Impl::Impl(std::shared_ptr<JWSourceHandle> handle, OGRLayer& ogrLayer)
    : source(std::move(handle)),
      layer(ogrLayer),
      reader(source, ogrLayer),
      writable(source->isUpdate() && layer.TestCapability(OLCSequentialWrite) != 0),
      reference(referenceOf(*source, ogrLayer)),
      limits(source->driver(), referencePtr()),
      envelop(JWEnvelop::invalid()),
      declaredType(layer.GetGeomType()),
      changesSeen(source->state(ogrLayer).changes) {
    refreshFields();
}

JWFeatureLayer::Impl::~Impl() {
    if (fields != nullptr) fields->releaseReference();
}

void JWFeatureLayer::Impl::refreshFields() {
    JWFields* fresh = detail::fieldsFromOgr(*layer.GetLayerDefn()).release();
    fresh->setReference();
    JWFields::destroyFields(fresh);  // goes with its last reference
    if (fields != nullptr) fields->releaseReference();
    fields = fresh;
    cache.clear();
}

bool JWFeatureLayer::Impl::requireWritable() const {
    if (canWrite()) return true;
    JWReport::setError(JWErrorOutputUnwritable, title() + ": is not open for writing");
    return false;
}

bool JWFeatureLayer::Impl::requireReadable() {
    if (!source->isWriteOnly(layer)) return true;
    JWReport::setError(JWErrorInvalidArgument,
                       title() + ": format " + source->driver() +
                           " can be read only after the new file was closed");
    return false;
}

void JWFeatureLayer::Impl::noticeChanges() {
    const std::uint64_t changes = source->state(layer).changes;
    if (changes == changesSeen) return;
    changesSeen = changes;
    cache.clear();
    index.reset();
}

JWFeatureLayer::JWFeatureLayer(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {
    m_name = m_impl->layer.GetName();
}

JWFeatureLayer::~JWFeatureLayer() = default;

bool JWFeatureLayer::destroyFeatureLayer(JWFeatureLayer* layer) {
    if (layer == nullptr) return false;
    return detail::guarded("destroyFeatureLayer", false, [layer] {
        std::unique_ptr<JWFeatureLayer> owned(layer);
        std::shared_ptr<JWSourceHandle> source = owned->m_impl->source;
        const bool wrote = owned->m_impl->canWrite();
        owned.reset();
        const bool last = source.use_count() == 1;
        const bool flushed = last || !wrote || source->flush();
        return JWSourceHandle::release(source) && flushed;
    });
}

const char* JWFeatureLayer::getDataSourceName() const { return m_impl->source->name().c_str(); }

const char* JWFeatureLayer::getDriverName() const { return m_impl->source->driver().c_str(); }

enumJWDataDriverType JWFeatureLayer::getDriverType() const {
    return m_impl->source->isMemory() ? JWDriverMemory : JWDriverFile;
}

bool JWFeatureLayer::isUpdateMode() const { return m_impl->canWrite(); }

bool JWFeatureLayer::isOnLayerOf(const JWFeatureLayer& other) const {
    return &m_impl->layer == &other.m_impl->layer;
}

bool JWFeatureLayer::isOfSourceOf(const JWFeatureLayer& other) const {
    return m_impl->source == other.m_impl->source;
}

enumJWWKBGeometryType JWFeatureLayer::getGeometryType() const { return m_impl->geometryType(); }

enumJWWKBGeometryType JWFeatureLayer::Impl::geometryType() const {
    const enumJWWKBGeometryType type = detail::typeFromOgr(layer.GetGeomType());
    return type == JWWKBUnknown ? wantedType : type;
}

const JWSpatialReference* JWFeatureLayer::getLayerSpatialRefPtr() const {
    return m_impl->referencePtr();
}

/// Its header states an envelope also when there is nothing in it: (0 0, 0 0), or that of what was
/// deleted.
bool JWFeatureLayer::Impl::isEmptyShapefile(detail::GdalErrors& errors) {
    const bool mayBe = source->isUpdate() || envelop == JWEnvelop(0, 0, 0, 0);
    if (!mayBe || !source->isDriver("ESRI Shapefile")) return false;
    OGRFeatureUniquePtr first;
    return reader.readAt(0, first, errors) == detail::LayerReader::Outcome::End;
}

JWEnvelop JWFeatureLayer::getLayerEnvelop() const {
    Impl& impl = *m_impl;
    if (impl.envelopKnown || impl.source->isWriteOnly(impl.layer)) return impl.envelop;
    return impl.run("getLayerEnvelop", JWEnvelop::invalid(), [&] {
        if (impl.reader.isRestricted()) {
            const_cast<JWFeatureLayer*>(this)->updateEnvelop();
            return impl.envelop;
        }
        detail::GdalErrors errors;
        if (impl.layer.TestCapability(OLCFastGetExtent) == 0) impl.reader.loseCursor();
        OGREnvelope extent;
        impl.envelop = JWEnvelop::invalid();
        if (impl.layer.GetExtent(&extent, TRUE) == OGRERR_NONE && extent.IsInit() != 0) {
            impl.envelop.set(extent.MinX, extent.MinY, extent.MaxX, extent.MaxY);
            if (impl.isEmptyShapefile(errors)) impl.envelop = JWEnvelop::invalid();
        }
        impl.envelopKnown = true;
        return impl.envelop;
    });
}

bool JWFeatureLayer::updateEnvelop() {
    Impl& impl = *m_impl;
    return impl.run("updateEnvelop", false, [&] {
        if (!impl.requireReadable()) return false;
        detail::GdalErrors errors;
        JWEnvelop envelop = JWEnvelop::invalid();
        const auto grow = [&envelop](std::int64_t, OGRFeature& feature) {
            envelop.inflates_to_contain(detail::envelopOfOgr(feature));
        };
        if (!impl.reader.visitAll(true, grow, errors)) return false;
        impl.envelop = envelop;
        impl.envelopKnown = true;
        return true;
    });
}

JWFields* JWFeatureLayer::getFieldsDefnPtr() const { return m_impl->fields; }

void JWFeatureLayer::updateFieldsDefnRef() {
    m_impl->run("updateFieldsDefnRef", false, [this] {
        m_impl->refreshFields();
        return true;
    });
}

int JWFeatureLayer::getErrNo() const { return m_impl->errorNumber; }

void JWFeatureLayer::clearErrNo() { m_impl->errorNumber = 0; }

const JWSpatialIndex* JWFeatureLayer::getSpatialIndexPtr() const {
    m_impl->noticeChanges();
    return m_impl->index.get();
}

}  // namespace jws
