// SPDX-License-Identifier: MIT
//
// A contender whose operands and results are values of one type. What is left to it is how an
// operand is made, how a pair is clipped, and what the area of a result is.
#ifndef JWCG_BENCH_PAIRWISE_CLIP_H
#define JWCG_BENCH_PAIRWISE_CLIP_H

#include <cstddef>
#include <vector>

#include "gpc/clip_rival.h"

namespace bench {

template <class Geometry>
class PairwiseClip : public ClipRival {
  public:
    void load(const std::vector<ClipOperands>& pairs) override {
        for (const ClipOperands& pair : pairs) {
            m_operands.push_back(operand(pair.a));
            m_operands.push_back(operand(pair.b));
        }
    }

    void run(ClipOp op) override {
        forEachResult(op, [](const Geometry&) {});
    }

    double area(ClipOp op) override {
        double sum = 0;
        forEachResult(op, [&](const Geometry& result) { sum += areaOf(result); });
        return sum;
    }

  private:
    virtual Geometry operand(const ClipOperand& polygons) const = 0;
    /// Throws where the rival fails.
    virtual Geometry clip(ClipOp op, const Geometry& a, const Geometry& b) const = 0;
    virtual double areaOf(const Geometry& result) const = 0;

    template <class Use>
    void forEachResult(ClipOp op, const Use& use) const {
        for (std::size_t i = 0; i < m_operands.size(); i += 2) {
            use(clip(op, m_operands[i], m_operands[i + 1]));
        }
    }

    std::vector<Geometry> m_operands;
};

}  // namespace bench

#endif  // JWCG_BENCH_PAIRWISE_CLIP_H
