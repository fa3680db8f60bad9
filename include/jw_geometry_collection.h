// SPDX-License-Identifier: MIT
//
// Collections of geometries: three that hold one kind by value, and the bag, which owns any.
#ifndef JW_GEOMETRY_COLLECTION_H
#define JW_GEOMETRY_COLLECTION_H

#include <cassert>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "jw_geometry_base.h"
#include "jw_geometry_curve.h"
#include "jw_geometry_polygon.h"

namespace jws {

/// The abstract list of member geometries. Indices are counted from 0 and asserted in debug builds.
/// List edits leave the envelope stale; member pointers stay valid until the list is next changed.
class JW_API JWGeometryCollection : public JWGeometry {
  public:
    virtual int getGeometryCount() const = 0;
    virtual JWGeometry* getGeometryPtrAt(int atLocation) = 0;
    /// Appends a copy. Returns false, and adds nothing, for null and for a geometry of a kind that
    /// this collection does not hold.
    virtual bool addGeometry(const JWGeometry* geometry) = 0;
    /// Inserts a copy before member `atLocation`, which may be the count; as `addGeometry`.
    virtual bool insertGeometryAt(const JWGeometry* geometry, int atLocation) = 0;
    /// Replaces a member by a copy; as `addGeometry`.
    virtual bool updateGeometryAt(const JWGeometry* geometry, int atLocation) = 0;
    virtual void deleteGeometryAt(int atLocation) = 0;
    virtual const JWGeometry* getGeometryPtrAt(int atLocation) const = 0;

    bool isEmpty() const override { return getGeometryCount() == 0; }
    void geoNormalize() override;
    void move(double dx, double dy) override;
    void scale(const JWRawPoint& center, double sx, double sy) override;
    void rotate(const JWRawPoint& center, double angle) override;
    /// Updates every member, then stores the rectangle of them all.
    void updateEnvelop() override;
};

/// The list of members of one class, held by value: what the three multi-geometries share under
/// their own names.
template <class Member, enumJWGeometryType MemberCode>
class JW_API JWTypedCollection : public JWGeometryCollection {
  public:
    int getGeometryCount() const final { return static_cast<int>(memberList.size()); }
    JWGeometry* getGeometryPtrAt(int atLocation) final { return memberPtrAt(atLocation); }
    const JWGeometry* getGeometryPtrAt(int atLocation) const final {
        return memberPtrAt(atLocation);
    }
    /// Appends a copy of a geometry of the member class; false for any other and for null.
    bool addGeometry(const JWGeometry* geometry) override {
        if (!holds(geometry)) return false;
        memberList.push_back(static_cast<const Member&>(*geometry));
        return true;
    }
    bool insertGeometryAt(const JWGeometry* geometry, int atLocation) override {
        if (!holds(geometry)) return false;
        insertMemberAt(Member(static_cast<const Member&>(*geometry)), atLocation);
        return true;
    }
    bool updateGeometryAt(const JWGeometry* geometry, int atLocation) override {
        if (!holds(geometry)) return false;
        *memberPtrAt(atLocation) = static_cast<const Member&>(*geometry);
        return true;
    }
    void deleteGeometryAt(int atLocation) override {
        assert(atLocation >= 0 && atLocation < getGeometryCount());
        memberList.erase(memberList.begin() + atLocation);
    }

    bool isEmpty() const override { return memberList.empty(); }
    JWEnvelop getEnvelop() const override { return envelop; }
    void setEnvelop(const JWEnvelop& e) override { envelop = e; }
    void setEmpty() override {
        memberList.clear();
        envelop.setInvalid();
    }
    /// Makes room for `n` members in all.
    void reserve(int n) {
        if (n > 0) memberList.reserve(n);
    }
    /// Returns the list itself. Editing it leaves the envelope stale.
    const std::vector<Member>& getMemberList() const { return memberList; }
    std::vector<Member>& getMemberList() { return memberList; }

