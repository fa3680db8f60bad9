// SPDX-License-Identifier: MIT
//
// Layers clipped. The cutters are united first: what lies in two of them is in the result once, and
// their common borders cut nothing. The union is prepared once and then asked by every worker; the
// course over the layer is the driver's of all operations on one layer.
#include <algorithm>
#include <utility>

#include "boolean/area_union.h"
#include "clip/area_clip.h"
#include "clip/geometry_clip.h"
#include "jw_feature.h"
#include "jw_geometryclip.h"
#include "layers/feature_like.h"
#include "layers/geometry_check.h"
#include "layers/layer_checks.h"
#include "layers/layer_map.h"

namespace jws {

using namespace detail;

namespace {

/// A geometry as it is, the members of a multi-geometry one by one.
void addMembers(const JWGeometry& geometry, MapResults& made) {
    const auto* collection = dynamic_cast<const JWGeometryCollection*>(&geometry);
    if (collection == nullptr) return made.add(std::unique_ptr<JWGeometry>(geometry.clone()));
    for (int i = 0; i < collection->getGeometryCount(); ++i) {
        made.add(std::unique_ptr<JWGeometry>(collection->getGeometryPtrAt(i)->clone()));
    }
}

/// A line may come in several pieces, an area in several parts.
enumJWWKBGeometryType resultType(enumJWWKBGeometryType input) {
    switch (input) {
        case JWWKBLineString:
            return JWWKBMultiLineString;
        case JWWKBPolygon:
            return JWWKBMultiPolygon;
        default:
            return input;
    }
}

/// Each piece of a multi-type is a feature of its own.
enumJWWKBGeometryType pieceType(enumJWWKBGeometryType input) {
    switch (input) {
        case JWWKBMultiLineString:
            return JWWKBLineString;
        case JWWKBMultiPolygon:
            return JWWKBPolygon;
        default:
            return input;
    }
}

[[noreturn]] void fail(enumJWErrorKind kind, const std::string& text) {
    JWReport::setError(kind, text);
    throw LayerFailure();
}

/// Has the work on cutters stopped when the progress callback asks for it.
Pulse pulseOf(FeatureInput& cutters, JWLayerReport& report) {
    return Pulse([&cutters, &report] {
        if (JWReport::progress(report.readB, std::max(report.readB, cutters.count()))) return;
        report.cancelled = true;
        fail(JWErrorCancelled, "the run was stopped; nothing was written");
    });
}

/// Calls `take(feature)` for the cutters of these kinds; others are rejected.
template <class Take>
void readCutters(FeatureInput& cutters, unsigned kinds, JWLayerReport& report, const Take& take) {
    for (std::int64_t i = 0;; ++i) {
        Pulse::tick();
        const std::shared_ptr<const JWFeature> feature = cutters.next(i);
        if (!feature) break;
        ++report.readB;
        const GeometryCheck check = checkGeometry(*feature, kinds);
        if (check == GeometryCheck::Empty) ++report.emptyB;
        const std::string reason = reasonOf(check, *feature, kinds);
        if (!reason.empty()) {
            report.rejected.push_back(
                {cutters.source(), cutters.name(), feature->getFID64(), reason});
        }
        if (check == GeometryCheck::Usable) take(feature);
    }
}

/// The union of the areas of a layer.
AreaClip uniteCutters(FeatureInput& cutters, JWLayerReport& report) {
    const Pulse pulse = pulseOf(cutters, report);
    AreaUnion all(everywhere());
    try {
        readCutters(cutters, AreaKind, report,
                    [&](const std::shared_ptr<const JWFeature>& feature) {
                        report.areaB += areaOf(*feature->getGeometryPtr());
                        all.add(Area(*feature->getGeometryPtr(), feature));
                    });
        const auto outline = std::make_shared<const ClippedContours>(all.contours());
        return AreaClip(outline->views(), outline, AreaCut::InsideOut);
    } catch (const ClipFailure& failure) {
        fail(JWErrorInternal, std::string(cutters.source()) + ", layer " + cutters.name() +
                                  ": the areas cannot be united: " + failure.what());
    }
}

/// All lines of a layer as one geometry.
std::unique_ptr<JWMultiLineString> gatherLines(FeatureInput& cutters, JWLayerReport& report) {
    const Pulse pulse = pulseOf(cutters, report);
    auto all = std::make_unique<JWMultiLineString>();
    readCutters(cutters, LineKind, report, [&](const std::shared_ptr<const JWFeature>& feature) {
        const JWGeometry& lines = *feature->getGeometryPtr();
        if (lines.getGeometryType() == JWGeometryLineString)
            return all->addLineString(static_cast<const JWLineString&>(lines));
        for (const JWLineString& line :
             static_cast<const JWMultiLineString&>(lines).getMemberList())
            all->addLineString(line);
    });
    all->updateEnvelop();
    return all;
}

/// Runs a job beside the account of its cutters.
std::int64_t runWithCutters(LayerMapJob& job, const JWClipOptions& options,
                            const JWLayerReport& ofCutters, JWLayerReport& report) {
    const std::int64_t written = runLayerMap(job, {options.blockSize, options.threads}, report);
    report.readB = ofCutters.readB;
    report.emptyB = ofCutters.emptyB;
    report.areaB = ofCutters.areaB;
    report.rejected.insert(report.rejected.begin(), ofCutters.rejected.begin(),
                           ofCutters.rejected.end());
    return written;
}

std::int64_t cutLayer(JWFeatureLayer& in, JWFeatureLayer& cutters, JWFeatureLayer& out,
                      const JWClipOptions& options, JWLayerReport& report) {
    if (options.outside) fail(JWErrorInvalidArgument, "lines have no outside to keep");
    const std::unique_ptr<FeatureInput> features = inputFrom(in), by = inputFrom(cutters);
    const std::unique_ptr<FeatureOutput> results = outputTo(out);
    JWLayerReport ofCutters;
    const std::unique_ptr<JWMultiLineString> lines = gatherLines(*by, ofCutters);
    PreparedCutter cutter(*lines, EdgeSearch::Tree);
    const bool canCut = !Cutter(*lines, EdgeSearch::Tree).isEmpty();
    LayerMapJob job(*features, *results);
    job.kinds = LineKind | AreaKind;
    job.outputType = pieceType(features->geometryType());
    job.schema.addFieldsOf(job.input);
    job.map = [&](const JWFeature& feature, MapResults& made) {
        const JWGeometry& geometry = *feature.getGeometryPtr();
        if (!canCut) return addMembers(geometry, made);
        std::string reason;
        attempt(reason, [&] {
            for (MarkedPiece<JWGeometry>& piece : clipGeometry(geometry, cutter, false, Team(1)))
                made.add(std::move(piece.geometry));
        });
        if (!reason.empty()) made.reject(reason);
    };
    return runWithCutters(job, options, ofCutters, report);
}

/// Clips `in` by what `makeClip(report)` returns.
template <class MakeClip>
std::int64_t clipLayer(JWFeatureLayer& in, JWFeatureLayer& out, const JWClipOptions& options,
                       JWLayerReport& report, const MakeClip& makeClip) {
    const std::unique_ptr<FeatureInput> features = inputFrom(in);
    const std::unique_ptr<FeatureOutput> results = outputTo(out);
    JWLayerReport ofCutters;
    const AreaClip clip = [&] {
        try {
            return makeClip(ofCutters);
        } catch (...) {
            report = ofCutters;
            throw;
        }
    }();
    LayerMapJob job(*features, *results);
    job.outputType = resultType(features->geometryType());
    job.schema.addFieldsOf(job.input);
    const ClipSide side = options.outside ? ClipSide::Outside : ClipSide::Inside;
    job.map = [&](const JWFeature& feature, MapResults& made) {
        std::string reason;
        attempt(reason, [&] {
            if (auto part = clip.part(*feature.getGeometryPtr(), side)) made.add(std::move(part));
        });
        if (!reason.empty()) made.reject(reason);
    };
    return runWithCutters(job, options, ofCutters, report);
}

/// Gives a layer without features the geometry type of another one, one without fields its fields.
bool takeSchema(const JWFeatureLayer& from, JWFeatureLayer& to) {
    if (to.getFeatureCount() == 0 && !to.setGeometryType(from.getGeometryType())) return false;
    if (to.getFieldsDefnPtr()->getFieldCount() > 0) return true;
    const JWFields& fields = *from.getFieldsDefnPtr();
    for (int i = 0; i < fields.getFieldCount(); ++i) {
        if (!to.createField(*fields.getFieldPtr(i))) return false;
    }
    to.updateFieldsDefnRef();
    return true;
}

/// Writes what of each feature lies in the rectangle. Returns whether there is any; throws
/// LayerFailure.
bool writeParts(JWFeatureLayer& in, JWFeatureLayer& out, const JWEnvelop& envelope, int threads) {
    const AreaClip clip = AreaClip::ofRectangle(envelope, AreaCut::EveryMeeting);
    const Team team(threads);
    const bool isNew = out.getFeatureCount() == 0;  // identifiers are free
    bool any = false;
    constexpr int block = 4096;
    std::vector<std::shared_ptr<const JWFeature>> features;
    const std::unique_ptr<FeatureInput> input = inputFrom(in);
    for (std::int64_t first = 0;; first += block) {
        input->readBlock(first, block, features);
        if (features.empty()) return any;
        std::vector<std::unique_ptr<JWFeature>> parts(features.size());
        std::vector<std::string> reasons(features.size());
        const auto count = static_cast<std::int64_t>(features.size());
        parallelChunks(team, count, 16, [&](std::int64_t begin, std::int64_t end) {
            for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i) {
                if (features[i]->isGeometryUnread()) reasons[i] = kUnreadGeometry;
                if (features[i]->isGeometryEmpty()) continue;
                attempt(reasons[i], [&] {
                    auto part = partInRectangle(clip, *features[i]->getGeometryPtr());
                    if (!part) return;
                    parts[i] = featureLike(*features[i]);
                    parts[i]->setGeometryDirectly(part.release());
                });
            }
            return true;
        });
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (!reasons[i].empty()) {
                JWReport::setError(
                    JWErrorFeatureRejected,
                    "feature " + std::to_string(features[i]->getFID64()) + ": " + reasons[i],
                    features[i]->getFID64());
            }
            if (!parts[i]) continue;
            if (out.createFeature(parts[i].get(), isNew)) {
                any = true;
            } else if (!isRefusal(JWReport::lastError().kind)) {
                throw LayerFailure();
            }
        }
    }
}

