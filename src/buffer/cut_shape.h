// SPDX-License-Identifier: MIT
//
// A circle or capsule of which only the part of the outline counts that no other shape covers.
#ifndef JW_BUFFER_CUT_SHAPE_H
#define JW_BUFFER_CUT_SHAPE_H

#include "buffer/buffer_shape.h"
#include "foundation/ring_set.h"

namespace jws::detail {

/// Distances of what counts as deep in a shape.
struct CoverMeasure {
    double near2;   ///< square of a distance from the axis within which every point is deep
    double far2;    ///< square of the distance beyond which none is
    double margin;  ///< how deep below the outline points count as deep
};

/// All points relative to an origin close by, but for those of the outline itself.
class CutShape {
  public:
    void make(const Shape& piece, double distance, const ArcStyle& arcs, const JWRawPoint& origin);

    int count() const { return m_count; }
    const JWRawPoint& corner(int k) const { return m_exact[k]; }
    double length2() const { return m_length2; }
    /// False when all of the outline is covered.
    bool isVisible() const { return m_visible > 0; }
    /// True when nothing of it is.
    bool isWhole() const { return m_whole; }

    /// Takes from the outline what is deep in `other`, as far as it reaches to an end of an edge.
    void coverBy(const CutShape& other, const CoverMeasure& measure);
    /// Appends a sliver along each stretch of the outline that is left, clockwise and within the
    /// shape, `depth` (a share of the distance) deep at the corners.
    void addSlivers(double depth, RingSet& slivers) const;

    /// The square of the distance to the axis.
    double distance2(const JWRawPoint& p) const;
    /// How deep a point lies below the outline; negative outside.
    double depth(const JWRawPoint& p) const;

  private:
    static constexpr int kMostCorners = 4 + 2 * kMostCapCorners;

    int after(int k) const { return k + 1 < m_count ? k + 1 : 0; }
    bool isHidden(int edge) const { return m_from[edge] >= m_to[edge]; }
    JWRawPoint along(const JWRawPoint* points, int edge, double share) const;
    /// The way to a point from the axis point closest to it.
    JWRawPoint fromAxis(const JWRawPoint& p) const;
    JWRawPoint inward(const JWRawPoint& p, double share) const;
    double shareWithin(const JWRawPoint& from, const JWRawPoint& to, double margin) const;
    bool startsStretch(int edge) const;
    int edgesOfStretch(int first) const;
    void addSliver(int first, double depth, RingSet& slivers) const;

    JWRawPoint m_origin;
    JWRawPoint m_start;      ///< of the axis
    JWRawPoint m_direction;  ///< to the end of the axis
    double m_length2;
    double m_perLength2;  ///< its inverse; 0 for a circle and the like
    int m_count;
    int m_visible;  ///< edges that are not covered wholly
    bool m_whole;
    JWRawPoint m_exact[kMostCorners];    ///< corners as they are
    JWRawPoint m_corners[kMostCorners];  ///< relative
    JWRawPoint m_normals[kMostCorners];  ///< of the edge from each corner, inward, of length 1
    double m_from[kMostCorners];  ///< what of the edge from each corner is left: shares of it
    double m_to[kMostCorners];
};

}  // namespace jws::detail

#endif  // JW_BUFFER_CUT_SHAPE_H
