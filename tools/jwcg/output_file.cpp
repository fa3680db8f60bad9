// SPDX-License-Identifier: MIT
#include "output_file.h"

#include <strings.h>

#include <algorithm>

#include "exit_codes.h"
#include "output_format.h"

namespace jws::cli {
namespace fs = std::filesystem;
namespace {

CommandFailure usage(const std::string& text) { return CommandFailure(ExitUsage, text); }

/// A directory that is one data set and may be replaced as a whole; any other may hold anything.
bool isFileGeodatabase(const fs::path& path) { return path.extension() == ".gdb"; }

bool isVirtual(const std::string& path) { return path.compare(0, 4, "/vsi") == 0; }

/// Databases do not tell upper from lower case in the names of layers.
bool sameName(const std::string& a, const std::string& b) {
    return ::strcasecmp(a.c_str(), b.c_str()) == 0;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& other) { return sameName(other, name); });
}

/// What a path leads to through links, whether it is there or not.
fs::path behindLinks(fs::path path) {
    std::error_code error;
    for (int i = 0; i < 40 && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
        const fs::path target = fs::read_symlink(path, error);
        if (error) break;
        path = path.parent_path() / target;  // an absolute target stands alone
    }
    return path;
}

/// Reads every feature back and returns their number, −1 when reading fails. Those that the format
/// took but did not keep the geometry of go into `lost`, if they had one.
std::int64_t countByReading(JWFeatureLayer& layer, bool hasGeometries,
                            std::vector<JWRejectedFeature>& lost) {
    constexpr std::int64_t blockSize = 4096;
    JWFeatureClass block;
    std::int64_t count = 0;
    for (;;) {
        throwIfInterrupted();
        const int read = layer.getFeaturesByPosition(count, blockSize, block);
        if (read < 0) return -1;
        for (int i = 0; i < read; ++i) {
            const JWFeature& feature = *block.getFeatureAt(i);
            if (feature.getGeometryPtr() != nullptr || !hasGeometries) continue;
            lost.push_back({layer.getDataSourceName(), layer.getLayerName(), feature.getFID64(),
                            "the output format did not keep the geometry"});
        }
        count += read;
        if (read < blockSize) return count;
    }
}

}  // namespace

OutputFile::OutputFile(OutputRequest request) : m_request(std::move(request)) {
    if (m_request.path.empty()) throw usage("OUTPUT must not be empty");
    if (isVirtual(m_request.path)) {
        throw usage(m_request.path + ": the output must be an ordinary file");
    }
    checkDestination();
    checkAppend();
    checkInputs();
}

OutputFile::~OutputFile() {
    // Close before the work directory goes, and let its files go unverified.
    m_layer.reset();
    m_source.reset();
}

void OutputFile::checkDestination() {
    std::error_code error;
    m_destination = m_request.path;
    if (m_destination.filename().empty()) m_destination = m_destination.parent_path();
    m_format = chooseFormat(m_destination, m_request.format);
    m_destination = behindLinks(m_destination);
    m_exists = fs::exists(m_destination, error);
    if (error) throw usage(m_request.path + ": " + error.message());
    if (m_exists) {
        m_destination = fs::canonical(m_destination, error);
        if (error) throw usage(m_request.path + ": " + error.message());
        const bool directory = fs::is_directory(m_destination);
        if (directory && !isFileGeodatabase(m_destination)) {
            throw usage(m_request.path + ": is a directory");
        }
        if (!directory && !fs::is_regular_file(m_destination)) {
            throw usage(m_request.path + ": is not an ordinary file");
        }
        m_timeBefore = fs::last_write_time(m_destination);
    }
    const std::string stem = m_destination.stem().string();
    if (stem.empty() || stem == "." || stem == "..") {
        throw usage(m_request.path + ": is not a file name");
    }
    m_layerName = m_request.layer.empty() ? stem : m_request.layer;
    if (m_request.overwrite || m_request.append) return;
    const std::vector<fs::path> files = filesOf(m_destination);
    if (!m_exists && files.size() < 2) return;
    throw CommandFailure(ExitOutputExists, (m_exists ? m_request.path : files[1].string()) +
                                               ": exists already; --overwrite replaces it");
}

