// SPDX-License-Identifier: MIT
#include "layers/layer_map.h"

#include <algorithm>
#include <chrono>

#include "foundation/parallel.h"
#include "foundation/vertex_lists.h"
#include "layers/block_filter.h"
#include "layers/layer_checks.h"

namespace jws::detail {

void MapResults::add(std::unique_ptr<JWGeometry> geometry) {
    PendingResult result;
    result.isEmpty = !geometry;
    if (geometry) {
        result.area = areaOf(*geometry);
        result.vertices = vertexCount(*geometry);
    }
    result.feature = m_schema.makeFeature(std::move(geometry), {&m_source, nullptr, 0, result.area},
                                          result.lostField);
    m_results.push_back(std::move(result));
}

namespace {

/// What becomes of one feature until its turn to be written comes.
struct MapSlot {
    GeometryCheck check = GeometryCheck::Usable;
    double inputArea = 0;
    std::int64_t inputVertices = 0;
    std::vector<PendingResult> results;
    std::vector<std::string> failures;
};

class MapRun {
  public:
    MapRun(LayerMapJob& job, const LayerMapOptions& options, JWLayerReport& report)
        : m_job(job),
          m_report(report),
          m_team(options.threads),
          m_total(job.input.count()),
          m_blocks(m_total, options.blockSize),
          m_writer({[this](std::size_t i) { return write(i); },
                    [this](std::size_t i) { m_slots[i] = MapSlot(); },
                    [this] { return JWReport::progress(m_report.readA, m_total); }}) {}

    void run();
    bool isStopped() const { return m_writer.isStopped(); }

  private:
    void mapBlock(std::int64_t block);
    void mapFeature(const FeatureMap& map, std::size_t i);
    std::size_t write(std::size_t i);
    void reject(const JWFeature& feature, const std::string& reason) {
        m_report.rejected.push_back(
            {m_job.input.source(), m_job.input.name(), feature.getFID64(), reason});
    }

    LayerMapJob& m_job;
    JWLayerReport& m_report;
    Team m_team;
    std::int64_t m_total;
    Blocks m_blocks;
    std::int64_t m_blockBegin = 0;
    std::vector<std::shared_ptr<const JWFeature>> m_block;
    std::vector<MapSlot> m_slots;
    OrderedWriter m_writer;
};

void MapRun::mapFeature(const FeatureMap& map, std::size_t i) {
    const JWFeature& feature = *m_block[i];
    MapSlot& slot = m_slots[i];
    slot.check = checkGeometry(feature, m_job.kinds);
    MapResults results(m_job.schema, feature, m_blockBegin + static_cast<std::int64_t>(i),
                       slot.results, slot.failures);
    if (slot.check == GeometryCheck::Usable) {
        slot.inputArea = areaOf(*feature.getGeometryPtr());
        slot.inputVertices = vertexCount(*feature.getGeometryPtr());
        map(feature, results);
    } else if (slot.check == GeometryCheck::Empty && m_job.keepsEmpty) {
        results.add(nullptr);
    }
    // One worker would only do earlier what it has to do anyway.
    if (m_team.size() == 1) return;
    for (PendingResult& result : slot.results)
        result.record = m_job.output.prepare(*result.feature);
}

std::size_t MapRun::write(std::size_t i) {
    const JWFeature& feature = *m_block[i];
    MapSlot& slot = m_slots[i];
    ++m_report.readA;
    m_report.areaA += slot.inputArea;
    m_report.verticesA += slot.inputVertices;
    if (slot.check == GeometryCheck::Empty) ++m_report.emptyA;
    const std::string reason = reasonOf(slot.check, feature, m_job.kinds);
    if (!reason.empty()) reject(feature, reason);
    for (const std::string& failure : slot.failures) reject(feature, failure);
    for (PendingResult& result : slot.results) {
        writeResult(m_job.output, result, m_job.input, feature.getFID64(), m_report);
    }
    return slot.results.size();
}

void MapRun::mapBlock(std::int64_t block) {
    m_blockBegin = m_blocks.first(block) - 1;
    m_job.input.readBlock(m_blockBegin, m_blocks.size(), m_block);
    const auto count = static_cast<std::int64_t>(m_block.size());
    if (count == 0) return;
    if (m_job.onBlock) m_job.onBlock(block, m_blockBegin, count);
    m_slots = std::vector<MapSlot>(m_block.size());
    m_writer.start(m_block.size());
    const std::int64_t chunk =
        std::clamp<std::int64_t>(count / (std::int64_t{8} * m_team.size()), 1, 64);
    parallelChunks(m_team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
        const FeatureMap map = m_job.makeMap ? m_job.makeMap() : m_job.map;
        for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i) {
            mapFeature(map, i);
            m_writer.setComplete(i);
        }
        return m_writer.writeCompleted();
    });
    if (!m_writer.isStopped()) return;
    JWReport::setError(JWErrorCancelled, "the run was stopped; nothing was written");
    throw LayerFailure();
}

void MapRun::run() {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    for (std::int64_t block = 0; block < m_blocks.number(); ++block) mapBlock(block);
    m_report.secondsOverlay = std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace

std::int64_t runLayerMap(LayerMapJob& job, const LayerMapOptions& options, JWLayerReport& report) {
    report = JWLayerReport();
    job.output.setGeometryType(job.outputType);
    job.schema.create(job.output);
    MapRun run(job, options, report);
    job.output.begin();
    try {
        run.run();
        job.output.commit();
    } catch (...) {
        job.output.rollback();
        report.written = report.writtenEmpty = 0;
        report.area = 0;
        report.vertices = 0;
        report.cancelled = run.isStopped();
        throw;
    }
    return report.written;
}

int mapLayer(const char* function, JWFeatureLayer* input, JWFeatureLayer* output,
             const LayerMapOptions& options, JWLayerReport* report,
             const std::function<void(LayerMapJob&)>& setUp) {
    return accountedLayers(function, input, input, output, report, [&](JWLayerReport& account) {
        const std::unique_ptr<FeatureInput> features = inputFrom(*input);
        const std::unique_ptr<FeatureOutput> results = outputTo(*output);
        LayerMapJob job(*features, *results);
        setUp(job);
        return runLayerMap(job, options, account);
    });
}

}  // namespace jws::detail
