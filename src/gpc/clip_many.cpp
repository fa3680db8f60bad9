// SPDX-License-Identifier: MIT
//
// The engine's entries for many operands at once.
//
// A union of many polygons first resolves each for itself, so that its contours run with the
// inside on their left; then one arrangement of all of them counts how many polygons cover each
// area. A partition gives each polygon a bit of the labels instead. Every pair of boundaries is
// compared once, where operations two by two would compare the growing result again and again.
//
// O((n + k) log n) for n vertices and k crossings, in a partition for each label besides the runs.
#include <algorithm>

#include "gpc/clip_engine.h"
#include "gpc/clip_scratch.h"

namespace jws::gpc {
namespace {

/// Reads a polygon as a set of contours with its inside on their left and appends them to
/// `Engine::resolved`.
void resolve(Engine& e, const gpc_polygon& polygon, const Frame& frame) {
    e.set.clear();
    e.set.add(polygon, 1, frame.to, nullptr);
    if (e.set.contours.empty()) return;
    e.arrange(e.set, frame, false);
    e.builder.append(e.arrangement, {Rule::kUnion}, e.resolved, 1);
}

int uniteInto(const gpc_polygon* const* polygons, std::size_t count, gpc_polygon& result) {
    Box all;
    for (std::size_t i = 0; i < count; ++i) {
        if (polygons[i] && !boundsOf(*polygons[i], all)) return EDOM;
    }
    if (isEmpty(all)) return 0;
    const Frame frame(all);
    Engine& e = engine();
    const Trim trim;
    e.resolved.clear();
    for (std::size_t i = 0; i < count; ++i) {
        if (polygons[i]) resolve(e, *polygons[i], frame);
    }
    e.arrange(e.resolved, frame, true);
    e.builder.build(e.arrangement, {Rule::kCovered}, frame.from, result);
    return 0;
}

constexpr std::int32_t kWhole = 1 << kMostSets;

/// The labels of what lies in the subject, each once, in order.
void labelsOf(const Arrangement& arrangement, Buffer<std::int32_t>& labels) {
    labels.clear();
    for (const Arrangement::Run& run : arrangement.runs()) {
        if (run.merged || run.step == 0) continue;
        for (const std::int32_t label : {run.left, arrangement.rightOf(run)}) {
            if (label & kWhole) labels.push(label);
        }
    }
    std::sort(labels.begin(), labels.end());
    labels.resize(
        static_cast<std::size_t>(std::unique(labels.begin(), labels.end()) - labels.begin()));
}

int partitionInto(const gpc_polygon& subject, const gpc_polygon* const* polygons, std::size_t count,
                  std::vector<Part>& parts) {
    Box box;
    if (!boundsOf(subject, box)) return EDOM;
    Box all = box;
    for (std::size_t i = 0; i < count; ++i) {
        if (!boundsOf(*polygons[i], all)) return EDOM;
    }
    if (isEmpty(box)) return 0;
    const Frame frame(all);
    const Box window = frame.to(box);
    Engine& e = engine();
    const Trim trim;
    e.set.clear();
    e.set.add(subject, kWhole, frame.to, nullptr);
    for (std::size_t i = 0; i < count; ++i) e.set.add(*polygons[i], 1 << i, frame.to, &window);
    e.arrange(e.set, frame, false);
    labelsOf(e.arrangement, e.labels);
    for (const std::int32_t label : e.labels) {
        parts.push_back({static_cast<std::uint32_t>(label & ~kWhole), {0, nullptr, nullptr}});
        e.builder.build(e.arrangement, {Rule::kExactly, label}, frame.from, parts.back().polygon);
        if (parts.back().polygon.num_contours == 0) parts.pop_back();
    }
    return 0;
}

/// The area that is covered more than once, counted once for each further cover, in scaled
/// coordinates: each run of boundary contributes what its two sides differ by.
double overlapOf(const Arrangement& arrangement, const Point& origin) {
    double twice = 0;
    for (const Arrangement::Run& run : arrangement.runs()) {
        if (run.merged || run.step == 0) continue;
        const int left = std::max(run.left - 1, 0);
        const int right = std::max(arrangement.rightOf(run) - 1, 0);
        if (left == right) continue;
        const bool whole = run.from == Arrangement::kNone;
        Point last =
            whole ? arrangement.pointOf(run, run.count - 1) : arrangement.nodes()[run.from].p;
        double sum = 0;
        const auto goTo = [&](const Point& p) {
            sum += (last.x - origin.x) * (p.y - origin.y) - (p.x - origin.x) * (last.y - origin.y);
            last = p;
        };
        for (std::uint32_t k = 0; k < run.count; ++k) goTo(arrangement.pointOf(run, k));
        if (!whole) goTo(arrangement.nodes()[run.to].p);
        twice += sum * (left - right);
    }
    return twice / 2;
}

int uniteDirectedInto(const gpc_polygon& loops, gpc_polygon& result, double& overlap) {
    Box all;
    if (!boundsOf(loops, all)) return EDOM;
    if (isEmpty(all)) return 0;
    const Frame frame(all);
    Engine& e = engine();
    const Trim trim;
    e.set.clear();
    e.set.add(loops, 1, frame.to, nullptr);
    e.arrange(e.set, frame, true);
    const Box scaled = frame.to(all);
    const double area = overlapOf(
        e.arrangement, {scaled.minX / 2 + scaled.maxX / 2, scaled.minY / 2 + scaled.maxY / 2});
    const Scale& back = frame.from;
    overlap = area * back.x[0] * back.x[1] * back.y[0] * back.y[1];
    e.builder.build(e.arrangement, {Rule::kCovered}, frame.from, result);
    return 0;
}

int cutFacesInto(const gpc_polygon& area, const gpc_polygon& lines, gpc_polygon& faces) {
    Box all;
    if (!boundsOf(area, all) || !boundsOf(lines, all)) return EDOM;
    if (isEmpty(all)) return 0;
    const Frame frame(all);
    Engine& e = engine();
    const Trim trim;
    e.set.clear();
    e.set.add(area, 1, frame.to, nullptr);
    for (int i = 0; i < lines.num_contours; ++i) e.set.addLine(lines.contour[i], frame.to);
    e.arrange(e.set, frame, false);
    e.faceBuilder.build(e.arrangement, frame.from, faces);
    return 0;
}

}  // namespace

int uniteAll(const gpc_polygon* const* polygons, std::size_t count, gpc_polygon& result) noexcept {
    return guarded(result, [&] { return uniteInto(polygons, count, result); });
}

int partition(const gpc_polygon& subject, const gpc_polygon* const* polygons, std::size_t count,
              std::vector<Part>& parts) noexcept {
    gpc_polygon none;
    const int failure =
        guarded(none, [&] { return partitionInto(subject, polygons, count, parts); });
    if (failure != 0) {
        for (Part& part : parts) gpc_free_polygon(&part.polygon);
        parts.clear();
    }
    return failure;
}

int uniteDirected(const gpc_polygon& loops, gpc_polygon& result, double& overlap) noexcept {
    overlap = 0;
    return guarded(result, [&] { return uniteDirectedInto(loops, result, overlap); });
}

int cutFaces(const gpc_polygon& area, const gpc_polygon& lines, gpc_polygon& faces) noexcept {
    return guarded(faces, [&] { return cutFacesInto(area, lines, faces); });
}

}  // namespace jws::gpc
