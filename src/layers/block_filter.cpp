// SPDX-License-Identifier: MIT
#include "layers/block_filter.h"

#include <cinttypes>
#include <cstdio>

namespace jws::detail {

std::string Blocks::filter(std::int64_t i) const {
    char text[80];
    std::snprintf(text, sizeof text, "fid >= %" PRId64 " and fid <= %" PRId64 "\n", first(i),
                  last(i));
    return text;
}

int readFeatures(JWFeatureLayer& layer, const char* where, std::int64_t first, std::int64_t last,
                 JWFeatureClass& out) {
    if (first >= 1 && first <= last) {
        return layer.getFeaturesByPosition(first - 1, last - first + 1, out);
    }
    if (where == nullptr || *where == '\0') {
        out.clearAll();
        return 0;
    }
    return layer.getFeaturesByAttributeFilter(where, out);
}

}  // namespace jws::detail
