// SPDX-License-Identifier: MIT
#include "control_points.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>

#include "exit_codes.h"

namespace jws::cli {
namespace {

constexpr const char* kSpace = " \t\r";

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

/// The words of a line; one separator, or any amount of white space, stands between two.
std::vector<std::string> wordsOf(const std::string& line) {
    const char* separators = line.find_first_of(",;") != std::string::npos ? ",;" : kSpace;
    std::vector<std::string> words;
    std::size_t begin = 0;
    while (begin <= line.size()) {
        const std::size_t end = std::min(line.find_first_of(separators, begin), line.size());
        const std::string word = trimmed(line.substr(begin, end - begin));
        if (separators != kSpace || !word.empty()) words.push_back(word);
        begin = end + 1;
    }
    return words;
}

bool isNumber(const std::string& word, double& value) {
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, value);
    return error == std::errc() && stop == end && std::isfinite(value);
}

/// The four numbers that a line begins with.
bool readPoint(const std::vector<std::string>& words, JWGCP& point) {
    point = JWGCP();
    return words.size() >= 4 && isNumber(words[0], point.targetX) &&
           isNumber(words[1], point.targetY) && isNumber(words[2], point.sourceX) &&
           isNumber(words[3], point.sourceY);
}

std::size_t columnOf(const std::vector<std::string>& names, const char* name) {
    std::size_t i = 0;
    while (i < names.size() && names[i] != name) ++i;
    return i;
}

double residualOf(const JWGCP& point, const double* matrix, double& dx, double& dy) {
    JWRawPoint p(point.sourceX, point.sourceY);
    JWGeometryTransform::pointAffineTransfromByMatrix(&p, matrix);
    dx = p.x - point.targetX;
    dy = p.y - point.targetY;
    return std::sqrt(dx * dx + dy * dy);
}

}  // namespace

std::vector<JWGCP> readControlPoints(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw CommandFailure(ExitInputUnreadable, path + ": cannot be opened");
    std::vector<JWGCP> points;
    std::size_t enable = std::string::npos;
    bool isFirst = true;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        line = trimmed(line);
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> words = wordsOf(line);
        const bool mayBeNames = std::exchange(isFirst, false);
        JWGCP point;
        double ignored = 0;
        if (readPoint(words, point)) {
            if (enable < words.size() && words[enable] == "0") continue;
            points.push_back(point);
        } else if (mayBeNames && !isNumber(words[0], ignored)) {
            enable = columnOf(words, "enable");
        } else {
            throw CommandFailure(ExitInputUnreadable,
                                 path + ": line " + std::to_string(number) +
                                     " does not begin with four numbers: target x and y, source x "
                                     "and y");
        }
    }
    if (file.bad()) throw CommandFailure(ExitInputUnreadable, path + ": cannot be read");
    return points;
}

ControlFit fitControlPoints(const std::string& path) {
    ControlFit fit;
    fit.points = readControlPoints(path);
    const int count = static_cast<int>(fit.points.size());
    if (!JWGeometryTransform::affineTransformFromGCP(fit.points.data(), count, fit.matrix)) {
        throw CommandFailure(ExitUsage, path + ": the " + std::to_string(count) +
                                            " control points determine no transformation; three "
                                            "are needed whose sources are not on one line, or two "
                                            "that differ in x and in y");
    }
    double sum = 0, dx = 0, dy = 0;
    for (JWGCP& point : fit.points) {
        point.residual = residualOf(point, fit.matrix, dx, dy);
        sum += point.residual * point.residual;
    }
    fit.rootMeanSquare = std::sqrt(sum / count);
    return fit;
}

std::string asText(const ControlFit& fit) {
    std::string text;
    char line[200];
    double dx = 0, dy = 0;
    for (std::size_t i = 0; i < fit.points.size(); ++i) {
        const JWGCP& p = fit.points[i];
        residualOf(p, fit.matrix, dx, dy);
        std::snprintf(line, sizeof line,
                      "control  %zu: %.10g %.10g to %.10g %.10g, off by %.3g (%.3g, %.3g)\n", i + 1,
                      p.sourceX, p.sourceY, p.targetX, p.targetY, p.residual, dx, dy);
        text += line;
    }
    std::snprintf(line, sizeof line, "rms      %.6g over %zu control points\n", fit.rootMeanSquare,
                  fit.points.size());
    return text + line;
}

Json asJson(const ControlFit& fit) {
    Json points = Json::array();
    double dx = 0, dy = 0;
    for (const JWGCP& p : fit.points) {
        residualOf(p, fit.matrix, dx, dy);
        points.push_back({{"source", {p.sourceX, p.sourceY}},
                          {"target", {p.targetX, p.targetY}},
                          {"residual", p.residual},
                          {"dx", dx},
                          {"dy", dy}});
    }
    return {{"points", std::move(points)}, {"root_mean_square", fit.rootMeanSquare}};
}

}  // namespace jws::cli
