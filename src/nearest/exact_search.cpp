// SPDX-License-Identifier: MIT
//
// The nearest features, exactly.
//
// All targets are taken apart into points and segments; runs of a few neighbouring ones are the
// items of one tree. For a source the tree hands runs out by the distance of their rectangles,
// nearest first, until that is above the distance of the last target wanted: what is left cannot be
// nearer or tie. Rectangles are compared by a bound that no rounding of a computed distance gets
// below (piece_lists.h), so the answer is that of measuring everything.
//
// An area reaches from its boundary to what lies inside of it. If a part of a source (a point, a
// line, a ring) does not touch the boundary of a target, it is inside as a whole or outside as a
// whole, and one of its vertices tells; so does a vertex of each part of a target for an area as
// the source. Such pairs are at distance 0 and are found before the search, by rectangles.
//
// Sources come in an order in which neighbours lie near each other. The runs that were nearest to
// one are measured first for the next one: their distance bounds its search from the start. What
// they give is what the search would give, so the answer does not depend on that order.
//
// Sources of many segments have a tree of their own. Cost: O(m log m) for the tree over m target
// pieces, about O(log m) for each source piece and answer.
#include "nearest/exact_search.h"

#include <algorithm>
#include <limits>
#include <mutex>

#include "foundation/vertex_lists.h"
#include "layers/geometry_check.h"
#include "nearest/exact_distance.h"

namespace jws::detail {
namespace {

/// Pieces that one item of the tree stands for, at most.
constexpr std::size_t kRunLength = 8;
/// Sources with more pieces get a tree.
constexpr std::size_t kManyPieces = 32;

bool isArea(const JWGeometry& geometry) {
    return geometry.getGeometryType() == JWGeometryPolygon ||
           geometry.getGeometryType() == JWGeometryMultiPolygon;
}

/// Calls `visit(points, n)` for the lists of vertices that are not empty.
template <class Visit>
void everyPart(const JWGeometry& geometry, const Visit& visit) {
    everyVertexList(geometry, [&](const JWRawPoint* p, std::size_t n) {
        if (n > 0) visit(p, n);
        return true;
    });
}

/// Appends the pieces of a part; a single point is one piece.
void appendPieces(const JWRawPoint* p, std::size_t n, Pieces& pieces) {
    if (n == 1) pieces.push_back({p[0], p[0]});
    appendSegments(p, static_cast<int>(n), pieces);
}

/// The best connections of one source so far, one for each target.
class BestTargets {
  public:
    BestTargets(std::size_t targets, const JWNearestOptions& options)
        : m_wanted(static_cast<std::size_t>(options.count)),
          m_most(options.maxDistance),
          m_placeOf(targets, -1) {}

    void clear() {
        for (const Entry& entry : m_entries) m_placeOf[at(entry.connection.target)] = -1;
        m_entries.clear();
        m_distances.clear();
    }

    /// Nothing beyond this distance is wanted any more.
    double limit() const {
        return m_distances.size() < m_wanted ? m_most : std::min(m_most, m_distances[m_wanted - 1]);
    }

    /// `number`, that of the target's piece and the source's, tells equal connections of a target
    /// apart: the lowest stays. `run` is where the piece is from.
    void take(int target, std::pair<int, int> number, int run, const Closest& closest) {
        if (!(closest.distance <= limit())) return;
        const Entry entry{{target, closest.distance, closest.p, closest.q}, number, run};
        int& place = m_placeOf[at(target)];
        if (place < 0) {
            place = static_cast<int>(m_entries.size());
            m_entries.push_back(entry);
        } else {
            Entry& known = m_entries[at(place)];
            const double before = known.connection.length;
            if (closest.distance > before) return;
            if (closest.distance == before) {
                if (number < known.number) known = entry;
                return;
            }
            known = entry;
            m_distances.erase(std::lower_bound(m_distances.begin(), m_distances.end(), before));
        }
        m_distances.insert(
            std::upper_bound(m_distances.begin(), m_distances.end(), closest.distance),
            closest.distance);
    }

    /// Appends the runs that the best connections come from, a few at most.
    void appendRuns(std::vector<int>& runs) const {
        constexpr std::size_t few = 16;
        for (const Entry& entry : m_entries)
            if (entry.run >= 0 && entry.connection.length <= limit() && runs.size() < few)
                runs.push_back(entry.run);
    }

    bool isAtZero(int target) const {
        const int place = m_placeOf[at(target)];
        return place >= 0 && m_entries[at(place)].connection.length == 0;
    }

