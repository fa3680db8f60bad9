// SPDX-License-Identifier: MIT
//
// Reads well-known binary, straight from the bytes.
//
// A geometry is one byte of byte order, a 32-bit type and a body. The type carries z and m either
// as thousands (ISO: 1000 z, 2000 m, 3000 both) or as high bits (extended: 2^31 z, 2^30 m, 2^29 a
// spatial-reference number before the body). Members of collections are whole geometries with
// headers of their own, so their byte order and dimension may differ; rings are bare point lists.
//
// The reader keeps the number of bytes that are left. Before it makes room for n items it checks
// that n times the smallest size of one still fits, so memory stays in proportion to the input. It
// reads each class in place and in one pass; two-dimensional points in the machine's own byte order
// are copied in one piece.
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "foundation/wkb.h"
#include "foundation/wkb_words.h"
#include "jw_geometry_collection.h"

namespace jws::wkb {

namespace {

constexpr int kMaxDepth = 128;

/// Type and form of the geometry that is being read.
struct Header {
    int type = 0;       ///< 1 to 7
    bool swap = false;  ///< byte order is not the machine's
    bool hasZ = false;
    bool hasM = false;

    std::size_t stride() const { return kPointSize + 8 * (int(hasZ) + int(hasM)); }
};

class Reader {
  public:
    Reader(const unsigned char* bytes, std::size_t length) : m_at(bytes), m_left(length) {}

    enumJWDataErr error() const { return m_error; }
    std::size_t left() const { return m_left; }

    bool header(Header& h) {
        if (!enough(1, kHeaderSize)) return false;
        if (*m_at > 1) return fail(JWDataErrCorruptData);
        h.swap = (*m_at == JWWKBLittleEndian) != machineIsLittleEndian();
        skip(1);
        std::uint32_t type = word<std::uint32_t>(h.swap);
        h.hasZ = (type & 0x80000000u) != 0;
        h.hasM = (type & 0x40000000u) != 0;
        if ((type & 0x20000000u) != 0) {
            if (!enough(1, 4)) return false;
            skip(4);
        }
        type &= 0x1fffffffu;
        const std::uint32_t form = type / 1000;
        if (form > 3) return fail(JWDataErrCorruptData);
        h.hasZ = h.hasZ || form == 1 || form == 3;
        h.hasM = h.hasM || form >= 2;
        h.type = static_cast<int>(type % 1000);
        if (h.type >= JWWKBPoint && h.type <= JWWKBGeometryCollection) return true;
        const bool known = h.type > JWWKBGeometryCollection && h.type <= 17;
        return fail(known ? JWDataErrUnsupportedGeometryType : JWDataErrCorruptData);
    }

    bool body(const Header& h, JWPoint& point) {
        if (!enough(1, h.stride())) return false;
        const double x = real(h.swap), y = real(h.swap);
        const double z = h.hasZ ? real(h.swap) : 0.0;
        const double m = h.hasM ? real(h.swap) : 0.0;
        point = JWPoint(x, y, z, m);
        return true;
    }

    bool body(const Header& h, JWLineString& line) {
        if (!points(h, line.getPointList())) return false;
        line.updateEnvelop();
        return true;
    }

    bool body(const Header& h, JWPolygon& polygon) {
        std::size_t n;
        if (!count(h, kCountSize, n)) return false;
        polygon.getRingList().resize(n);
        for (JWRing& ring : polygon.getRingList()) {
            if (!ringBody(h, ring)) return false;
        }
        gather(polygon, polygon.getRingList());
        return true;
    }

    bool body(const Header& h, JWMultiPoint& points) {
        return members(h, points, JWWKBPoint, kPointGeometrySize);
    }
    bool body(const Header& h, JWMultiLineString& lines) {
        return members(h, lines, JWWKBLineString, kHeaderSize + kCountSize);
    }
    bool body(const Header& h, JWMultiPolygon& polygons) {
        return members(h, polygons, JWWKBPolygon, kHeaderSize + kCountSize);
    }

