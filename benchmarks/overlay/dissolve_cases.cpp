// SPDX-License-Identifier: MIT
#include "overlay/dissolve_cases.h"

#include <ogrsf_frmts.h>

#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "support/tessellation.h"

namespace bench {

namespace {

GroupedPolygons tessellate(long long cells, long long groups) {
    TessellationSpec spec;
    spec.polygons = cells;
    const Tessellation tessellation(spec);
    const auto columns = static_cast<std::int64_t>(std::ceil(std::sqrt(double(cells))));
    const auto side = static_cast<std::int64_t>(std::lround(std::sqrt(double(groups))));
    GroupedPolygons made;
    for (std::int64_t i = 0; i < tessellation.size(); ++i) {
        made.wkb.emplace_back();
        tessellation.polygonWkb(i, made.wkb.back());
        made.group.push_back(static_cast<int>(tessellation.row(i) * side / columns * side +
                                              tessellation.column(i) * side / columns));
    }
    return made;
}

GroupedPolygons readCounties(const std::string& path) {
    GDALAllRegister();
    const GDALDatasetUniquePtr file(
        GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
    if (file == nullptr) throw std::runtime_error("cannot read " + path);
    GroupedPolygons made;
    made.scattered = true;
    for (const auto& feature : file->GetLayer(0)) {
        const OGRGeometry* geometry = feature->GetGeometryRef();
        if (geometry == nullptr) continue;
        made.wkb.emplace_back(geometry->WkbSize());
        geometry->exportToWkb(wkbNDR, made.wkb.back().data(), wkbVariantIso);
        made.group.push_back(std::atoi(feature->GetFieldAsString("state")));
    }
    return made;
}

}  // namespace

GroupedPolygons makeDissolveCase(const std::string& name, const std::string& dataDirectory) {
    if (name == "counties") return readCounties(dataDirectory + "/us_counties.gpkg");
    long long cells = 0, groups = 0;
    if (std::sscanf(name.c_str(), "%lld:%lld", &cells, &groups) != 2 || cells < 1 || groups < 1) {
        throw std::runtime_error("no such case: " + name);
    }
    return tessellate(cells, groups);
}

}  // namespace bench
