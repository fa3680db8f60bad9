// SPDX-License-Identifier: MIT
#include "buffer/ring_growth.h"

#include <algorithm>
#include <cmath>

#include "buffer/offset_loop.h"
#include "foundation/orientation.h"
#include "foundation/segment_math.h"
#include "trees/packed_tree.h"

namespace jws::detail {
namespace {

// Of the distance: a half circle's edge of 15 degrees is 0.0086 deep and its ends are 0.1306 away
// from its middle.
constexpr double kThin = 0.01;
constexpr double kHalfEdge = 0.131;
constexpr std::size_t kMostBesides = 2;  // of so many shapes, one that goes whole
constexpr std::size_t kMostInARow = 12;  // of these, neighbours: all may overlap one another
constexpr int kFew = 48;                 // segments compared without a tree

double distanceBetween(const Shape& a, const Shape& b) {
    return std::min({segmentDistance(a.from, b.from, b.to), segmentDistance(a.to, b.from, b.to),
                     segmentDistance(b.from, a.from, a.to), segmentDistance(b.to, a.from, a.to)});
}

JWEnvelop boxAround(const Shape& piece, double reach) {
    return {std::min(piece.from.x, piece.to.x) - reach, std::min(piece.from.y, piece.to.y) - reach,
            std::max(piece.from.x, piece.to.x) + reach, std::max(piece.from.y, piece.to.y) + reach};
}

bool doCross(const Shape& a, const Shape& b) {
    return orientationSign(a.from, a.to, b.from) * orientationSign(a.from, a.to, b.to) < 0 &&
           orientationSign(b.from, b.to, a.from) * orientationSign(b.from, b.to, a.to) < 0;
}

/// The segments of a ring.
class BoundaryWidth {
  public:
    BoundaryWidth(const std::vector<Shape>& pieces, double distance)
        : m_pieces(pieces), m_distance(distance) {
        m_boxes.reserve(pieces.size());
        const double reach = 0.5 * kThin * distance;
        for (const Shape& piece : pieces) m_boxes.push_back(boxAround(piece, reach));
    }

    /// Whether two segments meet or come too close together, or neighbours fold back. A ring that
    /// is not thin is simple.
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
        const Shape &a = m_pieces[at(i)], &b = m_pieces[at(j)];
        return !areNeighbours && (distanceBetween(a, b) < kThin * m_distance || doCross(a, b));
    }

    const std::vector<Shape>& m_pieces;
    double m_distance;
    std::vector<JWEnvelop> m_boxes;
};

/// Of a simple ring: by the turn at its lowest corner.
bool isInteriorLeft(const std::vector<Shape>& ring) {
    const auto isLower = [](const Shape& a, const Shape& b) {
        return a.from.y != b.from.y ? a.from.y < b.from.y : a.from.x < b.from.x;
    };
    const auto lowest = std::min_element(ring.begin(), ring.end(), isLower);
    const Shape& before = lowest == ring.begin() ? ring.back() : *(lowest - 1);
    return orientationSign(before.from, lowest->from, lowest->to) > 0;
}

/// Appends the shapes that no loop stands for, those of short segments and of their neighbours.
/// False when there are more than `most`, too many in a row, or a point among them.
bool addShapesBeside(const Shapes& run, std::size_t most, Outline& shapes) {
    const std::size_t n = run.list.size();
    const auto isShort = [&](std::size_t i) {
        return !isLongForLoop(run.list[i % n], run.distance);
    };
    JWRawPoint corners[2 * kMostCapCorners + 4];
    bool before = isShort(n - 1), here = isShort(0);
    std::size_t inARow = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const bool next = isShort(i + 1);
        const bool isBeside = before || here || next;
        inARow = isBeside ? inARow + 1 : 0;
        if (isBeside) {
            if (most-- == 0 || inARow > kMostInARow || run.list[i].isCircle()) return false;
            writeCorners(run.list[i], run.distance, run.arcs, corners);
            shapes.addPoints(corners, run.arcs.capsuleCorners());
            shapes.endRing(0);
        }
        before = here;
        here = next;
    }
    return true;
}

bool isClosedRun(const std::vector<Shape>& list) {
    return list.size() >= 3 && list.front().from == list.back().to;
}

}  // namespace

bool growRing(const Shapes& run, RingSide side, Outline& result) {
    if (!canUniteDirected || !isClosedRun(run.list) || !isAmple(run)) return false;
    const bool outer = side == RingSide::Outer;
    Outline others;
    if (!addShapesBeside(run, outer ? run.list.size() / kMostBesides : 0, others) ||
        BoundaryWidth(run.list, run.distance).isThin()) {
        return false;
    }
    thread_local OffsetLoop loop;
    loop.take(run.list.data(), run.list.size(), run.distance, run.arcs);
    const RingView far = loop.side(outer != isInteriorLeft(run.list));
    if (outer) {
        uniteWinding(far, others, result);
        return true;
    }
    Outline turned, left;
    addRing(far, true, 0, turned);
    uniteWinding(turned.view(0), {}, left);
    for (int i = 0; i < left.count(); ++i) {
        const RingView made = left.view(i);
        addRing(made, true, 1 - made.hole, result);
    }
    return true;
}

}  // namespace jws::detail
