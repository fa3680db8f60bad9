// SPDX-License-Identifier: MIT
//
// What the features of one layer have in common, and the pieces into which they cut one another.
//
// A piece of the partition is what lies in all features of some set and in no other feature. It is
// made by the set's first feature, in order: what of that lies in no earlier feature is cut by the
// later ones, as many at once as the engine takes, in one arrangement; pieces that more features
// meet are cut again. So every point lands in one piece, pieces share their borders, and no piece
// is cut by a feature that its rectangle does not meet. What a piece has in common with others
// below the tolerance stays with it. Pieces wait in a list of their own, since a thousand features
// may lie on top of one another.
//
// O((n + k) log n) for the n edges and k crossings of the features around one, and O(n + k) again
// for each piece.
#include <algorithm>
#include <cmath>
#include <utility>

#include "boolean/area_union.h"
#include "overlay/area_check.h"
#include "overlay/geometry_overlay.h"
#include "overlay/layer_operations.h"

namespace jws::detail {
namespace {

/// The features around one feature, itself left out, in order; many of them in a tree.
class Neighbours {
  public:
    Neighbours(const OverlayFeature& self, Surroundings& around) {
        while (const OverlayFeature* other = around.next()) {
            if (other->position != self.position && self.area.overlaps(other->area)) {
                m_features.push_back(*other);
            }
        }
        if (m_features.size() <= kScanned) return;
        m_tree.start();
        for (std::size_t i = 0; i < m_features.size(); ++i) {
            m_tree.add(static_cast<std::int64_t>(i), m_features[i].area.envelop());
        }
    }

    bool isEmpty() const { return m_features.empty(); }
    const std::vector<OverlayFeature>& features() const { return m_features; }

    /// Calls `visit` for those whose envelopes overlap that of `area`, in order, until it returns
    /// false.
    template <class Visit>
    void overlapping(const Area& area, Visit&& visit) const {
        const auto next = [&](std::size_t i) {
            return !m_features[i].area.overlaps(area) || visit(m_features[i]);
        };
        if (m_features.size() <= kScanned) {
            for (std::size_t i = 0; i < m_features.size() && next(i); ++i) {
            }
            return;
        }
        Hits hits;
        m_tree.search(area.envelop(), hits);
        for (void* hit : hits) {
            if (!next(static_cast<std::size_t>(positionOf(hit)))) return;
        }
    }

  private:
    static constexpr std::size_t kScanned = 16;
    std::vector<OverlayFeature> m_features;
    PositionIndex m_tree;
};

using SharedContours = std::shared_ptr<const ClippedContours>;

/// What lies in all features of a set, and in no other up to a position.
struct Piece {
    Area area;
    SharedContours contours;  ///< null for the feature itself
    std::int64_t last;        ///< features up to this position have cut it
    const JWFeature* second;  ///< of the set, null for the feature itself
};

/// Tells whether a set of features stands before another, both without repetition and compared
/// member by member.
bool comesBefore(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t first = (a ^ b) & (0u - (a ^ b));  // the first member that only one has
    const std::uint32_t behind = ~(first | (first - 1));
    return (a & first) != 0 ? (b & behind) != 0 : (a & behind) == 0;
}

/// The pieces of one feature that lie in no earlier one.
class Partition {
  public:
    Partition(const OverlayFeature& self, const Neighbours& neighbours, double tolerance,
              bool single, Emitter& out)
        : m_self(self),
          m_neighbours(neighbours),
          m_tolerance(tolerance),
          m_single(single),
          m_out(out) {}

    /// Emits the pieces and returns their area.
    double run() {
        Piece whole = {m_self.area, nullptr, m_self.position, nullptr};
        whole.area.prepare();
        eraseEarlier(whole);
        if (!whole.area.isEmpty()) m_waiting.push_back(std::move(whole));
        while (!m_waiting.empty()) {
            Piece piece = std::move(m_waiting.back());
            m_waiting.pop_back();
            cut(piece);
        }
        return m_area;
    }

