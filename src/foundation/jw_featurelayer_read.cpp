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

bool JWFeatureLayer::Impl::readAt(std::int64_t position, OGRFeatureUniquePtr& feature,
                                  GdalErrors& errors) {
    if (!requireReadable()) return false;
    const Outcome outcome = reader.readAt(position, feature, errors);
    if (outcome == Outcome::End) {
        JWReport::setError(JWErrorInvalidArgument, title() + ": there is no feature at position " +
                                                       std::to_string(position));
    }
    return outcome == Outcome::Read;
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
        if (const auto cached = impl.cache.find(i)) return cached->clone();
        GdalErrors errors;
        OGRFeatureUniquePtr feature;
        return impl.readAt(i, feature, errors) ? impl.decode(*feature).release() : nullptr;
    });
}

JWGeometry* JWFeatureLayer::getGeometry(int i) {
    const std::unique_ptr<JWFeature> feature(getFeature(i));
    return feature ? feature->releaseGeometry() : nullptr;
}

std::shared_ptr<const JWFeature> JWFeatureLayer::getSharedFeature(int i) {
    JWReadFeature read;
    if (!readFeature(i, read)) return nullptr;
    if (read.record && decodeFeature(read)) keepFeature(i, read.feature);
    return read.feature;
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
    std::vector<JWReadFeature> read;
    feature.reset();
    if (!readAhead(position, 1, true, read) || read.empty()) return false;
    feature = std::move(read.front().feature);
    keepFeature(position, feature);
    return true;
}

bool JWFeatureLayer::readAhead(std::int64_t first, std::int64_t count, bool decode,
                               std::vector<JWReadFeature>& features) {
    Impl& impl = *m_impl;
    return impl.run("readAhead", false, [&] {
        impl.noticeChanges();
        if (!impl.requireReadable()) return false;
        GdalErrors errors;
        for (std::int64_t position = first; position < first + count; ++position) {
            JWReadFeature read{impl.cache.find(position), nullptr};
            if (!read.feature) {
                OGRFeatureUniquePtr source;
                const Outcome outcome = impl.reader.readNext(position, source, errors);
                if (outcome != Outcome::Read) return outcome == Outcome::End;
                if (decode) {
                    read.feature = impl.decode(*source);
                    if (!read.feature) return false;
                } else {
                    read.record = std::make_shared<JWSourceRecord>();
                    read.record->feature = std::move(source);
                }
            }
            features.push_back(std::move(read));
        }
        return true;
    });
}

bool JWFeatureLayer::readFeature(std::int64_t position, JWReadFeature& feature) {
    Impl& impl = *m_impl;
    impl.noticeChanges();
    feature = {impl.cache.find(position), nullptr};
    if (feature.feature) return true;
    return impl.run("readFeature", false, [&] {
        GdalErrors errors;
        OGRFeatureUniquePtr source;
        if (!impl.readAt(position, source, errors)) return false;
        feature.record = std::make_shared<JWSourceRecord>();
        feature.record->feature = std::move(source);
        return true;
    });
}

bool JWFeatureLayer::decodeFeature(JWReadFeature& feature) const {
    const Impl& impl = *m_impl;
    return detail::guarded("decodeFeature", false, [&] {
        if (!feature.record) return feature.feature != nullptr;
        const GdalErrors errors;
        feature.feature = impl.decode(*feature.record->feature);
        feature.record.reset();
        return feature.feature != nullptr;
    });
}

bool JWFeatureLayer::keepFeature(std::int64_t position, std::shared_ptr<const JWFeature> feature) {
    Impl& impl = *m_impl;
    return detail::guarded("keepFeature", false, [&] {
        if (!feature) return false;
        return impl.cache.find(position) != nullptr || impl.cache.add(position, std::move(feature));
    });
}

}  // namespace jws
