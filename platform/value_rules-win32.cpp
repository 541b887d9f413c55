#include <windows.h>
// windows.h first: oleauto.h needs its types.
#include <oleauto.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/automation_error.h"
#include "platform/value_rules.h"

static_assert(sizeof(wchar_t) == sizeof(char16_t));

namespace corvane::platform_rules {

namespace {

class AutomationText {
public:
    explicit AutomationText(std::u16string_view text)
        : text_(SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()))) {
        if (text_ == nullptr) throw automation_error(ErrorNumber::OutOfMemory);
    }
    AutomationText() noexcept = default;
    AutomationText(const AutomationText&) = delete;
    AutomationText& operator=(const AutomationText&) = delete;
    ~AutomationText() { SysFreeString(text_); }

    BSTR get() const noexcept { return text_; }
    BSTR* out() noexcept { return &text_; }
    BSTR release() noexcept { return std::exchange(text_, nullptr); }
    std::u16string_view view() const noexcept { return viewOf(text_); }
    static std::u16string_view viewOf(BSTR text) noexcept {
        return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)};
    }

private:
    BSTR text_ = nullptr;
};

class Variant {
public:
    Variant() noexcept { VariantInit(&variant_); }
    explicit Variant(ValueView value);
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&variant_); }

    VARIANT* get() noexcept { return &variant_; }
    Value value() const;

private:
    VARIANT variant_;
};

Variant::Variant(ValueView value) : Variant() {
    switch (value.type()) {
        case ValueType::Integer:
            V_I2(&variant_) = value.integer();
            V_VT(&variant_) = VT_I2;
            return;
        case ValueType::Long:
            V_I4(&variant_) = value.longInteger();
            V_VT(&variant_) = VT_I4;
            return;
        case ValueType::Single:
            V_R4(&variant_) = value.single();
            V_VT(&variant_) = VT_R4;
            return;
        case ValueType::Double:
            V_R8(&variant_) = value.doubleFloat();
            V_VT(&variant_) = VT_R8;
            return;
        case ValueType::Boolean:
            V_BOOL(&variant_) = value.boolean() ? VARIANT_TRUE : VARIANT_FALSE;
            V_VT(&variant_) = VT_BOOL;
            return;
        case ValueType::Text:
            V_BSTR(&variant_) = AutomationText(value.textView()).release();
            V_VT(&variant_) = VT_BSTR;
            return;
        case ValueType::Object: break;
    }
    throw automation_error(ErrorNumber::TypeMismatch);
}

Value Variant::value() const {
    switch (V_VT(&variant_)) {
        case VT_I2: return Value::ofInteger(V_I2(&variant_));
        case VT_I4: return Value::ofLong(V_I4(&variant_));
        case VT_R4: return Value::ofSingle(V_R4(&variant_));
        case VT_R8: return Value::ofDouble(V_R8(&variant_));
        case VT_BOOL: return Value::ofBoolean(V_BOOL(&variant_) != VARIANT_FALSE);
        case VT_BSTR: return Value::ofText(AutomationText::viewOf(V_BSTR(&variant_)));
        default: throw automation_error(ErrorNumber::TypeMismatch);
    }
}

void check(HRESULT result) {
    if (SUCCEEDED(result)) return;
    switch (result) {
        case DISP_E_OVERFLOW: throw automation_error(ErrorNumber::Overflow);
        case E_OUTOFMEMORY: throw automation_error(ErrorNumber::OutOfMemory);
        default: throw automation_error(ErrorNumber::TypeMismatch);
    }
}

// Whether a text is one that the platform's routines can be trusted with. Some releases of them take an exponent for an
// index and write digits beyond their buffer; no number that one would write comes near.
bool isReasonable(std::u16string_view text) {
    constexpr std::size_t longest = 255;
    constexpr std::size_t mostExponentDigits = 4;
    if (text.size() > longest) return false;
    const std::size_t exponent = text.find_first_of(u"eE");
    if (exponent == std::u16string_view::npos) return true;
    const auto isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
    return std::count_if(text.begin() + static_cast<std::ptrdiff_t>(exponent), text.end(), isDigit) <=
           static_cast<std::ptrdiff_t>(mostExponentDigits);
}

