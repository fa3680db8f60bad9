// SPDX-License-Identifier: MIT
#include <gpc.h>

#include <cerrno>
#include <stdexcept>

#include "gpc/clip_rival.h"

namespace bench {
namespace {

/// An operand in the interface's form.
class Operand {
  public:
    explicit Operand(const ClipOperand& polygons) {
        for (const ClipPolygon& polygon : polygons) {
            add(polygon.outer);
            for (const jwtest::Ring& hole : polygon.holes) add(hole);
        }
    }
    gpc_polygon polygon() {
        m_lists.clear();
        std::size_t first = 0;
        for (const int size : m_sizes) {
            m_lists.push_back({size, m_vertices.data() + first});
            first += static_cast<std::size_t>(size);
        }
        return {static_cast<int>(m_lists.size()), nullptr, m_lists.data()};
    }

  private:
    void add(const jwtest::Ring& ring) {
        for (const jws::JWRawPoint& p : ring) m_vertices.push_back({p.x, p.y});
        m_sizes.push_back(static_cast<int>(ring.size()));
    }

    std::vector<gpc_vertex> m_vertices;
    std::vector<int> m_sizes;
    std::vector<gpc_vertex_list> m_lists;
};

class OursClip final : public ClipRival {
  public:
    void load(const std::vector<ClipOperands>& pairs) override {
        for (const ClipOperands& pair : pairs) {
            m_operands.emplace_back(pair.a);
            m_operands.emplace_back(pair.b);
        }
        for (Operand& operand : m_operands) m_polygons.push_back(operand.polygon());
    }

    void run(ClipOp op) override {
        forEachResult(op, [](gpc_polygon&) {});
    }

    double area(ClipOp op) override {
        double sum = 0;
        forEachResult(op, [&sum](gpc_polygon& result) {
            for (int c = 0; c < result.num_contours; ++c) {
                jwtest::Ring ring;
                for (int i = 0; i < result.contour[c].num_vertices; ++i) {
                    ring.emplace_back(result.contour[c].vertex[i].x, result.contour[c].vertex[i].y);
                }
                sum += jwtest::signedArea(ring);
            }
        });
        return sum;
    }

  private:
    template <class Use>
    void forEachResult(ClipOp op, Use use) {
        constexpr gpc_op codes[] = {GPC_INT, GPC_UNION, GPC_DIFF, GPC_XOR};
        for (std::size_t i = 0; i < m_polygons.size(); i += 2) {
            gpc_polygon result;
            errno = 0;
            gpc_polygon_clip(codes[static_cast<int>(op)], &m_polygons[i], &m_polygons[i + 1],
                             &result);
            if (errno != 0) throw std::runtime_error("gave up");
            use(result);
            gpc_free_polygon(&result);
        }
    }

    std::vector<Operand> m_operands;
    std::vector<gpc_polygon> m_polygons;
};

}  // namespace

std::unique_ptr<ClipRival> makeOursClip() { return std::make_unique<OursClip>(); }

}  // namespace bench
