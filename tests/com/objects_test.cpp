// The five classes through their vtables: interfaces, members, null pointers, errors.

#include <gtest/gtest.h>

#include <set>

#include "engine/trace.h"
#include "platform/utf8.h"
#include "tests/com/editable_items.h"
#include "tests/com/every_event.h"
#include "tests/platform/temporary_folder.h"

namespace corvane::testing {
namespace {

using Objects = ComponentTest;

/// A number as the cell of an enumeration, which a host may fill with any.
template <typename Enumeration>
Enumeration* cellOf(LONG& number) {
    return reinterpret_cast<Enumeration*>(&number);
}

// -------------------------------------------------------------------------------------------------------- interfaces

struct NamedInterface {
    const char* name;
    IID id;
};

const NamedInterface interfaces[] = {
    {"IUnknown", IID_IUnknown},
    {"IDispatch", IID_IDispatch},
    {"_clsScriptControl", IID__clsScriptControl},
    {"_clsProgramFunctionList", IID__clsProgramFunctionList},
    {"_clsProgramFunction", IID__clsProgramFunction},
    {"_clsDataSetParameters", IID__clsDataSetParameters},
    {"_clsScriptParamList", IID__clsScriptParamList},
    {"_Collection", IID__Collection},
    {"__clsScriptControl", DIID___clsScriptControl},
    {"ISupportErrorInfo", IID_ISupportErrorInfo},
    {"IProvideClassInfo", IID_IProvideClassInfo},
    {"IProvideClassInfo2", IID_IProvideClassInfo2},
    {"IConnectionPointContainer", IID_IConnectionPointContainer},
    {"IConnectionPoint", IID_IConnectionPoint},
    {"IEnumConnections", IID_IEnumConnections},
    {"IEnumConnectionPoints", IID_IEnumConnectionPoints},
    {"IEnumVARIANT", IID_IEnumVARIANT},
    {"IClassFactory", IID_IClassFactory},
    {"IErrorInfo", IID_IErrorInfo},
    {"null", IID_NULL},
};

struct PublishedClass {
    const char* name;
    CLSID id;
    IID interfaceId;
};

const PublishedClass classes[] = {
    {"clsScriptControl", CLSID_clsScriptControl, IID__clsScriptControl},
    {"clsProgramFunctionList", CLSID_clsProgramFunctionList, IID__clsProgramFunctionList},
    {"clsProgramFunction", CLSID_clsProgramFunction, IID__clsProgramFunction},
    {"clsDataSetParameters", CLSID_clsDataSetParameters, IID__clsDataSetParameters},
    {"clsScriptParamList", CLSID_clsScriptParamList, IID__clsScriptParamList},
};

ComReference<IUnknown> created(REFCLSID id) { return create<IUnknown>(id, IID_IUnknown); }

ComReference<_Collection> newCollection() {
    const auto list = newFunctionList();
    HostText text(u"VAR V = 1");
    LONG number = 0;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(list->LoadProgramScript_FromDatabase(text.address(), text.address(), &number, &number, &result), S_OK);
    ComReference<_Collection> collection;
    EXPECT_EQ(list->get_FunctionList(collection.receive()), S_OK);
    return collection;
}

template <typename Interface>
ComReference<IUnknown> unknownOf(const ComReference<Interface>& object) {
    return ComReference<IUnknown>(object.get());
}

struct Kind {
    const char* name;
    std::function<ComReference<IUnknown>()> make;
    std::set<std::string> borne;
};

const Kind kinds[] = {
    {"clsScriptControl",
     [] { return created(CLSID_clsScriptControl); },
     {"IUnknown", "IDispatch", "_clsScriptControl", "ISupportErrorInfo", "IProvideClassInfo", "IProvideClassInfo2",
      "IConnectionPointContainer"}},
    {"clsProgramFunctionList",
     [] { return created(CLSID_clsProgramFunctionList); },
     {"IUnknown", "IDispatch", "_clsProgramFunctionList", "ISupportErrorInfo", "IProvideClassInfo",
      "IProvideClassInfo2"}},
    {"clsProgramFunction",
     [] { return created(CLSID_clsProgramFunction); },
     {"IUnknown", "IDispatch", "_clsProgramFunction", "ISupportErrorInfo", "IProvideClassInfo", "IProvideClassInfo2"}},
    {"clsDataSetParameters",
     [] { return created(CLSID_clsDataSetParameters); },
     {"IUnknown", "IDispatch", "_clsDataSetParameters", "ISupportErrorInfo", "IProvideClassInfo",
      "IProvideClassInfo2"}},
    {"clsScriptParamList",
     [] { return created(CLSID_clsScriptParamList); },
     {"IUnknown", "IDispatch", "_clsScriptParamList", "ISupportErrorInfo", "IProvideClassInfo", "IProvideClassInfo2"}},
    {"collection",
     [] { return unknownOf(newCollection()); },
     {"IUnknown", "IDispatch", "_Collection", "ISupportErrorInfo"}},
    {"enumeration of items",
     [] {
         ComReference<IUnknown> enumerator;
         EXPECT_EQ(newCollection()->get__NewEnum(enumerator.receive()), S_OK);
         return enumerator;
     },
     {"IUnknown", "IEnumVARIANT"}},
    {"connection point",
     [] { return unknownOf(connectionPointOf(*newControl().get())); },
     {"IUnknown", "IConnectionPoint"}},
    {"enumeration of connections",
     [] {
         ComReference<IEnumConnections> enumerator;
         EXPECT_EQ(connectionPointOf(*newControl().get())->EnumConnections(enumerator.receive()), S_OK);
         return unknownOf(enumerator);
     },
     {"IUnknown", "IEnumConnections"}},
    {"enumeration of points",
     [] {
         ComReference<IEnumConnectionPoints> enumerator;
         EXPECT_EQ(queryFor<IConnectionPointContainer>(newControl().get(), IID_IConnectionPointContainer)
                       ->EnumConnectionPoints(enumerator.receive()),
                   S_OK);
         return unknownOf(enumerator);
     },
     {"IUnknown", "IEnumConnectionPoints"}},
    {"class factory",
     [] {
         ComReference<IUnknown> factory;
         void* found = nullptr;
         EXPECT_EQ(getClassObject(CLSID_clsScriptControl, IID_IUnknown, &found), S_OK);
         return ComReference<IUnknown>::adopt(static_cast<IUnknown*>(found));
     },
     {"IUnknown", "IClassFactory"}},
};

TEST_F(Objects, BearTheirInterfacesAndNoOthers) {
    for (const Kind& kind : kinds) {
        const ComReference<IUnknown> object = kind.make();
        ASSERT_TRUE(object) << kind.name;
        for (const NamedInterface& candidate : interfaces) {
            void* found = this;
            const HRESULT result = object->QueryInterface(candidate.id, &found);
            if (kind.borne.count(candidate.name) == 0) {
                EXPECT_EQ(result, E_NOINTERFACE) << kind.name << ", " << candidate.name;
                EXPECT_EQ(found, nullptr);
            } else {
                EXPECT_EQ(result, S_OK) << kind.name << ", " << candidate.name;
                ASSERT_NE(found, nullptr);
                static_cast<IUnknown*>(found)->Release();
            }
        }
        EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER) << kind.name;
        EXPECT_EQ(object->QueryInterface(IID_NULL, nullptr), E_POINTER) << kind.name;
    }
}

TEST_F(Objects, EachInterfaceLeadsToEachOtherAndToOneIdentity) {
    for (const Kind& kind : kinds) {
        const ComReference<IUnknown> object = kind.make();
        for (const NamedInterface& from : interfaces) {
            const auto start = queryFor<IUnknown>(object.get(), from.id);
            if (!start) continue;
            for (const NamedInterface& to : interfaces) {
                const auto reached = queryFor<IUnknown>(start.get(), to.id);
                EXPECT_EQ(static_cast<bool>(reached), kind.borne.count(to.name) != 0)
                    << kind.name << ": " << from.name << " to " << to.name;
                if (!reached) continue;
                EXPECT_EQ(queryFor<IUnknown>(reached.get(), IID_IUnknown).get(), object.get())
                    << kind.name << ": " << from.name << " to " << to.name;
                EXPECT_EQ(queryFor<IUnknown>(start.get(), to.id).get(), reached.get())
                    << "the same question has the same answer";
            }
            EXPECT_EQ(queryFor<IUnknown>(start.get(), from.id).get(), start.get()) << kind.name << ", " << from.name;
        }
    }
}

TEST_F(Objects, CountTheirReferences) {
    for (const Kind& kind : kinds) {
        ComReference<IUnknown> object = kind.make();
        EXPECT_EQ(canUnloadNow(), S_FALSE) << kind.name;
        const ULONG count = object->AddRef();
        EXPECT_GE(count, 2U);
        EXPECT_EQ(object->Release(), count - 1);
        object = {};
        EXPECT_EQ(canUnloadNow(), S_OK) << kind.name;
    }
}

// ---------------------------------------------------------------------------------------------------------- creation

ComReference<IClassFactory> factoryOf(REFCLSID id) {
    void* found = nullptr;
    EXPECT_EQ(getClassObject(id, IID_IClassFactory, &found), S_OK);
    return ComReference<IClassFactory>::adopt(static_cast<IClassFactory*>(found));
}

TEST_F(Objects, EachClassIsCreatedUnderEachOfItsInterfaces) {
    for (const PublishedClass& published : classes) {
        const auto factory = factoryOf(published.id);
        for (const IID& id : {IID_IUnknown, IID_IDispatch, published.interfaceId, IID_ISupportErrorInfo}) {
            void* object = nullptr;
            EXPECT_EQ(factory->CreateInstance(nullptr, id, &object), S_OK) << published.name;
            ASSERT_NE(object, nullptr);
            EXPECT_EQ(static_cast<IUnknown*>(object)->Release(), 0U);
        }
    }
}

TEST_F(Objects, AggregationIsRefused) {
    Sink outer;
    for (const PublishedClass& published : classes) {
        const auto factory = factoryOf(published.id);
        for (const IID& id : {IID_IUnknown, IID_IDispatch}) {
            void* object = this;
            EXPECT_EQ(factory->CreateInstance(&outer, id, &object), CLASS_E_NOAGGREGATION) << published.name;
            EXPECT_EQ(object, nullptr);
        }
    }
    EXPECT_EQ(outer.references(), 0);
}

TEST_F(Objects, WhatAFactoryCannotMakeIsRefused) {
    for (const PublishedClass& published : classes) {
        const auto factory = factoryOf(published.id);
        void* object = this;
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IClassFactory, &object), E_NOINTERFACE) << published.name;
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER) << published.name;
    }
}

