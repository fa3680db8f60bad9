// SPDX-License-Identifier: MIT
//
// The established search: the nearest among the targets whose rectangles meet the first square
// around a source that meets any.
//
// The square may hold a good part of all targets, and so they are not all measured. The tree hands
// them out by the distance of their rectangles; once that is above the least distance so far, no
// other can be nearer or tie. The bound stays below every distance that is computed, so the answer
// is that of measuring all of them.
#include "analysis/nearest/square_search.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

#include "analysis/nearest/square_growth.h"
#include "analysis/nearest/stated_target.h"
#include "foundation/vertex_lists.h"
#include "layers/geometry_check.h"

namespace jws::detail {
namespace {

struct Row {
    ShortestOperation operation;
    unsigned sourceKind;
    TargetKind target;
    double divisor;
};

constexpr Row kRows[] = {
    {{"shortestPointsToPoints", "FPointFid", "TPointFid"}, PointKind, TargetKind::Point, 16},
    {{"shortestPointsToLines", "PointFid", "LineFid"}, PointKind, TargetKind::Lines, 16},
    {{"shortestPointsToRings", "RingFid", "PointFid"}, PointKind, TargetKind::Rings, 8},
    {{"shortestPointsToPolygons", "PolygonFid", "PointFid"}, PointKind, TargetKind::Areas, 16},
    {{"shortestLinesToPoints", "LineFid", "PointFid"}, LineKind, TargetKind::Point, 16},
    {{"shortestLinesToLines", "FLineFid", "TLineFid"}, LineKind, TargetKind::Lines, 16},
    {{"shortestLinesToRings", "LinesFid", "RingFid"}, LineKind, TargetKind::Rings, 32},
    {{"shortestLinesToPolygons", "LinesFid", "PolygonFid"}, LineKind, TargetKind::Areas, 32},
};

const Row* findRow(enumJWShortestOperation operation) {
    const auto i = static_cast<std::size_t>(operation);
    return i < std::size(kRows) ? kRows + i : nullptr;
}

class SquareSearch : public NearestMethod {
  public:
    explicit SquareSearch(const Row& row) : m_row(row) {}

    unsigned sourceKinds() const override { return m_row.sourceKind; }
    unsigned targetKinds() const override {
        if (m_row.target == TargetKind::Point) return PointKind;
        return m_row.target == TargetKind::Lines ? LineKind : AreaKind;
    }
    bool takesMultiPoints() const override { return false; }
    double largestCoordinate() const override { return std::numeric_limits<double>::infinity(); }
    const char* whyNone() const override {
        return "no square around them meets anything; the exact search would find the nearest";
    }

    void setTargets(const FeatureList& targets, const JWEnvelop& extent) override {
        m_targets.reserve(targets.size());
        for (const auto& feature : targets) {
            const JWGeometry& geometry = *feature->getGeometryPtr();
            m_rectangles.push_back(rectangleAround(geometry));
            m_targets.emplace_back(m_row.target, geometry, m_rectangles.back());
        }
        m_tree = PackedTree(m_rectangles);
        m_bound = BoxDistance(extent);
        m_growth.emplace(m_rectangles, m_tree, extent, m_row.divisor,
                         m_row.sourceKind == PointKind);
    }

    NearestFinder finder() const override {
        return [this, source = StatedSource(), hint = -1](
                   const NearestSource& of, ShortestRecords& vecShortestRecord) mutable {
            const auto findForPart = [&](const JWRawPoint* p, std::size_t n) {
                if (load(p, n, source)) find(source, vecShortestRecord, hint);
                return true;
            };
            const JWRawPoint point = of.point();
            of.isPoint ? findForPart(&point, 1) : everyVertexList(of.geometry(), findForPart);
        };
    }

  private:
    bool load(const JWRawPoint* points, std::size_t n, StatedSource& source) const;
    void find(const StatedSource& source, ShortestRecords& vecShortestRecord, int& hint) const;

    const Row& m_row;
    std::vector<StatedTarget> m_targets;
    std::vector<JWEnvelop> m_rectangles;
    PackedTree m_tree;
    BoxDistance m_bound{JWEnvelop(0, 0, 0, 0)};
    std::optional<SquareGrowth> m_growth;
};

/// Puts a point or a line into memory that a worker uses again; false for one without segments.
bool SquareSearch::load(const JWRawPoint* points, std::size_t n, StatedSource& source) const {
    source.isPoint = m_row.sourceKind == PointKind;
    source.pieces.clear();
    if (n == 1 && (source.isPoint || m_row.target == TargetKind::Point))
        source.pieces.push_back({points[0], points[0]});
    appendSegments(points, static_cast<int>(n), source.pieces);
    source.box = boxAround(source.pieces);
    return !source.pieces.empty();
}

/// Appends the records of a point or of one line, by target. `hint` is a target of the source
/// before, which lies nearby, or -1: measured first it bounds the search.
void SquareSearch::find(const StatedSource& source, ShortestRecords& vecShortestRecord,
                        int& hint) const {
    const SquareStart start =
        source.isPoint ? m_growth->startAt(source.pieces[0].a) : m_growth->startAt(source.box);
    JWEnvelop square;
    if (!m_growth->firstSquare(start, square)) return;
    const auto first = static_cast<std::ptrdiff_t>(vecShortestRecord.size());
    double least = std::numeric_limits<double>::max();
    const auto isKnown = [&](int i) {
        return std::any_of(vecShortestRecord.begin() + first, vecShortestRecord.end(),
                           [&](const ShortestRecord& known) { return known.index == i; });
    };
    const auto take = [&](int i) {
        const auto target = static_cast<std::size_t>(i);
        if (m_rectangles[target].isDisjoin(square)) return;
        const FirstLeast found = m_targets[target].measure(source, least);
        if (!found.found() || found.least() > least || isKnown(i)) return;
        if (found.least() < least)
            vecShortestRecord.erase(vecShortestRecord.begin() + first, vecShortestRecord.end());
        least = found.least();
        vecShortestRecord.push_back({found.closest().p, found.closest().q, least, i});
    };
    if (hint >= 0) take(hint);
    m_tree.searchNearest([&](const JWEnvelop& box) { return m_bound(box, source.box); },
                         [&] { return least; }, take);
    if (least < std::numeric_limits<double>::max()) hint = vecShortestRecord.back().index;
    std::sort(vecShortestRecord.begin() + first, vecShortestRecord.end(),
              [](const ShortestRecord& a, const ShortestRecord& b) { return a.index < b.index; });
}

}  // namespace

const ShortestOperation* findShortestOperation(enumJWShortestOperation operation) {
    const Row* row = findRow(operation);
    return row != nullptr ? &row->operation : nullptr;
}

std::unique_ptr<NearestMethod> squareSearch(enumJWShortestOperation operation) {
    return std::make_unique<SquareSearch>(*findRow(operation));
}

}  // namespace jws::detail
