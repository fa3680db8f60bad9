// SPDX-License-Identifier: MIT
//
// Links the model library alone.
#include "jw_geometry.h"

int main() {
    const jws::JWPoint point(3, 4);
    return point.getEnvelop().contains(jws::JWRawPoint(3, 4)) ? 0 : 1;
}
