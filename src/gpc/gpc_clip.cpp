// SPDX-License-Identifier: MIT
//
// The clipping engine behind the GPC interface.
//
// Coordinates go to an integer grid, where every decision is exact. Each axis gets the finest
// power-of-two grid on which every grid point is a double (53 bits for the largest magnitude), and
// is shifted to the middle of the data. Coordinates in the top binade are exact on it; the others
// are less than half a grid step away, and a table gives every result vertex that was an input
// vertex its own bits back. A finer grid would gain nothing: new vertices would be rounded to
// doubles afterwards, and could coincide or cross.
//
// Then arrangement.h cuts the edges where they meet and finds what lies on their sides, the edges
// between inside and outside of the result are picked, and contour_finish.h makes contours of them.
//
// O((n + k) log n) for n vertices and k crossings as a rule. Working memory belongs to the thread
// and is kept, so that a call allocates nothing but its result; after a very large call it is given
// back.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

#include "gpc.h"
#include "gpc/arrangement.h"
#include "gpc/contour_finish.h"
#include "gpc/winding_union.h"

namespace {

using jws::detail::Arrangement;
using jws::detail::ContourFinisher;
using jws::detail::GridPoint;

/// Doubles of one axis to grid integers and back. Scaling is by two factors, since one alone
/// may overflow.
class Axis {
  public:
    void include(double v) {
        low_ = std::min(low_, v);
        high_ = std::max(high_, v);
    }

    void fit(int bits) {
        int exponent = 0;
        std::frexp(std::max(std::fabs(low_), std::fabs(high_)), &exponent);
        const int shift = std::min(bits - exponent, 1074);
        for (int i = 0; i < 2; ++i) {
            const int part = i == 0 ? shift / 2 : shift - shift / 2;
            up_[i] = std::ldexp(1.0, part);
            down_[i] = std::ldexp(1.0, -part);
        }
        origin_ = 0;
        if (low_ <= high_) origin_ = (toGrid(low_) + toGrid(high_)) / 2;
    }

    std::int64_t toGrid(double v) const { return std::llrint(v * up_[0] * up_[1]) - origin_; }
    double step() const { return down_[0] * down_[1]; }
    double fromGrid(std::int64_t g) const {
        return static_cast<double>(g + origin_) * down_[0] * down_[1];
    }

  private:
    double low_ = std::numeric_limits<double>::max();
    double high_ = std::numeric_limits<double>::lowest();
    double up_[2] = {1, 1};
    double down_[2] = {1, 1};
    std::int64_t origin_ = 0;
};

/// Input vertices that the grid does not hold exactly, by their grid point.
class InputVertices {
  public:
    void clear(std::size_t capacity) {
        entries_.clear();
        std::size_t size = 16;
        while (size < 2 * capacity) size *= 2;
        slots_.assign(size, -1);
    }

    void add(GridPoint key, const gpc_vertex& vertex) {
        int& slot = slots_[find(key)];
        if (slot < 0) {
            slot = static_cast<int>(entries_.size());
            entries_.push_back({key, vertex});
            return;
        }
        gpc_vertex& kept = entries_[slot].vertex;
        if (vertex.x != kept.x ? vertex.x < kept.x : vertex.y < kept.y) kept = vertex;
    }

    std::size_t capacity() const { return slots_.capacity(); }

    const gpc_vertex* get(GridPoint key) const {
        if (entries_.empty()) return nullptr;
        const int slot = slots_[find(key)];
        return slot < 0 ? nullptr : &entries_[slot].vertex;
    }

  private:
    struct Entry {
        GridPoint key;
        gpc_vertex vertex;
    };

    std::size_t find(GridPoint key) const {
        const std::size_t mask = slots_.size() - 1;
        std::uint64_t h = static_cast<std::uint64_t>(key.x) * 0x9E3779B97F4A7C15u;
        h = (h ^ (h >> 32) ^ static_cast<std::uint64_t>(key.y)) * 0xC2B2AE3D27D4EB4Fu;
        std::size_t i = (h >> 32) & mask;
        while (slots_[i] >= 0 && !(entries_[slots_[i]].key == key)) i = (i + 1) & mask;
        return i;
    }

