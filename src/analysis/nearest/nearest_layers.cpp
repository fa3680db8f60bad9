// SPDX-License-Identifier: MIT
#include "analysis/nearest/nearest_layers.h"

#include <algorithm>
#include <climits>
#include <mutex>

#include "foundation/hilbert_order.h"
#include "foundation/parallel.h"
#include "foundation/vertex_lists.h"
#include "layers/geometry_check.h"
#include "layers/layer_run.h"
#include "layers/pending_result.h"

namespace jws::detail {
namespace {

constexpr std::int64_t kBlock = 16384;  // sources answered at a time

/// Why a feature takes no part; empty for one that does, and for one without a geometry.
struct Refusal {
    GeometryCheck check;
    std::string reason;
};

Refusal refusalOf(const JWFeature& feature, unsigned kinds, const NearestMethod& method) {
    const GeometryCheck check = checkGeometry(feature, kinds);
    if (check != GeometryCheck::Usable) return {check, reasonOf(check, feature, kinds)};
    const JWGeometry& geometry = *feature.getGeometryPtr();
    if (!method.takesMultiPoints() && geometry.getGeometryType() == JWGeometryMultiPoint)
        return {GeometryCheck::WrongKind, "the geometry is a multi-point, not a point"};
    const double most = method.largestCoordinate();
    const JWEnvelop box = rectangleAround(geometry);
    if (!JWEnvelop(-most, -most, most, most).contains(box))
        return {GeometryCheck::NotFinite,
                "a coordinate is beyond 1e150: distances could not be told"};
    return {check, {}};
}

/// The connections of a list of sources: each worker appends to the list of its chunk, and notes
/// for each source where they are.
class FoundConnections {
  public:
    struct Range {
        const ShortestRecord* first = nullptr;
        const ShortestRecord* last = nullptr;
        const ShortestRecord* begin() const { return first; }
        const ShortestRecord* end() const { return last; }
        std::size_t size() const { return static_cast<std::size_t>(last - first); }
        const ShortestRecord& operator[](std::size_t i) const { return first[i]; }
    };
    Range of(std::size_t source) const {
        const Place& place = m_places[source];
        const ShortestRecord* first = m_lists.empty() ? nullptr : m_lists[place.list].data();
        return {first + place.first, first + place.last};
    }
    std::size_t count() const {
        std::size_t count = 0;
        for (const ShortestRecords& list : m_lists) count += list.size();
        return count;
    }
    /// False when `keepOn` asked to stop.
    template <class KeepOn>
    bool find(const Team& team, const NearestMethod& method, const FeatureList& sources,
              const KeepOn& keepOn);

  private:
    struct Place {
        std::size_t list = 0, first = 0, last = 0;
    };
    void findChunk(const NearestFinder& find, std::size_t begin, std::size_t end, std::size_t list);
    /// A finder that no worker uses; each goes back when its chunk is done, since what it holds may
    /// be as large as the targets are many.
    NearestFinder takeFinder(const NearestMethod& method);
    void giveBack(NearestFinder&& finder);

    std::vector<int> m_order;
    std::vector<NearestSource> m_sources;  ///< in this order
    std::vector<ShortestRecords> m_lists;
    std::vector<Place> m_places;  ///< by source
    std::vector<NearestFinder> m_finders;
    std::mutex m_finderAccess;
};

/// Sources near each other come one after the other: their searches visit the same parts of the
/// tree.
template <class KeepOn>
bool FoundConnections::find(const Team& team, const NearestMethod& method,
                            const FeatureList& sources, const KeepOn& keepOn) {
    m_order.clear();
    std::vector<JWEnvelop> boxes(sources.size(), JWEnvelop::invalid());
    std::vector<NearestSource> known(sources.size());
    for (std::size_t i = 0; i < sources.size(); ++i) {
        if (!sources[i]) continue;
        const JWGeometry& geometry = *sources[i]->getGeometryPtr();
        boxes[i] = rectangleAround(geometry);
        known[i] = {sources[i].get(), geometry.getGeometryType() == JWGeometryPoint, boxes[i]};
        m_order.push_back(static_cast<int>(i));
    }
    sortAlongHilbertCurve(boxes, m_order);
    // The features themselves lie anywhere in memory in this order.
    m_sources.clear();
    m_sources.reserve(m_order.size());
    for (const int i : m_order) m_sources.push_back(known[static_cast<std::size_t>(i)]);
    const auto count = static_cast<std::int64_t>(m_order.size());
    const std::int64_t chunk = std::max<std::int64_t>(count / (std::int64_t{8} * team.size()), 64);
    m_places.assign(sources.size(), {});
    m_lists.assign(static_cast<std::size_t>((count + chunk - 1) / chunk), {});
    return parallelChunks(team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
        NearestFinder finder = takeFinder(method);
        findChunk(finder, static_cast<std::size_t>(begin), static_cast<std::size_t>(end),
                  static_cast<std::size_t>(begin / chunk));
        giveBack(std::move(finder));
        return keepOn();
    });
}

NearestFinder FoundConnections::takeFinder(const NearestMethod& method) {
    {
        const std::lock_guard<std::mutex> lock(m_finderAccess);
        if (!m_finders.empty()) {
            NearestFinder finder = std::move(m_finders.back());
            m_finders.pop_back();
            return finder;
        }
    }
    return method.finder();
}

void FoundConnections::giveBack(NearestFinder&& finder) {
    const std::lock_guard<std::mutex> lock(m_finderAccess);
    m_finders.push_back(std::move(finder));
}

void FoundConnections::findChunk(const NearestFinder& find, std::size_t begin, std::size_t end,
                                 std::size_t list) {
    ShortestRecords& found = m_lists[list];
    found.reserve(end - begin);
    for (std::size_t i = begin; i < end; ++i) {
        const std::size_t first = found.size();
        find(m_sources[i], found);
        m_places[static_cast<std::size_t>(m_order[i])] = {list, first, found.size()};
    }
}

class NearestRun {
  public:
    NearestRun(NearestJob& job, JWLayerReport& report)
        : m_job(job),
          m_report(report),
          m_team(job.threads),
          m_total(job.source.count()),
          m_run(report, m_total) {}

