// SPDX-License-Identifier: MIT
//
// The union of the circles and capsules of a buffer.
//
// Neighbours along a line overlap almost everywhere, so that most edges of their shapes lie deep in
// other shapes: comparing them all would cost far more than the outline that is wanted. Shapes are
// therefore united in groups of neighbours (outline_union.h goes on from there).
//
// Where segments are not very short, a line that winds around a group's capsules is known at once
// (offset_loop.h); what is left is to resolve where it crosses itself. Groups of other shapes are
// the larger the more they overlap, and of these only what may be on the outline is shown to the
// engine:
//
//   1. What lies deep in another shape is no part of the outline. From each edge is taken what one
//      end of it has in another shape, again and again, neighbours first. "Deep" means by a clear
//      margin (kMargin), so that no rounding can matter.
//   2. Each stretch of outline that is left is closed by a path just below it (kBand). The shape
//      keeps a sliver along that stretch; the rest of it is left out.
//   3. The slivers are united. They contain the outline of the true union with all that lies just
//      inside it, so that every ring of the true union is a ring of theirs, corner for corner.
//      Their other rings bound places where no sliver is although the shapes cover them.
//   4. A ring of that kind lies everywhere within some shape: near the ends of slivers by about
//      kMargin, elsewhere by at least half of that times the sine of the smallest angle between
//      outline and path, 1e-5 of the distance. A ring of the true union lies within none. So one
//      look at the middle of an edge tells them apart (kInside).
//
// Long capsules, in which slivers would be thin, and distances so small that the coordinates'
// precision comes near those figures, are not treated so: shapes then go whole.
#include "buffer/piece_union.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "buffer/cut_shape.h"
#include "buffer/offset_loop.h"

namespace jws::detail {
namespace {

constexpr std::size_t kLeast = 16;  // shapes of a group: at least, and at most
constexpr std::size_t kMost = 128;
constexpr std::size_t kWorthSharing = 16;  // groups
constexpr double kSpread = 2;     // of the distance: the way along a group of more than the least
constexpr double kMargin = 1e-3;  // of the distance: how deep lies what is taken away
constexpr double kBand = 0.1;     // of the distance: how thick slivers are at corners
constexpr double kInside = 1e-6;  // of the distance: deeper lies no ring of the true union
constexpr double kLongest = 4;    // of the distance: the axis of a capsule that is cut
constexpr std::size_t kFewestInLoop = 4;  // shapes, unless the run ends
constexpr std::size_t kMostInLoop = 128;

/// A group of shapes on its way to a union. One object per thread.
class PieceGroup {
  public:
    void take(const Shapes& pieces, std::size_t begin, std::size_t end);
    Outline unite();

  private:
    void cut();
    bool isWithinShape(const RingView& ring) const;

    double m_distance = 0;
    CoverMeasure m_measure = {};
    double m_largest = 0;  ///< coordinate
    JWRawPoint m_origin;
    std::vector<CutShape> m_shapes;
    Outline m_slivers;
};

void PieceGroup::take(const Shapes& pieces, std::size_t begin, std::size_t end) {
    m_distance = pieces.distance;
    m_origin = pieces.list[begin].from;
    m_largest = 0;
    m_shapes.resize(end - begin);
    // The middle of the longest edge of either shape comes closest to the axis.
    const double halfStep = 0.5 * std::max(pieces.arcs.capStep, pieces.arcs.circleAngle(1));
    const double reach = m_distance * (std::cos(halfStep) - kMargin);
    m_measure = {reach * reach, m_distance * m_distance, kMargin * m_distance};
    for (std::size_t k = 0; k < m_shapes.size(); ++k) {
        CutShape& shape = m_shapes[k];
        shape.make(pieces.list[begin + k], m_distance, pieces.arcs, m_origin);
        for (int i = 0; i < shape.count(); ++i) {
            const JWRawPoint& p = shape.corner(i);
            m_largest = std::max({m_largest, std::fabs(p.x), std::fabs(p.y)});
        }
    }
}

/// Neighbours along the line first: of what they cover no more is looked at.
void PieceGroup::cut() {
    const double longest2 = kLongest * kLongest * m_distance * m_distance;
    const std::size_t count = m_shapes.size();
    for (std::size_t i = 0; i < count; ++i) {
        CutShape& shape = m_shapes[i];
        if (shape.length2() > longest2) continue;
        for (std::size_t step = 1; step < count && shape.isVisible(); ++step) {
            if (i + step < count) shape.coverBy(m_shapes[i + step], m_measure);
            if (i >= step) shape.coverBy(m_shapes[i - step], m_measure);
        }
    }
}

/// Whether the middle of the ring's longest edge lies within a shape.
bool PieceGroup::isWithinShape(const RingView& ring) const {
    double longest = -1;
    JWRawPoint middle(0, 0);
    for (int i = 0; i < ring.count; ++i) {
        const JWRawPoint &a = ring.points[i], &b = ring.points[i + 1 < ring.count ? i + 1 : 0];
        const JWRawPoint p(a.x - m_origin.x, a.y - m_origin.y);
        const JWRawPoint d(b.x - a.x, b.y - a.y);
        const double length2 = d.x * d.x + d.y * d.y;
        if (length2 <= longest) continue;
        longest = length2;
        middle = {p.x + 0.5 * d.x, p.y + 0.5 * d.y};
    }
    return std::any_of(m_shapes.begin(), m_shapes.end(), [&](const CutShape& shape) {
        return shape.distance2(middle) < m_measure.far2 &&
               shape.depth(middle) > kInside * m_distance;
    });
}

Outline PieceGroup::unite() {
    m_slivers.clear();
    bool whole = true;
    if (isAmple(m_distance, m_largest)) cut();
    for (const CutShape& shape : m_shapes) {
        shape.addSlivers(kBand, m_slivers);
        whole = whole && shape.isWhole();
    }
    if (m_shapes.size() == 1) return m_slivers;
    Outline united = uniteAtOnce(m_slivers);
    if (whole) return united;
    Outline result;
    for (int i = 0; i < united.count(); ++i) {
        const RingView ring = united.view(i);
        if (isWithinShape(ring)) continue;
        for (int k = 0; k < ring.count; ++k) result.addPoint(ring.points[k]);
        result.endRing(ring.hole);
    }
    return result;
}

/// Neighbouring shapes of a run, united in one go.
struct Group {
    std::size_t begin;
    std::size_t end;
    bool isLoop;  ///< one line winds around them
};

/// Cuts runs into groups: as many long segments in a row as a loop takes, of others the more the
/// shorter they are.
class Grouping {
  public:
    explicit Grouping(const Shapes& pieces)
        : m_pieces(pieces), m_canLoop(canUniteDirected && isAmple(pieces)) {}

