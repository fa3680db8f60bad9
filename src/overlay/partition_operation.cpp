// SPDX-License-Identifier: MIT
//
// What the features of one layer have in common, and the pieces into which they cut one another.
//
// A piece of the partition is what lies in all features of some set and in no other feature. It is
// made from the set's first feature, in order: a piece that lies in a set and in no feature before
// the set's last one is cut by the features behind that: into its common part with each of them,
// without what lies in those between, which is cut in turn by the features further behind; and into
// what lies in none of them. So every point lands in one piece, each part is a difference from a
// union taken at once, and no piece is cut by a feature that does not meet it. Pieces wait in a
// list of their own, since a thousand features may lie on top of one another.
#include <cmath>
#include <iterator>
#include <utility>

#include "overlay/area_check.h"
#include "overlay/area_union.h"
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
        m_tree.initRTreeIndex();
        for (std::size_t i = 0; i < m_features.size(); ++i) {
            m_tree.addRect(m_features[i].area.envelop(),
                           LayerSide::payloadOf(static_cast<std::int64_t>(i)));
        }
    }

    bool isEmpty() const { return m_features.empty(); }

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
        m_tree.spatialSearch(area.envelop(), hits);
        for (void* hit : hits) {
            if (!next(static_cast<std::size_t>(LayerSide::positionOf(hit)))) return;
        }
    }

  private:
    static constexpr std::size_t kScanned = 16;
    std::vector<OverlayFeature> m_features;
    JWSpatialIndex m_tree;
};

using SharedContours = std::shared_ptr<const ClippedContours>;

/// What lies in all features of a set, and in no other up to the set's last one.
struct Piece {
    Area area;
    SharedContours contours;  ///< null for the feature itself
    std::int64_t last;        ///< position of the set's last feature
    const JWFeature* second;  ///< of the set, null for the feature itself
};

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
        m_waiting.push_back({m_self.area, nullptr, -1, nullptr});
        while (!m_waiting.empty()) {
            Piece piece = std::move(m_waiting.back());
            m_waiting.pop_back();
            cut(piece);
        }
        return m_area;
    }

  private:
    /// Emits what of the piece lies in no feature further behind, and puts what it has in common
    /// with those on the list.
    void cut(Piece& piece) {
        piece.area.prepare();
        AreaUnion others(piece.area.envelop());
        bool covered = false;
        std::vector<Piece> parts;
        m_neighbours.overlapping(piece.area, [&](const OverlayFeature& other) {
            if (other.position <= piece.last) return true;
            auto part =
                std::make_shared<const ClippedContours>(intersectAreas(piece.area, other.area));
            if (part->count() == 0) return true;
            others.add(other.area);
            if (other.position > m_self.position) addPart(piece, other, std::move(part), parts);
            covered = covers(other.area, piece.area);
            return !covered;
        });
        if (!covered && (m_single || piece.second != nullptr)) emitRest(piece, others);
        m_waiting.insert(m_waiting.end(), std::make_move_iterator(parts.rbegin()),
                         std::make_move_iterator(parts.rend()));
    }

    static bool covers(const Area& cover, const Area& piece) {
        if (!cover.envelop().isContain(piece.envelop())) return false;
        AreaUnion cutter(piece.envelop());
        cutter.add(cover);
        return eraseUnion(piece, cutter).count() == 0;
    }

    /// Adds what of `part`, the common part of a piece and `other`, lies in no feature between.
    void addPart(const Piece& piece, const OverlayFeature& other, SharedContours part,
                 std::vector<Piece>& parts) const {
        Area area(part->views(), part);
        AreaUnion between(area.envelop());
        m_neighbours.overlapping(area, [&](const OverlayFeature& feature) {
            if (feature.position >= other.position) return false;
            if (feature.position > piece.last) between.add(feature.area);
            return true;
        });
        if (!between.isEmpty()) {
            part = std::make_shared<const ClippedContours>(eraseUnion(area, between));
            if (part->count() == 0) return;
            area = Area(part->views(), part);
        }
        parts.push_back({std::move(area), std::move(part), other.position,
                         piece.second != nullptr ? piece.second : other.get()});
    }

    void emitRest(const Piece& piece, AreaUnion& others) {
        if (!others.isEmpty()) {
            emit(eraseUnion(piece.area, others), piece);
        } else if (piece.contours) {
            emit(*piece.contours, piece);
        } else {
            m_area += resolvedArea(piece.area);
            m_out.emitCopy(m_self, m_self.get(), nullptr);
        }
    }

    void emit(const ClippedContours& contours, const Piece& piece) {
        m_area += areaOf(contours);
        m_out.emit(buildArea(contours, m_tolerance), m_self.get(), piece.second);
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

struct PartitionFeature {
    bool single;
    double tolerance;
    bool check;

    void operator()(const OverlayFeature& self, Surroundings& around, Emitter& out) const {
        const Neighbours neighbours(self, around);
        if (neighbours.isEmpty() && !single) return;
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
        while (const OverlayFeature* other = around.next()) {
            if (other->position > self.position) later.add(other->area);
        }
        if (later.isEmpty()) return;
        const ClippedContours inside =
            clipRings(self.area.rings(), later.rings(), JWBooleanIntersection);
        out.emit(buildArea(inside, tolerance), self.get(), nullptr);
        if (check)
            out.addMismatch(mismatchOfCut(self.area, later, areaOf(eraseUnion(self.area, later))));
    }
};

OverlayPass partitionPass(const JWOverlayOptions& options, bool single) {
    OverlayPass pass = {false, PartitionFeature{single, options.tolerance, options.checkAreas}};
    pass.texts.start = [](int group) {
        JWReport::message("group %d doing intersect step TWO...\n", group);
        JWReport::message("group %d doing erase step TWO...\n", group);
    };
    return pass;
}

}  // namespace

Passes overlapPasses(const JWOverlayOptions& options, std::int64_t) {
    OverlayPass pass = {false, OverlapOfFeature{options.tolerance, options.checkAreas}};
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
