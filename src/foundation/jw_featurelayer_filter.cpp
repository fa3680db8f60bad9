// SPDX-License-Identifier: MIT
//
// Layers: reading by attribute condition and by rectangle.
//
// A condition goes to the driver as it is, so that a database uses its indexes; only the word "fid"
// is seen to. In OGR's own dialect it names the identifier, unless an attribute has that name: the
// condition is then evaluated here, against a definition in which that attribute is called
// otherwise. In a database the word is replaced by the name of its identifier column; views without
// one are treated like other sources.
//
// A rectangle query takes candidates by envelope from the driver's spatial filter or from the
// layer's own index, and decides the relation itself; the answers are the same either way.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>
#include <vector>

#include "foundation/feature_layer_impl.h"
#include "foundation/field_names.h"
#include "foundation/position_index.h"
#include "foundation/rectangle_relation.h"

namespace jws {
namespace {

using detail::GdalErrors;
using Found = std::vector<std::unique_ptr<JWFeature>>;

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
            const bool same = detail::sameName(found.c_str(), word);
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

/// A condition evaluated here, in which "fid" means the identifier, also where an attribute has the
/// name (`fieldNamedFid`, −1 for none).
class OwnCondition {
  public:
    OwnCondition(OGRLayer& layer, int fieldNamedFid, const std::string& text)
        : m_definition(layer.GetLayerDefn()->Clone()) {
        m_definition->Reference();
        if (fieldNamedFid >= 0) {
            m_definition->GetFieldDefn(fieldNamedFid)->SetName("__attribute_fid__");
        }
        m_understood = m_query.Compile(m_definition, text.c_str()) == OGRERR_NONE;
    }
    ~OwnCondition() { m_definition->Release(); }
    OwnCondition(const OwnCondition&) = delete;
    OwnCondition& operator=(const OwnCondition&) = delete;

    bool understood() const { return m_understood; }
    bool holds(OGRFeature& feature) { return m_query.Evaluate(&feature) != 0; }

