// SPDX-License-Identifier: MIT
#include "run_summary.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace jws::cli {
namespace {

std::string formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string line(const char* label, const LayerSummary& layer) {
    char head[32];
    std::snprintf(head, sizeof head, "%-9s", label);
    std::string text =
        head + layer.file + ", layer " + layer.layer + ": " + grouped(layer.features) + " features";
    if (layer.empty > 0) text += ", " + grouped(layer.empty) + " without geometry";
    return text + "\n";
}

Json layerAsJson(const LayerSummary& layer) {
    return {{"file", layer.file},
            {"layer", layer.layer},
            {"features", layer.features},
            {"empty", layer.empty}};
}

Json rejectedAsJson(const std::vector<JWRejectedFeature>& rejected) {
    Json list = Json::array();
    for (const JWRejectedFeature& feature : rejected) {
        list.push_back(
            {{"file", feature.source}, {"layer", feature.layer}, {"reason", feature.reason}});
        if (feature.fid >= 0) list.back()["fid"] = feature.fid;
    }
    return {{"count", rejected.size()}, {"features", std::move(list)}};
}

/// Where the input's area went, in one line; nothing for points and lines.
std::string accountText(const RunSummary& summary) {
    const JWLayerReport& report = summary.report;
    if (summary.account == AccountOfVertices) {
        return "vertices " + grouped(report.verticesA) + " read, " + grouped(report.vertices) +
               " written\n";
    }
    if (summary.account == AccountOfNothing) return {};
    if (report.areaA == 0 && report.areaB == 0) return {};
    if (!std::isfinite(report.areaA + report.areaB + report.area)) {
        return "account  areas beyond all numbers; not checked\n";
    }
    std::string text = "account  input " + formatted("%.10g", report.areaA);
    if (summary.overlay) text += ", overlay " + formatted("%.10g", report.areaB);
    text += ", result " + formatted("%.10g", report.area);
    if (report.areaOverlap != 0) text += ", overlaps " + formatted("%.3g", report.areaOverlap);
    if (report.areaDropped != 0) text += ", dropped " + formatted("%.3g", report.areaDropped);
    if (report.areaRefused != 0) text += ", refused " + formatted("%.3g", report.areaRefused);
    text += report.checked ? "; areas add up to " + formatted("%.1g", report.residual)
                           : "; not checked";
    return text + "\n";
}

Json accountAsJson(const RunSummary& summary) {
    const JWLayerReport& report = summary.report;
    if (summary.account == AccountOfVertices) {
        return {{"input_vertices", report.verticesA}, {"output_vertices", report.vertices}};
    }
    Json account = {{"input_area", report.areaA}};
    if (summary.overlay) account["overlay_area"] = report.areaB;
    account["output_area"] = report.area;
    account["dropped_area"] = report.areaDropped;
    account["refused_area"] = report.areaRefused;
    if (summary.command == "dissolve") account["overlap_area"] = report.areaOverlap;
    account["checked"] = report.checked;
    account["residual"] = report.checked ? Json(report.residual) : Json(nullptr);
    account["warning"] = report.warning.empty() ? Json(nullptr) : Json(report.warning);
    return account;
}

}  // namespace

const char* version() { return JWCG_VERSION; }

std::string grouped(std::int64_t number) {
    std::string text = std::to_string(number);
    const std::size_t first = number < 0 ? 1 : 0;
    for (std::size_t at = text.size(); at > first + 3;) text.insert(at -= 3, ",");
    return text;
}

std::int64_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string text; std::getline(status, text);) {
        if (text.compare(0, 6, "VmHWM:") == 0) return std::stoll(text.substr(6)) * 1024;
    }
    return 0;
}

std::string asText(const RunSummary& summary) {
    const JWLayerReport& report = summary.report;
    std::ostringstream out;
    out << line("input", summary.input);
    if (summary.overlay) out << line("overlay", *summary.overlay);
    out << line("output", summary.output);
    if (summary.hasAreas) {
        out << "area     " << formatted("%.10g", report.area) << ' ' << summary.areaUnit << "\n";
    }
    out << accountText(summary) << summary.notes;
    if (summary.overlay && summary.account == AccountOfAreas) {
        out << "pairs    " << grouped(report.pairs) << " with envelopes that meet\n";
    }
    if (!report.rejected.empty()) {
        out << "rejected " << grouped(static_cast<std::int64_t>(report.rejected.size())) << "\n";
    }
    double total = 0;
    std::string phases;
    for (const auto& [phase, seconds] : summary.seconds) {
        total += seconds;
        phases += (phases.empty() ? "" : ", ") + phase + formatted(" %.2f", seconds);
    }
    out << "time     " << formatted("%.2f s (", total) << phases << ")\n";
    out << "memory   " << formatted("%.0f MB", static_cast<double>(peakMemory()) / 1e6)
        << " at most\n";
    return out.str();
}

Json asJson(const RunSummary& summary) {
    const JWLayerReport& report = summary.report;
    Json output = layerAsJson(summary.output);
    output.erase("empty");
    output["format"] = summary.format;
    if (summary.hasAreas) {
        output["area"] = report.area;
        output["area_unit"] = summary.areaUnit;
    }
    Json object = {
        {"command", summary.command},
        {"version", version()},
        {"exit_code", summary.exitCode},
        {"parameters", summary.parameters},
        {"spatial_reference", summary.reference.empty() ? Json(nullptr) : Json(summary.reference)},
        {"input", layerAsJson(summary.input)}};
    if (summary.overlay) object["overlay"] = layerAsJson(*summary.overlay);
    object["output"] = std::move(output);
    if (summary.overlay) object["pairs"] = report.pairs;
    if (summary.account != AccountOfNothing) object["account"] = accountAsJson(summary);
    if (summary.details.is_object()) object.update(summary.details);
    object["rejected"] = rejectedAsJson(report.rejected);
    double total = 0;
    Json seconds = Json::object();
    for (const auto& [phase, value] : summary.seconds) {
        seconds[phase] = value;
        total += value;
    }
    seconds["total"] = total;
    object["seconds"] = std::move(seconds);
    object["peak_memory_bytes"] = peakMemory();
    return object;
}

Json failureAsJson(const std::string& command, ExitCode code, const std::string& text) {
    return {{"command", command}, {"version", version()}, {"exit_code", code}, {"error", text}};
}

void printJson(const Json& object) {
    const std::string text = object.dump(2, ' ', false, Json::error_handler_t::replace);
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

void listRejected(const RunSummary& summary, bool all) {
    constexpr std::size_t shown = 20;
    const std::vector<JWRejectedFeature>& rejected = summary.report.rejected;
    const std::size_t count = all ? rejected.size() : std::min(shown, rejected.size());
    for (std::size_t i = 0; i < count; ++i) {
        // None where the layer as a whole is meant.
        const std::string feature =
            rejected[i].fid >= 0 ? ", feature " + std::to_string(rejected[i].fid) : "";
        std::fprintf(stderr, "jwcg: %s, layer %s%s: %s\n", rejected[i].source.c_str(),
                     rejected[i].layer.c_str(), feature.c_str(), rejected[i].reason.c_str());
    }
    if (count < rejected.size()) {
        std::fprintf(stderr, "jwcg: %zu more features rejected; -v or --json lists all\n",
                     rejected.size() - count);
    }
}

}  // namespace jws::cli
