// SPDX-License-Identifier: MIT
//
// One walk along a line that knows, at every moment, what lies immediately to its left and to its
// right: inside of the area or outside. Both are in: the line is inside; both are out: outside;
// they differ: it runs along the boundary.
//
// The two are known at the start by the parity of edges to the west of it, and change by what is
// met: the edges that leave from a meeting point to the left toggle the left state, those to the
// right the right state. At a vertex that lies on the boundary the states are carried round it, by
// counting edges between the directions of the two segments. Touching, running along, passing
// through a vertex or through several edges that meet there are not cases of their own: they all
// are spokes around a point. All decisions are exact, so that the states at the far end are right
// whatever happened on the way.
//
// The line is cut where what a stretch is differs from what the piece so far is. Stretches that
// rounding has made too short to tell their ends apart are passed over, so that two crossings in
// the same place make no sliver.
#include "clip/line_split.h"

#include "clip/segment_meetings.h"
#include "foundation/ring_math.h"

namespace jws::detail {
namespace {

constexpr int kStride = 16;  // segments that are looked at together

/// The points of a line, and pieces of it.
class Pieces {
  public:
    Pieces(const PointSpan& line, double scale, const PieceSink& sink)
        : m_line(line), m_scale(scale), m_sink(sink) {
        m_piece.reserve(static_cast<std::size_t>(line.count));
        m_piece.push_back(line.points[0]);
    }

    int count() const { return m_line.count; }
    /// Scaled, like the edges.
    JWRawPoint vertex(int i) const {
        return {m_line.points[i].x * m_scale, m_line.points[i].y * m_scale};
    }
    void add(int vertex) { m_piece.push_back(m_line.points[vertex]); }
    /// Ends a piece at a scaled point; the next one starts there.
    void cut(const JWRawPoint& p, bool inside) {
        const JWRawPoint at(p.x / m_scale, p.y / m_scale);
        if (m_piece.back() != at) m_piece.push_back(at);
        m_sink(m_piece, inside);
        m_piece.assign(1, at);
    }
    void end(bool inside) { m_sink(m_piece, inside); }

  private:
    const PointSpan& m_line;
    double m_scale;
    const PieceSink& m_sink;
    std::vector<JWRawPoint> m_piece;
};

/// Calls `visit(i, isFar)` for the segments of a line that have a length, from vertex i to the
/// next; `isFar` when no edge comes near. Adds the vertices in between to the pieces.
template <class Visit>
void walk(Pieces& pieces, const EdgeIndex& edges, const Visit& visit) {
    for (int i = 0; i + 1 < pieces.count();) {
        const int end = std::min(i + kStride, pieces.count() - 1);
        JWEnvelop box = boxOf(pieces.vertex(i), pieces.vertex(i + 1));
        for (int k = i + 2; k <= end; ++k) box.inflates_to_contain(pieces.vertex(k));
        const bool isFar = !edges.mayReach(box);
        for (; i < end; ++i) {
            if (pieces.vertex(i) != pieces.vertex(i + 1)) visit(i, isFar);
            pieces.add(i + 1);
        }
    }
}

class AreaWalk {
  public:
    AreaWalk(Pieces& pieces, const EdgeIndex& edges, Beginning beginning)
        : m_pieces(pieces), m_edges(edges), m_meetings(edges), m_beginning(beginning) {}

    void run() {
        walk(m_pieces, m_edges, [this](int i, bool isFar) {
            const JWRawPoint a = m_pieces.vertex(i), b = m_pieces.vertex(i + 1);
            if (!isFar || !m_started) {
                segment(a, b);
            } else {
                stretch(a);
            }
            m_before = a;
        });
        m_pieces.end(m_inside);
    }

  private:
    void segment(const JWRawPoint& a, const JWRawPoint& b) {
        m_meetings.find(a, b);
        enter(a, b);
        JWRawPoint last = a;
        bool lastIsVertex = true;
        for (const Meeting& meeting : m_meetings.between()) {
            if (!m_meetings.isSamePlace(last, meeting.point)) {
                stretch(last);
                last = meeting.point;
                lastIsVertex = meeting.isVertex;
            } else if (meeting.isVertex && !lastIsVertex) {
                last = meeting.point;
                lastIsVertex = true;
            }
            m_left ^= meeting.oddLeft;
            m_right ^= meeting.oddRight;
        }
        if (!m_meetings.isSamePlace(last, b)) stretch(last);
    }

    /// Brings the states past vertex a, on the way to b.
    void enter(const JWRawPoint& a, const JWRawPoint& b) {
        if (!m_started) m_left = m_right = m_edges.isOddWestOf(a);
        if (!m_meetings.atStart().isEmpty()) {
            const Spokes::Turn turn =
                m_meetings.atStart().turn(a, m_started ? &m_before : nullptr, b);
            m_left ^= turn.oddUntil;
            m_right = m_left ^ turn.oddAlong;
        }
        m_started = true;
    }

