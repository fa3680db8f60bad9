// SPDX-License-Identifier: MIT
//
// Edges are swept by x, pairs with overlapping boxes tested by exact turns; at a vertex that
// several contours have, each pair of them is tested for passing through one another. Then
// contours meet at common vertices only, and one vertex that is not common tells which contour
// lies in which.
#include "support/contour_check.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "support/exact_sign.h"

namespace jwtest {
namespace {

using jws::JWRawPoint;

/// One vertex of one contour, with its neighbours in it.
struct Corner {
    JWRawPoint before, at, after;
    std::size_t contour, index;
};

/// An edge from its smaller to its larger end.
struct Edge {
    JWRawPoint low, high;
};

std::string text(const char* what, const JWRawPoint& p) {
    char buffer[160];
    std::snprintf(buffer, sizeof buffer, "%s at %.17g %.17g", what, p.x, p.y);
    return buffer;
}

bool within(const JWRawPoint& p, const Edge& e) {
    return e.low < p && p < e.high && turnOf(e.low, e.high, p) == 0;
}

/// What two edges do that edges of a result must not; null if nothing.
const char* conflict(const Edge& e, const Edge& f) {
    if (e.low == f.low && e.high == f.high) return "an edge twice";
    if (within(e.low, f) || within(e.high, f) || within(f.low, e) || within(f.high, e)) {
        return "a vertex within an edge";
    }
    if (e.low == f.low || e.low == f.high || e.high == f.low || e.high == f.high) return nullptr;
    const bool apart = turnOf(e.low, e.high, f.low) * turnOf(e.low, e.high, f.high) >= 0 ||
                       turnOf(f.low, f.high, e.low) * turnOf(f.low, f.high, e.high) >= 0;
    return apart ? nullptr : "edges cross";
}

std::string edgeFault(const std::vector<Corner>& corners) {
    std::vector<Edge> edges;
    edges.reserve(corners.size());
    for (const Corner& c : corners) {
        edges.push_back(c.at < c.after ? Edge{c.at, c.after} : Edge{c.after, c.at});
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& e, const Edge& f) {
        return e.low < f.low || (e.low == f.low && e.high < f.high);
    });
    std::vector<Edge> open;
    for (const Edge& e : edges) {
        const double bottom = std::min(e.low.y, e.high.y), top = std::max(e.low.y, e.high.y);
        std::size_t kept = 0;
        for (std::size_t i = 0; i < open.size(); ++i) {
            const Edge f = open[i];
            if (f.high.x < e.low.x) continue;
            open[kept++] = f;
            if (std::max(f.low.y, f.high.y) < bottom || std::min(f.low.y, f.high.y) > top) continue;
            if (const char* what = conflict(e, f)) return text(what, e.low);
        }
        open.resize(kept);
        open.push_back(e);
    }
    return {};
}

/// Whether the direction to `p` lies strictly between those to `from` and `to`, counter-clockwise.
bool between(const JWRawPoint& at, const JWRawPoint& from, const JWRawPoint& to,
             const JWRawPoint& p) {
    const int wide = turnOf(at, from, to);
    const bool afterFrom = turnOf(at, from, p) > 0, beforeTo = turnOf(at, p, to) > 0;
    return wide > 0 ? afterFrom && beforeTo : afterFrom || beforeTo;
}

bool passThrough(const Corner& c, const Corner& d) {
    return between(c.at, c.before, c.after, d.before) != between(c.at, c.before, c.after, d.after);
}

/// All corners, sorted by place; the checks on them and what they tell about contours.
class Contours {
  public:
    explicit Contours(const ClipResult& result) : m_result(result) {
        for (std::size_t c = 0; c < result.contours.size(); ++c) {
            const Ring& ring = result.contours[c];
            const std::size_t n = ring.size();
            m_shared.emplace_back(n, false);
            for (std::size_t i = 0; i < n; ++i) {
                m_corners.push_back({ring[(i + n - 1) % n], ring[i], ring[(i + 1) % n], c, i});
            }
        }
        std::sort(m_corners.begin(), m_corners.end(), [](const Corner& a, const Corner& b) {
            return a.at < b.at || (a.at == b.at && a.contour < b.contour);
        });
    }

    std::string fault() {
        for (const Ring& ring : m_result.contours) {
            if (ring.size() < 3) return "a contour of fewer than three vertices";
            for (const JWRawPoint& p : ring) {
                if (!std::isfinite(p.x) || !std::isfinite(p.y)) return "a vertex is not finite";
            }
        }
        for (std::size_t i = 1; i < m_corners.size(); ++i) {
            const Corner &c = m_corners[i - 1], &d = m_corners[i];
            if (c.at == d.at && c.contour == d.contour) return text("a vertex twice", c.at);
        }
        std::string found = edgeFault(m_corners);
        if (found.empty()) found = meetingFault();
        if (found.empty()) found = nestingFault();
        if (found.empty()) found = startFault();
        return found;
    }