TEST_F(Objects, OtherClassesAndInterfacesHaveNoFactory) {
    void* found = this;
    EXPECT_EQ(getClassObject(IID__Collection, IID_IClassFactory, &found), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(found, nullptr);
    found = this;
    EXPECT_EQ(getClassObject(CLSID_clsScriptControl, IID__clsScriptControl, &found), E_NOINTERFACE);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(getClassObject(CLSID_clsScriptControl, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(Objects, ALockKeepsTheModule) {
    {
        const auto factory = factoryOf(CLSID_clsScriptControl);
        EXPECT_EQ(factory->LockServer(TRUE), S_OK);
        EXPECT_EQ(factory->LockServer(TRUE), S_OK);
        EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    }
    EXPECT_EQ(canUnloadNow(), S_FALSE);
    EXPECT_EQ(factoryOf(CLSID_clsProgramFunction)->LockServer(FALSE), S_OK);
    EXPECT_EQ(canUnloadNow(), S_OK);
}

TEST_F(Objects, AnUnlockWithoutALockIsRefused) {
    const auto factory = factoryOf(CLSID_clsScriptControl);
    EXPECT_EQ(factory->LockServer(FALSE), E_UNEXPECTED);
    EXPECT_EQ(canUnloadNow(), S_FALSE);
}

TEST_F(Objects, SayWhatTheyAre) {
    for (const PublishedClass& published : classes) {
        const auto object = created(published.id);
        const auto errors = queryFor<ISupportErrorInfo>(object.get(), IID_ISupportErrorInfo);
        EXPECT_EQ(errors->InterfaceSupportsErrorInfo(published.interfaceId), S_OK);
        EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IUnknown), S_FALSE);

        const auto information = queryFor<IProvideClassInfo2>(object.get(), IID_IProvideClassInfo2);
        GUID id = IID_IUnknown;
        const bool hasEvents = IsEqualCLSID(published.id, CLSID_clsScriptControl);
        EXPECT_EQ(information->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &id), hasEvents ? S_OK : E_INVALIDARG);
        EXPECT_TRUE(IsEqualGUID(id, hasEvents ? DIID___clsScriptControl : GUID_NULL)) << published.name;
        EXPECT_EQ(information->GetGUID(0, &id), E_INVALIDARG);
        EXPECT_EQ(information->GetGUID(2, &id), E_INVALIDARG);
        EXPECT_EQ(information->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr), E_POINTER);
        EXPECT_EQ(information->GetClassInfo(nullptr), E_POINTER);

        const auto dispatch = queryFor<IDispatch>(object.get(), IID_IDispatch);
        UINT count = 0;
        EXPECT_EQ(dispatch->GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1U);
        EXPECT_EQ(dispatch->GetTypeInfoCount(nullptr), E_POINTER);
        EXPECT_EQ(dispatch->GetTypeInfo(0, 0, nullptr), E_POINTER);
        ITypeInfo* none = reinterpret_cast<ITypeInfo*>(this);
        EXPECT_EQ(dispatch->GetTypeInfo(1, 0, &none), DISP_E_BADINDEX);
        EXPECT_EQ(none, nullptr);
    }
}

