// SPDX-License-Identifier: MIT
//
// Pieces of clips as text, and what they come to.
#ifndef JW_TESTS_SUPPORT_CLIP_PIECES_H
#define JW_TESTS_SUPPORT_CLIP_PIECES_H

#include <memory>
#include <string>
#include <vector>

#include "jw_geometryclip.h"
#include "support/wkt.h"

namespace jwtest {

/// A caller's lists; deletes the pieces.
template <class Geometry>
struct ClipLists {
    std::vector<Geometry*> pieces;
    std::vector<unsigned int> inside;
    std::vector<int> holes;

    ClipLists() = default;
    ClipLists(const ClipLists&) = delete;
    ClipLists& operator=(const ClipLists&) = delete;
    ~ClipLists() {
        for (Geometry* piece : pieces) delete piece;
    }

    /// "1 LINESTRING (...); 0 LINESTRING (...)", without markers where there are none.
    std::string text() const {
        std::string all;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            if (i > 0) all += "; ";
            if (i < inside.size()) all += std::to_string(inside[i]) + " ";
            all += toWkt(*pieces[i]);
        }
        return all;
    }
    double length() const {
        double sum = 0;
        for (const Geometry* piece : pieces) sum += piece->getLength();
        return sum;
    }
    double length(unsigned int marker) const {
        double sum = 0;
        for (std::size_t i = 0; i < pieces.size(); ++i)
            if (inside[i] == marker) sum += pieces[i]->getLength();
        return sum;
    }
};

using LineLists = ClipLists<jws::JWLineString>;
using RingLists = ClipLists<jws::JWRing>;

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_CLIP_PIECES_H
