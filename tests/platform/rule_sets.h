#pragma once

#include <cmath>
#include <cstdio>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/automation_error.h"
#include "platform/value_rules.h"

namespace corvane {

// How the test library names its parameters.
inline void PrintTo(const NumberLocale& locale, std::ostream* out) { *out << "locale " << locale.localeId; }

namespace test {

/// The three implementations of the variant rules, which must agree.
struct RuleSet {
    const char* name;
    bool (*isNumeric)(std::u16string_view, const NumberLocale&);
    float (*toSingle)(ValueView, const NumberLocale&);
    std::int32_t (*toLong)(ValueView, const NumberLocale&);
    bool (*toBoolean)(ValueView, const NumberLocale&);
    Text (*toText)(ValueView, const NumberLocale&);
    Value (*add)(ValueView, ValueView, const NumberLocale&);
    Value (*subtract)(ValueView, ValueView, const NumberLocale&);
    std::weak_ordering (*compare)(ValueView, ValueView);
};

inline void PrintTo(const RuleSet& rules, std::ostream* out) { *out << rules.name; }

inline constexpr RuleSet door = {"door", isNumeric, toSingle, toLong, toBoolean, toText, add, subtract, compare};
inline constexpr RuleSet platformRules = {"platform_rules",       platform_rules::isNumeric, platform_rules::toSingle,
                                          platform_rules::toLong, platform_rules::toBoolean, platform_rules::toText,
                                          platform_rules::add,    platform_rules::subtract,  platform_rules::compare};
inline constexpr RuleSet portableRules = {"portable",       portable::isNumeric, portable::toSingle,
                                          portable::toLong, portable::toBoolean, portable::toText,
                                          portable::add,    portable::subtract,  portable::compare};

/// ASCII; other code units as \uNNNN.
inline std::string printable(std::u16string_view text) {
    std::string printed = "\"";
    for (const char16_t unit : text) {
        char buffer[8];
        std::snprintf(buffer, sizeof buffer, unit >= 0x20 && unit < 0x7F ? "%c" : "\\u%04X", unsigned{unit});
        printed += buffer;
    }
    return printed + '"';
}

inline std::string printable(ValueView value) {
    char buffer[64];
    switch (value.type()) {
        case ValueType::Integer: return "Integer " + std::to_string(value.integer());
        case ValueType::Long: return "Long " + std::to_string(value.longInteger());
        case ValueType::Single:
            std::snprintf(buffer, sizeof buffer, "Single %.9g", static_cast<double>(value.single()));
            return buffer;
        case ValueType::Double:
            std::snprintf(buffer, sizeof buffer, "Double %.17g", value.doubleFloat());
            return buffer;
        case ValueType::Boolean: return value.boolean() ? "Boolean True" : "Boolean False";
        case ValueType::Text: return "Text " + printable(value.textView());
        case ValueType::Object: return "Object";
    }
    return {};
}

/// What a rule answers: a value, or the number of the error that it raises.
struct Outcome {
    std::optional<Value> value;
    std::int32_t error = 0;
};

template <typename Rule>
Outcome outcomeOf(Rule rule) {
    try {
        return {rule(), 0};
    } catch (const automation_error& error) {
        return {std::nullopt, static_cast<std::int32_t>(error.number())};
    }
}

inline std::string printable(const Outcome& outcome) {
    return outcome.value ? printable(*outcome.value) : "error " + std::to_string(outcome.error);
}

/// Same error, or same type and same value; signs of zero and kinds of NaN do not count. Doubles may differ by
/// `tolerance`.
inline bool areSame(const Outcome& left, const Outcome& right, double tolerance = 0) {
    if (left.error != right.error || left.value.has_value() != right.value.has_value()) return false;
    if (!left.value) return true;
    if (left.value->type() != right.value->type()) return false;
    const auto sameFloat = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    switch (left.value->type()) {
        case ValueType::Single: return sameFloat(left.value->single(), right.value->single());
        case ValueType::Double: {
            const double leftNumber = left.value->doubleFloat();
            const double rightNumber = right.value->doubleFloat();
            return sameFloat(leftNumber, rightNumber) || std::abs(leftNumber - rightNumber) <= tolerance;
        }
        default: return printable(*left.value) == printable(*right.value);
    }
}

inline Outcome isNumericOutcome(const RuleSet& rules, std::u16string_view text, const NumberLocale& locale) {
    return {Value::ofBoolean(rules.isNumeric(text, locale)), 0};
}
inline Outcome toSingleOutcome(const RuleSet& rules, ValueView value, const NumberLocale& locale) {
    return outcomeOf([&] { return Value::ofSingle(rules.toSingle(value, locale)); });
}
inline Outcome toLongOutcome(const RuleSet& rules, ValueView value, const NumberLocale& locale) {
    return outcomeOf([&] { return Value::ofLong(rules.toLong(value, locale)); });
}
inline Outcome toBooleanOutcome(const RuleSet& rules, ValueView value, const NumberLocale& locale) {
    return outcomeOf([&] { return Value::ofBoolean(rules.toBoolean(value, locale)); });
}
inline Outcome toTextOutcome(const RuleSet& rules, ValueView value, const NumberLocale& locale) {
    return outcomeOf([&] { return Value::ofText(rules.toText(value, locale)); });
}
inline Outcome addOutcome(const RuleSet& rules, ValueView left, ValueView right, const NumberLocale& locale) {
    return outcomeOf([&] { return rules.add(left, right, locale); });
}
inline Outcome subtractOutcome(const RuleSet& rules, ValueView left, ValueView right, const NumberLocale& locale) {
    return outcomeOf([&] { return rules.subtract(left, right, locale); });
}
/// -1, 0 or 1 as a Long.
inline Outcome compareOutcome(const RuleSet& rules, ValueView left, ValueView right) {
    return outcomeOf([&] {
        const std::weak_ordering order = rules.compare(left, right);
        return Value::ofLong(order < 0 ? -1 : order > 0 ? 1 : 0);
    });
}

}  // namespace test
}  // namespace corvane
