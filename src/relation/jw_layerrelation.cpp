// SPDX-License-Identifier: MIT
#include "jw_layerrelation.h"

#include "foundation/api_guard.h"
#include "layers/layer_checks.h"
#include "relation/layer_relation.h"

namespace jws {

using namespace detail;

namespace {

/// Runs and reports; −1 with the last error set when that failed.
std::int64_t runRelation(JWFeatureLayer& a, JWFeatureLayer& b,
                         const JWLayerRelationOptions& options,
                         const JWLayerRelation::Visitor& visit, JWLayerReport* report) {
    const std::optional<PairFilter> filter = PairFilter::from(options);
    if (!filter) return -1;
    JWLayerReport account;
    std::int64_t result = -1;
    try {
        const auto inputA = inputFrom(a), inputB = inputFrom(b);
        LayerRelationRun run(*inputA, *inputB, options, *filter, account);
        try {
            result = run.run(visit);
        } catch (...) {
            account.cancelled = run.isStopped();
            throw;
        }
        reportRejected(account.rejected);
    } catch (const LayerFailure& failure) {
        JWReport::setError(failure.error.kind, failure.error.text, failure.error.feature);
    } catch (...) {
        keepCurrentException("relateLayers");
    }
    if (report != nullptr) *report = std::move(account);
    return result;
}

/// Rows without geometry, in one transaction.
class PairTable {
  public:
    PairTable(FeatureOutput& output, bool wideA, bool wideB) : m_output(output) {
        const auto identifier = [](bool wide) { return wide ? JWFieldInteger64 : JWFieldInteger; };
        m_schema = output.createFields(
            {JWField("fid_a", identifier(wideA)), JWField("fid_b", identifier(wideB)),
             JWField("relation", JWFieldString, 64), JWField("matrix", JWFieldString, 9)});
        output.begin();
    }
    void add(const JWRelatedPair& pair, JWLayerReport& report) {
        auto row = std::make_unique<JWFeature>(m_schema);
        row->setFieldValue(0, pair.fidA);
        row->setFieldValue(1, pair.fidB);
        row->setFieldValue(2, JWLayerRelation::relationNames(pair.matrix).c_str());
        row->setFieldValue(3, pair.matrix.text().c_str());
        if (!m_output.write(row, nullptr)) throw LayerFailure();
        if (!m_output.lostValues().empty()) {  // a pair without its features says nothing
            JWReport::setError(JWErrorFormatUnfit, m_output.lostValues().front());
            throw LayerFailure();
        }
        ++report.written;
    }

  private:
    FeatureOutput& m_output;
    JWFields* m_schema;
};

}  // namespace

std::int64_t JWLayerRelation::relateLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                           const JWLayerRelationOptions& options,
                                           const Visitor& visit, JWLayerReport* report) {
    return guarded("relateLayers", std::int64_t{-1}, [&]() -> std::int64_t {
        if (a == nullptr || b == nullptr || !visit) {
            JWReport::setError(JWErrorInvalidArgument, "relateLayers: a layer is missing");
            return -1;
        }
        if (!checkReferences(a->getLayerSpatialRefPtr(), a->getLayerName(),
                             b->getLayerSpatialRefPtr(), b->getLayerName()))
            return -2;
        return runRelation(*a, *b, options, visit, report);
    });
}

std::int64_t JWLayerRelation::relateLayers(JWFeatureLayer* a, JWFeatureLayer* b,
                                           JWFeatureLayer* output,
                                           const JWLayerRelationOptions& options,
                                           JWLayerReport* report) {
    return guarded("relateLayers", std::int64_t{-1}, [&]() -> std::int64_t {
        if (const int code = checkOverlayLayers(a, b, output); code != 0) return code;
        if (!PairFilter::from(options)) return -1;
        JWLayerReport rows;
        const auto target = outputTo(*output);
        std::int64_t result = -1;
        try {
            PairTable table(*target, inputFrom(*a)->identifiersFitInt() == false,
                            inputFrom(*b)->identifiersFitInt() == false);
            const auto write = [&](const JWRelatedPair& pair) {
                table.add(pair, rows);
                return true;
            };
            result = runRelation(*a, *b, options, write, report);
            if (result < 0) {
                target->rollback();
            } else {
                target->commit();
            }
        } catch (const LayerFailure& failure) {
            target->rollback();
            JWReport::setError(failure.error.kind, failure.error.text, failure.error.feature);
            result = -1;
        } catch (...) {
            target->rollback();
            throw;
        }
        if (report != nullptr) report->written = result < 0 ? 0 : rows.written;
        return result;
    });
}

std::string JWLayerRelation::relationNames(const JWRelationMatrix& matrix) {
    std::string names;
    for (int i = 0; i < JWRelationMatrix::kPredicates; ++i) {
        if (!matrix.holds(i)) continue;
        if (!names.empty()) names += ' ';
        names += JWRelationMatrix::predicateName(i);
    }
    if (names.empty()) names = "intersects";  // of areas with spikes, only their boundaries do
    return names;
}

}  // namespace jws
