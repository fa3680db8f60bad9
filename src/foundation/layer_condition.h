// SPDX-License-Identifier: MIT
//
// Conditions on the features of a layer. A condition goes to the driver as it is, so that a
// database uses its indexes; only the word "fid" is seen to. In OGR's own dialect it names the
// identifier, unless an attribute has that name: the condition is then evaluated here, against a
// definition in which that attribute is called otherwise. In a database the word is replaced by the
// name of its identifier column; views without one are treated like other sources.
#ifndef JW_FOUNDATION_LAYER_CONDITION_H
#define JW_FOUNDATION_LAYER_CONDITION_H

#include <ogrsf_frmts.h>

#include <memory>
#include <string>

#include "foundation/source_handle.h"

namespace jws::detail {

class LayerCondition {
  public:
    /// `where` may be null or empty: every feature. `here`: nothing is left to the driver.
    LayerCondition(const JWSourceHandle& source, OGRLayer& layer, const char* where, bool here);
    ~LayerCondition();

    /// False when what is evaluated here makes no sense; the driver says so of the rest itself.
    bool isUnderstood() const;
    const std::string& text() const { return m_text; }
    /// What the driver is to filter by, null for nothing.
    const char* forDriver() const { return m_own || m_text.empty() ? nullptr : m_text.c_str(); }
    /// Decides about a feature that the driver lets pass.
    bool holds(OGRFeature& feature) const;

  private:
    class Own;
    std::string m_text;
    std::unique_ptr<Own> m_own;  ///< null when the driver decides
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