int clipLayerByRectangle(const JWFeatureLayer* in, JWFeatureLayer* out, const JWEnvelop& envelope,
                         const char* name, int threads) {
    if (in == nullptr || out == nullptr) return refused(name, "a layer is null");
    if (out->isOnLayerOf(*in)) return refused(name, "the result is the operand");
    if (!out->isUpdateMode()) return refused(name, "the result is not open for writing");
    if (!isClipRectangle(envelope)) return refused(name, "the rectangle is not valid and finite");
    JWReport::clearError();
    return guarded(name, 0, [&] {
        auto& source = const_cast<JWFeatureLayer&>(*in);  // reading moves its cursor
        if (!takeSchema(*in, *out) || !out->beginTransaction()) return 0;
        bool any = false;
        try {
            any = writeParts(source, *out, envelope, threads);
        } catch (...) {
            out->rollbackTransaction();
            throw;
        }
        if (!out->commitTransaction()) return 0;
        if (!any && JWReport::lastError().kind == JWErrorNone)
            return refused(name, "the result is empty");
        return any ? 1 : 0;
    });
}

}  // namespace

int JWGeometryClip::featureLayerClipByEnvelop(const JWFeatureLayer* in, JWFeatureLayer* out,
                                              JWEnvelop& envelope) {
    return clipLayerByRectangle(in, out, envelope, "featureLayerClipByEnvelop", 1);
}

