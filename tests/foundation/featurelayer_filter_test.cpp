// SPDX-License-Identifier: MIT
//
// Attribute conditions and rectangle queries.
#include <gdal_priv.h>
#include <geos_c.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <fstream>
#include <random>

#include "foundation/layer_files.h"
#include "foundation/rectangle_relation.h"

namespace {

using namespace jws;
using namespace jwtest;

class FilterTest : public LayerFiles {};

TEST_F(FilterTest, FidNamesTheIdentifierInEverySource) {
    struct {
        const char* file;
        const char* where;
        std::vector<int> expected;
    } const rows[] = {
        {"a.gpkg", "fid >= 1 and fid <= 5\n", {0, 1, 2, 3, 4}},
        {"a.sqlite", "FID >= 1 and Fid <= 5\n", {0, 1, 2, 3, 4}},
        {"a.shp", "fid >= 1 and fid <= 5\n", {1, 2, 3, 4, 5}},
        {"a.geojson", "fid >= 1 and fid <= 5\n", {1, 2, 3, 4, 5}},
        {"a.csv", "fid >= 1 and fid <= 5\n", {0, 1, 2, 3, 4}},
        {"", "fid >= 1 and fid <= 5\n", {1, 2, 3, 4, 5}},
        {"a.gpkg", "fid>=0", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"a.shp", "n > 7 or 'fid' = 'x'", {8, 9}},
        {"a.gpkg", "", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"a.shp", nullptr, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"a.gpkg", "fid > 100", {}},
        {"a.gdb", "fid <= 2", {0, 1}},
        {"a.gdb", "objectid < 3 or \"OBJECTID\" = 5 or 'OBJECTID' = 'x'", {0, 1, 4}},
        {"a.gpkg", "[n] in (select 8 as [it's;])", {8}},
        {"a.sqlite", "[n] > 7 or n = '['", {8, 9}},
    };
    for (const char* file : {"a.gpkg", "a.sqlite", "a.shp", "a.geojson", "a.csv", "a.gdb"}) {
        writeSquares(file, 10);
    }
    for (const auto& row : rows) {
        const std::string file = row.file;
        const LayerPtr layer = file.empty() ? newLayer("") : openLayer(file);
        if (file.empty()) fillSquares(*layer, 10);
        JWFeatureClass found;
        EXPECT_EQ(layer->getFeaturesByAttributeFilter(row.where, found),
                  static_cast<int>(row.expected.size()))
            << file << ": " << JWReport::lastError().text;
        EXPECT_EQ(numbers(found), row.expected) << file;
        EXPECT_EQ(readInBlocks(*layer, 3), upTo(10)) << "the filter is off again";
    }
}

TEST_F(FilterTest, FidIsTheIdentifierEvenBesideAnAttributeOfThatName) {
    for (const char* file : {"b.shp", "", "b.sqlite"}) {
        LayerPtr layer = newLayer(file);
        ASSERT_TRUE(layer->createField(JWField("FID", JWFieldInteger)));
        ASSERT_TRUE(layer->createField(JWField("n", JWFieldInteger)));
        layer->updateFieldsDefnRef();
        for (int i = 0; i < 6; ++i) {
            const std::unique_ptr<JWFeature> feature(square(*layer, 100 - i));
            feature->setFieldValue(1, i);
            ASSERT_TRUE(layer->createFeature(feature.get()));
        }
        JWFeatureClass found;
        EXPECT_EQ(layer->getFeaturesByAttributeFilter("fid = 2 and n < 5", found), 1) << file;
        ASSERT_EQ(found.getFeatureCount(), 1);
        EXPECT_EQ(found.getFeatureAt(0)->getFID(), 2) << file;
        if (std::string(file) == "b.sqlite") continue;  // whose identifiers have another name
        ASSERT_TRUE(layer->restrictTo("\"fid\" = 98 or n = 1")) << JWReport::lastError().text;
        EXPECT_EQ(layer->getFeatureCount(), 2) << file << ": in quotes it is the attribute";
    }
}

TEST_F(FilterTest, ConditionsThatAreNotUnderstoodFail) {
    for (const char* file : {"a.gpkg", "a.sqlite", "a.shp", "a.geojson"}) {
        writeSquares(file, 10);
        const LayerPtr layer = openLayer(file);
        for (const char* where : {"nonsense = 1", "n >", "fid >= and", "n = 1; nonsense", "n = 1;",
                                  "n > 1 limit 1", "1 = 1 order by n", "n = 1 -- or 2",
                                  "n = 1 /* or 2", "1 = 1) or (n = 0", "(n = 1", "n = 'a"}) {
            JWFeatureClass found;
            JWReport::clearError();
            EXPECT_EQ(layer->getFeaturesByAttributeFilter(where, found), -1) << file << where;
            EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument) << file << where;
            EXPECT_FALSE(openLayer(file)->restrictTo(where)) << file << where;
        }
        EXPECT_EQ(readInBlocks(*layer, 4), upTo(10));
    }
}

