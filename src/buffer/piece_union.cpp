// SPDX-License-Identifier: MIT
//
// The union of the circles and capsules of a buffer.
//
// Neighbours along a line overlap almost everywhere, so that most edges of their shapes lie deep in
// other shapes: comparing them all would cost far more than the outline that is wanted. Shapes are
// therefore united in groups of neighbours, the larger the more they overlap (outline_union.h goes
// on from there), and of these only what may be on the outline is shown to the engine:
//
//   1. An edge both ends of which lie within one other shape lies within it, shapes being convex.
//      It is no part of the outline and is dropped. "Within" means by a clear margin (kMargin), so
//      that no rounding can matter.
//   2. Each stretch of edges that are left is closed by the chord between its ends. The shape keeps
//      a sliver along that stretch; the rest of it is left out.
//   3. The slivers are united. They contain the outline of the true union with all that lies just
//      inside it, so that every ring of the true union is a ring of theirs, corner for corner.
//      Their other rings bound places where no sliver is although the shapes cover them.
//   4. A ring of that kind lies everywhere within some shape, by at least about kMargin times the
//      sine of the smallest angle between chord and edge, 4e-6 of the distance. A ring of the true
//      union lies within none. So one look at the middle of an edge tells them apart (kInside).
//
// Long capsules, in which slivers would be thin, and distances so small that the coordinates'
// precision comes near those figures, are not treated so: shapes then go whole.
#include "buffer/piece_union.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace jws::detail {
namespace {

constexpr std::size_t kLeast = 16;  // shapes of a group: at least, and at most
constexpr std::size_t kMost = 128;
constexpr double kSpread = 2;  // of the distance: the way along a group of more than the least
constexpr int kMostCorners = 38;
constexpr double kMargin = 1e-3;     // of the distance: how deep a dropped edge lies
constexpr double kInside = 1e-6;     // of the distance: deeper lies no ring of the true union
constexpr double kLongest = 4;       // of the distance: the axis of a capsule that is cut
constexpr double kPrecision = 1e-8;  // of the coordinates: the smallest distance for cutting

double dot(const JWRawPoint& a, const JWRawPoint& b) { return a.x * b.x + a.y * b.y; }

/// A shape of a group, its corners relative to the group's origin.
struct Shape {
    JWRawPoint from;       ///< relative, too
    JWRawPoint direction;  ///< from -> to
    double perLength2;     ///< 1 / |direction|², 0 for a circle
    int count;
    JWRawPoint corners[kMostCorners];
    JWRawPoint exact[kMostCorners];  ///< as they are
    bool hidden[kMostCorners];       ///< edges from each corner to the next
    int visible;                     ///< edges that are not hidden

    /// The square of the distance to the axis.
    double distance2(const JWRawPoint& p) const {
        const JWRawPoint w(p.x - from.x, p.y - from.y);
        const double t = std::min(std::max(dot(w, direction) * perLength2, 0.0), 1.0);
        const double x = w.x - t * direction.x;
        const double y = w.y - t * direction.y;
        return x * x + y * y;
    }
    int after(int corner) const { return corner + 1 < count ? corner + 1 : 0; }
    /// How deep a point lies in the polygon; negative outside.
    double depth(const JWRawPoint& p) const {
        double least = HUGE_VAL;
        for (int i = 0; i < count; ++i) {
            const JWRawPoint &a = corners[i], &b = corners[after(i)];
            const double x = b.x - a.x, y = b.y - a.y;
            const double cross = x * (p.y - a.y) - y * (p.x - a.x);
            const double length = std::sqrt(x * x + y * y);
            if (length > 0) least = std::min(least, -cross / length);
        }
        return least;
    }
};

/// Up to kGroup shapes on their way to a union. One object per thread.
class PieceGroup {
  public:
    void take(const Pieces& pieces, std::size_t begin, std::size_t end);
    Outline unite();

