// SPDX-License-Identifier: MIT
//
// One feature. Values lie in one array of unions in schema order, their states (unset, null, set)
// beside it; texts and lists belong to the feature and are released by the type that the schema
// states. A field that was added to the schema after the feature was made does not exist for it.
#include "jw_feature.h"

#include <climits>
#include <cmath>
#include <cstring>

#include "foundation/api_guard.h"
#include "foundation/field_value.h"
#include "foundation/geometry_memory.h"

namespace jws {
namespace {

bool integerOf(enumJWFieldType type, const unionJWField& value, std::int64_t& out) {
    double real = 0;
    switch (type) {
        case JWFieldInteger:
            out = value.integer;
            return true;
        case JWFieldInteger64:
            out = value.integer64;
            return true;
        case JWFieldReal:
            real = value.real;
            break;
        case JWFieldString:
            if (detail::parseInteger(value.string, out)) return true;
            if (!detail::parseReal(value.string, real)) return false;
            break;
        default:
            return false;
    }
    if (!detail::fitsInt64(real)) return false;
    out = static_cast<std::int64_t>(real);
    return true;
}

/// Turns an integer into the field's type, texts left to the caller.
bool toNumber(enumJWFieldType type, std::int64_t from, unionJWField& value) {
    switch (type) {
        case JWFieldInteger:
            if (from < INT_MIN || from > INT_MAX) return false;
            value.integer = static_cast<int>(from);
            return true;
        case JWFieldInteger64:
            value.integer64 = from;
            return true;
        case JWFieldReal:
            value.real = static_cast<double>(from);
            return detail::fitsInt64(value.real) && static_cast<std::int64_t>(value.real) == from;
        default:
            return false;
    }
}

bool toNumber(enumJWFieldType type, double from, unionJWField& value) {
    if (type == JWFieldReal) {
        value.real = from;
        return true;
    }
    return from == std::trunc(from) && detail::fitsInt64(from) &&
           toNumber(type, static_cast<std::int64_t>(from), value);
}

}  // namespace

JWFeature::JWFeature(JWFields* fields) : m_fields(fields) {
    const std::size_t count = fields != nullptr ? fields->getFieldCount() : 0;
    m_values.resize(count);
    if (count > 0) std::memset(m_values.data(), 0, count * sizeof(unionJWField));
    m_states.resize(count, Unset);
    if (m_fields != nullptr) m_fields->setReference();
}

JWFeature::JWFeature(const JWFeature& other) : JWFeature(other.m_fields) {
    m_fid = other.m_fid;
    m_isGeometryUnread = other.m_isGeometryUnread;
    if (other.m_geometry) m_geometry.reset(other.m_geometry->clone());
    const std::size_t count = std::min(m_values.size(), other.m_values.size());
    for (std::size_t k = 0; k < count; ++k) {
        if (other.m_states[k] == Set) {
            storeValue(static_cast<int>(k), other.m_values[k]);
        } else {
            m_states[k] = other.m_states[k];
        }
    }
}

JWFeature::JWFeature(JWFeature&& other) noexcept
    : m_fid(other.m_fid),
      m_geometry(std::move(other.m_geometry)),
      m_isGeometryUnread(other.m_isGeometryUnread),
      m_fields(std::exchange(other.m_fields, nullptr)),
      m_values(std::move(other.m_values)),
      m_states(std::move(other.m_states)) {
    other.m_values.clear();
    other.m_states.clear();
}

JWFeature& JWFeature::operator=(const JWFeature& other) {
    if (this != &other) *this = JWFeature(other);
    return *this;
}

JWFeature& JWFeature::operator=(JWFeature&& other) noexcept {
    std::swap(m_fid, other.m_fid);
    std::swap(m_geometry, other.m_geometry);
    std::swap(m_isGeometryUnread, other.m_isGeometryUnread);
    std::swap(m_fields, other.m_fields);
    std::swap(m_values, other.m_values);
    std::swap(m_states, other.m_states);
    return *this;
}

JWFeature::~JWFeature() {
    for (std::size_t k = 0; k < m_values.size(); ++k) {
        if (m_states[k] == Set) {
            detail::freeValue(m_fields->getFieldPtr(static_cast<int>(k))->getFieldType(),
                              m_values[k]);
        }
    }
    if (m_fields != nullptr) m_fields->releaseReference();
}

int JWFeature::getFID() const {
    return m_fid >= INT_MIN && m_fid <= INT_MAX ? static_cast<int>(m_fid) : -1;
}

enumJWGeometryType JWFeature::getGeometryType() const {
    return m_geometry ? m_geometry->getGeometryType() : JWGeometryNone;
}

bool JWFeature::isGeometryEmpty() const { return !m_geometry || m_geometry->isEmpty(); }

void JWFeature::setGeometry(const JWGeometry* geometry) {
    setGeometryDirectly(geometry != nullptr ? geometry->clone() : nullptr);
}

void JWFeature::setGeometryDirectly(JWGeometry* geometry, bool updateEnvelop) {
    if (geometry != m_geometry.get()) m_geometry.reset(geometry);
    m_isGeometryUnread = m_isGeometryUnread && geometry == nullptr;
    if (updateEnvelop && m_geometry) m_geometry->updateEnvelop();
}

const unionJWField* JWFeature::getFieldValDefPtr(int i) const {
    return isFieldSet(i) ? &m_values[static_cast<std::size_t>(i)] : nullptr;
}

bool JWFeature::isFieldSet(int i) const { return hasField(i) && m_states[i] == Set; }

bool JWFeature::isFieldNull(int i) const { return hasField(i) && m_states[i] == Null; }

bool JWFeature::getFieldAsInt64(int i, std::int64_t& out) const {
    return isFieldSet(i) && integerOf(m_fields->getFieldPtr(i)->getFieldType(), m_values[i], out);
}

bool JWFeature::getFieldAsInt(int i, int& out) const {
    std::int64_t value;
    if (!getFieldAsInt64(i, value) || value < INT_MIN || value > INT_MAX) return false;
    out = static_cast<int>(value);
    return true;
}

bool JWFeature::getFieldAsDouble(int i, double& out) const {
    if (!isFieldSet(i)) return false;
    const unionJWField& value = m_values[i];
    switch (m_fields->getFieldPtr(i)->getFieldType()) {
        case JWFieldInteger:
            out = value.integer;
            return true;
        case JWFieldInteger64:
            out = static_cast<double>(value.integer64);
            return true;
        case JWFieldReal:
            out = value.real;
            return true;
        case JWFieldString:
            return detail::parseReal(value.string, out);
        default:
            return false;
    }
}

bool JWFeature::getFieldAsString(int i, std::string& out) const {
    return detail::guarded("getFieldAsString", false, [&] {
        if (!isFieldSet(i)) return false;
        out = detail::valueText(m_fields->getFieldPtr(i)->getFieldType(), m_values[i]);
        return true;
    });
}

bool JWFeature::setFieldValue(int i, int value) {
    return setFieldValue(i, static_cast<std::int64_t>(value));
}

bool JWFeature::setFieldValue(int i, std::int64_t value) {
    unionJWField number{};
    number.integer64 = value;
    return setNumber(i, JWFieldInteger64, number);
}

bool JWFeature::setFieldValue(int i, double value) {
    unionJWField number{};
    number.real = value;
    return setNumber(i, JWFieldReal, number);
}

/// Stores an integer or real number in field `i` of any type that can hold it.
bool JWFeature::setNumber(int i, enumJWFieldType sourceType, const unionJWField& number) {
    return detail::guarded("setFieldValue", false, [&] {
        if (!hasField(i)) return false;
        const enumJWFieldType type = m_fields->getFieldPtr(i)->getFieldType();
        if (type == JWFieldString) {
            return setFieldValue(i, detail::valueText(sourceType, number).c_str());
        }
        unionJWField value{};
        const bool fits = sourceType == JWFieldReal ? toNumber(type, number.real, value)
                                                    : toNumber(type, number.integer64, value);
        if (fits) storeValue(i, value);
        return fits;
    });
}

bool JWFeature::setFieldValue(int i, const char* text) {
    return detail::guarded("setFieldValue", false, [&] {
        if (!hasField(i)) return false;
        if (text == nullptr) return setFieldNull(i);
        const enumJWFieldType type = m_fields->getFieldPtr(i)->getFieldType();
        unionJWField value{};
        std::int64_t integer = 0;
        double real = 0;
        switch (type) {
            case JWFieldString: {
                value.string = const_cast<char*>(text);  // storeValue copies it
                storeValue(i, value);
                return true;
            }
            case JWFieldInteger:
            case JWFieldInteger64:
                if (detail::parseInteger(text, integer)) return setFieldValue(i, integer);
                [[fallthrough]];
            case JWFieldReal:
                return detail::parseReal(text, real) && setFieldValue(i, real);
            case JWFieldDate:
            case JWFieldTime:
            case JWFieldDateTime:
                if (!detail::parseDate(text, type, value)) return false;
                storeValue(i, value);
                return true;
            default:
                return false;
        }
    });
}

bool JWFeature::setFieldValue(int i, const unionJWField& value) {
    return detail::guarded("setFieldValue", false, [&] {
        if (!hasField(i)) return false;
        storeValue(i, value);
        return true;
    });
}

bool JWFeature::setFieldNull(int i) {
    if (!hasField(i)) return false;
    clearValue(i);
    m_states[i] = Null;
    return true;
}

bool JWFeature::unsetField(int i) {
    if (!hasField(i)) return false;
    clearValue(i);
    return true;
}

bool JWFeature::copyFieldFrom(int i, const JWFeature& source, int sourceField) {
    return detail::guarded("copyFieldFrom", false, [&] {
        if (!hasField(i) || !source.hasField(sourceField)) return false;
        if (source.m_states[sourceField] == Null) return setFieldNull(i);
        if (source.m_states[sourceField] == Unset) return unsetField(i);
        const enumJWFieldType type = m_fields->getFieldPtr(i)->getFieldType();
        const enumJWFieldType from = source.m_fields->getFieldPtr(sourceField)->getFieldType();
        const unionJWField& value = source.m_values[sourceField];
        if (type == from) return setFieldValue(i, value);
        switch (from) {
            case JWFieldInteger:
                return setFieldValue(i, value.integer);
            case JWFieldInteger64:
                return setFieldValue(i, value.integer64);
            case JWFieldReal:
                return setFieldValue(i, value.real);
            case JWFieldString:
                return setFieldValue(i, value.string);
            default:
                return type == JWFieldString &&
                       setFieldValue(i, detail::valueText(from, value).c_str());
        }
    });
}

std::size_t JWFeature::memorySize() const {
    std::size_t bytes = sizeof(JWFeature) + m_values.capacity() * sizeof(unionJWField) +
                        m_states.capacity() * sizeof(FieldState);
    for (std::size_t k = 0; k < m_values.size(); ++k) {
        if (m_states[k] == Set) {
            bytes += detail::valueMemory(m_fields->getFieldPtr(static_cast<int>(k))->getFieldType(),
                                         m_values[k]);
        }
    }
    return bytes + (m_geometry ? detail::geometryMemory(*m_geometry) : 0);
}

void JWFeature::clearValue(int i) {
    if (m_states[i] == Set) {
        detail::freeValue(m_fields->getFieldPtr(i)->getFieldType(), m_values[i]);
    }
    std::memset(&m_values[i], 0, sizeof(unionJWField));
    m_states[i] = Unset;
}

/// Copies before it releases: the value may be the field's own.
void JWFeature::storeValue(int i, const unionJWField& value) {
    const unionJWField copy = detail::copyValue(m_fields->getFieldPtr(i)->getFieldType(), value);
    clearValue(i);
    m_values[i] = copy;
    m_states[i] = Set;
}

}  // namespace jws
