// SPDX-License-Identifier: MIT
//
// GDAL's layer algebra. Prepared geometries are off: tiles with few candidates each run faster
// without. Field names get a prefix, since both sides of a generated pair have the same.
#include "support/gdal_rival.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/layer_file.h"

namespace bench {

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error("GDAL: " + what + ": " + CPLGetLastErrorMsg());
}

GDALDatasetUniquePtr openFile(const std::string& path) {
    GDALDatasetUniquePtr file(
        GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
    if (file == nullptr || file->GetLayerCount() != 1) fail("cannot read " + path);
    return file;
}

GDALDatasetUniquePtr createSource(const char* driverName, const std::string& path) {
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(driverName);
    if (driver == nullptr) fail(std::string("no driver ") + driverName);
    GDALDatasetUniquePtr source(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (source == nullptr) fail("cannot create " + path);
    return source;
}

void intersect(OGRLayer& a, OGRLayer& b, GDALDataset& target) {
    OGRLayer* result = target.CreateLayer("result", a.GetSpatialRef(), wkbUnknown, nullptr);
    if (result == nullptr) fail("cannot create the result layer");
    const char* const options[] = {"INPUT_PREFIX=a_", "METHOD_PREFIX=b_",
                                   "USE_PREPARED_GEOMETRIES=NO",
                                   "KEEP_LOWER_DIMENSION_GEOMETRIES=NO", nullptr};
    if (a.Intersection(&b, result, const_cast<char**>(options)) != OGRERR_NONE) {
        fail("intersection failed");
    }
}

class GdalMemory final : public Rival {
  public:
    void load(const LayerPair& pair) override {
        GDALAllRegister();
        a_ = toMemory(pair.a);
        b_ = toMemory(pair.b);
    }

    void run() override {
        result_ = createSource("Memory", "result");
        intersect(*a_->GetLayer(0), *b_->GetLayer(0), *result_);
    }

    void summarize(Summary& summary) override {
        std::vector<unsigned char> wkb;
        for (const auto& feature : result_->GetLayer(0)) {
            const OGRGeometry& geometry = *feature->GetGeometryRef();
            wkb.resize(geometry.WkbSize());
            geometry.exportToWkb(wkbNDR, wkb.data(), wkbVariantIso);
            summary.add(wkb.data(), wkb.size());
        }
    }

    void clear() override { result_.reset(); }

  private:
    static GDALDatasetUniquePtr toMemory(const std::string& path) {
        const GDALDatasetUniquePtr file = openFile(path);
        GDALDatasetUniquePtr memory = createSource("Memory", "input");
        if (memory->CopyLayer(file->GetLayer(0), "input", nullptr) == nullptr) fail("cannot copy");
        return memory;
    }

    GDALDatasetUniquePtr a_;
    GDALDatasetUniquePtr b_;
    GDALDatasetUniquePtr result_;
};

class GdalFile final : public Rival {
  public:
    void load(const LayerPair& pair) override {
        GDALAllRegister();
        pair_ = pair;
        path_ = pair.workDirectory + "/gdal_result.gpkg";
        removeGeoPackage(path_);
    }

    void run() override {
        const GDALDatasetUniquePtr a = openFile(pair_.a);
        const GDALDatasetUniquePtr b = openFile(pair_.b);
        const GDALDatasetUniquePtr result = createSource("GPKG", path_);
        if (result->StartTransaction() != OGRERR_NONE) fail("no transaction");
        intersect(*a->GetLayer(0), *b->GetLayer(0), *result);
        if (result->CommitTransaction() != OGRERR_NONE) fail("cannot commit");
    }

    void summarize(Summary& summary) override {
        forEachWkb(path_, [&summary](const unsigned char* wkb, std::size_t size) {
            summary.add(wkb, size);
        });
    }

    void clear() override { removeGeoPackage(path_); }

  private:
    LayerPair pair_;
    std::string path_;
};

}  // namespace

std::unique_ptr<Rival> makeGdalMemory() { return std::make_unique<GdalMemory>(); }

std::unique_ptr<Rival> makeGdalFile() { return std::make_unique<GdalFile>(); }

}  // namespace bench
