// SPDX-License-Identifier: MIT
//
// The output of a command: checked before anything is read, written in a hidden directory beside
// its final place, verified, and moved there when it is complete. A run that fails or is
// interrupted leaves nothing, and a destination that existed stays as it was to the byte.
#ifndef JWCG_OUTPUT_FILE_H
#define JWCG_OUTPUT_FILE_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "exit_codes.h"
#include "jw_feature.h"
#include "work_directory.h"

namespace jws::cli {

struct SourceCloser {
    void operator()(JWDataSource* source) const { JWDataSource::destroyDataSource(source); }
};
struct LayerCloser {
    void operator()(JWFeatureLayer* layer) const { JWFeatureLayer::destroyFeatureLayer(layer); }
};
using SourcePointer = std::unique_ptr<JWDataSource, SourceCloser>;
using LayerPointer = std::unique_ptr<JWFeatureLayer, LayerCloser>;

/// What the command line says about an output.
struct OutputRequest {
    std::string path;
    std::string format;  ///< short name or ending; empty: by the path's ending
    std::string layer;   ///< empty: named after the file
    bool overwrite = false;
    bool append = false;
    std::vector<std::string> inputs;  ///< paths that the command reads
};

class OutputFile {
  public:
    /// Checks all that can be known beforehand; creates nothing. Throws CommandFailure: usage for
    /// an unknown format, a place that cannot hold a file, an output that is one of the inputs;
    /// output exists.
    explicit OutputFile(OutputRequest request);
    ~OutputFile();

    /// Throws CommandFailure (usage) when the output would replace this layer of an input, or one
    /// of the files that the input consists of.
    void checkInputLayer(const std::string& path, const std::string& layer,
                         const std::vector<std::string>& files) const;

    /// Starts the output: makes the hidden directory and the layer in it, of this type, under
    /// `reference` (may be null); points keep the z and m that `like` has. Throws CommandFailure
    /// when that cannot be done.
    JWFeatureLayer& createLayer(enumJWWKBGeometryType type, const JWSpatialReference* reference,
                                const JWFeatureLayer* like);
    /// Ends the output: closes it, verifies that `features` features are in it, and moves it to its
    /// final place. Returns features whose geometry the format did not keep: those without one, if
    /// there are more than were written so. Throws CommandFailure; the destination is unharmed
    /// then.
    std::vector<JWRejectedFeature> commit(std::int64_t features, std::int64_t withoutGeometry);
    /// `text` with the final path in place of the hidden one.
    std::string withFinalPath(std::string text) const;
    /// The library's last error as a failure of this output, naming the final path.
    CommandFailure writeFailure() const;
    /// True when writing failed for lack of space.
    bool isOutOfSpace() const;

    const std::string& path() const { return m_request.path; }
    const std::string& format() const { return m_format; }
    const std::string& layerName() const { return m_layerName; }

  private:
    void checkDestination();
    void checkInputs() const;
    void checkAppend();
    void open();
    void checkFiles() const;
    void checkLayer(enumJWWKBGeometryType wanted) const;
    std::vector<JWRejectedFeature> verify(std::int64_t features) const;
    void checkUnchanged() const;
    bool destinationIs(const std::string& input) const;

    OutputRequest m_request;
    std::filesystem::path m_destination;  ///< final place, symbolic links resolved
    bool m_exists = false;
    std::filesystem::file_time_type m_timeBefore;
    std::string m_format;
    std::string m_layerName;
    bool m_hasGeometries = true;
    std::unique_ptr<WorkDirectory> m_work;
    SourcePointer m_source;
    LayerPointer m_layer;
};

}  // namespace jws::cli

#endif  // JWCG_OUTPUT_FILE_H
