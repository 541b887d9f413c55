#include <gtest/gtest.h>

#include "engine/event_table.h"
#include "tests/com/publication.h"

namespace corvane::testing {
namespace {

std::string_view typeName(const EventArgument& argument) {
    switch (argument.type) {
        case ValueType::Text: return "string";
        case ValueType::Single: return "single";
        case ValueType::Boolean: return "boolean";
        case ValueType::Object: return "_clsDataSetParameters";
        default: return argument.publishedType.starts_with("enum") ? argument.publishedType : "long";
    }
}

TEST(InterfaceDefinition, SaysWhatHostsRelyOn) { expectSame(definedPublication(), frozenPublication()); }

TEST(InterfaceDefinition, HasTheEventsOfTheTable) {
    std::vector<std::string> lines;
    for (const EventRow& row : eventTable) {
        std::vector<std::string> parameters;
        for (std::size_t i = 0; i < row.argumentCount; ++i) {
            const EventArgument& argument = row.arguments[i];
            parameters.push_back(parameterText(argument.name, typeName(argument), argument.byReference));
        }
        lines.push_back(memberText(static_cast<long>(row.id), "method", row.name, parameters));
    }
    EXPECT_EQ(definedPublication()["events __clsScriptControl {5261AAAE-0BBC-4C17-ACF9-AF6AD3AAF330}"], lines);
}

TEST(InterfaceDefinition, HasTheEnumerationsOfTheEngine) {
    Publication enumerations = definedPublication();
    std::erase_if(enumerations, [](const auto& entry) { return !entry.first.starts_with("enum "); });
    expectSame(enumerations, enumerationsOf("engine/enumerations.h"));
}

}  // namespace
}  // namespace corvane::testing
