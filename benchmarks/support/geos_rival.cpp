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
        : parts_(partsOf(operation)), pretest_(pretest), context_(GEOS_init_r()) {
        GEOSContext_setErrorMessageHandler_r(context_, &GeosLoop::keepError, this);
    }

    ~GeosLoop() override {
        clear();
        destroy(a_);
        destroy(b_);
        GEOS_finish_r(context_);
    }

    void load(const LayerPair& pair) override {
        read(pair.a, a_);
        read(pair.b, b_);
    }

    void run() override {
        walk(a_, b_, parts_.pieces, parts_.restOfA);
        if (parts_.restOfB) walk(b_, a_, false, true);
    }

    void summarize(Summary& summary) override {
        GEOSWKBWriter* writer = GEOSWKBWriter_create_r(context_);
        GEOSWKBWriter_setByteOrder_r(context_, writer, GEOS_WKB_NDR);
        for (const GEOSGeometry* piece : pieces_) {
            std::size_t size = 0;
            unsigned char* wkb = GEOSWKBWriter_write_r(context_, writer, piece, &size);
            summary.add(wkb, size);
            GEOSFree_r(context_, wkb);
        }
        GEOSWKBWriter_destroy_r(context_, writer);
    }

    void clear() override { destroy(pieces_); }

  private:
    static void keepCandidate(void* item, void* candidates) {
        static_cast<std::vector<const GEOSGeometry*>*>(candidates)
            ->push_back(static_cast<const GEOSGeometry*>(item));
    }

    static void keepError(const char* message, void* self) {
        static_cast<GeosLoop*>(self)->error_ = message;
    }

    void check(bool good) const {
        if (!good) throw std::runtime_error("GEOS: " + error_);
    }

    void destroy(std::vector<GEOSGeometry*>& geometries) {
        for (GEOSGeometry* geometry : geometries) GEOSGeom_destroy_r(context_, geometry);
        geometries.clear();
    }

    void read(const std::string& path, std::vector<GEOSGeometry*>& geometries) {
        GEOSWKBReader* reader = GEOSWKBReader_create_r(context_);
        forEachWkb(path, [&](const unsigned char* wkb, std::size_t size) {
            geometries.push_back(GEOSWKBReader_read_r(context_, reader, wkb, size));
            check(geometries.back() != nullptr);
        });
        GEOSWKBReader_destroy_r(context_, reader);
    }

    void walk(const std::vector<GEOSGeometry*>& own, const std::vector<GEOSGeometry*>& others,
              bool pieces, bool rest) {
        GEOSSTRtree* tree = GEOSSTRtree_create_r(context_, 10);
        for (GEOSGeometry* other : others) GEOSSTRtree_insert_r(context_, tree, other, other);
        std::vector<const GEOSGeometry*> candidates;
        for (const GEOSGeometry* feature : own) {
            candidates.clear();
            GEOSSTRtree_query_r(context_, tree, feature, &GeosLoop::keepCandidate, &candidates);
            if (!candidates.empty()) meet(feature, candidates, pieces);
            if (rest) keepPolygons(restOf(feature, candidates));
        }
        GEOSSTRtree_destroy_r(context_, tree);
    }

    // Keeps the pieces of a feature, if wanted, and leaves of the candidates those that it meets.
    void meet(const GEOSGeometry* feature, std::vector<const GEOSGeometry*>& candidates,
              bool pieces) {
        const bool prepare = pretest_ == GeosPretest::Prepared;
        const GEOSPreparedGeometry* prepared = prepare ? GEOSPrepare_r(context_, feature) : nullptr;
        std::size_t met = 0;
        for (const GEOSGeometry* other : candidates) {
            if (prepare && GEOSPreparedIntersects_r(context_, prepared, other) == 0) continue;
            candidates[met++] = other;
            if (!pieces) continue;
            if (prepare && GEOSPreparedContainsProperly_r(context_, prepared, other) == 1) {
                pieces_.push_back(GEOSGeom_clone_r(context_, other));
            } else {
                keepPolygons(GEOSIntersection_r(context_, feature, other));
            }
        }
        candidates.resize(met);
        if (prepare) GEOSPreparedGeom_destroy_r(context_, prepared);
    }

    // A feature without what it meets: that one by one, or united where there is much of it.
    GEOSGeometry* restOf(const GEOSGeometry* feature,
                         const std::vector<const GEOSGeometry*>& others) const {
        constexpr std::size_t few = 8;
        GEOSGeometry* rest = GEOSGeom_clone_r(context_, feature);
        const auto takeOff = [&](const GEOSGeometry* other) {
            GEOSGeometry* less = GEOSDifference_r(context_, rest, other);
            check(less != nullptr);
            GEOSGeom_destroy_r(context_, rest);
            rest = less;
        };
        if (others.size() > few) {
            GEOSGeometry* united = unite(others);
            takeOff(united);
            GEOSGeom_destroy_r(context_, united);
            return rest;
        }
        for (const GEOSGeometry* other : others) {
            if (GEOSisEmpty_r(context_, rest) == 0) takeOff(other);
        }
        return rest;
    }

    GEOSGeometry* unite(const std::vector<const GEOSGeometry*>& geometries) const {
        std::vector<GEOSGeometry*> copies;
        for (const GEOSGeometry* g : geometries) copies.push_back(GEOSGeom_clone_r(context_, g));
        GEOSGeometry* all = GEOSGeom_createCollection_r(
            context_, GEOS_GEOMETRYCOLLECTION, copies.data(), static_cast<unsigned>(copies.size()));
        GEOSGeometry* united = GEOSUnaryUnion_r(context_, all);
        check(united != nullptr);
        GEOSGeom_destroy_r(context_, all);
        return united;
    }

    // Takes over a result: polygons as they are, of a collection the polygons, of anything
    // else nothing.
    void keepPolygons(GEOSGeometry* piece) {
        check(piece != nullptr);
        const int type = GEOSGeomTypeId_r(context_, piece);
        const bool area = type == GEOS_POLYGON || type == GEOS_MULTIPOLYGON;
        if (area && GEOSisEmpty_r(context_, piece) == 0) {
            pieces_.push_back(piece);
            return;
        }
        std::vector<GEOSGeometry*> polygons;
        if (type == GEOS_GEOMETRYCOLLECTION) collectPolygons(piece, polygons);
        GEOSGeom_destroy_r(context_, piece);
        if (polygons.empty()) return;
        pieces_.push_back(GEOSGeom_createCollection_r(context_, GEOS_MULTIPOLYGON, polygons.data(),
                                                      static_cast<unsigned>(polygons.size())));
        check(pieces_.back() != nullptr);
    }

    void collectPolygons(const GEOSGeometry* collection, std::vector<GEOSGeometry*>& polygons) {
        const int parts = GEOSGetNumGeometries_r(context_, collection);
        for (int i = 0; i < parts; ++i) {
            const GEOSGeometry* part = GEOSGetGeometryN_r(context_, collection, i);
            const int type = GEOSGeomTypeId_r(context_, part);
            if (type == GEOS_POLYGON) {
                polygons.push_back(GEOSGeom_clone_r(context_, part));
            } else if (type == GEOS_MULTIPOLYGON || type == GEOS_GEOMETRYCOLLECTION) {
                collectPolygons(part, polygons);
            }
        }
    }

    Parts parts_;
    GeosPretest pretest_;
    GEOSContextHandle_t context_;
    std::string error_;
    std::vector<GEOSGeometry*> a_;
    std::vector<GEOSGeometry*> b_;
    std::vector<GEOSGeometry*> pieces_;
};

}  // namespace

std::unique_ptr<Rival> makeGeosLoop(Operation operation, GeosPretest pretest) {
    return std::make_unique<GeosLoop>(operation, pretest);
}

}  // namespace bench
