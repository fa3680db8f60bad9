// SPDX-License-Identifier: MIT
//
// GEOS through its C interface. Timed: building the trees, the queries, the pretests and the
// overlays. Not timed: reading and parsing the input, which is valid already.
#include "support/geos_rival.h"

#include <geos_c.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/layer_file.h"

namespace bench {

namespace {

class GeosLoop final : public Rival {
  public:
    GeosLoop(Operation operation, GeosPretest pretest)
        : m_parts(partsOf(operation)), m_pretest(pretest), m_context(GEOS_init_r()) {
        GEOSContext_setErrorMessageHandler_r(m_context, &GeosLoop::keepError, this);
    }

    ~GeosLoop() override {
        clear();
        destroy(m_a);
        destroy(m_b);
        GEOS_finish_r(m_context);
    }

    void load(const LayerPair& pair) override {
        read(pair.a, m_a);
        read(pair.b, m_b);
    }

    void run() override {
        walk(m_a, m_b, m_parts.pieces, m_parts.restOfA);
        if (m_parts.restOfB) walk(m_b, m_a, false, true);
    }

    void summarize(Summary& summary) override {
        GEOSWKBWriter* writer = GEOSWKBWriter_create_r(m_context);
        GEOSWKBWriter_setByteOrder_r(m_context, writer, GEOS_WKB_NDR);
        for (const GEOSGeometry* piece : m_pieces) {
            std::size_t size = 0;
            unsigned char* wkb = GEOSWKBWriter_write_r(m_context, writer, piece, &size);
            summary.add(wkb, size);
            GEOSFree_r(m_context, wkb);
        }
        GEOSWKBWriter_destroy_r(m_context, writer);
    }

    void clear() override { destroy(m_pieces); }

  private:
    static void keepCandidate(void* item, void* candidates) {
        static_cast<std::vector<const GEOSGeometry*>*>(candidates)
            ->push_back(static_cast<const GEOSGeometry*>(item));
    }

    static void keepError(const char* message, void* self) {
        static_cast<GeosLoop*>(self)->m_error = message;
    }

    void check(bool good) const {
        if (!good) throw std::runtime_error("GEOS: " + m_error);
    }

    void destroy(std::vector<GEOSGeometry*>& geometries) {
        for (GEOSGeometry* geometry : geometries) GEOSGeom_destroy_r(m_context, geometry);
        geometries.clear();
    }

    void read(const std::string& path, std::vector<GEOSGeometry*>& geometries) {
        GEOSWKBReader* reader = GEOSWKBReader_create_r(m_context);
        forEachWkb(path, [&](const unsigned char* wkb, std::size_t size) {
            geometries.push_back(GEOSWKBReader_read_r(m_context, reader, wkb, size));
            check(geometries.back() != nullptr);
        });
        GEOSWKBReader_destroy_r(m_context, reader);
    }

    void walk(const std::vector<GEOSGeometry*>& own, const std::vector<GEOSGeometry*>& others,
              bool pieces, bool rest) {
        GEOSSTRtree* tree = GEOSSTRtree_create_r(m_context, 10);
        for (GEOSGeometry* other : others) GEOSSTRtree_insert_r(m_context, tree, other, other);
        std::vector<const GEOSGeometry*> candidates;
        for (const GEOSGeometry* feature : own) {
            candidates.clear();
            GEOSSTRtree_query_r(m_context, tree, feature, &GeosLoop::keepCandidate, &candidates);
            if (!candidates.empty()) meet(feature, candidates, pieces);
            if (rest) keepPolygons(restOf(feature, candidates));
        }
        GEOSSTRtree_destroy_r(m_context, tree);
    }

    // Keeps the pieces of a feature, if wanted, and leaves of the candidates those that it meets.
    void meet(const GEOSGeometry* feature, std::vector<const GEOSGeometry*>& candidates,
              bool pieces) {
        const bool prepare = m_pretest == GeosPretest::Prepared;
        const GEOSPreparedGeometry* prepared =
            prepare ? GEOSPrepare_r(m_context, feature) : nullptr;
        std::size_t met = 0;
        for (const GEOSGeometry* other : candidates) {
            if (prepare && GEOSPreparedIntersects_r(m_context, prepared, other) == 0) continue;
            candidates[met++] = other;
            if (!pieces) continue;
            if (prepare && GEOSPreparedContainsProperly_r(m_context, prepared, other) == 1) {
                m_pieces.push_back(GEOSGeom_clone_r(m_context, other));
            } else {
                keepPolygons(GEOSIntersection_r(m_context, feature, other));
            }
        }
        candidates.resize(met);
        if (prepare) GEOSPreparedGeom_destroy_r(m_context, prepared);
    }