// ----------------------------------------------------------------------------------------------------------- errors

/// What a failed call must leave: its result, and under it the source, the sentence and the interface.
void expectError(HRESULT result, int number, const char* programId, REFIID id, const char* description) {
    EXPECT_EQ(result, automationError(number));
    const ErrorSeen error = takeError();
    EXPECT_EQ(error.source, std::string("prjCorvaneScript.") + programId);
    EXPECT_EQ(error.description, description);
    EXPECT_TRUE(IsEqualGUID(error.id, id)) << programId;
    EXPECT_EQ(takeError().source, "") << "it is taken away by the question";
}

constexpr const char* outOfRange = "Subscript out of range";

TEST_F(Objects, ErrorsNameTheirSource) {
    LONG index = 10;
    BSTR text = nullptr;
    const auto control = newControl();
    VARIANT_BOOL truth = VARIANT_TRUE;
    expectError(control->RunScript(&truth), 9, "clsScriptControl", IID__clsScriptControl, outOfRange);
    EXPECT_EQ(truth, VARIANT_FALSE);
    expectError(control->FinishLoopFlag(), 91, "clsScriptControl", IID__clsScriptControl, "Object variable not set");
    float single = 0;
    expectError(control->EditDataVariable(&index, &single, &truth), 5, "clsScriptControl", IID__clsScriptControl,
                "Invalid procedure call or argument");
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    expectError(list->get_StringValue(&index, &text), 9, "clsScriptParamList", IID__clsScriptParamList, outOfRange);
    EXPECT_EQ(text, nullptr);
    const auto set = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    expectError(set->get_DataSetVariable(&index, &text), 9, "clsDataSetParameters", IID__clsDataSetParameters,
                outOfRange);
    const auto function = create<_clsProgramFunction>(CLSID_clsProgramFunction, IID__clsProgramFunction);
    expectError(function->get_Param(&index, &text), 9, "clsProgramFunction", IID__clsProgramFunction, outOfRange);
    HostText missing(u"no/such/folder/script.txt");
    const auto functions = newFunctionList();
    expectError(functions->LoadProgramScript_FromFile(missing.address(), &truth), 76, "clsProgramFunctionList",
                IID__clsProgramFunctionList, "Path not found: 'no/such/folder/script.txt'");
}

TEST_F(Objects, ARunTimeErrorOfAScriptIsTheErrorOfItsRun) {
    struct Row {
        const char16_t* script;
        int number;
        const char* description;
    };
    const Row rows[] = {
        {u"VAR N = 1\r\nSet(N, \"many\")\r\nIncrement(N)", 13, "Type mismatch"},
        {u"IfNotFinishLoopFlag(\"?\", L)\r\nL:\r\nPark()", 438, "Object doesn't support this property or method"},
        {u"VAR Large = 2147483647\r\nTareWeightEx(Large, 0, 0, 0, 0, 0)", 6, "Overflow"},
    };
    const auto control = newControl();
    Sink sink;
    const Advised advised(*control.get(), sink);
    for (const Row& row : rows) {
        EXPECT_TRUE(load(*control.get(), row.script));
        VARIANT_BOOL result = VARIANT_TRUE;
        expectError(control->RunScript(&result), row.number, "clsScriptControl", IID__clsScriptControl,
                    row.description);
        EXPECT_EQ(result, VARIANT_FALSE);
        EXPECT_TRUE(load(*control.get(), u"Park()"));
        EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE})) << "the object is usable";
    }
}

TEST_F(Objects, FileErrorsAreTheFileSystems) {
    const TemporaryFolder folder;
    struct Row {
        std::u16string name;
        int number;
    };
    const auto control = newControl();
    for (const Row& row : {Row{folder.path("none/script.txt").u16string(), 76}, Row{folder.path("").u16string(), 75}}) {
        HostText name(row.name);
        VARIANT_BOOL result = VARIANT_TRUE;
        EXPECT_EQ(control->LoadScript_FromFile(name.address(), &result), automationError(row.number))
            << toUtf8(row.name);
        EXPECT_EQ(result, VARIANT_FALSE);
    }
}

// ------------------------------------------------------------------------------------------------- clsScriptControl

TEST_F(Objects, AFreshControlIsEmpty) {
    const auto control = newControl();
    ::enumScriptSource from = ::ssFromFile;
    EXPECT_EQ(control->get_ScriptFrom(&from), S_OK);
    EXPECT_EQ(from, ::ssFromDataBase);
    BSTR file = reinterpret_cast<BSTR>(this);
    EXPECT_EQ(control->get_ScriptFile(&file), S_OK);
    EXPECT_NE(file, nullptr) << "an empty text, not none";
    EXPECT_EQ(taken(file), u"");
    LONG number = 7;
    EXPECT_EQ(control->get_ScriptDB_UID(&number), S_OK);
    EXPECT_EQ(number, 0);
    number = 7;
    EXPECT_EQ(control->get_ScriptDB_Version(&number), S_OK);
    EXPECT_EQ(number, 0);
}

