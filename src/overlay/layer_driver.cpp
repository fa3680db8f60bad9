// SPDX-License-Identifier: MIT
//
// One block of A at a time: its features are dealt out to the team in chunks, each worker puts what
// the operation emits into the slots of its own features, and after every chunk a worker writes the
// slots that are complete from the front of the block, unless another one is at it. Writing thus
// overlaps clipping, still happens in the order of A, and never has a worker wait for its end.
#include "overlay/layer_driver.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <vector>

#include "boolean/ring_set.h"
#include "overlay/block_filter.h"
#include "overlay/feature_check.h"

namespace jws::detail {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// A number as messages show it.
int shown(std::int64_t number) { return static_cast<int>(std::min<std::int64_t>(number, INT_MAX)); }

/// Feature i of a list travels through the index as i + 1.
void* payloadOf(std::int64_t position) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(position + 1));
}
std::int64_t positionOf(void* payload) { return reinterpret_cast<std::intptr_t>(payload) - 1; }

/// The candidates of a run of neighbouring features of A, by index payload. They are fetched a few
/// hundred at a time across the features of the run, so that the lock is taken seldom, and a
/// feature with very many candidates holds only some of them in memory.
class IndexedCandidates : public Candidates {
  public:
    explicit IndexedCandidates(FeatureInput& b) : m_b(b) {}

    /// Appends the candidates of one more feature to the run and returns their number.
    std::size_t add(const JWSpatialIndex& index, const JWEnvelop& envelop) {
        index.spatialSearch(envelop, m_found);
        m_hits.insert(m_hits.end(), m_found.begin(), m_found.end());
        return m_found.size();
    }
    std::size_t size() const { return m_hits.size(); }
    void clear() {
        m_hits.clear();
        m_batch.clear();
        m_batchBegin = m_next = m_end = 0;
    }
    /// Makes the next `count` candidates those of the feature at hand.
    void startFeature(std::size_t count) {
        m_next = m_end;
        m_end += count;
    }

    const JWFeature* next() override {
        if (m_next == m_end) return nullptr;
        if (m_next >= m_batchBegin + m_batch.size()) fetch();
        return m_batch[m_next++ - m_batchBegin].get();
    }

  private:
    static constexpr std::size_t batchSize = 256;

    void fetch() {
        m_batch.clear();
        m_batchBegin = m_next;
        const std::size_t end = std::min(m_next + batchSize, m_hits.size());
        exclusive([&] {
            for (std::size_t k = m_next; k < end; ++k) {
                m_batch.push_back(m_b.feature(positionOf(m_hits[k])));
            }
        });
    }

    FeatureInput& m_b;
    std::vector<void*> m_found;
    std::vector<void*> m_hits;
    std::vector<std::shared_ptr<const JWFeature>> m_batch;
    std::size_t m_batchBegin = 0;  ///< the hit that the batch begins with
    std::size_t m_next = 0;        ///< the hit that comes next
    std::size_t m_end = 0;         ///< behind the last hit of the feature at hand
};

/// A result layer refused one feature and can take the next; any other failure ends the run.
bool isRefusal(enumJWErrorKind kind) {
    return kind == JWErrorFeatureRejected || kind == JWErrorWrongGeometryType;
}

/// What became of one feature of A.
struct Slot {
    struct Result {
        std::unique_ptr<JWFeature> feature;
        std::shared_ptr<JWFeatureRecord> record;
        double area;
        std::string lostField;
    };
    AreaCheck check = AreaCheck::Usable;
    std::size_t pairs = 0;
    using Results = std::vector<Result>;
    Results results;
    std::vector<std::string> failures;
    std::atomic<bool> complete{false};
};

class SlotEmitter : public Emitter {
  public:
    /// `output`: where results are prepared for, so that the one that writes is done sooner; null
    /// when nobody would gain by it.
    SlotEmitter(const ResultSchema& schema, const FeatureOutput* output, const char* nameB,
                Slot& slot)
        : m_schema(schema), m_output(output), m_nameB(nameB), m_slot(slot) {}

    void emit(std::unique_ptr<JWGeometry> geometry, const JWFeature* a,
              const JWFeature* b) override {
        Slot::Result result;
        result.area = areaOf(*geometry);
        result.feature =
            m_schema.makeFeature(std::move(geometry), a, b, result.area, result.lostField);
        if (m_output != nullptr) result.record = m_output->prepare(*result.feature);
        m_slot.results.push_back(std::move(result));
    }

    void reject(const JWFeature& b, const char* reason) override {
        m_slot.failures.push_back("with feature " + std::to_string(b.getFID64()) + " of layer " +
                                  m_nameB + ": " + reason);
    }

