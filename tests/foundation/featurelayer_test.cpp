// SPDX-License-Identifier: MIT
//
// Layers in files and in memory: opening, reading by position, damaged files.
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <fstream>

#include "foundation/layer_files.h"

namespace {

using namespace jws;
using namespace jwtest;

enumJWErrorKind lastKind() { return JWReport::lastError().kind; }
const std::string& lastText() { return JWReport::lastError().text; }

class FeatureLayerTest : public LayerFiles {
  protected:
    /// Deletes features of a file through GDAL itself.
    void deleteFeatures(const std::string& file, const std::vector<std::int64_t>& fids) const {
        GDALDataset* dataset =
            GDALDataset::Open(path(file).c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE);
        ASSERT_NE(dataset, nullptr);
        for (const std::int64_t fid : fids) {
            ASSERT_EQ(dataset->GetLayer(0)->DeleteFeature(fid), OGRERR_NONE);
        }
        GDALClose(dataset);
    }
    /// Marks rows of a .dbf as deleted; GDAL itself would pack the file when closing it.
    void markRowsDeleted(const std::string& dbf, const std::vector<std::int64_t>& rows) const {
        std::fstream file(path(dbf), std::ios::in | std::ios::out | std::ios::binary);
        unsigned char header[12];
        file.read(reinterpret_cast<char*>(header), sizeof header);
        const int start = header[8] + 256 * header[9], length = header[10] + 256 * header[11];
        for (const std::int64_t row : rows) {
            file.seekp(start + row * length);
            file.put('*');
        }
    }
    void cut(const std::string& file, double share) const {
        const auto size = std::filesystem::file_size(path(file));
        std::filesystem::resize_file(
            path(file), static_cast<std::uintmax_t>(static_cast<double>(size) * share));
    }
};

const char* const formats[] = {"a.gpkg", "a.shp", "a.geojson", "a.geojsonl", "a.fgb",
                               "a.csv",  "a.gml", "a.sqlite",  "a.tab"};

TEST_F(FeatureLayerTest, EveryFeatureIsReadOnceWhateverTheBlockSize) {
    constexpr int count = 53;
    for (const char* file : formats) {
        writeSquares(file, count);
        for (const int size : {1, 7, 52, 53, 54, 1000}) {
            const LayerPtr layer = openLayer(file);
            ASSERT_TRUE(layer) << file << ": " << lastText();
            std::vector<int> read = readInBlocks(*layer, size);
            // FlatGeobuf sorts by place.
            if (std::string(file) == "a.fgb") std::sort(read.begin(), read.end());
            EXPECT_EQ(read, upTo(count)) << file << " in blocks of " << size;
            EXPECT_EQ(layer->getFeatureCount(), count) << file;
        }
    }
}

TEST_F(FeatureLayerTest, MemoryLayersReadLikeFiles) {
    const LayerPtr layer = newLayer("");
    fillSquares(*layer, 20);
    EXPECT_EQ(readInBlocks(*layer, 3), upTo(20));
    EXPECT_EQ(layer->getDriverType(), JWDriverMemory);
    EXPECT_EQ(layer->getFeatureCount(), 20);
    EXPECT_EQ(layer->getMaximumFID(), 19) << "memory layers number from 0";
    EXPECT_EQ(layer->getLayerEnvelop(), JWEnvelop(0, 0, 59, 2));
}

TEST_F(FeatureLayerTest, NumberingIsTheSourcesOwn) {
    struct {
        const char* file;
        std::int64_t first;
    } const rows[] = {{"a.gpkg", 1}, {"a.shp", 0}, {"a.sqlite", 1}, {"a.geojson", 0}};
    for (const auto& row : rows) {
        writeSquares(row.file, 5);
        const LayerPtr layer = openLayer(row.file);
        ASSERT_TRUE(layer) << lastText();
        for (int i = 0; i < 5; ++i) {
            const std::unique_ptr<JWFeature> feature(layer->getFeature(i));
            ASSERT_TRUE(feature) << row.file;
            EXPECT_EQ(feature->getFID64(), row.first + i) << row.file;
            EXPECT_EQ(number(*feature), i) << row.file;
        }
        EXPECT_EQ(layer->getMaximumFID(), row.first + 4) << row.file;
    }
}

TEST_F(FeatureLayerTest, RepeatedOrMissingIdentifiersDoNotMixFeaturesUp) {
    writeSquares("a.gpkg", 5);
    std::ofstream json(path("a.geojson"));
    json << R"({"type":"FeatureCollection","features":[)";
    for (int i = 0; i < 5; ++i) {
        json << (i > 0 ? "," : "") << R"({"type":"Feature","id":4,"properties":{"n":)" << i
             << R"(},"geometry":{"type":"Point","coordinates":[0,0]}})";
    }
    json << "]}";
    json.close();
    GDALDataset* dataset = GDALDataset::Open(path("a.gpkg").c_str(), GDAL_OF_UPDATE);
    for (const char* sql :
         {"CREATE VIEW unnumbered AS SELECT geom, n FROM layer",
          "INSERT INTO gpkg_contents(table_name, data_type, identifier, srs_id) VALUES "
          "('unnumbered', 'features', 'unnumbered', 0)",
          "INSERT INTO gpkg_geometry_columns VALUES ('unnumbered', 'geom', 'POLYGON', 0, 0, 0)"}) {
        dataset->ReleaseResultSet(dataset->ExecuteSQL(sql, nullptr, nullptr));
    }
    GDALClose(dataset);
    for (const auto& [file, name] :
         {std::pair("a.geojson", ""), std::pair("a.gpkg", "unnumbered")}) {
        const SourcePtr source(JWDataSource::open(path(file).c_str()));
        const LayerPtr layer(source->openLayer(name));
        ASSERT_TRUE(layer) << lastText();
        layer->setCacheLimit(0);
        std::shared_ptr<const JWFeature> next;
        ASSERT_TRUE(layer->getNextSharedFeature(0, next));
        ASSERT_TRUE(layer->getNextSharedFeature(1, next));
        for (const int i : {0, 3, 1, 4, 2}) {
            const std::unique_ptr<JWFeature> feature(layer->getFeature(i));
            ASSERT_TRUE(feature) << file << lastText();
            EXPECT_EQ(number(*feature), i) << file;
        }
        ASSERT_TRUE(layer->getNextSharedFeature(2, next));
        EXPECT_EQ(number(*next), 2) << file;
        EXPECT_EQ(readInBlocks(*layer, 2), upTo(5)) << file;
    }
    const SourcePtr source(JWDataSource::open(path("a.gpkg").c_str()));
    const LayerPtr view(source->openLayer("unnumbered"));
    JWFeatureClass found;
    EXPECT_EQ(view->getFeaturesByAttributeFilter("fid >= 1 and fid <= 2\n", found), 2)
        << lastText();
}

TEST_F(FeatureLayerTest, DeletedFeaturesLeaveNoHolesInPositions) {
    for (const char* file : {"a.gpkg", "a.shp"}) {
        writeSquares(file, 10);
        const std::int64_t first = std::string(file) == "a.gpkg" ? 1 : 0;
        if (first == 1) deleteFeatures(file, {1, 5, 6});
        if (first == 0) markRowsDeleted("a.dbf", {0, 4, 5});
        const std::vector<int> rest = {1, 2, 3, 6, 7, 8, 9};
        const LayerPtr random = openLayer(file);
        EXPECT_EQ(random->getFeatureCount(), 7) << file;
        for (int i = 6; i >= 0; --i) {
            const std::shared_ptr<const JWFeature> feature = random->getSharedFeature(i);
            ASSERT_TRUE(feature) << file << lastText();
            EXPECT_EQ(number(*feature), rest[static_cast<std::size_t>(i)]) << file;
            EXPECT_EQ(feature->getFID64(), rest[static_cast<std::size_t>(i)] + first) << file;
        }
        EXPECT_EQ(random->getFeature(7), nullptr);
        EXPECT_EQ(lastKind(), JWErrorInvalidArgument);
        EXPECT_EQ(readInBlocks(*openLayer(file), 2), rest) << file;
    }
}

TEST_F(FeatureLayerTest, RandomAndSequentialReadingMix) {
    for (const char* file :
         {"a.gpkg", "a.shp", "a.geojson", "a.csv", "a.gml", "a.sqlite", "a.tab"}) {
        writeSquares(file, 40);
        for (const std::size_t cache : {std::size_t{0}, std::size_t{1} << 20}) {
            const LayerPtr layer = openLayer(file);
            layer->setCacheLimit(cache);
            JWFeatureClass block;
            for (int i = 0; i < 40; i += 4) {
                ASSERT_EQ(layer->getFeaturesByPosition(i, 4, block), 4) << file << lastText();
                EXPECT_EQ(numbers(block), (std::vector<int>{i, i + 1, i + 2, i + 3})) << file;
                const int other = (i * 7 + 3) % 40;
                const std::shared_ptr<const JWFeature> feature = layer->getSharedFeature(other);
                ASSERT_TRUE(feature) << file << lastText();
                EXPECT_EQ(number(*feature), other) << file;
                std::shared_ptr<const JWFeature> next;
                ASSERT_TRUE(layer->getNextSharedFeature(i / 2, next)) << file << lastText();
                EXPECT_EQ(number(*next), i / 2) << file;
            }
        }
    }
}

TEST_F(FeatureLayerTest, TwoReadersOfOneLayerDoNotDisturbEachOther) {
    for (const char* file : {"a.gpkg", "a.shp", "a.geojson", "a.csv"}) {
        writeSquares(file, 30);
        const SourcePtr source(JWDataSource::open(path(file).c_str()));
        const LayerPtr one(source->openLayer(0)), two(source->openLayer(0));
        one->setCacheLimit(0);
        two->setCacheLimit(0);
        std::shared_ptr<const JWFeature> a, b;
        for (int i = 0; i < 30; ++i) {
            ASSERT_TRUE(one->getNextSharedFeature(i, a)) << file << i << lastText();
            EXPECT_EQ(number(*a), i) << file;
            if (i == 7) {
                EXPECT_EQ(two->getFeatureCount(), 30) << "may take a pass";
            }
            if (i % 2 == 1) continue;
            ASSERT_TRUE(two->getNextSharedFeature(i / 2, b)) << file << i << lastText();
            EXPECT_EQ(number(*b), i / 2) << file;
        }
        JWReport::clearError();
        EXPECT_FALSE(one->getNextSharedFeature(30, a)) << file;
        EXPECT_EQ(lastKind(), JWErrorNone) << "the end is no error";
    }
}

TEST_F(FeatureLayerTest, TwoLayersOfOneFile) {
    {
        const SourcePtr source(JWDataSource::create(path("two.gpkg").c_str()));
        const LayerPtr a(source->createLayer("a", JWWKBPolygon, nullptr));
        const LayerPtr b(source->createLayer("b", JWWKBPolygon, nullptr));
        fillSquares(*a, 5);
        fillSquares(*b, 9);
        EXPECT_EQ(source->createLayer("A", JWWKBPoint, nullptr), nullptr) << "the name is taken";
        EXPECT_EQ(lastKind(), JWErrorOutputExists);
    }
    const SourcePtr source(JWDataSource::open(path("two.gpkg").c_str()));
    EXPECT_EQ(source->getLayerNames(), (std::vector<std::string>{"a", "b"}));
    const LayerPtr a(source->openLayer("a")), b(source->openLayer("b"));
    std::shared_ptr<const JWFeature> feature;
    int readA = 0, readB = 0;
    for (int i = 0; i < 9; ++i) {
        readA += a->getNextSharedFeature(i, feature) && number(*feature) == i;
        readB += b->getNextSharedFeature(i, feature) && number(*feature) == i;
    }
    EXPECT_EQ(readA, 5);
    EXPECT_EQ(readB, 9);
    EXPECT_EQ(source->openLayer("c"), nullptr);
    EXPECT_EQ(lastKind(), JWErrorLayerMissing);
    EXPECT_NE(lastText().find("a, b"), std::string::npos) << lastText();
}

TEST_F(FeatureLayerTest, TheCacheIsBoundedAndSharesItsFeatures) {
    writeSquares("a.gpkg", 10);
    const LayerPtr layer = openLayer("a.gpkg");
    const std::shared_ptr<const JWFeature> kept = layer->getSharedFeature(3);
    EXPECT_EQ(layer->getSharedFeature(3), kept) << "decoded once";
    layer->setCacheLimit(2 * (kept->memorySize() + 400));
    for (int i = 0; i < 10; ++i) layer->getSharedFeature(i);
    EXPECT_NE(layer->getSharedFeature(3), kept) << "it had to go";
    EXPECT_EQ(number(*kept), 3) << "its holder keeps it alive";
    const std::unique_ptr<JWFeature> own(layer->getFeature(9));
    EXPECT_NE(own.get(), layer->getSharedFeature(9).get());
}

TEST_F(FeatureLayerTest, ReadingAndDecodingApart) {
    writeSquares("a.gpkg", 10);
    writeSquares("a.csv", 10);
    for (const char* file : {"a.gpkg", "a.csv"}) {
        const LayerPtr layer = openLayer(file);
        std::vector<JWReadFeature> read;
        ASSERT_TRUE(layer->readAhead(0, 4, false, read));
        ASSERT_TRUE(layer->readAhead(4, 100, true, read)) << "fewer at the end";
        ASSERT_EQ(10u, read.size());
        for (std::size_t i = 0; i < read.size(); ++i) {
            EXPECT_EQ(i < 4, read[i].record != nullptr);
            ASSERT_TRUE(layer->decodeFeature(read[i]));
            EXPECT_FALSE(read[i].record);
            EXPECT_EQ(static_cast<int>(i), number(*read[i].feature));
            ASSERT_TRUE(layer->decodeFeature(read[i])) << "decoded already";
        }
        ASSERT_TRUE(layer->readAhead(10, 5, false, read));
        EXPECT_EQ(10u, read.size());

        JWReadFeature one;
        ASSERT_TRUE(layer->readFeature(7, one));
        ASSERT_TRUE(one.record);
        ASSERT_TRUE(layer->decodeFeature(one));
        EXPECT_EQ(7, number(*one.feature));
        EXPECT_FALSE(layer->readFeature(10, one));
        EXPECT_FALSE(layer->readFeature(-1, one));
        JWReadFeature nothing;
        EXPECT_FALSE(layer->decodeFeature(nothing));
        EXPECT_FALSE(layer->keepFeature(3, nullptr));

        ASSERT_TRUE(layer->keepFeature(3, read[3].feature));
        ASSERT_TRUE(layer->readFeature(3, one));
        EXPECT_EQ(read[3].feature, one.feature) << "from the cache";
        const std::size_t size = read[0].feature->memorySize();
        layer->setCacheLimit(3 * size + size / 2);
        bool hadRoom = true;
        for (int i = 0; i < 10; ++i) {
            hadRoom = layer->keepFeature(i, read[static_cast<std::size_t>(i)].feature);
        }
        EXPECT_FALSE(hadRoom) << "others had to go";
        ASSERT_TRUE(layer->readFeature(9, one));
        EXPECT_FALSE(one.record) << "the latest is held";
        ASSERT_TRUE(layer->readFeature(0, one));
        EXPECT_TRUE(one.record) << "the first is not";
        layer->setCacheLimit(0);
        EXPECT_FALSE(layer->keepFeature(1, read[1].feature));
    }
}

TEST_F(FeatureLayerTest, WritesOutdateWhatIsCached) {
    const LayerPtr layer = newLayer("");
    fillSquares(*layer, 3);
    EXPECT_EQ(layer->getFeatureCount(), 3);
    EXPECT_TRUE(layer->createSpatialIndex());
    const std::unique_ptr<JWFeature> fourth(square(*layer, 3));
    ASSERT_TRUE(layer->createFeature(fourth.get()));
    EXPECT_EQ(layer->getFeatureCount(), 4);
    EXPECT_EQ(layer->getLayerEnvelop().maxX, 11);
    EXPECT_EQ(layer->getSpatialIndexPtr(), nullptr) << "it does not know the new feature";
    EXPECT_EQ(number(*layer->getSharedFeature(3)), 3);
    EXPECT_TRUE(layer->clearAll());
    EXPECT_EQ(layer->getFeatureCount(), 0);
    EXPECT_EQ(layer->getSharedFeature(0), nullptr);
}

TEST_F(FeatureLayerTest, FilesCutShortAreReportedNotSilentlyShortened) {
    for (const char* file :
         {"a.gpkg", "a.shp", "a.geojson", "a.geojsonl", "a.fgb", "a.sqlite", "a.gml", "a.csv"}) {
        for (const double share : {0.2, 0.5, 0.9, 0.995}) {
            std::filesystem::remove_all(path(file));
            for (const char* part : {"a.shx", "a.dbf", "a.cpg", "a.xsd"}) {
                std::filesystem::remove(path(part));
            }
            writeSquares(file, 3000);
            cut(file, share);
            JWReport::clearError();
            const LayerPtr layer = openLayer(file);
            if (layer) {
                JWFeatureClass all;
                EXPECT_EQ(layer->getFeaturesByPosition(0, 5000, all), -1) << file << " " << share;
                EXPECT_EQ(all.getFeatureCount(), 0);
                EXPECT_EQ(layer->getErrNo(), JWErrorInputUnreadable) << file;
            }
            EXPECT_EQ(lastKind(), JWErrorInputUnreadable) << file << " " << share;
            EXPECT_NE(lastText().find(file), std::string::npos) << lastText();
        }
    }
}

TEST_F(FeatureLayerTest, DamageInTheMiddleIsReported) {
    writeSquares("a.gpkg", 3000);
    {
        std::fstream file(path("a.gpkg"), std::ios::in | std::ios::out | std::ios::binary);
        const auto size = static_cast<std::streamoff>(std::filesystem::file_size(path("a.gpkg")));
        file.seekp(size / 2 / 4096 * 4096);
        file << std::string(20 * 4096, '\xAB');
    }
    JWReport::clearError();
    const LayerPtr layer = openLayer("a.gpkg");
    ASSERT_TRUE(layer);
    JWFeatureClass all;
    EXPECT_EQ(layer->getFeaturesByPosition(0, 5000, all), -1);
    EXPECT_EQ(lastKind(), JWErrorInputUnreadable) << lastText();
}

TEST_F(FeatureLayerTest, AnOutdatedCountOfAnotherProgramIsNoDamage) {
    writeSquares("a.gpkg", 10);
    for (const char* stated : {"25", "3", "0", "NULL"}) {
        GDALDataset* dataset =
            GDALDataset::Open(path("a.gpkg").c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE);
        const std::string sql =
            std::string("UPDATE gpkg_ogr_contents SET feature_count = ") + stated;
        dataset->ReleaseResultSet(dataset->ExecuteSQL(sql.c_str(), nullptr, nullptr));
        GDALClose(dataset);
        for (const bool update : {false, true}) {
            const SourcePtr source(JWDataSource::open(path("a.gpkg").c_str(), update));
            const LayerPtr layer(source->openLayer("layer"));
            ASSERT_TRUE(layer) << lastText();
            EXPECT_EQ(layer->getFeatureCount(), 10) << "as counted, not as stated: " << stated;
            EXPECT_EQ(readInBlocks(*layer, 4), upTo(10)) << stated;
        }
    }
}

TEST_F(FeatureLayerTest, WhatCannotBeOpenedSaysWhy) {
    EXPECT_EQ(JWDataSource::open(path("missing.gpkg").c_str()), nullptr);
    EXPECT_EQ(lastKind(), JWErrorInputUnreadable);
    std::ofstream(path("text.txt")) << "no layer";
    EXPECT_EQ(JWDataSource::open(path("text.txt").c_str()), nullptr);
    EXPECT_EQ(lastKind(), JWErrorInputUnreadable);
    EXPECT_EQ(JWDataSource::open(nullptr), nullptr);
    EXPECT_EQ(lastKind(), JWErrorInvalidArgument);
    EXPECT_EQ(JWDataSource::create(path("text.txt").c_str(), "GPKG"), nullptr);
    EXPECT_EQ(lastKind(), JWErrorOutputExists);
    EXPECT_EQ(JWDataSource::create(path("a.xyz").c_str()), nullptr);
    EXPECT_EQ(lastKind(), JWErrorOutputUnwritable);
    EXPECT_EQ(JWDataSource::create(path("none/a.gpkg").c_str()), nullptr);
    EXPECT_EQ(lastKind(), JWErrorOutputUnwritable);
    JWReport::clearError();
    const SourcePtr memory(JWDataSource::createInMemory());
    EXPECT_EQ(memory->createLayer(nullptr, JWWKBPolygon, nullptr), nullptr);
    EXPECT_EQ(lastKind(), JWErrorInvalidArgument);
    EXPECT_EQ(JWDataSource::driverForPath("x/a.SHP"), "ESRI Shapefile");
    EXPECT_EQ(JWDataSource::driverForPath("a.json"), "GeoJSON");
    EXPECT_EQ(JWDataSource::driverForPath("a"), "");
}

TEST_F(FeatureLayerTest, GeometriesOfEveryKindCrossOver) {
    const char* const rows[] = {
        "POINT (1 2)",
        "LINESTRING (0 0, 1 1, 2 0)",
        "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (1 1, 1 2, 2 2, 1 1))",
        "MULTIPOINT ((0 0), (1 1))",
        "MULTILINESTRING ((0 0, 1 1), (2 2, 3 3, 4 2))",
        ("MULTIPOLYGON (((0 0, 1 0, 1 1, 0 0)), "
         "((5 5, 6 5, 6 6, 5 5), (5.2 5.1, 5.8 5.1, 5.8 5.7, 5.2 5.1)))"),
        "GEOMETRYCOLLECTION (POINT (1 1), LINESTRING (0 0, 5 5))",
        "POINT EMPTY",
        "POLYGON EMPTY",
        "MULTIPOLYGON EMPTY",
    };
    for (const char* file : {"", "kinds.gpkg"}) {
        LayerPtr layer = newLayer(file, JWWKBUnknown);
        for (const char* wkt : rows) {
            JWFeature feature;
            feature.setGeometry(fromWkt(wkt).get());
            ASSERT_TRUE(layer->createFeature(&feature)) << wkt << lastText();
        }
        for (int i = 0; i < static_cast<int>(std::size(rows)); ++i) {
            const std::unique_ptr<JWGeometry> read(layer->getGeometry(i));
            ASSERT_TRUE(read) << rows[i];
            const auto original = fromWkt(rows[i]);
            EXPECT_EQ(toWkt(*read), toWkt(*original));
            const JWEnvelop found = read->getEnvelop(), expected = original->getEnvelop();
            EXPECT_TRUE(found == expected || (!found.isValid() && !expected.isValid())) << rows[i];
        }
    }
}

TEST_F(FeatureLayerTest, CurvesSurfacesAndHeightsBecomePlanar) {
    GDALAllRegister();
    GDALDataset* dataset = GetGDALDriverManager()->GetDriverByName("GPKG")->Create(
        path("curves.gpkg").c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    OGRLayer* layer = dataset->CreateLayer("c", nullptr, wkbUnknown);
    const char* const rows[] = {
        "POINT ZM (1 2 3 4)",
        "LINESTRING Z (0 0 9, 1 1 9)",
        "CURVEPOLYGON (CIRCULARSTRING (0 0, 2 0, 2 2, 0 2, 0 0))",
        "CURVEPOLYGON ((0 0, 1 0, 1 1, 0 0))",
        "COMPOUNDCURVE ((0 0, 1 1), (1 1, 2 0))",
        "TIN Z (((0 0 0, 1 0 0, 0 1 0, 0 0 0)), ((1 0 0, 1 1 0, 0 1 0, 1 0 0)))",
        "TRIANGLE ((0 0, 4 0, 0 4, 0 0))"};
    for (const char* wkt : rows) {
        OGRGeometry* geometry = nullptr;
        ASSERT_EQ(OGRGeometryFactory::createFromWkt(wkt, nullptr, &geometry), OGRERR_NONE) << wkt;
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetGeometryDirectly(geometry);
        ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE) << wkt;
    }
    GDALClose(dataset);
    const LayerPtr read = openLayer("curves.gpkg");
    JWFeatureClass all;
    ASSERT_EQ(read->getFeaturesByPosition(0, 100, all), 7) << lastText();
    const auto geometry = [&all](int i) { return all.getFeatureAt(i)->getGeometryPtr(); };
    EXPECT_EQ(static_cast<JWPoint*>(geometry(0))->getZ(), 3);
    EXPECT_EQ(static_cast<JWPoint*>(geometry(0))->getM(), 4);
    EXPECT_EQ(geometry(1)->getGeometryType(), JWGeometryLineString);
    ASSERT_EQ(geometry(2)->getGeometryType(), JWGeometryPolygon);
    EXPECT_NEAR(static_cast<JWPolygon*>(geometry(2))->getArea(), 2 * 3.14159265358979, 0.02);
    ASSERT_EQ(geometry(3)->getGeometryType(), JWGeometryPolygon);
    EXPECT_EQ(static_cast<JWPolygon*>(geometry(3))->getArea(), 0.5);
    EXPECT_EQ(geometry(4)->getGeometryType(), JWGeometryLineString);
    ASSERT_EQ(geometry(5)->getGeometryType(), JWGeometryMultiPolygon);
    EXPECT_EQ(static_cast<JWMultiPolygon*>(geometry(5))->getArea(), 1);
    ASSERT_EQ(geometry(6)->getGeometryType(), JWGeometryPolygon);
    EXPECT_EQ(static_cast<JWPolygon*>(geometry(6))->getArea(), 8);
}

// One letter for each feature: g with a geometry, - without, u where the source has one that could
// not be read, or not whole.
TEST_F(FeatureLayerTest, GeometriesThatTheDriverDropsAreNotTakenForNone) {
    const std::string good = R"({"type":"Polygon","coordinates":[[[0,0],[9,0],[9,9],[0,0]]]})";
    const auto polygon = [](const std::string& rings) {
        return R"({"type":"Polygon","coordinates":)" + rings + "}";
    };
    const auto collection = [](const std::vector<std::string>& geometries) {
        std::string text;
        for (const std::string& geometry : geometries) {
            text += (text.empty() ? "" : ",\n") +
                    std::string(R"({"type":"Feature","properties":{})") +
                    (geometry.empty() ? "" : R"(,"geometry":)" + geometry) + "}";
        }
        return R"({"type":"FeatureCollection","features":[)" + text + "]}";
    };
    const struct {
        const char* file;
        std::string text;
        const char* expected;
    } rows[] = {
        {"a.geojson",
         collection({good, "null", "", polygon("[]"), polygon("\"x\""),
                     polygon("[[[1],[2],[3],[1]]]"), polygon("[[[0,0],[null,0],[1,1],[0,0]]]"),
                     R"({"type":"Polygonn","coordinates":[[[0,0],[1,0],[1,1],[0,0]]]})",
                     R"({"type":"Polygon"})", R"({"type":"GeometryCollection","geometries":[]})"}),
         "g---uuuuug"},
        {"b.geojson",
         collection({good, polygon("[[[\"a\",0],[1,0],[1,1],[0,0]]]"),
                     polygon("[[[0,0],[9,0],[9,9],[0,0]],[[\"a\",1],[2,1],[2,2],[1,1]]]"), good}),
         "guug"},
        {"c.geojson",
         R"({"type":"Feature","properties":{},"geometry":)" +
             polygon("[[[0,0],[9,0],[9,9],[0,0]],[[\"a\",1],[2,1],[2,2],[1,1]]]") + "}",
         "u"},
        {"d.csv",
         "WKT,n\n\"POLYGON((0 0,1 0,1 1,0 0))\",1\n\" \",2\ngarbage,3\n\"\",4\n"
         "\"POLYGON((0 0,1 nan,1 1,0 0))\",5\nPOLYGON EMPTY,6\n",
         "g-u-ug"},
        {"e.csv", "n,name\n1,a\n2,b\n", "--"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        std::ofstream(path(row.file)) << row.text;
        const auto letter = [](const JWFeature& feature) {
            return feature.isGeometryUnread()            ? 'u'
                   : feature.getGeometryPtr() != nullptr ? 'g'
                                                         : '-';
        };
        const LayerPtr layer = openLayer(row.file);
        ASSERT_TRUE(layer) << lastText();
        std::string found, apart;
        JWFeatureClass all;
        const int count = layer->getFeaturesByPosition(0, 99, all);
        for (int i = 0; i < count; ++i) found += letter(*all.getFeatureAt(i));
        EXPECT_EQ(row.expected, found) << lastText();
        for (int i = count - 1; i >= 0; --i) {
            const std::unique_ptr<JWFeature> feature(layer->getFeature(i));
            ASSERT_TRUE(feature) << lastText();
            apart.insert(apart.begin(), letter(JWFeature(*feature)));
        }
        EXPECT_EQ(row.expected, apart);
        const JWEnvelop far(70, 70, 80, 80);
        ASSERT_TRUE(layer->restrictTo(nullptr, &far)) << lastText();
        EXPECT_EQ(std::count(found.begin(), found.end(), 'u'), layer->getFeatureCount())
            << "they may be anywhere";
    }
}

TEST_F(FeatureLayerTest, EnvelopesOfWhatIsThere) {
    const LayerPtr layer = layerOf("in", {{-1, "POINT (5 5)", ""},
                                          {-1, "LINESTRING (nan 0, 7 1, 8 nan)", ""},
                                          {-1, "LINESTRING (nan 9, 1 1)", ""},
                                          {-1, "LINESTRING (nan 99, nan 99)", ""},
                                          {-1, "POINT EMPTY", ""},
                                          {-1, "", ""}});
    ASSERT_TRUE(layer->updateEnvelop());
    EXPECT_EQ(layer->getLayerEnvelop(), JWEnvelop(1, 0, 8, 9));
    JWFeatureClass found;
    ASSERT_TRUE(layer->createSpatialIndex());
    EXPECT_EQ(layer->getFeaturesByEnvelopFilter(JWEnvelop(4, 4, 6, 6), JWRelationOverlap, found),
              1);

    LayerPtr shapes = newLayer("s.shp");
    EXPECT_FALSE(shapes->getLayerEnvelop().isValid());
    fillSquares(*shapes, 2);
    EXPECT_EQ(shapes->getLayerEnvelop(), JWEnvelop(0, 0, 5, 2));
    EXPECT_TRUE(shapes->clearAll());
    EXPECT_FALSE(shapes->getLayerEnvelop().isValid());
    ASSERT_TRUE(JWFeatureLayer::destroyFeatureLayer(shapes.release()));
    EXPECT_FALSE(openLayer("s.shp")->getLayerEnvelop().isValid());
}

TEST_F(FeatureLayerTest, ReferencesAreComparedByMeaning) {
    JWSpatialReference epsg, wkt, utm;
    ASSERT_EQ(epsg.importFromUserInput("EPSG:4326"), JWDataErrNone);
    ASSERT_EQ(wkt.importFromWkt("GEOGCS[\"another name\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\","
                                "6378137,298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
                                "0.0174532925199433]]"),
              JWDataErrNone);
    ASSERT_EQ(utm.importFromUserInput("EPSG:32633"), JWDataErrNone);
    EXPECT_TRUE(epsg == wkt);
    EXPECT_FALSE(epsg == utm);
    EXPECT_TRUE(JWSpatialReference::areSame(nullptr, nullptr));
    const JWSpatialReference empty;
    EXPECT_TRUE(JWSpatialReference::areSame(nullptr, &empty));
    EXPECT_FALSE(JWSpatialReference::areSame(nullptr, &epsg));
    writeSquares("a.gpkg", 1);
    EXPECT_EQ(openLayer("a.gpkg")->getLayerSpatialRefPtr(), nullptr) << "it was made without one";
    EXPECT_EQ(epsg.isGeographic(), 1);
    EXPECT_EQ(utm.isProjected(), 1);
    EXPECT_EQ(empty.isGeographic(), 0);
    JWSpatialReference bad;
    EXPECT_EQ(bad.importFromWkt("nonsense"), JWDataErrUnsupportedSRS);
    EXPECT_TRUE(bad.isEmpty());
    char* text = nullptr;
    ASSERT_EQ(utm.exportToWkt(&text), JWDataErrNone);
    ASSERT_EQ(bad.importFromWkt(text), JWDataErrNone);
    JWSpatialReference::freeText(text);
    EXPECT_TRUE(bad == utm);
    char* name = epsg.describe();
    EXPECT_STREQ(name, "EPSG:4326 (WGS 84)");
    JWSpatialReference::freeText(name);
    for (const char* unnamed : {"LOCAL_CS[\"unnamed\",UNIT[\"metre\",1]]", "LOCAL_CS[\"\"]"}) {
        ASSERT_EQ(bad.importFromWkt(unnamed), JWDataErrNone);
        name = bad.describe();
        EXPECT_STREQ(name, "an unnamed system");
        JWSpatialReference::freeText(name);
    }
}

}  // namespace
