// SPDX-License-Identifier: MIT
#include "overlay/feature_check.h"

namespace jws::detail {

const char* reasonOf(AreaCheck check) {
    switch (check) {
        case AreaCheck::Unread:
            return kUnreadGeometry;
        case AreaCheck::WrongKind:
            return "the geometry is not a polygon or multipolygon";
        case AreaCheck::NotFinite:
            return "a coordinate is not a finite number";
        case AreaCheck::Usable:
        case AreaCheck::Empty:
            break;
    }
    return nullptr;
}

}  // namespace jws::detail
