// SPDX-License-Identifier: MIT
//
// JWGeometryBoolean: set operations on two single rings.
#ifndef JW_GEOMETRYBOOLEAN_H
#define JW_GEOMETRYBOOLEAN_H

#include <vector>

#include "jw_blgeometrybasic.h"

namespace jws {

/// A thin entry to `JWBLGeometryBasic` for two rings. No state; thread-safe.
class JW_API JWGeometryBoolean {
  public:
    JWGeometryBoolean();
    ~JWGeometryBoolean();
    JWGeometryBoolean& operator=(const JWGeometryBoolean& other);

    /// Clips ring `a` with ring `b`. Unless a ring is null, both output lists are cleared first.
    /// \param outRings,outFlags  new rings, owned by the caller, and their flags
    /// \param rejectWeirdRings  answers 0 when `JWCPGeometryBasic::isRingWeird` holds for either
    ///     ring, as it does for every closed one
    /// \return the number of rings; 0 for a null ring, an empty result or a failure
    static int ringAndRingBoolean(JWRing* a, JWRing* b, enumJWBooleanType type,
                                  std::vector<JWRing*>& outRings, std::vector<int>& outFlags,
                                  bool rejectWeirdRings);
};

}  // namespace jws

#endif  // JW_GEOMETRYBOOLEAN_H
