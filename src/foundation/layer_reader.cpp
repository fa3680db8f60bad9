// SPDX-License-Identifier: MIT
#include "foundation/layer_reader.h"

#include <gdal_priv.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace jws::detail {
namespace {

/// Positions that are reached by walking rather than by building the table.
constexpr std::int64_t shortWalk = 256;

/// Has a layer leave out attributes, and geometries where asked, for the length of a scope.
class IgnoredFields {
  public:
    IgnoredFields(OGRLayer& layer, bool geometries) : m_layer(layer) {
        if (layer.TestCapability(OLCIgnoreFields) == 0) return;
        CPLStringList names;
        OGRFeatureDefn& definition = *layer.GetLayerDefn();
        for (int k = 0; k < definition.GetFieldCount(); ++k) {
            names.AddString(definition.GetFieldDefn(k)->GetNameRef());
        }
        if (geometries) names.AddString("OGR_GEOMETRY");
        names.AddString("OGR_STYLE");
        m_active = layer.SetIgnoredFields(const_cast<const char**>(names.List())) == OGRERR_NONE;
    }
    ~IgnoredFields() {
        if (m_active) m_layer.SetIgnoredFields(nullptr);
    }
    IgnoredFields(const IgnoredFields&) = delete;
    IgnoredFields& operator=(const IgnoredFields&) = delete;

  private:
    OGRLayer& m_layer;
    bool m_active = false;
};

bool canFetchByIdentifier(const JWSourceHandle& source, OGRLayer& layer) {
    return source.isDatabase() ? *layer.GetFIDColumn() != '\0'
                               : layer.TestCapability(OLCRandomRead) != 0;
}

/// Drivers whose fetches by identifier leave the reading cursor alone.
bool fetchKeepsCursor(const JWSourceHandle& source) {
    return source.isDriver("GPKG") || source.isDriver("ESRI Shapefile") || source.isMemory();
}

}  // namespace

LayerReader::LayerReader(std::shared_ptr<JWSourceHandle> source, OGRLayer& layer)
    : m_source(std::move(source)),
      m_layer(layer),
      m_changesSeen(m_source->state(layer).changes),
      m_randomAccess(canFetchByIdentifier(*m_source, layer)) {
    if (SecondLook::isOfUse(m_source->driver()) && !m_source->isUpdate() &&
        layer.GetLayerDefn()->GetGeomFieldCount() > 0) {
        m_secondLook = std::make_unique<SecondLook>(m_source->name(), m_source->driver(), layer);
    }
}

LayerReader::Outcome LayerReader::fail(const GdalErrors& errors, const std::string& what,
                                       std::int64_t fid) {
    m_cursor = -1;
    std::string where = m_source->name() + ", layer " + m_layer.GetName();
    if (fid >= 0) where += ", feature " + std::to_string(fid);
    errors.report(JWErrorInputUnreadable, where + ": " + what, "", fid);
    return Outcome::Failed;
}

LayerReader::Outcome LayerReader::failAt(const GdalErrors& errors, const OGRFeature* feature,
                                         std::int64_t previous) {
    // Line by line GeoJSON is read ahead: whose message it is is not known.
    const bool isOthers = m_source->isDriver("GeoJSONSeq");
    if (isOthers) return fail(errors, "cannot be read");
    if (feature != nullptr) return fail(errors, "cannot be read", feature->GetFID());
    const std::string after = previous >= 0 ? " after feature " + std::to_string(previous) : "";
    return fail(errors, "cannot be read" + after);
}

void LayerReader::loseCursor() {
    m_cursor = -1;
    m_source->cursorOwner(m_layer) = nullptr;
}

bool LayerReader::ownsCursor() const {
    return m_cursor >= 0 && m_source->cursorOwner(m_layer) == this;
}

void LayerReader::noticeChanges() {
    const std::uint64_t changes = m_source->state(m_layer).changes;
    if (changes == m_changesSeen) return;
    m_changesSeen = changes;
    m_cursor = -1;
    if (m_chosen) return;
    m_fids.clear();
    m_complete = false;
    m_increasing = true;
    m_count = -1;
}

