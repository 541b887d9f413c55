#pragma once

// `ParamPtr` is defined in loaded_script.h, which knows where the items are.

#include <cstdint>
#include <span>
#include <string_view>

#include "engine/clsDataList.h"
#include "engine/enumerations.h"
#include "engine/trace.h"

namespace corvane {

class clsCommandList;
class NumericReading;
struct FunctionDefinition;
struct LoadedScript;

/// One statement after binding: its kind and, for each parameter, the memory item that supplies or receives the value.
/// The items are shared: what one statement writes, every statement that names the same item reads.
class clsCommand {
public:
    /// The statement belongs to the script that `owner` has loaded, or is loading, at this time.
    explicit clsCommand(clsCommandList& owner);

    enumCommandType CommandType() const { return static_cast<enumCommandType>(kind_); }

    /// Recognises and binds one trimmed statement line. False for an unknown keyword, without a message, and for
    /// parameters that do not fit, with a message through SyntaxError. More parameters than there are slots fail with
    /// error 9.
    bool ProcessKeyword(std::u16string_view tLineStr);

    /// Binds a parameter list to the kind in CommandType.
    bool SetParameters(std::u16string_view tParamList);

    /// The current value of the item in slot `tIndex`. Error 9 outside 0 to 24, error 91 for a slot that is not bound.
    Value ParamValue(std::int32_t tIndex) const { return ParamPtr(tIndex).CurrentValue(); }
    /// Assigns the item's current value. Errors as above.
    void setParamValue(std::int32_t tIndex, Value value) const { ParamPtr(tIndex).setCurrentValue(std::move(value)); }
    /// The item itself. Errors as above.
    inline clsData ParamPtr(std::int32_t tIndex) const;

    /// What is kept of that item. Errors as above.
    ItemRecord& slotRecord(std::int32_t tIndex) const {
        if (tIndex < 0 || tIndex >= boundCount_) [[unlikely]]
            refuseSlot(tIndex);
        return *slots_[tIndex];
    }
    /// The same for all bound parameters.
    std::span<ItemRecord* const> slots() const { return {slots_, boundCount_}; }
    /// Fails as a slot fails that does not exist, or is not bound.
    [[noreturn]] static void refuseSlot(std::int32_t slot);
    /// The script that the statement belongs to.
    LoadedScript& script() const { return *script_; }

    /// Traces one line for each bound parameter.
    void DebugPrintParamList(TraceSink& sink, const NumberLocale& locale) const;

    /// Writes the parameters into the sub-items 2 to 26 of the view's last row; unused ones hold a blank.
    void DisplayInListItem(TableView& view, const NumberLocale& locale) const;

    /// The number of parameters bound.
    std::int32_t boundCount() const { return boundCount_; }

    /// The line of the script that the statement stands on, from 0.
    std::int32_t line() const { return line_; }

private:
    struct Binding;

    bool ProcessParameterList(std::u16string_view afterKeyword);
    bool CheckParameterTypes(const Binding& binding) const;
    void BindParameters(std::u16string_view list, const FunctionDefinition& definition, Binding& binding);
    clsData bindParameter(std::u16string_view token, std::int32_t& actualType);
    clsData bindName(std::u16string_view name, std::int32_t& actualType);
    clsData CreateLiteralItem(const NumericReading& reading) const;
    clsCommandList& engine() const;

    LoadedScript* script_;
    ItemRecord* const* slots_ = nullptr;
    std::int32_t line_;
    std::uint8_t kind_ = ctUnknown;
    std::uint8_t boundCount_ = 0;
};

}  // namespace corvane
