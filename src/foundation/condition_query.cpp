// SPDX-License-Identifier: MIT
//
// OGR's evaluator takes a comparison with a missing number or text for false, but fails over a
// missing date. A feature that lacks some is therefore asked another form of the condition, in
// which comparisons with them are the constant false; forms are made when they are first needed.
// Over lists the evaluator crashes: conditions that compare them are refused, unless they are cast
// to texts first, and so are those that compare a date with a text that is none.
#include "foundation/condition_query.h"

#include <ogr_swq.h>

#include <algorithm>
#include <utility>

namespace jws::detail {
namespace {

swq_expr_node& rootOf(OGRFeatureQuery& query) {
    return *static_cast<swq_expr_node*>(query.GetSWQExpr());
}

bool isDate(const swq_expr_node* node) {
    return node->field_type == SWQ_DATE || node->field_type == SWQ_TIME ||
           node->field_type == SWQ_TIMESTAMP;
}

bool comparesDatesItself(const swq_expr_node& node) {
    return node.eNodeType == SNT_OPERATION && node.nOperation >= SWQ_EQ &&
           node.nOperation <= SWQ_BETWEEN && node.nOperation != SWQ_ISNULL &&
           std::any_of(node.papoSubExpr, node.papoSubExpr + node.nSubExprCount, isDate);
}

bool isTextWithoutDate(const swq_expr_node* node) {
    OGRField date;
    return node->eNodeType == SNT_CONSTANT && !node->is_null && node->string_value != nullptr &&
           OGRParseDate(node->string_value, &date, 0) == FALSE;
}

/// What a list or bytes may stand in.
bool takesLists(const swq_expr_node& node) {
    return node.nOperation == SWQ_ISNULL || node.nOperation == SWQ_CAST;
}

void makeFalse(swq_expr_node& node) {
    for (int i = 0; i < node.nSubExprCount; ++i) delete node.papoSubExpr[i];
    node.nSubExprCount = 0;
    node.eNodeType = SNT_CONSTANT;
    node.field_type = SWQ_BOOLEAN;
    node.int_value = 0;
}

}  // namespace

ConditionQuery::ConditionQuery(const OGRLayer& layer, int fieldNamedFid, std::string text)
    : m_definition(const_cast<OGRLayer&>(layer).GetLayerDefn()->Clone()), m_text(std::move(text)) {
    m_definition->Reference();
    if (fieldNamedFid >= 0) m_definition->GetFieldDefn(fieldNamedFid)->SetName("__attribute_fid__");
    OGRFeatureQuery& whole = queryWithout({});
    m_understood = whole.GetSWQExpr() != nullptr;
    if (m_understood) inspect(rootOf(whole));
    std::sort(m_dated.begin(), m_dated.end());
    m_dated.erase(std::unique(m_dated.begin(), m_dated.end()), m_dated.end());
}

ConditionQuery::~ConditionQuery() { m_definition->Release(); }

bool ConditionQuery::holds(OGRFeature& feature) {
    m_missing.clear();
    for (const int field : m_dated) {
        if (!feature.IsFieldSetAndNotNull(field)) m_missing.push_back(field);
    }
    return queryWithout(m_missing).Evaluate(&feature) != 0;
}

OGRFeatureQuery& ConditionQuery::queryWithout(const Fields& missing) {
    std::unique_ptr<OGRFeatureQuery>& query = m_queries[missing];
    if (query) return *query;
    query = std::make_unique<OGRFeatureQuery>();
    const bool compiled = query->Compile(m_definition, m_text.c_str()) == OGRERR_NONE;
    if (compiled && !missing.empty()) settle(rootOf(*query), missing);
    return *query;
}

/// The node is an attribute; beside these there are the identifier, the geometry and the like.
bool ConditionQuery::isField(const swq_expr_node& node) const {
    return node.eNodeType == SNT_COLUMN && node.field_index >= 0 &&
           node.field_index < m_definition->GetFieldCount();
}

void ConditionQuery::addFields(const swq_expr_node& node, Fields& fields) const {
    if (isField(node)) fields.push_back(node.field_index);
    for (int i = 0; i < node.nSubExprCount; ++i) addFields(*node.papoSubExpr[i], fields);
}

ConditionQuery::Fields ConditionQuery::fieldsIn(const swq_expr_node& node) const {
    Fields fields;
    addFields(node, fields);
    return fields;
}

/// Looks for what the evaluator cannot do, and for the fields that dates are compared by.
void ConditionQuery::inspect(const swq_expr_node& node) {
    if (comparesDatesItself(node)) addFields(node, m_dated);
    for (int i = 0; i < node.nSubExprCount; ++i) {
        const swq_expr_node& operand = *node.papoSubExpr[i];
        if (isField(operand) && operand.field_type == SWQ_OTHER && !takesLists(node)) {
            m_fault = "field " +
                      std::string(m_definition->GetFieldDefn(operand.field_index)->GetNameRef()) +
                      " holds lists or bytes, which cannot be compared";
        } else if (comparesDatesItself(node) && isTextWithoutDate(&operand)) {
            m_fault = "'" + std::string(operand.string_value) + "' is no date or time";
        }
        inspect(operand);
    }
}

/// Makes the comparisons of dates false that look at a missing field.
void ConditionQuery::settle(swq_expr_node& node, const Fields& missing) const {
    const Fields fields = comparesDatesItself(node) ? fieldsIn(node) : Fields();
    if (std::find_first_of(fields.begin(), fields.end(), missing.begin(), missing.end()) !=
        fields.end()) {
        makeFalse(node);
    }
    for (int i = 0; i < node.nSubExprCount; ++i) settle(*node.papoSubExpr[i], missing);
}

}  // namespace jws::detail
