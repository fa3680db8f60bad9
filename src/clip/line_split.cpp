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
// The line is cut where what a stretch is differs from what the piece so far is and, where that is
// asked for, wherever else it meets the boundary without running along it before and after.
// Stretches that rounding has made too short to tell their ends apart are passed over, so that two
// crossings in the same place make no sliver.
//
// What meets a segment depends on nothing but the segment: for long lines the team finds that out
// beforehand, a batch at a time, and the walk is the same.
#include "clip/line_split.h"

#include <algorithm>
#include <cstdint>

#include "clip/segment_meetings.h"
#include "foundation/ring_math.h"

namespace jws::detail {
namespace {

constexpr int kStride = 16;          // segments that are looked at together
constexpr int kWorthSharing = 2048;  // segments
constexpr int kBatch = 1 << 16;      // segments that the team looks at before the walk goes on

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

/// Whether no edge comes near the segments from vertex i to vertex `end`.
bool areFar(const Pieces& pieces, const EdgeIndex& edges, int i, int end) {
    JWEnvelop box = boxOf(pieces.vertex(i), pieces.vertex(i + 1));
    for (int k = i + 2; k <= end; ++k) box.inflates_to_contain(pieces.vertex(k));
    return !edges.mayReach(box);
}

/// A batch of segments, from vertex `first` to vertex `end`, looked at by the team.
class Batch {
  public:
    Batch(const Pieces& pieces, const EdgeIndex& edges, const Team& team, int first, int end)
        : m_first(first) {
        const int strides = (end - first + kStride - 1) / kStride;
        m_isFar.resize(at(strides));
        m_found.resize(at((strides + kStrides - 1) / kStrides));
        parallelChunks(team, strides, kStrides, [&](std::int64_t from, std::int64_t to) {
            SegmentMeetings meetings(edges);
            std::vector<Found>& found = m_found[at(static_cast<int>(from) / kStrides)];
            for (auto stride = static_cast<int>(from); stride < static_cast<int>(to); ++stride) {
                const int i = first + stride * kStride, next = std::min(i + kStride, end);
                m_isFar[at(stride)] = areFar(pieces, edges, i, next);
                for (int k = i; k < next && !m_isFar[at(stride)]; ++k) {
                    if (pieces.vertex(k) == pieces.vertex(k + 1)) continue;
                    meetings.find(pieces.vertex(k), pieces.vertex(k + 1));
                    if (!meetings.isEmpty()) found.push_back({k, meetings.take()});
                }
            }
            return true;
        });
    }
    bool isFar(int i) const { return m_isFar[at((i - m_first) / kStride)] != 0; }
    /// What meets a segment behind those asked for before.
    Meetings take(int i) {
        const std::size_t chunk = at((i - m_first) / (kStride * kStrides));
        if (chunk != m_chunk) m_next = 0;
        m_chunk = chunk;
        std::vector<Found>& found = m_found[chunk];
        while (m_next < found.size() && found[m_next].segment < i) ++m_next;
        if (m_next == found.size() || found[m_next].segment != i) return {};
        return std::move(found[m_next].meetings);
    }

  private:
    static constexpr int kStrides = 16;  // that a worker takes at a time
    struct Found {
        int segment;
        Meetings meetings;
    };
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }

    int m_first;
    std::vector<std::vector<Found>> m_found;  ///< by chunks of strides
    std::vector<char> m_isFar;
    std::size_t m_chunk = 0;
    std::size_t m_next = 0;
};

/// Calls `visit(i, meetings)` for the segments of a line that have a length, from vertex i to the
/// next; `meetings` are null when no edge comes near. Adds the vertices in between to the pieces.
template <class Visit>
void walk(Pieces& pieces, const EdgeIndex& edges, const Team& team, const Visit& visit) {
    SegmentMeetings meetings(edges);
    const auto segment = [&](int i, bool isFar, const auto& find) {
        if (pieces.vertex(i) != pieces.vertex(i + 1)) {
            if (!isFar) find(i);
            visit(i, isFar ? nullptr : &meetings);
        }
        pieces.add(i + 1);
    };
    const int last = pieces.count() - 1;
    const bool shared = team.size() > 1 && last >= kWorthSharing;
    for (int i = 0; i < last;) {
        const int end = std::min(i + (shared ? kBatch : kStride), last);
        if (shared) {
            Batch batch(pieces, edges, team, i, end);
            for (; i < end; ++i) {
                segment(i, batch.isFar(i), [&](int k) {
                    meetings.find(pieces.vertex(k), pieces.vertex(k + 1), batch.take(k));
                });
            }
        } else {
            const bool isFar = areFar(pieces, edges, i, end);
            for (; i < end; ++i) {
                segment(i, isFar,
                        [&](int k) { meetings.find(pieces.vertex(k), pieces.vertex(k + 1)); });
            }
        }
    }
}

/// The edges that meet the line in one place.
struct Touch {
    Spokes::Cover cover = {false, false, false};

    void add(const Meeting& m) { add({m.beside, m.backward, m.forward}); }
    void add(const Spokes::Cover& more) {
        cover.beside |= more.beside;
        cover.backward |= more.backward;
        cover.forward |= more.forward;
    }
    /// There are edges, and not just one that the line runs along.
    bool cuts() const { return cover.beside || cover.backward != cover.forward; }
};

class AreaWalk {
  public:
    AreaWalk(Pieces& pieces, const EdgeIndex& edges, AreaCut cut)
        : m_pieces(pieces), m_edges(edges), m_cut(cut) {}

