// SPDX-License-Identifier: MIT
#include "foundation/farthest_point.h"

#include <algorithm>
#include <cmath>

#include "foundation/segment_math.h"

namespace jws::detail {

namespace {

constexpr std::size_t kBlock = 512;         ///< points scanned at a time
constexpr std::size_t kLeaf = 32;           ///< points under a rectangle of the lowest level
constexpr std::size_t kFewTies = 16;        ///< ties settled in a search after the allowance
constexpr std::size_t kFreeTies = 1 << 22;  ///< ties settled whatever the length of the line
constexpr std::size_t kLongRange = 768;     ///< shorter ones are scanned

std::size_t logarithm(std::size_t n) {
    std::size_t result = 1;
    while (n >>= 1) ++result;
    return result;
}

}  // namespace

/// A segment and the plain formula of the squared distance to it.
struct FarthestPoint::Segment {
    JWRawPoint a, b, v;
    double inverse;  ///< of the squared length, 0 for a length of 0

    Segment(const JWRawPoint& from, const JWRawPoint& to)
        : a(from), b(to), v(difference(to, from)) {
        const double square = dot(v, v);
        inverse = square > 0 ? 1 / square : 0;
    }
    double square(const JWRawPoint& p) const {
        const double x = p.x - a.x, y = p.y - a.y;
        double t = (x * v.x + y * v.y) * inverse;
        t = t > 0 ? t : 0;
        t = t < 1 ? t : 1;
        const double dx = x - t * v.x, dy = y - t * v.y;
        return dx * dx + dy * dy;
    }
    /// By how much the plain formula and `segmentDistance` may differ at this distance: the latter
    /// rounds the foot point as a coordinate.
    double rounding(double distance) const {
        const double offset = std::max(std::max(std::fabs(a.x), std::fabs(a.y)),
                                       std::max(std::fabs(b.x), std::fabs(b.y)));
        return 1e-15 * offset + 1e-14 * (distance + length(v));
    }
};

void FarthestPoint::setLine(const JWRawPoint* points, std::size_t n) {
    m_points = points;
    m_n = n;
    m_tieAllowance = kFreeTies + n * logarithm(n);
    m_levels.clear();
    if (n > kLongRange) buildTree();
}

FarthestPoint::Found FarthestPoint::find(std::size_t first, std::size_t last, double tolerance) {
    const Segment segment(m_points[first], m_points[last]);
    const bool isLong = last - first > kLongRange;
    const Found found =
        isLong ? search(segment, first, last, tolerance) : scan(segment, first, last, tolerance);
    return found.distance > tolerance ? found : Found();
}

void FarthestPoint::keep(double tolerance, std::vector<std::size_t>& kept) {
    kept.assign(1, 0);
    m_ranges.assign(1, {0, m_n - 1});
    while (!m_ranges.empty()) {
        const auto [first, last] = m_ranges.back();
        m_ranges.pop_back();
        const Found found = find(first, last, tolerance);
        if (found.distance <= tolerance) {
            kept.push_back(last);
            continue;
        }
        m_ranges.emplace_back(found.index, last);
        m_ranges.emplace_back(first, found.index);
    }
}

// --- Scan ----------------------------------------------------------------------------------------

FarthestPoint::Found FarthestPoint::scan(const Segment& segment, std::size_t first,
                                         std::size_t last, double tolerance) {
    double squares[kBlock];
    double largest = 0;
    m_blockLargest.clear();
    for (std::size_t begin = first + 1; begin < last; begin += kBlock) {
        const std::size_t size = std::min(kBlock, last - begin);
        const JWRawPoint* p = m_points + begin;
        for (std::size_t i = 0; i < size; ++i) squares[i] = segment.square(p[i]);
        double most[4] = {0, 0, 0, 0};
        std::size_t i = 0;
        for (; i + 4 <= size; i += 4) {
            for (std::size_t lane = 0; lane < 4; ++lane) {
                most[lane] = squares[i + lane] > most[lane] ? squares[i + lane] : most[lane];
            }
        }
        for (; i < size; ++i) most[0] = std::max(most[0], squares[i]);
        m_blockLargest.push_back(std::max(std::max(most[0], most[1]), std::max(most[2], most[3])));
        largest = std::max(largest, m_blockLargest.back());
    }
    const double distance = std::sqrt(largest);
    const double rounding = segment.rounding(distance);
    if (distance + rounding <= tolerance) return {};
    // Where squares overflow or vanish there is no bound, and every point is settled.
    const bool bounded = rounding < 1e150 && rounding > 1e-150;
    const double limit = bounded ? std::max(0.0, distance - 2 * rounding) : 0;
    Ties ties;
    for (std::size_t block = 0; block < m_blockLargest.size(); ++block) {
        if (m_blockLargest[block] < limit * limit) continue;
        const std::size_t begin = first + 1 + block * kBlock;
        settle(segment, begin, std::min(begin + kBlock, last), limit, ties);
    }
    return ties.best;
}

/// Settles the points from `begin` to `end` whose plain distance is at least `limit`.
void FarthestPoint::settle(const Segment& segment, std::size_t begin, std::size_t end, double limit,
                           Ties& ties) const {
    for (std::size_t i = begin; i < end; ++i) {
        if (segment.square(m_points[i]) < limit * limit) continue;
        const double distance = segmentDistance(m_points[i], segment.a, segment.b);
        if (distance > ties.best.distance) ties.best = {i, distance};
        ++ties.count;
    }
}

// --- Search --------------------------------------------------------------------------------------

/// The rectangle along the line from `from` to `to` around the points that `forEach` names.
template <class ForEach>
FarthestPoint::Box FarthestPoint::boxAlong(const JWRawPoint& from, const JWRawPoint& to,
                                           const ForEach& forEach) const {
    JWRawPoint u = difference(to, from);
    const double size = length(u);
    u = size > 0 ? JWRawPoint(u.x / size, u.y / size) : JWRawPoint(1, 0);
    double minLong = 0, maxLong = 0, minWide = 0, maxWide = 0;
    forEach([&](const JWRawPoint& p) {
        const JWRawPoint w = difference(p, from);
        const double along = dot(u, w), across = cross(u, w);
        minLong = along < minLong ? along : minLong;
        maxLong = along > maxLong ? along : maxLong;
        minWide = across < minWide ? across : minWide;
        maxWide = across > maxWide ? across : maxWide;
    });
    const double middle = (minLong + maxLong) / 2, side = (minWide + maxWide) / 2;
    const double halfLong = (maxLong - minLong) / 2, halfWide = (maxWide - minWide) / 2;
    return {JWRawPoint(from.x + u.x * middle - u.y * side, from.y + u.y * middle + u.x * side),
            JWRawPoint(u.x * halfLong, u.y * halfLong),
            JWRawPoint(-u.y * halfWide, u.x * halfWide)};
}

namespace {

template <class Box, class Body>
void forEachCorner(const Box& box, const Body& body) {
    for (const double s : {1.0, -1.0}) {
        for (const double t : {1.0, -1.0}) {
            body(JWRawPoint(box.center.x + s * box.along.x + t * box.across.x,
                            box.center.y + s * box.along.y + t * box.across.y));
        }
    }
}

/// The distance of the farthest corner.
template <class Segment, class Box>
double bound(const Segment& segment, const Box& box) {
    double most = 0;
    forEachCorner(box, [&](const JWRawPoint& p) { most = std::max(most, segment.square(p)); });
    return std::sqrt(most);
}

}  // namespace

/// The point that a rectangle over `size` points from `begin` on is parallel to the chord of: 30
/// points ahead, or 60, 120 and so on. Lines that go up and down with a period of 2, 3, 5 or 6
/// points are in the same phase there, and the rectangle fits them closely.
std::size_t FarthestPoint::chordEnd(std::size_t begin, std::size_t size) const {
    return std::min(begin + size - size / 16, m_n - 1);
}

void FarthestPoint::buildTree() {
    m_levels.emplace_back();
    for (std::size_t begin = 0; begin < m_n; begin += kLeaf) {
        const std::size_t end = std::min(begin + kLeaf, m_n);
        m_levels[0].push_back(
            boxAlong(m_points[begin], m_points[chordEnd(begin, kLeaf)], [&](const auto& body) {
                for (std::size_t i = begin; i < end; ++i) body(m_points[i]);
            }));
    }
    for (std::size_t size = 2 * kLeaf; m_levels.back().size() > 1; size *= 2) {
        const std::vector<Box>& below = m_levels.back();
        std::vector<Box> level;
        for (std::size_t child = 0; child < below.size(); child += 2) {
            const std::size_t begin = child / 2 * size;
            level.push_back(
                boxAlong(m_points[begin], m_points[chordEnd(begin, size)], [&](const auto& body) {
                    forEachCorner(below[child], body);
                    if (child + 1 < below.size()) forEachCorner(below[child + 1], body);
                }));
        }
        m_levels.push_back(std::move(level));
    }
}

namespace {

/// The points of a node, cut down to those between begin and end.
struct Span {
    std::size_t begin, end;
    Span(std::size_t level, std::size_t node, std::size_t from, std::size_t to)
        : begin(std::max(node * (kLeaf << level), from)),
          end(std::min((node + 1) * (kLeaf << level), to)) {}
    bool empty() const { return begin >= end; }
};

}  // namespace

/// The largest plain distance below a node if it is above `best` by more than `slack`, else some
/// value from `best` on; the more promising child goes first.
double FarthestPoint::largestIn(const Segment& segment, std::size_t level, std::size_t node,
                                std::size_t begin, std::size_t end, double slack,
                                double best) const {
    if (level == 0) {
        const Span span(level, node, begin, end);
        double most = 0;
        for (std::size_t i = span.begin; i < span.end; ++i) {
            const double square = segment.square(m_points[i]);
            most = square > most ? square : most;
        }
        return std::max(best, std::sqrt(most));
    }
    double bounds[2];
    for (std::size_t child = 0; child < 2; ++child) {
        const std::size_t index = 2 * node + child;
        const bool meets =
            index < m_levels[level - 1].size() && !Span(level - 1, index, begin, end).empty();
        bounds[child] = meets ? bound(segment, m_levels[level - 1][index]) : -1;
    }
    const std::size_t nearer = bounds[1] > bounds[0] ? 1 : 0;
    for (std::size_t child : {nearer, 1 - nearer}) {
        if (bounds[child] > best + slack) {
            best = largestIn(segment, level - 1, 2 * node + child, begin, end, slack, best);
        }
    }
    return best;
}

/// Settles, from left to right, the points below a node whose plain distance is at least `limit`.
void FarthestPoint::settleIn(const Segment& segment, std::size_t level, std::size_t node,
                             std::size_t begin, std::size_t end, double limit, Ties& ties) {
    const Span span(level, node, begin, end);
    if (node >= m_levels[level].size() || span.empty()) return;
    if (m_tieAllowance == 0 && ties.count > kFewTies) return;
    if (bound(segment, m_levels[level][node]) < limit) return;
    if (level > 0) {
        settleIn(segment, level - 1, 2 * node, begin, end, limit, ties);
        settleIn(segment, level - 1, 2 * node + 1, begin, end, limit, ties);
        return;
    }
    settle(segment, span.begin, span.end, limit, ties);
    m_tieAllowance -= std::min(m_tieAllowance, span.end - span.begin);
}

FarthestPoint::Found FarthestPoint::search(const Segment& segment, std::size_t first,
                                           std::size_t last, double tolerance) {
    const std::size_t root = m_levels.size() - 1;
    // No value met here is off by more than this: corners and plain distances included.
    const double rounding = 2 * segment.rounding(bound(segment, m_levels[root][0]));
    if (!(rounding < 1e150 && rounding > 1e-150)) return scan(segment, first, last, tolerance);
    const double floor = tolerance - 4 * rounding;
    const double largest =
        largestIn(segment, root, 0, first + 1, last, 2 * rounding, std::max(floor, 0.0));
    if (largest <= floor) return {};
    Ties ties;
    settleIn(segment, root, 0, first + 1, last, std::max(0.0, largest - 4 * rounding), ties);
    return ties.best;
}

}  // namespace jws::detail