  private:
    std::string meetingFault() {
        for (std::size_t first = 0, last; first < m_corners.size(); first = last) {
            last = first + 1;
            while (last < m_corners.size() && m_corners[last].at == m_corners[first].at) ++last;
            if (last == first + 1) continue;
            for (std::size_t i = first; i < last; ++i) {
                m_shared[m_corners[i].contour][m_corners[i].index] = true;
                for (std::size_t k = first; k < i; ++k) {
                    if (passThrough(m_corners[i], m_corners[k])) {
                        return text("contours pass through one another", m_corners[i].at);
                    }
                }
            }
        }
        return {};
    }

    struct Box {
        double minX, minY, maxX, maxY;
    };
    static Box boxOf(const Ring& ring) {
        Box box = {ring[0].x, ring[0].y, ring[0].x, ring[0].y};
        for (const JWRawPoint& p : ring) {
            box.minX = std::min(box.minX, p.x);
            box.maxX = std::max(box.maxX, p.x);
            box.minY = std::min(box.minY, p.y);
            box.maxY = std::max(box.maxY, p.y);
        }
        return box;
    }

    /// 1 inside, -1 outside; 0 at a vertex. Never within an edge, as contours meet at vertices.
    static int locate(const JWRawPoint& p, const Ring& ring) {
        int side = -1;
        for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
            if (ring[i] == p) return 0;
            if ((ring[i].y > p.y) == (ring[j].y > p.y)) continue;
            const bool up = ring[i].y > ring[j].y;
            if ((turnOf(ring[j], ring[i], p) > 0) == up) side = -side;
        }
        return side;
    }

    /// Whether contour `inner` lies in contour `outer`.
    bool isWithin(std::size_t inner, std::size_t outer) const {
        const Ring &ring = m_result.contours[inner], &around = m_result.contours[outer];
        for (const JWRawPoint& p : ring) {
            const int side = locate(p, around);
            if (side != 0) return side > 0;
        }
        // Every vertex is common: the way it leaves the first tells.
        const std::size_t n = around.size();
        const std::size_t i = static_cast<std::size_t>(
            std::find(around.begin(), around.end(), ring[0]) - around.begin());
        const JWRawPoint &before = around[(i + n - 1) % n], &after = around[(i + 1) % n];
        return m_result.holes[outer] ? between(ring[0], before, after, ring[1])
                                     : between(ring[0], after, before, ring[1]);
    }

    static bool isCounterClockwise(const Ring& ring) {
        const std::size_t n = ring.size();
        const std::size_t i =
            static_cast<std::size_t>(std::min_element(ring.begin(), ring.end()) - ring.begin());
        return turnOf(ring[(i + n - 1) % n], ring[i], ring[(i + 1) % n]) > 0;
    }

    std::string nestingFault() const {
        const std::size_t count = m_result.contours.size();
        std::vector<Box> boxes;
        for (const Ring& ring : m_result.contours) boxes.push_back(boxOf(ring));
        for (std::size_t i = 0; i < count; ++i) {
            const bool hole = m_result.holes[i] == 1;
            if (isCounterClockwise(m_result.contours[i]) == hole) {
                return text("a hole flag against the direction", m_result.contours[i][0]);
            }
            int depth = 0;
            for (std::size_t j = 0; j < count; ++j) {
                const Box &in = boxes[i], &out = boxes[j];
                if (i == j || in.minX < out.minX || in.maxX > out.maxX || in.minY < out.minY ||
                    in.maxY > out.maxY || !isWithin(i, j)) {
                    continue;
                }
                ++depth;
                if (j < i) return text("a contour after one around it", m_result.contours[i][0]);
            }
            if ((depth % 2 == 1) != hole) {
                return text("a wrong hole flag", m_result.contours[i][0]);
            }
        }
        return {};
    }

    std::string startFault() const {
        for (std::size_t c = 0; c < m_shared.size(); ++c) {
            const std::vector<bool>& shared = m_shared[c];
            const std::size_t n = shared.size(), middle = (n + 2) / 2;
            if (!shared[0] && !shared[middle % n]) continue;
            for (std::size_t i = 0; i < n; ++i) {
                if (shared[i]) continue;
                if (shared[0]) return text("a contour starts shared", m_result.contours[c][0]);
                if (!shared[(i + middle) % n]) {
                    return text("a contour's middle is shared", m_result.contours[c][0]);
                }
            }
        }
        return {};
    }

    const ClipResult& m_result;
    std::vector<Corner> m_corners;
    std::vector<std::vector<bool>> m_shared;
};

}  // namespace

std::string contourFault(const ClipResult& result) { return Contours(result).fault(); }

}  // namespace jwtest
