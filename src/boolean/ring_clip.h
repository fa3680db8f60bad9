// SPDX-License-Identifier: MIT
#ifndef JW_BOOLEAN_RING_CLIP_H
#define JW_BOOLEAN_RING_CLIP_H

#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

#include "boolean/gpc_interface.h"
#include "foundation/ring_set.h"
#include "jw_blgeometrybasic.h"

namespace jws::detail {

/// The engine could not resolve two operands.
struct ClipFailure : std::runtime_error {
    ClipFailure() : std::runtime_error("the clipping engine gave up on its input") {}
};

/// The contours of a clip result, in the engine's order, in the engine's own memory.
class ClippedContours {
  public:
    ClippedContours() = default;
    /// Takes over what the engine has made. `failure` is its errno value: 0, EDOM, which becomes
    /// the thread's last error, ENOMEM, ERANGE or ECANCELED, which are thrown.
    ClippedContours(const ::gpc_polygon& polygon, int failure);
    ClippedContours(ClippedContours&& other) noexcept : m_polygon(other.m_polygon) {
        other.m_polygon = {};
    }
    ClippedContours(const ClippedContours&) = delete;
    ClippedContours& operator=(ClippedContours&& other) noexcept {
        std::swap(m_polygon, other.m_polygon);
        return *this;
    }
    ~ClippedContours() {
        if (m_polygon.num_contours > 0) gpc_free_polygon(&m_polygon);
    }

    int count() const { return m_polygon.num_contours; }
    RingView view(int i) const;
    int hole(int i) const { return m_polygon.hole[i]; }
    /// Views of all contours; valid as long as this object is.
    RingViews views() const;
    /// Makes the closed ring of contour i, its envelope up to date.
    JWRing ring(int i) const;

  private:
    ::gpc_polygon m_polygon = {};
};

/// The area that contours enclose, holes taken off.
double areaOf(const ClippedContours& contours);

/// Clips two sets of rings, each read by the even-odd rule; rings of fewer than three points count
/// as empty. A coordinate that is not finite gives no contours and the thread's last error. Throws
/// when memory runs out, and ClipFailure when the engine gives up.
ClippedContours clipRings(const RingViews& a, const RingViews& b, enumJWBooleanType type);

/// Unites any number of ring sets: what lies in any of them, each read by the even-odd rule. Errors
/// as of `clipRings`. Sets that lie close together should stand close together.
ClippedContours uniteRings(const std::vector<RingViews>& sets);

/// What lies in a subject, in the ring sets whose bits are set, and in no other.
struct PartOfSets {
    std::uint32_t sets;
    ClippedContours contours;
};

/// The ring sets that one call of `partitionRings` takes.
constexpr std::size_t kMostSets = 30;

/// Cuts `subject` into the parts that lie in the same of at most kMostSets ring sets, each read by
/// the even-odd rule. Parts are not empty and come by rising `sets`. Errors as of `clipRings`.
std::vector<PartOfSets> partitionRings(const RingViews& subject,
                                       const std::vector<RingViews>& sets);

/// Clips operands in the engine's own form; otherwise as `clipRings`. The operands stay the
/// caller's.
ClippedContours clipPolygons(::gpc_polygon& a, ::gpc_polygon& b, enumJWBooleanType type);

/// Unites any number of areas from the directed loops around them, interior on the left: gives
/// where the loops wind at least once. Each area's own loops must wind 0 or 1 time around every
/// point. Coordinates must be finite. Only the engine of this library can do that. `overlap`
/// receives the area that is covered more than once, counted once for each further cover.
ClippedContours uniteDirected(const RingViews& loops, double& overlap);

/// Tells whether `uniteDirected` may be called.
#ifdef JWCG_GPC_BUILTIN
constexpr bool canUniteDirected = true;
#else
constexpr bool canUniteDirected = false;
#endif

}  // namespace jws::detail

#endif  // JW_BOOLEAN_RING_CLIP_H
