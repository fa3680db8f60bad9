// SPDX-License-Identifier: MIT
#include "overlay/dissolve_driver.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cmath>
#include <optional>

#include "boolean/envelope_clusters.h"
#include "boolean/ring_set.h"
#include "foundation/parallel.h"
#include "foundation/pulse.h"
#include "foundation/text_batch.h"
#include "layers/layer_checks.h"
#include "layers/ordered_walk.h"
#include "overlay/feature_check.h"
#include "overlay/group_statistics.h"
#include "overlay/group_union.h"
#include "overlay/multi_parts.h"
#include "overlay/value_groups.h"

namespace jws::detail {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int64_t kBeyond = 256;   // places for features that a source does not state
constexpr std::size_t kWindow = 32768;  // features whose groups are written together

/// The area of a polygon's rings or the like; what a feature is rejected for is in `reason`.
struct Examination {
    bool empty = false;
    const char* reason = nullptr;
};

/// A group's results, made by one worker and written by one.
struct GroupResult {
    struct Piece {
        std::unique_ptr<JWFeature> feature;
        double area;
        std::shared_ptr<JWFeatureRecord> record;
    };
    std::vector<Piece> pieces;
    double areaBefore = 0;
    double overlap = 0;
    double dropped = 0;
    std::int64_t firstFid = -1;
    std::vector<std::pair<std::int64_t, std::string>> failures;  ///< feature and reason
};

class DissolveRun {
  public:
    DissolveRun(FeatureInput& input, FeatureOutput& output, DissolveKind kind,
                const std::vector<int>& fields, const JWDissolveOptions& options,
                JWLayerReport& report)
        : m_input(input),
          m_output(output),
          m_kind(kind),
          m_fields(fields),
          m_options(options),
          m_report(report),
          m_team(options.threads),
          m_total(input.count()),
          m_unions(m_items, options.tolerance) {}

    void createSchema();
    void read();
    void group();
    void write();
    bool isStopped() const { return m_stopped; }

  private:
    struct NoSlot {};
    using Chunk = FeatureChunk<NoSlot>;

    void examine(std::size_t position);
    Examination examineGeometry(DissolveItem& item);
    void keepAccount();
    PositionLists clusters() const;
    bool uniteWindow(std::size_t first, std::size_t end, std::vector<GroupResult>& results);
    GroupResult makeResult(std::size_t group, std::size_t inWindow);
    std::vector<std::unique_ptr<JWGeometry>> geometriesOf(std::size_t group, std::size_t inWindow,
                                                          GroupResult& result);
    void makeFeatures(std::size_t group, std::vector<std::unique_ptr<JWGeometry>> geometries,
                      GroupResult& result);
    void writeResult(GroupResult& result);
    void reject(std::int64_t fid, const std::string& reason) {
        m_report.rejected.push_back({m_input.source(), m_input.name(), fid, reason});
    }
    /// False when the progress callback asked to stop.
    bool keepOn() { return JWReport::progress(m_done, 2 * m_total); }
    /// Ends the run because of that.
    [[noreturn]] void stop();
    /// Asks in the midst of a long computation.
    void beat() {
        if (m_stopped || !keepOn()) stop();
    }

    FeatureInput& m_input;
    FeatureOutput& m_output;
    DissolveKind m_kind;
    const std::vector<int>& m_fields;
    const JWDissolveOptions& m_options;
    JWLayerReport& m_report;
    Team m_team;
    std::int64_t m_total;
    std::atomic<std::int64_t> m_done{0};  ///< features read, and written on top of that
    std::atomic<bool> m_stopped{false};

