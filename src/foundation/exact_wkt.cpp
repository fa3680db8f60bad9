// SPDX-License-Identifier: MIT
//
// A driver that writes text asks a geometry for its own, so one that has it ready is all it takes.
#include "foundation/exact_wkt.h"

#include <charconv>
#include <utility>

namespace jws::detail {
namespace {

class Writer {
  public:
    explicit Writer(bool hasZ, bool hasM) : m_hasZ(hasZ), m_hasM(hasM) {}

    void geometry(const OGRGeometry& g) {
        m_text += g.getGeometryName();
        m_text += m_hasZ && m_hasM ? " ZM " : m_hasZ ? " Z " : m_hasM ? " M " : " ";
        body(g);
    }
    std::string take() { return std::move(m_text); }

  private:
    void body(const OGRGeometry& g) {
        if (g.IsEmpty()) {
            m_text += "EMPTY";
            return;
        }
        char before = '(';
        const auto next = [&] { m_text += std::exchange(before, ','); };
        switch (wkbFlatten(g.getGeometryType())) {
            case wkbPoint:
                next();
                point(*g.toPoint());
                break;
            case wkbPolygon:
                for (const OGRLinearRing* ring : *g.toPolygon()) {
                    next();
                    body(*ring);
                }
                break;
            case wkbLineString:
                for (const OGRPoint& p : *g.toLineString()) {
                    next();
                    point(p);
                }
                break;
            case wkbGeometryCollection:
                for (const OGRGeometry* member : *g.toGeometryCollection()) {
                    next();
                    geometry(*member);
                }
                break;
            default:
                for (const OGRGeometry* member : *g.toGeometryCollection()) {
                    next();
                    body(*member);
                }
                break;
        }
        m_text += ')';
    }

    void point(const OGRPoint& p) {
        number(p.getX());
        m_text += ' ';
        number(p.getY());
        if (m_hasZ) m_text += ' ', number(p.getZ());
        if (m_hasM) m_text += ' ', number(p.getM());
    }

    void number(double value) {
        char text[32];
        m_text.append(text, std::to_chars(text, text + sizeof text, value).ptr);
    }

    bool m_hasZ;
    bool m_hasM;
    std::string m_text;
};

class TextGeometry : public OGRPoint {
  public:
    /// `point`: where it lies, if it is one, for a driver that asks points for their coordinates.
    TextGeometry(OGRwkbGeometryType type, const OGRPoint& point, std::string text)
        : OGRPoint(point), m_type(type), m_text(std::move(text)) {}
    OGRwkbGeometryType getGeometryType() const override { return m_type; }
    using OGRGeometry::exportToWkt;
    std::string exportToWkt(const OGRWktOptions&, OGRErr* error) const override {
        if (error != nullptr) *error = OGRERR_NONE;
        return m_text;
    }
    OGRPoint* clone() const override { return new TextGeometry(*this); }

  private:
    OGRwkbGeometryType m_type;
    std::string m_text;
};

}  // namespace

std::unique_ptr<OGRGeometry> asExactText(const OGRGeometry& geometry) {
    Writer writer(geometry.Is3D() != 0, geometry.IsMeasured() != 0);
    writer.geometry(geometry);
    const OGRwkbGeometryType type = geometry.getGeometryType();
    const bool isPoint = wkbFlatten(type) == wkbPoint;
    return std::make_unique<TextGeometry>(type, isPoint ? *geometry.toPoint() : OGRPoint(0, 0),
                                          writer.take());
}

}  // namespace jws::detail