    std::vector<Group> groups() const {
        std::vector<Group> groups;
        std::size_t begin = 0;
        for (const std::size_t runEnd : m_pieces.runEnds) {
            while (begin < runEnd) {
                const std::size_t longEnd = endOfLoop(begin, runEnd);
                const std::size_t inLoop = longEnd - begin;
                const bool isLoop = inLoop >= (longEnd == runEnd ? 2 : kFewestInLoop);
                groups.push_back({begin, isLoop ? longEnd : endOfOthers(begin, runEnd), isLoop});
                begin = groups.back().end;
            }
        }
        return groups;
    }

  private:
    std::size_t endOfLoop(std::size_t begin, std::size_t runEnd) const {
        if (!m_canLoop) return begin;
        const std::size_t most = std::min(runEnd, begin + kMostInLoop);
        std::size_t end = begin;
        while (end < most && isLongForLoop(m_pieces.list[end], m_pieces.distance)) ++end;
        return end;
    }

    std::size_t endOfOthers(std::size_t begin, std::size_t runEnd) const {
        const std::size_t most = std::min(runEnd, begin + kMost);
        const JWRawPoint& start = m_pieces.list[begin].from;
        double way = 0;
        for (std::size_t end = begin + 1; end < most; ++end) {
            const JWRawPoint& reached = m_pieces.list[end - 1].to;
            way = std::max({way, std::fabs(reached.x - start.x), std::fabs(reached.y - start.y)});
            if (end - begin >= kLeast && way > kSpread * m_pieces.distance) return end;
        }
        return most;
    }

    const Shapes& m_pieces;
    bool m_canLoop;
};

Outline uniteLoop(const Shapes& pieces, const Group& group) {
    thread_local OffsetLoop loop;
    loop.take(&pieces.list[group.begin], group.end - group.begin, pieces.distance, pieces.arcs);
    Outline united;
    uniteWinding(loop.around(), {}, united);
    return united;
}

}  // namespace

double largestCoordinate(const Shapes& pieces) {
    double largest = 0;
    for (const Shape& piece : pieces.list) {
        largest = std::max({largest, std::fabs(piece.from.x), std::fabs(piece.from.y),
                            std::fabs(piece.to.x), std::fabs(piece.to.y)});
    }
    return largest + pieces.distance;
}

bool isAmple(const Shapes& pieces) { return isAmple(pieces.distance, largestCoordinate(pieces)); }

Outline unitePieces(const Shapes& pieces, const Team& team) {
    const std::vector<Group> groups = Grouping(pieces).groups();
    std::vector<Outline> outlines(groups.size());
    parallelChunks(
        teamFor(groups.size(), kWorthSharing, team), static_cast<std::int64_t>(groups.size()), 8,
        [&](std::int64_t from, std::int64_t to) {
            thread_local PieceGroup shapes;
            for (auto i = static_cast<std::size_t>(from); i < static_cast<std::size_t>(to); ++i) {
                const Group& group = groups[i];
                if (group.isLoop) {
                    outlines[i] = uniteLoop(pieces, group);
                } else {
                    shapes.take(pieces, group.begin, group.end);
                    outlines[i] = shapes.unite();
                }
            }
            return true;
        });
    return uniteOutlines(std::move(outlines), team);
}

}  // namespace jws::detail
