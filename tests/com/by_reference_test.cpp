// What a late-bound host's variables hold after a call that answers through them. A script makes no item editable, so
// the control here is a test's own, with the component's way of being called.

#include <gtest/gtest.h>

#include <array>
#include <utility>

#include "host/com/automation_object.h"
#include "host/com/com_variant.h"
#include "tests/com/component.h"
#include "tests/com/dispatch_call.h"

namespace corvane::testing {
namespace {

constexpr DISPID getEditable = 0x60030037;

/// Every member but one is of no interest.
class EditableControl final : public AutomationObject<_clsScriptControl> {
public:
    EditableControl() : AutomationObject(publishedScriptControl) {}

    StringTable table;
    LONG count = 0;

    HRESULT STDMETHODCALLTYPE GetEditable(SAFEARRAY** tStr, LONG* tCount) override {
        return call([&] {
            if (count >= 1) replaceStringArray(*tStr, table);
            *tCount = count;
        });
    }

    HRESULT STDMETHODCALLTYPE put_TestMode(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ScriptFrom(::enumScriptSource*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ScriptFile(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ScriptDB_UID(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ScriptDB_Version(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LoadScript_FromFile(BSTR*, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LoadScript_FromScript(BSTR*, BSTR*, LONG*, LONG*, VARIANT_BOOL*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE RunScript(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FinishLoopFlag() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_DebugMode(::enumDebugOptions*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetEnvironmentVariable(BSTR*, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConstant(BSTR*, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMemoryValue(BSTR*, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EditDataVariable(LONG*, float*, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FunctionNameFromType(::enumCommandType*, VARIANT*) override { return E_NOTIMPL; }
};

class ByReference : public ::testing::Test {
protected:
    void SetUp() override {
        control->table = StringTable(2, 6);
        for (std::int32_t row = 0; row < 2; ++row)
            for (std::int32_t column = 0; column < 6; ++column) control->table.at(row, column) = cell(row, column);
        control->count = 2;
    }
    Answer getInto(const VARIANT& table, const VARIANT& rows) {
        return invoke(*control.get(), getEditable, DISPATCH_METHOD, {table, rows});
    }

    static std::u16string cell(std::int32_t row, std::int32_t column) {
        return {u'r', static_cast<char16_t>(u'0' + row), u'c', static_cast<char16_t>(u'0' + column)};
    }

    /// The array is the table: both dimensions from 0, each cell at its place.
    static void expectTable(SAFEARRAY* array, VARTYPE elements) {
        ASSERT_NE(array, nullptr);
        ASSERT_EQ(SafeArrayGetDim(array), 2U);
        VARTYPE type = VT_EMPTY;
        EXPECT_EQ(SafeArrayGetVartype(array, &type), S_OK);
        ASSERT_EQ(type, elements);
        for (const auto& [dimension, last] : {std::pair<UINT, LONG>{1, 1}, {2, 5}}) {
            LONG bound = 77;
            EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), S_OK);
            EXPECT_EQ(bound, 0);
            EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), S_OK);
            EXPECT_EQ(bound, last);
        }
        for (LONG row = 0; row < 2; ++row) {
            for (LONG column = 0; column < 6; ++column) {
                std::array<LONG, 2> place{row, column};
                OwnedVariant content;
                if (elements == VT_VARIANT) {
                    EXPECT_EQ(SafeArrayGetElement(array, place.data(), content.get()), S_OK);
                } else {
                    EXPECT_EQ(SafeArrayGetElement(array, place.data(), &V_BSTR(content.get())), S_OK);
                    V_VT(content.get()) = VT_BSTR;
                }
                ASSERT_EQ(V_VT(content.get()), VT_BSTR);
                EXPECT_EQ(viewOf(V_BSTR(content.get())), cell(row, column));
            }
        }
    }
    static SAFEARRAY* arrayOf(VARTYPE elements) {
        SAFEARRAY* const array = SafeArrayCreateVector(elements, 0, 3);
        if (elements != VT_BSTR) return array;
        for (LONG i = 0; i < 3; ++i) {
            HostText content(u"before");
            EXPECT_EQ(SafeArrayPutElement(array, &i, content.get()), S_OK);
        }
        return array;
    }
    static VARIANT holding(VARTYPE elements) {
        VARIANT variant = ofType(static_cast<VARTYPE>(VT_ARRAY | elements));
        V_ARRAY(&variant) = arrayOf(elements);
        return variant;
    }

    ComReference<EditableControl> control{new EditableControl};
    LONG count = 77;
    VARIANT countVariable = reference(VT_I4, &count);
};

TEST_F(ByReference, NumbersComeBackInTheVariablesOwnType) {
    std::int8_t i1 = 1;
    std::uint8_t ui1 = 1;
    SHORT i2 = 1;
    USHORT ui2 = 1;
    ULONG ui4 = 1;
    LONGLONG i8 = 1;
    ULONGLONG ui8 = 1;
    INT integerValue = 1;
    UINT unsignedValue = 1;
    float r4 = 1;
    double r8 = 1;
    DATE date = 1;
    CY currency{};
    VARIANT_BOOL truth = VARIANT_FALSE;
    DECIMAL decimal{};
    BSTR textValue = newText(u"1");
    const std::pair<VARTYPE, void*> variables[] = {
        {VT_I1, &i1},           {VT_UI1, &ui1},          {VT_I2, &i2},
        {VT_UI2, &ui2},         {VT_I4, &count},         {VT_UI4, &ui4},
        {VT_I8, &i8},           {VT_UI8, &ui8},          {VT_R4, &r4},
        {VT_R8, &r8},           {VT_INT, &integerValue}, {VT_UINT, &unsignedValue},
        {VT_CY, &currency},     {VT_DATE, &date},        {VT_BOOL, &truth},
        {VT_DECIMAL, &decimal}, {VT_BSTR, &textValue}};
    for (const auto& [type, variable] : variables) {
        VARIANT table = emptyVariant();
        EXPECT_EQ(getInto(reference(table), reference(type, variable)).result, S_OK) << type;
        VariantClear(&table);
    }
    EXPECT_EQ(i1, 2);
    EXPECT_EQ(ui1, 2);
    EXPECT_EQ(i2, 2);
    EXPECT_EQ(ui2, 2);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(ui4, 2U);
    EXPECT_EQ(i8, 2);
    EXPECT_EQ(ui8, 2U);
    EXPECT_EQ(integerValue, 2);
    EXPECT_EQ(unsignedValue, 2U);
    EXPECT_EQ(r4, 2.0F);
    EXPECT_EQ(r8, 2.0);
    EXPECT_EQ(date, 2.0);
    EXPECT_EQ(currency.int64, 20000);
    EXPECT_EQ(truth, VARIANT_TRUE);
    double decimalValue = 0;
    EXPECT_EQ(VarR8FromDec(&decimal, &decimalValue), S_OK);
    EXPECT_EQ(decimalValue, 2.0);
    EXPECT_EQ(taken(textValue), u"2");
}

// What stands beside a small variable is not touched.
TEST_F(ByReference, NoMoreIsWrittenThanTheVariableHolds) {
    std::array<SHORT, 4> shorts{1, 1, 1, 1};
    std::array<std::uint8_t, 4> bytes{1, 1, 1, 1};
    std::array<VARIANT_BOOL, 4> truths{};
    VARIANT table = emptyVariant();
    EXPECT_EQ(getInto(reference(table), reference(VT_I2, &shorts[1])).result, S_OK);
    EXPECT_EQ(getInto(reference(table), reference(VT_UI1, &bytes[1])).result, S_OK);
    EXPECT_EQ(getInto(reference(table), reference(VT_BOOL, &truths[1])).result, S_OK);
    EXPECT_EQ(shorts, (std::array<SHORT, 4>{1, 2, 1, 1}));
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 4>{1, 2, 1, 1}));
    EXPECT_EQ(truths, (std::array<VARIANT_BOOL, 4>{0, VARIANT_TRUE, 0, 0}));
    VariantClear(&table);
}

TEST_F(ByReference, AVariantGetsTheParametersOwnType) {
    for (VARIANT variable : {emptyVariant(), shortInteger(1), number(1), text(u"1"), boolean(false), integer(1)}) {
        VARIANT table = emptyVariant();
        EXPECT_EQ(getInto(reference(table), reference(variable)).result, S_OK);
        EXPECT_EQ(V_VT(&variable), VT_I4);
        EXPECT_EQ(V_I4(&variable), 2);
        VariantClear(&table);
    }
    // One that refers to a variable itself stays what it is.
    SHORT number = 1;
    VARIANT referring = reference(VT_I2, &number);
    VARIANT table = emptyVariant();
    EXPECT_EQ(getInto(reference(table), reference(referring)).result, S_OK);
    EXPECT_EQ(V_VT(&referring), VT_I2 | VT_BYREF);
    EXPECT_EQ(number, 2);
    VariantClear(&table);
}

TEST_F(ByReference, WhatDoesNotChangeKeepsItsType) {
    VARIANT variable = shortInteger(2);
    VARIANT table = emptyVariant();
    EXPECT_EQ(getInto(reference(table), reference(variable)).result, S_OK);
    EXPECT_EQ(V_VT(&variable), VT_I2);
    VariantClear(&table);
}

TEST_F(ByReference, AVariableThatIsTooSmallIsAnOverflow) {
    control->count = 300;
    std::uint8_t tiny = 1;
    VARIANT table = emptyVariant();
    const Answer answer = getInto(reference(table), reference(VT_UI1, &tiny));
    EXPECT_EQ(answer.result, DISP_E_OVERFLOW);
    EXPECT_EQ(answer.faultyArgument, 0U);
    EXPECT_EQ(tiny, 1);
    Arguments quietly{reference(table), reference(VT_UI1, &tiny)};
    EXPECT_EQ(
        control->Invoke(getEditable, IID_NULL, 0, DISPATCH_METHOD, quietly.parameters(), nullptr, nullptr, nullptr),
        DISP_E_OVERFLOW);
    VariantClear(&table);
}

TEST_F(ByReference, AValueGetsNothingBack) {
    VARIANT table = emptyVariant();
    EXPECT_EQ(getInto(reference(table), integer(5)).result, S_OK);
    expectTable(V_ARRAY(&table), VT_VARIANT);
    VariantClear(&table);
}

TEST_F(ByReference, AnArrayOfStringsReceivesStrings) {
    for (SAFEARRAY* variable : {static_cast<SAFEARRAY*>(nullptr), arrayOf(VT_BSTR)}) {
        EXPECT_EQ(getInto(reference(VT_ARRAY | VT_BSTR, &variable), countVariable).result, S_OK);
        expectTable(variable, VT_BSTR);
        // Once more into what is there now.
        EXPECT_EQ(getInto(reference(VT_ARRAY | VT_BSTR, &variable), countVariable).result, S_OK);
        expectTable(variable, VT_BSTR);
        EXPECT_EQ(SafeArrayDestroy(variable), S_OK);
    }
    EXPECT_EQ(count, 2);
}

TEST_F(ByReference, AVariantKeepsHoldingStringsOrGetsVariants) {
    struct Row {
        VARIANT before;
        VARTYPE elements;
    };
    for (Row row :
         {Row{holding(VT_BSTR), VT_BSTR}, Row{emptyVariant(), VT_VARIANT}, Row{holding(VT_VARIANT), VT_VARIANT},
          Row{holding(VT_I4), VT_VARIANT}, Row{ofType(VT_ARRAY | VT_BSTR), VT_BSTR}}) {
        EXPECT_EQ(getInto(reference(row.before), countVariable).result, S_OK);
        ASSERT_EQ(V_VT(&row.before), VT_ARRAY | row.elements);
        expectTable(V_ARRAY(&row.before), row.elements);
        EXPECT_EQ(getInto(reference(row.before), countVariable).result, S_OK);
        ASSERT_EQ(V_VT(&row.before), VT_ARRAY | row.elements);
        VariantClear(&row.before);
    }
}

TEST_F(ByReference, AnArrayOfVariantsReceivesVariants) {
    for (SAFEARRAY* variable : {static_cast<SAFEARRAY*>(nullptr), arrayOf(VT_VARIANT)}) {
        VARIANT referring = reference(VT_ARRAY | VT_VARIANT, &variable);
        EXPECT_EQ(getInto(referring, countVariable).result, S_OK);
        expectTable(variable, VT_VARIANT);
        EXPECT_EQ(getInto(reference(referring), countVariable).result, S_OK);
        expectTable(variable, VT_VARIANT);
        EXPECT_EQ(V_VT(&referring), VT_ARRAY | VT_VARIANT | VT_BYREF);
        EXPECT_EQ(SafeArrayDestroy(variable), S_OK);
    }
}

TEST_F(ByReference, WhatCannotReceiveAnArrayIsRefusedBeforeTheCall) {
    SAFEARRAY* numbers = arrayOf(VT_I4);
    VARIANT numberVariable = integer(1);
    VARIANT textVariable = text(u"text");
    for (const VARIANT& table : {holding(VT_BSTR), reference(VT_ARRAY | VT_I4, &numbers), reference(numberVariable),
                                 reference(textVariable), emptyVariant()}) {
        const Answer answer = getInto(table, countVariable);
        EXPECT_EQ(answer.result, DISP_E_TYPEMISMATCH) << V_VT(&table);
        EXPECT_EQ(answer.faultyArgument, 1U) << V_VT(&table);
    }
    EXPECT_EQ(count, 77);
    SafeArrayDestroy(numbers);
    VariantClear(&textVariable);
}

TEST_F(ByReference, WithoutItemsTheArrayStays) {
    control->count = 0;
    for (VARIANT variable : {emptyVariant(), holding(VT_BSTR), holding(VT_VARIANT), holding(VT_I4)}) {
        const VARTYPE type = V_VT(&variable);
        SAFEARRAY* const array = V_ARRAY(&variable);
        EXPECT_EQ(getInto(reference(variable), countVariable).result, S_OK);
        EXPECT_EQ(V_VT(&variable), type);
        EXPECT_EQ(V_ARRAY(&variable), array);
        VariantClear(&variable);
    }
    EXPECT_EQ(count, 0);
}

TEST_F(ByReference, AnArrayThatTheHostHasLockedOrFixedStays) {
    constexpr HRESULT arrayLocked = static_cast<HRESULT>(0x800A000A);
    SAFEARRAY* array = arrayOf(VT_BSTR);
    SAFEARRAY* const before = array;
    const auto refuse = [&] {
        const Answer answer = getInto(reference(VT_ARRAY | VT_BSTR, &array), countVariable);
        EXPECT_EQ(answer.result, DISP_E_EXCEPTION);
        EXPECT_EQ(answer.scode, arrayLocked);
        EXPECT_EQ(array, before);
        EXPECT_EQ(count, 77);
    };
    ASSERT_EQ(SafeArrayLock(array), S_OK);
    refuse();
    ASSERT_EQ(SafeArrayUnlock(array), S_OK);
    array->fFeatures |= FADF_FIXEDSIZE;
    refuse();
    array->fFeatures &= static_cast<USHORT>(~FADF_FIXEDSIZE);
    SafeArrayDestroy(array);

    VARIANT variable = holding(VT_VARIANT);
    SAFEARRAY* const held = V_ARRAY(&variable);
    SAFEARRAY* typed = held;
    const auto refuseVariants = [&] {
        EXPECT_EQ(getInto(reference(variable), countVariable).result, DISP_E_ARRAYISLOCKED);
        EXPECT_EQ(getInto(reference(VT_ARRAY | VT_VARIANT, &typed), countVariable).result, DISP_E_ARRAYISLOCKED);
    };
    held->fFeatures |= FADF_STATIC;
    refuseVariants();
    held->fFeatures &= static_cast<USHORT>(~FADF_STATIC);
    ASSERT_EQ(SafeArrayLock(held), S_OK);
    refuseVariants();
    EXPECT_EQ(V_VT(&variable), VT_ARRAY | VT_VARIANT);
    EXPECT_EQ(V_ARRAY(&variable), held);
    EXPECT_EQ(typed, held);
    ASSERT_EQ(SafeArrayUnlock(held), S_OK);
    EXPECT_EQ(VariantClear(&variable), S_OK);
}

// A host may pass one variable twice; it holds the later answer then.
TEST_F(ByReference, OneVariableForBothArgumentsHoldsTheLater) {
    VARIANT variable = emptyVariant();
    EXPECT_EQ(getInto(reference(variable), reference(variable)).result, S_OK);
    EXPECT_EQ(V_VT(&variable), VT_I4);
    EXPECT_EQ(V_I4(&variable), 2);
}

}  // namespace
}  // namespace corvane::testing