    void appendTo(Connections& connections) const {
        const auto first = static_cast<std::ptrdiff_t>(connections.size());
        for (const Entry& entry : m_entries)
            if (entry.connection.length <= limit()) connections.push_back(entry.connection);
        std::sort(connections.begin() + first, connections.end(),
                  [](const Connection& a, const Connection& b) {
                      return a.length != b.length ? a.length < b.length : a.target < b.target;
                  });
    }

  private:
    struct Entry {
        Connection connection;
        std::pair<int, int> number;
        int run;  ///< -1 for none
    };
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }

    std::size_t m_wanted;
    double m_most;
    std::vector<int> m_placeOf;  ///< in `m_entries`, by target; -1 for none
    std::vector<Entry> m_entries;
    std::vector<double> m_distances;  ///< of the entries, sorted
};

class ExactSearch : public NearestMethod {
  public:
    explicit ExactSearch(const JWNearestOptions& options) : m_options(options) {}

    unsigned sourceKinds() const override { return PointKind | LineKind | AreaKind; }
    unsigned targetKinds() const override { return sourceKinds(); }
    bool takesMultiPoints() const override { return true; }

    void setTargets(const FeatureList& targets, const JWEnvelop& extent) override;
    NearestFinder finder() const override;

  private:
    /// Pieces [first, first + count) of a target.
    struct Run {
        int target;
        int first;
        int count;
    };
    struct Target {
        const JWFeature* feature;
        std::unique_ptr<const ExactArea> area;  ///< null for points and lines
    };
    /// A source, and memory that a worker uses again.
    struct Source {
        const JWGeometry* geometry = nullptr;
        Pieces pieces;
        JWEnvelop box;
        std::unique_ptr<const PieceTree> tree;
        /// Runs near the source before, which lies nearby: what they give bounds the search.
        std::vector<int> nearRuns;
    };

    void addTarget(int number, const JWFeature& feature);
    void load(const JWGeometry& geometry, Source& source) const;
    bool isLeftOut(int target, const JWFeature& source) const {
        return m_options.skipSameIdentifier &&
               m_targets[static_cast<std::size_t>(target)].feature->getFID64() == source.getFID64();
    }
    const PackedTree& targetTree() const {
        std::call_once(m_targetTreeMade, [this] { m_targetTree = PackedTree(m_rectangles); });
        return m_targetTree;
    }
    void takeEnclosing(const JWFeature& feature, const Source& source, BestTargets& best) const;
    void takeEnclosed(const JWFeature& feature, const Source& source, BestTargets& best) const;
    void takeRun(int run, const Source& source, BestTargets& best) const;

    const JWNearestOptions m_options;
    std::vector<Target> m_targets;
    bool m_hasAreas = false;
    std::vector<JWEnvelop> m_rectangles;  ///< of the targets
    mutable PackedTree m_targetTree;      ///< over them, for areas
    mutable std::once_flag m_targetTreeMade;
    Pieces m_pieces;
    std::vector<Run> m_runs;
    PackedTree m_runTree;
    BoxDistance m_bound{JWEnvelop(0, 0, 0, 0)};
};

void ExactSearch::addTarget(int number, const JWFeature& feature) {
    const JWGeometry& geometry = *feature.getGeometryPtr();
    JWEnvelop rectangle = JWEnvelop::invalid();
    everyPart(geometry, [&](const JWRawPoint* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) rectangle.inflates_to_contain(p[i]);
        const std::size_t begin = m_pieces.size();
        appendPieces(p, n, m_pieces);
        for (std::size_t first = begin; first < m_pieces.size(); first += kRunLength) {
            const std::size_t count = std::min(kRunLength, m_pieces.size() - first);
            m_runs.push_back({number, static_cast<int>(first), static_cast<int>(count)});
        }
    });
    m_rectangles.push_back(rectangle);
    m_hasAreas |= isArea(geometry);
    m_targets.push_back(
        {&feature, isArea(geometry) ? std::make_unique<const ExactArea>(geometry) : nullptr});
}

