// SPDX-License-Identifier: MIT
//
// One block at a time: its features are dealt out to the team in chunks, each worker puts what the
// operation emits into the slots of its own features, and after every chunk a worker writes the
// slots that are complete from the front of the block, unless another one is at it. Writing thus
// overlaps clipping, still happens in the order of the operand, and never has a worker wait for its
// end.
#include "overlay/layer_driver.h"

#include <algorithm>
#include <chrono>
#include <climits>

#include "foundation/parallel.h"
#include "layers/block_filter.h"
#include "overlay/area_check.h"

namespace jws::detail {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// A number as messages show it.
int shown(std::int64_t number) { return static_cast<int>(std::min<std::int64_t>(number, INT_MAX)); }

/// The area of what rings enclose by the even-odd rule, however they cross.
double resolvedArea(const JWGeometry& geometry) {
    try {
        return resolvedArea(Area(geometry));
    } catch (const ClipFailure&) {
        return areaOf(geometry);
    }
}

/// Fills in what the driver has to know of a feature before the operation sees it.
void measure(const JWFeature& feature, bool resolve, Slot& slot) {
    slot.check = checkArea(feature);
    if (slot.check != AreaCheck::Usable) return;
    const JWGeometry& geometry = *feature.getGeometryPtr();
    slot.envelop = envelopOf(geometry);
    slot.inputArea = resolve ? resolvedArea(geometry) : areaOf(geometry);
}

class OverlayRun {
  public:
    OverlayRun(OverlayJob& job, const JWOverlayOptions& options, JWLayerReport& report)
        : m_job(job),
          m_options(options),
          m_report(report),
          m_team(options.threads),
          m_sideA(job.a),
          m_sideB(job.b) {
        for (const OverlayPass& pass : job.passes) m_total += walked(pass).input().count();
    }

    void run();
    bool isStopped() const { return m_stopped; }

  private:
    bool isOneSided() const { return &m_job.a == &m_job.b; }
    LayerSide& walked(const OverlayPass& pass) {
        return pass.overB && !isOneSided() ? m_sideB : m_sideA;
    }
    LayerSide& others(const OverlayPass& pass) {
        return pass.overB || isOneSided() ? m_sideA : m_sideB;
    }

    void indexWhole(LayerSide& side);
    void walk(const OverlayPass& pass);
    void overlayBlock(const OverlayPass& pass, const Blocks& blocks, std::int64_t block);
    void process(const OverlayPass& pass, std::int64_t begin, std::int64_t end);
    bool isNextComplete() const;
    void writeCompleted(LayerSide& side);
    void writeSlot(LayerSide& side, std::size_t i);
    void writeResult(const FeatureOrigin& origin, std::int64_t fid, Slot::Result& result);
    void countRead(LayerSide& side, std::int64_t position, const JWFeature& feature,
                   const Slot& slot);
    void reject(const FeatureOrigin& origin, std::int64_t fid, const std::string& reason) {
        m_report.rejected.push_back({origin.input->source(), origin.input->name(), fid, reason});
    }
    /// Ends the run because the progress callback asked to.
    [[noreturn]] void stop();

