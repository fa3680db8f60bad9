// SPDX-License-Identifier: MIT
//
// The clipping engine.
//
// Four steps, each a file of its own: contour_set.h reads the operands; noding.h splits their
// edges until they meet at shared points only, exactly; arrangement.h labels what lies on either
// side of every stretch of boundary; contour_builder.h traces the result. Coordinates stay doubles
// throughout: an input vertex keeps its bits, only crossings are rounded, and the arrangement is
// exact after rounding, so that contours are valid without any tolerance.
//
// A union of many polygons first resolves each for itself, so that its contours run with the
// inside on their left; then one arrangement of all of them counts how many polygons cover each
// area. Every pair of
// boundaries is compared once, where unions two by two would compare the growing result again and
// again.
//
// Crossings are rounded to the last place of the largest coordinate, for x and for y. To that end
// the axis of smaller magnitude is scaled up by a power of two, which changes no sign and no
// digit. Magnitudes far from one are brought near it as well, lest products overflow; and
// coordinates too small for exact products of three differences count as 0: that is far below the
// last place of the largest.
//
// O((n + k) log n) for n vertices and k crossings. Scratch memory belongs to the thread and is kept
// between calls unless it has grown large, so that a call allocates nothing but its result.
#include "gpc/clip_engine.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <new>

#include "foundation/pulse.h"
#include "gpc/contour_builder.h"
#include "gpc/face_builder.h"

namespace jws::gpc {
namespace {

/// Differences of larger numbers are multiples of 2^-352, products of three of 2^-1056.
constexpr double kLeast = 0x1p-300;
constexpr std::size_t kKeptScratch = std::size_t{128} << 20;

/// Brings both axes to one magnitude, so that each is rounded by its own last place, and near one
/// where products would overflow; and back.
struct Frame {
    Scale to;
    Scale from;
    int exponent = 0;   ///< scaled coordinates are below 2^exponent
    double aspect = 1;  ///< by how much y is scaled more than x

    explicit Frame(const Box& box) {
        const int x = exponentOf(box.minX, box.maxX);
        const int y = exponentOf(box.minY, box.maxY);
        exponent = std::abs(x) < 200 && std::abs(y) < 200 ? std::max(x, y) : 0;
        fit(to.x, from.x, exponent - x);
        fit(to.y, from.y, exponent - y);
        to.least = kLeast;
        aspect = std::ldexp(1.0, std::clamp(x - y, -1000, 1000));
    }

  private:
    static int exponentOf(double low, double high) {
        int exponent = 0;
        std::frexp(std::fmax(std::fabs(low), std::fabs(high)), &exponent);
        return exponent;
    }
    static void fit(double up[2], double down[2], int shift) {
        up[0] = std::ldexp(1.0, shift / 2);
        up[1] = std::ldexp(1.0, shift - shift / 2);
        down[0] = std::ldexp(1.0, -(shift / 2));
        down[1] = std::ldexp(1.0, -(shift - shift / 2));
    }
};

struct Engine {
    ContourSet set;
    ContourSet resolved;
    Buffer<std::int32_t> labels;  // of a partition
    Noder noder;
    Arrangement arrangement;
    ContourBuilder builder;
    FaceBuilder faceBuilder;
    detail::StepCounter pace;

    void trim() {
        if (set.points.bytes() + resolved.points.bytes() + noder.bytes() + arrangement.bytes() +
                builder.bytes() + faceBuilder.bytes() <=
            kKeptScratch) {
            return;
        }
        set.release();
        resolved.release();
        noder.release();
        arrangement.release();
        builder.release();
        faceBuilder.release();
    }

    void arrange(ContourSet& contours, const Frame& frame, bool depth) {
        contours.flags.fill(contours.points.size(), 0);
        noder.run(contours, frame.exponent, frame.aspect);
#ifdef JW_GPC_SELF_CHECK
        if (noder.countConflicts() != 0) std::abort();
#endif
        pace.step(noder.result().points.size());
        arrangement.build(noder, depth);
        pace.step(noder.result().points.size());
    }
};

Engine& engine() {
    thread_local Engine scratch;
    return scratch;
}

struct Trim {
    ~Trim() { engine().trim(); }
};

Box overlapOf(const Box& a, const Box& b) {
    Box w;
    w.minX = a.minX > b.minX ? a.minX : b.minX;
    w.minY = a.minY > b.minY ? a.minY : b.minY;
    w.maxX = a.maxX < b.maxX ? a.maxX : b.maxX;
    w.maxY = a.maxY < b.maxY ? a.maxY : b.maxY;
    return w;
}

bool isEmpty(const Box& box) { return !(box.minX <= box.maxX); }

bool boundsOf(const Operand& o, Box& box) {
    if (!o.prepared) return !o.polygon || boundsOf(*o.polygon, box);
    box = o.prepared->box();
    return o.prepared->isFinite();
}

void add(const Operand& o, ContourSet& set, int mask, const Scale& scale, const Box* window) {
    if (o.prepared) {
        o.prepared->addTo(set, mask, scale, window);
    } else if (o.polygon) {
        set.add(*o.polygon, mask, scale, window);
    }
}

Rule ruleOf(gpc_op op) {
    switch (op) {
        case GPC_DIFF:
            return {Rule::kDifference};
        case GPC_INT:
            return {Rule::kIntersection};
        case GPC_XOR:
            return {Rule::kXor};
        default:
            return {Rule::kUnion};
    }
}

int clipInto(gpc_op op, const Operand& a, const Operand& b, gpc_polygon& result) {
    Box boxA;
    Box boxB;
    if (!boundsOf(a, boxA) || !boundsOf(b, boxB)) return EDOM;
    const bool meet = boxA.overlaps(boxB);
    if (op == GPC_INT && !meet) return 0;
    Box all = boxA;
    all.include(boxB);
    if (isEmpty(all)) return 0;
    const Frame frame(all);
    Engine& e = engine();
    const Trim trim;
    e.set.clear();
    const Box overlap = frame.to(overlapOf(boxA, boxB));
    const Box nearA = frame.to(boxA);
    add(a, e.set, 1, frame.to, op == GPC_INT ? &overlap : nullptr);
    if (op != GPC_DIFF || meet) {
        add(b, e.set, 2, frame.to, op == GPC_INT ? &overlap : op == GPC_DIFF ? &nearA : nullptr);
    }
    e.arrange(e.set, frame, false);
    e.builder.build(e.arrangement, ruleOf(op), frame.from, result);
    return 0;
}

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

template <class F>
int guarded(gpc_polygon& result, F&& work) noexcept {
    result = {0, nullptr, nullptr};
    try {
        return work();
    } catch (const std::bad_alloc&) {
        gpc_free_polygon(&result);
        return ENOMEM;
    } catch (...) {
        gpc_free_polygon(&result);
        return detail::Pulse::hasStopped() ? ECANCELED : ERANGE;
    }
}

}  // namespace

int clip(gpc_op op, const Operand& subject, const Operand& other, gpc_polygon& result) noexcept {
    return guarded(result, [&] { return clipInto(op, subject, other, result); });
}

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
