// SPDX-License-Identifier: MIT
#include "clip/clip_forms.h"

#include <utility>

#include "clip/geometry_clip.h"
#include "foundation/api_guard.h"

namespace jws::detail {
namespace {

/// Runs `body(cutter, team)`, which returns pieces, and hands them to `append`, which returns how
/// many they are.
template <class Body, class Append>
int clip(const char* function, const JWGeometry* target, const JWGeometry* cutter,
         const ClipForm& form, const Body& body, const Append& append) {
    if (target == nullptr || cutter == nullptr) return refused(function, "a geometry is null");
    return guarded(function, 0, [&] {
        try {
            const Team team(form.threads);
            PreparedCutter prepared(*cutter, form.search());
            auto pieces = body(prepared, team);
            if (pieces.empty()) return refused(function, "the result is empty");
            return append(std::move(pieces));
        } catch (const ClipRefused& reason) {
            return refused(function, reason.what());
        }
    });
}

void check(const JWGeometry& target, PreparedCutter& cutter, const ClipForm& form) {
    checkOperand(target, form.checkWeird);
    cutter.check(form.checkWeird);
    cutter.edges();
}

template <class Geometry>
int handOver(MarkedPieces<Geometry>&& from, std::vector<Geometry*>& pieces,
             std::vector<unsigned int>* inside) {
    pieces.reserve(pieces.size() + from.size());
    if (inside != nullptr) inside->reserve(inside->size() + from.size());
    for (MarkedPiece<Geometry>& piece : from) {
        pieces.push_back(piece.geometry.release());
        if (inside != nullptr) inside->push_back(piece.inside);
    }
    return static_cast<int>(from.size());
}

}  // namespace

int clipAny(const JWGeometry* target, const JWGeometry* cutter, std::vector<JWGeometry*>& pieces,
            std::vector<unsigned int>* inside, const ClipForm& form) {
    return clip(
        form.function, target, cutter, form,
        [&](PreparedCutter& prepared, const Team& team) {
            return clipGeometry(*target, prepared, form.checkWeird, team);
        },
        [&](MarkedPieces<JWGeometry>&& made) { return handOver(std::move(made), pieces, inside); });
}

int clipLines(const JWGeometry* lines, const JWGeometry* cutter, std::vector<JWLineString*>& pieces,
              std::vector<unsigned int>* inside, const ClipForm& form) {
    return clip(
        form.function, lines, cutter, form,
        [&](PreparedCutter& prepared, const Team& team) {
            check(*lines, prepared, form);
            return cutLines(*lines, prepared.edges(), team);
        },
        [&](MarkedPieces<JWLineString>&& made) {
            return handOver(std::move(made), pieces, inside);
        });
}

int clipPoints(const JWMultiPoint* points, const JWGeometry* area,
               std::vector<JWMultiPoint*>& pieces, std::vector<unsigned int>& inside,
               const ClipForm& form) {
    return clip(
        form.function, points, area, form,
        [&](PreparedCutter& prepared, const Team& team) {
            check(*points, prepared, form);
            return cutPoints(*points, prepared.edges(), team);
        },
        [&](MarkedPieces<JWMultiPoint>&& made) {
            return handOver(std::move(made), pieces, &inside);
        });
}

int clipAreaByLines(const JWGeometry* area, const JWGeometry* lines, std::vector<JWRing*>& rings,
                    std::vector<int>* holeFlags, const ClipForm& form) {
    return clip(
        form.function, area, lines, form,
        [&](PreparedCutter& prepared, const Team& team) {
            check(*area, prepared, form);
            return cutArea(*area, prepared.lines(), team);
        },
        [&](std::vector<Face>&& faces) {
            std::vector<std::unique_ptr<JWRing>> made;
            std::vector<int> flags;
            for (Face& face : faces) {
                for (JWRing& ring : face) {
                    flags.push_back(&ring == &face.front() ? 0 : 1);
                    made.push_back(std::make_unique<JWRing>(std::move(ring)));
                }
            }
            rings.reserve(rings.size() + made.size());
            if (holeFlags != nullptr)
                holeFlags->insert(holeFlags->end(), flags.begin(), flags.end());
            for (auto& ring : made) rings.push_back(ring.release());
            return static_cast<int>(made.size());
        });
}

}  // namespace jws::detail
