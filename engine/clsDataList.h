#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "engine/block_vector.h"
#include "engine/engine_listener.h"
#include "engine/enumerations.h"
#include "engine/name_index.h"
#include "engine/table_view.h"
#include "engine/trace.h"
#include "platform/number_locale.h"
#include "platform/value.h"

namespace corvane {

class clsDataList;

/// A memory item: a named or anonymous value of a script. This is a light reference to the item in its list, to be
/// passed by value; two are equal when they name the same item. It is valid as long as its list.
class clsData {
public:
    /// The name as declared or first used; empty for a literal. Valid until the name is set anew.
    std::u16string_view Identifier() const;
    void setIdentifier(std::u16string_view identifier);

    /// The item's type code, one combination of enumParamType bits; 1 (undeclared) at first.
    std::int32_t ParameterType() const;
    void setParameterType(std::int32_t typeCode);

    /// The value during a run; the 16-bit integer 0 until a run or an assignment.
    Value CurrentValue() const;
    /// Raises CurrentValueChanged.
    void setCurrentValue(Value value);

    /// The value that a run starts from.
    Value InitialValue() const;
    void setInitialValue(Value value);

    /// Limits and texts for an edit by the host. No operation of the engine sets them.
    bool IsEditable() const;
    void setIsEditable(bool editable);
    float MinVal() const;
    void setMinVal(float minimum);
    float MaxVal() const;
    void setMaxVal(float maximum);
    std::u16string_view Units() const;
    void setUnits(std::u16string_view units);
    std::u16string_view PromptString() const;
    void setPromptString(std::u16string_view prompt);

    /// Copies the initial value into the current one, without CurrentValueChanged. Always true.
    bool Initialise();

    /// Its position in the list, from 0.
    std::uint32_t position() const { return position_; }

    friend bool operator==(const clsData&, const clsData&) = default;

private:
    friend class clsDataList;
    void storeCurrentValue(Value value);
    void setCurrentValueAndTell(Value value);
    clsData(clsDataList& list, std::uint32_t position) : list_(&list), position_(position) {}

    clsDataList* list_;
    std::uint32_t position_;
};

/// The data memory of one loaded script: its items in the order in which they were entered. Items are never removed.
class clsDataList {
public:
    /// `listener` is where CurrentValueChanged is told, if it points to one at that time; it outlives the list.
    explicit clsDataList(EngineListener* const& listener = nobody) : listener_(listener) {}
    clsDataList(const clsDataList&) = delete;
    clsDataList& operator=(const clsDataList&) = delete;
    ~clsDataList();

    /// Appends an item without a name, of type 1, with both values the 16-bit integer 0. Throws std::bad_alloc.
    clsData AddItem() { return AddItem({}, ptUndeclared, Value()); }
    /// Appends an item that has its name, type and initial value from the start.
    clsData AddItem(std::u16string_view identifier, std::int32_t typeCode, Value initialValue);

    /// The item at a position from 1 to Count; error 5 elsewhere.
    clsData GetItemPtr(std::int32_t tIndex);
    /// The item at a position from 0 to Count - 1; error 5 elsewhere.
    clsData Item(std::int32_t tIndex);
    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }

    /// Looks for the first item that bears `tParamName` in any case and whose type has a bit of `tRequiredParamType`.
    /// Sets `tIndex` to its position from 0, or to Count when there is none. The empty name finds the first literal.
    bool FindItem(std::u16string_view tParamName, std::int32_t& tIndex, std::int32_t tRequiredParamType = 255);

    /// Looks for the first item whose initial value equals the text `tValue`, whose type is `tRequiredParamType`
    /// exactly and whose name is `tIdentifier` in this very case. A number never equals a text, so no numeric item is
    /// found.
    bool FindItemValue(std::u16string_view tIdentifier, std::u16string_view tValue, std::int32_t& tIndex,
                       std::int32_t tRequiredParamType) const;

    /// Gives every item its initial value as the current one. Always true.
    bool InitialiseData();

