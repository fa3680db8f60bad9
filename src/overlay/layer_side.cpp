// SPDX-License-Identifier: MIT
#include "overlay/layer_side.h"

#include "foundation/parallel.h"

namespace jws::detail {
namespace {

constexpr std::size_t kChainBytes = std::size_t{64} << 20;  // kept of large areas

}  // namespace

void LayerSide::startIndex() {
    m_hasIndex = m_index.initRTreeIndex();
    if (m_hasIndex) return;
    JWReport::message("spatial index initialize failed!\n");
    JWReport::setError(JWErrorOutOfSpace, "the spatial index could not be made");
    throw LayerFailure();
}

void LayerSide::index(std::int64_t position, const JWEnvelop& envelop) {
    if (!m_hasIndex || !envelop.isValid() || m_index.addRect(envelop, payloadOf(position))) return;
    JWReport::setError(JWErrorOutOfSpace, "the spatial index cannot hold every feature");
    throw LayerFailure();
}

std::shared_ptr<const ChainBoxes> LayerSide::findChains(std::int64_t position) const {
    const auto found = m_chains.find(position);
    return found != m_chains.end() ? found->second : nullptr;
}

/// Boxes need no order of use: when they become too many, all go, and the next use makes new ones.
void LayerSide::keepChains(std::int64_t position, const std::shared_ptr<const ChainBoxes>& chains) {
    if (m_chainBytes + chains->memorySize() > kChainBytes) {
        m_chains.clear();
        m_chainBytes = 0;
    }
    if (m_chains.emplace(position, chains).second) m_chainBytes += chains->memorySize();
}

void LayerSide::fetch(void* const* hits, std::size_t count, std::vector<OverlayFeature>& features) {
    const std::size_t first = features.size();
    std::vector<std::shared_ptr<const ChainBoxes>> chains;
    exclusive([&] {
        for (std::size_t i = 0; i < count; ++i) {
            const std::int64_t position = positionOf(hits[i]);
            features.push_back({position, m_input.feature(position), Area()});
            chains.push_back(m_chains.empty() ? nullptr : findChains(position));
        }
    });
    std::vector<std::size_t> made;
    for (std::size_t i = 0; i < count; ++i) {
        OverlayFeature& feature = features[first + i];
        feature.area = Area(feature.geometry(), feature.feature);
        feature.area.setChains(std::move(chains[i]));
        if (feature.area.chains() || !feature.area.isLarge()) continue;
        feature.area.prepare();
        made.push_back(first + i);
    }
    if (made.empty()) return;
    exclusive([&] {
        for (const std::size_t i : made) {
            keepChains(features[i].position, features[i].area.chains());
        }
    });
}

void Surroundings::clear() {
    m_hits.clear();
    m_batch.clear();
    m_batchBegin = m_begin = m_next = m_end = 0;
}

std::size_t Surroundings::add(const JWEnvelop& envelop) {
    m_others.search(envelop, m_found);
    m_hits.insert(m_hits.end(), m_found.begin(), m_found.end());
    return m_found.size();
}

void Surroundings::startFeature(std::size_t count) {
    m_begin = m_next = m_end;
    m_end += count;
}

const OverlayFeature* Surroundings::next() {
    if (m_next == m_end) return nullptr;
    if (m_next >= m_batchBegin + m_batch.size()) {
        m_pulse();
        m_batch.clear();
        m_batchBegin = m_next;
        m_others.fetch(&m_hits[m_next], std::min(LayerSide::kFetched, m_hits.size() - m_next),
                       m_batch);
    }
    return &m_batch[m_next++ - m_batchBegin];
}

}  // namespace jws::detail
