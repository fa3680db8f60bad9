// SPDX-License-Identifier: MIT
//
// Generated polygon layers: a tessellation of roughly square cells whose shared edges wiggle.
//
// Nodes of a square grid are jittered, and every edge between two nodes becomes a jagged line of
// `segments` pieces whose inner vertices are pushed sideways, less and less towards the nodes. Two
// neighbours take the vertices of their common edge from one function of (seed, edge, position), so
// they agree bit for bit: a layer has no gap and no overlap, and every cell is a simple ring. All
// numbers come from a hash of integers by additions and multiplications; the same specification
// gives the same bits on every machine.
#ifndef JWCG_BENCH_TESSELLATION_H
#define JWCG_BENCH_TESSELLATION_H

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// What distinguishes one tessellation from another.
struct TessellationSpec {
    std::int64_t polygons = 1000;  ///< number of cells, 1 or more
    std::uint64_t seed = 1;        ///< of jitter and wiggle
    double offset = 0.0;           ///< shift of the whole layer to the north-east, in cells
    int segments = 8;              ///< pieces of an edge; a cell has four times as many vertices
    double cellSize = 1000.0;      ///< layer units (metres)
    double originX = 500000.0;
    double originY = 5000000.0;
};

/// The cells of a tessellation, row by row from the south-west; each is made when asked for. Const
/// members may be called from several threads at once.
class Tessellation {
  public:
    explicit Tessellation(const TessellationSpec& spec);

    std::int64_t size() const { return m_spec.polygons; }
    std::int64_t column(std::int64_t cell) const { return cell % m_columns; }
    std::int64_t row(std::int64_t cell) const { return cell / m_columns; }

    /// Replaces `xy` by the closed, counter-clockwise ring of a cell: x, y, x, y, ...
    void ring(std::int64_t cell, std::vector<double>& xy) const;

    /// Replaces `wkb` by the little-endian well-known binary of a cell, a polygon of one ring.
    void polygonWkb(std::int64_t cell, std::vector<unsigned char>& wkb) const;

  private:
    enum class Axis { East, North };

    struct Point {
        double x;
        double y;
    };

    Point node(std::int64_t column, std::int64_t row) const;
    Point edgePoint(std::int64_t column, std::int64_t row, Axis axis, int position) const;
    double noise(std::int64_t column, std::int64_t row, int channel) const;

    TessellationSpec m_spec;
    std::int64_t m_columns;
};

/// Writes a tessellation as a GeoPackage of one layer (polygons, EPSG:32633; fields `cell`, `col`,
/// `row`, integers, `weight`, real, and `name`, text), replacing a file of that name. Returns an
/// empty text on success, otherwise what went wrong.
std::string writeGeoPackage(const Tessellation& cells, const std::string& path,
                            const std::string& layer);

}  // namespace bench

#endif  // JWCG_BENCH_TESSELLATION_H
