// SPDX-License-Identifier: MIT
//
// Runs the built jwcg program in a directory of its own, and makes and reads the files around it.
// Files are made and read by GDAL itself, not by the library under test.
#ifndef JWCG_TESTS_TOOLS_PROGRAM_H
#define JWCG_TESTS_TOOLS_PROGRAM_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace jws::test {

/// What a finished program left.
struct Outcome {
    int status = -1;  ///< exit status; minus the signal's number when a signal ended it
    std::string out;
    std::string err;
};

/// Conditions to run a program under.
struct Conditions {
    long fileSizeLimit = -1;  ///< bytes, −1 for none
    /// Called over and over while the program runs, until it returns true.
    std::function<bool(pid_t)> meanwhile;
};

/// A rectangle with a name, one feature of a test layer.
struct Box {
    double minX, minY, maxX, maxY;
    std::string name;
};

/// n × n squares of side 1 from (offset, offset) on.
std::vector<Box> grid(int n, double offset);

/// The words of a command line, with blanks between them.
std::vector<std::string> words(const std::string& line);

/// What a result layer holds.
struct LayerContent {
    bool exists = false;
    long long features = 0;
    double area = 0;
    std::string first;  ///< the first geometry as text
    std::string geometryType;
    std::vector<std::string> fields;
};
LayerContent readLayer(const std::string& path, const std::string& layer);

/// A GeoJSON text of these boxes. `crs` is an EPSG code.
std::string geoJson(const std::vector<Box>& boxes, int crs = 4326);
/// A GeoJSON text of one feature with this geometry ("LineString", "[[0,0],[1,1]]").
std::string geoJsonFeature(const std::string& type, const std::string& coordinates);

/// Gives each test a directory of its own.
class ProgramTest : public ::testing::Test {
  protected:
    ProgramTest();
    ~ProgramTest() override;

    /// Runs jwcg with these arguments in the test's directory.
    Outcome run(const std::vector<std::string>& arguments, const Conditions& conditions = {}) const;
    /// The object that the run printed; fails the test when it is not exactly one.
    static nlohmann::json parse(const Outcome& outcome);

    void write(const std::string& name, const std::string& text) const;
    std::string read(const std::string& name) const;
    /// Writes boxes into a layer of a new GeoPackage, or of an existing one.
    void writePackage(const std::string& name, const std::string& layer,
                      const std::vector<Box>& boxes) const;
    /// Writes a shapefile without a spatial reference.
    void writeNowhere(const std::string& name, const std::vector<Box>& boxes) const;
    LayerContent layer(const std::string& name, const std::string& layerName) const {
        return readLayer(path(name), layerName);
    }
    std::string path(const std::string& name) const { return (m_directory / name).string(); }
    bool exists(const std::string& name) const {
        return std::filesystem::exists(m_directory / name);
    }
    /// Names of everything in the test's directory, hidden ones included, sorted.
    std::vector<std::string> listing() const;
    const std::filesystem::path& directory() const { return m_directory; }

  private:
    std::filesystem::path m_directory;
};

}  // namespace jws::test

#endif  // JWCG_TESTS_TOOLS_PROGRAM_H
