// SPDX-License-Identifier: MIT
#include "jw_geometryoverlay.h"

#include <memory>

#include "foundation/api_guard.h"
#include "jw_feature_class.h"
#include "overlay/geometry_overlay.h"

namespace jws {

using namespace detail;

namespace {

constexpr JWGeometry* kNothing = nullptr;

}  // namespace

JWGeometry* JWGeometryOverlay::polygonIntersectPolygon(const JWGeometry* a, const JWGeometry* b,
                                                       double tolerance) {
    if (!a || !b) return nullptr;
    return guarded("polygonIntersectPolygon", kNothing,
                   [&] { return intersect(*a, *b, tolerance).release(); });
}

JWGeometry* JWGeometryOverlay::polygonErasePolygon(const JWGeometry* a, const JWGeometry* b,
                                                   double tolerance) {
    if (!a || !b) return nullptr;
    return guarded("polygonErasePolygon", kNothing,
                   [&] { return erase(*a, *b, tolerance).release(); });
}

JWGeometry* JWGeometryOverlay::polygonUnionPolygonToOne(const JWGeometry* a, const JWGeometry* b,
                                                        double tolerance) {
    return guarded("polygonUnionPolygonToOne", kNothing, [&] {
        if (a && b) return unite(*a, *b, tolerance).release();
        if (a) return a->clone();
        return b ? b->clone() : kNothing;
    });
}

int JWGeometryOverlay::polygonSymmetricalDifferencePolygon(const JWGeometry* a, const JWGeometry* b,
                                                           std::vector<JWGeometry*>& outGeometries,
                                                           std::vector<int>& outCodes,
                                                           double tolerance) {
    if (!a || !b) return 0;
    return guarded("polygonSymmetricalDifferencePolygon", 0, [&] {
        return handOver(symmetricalDifference(*a, *b, tolerance), outGeometries, outCodes);
    });
}

int JWGeometryOverlay::polygonIdentityPolygon(const JWGeometry* a, const JWGeometry* b,
                                              std::vector<JWGeometry*>& outGeometries,
                                              std::vector<int>& outCodes, double tolerance) {
    if (!a || !b) return 0;
    return guarded("polygonIdentityPolygon", 0,
                   [&] { return handOver(identity(*a, *b, tolerance), outGeometries, outCodes); });
}

int JWGeometryOverlay::polygonUpdatePolygon(const JWGeometry* a, const JWGeometry* b,
                                            std::vector<JWGeometry*>& outGeometries,
                                            std::vector<int>& outCodes, bool keepBorders,
                                            double tolerance) {
    if (!a || !b) return 0;
    return guarded("polygonUpdatePolygon", 0, [&] {
        return handOver(update(*a, *b, keepBorders, tolerance), outGeometries, outCodes);
    });
}

JWGeometry* JWGeometryOverlay::unionPolygonsToOne(std::vector<JWGeometry*> geometries,
                                                  double tolerance) {
    return guarded("unionPolygonsToOne", kNothing, [&] {
        const std::vector<const JWGeometry*> list(geometries.begin(), geometries.end());
        return uniteAll(list, tolerance).release();
    });
}

JWGeometry* JWGeometryOverlay::unionPolygonsToOne(std::vector<JWFeature*> features,
                                                  double tolerance) {
    return guarded("unionPolygonsToOne", kNothing, [&] {
        std::vector<const JWGeometry*> list;
        for (const JWFeature* feature : features) {
            if (feature) list.push_back(feature->getGeometryPtr());
        }
        return uniteAll(list, tolerance).release();
    });
}

JWFeature* JWGeometryOverlay::unionPolygonsToOne(JWFeatureClass* features, double tolerance) {
    if (!features) return nullptr;
    return guarded("unionPolygonsToOne", static_cast<JWFeature*>(nullptr), [&]() -> JWFeature* {
        std::vector<const JWGeometry*> list;
        for (int i = 0; i < features->getFeatureCount(); ++i) {
            list.push_back(features->getFeatureAt(i)->getGeometryPtr());
        }
        std::unique_ptr<JWGeometry> united = uniteAll(list, tolerance);
        if (!united) return nullptr;
        auto feature = std::make_unique<JWFeature>();
        feature->setGeometryDirectly(united.release());
        return feature.release();
    });
}

bool JWGeometryOverlay::feature_attributes_clone(JWFeature* source, JWFeature& target) {
    if (!source) return false;
    return guarded("feature_attributes_clone", false, [&] {
        bool copied = false;
        for (int i = 0; i < source->getFieldCount(); ++i) {
            if (source->isFieldSet(i) && target.copyFieldFrom(i, *source, i)) copied = true;
        }
        return copied;
    });
}

}  // namespace jws
