// SPDX-License-Identifier: MIT
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

#include <climits>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include "foundation/layer_files.h"
#include "jw_geometryoverlay2.h"
#include "support/layers.h"
#include "support/test_paths.h"

using namespace jws;
using namespace jwtest;

namespace {

using LayerForm = int (*)(JWFeatureLayer*, JWFeatureLayer*, JWFeatureLayer*, int, double, int);

constexpr const char* square = "POLYGON((0 0,10 0,10 10,0 10,0 0))";
constexpr const char* right = "POLYGON((5 0,15 0,15 10,5 10,5 0))";
constexpr const char* beside = "POLYGON((10 0,20 0,20 10,10 10,10 0))";

LayerForm plainForm() { return &JWGeometryOverlay2::intersectPolygonLayers; }

class LayerIntersect : public testing::Test {
  protected:
    /// Runs the plain form quietly and returns what it wrote.
    std::vector<std::string> run(JWFeatureLayer& a, JWFeatureLayer& b, int mode,
                                 double tolerance = 0, int blockSize = 100) {
        LayerPtr output = emptyLayer("out");
        count = plainForm()(&a, &b, output.get(), mode, tolerance, blockSize);
        fields = fieldNames(*output->getFieldsDefnPtr());
        return contentOf(*output);
    }