    JWFields* m_schema = nullptr;
    std::vector<std::string> m_names;  ///< of the result fields, as asked for
    std::vector<DissolveItem> m_items;
    std::vector<Examination> m_examined;
    std::vector<std::string> m_keys;
    PositionLists m_groups;
    GroupUnions m_unions;
};

[[noreturn]] void fail(enumJWErrorKind kind, const std::string& text) {
    JWReport::setError(kind, text);
    throw LayerFailure();
}

void DissolveRun::stop() {
    m_stopped = true;
    fail(JWErrorCancelled, "the run was stopped; nothing was written");
}

void DissolveRun::createSchema() {
    std::vector<JWField> fields;
    const JWFields none;
    const JWFields& source = m_input.fields() != nullptr ? *m_input.fields() : none;
    for (const int field : m_fields) fields.push_back(*source.getFieldPtr(field));
    for (const JWDissolveStatistic& statistic : m_options.statistics) {
        const std::string wrong = checkStatistic(statistic, source);
        if (!wrong.empty()) {
            fail(JWErrorInvalidArgument,
                 std::string(m_input.source()) + ", layer " + m_input.name() + ": " + wrong);
        }
        fields.push_back(statisticField(statistic, source));
    }
    if (!m_options.areaField.empty() && m_kind == DissolveKind::Areas) {
        fields.emplace_back(m_options.areaField.c_str(), JWFieldReal);
    }
    for (const JWField& field : fields) m_names.emplace_back(field.getFieldName());
    switch (m_kind) {
        case DissolveKind::Areas:
            m_output.setGeometryType(m_options.multipart ? JWWKBMultiPolygon : JWWKBPolygon);
            break;
        case DissolveKind::Points:
            m_output.setGeometryType(JWWKBMultiPoint);
            break;
        case DissolveKind::Lines:
            m_output.setGeometryType(JWWKBMultiLineString);
            break;
    }
    m_schema = m_output.createFields(fields);
}

void DissolveRun::read() {
    if (m_total > INT_MAX) {
        fail(JWErrorInvalidArgument, std::string(m_input.source()) + ", layer " + m_input.name() +
                                         ": has more features than a dissolve can hold");
    }
    TextBatch texts;
    const auto examineAll = [this](Chunk& chunk) {
        const Pulse pulse([this] { beat(); });
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            const auto position = static_cast<std::size_t>(chunk.position(i));
            m_items[position].feature = std::move(chunk.read[i].feature);
            examine(position);
            Pulse::tick();
        }
    };
    const auto count = [&](Chunk&, std::size_t) {
        m_done = ++m_report.readA;
        if (m_kind == DissolveKind::Areas) texts.print("%d\n", m_report.readA);
    };
    OrderedWalk<NoSlot> walk(m_team, m_input,
                             {examineAll, count, [this] { return keepOn(); }, {}, 256});
    std::int64_t end = 0;
    do {
        end += std::max<std::int64_t>(m_total - end, 0) + kBeyond;
        const auto places = static_cast<std::size_t>(end);
        m_items.resize(places);
        m_examined.resize(places);
        m_keys.resize(places);
        if (!walk.run(walk.position(), end - walk.position())) stop();
    } while (walk.position() == end);
    keepAccount();
}

void DissolveRun::examine(std::size_t position) {
    DissolveItem& item = m_items[position];
    Examination& examined = m_examined[position];
    examined = examineGeometry(item);
    if (examined.empty || examined.reason != nullptr) {
        item.envelop = JWEnvelop::invalid();
        return;
    }
    m_keys[position] = valueKey(*item.feature, m_fields);
}

Examination DissolveRun::examineGeometry(DissolveItem& item) {
    if (item.feature->isGeometryEmpty()) return {true, nullptr};
    const JWGeometry& geometry = *item.feature->getGeometryPtr();
    if (m_kind != DissolveKind::Areas) {
        const char* reason = m_kind == DissolveKind::Points ? checkPoints(geometry, item.envelop)
                                                            : checkLines(geometry, item.envelop);
        return {false, reason};
    }
    const AreaCheck check = checkArea(*item.feature);
    if (check != AreaCheck::Usable) return {check == AreaCheck::Empty, reasonOf(check)};
    item.envelop = envelopOf(geometry);
    if (!item.envelop.isValid()) return {true, nullptr};  // rings without points
    thread_local AreaSum classifier;
    item.kind = classifier.classify(geometry);
    return {};
}

