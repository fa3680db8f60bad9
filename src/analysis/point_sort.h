// SPDX-License-Identifier: MIT
//
// Sorting points by x, then y, faster than a general sort does: by distribution, or by merging
// where there are few stretches in order, as in a ring without bays.
#ifndef JW_ANALYSIS_POINT_SORT_H
#define JW_ANALYSIS_POINT_SORT_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "jw_envelop.h"

namespace jws::detail {

/// Where the rising and falling stretches of a list end, the first 0; few or none.
template <class Before>
std::vector<std::size_t> stretchEnds(const std::vector<JWRawPoint>& points, const Before& before) {
    constexpr std::size_t kFewStretches = 8;
    std::vector<std::size_t> ends = {0};
    while (ends.back() < points.size()) {
        if (ends.size() > kFewStretches) return {};
        std::size_t i = ends.back() + 1;
        const bool falls = i < points.size() && before(points[i], points[i - 1]);
        while (i < points.size() && before(points[i], points[i - 1]) == falls) ++i;
        ends.push_back(i);
    }
    return ends;
}

/// Sorts a list of few stretches, such as a ring without bays, by merging them.
template <class Before>
void mergeStretches(std::vector<JWRawPoint>& points, std::vector<std::size_t> ends,
                    const Before& before) {
    const auto at = [&](std::size_t k) {
        return points.begin() + static_cast<std::ptrdiff_t>(ends[k]);
    };
    for (std::size_t k = 1; k < ends.size(); ++k) {
        if (before(*(at(k) - 1), *at(k - 1))) std::reverse(at(k - 1), at(k));
    }
    while (ends.size() > 2) {
        std::vector<std::size_t> merged = {0};
        for (std::size_t k = 2; k < ends.size(); k += 2) {
            std::inplace_merge(at(k - 2), at(k - 1), at(k), before);
            merged.push_back(ends[k]);
        }
        if (merged.back() != ends.back()) merged.push_back(ends.back());
        ends = std::move(merged);
    }
}

/// Sorts by distribution by x into buckets of a few points, each sorted by itself.
template <class Before>
void distribute(std::vector<JWRawPoint>& points, const Before& before) {
    const std::size_t n = points.size();
    const auto byX = [](const JWRawPoint& a, const JWRawPoint& b) { return a.x < b.x; };
    const auto [low, high] = std::minmax_element(points.begin(), points.end(), byX);
    const std::size_t buckets = n / 4;
    const double origin = low->x;
    const double factor = static_cast<double>(buckets) / (high->x - origin);
    if (n < 1024 || !(factor > 0 && std::isfinite(factor))) {
        std::sort(points.begin(), points.end(), before);
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
                  place + static_cast<std::ptrdiff_t>(ends[b]), before);
        begin = ends[b];
    }
    points = std::move(sorted);
}

/// `before` is the order of points by x, then y; coordinates are finite.
template <class Before>
void sortPoints(std::vector<JWRawPoint>& points, const Before& before) {
    const std::vector<std::size_t> ends = stretchEnds(points, before);
    if (ends.empty()) {
        distribute(points, before);
    } else {
        mergeStretches(points, ends, before);
    }
}

}  // namespace jws::detail

#endif  // JW_ANALYSIS_POINT_SORT_H
