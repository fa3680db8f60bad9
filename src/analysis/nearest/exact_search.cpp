// SPDX-License-Identifier: MIT
//
// The nearest features, exactly.
//
// All targets are taken apart into points and segments, which are the pieces of one tree. For a
// source the tree hands out what may be as near as the last target wanted, near ones first: what it
// leaves out cannot be nearer or tie, whatever the rounding (segment_tree.h), so the answer is that
// of measuring everything.
//
// An area reaches from its boundary to what lies inside of it. If a part of a source (a point, a
// line, a ring) does not touch the boundary of a target, it is inside as a whole or outside as a
// whole, and one of its vertices tells; so does a vertex of each part of a target for an area as
// the source. Such pairs are at distance 0 and are found before the search, by rectangles.
//
// Sources come in an order in which neighbours lie near each other. The pieces that were nearest to
// one are measured first for the next one: their distance bounds its search from the start. What
// they give is what the search would give, so the answer does not depend on that order.
//
// Sources of many segments have a tree of their own. Cost: O(m log m) for the tree over m target
// pieces, about O(log m) for each source piece and answer.
#include "analysis/nearest/exact_search.h"

#include <algorithm>
#include <climits>
#include <limits>
#include <mutex>

#include "analysis/nearest/exact_distance.h"
#include "foundation/vertex_lists.h"
#include "layers/geometry_check.h"
#include "trees/packed_tree.h"