// A database answers conditions on dates itself; elsewhere a missing date satisfies no comparison.
// Lists are in one of the formats only.
TEST_F(FilterTest, DatesThatAreMissingAndLists) {
    const char* const squares =
        R"("geometry":{"type":"Polygon","coordinates":[[[0,0],[1,0],[1,1],[0,0]]]}})";
    std::ofstream(path("d.geojson"))
        << R"({"type":"FeatureCollection","features":[)"
        << R"({"type":"Feature","properties":{"n":0,"d":"2019-05-01","t":"2019-05-01T10:00:00","l":[1]},)"
        << squares << R"(,{"type":"Feature","properties":{"n":1},)" << squares
        << R"(,{"type":"Feature","properties":{"n":2,"d":"2021-05-01"},)" << squares << "]}";
    for (const char* file : {"d.gpkg", "d.shp", "d.fgb", "d.csv"}) {
        const LayerPtr source = openLayer("d.geojson"), target = newLayer(file);
        for (int k = 0; k < 2; ++k)
            target->createField(*source->getFieldsDefnPtr()->getFieldPtr(k));
        target->updateFieldsDefnRef();
        for (int i = 0; i < 3; ++i) {
            const std::unique_ptr<JWFeature> from(source->getFeature(i));
            JWFeature feature(target->getFieldsDefnPtr());
            feature.setGeometry(from->getGeometryPtr());
            for (int k = 0; k < 2; ++k) feature.copyFieldFrom(k, *from, k);
            ASSERT_TRUE(target->createFeature(&feature)) << JWReport::lastError().text;
        }
    }
    std::ofstream(path("d.csvt")) << "WKT,Integer,Date\n";
    const struct {
        const char* where;
        std::vector<int> expected;
    } rows[] = {
        {"d > '2020/01/01'", {2}},
        {"'2020-01-01' > d", {0}},
        {"d = '2019/05/01' or n = 1", {0, 1}},
        {"d is null or d > '2020/01/01'", {1, 2}},
        {"d is not null and d <= '2021/05/01'", {0, 2}},
        {"d between '2019/01/01' and '2019/12/31'", {0}},
        {"d in ('2021/05/01')", {2}},
        {"t >= '2019/05/01 09:00:00' or d > '2020/01/01'", {0, 2}},
        {"l is not null", {0}},
        {"l is not null and cast(l as character(40)) like '%1%'", {0}},
    };
    for (const char* file : {"d.geojson", "d.shp", "d.fgb", "d.csv", "d.gpkg"}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(file) + ": " + row.where);
            const LayerPtr layer = openLayer(file);
            const std::string where = row.where;
            const bool hasField = *row.where != 't' && *row.where != 'l';
            if (std::string(file) != "d.geojson" && !hasField) continue;
            if (std::string(file) == "d.gpkg" && where.find('/') != std::string::npos) continue;
            JWFeatureClass found;
            layer->getFeaturesByAttributeFilter(row.where, found);
            std::vector<int> in = numbers(found);
            std::sort(in.begin(), in.end());
            EXPECT_EQ(row.expected, in) << JWReport::lastError().text;
            ASSERT_TRUE(layer->restrictTo(row.where)) << JWReport::lastError().text;
            EXPECT_EQ(row.expected.size(), readInBlocks(*layer, 2).size());
        }
    }
    const LayerPtr layer = openLayer("d.geojson");
    for (const char* where : {"l = 1", "l in (1)", "n = 0 or not (l > 0)", "d > 'soon'"}) {
        JWFeatureClass found;
        JWReport::clearError();
        EXPECT_EQ(layer->getFeaturesByAttributeFilter(where, found), -1) << where;
        EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument) << where;
    }
}

