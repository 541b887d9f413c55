#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

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

// Hosts that use the component without registration find classes and interfaces by it.
TEST(Manifest, NamesEveryClassAndInterface) {
    std::ifstream file("host/com/CorvaneScript.Automation.manifest.in");
    ASSERT_TRUE(file);
    const std::string manifest(std::istreambuf_iterator<char>(file), {});
    const auto expectIn = [&](const std::string& part) { EXPECT_NE(manifest.find(part), std::string::npos) << part; };
    for (const auto& [headline, lines] : frozenPublication()) {
        const std::string kind = headline.substr(0, headline.find(' '));
        if (kind == "enum" || kind == "library") continue;
        const std::size_t brace = headline.find('{');
        const std::string name = headline.substr(kind.size() + 1, brace - kind.size() - 2);
        const std::string identifier = headline.substr(brace);
        if (kind == "class") {
            expectIn("<comClass clsid=\"" + identifier + "\" threadingModel=\"Apartment\"");
            expectIn("progid=\"prjCorvaneScript." + name + "\"");
            expectIn("<progid>prjCorvaneScript." + name + ".1</progid>");
        } else {
            expectIn("<comInterfaceExternalProxyStub name=\"" + name + "\" iid=\"" + identifier + "\"");
        }
    }
}

}  // namespace
}  // namespace corvane::testing
