// SPDX-License-Identifier: MIT
//
// A layer of the lines between the polygons of another: the layer is read as a whole, its rings are
// taken apart into lines, and the lines are written in their order. A team decodes the polygons,
// compares their boundaries, and makes the features of lines while others are written.
#include "convert/conversion_run.h"
#include "convert/layer_conversion.h"
#include "convert/shared_lines.h"
#include "foundation/pulse.h"
#include "layers/block_filter.h"
#include "layers/layer_run.h"
#include "layers/ordered_walk.h"
#include "layers/ordered_work.h"
#include "layers/pending_result.h"

namespace jws::detail {
namespace {

/// The polygons beside a line, by their positions; -1 for none.
struct Neighbours {
    int left, right;
    /// The first of them in the order of the layer.
    int first() const { return left < 0 || (right >= 0 && right < left) ? right : left; }
    bool areTwo() const { return left >= 0 && right >= 0; }
};

/// Neighbouring lines that are about to be written.
struct LineChunk : WorkChunk {
    std::vector<std::size_t> lines;
    std::vector<PendingResult> results;
    std::size_t bytes = 0;  ///< of the results

    std::size_t size() const { return lines.size(); }
};

class SharedLineRun {
  public:
    SharedLineRun(FeatureInput& input, FeatureOutput& output, bool namesNeighbours,
                  const JWConvertOptions& options, JWLayerReport& report)
        : m_input(input),
          m_output(output),
          m_namesNeighbours(namesNeighbours),
          m_options(options),
          m_report(report),
          m_run(report, 2 * input.count()),
          m_team(options.threads) {}

    /// Returns the number of lines written.
    std::int64_t run();

  private:
    static constexpr std::size_t kLinesInChunk = 128;

    void createSchema();
    void read();
    void findLines();
    void writeLines();
    void take(const std::shared_ptr<const JWFeature>& feature, GeometryCheck check);
    Neighbours besideOf(std::size_t line) const;
    bool takeLines(LineChunk& chunk);
    void makeResults(LineChunk& chunk) const;
    PendingResult makeResult(std::size_t line) const;
    void writeLine(LineChunk& chunk, std::size_t i);

    FeatureInput& m_input;
    FeatureOutput& m_output;
    bool m_namesNeighbours;
    const JWConvertOptions& m_options;
    JWLayerReport& m_report;
    LayerRun m_run;
    Team m_team;
    ResultSchema m_schema;

