#include "host/clsProgramFunction.h"

#include "platform/subscript.h"

namespace corvane {

std::u16string_view clsProgramFunction::Param(std::int32_t tIndex) const {
    return parameters_[subscript(tIndex, parameters_.size())].view();
}

clsProgramFunction& FunctionListing::Item(std::int32_t position) const {
    if (position < 1) throw automation_error(ErrorNumber::SubscriptOutOfRange);
    return *functions_[subscript(position - 1, functions_.size())];
}

}  // namespace corvane
