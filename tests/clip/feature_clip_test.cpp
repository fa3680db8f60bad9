// SPDX-License-Identifier: MIT
//
// The dispatch by kinds, points, bad input, and features, feature classes and layers clipped.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/clip_pieces.h"
#include "support/layers.h"

using namespace jws;
using namespace jwtest;

namespace {

const char* const kSquare = "POLYGON ((0 0,10 0,10 10,0 10,0 0))";
const char* const kTwo =
    "MULTIPOLYGON (((0 0,10 0,10 10,0 10,0 0)),((20 0,30 0,30 10,20 10,20 0)))";

struct Dispatch {
    const char* target;
    const char* cutter;
    int pieces;
    enumJWGeometryType type;
};

TEST(ClipDispatch, EveryPairOfKinds) {
    const char* line = "LINESTRING (-5 5,35 5)";
    const char* lines = "MULTILINESTRING ((-5 5,35 5),(5 -5,5 15))";
    const char* points = "MULTIPOINT ((5 5),(50 50),(0 0),(10 5))";
    const std::vector<Dispatch> rows = {
        {line, "LINESTRING (5 0,5 9)", 2, JWGeometryLineString},
        {line, lines, 2, JWGeometryLineString},
        {line, kSquare, 3, JWGeometryLineString},
        {line, kTwo, 5, JWGeometryLineString},
        {lines, "LINESTRING (5 0,5 9)", 5, JWGeometryLineString},
        {lines, "MULTILINESTRING ((7 0,7 9),(1 1,9 1))", 4, JWGeometryLineString},
        {lines, kSquare, 6, JWGeometryLineString},
        {lines, kTwo, 8, JWGeometryLineString},
        {kSquare, kTwo, 1, JWGeometryPolygon},
        {kTwo, "POLYGON ((5 5,25 5,25 8,5 8,5 5))", 1, JWGeometryMultiPolygon},
        {kSquare, line, 2, JWGeometryPolygon},
        {kSquare, lines, 4, JWGeometryPolygon},
        {kTwo, line, 4, JWGeometryPolygon},
        {kTwo, lines, 6, JWGeometryPolygon},
        {points, kSquare, 2, JWGeometryMultiPoint},
        {points, kTwo, 2, JWGeometryMultiPoint},
        {points, line, 0, JWGeometryNone},
        {"POINT (5 5)", kSquare, 0, JWGeometryNone},
        {line, points, 0, JWGeometryNone},
        {line, "GEOMETRYCOLLECTION (POINT (1 1))", 0, JWGeometryNone},
        {"GEOMETRYCOLLECTION (POINT (1 1))", kSquare, 0, JWGeometryNone},
        {kSquare, "POLYGON ((50 50,60 50,60 60,50 50))", 0, JWGeometryNone},
    };
    for (const Dispatch& row : rows) {
        const auto target = fromWkt(row.target), cutter = fromWkt(row.cutter);
        for (const bool tree : {true, false}) {
            ClipLists<JWGeometry> plain, team;
            const int answer = JWGeometryClip::geometryClipByGeometry(target.get(), cutter.get(),
                                                                      plain.pieces, false, tree);
            JWGeometryClip::geometryClipByGeometry_mp(target.get(), cutter.get(), team.pieces,
                                                      false, tree);
            EXPECT_EQ(answer, row.pieces) << row.target << " by " << row.cutter;
            ClipLists<JWGeometry> marked;
            JWGeometryClip::geometryClipByGeometry(target.get(), cutter.get(), marked.pieces,
                                                   marked.inside, false, tree);
            ASSERT_EQ(marked.inside.size(), plain.pieces.size());
            for (std::size_t i = 0; i < marked.pieces.size(); ++i) {
                ClipLists<JWGeometry> again;
                JWGeometryClip::geometryClipByGeometry(marked.pieces[i], cutter.get(), again.pieces,
                                                       again.inside, false, tree);
                EXPECT_EQ(again.inside.empty() ? 1 : again.inside[0], marked.inside[i]);
            }
            marked.inside.clear();
            EXPECT_EQ(plain.text(), marked.text());
            ASSERT_EQ(static_cast<int>(plain.pieces.size()), row.pieces)
                << row.target << " by " << row.cutter << ": " << plain.text();
            for (const JWGeometry* piece : plain.pieces)
                EXPECT_EQ(piece->getGeometryType(), row.type);
            EXPECT_EQ(plain.text(), team.text());
        }
    }
}

TEST(ClipDispatch, RingsWithoutPointsAreNone) {
    auto square = fromWktAs<JWPolygon>(kSquare);
    auto plain = square;
    square.addRing(JWRing());
    for (const auto& [target, cutter] : {std::pair(&square, &plain), std::pair(&plain, &square)}) {
        ClipLists<JWGeometry> pieces;
        EXPECT_EQ(JWGeometryClip::geometryClipByGeometry(target, cutter, pieces.pieces, true, true),
                  1);
        EXPECT_EQ(pieces.pieces.size(), 1u);
    }
}

TEST(ClipPoints, InsideThenOutsideWithTheBoundaryInside) {
    auto points = fromWktAs<JWMultiPoint>(
        "MULTIPOINT ((50 50),(5 5),(0 0),(10 5),(4 4),(5 4),(4.5 4.5),(-1 0))");
    auto donut = fromWktAs<JWPolygon>("POLYGON ((0 0,10 0,10 10,0 10,0 0),(4 4,6 4,6 6,4 6,4 4))");
    ClipLists<JWMultiPoint> lists;
    ASSERT_EQ(
        JWGeometryClip::multiPointClipByPolygon(&points, &donut, lists.pieces, lists.inside, false),
        2);
    EXPECT_EQ(lists.text(),
              "1 MULTIPOINT ((0 0), (10 5), (4 4), (5 4)); 0 MULTIPOINT ((50 50), (5 5), (4.5 "
              "4.5), (-1 0))");
    // Out and back on the same way encloses nothing.
    auto spike = fromWktAs<JWPolygon>("POLYGON ((0 0,10 0,10 10,0 10,0 5,-5 5,0 5,0 0))");
    auto onIt = fromWktAs<JWMultiPoint>("MULTIPOINT ((-3 5),(0 5))");
    ClipLists<JWMultiPoint> ofSpike;
    JWGeometryClip::multiPointClipByPolygon(&onIt, &spike, ofSpike.pieces, ofSpike.inside, false);
    EXPECT_EQ(ofSpike.text(), "1 MULTIPOINT ((0 5)); 0 MULTIPOINT ((-3 5))");
}

TEST(ClipBadInput, AnswersNoughtAddsNothingAndTellsWhy) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    auto square = fromWktAs<JWPolygon>(kSquare);
    auto line = fromWktAs<JWLineString>("LINESTRING (-5 5,5 5,5 6)");
    JWLineString notFinite({{0, 0}, {nan, 1}}), infinite({{0, 0}, {inf, 1}}), onePoint({{1, 1}});
    JWLineString none;
    JWRing threePoints({{0, 0}, {1, 0}, {0, 0}}), badRing({{0, 0}, {10, 0}, {nan, 9}, {0, 0}});
    LineLists lists;
    const auto clip = [&](JWLineString* target, JWRing* ring, bool weird) {
        JWReport::clearError();
        const int answer = JWGeometryClip::lineStringClipByRing1(target, ring, lists.pieces,
                                                                 lists.inside, weird, true);
        EXPECT_TRUE(lists.pieces.empty());
        EXPECT_NE(JWReport::lastError().kind, JWErrorNone);
        return answer;
    };
    JWRing outline = square.getExteriorRing();
    EXPECT_EQ(clip(nullptr, &outline, false), 0);
    EXPECT_EQ(clip(&line, nullptr, false), 0);
    for (JWLineString* bad : {&none, &notFinite, &infinite})
        EXPECT_EQ(clip(bad, &outline, false), 0);
    for (JWRing* bad : {&threePoints, &badRing}) EXPECT_EQ(clip(&line, bad, false), 0);
    EXPECT_EQ(clip(&line, &outline, true), 0) << "every closed ring is weird";
    JWRing open;  // not weird: its ends do not meet
    for (const JWRawPoint p : {JWRawPoint(0, 0), {10, 0}, {10, 10}, {0, 10}}) open.addPoint(p);
    auto fine = fromWktAs<JWLineString>("LINESTRING (-5 5,5 5,15 6)");
    EXPECT_EQ(JWGeometryClip::lineStringClipByRing(&fine, &open, lists.pieces, lists.inside, true),
              3);
    RingLists rings;
    const auto isNamed = [](const std::string& function) {
        return JWReport::lastError().text.rfind(function + ": ", 0) == 0;
    };
    EXPECT_EQ(JWGeometryClip::polygonClipByLineString(&square, &onePoint, rings.pieces, rings.holes,
                                                      false),
              0);
    EXPECT_TRUE(isNamed("polygonClipByLineString")) << JWReport::lastError().text;
    EXPECT_EQ(JWGeometryClip::ringClipByLineString_mp(&threePoints, &line, rings.pieces, false), 0);
    EXPECT_TRUE(isNamed("ringClipByLineString_mp")) << JWReport::lastError().text;
    EXPECT_TRUE(rings.pieces.empty());
}