void OutputFile::checkAppend() {
    if (!m_request.append || !m_exists) return;
    if (!takesSeveralLayers(m_format)) {
        throw usage(m_request.path + ": a file of format " + m_format +
                    " cannot take another layer; --append needs GPKG, SQLite or OpenFileGDB");
    }
    for (const char* suffix : {"-wal", "-journal"}) {
        std::error_code none;
        const auto size = fs::file_size(m_destination.string() + suffix, none);
        if (!none && size > 0) {
            throw usage(m_request.path + ": another program is writing to it");
        }
    }
    SourcePointer existing(JWDataSource::open(m_destination.c_str()));
    if (!existing) throw libraryFailure(m_request.path);
    if (m_format != existing->getDriverName()) {
        throw usage(m_request.path + ": has format " + existing->getDriverName() + ", not " +
                    m_format);
    }
    if (!m_request.overwrite && contains(existing->getLayerNames(), m_layerName)) {
        throw CommandFailure(ExitOutputExists, m_request.path + ": layer " + m_layerName +
                                                   " exists already; --overwrite replaces it, "
                                                   "--output-layer gives another name");
    }
}

bool OutputFile::destinationIs(const std::string& input) const {
    std::error_code ignored;
    const std::vector<fs::path> files = filesOf(m_destination);
    return std::any_of(files.begin(), files.end(),
                       [&](const fs::path& file) { return fs::equivalent(file, input, ignored); });
}

void OutputFile::checkInputs() const {
    if (m_request.append) return;  // reading one layer and adding another is fine
    for (const std::string& input : m_request.inputs) {
        if (destinationIs(input)) throw usage(m_request.path + ": is also an input");
    }
}

void OutputFile::checkInputLayer(const std::string& path, const std::string& layer,
                                 const std::vector<std::string>& files) const {
    if (sameName(layer, m_layerName) && destinationIs(path)) {
        throw usage(m_request.path + ": layer " + m_layerName + " is also an input");
    }
    if (m_request.append) return;
    for (const std::string& file : files) {
        if (!destinationIs(file)) continue;
        throw usage(m_request.path + ": would replace " + file + ", a file of the input " + path);
    }
}

void OutputFile::open() {
    m_work = std::make_unique<WorkDirectory>(m_destination);
    const std::string path = m_work->output().string();
    if (m_request.append && m_exists) {
        m_work->copyDestination();
        m_source.reset(JWDataSource::open(path.c_str(), true));
        if (!m_source) throw writeFailure();
        if (contains(m_source->getLayerNames(), m_layerName) &&
            !m_source->deleteLayer(m_layerName.c_str())) {
            throw writeFailure();
        }
    } else {
        m_source.reset(JWDataSource::create(path.c_str(), m_format.c_str()));
        if (!m_source) throw writeFailure();
    }
}

JWFeatureLayer& OutputFile::createLayer(enumJWWKBGeometryType type,
                                        const JWSpatialReference* reference,
                                        const JWFeatureLayer* like) {
    throwIfInterrupted();
    open();
    m_hasGeometries = type != JWWKBNone;
    m_layer.reset(m_source->createLayer(m_layerName.c_str(), type, reference,
                                        layerOptions(m_format, type), like));
    if (!m_layer) throw writeFailure();
    checkFiles();
    checkLayer(type);
    m_layerName = m_layer->getLayerName();
    throwIfInterrupted();
    return *m_layer;
}

/// Some formats make a directory where the ending is not theirs.
void OutputFile::checkFiles() const {
    if (isFileGeodatabase(m_destination) || !fs::is_directory(m_work->output())) return;
    const std::string ending = endingOf(m_format);
    throw usage(m_request.path + ": a file of format " + m_format + " needs a name that ends in ." +
                ending);
}

/// Some formats create another layer than the one asked for.
void OutputFile::checkLayer(enumJWWKBGeometryType wanted) const {
    const struct {
        enumJWWKBGeometryType multi, single;
        const char* name;
    } kinds[] = {{JWWKBMultiPoint, JWWKBPoint, "points"},
                 {JWWKBMultiLineString, JWWKBLineString, "lines"},
                 {JWWKBMultiPolygon, JWWKBPolygon, "polygons"}};
    const enumJWWKBGeometryType type = m_layer->getGeometryType();
    for (const auto& kind : kinds) {
        if (kind.multi != wanted || type == kind.multi || type == kind.single ||
            type == JWWKBUnknown || type == JWWKBGeometryCollection) {
            continue;
        }
        throw usage(m_request.path + ": format " + m_format + " does not hold " + kind.name);
    }
    // A CSV file's layer is called after it as soon as it is read.
    const std::string name =
        m_format == "CSV" ? m_destination.stem().string() : m_layer->getLayerName();
    if (!m_request.layer.empty() && !takesSeveralLayers(m_format) && name != m_request.layer) {
        throw usage(m_request.path + ": format " + m_format + " calls the layer " + name +
                    ", not what --output-layer says");
    }
    if (m_layer->getFieldsDefnPtr()->getFieldCount() > 0) {
        throw usage(m_request.path + ": format " + m_format +
                    " gives every layer fields of its own and cannot take the result's");
    }
}

