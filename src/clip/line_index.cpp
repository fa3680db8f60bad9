// SPDX-License-Identifier: MIT
#include "clip/line_index.h"

#include <algorithm>

#include "clip/cutter.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

constexpr std::size_t kRun = 16;  // segments

}  // namespace

LineIndex::LineIndex(const JWGeometry& lines) {
    std::vector<JWEnvelop> boxes;
    everyVertexList(lines, [&](const JWRawPoint* points, std::size_t n) {
        for (std::size_t i = 0; i + 1 < n; i += kRun) {
            const std::size_t last = std::min(i + kRun, n - 1);
            m_runs.push_back({points + i, points + last});
            boxes.push_back(boxOf(points + i, static_cast<int>(last - i) + 1));
        }
        return true;
    });
    m_tree = PackedTree(boxes);
}

std::vector<std::vector<JWRawPoint>> LineIndex::within(const JWEnvelop& window) const {
    std::vector<int> near;
    m_tree.search([&](const JWEnvelop& box) { return !window.isDisjoin(box); },
                  [&](int run) {
                      near.push_back(run);
                      return false;
                  });
    std::sort(near.begin(), near.end());
    const std::vector<JWRawPoint> corners = {window.bottom_left(), window.bottom_right(),
                                             window.top_right(), window.top_left()};
    const Cutter cutter(RingViews{{corners.data(), static_cast<int>(corners.size()), 0}});
    std::vector<std::vector<JWRawPoint>> parts;
    for (std::size_t i = 0; i < near.size();) {
        Run chained = m_runs[static_cast<std::size_t>(near[i])];
        for (++i; i < near.size(); ++i) {
            const Run& next = m_runs[static_cast<std::size_t>(near[i])];
            if (next.first != chained.last) break;
            chained.last = next.last;
        }
        std::vector<JWRawPoint> chain(chained.first, chained.last + 1);
        if (window.isContain(boxOf(chain.data(), static_cast<int>(chain.size())))) {
            parts.push_back(std::move(chain));
            continue;
        }
        cutter.split(JWLineString(std::move(chain)), AreaCut::InsideOut, Team(1),
                     [&](std::vector<JWRawPoint>& part, bool inside) {
                         if (inside) parts.push_back(std::move(part));
                     });
    }
    return parts;
}

}  // namespace jws::detail