TEST_F(FilterTest, AppendingKeepsWhatIsThere) {
    writeSquares("a.gpkg", 10);
    const LayerPtr layer = openLayer("a.gpkg");
    JWFeatureClass found;
    EXPECT_EQ(layer->getFeaturesByAttributeFilter("n = 1", found), 1);
    EXPECT_EQ(layer->getFeaturesByAttributeFilter("n = 2", found, true), 1);
    EXPECT_EQ(layer->getFeaturesByAttributeFilter("n = nonsense", found, true), -1);
    EXPECT_EQ(
        layer->getFeaturesByEnvelopFilter(JWEnvelop(0, 0, 1, 1), JWRelationOverlap, found, true),
        1);
    EXPECT_EQ(numbers(found), (std::vector<int>{1, 2, 0}));
    EXPECT_EQ(layer->getFeaturesByEnvelopFilter(JWEnvelop::invalid(), JWRelationOverlap, found),
              -1);
    EXPECT_EQ(layer->getFeaturesByEnvelopFilter(JWEnvelop(0, 0, 1, 1), JWRelationNone, found), -1);
}

/// Whichever way a source is read: all features by cursor, by position, and what is asked of them.
void expectOnly(JWFeatureLayer& layer, const std::vector<int>& expected) {
    EXPECT_EQ(static_cast<int>(expected.size()), layer.getFeatureCount());
    for (int i = static_cast<int>(expected.size()) - 1; i >= 0; --i) {
        const std::unique_ptr<JWFeature> feature(layer.getFeature(i));
        ASSERT_TRUE(feature) << JWReport::lastError().text;
        int n = -1;
        feature->getFieldAsInt(feature->getFieldIndex("n"), n);
        EXPECT_EQ(expected[static_cast<std::size_t>(i)], n) << i;
    }
    EXPECT_EQ(nullptr, layer.getFeature(static_cast<int>(expected.size())));
    JWFeatureClass even;
    layer.getFeaturesByAttributeFilter("n = 2 or n = 4 or n = 6 or n = 8", even);
    EXPECT_EQ(
        std::count_if(expected.begin(), expected.end(), [](int n) { return n > 0 && n % 2 == 0; }),
        even.getFeatureCount());
    const JWEnvelop envelop = layer.getLayerEnvelop();
    EXPECT_EQ(!expected.empty(), envelop.isValid());
    if (!expected.empty()) {
        EXPECT_EQ(3.0 * expected.front(), envelop.minX);
        EXPECT_EQ(3.0 * expected.back() + 2, envelop.maxX);
    }
}

TEST_F(FilterTest, ARestrictedLayerHasWhatIsLeftOnly) {
    const JWEnvelop right(12, 0, 20, 1), none(-9, -9, -8, -8), gap(2.25, 0, 2.75, 2);
    const struct {
        const char* where;
        const JWEnvelop* rectangle;
        std::vector<int> expected;
    } rows[] = {
        {"", nullptr, upTo(10)}, {"n > 6 or n = 1", nullptr, {1, 7, 8, 9}},
        {"", &right, {4, 5, 6}}, {"n <> 5", &right, {4, 6}},
        {nullptr, &none, {}},    {"n > 100", nullptr, {}},
        {"n >= 0", &gap, {}},
    };
    const char* const files[] = {"a.gpkg", "a.sqlite", "a.shp", "a.geojson", "a.gml", "a.fgb", ""};
    for (const char* file : files) {
        if (*file != '\0') writeSquares(file, 10);
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(file) + (row.where != nullptr ? row.where : ""));
            const LayerPtr layer = *file != '\0' ? openLayer(file) : newLayer("");
            if (*file == '\0') fillSquares(*layer, 10);
            ASSERT_TRUE(layer->restrictTo(row.where, row.rectangle)) << JWReport::lastError().text;
            std::vector<int> inOrder = row.expected;
            if (std::string(file) == "a.fgb") {  // stored along a curve
                inOrder = readInBlocks(*layer, 3);
                std::vector<int> sorted = inOrder;
                std::sort(sorted.begin(), sorted.end());
                EXPECT_EQ(row.expected, sorted);
                continue;
            }
            EXPECT_EQ(row.expected, readInBlocks(*layer, 3));
            expectOnly(*layer, row.expected);
            ASSERT_TRUE(layer->createSpatialIndex());
            JWFeatureClass found;
            EXPECT_EQ(static_cast<int>(row.expected.size()),
                      layer->getFeaturesByEnvelopFilter(JWEnvelop(0, 0, 99, 9), JWRelationOverlap,
                                                        found));
            ASSERT_TRUE(layer->restrictTo("n <> 4 and n <> 1"));  // of what is left
            inOrder.erase(std::remove_if(inOrder.begin(), inOrder.end(),
                                         [](int n) { return n == 4 || n == 1; }),
                          inOrder.end());
            EXPECT_EQ(inOrder, readInBlocks(*layer, 2));
        }
        const LayerPtr layer = *file != '\0' ? openLayer(file) : newLayer("");
        JWReport::clearError();
        EXPECT_FALSE(layer->restrictTo("nonsense = 1"));
        EXPECT_EQ(JWErrorInvalidArgument, JWReport::lastError().kind) << file;
        const JWEnvelop invalid = JWEnvelop::invalid();
        EXPECT_FALSE(layer->restrictTo("", &invalid));
    }
}

