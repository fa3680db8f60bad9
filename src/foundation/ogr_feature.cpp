// SPDX-License-Identifier: MIT
//
// Field types have the same codes on both sides, and values nearly the same layout, so a value is
// viewed as the other side's union and copied once by the side that keeps it.
#include "foundation/ogr_feature.h"

#include <cpl_string.h>
#include <ogr_api.h>

#include <algorithm>

#include "foundation/field_value.h"
#include "foundation/ogr_convert.h"
#include "foundation/unread_geometry.h"

namespace jws::detail {
namespace {

enumJWFieldType typeFromOgr(OGRFieldType type) {
    switch (type) {
        case OFTWideString:
            return JWFieldString;
        case OFTWideStringList:
            return JWFieldStringList;
        default:
            return static_cast<enumJWFieldType>(type);
    }
}

/// Views an OGR value as one of ours; it stays OGR's.
unionJWField viewOf(enumJWFieldType type, const OGRField& raw) {
    unionJWField value{};
    switch (type) {
        case JWFieldInteger:
            value.integer = raw.Integer;
            break;
        case JWFieldInteger64:
            value.integer64 = raw.Integer64;
            break;
        case JWFieldReal:
            value.real = raw.Real;
            break;
        case JWFieldString:
            value.string = raw.String;
            break;
        case JWFieldIntegerList:
            value.integerList = {raw.IntegerList.nCount, raw.IntegerList.paList};
            break;
        case JWFieldInteger64List:
            value.integer64List.count = raw.Integer64List.nCount;
            static_assert(sizeof(GIntBig) == sizeof(std::int64_t));
            value.integer64List.values = reinterpret_cast<std::int64_t*>(raw.Integer64List.paList);
            break;
        case JWFieldRealList:
            value.realList = {raw.RealList.nCount, raw.RealList.paList};
            break;
        case JWFieldStringList:
            value.stringList = {raw.StringList.nCount, raw.StringList.paList};
            break;
        case JWFieldBinary:
            value.binary = {raw.Binary.nCount, raw.Binary.paData};
            break;
        case JWFieldDate:
        case JWFieldTime:
        case JWFieldDateTime:
            value.date = {raw.Date.Year,   raw.Date.Month,  raw.Date.Day,   raw.Date.Hour,
                          raw.Date.Minute, raw.Date.TZFlag, raw.Date.Second};
            break;
    }
    return value;
}

void setList(OGRFeature& target, int k, const unionJWField& value, enumJWFieldType type) {
    switch (type) {
        case JWFieldIntegerList:
            target.SetField(k, value.integerList.count, value.integerList.values);
            break;
        case JWFieldInteger64List:
            target.SetField(k, value.integer64List.count,
                            reinterpret_cast<const GIntBig*>(value.integer64List.values));
            break;
        case JWFieldRealList:
            target.SetField(k, value.realList.count, value.realList.values);
            break;
        case JWFieldStringList: {
            CPLStringList list;
            for (int i = 0; i < value.stringList.count; ++i) {
                list.AddString(value.stringList.values[i]);
            }
            target.SetField(k, list.List());
            break;
        }
        default:
            target.SetField(k, value.binary.count, value.binary.values);
            break;
    }
}

/// Stores a value of the target field's own type.
void setSame(OGRFeature& target, int k, const unionJWField& value, enumJWFieldType type) {
    switch (type) {
        case JWFieldInteger:
            target.SetField(k, value.integer);
            break;
        case JWFieldInteger64:
            target.SetField(k, static_cast<GIntBig>(value.integer64));
            break;
        case JWFieldReal:
            target.SetField(k, value.real);
            break;
        case JWFieldString:
            target.SetField(k, value.string);
            break;
        case JWFieldDate:
        case JWFieldTime:
        case JWFieldDateTime:
            target.SetField(k, value.date.year, value.date.month, value.date.day, value.date.hour,
                            value.date.minute, value.date.second, value.date.timeZone);
            break;
        default:
            setList(target, k, value, type);
            break;
    }
}

bool setConverted(OGRFeature& target, int k, const JWFeature& source, enumJWFieldType to) {
    std::int64_t integer = 0;
    double real = 0;
    std::string text;
    switch (to) {
        case JWFieldString:
            if (!source.getFieldAsString(k, text)) return false;
            target.SetField(k, text.c_str());
            return true;
        case JWFieldReal:
            if (!source.getFieldAsDouble(k, real)) return false;
            target.SetField(k, real);
            return true;
        case JWFieldInteger:
        case JWFieldInteger64:
            if (!source.getFieldAsInt64(k, integer)) return false;
            if (source.getFieldAsDouble(k, real) && real != static_cast<double>(integer))
                return false;
            if (to == JWFieldInteger && integer != static_cast<int>(integer)) return false;
            target.SetField(k, static_cast<GIntBig>(integer));
            return true;
        case JWFieldDate:
        case JWFieldTime:
        case JWFieldDateTime: {
            unionJWField date{};
            if (!source.getFieldAsString(k, text) || !parseDate(text.c_str(), to, date))
                return false;
            setSame(target, k, date, to);
            return true;
        }
        default:
            return false;
    }
}

bool lists(const char* types, const char* type) {
    const CPLStringList names(CSLTokenizeString(types));
    return names.FindString(type) >= 0;
}

/// The type nearest to `type` in the driver's list.
OGRFieldType storableType(OGRFieldType type, const char* types) {
    if (types == nullptr || lists(types, OGRFieldDefn::GetFieldTypeName(type))) return type;
    return type == OFTInteger && lists(types, "Integer64") ? OFTInteger64 : OFTString;
}

}  // namespace

std::unique_ptr<JWFields> fieldsFromOgr(OGRFeatureDefn& definition) {
    auto fields = std::make_unique<JWFields>();
    for (int k = 0; k < definition.GetFieldCount(); ++k) {
        const OGRFieldDefn& source = *definition.GetFieldDefn(k);
        JWField field(source.GetNameRef(), typeFromOgr(source.GetType()), source.GetWidth(),
                      source.GetPrecision(), static_cast<unsigned char>(source.GetJustify()));
        field.setSubType(source.GetSubType());
        fields->addField(field);
    }
    return fields;
}

std::unique_ptr<JWFeature> featureFromOgr(OGRFeature& source, JWFields* fields) {
    auto feature = std::make_unique<JWFeature>(fields);
    feature->setFID64(source.GetFID());
    feature->setGeometryUnread(hasUnreadGeometry(source));
    if (const OGRGeometry* geometry = source.GetGeometryRef()) {
        std::unique_ptr<JWGeometry> converted = geometryFromOgr(*geometry);
        if (!converted) return nullptr;
        feature->setGeometryDirectly(converted.release());
    }
    const int count = std::min(feature->getFieldCount(), source.GetFieldCount());
    for (int k = 0; k < count; ++k) {
        if (!source.IsFieldSet(k)) continue;
        if (source.IsFieldNull(k)) {
            feature->setFieldNull(k);
        } else {
            feature->setFieldValue(
                k, viewOf(fields->getFieldPtr(k)->getFieldType(), *source.GetRawFieldRef(k)));
        }
    }
    return feature;
}

void valuesToOgr(const JWFeature& source, const FormatLimits& limits, OGRFeature& target,
                 std::vector<std::string>& lost) {
    for (int k = 0; k < source.getFieldCount(); ++k) {
        const bool exists = k < target.GetFieldCount();
        if (source.isFieldNull(k) && exists) target.SetFieldNull(k);
        const unionJWField* value = source.getFieldValDefPtr(k);
        if (value == nullptr) continue;
        const JWField& field = *source.getFieldDefPtr(k);
        const char* loss = "cannot be stored";
        if (exists) {
            const enumJWFieldType to = typeFromOgr(target.GetFieldDefnRef(k)->GetType());
            if (field.getFieldType() == to) {
                setSame(target, k, *value, to);
                loss = limits.lossOf(target, k);
            } else if (setConverted(target, k, source, to)) {
                loss = limits.lossOf(target, k);
            }
            if (loss != nullptr) target.UnsetField(k);
        }
        if (loss != nullptr) {
            lost.push_back(std::string("the value of field ") + field.getFieldName() + " " + loss);
        }
    }
}

std::unique_ptr<OGRFieldDefn> fieldToOgr(const JWField& field, const char* name,
                                         const char* driverTypes) {
    const auto wanted = static_cast<OGRFieldType>(field.getFieldType());
    const OGRFieldType type = storableType(wanted, driverTypes);
    auto definition = std::make_unique<OGRFieldDefn>(name, type);
    if (type == wanted) {
        definition->SetWidth(field.getWidth());
        definition->SetPrecision(field.getPrecision());
        const auto subType = static_cast<OGRFieldSubType>(field.getSubType());
        if (OGR_AreTypeSubTypeCompatible(type, subType) != 0) definition->SetSubType(subType);
    }
    definition->SetJustify(static_cast<OGRJustification>(field.getJustify()));
    return definition;
}

}  // namespace jws::detail
