// SPDX-License-Identifier: MIT
//
// Circular and elliptic arcs.
//
// An arc is centre + u·cos t + v·sin t with u and v conjugate half-diameters of its ellipse: affine
// maps act on u and v alone, so any scaling of a circle is exact. Its half-axes follow from the
// lengths p = |u + w| and q = |u − w|, w being v turned clockwise by a right angle: (p + q)/2 and
// |p − q|/2, without the cancellation of the usual formula for near-circles.
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "foundation/plane_map.h"
#include "foundation/quadrature.h"
#include "foundation/segment_math.h"
#include "jw_geometry_arc.h"

namespace jws {

using namespace detail;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kPi = 3.14159265358979323846;

/// Extends [low, high] by the places of c + a·cos t + b·sin t where it is largest or smallest, for
/// t from `from` to `to`.
void includeExtremes(double c, double a, double b, double from, double to, double& low,
                     double& high) {
    const double reach = length({a, b});
    const bool whole = to - from >= 2.0 * kPi;
    const double top = std::atan2(b, a);
    const auto passes = [&](double t) {
        return whole || t + 2.0 * kPi * std::ceil((from - t) / (2.0 * kPi)) <= to;
    };
    if (passes(top)) high = std::max(high, c + reach);
    if (passes(top + kPi)) low = std::min(low, c - reach);
}

}  // namespace

JWArc::JWArc(const JWRawPoint& center_, const JWRawPoint& u_, const JWRawPoint& v_, double start_,
             double sweep_)
    : center(center_), u(u_), v(v_), start(start_), sweep(sweep_) {
    refreshEnds();
    JWArc::updateEnvelop();
}

bool JWArc::isEmpty() const { return std::isnan(center.x) && std::isnan(center.y); }

void JWArc::setEmpty() {
    center.set(kNaN, kNaN);
    u.set(0, 0);
    v.set(0, 0);
    start = sweep = 0.0;
    refreshEnds();
    envelop.setInvalid();
}

void JWArc::move(double dx, double dy) {
    center.move(dx, dy);
    refreshEnds();
    updateEnvelop();
}

void JWArc::scale(const JWRawPoint& about, double sx, double sy) {
    const Scaling map(about, sx, sy);
    center = map(center);
    u = map.vector(u);
    v = map.vector(v);
    refreshEnds();
    updateEnvelop();
}

void JWArc::rotate(const JWRawPoint& about, double angle) {
    const Rotation map(about, angle);
    center = map(center);
    u = map.vector(u);
    v = map.vector(v);
    refreshEnds();
    updateEnvelop();
}

void JWArc::updateEnvelop() {
    const JWRawPoint ends[2] = {fromPoint, toPoint};
    envelop = envelopOf(ends, 2);
    if (!envelop.isValid() || !std::isfinite(start) || !std::isfinite(sweep)) return;
    const double from = std::min(start, start + sweep), to = std::max(start, start + sweep);
    includeExtremes(center.x, u.x, v.x, from, to, envelop.minX, envelop.maxX);
    includeExtremes(center.y, u.y, v.y, from, to, envelop.minY, envelop.maxY);
}

void JWArc::queryFromPoint(JWRawPoint& p) const {
    if (!isEmpty()) p = fromPoint;
}

void JWArc::queryToPoint(JWRawPoint& p) const {
    if (!isEmpty()) p = toPoint;
}

void JWArc::setFromPoint(const JWRawPoint& p) {
    double t;
    if (parameterOf(p, t)) setSweepEnds(t, start + sweep);
}

void JWArc::setToPoint(const JWRawPoint& p) {
    double t;
    if (parameterOf(p, t)) setSweepEnds(start, t);
}

void JWArc::reverseOrientation() {
    start += sweep;
    sweep = -sweep;
    std::swap(fromPoint, toPoint);
}

double JWArc::getLength() const {
    if (isEmpty()) return 0.0;
    double major, minor;
    axes(major, minor);
    if (major == minor) return major * std::fabs(sweep);
    const auto speedAt = [this](double t) {
        const double c = std::cos(t), s = std::sin(t);
        return length({v.x * c - u.x * s, v.y * c - u.y * s});
    };
    const double turns = std::floor(std::fabs(sweep) / (2.0 * kPi));
    const double rest = std::fabs(sweep) - turns * 2.0 * kPi;
    const double sense = sweep < 0.0 ? -1.0 : 1.0;
    const auto overRest = [&](double f) { return rest * speedAt(start + sense * f * rest); };
    const auto overTurn = [&](double f) { return 2.0 * kPi * speedAt(2.0 * kPi * f); };
    return (turns > 0.0 ? turns * integrate(overTurn, 8, major) : 0.0) +
           integrate(overRest, 8, major);
}

JWRawPoint JWArc::getPointAlong(double fraction) const { return pointAt(start + fraction * sweep); }

void JWArc::axes(double& major, double& minor) const {
    const double p = length({u.x + v.y, u.y - v.x}), q = length({u.x - v.y, u.y + v.x});
    major = 0.5 * (p + q);
    minor = 0.5 * std::fabs(p - q);
}

JWRawPoint JWArc::pointAt(double t) const {
    const double c = std::cos(t), s = std::sin(t);
    return {center.x + u.x * c + v.x * s, center.y + u.y * c + v.y * s};
}

void JWArc::refreshEnds() {
    fromPoint = pointAt(start);
    toPoint = pointAt(start + sweep);
}

void JWArc::setSweepEnds(double from, double to) {
    const double sense = sweep < 0.0 ? -1.0 : 1.0;
    double turn = std::fmod(sense * (to - from), 2.0 * kPi);
    if (turn <= 0.0) turn += 2.0 * kPi;
    start = from;
    sweep = sense * turn;
    refreshEnds();
}

bool JWArc::parameterOf(const JWRawPoint& p, double& t) const {
    const double dx = p.x - center.x, dy = p.y - center.y;
    const double cross = u.x * v.y - u.y * v.x;
    const double alpha = (dx * v.y - dy * v.x) / cross, beta = (u.x * dy - u.y * dx) / cross;
    t = std::atan2(beta, alpha);
    return std::isfinite(t) && cross != 0.0 && (alpha != 0.0 || beta != 0.0);
}

double JWCircular::getRadius() const {
    double major, minor;
    axes(major, minor);
    return major;
}

JWElliptic::JWElliptic(const JWRawPoint& center_, double a, double b, double rotation,
                       double startAngle, double sweepAngle)
    : JWArc(center_, JWRawPoint(a * std::cos(rotation), a * std::sin(rotation)),
            JWRawPoint(-b * std::sin(rotation), b * std::cos(rotation)), startAngle, sweepAngle) {}

double JWElliptic::getSemiMajorAxis() const {
    double major, minor;
    axes(major, minor);
    return major;
}

double JWElliptic::getSemiMinorAxis() const {
    double major, minor;
    axes(major, minor);
    return minor;
}

}  // namespace jws
