#include "host/clsDataSetParameters.h"

#include "platform/subscript.h"

namespace corvane {

void clsDataSetParameters::AddDataSetVariable(std::int32_t tIndex, std::u16string_view variable) {
    variables_[subscript(tIndex, variables_.size())] = Text(variable);
}

std::u16string_view clsDataSetParameters::DataSetVariable(std::int32_t tIndex) const {
    return variables_[subscript(tIndex, variables_.size())].view();
}

}  // namespace corvane
