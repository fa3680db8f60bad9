// SPDX-License-Identifier: MIT
//
// Simplification: small cases of each method by hand, Douglas-Peucker against its textbook form on
// lines that make it quadratic and lines full of ties, what each method promises on random lines,
// and every form.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "jw_cpgeometrybasic.h"
#include "jw_geometrysimplicify.h"
#include "support/random_rings.h"
#include "support/wkt.h"

namespace jwtest {

using namespace jws;
using Simplify = JWGeometrySimplicify;
using Points = std::vector<JWRawPoint>;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

const enumJWSimplifyMethod kDp = JWSimplifyDouglasPeucker, kRw = JWSimplifyReumannWitkam,
                           kLang = JWSimplifyLang, kVr = JWSimplifyVertexReduction,
                           kOp = JWSimplifyOpheim, kNth = JWSimplifyNthPoint,
                           kPer = JWSimplifyPerpendicularDistance;

JWSimplifyOptions options(enumJWSimplifyMethod method, double tolerance, double other = 0) {
    JWSimplifyOptions result;
    result.method = method;
    result.tolerance = tolerance;
    result.maximumTolerance = other;
    result.count = static_cast<int>(other);
    return result;
}

/// The fixed forms of a method; the first returns the count of points.
struct Forms {
    enumJWSimplifyMethod method;
    int (*line)(JWLineString*, const JWSimplifyOptions&);
    void (*polygon)(JWPolygon*, const JWSimplifyOptions&);
    void (*features)(JWFeatureClass*, const JWSimplifyOptions&);
};

/// Runs a form that writes to another line, and reads it back.
template <class Form>
int readBack(JWLineString* line, const Form& form) {
    JWLineString out;
    const int count = form(&out);
    if (line && !out.isEmpty()) *line = out;
    return count;
}

const Forms kForms[] = {
    {kDp,
     [](auto* l, auto& o) {
         Simplify::douglasPeucker(l, o.tolerance);
         return l ? l->getPointCount() : 0;
     },
     [](auto* p, auto& o) { Simplify::jwPolygonSimpicify(p, o.tolerance); },
     [](auto* f, auto& o) { Simplify::simplifyFeatures_dp(f, o.tolerance); }},
    {kRw, [](auto* l, auto& o) { return Simplify::reumann_witkam(l, o.tolerance); },
     [](auto* p, auto& o) { Simplify::jwPolygonSimpicify_ReumannWitkam(p, o.tolerance); },
     [](auto* f, auto& o) { Simplify::simplifyFeatures_rw(f, o.tolerance); }},
    {kLang, [](auto* l, auto& o) { return Simplify::lang(l, o.tolerance, o.count); },
     [](auto* p, auto& o) { Simplify::jwPolygonSimpicify_Lang(p, o.tolerance, o.count); },
     [](auto* f, auto& o) { Simplify::simplifyFeatures_lang(f, o.tolerance, o.count); }},
    {kVr, [](auto* l, auto& o) { return Simplify::vertex_reduction(l, o.tolerance); },
     [](auto* p, auto& o) { Simplify::jwPolygonSimpicify_VertexReduction(p, o.tolerance); },
     [](auto* f, auto& o) { Simplify::simplifyFeatures_vr(f, o.tolerance); }},
    {kOp,
     [](auto* l, auto& o) {
         return readBack(l, [&](auto* out) {
             return Simplify::opheim(l, o.tolerance, o.maximumTolerance, out);
         });
     },
     [](auto* p, auto& o) {
         Simplify::jwPolygonSimpicify_Opheim(p, o.tolerance, o.maximumTolerance);
     },
     [](auto* f, auto& o) { Simplify::simplifyFeatures_op(f, o.tolerance, o.maximumTolerance); }},
    {kNth, [](auto* l, auto& o) { return Simplify::nThPoint(l, static_cast<unsigned>(o.count)); },
     [](auto* p, auto& o) { Simplify::jwPolygonSimpicify_NthPoint(p, o.count); },
     [](auto* f, auto& o) { Simplify::simplifyFeatures_nth(f, static_cast<unsigned>(o.count)); }},
    {kPer,
     [](auto* l, auto& o) {
         return readBack(
             l, [&](auto* out) { return Simplify::perpendicularDistance(l, o.tolerance, out); });
     },
     [](auto* p, auto& o) { Simplify::jwPolygonSimpicify_PerpendDistance(p, o.tolerance); },
     [](auto* f, auto& o) { Simplify::simplifyFeatures_per(f, o.tolerance); }}};

const Forms& formsOf(enumJWSimplifyMethod method) {
    return *std::find_if(std::begin(kForms), std::end(kForms),
                         [&](const Forms& forms) { return forms.method == method; });
}

int runLine(JWLineString* line, const JWSimplifyOptions& o) {
    return formsOf(o.method).line(line, o);
}

struct Row {
    JWSimplifyOptions options;
    const char* line;
    const char* expected;  ///< null: unchanged
};

TEST(Simplify, SmallCases) {
    const char* corner = "LINESTRING (0 0, 1 0, 2 0, 3 0, 3 1, 3 2, 3 3)";
    const char* six = "LINESTRING (0 0, 1 0, 2 0, 3 0, 4 0, 5 0)";
    const char* five = "LINESTRING (0 0, 1 0, 2 0, 3 0, 4 0)";
    const char* arch = "LINESTRING (0 0, 1 1, 2 1, 3 0)";
    const Row rows[] = {
        {options(kDp, 9), "LINESTRING (0 0, 1 1, 2 0)", nullptr},
        {options(kDp, 0.9), arch, "LINESTRING (0 0, 1 1, 3 0)"},  // the first of two ties splits
        {options(kDp, 1), arch, "LINESTRING (0 0, 3 0)"},
        {options(kDp, kInf), arch, "LINESTRING (0 0, 3 0)"},
        {options(kDp, 1), "LINESTRING (0 0, 5 0, 5 5, 0 0)", nullptr},
        {options(kDp, 1e199), "LINESTRING (0 0, 1e200 1e200, 2e200 1, 3e200 0)", nullptr},
        {options(kRw, 0.5), corner, "LINESTRING (0 0, 3 1, 3 3)"},
        {options(kRw, 1), "LINESTRING (0 0, 0 0, 5 5, 10 0)", "LINESTRING (0 0, 5 5, 10 0)"},
        {options(kLang, 0.5, 3), corner, "LINESTRING (0 0, 3 0, 3 3)"},
        {options(kLang, 0.5, 2147483647), corner, "LINESTRING (0 0, 3 0, 3 3)"},
        {options(kLang, 0.5, 1), corner, nullptr},
        {options(kVr, 1), "LINESTRING (0 0, .5 0, 1 0, 2 0, 2.4 0)",
         "LINESTRING (0 0, 2 0, 2.4 0)"},
        {options(kVr, 9), five, "LINESTRING (0 0, 4 0)"},
        {options(kOp, 4, 100), "LINESTRING (0 0, 4 0, 8 1.9, 12 0)", "LINESTRING (0 0, 12 0)"},
        {options(kOp, 4, 100), "LINESTRING (0 0, 4 0, 8 2, 12 0)", nullptr},
        {options(kOp, 1, 2), five, "LINESTRING (0 0, 1 0, 2 0, 3 0, 4 0)"},
        {options(kOp, 1, 3), five, "LINESTRING (0 0, 2 0, 4 0)"},
        {options(kOp, 3, 2), five, nullptr},
        {options(kNth, 0, 2), six, "LINESTRING (0 0, 2 0, 4 0, 5 0)"},
        {options(kNth, 0, 1), six, nullptr},
        {options(kNth, 0, 99), six, "LINESTRING (0 0, 5 0)"},
        {options(kNth, 0, 0), six, nullptr},
        {options(kPer, 0.1), six, "LINESTRING (0 0, 2 0, 4 0, 5 0)"},
        {options(kPer, 0.1), five, "LINESTRING (0 0, 2 0, 4 0)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.options.method) + " " + row.line);
        auto line = fromWktAs<JWLineString>(row.line);
        const std::string expected = row.expected ? row.expected : toWkt(line);
        EXPECT_EQ(runLine(&line, row.options),
                  fromWktAs<JWLineString>(expected.c_str()).getPointCount());
        EXPECT_EQ(toWkt(line), expected);
        EXPECT_EQ(line.getEnvelop(), fromWkt(expected)->getEnvelop());
    }
}

TEST(Simplify, BadInputChangesNothing) {
    const char* text = "LINESTRING (0 0, 1 1, 2 0, 3 1, 4 0)";
    for (const Forms& forms : kForms) {
        const enumJWSimplifyMethod method = forms.method;
        SCOPED_TRACE(method);
        const bool counted = method == kNth;
        for (double tolerance : {0.0, -1.0, kNaN}) {
            auto line = fromWktAs<JWLineString>(text);
            EXPECT_EQ(runLine(&line, options(method, tolerance, counted ? 0 : 3)), 5);
            EXPECT_EQ(toWkt(line), text);
        }
        const JWSimplifyOptions usable = options(method, 1, 3);
        EXPECT_EQ(runLine(nullptr, usable), 0);
        for (double bad : {kNaN, kInf}) {
            auto line = fromWktAs<JWLineString>(text);
            line.getPointList()[2].y = bad;
            EXPECT_EQ(runLine(&line, usable), 5);
            EXPECT_EQ(line.getPointCount(), 5);
        }
        for (const char* tiny : {"LINESTRING EMPTY", "LINESTRING (1 1)", "LINESTRING (1 1, 2 2)"}) {
            auto line = fromWktAs<JWLineString>(tiny);
            const int count = line.getPointCount();
            EXPECT_EQ(runLine(&line, usable), count);
            EXPECT_EQ(toWkt(line), tiny);
        }
        forms.polygon(nullptr, usable);
        forms.features(nullptr, usable);
        EXPECT_FALSE(Simplify::simplifyFeatures(nullptr, usable));
    }
    EXPECT_EQ(Simplify::perpendicularDistance(nullptr, 1, nullptr), 0);
    auto line = fromWktAs<JWLineString>(text);
    EXPECT_EQ(Simplify::opheim(&line, 1, 2, nullptr), 5);
}

// --- Douglas-Peucker -----------------------------------------------------------------------------

/// The textbook form: all distances of every range, the first largest one splits.
Points textbook(const Points& p, double tolerance) {
    Points kept = {p[0]};
    const std::function<void(std::size_t, std::size_t)> reduce = [&](std::size_t a, std::size_t b) {
        double largest = 0;
        std::size_t split = a;
        for (std::size_t i = a + 1; i < b; ++i) {
            const double d = JWCPGeometryBasic::pointSegmentDistance(&p[i], &p[a], &p[b]);
            if (d > largest) {
                largest = d;
                split = i;
            }
        }
        if (largest <= tolerance) return kept.push_back(p[b]);
        reduce(a, split);
        reduce(split, b);
    };
    reduce(0, p.size() - 1);
    return kept;
}

void expectTextbook(const Points& points, double tolerance) {
    JWLineString line(points);
    ASSERT_TRUE(Simplify::douglasPeucker(&line, tolerance));
    const Points expected = textbook(points, tolerance);
    ASSERT_EQ(line.getPointCount(), static_cast<int>(expected.size()));
    EXPECT_EQ(line.getPointList(), expected);
}

TEST(DouglasPeucker, KeepsThePointsOfTheTextbookForm) {
    const unsigned long long seed = 3;
    RandomRings random(seed);
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const int n = random.integer(4, round % 50 == 0 ? 3000 : 60);
        const double offset = round % 4 == 3 ? 5e6 : 0;
        Points points = {{offset, offset}};
        while (static_cast<int>(points.size()) < n) {
            const bool lattice = round % 2 == 0;
            const double dx = lattice ? random.integer(-1, 1) : random.uniform(-1, 1);
            const double dy = lattice ? random.integer(-1, 1) : random.uniform(-1, 1);
            points.emplace_back(points.back().x + dx, points.back().y + dy);
        }
        expectTextbook(points, random.integer(1, 8) / 2.0);
    }
}

TEST(DouglasPeucker, KeepsThemOnLinesThatMakeItQuadratic) {
    // Long enough to be searched instead of scanned.
    const int n = 3000;
    const auto line = [&](const std::function<JWRawPoint(int)>& point) {
        Points points;
        for (int i = 0; i < n; ++i) points.push_back(point(i));
        return points;
    };
    const auto spiral = line([](int i) {
        const double r = std::sqrt(i);
        return JWRawPoint(r * std::cos(2 * r), r * std::sin(2 * r));
    });
    const auto zigzag = line([](int i) { return JWRawPoint(i, i % 2); });
    const auto growing = line([](int i) { return JWRawPoint(i, i % 2 ? i * 0.01 : -i * 0.01); });
    const auto falling = line([](int i) { return JWRawPoint(i, 1e6 * std::pow(0.9, i)); });
    for (double tolerance : {0.001, 0.3}) {
        expectTextbook(spiral, tolerance);
        expectTextbook(zigzag, tolerance);
        expectTextbook(growing, tolerance);
        expectTextbook(falling, tolerance);
    }
}

// --- Promises ------------------------------------------------------------------------------------

/// The largest distance of a point of `points` to the piece of `kept` that stands for it.
double departure(const Points& points, const Points& kept) {
    double most = 0;
    std::size_t piece = 0;
    for (const JWRawPoint& p : points) {
        if (piece + 1 < kept.size() && p == kept[piece + 1]) ++piece;
        const JWRawPoint& end = kept[std::min(piece + 1, kept.size() - 1)];
        most = std::max(most, JWCPGeometryBasic::pointSegmentDistance(&p, &kept[piece], &end));
    }
    return most;
}

TEST(Simplify, KeepsEndsAndOrderAndTheToleranceWherePromised) {
    RandomRings random(5);
    for (int round = 0; round < 400; ++round) {
        Points points = {{0, 0}};
        const int n = random.integer(3, 80);
        while (static_cast<int>(points.size()) < n) {
            points.emplace_back(points.back().x + random.uniform(-0.2, 1),
                                points.back().y + random.uniform(-1, 1));
        }
        for (const Forms& forms : kForms) {
            const enumJWSimplifyMethod method = forms.method;
            SCOPED_TRACE("seed 5 round " + std::to_string(round) + " " + std::to_string(method));
            JWLineString line(points);
            const int count = forms.line(&line, options(method, 0.7, 5));
            const Points& kept = line.getPointList();
            EXPECT_EQ(count, line.getPointCount());
            EXPECT_EQ(kept.front(), points.front());
            EXPECT_EQ(kept.back(), points.back());
            auto place = points.begin();
            for (const JWRawPoint& p : kept) {
                place = std::find(place, points.end(), p);
                ASSERT_NE(place++, points.end());
            }
            if (method == kDp || method == kLang || method == kPer) {
                EXPECT_LE(departure(points, kept), 0.7);
            }
            for (std::size_t i = 0, k = 0; method == kVr && i < points.size(); ++i) {
                if (k + 1 < kept.size() && points[i] == kept[k + 1]) ++k;
                EXPECT_LE(std::hypot(points[i].x - kept[k].x, points[i].y - kept[k].y), 0.7);
            }
        }
    }
}

TEST(Simplify, RemoveDuplicate) {
    auto line = fromWktAs<JWLineString>("LINESTRING (0 0, 0 0, 1 1, 1 1, 1 1, 0 0)");
    EXPECT_TRUE(Simplify::removeDuplicate(&line));
    EXPECT_EQ(toWkt(line), "LINESTRING (0 0, 1 1, 0 0)");
    JWRing ring(Points(4, JWRawPoint(2, 2)));
    EXPECT_TRUE(Simplify::removeDuplicate(&ring));
    EXPECT_EQ(ring.getPointCount(), 1);
    EXPECT_FALSE(Simplify::removeDuplicate(&ring));
    EXPECT_FALSE(Simplify::removeDuplicate(static_cast<JWRing*>(nullptr)));
}

// --- Kinds ---------------------------------------------------------------------------------------

TEST(SimplifyKinds, RingsStayAboveTwoPoints) {
    const char* flat = "POLYGON ((0 0, 10 0, 10 .1, 0 .1, 0 0))";
    auto polygon = fromWktAs<JWPolygon>(flat);
    EXPECT_TRUE(Simplify::jwPolygonSimpicify(&polygon, 1));
    EXPECT_EQ(toWkt(polygon), "POLYGON ((0 0, 10 0.1, 0 0))");
    const char* square = "POLYGON ((0 0, 1 0, 1 1, 0 1, 0 0))";
    polygon = fromWktAs<JWPolygon>(square);
    EXPECT_TRUE(Simplify::jwPolygonSimpicify(&polygon, 2));
    EXPECT_EQ(toWkt(polygon), square);
    EXPECT_FALSE(Simplify::jwPolygonSimpicify(&polygon, 0));
    auto four = fromWkt(flat);
    JWSimplifyOptions o = options(kDp, 1);
    o.minimumRingPoints = 4;
    EXPECT_TRUE(Simplify::geometrySimplicify(four.get(), o));
    EXPECT_EQ(toWkt(*four), toWkt(*fromWkt(flat)));
}

/// A line, and geometries that have it, closed, as a part.
std::vector<std::string> kindsOf(const Points& points) {
    Points closed = points;
    closed.push_back(points.front());
    const std::string open = toWkt(JWLineString(points)).substr(11);
    const std::string ring = toWkt(JWLineString(closed)).substr(11);
    return {"LINESTRING " + open, "MULTILINESTRING (" + open + ", " + ring + ")",
            "POLYGON (" + ring + ")", "POLYGON (" + ring + ", " + ring + ")",
            "MULTIPOLYGON ((" + ring + "), (" + ring + "))"};
}

void fill(JWFeatureClass& features, int copies) {
    RandomRings random(9);
    for (int i = 0; i < copies; ++i) {
        for (const std::string& text : kindsOf(random.star(random.integer(5, 60), {5, 5}, 9))) {
            auto* feature = new JWFeature;
            feature->setFID(features.getFeatureCount());
            feature->setGeometryDirectly(fromWkt(text).release());
            features.addFeature(feature);
        }
    }
}

void expectEqual(const JWFeatureClass& a, const JWFeatureClass& b) {
    ASSERT_EQ(a.getFeatureCount(), b.getFeatureCount());
    for (int i = 0; i < a.getFeatureCount(); ++i) {
        const JWGeometry& one = *a.getFeatureAt(i)->getGeometryPtr();
        EXPECT_EQ(toWkt(one), toWkt(b.getFeatureAt(i)->getGeometryPtr()));
        EXPECT_EQ(one.getEnvelop(), b.getFeatureAt(i)->getGeometryPtr()->getEnvelop());
    }
}

TEST(SimplifyKinds, EveryFormDoesWhatTheLineFormDoes) {
    JWFeatureClass original;
    fill(original, 20);
    for (const Forms& forms : kForms) {
        SCOPED_TRACE(forms.method);
        const JWSimplifyOptions o = options(forms.method, 2, 4);
        JWFeatureClass byParts = original, byClass = original, byGeometry = original;
        for (int i = 0; i < byParts.getFeatureCount(); ++i) {
            JWGeometry* g = byParts.getFeatureAt(i)->getGeometryPtr();
            if (auto* line = dynamic_cast<JWLineString*>(g)) forms.line(line, o);
            if (auto* polygon = dynamic_cast<JWPolygon*>(g)) forms.polygon(polygon, o);
            if (auto* lines = dynamic_cast<JWMultiLineString*>(g)) {
                for (JWLineString& line : lines->getMemberList()) forms.line(&line, o);
            }
            if (auto* polygons = dynamic_cast<JWMultiPolygon*>(g)) {
                for (JWPolygon& polygon : polygons->getMemberList()) forms.polygon(&polygon, o);
            }
            g->updateEnvelop();
            EXPECT_TRUE(
                Simplify::geometrySimplicify(byGeometry.getFeatureAt(i)->getGeometryPtr(), o));
        }
        forms.features(&byClass, o);
        expectEqual(byParts, byClass);
        expectEqual(byParts, byGeometry);
    }
}

TEST(SimplifyKinds, ThreadsGiveTheSameResult) {
    JWFeatureClass plain, threaded;
    fill(plain, 200);
    threaded = plain;
    Simplify::simplifyFeatures_dp(&plain, 1.5);
    Simplify::simplifyFeatures_omp(&threaded, 1.5);
    expectEqual(plain, threaded);
}

TEST(SimplifyKinds, OtherKindsAreRefusedAndCounted) {
    JWFeatureClass features;
    const char* texts[] = {"POINT (1 1)",
                           "MULTIPOINT (1 1)",
                           "LINESTRING (0 0, 1 0, 2 0, 3 0)",
                           "POLYGON EMPTY",
                           "LINESTRING (0 0, 1 1, 2 2, 3 3)",
                           "MULTILINESTRING ((0 0, 1 0, 2 0, 3 0), (5 5, 6 6, 7 7, 8 8))"};
    for (const char* text : texts) {
        auto* feature = new JWFeature;
        feature->setFID(features.getFeatureCount());
        feature->setGeometryDirectly(fromWkt(text).release());
        features.addFeature(feature);
    }
    static_cast<JWLineString*>(features.getFeatureAt(4)->getGeometryPtr())->getPointList()[1].x =
        kNaN;
    auto& lines = static_cast<JWMultiLineString&>(*features.getFeatureAt(5)->getGeometryPtr());
    lines.getMemberList()[0].getPointList()[1].x = kNaN;
    JWLayerReport report;
    EXPECT_TRUE(Simplify::simplifyFeatures(&features, options(kDp, 1), &report));
    EXPECT_EQ(report.readA, 6);
    EXPECT_EQ(report.emptyA, 1);
    EXPECT_EQ(report.written, 2);
    ASSERT_EQ(report.rejected.size(), 3u);
    EXPECT_EQ(report.rejected[0].fid, 1);
    EXPECT_EQ(report.rejected[1].fid, 4);
    EXPECT_EQ(report.rejected[2].fid, 5);
    EXPECT_EQ(lines.getMemberList()[0].getPointCount(), 4);
    EXPECT_EQ(toWkt(lines.getMemberList()[1]), "LINESTRING (5 5, 8 8)");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Simplify::geometrySimplicify(features.getFeatureAt(1)->getGeometryPtr(), 1));
    EXPECT_TRUE(Simplify::geometrySimplicify(features.getFeatureAt(0)->getGeometryPtr(), 1));
    EXPECT_FALSE(Simplify::geometrySimplicify(nullptr, 1));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "can not process geometry of this type \n");
}

}  // namespace

}  // namespace jwtest
