// SPDX-License-Identifier: MIT
//
// make_tessellation N OUT.gpkg: writes a generated polygon layer, input for benchmarks and for the
// command-line program.
#include <cpl_conv.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "support/run_main.h"
#include "support/tessellation.h"

namespace {

int run(int argc, char** argv) {
    bench::TessellationSpec spec;
    std::string output;
    std::string layer;
    CLI::App app{
        "Writes a tessellation of N polygons with wiggly shared edges as a GeoPackage.\n"
        "Example: make_tessellation 10000 b.gpkg --seed 2 --offset 0.5"};
    app.add_option("N", spec.polygons, "number of polygons")
        ->required()
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{1000000000}));
    app.add_option("OUT", output, "GeoPackage to write; replaced if it exists")->required();
    app.add_option("--seed", spec.seed, "of jitter and wiggle")->capture_default_str();
    app.add_option("--offset", spec.offset, "shift to the north-east, in cells")
        ->capture_default_str();
    app.add_option("--segments", spec.segments, "pieces of an edge, a quarter of a ring")
        ->capture_default_str()
        ->check(CLI::Range(1, 1000000));
    app.add_option("--cell-size", spec.cellSize, "in metres")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--layer", layer, "name of the layer; default: that of the file");
    CLI11_PARSE(app, argc, argv);

    if (layer.empty()) layer = CPLGetBasename(output.c_str());
    const std::string error = bench::writeGeoPackage(bench::Tessellation(spec), output, layer);
    if (error.empty()) return 0;
    std::fprintf(stderr, "make_tessellation: %s\n", error.c_str());
    return 1;
}

}  // namespace

int main(int argc, char** argv) { return bench::runMain("make_tessellation", run, argc, argv); }
