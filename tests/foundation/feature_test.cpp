// SPDX-License-Identifier: MIT
//
// Schemas, features and feature classes.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "jw_feature.h"
#include "jw_report.h"
#include "support/wkt.h"

namespace {

using namespace jws;
using namespace jwtest;

constexpr enumJWFieldType allTypes[] = {JWFieldInteger,  JWFieldInteger64,     JWFieldReal,
                                        JWFieldString,   JWFieldDate,          JWFieldTime,
                                        JWFieldDateTime, JWFieldBinary,        JWFieldIntegerList,
                                        JWFieldRealList, JWFieldInteger64List, JWFieldStringList};

JWFields* schemaOfAllTypes() {
    auto* fields = new JWFields;
    for (const enumJWFieldType type : allTypes) {
        fields->addField(JWField(("f" + std::to_string(type)).c_str(), type));
    }
    return fields;
}

/// A feature with a value in every field; lists and binary point to static memory.
std::unique_ptr<JWFeature> fullFeature(JWFields* fields) {
    auto feature = std::make_unique<JWFeature>(fields);
    static int integers[] = {1, -2, 3};
    static std::int64_t longs[] = {INT64_MAX, INT64_MIN};
    static double reals[] = {0.1, -2.5e300};
    static char a[] = "a \"quote\"", b[] = "";
    static char* texts[] = {a, b};
    static unsigned char bytes[] = {0, 255, 16};
    unionJWField value{};
    const auto store = [&](enumJWFieldType type) {
        EXPECT_TRUE(feature->setFieldValue(
            fields->getFieldIndex(("f" + std::to_string(type)).c_str()), value));
        value = unionJWField{};
    };
    value.integer = INT_MIN, store(JWFieldInteger);
    value.integer64 = INT64_MIN, store(JWFieldInteger64);
    value.real = 0.1, store(JWFieldReal);
    value.string = a, store(JWFieldString);
    value.date = {2024, 2, 29, 0, 0, 0, 0}, store(JWFieldDate);
    value.date = {0, 0, 0, 23, 59, 0, 7.25F}, store(JWFieldTime);
    value.date = {-44, 3, 15, 12, 30, 122, 59}, store(JWFieldDateTime);
    value.binary = {3, bytes}, store(JWFieldBinary);
    value.integerList = {3, integers}, store(JWFieldIntegerList);
    value.realList = {2, reals}, store(JWFieldRealList);
    value.integer64List.count = 2, value.integer64List.values = longs, store(JWFieldInteger64List);
    value.stringList = {2, texts}, store(JWFieldStringList);
    return feature;
}

std::vector<std::string> textsOf(const JWFeature& feature) {
    std::vector<std::string> texts;
    for (int i = 0; i < feature.getFieldCount(); ++i) {
        std::string text;
        texts.push_back(feature.getFieldAsString(i, text) ? text : "(none)");
    }
    return texts;
}

TEST(FieldsTest, NamesAreFoundExactlyThenIgnoringCase) {
    JWFields fields;
    for (const char* name : {"Name", "name", "AREA"}) fields.addField(JWField(name, JWFieldReal));
    struct {
        const char* name;
        int index;
    } const rows[] = {{"Name", 0}, {"name", 1}, {"NAME", 0},
                      {"area", 2}, {"are", -1}, {nullptr, -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(fields.getFieldIndex(row.name), row.index) << (row.name ? row.name : "null");
    }
    EXPECT_EQ(fields.getFieldPtr(3), nullptr);
    EXPECT_EQ(fields.getFieldPtr(-1), nullptr);
}

TEST(FieldsTest, UniqueNamesIgnoreCase) {
    JWFields fields;
    for (const char* name : {"a", "A", "a", "", ""}) {
        fields.addUniqueField(JWField(name, JWFieldInteger));
    }
    const char* const expected[] = {"a", "A_1", "a_2", "field", "field_1"};
    for (int i = 0; i < 5; ++i) EXPECT_STREQ(fields.getFieldPtr(i)->getFieldName(), expected[i]);
}

TEST(FieldsTest, FeaturesKeepTheFieldsThatTheyWereMadeWith) {
    JWFields* fields = schemaOfAllTypes();
    JWFeature before(fields);
    before.setFieldValue(3, "text");
    fields->addField(JWField("late", JWFieldInteger));
    EXPECT_EQ(before.getFieldCount(), 12);
    EXPECT_FALSE(before.setFieldValue(12, 1));
    EXPECT_EQ(JWFeature(fields).getFieldCount(), 13);
    JWReport::clearError();
    *fields = JWFields();
    EXPECT_EQ(JWReport::lastError().kind, JWErrorInvalidArgument);
    EXPECT_EQ(fields->getFieldCount(), 13) << "the text in use is still known to be one";
    JWFields::destroyFields(fields);
}

TEST(FieldsTest, ASchemaGoesWithItsLastReference) {
    auto* fields = new JWFields;
    fields->addField(JWField("n", JWFieldInteger));
    EXPECT_EQ(fields->getReference(), 0);
    EXPECT_EQ(fields->releaseReference(), 0) << "never below zero";
    JWFeature one(fields);
    auto two = std::make_unique<JWFeature>(one);
    EXPECT_EQ(fields->getReference(), 2);
    JWFields::destroyFields(fields);
    EXPECT_EQ(fields->getReference(), 2) << "destroying leaves living features alone";
    two->setFieldValue(0, 5);
    two.reset();
    JWFeature three(std::move(one));
    EXPECT_EQ(three.getFieldsDefPtr(), fields);
    EXPECT_EQ(one.getFieldCount(), 0);
    EXPECT_EQ(fields->getReference(), 1);
    JWFields::destroyFields(nullptr);
    JWFields::destroyFields(new JWFields);
}

TEST(FeatureTest, ValuesOfEveryTypeAreCopiedDeeply) {
    JWFields* fields = schemaOfAllTypes();
    std::unique_ptr<JWFeature> feature = fullFeature(fields);
    const std::vector<std::string> expected = {"-2147483648",
                                               "-9223372036854775808",
                                               "0.1",
                                               "a \"quote\"",
                                               "2024-02-29",
                                               "23:59:07.250",
                                               "-044-03-15T12:30:59+05:30",
                                               "00FF10",
                                               "[1,-2,3]",
                                               "[0.1,-2.5e+300]",
                                               "[9223372036854775807,-9223372036854775808]",
                                               "[\"a \\\"quote\\\"\",\"\"]"};
    EXPECT_EQ(textsOf(*feature), expected);
    feature->setFID64(std::int64_t{1} << 40);
    feature->setGeometry(fromWkt("POINT (1 2)").get());
    const std::unique_ptr<JWFeature> copy(feature->clone());
    JWFeature assigned;
    assigned = *feature;
    EXPECT_GT(feature->memorySize(), sizeof(JWFeature) + 12 * sizeof(unionJWField));
    for (int i = 0; i < feature->getFieldCount(); ++i) {
        EXPECT_TRUE(feature->setFieldValue(i, *feature->getFieldValDefPtr(i))) << "its own value";
    }
    feature.reset();
    for (const JWFeature* other :
         {static_cast<const JWFeature*>(copy.get()), &std::as_const(assigned)}) {
        EXPECT_EQ(textsOf(*other), expected);
        EXPECT_EQ(other->getFID64(), std::int64_t{1} << 40);
        EXPECT_EQ(other->getFID(), -1) << "does not fit an int";
        EXPECT_EQ(toWkt(*other->getGeometryPtr()), "POINT (1 2)");
    }
    assigned.setFID(-5);
    EXPECT_EQ(assigned.getFID(), -5) << "some sources count below zero";
    JWFields::destroyFields(fields);
}

TEST(FeatureTest, UnsetNullAndSetAreThreeStates) {
    JWFields* fields = schemaOfAllTypes();
    JWFeature feature(fields);
    for (int i = 0; i < feature.getFieldCount(); ++i) {
        EXPECT_FALSE(feature.isFieldSet(i));
        EXPECT_FALSE(feature.isFieldNull(i));
        EXPECT_TRUE(feature.setFieldNull(i));
        EXPECT_TRUE(feature.isFieldNull(i));
        EXPECT_EQ(feature.getFieldValDefPtr(i), nullptr);
    }
    EXPECT_TRUE(feature.setFieldValue(3, "text"));
    EXPECT_TRUE(feature.unsetField(3));
    EXPECT_FALSE(feature.isFieldNull(3));
    EXPECT_EQ(feature.getUnionValues()[3].string, nullptr);
    for (const int unknown : {-1, 12, INT_MAX}) {
        int n = 7;
        EXPECT_FALSE(feature.isFieldSet(unknown));
        EXPECT_FALSE(feature.setFieldValue(unknown, 1));
        EXPECT_FALSE(feature.setFieldNull(unknown));
        EXPECT_FALSE(feature.getFieldAsInt(unknown, n));
        EXPECT_EQ(n, 7);
    }
    JWFields::destroyFields(fields);
}

TEST(FeatureTest, NumbersAndTextsAreConverted) {
    struct Row {
        enumJWFieldType type;
        const char* in;
        const char* out;  ///< null when it cannot be stored
    };
    const Row rows[] = {{JWFieldInteger, "12", "12"},
                        {JWFieldInteger, " -3 ", "-3"},
                        {JWFieldInteger, "2147483648", nullptr},
                        {JWFieldInteger, "2.5", nullptr},
                        {JWFieldInteger, "4.0", "4"},
                        {JWFieldInteger, "x", nullptr},
                        {JWFieldInteger, "", nullptr},
                        {JWFieldInteger64, "9223372036854775807", "9223372036854775807"},
                        {JWFieldInteger64, "1e30", nullptr},
                        {JWFieldReal, "1e30", "1e+30"},
                        {JWFieldReal, "nan", "nan"},
                        {JWFieldReal, "1 2", nullptr},
                        {JWFieldString, "1 2", "1 2"},
                        {JWFieldDate, "2024-02-29", "2024-02-29"},
                        {JWFieldDate, "2024/2/9", "2024-02-09"},
                        {JWFieldDate, "2024-13-01", nullptr},
                        {JWFieldDate, "2023-02-29", nullptr},
                        {JWFieldDate, "1900-02-29", nullptr},
                        {JWFieldDate, "2000-02-29", "2000-02-29"},
                        {JWFieldDate, "2024-04-31", nullptr},
                        {JWFieldDate, "2024-01-01T", nullptr},
                        {JWFieldTime, "23:59:01.5", "23:59:01.500"},
                        {JWFieldTime, "23:59:59.9996", "23:59:59.999"},
                        {JWFieldTime, "23:59:60.25", "23:59:60.250"},
                        {JWFieldTime, "23:59:61", nullptr},
                        {JWFieldTime, "23:59:", nullptr},
                        {JWFieldTime, "23:59:1e0", nullptr},
                        {JWFieldTime, "24:00", nullptr},
                        {JWFieldTime, "1:02+0530", "01:02:00+05:30"},
                        {JWFieldTime, "1:02-03", "01:02:00-03:00"},
                        {JWFieldTime, "1:02+05:", nullptr},
                        {JWFieldTime, "1:02+0501", nullptr},
                        {JWFieldDateTime, "2024-01-02T", nullptr},
                        {JWFieldDateTime, "2024-01-02T03:04:05Z", "2024-01-02T03:04:05Z"},
                        {JWFieldDateTime, "2024-01-02 03:04-05:30", "2024-01-02T03:04:00-05:30"},
                        {JWFieldDateTime, "2024-01-02", "2024-01-02T00:00:00"},
                        {JWFieldBinary, "00", nullptr},
                        {JWFieldIntegerList, "1", nullptr}};
    for (const Row& row : rows) {
        auto* fields = new JWFields;
        fields->addField(JWField("f", row.type));
        {
            JWFeature feature(fields);
            EXPECT_EQ(feature.setFieldValue(0, row.in), row.out != nullptr) << row.in;
            std::string text;
            EXPECT_EQ(feature.getFieldAsString(0, text), row.out != nullptr) << row.in;
            EXPECT_EQ(text, row.out ? row.out : "") << row.in;
        }
        JWFields::destroyFields(fields);
    }
}

TEST(FeatureTest, NumbersAreReadAcrossTypes) {
    JWFields* fields = schemaOfAllTypes();
    JWFeature feature(fields);
    int n = 0;
    std::int64_t big = 0;
    double real = 0;
    EXPECT_TRUE(feature.setFieldValue(2, -7.9));
    EXPECT_TRUE(feature.getFieldAsInt(2, n));
    EXPECT_EQ(n, -7) << "truncated";
    EXPECT_TRUE(feature.setFieldValue(2, 1e10));
    EXPECT_FALSE(feature.getFieldAsInt(2, n));
    EXPECT_TRUE(feature.getFieldAsInt64(2, big));
    EXPECT_EQ(big, 10000000000);
    EXPECT_TRUE(feature.setFieldValue(2, std::nan("")));
    EXPECT_FALSE(feature.getFieldAsInt64(2, big));
    EXPECT_TRUE(feature.setFieldValue(3, 0.1));
    EXPECT_TRUE(feature.getFieldAsDouble(3, real));
    EXPECT_EQ(real, 0.1) << "texts hold numbers exactly";
    EXPECT_FALSE(feature.setFieldValue(0, 2.5));
    EXPECT_FALSE(feature.setFieldValue(0, std::int64_t{1} << 31));
    EXPECT_FALSE(feature.isFieldSet(0));
    for (const std::int64_t lossy : {(std::int64_t{1} << 53) + 1, INT64_MAX}) {
        EXPECT_FALSE(feature.setFieldValue(2, lossy)) << "a real field would hold another number";
        JWFeature whole(fields);
        whole.setFieldValue(1, lossy);
        EXPECT_FALSE(feature.copyFieldFrom(2, whole, 1));
    }
    EXPECT_TRUE(feature.setFieldValue(2, INT64_MIN));
    EXPECT_TRUE(feature.setFieldValue(0, 7u));
    EXPECT_TRUE(feature.setFieldValue(1, std::size_t{1} << 62));
    EXPECT_FALSE(feature.setFieldValue(1, ~std::size_t{0}));
    EXPECT_FALSE(feature.getFieldAsDouble(4, real)) << "unset";
    JWFields::destroyFields(fields);
}

TEST(FeatureTest, FieldsAreCopiedBetweenFeatures) {
    JWFields* fields = schemaOfAllTypes();
    {
        const std::unique_ptr<JWFeature> full = fullFeature(fields);
        JWFeature target(fields);
        for (int i = 0; i < target.getFieldCount(); ++i)
            EXPECT_TRUE(target.copyFieldFrom(i, *full, i));
        EXPECT_EQ(textsOf(target), textsOf(*full));
        for (int i = 0; i < target.getFieldCount(); ++i) {
            EXPECT_TRUE(target.copyFieldFrom(3, *full, i)) << "everything has a text";
        }
        EXPECT_FALSE(target.copyFieldFrom(0, *full, 1)) << "64 bits into 32";
        EXPECT_FALSE(target.copyFieldFrom(4, *full, 0)) << "a number is no date";
        full->setFieldNull(0);
        EXPECT_TRUE(target.copyFieldFrom(2, *full, 0));
        EXPECT_TRUE(target.isFieldNull(2));
        EXPECT_FALSE(target.copyFieldFrom(0, *full, 99));
    }
    JWFields::destroyFields(fields);
}

TEST(FeatureTest, GeometriesAreCopiedOrTakenOver) {
    JWFeature feature;
    EXPECT_TRUE(feature.isGeometryEmpty());
    EXPECT_EQ(feature.getGeometryType(), JWGeometryNone);
    const auto polygon = fromWkt("POLYGON ((0 0, 1 0, 1 1, 0 0))");
    feature.setGeometry(polygon.get());
    EXPECT_NE(feature.getGeometryPtr(), polygon.get());
    JWGeometry* direct = new JWLineString;
    static_cast<JWLineString*>(direct)->addPoint(3, 4);
    feature.setGeometryDirectly(direct, true);
    EXPECT_EQ(feature.getGeometryPtr(), direct);
    EXPECT_EQ(direct->getEnvelop(), JWEnvelop(3, 4, 3, 4)) << "the flag updates the envelope";
    feature.setGeometryDirectly(feature.getGeometryPtr());
    EXPECT_EQ(feature.getGeometryType(), JWGeometryLineString);
    feature.setGeometryDirectly(new JWPolygon);
    EXPECT_TRUE(feature.isGeometryEmpty());
    feature.setGeometry(nullptr);
    EXPECT_EQ(feature.getGeometryPtr(), nullptr);
    JWFeature::destroyFeature(nullptr);
    JWFeature::destroyFeature(new JWFeature);
}

TEST(FeatureClassTest, OwnsItsFeaturesInOrder) {
    JWFeatureClass features;
    EXPECT_FALSE(features.getEnvelop().isValid());
    for (int i = 0; i < 4; ++i) {
        auto* feature = new JWFeature;
        feature->setFID(i);
        feature->setGeometryDirectly(new JWPoint(i, -i));
        features.addFeature(feature);
    }
    features.addFeature(new JWFeature);
    features.addFeature(nullptr);
    features.updateEnvelop();
    EXPECT_EQ(features.getEnvelop(), JWEnvelop(0, -3, 3, 0));
    features.deleteFeatureAt(1);
    features.deleteFeatureAt(99);
    JWSpatialReference reference;
    reference.importFromUserInput("EPSG:4326");
    features.setSpatialReference(&reference);
    features.setGeometryType(JWWKBPoint);
    JWFeatureClass copy;
    copy = JWFeatureClass(features);
    features.clearAll();
    ASSERT_EQ(copy.getFeatureCount(), 4);
    EXPECT_EQ(copy.getFeatureAt(1)->getFID(), 2);
    EXPECT_EQ(copy.getFeatureAt(4), nullptr);
    EXPECT_EQ(copy.getGeometryType(), JWWKBPoint);
    EXPECT_EQ(copy.getEnvelop(), JWEnvelop(0, -3, 3, 0));
    EXPECT_TRUE(JWSpatialReference::areSame(copy.getSpatialReference(), &reference));
    features.updateEnvelop();
    EXPECT_FALSE(features.getEnvelop().isValid());
}

}  // namespace
