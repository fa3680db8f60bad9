// SPDX-License-Identifier: MIT
//
// Generated points and lines of any size, the same for the same arguments everywhere.
#ifndef JWCG_BENCH_POINT_SETS_H
#define JWCG_BENCH_POINT_SETS_H

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "jw_geometry.h"

namespace bench {

/// A generator whose numbers do not depend on the standard library (splitmix64).
class Numbers {
  public:
    explicit Numbers(std::uint64_t seed) : m_state(seed) {}
    double uniform(double low, double high) {
        m_state += 0x9e3779b97f4a7c15;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
        z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
        return low + (high - low) * static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
    }

  private:
    std::uint64_t m_state;
};

/// "square", "disc", "ring" (within 1e-3 of a circle), "circle" (in order) or "shuffled" (on a
/// circle, in any order); else a line: "walk" (steps of length 1), "spiral" or "zigzag" (along x,
/// one up, one down).
inline std::vector<jws::JWRawPoint> pointSet(const std::string& name, int n) {
    Numbers numbers(1);
    std::vector<jws::JWRawPoint> points;
    points.reserve(static_cast<std::size_t>(n));
    const auto polar = [&](double angle, double r) {
        points.emplace_back(r * std::cos(angle), r * std::sin(angle));
    };
    double x = 0, y = 0;
    for (int i = 0; i < n; ++i) {
        const double angle = numbers.uniform(0, 2 * M_PI);
        if (name == "square") points.emplace_back(numbers.uniform(0, 1), numbers.uniform(0, 1));
        if (name == "disc") polar(angle, std::sqrt(numbers.uniform(0, 1)));
        if (name == "ring") polar(angle, 1 + numbers.uniform(-1e-3, 1e-3));
        if (name == "circle") polar(2 * M_PI * i / n, 1);
        if (name == "shuffled") polar(angle, 1);
        if (name == "spiral") polar(0.05 * std::sqrt(1.0 * i) * 20, 0.05 * std::sqrt(1.0 * i));
        if (name == "zigzag") points.emplace_back(i, i % 2);
        if (name == "walk") {
            points.emplace_back(x, y);
            x += std::cos(angle);
            y += std::sin(angle);
        }
    }
    return points;
}

}  // namespace bench

#endif  // JWCG_BENCH_POINT_SETS_H
