// SPDX-License-Identifier: MIT
//
// The engine's entries for many operands, beside GEOS: the union of any number of polygons at once
// beside its unary union, and one large prepared polygon against many small ones beside the plain
// call and beside GEOS with a prepared pretest. Areas are compared before times. One thread.
#include <geos_c.h>
#include <gpc.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>

#include "gpc/clip_engine.h"
#include "support/random_rings.h"
#include "support/run_main.h"
#include "support/stats.h"

namespace bench {
namespace {

using jwtest::RandomRings;
using jwtest::Ring;
using jwtest::Rings;

constexpr double kAreaTolerance = 1e-9;
constexpr int kRounds = 5;

/// Polygons of one ring each in the interface's form.
class Polygons {
  public:
    explicit Polygons(const Rings& rings) : m_lists(rings.size()), m_polygons(rings.size()) {
        for (const Ring& ring : rings) {
            for (const jws::JWRawPoint& p : ring) m_vertices.push_back({p.x, p.y});
        }
        std::size_t first = 0;
        for (std::size_t i = 0; i < rings.size(); ++i) {
            m_lists[i] = {static_cast<int>(rings[i].size()), m_vertices.data() + first};
            first += rings[i].size();
            m_polygons[i] = {1, nullptr, &m_lists[i]};
            m_pointers.push_back(&m_polygons[i]);
        }
    }
    Polygons(const Polygons&) = delete;
    Polygons& operator=(const Polygons&) = delete;

    std::vector<gpc_polygon>& all() { return m_polygons; }
    const std::vector<const gpc_polygon*>& pointers() const { return m_pointers; }

  private:
    std::vector<gpc_vertex> m_vertices;
    std::vector<gpc_vertex_list> m_lists;
    std::vector<gpc_polygon> m_polygons;
    std::vector<const gpc_polygon*> m_pointers;
};

double takeArea(gpc_polygon& result) {
    double sum = 0;
    for (int c = 0; c < result.num_contours; ++c) {
        Ring ring;
        for (int i = 0; i < result.contour[c].num_vertices; ++i) {
            ring.emplace_back(result.contour[c].vertex[i].x, result.contour[c].vertex[i].y);
        }
        sum += jwtest::signedArea(ring);
    }
    gpc_free_polygon(&result);
    return sum;
}

class Geos {
  public:
    Geos() : m_context(GEOS_init_r()) {}
    ~Geos() {
        for (GEOSGeometry* g : m_made) GEOSGeom_destroy_r(m_context, g);
        GEOS_finish_r(m_context);
    }
    Geos(const Geos&) = delete;
    Geos& operator=(const Geos&) = delete;

    GEOSContextHandle_t context() const { return m_context; }

    GEOSGeometry* polygon(const Ring& ring) {
        const unsigned n = static_cast<unsigned>(ring.size());
        GEOSCoordSequence* points = GEOSCoordSeq_create_r(m_context, n + 1, 2);
        for (unsigned i = 0; i <= n; ++i) {
            GEOSCoordSeq_setXY_r(m_context, points, i, ring[i % n].x, ring[i % n].y);
        }
        return GEOSGeom_createPolygon_r(m_context, GEOSGeom_createLinearRing_r(m_context, points),
                                        nullptr, 0);
    }
    GEOSGeometry* kept(GEOSGeometry* geometry) {
        m_made.push_back(geometry);
        return geometry;
    }
    double takeArea(GEOSGeometry* geometry) const {
        double area = 0;
        GEOSArea_r(m_context, geometry, &area);
        GEOSGeom_destroy_r(m_context, geometry);
        return area;
    }

