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
    explicit Writer(std::string& out) : out_(out) {}

    bool geometry(const JWGeometry& g) {
        switch (g.getGeometryType()) {
            case JWGeometryPoint: {
                const auto& p = static_cast<const JWPoint&>(g);
                out_ += "POINT ";
                point(p);
                return true;
            }
            case JWGeometryLine: {
                const auto& line = static_cast<const JWLine&>(g);
                const JWRawPoint ends[2] = {line.getFromPoint(), line.getToPoint()};
                out_ += "LINESTRING ";
                points(ends, line.isEmpty() ? 0 : 2);
                return true;
            }
            case JWGeometryLineString:
                out_ += "LINESTRING ";
                sequence(static_cast<const JWLineString&>(g));
                return true;
            case JWGeometryRing:
                out_ += "LINEARRING ";
                sequence(static_cast<const JWRing&>(g));
                return true;
            case JWGeometryPolygon:
                out_ += "POLYGON ";
                polygon(static_cast<const JWPolygon&>(g));
                return true;
            case JWGeometryMultiPoint:
                out_ += "MULTIPOINT ";
                return list(static_cast<const JWMultiPoint&>(g).getMemberList(),
                            [this](const JWPoint& p) { point(p); });
            case JWGeometryMultiLineString:
                out_ += "MULTILINESTRING ";
                return list(static_cast<const JWMultiLineString&>(g).getMemberList(),
                            [this](const JWLineString& line) { sequence(line); });
            case JWGeometryMultiPolygon:
                out_ += "MULTIPOLYGON ";
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
        out_ += "GEOMETRYCOLLECTION ";
        if (b.isEmpty()) {
            out_ += "EMPTY";
            return true;
        }
        for (int i = 0; i < b.getGeometryCount(); ++i) {
            out_ += i == 0 ? "(" : ", ";
            if (!geometry(*b.getGeometryPtrAt(i))) return false;
        }
        out_ += ')';
        return true;
    }

    template <class Items, class Write>
    bool list(const Items& items, const Write& write) {
        if (items.empty()) {
            out_ += "EMPTY";
            return true;
        }
        const char* before = "(";
        for (const auto& item : items) {
            out_ += before;
            write(item);
            before = ", ";
        }
        out_ += ')';
        return true;
    }

    void points(const JWRawPoint* p, int n) {
        if (n == 0) out_ += "EMPTY";
        for (int i = 0; i < n; ++i) {
            out_ += i == 0 ? "(" : ", ";
            number(p[i].x);
            out_ += ' ';
            number(p[i].y);
        }
        if (n > 0) out_ += ')';
    }

    void number(double value) {
        char text[32];
        out_.append(text, std::to_chars(text, text + sizeof text, value).ptr);
    }

    std::string& out_;
};

}  // namespace

enumJWDataErr write(const JWGeometry& geometry, std::string& out) {
    return Writer(out).geometry(geometry) ? JWDataErrNone : JWDataErrUnsupportedGeometryType;
}

}  // namespace jws::wkt
