// SPDX-License-Identifier: MIT
//
// jwcg info: what it tells about layers that GDAL itself has written.
#include "program.h"

namespace jws::test {
namespace {

using nlohmann::json;

class Info : public ProgramTest {};

TEST_F(Info, JsonDescribesEveryLayer) {
    writePackage("two.gpkg", "first", {{0, 0, 2, 2, "a"}, {5, -1, 6, 7, "b"}});
    writePackage("two.gpkg", "second", {});
    const Outcome outcome = run({"info", "two.gpkg", "--json"});
    ASSERT_EQ(0, outcome.status) << outcome.err;
    const json object = parse(outcome);
    EXPECT_EQ("GPKG", object["format"]);
    ASSERT_EQ(2u, object["layers"].size());
    const json& first = object["layers"][0];
    EXPECT_EQ("first", first["name"]);
    EXPECT_EQ(2, first["features"]);
    EXPECT_EQ("polygon", first["geometry_type"]);
    EXPECT_EQ(json::parse("[0,-1,6,7]"), first["extent"]);
    EXPECT_EQ("EPSG:4326 (WGS 84)", first["spatial_reference"]);
    ASSERT_EQ(1u, first["fields"].size());
    EXPECT_EQ("name", first["fields"][0]["name"]);
    EXPECT_EQ("text", first["fields"][0]["type"]);
    const json& second = object["layers"][1];
    EXPECT_EQ(0, second["features"]);
    EXPECT_TRUE(second["extent"].is_null());
}

TEST_F(Info, ScanCountsWhatIsThere) {
    write("mixed.geojson", R"({"type":"FeatureCollection","features":[)" +
                               geoJsonFeature("Polygon", "[[[0,0],[1,0],[1,1],[0,0]]]") + "," +
                               geoJsonFeature("Point", "[0,0]") + "," +
                               R"({"type":"Feature","properties":{},"geometry":)" +
                               R"({"type":"GeometryCollection","geometries":[]}},)" +
                               R"({"type":"Feature",)" + R"("properties":{},"geometry":null}]})");
    const Outcome outcome = run({"info", "mixed.geojson", "--scan", "--json"});
    ASSERT_EQ(0, outcome.status) << outcome.err;
    const json layer = parse(outcome)["layers"][0];
    EXPECT_EQ("any", layer["geometry_type"]);
    EXPECT_EQ(4, layer["scan"]["features"]);
    EXPECT_EQ(1, layer["scan"]["without_geometry"]);
    EXPECT_EQ(1, layer["scan"]["empty_geometry"]);
    EXPECT_EQ(json::parse(R"({"polygon":1,"point":1})"), layer["scan"]["geometry_types"]);
}

TEST_F(Info, TextSaysTheSame) {
    writePackage("two.gpkg", "first", {{0, 0, 2, 2, "a"}});
    const Outcome outcome = run({"info", "two.gpkg", "--scan"});
    EXPECT_EQ(0, outcome.status) << outcome.err;
    for (const char* text :
         {"file      two.gpkg", "layer     first", "features  1", "geometry  polygon",
          "extent    0, 0 to 2, 2", "reference EPSG:4326 (WGS 84)", "fields    name text",
          "1 features, 0 without geometry"}) {
        EXPECT_NE(std::string::npos, outcome.out.find(text)) << text << "\n" << outcome.out;
    }
}

}  // namespace
}  // namespace jws::test