// Rows of a view may share an identifier, or have none.
TEST_F(FilterTest, RestrictedViews) {
    writeSquares("v.gpkg", 8);
    const struct {
        const char* name;
        const char* identifier;
        int all;
    } views[] = {
        {"plain", "n + 1", 8}, {"doubled", "n / 2 + 1", 8}, {"missing", "nullif(n, 0)", 8}};
    {
        GDALDatasetUniquePtr source(
            GDALDataset::Open(path("v.gpkg").c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE));
        ASSERT_TRUE(source);
        const std::string table = source->GetLayer(0)->GetName();
        for (const auto& view : views) {
            const std::string name = view.name;
            for (const std::string& statement :
                 {"CREATE VIEW " + name + " AS SELECT " + view.identifier +
                      " AS OGC_FID, n FROM \"" + table + "\"",
                  "INSERT INTO gpkg_contents (table_name, identifier, data_type) VALUES ('" + name +
                      "', '" + name + "', 'attributes')"}) {
                source->ExecuteSQL(statement.c_str(), nullptr, nullptr);
            }
        }
    }
    for (const auto& view : views) {
        SCOPED_TRACE(view.name);
        const SourcePtr source(JWDataSource::open(path("v.gpkg").c_str(), false));
        const LayerPtr layer(source->openLayer(view.name));
        ASSERT_TRUE(layer);
        EXPECT_EQ(layer->getFeatureCount(), view.all);
        EXPECT_EQ(readInBlocks(*layer, 3), upTo(view.all));
        const bool keyed = std::string(view.name) == "plain";
        const LayerPtr part(source->openLayer(view.name));
        JWReport::clearError();
        EXPECT_EQ(part->restrictTo("n >= 6"), keyed) << JWReport::lastError().text;
        if (keyed) {
            EXPECT_EQ(readInBlocks(*part, 3), (std::vector<int>{6, 7}));
        } else {
            EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument);
        }
    }
}