namespace jws::detail {
namespace {

/// Sources with more pieces get a tree.
constexpr std::size_t kManyPieces = 32;

bool mayBeArea(const JWGeometry& geometry) {
    return geometry.getGeometryType() == JWGeometryPolygon ||
           geometry.getGeometryType() == JWGeometryMultiPolygon ||
           geometry.getGeometryType() == JWGeometryGeometryBag;
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
void appendPieces(const JWRawPoint* p, std::size_t n, Segments& pieces) {
    if (n == 1) pieces.push_back({p[0], p[0]});
    appendSegments(p, static_cast<int>(n), pieces);
}

/// The best connections of one source so far, one for each target.
class BestTargets {
  public:
    BestTargets(std::size_t targets, const JWNearestOptions& options)
        : m_wanted(static_cast<std::size_t>(options.count)),
          m_most(options.maxDistance),
          m_entryOf(targets, -1) {}

    void clear() {
        for (const Entry& entry : m_entries) m_entryOf[at(entry.connection.index)] = -1;
        m_entries.clear();
        m_distances.clear();
    }

    /// Nothing beyond this distance is wanted any more.
    double limit() const {
        return m_distances.size() < m_wanted ? m_most : std::min(m_most, m_distances[m_wanted - 1]);
    }

    /// `number`, that of the target's piece and the source's, tells equal connections of a target
    /// apart: the lowest stays. `place` is where the tree has the piece; -1 for none.
    void take(int target, std::pair<int, int> number, int place, const Closest& closest) {
        if (!(closest.distance <= limit())) return;
        const Entry entry{{closest.p, closest.q, closest.distance, target}, number, place};
        int& index = m_entryOf[at(target)];
        if (index < 0) {
            index = static_cast<int>(m_entries.size());
            m_entries.push_back(entry);
        } else {
            Entry& known = m_entries[at(index)];
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

    /// Appends the places that the best connections come from, a few at most.
    void appendPlaces(std::vector<int>& places) const {
        constexpr std::size_t few = 16;
        for (const Entry& entry : m_entries)
            if (entry.place >= 0 && entry.connection.length <= limit() && places.size() < few)
                places.push_back(entry.place);
    }

    /// The target is at distance 0 by a piece no later than this one.
    bool isAtZero(int target, int number = INT_MAX) const {
        const int index = m_entryOf[at(target)];
        return index >= 0 && m_entries[at(index)].connection.length == 0 &&
               m_entries[at(index)].number.first <= number;
    }

    void appendTo(ShortestRecords& connections) const {
        const auto first = static_cast<std::ptrdiff_t>(connections.size());
        for (const Entry& entry : m_entries)
            if (entry.connection.length <= limit()) connections.push_back(entry.connection);
        std::sort(connections.begin() + first, connections.end(),
                  [](const ShortestRecord& a, const ShortestRecord& b) {
                      return a.length != b.length ? a.length < b.length : a.index < b.index;
                  });
    }

  private:
    struct Entry {
        ShortestRecord connection;
        std::pair<int, int> number;
        int place;
    };
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }

    std::size_t m_wanted;
    double m_most;
    std::vector<int> m_entryOf;  ///< in `m_entries`, by target; -1 for none
    std::vector<Entry> m_entries;
    std::vector<double> m_distances;  ///< of the entries, sorted
};

class ExactSearch : public NearestMethod {
  public:
    explicit ExactSearch(const JWNearestOptions& options) : m_options(options) {}

    unsigned sourceKinds() const override { return AnyKind; }
    unsigned targetKinds() const override { return sourceKinds(); }
    bool takesMultiPoints() const override { return true; }
    double largestCoordinate() const override { return 1e150; }
    const char* whyNone() const override { return "nothing lies within the largest distance"; }

    void setTargets(const FeatureList& targets, const JWEnvelop& extent) override;
    NearestFinder finder() const override;

  private:
    struct Target {
        const JWFeature* feature;
        std::unique_ptr<const ExactArea> area;  ///< null for points and lines
    };
    /// A source, and memory that a worker uses again.
    struct Source {
        NearestSource of;
        Segments pieces;
        std::unique_ptr<const SegmentTree> tree;
        /// Places near the source before, which lies nearby: their distance bounds the search.
        std::vector<int> nearPlaces;
    };

    void addTarget(const JWFeature& feature, Segments& pieces);
    void load(const NearestSource& of, Source& source) const;
    bool isLeftOut(int target, const Source& source) const {
        return m_options.skipSameIdentifier &&
               m_targets[static_cast<std::size_t>(target)].feature->getFID64() ==
                   source.of.feature->getFID64();
    }
    const PackedTree& targetTree() const {
        std::call_once(m_targetTreeMade, [this] {
            std::vector<JWEnvelop> rectangles;
            rectangles.reserve(m_targets.size());
            for (const Target& target : m_targets)
                rectangles.push_back(rectangleAround(*target.feature->getGeometryPtr()));
            m_targetTree = PackedTree(rectangles);
        });
        return m_targetTree;
    }
    void takeEnclosing(const Source& source, BestTargets& best) const;
    void takeEnclosed(const Source& source, BestTargets& best) const;
    void takePiece(int place, const Source& source, BestTargets& best) const;

    const JWNearestOptions m_options;
    std::vector<Target> m_targets;
    bool m_hasAreas = false;
    mutable PackedTree m_targetTree;  ///< over the targets' rectangles, for areas
    mutable std::once_flag m_targetTreeMade;
    SegmentTree m_pieces;
    std::vector<int> m_owners;  ///< the targets of the pieces, in the order of the tree
};

void ExactSearch::addTarget(const JWFeature& feature, Segments& pieces) {
    const JWGeometry& geometry = *feature.getGeometryPtr();
    everyPart(geometry, [&](const JWRawPoint* p, std::size_t n) { appendPieces(p, n, pieces); });
    std::unique_ptr<const ExactArea> area;
    if (mayBeArea(geometry)) area = std::make_unique<const ExactArea>(geometry);
    if (area && area->isEmpty()) area = nullptr;
    m_hasAreas |= area != nullptr;
    m_targets.push_back({&feature, std::move(area)});
}

void ExactSearch::setTargets(const FeatureList& targets, const JWEnvelop&) {
    Segments pieces;
    std::vector<int> owners;
    pieces.reserve(targets.size());
    m_targets.reserve(targets.size());
    for (std::size_t i = 0; i < targets.size(); ++i) {
        addTarget(*targets[i], pieces);
        owners.resize(pieces.size(), static_cast<int>(i));
    }
    m_pieces = SegmentTree(pieces);
    m_owners.reserve(owners.size());
    for (int place = 0; place < m_pieces.size(); ++place)
        m_owners.push_back(owners[static_cast<std::size_t>(m_pieces.number(place))]);
}

void ExactSearch::load(const NearestSource& of, Source& source) const {
    source.of = of;
    source.pieces.clear();
    source.tree = nullptr;
    if (of.isPoint) return source.pieces.push_back({of.point(), of.point()});
    everyPart(of.geometry(),
              [&](const JWRawPoint* p, std::size_t n) { appendPieces(p, n, source.pieces); });
    if (source.pieces.size() > kManyPieces)
        source.tree = std::make_unique<const SegmentTree>(source.pieces);
}

/// Targets that a part of the source lies in.
void ExactSearch::takeEnclosing(const Source& source, BestTargets& best) const {
    everyPart(source.of.geometry(), [&](const JWRawPoint* p, std::size_t) {
        targetTree().search([&](const JWEnvelop& box) { return box.contains(p[0]); },
                            [&](int target) {
                                const Target& candidate =
                                    m_targets[static_cast<std::size_t>(target)];
                                if (candidate.area && !isLeftOut(target, source) &&
                                    !best.isAtZero(target) && candidate.area->contains(p[0]))
                                    best.take(target, {-1, -1}, -1, {0, p[0], p[0]});
                                return false;
                            });
    });
}

/// Targets of which a part lies in the source.
void ExactSearch::takeEnclosed(const Source& source, BestTargets& best) const {
    const ExactArea area(source.of.geometry());
    if (area.isEmpty()) return;
    targetTree().search(
        [&](const JWEnvelop& box) { return !box.isDisjoin(source.of.box); },
        [&](int target) {
            if (isLeftOut(target, source) || best.isAtZero(target)) return false;
            const JWFeature& candidate = *m_targets[static_cast<std::size_t>(target)].feature;
            everyVertexList(*candidate.getGeometryPtr(), [&](const JWRawPoint* p, std::size_t n) {
                if (n == 0 || !area.contains(p[0])) return true;
                best.take(target, {-1, -1}, -1, {0, p[0], p[0]});
                return false;
            });
            return false;
        });
}

/// Measures one piece of a target, unless the target does not count or cannot come nearer.
void ExactSearch::takePiece(int place, const Source& source, BestTargets& best) const {
    const int target = m_owners[static_cast<std::size_t>(place)];
    const int number = m_pieces.number(place);
    if (isLeftOut(target, source) || best.isAtZero(target, number)) return;
    const Segment piece = m_pieces.piece(place);
    if (source.tree) {
        const LastLeast least =
            nearestPiece(*source.tree, boxOf(piece), best.limit(), OfEqual::First,
                         [&](const Segment& from) { return exactDistance(from, piece); });
        if (least.found()) best.take(target, {number, 0}, place, least.closest());
        return;
    }
    for (std::size_t i = 0; i < source.pieces.size(); ++i)
        best.take(target, {number, static_cast<int>(i)}, place,
                  exactDistance(source.pieces[i], piece));
}

NearestFinder ExactSearch::finder() const {
    const auto best = std::make_shared<BestTargets>(m_targets.size(), m_options);
    const auto source = std::make_shared<Source>();
    return [this, best, source](const NearestSource& of, ShortestRecords& connections) {
        load(of, *source);
        if (source->pieces.empty()) return;
        best->clear();
        if (m_hasAreas) takeEnclosing(*source, *best);
        if (!of.isPoint && mayBeArea(of.geometry())) takeEnclosed(*source, *best);
        const auto limit = [&] { return best->limit(); };
        const auto take = [&](int place) { takePiece(place, *source, *best); };
        for (const int place : source->nearPlaces) take(place);
        m_pieces.search(of.box, limit, take);
        source->nearPlaces.clear();
        best->appendPlaces(source->nearPlaces);
        best->appendTo(connections);
    };
}

}  // namespace

std::unique_ptr<NearestMethod> exactSearch(const JWNearestOptions& options) {
    return std::make_unique<ExactSearch>(options);
}

}  // namespace jws::detail
