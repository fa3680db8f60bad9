// SPDX-License-Identifier: MIT
//
// Results of items that are no features of an input (ordered_walk.h has those) on their way from
// many workers to one output, in the order of the items. Workers put what
// they make of an item of a block into that item's slot, mark it complete and offer to write: a
// worker writes the slots that are complete from the front, unless another one is at it. Writing
// thus overlaps the work, happens in order, and never has a worker wait for its end.
#ifndef JW_LAYERS_ORDERED_WRITER_H
#define JW_LAYERS_ORDERED_WRITER_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "layers/pending_result.h"

namespace jws::detail {

class OrderedWriter {
  public:
    struct Actions {
        /// Writes item i and returns how many results it had; inside the critical section.
        std::function<std::size_t(std::size_t i)> write;
        /// Lets go of what item i held; outside.
        std::function<void(std::size_t i)> release;
        /// Called every now and then inside the critical section; false stops the run.
        std::function<bool()> keepOn;
    };
    explicit OrderedWriter(Actions actions) : m_actions(std::move(actions)) {}

    /// Starts a block of `count` items. Not while workers are at one.
    void start(std::size_t count);

    // For workers, outside the critical section.
    void setComplete(std::size_t i) { m_complete[i] = true; }
    /// Writes what is complete from the front. Returns false when the run was stopped.
    bool writeCompleted();

    void stop() { m_stopped = true; }
    bool isStopped() const { return m_stopped; }

  private:
    bool isNextComplete() const;

    Actions m_actions;
    std::vector<std::atomic<bool>> m_complete;
    std::atomic<std::size_t> m_next{0};
    std::atomic<bool> m_writing{false};
    std::atomic<bool> m_stopped{false};
};

}  // namespace jws::detail

#endif  // JW_LAYERS_ORDERED_WRITER_H
