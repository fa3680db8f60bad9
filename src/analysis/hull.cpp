// SPDX-License-Identifier: MIT
//
// The convex hull: Andrew's monotone chain (1979) with exact orientation, behind a filter.
//
// The chain is linear once the points are sorted, so sorting is what costs. Most points of large
// sets are far from the hull: the extremes of a sample in eight directions span an octagon, and
// what lies clearly inside it is dropped in one pass before anything is sorted (S. G. Akl,
// G. T. Toussaint, A fast convex hull algorithm, 1978). The filter may keep too much, never too
// little, so it needs no exactness. What remains is distributed into buckets by x, a monotone
// function even after rounding, and sorted within them.
//
// Turns are decided by the sign of the exact determinant. A plain one loses or invents corners
// among nearly collinear points and then pops the wrong ones, at projected offsets already for data
// in centimetres.
//
// Cost: O(n) for points in general position, O(n log n) at worst.
#include "analysis/hull.h"

#include <algorithm>
#include <cmath>

#include "foundation/orientation.h"

namespace jws::detail {

namespace {

constexpr std::size_t kFewPoints = 64;
constexpr double kEpsilon = 1.1102230246251565e-16;

/// The octagon of a sample's extremes, and the test that a point is clearly inside it.
class InnerOctagon {
  public:
    explicit InnerOctagon(const PointRuns& points) {
        findExtremes(points);
        for (int i = 0; i < 8; ++i) addEdge(corners_[i], corners_[(i + 1) % 8]);
    }

    /// True only for points in the interior of the hull of the sample. A coordinate that is not
    /// finite fails the first comparisons.
    bool clearlyInside(const JWRawPoint& p) const {
        if (!(p.x > box_.minX && p.x < box_.maxX && p.y > box_.minY && p.y < box_.maxY)) {
            return false;
        }
        const double x = p.x - corners_[0].x, y = p.y - corners_[0].y;
        bool inside = true;
        for (int i = 0; i < edges_; ++i) inside &= nx_[i] * x + ny_[i] * y > limit_[i];
        return inside;
    }
    bool useful() const { return edges_ >= 3; }

  private:
    /// The eight extremes, counter-clockwise from the lowest.
    void findExtremes(const PointRuns& points) {
        const std::size_t stride = std::max<std::size_t>(1, points.count() / kSampleSize);
        double best[8];
        bool any = false;
        const auto consider = [&](const JWRawPoint& p) {
            const double values[8] = {-p.y, p.x - p.y, p.x,  p.x + p.y,
                                      p.y,  p.y - p.x, -p.x, -p.x - p.y};
            if (!std::isfinite(values[3])) return;
            for (int i = 0; i < 8; ++i) {
                if (any && !(values[i] > best[i])) continue;
                best[i] = values[i];
                corners_[i] = p;
            }
            any = true;
        };
        points.forEachRun([&](const JWRawPoint* begin, const JWRawPoint* end) {
            const std::size_t size = static_cast<std::size_t>(end - begin);
            for (std::size_t i = 0; i < size; i += stride) consider(begin[i]);
        });
        if (!any) return;
        box_ = JWEnvelop(corners_[6].x, corners_[0].y, corners_[2].x, corners_[4].y);
    }

    /// Points left of the edge by more than the rounding of the test, for points in the box.
    void addEdge(const JWRawPoint& a, const JWRawPoint& b) {
        if (!box_.isValid() || a == b) return;
        const double nx = a.y - b.y, ny = b.x - a.x;
        const double width = box_.maxX - box_.minX, height = box_.maxY - box_.minY;
        const double margin = 16 * kEpsilon * (std::fabs(nx) * width + std::fabs(ny) * height);
        nx_[edges_] = nx;
        ny_[edges_] = ny;
        limit_[edges_] = nx * (a.x - corners_[0].x) + ny * (a.y - corners_[0].y) + margin;
        ++edges_;
    }

