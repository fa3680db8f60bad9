// SPDX-License-Identifier: MIT
//
// A layer of the lines between the polygons of another: the layer is read as a whole, its rings are
// taken apart into lines, and the lines are written in their order. All of it is done by one
// thread: what could be shared out, making features of lines, costs less than handing them over.
#include <algorithm>
#include <chrono>

#include "convert/layer_conversion.h"
#include "convert/shared_lines.h"
#include "layers/block_filter.h"
#include "layers/layer_checks.h"
#include "layers/ordered_writer.h"

namespace jws::detail {
namespace {

using Clock = std::chrono::steady_clock;

/// The polygons beside a line, by their positions; -1 for none.
struct Neighbours {
    int left, right;
    /// The first of them in the order of the layer.
    int first() const { return left < 0 || (right >= 0 && right < left) ? right : left; }
};

class SharedLineRun {
  public:
    SharedLineRun(FeatureInput& input, FeatureOutput& output, bool namesNeighbours,
                  const JWConvertOptions& options, JWLayerReport& report)
        : m_input(input),
          m_output(output),
          m_namesNeighbours(namesNeighbours),
          m_options(options),
          m_report(report) {}

    void createSchema();
    void read();
    void findLines();
    void writeLines();

  private:
    static constexpr std::int64_t kBlock = 4096;  // features read at a time, at most

    void take(const std::shared_ptr<const JWFeature>& feature);
    bool keepOn() { return JWReport::progress(m_report.readA + m_linesDone, m_total); }
    [[noreturn]] void stop();
    std::vector<Neighbours> pairsOf(std::size_t line) const;
    PendingResult makeResult(std::size_t line, const Neighbours& pair) const;

    FeatureInput& m_input;
    FeatureOutput& m_output;
    bool m_namesNeighbours;
    const JWConvertOptions& m_options;
    JWLayerReport& m_report;
    ResultSchema m_schema;
    std::int64_t m_total = 0;
    std::int64_t m_linesDone = 0;

    std::vector<std::shared_ptr<const JWFeature>> m_polygons;
    RingViews m_rings;
    std::vector<int> m_owners;
    SharedLines m_lines;
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

void SharedLineRun::stop() {
    m_report.cancelled = true;
    JWReport::setError(JWErrorCancelled, "the run was stopped; nothing was written");
    throw LayerFailure();
}

void SharedLineRun::read() {
    const std::int64_t count = m_input.count();
    m_total = 2 * count;
    const int wanted = m_options.blockSize;
    const Blocks blocks(count, wanted > 0 && wanted < kBlock ? wanted : static_cast<int>(kBlock));
    std::vector<std::shared_ptr<const JWFeature>> block;
    for (std::int64_t i = 0; i < blocks.number(); ++i) {
        m_input.readBlock(blocks.first(i) - 1, blocks.size(), block);
        for (const auto& feature : block) take(feature);
        if (!keepOn()) stop();
    }
}

void SharedLineRun::take(const std::shared_ptr<const JWFeature>& feature) {
    ++m_report.readA;
    const GeometryCheck check = checkGeometry(*feature, AreaKind);
    if (check == GeometryCheck::Empty) ++m_report.emptyA;
    const std::string reason = reasonOf(check, *feature, AreaKind);
    if (!reason.empty())
        m_report.rejected.push_back(
            {m_input.source(), m_input.name(), feature->getFID64(), reason});
    if (check != GeometryCheck::Usable) return;
    appendRings(*feature->getGeometryPtr(), m_rings);
    m_owners.resize(m_rings.size(), static_cast<int>(m_polygons.size()));
    m_report.areaA += areaOf(*feature->getGeometryPtr());
    m_polygons.push_back(feature);
}

void SharedLineRun::findLines() {
    try {
        m_lines = findSharedLines(m_rings, m_owners, m_options.tolerance);
    } catch (const std::bad_alloc&) {
        JWReport::message("spatial index initialize failed!\n");
        throw;
    } catch (const std::length_error&) {
        JWReport::message("spatial index initialize failed!\n");
        throw;
    }
}

/// The polygons on both sides: first with first, and so on, the shorter list's last one repeated.
std::vector<Neighbours> SharedLineRun::pairsOf(std::size_t line) const {
    const ListView<int> left = m_lines.left[line], right = m_lines.right[line];
    if (m_options.dropOuterBoundary && (left.size() == 0 || right.size() == 0)) return {};
    const auto member = [](const ListView<int>& list, std::size_t i) {
        return list.size() == 0 ? -1 : list[std::min(i, list.size() - 1)];
    };
    const std::size_t count = m_namesNeighbours ? std::max(left.size(), right.size()) : 1;
    std::vector<Neighbours> pairs;
    for (std::size_t i = 0; i < count; ++i) pairs.push_back({member(left, i), member(right, i)});
    return pairs;
}

PendingResult SharedLineRun::makeResult(std::size_t line, const Neighbours& pair) const {
    const ListView<JWRawPoint> points = m_lines.lines[line];
    const auto fid = [&](int polygon) {
        return polygon < 0 ? std::int64_t{-1}
                           : m_polygons[static_cast<std::size_t>(polygon)]->getFID64();
    };
    PendingResult result;
    const JWFeature* first = m_polygons[static_cast<std::size_t>(pair.first())].get();
    result.feature = m_schema.makeFeature(
        std::make_unique<JWLineString>(points.begin(), static_cast<int>(points.size())), {first},
        result.lostField);
    result.feature->setFieldValue(0, fid(pair.first()));
    if (m_namesNeighbours) {
        result.feature->setFieldValue(1, fid(pair.left));
        result.feature->setFieldValue(2, fid(pair.right));
    }
    return result;
}

void SharedLineRun::writeLines() {
    constexpr std::size_t often = 256;
    m_total = m_report.readA + static_cast<std::int64_t>(m_lines.lines.count());
    for (std::size_t line = 0; line < m_lines.lines.count(); ++line) {
        for (const Neighbours& pair : pairsOf(line)) {
            PendingResult result = makeResult(line, pair);
            const auto first = static_cast<std::size_t>(pair.first());
            writeResult(m_output, result, m_input, m_polygons[first]->getFID64(), m_report);
        }
        m_linesDone = static_cast<std::int64_t>(line);
        if (line % often == 0 && !keepOn()) stop();
    }
}

std::int64_t convert(FeatureInput& input, FeatureOutput& output, bool namesNeighbours,
                     const JWConvertOptions& options, JWLayerReport& report) {
    SharedLineRun run(input, output, namesNeighbours, options, report);
    run.createSchema();
    const Clock::time_point start = Clock::now();
    run.read();
    run.findLines();
    const Clock::time_point found = Clock::now();
    output.begin();
    try {
        run.writeLines();
        output.commit();
    } catch (...) {
        output.rollback();
        report.written = 0;
        throw;
    }
    report.secondsIndex = std::chrono::duration<double>(found - start).count();
    report.secondsOverlay = std::chrono::duration<double>(Clock::now() - found).count();
    return report.written;
}

}  // namespace

int convertToSharedLines(const char* function, JWFeatureLayer* in, JWFeatureLayer* out,
                         bool namesNeighbours, const JWConvertOptions& options,
                         JWLayerReport* report) {
    return accountedLayers(function, in, in, out, report, [&](JWLayerReport& account) {
        return convert(*inputFrom(*in), *outputTo(*out), namesNeighbours, options, account);
    });
}

}  // namespace jws::detail
