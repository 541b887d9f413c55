#include "host/com/com_variant.h"

#include <array>
#include <memory>

#include "platform/automation_error.h"

namespace corvane {

void setVariant(VARIANT& variant, const Value& value) {
    switch (value.type()) {
        case ValueType::Integer:
            V_I2(&variant) = value.integer();
            V_VT(&variant) = VT_I2;
            break;
        case ValueType::Long:
            V_I4(&variant) = value.longInteger();
            V_VT(&variant) = VT_I4;
            break;
        case ValueType::Single:
            V_R4(&variant) = value.single();
            V_VT(&variant) = VT_R4;
            break;
        case ValueType::Double:
            V_R8(&variant) = value.doubleFloat();
            V_VT(&variant) = VT_R8;
            break;
        case ValueType::Boolean:
            V_BOOL(&variant) = variantBool(value.boolean());
            V_VT(&variant) = VT_BOOL;
            break;
        case ValueType::Text:
            V_BSTR(&variant) = newText(value.textView());
            V_VT(&variant) = VT_BSTR;
            break;
        case ValueType::Object: throw automation_error(ErrorNumber::TypeMismatch);
    }
}

bool isFixedSize(const SAFEARRAY& array) {
    return (array.fFeatures & (FADF_AUTO | FADF_STATIC | FADF_EMBEDDED | FADF_FIXEDSIZE)) != 0;
}

void replaceStringArray(SAFEARRAY*& array, const StringTable& table) {
    struct Destroy {
        void operator()(SAFEARRAY* owned) const { SafeArrayDestroy(owned); }
    };
    std::array<SAFEARRAYBOUND, 2> bounds{
        {{static_cast<ULONG>(table.rows()), 0}, {static_cast<ULONG>(table.columns()), 0}}};
    std::unique_ptr<SAFEARRAY, Destroy> strings(SafeArrayCreate(VT_BSTR, 2, bounds.data()));
    if (!strings) throw automation_error(ErrorNumber::OutOfMemory);
    // The first dimension varies fastest.
    auto* cell = static_cast<BSTR*>(strings->pvData);
    for (std::int32_t column = 0; column < table.columns(); ++column)
        for (std::int32_t row = 0; row < table.rows(); ++row) *cell++ = newText(table.at(row, column));
    if (array != nullptr && (isFixedSize(*array) || FAILED(SafeArrayDestroy(array))))
        throw automation_error(ErrorNumber::ArrayLocked);
    array = strings.release();
}

}  // namespace corvane
