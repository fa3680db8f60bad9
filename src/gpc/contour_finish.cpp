// SPDX-License-Identifier: MIT
//
// From boundary edges to contours, exactly, in integers:
//
//   1. At each place the edges are sorted around it and every arriving edge is joined to the next
//      leaving edge clockwise, which bounds the same piece of interior.
//   2. Loops are traced and cut wherever they return to a place: each is simple, a connected
//      interior gets one counter-clockwise contour, and its holes run clockwise.
//   3. A point inside an input edge that turned out to be no corner is dropped: what was cut there
//      is not part of the result. Places where contours touch stay in both.
//   4. Contours are sorted by area. A contour is smaller than any around it, so holes come before
//      their outer contours and the deepest come first, at the price of one sort. Each is turned
//      to start at a corner that no other contour has.
//
// O(n log n).
#include "gpc/contour_finish.h"

#include <algorithm>

namespace jws::detail {
namespace {

bool inUpperHalf(const GridPoint& d) { return d.y > 0 || (d.y == 0 && d.x > 0); }

/// True when b lies on the way from a to c, within the reach of a cut.
bool isStraight(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
    const GridPoint way = c - a;
    const Wide turn = cross(way, b - a);
    const Wide reach = cutReach(way);
    return -reach <= turn && turn <= reach && dot(way, b - a) > 0 && dot(way, c - b) > 0;
}

}  // namespace

void ContourFinisher::finish() {
    linkEdges();
    traceLoops();
    for (Contour& contour : contours_) {
        startAtLowest(contour);
        dropInnerPoints(contour);
        rotateToUnshared(contour);
    }
    std::sort(contours_.begin(), contours_.end(), [this](const Contour& a, const Contour& b) {
        if (a.area != b.area) return a.area < b.area;
        if (corner(a.first) != corner(b.first)) return corner(a.first) < corner(b.first);
        return a.hole > b.hole;
    });
}

void ContourFinisher::linkEdges() {
    const int n = static_cast<int>(edges_.size());
    byFrom_.resize(n);
    for (int i = 0; i < n; ++i) byFrom_[i] = i;
    byTo_ = byFrom_;
    std::sort(byFrom_.begin(), byFrom_.end(), [this](int i, int j) {
        return edges_[i].from != edges_[j].from ? edges_[i].from < edges_[j].from : i < j;
    });
    std::sort(byTo_.begin(), byTo_.end(), [this](int i, int j) {
        return edges_[i].to != edges_[j].to ? edges_[i].to < edges_[j].to : i < j;
    });
    next_.resize(n);
    place_.assign(n, -1);
    int places = 0;
    for (int from = 0, to = 0; from < n; from = to) {
        for (to = from + 1; to < n && edges_[byFrom_[to]].from == edges_[byFrom_[from]].from;) ++to;
        if (to == from + 1) {
            next_[byTo_[from]] = byFrom_[from];
            continue;
        }
        for (int i = from; i < to; ++i) place_[byFrom_[i]] = places;
        ++places;
        linkPlace(from, to);
    }
    visits_.assign(places, 0);
    onPath_.assign(places, -1);
}

void ContourFinisher::linkPlace(int from, int to) {
    spokes_.clear();
    for (int i = from; i < to; ++i) {
        const Edge& leaving = edges_[byFrom_[i]];
        const Edge& arriving = edges_[byTo_[i]];
        spokes_.push_back({leaving.to - leaving.from, byFrom_[i], false});
        spokes_.push_back({arriving.from - arriving.to, byTo_[i], true});
    }
    // Clockwise.
    std::sort(spokes_.begin(), spokes_.end(), [](const Spoke& a, const Spoke& b) {
        const bool upperA = inUpperHalf(a.direction);
        const bool upperB = inUpperHalf(b.direction);
        if (upperA != upperB) return upperB;
        return cross(a.direction, b.direction) < 0;
    });
    // Arriving and leaving edges alternate; two rounds, since the first may start in between.
    open_.clear();
    for (const bool firstRound : {true, false}) {
        for (Spoke& spoke : spokes_) {
            if (spoke.incoming) {
                if (firstRound) open_.push_back(spoke.edge);
            } else if (spoke.edge >= 0 && !open_.empty()) {
                next_[open_.back()] = spoke.edge;
                open_.pop_back();
                spoke.edge = -1;
            }
        }
    }
}

void ContourFinisher::traceLoops() {
    contours_.clear();
    corners_.clear();
    done_.assign(edges_.size(), 0);
    for (const int start : byFrom_) {
        path_.clear();
        for (int e = start; !done_[e]; e = next_[e]) {
            done_[e] = 1;
            const int place = place_[e];
            if (place >= 0) {
                if (onPath_[place] >= 0) emitLoop(onPath_[place]);
                onPath_[place] = static_cast<int>(path_.size());
            }
            path_.push_back(e);
        }
        emitLoop(0);
    }
}

// Takes the loop that ends the path off it and keeps it as a contour.
void ContourFinisher::emitLoop(std::size_t from) {
    const int first = static_cast<int>(corners_.size());
    const int count = static_cast<int>(path_.size() - from);
    if (count == 0) return;
    Wide area = 0;
    const GridPoint& origin = edges_[path_[from]].from;
    for (std::size_t i = from; i < path_.size(); ++i) {
        const Edge& edge = edges_[path_[i]];
        area += cross(edge.from - origin, edge.to - origin);
        const int place = place_[path_[i]];
        if (place >= 0) {
            onPath_[place] = -1;
            ++visits_[place];
        }
        corners_.push_back(path_[i]);
    }
    path_.resize(from);
    contours_.push_back({first, count, area < 0, area < 0 ? -area : area});
}

bool ContourFinisher::isShared(int corner) const {
    const int place = place_[corners_[corner]];
    return place >= 0 && visits_[place] > 1;
}

bool ContourFinisher::continues(int edge, int next) const {
    const int* a = edges_[edge].source;
    const int* b = edges_[next].source;
    return (a[0] >= 0 && a[0] == b[0]) || (a[1] >= 0 && a[1] == b[1]);
}

// The lexicographically lowest corner is always a true one.
void ContourFinisher::startAtLowest(const Contour& contour) {
    const auto begin = corners_.begin() + contour.first;
    const auto end = begin + contour.count;
    const auto lowest = std::min_element(
        begin, end, [this](int a, int b) { return edges_[a].from < edges_[b].from; });
    std::rotate(begin, lowest, end);
}

void ContourFinisher::dropInnerPoints(Contour& contour) {
    open_.assign(1, corners_[contour.first]);
    for (int i = 1; i < contour.count; ++i) {
        const int before = corners_[contour.first + i - 1];
        const int edge = corners_[contour.first + i];
        const GridPoint& kept = edges_[open_.back()].from;
        const bool inner = !isShared(contour.first + i) && continues(before, edge) &&
                           isStraight(kept, edges_[edge].from, edges_[edge].to);
        if (!inner) open_.push_back(edge);
    }
    if (open_.size() < 3) return;
    std::copy(open_.begin(), open_.end(), corners_.begin() + contour.first);
    contour.count = static_cast<int>(open_.size());
}

void ContourFinisher::rotateToUnshared(Contour& contour) {
    const int count = contour.count;
    const auto begin = corners_.begin() + contour.first;
    const auto lowest = std::min_element(
        begin, begin + count, [this](int a, int b) { return edges_[a].from < edges_[b].from; });
    std::rotate(begin, lowest, begin + count);
    const int middle = (count + 2) / 2;  // the second corner that hole tests look at
    int start = -1;
    for (int i = 0; i < count; ++i) {
        if (isShared(contour.first + i)) continue;
        if (start < 0) start = i;
        if (!isShared(contour.first + (i + middle) % count)) {
            start = i;
            break;
        }
    }
    if (start > 0) std::rotate(begin, begin + start, begin + count);
}

}  // namespace jws::detail
