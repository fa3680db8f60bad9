// SPDX-License-Identifier: MIT
//
// Geometries that a source has and its driver drops without a word: GeoJSON objects of a wrong
// shape, texts of a table that are no WKT.
#ifndef JW_FOUNDATION_UNREAD_GEOMETRY_H
#define JW_FOUNDATION_UNREAD_GEOMETRY_H

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <string>

namespace jws::detail {

/// Marks a feature, which loses what is there of its geometry.
void markUnreadGeometry(OGRFeature& feature);
bool hasUnreadGeometry(const OGRFeature& feature);

/// A second look at the features of a file. It opens the file again when it is first needed and
/// goes through it in the order of the questions; its memory does not grow with the file. One
/// thread at a time.
class SecondLook {
  public:
    /// There is something to see beyond what the driver hands out.
    static bool isOfUse(const std::string& driver) {
        return driver == "GeoJSON" || driver == "CSV";
    }
    SecondLook(std::string path, std::string driver, const OGRLayer& layer);

    /// Opens the file unless it is open; false when it cannot be opened again.
    bool open();
    /// The source has a geometry for this feature, as its driver handed it out, that was not read,
    /// or not whole. False for a file that cannot be opened again.
    bool findsMore(const OGRFeature& feature);

  private:
    std::string m_path;
    bool m_isTable;
    OGRFeatureDefn& m_definition;
    std::string m_layerName;
    GDALDatasetUniquePtr m_dataset;
    OGRLayer* m_layer = nullptr;
    int m_textField = -1;  ///< of a table: where its geometries are
    bool m_opened = false;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_UNREAD_GEOMETRY_H
