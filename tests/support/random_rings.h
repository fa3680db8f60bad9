// SPDX-License-Identifier: MIT
//
// Random rings for property tests, the campaign and the benchmarks. All come from one generator
// whose numbers are the same on every system, so that a printed seed repeats them.
#ifndef JW_TESTS_SUPPORT_RANDOM_RINGS_H
#define JW_TESTS_SUPPORT_RANDOM_RINGS_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "support/rings.h"

namespace jwtest {

/// Numbers come from SplitMix64 (Steele, Lea, Flood 2014): cheap to seed, once for every pair.
class RandomRings {
  public:
    explicit RandomRings(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t bits() {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15U);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }
    double uniform(double low, double high) {
        return low + (high - low) * (static_cast<double>(bits() >> 11) * 0x1p-53);
    }
    /// Both ends included.
    int integer(int low, int high) {
        return low + static_cast<int>(bits() % (static_cast<std::uint64_t>(high - low) + 1));
    }
    bool oneIn(int n) { return integer(1, n) == 1; }
    bool flip() { return oneIn(2); }
    /// 10^-high to 10^-low, whole powers.
    double smallPower(int low, int high) { return std::pow(10.0, -integer(low, high)); }
    template <class T>
    const T& pick(const std::vector<T>& list) {
        return list[static_cast<std::size_t>(integer(0, static_cast<int>(list.size()) - 1))];
    }
    /// A number of corners: as a rule from `low` to `high`, now and then many times that.
    int corners(int low, int high) {
        const int n = integer(low, high);
        return oneIn(400) ? 30 * n : oneIn(30) ? 5 * n : n;
    }

    /// A star-shaped, hence simple, ring of n corners, counter-clockwise, its corners from `low`
    /// to `high` away from the middle.
    Ring star(int n, jws::JWRawPoint center, double low, double high) {
        Ring ring;
        const double phase = uniform(0, kTurn);
        for (int i = 0; i < n; ++i) {
            const double angle = phase + kTurn * i / n;
            const double r = uniform(low, high);
            ring.emplace_back(center.x + r * std::cos(angle), center.y + r * std::sin(angle));
        }
        return ring;
    }
    Ring star(int n, jws::JWRawPoint center, double radius) {
        return star(n, center, 0.4 * radius, radius);
    }

    /// A smooth outline of n corners about a circle, like a coast: it waves in and out by up to
    /// about `wave` of the radius, however many corners it has.
    Ring outline(int n, jws::JWRawPoint center, double radius, double wave) {
        constexpr int kWaves = 6;
        double phase[kWaves], height[kWaves];
        for (int k = 0; k < kWaves; ++k) {
            phase[k] = uniform(0, kTurn);
            height[k] = wave * uniform(0, 1) / (k + 1);
        }
        Ring ring;
        for (int i = 0; i < n; ++i) {
            const double angle = kTurn * i / n;
            double r = 1;
            for (int k = 0; k < kWaves; ++k)
                r += height[k] * std::sin((3 * k + 2) * angle + phase[k]);
            ring.emplace_back(center.x + radius * r * std::cos(angle),
                              center.y + radius * r * std::sin(angle));
        }
        return ring;
    }

    /// Corners drawn from an integer lattice: crosses itself, repeats points and edges.
    Ring tangle(int n, int size) {
        Ring ring;
        for (int i = 0; i < n; ++i) {
            const int x = integer(0, size);
            ring.emplace_back(x, integer(0, size));
        }
        return ring;
    }

    /// Corners drawn from a square: crosses itself.
    Ring scatter(int n, double low, double high) {
        Ring ring;
        for (int i = 0; i < n; ++i) ring.push_back(point(low, high));
        return ring;
    }

    /// A rectangle of the lattice.
    Ring box(int size) {
        const int x = integer(0, size - 1);
        const int y = integer(0, size - 1);
        const int right = integer(x + 1, size);
        return rectangle(x, y, right, integer(y + 1, size));
    }

    jws::JWRawPoint point(double low, double high) {
        const double x = uniform(low, high);
        return {x, uniform(low, high)};
    }

    /// Every corner moved by up to `distance` along each axis.
    Ring jittered(Ring ring, double distance) {
        for (jws::JWRawPoint& p : ring) {
            const double dx = uniform(-distance, distance);
            p.move(dx, uniform(-distance, distance));
        }
        return ring;
    }

    /// A value at most `places` doubles away.
    double nudged(double value, int places) {
        const int steps = integer(-places, places);
        for (int i = 0; i < std::abs(steps); ++i) {
            value = std::nextafter(value, steps > 0 ? HUGE_VAL : -HUGE_VAL);
        }
        return value;
    }
    Ring nudged(Ring ring, int places) {
        for (jws::JWRawPoint& p : ring) p = {nudged(p.x, places), nudged(p.y, places)};
        return ring;
    }

    /// The same set in another guise: rings in another order, each started elsewhere, some turned
    /// round.
    Rings shuffled(Rings rings) {
        for (Ring& ring : rings) {
            if (ring.empty()) continue;
            std::rotate(ring.begin(), ring.begin() + integer(0, static_cast<int>(ring.size()) - 1),
                        ring.end());
            if (flip()) std::reverse(ring.begin(), ring.end());
        }
        for (std::size_t i = rings.size(); i > 1; --i) {
            std::swap(rings[i - 1],
                      rings[static_cast<std::size_t>(integer(0, static_cast<int>(i) - 1))]);
        }
        return rings;
    }

  private:
    static constexpr double kTurn = 6.283185307179586;
    std::uint64_t m_state;
};

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_RANDOM_RINGS_H
