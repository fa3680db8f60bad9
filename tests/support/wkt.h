// SPDX-License-Identifier: MIT
//
// Geometries from and to text, and a canonical form to compare them in.
#ifndef JW_TESTS_SUPPORT_WKT_H
#define JW_TESTS_SUPPORT_WKT_H

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "jw_geometry.h"

namespace jwtest {

/// Reads a geometry; a text that does not parse is a mistake in the test and throws.
inline std::unique_ptr<jws::JWGeometry> fromWkt(const char* wkt) {
    jws::JWGeometry* geometry = nullptr;
    if (jws::JWGeometryFactory::createFromWkt(wkt, &geometry) != jws::JWDataErrNone) {
        throw std::invalid_argument(std::string("not well-known text: ") + wkt);
    }
    return std::unique_ptr<jws::JWGeometry>(geometry);
}
inline std::unique_ptr<jws::JWGeometry> fromWkt(const std::string& wkt) {
    return fromWkt(wkt.c_str());
}

/// Reads a geometry of one class, by value: `fromWktAs<JWPolygon>("POLYGON (...)")`.
template <class Geometry>
Geometry fromWktAs(const char* wkt) {
    Geometry geometry;
    if (geometry.importFromWkt(wkt, false) != jws::JWDataErrNone) {
        throw std::invalid_argument(std::string("not of the class asked for: ") + wkt);
    }
    return geometry;
}

/// Writes a geometry; "(no text)" for one without a well-known form.
inline std::string toWkt(const jws::JWGeometry& geometry) {
    char* text = nullptr;
    if (geometry.exportToWkt(&text) != jws::JWDataErrNone) return "(no text)";
    std::string result = text;
    jws::JWGeometry::freeWkt(text);
    return result;
}
inline std::string toWkt(const jws::JWGeometry* geometry) {
    return geometry == nullptr ? "(null)" : toWkt(*geometry);
}

namespace detail {

inline bool pointsBefore(const std::vector<jws::JWRawPoint>& a,
                         const std::vector<jws::JWRawPoint>& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

inline void normalize(jws::JWLineString& line) {
    std::vector<jws::JWRawPoint> reversed(line.getPointList().rbegin(), line.getPointList().rend());
    if (pointsBefore(reversed, line.getPointList())) line.getPointList() = std::move(reversed);
}

/// Closed, starting at its smallest point, counter-clockwise or, for a hole, clockwise. Of several
/// visits to the smallest point the one with the smallest sequence comes first.
inline void normalize(jws::JWRing& ring, bool hole = false) {
    ring.geoNormalize();
    if (hole && ring.getOrientation() == jws::JWRingCounterClockwise) ring.reverseOrientation();
    auto& points = ring.getPointList();
    if (points.size() < 2) return;
    points.pop_back();
    const jws::JWRawPoint smallest = *std::min_element(points.begin(), points.end());
    std::vector<jws::JWRawPoint> best;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i] != smallest) continue;
        std::vector<jws::JWRawPoint> turned(points.begin() + i, points.end());
        turned.insert(turned.end(), points.begin(), points.begin() + i);
        if (best.empty() || pointsBefore(turned, best)) best = std::move(turned);
    }
    if (!best.empty()) points = std::move(best);  // empty when the smallest is NaN
    ring.closeRing();
}

inline void normalize(jws::JWPolygon& polygon) {
    auto& rings = polygon.getRingList();
    for (std::size_t i = 0; i < rings.size(); ++i) normalize(rings[i], i > 0);
    if (rings.size() > 2) {
        std::sort(rings.begin() + 1, rings.end(), [](const auto& a, const auto& b) {
            return pointsBefore(a.getPointList(), b.getPointList());
        });
    }
}

}  // namespace detail

/// The canonical form of a geometry: each ring as above, each line in its smaller direction, holes
/// and members of collections sorted. Geometries of the same points, rings and members have the
/// same.
inline std::unique_ptr<jws::JWGeometry> normalized(const jws::JWGeometry& geometry) {
    std::unique_ptr<jws::JWGeometry> copy(geometry.clone());
    if (auto* line = dynamic_cast<jws::JWLineString*>(copy.get())) {
        detail::normalize(*line);
    } else if (auto* ring = dynamic_cast<jws::JWRing*>(copy.get())) {
        detail::normalize(*ring);
    } else if (auto* polygon = dynamic_cast<jws::JWPolygon*>(copy.get())) {
        detail::normalize(*polygon);
    } else if (auto* collection = dynamic_cast<jws::JWGeometryCollection*>(copy.get())) {
        std::vector<std::pair<std::string, std::unique_ptr<jws::JWGeometry>>> members;
        for (int i = 0; i < collection->getGeometryCount(); ++i) {
            auto member = normalized(*collection->getGeometryPtrAt(i));
            std::string text = toWkt(*member);
            members.emplace_back(std::move(text), std::move(member));
        }
        std::sort(members.begin(), members.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        for (std::size_t i = 0; i < members.size(); ++i) {
            collection->updateGeometryAt(members[i].second.get(), static_cast<int>(i));
        }
    }
    copy->updateEnvelop();
    return copy;
}

/// The text of the canonical form.
inline std::string normalizedWkt(const jws::JWGeometry& geometry) {
    return toWkt(*normalized(geometry));
}
inline std::string normalizedWkt(const jws::JWGeometry* geometry) {
    return geometry == nullptr ? "(null)" : normalizedWkt(*geometry);
}
/// The text of the canonical form of what a text holds.
inline std::string normalizedWkt(const char* wkt) { return normalizedWkt(*fromWkt(wkt)); }

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_WKT_H
