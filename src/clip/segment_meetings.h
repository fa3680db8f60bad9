// SPDX-License-Identifier: MIT
//
// Where one segment of a line meets the edges that cut it, and which edges leave from its start.
#ifndef JW_CLIP_SEGMENT_MEETINGS_H
#define JW_CLIP_SEGMENT_MEETINGS_H

#include <utility>
#include <vector>

#include "clip/edge_index.h"

namespace jws::detail {

/// A place between the ends of a segment where edges meet it, and what is there.
struct Meeting {
    JWRawPoint point;
    bool isVertex;  ///< an end of an edge, with its own bits; otherwise a rounded crossing
    // The edges as spokes around the point: parities of those on the two sides, whether there is
    // one beside the segment, and whether one lies on it, towards its start or its end.
    bool oddLeft, oddRight;
    bool beside, backward, forward;
};

/// The edges that leave from a vertex of a line, as the directions in which they do.
class Spokes {
  public:
    void clear() { m_ends.clear(); }
    bool isEmpty() const { return m_ends.empty(); }
    /// Adds an edge by its other end, which differs from the vertex.
    void add(const JWRawPoint& end) { m_ends.push_back(end); }

    /// Clockwise from just beyond the direction of `before` to just before that of `after`, and
    /// across that: the parities of the spokes. `before` null stands for west, the direction just
    /// above it, which is where `EdgeIndex::isOddWestOf` looks.
    struct Turn {
        bool oddUntil;
        bool oddAlong;
    };
    Turn turn(const JWRawPoint& vertex, const JWRawPoint* before, const JWRawPoint& after) const;

    /// Which of the two directions of the line the spokes lie on, and whether any is elsewhere.
    struct Cover {
        bool beside, backward, forward;
    };
    Cover cover(const JWRawPoint& vertex, const JWRawPoint& before, const JWRawPoint& after) const;

    /// Tells whether an odd number of spokes lies on one direction, so that the states on its two
    /// sides differ. Sorts the spokes.
    bool hasBoundary(const JWRawPoint& vertex);

  private:
    std::vector<JWRawPoint> m_ends;
};

/// What meets a segment.
struct Meetings {
    std::vector<Meeting> between;  ///< its ends, in order along it
    Spokes atStart;
};

class SegmentMeetings {
  public:
    explicit SegmentMeetings(const EdgeIndex& edges) : m_edges(edges) {}

    /// Finds what meets the segment ab, of length above 0: between its ends, in order along it, and
    /// at a. Edges at b belong to the next segment.
    void find(const JWRawPoint& a, const JWRawPoint& b);
    /// Takes what was found before; `take` hands it out.
    void find(const JWRawPoint& a, const JWRawPoint& b, Meetings&& found);
    bool isEmpty() const { return m_between.empty() && m_atStart.isEmpty(); }
    Meetings take() { return {std::move(m_between), std::move(m_atStart)}; }

    const std::vector<Meeting>& between() const { return m_between; }
    const Spokes& atStart() const { return m_atStart; }
    /// Tells whether rounding cannot tell two places on the segment apart: within a few units in
    /// the last place of the coordinates there.
    bool isSamePlace(const JWRawPoint& p, const JWRawPoint& q) const {
        return std::fabs(p.x - q.x) <= m_nearX && std::fabs(p.y - q.y) <= m_nearY;
    }

  private:
    void start(const JWRawPoint& a, const JWRawPoint& b);
    void meet(const JWRawPoint& p, const JWRawPoint& q);
    void meetOnLine(const JWRawPoint& p, const JWRawPoint& q);
    void touch(const JWRawPoint& p, const JWRawPoint& other, int side);
    void cross(const JWRawPoint& p, const JWRawPoint& q);
    bool isWithin(const JWRawPoint& p) const { return m_box.contains(p); }
    bool comesBefore(const JWRawPoint& p, const JWRawPoint& q) const;

    const EdgeIndex& m_edges;
    JWRawPoint m_a, m_b;
    JWEnvelop m_box;
    double m_nearX = 0, m_nearY = 0;
    std::vector<Meeting> m_between;
    Spokes m_atStart;
};

}  // namespace jws::detail

#endif  // JW_CLIP_SEGMENT_MEETINGS_H
