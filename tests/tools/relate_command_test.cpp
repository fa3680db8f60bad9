// SPDX-License-Identifier: MIT
//
// `jwcg relate`: the printed table, the object, the table in a file, filters, and what is refused.
#include <algorithm>

#include "program.h"

namespace jws::test {
namespace {

using Arguments = std::vector<std::string>;
using nlohmann::json;

class RelateCommand : public ProgramTest {
  protected:
    RelateCommand() {
        write("a.geojson", geoJson({{0, 0, 2, 2, "left"}, {2, 0, 4, 2, "right"}}));
        write("b.geojson", geoJson({{1, 0, 2, 1, "in left"}, {4, 0, 5, 2, "beside"}}));
        write("line.geojson", geoJsonFeature("LineString", "[[1,1],[3,1]]"));
    }
};

TEST_F(RelateCommand, PrintsPairsInOrder) {
    const Outcome outcome = run({"relate", "a.geojson", "b.geojson"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.err);
    EXPECT_EQ(
        "fid_a\tfid_b\trelation\tmatrix\n"
        "0\t0\tcontains covers\t212F11FF2\n"
        "1\t0\ttouches\tFF2F11212\n"
        "1\t1\ttouches\tFF2F11212\n",
        outcome.out);
    EXPECT_EQ(
        "fid_a\tfid_b\trelation\tmatrix\n0\t0\tcrosses\t1020F1102\n1\t0\tcrosses\t1020F1102\n",
        run({"relate", "a.geojson", "line.geojson"}).out);
}

TEST_F(RelateCommand, FiltersPairs) {
    const struct {
        Arguments more;
        std::size_t pairs;
    } rows[] = {
        {{}, 3},
        {{"--predicate", "contains"}, 1},
        {{"--predicate", "intersects"}, 3},
        {{"--predicate", "touches", "--overlay-where", "name = 'beside'"}, 1},
        {{"--predicate", "equals"}, 0},
        {{"--pattern", "F********"}, 2},
        {{"--predicate", "touches", "--where", "name = 'left'"}, 0},
        {{"--bbox", "3,0,4,1"}, 2},
        {{"--block-size", "1", "--threads", "2"}, 3},
    };
    for (const auto& row : rows) {
        Arguments all{"relate", "a.geojson", "b.geojson", "--json"};
        all.insert(all.end(), row.more.begin(), row.more.end());
        const json object = parse(run(all));
        EXPECT_EQ(row.pairs, object["relations"].size()) << all.back();
        EXPECT_EQ(0, object.count("output"));
    }
}

TEST_F(RelateCommand, WritesATable) {
    for (const std::string name : {"out.gpkg", "out.csv", "out.geojson"}) {
        const Outcome outcome = run({"relate", "a.geojson", "b.geojson", name, "--json"});
        EXPECT_EQ(0, outcome.status) << outcome.err;
        const json object = parse(outcome);
        EXPECT_EQ(3, object["output"]["features"]);
        EXPECT_EQ(3, object["pairs"]);
        EXPECT_EQ(0, object["output"].count("area"));
    }
    std::string table = read("out.csv");
    table.erase(std::remove(table.begin(), table.end(), '"'), table.end());
    EXPECT_EQ(
        "fid_a,fid_b,relation,matrix\n0,0,contains covers,212F11FF2\n"
        "1,0,touches,FF2F11212\n1,1,touches,FF2F11212\n",
        table);
    EXPECT_EQ(6, run({"relate", "a.geojson", "b.geojson", "out.csv"}).status);
}

TEST_F(RelateCommand, RefusesWhatItCannotDo) {
    write("mercator.geojson", geoJson({{0, 0, 1, 1, "x"}}, 3857));
    const struct {
        Arguments arguments;
        int status;
        const char* text;
    } rows[] = {
        {{"relate", "a.geojson"}, 2, "OVERLAY is required"},
        {{"relate", "a.geojson", "b.geojson", "--overwrite"}, 2, "need an OUTPUT"},
        {{"relate", "a.geojson", "b.geojson", "--predicate", "beside"}, 2, "not one of"},
        {{"relate", "a.geojson", "b.geojson", "--pattern", "2FF"}, 2, "nine characters"},
        {{"relate", "a.geojson", "gone.geojson"}, 3, "gone.geojson"},
        {{"relate", "a.geojson", "mercator.geojson"}, 7, "mercator.geojson"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(row.status, outcome.status) << outcome.err;
        EXPECT_NE(std::string::npos, outcome.err.find(row.text)) << outcome.err;
    }
    EXPECT_EQ(4u, listing().size());
}

}  // namespace
}  // namespace jws::test
