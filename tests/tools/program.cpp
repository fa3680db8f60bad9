// SPDX-License-Identifier: MIT
#include "program.h"

#include <fcntl.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace jws::test {
namespace {

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// Writes boxes into a new layer of a new or existing file.
void writeBoxes(const std::string& file, const char* format, const std::string& layerName,
                OGRSpatialReference* reference, const std::vector<Box>& boxes) {
    GDALAllRegister();
    GDALDataset* source = fs::exists(file)
                              ? GDALDataset::Open(file.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE)
                              : GetGDALDriverManager()->GetDriverByName(format)->Create(
                                    file.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    OGRLayer* layer = source->CreateLayer(layerName.c_str(), reference, wkbPolygon, nullptr);
    OGRFieldDefn field("name", OFTString);
    layer->CreateField(&field);
    source->StartTransaction();
    for (const Box& box : boxes) {
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetField("name", box.name.c_str());
        OGRLinearRing ring;
        ring.addPoint(box.minX, box.minY);
        ring.addPoint(box.maxX, box.minY);
        ring.addPoint(box.maxX, box.maxY);
        ring.addPoint(box.minX, box.maxY);
        ring.closeRings();
        OGRPolygon polygon;
        polygon.addRing(&ring);
        feature.SetGeometry(&polygon);
        ASSERT_EQ(OGRERR_NONE, layer->CreateFeature(&feature));
    }
    source->CommitTransaction();
    GDALClose(source);
}

/// In the child: becomes the program. Signals that the test's own parent ignores are set back.
[[noreturn]] void become(const std::vector<std::string>& arguments, const fs::path& directory,
                         const fs::path& out, const fs::path& err, long fileSizeLimit) {
    for (int signal : {SIGINT, SIGTERM, SIGHUP, SIGXFSZ, SIGPIPE}) std::signal(signal, SIG_DFL);
    const auto redirect = [](const fs::path& path, int target) {
        const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (descriptor < 0 || ::dup2(descriptor, target) < 0) ::_exit(127);
    };
    redirect(out, STDOUT_FILENO);
    redirect(err, STDERR_FILENO);
    if (fileSizeLimit >= 0) {
        const struct rlimit limit {
            static_cast<rlim_t>(fileSizeLimit), static_cast<rlim_t>(fileSizeLimit)
        };
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    std::vector<char*> argv{const_cast<char*>(JWCG_PROGRAM)};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    if (::chdir(directory.c_str()) == 0) ::execv(JWCG_PROGRAM, argv.data());
    ::_exit(127);
}

int waitFor(pid_t child, const std::function<bool(pid_t)>& meanwhile) {
    bool done = !meanwhile;
    int status = 0;
    while (::waitpid(child, &status, done ? 0 : WNOHANG) != child) {
        if (!done) {
            done = meanwhile(child);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

std::vector<Box> grid(int n, double offset) {
    std::vector<Box> boxes;
    for (int row = 0; row < n; ++row) {
        for (int column = 0; column < n; ++column) {
            const double x = offset + column;
            const double y = offset + row;
            boxes.push_back({x, y, x + 1, y + 1, std::to_string(row * n + column)});
        }
    }
    return boxes;
}

std::vector<std::string> words(const std::string& line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

LayerContent readLayer(const std::string& path, const std::string& layerName) {
    GDALAllRegister();
    LayerContent content;
    GDALDataset* source = GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR);
    OGRLayer* layer = source != nullptr ? source->GetLayerByName(layerName.c_str()) : nullptr;
    if (layer != nullptr) {
        content.exists = true;
        content.geometryType = OGRGeometryTypeToName(layer->GetGeomType());
        for (int i = 0; i < layer->GetLayerDefn()->GetFieldCount(); ++i) {
            content.fields.emplace_back(layer->GetLayerDefn()->GetFieldDefn(i)->GetNameRef());
        }
        for (const auto& feature : *layer) {
            ++content.features;
            const OGRGeometry* geometry = feature->GetGeometryRef();
            if (geometry == nullptr) continue;
            if (content.first.empty()) content.first = geometry->exportToWkt();
            const OGRwkbGeometryType type = wkbFlatten(geometry->getGeometryType());
            if (type == wkbPolygon) content.area += geometry->toPolygon()->get_Area();
            if (type == wkbMultiPolygon) content.area += geometry->toMultiPolygon()->get_Area();
        }
    }
    GDALClose(source);
    return content;
}

std::string geoJson(const std::vector<Box>& boxes, int crs) {
    std::ostringstream text;
    text << R"({"type":"FeatureCollection","crs":{"type":"name","properties":)"
         << R"({"name":"urn:ogc:def:crs:EPSG::)" << crs << R"("}},"features":[)";
    const char* separator = "";
    for (const Box& box : boxes) {
        text << separator << R"({"type":"Feature","properties":{"name":")" << box.name
             << R"("},"geometry":{"type":"Polygon","coordinates":[[[)" << box.minX << ','
             << box.minY << "],[" << box.maxX << ',' << box.minY << "],[" << box.maxX << ','
             << box.maxY << "],[" << box.minX << ',' << box.maxY << "],[" << box.minX << ','
             << box.minY << "]]]}}";
        separator = ",\n";
    }
    text << "]}\n";
    return text.str();
}

std::string geoJsonFeature(const std::string& type, const std::string& coordinates) {
    return R"({"type":"Feature","properties":{"name":"x"},"geometry":{"type":")" + type +
           R"(","coordinates":)" + coordinates + "}}";
}

ProgramTest::ProgramTest() {
    std::string pattern = (fs::temp_directory_path() / "jwcg-test-XXXXXX").string();
    m_directory = ::mkdtemp(&pattern[0]);
}

ProgramTest::~ProgramTest() {
    std::error_code ignored;
    fs::remove_all(m_directory, ignored);
}

Outcome ProgramTest::run(const std::vector<std::string>& arguments,
                         const Conditions& conditions) const {
    // Beside the directory, so that its listing shows what the program left.
    const fs::path out = m_directory.string() + ".out";
    const fs::path err = m_directory.string() + ".err";
    const pid_t child = ::fork();
    if (child == 0) become(arguments, m_directory, out, err, conditions.fileSizeLimit);
    Outcome outcome;
    outcome.status = waitFor(child, conditions.meanwhile);
    outcome.out = readFile(out);
    outcome.err = readFile(err);
    fs::remove(out);
    fs::remove(err);
    return outcome;
}

nlohmann::json ProgramTest::parse(const Outcome& outcome) {
    nlohmann::json object = nlohmann::json::parse(outcome.out, nullptr, false);
    EXPECT_TRUE(object.is_object()) << outcome.out << outcome.err;
    return object.is_object() ? object : nlohmann::json::object();
}

void ProgramTest::write(const std::string& name, const std::string& text) const {
    std::ofstream(m_directory / name, std::ios::binary) << text;
}

std::string ProgramTest::read(const std::string& name) const {
    return readFile(m_directory / name);
}

void ProgramTest::writePackage(const std::string& name, const std::string& layerName,
                               const std::vector<Box>& boxes) const {
    OGRSpatialReference reference;
    reference.importFromEPSG(4326);
    writeBoxes(path(name), "GPKG", layerName, &reference, boxes);
}

void ProgramTest::writeNowhere(const std::string& name, const std::vector<Box>& boxes) const {
    writeBoxes(path(name), "ESRI Shapefile", fs::path(name).stem(), nullptr, boxes);
}

std::vector<std::string> ProgramTest::listing() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_directory)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace jws::test
