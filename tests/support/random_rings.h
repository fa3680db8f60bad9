// SPDX-License-Identifier: MIT
//
// Random rings for property tests. All come from one generator, so that a printed seed repeats
// them.
#ifndef JW_TESTS_SUPPORT_RANDOM_RINGS_H
#define JW_TESTS_SUPPORT_RANDOM_RINGS_H

#include <cmath>
#include <random>
#include <vector>

#include "jw_envelop.h"

namespace jwtest {

class RandomRings {
  public:
    explicit RandomRings(unsigned long long seed) : generator_(seed) {}

    double uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(generator_);
    }
    int integer(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(generator_);
    }

    /// A star-shaped, hence simple, ring of n corners, counter-clockwise.
    std::vector<jws::JWRawPoint> star(int n, jws::JWRawPoint center, double radius) {
        std::vector<jws::JWRawPoint> ring;
        for (int i = 0; i < n; ++i) {
            const double angle = 2 * M_PI * i / n;
            const double r = radius * uniform(0.4, 1);
            ring.emplace_back(center.x + r * std::cos(angle), center.y + r * std::sin(angle));
        }
        return ring;
    }

    /// Corners drawn from a small integer lattice: crosses itself, repeats points and edges.
    std::vector<jws::JWRawPoint> tangle(int n, int size) {
        std::vector<jws::JWRawPoint> ring;
        for (int i = 0; i < n; ++i) ring.emplace_back(integer(0, size), integer(0, size));
        return ring;
    }

    /// A rectangle of the lattice.
    std::vector<jws::JWRawPoint> box(int size) {
        const double x = integer(0, size - 1);
        const double y = integer(0, size - 1);
        const double right = integer(static_cast<int>(x) + 1, size);
        const double top = integer(static_cast<int>(y) + 1, size);
        return {{x, y}, {right, y}, {right, top}, {x, top}};
    }

  private:
    std::mt19937_64 generator_;
};

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_RANDOM_RINGS_H
