// SPDX-License-Identifier: MIT
//
// Reads well-known text by recursive descent over its bytes, in one pass.
//
// A tag may be followed by Z, M or ZM, joined or apart. Without it two to four ordinates are taken:
// the third is z, the fourth m.
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/wkt.h"
#include "foundation/wkt_words.h"
#include "jw_geometry_collection.h"

namespace jws::wkt {

namespace {

constexpr int kMaxDepth = 128;

struct Tag {
    std::string_view name;
    enumJWGeometryType type;  ///< `JWGeometryNone`: known, but of no class here
};

constexpr Tag kTags[] = {
    {"POINT", JWGeometryPoint},
    {"LINESTRING", JWGeometryLineString},
    {"LINEARRING", JWGeometryRing},
    {"POLYGON", JWGeometryPolygon},
    {"MULTIPOINT", JWGeometryMultiPoint},
    {"MULTILINESTRING", JWGeometryMultiLineString},
    {"MULTIPOLYGON", JWGeometryMultiPolygon},
    {"GEOMETRYCOLLECTION", JWGeometryGeometryBag},
    {"CIRCULARSTRING", JWGeometryNone},
    {"COMPOUNDCURVE", JWGeometryNone},
    {"CURVEPOLYGON", JWGeometryNone},
    {"MULTICURVE", JWGeometryNone},
    {"MULTISURFACE", JWGeometryNone},
    {"POLYHEDRALSURFACE", JWGeometryNone},
    {"TIN", JWGeometryNone},
    {"TRIANGLE", JWGeometryNone},
};

/// What the tag says: the type, and which ordinates follow when it says so.
struct Header {
    enumJWGeometryType type = JWGeometryNone;
    bool hasZ = false;
    bool hasM = false;
};

class Reader : public Words {
  public:
    explicit Reader(const char* text) : Words(text) {}

    /// Skips a leading "SRID=n;".
    bool prefix() {
        if (!skipWord("SRID")) return true;
        double id;
        return (skipIf('=') && number(id) && skipIf(';')) || unexpected();
    }

    bool header(Header& h) {
        std::string tag = word();
        if (tag.empty()) return unexpected();
        if (!lookUp(tag, h)) {
            h.hasM = tag.back() == 'M';
            if (h.hasM) tag.pop_back();
            h.hasZ = !tag.empty() && tag.back() == 'Z';
            if (h.hasZ) tag.pop_back();
            if (!(h.hasZ || h.hasM) || !lookUp(tag, h)) return fail(JWDataErrCorruptData);
        } else {
            const bool hasBoth = skipWord("ZM");
            h.hasZ = hasBoth || skipWord("Z");
            h.hasM = hasBoth || (!h.hasZ && skipWord("M"));
        }
        return h.type != JWGeometryNone || fail(JWDataErrUnsupportedGeometryType);
    }

    bool body(const Header& h, JWPoint& point) {
        if (skipWord("EMPTY")) {
            point.setEmpty();
            return true;
        }
        return open() && ordinates(h, point) && close();
    }

    bool body(const Header& h, JWLineString& line) { return sequence(h, line); }

    bool body(const Header& h, JWRing& ring) {
        if (!sequence(h, ring)) return false;
        ring.closeRing();
        return true;
    }

    bool body(const Header& h, JWPolygon& polygon) {
        return list([&] { return body(h, polygon.getRingList().emplace_back()); });
    }

    bool body(const Header& h, JWMultiPoint& points) {
        return list([&] {
            JWPoint& p = points.getPointList().emplace_back();
            const char next = peek();
            const bool bare = next != '\0' && next != '(' && !isWord("EMPTY");
            return bare ? ordinates(h, p) : body(h, p);
        });
    }
    bool body(const Header& h, JWMultiLineString& lines) { return members(h, lines); }
    bool body(const Header& h, JWMultiPolygon& polygons) { return members(h, polygons); }

    bool body(const Header&, JWGeometryBag& bag) {
        if (++m_depth > kMaxDepth) return fail(JWDataErrCorruptData);
        const bool read = list([&] {
            Header member;
            if (!header(member)) return false;
            return bag.addGeometry(geometry(member));
        });
        --m_depth;
        return read;
    }

    /// Reads a geometry of the type in the header; null on an error.
    std::unique_ptr<JWGeometry> geometry(const Header& h) {
        switch (h.type) {
            case JWGeometryPoint:
                return make<JWPoint>(h);
            case JWGeometryLineString:
                return make<JWLineString>(h);
            case JWGeometryRing:
                return make<JWRing>(h);
            case JWGeometryPolygon:
                return make<JWPolygon>(h);
            case JWGeometryMultiPoint:
                return make<JWMultiPoint>(h);
            case JWGeometryMultiLineString:
                return make<JWMultiLineString>(h);
            case JWGeometryMultiPolygon:
                return make<JWMultiPolygon>(h);
            default:
                return make<JWGeometryBag>(h);
        }
    }

  private:
    static bool lookUp(const std::string& word, Header& h) {
        for (const Tag& tag : kTags) {
            if (tag.name == word) {
                h.type = tag.type;
                return true;
            }
        }
        return false;
    }

