// SPDX-License-Identifier: MIT
//
// A JWRawPoint has the layout of OGR's raw point, so the points of a ring or line cross over in one
// copy of the whole array, straight into the place where they stay. Each envelope is computed once,
// by the ring or line itself; those of polygons and collections are put together from them.
#include "foundation/ogr_convert.h"

#include <limits>
#include <utility>
#include <vector>

namespace jws::detail {
namespace {

static_assert(sizeof(OGRRawPoint) == sizeof(JWRawPoint));

std::vector<JWRawPoint> pointsOf(const OGRSimpleCurve& curve, bool willClose) {
    const int count = curve.getNumPoints();
    std::vector<JWRawPoint> points;
    if (count == 0) return points;
    const bool open = willClose && !(curve.getX(0) == curve.getX(count - 1) &&
                                     curve.getY(0) == curve.getY(count - 1));
    points.reserve(static_cast<std::size_t>(count) + (open ? 1 : 0));
    points.resize(static_cast<std::size_t>(count));
    curve.getPoints(reinterpret_cast<OGRRawPoint*>(points.data()));
    return points;
}

JWPoint pointFrom(const OGRPoint& source) {
    JWPoint point;
    if (source.IsEmpty()) {
        point.setEmpty();
    } else {
        point = JWPoint(source.getX(), source.getY(), source.Is3D() ? source.getZ() : 0,
                        source.IsMeasured() ? source.getM() : 0);
    }
    return point;
}

JWLineString lineFrom(const OGRSimpleCurve& source) {
    return JWLineString(pointsOf(source, false));
}

void fillPolygon(const OGRPolygon& source, JWPolygon& polygon) {
    const OGRLinearRing* exterior = source.getExteriorRing();
    if (exterior == nullptr || exterior->IsEmpty()) return;
    const int interiors = source.getNumInteriorRings();
    std::vector<JWRing>& rings = polygon.getRingList();
    rings.reserve(static_cast<std::size_t>(interiors) + 1);
    rings.emplace_back(pointsOf(*exterior, true));
    JWEnvelop envelop = rings.front().getEnvelop();
    for (int i = 0; i < interiors; ++i) {
        const OGRLinearRing* ring = source.getInteriorRing(i);
        if (ring->IsEmpty()) continue;
        rings.emplace_back(pointsOf(*ring, true));
        envelop.inflates_to_contain(rings.back().getEnvelop());
    }
    polygon.setEnvelop(envelop);
}

JWPolygon polygonFrom(const OGRPolygon& source) {
    JWPolygon polygon;
    fillPolygon(source, polygon);
    return polygon;
}

/// A collection `Multi` of the members of `source`, each made by `convert`.
template <class Multi, class Member, class Source, class Convert>
std::unique_ptr<JWGeometry> collectionFrom(const Source& source, Convert&& convert) {
    auto result = std::make_unique<Multi>();
    auto& members = result->getMemberList();
    const int count = source.getNumGeometries();
    members.reserve(static_cast<std::size_t>(count));
    JWEnvelop envelop = JWEnvelop::invalid();
    for (int i = 0; i < count; ++i) {
        members.push_back(convert(static_cast<const Member&>(*source.getGeometryRef(i))));
        envelop.inflates_to_contain(members.back().getEnvelop());
    }
    result->setEnvelop(envelop);
    return result;
}

std::unique_ptr<JWGeometry> bagFrom(const OGRGeometryCollection& source) {
    auto bag = std::make_unique<JWGeometryBag>();
    bag->reserve(source.getNumGeometries());
    JWEnvelop envelop = JWEnvelop::invalid();
    for (const OGRGeometry* member : source) {
        std::unique_ptr<JWGeometry> geometry = geometryFromOgr(*member);
        if (!geometry) continue;
        envelop.inflates_to_contain(geometry->getEnvelop());
        bag->addGeometry(std::move(geometry));
    }
    bag->setEnvelop(envelop);
    return bag;
}

void setPoints(OGRSimpleCurve& curve, const JWPointSequence& source) {
    curve.setPoints(source.getPointCount(),
                    reinterpret_cast<const OGRRawPoint*>(source.getPointsPtr()));
}

std::unique_ptr<OGRGeometry> pointTo(const JWPoint& source, OGRwkbGeometryType target) {
    auto point = std::make_unique<OGRPoint>();
    if (source.isEmpty()) return point;
    point->setX(source.getX());
    point->setY(source.getY());
    if (OGR_GT_HasZ(target) != 0) point->setZ(source.getZ());
    if (OGR_GT_HasM(target) != 0) point->setM(source.getM());
    return point;
}

std::unique_ptr<OGRGeometry> lineTo(const JWPointSequence& source) {
    auto line = std::make_unique<OGRLineString>();
    setPoints(*line, source);
    return line;
}

std::unique_ptr<OGRGeometry> segmentTo(const JWLine& source) {
    auto line = std::make_unique<OGRLineString>();
    if (!source.isEmpty()) {
        line->addPoint(source.getFromPoint().x, source.getFromPoint().y);
        line->addPoint(source.getToPoint().x, source.getToPoint().y);
    }
    return line;
}

std::unique_ptr<OGRGeometry> polygonTo(const JWRing* rings, int count) {
    auto polygon = std::make_unique<OGRPolygon>();
    for (int i = 0; i < count; ++i) {
        if (rings[i].isEmpty()) continue;
        if (i > 0 && rings[0].isEmpty()) return nullptr;  // it would become the outer one
        auto ring = std::make_unique<OGRLinearRing>();
        setPoints(*ring, rings[i]);
        ring->closeRings();
        polygon->addRingDirectly(ring.release());
    }
    return polygon;
}

std::unique_ptr<OGRGeometry> plainToOgr(const JWGeometry& source, OGRwkbGeometryType target);

/// Fills an OGR collection with the converted members; null when one has no OGR form.
template <class Multi>
std::unique_ptr<OGRGeometry> collectionTo(const JWGeometryCollection& source,
                                          OGRwkbGeometryType target) {
    auto result = std::make_unique<Multi>();
    for (int i = 0; i < source.getGeometryCount(); ++i) {
        std::unique_ptr<OGRGeometry> member = plainToOgr(*source.getGeometryPtrAt(i), target);
        if (!member || result->addGeometryDirectly(member.get()) != OGRERR_NONE) return nullptr;
        member.release();
    }
    return result;
}

/// The geometry in the OGR class that corresponds to its own.
std::unique_ptr<OGRGeometry> plainToOgr(const JWGeometry& source, OGRwkbGeometryType target) {
    switch (source.getGeometryType()) {
        case JWGeometryPoint:
            return pointTo(static_cast<const JWPoint&>(source), target);
        case JWGeometryLineString:
            return lineTo(static_cast<const JWLineString&>(source));
        case JWGeometryLine:
            return segmentTo(static_cast<const JWLine&>(source));
        case JWGeometryRing:
            return polygonTo(static_cast<const JWRing*>(&source), 1);
        case JWGeometryPolygon: {
            const auto& rings = static_cast<const JWPolygon&>(source).getRingList();
            return polygonTo(rings.data(), static_cast<int>(rings.size()));
        }
        case JWGeometryMultiPoint:
            return collectionTo<OGRMultiPoint>(static_cast<const JWMultiPoint&>(source), target);
        case JWGeometryMultiLineString:
            return collectionTo<OGRMultiLineString>(static_cast<const JWMultiLineString&>(source),
                                                    target);
        case JWGeometryMultiPolygon:
            return collectionTo<OGRMultiPolygon>(static_cast<const JWMultiPolygon&>(source),
                                                 target);
        case JWGeometryGeometryBag:
            return collectionTo<OGRGeometryCollection>(static_cast<const JWGeometryBag&>(source),
                                                       target);
        default:
            return nullptr;
    }
}

bool isMultiOf(OGRwkbGeometryType multi, OGRwkbGeometryType single) {
    return multi >= wkbMultiPoint && multi <= wkbMultiPolygon && multi == single + 3;
}

}  // namespace

std::unique_ptr<JWGeometry> geometryFromOgr(const OGRGeometry& source) {
    if (source.hasCurveGeometry() != 0) {
        const std::unique_ptr<OGRGeometry> linear(source.getLinearGeometry());
        return linear && linear->hasCurveGeometry() == 0 ? geometryFromOgr(*linear) : nullptr;
    }
    switch (wkbFlatten(source.getGeometryType())) {
        case wkbPoint:
            return std::make_unique<JWPoint>(pointFrom(*source.toPoint()));
        case wkbLineString:
            return std::make_unique<JWLineString>(pointsOf(*source.toLineString(), false));
        case wkbPolygon:
        case wkbTriangle: {
            auto polygon = std::make_unique<JWPolygon>();
            fillPolygon(*source.toPolygon(), *polygon);
            return polygon;
        }
        case wkbMultiPoint:
            return collectionFrom<JWMultiPoint, OGRPoint>(*source.toMultiPoint(), pointFrom);
        case wkbMultiLineString:
            return collectionFrom<JWMultiLineString, OGRLineString>(*source.toMultiLineString(),
                                                                    lineFrom);
        case wkbMultiPolygon:
            return collectionFrom<JWMultiPolygon, OGRPolygon>(*source.toMultiPolygon(),
                                                              polygonFrom);
        case wkbPolyhedralSurface:
        case wkbTIN:
            return collectionFrom<JWMultiPolygon, OGRPolygon>(*source.toPolyhedralSurface(),
                                                              polygonFrom);
        case wkbGeometryCollection:
            return bagFrom(*source.toGeometryCollection());
        // Collections of curves whose members are all straight.
        case wkbCompoundCurve:
        case wkbCurvePolygon:
        case wkbMultiCurve:
        case wkbMultiSurface: {
            const std::unique_ptr<OGRGeometry> linear(source.getLinearGeometry());
            const bool changed = linear && linear->getGeometryType() != source.getGeometryType();
            return changed ? geometryFromOgr(*linear) : nullptr;
        }
        default:
            return nullptr;
    }
}

std::unique_ptr<OGRGeometry> geometryToOgr(const JWGeometry& source, OGRwkbGeometryType target) {
    std::unique_ptr<OGRGeometry> geometry = plainToOgr(source, target);
    const OGRwkbGeometryType wanted = wkbFlatten(target);
    if (!geometry || wanted == wkbUnknown) return geometry;
    const OGRwkbGeometryType type = wkbFlatten(geometry->getGeometryType());
    if (OGR_GT_IsSubClassOf(type, wanted) != 0) return geometry;
    if (isMultiOf(wanted, type) || wanted == wkbGeometryCollection) {
        std::unique_ptr<OGRGeometry> multi(OGRGeometryFactory::createGeometry(wanted));
        if (geometry->IsEmpty()) return multi;
        if (multi->toGeometryCollection()->addGeometryDirectly(geometry.get()) != OGRERR_NONE) {
            return nullptr;
        }
        geometry.release();
        return multi;
    }
    if (isMultiOf(type, wanted)) {
        OGRGeometryCollection& members = *geometry->toGeometryCollection();
        if (members.getNumGeometries() > 1) return nullptr;
        if (members.getNumGeometries() == 1) {
            std::unique_ptr<OGRGeometry> member(members.getGeometryRef(0));
            members.removeGeometry(0, FALSE);
            return member;
        }
        return std::unique_ptr<OGRGeometry>(OGRGeometryFactory::createGeometry(wanted));
    }
    return nullptr;
}

enumJWWKBGeometryType typeFromOgr(OGRwkbGeometryType type) {
    const OGRwkbGeometryType flat = wkbFlatten(type);
    if (flat == wkbNone) return JWWKBNone;
    if (flat >= wkbPoint && flat <= wkbGeometryCollection) {
        return static_cast<enumJWWKBGeometryType>(flat);
    }
    switch (flat) {
        case wkbCircularString:
        case wkbCompoundCurve:
            return JWWKBLineString;
        case wkbCurvePolygon:
        case wkbTriangle:
            return JWWKBPolygon;
        case wkbMultiCurve:
            return JWWKBMultiLineString;
        case wkbMultiSurface:
        case wkbPolyhedralSurface:
        case wkbTIN:
            return JWWKBMultiPolygon;
        default:
            return JWWKBUnknown;
    }
}

OGRwkbGeometryType typeToOgr(enumJWWKBGeometryType type) {
    if (type == JWWKBNone) return wkbNone;
    return type >= JWWKBPoint && type <= JWWKBGeometryCollection
               ? static_cast<OGRwkbGeometryType>(type)
               : wkbUnknown;
}

}  // namespace jws::detail
