// SPDX-License-Identifier: MIT
//
// Overlay of two geometries: tolerance, codes and their order, short-cuts, building of polygons.
// Every row runs through both classes.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "jw_feature.h"
#include "jw_geometryoverlay.h"
#include "jw_geometryoverlay2.h"
#include "support/geos_oracle.h"
#include "support/random_rings.h"
#include "support/wkt.h"

namespace jwtest {

using namespace jws;

namespace {

using GeometryPtr = std::unique_ptr<JWGeometry>;

const char* kSquare = "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))";
const char* kShifted = "POLYGON ((5 5, 15 5, 15 15, 5 15, 5 5))";
const char* kBeside = "POLYGON ((10 0, 20 0, 20 10, 10 10, 10 0))";
const char* kFar = "POLYGON ((20 0, 30 0, 30 10, 20 10, 20 0))";
const char* kInside = "POLYGON ((2 2, 4 2, 4 4, 2 4, 2 2))";
const char* kAround = "POLYGON ((-1 -1, 11 -1, 11 11, -1 11, -1 -1))";
const char* kTwoParts =
    "MULTIPOLYGON (((8 0, 12 0, 12 10, 8 10, 8 0)), ((0 0, 0.5 0, 0.5 1, 0 1, 0 0)))";

double area(const JWGeometry* geometry) {
    if (!geometry) return 0;
    if (geometry->getGeometryType() == JWGeometryPolygon) {
        return static_cast<const JWPolygon*>(geometry)->getArea();
    }
    return static_cast<const JWMultiPolygon*>(geometry)->getArea();
}

// --- One result ----------------------------------------------------------------------------------

enum Operation { Intersect, Erase, Unite };

template <class Overlay>
GeometryPtr run(Operation operation, const JWGeometry* a, const JWGeometry* b, double tolerance) {
    switch (operation) {
        case Intersect:
            return GeometryPtr(Overlay::polygonIntersectPolygon(a, b, tolerance));
        case Erase:
            return GeometryPtr(Overlay::polygonErasePolygon(a, b, tolerance));
        default:
            return GeometryPtr(Overlay::polygonUnionPolygonToOne(a, b, tolerance));
    }
}

struct Row {
    const char* name;
    Operation operation;
    const char* a;  // null for a null operand
    const char* b;
    double tolerance;
    const char* expected;  // null for no result
};

const Row rows[] = {
    {"overlap", Intersect, kSquare, kShifted, 0, "POLYGON ((5 5, 10 5, 10 10, 5 10, 5 5))"},
    {"common edge", Intersect, kSquare, kBeside, 0, nullptr},
    {"apart", Intersect, kSquare, kFar, 0, nullptr},
    {"area reaches the tolerance", Intersect, kSquare, "POLYGON ((9 0, 11 0, 11 10, 9 10, 9 0))",
     10, "POLYGON ((9 0, 10 0, 10 10, 9 10, 9 0))"},
    {"area below the tolerance", Intersect, kSquare, "POLYGON ((9 0, 11 0, 11 10, 9 10, 9 0))",
     10.5, nullptr},
    {"small part dropped", Intersect, kSquare, kTwoParts, 1,
     "POLYGON ((8 0, 10 0, 10 10, 8 10, 8 0))"},
    {"hole survives", Intersect,
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 4 2, 4 4, 2 4, 2 2))", kAround, 0,
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 2 4, 4 4, 4 2, 2 2))"},
    {"hole below the tolerance is filled", Intersect,
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 4 2, 4 4, 2 4, 2 2))", kAround, 5,
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0))"},
    {"null", Intersect, kSquare, nullptr, 0, nullptr},
    {"empty", Intersect, "POLYGON EMPTY", kSquare, 0, nullptr},
    {"line has no area", Intersect, kSquare, "LINESTRING (1 1, 9 9)", 0, nullptr},
    {"erase", Erase, kSquare, "POLYGON ((5 -1, 15 -1, 15 15, 5 15, 5 -1))", 0,
     "POLYGON ((0 0, 5 0, 5 10, 0 10, 0 0))"},
    {"erase inside", Erase, kSquare, kInside, 0,
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (2 2, 2 4, 4 4, 4 2, 2 2))"},
    {"erase apart ignores the tolerance", Erase, kSquare, kFar, 1000, kSquare},
    {"erase touching keeps A", Erase, kSquare, kBeside, 0, kSquare},
    {"erase everything", Erase, kSquare, kAround, 0, nullptr},
    {"erase by a line", Erase, kSquare, "LINESTRING (1 1, 9 9)", 0, kSquare},
    {"erase splits", Erase, kSquare, "POLYGON ((4 -1, 6 -1, 6 11, 4 11, 4 -1))", 0,
     "MULTIPOLYGON (((0 0, 4 0, 4 10, 0 10, 0 0)), ((6 0, 10 0, 10 10, 6 10, 6 0)))"},
    {"erase null", Erase, kSquare, nullptr, 0, nullptr},
    {"union with a common edge", Unite, kSquare, kBeside, 0,
     "POLYGON ((0 0, 10 0, 20 0, 20 10, 10 10, 0 10, 0 0))"},
    {"union apart", Unite, kSquare, kFar, 0,
     "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 0)), ((20 0, 30 0, 30 10, 20 10, 20 0)))"},
    {"union apart with a tolerance", Unite, kSquare, kInside, 100, kSquare},
    {"union with null", Unite, nullptr, kShifted, 1e9, kShifted},
    {"union of nulls", Unite, nullptr, nullptr, 0, nullptr},
    {"each hole to its own ring", Unite,
     "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (1 1, 9 1, 9 9, 1 9, 1 1))",
     "POLYGON ((2 2, 8 2, 8 8, 2 8, 2 2), (3 3, 7 3, 7 7, 3 7, 3 3))", 0,
     "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 0), (1 1, 9 1, 9 9, 1 9, 1 1)),"
     " ((2 2, 8 2, 8 8, 2 8, 2 2), (3 3, 7 3, 7 7, 3 7, 3 3)))"},
    {"hole that meets other rings at its corners", Unite,
     "MULTIPOLYGON (((0 0, 12 0, 12 12, 0 12, 0 0), (2 2, 10 2, 10 10, 2 10, 2 2)))",
     "MULTIPOLYGON (((2 2, 4 3, 3 4, 2 2)), ((10 10, 8 9, 9 8, 10 10)))", 0,
     "MULTIPOLYGON (((0 0, 12 0, 12 12, 0 12, 0 0), (2 2, 2 10, 10 10, 10 2, 2 2)),"
     " ((2 2, 4 3, 3 4, 2 2)), ((10 10, 8 9, 9 8, 10 10)))"},
};

