// SPDX-License-Identifier: MIT
#ifndef JW_TESTS_SUPPORT_GPC_OPERAND_H
#define JW_TESTS_SUPPORT_GPC_OPERAND_H

#include "support/gpc_call.h"

namespace jwtest {

/// An operand in the interface's form, with the memory behind it.
class GpcOperand {
  public:
    explicit GpcOperand(const Rings& rings) : holes_(rings.size(), 1) {
        std::size_t count = 0;
        for (const Ring& ring : rings) count += ring.size();
        vertices_.reserve(count);
        for (const Ring& ring : rings) {
            lists_.push_back({static_cast<int>(ring.size()), vertices_.data() + vertices_.size()});
            for (const jws::JWRawPoint& p : ring) vertices_.push_back({p.x, p.y});
        }
        polygon_ = {static_cast<int>(rings.size()), holes_.data(), lists_.data()};
    }
    GpcOperand(const GpcOperand&) = delete;
    GpcOperand& operator=(const GpcOperand&) = delete;

    gpc_polygon* polygon() { return &polygon_; }

  private:
    std::vector<gpc_vertex> vertices_;
    std::vector<gpc_vertex_list> lists_;
    std::vector<int> holes_;
    gpc_polygon polygon_;
};

/// Reads a result and frees it.
inline ClipResult takeResult(gpc_polygon& out, int failure) {
    ClipResult result;
    result.failure = failure;
    for (int c = 0; c < out.num_contours; ++c) {
        const gpc_vertex_list& list = out.contour[c];
        Ring ring;
        ring.reserve(static_cast<std::size_t>(list.num_vertices));
        for (int i = 0; i < list.num_vertices; ++i) {
            ring.emplace_back(list.vertex[i].x, list.vertex[i].y);
        }
        result.contours.push_back(std::move(ring));
        result.holes.push_back(out.hole[c]);
    }
    gpc_free_polygon(&out);
    return result;
}

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_GPC_OPERAND_H
