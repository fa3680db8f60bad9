// SPDX-License-Identifier: MIT
//
// Areas come from the shoelace formula about a ring's first point, which keeps its digits far from
// the origin; the exterior ring counts positive, holes negative, whatever their direction.
#include "support/summary.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace bench {

namespace {

constexpr std::uint32_t kPoint = 1;
constexpr std::uint32_t kLineString = 2;
constexpr std::uint32_t kPolygon = 3;
constexpr std::uint32_t kGeometryCollection = 7;
constexpr int kDeepest = 64;

// Reads native values from bytes that another library wrote, with the end in view.
class Reader {
  public:
    Reader(const unsigned char* data, std::size_t size) : m_at(data), m_end(data + size) {}

    double area() const { return m_area; }
    std::int64_t polygons() const { return m_polygons; }
    bool done() const { return m_at == m_end; }

    // Adds the polygons of a geometry, however nested; points and lines are passed over.
    void geometry(int depth = 0) {
        if (take<unsigned char>() != 1) throw std::runtime_error("result WKB is not little-endian");
        const std::uint32_t type = take<std::uint32_t>();
        if (type < kPoint || type > kGeometryCollection || depth > kDeepest) {
            throw std::runtime_error("result of unknown WKB type " + std::to_string(type));
        }
        if (type == kPoint) {
            skipPoints(1);
        } else if (type == kLineString) {
            skipPoints(take<std::uint32_t>());
        } else if (type == kPolygon) {
            polygon();
        } else {
            const std::uint32_t members = take<std::uint32_t>();
            for (std::uint32_t i = 0; i < members; ++i) geometry(depth + 1);
        }
    }

  private:
    void polygon() {
        const std::uint32_t rings = take<std::uint32_t>();
        for (std::uint32_t i = 0; i < rings; ++i) m_area += i == 0 ? ringArea() : -ringArea();
        if (rings > 0) ++m_polygons;
    }

    double ringArea() {
        const std::uint32_t points = take<std::uint32_t>();
        require(points, 16);
        double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0, twice = 0.0;
        for (std::uint32_t i = 0; i < points; ++i) {
            const double x = take<double>();
            const double y = take<double>();
            if (i == 0) {
                x0 = x;
                y0 = y;
            } else {
                twice += (x1 - x0) * (y - y0) - (x - x0) * (y1 - y0);
            }
            x1 = x;
            y1 = y;
        }
        return 0.5 * std::fabs(twice);
    }

    void skipPoints(std::size_t count) {
        require(count, 16);
        m_at += count * 16;
    }

    void require(std::size_t count, std::size_t size) const {
        if (static_cast<std::size_t>(m_end - m_at) / size < count) {
            throw std::runtime_error("result WKB is cut short");
        }
    }

    template <class T>
    T take() {
        require(1, sizeof(T));
        T value;
        std::memcpy(&value, m_at, sizeof(T));
        m_at += sizeof(T);
        return value;
    }

    const unsigned char* m_at;
    const unsigned char* m_end;
    double m_area = 0.0;
    std::int64_t m_polygons = 0;
};

}  // namespace

void Summary::add(const unsigned char* wkb, std::size_t size) {
    Reader reader(wkb, size);
    reader.geometry();
    if (!reader.done()) throw std::runtime_error("bytes after a result geometry");
    if (reader.polygons() == 0) return;
    m_polygons += reader.polygons();
    ++m_features;
    if (reader.area() <= m_sliver) ++m_slivers;
    m_area += reader.area();
    for (std::size_t i = 0; i < size; ++i) m_hash = (m_hash ^ wkb[i]) * 0x100000001b3ULL;  // FNV-1a
}

std::string Summary::difference(const Summary& other, double relative) const {
    const std::int64_t mine = m_features - m_slivers;
    const std::int64_t theirs = other.m_features - other.m_slivers;
    const double gap = std::fabs(m_area - other.m_area);
    if (mine == theirs && gap <= relative * std::fabs(other.m_area)) return {};
    char text[200];
    std::snprintf(text, sizeof text, "%lld pieces, not %lld; area %.17g, not %.17g",
                  static_cast<long long>(mine), static_cast<long long>(theirs), m_area,
                  other.m_area);
    return text;
}

}  // namespace bench
