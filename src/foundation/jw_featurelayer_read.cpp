// SPDX-License-Identifier: MIT
//
// Layers: reading by position.
#include <algorithm>
#include <climits>

#include "foundation/feature_layer_impl.h"
#include "foundation/ogr_feature.h"

namespace jws {

using detail::GdalErrors;
using Outcome = detail::LayerReader::Outcome;

std::unique_ptr<JWFeature> JWFeatureLayer::Impl::decode(OGRFeature& feature) const {
    std::unique_ptr<JWFeature> decoded = detail::featureFromOgr(feature, fields);
    if (!decoded) {
        JWReport::setError(JWErrorInputUnreadable,
                           title() + ", feature " + std::to_string(feature.GetFID()) +
                               ": geometry of an unknown kind",
                           feature.GetFID());
    }
    return decoded;
}

void JWFeatureLayer::Impl::prepare(JWFeatureClass& out) const {
    out.clearAll();
    out.setGeometryType(geometryType());
    out.setSpatialReference(referencePtr());
}

int JWFeatureLayer::getFeatureCount() {
    return static_cast<int>(std::min<std::int64_t>(getFeatureCount64(), INT_MAX));
}

std::int64_t JWFeatureLayer::getFeatureCount64() {
    Impl& impl = *m_impl;
    return impl.run("getFeatureCount64", std::int64_t{-1}, [&]() -> std::int64_t {
        if (impl.source->isWriteOnly(impl.layer)) return impl.source->writtenTo(impl.layer);
        GdalErrors errors;
        return impl.reader.count(errors);
    });
}

std::int64_t JWFeatureLayer::getMaximumFID() {
    Impl& impl = *m_impl;
    return impl.run("getMaximumFID", std::int64_t{-1}, [&]() -> std::int64_t {
        if (!impl.requireReadable()) return -1;
        GdalErrors errors;
        return std::max<std::int64_t>(impl.reader.maximumFID(errors), -1);
    });
}

JWFeature* JWFeatureLayer::getFeature(int i) {
    Impl& impl = *m_impl;
    return impl.run("getFeature", static_cast<JWFeature*>(nullptr), [&]() -> JWFeature* {
        impl.noticeChanges();
        if (!impl.requireReadable()) return nullptr;
        if (const auto cached = impl.cache.find(i)) return cached->clone();
        GdalErrors errors;
        OGRFeatureUniquePtr feature;
        const Outcome outcome = impl.reader.readAt(i, feature, errors);
        if (outcome == Outcome::Read) return impl.decode(*feature).release();
        if (outcome == Outcome::End) {
            JWReport::setError(
                JWErrorInvalidArgument,
                impl.title() + ": there is no feature at position " + std::to_string(i));
        }
        return nullptr;
    });
}

JWGeometry* JWFeatureLayer::getGeometry(int i) {
    const std::unique_ptr<JWFeature> feature(getFeature(i));
    return feature ? feature->releaseGeometry() : nullptr;
}

std::shared_ptr<const JWFeature> JWFeatureLayer::getSharedFeature(int i) {
    Impl& impl = *m_impl;
    using Shared = std::shared_ptr<const JWFeature>;
    impl.noticeChanges();
    if (Shared cached = impl.cache.find(i)) return cached;
    return impl.run("getSharedFeature", Shared(), [&] {
        Shared feature(getFeature(i));
        if (feature) impl.cache.add(i, feature);
        return feature;
    });
}

void JWFeatureLayer::setCacheLimit(std::size_t bytes) { m_impl->cache.setLimit(bytes); }

int JWFeatureLayer::getFeaturesByPosition(std::int64_t first, std::int64_t count,
                                          JWFeatureClass& out) {
    Impl& impl = *m_impl;
    return impl.run("getFeaturesByPosition", -1, [&] {
        impl.prepare(out);
        if (first < 0) {
            JWReport::setError(JWErrorInvalidArgument, impl.title() + ": positions start at 0");
            return -1;
        }
        impl.noticeChanges();
        if (!impl.requireReadable()) return -1;
        GdalErrors errors;
        OGRFeatureUniquePtr feature;
        const std::int64_t wanted = std::min<std::int64_t>(count, INT_MAX);
        for (std::int64_t n = 0; n < wanted; ++n) {
            const Outcome outcome = impl.reader.readNext(first + n, feature, errors);
            if (outcome == Outcome::End) break;
            std::unique_ptr<JWFeature> decoded =
                outcome == Outcome::Read ? impl.decode(*feature) : nullptr;
            if (!decoded) {
                out.clearAll();
                return -1;
            }
            out.addFeature(decoded.release());
        }
        return out.getFeatureCount();
    });
}

bool JWFeatureLayer::getNextSharedFeature(std::int64_t position,
                                          std::shared_ptr<const JWFeature>& feature) {
    Impl& impl = *m_impl;
    impl.noticeChanges();
    feature = impl.cache.find(position);
    if (feature) return true;
    return impl.run("getNextSharedFeature", false, [&] {
        if (!impl.requireReadable()) return false;
        GdalErrors errors;
        OGRFeatureUniquePtr source;
        if (impl.reader.readNext(position, source, errors) != Outcome::Read) return false;
        feature = impl.decode(*source);
        if (feature) impl.cache.add(position, feature);
        return feature != nullptr;
    });
}

}  // namespace jws
