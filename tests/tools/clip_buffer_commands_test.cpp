// SPDX-License-Identifier: MIT
//
// clip and buffer: what is in their results, and what they answer to options that make no sense.
#include "program.h"

namespace jws::test {
namespace {

using nlohmann::json;

class ClipBufferCommands : public ProgramTest {
  protected:
    ClipBufferCommands() {
        write("boxes.geojson", geoJson({{0, 0, 4, 2, "a"}, {10, 0, 12, 6, "b"}}));
        write("cutters.geojson", geoJson({{1, -1, 3, 9, "x"}, {3, -1, 11, 9, "y"}}));
        write("line.geojson", geoJsonFeature("LineString", "[[0,1],[12,1],[12,5],[5,5]]"));
        write("across.geojson", geoJsonFeature("LineString", "[[6,0],[6,9]]"));
        write("points.geojson", geoJsonFeature("MultiPoint", "[[0,0],[2,0],[3,1]]"));
        write("widths.geojson", R"({"type":"FeatureCollection","features":[
            {"type":"Feature","properties":{"width":1},"geometry":{"type":"Point","coordinates":[0,0]}},
            {"type":"Feature","properties":{"width":0},"geometry":{"type":"Point","coordinates":[9,0]}},
            {"type":"Feature","properties":{"width":null},"geometry":{"type":"Point","coordinates":[9,9]}},
            {"type":"Feature","properties":{"width":2},"geometry":{"type":"Point","coordinates":[1,0]}}]})");
    }
};

constexpr double kCircle = 3.1256671980047459;  // of 36 corners, radius 1

TEST_F(ClipBufferCommands, ResultsAndAttributes) {
    const struct {
        const char* command;
        long long features;
        double area = 0;
        const char* first = nullptr;  // not looked at
        std::vector<std::string> fields = {"name"};
        int status = 0;
    } rows[] = {
        {"clip boxes.geojson cutters.geojson out.gpkg", 2, 6 + 6,
         "MULTIPOLYGON (((1 0,4 0,4 2,1 2,1 0)))"},
        {"clip boxes.geojson cutters.geojson out.gpkg --outside", 2, 2 + 6},
        {"clip line.geojson cutters.geojson out.gpkg", 1, 0,
         "MULTILINESTRING ((1 1,11 1),(11 5,5 5))"},
        {"clip points.geojson cutters.geojson out.gpkg --overlay-where name='x'", 1, 0,
         "MULTIPOINT (2 0,3 1)"},
        {"clip boxes.geojson out.gpkg --bbox 3,1,11,2", 2, 1 + 1},
        {"clip boxes.geojson line.geojson out.gpkg", 5, 8 + 12},
        {"clip line.geojson across.geojson out.gpkg", 3, 0, "LINESTRING (0 1,6 1)"},
        {"clip points.geojson cutters.geojson out.gpkg --overlay-where name='z'", 0},
        {"clip line.geojson out.gpkg --bbox 0,0,6,9 --outside", 1, 0,
         "MULTILINESTRING ((6 1,12 1,12 5,6 5))"},
        {"buffer points.geojson out.gpkg --distance 0.1", 1, 0.03 * kCircle},
        // Both outlines and four quarters of 24 corners each.
        {"buffer boxes.geojson out.gpkg --distance 1 --edge", 2,
         12 + 16 + 2 * 12 * 0.258819045102521},
        {"buffer widths.geojson out.gpkg --distance-field width",
         2,
         5 * kCircle,
         nullptr,
         {"width"},
         4},
        {"buffer widths.geojson out.gpkg --distance-field width --distance 3 --where fid<>1",
         3,
         (5 + 9) * kCircle,
         nullptr,
         {"width"}},
        // One lies in the other, touching.
        {"buffer widths.geojson out.gpkg --distance-field width --dissolve",
         1,
         4 * kCircle,
         nullptr,
         {},
         4},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        const Outcome outcome = run(words(row.command + std::string(" --overwrite --json")));
        EXPECT_EQ(row.status, outcome.status) << outcome.err;
        const LayerContent content = layer("out.gpkg", "out");
        EXPECT_EQ(row.features, content.features);
        EXPECT_NEAR(row.area, content.area, 1e-6);
        EXPECT_EQ(row.fields, content.fields);
        if (row.first != nullptr) {
            EXPECT_EQ(row.first, content.first);
        }
        const json object = parse(outcome);
        EXPECT_EQ(row.features, object["output"]["features"]);
        EXPECT_EQ(row.status == 4 ? 2 : 0, object["rejected"]["count"]);
    }
}

TEST_F(ClipBufferCommands, AreasThatAreNotFiniteAreLeftOut) {
    const std::string huge = "buffer boxes.geojson out.gpkg --distance 1e300 --overwrite";
    const Outcome text = run(words(huge));
    EXPECT_EQ(0, text.status) << text.err;
    EXPECT_EQ(std::string::npos, text.out.find("area")) << text.out;
    const json output = parse(run(words(huge + " --json")))["output"];
    EXPECT_EQ(2, output["features"]);
    EXPECT_FALSE(output.contains("area") || output.contains("area_unit"));
}

TEST_F(ClipBufferCommands, OptionsThatMakeNoSense) {
    const struct {
        const char* command;
        const char* text;
        int status = 2;
    } rows[] = {
        {"clip boxes.geojson out.gpkg", "CUTTER or --bbox is needed"},
        {"clip boxes.geojson cutters.geojson out.gpkg --bbox 0,0,1,1", "there is no CUTTER"},
        {"clip boxes.geojson out.gpkg --bbox 0,0,1,1 --overlay-layer x",
         "no CUTTER to choose from"},
        {"clip boxes.geojson points.geojson out.gpkg", "polygons are needed"},
        {"clip boxes.geojson line.geojson out.gpkg --outside", "no outside"},
        {"clip points.geojson line.geojson out.gpkg", "lines or polygons are needed"},
        {"clip boxes.geojson missing.geojson out.gpkg", "missing.geojson", 3},
        {"buffer boxes.geojson out.gpkg", "--distance or --distance-field"},
        {"buffer boxes.geojson out.gpkg --distance 0 --distance-field name", "greater than 0"},
        {"buffer boxes.geojson out.gpkg --distance 0", "greater than 0"},
        {"buffer boxes.geojson out.gpkg --distance=-2", "greater than 0"},
        {"buffer boxes.geojson out.gpkg --distance nan", "'nan' is not a finite number"},
        {"buffer boxes.geojson out.gpkg --distance-field nothing", "no field"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        const Outcome outcome = run(words(row.command));
        EXPECT_EQ(row.status, outcome.status);
        EXPECT_NE(std::string::npos, outcome.err.find(row.text)) << outcome.err;
        EXPECT_FALSE(exists("out.gpkg"));
    }
}

}  // namespace
}  // namespace jws::test
