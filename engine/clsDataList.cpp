#include "engine/clsDataList.h"

#include <limits>
#include <string>

#include "platform/automation_error.h"
#include "platform/text_case.h"
#include "platform/value_rules.h"

namespace corvane {

clsDataList::~clsDataList() {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        Value::release(items_[i].initialType, items_[i].initial);
        Value::release(items_[i].currentType, items_[i].current);
    }
}

clsData clsDataList::AddItem(std::u16string_view identifier, std::int32_t typeCode, Value initialValue) {
    if (items_.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw automation_error(ErrorNumber::OutOfMemory);
    const auto position = static_cast<std::uint32_t>(items_.size());
    Record record;
    if (!identifier.empty()) {
        identifiers_.emplaceBack(identifier);
        record.identifier = static_cast<std::uint32_t>(identifiers_.size());
    }
    items_.emplaceBack(record);
    storeTypeCode(position, typeCode);
    Record& stored = items_[position];
    stored.initialType = initialValue.type();
    stored.initial = std::move(initialValue).detach();
    enterInIndex(position);
    return at(position);
}

void clsDataList::storeTypeCode(std::uint32_t position, std::int32_t typeCode) {
    const bool fits = typeCode >= 0 && typeCode < otherTypeCode;
    if (!fits) otherTypeCodes_[position] = typeCode;
    items_[position].typeCode = fits ? static_cast<std::uint16_t>(typeCode) : otherTypeCode;
}

void clsDataList::enterInIndex(std::uint32_t position) {
    const std::int32_t code = typeCode(position);
    if (code == ptUndeclared) ++undeclaredCount_;
    if (!NameIndex::knows(code)) {
        ++irregularCount_;
        return;
    }
    if (index_) insertInIndex(position);
}

// An index that lacks an item would deny it: one that cannot be completed is given up until the next lookup.
void clsDataList::insertInIndex(std::uint32_t position) {
    try {
        index_->insert(identifier(items_[position]), typeCode(position), position);
    } catch (...) {
        index_.reset();
        throw;
    }
}

void clsDataList::leaveIndex(std::uint32_t position) {
    const std::int32_t code = typeCode(position);
    if (code == ptUndeclared) --undeclaredCount_;
    if (!NameIndex::knows(code)) {
        --irregularCount_;
        return;
    }
    if (index_ && !index_->remove(identifier(items_[position]), code, position)) index_.reset();
}

clsData clsDataList::Item(std::int32_t tIndex) {
    if (tIndex < 0 || tIndex >= Count()) throw automation_error(ErrorNumber::InvalidProcedureCall);
    return at(static_cast<std::uint32_t>(tIndex));
}

clsData clsDataList::GetItemPtr(std::int32_t tIndex) {
    if (tIndex < 1 || tIndex > Count()) throw automation_error(ErrorNumber::InvalidProcedureCall);
    return at(static_cast<std::uint32_t>(tIndex - 1));
}

bool clsDataList::FindItem(std::u16string_view tParamName, std::int32_t& tIndex, std::int32_t tRequiredParamType) {
    if (irregularCount_ != 0) return findByWalk(tParamName, tIndex, tRequiredParamType);
    if (!index_) {
        index_.emplace();
        for (std::uint32_t i = 0; i < items_.size(); ++i) insertInIndex(i);
    }
    const std::uint32_t position = index_->find(tParamName, tRequiredParamType);
    tIndex = position == NameIndex::none ? Count() : static_cast<std::int32_t>(position);
    return position != NameIndex::none;
}

bool clsDataList::findByWalk(std::u16string_view name, std::int32_t& index, std::int32_t filter) const {
    for (index = 0; index < Count(); ++index) {
        const auto position = static_cast<std::uint32_t>(index);
        if ((typeCode(position) & filter) != 0 && equalIgnoringCase(identifier(items_[position]), name)) return true;
    }
    return false;
}

bool clsDataList::FindItemValue(std::u16string_view tIdentifier, std::u16string_view tValue, std::int32_t& tIndex,
                                std::int32_t tRequiredParamType) const {
    for (tIndex = 0; tIndex < Count(); ++tIndex) {
        const auto position = static_cast<std::uint32_t>(tIndex);
        const Record& record = items_[position];
        if (record.initialType == ValueType::Text &&
            Value::copyOf(record.initialType, record.initial).textView() == tValue &&
            typeCode(position) == tRequiredParamType && identifier(record) == tIdentifier)
            return true;
    }
    return false;
}

bool clsDataList::InitialiseData() {
    for (std::uint32_t i = 0; i < items_.size(); ++i)
        if (!at(i).Initialise()) return false;
    return true;
}

void clsDataList::DebugPrint(TraceSink& sink, const NumberLocale& locale) const {
    std::u16string line;
    for (std::uint32_t i = 0; i < items_.size(); ++i) {
        const Record& record = items_[i];
        line.assign(toText(Value::ofLong(static_cast<std::int32_t>(i)), locale).view());
        line.append(u": ").append(identifier(record)).append(u", ");
        line.append(toText(Value::ofLong(typeCode(i)), locale).view()).append(u", ");
        line.append(toText(Value::copyOf(record.initialType, record.initial), locale).view());
        sink.trace(doTables, line);
    }
}

void clsDataList::DisplayInListView(TableView& view, const NumberLocale& locale) const {
    for (std::uint32_t i = 0; i < items_.size(); ++i) {
        const Record& record = items_[i];
        view.addRow(toText(Value::ofLong(static_cast<std::int32_t>(i)), locale).view());
        view.setSubItem(1, identifier(record));
        view.setSubItem(2, toText(Value::ofLong(typeCode(i)), locale).view());
        view.setSubItem(3, toText(Value::copyOf(record.initialType, record.initial), locale).view());
    }
}

const clsDataList::EditProperties& clsDataList::edit(std::uint32_t position) const {
    static const EditProperties untouched;
    const auto found = edits_.find(position);
    return found == edits_.end() ? untouched : found->second;
}

void clsData::setIdentifier(std::u16string_view identifier) {
    Text name(identifier);
    clsDataList::Record& record = list_->items_[position_];
    if (record.identifier == 0) {
        list_->identifiers_.emplaceBack();
        list_->leaveIndex(position_);
        record.identifier = static_cast<std::uint32_t>(list_->identifiers_.size());
    } else {
        list_->leaveIndex(position_);
        list_->index_.reset();  // its entry may point into the name that goes
    }
    list_->identifiers_[record.identifier - 1] = std::move(name);
    list_->enterInIndex(position_);
}

void clsData::setParameterType(std::int32_t typeCode) {
    list_->leaveIndex(position_);
    list_->storeTypeCode(position_, typeCode);
    list_->enterInIndex(position_);
}

void clsData::setCurrentValueAndTell(Value value) {
    const Value told = value;
    storeCurrentValue(std::move(value));
    list_->listener_->CurrentValueChanged(*this, told);
}

void clsData::setInitialValue(Value value) {
    clsDataList::Record& record = list_->items_[position_];
    const Value previous = Value::adopt(record.initialType, record.initial);
    record.initialType = value.type();
    record.initial = std::move(value).detach();
}

bool clsData::Initialise() {
    clsDataList::Record& record = list_->items_[position_];
    const Value previous = Value::adopt(record.currentType, record.current);
    Value::retain(record.initialType, record.initial);
    record.currentType = record.initialType;
    record.current = record.initial;
    return true;
}

bool clsData::IsEditable() const { return list_->edit(position_).isEditable; }
void clsData::setIsEditable(bool editable) { list_->edits_[position_].isEditable = editable; }
float clsData::MinVal() const { return list_->edit(position_).minimum; }
void clsData::setMinVal(float minimum) { list_->edits_[position_].minimum = minimum; }
float clsData::MaxVal() const { return list_->edit(position_).maximum; }
void clsData::setMaxVal(float maximum) { list_->edits_[position_].maximum = maximum; }
std::u16string_view clsData::Units() const { return list_->edit(position_).units.view(); }
void clsData::setUnits(std::u16string_view units) { list_->edits_[position_].units = Text(units); }
std::u16string_view clsData::PromptString() const { return list_->edit(position_).prompt.view(); }
void clsData::setPromptString(std::u16string_view prompt) { list_->edits_[position_].prompt = Text(prompt); }

}  // namespace corvane