    /// Traces position, name, type and initial value of each item, as lines of the category doTables.
    void DebugPrint(TraceSink& sink, const NumberLocale& locale) const;

    /// Adds a row for each item: position from 0, name, type and initial value.
    void DisplayInListView(TableView& view, const NumberLocale& locale) const;

    /// The number of items handed to the host for editing; the owner keeps it.
    std::int32_t EditableCount() const { return editableCount_; }
    void setEditableCount(std::int32_t count) { editableCount_ = count; }

    /// How many items are of type 1.
    std::int32_t undeclaredCount() const { return undeclaredCount_; }

    /// The item at a position that is known to exist.
    clsData at(std::uint32_t position) { return {*this, position}; }

private:
    friend class clsData;

    // Small, since first touch of memory is a large part of a load: rarely used members live in `edits_`, names apart.
    struct Record {
        Value::Payload initial;
        Value::Payload current;
        std::uint32_t identifier = 0;  // in `identifiers_`, counted from 1; 0 is the empty name
        std::uint16_t typeCode = 0;    // `otherTypeCode`: kept in `otherTypeCodes_`
        ValueType initialType = ValueType::Integer;
        ValueType currentType = ValueType::Integer;
    };
    struct EditProperties {
        bool isEditable = false;
        float minimum = 0;
        float maximum = 0;
        Text units;
        Text prompt;
    };
    static constexpr std::uint16_t otherTypeCode = 0xFFFF;
    static inline EngineListener* const nobody = nullptr;

    std::u16string_view identifier(const Record& record) const;
    std::int32_t typeCode(std::uint32_t position) const;
    void storeTypeCode(std::uint32_t position, std::int32_t typeCode);
    const EditProperties& edit(std::uint32_t position) const;
    bool findByWalk(std::u16string_view name, std::int32_t& index, std::int32_t filter) const;
    void enterInIndex(std::uint32_t position);
    void insertInIndex(std::uint32_t position);
    void leaveIndex(std::uint32_t position);

    EngineListener* const& listener_;
    BlockVector<Record> items_;
    BlockVector<Text> identifiers_;
    std::unordered_map<std::uint32_t, EditProperties> edits_;
    std::unordered_map<std::uint32_t, std::int32_t> otherTypeCodes_;
    std::optional<NameIndex> index_{std::in_place};  // none: to be built anew by the next lookup
    std::int32_t irregularCount_ = 0;                // items of a type that the index does not know
    std::int32_t undeclaredCount_ = 0;
    std::int32_t editableCount_ = 0;
};

inline Value clsData::CurrentValue() const {
    const clsDataList::Record& record = list_->items_[position_];
    return Value::copyOf(record.currentType, record.current);
}

inline void clsData::storeCurrentValue(Value value) {
    clsDataList::Record& record = list_->items_[position_];
    const Value previous = Value::adopt(record.currentType, record.current);
    record.currentType = value.type();
    record.current = std::move(value).detach();
}

inline void clsData::setCurrentValue(Value value) {
    if (list_->listener_ == nullptr)
        storeCurrentValue(std::move(value));
    else
        setCurrentValueAndTell(std::move(value));
}

inline Value clsData::InitialValue() const {
    const clsDataList::Record& record = list_->items_[position_];
    return Value::copyOf(record.initialType, record.initial);
}

inline std::int32_t clsData::ParameterType() const { return list_->typeCode(position_); }

inline std::u16string_view clsDataList::identifier(const Record& record) const {
    return record.identifier == 0 ? std::u16string_view() : identifiers_[record.identifier - 1].view();
}

inline std::u16string_view clsData::Identifier() const { return list_->identifier(list_->items_[position_]); }

inline std::int32_t clsDataList::typeCode(std::uint32_t position) const {
    const std::uint16_t code = items_[position].typeCode;
    return code != otherTypeCode ? code : otherTypeCodes_.at(position);
}

}  // namespace corvane
