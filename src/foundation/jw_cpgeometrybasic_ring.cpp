// SPDX-License-Identifier: MIT
//
// Points against lines and rings, areas, centroids and the self-intersection checks.
//
// The self-intersection checks are defined over all pairs of segments. Pairs whose rectangles are
// apart can only answer "no", so the rectangles are searched through an EdgeTree and the pairs that
// remain are computed by `intersectSegments`: the answer is that of all pairs. Neighbouring
// segments have a rule of their own and are walked first, then the pair of first and last segment,
// which settles every closed ring at once.
#include "foundation/api_guard.h"
#include "foundation/edge_tree.h"
#include "foundation/ring_math.h"
#include "foundation/ring_position.h"
#include "foundation/segment_math.h"
#include "jw_cpgeometrybasic.h"

namespace jws {

using namespace detail;

namespace {

/// Below this number of segments all pairs are computed without a tree.
constexpr int kFewSegments = 24;

int isPointOnSequence(const JWRawPoint* p, const JWPointSequence* curve, double tol,
                      int minimumPoints) {
    if (p == nullptr || curve == nullptr || curve->isEmpty()) return -2;
    if (!curve->getEnvelop().contains(*p)) return 0;
    const JWRawPoint* points = curve->getPointsPtr();
    const int n = curve->getPointCount();
    if (n < minimumPoints) return withinTolerance(pointDistance(*p, points[0]), tol);
    return nearAnyEdge(*p, points, n, tol);
}

/// Stores the mean of the first three points, or of those there are.
bool meanOfFirstPoints(const JWPointSequence& curve, JWRawPoint& mean) {
    const int n = std::min(curve.getPointCount(), 3);
    if (n == 0) return false;
    JWRawPoint sum(0, 0);
    for (int i = 0; i < n; ++i) sum.move(curve.getX(i), curve.getY(i));
    mean.set(sum.x / n, sum.y / n);
    return true;
}

bool anyPairMeets(const JWRawPoint* points, int segments) {
    JWRawPoint I0, I1;
    const auto relation = [&](int i, int j) {
        return intersectSegments(points[i], points[i + 1], points[j], points[j + 1], I0, I1);
    };
    const auto apartByIndexMeet = [&](int i, int j) {
        if (j == i + 1) return false;
        const SegmentRelation code = relation(i, j);
        return code == kPointsEqual || code == kOnePoint || code == kOverlap ||
               code == kCollinearTouch;
    };
    for (int i = 0; i + 1 < segments; ++i) {
        const SegmentRelation code = relation(i, i + 1);
        if (code == kOverlap || code == kPointsEqual) return true;
    }
    if (segments > 2 && apartByIndexMeet(0, segments - 1)) return true;
    if (segments > kFewSegments) return EdgeTree(points, segments).visitPairs(apartByIndexMeet);
    for (int i = 0; i < segments; ++i)
        for (int j = i + 2; j < segments; ++j)
            if (apartByIndexMeet(i, j)) return true;
    return false;
}

bool isSequenceWeird(const char* function, const JWPointSequence* curve, int minimumPoints) {
    if (curve == nullptr || curve->getPointCount() < minimumPoints) return true;
    return guarded(function, true,
                   [&] { return anyPairMeets(curve->getPointsPtr(), curve->getPointCount() - 1); });
}

}  // namespace

int JWCPGeometryBasic::isPointOnLineString(const JWRawPoint* p, const JWLineString* line,
                                           const double& tol) {
    return isPointOnSequence(p, line, tol, 2);
}

int JWCPGeometryBasic::isPointOnRing(const JWRawPoint* p, const JWRing* ring, const double& tol) {
    return isPointOnSequence(p, ring, tol, 3);
}

int JWCPGeometryBasic::isPointWithinRingCN(const JWRawPoint* p, const JWRing* ring) {
    if (p == nullptr || ring == nullptr) return -1;
    if (!ring->getEnvelop().contains(*p)) return 0;
    return pointInRingCN(*p, ring->getPointsPtr(), ring->getPointCount());
}

int JWCPGeometryBasic::isPointWithinClosedLineCN(const JWRawPoint* p, const JWLineString* line) {
    if (p == nullptr || line == nullptr) return -1;
    const JWRawPoint* points = line->getPointsPtr();
    const int n = line->getPointCount();
    if (n <= 3 || points[0] != points[n - 1]) return -1;
    const JWEnvelop envelop = line->getEnvelop();
    if (envelop.isValid() && !envelop.contains(*p)) return 0;
    return pointInRingCN(*p, points, n);
}

int JWCPGeometryBasic::isPointWithinRingWN(const JWRawPoint* p, const JWRing* ring) {
    if (p == nullptr || ring == nullptr) return -2;
    const JWRawPoint* points = ring->getPointsPtr();
    const int n = ring->getPointCount();
    if (n < 4 || !ring->getEnvelop().contains(*p)) return 0;
    int winding = 0;
    for (int i = 0; i + 1 < n; ++i) {
        const JWRawPoint& e0 = points[i];
        const JWRawPoint& e1 = points[i + 1];
        if (e0.y <= p->y) {
            if (e1.y > p->y && signedTriangleArea(e0, e1, *p) > 0) ++winding;
        } else if (e1.y <= p->y && signedTriangleArea(e0, e1, *p) < 0) {
            --winding;
        }
    }
    return winding != 0;
}

double JWCPGeometryBasic::ringArea(const JWRing* ring) {
    if (ring == nullptr || ring->getPointCount() <= 3) return 0;
    const JWRawPoint* points = ring->getPointsPtr();
    const int n = ring->getPointCount();
    return points[0] == points[n - 1] ? ringAreaLocal(points, n) : jws::ringArea(points, n);
}

bool JWCPGeometryBasic::ringCentroid(const JWRing* ring, JWRawPoint* c) {
    if (ring == nullptr || c == nullptr) return false;
    return jws::ringCentroid(ring->getPointsPtr(), ring->getPointCount(), *c);
}

bool JWCPGeometryBasic::lineStringCentroid(const JWLineString* line, JWRawPoint* c) {
    if (line == nullptr || c == nullptr || line->getPointCount() < 2) return false;
    const JWRawPoint* points = line->getPointsPtr();
    const int n = line->getPointCount();
    double sumX = 0, sumY = 0, total = 0;
    for (int i = 0; i + 1 < n; ++i) {
        const double segment = pointDistance(points[i], points[i + 1]);
        sumX += (points[i].x + points[i + 1].x) / 2 * segment;
        sumY += (points[i].y + points[i + 1].y) / 2 * segment;
        total += segment;
    }
    c->set(sumX / total, sumY / total);
    return true;
}

bool JWCPGeometryBasic::getPointInRing(const JWRing* ring, JWRawPoint* p) {
    if (ring == nullptr || p == nullptr) return false;
    const JWRawPoint centroid = ring->getCentroid();
    if (isPointWithinRingCN(&centroid, ring) != 1) return meanOfFirstPoints(*ring, *p);
    *p = centroid;
    return true;
}

bool JWCPGeometryBasic::getPointInClosedLine(const JWLineString* line, JWRawPoint* p) {
    return line != nullptr && p != nullptr && meanOfFirstPoints(*line, *p);
}

bool JWCPGeometryBasic::isLineStringWeird(const JWLineString* line) {
    return isSequenceWeird("isLineStringWeird", line, 3);
}

bool JWCPGeometryBasic::isRingWeird(const JWRing* ring) {
    return isSequenceWeird("isRingWeird", ring, 4);
}

}  // namespace jws
