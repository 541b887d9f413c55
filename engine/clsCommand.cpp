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
namespace {

bool isAllowed(std::int32_t actualType, std::int32_t allowed) {
    return actualType != ptUndeclared && (actualType & allowed) == actualType;
}

}  // namespace

/// The parameters while they are bound: what the type test and its messages need to know of each.
struct clsCommand::Binding {
    struct Parameter {
        ItemRecord* item;
        std::int32_t actualType;
        const char16_t* begin;
        std::size_t length;

        std::u16string_view token() const { return {begin, length}; }
    };
    std::array<Parameter, maximumParameters> parameters;  // a statement pays for none that it does not have
    std::int32_t count;
    bool fits;  // all types so far
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
    BindParameters(tParamList, definition, binding);
    const std::int32_t count = binding.count;
    ItemRecord** const slots = script_->memory.allocate<ItemRecord*>(static_cast<std::size_t>(count));
    std::transform(binding.parameters.begin(), binding.parameters.begin() + count, slots,
                   [](const Binding::Parameter& parameter) { return parameter.item; });
    slots_ = slots;
    boundCount_ = static_cast<std::uint8_t>(count);

    bool fits = false;
    if (count != definition.ParamCount) {
        const bool tooMany = count > definition.ParamCount && count > 0;
        const std::u16string_view surplus =
            tooMany ? binding.parameters[static_cast<std::size_t>(count - 1)].token() : std::u16string_view();
        engine().SyntaxError(
            std::u16string(definition.Name) + u" requires " + decimal(definition.ParamCount) + u" parameters", surplus);
    } else {
        fits = binding.fits || CheckParameterTypes(binding);
    }
    TraceSink* const sink = engine().traceSink();
    if (sink != nullptr && (debugOptions() & doParsing) != 0) {
        const NumberLocale numbers = engine().locale();  // a copy: the sink may call back and have the locale read anew
        DebugPrintParamList(*sink, numbers);
    }
    return fits;
}

// One parameter more than the statement takes is enough to refuse it.
// A literal that another statement wrote as well gets an item of its own all the same: the lookup for an equal literal
// compares stored numbers with the literal's text, and a number never equals a text.
void clsCommand::BindParameters(std::u16string_view list, const FunctionDefinition& definition, Binding& binding) {
    std::int32_t count = 0;
    bool fits = true;
    while (!list.empty()) {
        std::u16string_view token;
        std::int32_t actualType = ptConstant | ptNumber;
        float number = 0;
        clsDataList& memory = script_->dataMemory;
        ItemRecord* item = nullptr;
        if (NextPlainNumber(list, token, number)) {
            item = &memory.AddNumber(number).record();
        } else {
            // Copies, since what other functions write to would be kept in memory on the way through the numbers too.
            std::u16string_view rest = list;
            token = NextParameter(rest);
            list = rest;
            std::int32_t type = ptUndeclared;
            item = &bindParameter(token, type).record();
            actualType = type;
        }
        if (count == maximumParameters) throw automation_error(ErrorNumber::SubscriptOutOfRange);
        const auto slot = static_cast<std::size_t>(count++);
        binding.parameters[slot] = {item, actualType, token.data(), token.size()};
        const std::int32_t allowed = definition.Params[slot].ParamType;
        fits = fits && isAllowed(actualType, allowed);
        if (count > definition.ParamCount) break;
    }
    binding.count = count;
    binding.fits = fits;
}

clsData clsCommand::bindParameter(std::u16string_view token, std::int32_t& actualType) {
    clsDataList& memory = script_->dataMemory;
    if (IsQuotedString(token)) {
        actualType = ptConstant | ptString;
        return memory.AddString(StripQuotes(token));
    }
    const NumberLocale& numbers = engine().locale();
    if (beginsAsName(token, numbers)) return bindName(token, actualType);
    const NumericReading reading(token, numbers);
    if (!reading.isNumber()) return bindName(reading.text(), actualType);
    actualType = ptConstant | ptNumber;
    return CreateLiteralItem(reading);
}

clsData clsCommand::CreateLiteralItem(const NumericReading& reading) const {
    // Kept: the item stays when the number is beyond a single.
    clsData literal = script_->dataMemory.AddItem({}, ptConstant | ptNumber, Value::ofInteger(0));
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
    return memory.AddItem(name, ptUndeclared, Value::ofInteger(-1));  // the type stays undeclared, as it came
}

// What is there to say of types that do not fit. The first failure ends it, unless every fault is wanted.
bool clsCommand::CheckParameterTypes(const Binding& binding) const {
    // A copy: who is told of a fault may have the catalogue built anew.
    const FunctionDefinition definition = functionDefinition(kind_);
    bool fits = true;
    for (std::int32_t i = 0; i < definition.ParamCount && (fits || engine().isChecking()); ++i) {
        const auto slot = static_cast<std::size_t>(i);
        const Binding::Parameter& parameter = binding.parameters[slot];
        const std::int32_t actual = parameter.actualType;
        const std::int32_t allowed = definition.Params[slot].ParamType;
        if (isAllowed(actual, allowed)) continue;
        if (actual == ptUndeclared && allowed == ptLabel) {
            engine().noteForwardReference(ItemStore::positionOf(*parameter.item), parameter.token());
        } else if (actual == ptUndeclared) {
            engine().SyntaxError(u"Undeclared identifier", parameter.token());
            fits = false;
        } else {
            engine().SyntaxError(u"Incorrect parameter type: " + decimal(i + 1), parameter.token());
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