  private:
    OGRFeatureDefn* m_definition;
    OGRFeatureQuery m_query;
    bool m_understood;
};

/// Sets the driver's filters for the length of a scope.
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

int handOver(Found& found, JWFeatureClass& out) {
    for (auto& feature : found) out.addFeature(feature.release());
    return static_cast<int>(found.size());
}

/// A little larger than the rectangle, so that rounding in a driver's test loses nothing.
JWEnvelop widened(JWEnvelop rectangle) {
    const double reach = std::max({std::fabs(rectangle.minX), std::fabs(rectangle.maxX),
                                   std::fabs(rectangle.minY), std::fabs(rectangle.maxY)});
    rectangle.inflates(reach * 1e-12);
    return rectangle;
}

bool isRelation(enumJWSpatialRelation relation) {
    return relation >= JWRelationEqual && relation <= JWRelationOverlap;
}

}  // namespace

int JWFeatureLayer::getFeaturesByAttributeFilter(const char* where, JWFeatureClass& out,
                                                 bool append) {
    Impl& impl = *m_impl;
    return impl.run("getFeaturesByAttributeFilter", -1, [&] {
        if (!append) impl.prepare(out);
        if (!impl.requireReadable()) return -1;
        GdalErrors errors;
        std::string text = trimmed(where);
        const auto notUnderstood = [&] {
            errors.report(JWErrorInvalidArgument,
                          impl.title() + ": condition '" + text + "' is not understood", "");
            return -1;
        };
        const char* column = impl.layer.GetFIDColumn();
        const int attribute = impl.layer.GetLayerDefn()->GetFieldIndex("fid");
        std::unique_ptr<OwnCondition> condition;
        const bool unnumbered = *column == '\0';
        if (impl.source->isDatabase() && !unnumbered) {
            if (!detail::sameName(column, "fid")) {
                replaceWord(text, "fid", "\"" + std::string(column) + "\"");
            }
        } else if ((attribute >= 0 || impl.source->isDatabase()) &&
                   replaceWord(text, "fid", "fid")) {
            condition = std::make_unique<OwnCondition>(impl.layer, attribute, text);
            if (!condition->understood()) return notUnderstood();
        }
        const FilterScope scope(impl.layer);
        impl.reader.loseCursor();
        if (!condition && !text.empty() &&
            (impl.layer.SetAttributeFilter(text.c_str()) != OGRERR_NONE || errors.failed())) {
            return notUnderstood();
        }
        Found found;
        const auto take = [&](OGRFeature& feature) {
            if (condition && !condition->holds(feature)) return true;
            found.push_back(impl.decode(feature));
            return found.back() != nullptr;
        };
        if (!impl.reader.visitFiltered(take, errors)) {
            // Databases look at the condition only now.
            const bool statement = errors.describe("").find("prepare") != std::string::npos;
            return statement && found.empty() ? notUnderstood() : -1;
        }
        return handOver(found, out);
    });
}

bool JWFeatureLayer::Impl::visitCandidates(
    const JWEnvelop& rectangle, bool all,
    const std::function<void(std::unique_ptr<JWFeature>)>& visit) {
    GdalErrors errors;
    if (index && !all) {
        std::vector<void*> hits;
        if (!index->spatialSearch(rectangle, hits)) return false;
        OGRFeatureUniquePtr feature;
        for (const void* hit : hits) {
            const std::int64_t position = detail::positionOf(hit);
            std::unique_ptr<JWFeature> decoded;
            if (const auto cached = cache.find(position)) {
                decoded.reset(cached->clone());
            } else if (reader.readAt(position, feature, errors) ==
                       detail::LayerReader::Outcome::Read) {
                decoded = decode(*feature);
            }
            if (!decoded) return false;
            visit(std::move(decoded));
        }
        return true;
    }
    const FilterScope scope(layer);
    reader.loseCursor();
    if (!all) {
        const JWEnvelop box = widened(rectangle);
        layer.SetSpatialFilterRect(box.minX, box.minY, box.maxX, box.maxY);
    }
    return reader.visitFiltered(
        [&](OGRFeature& feature) {
            std::unique_ptr<JWFeature> decoded = decode(feature);
            const bool goOn = decoded != nullptr;
            if (goOn) visit(std::move(decoded));
            return goOn;
        },
        errors);
}

int JWFeatureLayer::getFeaturesByEnvelopFilter(const JWEnvelop& rectangle,
                                               enumJWSpatialRelation relation, JWFeatureClass& out,
                                               bool append) {
    Impl& impl = *m_impl;
    return impl.run("getFeaturesByEnvelopFilter", -1, [&] {
        if (!append) impl.prepare(out);
        if (!rectangle.isValid() || !isRelation(relation)) {
            JWReport::setError(JWErrorInvalidArgument,
                               impl.title() + ": the filter needs a valid rectangle and relation");
            return -1;
        }
        if (!impl.requireReadable()) return -1;
        impl.noticeChanges();
        Found found;
        const auto take = [&](std::unique_ptr<JWFeature> feature) {
            const JWGeometry* geometry = feature->getGeometryPtr();
            if (geometry != nullptr && detail::hasRelation(*geometry, rectangle, relation)) {
                found.push_back(std::move(feature));
            }
        };
        if (!impl.visitCandidates(rectangle, relation == JWRelationDisjoint, take)) return -1;
        // A spatial index of the source hands features out in an order of its own.
        if (!impl.index && (impl.source->isDatabase() || impl.source->isDriver("OpenFileGDB"))) {
            std::sort(found.begin(), found.end(),
                      [](const auto& a, const auto& b) { return a->getFID64() < b->getFID64(); });
        }
        return handOver(found, out);
    });
}

bool JWFeatureLayer::createSpatialIndex() {
    Impl& impl = *m_impl;
    return impl.run("createSpatialIndex", false, [&] {
        if (!impl.requireReadable()) return false;
        impl.noticeChanges();
        GdalErrors errors;
        auto index = std::make_unique<JWSpatialIndex>();
        if (!index->initRTreeIndex()) return false;
        bool isWhole = true;
        const auto add = [&](std::int64_t position, OGRFeature& feature) {
            const OGRGeometry* geometry = feature.GetGeometryRef();
            if (geometry == nullptr || geometry->IsEmpty()) return;
            OGREnvelope box;
            geometry->getEnvelope(&box);
            const JWEnvelop envelop(box.MinX, box.MinY, box.MaxX, box.MaxY);
            isWhole = isWhole &&
                      (!envelop.isValid() || index->addRect(envelop, detail::payloadOf(position)));
        };
        if (!impl.reader.visitAll(true, add, errors) || !isWhole) return false;
        impl.index = std::move(index);
        return true;
    });
}

}  // namespace jws