/// A class of features with one text field.
struct Features {
    explicit Features(const std::vector<Row>& rows) : layer(layerOf("features", rows)) {
        layer->getFeaturesByPosition(0, layer->getFeatureCount(), list);
    }
    LayerPtr layer;
    JWFeatureClass list;
};

std::string textOf(const JWFeatureClass& features) {
    std::string all;
    for (int i = 0; i < features.getFeatureCount(); ++i)
        all += std::to_string(features.getFeatureAt(i)->getFID()) + " " +
               describe(*features.getFeatureAt(i)) + "\n";
    return all;
}

const std::vector<Row> kMixed = {{1, "LINESTRING (-5 5,15 5,15 8,5 8)", "line"},
                                 {2, "POLYGON ((5 5,15 5,15 15,5 15,5 5))", "area"},
                                 {3, "MULTIPOINT ((1 1),(50 50))", "points"},
                                 {4, "", "nothing"},
                                 {5, "POINT (10 10)", "corner"},
                                 {6, "LINESTRING (50 50,60 60)", "far"},
                                 {7, "MULTILINESTRING ((1 1,2 2),(-3 1,3 1))", "lines"}};

TEST(ClipFeatures, PiecesCarryTheTargetsAttributesInOrder) {
    Features targets(kMixed);
    Features cutters({{1, kSquare, "a"}, {2, "", "none"}, {3, "LINESTRING (3 0,3 9)", "b"}});
    JWFeatureClass plain, team;
    ASSERT_EQ(JWGeometryClip::featureClassClipByfeatureClass(targets.list, cutters.list, plain,
                                                             false, true),
              1);
    EXPECT_EQ(textOf(plain),
              "1 LINESTRING (-5 5, 0 5)|line\n1 LINESTRING (0 5, 10 5)|line\n"
              "1 LINESTRING (10 5, 15 5, 15 8, 10 8)|line\n1 LINESTRING (10 8, 5 8)|line\n"
              "1 LINESTRING (-5 5, 3 5)|line\n1 LINESTRING (3 5, 15 5, 15 8, 5 8)|line\n"
              "2 POLYGON ((5 5, 10 5, 10 10, 5 10, 5 5))|area\n"
              "3 MULTIPOINT ((1 1))|points\n3 MULTIPOINT ((50 50))|points\n"
              "7 LINESTRING (1 1, 2 2)|lines\n7 LINESTRING (-3 1, 0 1)|lines\n"
              "7 LINESTRING (0 1, 3 1)|lines\n7 LINESTRING (1 1, 2 2)|lines\n"
              "7 LINESTRING (-3 1, 3 1)|lines\n");
    JWGeometryClip::featureClassClipByfeatureClass_mp(targets.list, cutters.list, team, false,
                                                      true);
    EXPECT_EQ(textOf(team), textOf(plain));
    JWFeatureClass none;
    EXPECT_EQ(JWGeometryClip::featureClipByfeature(targets.list.getFeatureAt(5),
                                                   cutters.list.getFeatureAt(0), none, false, true),
              0);
    EXPECT_EQ(JWGeometryClip::featureClipByfeature(nullptr, cutters.list.getFeatureAt(0), none,
                                                   false, true),
              0);
    EXPECT_EQ(JWGeometryClip::featureClassClipByfeatureClass(none, cutters.list, none, false, true),
              0);
}

