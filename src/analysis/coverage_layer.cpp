// SPDX-License-Identifier: MIT
#include "analysis/coverage_layer.h"

#include <chrono>
#include <memory>

#include "analysis/coverage_simplifier.h"
#include "analysis/line_forms.h"
#include "analysis/line_simplifier.h"
#include "boolean/ring_set.h"
#include "layers/layer_checks.h"
#include "layers/layer_map.h"

namespace jws::detail {
namespace {

constexpr const char* kName = "simplifyLayer";

/// The rings of all polygons of a layer.
struct LayerRings {
    std::vector<std::shared_ptr<const JWFeature>> features;  ///< that the views look into
    RingViews views;
    std::vector<int> owners;
    std::vector<std::size_t> firstOf;  ///< for each position the number of its first ring
};

[[noreturn]] void stop() {
    JWReport::setError(JWErrorCancelled, "the run was stopped; nothing was written");
    throw LayerFailure();
}

LayerRings readRings(FeatureInput& input) {
    constexpr std::int64_t block = 4096;
    LayerRings rings;
    std::vector<std::shared_ptr<const JWFeature>> features;
    const std::int64_t count = input.count();
    for (std::int64_t first = 0; first < count; first += block) {
        if (!JWReport::progress(0, count)) stop();
        input.readBlock(first, block, features);
        for (std::shared_ptr<const JWFeature>& feature : features) {
            rings.firstOf.push_back(rings.views.size());
            if (checkGeometry(*feature, AreaKind) != GeometryCheck::Usable) continue;
            appendRings(*feature->getGeometryPtr(), rings.views);
            rings.owners.resize(rings.views.size(), static_cast<int>(rings.firstOf.size()) - 1);
            rings.features.push_back(std::move(feature));
        }
    }
    return rings;
}

/// Puts simplified rings in the place of a geometry's own.
class RingExchange {
  public:
    RingExchange(const CoverageSimplifier& simplifier, std::size_t firstRing)
        : m_simplifier(simplifier), m_next(firstRing) {}

    void exchange(JWPolygon& polygon) {
        for (JWRing& ring : polygon.getRingList()) {
            std::vector<JWRawPoint> points = m_simplifier.ring(m_next++);
            if (!points.empty()) ring.getPointList() = std::move(points);
        }
    }
    void exchange(JWGeometry& geometry) {
        if (geometry.getGeometryType() == JWGeometryPolygon) {
            exchange(static_cast<JWPolygon&>(geometry));
        } else {
            for (JWPolygon& part : static_cast<JWMultiPolygon&>(geometry).getMemberList()) {
                exchange(part);
            }
        }
        geometry.updateEnvelop();
    }

  private:
    const CoverageSimplifier& m_simplifier;
    std::size_t m_next;
};

std::int64_t run(FeatureInput& input, FeatureOutput& output, const JWSimplifyOptions& options,
                 JWLayerReport& report) {
    using Clock = std::chrono::steady_clock;
    LineForms<LineSimplifier>::requireUsable(kName, options);
    const Clock::time_point start = Clock::now();
    LayerRings rings = readRings(input);
    const CoverageSimplifier simplifier(rings.views, rings.owners, options, [&] {
        return JWReport::progress(0, static_cast<std::int64_t>(rings.firstOf.size()));
    });
    if (!simplifier.isDone()) {
        report.cancelled = true;
        stop();
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    rings.views.clear();
    rings.features.clear();

    LayerMapJob job(input, output);
    job.kinds = AreaKind;
    job.outputType = input.geometryType();
    job.keepsEmpty = true;
    job.schema.addFieldsOf(input);
    job.map = [&](const JWFeature& feature, MapResults& results) {
        const auto position = static_cast<std::size_t>(results.position());
        std::unique_ptr<JWGeometry> geometry(feature.getGeometryPtr()->clone());
        RingExchange(simplifier, rings.firstOf[position]).exchange(*geometry);
        results.add(std::move(geometry));
    };
    const std::int64_t written = runLayerMap(job, {options.blockSize, options.threads}, report);
    report.secondsIndex = seconds;
    return written;
}

}  // namespace

int simplifyCoverage(JWFeatureLayer* input, JWFeatureLayer* output,
                     const JWSimplifyOptions& options, JWLayerReport* report) {
    return accountedLayers(kName, input, input, output, report, [&](JWLayerReport& account) {
        return run(*inputFrom(*input), *outputTo(*output), options, account);
    });
}

}  // namespace jws::detail
