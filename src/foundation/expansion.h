// SPDX-License-Identifier: MIT
//
// Sums and products of doubles without rounding.
//
// A number is held as a sum of doubles of which none overlaps the next, smallest first; the largest
// carries the sign (J. R. Shewchuk, Adaptive Precision Floating-Point Arithmetic and Fast Robust
// Geometric Predicates, 1997; products by T. J. Dekker, 1971). Zeros are left out, so numbers of
// few digits stay short. Exact as long as nothing overflows or loses bits below the smallest
// number. Needs strict floating point: no contraction, no fast-math.
#ifndef JW_FOUNDATION_EXPANSION_H
#define JW_FOUNDATION_EXPANSION_H

namespace jws::detail {

/// An unevaluated sum of two doubles, high part rounded to nearest.
struct Two {
    double h;
    double l;
};

inline Two twoSum(double a, double b) {
    const double s = a + b;
    const double bb = s - a;
    return {s, (a - (s - bb)) + (b - bb)};
}

inline Two twoDiff(double a, double b) { return twoSum(a, -b); }

/// The upper and the lower half of a double's digits.
inline Two splitDigits(double a) {
    const double c = 134217729.0 * a;  // 2^27 + 1
    const double high = c - (c - a);
    return {high, a - high};
}

inline Two twoProduct(double a, double b) {
    const double p = a * b;
    const Two as = splitDigits(a);
    const Two bs = splitDigits(b);
    return {p, ((as.h * bs.h - p) + as.h * bs.l + as.l * bs.h) + as.l * bs.l};
}

/// A number as an exact sum of at most `Capacity` doubles.
template <int Capacity>
class Expansion {
  public:
    void add(double term) {
        int kept = 0;
        for (int i = 0; i < m_size; ++i) {
            const Two s = twoSum(m_parts[i], term);
            term = s.h;
            if (s.l != 0) m_parts[kept++] = s.l;
        }
        if (term != 0) m_parts[kept++] = term;
        m_size = kept;
    }
    void add(Two t) {
        add(t.l);
        add(t.h);
    }
    /// Adds x·y; two parts at most.
    void addProduct(double x, double y) { add(twoProduct(x, y)); }
    /// Adds factor·x·y; two parts at most for each pair of parts.
    template <int N, int M>
    void addProduct(const Expansion<N>& x, const Expansion<M>& y, double factor = 1) {
        for (int i = 0; i < x.size(); ++i)
            for (int k = 0; k < y.size(); ++k) addProduct(factor * x.part(i), y.part(k));
    }

    int sign() const { return m_size == 0 ? 0 : (m_parts[m_size - 1] > 0 ? 1 : -1); }
    int size() const { return m_size; }
    double part(int i) const { return m_parts[i]; }

  private:
    double m_parts[Capacity];
    int m_size = 0;
};

/// a − b.
inline Expansion<2> exactDifference(double a, double b) {
    Expansion<2> d;
    d.add(a);
    d.add(-b);
    return d;
}

}  // namespace jws::detail

#endif  // JW_FOUNDATION_EXPANSION_H