    /// The line goes on from `from` in the present states.
    void stretch(const JWRawPoint& from) {
        if (m_isOpen && m_left != m_right && m_beginning == Beginning::LikeWhatFollows) return;
        const bool inside = m_left || m_right;
        if (!m_isOpen && inside != m_inside) m_pieces.cut(from, m_inside);
        m_inside = inside;
        m_isOpen = false;
    }

    Pieces& m_pieces;
    const EdgeIndex& m_edges;
    SegmentMeetings m_meetings;
    Beginning m_beginning;
    JWRawPoint m_before;
    bool m_started = false;
    bool m_left = false, m_right = false;
    bool m_isOpen = true;  ///< what the piece is has not been settled
    bool m_inside = true;
};

class LineWalk {
  public:
    LineWalk(Pieces& pieces, const EdgeIndex& edges)
        : m_pieces(pieces), m_edges(edges), m_meetings(edges) {}

    void run() {
        walk(m_pieces, m_edges, [this](int i, bool isFar) {
            const JWRawPoint a = m_pieces.vertex(i), b = m_pieces.vertex(i + 1);
            if (m_isDue) m_pieces.cut(a, true);
            const bool wasCut = m_isDue;
            m_isDue = false;
            if (!isFar) segment(a, b, wasCut);
            m_before = a;
            m_started = true;
        });
        m_pieces.end(true);
    }

  private:
    /// What is met in one place.
    struct Place {
        JWRawPoint point;
        Spokes::Cover cover;
        void add(const Meeting& m) {
            cover.beside |= m.beside;
            cover.backward |= m.backward;
            cover.forward |= m.forward;
        }
        bool cuts() const { return cover.beside || cover.backward != cover.forward; }
    };

    void segment(const JWRawPoint& a, const JWRawPoint& b, bool wasCut) {
        m_meetings.find(a, b);
        Place place{a, {false, false, false}};
        if (m_started && !m_meetings.atStart().isEmpty())
            place.cover = m_meetings.atStart().cover(a, m_before, b);
        m_atStart = wasCut || !m_started;
        for (const Meeting& meeting : m_meetings.between()) {
            if (!m_meetings.isSamePlace(place.point, meeting.point)) {
                leave(place);
                place = {meeting.point, {false, false, false}};
            } else if (meeting.isVertex && !(place.point == a)) {
                place.point = meeting.point;
            }
            place.add(meeting);
        }
        if (!m_meetings.isSamePlace(place.point, b) || place.point == a) {
            leave(place);
        } else {
            m_isDue = place.cuts();
        }
    }

    /// `place` lies behind; the start of the line and a vertex that was cut are not cut.
    void leave(const Place& place) {
        if (place.cuts() && !m_atStart) m_pieces.cut(place.point, true);
        m_atStart = false;
    }

    Pieces& m_pieces;
    const EdgeIndex& m_edges;
    SegmentMeetings m_meetings;
    JWRawPoint m_before;
    bool m_started = false;
    bool m_isDue = false;  ///< the line is to be cut at the next vertex
    bool m_atStart = false;
};

bool hasLength(const PointSpan& line) {
    for (int i = 1; i < line.count; ++i) {
        if (line.points[i] != line.points[0]) return true;
    }
    return false;
}

}  // namespace

bool splitByArea(const PointSpan& line, const EdgeIndex& edges, Beginning beginning,
                 const PieceSink& sink) {
    if (!hasLength(line)) return false;
    Pieces pieces(line, edges.scale(), sink);
    AreaWalk(pieces, edges, beginning).run();
    return true;
}

bool splitByLines(const PointSpan& line, const EdgeIndex& edges, const PieceSink& sink) {
    if (!hasLength(line)) return false;
    Pieces pieces(line, edges.scale(), sink);
    LineWalk(pieces, edges).run();
    return true;
}

bool isInArea(const JWRawPoint& p, const EdgeIndex& edges) {
    const JWRawPoint scaled(p.x * edges.scale(), p.y * edges.scale());
    if (!edges.envelop().contains(scaled)) return false;
    if (edges.isOddWestOf(scaled)) return true;
    Spokes spokes;
    edges.visitNear(scaled, scaled, [&](int i) {
        const JWRawPoint &a = edges.from(i), &b = edges.to(i);
        if (!pointOnSegmentExact(scaled, a, b)) return;
        if (a != scaled) spokes.add(a);
        if (b != scaled) spokes.add(b);
    });
    return spokes.hasBoundary(scaled);
}

}  // namespace jws::detail
