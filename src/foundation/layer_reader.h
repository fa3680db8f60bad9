// SPDX-License-Identifier: MIT
//
// LayerReader: features of an OGR layer by position, where OGR knows identifiers and one cursor.
//
// A pass from the start is followed by the driver's own cursor, and every feature it yields enters
// its identifier into a table by position. Any other position is looked up in the table and fetched
// by identifier. The table is complete after one pass; when a position is wanted that it does not
// have yet, it is completed by a pass without attributes. Nothing is assumed about how a source
// numbers its features; in one that gives a number to several features, or none to any, positions
// are reached by the cursor alone.
//
// The cursor is the layer's, not the reader's: another reader on the same layer, a filter, or a
// fetch by identifier in drivers that scan for it moves it. The reader that moved it last owns it;
// one that lost it goes on through the table. Drivers without random access are read on from the
// cursor, and from the start again for what lies behind it.
//
// A pass that ends before the driver's own count is a failure, not an end. The count of a database
// is asked of its table, not of what it keeps beside it.
//
// Drivers that drop geometries without telling whose are looked at a second time: features that
// lost theirs are marked, for those who decode them to tell.
//
// A reader may see some of the features only: those of a table of identifiers, which are fetched
// one by one, or those that pass a test, on the way of the cursor. Positions count what it sees.
#ifndef JW_FOUNDATION_LAYER_READER_H
#define JW_FOUNDATION_LAYER_READER_H

#include <ogrsf_frmts.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "foundation/source_handle.h"
#include "foundation/unread_geometry.h"

namespace jws::detail {

/// All operations set the thread's last error when they fail. Callers hold a GdalErrors scope.
class LayerReader {
  public:
    enum class Outcome { Read, End, Failed };

    LayerReader(std::shared_ptr<JWSourceHandle> source, OGRLayer& layer);

    /// Number of features, −1 on failure.
    std::int64_t count(GdalErrors& errors);
    /// Largest identifier, −1 for an empty layer, −2 on failure.
    std::int64_t maximumFID(GdalErrors& errors);

    /// Reads the feature at `position` as part of a walk: the cursor is brought there if possible.
    Outcome readNext(std::int64_t position, OGRFeatureUniquePtr& feature, GdalErrors& errors);
    /// Reads the feature at `position` alone, leaving the cursor where it is if possible.
    Outcome readAt(std::int64_t position, OGRFeatureUniquePtr& feature, GdalErrors& errors);
    /// Visits all features from the start without their attributes (and without their geometries
    /// when `geometries` is false). Returns false on failure.
    bool visitAll(bool geometries, const std::function<void(std::int64_t, OGRFeature&)>& visit,
                  GdalErrors& errors);
    /// Reads what the layer's current filter lets pass; ends the walk.
    bool visitFiltered(const std::function<bool(OGRFeature&)>& visit, GdalErrors& errors);

    /// The source has an index that tells the features of a filter, and reads them by identifier,
    /// each its own.
    bool isKeyed(const GdalErrors& errors);
    /// Has this reader see, of the features it saw, only those of these identifiers, in ascending
    /// order. For keyed sources.
    void choose(std::vector<std::int64_t> fids);
    using Test = std::function<bool(OGRFeature&)>;
    /// Has this reader see only the features that pass a test, all for an empty one; returns the
    /// test before.
    Test restrictTo(Test holds);
    const Test& test() const { return m_holds; }
    bool isChosen() const { return m_chosen; }
    /// There is a choice or a test.
    bool isRestricted() const { return m_chosen || m_holds; }

    /// Forgets the cursor: something else is about to move it.
    void loseCursor();

  private:
    bool ownsCursor() const;
    /// The feature is one of those that this reader sees.
    bool sees(OGRFeature& feature) const;
    void readDriversNext(OGRFeatureUniquePtr& feature, GdalErrors& errors);
    /// Marks a feature that the driver handed out without its geometry, or with a part of it.
    void lookAgain(OGRFeature* feature, GdalErrors& errors);
    bool visitChosen(const std::function<void(std::int64_t, OGRFeature&)>& visit,
                     GdalErrors& errors);
    bool hasTable(std::int64_t position) const {
        return position < static_cast<std::int64_t>(m_fids.size());
    }
    /// Whether the identifier of a position is known, and known to be its alone.
    bool canFetch(std::int64_t position) const {
        return m_randomAccess && hasTable(position) && (m_increasing || m_complete);
    }
    void finishTable();
    void noticeChanges();
    void rewind();
    Outcome next(OGRFeatureUniquePtr& feature, GdalErrors& errors);
    Outcome skipTo(std::int64_t position, OGRFeatureUniquePtr& feature, GdalErrors& errors);
    Outcome fetch(std::int64_t position, OGRFeatureUniquePtr& feature, GdalErrors& errors);
    Outcome fetchFromTable(std::int64_t position, OGRFeatureUniquePtr& feature, GdalErrors& errors);
    bool completeTable(GdalErrors& errors);
    bool mustBeReadToCount() const;
    bool endIsGenuine(GdalErrors& errors);
    std::int64_t askDatabase(const std::string& expression, GdalErrors& errors);
    std::int64_t firstNumber(const std::string& statement, const GdalErrors& errors);
    Outcome fail(const GdalErrors& errors, const std::string& what, std::int64_t fid = -1);
    /// Fails because `feature`, or the one that should have come after `previous`, is unreadable.
    Outcome failAt(const GdalErrors& errors, const OGRFeature* feature, std::int64_t previous);

    std::shared_ptr<JWSourceHandle> m_source;
    OGRLayer& m_layer;
    std::vector<std::int64_t> m_fids;  ///< identifier of each position met so far
    bool m_complete = false;           ///< the table holds every feature
    bool m_increasing = true;          ///< each identifier in it is larger than the one before
    bool m_chosen = false;             ///< the table is all that this reader sees
    Test m_holds;                      ///< what it sees, empty for everything
    std::int64_t m_count = -1;
    std::int64_t m_handedOut = 0;  ///< by the driver since its cursor stood at the start
    std::int64_t m_cursor = -1;    ///< position that the driver's cursor yields next, −1 unknown
    std::uint64_t m_changesSeen = 0;
    bool m_randomAccess;
    std::unique_ptr<SecondLook> m_secondLook;  ///< null where there is nothing more to see
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_LAYER_READER_H
