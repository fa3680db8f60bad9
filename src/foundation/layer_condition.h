// SPDX-License-Identifier: MIT
//
// Conditions on the features of a layer. A database takes a condition as it is, so that it uses its
// indexes, in parentheses, so that nothing but a condition is understood; the word "fid" is
// replaced by the name of its identifier column. Views without one are treated like other sources.
// There a condition is in OGR's own dialect, in which "fid" names the identifier unless an
// attribute has that name, and so does the name of the identifier column, where there is one. It
// goes to the driver too, but for "fid" beside such an attribute and for dates, which are seen to
// here.
#ifndef JW_FOUNDATION_LAYER_CONDITION_H
#define JW_FOUNDATION_LAYER_CONDITION_H

#include <ogrsf_frmts.h>

#include <memory>
#include <string>

#include "foundation/condition_query.h"
#include "foundation/source_handle.h"

namespace jws::detail {

class LayerCondition {
  public:
    /// `where` may be null or empty: every feature. `here`: nothing is left to the driver.
    LayerCondition(const JWSourceHandle& source, OGRLayer& layer, const char* where, bool here);
    ~LayerCondition();

    /// False when it makes no sense here; a driver says so of what it is handed itself.
    bool isUnderstood() const;
    /// Why, where GDAL has no message for it.
    const std::string& fault() const { return m_fault; }
    const std::string& text() const { return m_text; }
    /// What the driver is to filter by, null for nothing.
    const char* forDriver() const { return m_forDriver.empty() ? nullptr : m_forDriver.c_str(); }
    /// Decides about a feature that the driver lets pass.
    bool holds(OGRFeature& feature) const;

  private:
    std::string m_text;
    std::string m_forDriver;
    std::string m_fault;
    std::unique_ptr<ConditionQuery> m_own;  ///< null for a database's own dialect
};

/// Takes the driver's filters off at the end of a scope.
class FilterScope {
  public:
    explicit FilterScope(OGRLayer& layer) : m_layer(layer) {}
    ~FilterScope() {
        m_layer.SetAttributeFilter(nullptr);
        m_layer.SetSpatialFilter(nullptr);
        m_layer.ResetReading();
    }
    FilterScope(const FilterScope&) = delete;
    FilterScope& operator=(const FilterScope&) = delete;

  private:
    OGRLayer& m_layer;
};

}  // namespace jws::detail

#endif  // JW_FOUNDATION_LAYER_CONDITION_H
