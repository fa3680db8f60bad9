// SPDX-License-Identifier: MIT
//
// JWFeature, a geometry with an identifier and attribute values under a shared schema, and
// JWFeatureClass, a list of features in memory.
#ifndef JW_FEATURE_CLASS_H
#define JW_FEATURE_CLASS_H

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "jw_export.h"
#include "jw_feature_field.h"
#include "jw_geometry.h"

namespace jws {

class JWSpatialReference;

/// A geometry with an identifier and attribute values. Not thread-safe for writing; concurrent
/// reading is.
class JW_API JWFeature {
  public:
    /// Makes a feature without geometry whose fields are all unset. `fields` is shared: the feature
    /// holds a reference to it for as long as it lives. Null means no fields.
    explicit JWFeature(JWFields* fields = nullptr);
    JWFeature(const JWFeature& other);
    JWFeature(JWFeature&& other) noexcept;
    /// Deep copy; the schema is shared.
    JWFeature& operator=(const JWFeature& other);
    JWFeature& operator=(JWFeature&& other) noexcept;
    ~JWFeature();

    /// The source's own number of the feature; −1 when it has none or when the number does not fit
    /// an `int` (ask `getFID64` then).
    int getFID() const;
    std::int64_t getFID64() const { return m_fid; }
    void setFID(int fid) { m_fid = fid; }
    void setFID64(std::int64_t fid) { m_fid = fid; }

    const JWGeometry* getGeometryPtr() const { return m_geometry.get(); }
    JWGeometry* getGeometryPtr() { return m_geometry.get(); }
    /// Code of the geometry, 0 when there is none.
    enumJWGeometryType getGeometryType() const;
    /// True when there is no geometry or its `isEmpty` is true.
    bool isGeometryEmpty() const;
    /// True when the source has a geometry for the feature that could not be read, or not whole;
    /// the feature then has none. Layer operations list such features as rejected.
    bool isGeometryUnread() const { return m_isGeometryUnread; }
    void setGeometryUnread(bool unread) { m_isGeometryUnread = unread; }
    /// Stores a copy of `geometry`; null removes the geometry.
    void setGeometry(const JWGeometry* geometry);
    /// Takes ownership of `geometry`. With `updateEnvelop` its envelope is recomputed first.
    void setGeometryDirectly(JWGeometry* geometry, bool updateEnvelop = false);
    /// Hands the geometry out to the caller, who owns it from then on; null when there is none.
    JWGeometry* releaseGeometry() { return m_geometry.release(); }

    const JWFields* getFieldsDefPtr() const { return m_fields; }
    JWFields* getFieldsDefPtr() { return m_fields; }
    /// Number of values: the fields that the schema had when the feature was made.
    int getFieldCount() const { return static_cast<int>(m_values.size()); }
    int getFieldIndex(const char* name) const {
        return m_fields ? m_fields->getFieldIndex(name) : -1;
    }
    const JWField* getFieldDefPtr(int i) const {
        return m_fields ? m_fields->getFieldPtr(i) : nullptr;
    }
    /// Value of field `i`, null when `i` is no field or the field is unset or null.
    const unionJWField* getFieldValDefPtr(int i) const;
    /// All `getFieldCount` values in schema order; entries of unset and null fields are zero. Null
    /// when there are none.
    const unionJWField* getUnionValues() const {
        return m_values.empty() ? nullptr : m_values.data();
    }

    /// True when field `i` has a value: neither unset nor null. An unknown `i` gives false.
    bool isFieldSet(int i) const;
    /// True when field `i` was set to null explicitly.
    bool isFieldNull(int i) const;
    /// Reads a number: integers as they are when they fit, reals truncated when they fit, texts
    /// that hold a number. Returns false, `out` unchanged, when there is no such value.
    bool getFieldAsInt(int i, int& out) const;
    bool getFieldAsInt64(int i, std::int64_t& out) const;
    bool getFieldAsDouble(int i, double& out) const;
    /// The value as text: numbers in their shortest exact form, dates as ISO 8601. Returns false
    /// when the field has no value.
    bool getFieldAsString(int i, std::string& out) const;

