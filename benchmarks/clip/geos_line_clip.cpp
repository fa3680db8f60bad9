// SPDX-License-Identifier: MIT
#include <geos_c.h>

#include <stdexcept>
#include <vector>

#include "clip/line_clip_rival.h"

namespace bench {
namespace {

class GeosLineClip final : public LineClipRival {
  public:
    GeosLineClip() : m_h(GEOS_init_r()) {}
    ~GeosLineClip() override {
        clear();
        for (GEOSGeometry* line : m_lines) GEOSGeom_destroy_r(m_h, line);
        GEOSGeom_destroy_r(m_h, m_area);
        GEOS_finish_r(m_h);
    }

    void load(const jws::JWMultiLineString& lines, const jws::JWPolygon& area) override {
        for (const jws::JWLineString& line : lines.getMemberList()) m_lines.push_back(read(line));
        m_area = read(area);
    }

    void clip() override {
        const GEOSPreparedGeometry* prepared = GEOSPrepare_r(m_h, m_area);
        for (const GEOSGeometry* line : m_lines) {
            if (GEOSPreparedContains_r(m_h, prepared, line) == 1) {
                m_results.push_back(GEOSGeom_clone_r(m_h, line));
            } else if (GEOSPreparedIntersects_r(m_h, prepared, line) == 1) {
                m_results.push_back(GEOSIntersection_r(m_h, m_area, line));
            }
        }
        GEOSPreparedGeom_destroy_r(m_h, prepared);
    }

    void cut() override {
        std::vector<GEOSGeometry*> parts = {GEOSBoundary_r(m_h, m_area)};
        for (const GEOSGeometry* line : m_lines) parts.push_back(GEOSGeom_clone_r(m_h, line));
        GEOSGeometry* all = GEOSGeom_createCollection_r(m_h, GEOS_GEOMETRYCOLLECTION, parts.data(),
                                                        static_cast<unsigned>(parts.size()));
        GEOSGeometry* noded = GEOSUnaryUnion_r(m_h, all);
        GEOSGeometry* faces = GEOSPolygonize_r(m_h, &noded, 1);
        const GEOSPreparedGeometry* prepared = GEOSPrepare_r(m_h, m_area);
        for (int i = 0; i < GEOSGetNumGeometries_r(m_h, faces); ++i) {
            const GEOSGeometry* face = GEOSGetGeometryN_r(m_h, faces, i);
            GEOSGeometry* place = GEOSPointOnSurface_r(m_h, face);
            if (GEOSPreparedContains_r(m_h, prepared, place) == 1) {
                m_results.push_back(GEOSGeom_clone_r(m_h, face));
                ++m_faces;
            }
            GEOSGeom_destroy_r(m_h, place);
        }
        GEOSPreparedGeom_destroy_r(m_h, prepared);
        for (GEOSGeometry* made : {all, noded, faces}) GEOSGeom_destroy_r(m_h, made);
    }

    double measure() const override {
        double sum = m_faces;
        for (const GEOSGeometry* result : m_results) {
            double length = 0;
            GEOSLength_r(m_h, result, &length);
            if (m_faces == 0) sum += length;
        }
        return sum;
    }

    void clear() override {
        for (GEOSGeometry* result : m_results) GEOSGeom_destroy_r(m_h, result);
        m_results.clear();
        m_faces = 0;
    }

  private:
    GEOSGeometry* read(const jws::JWGeometry& geometry) const {
        std::vector<unsigned char> wkb(static_cast<std::size_t>(geometry.getWKBSize()));
        geometry.exportToWkb(jws::JWWKBLittleEndian, wkb.data());
        GEOSWKBReader* reader = GEOSWKBReader_create_r(m_h);
        GEOSGeometry* made = GEOSWKBReader_read_r(m_h, reader, wkb.data(), wkb.size());
        GEOSWKBReader_destroy_r(m_h, reader);
        if (made == nullptr) throw std::runtime_error("GEOS cannot read a geometry");
        return made;
    }

    GEOSContextHandle_t m_h;
    std::vector<GEOSGeometry*> m_lines;
    GEOSGeometry* m_area = nullptr;
    std::vector<GEOSGeometry*> m_results;
    int m_faces = 0;
};

}  // namespace

std::unique_ptr<LineClipRival> makeGeosLineClip() { return std::make_unique<GeosLineClip>(); }

}  // namespace bench
