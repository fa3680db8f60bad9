// SPDX-License-Identifier: MIT
//
// One geometry against many. Coordinates of ordinary size are compared as they were prepared;
// should the other geometry be so large or so small that both need a common scale, they are read
// again for that one question.
#include <optional>

#include "foundation/api_guard.h"
#include "jw_relationmatrix.h"
#include "relation/point_place.h"
#include "relation/predicates.h"

namespace jws {

using namespace detail;

struct JWPreparedRelation::Impl {
    std::unique_ptr<const JWGeometry> copy;  ///< none of a borrowed geometry
    const JWGeometry* geometry = nullptr;    ///< to be read again for a scale in common
    RelateOperand::Status status = RelateOperand::kUnsupported;
    RelateOperand::Range range;
    bool isPlain = true;                     ///< read without a shift
    std::optional<PreparedOperand> operand;  ///< when it holds something
};

namespace {

/// An operand that each thread keeps, so that small geometries cost no allocation; very large ones
/// give their memory back.
RelateOperand& scratch() {
    thread_local RelateOperand operand;
    constexpr std::size_t kept = 1 << 14;  // points
    if (operand.pointCount() > kept) operand = RelateOperand();
    return operand;
}

/// Reads `other` to be met by an operand without a shift; null when that cannot be.
RelateOperand* readPlainly(const JWGeometry& other) {
    RelateOperand& read = scratch();
    const bool usable = read.assign(other) == RelateOperand::kUsable && read.range().isPlain();
    return usable ? &read : nullptr;
}

/// Empties the matrix; sets the last error where there is none or a geometry cannot be compared.
bool canRelate(JWRelationMatrix* matrix, bool areUsable) {
    if (matrix != nullptr) *matrix = JWRelationMatrix();
    if (matrix != nullptr && areUsable) return true;
    JWReport::setError(JWErrorInvalidArgument,
                       "relate: a geometry is null or cannot be compared, or the matrix is null");
    return false;
}

}  // namespace

JWPreparedRelation::JWPreparedRelation() = default;

JWPreparedRelation::JWPreparedRelation(const JWGeometry* geometry) { prepare(geometry, false); }

JWPreparedRelation JWPreparedRelation::borrowing(const JWGeometry* geometry) {
    JWPreparedRelation prepared;
    prepared.prepare(geometry, true);
    return prepared;
}

void JWPreparedRelation::prepare(const JWGeometry* geometry, bool borrows) {
    guarded("JWPreparedRelation", false, [&] {
        m_impl = std::make_unique<Impl>();
        if (geometry == nullptr) {
            JWReport::setError(JWErrorInvalidArgument, "JWPreparedRelation: the geometry is null");
            return false;
        }
        RelateOperand operand;
        m_impl->status = operand.assign(*geometry);
        m_impl->range = operand.range();
        m_impl->isPlain = m_impl->range.isPlain();
        if (!isUsable()) {
            reportUnusable("JWPreparedRelation", m_impl->status);
            return false;
        }
        if (!borrows) m_impl->copy.reset(geometry->clone());
        m_impl->geometry = borrows ? geometry : m_impl->copy.get();
        if (m_impl->status == RelateOperand::kEmpty) return true;
        if (!m_impl->isPlain) operand.assign(*geometry, m_impl->range.shift());
        m_impl->operand.emplace(std::move(operand));
        return true;
    });
}

JWPreparedRelation::~JWPreparedRelation() = default;
JWPreparedRelation::JWPreparedRelation(JWPreparedRelation&&) noexcept = default;
JWPreparedRelation& JWPreparedRelation::operator=(JWPreparedRelation&&) noexcept = default;

bool JWPreparedRelation::isUsable() const {
    return m_impl != nullptr &&
           (m_impl->status == RelateOperand::kUsable || m_impl->status == RelateOperand::kEmpty);
}

bool JWPreparedRelation::relate(const JWGeometry* other, JWRelationMatrix* matrix) const {
    if (!canRelate(matrix, other != nullptr && isUsable())) return false;
    return guarded("relate", false, [&] {
        RelateOperand* read = nullptr;
        if (m_impl->operand && m_impl->isPlain) read = readPlainly(*other);
        if (read == nullptr) return detail::relate(*m_impl->geometry, *other, *matrix);
        const PreparedOperand second(std::move(*read));
        *matrix = publicMatrix(Relator().relate(*m_impl->operand, second));
        return true;
    });
}

bool JWPreparedRelation::relate(const JWPreparedRelation& other, JWRelationMatrix* matrix) const {
    if (!canRelate(matrix, isUsable() && other.isUsable())) return false;
    return guarded("relate", false, [&] {
        const Impl &a = *m_impl, &b = *other.m_impl;
        if (!(a.operand && b.operand && a.isPlain && b.isPlain))
            return detail::relate(*a.geometry, *b.geometry, *matrix);
        *matrix = publicMatrix(Relator().relate(*a.operand, *b.operand));
        return true;
    });
}

bool JWPreparedRelation::intersects(const JWGeometry* other) const {
    if (other == nullptr || !isUsable() || !m_impl->operand) return false;
    return guarded("intersects", false, [&] {
        RelateOperand* read = m_impl->isPlain ? readPlainly(*other) : nullptr;
        if (read == nullptr) return detail::intersects(*m_impl->geometry, *other);
        const RelateOperand& own = m_impl->operand->operand();
        if (own.box().isDisjoin(read->box())) return false;
        if (Relator::anyStartInside(*read, own)) return true;  // before the other one gets an index
        read->index();
        return Relator::edgesIntersect(own, *read) || Relator::anyStartInside(own, *read);
    });
}

bool JWPreparedRelation::holds(int predicate, const JWGeometry* other) const {
    if (other == nullptr || !isUsable() || !m_impl->operand) return false;
    return guarded("holds", false, [&] {
        const auto asked = static_cast<Predicate>(predicate);
        RelateOperand* read = m_impl->isPlain ? readPlainly(*other) : nullptr;
        if (read == nullptr) return detail::holds(asked, *m_impl->geometry, *other);
        const RelateOperand& own = m_impl->operand->operand();
        if (isRuledOut(asked, own, *read)) return false;
        read->index();
        if (const std::optional<bool> known = holdsByPlaces(asked, own, *read)) return *known;
        return holdsByMatrix(asked, *m_impl->operand, PreparedOperand(std::move(*read)));
    });
}

bool JWPreparedRelation::contains(const JWGeometry* other) const {
    return holds(static_cast<int>(Predicate::kContains), other);
}

bool JWPreparedRelation::covers(const JWGeometry* other) const {
    return holds(static_cast<int>(Predicate::kCovers), other);
}

bool JWPreparedRelation::touches(const JWGeometry* other) const {
    return holds(static_cast<int>(Predicate::kTouches), other);
}

JWRelationMatrix::Part JWPreparedRelation::partAt(const JWRawPoint& p) const {
    if (!isUsable() || !m_impl->operand) return JWRelationMatrix::Exterior;
    if (m_impl->isPlain && isPlain(p))
        return static_cast<JWRelationMatrix::Part>(m_impl->operand->operand().locate(p));
    return guarded("partAt", JWRelationMatrix::Exterior, [&] {
        const ScaledPoint scaled = scaledTo(m_impl->range, p);
        if (!scaled.isWithinReach) return JWRelationMatrix::Exterior;
        return static_cast<JWRelationMatrix::Part>(
            scaled.isFine ? placeByOperand(p, *m_impl->geometry).location
                          : m_impl->operand->operand().locate(scaled.point));
    });
}

}  // namespace jws