    bool body(const Header& h, JWGeometryBag& bag) {
        std::size_t n;
        if (!count(h, kHeaderSize + kCountSize, n)) return false;
        if (++m_depth > kMaxDepth) return fail(JWDataErrCorruptData);
        bag.reserve(static_cast<int>(n));
        JWEnvelop all = JWEnvelop::invalid();
        for (std::size_t i = 0; i < n; ++i) {
            Header member;
            if (!header(member)) return false;
            std::unique_ptr<JWGeometry> made = geometry(member);
            if (made == nullptr) return false;
            all.inflates_to_contain(made->getEnvelop());
            bag.addGeometry(std::move(made));
        }
        bag.setEnvelop(all);
        --m_depth;
        return true;
    }

    /// A ring is read from a polygon of at most one ring.
    bool body(const Header& h, JWRing& ring) {
        std::size_t n;
        if (!count(h, kCountSize, n)) return false;
        if (n > 1) return fail(JWDataErrUnsupportedGeometryType);
        return n == 0 || ringBody(h, ring);
    }

    /// A segment is read from a line string of two points, an empty one of none.
    bool body(const Header& h, JWLine& line) {
        std::vector<JWRawPoint> ends;
        if (!points(h, ends)) return false;
        if (ends.empty()) return true;
        if (ends.size() != 2) return fail(JWDataErrUnsupportedGeometryType);
        line.putCoords(ends[0], ends[1]);
        return true;
    }

    /// Reads a geometry of the type in the header; null on an error.
    std::unique_ptr<JWGeometry> geometry(const Header& h) {
        switch (h.type) {
            case JWWKBPoint:
                return make<JWPoint>(h);
            case JWWKBLineString:
                return make<JWLineString>(h);
            case JWWKBPolygon:
                return make<JWPolygon>(h);
            case JWWKBMultiPoint:
                return make<JWMultiPoint>(h);
            case JWWKBMultiLineString:
                return make<JWMultiLineString>(h);
            case JWWKBMultiPolygon:
                return make<JWMultiPolygon>(h);
            default:
                return make<JWGeometryBag>(h);
        }
    }

    bool fail(enumJWDataErr err) {
        m_error = err;
        return false;
    }

  private:
    /// Tells whether n items of at least `size` bytes can still follow.
    bool enough(std::size_t n, std::size_t size) {
        return n <= m_left / size || fail(JWDataErrNotEnoughData);
    }

    void skip(std::size_t n) {
        m_at += n;
        m_left -= n;
    }

    template <class Word>
    Word word(bool swap) {
        Word value;
        std::memcpy(&value, m_at, sizeof value);
        skip(sizeof value);
        return swap ? swapped(value) : value;
    }