    // A feature without what it meets: that one by one, or united where there is much of it.
    GEOSGeometry* restOf(const GEOSGeometry* feature,
                         const std::vector<const GEOSGeometry*>& others) const {
        constexpr std::size_t few = 8;
        GEOSGeometry* rest = GEOSGeom_clone_r(m_context, feature);
        const auto takeOff = [&](const GEOSGeometry* other) {
            GEOSGeometry* less = GEOSDifference_r(m_context, rest, other);
            check(less != nullptr);
            GEOSGeom_destroy_r(m_context, rest);
            rest = less;
        };
        if (others.size() > few) {
            GEOSGeometry* united = unite(others);
            takeOff(united);
            GEOSGeom_destroy_r(m_context, united);
            return rest;
        }
        for (const GEOSGeometry* other : others) {
            if (GEOSisEmpty_r(m_context, rest) == 0) takeOff(other);
        }
        return rest;
    }

    GEOSGeometry* unite(const std::vector<const GEOSGeometry*>& geometries) const {
        std::vector<GEOSGeometry*> copies;
        for (const GEOSGeometry* g : geometries) copies.push_back(GEOSGeom_clone_r(m_context, g));
        GEOSGeometry* all =
            GEOSGeom_createCollection_r(m_context, GEOS_GEOMETRYCOLLECTION, copies.data(),
                                        static_cast<unsigned>(copies.size()));
        GEOSGeometry* united = GEOSUnaryUnion_r(m_context, all);
        check(united != nullptr);
        GEOSGeom_destroy_r(m_context, all);
        return united;
    }

    // Takes over a result: polygons as they are, of a collection the polygons, of anything
    // else nothing.
    void keepPolygons(GEOSGeometry* piece) {
        check(piece != nullptr);
        const int type = GEOSGeomTypeId_r(m_context, piece);
        const bool area = type == GEOS_POLYGON || type == GEOS_MULTIPOLYGON;
        if (area && GEOSisEmpty_r(m_context, piece) == 0) {
            m_pieces.push_back(piece);
            return;
        }
        std::vector<GEOSGeometry*> polygons;
        if (type == GEOS_GEOMETRYCOLLECTION) collectPolygons(piece, polygons);
        GEOSGeom_destroy_r(m_context, piece);
        if (polygons.empty()) return;
        m_pieces.push_back(GEOSGeom_createCollection_r(
            m_context, GEOS_MULTIPOLYGON, polygons.data(), static_cast<unsigned>(polygons.size())));
        check(m_pieces.back() != nullptr);
    }

    void collectPolygons(const GEOSGeometry* collection, std::vector<GEOSGeometry*>& polygons) {
        const int parts = GEOSGetNumGeometries_r(m_context, collection);
        for (int i = 0; i < parts; ++i) {
            const GEOSGeometry* part = GEOSGetGeometryN_r(m_context, collection, i);
            const int type = GEOSGeomTypeId_r(m_context, part);
            if (type == GEOS_POLYGON) {
                polygons.push_back(GEOSGeom_clone_r(m_context, part));
            } else if (type == GEOS_MULTIPOLYGON || type == GEOS_GEOMETRYCOLLECTION) {
                collectPolygons(part, polygons);
            }
        }
    }

    Parts m_parts;
    GeosPretest m_pretest;
    GEOSContextHandle_t m_context;
    std::string m_error;
    std::vector<GEOSGeometry*> m_a;
    std::vector<GEOSGeometry*> m_b;
    std::vector<GEOSGeometry*> m_pieces;
};

}  // namespace

std::unique_ptr<Rival> makeGeosLoop(Operation operation, GeosPretest pretest) {
    return std::make_unique<GeosLoop>(operation, pretest);
}

}  // namespace bench
