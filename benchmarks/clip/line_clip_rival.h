// SPDX-License-Identifier: MIT
//
// A contender of the benchmark of clips. Each rival's code is in one source.
#ifndef JWCG_BENCH_LINE_CLIP_RIVAL_H
#define JWCG_BENCH_LINE_CLIP_RIVAL_H

#include <memory>

#include "jw_geometry.h"

namespace bench {

class LineClipRival {
  public:
    virtual ~LineClipRival() = default;
    /// Makes the rival's own geometries. Not timed.
    virtual void load(const jws::JWMultiLineString& lines, const jws::JWPolygon& area) = 0;
    /// Clips every line by the area and keeps the pieces; what is prepared of the area counts.
    virtual void clip() = 0;
    /// Cuts the area along all lines and keeps the faces.
    virtual void cut() = 0;
    /// Length of the pieces inside, or the number of faces. Not timed.
    virtual double measure() const = 0;
    /// Drops the results. Not timed.
    virtual void clear() = 0;
};

/// JWGeometryClip, plain or on the team: pieces inside and outside.
std::unique_ptr<LineClipRival> makeOursLineClip(bool threads);
/// GEOS: of each line the part inside, after asking the prepared area whether it holds the line or
/// misses it; faces by union of all lines and polygonizer.
std::unique_ptr<LineClipRival> makeGeosLineClip();

}  // namespace bench

#endif  // JWCG_BENCH_LINE_CLIP_RIVAL_H
