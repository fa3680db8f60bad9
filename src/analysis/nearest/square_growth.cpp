// SPDX-License-Identifier: MIT
#include "analysis/nearest/square_growth.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace jws::detail {

SquareGrowth::SquareGrowth(const std::vector<JWEnvelop>& rectangles, const PackedTree& tree,
                           const JWEnvelop& extent, double divisor, bool startsAtStep)
    : m_rectangles(rectangles), m_tree(tree), m_extent(extent) {
    constexpr std::size_t mostRadii = 1000000;
    const double side =
        std::max(std::fabs(extent.maxX - extent.minX), std::fabs(extent.maxY - extent.minY));
    m_step = side / divisor;
    m_first = startsAtStep ? m_step : 0;
    m_end = side + 1.0;
    double r = m_first;
    for (; r < m_end && m_radii.size() < mostRadii; r += m_step) {
        m_radii.push_back(r);
        if (m_step == 0) break;
    }
    m_count = static_cast<double>(m_radii.size());
    if (r < m_end && m_step > 0) {
        m_count =
            std::min(std::ceil((m_end - m_first) / m_step), std::numeric_limits<double>::max());
    }
}

double SquareGrowth::outsideOf(const JWEnvelop& source) const {
    if (source.maxX < m_extent.minX) return m_extent.minX - source.maxX;
    if (source.minX > m_extent.maxX) return source.minX - m_extent.maxX;
    if (source.maxY < m_extent.minY) return m_extent.minY - source.maxY;
    if (source.minY > m_extent.maxY) return source.minY - m_extent.maxY;
    return 0;
}

SquareStart SquareGrowth::startAt(const JWRawPoint& point) const {
    return {point, 0, outsideOf(JWEnvelop(point.x, point.y, point.x, point.y))};
}

SquareStart SquareGrowth::startAt(const JWEnvelop& source) const {
    return {source.center(), std::max(source.width(), source.height()) / 2, outsideOf(source)};
}

double SquareGrowth::radius(double k) const {
    return k < static_cast<double>(m_radii.size()) ? m_radii[static_cast<std::size_t>(k)]
                                                   : m_first + k * m_step;
}

JWEnvelop SquareGrowth::squareAt(const SquareStart& start, double k) const {
    const double e = radius(k) + start.base + start.outside;
    return {start.centre.x - e, start.centre.y - e, start.centre.x + e, start.centre.y + e};
}

bool SquareGrowth::meetsAny(const JWEnvelop& square) const {
    return m_tree.search([&](const JWEnvelop& box) { return !box.isDisjoin(square); },
                         [](int) { return true; });
}

/// The larger of the distances along the axes to the rectangle nearest by that measure.
double SquareGrowth::axisDistance(const JWRawPoint& centre) const {
    const auto distance = [&](const JWEnvelop& box) {
        return std::max({box.minX - centre.x, centre.x - box.maxX, box.minY - centre.y,
                         centre.y - box.maxY, 0.0});
    };
    double least = std::numeric_limits<double>::infinity();
    m_tree.searchNearest(
        distance, [&] { return least; },
        [&](int i) {
            least = std::min(least, distance(m_rectangles[static_cast<std::size_t>(i)]));
        });
    return least;
}

bool SquareGrowth::firstSquare(const SquareStart& start, JWEnvelop& square) const {
    if (m_radii.empty()) return false;
    square = squareAt(start, 0);
    if (meetsAny(square)) return true;
    if (m_step == 0) {  // the square cannot grow: all targets are at one place
        square = m_extent;
        return true;
    }
    double without = 0, with = m_count;  // the last square that meets nothing, the first that does
    const auto narrow = [&](double k) {
        if (k > without && k < with) (meetsAny(squareAt(start, k)) ? with : without) = k;
    };
    const double needed = axisDistance(start.centre) - start.base - start.outside;
    const double guess = std::min(std::floor((needed - m_first) / m_step), m_count - 2);
    for (const double k : {guess, guess + 1, guess - 1}) narrow(k);
    while (without + 1 < with) {
        const double middle = std::floor(without + (with - without) / 2);
        if (middle <= without || middle >= with) break;  // no number in between
        narrow(middle);
    }
    if (with >= m_count || !(radius(with) < m_end)) return false;
    square = squareAt(start, with);
    return true;
}

}  // namespace jws::detail