template <class Overlay>
class GeometryOverlay : public testing::Test {};
using Classes = testing::Types<JWGeometryOverlay, JWGeometryOverlay2>;
TYPED_TEST_SUITE(GeometryOverlay, Classes, );

TYPED_TEST(GeometryOverlay, Table) {
    for (const Row& row : rows) {
        const GeometryPtr a = row.a ? fromWkt(row.a) : nullptr;
        const GeometryPtr b = row.b ? fromWkt(row.b) : nullptr;
        const GeometryPtr r = run<TypeParam>(row.operation, a.get(), b.get(), row.tolerance);
        const std::string expected = row.expected ? normalizedWkt(row.expected) : "(null)";
        EXPECT_EQ(normalizedWkt(r.get()), expected) << row.name;
        if (!r) continue;
        const GeometryPtr fresh(r->clone());
        fresh->updateEnvelop();
        EXPECT_EQ(r->getEnvelop(), fresh->getEnvelop()) << row.name;
    }
}

// --- Several results -----------------------------------------------------------------------------

struct Outputs {
    std::vector<JWGeometry*> geometries;
    std::vector<int> codes;
    ~Outputs() {
        for (JWGeometry* g : geometries) delete g;
    }
    std::vector<double> areas() const {
        std::vector<double> all;
        for (const JWGeometry* g : geometries) all.push_back(area(g));
        return all;
    }
};

enum MultiOperation { SymmetricalDifference, Identity, Update, UpdateWithBorders };

struct MultiRow {
    const char* name;
    MultiOperation operation;
    const char* a;
    const char* b;
    double tolerance;
    std::vector<int> codes;
    std::vector<double> areas;
};

const MultiRow multiRows[] = {
    {"difference both ways", SymmetricalDifference, kSquare, kShifted, 0, {0, 1}, {75, 75}},
    {"nested", SymmetricalDifference, kSquare, kInside, 0, {0}, {96}},
    {"touching", SymmetricalDifference, kSquare, kBeside, 1e9, {0, 1}, {100, 100}},
    {"equal", SymmetricalDifference, kSquare, kSquare, 0, {}, {}},
    {"identity", Identity, kSquare, kShifted, 0, {1, 0}, {25, 75}},
    {"covered", Identity, kSquare, kAround, 0, {1}, {100}},
    {"apart", Identity, kSquare, kFar, 1e9, {0}, {100}},
    {"nothing reaches the tolerance", Identity, kSquare, kShifted, 26, {0}, {100}},
    {"a dropped part is lost", Identity, kSquare, kTwoParts, 1, {1, 0}, {20, 79.5}},
    {"update apart", Update, kSquare, kFar, 1e9, {0, 1}, {100, 100}},
    {"update merges", Update, kSquare, kShifted, 0, {2}, {175}},
    {"update without common area", Update, kSquare, kShifted, 26, {0, 1}, {75, 100}},
    {"update keeps borders", UpdateWithBorders, kSquare, kShifted, 0, {0, 1}, {75, 100}},
    {"update covers", UpdateWithBorders, kSquare, kAround, 0, {1}, {144}},
};

