// SPDX-License-Identifier: MIT
//
// How many features a layer has, and by which identifiers: what the reader of a layer asks the
// source rather than finds out by walking.
#include <gdal_priv.h>

#include <algorithm>
#include <string>

#include "foundation/layer_reader.h"

namespace jws::detail {
namespace {

std::string quotedName(const char* name) {
    std::string quoted = "\"";
    for (const char* c = name; *c != '\0'; ++c) {
        if (*c == '"') quoted += '"';
        quoted += *c;
    }
    return quoted + '"';
}

}  // namespace

/// A view may give one identifier to several rows, or none to some; fetching would then yield
/// another row than the one that was chosen.
bool LayerReader::isKeyed(const GdalErrors& errors) {
    if (!m_source->ordersByIndex() || !m_randomAccess) return false;
    if (!m_source->isDatabase()) return true;
    const std::string column = quotedName(m_layer.GetFIDColumn());
    const std::int64_t doubled =
        firstNumber("SELECT 1 AS answer FROM " + quotedName(m_layer.GetName()) + " GROUP BY " +
                        column + " HAVING COUNT(*) > 1 OR " + column + " IS NULL LIMIT 1",
                    errors);
    m_randomAccess = doubled < 0 && !errors.failed();
    return m_randomAccess;
}

std::int64_t LayerReader::count(GdalErrors& errors) {
    noticeChanges();
    if (m_count >= 0) return m_count;
    if (m_complete) return static_cast<std::int64_t>(m_fids.size());
    if (!m_holds && m_source->isDatabase()) {
        const std::int64_t answer = askDatabase("COUNT(*)", errors);
        if (answer >= 0) return m_count = answer;
        errors.clear();
    }
    if (mustBeReadToCount()) {
        std::int64_t count = 0;
        const auto increment = [&count](std::int64_t, OGRFeature&) { ++count; };
        m_count = visitAll(false, increment, errors) ? count : -1;
        return m_count;
    }
    if (m_layer.TestCapability(OLCFastFeatureCount) == 0) loseCursor();
    const std::int64_t count = m_layer.GetFeatureCount(TRUE);
    if (count < 0 || errors.failed()) {
        fail(errors, "the features cannot be counted");
        return -1;
    }
    return m_count = count;
}

/// Only reading tells: a test decides, a shapefile's driver counts deleted rows as well, and a
/// GeoPackage keeps a count that other programs may have left outdated. One that is being written
/// to counts on from there: reading it again after each write would cost more than the count is
/// worth.
bool LayerReader::mustBeReadToCount() const {
    if (m_holds || m_source->isDriver("ESRI Shapefile")) return true;
    return m_source->isDatabase() && m_source->isUpdate() && !m_source->isCreated() &&
           m_changesSeen == 0;
}

/// A number by the database itself; −1 when there is no database or it cannot tell.
std::int64_t LayerReader::askDatabase(const std::string& expression, GdalErrors& errors) {
    if (!m_source->isDatabase() || m_source->isUpdate()) return -1;
    return firstNumber("SELECT " + expression + " AS answer FROM " + quotedName(m_layer.GetName()),
                       errors);
}

/// The first number that a statement answers; −1 for none, or when it fails.
std::int64_t LayerReader::firstNumber(const std::string& statement, const GdalErrors& errors) {
    OGRLayer* rows = m_source->dataset().ExecuteSQL(statement.c_str(), nullptr, nullptr);
    std::int64_t answer = -1;
    if (rows != nullptr) {
        const OGRFeatureUniquePtr row(rows->GetNextFeature());
        if (row && row->GetFieldCount() > 0 && row->IsFieldSetAndNotNull(0)) {
            answer = row->GetFieldAsInteger64(0);
        }
    }
    m_source->dataset().ReleaseResultSet(rows);
    return errors.failed() ? -1 : answer;
}

std::int64_t LayerReader::maximumFID(GdalErrors& errors) {
    noticeChanges();
    if (!m_complete) {
        const char* column = m_layer.GetFIDColumn();
        const std::int64_t answer =
            *column != '\0' ? askDatabase("MAX(" + quotedName(column) + ")", errors) : -1;
        if (answer >= 0) return answer;
        errors.clear();
        if (m_fids.empty() && !m_source->isDatabase()) {
            std::int64_t maximum = -1;
            const auto compare = [&maximum](std::int64_t, OGRFeature& feature) {
                maximum = std::max<std::int64_t>(maximum, feature.GetFID());
            };
            return visitAll(false, compare, errors) ? maximum : -2;
        }
        if (!completeTable(errors)) return -2;
    }
    const auto maximum = std::max_element(m_fids.begin(), m_fids.end());
    return maximum == m_fids.end() ? -1 : *maximum;
}

/// The cursor found no more features: compares with the number that the source states.
bool LayerReader::endIsGenuine(GdalErrors& errors) {
    m_count = static_cast<std::int64_t>(m_fids.size());
    if (m_source->isDriver("ESRI Shapefile") || m_layer.TestCapability(OLCFastFeatureCount) == 0) {
        return true;
    }
    std::int64_t stated = m_layer.GetFeatureCount(FALSE);
    if (stated > m_handedOut && m_source->isDatabase()) stated = askDatabase("COUNT(*)", errors);
    if (stated <= m_handedOut && !errors.failed()) return true;
    m_count = -1;
    fail(errors, "is cut short: it has " + std::to_string(m_handedOut) + " of " +
                     std::to_string(stated) + " features");
    return false;
}

}  // namespace jws::detail
