// SPDX-License-Identifier: MIT
//
// Random valid geometries of every kind on a small integer grid, so that shared vertices, shared
// edges, touching holes and lines that end on boundaries are the rule, and GEOS as the judge of how
// two of them lie to one another.
#ifndef JW_TESTS_RELATION_RANDOM_GEOMETRIES_H
#define JW_TESTS_RELATION_RANDOM_GEOMETRIES_H

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jw_geometry.h"
#include "support/geos_oracle.h"
#include "support/wkt.h"

namespace jwtest {

/// Any geometry with a well-known form, through its well-known binary.
inline GeosPtr geosOf(const jws::JWGeometry& geometry) {
    std::vector<unsigned char> wkb(geometry.getWKBSize());
    geometry.exportToWkb(jws::JWWKBLittleEndian, wkb.data());
    return GeosPtr(GEOSGeomFromWKB_buf_r(geosContext(), wkb.data(), wkb.size()));
}

inline std::unique_ptr<jws::JWGeometry> fromGeos(const GEOSGeometry* geometry) {
    GEOSContextHandle_t h = geosContext();
    GEOSWKTWriter* writer = GEOSWKTWriter_create_r(h);
    GEOSWKTWriter_setTrim_r(h, writer, 1);
    char* text = GEOSWKTWriter_write_r(h, writer, geometry);
    auto result = fromWkt(text);
    GEOSFree_r(h, text);
    GEOSWKTWriter_destroy_r(h, writer);
    return result;
}

/// The matrix as text; empty when GEOS cannot tell.
inline std::string geosRelation(const jws::JWGeometry& a, const jws::JWGeometry& b) {
    GEOSContextHandle_t h = geosContext();
    char* text = GEOSRelate_r(h, geosOf(a).get(), geosOf(b).get());
    const std::string matrix = text ? text : "";
    GEOSFree_r(h, text);
    return matrix;
}

class RandomGeometries {
  public:
    RandomGeometries(unsigned seed, int grid) : m_random(seed), m_grid(grid) {}

    std::unique_ptr<jws::JWGeometry> next() {
        for (;;) {
            const std::string wkt = text();
            auto geometry = fromWkt(wkt);
            const GeosPtr judged = geosOf(*geometry);
            if (GEOSisValid_r(geosContext(), judged.get()) == 1 &&
                GEOSisSimple_r(geosContext(), judged.get()) == 1)
                return geometry;
        }
    }
    /// One that may cross, cover or touch itself, and bags of such.
    std::unique_ptr<jws::JWGeometry> nextWild() {
        if (below(6) > 0) return fromWkt(text());
        return fromWkt("GEOMETRYCOLLECTION (" + list(1 + below(3), [&] { return text(); }) + ")");
    }
    /// A number from 0 to `limit` − 1.
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

  private:
    std::string text() {
        switch (below(8)) {
            case 0:
                return "POINT (" + point() + ")";
            case 1:
                return "MULTIPOINT (" + points(1 + below(5)) + ")";
            case 2:
                return "LINESTRING (" + points(2 + below(5)) + ")";
            case 3:
                return "MULTILINESTRING (" +
                       list(1 + below(4), [&] { return "(" + points(2 + below(3)) + ")"; }) + ")";
            case 4:
                return "POLYGON ((" + ring() + "))";
            case 5:
                return "POLYGON ((" + ring() + "), (" + ring() + "))";
            default:
                return cells();
        }
    }
    std::string point() {
        return std::to_string(below(m_grid + 1)) + " " + std::to_string(below(m_grid + 1));
    }
    template <class Member>
    std::string list(int count, Member&& member) {
        std::string text = member();
        for (int i = 1; i < count; ++i) text += ", " + member();
        return text;
    }
    std::string points(int count) {
        return list(count, [&] { return point(); });
    }
    std::string ring() {
        const std::string first = point();
        return first + ", " + points(2 + below(4)) + ", " + first;
    }
    /// The union of random cells and halves of cells of the grid: areas with holes and parts that
    /// touch in vertices.
    std::string cells() {
        GEOSContextHandle_t h = geosContext();
        std::string text =
            "MULTIPOLYGON (" + list(1 + below(m_grid * 2), [&] { return cell(); }) + ")";
        const GeosPtr parts = geosOf(*fromWkt(text));
        const GeosPtr whole(GEOSUnaryUnion_r(h, parts.get()));
        return toWkt(*fromGeos(whole.get()));
    }
    std::string cell() {
        const int x = below(m_grid), y = below(m_grid);
        const auto corner = [&](int dx, int dy) {
            return std::to_string(x + dx) + " " + std::to_string(y + dy);
        };
        std::vector<std::string> corners = {corner(0, 0), corner(1, 0), corner(1, 1), corner(0, 1)};
        const int without = below(6);
        if (without < 4) corners.erase(corners.begin() + without);
        std::string text = "((";
        for (const std::string& c : corners) text += c + ", ";
        return text + corners[0] + "))";
    }

    std::mt19937 m_random;
    int m_grid;
};

}  // namespace jwtest

#endif  // JW_TESTS_RELATION_RANDOM_GEOMETRIES_H