void ExactSearch::setTargets(const FeatureList& targets, const JWEnvelop& extent) {
    for (std::size_t i = 0; i < targets.size(); ++i) addTarget(static_cast<int>(i), *targets[i]);
    std::vector<JWEnvelop> boxes;
    boxes.reserve(m_runs.size());
    for (const Run& run : m_runs) {
        JWEnvelop box = boxOf(m_pieces[static_cast<std::size_t>(run.first)]);
        for (int i = 1; i < run.count; ++i)
            box.inflates_to_contain(boxOf(m_pieces[static_cast<std::size_t>(run.first + i)]));
        boxes.push_back(box);
    }
    m_runTree = PackedTree(boxes);
    m_bound = BoxDistance(extent);
}

void ExactSearch::load(const JWGeometry& geometry, Source& source) const {
    source.geometry = &geometry;
    source.pieces.clear();
    everyPart(geometry,
              [&](const JWRawPoint* p, std::size_t n) { appendPieces(p, n, source.pieces); });
    source.box = boxAround(source.pieces);
    source.tree = source.pieces.size() > kManyPieces
                      ? std::make_unique<const PieceTree>(source.pieces)
                      : nullptr;
}

/// Targets that a part of the source lies in.
void ExactSearch::takeEnclosing(const JWFeature& feature, const Source& source,
                                BestTargets& best) const {
    everyPart(*source.geometry, [&](const JWRawPoint* p, std::size_t) {
        targetTree().search([&](const JWEnvelop& box) { return box.contains(p[0]); },
                            [&](int target) {
                                const Target& candidate =
                                    m_targets[static_cast<std::size_t>(target)];
                                if (candidate.area && !isLeftOut(target, feature) &&
                                    !best.isAtZero(target) && candidate.area->contains(p[0]))
                                    best.take(target, {-1, -1}, -1, {0, p[0], p[0]});
                                return false;
                            });
    });
}

/// Targets of which a part lies in the source.
void ExactSearch::takeEnclosed(const JWFeature& feature, const Source& source,
                               BestTargets& best) const {
    const ExactArea area(*source.geometry);
    targetTree().search(
        [&](const JWEnvelop& box) { return !box.isDisjoin(source.box); },
        [&](int target) {
            if (isLeftOut(target, feature) || best.isAtZero(target)) return false;
            const JWFeature& candidate = *m_targets[static_cast<std::size_t>(target)].feature;
            everyVertexList(*candidate.getGeometryPtr(), [&](const JWRawPoint* p, std::size_t n) {
                if (n == 0 || !area.contains(p[0])) return true;
                best.take(target, {-1, -1}, -1, {0, p[0], p[0]});
                return false;
            });
            return false;
        });
}

void ExactSearch::takeRun(int run, const Source& source, BestTargets& best) const {
    const Run& pieces = m_runs[static_cast<std::size_t>(run)];
    for (int j = pieces.first; j < pieces.first + pieces.count; ++j) {
        const Piece& target = m_pieces[static_cast<std::size_t>(j)];
        if (source.tree) {
            const LastLeast least = source.tree->nearest(
                boxOf(target), best.limit(), OfEqual::First,
                [&](const Piece& piece) { return exactDistance(piece, target); });
            if (least.found()) best.take(pieces.target, {j, 0}, run, least.closest());
            continue;
        }
        for (std::size_t i = 0; i < source.pieces.size(); ++i)
            best.take(pieces.target, {j, static_cast<int>(i)}, run,
                      exactDistance(source.pieces[i], target));
    }
}

NearestFinder ExactSearch::finder() const {
    const auto best = std::make_shared<BestTargets>(m_targets.size(), m_options);
    const auto source = std::make_shared<Source>();
    return [this, best, source](const JWFeature& feature, Connections& connections) {
        const JWGeometry& geometry = *feature.getGeometryPtr();
        load(geometry, *source);
        if (source->pieces.empty()) return;
        best->clear();
        if (m_hasAreas) takeEnclosing(feature, *source, *best);
        if (isArea(geometry)) takeEnclosed(feature, *source, *best);
        const auto take = [&](int run) {
            const int target = m_runs[static_cast<std::size_t>(run)].target;
            if (!isLeftOut(target, feature) && !best->isAtZero(target))
                takeRun(run, *source, *best);
        };
        for (const int run : source->nearRuns) take(run);
        m_runTree.searchNearest([&](const JWEnvelop& box) { return m_bound(box, source->box); },
                                [&] { return best->limit(); }, take);
        source->nearRuns.clear();
        best->appendRuns(source->nearRuns);
        best->appendTo(connections);
    };
}

}  // namespace

std::unique_ptr<NearestMethod> exactSearch(const JWNearestOptions& options) {
    return std::make_unique<ExactSearch>(options);
}

}  // namespace jws::detail
