// SPDX-License-Identifier: MIT
//
// Statistics over the features of a group. Integers are summed in 128 bits, which no layer
// overflows, and reals with the rounding errors kept and added at the end (A. Neumaier,
// Rundungsfehleranalyse einiger Verfahren zur Summation endlicher Summen, 1974).
#include "overlay/group_statistics.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include "foundation/field_value.h"

namespace jws::detail {
namespace {

__extension__ typedef __int128 Wide;

const char* prefixOf(enumJWStatistic statistic) {
    switch (statistic) {
        case JWStatisticSum:
            return "sum";
        case JWStatisticMean:
            return "mean";
        case JWStatisticMin:
            return "min";
        case JWStatisticMax:
            return "max";
        case JWStatisticFirst:
            return "first";
        case JWStatisticCount:
            break;
    }
    return "count";
}

bool isInteger(enumJWFieldType type) { return type == JWFieldInteger || type == JWFieldInteger64; }
bool isNumber(enumJWFieldType type) { return isInteger(type) || type == JWFieldReal; }
bool isDate(enumJWFieldType type) {
    return type == JWFieldDate || type == JWFieldTime || type == JWFieldDateTime;
}

/// The value of a field for a statistic: null for none, and for a real that is no number.
const unionJWField* valueOf(const JWFeature& feature, int field) {
    const unionJWField* value = feature.getFieldValDefPtr(field);
    if (value != nullptr && feature.getFieldDefPtr(field)->getFieldType() == JWFieldReal &&
        std::isnan(value->real)) {
        return nullptr;
    }
    return value;
}

class CompensatedSum {
  public:
    void add(double value) {
        const double sum = m_sum + value;
        m_lost +=
            std::fabs(m_sum) >= std::fabs(value) ? (m_sum - sum) + value : (value - sum) + m_sum;
        m_sum = sum;
    }
    /// An infinite sum has lost nothing that can be made good.
    double value() const { return std::isfinite(m_sum) ? m_sum + m_lost : m_sum; }

