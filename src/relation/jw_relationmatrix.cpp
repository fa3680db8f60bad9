// SPDX-License-Identifier: MIT
#include "jw_relationmatrix.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "foundation/api_guard.h"
#include "relation/predicates.h"

namespace jws {

using namespace detail;

JWRelationMatrix::JWRelationMatrix() : m_entries{-1, -1, -1, -1, -1, -1, -1, -1, 2} {}

void JWRelationMatrix::set(Part first, Part second, int dimension) {
    m_entries[3 * first + second] = static_cast<signed char>(dimension);
}

std::string JWRelationMatrix::text() const {
    std::string text(9, 'F');
    for (std::size_t i = 0; i < 9; ++i)
        if (m_entries[i] >= 0) text[i] = static_cast<char>('0' + m_entries[i]);
    return text;
}

bool JWRelationMatrix::matches(const char* pattern) const {
    if (pattern == nullptr || std::strlen(pattern) != 9) return false;
    for (int i = 0; i < 9; ++i) {
        const bool some = m_entries[i] >= 0;
        switch (pattern[i]) {
            case '*':
                break;
            case 'T':
                if (!some) return false;
                break;
            case 'F':
                if (some) return false;
                break;
            case '0':
            case '1':
            case '2':
                if (m_entries[i] != pattern[i] - '0') return false;
                break;
            default:
                return false;
        }
    }
    return true;
}

JWRelationMatrix JWRelationMatrix::transposed() const {
    JWRelationMatrix result;
    for (int i = 0; i < 9; ++i) result.m_entries[3 * (i % 3) + i / 3] = m_entries[i];
    return result;
}

int JWRelationMatrix::dimensionOfFirst() const {
    return *std::max_element(m_entries, m_entries + 6);
}

int JWRelationMatrix::dimensionOfSecond() const { return transposed().dimensionOfFirst(); }

bool JWRelationMatrix::isIntersecting() const {
    return m_entries[0] >= 0 || m_entries[1] >= 0 || m_entries[3] >= 0 || m_entries[4] >= 0;
}

bool JWRelationMatrix::isTouching() const { return isIntersecting() && at(Interior, Interior) < 0; }

bool JWRelationMatrix::isCrossing() const {
    const int first = dimensionOfFirst(), second = dimensionOfSecond();
    if (first < second) return matches("T*T******");
    if (first > second) return matches("T*****T**");
    return first == 1 && matches("0********");
}

bool JWRelationMatrix::isOverlapping() const {
    const int dimension = dimensionOfFirst();
    if (dimension != dimensionOfSecond()) return false;
    return matches(dimension == 1 ? "1*T***T**" : "T*T***T**");
}

bool JWRelationMatrix::isContaining() const { return matches("T*****FF*"); }

bool JWRelationMatrix::isCovering() const { return isIntersecting() && matches("******FF*"); }

bool JWRelationMatrix::isEqual() const { return isIntersecting() && matches("**F**FFF*"); }

const char* JWRelationMatrix::predicateName(int predicate) {
    static constexpr std::array<const char*, kPredicates> names = {
        "equals",   "disjoint", "touches", "crosses",  "overlaps",
        "contains", "covers",   "within",  "coveredby"};
    return predicate >= 0 && predicate < kPredicates ? names[static_cast<std::size_t>(predicate)]
                                                     : nullptr;
}

bool JWRelationMatrix::holds(int predicate) const {
    using Test = bool (JWRelationMatrix::*)() const;
    static constexpr std::array<Test, kPredicates> tests = {
        &JWRelationMatrix::isEqual,       &JWRelationMatrix::isDisjoint,
        &JWRelationMatrix::isTouching,    &JWRelationMatrix::isCrossing,
        &JWRelationMatrix::isOverlapping, &JWRelationMatrix::isContaining,
        &JWRelationMatrix::isCovering,    &JWRelationMatrix::isWithin,
        &JWRelationMatrix::isCoveredBy};
    return predicate >= 0 && predicate < kPredicates &&
           (this->*tests[static_cast<std::size_t>(predicate)])();
}

bool relateGeometries(const JWGeometry* first, const JWGeometry* second, JWRelationMatrix* matrix) {
    if (matrix != nullptr) *matrix = JWRelationMatrix();
    if (matrix == nullptr || first == nullptr || second == nullptr) {
        JWReport::setError(JWErrorInvalidArgument,
                           "relateGeometries: a geometry or the matrix is null");
        return false;
    }
    return guarded("relateGeometries", false, [&] { return relate(*first, *second, *matrix); });
}

}  // namespace jws
