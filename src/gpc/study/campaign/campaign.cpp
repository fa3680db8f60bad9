// SPDX-License-Identifier: MIT
//
// Hunts faults of the clipping engine over random pairs: campaign [--pairs N] [--seed S]
// [--family F] [--only I] [--no-geos].
#include <geos_c.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "clip_engine.h"
#include "gpc.h"

namespace {

struct P { double x, y; };
using Ring = std::vector<P>;
using Rings = std::vector<Ring>;

struct Rng {
    uint64_t s;
    uint64_t next() {
        uint64_t z = (s += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<uint64_t>(n)); }
    int range(int a, int b) { return a + below(b - a + 1); }
    double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }
    double real(double a, double b) { return a + (b - a) * unit(); }
    bool flip() { return next() & 1; }
};

Ring star(Rng& r, int n, double cx, double cy, double lo, double hi) {
    Ring ring;
    const double phase = r.real(0, 6.28);
    for (int i = 0; i < n; ++i) {
        const double a = phase + 6.283185307179586 * i / n, d = r.real(lo, hi);
        ring.push_back({cx + d * std::cos(a), cy + d * std::sin(a)});
    }
    return ring;
}
Ring box(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}
Ring randomRing(Rng& r, int n, double lo, double hi, bool integer) {
    Ring ring;
    for (int i = 0; i < n; ++i) {
        P p{r.real(lo, hi), r.real(lo, hi)};
        if (integer) p = {std::floor(p.x), std::floor(p.y)};
        ring.push_back(p);
    }
    return ring;
}
double nudge(Rng& r, double v, int ulps) {
    int k = r.range(-ulps, ulps);
    for (; k > 0; --k) v = std::nextafter(v, 1e308);
    for (; k < 0; ++k) v = std::nextafter(v, -1e308);
    return v;
}

gpc_polygon view(Rings& rings, std::vector<gpc_vertex_list>& lists) {
    lists.clear();
    for (Ring& ring : rings)
        lists.push_back({static_cast<int>(ring.size()), reinterpret_cast<gpc_vertex*>(ring.data())});
    return {static_cast<int>(lists.size()), nullptr, lists.data()};
}

struct Result {
    Rings rings;
    std::vector<int> hole;
    bool operator==(const Result& o) const {
        if (hole != o.hole || rings.size() != o.rings.size()) return false;
        for (size_t i = 0; i < rings.size(); ++i) {
            if (rings[i].size() != o.rings[i].size()) return false;
            for (size_t k = 0; k < rings[i].size(); ++k)
                if (rings[i][k].x != o.rings[i][k].x || rings[i][k].y != o.rings[i][k].y) return false;
        }
        return true;
    }
};

Result clip(gpc_op op, Rings& a, Rings& b) {
    std::vector<gpc_vertex_list> la, lb;
    gpc_polygon ga = view(a, la), gb = view(b, lb), out;
    gpc_polygon_clip(op, &ga, &gb, &out);
    Result r;
    for (int c = 0; c < out.num_contours; ++c) {
        const P* v = reinterpret_cast<const P*>(out.contour[c].vertex);
        r.rings.emplace_back(v, v + out.contour[c].num_vertices);
        r.hole.push_back(out.hole[c]);
    }
    gpc_free_polygon(&out);
    return r;
}

Result take(gpc_polygon& out) {
    Result r;
    for (int c = 0; c < out.num_contours; ++c) {
        const P* v = reinterpret_cast<const P*>(out.contour[c].vertex);
        r.rings.emplace_back(v, v + out.contour[c].num_vertices);
        r.hole.push_back(out.hole[c]);
    }
    gpc_free_polygon(&out);
    return r;
}

Result clipPrepared(gpc_op op, Rings& a, Rings& b, int which) {
    std::vector<gpc_vertex_list> la, lb;
    gpc_polygon ga = view(a, la), gb = view(b, lb), out;
    const jws::gpc::PreparedOperand pa(ga), pb(gb);
    jws::gpc::Operand oa{&ga, nullptr}, ob{&gb, nullptr};
    if (which & 1) oa = {nullptr, &pa};
    if (which & 2) ob = {nullptr, &pb};
    jws::gpc::clip(op, oa, ob, out);
    return take(out);
}

Result unite(std::vector<Rings>& sets) {
    std::vector<std::vector<gpc_vertex_list>> lists(sets.size());
    std::vector<gpc_polygon> polys;
    std::vector<const gpc_polygon*> ptrs;
    for (size_t i = 0; i < sets.size(); ++i) polys.push_back(view(sets[i], lists[i]));
    for (auto& p : polys) ptrs.push_back(&p);
    gpc_polygon out;
    jws::gpc::uniteAll(ptrs.data(), ptrs.size(), out);
    return take(out);
}

