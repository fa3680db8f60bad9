// SPDX-License-Identifier: MIT
//
// Nothing half-written, ever: runs that are interrupted, killed by a full disk or refused leave the
// directory as it was, and a destination that existed keeps its bytes.
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>

#include "program.h"

namespace jws::test {
namespace {

using Arguments = std::vector<std::string>;
using Names = std::vector<std::string>;

class OutputSafety : public ProgramTest {
  protected:
    OutputSafety() {
        write("a.geojson", geoJson({{0, 0, 2, 2, "left"}, {2, 0, 4, 2, "right"}}));
        write("b.geojson", geoJson({{1, 1, 3, 3, "middle"}}));
    }

    Outcome intersect(const std::string& output, const Arguments& more = {},
                      const Conditions& conditions = {}) const {
        Arguments all{"intersect", "a.geojson", "b.geojson", output};
        all.insert(all.end(), more.begin(), more.end());
        return run(all, conditions);
    }

    bool isWorking() const {
        const Names names = listing();
        return std::any_of(names.begin(), names.end(), [](const std::string& name) {
            return name.compare(0, 6, ".jwcg-") == 0;
        });
    }
};

TEST_F(OutputSafety, InterruptedRunsLeaveNothing) {
    // 40,000 squares against four each: far longer than it takes to see the work directory appear.
    writePackage("a.gpkg", "a", grid(200, 0));
    writePackage("b.gpkg", "b", grid(200, 0.5));
    const std::string old = "the former file, whatever it was";
    write("old.gpkg", old);
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
        for (const char* output : {"new.gpkg", "old.gpkg", "new.geojson", "new.shp"}) {
            SCOPED_TRACE(std::string(output) + ", signal " + std::to_string(signal));
            const Names before = listing();
            Conditions conditions;
            conditions.meanwhile = [&](pid_t child) {
                return isWorking() && ::kill(child, signal) == 0;
            };
            const Outcome outcome =
                run({"intersect", "a.gpkg", "b.gpkg", output, "--overwrite"}, conditions);
            EXPECT_EQ(130, outcome.status);
            EXPECT_EQ(0u, outcome.err.find("jwcg: interrupted")) << outcome.err;
            EXPECT_EQ(before, listing());
            EXPECT_EQ(old, read("old.gpkg"));
        }
    }
}

const Arguments everyOperation[] = {
    {"union", "a", "b"},        {"merge", "a", "b"},   {"erase", "a", "b"},
    {"identity", "a", "b"},     {"symdiff", "a", "b"}, {"update", "a", "b"},
    {"spatial-join", "a", "b"}, {"self-union", "a"},   {"self-intersect", "a"},
    {"dissolve", "a"},
};

TEST_F(OutputSafety, EveryOperationCanBeInterrupted) {
    writePackage("a", "a", grid(200, 0));
    writePackage("b", "b", grid(200, 0.5));
    for (Arguments arguments : everyOperation) {
        SCOPED_TRACE(arguments[0]);
        const Names before = listing();
        Conditions conditions;
        conditions.meanwhile = [&](pid_t child) {
            return isWorking() && ::kill(child, SIGINT) == 0;
        };
        arguments.push_back("new.gpkg");
        if (arguments[0] == "dissolve") arguments.insert(arguments.end(), {"--by", "name"});
        const Outcome outcome = run(arguments, conditions);
        EXPECT_EQ(130, outcome.status);
        EXPECT_EQ(0u, outcome.err.find("jwcg: interrupted")) << outcome.err;
        EXPECT_EQ(before, listing());
    }
}

TEST_F(OutputSafety, EveryOperationLeavesTheFormerFileOnAFullDisk) {
    // Overlapping squares, so that every operation has much to write.
    std::vector<Box> boxes = grid(40, 0), moved = grid(40, 0.4);
    boxes.insert(boxes.end(), moved.begin(), moved.end());
    writePackage("a", "a", boxes);
    writePackage("b", "b", grid(20, 0.5));
    for (Arguments arguments : everyOperation) {
        SCOPED_TRACE(arguments[0]);
        write("out.gpkg", "former");
        const Names before = listing();
        Conditions conditions;
        conditions.fileSizeLimit = 150000;
        arguments.insert(arguments.end(), {"out.gpkg", "--overwrite"});
        if (arguments[0] == "dissolve") arguments.insert(arguments.end(), {"--by", "name"});
        if (arguments[0] == "merge") continue;  // everything grows together: one feature
        const Outcome outcome = run(arguments, conditions);
        EXPECT_EQ(5, outcome.status) << outcome.err;
        EXPECT_TRUE(read("out.gpkg") == "former");
        EXPECT_EQ(before, listing());
    }
}

TEST_F(OutputSafety, SecondInterruptEndsAtOnce) {
    writePackage("a.gpkg", "a", grid(200, 0));
    writePackage("b.gpkg", "b", grid(200, 0.5));
    Conditions conditions;
    conditions.meanwhile = [&](pid_t child) {
        return isWorking() && ::kill(child, SIGINT) == 0 && ::kill(child, SIGTERM) == 0;
    };
    const Outcome outcome = run({"intersect", "a.gpkg", "b.gpkg", "out.gpkg"}, conditions);
    EXPECT_EQ(130, outcome.status);
    EXPECT_FALSE(exists("out.gpkg"));
}

TEST_F(OutputSafety, FullDiskLeavesTheFormerFile) {
    write("a.geojson", geoJson(grid(40, 0)));
    write("b.geojson", geoJson(grid(40, 0.5)));
    for (const char* output :
         {"out.gpkg", "out.geojson", "out.shp", "out.fgb", "out.gml", "out.csv", "out.sqlite"}) {
        SCOPED_TRACE(output);
        write(output, "former");
        const Names before = listing();
        Conditions conditions;
        conditions.fileSizeLimit = 150000;  // 6,241 pieces need several times as much
        const Outcome outcome = intersect(output, {"--overwrite"}, conditions);
        EXPECT_EQ(5, outcome.status) << outcome.err;
        EXPECT_EQ(0u, outcome.err.find("jwcg: ")) << outcome.err;
        EXPECT_NE(std::string::npos, outcome.err.find(output)) << outcome.err;
        EXPECT_EQ(std::string::npos, outcome.err.find(".jwcg-")) << outcome.err;
        EXPECT_EQ("former", read(output));
        EXPECT_EQ(before, listing());
    }
}

TEST_F(OutputSafety, OverwriteReplacesAllFilesOfAShapefile) {
    ASSERT_EQ(0, intersect("out.shp").status);
    write("out.qix", "an index of the former shapes");
    write("out.txt", "notes");
    const Outcome refused = intersect("out.shp");
    EXPECT_EQ(6, refused.status);
    write("a.geojson", geoJson({{0, 0, 1.5, 1.5, "left"}}));
    const Outcome outcome = intersect("out.shp", {"--overwrite"});
    EXPECT_EQ(0, outcome.status) << outcome.err;
    EXPECT_FALSE(exists("out.qix"));
    EXPECT_EQ("notes", read("out.txt"));
    EXPECT_NEAR(0.25, layer("out.shp", "out").area, 1e-12);
    EXPECT_FALSE(isWorking());
}

TEST_F(OutputSafety, OverwriteKeepsPermissionsAndFollowsLinks) {
    write("real.gpkg", "former");
    ASSERT_EQ(0, ::chmod(path("real.gpkg").c_str(), 0640));
    std::filesystem::create_symlink("real.gpkg", directory() / "link.gpkg");
    EXPECT_EQ(0, intersect("link.gpkg", {"--overwrite", "--output-layer", "x"}).status);
    EXPECT_TRUE(std::filesystem::is_symlink(directory() / "link.gpkg"));
    EXPECT_EQ(2, layer("real.gpkg", "x").features);
    struct stat status {};
    ASSERT_EQ(0, ::stat(path("real.gpkg").c_str(), &status));
    EXPECT_EQ(0640u, status.st_mode & 0777u);
    std::filesystem::create_symlink("later.gpkg", directory() / "dangling.gpkg");
    EXPECT_EQ(0, intersect("dangling.gpkg", {"--output-layer", "x"}).status);
    EXPECT_TRUE(std::filesystem::is_symlink(directory() / "dangling.gpkg"));
    EXPECT_EQ(2, layer("later.gpkg", "x").features);
}

TEST_F(OutputSafety, InputThroughALinkIsStillAnInput) {
    std::filesystem::create_symlink("a.geojson", directory() / "link.geojson");
    std::filesystem::create_hard_link(directory() / "b.geojson", directory() / "hard.geojson");
    const std::string before = read("a.geojson") + read("b.geojson");
    EXPECT_EQ(2, intersect("link.geojson", {"--overwrite"}).status);
    EXPECT_EQ(2, intersect("hard.geojson", {"--overwrite"}).status);
    EXPECT_EQ(before, read("a.geojson") + read("b.geojson"));
}

TEST_F(OutputSafety, FilesOfAnInputAreNotReplaced) {
    writeNowhere("in.shp", {{0, 0, 2, 2, "left"}});
    write("points.csv", "0,0,0,0\n1,1,2,2\n");
    std::filesystem::create_directory(path("all"));
    std::filesystem::copy(path("in.dbf"), path("all/in.dbf"));
    std::filesystem::copy(path("in.shp"), path("all/in.shp"));
    std::filesystem::copy(path("in.shx"), path("all/in.shx"));
    const Arguments rows[] = {
        {"self-union", "in.shp", "in.dbf", "-f", "CSV"},
        {"self-union", "in.shp", "in.dbf"},
        {"self-union", "in.shp", "in.shx", "-f", "GeoJSON"},
        {"self-union", "in.shp", "IN.gpkg/../in.dbf", "-f", "GPKG"},
        {"self-union", "all", "all/in.dbf", "-f", "GPKG"},
        {"self-union", "all", "all/in.shp"},
        {"transform", "a.geojson", "points.csv", "--gcp", "points.csv"},
    };
    std::filesystem::create_directory(path("IN.gpkg"));
    const Names before = listing();
    const std::string content = read("in.dbf") + read("in.shx") + read("points.csv");
    for (Arguments row : rows) {
        SCOPED_TRACE(row[2]);
        row.push_back("--overwrite");
        const Outcome outcome = run(row);
        EXPECT_EQ(2, outcome.status) << outcome.err;
        EXPECT_NE(std::string::npos, outcome.err.find("input")) << outcome.err;
    }
    EXPECT_EQ(before, listing());
    EXPECT_EQ(content, read("in.dbf") + read("in.shx") + read("points.csv"));
}

TEST_F(OutputSafety, PointsKeepTheirHeights) {
    write("z.geojson", geoJsonFeature("Point", "[1,2,3.5]"));
    const struct {
        Arguments arguments;
        const char* point;
    } rows[] = {{{"transform", "z.geojson", "out.gpkg", "--move", "1,1"}, "POINT (2 3 3.5)"},
                {{"clip", "z.geojson", "out.gpkg", "--bbox", "0,0,9,9"}, "POINT (1 2 3.5)"},
                {{"to-points", "z.geojson", "out.gpkg"}, "POINT (1 2)"}};
    for (const auto& row : rows) {
        Arguments all = row.arguments;
        all.push_back("--overwrite");
        EXPECT_EQ(0, run(all).status) << all[0];
        EXPECT_EQ(row.point, layer("out.gpkg", "out").first) << all[0];
    }
}

TEST_F(OutputSafety, AppendAddsALayerAndKeepsTheOthers) {
    writePackage("store.gpkg", "store", {{0, 0, 3, 3, "kept"}});
    // The file that is read may take the result as a further layer.
    const Outcome outcome = run({"intersect", "store.gpkg", "b.geojson", "store.gpkg", "--append",
                                 "--output-layer", "pieces"});
    EXPECT_EQ(0, outcome.status) << outcome.err;
    EXPECT_NEAR(9, layer("store.gpkg", "store").area, 1e-12);
    EXPECT_NEAR(4, layer("store.gpkg", "pieces").area, 1e-12);

    const std::string before = read("store.gpkg");
    EXPECT_EQ(6, intersect("store.gpkg", {"--append", "--output-layer", "pieces"}).status);
    EXPECT_EQ(before, read("store.gpkg"));

    EXPECT_EQ(
        0, intersect("store.gpkg", {"--append", "--overwrite", "--output-layer", "PIECES"}).status);
    EXPECT_NEAR(2, layer("store.gpkg", "PIECES").area, 1e-12);
    EXPECT_NEAR(9, layer("store.gpkg", "store").area, 1e-12);
    EXPECT_EQ((Names{"a.geojson", "b.geojson", "store.gpkg"}), listing());
}

TEST_F(OutputSafety, FailedAppendLeavesTheFile) {
    write("a.geojson", geoJson(grid(40, 0)));
    write("b.geojson", geoJson(grid(40, 0.5)));
    writePackage("store.gpkg", "store", {{0, 0, 3, 3, "kept"}});
    const std::string before = read("store.gpkg");
    const Names names = listing();
    Conditions conditions;
    conditions.fileSizeLimit = 150000;
    const Outcome outcome =
        intersect("store.gpkg", {"--append", "--output-layer", "pieces"}, conditions);
    EXPECT_EQ(5, outcome.status) << outcome.err;
    EXPECT_EQ(before, read("store.gpkg"));
    EXPECT_EQ(names, listing());
}

TEST_F(OutputSafety, AppendCreatesAMissingFile) {
    EXPECT_EQ(0, intersect("out.gpkg", {"--append"}).status);
    EXPECT_EQ(2, layer("out.gpkg", "out").features);
}

}  // namespace
}  // namespace jws::test
