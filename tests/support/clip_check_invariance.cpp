// SPDX-License-Identifier: MIT
//
// The same question asked differently must have the same answer.
#include <cmath>

#include "support/clip_check.h"

namespace jwtest {
Miss checkInvariance(const ClipCase& c, RandomRings& random) {
    const Rings a = random.shuffled(c.pair.a), b = random.shuffled(c.pair.b);
    const int exponent = random.integer(-40, 40);
    const auto scaled = [exponent](const jws::JWRawPoint& p) {
        return jws::JWRawPoint(std::ldexp(p.x, exponent), std::ldexp(p.y, exponent));
    };
    const Rings scaledA = mapped(c.pair.a, scaled), scaledB = mapped(c.pair.b, scaled);
    const auto turned = [](const jws::JWRawPoint& p) { return jws::JWRawPoint(-p.y, p.x); };
    const Rings turnedA = mapped(c.pair.a, turned), turnedB = mapped(c.pair.b, turned);
    const auto back = [](const jws::JWRawPoint& p) { return jws::JWRawPoint(p.y, -p.x); };
    const int compared = random.integer(0, 3);  // one operation's turned result, as a set

    for (int op = 0; op < 4; ++op) {
        const gpc_op code = kClipOps[op];
        const ClipResult& plain = c.of[op];
        const ClipResult shuffled = clip(code, a, b);
        if (const Miss miss = c.compare(op, shuffled, "another order, start or direction")) {
            return miss;
        }
        if (code != GPC_DIFF && !(clip(code, c.pair.b, c.pair.a) == plain)) {
            return {kClipNames[op], "swapping the operands changes the result"};
        }
        ClipResult expected = plain;
        expected.contours = mapped(plain.contours, scaled);
        if (!(clip(code, scaledA, scaledB) == expected)) {
            return {kClipNames[op], "scaling by a power of two changes the result"};
        }
        ClipResult turn = clip(code, turnedA, turnedB);
        turn.contours = mapped(turn.contours, back);
        const bool same = op == compared ? c.apart(op, turn) <= c.tolerance
                                         : c.sameArea(turn.area(), plain.area());
        if (!same) return c.compare(op, turn, "turning by 90 degrees");
    }
    return {};
}

}  // namespace jwtest
