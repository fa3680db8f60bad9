// SPDX-License-Identifier: MIT
//
// The commands to-lines, to-points and nearest: results, fields, and what they refuse.
#include "program.h"

namespace jws::test {
namespace {

class ConvertCommands : public ProgramTest {
  protected:
    ConvertCommands() {
        write("a.geojson", geoJson({{0, 0, 2, 2, "left"}, {2, 0, 4, 2, "right"}}, 32633));
        write("degrees.geojson", geoJson({{0, 0, 2, 2, "left"}, {2, 0, 4, 2, "right"}}));
        write("road.geojson", geoJsonFeature("LineString", "[[0,5],[9,5]]"));
        write("stop.geojson", geoJsonFeature("Point", "[1,3]"));
        const std::string road = geoJsonFeature("LineString", "[[0,5],[9,5]]"),
                          roads =
                              geoJsonFeature("MultiLineString", "[[[0,6],[9,6]],[[0,7],[9,7]]]"),
                          stops = geoJsonFeature("MultiPoint", "[[1,3],[2,4]]");
        write("roads.geojson", collection(road + "," + roads));
        write("mixed.geojson", collection(road + "," + stops));
        write("stops.geojson", stops);
        write("empty.geojson", collection(""));
        write("nowhere.geojson",
              collection(R"({"type":"Feature","properties":{"name":"x"},"geometry":null})"));
    }
    static std::string collection(const std::string& features) {
        return R"({"type":"FeatureCollection","features":[)" + features + "]}";
    }
};

TEST_F(ConvertCommands, EachGivesItsResult) {
    const std::vector<std::string> sides = {"orig_fid", "left_fid", "right_fid", "name"},
                                   ranks = {"source_fid", "target_fid", "distance", "rank"};
    const struct {
        const char* command;  // without the output
        long long features;
        const char* type;
        std::vector<std::string> fields;
        bool warnsOfDegrees = false;
    } rows[] = {
        {"to-lines a.geojson", 2, "Multi Line String", {"orig_fid", "name"}},
        {"to-lines a.geojson --shared", 3, "Line String", sides},
        {"to-lines a.geojson --shared --inner --snap 0.1", 1, "Line String", sides},
        {"to-points a.geojson", 2, "Point", {"orig_fid", "name"}},
        {"to-points a.geojson --inside", 2, "Point", {"orig_fid", "name"}},
        {"to-points a.geojson --vertices --every 2", 4, "Point", {"orig_fid", "vertex", "name"}},
        {"nearest stop.geojson road.geojson",
         1,
         "Line String",
         {"PointFid", "LineFid", "ShortestLength"},
         true},
        {"nearest stop.geojson degrees.geojson --boundary",
         1,
         "Line String",
         {"RingFid", "PointFid", "ShortestLength"},
         true},
        {"nearest roads.geojson roads.geojson",  // of no declared type; one for each line
         3,
         "Line String",
         {"FLineFid", "TLineFid", "ShortestLength"},
         true},
        {"nearest a.geojson a.geojson --true --others", 2, "Line String", ranks},
        {"nearest stop.geojson degrees.geojson --true --k 2 --max-distance 1.2", 1, "Line String",
         ranks, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        const Outcome outcome =
            run(words(row.command + std::string(" out.gpkg --overwrite --json")));
        EXPECT_EQ(0, outcome.status) << outcome.err;
        const bool warned = outcome.err.find("degrees") != std::string::npos;
        EXPECT_EQ(row.warnsOfDegrees, warned) << outcome.err;
        const LayerContent content = layer("out.gpkg", "out");
        EXPECT_EQ(row.features, content.features);
        EXPECT_EQ(row.type, content.geometryType);
        EXPECT_EQ(row.fields, content.fields);
        EXPECT_EQ(words(row.command)[0], parse(outcome)["command"]);
    }
}

TEST_F(ConvertCommands, WhatDoesNotGoTogetherIsRefused) {
    for (const char* command : {
             "to-lines road.geojson",
             "to-lines a.geojson --inner",
             "to-lines a.geojson --snap 1",
             "to-points a.geojson --inside --vertices",
             "to-points a.geojson --spacing 2",
             "nearest degrees.geojson road.geojson",
             "nearest stop.geojson road.geojson --k 2",
             "nearest stop.geojson road.geojson --max-distance 2",
             "nearest stop.geojson road.geojson --true --k 0",
         }) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(words(command + std::string(" out.gpkg")));
        EXPECT_EQ(2, outcome.status);
        EXPECT_NE("", outcome.err);
        EXPECT_FALSE(exists("out.gpkg"));
    }
    EXPECT_EQ(7, run({"nearest", "stop.geojson", "a.geojson", "out.gpkg"}).status);
}

TEST_F(ConvertCommands, NearestTellsWhatItDoesNotTake) {
    const struct {
        const char *source, *target, *text;
    } rows[] = {
        {"mixed.geojson", "road.geojson",
         "mixed holds geometries of several kinds; --true takes any"},
        {"road.geojson", "mixed.geojson",
         "mixed holds geometries of several kinds; --true takes any"},
        {"stops.geojson", "road.geojson",
         "multi-point geometries, not points or lines; --true takes"},
        {"road.geojson", "stops.geojson", "multi-point geometries, not points, lines or polygons;"},
        {"empty.geojson", "road.geojson", "empty: has no features with a geometry"},
        {"road.geojson", "empty.geojson", "empty: has no features with a geometry"},
        {"nowhere.geojson", "nowhere.geojson", "nowhere: has no features with a geometry"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.source) + " " + row.target);
        const Outcome outcome = run({"nearest", row.source, row.target, "out.gpkg"});
        EXPECT_EQ(2, outcome.status);
        EXPECT_NE(std::string::npos, outcome.err.find(row.text)) << outcome.err;
        EXPECT_FALSE(exists("out.gpkg"));
    }
}

}  // namespace
}  // namespace jws::test
