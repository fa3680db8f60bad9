// SPDX-License-Identifier: MIT
#include "analysis/bounding_layer.h"

#include <memory>
#include <utility>

#include "analysis/bounding_shape.h"
#include "analysis/hull.h"
#include "foundation/vertex_lists.h"
#include "layers/block_filter.h"
#include "layers/layer_checks.h"
#include "layers/layer_map.h"
#include "layers/layer_run.h"

namespace jws::detail {
namespace {

constexpr unsigned kKinds = PointKind | LineKind | AreaKind;

/// What is particular to a kind: its shape, and the names of its measures.
struct Family {
    BoundingShape shape;
    const char* measures[3];

    /// Null, or why there is none.
    const char* make(const PointRuns& points, JWRing& ring, BoundingMeasures& found) const {
        constexpr const char* tooFew = "it has too few distinct points for a bounding geometry";
        if (shape(points, &ring, &found)) return nullptr;
        if (convexHull(points).size() < 3) return tooFew;  // one place, and that again
        return shape == anyHullPolygon ? "its points lie on one line" : kBeyondNumbers;
    }
};

[[noreturn]] void refuse(const char* text) {
    JWReport::setError(JWErrorInvalidArgument, std::string("boundLayer: ") + text);
    throw LayerFailure();
}

Family familyOf(const JWBoundingOptions& options) {
    switch (options.kind) {
        case JWBoundingHull:
            return {anyHullPolygon, {}};
        case JWBoundingEnvelop:
            return {envelopPolygon, {}};
        case JWBoundingMinimumCircle:
            return {minimumCirclePolygon, {"center_x", "center_y", "radius"}};
        case JWBoundingFastBall:
            if (options.wholeLayer) refuse("the bounding ball is of single features only");
            return {boundingBallPolygon, {"center_x", "center_y", "radius"}};
        case JWBoundingMinimumAreaRect:
            return {minimumAreaRectPolygon, {"length", "width", "angle"}};
        case JWBoundingMinimumWidthRect:
            return {minimumWidthRectPolygon, {"length", "width", "angle"}};
    }
    refuse("there is no such kind of bounding geometry");
}

/// The fields for measures, from position `first` on.
class MeasureFields {
  public:
    MeasureFields(const Family& family, bool wanted, ResultSchema& schema) {
        if (!wanted || family.measures[0] == nullptr) return;
        m_first = schema.addField(JWField(family.measures[0], JWFieldReal));
        schema.addField(JWField(family.measures[1], JWFieldReal));
        schema.addField(JWField(family.measures[2], JWFieldReal));
    }
    void fill(const BoundingMeasures& measures, MapResults& results) const {
        for (int i = 0; m_first >= 0 && i < 3; ++i) results.set(m_first + i, measures.values[i]);
    }

  private:
    int m_first = -1;
};

void setUpFeatures(const JWBoundingOptions& options, LayerMapJob& job) {
    const Family family = familyOf(options);
    job.kinds = kKinds;
    job.outputType = JWWKBPolygon;
    job.schema.addFieldsOf(job.input);
    const MeasureFields fields(family, options.measures, job.schema);
    job.map = [family, fields](const JWFeature& feature, MapResults& results) {
        JWRing ring;
        BoundingMeasures measures;
        const PointRuns points(feature.getGeometryPtr());
        if (const char* reason = family.make(points, ring, measures)) {
            return results.reject(reason);
        }
        results.add(std::make_unique<JWPolygon>(std::move(ring)));
        fields.fill(measures, results);
    };
}

/// The points of a layer as far as they can matter.
class GatheredPoints {
  public:
    /// Takes in the vertices of a geometry; of polygons those of the exterior ring.
    void add(const JWGeometry& geometry) {
        const auto append = [this](const JWRawPoint* begin, const JWRawPoint* end) {
            m_points.insert(m_points.end(), begin, end);
        };
        if (geometry.getGeometryType() == JWGeometryPoint) {
            m_points.push_back(static_cast<const JWPoint&>(geometry).getRawPoint());
        } else {
            PointRuns(&geometry).forEachRun(append);
        }
        if (m_points.size() > 2 * m_corners + kMany) reduce();
    }
    /// Leaves the corners of the hull: they have the same hull, circle, rectangles and envelope.
    void reduce() {
        m_points = convexHull(runs());
        m_corners = m_points.size();
    }
    PointRuns runs() const { return PointRuns(m_points.data(), m_points.size()); }