    static constexpr std::size_t kSampleSize = 1 << 16;
    JWRawPoint corners_[8];
    JWEnvelop box_ = JWEnvelop::invalid();
    int edges_ = 0;
    double nx_[8], ny_[8], limit_[8];
};

/// Sorts by x, then y: distribution into buckets of a few points, each sorted by itself.
void sortPoints(std::vector<JWRawPoint>& points) {
    const std::size_t n = points.size();
    const auto byX = [](const JWRawPoint& a, const JWRawPoint& b) { return a.x < b.x; };
    const auto [low, high] = std::minmax_element(points.begin(), points.end(), byX);
    const std::size_t buckets = n / 4;
    const double origin = low->x;
    const double factor = static_cast<double>(buckets) / (high->x - origin);
    if (n < 1024 || !(factor > 0 && std::isfinite(factor))) {
        std::sort(points.begin(), points.end());
        return;
    }
    const auto bucketOf = [&](const JWRawPoint& p) {
        return std::min(static_cast<std::size_t>((p.x - origin) * factor), buckets - 1);
    };
    std::vector<std::size_t> ends(buckets + 1, 0);
    for (const JWRawPoint& p : points) ++ends[bucketOf(p) + 1];
    for (std::size_t b = 1; b <= buckets; ++b) ends[b] += ends[b - 1];
    std::vector<JWRawPoint> sorted(n);
    for (const JWRawPoint& p : points) sorted[ends[bucketOf(p)]++] = p;
    std::size_t begin = 0;
    for (std::size_t b = 0; b < buckets; ++b) {
        const auto place = sorted.begin();
        std::sort(place + static_cast<std::ptrdiff_t>(begin),
                  place + static_cast<std::ptrdiff_t>(ends[b]));
        begin = ends[b];
    }
    points = std::move(sorted);
}

/// The chain over sorted, distinct points.
template <class Turn>
std::vector<JWRawPoint> monotoneChain(const std::vector<JWRawPoint>& points, const Turn& turn) {
    std::vector<JWRawPoint> chain;
    const auto extend = [&](std::size_t start, const JWRawPoint& p) {
        while (chain.size() > start && turn(chain[chain.size() - 2], chain.back(), p) <= 0) {
            chain.pop_back();
        }
        chain.push_back(p);
    };
    for (const JWRawPoint& p : points) extend(1, p);
    // The upper chain never pops the point where it starts, the last of the lower one.
    const std::size_t start = chain.size();
    for (auto p = points.rbegin() + 1; p != points.rend(); ++p) extend(start, *p);
    if (points.size() == 1) chain.push_back(points.front());
    return chain;
}

}  // namespace

double magnitude(const std::vector<JWRawPoint>& points) {
    double largest = 0, check = 0;
    for (const JWRawPoint& p : points) {
        const double size = std::max(std::fabs(p.x), std::fabs(p.y));
        if (size > largest) largest = size;
        check += (p.x - p.x) + (p.y - p.y);
    }
    return largest + check;
}

double safeScale(double magnitude) {
    if (magnitude == 0 || (magnitude < 0x1p+500 && magnitude > 0x1p-400)) return 1;
    return std::ldexp(1, -std::clamp(std::ilogb(magnitude), -1000, 1000));
}

std::vector<JWRawPoint> outerPoints(const PointRuns& points) {
    std::vector<JWRawPoint> outer;
    if (points.count() <= kFewPoints) {
        points.forEach([&](const JWRawPoint& p) { outer.push_back(p); });
        return outer;
    }
    const InnerOctagon octagon(points);
    const bool filter = octagon.useful();
    if (!filter) outer.reserve(points.count());
    outer.push_back(points.first());
    bool isFirst = true;
    points.forEach([&](const JWRawPoint& p) {
        if (!isFirst && !(filter && octagon.clearlyInside(p))) outer.push_back(p);
        isFirst = false;
    });
    return outer;
}

std::vector<JWRawPoint> convexHull(const PointRuns& points) {
    std::vector<JWRawPoint> outer = outerPoints(points);
    const double size = magnitude(outer);
    if (outer.empty() || !std::isfinite(size)) return {};
    sortPoints(outer);
    outer.erase(std::unique(outer.begin(), outer.end()), outer.end());
    const double scale = safeScale(size);
    if (scale == 1) return monotoneChain(outer, orientationSign);
    const auto scaled = [scale](const JWRawPoint& p) {
        return JWRawPoint(p.x * scale, p.y * scale);
    };
    return monotoneChain(outer, [&](const auto& a, const auto& b, const auto& c) {
        return orientationSign(scaled(a), scaled(b), scaled(c));
    });
}

}  // namespace jws::detail
