// SPDX-License-Identifier: MIT
#include "foundation/layer_condition.h"

#include <algorithm>
#include <cctype>

#include "foundation/field_names.h"

namespace jws::detail {
namespace {

std::string trimmed(const char* text) {
    std::string copy = text != nullptr ? text : "";
    while (!copy.empty() && std::isspace(static_cast<unsigned char>(copy.back())) != 0)
        copy.pop_back();
    return copy;
}

bool isWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// Replaces the word `word` outside of quotes, ignoring case; returns whether there was any.
bool replaceWord(std::string& text, const char* word, const std::string& by) {
    std::string out;
    bool replaced = false;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        std::size_t end = i + 1;
        if (c == '\'' || c == '"' || c == '`') {
            end = std::min(text.find(c, i + 1), text.size() - 1) + 1;
            out.append(text, i, end - i);
        } else if (isWordCharacter(c)) {
            while (end < text.size() && isWordCharacter(text[end])) ++end;
            const std::string found = text.substr(i, end - i);
            const bool same = sameName(found.c_str(), word);
            replaced |= same;
            out += same ? by : found;
        } else {
            out += c;
        }
        i = end;
    }
    text = std::move(out);
    return replaced;
}

}  // namespace

/// A condition evaluated here, in which "fid" means the identifier, also where an attribute has the
/// name (`fieldNamedFid`, −1 for none).
class LayerCondition::Own {
  public:
    Own(OGRLayer& layer, int fieldNamedFid, const std::string& text)
        : m_definition(layer.GetLayerDefn()->Clone()) {
        m_definition->Reference();
        if (fieldNamedFid >= 0) {
            m_definition->GetFieldDefn(fieldNamedFid)->SetName("__attribute_fid__");
        }
        m_understood = m_query.Compile(m_definition, text.c_str()) == OGRERR_NONE;
    }
    ~Own() { m_definition->Release(); }
    Own(const Own&) = delete;
    Own& operator=(const Own&) = delete;

    bool understood() const { return m_understood; }
    bool holds(OGRFeature& feature) { return m_query.Evaluate(&feature) != 0; }

  private:
    OGRFeatureDefn* m_definition;
    OGRFeatureQuery m_query;
    bool m_understood;
};

LayerCondition::LayerCondition(const JWSourceHandle& source, OGRLayer& layer, const char* where,
                               bool here)
    : m_text(trimmed(where)) {
    if (m_text.empty()) return;
    const char* column = layer.GetFIDColumn();
    const int attribute = layer.GetLayerDefn()->GetFieldIndex("fid");
    if (!here && source.isDatabase() && *column != '\0') {
        if (!sameName(column, "fid")) replaceWord(m_text, "fid", "\"" + std::string(column) + "\"");
        return;
    }
    const bool asksFid =
        (attribute >= 0 || source.isDatabase() || here) && replaceWord(m_text, "fid", "fid");
    if (asksFid || here) m_own = std::make_unique<Own>(layer, asksFid ? attribute : -1, m_text);
}

LayerCondition::~LayerCondition() = default;

bool LayerCondition::isUnderstood() const { return !m_own || m_own->understood(); }

bool LayerCondition::holds(OGRFeature& feature) const { return !m_own || m_own->holds(feature); }

}  // namespace jws::detail