void DissolveRun::keepAccount() {
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (!m_items[i].feature) continue;
        if (m_examined[i].empty) ++m_report.emptyA;
        if (m_examined[i].reason != nullptr) {
            reject(m_items[i].feature->getFID64(), m_examined[i].reason);
        }
    }
}

/// Everything usable in one list, or cluster by cluster.
PositionLists DissolveRun::clusters() const {
    if (m_kind == DissolveKind::Areas && !m_options.acrossClusters) {
        std::vector<JWEnvelop> envelops;
        envelops.reserve(m_items.size());
        for (const DissolveItem& item : m_items) envelops.push_back(item.envelop);
        PositionLists made = clusterByContact(envelops);
        TextBatch texts;
        for (std::size_t c = 0; c < made.count(); ++c) {
            for (const int* p = made.begin(c); p != made.end(c); ++p) texts.print("%d,", *p);
            texts.print("\n");
        }
        return made;
    }
    PositionLists all;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i].envelop.isValid()) all.positions.push_back(static_cast<int>(i));
    }
    if (!all.positions.empty()) all.ends.push_back(all.positions.size());
    return all;
}

void DissolveRun::group() {
    m_groups = groupByValue(clusters(), m_keys);
    m_keys = {};
}

void DissolveRun::write() {
    m_done = m_total;
    for (std::size_t first = 0, end = 0; first < m_groups.count(); first = end) {
        std::size_t members = 0;
        for (end = first; end < m_groups.count() && members < kWindow; ++end) {
            members += static_cast<std::size_t>(m_groups.end(end) - m_groups.begin(end));
        }
        std::vector<GroupResult> results(end - first);
        if (!uniteWindow(first, end, results)) stop();
        for (std::size_t i = 0; i < results.size(); ++i) {
            writeResult(results[i]);
            if (i % 256 == 0) beat();
        }
        m_done += static_cast<std::int64_t>(members);
        beat();
    }
}

bool DissolveRun::uniteWindow(std::size_t first, std::size_t end,
                              std::vector<GroupResult>& results) {
    if (m_kind == DissolveKind::Areas) {
        std::vector<std::pair<const int*, const int*>> groups;
        for (std::size_t g = first; g < end; ++g) {
            groups.emplace_back(m_groups.begin(g), m_groups.end(g));
        }
        m_unions.prepare(m_team, std::move(groups), [this] { beat(); });
    }
    const auto count = static_cast<std::int64_t>(end - first);
    const std::int64_t chunk =
        std::clamp<std::int64_t>(count / (std::int64_t{8} * m_team.size()), 1, 64);
    return parallelChunks(m_team, count, chunk, [&](std::int64_t from, std::int64_t to) {
        const Pulse pulse([this] { beat(); });
        for (auto i = static_cast<std::size_t>(from); i < static_cast<std::size_t>(to); ++i) {
            results[i] = makeResult(first + i, i);
        }
        return keepOn();
    });
}

GroupResult DissolveRun::makeResult(std::size_t group, std::size_t inWindow) {
    GroupResult result;
    const int* begin = m_groups.begin(group);
    const int* end = m_groups.end(group);
    result.firstFid = m_items[static_cast<std::size_t>(*begin)].feature->getFID64();
    makeFeatures(group, geometriesOf(group, inWindow, result), result);
    for (const int* p = begin; p != end; ++p) {
        m_items[static_cast<std::size_t>(*p)].feature.reset();
    }
    return result;
}

