// SPDX-License-Identifier: MIT
#ifndef JW_GEOMETRY_POLYGON_H
#define JW_GEOMETRY_POLYGON_H

#include <cassert>
#include <utility>
#include <vector>

#include "jw_geometry_curve.h"

namespace jws {

/// A polygon: a list of rings held by value, ring 0 exterior, the others interior. Which ring is
/// which is a matter of position alone; direction does not count. List edits leave the polygon's
/// envelope stale; ring pointers stay valid until the list is next changed.
///
/// As a curve it is its exterior ring: from- and to-point are that ring's.
class JW_API JWPolygon : public JWPolyCurve {
  public:
    JWPolygon() : envelop(JWEnvelop::invalid()) {}
    /// Takes the exterior ring over; the envelope is up to date.
    explicit JWPolygon(JWRing exterior);

    enumJWGeometryType getGeometryType() const override { return JWGeometryPolygon; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBPolygon; }
    bool isEmpty() const override { return ringList.empty(); }
    JWEnvelop getEnvelop() const override { return envelop; }
    void setEnvelop(const JWEnvelop& e) override { envelop = e; }
    void setEmpty() override;
    void geoNormalize() override;
    void move(double dx, double dy) override;
    void scale(const JWRawPoint& center, double sx, double sy) override;
    void rotate(const JWRawPoint& center, double angle) override;
    JWPolygon* clone() const override { return new JWPolygon(*this); }
    /// Updates every ring, then stores the rectangle of them all.
    void updateEnvelop() override;

    const JWRawPoint* getFromPointPtr() const override;
    const JWRawPoint* getToPointPtr() const override;
    void queryFromPoint(JWRawPoint& p) const override;
    void queryToPoint(JWRawPoint& p) const override;
    void setFromPoint(const JWRawPoint& p) override;
    void setToPoint(const JWRawPoint& p) override;
    /// Reverses every ring.
    void reverseOrientation() override;
    bool isClosed() const override { return true; }
    /// Returns the length of all rings together.
    double getLength() const override;
    bool generalizeByDouglasPoiker(double tolerance) override;
    bool soomthByBeizer(int degree, int steps) override;
    /// Always false: a polygon has no single course to cut.
    bool splitAtPoint(const JWRawPoint& p, JWPolyCurve** first,
                      JWPolyCurve** second) const override;
    /// Always false.
    bool splitAtDistance(double distance, JWPolyCurve** first, JWPolyCurve** second) const override;
    /// Returns |exterior| minus the sum of |interior|, whatever the directions; 0 when empty.
    double getArea() const override;

    int getRingCount() const { return static_cast<int>(ringList.size()); }
    const JWRing& getRingAt(int atLocation) const { return *getRingPtrAt(atLocation); }
    JWRing* getRingPtrAt(int atLocation) {
        assert(atLocation >= 0 && atLocation < getRingCount());
        return ringList.data() + atLocation;
    }
    const JWRing* getRingPtrAt(int atLocation) const {
        assert(atLocation >= 0 && atLocation < getRingCount());
        return ringList.data() + atLocation;
    }
    /// Copies ring `atLocation` into `r`.
    void queryRingAt(JWRing& r, int atLocation) const { r = *getRingPtrAt(atLocation); }
    /// Returns ring 0, which must exist.
    const JWRing& getExteriorRing() const { return getRingAt(0); }
    /// Returns ring 0, null when there is none.
    JWRing* getExteriorRingPtr() { return ringList.empty() ? nullptr : ringList.data(); }
    const JWRing* getExteriorRingPtr() const {
        return ringList.empty() ? nullptr : ringList.data();
    }
    /// Returns ring `atLocation` + 1.
    const JWRing& getInteriorRingAt(int atLocation) const {
        return *getInteriorRingPtrAt(atLocation);
    }
    JWRing* getInteriorRingPtrAt(int atLocation) {
        assert(atLocation >= 0 && atLocation < getRingCount() - 1);
        return ringList.data() + atLocation + 1;
    }
    const JWRing* getInteriorRingPtrAt(int atLocation) const {
        assert(atLocation >= 0 && atLocation < getRingCount() - 1);
        return ringList.data() + atLocation + 1;
    }
    const std::vector<JWRing>& getRingList() const { return ringList; }
    std::vector<JWRing>& getRingList() { return ringList; }

    /// Appends a copy; the ring may be one of this polygon.
    void addRing(const JWRing& ring) { ringList.push_back(ring); }
    void addRing(JWRing&& ring) { ringList.push_back(std::move(ring)); }
    /// Appends copies; the list may be this polygon's own.
    void addRings(const std::vector<JWRing>& rings) { insertRingsAt(rings, getRingCount()); }
    void addRings(std::vector<JWRing>&& rings);
    /// Makes room for `n` rings in all.
    void reserve(int n) {
        if (n > 0) ringList.reserve(n);
    }
    /// Inserts before ring `atLocation`, which may be the ring count.
    void insertRingAt(const JWRing& ring, int atLocation) {
        insertRingAt(JWRing(ring), atLocation);
    }
    void insertRingAt(JWRing&& ring, int atLocation) {
        assert(atLocation >= 0 && atLocation <= getRingCount());
        ringList.insert(ringList.begin() + atLocation, std::move(ring));
    }
    void insertRingsAt(const std::vector<JWRing>& rings, int atLocation);
    void updateRingAt(const JWRing& ring, int atLocation) { *getRingPtrAt(atLocation) = ring; }
    void updateRingAt(JWRing&& ring, int atLocation) {
        *getRingPtrAt(atLocation) = std::move(ring);
    }
    void deleteRingAt(int atLocation) {
        assert(atLocation >= 0 && atLocation < getRingCount());
        ringList.erase(ringList.begin() + atLocation);
    }
    /// Removes all rings; the envelope becomes stale.
    void clearAllRings() { ringList.clear(); }
    /// Reverses one ring.
    void reverseOrientationAt(int atLocation) { getRingPtrAt(atLocation)->reverseOrientation(); }
    enumJWRingOrientation getOrientationAt(int atLocation) const {
        return getRingPtrAt(atLocation)->getOrientation();
    }
    /// Returns the signed area of one ring.
    double getAreaAt(int atLocation) const { return getRingPtrAt(atLocation)->getArea(); }

    /// True when the rings are exactly equal, in the same order.
    bool operator==(const JWPolygon& o) const { return ringList == o.ringList; }
    bool operator!=(const JWPolygon& o) const { return !(*this == o); }

  private:
    std::vector<JWRing> ringList;
    JWEnvelop envelop;
};

}  // namespace jws

#endif  // JW_GEOMETRY_POLYGON_H
