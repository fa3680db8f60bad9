// SPDX-License-Identifier: MIT
//
// FarthestPoint: which of the points between two points of a line is farthest from their segment,
// and Douglas and Peucker's algorithm (1973), which asks for nothing else.
//
// The answer is that of `segmentDistance`, evaluated as it stands, the earliest index on a tie, but
// few points are evaluated so. Short ranges are scanned by a formula without root and branches, and
// only the points within rounding of the largest distance are settled by `segmentDistance`. Long
// ranges are searched through a tree of rectangles along the line: a distance to a segment is
// convex, so it is largest at a corner of a rectangle, and a rectangle whose corners are nearer
// than a point already seen, or than the tolerance, holds nothing of interest. The tree takes one
// pass to build, each level from the corners of the one below.
//
// A scan costs O(range), a search about O(log n) where few points tie. Settling ties costs a step
// for each, up to an allowance of 4 million + n log n in all; beyond it, the first of the points
// that tie to rounding is taken, as exact arithmetic would.
#ifndef JW_FOUNDATION_FARTHEST_POINT_H
#define JW_FOUNDATION_FARTHEST_POINT_H

#include <cstddef>
#include <utility>
#include <vector>

#include "jw_envelop.h"

namespace jws::detail {

class FarthestPoint {
  public:
    /// What is found; index and distance 0 when no point is farther than the tolerance.
    struct Found {
        std::size_t index = 0;
        double distance = 0;
    };

    /// Takes up a line, which must outlive its searches. Scratch memory is kept between lines.
    void setLine(const JWRawPoint* points, std::size_t n);
    /// The farthest point strictly between first and last, if it is farther than `tolerance`.
    Found find(std::size_t first, std::size_t last, double tolerance);
    /// The points of the line that Douglas and Peucker keep, in order: its ends, and between two
    /// kept points the farthest one, if it is farther than `tolerance`. The line has two points at
    /// least, with finite coordinates. No recursion.
    void keep(double tolerance, std::vector<std::size_t>& kept);

  private:
    /// A rectangle around a run of points: centre and half sides as vectors.
    struct Box {
        JWRawPoint center, along, across;
    };
    struct Segment;
    /// The best of the points settled so far.
    struct Ties {
        Found best;
        std::size_t count = 0;
    };

    Found scan(const Segment& segment, std::size_t first, std::size_t last, double tolerance);
    void settle(const Segment& segment, std::size_t begin, std::size_t end, double limit,
                Ties& ties) const;
    Found search(const Segment& segment, std::size_t first, std::size_t last, double tolerance);
    void buildTree();
    std::size_t chordEnd(std::size_t begin, std::size_t size) const;
    template <class ForEach>
    Box boxAlong(const JWRawPoint& from, const JWRawPoint& to, const ForEach& forEach) const;
    double largestIn(const Segment& segment, std::size_t level, std::size_t node, std::size_t begin,
                     std::size_t end, double slack, double best) const;
    void settleIn(const Segment& segment, std::size_t level, std::size_t node, std::size_t begin,
                  std::size_t end, double limit, Ties& ties);

    const JWRawPoint* m_points = nullptr;
    std::size_t m_n = 0;
    std::size_t m_tieAllowance = 0;
    std::vector<std::pair<std::size_t, std::size_t>> m_ranges;
    std::vector<double> m_blockLargest;
    std::vector<std::vector<Box>> m_levels;  ///< level 0: runs of kLeaf points; each level halves
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_FARTHEST_POINT_H