  private:
    double m_sum = 0;
    double m_lost = 0;
};

/// The mean of finite numbers whose sum is not: it is finite itself.
double meanOfLarge(const std::vector<const JWFeature*>& group, int field, std::int64_t count) {
    constexpr int scale = 64;  // more than any count
    CompensatedSum sum;
    for (const JWFeature* feature : group) {
        const unionJWField* value = valueOf(*feature, field);
        if (value != nullptr) sum.add(std::ldexp(value->real, -scale));
    }
    return std::ldexp(sum.value() / static_cast<double>(count), scale);
}

/// Sum or mean.
bool fillSum(const JWDissolveStatistic& statistic, const std::vector<const JWFeature*>& group,
             int target, JWFeature& result) {
    Wide integers = 0;
    CompensatedSum reals;
    std::int64_t count = 0;
    bool isReal = false;
    for (const JWFeature* feature : group) {
        const unionJWField* value = valueOf(*feature, statistic.field);
        if (value == nullptr) continue;
        ++count;
        std::int64_t integer = 0;
        if (feature->getFieldDefPtr(statistic.field)->getFieldType() == JWFieldReal) {
            isReal = true;
            reals.add(value->real);
        } else if (feature->getFieldAsInt64(statistic.field, integer)) {
            integers += integer;
        }
    }
    if (count == 0) return true;
    if (statistic.statistic == JWStatisticMean) {
        const auto whole = static_cast<long double>(integers) / static_cast<long double>(count);
        const double mean = !isReal ? static_cast<double>(whole)
                            : std::isfinite(reals.value())
                                ? reals.value() / static_cast<double>(count)
                                : meanOfLarge(group, statistic.field, count);
        return result.setFieldValue(target, mean);
    }
    if (isReal) return result.setFieldValue(target, reals.value());
    if (integers > std::numeric_limits<std::int64_t>::max() ||
        integers < std::numeric_limits<std::int64_t>::min()) {
        return false;
    }
    return result.setFieldValue(target, static_cast<std::int64_t>(integers));
}

bool isLess(enumJWFieldType type, const unionJWField& a, const unionJWField& b) {
    switch (type) {
        case JWFieldInteger:
            return a.integer < b.integer;
        case JWFieldInteger64:
            return a.integer64 < b.integer64;
        case JWFieldReal:
            return a.real < b.real;
        case JWFieldString:
            return std::strcmp(a.string, b.string) < 0;
        default:
            return std::make_pair(minutesOf(a), a.date.second) <
                   std::make_pair(minutesOf(b), b.date.second);
    }
}

/// The feature whose value a minimum, maximum or first takes over; null for none.
const JWFeature* chosen(const JWDissolveStatistic& statistic,
                        const std::vector<const JWFeature*>& group) {
    const JWFeature* best = nullptr;
    const unionJWField* bestValue = nullptr;
    for (const JWFeature* feature : group) {
        const unionJWField* value = valueOf(*feature, statistic.field);
        if (value == nullptr) continue;
        if (best != nullptr) {
            if (statistic.statistic == JWStatisticFirst) break;
            const enumJWFieldType type = feature->getFieldDefPtr(statistic.field)->getFieldType();
            const bool better = statistic.statistic == JWStatisticMin
                                    ? isLess(type, *value, *bestValue)
                                    : isLess(type, *bestValue, *value);
            if (!better) continue;
        }
        best = feature;
        bestValue = value;
    }
    return best;
}

std::int64_t countOf(const JWDissolveStatistic& statistic,
                     const std::vector<const JWFeature*>& group) {
    if (statistic.field < 0) return static_cast<std::int64_t>(group.size());
    std::int64_t count = 0;
    for (const JWFeature* feature : group) {
        if (valueOf(*feature, statistic.field) != nullptr) ++count;
    }
    return count;
}

}  // namespace

std::string checkStatistic(const JWDissolveStatistic& statistic, const JWFields& source) {
    const std::string name = prefixOf(statistic.statistic);
    if (statistic.field < 0 && statistic.statistic == JWStatisticCount) return {};
    const JWField* field = source.getFieldPtr(statistic.field);
    if (field == nullptr) {
        return "statistic " + name + ": there is no field " + std::to_string(statistic.field);
    }
    const enumJWFieldType type = field->getFieldType();
    const bool numeric =
        statistic.statistic == JWStatisticSum || statistic.statistic == JWStatisticMean;
    const bool ordered =
        statistic.statistic == JWStatisticMin || statistic.statistic == JWStatisticMax;
    if (numeric && !isNumber(type)) {
        return "statistic " + name + ": field " + field->getFieldName() + " holds no numbers";
    }
    if (ordered && !isNumber(type) && !isDate(type) && type != JWFieldString) {
        return "statistic " + name + ": values of field " + field->getFieldName() +
               " have no order";
    }
    return {};
}

JWField statisticField(const JWDissolveStatistic& statistic, const JWFields& source) {
    const JWField* field = source.getFieldPtr(statistic.field);
    std::string name = statistic.name;
    if (name.empty()) {
        name = prefixOf(statistic.statistic);
        if (field != nullptr) name += std::string("_") + field->getFieldName();
    }
    switch (statistic.statistic) {
        case JWStatisticCount:
            return {name.c_str(), JWFieldInteger64};
        case JWStatisticMean:
            return {name.c_str(), JWFieldReal};
        case JWStatisticSum:
            return {name.c_str(),
                    isInteger(field->getFieldType()) ? JWFieldInteger64 : JWFieldReal};
        default: {
            JWField same(name.c_str(), field->getFieldType(), field->getWidth(),
                         field->getPrecision(), field->getJustify());
            same.setSubType(field->getSubType());
            return same;
        }
    }
}

bool fillStatistic(const JWDissolveStatistic& statistic, const std::vector<const JWFeature*>& group,
                   int target, JWFeature& result) {
    switch (statistic.statistic) {
        case JWStatisticCount:
            return result.setFieldValue(target, countOf(statistic, group));
        case JWStatisticSum:
        case JWStatisticMean:
            return fillSum(statistic, group, target, result);
        default: {
            const JWFeature* source = chosen(statistic, group);
            return source == nullptr || result.copyFieldFrom(target, *source, statistic.field);
        }
    }
}

}  // namespace jws::detail
