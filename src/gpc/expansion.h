// SPDX-License-Identifier: MIT
//
// Arithmetic of pairs of doubles that stand for one number (Dekker 1971), and sums of products of
// such pairs without rounding. Products must neither overflow nor underflow.
#ifndef JW_GPC_EXPANSION_H
#define JW_GPC_EXPANSION_H

#include "foundation/expansion.h"

namespace jws::gpc {

using detail::Two;
using detail::twoDiff;
using detail::twoProduct;
using detail::twoSum;

inline Two quickTwoSum(double a, double b) {
    const double s = a + b;
    return {s, b - (s - a)};
}

inline Two add(Two a, Two b) {
    Two s = twoSum(a.h, b.h);
    const Two t = twoSum(a.l, b.l);
    s = quickTwoSum(s.h, s.l + t.h);
    return quickTwoSum(s.h, s.l + t.l);
}

inline Two negate(Two a) { return {-a.h, -a.l}; }

inline Two multiply(Two a, Two b) {
    Two p = twoProduct(a.h, b.h);
    p.l += a.h * b.l + a.l * b.h;
    return quickTwoSum(p.h, p.l);
}

inline Two divide(Two a, Two b) {
    const double q1 = a.h / b.h;
    Two r = add(a, negate(multiply({q1, 0}, b)));
    const double q2 = r.h / b.h;
    r = add(r, negate(multiply({q2, 0}, b)));
    const double q3 = r.h / b.h;
    return add(quickTwoSum(q1, q2), {q3, 0});
}

inline int sign(double v) { return (v > 0) - (v < 0); }

/// A sum of up to 192 terms without error.
class ExactSum {
  public:
    void add(double term) { m_sum.add(term); }
    /// Adds the product of two numbers.
    void addProduct(Two a, Two b) {
        m_sum.addProduct(a.l, b.l);
        m_sum.addProduct(a.l, b.h);
        m_sum.addProduct(a.h, b.l);
        m_sum.addProduct(a.h, b.h);
    }
    /// Adds the product of three numbers.
    void addProduct(Two a, Two b, double c) {
        if (c == 0) return;
        const double left[] = {a.l, a.h};
        const double right[] = {b.l, b.h};
        for (const double u : left) {
            for (const double v : right) {
                const Two uv = twoProduct(u, v);
                m_sum.addProduct(uv.l, c);
                m_sum.addProduct(uv.h, c);
            }
        }
    }
    int sign() const { return m_sum.sign(); }
    /// The sum to within the precision of two doubles.
    Two value() const {
        Two sum = {0, 0};
        for (int i = 0; i < m_sum.size(); ++i) sum = gpc::add(sum, {m_sum.part(i), 0});
        return sum;
    }

  private:
    detail::Expansion<192> m_sum;
};

inline Two cross(Two ax, Two ay, Two bx, Two by) {
    return add(multiply(ax, by), negate(multiply(ay, bx)));
}

}  // namespace jws::gpc

#endif  // JW_GPC_EXPANSION_H
