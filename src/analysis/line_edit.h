// SPDX-License-Identifier: MIT
//
// Editing every line and ring of a geometry, and of every feature: the walk that simplification and
// smoothing share. What is done to one list of points is the editor's.
//
// An editor has `bool edit(const std::vector<JWRawPoint>& points, std::vector<JWRawPoint>&
// result)`, which fills the result or answers false and leaves it of no use; it may throw
// TooManyPoints.
#ifndef JW_ANALYSIS_LINE_EDIT_H
#define JW_ANALYSIS_LINE_EDIT_H

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "analysis/feature_results.h"
#include "foundation/parallel.h"
#include "foundation/vertex_lists.h"
#include "jw_feature.h"
#include "jw_report.h"
#include "layers/geometry_check.h"

namespace jws::detail {

/// What an editor throws when a result would have more than `kMostMadePoints`.
struct TooManyPoints : std::length_error {
    TooManyPoints() : std::length_error("a line would have more than 134217727 points") {}
};

/// True when no coordinate is NaN or infinite.
inline bool allFinite(const std::vector<JWRawPoint>& points) {
    return areFinite(points.data(), points.size());
}

/// Runs one editor over geometries, one after the other.
template <class Editor>
class LineWalk {
  public:
    /// A ring of fewer than `minimumRing` points after the edit stays as it was, and so do a line
    /// that would come down to one point and every list that would not stay finite.
    LineWalk(const Editor& editor, std::size_t minimumRing)
        : m_editor(editor), m_minimumRing(minimumRing) {}

    bool edit(JWLineString& line) {
        if (!editLine(line)) return false;
        line.updateEnvelop();
        return true;
    }

    void edit(JWPolygon& polygon) {
        for (JWRing& ring : polygon.getRingList()) {
            if (editList(ring.getPointList(), m_minimumRing)) ring.closeRing();
        }
        polygon.updateEnvelop();
    }

    /// Edits the lines and rings of a geometry; false for other kinds, which stay as they are, and
    /// for a line string that the editor refuses.
    bool edit(JWGeometry& geometry) {
        switch (geometry.getGeometryType()) {
            case JWGeometryLineString:
                return edit(static_cast<JWLineString&>(geometry));
            case JWGeometryMultiLineString:
                for (JWLineString& line :
                     static_cast<JWMultiLineString&>(geometry).getMemberList()) {
                    editLine(line);
                }
                geometry.updateEnvelop();
                return true;
            case JWGeometryPolygon:
                edit(static_cast<JWPolygon&>(geometry));
                return true;
            case JWGeometryMultiPolygon:
                for (JWPolygon& polygon : static_cast<JWMultiPolygon&>(geometry).getMemberList()) {
                    edit(polygon);
                }
                geometry.updateEnvelop();
                return true;
            default:
                return false;
        }
    }

    /// Why a list that could be edited stayed as it was since the last call; empty where none did.
    std::string takeProblem() { return std::exchange(m_problem, std::string()); }

  private:
    bool editLine(JWLineString& line) {
        std::vector<JWRawPoint>& points = line.getPointList();
        return editList(points, std::min<std::size_t>(points.size(), 2));
    }
    /// Takes the result over if it is long enough and finite.
    bool editList(std::vector<JWRawPoint>& points, std::size_t least) {
        try {
            if (!m_editor.edit(points, m_scratch) || m_scratch.size() < least) return false;
        } catch (const TooManyPoints& e) {
            m_problem = e.what();
            return false;
        }
        if (!allFinite(m_scratch)) {
            m_problem = kBeyondNumbers;
            return false;
        }
        points.swap(m_scratch);
        return true;
    }

    Editor m_editor;
    std::size_t m_minimumRing;
    std::string m_problem;
    std::vector<JWRawPoint> m_scratch;
};

inline bool hasLines(const JWGeometry& geometry) {
    const enumJWGeometryType type = geometry.getGeometryType();
    return type == JWGeometryLineString || type == JWGeometryMultiLineString ||
           type == JWGeometryPolygon || type == JWGeometryMultiPolygon;
}

/// Edits the geometries of all features on a team of threads, each with a copy of the walk.
/// `refused(geometry)`, called on the worker, hears of every other kind of geometry but points.
template <class Editor, class Refused>
void editFeatures(JWFeatureClass& features, const LineWalk<Editor>& model, int threads,
                  JWLayerReport& report, const Refused& refused) {
    struct Outcome {
        bool isEmpty = false;
        std::string problem;
    };
    const int count = features.getFeatureCount();
    std::vector<Outcome> outcomes(static_cast<std::size_t>(count));
    const auto editOne = [&](LineWalk<Editor>& walk, JWFeature& feature) -> Outcome {
        JWGeometry* geometry = feature.getGeometryPtr();
        if (geometry == nullptr || geometry->isEmpty()) return {true, ""};
        const bool isSound = !hasLines(*geometry) || isFinite(*geometry);
        walk.edit(*geometry);
        std::string problem = walk.takeProblem();
        if (!isSound) return {false, "a coordinate is not finite"};
        if (!problem.empty()) return {false, std::move(problem)};
        if (hasLines(*geometry) || geometry->getGeometryType() == JWGeometryPoint) return {};
        refused(*geometry);
        return {false, "neither a line nor a polygon"};
    };
    {
        const Team team(threads);
        const std::int64_t chunk = std::clamp<std::int64_t>(count / 64, 1, 64);
        parallelChunks(team, count, chunk, [&](std::int64_t begin, std::int64_t end) {
            LineWalk<Editor> walk = model;
            for (std::int64_t i = begin; i < end; ++i) {
                JWFeature* feature = features.getFeatureAt(static_cast<int>(i));
                outcomes[static_cast<std::size_t>(i)] = editOne(walk, *feature);
            }
            return true;
        });
    }
    for (int i = 0; i < count; ++i) {
        const Outcome& outcome = outcomes[static_cast<std::size_t>(i)];
        ++report.readA;
        if (outcome.isEmpty) {
            ++report.emptyA;
        } else if (outcome.problem.empty()) {
            ++report.written;
        } else {
            reject(report, *features.getFeatureAt(i), outcome.problem);
        }
    }
    keepLastRejected(report);
}

}  // namespace jws::detail

#endif  // JW_ANALYSIS_LINE_EDIT_H
