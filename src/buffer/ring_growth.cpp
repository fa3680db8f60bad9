// SPDX-License-Identifier: MIT
#include "buffer/ring_growth.h"

#include <algorithm>
#include <cmath>

#include "boolean/packed_tree.h"
#include "boolean/plain_area.h"
#include "buffer/offset_loop.h"
#include "foundation/segment_math.h"

namespace jws::detail {
namespace {

// Of the distance: a half circle's edge of 15 degrees is 0.0086 deep and its ends are 0.1306 away
// from its middle.
constexpr double kThin = 0.01;
constexpr double kHalfEdge = 0.131;
constexpr int kFew = 48;  // segments compared without a tree

double distanceBetween(const Shape& a, const Shape& b) {
    return std::min({segmentDistance(a.from, b.from, b.to), segmentDistance(a.to, b.from, b.to),
                     segmentDistance(b.from, a.from, a.to), segmentDistance(b.to, a.from, a.to)});
}

JWEnvelop boxAround(const Shape& piece, double reach) {
    return {std::min(piece.from.x, piece.to.x) - reach, std::min(piece.from.y, piece.to.y) - reach,
            std::max(piece.from.x, piece.to.x) + reach, std::max(piece.from.y, piece.to.y) + reach};
}

/// The segments of a ring that does not meet itself.
class BoundaryWidth {
  public:
    BoundaryWidth(const std::vector<Shape>& pieces, double distance)
        : m_pieces(pieces), m_distance(distance) {
        m_boxes.reserve(pieces.size());
        const double reach = 0.5 * kThin * distance;
        for (const Shape& piece : pieces) m_boxes.push_back(boxAround(piece, reach));
    }

    /// Whether two segments come too close together, or neighbours fold back.
    bool isThin() const {
        const int count = static_cast<int>(m_pieces.size());
        const PackedTree tree = count > kFew ? PackedTree(m_boxes, true) : PackedTree();
        for (int i = 0; i < count; ++i) {
            if (isFold(i)) return true;
            const auto meets = [&](const JWEnvelop& box) { return !box.isDisjoin(m_boxes[at(i)]); };
            const auto visit = [&](int j) { return j > i + 1 && isClose(i, j); };
            if (count > kFew && tree.search(meets, visit)) return true;
            for (int j = i + 2; j < count && count <= kFew; ++j) {
                if (meets(m_boxes[at(j)]) && visit(j)) return true;
            }
        }
        return false;
    }

  private:
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }
    /// Whether, near the far end of either segment, a corner's two segments come too close.
    bool isFold(int i) const {
        const Shape &a = m_pieces[at(i)], &b = m_pieces[at(i + 1) % m_pieces.size()];
        const JWRawPoint u = difference(a.to, a.from), v = difference(b.to, b.from);
        if (dot(u, v) >= 0) return false;
        const double lengthU = length(u), lengthV = length(v);
        const double open = std::fabs(cross(u, v)) / (lengthU * lengthV);
        return (std::min(lengthU, lengthV) - kHalfEdge * m_distance) * open < kThin * m_distance;
    }
    bool isClose(int i, int j) const {
        const bool areNeighbours = i == 0 && at(j + 1) == m_pieces.size();
        return !areNeighbours &&
               distanceBetween(m_pieces[at(i)], m_pieces[at(j)]) < kThin * m_distance;
    }

    const std::vector<Shape>& m_pieces;
    double m_distance;
    std::vector<JWEnvelop> m_boxes;
};

/// What is known of the ring by itself; interior on its left or not.
bool isPlain(const JWRing& ring, bool& interiorLeft) {
    thread_local PlainAreaTest test;
    const PlainArea known = test.test({viewOf(ring, 0)});
    interiorLeft = known.interiorLeft != 0;
    return known.plain;
}

bool hasLongSegments(const Shapes& run) {
    return std::all_of(run.list.begin(), run.list.end(),
                       [&](const Shape& piece) { return isLongForLoop(piece, run.distance); });
}

bool isClosedRun(const std::vector<Shape>& list) {
    return list.size() >= 3 && list.front().from == list.back().to;
}

}  // namespace

bool growRing(const JWRing& ring, const Shapes& run, RingSide side, Outline& result) {
    bool interiorLeft = false;
    if (!canUniteDirected || !isClosedRun(run.list) || !hasLongSegments(run) || !isAmple(run) ||
        !isPlain(ring, interiorLeft) || BoundaryWidth(run.list, run.distance).isThin()) {
        return false;
    }
    thread_local OffsetLoop loop;
    Outline sides;
    loop.take(run.list.data(), run.list.size(), run.distance, run.arcs);
    const bool outer = side == RingSide::Outer;
    loop.addSide(outer != interiorLeft, sides);
    if (outer) {
        sides = uniteWinding(std::move(sides));
    } else {
        Outline turned;
        addRing(sides.view(0), true, 0, turned);
        sides = uniteWinding(std::move(turned));
    }
    for (int i = 0; i < sides.count(); ++i) {
        const RingView made = sides.view(i);
        addRing(made, !outer, outer ? made.hole : 1 - made.hole, result);
    }
    return true;
}

}  // namespace jws::detail
