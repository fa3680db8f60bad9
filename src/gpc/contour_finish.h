// SPDX-License-Identifier: MIT
#ifndef JW_GPC_CONTOUR_FINISH_H
#define JW_GPC_CONTOUR_FINISH_H

#include <cstddef>
#include <vector>

#include "gpc/grid_point.h"

namespace jws::detail {

/// Turns the directed boundary edges of an area, interior on their left, into the contours that
/// the clipping interface promises. Keeps its working memory between runs; one object per thread.
class ContourFinisher {
  public:
    /// A contour: the corners `corner(first)` to `corner(first + count - 1)`.
    struct Contour {
        int first;
        int count;
        bool hole;
        Wide area;  ///< twice the area, absolute
    };

    void clear() { edges_.clear(); }
    /// Adds an edge. Edges must meet at end points only and leave every place as often as they
    /// arrive there.
    /// \param source  two numbers; edges that share one, not negative, are parts of one input edge
    void addEdge(const GridPoint& from, const GridPoint& to, const int source[2]) {
        edges_.push_back({from, to, {source[0], source[1]}});
    }
    void finish();

    const std::vector<Contour>& contours() const { return contours_; }
    const GridPoint& corner(int i) const { return edges_[corners_[i]].from; }

  private:
    // Everything below is numbered by edge; an edge stands for its start, too.
    struct Edge {
        GridPoint from;
        GridPoint to;
        int source[2];
    };
    struct Spoke {
        GridPoint direction;
        int edge;
        bool incoming;
    };

    void linkEdges();
    void linkPlace(int from, int to);
    void traceLoops();
    void emitLoop(std::size_t from);
    void startAtLowest(const Contour& contour);
    void dropInnerPoints(Contour& contour);
    void rotateToUnshared(Contour& contour);
    bool isShared(int corner) const;
    bool continues(int edge, int next) const;

    std::vector<Edge> edges_;
    std::vector<int> byFrom_;
    std::vector<int> byTo_;
    std::vector<int> next_;
    std::vector<int> place_;   // number of the place where the edge starts if others do, or -1
    std::vector<int> visits_;  // contours through each such place
    std::vector<int> onPath_;  // position of each such place on the path being traced, or -1
    std::vector<int> path_;
    std::vector<char> done_;
    std::vector<Spoke> spokes_;
    std::vector<int> open_;
    std::vector<int> corners_;
    std::vector<Contour> contours_;
};

}  // namespace jws::detail

#endif  // JW_GPC_CONTOUR_FINISH_H