template <class Overlay>
int run(MultiOperation operation, const JWGeometry* a, const JWGeometry* b, Outputs& out,
        double tolerance) {
    switch (operation) {
        case SymmetricalDifference:
            return Overlay::polygonSymmetricalDifferencePolygon(a, b, out.geometries, out.codes,
                                                                tolerance);
        case Identity:
            return Overlay::polygonIdentityPolygon(a, b, out.geometries, out.codes, tolerance);
        default:
            return Overlay::polygonUpdatePolygon(a, b, out.geometries, out.codes,
                                                 operation == UpdateWithBorders, tolerance);
    }
}

TYPED_TEST(GeometryOverlay, CodesInOrder) {
    for (const MultiRow& row : multiRows) {
        const GeometryPtr a = fromWkt(row.a), b = fromWkt(row.b);
        Outputs out;
        const int count = run<TypeParam>(row.operation, a.get(), b.get(), out, row.tolerance);
        EXPECT_EQ(count, static_cast<int>(row.codes.size())) << row.name;
        EXPECT_EQ(out.codes, row.codes) << row.name;
        EXPECT_EQ(out.areas(), row.areas) << row.name;
        // A second run appends; nothing that was there is touched.
        EXPECT_EQ(run<TypeParam>(row.operation, a.get(), b.get(), out, row.tolerance), count);
        EXPECT_EQ(out.geometries.size(), 2 * row.codes.size()) << row.name;
        EXPECT_EQ(run<TypeParam>(row.operation, a.get(), nullptr, out, 0), 0) << row.name;
    }
}

TEST(GeometryOverlay2, SymmetricalDifferenceAtOnce) {
    const MultiRow table[] = {
        {"both ways", SymmetricalDifference, kSquare, kShifted, 0, {0, 1}, {75, 75}},
        {"nested", SymmetricalDifference, kSquare, kInside, 0, {0}, {96}},
        {"inner", SymmetricalDifference, kInside, kSquare, 0, {1}, {96}},
        {"apart", SymmetricalDifference, kSquare, kFar, 0, {0, 1}, {100, 100}},
        {"meeting along an edge",
         SymmetricalDifference,
         "POLYGON ((0 0, 4 0, 4 4, 0 4, 0 0))",
         "MULTIPOLYGON (((4 0, 8 0, 8 4, 4 4, 4 0)), ((1 1, 2 1, 2 2, 1 2, 1 1)))",
         0,
         {2},
         {31}},
        {"several parts of each",
         SymmetricalDifference,
         kSquare,
         "POLYGON ((4 -1, 6 -1, 6 11, 4 11, 4 -1))",
         0,
         {0, 1},
         {80, 4}},
        {"a hole below the tolerance is filled",
         SymmetricalDifference,
         "POLYGON ((0 0, 10 0, 10 10, 0 10, 0 0), (1 1, 2 1, 2 2, 1 2, 1 1))",
         kShifted,
         2,
         {0, 1},
         {75, 75}},
    };
    for (const MultiRow& row : table) {
        const GeometryPtr a = fromWkt(row.a), b = fromWkt(row.b);
        Outputs out;
        JWGeometryOverlay2::polygonSymmetricalDifferencePolygon_new(
            a.get(), b.get(), out.geometries, out.codes, row.tolerance);
        EXPECT_EQ(out.codes, row.codes) << row.name;
        EXPECT_EQ(out.areas(), row.areas) << row.name;
    }
}

// --- Union of many -------------------------------------------------------------------------------

struct ListRow {
    const char* name;
    std::vector<const char*> list;  // null for a null member
    const char* expected;
};

const ListRow listRows[] = {
    {"none", {}, nullptr},
    {"only nulls", {nullptr, nullptr}, nullptr},
    {"one", {kSquare}, kSquare},
    {"a null is skipped", {nullptr, kSquare}, kSquare},
    {"three apart",
     {kSquare, kFar, "POLYGON ((0 40, 1 40, 1 41, 0 40))"},
     "MULTIPOLYGON (((0 0, 10 0, 10 10, 0 10, 0 0)), ((20 0, 30 0, 30 10, 20 10, 20 0)),"
     " ((0 40, 1 40, 1 41, 0 40)))"},
    {"five in a row", {kInside, kInside, kInside, kInside, kSquare}, kSquare},
};

