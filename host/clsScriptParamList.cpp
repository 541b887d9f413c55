#include "host/clsScriptParamList.h"

#include "platform/subscript.h"

namespace corvane {

float clsScriptParamList::SingleValue(std::int32_t tIndex) const { return singles_[subscript(tIndex, slotCount)]; }

void clsScriptParamList::setSingleValue(std::int32_t tIndex, float value) {
    singles_[subscript(tIndex, slotCount)] = value;
}

std::u16string_view clsScriptParamList::StringValue(std::int32_t tIndex) const {
    return strings_[subscript(tIndex, slotCount)].view();
}

void clsScriptParamList::setStringValue(std::int32_t tIndex, std::u16string_view value) {
    strings_[subscript(tIndex, slotCount)] = Text(value);
}

bool clsScriptParamList::BooleanValue(std::int32_t tIndex) const { return booleans_[subscript(tIndex, slotCount)]; }

void clsScriptParamList::setBooleanValue(std::int32_t tIndex, bool value) {
    booleans_[subscript(tIndex, slotCount)] = value;
}

}  // namespace corvane
