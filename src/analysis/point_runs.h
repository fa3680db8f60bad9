// SPDX-License-Identifier: MIT
//
// PointRuns: the points of any input, in order, as runs of lists where they lie.
//
// Bounding geometries ask for the vertices of a vector of points, values or pointers, or of any of
// six kinds of geometry. Each is a sequence of contiguous runs of raw points, so algorithms see one
// thing, and nothing is copied except points that do not lie in lists of raw points.
#ifndef JW_ANALYSIS_POINT_RUNS_H
#define JW_ANALYSIS_POINT_RUNS_H

#include <cstddef>
#include <vector>

#include "jw_geometry.h"

namespace jws::detail {

class PointRuns {
  public:
    /// The first n points of a vector, which must outlive the runs; pointed-to points are copied.
    /// None when n is negative or more than the vector holds, or when one of the pointers is null.
    PointRuns(const std::vector<JWRawPoint>& points, int n);
    PointRuns(const std::vector<JWRawPoint*>& points, int n);
    PointRuns(const std::vector<JWPoint*>& points, int n);
    /// The vertices of a multi-point, line string, multi-line string, ring, polygon (its exterior
    /// ring) or multi-polygon, which must outlive the runs; none for any other kind and for null.
    explicit PointRuns(const JWGeometry* geometry);
    /// n points in a row, which must outlive the runs.
    PointRuns(const JWRawPoint* points, std::size_t n) { add(points, n); }

    std::size_t count() const { return m_count; }
    const JWRawPoint& first() const { return *m_runs.front().begin; }

    /// Calls `body(begin, end)` for each run, in order; none is empty.
    template <class Body>
    void forEachRun(Body&& body) const {
        for (const Run& run : m_runs) body(run.begin, run.end);
    }
    /// Calls `body(point)` for each point, in order.
    template <class Body>
    void forEach(Body&& body) const {
        for (const Run& run : m_runs) {
            for (const JWRawPoint* p = run.begin; p != run.end; ++p) body(*p);
        }
    }

    PointRuns(const PointRuns&) = delete;
    PointRuns& operator=(const PointRuns&) = delete;

  private:
    struct Run {
        const JWRawPoint* begin;
        const JWRawPoint* end;
    };

    void add(const JWRawPoint* points, std::size_t n);
    void add(const JWPointSequence& sequence);
    void add(const JWPolygon& polygon);
    template <class Pointer>
    void copyPointed(const std::vector<Pointer>& points, int n);

    std::vector<Run> m_runs;
    std::vector<JWRawPoint> m_copies;
    std::size_t m_count = 0;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_POINT_RUNS_H