    bool ordinates(const Header& h, JWPoint& point) {
        double value[4] = {0, 0, 0, 0};
        if (!number(value[0]) || !number(value[1])) return false;
        int n = 2;
        for (char next; n < 4 && (next = peek()) != '\0' && next != ',' && next != ')';) {
            if (!number(value[n++])) return false;
        }
        const bool told = h.hasZ || h.hasM;
        if (told && n != 2 + int(h.hasZ) + int(h.hasM)) return fail(JWDataErrCorruptData);
        if (h.hasM && !h.hasZ) std::swap(value[2], value[3]);
        point = JWPoint(value[0], value[1], value[2], value[3]);
        return true;
    }

    template <class Sequence>
    bool sequence(const Header& h, Sequence& points) {
        return list([&] {
            JWPoint p;
            if (!ordinates(h, p)) return false;
            points.addPoint(p.getX(), p.getY());
            return true;
        });
    }

    /// Reads "EMPTY" or items between parentheses.
    template <class Item>
    bool list(const Item& item) {
        if (skipWord("EMPTY")) return true;
        if (!open()) return false;
        do {
            if (!item()) return false;
        } while (skipIf(','));
        return close();
    }

    template <class Collection>
    bool members(const Header& h, Collection& collection) {
        return list([&] { return body(h, collection.getMemberList().emplace_back()); });
    }

    template <class Class>
    std::unique_ptr<JWGeometry> make(const Header& h) {
        auto made = std::make_unique<Class>();
        if (!body(h, *made)) return nullptr;
        return made;
    }

    int m_depth = 0;
};

template <class Class>
bool readBody(Reader& reader, const Header& h, JWGeometry& into) {
    return reader.body(h, static_cast<Class&>(into));
}

/// A segment is read from a line string of two points, an empty one of none.
bool readLine(Reader& reader, const Header& h, JWLine& into) {
    JWLineString line;
    if (!reader.body(h, line)) return false;
    if (line.isEmpty()) return true;
    if (line.getPointCount() != 2) return reader.fail(JWDataErrUnsupportedGeometryType);
    into.putCoords(line.getPointAt(0), line.getPointAt(1));
    return true;
}

/// A ring is read from a `LINEARRING` or from a polygon of at most one ring.
bool readRing(Reader& reader, const Header& h, JWRing& into) {
    if (h.type == JWGeometryRing) return reader.body(h, into);
    JWPolygon polygon;
    if (!reader.body(h, polygon)) return false;
    if (polygon.getRingCount() > 1) return reader.fail(JWDataErrUnsupportedGeometryType);
    if (polygon.getRingCount() == 1) into = std::move(*polygon.getRingPtrAt(0));
    return true;
}

bool readInto(Reader& reader, JWGeometry& into) {
    Header h;
    if (!reader.prefix() || !reader.header(h)) return false;
    const enumJWGeometryType type = into.getGeometryType();
    if (type == JWGeometryLine && h.type == JWGeometryLineString) {
        return readLine(reader, h, static_cast<JWLine&>(into));
    }
    if (type == JWGeometryRing && (h.type == JWGeometryRing || h.type == JWGeometryPolygon)) {
        return readRing(reader, h, static_cast<JWRing&>(into));
    }
    if (type != h.type) return reader.fail(JWDataErrUnsupportedGeometryType);
    switch (type) {
        case JWGeometryPoint:
            return readBody<JWPoint>(reader, h, into);
        case JWGeometryLineString:
            return readBody<JWLineString>(reader, h, into);
        case JWGeometryPolygon:
            return readBody<JWPolygon>(reader, h, into);
        case JWGeometryMultiPoint:
            return readBody<JWMultiPoint>(reader, h, into);
        case JWGeometryMultiLineString:
            return readBody<JWMultiLineString>(reader, h, into);
        case JWGeometryMultiPolygon:
            return readBody<JWMultiPolygon>(reader, h, into);
        default:
            return readBody<JWGeometryBag>(reader, h, into);
    }
}

}  // namespace

enumJWDataErr read(JWGeometry& into, const char* text, bool allowTrailing) {
    into.setEmpty();
    if (text == nullptr) return JWDataErrInvalidHandle;
    Reader reader(text);
    try {
        if (readInto(reader, into) && !allowTrailing && !reader.atEnd()) {
            reader.fail(JWDataErrCorruptData);
        }
    } catch (const std::exception&) {
        reader.fail(JWDataErrNotEnoughMemory);
    }
    if (reader.error() != JWDataErrNone) {
        into.setEmpty();
    } else {
        into.updateEnvelop();
    }
    return reader.error();
}

enumJWDataErr create(const char* text, std::unique_ptr<JWGeometry>& geometry, std::size_t* used) {
    geometry.reset();
    if (text == nullptr) return JWDataErrInvalidHandle;
    Reader reader(text);
    try {
        Header h;
        if (reader.prefix() && reader.header(h)) geometry = reader.geometry(h);
    } catch (const std::exception&) {
        reader.fail(JWDataErrNotEnoughMemory);
    }
    if (used != nullptr) {
        *used = static_cast<std::size_t>(reader.position() - text);
    } else if (geometry != nullptr && !reader.atEnd()) {
        reader.fail(JWDataErrCorruptData);
    }
    if (reader.error() != JWDataErrNone) geometry.reset();
    if (geometry != nullptr) geometry->updateEnvelop();
    return reader.error();
}

}  // namespace jws::wkt
