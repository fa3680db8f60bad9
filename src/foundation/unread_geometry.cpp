// SPDX-License-Identifier: MIT
//
// A GeoJSON geometry is whole when it has as many points as its object has positions, and every
// position is an array of two numbers or more. A table's is when its text is blank where there is
// none.
#include "foundation/unread_geometry.h"

#include <cpl_json.h>
#include <cpl_string.h>

#include <cctype>

#include "foundation/gdal_errors.h"

namespace jws::detail {
namespace {

constexpr const char* kUnread = "unread geometry";
constexpr std::int64_t kMalformed = -1;

bool isNumber(const CPLJSONObject& object) {
    return object.GetType() == CPLJSONObject::Type::Integer ||
           object.GetType() == CPLJSONObject::Type::Long ||
           object.GetType() == CPLJSONObject::Type::Double;
}

/// Adds up what `count` says of the members of an array, unless one is malformed.
template <class Count>
std::int64_t sumOver(const CPLJSONArray& array, const Count& count) {
    std::int64_t sum = 0;
    for (int i = 0; i < array.Size(); ++i) {
        const std::int64_t part = count(array[i]);
        if (part == kMalformed) return kMalformed;
        sum += part;
    }
    return sum;
}

std::int64_t positionsOfArray(const CPLJSONObject& coordinates) {
    if (coordinates.GetType() != CPLJSONObject::Type::Array) return kMalformed;
    const CPLJSONArray array = coordinates.ToArray();
    if (array.Size() == 0 || array[0].GetType() == CPLJSONObject::Type::Array) {
        return sumOver(array, positionsOfArray);
    }
    return array.Size() > 1 && isNumber(array[0]) && isNumber(array[1]) ? 1 : kMalformed;
}

bool isMissing(const CPLJSONObject& object) {
    return !object.IsValid() || object.GetType() == CPLJSONObject::Type::Null;
}

std::int64_t positionsOf(const CPLJSONObject& geometry) {
    if (isMissing(geometry)) return 0;
    const CPLJSONObject members = geometry.GetObj("geometries");
    if (members.GetType() == CPLJSONObject::Type::Array) {
        return sumOver(members.ToArray(), positionsOf);
    }
    return positionsOfArray(geometry.GetObj("coordinates"));
}

class PointCounter : public OGRDefaultConstGeometryVisitor {
  public:
    using OGRDefaultConstGeometryVisitor::visit;
    void visit(const OGRPoint* point) override { points += point->IsEmpty() ? 0 : 1; }
    std::int64_t points = 0;
};

bool isWhole(const OGRGeometry* geometry, const char* object) {
    CPLJSONDocument document;
    if (object == nullptr || !document.LoadMemory(object)) return false;
    const std::int64_t positions = positionsOf(document.GetRoot().GetObj("geometry"));
    PointCounter counter;
    if (geometry != nullptr) geometry->accept(&counter);
    return positions != kMalformed && counter.points >= positions;
}

bool isBlank(const char* text) {
    while (std::isspace(static_cast<unsigned char>(*text)) != 0) ++text;
    return *text == '\0';
}

}  // namespace

void markUnreadGeometry(OGRFeature& feature) {
    feature.SetGeometryDirectly(nullptr);
    feature.SetNativeMediaType(kUnread);
}

bool hasUnreadGeometry(const OGRFeature& feature) {
    const char* mark = feature.GetNativeMediaType();
    return mark != nullptr && std::string(mark) == kUnread;
}

SecondLook::SecondLook(std::string path, std::string driver, const OGRLayer& layer)
    : m_path(std::move(path)),
      m_isTable(driver == "CSV"),
      m_definition(*const_cast<OGRLayer&>(layer).GetLayerDefn()),
      m_layerName(const_cast<OGRLayer&>(layer).GetName()) {}

/// A table then has the texts of its geometries as a field.
bool SecondLook::open() {
    if (m_opened) return m_layer != nullptr;
    const GdalErrors quiet;
    m_opened = true;
    CPLStringList options;
    options.AddString(m_isTable ? "KEEP_GEOM_COLUMNS=YES" : "NATIVE_DATA=YES");
    m_dataset.reset(
        GDALDataset::Open(m_path.c_str(), GDAL_OF_VECTOR, nullptr, options.List(), nullptr));
    if (m_dataset) m_layer = m_dataset->GetLayerByName(m_layerName.c_str());
    if (m_layer == nullptr || !m_isTable) return m_layer != nullptr;
    const OGRFeatureDefn& all = *m_layer->GetLayerDefn();
    for (int k = 0; k < all.GetFieldCount() && m_textField < 0; ++k) {
        if (m_definition.GetFieldIndex(all.GetFieldDefn(k)->GetNameRef()) < 0) m_textField = k;
    }
    if (m_textField < 0) m_layer = nullptr;
    return m_layer != nullptr;
}

bool SecondLook::findsMore(const OGRFeature& feature) {
    if (m_isTable && feature.GetGeometryRef() != nullptr) return false;
    if (!open()) return false;
    const GdalErrors quiet;
    const OGRFeatureUniquePtr source(m_layer->GetFeature(feature.GetFID()));
    if (!source) return true;
    return m_isTable ? !isBlank(source->GetFieldAsString(m_textField))
                     : !isWhole(feature.GetGeometryRef(), source->GetNativeData());
}

}  // namespace jws::detail
