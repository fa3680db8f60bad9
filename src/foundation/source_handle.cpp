// SPDX-License-Identifier: MIT
#include "foundation/source_handle.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>

#include "foundation/api_guard.h"
#include "foundation/source_check.h"

namespace jws {
namespace {

template <std::size_t Count>
bool isOneOf(const std::string& name, const char* const (&names)[Count]) {
    for (const char* other : names) {
        if (name == other) return true;
    }
    return false;
}

/// There is room beside a source for all its files once more: GDAL packs a shapefile of which rows
/// were deleted by copying it, at the latest when it is closed, and crashes where the copy cannot
/// be written.
bool hasRoomForCopy(GDALDataset& dataset, const std::string& path) {
    VSIStatBufL place;
    const bool isDirectory = VSIStatL(path.c_str(), &place) == 0 && VSI_ISDIR(place.st_mode);
    const std::string directory = isDirectory ? path : CPLGetPath(path.c_str());
    const GIntBig room = VSIGetDiskFreeSpace(directory.empty() ? "." : directory.c_str());
    GIntBig needed = 0;
    char** files = dataset.GetFileList();
    for (int i = 0; i < CSLCount(files); ++i) {
        VSIStatBufL stat;
        if (VSIStatL(files[i], &stat) == 0) needed += static_cast<GIntBig>(stat.st_size);
    }
    CSLDestroy(files);
    return room < 0 || room > needed;  // below 0 where the file system does not tell
}

bool isDatabaseDriver(const std::string& name) {
    static const char* const names[] = {"GPKG", "SQLite", "PostgreSQL", "MySQL", "MSSQLSpatial"};
    return isOneOf(name, names);
}

}  // namespace

using detail::GdalErrors;

JWSourceHandle::JWSourceHandle(GDALDataset* dataset, std::string name, bool update, bool created)
    : m_dataset(dataset),
      m_name(std::move(name)),
      m_driver(dataset->GetDriverName()),
      m_isDatabase(isDatabaseDriver(m_driver)),
      m_isMemory(m_driver == "Memory"),
      m_update(update),
      m_created(created),
      m_transactions(dataset->TestCapability(ODsCTransactions) != 0) {}

JWSourceHandle::~JWSourceHandle() {
    detail::guarded("JWSourceHandle", false, [this] { return close(); });
}

const void*& JWSourceHandle::cursorOwner(const OGRLayer& layer) {
    static const char* const independent[] = {"GPKG",       "SQLite",     "ESRI Shapefile",
                                              "Memory",     "GeoJSON",    "CSV",
                                              "FlatGeobuf", "GeoJSONSeq", "OpenFileGDB"};
    const void* key = isOneOf(m_driver, independent) ? static_cast<const void*>(&layer) : nullptr;
    return m_states[key].cursorOwner;
}

bool JWSourceHandle::fail(const GdalErrors& errors, const char* what) const {
    errors.report(JWErrorOutputUnwritable, m_name + ": " + what, isMemory() ? "" : m_name);
    return false;
}

void JWSourceHandle::forgetCursors() {
    for (auto& entry : m_states) entry.second.cursorOwner = nullptr;
}

void JWSourceHandle::forget(const OGRLayer& layer) {
    m_states.erase(&layer);
    const auto isOfIt = [&](const auto& write) { return write.first == &layer; };
    m_undo.erase(std::remove_if(m_undo.begin(), m_undo.end(), isOfIt), m_undo.end());
}

bool JWSourceHandle::begin() {
    if (m_depth == 0) {
        if (!commitImplicit()) return false;
        GdalErrors errors;
        if (m_transactions && m_dataset->StartTransaction() != OGRERR_NONE) {
            return fail(errors, "cannot begin a transaction");
        }
        m_undo.clear();
    }
    ++m_depth;
    return true;
}

bool JWSourceHandle::commit() {
    if (m_depth == 0) return commitImplicit();
    if (--m_depth > 0) return true;
    m_undo.clear();
    return !m_transactions || store();
}

bool JWSourceHandle::commitImplicit() {
    if (!m_implicit) return true;
    m_implicit = false;
    return store();
}

bool JWSourceHandle::store() {
    GdalErrors errors;
    if (m_dataset->CommitTransaction() == OGRERR_NONE && !errors.failed()) return true;
    fail(errors, "the features could not be stored");
    GdalErrors quiet;
    m_dataset->RollbackTransaction();
    outdate();
    return false;
}

void JWSourceHandle::outdate() {
    for (auto& entry : m_states) ++entry.second.changes;
    forgetCursors();
}

bool JWSourceHandle::rollback() {
    if (m_depth == 0) return true;
    m_depth = 0;
    outdate();
    if (!m_transactions) return undoWrites();
    GdalErrors errors;
    if (m_dataset->RollbackTransaction() == OGRERR_NONE) return true;
    return fail(errors, "the transaction could not be rolled back");
}

/// Deletes what was written since `begin`, last first.
bool JWSourceHandle::undoWrites() {
    GdalErrors errors;
    if (isDriver("ESRI Shapefile") && !m_undo.empty() && !hasRoomForCopy(*m_dataset, m_name)) {
        m_undo.clear();
        return fail(errors, "there is no room to take written features back");
    }
    bool undone = true;
    std::string repack;
    for (auto write = m_undo.rbegin(); write != m_undo.rend(); ++write) {
        if (write->first->DeleteFeature(write->second) != OGRERR_NONE) undone = false;
        if (isDriver("ESRI Shapefile")) repack = write->first->GetName();
    }
    if (!repack.empty()) {
        m_dataset->ReleaseResultSet(
            m_dataset->ExecuteSQL(("REPACK " + repack).c_str(), nullptr, nullptr));
    }
    m_undo.clear();
    if (undone && !errors.failed()) return true;
    return fail(errors, "the format cannot take written features back");
}

bool JWSourceHandle::beforeWrite() {
    if (!m_transactions || m_depth > 0 || m_implicit) return true;
    GdalErrors errors;
    if (m_dataset->StartTransaction() != OGRERR_NONE) {
        return fail(errors, "cannot begin a transaction");
    }
    m_implicit = true;
    return true;
}

void JWSourceHandle::afterWrite(OGRLayer& layer, std::int64_t fid) {
    LayerState& layers = state(layer);
    ++layers.changes;
    if (m_created) {
        ++layers.written;
        ++m_written;
    }
    if (m_depth > 0 && !m_transactions) m_undo.emplace_back(&layer, fid);
}

bool JWSourceHandle::isWriteOnly(OGRLayer& layer) const {
    return m_created && !isDatabase() && layer.TestCapability(OLCRandomRead) == 0;
}

std::int64_t JWSourceHandle::writtenTo(OGRLayer& layer) const {
    const auto found = m_states.find(&layer);
    return found == m_states.end() ? 0 : found->second.written;
}

bool JWSourceHandle::flush() {
    if (!m_update) return true;
    if (m_depth == 0 && !commitImplicit()) return false;
    forgetCursors();
    GdalErrors errors;
    for (int i = 0; i < m_dataset->GetLayerCount(); ++i) {
        if (m_dataset->GetLayer(i)->SyncToDisk() != OGRERR_NONE) {
            return fail(errors, "data could not be written");
        }
    }
    m_dataset->FlushCache(false);
    return !errors.failed() || fail(errors, "data could not be written");
}

bool JWSourceHandle::close() {
    if (m_dataset == nullptr) return true;
    bool complete = true;
    if (m_depth > 0) {
        rollback();
        JWReport::setError(JWErrorOutputUnwritable,
                           m_name + ": closed within a transaction, which was rolled back");
        complete = false;
    }
    complete = commitImplicit() && complete;
    GdalErrors errors;
    GDALClose(GDALDataset::ToHandle(m_dataset));
    m_dataset = nullptr;
    if (!complete) return false;
    if (errors.failed()) return fail(errors, "data could not be written when closing");
    if (m_written == 0 || isMemory()) return true;
    const std::string damage = detail::damageOfWrittenFile(m_name, m_driver);
    if (damage.empty()) return true;
    errors.clear();
    return fail(errors, damage.c_str());
}

bool JWSourceHandle::release(std::shared_ptr<JWSourceHandle>& handle) {
    const bool last = handle && handle.use_count() == 1;
    const bool closed = !last || handle->close();
    handle.reset();
    return closed;
}

}  // namespace jws
