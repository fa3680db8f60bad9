// SPDX-License-Identifier: MIT
#include "foundation/ogr_envelope.h"

#include <ogr_geometry.h>

#include <limits>

namespace jws::detail {
namespace {

/// Grows by comparisons that NaN fails.
struct Box {
    double minX = std::numeric_limits<double>::infinity(), minY = minX, maxX = -minX, maxY = -minX;

    void grow(double x, double y) {
        if (x < minX) minX = x;
        if (x > maxX) maxX = x;
        if (y < minY) minY = y;
        if (y > maxY) maxY = y;
    }
    void grow(const OGRGeometry& geometry);
};

void Box::grow(const OGRGeometry& geometry) {
    switch (wkbFlatten(geometry.getGeometryType())) {
        case wkbPoint: {
            const OGRPoint& point = *geometry.toPoint();
            if (!point.IsEmpty()) grow(point.getX(), point.getY());
            break;
        }
        case wkbLineString: {
            const OGRLineString& line = *geometry.toLineString();
            for (int i = 0; i < line.getNumPoints(); ++i) grow(line.getX(i), line.getY(i));
            break;
        }
        case wkbPolygon:
            for (const OGRLinearRing* ring : *geometry.toPolygon()) grow(*ring);
            break;
        case wkbMultiPoint:
        case wkbMultiLineString:
        case wkbMultiPolygon:
        case wkbGeometryCollection:
            for (const OGRGeometry* member : *geometry.toGeometryCollection()) grow(*member);
            break;
        default: {
            OGREnvelope box;
            geometry.getEnvelope(&box);
            if (box.IsInit() == 0) break;
            grow(box.MinX, box.MinY);
            grow(box.MaxX, box.MaxY);
        }
    }
}

}  // namespace

JWEnvelop envelopOfOgr(const OGRFeature& feature) {
    const OGRGeometry* geometry = feature.GetGeometryRef();
    if (geometry == nullptr) return JWEnvelop::invalid();
    Box box;
    box.grow(*geometry);
    if (!(box.minX <= box.maxX && box.minY <= box.maxY)) return JWEnvelop::invalid();
    return JWEnvelop(box.minX, box.minY, box.maxX, box.maxY);
}

}  // namespace jws::detail