const char* const kInRectangle =
    "1 MULTILINESTRING ((0 5, 10 5), (10 8, 5 8))|line\n"
    "2 POLYGON ((5 5, 10 5, 10 10, 5 10, 5 5))|area\n3 MULTIPOINT ((1 1))|points\n"
    "5 POINT (10 10)|corner\n7 MULTILINESTRING ((1 1, 2 2), (0 1, 3 1))|lines\n";

TEST(ClipFeatures, AreasAreReadAsTheyAreAndNotAsStored) {
    // A ring that has lost its closing point, and has outgrown the envelope that is stored.
    Features targets({{1, "POLYGON ((0 0,4 0,4 4,0 4,0 0))", "a"}});
    Features cutters({{1, "POLYGON ((5 0,20 0,20 4,5 4,5 0))", "b"}});
    JWRing& ring =
        *static_cast<JWPolygon*>(targets.list.getFeatureAt(0)->getGeometryPtr())->getRingPtrAt(0);
    ring.insertPointAt(JWRawPoint(8, 2), 2);
    ring.deletePointAt(5);
    JWFeatureClass out;
    ASSERT_EQ(JWGeometryClip::featureClassClipByfeatureClass(targets.list, cutters.list, out, false,
                                                             true),
              1);
    ASSERT_EQ(out.getFeatureCount(), 1);
    EXPECT_EQ(toWkt(*normalized(*out.getFeatureAt(0)->getGeometryPtr())),
              toWkt(*normalized(*fromWkt("POLYGON ((5 0.5,8 2,5 3.5,5 0.5))"))));
    JWFeatureClass within;
    JWEnvelop rectangle(5, 0, 20, 4);
    ASSERT_EQ(JWGeometryClip::featureClassClipByEnvelop(targets.list, within, rectangle), 1);
    EXPECT_EQ(toWkt(*normalized(*within.getFeatureAt(0)->getGeometryPtr())),
              toWkt(*normalized(*out.getFeatureAt(0)->getGeometryPtr())));
}

