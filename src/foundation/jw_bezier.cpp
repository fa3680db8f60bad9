// SPDX-License-Identifier: MIT
//
// The Bézier curve in the Bernstein form, and smoothing by pieces of it.
#include <algorithm>
#include <cmath>

#include "foundation/api_guard.h"
#include "foundation/plane_map.h"
#include "foundation/quadrature.h"
#include "foundation/segment_math.h"
#include "foundation/vertex_lists.h"
#include "jw_geometry_arc.h"

namespace jws {

using namespace detail;

namespace {

/// The sum of points 0 to `degree` by weights that add up to one, formed of differences to the
/// first, so that a curve of micro steps far from the origin keeps its digits.
template <class WeightOf>
JWRawPoint weighted(const JWRawPoint* points, std::size_t degree, const WeightOf& weightOf) {
    JWRawPoint sum(0, 0);
    for (std::size_t i = 1; i <= degree; ++i) {
        const double w = weightOf(i);
        sum.move(w * (points[i].x - points[0].x), w * (points[i].y - points[0].y));
    }
    return JWRawPoint(points[0].x + sum.x, points[0].y + sum.y);
}

}  // namespace

JWBezierCurve::JWBezierCurve() : factorials(kMaxDegree + 1, 1.0), envelop(JWEnvelop::invalid()) {
    for (int i = 2; i <= kMaxDegree; ++i) factorials[i] = factorials[i - 1] * i;
}

JWBezierCurve::JWBezierCurve(const std::vector<JWRawPoint>& controlPoints_) : JWBezierCurve() {
    if (controlPoints_.size() <= kMaxDegree + 1) controlPoints = controlPoints_;
    JWBezierCurve::updateEnvelop();
}

void JWBezierCurve::setEmpty() {
    controlPoints.clear();
    envelop.setInvalid();
}

void JWBezierCurve::move(double dx, double dy) {
    for (JWRawPoint& p : controlPoints) p.move(dx, dy);
    updateEnvelop();
}

void JWBezierCurve::scale(const JWRawPoint& about, double sx, double sy) {
    const Scaling map(about, sx, sy);
    for (JWRawPoint& p : controlPoints) p = map(p);
    updateEnvelop();
}

void JWBezierCurve::rotate(const JWRawPoint& about, double angle) {
    const Rotation map(about, angle);
    for (JWRawPoint& p : controlPoints) p = map(p);
    updateEnvelop();
}

void JWBezierCurve::updateEnvelop() {
    envelop = envelopOf(controlPoints.data(), static_cast<int>(controlPoints.size()));
}

void JWBezierCurve::queryFromPoint(JWRawPoint& p) const {
    if (!isEmpty()) p = controlPoints.front();
}

void JWBezierCurve::queryToPoint(JWRawPoint& p) const {
    if (!isEmpty()) p = controlPoints.back();
}

void JWBezierCurve::setFromPoint(const JWRawPoint& p) {
    if (!isEmpty()) controlPoints.front() = p;
}

void JWBezierCurve::setToPoint(const JWRawPoint& p) {
    if (!isEmpty()) controlPoints.back() = p;
}

void JWBezierCurve::reverseOrientation() {
    std::reverse(controlPoints.begin(), controlPoints.end());
}

double JWBezierCurve::getLength() const {
    const int degree = static_cast<int>(controlPoints.size()) - 1;
    if (degree < 1) return 0.0;
    std::vector<JWRawPoint> hodograph(degree);
    double polygonLength = 0.0;
    for (int i = 0; i < degree; ++i) {
        hodograph[i].set(degree * (controlPoints[i + 1].x - controlPoints[i].x),
                         degree * (controlPoints[i + 1].y - controlPoints[i].y));
        polygonLength += pointDistance(controlPoints[i], controlPoints[i + 1]);
    }
    const auto speed = [&](double t) {
        const JWRawPoint d = evaluate(hodograph.data(), degree - 1, t);
        return length(d);
    };
    return integrate(speed, degree, polygonLength);
}

JWRawPoint JWBezierCurve::getPointAt(double t) const {
    if (isEmpty()) return {std::nan(""), std::nan("")};
    return evaluate(controlPoints.data(), static_cast<int>(controlPoints.size()) - 1, t);
}

std::vector<JWRawPoint> JWBezierCurve::samplePoints(int steps) const {
    std::vector<JWRawPoint> points;
    if (isEmpty() || steps < 1 || steps >= static_cast<int>(kMostMadePoints)) {
        return points;
    }
    guarded("samplePoints", false, [&] {
        points.resize(static_cast<std::size_t>(steps) + 1);
        for (int k = 0; k <= steps; ++k) points[k] = getPointAt(double(k) / steps);
        return true;
    });
    return points;
}

JWLineString* JWBezierCurve::makeBezierCurve(const JWLineString* line, int degree,
                                             int steps) const {
    if (line == nullptr) return nullptr;
    return guarded("makeBezierCurve", static_cast<JWLineString*>(nullptr), [&] {
        std::vector<JWRawPoint> points;
        const bool smoothed = smoothPoints(line->getPointList(), degree, steps, points);
        if (!smoothed) points = line->getPointList();
        return new JWLineString(std::move(points));
    });
}

bool JWBezierCurve::smoothPoints(const std::vector<JWRawPoint>& points, int degree, int steps,
                                 std::vector<JWRawPoint>& result) const {
    if (points.size() < 2 || degree < 1 || steps < 1) return false;
    const std::size_t segments = points.size() - 1;
    const std::size_t d = std::min(degree, kMaxDegree);
    const std::size_t whole = segments / d, remainder = segments % d;
    const std::size_t pieces = whole + (remainder != 0 ? 1 : 0);
    if (pieces > (kMostMadePoints - 1) / steps) {
        return refused("makeBezierCurve", "the curve would have more than 134217727 points") != 0;
    }
    std::vector<JWRawPoint> curve;
    std::vector<double> weights;
    const bool room = guarded("smoothPoints", false, [&] {
        curve.resize(pieces * steps + 1);
        weights.resize(d + 1);
        return true;
    });
    if (!room) return false;
    // The weights of step k are the same for all whole pieces: computed once, applied to each.
    const auto weightOf = [&](std::size_t i) { return weights[i]; };
    const auto fill = [&](std::size_t firstPiece, std::size_t lastPiece, std::size_t n) {
        for (int k = 1; k < steps; ++k) {
            for (std::size_t i = 0; i <= n; ++i) {
                weights[i] = bernstein(int(n), int(i), double(k) / steps);
            }
            for (std::size_t piece = firstPiece; piece < lastPiece; ++piece) {
                curve[piece * steps + k] = weighted(&points[piece * d], n, weightOf);
            }
        }
        for (std::size_t piece = firstPiece; piece < lastPiece; ++piece) {
            curve[piece * steps] = points[piece * d];
            curve[(piece + 1) * steps] = points[piece * d + n];
        }
    };
    fill(0, whole, d);
    if (remainder != 0) fill(whole, pieces, remainder);
    result = std::move(curve);
    return true;
}

double JWBezierCurve::bernstein(int degree, int k, double t) const {
    const double binomial = factorials[degree] / (factorials[k] * factorials[degree - k]);
    return binomial * std::pow(t, k) * std::pow(1.0 - t, degree - k);
}

JWRawPoint JWBezierCurve::evaluate(const JWRawPoint* points, int degree, double t) const {
    if (t <= 0.0) return points[0];
    if (t >= 1.0) return points[degree];
    return weighted(points, static_cast<std::size_t>(degree),
                    [&](std::size_t k) { return bernstein(degree, static_cast<int>(k), t); });
}

}  // namespace jws
