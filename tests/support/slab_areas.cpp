// SPDX-License-Identifier: MIT
#include "support/slab_areas.h"

#include <algorithm>
#include <utility>

namespace jwtest {
namespace {

/// An edge from left to right; upright ones take no part.
struct Edge {
    long double x0, y0, x1, y1;
    int operand;  // 1 or 2

    long double at(long double x) const { return y0 + (y1 - y0) * ((x - x0) / (x1 - x0)); }
};

std::vector<Edge> edgesOf(const Rings& a, const Rings& b) {
    std::vector<Edge> edges;
    for (const Rings* operand : {&a, &b}) {
        for (const Ring& ring : *operand) {
            for (std::size_t i = 0; ring.size() > 2 && i < ring.size(); ++i) {
                jws::JWRawPoint p = ring[i], q = ring[(i + 1) % ring.size()];
                if (q.x < p.x) std::swap(p, q);
                if (p.x != q.x) edges.push_back({p.x, p.y, q.x, q.y, operand == &a ? 1 : 2});
            }
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& e, const Edge& f) { return e.x0 < f.x0; });
    return edges;
}

std::vector<long double> cutsOf(const std::vector<Edge>& edges) {
    std::vector<long double> xs;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        const Edge& e = edges[i];
        xs.push_back(e.x0);
        xs.push_back(e.x1);
        for (std::size_t k = i + 1; k < edges.size() && edges[k].x0 < e.x1; ++k) {
            const Edge& f = edges[k];
            const long double low = f.x0, high = std::min(e.x1, f.x1);
            const long double d0 = e.at(low) - f.at(low), d1 = e.at(high) - f.at(high);
            if ((d0 < 0 && d1 > 0) || (d0 > 0 && d1 < 0)) {
                xs.push_back(low + (high - low) * (d0 / (d0 - d1)));
            }
        }
    }
    std::sort(xs.begin(), xs.end());
    xs.erase(std::unique(xs.begin(), xs.end()), xs.end());
    return xs;
}

}  // namespace

FourAreas slabAreas(const Rings& a, const Rings& b) {
    const std::vector<Edge> edges = edgesOf(a, b);
    const std::vector<long double> xs = cutsOf(edges);
    long double sums[4] = {};
    std::vector<std::pair<long double, int>> ys;
    std::vector<const Edge*> open;
    std::size_t next = 0;
    for (std::size_t i = 0; i + 1 < xs.size(); ++i) {
        const long double x = (xs[i] + xs[i + 1]) / 2, width = xs[i + 1] - xs[i];
        for (; next < edges.size() && edges[next].x0 <= xs[i]; ++next) {
            open.push_back(&edges[next]);
        }
        open.erase(std::remove_if(open.begin(), open.end(),
                                  [&](const Edge* e) { return e->x1 < xs[i + 1]; }),
                   open.end());
        ys.clear();
        for (const Edge* e : open) ys.emplace_back(e->at(x), e->operand);
        std::sort(ys.begin(), ys.end());
        int inside = 0;  // of operand 1, of operand 2
        for (std::size_t k = 0; k + 1 < ys.size(); ++k) {
            inside ^= ys[k].second;
            const long double area = width * (ys[k + 1].first - ys[k].first);
            const bool holds[] = {inside == 1, inside == 3, inside == 1 || inside == 2,
                                  inside != 0};
            for (int op = 0; op < 4; ++op) sums[op] += holds[op] ? area : 0;
        }
    }
    FourAreas areas;
    for (int op = 0; op < 4; ++op) areas.of[op] = static_cast<double>(sums[op]);
    return areas;
}

}  // namespace jwtest
