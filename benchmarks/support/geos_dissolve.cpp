// SPDX-License-Identifier: MIT
//
// GEOS through its C interface. Timed: the union of each group. Not timed: parsing, repairing
// (unary union only: it throws on invalid input), and gathering groups to collections.
#include <geos_c.h>

#include <map>
#include <stdexcept>

#include "overlay/dissolve_cases.h"

namespace bench {

namespace {

class GeosDissolve final : public DissolveRival {
  public:
    explicit GeosDissolve(GeosUnion form) : m_form(form), m_context(GEOS_init_r()) {}
    ~GeosDissolve() override {
        clear();
        for (GEOSGeometry* group : m_groups) GEOSGeom_destroy_r(m_context, group);
        GEOS_finish_r(m_context);
    }

    void load(const GroupedPolygons& polygons) override {
        GEOSWKBReader* reader = GEOSWKBReader_create_r(m_context);
        std::map<int, std::vector<GEOSGeometry*>> groups;
        for (std::size_t i = 0; i < polygons.wkb.size(); ++i) {
            GEOSGeometry* geometry = GEOSWKBReader_read_r(m_context, reader, polygons.wkb[i].data(),
                                                          polygons.wkb[i].size());
            check(geometry);
            if (m_form == GeosUnion::Unary && GEOSisValid_r(m_context, geometry) != 1) {
                GEOSGeometry* valid = GEOSMakeValid_r(m_context, geometry);
                GEOSGeom_destroy_r(m_context, geometry);
                check(geometry = valid);
            }
            groups[polygons.group[i]].push_back(geometry);
        }
        GEOSWKBReader_destroy_r(m_context, reader);
        for (auto& [number, members] : groups) {
            m_groups.push_back(GEOSGeom_createCollection_r(m_context, GEOS_GEOMETRYCOLLECTION,
                                                           members.data(),
                                                           static_cast<unsigned>(members.size())));
        }
    }

    void run() override {
        for (const GEOSGeometry* group : m_groups) {
            m_united.push_back(m_form == GeosUnion::Unary ? GEOSUnaryUnion_r(m_context, group)
                                                          : GEOSCoverageUnion_r(m_context, group));
            check(m_united.back());
        }
    }

    void summarize(Summary& summary) override {
        GEOSWKBWriter* writer = GEOSWKBWriter_create_r(m_context);
        GEOSWKBWriter_setByteOrder_r(m_context, writer, GEOS_WKB_NDR);
        for (const GEOSGeometry* united : m_united) {
            std::size_t size = 0;
            unsigned char* wkb = GEOSWKBWriter_write_r(m_context, writer, united, &size);
            summary.add(wkb, size);
            GEOSFree_r(m_context, wkb);
        }
        GEOSWKBWriter_destroy_r(m_context, writer);
    }

    void clear() override {
        for (GEOSGeometry* united : m_united) GEOSGeom_destroy_r(m_context, united);
        m_united.clear();
    }

  private:
    static void check(const GEOSGeometry* geometry) {
        if (geometry == nullptr) throw std::runtime_error("GEOS threw");
    }

    GeosUnion m_form;
    GEOSContextHandle_t m_context;
    std::vector<GEOSGeometry*> m_groups;
    std::vector<GEOSGeometry*> m_united;
};

}  // namespace

std::unique_ptr<DissolveRival> makeGeosDissolve(GeosUnion form) {
    return std::make_unique<GeosDissolve>(form);
}

}  // namespace bench
