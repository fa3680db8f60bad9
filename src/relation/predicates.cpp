// SPDX-License-Identifier: MIT
//
// Rectangles come first, then single places, and only then the walks, which stop at the first entry
// of the matrix that decides.
#include "relation/predicates.h"

#include <algorithm>
#include <string>

#include "foundation/position_index.h"
#include "jw_report.h"

namespace jws::detail {
namespace {

constexpr unsigned bit(Location a, Location b) { return RelationMatrix::bit(a, b); }

/// Entries that make a predicate false as soon as they are not empty.
unsigned stopOf(Predicate predicate) {
    switch (predicate) {
        case Predicate::kTouches:
            return bit(kInterior, kInterior);
        case Predicate::kContains:
        case Predicate::kCovers:
            return bit(kExterior, kInterior) | bit(kExterior, kBoundary);
        case Predicate::kCrosses:
            break;
    }
    return 0;
}

bool holdsFor(Predicate predicate, const JWRelationMatrix& matrix) {
    switch (predicate) {
        case Predicate::kTouches:
            return matrix.isTouching();
        case Predicate::kCrosses:
            return matrix.isCrossing();
        case Predicate::kContains:
            return matrix.isContaining();
        case Predicate::kCovers:
            return matrix.isCovering();
    }
    return false;
}

/// The parts of a multi-geometry; any other is its own only part.
std::vector<RelateOperand> partsOf(const JWGeometry& geometry, int shift) {
    std::vector<RelateOperand> parts;
    const auto add = [&](const JWGeometry& part) {
        RelateOperand operand;
        if (operand.assign(part, shift) == RelateOperand::kUsable)
            parts.push_back(std::move(operand));
    };
    const enumJWGeometryType type = geometry.getGeometryType();
    if (type != JWGeometryMultiLineString && type != JWGeometryMultiPolygon) {
        add(geometry);
        return parts;
    }
    const auto& members = static_cast<const JWGeometryCollection&>(geometry);
    for (int i = 0; i < members.getGeometryCount(); ++i) add(*members.getGeometryPtrAt(i));
    return parts;
}

}  // namespace

std::optional<OperandPair> readPair(const JWGeometry& a, const JWGeometry& b,
                                    RelateOperand::Status& status) {
    OperandPair pair;
    status = pair.a.assign(a);
    if (status != RelateOperand::kUsable) return {};
    status = pair.b.assign(b);
    if (status != RelateOperand::kUsable) return {};
    RelateOperand::Range range = pair.a.range();
    range.add(pair.b.range());
    if (!range.isPlain()) {
        pair.a.assign(a, range.shift());
        pair.b.assign(b, range.shift());
    }
    return pair;
}

bool intersects(const JWGeometry& a, const JWGeometry& b) {
    RelateOperand::Status status;
    std::optional<OperandPair> pair = readPair(a, b, status);
    if (!pair || pair->a.box().isDisjoin(pair->b.box())) return false;
    pair->a.index();
    pair->b.index();
    return Relator::intersect(pair->a, pair->b);
}

bool partsIntersect(const JWGeometry& a, const JWGeometry& b) {
    RelateOperand::Status status;
    const std::optional<OperandPair> pair = readPair(a, b, status);
    if (!pair || pair->a.box().isDisjoin(pair->b.box())) return false;
    RelateOperand::Range range = pair->a.range();
    range.add(pair->b.range());
    const int shift = range.isPlain() ? 0 : range.shift();
    std::vector<RelateOperand> partsA = partsOf(a, shift), partsB = partsOf(b, shift);
    PositionIndex index;
    index.start();
    for (std::size_t i = 0; i < partsB.size(); ++i) {
        partsB[i].index();
        index.add(static_cast<std::int64_t>(i), partsB[i].box());
    }
    Hits near;
    for (RelateOperand& part : partsA) {
        index.search(part.box(), near);
        if (near.empty()) continue;
        part.index();
        for (const void* other : near)
            if (Relator::intersect(part, partsB[static_cast<std::size_t>(positionOf(other))]))
                return true;
    }
    return false;
}

bool isRuledOut(Predicate predicate, const RelateOperand& a, const RelateOperand& b) {
    if (predicate == Predicate::kTouches || predicate == Predicate::kCrosses)
        return a.box().isDisjoin(b.box());
    return !a.box().contains(b.box());
}

/// Containment where no edges meet: every chain of `b` then lies as its first point does.
std::optional<bool> containsByPlaces(bool touchingCounts, const RelateOperand& a,
                                     const RelateOperand& b) {
    bool anyInside = false;
    const auto isOutside = [&](const JWRawPoint& p) {
        const Location location = a.locate(p);
        anyInside |= location == kInterior;
        return location == kExterior;
    };
    for (const EdgeChain& chain : b.forest().chains())
        if (isOutside(b.forest().points()[chain.first])) return false;
    if (std::any_of(b.points().begin(), b.points().end(), isOutside)) return false;
    if (Relator::edgesIntersect(a, b) || Relator::anyStartInside(a, b)) return {};
    return anyInside || touchingCounts;
}

std::optional<bool> holdsByPlaces(Predicate predicate, const RelateOperand& a,
                                  const RelateOperand& b) {
    if (isRuledOut(predicate, a, b)) return false;
    if (predicate == Predicate::kContains || predicate == Predicate::kCovers)
        return containsByPlaces(predicate == Predicate::kCovers, a, b);
    const bool hasPoints = !a.points().empty() || !b.points().empty();
    if (!hasPoints && !Relator::edgesIntersect(a, b)) return false;
    return {};
}

bool holdsByMatrix(Predicate predicate, const PreparedOperand& a, const PreparedOperand& b) {
    const unsigned stop = stopOf(predicate);
    const RelationMatrix matrix = Relator().relate(a, b, stop);
    return (matrix.set() & stop) == 0 && holdsFor(predicate, publicMatrix(matrix));
}

bool holds(Predicate predicate, const JWGeometry& a, const JWGeometry& b) {
    RelateOperand::Status status;
    std::optional<OperandPair> pair = readPair(a, b, status);
    if (!pair || isRuledOut(predicate, pair->a, pair->b)) return false;
    pair->a.index();
    pair->b.index();
    if (const std::optional<bool> known = holdsByPlaces(predicate, pair->a, pair->b)) return *known;
    return holdsByMatrix(predicate, PreparedOperand(std::move(pair->a)),
                         PreparedOperand(std::move(pair->b)));
}

RelationMatrix alone(const PreparedOperand& operand) {
    RelationMatrix matrix;
    matrix.raise(kExterior, kExterior, 2);
    const RelateOperand& own = operand.operand();
    if (!own.points().empty()) matrix.raise(kInterior, kExterior, 0);
    if (!own.forest().isEmpty()) operand.addSummary(own.forest().root(), matrix);
    return matrix;
}

bool relate(const JWGeometry& a, const JWGeometry& b, JWRelationMatrix& matrix) {
    matrix = JWRelationMatrix();
    RelateOperand::Status status;
    if (std::optional<OperandPair> pair = readPair(a, b, status)) {
        const PreparedOperand first(std::move(pair->a)), second(std::move(pair->b));
        matrix = publicMatrix(Relator().relate(first, second));
        return true;
    }
    RelateOperand first, second;
    for (const auto& [operand, geometry] : {std::pair(&first, &a), std::pair(&second, &b)}) {
        status = operand->assign(*geometry);
        if (status == RelateOperand::kUsable && !operand->range().isPlain())
            operand->assign(*geometry, operand->range().shift());
        if (status == RelateOperand::kUsable || status == RelateOperand::kEmpty) continue;
        reportUnusable("relateGeometries", status);
        return false;
    }
    RelationMatrix result = alone(PreparedOperand(std::move(first)));
    result.raiseAll(alone(PreparedOperand(std::move(second))).transposed());
    matrix = publicMatrix(result);
    return true;
}

JWRelationMatrix publicMatrix(const RelationMatrix& matrix) {
    JWRelationMatrix result;
    for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b)
            result.set(static_cast<JWRelationMatrix::Part>(a),
                       static_cast<JWRelationMatrix::Part>(b), matrix.at(a, b));
    return result;
}

void reportUnusable(const char* function, RelateOperand::Status status) {
    const char* reason = status == RelateOperand::kNotFinite
                             ? ": a coordinate is not a finite number"
                             : ": curves cannot be compared";
    JWReport::setError(JWErrorInvalidArgument, std::string(function) + reason);
}

}  // namespace jws::detail
