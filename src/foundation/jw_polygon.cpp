// SPDX-License-Identifier: MIT
//
// The polygon: its rings, one after the other.
#include <cmath>
#include <iterator>

#include "jw_geometry_polygon.h"

namespace jws {

namespace {

/// The rectangle of the rings, whose own are up to date.
JWEnvelop gathered(const std::vector<JWRing>& rings) {
    JWEnvelop all = JWEnvelop::invalid();
    for (const JWRing& ring : rings) all.inflates_to_contain(ring.getEnvelop());
    return all;
}

}  // namespace

JWPolygon::JWPolygon(JWRing exterior) : envelop(JWEnvelop::invalid()) {
    ringList.push_back(std::move(exterior));
    updateEnvelop();
}

void JWPolygon::setEmpty() {
    ringList.clear();
    envelop.setInvalid();
}

void JWPolygon::geoNormalize() {
    for (std::size_t i = 0; i < ringList.size(); ++i) {
        ringList[i].geoNormalize();
        if (i > 0 && ringList[i].getOrientation() == JWRingCounterClockwise) {
            ringList[i].reverseOrientation();
        }
    }
    envelop = gathered(ringList);
}

void JWPolygon::move(double dx, double dy) {
    for (JWRing& ring : ringList) ring.move(dx, dy);
    envelop = gathered(ringList);
}

void JWPolygon::scale(const JWRawPoint& center, double sx, double sy) {
    const JWRawPoint about = center;
    for (JWRing& ring : ringList) ring.scale(about, sx, sy);
    envelop = gathered(ringList);
}

void JWPolygon::rotate(const JWRawPoint& center, double angle) {
    const JWRawPoint about = center;
    for (JWRing& ring : ringList) ring.rotate(about, angle);
    envelop = gathered(ringList);
}

void JWPolygon::updateEnvelop() {
    for (JWRing& ring : ringList) ring.updateEnvelop();
    envelop = gathered(ringList);
}

const JWRawPoint* JWPolygon::getFromPointPtr() const {
    return ringList.empty() ? nullptr : ringList.front().getFromPointPtr();
}

const JWRawPoint* JWPolygon::getToPointPtr() const {
    return ringList.empty() ? nullptr : ringList.front().getToPointPtr();
}

void JWPolygon::queryFromPoint(JWRawPoint& p) const {
    if (!ringList.empty()) ringList.front().queryFromPoint(p);
}

void JWPolygon::queryToPoint(JWRawPoint& p) const {
    if (!ringList.empty()) ringList.front().queryToPoint(p);
}

void JWPolygon::setFromPoint(const JWRawPoint& p) {
    if (!ringList.empty()) ringList.front().setFromPoint(p);
}

void JWPolygon::setToPoint(const JWRawPoint& p) {
    if (!ringList.empty()) ringList.front().setToPoint(p);
}

void JWPolygon::reverseOrientation() {
    for (JWRing& ring : ringList) ring.reverseOrientation();
}

double JWPolygon::getLength() const {
    double length = 0.0;
    for (const JWRing& ring : ringList) length += ring.getLength();
    return length;
}

bool JWPolygon::generalizeByDouglasPoiker(double tolerance) {
    bool changed = false;
    for (JWRing& ring : ringList) changed = ring.generalizeByDouglasPoiker(tolerance) || changed;
    if (changed) updateEnvelop();
    return changed;
}

bool JWPolygon::soomthByBeizer(int degree, int steps) {
    bool changed = false;
    for (JWRing& ring : ringList) changed = ring.soomthByBeizer(degree, steps) || changed;
    if (changed) updateEnvelop();
    return changed;
}

bool JWPolygon::splitAtPoint(const JWRawPoint&, JWPolyCurve** first, JWPolyCurve** second) const {
    if (first != nullptr) *first = nullptr;
    if (second != nullptr) *second = nullptr;
    return false;
}

bool JWPolygon::splitAtDistance(double, JWPolyCurve** first, JWPolyCurve** second) const {
    if (first != nullptr) *first = nullptr;
    if (second != nullptr) *second = nullptr;
    return false;
}

double JWPolygon::getArea() const {
    double area = 0.0;
    for (std::size_t i = 0; i < ringList.size(); ++i) {
        const double ring = std::fabs(ringList[i].getArea());
        area = i == 0 ? ring : area - ring;
    }
    return area;
}

void JWPolygon::addRings(std::vector<JWRing>&& rings) {
    if (&rings == &ringList) return insertRingsAt(rings, getRingCount());
    if (ringList.empty()) {
        ringList = std::move(rings);
        return;
    }
    ringList.insert(ringList.end(), std::make_move_iterator(rings.begin()),
                    std::make_move_iterator(rings.end()));
    rings.clear();
}

void JWPolygon::insertRingsAt(const std::vector<JWRing>& rings, int atLocation) {
    assert(atLocation >= 0 && atLocation <= getRingCount());
    if (&rings == &ringList) {
        const std::vector<JWRing> copy = rings;
        ringList.insert(ringList.begin() + atLocation, copy.begin(), copy.end());
        return;
    }
    ringList.insert(ringList.begin() + atLocation, rings.begin(), rings.end());
}

}  // namespace jws
