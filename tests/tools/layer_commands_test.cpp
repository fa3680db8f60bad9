// SPDX-License-Identifier: MIT
//
// The commands from layers to a layer, beside intersect: what is in their results, that each gives
// an account that closes, and the options that choose features and names.
#include "program.h"
#include "support/test_paths.h"

namespace jws::test {
namespace {

using Arguments = std::vector<std::string>;
using nlohmann::json;

class LayerCommands : public ProgramTest {
  protected:
    LayerCommands() {
        write("a.geojson", geoJson({{0, 0, 2, 2, "left"}, {2, 0, 4, 2, "right"}}));
        write("b.geojson", geoJson({{1, 1, 3, 3, "middle"}, {9, 9, 10, 10, "far"}}));
        write("self.geojson", geoJson({{0, 0, 2, 2, "x"}, {1, 0, 3, 2, "y"}, {2, 0, 4, 2, "x"}}));
    }
};

TEST_F(LayerCommands, EachGivesItsResultAndAccount) {
    const struct {
        const char* command;  // without the output
        long long features;
        double area;
        std::vector<std::string> fields;
    } rows[] = {
        {"union a.geojson b.geojson", 6, 11, {"name", "name_1"}},
        {"merge a.geojson b.geojson", 2, 11, {"name", "name_1"}},
        {"erase a.geojson b.geojson", 2, 6, {"name"}},
        {"identity a.geojson b.geojson", 4, 8, {"name", "name_1"}},
        {"symdiff a.geojson b.geojson", 4, 9, {"name", "name_1"}},
        {"update a.geojson b.geojson", 4, 11, {"name", "name_1"}},
        {"update a.geojson b.geojson --no-borders", 2, 11, {"name", "name_1"}},
        {"spatial-join a.geojson b.geojson --area-field size",
         2,
         8,
         {"name", "name_1", "join_count", "size"}},
        {"spatial-join b.geojson a.geojson --drop-unmatched --row-per-pair --attributes fid",
         2,
         8,
         {"FID_b", "FID_a", "join_count"}},
        {"self-union self.geojson", 4, 8, {"name", "name_1"}},
        {"self-union self.geojson --merge", 1, 8, {"name"}},
        {"self-intersect self.geojson", 2, 4, {"name", "name_1"}},
        {"self-intersect self.geojson --per-feature", 2, 4, {"name"}},
        {"dissolve self.geojson --by name --stat count,first:name",
         2,
         12,
         {"name", "count", "first_name"}},
        {"dissolve self.geojson", 1, 8, {}},
        {"dissolve b.geojson", 2, 5, {}},
        {"merge a.geojson b.geojson --prefix-a a_", 2, 11, {"a_name", "name"}},
        {"update a.geojson b.geojson --attributes fid", 4, 11, {"FID_a", "FID_b"}},
        {"intersect a.geojson b.geojson --prefix-a a_ --prefix-b b_", 2, 2, {"a_name", "b_name"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        const Arguments arguments = words(row.command);
        const Outcome outcome =
            run(words(row.command + std::string(" out.gpkg --overwrite --json")));
        EXPECT_EQ(0, outcome.status) << outcome.err;
        EXPECT_EQ("", outcome.err);
        const LayerContent content = layer("out.gpkg", "out");
        EXPECT_EQ(row.features, content.features);
        EXPECT_NEAR(row.area, content.area, 1e-12);
        EXPECT_EQ(row.fields, content.fields);
        const json object = parse(outcome);
        EXPECT_EQ(arguments[0], object["command"]);
        const json& account = object["account"];
        EXPECT_EQ(arguments[0] != "spatial-join", account["checked"]);
        if (account["checked"]) {
            EXPECT_GE(1e-12, account["residual"].get<double>());
        }
        EXPECT_TRUE(account["warning"].is_null());
        EXPECT_DOUBLE_EQ(content.area, account["output_area"].get<double>());
        EXPECT_EQ(arguments[1] != "self.geojson" && arguments[0] != "dissolve",
                  object.count("overlay") == 1);
    }
    const Outcome unchecked = run({"erase", "a.geojson", "b.geojson", "plain.gpkg", "--no-check"});
    EXPECT_NE(std::string::npos, unchecked.out.find("; not checked"));
}

/// One command of each way to go over layers.
TEST_F(LayerCommands, ThreadsAndBlocksDoNotChangeTheFile) {
    write("grid.geojson", geoJson(grid(12, 0)));
    write("shifted.geojson", geoJson(grid(12, 0.3)));
    std::filesystem::copy(jwtest::exampleData("us_counties.gpkg"), path("counties.gpkg"));
    for (const char* command : {
             "intersect grid.geojson shifted.geojson",
             "dissolve counties.gpkg --by state",
             "simplify counties.gpkg --tolerance 0.05",
             "hull counties.gpkg --all",
             "clip grid.geojson shifted.geojson",
             "buffer grid.geojson --distance 0.1 --dissolve",
             "to-lines grid.geojson --shared",
             "nearest grid.geojson shifted.geojson --true --k 3",
             "relate grid.geojson shifted.geojson",
         }) {
        SCOPED_TRACE(command);
        const std::string line = command + std::string(" out.csv --overwrite -q");
        ASSERT_EQ(0, run(words(line + " --threads 1 --block-size 0")).status);
        const std::string expected = read("out.csv");
        EXPECT_FALSE(expected.empty());
        ASSERT_EQ(0, run(words(line + " --threads 8 --block-size 50")).status);
        EXPECT_TRUE(expected == read("out.csv"));
    }
}

TEST_F(LayerCommands, AreasBeyondAllNumbersAreSaidNotToBeChecked) {
    write("huge.geojson", geoJson({{0, 0, 1e200, 1e200, "x"}, {1e199, 0, 2e200, 1e200, "y"}}));
    for (const Arguments& command :
         {Arguments{"erase", "huge.geojson", "b.geojson"}, Arguments{"self-union", "huge.geojson"},
          Arguments{"dissolve", "huge.geojson"}}) {
        SCOPED_TRACE(command[0]);
        Arguments all = command;
        all.insert(all.end(), {"out.gpkg", "--overwrite"});
        const Outcome text = run(all);
        EXPECT_EQ(0, text.status);
        EXPECT_EQ("jwcg: warning: the areas are beyond all numbers and were not checked\n",
                  text.err);
        EXPECT_NE(std::string::npos,
                  text.out.find("account  areas beyond all numbers; not checked\n"));
        EXPECT_EQ(std::string::npos, text.out.find("inf"));
        EXPECT_EQ(std::string::npos, text.out.find("nan"));
        all.push_back("--json");
        const json account = parse(run(all))["account"];
        EXPECT_FALSE(account["checked"]);
        EXPECT_TRUE(account["input_area"].is_null());
        EXPECT_TRUE(account["residual"].is_null());
    }
}

TEST_F(LayerCommands, ValuesThatAFormatCannotHoldAreLeftOutAndListed) {
    const std::string text(300, 'x');
    write("long.geojson", geoJson({{0, 0, 2, 2, text}, {1, 0, 3, 2, "short"}}));
    for (const Arguments& command :
         {Arguments{"self-union", "long.geojson"}, Arguments{"dissolve", "long.geojson"},
          Arguments{"simplify", "long.geojson", "--tolerance", "0.001"}}) {
        SCOPED_TRACE(command[0]);
        Arguments all = command;
        all.insert(all.begin() + 2, "out.shp");
        all.push_back("--overwrite");
        if (all[0] == "dissolve") all.insert(all.end(), {"--by", "name"});
        const Outcome outcome = run(all);
        EXPECT_EQ(4, outcome.status);
        EXPECT_NE(std::string::npos, outcome.err.find("the value of field name is too long for a "
                                                      "shapefile; it is left out"))
            << outcome.err;
        EXPECT_EQ(std::string::npos, outcome.err.find("warning")) << outcome.err;
        EXPECT_NEAR(all[0] == "self-union" ? 6 : 8, layer("out.shp", "out").area, 1e-12);
    }
}

TEST_F(LayerCommands, RefusedResultsAreNoFaultOfTheAreas) {
    // Beyond 180 degrees KML has no place for them.
    write("far.geojson", geoJson({{170, 0, 172, 2, "in"}, {190, 0, 192, 2, "out"}}));
    write("bow.geojson", geoJsonFeature("Polygon", "[[[5,5],[7,7],[7,5],[5,7],[5,5]]]"));
    const struct {
        Arguments arguments;
        int status;
        long long features;
        double refused;
    } rows[] = {{{"erase", "far.geojson", "b.geojson"}, 4, 1, 4},
                {{"dissolve", "far.geojson", "--by", "name"}, 4, 1, 4},
                {{"erase", "bow.geojson", "b.geojson"}, 4, 1, 0}};  // the driver drops it
    for (const auto& row : rows) {
        Arguments all = row.arguments;
        SCOPED_TRACE(all[0] + all[1]);
        all.insert(all.begin() + (all[0] == "dissolve" ? 2 : 3), "out.kml");
        all.insert(all.end(), {"--overwrite", "--json"});
        const Outcome outcome = run(all);
        EXPECT_EQ(row.status, outcome.status) << outcome.err;
        const json object = parse(outcome);
        EXPECT_EQ(row.features, object["output"]["features"]);
        EXPECT_NEAR(row.refused, object["account"]["refused_area"].get<double>(), 1e-12);
        EXPECT_GE(1e-12, object["account"]["residual"].get<double>());
        EXPECT_TRUE(object["account"]["warning"].is_null());
    }
}

TEST_F(LayerCommands, DissolveKeepsApartWhatLiesApart) {
    write("far.geojson", geoJson({{0, 0, 1, 1, "x"}, {5, 5, 6, 6, "x"}, {1, 0, 2, 1, "x"}}));
    const struct {
        Arguments more;
        long long features;
    } rows[] = {{{}, 2}, {{"--multipart"}, 2}, {{"--across"}, 1}};
    for (const auto& row : rows) {
        Arguments all{"dissolve", "far.geojson", "out.gpkg", "--by", "name", "--overwrite"};
        all.insert(all.end(), row.more.begin(), row.more.end());
        EXPECT_EQ(0, run(all).status);
        EXPECT_EQ(row.features, layer("out.gpkg", "out").features);
    }
}

TEST_F(LayerCommands, GeometriesThatCannotBeReadAreListed) {
    write("bad.csv",
          "WKT,name\n\"POLYGON((0 0,2 0,2 2,0 2,0 0))\",x\ngarbage,y\n,z\n"
          "\"POLYGON((1 0,3 0,3 2,1 2,1 0))\",x\n");
    for (const Arguments& command :
         {Arguments{"self-union", "bad.csv", "out.gpkg"},
          Arguments{"dissolve", "bad.csv", "out.gpkg"},
          Arguments{"simplify", "bad.csv", "out.gpkg", "--tolerance", "1e-9"},
          Arguments{"buffer", "bad.csv", "out.gpkg", "--distance", "1"},
          Arguments{"clip", "bad.csv", "bad.csv", "out.gpkg"},
          Arguments{"nearest", "bad.csv", "bad.csv", "out.gpkg", "--true"},
          Arguments{"relate", "bad.csv", "bad.csv", "out.csv"}}) {
        SCOPED_TRACE(command[0]);
        Arguments all = command;
        all.push_back("--overwrite");
        const Outcome outcome = run(all);
        EXPECT_EQ(4, outcome.status) << outcome.err;
        EXPECT_NE(std::string::npos, outcome.err.find("feature 2: the geometry cannot be read"))
            << outcome.err;
    }
}

TEST_F(LayerCommands, DissolveTakesFieldsWhoseNamesHoldCommas) {
    write("in.csv",
          "WKT,\"x,y\",x,z\n\"POLYGON((0 0,2 0,2 2,0 0))\",1,1,1\n"
          "\"POLYGON((0 0,2 0,2 2,0 0))\",2,1,1\n");
    const struct {
        const char* by;
        std::vector<std::string> fields;
        long long features;
    } rows[] = {{"x,y", {"x,y"}, 2}, {"z,x,y", {"x,y", "z"}, 2}, {"x,z", {"x", "z"}, 1}};
    for (const auto& row : rows) {
        const Outcome outcome =
            run({"dissolve", "in.csv", "out.gpkg", "--by", row.by, "--overwrite"});
        EXPECT_EQ(0, outcome.status) << outcome.err;
        EXPECT_EQ(row.fields, layer("out.gpkg", "out").fields) << row.by;
        EXPECT_EQ(row.features, layer("out.gpkg", "out").features) << row.by;
    }
}

TEST_F(LayerCommands, DissolveTakesPointsAndLines) {
    const std::string head = R"({"type":"FeatureCollection","features":[)";
    const struct {
        const char *one, *two, *three, *type;
    } rows[] = {
        {R"("Point","coordinates":[1,2])", R"("Point","coordinates":[9,9])",
         R"("Point","coordinates":[3,4])", "Multi Point"},
        {R"("LineString","coordinates":[[0,0],[1,1]])",
         R"("LineString","coordinates":[[5,5],[6,6]])",
         R"("LineString","coordinates":[[0,9],[9,9]])", "Multi Line String"},
    };
    for (const auto& row : rows) {
        std::string text = head;
        for (const char* geometry : {row.one, row.two, row.three}) {
            text += std::string(geometry == row.one ? "" : ",") +
                    R"({"type":"Feature","properties":{"k":")" + (geometry == row.two ? "b" : "a") +
                    R"("},"geometry":{"type":)" + geometry + "}}";
        }
        write("in.geojson", text + "]}");
        const Outcome outcome =
            run({"dissolve", "in.geojson", "out.gpkg", "--by", "k", "--overwrite"});
        EXPECT_EQ(0, outcome.status) << outcome.err;
        EXPECT_EQ(2, layer("out.gpkg", "out").features);
        EXPECT_EQ(row.type, layer("out.gpkg", "out").geometryType);
        EXPECT_EQ(2, run({"dissolve", "in.geojson", "none.gpkg"}).status);
        for (const std::vector<std::string>& more : {std::vector<std::string>{"--multipart"},
                                                     {"--across"},
                                                     {"--tolerance", "1"},
                                                     {"--area-field", "a"}}) {
            Arguments all{"dissolve", "in.geojson", "none.gpkg", "--by", "k"};
            all.insert(all.end(), more.begin(), more.end());
            EXPECT_EQ(2, run(all).status) << more[0];
        }
        // Of no declared type: the first geometry decides.
        write("mixed.geojson", text + R"(,{"type":"Feature","properties":{"k":"a"},"geometry":)"
                                      R"({"type":"Polygon","coordinates":)"
                                      R"([[[0,0],[1,0],[1,1],[0,0]]]}}]})");
        EXPECT_EQ(
            4, run({"dissolve", "mixed.geojson", "out.gpkg", "--by", "k", "--overwrite"}).status);
        EXPECT_EQ(2, layer("out.gpkg", "out").features);
        EXPECT_EQ(row.type, layer("out.gpkg", "out").geometryType);
    }
}

