// SPDX-License-Identifier: MIT
#include "jw_geometryboolean.h"

#include "foundation/api_guard.h"
#include "jw_cpgeometrybasic.h"

namespace jws {

JWGeometryBoolean::JWGeometryBoolean() = default;
JWGeometryBoolean::~JWGeometryBoolean() = default;
JWGeometryBoolean& JWGeometryBoolean::operator=(const JWGeometryBoolean&) = default;

int JWGeometryBoolean::ringAndRingBoolean(JWRing* a, JWRing* b, enumJWBooleanType type,
                                          std::vector<JWRing*>& outRings,
                                          std::vector<int>& outFlags, bool rejectWeirdRings) {
    if (!a || !b) return 0;
    outRings.clear();
    outFlags.clear();
    if (rejectWeirdRings &&
        (JWCPGeometryBasic::isRingWeird(a) || JWCPGeometryBasic::isRingWeird(b))) {
        return 0;
    }
    return detail::guarded("ringAndRingBoolean", 0, [&] {
        std::vector<JWRing*> ringsA = {a};
        std::vector<JWRing*> ringsB = {b};
        std::vector<int> flagsA = {0};
        std::vector<int> flagsB = {0};
        return JWBLGeometryBasic::twoSurfaceObjectsBoolean(ringsA, flagsA, 1, ringsB, flagsB, 1,
                                                           type, outRings, outFlags);
    });
}

}  // namespace jws
