// SPDX-License-Identifier: MIT
//
// Layers: fields, features and transactions.
//
// What a format cannot hold is refused before it is written, never cut: GDAL would shorten long
// texts and numbers (format_limits.h) and put multi-geometries into GeoPackage layers that declare
// single ones.
#include <gdal_priv.h>
#include <ogr_api.h>

#include <cctype>
#include <optional>

#include "foundation/exact_wkt.h"
#include "foundation/feature_layer_impl.h"
#include "foundation/field_names.h"
#include "foundation/ogr_convert.h"
#include "foundation/ogr_feature.h"

namespace jws {

using detail::GdalErrors;

namespace {

bool isCollectionOf(OGRwkbGeometryType multi, OGRwkbGeometryType single) {
    return multi != wkbUnknown && OGR_GT_GetCollection(wkbFlatten(single)) == multi;
}

}  // namespace

bool JWFeatureLayer::setGeometryType(enumJWWKBGeometryType type) {
    Impl& impl = *m_impl;
    return impl.run("setGeometryType", false, [&] {
        if (!impl.requireWritable()) return false;
        const OGRwkbGeometryType current = wkbFlatten(impl.layer.GetGeomType());
        const OGRwkbGeometryType wanted = detail::typeToOgr(type);
        impl.wantedType = type;
        if (current == wanted || current == wkbNone || isCollectionOf(current, wanted)) return true;
        impl.alterGeometryType(wanted);
        impl.declaredType = impl.layer.GetGeomType();
        return true;
    });
}

std::string JWFeatureLayer::Impl::quotedName() const {
    std::string name;
    for (const char* c = layer.GetName(); *c != '\0'; ++c) {
        name += *c == '\'' ? "''" : std::string(1, *c);
    }
    return name;
}

/// The driver cannot change the type of a GeoPackage layer, but its metadata table can. A table
/// that the driver has yet to create takes the type from the definition.
bool JWFeatureLayer::Impl::alterGeoPackageType(OGRwkbGeometryType type) {
    std::string name = wkbFlatten(type) == wkbUnknown ? "GEOMETRY" : OGRToOGCGeomType(type);
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    OGRGeomFieldDefn& definition = *layer.GetLayerDefn()->GetGeomFieldDefn(0);
    const OGRwkbGeometryType before = definition.GetType();
    GdalErrors errors;
    definition.SetType(type);
    const std::string sql = "UPDATE gpkg_geometry_columns SET geometry_type_name = '" + name +
                            "' WHERE table_name = '" + quotedName() + "'";
    source->dataset().ReleaseResultSet(source->dataset().ExecuteSQL(sql.c_str(), nullptr, nullptr));
    if (errors.failed()) definition.SetType(before);
    return !errors.failed();
}

bool JWFeatureLayer::Impl::alterGeometryType(OGRwkbGeometryType type) {
    OGRFeatureDefn& definition = *layer.GetLayerDefn();
    type = detail::withDimensionsOf(layer.GetGeomType(), type);
    // A CSV file states no type, and its driver would gather what is written from then on.
    if (layer.TestCapability(OLCAlterGeomFieldDefn) == 0 || definition.GetGeomFieldCount() != 1 ||
        limits.isCsv()) {
        return false;
    }
    if (source->isDriver("GPKG")) return alterGeoPackageType(type);
    GdalErrors errors;
    OGRGeomFieldDefn altered(definition.GetGeomFieldDefn(0));
    altered.SetType(type);
    return layer.AlterGeomFieldDefn(0, &altered, ALTER_GEOM_FIELD_DEFN_TYPE_FLAG) == OGRERR_NONE;
}

bool JWFeatureLayer::Impl::widenGeometryType() {
    if (source->isDriver("GPKG")) {
        const bool altered = alterGeometryType(wkbUnknown);
        declaredType = layer.GetGeomType();
        return altered;
    }
    return !source->isDriver("FlatGeobuf");
}

bool JWFeatureLayer::Impl::createField(const JWField& field) {
    if (!requireWritable()) return false;
    OGRFeatureDefn& definition = *layer.GetLayerDefn();
    const std::string name = detail::freeFieldName(
        field.getFieldName(), limits.isShapefile() ? limits.shapefileNameBytes : 0,
        [&](const char* candidate) {
            for (int k = 0; k < definition.GetFieldCount(); ++k) {
                if (detail::sameName(definition.GetFieldDefn(k)->GetNameRef(), candidate))
                    return true;
            }
            return detail::sameName(layer.GetFIDColumn(), candidate) ||
                   detail::sameName(layer.GetGeometryColumn(), candidate);
        });
    GdalErrors errors;
    GDALDriver* driver = source->dataset().GetDriver();
    const std::unique_ptr<OGRFieldDefn> made = detail::fieldToOgr(
        field, name.c_str(),
        limits.fieldTypes(driver != nullptr
                              ? driver->GetMetadataItem(GDAL_DMD_CREATIONFIELDDATATYPES)
                              : nullptr));
    constexpr auto textBytes = static_cast<int>(detail::FormatLimits::shapefileTextBytes);
    if (limits.isShapefile() && made->GetType() == OFTString && made->GetWidth() > textBytes) {
        made->SetWidth(textBytes);
    }
    const int before = definition.GetFieldCount();
    const OGRErr code = layer.CreateField(made.get(), TRUE);
    ++source->state(layer).changes;
    if (code == OGRERR_NONE && !errors.failed() &&
        layer.GetLayerDefn()->GetFieldCount() == before + 1) {
        return true;
    }
    errors.report(JWErrorFormatUnfit, title() + ": field " + name + " cannot be created",
                  source->isMemory() ? "" : source->name());
    return false;
}

bool JWFeatureLayer::createField(const JWField& field) {
    return m_impl->run("createField", false, [&] { return m_impl->createField(field); });
}

std::unique_ptr<OGRGeometry> JWFeatureLayer::Impl::geometryFor(OGRwkbGeometryType declared,
                                                               const JWGeometry& geometry) const {
    const bool any = wkbFlatten(declared) == wkbUnknown;
    const OGRwkbGeometryType type = any ? detail::typeToOgr(wantedType) : declared;
    return detail::geometryToOgr(geometry, detail::withDimensionsOf(declared, type));
}

std::unique_ptr<OGRGeometry> JWFeatureLayer::Impl::storableGeometry(const JWGeometry& geometry,
                                                                    std::string& why) {
    const OGRwkbGeometryType declared = layer.GetGeomType();
    if (declared == wkbNone) {
        why = "the layer holds no geometries";
        return nullptr;
    }
    if (const char* refusal = limits.refusalOf(geometry)) {
        why = refusal;
        return nullptr;
    }
    std::unique_ptr<OGRGeometry> made = geometryFor(declared, geometry);
    if (made) return made;
    made = detail::geometryToOgr(geometry, detail::withDimensionsOf(declared, wkbUnknown));
    if (!made) {
        why = "arcs, curves and holes without an outer ring cannot be stored";
    } else if (wkbFlatten(declared) != wkbUnknown &&
               !(isCollectionOf(wkbFlatten(made->getGeometryType()), declared) &&
                 widenGeometryType())) {
        why = std::string("a layer of type ") + OGRGeometryTypeToName(declared) +
              " cannot hold a " + made->getGeometryName();
        made.reset();
    }
    return made;
}

void JWFeatureLayer::Impl::setGeometry(OGRFeature& record,
                                       std::unique_ptr<OGRGeometry> geometry) const {
    if (limits.isCsv()) geometry = detail::asExactText(*geometry);
    if (!source->isMemory()) geometry->assignSpatialReference(layer.GetSpatialRef());
    record.SetGeometryDirectly(geometry.release());
}

std::shared_ptr<JWFeatureRecord> JWFeatureLayer::prepareFeature(const JWFeature& feature) const {
    const Impl& impl = *m_impl;
    return detail::guarded("prepareFeature", std::shared_ptr<JWFeatureRecord>(), [&] {
        const std::shared_ptr<JWFeatureRecord> none;
        const OGRwkbGeometryType declared = impl.declaredType;
        auto record = std::make_shared<JWFeatureRecord>(impl.layer.GetLayerDefn(), declared);
        const GdalErrors errors;
        if (const JWGeometry* geometry = feature.getGeometryPtr()) {
            if (declared == wkbNone) return none;
            if (impl.limits.refusalOf(*geometry) != nullptr) return none;
            std::unique_ptr<OGRGeometry> made = impl.geometryFor(declared, *geometry);
            if (!made) return none;
            impl.setGeometry(record->feature, std::move(made));
        }
        detail::valuesToOgr(feature, impl.limits, record->feature, record->lost);
        return record;
    });
}

/// Databases make the table of a new layer with its first feature. Where that fails, the feature is
/// not to blame.
bool JWFeatureLayer::Impl::hasTable() {
    if (!source->isDriver("GPKG") && !source->isDriver("SQLite")) return true;
    const GdalErrors quiet;
    const std::string sql = "SELECT name FROM sqlite_master WHERE name = '" + quotedName() + "'";
    OGRLayer* rows = source->dataset().ExecuteSQL(sql.c_str(), nullptr, nullptr);
    const bool found = rows != nullptr && rows->GetFeatureCount() > 0;
    source->dataset().ReleaseResultSet(rows);
    return found;
}

bool JWFeatureLayer::Impl::writeRecord(OGRFeature& record, std::int64_t number,
                                       const GdalErrors& errors, const char*& why) {
    if (number >= 0) record.SetFID(number);
    const OGRErr code = layer.CreateFeature(&record);
    const bool numbered = source->isDatabase() || source->isMemory();
    if (code == OGRERR_NONE && number >= 0 && numbered && record.GetFID() != number &&
        layer.DeleteFeature(record.GetFID()) == OGRERR_NONE) {
        why = "the identifier is taken";
        return false;
    }
    why = "cannot be written";
    // LIBKML calls polygons that cross themselves failures, but writes them.
    return code == OGRERR_NONE && (!errors.failed() || source->isDriver("LIBKML"));
}

bool JWFeatureLayer::Impl::createFeature(const JWFeature& feature, bool keepFID,
                                         JWFeatureRecord* prepared,
                                         std::vector<std::string>* lost) {
    if (!requireWritable() || !source->beforeWrite()) return false;
    GdalErrors errors;
    const std::int64_t number = feature.getFID64();
    const std::int64_t offered = ++source->state(layer).offered;
    const auto titled = [&](const std::string& text) {
        return title() +
               (number >= 0 ? ", feature " + std::to_string(number)
                            : ", new feature " + std::to_string(offered)) +
               ": " + text;
    };
    const auto refuse = [&](enumJWErrorKind kind, const std::string& why) {
        errors.report(kind, titled(why), source->isMemory() ? "" : source->name(), number);
        return false;
    };
    std::optional<JWFeatureRecord> made;
    if (prepared == nullptr || prepared->declaredType != layer.GetGeomType()) {
        made.emplace(layer.GetLayerDefn(), layer.GetGeomType());
        prepared = &*made;
        if (const JWGeometry* geometry = feature.getGeometryPtr()) {
            std::string why;
            std::unique_ptr<OGRGeometry> storable = storableGeometry(*geometry, why);
            if (!storable) {
                const bool fits = limits.refusalOf(*geometry) == nullptr;
                return refuse(fits ? JWErrorWrongGeometryType : JWErrorFeatureRejected, why);
            }
            setGeometry(made->feature, std::move(storable));
        }
        detail::valuesToOgr(feature, limits, made->feature, made->lost);
    }
    if (!prepared->lost.empty() && lost == nullptr) {
        return refuse(JWErrorFeatureRejected, prepared->lost.front());
    }
    const char* why = nullptr;
    if (!writeRecord(prepared->feature, keepFID ? number : -1, errors, why)) {
        if (hasTable()) return refuse(JWErrorFeatureRejected, why);
        errors.report(JWErrorFormatUnfit, title() + ": its table cannot be made", source->name());
        return false;
    }
    for (const std::string& loss : prepared->lost) lost->push_back(titled(loss));
    source->afterWrite(layer, prepared->feature.GetFID());
    envelopKnown = false;
    return true;
}

bool JWFeatureLayer::createFeature(const JWFeature* feature, bool keepFID) {
    return m_impl->run("createFeature", false, [&] {
        if (feature != nullptr) return m_impl->createFeature(*feature, keepFID, nullptr);
        JWReport::setError(JWErrorInvalidArgument, m_impl->title() + ": the feature is missing");
        return false;
    });
}

bool JWFeatureLayer::createFeature(const JWFeature& feature,
                                   std::shared_ptr<JWFeatureRecord> record,
                                   std::vector<std::string>* lost) {
    return m_impl->run("createFeature", false,
                       [&] { return m_impl->createFeature(feature, false, record.get(), lost); });
}

bool JWFeatureLayer::createFeatures(const JWFeatureClass* features, bool keepFID) {
    Impl& impl = *m_impl;
    return impl.run("createFeatures", false, [&] {
        if (features == nullptr) {
            JWReport::setError(JWErrorInvalidArgument, impl.title() + ": the features are missing");
            return false;
        }
        if (!impl.requireWritable() || !impl.source->begin()) return false;
        bool complete = true;
        for (int i = 0; i < features->getFeatureCount(); ++i) {
            complete = impl.createFeature(*features->getFeatureAt(i), keepFID, nullptr) && complete;
        }
        return impl.source->commit() && complete;
    });
}

bool JWFeatureLayer::clearAll() {
    Impl& impl = *m_impl;
    return impl.run("clearAll", false, [&] {
        if (!impl.requireWritable() || !impl.requireReadable()) return false;
        GdalErrors errors;
        std::vector<std::int64_t> fids;
        const auto collect = [&fids](std::int64_t, OGRFeature& feature) {
            fids.push_back(feature.GetFID());
        };
        if (!impl.reader.visitAll(impl.source->isDatabase(), collect, errors)) return false;
        if (!impl.source->begin()) return false;
        bool deleted = impl.layer.TestCapability(OLCDeleteFeature) != 0 || fids.empty();
        for (std::size_t i = 0; deleted && i < fids.size(); ++i) {
            deleted = impl.layer.DeleteFeature(fids[i]) == OGRERR_NONE;
        }
        ++impl.source->state(impl.layer).changes;
        impl.envelopKnown = false;
        impl.envelop.setInvalid();
        if (deleted && !errors.failed()) {
            if (impl.reader.isChosen()) impl.reader.choose({});
            return impl.source->commit();
        }
        errors.report(JWErrorOutputUnwritable, impl.title() + ": features cannot be deleted", "");
        impl.source->rollback();
        return false;
    });
}

bool JWFeatureLayer::beginTransaction() {
    return m_impl->run("beginTransaction", false, [this] { return m_impl->source->begin(); });
}

bool JWFeatureLayer::commitTransaction() {
    return m_impl->run("commitTransaction", false, [this] { return m_impl->source->commit(); });
}

bool JWFeatureLayer::rollbackTransaction() {
    m_impl->envelopKnown = false;
    return m_impl->run("rollbackTransaction", false, [this] { return m_impl->source->rollback(); });
}

bool JWFeatureLayer::flush() {
    return m_impl->run("flush", false, [this] { return m_impl->source->flush(); });
}

}  // namespace jws
