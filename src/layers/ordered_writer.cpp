// SPDX-License-Identifier: MIT
#include "layers/ordered_writer.h"

#include "foundation/parallel.h"

namespace jws::detail {

void OrderedWriter::start(std::size_t count) {
    m_complete = std::vector<std::atomic<bool>>(count);
    m_next = 0;
}

bool OrderedWriter::isNextComplete() const {
    const std::size_t next = m_next;
    return !m_stopped && next < m_complete.size() && m_complete[next];
}

/// A few at a time, so that others get at the critical section in between. A worker leaves at once
/// when another one is writing: that one looks again after it has given the turn back, so nothing
/// is left lying. That needs sequential consistency: with weaker orders two workers that complete
/// neighbouring slots may each miss the other's. After a failure the turn is not given back, and
/// nothing more is written.
bool OrderedWriter::writeCompleted() {
    constexpr std::size_t resultsAtATime = 64;
    while (isNextComplete() && !m_writing.exchange(true)) {
        while (isNextComplete()) {
            const std::size_t first = m_next;
            exclusive([&] {
                for (std::size_t n = 0; n < resultsAtATime && isNextComplete(); ++m_next) {
                    n += 1 + m_actions.write(m_next);
                }
                if (!m_actions.keepOn()) m_stopped = true;
            });
            for (std::size_t i = first; i < m_next; ++i) m_actions.release(i);
        }
        m_writing.exchange(false);
    }
    return !m_stopped;
}

}  // namespace jws::detail