    CapturedMessages messages;
    int count = 0;
    std::string fields;
};

TEST_F(LayerIntersect, ChecksInTheOrderMissingThenFieldsThenReferences) {
    LayerPtr a = layerOf("a", {{-1, square, "x"}}, "name", "EPSG:4326");
    LayerPtr b = layerOf("b", {{-1, square, "x"}}, "name", "EPSG:32633");
    LayerPtr withFields = layerOf("out", {});
    LayerPtr output = emptyLayer("out");
    struct {
        JWFeatureLayer *a, *b, *output;
        int code;
        enumJWErrorKind kind;
        const char* says;
    } rows[] = {
        {nullptr, b.get(), withFields.get(), -1, JWErrorInvalidArgument, "the input layer"},
        {a.get(), nullptr, withFields.get(), -1, JWErrorInvalidArgument, "the overlay layer"},
        {a.get(), b.get(), nullptr, -1, JWErrorInvalidArgument, "the result layer"},
        {a.get(), a.get(), a.get(), -1, JWErrorInvalidArgument, "input and result at once"},
        {a.get(), b.get(), withFields.get(), -3, JWErrorOutputExists, "layer out: "},
        {a.get(), b.get(), output.get(), -2, JWErrorReferencesDiffer, "layer a has"},
        {a.get(), layerOf("b", {}).release(), output.get(), -2, JWErrorReferencesDiffer, "none"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(plainForm()(row.a, row.b, row.output, 0, 0, 10), row.code);
        EXPECT_EQ(JWReport::lastError().kind, row.kind) << JWReport::lastError().text;
        EXPECT_NE(JWReport::lastError().text.find(row.says), std::string::npos)
            << JWReport::lastError().text;
    }
    EXPECT_EQ(output->getFeatureCount(), 0);
    EXPECT_EQ(withFields->getFeatureCount(), 0);
    LayerPtr leaked(rows[6].b);
}

TEST_F(LayerIntersect, ASecondObjectOnAnOperandIsNoResult) {
    const SourcePtr source(JWDataSource::createInMemory());
    const LayerPtr a(source->createLayer("a", JWWKBPolygon, nullptr));
    const LayerPtr again(source->openLayer("a")), other(source->openLayer("a"));
    LayerPtr b = layerOf("b", {{-1, square, "x"}});
    EXPECT_EQ(plainForm()(a.get(), b.get(), again.get(), 0, 0, 10), -1);
    EXPECT_EQ(plainForm()(b.get(), a.get(), again.get(), 0, 0, 10), -1);
    EXPECT_EQ(JWReport::lastError().text, "memory, layer a: is input and result at once");
    EXPECT_EQ(a->getFieldsDefnPtr()->getFieldCount(), 0);
}

TEST_F(LayerIntersect, AttributeModesLayOutTheFields) {
    LayerPtr a = layerOf("towns", {{7, square, "A7"}});
    LayerPtr b = layerOf("zones", {{3, right, "B3"}, {9, beside, "B9"}}, "NAME");
    const std::string piece = "POLYGON ((5 0,10 0,10 10,5 10,5 0))";
    struct {
        int mode;
        const char* fields;
        const char* values;
    } rows[] = {
        {0, "name,NAME_1", "|A7|B3"},
        {1, "FID_towns,FID_zones", "|7|3"},
        {2, "FID_towns,FID_zones,name,NAME_1", "|7|3|A7|B3"},
        {77, "name,NAME_1", "|A7|B3"},
    };
    for (const auto& row : rows) {
        const auto content = run(*a, *b, row.mode);
        EXPECT_EQ(count, 1) << "touching squares make no piece";
        EXPECT_EQ(fields, row.fields);
        ASSERT_EQ(content.size(), 1u);
        const std::size_t bar = content[0].find('|');
        EXPECT_EQ(content[0].substr(bar), row.values);
        EXPECT_EQ(normalizedWkt(*fromWkt(content[0].substr(0, bar).c_str())),
                  normalizedWkt(*fromWkt(piece.c_str())));
    }
}

TEST_F(LayerIntersect, IdentifierFieldsOfLayersOfOneNameStayApart) {
    LayerPtr a = layerOf("same", {{1, square, "A"}});
    LayerPtr b = layerOf("same", {{2, right, "B"}});
    const auto content = run(*a, *b, 1);
    EXPECT_EQ(fields, "FID_same,FID_same_1");
    ASSERT_EQ(content.size(), 1u);
    EXPECT_NE(content[0].find("|1|2"), std::string::npos);
}

TEST_F(LayerIntersect, NumbersBeyond32BitsAreKeptWhole) {
    LayerPtr a = layerOf("a", {{5000000000, square, "A"}});
    LayerPtr b = layerOf("b", {{4, right, "B"}});
    const auto content = run(*a, *b, 1);
    ASSERT_EQ(content.size(), 1u);
    EXPECT_NE(content[0].find("|5000000000|4"), std::string::npos) << content[0];
}

TEST_F(LayerIntersect, ToleranceIsTheSmallestRingAreaKept) {
    LayerPtr a = layerOf("a", {{-1, square, "A"}});
    LayerPtr b = layerOf("b", {{-1, "POLYGON((9 0,11 0,11 10,9 10,9 0))", "B"}});
    EXPECT_EQ(run(*a, *b, 0, 10).size(), 1u);
    EXPECT_EQ(run(*a, *b, 0, 10.5).size(), 0u);
    EXPECT_EQ(run(*a, *b, 0, std::numeric_limits<double>::quiet_NaN()).size(), 1u);
}

TEST_F(LayerIntersect, BlocksAreAnnouncedWithTheirFilter) {
    LayerPtr a = layerOf("a", randomRows(10, 1));
    LayerPtr b = layerOf("b", randomRows(10, 2));
    run(*a, *b, 1, 0, 5);
    for (const char* text :
         {"building spatial index...\n", "input layer block 0 where:fid >= 1 and fid <= 5\n\n",
          "input layer block 1 where:fid >= 6 and fid <= 10\n\n",
          "input layer block 2 where:fid >= 11 and fid <= 15\n\n",
          "block 2 wrote 0 features to result layer!\n"}) {
        EXPECT_NE(messages.text().find(text), std::string::npos) << text;
    }
    EXPECT_EQ(messages.text().find("block 3"), std::string::npos);
}

TEST_F(LayerIntersect, NumberingOfTheSourceDoesNotMatter) {
    const auto rowsA = randomRows(60, 5), rowsB = randomRows(60, 6);
    auto numbered = [](std::vector<Row> rows, std::int64_t first, std::int64_t step) {
        for (Row& row : rows) {
            row.fid = first;
            first += step;
        }
        return rows;
    };
    LayerPtr a = layerOf("a", rowsA), b = layerOf("b", rowsB);
    const auto expected = run(*a, *b, 0, 0, 7);
    ASSERT_GT(expected.size(), 20u);
    struct {
        std::int64_t first, step;
    } numberings[] = {{0, 1}, {1, 1}, {5, 3}, {3000000000, 7}};
    for (const auto& n : numberings) {
        LayerPtr a2 = layerOf("a", numbered(rowsA, n.first, n.step));
        LayerPtr b2 = layerOf("b", numbered(rowsB, n.first, n.step));
        EXPECT_EQ(run(*a2, *b2, 0, 0, 7), expected) << n.first << " step " << n.step;
    }
}

TEST_F(LayerIntersect, WhatCannotBeProcessedIsCountedAndListed) {
    LayerPtr a = layerOf("a", {{1, "", "no geometry"},
                               {2, "POLYGON EMPTY", "empty"},
                               {3, "LINESTRING(0 0,9 9)", "line"},
                               {4, "POLYGON((0 0,1 0,nan 1,0 1,0 0))", "not a number"},
                               {5, "POLYGON((1 1,1 1))", "a ring of one point"},
                               {6, square, "good"}});
    LayerPtr b =
        layerOf("b", {{1, "", "no geometry"}, {2, "POINT(1 1)", "point"}, {3, right, "good"}});
    LayerPtr output = emptyLayer("out");
    JWLayerReport report;
    EXPECT_EQ(JWGeometryOverlay2::intersectPolygonLayers(a.get(), b.get(), output.get(),
                                                         JWOverlayOptions(), &report),
              1);
    EXPECT_EQ(report.readA, 6);
    EXPECT_EQ(report.emptyA, 2);
    EXPECT_EQ(report.emptyB, 1);
    EXPECT_DOUBLE_EQ(report.area, 50);
    ASSERT_EQ(report.rejected.size(), 3u);
    EXPECT_EQ(report.rejected[0].layer, "b");
    EXPECT_EQ(report.rejected[0].fid, 2);
    EXPECT_EQ(report.rejected[1].fid, 3);
    EXPECT_EQ(report.rejected[2].fid, 4);
    EXPECT_EQ(report.rejected[2].reason, "a coordinate is not a finite number");

    // Forms without a report tell by the last error, whichever thread met the feature.
    LayerPtr again = emptyLayer("out");
    EXPECT_EQ(JWGeometryOverlay2::intersectPolygonLayers_mp(a.get(), b.get(), again.get(), 0, 0, 2),
              1);
    EXPECT_EQ(JWReport::lastError().kind, JWErrorFeatureRejected);
    EXPECT_EQ(JWReport::lastError().feature, 2);
    EXPECT_NE(JWReport::lastError().text.find("and 2 more"), std::string::npos);
}

TEST_F(LayerIntersect, EmptyLayersGiveAnEmptyResultWithItsFields) {
    LayerPtr full = layerOf("full", {{-1, square, "x"}}), empty = layerOf("empty", {});
    for (auto [a, b] : {std::pair(full.get(), empty.get()), std::pair(empty.get(), full.get()),
                        std::pair(empty.get(), empty.get())}) {
        EXPECT_EQ(run(*a, *b, 0).size(), 0u);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(fields, "name,name_1");
    }
}

TEST_F(LayerIntersect, AreaFieldHoldsTheAreaOfEachPiece) {
    LayerPtr a = layerOf("a", {{-1, square, "A"}}), b = layerOf("b", {{-1, right, "B"}});
    LayerPtr output = emptyLayer("out");
    JWOverlayOptions options;
    options.areaField = "NAME";
    JWGeometryOverlay2::intersectPolygonLayers(a.get(), b.get(), output.get(), options, nullptr);
    EXPECT_EQ(fieldNames(*output->getFieldsDefnPtr()), "name,name_1,NAME_2");
    double area = 0;
    std::unique_ptr<JWFeature> feature(output->getFeature(0));
    EXPECT_TRUE(feature->getFieldAsDouble(2, area));
    EXPECT_DOUBLE_EQ(area, 50);
}

TEST_F(LayerIntersect, FeatureClassesNeedNoEnvelopes) {
    JWFeatureClass classA, classB;
    for (auto [to, wkt] : {std::pair(&classA, square), std::pair(&classB, right)}) {
        auto polygon = fromWkt(wkt);
        polygon->setEnvelop(JWEnvelop::invalid());
        to->addFeature(new JWFeature());
        to->getFeatureAt(0)->setGeometryDirectly(polygon.release());
    }
    std::unique_ptr<JWFeatureClass> result(
        JWGeometryOverlay2::polygonsIntersectPolygons("a", &classA, "b", &classB, 1, 0));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->getFeatureCount(), 1);
}

// 3,231 counties, 22 of them not valid, and 6,136 half-degree cells. Count and sum are those of
// GEOS 3.11 on input repaired by MakeValid, which reads crossing rings by even-odd as well; repair
// by a buffer of 0 drops lobes of crossing rings and gives 820.2296634.
TEST_F(LayerIntersect, CountiesAndClimateCells) {
    SourcePtr counties(JWDataSource::open(exampleData("us_counties.gpkg").c_str()));
    SourcePtr cells(JWDataSource::open(exampleData("climate_cells.gpkg").c_str()));
    ASSERT_TRUE(counties && cells) << JWReport::lastError().text;
    LayerPtr a(counties->openLayer(0)), b(cells->openLayer(0));
    LayerPtr output = emptyLayer("out", "EPSG:4326");
    JWLayerReport report;
    JWOverlayOptions options;
    options.threads = 8;
    JWGeometryOverlay2::intersectPolygonLayers(a.get(), b.get(), output.get(), options, &report);
    EXPECT_EQ(report.readA, 3231);
    EXPECT_EQ(report.readB, 6136);
    EXPECT_TRUE(report.rejected.empty());
    EXPECT_NEAR(report.area, 820.229693128, 1e-9);
    EXPECT_EQ(report.written, 13593);
}

// --- Files ---------------------------------------------------------------------------------------

class LayerIntersectFiles : public LayerFiles {
  protected:
    /// Writes rows into a file; those labelled `gone` are deleted again, which leaves gaps. Rings
    /// are turned clockwise, as shapefiles want them.
    LayerPtr store(const std::string& file, const std::vector<Row>& rows) const {
        LayerPtr layer = newLayer(file);
        EXPECT_TRUE(layer->createField(JWField("name", JWFieldString)));
        layer->updateFieldsDefnRef();
        for (const Row& row : rows) {
            JWFeature feature(layer->getFieldsDefnPtr());
            JWPolygon polygon = fromWktAs<JWPolygon>(row.wkt.c_str());
            polygon.getRingPtrAt(0)->reverseOrientation();
            feature.setGeometry(&polygon);
            feature.setFieldValue(0, row.label.c_str());
            EXPECT_TRUE(layer->createFeature(&feature)) << JWReport::lastError().text;
        }
        layer.reset();
        GDALDatasetUniquePtr source(
            GDALDataset::Open(path(file).c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE));
        std::vector<GIntBig> numbers;
        for (const auto& feature : source->GetLayer(0)) {
            if (feature->GetFieldAsString("name") == std::string(gone)) {
                numbers.push_back(feature->GetFID());
            }
        }
        for (GIntBig number : numbers) {
            EXPECT_EQ(source->GetLayer(0)->DeleteFeature(number), OGRERR_NONE);
        }
        source.reset();
        return openLayer(file);
    }

