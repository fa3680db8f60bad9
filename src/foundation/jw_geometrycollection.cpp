// SPDX-License-Identifier: MIT
//
// The collections: what all do member by member, and the bag's ownership.
#include <algorithm>

#include "jw_geometry_collection.h"

namespace jws {

namespace {

template <class Action>
void forEachMember(JWGeometryCollection& collection, const Action& action) {
    JWEnvelop all = JWEnvelop::invalid();
    const int n = collection.getGeometryCount();
    for (int i = 0; i < n; ++i) {
        JWGeometry* member = collection.getGeometryPtrAt(i);
        action(*member);
        all.inflates_to_contain(member->getEnvelop());
    }
    collection.setEnvelop(all);
}

}  // namespace

void JWGeometryCollection::geoNormalize() {
    forEachMember(*this, [](JWGeometry& g) {
        g.geoNormalize();
        g.updateEnvelop();
    });
}

void JWGeometryCollection::move(double dx, double dy) {
    forEachMember(*this, [&](JWGeometry& g) { g.move(dx, dy); });
}

void JWGeometryCollection::scale(const JWRawPoint& center, double sx, double sy) {
    const JWRawPoint about = center;
    forEachMember(*this, [&](JWGeometry& g) { g.scale(about, sx, sy); });
}

void JWGeometryCollection::rotate(const JWRawPoint& center, double angle) {
    const JWRawPoint about = center;
    forEachMember(*this, [&](JWGeometry& g) { g.rotate(about, angle); });
}

void JWGeometryCollection::updateEnvelop() {
    forEachMember(*this, [](JWGeometry& g) { g.updateEnvelop(); });
}

JWMultiPoint* JWMultiPoint::clone() const { return new JWMultiPoint(*this); }

void JWMultiPoint::addPoints(const JWRawPoint* points, int n) {
    if (points == nullptr || n <= 0) return;
    const std::size_t needed = memberList.size() + n;
    if (needed > memberList.capacity()) {
        memberList.reserve(std::max(needed, 2 * memberList.capacity()));
    }
    for (int i = 0; i < n; ++i) memberList.emplace_back(points[i].x, points[i].y);
}

bool JWMultiPoint::isContained(const JWPoint& p) const {
    return std::find(memberList.begin(), memberList.end(), p) != memberList.end();
}

JWMultiLineString* JWMultiLineString::clone() const { return new JWMultiLineString(*this); }

double JWMultiLineString::getLength() const {
    double length = 0.0;
    for (const JWLineString& line : memberList) length += line.getLength();
    return length;
}

JWMultiPolygon* JWMultiPolygon::clone() const { return new JWMultiPolygon(*this); }

int JWMultiPolygon::getRingCount() const {
    int count = 0;
    for (const JWPolygon& polygon : memberList) count += polygon.getRingCount();
    return count;
}

double JWMultiPolygon::getArea() const {
    double area = 0.0;
    for (const JWPolygon& polygon : memberList) area += polygon.getArea();
    return area;
}

double JWMultiPolygon::getLength() const {
    double length = 0.0;
    for (const JWPolygon& polygon : memberList) length += polygon.getLength();
    return length;
}

JWGeometryBag::JWGeometryBag(const JWGeometryBag& o) : JWGeometryCollection(o), envelop(o.envelop) {
    geometryList.reserve(o.geometryList.size());
    for (const auto& member : o.geometryList) geometryList.emplace_back(member->clone());
}

JWGeometryBag& JWGeometryBag::operator=(const JWGeometryBag& o) {
    if (this != &o) *this = JWGeometryBag(o);
    return *this;
}

JWGeometryBag& JWGeometryBag::operator=(JWGeometryBag&& o) noexcept {
    const JWEnvelop taken = o.envelop;  // o may go with the members that are replaced
    geometryList = std::vector<std::unique_ptr<JWGeometry>>(std::move(o.geometryList));
    envelop = taken;
    return *this;
}

void JWGeometryBag::setEmpty() {
    geometryList.clear();
    envelop.setInvalid();
}

bool JWGeometryBag::addGeometry(const JWGeometry* geometry) {
    return geometry != nullptr && addGeometry(std::unique_ptr<JWGeometry>(geometry->clone()));
}

bool JWGeometryBag::addGeometry(std::unique_ptr<JWGeometry> geometry) {
    if (geometry == nullptr) return false;
    geometryList.push_back(std::move(geometry));
    return true;
}

bool JWGeometryBag::insertGeometryAt(const JWGeometry* geometry, int atLocation) {
    assert(atLocation >= 0 && atLocation <= getGeometryCount());
    if (geometry == nullptr) return false;
    std::unique_ptr<JWGeometry> copy(geometry->clone());
    geometryList.insert(geometryList.begin() + atLocation, std::move(copy));
    return true;
}

bool JWGeometryBag::updateGeometryAt(const JWGeometry* geometry, int atLocation) {
    assert(atLocation >= 0 && atLocation < getGeometryCount());
    if (geometry == nullptr) return false;
    geometryList[atLocation].reset(geometry->clone());
    return true;
}

void JWGeometryBag::deleteGeometryAt(int atLocation) {
    assert(atLocation >= 0 && atLocation < getGeometryCount());
    geometryList.erase(geometryList.begin() + atLocation);
}

std::unique_ptr<JWGeometry> JWGeometryBag::releaseGeometryAt(int atLocation) {
    assert(atLocation >= 0 && atLocation < getGeometryCount());
    std::unique_ptr<JWGeometry> member = std::move(geometryList[atLocation]);
    geometryList.erase(geometryList.begin() + atLocation);
    return member;
}

}  // namespace jws