TEST_F(LayerCommands, AttributesOfTwoAreRefusedWhereOneDecides) {
    for (const Arguments& own :
         {Arguments{"self-union", "self.geojson", "o.gpkg", "--merge"},
          Arguments{"self-intersect", "self.geojson", "o.gpkg", "--per-feature"}}) {
        for (const char* option : {"--attributes", "--prefix-a", "--prefix-b"}) {
            Arguments all = own;
            all.insert(all.end(), {option, "both"});
            EXPECT_EQ(2, run(all).status) << own[0] << option;
        }
    }
}

/// Some keep no reference, some tell it only when the file is closed, some convert to one of
/// theirs.
TEST_F(LayerCommands, FormatsAreWrittenWhateverTheyKeepOfAReference) {
    write("metres.geojson", geoJson({{0, 0, 2e5, 2e5, "x"}, {2e5, 0, 4e5, 2e5, "x"}}, 3857));
    for (const char* input : {"metres.geojson", "self.geojson"}) {
        for (const char* ending :
             {"csv", "fgb", "geojson", "geojsonl", "gml", "gpkg", "kml", "shp"}) {
            SCOPED_TRACE(std::string(input) + " " + ending);
            const std::string file = std::string("result.") + ending;
            const Outcome outcome = run({"dissolve", input, file, "--overwrite"});
            EXPECT_EQ(0, outcome.status) << outcome.err;
            EXPECT_EQ(1, layer(file, "result").features);
            EXPECT_EQ(0, run({"erase", input, input, file, "--overwrite"}).status)
                << "an empty one";
        }
    }
}