    static std::vector<Row> withGaps(const std::vector<Row>& rows) {
        std::vector<Row> all = {{-1, ::square, gone}};
        for (std::size_t i = 0; i < rows.size(); ++i) {
            all.push_back(rows[i]);
            for (std::size_t k = 0; k < i % 3; ++k) all.push_back({-1, ::square, gone});
        }
        return all;
    }

    static constexpr const char* gone = "gone";
    CapturedMessages messages;
};

TEST_F(LayerIntersectFiles, NumberingDoesNotMatter) {
    const auto rowsA = randomRows(50, 21), rowsB = randomRows(60, 22);
    std::vector<std::string> expected;
    for (const bool gaps : {false, true}) {
        for (const std::string ending : {".gpkg", ".shp"}) {
            const std::string name = (gaps ? "gaps" : "dense") + ending;
            LayerPtr a = store("a_" + name, gaps ? withGaps(rowsA) : rowsA);
            LayerPtr b = store("b_" + name, gaps ? withGaps(rowsB) : rowsB);
            ASSERT_EQ(b->getFeatureCount(), 60) << name;
            for (LayerForm form : {plainForm(), &JWGeometryOverlay2::intersectPolygonLayers_mp}) {
                LayerPtr output = emptyLayer("out");
                form(a.get(), b.get(), output.get(), 0, 0, 7);
                const auto content = contentOf(*output);
                if (expected.empty()) expected = content;
                ASSERT_GT(expected.size(), 20u);
                EXPECT_TRUE(content == expected) << name;
            }
        }
    }
}

TEST_F(LayerIntersectFiles, AStatedCountDoesNotDecide) {
    const auto rows = [](int count, double shift) {
        std::vector<Row> made;
        for (int i = 0; i < count; ++i) {
            const auto at = [&](double dx, int y) {
                return std::to_string(3 * i + shift + dx) + " " + std::to_string(y);
            };
            made.push_back({-1,
                            "POLYGON((" + at(0, 0) + "," + at(2, 0) + "," + at(2, 2) + "," +
                                at(0, 2) + "," + at(0, 0) + "))",
                            std::to_string(i)});
        }
        return made;
    };
    using Operation = int (*)(JWFeatureLayer*, JWFeatureLayer*, JWFeatureLayer*,
                              const JWOverlayOptions&, JWLayerReport*);
    JWOverlayOptions options;
    options.keepBorders = false;
    options.blockSize = 2;
    const auto content = [&](Operation operation, JWFeatureLayer& a, JWFeatureLayer& b) {
        LayerPtr output = emptyLayer("out");
        EXPECT_GT(operation(&a, &b, output.get(), options, nullptr), 0);
        return contentOf(*output);
    };
    LayerPtr a = layerOf("a", rows(8, 0)), b = layerOf("b", rows(9, 1));
    store("a.gpkg", rows(8, 0)).reset();
    store("b.gpkg", rows(9, 1)).reset();
    for (const char* file : {"a.gpkg", "b.gpkg"}) {
        GDALDatasetUniquePtr source(
            GDALDataset::Open(path(file).c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE));
        source->ExecuteSQL("UPDATE gpkg_ogr_contents SET feature_count = 3", nullptr, nullptr);
    }
    for (const Operation operation : {Operation(&JWGeometryOverlay2::intersectPolygonLayers),
                                      Operation(&JWGeometryOverlay2::unionPolygonLayers),
                                      Operation(&JWGeometryOverlay2::updatePolygonLayer)}) {
        const LayerPtr fromA = openLayer("a.gpkg"), fromB = openLayer("b.gpkg");
        const std::vector<std::string> expected = content(operation, *a, *b);
        ASSERT_EQ(content(operation, *fromA, *fromB).size(), expected.size());
        // One that is written to counts on from there: seen by reading, and refused.
        const LayerPtr written = openLayer("a.gpkg", true);
        JWFeature feature(written->getFieldsDefnPtr());
        feature.setGeometry(fromWkt(beside).get());
        ASSERT_TRUE(written->beginTransaction());
        EXPECT_TRUE(written->createFeature(&feature));
        LayerPtr output = emptyLayer("out");
        EXPECT_EQ(operation(written.get(), fromB.get(), output.get(), options, nullptr), -1);
        EXPECT_NE(JWReport::lastError().text.find("features that it states"), std::string::npos)
            << JWReport::lastError().text;
        EXPECT_EQ(output->getFeatureCount(), 0);
        written->rollbackTransaction();
    }
}

TEST_F(LayerIntersectFiles, ValuesThatTheOutputCannotHoldAreListed) {
    LayerPtr a = store("a.gpkg", {{-1, ::square, std::string(300, 'x')}, {-1, ::square, "short"}});
    LayerPtr b = store("b.gpkg", {{-1, right, "B"}});
    LayerPtr output = newLayer("out.shp");  // holds texts of up to 254 bytes
    JWOverlayOptions options;
    options.threads = 2;
    JWLayerReport report;
    EXPECT_EQ(JWGeometryOverlay2::intersectPolygonLayers(a.get(), b.get(), output.get(), options,
                                                         &report),
              2);
    ASSERT_EQ(report.rejected.size(), 1u);
    EXPECT_EQ(report.rejected[0].fid, 1);
    EXPECT_EQ(report.written, 2);
    EXPECT_DOUBLE_EQ(report.area, 100);
}

TEST_F(LayerIntersectFiles, ASourceThatBreaksOffLeavesNothingBehind) {
    store("whole.gpkg", randomRows(300, 23)).reset();
    store("torn.gpkg", randomRows(300, 24)).reset();
    const std::size_t page = 4096;
    const std::size_t pages = std::filesystem::file_size(path("torn.gpkg")) / page;
    std::fstream torn(path("torn.gpkg"), std::ios::in | std::ios::out | std::ios::binary);
    torn.seekp(static_cast<std::streamoff>(pages / 2 * page));
    torn << std::string(page, '\xff');
    torn.close();
    for (const auto& [fileA, fileB] :
         {std::pair("torn.gpkg", "whole.gpkg"), std::pair("whole.gpkg", "torn.gpkg")}) {
        LayerPtr a = openLayer(fileA), b = openLayer(fileB), output = emptyLayer("out");
        ASSERT_TRUE(a && b) << JWReport::lastError().text;
        EXPECT_EQ(plainForm()(a.get(), b.get(), output.get(), 0, 0, 5), -1);
        EXPECT_EQ(JWReport::lastError().kind, JWErrorInputUnreadable);
        EXPECT_EQ(output->getFeatureCount(), 0);
        EXPECT_EQ(messages.text().find("wrote to result layer!"), std::string::npos);
    }
    EXPECT_NE(messages.text().find("block 5 wrote"), std::string::npos) << "A was read in part";
}

}  // namespace
