// SPDX-License-Identifier: MIT
//
// Why cells never cross themselves or one another: with nodes jittered by at most J = 0.15 cells,
// an edge leaves its axis by at most atan(0.3 / 0.7) = 23.2 degrees, so two edges at a node stand
// at least 43.6 degrees apart. A vertex at parameter t lies within W * min(t, 1 - t) of its chord,
// in units of the chord, with W = 0.3: the whole edge stays in a rhombus of half-angle atan(0.3)
// = 16.7 degrees over the chord. Rhombi at one node are therefore disjoint but for the node, and
// those without a common node are further apart than they are wide. Along its chord an edge is
// monotone.
#include "support/tessellation.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <cstring>

namespace bench {

namespace {

constexpr double kJitter = 0.15;
constexpr double kWiggle = 0.3;
constexpr int kNodeX = 0;
constexpr int kNodeY = 1;
constexpr int kEastEdge = 2;  // then one channel per inner vertex, east and north by turns

// The finaliser of splitmix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators,
// 2014).
std::uint64_t mix(std::uint64_t z) {
    z += 0x9e3779b97f4a7c15ULL;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

template <class T>
void append(std::vector<unsigned char>& bytes, const T* values, std::size_t count) {
    const auto* first = reinterpret_cast<const unsigned char*>(values);
    bytes.insert(bytes.end(), first, first + count * sizeof(T));
}

}  // namespace

Tessellation::Tessellation(const TessellationSpec& spec) : m_spec(spec), m_columns(1) {
    while (m_columns * m_columns < m_spec.polygons) ++m_columns;
}

double Tessellation::noise(std::int64_t column, std::int64_t row, int channel) const {
    std::uint64_t h = mix(m_spec.seed);
    h = mix(h ^ static_cast<std::uint64_t>(column));
    h = mix(h ^ static_cast<std::uint64_t>(row));
    h = mix(h ^ static_cast<std::uint64_t>(channel));
    return static_cast<double>(h >> 11) * 0x1p-52 - 1.0;  // [-1, 1)
}

Tessellation::Point Tessellation::node(std::int64_t column, std::int64_t row) const {
    const double x = static_cast<double>(column) + m_spec.offset;
    const double y = static_cast<double>(row) + m_spec.offset;
    return {m_spec.originX + m_spec.cellSize * (x + kJitter * noise(column, row, kNodeX)),
            m_spec.originY + m_spec.cellSize * (y + kJitter * noise(column, row, kNodeY))};
}

Tessellation::Point Tessellation::edgePoint(std::int64_t column, std::int64_t row, Axis axis,
                                            int position) const {
    const bool east = axis == Axis::East;
    const Point from = node(column, row);
    if (position == 0) return from;
    const Point to = east ? node(column + 1, row) : node(column, row + 1);
    if (position == m_spec.segments) return to;
    const double t = static_cast<double>(position) / m_spec.segments;
    const int channel = kEastEdge + 2 * position + (east ? 0 : 1);
    const double side = kWiggle * (t < 0.5 ? t : 1.0 - t) * noise(column, row, channel);
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    return {from.x + t * dx - side * dy, from.y + t * dy + side * dx};
}

void Tessellation::ring(std::int64_t cell, std::vector<double>& xy) const {
    const std::int64_t c = column(cell);
    const std::int64_t r = row(cell);
    const int n = m_spec.segments;
    xy.clear();
    xy.reserve(static_cast<std::size_t>(n) * 8 + 2);
    const auto add = [&xy](Point p) {
        xy.push_back(p.x);
        xy.push_back(p.y);
    };
    for (int i = 0; i < n; ++i) add(edgePoint(c, r, Axis::East, i));
    for (int i = 0; i < n; ++i) add(edgePoint(c + 1, r, Axis::North, i));
    for (int i = n; i > 0; --i) add(edgePoint(c, r + 1, Axis::East, i));
    for (int i = n; i >= 0; --i) add(edgePoint(c, r, Axis::North, i));
}

void Tessellation::polygonWkb(std::int64_t cell, std::vector<unsigned char>& wkb) const {
    std::vector<double> xy;
    ring(cell, xy);
    wkb.clear();
    const unsigned char littleEndian = 1;
    const std::uint32_t head[] = {3, 1, static_cast<std::uint32_t>(xy.size() / 2)};
    append(wkb, &littleEndian, 1);
    append(wkb, head, 3);
    append(wkb, xy.data(), xy.size());
}

namespace {

bool createFields(OGRLayer& layer) {
    const std::pair<const char*, OGRFieldType> fields[] = {{"cell", OFTInteger},
                                                           {"col", OFTInteger},
                                                           {"row", OFTInteger},
                                                           {"weight", OFTReal},
                                                           {"name", OFTString}};
    for (const auto& [name, type] : fields) {
        OGRFieldDefn field(name, type);
        if (layer.CreateField(&field) != OGRERR_NONE) return false;
    }
    return true;
}

bool writeCell(const Tessellation& cells, std::int64_t cell, OGRLayer& layer,
               std::vector<unsigned char>& wkb) {
    cells.polygonWkb(cell, wkb);
    OGRGeometry* geometry = nullptr;
    if (OGRGeometryFactory::createFromWkb(wkb.data(), layer.GetSpatialRef(), &geometry,
                                          wkb.size()) != OGRERR_NONE) {
        return false;
    }
    OGRFeature feature(layer.GetLayerDefn());
    feature.SetGeometryDirectly(geometry);
    feature.SetField(0, static_cast<int>(cell));
    feature.SetField(1, static_cast<int>(cells.column(cell)));
    feature.SetField(2, static_cast<int>(cells.row(cell)));
    feature.SetField(3, 0.25 * static_cast<double>(cell % 1000));
    feature.SetField(4, ("cell " + std::to_string(cell)).c_str());
    return layer.CreateFeature(&feature) == OGRERR_NONE;
}

bool writeLayer(const Tessellation& cells, GDALDataset& file, const std::string& name) {
    OGRSpatialReference reference;
    reference.importFromEPSG(32633);
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    OGRLayer* layer = file.CreateLayer(name.c_str(), &reference, wkbPolygon, nullptr);
    if (layer == nullptr || !createFields(*layer)) return false;
    if (file.StartTransaction() != OGRERR_NONE) return false;
    std::vector<unsigned char> wkb;
    for (std::int64_t cell = 0; cell < cells.size(); ++cell) {
        if (!writeCell(cells, cell, *layer, wkb)) return false;
    }
    return file.CommitTransaction() == OGRERR_NONE;
}

}  // namespace

std::string writeGeoPackage(const Tessellation& cells, const std::string& path,
                            const std::string& layer) {
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    if (driver == nullptr) return "this GDAL has no GeoPackage driver";
    VSIStatBufL status;
    if (VSIStatL(path.c_str(), &status) == 0) driver->Delete(path.c_str());
    CPLErrorReset();
    GDALDatasetUniquePtr file(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    const bool written = file != nullptr && writeLayer(cells, *file, layer);
    file.reset();  // the spatial index is written on closing
    if (written && CPLGetLastErrorType() < CE_Failure) return {};
    return "cannot write " + path + ": " + CPLGetLastErrorMsg();
}

}  // namespace bench
