// SPDX-License-Identifier: MIT
//
// Writes well-known binary: two-dimensional, its exact size computed first. Points in the machine's
// own byte order are copied in one piece.
#include <cstdint>
#include <cstring>

#include "foundation/wkb.h"
#include "foundation/wkb_words.h"
#include "jw_geometry_collection.h"

namespace jws::wkb {

namespace {

class Writer {
  public:
    Writer(enumJWWKBByteOrder order, unsigned char* bytes)
        : m_at(bytes),
          m_order(order),
          m_swap((order == JWWKBLittleEndian) != machineIsLittleEndian()) {}

    void geometry(const JWGeometry& g) {
        switch (g.getGeometryType()) {
            case JWGeometryPoint:
                return put(static_cast<const JWPoint&>(g));
            case JWGeometryLineString:
                return put(static_cast<const JWLineString&>(g));
            case JWGeometryPolygon:
                return put(static_cast<const JWPolygon&>(g));
            case JWGeometryLine:
                return put(static_cast<const JWLine&>(g));
            case JWGeometryRing:
                return put(static_cast<const JWRing&>(g));
            default:
                return put(static_cast<const JWGeometryCollection&>(g));
        }
    }

  private:
    void put(const JWPoint& p) {
        header(JWWKBPoint);
        real(p.getX());
        real(p.getY());
    }
    void put(const JWLineString& line) {
        header(JWWKBLineString);
        points(line.getPointsPtr(), line.getPointCount());
    }
    void put(const JWLine& line) {
        header(JWWKBLineString);
        const JWRawPoint ends[2] = {line.getFromPoint(), line.getToPoint()};
        points(ends, line.isEmpty() ? 0 : 2);
    }
    void put(const JWRing& ring) {
        header(JWWKBPolygon);
        word<std::uint32_t>(ring.isEmpty() ? 0 : 1);
        if (!ring.isEmpty()) points(ring.getPointsPtr(), ring.getPointCount());
    }
    void put(const JWPolygon& polygon) {
        header(JWWKBPolygon);
        word<std::uint32_t>(polygon.getRingCount());
        for (const JWRing& ring : polygon.getRingList()) {
            points(ring.getPointsPtr(), ring.getPointCount());
        }
    }
    void put(const JWGeometryCollection& collection) {
        header(collection.getGeometryWKBType());
        const int n = collection.getGeometryCount();
        word<std::uint32_t>(n);
        for (int i = 0; i < n; ++i) geometry(*collection.getGeometryPtrAt(i));
    }

    void header(int type) {
        *m_at++ = static_cast<unsigned char>(m_order);
        word<std::uint32_t>(type);
    }

    void points(const JWRawPoint* p, int n) {
        word<std::uint32_t>(n);
        if (!m_swap) {
            if (n > 0) std::memcpy(m_at, p, n * kPointSize);
            m_at += n * kPointSize;
            return;
        }
        for (int i = 0; i < n; ++i) {
            real(p[i].x);
            real(p[i].y);
        }
    }

    template <class Word>
    void word(Word value) {
        if (m_swap) value = swapped(value);
        std::memcpy(m_at, &value, sizeof value);
        m_at += sizeof value;
    }

    void real(double value) {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        word(bits);
    }

    unsigned char* m_at;
    enumJWWKBByteOrder m_order;
    bool m_swap;
};

std::size_t listSize(std::size_t n) { return kCountSize + n * kPointSize; }

std::size_t collectionSize(const JWGeometryCollection& collection) {
    std::size_t size = kHeaderSize + kCountSize;
    const int n = collection.getGeometryCount();
    if (collection.getGeometryType() == JWGeometryMultiPoint) return size + n * kPointGeometrySize;
    for (int i = 0; i < n; ++i) {
        const std::size_t member = sizeOf(*collection.getGeometryPtrAt(i));
        if (member == 0) return 0;
        size += member;
    }
    return size;
}

}  // namespace

std::size_t sizeOf(const JWGeometry& g) {
    switch (g.getGeometryType()) {
        case JWGeometryPoint:
            return kPointGeometrySize;
        case JWGeometryLineString:
            return kHeaderSize + listSize(static_cast<const JWLineString&>(g).getPointCount());
        case JWGeometryLine:
            return kHeaderSize + listSize(g.isEmpty() ? 0 : 2);
        case JWGeometryRing: {
            const int n = static_cast<const JWRing&>(g).getPointCount();
            return kHeaderSize + kCountSize + (n == 0 ? 0 : listSize(n));
        }
        case JWGeometryPolygon: {
            std::size_t size = kHeaderSize + kCountSize;
            for (const JWRing& ring : static_cast<const JWPolygon&>(g).getRingList()) {
                size += listSize(ring.getPointCount());
            }
            return size;
        }
        case JWGeometryMultiPoint:
        case JWGeometryMultiLineString:
        case JWGeometryMultiPolygon:
        case JWGeometryGeometryBag:
            return collectionSize(static_cast<const JWGeometryCollection&>(g));
        default:
            return 0;
    }
}

enumJWDataErr write(const JWGeometry& geometry, enumJWWKBByteOrder order, unsigned char* bytes) {
    if (bytes == nullptr) return JWDataErrInvalidHandle;
    if (order != JWWKBBigEndian && order != JWWKBLittleEndian) return JWDataErrUnsupportedOperation;
    if (geometry.getWKBSize() == 0) return JWDataErrUnsupportedGeometryType;
    Writer(order, bytes).geometry(geometry);
    return JWDataErrNone;
}

}  // namespace jws::wkb
