// Any bytes as a script: loaded, checked, shown. A load and a check of the same text come to the same verdict and the
// same first fault; every lookup by name finds what a walk over the items finds.

#include <optional>
#include <vector>

#include "engine/clsCommandList.h"
#include "platform/text_case.h"
#include "tests/fuzz/fuzz_input.h"
#include "ui/text_table.h"

namespace corvane::fuzz {
namespace {

/// Remembers the first message; answers every event with success.
class Surroundings final : public EngineOwner, public OperatorDialogs, public MessagePump, public TraceSink {
public:
    std::optional<std::u16string> message;

    void raise(Event& event) override { event.succeed(); }
    void CommandComplete(std::int32_t, std::int32_t) override {}
    std::optional<std::int32_t> showMessage(const OperatorMessage& shown) override {
        if (!message) message = shown.text;
        return std::nullopt;
    }
    InputAnswer askInput(const InputRequest& request) override {
        return {request.initialValue, InputAnswer::Ending::Unavailable};
    }
    void yield() override {}
    void trace(enumDebugOptions, std::u16string_view line) override {
        require(!line.empty(), "a trace line says something");
    }
};

class Faults final : public FaultListener {
public:
    std::optional<std::u16string> first;
    bool rejected = false;
    std::int32_t lastLine = 0;

    explicit Faults(std::size_t textLength) : textLength_(textLength) {}
    void fault(const ScriptFault& fault) override {
        if (!first) first = fault.message;
        rejected = rejected || fault.rejects;
        lastLine = std::max(lastLine, fault.line);
        require(fault.line >= 0 && fault.column >= 0, "a fault has a place");
        require(static_cast<std::size_t>(fault.column) <= textLength_, "a fault lies within its line");
    }

private:
    std::size_t textLength_;
};

void show(clsCommandList& engine) {
    TextTable statements;
    TextTable items;
    engine.DisplayDataInListViews(&statements, &items);
    require(statements.columns().size() == 27, "the view of the statements has its columns");
    require(statements.rows().size() == static_cast<std::size_t>(engine.commandCount()), "each statement has a row");
    require(items.rows().size() == static_cast<std::size_t>(engine.DataMemory().Count()), "each item has a row");
    statements.aligned();
    items.aligned();
}

void checkLookup(clsDataList& memory, std::u16string_view name, std::int32_t mask) {
    std::int32_t expected = 0;
    for (; expected < memory.Count(); ++expected) {
        const clsData item = memory.Item(expected);
        if ((item.ParameterType() & mask) != 0 && equalIgnoringCase(item.Identifier(), name)) break;
    }
    std::int32_t position = -1;
    const bool found = memory.FindItem(name, position, mask);
    require(found == (expected < memory.Count()) && position == expected, "a lookup finds the first item");
}

void checkLookups(clsDataList& memory) {
    constexpr std::int32_t mostItems = 100;
    const std::int32_t count = std::min(memory.Count(), mostItems);
    for (std::int32_t i = 0; i < count; ++i) {
        const std::u16string name(memory.Item(i).Identifier());
        for (const std::int32_t mask : {255, ptLabel | ptUndeclared, +ptEnvironment, +ptConstant, +ptString})
            checkLookup(memory, name, mask);
    }
}

void change(clsDataList& memory, Choices& choices) {
    clsData item = memory.Item(static_cast<std::int32_t>(choices.below(static_cast<std::uint32_t>(memory.Count()))));
    if (choices.oneIn(2))
        item.setParameterType(choices.oneIn(8) ? choices.longInteger() : 1 << choices.below(8));
    else if (choices.oneIn(2))
        item.setIdentifier(choices.text());
    else
        item.setIdentifier(memory.Item(static_cast<std::int32_t>(choices.below(2)) % memory.Count()).Identifier());
}

void compare(clsCommandList& loading, bool loaded, const Surroundings& shown, std::u16string_view text,
             const NumberLocale& locale) {
    Surroundings surroundings;
    clsCommandList checking(surroundings, {surroundings, surroundings, &locale});
    Faults faults(text.size());
    const bool accepted = checking.CheckCommandList(text, faults);
    require(!surroundings.message, "a check shows nothing");
    require(accepted == loaded, "a load and a check agree");
    require(accepted == !faults.rejected, "a script is rejected for a fault that is told");
    require(faults.lastLine <= checking.currentLine(), "faults lie within the script");
    if (shown.message) require(faults.first == shown.message, "a load shows the first fault that a check tells");
    if (!loaded) return;
    require(loading.commandCount() == checking.commandCount(), "a check binds the same statements");
    require(loading.DataMemory().Count() == checking.DataMemory().Count(), "a check makes the same items");
}

}  // namespace
}  // namespace corvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    using namespace corvane::fuzz;
    FuzzInput input(data, size);
    Choices& choices = input.choices;
    const std::u16string text = textOf(input.text);
    const NumberLocale locale = choices.locale();
    Surroundings surroundings;
    clsCommandList engine(surroundings, {surroundings, surroundings, &locale});
    setDebugOptions(static_cast<std::int32_t>(choices.below(8)));
    if (choices.oneIn(2)) engine.setTraceSink(&surroundings);
    const bool loaded = engine.CreateCommandList(text);
    compare(engine, loaded, surroundings, text, locale);
    show(engine);
    checkLookups(engine.DataMemory());
    for (int i = 0; i < 16 && !choices.isSpent(); ++i) change(engine.DataMemory(), choices);
    checkLookups(engine.DataMemory());
    return 0;
}