bool isUnreasonableText(ValueView value) { return value.isText() && !isReasonable(value.textView()); }

bool isWhole(ValueView value) {
    return value.type() == ValueType::Integer || value.type() == ValueType::Long || value.type() == ValueType::Boolean;
}

std::int32_t longOfText(std::u16string_view text, const NumberLocale& locale) {
    const AutomationText automationText(text);
    LONG number = 0;
    check(VarI4FromStr(automationText.get(), locale.localeId, 0, &number));
    // Some releases overlook the zeros behind the decimal mark and round 0.06 to 1.
    double exact = 0;
    const bool isOne = number == 1 || number == -1;
    if (isOne && SUCCEEDED(VarR8FromStr(automationText.get(), locale.localeId, 0, &exact)) && std::abs(exact) < 0.5)
        return 0;
    return number;
}

using Arithmetic = HRESULT(STDAPICALLTYPE*)(LPVARIANT, LPVARIANT, LPVARIANT);

// The routines read texts under the user's locale, so texts become numbers before, under the locale that is asked for.
Value calculate(Arithmetic routine, ValueView left, ValueView right, const NumberLocale& locale) {
    const auto operand = [&locale](ValueView value) {
        if (!value.isText()) return Value(value);
        double number = 0;
        check(VarR8FromStr(AutomationText(value.textView()).get(), locale.localeId, 0, &number));
        return Value::ofDouble(number);
    };
    Variant leftVariant(operand(left));
    Variant rightVariant(operand(right));
    Variant result;
    check(routine(leftVariant.get(), rightVariant.get(), result.get()));
    return result.value();
}

// Some releases write the point in D.DDDE+NN whatever the locale's decimal mark is.
Text withDecimalMark(std::u16string_view text, const NumberLocale& locale) {
    const std::size_t point = text.find(u'.');
    if (point == std::u16string_view::npos || locale.decimalMark == u"." ||
        text.find(u'E') == std::u16string_view::npos)
        return Text(text);
    std::u16string marked(text);
    return Text(marked.replace(point, 1, locale.decimalMark));
}

}  // namespace

bool isNumeric(std::u16string_view text, const NumberLocale& locale) {
    if (!isReasonable(text)) return portable::isNumeric(text, locale);
    double number = 0;
    return SUCCEEDED(VarR8FromStr(AutomationText(text).get(), locale.localeId, 0, &number));
}

float toSingle(ValueView value, const NumberLocale& locale) {
    if (isUnreasonableText(value)) return portable::toSingle(value, locale);
    float number = 0;
    switch (value.type()) {
        case ValueType::Integer: check(VarR4FromI2(value.integer(), &number)); return number;
        case ValueType::Long: check(VarR4FromI4(value.longInteger(), &number)); return number;
        case ValueType::Single: return value.single();
        case ValueType::Double: check(VarR4FromR8(value.doubleFloat(), &number)); return number;
        case ValueType::Boolean:
            check(VarR4FromBool(value.boolean() ? VARIANT_TRUE : VARIANT_FALSE, &number));
            return number;
        case ValueType::Text:
            check(VarR4FromStr(AutomationText(value.textView()).get(), locale.localeId, 0, &number));
            return number;
        case ValueType::Object: break;
    }
    throw automation_error(ErrorNumber::TypeMismatch);
}

