// SPDX-License-Identifier: MIT
#ifndef JW_TESTS_SUPPORT_GPC_OPERAND_H
#define JW_TESTS_SUPPORT_GPC_OPERAND_H

#include "support/gpc_call.h"

namespace jwtest {

/// An operand in the interface's form, with the memory behind it.
class GpcOperand {
  public:
    explicit GpcOperand(const Rings& rings) : m_holes(rings.size(), 1) {
        std::size_t count = 0;
        for (const Ring& ring : rings) count += ring.size();
        m_vertices.reserve(count);
        for (const Ring& ring : rings) {
            m_lists.push_back(
                {static_cast<int>(ring.size()), m_vertices.data() + m_vertices.size()});
            for (const jws::JWRawPoint& p : ring) m_vertices.push_back({p.x, p.y});
        }
        m_polygon = {static_cast<int>(rings.size()), m_holes.data(), m_lists.data()};
    }
    GpcOperand(const GpcOperand&) = delete;
    GpcOperand& operator=(const GpcOperand&) = delete;

    gpc_polygon* polygon() { return &m_polygon; }

  private:
    std::vector<gpc_vertex> m_vertices;
    std::vector<gpc_vertex_list> m_lists;
    std::vector<int> m_holes;
    gpc_polygon m_polygon;
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
