// SPDX-License-Identifier: MIT
//
// Sums of doubles that stand for one number: pairs of them, and sums of any length whose sign is
// exact (Dekker 1971, Shewchuk 1997). Products must neither overflow nor underflow.
#ifndef JW_GPC_EXPANSION_H
#define JW_GPC_EXPANSION_H

namespace jws::gpc {

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

inline Two quickTwoSum(double a, double b) {
    const double s = a + b;
    return {s, b - (s - a)};
}

inline Two twoDiff(double a, double b) { return twoSum(a, -b); }

inline Two split(double a) {
    const double c = 134217729.0 * a;
    const double high = c - (c - a);
    return {high, a - high};
}

inline Two twoProduct(double a, double b) {
    const double p = a * b;
    const Two as = split(a);
    const Two bs = split(b);
    return {p, ((as.h * bs.h - p) + as.h * bs.l + as.l * bs.h) + as.l * bs.l};
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

/// A sum of up to 192 terms without error: a nonoverlapping expansion that grows.
class ExactSum {
  public:
    void add(double term) {
        int kept = 0;
        for (int i = 0; i < size_; ++i) {
            const Two s = twoSum(parts_[i], term);
            term = s.h;
            if (s.l != 0) parts_[kept++] = s.l;
        }
        if (term != 0) parts_[kept++] = term;
        size_ = kept;
    }
    void add(Two t) {
        add(t.l);
        add(t.h);
    }
    /// Adds the product of two numbers.
    void addProduct(Two a, Two b) {
        add(twoProduct(a.l, b.l));
        add(twoProduct(a.l, b.h));
        add(twoProduct(a.h, b.l));
        add(twoProduct(a.h, b.h));
    }
    /// Adds the product of three numbers.
    void addProduct(Two a, Two b, double c) {
        if (c == 0) return;
        const double left[] = {a.l, a.h};
        const double right[] = {b.l, b.h};
        for (const double u : left) {
            for (const double v : right) {
                const Two uv = twoProduct(u, v);
                add(twoProduct(uv.l, c));
                add(twoProduct(uv.h, c));
            }
        }
    }
    int sign() const { return size_ == 0 ? 0 : gpc::sign(parts_[size_ - 1]); }
    /// The sum to within the precision of two doubles.
    Two value() const {
        Two sum = {0, 0};
        for (int i = 0; i < size_; ++i) sum = gpc::add(sum, {parts_[i], 0});
        return sum;
    }

  private:
    double parts_[192];
    int size_ = 0;
};

inline Two cross(Two ax, Two ay, Two bx, Two by) {
    return add(multiply(ax, by), negate(multiply(ay, bx)));
}

}  // namespace jws::gpc

#endif  // JW_GPC_EXPANSION_H