    void run(const Team& team) {
        walk(m_pieces, m_edges, team, [this](int i, const SegmentMeetings* meetings) {
            const JWRawPoint a = m_pieces.vertex(i), b = m_pieces.vertex(i + 1);
            if (!m_started) m_left = m_right = m_edges.isOddWestOf(a);
            if (meetings != nullptr) {
                segment(a, b, *meetings);
            } else {
                stretch(a);
            }
            m_started = true;
            m_before = a;
        });
        m_pieces.end(m_inside);
    }

  private:
    void segment(const JWRawPoint& a, const JWRawPoint& b, const SegmentMeetings& meetings) {
        if (!meetings.atStart().isEmpty()) enter(a, b, meetings.atStart());
        JWRawPoint last = a;
        bool lastIsVertex = true;
        for (const Meeting& meeting : meetings.between()) {
            if (!meetings.isSamePlace(last, meeting.point)) {
                stretch(last);
                last = meeting.point;
                lastIsVertex = meeting.isVertex;
            } else if (meeting.isVertex && !lastIsVertex) {
                last = meeting.point;
                lastIsVertex = true;
            }
            m_left ^= meeting.oddLeft;
            m_right ^= meeting.oddRight;
            m_here.add(meeting);
        }
        if (!meetings.isSamePlace(last, b)) stretch(last);
    }

    /// Brings the states past vertex a, on the way to b.
    void enter(const JWRawPoint& a, const JWRawPoint& b, const Spokes& spokes) {
        const Spokes::Turn turn = spokes.turn(a, m_started ? &m_before : nullptr, b);
        m_left ^= turn.oddUntil;
        m_right = m_left ^ turn.oddAlong;
        if (m_started) m_here.add(spokes.cover(a, m_before, b));
    }

    /// The line goes on from `from` in the present states.
    void stretch(const JWRawPoint& from) {
        const bool isAlong = m_left != m_right, inside = m_left || m_right;
        const bool meets = m_here.cuts() && !(m_wasAlong && isAlong);
        m_here = Touch();
        m_wasAlong = isAlong;
        const bool everywhere = m_cut == AreaCut::EveryMeeting;
        if (m_isOpen && isAlong && everywhere) {
            m_beganAlong = true;
            return;
        }
        if (m_isOpen ? m_beganAlong : inside != m_inside || (everywhere && meets))
            m_pieces.cut(from, m_isOpen ? inside : m_inside);
        m_inside = inside;
        m_isOpen = false;
    }

    Pieces& m_pieces;
    const EdgeIndex& m_edges;
    AreaCut m_cut;
    JWRawPoint m_before;
    Touch m_here;  ///< what the line has met since it last went on
    bool m_started = false;
    bool m_left = false, m_right = false;
    bool m_wasAlong = false;
    bool m_isOpen = true;  ///< what the piece is has not been settled
    bool m_beganAlong = false;
    bool m_inside = true;
};

class LineWalk {
  public:
    LineWalk(Pieces& pieces, const EdgeIndex& edges) : m_pieces(pieces), m_edges(edges) {}

    void run(const Team& team) {
        walk(m_pieces, m_edges, team, [this](int i, const SegmentMeetings* meetings) {
            const JWRawPoint a = m_pieces.vertex(i), b = m_pieces.vertex(i + 1);
            if (m_isDue) m_pieces.cut(a, true);
            const bool wasCut = m_isDue;
            m_isDue = false;
            if (meetings != nullptr) segment(a, b, wasCut, *meetings);
            m_before = a;
            m_started = true;
        });
        m_pieces.end(true);
    }

  private:
    struct Place : Touch {
        JWRawPoint point;
        explicit Place(const JWRawPoint& p) : point(p) {}
    };

    void segment(const JWRawPoint& a, const JWRawPoint& b, bool wasCut,
                 const SegmentMeetings& meetings) {
        Place place(a);
        if (m_started && !meetings.atStart().isEmpty())
            place.cover = meetings.atStart().cover(a, m_before, b);
        m_atStart = wasCut || !m_started;
        for (const Meeting& meeting : meetings.between()) {
            if (!meetings.isSamePlace(place.point, meeting.point)) {
                leave(place);
                place = Place(meeting.point);
            } else if (meeting.isVertex && !(place.point == a)) {
                place.point = meeting.point;
            }
            place.add(meeting);
        }
        if (!meetings.isSamePlace(place.point, b) || place.point == a) {
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

bool splitByArea(const PointSpan& line, const EdgeIndex& edges, AreaCut cut, const Team& team,
                 const PieceSink& sink) {
    if (!hasLength(line)) return false;
    Pieces pieces(line, edges.scale(), sink);
    AreaWalk(pieces, edges, cut).run(team);
    return true;
}

bool splitByLines(const PointSpan& line, const EdgeIndex& edges, const Team& team,
                  const PieceSink& sink) {
    if (!hasLength(line)) return false;
    Pieces pieces(line, edges.scale(), sink);
    LineWalk(pieces, edges).run(team);
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