  private:
    static void become(Piece& piece, ClippedContours&& contours) {
        piece.contours = std::make_shared<const ClippedContours>(std::move(contours));
        piece.area = Area(piece.contours->views(), piece.contours);
    }

    static bool covers(const Area& cover, const Area& area) {
        if (!cover.envelop().isContain(area.envelop())) return false;
        AreaUnion cutter(area.envelop());
        cutter.add(cover);
        return eraseUnion(area, cutter).count() == 0;
    }

    void eraseEarlier(Piece& piece) const {
        AreaUnion earlier(piece.area.envelop());
        bool any = false, covered = false;
        m_neighbours.overlapping(m_self.area, [&](const OverlayFeature& other) {
            if (other.position > m_self.position) return false;
            any = any || intersectAreas(piece.area, other.area).count() > 0;
            earlier.add(other.area);
            covered = any && covers(other.area, piece.area);
            return !covered;
        });
        if (covered) piece.area = Area();
        if (any && !covered) become(piece, eraseUnion(piece.area, earlier));
    }

    /// Cuts the piece by the next features that may meet it: puts the parts on the list, or emits
    /// it when there are none.
    void cut(Piece& piece) {
        std::vector<const OverlayFeature*> cutters;
        m_neighbours.overlapping(piece.area, [&](const OverlayFeature& other) {
            if (other.position > piece.last) cutters.push_back(&other);
            return cutters.size() < kMostSets;
        });
        if (cutters.empty()) {
            if (m_single || piece.second != nullptr) emit(piece);
            return;
        }
        const std::int64_t last = cutters.back()->position;
        piece.area.prepare();
        std::vector<PartOfSets> parts = partitionArea(piece.area, cutters);
        if (m_tolerance > 0 && (m_single || piece.second != nullptr)) keepSmall(parts);
        if (parts.size() == 1 && parts.front().sets == 0) {  // they only touch it
            piece.last = last;
            m_waiting.push_back(std::move(piece));
            return;
        }
        std::sort(parts.begin(), parts.end(), [](const PartOfSets& a, const PartOfSets& b) {
            return comesBefore(a.sets, b.sets);
        });
        for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
            Piece next = {Area(), nullptr, last, piece.second};
            for (std::size_t i = 0; i < cutters.size() && next.second == nullptr; ++i) {
                if (part->sets >> i & 1u) next.second = cutters[i]->get();
            }
            become(next, std::move(part->contours));
            m_waiting.push_back(std::move(next));
        }
    }

    /// Leaves with the piece, outside of its cutters, what it has in common with them below the
    /// tolerance.
    void keepSmall(std::vector<PartOfSets>& parts) const {
        const auto isKept = [&](const PartOfSets& part) {
            return part.sets == 0 || !reaches(part.contours, m_tolerance);
        };
        const auto kept = std::stable_partition(
            parts.begin(), parts.end(), [&](const PartOfSets& part) { return !isKept(part); });
        if (std::all_of(kept, parts.end(), [](const PartOfSets& part) { return part.sets == 0; })) {
            return;
        }
        std::vector<RingViews> views;
        for (auto part = kept; part != parts.end(); ++part) views.push_back(part->contours.views());
        ClippedContours outside = uniteRings(views);
        parts.erase(kept, parts.end());
        parts.push_back({0, std::move(outside)});
    }

    static std::vector<PartOfSets> partitionArea(
        const Area& area, const std::vector<const OverlayFeature*>& cutters) {
        std::vector<RingSet> shortened(cutters.size());
        std::vector<RingViews> sets(cutters.size());
        for (std::size_t i = 0; i < cutters.size(); ++i) {
            cutters[i]->area.appendWithin(area.envelop(), shortened[i], sets[i]);
        }
        return partitionRings(area.rings(), sets);
    }

