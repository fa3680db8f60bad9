// SPDX-License-Identifier: MIT
#include <geos_c.h>

#include <stdexcept>

#include "gpc/clip_rival.h"

namespace bench {
namespace {

class GeosClip final : public ClipRival {
  public:
    GeosClip() : context_(GEOS_init_r()) {}
    ~GeosClip() override {
        for (GEOSGeometry* g : operands_) GEOSGeom_destroy_r(context_, g);
        GEOS_finish_r(context_);
    }

    void load(const std::vector<ClipOperands>& pairs) override {
        for (const ClipOperands& pair : pairs) {
            operands_.push_back(multiPolygon(pair.a));
            operands_.push_back(multiPolygon(pair.b));
        }
    }

    void run(ClipOp op) override {
        for (std::size_t i = 0; i < operands_.size(); i += 2) {
            GEOSGeom_destroy_r(context_, overlay(op, operands_[i], operands_[i + 1]));
        }
    }

    double area(ClipOp op) override {
        double sum = 0;
        for (std::size_t i = 0; i < operands_.size(); i += 2) {
            GEOSGeometry* result = overlay(op, operands_[i], operands_[i + 1]);
            double one = 0;
            GEOSArea_r(context_, result, &one);
            GEOSGeom_destroy_r(context_, result);
            sum += one;
        }
        return sum;
    }

  private:
    GEOSGeometry* overlay(ClipOp op, const GEOSGeometry* a, const GEOSGeometry* b) {
        GEOSGeometry* result = nullptr;
        switch (op) {
            case ClipOp::Intersection:
                result = GEOSIntersection_r(context_, a, b);
                break;
            case ClipOp::Union:
                result = GEOSUnion_r(context_, a, b);
                break;
            case ClipOp::Difference:
                result = GEOSDifference_r(context_, a, b);
                break;
            case ClipOp::Xor:
                result = GEOSSymDifference_r(context_, a, b);
                break;
        }
        if (!result) throw std::runtime_error("no result");
        return result;
    }

    GEOSGeometry* ring(const jwtest::Ring& corners) {
        const unsigned n = static_cast<unsigned>(corners.size());
        GEOSCoordSequence* points = GEOSCoordSeq_create_r(context_, n + 1, 2);
        for (unsigned i = 0; i <= n; ++i) {
            GEOSCoordSeq_setXY_r(context_, points, i, corners[i % n].x, corners[i % n].y);
        }
        return GEOSGeom_createLinearRing_r(context_, points);
    }

    GEOSGeometry* multiPolygon(const ClipOperand& polygons) {
        std::vector<GEOSGeometry*> members;
        for (const ClipPolygon& polygon : polygons) {
            std::vector<GEOSGeometry*> holes;
            for (const jwtest::Ring& hole : polygon.holes) holes.push_back(ring(hole));
            members.push_back(GEOSGeom_createPolygon_r(context_, ring(polygon.outer), holes.data(),
                                                       static_cast<unsigned>(holes.size())));
        }
        if (members.size() == 1) return members[0];
        return GEOSGeom_createCollection_r(context_, GEOS_MULTIPOLYGON, members.data(),
                                           static_cast<unsigned>(members.size()));
    }

    GEOSContextHandle_t context_;
    std::vector<GEOSGeometry*> operands_;
};

}  // namespace

std::unique_ptr<ClipRival> makeGeosClip() { return std::make_unique<GeosClip>(); }

}  // namespace bench