TEST_F(Objects, AControlKnowsWhereItsScriptIsFrom) {
    const auto control = newControl();
    HostText script(u"Park()");
    HostText name(u"Daily check");
    LONG uid = 7;
    LONG version = 12;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(control->LoadScript_FromScript(script.address(), name.address(), &uid, &version, &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    BSTR file = nullptr;
    EXPECT_EQ(control->get_ScriptFile(&file), S_OK);
    EXPECT_EQ(taken(file), u"Daily check");
    LONG number = 0;
    EXPECT_EQ(control->get_ScriptDB_UID(&number), S_OK);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(control->get_ScriptDB_Version(&number), S_OK);
    EXPECT_EQ(number, 12);
    ::enumScriptSource from = ::ssFromDataBase;
    EXPECT_EQ(control->get_ScriptFrom(&from), S_OK);
    EXPECT_EQ(from, ::ssFromFile) << "inverted, as hosts expect it";

    const TemporaryFolder folder;
    HostText path(folder.path("new.txt").u16string());
    EXPECT_EQ(control->LoadScript_FromFile(path.address(), &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_TRUE(std::filesystem::exists(folder.path("new.txt"))) << "a file that is not there is made";
    EXPECT_EQ(control->get_ScriptFile(&file), S_OK);
    EXPECT_EQ(taken(file), folder.path("new.txt").u16string());
    EXPECT_EQ(control->get_ScriptDB_UID(&number), S_OK);
    EXPECT_EQ(number, -1);
    EXPECT_EQ(control->get_ScriptDB_Version(&number), S_OK);
    EXPECT_EQ(number, -1);
    EXPECT_EQ(control->get_ScriptFrom(&from), S_OK);
    EXPECT_EQ(from, ::ssFromDataBase);
}

TEST_F(Objects, NullTextsAreEmptyTexts) {
    const auto control = newControl();
    BSTR none = nullptr;
    LONG number = 0;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(control->LoadScript_FromScript(&none, &none, &number, &number, &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    BSTR value = nullptr;
    EXPECT_EQ(control->GetConstant(&none, &value), S_OK);
    EXPECT_EQ(taken(value), u"");
}

TEST_F(Objects, MemoryIsReadByNameAndKind) {
    const auto control = newControl();
    ASSERT_TRUE(load(*control.get(), u"ENV E = Lab 2\r\nCONST C = 10\r\nVAR V = 2.5\r\nVAR T = \"text\"\r\nPark()"));
    struct Row {
        const char16_t* name;
        const char16_t* environment;
        const char16_t* constant;
        const char* value;
    };
    for (const Row& row : {Row{u"E", u"Lab 2", u"", "8 Lab 2"}, Row{u"c", u"", u"10", "4 10"},
                           Row{u"V", u"", u"", "4 2.5"}, Row{u"T", u"", u"", "8 text"}, Row{u"none", u"", u"", "8 "}}) {
        HostText name(row.name);
        BSTR text = nullptr;
        EXPECT_EQ(control->GetEnvironmentVariable(name.address(), &text), S_OK);
        EXPECT_EQ(taken(text), row.environment);
        EXPECT_EQ(control->GetConstant(name.address(), &text), S_OK);
        EXPECT_EQ(taken(text), row.constant);
        VARIANT value;
        EXPECT_EQ(control->GetMemoryValue(name.address(), &value), S_OK);
        std::ostringstream shown;
        shown << V_VT(&value) << " ";
        if (V_VT(&value) == VT_R4) shown << V_R4(&value);
        if (V_VT(&value) == VT_BSTR) shown << toUtf8(viewOf(V_BSTR(&value)));
        EXPECT_EQ(shown.str(), row.value);
        VariantClear(&value);
    }
}

// A script declares singles and texts; the memory takes any value.
TEST_F(Objects, MemoryIsReadInTheTypeThatItHolds) {
    const auto control = newControl();
    ASSERT_TRUE(load(*control.get(), u"VAR V"));
    clsData item = facadeOf(*control.get()).engine().DataMemory().Item(1);
    HostText name(u"V");
    struct Row {
        Value value;
        VARTYPE type;
    };
    for (const Row& row : {Row{Value::ofInteger(-7), VT_I2}, Row{Value::ofLong(-7), VT_I4},
                           Row{Value::ofSingle(-7), VT_R4}, Row{Value::ofDouble(-7), VT_R8}}) {
        item.setInitialValue(row.value);
        OwnedVariant held;
        EXPECT_EQ(control->GetMemoryValue(name.address(), held.get()), S_OK);
        EXPECT_EQ(V_VT(held.get()), row.type);
        OwnedVariant number;
        EXPECT_EQ(VariantChangeType(number.get(), held.get(), 0, VT_I4), S_OK);
        EXPECT_EQ(V_I4(number.get()), -7);
    }
    item.setInitialValue(Value::ofBoolean(true));
    OwnedVariant truth;
    EXPECT_EQ(control->GetMemoryValue(name.address(), truth.get()), S_OK);
    EXPECT_EQ(V_VT(truth.get()), VT_BOOL);
    EXPECT_EQ(V_BOOL(truth.get()), VARIANT_TRUE);
    item.setInitialValue(Value::ofObject(*makeReference<clsDataSetParameters>()));
    OwnedVariant none;
    expectError(control->GetMemoryValue(name.address(), none.get()), 13, "clsScriptControl", IID__clsScriptControl,
                "Type mismatch");
}

TEST_F(Objects, KindsHaveNames) {
    const auto control = newControl();
    struct Row {
        int kind;
        const char16_t* name;
    };
    for (const Row& row : {Row{0, u"Unknown"}, Row{37, u"Park"}, Row{52, u"BlockStart"},
                           Row{53, u"Function not recognised"}, Row{-1, u"Function not recognised"}}) {
        LONG kind = row.kind;
        VARIANT name;
        EXPECT_EQ(control->FunctionNameFromType(cellOf<::enumCommandType>(kind), &name), S_OK);
        ASSERT_EQ(V_VT(&name), VT_BSTR);
        EXPECT_EQ(taken(V_BSTR(&name)), row.name);
    }
}

TEST_F(Objects, ModesAreTaken) {
    const auto control = newControl();
    for (VARIANT_BOOL mode : {VARIANT_TRUE, VARIANT_FALSE, VARIANT_BOOL{2}})
        EXPECT_EQ(control->put_TestMode(&mode), S_OK);
    for (const int options : {0, 1, 2, 4, 7, -1, 0}) {
        LONG mode = options;
        EXPECT_EQ(control->put_DebugMode(cellOf<::enumDebugOptions>(mode)), S_OK);
    }
}

TEST_F(Objects, TheDebugModeDecidesWhetherBoundParametersAreTraced) {
    struct BoundParameters final : TraceSink {
        int count = 0;
        void trace(enumDebugOptions, std::u16string_view line) override {
            if (line.starts_with(u"            Data: ")) ++count;
        }
    };
    const auto control = newControl();
    for (const int options : {0, 1, 2, -1, 6, 7, 0}) {
        LONG mode = options;
        EXPECT_EQ(control->put_DebugMode(cellOf<::enumDebugOptions>(mode)), S_OK);
        BoundParameters bound;
        facadeOf(*control.get()).engine().setTraceSink(&bound);
        EXPECT_TRUE(load(*control.get(), u"Info(\"x\")"));
        facadeOf(*control.get()).engine().setTraceSink(nullptr);
        EXPECT_EQ(bound.count, options & 1) << options;
    }
}

TEST_F(Objects, ARejectedScriptIsAResultAndNoError) {
    const auto control = newControl();
    // The operator is told only where the tests can see it.
    HostText script(u"VAR V = 99999999999999999999999999999999999999999");
    LONG number = 0;
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(control->LoadScript_FromScript(script.address(), script.address(), &number, &number, &result), S_OK);
    EXPECT_EQ(result, VARIANT_FALSE);
}

template <typename Interface>
struct NullCall {
    const char* name;
    std::function<HRESULT(Interface&)> call;
};

template <typename Interface>
void expectNullsRefused(Interface& object, const std::vector<NullCall<Interface>>& calls) {
    SetErrorInfo(0, nullptr);
    for (const NullCall<Interface>& row : calls) EXPECT_EQ(row.call(object), E_POINTER) << row.name;
    EXPECT_EQ(takeError().source, "");
}

TEST_F(Objects, AControlRefusesNullPointers) {
    const auto control = newControl();
    ASSERT_TRUE(load(*control.get(), u"Park()"));
    HostText text(u"V");
    LONG number = 1;
    float single = 1;
    VARIANT_BOOL truth = VARIANT_FALSE;
    BSTR answer = nullptr;
    SAFEARRAY* array = nullptr;
    auto kind = ::ctPark;
    VARIANT value;
    VariantInit(&value);
    BSTR* const t = text.address();
    using Control = _clsScriptControl;
    expectNullsRefused<Control>(
        *control.get(),
        {
            {"TestMode", [&](Control& c) { return c.put_TestMode(nullptr); }},
            {"ScriptFrom", [&](Control& c) { return c.get_ScriptFrom(nullptr); }},
            {"ScriptFile", [&](Control& c) { return c.get_ScriptFile(nullptr); }},
            {"ScriptDB_UID", [&](Control& c) { return c.get_ScriptDB_UID(nullptr); }},
            {"ScriptDB_Version", [&](Control& c) { return c.get_ScriptDB_Version(nullptr); }},
            {"LoadScript_FromFile 1", [&](Control& c) { return c.LoadScript_FromFile(nullptr, &truth); }},
            {"LoadScript_FromFile 2", [&](Control& c) { return c.LoadScript_FromFile(t, nullptr); }},
            {"LoadScript_FromScript 1",
             [&](Control& c) { return c.LoadScript_FromScript(nullptr, t, &number, &number, &truth); }},
            {"LoadScript_FromScript 2",
             [&](Control& c) { return c.LoadScript_FromScript(t, nullptr, &number, &number, &truth); }},
            {"LoadScript_FromScript 3",
             [&](Control& c) { return c.LoadScript_FromScript(t, t, nullptr, &number, &truth); }},
            {"LoadScript_FromScript 4",
             [&](Control& c) { return c.LoadScript_FromScript(t, t, &number, nullptr, &truth); }},
            {"LoadScript_FromScript 5",
             [&](Control& c) { return c.LoadScript_FromScript(t, t, &number, &number, nullptr); }},
            {"RunScript", [&](Control& c) { return c.RunScript(nullptr); }},
            {"DebugMode", [&](Control& c) { return c.put_DebugMode(nullptr); }},
            {"GetEnvironmentVariable 1", [&](Control& c) { return c.GetEnvironmentVariable(nullptr, &answer); }},
            {"GetEnvironmentVariable 2", [&](Control& c) { return c.GetEnvironmentVariable(t, nullptr); }},
            {"GetConstant 1", [&](Control& c) { return c.GetConstant(nullptr, &answer); }},
            {"GetConstant 2", [&](Control& c) { return c.GetConstant(t, nullptr); }},
            {"GetMemoryValue 1", [&](Control& c) { return c.GetMemoryValue(nullptr, &value); }},
            {"GetMemoryValue 2", [&](Control& c) { return c.GetMemoryValue(t, nullptr); }},
            {"GetEditable 1", [&](Control& c) { return c.GetEditable(nullptr, &number); }},
            {"GetEditable 2", [&](Control& c) { return c.GetEditable(&array, nullptr); }},
            {"EditDataVariable 1", [&](Control& c) { return c.EditDataVariable(nullptr, &single, &truth); }},
            {"EditDataVariable 2", [&](Control& c) { return c.EditDataVariable(&number, nullptr, &truth); }},
            {"EditDataVariable 3", [&](Control& c) { return c.EditDataVariable(&number, &single, nullptr); }},
            {"FunctionNameFromType 1", [&](Control& c) { return c.FunctionNameFromType(nullptr, &value); }},
            {"FunctionNameFromType 2", [&](Control& c) { return c.FunctionNameFromType(&kind, nullptr); }},
        });
    EXPECT_EQ(V_VT(&value), VT_EMPTY);
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_FALSE})) << "the script is still there";
}

// ------------------------------------------------------------------------------------------------ editable variables

class Editable : public ComponentTest {
protected:
    ComReference<_clsScriptControl> control = newControl();
    SAFEARRAY* array = nullptr;
    LONG count = 77;

    void SetUp() override { ASSERT_TRUE(load(*control.get(), editableScript)); }
    void TearDown() override {
        EXPECT_EQ(SafeArrayDestroy(array), S_OK);
        control = {};
        ComponentTest::TearDown();
    }

    std::vector<std::string> row(LONG r) const {
        std::vector<std::string> cells;
        for (LONG c = 0; c < 6; ++c) {
            LONG place[] = {r, c};
            BSTR cell = nullptr;
            EXPECT_EQ(SafeArrayGetElement(array, place, &cell), S_OK);
            cells.push_back(toUtf8(taken(cell)));
        }
        return cells;
    }
};

TEST_F(Editable, WithoutEditableItemsTheArrayIsLeftAlone) {
    EXPECT_EQ(control->GetEditable(&array, &count), S_OK);
    EXPECT_EQ(array, nullptr);
    EXPECT_EQ(count, 0);
}

TEST_F(Editable, EachItemIsARowOfSixTexts) {
    makeItemsEditable(*control.get());
    EXPECT_EQ(control->GetEditable(&array, &count), S_OK);
    EXPECT_EQ(count, 2);
    ASSERT_NE(array, nullptr);
    ASSERT_EQ(SafeArrayGetDim(array), 2U);
    const LONG bounds[2][2] = {{0, 1}, {0, 5}};
    for (UINT dimension = 0; dimension < 2; ++dimension) {
        LONG lower = 7;
        LONG upper = 7;
        EXPECT_EQ(SafeArrayGetLBound(array, dimension + 1, &lower), S_OK);
        EXPECT_EQ(SafeArrayGetUBound(array, dimension + 1, &upper), S_OK);
        EXPECT_EQ(lower, bounds[dimension][0]);
        EXPECT_EQ(upper, bounds[dimension][1]);
    }
    EXPECT_EQ(row(0), (std::vector<std::string>{"1", "3", "-0.5", "1E+20", "mm", "How high?"}));
    EXPECT_EQ(row(1), (std::vector<std::string>{"3", "Run", "0", "0", "", ""}));
}

TEST_F(Editable, AnEditIsSeen) {
    makeItemsEditable(*control.get());
    LONG index = 1;
    float value = 4.5;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(control->EditDataVariable(&index, &value, &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_EQ(control->GetEditable(&array, &count), S_OK);
    EXPECT_EQ(row(0)[1], "4.5");
}

TEST_F(Editable, TheHostsOldArrayIsReleased) {
    makeItemsEditable(*control.get());
    SAFEARRAYBOUND bounds[] = {{3, 1}};
    array = SafeArrayCreate(VT_BSTR, 1, bounds);
    EXPECT_EQ(control->GetEditable(&array, &count), S_OK);
    EXPECT_EQ(SafeArrayGetDim(array), 2U);
    EXPECT_EQ(control->GetEditable(&array, &count), S_OK);
    EXPECT_EQ(row(0)[0], "1");
}

TEST_F(Editable, ALockedArrayStays) {
    makeItemsEditable(*control.get());
    SAFEARRAYBOUND bounds[] = {{3, 1}};
    SAFEARRAY* const before = array = SafeArrayCreate(VT_BSTR, 1, bounds);
    ASSERT_EQ(SafeArrayLock(array), S_OK);
    expectError(control->GetEditable(&array, &count), 10, "clsScriptControl", IID__clsScriptControl,
                "This array is fixed or temporarily locked");
    EXPECT_EQ(array, before);
    EXPECT_EQ(count, 77);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
}

TEST_F(Editable, AnArrayOfFixedSizeStays) {
    makeItemsEditable(*control.get());
    SAFEARRAYBOUND bounds[] = {{3, 1}};
    SAFEARRAY* const before = array = SafeArrayCreate(VT_BSTR, 1, bounds);
    array->fFeatures |= FADF_FIXEDSIZE;
    expectError(control->GetEditable(&array, &count), 10, "clsScriptControl", IID__clsScriptControl,
                "This array is fixed or temporarily locked");
    EXPECT_EQ(array, before);
    array->fFeatures &= static_cast<USHORT>(~FADF_FIXEDSIZE);
}

// ------------------------------------------------------------------------------------------------------- the records

/// A property that starts at `initial` and keeps what is written, unchanged.
template <typename Interface, typename Value, typename Get, typename Put>
void expectProperty(const char* name, Interface& object, Get get, Put put, Value initial,
                    const std::vector<Value>& values) {
    Value value = values.front();
    EXPECT_EQ((object.*get)(&value), S_OK) << name;
    EXPECT_EQ(value, initial) << name;
    for (const Value& written : values) {
        value = written;
        EXPECT_EQ((object.*put)(&value), S_OK) << name;
        EXPECT_EQ(value, written) << name << ": the host's own variable";
        value = initial;
        EXPECT_EQ((object.*get)(&value), S_OK) << name;
        EXPECT_EQ(value, written) << name;
    }
    EXPECT_EQ((object.*get)(nullptr), E_POINTER) << name;
    EXPECT_EQ((object.*put)(nullptr), E_POINTER) << name;
    value = initial;
    EXPECT_EQ((object.*get)(&value), S_OK) << name;
    EXPECT_EQ(value, values.back()) << name << ": after refused calls";
}

/// The same of an enumeration, as numbers: hosts are not held to its values.
template <typename Enumeration, typename Interface, typename Get, typename Put>
void expectEnumeration(const char* name, Interface& object, Get get, Put put) {
    LONG value = 7;
    EXPECT_EQ((object.*get)(cellOf<Enumeration>(value)), S_OK) << name;
    EXPECT_EQ(value, 0) << name;
    for (const LONG written : {1, 77, -5}) {
        value = written;
        EXPECT_EQ((object.*put)(cellOf<Enumeration>(value)), S_OK) << name;
        value = 0;
        EXPECT_EQ((object.*get)(cellOf<Enumeration>(value)), S_OK) << name;
        EXPECT_EQ(value, written) << name;
    }
    EXPECT_EQ((object.*get)(nullptr), E_POINTER) << name;
    EXPECT_EQ((object.*put)(nullptr), E_POINTER) << name;
}

TEST_F(Objects, ADataSetKeepsItsValues) {
    using Set = _clsDataSetParameters;
    const auto set = create<Set>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    Set& object = *set.get();
    const std::vector<float> singles = {1.5F, -3e38F, 1e-45F, 0.0F, 7};
    const auto single = [&](const char* name, auto get, auto put) {
        expectProperty<Set, float>(name, object, get, put, 0, singles);
    };
    single("HelixAngle", &Set::get_HelixAngle, &Set::put_HelixAngle);
    single("TipSpeed", &Set::get_TipSpeed, &Set::put_TipSpeed);
    single("Height", &Set::get_Height, &Set::put_Height);
    single("Force", &Set::get_Force, &Set::put_Force);
    single("SampleDelta", &Set::get_SampleDelta, &Set::put_SampleDelta);
    single("LevellingTrigger", &Set::get_LevellingTrigger, &Set::put_LevellingTrigger);
    single("LevellingHix", &Set::get_LevellingHix, &Set::put_LevellingHix);
    single("LevellingTip", &Set::get_LevellingTip, &Set::put_LevellingTip);
    expectProperty<Set, LONG>("Direction", object, &Set::get_Direction, &Set::put_Direction, 3,
                              {-1, 2147483647, 0, -2147483647 - 1});
    expectEnumeration<::enumSampleMode>("SampleType", object, &Set::get_SampleType, &Set::put_SampleType);
    expectEnumeration<::enumDataSetType>("DataSetType", object, &Set::get_DataSetType, &Set::put_DataSetType);
    expectEnumeration<::enumTestResult>("TestResult", object, &Set::get_TestResult, &Set::put_TestResult);
    expectEnumeration<::enumLevellingFrom>("LevellingFrom", object, &Set::get_LevellingFrom, &Set::put_LevellingFrom);
    expectEnumeration<::enumLevellingType>("LevellingType", object, &Set::get_LevellingType, &Set::put_LevellingType);
    float helix = 0;
    EXPECT_EQ(object.get_HelixAngle(&helix), S_OK);
    EXPECT_EQ(helix, 7) << "each property has its own place";
}

/// Ten or eight places of a record: what is written is read, others stay, indexes outside fail and change nothing.
template <typename Interface, typename Get, typename Put>
void expectTexts(Interface& object, Get get, Put put, LONG places) {
    for (LONG i = 0; i < places; ++i) {
        BSTR text = nullptr;
        EXPECT_EQ((object.*get)(&i, &text), S_OK);
        EXPECT_EQ(taken(text), u"") << i;
    }
    for (LONG i = 0; i < places; ++i)
        for (const char* content : {"first ", "second "}) {
            HostText text(fromUtf8(content + std::to_string(i)));
            EXPECT_EQ((object.*put)(&i, text.address()), S_OK);
        }
    for (LONG outside : {places, LONG{-1}, LONG{2147483647}, LONG{-2147483647 - 1}}) {
        HostText text(u"outside");
        EXPECT_EQ((object.*put)(&outside, text.address()), automationError(9)) << outside;
        BSTR answer = reinterpret_cast<BSTR>(&object);
        EXPECT_EQ((object.*get)(&outside, &answer), automationError(9)) << outside;
        EXPECT_EQ(answer, nullptr);
    }
    LONG index = 0;
    HostText text(u"refused");
    BSTR answer = nullptr;
    EXPECT_EQ((object.*put)(nullptr, text.address()), E_POINTER);
    EXPECT_EQ((object.*put)(&index, nullptr), E_POINTER);
    EXPECT_EQ((object.*get)(nullptr, &answer), E_POINTER);
    EXPECT_EQ((object.*get)(&index, nullptr), E_POINTER);
    for (LONG i = 0; i < places; ++i) {
        EXPECT_EQ((object.*get)(&i, &answer), S_OK);
        EXPECT_EQ(toUtf8(taken(answer)), "second " + std::to_string(i));
    }
}

TEST_F(Objects, ADataSetHasEightTexts) {
    using Set = _clsDataSetParameters;
    const auto set = create<Set>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    expectTexts(*set.get(), &Set::get_DataSetVariable, &Set::put_AddDataSetVariable, 8);
}

TEST_F(Objects, AParameterListHasTenOfEach) {
    using List = _clsScriptParamList;
    const auto list = create<List>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    expectTexts(*list.get(), &List::get_StringValue, &List::put_StringValue, 10);
    for (LONG i = 0; i < 10; ++i) {
        float single = 7;
        EXPECT_EQ(list->get_SingleValue(&i, &single), S_OK);
        EXPECT_EQ(single, 0);
        VARIANT_BOOL truth = VARIANT_TRUE;
        EXPECT_EQ(list->get_BooleanValue(&i, &truth), S_OK);
        EXPECT_EQ(truth, VARIANT_FALSE);
    }
    for (LONG i = 0; i < 10; ++i) {
        float single = static_cast<float>(i) + 0.5F;
        EXPECT_EQ(list->put_SingleValue(&i, &single), S_OK);
        VARIANT_BOOL truth = i % 2 == 0 ? VARIANT_BOOL{0x1234} : VARIANT_FALSE;
        EXPECT_EQ(list->put_BooleanValue(&i, &truth), S_OK);
    }
    for (LONG outside : {10, -1}) {
        float single = 7;
        VARIANT_BOOL truth = VARIANT_TRUE;
        EXPECT_EQ(list->get_SingleValue(&outside, &single), automationError(9));
        EXPECT_EQ(list->put_SingleValue(&outside, &single), automationError(9));
        EXPECT_EQ(list->get_BooleanValue(&outside, &truth), automationError(9));
        EXPECT_EQ(list->put_BooleanValue(&outside, &truth), automationError(9));
    }
    for (LONG i = 0; i < 10; ++i) {
        float single = 0;
        EXPECT_EQ(list->get_SingleValue(&i, &single), S_OK);
        EXPECT_EQ(single, static_cast<float>(i) + 0.5F);
        VARIANT_BOOL truth = 1;
        EXPECT_EQ(list->get_BooleanValue(&i, &truth), S_OK);
        EXPECT_EQ(truth, i % 2 == 0 ? VARIANT_TRUE : VARIANT_FALSE);
    }
    LONG index = 0;
    float single = 0;
    VARIANT_BOOL truth = VARIANT_FALSE;
    expectNullsRefused<List>(*list.get(),
                             {{"SingleValue 1", [&](List& l) { return l.get_SingleValue(nullptr, &single); }},
                              {"SingleValue 2", [&](List& l) { return l.get_SingleValue(&index, nullptr); }},
                              {"SingleValue 3", [&](List& l) { return l.put_SingleValue(nullptr, &single); }},
                              {"SingleValue 4", [&](List& l) { return l.put_SingleValue(&index, nullptr); }},
                              {"BooleanValue 1", [&](List& l) { return l.get_BooleanValue(nullptr, &truth); }},
                              {"BooleanValue 2", [&](List& l) { return l.get_BooleanValue(&index, nullptr); }},
                              {"BooleanValue 3", [&](List& l) { return l.put_BooleanValue(nullptr, &truth); }},
                              {"BooleanValue 4", [&](List& l) { return l.put_BooleanValue(&index, nullptr); }}});
}

TEST_F(Objects, AFunctionKeepsKindNameAndParameters) {
    using Function = _clsProgramFunction;
    const auto function = create<Function>(CLSID_clsProgramFunction, IID__clsProgramFunction);
    expectEnumeration<::enumCommandType>("FunctionType", *function.get(), &Function::get_FunctionType,
                                         &Function::put_FunctionType);
    BSTR answer = nullptr;
    EXPECT_EQ(function->get_FunctionName(&answer), S_OK);
    EXPECT_EQ(taken(answer), u"");
    HostText name(u"a name");
    EXPECT_EQ(function->put_FunctionName(name.address()), S_OK);
    EXPECT_EQ(function->get_FunctionName(&answer), S_OK);
    EXPECT_EQ(taken(answer), u"a name");

    LONG count = 7;
    EXPECT_EQ(function->get_ParamCount(&count), S_OK);
    EXPECT_EQ(count, 0);
    LONG index = 0;
    EXPECT_EQ(function->get_Param(&index, &answer), automationError(9)) << "there is none yet";
    HostText first(u"first");
    EXPECT_EQ(function->AddParam(first.get()), S_OK);
    EXPECT_EQ(function->AddParam(nullptr), S_OK) << "no text is the empty text";
    EXPECT_EQ(function->get_ParamCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(function->get_Param(&index, &answer), S_OK);
    EXPECT_EQ(taken(answer), u"first");
    index = 1;
    EXPECT_EQ(function->get_Param(&index, &answer), S_OK);
    EXPECT_EQ(taken(answer), u"");
    for (LONG outside : {2, -1}) EXPECT_EQ(function->get_Param(&outside, &answer), automationError(9));
    VARIANT_BOOL print = VARIANT_TRUE;
    EXPECT_EQ(function->DebugPrint(&index, &print), S_OK);
    expectNullsRefused<Function>(*function.get(),
                                 {{"FunctionName 1", [&](Function& f) { return f.get_FunctionName(nullptr); }},
                                  {"FunctionName 2", [&](Function& f) { return f.put_FunctionName(nullptr); }},
                                  {"Param 1", [&](Function& f) { return f.get_Param(nullptr, &answer); }},
                                  {"Param 2", [&](Function& f) { return f.get_Param(&index, nullptr); }},
                                  {"ParamCount", [&](Function& f) { return f.get_ParamCount(nullptr); }},
                                  {"DebugPrint 1", [&](Function& f) { return f.DebugPrint(nullptr, &print); }},
                                  {"DebugPrint 2", [&](Function& f) { return f.DebugPrint(&index, nullptr); }}});
}

TEST_F(Objects, AFunctionListRefusesNullPointers) {
    using List = _clsProgramFunctionList;
    const auto list = newFunctionList();
    HostText text(u"Park()");
    BSTR* const t = text.address();
    LONG number = 0;
    VARIANT_BOOL truth = VARIANT_FALSE;
    _Collection* collection = nullptr;
    expectNullsRefused<List>(
        *list.get(),
        {{"ScriptLoaded", [&](List& l) { return l.get_ScriptLoaded(nullptr); }},
         {"FunctionList", [&](List& l) { return l.get_FunctionList(nullptr); }},
         {"LoadProgramScript_FromFile 1", [&](List& l) { return l.LoadProgramScript_FromFile(nullptr, &truth); }},
         {"LoadProgramScript_FromFile 2", [&](List& l) { return l.LoadProgramScript_FromFile(t, nullptr); }},
         {"LoadProgramScript_FromDatabase 1",
          [&](List& l) { return l.LoadProgramScript_FromDatabase(nullptr, t, &number, &number, &truth); }},
         {"LoadProgramScript_FromDatabase 2",
          [&](List& l) { return l.LoadProgramScript_FromDatabase(t, nullptr, &number, &number, &truth); }},
         {"LoadProgramScript_FromDatabase 3",
          [&](List& l) { return l.LoadProgramScript_FromDatabase(t, t, nullptr, &number, &truth); }},
         {"LoadProgramScript_FromDatabase 4",
          [&](List& l) { return l.LoadProgramScript_FromDatabase(t, t, &number, nullptr, &truth); }},
         {"LoadProgramScript_FromDatabase 5",
          [&](List& l) { return l.LoadProgramScript_FromDatabase(t, t, &number, &number, nullptr); }},
         {"CreateFunctionList 1", [&](List& l) { return l.CreateFunctionList(nullptr, &truth); }},
         {"CreateFunctionList 2", [&](List& l) { return l.CreateFunctionList(&collection, nullptr); }}});
    EXPECT_EQ(list->get_FunctionList(&collection), S_OK);
    EXPECT_EQ(collection, nullptr) << "none of the refused calls loaded anything";
}

TEST_F(Objects, AFunctionListLoadsFilesToo) {
    const TemporaryFolder folder;
    folder.write("script.txt", "VAR V = 1\r\nPark()");
    const auto list = newFunctionList();
    HostText name(folder.path("script.txt").u16string());
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(list->LoadProgramScript_FromFile(name.address(), &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    ComReference<_Collection> collection;
    EXPECT_EQ(list->CreateFunctionList(collection.receive(), &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    LONG count = 0;
    EXPECT_EQ(collection->get_Count(&count), S_OK);
    EXPECT_EQ(count, 2);
}

}  // namespace
}  // namespace corvane::testing