  protected:
    JWTypedCollection() : envelop(JWEnvelop::invalid()) {}

    static bool holds(const JWGeometry* geometry) {
        return geometry != nullptr && geometry->getGeometryType() == MemberCode;
    }
    Member* memberPtrAt(int atLocation) {
        assert(atLocation >= 0 && atLocation < getGeometryCount());
        return memberList.data() + atLocation;
    }
    const Member* memberPtrAt(int atLocation) const {
        assert(atLocation >= 0 && atLocation < getGeometryCount());
        return memberList.data() + atLocation;
    }
    void insertMemberAt(Member&& member, int atLocation) {
        assert(atLocation >= 0 && atLocation <= getGeometryCount());
        memberList.insert(memberList.begin() + atLocation, std::move(member));
    }
    void insertMembersAt(const std::vector<Member>& members, int atLocation) {
        assert(atLocation >= 0 && atLocation <= getGeometryCount());
        if (&members == &memberList) {
            const std::vector<Member> copy = members;
            memberList.insert(memberList.begin() + atLocation, copy.begin(), copy.end());
            return;
        }
        memberList.insert(memberList.begin() + atLocation, members.begin(), members.end());
    }
    void addMembers(std::vector<Member>&& members) {
        if (&members == &memberList) return insertMembersAt(members, getGeometryCount());
        if (memberList.empty()) {
            memberList = std::move(members);
            return;
        }
        memberList.insert(memberList.end(), std::make_move_iterator(members.begin()),
                          std::make_move_iterator(members.end()));
        members.clear();
    }

    std::vector<Member> memberList;
    JWEnvelop envelop;
};

/// A list of points.
class JW_API JWMultiPoint : public JWTypedCollection<JWPoint, JWGeometryPoint> {
  public:
    enumJWGeometryType getGeometryType() const override { return JWGeometryMultiPoint; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBMultiPoint; }
    JWMultiPoint* clone() const override;

    int getPointCount() const { return getGeometryCount(); }
    const JWPoint& getPointAt(int atLocation) const { return *memberPtrAt(atLocation); }
    JWPoint* getPointPtrAt(int atLocation) { return memberPtrAt(atLocation); }
    const JWPoint* getPointPtrAt(int atLocation) const { return memberPtrAt(atLocation); }
    const std::vector<JWPoint>& getPointList() const { return memberList; }
    std::vector<JWPoint>& getPointList() { return memberList; }
    void addPoint(const JWPoint& p) { memberList.push_back(p); }
    void addPoint(const JWRawPoint& p) { memberList.emplace_back(p.x, p.y); }
    void addPoint(double x, double y) { memberList.emplace_back(x, y); }
    /// Appends copies; the list may be this object's own.
    void addPoints(const std::vector<JWPoint>& points) {
        insertMembersAt(points, getGeometryCount());
    }
    void addPoints(std::vector<JWPoint>&& points) { addMembers(std::move(points)); }
    /// Appends n points; a null array or n <= 0 appends nothing.
    void addPoints(const JWRawPoint* points, int n);
    void insertPointAt(const JWPoint& p, int atLocation) { insertMemberAt(JWPoint(p), atLocation); }
    void insertPointsAt(const std::vector<JWPoint>& points, int atLocation) {
        insertMembersAt(points, atLocation);
    }
    /// Replaces a point. The guard of this and of the next two joins its halves with "or" and so
    /// never stops: an index out of range does nothing.
    void updatePointAt(const JWPoint& p, int atLocation) {
        if (isIndex(atLocation)) memberList[atLocation] = p;
    }
    /// Copies a point into `p`.
    void queryPointAt(JWPoint& p, int atLocation) const {
        if (isIndex(atLocation)) p = memberList[atLocation];
    }
    void deletePointAt(int atLocation) {
        if (isIndex(atLocation)) memberList.erase(memberList.begin() + atLocation);
    }
    void clearAllPoints() { memberList.clear(); }
    /// True when a member has exactly the x and y of `p`. Cost: O(n).
    bool isContained(const JWPoint& p) const;
    bool isContained(double x, double y) const { return isContained(JWPoint(x, y)); }