std::int32_t toLong(ValueView value, const NumberLocale& locale) {
    if (isUnreasonableText(value)) return portable::toLong(value, locale);
    LONG number = 0;
    switch (value.type()) {
        case ValueType::Integer: check(VarI4FromI2(value.integer(), &number)); return number;
        case ValueType::Long: return value.longInteger();
        case ValueType::Single: check(VarI4FromR4(value.single(), &number)); return number;
        case ValueType::Double: check(VarI4FromR8(value.doubleFloat(), &number)); return number;
        case ValueType::Boolean:
            check(VarI4FromBool(value.boolean() ? VARIANT_TRUE : VARIANT_FALSE, &number));
            return number;
        case ValueType::Text: return longOfText(value.textView(), locale);
        case ValueType::Object: break;
    }
    throw automation_error(ErrorNumber::TypeMismatch);
}

bool toBoolean(ValueView value, const NumberLocale& locale) {
    if (isUnreasonableText(value)) return portable::toBoolean(value, locale);
    VARIANT_BOOL truth = VARIANT_FALSE;
    switch (value.type()) {
        case ValueType::Integer: check(VarBoolFromI2(value.integer(), &truth)); return truth != VARIANT_FALSE;
        case ValueType::Long: check(VarBoolFromI4(value.longInteger(), &truth)); return truth != VARIANT_FALSE;
        case ValueType::Single: check(VarBoolFromR4(value.single(), &truth)); return truth != VARIANT_FALSE;
        case ValueType::Double: check(VarBoolFromR8(value.doubleFloat(), &truth)); return truth != VARIANT_FALSE;
        case ValueType::Boolean: return value.boolean();
        case ValueType::Text:
            check(VarBoolFromStr(AutomationText(value.textView()).get(), locale.localeId, 0, &truth));
            return truth != VARIANT_FALSE;
        case ValueType::Object: break;
    }
    throw automation_error(ErrorNumber::TypeMismatch);
}

Text toText(ValueView value, const NumberLocale& locale) {
    AutomationText text;
    switch (value.type()) {
        case ValueType::Integer: check(VarBstrFromI2(value.integer(), locale.localeId, 0, text.out())); break;
        case ValueType::Long: check(VarBstrFromI4(value.longInteger(), locale.localeId, 0, text.out())); break;
        case ValueType::Single: check(VarBstrFromR4(value.single(), locale.localeId, 0, text.out())); break;
        case ValueType::Double: check(VarBstrFromR8(value.doubleFloat(), locale.localeId, 0, text.out())); break;
        case ValueType::Boolean:
            check(VarBstrFromBool(value.boolean() ? VARIANT_TRUE : VARIANT_FALSE, locale.localeId, 0, text.out()));
            break;
        case ValueType::Text: return value.text();
        case ValueType::Object: throw automation_error(ErrorNumber::TypeMismatch);
    }
    return withDecimalMark(text.view(), locale);
}

Value add(ValueView left, ValueView right, const NumberLocale& locale) {
    if (left.isText() && right.isText()) return Value::ofText(Text::join(left.textView(), right.textView()));
    if (isUnreasonableText(left) || isUnreasonableText(right)) return portable::add(left, right, locale);
    return calculate(VarAdd, left, right, locale);
}

Value subtract(ValueView left, ValueView right, const NumberLocale& locale) {
    if (isUnreasonableText(left) || isUnreasonableText(right)) return portable::subtract(left, right, locale);
    // Some releases let a difference of whole numbers wrap around instead of giving it the next type.
    if (isWhole(left) && isWhole(right)) return portable::subtract(left, right, locale);
    return calculate(VarSub, left, right, locale);
}

std::weak_ordering compare(ValueView left, ValueView right) {
    // The routine compares texts in a locale's order; here code units decide.
    if (left.isText() || right.isText()) return portable::compare(left, right);
    Variant leftVariant(left);
    Variant rightVariant(right);
    switch (VarCmp(leftVariant.get(), rightVariant.get(), LOCALE_INVARIANT, 0)) {
        case VARCMP_LT: return std::weak_ordering::less;
        case VARCMP_EQ: return std::weak_ordering::equivalent;
        case VARCMP_GT: return std::weak_ordering::greater;
        default: throw automation_error(ErrorNumber::TypeMismatch);
    }
}

}  // namespace corvane::platform_rules
