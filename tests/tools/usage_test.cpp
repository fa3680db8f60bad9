// SPDX-License-Identifier: MIT
//
// What the program answers to command lines and inputs that it cannot work with: one line on
// standard error that names the trouble, the documented exit status, and no trace on the disk.
#include <algorithm>

#include "program.h"

namespace jws::test {
namespace {

using Arguments = std::vector<std::string>;

struct Row {
    Arguments arguments;
    int status;
    const char* text;  ///< to be found on standard error
};

class Usage : public ProgramTest {
  protected:
    Usage() {
        write("a.geojson", geoJson({{0, 0, 2, 2, "a"}}));
        write("b.geojson", geoJson({{1, 1, 3, 3, "b"}}));
        write("mercator.geojson", geoJson({{1, 1, 3, 3, "b"}}, 3857));
        writeNowhere("nowhere.shp", {{1, 1, 3, 3, "b"}});
        write("lines.geojson", geoJsonFeature("LineString", "[[0,0],[1,1]]"));
        write("points.geojson", geoJsonFeature("Point", "[0,0]"));
        write("text.gpkg", "this is no GeoPackage");
        const std::string whole = geoJson({{0, 0, 2, 2, "a"}, {2, 0, 4, 2, "b"}});
        write("cut.geojson", whole.substr(0, whole.size() * 2 / 3));
        writePackage("two.gpkg", "first", {{0, 0, 2, 2, "a"}});
        writePackage("two.gpkg", "second", {{0, 0, 2, 2, "a"}});
        write("wide.geojson", wide());
        write("old.gpkg", "old");
        write("half.dbf", "old");
        std::filesystem::create_directory(directory() / "folder.gpkg");
    }

    /// A square with 1,200 attributes.
    static std::string wide() {
        std::string text = geoJson({{0, 0, 2, 2, "a"}}), fields;
        for (int i = 0; i < 1200; ++i) fields += "\"f" + std::to_string(i) + "\":1,";
        const std::string name = "\"name\"";
        return text.replace(text.rfind(name), 0, fields);
    }

