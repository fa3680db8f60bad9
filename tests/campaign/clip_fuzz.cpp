// SPDX-License-Identifier: MIT
//
// Coverage-guided fuzzing of the clipping engine's interface: bytes become two operands, all
// operations run, and the answers must keep the promises. The first byte chooses how coordinates
// are read:
//   - lattice: a byte is a point of a 16 x 16 lattice, where everything coincides;
//   - neighbours: a byte is a lattice point, the next moves it by a few doubles;
//   - raw: sixteen bytes are a point, any doubles, the special ones included.
// The other bits of that byte scale the operands. A byte between points may end a contour or the
// first operand.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/contour_check.h"

namespace {

using jws::JWRawPoint;
using jwtest::ClipResult;
using jwtest::Ring;
using jwtest::RingPair;
using jwtest::Rings;

constexpr std::size_t kMostPoints = 96;

/// Bytes until they run out.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : m_at(data), m_end(data + size) {}

    bool done() const { return m_at == m_end; }
    std::uint8_t next() { return done() ? std::uint8_t{0} : *m_at++; }
    double real() {
        std::uint8_t raw[sizeof(double)];
        for (std::uint8_t& byte : raw) byte = next();
        double value;
        std::memcpy(&value, raw, sizeof value);
        return value;
    }

  private:
    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
};

double moved(double value, int places) {
    for (; places > 0; --places) value = std::nextafter(value, HUGE_VAL);
    for (; places < 0; ++places) value = std::nextafter(value, -HUGE_VAL);
    return value;
}

JWRawPoint pointFrom(Bytes& bytes, int mode) {
    if (mode == 2) {
        const double x = bytes.real();
        return {x, bytes.real()};
    }
    const int place = bytes.next();
    const JWRawPoint p(place % 16, place / 16);
    if (mode == 0) return p;
    const int places = bytes.next();
    return {moved(p.x / 10 + 0.1, places % 16 - 8), moved(p.y / 10 + 0.1, places / 16 - 8)};
}

RingPair pairFrom(Bytes& bytes) {
    static const int kExponents[] = {0, 0, 0, 0, 30, -30, 1000, -950};
    const int first = bytes.next();
    const int mode = first % 3, exponent = mode == 2 ? 0 : kExponents[first / 3 % 8];
    RingPair pair;
    Rings* operand = &pair.a;
    Ring ring;
    for (std::size_t points = 0; !bytes.done() && points < kMostPoints; ++points) {
        const JWRawPoint p = pointFrom(bytes, mode);
        ring.emplace_back(std::ldexp(p.x, exponent), std::ldexp(p.y, exponent));
        const int after = bytes.next();
        if (after < 200) continue;
        operand->push_back(ring);
        ring.clear();
        if (after >= 240) operand = &pair.b;
    }
    operand->push_back(ring);
    return pair;
}

struct Size {
    bool finite = true;
    bool shortNotFinite = false;  // in a contour that counts as empty: either answer is right
    double most = 0;
    double length = 0;
};

Size sizeOf(const RingPair& pair) {
    Size size;
    for (const Rings* operand : {&pair.a, &pair.b}) {
        for (const Ring& ring : *operand) {
            for (std::size_t i = 0; i < ring.size(); ++i) {
                const JWRawPoint &p = ring[i], &q = ring[(i + 1) % ring.size()];
                if (!(std::isfinite(p.x) && std::isfinite(p.y))) {
                    (ring.size() > 2 ? size.finite : size.shortNotFinite) = ring.size() <= 2;
                }
                size.most = std::fmax(size.most, std::fmax(std::fabs(p.x), std::fabs(p.y)));
                size.length += std::fabs(p.x - q.x) + std::fabs(p.y - q.y);
            }
        }
    }
    return size;
}

[[noreturn]] void fail(const RingPair& pair, const char* operation, const std::string& what) {
    std::printf("%s: %s\n%s\n%s\n", operation, what.c_str(), jwtest::wktOf(pair.a).c_str(),
                jwtest::wktOf(pair.b).c_str());
    std::fflush(stdout);
    std::abort();
}

/// The identities between the areas, where areas can be represented.
void checkAreas(const RingPair& pair, const Size& size, const ClipResult (&of)[4]) {
    if (size.most > 1e140 || size.most < 1e-140) return;
    const double areaA = jwtest::clip(GPC_UNION, pair.a, {}).area();
    const double areaB = jwtest::clip(GPC_UNION, pair.b, {}).area();
    const double tolerance = 1e-12 * (areaA + areaB) + 8 * size.length * size.most * 0x1p-52;
    const double both = of[GPC_INT].area(), any = of[GPC_UNION].area();
    if (std::fabs(areaA + areaB - both - any) > tolerance) {
        fail(pair, "union", "|A or B| + |A and B| is not |A| + |B|");
    }
    if (std::fabs(of[GPC_XOR].area() - any + both) > tolerance) {
        fail(pair, "xor", "|A xor B| is not |A or B| - |A and B|");
    }
    if (std::fabs(of[GPC_DIFF].area() - areaA + both) > tolerance) {
        fail(pair, "difference", "|A minus B| is not |A| - |A and B|");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const RingPair pair = pairFrom(bytes);
    const Size measure = sizeOf(pair);
    if (measure.finite && measure.shortNotFinite) return 0;
    ClipResult of[4];
    for (int op = 0; op < 4; ++op) {
        const char* name = jwtest::kClipNames[op];
        of[op] = jwtest::clip(jwtest::kClipOps[op], pair.a, pair.b);
        if (!measure.finite) {
            if (!of[op].contours.empty() || of[op].failure == 0) {
                fail(pair, name, "an answer to coordinates that are not finite");
            }
            continue;
        }
        if (of[op].failure != 0) fail(pair, name, "gave up");
        const std::string fault = jwtest::contourFault(of[op]);
        if (!fault.empty()) fail(pair, name, fault);
        if (op != GPC_DIFF && !(jwtest::clip(jwtest::kClipOps[op], pair.b, pair.a) == of[op])) {
            fail(pair, name, "swapping the operands changes the result");
        }
    }
    if (measure.finite) checkAreas(pair, measure, of);
    return 0;
}
