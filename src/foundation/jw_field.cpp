// SPDX-License-Identifier: MIT
//
// Field definitions and schemas. The count of a schema and its mark are one atomic number, so that
// exactly one thread, the one that brings the count of a marked schema to zero, deletes it.
#include "foundation/field_names.h"
#include "jw_feature_field.h"
#include "jw_report.h"

namespace jws {
namespace detail {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string cutTo(const std::string& name, std::size_t bytes) {
    if (name.size() <= bytes) return name;
    while (bytes > 0 && (static_cast<unsigned char>(name[bytes]) & 0xC0) == 0x80) --bytes;
    return name.substr(0, bytes);
}

}  // namespace

bool sameName(const char* a, const char* b) {
    while (*a != '\0' && lower(*a) == lower(*b)) {
        ++a;
        ++b;
    }
    return lower(*a) == lower(*b);
}

std::string freeFieldName(const std::string& wanted, std::size_t maximumBytes,
                          const std::function<bool(const char*)>& isTaken) {
    const std::size_t limit = maximumBytes > 0 ? maximumBytes : std::string::npos;
    const std::string base = wanted.empty() ? "field" : wanted;
    std::string name = cutTo(base, limit);
    for (int number = 1; isTaken(name.c_str()); ++number) {
        const std::string suffix = "_" + std::to_string(number);
        name = cutTo(base, limit == std::string::npos ? limit : limit - suffix.size()) + suffix;
    }
    return name;
}

}  // namespace detail

JWField::JWField(const char* name, enumJWFieldType type, int width, int precision,
                 unsigned char justify)
    : m_name(name != nullptr ? name : ""),
      m_type(type),
      m_width(width),
      m_precision(precision),
      m_justify(justify) {}

JWFields::JWFields(const JWFields& other) : m_fields(other.m_fields) {}

JWFields& JWFields::operator=(const JWFields& other) {
    if (getReference() == 0) {
        m_fields = other.m_fields;
    } else {
        JWReport::setError(JWErrorInvalidArgument, "a schema in use cannot become another one");
    }
    return *this;
}

void JWFields::addField(const JWField& field) { m_fields.push_back(field); }

int JWFields::addUniqueField(const JWField& field) {
    const std::string name =
        detail::freeFieldName(field.getFieldName(), 0, [this](const char* candidate) {
            for (const JWField& other : m_fields) {
                if (detail::sameName(other.getFieldName(), candidate)) return true;
            }
            return false;
        });
    JWField renamed(name.c_str(), field.getFieldType(), field.getWidth(), field.getPrecision(),
                    field.getJustify());
    renamed.setSubType(field.getSubType());
    m_fields.push_back(renamed);
    return getFieldCount() - 1;
}

const JWField* JWFields::getFieldPtr(int i) const {
    return i >= 0 && i < getFieldCount() ? &m_fields[static_cast<std::size_t>(i)] : nullptr;
}

JWField* JWFields::getFieldPtr(int i) {
    return i >= 0 && i < getFieldCount() ? &m_fields[static_cast<std::size_t>(i)] : nullptr;
}

int JWFields::getFieldIndex(const char* name) const {
    if (name == nullptr) return -1;
    int ignoringCase = -1;
    for (int i = 0; i < getFieldCount(); ++i) {
        const char* other = m_fields[static_cast<std::size_t>(i)].getFieldName();
        if (!detail::sameName(other, name)) continue;
        if (std::string(other) == name) return i;
        if (ignoringCase < 0) ignoringCase = i;
    }
    return ignoringCase;
}

int JWFields::setReference() { return m_state.fetch_add(2) / 2 + 1; }

int JWFields::releaseReference() {
    int state = m_state.load();
    do {
        if (state < 2) return 0;
    } while (!m_state.compare_exchange_weak(state, state - 2));
    const int left = state - 2;
    if (left == 1) delete this;
    return left / 2;
}

void JWFields::destroyFields(JWFields* fields) {
    if (fields != nullptr && fields->m_state.fetch_or(1) == 0) delete fields;
}

}  // namespace jws
