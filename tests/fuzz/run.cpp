// A script, and the answers of its host and its operator: loaded, run twice, read, listed. A run is false exactly when
// its last KeepGoing was.

#include "host/clsProgramFunctionList.h"
#include "platform/value_rules.h"
#include "tests/fuzz/choosing_host.h"

namespace corvane::fuzz {
namespace {

void readAll(clsScriptControl& control, std::u16string_view text) {
    clsDataList& memory = control.engine().DataMemory();
    for (std::int32_t i = 0; i < memory.Count(); ++i) {
        const clsData item = memory.Item(i);
        toText(item.CurrentValue(), control.engine().locale());
        control.GetMemoryValue(item.Identifier());
    }
    control.GetEnvironmentVariable(text);
    control.GetConstant(text.substr(0, text.find(u'\n')));
    StringTable table;
    std::int32_t count = -1;
    control.GetEditable(table, count);
    require(count == 0 && table.rows() == 0, "nothing is editable unless the host says so");
}

void runOnce(clsScriptControl& control, ChoosingHost& host) {
    bool result = false;
    const bool ended = succeeds([&] { result = control.RunScript(); });
    require(!control.engine().isRunning(), "a run that has ended runs no more");
    if (ended) require(result == host.goesOn, "a run is false when it was stopped");
}

void list(ChoosingHost& host, std::u16string_view text) {
    clsProgramFunctionList functions(host.services());
    try {
        Reference<FunctionCollection> listing;
        if (succeeds([&] { functions.LoadProgramScript_FromDatabase(text, u"name", 1, 1); }))
            succeeds([&] { functions.CreateFunctionList(listing); });
    } catch (const Enough&) {
    }
    const FunctionCollection& listing = *functions.FunctionList();
    for (std::int32_t i = 1; i <= listing.Count(); ++i)
        require(!listing.Item(i).FunctionName.empty(), "what is listed has a name");
}

}  // namespace
}  // namespace corvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    using namespace corvane::fuzz;
    FuzzInput input(data, size);
    const std::u16string text = textOf(input.text);
    ChoosingHost host(input);
    // The finish-loop test is the rest of the language only where it is as designed.
    clsScriptControl control(host.services(), {.designedMemberAccess = !input.choices.oneIn(8)});
    control.setEventSink(&host);
    control.engine().setListener(&host);
    control.setDebugMode(static_cast<std::int32_t>(input.choices.below(8)));
    if (input.choices.oneIn(2)) control.engine().setTraceSink(&host);
    try {
        bool loaded = false;
        succeeds([&] { loaded = control.LoadScript_FromScript(text, u"name", 1, 1); });
        if (loaded && input.choices.oneIn(4)) control.FinishLoopFlag();
        for (int i = 0; i < 2 && loaded; ++i) runOnce(control, host);
    } catch (const Enough&) {
    }
    readAll(control, text);
    list(host, text);
    return 0;
}
