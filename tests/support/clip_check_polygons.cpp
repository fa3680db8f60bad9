// SPDX-License-Identifier: MIT
//
// Results as polygons: grouped by the rules that the library's callers apply, and beside GEOS.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "boolean/ring_grouping.h"
#include "support/clip_check.h"
#include "support/geos_oracle.h"

namespace jwtest {
namespace {

using jws::JWMultiPolygon;
using jws::JWRing;

JWRing ringOf(const Ring& contour) {
    JWRing ring(contour.data(), static_cast<int>(contour.size()));
    ring.updateEnvelop();
    return ring;
}

JWMultiPolygon byContainment(const ClipResult& result) {
    std::vector<JWRing> rings;
    for (const Ring& contour : result.contours) rings.push_back(ringOf(contour));
    return jws::detail::groupByContainment(std::move(rings), result.holes,
                                           jws::detail::Orphans::JoinFirstRing);
}

JWMultiPolygon byFirstFit(const ClipResult& result) {
    std::vector<JWRing> outers, holes;
    for (std::size_t i = 0; i < result.contours.size(); ++i) {
        (result.holes[i] ? holes : outers).push_back(ringOf(result.contours[i]));
    }
    return jws::detail::groupFirstFit(outers, holes);
}

/// Whether two groupings of the same rings are the same.
bool sameGrouping(const JWMultiPolygon& a, const JWMultiPolygon& b) {
    if (a.getPolygonCount() != b.getPolygonCount()) return false;
    for (int i = 0; i < a.getPolygonCount(); ++i) {
        const jws::JWPolygon &p = *a.getPolygonPtrAt(i), &q = *b.getPolygonPtrAt(i);
        if (p.getRingCount() != q.getRingCount()) return false;
        for (int k = 0; k < p.getRingCount(); ++k) {
            const JWRing &r = p.getRingAt(k), &s = q.getRingAt(k);
            if (r.getPointCount() != s.getPointCount() || !(r[0] == s[0]) || !(r[1] == s[1])) {
                return false;
            }
        }
    }
    return true;
}

int ringCount(const JWMultiPolygon& polygons) {
    int count = 0;
    for (int i = 0; i < polygons.getPolygonCount(); ++i) {
        count += polygons.getPolygonPtrAt(i)->getRingCount();
    }
    return count;
}

Ring cornersOf(const GEOSGeometry* ring) {
    GEOSContextHandle_t h = geosContext();
    const GEOSCoordSequence* points = GEOSGeom_getCoordSeq_r(h, ring);
    unsigned count = 0;
    GEOSCoordSeq_getSize_r(h, points, &count);
    Ring corners;
    for (unsigned i = 0; i + 1 < count; ++i) {
        jws::JWRawPoint p;
        GEOSCoordSeq_getXY_r(h, points, i, &p.x, &p.y);
        corners.push_back(p);
    }
    return corners;
}

/// The rings of all polygons of a geometry; lines and points are passed over.
Rings ringsOf(const GEOSGeometry* geometry) {
    GEOSContextHandle_t h = geosContext();
    Rings rings;
    for (int i = 0; i < GEOSGetNumGeometries_r(h, geometry); ++i) {
        const GEOSGeometry* part = GEOSGetGeometryN_r(h, geometry, i);
        if (GEOSGeomTypeId_r(h, part) != GEOS_POLYGON || GEOSisEmpty_r(h, part)) continue;
        rings.push_back(cornersOf(GEOSGetExteriorRing_r(h, part)));
        for (int k = 0; k < GEOSGetNumInteriorRings_r(h, part); ++k) {
            rings.push_back(cornersOf(GEOSGetInteriorRingN_r(h, part, k)));
        }
    }
    return rings;
}

GeosPtr overlay(gpc_op op, const GEOSGeometry* a, const GEOSGeometry* b) {
    GEOSContextHandle_t h = geosContext();
    switch (op) {
        case GPC_DIFF:
            return GeosPtr(GEOSDifference_r(h, a, b));
        case GPC_INT:
            return GeosPtr(GEOSIntersection_r(h, a, b));
        case GPC_XOR:
            return GeosPtr(GEOSSymDifference_r(h, a, b));
        default:
            return GeosPtr(GEOSUnion_r(h, a, b));
    }
}

}  // namespace

Miss checkGrouping(const ClipCase& c) {
    for (int op = 0; op < 4; ++op) {
        const ClipResult& result = c.of[op];
        const auto whole = [&](const JWMultiPolygon& polygons, const char* rule) -> Miss {
            const std::string of = std::string(" (grouped by ") + rule + ")";
            if (ringCount(polygons) != static_cast<int>(result.contours.size())) {
                return {kClipNames[op], "a hole has no outer ring" + of};
            }
            const GeosPtr geos = toGeos(&polygons);
            const std::string reason = validReason(geos.get());
            if (reason != "Valid Geometry") return {kClipNames[op], reason + of};
            if (!c.sameArea(geosArea(geos.get()), result.area())) {
                return {kClipNames[op], "a hole is in the wrong outer ring" + of};
            }
            return {};
        };
        const JWMultiPolygon contained = byContainment(result);
        Miss miss = whole(contained, "containment");
        if (!miss && result.count(1) > 0) {
            const JWMultiPolygon fitted = byFirstFit(result);
            if (!sameGrouping(contained, fitted)) miss = whole(fitted, "first fit");
        }
        if (miss) return miss;
    }
    return {};
}

Miss checkAgainstGeos(const ClipCase& c, RandomRings& random) {
    // The operands as polygons are the engine's own work, which the checks before this one judged;
    // GEOS cannot read self-crossing contours by the even-odd rule.
    const JWMultiPolygon polygonsA = byFirstFit(c.cleanA), polygonsB = byFirstFit(c.cleanB);
    const GeosPtr a = toGeos(&polygonsA), b = toGeos(&polygonsB);
    // Where it has to, GEOS snaps by 1e-12 of the largest coordinate.
    const double slack = c.tolerance + 1e-9 * (c.areaA + c.areaB) + 2e-12 * c.reach * c.length;
    GeosPtr of[4];
    double area[4];
    for (int op = 0; op < 4; ++op) {
        of[op] = overlay(kClipOps[op], a.get(), b.get());
        if (!of[op]) return {};
        area[op] = geosArea(of[op].get());
    }
    // Now and then it gives a wrong answer without a word; its own sums tell.
    const auto same = [slack](double x, double y) { return std::fabs(x - y) <= slack; };
    if (!same(area[GPC_UNION] + area[GPC_INT], geosArea(a.get()) + geosArea(b.get())) ||
        !same(area[GPC_XOR], area[GPC_UNION] - area[GPC_INT]) ||
        !same(area[GPC_DIFF], geosArea(a.get()) - area[GPC_INT])) {
        return {};
    }
    for (int op = 0; op < 4; ++op) {
        if (same(area[op], c.of[op].area())) continue;
        // One wrong intersection, and sums that follow from it, pass its own test. Areas by slabs
        // have spoken before where there are any.
        if (c.vertices <= kSlabVertices) return {};
        char text[160];
        std::snprintf(text, sizeof text, "area: %.17g, GEOS %.17g", c.of[op].area(), area[op]);
        return {kClipNames[op], text};
    }
    const int op = random.integer(0, 3);
    const JWMultiPolygon polygons = byContainment(c.of[op]);
    const GeosPtr ours = toGeos(&polygons);
    const GeosPtr rest = overlay(GPC_XOR, ours.get(), of[op].get());
    if (!rest || geosArea(rest.get()) <= slack) return {};
    // Two sets that are nearly one are hard for GEOS too: it may be wrong about how far they are
    // apart.
    const double apart = slabAreas(c.of[op].contours, ringsOf(of[op].get())).of[GPC_XOR];
    if (apart > slack) {
        char text[160];
        std::snprintf(text, sizeof text, "differs from GEOS by the area %.3g", apart);
        return {kClipNames[op], text};
    }
    return {};
}

}  // namespace jwtest
