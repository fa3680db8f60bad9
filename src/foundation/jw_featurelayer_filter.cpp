// SPDX-License-Identifier: MIT
//
// Layers: reading by attribute condition and by rectangle, and restricting a layer to that.
//
// A rectangle query takes candidates by envelope from the driver's spatial filter or from the
// layer's own index, and decides the relation itself; the answers are the same either way.
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/feature_layer_impl.h"
#include "foundation/layer_condition.h"
#include "foundation/ogr_convert.h"
#include "foundation/ogr_envelope.h"
#include "foundation/position_index.h"
#include "foundation/rectangle_relation.h"
#include "foundation/unread_geometry.h"

namespace jws {
namespace {

using detail::envelopOfOgr;
using detail::FilterScope;
using detail::GdalErrors;
using detail::LayerCondition;
using Found = std::vector<std::unique_ptr<JWFeature>>;

int handOver(Found& found, JWFeatureClass& out) {
    for (auto& feature : found) out.addFeature(feature.release());
    return static_cast<int>(found.size());
}

/// A little larger than the rectangle, so that rounding in a driver's test loses nothing.
JWEnvelop widened(JWEnvelop rectangle) {
    const double reach = std::max({std::fabs(rectangle.minX), std::fabs(rectangle.maxX),
                                   std::fabs(rectangle.minY), std::fabs(rectangle.maxY)});
    rectangle.inflates(reach * 1e-12);
    return rectangle;
}

/// Has the driver leave out what lies clear of a rectangle.
void setDriverRectangle(OGRLayer& layer, const JWEnvelop& rectangle) {
    const JWEnvelop box = widened(rectangle);
    layer.SetSpatialFilterRect(box.minX, box.minY, box.maxX, box.maxY);
}

bool isRelation(enumJWSpatialRelation relation) {
    return relation >= JWRelationEqual && relation <= JWRelationOverlap;
}

}  // namespace

int JWFeatureLayer::getFeaturesByAttributeFilter(const char* where, JWFeatureClass& out,
                                                 bool append) {
    Impl& impl = *m_impl;
    return impl.run("getFeaturesByAttributeFilter", -1, [&] {
        if (!append) impl.prepare(out);
        if (!impl.requireReadable()) return -1;
        GdalErrors errors;
        const LayerCondition condition(*impl.source, impl.layer, where, false);
        Found found;
        const auto take = [&](OGRFeature& feature) {
            found.push_back(impl.decode(feature));
            return found.back() != nullptr;
        };
        return impl.visitSatisfying(condition, nullptr, take, errors) ? handOver(found, out) : -1;
    });
}

bool JWFeatureLayer::Impl::notUnderstood(const LayerCondition& condition,
                                         const GdalErrors& errors) const {
    const std::string fault = condition.fault().empty() ? "" : ": " + condition.fault();
    errors.report(JWErrorInvalidArgument,
                  title() + ": condition '" + condition.text() + "' is not understood" + fault, "");
    return false;
}

/// Visits the features that satisfy a condition and may meet a rectangle (null for everywhere).
bool JWFeatureLayer::Impl::visitSatisfying(const LayerCondition& condition,
                                           const JWEnvelop* rectangle,
                                           const std::function<bool(OGRFeature&)>& visit,
                                           GdalErrors& errors) {
    if (!condition.isUnderstood()) return notUnderstood(condition, errors);
    const FilterScope scope(layer);
    reader.loseCursor();
    if (rectangle != nullptr) setDriverRectangle(layer, *rectangle);
    if (condition.forDriver() != nullptr &&
        (layer.SetAttributeFilter(condition.forDriver()) != OGRERR_NONE || errors.failed())) {
        return notUnderstood(condition, errors);
    }
    bool any = false;
    const auto take = [&](OGRFeature& feature) {
        any = true;
        return !condition.holds(feature) || visit(feature);
    };
    if (reader.visitFiltered(take, errors)) return true;
    // Databases look at the condition only now.
    const bool statement = errors.describe("").find("prepare") != std::string::npos;
    return statement && !any ? notUnderstood(condition, errors) : false;
}

bool JWFeatureLayer::Impl::visitCandidates(
    const JWEnvelop& rectangle, bool all,
    const std::function<void(std::unique_ptr<JWFeature>)>& visit) {
    GdalErrors errors;
    if (index && !all) {
        std::vector<void*> hits;
        if (!index->spatialSearch(rectangle, hits)) return false;
        OGRFeatureUniquePtr feature;
        for (const void* hit : hits) {
            const std::int64_t position = detail::positionOf(hit);
            std::unique_ptr<JWFeature> decoded;
            if (const auto cached = cache.find(position)) {
                decoded.reset(cached->clone());
            } else if (reader.readAt(position, feature, errors) ==
                       detail::LayerReader::Outcome::Read) {
                decoded = decode(*feature);
            }
            if (!decoded) return false;
            visit(std::move(decoded));
        }
        return true;
    }
    const FilterScope scope(layer);
    reader.loseCursor();
    if (!all) setDriverRectangle(layer, rectangle);
    return reader.visitFiltered(
        [&](OGRFeature& feature) {
            std::unique_ptr<JWFeature> decoded = decode(feature);
            const bool goOn = decoded != nullptr;
            if (goOn) visit(std::move(decoded));
            return goOn;
        },
        errors);
}

int JWFeatureLayer::getFeaturesByEnvelopFilter(const JWEnvelop& rectangle,
                                               enumJWSpatialRelation relation, JWFeatureClass& out,
                                               bool append) {
    Impl& impl = *m_impl;
    return impl.run("getFeaturesByEnvelopFilter", -1, [&] {
        if (!append) impl.prepare(out);
        if (!rectangle.isValid() || !isRelation(relation)) {
            JWReport::setError(JWErrorInvalidArgument,
                               impl.title() + ": the filter needs a valid rectangle and relation");
            return -1;
        }
        if (!impl.requireReadable()) return -1;
        impl.noticeChanges();
        Found found;
        const auto take = [&](std::unique_ptr<JWFeature> feature) {
            const JWGeometry* geometry = feature->getGeometryPtr();
            if (geometry != nullptr && detail::hasRelation(*geometry, rectangle, relation)) {
                found.push_back(std::move(feature));
            }
        };
        if (!impl.visitCandidates(rectangle, relation == JWRelationDisjoint, take)) return -1;
        // A spatial index of the source hands features out in an order of its own.
        if (!impl.index && impl.source->ordersByIndex()) {
            std::sort(found.begin(), found.end(),
                      [](const auto& a, const auto& b) { return a->getFID64() < b->getFID64(); });
        }
        return handOver(found, out);
    });
}

namespace {

/// What cannot be read is let pass: reading it says why.
bool meets(OGRFeature& feature, const JWEnvelop& rectangle) {
    if (detail::hasUnreadGeometry(feature)) return true;
    const JWEnvelop envelop = envelopOfOgr(feature);
    if (!envelop.isValid() || envelop.isDisjoin(rectangle)) return false;
    const std::unique_ptr<JWGeometry> geometry = detail::geometryFromOgr(*feature.GetGeometryRef());
    return geometry == nullptr || detail::hasRelation(*geometry, rectangle, JWRelationOverlap);
}

}  // namespace

bool JWFeatureLayer::restrictTo(const char* where, const JWEnvelop* rectangle) {
    Impl& impl = *m_impl;
    return impl.run("restrictTo", false, [&] {
        if (rectangle != nullptr && !rectangle->isValid()) {
            JWReport::setError(JWErrorInvalidArgument,
                               impl.title() + ": the rectangle to restrict it to is not valid");
            return false;
        }
        if (!impl.requireReadable()) return false;
        impl.noticeChanges();
        impl.cache.clear();
        impl.index.reset();
        GdalErrors errors;
        return impl.reader.isKeyed(errors) ? impl.chooseFeatures(where, rectangle, errors)
                                           : impl.filterFeatures(where, rectangle, errors);
    });
}

/// By their identifiers: an index of the source tells them fast, in whatever order.
bool JWFeatureLayer::Impl::chooseFeatures(const char* where, const JWEnvelop* rectangle,
                                          GdalErrors& errors) {
    const LayerCondition condition(*source, layer, where, false);
    std::vector<std::int64_t> chosen;
    JWEnvelop whole = JWEnvelop::invalid();
    const auto choose = [&](OGRFeature& feature) {
        if (rectangle != nullptr && !meets(feature, *rectangle)) return true;
        chosen.push_back(feature.GetFID());
        whole.inflates_to_contain(envelopOfOgr(feature));
        return true;
    };
    if (!visitSatisfying(condition, rectangle, choose, errors)) return false;
    reader.choose(std::move(chosen));
    envelop = whole;
    envelopKnown = true;
    return true;
}

/// By testing each feature that is read.
bool JWFeatureLayer::Impl::filterFeatures(const char* where, const JWEnvelop* rectangle,
                                          GdalErrors& errors) {
    const auto condition = std::make_shared<LayerCondition>(*source, layer, where, true);
    if (source->isDatabase() && !condition->text().empty()) {
        // Evaluated here it would mean something else than in the database's own dialect.
        errors.report(JWErrorInvalidArgument,
                      title() +
                          ": a condition cannot restrict a view whose rows have no "
                          "identifiers of their own; make a table of it",
                      "");
        return false;
    }
    if (!condition->isUnderstood()) return notUnderstood(*condition, errors);
    const std::optional<JWEnvelop> box =
        rectangle != nullptr ? std::optional<JWEnvelop>(*rectangle) : std::nullopt;
    detail::LayerReader::Test before = reader.test();
    reader.restrictTo([condition, box, before](OGRFeature& feature) {
        return (!before || before(feature)) && condition->holds(feature) &&
               (!box || meets(feature, *box));
    });
    JWEnvelop whole = JWEnvelop::invalid();
    const auto grow = [&whole](std::int64_t, OGRFeature& feature) {
        whole.inflates_to_contain(envelopOfOgr(feature));
    };
    if (!reader.visitAll(true, grow, errors)) {
        reader.restrictTo(std::move(before));
        return false;
    }
    envelop = whole;
    envelopKnown = true;
    return true;
}

bool JWFeatureLayer::createSpatialIndex() {
    Impl& impl = *m_impl;
    return impl.run("createSpatialIndex", false, [&] {
        if (!impl.requireReadable()) return false;
        impl.noticeChanges();
        GdalErrors errors;
        auto index = std::make_unique<JWSpatialIndex>();
        if (!index->initRTreeIndex()) return false;
        bool isWhole = true;
        const auto add = [&](std::int64_t position, OGRFeature& feature) {
            const JWEnvelop box = envelopOfOgr(feature);
            isWhole =
                isWhole && (!box.isValid() || index->addRect(box, detail::payloadOf(position)));
        };
        if (!impl.reader.visitAll(true, add, errors) || !isWhole) return false;
        impl.index = std::move(index);
        return true;
    });
}

}  // namespace jws
