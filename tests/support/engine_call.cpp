// SPDX-License-Identifier: MIT
#include "support/engine_call.h"

#include <memory>

#include "gpc/clip_engine.h"
#include "support/gpc_operand.h"

namespace jwtest {

ClipResult clipPrepared(gpc_op op, const Rings& a, const Rings& b, int which) {
    GpcOperand subject(a), other(b);
    const jws::gpc::PreparedOperand preparedA(*subject.polygon()), preparedB(*other.polygon());
    jws::gpc::Operand first{subject.polygon(), nullptr}, second{other.polygon(), nullptr};
    if (which & 1) first = {nullptr, &preparedA};
    if (which & 2) second = {nullptr, &preparedB};
    gpc_polygon out;
    const int failure = jws::gpc::clip(op, first, second, out);
    return takeResult(out, failure);
}

ClipResult uniteAll(const std::vector<Rings>& operands) {
    std::vector<std::unique_ptr<GpcOperand>> copies;
    std::vector<const gpc_polygon*> polygons;
    for (const Rings& rings : operands) {
        copies.push_back(std::make_unique<GpcOperand>(rings));
        polygons.push_back(copies.back()->polygon());
    }
    gpc_polygon out;
    const int failure = jws::gpc::uniteAll(polygons.data(), polygons.size(), out);
    return takeResult(out, failure);
}

}  // namespace jwtest
