// SPDX-License-Identifier: MIT
//
// The clipping engine as the tests call it: rings in, contours out.
#ifndef JW_TESTS_SUPPORT_GPC_CALL_H
#define JW_TESTS_SUPPORT_GPC_CALL_H

#include <gpc.h>

#include <string>

#include "support/rings.h"

namespace jwtest {

/// The operations, in the order of the interface's codes.
constexpr gpc_op kClipOps[] = {GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION};
constexpr const char* kClipNames[] = {"difference", "intersection", "xor", "union"};

/// What the engine answered, in its order.
struct ClipResult {
    Rings contours;
    std::vector<int> holes;
    int failure = 0;  ///< errno after the call, 0 before it

    double area() const { return signedArea(contours); }
    /// How many contours have this hole flag.
    int count(int flag) const {
        int n = 0;
        for (const int hole : holes) n += hole == flag;
        return n;
    }
};

/// The same contours with the same starts in the same order.
inline bool operator==(const ClipResult& a, const ClipResult& b) {
    return a.contours == b.contours && a.holes == b.holes;
}

/// Whether two results are the same set: the same directed edges bit for bit, however they are
/// linked to contours where these touch.
bool sameSet(const ClipResult& a, const ClipResult& b);

/// Calls the engine. Operands are copied to memory of their own, so that a checker of memory sees
/// a read beyond them; their hole flags, which must not matter, are all set.
ClipResult clip(gpc_op op, const Rings& a, const Rings& b);

/// The rings as one polygon of well-known text, every digit kept; and back.
std::string wktOf(const Rings& rings);
Rings ringsOf(const std::string& wkt);

}  // namespace jwtest

#endif  // JW_TESTS_SUPPORT_GPC_CALL_H
