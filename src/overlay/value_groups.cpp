// SPDX-License-Identifier: MIT
#include "overlay/value_groups.h"

#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "foundation/pulse.h"

namespace jws::detail {
namespace {

template <class T>
void appendBytes(std::string& key, const T& value) {
    key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void appendText(std::string& key, const char* text, std::size_t size) {
    appendBytes(key, size);
    key.append(text, size);
}

void appendReal(std::string& key, double value) {
    appendBytes(key, std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value + 0.0);
}

void appendValue(std::string& key, const JWFeature& feature, int field, const unionJWField& value) {
    switch (feature.getFieldDefPtr(field)->getFieldType()) {
        case JWFieldInteger:
            return appendBytes(key, value.integer);
        case JWFieldInteger64:
            return appendBytes(key, value.integer64);
        case JWFieldReal:
            return appendReal(key, value.real);
        case JWFieldString:
            return appendText(key, value.string, std::char_traits<char>::length(value.string));
        case JWFieldBinary:
            return appendText(key, reinterpret_cast<const char*>(value.binary.values),
                              static_cast<std::size_t>(value.binary.count));
        default: {
            std::string text;
            feature.getFieldAsString(field, text);
            return appendText(key, text.data(), text.size());
        }
    }
}

}  // namespace

std::string valueKey(const JWFeature& feature, const std::vector<int>& fields) {
    std::string key;
    for (const int field : fields) {
        const unionJWField* value = feature.getFieldValDefPtr(field);
        key.push_back(value != nullptr ? '\1' : '\0');
        if (value == nullptr) continue;
        appendValue(key, feature, field, *value);
    }
    return key;
}

PositionLists groupByValue(const PositionLists& lists, const std::vector<std::string>& keys) {
    PositionLists groups;
    groups.positions.reserve(lists.positions.size());
    std::unordered_map<std::string_view, std::size_t> numbers;
    std::vector<std::vector<int>> members;
    StepCounter pace;
    for (std::size_t list = 0; list < lists.count(); ++list) {
        const int* begin = lists.begin(list);
        const int* end = lists.end(list);
        pace.step(static_cast<std::size_t>(end - begin));
        if (end - begin == 1) {  // most of a layer of islands
            groups.positions.push_back(*begin);
            groups.ends.push_back(groups.positions.size());
            continue;
        }
        numbers.clear();
        members.clear();
        for (const int* position = begin; position != end; ++position) {
            const auto [found, isNew] =
                numbers.try_emplace(keys[static_cast<std::size_t>(*position)], members.size());
            if (isNew) members.emplace_back();
            members[found->second].push_back(*position);
        }
        for (const std::vector<int>& group : members) {
            groups.positions.insert(groups.positions.end(), group.begin(), group.end());
            groups.ends.push_back(groups.positions.size());
        }
    }
    return groups;
}

}  // namespace jws::detail
