// SPDX-License-Identifier: MIT
//
// Well-known binary and text: what is read, what is written, and what is refused.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "jw_geometry.h"
#include "support/wkt.h"

namespace jws {
namespace {

using jwtest::fromWkt;
using jwtest::toWkt;
using Bytes = std::vector<unsigned char>;

/// Bytes in hexadecimal; x, y and z are the big-endian doubles 1, 2 and 3.
Bytes fromHex(const std::string& text) {
    std::string hex;
    for (const char c : text) {
        const char* real = c == 'x' ? "3ff0" : c == 'y' ? "4000" : c == 'z' ? "4008" : nullptr;
        hex += real == nullptr ? std::string(1, c) : real + std::string(12, '0');
    }
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

Bytes toWkb(const JWGeometry& geometry, enumJWWKBByteOrder order) {
    Bytes bytes(geometry.getWKBSize());
    EXPECT_EQ(geometry.exportToWkb(order, bytes.data()), JWDataErrNone);
    return bytes;
}

/// The text of what the bytes hold, or the error's number.
std::string decoded(const Bytes& bytes) {
    JWGeometry* geometry = nullptr;
    const enumJWDataErr err =
        JWGeometryFactory::createFromWkb(bytes.data(), bytes.size(), &geometry);
    const std::unique_ptr<JWGeometry> owner(geometry);
    return geometry == nullptr ? "error " + std::to_string(err) : toWkt(*geometry);
}

std::string parsed(const char* text) {
    JWGeometry* geometry = nullptr;
    const enumJWDataErr err = JWGeometryFactory::createFromWkt(text, &geometry);
    const std::unique_ptr<JWGeometry> owner(geometry);
    return geometry == nullptr ? "error " + std::to_string(err) : toWkt(*geometry);
}

const char* const kRoundTrips[] = {
    "POINT (1 -2.5)",
    "POINT EMPTY",
    "LINESTRING (0.1 0.2, 1e+300 -1e-300)",
    "LINESTRING EMPTY",
    "POLYGON EMPTY",
    "POLYGON (EMPTY)",
    "MULTIPOINT ((1 2), (3 4))",
    "MULTIPOINT ((1 2), EMPTY)",
    "MULTIPOINT EMPTY",
    "MULTILINESTRING ((0 0, 1 1), (2 2, 3 3, 4 5))",
    "MULTIPOLYGON (((0 0, 1 0, 1 1, 0 0)), ((5 5, 9 5, 9 9, 5 5), (6 5.5, 8 6, 8 7, 6 5.5)))",
    "MULTIPOLYGON (EMPTY, ((0 0, 1 0, 1 1, 0 0)))",
    "GEOMETRYCOLLECTION (POINT (1 2), GEOMETRYCOLLECTION (LINESTRING (0 0, 1 1), POLYGON EMPTY))",
    "GEOMETRYCOLLECTION EMPTY",
};

TEST(WkbWkt, RoundTrips) {
    for (const char* text : kRoundTrips) {
        const auto geometry = fromWkt(text);
        EXPECT_EQ(toWkt(*geometry), text);
        for (const enumJWWKBByteOrder order : {JWWKBBigEndian, JWWKBLittleEndian}) {
            const Bytes bytes = toWkb(*geometry, order);
            EXPECT_EQ(bytes[0], order);
            EXPECT_EQ(decoded(bytes), text) << "byte order " << order;
            const std::unique_ptr<JWGeometry> again(geometry->clone());
            EXPECT_EQ(again->importFromWkb(bytes.data(), bytes.size()), JWDataErrNone);
            EXPECT_EQ(toWkt(*again), text);
            EXPECT_EQ(again->getEnvelop(), geometry->getEnvelop());
            EXPECT_EQ(again->importFromWkb(bytes.data(), true), JWDataErrNone);
            EXPECT_EQ(toWkt(*again), text);
        }
    }
}

TEST(Wkb, EncodingsOfOthers) {
    // Written by hand from the encodings' definitions; x, y and z stand for 1, 2 and 3.
    const struct {
        const char *name, *hex, *expected;
    } rows[] = {
        {"big-endian point", "0000000001xy", "POINT (1 2)"},
        {"ISO z", "00000003e9xyz", "POINT (1 2)"},
        {"ISO m", "00000007d1xyz", "POINT (1 2)"},
        {"ISO zm", "0000000bb9xyzz", "POINT (1 2)"},
        {"extended z", "0080000001xyz", "POINT (1 2)"},
        {"extended zm, reference", "00e0000001000010e6xyzz", "POINT (1 2)"},
        {"little-endian", "0101000000000000000000f03f0000000000000040", "POINT (1 2)"},
        {"line with z", "00000003ea00000002xyzyxz", "LINESTRING (1 2, 2 1)"},
        {"open ring", "00000000030000000100000003xxyxyz", "POLYGON ((1 1, 2 1, 2 3, 1 1))"},
        {"members in both orders",
         "0000000004000000020101000000000000000000f03f00000000000000400000000001yx",
         "MULTIPOINT ((1 2), (2 1))"},
        {"member of another kind", "0000000005000000010000000001xy", "error 5"},
        {"circular string", "000000000800000000", "error 3"},
        {"no such type", "000000006300000000", "error 5"},
        {"no such byte order", "0200000001xy", "error 5"},
        {"thousands too many", "0000000fa1xy", "error 5"},
        {"count beyond the data", "0000000002ffffffffxy", "error 1"},
        {"ring count beyond the data", "0000000003ffffffff00000000", "error 1"},
        {"member count beyond the data", "0000000007ffffffff", "error 1"},
        {"bytes after the end", "0000000001xy00", "error 5"},
        {"nothing", "", "error 1"},
    };
    for (const auto& row : rows) EXPECT_EQ(decoded(fromHex(row.hex)), row.expected) << row.name;
}

TEST(Wkb, PointKeepsZAndM) {
    const Bytes bytes = fromHex("00000007d1xyz");
    JWPoint p(9, 9, 9, 9);
    ASSERT_EQ(p.importFromWkb(bytes.data(), bytes.size()), JWDataErrNone);
    EXPECT_EQ(p.getZ(), 0);
    EXPECT_EQ(p.getM(), 3);
    ASSERT_EQ(p.importFromWkt("POINT ZM (1 2 3 4)"), JWDataErrNone);
    EXPECT_EQ(p.getZ(), 3);
    EXPECT_EQ(p.getM(), 4);
}

TEST(Wkb, EveryCutIsRefused) {
    for (const char* text : kRoundTrips) {
        const auto geometry = fromWkt(text);
        const Bytes whole = toWkb(*geometry, JWWKBLittleEndian);
        for (std::size_t n = 0; n < whole.size(); ++n) {
            const Bytes cut(whole.begin(),
                            whole.begin() + n);  // of its own size, for the sanitizer
            const std::unique_ptr<JWGeometry> into(geometry->clone());
            ASSERT_EQ(into->importFromWkb(cut.data() == nullptr ? whole.data() : cut.data(), n),
                      JWDataErrNotEnoughData)
                << text << " cut to " << n;
            ASSERT_TRUE(into->isEmpty());
            ASSERT_FALSE(into->getEnvelop().isValid());
        }
    }
}

TEST(Wkb, DamagedBytesNeverDoHarm) {
    const unsigned seed = 20240607;
    std::mt19937 random(seed);
    for (int round = 0; round < 20000; ++round) {
        const auto geometry = fromWkt(kRoundTrips[random() % std::size(kRoundTrips)]);
        Bytes bytes = toWkb(*geometry, random() % 2 == 0 ? JWWKBBigEndian : JWWKBLittleEndian);
        for (int i = 0; i < 3; ++i) bytes[random() % bytes.size()] = random() & 0xff;
        JWGeometry* made = nullptr;
        std::size_t used = 0;
        const enumJWDataErr err =
            JWGeometryFactory::createFromWkb(bytes.data(), bytes.size(), &made, &used);
        const std::unique_ptr<JWGeometry> owner(made);
        ASSERT_EQ(err == JWDataErrNone, made != nullptr) << "seed " << seed;
        ASSERT_LE(used, bytes.size());
        if (made != nullptr && made->getWKBSize() > 0) toWkb(*made, JWWKBLittleEndian);
    }
}

TEST(Wkb, DepthIsLimited) {
    const auto nested = [](int depth) {
        Bytes bytes;
        for (int i = 0; i < depth; ++i) {
            const Bytes level =
                fromHex(i + 1 < depth ? "000000000700000001" : "000000000700000000");
            bytes.insert(bytes.end(), level.begin(), level.end());
        }
        return bytes;
    };
    EXPECT_EQ(decoded(nested(128)).substr(0, 18), "GEOMETRYCOLLECTION");
    EXPECT_EQ(decoded(nested(129)), "error 5");
    EXPECT_EQ(decoded(nested(100000)), "error 5");
    std::string text;
    for (int i = 0; i < 100000; ++i) text += "GEOMETRYCOLLECTION(";
    EXPECT_EQ(parsed(text.c_str()), "error 5");
}

TEST(WkbWkt, WrongTypesAreRefusedAndEmpty) {
    const auto point = fromWkt("POINT (1 2)");
    const Bytes bytes = toWkb(*point, JWWKBLittleEndian);
    for (const char* text : kRoundTrips) {
        const auto into = fromWkt(text);
        if (into->getGeometryType() == JWGeometryPoint) continue;
        EXPECT_EQ(into->importFromWkb(bytes.data(), bytes.size()),
                  JWDataErrUnsupportedGeometryType);
        EXPECT_TRUE(into->isEmpty());
        EXPECT_EQ(into->importFromWkt("POINT (1 2)"), JWDataErrUnsupportedGeometryType);
    }
    JWPoint p;
    EXPECT_EQ(p.importFromWkb(nullptr, 5), JWDataErrInvalidHandle);
    EXPECT_EQ(p.importFromWkt(nullptr), JWDataErrInvalidHandle);
    EXPECT_EQ(p.exportToWkb(JWWKBBigEndian, nullptr), JWDataErrInvalidHandle);
    EXPECT_EQ(p.exportToWkt(nullptr), JWDataErrInvalidHandle);
    EXPECT_EQ(JWGeometryFactory::createFromWkt("POINT (1 2)", nullptr), JWDataErrInvalidHandle);
}

TEST(WkbWkt, TrailingDataOnlyWhenAllowed) {
    Bytes bytes = toWkb(JWPoint(1, 2), JWWKBLittleEndian);
    bytes.push_back(7);
    JWPoint p;
    EXPECT_EQ(p.importFromWkb(bytes.data(), bytes.size()), JWDataErrCorruptData);
    EXPECT_TRUE(p.isEmpty());
    EXPECT_EQ(p.importFromWkb(bytes.data(), bytes.size(), true), JWDataErrNone);
    EXPECT_EQ(p, JWPoint(1, 2));
    EXPECT_EQ(p.importFromWkt("POINT (3 4) tail", false), JWDataErrCorruptData);
    EXPECT_EQ(p.importFromWkt("POINT (3 4) tail", true), JWDataErrNone);
    EXPECT_EQ(p, JWPoint(3, 4));
}

TEST(WkbWkt, RingsSegmentsAndCurves) {
    JWRing ring;
    const auto polygon = fromWkt("POLYGON ((0 0, 4 0, 4 4, 0 0))");
    Bytes bytes = toWkb(*polygon, JWWKBBigEndian);
    ASSERT_EQ(ring.importFromWkb(bytes.data(), bytes.size()), JWDataErrNone);
    EXPECT_EQ(toWkb(ring, JWWKBBigEndian), bytes);
    EXPECT_EQ(ring.importFromWkt("POLYGON ((0 0, 5 0, 5 5))"), JWDataErrNone);
    EXPECT_EQ(toWkt(ring), "LINEARRING (0 0, 5 0, 5 5, 0 0)");
    const char* holed = "POLYGON ((0 0, 9 0, 9 9, 0 0), (6 2, 7 2, 7 3, 6 2))";
    EXPECT_EQ(ring.importFromWkt(holed), JWDataErrUnsupportedGeometryType);
    bytes = toWkb(*fromWkt(holed), JWWKBBigEndian);
    EXPECT_EQ(ring.importFromWkb(bytes.data(), bytes.size()), JWDataErrUnsupportedGeometryType);
    EXPECT_TRUE(ring.isEmpty());
    EXPECT_EQ(decoded(toWkb(ring, JWWKBBigEndian)), "POLYGON EMPTY");

    JWLine line(1, 2, 3, 4);
    EXPECT_EQ(decoded(toWkb(line, JWWKBLittleEndian)), "LINESTRING (1 2, 3 4)");
    EXPECT_EQ(line.importFromWkt("LINESTRING (5 6, 7 8)"), JWDataErrNone);
    EXPECT_EQ(line, JWLine(5, 6, 7, 8));
    EXPECT_EQ(line.importFromWkt("LINESTRING (0 0, 1 1, 2 2)"), JWDataErrUnsupportedGeometryType);
    EXPECT_EQ(line.importFromWkt("LINESTRING EMPTY"), JWDataErrNone);
    EXPECT_TRUE(line.isEmpty());
    bytes = toWkb(line, JWWKBBigEndian);
    EXPECT_EQ(line.importFromWkb(bytes.data(), bytes.size()), JWDataErrNone);
    EXPECT_TRUE(line.isEmpty());

    JWGeometryBag bag;
    JWCircular arc(JWRawPoint(0, 0), 1, 0, 1);
    bag.addGeometry(&line);
    bag.addGeometry(&arc);
    unsigned char untouched = 42;
    EXPECT_EQ(bag.getWKBSize(), 0u);
    EXPECT_EQ(bag.exportToWkb(JWWKBBigEndian, &untouched), JWDataErrUnsupportedGeometryType);
    EXPECT_EQ(untouched, 42);
    char* text = nullptr;
    EXPECT_EQ(bag.exportToWkt(&text), JWDataErrUnsupportedGeometryType);
    EXPECT_EQ(text, nullptr);
}

TEST(Wkt, FormsThatAreRead) {
    const struct {
        const char *text, *expected;
    } rows[] = {
        {"point(1 2)", "POINT (1 2)"},
        {"  Point\tZ\n( 1  2 3 )  ", "POINT (1 2)"},
        {"POINTZM(1 2 3 4)", "POINT (1 2)"},
        {"POINT M (1 2 3)", "POINT (1 2)"},
        {"POINT (+1 -.5e1)", "POINT (1 -5)"},
        {"POINT (nan inf)", "POINT (nan inf)"},
        {"POINT (1e400 1e-400)", "POINT (inf 0)"},
        {"SRID=4326;POINT (1 2)", "POINT (1 2)"},
        {"LINESTRING Z (0 0 1, 1 1 2)", "LINESTRING (0 0, 1 1)"},
        {"LINEARRING (0 0, 1 0, 1 1)", "LINEARRING (0 0, 1 0, 1 1, 0 0)"},
        {"POLYGON ((0 0, 1 0, 1 1))", "POLYGON ((0 0, 1 0, 1 1, 0 0))"},
        {"MULTIPOINT (1 2, 3 4)", "MULTIPOINT ((1 2), (3 4))"},
        {"MULTIPOINT ((1 2), EMPTY, 3 4)", "MULTIPOINT ((1 2), EMPTY, (3 4))"},
        {"GEOMETRYCOLLECTION (LINEARRING (0 0, 1 0, 1 1, 0 0), point empty)",
         "GEOMETRYCOLLECTION (LINEARRING (0 0, 1 0, 1 1, 0 0), POINT EMPTY)"},
        {"POINT Z (1 2)", "error 5"},
        {"POINT (1 2 3 4 5)", "error 5"},
        {"POINT (1-2)", "error 5"},  // numbers stand apart
        {"POINT (1 2.5.5)", "error 5"},
        {"POINT (1 +-2)", "error 5"},
        {"POINT (1 x)", "error 5"},
        {"POINT (1 2", "error 1"},
        {"LINESTRING (0 0, ", "error 1"},
        {"", "error 1"},
        {"POLYGON (0 0, 1 1)", "error 5"},
        {"LINESTRING ()", "error 5"},
        {"CIRCULARSTRING (0 0, 1 1, 2 0)", "error 3"},
        {"HEXAGON (0 0)", "error 5"},
        {"POINT (1 2) POINT (3 4)", "error 5"},
        {"SRID=4326 POINT (1 2)", "error 5"},
        {"SRID of some kind;POINT (1 2)", "error 5"},
    };
    for (const auto& row : rows) EXPECT_EQ(parsed(row.text), row.expected) << row.text;
    // Beyond a double's range: where the first digit stands decides, not the sign of the exponent.
    const std::string zeros(400, '0');
    const std::string extremes = "POINT (-1" + zeros + "e-5 0." + zeros + "1e+5)";
    EXPECT_EQ(parsed(extremes.c_str()), "POINT (-inf 0)");
}

TEST(Wkt, CoordinatesComeBackBitForBit) {
    const unsigned seed = 77;
    std::mt19937_64 random(seed);
    for (int i = 0; i < 5000; ++i) {
        double xy[2];
        for (double& v : xy) {
            do {
                const std::uint64_t bits = random();
                std::memcpy(&v, &bits, sizeof v);
            } while (!std::isfinite(v));
        }
        const JWPoint p(xy[0], xy[1]);
        JWPoint again;
        ASSERT_EQ(again.importFromWkt(toWkt(p).c_str()), JWDataErrNone) << "seed " << seed;
        ASSERT_EQ(again, p) << toWkt(p);
    }
}

TEST(Support, NormalizedTextsAgreeForTheSameGeometry) {
    const char* const same[][2] = {
        {"POLYGON ((0 0, 9 0, 9 9, 0 9, 0 0), (1 1, 2 1, 2 2, 1 1), (5 5, 6 5, 6 6, 5 5))",
         "POLYGON ((0 9, 9 9, 9 0, 0 0, 0 9), (6 6, 5 5, 6 5, 6 6), (1 1, 2 2, 2 1, 1 1))"},
        {"MULTIPOLYGON (((5 5, 6 5, 6 6, 5 5)), ((0 0, 1 0, 1 1, 0 0)))",
         "MULTIPOLYGON (((1 1, 0 0, 1 0, 1 1)), ((6 6, 5 5, 6 5, 6 6)))"},
        {"LINESTRING (3 3, 1 2)", "LINESTRING (1 2, 3 3)"},
    };
    for (const auto& [a, b] : same) EXPECT_EQ(jwtest::normalizedWkt(a), jwtest::normalizedWkt(b));
    EXPECT_NE(jwtest::normalizedWkt("LINESTRING (0 0, 1 1, 2 0)"),
              jwtest::normalizedWkt("LINESTRING (0 0, 2 0, 1 1)"));
}

}  // namespace
}  // namespace jws
