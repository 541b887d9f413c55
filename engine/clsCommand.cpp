#include "engine/clsCommand.h"

#include <algorithm>
#include <array>
#include <string>

#include "engine/clsCommandList.h"
#include "engine/loaded_script.h"
#include "engine/modCommand.h"
#include "engine/numeric_reading.h"
#include "engine/text_utilities.h"
#include "platform/automation_error.h"
#include "platform/value_rules.h"

namespace corvane {

/// The parameters while they are bound: what the type test and its messages need to know of each.
struct clsCommand::Binding {
    std::array<ItemRecord*, maximumParameters> slots;
    std::array<std::int32_t, maximumParameters> actualTypes;
    std::array<std::u16string_view, maximumParameters> tokens;
};

clsCommand::clsCommand(clsCommandList& owner) : script_(&owner.script()), line_(owner.currentLine()) {}

clsCommandList& clsCommand::engine() const { return script_->engine; }

void clsCommand::refuseSlot(std::int32_t slot) {
    const bool exists = slot >= 0 && slot < maximumParameters;
    throw automation_error(exists ? ErrorNumber::ObjectNotSet : ErrorNumber::SubscriptOutOfRange);
}

bool clsCommand::ProcessKeyword(std::u16string_view tLineStr) {
    std::u16string_view rest = tLineStr;
    const std::u16string_view keyword = SplitAtOpenBracket(rest);
    // The catalogue finds its first record without a name for an empty keyword; no statement has such a kind.
    const std::int32_t kind = keyword.empty() ? ctUnknown : FunctionTypeFromName(keyword);
    if (kind == ctUnknown) return false;
    kind_ = static_cast<std::uint8_t>(kind);
    return ProcessParameterList(rest);
}

bool clsCommand::ProcessParameterList(std::u16string_view afterKeyword) {
    return SetParameters(SplitAtCloseBracket(afterKeyword));
}

// Kept: items made for parameters stay in the data memory when the statement is then refused.
bool clsCommand::SetParameters(std::u16string_view tParamList) {
    const FunctionDefinition& definition = functionDefinition(kind_);
    Binding binding;
    std::int32_t count = 0;
    std::u16string_view rest = tParamList;
    while (!rest.empty()) {
        std::u16string_view token;
        std::int32_t actualType = 0;
        const clsData item = bindNext(rest, token, actualType);
        if (count == maximumParameters) throw automation_error(ErrorNumber::SubscriptOutOfRange);
        const auto slot = static_cast<std::size_t>(count++);
        binding.slots[slot] = &item.record();
        binding.actualTypes[slot] = actualType;
        binding.tokens[slot] = token;
        if (count > definition.ParamCount) break;
    }
    ItemRecord** slots = script_->slots.allocate(static_cast<std::size_t>(count));
    std::copy_n(binding.slots.begin(), count, slots);
    slots_ = slots;
    boundCount_ = static_cast<std::uint8_t>(count);

    bool fits = false;
    if (count != definition.ParamCount) {
        const bool tooMany = count > definition.ParamCount && count > 0;
        const std::u16string_view surplus =
            tooMany ? binding.tokens[static_cast<std::size_t>(count - 1)] : std::u16string_view();
        engine().SyntaxError(
            std::u16string(definition.Name) + u" requires " + decimal(definition.ParamCount) + u" parameters", surplus);
    } else {
        fits = CheckParameterTypes(binding);
    }
    TraceSink* const sink = engine().traceSink();
    if (sink != nullptr && (debugOptions() & doParsing) != 0) {
        const NumberLocale numbers = engine().locale();  // a copy: the sink may call back and have the locale read anew
        DebugPrintParamList(*sink, numbers);
    }
    return fits;
}

// A literal that another statement wrote as well gets an item of its own all the same: the lookup for an equal literal
// compares stored numbers with the literal's text, and a number never equals a text.
inline clsData clsCommand::bindNext(std::u16string_view& rest, std::u16string_view& token, std::int32_t& actualType) {
    float number = 0;
    actualType = ptConstant | ptNumber;
    if (NextPlainNumber(rest, token, number)) return script_->dataMemory.AddLiteral(Value::ofSingle(number));
    token = NextParameter(rest);
    return bindParameter(token, actualType);
}

clsData clsCommand::bindParameter(std::u16string_view token, std::int32_t& actualType) {
    clsDataList& memory = script_->dataMemory;
    if (IsQuotedString(token)) {
        actualType = ptConstant | ptString;
        return memory.AddLiteral(Value::ofText(StripQuotes(token)));
    }
    const NumberLocale& numbers = engine().locale();
    if (beginsAsName(token, numbers)) return bindName(token, actualType);
    const NumericReading reading(token, numbers);
    if (!reading.isNumber()) return bindName(reading.text(), actualType);
    actualType = ptConstant | ptNumber;
    return CreateLiteralItem(reading);
}

clsData clsCommand::CreateLiteralItem(const NumericReading& reading) const {
    clsData literal =
        script_->dataMemory.AddLiteral(Value::ofInteger(0));  // Kept: stays when the number is beyond a single
    literal.setInitialValue(Value::ofSingle(reading.single(engine().locale())));
    return literal;
}

clsData clsCommand::bindName(std::u16string_view name, std::int32_t& actualType) {
    clsDataList& memory = script_->dataMemory;
    // Kept: an empty parameter finds the first literal, since literals have no name.
    std::int32_t position = 0;
    if (memory.FindItem(name, position)) {
        const clsData item = memory.Item(position);
        actualType = item.ParameterType();
        return item;
    }
    actualType = ptUndeclared;
    return memory.AddItem(name, ptUndeclared, Value::ofInteger(-1));
}

// The first failure ends the test, unless every fault is wanted.
bool clsCommand::CheckParameterTypes(const Binding& binding) const {
    const FunctionDefinition& definition = functionDefinition(kind_);
    bool fits = true;
    for (std::int32_t i = 0; i < definition.ParamCount && (fits || engine().isChecking()); ++i) {
        const auto slot = static_cast<std::size_t>(i);
        const std::int32_t actual = binding.actualTypes[slot];
        const std::int32_t allowed = definition.Params[slot].ParamType;
        if (actual == ptUndeclared && allowed == ptLabel) {
            engine().noteForwardReference(ItemStore::positionOf(*binding.slots[slot]), binding.tokens[slot]);
        } else if (actual == ptUndeclared) {
            engine().SyntaxError(u"Undeclared identifier", binding.tokens[slot]);
            fits = false;
        } else if ((actual & allowed) != actual) {
            engine().SyntaxError(u"Incorrect parameter type: " + decimal(i + 1), binding.tokens[slot]);
            fits = false;
        }
    }
    return fits;
}

void clsCommand::DebugPrintParamList(TraceSink& sink, const NumberLocale& locale) const {
    for (std::int32_t i = 0; i < boundCount_; ++i) {
        const clsData item = ParamPtr(i);
        std::u16string line;
        if (item.Identifier().empty())
            line.append(u"            Data: ").append(toText(item.InitialValue(), locale).view());
        else
            line.append(u"      Identifier: ").append(item.Identifier());
        sink.trace(doParsing, line);
    }
}

void clsCommand::DisplayInListItem(TableView& view, const NumberLocale& locale) const {
    constexpr int firstColumn = 2;
    for (int i = 0; i < maximumParameters; ++i) view.setSubItem(firstColumn + i, u" ");
    for (std::int32_t i = 0; i < boundCount_; ++i) {
        const clsData item = ParamPtr(i);
        if (item.ParameterType() == ptLabel) {
            std::u16string text(toText(item.InitialValue(), locale).view());
            text.append(u" - (Label ").append(item.Identifier()).append(u")");
            view.setSubItem(firstColumn + i, text);
        } else if (item.Identifier().empty()) {
            view.setSubItem(firstColumn + i, toText(item.InitialValue(), locale).view());
        } else {
            view.setSubItem(firstColumn + i, item.Identifier());
        }
    }
}

}  // namespace corvane