/// Rectangle (0 0, 10 10) unless stated; the relations that hold, as digits.
TEST(RectangleRelationTest, Table) {
    struct {
        const char* wkt;
        JWEnvelop rectangle;
        const char* relations;
    } const rows[] = {
        {"POINT (5 5)", {0, 0, 10, 10}, "78"},
        {"POINT (10 0)", {0, 0, 10, 10}, "78"},
        {"POINT (11 0)", {0, 0, 10, 10}, "2"},
        {"POINT (5 5)", {5, 5, 5, 5}, "1678"},
        {"POINT EMPTY", {0, 0, 10, 10}, ""},
        {"LINESTRING (0 5, 10 5)", {0, 0, 10, 10}, "78"},
        {"LINESTRING (0 0, 10 0)", {0, 0, 10, 10}, "78"},
        {"LINESTRING (-5 0, 15 0)", {0, 0, 10, 10}, "8"},
        {"LINESTRING (-5 5, 15 5)", {0, 0, 10, 10}, "8"},
        {"LINESTRING (-5 5, 5 -5)", {0, 0, 10, 10}, "8"},
        {"LINESTRING (-5 5, 5 -5.0000001)", {0, 0, 10, 10}, "2"},
        {"LINESTRING (-1 0, -1 20, 20 20)", {0, 0, 10, 10}, "2"},
        {"LINESTRING (0 0, 4 4)", {2, 2, 2, 2}, "68"},
        {"POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))", {0, 0, 10, 10}, "1678"},
        {"POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (4 4, 4 6, 6 6, 6 4, 4 4))",
         {0, 0, 10, 10},
         "78"},
        {"POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (4 4, 4 6, 6 6, 6 4, 4 4))", {4, 4, 6, 6}, "8"},
        {"POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (3 3, 3 7, 7 7, 7 3, 3 3))", {4, 4, 6, 6}, "2"},
        {"POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))", {2, 2, 3, 3}, "68"},
        {"POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))", {0, 2, 3, 3}, "68"},
        {"POLYGON ((10 0, 20 0, 20 10, 10 10, 10 0))", {0, 0, 10, 10}, "8"},
        {"POLYGON ((10 10, 20 10, 20 20, 10 10))", {0, 0, 10, 10}, "8"},
        {"POLYGON ((-30 5, 5 40, 40 5, 5 -30, -30 5))", {0, 0, 10, 10}, "68"},
        {"POLYGON ((0 0, 6 0, 6 6, 5 6, 5 1, 1 1, 1 6, 0 6, 0 0))", {2, 2, 4, 4}, "2"},
        {"POLYGON ((0 0, 6 0, 6 6, 5 6, 5 1, 1 1, 1 6, 0 6, 0 0))", {0, 4, 6, 4}, "8"},
        {"POLYGON ((0 0, 6 0, 6 6, 5 6, 5 1, 1 1, 1 6, 0 6, 0 0))", {0, 0.5, 6, 0.5}, "68"},
        {"POLYGON ((0 0, 6 0, 6 6, 5 6, 5 1, 1 1, 1 6, 0 6, 0 0))", {1, 1, 5, 1}, "68"},
        {"POLYGON EMPTY", {0, 0, 10, 10}, ""},
        {"MULTIPOINT ((50 50), (5 5))", {0, 0, 10, 10}, "8"},
        {"MULTIPOLYGON (((-5 -5, 20 -5, 20 20, -5 20, -5 -5)), ((30 30, 31 30, 31 31, 30 30)))",
         {0, 0, 10, 10},
         "68"},
        {"MULTILINESTRING ((-9 0, -8 0), (20 0, 30 0))", {0, 0, 10, 10}, "2"},
        {"GEOMETRYCOLLECTION (POINT (1 1), LINESTRING (2 2, 3 3))", {0, 0, 10, 10}, "78"},
    };
    for (const auto& row : rows) {
        const auto geometry = fromWkt(row.wkt);
        std::string found;
        for (const int code : {1, 2, 6, 7, 8}) {
            if (jws::detail::hasRelation(*geometry, row.rectangle,
                                         static_cast<enumJWSpatialRelation>(code))) {
                found += std::to_string(code);
            }
        }
        EXPECT_EQ(found, row.relations) << row.wkt;
    }
}

/// Small integer coordinates make touches, shared corners and overlaps along borders frequent.
std::string randomWkt(std::mt19937& random) {
    std::uniform_int_distribution<int> place(0, 12);
    const auto point = [&] {
        return std::to_string(place(random)) + " " + std::to_string(place(random));
    };
    switch (random() % 4) {
        case 0:
            return "POINT (" + point() + ")";
        case 1:
            return "LINESTRING (" + point() + ", " + point() + ", " + point() + ")";
        case 2:
            return "MULTIPOINT ((" + point() + "), (" + point() + "))";
        default:
            break;
    }
    const std::string first = point();
    return "POLYGON ((" + first + ", " + point() + ", " + point() + ", " + first + "))";
}

