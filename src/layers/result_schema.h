// SPDX-License-Identifier: MIT
//
// The schema of a layer operation's result: which field comes from where. Values are carried by
// position, never by name, because A and B may well have fields of the same name. An operation on
// one layer has A only.
#ifndef JW_LAYERS_RESULT_SCHEMA_H
#define JW_LAYERS_RESULT_SCHEMA_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jw_feature.h"
#include "jw_overlayoptions.h"
#include "layers/feature_io.h"

namespace jws::detail {

/// Where the values of one result feature come from.
struct ResultValues {
    const JWFeature* a;            ///< null: its fields stay unset
    const JWFeature* b = nullptr;  ///< likewise
    std::int64_t joined = 0;       ///< for the count field
    double area = 0;               ///< for the area field
};

class ResultSchema {
  public:
    /// An empty schema; the result has the fields that are added.
    ResultSchema() = default;
    /// Lays out the fields of A, as `add` would.
    explicit ResultSchema(const FeatureInput& a) { addFieldsOf(a); }
    /// Lays out the fields of two operands for the options' attribute mode: 0 the fields of A, then
    /// of B; 1 one identifier field for each, "FID_" and the operand's name; 2 both identifiers,
    /// then A's and B's fields; any other mode acts as 0. Identifier fields are integers, 64 bits
    /// wide where the operand's identifiers need it. Names that both have get the options'
    /// prefixes.
    ResultSchema(FeatureInput& a, FeatureInput& b, const JWOverlayOptions& options);

    /// Adds the fields of A.
    void addFieldsOf(const FeatureInput& a) { addFields(a, Origin::FieldA, {}); }
    /// Adds a field `name` for the identifier of A's feature, 64 bits wide where need be.
    void addIdentifierOf(FeatureInput& a, const std::string& name) {
        addIdentifier(a, Origin::IdentifierA, name);
    }
    /// Adds a field that stays unset until the operation sets it; returns its position.
    int addField(const JWField& field);
    /// Adds an integer field "join_count".
    void addJoinCount();
    /// Adds a real field for the area; not for an empty name.
    void addArea(const std::string& name);
    /// Creates the fields in the output and remembers the schema that it answers.
    void create(FeatureOutput& output);

    /// Makes a result feature of `geometry`. Thread-safe. `lostField` is set to the name of a field
    /// whose value the result cannot hold, and left alone when all fit.
    std::unique_ptr<JWFeature> makeFeature(std::unique_ptr<JWGeometry> geometry,
                                           const ResultValues& values,
                                           std::string& lostField) const;

    /// The name of the field at a position.
    const char* nameOf(int field) const {
        return m_fields[static_cast<std::size_t>(field)].getFieldName();
    }

  private:
    enum class Origin { IdentifierA, IdentifierB, FieldA, FieldB, JoinCount, Area, Given };
    struct Column {
        Origin origin;
        int sourceField;
    };
    /// What goes in front of names that both operands have, and which those are.
    struct Prefix {
        std::string text;
        const JWFields* other = nullptr;
    };
    void addIdentifier(FeatureInput& input, Origin origin, const std::string& name);
    void addFields(const FeatureInput& input, Origin origin, const Prefix& prefix);
    /// Fills one field; false when it cannot hold the value.
    static bool fill(JWFeature& feature, int field, const Column& column,
                     const ResultValues& values);

    std::vector<JWField> m_fields;
    std::vector<Column> m_columns;
    JWFields* m_schema = nullptr;  ///< borrowed from the output
};

}  // namespace jws::detail

#endif  // JW_LAYERS_RESULT_SCHEMA_H
