// A failing call is the same error whichever way a host calls: number, source and description.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "host/com/error_boundary.h"
#include "platform/automation_error.h"
#include "tests/com/component.h"
#include "tests/com/dispatch_call.h"

namespace corvane::testing {
namespace {

/// What a host's error object shows.
struct ShownError {
    HRESULT result = S_OK;
    std::u16string source;
    std::u16string description;
};

ShownError shownBy(HRESULT result) {
    ShownError shown{result, {}, {}};
    ComReference<IErrorInfo> information;
    if (GetErrorInfo(0, information.receive()) != S_OK) return shown;
    BSTR text = nullptr;
    EXPECT_EQ(information->GetSource(&text), S_OK);
    shown.source = taken(text);
    EXPECT_EQ(information->GetDescription(&text), S_OK);
    shown.description = taken(text);
    return shown;
}

ShownError shownBy(const Answer& answer) {
    EXPECT_EQ(answer.result, DISP_E_EXCEPTION);
    EXPECT_EQ(answer.faultyArgument, Answer::untouched);
    ComReference<IErrorInfo> leftBehind;
    EXPECT_EQ(GetErrorInfo(0, leftBehind.receive()), S_FALSE);
    return {answer.scode, answer.source, answer.description};
}

/// Calls both ways and compares; the description is told in part.
void expectError(std::string_view call, ErrorNumber number, std::u16string_view className,
                 const std::function<HRESULT()>& early, const std::function<Answer()>& late,
                 std::u16string_view description = {}) {
    const ShownError shown = shownBy(early());
    EXPECT_EQ(shown.result, resultOf(static_cast<int>(number))) << call;
    EXPECT_EQ(shown.source, u"prjCorvaneScript." + std::u16string(className)) << call;
    EXPECT_FALSE(shown.description.empty()) << call;
    EXPECT_NE(shown.description.find(description), std::u16string::npos) << call;
    const ShownError shownLate = shownBy(late());
    EXPECT_EQ(shownLate.result, shown.result) << call;
    EXPECT_EQ(shownLate.source, shown.source) << call;
    EXPECT_EQ(shownLate.description, shown.description) << call;
}

constexpr WORD method = DISPATCH_METHOD;
constexpr WORD get = DISPATCH_PROPERTYGET;

TEST(ErrorNumbers, OfIndexesAreSubscriptOutOfRange) {
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    const auto record = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    const auto function = create<_clsProgramFunction>(CLSID_clsProgramFunction, IID__clsProgramFunction);
    HostText content(u"text");
    for (LONG index : {LONG{-1}, LONG{10}, LONG{2147483647}}) {
        float single = 1;
        BSTR text = nullptr;
        VARIANT_BOOL truth = VARIANT_TRUE;
        const auto expectSubscript = [&](std::string_view call, std::u16string_view className,
                                         const std::function<HRESULT()>& early, const std::function<Answer()>& late) {
            expectError(call, ErrorNumber::SubscriptOutOfRange, className, early, late, u"Subscript out of range");
        };
        expectSubscript(
            "get SingleValue", u"clsScriptParamList", [&] { return list->get_SingleValue(&index, &single); },
            [&] { return invoke(*list.get(), 0x68030002, get, {integer(index)}); });
        expectSubscript(
            "put SingleValue", u"clsScriptParamList", [&] { return list->put_SingleValue(&index, &single); },
            [&] {
                return put(*list.get(), 0x68030002, {integer(index), corvane::testing::single(1)});
            });
        expectSubscript(
            "get StringValue", u"clsScriptParamList", [&] { return list->get_StringValue(&index, &text); },
            [&] { return invoke(*list.get(), 0x68030001, get, {integer(index)}); });
        expectSubscript(
            "put StringValue", u"clsScriptParamList", [&] { return list->put_StringValue(&index, content.address()); },
            [&] {
                return put(*list.get(), 0x68030001, {integer(index), corvane::testing::text(u"text")});
            });
        expectSubscript(
            "get BooleanValue", u"clsScriptParamList", [&] { return list->get_BooleanValue(&index, &truth); },
            [&] { return invoke(*list.get(), 0x68030000, get, {integer(index)}); });
        expectSubscript(
            "put BooleanValue", u"clsScriptParamList", [&] { return list->put_BooleanValue(&index, &truth); },
            [&] {
                return put(*list.get(), 0x68030000, {integer(index), boolean(true)});
            });
        expectSubscript(
            "DataSetVariable", u"clsDataSetParameters", [&] { return record->get_DataSetVariable(&index, &text); },
            [&] { return invoke(*record.get(), 0x68030007, get, {integer(index)}); });
        expectSubscript(
            "AddDataSetVariable", u"clsDataSetParameters",
            [&] { return record->put_AddDataSetVariable(&index, content.address()); },
            [&] {
                return put(*record.get(), 0x68030008, {integer(index), corvane::testing::text(u"text")});
            });
        expectSubscript(
            "Param", u"clsProgramFunction", [&] { return function->get_Param(&index, &text); },
            [&] { return invoke(*function.get(), 0x68030001, get, {integer(index)}); });
    }
}

/// Loads and runs a script for a host that answers everything with success.
class RunningScripts : public ::testing::Test {
protected:
    Sink sink;
    ComReference<_clsScriptControl> control = newControl();
    Advised advised{*control.get(), sink};
};

TEST_F(RunningScripts, EndInTheErrorOfTheirStatement) {
    struct Row {
        std::u16string script;
        ErrorNumber number;
    };
    for (const Row& row : {Row{u"VAR Nothing = 1", ErrorNumber::SubscriptOutOfRange},
                           Row{u"VAR Large = 2147483647\r\nTareWeightEx(Large, 0, 0, 0, 0, 0)", ErrorNumber::Overflow},
                           Row{u"VAR N = 1\r\nSet(N, \"many\")\r\nIncrement(N)", ErrorNumber::TypeMismatch},
                           Row{u"Again:\r\nIfNotFinishLoopFlag(\"?\", Again)", ErrorNumber::MemberNotFound}}) {
        ASSERT_TRUE(load(*control.get(), row.script));
        VARIANT_BOOL result = VARIANT_FALSE;
        expectError(
            "RunScript", row.number, u"clsScriptControl", [&] { return control->RunScript(&result); },
            [&] { return invoke(*control.get(), 0x60030009, method, {}); });
    }
}

TEST_F(RunningScripts, EndTheListingOfTheEditorInTheirError) {
    const ComReference<_clsProgramFunctionList> list = newFunctionList();
    HostText script(u"VAR Large = 2147483647\r\nTareWeightEx(Large, 0, 0, 0, 0, 0)");
    LONG zero = 0;
    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(list->LoadProgramScript_FromDatabase(script.address(), script.address(), &zero, &zero, &result), S_OK);
    _Collection* none = nullptr;
    expectError(
        "CreateFunctionList", ErrorNumber::Overflow, u"clsProgramFunctionList",
        [&] { return list->CreateFunctionList(&none, &result); },
        [&] { return invoke(*list.get(), 0x60030004, method, {object(nullptr)}); });
    EXPECT_EQ(none, nullptr);
}

TEST(ErrorNumbers, OfAControlWithoutAScript) {
    const ComReference<_clsScriptControl> control = newControl();
    expectError(
        "FinishLoopFlag", ErrorNumber::ObjectNotSet, u"clsScriptControl", [&] { return control->FinishLoopFlag(); },
        [&] { return invoke(*control.get(), 0x6003000A, method, {}); });
    for (LONG index : {LONG{0}, LONG{-1}, LONG{2147483647}}) {
        float value = 1;
        VARIANT_BOOL result = VARIANT_FALSE;
        expectError(
            "EditDataVariable", ErrorNumber::InvalidProcedureCall, u"clsScriptControl",
            [&] { return control->EditDataVariable(&index, &value, &result); },
            [&] {
                return invoke(*control.get(), 0x60030038, method, {integer(index), single(1)});
            });
    }
}

TEST(ErrorNumbers, OfFilesAreTheFileSystems) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "corvane error numbers";
    std::filesystem::create_directories(folder);
    const std::filesystem::path locked = folder / "locked.script";
    const HANDLE file = CreateFileW(locked.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    const ComReference<_clsScriptControl> control = newControl();
    const ComReference<_clsProgramFunctionList> list = newFunctionList();
    struct Row {
        std::u16string path;
        ErrorNumber number;
    };
    for (const Row& row : {Row{u"", ErrorNumber::BadFileName}, Row{locked.u16string(), ErrorNumber::PermissionDenied},
                           Row{folder.u16string(), ErrorNumber::PathFileAccess},
                           Row{(folder / "nowhere" / "a.script").u16string(), ErrorNumber::PathNotFound}}) {
        HostText path(row.path);
        VARIANT_BOOL result = VARIANT_TRUE;
        expectError(
            "LoadScript_FromFile", row.number, u"clsScriptControl",
            [&] { return control->LoadScript_FromFile(path.address(), &result); },
            [&] { return invoke(*control.get(), 0x60030007, method, {text(row.path)}); }, row.path);
        EXPECT_EQ(result, VARIANT_FALSE);
        expectError(
            "LoadProgramScript_FromFile", row.number, u"clsProgramFunctionList",
            [&] { return list->LoadProgramScript_FromFile(path.address(), &result); },
            [&] { return invoke(*list.get(), 0x60030002, method, {text(row.path)}); }, row.path);
    }
    CloseHandle(file);
    std::filesystem::remove_all(folder);
}

TEST(ErrorNumbers, OfTheCollection) {
    const ComReference<_clsProgramFunctionList> list = newFunctionList();
    HostText script(u"VAR A = 1");
    LONG zero = 0;
    VARIANT_BOOL loaded = VARIANT_FALSE;
    ASSERT_EQ(list->LoadProgramScript_FromDatabase(script.address(), script.address(), &zero, &zero, &loaded), S_OK);
    ComReference<_Collection> collection;
    ASSERT_EQ(list->get_FunctionList(collection.receive()), S_OK);
    ASSERT_EQ(invoke(*collection.get(), 1, method, {integer(1), text(u"Used")}).result, S_OK);

    struct Row {
        VARIANT index;
        ErrorNumber number;
    };
    for (Row& row : std::vector<Row>{{integer(0), ErrorNumber::SubscriptOutOfRange},
                                     {integer(3), ErrorNumber::SubscriptOutOfRange},
                                     {text(u"unknown"), ErrorNumber::InvalidProcedureCall},
                                     {ofType(VT_NULL), ErrorNumber::TypeMismatch}}) {
        const auto argument = [&] {
            VARIANT copy = emptyVariant();
            VariantCopy(&copy, &row.index);
            return copy;
        };
        OwnedVariant item;
        expectError(
            "Item", row.number, u"Collection", [&] { return collection->get_Item(row.index, item.get()); },
            [&] { return invoke(*collection.get(), DISPID_VALUE, get, {argument()}); });
        expectError(
            "Remove", row.number, u"Collection", [&] { return collection->Remove(row.index); },
            [&] { return invoke(*collection.get(), 3, method, {argument()}); });
        VariantClear(&row.index);
    }

    HostText used(u"used");
    VARIANT key = ofType(VT_BSTR);
    V_BSTR(&key) = used.get();
    expectError(
        "Add with a key in use", ErrorNumber::KeyAlreadyInUse, u"Collection",
        [&] { return collection->Add(integer(1), key, leftOut(), leftOut()); },
        [&] {
            return invoke(*collection.get(), 1, method, {integer(1), text(u"uSED")});
        });
    expectError(
        "Add before and after", ErrorNumber::InvalidProcedureCall, u"Collection",
        [&] { return collection->Add(integer(1), leftOut(), integer(1), integer(1)); },
        [&] {
            return invoke(*collection.get(), 1, method, {integer(1), leftOut(), integer(1), integer(1)});
        });
    expectError(
        "Add with a number as key", ErrorNumber::TypeMismatch, u"Collection",
        [&] { return collection->Add(integer(1), integer(5), leftOut(), leftOut()); },
        [&] {
            return invoke(*collection.get(), 1, method, {integer(1), integer(5)});
        });
    LONG count = 0;
    EXPECT_EQ(collection->get_Count(&count), S_OK);
    EXPECT_EQ(count, 2);
}

// A call that was not made tells of no earlier failure.
TEST(ErrorNumbers, NullPointersLeaveNoErrorInformation) {
    const ComReference<_clsScriptControl> control = newControl();
    EXPECT_EQ(control->FinishLoopFlag(), resultOf(static_cast<int>(ErrorNumber::ObjectNotSet)));
    EXPECT_EQ(control->RunScript(nullptr), E_POINTER);
    ComReference<IErrorInfo> information;
    EXPECT_EQ(GetErrorInfo(0, information.receive()), S_FALSE);
}

}  // namespace
}  // namespace corvane::testing