    /// True when the points are equal by `JWPoint::operator==`, in the same order.
    bool operator==(const JWMultiPoint& o) const { return memberList == o.memberList; }
    bool operator!=(const JWMultiPoint& o) const { return !(*this == o); }

  private:
    bool isIndex(int atLocation) const {
        assert(atLocation >= 0 || atLocation < getGeometryCount());
        return atLocation >= 0 && atLocation < getGeometryCount();
    }
};

/// A list of line strings.
class JW_API JWMultiLineString : public JWTypedCollection<JWLineString, JWGeometryLineString> {
  public:
    enumJWGeometryType getGeometryType() const override { return JWGeometryMultiLineString; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBMultiLineString; }
    JWMultiLineString* clone() const override;

    int getLineStringCount() const { return getGeometryCount(); }
    const JWLineString& getLineStringAt(int atLocation) const { return *memberPtrAt(atLocation); }
    JWLineString* getLineStringPtrAt(int atLocation) { return memberPtrAt(atLocation); }
    const JWLineString* getLineStringPtrAt(int atLocation) const { return memberPtrAt(atLocation); }
    void addLineString(const JWLineString& line) { memberList.push_back(line); }
    void addLineString(JWLineString&& line) { memberList.push_back(std::move(line)); }
    /// Appends copies; the list may be this object's own.
    void addLineStrings(const std::vector<JWLineString>& lines) {
        insertMembersAt(lines, getGeometryCount());
    }
    void addLineStrings(std::vector<JWLineString>&& lines) { addMembers(std::move(lines)); }
    void insertLineStringAt(const JWLineString& line, int atLocation) {
        insertMemberAt(JWLineString(line), atLocation);
    }
    void insertLineStringAt(JWLineString&& line, int atLocation) {
        insertMemberAt(std::move(line), atLocation);
    }
    void insertLineStringsAt(const std::vector<JWLineString>& lines, int atLocation) {
        insertMembersAt(lines, atLocation);
    }
    void updateLineStringAt(const JWLineString& line, int atLocation) {
        *memberPtrAt(atLocation) = line;
    }
    void queryLineStringAt(JWLineString& line, int atLocation) const {
        line = *memberPtrAt(atLocation);
    }
    void deleteLineStringAt(int atLocation) { deleteGeometryAt(atLocation); }
    void clearAllLineStrings() { memberList.clear(); }
    /// Returns the length of all members together.
    double getLength() const;

    /// True when the members are exactly equal, in the same order.
    bool operator==(const JWMultiLineString& o) const { return memberList == o.memberList; }
    bool operator!=(const JWMultiLineString& o) const { return !(*this == o); }
};

/// A list of polygons.
class JW_API JWMultiPolygon : public JWTypedCollection<JWPolygon, JWGeometryPolygon> {
  public:
    enumJWGeometryType getGeometryType() const override { return JWGeometryMultiPolygon; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBMultiPolygon; }
    JWMultiPolygon* clone() const override;

