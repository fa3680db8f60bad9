// SPDX-License-Identifier: MIT
#include "relation/edge_event.h"

#include <cstddef>

namespace jws::detail {
namespace {

/// One side of a meeting: where it is on the edge, and how the ends of the other edge lie to it.
struct Meeting {
    EdgePlace place;
    int sideOfStart = 0;
    int sideOfEnd = 0;
    bool begins = false;
    bool ends = false;
};

void note(const EventEdge& e, const EventEdge& f, const Meeting& here, EdgePlace placeOnF,
          bool own) {
    if (e.events == nullptr) return;
    const EdgeChain& chain = e.forest.chains()[e.chain];
    std::uint32_t point = e.edge;
    if (here.place == EdgePlace::kEnd) {
        if (chain.closed || ++point != chain.last) return;
    }
    const JWRawPoint* a = e.forest.points() + e.edge;
    const JWRawPoint* other = f.forest.points() + f.edge;
    EdgeEvent event{};
    event.point = point;
    event.atVertex = here.place != EdgePlace::kMiddle;
    event.own = own;
    event.area = f.forest.chains()[f.chain].area;
    event.begins = here.begins;
    event.ends = here.ends;
    event.place = placeOnF;
    event.sideOfStart = static_cast<std::int8_t>(here.sideOfStart);
    event.sideOfEnd = static_cast<std::int8_t>(here.sideOfEnd);
    if (event.atVertex) {
        event.cut.other = other;
    } else if (placeOnF == EdgePlace::kMiddle) {
        event.cut = crossingCut(a[0], a[1], other);
    } else {
        event.cut = vertexCut(a[0], a[1], other, placeOnF == EdgePlace::kStart ? other : other + 1);
    }
    e.events->push_back(event);
}

EdgePlace placeOf(const JWRawPoint& p, const JWRawPoint* edge) {
    return p == edge[0] ? EdgePlace::kStart : p == edge[1] ? EdgePlace::kEnd : EdgePlace::kMiddle;
}

/// The part that two edges on one line have in common: its ends along the line.
struct CommonPart {
    CommonPart(const JWRawPoint* e, const JWRawPoint* f) {
        const JWRawPoint *e0 = e, *e1 = e + 1, *f0 = f, *f1 = f + 1;
        if (*e1 < *e0) std::swap(e0, e1);
        if (*f1 < *f0) std::swap(f0, f1);
        from = *e0 < *f0 ? f0 : e0;
        to = *e1 < *f1 ? e1 : f1;
    }
    bool isEmpty() const { return *to < *from; }
    bool isPoint() const { return *to == *from; }
    const JWRawPoint* from;  ///< lexicographically first
    const JWRawPoint* to;
};

void noteStretch(const EventEdge& e, const EventEdge& f, const CommonPart& part, bool own) {
    const JWRawPoint* pe = e.forest.points() + e.edge;
    const JWRawPoint* pf = f.forest.points() + f.edge;
    const bool forwardE = pe[0] < pe[1], forwardF = pf[0] < pf[1];
    const bool isPoint = part.isPoint();
    for (const JWRawPoint* p : {part.from, part.to}) {
        const bool first = p == part.from;
        const EdgePlace placeE = placeOf(*p, pe), placeF = placeOf(*p, pf);
        const auto meeting = [&](EdgePlace place, bool forward) {
            return Meeting{place, 0, 0, !isPoint && first == forward, !isPoint && first != forward};
        };
        note(e, f, meeting(placeE, forwardE), placeF, own);
        note(f, e, meeting(placeF, forwardF), placeE, own);
        if (isPoint) return;
    }
}

}  // namespace

bool edgesMeet(const JWRawPoint* e, const JWRawPoint* f) {
    const int sc = orientationSign(e[0], e[1], f[0]);
    const int sd = orientationSign(e[0], e[1], f[1]);
    if (sc * sd > 0) return false;
    if (sc == 0 && sd == 0) return !CommonPart(e, f).isEmpty();
    return orientationSign(f[0], f[1], e[0]) * orientationSign(f[0], f[1], e[1]) <= 0;
}

bool meetEdges(const EventEdge& e, const EventEdge& f, bool own) {
    const JWRawPoint* pe = e.forest.points() + e.edge;
    const JWRawPoint* pf = f.forest.points() + f.edge;
    const int sc = orientationSign(pe[0], pe[1], pf[0]);
    const int sd = orientationSign(pe[0], pe[1], pf[1]);
    if (sc * sd > 0) return false;
    if (sc == 0 && sd == 0) {
        const CommonPart part(pe, pf);
        if (part.isEmpty()) return false;
        noteStretch(e, f, part, own);
        return true;
    }
    const int sa = orientationSign(pf[0], pf[1], pe[0]);
    const int sb = orientationSign(pf[0], pf[1], pe[1]);
    if (sa * sb > 0) return false;
    const auto place = [](int start, int end) {
        return start == 0 ? EdgePlace::kStart : end == 0 ? EdgePlace::kEnd : EdgePlace::kMiddle;
    };
    const EdgePlace placeE = place(sa, sb), placeF = place(sc, sd);
    note(e, f, {placeE, sc, sd}, placeF, own);
    note(f, e, {placeF, sa, sb}, placeE, own);
    return true;
}

}  // namespace jws::detail
