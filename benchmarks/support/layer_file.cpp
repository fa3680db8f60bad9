// SPDX-License-Identifier: MIT
#include "support/layer_file.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
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
    removeGeoPackage(to);
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    GDALDatasetUniquePtr target(driver->Create(to.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (target == nullptr) fail("cannot create " + to);
    OGRLayer* output =
        target->CreateLayer(input.GetName(), input.GetSpatialRef(), wkbMultiPolygon, nullptr);
    if (output == nullptr) fail("cannot create a layer in " + to);
    target->StartTransaction();
    const std::int64_t repaired = copyFeatures(input, *output);
    if (target->CommitTransaction() != OGRERR_NONE) fail("cannot write " + to);
    return repaired;
}

void removeGeoPackage(const std::string& path) {
    for (const char* suffix : {"", "-journal", "-wal", "-shm"}) {
        std::remove((path + suffix).c_str());
    }
}

}  // namespace bench
