// SPDX-License-Identifier: MIT
//
// Scratch memory belongs to the thread and is kept between calls unless it has grown large, so that
// a call allocates nothing but its result.
#include "gpc/clip_scratch.h"

#include <cstdlib>

namespace jws::gpc {
namespace {

constexpr std::size_t kKeptScratch = std::size_t{128} << 20;

}  // namespace

void Engine::trim() {
    if (set.points.bytes() + resolved.points.bytes() + noder.bytes() + arrangement.bytes() +
            builder.bytes() + faceBuilder.bytes() <=
        kKeptScratch) {
        return;
    }
    set.release();
    resolved.release();
    noder.release();
    arrangement.release();
    builder.release();
    faceBuilder.release();
}

void Engine::arrange(ContourSet& contours, const Frame& frame, bool depth) {
    contours.flags.fill(contours.points.size(), 0);
    noder.run(contours, frame.exponent, frame.aspect);
#ifdef JW_GPC_SELF_CHECK
    if (noder.countConflicts() != 0) std::abort();
#endif
    pace.step(noder.result().points.size());
    arrangement.build(noder, depth);
    pace.step(noder.result().points.size());
}

Engine& engine() {
    thread_local Engine scratch;
    return scratch;
}

}  // namespace jws::gpc