TYPED_TEST(GeometryOverlay, UnionOfMany) {
    for (const ListRow& row : listRows) {
        std::vector<GeometryPtr> owned;
        std::vector<JWGeometry*> list;
        std::vector<JWFeature*> features;
        JWFeatureClass featureClass;
        for (const char* wkt : row.list) {
            owned.push_back(wkt ? fromWkt(wkt) : nullptr);
            list.push_back(owned.back().get());
            featureClass.addFeature(new JWFeature());
            features.push_back(featureClass.getFeatureAt(featureClass.getFeatureCount() - 1));
            features.back()->setGeometry(list.back());
        }
        const std::string expected = row.expected ? normalizedWkt(row.expected) : "(null)";
        const GeometryPtr ofList(TypeParam::unionPolygonsToOne(list, 0));
        EXPECT_EQ(normalizedWkt(ofList.get()), expected) << row.name;
        features.push_back(nullptr);
        const GeometryPtr ofFeatures(TypeParam::unionPolygonsToOne(features, 0));
        EXPECT_EQ(normalizedWkt(ofFeatures.get()), expected) << row.name;
        const std::unique_ptr<JWFeature> feature(TypeParam::unionPolygonsToOne(&featureClass, 0));
        EXPECT_EQ(feature ? normalizedWkt(feature->getGeometryPtr()) : "(null)", expected)
            << row.name;
    }
    const GeometryPtr a = fromWkt(kSquare), b = fromWkt(kInside);
    EXPECT_FALSE(
        GeometryPtr(TypeParam::unionPolygonsToOne(std::vector<JWGeometry*>{a.get(), b.get()}, 1e9)))
        << "a pass in which every union comes out empty ends the loop";
}

// --- Bad input, properties -----------------------------------------------------------------------

TEST(GeometryOverlay2, NonFiniteCoordinates) {
    const GeometryPtr b = fromWkt(kShifted);
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        GeometryPtr a = fromWkt(kSquare);
        static_cast<JWPolygon&>(*a).getRingPtrAt(0)->getPointPtrAt(2)->x = bad;
        a->updateEnvelop();
        EXPECT_FALSE(run<JWGeometryOverlay2>(Intersect, a.get(), b.get(), 0));
        EXPECT_FALSE(run<JWGeometryOverlay2>(Unite, a.get(), b.get(), 0));
    }
}

TEST(GeometryOverlay2, InvalidStoredEnvelopesAreReplaced) {
    const GeometryPtr a = fromWkt(kSquare), b = fromWkt(kShifted);
    a->setEnvelop(JWEnvelop::invalid());
    EXPECT_EQ(area(run<JWGeometryOverlay2>(Intersect, a.get(), b.get(), 0).get()), 25);
}

JWPolygon randomPolygon(RandomRings& random) {
    const JWRawPoint center(random.uniform(-60, 60), random.uniform(-60, 60));
    const Ring outer = random.star(random.integer(4, 200), center, 100);
    return JWPolygon(JWRing(outer.data(), static_cast<int>(outer.size())));
}

TEST(GeometryOverlay2, AreasBesideGeos) {
    const unsigned long long seed = 1234;
    RandomRings random(seed);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const JWPolygon a = randomPolygon(random), b = randomPolygon(random);
        const FourAreas expected = geosAreas(toGeos(&a).get(), toGeos(&b).get());
        const double limit = 1e-9 * expected.of[3];
        const GeometryPtr common = run<JWGeometryOverlay2>(Intersect, &a, &b, 0);
        const GeometryPtr rest = run<JWGeometryOverlay2>(Erase, &a, &b, 0);
        const GeometryPtr both = run<JWGeometryOverlay2>(Unite, &a, &b, 0);
        EXPECT_NEAR(area(common.get()), expected.of[1], limit);
        EXPECT_NEAR(area(rest.get()), expected.of[0], limit);
        EXPECT_NEAR(area(both.get()), expected.of[3], limit);
        for (const GeometryPtr* g : {&common, &rest, &both}) EXPECT_TRUE(isValid(g->get()));
        Outputs identity;
        run<JWGeometryOverlay2>(Identity, &a, &b, identity, 0);
        double sum = 0;
        for (const double part : identity.areas()) sum += part;
        EXPECT_NEAR(sum, a.getArea(), limit) << "identity covers A";
    }
}

}  // namespace
}  // namespace jwtest
