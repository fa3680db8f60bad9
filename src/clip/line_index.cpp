// SPDX-License-Identifier: MIT
#include "clip/line_index.h"

#include <algorithm>

#include "clip/cutter.h"
#include "foundation/vertex_lists.h"

namespace jws::detail {
namespace {

constexpr int kRun = 16;  // segments

}  // namespace

LineIndex::LineIndex(const JWGeometry& lines) {
    std::vector<JWEnvelop> boxes;
    const auto take = [&](const JWLineString& line) {
        for (int first = 0; first + 1 < line.getPointCount(); first += kRun) {
            const int last = std::min(first + kRun, line.getPointCount() - 1);
            m_runs.push_back({&line, first, last});
            boxes.push_back(boxOf(line.getPointsPtr() + first, last - first + 1));
        }
    };
    if (lines.getGeometryType() == JWGeometryLineString) {
        take(static_cast<const JWLineString&>(lines));
    } else {
        for (const JWLineString& line :
             static_cast<const JWMultiLineString&>(lines).getMemberList())
            take(line);
    }
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
        const Run& first = m_runs[static_cast<std::size_t>(near[i])];
        int last = first.last;
        for (++i; i < near.size() && near[i] == near[i - 1] + 1; ++i) {
            const Run& next = m_runs[static_cast<std::size_t>(near[i])];
            if (next.line != first.line) break;
            last = next.last;
        }
        const JWRawPoint* points = first.line->getPointsPtr();
        std::vector<JWRawPoint> chain(points + first.first, points + last + 1);
        if (window.isContain(boxOf(chain.data(), static_cast<int>(chain.size())))) {
            parts.push_back(std::move(chain));
            continue;
        }
        cutter.split(JWLineString(std::move(chain)), AreaCut::InsideOut,
                     [&](std::vector<JWRawPoint>& part, bool inside) {
                         if (inside) parts.push_back(std::move(part));
                     });
    }
    return parts;
}

}  // namespace jws::detail