    OverlayJob& m_job;
    const JWOverlayOptions& m_options;
    JWLayerReport& m_report;
    Team m_team;
    LayerSide m_sideA;
    LayerSide m_sideB;
    std::int64_t m_total = 0;  ///< features to walk over in all passes
    std::atomic<std::int64_t> m_done{0};
    bool m_countsPairs = true;  ///< in the first pass
    std::int64_t m_blockBegin = 0;
    std::vector<std::shared_ptr<const JWFeature>> m_block;
    std::vector<Slot> m_slots;
    std::atomic<std::size_t> m_nextToWrite{0};
    std::atomic<bool> m_writing{false};
    std::atomic<bool> m_stopped{false};
};

void OverlayRun::stop() {
    m_stopped = true;
    JWReport::setError(JWErrorCancelled, "the run was stopped; nothing was written");
    throw LayerFailure();
}

/// Counts a feature that is read for the first time, and puts it into the tree of its operand when
/// somebody is going to search that.
void OverlayRun::countRead(LayerSide& side, std::int64_t position, const JWFeature& feature,
                           const Slot& slot) {
    const FeatureOrigin origin = side.input().originOf(position);
    const bool second = origin.second || &side == &m_sideB;
    ++(second ? m_report.readB : m_report.readA);
    (second ? m_report.areaB : m_report.areaA) += slot.inputArea;
    if (slot.check == AreaCheck::Empty) ++(second ? m_report.emptyB : m_report.emptyA);
    if (const char* reason = reasonOf(slot.check)) reject(origin, feature.getFID64(), reason);
    if (slot.check == AreaCheck::Usable) side.index(position, slot.envelop);
}

void OverlayRun::indexWhole(LayerSide& side) {
    JWReport::message("building spatial index...\n");
    side.startIndex();
    for (std::int64_t position = 0;; ++position) {
        const std::shared_ptr<const JWFeature> feature = side.input().next(position);
        if (!feature) break;
        if (position % 4096 == 0 && !JWReport::progress(m_done, m_total)) stop();
        Slot slot;
        measure(*feature, m_options.checkAreas, slot);
        countRead(side, position, *feature, slot);
    }
    side.setRead();
}

/// Overlays features `begin` to `end` − 1 of the block, in runs of some thousand neighbours.
void OverlayRun::process(const OverlayPass& pass, std::int64_t begin, std::int64_t end) {
    constexpr std::size_t neighboursInARun = 4096;
    constexpr std::size_t preparedFor = 8;
    // A feature may have so many neighbours that nothing is written for a long time.
    const std::function<void()> pulse = [this] {
        if (!JWReport::progress(m_done, m_total)) stop();
    };
    Surroundings surroundings(walked(pass), others(pass), pulse);
    FeatureInput& otherInput = others(pass).input();
    const FeatureOutput* prepareFor = m_team.size() > 1 ? &m_job.output : nullptr;
    while (begin < end) {
        surroundings.clear();
        std::int64_t runEnd = begin;
        for (; runEnd < end && surroundings.size() < neighboursInARun; ++runEnd) {
            Slot& slot = m_slots[runEnd];
            measure(*m_block[runEnd], m_options.checkAreas, slot);
            if (slot.check == AreaCheck::Usable) slot.pairs = surroundings.add(slot.envelop);
        }
        for (; begin < runEnd; ++begin) {
            Slot& slot = m_slots[begin];
            surroundings.startFeature(slot.pairs);
            if (slot.check == AreaCheck::Usable) {
                const std::shared_ptr<const JWFeature>& feature = m_block[begin];
                OverlayFeature subject = {m_blockBegin + begin, feature,
                                          Area(*feature->getGeometryPtr(), feature)};
                if (slot.pairs > preparedFor) subject.area.prepare();
                Emitter emitter(m_job.schema, prepareFor, otherInput, m_options.multipart, slot);
                try {
                    pass.operation(subject, surroundings, emitter);
                } catch (const ClipFailure& failure) {
                    emitter.reject(failure.what());
                }
            }
            slot.complete = true;
        }
    }
}

void OverlayRun::writeResult(const FeatureOrigin& origin, std::int64_t fid, Slot::Result& result) {
    if (!result.lostField.empty()) {
        reject(origin, fid, "the result cannot hold the value of field " + result.lostField);
    }
    if (m_job.output.write(result.feature, result.record)) {
        ++m_report.written;
        m_report.area += result.area;
    } else if (isRefusal(JWReport::lastError().kind)) {
        reject(origin, fid, JWReport::lastError().text);
    } else {
        throw LayerFailure();
    }
}

void OverlayRun::writeSlot(LayerSide& side, std::size_t i) {
    const std::int64_t position = m_blockBegin + static_cast<std::int64_t>(i);
    const JWFeature& feature = *m_block[i];
    Slot& slot = m_slots[i];
    if (!side.isRead()) countRead(side, position, feature, slot);
    const FeatureOrigin origin = side.input().originOf(position);
    for (const std::string& reason : slot.failures) reject(origin, feature.getFID64(), reason);
    if (m_countsPairs) m_report.pairs += static_cast<std::int64_t>(slot.pairs);
    m_report.areaDropped += slot.dropped;
    m_report.residual += slot.mismatch;
    for (Slot::Result& result : slot.results) writeResult(origin, feature.getFID64(), result);
    ++m_done;
}

bool OverlayRun::isNextComplete() const {
    const std::size_t next = m_nextToWrite;
    return !m_stopped && next < m_block.size() && m_slots[next].complete;
}

/// Writes the complete slots at the front of the block, a few at a time, so that others get at
/// their neighbours in between. Leaves at once when another thread is writing: that one looks again
/// after it has given the turn back, so nothing is left lying. That needs sequential consistency:
/// with weaker orders two threads that complete neighbouring slots may each miss the other's. After
/// a failure the turn is not given back, and nothing more is written.
void OverlayRun::writeCompleted(LayerSide& side) {
    constexpr std::size_t resultsAtATime = 64;
    while (isNextComplete() && !m_writing.exchange(true)) {
        while (isNextComplete()) {
            const std::size_t first = m_nextToWrite;
            exclusive([&] {
                std::size_t results = 0;
                for (; results < resultsAtATime && isNextComplete(); ++m_nextToWrite) {
                    const std::size_t next = m_nextToWrite;
                    results += 1 + m_slots[next].results.size();
                    writeSlot(side, next);
                }
                if (!JWReport::progress(m_done, m_total)) m_stopped = true;
            });
            // What was written is let go outside the lock.
            for (std::size_t i = first; i < m_nextToWrite; ++i) {
                m_slots[i].results = Slot::Results();
            }
        }
        m_writing.exchange(false);
    }
}

void OverlayRun::overlayBlock(const OverlayPass& pass, const Blocks& blocks, std::int64_t block) {
    JWReport::message("input layer block %d where:%s\n", shown(block),
                      blocks.filter(block).c_str());
    if (pass.texts.start != nullptr) pass.texts.start(shown(block));
    LayerSide& side = walked(pass);
    m_blockBegin = blocks.first(block) - 1;
    side.input().readBlock(m_blockBegin, blocks.size(), m_block);
    const std::int64_t count = static_cast<std::int64_t>(m_block.size());
    const std::int64_t writtenBefore = m_report.written;
    m_slots = std::vector<Slot>(m_block.size());
    m_nextToWrite = 0;

    const std::int64_t chunk =
        std::clamp<std::int64_t>(count / (std::int64_t{8} * m_team.size()), 1, 64);
    const bool finished =
        parallelChunks(m_team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
            process(pass, begin, end);
            writeCompleted(side);
            return !m_stopped;
        });
    if (!finished) stop();
    const int written = shown(m_report.written - writtenBefore);
    if (pass.texts.end != nullptr) {
        pass.texts.end(shown(block), written, shown(count));
    } else {
        JWReport::message("block %d wrote %d features to result layer!\n", shown(block), written);
    }
}

