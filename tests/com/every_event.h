#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "engine/event_table.h"
#include "tests/com/component.h"

/// Every event at once: a script that raises them, and a host's way with their arguments.
namespace corvane::testing {

/// A script that raises each event that a script can raise: all but RequiredFinishLoopFlag and ShakeBladeEx.
extern const std::u16string_view everyEventScript;
/// Those, by identifier.
extern const std::vector<DISPID> scriptEvents;

inline bool isDeclaration(DISPID event) { return event >= 38 && event <= 40; }
inline const EventRow& rowOf(DISPID event) { return eventTable.at(static_cast<std::size_t>(event) - 1); }

/// The variant type under which automation knows an argument.
VARTYPE publishedTypeOf(const EventArgument& argument);

/// The argument at a published position: a host is handed them last to first.
inline VARIANTARG& argumentOf(DISPPARAMS& arguments, std::size_t position) {
    return arguments.rgvarg[arguments.cArgs - 1 - position];
}

/// Answers the one that the component would otherwise ask the operator about, without succeeding.
void takeOver(DISPID event, DISPPARAMS& arguments);
/// Does everything that an event asks for.
void answer(DISPID event, DISPPARAMS& arguments);

/// All arguments as text, what is by reference with an ampersand, such as `&"text" &1.5 7 &True`.
std::string show(DISPID event, DISPPARAMS& arguments);

/// A run, as a host sees its end.
struct RunResult {
    HRESULT result = E_FAIL;
    VARIANT_BOOL value = VARIANT_FALSE;
    friend bool operator==(const RunResult&, const RunResult&) = default;
};
RunResult run(_clsScriptControl& control);

/// The error information that the last failed call on this thread left; taken away by the question.
struct ErrorSeen {
    std::string source;
    std::string description;
    GUID id{};
};
ErrorSeen takeError();

/// The result of a call that failed with an automation error.
constexpr HRESULT automationError(int number) {
    return static_cast<HRESULT>(0x800A0000U | static_cast<unsigned>(number));
}

/// What everything in these tests ends with: the component holds nothing any more.
class ComponentTest : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(canUnloadNow(), S_OK) << "something of the component is still held"; }
};

}  // namespace corvane::testing
