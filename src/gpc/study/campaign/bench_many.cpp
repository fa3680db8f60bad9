// SPDX-License-Identifier: MIT
//
// Unions of many polygons against GEOS's unary union; a prepared large polygon against many small ones.
#include <geos_c.h>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>
#include "clip_engine.h"
static uint64_t st = 7;
static double rnd() { uint64_t z = (st += 0x9E3779B97F4A7C15ull); z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull; z = (z ^ (z >> 27)) * 0x94D049BB133111EBull; return double((z ^ (z >> 31)) >> 11) * 0x1p-53; }
static double now() { return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count(); }
static double area(const gpc_polygon& p) { double s = 0; for (int c = 0; c < p.num_contours; ++c) { auto* v = p.contour[c].vertex; int n = p.contour[c].num_vertices; for (int i = 1; i + 1 < n; ++i) s += (v[i].x - v[0].x) * (v[i + 1].y - v[0].y) - (v[i].y - v[0].y) * (v[i + 1].x - v[0].x); } return s / 2; }
int main(int argc, char** argv) {
    const int n = argc > 1 ? atoi(argv[1]) : 10000; const bool geos = argc <= 2;
    GEOSContextHandle_t ctx = GEOS_init_r();
    for (int kind = 0; kind < 3; ++kind) {
        std::vector<std::vector<gpc_vertex>> v; const double side = std::sqrt((double)n);
        for (int i = 0; i < n; ++i) {
            double x = rnd() * side, y = rnd() * side; std::vector<gpc_vertex> p;
            if (kind == 1) { x = std::floor(x * 2) / 2; y = std::floor(y * 2) / 2; }
            if (kind < 2) p = {{x, y}, {x + 1, y}, {x + 1, y + 1}, {x, y + 1}}; else for (int k = 0; k < 32; ++k) p.push_back({x + .6 * cos(k * 0.19634954), y + .6 * sin(k * 0.19634954)});
            v.push_back(p);
        }
        std::vector<gpc_vertex_list> l; std::vector<gpc_polygon> ps; std::vector<const gpc_polygon*> pp;
        for (auto& p : v) l.push_back({(int)p.size(), p.data()});
        for (auto& x : l) ps.push_back({1, nullptr, &x});
        for (auto& x : ps) pp.push_back(&x);
        gpc_polygon out; double t = now(); jws::gpc::uniteAll(pp.data(), pp.size(), out); double ours = now() - t; double a = area(out); gpc_free_polygon(&out);
        double tg = 0, ga = 0;
        if (geos) { std::vector<GEOSGeometry*> gs; for (auto& p : v) { GEOSCoordSequence* s = GEOSCoordSeq_create_r(ctx, p.size() + 1, 2); for (size_t i = 0; i <= p.size(); ++i) GEOSCoordSeq_setXY_r(ctx, s, i, p[i % p.size()].x, p[i % p.size()].y); gs.push_back(GEOSGeom_createPolygon_r(ctx, GEOSGeom_createLinearRing_r(ctx, s), nullptr, 0)); }
            GEOSGeometry* c = GEOSGeom_createCollection_r(ctx, GEOS_MULTIPOLYGON, gs.data(), gs.size()); t = now(); GEOSGeometry* u = GEOSUnaryUnion_r(ctx, c); tg = now() - t; GEOSArea_r(ctx, u, &ga); GEOSGeom_destroy_r(ctx, u); GEOSGeom_destroy_r(ctx, c); }
        printf("union of %d %s: ours %.1f ms, geos %.1f ms (%.1fx) area %.12g %.12g\n", n, kind == 0 ? "squares" : kind == 1 ? "raster squares" : "circles", ours, tg, tg / ours, a, ga);
    }
    std::vector<gpc_vertex> big; for (int i = 0; i < 100000; ++i) { double t = 6.283185307179586 * i / 100000, r = 100 * (1 + .2 * sin(7 * t) + .01 * sin(900 * t)); big.push_back({r * cos(t), r * sin(t)}); }
    gpc_vertex_list bl{(int)big.size(), big.data()}; gpc_polygon bp{1, nullptr, &bl};
    for (gpc_op op : {GPC_INT, GPC_DIFF}) {
        double t = now(); jws::gpc::PreparedOperand prep(bp); double tp = now() - t; double sum = 0, plain = 0, sp = 0; int m = 20000;
        st = 5; t = now();
        for (int i = 0; i < m; ++i) { double x = rnd() * 200 - 100, y = rnd() * 200 - 100; gpc_vertex q[16]; for (int k = 0; k < 16; ++k) q[k] = {x + cos(k * .39269908), y + sin(k * .39269908)}; gpc_vertex_list ql{16, q}; gpc_polygon qp{1, nullptr, &ql}, out; jws::gpc::clip(op, {&qp, nullptr}, {nullptr, &prep}, out); sum += area(out); gpc_free_polygon(&out); }
        double tm = now() - t; st = 5; t = now(); int mp = 200;
        for (int i = 0; i < mp; ++i) { double x = rnd() * 200 - 100, y = rnd() * 200 - 100; gpc_vertex q[16]; for (int k = 0; k < 16; ++k) q[k] = {x + cos(k * .39269908), y + sin(k * .39269908)}; gpc_vertex_list ql{16, q}; gpc_polygon qp{1, nullptr, &ql}, out; gpc_polygon_clip(op, &qp, &bp, &out); sp += area(out); gpc_free_polygon(&out); }
        plain = now() - t;
        printf("100000 vertices against %d small, op %d: prepare %.2f ms, %.2f us each; plain %.1f us each (area %.6g)\n", m, op, tp, tm * 1e3 / m, plain * 1e3 / mp, sum);
    }
    GEOS_finish_r(ctx);
}
