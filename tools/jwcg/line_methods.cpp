// SPDX-License-Identifier: MIT
#include "line_methods.h"

#include <climits>
#include <cmath>

#include "jw_geometrysimplicify.h"
#include "jw_geometrysmooth.h"

namespace jws::cli {
namespace {

constexpr int kMostDegree = 170;  // the factorial of more is beyond all numbers

}  // namespace

const Family& simplification() {
    static const Family family = {
        "simplify",
        &Settings::simplify,
        "simplifying",
        {{"tolerance", "DISTANCE", Range::Positive, "Distance in layer units; see the methods"},
         {"max-tolerance", "DISTANCE", Range::Positive, "Longest step of opheim, layer units"},
         {"look-ahead", "N", Range::CountFrom2, "Points that lang looks ahead"},
         {"every", "N", Range::Count, "The n of nth-point"}},
        {{"douglas-peucker",
          JWSimplifyDouglasPeucker,
          {{"tolerance"}},
          "keeps the points that matter most; what it drops lies within --tolerance of the result",
          "--tolerance 100"},
         {"lang",
          JWSimplifyLang,
          {{"tolerance"}, {"look-ahead"}},
          "from a kept point to the farthest of the next --look-ahead points such that all between "
          "lie within --tolerance of the straight line",
          "--tolerance 100 --look-ahead 8"},
         {"perpendicular-distance",
          JWSimplifyPerpendicularDistance,
          {{"tolerance"}},
          "drops points within --tolerance of the line between their neighbours, at most every "
          "other",
          "--tolerance 5"},
         {"vertex-reduction",
          JWSimplifyVertexReduction,
          {{"tolerance"}},
          "drops points within --tolerance of the last one kept",
          "--tolerance 50"},
         {"reumann-witkam",
          JWSimplifyReumannWitkam,
          {{"tolerance"}},
          "follows a strip, --tolerance wide to each side, until the line leaves it; fast, but "
          "cuts "
          "corners by more",
          "--tolerance 50"},
         {"opheim",
          JWSimplifyOpheim,
          {{"tolerance"}, {"max-tolerance"}},
          "follows a ray until the line is farther from it than the square root of --tolerance, or "
          "has gone --max-tolerance; points nearer than --tolerance to the start only give the "
          "direction",
          "--tolerance 50 --max-tolerance 2000"},
         {"nth-point",
          JWSimplifyNthPoint,
          {{"every"}},
          "keeps every n-th point, whatever it is",
          "--every 5"}}};
    return family;
}

const Family& smoothing() {
    static const Family family = {
        "smooth",
        &Settings::smooth,
        "smoothing",
        {{"tolerance", "DISTANCE", Range::Positive, "Distance in layer units, for chaiken"},
         {"look-ahead", "N", Range::CountFrom2, "Points taken together; odd but for boyle"},
         {"weight", "NUMBER", Range::Any,
          "Weight of the mean, usually 0 (no change) to 1 (default 1)"},
         {"degree", "N", Range::Degree, "Segments of the line under each Bezier curve, up to 170"},
         {"points", "N", Range::Count, "Points on each Bezier curve"},
         {"step", "DISTANCE", Range::Positive, "Spacing of the points of hermite, layer units"},
         {"tangent-scale", "NUMBER", Range::Positive, "Length of hermite's tangents (default 0.5)"},
         {"tangent-minimum", "NUMBER", Range::NotNegative,
          "Square of a length, layer units, below which hermite has no tangent (default 0)"}},
        {{"chaiken",
          JWSmoothChaiken,
          {{"tolerance"}},
          "cuts corners until the new points lie within --tolerance of one another; stays close to "
          "the line",
          "--tolerance 100"},
         {"sliding-mean",
          JWSmoothSlidingAveraging,
          {{"look-ahead", true, 0, Range::OddFrom3}, {"weight", false, 1}},
          "moves points to the mean of the --look-ahead points around them, by --weight",
          "--look-ahead 5"},
         {"distance-weighting",
          JWSmoothDistanceWeighting,
          {{"look-ahead", true, 0, Range::OddFrom3}, {"weight", false, 1}},
          "the same, near points counting more",
          "--look-ahead 5 --weight 0.5"},
         {"boyle",
          JWSmoothBoyle,
          {{"look-ahead"}},
          "drags each point towards the one --look-ahead places ahead; shifts and shrinks",
          "--look-ahead 3"},
         {"bezier",
          JWSmoothBezier,
          {{"degree"}, {"points"}},
          "curves over --degree segments each, of --points points",
          "--degree 3 --points 10"},
         {"hermite",
          JWSmoothHermite,
          {{"step"}, {"tangent-scale", false, 0.5}, {"tangent-minimum", false, 0}},
          "curves through the points of the line, a point every --step along it",
          "--step 50"}}};
    return family;
}

bool isWithin(Range range, double value) {
    const bool isCount = value == std::floor(value) && value >= 1 && value <= INT_MAX;
    switch (range) {
        case Range::Positive:
            return value > 0;
        case Range::NotNegative:
            return value >= 0;
        case Range::Any:
            return true;
        case Range::Count:
            return isCount;
        case Range::CountFrom2:
            return isCount && value >= 2;
        case Range::OddFrom3:
            return isCount && value >= 3 && std::fmod(value, 2) == 1;
        case Range::Degree:
            return isCount && value <= kMostDegree;
    }
    return false;
}

const char* nameOf(Range range) {
    switch (range) {
        case Range::Positive:
            return "a number above 0";
        case Range::NotNegative:
            return "a number of at least 0";
        case Range::Any:
            return "a number";
        case Range::Count:
            return "an integer of at least 1";
        case Range::CountFrom2:
            return "an integer of at least 2";
        case Range::OddFrom3:
            return "an odd integer of at least 3";
        case Range::Degree:
            return "an integer from 1 to 170";
    }
    return "";
}

}  // namespace jws::cli
