// SPDX-License-Identifier: MIT
//
// Data sources: opening, creating and closing files and memory stores, and their layers.
#include "jw_datasource.h"

#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include "foundation/feature_layer_impl.h"
#include "foundation/ogr_convert.h"
#include "foundation/source_check.h"

namespace jws {

using detail::GdalErrors;

namespace {

bool hasCapability(GDALDriver& driver, const char* name) {
    const char* value = driver.GetMetadataItem(name);
    return value != nullptr && EQUAL(value, "YES");
}

bool writesFilesEnding(GDALDriver& driver, const char* ending) {
    const char* endings = driver.GetMetadataItem(GDAL_DMD_EXTENSIONS);
    if (endings == nullptr || driver.GetMetadataItem(GDAL_DMD_CONNECTION_PREFIX) != nullptr ||
        !hasCapability(driver, GDAL_DCAP_VECTOR) || !hasCapability(driver, GDAL_DCAP_CREATE) ||
        !hasCapability(driver, GDAL_DCAP_CREATE_LAYER)) {
        return false;
    }
    const CPLStringList list(CSLTokenizeString(endings));
    return list.FindString(ending) >= 0;
}

bool exists(const char* path) {
    VSIStatBufL stat;
    return VSIStatExL(path, &stat, VSI_STAT_EXISTS_FLAG) == 0;
}

OGRLayer* findLayer(GDALDataset& dataset, const char* name) {
    for (int i = 0; i < dataset.GetLayerCount(); ++i) {
        if (std::string(dataset.GetLayer(i)->GetName()) == name) return dataset.GetLayer(i);
    }
    return dataset.GetLayerByName(name);
}

OGRLayer* firstWithGeometry(GDALDataset& dataset) {
    for (int i = 0; i < dataset.GetLayerCount(); ++i) {
        if (dataset.GetLayer(i)->GetGeomType() != wkbNone) return dataset.GetLayer(i);
    }
    return dataset.GetLayerCount() > 0 ? dataset.GetLayer(0) : nullptr;
}

/// Defaults that lose nothing where the driver's own would: letters in shapefiles, geometries in
/// tables of text.
CPLStringList layerOptions(const JWSourceHandle& source, enumJWWKBGeometryType type,
                           const std::vector<std::string>& options) {
    CPLStringList list;
    for (const std::string& option : options) list.AddString(option.c_str());
    if (source.isDriver("ESRI Shapefile") && list.FetchNameValue("ENCODING") == nullptr) {
        list.SetNameValue("ENCODING", "UTF-8");
    }
    if (source.isDriver("CSV") && type != JWWKBNone && list.FetchNameValue("GEOMETRY") == nullptr) {
        list.SetNameValue("GEOMETRY", "AS_WKT");
    }
    // Numbers in text fields would be quoted otherwise, and reals are text (createField).
    if (source.isDriver("CSV") && list.FetchNameValue("STRING_QUOTING") == nullptr) {
        list.SetNameValue("STRING_QUOTING", "IF_NEEDED");
    }
    return list;
}

}  // namespace

JWDataSource::JWDataSource(std::shared_ptr<JWSourceHandle> handle) : m_handle(std::move(handle)) {}

JWDataSource::~JWDataSource() = default;

JWDataSource* JWDataSource::open(const char* path, bool update) {
    return detail::guarded("JWDataSource::open", static_cast<JWDataSource*>(nullptr), [&] {
        JWDataSource* const none = nullptr;
        if (path == nullptr || *path == '\0') {
            JWReport::setError(JWErrorInvalidArgument, "the source to open has no name");
            return none;
        }
        detail::registerDrivers();
        GdalErrors errors;
        const unsigned flags =
            GDAL_OF_VECTOR | GDAL_OF_VERBOSE_ERROR | (update ? GDAL_OF_UPDATE : GDAL_OF_READONLY);
        // Otherwise a geometry column of a table in text form would also come as an attribute.
        static const char* const tableOptions[] = {"KEEP_GEOM_COLUMNS=NO", nullptr};
        const bool table =
            EQUAL(CPLGetExtension(path), "csv") || EQUAL(CPLGetExtension(path), "tsv");
        GDALDataset* dataset =
            GDALDataset::Open(path, flags, nullptr, table ? tableOptions : nullptr);
        if (dataset == nullptr) {
            errors.report(JWErrorInputUnreadable, std::string(path) + ": cannot be opened", "");
            return none;
        }
        auto handle = std::make_shared<JWSourceHandle>(dataset, path, update, false);
        const std::string damage = detail::damageOf(path, handle->driver());
        if (!damage.empty()) {
            errors.report(JWErrorInputUnreadable, std::string(path) + ": " + damage, "");
            return none;
        }
        if (errors.failed()) handle->suspectGeometries();
        return new JWDataSource(std::move(handle));
    });
}

JWDataSource* JWDataSource::create(const char* path, const char* driver) {
    return detail::guarded("JWDataSource::create", static_cast<JWDataSource*>(nullptr), [&] {
        JWDataSource* const none = nullptr;
        if (path == nullptr || *path == '\0') {
            JWReport::setError(JWErrorInvalidArgument, "the source to create has no name");
            return none;
        }
        detail::registerDrivers();
        std::string format = driver != nullptr ? driver : "";
        if (format.empty()) {
            format = *CPLGetExtension(path) == '\0' ? "GPKG" : driverForPath(path);
        }
        GDALDriver* maker = GetGDALDriverManager()->GetDriverByName(format.c_str());
        if (maker == nullptr) {
            JWReport::setError(JWErrorOutputUnwritable,
                               std::string(path) + ": no vector format of that " +
                                   (format.empty() ? "ending" : "name") + " can be written");
            return none;
        }
        if (exists(path)) {
            JWReport::setError(JWErrorOutputExists, std::string(path) + ": exists already");
            return none;
        }
        GdalErrors errors;
        GDALDataset* dataset = maker->Create(path, 0, 0, 0, GDT_Unknown, nullptr);
        if (dataset == nullptr) {
            errors.report(JWErrorOutputUnwritable, std::string(path) + ": cannot be created", path);
            return none;
        }
        return new JWDataSource(std::make_shared<JWSourceHandle>(dataset, path, true, true));
    });
}

JWDataSource* JWDataSource::createInMemory() {
    return detail::guarded("createInMemory", static_cast<JWDataSource*>(nullptr), [] {
        detail::registerDrivers();
        GdalErrors errors;
        GDALDriver* maker = GetGDALDriverManager()->GetDriverByName("Memory");
        GDALDataset* dataset =
            maker != nullptr ? maker->Create("memory", 0, 0, 0, GDT_Unknown, nullptr) : nullptr;
        if (dataset == nullptr) {
            errors.report(JWErrorInternal, "a source in memory cannot be made", "");
            return static_cast<JWDataSource*>(nullptr);
        }
        return new JWDataSource(std::make_shared<JWSourceHandle>(dataset, "memory", true, true));
    });
}

bool JWDataSource::destroyDataSource(JWDataSource* source) {
    if (source == nullptr) return true;
    return detail::guarded("destroyDataSource", false, [source] {
        std::shared_ptr<JWSourceHandle> handle = source->m_handle;
        delete source;
        return JWSourceHandle::release(handle);
    });
}

std::string JWDataSource::driverForPath(const char* path) {
    return detail::guarded("driverForPath", std::string(), [path] {
        const std::string ending = path != nullptr ? CPLGetExtension(path) : "";
        if (ending.empty()) return std::string();
        detail::registerDrivers();
        GDALDriverManager& drivers = *GetGDALDriverManager();
        for (int i = 0; i < drivers.GetDriverCount(); ++i) {
            GDALDriver& driver = *drivers.GetDriver(i);
            if (writesFilesEnding(driver, ending.c_str()))
                return std::string(driver.GetDescription());
        }
        return std::string();
    });
}

const char* JWDataSource::getName() const { return m_handle->name().c_str(); }

const char* JWDataSource::getDriverName() const { return m_handle->driver().c_str(); }

bool JWDataSource::isUpdateMode() const { return m_handle->isUpdate(); }

int JWDataSource::getLayerCount() const {
    GdalErrors errors;  // some drivers look at the files only now
    return m_handle->dataset().GetLayerCount();
}

std::vector<std::string> JWDataSource::getFiles() const {
    return detail::guarded("getFiles", std::vector<std::string>(), [this] {
        const GdalErrors errors;
        const CPLStringList list(m_handle->dataset().GetFileList());
        return std::vector<std::string>(list.List(), list.List() + list.Count());
    });
}

std::vector<std::string> JWDataSource::getLayerNames() const {
    GdalErrors errors;
    std::vector<std::string> names;
    for (int i = 0; i < getLayerCount(); ++i) {
        names.emplace_back(m_handle->dataset().GetLayer(i)->GetName());
    }
    return names;
}

/// Wraps an OGR layer; null with the last error set when there is none.
JWFeatureLayer* JWDataSource::wrapLayer(void* ogrLayer, const std::string& missing,
                                        const std::string& details) {
    if (ogrLayer == nullptr) {
        JWReport::setError(JWErrorLayerMissing, m_handle->name() + ": has no " + missing + details);
        return nullptr;
    }
    return new JWFeatureLayer(
        std::make_unique<JWFeatureLayer::Impl>(m_handle, *static_cast<OGRLayer*>(ogrLayer)));
}

JWFeatureLayer* JWDataSource::openLayer(int position) {
    return detail::guarded("openLayer", static_cast<JWFeatureLayer*>(nullptr), [&] {
        GdalErrors errors;
        return wrapLayer(m_handle->dataset().GetLayer(position),
                         "layer at position " + std::to_string(position), "");
    });
}

JWFeatureLayer* JWDataSource::openLayer(const char* name) {
    return detail::guarded("openLayer", static_cast<JWFeatureLayer*>(nullptr), [&] {
        GdalErrors errors;
        GDALDataset& dataset = m_handle->dataset();
        if (name == nullptr || *name == '\0') {
            return wrapLayer(firstWithGeometry(dataset), "layer", "");
        }
        OGRLayer* found = findLayer(dataset, name);
        std::string others;
        for (const std::string& other : getLayerNames()) {
            others += (others.empty() ? "; its layers: " : ", ") + other;
        }
        return wrapLayer(found, "layer " + std::string(name), others);
    });
}

JWFeatureLayer* JWDataSource::createLayer(const char* name, enumJWWKBGeometryType type,
                                          const JWSpatialReference* reference,
                                          const std::vector<std::string>& options,
                                          const JWFeatureLayer* like) {
    return detail::guarded("createLayer", static_cast<JWFeatureLayer*>(nullptr), [&] {
        JWFeatureLayer* const none = nullptr;
        if (name == nullptr) {
            JWReport::setError(JWErrorInvalidArgument, m_handle->name() + ": a layer needs a name");
            return none;
        }
        const std::string wanted = name;
        if (!m_handle->isUpdate()) {
            JWReport::setError(JWErrorOutputUnwritable,
                               m_handle->name() + ": is not open for writing");
            return none;
        }
        if (!m_handle->commitImplicit()) return none;
        GdalErrors errors;
        GDALDataset& dataset = m_handle->dataset();
        if (dataset.GetLayerByName(wanted.c_str()) != nullptr) {
            JWReport::setError(JWErrorOutputExists,
                               m_handle->name() + ": layer " + wanted + " exists already");
            return none;
        }
        errors.clear();
        auto* system = static_cast<OGRSpatialReference*>(
            reference != nullptr ? reference->getOGRSpatialRefPtr() : nullptr);
        CPLStringList list = layerOptions(*m_handle, type, options);
        OGRwkbGeometryType made = detail::typeToOgr(type);
        if (like != nullptr && (type == JWWKBPoint || type == JWWKBMultiPoint)) {
            made = detail::withDimensionsOf(like->m_impl->layer.GetGeomType(), made);
        }
        OGRLayer* layer = dataset.CreateLayer(wanted.c_str(), system, made, list.List());
        if (layer == nullptr) {
            errors.report(JWErrorOutputUnwritable,
                          m_handle->name() + ": layer " + wanted + " cannot be created",
                          m_handle->isMemory() ? "" : m_handle->name());
            return none;
        }
        m_handle->state(*layer).reference =
            reference != nullptr ? *reference : JWSpatialReference();
        return wrapLayer(layer, "", "");
    });
}

bool JWDataSource::deleteLayer(const char* name) {
    return detail::guarded("deleteLayer", false, [&] {
        if (!m_handle->commitImplicit()) return false;
        GdalErrors errors;
        GDALDataset& dataset = m_handle->dataset();
        const OGRLayer* found = name != nullptr ? findLayer(dataset, name) : nullptr;
        for (int i = 0; found != nullptr && i < dataset.GetLayerCount(); ++i) {
            if (dataset.GetLayer(i) != found) continue;
            if (m_handle.use_count() > 1) {
                JWReport::setError(
                    JWErrorInvalidArgument,
                    m_handle->name() + ": layers are open; " + name + " cannot be deleted");
                return false;
            }
            m_handle->forget(*dataset.GetLayer(i));
            if (dataset.DeleteLayer(i) == OGRERR_NONE && !errors.failed()) return true;
            errors.report(JWErrorOutputUnwritable,
                          m_handle->name() + ": layer " + name + " cannot be deleted",
                          m_handle->name());
            return false;
        }
        JWReport::setError(JWErrorLayerMissing,
                           m_handle->name() + ": has no layer " + (name != nullptr ? name : ""));
        return false;
    });
}

bool JWDataSource::flush() {
    return detail::guarded("flush", false, [this] { return m_handle->flush(); });
}

}  // namespace jws