  private:
    const ResultSchema& m_schema;
    const FeatureOutput* m_output;
    const char* m_nameB;
    Slot& m_slot;
};

class OverlayRun {
  public:
    OverlayRun(FeatureInput& a, FeatureInput& b, FeatureOutput& output, const ResultSchema& schema,
               const FeatureOperation& operation, const JWOverlayOptions& options,
               JWLayerReport& report)
        : m_a(a),
          m_b(b),
          m_output(output),
          m_schema(schema),
          m_operation(operation),
          m_report(report),
          m_team(options.threads),
          m_total(a.count()),
          m_blocks(m_total, options.blockSize) {}

    void indexB();
    void overlayBlock(std::int64_t block);
    std::int64_t blockCount() const { return m_blocks.number(); }

  private:
    void process(std::vector<Slot>& slots, std::int64_t begin, std::int64_t end);
    bool isNextComplete(const std::vector<Slot>& slots) const;
    void writeCompleted(std::vector<Slot>& slots);
    void writeSlot(const JWFeature& feature, Slot& slot);
    void reject(const FeatureInput& input, std::int64_t fid, const std::string& reason) {
        m_report.rejected.push_back({input.source(), input.name(), fid, reason});
    }
    void count(const FeatureInput& input, const JWFeature& feature, AreaCheck check,
               std::int64_t& empty);
    /// Ends the run because the progress callback asked to.
    [[noreturn]] void stop();

    FeatureInput& m_a;
    FeatureInput& m_b;
    FeatureOutput& m_output;
    const ResultSchema& m_schema;
    const FeatureOperation& m_operation;
    JWLayerReport& m_report;
    Team m_team;
    std::int64_t m_total;
    Blocks m_blocks;
    JWSpatialIndex m_index;
    std::vector<std::shared_ptr<const JWFeature>> m_block;
    std::atomic<std::size_t> m_nextToWrite{0};
    std::atomic<bool> m_writing{false};
    std::atomic<bool> m_stopped{false};
};

void OverlayRun::count(const FeatureInput& input, const JWFeature& feature, AreaCheck check,
                       std::int64_t& empty) {
    if (check == AreaCheck::Empty) ++empty;
    if (const char* reason = reasonOf(check)) reject(input, feature.getFID64(), reason);
}

void OverlayRun::stop() {
    m_report.cancelled = true;
    JWReport::setError(JWErrorCancelled, "the run was stopped; nothing was written");
    throw LayerFailure();
}

void OverlayRun::indexB() {
    JWReport::message("building spatial index...\n");
    if (!m_index.initRTreeIndex()) {
        JWReport::message("spatial index initialize failed!\n");
        JWReport::setError(JWErrorOutOfSpace, "the spatial index could not be made");
        throw LayerFailure();
    }
    for (std::int64_t position = 0;; ++position) {
        const std::shared_ptr<const JWFeature> feature = m_b.next(position);
        if (!feature) break;
        ++m_report.readB;
        if (position % 4096 == 0 && !JWReport::progress(0, m_total)) stop();
        const AreaCheck check = checkArea(*feature);
        count(m_b, *feature, check, m_report.emptyB);
        if (check != AreaCheck::Usable) continue;
        const JWEnvelop envelop = envelopOf(*feature->getGeometryPtr());
        if (envelop.isValid() && !m_index.addRect(envelop, payloadOf(position))) {
            JWReport::setError(JWErrorOutOfSpace, "the spatial index cannot hold every feature");
            throw LayerFailure();
        }
    }
}

/// Overlays features `begin` to `end` − 1 of the block, in runs of some thousand candidates.
void OverlayRun::process(std::vector<Slot>& slots, std::int64_t begin, std::int64_t end) {
    constexpr std::size_t candidatesInARun = 4096;
    IndexedCandidates candidates(m_b);
    const FeatureOutput* prepareFor = m_team.size() > 1 ? &m_output : nullptr;
    while (begin < end) {
        candidates.clear();
        std::int64_t runEnd = begin;
        for (; runEnd < end && candidates.size() < candidatesInARun; ++runEnd) {
            const JWFeature& feature = *m_block[runEnd];
            Slot& slot = slots[runEnd];
            slot.check = checkArea(feature);
            if (slot.check != AreaCheck::Usable) continue;
            slot.pairs = candidates.add(m_index, envelopOf(*feature.getGeometryPtr()));
        }
        for (; begin < runEnd; ++begin) {
            Slot& slot = slots[begin];
            candidates.startFeature(slot.pairs);
            SlotEmitter emitter(m_schema, prepareFor, m_b.name(), slot);
            if (slot.check == AreaCheck::Usable) m_operation(*m_block[begin], candidates, emitter);
            slot.complete = true;
        }
    }
}

