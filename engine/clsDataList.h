#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "engine/block_vector.h"
#include "engine/engine_listener.h"
#include "engine/enumerations.h"
#include "engine/item_store.h"
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
    Value CurrentValue() const { return Value(currentView()); }
    /// The same, to be looked at; valid until the next assignment.
    ValueView currentView() const;
    /// Raises CurrentValueChanged.
    void setCurrentValue(Value value) const;
    /// The same with a single, which is what most statements assign.
    void setCurrentSingle(float number) const;

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

    /// What the list keeps of it.
    ItemRecord& record() const { return *record_; }

    /// Its position in the list, from 0.
    std::uint32_t position() const { return ItemStore::positionOf(*record_); }

    friend bool operator==(const clsData&, const clsData&) = default;

private:
    friend class clsDataList;
    void storeCurrentValue(Value value) const;
    static void setCurrentValueAndTell(clsData item, Value value);
    static void assign(clsData item, float number);
    clsData(clsDataList& list, ItemRecord& record) : list_(&list), record_(&record) {}

    clsDataList* list_;
    ItemRecord* record_;
};

/// The data memory of one loaded script: its items in the order in which they were entered. Items are never removed.
class clsDataList {
public:
    /// `listener` is where CurrentValueChanged is told, if it points to one at that time. Both outlive the list.
    explicit clsDataList(SlabMemory& memory, EngineListener* const& listener = nobody)
        : listener_(listener), items_(memory), identifiers_(memory) {}
    clsDataList(const clsDataList&) = delete;
    clsDataList& operator=(const clsDataList&) = delete;
    ~clsDataList();

    /// Appends an item without a name, of type 1, with both values the 16-bit integer 0. Throws std::bad_alloc.
    clsData AddItem() { return AddItem({}, ptUndeclared, Value()); }
    /// Appends an item that has its name, type and initial value from the start.
    clsData AddItem(std::u16string_view identifier, std::int32_t typeCode, Value initialValue);

    /// Appends a literal, a nameless constant: a number, by far the most frequent, or a string.
    clsData AddNumber(float number);
    clsData AddString(Text text);

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
    clsData at(std::uint32_t position) { return {*this, items_[position]}; }
    /// The item of one of this list's records.
    clsData itemOf(ItemRecord& record) { return {*this, record}; }

private:
    friend class clsData;

    struct EditProperties {
        bool isEditable = false;
        float minimum = 0;
        float maximum = 0;
        Text units;
        Text prompt;
    };
    static inline EngineListener* const nobody = nullptr;

    clsData addLiteral(std::uint8_t typeCode);
    std::u16string_view identifier(const ItemRecord& record) const;
    std::int32_t typeCode(const ItemRecord& record) const;
    void storeTypeCode(ItemRecord& record, std::int32_t typeCode);
    const EditProperties& edit(std::uint32_t position) const;
    bool findByWalk(std::u16string_view name, std::int32_t& index, std::int32_t filter) const;
    void enterInIndex(const ItemRecord& record);
    void insertInIndex(const ItemRecord& record);
    void leaveIndex(const ItemRecord& record);

    EngineListener* const& listener_;
    ItemStore items_;
    BlockVector<Text> identifiers_;
    std::unordered_map<std::uint32_t, EditProperties> edits_;
    std::unordered_map<std::uint32_t, std::int32_t> otherTypeCodes_;
    std::optional<NameIndex> index_{std::in_place};  // none: to be built anew by the next lookup
    std::int32_t irregularCount_ = 0;                // items of a type that the index does not know
    std::int32_t undeclaredCount_ = 0;
    std::int32_t editableCount_ = 0;
};

[[gnu::always_inline]] inline clsData clsDataList::addLiteral(std::uint8_t typeCode) {
    ItemRecord& record = items_.append(typeCode);
    if (index_) index_->appendNameless(typeCode, static_cast<std::uint32_t>(items_.size() - 1));
    return itemOf(record);
}

inline clsData clsDataList::AddNumber(float number) {
    const clsData literal = addLiteral(ptConstant | ptNumber);
    literal.record().begin(Value::ofSingle(number));
    return literal;
}

inline ValueView clsData::currentView() const { return {record_->currentType, record_->current}; }

inline void clsData::storeCurrentValue(Value value) const {
    const Value previous = Value::adopt(record_->currentType, record_->current);
    record_->currentType = value.type();
    record_->current = std::move(value).detach();
}

inline void clsData::setCurrentValue(Value value) const {
    if (list_->listener_ == nullptr)
        storeCurrentValue(std::move(value));
    else
        setCurrentValueAndTell(*this, std::move(value));
}

inline void clsData::setCurrentSingle(float number) const {
    if (record_->currentType == ValueType::Single && list_->listener_ == nullptr) [[likely]]
        record_->current = Value::ofSingle(number).detach();
    else
        assign(*this, number);
}

inline Value clsData::InitialValue() const { return Value::copyOf(record_->initialType, record_->initial); }

inline std::int32_t clsData::ParameterType() const { return list_->typeCode(*record_); }

inline std::u16string_view clsDataList::identifier(const ItemRecord& record) const {
    return record.identifier == 0 ? std::u16string_view() : identifiers_[record.identifier - 1].view();
}

inline std::u16string_view clsData::Identifier() const { return list_->identifier(*record_); }

inline std::int32_t clsDataList::typeCode(const ItemRecord& record) const {
    const std::uint8_t code = record.typeCode;
    return code != ItemRecord::otherTypeCode ? code : otherTypeCodes_.at(ItemStore::positionOf(record));
}

}  // namespace corvane
