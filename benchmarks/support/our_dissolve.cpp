// SPDX-License-Identifier: MIT
//
// Our dissolve, through the public headers: layer in memory to layer in memory, so that reading
// features, finding clusters, and attributes are in the time.
#include <stdexcept>

#include "jw_feature.h"
#include "jw_geometrydissolve.h"
#include "overlay/dissolve_cases.h"

namespace bench {

namespace {

using namespace jws;

struct CloseSource {
    void operator()(JWDataSource* source) const { JWDataSource::destroyDataSource(source); }
};
struct CloseLayer {
    void operator()(JWFeatureLayer* layer) const { JWFeatureLayer::destroyFeatureLayer(layer); }
};

struct MemoryLayer {
    std::unique_ptr<JWDataSource, CloseSource> source;
    std::unique_ptr<JWFeatureLayer, CloseLayer> layer;
};

MemoryLayer makeLayer() {
    MemoryLayer made;
    made.source.reset(JWDataSource::createInMemory());
    if (made.source) made.layer.reset(made.source->createLayer("l", JWWKBUnknown, nullptr));
    if (!made.layer) throw std::runtime_error("cannot create a layer");
    return made;
}

class OurDissolve final : public DissolveRival {
  public:
    explicit OurDissolve(int threads) {
        m_options.threads = threads;
        m_options.multipart = true;
    }

    void load(const GroupedPolygons& polygons) override {
        JWReport::setMessageSink([](const char*, void*) {}, nullptr);
        m_options.acrossClusters = polygons.scattered;
        m_input = makeLayer();
        m_input.layer->createField(JWField("group", JWFieldInteger));
        m_input.layer->updateFieldsDefnRef();
        m_input.layer->beginTransaction();
        for (std::size_t i = 0; i < polygons.wkb.size(); ++i) {
            JWGeometry* geometry = nullptr;
            if (JWGeometryFactory::createFromWkb(polygons.wkb[i].data(), polygons.wkb[i].size(),
                                                 &geometry) != JWDataErrNone) {
                throw std::runtime_error("cannot read a polygon");
            }
            JWFeature feature(m_input.layer->getFieldsDefnPtr());
            feature.setGeometryDirectly(geometry, true);
            feature.setFieldValue(0, polygons.group[i]);
            m_input.layer->createFeature(&feature);
        }
        m_input.layer->commitTransaction();
    }

    void run() override {
        m_result = makeLayer();
        if (JWGeometryDissolve::dissolvePolygonLayer(m_input.layer.get(), m_result.layer.get(), {0},
                                                     m_options, nullptr) < 0) {
            throw std::runtime_error("dissolve: " + JWReport::lastError().text);
        }
    }

    void summarize(Summary& summary) override {
        std::vector<unsigned char> wkb;
        for (int i = 0; i < m_result.layer->getFeatureCount(); ++i) {
            const std::unique_ptr<JWGeometry> geometry(m_result.layer->getGeometry(i));
            wkb.resize(geometry->getWKBSize());
            geometry->exportToWkb(JWWKBLittleEndian, wkb.data());
            summary.add(wkb.data(), wkb.size());
        }
    }

    void clear() override { m_result = MemoryLayer(); }

  private:
    JWDissolveOptions m_options;
    MemoryLayer m_input;
    MemoryLayer m_result;
};

}  // namespace

std::unique_ptr<DissolveRival> makeOurDissolve(int threads) {
    return std::make_unique<OurDissolve>(threads);
}

}  // namespace bench
