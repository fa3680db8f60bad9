// SPDX-License-Identifier: MIT
//
// The bodies of the public forms of simplification and smoothing: null arguments, the guard, and
// the walk over a geometry with an editor made of options.
#ifndef JW_ANALYSIS_LINE_FORMS_H
#define JW_ANALYSIS_LINE_FORMS_H

#include <algorithm>
#include <memory>
#include <string>

#include "analysis/line_edit.h"
#include "analysis/unpack.h"
#include "foundation/api_guard.h"
#include "layers/layer_map.h"

namespace jws::detail {

template <class Editor>
struct LineForms {
    template <class Options>
    static LineWalk<Editor> walk(const Options& options) {
        const int least = std::max(options.minimumRingPoints, 1);
        return LineWalk<Editor>(Editor(options), static_cast<std::size_t>(least));
    }

    template <class Options>
    static bool editLine(const char* function, JWLineString* line, const Options& options) {
        if (line == nullptr) return false;
        return guarded(function, false, [&] {
            LineWalk<Editor> editing = walk(options);
            const bool edited = editing.edit(*line);
            const std::string problem = editing.takeProblem();
            if (!problem.empty()) refused(function, problem.c_str());
            return edited;
        });
    }

    /// The point count after the edit, 0 for null.
    template <class Options>
    static int countAfter(const char* function, JWLineString* line, const Options& options) {
        editLine(function, line, options);
        return line != nullptr ? line->getPointCount() : 0;
    }

    template <class Options>
    static bool editPolygon(const char* function, JWPolygon* polygon, const Options& options) {
        if (polygon == nullptr || !Editor(options).isUsable()) return false;
        return guarded(function, false, [&] {
            walk(options).edit(*polygon);
            return true;
        });
    }

    /// A point counts as done.
    template <class Options>
    static bool editGeometry(const char* function, JWGeometry* geometry, const Options& options) {
        if (geometry == nullptr) return false;
        if (geometry->getGeometryType() == JWGeometryPoint) return true;
        if (!Editor(options).isUsable()) return false;
        return guarded(function, false, [&] { return walk(options).edit(*geometry); });
    }

    /// Null `report` for none; `refused(geometry)` hears of other kinds than lines and points.
    template <class Options, class Refused>
    static bool editClass(const char* function, JWFeatureClass* features, const Options& options,
                          JWLayerReport* report, const Refused& refused) {
        if (features == nullptr || !Editor(options).isUsable()) return false;
        return guarded(function, false, [&] {
            JWLayerReport unread;
            editFeatures(*features, walk(options), options.threads,
                         report != nullptr ? *report : unread, refused);
            return true;
        });
    }

    template <class Options>
    static bool editClass(const char* function, JWFeatureClass* features, const Options& options,
                          JWLayerReport* report = nullptr) {
        return editClass(function, features, options, report, [](const JWGeometry&) {});
    }

    /// Throws LayerFailure when a parameter is out of range.
    template <class Options>
    static void requireUsable(const char* function, const Options& options) {
        if (Editor(options).isUsable()) return;
        JWReport::setError(JWErrorInvalidArgument,
                           std::string(function) + ": a parameter is out of range");
        throw LayerFailure();
    }

    /// Points go through as they are.
    template <class Options>
    static int editLayer(const char* function, JWFeatureLayer* input, JWFeatureLayer* output,
                         const Options& options, JWLayerReport* report) {
        const auto setUp = [&](LayerMapJob& job) {
            requireUsable(function, options);
            job.kinds = PointKind | LineKind | AreaKind;
            job.outputType = input->getGeometryType();
            job.keepsEmpty = true;
            job.schema.addFieldsOf(job.input);
            job.makeMap = [model = walk(options)]() -> FeatureMap {
                const auto own = std::make_shared<LineWalk<Editor>>(model);
                return [own](const JWFeature& feature, MapResults& results) {
                    std::unique_ptr<JWGeometry> geometry(feature.getGeometryPtr()->clone());
                    own->edit(*geometry);
                    std::string problem = own->takeProblem();
                    if (!problem.empty()) return results.reject(std::move(problem));
                    results.add(std::move(geometry));
                };
            };
        };
        return mapLayer(function, input, output, {options.blockSize, options.threads}, report,
                        setUp);
    }
};

}  // namespace jws::detail

// The public forms of a method, as rows of a table: CLASS::NAME with the DECLARED arguments behind
// the geometry hands the options that MAKE makes of the PASSED ones to the body for its kind of
// form.
#define JW_COUNT_FORM(CLASS, NAME, DECLARED, MAKE, PASSED)             \
    int CLASS::NAME(JWLineString* line, JW_UNPACK DECLARED) {          \
        return Forms::countAfter(#NAME, line, MAKE(JW_UNPACK PASSED)); \
    }
#define JW_POLYGON_FORM(CLASS, NAME, DECLARED, MAKE, PASSED)               \
    bool CLASS::NAME(JWPolygon* polygon, JW_UNPACK DECLARED) {             \
        return Forms::editPolygon(#NAME, polygon, MAKE(JW_UNPACK PASSED)); \
    }
#define JW_CLASS_FORM(CLASS, NAME, DECLARED, MAKE, PASSED)           \
    void CLASS::NAME(JWFeatureClass* features, JW_UNPACK DECLARED) { \
        Forms::editClass(#NAME, features, MAKE(JW_UNPACK PASSED));   \
    }
// Both, which most methods have with the same arguments.
#define JW_LAYER_FORMS(CLASS, POLYGON, FEATURES, DECLARED, MAKE, PASSED) \
    JW_POLYGON_FORM(CLASS, POLYGON, DECLARED, MAKE, PASSED)              \
    JW_CLASS_FORM(CLASS, FEATURES, DECLARED, MAKE, PASSED)

#endif  // JW_ANALYSIS_LINE_FORMS_H
