// SPDX-License-Identifier: MIT
#include "analysis/coverage_layer.h"

#include <atomic>
#include <chrono>
#include <memory>

#include "analysis/coverage_simplifier.h"
#include "analysis/line_forms.h"
#include "analysis/line_simplifier.h"
#include "foundation/pulse.h"
#include "foundation/ring_set.h"
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

LayerRings readRings(FeatureInput& input) {
    constexpr std::int64_t block = 256;
    LayerRings rings;
    std::vector<std::shared_ptr<const JWFeature>> features;
    const std::int64_t count = input.count();
    for (std::int64_t first = 0; first < count; first += block) {
        Pulse::tick();
        input.readBlock(first, block, features);
        for (std::shared_ptr<const JWFeature>& feature : features) {
            input.keep(static_cast<std::int64_t>(rings.firstOf.size()), feature);
            rings.firstOf.push_back(rings.views.size());
            if (checkGeometry(*feature, AreaKind) != GeometryCheck::Usable) continue;
            appendRings(*feature->getGeometryPtr(), rings.views);
            rings.owners.resize(rings.views.size(), static_cast<int>(rings.firstOf.size()) - 1);
            rings.features.push_back(std::move(feature));
        }
    }
    return rings;
}

/// Makes geometries of simplified rings, in the order of the rings.
class RingExchange {
  public:
    RingExchange(const CoverageSimplifier& simplifier, std::size_t firstRing)
        : m_simplifier(simplifier), m_next(firstRing) {}

    std::unique_ptr<JWGeometry> exchanged(const JWGeometry& geometry) {
        std::unique_ptr<JWGeometry> result;
        if (geometry.getGeometryType() == JWGeometryPolygon) {
            auto polygon = std::make_unique<JWPolygon>();
            exchange(static_cast<const JWPolygon&>(geometry), *polygon);
            result = std::move(polygon);
        } else {
            auto polygons = std::make_unique<JWMultiPolygon>();
            for (const JWPolygon& part :
                 static_cast<const JWMultiPolygon&>(geometry).getMemberList()) {
                exchange(part, polygons->getMemberList().emplace_back());
            }
            result = std::move(polygons);
        }
        result->updateEnvelop();
        return result;
    }

  private:
    void exchange(const JWPolygon& polygon, JWPolygon& result) {
        for (const JWRing& ring : polygon.getRingList()) {
            std::vector<JWRawPoint> points = m_simplifier.ring(m_next++);
            result.getRingList().push_back(points.empty() ? ring : JWRing(std::move(points)));
        }
    }

    const CoverageSimplifier& m_simplifier;
    std::size_t m_next;
};

/// Reads the layer and simplifies it as a whole. Throws LayerFailure when that is stopped.
CoverageSimplifier simplifiedRings(FeatureInput& input, const JWSimplifyOptions& options,
                                   std::vector<std::size_t>& firstOf, JWLayerReport& report) {
    std::atomic<bool> stopped{false};  // beats come from all workers
    const Pulse pulse([&] {
        if (JWReport::progress(0, input.count())) return;
        stopped = true;
        JWReport::setError(JWErrorCancelled, "the run was stopped; nothing was written");
        throw LayerFailure();
    });
    try {
        LayerRings rings = readRings(input);
        firstOf = std::move(rings.firstOf);
        return CoverageSimplifier(rings.views, rings.owners, options);
    } catch (...) {
        report.cancelled = stopped;
        throw;
    }
}

std::int64_t run(FeatureInput& input, FeatureOutput& output, const JWSimplifyOptions& options,
                 JWLayerReport& report) {
    using Clock = std::chrono::steady_clock;
    LineForms<LineSimplifier>::requireUsable(kName, options);
    const Clock::time_point start = Clock::now();
    std::vector<std::size_t> firstOf;
    const CoverageSimplifier simplifier = simplifiedRings(input, options, firstOf, report);
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();

    LayerMapJob job(input, output);
    job.kinds = AreaKind;
    job.outputType = input.geometryType();
    job.keepsEmpty = true;
    job.schema.addFieldsOf(input);
    job.map = [&](const JWFeature& feature, MapResults& results) {
        const auto position = static_cast<std::size_t>(results.position());
        RingExchange exchange(simplifier, firstOf[position]);
        results.add(exchange.exchanged(*feature.getGeometryPtr()));
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