    int getPolygonCount() const { return getGeometryCount(); }
    const JWPolygon& getPolygonAt(int atLocation) const { return *memberPtrAt(atLocation); }
    JWPolygon* getPolygonPtrAt(int atLocation) { return memberPtrAt(atLocation); }
    const JWPolygon* getPolygonPtrAt(int atLocation) const { return memberPtrAt(atLocation); }
    void addPolygon(const JWPolygon& polygon) { memberList.push_back(polygon); }
    void addPolygon(JWPolygon&& polygon) { memberList.push_back(std::move(polygon)); }
    /// Appends copies; the list may be this object's own.
    void addPolygons(const std::vector<JWPolygon>& polygons) {
        insertMembersAt(polygons, getGeometryCount());
    }
    void addPolygons(std::vector<JWPolygon>&& polygons) { addMembers(std::move(polygons)); }
    void insertPolygonAt(const JWPolygon& polygon, int atLocation) {
        insertMemberAt(JWPolygon(polygon), atLocation);
    }
    void insertPolygonAt(JWPolygon&& polygon, int atLocation) {
        insertMemberAt(std::move(polygon), atLocation);
    }
    void insertPolygonsAt(const std::vector<JWPolygon>& polygons, int atLocation) {
        insertMembersAt(polygons, atLocation);
    }
    void updatePolygonAt(const JWPolygon& polygon, int atLocation) {
        *memberPtrAt(atLocation) = polygon;
    }
    void queryPolygonAt(JWPolygon& polygon, int atLocation) const {
        polygon = *memberPtrAt(atLocation);
    }
    void deletePolygonAt(int atLocation) { deleteGeometryAt(atLocation); }
    void clearAllPolygons() { memberList.clear(); }
    /// Returns the number of rings of all members together.
    int getRingCount() const;
    /// Returns the area of all members together.
    double getArea() const;
    /// Returns the length of all rings together.
    double getLength() const;

    /// True when the members are exactly equal, in the same order.
    bool operator==(const JWMultiPolygon& o) const { return memberList == o.memberList; }
    bool operator!=(const JWMultiPolygon& o) const { return !(*this == o); }
};

/// A list of geometries of any kind, which the bag owns. Bags may hold bags.
class JW_API JWGeometryBag : public JWGeometryCollection {
  public:
    JWGeometryBag() : envelop(JWEnvelop::invalid()) {}
    /// Copies every member.
    JWGeometryBag(const JWGeometryBag& o);
    JWGeometryBag(JWGeometryBag&&) = default;
    JWGeometryBag& operator=(const JWGeometryBag& o);
    /// Takes the members of `o` over; `o` may be a member of this bag.
    JWGeometryBag& operator=(JWGeometryBag&& o) noexcept;

    enumJWGeometryType getGeometryType() const override { return JWGeometryGeometryBag; }
    enumJWWKBGeometryType getGeometryWKBType() const override { return JWWKBGeometryCollection; }
    bool isEmpty() const override { return geometryList.empty(); }
    JWEnvelop getEnvelop() const override { return envelop; }
    void setEnvelop(const JWEnvelop& e) override { envelop = e; }
    void setEmpty() override;
    JWGeometryBag* clone() const override { return new JWGeometryBag(*this); }

    int getGeometryCount() const override { return static_cast<int>(geometryList.size()); }
    JWGeometry* getGeometryPtrAt(int atLocation) override {
        assert(atLocation >= 0 && atLocation < getGeometryCount());
        return geometryList[atLocation].get();
    }
    const JWGeometry* getGeometryPtrAt(int atLocation) const override {
        assert(atLocation >= 0 && atLocation < getGeometryCount());
        return geometryList[atLocation].get();
    }
    /// Appends a copy, of any kind; false for null. A bag may be added to itself: the copy is of
    /// what it held before.
    bool addGeometry(const JWGeometry* geometry) override;
    bool insertGeometryAt(const JWGeometry* geometry, int atLocation) override;
    bool updateGeometryAt(const JWGeometry* geometry, int atLocation) override;
    void deleteGeometryAt(int atLocation) override;
    /// Appends the geometry itself instead of a copy; false for null.
    bool addGeometry(std::unique_ptr<JWGeometry> geometry);
    /// Hands member `atLocation` out to the caller and removes it.
    std::unique_ptr<JWGeometry> releaseGeometryAt(int atLocation);
    void clearAllGeometry() { geometryList.clear(); }
    /// Makes room for `n` members in all.
    void reserve(int n) {
        if (n > 0) geometryList.reserve(n);
    }

  private:
    std::vector<std::unique_ptr<JWGeometry>> geometryList;
    JWEnvelop envelop;
};

}  // namespace jws

#endif  // JW_GEOMETRY_COLLECTION_H
