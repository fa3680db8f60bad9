// SPDX-License-Identifier: MIT
//
// The bodies of the public clip functions: null arguments, the guard, pieces into the caller's
// lists. The forms differ in the kinds of geometry, the search and the size of the team only.
#ifndef JW_CLIP_CLIP_FORMS_H
#define JW_CLIP_CLIP_FORMS_H

#include <vector>

#include "clip/edge_index.h"
#include "jw_geometry.h"

namespace jws::detail {

struct ClipForm {
    const char* function;  ///< the public name
    bool checkWeird;
    bool useRTree;
    int threads;

    EdgeSearch search() const { return useRTree ? EdgeSearch::Tree : EdgeSearch::AllEdges; }
};

// They return the number of pieces, 0 with the last error set when there is none. `inside` may be
// null.
int clipAny(const JWGeometry* target, const JWGeometry* cutter, std::vector<JWGeometry*>& pieces,
            std::vector<unsigned int>* inside, const ClipForm& form);
int clipLines(const JWGeometry* lines, const JWGeometry* cutter, std::vector<JWLineString*>& pieces,
              std::vector<unsigned int>* inside, const ClipForm& form);
/// `holeFlags` may be null: rings of faces with holes keep their directions then.
int clipAreaByLines(const JWGeometry* area, const JWGeometry* lines, std::vector<JWRing*>& rings,
                    std::vector<int>* holeFlags, const ClipForm& form);
int clipPoints(const JWMultiPoint* points, const JWGeometry* area,
               std::vector<JWMultiPoint*>& pieces, std::vector<unsigned int>& inside,
               const ClipForm& form);

}  // namespace jws::detail

#endif  // JW_CLIP_CLIP_FORMS_H