double ringArea(const Ring& ring) {
    long double s = 0;
    for (size_t i = 1; i + 1 < ring.size(); ++i) {
        const long double ax = (long double)ring[i].x - ring[0].x, ay = (long double)ring[i].y - ring[0].y;
        const long double bx = (long double)ring[i + 1].x - ring[0].x, by = (long double)ring[i + 1].y - ring[0].y;
        s += ax * by - ay * bx;
    }
    return static_cast<double>(s / 2);
}
double area(const Result& r) {
    double s = 0;
    for (const Ring& ring : r.rings) s += ringArea(ring);
    return s;
}

Rings transformed(const Rings& in, const std::function<P(P)>& f) {
    Rings out = in;
    for (Ring& r : out) for (P& p : r) p = f(p);
    return out;
}
Rings shuffled(Rng& r, Rings in) {
    for (Ring& ring : in) {
        if (ring.empty()) continue;
        std::rotate(ring.begin(), ring.begin() + r.below((int)ring.size()), ring.end());
        if (r.flip()) std::reverse(ring.begin(), ring.end());
    }
    for (size_t i = in.size(); i > 1; --i) std::swap(in[i - 1], in[r.below((int)i)]);
    return in;
}
Rings asRings(const Result& r) { return r.rings; }

const char* kNames[] = {"stars", "jitter", "combs", "boards", "identical", "shared", "touchholes", "islands",
    "selfint", "selfreal", "spikes", "rects", "bundles", "ulps", "offset", "tiny", "grid", "feedback", "holes",
    "zero", "fans", "slivers"};
constexpr int kFamilies = 22;

