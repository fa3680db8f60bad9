// SPDX-License-Identifier: MIT
#include "support/layer_file.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bench {

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + CPLGetLastErrorMsg());
}

GDALDatasetUniquePtr openVector(const std::string& path) {
    GDALAllRegister();
    GDALDatasetUniquePtr file(
        GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
    if (file == nullptr || file->GetLayerCount() != 1) fail("cannot read one layer from " + path);
    return file;
}

void addPolygons(const OGRGeometry& geometry, OGRMultiPolygon& parts) {
    const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
    if (type == wkbPolygon) {
        parts.addGeometry(&geometry);
    } else if (OGR_GT_IsSubClassOf(type, wkbGeometryCollection)) {
        for (const OGRGeometry* part : *geometry.toGeometryCollection()) addPolygons(*part, parts);
    }
}

// Makes a feature's geometry a valid multipolygon; returns true when it was not valid before.
bool repair(OGRFeature& feature) {
    const OGRGeometry* geometry = feature.GetGeometryRef();
    if (geometry == nullptr) return false;
    CPLPushErrorHandler(CPLQuietErrorHandler);  // GDAL warns of each invalid geometry
    const bool valid = geometry->IsValid();
    CPLPopErrorHandler();
    const std::unique_ptr<OGRGeometry> made(valid ? nullptr : geometry->MakeValid());
    if (!valid && made == nullptr) fail("cannot repair a feature");
    auto parts = std::make_unique<OGRMultiPolygon>();
    addPolygons(valid ? *geometry : *made, *parts);
    feature.SetGeometryDirectly(parts.release());
    return !valid;
}

std::int64_t copyFeatures(OGRLayer& from, OGRLayer& to) {
    for (int i = 0; i < from.GetLayerDefn()->GetFieldCount(); ++i) {
        if (to.CreateField(from.GetLayerDefn()->GetFieldDefn(i)) != OGRERR_NONE) {
            fail("cannot create a field");
        }
    }
    std::int64_t repaired = 0;
    for (auto& feature : from) {
        if (repair(*feature)) ++repaired;
        OGRFeature copy(to.GetLayerDefn());
        copy.SetFrom(feature.get());
        if (to.CreateFeature(&copy) != OGRERR_NONE) fail("cannot write a repaired feature");
    }
    return repaired;
}

// Makes a GeoPackage of one layer, which `fill` fills in one transaction.
void writeGeoPackageLayer(const std::string& path, const char* name,
                          const OGRSpatialReference* reference, OGRwkbGeometryType type,
                          const std::function<void(OGRLayer&)>& fill) {
    removeGeoPackage(path);
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    GDALDatasetUniquePtr target(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (target == nullptr) fail("cannot create " + path);
    OGRLayer* output =
        target->CreateLayer(name, const_cast<OGRSpatialReference*>(reference), type, nullptr);
    if (output == nullptr) fail("cannot create a layer in " + path);
    target->StartTransaction();
    fill(*output);
    if (target->CommitTransaction() != OGRERR_NONE) fail("cannot write " + path);
}

}  // namespace

void forEachWkb(const std::string& path,
                const std::function<void(const unsigned char* wkb, std::size_t size)>& visit) {
    const GDALDatasetUniquePtr file = openVector(path);
    std::vector<unsigned char> wkb;
    for (const auto& feature : file->GetLayer(0)) {
        const OGRGeometry* geometry = feature->GetGeometryRef();
        if (geometry == nullptr) continue;
        wkb.resize(geometry->WkbSize());
        geometry->exportToWkb(wkbNDR, wkb.data(), wkbVariantIso);
        visit(wkb.data(), wkb.size());
    }
}

std::int64_t copyRepaired(const std::string& from, const std::string& to) {
    const GDALDatasetUniquePtr source = openVector(from);
    OGRLayer& input = *source->GetLayer(0);
    std::int64_t repaired = 0;
    writeGeoPackageLayer(to, input.GetName(), input.GetSpatialRef(), wkbMultiPolygon,
                         [&](OGRLayer& output) { repaired = copyFeatures(input, output); });
    return repaired;
}

void writeWorldCells(const std::string& path, int degrees) {
    GDALAllRegister();
    OGRSpatialReference reference;
    reference.importFromEPSG(4326);
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    writeGeoPackageLayer(path, "cells", &reference, wkbPolygon, [degrees](OGRLayer& output) {
        OGRFieldDefn field("cell", OFTInteger);
        if (output.CreateField(&field) != OGRERR_NONE) fail("cannot create a field");
        int number = 0;
        for (int y = -90; y < 90; y += degrees) {
            for (int x = -180; x < 180; x += degrees) {
                auto ring = std::make_unique<OGRLinearRing>();
                for (const auto& [dx, dy] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}, {0, 0}}) {
                    ring->addPoint(x + dx * degrees, y + dy * degrees);
                }
                auto cell = std::make_unique<OGRPolygon>();
                cell->addRingDirectly(ring.release());
                OGRFeature feature(output.GetLayerDefn());
                feature.SetField(0, ++number);
                feature.SetGeometryDirectly(cell.release());
                if (output.CreateFeature(&feature) != OGRERR_NONE) fail("cannot write a cell");
            }
        }
    });
}

void removeGeoPackage(const std::string& path) {
    for (const char* suffix : {"", "-journal", "-wal", "-shm"}) {
        std::remove((path + suffix).c_str());
    }
}

}  // namespace bench
