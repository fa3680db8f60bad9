// SPDX-License-Identifier: MIT
//
// Features and feature classes clipped. Targets are dealt out to the team; what each gives is put
// into its own slot and becomes features in the order of the targets.
#include <algorithm>
#include <cmath>
#include <utility>

#include "clip/area_clip.h"
#include "clip/geometry_clip.h"
#include "foundation/api_guard.h"
#include "foundation/position_index.h"
#include "jw_cpgeometrybasic.h"
#include "jw_feature.h"
#include "jw_geometryclip.h"
#include "layers/feature_like.h"
#include "layers/geometry_check.h"

namespace jws {

using namespace detail;

namespace {

using Pieces = MarkedPieces<JWGeometry>;

constexpr int kAlone = 1;

void addFeatures(const JWFeature& source, Pieces&& pieces, JWFeatureClass& out) {
    for (MarkedPiece<JWGeometry>& piece : pieces) {
        std::unique_ptr<JWFeature> feature = featureLike(source);
        feature->setGeometryDirectly(piece.geometry.release());
        out.addFeature(feature.release());
    }
}

std::string reasonFor(const JWFeature& feature, const char* reason) {
    return "feature " + std::to_string(feature.getFID64()) + ": " + reason;
}

/// What each feature of a class gives, in order. `piecesOf(feature)` may throw ClipRefused and
/// ClipFailure: the features pass with the reason of the last as the last error. Returns 1 when
/// there is any piece.
template <class PiecesOf>
int clipFeatures(const char* function, const JWFeatureClass& in, JWFeatureClass& out, int threads,
                 const PiecesOf& piecesOf) {
    const int count = in.getFeatureCount();
    std::vector<Pieces> pieces(static_cast<std::size_t>(count));
    std::vector<std::string> reasons(static_cast<std::size_t>(count));
    {
        const Team team(threads);
        const std::int64_t chunk = std::clamp(count / (8 * team.size()), 1, 8);
        parallelChunks(team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
            for (std::int64_t i = begin; i < end; ++i) {
                const auto slot = static_cast<std::size_t>(i);
                const JWFeature& feature = *in.getFeatureAt(static_cast<int>(i));
                if (feature.isGeometryUnread()) reasons[slot] = kUnreadGeometry;
                if (feature.isGeometryEmpty()) continue;
                attempt(reasons[slot], [&] { piecesOf(feature, pieces[slot], reasons[slot]); });
            }
            return true;
        });
    }
    int answer = 0;
    bool failed = false;
    for (int i = 0; i < count; ++i) {
        const auto slot = static_cast<std::size_t>(i);
        const JWFeature& feature = *in.getFeatureAt(i);
        if (!reasons[slot].empty()) {
            failed = true;
            JWReport::setError(JWErrorFeatureRejected, reasonFor(feature, reasons[slot].c_str()),
                               feature.getFID64());
        }
        if (pieces[slot].empty()) continue;
        addFeatures(feature, std::move(pieces[slot]), out);
        answer = 1;
    }
    out.updateEnvelop();
    return answer == 0 && !failed ? refused(function, "the result is empty") : answer;
}

int clipClassByClass(const char* name, JWFeatureClass& targets, JWFeatureClass& cutters,
                     JWFeatureClass& out, bool checkWeird, bool useRTree, int threads) {
    if (&out == &targets || &out == &cutters) return refused(name, "the result is an operand");
    return guarded(name, 0, [&] {
        out.setGeometryType(targets.getGeometryType());
        out.setSpatialReference(targets.getSpatialReference());
        const EdgeSearch search = useRTree ? EdgeSearch::Tree : EdgeSearch::AllEdges;
        const bool isMany = targets.getFeatureCount() > 1;
        std::vector<std::unique_ptr<PreparedCutter>> prepared;
        PositionIndex index;
        index.start();
        for (int i = 0; i < cutters.getFeatureCount(); ++i) {
            const JWFeature& cutter = *cutters.getFeatureAt(i);
            prepared.emplace_back();
            if (cutter.isGeometryEmpty()) continue;
            prepared.back() =
                std::make_unique<PreparedCutter>(*cutter.getGeometryPtr(), search, isMany);
            index.add(i, boxAround(*cutter.getGeometryPtr()));
        }
        return clipFeatures(
            name, targets, out, threads,
            [&](const JWFeature& target, Pieces& pieces, std::string& reason) {
                const Team alone(kAlone);
                Hits found;
                index.search(boxAround(*target.getGeometryPtr()), found);
                for (const void* hit : found) {
                    const auto i = static_cast<std::size_t>(positionOf(hit));
                    attempt(reason, [&] {
                        try {
                            Pieces some = clipGeometry(*target.getGeometryPtr(), *prepared[i],
                                                       checkWeird, alone);
                            std::move(some.begin(), some.end(), std::back_inserter(pieces));
                        } catch (const EmptyClip&) {
                        }
                    });
                }
            });
    });
}

int clipFeature(const char* name, JWFeature* target, JWFeature* cutter, JWFeatureClass& out,
                bool checkWeird, bool useRTree, int threads) {
    if (target == nullptr || cutter == nullptr) return refused(name, "a feature is null");
    if (target->isGeometryEmpty() || cutter->isGeometryEmpty())
        return refused(name, "a geometry is empty");
    return guarded(name, 0, [&] {
        const JWGeometry &geometry = *target->getGeometryPtr(), &by = *cutter->getGeometryPtr();
        if (boxAround(geometry).isDisjoin(boxAround(by)))
            return refused(name, "the features lie apart");
        try {
            const Team team(threads);
            PreparedCutter prepared(by, useRTree ? EdgeSearch::Tree : EdgeSearch::AllEdges);
            addFeatures(*target, clipGeometry(geometry, prepared, checkWeird, team), out);
            return 1;
        } catch (const ClipRefused& reason) {
            return refused(name, reason.what());
        }
    });
}

int clipClassByRectangle(const char* name, JWFeatureClass& in, JWFeatureClass& out,
                         const JWEnvelop& envelope, int threads) {
    if (&out == &in) return refused(name, "the result is the operand");
    if (!isClipRectangle(envelope)) return refused(name, "the rectangle is not valid and finite");
    return guarded(name, 0, [&] {
        out.setGeometryType(in.getGeometryType());
        out.setSpatialReference(in.getSpatialReference());
        const AreaClip clip = AreaClip::ofRectangle(envelope, AreaCut::EveryMeeting);
        return clipFeatures(name, in, out, threads,
                            [&](const JWFeature& feature, Pieces& pieces, std::string&) {
                                auto part = partInRectangle(clip, *feature.getGeometryPtr());
                                if (part) pieces.push_back({std::move(part), 1});
                            });
    });
}

}  // namespace

