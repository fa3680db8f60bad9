// SPDX-License-Identifier: MIT
#include "jw_hull.h"

#include "analysis/hull.h"
#include "analysis/point_runs.h"
#include "foundation/api_guard.h"

namespace jws {

using namespace detail;

namespace {

/// The one body of all forms.
template <class Vector>
bool hullOf(const char* function, const Vector* points, int n, JWRing* ring) {
    if (points == nullptr || n < 3 || ring == nullptr) return false;
    return guarded(function, false, [&] {
        const PointRuns runs(*points, n);
        std::vector<JWRawPoint> hull = convexHull(runs);
        // Three points must form a triangle; more may lie on one line.
        if (hull.empty() || (n == 3 && hull.size() < 4)) return false;
        *ring = JWRing(std::move(hull));
        return true;
    });
}

}  // namespace

JWHull::JWHull() = default;
JWHull::~JWHull() = default;
JWHull& JWHull::operator=(const JWHull&) = default;

bool JWHull::create2DHull(const std::vector<JWRawPoint*>* points, int n, JWRing* ring) {
    return hullOf("create2DHull", points, n, ring);
}

bool JWHull::create2DHull(const std::vector<JWPoint*>* points, int n, JWRing* ring) {
    return hullOf("create2DHull", points, n, ring);
}

bool JWHull::create2DHull_AM(const std::vector<JWRawPoint>* points, int n, JWRing* ring) {
    return hullOf("create2DHull_AM", points, n, ring);
}

bool JWHull::create2DHull(const std::vector<JWRawPoint*>& points, int n, JWRing* ring) {
    return create2DHull(&points, n, ring);
}

bool JWHull::create2DHull(const std::vector<JWPoint*>& points, int n, JWRing* ring) {
    return create2DHull(&points, n, ring);
}

bool JWHull::create2DHull_AM(const std::vector<JWRawPoint>& points, int n, JWRing* ring) {
    return create2DHull_AM(&points, n, ring);
}

// --- Order and turn ------------------------------------------------------------------------------

int JWHull::cmpPoints1(const JWRawPoint* a, const JWRawPoint* b) { return cmpPoints(*a, *b); }

int JWHull::cmpPoints2(const JWPoint* a, const JWPoint* b) {
    return cmpPoints(a->getRawPoint(), b->getRawPoint());
}

bool JWHull::rightTurn1(const JWRawPoint* a, const JWRawPoint* b, const JWRawPoint* c) {
    return isLeft(*a, *b, *c) <= 0;
}

bool JWHull::rightTurn2(const JWPoint* a, const JWPoint* b, const JWPoint* c) {
    return isLeft(a->getRawPoint(), b->getRawPoint(), c->getRawPoint()) <= 0;
}

}  // namespace jws