void make(int family, Rng& r, Rings& a, Rings& b) {
    a.clear(); b.clear();
    switch (family) {
        case 0: {
            double lo = r.flip() ? 0.2 : 0.9;
            a = {star(r, r.range(3, 60), 0, 0, lo, 1)};
            b = {star(r, r.range(3, 60), r.real(-1, 1), r.real(-1, 1), lo, 1)};
            break;
        }
        case 1: {
            a = {star(r, r.range(8, 80), 0, 0, 0.7, 1)};
            b = a;
            double e = std::pow(10, -r.range(1, 15));
            for (P& p : b[0]) { p.x += r.real(-e, e); p.y += r.real(-e, e); }
            break;
        }
        case 2: {
            for (Rings* o : {&a, &b}) {
                Ring ring; int n = r.range(2, 10); int off = r.range(-2, 2);
                for (int i = 0; i < n; ++i) {
                    int h = r.range(1, 4);
                    ring.push_back({2.0 * i + off, 0}); ring.push_back({2.0 * i + off, (double)h});
                    ring.push_back({2.0 * i + off + 1, (double)h}); ring.push_back({2.0 * i + off + 1, 0});
                }
                ring.push_back({2.0 * n + off, 0.0}); ring.push_back({2.0 * n + off, -1}); ring.push_back({(double)off, -1});
                o->push_back(ring);
            }
            break;
        }
        case 3: {
            for (Rings* o : {&a, &b}) {
                int n = r.range(2, 6); double off = r.flip() ? r.range(0, 2) : 0.5;
                for (int i = 0; i < n; ++i) for (int k = 0; k < n; ++k)
                    if ((i + k) % 2 == 0 || r.below(4) == 0) o->push_back(box(i + off, k + off, i + 1 + off, k + 1 + off));
            }
            break;
        }
        case 4:
            a = {star(r, r.range(3, 50), r.real(-5, 5), r.real(-5, 5), 0.3, 1)};
            if (r.flip()) a.push_back(star(r, r.range(3, 20), 0.2, 0.2, 0.1, 0.9));
            b = shuffled(r, a);
            break;
        case 5: {
            a = {star(r, r.range(10, 60), 0, 0, 0.6, 1)};
            b = a;
            int n = (int)a[0].size(), k = r.below(n), m = r.range(1, n - 1);
            for (int i = 0; i < m; ++i) { P& p = b[0][(k + i) % n]; double f = r.real(0.6, 1.4); p.x *= f; p.y *= f; }
            if (r.flip()) b = {b[0], star(r, 12, 0, 0, 0.05, 0.2)};
            b = shuffled(r, b);
            break;
        }
        case 6: {
            for (Rings* o : {&a, &b}) {
                double off = r.range(0, 3);
                o->push_back(box(off, off, off + 10, off + 10));
                for (int i = r.range(1, 5); i > 0; --i) {
                    double x = off + r.range(0, 8), y = off + r.range(0, 8); double s = r.range(1, 2);
                    if (r.flip()) o->push_back({{x, y + s / 2}, {x + s / 2, y}, {x + s, y + s / 2}, {x + s / 2, y + s}});
                    else o->push_back(box(x, y, x + s, y + s));
                }
            }
            break;
        }
        case 7: {
            for (Rings* o : {&a, &b}) {
                double cx = r.real(-0.5, 0.5), cy = r.real(-0.5, 0.5);
                bool in = r.flip();
                if (in) { cx = r.range(-1, 1); cy = r.range(-1, 1); }
                for (int i = r.range(2, 7); i > 0; --i) {
                    double s = in ? i : i + r.real(-0.3, 0.3);
                    if (r.flip()) o->push_back(box(cx - s, cy - s, cx + s, cy + s));
                    else o->push_back({{cx - s, cy}, {cx, cy - s}, {cx + s, cy}, {cx, cy + s}});
                }
            }
            break;
        }
        case 8: {
            int g = r.range(3, 12);
            for (Rings* o : {&a, &b}) for (int i = r.range(1, 2); i > 0; --i) o->push_back(randomRing(r, r.range(3, 14), 0, g, true));
            break;
        }
        case 9:
            for (Rings* o : {&a, &b}) for (int i = r.range(1, 2); i > 0; --i) o->push_back(randomRing(r, r.range(3, 16), -1, 1, false));
            break;
        case 10: {
            for (Rings* o : {&a, &b}) {
                Ring base = star(r, r.range(4, 15), r.real(-.3, .3), 0, 0.5, 1), ring;
                for (P p : base) {
                    ring.push_back(p);
                    if (r.below(3) == 0) { P q{r.real(-1.5, 1.5), r.real(-1.5, 1.5)}; ring.push_back(q); if (r.flip()) ring.push_back(p); else ring.push_back({(p.x + q.x) / 2, (p.y + q.y) / 2}); }
                    if (r.below(8) == 0) ring.push_back(p);
                }
                o->push_back(ring);
            }
            break;
        }
        case 11:
            for (Rings* o : {&a, &b}) for (int i = r.range(1, 6); i > 0; --i) {
                int x = r.range(0, 8), y = r.range(0, 8);
                o->push_back(box(x, y, x + r.range(1, 5), y + r.range(1, 5)));
            }
            break;
        case 12: {
            double slope = r.real(-2, 2);
            for (Rings* o : {&a, &b}) for (int i = r.range(1, 5); i > 0; --i) {
                double e = std::pow(10, -r.range(10, 17)), x0 = r.real(-1, 0), x1 = r.real(0.1, 1);
                Ring ring{{x0, x0 * slope + r.real(-e, e)}, {x1, x1 * slope + r.real(-e, e)}};
                double xm = r.real(-1, 1);
                ring.push_back({xm, xm * slope + r.real(-e, e)});
                if (r.flip()) { xm = r.real(-1, 1); ring.push_back({xm, xm * slope + r.real(-1, 1)}); }
                o->push_back(ring);
            }
            break;
        }
        case 13: {
            a = {star(r, r.range(3, 30), r.real(-2, 2), r.real(-2, 2), 0.4, 1)};
            b = a;
            for (P& p : b[0]) { p.x = nudge(r, p.x, 2); p.y = nudge(r, p.y, 2); }
            if (r.flip()) { Ring c = a[0]; for (P& p : c) { p.x = nudge(r, p.x, 1); p.y = nudge(r, p.y, 1); } b.push_back(c); }
            break;
        }
        case 14: {
            double ox = r.real(-1e9, 1e9), oy = r.real(-1e9, 1e9), s = std::pow(10, -r.range(0, 6));
            a = {star(r, r.range(3, 40), ox, oy, s * 0.5, s)};
            b = {star(r, r.range(3, 40), ox + r.real(-s, s), oy + r.real(-s, s), s * .5, s)};
            break;
        }
        case 15: {
            a = {star(r, r.range(3, 30), 0.3, 0.1, 0.5, 1)};
            b = {star(r, r.range(3, 30), r.real(-.5, .5), r.real(-.5, .5), .5, 1)};
            double s = std::pow(10, r.flip() ? r.range(-300, -1) : r.range(0, 300));
            for (Rings* o : {&a, &b}) *o = transformed(*o, [s](P p) { return P{p.x * s, p.y * s}; });
            break;
        }
        case 16: {
            int g = r.range(2, 6);
            for (Rings* o : {&a, &b}) for (int i = r.range(1, 5); i > 0; --i) o->push_back(randomRing(r, r.range(3, 8), 0, g, true));
            break;
        }
        case 17: {
            Rings c = {star(r, r.range(4, 25), 0, 0, 0.4, 1)}, d = {star(r, r.range(4, 25), r.real(-.4, .4), r.real(-.4, .4), 0.4, 1)};
            if (r.flip()) c.push_back(randomRing(r, 6, -1, 1, false));
            const gpc_op ops[] = {GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION};
            a = asRings(clip(ops[r.below(4)], c, d));
            b = r.flip() ? c : asRings(clip(ops[r.below(4)], c, d));
            if (r.below(3) == 0) { Rings e = {star(r, r.range(4, 25), 0.1, 0, 0.4, 1)}; b = asRings(clip(ops[r.below(4)], b, e)); }
            break;
        }
        case 18: {
            for (Rings* o : {&a, &b}) {
                double cx = r.real(-1, 1), cy = r.real(-1, 1);
                o->push_back(star(r, r.range(8, 40), cx, cy, 2, 2.5));
                for (int i = 0; i < 3; ++i) for (int k = 0; k < 3; ++k) if (r.below(3)) o->push_back(star(r, r.range(3, 9), cx - 1 + i, cy - 1 + k, 0.1, 0.45));
            }
            break;
        }
        case 19: {  // near the origin, where doubles are fine
            double s = std::pow(10, -r.range(1, 14));
            a = {star(r, r.range(3, 20), 0, 0, 0.5, 1)};
            b = {star(r, r.range(3, 20), 0, 0, 0.5 * s, s), star(r, r.range(3, 20), r.real(-s, s), 0, 0.5 * s, s)};
            if (r.flip()) { a.push_back(star(r, 9, 0, 0, 0.3 * s, s)); }
            if (r.flip()) for (int i = 0; i < 4; ++i) { P p = a[0][r.below((int)a[0].size())]; b.push_back({{-p.x, -p.y}, p, {p.y * s, -p.x * s}}); }
            break;
        }
        case 20: {  // many edges through nearly one point
            double cx = r.real(-1, 1), cy = r.real(-1, 1);
            for (Rings* o : {&a, &b}) for (int i = r.range(1, 6); i > 0; --i) {
                double t = r.real(0, 6.3), u = t + r.real(-.3, .3), k = r.real(.3, 2), m = r.real(.3, 2);
                o->push_back({{cx - k * std::cos(t), cy - k * std::sin(t)}, {cx + m * std::cos(t), cy + m * std::sin(t)}, {cx + m * std::cos(u), cy + m * std::sin(u)}, {cx - k * std::cos(u), cy - k * std::sin(u)}});
            }
            break;
        }
        default: {  // slivers over one line with points in common
            std::vector<P> pts; double s = r.real(-3, 3);
            int e = r.range(0, 3);
            for (int i = 0; i < 8; ++i) { double x = r.real(-1, 1); pts.push_back({x, nudge(r, x * s, e)}); }
            for (int i = 0; i < 3; ++i) pts.push_back({r.real(-1, 1), r.real(-1, 1)});
            for (Rings* o : {&a, &b}) for (int i = r.range(1, 4); i > 0; --i) { Ring ring; for (int k = r.range(3, 6); k > 0; --k) ring.push_back(pts[r.below(11)]); o->push_back(ring); }
            break;
        }
    }
    if (family != 15 && r.below(8) == 0) { a = shuffled(r, a); }
}

