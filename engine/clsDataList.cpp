#include "engine/clsDataList.h"

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
    if (!identifier.empty()) identifiers_.emplaceBack(identifier);
    ItemRecord& record = items_.append(0);
    record.begin(std::move(initialValue));
    if (!identifier.empty()) record.identifier = static_cast<std::uint32_t>(identifiers_.size());
    storeTypeCode(record, typeCode);
    enterInIndex(record);
    return itemOf(record);
}

clsData clsDataList::AddString(Text text) {
    const clsData literal = addLiteral(ptConstant | ptString);
    literal.record().begin(Value::ofText(std::move(text)));
    return literal;
}

void clsDataList::storeTypeCode(ItemRecord& record, std::int32_t typeCode) {
    const bool fits = typeCode >= 0 && typeCode < ItemRecord::otherTypeCode;
    if (!fits) otherTypeCodes_[ItemStore::positionOf(record)] = typeCode;
    record.typeCode = fits ? static_cast<std::uint8_t>(typeCode) : ItemRecord::otherTypeCode;
}

void clsDataList::enterInIndex(const ItemRecord& record) {
    const std::int32_t code = typeCode(record);
    if (code == ptUndeclared) ++undeclaredCount_;
    if (!NameIndex::knows(code)) {
        ++irregularCount_;
        return;
    }
    if (index_) insertInIndex(record);
}

// An index that lacks an item would deny it: one that cannot be completed is given up until the next lookup.
void clsDataList::insertInIndex(const ItemRecord& record) {
    try {
        index_->insert(identifier(record), typeCode(record), ItemStore::positionOf(record));
    } catch (...) {
        index_.reset();
        throw;
    }
}

void clsDataList::leaveIndex(const ItemRecord& record) {
    const std::int32_t code = typeCode(record);
    if (code == ptUndeclared) --undeclaredCount_;
    if (!NameIndex::knows(code)) {
        --irregularCount_;
        return;
    }
    if (index_ && !index_->remove(identifier(record), code, ItemStore::positionOf(record))) index_.reset();
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
        for (std::size_t i = 0; i < items_.size(); ++i) insertInIndex(items_[i]);
    }
    const std::uint32_t position = index_->find(tParamName, tRequiredParamType);
    tIndex = position == NameIndex::none ? Count() : static_cast<std::int32_t>(position);
    return position != NameIndex::none;
}

bool clsDataList::findByWalk(std::u16string_view name, std::int32_t& index, std::int32_t filter) const {
    for (index = 0; index < Count(); ++index) {
        const ItemRecord& record = items_[static_cast<std::size_t>(index)];
        if ((typeCode(record) & filter) != 0 && equalIgnoringCase(identifier(record), name)) return true;
    }
    return false;
}

bool clsDataList::FindItemValue(std::u16string_view tIdentifier, std::u16string_view tValue, std::int32_t& tIndex,
                                std::int32_t tRequiredParamType) const {
    for (tIndex = 0; tIndex < Count(); ++tIndex) {
        const ItemRecord& record = items_[static_cast<std::size_t>(tIndex)];
        if (record.initialType != ValueType::Text || typeCode(record) != tRequiredParamType ||
            identifier(record) != tIdentifier)
            continue;
        const Value initial = Value::copyOf(record.initialType, record.initial);
        if (initial.textView() == tValue) return true;
    }
    return false;
}

bool clsDataList::InitialiseData() {
    for (std::uint32_t i = 0; i < items_.size(); ++i) at(i).Initialise();
    return true;
}

void clsDataList::DebugPrint(TraceSink& sink, const NumberLocale& locale) const {
    std::u16string line;
    for (std::uint32_t i = 0; i < items_.size(); ++i) {
        const ItemRecord& record = items_[i];
        line.assign(toText(Value::ofLong(static_cast<std::int32_t>(i)), locale).view());
        line.append(u": ").append(identifier(record)).append(u", ");
        line.append(toText(Value::ofLong(typeCode(record)), locale).view()).append(u", ");
        line.append(toText(Value::copyOf(record.initialType, record.initial), locale).view());
        sink.trace(doTables, line);
    }
}

void clsDataList::DisplayInListView(TableView& view, const NumberLocale& locale) const {
    for (std::uint32_t i = 0; i < items_.size(); ++i) {
        const ItemRecord& record = items_[i];
        view.addRow(toText(Value::ofLong(static_cast<std::int32_t>(i)), locale).view());
        view.setSubItem(1, identifier(record));
        view.setSubItem(2, toText(Value::ofLong(typeCode(record)), locale).view());
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
    if (record_->identifier == 0) {
        list_->identifiers_.emplaceBack();
        list_->leaveIndex(*record_);
        record_->identifier = static_cast<std::uint32_t>(list_->identifiers_.size());
    } else {
        list_->leaveIndex(*record_);
        list_->index_.reset();  // its entry may point into the name that goes
    }
    list_->identifiers_[record_->identifier - 1] = std::move(name);
    list_->enterInIndex(*record_);
}

void clsData::setParameterType(std::int32_t typeCode) {
    list_->leaveIndex(*record_);
    list_->storeTypeCode(*record_, typeCode);
    list_->enterInIndex(*record_);
}

void clsData::setCurrentValueAndTell(clsData item, Value value) {
    const Value told = value;
    item.storeCurrentValue(std::move(value));
    item.list_->listener_->CurrentValueChanged(item, told);
}

void clsData::assign(clsData item, float number) { item.setCurrentValue(Value::ofSingle(number)); }

void clsData::setInitialValue(Value value) {
    const Value previous = Value::adopt(record_->initialType, record_->initial);
    record_->initialType = value.type();
    record_->initial = std::move(value).detach();
}

bool clsData::Initialise() {
    const Value previous = Value::adopt(record_->currentType, record_->current);
    Value::retain(record_->initialType, record_->initial);
    record_->currentType = record_->initialType;
    record_->current = record_->initial;
    return true;
}

bool clsData::IsEditable() const { return list_->edit(position()).isEditable; }
void clsData::setIsEditable(bool editable) { list_->edits_[position()].isEditable = editable; }
float clsData::MinVal() const { return list_->edit(position()).minimum; }
void clsData::setMinVal(float minimum) { list_->edits_[position()].minimum = minimum; }
float clsData::MaxVal() const { return list_->edit(position()).maximum; }
void clsData::setMaxVal(float maximum) { list_->edits_[position()].maximum = maximum; }
std::u16string_view clsData::Units() const { return list_->edit(position()).units.view(); }
void clsData::setUnits(std::u16string_view units) { list_->edits_[position()].units = Text(units); }
std::u16string_view clsData::PromptString() const { return list_->edit(position()).prompt.view(); }
void clsData::setPromptString(std::u16string_view prompt) { list_->edits_[position()].prompt = Text(prompt); }

}  // namespace corvane
