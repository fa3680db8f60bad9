// SPDX-License-Identifier: MIT
//
// A condition in OGR's dialect, evaluated feature by feature with the identifier's name taken into
// account. A comparison with a missing value is false, whatever the value's type.
#ifndef JW_FOUNDATION_CONDITION_QUERY_H
#define JW_FOUNDATION_CONDITION_QUERY_H

#include <ogrsf_frmts.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

class swq_expr_node;

namespace jws::detail {

class ConditionQuery {
  public:
    /// "fid" means the identifier, also where an attribute has that name (`fieldNamedFid`, −1 for
    /// none).
    ConditionQuery(const OGRLayer& layer, int fieldNamedFid, std::string text);
    ~ConditionQuery();
    ConditionQuery(const ConditionQuery&) = delete;
    ConditionQuery& operator=(const ConditionQuery&) = delete;

    bool isUnderstood() const { return m_understood && m_fault.empty(); }
    /// Why it is not understood, where GDAL has no message for it.
    const std::string& fault() const { return m_fault; }
    bool comparesDates() const { return !m_dated.empty(); }
    bool holds(OGRFeature& feature);

  private:
    using Fields = std::vector<int>;

    bool isField(const swq_expr_node& node) const;
    void addFields(const swq_expr_node& node, Fields& fields) const;
    Fields fieldsIn(const swq_expr_node& node) const;
    void inspect(const swq_expr_node& node);
    void settle(swq_expr_node& node, const Fields& missing) const;
    OGRFeatureQuery& queryWithout(const Fields& missing);

    OGRFeatureDefn* m_definition;
    std::string m_text;
    std::string m_fault;
    bool m_understood;
    Fields m_dated;    ///< what comparisons of dates look at, ascending
    Fields m_missing;  ///< those of them that the feature at hand lacks
    std::map<Fields, std::unique_ptr<OGRFeatureQuery>> m_queries;  ///< by the fields missing
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_CONDITION_QUERY_H
