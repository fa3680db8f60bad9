// SPDX-License-Identifier: MIT
//
// The ring: closing, and the answers that depend on it. The arithmetic is in ring_math.h.
#include <cmath>
#include <limits>

#include "foundation/ring_math.h"
#include "jw_geometry_curve.h"

namespace jws {

JWRing::JWRing(const JWRawPoint* points, int n) {
    addPoints(points, n);
    updateEnvelop();
}

JWRing::JWRing(std::vector<JWRawPoint> points) {
    pointList = std::move(points);
    closeRing();
    updateEnvelop();
}

void JWRing::addPoints(const JWRawPoint* points, int n) {
    if (points == nullptr || n <= 0) return;
    if (hasClosingPoint()) {
        // The new points replace the closing one; they are put before it, since they may hold it.
        const int place = getPointCount() - 1;
        insertPointsAt(points, n, place);
        pointList.pop_back();
    } else {
        const bool closedAlready = points[0] == points[n - 1];
        appendPoints(points, n, pointList.empty() && closedAlready ? 0 : 1);
    }
    closeRing();
}

void JWRing::closeRing() {
    if (pointList.size() < 2 || hasClosingPoint()) return;
    const JWRawPoint first = pointList.front();
    pointList.push_back(first);
}

bool JWRing::hasClosingPoint() const {
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    return pointList.size() >= 2 && same(pointList.front().x, pointList.back().x) &&
           same(pointList.front().y, pointList.back().y);
}

void JWRing::geoNormalize() {
    closeRing();
    if (getOrientation() == JWRingClockwise) reverseOrientation();
    updateEnvelop();
}

bool JWRing::soomthByBeizer(int degree, int steps) {
    if (!smooth(degree, steps, 4)) return false;
    closeRing();
    return true;
}

double JWRing::getArea() const { return ringAreaLocal(pointList.data(), getPointCount()); }

bool JWRing::isPointInRing(const JWRawPoint& p) const {
    return pointInRingCN(p, pointList.data(), getPointCount()) == 1;
}

bool JWRing::isPointOnRingBoundary(const JWRawPoint& p) const {
    return pointOnEdges(p, pointList.data(), getPointCount());
}

JWRawPoint JWRing::getCentroid() const {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (pointList.empty()) return {nan, nan};
    JWRawPoint c(nan, nan);
    if (ringCentroid(pointList.data(), getPointCount(), c)) return c;
    const int corners = getPointCount() - (hasClosingPoint() ? 1 : 0);
    const JWRawPoint o = pointList.front();
    double dx = 0.0, dy = 0.0;
    for (int i = 1; i < corners; ++i) {
        dx += pointList[i].x - o.x;
        dy += pointList[i].y - o.y;
    }
    return {o.x + dx / corners, o.y + dy / corners};
}

enumJWRingOrientation JWRing::getOrientation() const {
    const double area = getArea();
    if (area > 0.0) return JWRingCounterClockwise;
    return area < 0.0 ? JWRingClockwise : JWRingUndefined;
}

void JWRing::setEnd(const JWRawPoint& p, bool last) {
    if (pointList.empty()) return;
    const JWRawPoint value = p;
    const bool both = hasClosingPoint();
    if (last || both) pointList.back() = value;
    if (!last || both) pointList.front() = value;
}

}  // namespace jws