    void check(const Row& row) {
        std::string line = "jwcg";
        for (const std::string& argument : row.arguments) line += " " + argument;
        SCOPED_TRACE(line);
        const std::vector<std::string> before = listing();
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(row.status, outcome.status) << outcome.err;
        EXPECT_NE(std::string::npos, outcome.err.find(row.text)) << outcome.err;
        EXPECT_EQ("", outcome.out);
        EXPECT_EQ(1, std::count(outcome.err.begin(), outcome.err.end(), '\n')) << outcome.err;
        EXPECT_EQ(0u, outcome.err.find("jwcg: ")) << outcome.err;
        EXPECT_EQ(before, listing());
    }
};

TEST_F(Usage, CommandLines) {
    const auto with = [](const Arguments& more) {
        Arguments all{"intersect", "a.geojson", "b.geojson", "out.gpkg"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    };
    const Row rows[] = {
        {{}, 2, "no command given"},
        {{"frobnicate"}, 2, "frobnicate"},
        {{"--completion", "tcsh"}, 2, "tcsh"},
        {{"intersect"}, 2, "INPUT is required"},
        {{"intersect", "a.geojson", "b.geojson"}, 2, "OUTPUT is required"},
        {with({"extra"}), 2, "extra"},
        {with({"--nonsense"}), 2, "--nonsense"},
        {with({"--tolerance", "nan"}), 2, "'nan'"},
        {with({"--tolerance", "inf"}), 2, "'inf'"},
        {with({"--tolerance", "1e999"}), 2, "'1e999'"},
        {with({"--tolerance=-1"}), 2, "'-1'"},
        {with({"--tolerance", "1x"}), 2, "'1x'"},
        {with({"--tolerance="}), 2, "--tolerance"},
        {with({"--threads=-1"}), 2, "'-1'"},
        {with({"--threads", "1.5"}), 2, "'1.5'"},
        {with({"--threads", "99999999999"}), 2, "'99999999999'"},
        {with({"--block-size=-1"}), 2, "'-1'"},
        {with({"--block-size", "many"}), 2, "'many'"},
        {with({"--attributes", "some"}), 2, "some"},
        {with({"--area-field", ""}), 2, "--area-field"},
        {with({"--input-layer", ""}), 2, "--input-layer"},
        {with({"-q", "-v"}), 2, "-q"},
        {with({"-f", "carrier pigeon"}), 2, "GeoJSON"},
        {with({"-f", "Memory"}), 2, "GPKG"},
        {with({"-f", "PostgreSQL"}), 2, "GPKG"},
        {{"info"}, 2, "FILE is required"},
    };
    for (const Row& row : rows) check(row);
}

TEST_F(Usage, InputsAndOutputs) {
    const Row rows[] = {
        {{"intersect", "gone.gpkg", "b.geojson", "out.gpkg"}, 3, "gone.gpkg"},
        {{"intersect", "a.geojson", "gone.gpkg", "out.gpkg"}, 3, "gone.gpkg"},
        {{"intersect", "text.gpkg", "b.geojson", "out.gpkg"}, 3, "text.gpkg"},
        {{"intersect", "cut.geojson", "b.geojson", "out.gpkg"}, 3, "cut.geojson"},
        {{"info", "gone.gpkg"}, 3, "gone.gpkg"},
        {{"info", "text.gpkg"}, 3, "text.gpkg"},
        {{"info", "cut.geojson"}, 3, "cut.geojson"},
        {{"intersect", "a.geojson", "two.gpkg", "out.gpkg", "--overlay-layer", "third"},
         2,
         "third"},
        {{"intersect", "lines.geojson", "b.geojson", "out.gpkg"}, 2, "line string"},
        {{"intersect", "a.geojson", "points.geojson", "out.gpkg"}, 2, "points.geojson"},
        {{"intersect", "a.geojson", "mercator.geojson", "out.gpkg"}, 7, "3857"},
        {{"intersect", "a.geojson", "nowhere.shp", "out.gpkg"},
         7,
         "nowhere.shp: layer nowhere has no spatial reference"},
        {{"intersect", "nowhere.shp", "a.geojson", "out.gpkg"},
         7,
         "nowhere.shp: layer nowhere has no spatial reference"},
        {{"intersect", "a.geojson", "b.geojson", "old.gpkg"}, 6, "old.gpkg"},
        {{"intersect", "a.geojson", "b.geojson", "half.shp"}, 6, "half.dbf"},
        {{"intersect", "a.geojson", "b.geojson", "a.geojson", "--overwrite"}, 2, "also an input"},
        {{"intersect", "a.geojson", "b.geojson", "./b.geojson", "--overwrite"}, 2, "also an input"},
        {{"intersect", "two.gpkg", "b.geojson", "two.gpkg", "--append", "--overwrite",
          "--input-layer", "first", "--output-layer", "FIRST"},
         2,
         "also an input"},
        {{"intersect", "a.geojson", "b.geojson", "two.gpkg", "--append", "--output-layer",
          "second"},
         6,
         "second"},
        {{"intersect", "a.geojson", "b.geojson", "lines.geojson", "--append"}, 2, "another layer"},
        {{"intersect", "a.geojson", "b.geojson", "folder.gpkg", "--overwrite"}, 2, "directory"},
        {{"intersect", "a.geojson", "b.geojson", "gone/out.gpkg"}, 2, "gone/out.gpkg"},
        {{"intersect", "a.geojson", "b.geojson", "/proc/out.gpkg"}, 2, "/proc/out.gpkg"},
        {{"intersect", "a.geojson", "b.geojson", "/dev/null", "--overwrite"}, 2, "ordinary file"},
        {{"intersect", "a.geojson", "b.geojson", "/vsimem/out.gpkg"}, 2, "ordinary file"},
        {{"intersect", "a.geojson", "b.geojson", ""}, 2, "OUTPUT"},
        {{"intersect", "a.geojson", "b.geojson", "out.xyz"}, 2, "'.xyz'"},
        {{"intersect", "a.geojson", "b.geojson", "out.xlsx"}, 2, "XLSX does not hold polygons"},
        {{"intersect", "a.geojson", "b.geojson", "out.txt"}, 2, "'.txt'"},
        {{"intersect", "a.geojson", "b.geojson", "out.txt", "-f", "CSV"}, 2, "ends in .csv"},
        {{"intersect", "a.geojson", "b.geojson", "out", "-f", "ESRI Shapefile"}, 2, "ends in .shp"},
        {{"intersect", "a.geojson", "b.geojson", "out.shp", "--output-layer", "other"},
         2,
         "calls the layer out"},
        {{"intersect", "wide.geojson", "wide.geojson", "out.gpkg"}, 2, "too many columns"},
        {{"intersect", "wide.geojson", "wide.geojson", "out.sqlite"}, 2, "too many columns"},
        {{"intersect", "a.geojson", "b.geojson", "out.kml", "-f", "KML"}, 2, "fields of its own"},
    };
    for (const Row& row : rows) check(row);
}

TEST_F(Usage, FailureWithJsonIsOneObject) {
    const Outcome outcome =
        run({"intersect", "a.geojson", "mercator.geojson", "out.gpkg", "--json"});
    EXPECT_EQ(7, outcome.status);
    const nlohmann::json object = parse(outcome);
    EXPECT_EQ(7, object["exit_code"]);
    EXPECT_EQ(outcome.err, "jwcg: " + object["error"].get<std::string>() + "\n");
}

TEST_F(Usage, HelpVersionManualAndCompletion) {
    const struct {
        Arguments arguments;
        std::vector<std::string> texts;
    } rows[] = {
        {{"--version"}, {"jwcg 0."}},
        {{"--help"}, {"intersect", "info", "Exit status", "130", "Example"}},
        {{"intersect", "--help"}, {"--tolerance", "--append", "Example:\n  jwcg intersect"}},
        {{"info", "--help"}, {"--json", "Example:\n  jwcg info"}},
        {{"--man"}, {".TH JWCG 1", "jwcg intersect", "\\-\\-block\\-size", ".SH EXIT STATUS"}},
        {{"--completion", "bash"},
         {"complete -F _jwcg jwcg", "--overlay-layer", "GeoJSON", "both"}},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(0, outcome.status);
        EXPECT_EQ("", outcome.err);
        for (const std::string& text : row.texts) {
            EXPECT_NE(std::string::npos, outcome.out.find(text)) << text << "\n" << outcome.out;
        }
    }
}

}  // namespace
}  // namespace jws::test
