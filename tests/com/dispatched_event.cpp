#include "tests/com/dispatched_event.h"

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/utf8.h"

namespace corvane::testing {
namespace {

VARTYPE publishedType(const EventArgument& argument) {
    const auto type = [&]() -> VARTYPE {
        switch (argument.type) {
            case ValueType::Text: return VT_BSTR;
            case ValueType::Single: return VT_R4;
            case ValueType::Boolean: return VT_BOOL;
            case ValueType::Object: return VT_DISPATCH;
            default: return VT_I4;
        }
    }();
    return static_cast<VARTYPE>(argument.byReference ? type | VT_BYREF : type);
}

bool truthOf(VARIANT_BOOL flag) {
    if (flag != VARIANT_TRUE && flag != VARIANT_FALSE) throw std::runtime_error("a Boolean is neither True nor False");
    return flag == VARIANT_TRUE;
}

Value valueOf(const VARIANTARG& argument) {
    switch (V_VT(&argument)) {
        case VT_BSTR: return Value::ofText(viewOf(V_BSTR(&argument)));
        case VT_BSTR | VT_BYREF: return Value::ofText(viewOf(*V_BSTRREF(&argument)));
        case VT_R4: return Value::ofSingle(V_R4(&argument));
        case VT_R4 | VT_BYREF: return Value::ofSingle(*V_R4REF(&argument));
        case VT_BOOL: return Value::ofBoolean(truthOf(V_BOOL(&argument)));
        case VT_BOOL | VT_BYREF: return Value::ofBoolean(truthOf(*V_BOOLREF(&argument)));
        case VT_I4: return Value::ofLong(V_I4(&argument));
        default: return Value::ofLong(*V_I4REF(&argument));
    }
}

}  // namespace

DispatchedEvent::DispatchedEvent(DISPID event, DISPPARAMS& arguments, DataSetAccess& dataSets)
    : arguments_(arguments), dataSets_(dataSets), event_(read(event, dataSets)) {}

Event DispatchedEvent::read(DISPID event, DataSetAccess& dataSets) {
    if (event < 1 || event > static_cast<DISPID>(eventCount)) throw std::runtime_error("an unknown event");
    const EventRow& row = eventRow(static_cast<HostEvent>(event));
    const std::string name(row.name);
    if (arguments_.cArgs != row.argumentCount || arguments_.cNamedArgs != 0)
        throw std::runtime_error(name + ": wrong number of arguments");
    std::vector<Value> values;
    for (std::size_t i = 0; i < row.argumentCount; ++i) {
        const EventArgument& published = row.arguments[i];
        if (V_VT(&argument(i)) != publishedType(published))
            throw std::runtime_error(name + ", " + std::string(published.name) + ": of type " +
                                     std::to_string(V_VT(&argument(i))));
        if (published.type == ValueType::Object) {
            const Reference<clsDataSetParameters> record = makeReference<clsDataSetParameters>();
            dataSets.read(*V_DISPATCH(&argument(i)), *record);
            values.push_back(Value::ofObject(*record));
        } else {
            values.push_back(valueOf(argument(i)));
        }
    }
    if (values.back().boolean()) throw std::runtime_error(name + ": tSucess does not start as False");
    return Event(row.id, std::span<const Value>(values).first(values.size() - 1));
}

void DispatchedEvent::giveBack() {
    for (std::size_t i = 0; i < event_.count(); ++i) {
        VARIANTARG& target = argument(i);
        const Value& answer = event_.argument(i);
        switch (V_VT(&target)) {
            case VT_BSTR | VT_BYREF: {
                const std::u16string text(answer.textView());
                if (!SysReAllocStringLen(V_BSTRREF(&target), reinterpret_cast<const OLECHAR*>(text.data()),
                                         static_cast<UINT>(text.size())))
                    throw std::bad_alloc();
                break;
            }
            case VT_R4 | VT_BYREF: *V_R4REF(&target) = answer.single(); break;
            case VT_BOOL | VT_BYREF: *V_BOOLREF(&target) = variantBool(answer.boolean()); break;
            case VT_I4 | VT_BYREF: *V_I4REF(&target) = answer.longInteger(); break;
            case VT_DISPATCH:
                dataSets_.write(static_cast<const clsDataSetParameters&>(answer.object()), *V_DISPATCH(&target));
                break;
            default: break;
        }
    }
}

}  // namespace corvane::testing
