// SPDX-License-Identifier: MIT
//
// Layers: fields, features and transactions.
//
// What a format cannot hold is refused before it is written, never cut: GDAL would shorten long
// texts and numbers in shapefiles and put multi-geometries into GeoPackage layers that declare
// single ones.
#include <gdal_priv.h>
#include <ogr_api.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <optional>

#include "foundation/feature_layer_impl.h"
#include "foundation/field_names.h"
#include "foundation/ogr_convert.h"
#include "foundation/ogr_feature.h"

namespace jws {

using detail::GdalErrors;

namespace {

constexpr std::size_t shapefileNameBytes = 10;
constexpr std::size_t shapefileTextBytes = 254;
constexpr int shapefileRealDigits = 24;

bool isCollectionOf(OGRwkbGeometryType multi, OGRwkbGeometryType single) {
    return multi != wkbUnknown && OGR_GT_GetCollection(wkbFlatten(single)) == multi;
}

/// The driver cuts texts, and the digits of reals from behind; integers widen their field.
bool cutsValue(const OGRFieldDefn& field, const OGRField& value) {
    if (field.GetType() == OFTString) return std::strlen(value.String) > shapefileTextBytes;
    const int width = field.GetWidth() > 0 ? field.GetWidth() : shapefileRealDigits;
    return field.GetType() == OFTReal && std::snprintf(nullptr, 0, "%.0f", value.Real) > width;
}

/// The first field of a feature whose value a shapefile would cut; null when there is none.
const char* fieldCutByShapefile(const OGRFeature& feature) {
    for (int k = 0; k < feature.GetFieldCount(); ++k) {
        const OGRFieldDefn& field = *feature.GetFieldDefnRef(k);
        if (feature.IsFieldSetAndNotNull(k) && cutsValue(field, *feature.GetRawFieldRef(k))) {
            return field.GetNameRef();
        }
    }
    return nullptr;
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

/// The driver cannot change the type of a GeoPackage layer, but its metadata table can. A table
/// that the driver has yet to create takes the type from the definition.
bool JWFeatureLayer::Impl::alterGeoPackageType(OGRwkbGeometryType type) {
    std::string name = type == wkbUnknown ? "GEOMETRY" : OGRToOGCGeomType(type);
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    std::string table;
    for (const char* c = layer.GetName(); *c != '\0'; ++c)
        table += *c == '\'' ? "''" : std::string(1, *c);
    OGRGeomFieldDefn& definition = *layer.GetLayerDefn()->GetGeomFieldDefn(0);
    const OGRwkbGeometryType before = definition.GetType();
    GdalErrors errors;
    definition.SetType(type);
    const std::string sql = "UPDATE gpkg_geometry_columns SET geometry_type_name = '" + name +
                            "' WHERE table_name = '" + table + "'";
    source->dataset().ReleaseResultSet(source->dataset().ExecuteSQL(sql.c_str(), nullptr, nullptr));
    if (errors.failed()) definition.SetType(before);
    return !errors.failed();
}

bool JWFeatureLayer::Impl::alterGeometryType(OGRwkbGeometryType type) {
    OGRFeatureDefn& definition = *layer.GetLayerDefn();
    if (layer.TestCapability(OLCAlterGeomFieldDefn) == 0 || definition.GetGeomFieldCount() != 1) {
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
    const bool shapefile = source->isDriver("ESRI Shapefile");
    const std::string name = detail::freeFieldName(
        field.getFieldName(), shapefile ? shapefileNameBytes : 0, [&](const char* candidate) {
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
        driver != nullptr ? driver->GetMetadataItem(GDAL_DMD_CREATIONFIELDDATATYPES) : nullptr);
    if (shapefile && made->GetType() == OFTString &&
        made->GetWidth() > static_cast<int>(shapefileTextBytes)) {
        made->SetWidth(static_cast<int>(shapefileTextBytes));
    }
    const int before = definition.GetFieldCount();
    const OGRErr code = layer.CreateField(made.get(), TRUE);
    ++source->state(layer).changes;
    if (code == OGRERR_NONE && !errors.failed() &&
        layer.GetLayerDefn()->GetFieldCount() == before + 1) {
        return true;
    }
    errors.report(JWErrorOutputUnwritable, title() + ": field " + name + " cannot be created",
                  source->isMemory() ? "" : source->name());
    return false;
}

bool JWFeatureLayer::createField(const JWField& field) {
    return m_impl->run("createField", false, [&] { return m_impl->createField(field); });
}

std::unique_ptr<OGRGeometry> JWFeatureLayer::Impl::geometryFor(OGRwkbGeometryType declared,
                                                               const JWGeometry& geometry) const {
    const bool any = wkbFlatten(declared) == wkbUnknown;
    return detail::geometryToOgr(geometry, any ? detail::typeToOgr(wantedType) : declared);
}

std::unique_ptr<OGRGeometry> JWFeatureLayer::Impl::storableGeometry(const JWGeometry& geometry,
                                                                    std::string& why) {
    const OGRwkbGeometryType declared = layer.GetGeomType();
    if (declared == wkbNone) {
        why = "the layer holds no geometries";
        return nullptr;
    }
    std::unique_ptr<OGRGeometry> made = geometryFor(declared, geometry);
    if (made) return made;
    made = detail::geometryToOgr(geometry, wkbUnknown);
    if (!made) {
        why = "arcs and curves cannot be stored";
    } else if (wkbFlatten(declared) != wkbUnknown &&
               !(isCollectionOf(wkbFlatten(made->getGeometryType()), declared) &&
                 widenGeometryType())) {
        why = std::string("a layer of type ") + OGRGeometryTypeToName(declared) +
              " cannot hold a " + made->getGeometryName();
        made.reset();
    }
    return made;
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
            std::unique_ptr<OGRGeometry> made = impl.geometryFor(declared, *geometry);
            if (!made) return none;
            if (!impl.source->isMemory()) made->assignSpatialReference(impl.layer.GetSpatialRef());
            record->feature.SetGeometryDirectly(made.release());
        }
        return detail::valuesToOgr(feature, record->feature).empty() ? record : none;
    });
}

bool JWFeatureLayer::Impl::createFeature(const JWFeature& feature, bool keepFID,
                                         JWFeatureRecord* prepared) {
    if (!requireWritable() || !source->beforeWrite()) return false;
    GdalErrors errors;
    const std::int64_t number = feature.getFID64();
    const std::int64_t offered = ++source->state(layer).offered;
    const auto refuse = [&](enumJWErrorKind kind, const std::string& why) {
        const std::string which = number >= 0 ? "feature " + std::to_string(number)
                                              : "new feature " + std::to_string(offered);
        errors.report(kind, title() + ", " + which + ": " + why,
                      source->isMemory() ? "" : source->name(), number);
        return false;
    };
    std::optional<OGRFeature> made;
    if (prepared == nullptr || prepared->declaredType != layer.GetGeomType()) {
        made.emplace(layer.GetLayerDefn());
        if (const JWGeometry* geometry = feature.getGeometryPtr()) {
            std::string why;
            std::unique_ptr<OGRGeometry> storable = storableGeometry(*geometry, why);
            if (!storable) return refuse(JWErrorWrongGeometryType, why);
            if (!source->isMemory()) storable->assignSpatialReference(layer.GetSpatialRef());
            made->SetGeometryDirectly(storable.release());
        }
        const std::string lost = detail::valuesToOgr(feature, *made);
        if (!lost.empty()) {
            return refuse(JWErrorFeatureRejected,
                          "the value of field " + lost + " cannot be stored");
        }
    }
    OGRFeature& record = made ? *made : prepared->feature;
    if (source->isDriver("ESRI Shapefile")) {
        if (const char* field = fieldCutByShapefile(record)) {
            return refuse(JWErrorFeatureRejected, std::string("the value of field ") + field +
                                                      " is too long for a shapefile");
        }
    }
    if (keepFID && number >= 0) record.SetFID(number);
    const OGRErr code = layer.CreateFeature(&record);
    const bool isNumbered = source->isDatabase() || source->isMemory();
    if (code == OGRERR_NONE && keepFID && number >= 0 && isNumbered && record.GetFID() != number) {
        if (layer.DeleteFeature(record.GetFID()) == OGRERR_NONE) {
            return refuse(JWErrorFeatureRejected, "the identifier is taken");
        }
    }
    if (code != OGRERR_NONE || errors.failed()) {
        return refuse(JWErrorFeatureRejected, "cannot be written");
    }
    source->afterWrite(layer, record.GetFID());
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
                                   std::shared_ptr<JWFeatureRecord> record) {
    return m_impl->run("createFeature", false,
                       [&] { return m_impl->createFeature(feature, false, record.get()); });
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