TEST_F(LayerCommands, ConditionsAndRectanglesChooseFeatures) {
    const struct {
        Arguments more;
        int input;
        long long features;
    } rows[] = {
        {{"--where", "name = 'left'"}, 1, 1},
        {{"--where", "fid > 0"}, 1, 1},
        {{"--bbox", "2.5,0.5,3,1"}, 1, 1},
        {{"--bbox", "3,1,-1,-1"}, 2, 2},  // two opposite corners
        {{"--bbox", "-9,-9,-8,-8"}, 0, 0},
        {{"--where", "name = 'left'", "--bbox", "2.5,0.5,3,1"}, 0, 0},
        {{"--overlay-where", "name = 'far'"}, 2, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.more[1]);
        Arguments all{"intersect",   "a.geojson",    "b.geojson", "out.gpkg",
                      "--overwrite", "--attributes", "both",      "--json"};
        all.insert(all.end(), row.more.begin(), row.more.end());
        const Outcome outcome = run(all);
        EXPECT_EQ(0, outcome.status) << outcome.err;
        EXPECT_EQ(row.input, parse(outcome)["input"]["features"]);
        EXPECT_EQ(row.features, layer("out.gpkg", "out").features);
        EXPECT_EQ("FID_a", layer("out.gpkg", "out").fields.at(0));
    }
}

}  // namespace
}  // namespace jws::test
