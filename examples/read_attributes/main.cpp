// SPDX-License-Identifier: MIT
//
// Prints the attributes of the features of a layer that meet a rectangle:
//
//     read_attributes us_counties.gpkg -105.0 39.7 -104.95 39.75
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "jw_feature.h"
#include "jw_report.h"

int main(int argc, char** argv) {
    if (argc != 6) {
        std::fprintf(stderr, "usage: read_attributes FILE MINX MINY MAXX MAXY\n");
        return 2;
    }
    const std::unique_ptr<jws::JWDataSource> source(jws::JWDataSource::open(argv[1]));
    const std::unique_ptr<jws::JWFeatureLayer> layer(source ? source->openLayer(0) : nullptr);
    const jws::JWEnvelop rectangle(std::atof(argv[2]), std::atof(argv[3]), std::atof(argv[4]),
                                   std::atof(argv[5]));
    jws::JWFeatureClass found;
    if (!layer || layer->getFeaturesByEnvelopFilter(rectangle, jws::JWRelationOverlap, found) < 0) {
        std::fprintf(stderr, "%s: %s\n", argv[1], jws::JWReport::lastError().text.c_str());
        return 1;
    }
    for (int i = 0; i < found.getFeatureCount(); ++i) {
        const jws::JWFeature* feature = found.getFeatureAt(i);
        std::printf("%d", feature->getFID());
        for (int k = 0; k < feature->getFieldCount(); ++k) {
            std::string value;  // stays empty where the field has none
            feature->getFieldAsString(k, value);
            std::printf("  %s=%s", feature->getFieldDefPtr(k)->getFieldName(), value.c_str());
        }
        std::printf("\n");
    }
    return 0;
}