  private:
    GEOSContextHandle_t m_context;
    std::vector<GEOSGeometry*> m_made;
};

struct Line {
    const char* name;
    std::function<double()> area;  // does the work and measures the result
};

/// Compares the areas with the first line's, then times all in turn.
bool compareAndTime(const std::string& title, const std::vector<Line>& lines, double calls) {
    std::vector<Contender> contenders;
    bool agreed = true;
    const double expected = lines.front().area();
    for (const Line& line : lines) {
        const double area = line.area();
        if (std::fabs(area - expected) > kAreaTolerance * std::fabs(expected)) {
            std::printf("%s: %s answers %.15g, not %.15g\n", title.c_str(), line.name, area,
                        expected);
            agreed = false;
        }
        contenders.push_back({[&line] { line.area(); }, [] {}});
    }
    const auto samples = interleave(contenders, kRounds);
    std::printf("%-34s", title.c_str());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::printf("  %s %.3f us", lines[i].name, 1000 * median(samples[i]) / calls);
        if (i > 0) std::printf(" (%.1f)", medianRatio(samples[i], samples[0]));
    }
    std::printf("\n");
    std::fflush(stdout);
    return agreed;
}

Rings scattered(const std::string& kind, int n) {
    RandomRings random(7);
    Rings rings;
    const double side = std::sqrt(static_cast<double>(n));
    for (int i = 0; i < n; ++i) {
        jws::JWRawPoint p = random.point(0, side);
        if (kind == "raster squares") p = {std::floor(2 * p.x) / 2, std::floor(2 * p.y) / 2};
        rings.push_back(kind == "circles" ? random.outline(32, p, 0.6, 0)
                                          : jwtest::rectangle(p.x, p.y, p.x + 1, p.y + 1));
    }
    return rings;
}

bool unionOfMany(const std::string& kind, int n) {
    const Rings rings = scattered(kind, n);
    Polygons polygons(rings);
    Geos geos;
    std::vector<GEOSGeometry*> members;
    for (const Ring& ring : rings) members.push_back(geos.polygon(ring));
    GEOSGeometry* all = geos.kept(GEOSGeom_createCollection_r(
        geos.context(), GEOS_MULTIPOLYGON, members.data(), static_cast<unsigned>(members.size())));
    const auto ours = [&] {
        gpc_polygon out;
        jws::gpc::uniteAll(polygons.pointers().data(), polygons.pointers().size(), out);
        return takeArea(out);
    };
    const auto theirs = [&] { return geos.takeArea(GEOSUnaryUnion_r(geos.context(), all)); };
    return compareAndTime("union of " + std::to_string(n) + " " + kind,
                          {{"ours", ours}, {"geos", theirs}}, 1);
}

bool largeAgainstSmall(gpc_op op, int vertices, int count) {
    RandomRings random(5);
    const Ring outline = random.outline(vertices, {0, 0}, 100, 0.3);
    Rings rings;
    for (int i = 0; i < count; ++i) {
        rings.push_back(random.outline(16, random.point(-100, 100), 1, 0.1));
    }
    Polygons large({outline}), small(rings);
    Geos geos;
    GEOSGeometry* geosLarge = geos.kept(geos.polygon(outline));
    std::vector<GEOSGeometry*> geosSmall;
    for (const Ring& ring : rings) geosSmall.push_back(geos.kept(geos.polygon(ring)));

    const auto prepared = [&] {
        const jws::gpc::PreparedOperand operand(large.all()[0]);
        double sum = 0;
        for (gpc_polygon& one : small.all()) {
            gpc_polygon out;
            jws::gpc::clip(op, {&one, nullptr}, {nullptr, &operand}, out);
            sum += takeArea(out);
        }
        return sum;
    };
    const auto plain = [&] {
        double sum = 0;
        for (gpc_polygon& one : small.all()) {
            gpc_polygon out;
            gpc_polygon_clip(op, &one, &large.all()[0], &out);
            sum += takeArea(out);
        }
        return sum;
    };
    const auto theirs = [&] {
        GEOSContextHandle_t h = geos.context();
        const GEOSPreparedGeometry* p = GEOSPrepare_r(h, geosLarge);
        double sum = 0;
        for (const GEOSGeometry* one : geosSmall) {
            const bool within = GEOSPreparedContainsProperly_r(h, p, one) == 1;
            const bool apart = !within && GEOSPreparedIntersects_r(h, p, one) == 0;
            if (within || apart) {
                double area = 0;
                if (within == (op == GPC_INT)) GEOSArea_r(h, one, &area);
                sum += area;
            } else {
                sum += geos.takeArea(op == GPC_INT ? GEOSIntersection_r(h, one, geosLarge)
                                                   : GEOSDifference_r(h, one, geosLarge));
            }
        }
        GEOSPreparedGeom_destroy_r(h, p);
        return sum;
    };
    const std::string title = std::to_string(count) + (op == GPC_INT ? " and " : " minus ") +
                              std::to_string(vertices) + " vertices";
    return compareAndTime(title, {{"prepared", prepared}, {"plain", plain}, {"geos", theirs}},
                          count);
}

int run(int argc, char** argv) {
    std::vector<int> counts = {1000, 10000};
    CLI::App app{"Unions of many polygons, and a prepared one against many, beside GEOS."};
    app.add_option("--count", counts, "polygons to unite")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    bool agreed = true;
    for (const char* kind : {"squares", "raster squares", "circles"}) {
        for (const int n : counts) agreed &= unionOfMany(kind, n);
    }
    for (const gpc_op op : {GPC_INT, GPC_DIFF}) agreed &= largeAgainstSmall(op, 10000, 300);
    for (const gpc_op op : {GPC_INT, GPC_DIFF}) agreed &= largeAgainstSmall(op, 100000, 300);
    return agreed ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    return bench::runMain("clip_many_bench", bench::run, argc, argv);
}
