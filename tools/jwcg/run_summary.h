// SPDX-License-Identifier: MIT
//
// What a finished run says on standard output: a text for people or one JSON object.
#ifndef JWCG_RUN_SUMMARY_H
#define JWCG_RUN_SUMMARY_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command_table.h"
#include "exit_codes.h"
#include "jw_report.h"

namespace jws::cli {

using Json = nlohmann::ordered_json;

/// The version of the program.
const char* version();

/// A layer that took part.
struct LayerSummary {
    std::string file;
    std::string layer;
    std::int64_t features = 0;
    std::int64_t empty = 0;
};

/// What a summary says about areas and vertices.
enum enumAccount {
    AccountOfAreas,     ///< the areas of inputs and result, and whether they add up
    AccountOfVertices,  ///< how many vertices went in and came out
    AccountOfNothing,
};

/// The account of a run.
struct RunSummary {
    std::string command;
    Json parameters;
    LayerSummary input;
    std::optional<LayerSummary> overlay;
    LayerSummary output;
    std::string format;
    std::string reference;  ///< spatial reference for people, empty for none
    std::string areaUnit;
    bool hasAreas = true;  ///< the result is of polygons, or may be, and its area finite
    enumAccount account = AccountOfAreas;
    /// What the command has to say besides: lines for people, and members of the object.
    std::string notes;
    Json details;
    JWLayerReport report;
    std::vector<std::pair<std::string, double>> seconds;  ///< per phase, in order
    ExitCode exitCode = ExitComplete;
};

/// Several lines for people.
std::string asText(const RunSummary& summary);
Json asJson(const RunSummary& summary);
/// The object that --json prints for a command that failed.
Json failureAsJson(const std::string& command, ExitCode code, const std::string& text);

/// Writes one object and a line break to standard output. Bytes that are not UTF-8 are replaced.
void printJson(const Json& object);
/// Lists rejected features on standard error, the first twenty of them unless `all`.
void listRejected(const RunSummary& summary, bool all);

/// Largest memory the process has had so far, bytes; 0 when the system does not tell.
std::int64_t peakMemory();
/// 1234567 as "1,234,567".
std::string grouped(std::int64_t number);

}  // namespace jws::cli

#endif  // JWCG_RUN_SUMMARY_H