TEST(ClipFeatures, ByRectangle) {
    Features in(kMixed);
    JWEnvelop rectangle(0, 0, 10, 10), reversed(10, 0, 0, 10);
    JWFeatureClass plain, team, none;
    ASSERT_EQ(JWGeometryClip::featureClassClipByEnvelop(in.list, plain, rectangle), 1);
    EXPECT_EQ(textOf(plain), kInRectangle);
    JWGeometryClip::featureClassClipByEnvelop_mp(in.list, team, rectangle);
    EXPECT_EQ(textOf(team), kInRectangle);
    EXPECT_EQ(JWGeometryClip::featureClassClipByEnvelop(in.list, none, reversed), 0);
    EXPECT_EQ(none.getFeatureCount(), 0);

    const LayerPtr out = emptyLayer("out");
    ASSERT_EQ(JWGeometryClip::featureLayerClipByEnvelop(in.layer.get(), out.get(), rectangle), 1);
    std::string content;
    for (const std::string& row : contentOf(*out)) content += row + "\n";
    const auto withoutNumbers = [](std::string text) {
        for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) text.erase(at, 2);
        return text;
    };
    EXPECT_EQ(content, withoutNumbers(kInRectangle));
    const SourcePtr memory(JWDataSource::createInMemory());
    const LayerPtr areas(memory->createLayer("areas", JWWKBMultiPolygon, nullptr));
    const LayerPtr ofAreas = emptyLayer("out"), used = layerOf("out", {{1, "POINT (1 1)", "old"}});
    JWFeature area(areas->getFieldsDefnPtr());
    area.setGeometry(fromWkt(kSquare).get());
    ASSERT_TRUE(areas->createFeature(&area));
    for (const LayerPtr* to : {&ofAreas, &used}) {
        ASSERT_EQ(JWGeometryClip::featureLayerClipByEnvelop(areas.get(), to->get(), rectangle), 1);
        EXPECT_EQ((*to)->getGeometryType(), to == &ofAreas ? JWWKBMultiPolygon : JWWKBUnknown);
    }
    EXPECT_EQ(JWGeometryClip::featureLayerClipByEnvelop(nullptr, out.get(), rectangle), 0);
}

