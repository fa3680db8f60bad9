// SPDX-License-Identifier: MIT
//
// CoverageSimplifier: polygons that share borders, simplified without coming apart.
//
// The boundaries are taken apart into lines that are there once, and each line is simplified by
// itself by any of the methods; its ends, where three polygons meet, stay. Polygons put together
// again from their lines have the same borders as their neighbours, bit for bit. That alone does
// not keep lines from crossing where the tolerance is large for them, nor a narrow polygon from
// becoming flat, nor an island from ending up on the wrong side of a coast. So the shortcuts that a
// method takes are checked:
//
// - A segment of the result meets others only in common end points, and two segments from there do
//   not overlap. Segments that were so already, in data that overlaps, are left alone.
// - No vertex of the result lies in what a shortcut cuts off, between itself and the points that
//   it skips. Nothing changes sides therefore.
// - A ring has an area, of the same sign as before.
//
// A shortcut that fails gets the point back that lies farthest from it, and the two halves are
// checked in turn; what still fails after some rounds gets all its points back. In the end that
// leads back to the lines as they were, so it ends. Decisions are made with exact orientations, on
// all shortcuts of a round at once, so the result does not depend on the number of threads.
//
// Cost: a round is about O(n log n) in the points that stay, and looks only around what is new.
#ifndef JW_ANALYSIS_COVERAGE_SIMPLIFIER_H
#define JW_ANALYSIS_COVERAGE_SIMPLIFIER_H

#include <atomic>
#include <vector>

#include "convert/shared_lines.h"
#include "jw_geometrysimplicify.h"

namespace jws::detail {

class CoverageSimplifier {
  public:
    /// Takes the rings of polygons apart and simplifies what they are made of.
    ///
    /// \param owners  for each ring the number of its polygon
    /// Throws as `findSharedLines`, and what a pulse throws.
    CoverageSimplifier(const RingViews& rings, const std::vector<int>& owners,
                       const JWSimplifyOptions& options);

    /// Points of ring i, closed; empty for one that could not be taken apart (a ring of one place,
    /// or of a coordinate that is not finite), which stays as it was. Any number of threads.
    std::vector<JWRawPoint> ring(std::size_t i) const;

  private:
    /// A segment of the result: the points between `from` and `to` (positions in the list of all
    /// points) are skipped.
    struct Piece {
        std::size_t from, to;
        bool isNew;  ///< since the last round
        bool isShortcut() const { return to > from + 1; }
    };
    struct Search;
    /// Whether a point is left out, stays, or stays since the last round.
    enum Kept : char { kSkipped, kKept, kAdded };

    const std::vector<JWRawPoint>& points() const { return m_shared.lines.members; }
    /// Position of the first and of the last point of a line.
    std::size_t firstOf(std::size_t line) const {
        return line == 0 ? 0 : m_shared.lines.ends[line - 1];
    }
    std::size_t lastOf(std::size_t line) const { return m_shared.lines.ends[line] - 1; }

    void simplifyLines(const JWSimplifyOptions& options);
    void keepOnly(std::size_t line, const std::vector<JWRawPoint>& left);
    void keepTriangle(std::size_t first, std::size_t last);
    void collectPieces();
    void findConflicts();
    void check(const Search& search, std::size_t piece);
    void checkNewVertex(const Search& search, const JWRawPoint& vertex);
    bool isCutOff(const Search& search, const Piece& shortcut) const;
    void blame(std::size_t piece) {
        if (m_pieces[piece].isShortcut()) m_bad[piece] = true;
    }
    bool hasBad() const;
    void checkRings();
    void refine();
    void keepFarthest(const Piece& piece);
    void appendRing(std::size_t i, std::vector<JWRawPoint>& points) const;
    double twiceRingArea(std::size_t i, std::vector<JWRawPoint>& scratch) const;

    SharedLines m_shared;
    int m_threads;
    std::vector<char> m_kept;               ///< for each point
    std::vector<double> m_ringAreas;        ///< of the rings as they were, signed, twice the area
    std::vector<Piece> m_pieces;            ///< line by line
    std::vector<std::size_t> m_firstPiece;  ///< of each line, and the number of pieces
    std::vector<std::atomic<bool>> m_bad;   ///< for each piece
    int m_round = 0;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_COVERAGE_SIMPLIFIER_H
