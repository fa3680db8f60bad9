// SPDX-License-Identifier: MIT
//
// Operand B is read and measured, and operand A overlaid block by block, by walks of the team
// (ordered_walk.h): workers measure and clip, and put what comes of a feature into its slot; the
// account is kept and results are written in the order of the operand, while others work.
#include "overlay/layer_driver.h"

#include <algorithm>

#include "foundation/parallel.h"
#include "foundation/pulse.h"
#include "layers/block_filter.h"
#include "layers/layer_run.h"
#include "layers/ordered_walk.h"
#include "overlay/area_check.h"

namespace jws::detail {
namespace {

/// Fills in what the driver has to know of a feature before the operation sees it.
void measure(const JWFeature& feature, bool resolve, Slot& slot) {
    slot.check = checkArea(feature);
    if (slot.check != AreaCheck::Usable) return;
    const JWGeometry& geometry = *feature.getGeometryPtr();
    slot.envelop = envelopOf(geometry);
    try {
        slot.inputArea = resolve ? resolvedArea(Area(geometry)) : areaOf(geometry);
    } catch (const ClipFailure&) {
        slot.inputArea = areaOf(geometry);
        slot.isUnresolved = true;
    }
}

class OverlayRun {
  public:
    OverlayRun(OverlayJob& job, const JWOverlayOptions& options, JWLayerReport& report)
        : m_job(job),
          m_options(options),
          m_report(report),
          m_run(report),
          m_team(options.threads),
          m_resolves(options.checkAreas || !options.multipart || !options.areaField.empty()),
          m_sideA(job.a),
          m_sideB(job.b) {
        std::int64_t features = 0;
        for (const OverlayPass& pass : job.passes) features += walked(pass).input().count();
        m_run.setSteps(features);
    }

    std::int64_t run() {
        return m_run.transact(m_job.output, [this] { runPasses(); });
    }

  private:
    bool isOneSided() const { return &m_job.a == &m_job.b; }
    LayerSide& walked(const OverlayPass& pass) {
        return pass.overB && !isOneSided() ? m_sideB : m_sideA;
    }
    LayerSide& others(const OverlayPass& pass) {
        return pass.overB || isOneSided() ? m_sideA : m_sideB;
    }

    using Chunk = FeatureChunk<Slot>;

