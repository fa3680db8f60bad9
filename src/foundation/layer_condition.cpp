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

const char* const quotes = "'\"`";
const char* const quotesOfSqlite = "'\"`[";

/// The place of the quote that closes the one at `i`, npos for none. One that is doubled inside
/// closes and opens again.
std::size_t closingQuote(const std::string& text, std::size_t i) {
    return text.find(text[i] == '[' ? ']' : text[i], i + 1);
}

/// Replaces the word `word` outside of quotes, ignoring case; returns whether there was any. With
/// `asName` also where it stands in double quotes.
bool replaceWord(std::string& text, const char* word, const std::string& by,
                 const std::string& marks, bool asName = false) {
    std::string out;
    bool replaced = false;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        std::size_t end = i + 1;
        if (marks.find(c) != std::string::npos) {
            end = std::min(closingQuote(text, i), text.size() - 1) + 1;
            const std::string found = text.substr(i, end - i);
            const bool same =
                asName && sameName(found.c_str(), ('"' + std::string(word) + '"').c_str());
            replaced |= same;
            out += same ? by : found;
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

/// Why a database would not take `text` for one condition but obey what stands behind it, or leave
/// it out, without a word; empty when it is one condition.
std::string faultAsOneCondition(const std::string& text, const std::string& marks) {
    int depth = 0;
    for (std::size_t i = 0; i < text.size() && depth >= 0; ++i) {
        const char c = text[i];
        if (marks.find(c) != std::string::npos) {
            i = closingQuote(text, i);
            if (i == std::string::npos) return "a quote is not closed";
        } else if (c == ';') {
            return "it has a ';'";
        } else if (text.compare(i, 2, "--") == 0 || text.compare(i, 2, "/*") == 0) {
            return "it has a comment";
        } else if (c == '(' || c == ')') {
            depth += c == '(' ? 1 : -1;
        }
    }
    return depth == 0 ? "" : "its parentheses do not match";
}

}  // namespace

LayerCondition::LayerCondition(const JWSourceHandle& source, OGRLayer& layer, const char* where,
                               bool here)
    : m_text(trimmed(where)) {
    if (m_text.empty()) return;
    std::string text = m_text;
    const char* column = layer.GetFIDColumn();
    OGRFeatureDefn& fields = *layer.GetLayerDefn();
    const int attribute = fields.GetFieldIndex("fid");
    const bool isStatement = !here && source.isDatabase();
    const bool hasColumn = isStatement && *column != '\0';
    const std::string marks = isStatement && (source.isDriver("SQLite") || source.isDriver("GPKG"))
                                  ? quotesOfSqlite
                                  : quotes;
    if (hasColumn && !sameName(column, "fid")) {
        replaceWord(text, "fid", "\"" + std::string(column) + "\"", marks);
    }
    if (!isStatement && *column != '\0' && fields.GetFieldIndex(column) < 0) {
        replaceWord(text, column, "fid", marks, true);
    }
    const bool asksFid = !hasColumn && (attribute >= 0 || source.isDatabase() || here) &&
                         replaceWord(text, "fid", "fid", marks);
    if (isStatement && !asksFid) {
        m_fault = faultAsOneCondition(m_text, marks);
        m_forDriver = "(" + text + ")";
        return;
    }
    m_own = std::make_unique<ConditionQuery>(layer, asksFid ? attribute : -1, text);
    m_fault = m_own->fault();
    if (!asksFid && !here && !m_own->comparesDates()) m_forDriver = text;
}

LayerCondition::~LayerCondition() = default;

bool LayerCondition::isUnderstood() const {
    return m_fault.empty() && (!m_own || m_own->isUnderstood());
}

bool LayerCondition::holds(OGRFeature& feature) const {
    return forDriver() != nullptr || !m_own || m_own->holds(feature);
}

}  // namespace jws::detail
