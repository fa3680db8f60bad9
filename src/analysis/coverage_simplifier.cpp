// SPDX-License-Identifier: MIT
#include "analysis/coverage_simplifier.h"

#include <algorithm>
#include <atomic>
#include <optional>

#include "analysis/line_simplifier.h"
#include "analysis/shortcut_checks.h"
#include "foundation/orientation.h"
#include "foundation/parallel.h"
#include "foundation/pulse.h"
#include "foundation/segment_math.h"
#include "trees/packed_tree.h"

namespace jws::detail {
namespace {

constexpr int kCarefulRounds = 12;

}  // namespace

CoverageSimplifier::CoverageSimplifier(const RingViews& rings, const std::vector<int>& owners,
                                       const JWSimplifyOptions& options)
    : m_shared(findSharedLines(rings, owners, options.coverageTolerance)),
      m_threads(options.threads),
      m_kept(m_shared.lines.members.size(), kKept) {
    std::vector<JWRawPoint> scratch;
    for (std::size_t i = 0; i < m_shared.rings.count(); ++i) {
        m_ringAreas.push_back(twiceRingArea(i, scratch));
    }
    simplifyLines(options);
    for (;; ++m_round) {
        collectPieces();
        findConflicts();
        if (!hasBad()) checkRings();
        if (!hasBad()) break;
        refine();
    }
}

void CoverageSimplifier::simplifyLines(const JWSimplifyOptions& options) {
    const Team team(m_threads);
    parallelChunks(team, static_cast<std::int64_t>(m_shared.lines.count()), 64,
                   [&](std::int64_t begin, std::int64_t end) {
                       Pulse::tick();
                       LineSimplifier simplifier(options);
                       std::vector<JWRawPoint> line, left;
                       for (auto i = static_cast<std::size_t>(begin);
                            i < static_cast<std::size_t>(end); ++i) {
                           const ListView<JWRawPoint> whole = m_shared.lines[i];
                           line.assign(whole.begin(), whole.end());
                           if (simplifier.edit(line, left)) keepOnly(i, left);
                       }
                       return true;
                   });
}

/// Marks the points of a line that a method kept: they are some of its points, in order.
void CoverageSimplifier::keepOnly(std::size_t line, const std::vector<JWRawPoint>& left) {
    const std::size_t first = firstOf(line), last = lastOf(line);
    std::size_t next = 0;
    for (std::size_t i = first; i <= last; ++i) {
        const bool stays = i == last || (next + 1 < left.size() && points()[i] == left[next]);
        m_kept[i] = stays ? kKept : kSkipped;
        if (stays) ++next;
    }
    if (points()[first] == points()[last]) keepTriangle(first, last);
}

/// Sees to it that a line that is a ring keeps three corners with an area, if it has any.
void CoverageSimplifier::keepTriangle(std::size_t first, std::size_t last) {
    const std::vector<JWRawPoint>& p = points();
    std::size_t corner = 0;  // not on the line of the first point and another one kept
    std::size_t other = 0;
    for (std::size_t i = first + 1; i < last && corner == 0; ++i) {
        if (m_kept[i] == kSkipped) continue;
        if (other == 0) {
            other = i;
        } else if (orientationSign(p[first], p[other], p[i]) != 0) {
            corner = i;
        }
    }
    if (corner != 0) return;
    const auto farthest = [&](const auto& distance) {
        std::size_t best = first + 1;
        for (std::size_t i = first + 1; i < last; ++i) {
            if (distance(p[i]) > distance(p[best])) best = i;
        }
        return best;
    };
    if (other == 0) {
        other = farthest([&](const JWRawPoint& q) { return pointDistance(q, p[first]); });
        m_kept[other] = kKept;
    }
    m_kept[farthest([&](const JWRawPoint& q) { return lineDistance(q, p[first], p[other]); })] =
        kKept;
}

std::vector<JWRawPoint> CoverageSimplifier::ring(std::size_t i) const {
    std::vector<JWRawPoint> points;
    appendRing(i, points);
    if (!points.empty()) points.push_back(points.front());
    return points;
}

/// Appends the points of a ring, not closed.
void CoverageSimplifier::appendRing(std::size_t i, std::vector<JWRawPoint>& ring) const {
    for (const LineStep& step : m_shared.rings[i]) {
        const auto line = static_cast<std::size_t>(step.line);
        const std::size_t first = firstOf(line), last = lastOf(line);
        for (std::size_t k = 0; k < last - first; ++k) {  // the end is the next one's start
            const std::size_t at = step.forward ? first + k : last - k;
            if (m_kept[at] != kSkipped) ring.push_back(points()[at]);
        }
    }
}

double CoverageSimplifier::twiceRingArea(std::size_t i, std::vector<JWRawPoint>& scratch) const {
    Pulse::tick();
    scratch.clear();
    appendRing(i, scratch);
    if (scratch.empty()) return 0;
    return twiceArea({scratch.data(), static_cast<int>(scratch.size()), 0});
}

void CoverageSimplifier::collectPieces() {
    m_pieces.clear();
    m_firstPiece.clear();
    for (std::size_t line = 0; line < m_shared.lines.count(); ++line) {
        m_firstPiece.push_back(m_pieces.size());
        std::size_t from = firstOf(line);
        for (std::size_t i = from + 1; i <= lastOf(line); ++i) {
            if (m_kept[i] == kSkipped) continue;
            const bool isNew =
                m_round == 0 ? i > from + 1 : m_kept[from] == kAdded || m_kept[i] == kAdded;
            m_pieces.push_back({from, i, isNew});
            from = i;
        }
    }
    m_firstPiece.push_back(m_pieces.size());
    m_bad = std::vector<std::atomic<bool>>(m_pieces.size());
}

/// What a round looks things up in: the segments, and what the shortcuts cut off.
struct CoverageSimplifier::Search {
    PackedTree segments;
    PackedTree cutOffs;
};

void CoverageSimplifier::findConflicts() {
    std::vector<JWEnvelop> segments, cutOffs;
    segments.reserve(m_pieces.size());
    cutOffs.reserve(m_pieces.size());
    const JWRawPoint* p = points().data();
    for (const Piece& piece : m_pieces) {
        const JWRawPoint ends[2] = {p[piece.from], p[piece.to]};
        segments.push_back(boxOf(ends, ends + 2));
        cutOffs.push_back(piece.isShortcut() ? boxOf(p + piece.from, p + piece.to + 1)
                                             : JWEnvelop::invalid());
    }
    const Search search{PackedTree(segments), PackedTree(cutOffs)};
    const Team team(m_threads);
    parallelChunks(team, static_cast<std::int64_t>(m_pieces.size()), 256,
                   [&](std::int64_t begin, std::int64_t end) {
                       Pulse::tick();
                       for (std::int64_t i = begin; i < end; ++i) {
                           const auto piece = static_cast<std::size_t>(i);
                           if (m_pieces[piece].isNew) check(search, piece);
                       }
                       return true;
                   });
}

/// Looks for what a new piece is in conflict with.
void CoverageSimplifier::check(const Search& search, std::size_t piece) {
    const JWRawPoint* p = points().data();
    const Piece a = m_pieces[piece];
    const JWRawPoint ends[2] = {p[a.from], p[a.to]};
    const JWEnvelop box = boxOf(ends, ends + 2);
    search.segments.search([&](const JWEnvelop& other) { return meet(box, other); },
                           [&](int item) {
                               const auto other = static_cast<std::size_t>(item);
                               const Piece& b = m_pieces[other];
                               if (other == piece || (!a.isShortcut() && !b.isShortcut()))
                                   return false;
                               if (conflict(ends[0], ends[1], p[b.from], p[b.to])) {
                                   blame(piece);
                                   blame(other);
                               }
                               return false;
                           });
    if (a.isShortcut() && !m_bad[piece] && isCutOff(search, a)) blame(piece);
    if (m_kept[a.from] == kAdded) checkNewVertex(search, ends[0]);
}

/// A vertex of the result lies in what a shortcut cuts off.
bool CoverageSimplifier::isCutOff(const Search& search, const Piece& shortcut) const {
    const JWRawPoint* p = points().data();
    const JWEnvelop box = boxOf(p + shortcut.from, p + shortcut.to + 1);
    std::optional<CutOff> cutOff;
    const auto holds = [&](const JWRawPoint& v) {
        if (v == p[shortcut.from] || v == p[shortcut.to]) return false;
        if (v.x < box.minX || v.x > box.maxX || v.y < box.minY || v.y > box.maxY) return false;
        if (!cutOff) cutOff.emplace(p + shortcut.from, p + shortcut.to);
        return cutOff->contains(v);
    };
    return search.segments.search([&](const JWEnvelop& other) { return meet(box, other); },
                                  [&](int item) {
                                      const Piece& b = m_pieces[static_cast<std::size_t>(item)];
                                      return holds(p[b.from]) || holds(p[b.to]);
                                  });
}

/// Blames the shortcuts of former rounds that cut a new vertex off.
void CoverageSimplifier::checkNewVertex(const Search& search, const JWRawPoint& vertex) {
    const JWRawPoint* p = points().data();
    const JWEnvelop box(vertex.x, vertex.y, vertex.x, vertex.y);
    search.cutOffs.search(
        [&](const JWEnvelop& other) { return meet(box, other); },
        [&](int item) {
            const auto other = static_cast<std::size_t>(item);
            const Piece& b = m_pieces[other];
            if (b.isNew || m_bad[other] || vertex == p[b.from] || vertex == p[b.to]) return false;
            if (CutOff(p + b.from, p + b.to).contains(vertex)) blame(other);
            return false;
        });
}

bool CoverageSimplifier::hasBad() const {
    return std::find(m_bad.begin(), m_bad.end(), true) != m_bad.end();
}

void CoverageSimplifier::checkRings() {
    std::vector<JWRawPoint> scratch;
    for (std::size_t i = 0; i < m_shared.rings.count(); ++i) {
        const double before = m_ringAreas[i];
        const double after = twiceRingArea(i, scratch);
        if (before == 0 || (before < 0 ? after < 0 : after > 0)) continue;
        for (const LineStep& step : m_shared.rings[i]) {
            const auto line = static_cast<std::size_t>(step.line);
            for (std::size_t k = m_firstPiece[line]; k < m_firstPiece[line + 1]; ++k) blame(k);
        }
    }
}

void CoverageSimplifier::refine() {
    for (char& kept : m_kept) {
        if (kept == kAdded) kept = kKept;
    }
    for (std::size_t i = 0; i < m_pieces.size(); ++i) {
        if (!m_bad[i]) continue;
        const Piece& piece = m_pieces[i];
        if (m_round < kCarefulRounds) {
            keepFarthest(piece);
        } else {
            std::fill(&m_kept[piece.from + 1], &m_kept[piece.to], static_cast<char>(kAdded));
        }
    }
}

void CoverageSimplifier::keepFarthest(const Piece& piece) {
    const JWRawPoint* p = points().data();
    std::size_t best = piece.from + 1;
    double most = -1;
    for (std::size_t i = piece.from + 1; i < piece.to; ++i) {
        const double distance = segmentDistance(p[i], p[piece.from], p[piece.to]);
        if (distance > most) {
            most = distance;
            best = i;
        }
    }
    m_kept[best] = kAdded;
}

}  // namespace jws::detail