    void runPasses();
    void indexWhole(LayerSide& side);
    void walk(const OverlayPass& pass);
    void overlayBlock(const OverlayPass& pass, const Blocks& blocks, std::int64_t block);
    void process(const OverlayPass& pass, OrderedWalk<Slot>& walk, Chunk& chunk);
    void overlay(const OverlayPass& pass, OverlayFeature& subject, Surroundings& surroundings,
                 Slot& slot, const Growth& grew);
    void writeResults(const OverlayPass& pass, Chunk& chunk, std::size_t i);
    void writePart(const OverlayPass& pass, Chunk& chunk, std::size_t i);
    void writeSlot(const OverlayPass& pass, Chunk& chunk, std::size_t i);
    void countRead(LayerSide& side, const Chunk& chunk, std::size_t i);
    OverlayJob& m_job;
    const JWOverlayOptions& m_options;
    JWLayerReport& m_report;
    LayerRun m_run;
    Team m_team;
    bool m_resolves;  ///< areas of features are needed as the even-odd rule has them
    LayerSide m_sideA;
    LayerSide m_sideB;
    bool m_countsPairs = true;  ///< in the first pass
    TextBatch m_texts;
    std::int64_t m_blockFirst = 0;  ///< position of the block's first feature
    std::int64_t m_inBlock = 0;
    std::int64_t m_inLayer = 0;
    std::int64_t m_copied = 0;  ///< features that came out of the pass as they were
};

/// Counts a feature that is read for the first time, and enters it into its operand when somebody
/// is going to search that.
void OverlayRun::countRead(LayerSide& side, const Chunk& chunk, std::size_t i) {
    const Slot& slot = chunk.slots[i];
    const FeatureOrigin origin = side.input().originOf(chunk.position(i));
    const bool second = origin.second || &side == &m_sideB;
    ++(second ? m_report.readB : m_report.readA);
    (second ? m_report.areaB : m_report.areaA) += slot.inputArea;
    if (slot.check == AreaCheck::Empty) ++(second ? m_report.emptyB : m_report.emptyA);
    if (const char* reason = reasonOf(slot.check)) {
        m_run.reject(*origin.input, chunk.feature(i)->getFID64(), reason);
    }
    if (slot.isUnresolved) {
        m_run.reject(*origin.input, chunk.feature(i)->getFID64(),
                     "its area could not be resolved: the clipping engine gave up");
    }
    side.enter(chunk.position(i), chunk.feature(i), slot.envelop);
}

void OverlayRun::indexWhole(LayerSide& side) {
    JWReport::message("building spatial index...\n");
    side.startIndex();
    const auto measureAll = [this](Chunk& chunk) {
        const Pulse pulse([this] { m_run.beat(); });
        for (std::size_t i = 0; i < chunk.size(); ++i) {
            measure(*chunk.feature(i), m_resolves, chunk.slots[i]);
        }
    };
    const auto enter = [this, &side](Chunk& chunk, std::size_t i) { countRead(side, chunk, i); };
    OrderedWalk<Slot> walk(m_team, side.input(),
                           {measureAll, enter, [this] { return m_run.keepOn(); }, {}, 256});
    if (!walk.run(0, INT64_MAX)) m_run.stop();
    side.setRead();
}

/// Overlays the features of a chunk, in runs of some thousand neighbours.
void OverlayRun::process(const OverlayPass& pass, OrderedWalk<Slot>& walk, Chunk& chunk) {
    constexpr std::size_t neighboursInARun = 4096;
    const Pulse pulse([this] { m_run.beat(); });
    Surroundings surroundings(walked(pass), others(pass));
    std::size_t atHand = 0;
    const Growth grew = [&](std::size_t bytes) { walk.grew(chunk, atHand, bytes); };
    for (std::size_t begin = 0; begin < chunk.size();) {
        surroundings.clear();
        std::size_t end = begin;
        for (; end < chunk.size() && surroundings.size() < neighboursInARun; ++end) {
            Slot& slot = chunk.slots[end];
            measure(*chunk.feature(end), m_resolves, slot);
            if (slot.check == AreaCheck::Usable && pass.searches) {
                slot.pairs = surroundings.add(slot.envelop);
            }
        }
        for (; begin < end; ++begin) {
            atHand = begin;
            Slot& slot = chunk.slots[begin];
            surroundings.startFeature(slot.pairs);
            const std::shared_ptr<const JWFeature>& feature = chunk.feature(begin);
            if (slot.check == AreaCheck::Empty && pass.keepsEmpty) {
                Emitter(m_job.schema, others(pass).input(), m_options.multipart, slot, grew)
                    .emitEmpty(*feature);
            }
            if (slot.check == AreaCheck::Usable) {
                OverlayFeature subject = {chunk.position(begin), feature,
                                          Area(*feature->getGeometryPtr(), feature)};
                overlay(pass, subject, surroundings, slot, grew);
            }
            slot.results.complete(grew);
        }
    }
}

void OverlayRun::overlay(const OverlayPass& pass, OverlayFeature& subject,
                         Surroundings& surroundings, Slot& slot, const Growth& grew) {
    constexpr std::size_t preparedFor = 8;
    if (slot.pairs > preparedFor) subject.area.prepare();
    Emitter emitter(m_job.schema, others(pass).input(), m_options.multipart, slot, grew);
    try {
        pass.operation(subject, surroundings, emitter);
    } catch (const ClipFailure& failure) {
        // One whose area could not be resolved is listed for that.
        if (!slot.isUnresolved) emitter.reject(failure.what());
    }
}

void OverlayRun::writeResults(const OverlayPass& pass, Chunk& chunk, std::size_t i) {
    const FeatureOrigin origin = walked(pass).input().originOf(chunk.position(i));
    chunk.slots[i].results.write(m_job.output, *origin.input, chunk.feature(i)->getFID64(),
                                 m_report);
}

/// Those before it in the chunk are written.
void OverlayRun::writePart(const OverlayPass& pass, Chunk& chunk, std::size_t i) {
    writeResults(pass, chunk, i);
    for (std::size_t k = 0; k <= i; ++k) chunk.slots[k].results.letGo();
}

void OverlayRun::writeSlot(const OverlayPass& pass, Chunk& chunk, std::size_t i) {
    LayerSide& side = walked(pass);
    const std::int64_t position = chunk.position(i);
    const JWFeature& feature = *chunk.feature(i);
    Slot& slot = chunk.slots[i];
    if (!side.isRead()) countRead(side, chunk, i);
    const FeatureOrigin origin = side.input().originOf(position);
    for (const std::string& reason : slot.failures) {
        m_run.reject(*origin.input, feature.getFID64(), reason);
    }
    for (const LostFeature& lost : slot.lost) m_run.reject(*lost.input, lost.fid, lost.reason);
    if (isOneSided() && slot.pairs > 0) --slot.pairs;  // a feature meets itself
    if (m_countsPairs) m_report.pairs += static_cast<std::int64_t>(slot.pairs);
    m_report.areaDropped += slot.dropped;
    m_report.residual += slot.mismatch;
    writeResults(pass, chunk, i);
    slot.results.reportRefusals(m_report);
    m_copied += slot.copies;
    if (pass.texts.feature != nullptr && m_texts.isOn()) {
        pass.texts.feature(m_texts,
                           {position, position - m_blockFirst + 1, m_inBlock, m_inLayer, slot});
    }
    m_run.addDone(1);
}

void OverlayRun::overlayBlock(const OverlayPass& pass, const Blocks& blocks, std::int64_t block) {
    if (pass.texts.block) {
        JWReport::message("block %d->", shown(block));
        JWReport::message("input layer block %d where:%s\n", shown(block),
                          blocks.filter(block).c_str());
    }
    if (pass.texts.start != nullptr) pass.texts.start(shown(block));
    LayerSide& side = walked(pass);
    const std::int64_t writtenBefore = m_report.written;
    OrderedWalk<Slot> walk(m_team, side.input(),
                           {[&](Chunk& chunk) { process(pass, walk, chunk); },
                            [&](Chunk& chunk, std::size_t i) { writeSlot(pass, chunk, i); },
                            [this] { return m_run.keepOn(); },
                            [this](Chunk& chunk, std::size_t i) {
                                return chunk.slots[i].results.prepare(m_job.output);
                            },
                            32, [&](Chunk& chunk, std::size_t i) { writePart(pass, chunk, i); }});
    const std::int64_t first = blocks.first(block) - 1;
    m_blockFirst = first;
    m_inBlock = std::clamp<std::int64_t>(m_inLayer - first, 0, blocks.size());
    if (!walk.run(first, blocks.size())) m_run.stop();
    m_texts.flush();
    const int written = shown(m_report.written - writtenBefore);
    if (pass.texts.end != nullptr) {
        pass.texts.end(shown(block), written, shown(walk.position() - first));
    } else {
        JWReport::message("block %d wrote %d features to result layer!\n", shown(block), written);
    }
}

void OverlayRun::walk(const OverlayPass& pass) {
    LayerSide& side = walked(pass);
    m_inLayer = side.input().count();
    const Blocks blocks(m_inLayer, m_options.blockSize);
    const std::int64_t writtenBefore = m_report.written;
    m_copied = 0;
    for (std::int64_t block = 0; block < blocks.number(); ++block) {
        overlayBlock(pass, blocks, block);
    }
    side.setRead();
    if (m_countsPairs && isOneSided()) m_report.pairs /= 2;  // met from either end
    m_countsPairs = false;
    if (pass.summary != nullptr) {
        pass.summary(shown(m_report.written - writtenBefore), shown(m_copied));
    }
}

void OverlayRun::runPasses() {
    {
        const Stopwatch watch(m_report.secondsIndex);
        indexWhole(others(m_job.passes.front()));
    }
    const Stopwatch watch(m_report.secondsOverlay);
    // A tree over A, where a later pass searches it, is filled while the first pass reads A.
    if (!isOneSided() && std::any_of(m_job.passes.begin(), m_job.passes.end(),
                                     [](const OverlayPass& p) { return p.overB && p.searches; })) {
        m_sideA.startIndex();
    }
    for (const OverlayPass& pass : m_job.passes) {
        if (pass.prepare) {
            const Pulse pulse([this] { m_run.beat(); });
            pass.prepare(walked(pass));
        }
        walk(pass);
    }
}

}  // namespace

void announceFeature(TextBatch& texts, const FeatureCourse& course) {
    texts.print("NO.:%d in %d\n", course.place, course.inBlock);
    texts.print("i=%d search count:%d\n", course.position, course.slot.pairs);
    texts.print("%d->%d in %d\n", course.position, course.slot.results.count(), course.inBlock);
}

std::int64_t runLayerOverlay(OverlayJob& job, const JWOverlayOptions& options,
                             JWLayerReport& report) {
    report = JWLayerReport();
    job.schema.addArea(options.areaField);
    job.output.setGeometryType(options.promoteToMulti ? JWWKBMultiPolygon : job.a.geometryType());
    job.schema.create(job.output);
    OverlayRun(job, options, report).run();
    JWReport::message("%d features wrote to result layer!\n", shown(report.written));
    return report.written;
}

}  // namespace jws::detail