void LayerReader::choose(std::vector<std::int64_t> fids) {
    loseCursor();
    std::sort(fids.begin(), fids.end());
    m_fids = std::move(fids);
    m_count = static_cast<std::int64_t>(m_fids.size());
    m_complete = m_increasing = m_chosen = true;
}

LayerReader::Test LayerReader::restrictTo(Test holds) {
    loseCursor();
    m_fids.clear();
    m_complete = false;
    m_increasing = true;
    m_count = -1;
    return std::exchange(m_holds, std::move(holds));
}

bool LayerReader::sees(OGRFeature& feature) const {
    if (m_chosen) return std::binary_search(m_fids.begin(), m_fids.end(), feature.GetFID());
    return !m_holds || m_holds(feature);
}

/// GeoJSON is read some features ahead, so that a complaint may be about any of those to come.
void LayerReader::lookAgain(OGRFeature* feature, GdalErrors& errors) {
    if (!m_secondLook || feature == nullptr) return;
    if (errors.failed() && m_source->isDriver("GeoJSON") && m_secondLook->open()) {
        m_source->suspectGeometries();
        errors.clear();
    }
    const bool isSuspect = feature->GetGeometryRef() == nullptr || m_source->suspectsGeometries();
    if (isSuspect && m_layer.GetLayerDefn()->IsGeometryIgnored() == 0 &&
        m_secondLook->findsMore(*feature)) {
        markUnreadGeometry(*feature);
    }
}

void LayerReader::readDriversNext(OGRFeatureUniquePtr& feature, GdalErrors& errors) {
    do {
        feature.reset(m_layer.GetNextFeature());
        lookAgain(feature.get(), errors);
        if (feature) ++m_handedOut;
    } while (feature && !errors.failed() && m_holds && !m_holds(*feature));
}

void LayerReader::rewind() {
    m_layer.ResetReading();
    m_source->cursorOwner(m_layer) = this;
    m_cursor = 0;
    m_handedOut = 0;
}

/// Steps the cursor, which is this reader's, and keeps the table.
LayerReader::Outcome LayerReader::next(OGRFeatureUniquePtr& feature, GdalErrors& errors) {
    readDriversNext(feature, errors);
    if (errors.failed()) {
        const std::int64_t previous =
            m_cursor > 0 ? m_fids[static_cast<std::size_t>(m_cursor) - 1] : -1;
        return failAt(errors, feature.get(), previous);
    }
    const auto met = static_cast<std::int64_t>(m_fids.size());
    if (!feature) {
        if (m_cursor != met) return fail(errors, "has changed while it was read");
        if (!m_complete && !endIsGenuine(errors)) return Outcome::Failed;
        if (!m_complete) finishTable();
        m_cursor = -1;
        return Outcome::End;
    }
    if (m_cursor == met) {
        if (m_complete) return fail(errors, "has changed while it was read");
        if (!m_fids.empty() && feature->GetFID() <= m_fids.back()) m_increasing = false;
        m_fids.push_back(feature->GetFID());
    } else if (m_fids[static_cast<std::size_t>(m_cursor)] != feature->GetFID()) {
        return fail(errors, "has changed while it was read");
    }
    ++m_cursor;
    return Outcome::Read;
}

/// The table has every feature: sees whether their identifiers lead to them.
void LayerReader::finishTable() {
    m_complete = true;
    if (m_increasing) return;
    std::vector<std::int64_t> sorted = m_fids;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) m_randomAccess = false;
}

LayerReader::Outcome LayerReader::skipTo(std::int64_t position, OGRFeatureUniquePtr& feature,
                                         GdalErrors& errors) {
    if (!ownsCursor() || m_cursor > position) rewind();
    for (;;) {
        const bool there = m_cursor == position;
        const Outcome outcome = next(feature, errors);
        if (there || outcome != Outcome::Read) return outcome;
    }
}