    /// Returns the number of connections written.
    std::int64_t run();

  private:
    void readTargets();
    void requireSources();
    void createFields();
    void answerAll();
    /// Leaves what takes part; null in the place of any other feature.
    void select(FeatureInput& input, unsigned kinds, FeatureList& features, std::int64_t& read,
                std::int64_t& empty);
    void write(const JWFeature& source, const FoundConnections::Range& connections);
    void writeConnection(const JWFeature& source, const ShortestRecord& connection, int rank);
    bool keepOn() {
        bool going = true;
        exclusive([&] { going = m_run.keepOn(); });
        return going;
    }
    [[noreturn]] void fail(enumJWErrorKind kind, const std::string& text) {
        JWReport::setError(kind, text);
        throw LayerFailure();
    }
    std::string title(const FeatureInput& input) const {
        return std::string(input.source()) + ", layer " + input.name();
    }

    NearestJob& m_job;
    JWLayerReport& m_report;
    Team m_team;
    std::int64_t m_total;
    LayerRun m_run;
    FeatureList m_targets;
    JWFields* m_schema = nullptr;
    std::int64_t m_unanswered = 0;
};

void NearestRun::select(FeatureInput& input, unsigned kinds, FeatureList& features,
                        std::int64_t& read, std::int64_t& empty) {
    for (auto& feature : features) {
        ++read;
        const Refusal refusal = refusalOf(*feature, kinds, m_job.method);
        if (refusal.check == GeometryCheck::Empty) ++empty;
        if (!refusal.reason.empty()) m_run.reject(input, feature->getFID64(), refusal.reason);
        if (refusal.check != GeometryCheck::Usable) feature.reset();
    }
}

void NearestRun::readTargets() {
    FeatureList all;
    m_job.target.readBlock(0, INT_MAX, all);
    JWEnvelop extent = JWEnvelop::invalid();
    for (const auto& feature : all) {
        if (!feature->isGeometryEmpty() && isFinite(*feature->getGeometryPtr()))
            extent.inflates_to_contain(rectangleAround(*feature->getGeometryPtr()));
    }
    select(m_job.target, m_job.method.targetKinds(), all, m_report.readB, m_report.emptyB);
    if (m_report.emptyB == m_report.readB)
        fail(JWErrorInvalidArgument, title(m_job.target) + ": has no features with a geometry");
    all.erase(std::remove(all.begin(), all.end(), nullptr), all.end());
    m_targets = std::move(all);
    m_job.method.setTargets(m_targets, extent);
}

/// Looks for a feature with a geometry, usually the first one.
void NearestRun::requireSources() {
    constexpr std::int64_t few = 64;
    FeatureList block;
    for (std::int64_t first = 0; first < m_total; first += few) {
        m_job.source.readBlock(first, few, block);
        for (const auto& feature : block)
            if (!feature->isGeometryEmpty()) return;
    }
    fail(JWErrorInvalidArgument, title(m_job.source) + ": has no features with a geometry");
}

void NearestRun::createFields() {
    const auto identifier = [](FeatureInput& input, const std::string& name) {
        return JWField(name.c_str(), input.identifiersFitInt() ? JWFieldInteger : JWFieldInteger64);
    };
    std::vector<JWField> fields = {identifier(m_job.source, m_job.fields.source),
                                   identifier(m_job.target, m_job.fields.target),
                                   JWField(m_job.fields.length.c_str(), JWFieldReal)};
    if (m_job.fields.ranks) fields.emplace_back("rank", JWFieldInteger);
    m_schema = m_job.output.createFields(fields);
}

void NearestRun::writeConnection(const JWFeature& source, const ShortestRecord& connection,
                                 int rank) {
    PendingResult result;
    result.feature = std::make_unique<JWFeature>(m_schema);
    const JWRawPoint ends[] = {connection.fromPoint, connection.toPoint};
    result.feature->setGeometryDirectly(new JWLineString(ends, 2));
    const int first = m_job.firstField;
    const JWFeature& target = *m_targets[static_cast<std::size_t>(connection.index)];
    result.feature->setFieldValue(first, source.getFID64());
    result.feature->setFieldValue(first + 1, target.getFID64());
    result.feature->setFieldValue(first + 2, connection.length);
    if (m_job.fields.ranks) result.feature->setFieldValue(first + 3, rank);
    writeResult(m_job.output, result, m_job.source, source.getFID64(), m_report);
}

void NearestRun::write(const JWFeature& source, const FoundConnections::Range& connections) {
    int rank = 0;
    for (std::size_t i = 0; i < connections.size(); ++i) {
        if (i == 0 || connections[i].length > connections[i - 1].length)
            rank = static_cast<int>(i) + 1;
        writeConnection(source, connections[i], rank);
    }
    m_unanswered += connections.size() == 0 ? 1 : 0;
}

void NearestRun::answerAll() {
    FeatureList sources;
    FoundConnections found;
    const std::int64_t size = m_job.blockSize > 0 ? std::min(m_job.blockSize, kBlock) : kBlock;
    for (std::int64_t first = 0; first < m_total; first += size) {
        m_job.source.readBlock(first, size, sources);
        select(m_job.source, m_job.method.sourceKinds(), sources, m_report.readA, m_report.emptyA);
        m_run.setDone(m_report.readA);
        if (!found.find(m_team, m_job.method, sources, [&] { return keepOn(); })) m_run.stop();
        for (std::size_t i = 0; i < sources.size(); ++i)
            if (sources[i]) write(*sources[i], found.of(i));
    }
    if (m_unanswered > 0)
        m_report.warning = std::to_string(m_unanswered) + " features of " + title(m_job.source) +
                           " have no answer: " + m_job.method.whyNone();
}

std::int64_t NearestRun::run() {
    {
        const Stopwatch watch(m_report.secondsIndex);
        readTargets();
    }
    const Stopwatch watch(m_report.secondsOverlay);
    requireSources();
    createFields();
    return m_run.transact(m_job.output, [this] { answerAll(); });
}

}  // namespace