int JWGeometryClip::featureLayerClipByEnvelop_mp(const JWFeatureLayer* in, JWFeatureLayer* out,
                                                 JWEnvelop& envelope) {
    return clipLayerByRectangle(in, out, envelope, "featureLayerClipByEnvelop_mp", fixedTeamSize);
}

int JWGeometryClip::featureLayerClipByLayer(JWFeatureLayer* in, JWFeatureLayer* cutters,
                                            JWFeatureLayer* out, const JWClipOptions& options,
                                            JWLayerReport* report) {
    return accountedLayers(
        "featureLayerClipByLayer", in, cutters, out, report, [&](JWLayerReport& account) {
            return clipLayer(*in, *out, options, account, [&](JWLayerReport& ofCutters) {
                return uniteCutters(*inputFrom(*cutters), ofCutters);
            });
        });
}

int JWGeometryClip::featureLayerCutByLayer(JWFeatureLayer* in, JWFeatureLayer* cutters,
                                           JWFeatureLayer* out, const JWClipOptions& options,
                                           JWLayerReport* report) {
    return accountedLayers(
        "featureLayerCutByLayer", in, cutters, out, report,
        [&](JWLayerReport& account) { return cutLayer(*in, *cutters, *out, options, account); });
}

int JWGeometryClip::featureLayerClipByEnvelop(JWFeatureLayer* in, JWFeatureLayer* out,
                                              const JWEnvelop& envelope,
                                              const JWClipOptions& options, JWLayerReport* report) {
    return accountedLayers(
        "featureLayerClipByEnvelop", in, in, out, report, [&](JWLayerReport& account) {
            if (!isClipRectangle(envelope))
                fail(JWErrorInvalidArgument, "the rectangle is not valid and finite");
            return clipLayer(*in, *out, options, account, [&](JWLayerReport&) {
                return AreaClip::ofRectangle(envelope, AreaCut::InsideOut);
            });
        });
}

}  // namespace jws