    double real(bool swap) {
        const auto bits = word<std::uint64_t>(swap);
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    /// Reads a count of items of at least `size` bytes each.
    bool count(const Header& h, std::size_t size, std::size_t& n) {
        if (!enough(1, kCountSize)) return false;
        n = word<std::uint32_t>(h.swap);
        if (!enough(n, size)) return false;
        constexpr std::size_t most = std::numeric_limits<int>::max() - 1;
        return n <= most || fail(JWDataErrNotEnoughMemory);
    }

    bool points(const Header& h, std::vector<JWRawPoint>& list) {
        const std::size_t stride = h.stride();
        std::size_t n;
        if (!count(h, stride, n)) return false;
        list.clear();
        list.reserve(n + (m_closing && !repeatsFirst(n, stride) ? 1 : 0));
        list.resize(n);
        if (!h.swap && stride == kPointSize) {
            if (n > 0) std::memcpy(static_cast<void*>(list.data()), m_at, n * kPointSize);
            skip(n * kPointSize);
            return true;
        }
        for (JWRawPoint& p : list) {
            p.x = real(h.swap);
            p.y = real(h.swap);
            skip(stride - kPointSize);
        }
        return true;
    }

    bool repeatsFirst(std::size_t n, std::size_t stride) const {
        return n == 0 || std::memcmp(m_at, m_at + (n - 1) * stride, kPointSize) == 0;
    }

    bool ringBody(const Header& h, JWRing& ring) {
        m_closing = true;
        const bool read = points(h, ring.getPointList());
        m_closing = false;
        if (!read) return false;
        ring.closeRing();
        ring.updateEnvelop();
        return true;
    }

    template <class Collection>
    bool members(const Header& h, Collection& collection, int type, std::size_t smallest) {
        std::size_t n;
        if (!count(h, smallest, n)) return false;
        auto& list = collection.getMemberList();
        list.resize(n);
        for (auto& member : list) {
            Header own;
            if (!header(own)) return false;
            if (own.type != type) return fail(JWDataErrCorruptData);
            if (!body(own, member)) return false;
        }
        gather(collection, list);
        return true;
    }

    /// Stores the rectangle of the parts, whose own are up to date.
    template <class Part>
    static void gather(JWGeometry& whole, const std::vector<Part>& parts) {
        JWEnvelop all = JWEnvelop::invalid();
        for (const Part& part : parts) all.inflates_to_contain(part.getEnvelop());
        whole.setEnvelop(all);
    }

    template <class Class>
    std::unique_ptr<JWGeometry> make(const Header& h) {
        auto made = std::make_unique<Class>();
        if (!body(h, *made)) return nullptr;
        return made;
    }

    const unsigned char* m_at;
    std::size_t m_left;
    enumJWDataErr m_error = JWDataErrNone;
    int m_depth = 0;
    bool m_closing = false;  ///< the points to be read are a ring's
};

template <class Class>
bool readAs(Reader& reader, const Header& h, int type, JWGeometry& into) {
    if (h.type != type) return reader.fail(JWDataErrUnsupportedGeometryType);
    return reader.body(h, static_cast<Class&>(into));
}

bool readInto(Reader& reader, JWGeometry& into) {
    Header h;
    if (!reader.header(h)) return false;
    switch (into.getGeometryType()) {
        case JWGeometryPoint:
            return readAs<JWPoint>(reader, h, JWWKBPoint, into);
        case JWGeometryLineString:
            return readAs<JWLineString>(reader, h, JWWKBLineString, into);
        case JWGeometryPolygon:
            return readAs<JWPolygon>(reader, h, JWWKBPolygon, into);
        case JWGeometryMultiPoint:
            return readAs<JWMultiPoint>(reader, h, JWWKBMultiPoint, into);
        case JWGeometryMultiLineString:
            return readAs<JWMultiLineString>(reader, h, JWWKBMultiLineString, into);
        case JWGeometryMultiPolygon:
            return readAs<JWMultiPolygon>(reader, h, JWWKBMultiPolygon, into);
        case JWGeometryGeometryBag:
            return readAs<JWGeometryBag>(reader, h, JWWKBGeometryCollection, into);
        case JWGeometryLine:
            return readAs<JWLine>(reader, h, JWWKBLineString, into);
        case JWGeometryRing:
            return readAs<JWRing>(reader, h, JWWKBPolygon, into);
        default:
            return reader.fail(JWDataErrUnsupportedGeometryType);
    }
}

}  // namespace

enumJWDataErr read(JWGeometry& into, const unsigned char* bytes, std::size_t length,
                   bool allowTrailing) {
    into.setEmpty();
    if (bytes == nullptr) return length == 0 ? JWDataErrNotEnoughData : JWDataErrInvalidHandle;
    Reader reader(bytes, length);
    try {
        if (readInto(reader, into) && reader.left() > 0 && !allowTrailing) {
            reader.fail(JWDataErrCorruptData);
        }
    } catch (const std::exception&) {
        reader.fail(JWDataErrNotEnoughMemory);
    }
    if (reader.error() != JWDataErrNone) into.setEmpty();
    return reader.error();
}

enumJWDataErr create(const unsigned char* bytes, std::size_t length,
                     std::unique_ptr<JWGeometry>& geometry, std::size_t* used) {
    geometry.reset();
    if (bytes == nullptr) return length == 0 ? JWDataErrNotEnoughData : JWDataErrInvalidHandle;
    Reader reader(bytes, length);
    try {
        Header h;
        if (reader.header(h)) geometry = reader.geometry(h);
    } catch (const std::exception&) {
        reader.fail(JWDataErrNotEnoughMemory);
    }
    if (used != nullptr) {
        *used = length - reader.left();
    } else if (geometry != nullptr && reader.left() > 0) {
        reader.fail(JWDataErrCorruptData);
    }
    if (reader.error() != JWDataErrNone) geometry.reset();
    return reader.error();
}

}  // namespace jws::wkb