void OverlayRun::walk(const OverlayPass& pass) {
    LayerSide& side = walked(pass);
    const Blocks blocks(side.input().count(), m_options.blockSize);
    const std::int64_t writtenBefore = m_report.written;
    for (std::int64_t block = 0; block < blocks.number(); ++block) {
        overlayBlock(pass, blocks, block);
    }
    m_block.clear();
    m_slots.clear();
    side.setRead();
    m_countsPairs = false;
    if (pass.summary != nullptr) pass.summary(shown(m_report.written - writtenBefore));
}

void OverlayRun::run() {
    const Clock::time_point indexStart = Clock::now();
    indexWhole(others(m_job.passes.front()));
    m_report.secondsIndex = secondsSince(indexStart);

    const Clock::time_point overlayStart = Clock::now();
    // A tree over A, where a later pass searches it, is filled while the first pass reads A.
    if (!isOneSided() && m_job.passes.size() > 1) m_sideA.startIndex();
    for (const OverlayPass& pass : m_job.passes) {
        if (pass.prepare) pass.prepare();
        walk(pass);
    }
    m_report.secondsOverlay = secondsSince(overlayStart);
}

}  // namespace

std::int64_t runLayerOverlay(OverlayJob& job, const JWOverlayOptions& options,
                             JWLayerReport& report) {
    report = JWLayerReport();
    job.schema.addArea(options.areaField);
    job.output.setGeometryType(options.promoteToMulti ? JWWKBMultiPolygon : job.a.geometryType());
    job.schema.create(job.output);
    OverlayRun run(job, options, report);
    job.output.begin();
    try {
        run.run();
        job.output.commit();
    } catch (...) {
        job.output.rollback();
        report.written = 0;
        report.area = report.areaDropped = report.residual = 0;
        report.cancelled = run.isStopped();
        throw;
    }
    JWReport::message("%d features wrote to result layer!\n", shown(report.written));
    return report.written;
}

}  // namespace jws::detail
