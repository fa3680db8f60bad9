// SPDX-License-Identifier: MIT
//
// hull, mincircle, minrect, envelope, simplify, smooth and transform: what is in their results,
// what their summaries say, and what they answer to options that make no sense.
#include "program.h"

namespace jws::test {
namespace {

using nlohmann::json;

class AnalysisCommands : public ProgramTest {
  protected:
    AnalysisCommands() {
        write("boxes.geojson", geoJson({{0, 0, 4, 2, "a"}, {10, 0, 12, 6, "b"}}));
        write("line.geojson",
              geoJsonFeature("LineString", "[[0,0],[1,0],[2,0.5],[3,0],[4,0],[4,1],[4,2]]"));
        write("points.geojson", geoJsonFeature("MultiPoint", "[[0,0],[4,0],[4,3],[0,3],[2,1]]"));
        write("three.geojson", geoJsonFeature("MultiPoint", "[[0,0],[4,0],[0,3]]"));
        write("plan.points",
              "mapX,mapY,sourceX,sourceY,enable\n"
              "100,200,0,0,1\n102,200,1,0,1\n100,202,0,1,1\n102.4,202,1,1,1\n9,9,9,9,0\n");
    }

    /// Runs a command into out.gpkg.
    Outcome runInto(const std::string& command) const {
        return run(words(command + " out.gpkg --overwrite --json"));
    }
};

TEST_F(AnalysisCommands, ResultsAndAttributes) {
    const char* box = "POLYGON ((0 0,4 0,4 2,0 2,0 0))";
    const char* bend = "LINESTRING (0 0,4 0,4 2)";
    const char* roof = "LINESTRING (0 0,1 0,2.0 0.5,3 0,4 0,4 2)";
    const struct {
        const char* command;  // without the output
        const char* first;
        long long features = 1;
        std::vector<std::string> fields = {"name"};
    } rows[] = {
        {"hull points.geojson", "POLYGON ((0 0,4 0,4 3,0 3,0 0))"},
        {"hull three.geojson", "POLYGON ((0 0,4 0,0 3,0 0))"},
        {"hull boxes.geojson --all", "POLYGON ((0 0,12 0,12 6,10 6,0 2,0 0))", 1, {"count"}},
        {"envelope boxes.geojson", box, 2},
        {"envelope boxes.geojson --all --where name='b'",
         "POLYGON ((10 0,12 0,12 6,10 6,10 0))",
         1,
         {"count"}},
        {"minrect boxes.geojson --smallest width --measures",
         box,
         2,
         {"name", "length", "width", "angle"}},
        {"simplify line.geojson --tolerance 0.5", bend},
        {"simplify line.geojson --method lang --tolerance 0.1 --look-ahead 2", roof},
        {"simplify line.geojson --method perpendicular-distance --tolerance 0.1", roof},
        {"simplify line.geojson --method vertex-reduction --tolerance 1.5",
         "LINESTRING (0 0,2.0 0.5,4 0,4 2)"},
        {"simplify line.geojson --method reumann-witkam --tolerance 0.6",
         "LINESTRING (0 0,4 1,4 2)"},
        {"simplify line.geojson --method opheim --tolerance 0.5 --max-tolerance 9", bend},
        {"simplify line.geojson --method nth-point --every 4", bend},
        {"simplify boxes.geojson --tolerance 2", box, 2},  // two corners are no ring
        {"smooth line.geojson --method boyle --look-ahead 2",
         "LINESTRING (0 0,2.0 0.5,3 0,4 0,4 1,4 2)"},
        {"smooth line.geojson --method sliding-mean --look-ahead 3 --weight 0",
         "LINESTRING (0 0,1 0,2.0 0.5,3 0,4 0,4 1,4 2)"},
        {"smooth line.geojson --method bezier --degree 6 --points 1", "LINESTRING (0 0,4 2)"},
        {"transform boxes.geojson --move -5,3", "POLYGON ((-5 3,-1 3,-1 5,-5 5,-5 3))", 2},
        {"transform boxes.geojson --rotate 90 --origin 0,0 --move 2,0",
         "POLYGON ((2 0,2 4,0 4,0 0,2 0))", 2},
        {"transform boxes.geojson --move 2,0 --rotate 90 --origin 0,0",
         "POLYGON ((0 2,0 6,-2 6,-2 2,0 2))", 2},
        {"transform boxes.geojson --scale -1,1",  // about (6,3)
         "POLYGON ((12 0,8 0,8 2,12 2,12 0))", 2},
        {"transform boxes.geojson --matrix 1,2,0,0,1,0.5 --inverse",
         "POLYGON ((-0.5 1.0,1.5 -3,1.5 1.0,-0.5 5.0,-0.5 1.0))", 2},
        {"transform boxes.geojson --scale 7.450580596923828125e-9 --origin 0,0 --inverse",
         "POLYGON ((0 0,536870912 0,536870912 268435456,0 268435456,0 0))", 2},
        {"transform boxes.geojson --shear 0.5,1 --origin 0,0", "POLYGON ((0 0,4 4,5 6,1 2,0 0))",
         2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        const Outcome outcome = runInto(row.command);
        EXPECT_EQ(0, outcome.status) << outcome.err;
        EXPECT_EQ("", outcome.err);
        const LayerContent content = layer("out.gpkg", "out");
        EXPECT_EQ(row.first, content.first);
        EXPECT_EQ(row.features, content.features);
        EXPECT_EQ(row.fields, content.fields);
        const json object = parse(outcome);
        EXPECT_EQ(words(row.command)[0], object["command"]);
        EXPECT_EQ(row.features, object["output"]["features"]);
        EXPECT_EQ(content.geometryType != "Line String", object["output"].contains("area"));
        EXPECT_TRUE(object["seconds"].contains("run"));
    }
}

TEST_F(AnalysisCommands, SummariesSayWhatApplies) {
    const json simplified = parse(runInto("simplify line.geojson --method nth-point --every 4"));
    EXPECT_EQ(7, simplified["account"]["input_vertices"]);
    EXPECT_EQ(3, simplified["account"]["output_vertices"]);
    EXPECT_EQ("nth-point", simplified["parameters"]["method"]);
    EXPECT_EQ(4, simplified["parameters"]["every"]);
    EXPECT_FALSE(simplified["parameters"].contains("area_field"));
    const Outcome text = run({"hull", "points.geojson", "hull.gpkg"});
    EXPECT_EQ(std::string::npos, text.out.find("account"));
    EXPECT_NE(std::string::npos, text.out.find("area     12 square degrees")) << text.out;
    // A single point has no hull, which is told.
    write("point.geojson", geoJsonFeature("Point", "[1,1]"));
    const Outcome none = runInto("hull point.geojson");
    EXPECT_EQ(4, none.status);
    EXPECT_EQ(1, parse(none)["rejected"]["count"]);
    const Outcome whole = run({"hull", "point.geojson", "whole.gpkg", "--all"});
    EXPECT_EQ(4, whole.status);
    EXPECT_NE(std::string::npos, whole.err.find("layer point: the layer as a whole")) << whole.err;
}

TEST_F(AnalysisCommands, ControlPointsTellTheirResiduals) {
    const json object = parse(runInto("transform boxes.geojson --gcp plan.points"));
    // The fourth target is 0.4 east of where three of them would have it: by least squares each of
    // the four is off by 0.1.
    const json& control = object["control"];
    ASSERT_EQ(4u, control["points"].size());
    for (const json& point : control["points"]) {
        EXPECT_NEAR(0.1, point["residual"].get<double>(), 1e-12);
        EXPECT_NEAR(0, point["dy"].get<double>(), 1e-12);
    }
    EXPECT_NEAR(0.1, control["root_mean_square"].get<double>(), 1e-12);
    EXPECT_NEAR(2.2, object["matrix"][1].get<double>(), 1e-12);
    const Outcome text = run({"transform", "boxes.geojson", "fit.gpkg", "--gcp", "plan.points"});
    EXPECT_NE(std::string::npos, text.out.find("rms      0.1 over 4 control points")) << text.out;
    EXPECT_NE(std::string::npos, text.out.find("control  4: 1 1 to 102.4 202, off by 0.1"));
}

TEST_F(AnalysisCommands, WhatMakesNoSenseIsRefused) {
    write("short.points", "1,2,3\n");
    write("one_line.points", "0 0 0 0\n1 1 1 1\n2 2 2 2\n");
    const struct {
        const char* command;  // without the output
        const char* text;
        int status = 2;
    } rows[] = {
        {"simplify line.geojson", "--method douglas-peucker needs --tolerance"},
        {"simplify line.geojson --tolerance 0", "must be a number above 0"},
        {"simplify line.geojson --tolerance 1 --every 3",
         "--every means nothing to --method douglas-peucker"},
        {"simplify line.geojson --method nth-point --every 1.5",
         "must be an integer of at least 1"},
        {"simplify line.geojson --method opheim --tolerance 2 --max-tolerance 1",
         "--max-tolerance must not be below --tolerance"},
        {"simplify line.geojson --method best", "is not one of"},
        {"simplify points.geojson --tolerance 1", "lines or polygons are needed"},
        {"smooth line.geojson --method sliding-mean --look-ahead 4",
         "--look-ahead must be an odd integer of at least 3 for --method sliding-mean"},
        {"smooth line.geojson --method bezier --degree 171 --points 2",
         "--degree: must be an integer from 1 to 170"},
        {"transform boxes.geojson", "nothing to do"},
        {"transform boxes.geojson --move 1", "'1' is not of the form DX,DY"},
        {"transform boxes.geojson --move 1,nan", "'1,nan' is not of the form DX,DY"},
        {"transform boxes.geojson --scale 0 --inverse", "cannot be inverted"},
        {"transform boxes.geojson --scale 1e308", "beyond all numbers"},
        {"transform boxes.geojson --gcp none.points", "cannot be opened", 3},
        {"transform boxes.geojson --gcp short.points", "line 1", 3},
        {"transform boxes.geojson --gcp one_line.points", "not on one line"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        const Outcome outcome = run(words(std::string(row.command) + " refused.gpkg"));
        EXPECT_EQ(row.status, outcome.status);
        EXPECT_NE(std::string::npos, outcome.err.find(row.text)) << outcome.err;
        EXPECT_FALSE(exists("refused.gpkg"));
    }
}

}  // namespace
}  // namespace jws::test