GEOSContextHandle_t ctx;
void quiet(const char*, ...) {}
std::string lastReason;

GEOSGeometry* geosRing(const Ring& ring, bool polygon) {
    const unsigned n = (unsigned)ring.size();
    GEOSCoordSequence* s = GEOSCoordSeq_create_r(ctx, n + 1, 2);
    for (unsigned i = 0; i <= n; ++i) GEOSCoordSeq_setXY_r(ctx, s, i, ring[i % n].x, ring[i % n].y);
    GEOSGeometry* g = GEOSGeom_createLinearRing_r(ctx, s);
    return polygon && g ? GEOSGeom_createPolygon_r(ctx, g, nullptr, 0) : g;
}

bool inRing(const Ring& ring, P p) {
    bool in = false;
    for (size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
        if ((ring[i].y > p.y) == (ring[j].y > p.y)) continue;
        long double x = (long double)ring[j].x + ((long double)p.y - ring[j].y) * ((long double)ring[i].x - ring[j].x) / ((long double)ring[i].y - ring[j].y);
        if (x > p.x) in = !in;
    }
    return in;
}

bool onRing(const Ring& ring, P p) {
    for (const P& q : ring) if (q.x == p.x && q.y == p.y) return true;
    return false;
}

// Groups by the callers' rule: the first later outer contour that holds the hole's first vertex.
GEOSGeometry* geosResult(const Result& r, std::string& fault) {
    std::vector<std::vector<GEOSGeometry*>> holes(r.rings.size());
    for (size_t i = 0; i < r.rings.size(); ++i) {
        if (!r.hole[i]) continue;
        size_t j = 0;
        const Ring& h = r.rings[i];
        for (; j < r.rings.size(); ++j) {
            if (j == i || r.hole[j]) continue;
            P probe = h[0];
            if (onRing(r.rings[j], probe)) {
                for (const P& q : h) if (!onRing(r.rings[j], q)) { probe = q; break; }
            }
            if (inRing(r.rings[j], probe)) break;
        }
        if (j == r.rings.size()) { fault = "hole without outer"; continue; }
        if (j < i) fault = "hole after its outer";
        holes[j].push_back(geosRing(h, false));
    }
    std::vector<GEOSGeometry*> polys;
    for (size_t i = 0; i < r.rings.size(); ++i) {
        const double ar = ringArea(r.rings[i]);
        if ((ar < 0) != (r.hole[i] == 1)) fault = "hole flag against orientation";
        if (r.hole[i]) continue;
        polys.push_back(GEOSGeom_createPolygon_r(ctx, geosRing(r.rings[i], false), holes[i].data(), (unsigned)holes[i].size()));
    }
    return GEOSGeom_createCollection_r(ctx, GEOS_MULTIPOLYGON, polys.data(), (unsigned)polys.size());
}

