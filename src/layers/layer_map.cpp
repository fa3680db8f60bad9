// SPDX-License-Identifier: MIT
#include "layers/layer_map.h"

#include <algorithm>

#include "foundation/parallel.h"
#include "foundation/pulse.h"
#include "foundation/vertex_lists.h"
#include "layers/block_filter.h"
#include "layers/layer_checks.h"
#include "layers/layer_run.h"
#include "layers/ordered_walk.h"

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
    m_results.add(std::move(result), m_grew);
}

namespace {

/// What becomes of one feature until its turn to be written comes.
struct MapSlot {
    GeometryCheck check = GeometryCheck::Usable;
    double inputArea = 0;
    std::int64_t inputVertices = 0;
    PendingResults results;
    std::vector<std::string> failures;
};

class MapRun {
  public:
    MapRun(LayerMapJob& job, const LayerMapOptions& options, JWLayerReport& report)
        : m_job(job),
          m_report(report),
          m_team(options.threads),
          m_total(job.input.count()),
          m_run(report, m_total),
          m_blocks(m_total, options.blockSize),
          m_walk(m_team, job.input,
                 {[this](Chunk& chunk) { mapChunk(chunk); },
                  [this](Chunk& chunk, std::size_t i) { write(chunk, i); },
                  [this] { return m_run.keepOn(); },
                  [this](Chunk& chunk, std::size_t i) {
                      return chunk.slots[i].results.prepare(m_job.output);
                  },
                  32,
                  [this](Chunk& chunk, std::size_t i) { writePart(chunk, i); },
                  {},
                  areApart(job.input, job.output)}) {}

    std::int64_t run() {
        return m_run.transact(m_job.output, [this] { mapAll(); });
    }

  private:
    using Chunk = FeatureChunk<MapSlot>;

    void mapAll();
    void mapBlock(std::int64_t block);
    void mapChunk(Chunk& chunk);
    void mapFeature(const FeatureMap& map, Chunk& chunk, std::size_t i, const Growth& grew) const;
    void writeResults(Chunk& chunk, std::size_t i);
    void writePart(Chunk& chunk, std::size_t i);
    void write(Chunk& chunk, std::size_t i);

    LayerMapJob& m_job;
    JWLayerReport& m_report;
    Team m_team;
    std::int64_t m_total;
    LayerRun m_run;
    Blocks m_blocks;
    OrderedWalk<MapSlot> m_walk;
};

void MapRun::mapChunk(Chunk& chunk) {
    const Pulse pulse([this] { m_run.beat(); });
    const FeatureMap map = m_job.makeMap ? m_job.makeMap() : m_job.map;
    std::size_t atHand = 0;
    const Growth grew = [&](std::size_t bytes) { m_walk.grew(chunk, atHand, bytes); };
    for (; atHand < chunk.size(); ++atHand) {
        Pulse::tick();
        mapFeature(map, chunk, atHand, grew);
    }
}

void MapRun::mapFeature(const FeatureMap& map, Chunk& chunk, std::size_t i,
                        const Growth& grew) const {
    const JWFeature& feature = *chunk.feature(i);
    MapSlot& slot = chunk.slots[i];
    slot.check = checkGeometry(feature, m_job.kinds);
    if (m_team.size() > 1) slot.results.prepareEarlyFor(m_job.output);
    MapResults results(m_job.schema, feature, chunk.position(i), slot.results, slot.failures, grew);
    if (slot.check == GeometryCheck::Usable) {
        slot.inputArea = areaOf(*feature.getGeometryPtr());
        slot.inputVertices = vertexCount(*feature.getGeometryPtr());
        map(feature, results);
    } else if (slot.check == GeometryCheck::Empty && m_job.keepsEmpty) {
        results.add(nullptr);
    }
    slot.results.complete(grew);
}

void MapRun::writeResults(Chunk& chunk, std::size_t i) {
    chunk.slots[i].results.write(m_job.output, m_job.input, chunk.feature(i)->getFID64(), m_report);
}

/// Those before it in the chunk are written.
void MapRun::writePart(Chunk& chunk, std::size_t i) {
    writeResults(chunk, i);
    for (std::size_t k = 0; k <= i; ++k) chunk.slots[k].results.letGo();
}

void MapRun::write(Chunk& chunk, std::size_t i) {
    const JWFeature& feature = *chunk.feature(i);
    MapSlot& slot = chunk.slots[i];
    m_run.addDone(1);
    m_run.countRead(m_job.input, feature, slot.check, m_job.kinds);
    m_report.areaA += slot.inputArea;
    m_report.verticesA += slot.inputVertices;
    for (const std::string& failure : slot.failures) {
        m_run.reject(m_job.input, feature.getFID64(), failure);
    }
    writeResults(chunk, i);
    slot.results.reportRefusals(m_report);
}

void MapRun::mapBlock(std::int64_t block) {
    const std::int64_t first = m_blocks.first(block) - 1;
    const std::int64_t count = std::min(m_blocks.size(), m_total - first);
    if (count > 0 && m_job.onBlock) m_job.onBlock(block, first, count);
    if (!m_walk.run(first, m_blocks.size())) m_run.stop();
}

void MapRun::mapAll() {
    const Stopwatch watch(m_report.secondsOverlay);
    for (std::int64_t block = 0; block < m_blocks.number(); ++block) mapBlock(block);
}

}  // namespace

std::int64_t runLayerMap(LayerMapJob& job, const LayerMapOptions& options, JWLayerReport& report) {
    report = JWLayerReport();
    job.output.setGeometryType(job.outputType);
    job.schema.create(job.output);
    return MapRun(job, options, report).run();
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
