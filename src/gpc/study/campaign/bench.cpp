// SPDX-License-Identifier: MIT
//
// Times the engine against GEOS, Clipper and Boost.Geometry: bench FAMILY N OP [OP...]; answers are compared first.
#include <geos_c.h>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <polyclipping/clipper.hpp>
#include <string>
#include <vector>
#ifdef WITH_BOOST
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <boost/geometry/geometries/multi_polygon.hpp>
namespace bg = boost::geometry;
using BP = bg::model::d2::point_xy<double>;
using BPoly = bg::model::polygon<BP, false, true>;
using BMulti = bg::model::multi_polygon<BPoly>;
#endif
#include "gpc.h"

struct P { double x, y; };
using Ring = std::vector<P>;
struct Poly { Ring outer; std::vector<Ring> holes; };
using Multi = std::vector<Poly>;
static uint64_t st = 42;
static double rnd() { uint64_t z = (st += 0x9E3779B97F4A7C15ull); z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull; z = (z ^ (z >> 27)) * 0x94D049BB133111EBull; return double((z ^ (z >> 31)) >> 11) * 0x1p-53; }
static const double TAU = 6.283185307179586;
static Ring smoothStar(int n, double cx, double cy, double r, double wob) {
    Ring o; double ph[6], am[6];
    for (int k = 0; k < 6; ++k) { ph[k] = rnd() * TAU; am[k] = wob * rnd() / (k + 1); }
    for (int i = 0; i < n; ++i) { double a = TAU * i / n, d = 1; for (int k = 0; k < 6; ++k) d += am[k] * std::sin((k * 3 + 2) * a + ph[k]); o.push_back({cx + r * d * std::cos(a), cy + r * d * std::sin(a)}); }
    return o;
}
static Ring spikyStar(int n, double cx, double cy, double lo, double hi) { Ring o; for (int i = 0; i < n; ++i) { double a = TAU * (i + 0.5 * rnd()) / n, d = lo + (hi - lo) * rnd(); o.push_back({cx + d * std::cos(a), cy + d * std::sin(a)}); } return o; }
static Ring jitter(const Ring& b, double e) { Ring o = b; for (P& p : o) { p.x += e * (2 * rnd() - 1); p.y += e * (2 * rnd() - 1); } return o; }
static void make(const std::string& f, int n, Multi& a, Multi& b) {
    if (f == "star") { a = {{smoothStar(n, 0, 0, 100, 0.3), {}}}; b = {{smoothStar(n, 20, 10, 100, 0.3), {}}}; }
    else if (f == "wedge") { a = {{spikyStar(n, 0, 0, 99, 100), {}}}; b = {{spikyStar(n, 0.5, 0.2, 99, 100), {}}}; }
    else if (f == "spiky") { a = {{spikyStar(n, 0, 0, 50, 100), {}}}; b = {{spikyStar(n, 20, 10, 50, 100), {}}}; }
    else if (f == "fuzz") { Ring base = smoothStar(n, 0, 0, 100, 0.3); double e = 0.2 * TAU * 100 / n; a = {{jitter(base, e), {}}}; b = {{jitter(base, e), {}}}; }
    else if (f == "identical") { a = {{smoothStar(n, 0, 0, 100, 0.3), {}}}; b = a; }
    else if (f == "shared") { a = {{smoothStar(n, 0, 0, 100, 0.3), {}}}; b = a; for (int i = n / 3; i < n / 2; ++i) { b[0].outer[i].x *= 1.1; b[0].outer[i].y *= 1.1; } }
    else if (f == "holes") { for (Multi* m : {&a, &b}) { double ox = m == &b ? 3.3 : 0, oy = m == &b ? 2.1 : 0; int hv = 20, hn = n / 2 / hv, g = std::max(1, (int)std::sqrt(hn)); Poly p; p.outer = smoothStar(n / 2, ox, oy, 100, 0.1); for (int i = 0; i < g; ++i) for (int k = 0; k < g; ++k) { double c = 110.0 / g, r = c * 0.3; p.holes.push_back(smoothStar(hv, ox - 55 + c * (i + .5), oy - 55 + c * (k + .5), r, 0.2)); } m->push_back(p); } }
    else if (f == "board") { int g = std::max(1, (int)std::sqrt(n / 2.0)); for (Multi* m : {&a, &b}) { double o = m == &b ? 0.5 : 0; for (int i = 0; i < g; ++i) for (int k = 0; k < g; ++k) if ((i + k) % 2 == 0) m->push_back({{{i + o, k + o}, {i + 1 + o, k + o}, {i + 1 + o, k + 1 + o}, {i + o, k + 1 + o}}, {}}); } }
    else if (f == "comb") { for (Multi* m : {&a, &b}) { int t = n / 4; double o = m == &b ? 0.5 : 0; Ring r; for (int i = 0; i < t; ++i) { r.push_back({2.0 * i + o, 0}); r.push_back({2.0 * i + o, 10}); r.push_back({2.0 * i + 1 + o, 10}); r.push_back({2.0 * i + 1 + o, 0}); } r.push_back({2.0 * t + o, 0}); r.push_back({2.0 * t + o, -5}); r.push_back({o, -5}); m->push_back({r, {}}); } }
    else { std::fprintf(stderr, "family?\n"); std::exit(2); }
}
static double now() { return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count(); }
static double median(const std::function<void()>& f, double budget) {
    std::vector<double> t; double t0 = now();
    while (t.size() < 3 || (now() - t0 < budget && t.size() < 400)) { double s = now(); f(); t.push_back(now() - s); if (now() - t0 > 20000) break; }
    std::sort(t.begin(), t.end()); return t[t.size() / 2];
}
static GEOSContextHandle_t ctx;
static GEOSGeometry* gring(const Ring& r) { unsigned n = r.size(); GEOSCoordSequence* s = GEOSCoordSeq_create_r(ctx, n + 1, 2); for (unsigned i = 0; i <= n; ++i) GEOSCoordSeq_setXY_r(ctx, s, i, r[i % n].x, r[i % n].y); return GEOSGeom_createLinearRing_r(ctx, s); }
static GEOSGeometry* gmulti(const Multi& m) { std::vector<GEOSGeometry*> ps; for (const Poly& p : m) { std::vector<GEOSGeometry*> h; for (const Ring& r : p.holes) h.push_back(gring(r)); ps.push_back(GEOSGeom_createPolygon_r(ctx, gring(p.outer), h.data(), h.size())); } if (ps.size() == 1) return ps[0]; return GEOSGeom_createCollection_r(ctx, GEOS_MULTIPOLYGON, ps.data(), ps.size()); }
struct G { std::vector<gpc_vertex_list> l; gpc_polygon p; };
static void view(Multi& m, G& g) { for (Poly& p : m) { g.l.push_back({(int)p.outer.size(), (gpc_vertex*)p.outer.data()}); for (Ring& r : p.holes) g.l.push_back({(int)r.size(), (gpc_vertex*)r.data()}); } g.p = {(int)g.l.size(), nullptr, g.l.data()}; }
static double area(const gpc_polygon& p) { double s = 0; for (int c = 0; c < p.num_contours; ++c) { auto* v = p.contour[c].vertex; int n = p.contour[c].num_vertices; for (int i = 1; i + 1 < n; ++i) s += (v[i].x - v[0].x) * (v[i + 1].y - v[0].y) - (v[i].y - v[0].y) * (v[i + 1].x - v[0].x); } return s / 2; }
int main(int argc, char** argv) {
    const std::string f = argv[1]; const int n = std::atoi(argv[2]); const double limit = argc > 4 ? std::atof(argv[4]) : 3000;
    std::string rivals = argc > 3 ? argv[3] : "gcb";
    ctx = GEOS_init_r();
    Multi a, b; make(f, n, a, b);
    G ga, gb; view(a, ga); view(b, gb);
    GEOSGeometry *sa = gmulti(a), *sb = gmulti(b);
    ClipperLib::Paths ca, cb; double scale = 1e12; if (f == "board" || f == "comb") scale = 4;
    for (auto* q : {&a, &b}) for (Poly& p : *q) { auto add = [&](const Ring& r) { ClipperLib::Path t; for (P v : r) t.emplace_back((ClipperLib::cInt)std::llround(v.x * scale), (ClipperLib::cInt)std::llround(v.y * scale)); (q == &a ? ca : cb).push_back(t); }; add(p.outer); for (Ring& r : p.holes) add(r); }
#ifdef WITH_BOOST
    BMulti ba, bb; for (auto* q : {&a, &b}) for (Poly& p : *q) { BPoly t; for (P v : p.outer) t.outer().push_back({v.x, v.y}); t.outer().push_back({p.outer[0].x, p.outer[0].y}); for (Ring& r : p.holes) { t.inners().emplace_back(); for (P v : r) t.inners().back().push_back({v.x, v.y}); t.inners().back().push_back({r[0].x, r[0].y}); } bg::correct(t); (q == &a ? ba : bb).push_back(t); }
#endif
    const gpc_op ops[] = {GPC_INT, GPC_UNION, GPC_DIFF, GPC_XOR}; const char* names[] = {"int", "union", "diff", "xor"};
    const int count = limit < 0 ? 1 : 4;
    for (int i = 0; i < count; ++i) {
        double ours_area, geos_area = 0, budget = std::fabs(limit) / 12;
        gpc_polygon r; gpc_polygon_clip(ops[i], &ga.p, &gb.p, &r); ours_area = area(r); int cs = r.num_contours; gpc_free_polygon(&r);
        double ours = median([&] { gpc_polygon q; gpc_polygon_clip(ops[i], &ga.p, &gb.p, &q); gpc_free_polygon(&q); }, budget);
        double tg = 0, tc = 0, tb = 0;
        if (rivals.find('g') != std::string::npos) {
            auto run = [&] { return i == 0 ? GEOSIntersection_r(ctx, sa, sb) : i == 1 ? GEOSUnion_r(ctx, sa, sb) : i == 2 ? GEOSDifference_r(ctx, sa, sb) : GEOSSymDifference_r(ctx, sa, sb); };
            GEOSGeometry* g = run(); if (g) { GEOSArea_r(ctx, g, &geos_area); GEOSGeom_destroy_r(ctx, g); }
            tg = median([&] { GEOSGeometry* q = run(); if (q) GEOSGeom_destroy_r(ctx, q); }, budget);
            if (std::fabs(geos_area - ours_area) > 1e-9 * std::fabs(geos_area) + 1e-9) std::printf("  AREAS DIFFER %.15g %.15g\n", ours_area, geos_area);
        }
        if (rivals.find('c') != std::string::npos) tc = median([&] { ClipperLib::Clipper c; c.AddPaths(ca, ClipperLib::ptSubject, true); c.AddPaths(cb, ClipperLib::ptClip, true); ClipperLib::Paths o; c.Execute(i == 0 ? ClipperLib::ctIntersection : i == 1 ? ClipperLib::ctUnion : i == 2 ? ClipperLib::ctDifference : ClipperLib::ctXor, o); }, budget);
#ifdef WITH_BOOST
        if (rivals.find('b') != std::string::npos) tb = median([&] { BMulti o; try { if (i == 0) bg::intersection(ba, bb, o); else if (i == 1) bg::union_(ba, bb, o); else if (i == 2) bg::difference(ba, bb, o); else bg::sym_difference(ba, bb, o); } catch (...) {} }, budget);
#endif
        std::printf("%-9s %8d %-5s ours %10.4f ms (%d contours)  geos %10.4f (%.1fx)  clipper %10.4f (%.1fx)  boost %10.4f (%.1fx)\n", f.c_str(), n, names[i], ours, cs, tg, tg / ours, tc, tc / ours, tb, tb / ours);
        std::fflush(stdout);
    }
}
