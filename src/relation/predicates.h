// SPDX-License-Identifier: MIT
//
// The named predicates on geometries, each from as little of the relation as settles it.
#ifndef JW_RELATION_PREDICATES_H
#define JW_RELATION_PREDICATES_H

#include <optional>

#include "jw_relationmatrix.h"
#include "relation/relate.h"

namespace jws::detail {

enum class Predicate { kTouches, kCrosses, kContains, kCovers };

/// Two geometries read on one scale, neither empty; not indexed.
struct OperandPair {
    RelateOperand a;
    RelateOperand b;
};

/// Nothing when a geometry is empty or cannot be compared; `status` says why.
std::optional<OperandPair> readPair(const JWGeometry& a, const JWGeometry& b,
                                    RelateOperand::Status& status);

bool intersects(const JWGeometry& a, const JWGeometry& b);
/// Like `intersects`, for each part of one with each part of the other: parts of a multi-polygon
/// that overlap do not cancel.
bool partsIntersect(const JWGeometry& a, const JWGeometry& b);
bool holds(Predicate predicate, const JWGeometry& a, const JWGeometry& b);
/// Tells by the rectangles of two operands, indexed or not, that a predicate does not hold.
bool isRuledOut(Predicate predicate, const RelateOperand& a, const RelateOperand& b);
/// What rectangles and places tell of two indexed operands; nothing when that is not enough.
std::optional<bool> holdsByPlaces(Predicate predicate, const RelateOperand& a,
                                  const RelateOperand& b);
bool holdsByMatrix(Predicate predicate, const PreparedOperand& a, const PreparedOperand& b);

/// The matrix of two geometries, either of which may be empty. False with the last error set when
/// one cannot be compared.
bool relate(const JWGeometry& a, const JWGeometry& b, JWRelationMatrix& matrix);
JWRelationMatrix publicMatrix(const RelationMatrix& matrix);
/// The matrix of an operand, which may be empty, with an empty geometry.
RelationMatrix alone(const PreparedOperand& operand);
/// Sets the last error to why a geometry cannot be compared.
void reportUnusable(const char* function, RelateOperand::Status status);

}  // namespace jws::detail

#endif  // JW_RELATION_PREDICATES_H
