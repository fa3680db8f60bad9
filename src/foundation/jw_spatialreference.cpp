// SPDX-License-Identifier: MIT
//
// Spatial references over OGR's. An empty reference holds no OGR object. The traditional axis order
// is set on every object that comes in.
#include "jw_spatialreference.h"

#include <cpl_conv.h>
#include <ogr_spatialref.h>

#include <string>

#include "foundation/api_guard.h"
#include "foundation/gdal_errors.h"

namespace jws {

struct JWSpatialReference::Impl {
    OGRSpatialReference system;
};

namespace {

/// Runs an import into `system`; `text` names what was read in the last error.
template <class Import>
enumJWDataErr importInto(OGRSpatialReference& system, const char* text, Import&& import) {
    detail::GdalErrors errors;
    if (import() != OGRERR_NONE || system.IsEmpty()) {
        JWReport::setError(JWErrorInvalidArgument, errors.describe("'" + std::string(text) +
                                                                   "' is not a spatial reference"));
        return JWDataErrUnsupportedSRS;
    }
    system.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return JWDataErrNone;
}

}  // namespace

JWSpatialReference::JWSpatialReference() = default;

JWSpatialReference::JWSpatialReference(const JWSpatialReference& other)
    : m_impl(other.m_impl ? std::make_unique<Impl>(*other.m_impl) : nullptr) {}

JWSpatialReference& JWSpatialReference::operator=(const JWSpatialReference& other) {
    if (this != &other) m_impl = other.m_impl ? std::make_unique<Impl>(*other.m_impl) : nullptr;
    return *this;
}

JWSpatialReference::~JWSpatialReference() = default;

enumJWDataErr JWSpatialReference::importFromWkt(const char* wkt) {
    if (wkt == nullptr) return JWDataErrInvalidHandle;
    return detail::guarded("importFromWkt", JWDataErrFailure, [&] {
        auto read = std::make_unique<Impl>();
        const enumJWDataErr code =
            importInto(read->system, wkt, [&] { return read->system.importFromWkt(wkt); });
        if (code == JWDataErrNone) m_impl = std::move(read);
        return code;
    });
}

enumJWDataErr JWSpatialReference::importFromUserInput(const char* text) {
    if (text == nullptr) return JWDataErrInvalidHandle;
    return detail::guarded("importFromUserInput", JWDataErrFailure, [&] {
        auto read = std::make_unique<Impl>();
        const enumJWDataErr code = importInto(read->system, text, [&] {
            return read->system.SetFromUserInput(
                text, OGRSpatialReference::SET_FROM_USER_INPUT_LIMITATIONS_get());
        });
        if (code == JWDataErrNone) m_impl = std::move(read);
        return code;
    });
}

enumJWDataErr JWSpatialReference::exportToWkt(char** wkt) const {
    if (wkt == nullptr) return JWDataErrInvalidHandle;
    *wkt = nullptr;
    return detail::guarded("exportToWkt", JWDataErrFailure, [&] {
        if (!m_impl) {
            *wkt = CPLStrdup("");
            return JWDataErrNone;
        }
        detail::GdalErrors errors;
        static const char* const options[] = {"FORMAT=WKT2", nullptr};
        if (m_impl->system.exportToWkt(wkt) == OGRERR_NONE) return JWDataErrNone;
        // Systems that WKT 1 cannot express.
        CPLFree(*wkt);
        *wkt = nullptr;
        if (m_impl->system.exportToWkt(wkt, options) == OGRERR_NONE) return JWDataErrNone;
        CPLFree(*wkt);
        *wkt = nullptr;
        JWReport::setError(JWErrorInternal,
                           errors.describe("the spatial reference cannot be written as WKT"));
        return JWDataErrFailure;
    });
}

void JWSpatialReference::freeText(char* text) { CPLFree(text); }

char* JWSpatialReference::describe() const {
    return detail::guarded("describe", static_cast<char*>(nullptr), [&] {
        std::string text;
        if (m_impl) {
            const char* name = m_impl->system.GetName();
            const char* authority = m_impl->system.GetAuthorityName(nullptr);
            const char* code = m_impl->system.GetAuthorityCode(nullptr);
            const bool isNamed = name != nullptr && *name != '\0' && !EQUAL(name, "unnamed") &&
                                 !EQUAL(name, "unknown");  // as some formats call those without
            text = isNamed ? name : "an unnamed system";
            if (authority != nullptr && code != nullptr) {
                text = std::string(authority) + ":" + code + " (" + text + ")";
            }
        }
        return CPLStrdup(text.c_str());
    });
}

bool JWSpatialReference::isEmpty() const { return !m_impl; }

bool JWSpatialReference::isSameSpatialReference(const JWSpatialReference* other) const {
    if (other == nullptr || isEmpty() || other->isEmpty()) {
        return isEmpty() && (other == nullptr || other->isEmpty());
    }
    return detail::guarded("isSameSpatialReference", false, [&] {
        detail::GdalErrors errors;
        static const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES",
                                              "CRITERION=EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS",
                                              nullptr};
        return m_impl->system.IsSame(&other->m_impl->system, options) != 0;
    });
}

bool JWSpatialReference::areSame(const JWSpatialReference* a, const JWSpatialReference* b) {
    static const JWSpatialReference none;
    return (a != nullptr ? *a : none).isSameSpatialReference(b != nullptr ? b : &none);
}

int JWSpatialReference::isGeographic() const {
    return m_impl && m_impl->system.IsGeographic() ? 1 : 0;
}

int JWSpatialReference::isProjected() const {
    return m_impl && m_impl->system.IsProjected() ? 1 : 0;
}

void* JWSpatialReference::getOGRSpatialRefPtr() const { return m_impl ? &m_impl->system : nullptr; }

void JWSpatialReference::setOGRSpatialRef(const void* reference) {
    if (reference == nullptr || reference == getOGRSpatialRefPtr()) {
        if (reference == nullptr) m_impl.reset();
        return;
    }
    detail::guarded("setOGRSpatialRef", false, [&] {
        auto copy = std::make_unique<Impl>();
        copy->system = *static_cast<const OGRSpatialReference*>(reference);
        copy->system.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        m_impl = std::move(copy);
        return true;
    });
}

}  // namespace jws