int JWGeometryClip::featureClipByfeature(JWFeature* target, JWFeature* cutter, JWFeatureClass& out,
                                         bool checkWeird, bool useRTree) {
    return clipFeature("featureClipByfeature", target, cutter, out, checkWeird, useRTree, kAlone);
}

int JWGeometryClip::featureClipByfeature_mp(JWFeature* target, JWFeature* cutter,
                                            JWFeatureClass& out, bool checkWeird, bool useRTree) {
    return clipFeature("featureClipByfeature_mp", target, cutter, out, checkWeird, useRTree,
                       fixedTeamSize);
}

int JWGeometryClip::featureClassClipByfeatureClass(JWFeatureClass& targets, JWFeatureClass& cutters,
                                                   JWFeatureClass& out, bool checkWeird,
                                                   bool useRTree) {
    return clipClassByClass("featureClassClipByfeatureClass", targets, cutters, out, checkWeird,
                            useRTree, kAlone);
}

int JWGeometryClip::featureClassClipByfeatureClass_mp(JWFeatureClass& targets,
                                                      JWFeatureClass& cutters, JWFeatureClass& out,
                                                      bool checkWeird, bool useRTree) {
    return clipClassByClass("featureClassClipByfeatureClass_mp", targets, cutters, out, checkWeird,
                            useRTree, fixedTeamSize);
}

int JWGeometryClip::featureClassClipByEnvelop(JWFeatureClass& in, JWFeatureClass& out,
                                              JWEnvelop& envelope) {
    return clipClassByRectangle("featureClassClipByEnvelop", in, out, envelope, kAlone);
}

int JWGeometryClip::featureClassClipByEnvelop_mp(JWFeatureClass& in, JWFeatureClass& out,
                                                 JWEnvelop& envelope) {
    return clipClassByRectangle("featureClassClipByEnvelop_mp", in, out, envelope, fixedTeamSize);
}

}  // namespace jws