    void emit(const Piece& piece) {
        if (!piece.contours) {
            m_area += resolvedArea(piece.area);
            m_out.emitCopy(m_self, m_self.get(), nullptr);
            return;
        }
        m_area += areaOf(*piece.contours);
        m_out.emit(buildArea(*piece.contours, m_tolerance), m_self.get(), piece.second);
    }

    const OverlayFeature& m_self;
    const Neighbours& m_neighbours;
    double m_tolerance;
    bool m_single;
    Emitter& m_out;
    std::vector<Piece> m_waiting;
    double m_area = 0;
};

/// The area of a feature outside of its neighbours; only of the earlier ones if `earlier`.
double areaOutside(const OverlayFeature& self, const Neighbours& neighbours, bool earlier) {
    AreaUnion cutters(self.area.envelop());
    neighbours.overlapping(self.area, [&](const OverlayFeature& other) {
        if (earlier && other.position > self.position) return false;
        cutters.add(other.area);
        return true;
    });
    return cutters.isEmpty() ? resolvedArea(self.area) : areaOf(eraseUnion(self.area, cutters));
}

/// Keeps for the console a feature and those that cut it.
void noteSeed(const OverlayFeature& self, const std::vector<OverlayFeature>& cutters,
              Emitter& out) {
    if (!JWReport::messagesAreOn()) return;
    Hits positions = {payloadOf(self.position)};
    for (const OverlayFeature& cutter : cutters) positions.push_back(payloadOf(cutter.position));
    out.noteCluster(positions);
}

struct PartitionFeature {
    bool single;
    double tolerance;
    bool check;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        const Neighbours neighbours(self, around);
        if (neighbours.isEmpty() && !single) return;
        noteSeed(self, neighbours.features(), out);
        const double made = Partition(self, neighbours, tolerance, single, out).run();
        if (!check || neighbours.isEmpty()) return;
        double expected = areaOutside(self, neighbours, true);
        if (!single) expected -= areaOutside(self, neighbours, false);
        out.addMismatch(std::fabs(made - expected));
    }
};

/// What a feature has in common with the features behind it, all at once.
struct OverlapOfFeature {
    double tolerance;
    bool check;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        AreaUnion later(self.area.envelop());
        std::vector<OverlayFeature> cutters;
        while (const OverlayFeature* other = around.next()) {
            if (other->position <= self.position || !self.area.overlaps(other->area)) continue;
            later.add(other->area);
            cutters.push_back(*other);
        }
        if (cutters.empty()) return;
        noteSeed(self, cutters, out);
        const ClippedContours inside =
            clipRings(self.area.rings(), later.rings(), JWBooleanIntersection);
        out.emit(buildArea(inside, tolerance), self.get(), nullptr);
        if (check)
            out.addMismatch(mismatchOfCut(self.area, later, areaOf(eraseUnion(self.area, later))));
    }
};

OverlayPass partitionPass(const JWOverlayOptions& options, bool single) {
    OverlayPass pass = {false, PartitionFeature{single, options.tolerance, options.checkAreas}};
    pass.texts.feature = announceSeed;
    pass.texts.start = [](int group) {
        JWReport::message("group %d doing intersect step TWO...\n", group);
        JWReport::message("group %d doing erase step TWO...\n", group);
    };
    return pass;
}

}  // namespace

Passes overlapPasses(const JWOverlayOptions& options, std::int64_t) {
    OverlayPass pass = {false, OverlapOfFeature{options.tolerance, options.checkAreas}};
    pass.texts.feature = announceSeed;
    pass.texts.start = [](int group) {
        JWReport::message("group %d doing intersect step TWO...\n", group);
    };
    return {std::move(pass)};
}

Passes partitionPasses(const JWOverlayOptions& options, std::int64_t) {
    return {partitionPass(options, true)};
}

Passes overlapPiecesPasses(const JWOverlayOptions& options, std::int64_t) {
    return {partitionPass(options, false)};
}

}  // namespace jws::detail
