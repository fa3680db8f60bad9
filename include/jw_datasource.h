// SPDX-License-Identifier: MIT
//
// JWDataSource: a file, database or memory store that holds layers.
#ifndef JW_DATASOURCE_H
#define JW_DATASOURCE_H

#include <memory>
#include <string>
#include <vector>

#include "jw_codes.h"
#include "jw_export.h"

namespace jws {

class JWFeatureLayer;
class JWSpatialReference;
struct JWSourceHandle;

/// A vector data source in any format that GDAL reads or writes.
///
/// A source and the layers opened from it share one handle, which closes with the last of them.
/// None of them may be used by two threads at once.
class JW_API JWDataSource {
  public:
    /// Opens an existing source, for update when asked. Returns null with the last error set
    /// (missing, unreadable, of no known vector format, cut short) otherwise. The caller releases
    /// it with `destroyDataSource`.
    static JWDataSource* open(const char* path, bool update = false);
    /// Creates a new source. `driver` is GDAL's short name; null takes the format from the file's
    /// ending (GeoPackage when there is none). An existing destination is not touched: null, last
    /// error `JWErrorOutputExists`.
    static JWDataSource* create(const char* path, const char* driver = nullptr);
    /// Creates a source in memory.
    static JWDataSource* createInMemory();
    /// Closes a source; open layers keep working, and the last of them closes the file. Null is
    /// allowed. Returns false, with the last error set, when buffered data could not be written.
    static bool destroyDataSource(JWDataSource* source);

    /// GDAL's short name of the driver for a path, by its ending; empty when the ending is unknown
    /// or the driver cannot create layers.
    static std::string driverForPath(const char* path);

    ~JWDataSource();
    JWDataSource(const JWDataSource&) = delete;
    JWDataSource& operator=(const JWDataSource&) = delete;

    const char* getName() const;
    const char* getDriverName() const;
    bool isUpdateMode() const;
    /// Paths of the files that the source consists of, as far as its driver tells them; none for a
    /// source in memory.
    std::vector<std::string> getFiles() const;
    int getLayerCount() const;
    /// Names of the layers in their order.
    std::vector<std::string> getLayerNames() const;

    /// Opens a layer by position or by name (null or empty: the only layer; the first one with a
    /// geometry when there are several). Returns null with the last error set when there is none.
    /// The caller releases it with `JWFeatureLayer::destroyFeatureLayer`.
    JWFeatureLayer* openLayer(int position);
    JWFeatureLayer* openLayer(const char* name);
    /// Creates a layer without fields, open for writing. `reference` may be null; it is the layer's
    /// until the source is closed, also where the format keeps none (CSV) or stores everything in
    /// one of its own (KML). A name that is null or taken gives null. `options` are driver options,
    /// "NAME=VALUE" each; shapefiles are written in UTF-8 and CSV files with geometries as WKT
    /// unless they say otherwise. Formats with one layer per file may name it after the file. A
    /// layer of points keeps their z and m where `like`, a layer that they come from, has them;
    /// without it they are dropped.
    JWFeatureLayer* createLayer(const char* name, enumJWWKBGeometryType type,
                                const JWSpatialReference* reference,
                                const std::vector<std::string>& options = {},
                                const JWFeatureLayer* like = nullptr);
    /// Deletes a layer; upper and lower case count as the same where no name is exactly this one.
    /// Returns false with the last error set when it cannot be deleted; no layer of the source may
    /// be open.
    bool deleteLayer(const char* name);
    /// Writes buffered data out. Returns false with the last error set on failure.
    bool flush();

  private:
    explicit JWDataSource(std::shared_ptr<JWSourceHandle> handle);
    JWFeatureLayer* wrapLayer(void* ogrLayer, const std::string& missing,
                              const std::string& details);
    std::shared_ptr<JWSourceHandle> m_handle;
};

}  // namespace jws

#endif  // JW_DATASOURCE_H
