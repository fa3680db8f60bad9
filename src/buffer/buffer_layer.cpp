// SPDX-License-Identifier: MIT
//
// Buffers of a layer, each a feature, or united to one.
//
// Features are dealt out to the team; where there are fewer of them than threads, each is buffered
// by the whole team instead. To unite them the outlines of all buffers are kept in memory and
// united neighbours first, which is the union that buffers of many parts go through anyway; they
// are gathered in the order of the layer, so that the result depends on nothing else.
#include <algorithm>
#include <cmath>
#include <utility>

#include "boolean/ring_clip.h"
#include "buffer/geometry_buffer.h"
#include "jw_feature.h"
#include "jw_geometrybuffer.h"
#include "layers/block_filter.h"
#include "layers/layer_checks.h"
#include "layers/layer_map.h"
#include "layers/layer_run.h"

namespace jws {

using namespace detail;

namespace {

constexpr unsigned kKinds = PointKind | LineKind | AreaKind;

[[noreturn]] void refuse(const std::string& text) {
    JWReport::setError(JWErrorInvalidArgument, "bufferLayer: " + text);
    throw LayerFailure();
}

/// What the options come to for a layer.
class LayerBuffer {
  public:
    LayerBuffer(const JWBufferOptions& options, FeatureInput& input)
        : m_distance(options.distance), m_type(options.type), m_fieldName(options.distanceField) {
        if (m_type != JWBufferFace && m_type != JWBufferEdge) refuse("there is no such type");
        const bool isOptional = !m_fieldName.empty() && m_distance == 0;
        if (!isOptional && !isUsable(m_distance))
            refuse("the distance is not greater than 0 and finite");
        if (m_fieldName.empty()) return;
        m_field = input.fields() ? input.fields()->getFieldIndex(m_fieldName.c_str()) : -1;
        if (m_field < 0) refuse("the input has no field '" + m_fieldName + "'");
    }

    /// Throws BadBuffer.
    double distanceOf(const JWFeature& feature) const {
        if (m_field < 0 || (m_distance > 0 && !feature.isFieldSet(m_field))) return m_distance;
        double distance = 0;
        if (!feature.getFieldAsDouble(m_field, distance))
            throw BadBuffer("there is no distance in field '" + m_fieldName + "'");
        if (!isUsable(distance))
            throw BadBuffer("the distance in field '" + m_fieldName +
                            "' is not greater than 0 and finite");
        return distance;
    }

    /// Throws BadBuffer and ClipFailure.
    FlaggedRings make(const JWFeature& feature, const Team& team) const {
        FlaggedRings rings = bufferGeometry(*feature.getGeometryPtr(), m_type,
                                            {distanceOf(feature), kPlainArcs, team});
        if (rings.empty()) throw BadBuffer("the buffer is empty");
        return rings;
    }

  private:
    static bool isUsable(double distance) { return distance > 0 && std::isfinite(distance); }

    double m_distance;
    enumJWBufferType m_type;
    std::string m_fieldName;
    int m_field = -1;
};

std::int64_t bufferEach(JWFeatureLayer& in, JWFeatureLayer& out, const JWBufferOptions& options,
                        JWLayerReport& report) {
    const std::unique_ptr<FeatureInput> input = inputFrom(in);
    const std::unique_ptr<FeatureOutput> output = outputTo(out);
    const LayerBuffer buffer(options, *input);
    const bool isFew = input->count() < teamSize(options.threads);
    LayerMapJob job(*input, *output);
    job.kinds = kKinds;
    job.outputType = JWWKBMultiPolygon;
    job.schema.addFieldsOf(*input);
    job.map = [&](const JWFeature& feature, MapResults& results) {
        try {
            const Team team(isFew ? options.threads : 1);
            results.add(polygonize(buffer.make(feature, team)));
        } catch (const BadBuffer& bad) {
            results.reject(bad.what());
        } catch (const ClipFailure& failure) {
            results.reject(failure.what());
        }
    };
    return runLayerMap(job, {options.blockSize, isFew ? 1 : options.threads}, report);
}

/// The buffers of all features, in the order of the layer, and their union.
class BufferGathering {
  public:
    BufferGathering(const LayerBuffer& buffer, FeatureInput& input, const JWBufferOptions& options,
                    LayerRun& run)
        : m_buffer(buffer),
          m_input(input),
          m_team(options.threads),
          m_run(run),
          m_isFew(input.count() < m_team.size()),
          m_blocks(input.count(), options.blockSize) {}