  private:
    bool canCut() const;
    void hideEdges();
    void hideEdges(Shape& shape, const Shape& other) const;
    bool addStretches(const Shape& shape);
    void addStretch(const Shape& shape, int first, int edges);
    void addWhole(const Shape& shape) { addStretch(shape, 0, shape.count - 1); }
    bool isWithinShape(const RingView& ring) const;

    double m_distance = 0;
    double m_reach = 0;  ///< distance from an axis at which everything is deep in the shape
    double m_largest = 0;
    JWRawPoint m_origin;
    std::vector<Shape> m_shapes;
    Outline m_slivers;
};

void PieceGroup::take(const Pieces& pieces, std::size_t begin, std::size_t end) {
    m_distance = pieces.distance;
    m_origin = pieces.list[begin].from;
    m_largest = 0;
    m_shapes.resize(end - begin);
    // The middle of the longest edge of either shape comes closest to the axis.
    const double halfStep = 0.5 * std::max(pieces.arcs.capStep, pieces.arcs.circleAngle(1));
    m_reach = m_distance * (std::cos(halfStep) - kMargin);
    for (std::size_t k = 0; k < m_shapes.size(); ++k) {
        const Piece& piece = pieces.list[begin + k];
        Shape& shape = m_shapes[k];
        shape.from = {piece.from.x - m_origin.x, piece.from.y - m_origin.y};
        shape.direction = {piece.to.x - piece.from.x, piece.to.y - piece.from.y};
        const double length2 = dot(shape.direction, shape.direction);
        shape.perLength2 = length2 > 0 ? 1 / length2 : 0;
        shape.visible = shape.count = cornerCount(piece, pieces.arcs);
        writeCorners(piece, m_distance, pieces.arcs, shape.exact);
        for (int i = 0; i < shape.count; ++i) {
            const JWRawPoint& p = shape.exact[i];
            m_largest = std::max({m_largest, std::fabs(p.x), std::fabs(p.y)});
            shape.corners[i] = {p.x - m_origin.x, p.y - m_origin.y};
            shape.hidden[i] = false;
        }
    }
}

/// Whether squares of what occurs neither overflow nor underflow, and precision is ample.
bool PieceGroup::canCut() const {
    return m_distance > kPrecision * m_largest && m_distance > 1e-100 && m_largest < 1e100;
}

/// Marks the edges of `shape` that lie deep in `other`.
void PieceGroup::hideEdges(Shape& shape, const Shape& other) const {
    const double near2 = m_reach * m_reach;
    const double far2 = m_distance * m_distance;
    double distances[kMostCorners] = {};
    for (int k = 0; k < shape.count; ++k) distances[k] = other.distance2(shape.corners[k]);
    const auto isDeep = [&](int k) {
        return distances[k] < near2 ||
               (distances[k] < far2 && other.depth(shape.corners[k]) > kMargin * m_distance);
    };
    const bool first = isDeep(0);
    bool from = first;
    for (int k = 0; k < shape.count; ++k) {
        const bool to = k + 1 < shape.count ? isDeep(k + 1) : first;
        if (from && to && !shape.hidden[k]) {
            shape.hidden[k] = true;
            --shape.visible;
        }
        from = to;
    }
}

/// Neighbours along the line first: what they hide needs no further look.
void PieceGroup::hideEdges() {
    const double longest2 = kLongest * kLongest * m_distance * m_distance;
    const std::size_t count = m_shapes.size();
    for (std::size_t i = 0; i < count; ++i) {
        Shape& shape = m_shapes[i];
        if (dot(shape.direction, shape.direction) > longest2) continue;
        for (std::size_t step = 1; step < count && shape.visible > 0; ++step) {
            if (i + step < count) hideEdges(shape, m_shapes[i + step]);
            if (i >= step) hideEdges(shape, m_shapes[i - step]);
        }
    }
}

void PieceGroup::addStretch(const Shape& shape, int first, int edges) {
    for (int k = 0; k <= edges; ++k) m_slivers.addPoint(shape.exact[(first + k) % shape.count]);
    m_slivers.endRing(0);
}

/// Adds what is left of a shape; false when that is all of it. A single edge takes the next one
/// along, so that each sliver has an area.
bool PieceGroup::addStretches(const Shape& shape) {
    if (shape.visible == 0) return true;
    int hidden = 0;
    while (hidden < shape.count && !shape.hidden[hidden]) ++hidden;
    if (hidden == shape.count) {
        addWhole(shape);
        return false;
    }
    for (int k = 1; k < shape.count;) {
        int edges = 0;
        while (k + edges < shape.count && !shape.hidden[(hidden + k + edges) % shape.count]) {
            ++edges;
        }
        if (edges > 0) addStretch(shape, hidden + k, std::max(edges, 2));
        k += std::max(edges, 1);
    }
    return true;
}

/// Whether the middle of the ring's longest edge lies within a shape.
bool PieceGroup::isWithinShape(const RingView& ring) const {
    double longest = -1;
    JWRawPoint middle(0, 0);
    for (int i = 0; i < ring.count; ++i) {
        const JWRawPoint &a = ring.points[i], &b = ring.points[i + 1 < ring.count ? i + 1 : 0];
        const JWRawPoint p(a.x - m_origin.x, a.y - m_origin.y);
        const JWRawPoint d(b.x - a.x, b.y - a.y);
        if (dot(d, d) <= longest) continue;
        longest = dot(d, d);
        middle = {p.x + 0.5 * d.x, p.y + 0.5 * d.y};
    }
    const double distance2 = m_distance * m_distance;
    return std::any_of(m_shapes.begin(), m_shapes.end(), [&](const Shape& shape) {
        return shape.distance2(middle) < distance2 && shape.depth(middle) > kInside * m_distance;
    });
}

Outline PieceGroup::unite() {
    m_slivers.clear();
    bool cut = false;
    const bool mayCut = canCut();
    if (mayCut) hideEdges();
    for (const Shape& shape : m_shapes) cut = addStretches(shape) || cut;
    if (m_shapes.size() == 1) return m_slivers;
    Outline united = uniteAtOnce(m_slivers);
    if (!cut) return united;
    Outline result;
    for (int i = 0; i < united.count(); ++i) {
        const RingView ring = united.view(i);
        if (isWithinShape(ring)) continue;
        for (int k = 0; k < ring.count; ++k) result.addPoint(ring.points[k]);
        result.endRing(ring.hole);
    }
    return result;
}

/// Cuts runs into groups.
std::vector<std::size_t> groupEnds(const Pieces& pieces) {
    std::vector<std::size_t> ends;
    std::size_t begin = 0;
    for (const std::size_t runEnd : pieces.runEnds) {
        double way = 0;
        for (std::size_t i = begin; i < runEnd; ++i) {
            const JWRawPoint& start = pieces.list[begin].from;
            const JWRawPoint& end = pieces.list[i].to;
            way = std::max({way, std::fabs(end.x - start.x), std::fabs(end.y - start.y)});
            const std::size_t count = i + 1 - begin;
            const bool full = count >= kLeast && way > kSpread * pieces.distance;
            if (!full && count < kMost && i + 1 < runEnd) continue;
            ends.push_back(i + 1);
            begin = i + 1;
            way = 0;
        }
    }
    return ends;
}

}  // namespace

Outline unitePieces(const Pieces& pieces, const Team& team) {
    const std::vector<std::size_t> ends = groupEnds(pieces);
    std::vector<Outline> outlines(ends.size());
    parallelChunks(
        team, static_cast<std::int64_t>(ends.size()), 8, [&](std::int64_t from, std::int64_t to) {
            thread_local PieceGroup group;
            for (auto i = static_cast<std::size_t>(from); i < static_cast<std::size_t>(to); ++i) {
                group.take(pieces, i == 0 ? 0 : ends[i - 1], ends[i]);
                outlines[i] = group.unite();
            }
            return true;
        });
    return uniteOutlines(std::move(outlines), team);
}

}  // namespace jws::detail