std::int64_t runNearest(NearestJob& job, JWLayerReport& report) {
    return NearestRun(job, report).run();
}

void findNearestPairs(const JWFeatureClass& source, const JWFeatureClass& target,
                      NearestMethod& method, int threads, std::vector<JWNearestPair>& pairs) {
    JWEnvelop extent = JWEnvelop::invalid();
    /// The features that take part, in their places, and these places without gaps.
    const auto select = [&](const JWFeatureClass& features, unsigned kinds, FeatureList& list) {
        for (int i = 0; i < features.getFeatureCount(); ++i) {
            const JWFeature* feature = features.getFeatureAt(i);
            const bool takesPart =
                refusalOf(*feature, kinds, method).check == GeometryCheck::Usable;
            list.push_back(takesPart
                               ? std::shared_ptr<const JWFeature>(std::shared_ptr<void>(), feature)
                               : nullptr);
        }
    };
    FeatureList sources, targets, present;
    select(source, method.sourceKinds(), sources);
    select(target, method.targetKinds(), targets);
    std::vector<int> positions;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (!targets[i]) continue;
        extent.inflates_to_contain(rectangleAround(*targets[i]->getGeometryPtr()));
        positions.push_back(static_cast<int>(i));
        present.push_back(targets[i]);
    }
    method.setTargets(present, extent);
    FoundConnections found;
    const Team team(threads);
    found.find(team, method, sources, [] { return true; });
    pairs.reserve(pairs.size() + found.count());
    for (std::size_t i = 0; i < sources.size(); ++i)
        for (const ShortestRecord& c : found.of(i))
            pairs.push_back({static_cast<int>(i), positions[static_cast<std::size_t>(c.index)],
                             c.length, c.fromPoint, c.toPoint});
}

}  // namespace jws::detail