void OverlayRun::writeSlot(const JWFeature& feature, Slot& slot) {
    ++m_report.readA;
    count(m_a, feature, slot.check, m_report.emptyA);
    for (const std::string& reason : slot.failures) reject(m_a, feature.getFID64(), reason);
    m_report.pairs += static_cast<std::int64_t>(slot.pairs);
    for (Slot::Result& result : slot.results) {
        if (!result.lostField.empty()) {
            reject(m_a, feature.getFID64(),
                   "the result cannot hold the value of field " + result.lostField);
        }
        if (m_output.write(result.feature, result.record)) {
            ++m_report.written;
            m_report.area += result.area;
        } else if (isRefusal(JWReport::lastError().kind)) {
            reject(m_a, feature.getFID64(), JWReport::lastError().text);
        } else {
            throw LayerFailure();
        }
    }
}

bool OverlayRun::isNextComplete(const std::vector<Slot>& slots) const {
    const std::size_t next = m_nextToWrite;
    return !m_stopped && next < slots.size() && slots[next].complete;
}

/// Writes the complete slots at the front of the block, a few at a time, so that others get at
/// their candidates in between. Leaves at once when another thread is writing: that one looks again
/// after it has given the turn back, so nothing is left lying. That needs sequential consistency:
/// with weaker orders two threads that complete neighbouring slots may each miss the other's. After
/// a failure the turn is not given back, and nothing more is written.
void OverlayRun::writeCompleted(std::vector<Slot>& slots) {
    constexpr std::size_t resultsAtATime = 64;
    while (isNextComplete(slots) && !m_writing.exchange(true)) {
        while (isNextComplete(slots)) {
            const std::size_t first = m_nextToWrite;
            exclusive([&] {
                std::size_t results = 0;
                for (; results < resultsAtATime && isNextComplete(slots); ++m_nextToWrite) {
                    const std::size_t next = m_nextToWrite;
                    results += 1 + slots[next].results.size();
                    writeSlot(*m_block[next], slots[next]);
                }
                if (!JWReport::progress(m_report.readA, m_total)) m_stopped = true;
            });
            // What was written is let go outside the lock.
            for (std::size_t i = first; i < m_nextToWrite; ++i) slots[i].results = Slot::Results();
        }
        m_writing.exchange(false);
    }
}

void OverlayRun::overlayBlock(std::int64_t block) {
    JWReport::message("input layer block %d where:%s\n", shown(block),
                      m_blocks.filter(block).c_str());
    m_a.readBlock(m_blocks.first(block) - 1, m_blocks.size(), m_block);
    const std::int64_t count = static_cast<std::int64_t>(m_block.size());
    const std::int64_t writtenBefore = m_report.written;
    std::vector<Slot> slots(m_block.size());
    m_nextToWrite = 0;

    const std::int64_t chunk =
        std::clamp<std::int64_t>(count / (std::int64_t{8} * m_team.size()), 1, 64);
    const bool finished =
        parallelChunks(m_team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
            process(slots, begin, end);
            writeCompleted(slots);
            return !m_stopped;
        });
    if (!finished) stop();
    JWReport::message("block %d wrote %d features to result layer!\n", shown(block),
                      shown(m_report.written - writtenBefore));
}

}  // namespace

std::int64_t runLayerOverlay(FeatureInput& a, FeatureInput& b, FeatureOutput& output,
                             const FeatureOperation& operation, const JWOverlayOptions& options,
                             JWLayerReport& report) {
    report = JWLayerReport();
    ResultSchema schema(a, b, options.attributeMode, options.areaField);
    output.setGeometryType(options.promoteToMulti ? JWWKBMultiPolygon : a.geometryType());
    schema.create(output);
    output.begin();
    try {
        OverlayRun run(a, b, output, schema, operation, options, report);
        const Clock::time_point indexStart = Clock::now();
        run.indexB();
        report.secondsIndex = secondsSince(indexStart);

        const Clock::time_point overlayStart = Clock::now();
        for (std::int64_t block = 0; block < run.blockCount(); ++block) run.overlayBlock(block);
        report.secondsOverlay = secondsSince(overlayStart);
        output.commit();
    } catch (...) {
        output.rollback();
        report.written = 0;
        report.area = 0;
        throw;
    }
    JWReport::message("%d features wrote to result layer!\n", shown(report.written));
    return report.written;
}

}  // namespace jws::detail
