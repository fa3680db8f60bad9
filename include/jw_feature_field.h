// SPDX-License-Identifier: MIT
//
// Attribute fields: the definition of one (JWField), a schema (JWFields, shared by reference
// count), and the value of one field in one feature (unionJWField).
#ifndef JW_FEATURE_FIELD_H
#define JW_FEATURE_FIELD_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "jw_codes.h"
#include "jw_export.h"

namespace jws {

/// The value of one field. Which member holds it follows from the field's type; whether there is a
/// value at all, unset or null, is kept by the feature (`JWFeature::isFieldSet`, `isFieldNull`).
/// Pointers in a value read from a feature belong to that feature.
union unionJWField {
    int integer;             ///< `JWFieldInteger`
    std::int64_t integer64;  ///< `JWFieldInteger64`
    double real;             ///< `JWFieldReal`
    char* string;            ///< `JWFieldString`, UTF-8, ends with a zero byte, any length
    struct {
        int count;
        int* values;
    } integerList;  ///< `JWFieldIntegerList`
    struct {
        int count;
        std::int64_t* values;
    } integer64List;  ///< `JWFieldInteger64List`
    struct {
        int count;
        double* values;
    } realList;  ///< `JWFieldRealList`
    struct {
        int count;
        char** values;
    } stringList;  ///< `JWFieldStringList`
    struct {
        int count;
        unsigned char* values;
    } binary;  ///< `JWFieldBinary`
    struct {
        std::int16_t year;
        std::uint8_t month;
        std::uint8_t day;
        std::uint8_t hour;
        std::uint8_t minute;
        std::uint8_t timeZone;  ///< 0 unknown, 1 local, 100 UTC, otherwise 100 + quarter hours
        float second;
    } date;  ///< `JWFieldDate`, `JWFieldTime`, `JWFieldDateTime`
};

/// The definition of one attribute field.
class JW_API JWField {
  public:
    JWField(const char* name, enumJWFieldType type, int width = 0, int precision = 0,
            unsigned char justify = 0);

    const char* getFieldName() const { return m_name.c_str(); }
    enumJWFieldType getFieldType() const { return m_type; }
    /// Width in characters for text formats; 0 leaves it open.
    int getWidth() const { return m_width; }
    /// Digits behind the decimal point for text formats; 0 leaves it open.
    int getPrecision() const { return m_precision; }
    /// Justification in text formats: 0 undefined, 1 left, 2 right.
    unsigned char getJustify() const { return m_justify; }
    /// The driver's subtype of the type: 0 none, 1 boolean, 2 16-bit integer, 3 32-bit real,
    /// 4 JSON, 5 UUID. Passed through unchanged.
    int getSubType() const { return m_subType; }
    void setSubType(int subType) { m_subType = subType; }

  private:
    std::string m_name;
    enumJWFieldType m_type;
    int m_width;
    int m_precision;
    unsigned char m_justify;
    int m_subType = 0;
};

/// A schema: the ordered fields of the features that point to it.
///
/// Schemas live on the heap and are shared. The count starts at 0; every feature, class or layer
/// that points to a schema holds one reference. `destroyFields` deletes a schema at count 0;
/// otherwise the schema is marked and goes with its last reference. Counting is atomic; adding
/// fields is not synchronised and belongs before the schema is shared: features made before do not
/// have the new fields.
class JW_API JWFields {
  public:
    JWFields() = default;
    /// Copies the fields, not the count.
    JWFields(const JWFields& other);
    /// Takes over the fields of another schema. One that is referenced keeps its own, which the
    /// values of features rest on; the last error says so.
    JWFields& operator=(const JWFields& other);

    /// Appends a copy of `field`.
    void addField(const JWField& field);
    /// Appends a copy of `field` under a name that no field has yet, ignoring case: its own, or
    /// "name_1", "name_2", …; an empty name becomes "field". Returns its position.
    int addUniqueField(const JWField& field);
    int getFieldCount() const { return static_cast<int>(m_fields.size()); }
    /// Returns field `i`, null when there is none.
    const JWField* getFieldPtr(int i) const;
    JWField* getFieldPtr(int i);
    /// Returns the position of the field of that name (exact match first, then ignoring case), −1
    /// when there is none. Cost: linear in the number of fields.
    int getFieldIndex(const char* name) const;

    /// Adds one reference and returns the new count.
    int setReference();
    /// Subtracts one reference when the count is above zero and returns the new count. The call
    /// that brings the count of a marked schema to zero deletes it.
    int releaseReference();
    int getReference() const { return m_state.load() / 2; }

    /// Releases a schema created with `new`; null is allowed.
    static void destroyFields(JWFields* fields);

  private:
    std::vector<JWField> m_fields;
    std::atomic<int> m_state{0};  ///< twice the count, plus 1 once the schema is marked
};

}  // namespace jws

#endif  // JW_FEATURE_FIELD_H
