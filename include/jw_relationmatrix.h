// SPDX-License-Identifier: MIT
//
// JWRelationMatrix: how two geometries lie to one another, and JWPreparedRelation: one geometry
// made ready to be compared with many.
#ifndef JW_RELATIONMATRIX_H
#define JW_RELATIONMATRIX_H

#include <memory>
#include <string>

#include "jw_export.h"
#include "jw_geometry.h"

namespace jws {

/// The dimensions in which interior, boundary and exterior of a first geometry (rows) meet those of
/// a second one (columns): the dimensionally extended nine-intersection model.
///
/// The predicates are those of the OGC. What counts as what: the interior of an area is what its
/// rings enclose by the even-odd rule, all rings of a polygon, multi-polygon or bag together, so
/// members that overlap cancel as they do in an overlay; its boundary is the rest of its rings, a
/// spike or fold included, while an edge between inside and inside, such as members share, is
/// interior. The boundary of lines are the ends at which an odd number of them end. Points are
/// interior, and a line or ring all of whose points are equal is a point. In a bag areas come
/// before lines and lines before points. An open ring is closed by a straight edge; a segment is a
/// line, a bare ring a polygon, a dynamic point its position. Values are copied freely.
class JW_API JWRelationMatrix {
  public:
    /// Part of a geometry: row or column of the matrix.
    enum Part { Interior = 0, Boundary = 1, Exterior = 2 };
    /// Number of predicates, see `predicateName`.
    static constexpr int kPredicates = 9;

    /// Makes the matrix of two empty geometries: "FFFFFFFF2".
    JWRelationMatrix();

    /// Dimension of what two parts have in common, 0 to 2; −1 when that is nothing.
    int at(Part first, Part second) const { return m_entries[3 * first + second]; }
    /// `dimension` from −1 to 2.
    void set(Part first, Part second, int dimension);
    /// The nine entries by rows, as in "212FF1FF2": a dimension, or F for nothing.
    std::string text() const;
    /// Tells whether the matrix fits a pattern of nine characters by rows: T for any dimension, F
    /// for nothing, 0 to 2 for that dimension, * for whatever. False for any other text or null.
    bool matches(const char* pattern) const;
    /// The relation of the second to the first.
    JWRelationMatrix transposed() const;

    /// Dimension of the first or second geometry, −1 when it is empty.
    int dimensionOfFirst() const;
    int dimensionOfSecond() const;

    bool isDisjoint() const { return !isIntersecting(); }
    /// They have a point in common.
    bool isIntersecting() const;
    /// They have a point in common, but not their interiors.
    bool isTouching() const;
    /// The interiors meet, in less than the higher of the dimensions, and neither holds the other.
    /// For two lines: they cross in points. Never for two points or two areas.
    bool isCrossing() const;
    /// Of one dimension: the interiors share something of it, and each has something of its own.
    bool isOverlapping() const;
    /// No point of the first lies outside the second, and their interiors meet.
    bool isWithin() const { return transposed().isContaining(); }
    /// No point of the second lies outside the first, and their interiors meet.
    bool isContaining() const;
    /// No point of the second lies outside the first; it may lie in the boundary.
    bool isCovering() const;
    bool isCoveredBy() const { return transposed().isCovering(); }
    /// They hold the same points; false for two empty ones.
    bool isEqual() const;

    /// Names of the predicates in a fixed order: "equals", "disjoint", "touches", "crosses",
    /// "overlaps", "contains", "covers", "within", "coveredby"; null beyond them.
    static const char* predicateName(int predicate);
    /// Tells whether the predicate of that number in the same order holds.
    bool holds(int predicate) const;

    bool operator==(const JWRelationMatrix& o) const { return text() == o.text(); }
    bool operator!=(const JWRelationMatrix& o) const { return !(*this == o); }

  private:
    signed char m_entries[9];
};

/// Computes the relation of two geometries of any kinds, exactly: nothing is rounded, so touching
/// is touching at any magnitude. (Where magnitudes in one pair differ by more than 140 decimal
/// orders, the smallest count as less precise.)
/// \return false, with the last error set and the matrix that of two empty geometries, for null, a
///     coordinate that is NaN or infinite, and curves (type 12). Empty geometries have a matrix.
/// Thread-safe. Cost: about O((n + m + k) log(n + m)) for k pairs of edges whose rectangles meet.
JW_API bool relateGeometries(const JWGeometry* first, const JWGeometry* second,
                             JWRelationMatrix* matrix);

/// One geometry made ready to be compared with many others. Every question may be asked on any
/// number of threads at once.
class JW_API JWPreparedRelation {
  public:
    /// Copies the coordinates, so the geometry may change or go. A geometry that `relateGeometries`
    /// refuses makes every answer false, with the last error set here. Cost: O(n log n) as a rule.
    explicit JWPreparedRelation(const JWGeometry* geometry);
    /// The same without the copy: the geometry is the caller's, stays as it is and outlives all
    /// questions. (It is read again where magnitudes call for a scale in common.)
    static JWPreparedRelation borrowing(const JWGeometry* geometry);
    ~JWPreparedRelation();
    JWPreparedRelation(JWPreparedRelation&&) noexcept;
    JWPreparedRelation& operator=(JWPreparedRelation&&) noexcept;

    /// Tells whether the geometry can be compared.
    bool isUsable() const;
    /// The relation of this geometry (first) to another one; as `relateGeometries`.
    bool relate(const JWGeometry* other, JWRelationMatrix* matrix) const;
    bool relate(const JWPreparedRelation& other, JWRelationMatrix* matrix) const;

    // Predicates, from as little of the matrix as settles them. False for null and for what cannot
    // be compared.
    bool intersects(const JWGeometry* other) const;
    bool contains(const JWGeometry* other) const;
    bool covers(const JWGeometry* other) const;
    bool touches(const JWGeometry* other) const;

    /// Which part of the geometry a point is; `Exterior` for a NaN. O(log n) as a rule, a few ten
    /// nanoseconds for areas of ordinary shape.
    JWRelationMatrix::Part partAt(const JWRawPoint& p) const;
    bool contains(const JWRawPoint& p) const { return partAt(p) == JWRelationMatrix::Interior; }
    bool intersects(const JWRawPoint& p) const { return partAt(p) != JWRelationMatrix::Exterior; }

  private:
    struct Impl;
    JWPreparedRelation();
    void prepare(const JWGeometry* geometry, bool borrows);
    bool holds(int predicate, const JWGeometry* other) const;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace jws

#endif  // JW_RELATIONMATRIX_H
