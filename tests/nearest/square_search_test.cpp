// SPDX-License-Identifier: MIT
//
// The established search of the nearest features: worked examples, and random layers against its
// stated loop.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "jw_geometrynearest.h"
#include "support/layers.h"
#include "support/stated_distances.h"

namespace {

using namespace jws;
using namespace jwtest;
using Nearest = JWGeometryNearest;

std::vector<Row> rowsOf(const std::vector<std::string>& geometries) {
    std::vector<Row> rows;
    for (const std::string& wkt : geometries)
        rows.push_back({static_cast<std::int64_t>(rows.size()) * 10 + 10, wkt, ""});
    return rows;
}

constexpr decltype(&Nearest::shortestPointsToPoints) kNames[] = {
    Nearest::shortestPointsToPoints, Nearest::shortestPointsToLines,
    Nearest::shortestPointsToRings,  Nearest::shortestPointsToPolygons,
    Nearest::shortestLinesToPoints,  Nearest::shortestLinesToLines,
    Nearest::shortestLinesToRings,   Nearest::shortestLinesToPolygons};

/// "fields: from-to length line; ..." of what an operation writes.
std::string result(enumJWShortestOperation operation, const std::vector<Row>& sources,
                   const std::vector<Row>& targets) {
    LayerPtr source = layerOf("s", sources), target = layerOf("t", targets),
             out = emptyLayer("out");
    if (!kNames[operation](source.get(), target.get(), out.get())) return "false";
    std::string all = fieldNames(*out->getFieldsDefnPtr()) + ":";
    for (const std::string& row : contentOf(*out)) all += " " + row + ";";
    return all;
}

struct Case {
    enumJWShortestOperation operation;
    std::vector<std::string> sources, targets;
    const char* expected;
};

class SquareSearch : public testing::TestWithParam<Case> {};

TEST_P(SquareSearch, Layers) {
    EXPECT_EQ(result(GetParam().operation, rowsOf(GetParam().sources), rowsOf(GetParam().targets)),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SquareSearch,
    testing::Values(
        Case{JWShortestPointsToPoints,
             {"POINT(0 0)"},
             {"POINT(3 4)", "POINT(-5 0)", "POINT(9 9)", "POINT(3 -4)"},
             "FPointFid,TPointFid,ShortestLength: LINESTRING (0 0, 3 4)|10|10|5; LINESTRING (0 0, "
             "3 -4)|10|40|5;"},
        // Only what meets the first square that meets anything counts: (9.01 8) is nearer.
        Case{JWShortestPointsToPoints,
             {"POINT(8 8)"},
             {"POINT(0 0)", "POINT(16 16)", "POINT(8.9 8.9)", "POINT(9.01 8)"},
             "FPointFid,TPointFid,ShortestLength: LINESTRING (8 8, 8.9 8.9)|10|30|"
             "1.272792206135786;"},
        // Outside on both axes the square grows by one of them only.
        Case{JWShortestPointsToPoints,
             {"POINT(11 100)", "POINT(5 100)"},
             {"POINT(0 0)", "POINT(10 10)"},
             "FPointFid,TPointFid,ShortestLength: LINESTRING (5 100, 10 10)|20|20|"
             "90.13878188659973;"},
        // 25 steps of 1/17 add up to the end, 1 + 8/17, though 25 times the step is below it.
        Case{JWShortestPointsToRings,
             {"POINT(-0.1 2.0205882352941176)"},
             {"POLYGON((0 0,0.47058823529411764 0,0.47058823529411764 0.47058823529411764,"
              "0 0.47058823529411764,0 0))"},
             "RingFid,PointFid,ShortestLength:"},
        // More steps than a double counts.
        Case{JWShortestPointsToPoints,
             {"POINT(0.1 0.5)"},
             {"POINT(0 0)", "POINT(1e-17 0)"},
             "FPointFid,TPointFid,ShortestLength: LINESTRING (0.1 0.5, 0 0)|10|10|"
             "0.5099019513592785; LINESTRING (0.1 0.5, 1e-17 0)|10|20|0.5099019513592785;"},
        // All targets at one place.
        Case{JWShortestPointsToPoints,
             {"POINT(-5 -9)", "POINT(1 5)"},
             {"POINT(0 0)", "POINT(0 0)"},
             "FPointFid,TPointFid,ShortestLength: LINESTRING (-5 -9, 0 0)|10|10|"
             "10.295630140987; LINESTRING (-5 -9, 0 0)|10|20|10.295630140987; LINESTRING (1 5, 0 "
             "0)|20|10|5.0990195135927845; LINESTRING (1 5, 0 0)|20|20|5.0990195135927845;"},
        // Of equal segments of one target the first counts.
        Case{JWShortestPointsToLines,
             {"POINT(0 0)"},
             {"LINESTRING(1 -1,1 1,-1 1,-1 -1)"},
             "PointFid,LineFid,ShortestLength: LINESTRING (0 0, 1 0)|10|10|1;"},
        Case{JWShortestPointsToRings,
             {"POINT(5 5)"},
             {"POLYGON((0 0,20 0,20 20,0 20,0 0),(4 4,8 4,8 8,4 8,4 4))"},
             "RingFid,PointFid,ShortestLength: LINESTRING (5 5, 4 5)|10|10|1;"},
        Case{JWShortestPointsToPolygons,
             {"POINT(5 5)", "POINT(1 1)"},
             {"MULTIPOLYGON(((0 0,20 0,20 20,0 20,0 0),(4 4,8 4,8 8,4 8,4 4)))"},
             "PolygonFid,PointFid,ShortestLength: LINESTRING (5 5, 4 5)|10|10|1; LINESTRING (1 1, "
             "1 1)|20|10|0;"},
        Case{JWShortestLinesToPoints,
             {"MULTILINESTRING((0 0,4 0),(0 9,4 9))"},
             {"POINT(2 1)", "POINT(2 7)"},
             "LineFid,PointFid,ShortestLength: LINESTRING (2 1, 2 0)|10|10|1; LINESTRING (2 7, 2 "
             "9)|10|20|2;"},
        Case{JWShortestLinesToLines,
             {"LINESTRING(0 0,10 0)"},
             {"LINESTRING(4 -3,6 3)", "LINESTRING(5 2,5 9)"},
             "FLineFid,TLineFid,ShortestLength: LINESTRING (5 2, 5 0)|10|20|2;"},
        Case{JWShortestLinesToRings,
             {"LINESTRING(4 4,5 4)"},
             {"POLYGON((0 0,10 0,10 10,0 10,0 0))"},
             "LinesFid,RingFid,ShortestLength: LINESTRING (4 4, 4 0)|10|10|4;"},
        Case{JWShortestLinesToPolygons,
             {"LINESTRING(4 4,5 4)", "LINESTRING(12 0,12 3)"},
             {"POLYGON((0 0,10 0,10 10,0 10,0 0))"},
             "LinesFid,PolygonFid,ShortestLength: LINESTRING (4 4, 4 4)|10|10|0; LINESTRING (12 0, "
             "10 0)|20|10|2;"},
        // Features of other kinds take no part.
        Case{JWShortestPointsToPoints,
             {"MULTIPOINT(0 0)", "LINESTRING(0 0,1 1)", "POINT(1 1)"},
             {"POINT(0 0)", "POLYGON((0 0,5 0,5 5,0 0))", ""},
             "FPointFid,TPointFid,ShortestLength: LINESTRING (1 1, 0 0)|30|10|"
             "1.4142135623730951;"},
        Case{JWShortestPointsToPoints, {}, {"POINT(0 0)"}, "false"},
        Case{JWShortestPointsToPoints, {"POINT(0 0)"}, {""}, "false"}));

TEST(SquareSearchLayers, OutputsWithFields) {
    LayerPtr source = layerOf("s", rowsOf({"POINT(0 0)"})), out = layerOf("out", {}, "note");
    EXPECT_TRUE(Nearest::shortestPointsToPoints(source.get(), source.get(), out.get()));
    EXPECT_EQ(contentOf(*out), std::vector<std::string>{"LINESTRING (0 0, 0 0)|-|10|10|0"});
    LayerPtr taken = layerOf("out", {}, "TPointFid");
    EXPECT_FALSE(Nearest::shortestPointsToPoints(source.get(), source.get(), taken.get()));
    EXPECT_EQ(JWReport::lastError().kind, JWErrorOutputExists);
    EXPECT_EQ(fieldNames(*taken->getFieldsDefnPtr()), "TPointFid");
    EXPECT_FALSE(Nearest::shortestPointsToPoints(source.get(), nullptr, out.get()));
    EXPECT_FALSE(Nearest::shortestPointsToPoints(source.get(), out.get(), out.get()));
}

// --- against the stated loop ---------------------------------------------------------------------

struct Record {
    JWRawPoint from{0, 0}, to{0, 0};
    double length = 0;
    int index = 0;
};

/// Candidate distances of one operation, step by step; `take(length, from, to)`.
template <class Take>
void candidates(enumJWShortestOperation operation, const stated::Line& part,
                const JWGeometry& target, const Take& take) {
    JWRawPoint p, q;
    const auto parts = stated::partsOf(target);
    const auto polygons = [&] {
        std::vector<const JWPolygon*> list;
        if (target.getGeometryType() == JWGeometryPolygon)
            return list.push_back(static_cast<const JWPolygon*>(&target)), list;
        for (const JWPolygon& member : static_cast<const JWMultiPolygon&>(target).getMemberList())
            list.push_back(&member);
        return list;
    };
    const auto pointSource = [&] {
        switch (operation) {
            case JWShortestPointsToPoints:
                return take(stated::distance(part[0], parts[0][0]), part[0], parts[0][0]);
            case JWShortestPointsToLines:
                for (const auto& line : parts)
                    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
                        const double d = stated::pointSegment(part[0], line[i], line[i + 1], q);
                        take(d, part[0], q);
                    }
                return;
            case JWShortestPointsToRings:
                for (const JWPolygon* polygon : polygons())
                    for (const JWRing& ring : polygon->getRingList()) {
                        const double d = stated::pointRing(part[0], ring, q);
                        take(d, part[0], q);
                    }
                return;
            default:
                for (const JWPolygon* polygon : polygons()) {
                    const double d = stated::pointPolygon(part[0], *polygon, q);
                    take(d, part[0], q);
                }
        }
    };
    if (operation <= JWShortestPointsToPolygons) return pointSource();
    if (operation == JWShortestLinesToPoints) {
        const double d = stated::pointLine(parts[0][0], part, q);
        return take(d, parts[0][0], q);
    }
    for (std::size_t s = 0; s + 1 < part.size(); ++s) {
        if (operation == JWShortestLinesToLines) {
            for (const auto& line : parts)
                for (std::size_t i = 0; i + 1 < line.size(); ++i) {
                    const double d =
                        stated::segmentSegment(part[s], part[s + 1], line[i], line[i + 1], p, q);
                    take(d, p, q);
                }
            continue;
        }
        for (const JWPolygon* polygon : polygons()) {
            p = q = part[s];
            if (operation == JWShortestLinesToPolygons) {
                const double d = stated::segmentPolygon(part[s], part[s + 1], *polygon, p, q);
                take(d, p, q);
                continue;
            }
            for (const JWRing& ring : polygon->getRingList()) {
                p = q = part[s];
                const double d = stated::segmentRing(part[s], part[s + 1], ring, p, q);
                take(d, p, q);
            }
        }
    }
}

JWEnvelop around(const std::vector<stated::Line>& parts) {
    JWEnvelop box = JWEnvelop::invalid();
    for (const auto& part : parts)
        for (const JWRawPoint& p : part) box.inflates_to_contain(p);
    return box;
}

double beyond(const JWEnvelop& source, const JWEnvelop& extent) {
    if (source.maxX < extent.minX) return extent.minX - source.maxX;
    if (source.minX > extent.maxX) return source.minX - extent.maxX;
    if (source.maxY < extent.minY) return extent.minY - source.maxY;
    if (source.minY > extent.maxY) return source.minY - extent.maxY;
    return 0;
}

std::vector<std::string> statedRows(enumJWShortestOperation operation, JWFeatureLayer& source,
                                    JWFeatureLayer& target) {
    const double divisors[] = {16, 16, 8, 16, 16, 16, 32, 32};
    JWFeatureClass sources, targets;
    source.getFeaturesByPosition(0, source.getFeatureCount(), sources);
    target.getFeaturesByPosition(0, target.getFeatureCount(), targets);
    std::vector<JWEnvelop> boxes;
    JWEnvelop extent = JWEnvelop::invalid();
    for (int i = 0; i < targets.getFeatureCount(); ++i) {
        boxes.push_back(around(stated::partsOf(*targets.getFeatureAt(i)->getGeometryPtr())));
        extent.inflates_to_contain(boxes.back());
    }
    const double D = std::max(extent.maxX - extent.minX, extent.maxY - extent.minY);
    const double step = D / divisors[operation];
    const bool fromPoints = operation <= JWShortestPointsToPolygons;
    std::vector<std::string> rows;
    for (int s = 0; s < sources.getFeatureCount(); ++s) {
        const JWFeature& feature = *sources.getFeatureAt(s);
        for (const stated::Line& part : stated::partsOf(*feature.getGeometryPtr())) {
            const JWEnvelop box = around({part});
            const JWRawPoint centre = fromPoints ? part[0] : box.center();
            const double base = fromPoints ? 0 : std::max(box.width(), box.height()) / 2;
            std::vector<int> found;
            for (double r = fromPoints ? step : 0; r < D + 1.0 && found.empty(); r += step) {
                const double e = r + base + beyond(box, extent);
                const JWEnvelop square(centre.x - e, centre.y - e, centre.x + e, centre.y + e);
                for (std::size_t i = 0; i < boxes.size(); ++i)
                    if (!boxes[i].isDisjoin(square)) found.push_back(static_cast<int>(i));
            }
            std::vector<Record> records;
            double least = DBL_MAX;
            for (const int i : found)
                candidates(operation, part, *targets.getFeatureAt(i)->getGeometryPtr(),
                           [&](double length, const JWRawPoint& from, const JWRawPoint& to) {
                               for (const Record& known : records)
                                   if (known.index == i && known.length == length) return;
                               if (length > least) return;
                               records.push_back({from, to, length, i});
                               least = length;
                           });
            for (const Record& record : records) {
                if (record.length != least) continue;
                JWFields none;
                JWFeature row(&none);
                const JWRawPoint ends[] = {record.from, record.to};
                row.setGeometryDirectly(new JWLineString(ends, 2));
                rows.push_back(describe(row) + "|" + std::to_string(feature.getFID()) + "|" +
                               std::to_string(targets.getFeatureAt(record.index)->getFID()));
            }
        }
    }
    return rows;
}

std::string randomWkt(std::mt19937& random, int kind, double grid) {
    const auto place = [&] { return grid * static_cast<double>(random() % 200); };
    const auto text = [](double x, double y) {
        return std::to_string(x) + " " + std::to_string(y);
    };
    const double x = place(), y = place();
    if (kind == 0) return "POINT(" + text(x, y) + ")";
    const auto near = [&] { return grid * static_cast<double>(random() % 17) - 8 * grid; };
    std::string line;
    const int n = 2 + static_cast<int>(random() % 4) + (random() % 8 == 0 ? 60 : 0);
    if (kind == 1) {
        for (int i = 0; i < n; ++i) line += (i ? "," : "") + text(x + near(), y + near());
        return random() % 4 == 0 ? "MULTILINESTRING((" + line + "),(" + text(x, y) + "," +
                                       text(x + near() + grid / 3, y) + "))"
                                 : "LINESTRING(" + line + ")";
    }
    const auto square = [&](double half) {
        return "(" + text(x - half, y - half) + "," + text(x + half, y - half) + "," +
               text(x + half, y + half) + "," + text(x - half, y + half) + "," +
               text(x - half, y - half) + ")";
    };
    const double half = grid * static_cast<double>(3 + random() % 9);
    return random() % 2 == 0 ? "POLYGON(" + square(half) + "," + square(half / 3) + ")"
                             : "MULTIPOLYGON((" + square(half) + "))";
}

TEST(SquareSearchLayers, RandomLayersEqualTheStatedLoop) {
    std::mt19937 random(31);
    const int targetKind[] = {0, 1, 2, 2, 0, 1, 2, 2};
    for (int round = 0; round < 96; ++round) {
        const auto operation = static_cast<enumJWShortestOperation>(round % 8);
        const double grid = round % 3 == 0 ? 1 : round % 3 == 1 ? 0.25 : 1e-3;
        std::vector<std::string> sources, targets;
        const int count = 1 + static_cast<int>(random() % 40);
        for (int i = 0; i < 25; ++i)
            sources.push_back(randomWkt(random, operation <= JWShortestPointsToPolygons ? 0 : 1,
                                        grid * (i % 5 == 0 ? 3 : 1)));
        for (int i = 0; i < count; ++i)
            targets.push_back(randomWkt(random, targetKind[operation], grid));
        LayerPtr source = layerOf("s", rowsOf(sources)), target = layerOf("t", rowsOf(targets));
        LayerPtr out = emptyLayer("out");
        ASSERT_TRUE(kNames[operation](source.get(), target.get(), out.get()));
        std::vector<std::string> rows = contentOf(*out);
        for (std::string& row : rows) row.erase(row.rfind('|'));
        EXPECT_EQ(rows, statedRows(operation, *source, *target))
            << "operation " << operation << " round " << round;
    }
}

TEST(SquareSearchLayers, SourcesWithoutAnswerAreCounted) {
    LayerPtr source = layerOf("s", rowsOf({"POINT(11 100)", "POINT(5 100)", "POINT(-70 99)"}));
    LayerPtr target = layerOf("t", rowsOf({"POINT(0 0)", "POINT(10 10)"})), out = emptyLayer("out");
    JWLayerReport report;
    report.written = 99;
    EXPECT_EQ(Nearest::shortestFeatures(JWShortestPointsToPoints, source.get(), target.get(),
                                        out.get(), 1, &report, 2),
              1);
    EXPECT_EQ(report.warning.substr(0, 10), "2 features");
    EXPECT_EQ(JWReport::lastError().kind, JWErrorNone);
    EXPECT_EQ(Nearest::shortestFeatures(JWShortestPointsToPoints, source.get(), target.get(),
                                        out.get(), 1, &report),
              -1);  // the fields are there
    EXPECT_EQ(report.written, 0);
}

TEST(SquareSearchLayers, TeamWritesTheSame) {
    std::mt19937 random(5);
    std::vector<std::string> sources, targets;
    for (int i = 0; i < 400; ++i) sources.push_back(randomWkt(random, 0, 1));
    for (int i = 0; i < 300; ++i) targets.push_back(randomWkt(random, 1, 1));
    LayerPtr source = layerOf("s", rowsOf(sources)), target = layerOf("t", rowsOf(targets));
    std::vector<std::string> first;
    for (const int threads : {1, 8}) {
        LayerPtr out = emptyLayer("out");
        EXPECT_GE(Nearest::shortestFeatures(JWShortestPointsToLines, source.get(), target.get(),
                                            out.get(), threads, nullptr),
                  400);
        if (threads == 1) first = contentOf(*out);
        EXPECT_EQ(contentOf(*out), first);
    }
}

}  // namespace