std::string OutputFile::withFinalPath(std::string text) const {
    if (!m_work) return text;
    const std::string work = m_work->output().string();
    for (std::size_t at = 0; (at = text.find(work, at)) != std::string::npos;) {
        text.replace(at, work.size(), m_request.path);
        at += m_request.path.size();
    }
    return text;
}

CommandFailure OutputFile::writeFailure() const {
    const CommandFailure failure = libraryFailure(m_work ? m_work->output().string() : path());
    const ExitCode code = isOutOfSpace() ? ExitOutOfSpace : failure.code();
    return CommandFailure(code, withFinalPath(failure.what()));
}

bool OutputFile::isOutOfSpace() const { return m_work && m_work->isOutOfSpace(); }

std::vector<JWRejectedFeature> OutputFile::verify(std::int64_t features) const {
    std::vector<JWRejectedFeature> lost;
    const auto incomplete = [&](const std::string& why) {
        return CommandFailure(
            isOutOfSpace() ? ExitOutOfSpace : ExitInternal,
            m_request.path + ": the file could not be written completely: " + why);
    };
    std::error_code error;
    const bool isEmpty = fs::is_empty(m_work->output(), error) || error;
    if (!readsBackExactly(m_format)) {
        if (isEmpty) throw incomplete("it is empty");
        return lost;
    }
    // A text of no lines holds no features, but cannot be told from other files.
    if (m_format == "GeoJSONSeq" && isEmpty && features == 0 && !error) return lost;
    SourcePointer source(JWDataSource::open(m_work->output().c_str()));
    if (!source) throw incomplete("it cannot be read back");
    LayerPointer layer(source->openLayer(m_layerName.c_str()));
    // Some formats name the layer as they please; theirs is the only one.
    if (!layer && source->getLayerCount() == 1) layer.reset(source->openLayer(0));
    if (!layer && features == 0 && source->getLayerCount() == 0) return lost;
    if (!layer) throw incomplete("its layer is missing");
    const std::int64_t found = hasTransactions(m_format)
                                   ? layer->getFeatureCount64()
                                   : countByReading(*layer, m_hasGeometries, lost);
    if (found < 0) throw incomplete("it cannot be read back");
    if (found > features) {
        throw CommandFailure(ExitInternal, m_request.path + ": the file holds " +
                                               std::to_string(found) + " features where " +
                                               std::to_string(features) + " were written");
    }
    if (found < features) {
        throw incomplete("it holds " + std::to_string(found) + " of " + std::to_string(features) +
                         " features");
    }
    return lost;
}

void OutputFile::checkUnchanged() const {
    if (!m_request.append || !m_exists) return;
    std::error_code error;
    if (fs::last_write_time(m_destination, error) == m_timeBefore && !error) return;
    throw CommandFailure(ExitInternal,
                         m_request.path + ": another program has changed it meanwhile");
}

std::vector<JWRejectedFeature> OutputFile::commit(std::int64_t features,
                                                  std::int64_t withoutGeometry) {
    // Formats differ in what they still write when closing; both closings count.
    bool closed = m_layer->flush();
    closed = JWFeatureLayer::destroyFeatureLayer(m_layer.release()) && closed;
    closed = JWDataSource::destroyDataSource(m_source.release()) && closed;
    if (!closed) throw writeFailure();
    std::vector<JWRejectedFeature> lost = verify(features);
    if (static_cast<std::int64_t>(lost.size()) <= withoutGeometry) lost.clear();
    throwIfInterrupted();
    checkUnchanged();
    m_work->publish(m_request.overwrite || (m_request.append && m_exists));
    m_work.reset();
    return lost;
}

}  // namespace jws::cli
