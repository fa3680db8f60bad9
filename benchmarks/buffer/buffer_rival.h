// SPDX-License-Identifier: MIT
//
// A contender of the buffer benchmark. Each rival's code is in one source.
#ifndef JWCG_BENCH_BUFFER_RIVAL_H
#define JWCG_BENCH_BUFFER_RIVAL_H

#include <memory>
#include <vector>

#include "jw_geometry.h"

namespace bench {

using Geometries = std::vector<std::unique_ptr<jws::JWGeometry>>;

class BufferRival {
  public:
    virtual ~BufferRival() = default;
    /// Makes the rival's own geometries of line strings and (multi)polygons. Not timed.
    virtual void load(const Geometries& geometries) = 0;
    /// Buffers every geometry by itself and keeps the results. Timed.
    virtual void run(double distance) = 0;
    /// Summed area of the results. Not timed.
    virtual double area() const = 0;
    /// Drops the results. Not timed.
    virtual void clear() = 0;
};

/// JWGeometryBuffer, plain or on the team.
std::unique_ptr<BufferRival> makeOursBuffer(bool threads);
/// GEOS with 6 segments a quadrant.
std::unique_ptr<BufferRival> makeGeosBuffer();
/// Clipper 6.4 on coordinates scaled to 30 bits, arcs of 6 segments a quadrant.
std::unique_ptr<BufferRival> makeClipperBuffer();

}  // namespace bench

#endif  // JWCG_BENCH_BUFFER_RIVAL_H
