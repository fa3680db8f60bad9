// SPDX-License-Identifier: MIT
//
// A dissolve while it runs: the schema, then three steps. `read` decodes all features and finds out
// which take part, with what values; `group` makes clusters of them, and groups of equal values in
// each; `write` unites the groups and writes them in order.
#ifndef JW_OVERLAY_DISSOLVE_RUN_H
#define JW_OVERLAY_DISSOLVE_RUN_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/parallel.h"
#include "layers/layer_run.h"
#include "layers/ordered_walk.h"
#include "layers/pending_result.h"
#include "overlay/dissolve_driver.h"
#include "overlay/group_union.h"
#include "trees/envelope_clusters.h"

namespace jws::detail {

/// Whether a feature takes part; what it is rejected for is in `reason`.
struct Examination {
    bool empty = false;
    const char* reason = nullptr;
};

/// What becomes of a group until its turn to be written comes.
struct GroupResult {
    PendingResults pieces;
    double areaMade = 0;
    double areaBefore = 0;
    double overlap = 0;
    double dropped = 0;
    std::int64_t firstFid = -1;
    std::vector<std::pair<std::int64_t, std::string>> failures;  ///< feature and reason
};

class DissolveRun {
  public:
    DissolveRun(FeatureInput& input, FeatureOutput& output, DissolveKind kind,
                const std::vector<int>& fields, const JWDissolveOptions& options,
                JWLayerReport& report)
        : m_input(input),
          m_output(output),
          m_kind(kind),
          m_fields(fields),
          m_options(options),
          m_report(report),
          m_team(options.threads),
          m_total(input.count()),
          m_run(report, 2 * m_total),
          m_unions(m_items, options.tolerance) {}

    void run();

  private:
    struct NoSlot {};
    using Chunk = FeatureChunk<NoSlot>;
    /// Neighbouring groups.
    struct Groups : WorkChunk {
        std::size_t first = 0;
        std::vector<GroupResult> results;
        std::size_t size() const { return results.size(); }
    };

    void createSchema();
    void read();
    void group();
    void write();
    void examine(std::size_t position);
    Examination examineGeometry(DissolveItem& item);
    void keepAccount();
    PositionLists clusters() const;
    bool take(Groups& groups);
    void unite(OrderedWork<Groups>& work, Groups& groups);
    void makeResult(std::size_t group, GroupResult& result, const Growth& grew);
    std::vector<std::unique_ptr<JWGeometry>> geometriesOf(std::size_t group, GroupResult& result);
    void makeFeatures(std::size_t group, std::vector<std::unique_ptr<JWGeometry>> geometries,
                      GroupResult& result, const Growth& grew);
    void writePieces(Groups& groups, std::size_t i);
    void writePart(Groups& groups, std::size_t i);
    void writeResult(Groups& groups, std::size_t i);
    [[noreturn]] static void fail(enumJWErrorKind kind, const std::string& text);

    FeatureInput& m_input;
    FeatureOutput& m_output;
    DissolveKind m_kind;
    const std::vector<int>& m_fields;
    const JWDissolveOptions& m_options;
    JWLayerReport& m_report;
    Team m_team;
    std::int64_t m_total;
    LayerRun m_run;  ///< features read, and written on top of that

    JWFields* m_schema = nullptr;
    std::vector<std::string> m_names;  ///< of the result fields, as asked for
    std::vector<DissolveItem> m_items;
    std::vector<Examination> m_examined;
    std::vector<std::string> m_keys;
    PositionLists m_groups;
    std::size_t m_next = 0;  ///< the group to be taken next
    GroupUnions m_unions;
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_DISSOLVE_RUN_H
