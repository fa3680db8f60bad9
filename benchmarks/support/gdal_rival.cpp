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
        m_a = toMemory(pair.a);
        m_b = toMemory(pair.b);
    }

    void run() override {
        m_result = createSource("Memory", "result");
        intersect(*m_a->GetLayer(0), *m_b->GetLayer(0), *m_result);
    }

    void summarize(Summary& summary) override {
        std::vector<unsigned char> wkb;
        for (const auto& feature : m_result->GetLayer(0)) {
            const OGRGeometry& geometry = *feature->GetGeometryRef();
            wkb.resize(geometry.WkbSize());
            geometry.exportToWkb(wkbNDR, wkb.data(), wkbVariantIso);
            summary.add(wkb.data(), wkb.size());
        }
    }

    void clear() override { m_result.reset(); }

  private:
    static GDALDatasetUniquePtr toMemory(const std::string& path) {
        const GDALDatasetUniquePtr file = openFile(path);
        GDALDatasetUniquePtr memory = createSource("Memory", "input");
        if (memory->CopyLayer(file->GetLayer(0), "input", nullptr) == nullptr) fail("cannot copy");
        return memory;
    }

    GDALDatasetUniquePtr m_a;
    GDALDatasetUniquePtr m_b;
    GDALDatasetUniquePtr m_result;
};

class GdalFile final : public Rival {
  public:
    void load(const LayerPair& pair) override {
        GDALAllRegister();
        m_pair = pair;
        m_path = pair.workDirectory + "/gdal_result.gpkg";
        removeGeoPackage(m_path);
    }

    void run() override {
        const GDALDatasetUniquePtr a = openFile(m_pair.a);
        const GDALDatasetUniquePtr b = openFile(m_pair.b);
        const GDALDatasetUniquePtr result = createSource("GPKG", m_path);
        if (result->StartTransaction() != OGRERR_NONE) fail("no transaction");
        intersect(*a->GetLayer(0), *b->GetLayer(0), *result);
        if (result->CommitTransaction() != OGRERR_NONE) fail("cannot commit");
    }

    void summarize(Summary& summary) override {
        forEachWkb(m_path, [&summary](const unsigned char* wkb, std::size_t size) {
            summary.add(wkb, size);
        });
    }

    void clear() override { removeGeoPackage(m_path); }

  private:
    LayerPair m_pair;
    std::string m_path;
};

}  // namespace

std::unique_ptr<Rival> makeGdalMemory() { return std::make_unique<GdalMemory>(); }

std::unique_ptr<Rival> makeGdalFile() { return std::make_unique<GdalFile>(); }

}  // namespace bench
