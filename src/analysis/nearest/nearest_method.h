// SPDX-License-Identifier: MIT
//
// A way to find the nearest features: what the driver of layer operations and the form for features
// in memory know of the established search and of the exact one.
#ifndef JW_ANALYSIS_NEAREST_NEAREST_METHOD_H
#define JW_ANALYSIS_NEAREST_NEAREST_METHOD_H

#include <functional>
#include <memory>
#include <vector>

#include "jw_geometrynearest.h"

namespace jws::detail {

/// Lines to targets, by their positions among the targets.
using ShortestRecords = std::vector<ShortestRecord>;

/// A source as far as it is known before it is looked at: the rectangle of a point is the point.
struct NearestSource {
    const JWFeature* feature = nullptr;
    bool isPoint = false;
    JWEnvelop box = JWEnvelop::invalid();

    const JWGeometry& geometry() const { return *feature->getGeometryPtr(); }
    JWRawPoint point() const { return {box.minX, box.minY}; }
};

/// Finds the targets nearest to one source; one worker has it to itself.
using NearestFinder =
    std::function<void(const NearestSource& source, ShortestRecords& connections)>;

using FeatureList = std::vector<std::shared_ptr<const JWFeature>>;

class NearestMethod {
  public:
    virtual ~NearestMethod() = default;
    /// The kinds of geometry that it takes, as `GeometryKind`s.
    virtual unsigned sourceKinds() const = 0;
    virtual unsigned targetKinds() const = 0;
    /// Multi-points are taken as well as points.
    virtual bool takesMultiPoints() const = 0;
    /// Coordinates larger than this are refused.
    virtual double largestCoordinate() const = 0;
    /// Why a source may get no answer.
    virtual const char* whyNone() const = 0;
    /// Prepares the targets, which must stay; `extent` is that of their whole layer. Called once.
    virtual void setTargets(const FeatureList& targets, const JWEnvelop& extent) = 0;
    /// Makes what one worker needs; after `setTargets`, by any thread.
    virtual NearestFinder finder() const = 0;
};

}  // namespace jws::detail

#endif  // JW_ANALYSIS_NEAREST_NEAREST_METHOD_H
