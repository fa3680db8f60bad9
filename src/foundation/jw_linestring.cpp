// SPDX-License-Identifier: MIT
//
// Point sequences: what line strings and rings share, and the line string.
//
// Douglas and Peucker's distances are to the segment, not to its line, so rings, whose first and
// last point coincide, need no special case.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <new>

#include "foundation/api_guard.h"
#include "foundation/farthest_point.h"
#include "foundation/plane_map.h"
#include "foundation/ring_math.h"
#include "foundation/segment_math.h"
#include "foundation/vertex_lists.h"
#include "jw_geometry_arc.h"

namespace jws {

using namespace detail;

namespace {

template <class Map>
void mapAll(std::vector<JWRawPoint>& points, const Map& map) {
    for (JWRawPoint& p : points) p = map(p);
}

/// Clears the outputs of a cut; false when one is missing.
bool clearParts(JWPolyCurve** first, JWPolyCurve** second) {
    if (first != nullptr) *first = nullptr;
    if (second != nullptr) *second = nullptr;
    return first != nullptr && second != nullptr;
}

/// Cuts between point `edge` and its successor at `cut`, or at one of the two when equal to it.
/// Refuses when one part would have no length.
bool splitAt(const std::vector<JWRawPoint>& points, std::size_t edge, const JWRawPoint& cut,
             JWPolyCurve** first, JWPolyCurve** second) {
    const auto isCut = [&](const JWRawPoint& p) { return p == cut; };
    const auto begin = points.begin(), after = begin + static_cast<std::ptrdiff_t>(edge) + 1;
    if (std::all_of(begin, after, isCut) || std::all_of(after, points.end(), isCut)) return false;
    const bool atEnd = cut == *after;
    const bool atStart = !atEnd && cut == *(after - 1);
    std::vector<JWRawPoint> head(begin, after + (atEnd ? 1 : 0));
    std::vector<JWRawPoint> tail;
    tail.reserve(static_cast<std::size_t>(points.end() - after) + 1);
    if (!atEnd) tail.push_back(cut);
    tail.insert(tail.end(), after, points.end());
    if (!atStart && !atEnd) head.push_back(cut);
    auto a = std::make_unique<JWLineString>(std::move(head));
    auto b = std::make_unique<JWLineString>(std::move(tail));
    *first = a.release();
    *second = b.release();
    return true;
}

}  // namespace

void JWPointSequence::setEmpty() {
    pointList.clear();
    envelop.setInvalid();
}

void JWPointSequence::move(double dx, double dy) {
    for (JWRawPoint& p : pointList) p.move(dx, dy);
    JWPointSequence::updateEnvelop();
}

void JWPointSequence::scale(const JWRawPoint& center, double sx, double sy) {
    mapAll(pointList, Scaling(center, sx, sy));
    JWPointSequence::updateEnvelop();
}

void JWPointSequence::rotate(const JWRawPoint& center, double angle) {
    mapAll(pointList, Rotation(center, angle));
    JWPointSequence::updateEnvelop();
}

void JWPointSequence::updateEnvelop() { envelop = envelopOf(pointList.data(), getPointCount()); }

void JWPointSequence::reverseOrientation() { std::reverse(pointList.begin(), pointList.end()); }

double JWPointSequence::getLength() const {
    double length = 0.0;
    for (std::size_t i = 1; i < pointList.size(); ++i) {
        length += pointDistance(pointList[i - 1], pointList[i]);
    }
    return length;
}

bool JWPointSequence::splitAtPoint(const JWRawPoint& p, JWPolyCurve** first,
                                   JWPolyCurve** second) const {
    if (!clearParts(first, second)) return false;
    bool found = false;
    double nearest = 0.0;
    std::size_t edge = 0;
    JWRawPoint cut(0, 0);
    for (std::size_t i = 0; i + 1 < pointList.size(); ++i) {
        const JWRawPoint foot = closestOnSegment(p, pointList[i], pointList[i + 1]);
        const double d = pointDistance(p, foot);
        if (found ? d < nearest : d >= 0.0) {
            found = true;
            nearest = d;
            edge = i;
            cut = foot;
        }
    }
    return found && guarded("splitAtPoint", false,
                            [&] { return splitAt(pointList, edge, cut, first, second); });
}

bool JWPointSequence::splitAtDistance(double distance, JWPolyCurve** first,
                                      JWPolyCurve** second) const {
    if (!clearParts(first, second) || !(distance > 0.0)) return false;
    double passed = 0.0;
    for (std::size_t i = 0; i + 1 < pointList.size(); ++i) {
        const double edge = pointDistance(pointList[i], pointList[i + 1]);
        if (distance <= passed + edge) {
            const JWRawPoint& a = pointList[i];
            const JWRawPoint& b = pointList[i + 1];
            const double t = (distance - passed) / edge;
            const JWRawPoint cut = t < 1 ? pointAlong(a, difference(b, a), t) : b;
            return guarded("splitAtDistance", false,
                           [&] { return splitAt(pointList, i, cut, first, second); });
        }
        passed += edge;
    }
    return false;
}

JWRawPoint* JWPointSequence::getAllPoints() const {
    const std::size_t bytes = pointList.size() * sizeof(JWRawPoint);
    void* copy = ::operator new(bytes == 0 ? 1 : bytes, std::nothrow);
    if (copy != nullptr && bytes != 0) std::memcpy(copy, pointList.data(), bytes);
    return static_cast<JWRawPoint*>(copy);
}

void JWPointSequence::insertPointsAt(const JWRawPoint* points, int n, int atLocation) {
    assert(atLocation >= 0 && atLocation <= getPointCount());
    if (points == nullptr || n <= 0) return;
    const auto place = pointList.begin() + atLocation;
    const std::less<const JWRawPoint*> before;
    const bool own =
        !before(points, pointList.data()) && before(points, pointList.data() + pointList.size());
    if (own) {
        const std::vector<JWRawPoint> copy(points, points + n);
        pointList.insert(place, copy.begin(), copy.end());
    } else {
        pointList.insert(place, points, points + n);
    }
}

void JWPointSequence::deletePointAt(int atLocation) {
    assert(atLocation >= 0 && atLocation < getPointCount());
    pointList.erase(pointList.begin() + atLocation);
}

void JWPointSequence::appendPoints(const JWRawPoint* points, int n, int spare) {
    if (points == nullptr || n <= 0) return;
    if (pointList.empty()) pointList.reserve(static_cast<std::size_t>(n) + spare);
    insertPointsAt(points, n, getPointCount());
}

/// A point at no place has no distance: it would stay, and then every point between it and another.
bool JWPointSequence::generalize(double tolerance, int minimum) {
    if (!(tolerance > 0.0) || getPointCount() <= minimum) return false;
    if (!detail::areFinite(pointList.data(), pointList.size())) return false;
    return guarded("generalizeByDouglasPoiker", false, [&] {
        detail::FarthestPoint farthest;
        std::vector<std::size_t> kept;
        farthest.setLine(pointList.data(), pointList.size());
        farthest.keep(tolerance, kept);
        if (kept.size() < static_cast<std::size_t>(minimum) || kept.size() == pointList.size()) {
            return false;
        }
        for (std::size_t i = 0; i < kept.size(); ++i) pointList[i] = pointList[kept[i]];
        pointList.resize(kept.size());
        JWPointSequence::updateEnvelop();
        return true;
    });
}

bool JWPointSequence::smooth(int degree, int steps, std::size_t minimum) {
    return guarded("soomthByBeizer", false, [&] {
        std::vector<JWRawPoint> curve;
        if (!JWBezierCurve().smoothPoints(pointList, degree, steps, curve)) return false;
        if (curve.size() < minimum) return false;
        pointList = std::move(curve);
        JWPointSequence::updateEnvelop();
        return true;
    });
}

JWLineString::JWLineString(const JWRawPoint* points, int n) {
    appendPoints(points, n, 0);
    updateEnvelop();
}

JWLineString::JWLineString(std::vector<JWRawPoint> points) {
    pointList = std::move(points);
    updateEnvelop();
}

bool JWLineString::soomthByBeizer(int degree, int steps) { return smooth(degree, steps, 2); }

bool JWLineString::isPointOnLine(const JWRawPoint& p) const {
    return pointOnEdges(p, pointList.data(), getPointCount());
}

}  // namespace jws
