// SPDX-License-Identifier: MIT
//
// What an operation says beside its return code: the last error of the calling thread, console
// messages, progress with cancellation, and the account of a layer operation.
//
// Public operations return codes and never throw. A program that wants to know why an operation
// answered 0, null or a negative code asks `JWReport::lastError()`.
#ifndef JW_REPORT_H
#define JW_REPORT_H

#include <cstdint>
#include <string>
#include <vector>

#include "jw_export.h"

namespace jws {

/// Kind of a failure; the command-line program derives its exit status from it.
enum enumJWErrorKind {
    JWErrorNone = 0,
    JWErrorInternal = 1,            ///< an unexpected failure inside the library
    JWErrorInvalidArgument = 2,     ///< a null, negative or contradictory argument
    JWErrorInputUnreadable = 3,     ///< a source is missing, of no known format, or cut short
    JWErrorFeatureRejected = 4,     ///< a feature could not be read, processed or written
    JWErrorOutOfSpace = 5,          ///< disk or memory exhausted
    JWErrorOutputExists = 6,        ///< the destination is there already
    JWErrorReferencesDiffer = 7,    ///< spatial references of the inputs differ
    JWErrorOutputUnwritable = 8,    ///< the destination cannot be created or written
    JWErrorLayerMissing = 9,        ///< the source has no such layer
    JWErrorWrongGeometryType = 10,  ///< the layer or feature holds another kind of geometry
    JWErrorCancelled = 11,          ///< the progress callback asked to stop
    JWErrorFormatUnfit = 12,        ///< the destination's format cannot hold such a layer
};

/// The last failure of a thread. Texts are UTF-8, one sentence, and name file, layer and feature.
struct JWError {
    enumJWErrorKind kind = JWErrorNone;
    std::string text;
    std::int64_t feature = -1;  ///< identifier of the feature concerned, −1 where there is none
};

/// Receives one console text, or several in a row where they come by the thousand, line breaks
/// included. Calls are serialised. It must not call
/// `JWReport` nor start an operation on layers.
typedef void (*JWMessageSink)(const char* text, void* context);

/// Receives the progress of an operation; returning false asks it to stop. Calls are serialised and
/// come from any thread of the team; a few may follow after one that returned false. It must not
/// set the callback nor start an operation on layers.
typedef bool (*JWProgressCallback)(std::int64_t done, std::int64_t total, void* context);

/// Errors, messages and progress. All members are thread-safe; errors are kept per thread, the sink
/// and the callback are the process's.
class JW_API JWReport {
  public:
    /// Returns the last error of this thread; kind `JWErrorNone` when there was none since the last
    /// `clearError`. The reference stays valid until this thread's next error.
    static const JWError& lastError();
    static void clearError();
    static void setError(enumJWErrorKind kind, const std::string& text, std::int64_t feature = -1);

    /// Sends console texts to `sink` instead of standard output; null restores `printf`.
    static void setMessageSink(JWMessageSink sink, void* context);
    /// Switches console texts off, which spares making them, or on again; they are on to begin
    /// with.
    static void setMessagesOn(bool on);
    static bool messagesAreOn();
    /// Prints one console text (`printf` format) through the sink, unless they are off.
    static void message(const char* format, ...) __attribute__((format(printf, 1, 2)));

    /// Has layer operations report their progress to `callback`; null switches that off.
    static void setProgress(JWProgressCallback callback, void* context);
    /// Reports `done` of `total` steps; returns false when the callback asked to stop.
    static bool progress(std::int64_t done, std::int64_t total);
};

/// A feature that an operation could not take in or hand out.
struct JWRejectedFeature {
    std::string source;  ///< file or other data source; empty for features in memory
    std::string layer;
    std::int64_t fid = -1;
    std::string reason;
};

/// The account of one layer operation: what went in, what came out, what did not.
struct JWLayerReport {
    std::int64_t readA = 0;   ///< features read from the input layer
    std::int64_t readB = 0;   ///< features read from the overlay layer
    std::int64_t emptyA = 0;  ///< of these, without a geometry or with an empty one
    std::int64_t emptyB = 0;
    std::int64_t pairs = 0;         ///< candidate pairs whose envelopes meet
    std::int64_t written = 0;       ///< features written to the result
    std::int64_t writtenEmpty = 0;  ///< of these, without a geometry, as they were read

    // Areas in square layer units, summed over features: what features of one layer have in common
    // counts for each of them. The area of a feature that is read, and of its copy in the result,
    // is that of its outer rings minus its holes; when areas are checked, that of the area which
    // its rings, crossing ones too, enclose by the even-odd rule.
    double areaA = 0;        ///< of the features read from the input layer
    double areaB = 0;        ///< of the features read from the overlay layer
    double area = 0;         ///< of the features written
    double areaDropped = 0;  ///< of rings below the tolerance: outer rings minus holes
    double areaRefused = 0;  ///< of results that the output refused
    /// Dissolve: what features of one group cover more than once, counted for each further cover.
    double areaOverlap = 0;
    // Counted by operations that walk over one layer.
    std::int64_t verticesA = 0;  ///< of the features that could be processed
    std::int64_t vertices = 0;   ///< of the features written

    /// The identity that the operation obeys was checked (`JWOverlayOptions::checkAreas`).
    bool checked = false;
    /// What the identity misses by, summed over features without regard to the sign; 0 would be
    /// exact arithmetic. What got lost between a clip and the result counts as well, results that
    /// the output refused do not. 0 when nothing was checked.
    double residual = 0;
    /// One sentence when the residual is above 1e-9 of the area of the features that it is about,
    /// or when areas are not finite and could not be checked; empty otherwise.
    std::string warning;

    /// Features that were read but could not be processed, or were refused by the result layer.
    std::vector<JWRejectedFeature> rejected;
    double secondsIndex = 0;    ///< reading and indexing the overlay layer
    double secondsOverlay = 0;  ///< reading, computing and writing block by block
    bool cancelled = false;     ///< the progress callback stopped the run
};

}  // namespace jws

#endif  // JW_REPORT_H