std::vector<std::unique_ptr<JWGeometry>> DissolveRun::geometriesOf(std::size_t group,
                                                                   std::size_t inWindow,
                                                                   GroupResult& result) {
    std::vector<std::unique_ptr<JWGeometry>> geometries;
    if (m_kind != DissolveKind::Areas) {
        std::vector<const JWGeometry*> members;
        for (const int* p = m_groups.begin(group); p != m_groups.end(group); ++p) {
            members.push_back(m_items[static_cast<std::size_t>(*p)].feature->getGeometryPtr());
        }
        if (m_kind == DissolveKind::Points) {
            geometries.push_back(gatherParts<JWMultiPoint, JWPoint>(members));
        } else {
            geometries.push_back(gatherParts<JWMultiLineString, JWLineString>(members));
        }
        return geometries;
    }
    GroupUnion united = m_unions.unite(inWindow);
    result.areaBefore = united.areaBefore;
    result.overlap = united.overlap;
    result.dropped = united.dropped;
    for (const auto& [position, reason] : united.failures) {
        result.failures.emplace_back(
            m_items[static_cast<std::size_t>(position)].feature->getFID64(), reason);
    }
    if (!united.geometry) return geometries;
    if (m_options.multipart) {
        geometries.push_back(std::move(united.geometry));
    } else {
        geometries = splitPolygons(std::move(united.geometry));
    }
    return geometries;
}

void DissolveRun::makeFeatures(std::size_t group,
                               std::vector<std::unique_ptr<JWGeometry>> geometries,
                               GroupResult& result) {
    if (geometries.empty()) return;
    std::vector<const JWFeature*> members;
    for (const int* p = m_groups.begin(group); p != m_groups.end(group); ++p) {
        members.push_back(m_items[static_cast<std::size_t>(*p)].feature.get());
    }
    JWFeature values(m_schema);
    std::size_t target = 0;
    const auto check = [&](bool filled) {
        if (!filled) {
            result.failures.emplace_back(
                members.front()->getFID64(),
                "the result cannot hold the value of field " + m_names[target]);
        }
        ++target;
    };
    for (const int field : m_fields) {
        check(values.copyFieldFrom(static_cast<int>(target), *members.front(), field));
    }
    for (const JWDissolveStatistic& statistic : m_options.statistics) {
        check(fillStatistic(statistic, members, static_cast<int>(target), values));
    }
    for (std::unique_ptr<JWGeometry>& geometry : geometries) {
        GroupResult::Piece piece{std::make_unique<JWFeature>(values), areaOf(*geometry), nullptr};
        if (target < m_names.size()) {
            piece.feature->setFieldValue(static_cast<int>(target), piece.area);
        }
        piece.feature->setGeometryDirectly(geometry.release());
        if (m_team.size() > 1) piece.record = m_output.prepare(*piece.feature);
        result.pieces.push_back(std::move(piece));
    }
}

void DissolveRun::writeResult(GroupResult& result) {
    for (const auto& [fid, reason] : result.failures) reject(fid, reason);
    double after = 0;
    for (GroupResult::Piece& piece : result.pieces) {
        if (m_output.write(piece.feature, piece.record)) {
            after += piece.area;
            ++m_report.written;
            m_report.area += piece.area;
        } else if (isRefusal(JWReport::lastError().kind)) {
            reject(result.firstFid, JWReport::lastError().text);
        } else {
            throw LayerFailure();
        }
        piece.feature.reset();
    }
    m_report.areaA += result.areaBefore;
    m_report.areaOverlap += result.overlap;
    m_report.areaDropped += result.dropped;
    m_report.residual += std::fabs(result.areaBefore - result.overlap - result.dropped - after);
}

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace

std::int64_t runDissolve(FeatureInput& input, FeatureOutput& output, DissolveKind kind,
                         const std::vector<int>& fields, const JWDissolveOptions& options,
                         JWLayerReport& report) {
    report = JWLayerReport();
    DissolveRun run(input, output, kind, fields, options, report);
    run.createSchema();
    output.begin();
    try {
        const Clock::time_point readStart = Clock::now();
        run.read();
        run.group();
        report.secondsIndex = secondsSince(readStart);
        const Clock::time_point uniteStart = Clock::now();
        run.write();
        output.commit();
        report.secondsOverlay = secondsSince(uniteStart);
    } catch (...) {
        output.rollback();
        report.written = 0;
        report.area = report.areaOverlap = report.areaDropped = report.residual = 0;
        report.cancelled = run.isStopped();
        throw;
    }
    if (kind == DissolveKind::Areas) judge(report);
    return report.written;
}

}  // namespace jws::detail