GEOSGeometry* geosOperand(const Rings& rings) {
    GEOSGeometry* sum = GEOSGeom_createEmptyPolygon_r(ctx);
    for (const Ring& ring : rings) {
        if (ring.size() < 3) continue;
        GEOSGeometry* p = geosRing(ring, true);
        if (p && GEOSisValid_r(ctx, p) != 1) {
            GEOSGeom_destroy_r(ctx, p);
            p = GEOSGeom_createEmptyPolygon_r(ctx);
            // By even-odd, a ring is the exclusive or of a fan of triangles.
            for (size_t i = 1; i + 1 < ring.size() && p; ++i) {
                Ring t{ring[0], ring[i], ring[i + 1]};
                if (ringArea(t) == 0) continue;
                GEOSGeometry* g = geosRing(t, true);
                GEOSGeometry* x = GEOSSymDifference_r(ctx, p, g);
                GEOSGeom_destroy_r(ctx, p);
                GEOSGeom_destroy_r(ctx, g);
                p = x;
            }
        }
        if (!p) { GEOSGeom_destroy_r(ctx, sum); return nullptr; }
        GEOSGeometry* next = GEOSSymDifference_r(ctx, sum, p);
        GEOSGeom_destroy_r(ctx, sum);
        GEOSGeom_destroy_r(ctx, p);
        if (!next) return nullptr;
        sum = next;
    }
    return sum;
}
double geosArea(GEOSGeometry* g) { double v = 0; if (g) GEOSArea_r(ctx, g, &v); return v; }

// Areas of all four operations by cutting the plane into slabs between all ends and crossings.
// Shares nothing with the engine.
void slabAreas(const Rings& a, const Rings& b, long double out[4]) {
    struct E { long double x0, y0, x1, y1; int m; };
    std::vector<E> es;
    for (int o = 0; o < 2; ++o) for (const Ring& r : o ? b : a) for (size_t i = 0; i < r.size() && r.size() > 2; ++i) {
        P u = r[i], v = r[(i + 1) % r.size()];
        if (u.x == v.x) continue;
        if (v.x < u.x) std::swap(u, v);
        es.push_back({u.x, u.y, v.x, v.y, o + 1});
    }
    std::vector<long double> xs;
    for (const E& e : es) { xs.push_back(e.x0); xs.push_back(e.x1); }
    for (size_t i = 0; i < es.size(); ++i) for (size_t j = 0; j < i; ++j) {
        const E &e = es[i], &f = es[j];
        const long double lo = std::max(e.x0, f.x0), hi = std::min(e.x1, f.x1);
        if (lo >= hi) continue;
        const auto at = [](const E& g, long double x) { return g.y0 + (g.y1 - g.y0) * ((x - g.x0) / (g.x1 - g.x0)); };
        const long double d0 = at(e, lo) - at(f, lo), d1 = at(e, hi) - at(f, hi);
        if ((d0 < 0 && d1 > 0) || (d0 > 0 && d1 < 0)) xs.push_back(lo + (hi - lo) * (d0 / (d0 - d1)));
    }
    std::sort(xs.begin(), xs.end());
    xs.erase(std::unique(xs.begin(), xs.end()), xs.end());
    for (int i = 0; i < 4; ++i) out[i] = 0;
    std::vector<std::pair<long double, int>> ys;
    for (size_t k = 0; k + 1 < xs.size(); ++k) {
        const long double x = (xs[k] + xs[k + 1]) / 2, w = xs[k + 1] - xs[k];
        ys.clear();
        for (const E& e : es) if (e.x0 <= xs[k] && e.x1 >= xs[k + 1]) ys.push_back({e.y0 + (e.y1 - e.y0) * ((x - e.x0) / (e.x1 - e.x0)), e.m});
        std::sort(ys.begin(), ys.end());
        int s = 0;
        for (size_t i = 0; i + 1 < ys.size(); ++i) {
            s ^= ys[i].second;
            const long double piece = (ys[i + 1].first - ys[i].first) * w;
            if (s == 1) out[0] += piece;
            if (s == 3) out[1] += piece;
            if (s == 1 || s == 2) out[2] += piece;
            if (s) out[3] += piece;
        }
    }
}

double extentOf(const Rings& a, const Rings& b, double& reach) {
    double lx = 1e308, ly = 1e308, hx = -1e308, hy = -1e308;
    for (const Rings* o : {&a, &b}) for (const Ring& r : *o) for (P p : r) { lx = std::min(lx, p.x); hx = std::max(hx, p.x); ly = std::min(ly, p.y); hy = std::max(hy, p.y); }
    reach = std::max(std::max(std::fabs(lx), std::fabs(hx)), std::max(std::fabs(ly), std::fabs(hy)));
    return std::max(hx - lx, hy - ly);
}

