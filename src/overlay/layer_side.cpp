// SPDX-License-Identifier: MIT
#include "overlay/layer_side.h"

#include <algorithm>

#include "foundation/parallel.h"
#include "foundation/pulse.h"

namespace jws::detail {
namespace {

constexpr std::size_t kChainBytes = std::size_t{64} << 20;  // kept of large areas

}  // namespace

void LayerSide::startIndex() {
    try {
        m_index.start();
        m_hasIndex = true;
    } catch (const std::bad_alloc&) {
        JWReport::message("spatial index initialize failed!\n");
        throw;
    }
}

void LayerSide::enter(std::int64_t position, const std::shared_ptr<const JWFeature>& feature,
                      const JWEnvelop& envelop) {
    if (!m_hasIndex) return;
    if (m_holdsAll) {
        m_holdsAll = m_input.keep(position, feature);
        m_held.push_back(feature);
        if (!m_holdsAll) m_held = {};
    }
    m_index.add(position, envelop);
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
    features.resize(first + count);
    for (std::size_t i = 0; i < count; ++i) features[first + i].position = positionOf(hits[i]);
    if (!m_isRead || !m_holdsAll) readAll(&features[first], count);
    std::vector<OverlayFeature*> large;
    for (std::size_t i = first; i < features.size(); ++i) {
        OverlayFeature& feature = features[i];
        if (!feature.feature) {
            // Held as long as this operand: counting references would have threads wait.
            feature.feature = std::shared_ptr<const JWFeature>(
                std::shared_ptr<void>(), m_held[static_cast<std::size_t>(feature.position)].get());
        }
        feature.area = Area(feature.geometry(), feature.feature);
        if (feature.area.isLarge()) large.push_back(&feature);
    }
    if (!large.empty()) shareChains(large);
}

/// Reads features in one go, decodes them without the lock, and has them remembered.
void LayerSide::readAll(OverlayFeature* features, std::size_t count) {
    std::vector<JWReadFeature> read;
    std::vector<OverlayFeature*> places;  // of what was read
    std::vector<std::size_t> sources(count);
    exclusive([&] {
        for (std::size_t i = 0; i < count; ++i) {
            sources[i] = static_cast<std::size_t>(std::find_if(places.begin(), places.end(),
                                                               [&](const OverlayFeature* p) {
                                                                   return p->position ==
                                                                          features[i].position;
                                                               }) -
                                                  places.begin());
            if (sources[i] < places.size()) continue;
            places.push_back(&features[i]);
            m_input.readAt(features[i].position, read.emplace_back());
        }
    });
    bool decoded = false;
    for (std::size_t k = 0; k < read.size(); ++k) {
        if (!read[k].record) continue;
        m_input.decode(places[k]->position, read[k]);
        decoded = true;
    }
    for (std::size_t i = 0; i < count; ++i) features[i].feature = read[sources[i]].feature;
    if (!decoded) return;
    exclusive([&] {
        for (std::size_t k = 0; k < read.size(); ++k) {
            m_input.keep(places[k]->position, read[k].feature);
        }
    });
}

/// Gives large areas their boxes, made once as far as memory allows.
void LayerSide::shareChains(const std::vector<OverlayFeature*>& features) {
    exclusive([&] {
        for (OverlayFeature* feature : features) {
            feature->area.setChains(findChains(feature->position));
        }
    });
    std::vector<OverlayFeature*> made;
    for (OverlayFeature* feature : features) {
        if (feature->area.chains()) continue;
        feature->area.prepare();
        made.push_back(feature);
    }
    if (made.empty()) return;
    exclusive([&] {
        for (OverlayFeature* feature : made) keepChains(feature->position, feature->area.chains());
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
    if (m_next < m_batchBegin || m_next >= m_batchBegin + m_batch.size()) {
        Pulse::tick();
        m_batch.clear();
        m_batchBegin = m_next;
        m_others.fetch(&m_hits[m_next], std::min(LayerSide::kFetched, m_hits.size() - m_next),
                       m_batch);
    }
    return &m_batch[m_next++ - m_batchBegin];
}

}  // namespace jws::detail
