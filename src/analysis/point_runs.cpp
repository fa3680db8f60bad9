// SPDX-License-Identifier: MIT
#include "analysis/point_runs.h"

#include <algorithm>

namespace jws::detail {

namespace {

JWRawPoint rawPoint(const JWRawPoint* p) { return *p; }
JWRawPoint rawPoint(const JWPoint* p) { return p->getRawPoint(); }

template <class T>
bool holds(const std::vector<T>& points, int n) {
    return n > 0 && static_cast<std::size_t>(n) <= points.size();
}

}  // namespace

PointRuns::PointRuns(const std::vector<JWRawPoint>& points, int n) {
    if (holds(points, n)) add(points.data(), static_cast<std::size_t>(n));
}

PointRuns::PointRuns(const std::vector<JWRawPoint*>& points, int n) { copyPointed(points, n); }

PointRuns::PointRuns(const std::vector<JWPoint*>& points, int n) { copyPointed(points, n); }

PointRuns::PointRuns(const JWGeometry* geometry) {
    if (geometry == nullptr) return;
    switch (geometry->getGeometryType()) {
        case JWGeometryMultiPoint: {
            const auto& members = static_cast<const JWMultiPoint&>(*geometry).getPointList();
            m_copies.reserve(members.size());
            for (const JWPoint& p : members) m_copies.push_back(p.getRawPoint());
            add(m_copies.data(), m_copies.size());
            break;
        }
        case JWGeometryLineString:
        case JWGeometryRing:
            add(static_cast<const JWPointSequence&>(*geometry));
            break;
        case JWGeometryMultiLineString:
            for (const JWLineString& line :
                 static_cast<const JWMultiLineString&>(*geometry).getMemberList()) {
                add(line);
            }
            break;
        case JWGeometryPolygon:
            add(static_cast<const JWPolygon&>(*geometry));
            break;
        case JWGeometryMultiPolygon:
            for (const JWPolygon& polygon :
                 static_cast<const JWMultiPolygon&>(*geometry).getMemberList()) {
                add(polygon);
            }
            break;
        default:
            break;
    }
}

void PointRuns::add(const JWRawPoint* points, std::size_t n) {
    if (n == 0) return;
    m_runs.push_back({points, points + n});
    m_count += n;
}

void PointRuns::add(const JWPointSequence& sequence) {
    add(sequence.getPointList().data(), sequence.getPointList().size());
}

void PointRuns::add(const JWPolygon& polygon) {
    if (polygon.getRingCount() > 0) add(polygon.getExteriorRing());
}

template <class Pointer>
void PointRuns::copyPointed(const std::vector<Pointer>& points, int n) {
    if (!holds(points, n)) return;
    const auto end = points.begin() + n;
    if (std::find(points.begin(), end, nullptr) != end) return;
    m_copies.reserve(static_cast<std::size_t>(n));
    for (auto p = points.begin(); p != end; ++p) m_copies.push_back(rawPoint(*p));
    add(m_copies.data(), m_copies.size());
}

}  // namespace jws::detail
