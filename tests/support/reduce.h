// SPDX-License-Identifier: MIT
//
// Makes a pair of operands that shows a fault small enough to look at.
#ifndef JW_TESTS_SUPPORT_REDUCE_H
#define JW_TESTS_SUPPORT_REDUCE_H

#include <cstdio>
#include <cstdlib>

#include "support/rings.h"

namespace jwtest {

/// The double nearest to `value` among those of so many decimal digits.
inline double rounded(double value, int digits) {
    char text[40];
    std::snprintf(text, sizeof text, "%.*e", digits - 1, value);
    return std::strtod(text, nullptr);
}

/// Takes out rings and corners and shortens coordinates, one at a time, as long as `fails(pair)`
/// says that the fault is still there; at most `tries` questions.
template <class Fails>
RingPair reduced(RingPair pair, Fails fails, int tries = 20000) {
    const auto attempt = [&](const RingPair& smaller) {
        if (tries <= 0 || !fails(smaller)) return false;
        pair = smaller;
        return true;
    };
    bool changed = true;
    while (changed && tries > 0) {
        changed = false;
        for (Rings RingPair::*operand : {&RingPair::a, &RingPair::b}) {
            for (std::size_t r = (pair.*operand).size(); r-- > 0; --tries) {
                RingPair smaller = pair;
                (smaller.*operand).erase((smaller.*operand).begin() + static_cast<long>(r));
                changed |= attempt(smaller);
            }
            for (std::size_t r = 0; r < (pair.*operand).size(); ++r) {
                // Runs of corners first, then single ones.
                for (std::size_t run = (pair.*operand)[r].size() / 2; run > 0; run /= 2) {
                    for (std::size_t i = 0; i + run <= (pair.*operand)[r].size(); --tries) {
                        RingPair smaller = pair;
                        Ring& ring = (smaller.*operand)[r];
                        ring.erase(ring.begin() + static_cast<long>(i),
                                   ring.begin() + static_cast<long>(i + run));
                        if (attempt(smaller)) {
                            changed = true;
                        } else {
                            i += run;
                        }
                    }
                }
            }
        }
    }
    for (Rings RingPair::*operand : {&RingPair::a, &RingPair::b}) {
        for (std::size_t r = 0; r < (pair.*operand).size(); ++r) {
            for (std::size_t i = 0; i < (pair.*operand)[r].size(); ++i) {
                for (double jws::JWRawPoint::*axis : {&jws::JWRawPoint::x, &jws::JWRawPoint::y}) {
                    for (int digits = 1; digits < 17; ++digits, --tries) {
                        RingPair smaller = pair;
                        double& value = (smaller.*operand)[r][i].*axis;
                        const double shorter = rounded(value, digits);
                        if (shorter == value) break;
                        value = shorter;
                        if (attempt(smaller)) break;
                    }
                }
            }
        }
    }
    return pair;
}

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_REDUCE_H
