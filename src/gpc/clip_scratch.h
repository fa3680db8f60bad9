// SPDX-License-Identifier: MIT
#ifndef JW_GPC_CLIP_SCRATCH_H
#define JW_GPC_CLIP_SCRATCH_H

#include <cerrno>
#include <new>

#include "foundation/pulse.h"
#include "gpc/contour_builder.h"
#include "gpc/face_builder.h"
#include "gpc/frame.h"

namespace jws::gpc {

/// The steps of the engine and the memory they work in.
struct Engine {
    ContourSet set;
    ContourSet resolved;
    Buffer<std::int32_t> labels;  // of a partition
    Noder noder;
    Arrangement arrangement;
    ContourBuilder builder;
    FaceBuilder faceBuilder;
    detail::StepCounter pace;

    /// Gives the memory back if it has grown large.
    void trim();
    /// Splits the contours' edges and labels what lies on their sides.
    void arrange(ContourSet& contours, const Frame& frame, bool depth);
};

/// The calling thread's.
Engine& engine();

struct Trim {
    ~Trim() { engine().trim(); }
};

inline bool isEmpty(const Box& box) { return !(box.minX <= box.maxX); }

/// Calls `work()`, which fills `result` and returns an errno value. What it throws becomes one.
template <class F>
int guarded(gpc_polygon& result, F&& work) noexcept {
    result = {0, nullptr, nullptr};
    try {
        return work();
    } catch (const std::bad_alloc&) {
        gpc_free_polygon(&result);
        return ENOMEM;
    } catch (...) {
        gpc_free_polygon(&result);
        return detail::Pulse::hasStopped() ? ECANCELED : ERANGE;
    }
}

}  // namespace jws::gpc

#endif  // JW_GPC_CLIP_SCRATCH_H