  private:
    static constexpr std::size_t kMany = std::size_t{1} << 20;

    std::vector<JWRawPoint> m_points;
    std::size_t m_corners = 0;
};

/// One geometry around all features of a layer.
class WholeLayer {
  public:
    WholeLayer(FeatureInput& input, FeatureOutput& output, const JWBoundingOptions& options,
               JWLayerReport& report)
        : m_input(input),
          m_output(output),
          m_family(familyOf(options)),
          m_blocks(input.count(), options.blockSize),
          m_count(m_schema.addField(JWField("count", JWFieldInteger64))),
          m_fields(m_family, options.measures, m_schema),
          m_report(report),
          m_run(report, input.count()) {
        m_output.setGeometryType(JWWKBPolygon);
        m_schema.create(m_output);
    }

    void gather();
    std::int64_t write();

  private:
    void take(const JWFeature& feature);

    FeatureInput& m_input;
    FeatureOutput& m_output;
    Family m_family;
    Blocks m_blocks;
    ResultSchema m_schema;
    int m_count;
    MeasureFields m_fields;
    JWLayerReport& m_report;
    LayerRun m_run;
    GatheredPoints m_points;
    std::int64_t m_gathered = 0;
};

void WholeLayer::take(const JWFeature& feature) {
    const GeometryCheck check = checkGeometry(feature, kKinds);
    m_run.countRead(m_input, feature, check, kKinds);
    if (check != GeometryCheck::Usable) return;
    const JWGeometry& geometry = *feature.getGeometryPtr();
    m_report.areaA += areaOf(geometry);
    m_report.verticesA += vertexCount(geometry);
    m_points.add(geometry);
    ++m_gathered;
}

void WholeLayer::gather() {
    std::vector<std::shared_ptr<const JWFeature>> block;
    for (std::int64_t i = 0; i < m_blocks.number(); ++i) {
        m_input.readBlock(m_blocks.first(i) - 1, m_blocks.size(), block);
        for (const std::shared_ptr<const JWFeature>& feature : block) take(*feature);
        m_run.setDone(m_report.readA);
        m_run.beat();
    }
}

std::int64_t WholeLayer::write() {
    JWRing ring;
    BoundingMeasures measures;
    if (m_gathered == 0) return 0;
    m_points.reduce();
    if (const char* reason = m_family.make(m_points.runs(), ring, measures)) {
        m_run.reject(m_input, -1, std::string("the layer as a whole: ") + reason);
        return 0;
    }
    PendingResults made;
    const Growth heldAnyway = [](std::size_t) {};
    std::vector<std::string> failures;
    const JWFeature none;
    MapResults results(m_schema, none, -1, made, failures, heldAnyway);
    results.add(std::make_unique<JWPolygon>(std::move(ring)));
    results.set(m_count, m_gathered);
    m_fields.fill(measures, results);
    return m_run.transact(m_output,
                          [&] { writeResult(m_output, made.last(), m_input, -1, m_report); });
}

std::int64_t boundWhole(FeatureInput& input, FeatureOutput& output,
                        const JWBoundingOptions& options, JWLayerReport& report) {
    const Stopwatch watch(report.secondsOverlay);
    WholeLayer whole(input, output, options, report);
    whole.gather();
    return whole.write();
}

}  // namespace

int boundLayer(JWFeatureLayer* input, JWFeatureLayer* output, const JWBoundingOptions& options,
               JWLayerReport* report) {
    constexpr const char* name = "boundLayer";
    if (!options.wholeLayer) {
        return mapLayer(name, input, output, {options.blockSize, options.threads}, report,
                        [&](LayerMapJob& job) { setUpFeatures(options, job); });
    }
    return accountedLayers(name, input, input, output, report, [&](JWLayerReport& account) {
        return boundWhole(*inputFrom(*input), *outputTo(*output), options, account);
    });
}

}  // namespace jws::detail
