// SPDX-License-Identifier: MIT
//
// The table of commands. A command is one row: its name, what help, manual and completion say about
// it, how its options are declared and what it does. Everything else is derived from the rows.
#ifndef JWCG_COMMAND_TABLE_H
#define JWCG_COMMAND_TABLE_H

#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace jws::cli {

/// One step of a transformation, in the order of the command line.
struct TransformStep {
    std::string name;             ///< of the option, "--move"
    std::vector<double> numbers;  ///< none for control points
    std::string file;             ///< with the control points
};

/// What the command line asks for. Each command declares the options that it takes.
struct Settings {
    std::string input;
    std::string overlay;
    std::string output;
    std::string inputLayer;
    std::string overlayLayer;
    std::string outputLayer;
    std::string outputFormat;
    std::string attributes = "all";
    std::string areaField;
    std::string where;
    std::string overlayWhere;
    std::vector<double> bbox;  ///< empty, or minimum x and y, maximum x and y
    std::string prefixA;
    std::string prefixB;
    std::vector<std::string> dissolveFields;
    std::vector<std::string> statistics;
    // Bounding geometries.
    bool wholeLayer = false;
    bool measures = false;
    std::string smallest = "area";
    // Simplification and smoothing.
    std::string simplifyMethod = "douglas-peucker";
    std::string smoothMethod = "chaiken";
    std::map<std::string, double> parameters;  ///< those given, by the name of the option
    bool coverage = false;
    double snap = 0;
    // Clips and buffers.
    std::vector<double> clipBox;  ///< empty, or as `bbox`
    bool outside = false;
    std::vector<double> distance;  ///< empty, or the one
    std::string distanceField;
    bool edge = false;
    bool dissolve = false;
    // Transformation.
    std::vector<TransformStep> steps;
    std::vector<double> origin;  ///< empty for the centre of the layer
    bool inverse = false;
    // Conversions.
    bool shared = false;
    bool innerOnly = false;
    bool placeInside = false;
    bool placeVertices = false;
    int everyNth = 1;
    double spacing = 0;
    // Nearest features.
    bool exact = false;
    bool toBoundary = false;
    bool skipSame = false;
    int nearestCount = 1;
    double maxDistance = HUGE_VAL;
    bool multipart = false;
    bool acrossClusters = false;
    bool singleParts = false;
    bool noBorders = false;
    bool dropUnmatched = false;
    bool rowPerPair = false;
    bool merge = false;
    bool perFeature = false;
    bool noCheck = false;
    double tolerance = 0;
    int blockSize = 4096;
    int threads = 0;
    bool overwrite = false;
    bool append = false;
    bool scan = false;
    std::string predicate = "any";
    std::string pattern;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
};

/// One command.
struct Command {
    const char* name;
    const char* summary;      ///< one line, lower case, no full stop
    const char* description;  ///< paragraphs
    const char* example;      ///< one call
    void (*setup)(CLI::App& app, Settings& settings);
    /// Does it and returns the exit status; throws CommandFailure.
    int (*run)(const Settings& settings);
};

/// All commands in the order of help.
const std::vector<Command>& commandTable();

/// Declares an option that takes a decimal integer from `lowest` to `highest`.
void addInteger(CLI::App& app, const std::string& names, int& target, int lowest, int highest,
                const std::string& help);
/// Declares an option that takes a finite number of at least 0; infinity stands for none given.
void addNonNegative(CLI::App& app, const std::string& names, double& target,
                    const std::string& help);
/// Declares an option that takes a rectangle, four numbers with commas between them; two opposite
/// corners will do.
void addRectangle(CLI::App& app, const std::string& names, std::vector<double>& target,
                  const std::string& help);
/// Declares an option that takes as many finite numbers as one of `counts` says, with commas
/// between them. `take` gets each occurrence in the order of the command line.
void addNumbers(CLI::App& app, const std::string& names, const std::vector<std::size_t>& counts,
                const std::string& type, const std::string& help,
                const std::function<void(const std::vector<double>&)>& take);
/// Declares an option that takes a list with commas between its members, and may be repeated.
void addList(CLI::App& app, const std::string& names, std::vector<std::string>& target,
             const std::string& type, const std::string& help);
/// Declares an option that takes one of these words.
void addChoice(CLI::App& app, const std::string& names, std::string& target,
               const std::vector<std::string>& choices, const std::string& help);
/// Declares a positional argument that must be there.
void addFile(CLI::App& app, const std::string& name, std::string& target, const std::string& help);
/// Declares a positional argument that may be missing.
void addOptionalFile(CLI::App& app, const std::string& name, std::string& target,
                     const std::string& help);
/// Declares an option that takes a text of at least one character.
void addText(CLI::App& app, const std::string& names, std::string& target, const std::string& type,
             const std::string& help);

}  // namespace jws::cli

#endif  // JWCG_COMMAND_TABLE_H
