// SPDX-License-Identifier: MIT
//
// What the command line asks for. Each command declares the options that it takes; those of one
// command or family are a group of their own.
#ifndef JWCG_SETTINGS_H
#define JWCG_SETTINGS_H

#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace jws::cli {

/// Overlays of polygon layers.
struct OverlaySettings {
    std::string attributes = "all";
    std::string prefixA;
    std::string prefixB;
    bool singleParts = false;
    bool noBorders = false;
    bool dropUnmatched = false;
    bool rowPerPair = false;
    bool merge = false;
    bool perFeature = false;
    bool noCheck = false;
};

struct DissolveSettings {
    std::vector<std::string> fields;
    std::vector<std::string> statistics;
    bool multipart = false;
    bool acrossClusters = false;
};

/// Bounding geometries.
struct BoundingSettings {
    bool wholeLayer = false;
    bool measures = false;
    std::string smallest = "area";
};

/// Simplification or smoothing.
struct LineSettings {
    std::string method;
    std::map<std::string, double> parameters = {};  ///< those given, by the name of the option
    bool coverage = false;
    double snap = 0;
};

struct ClipSettings {
    std::vector<double> box;  ///< empty, or as `Settings::bbox`
    bool outside = false;
};

struct BufferSettings {
    std::vector<double> distance;  ///< empty, or the one
    std::string distanceField;
    bool edge = false;
    bool dissolve = false;
};

/// One step of a transformation, in the order of the command line.
struct TransformStep {
    std::string name;             ///< of the option, "--move"
    std::vector<double> numbers;  ///< none for control points
    std::string file;             ///< with the control points
};

struct TransformSettings {
    std::vector<TransformStep> steps;
    std::vector<double> origin;  ///< empty for the centre of the layer
    bool inverse = false;
};

/// Conversions to lines and points.
struct ConvertSettings {
    bool shared = false;
    bool innerOnly = false;
    bool placeInside = false;
    bool placeVertices = false;
    int everyNth = 1;
    double spacing = 0;
};

struct NearestSettings {
    bool exact = false;
    bool toBoundary = false;
    bool skipSame = false;
    int count = 1;
    double maxDistance = HUGE_VAL;
};

struct RelateSettings {
    std::string predicate = "any";
    std::string pattern;
};

struct Settings {
    // Files and layers.
    std::string input;
    std::string overlay;
    std::string output;
    std::string inputLayer;
    std::string overlayLayer;
    std::string outputLayer;
    std::string outputFormat;
    bool overwrite = false;
    bool append = false;
    // Which features.
    std::string where;
    std::string overlayWhere;
    std::vector<double> bbox;  ///< empty, or minimum x and y, maximum x and y
    // How the run is done, and what it says.
    double tolerance = 0;
    std::string areaField;
    int blockSize = 4096;
    int threads = 0;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    // `info`: read every feature.
    bool scan = false;

    OverlaySettings overlays;
    DissolveSettings dissolve;
    BoundingSettings bounding;
    LineSettings simplify{"douglas-peucker"};
    LineSettings smooth{"chaiken"};
    ClipSettings clip;
    BufferSettings buffer;
    TransformSettings transform;
    ConvertSettings convert;
    NearestSettings nearest;
    RelateSettings relate;
};

}  // namespace jws::cli

#endif  // JWCG_SETTINGS_H