LayerReader::Outcome LayerReader::fetch(std::int64_t position, OGRFeatureUniquePtr& feature,
                                        GdalErrors& errors) {
    const std::int64_t fid = m_fids[static_cast<std::size_t>(position)];
    if (!fetchKeepsCursor(*m_source)) loseCursor();
    feature.reset(m_layer.GetFeature(fid));
    lookAgain(feature.get(), errors);
    if (feature && !errors.failed()) return Outcome::Read;
    const std::int64_t cursor = m_cursor;
    fail(errors, "cannot be read", fid);
    m_cursor = cursor;
    return Outcome::Failed;
}

LayerReader::Outcome LayerReader::readNext(std::int64_t position, OGRFeatureUniquePtr& feature,
                                           GdalErrors& errors) {
    noticeChanges();
    if (position < 0 || (m_complete && !hasTable(position))) return Outcome::End;
    if (ownsCursor() && m_cursor == position) return next(feature, errors);
    if (position == 0 && !m_chosen) return skipTo(0, feature, errors);
    if (canFetch(position)) return fetch(position, feature, errors);
    const bool onTheWay = ownsCursor() && m_cursor <= position;
    if (!m_randomAccess || onTheWay || m_fids.empty()) return skipTo(position, feature, errors);
    return fetchFromTable(position, feature, errors);
}

LayerReader::Outcome LayerReader::readAt(std::int64_t position, OGRFeatureUniquePtr& feature,
                                         GdalErrors& errors) {
    noticeChanges();
    if (position < 0 || (m_complete && !hasTable(position))) return Outcome::End;
    if (canFetch(position)) return fetch(position, feature, errors);
    if (ownsCursor() && m_cursor == position) return next(feature, errors);
    const bool walk = m_fids.empty() && position < shortWalk;
    if (!m_randomAccess || walk) return skipTo(position, feature, errors);
    return fetchFromTable(position, feature, errors);
}

/// Completes the table first; it may turn out that identifiers do not lead to positions.
LayerReader::Outcome LayerReader::fetchFromTable(std::int64_t position,
                                                 OGRFeatureUniquePtr& feature, GdalErrors& errors) {
    if (!completeTable(errors)) return Outcome::Failed;
    if (!hasTable(position)) return Outcome::End;
    return canFetch(position) ? fetch(position, feature, errors)
                              : skipTo(position, feature, errors);
}

/// Databases may scan an index instead of the table, in another order, when no geometry is wanted.
bool LayerReader::completeTable(GdalErrors& errors) {
    if (m_complete) return true;
    return visitAll(
        m_source->isDatabase(), [](std::int64_t, OGRFeature&) {}, errors);
}

bool LayerReader::visitAll(bool geometries,
                           const std::function<void(std::int64_t, OGRFeature&)>& visit,
                           GdalErrors& errors) {
    noticeChanges();
    if (m_chosen) return visitChosen(visit, errors);
    std::optional<IgnoredFields> ignored;
    if (!m_holds) ignored.emplace(m_layer, !geometries);
    rewind();
    OGRFeatureUniquePtr feature;
    for (std::int64_t position = 0;; ++position) {
        const Outcome outcome = next(feature, errors);
        if (outcome != Outcome::Read) {
            loseCursor();
            return outcome == Outcome::End;
        }
        visit(position, *feature);
    }
}

bool LayerReader::visitChosen(const std::function<void(std::int64_t, OGRFeature&)>& visit,
                              GdalErrors& errors) {
    OGRFeatureUniquePtr feature;
    for (std::int64_t position = 0; position < m_count; ++position) {
        if (fetch(position, feature, errors) != Outcome::Read) return false;
        visit(position, *feature);
    }
    return true;
}

bool LayerReader::visitFiltered(const std::function<bool(OGRFeature&)>& visit, GdalErrors& errors) {
    loseCursor();
    m_layer.ResetReading();
    for (std::int64_t previous = -1;;) {
        const OGRFeatureUniquePtr feature(m_layer.GetNextFeature());
        lookAgain(feature.get(), errors);
        if (errors.failed()) {
            failAt(errors, feature.get(), previous);
            return false;
        }
        if (!feature) return true;
        previous = feature->GetFID();
        if (sees(*feature) && !visit(*feature)) return false;
    }
}

}  // namespace jws::detail