    /// Null when no feature has a buffer. Throws LayerFailure.
    std::unique_ptr<JWGeometry> unite() {
        const Pulse pulse([this] { m_run.beat(); });
        for (std::int64_t block = 0; block < m_blocks.number(); ++block) {
            m_input.readBlock(m_blocks.first(block) - 1, m_blocks.size(), m_features);
            bufferBlock();
            m_run.beat();
        }
        if (m_buffers.empty()) return nullptr;
        if (isTooSmall(m_leastDistance, m_largest)) refuse(kTooSmallForUnion);
        std::unique_ptr<JWGeometry> united = polygonize(uniteGroups(std::move(m_buffers), m_team));
        if (!united) refuse(kTooSmallForUnion);
        return united;
    }

  private:
    static constexpr const char* kTooSmallForUnion =
        "a distance is too small for the precision of the layer's largest coordinate";

    /// What becomes of a feature.
    struct Made {
        GeometryCheck check = GeometryCheck::Usable;
        FlaggedRings rings;
        std::string failure;
    };

    void bufferBlock() {
        std::vector<Made> made(m_features.size());
        const Team alone(1);
        parallelChunks(m_isFew ? alone : m_team, static_cast<std::int64_t>(m_features.size()), 16,
                       [&](std::int64_t begin, std::int64_t end) {
                           for (auto i = static_cast<std::size_t>(begin);
                                i < static_cast<std::size_t>(end); ++i)
                               bufferOne(*m_features[i], m_isFew ? m_team : alone, made[i]);
                           return true;
                       });
        for (std::size_t i = 0; i < made.size(); ++i) take(*m_features[i], made[i]);
    }

    void bufferOne(const JWFeature& feature, const Team& team, Made& made) const {
        Pulse::tick();
        m_run.addDone(1);
        made.check = checkGeometry(feature, kKinds);
        if (made.check != GeometryCheck::Usable) return;
        try {
            made.rings = m_buffer.make(feature, team);
        } catch (const BadBuffer& bad) {
            made.failure = bad.what();
        } catch (const ClipFailure& failure) {
            made.failure = failure.what();
        }
    }

    void take(const JWFeature& feature, Made& made) {
        m_run.countRead(m_input, feature, made.check, kKinds);
        if (!made.failure.empty()) m_run.reject(m_input, feature.getFID64(), made.failure);
        if (made.rings.empty()) return;
        m_leastDistance = std::min(m_leastDistance, m_buffer.distanceOf(feature));
        for (const JWRing& ring : made.rings.rings) {
            const JWEnvelop e = ring.getEnvelop();
            for (const double v : {e.minX, e.minY, e.maxX, e.maxY})
                m_largest = std::max(m_largest, std::fabs(v));
        }
        m_buffers.push_back(std::move(made.rings));
    }

    const LayerBuffer& m_buffer;
    FeatureInput& m_input;
    Team m_team;
    LayerRun& m_run;
    bool m_isFew;  ///< features: each is then buffered by the whole team
    Blocks m_blocks;
    std::vector<std::shared_ptr<const JWFeature>> m_features;
    std::vector<FlaggedRings> m_buffers;
    double m_leastDistance = HUGE_VAL;
    double m_largest = 0;  ///< coordinate of the buffers
};

std::int64_t bufferAll(JWFeatureLayer& in, JWFeatureLayer& out, const JWBufferOptions& options,
                       JWLayerReport& report) {
    const std::unique_ptr<FeatureInput> input = inputFrom(in);
    const std::unique_ptr<FeatureOutput> output = outputTo(out);
    const LayerBuffer buffer(options, *input);
    LayerRun run(report, input->count());
    std::unique_ptr<JWGeometry> united;
    {
        const Stopwatch watch(report.secondsOverlay);
        united = BufferGathering(buffer, *input, options, run).unite();
    }
    ResultSchema schema;
    output->setGeometryType(JWWKBMultiPolygon);
    schema.create(*output);
    if (!united) return 0;
    PendingResult result;
    result.area = areaOf(*united);
    result.feature = schema.makeFeature(std::move(united), {nullptr}, result.lostField);
    return run.transact(*output, [&] { writeResult(*output, result, *input, -1, report); });
}

}  // namespace

int JWGeometryBuffer::bufferLayer(JWFeatureLayer* in, JWFeatureLayer* out,
                                  const JWBufferOptions& options, JWLayerReport* report) {
    return accountedLayers("bufferLayer", in, in, out, report, [&](JWLayerReport& account) {
        return options.dissolve ? bufferAll(*in, *out, options, account)
                                : bufferEach(*in, *out, options, account);
    });
}

}  // namespace jws
