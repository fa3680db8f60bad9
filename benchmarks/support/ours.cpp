// SPDX-License-Identifier: MIT
//
// Our own contender, through the public headers only. Console texts are swallowed: a terminal is no
// part of what is measured.
#include "support/ours.h"

#include <stdexcept>
#include <string>
#include <vector>

#include "jw_feature.h"
#include "jw_geometryoverlay2.h"
#include "jw_report.h"
#include "support/layer_file.h"

namespace bench {

namespace {

using namespace jws;

constexpr int kAttributesOfBoth = 0;
constexpr double kKeepAll = 0.0;  // no area is too small
constexpr int kTeam = 8;          // of the _mp forms

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + JWReport::lastError().text);
}

struct CloseSource {
    void operator()(JWDataSource* source) const { JWDataSource::destroyDataSource(source); }
};
struct CloseLayer {
    void operator()(JWFeatureLayer* layer) const { JWFeatureLayer::destroyFeatureLayer(layer); }
};
using SourcePtr = std::unique_ptr<JWDataSource, CloseSource>;
using LayerPtr = std::unique_ptr<JWFeatureLayer, CloseLayer>;

// A layer with the source that it stands on; destroyed in this order, layer first.
struct OpenLayer {
    SourcePtr source;
    LayerPtr layer;

    // Closes both, reporting what could not be written.
    void close() {
        const bool layerClosed = JWFeatureLayer::destroyFeatureLayer(layer.release());
        const bool sourceClosed = JWDataSource::destroyDataSource(source.release());
        if (!layerClosed || !sourceClosed) fail("cannot close the result");
    }
};

OpenLayer openFile(const std::string& path) {
    OpenLayer file;
    file.source.reset(JWDataSource::open(path.c_str()));
    if (file.source) file.layer.reset(file.source->openLayer(0));
    if (!file.layer) fail("cannot open " + path);
    return file;
}

OpenLayer createLayer(SourcePtr source, const char* name, enumJWWKBGeometryType type,
                      JWFeatureLayer& like) {
    OpenLayer made{std::move(source), nullptr};
    if (made.source) {
        made.layer.reset(made.source->createLayer(name, type, like.getLayerSpatialRefPtr()));
    }
    if (!made.layer) fail("cannot create a layer");
    return made;
}

OpenLayer copyToMemory(const std::string& path) {
    const OpenLayer file = openFile(path);
    OpenLayer memory =
        createLayer(SourcePtr(JWDataSource::createInMemory()), file.layer->getLayerName(),
                    file.layer->getGeometryType(), *file.layer);
    const JWFields& fields = *file.layer->getFieldsDefnPtr();
    for (int i = 0; i < fields.getFieldCount(); ++i) {
        if (!memory.layer->createField(*fields.getFieldPtr(i))) fail("cannot create a field");
    }
    memory.layer->updateFieldsDefnRef();
    JWFeatureClass features;
    if (file.layer->getFeaturesByPosition(0, file.layer->getFeatureCount64(), features) < 0 ||
        !memory.layer->createFeatures(&features, true)) {
        fail("cannot copy " + path);
    }
    return memory;
}

using Overlay = int (*)(JWFeatureLayer*, JWFeatureLayer*, JWFeatureLayer*, const JWOverlayOptions&,
                        JWLayerReport*);

Overlay functionOf(Operation operation) {
    switch (operation) {
        case Operation::Intersect:
            return &JWGeometryOverlay2::intersectPolygonLayers;
        case Operation::Erase:
            return &JWGeometryOverlay2::erasePolygonLayer;
        case Operation::Union:
            return &JWGeometryOverlay2::unionPolygonLayers2;
        case Operation::Identity:
            return &JWGeometryOverlay2::identityPolygonLayers;
        default:
            return &JWGeometryOverlay2::symmetricalDifferencePolygonLayers;
    }
}

void overlay(const OurForm& form, JWFeatureLayer& a, JWFeatureLayer& b, JWFeatureLayer& result) {
    JWOverlayOptions options;
    options.attributeMode = kAttributesOfBoth;
    options.tolerance = kKeepAll;
    options.blockSize = form.blockSize;
    options.threads = form.team ? kTeam : 1;
    const int code = functionOf(form.operation)(&a, &b, &result, options, nullptr);
    if (code < 0) fail("the overlay answered " + std::to_string(code));
}

class OursMemory final : public Rival {
  public:
    explicit OursMemory(const OurForm& form) : m_form(form) {}

    void load(const LayerPair& pair) override {
        JWReport::setMessagesOn(false);
        m_a = copyToMemory(pair.a);
        m_b = copyToMemory(pair.b);
    }

    void run() override {
        m_result = createLayer(SourcePtr(JWDataSource::createInMemory()), "result",
                               JWWKBMultiPolygon, *m_a.layer);
        overlay(m_form, *m_a.layer, *m_b.layer, *m_result.layer);
    }

    void summarize(Summary& summary) override {
        const int count = m_result.layer->getFeatureCount();
        JWFeatureClass features;
        std::vector<unsigned char> wkb;
        for (int first = 0; first < count; first += kBlock) {
            if (m_result.layer->getFeaturesByPosition(first, kBlock, features) < 0)
                fail("unreadable");
            for (int i = 0; i < features.getFeatureCount(); ++i) {
                const JWGeometry& geometry = *features.getFeatureAt(i)->getGeometryPtr();
                wkb.resize(geometry.getWKBSize());
                if (geometry.exportToWkb(JWWKBLittleEndian, wkb.data()) != JWDataErrNone) {
                    fail("cannot export a result");
                }
                summary.add(wkb.data(), wkb.size());
            }
        }
    }

    void clear() override { m_result = OpenLayer(); }

  private:
    static constexpr int kBlock = 10000;

    OurForm m_form;
    OpenLayer m_a;
    OpenLayer m_b;
    OpenLayer m_result;
};

class OursFile final : public Rival {
  public:
    explicit OursFile(const OurForm& form) : m_form(form) {}

    void load(const LayerPair& pair) override {
        JWReport::setMessagesOn(false);
        m_pair = pair;
        m_path = pair.workDirectory + (m_form.team ? "/ours_mp.gpkg" : "/ours.gpkg");
        removeGeoPackage(m_path);
    }

    void run() override {
        const OpenLayer a = openFile(m_pair.a);
        const OpenLayer b = openFile(m_pair.b);
        OpenLayer result = createLayer(SourcePtr(JWDataSource::create(m_path.c_str(), "GPKG")),
                                       "result", JWWKBMultiPolygon, *a.layer);
        overlay(m_form, *a.layer, *b.layer, *result.layer);
        result.close();
    }

    void summarize(Summary& summary) override {
        forEachWkb(m_path, [&summary](const unsigned char* wkb, std::size_t size) {
            summary.add(wkb, size);
        });
    }

    void clear() override { removeGeoPackage(m_path); }

  private:
    OurForm m_form;
    LayerPair m_pair;
    std::string m_path;
};

}  // namespace

std::unique_ptr<Rival> makeOursMemory(const OurForm& form) {
    return std::make_unique<OursMemory>(form);
}

std::unique_ptr<Rival> makeOursFile(const OurForm& form) {
    return std::make_unique<OursFile>(form);
}

}  // namespace bench
