// SPDX-License-Identifier: MIT
//
// Relations of two layers. Layer B is read once for its envelopes. Layer A is read block by block;
// the features of B near a block are prepared by the team, each once, and kept for later blocks
// until there are too many points. Then the team relates the features of the block, each worker
// writing into the slots of its own features, and the pairs are handed out in order.
#include "relation/layer_relation.h"

#include <algorithm>
#include <climits>

#include "foundation/pulse.h"
#include "layers/geometry_check.h"

namespace jws::detail {
namespace {

constexpr std::size_t kPointsKept = std::size_t{1} << 21;

std::size_t pointsOf(const JWGeometry& geometry) { return geometry.getWKBSize() / 16 + 1; }

/// All features were looked at before, so what cannot be compared now is for want of memory; the
/// worker has the error.
void requireAnswer(bool answered) {
    if (!answered) throw LayerFailure();
}

}  // namespace

std::optional<PairFilter> PairFilter::from(const JWLayerRelationOptions& options) {
    PairFilter filter;
    filter.m_intersecting = options.predicate == "intersects";
    for (int i = 0; i < JWRelationMatrix::kPredicates; ++i)
        if (options.predicate == JWRelationMatrix::predicateName(i)) filter.m_predicate = i;
    if (!options.predicate.empty() && !filter.m_intersecting && filter.m_predicate < 0) {
        JWReport::setError(JWErrorInvalidArgument,
                           "'" + options.predicate + "' is no predicate of relations");
        return {};
    }
    filter.m_pattern = options.pattern;
    const bool isPattern = options.pattern.size() == 9 &&
                           options.pattern.find_first_not_of("TF012*") == std::string::npos;
    if (!options.pattern.empty() && !isPattern) {
        JWReport::setError(JWErrorInvalidArgument,
                           "'" + options.pattern + "' is not nine characters of T, F, 0, 1, 2, *");
        return {};
    }
    return filter;
}

bool PairFilter::takes(const JWRelationMatrix& matrix) const {
    if (m_intersecting && !matrix.isIntersecting()) return false;
    if (m_predicate >= 0 && !matrix.holds(m_predicate)) return false;
    return m_pattern.empty() || matrix.matches(m_pattern.c_str());
}

LayerRelationRun::LayerRelationRun(FeatureInput& a, FeatureInput& b,
                                   const JWLayerRelationOptions& options, const PairFilter& filter,
                                   JWLayerReport& report)
    : m_a(a),
      m_b(b),
      m_filter(filter),
      m_report(report),
      m_team(options.threads),
      m_blockSize(options.blockSize > 0 ? options.blockSize : INT_MAX) {}

std::int64_t LayerRelationRun::run(const JWLayerRelation::Visitor& visit) {
    const Pulse pulse([this] { keepOn(); });
    const std::int64_t countA = m_a.count();
    m_total = countA + m_b.count();
    indexB();
    std::int64_t handedOut = 0;
    for (std::int64_t first = 0; first < countA; first += m_blockSize) {
        readBlock(first, std::min(m_blockSize, countA - first));
        preparePartners();
        relateBlock();
        handedOut += handOut(visit);
        m_done += static_cast<std::int64_t>(m_block.size());
        keepOn();
    }
    return handedOut;
}

/// Ends the run, on any thread, when the progress callback asks to.
void LayerRelationRun::keepOn() {
    if (m_stopped || !JWReport::progress(m_done, m_total)) stop();
}

void LayerRelationRun::stop() {
    m_stopped = true;
    JWReport::setError(JWErrorCancelled, "the run was stopped");
    throw LayerFailure();
}

void LayerRelationRun::indexB() {
    m_index.start();
    for (std::int64_t position = 0; const auto feature = m_b.next(position); ++position) {
        ++m_report.readB;
        ++m_done;
        Pulse::tick();
        if (!canTake(m_b, *feature, m_report.emptyB)) continue;
        m_index.add(position, feature->getGeometryPtr()->getEnvelop());
    }
}

/// Counts an empty feature and lists one that cannot be compared; true for all others.
bool LayerRelationRun::canTake(FeatureInput& input, const JWFeature& feature, std::int64_t& empty) {
    const GeometryCheck check = checkGeometry(feature, AnyKind);
    empty += check == GeometryCheck::Empty;
    const std::string reason = reasonOf(check, feature, AnyKind);
    if (!reason.empty()) {
        m_report.rejected.push_back({input.source(), input.name(), feature.getFID64(), reason});
    }
    return check == GeometryCheck::Usable;
}

void LayerRelationRun::readBlock(std::int64_t first, std::int64_t count) {
    m_block.clear();
    while (static_cast<std::int64_t>(m_block.size()) < count) {
        m_block.push_back(m_a.next(first + static_cast<std::int64_t>(m_block.size())));
        if (m_block.back() == nullptr) break;
        Pulse::tick();
    }
    if (!m_block.empty() && m_block.back() == nullptr) m_block.pop_back();
    m_slots.clear();
    m_slots.resize(m_block.size());
    for (std::size_t i = 0; i < m_block.size(); ++i) {
        ++m_report.readA;
        if (!canTake(m_a, *m_block[i], m_report.emptyA)) continue;
        m_index.search(m_block[i]->getGeometryPtr()->getEnvelop(), m_slots[i].near);
        m_report.pairs += static_cast<std::int64_t>(m_slots[i].near.size());
    }
}

/// Prepares the features of B that the block meets.
void LayerRelationRun::preparePartners() {
    if (m_points > kPointsKept) {
        m_partners.clear();
        m_points = 0;
    }
    std::vector<std::int64_t> missing;
    for (const Slot& slot : m_slots)
        for (const void* payload : slot.near)
            if (m_partners.count(positionOf(payload)) == 0) missing.push_back(positionOf(payload));
    std::sort(missing.begin(), missing.end());
    missing.erase(std::unique(missing.begin(), missing.end()), missing.end());

    constexpr std::size_t kFetched = 1024;
    std::vector<Partner> partners(missing.size());
    Features features;
    for (std::size_t begin = 0; begin < missing.size(); begin += kFetched) {
        const std::size_t end = std::min(begin + kFetched, missing.size());
        features.clear();
        for (std::size_t i = begin; i < end; ++i) features.push_back(m_b.feature(missing[i]));
        const auto prepare = [&](std::int64_t from, std::int64_t to) {
            for (auto i = static_cast<std::size_t>(from); i < static_cast<std::size_t>(to); ++i) {
                const JWGeometry* geometry = features[i]->getGeometryPtr();
                partners[begin + i] = {features[i],
                                       std::make_unique<const JWPreparedRelation>(
                                           JWPreparedRelation::borrowing(geometry)),
                                       pointsOf(*geometry)};
                requireAnswer(partners[begin + i].prepared->isUsable());
                Pulse::tick();
            }
            return true;
        };
        parallelChunks(m_team, static_cast<std::int64_t>(end - begin), 4, prepare);
    }
    for (std::size_t i = 0; i < missing.size(); ++i) {
        m_points += partners[i].points;
        m_partners.emplace(missing[i], std::move(partners[i]));
    }
}

void LayerRelationRun::relateBlock() {
    const auto relate = [this](std::int64_t from, std::int64_t to) {
        for (std::int64_t i = from; i < to; ++i) relateFeature(static_cast<std::size_t>(i));
        return true;
    };
    parallelChunks(m_team, static_cast<std::int64_t>(m_block.size()), 16, relate);
}

void LayerRelationRun::relateFeature(std::size_t i) {
    Slot& slot = m_slots[i];
    if (slot.near.empty()) return;
    const JWPreparedRelation own = JWPreparedRelation::borrowing(m_block[i]->getGeometryPtr());
    for (const void* payload : slot.near) {
        const Partner& partner = m_partners.at(positionOf(payload));
        JWRelatedPair pair{m_block[i]->getFID64(), partner.feature->getFID64(), {}};
        requireAnswer(own.relate(*partner.prepared, &pair.matrix));
        if (m_filter.takes(pair.matrix)) slot.pairs.push_back(pair);
        Pulse::tick();
    }
}

std::int64_t LayerRelationRun::handOut(const JWLayerRelation::Visitor& visit) {
    std::int64_t count = 0;
    for (const Slot& slot : m_slots) {
        for (const JWRelatedPair& pair : slot.pairs) {
            if (!visit(pair)) stop();
            ++count;
        }
    }
    return count;
}

}  // namespace jws::detail
