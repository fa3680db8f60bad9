// SPDX-License-Identifier: MIT
//
// Points, segments, angles, great circles and the ellipsoidal quadrangle; the tests and centroids
// of rings and lines are in jw_cpgeometrybasic_ring.cpp. The arithmetic itself is in
// segment_math.h: here it gets its null answers.
//
// The arguments of the arc cosine are quotients and sums that rounding can carry just beyond 1
// (two equal points at latitude 8 degrees give 1.0000000000000002): they are clamped.
#include "jw_cpgeometrybasic.h"

#include <cmath>

#include "foundation/segment_math.h"

namespace jws {

using namespace detail;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kEarthRadiusKilometres = 6371.009;

double clampedAcos(double cosine) {
    if (cosine > 1) return 0;
    if (cosine < -1) return kPi;
    return std::acos(cosine);
}

double radians(double degrees) { return degrees * kPi / 180; }

template <class... Pointers>
bool anyNull(const Pointers*... pointers) {
    return (... || (pointers == nullptr));
}

}  // namespace

JWCPGeometryBasic::JWCPGeometryBasic() = default;
JWCPGeometryBasic::JWCPGeometryBasic(const JWCPGeometryBasic&) = default;
JWCPGeometryBasic& JWCPGeometryBasic::operator=(const JWCPGeometryBasic&) = default;
JWCPGeometryBasic::~JWCPGeometryBasic() = default;

double JWCPGeometryBasic::twoPointsDistance(const JWRawPoint* a, const JWRawPoint* b) {
    return anyNull(a, b) ? -1.0 : pointDistance(*a, *b);
}

double JWCPGeometryBasic::twoPointsGreateCircle1(const JWRawPoint* a, const JWRawPoint* b) {
    if (anyNull(a, b)) return -1.0;
    const double phiA = radians(a->y), phiB = radians(b->y);
    return kEarthRadiusKilometres *
           clampedAcos(std::sin(phiA) * std::sin(phiB) +
                       std::cos(phiA) * std::cos(phiB) * std::cos(radians(a->x) - radians(b->x)));
}

double JWCPGeometryBasic::twoPointsGreateCircle2(const JWRawPoint* a, const JWRawPoint* b) {
    if (anyNull(a, b)) return 9999.0;
    const double sinA = std::sin(radians(a->y)), cosA = std::cos(radians(a->y));
    const double sinB = std::sin(radians(b->y)), cosB = std::cos(radians(b->y));
    const double lambda = radians(b->x) - radians(a->x);
    const double along = cosB * std::sin(lambda);
    const double across = cosA * sinB - sinA * cosB * std::cos(lambda);
    return kEarthRadiusKilometres * std::atan2(std::sqrt(along * along + across * across),
                                               sinA * sinB + cosA * cosB * std::cos(lambda));
}

double JWCPGeometryBasic::pointSegmentDistance(const JWRawPoint* p, const JWRawPoint* a,
                                               const JWRawPoint* b) {
    return anyNull(p, a, b) ? -1.0 : segmentDistance(*p, *a, *b);
}

double JWCPGeometryBasic::pointLineDistance(const JWRawPoint* p, const JWRawPoint* a,
                                            const JWRawPoint* b) {
    return anyNull(p, a, b) ? -1.0 : lineDistance(*p, *a, *b);
}

double JWCPGeometryBasic::pointRayDistance(const JWRawPoint* p, const JWRawPoint* a,
                                           const JWRawPoint* b) {
    return anyNull(p, a, b) ? -1.0 : rayDistance(*p, *a, *b);
}

double JWCPGeometryBasic::triangleArea(const JWRawPoint* a, const JWRawPoint* b,
                                       const JWRawPoint* c) {
    return anyNull(a, b, c) ? 0.0 : signedTriangleArea(*a, *b, *c);
}

// The series in odd multiples of the latitude is the usual one for the area of a quadrangle on the
// ellipsoid; radians are made with the single-precision value of pi.
double JWCPGeometryBasic::TrapezoidAreaWGS84(const double& x1, const double& y1, const double& x2,
                                             const double& y2) {
    constexpr double kSinglePrecisionPi = 3.1415927410125732;
    constexpr double kTwiceSemiMinorSquared = 80816604692512.5;
    constexpr double kCoefficients[] = {1.000022407726242, -7.4693678288959235e-06,
                                        7.531649483068183e-11, -8.036447916034191e-16,
                                        8.75266495777343e-21};
    const auto toRadians = [](double degrees) { return degrees * kSinglePrecisionPi / 180; };
    const double phi1 = toRadians(y1), phi2 = toRadians(y2);
    const double lambda = toRadians(x2) - toRadians(x1);
    const double phi = phi2 - phi1;
    const double middle = (phi1 + phi2) / 2;
    double sum = 0;
    int k = 1;
    for (const double coefficient : kCoefficients) {
        sum += coefficient * std::sin(k * phi / 2) * std::cos(k * middle);
        k += 2;
    }
    return lambda * kTwiceSemiMinorSquared * sum;
}