TEST(ClipFeatures, ByRectangleWithoutArea) {
    Features in({{1, "POINT (5 5)", "on"},
                 {2, "POINT (7 5)", "beside"},
                 {3, "MULTIPOINT ((5 5),(6 6))", "points"},
                 {4, "LINESTRING (0 5,9 5)", "line"},
                 {5, kSquare, "area"},
                 {6, "GEOMETRYCOLLECTION (POINT (5 5),POINT (7 7))", "bag"}});
    const struct {
        JWEnvelop rectangle;
        std::vector<std::string> inside, outside;
    } rows[] = {
        {JWEnvelop(5, 5, 5, 5),
         {"POINT (5 5)|on", "MULTIPOINT ((5 5))|points", "GEOMETRYCOLLECTION (POINT (5 5))|bag"},
         {"POINT (7 5)|beside", "MULTIPOINT ((6 6))|points", "MULTILINESTRING ((0 5, 9 5))|line",
          "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))|area", "GEOMETRYCOLLECTION (POINT (7 7))|bag"}},
        {JWEnvelop(-1, 5, 10, 5),
         {"POINT (5 5)|on", "POINT (7 5)|beside", "MULTIPOINT ((5 5))|points",
          "GEOMETRYCOLLECTION (POINT (5 5))|bag"},
         {"MULTIPOINT ((6 6))|points", "MULTILINESTRING ((0 5, 9 5))|line",
          "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))|area", "GEOMETRYCOLLECTION (POINT (7 7))|bag"}},
    };
    for (auto row : rows) {
        const LayerPtr fixed = emptyLayer("fixed");
        EXPECT_EQ(
            JWGeometryClip::featureLayerClipByEnvelop(in.layer.get(), fixed.get(), row.rectangle),
            1);
        EXPECT_EQ(contentOf(*fixed), row.inside);
        for (const bool outside : {false, true}) {
            const LayerPtr out = emptyLayer("out");
            JWClipOptions options;
            options.outside = outside;
            JWGeometryClip::featureLayerClipByEnvelop(in.layer.get(), out.get(), row.rectangle,
                                                      options, nullptr);
            EXPECT_EQ(contentOf(*out), outside ? row.outside : row.inside);
        }
    }
}

/// Sum of lengths, areas and numbers of points in a layer.
double contentSize(JWFeatureLayer& layer) {
    double sum = 0;
    JWFeatureClass features;
    layer.getFeaturesByPosition(0, layer.getFeatureCount(), features);
    for (int i = 0; i < features.getFeatureCount(); ++i) {
        const JWGeometry* geometry = features.getFeatureAt(i)->getGeometryPtr();
        if (auto* polygon = dynamic_cast<const JWPolygon*>(geometry)) sum += polygon->getArea();
        if (auto* polygons = dynamic_cast<const JWMultiPolygon*>(geometry))
            for (const JWPolygon& p : polygons->getMemberList()) sum += p.getArea();
        if (auto* lines = dynamic_cast<const JWMultiLineString*>(geometry))
            for (const JWLineString& line : lines->getMemberList()) sum += line.getLength();
        if (auto* line = dynamic_cast<const JWLineString*>(geometry)) sum += line->getLength();
    }
    return sum;
}

