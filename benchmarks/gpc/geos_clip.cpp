// SPDX-License-Identifier: MIT
#include <stdexcept>

#include "gpc/pairwise_clip.h"
#include "support/geos_handles.h"

namespace bench {
namespace {

class GeosClip final : public PairwiseClip<GeosPtr> {
    GeosPtr clip(ClipOp op, const GeosPtr& first, const GeosPtr& second) const override {
        const GEOSGeometry *a = first.get(), *b = second.get();
        GEOSGeometry* result = nullptr;
        switch (op) {
            case ClipOp::Intersection:
                result = GEOSIntersection_r(geos(), a, b);
                break;
            case ClipOp::Union:
                result = GEOSUnion_r(geos(), a, b);
                break;
            case ClipOp::Difference:
                result = GEOSDifference_r(geos(), a, b);
                break;
            case ClipOp::Xor:
                result = GEOSSymDifference_r(geos(), a, b);
                break;
        }
        if (!result) throw std::runtime_error("no result");
        return GeosPtr(result);
    }

    double areaOf(const GeosPtr& result) const override {
        double area = 0;
        GEOSArea_r(geos(), result.get(), &area);
        return area;
    }

    static GEOSGeometry* ring(const jwtest::Ring& corners) {
        const unsigned n = static_cast<unsigned>(corners.size());
        GEOSCoordSequence* points = GEOSCoordSeq_create_r(geos(), n + 1, 2);
        for (unsigned i = 0; i <= n; ++i) {
            GEOSCoordSeq_setXY_r(geos(), points, i, corners[i % n].x, corners[i % n].y);
        }
        return GEOSGeom_createLinearRing_r(geos(), points);
    }

    GeosPtr operand(const ClipOperand& polygons) const override {
        std::vector<GEOSGeometry*> members;
        for (const ClipPolygon& polygon : polygons) {
            std::vector<GEOSGeometry*> holes;
            for (const jwtest::Ring& hole : polygon.holes) holes.push_back(ring(hole));
            members.push_back(GEOSGeom_createPolygon_r(geos(), ring(polygon.outer), holes.data(),
                                                       static_cast<unsigned>(holes.size())));
        }
        if (members.size() == 1) return GeosPtr(members[0]);
        return GeosPtr(GEOSGeom_createCollection_r(geos(), GEOS_MULTIPOLYGON, members.data(),
                                                   static_cast<unsigned>(members.size())));
    }
};

}  // namespace

std::unique_ptr<ClipRival> makeGeosClip() { return std::make_unique<GeosClip>(); }

}  // namespace bench
