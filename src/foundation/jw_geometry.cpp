// SPDX-License-Identifier: MIT
//
// The root of the geometries, the point, the dynamic point and the factory. Encodings live in
// the wkb and wkt sources; the root's operations forward to them.
#include "jw_geometry.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "foundation/plane_map.h"
#include "foundation/wkb.h"
#include "foundation/wkt.h"

namespace jws {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

JWPoint mapped(const JWRawPoint& p, const JWPoint& old) {
    return {p.x, p.y, old.getZ(), old.getM()};
}

}  // namespace

JWEnvelop envelopOf(const JWRawPoint* points, int n) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    // Two running rectangles, of the points at even and at odd places: a single one would wait for
    // its own last comparison at every point.
    JWEnvelop even(inf, inf, -inf, -inf), odd = even;
    const auto include = [](JWEnvelop& e, const JWRawPoint& p) {
        e.minX = p.x < e.minX ? p.x : e.minX;
        e.minY = p.y < e.minY ? p.y : e.minY;
        e.maxX = p.x > e.maxX ? p.x : e.maxX;
        e.maxY = p.y > e.maxY ? p.y : e.maxY;
    };
    int i = 0;
    for (; i + 1 < n; i += 2) {
        include(even, points[i]);
        include(odd, points[i + 1]);
    }
    if (i < n) include(even, points[i]);
    const JWEnvelop all(std::min(even.minX, odd.minX), std::min(even.minY, odd.minY),
                        std::max(even.maxX, odd.maxX), std::max(even.maxY, odd.maxY));
    return all.isValid() ? all : JWEnvelop::invalid();
}

JWGeometry::~JWGeometry() = default;

int JWGeometry::getDimension() const { return 2; }

std::size_t JWGeometry::getWKBSize() const { return wkb::sizeOf(*this); }

enumJWDataErr JWGeometry::importFromWkb(const unsigned char* bytes, bool) {
    return wkb::read(*this, bytes, std::numeric_limits<std::size_t>::max(), true);
}

enumJWDataErr JWGeometry::importFromWkb(const unsigned char* bytes, std::size_t length,
                                        bool allowTrailing) {
    return wkb::read(*this, bytes, length, allowTrailing);
}

enumJWDataErr JWGeometry::exportToWkb(enumJWWKBByteOrder order, unsigned char* bytes) const {
    return wkb::write(*this, order, bytes);
}

enumJWDataErr JWGeometry::importFromWkt(const char* text, bool allowTrailing) {
    return wkt::read(*this, text, allowTrailing);
}

enumJWDataErr JWGeometry::exportToWkt(char** text) const {
    if (text == nullptr) return JWDataErrInvalidHandle;
    *text = nullptr;
    try {
        std::string s;
        const enumJWDataErr err = wkt::write(*this, s);
        if (err != JWDataErrNone) return err;
        *text = static_cast<char*>(std::malloc(s.size() + 1));
        if (*text == nullptr) return JWDataErrNotEnoughMemory;
        std::memcpy(*text, s.c_str(), s.size() + 1);
        return JWDataErrNone;
    } catch (const std::exception&) {
        return JWDataErrNotEnoughMemory;
    }
}

void JWGeometry::freeWkt(char* text) { std::free(text); }

JWEnvelop JWPoint::getEnvelop() const {
    const JWRawPoint p(x, y);
    return envelopOf(&p, 1);
}

void JWPoint::setEmpty() { *this = JWPoint(kNaN, kNaN); }

void JWPoint::move(double dx, double dy) { setXY(x + dx, y + dy); }

void JWPoint::scale(const JWRawPoint& center, double sx, double sy) {
    *this = mapped(Scaling(center, sx, sy)(getRawPoint()), *this);
}

void JWPoint::rotate(const JWRawPoint& center, double angle) {
    *this = mapped(Rotation(center, angle)(getRawPoint()), *this);
}

JWEnvelop JWDynamicPoint::getEnvelop() const { return envelopOf(&position, 1); }

void JWDynamicPoint::setEmpty() { *this = JWDynamicPoint(JWRawPoint(kNaN, kNaN), 0, 0, 0); }

void JWDynamicPoint::scale(const JWRawPoint& center, double sx, double sy) {
    const Scaling map(center, sx, sy);
    position = map(position);
    velocity = map.vector(velocity);
}

void JWDynamicPoint::rotate(const JWRawPoint& center, double angle) {
    const Rotation map(center, angle);
    position = map(position);
    velocity = map.vector(velocity);
}

JWGeometry* JWGeometryFactory::createGeometry(enumJWGeometryType type) {
    switch (type) {
        case JWGeometryPoint:
            return new (std::nothrow) JWPoint;
        case JWGeometryLineString:
            return new (std::nothrow) JWLineString;
        case JWGeometryPolygon:
            return new (std::nothrow) JWPolygon;
        case JWGeometryMultiPoint:
            return new (std::nothrow) JWMultiPoint;
        case JWGeometryMultiLineString:
            return new (std::nothrow) JWMultiLineString;
        case JWGeometryMultiPolygon:
            return new (std::nothrow) JWMultiPolygon;
        case JWGeometryGeometryBag:
            return new (std::nothrow) JWGeometryBag;
        case JWGeometryDynamicPoint:
            return new (std::nothrow) JWDynamicPoint;
        case JWGeometryLine:
            return new (std::nothrow) JWLine;
        case JWGeometryRing:
            return new (std::nothrow) JWRing;
        default:
            return nullptr;
    }
}

enumJWDataErr JWGeometryFactory::createFromWkb(const unsigned char* bytes, std::size_t length,
                                               JWGeometry** geometry, std::size_t* used) {
    if (geometry == nullptr) return JWDataErrInvalidHandle;
    std::unique_ptr<JWGeometry> made;
    const enumJWDataErr err = wkb::create(bytes, length, made, used);
    *geometry = made.release();
    return err;
}

enumJWDataErr JWGeometryFactory::createFromWkt(const char* text, JWGeometry** geometry,
                                               std::size_t* used) {
    if (geometry == nullptr) return JWDataErrInvalidHandle;
    std::unique_ptr<JWGeometry> made;
    const enumJWDataErr err = wkt::create(text, made, used);
    *geometry = made.release();
    return err;
}

}  // namespace jws
