// SPDX-License-Identifier: MIT
//
// The lines between polygons: small cases by their whole answer, coverages by what must hold of
// any.
#include "convert/shared_lines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>

#include "jw_datasource.h"
#include "jw_feature_class.h"
#include "jw_feature_layer.h"
#include "jw_report.h"
#include "support/test_paths.h"
#include "support/wkt.h"

namespace {

using namespace jws;
using namespace jws::detail;
using jwtest::fromWktAs;

std::string number(double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

std::string names(const ListView<int>& owners) {
    std::string text;
    for (const int owner : owners) text += std::to_string(owner);
    return text.empty() ? "-" : text;
}

/// "0 0,1 0 0/-" for a line from (0,0) to (1,0) with polygon 0 on its left and none on its right.
std::string describe(const SharedLines& lines) {
    std::string text;
    for (std::size_t i = 0; i < lines.lines.count(); ++i) {
        if (i > 0) text += "; ";
        const char* between = "";
        for (const JWRawPoint& p : lines.lines[i]) {
            text += between + number(p.x) + " " + number(p.y);
            between = ",";
        }
        text += " " + names(lines.left[i]) + "/" + names(lines.right[i]);
    }
    return text;
}

/// Polygons as rings with the numbers of their polygons.
struct Coverage {
    std::vector<JWPolygon> polygons;

    SharedLines lines(double tolerance = 0) const {
        RingViews rings;
        std::vector<int> owners;
        for (std::size_t i = 0; i < polygons.size(); ++i) {
            appendRings(polygons[i], rings);
            owners.resize(rings.size(), static_cast<int>(i));
        }
        return findSharedLines(rings, owners, tolerance);
    }
};

Coverage coverageOf(const std::vector<std::string>& rings) {
    Coverage coverage;
    for (const std::string& text : rings)
        coverage.polygons.push_back(fromWktAs<JWPolygon>(("POLYGON(" + text + ")").c_str()));
    return coverage;
}

std::vector<JWRawPoint> rebuilt(const SharedLines& lines, std::size_t ring) {
    std::vector<JWRawPoint> points;
    for (const LineStep& step : lines.rings[ring]) {
        const auto line = lines.lines[static_cast<std::size_t>(step.line)];
        for (std::size_t i = points.empty() ? 0 : 1; i < line.size(); ++i)
            points.push_back(line[step.forward ? i : line.size() - 1 - i]);
    }
    return points;
}

double lengthOf(const ListView<JWRawPoint>& line) {
    double length = 0;
    for (std::size_t i = 1; i < line.size(); ++i)
        length += std::hypot(line[i].x - line[i - 1].x, line[i].y - line[i - 1].y);
    return length;
}

struct Case {
    const char* name;
    std::vector<std::string> rings;
    double tolerance;
    const char* expected;
};

class SharedLinesOf : public testing::TestWithParam<Case> {};

TEST_P(SharedLinesOf, Polygons) {
    const SharedLines lines = coverageOf(GetParam().rings).lines(GetParam().tolerance);
    EXPECT_EQ(describe(lines), GetParam().expected) << GetParam().name;
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

INSTANTIATE_TEST_SUITE_P(
    Cases, SharedLinesOf,
    testing::Values(
        Case{"nothing", {}, 0, ""},
        Case{"a corner gives way in both polygons",
             {"(0 0,100 0,0 30,0 0)", "(0 0,0 -50,150 -50,150 50,0 50,0 30,100 0,98.5 0.3,0 0)"},
             1,
             "0 0,98.5 0.3,0 30 0/1; 0 30,0 0 0/-; 0 0,0 -50,150 -50,150 50,0 50,0 30 1/-"},
        Case{"one square", {"(0 0,1 0,1 1,0 1,0 0)"}, 0, "0 0,1 0,1 1,0 1,0 0 0/-"},
        Case{"clockwise", {"(0 0,0 1,1 1,1 0,0 0)"}, 0, "0 0,0 1,1 1,1 0,0 0 -/0"},
        Case{"two squares",
             {"(0 0,1 0,1 1,0 1,0 0)", "(1 0,2 0,2 1,1 1,1 0)"},
             0,
             "1 0,1 1 0/1; 1 1,0 1,0 0,1 0 0/-; 1 0,2 0,2 1,1 1 1/-"},
        Case{"vertices do not match, and the neighbour changes on an edge",
             {"(0 0,1 0,1 4,0 4,0 0)", "(1 1,2 1,2 2,1 2,1 1)", "(1 2,2 2,2 4,1 4,1 3,1 2)"},
             0,
             "1 1,1 2 0/1; 1 2,1 3,1 4 0/2; 1 4,0 4,0 0,1 0,1 1 0/-; 1 1,2 1,2 2 1/-; "
             "2 2,1 2 1/2; 2 2,2 4,1 4 2/-"},
        Case{"a hole and what fills it, begun elsewhere and turned",
             {"(0 0,3 0,3 3,0 3,0 0),(1 1,1 2,2 2,2 1,1 1)", "(2 2,2 1,1 1,1 2,2 2)"},
             0,
             "0 0,3 0,3 3,0 3,0 0 0/-; 1 1,1 2,2 2,2 1,1 1 0/1"},
        Case{"a corner in common",
             {"(0 0,1 0,1 1,0 1,0 0)", "(1 1,2 1,2 2,1 2,1 1)"},
             0,
             "1 1,0 1,0 0,1 0,1 1 0/-; 1 1,2 1,2 2,1 2,1 1 1/-"},
        Case{"one polygon twice, and beside a third",
             {"(0 0,1 0,1 1,0 1,0 0)", "(0 0,1 0,1 1,0 1,0 0)", "(1 0,2 0,2 1,1 1,1 0)"},
             0,
             "1 0,1 1 01/2; 1 1,0 1,0 0,1 0 01/-; 1 0,2 0,2 1,1 1 2/-"},
        Case{"boundaries that cross are not cut",
             {"(0 0,2 0,2 2,0 2,0 0)", "(1 1,3 1,3 3,1 3,1 1)"},
             0,
             "0 0,2 0,2 2,0 2,0 0 0/-; 1 1,3 1,3 3,1 3,1 1 1/-"},
        Case{"repeated points, a spike, no area, one place",
             {"(0 0,0 0,2 0,1 0,1 1,0 0)", "(5 5,6 6,5 5,5 5)", "(7 7,7 7,7 7,7 7)"},
             0,
             "1 0,2 0 0/0; 1 0,1 1,0 0,1 0 0/-; 5 5,6 6 1/1"},
        Case{"a border run along to and fro",
             {"(0 0,1 0,1 1,1 0,1 1,0 1,0 0)", "(1 0,2 0,2 1,1 1,1 0)"},
             0,
             "1 0,1 1 0/1; 1 1,0 1,0 0,1 0 0/-; 1 0,2 0,2 1,1 1 1/-"},
        Case{"a spike along a border",
             {"(0 0,1 0,1 1,0 1,0 0)", "(1 0,2 0,2 0.5,1 0,1 1,1 0)"},
             0,
             "1 0,1 1 0/-; 1 1,0 1,0 0,1 0 0/-; 1 0,2 0,2 0.5,1 0 1/-"},
        Case{"nearly meeting, exact",
             {"(0 0,1 0,1 1,0 1,0 0)", "(1.01 0,2 0,2 1,1.01 1,1.01 0)"},
             0,
             "0 0,1 0,1 1,0 1,0 0 0/-; 1.01 0,2 0,2 1,1.01 1,1.01 0 1/-"},
        Case{"nearly meeting, vertices and edges snapped",
             {"(0 0,1 0,1 1,0 1,0 0)", "(1.01 0.5,2 0,2 1,1.01 1,1.01 0.5)"},
             0.02,
             "1.01 0.5,1 1 0/1; 1 1,0 1,0 0,1 0,1.01 0.5 0/-; 1.01 0.5,2 0,2 1,1 1 1/-"},
        Case{"a vertex beside both edges of a corner takes its place",
             {"(0 0,4 0,4 4,3 4,3 1.5,1 1.5,1 4,0 4,0 0)", "(1.25 1.75,2 2,2 4,1.25 1.75)"},
             0.3,
             "1.25 1.75,1 4,0 4,0 0,4 0,4 4,3 4,3 1.5,1.25 1.75 0/-; 1.25 1.75,2 2,2 4,1.25 1.75 "
             "1/-"},
        Case{"but not of a needle's end",
             {"(0 0,10 0.25,0 0.5,0 0)", "(4 0.25,4 2,3 2,4 0.25)"},
             0.2,
             "4 0.25,10 0.25 0/0; 4 0.25,0 0.5,0 0,4 0.25 0/-; 4 0.25,4 2,3 2,4 0.25 1/-"},
        Case{"a ring smaller than the tolerance",
             {"(0 0,0.1 0,0.1 0.1,0 0)", "(5 5,6 5,6 6,5 5)"},
             0.2,
             "5 5,6 5,6 6,5 5 1/-"},
        Case{"a tolerance that is no number counts as none",
             {"(0 0,1 0,1 1,0 0)"},
             kNaN,
             "0 0,1 0,1 1,0 0 0/-"}));

TEST(SharedLines, WhatIsNotFiniteHasNoLines) {
    Coverage coverage = coverageOf({"(0 0,1 0,1 1,0 0)", "(3 0,4 0,4 1,3 0)"});
    coverage.polygons[0].getRingPtrAt(0)->getPointPtrAt(1)->x = kNaN;
    const SharedLines lines = coverage.lines();
    EXPECT_EQ(describe(lines), "3 0,4 0,4 1,3 0 1/-");
    EXPECT_EQ(lines.rings[0].size(), 0u);
}

/// Blocks of a board of squares, some missing, some squares turned, begun anywhere, and with
/// vertices of their own along the borders.
Coverage randomCoverage(unsigned seed, int size) {
    std::mt19937 random(seed);
    Coverage coverage;
    for (int i = 0; i < size; ++i) {
        for (int j = 0; j < size; ++j) {
            if (random() % 8 == 0) continue;
            std::vector<JWRawPoint> points;
            const double corners[5][2] = {{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}};
            for (int k = 0; k < 4; ++k) {
                for (int s = 0; s < 8; ++s) {
                    if (s > 0 && random() % 4 != 0) continue;
                    const auto along = [&](int axis) {
                        return corners[k][axis] + (corners[k + 1][axis] - corners[k][axis]) * s / 8;
                    };
                    // A slope that the grid resolves keeps collinear points exactly collinear.
                    const double x = 8 * i + along(0), y = 8 * j + along(1);
                    points.emplace_back(1e5 + x + 3 * y, 2e5 + y - 2 * x);
                }
            }
            std::rotate(points.begin(), points.begin() + static_cast<int>(random() % points.size()),
                        points.end());
            if (random() % 2 == 0) std::reverse(points.begin(), points.end());
            coverage.polygons.emplace_back(JWRing(points));
        }
    }
    return coverage;
}

TEST(SharedLines, LengthsAddUpAndRingsComeBack) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        const Coverage coverage = randomCoverage(seed, 2 + static_cast<int>(seed % 9));
        const SharedLines lines = coverage.lines();
        double all = 0, outer = 0, perimeters = 0;
        for (std::size_t i = 0; i < lines.lines.count(); ++i) {
            const double length = lengthOf(lines.lines[i]);
            all += length;
            EXPECT_LE(lines.left[i].size(), 1u);
            EXPECT_LE(lines.right[i].size(), 1u);
            if (lines.left[i].size() + lines.right[i].size() == 1) outer += length;
        }
        for (std::size_t r = 0; r < coverage.polygons.size(); ++r) {
            const JWRing& ring = coverage.polygons[r].getExteriorRing();
            perimeters += ring.getLength();
            const std::vector<JWRawPoint> points = rebuilt(lines, r);
            EXPECT_EQ(points.front(), points.back());
            EXPECT_EQ(JWRing(points).getArea(), ring.getArea()) << "seed " << seed;
            const auto less = [](const JWRawPoint& a, const JWRawPoint& b) { return a < b; };
            const std::set<JWRawPoint, decltype(less)> there(points.begin(), points.end(), less);
            for (const JWRawPoint& p : ring.getPointList()) EXPECT_EQ(there.count(p), 1u);
        }
        EXPECT_NEAR(all, (perimeters + outer) / 2, 1e-9 * perimeters) << "seed " << seed;
    }
}

/// Each line is there once for all who run along it, and whoever puts rings together again from
/// their lines gets the areas they had: on real boundaries, most of which are shared.
TEST(SharedLines, CountiesAddUpAndComeBack) {
    std::unique_ptr<JWDataSource, bool (*)(JWDataSource*)> source(
        JWDataSource::open(jwtest::exampleData("us_counties.gpkg").c_str()),
        JWDataSource::destroyDataSource);
    ASSERT_TRUE(source) << JWReport::lastError().text;
    const std::unique_ptr<JWFeatureLayer, bool (*)(JWFeatureLayer*)> layer(
        source->openLayer(0), JWFeatureLayer::destroyFeatureLayer);
    JWFeatureClass counties;
    ASSERT_GT(layer->getFeaturesByPosition(0, layer->getFeatureCount(), counties), 3000);
    RingViews rings;
    std::vector<int> owners;
    for (int i = 0; i < counties.getFeatureCount(); ++i) {
        if (const JWGeometry* county = counties.getFeatureAt(i)->getGeometryPtr())
            appendRings(*county, rings);
        owners.resize(rings.size(), i);
    }
    const SharedLines lines = findSharedLines(rings, owners, 0, 2);
    std::vector<int> runs(lines.lines.count(), 0);
    for (const LineStep& step : lines.rings.members) ++runs[static_cast<std::size_t>(step.line)];
    double all = 0, outer = 0, toAndFro = 0, perimeters = 0, off = 0;
    for (std::size_t i = 0; i < lines.lines.count(); ++i) {
        const double length = lengthOf(lines.lines[i]);
        const auto sides = static_cast<int>(lines.left[i].size() + lines.right[i].size());
        EXPECT_LE(sides, 2);
        all += length;
        if (sides == 1) outer += length;
        toAndFro += length * (runs[i] - sides);
    }
    for (std::size_t r = 0; r < rings.size(); ++r) {
        const JWRing given(
            std::vector<JWRawPoint>(rings[r].points, rings[r].points + rings[r].count));
        perimeters += given.getLength();
        off = std::max(off, std::fabs(JWRing(rebuilt(lines, r)).getArea() - given.getArea()));
    }
    // Some counties run back along their own boundary, which makes none of it.
    EXPECT_NEAR(all, (perimeters + outer - toAndFro) / 2, 1e-9 * perimeters);
    EXPECT_LT(toAndFro, 1e-4 * all);
    EXPECT_LT(outer, 0.4 * all);
    EXPECT_LT(off, 1e-12);  // square degrees
}

/// Where a polygon's own rings say it lies, at each line's middle.
TEST(SharedLines, NeighboursAreThoseBesideTheLine) {
    const Coverage coverage = randomCoverage(7, 6);
    const SharedLines lines = coverage.lines();
    for (std::size_t i = 0; i < lines.lines.count(); ++i) {
        const JWRawPoint a = lines.lines[i][0], b = lines.lines[i][1];
        for (const int side : {1, -1}) {
            const JWRawPoint p((a.x + b.x) / 2 - side * (b.y - a.y) * 1e-3,
                               (a.y + b.y) / 2 + side * (b.x - a.x) * 1e-3);
            std::string expected;
            for (std::size_t k = 0; k < coverage.polygons.size(); ++k)
                if (coverage.polygons[k].getExteriorRing().isPointInRing(p))
                    expected += std::to_string(k);
            EXPECT_EQ(names(side == 1 ? lines.left[i] : lines.right[i]),
                      expected.empty() ? "-" : expected);
        }
    }
}

/// Copies of one coverage that are shaken by less than half the tolerance share all that the
/// coverage shares.
TEST(SharedLines, ToleranceJoinsShakenBorders) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> shake(-0.01, 0.01);
    const Coverage exact = randomCoverage(11, 8);
    Coverage shaken = exact;
    for (JWPolygon& polygon : shaken.polygons) {
        JWRing& ring = *polygon.getRingPtrAt(0);
        for (int i = 0; i + 1 < ring.getPointCount(); ++i)
            ring.getPointPtrAt(i)->move(shake(random), shake(random));
        ring.updatePointAt(ring.getPointAt(0), ring.getPointCount() - 1);
    }
    const SharedLines expected = exact.lines();
    EXPECT_GT(shaken.lines().lines.count(), 0u);
    const SharedLines joined = shaken.lines(0.1);
    std::multiset<std::string> expectedSides, sides;
    for (std::size_t i = 0; i < expected.lines.count(); ++i)
        expectedSides.insert(names(expected.left[i]) + names(expected.right[i]));
    for (std::size_t i = 0; i < joined.lines.count(); ++i)
        sides.insert(names(joined.left[i]) + names(joined.right[i]));
    EXPECT_EQ(sides, expectedSides);
}

}  // namespace