    /// Store a value, converted to the field's type: numbers to numbers and to text, texts to
    /// numbers and dates (ISO 8601) that they hold. Return false, the field unchanged, for an
    /// unknown field or a value that the type cannot hold, such as 2.5 or 2^31 in an integer field,
    /// 2^53 + 1 in a real one, or a date that does not exist. A null text stores null.
    bool setFieldValue(int i, int value);
    bool setFieldValue(int i, std::int64_t value);
    bool setFieldValue(int i, double value);
    bool setFieldValue(int i, const char* value);
    /// Same, for an integer of any other type; false for one beyond 64 bits with a sign.
    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    bool setFieldValue(int i, Integer value) {
        const bool fits =
            std::is_signed_v<Integer> || static_cast<std::uint64_t>(value) <= INT64_MAX;
        return fits && setFieldValue(i, static_cast<std::int64_t>(value));
    }
    /// Stores a deep copy of a value of the field's own type; the value may be the field's own.
    bool setFieldValue(int i, const unionJWField& value);
    bool setFieldNull(int i);
    bool unsetField(int i);
    /// Copies field `sourceField` of `source`, its value, null or unset state alike, converting
    /// between numeric types and to text as `setFieldValue` does. Returns false when it cannot be
    /// converted.
    bool copyFieldFrom(int i, const JWFeature& source, int sourceField);

    /// Deep copy, owned by the caller.
    JWFeature* clone() const { return new JWFeature(*this); }
    /// Deletes a feature with its geometry; null is allowed.
    static void destroyFeature(JWFeature* feature) { delete feature; }

    /// Bytes that the feature occupies, geometry and values included (an estimate for caches).
    std::size_t memorySize() const;

  private:
    enum FieldState : std::uint8_t { Unset = 0, Null = 1, Set = 2 };
    bool hasField(int i) const { return i >= 0 && static_cast<std::size_t>(i) < m_values.size(); }
    bool setNumber(int i, enumJWFieldType sourceType, const unionJWField& number);
    void clearValue(int i);
    void storeValue(int i, const unionJWField& value);

    std::int64_t m_fid = -1;
    std::unique_ptr<JWGeometry> m_geometry;
    bool m_isGeometryUnread = false;
    JWFields* m_fields = nullptr;
    std::vector<unionJWField> m_values;
    std::vector<FieldState> m_states;
};

/// A list of owned features in insertion order.
class JW_API JWFeatureClass {
  public:
    JWFeatureClass();
    /// Deep copy of the features; schemas are shared.
    JWFeatureClass(const JWFeatureClass& other);
    JWFeatureClass& operator=(const JWFeatureClass& other);
    ~JWFeatureClass();

    int getFeatureCount() const { return static_cast<int>(m_features.size()); }
    /// Feature `i`, still owned by the class; null when there is none.
    JWFeature* getFeatureAt(int i) const;
    /// Appends `feature` and takes ownership of it; null is ignored.
    void addFeature(JWFeature* feature);
    /// Removes and destroys feature `i`; an unknown `i` is ignored. Cost: linear.
    void deleteFeatureAt(int i);
    /// Destroys all features.
    void clearAll();

    /// Recomputes the envelope from the features' geometries; invalid when there is none.
    void updateEnvelop();
    /// Envelope as of the last `updateEnvelop`; invalid before.
    JWEnvelop getEnvelop() const { return m_envelop; }

    void setGeometryType(enumJWWKBGeometryType type) { m_geometryType = type; }
    enumJWWKBGeometryType getGeometryType() const { return m_geometryType; }

    /// Stores a copy of `reference`; null removes it.
    void setSpatialReference(const JWSpatialReference* reference);
    /// The class's own reference, null when it has none.
    JWSpatialReference* getSpatialReference() const { return m_reference.get(); }

  private:
    std::vector<std::unique_ptr<JWFeature>> m_features;
    enumJWWKBGeometryType m_geometryType = JWWKBUnknown;
    JWEnvelop m_envelop;
    std::unique_ptr<JWSpatialReference> m_reference;
};

}  // namespace jws

#endif  // JW_FEATURE_CLASS_H