bool gGeos = true;
long gSilent = 0, gDoubt = 0;

bool check(uint64_t seed, int family, long index, Rings a, Rings b, std::string& why) {
    Rng r{seed ^ 0xABCDEF};
    const gpc_op ops[] = {GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION};
    const char* names[] = {"diff", "int", "xor", "union", "uniteAll"};
    (void)index;
    double reach;
    const double extent = extentOf(a, b, reach);
    if (family == 15 && reach < 1e-270) return true;
    if (family == 15) {  // bring near one for the checks: exact by a power of two
        int e; std::frexp(reach, &e);
        Result big[4];
        for (int i = 0; i < 4; ++i) big[i] = clip(ops[i], a, b);
        const auto f = [e](P p) { return P{std::ldexp(p.x, -e), std::ldexp(p.y, -e)}; };
        Rings sa = transformed(a, f), sb = transformed(b, f);
        for (int i = 0; i < 4; ++i) {
            Result s = clip(ops[i], sa, sb);
            big[i].rings = transformed(big[i].rings, f);
            if (!(s == big[i])) {
                if (std::getenv("SHOW")) { std::printf("exponent %d rings %zu %zu\n", e, s.rings.size(), big[i].rings.size());
                    for (size_t q = 0; q < s.rings.size() && q < big[i].rings.size(); ++q) for (size_t k = 0; k < s.rings[q].size() && k < big[i].rings[q].size(); ++k) { P u = s.rings[q][k], v = big[i].rings[q][k]; if (u.x != v.x || u.y != v.y) std::printf("ring %zu vertex %zu: %.17g %.17g  %.17g %.17g\n", q, k, u.x, u.y, v.x, v.y); } }
                why = std::string("scaled differs ") + names[i]; return false; }
        }
        return check(seed, -1, index, sa, sb, why);
    }
    Result res[4];
    double ar[4];
    Rings none;
    Result na = clip(GPC_UNION, a, none), nb = clip(GPC_UNION, b, none);
    const double areaA = area(na), areaB = area(nb);
    for (int i = 0; i < 4; ++i) { res[i] = clip(ops[i], a, b); ar[i] = area(res[i]); }
    long vertices = 0;
    double length = 0;
    for (const Rings* o : {&a, &b}) for (const Ring& q : *o) { vertices += (long)q.size(); for (size_t i = 0; i < q.size(); ++i) { const P& u = q[i]; const P& v = q[(i + 1) % q.size()]; length += std::fabs(u.x - v.x) + std::fabs(u.y - v.y); } }
    const double tol = 1e-9 * std::max(areaA + areaB, 0.0) * 1e-3 + 8 * length * reach * 2.3e-16;
    const auto near = [&](double u, double v) { return std::fabs(u - v) <= tol; };
    if (!near(areaA + areaB, ar[3] + ar[1])) { char t[200]; std::snprintf(t, 200, "A+B != union+int by %g, tolerance %g, areas %g %g", areaA + areaB - ar[3] - ar[1], tol, areaA, areaB); why = t; return false; }
    if (!near(ar[2], ar[3] - ar[1])) { why = "xor != union-int"; return false; }
    if (!near(ar[0], areaA - ar[1])) { why = "diff != A-int"; return false; }
    if (vertices < 220) {
        long double slab[4];
        slabAreas(a, b, slab);
        for (int i = 0; i < 4; ++i) if (std::fabs((double)(slab[i] - (long double)ar[i])) > 4 * tol) {
            char text[200];
            std::snprintf(text, sizeof text, "area of %s: %.17g, by slabs %.17Lg (tolerance %.3g)", names[i], ar[i], slab[i], tol);
            why = text; return false;
        }
    }
    for (int i = 0; i < 4; ++i) for (int w = 1; w < 4; ++w) if (!(clipPrepared(ops[i], a, b, w) == res[i])) { why = std::string("prepared operand changes ") + names[i]; return false; }
    std::vector<Rings> sets{a, b};
    Result both = unite(sets);
    if (!near(area(both), ar[3])) { char t[200]; std::snprintf(t, 200, "uniteAll of two: %.17g, union %.17g", area(both), ar[3]); why = t; return false; }
    std::vector<Rings> single;
    for (const Rings* o : {&a, &b}) for (const Ring& q : *o) single.push_back({q});
    Result each = unite(single), fold;
    for (Rings& q : single) { Rings f = fold.rings; fold = clip(GPC_UNION, f, q); }
    if (std::fabs(area(each) - area(fold)) > tol * (double)(single.size() + 1)) { char t[200]; std::snprintf(t, 200, "uniteAll of rings: %.17g, folded %.17g", area(each), area(fold)); why = t; return false; }
    std::reverse(single.begin(), single.end());
    for (Rings& q : single) q = shuffled(r, q);
    if (!(unite(single) == each)) { why = "uniteAll depends on order"; return false; }
    // the same set: points
    for (int t = 0; t < 24; ++t) {
        const Rings& o = r.flip() || b.empty() ? a : b;
        if (o.empty() || o[0].empty()) break;
        const Ring& q = o[r.below((int)o.size())];
        if (q.size() < 3) continue;
        const P u = q[r.below((int)q.size())], v = q[r.below((int)q.size())], w = q[r.below((int)q.size())];
        const double f = r.unit(), g = r.unit() * (1 - f);
        const P p{u.x + f * (v.x - u.x) + g * (w.x - u.x), u.y + f * (v.y - u.y) + g * (w.y - u.y)};
        bool clear = true;
        int in[2] = {0, 0};
        for (int k = 0; k < 2; ++k) for (const Ring& z : k ? b : a) {
            if (z.size() < 3) continue;
            in[k] ^= inRing(z, p);
            for (size_t i = 0; i < z.size() && clear; ++i) {
                const P m = z[i], n = z[(i + 1) % z.size()];
                const double dx = n.x - m.x, dy = n.y - m.y, l2 = dx * dx + dy * dy;
                double h = l2 > 0 ? ((p.x - m.x) * dx + (p.y - m.y) * dy) / l2 : 0;
                h = std::min(1.0, std::max(0.0, h));
                clear = std::hypot(p.x - m.x - h * dx, p.y - m.y - h * dy) > 64 * reach * 2.3e-16;
            }
        }
        if (!clear) continue;
        const bool want[4] = {in[0] && !in[1], in[0] && in[1], in[0] != in[1], in[0] || in[1]};
        for (int i = 0; i < 4; ++i) {
            bool have = false;
            for (const Ring& z : res[i].rings) have ^= inRing(z, p);
            if (have != want[i]) { why = std::string("a point is on the wrong side in ") + names[i]; return false; }
        }
    }
    // invariance
    Rings a2 = shuffled(r, a), b2 = shuffled(r, b);
    for (int i = 0; i < 4; ++i) {
        if (!(clip(ops[i], a2, b2) == res[i])) {
            if (std::getenv("SHOW")) {
                Result o = clip(ops[i], a2, b2);
                auto key = [](const Result& q) { std::vector<std::string> v; for (auto& z : q.rings) for (size_t k = 0; k < z.size(); ++k) { char t[200]; P u = z[k], w = z[(k + 1) % z.size()]; std::snprintf(t, 200, "%.17g %.17g -> %.17g %.17g", u.x, u.y, w.x, w.y); v.push_back(t); } std::sort(v.begin(), v.end()); return v; };
                auto k1 = key(res[i]), k2 = key(o);
                std::printf("%zu / %zu rings\n", res[i].rings.size(), o.rings.size());
                for (auto& x : k1) if (!std::binary_search(k2.begin(), k2.end(), x)) std::printf("- %s\n", x.c_str());
                for (auto& x : k2) if (!std::binary_search(k1.begin(), k1.end(), x)) std::printf("+ %s\n", x.c_str());
            }
            why = std::string("reordering changes ") + names[i]; return false; }
        if (i != 0 && !(clip(ops[i], b, a) == res[i])) { why = std::string("swapping changes ") + names[i]; return false; }
    }
    const int shift = r.range(-20, 20);
    const auto sc = [shift](P p) { return P{std::ldexp(p.x, shift), std::ldexp(p.y, shift)}; };
    Rings as = transformed(a, sc), bs = transformed(b, sc);
    const auto turn = [](P p) { return P{-p.y, p.x}; };
    Rings at = transformed(a, turn), bt = transformed(b, turn);
    for (int i = 0; i < 4; ++i) {
        Result s = res[i];
        s.rings = transformed(s.rings, sc);
        if (!(clip(ops[i], as, bs) == s)) { why = std::string("scaling changes ") + names[i]; return false; }
        if (!near(area(clip(ops[i], at, bt)), ar[i])) { why = std::string("turning changes ") + names[i]; return false; }
    }
    // idempotence: a valid result is its own union with nothing
    for (int i = 0; i < 4; ++i) {
        Rings x = res[i].rings;
        Result again = clip(GPC_UNION, x, none);
        if (!(again == res[i])) { why = std::string("result is not a fixed point ") + names[i]; return false; }
    }
    // vertices: each is an input vertex or within every ... ; validity
    std::vector<GEOSGeometry*> gs;
    bool ok = true;
    for (int i = 0; i < 5 && ok; ++i) {
        std::string fault;
        const Result& one = i < 4 ? res[i] : each;
        for (const Ring& q : one.rings) {
            std::vector<std::pair<double, double>> v;
            for (P p : q) v.push_back({p.x, p.y});
            std::sort(v.begin(), v.end());
            if (std::adjacent_find(v.begin(), v.end()) != v.end()) fault = "repeated vertex";
            if (q.size() < 3) fault = "short contour";
        }
        GEOSGeometry* g = geosResult(one, fault);
        gs.push_back(g);
        if (!fault.empty()) { why = fault + " in " + names[i]; ok = false; break; }
        if (!g || GEOSisValid_r(ctx, g) != 1) {
            char* reason = g ? GEOSisValidReason_r(ctx, g) : nullptr;
            why = std::string("invalid ") + names[i] + ": " + (reason ? reason : "?");
            GEOSFree_r(ctx, reason);
            ok = false;
        }
    }
    if (ok && gGeos) {
        GEOSGeometry* ga = geosOperand(a);
        GEOSGeometry* gb = geosOperand(b);
        if (ga && gb) {
            const double slack = tol * 40 + 1e-13 * extent * extent + 1e-9 * (areaA + areaB);
            bool answers = true;
            double own[4] = {0, 0, 0, 0};
            GEOSGeometry* sets[4] = {GEOSDifference_r(ctx, ga, gb), GEOSIntersection_r(ctx, ga, gb), GEOSSymDifference_r(ctx, ga, gb), GEOSUnion_r(ctx, ga, gb)};
            for (int i = 0; i < 4; ++i) { answers = answers && sets[i]; own[i] = geosArea(sets[i]); }
            // GEOS now and then gives up silently; its own sums tell.
            answers = answers && std::fabs(geosArea(ga) + geosArea(gb) - own[1] - own[3]) <= slack && std::fabs(own[2] - own[3] + own[1]) <= slack && std::fabs(geosArea(ga) - own[0] - own[1]) <= slack;
            if (!answers) ++gSilent;
            if (answers && std::fabs(geosArea(ga) - areaA) + std::fabs(geosArea(gb) - areaB) > slack) { ++gDoubt; answers = false; }
            for (int i = 0; i < 4 && ok && answers; ++i) {
                GEOSGeometry* g = sets[i];
                if (std::fabs(geosArea(g) - ar[i]) > slack) {
                    char text[200];
                    std::snprintf(text, sizeof text, "area of %s: %.17g, GEOS %.17g", names[i], ar[i], geosArea(g));
                    why = text; ok = false;
                } else if (g && i == (int)(seed % 4)) {
                    GEOSGeometry* d = GEOSSymDifference_r(ctx, g, gs[i]);
                    if (d && geosArea(d) > slack * 4) ++gDoubt; if (false) { why = std::string("symmetric difference with GEOS ") + names[i]; ok = false; }
                    if (d) GEOSGeom_destroy_r(ctx, d);
                }
            }
            for (GEOSGeometry* g : sets) if (g) GEOSGeom_destroy_r(ctx, g);
        }
        if (ga) GEOSGeom_destroy_r(ctx, ga);
        if (gb) GEOSGeom_destroy_r(ctx, gb);
    }
    for (GEOSGeometry* g : gs) if (g) GEOSGeom_destroy_r(ctx, g);
    return ok;
}

