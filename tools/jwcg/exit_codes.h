// SPDX-License-Identifier: MIT
//
// The exit status of the program, the failure that carries one up to main, and how a library error
// becomes one.
#ifndef JWCG_EXIT_CODES_H
#define JWCG_EXIT_CODES_H

#include <stdexcept>
#include <string>

#include "jw_report.h"

namespace jws::cli {

/// What the program's exit status says.
enum ExitCode {
    ExitComplete = 0,
    ExitInternal = 1,
    ExitUsage = 2,
    ExitInputUnreadable = 3,
    ExitFeaturesRejected = 4,
    ExitOutOfSpace = 5,
    ExitOutputExists = 6,
    ExitReferencesDiffer = 7,
    ExitInterrupted = 130,
};

/// One row of the exit status list in help and manual.
struct ExitCodeText {
    ExitCode code;
    const char* text;
};
constexpr ExitCodeText exitCodeTexts[] = {
    {ExitComplete, "complete"},
    {ExitInternal, "internal error, or writing failed for another reason than lack of space"},
    {ExitUsage,
     "usage: wrong option, a format that is unknown or cannot hold the result, no such layer, a "
     "layer without polygons, a place that cannot be written"},
    {ExitInputUnreadable, "an input is missing, of no known format, or cut short"},
    {ExitFeaturesRejected,
     "some features could not be processed; the output is written, they are counted and listed"},
    {ExitOutOfSpace, "out of disk or memory"},
    {ExitOutputExists, "the output exists and --overwrite was not given"},
    {ExitReferencesDiffer, "the spatial references of the inputs differ"},
    {ExitInterrupted, "interrupted"},
};

/// The exit status for a kind of library error. A layer of the wrong kind and a layer that is not
/// there count as usage: the file is fine, the command line asks it for something it does not have.
constexpr ExitCode exitCodeFor(enumJWErrorKind kind) {
    switch (kind) {
        case JWErrorInvalidArgument:
        case JWErrorOutputUnwritable:
        case JWErrorLayerMissing:
        case JWErrorWrongGeometryType:
        case JWErrorFormatUnfit:
            return ExitUsage;
        case JWErrorInputUnreadable:
            return ExitInputUnreadable;
        case JWErrorOutOfSpace:
            return ExitOutOfSpace;
        case JWErrorOutputExists:
            return ExitOutputExists;
        case JWErrorReferencesDiffer:
            return ExitReferencesDiffer;
        case JWErrorCancelled:
            return ExitInterrupted;
        case JWErrorNone:
        case JWErrorInternal:
        case JWErrorFeatureRejected:
            break;
    }
    return ExitInternal;
}

/// Ends a command with an exit status and one line of text.
class CommandFailure : public std::runtime_error {
  public:
    CommandFailure(ExitCode code, const std::string& text)
        : std::runtime_error(text), m_code(code) {}
    ExitCode code() const { return m_code; }

  private:
    ExitCode m_code;
};

/// The library's last error as a failure; `context` (a file, usually) leads the text unless the
/// text names it already.
inline CommandFailure libraryFailure(const std::string& context) {
    const JWError& error = JWReport::lastError();
    std::string text = error.text.empty() ? "failed without saying why" : error.text;
    if (text.find(context) == std::string::npos) text.insert(0, context + ": ");
    return CommandFailure(exitCodeFor(error.kind), text);
}

}  // namespace jws::cli

#endif  // JWCG_EXIT_CODES_H
