// SPDX-License-Identifier: MIT
#include <geos_c.h>

#include <stdexcept>
#include <vector>

#include "clip/line_clip_rival.h"

namespace bench {
namespace {

class GeosLineClip final : public LineClipRival {
  public:
    GeosLineClip() : h_(GEOS_init_r()) {}
    ~GeosLineClip() override {
        clear();
        for (GEOSGeometry* line : lines_) GEOSGeom_destroy_r(h_, line);
        GEOSGeom_destroy_r(h_, area_);
        GEOS_finish_r(h_);
    }

    void load(const jws::JWMultiLineString& lines, const jws::JWPolygon& area) override {
        for (const jws::JWLineString& line : lines.getMemberList()) lines_.push_back(read(line));
        area_ = read(area);
    }

    void clip() override {
        const GEOSPreparedGeometry* prepared = GEOSPrepare_r(h_, area_);
        for (const GEOSGeometry* line : lines_) {
            if (GEOSPreparedContains_r(h_, prepared, line) == 1) {
                results_.push_back(GEOSGeom_clone_r(h_, line));
            } else if (GEOSPreparedIntersects_r(h_, prepared, line) == 1) {
                results_.push_back(GEOSIntersection_r(h_, area_, line));
            }
        }
        GEOSPreparedGeom_destroy_r(h_, prepared);
    }

    void cut() override {
        std::vector<GEOSGeometry*> parts = {GEOSBoundary_r(h_, area_)};
        for (const GEOSGeometry* line : lines_) parts.push_back(GEOSGeom_clone_r(h_, line));
        GEOSGeometry* all = GEOSGeom_createCollection_r(h_, GEOS_GEOMETRYCOLLECTION, parts.data(),
                                                        static_cast<unsigned>(parts.size()));
        GEOSGeometry* noded = GEOSUnaryUnion_r(h_, all);
        GEOSGeometry* faces = GEOSPolygonize_r(h_, &noded, 1);
        const GEOSPreparedGeometry* prepared = GEOSPrepare_r(h_, area_);
        for (int i = 0; i < GEOSGetNumGeometries_r(h_, faces); ++i) {
            const GEOSGeometry* face = GEOSGetGeometryN_r(h_, faces, i);
            GEOSGeometry* place = GEOSPointOnSurface_r(h_, face);
            if (GEOSPreparedContains_r(h_, prepared, place) == 1) {
                results_.push_back(GEOSGeom_clone_r(h_, face));
                ++faces_;
            }
            GEOSGeom_destroy_r(h_, place);
        }
        GEOSPreparedGeom_destroy_r(h_, prepared);
        for (GEOSGeometry* made : {all, noded, faces}) GEOSGeom_destroy_r(h_, made);
    }

    double measure() const override {
        double sum = faces_;
        for (const GEOSGeometry* result : results_) {
            double length = 0;
            GEOSLength_r(h_, result, &length);
            if (faces_ == 0) sum += length;
        }
        return sum;
    }

    void clear() override {
        for (GEOSGeometry* result : results_) GEOSGeom_destroy_r(h_, result);
        results_.clear();
        faces_ = 0;
    }

  private:
    GEOSGeometry* read(const jws::JWGeometry& geometry) const {
        std::vector<unsigned char> wkb(static_cast<std::size_t>(geometry.getWKBSize()));
        geometry.exportToWkb(jws::JWWKBLittleEndian, wkb.data());
        GEOSWKBReader* reader = GEOSWKBReader_create_r(h_);
        GEOSGeometry* made = GEOSWKBReader_read_r(h_, reader, wkb.data(), wkb.size());
        GEOSWKBReader_destroy_r(h_, reader);
        if (made == nullptr) throw std::runtime_error("GEOS cannot read a geometry");
        return made;
    }

    GEOSContextHandle_t h_;
    std::vector<GEOSGeometry*> lines_;
    GEOSGeometry* area_ = nullptr;
    std::vector<GEOSGeometry*> results_;
    int faces_ = 0;
};

}  // namespace

std::unique_ptr<LineClipRival> makeGeosLineClip() { return std::make_unique<GeosLineClip>(); }

}  // namespace bench