    std::vector<Entry> entries_;
    std::vector<int> slots_;
};

struct Scratch {
    Axis x, y;
    InputVertices inputs;
    Arrangement arrangement;
    ContourFinisher finisher;
};

/// Gives the working memory back at the end of a call that made it large: every list in it is
/// about as long as one of the two looked at.
class Trim {
  public:
    explicit Trim(Scratch& s) : s_(s) {}
    ~Trim() {
        if (std::max(s_.inputs.capacity(), s_.arrangement.capacity()) > kKept) s_ = Scratch();
    }
    Trim(const Trim&) = delete;
    Trim& operator=(const Trim&) = delete;

  private:
    static constexpr std::size_t kKept = 1 << 17;  // some 50 MB in all
    Scratch& s_;
};

template <class F>
void forEachVertex(const gpc_polygon& polygon, F visit) {
    for (int c = 0; c < polygon.num_contours; ++c) {
        const gpc_vertex_list& contour = polygon.contour[c];
        for (int i = 0; i < contour.num_vertices; ++i) visit(contour.vertex[i]);
    }
}

void addOperand(const gpc_polygon& polygon, int operand, Scratch& s) {
    for (int c = 0; c < polygon.num_contours; ++c) {
        const gpc_vertex_list& contour = polygon.contour[c];
        if (contour.num_vertices < 3) continue;
        GridPoint first = {0, 0};
        GridPoint last = {0, 0};
        for (int i = 0; i < contour.num_vertices; ++i) {
            const gpc_vertex& v = contour.vertex[i];
            const GridPoint p = {s.x.toGrid(v.x), s.y.toGrid(v.y)};
            if (s.x.fromGrid(p.x) != v.x || s.y.fromGrid(p.y) != v.y) s.inputs.add(p, v);
            if (i == 0) {
                first = p;
            } else {
                s.arrangement.addEdge(last, p, operand);
            }
            last = p;
        }
        s.arrangement.addEdge(last, first, operand);
    }
}

/// `covered`: bit 0 inside the subject, bit 1 inside the clip polygon.
bool isInside(gpc_op op, int covered) {
    switch (op) {
        case GPC_DIFF:
            return covered == 1;
        case GPC_INT:
            return covered == 3;
        case GPC_XOR:
            return covered == 1 || covered == 2;
        default:
            return covered != 0;
    }
}

/// Keeps the edges between inside and outside, with the inside on their left.
template <class Inside>
void pickBoundary(Inside inside, Scratch& s) {
    s.finisher.clear();
    for (const Arrangement::Segment& segment : s.arrangement.segments()) {
        const bool left = inside(s.arrangement.left(segment));
        if (left == inside(segment.right)) continue;
        s.finisher.addEdge(left ? segment.a : segment.b, left ? segment.b : segment.a,
                           segment.source);
    }
    s.finisher.finish();
}

void writeResult(const Scratch& s, gpc_polygon& result) {
    const auto& contours = s.finisher.contours();
    const std::size_t count = contours.size();
    if (count == 0) return;
    result.hole = static_cast<int*>(std::malloc(count * sizeof(int)));
    result.contour = static_cast<gpc_vertex_list*>(std::calloc(count, sizeof(gpc_vertex_list)));
    if (!result.hole || !result.contour) throw std::bad_alloc();
    result.num_contours = static_cast<int>(count);
    for (std::size_t c = 0; c < count; ++c) {
        const ContourFinisher::Contour& from = contours[c];
        gpc_vertex_list& to = result.contour[c];
        result.hole[c] = from.hole ? 1 : 0;
        to.vertex = static_cast<gpc_vertex*>(std::malloc(from.count * sizeof(gpc_vertex)));
        if (!to.vertex) throw std::bad_alloc();
        to.num_vertices = from.count;
        for (int i = 0; i < from.count; ++i) {
            const GridPoint& p = s.finisher.corner(from.first + i);
            const gpc_vertex* input = s.inputs.get(p);
            to.vertex[i] = input ? *input : gpc_vertex{s.x.fromGrid(p.x), s.y.fromGrid(p.y)};
        }
    }
}

/// The integral over the plane of what covers a point more than once: by Green's formula the sum of
/// each segment's change of it times the area between the segment and the middle of the grid.
double overlapArea(const Scratch& s) {
    long double twice = 0;
    for (const Arrangement::Segment& segment : s.arrangement.segments()) {
        const int left = std::max(s.arrangement.left(segment) - 1, 0);
        const int right = std::max(segment.right - 1, 0);
        if (left == right) continue;
        twice += static_cast<long double>(left - right) *
                 static_cast<long double>(cross(segment.a, segment.b));
    }
    return static_cast<double>(twice / 2) * s.x.step() * s.y.step();
}

/// Resolves one or two operands (`b` may be null) and writes what is inside. Returns 0 or the errno
/// value that tells why the result is empty.
template <class Inside>
int resolve(Arrangement::Rule rule, const gpc_polygon& a, const gpc_polygon* b, Inside inside,
            gpc_polygon& result, double* overlap) {
    thread_local Scratch s;
    const Trim trim(s);
    s.x = s.y = Axis();
    bool finite = true;
    std::size_t vertices = 0;
    for (const gpc_polygon* operand : {&a, b}) {
        if (operand == nullptr) continue;
        forEachVertex(*operand, [&](const gpc_vertex& v) {
            finite = finite && std::isfinite(v.x) && std::isfinite(v.y);
            s.x.include(v.x);
            s.y.include(v.y);
            ++vertices;
        });
    }
    if (!finite) return EDOM;
    for (const int bits : {53, 46, 40, 32}) {  // coarser where cutting comes to no end
        s.x.fit(bits);
        s.y.fit(bits);
        s.inputs.clear(vertices);
        s.arrangement.clear(rule);
        addOperand(a, 0, s);
        if (b != nullptr) addOperand(*b, 1, s);
        if (!s.arrangement.resolve()) continue;
        s.arrangement.label();
        pickBoundary(inside, s);
        writeResult(s, result);
        if (overlap != nullptr) *overlap = overlapArea(s);
        return 0;
    }
    return ERANGE;
}

/// The same with exceptions turned into errno values; sets errno on failure.
template <class Inside>
void resolveSafely(Arrangement::Rule rule, const gpc_polygon& a, const gpc_polygon* b,
                   Inside inside, gpc_polygon& result, double* overlap = nullptr) {
    result = {0, nullptr, nullptr};
    int failure = ENOMEM;
    const int before = errno;
    try {
        failure = resolve(rule, a, b, inside, result, overlap);
    } catch (const std::bad_alloc&) {
        gpc_free_polygon(&result);
    } catch (...) {
        gpc_free_polygon(&result);
        failure = ERANGE;
    }
    errno = failure != 0 ? failure : before;
}

}  // namespace

extern "C" void gpc_polygon_clip(gpc_op set_operation, gpc_polygon* subject_polygon,
                                 gpc_polygon* clip_polygon, gpc_polygon* result_polygon) {
    resolveSafely(
        Arrangement::Rule::Parity, *subject_polygon, clip_polygon,
        [set_operation](int covered) { return isInside(set_operation, covered); }, *result_polygon);
}

void jws::detail::uniteWinding(const ::gpc_polygon& boundaries, ::gpc_polygon& result,
                               double& overlap) {
    overlap = 0;
    resolveSafely(
        Arrangement::Rule::Winding, boundaries, nullptr, [](int winding) { return winding > 0; },
        result, &overlap);
}

extern "C" void gpc_free_polygon(gpc_polygon* polygon) {
    for (int c = 0; c < polygon->num_contours; ++c) std::free(polygon->contour[c].vertex);
    std::free(polygon->hole);
    std::free(polygon->contour);
    *polygon = {0, nullptr, nullptr};
}
