// SPDX-License-Identifier: MIT
//
// The schema of an overlay's result: which field comes from where. Values are carried by position,
// never by name, because A and B may well have fields of the same name.
#ifndef JW_OVERLAY_RESULT_SCHEMA_H
#define JW_OVERLAY_RESULT_SCHEMA_H

#include <memory>
#include <string>
#include <vector>

#include "jw_feature.h"
#include "overlay/feature_io.h"

namespace jws::detail {

class ResultSchema {
  public:
    /// Lays out the result fields for an attribute mode: 0 the fields of A, then of B; 1 one
    /// identifier field for each, "FID_" and the operand's name; 2 both identifiers, then A's and
    /// B's fields; any other mode acts as 0. Identifier fields are integers, 64 bits wide where the
    /// operand's identifiers need it. `areaField`, unless empty, adds a real field at the end.
    ResultSchema(FeatureInput& a, FeatureInput& b, int attributeMode, const std::string& areaField);

    /// Creates the fields in the output and remembers the schema that it answers.
    void create(FeatureOutput& output);

    /// Makes a result feature of `geometry`; `a` or `b` may be null, its fields stay unset then.
    /// Thread-safe. `area` goes into the area field if there is one. `lostField` is set to the name
    /// of a field whose value the result cannot hold, and left alone when all fit.
    std::unique_ptr<JWFeature> makeFeature(std::unique_ptr<JWGeometry> geometry, const JWFeature* a,
                                           const JWFeature* b, double area,
                                           std::string& lostField) const;

  private:
    enum class Origin { IdentifierA, IdentifierB, FieldA, FieldB, Area };
    struct Column {
        Origin origin;
        int sourceField;
    };
    void addIdentifier(FeatureInput& input, Origin origin);
    void addFields(const FeatureInput& input, Origin origin);
    /// Fills one field; false when it cannot hold the value.
    static bool fill(JWFeature& feature, int field, const Column& column, const JWFeature* a,
                     const JWFeature* b, double area);

    std::vector<JWField> m_fields;
    std::vector<Column> m_columns;
    JWFields* m_schema = nullptr;
};

}  // namespace jws::detail

#endif  // JW_OVERLAY_RESULT_SCHEMA_H
