// SPDX-License-Identifier: MIT
//
// The relation of random pairs against GEOS, and what must hold of it whatever the pair.
#include <gtest/gtest.h>

#include <cstdlib>

#include "jw_relationmatrix.h"
#include "relation/exact_relation.h"
#include "relation/random_geometries.h"

namespace {

using namespace jws;
using namespace jwtest;

std::string relation(const JWGeometry& a, const JWGeometry& b) {
    JWRelationMatrix matrix;
    return relateGeometries(&a, &b, &matrix) ? matrix.text() : "refused";
}

/// As many as JW_RELATE_PAIRS says, for a longer run by hand.
int pairs() {
    const char* wish = std::getenv("JW_RELATE_PAIRS");
    return wish ? std::atoi(wish) : 4000;
}

using Next = std::unique_ptr<JWGeometry> (RandomGeometries::*)();
using Judge = std::string (*)(const JWGeometry&, const JWGeometry&);

void compare(Next next, int count, Judge judge) {
    constexpr unsigned seed = 20240731;
    int misses = 0;
    for (int grid = 2; grid <= 7; ++grid) {
        RandomGeometries random(seed + static_cast<unsigned>(grid), grid);
        for (int i = 0; i < count / 6 && misses < 10; ++i) {
            const auto a = (random.*next)(), b = (random.*next)();
            const std::string ours = relation(*a, *b), theirs = judge(*a, *b);
            if (ours == theirs) continue;
            ++misses;
            ADD_FAILURE() << "grid " << grid << ", pair " << i << ": " << ours << ", not " << theirs
                          << "\n"
                          << toWkt(*a) << "\n"
                          << toWkt(*b);
        }
    }
}

TEST(RelateDifferential, ValidPairsAsInGeos) {
    compare(&RandomGeometries::next, pairs(), &geosRelation);
}

// GEOS rounds where a line crosses itself, and refuses rings that do.
TEST(RelateDifferential, WildPairsAsByFractions) {
    compare(&RandomGeometries::nextWild, pairs(),
            [](const JWGeometry& a, const JWGeometry& b) { return ExactRelation(a, b).matrix(); });
}

}  // namespace