void print(const char* name, const Rings& rings) {
    std::printf("%s = [", name);
    for (const Ring& r : rings) { std::printf("["); for (P p : r) std::printf("(%.17g,%.17g),", p.x, p.y); std::printf("],"); }
    std::printf("]\n");
}

}  // namespace

int main(int argc, char** argv) {
    long pairs = 20000; uint64_t seed = 1; int family = -1; long only = -1;
    for (int i = 1; i < argc; ++i) {
        const std::string o = argv[i];
        if (o == "--pairs") pairs = std::atol(argv[++i]);
        else if (o == "--seed") seed = std::strtoull(argv[++i], nullptr, 10);
        else if (o == "--family") family = std::atoi(argv[++i]);
        else if (o == "--only") only = std::atol(argv[++i]);
        else if (o == "--no-geos") gGeos = false;
    }
    ctx = GEOS_init_r();
    long misses = 0, perFamily[kFamilies] = {0};
    for (long i = only >= 0 ? only : 0; i < (only >= 0 ? only + 1 : pairs); ++i) {
        Rng r{seed * 0x9E3779B97F4A7C15ull + (uint64_t)i * 0xD1B54A32D192ED03ull};
        r.next();
        const int f = family >= 0 ? family : (int)(i % kFamilies);
        Rings a, b;
        make(f, r, a, b);
        std::string why;
        if (!check(r.next(), f, i, a, b, why)) {
            ++misses;
            if (++perFamily[f] <= 3) std::printf("MISS seed %llu pair %ld family %d %s: %s\n", (unsigned long long)seed, i, f, kNames[f], why.c_str());
            if (only >= 0) { print("a", a); print("b", b); }
            std::fflush(stdout);
        }
    }
    for (int f = 0; f < kFamilies; ++f) if (perFamily[f]) std::printf("  %-10s %ld misses\n", kNames[f], perFamily[f]);
    std::printf("%ld pairs, seed %llu, %ld misses (GEOS silent on %ld, in doubt on %ld)\n", pairs, (unsigned long long)seed, misses, gSilent, gDoubt);
    GEOS_finish_r(ctx);
    return misses != 0;
}
