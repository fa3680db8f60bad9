// SPDX-License-Identifier: MIT
//
// jwcg intersect on small layers: what is in the result, and that the account of the run adds up.
#include "program.h"

namespace jws::test {
namespace {

using Arguments = std::vector<std::string>;

class Intersect : public ProgramTest {
  protected:
    Intersect() {
        // Two squares of A, each sharing a unit square with the one of B that counts.
        write("a.geojson", geoJson({{0, 0, 2, 2, "left"}, {2, 0, 4, 2, "right"}}));
        write("b.geojson", geoJson({{1, 1, 3, 3, "middle"}, {9, 9, 10, 10, "far"}}));
    }

    Outcome intersect(const std::string& output, const Arguments& more = {}) const {
        Arguments all{"intersect", "a.geojson", "b.geojson", output};
        all.insert(all.end(), more.begin(), more.end());
        return run(all);
    }
};

TEST_F(Intersect, EveryFormatHoldsTheSameResult) {
    for (const char* name : {"out.gpkg", "out.geojson", "out.shp", "out.fgb", "out.sqlite",
                             "out.gml", "out.kml", "out.tab", "out.gdb", "bare", "ünï çode.gpkg"}) {
        SCOPED_TRACE(name);
        const Outcome outcome = intersect(name);
        EXPECT_EQ(0, outcome.status) << outcome.err;
        EXPECT_EQ("", outcome.err);
        const LayerContent content = layer(name, std::filesystem::path(name).stem().string());
        EXPECT_TRUE(content.exists);
        EXPECT_EQ(2, content.features);
        EXPECT_NEAR(2, content.area, 1e-6);  // MapInfo stores coordinates on a grid
    }
    const LayerContent package = layer("out.gpkg", "out");
    EXPECT_EQ("Multi Polygon", package.geometryType);
    EXPECT_EQ((std::vector<std::string>{"name", "name_1"}), package.fields);
}

TEST_F(Intersect, GeometriesAreNotLostInText) {
    EXPECT_EQ(0, intersect("out.csv").status);
    EXPECT_NE(std::string::npos, read("out.csv").find("MULTIPOLYGON"));
}

TEST_F(Intersect, AttributesAndAreaField) {
    const struct {
        const char* attributes;
        std::vector<std::string> fields;
    } rows[] = {
        {"all", {"name", "name_1", "size"}},
        {"fid", {"FID_a", "FID_b", "size"}},
        {"both", {"FID_a", "FID_b", "name", "name_1", "size"}},
    };
    for (const auto& row : rows) {
        const Outcome outcome = intersect(
            "out.gpkg", {"--attributes", row.attributes, "--area-field", "size", "--overwrite"});
        EXPECT_EQ(0, outcome.status) << outcome.err;
        EXPECT_EQ(row.fields, layer("out.gpkg", "out").fields);
    }
}

TEST_F(Intersect, ToleranceDropsSmallPieces) {
    EXPECT_EQ(0, intersect("out.gpkg", {"--tolerance", "1.5"}).status);
    EXPECT_EQ(0, layer("out.gpkg", "out").features);
    EXPECT_TRUE(layer("out.gpkg", "out").exists);
}

TEST_F(Intersect, JsonAddsUp) {
    const Outcome outcome = intersect("out.gpkg", {"--json", "--output-layer", "pieces"});
    ASSERT_EQ(0, outcome.status) << outcome.err;
    const nlohmann::json object = parse(outcome);
    EXPECT_EQ("intersect", object["command"]);
    EXPECT_EQ(0, object["exit_code"]);
    EXPECT_EQ(2, object["input"]["features"]);
    EXPECT_EQ(2, object["overlay"]["features"]);
    EXPECT_EQ(2, object["pairs"]);
    EXPECT_EQ(0, object["rejected"]["count"]);
    const LayerContent content = layer("out.gpkg", "pieces");
    EXPECT_EQ(content.features, object["output"]["features"]);
    EXPECT_DOUBLE_EQ(content.area, object["output"]["area"].get<double>());
    EXPECT_EQ("square degrees", object["output"]["area_unit"]);
    EXPECT_GT(object["peak_memory_bytes"], 1000000);
    double sum = 0;
    for (const auto& [phase, seconds] : object["seconds"].items()) {
        if (phase != "total") sum += seconds.get<double>();
    }
    EXPECT_NEAR(object["seconds"]["total"].get<double>(), sum, 1e-9);
}

TEST_F(Intersect, RejectedFeaturesAreListedAndTheRestIsWritten) {
    const std::string square = "[[[1,1],[3,1],[3,3],[1,3],[1,1]]]";
    write("b.geojson", R"({"type":"FeatureCollection","features":[)" +
                           geoJsonFeature("LineString", "[[0,0],[1,1]]") + "," +
                           geoJsonFeature("Polygon", square) + R"(,{"type":"Feature",)" +
                           R"("properties":{"name":"none"},"geometry":null}]})");
    const Outcome outcome = intersect("out.gpkg", {"--json"});
    EXPECT_EQ(4, outcome.status);
    const nlohmann::json object = parse(outcome);
    EXPECT_EQ(4, object["exit_code"]);
    EXPECT_EQ(3, object["overlay"]["features"]);
    EXPECT_EQ(1, object["overlay"]["empty"]);
    ASSERT_EQ(1, object["rejected"]["count"]);
    ASSERT_EQ(1u, object["rejected"]["features"].size());
    const nlohmann::json& rejected = object["rejected"]["features"][0];
    EXPECT_EQ("b", rejected["layer"]);
    EXPECT_EQ(0, rejected["fid"]);
    EXPECT_NE(std::string::npos, rejected["reason"].get<std::string>().find("polygon"));
    EXPECT_NE(std::string::npos, outcome.err.find("layer b, feature 0: "));
    EXPECT_NEAR(2, layer("out.gpkg", "out").area, 1e-12);
}

TEST_F(Intersect, LayersAreChosenByName) {
    writePackage("two.gpkg", "small", {{0, 0, 1, 1, "s"}});
    writePackage("two.gpkg", "large", {{0, 0, 4, 4, "l"}});
    const Outcome outcome = run({"intersect", "two.gpkg", "two.gpkg", "out.gpkg", "--input-layer",
                                 "large", "--overlay-layer", "small"});
    EXPECT_EQ(0, outcome.status) << outcome.err;
    EXPECT_NEAR(1, layer("out.gpkg", "out").area, 1e-12);
}

TEST_F(Intersect, StandardOutputCarriesResultsOnly) {
    const Outcome plain = intersect("plain.gpkg");
    EXPECT_NE(std::string::npos, plain.out.find("plain.gpkg, layer plain: 2 features"));
    EXPECT_EQ(std::string::npos, plain.out.find("spatial index"));

    const Outcome quiet = intersect("quiet.gpkg", {"-q"});
    EXPECT_EQ(0, quiet.status);
    EXPECT_EQ("", quiet.out + quiet.err);

    const Outcome verbose = intersect("verbose.gpkg", {"-v", "--json"});
    EXPECT_NE(std::string::npos, verbose.err.find("building spatial index...\n"));
    EXPECT_NE(std::string::npos, verbose.err.find("2 features wrote to result layer!\n"));
    parse(verbose);
}

TEST_F(Intersect, TwoInputsWithoutReferenceAreTheSame) {
    writeNowhere("a.shp", {{0, 0, 2, 2, "a"}});
    writeNowhere("b.shp", {{1, 1, 3, 3, "b"}});
    const Outcome outcome = run({"intersect", "a.shp", "b.shp", "out.gpkg", "--json"});
    EXPECT_EQ(0, outcome.status) << outcome.err;
    const nlohmann::json object = parse(outcome);
    EXPECT_TRUE(object["spatial_reference"].is_null());
    EXPECT_EQ("square units", object["output"]["area_unit"]);
}

}  // namespace
}  // namespace jws::test