int JWCPGeometryBasic::isPointLeftOfLine(const JWRawPoint* p, const JWRawPoint* a,
                                         const JWRawPoint* b, const double& tol) {
    if (anyNull(p, a, b)) return -2;
    if (withinTolerance(lineDistance(*p, *a, *b), tol)) return 0;
    const double area = signedTriangleArea(*a, *b, *p);
    if (area > 0) return 1;
    return area < 0 ? -1 : -2;
}

int JWCPGeometryBasic::threePointsCollinear(const JWRawPoint* p, const JWRawPoint* a,
                                            const JWRawPoint* b, const double& tol) {
    return anyNull(p, a, b) ? -2 : withinTolerance(lineDistance(*p, *a, *b), tol);
}

int JWCPGeometryBasic::isPointOnLine(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                                     const double& tol) {
    return threePointsCollinear(p, a, b, tol);
}

int JWCPGeometryBasic::isPointOnSegment(const JWRawPoint* p, const JWRawPoint* a,
                                        const JWRawPoint* b, const double& tol) {
    return anyNull(p, a, b) ? -2 : pointNearSegment(*p, *a, *b, tol);
}

int JWCPGeometryBasic::isPointOnRay(const JWRawPoint* p, const JWRawPoint* a, const JWRawPoint* b,
                                    const double& tol) {
    return anyNull(p, a, b) ? -2 : withinTolerance(rayDistance(*p, *a, *b), tol);
}

int JWCPGeometryBasic::isPointWithinEnvelop(const JWRawPoint* p, const JWEnvelop* envelop) {
    if (p == nullptr || envelop == nullptr) return -2;
    return envelop->contains(*p);
}

double JWCPGeometryBasic::threePointsIncludedAngle(const JWRawPoint* p1, const JWRawPoint* vertex,
                                                   const JWRawPoint* p2) {
    if (anyNull(p1, vertex, p2)) return -1.0;
    const JWRawPoint u = difference(*p1, *vertex), v = difference(*p2, *vertex);
    const double lengths = length(u) * length(v);
    return lengths == 0 ? 0.0 : clampedAcos(dot(u, v) / lengths);
}

double JWCPGeometryBasic::segmentXAxisAngle(const JWRawPoint* a, const JWRawPoint* b) {
    if (anyNull(a, b)) return 9999.0;
    if (*a == *b) return 0;
    JWRawPoint d = difference(*b, *a);
    if (length(d) == 0) {  // the squares underflow: only the ratio matters
        const double scale = std::fmax(std::fabs(d.x), std::fabs(d.y));
        d.set(d.x / scale, d.y / scale);
    }
    const double angle = clampedAcos(d.x / length(d));
    return d.y >= 0 ? angle : kTwoPi - angle;
}

int JWCPGeometryBasic::segmentIntersect(const JWRawPoint* a0, const JWRawPoint* a1,
                                        const JWRawPoint* b0, const JWRawPoint* b1, JWRawPoint* I0,
                                        JWRawPoint* I1) {
    if (anyNull(a0, a1, b0, b1, I0, I1)) return -3;
    JWRawPoint first(0, 0), second(0, 0);  // an output may be one of the arguments
    const SegmentRelation code = intersectSegments(*a0, *a1, *b0, *b1, first, second);
    if (code != kApart && code != kParallel && code != kCollinearApart) *I0 = first;
    if (code == kOverlap || code == kPointsDiffer) *I1 = second;
    return code;
}

bool JWCPGeometryBasic::isClockWise(const JWRawPoint* a, const JWRawPoint* b, const JWRawPoint* c) {
    return !anyNull(a, b, c) && turnsClockwise(*a, *b, *c);
}

bool JWCPGeometryBasic::isSegmentsIntersect(const JWRawPoint* a0, const JWRawPoint* a1,
                                            const JWRawPoint* b0, const JWRawPoint* b1) {
    return !anyNull(a0, a1, b0, b1) && segmentsCross(*a0, *a1, *b0, *b1);
}

}  // namespace jws
