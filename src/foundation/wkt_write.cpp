// SPDX-License-Identifier: MIT
//
// Writes well-known text. Numbers are written by std::to_chars: no locale, and the shortest form
// that reads back as the same bits.
#include <charconv>
#include <string>

#include "foundation/wkt.h"
#include "jw_geometry_collection.h"

namespace jws::wkt {

namespace {

class Writer {
  public:
    explicit Writer(std::string& out) : m_out(out) {}

    bool geometry(const JWGeometry& g) {
        switch (g.getGeometryType()) {
            case JWGeometryPoint: {
                const auto& p = static_cast<const JWPoint&>(g);
                m_out += "POINT ";
                point(p);
                return true;
            }
            case JWGeometryLine: {
                const auto& line = static_cast<const JWLine&>(g);
                const JWRawPoint ends[2] = {line.getFromPoint(), line.getToPoint()};
                m_out += "LINESTRING ";
                points(ends, line.isEmpty() ? 0 : 2);
                return true;
            }
            case JWGeometryLineString:
                m_out += "LINESTRING ";
                sequence(static_cast<const JWLineString&>(g));
                return true;
            case JWGeometryRing:
                m_out += "LINEARRING ";
                sequence(static_cast<const JWRing&>(g));
                return true;
            case JWGeometryPolygon:
                m_out += "POLYGON ";
                polygon(static_cast<const JWPolygon&>(g));
                return true;
            case JWGeometryMultiPoint:
                m_out += "MULTIPOINT ";
                return list(static_cast<const JWMultiPoint&>(g).getMemberList(),
                            [this](const JWPoint& p) { point(p); });
            case JWGeometryMultiLineString:
                m_out += "MULTILINESTRING ";
                return list(static_cast<const JWMultiLineString&>(g).getMemberList(),
                            [this](const JWLineString& line) { sequence(line); });
            case JWGeometryMultiPolygon:
                m_out += "MULTIPOLYGON ";
                return list(static_cast<const JWMultiPolygon&>(g).getMemberList(),
                            [this](const JWPolygon& p) { polygon(p); });
            case JWGeometryGeometryBag:
                return bag(static_cast<const JWGeometryBag&>(g));
            default:
                return false;
        }
    }

  private:
    void point(const JWPoint& p) {
        const JWRawPoint raw = p.getRawPoint();
        points(&raw, p.isEmpty() ? 0 : 1);
    }

    void sequence(const JWPointSequence& s) { points(s.getPointsPtr(), s.getPointCount()); }

    void polygon(const JWPolygon& p) {
        list(p.getRingList(), [this](const JWRing& ring) { sequence(ring); });
    }

    bool bag(const JWGeometryBag& b) {
        m_out += "GEOMETRYCOLLECTION ";
        if (b.isEmpty()) {
            m_out += "EMPTY";
            return true;
        }
        for (int i = 0; i < b.getGeometryCount(); ++i) {
            m_out += i == 0 ? "(" : ", ";
            if (!geometry(*b.getGeometryPtrAt(i))) return false;
        }
        m_out += ')';
        return true;
    }

    template <class Items, class Write>
    bool list(const Items& items, const Write& write) {
        if (items.empty()) {
            m_out += "EMPTY";
            return true;
        }
        const char* before = "(";
        for (const auto& item : items) {
            m_out += before;
            write(item);
            before = ", ";
        }
        m_out += ')';
        return true;
    }

    void points(const JWRawPoint* p, int n) {
        if (n == 0) m_out += "EMPTY";
        for (int i = 0; i < n; ++i) {
            m_out += i == 0 ? "(" : ", ";
            number(p[i].x);
            m_out += ' ';
            number(p[i].y);
        }
        if (n > 0) m_out += ')';
    }

    void number(double value) {
        char text[32];
        m_out.append(text, std::to_chars(text, text + sizeof text, value).ptr);
    }

    std::string& m_out;
};

}  // namespace

enumJWDataErr write(const JWGeometry& geometry, std::string& out) {
    return Writer(out).geometry(geometry) ? JWDataErrNone : JWDataErrUnsupportedGeometryType;
}

}  // namespace jws::wkt
