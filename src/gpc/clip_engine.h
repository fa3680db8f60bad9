// SPDX-License-Identifier: MIT
#ifndef JW_GPC_CLIP_ENGINE_H
#define JW_GPC_CLIP_ENGINE_H

#include <gpc.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "gpc/box_tree.h"
#include "gpc/contour_set.h"

namespace jws::gpc {

/// An operand read once, to be clipped against many others. Only the parts near the other operand
/// are looked at where the operation allows it, so that a large polygon against a small one costs
/// little more than the small one. Immutable once made: safe to use from several threads.
class PreparedOperand {
  public:
    /// Copies `polygon`. Throws std::bad_alloc.
    explicit PreparedOperand(const gpc_polygon& polygon);

    /// False if a coordinate is not finite: clipping then gives an empty result.
    bool isFinite() const { return m_finite; }
    const Box& box() const { return m_box; }

    /// Appends the contours to `set`, as `ContourSet::add` does with the polygon itself.
    void addTo(ContourSet& set, int operand, const Scale& scale, const Box* window) const;

  private:
    void addNode(ContourSet& set, const BoxTree::Node& n, const Scale& scale,
                 const Box& window) const;
    ContourSet m_set;
    BoxTree m_tree;
    Box m_box;
    bool m_finite = true;
};

/// An operand of `clip`: a polygon or a prepared one.
struct Operand {
    const gpc_polygon* polygon = nullptr;
    const PreparedOperand* prepared = nullptr;
};

/// Does what `gpc_polygon_clip` does, with operands that may be prepared; the answers are equal
/// bit for bit. Sets every field of `result`; returns 0 or the errno value that tells why the
/// result is empty: EDOM, ENOMEM, ERANGE, or ECANCELED when the thread's pulse stopped it.
int clip(gpc_op op, const Operand& subject, const Operand& other, gpc_polygon& result) noexcept;

/// Computes the union of any number of polygons, each read by the even-odd rule, in one go.
/// The result is as from `gpc_polygon_clip`, errors as from `clip`. Null entries are skipped.
int uniteAll(const gpc_polygon* const* polygons, std::size_t count, gpc_polygon& result) noexcept;

/// The polygons that one call of `partition` takes beside its subject.
constexpr std::size_t kMostSets = 30;

/// What lies in the subject, in the polygons whose bits are set, and in no other.
struct Part {
    std::uint32_t sets;
    gpc_polygon polygon;
};

/// Cuts `subject` into the parts that lie in the same of the other polygons, in one go: appends
/// those that are not empty to `parts`, which is empty, by rising `sets`; the polygons must be
/// freed. At most kMostSets polygons, none null. Otherwise as `uniteAll`; no parts after a failure.
int partition(const gpc_polygon& subject, const gpc_polygon* const* polygons, std::size_t count,
              std::vector<Part>& parts) noexcept;

/// Computes the union of any number of areas from the directed loops around them, inside on the
/// left: what the loops wind round at least once. Loops of different areas may cross, touch and
/// overlap; the loops of one area must wind 0 or 1 time round every point. Otherwise as `uniteAll`.
/// \param overlap  receives the area that is covered more than once, counted once for each further
///     cover, measured on the cut edges and not on the result
int uniteDirected(const gpc_polygon& loops, gpc_polygon& result, double& overlap) noexcept;

/// Cuts an area, read by the even-odd rule, along lines into all faces that they make of it
/// together with its outline. `lines` holds a line in each contour; where lines end inside, or only
/// tie boundaries together, they cut nothing.
/// \param faces  of each face the outer contour, then its holes; empty when nothing is cut off.
///     Contours are simple, a hole starts at a point that its outer contour does not have
/// Returns 0 or the errno value that tells why `faces` is empty.
int cutFaces(const gpc_polygon& area, const gpc_polygon& lines, gpc_polygon& faces) noexcept;

}  // namespace jws::gpc

#endif  // JW_GPC_CLIP_ENGINE_H