TEST_F(FilterTest, RectangleQueriesEqualBruteForceWithAndWithoutIndex) {
    const unsigned seed = 20240501;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<std::string> texts;
    while (texts.size() < 300) texts.push_back(randomWkt(random));
    for (const char* file : {"", "r.gpkg", "r.geojson"}) {
        LayerPtr layer = newLayer(file, JWWKBUnknown);
        ASSERT_TRUE(layer->createField(JWField("n", JWFieldInteger)));
        layer->updateFieldsDefnRef();
        for (std::size_t i = 0; i < texts.size(); ++i) {
            JWFeature feature(layer->getFieldsDefnPtr());
            feature.setGeometry(fromWkt(texts[i]).get());
            feature.setFieldValue(0, static_cast<int>(i));
            ASSERT_TRUE(layer->createFeature(&feature)) << JWReport::lastError().text;
        }
        JWFeature none(layer->getFieldsDefnPtr());
        ASSERT_TRUE(layer->createFeature(&none)) << "without geometry: in no relation";
        if (*file != '\0') {
            ASSERT_TRUE(JWFeatureLayer::destroyFeatureLayer(layer.release()));
            layer = openLayer(file);
        }
        for (const bool indexed : {false, true}) {
            ASSERT_TRUE(!indexed || layer->createSpatialIndex());
            for (int q = 0; q < 40; ++q) {
                const double x = static_cast<double>(random() % 10),
                             y = static_cast<double>(random() % 10);
                const JWEnvelop rectangle(x, y, x + static_cast<double>(random() % 4),
                                          y + static_cast<double>(random() % 4));
                for (const int code : {1, 2, 6, 7, 8}) {
                    const auto relation = static_cast<enumJWSpatialRelation>(code);
                    std::vector<int> expected;
                    for (std::size_t i = 0; i < texts.size(); ++i) {
                        if (jws::detail::hasRelation(*fromWkt(texts[i]), rectangle, relation)) {
                            expected.push_back(static_cast<int>(i));
                        }
                    }
                    JWFeatureClass found;
                    ASSERT_EQ(layer->getFeaturesByEnvelopFilter(rectangle, relation, found),
                              static_cast<int>(expected.size()))
                        << file << " " << code;
                    ASSERT_EQ(numbers(found), expected) << file << " " << code;
                }
            }
        }
        EXPECT_EQ(readInBlocks(*layer, 50).size(), texts.size() + 1);
    }
}

/// An independent library's verdict on the same questions.
class Geos {
  public:
    Geos() : m_context(GEOS_init_r()), m_reader(GEOSWKTReader_create_r(m_context)) {}
    ~Geos() {
        GEOSWKTReader_destroy_r(m_context, m_reader);
        GEOS_finish_r(m_context);
    }
    bool holds(const std::string& wkt, const JWEnvelop& r, int code) const {
        GEOSGeometry* g = GEOSWKTReader_read_r(m_context, m_reader, wkt.c_str());
        GEOSGeometry* box = GEOSGeom_createRectangle_r(m_context, r.minX, r.minY, r.maxX, r.maxY);
        const char answer = code == 2   ? GEOSDisjoint_r(m_context, g, box)
                            : code == 6 ? GEOSCovers_r(m_context, g, box)
                            : code == 7 ? GEOSCoveredBy_r(m_context, g, box)
                                        : GEOSIntersects_r(m_context, g, box);
        GEOSGeom_destroy_r(m_context, g);
        GEOSGeom_destroy_r(m_context, box);
        return answer == 1;
    }

  private:
    GEOSContextHandle_t m_context;
    GEOSWKTReader* m_reader;
};

TEST(RectangleRelationTest, AgreesWithGeos) {
    const unsigned seed = 77;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const Geos geos;
    for (int i = 0; i < 4000; ++i) {
        const std::string wkt = randomWkt(random);
        const double x = static_cast<double>(random() % 10), y = static_cast<double>(random() % 10);
        const JWEnvelop r(x, y, x + 1 + static_cast<double>(random() % 4),
                          y + 1 + static_cast<double>(random() % 4));
        const auto geometry = fromWkt(wkt);
        // Flat triangles are invalid for GEOS.
        if (const auto* polygon = dynamic_cast<const JWPolygon*>(geometry.get())) {
            if (polygon->getArea() == 0) continue;
        }
        for (const int code : {2, 6, 7, 8}) {
            ASSERT_EQ(
                jws::detail::hasRelation(*geometry, r, static_cast<enumJWSpatialRelation>(code)),
                geos.holds(wkt, r, code))
                << wkt << " and (" << r.minX << " " << r.minY << ", " << r.maxX << " " << r.maxY
                << "), relation " << code;
        }
    }
}

}  // namespace