TEST(ClipLayersTeam, InsideAndOutsideAddUpWhateverTheTeamAndBlocks) {
    std::vector<Row> rows = randomRows(150, 3);
    for (int i = 0; i < 60; ++i) {
        rows.push_back({-1,
                        "LINESTRING (" + std::to_string(i) + " -10," + std::to_string(100 - i) +
                            " 110,50 " + std::to_string(i) + ")",
                        "line"});
    }
    const LayerPtr in = layerOf("in", rows), cutters = layerOf("cutters", randomRows(60, 4));
    double sides = 0;
    for (const bool outside : {false, true}) {
        std::vector<std::string> first;
        for (const auto& [threads, block] : {std::pair{1, 0}, {4, 7}, {0, 64}}) {
            JWClipOptions options;
            options.outside = outside;
            options.threads = threads;
            options.blockSize = block;
            const LayerPtr out = emptyLayer("out");
            JWLayerReport report;
            const int written = JWGeometryClip::featureLayerClipByLayer(
                in.get(), cutters.get(), out.get(), options, &report);
            ASSERT_GT(written, 0) << JWReport::lastError().text;
            EXPECT_EQ(report.readA, 210);
            EXPECT_EQ(report.readB, 60);
            EXPECT_EQ(report.written, written);
            EXPECT_TRUE(report.rejected.empty());
            if (first.empty()) {
                first = contentOf(*out);
                sides += contentSize(*out);
            } else {
                EXPECT_EQ(contentOf(*out), first);
            }
        }
    }
    const double whole = contentSize(*in);
    EXPECT_NEAR(sides, whole, 1e-9 * whole);
}

TEST(ClipLayers, CommonBordersOfCuttersCutNothingAndBadFeaturesAreListed) {
    const LayerPtr in = layerOf("in", {{1, "LINESTRING (-5 5,25 5)", "across"},
                                       {2, "LINESTRING (10 -5,10 15)", "along"},
                                       {3, "POLYGON ((5 5,15 5,15 8,5 8,5 5))", "area"},
                                       {4, "LINESTRING (0 0,nan 1)", "bad"},
                                       {5, "", "empty"}});
    const LayerPtr cutters =
        layerOf("cutters", {{1, kSquare, "west"},
                            {2, "POLYGON ((10 0,20 0,20 10,10 10,10 0))", "east"},
                            {3, "LINESTRING (0 0,1 1)", "no area"},
                            {4, kSquare, "again"}});
    const LayerPtr out = emptyLayer("out");
    JWLayerReport report;
    EXPECT_EQ(
        JWGeometryClip::featureLayerClipByLayer(in.get(), cutters.get(), out.get(), {}, &report),
        3);
    EXPECT_EQ(contentOf(*out),
              (std::vector<std::string>{"MULTILINESTRING ((0 5, 20 5))|across",
                                        "MULTILINESTRING ((10 0, 10 10))|along",
                                        "POLYGON ((5 5, 15 5, 15 8, 5 8, 5 5))|area"}));
    EXPECT_EQ(report.emptyA, 1);
    ASSERT_EQ(report.rejected.size(), 2U);
    EXPECT_EQ(report.rejected[0].layer, "cutters");
    EXPECT_EQ(report.rejected[1].fid, 4);
    EXPECT_EQ(
        JWGeometryClip::featureLayerClipByLayer(in.get(), cutters.get(), out.get(), {}, nullptr),
        -3);
    EXPECT_EQ(
        JWGeometryClip::featureLayerClipByLayer(nullptr, cutters.get(), out.get(), {}, nullptr),
        -1);
}

}  // namespace