    std::vector<std::shared_ptr<const JWFeature>> m_polygons;
    RingViews m_rings;
    std::vector<int> m_owners;
    SharedLines m_lines;
    std::size_t m_next = 0;  ///< line to be taken
};

void SharedLineRun::createSchema() {
    const enumJWFieldType type = m_input.identifiersFitInt() ? JWFieldInteger : JWFieldInteger64;
    m_schema.addField(JWField("orig_fid", type));
    if (m_namesNeighbours) {
        m_schema.addField(JWField("left_fid", type));
        m_schema.addField(JWField("right_fid", type));
    }
    if (m_options.keepAttributes) m_schema.addFieldsOf(m_input);
    m_output.setGeometryType(JWWKBLineString);
    m_schema.create(m_output);
}

void SharedLineRun::read() {
    const std::int64_t count = m_input.count();
    using Chunk = FeatureChunk<GeometryCheck>;
    const auto check = [](Chunk& chunk) {
        for (std::size_t i = 0; i < chunk.size(); ++i)
            chunk.slots[i] = checkGeometry(*chunk.feature(i), AreaKind);
    };
    const auto finish = [this](Chunk& chunk, std::size_t i) {
        take(chunk.feature(i), chunk.slots[i]);
    };
    OrderedWalk<GeometryCheck> walk(m_team, m_input,
                                    {check, finish, [this] { return m_run.keepOn(); }, {}, 128});
    const Blocks blocks(count, m_options.blockSize);
    for (std::int64_t i = 0; i < blocks.number(); ++i)
        if (!walk.run(blocks.first(i) - 1, blocks.size())) m_run.stop();
}

void SharedLineRun::take(const std::shared_ptr<const JWFeature>& feature, GeometryCheck check) {
    m_run.countRead(m_input, *feature, check, AreaKind);
    m_run.addDone(1);
    if (check != GeometryCheck::Usable) return;
    appendRings(*feature->getGeometryPtr(), m_rings);
    m_owners.resize(m_rings.size(), static_cast<int>(m_polygons.size()));
    m_report.areaA += areaOf(*feature->getGeometryPtr());
    m_polygons.push_back(feature);
}

void SharedLineRun::findLines() {
    const Pulse pulse([this] { m_run.beat(); });
    try {
        m_lines = findSharedLines(m_rings, m_owners, m_options.tolerance, m_options.threads);
    } catch (const std::bad_alloc&) {
        JWReport::message("spatial index initialize failed!\n");
        throw;
    } catch (const std::length_error&) {
        JWReport::message("spatial index initialize failed!\n");
        throw;
    }
}

/// The first polygon on each side.
Neighbours SharedLineRun::besideOf(std::size_t line) const {
    const ListView<int> left = m_lines.left[line], right = m_lines.right[line];
    return {left.size() == 0 ? -1 : left[0], right.size() == 0 ? -1 : right[0]};
}

/// The next lines that are wanted.
bool SharedLineRun::takeLines(LineChunk& chunk) {
    for (; m_next < m_lines.lines.count() && chunk.size() < kLinesInChunk; ++m_next)
        if (!m_options.dropOuterBoundary || besideOf(m_next).areTwo())
            chunk.lines.push_back(m_next);
    return chunk.size() > 0;
}

void SharedLineRun::makeResults(LineChunk& chunk) const {
    for (const std::size_t line : chunk.lines) {
        chunk.results.push_back(makeResult(line));
        chunk.bytes += prepareEarly(chunk.results.back(), m_team.size() > 1 ? &m_output : nullptr);
    }
}

PendingResult SharedLineRun::makeResult(std::size_t line) const {
    const ListView<JWRawPoint> points = m_lines.lines[line];
    const Neighbours beside = besideOf(line);
    const auto fid = [&](int polygon) {
        return polygon < 0 ? std::int64_t{-1}
                           : m_polygons[static_cast<std::size_t>(polygon)]->getFID64();
    };
    PendingResult result;
    const JWFeature* first = m_polygons[static_cast<std::size_t>(beside.first())].get();
    result.feature = m_schema.makeFeature(
        std::make_unique<JWLineString>(points.begin(), static_cast<int>(points.size())), {first},
        result.lostField);
    result.feature->setFieldValue(0, fid(beside.first()));
    if (m_namesNeighbours) {
        result.feature->setFieldValue(1, fid(beside.left));
        result.feature->setFieldValue(2, fid(beside.right));
    }
    return result;
}

void SharedLineRun::writeLine(LineChunk& chunk, std::size_t i) {
    const auto first = static_cast<std::size_t>(besideOf(chunk.lines[i]).first());
    writeResult(m_output, chunk.results[i], m_input, m_polygons[first]->getFID64(), m_report);
    m_run.setDone(m_report.readA + static_cast<std::int64_t>(chunk.lines[i]) + 1);
}

void SharedLineRun::writeLines() {
    const std::size_t count = m_lines.lines.count();
    m_run.setSteps(m_report.readA + static_cast<std::int64_t>(count));
    const auto prepare = [this](LineChunk& chunk, std::size_t i) {
        return std::size_t{prepareResult(chunk.results[i], m_output) ? 1U : 0U};
    };
    const auto sizeOf = [](const LineChunk& chunk) { return chunk.bytes; };
    OrderedWork<LineChunk> work(m_team,
                                {[this](LineChunk& chunk) { return takeLines(chunk); },
                                 [this](LineChunk& chunk) { makeResults(chunk); },
                                 [this](LineChunk& chunk, std::size_t i) { writeLine(chunk, i); },
                                 [this] { return m_run.keepOn(); },
                                 prepare,
                                 {},
                                 sizeOf});
    if (!work.run((count + kLinesInChunk - 1) / kLinesInChunk)) m_run.stop();
}

std::int64_t SharedLineRun::run() {
    {
        const Stopwatch watch(m_report.secondsIndex);
        read();
        findLines();
        createSchema();
    }
    const Stopwatch watch(m_report.secondsOverlay);
    return m_run.transact(m_output, [this] { writeLines(); });
}

}  // namespace

int convertToSharedLines(const char* function, JWFeatureLayer* in, JWFeatureLayer* out,
                         bool namesNeighbours, const JWConvertOptions& options,
                         JWLayerReport* report) {
    return convertLayers(
        function, in, out, report,
        [&](FeatureInput& input, FeatureOutput& output, JWLayerReport& account) {
            return SharedLineRun(input, output, namesNeighbours, options, account).run();
        });
}

}  // namespace jws::detail
