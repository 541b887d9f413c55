// The contract of IDispatch, for every member of every object that hosts meet.

#include <gtest/gtest.h>

#include <cctype>
#include <functional>

#include "tests/com/component.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/published_objects.h"

namespace corvane::testing {
namespace {

// Members of the tests, by their published identifiers.
constexpr DISPID loadScript = 0x60030008;
constexpr DISPID getEditable = 0x60030037;
constexpr DISPID editDataVariable = 0x60030038;
constexpr DISPID scriptUid = 0x68030002;
constexpr DISPID scriptVersion = 0x68030001;
constexpr DISPID createFunctionList = 0x60030004;
constexpr DISPID functionList = 0x68030000;
constexpr DISPID helixAngle = 0x6803000F;
constexpr DISPID direction = 0x68030005;
constexpr DISPID singleValue = 0x68030002;
constexpr DISPID stringValue = 0x68030001;
constexpr DISPID booleanValue = 0x68030000;
constexpr DISPID collectionAdd = 1;
constexpr DISPID collectionCount = 2;
constexpr DISPID collectionRemove = 3;

std::u16string wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::u16string inCase(const std::string& name, int (*change)(int)) {
    std::u16string changed = wide(name);
    for (char16_t& unit : changed) unit = static_cast<char16_t>(change(unit));
    return changed;
}

/// What GetIDsOfNames says to a member and names of its parameters.
struct Identifiers {
    HRESULT result = S_OK;
    std::vector<DISPID> found;
};

Identifiers identifiersOf(IDispatch& object, std::vector<std::u16string> names) {
    std::vector<OLECHAR*> passed;
    for (std::u16string& name : names) passed.push_back(reinterpret_cast<OLECHAR*>(name.data()));
    Identifiers answer;
    answer.found.resize(names.size(), 77);
    answer.result = object.GetIDsOfNames(IID_NULL, passed.data(), static_cast<UINT>(passed.size()), LOCALE_USER_DEFAULT,
                                         answer.found.data());
    return answer;
}

/// An argument that the parameter takes, of its own type.
VARIANT suitable(const PublishedParameter& parameter) {
    static VARIANT variable = emptyVariant();
    if (parameter.optional) return leftOut();
    if (parameter.name == "tScript" || parameter.name == "tFileName") return text(u"tests/scripts/texts.script");
    if (parameter.type == "string") return text(u"VAR A = 1\r\nSet(A, 2)");
    if (parameter.type == "single") return single(0);
    if (parameter.type == "boolean") return boolean(false);
    if (parameter.type == "variant") return integer(1);  // the position of an entry, too
    if (parameter.type == "_Collection") return object(nullptr);
    if (parameter.type == "string()") {
        VariantClear(&variable);
        return reference(variable);
    }
    return integer(0);
}

std::vector<VARIANT> suitable(const PublishedMember& member) {
    std::vector<VARIANT> arguments;
    for (const PublishedParameter& parameter : member.parameters) arguments.push_back(suitable(parameter));
    return arguments;
}

Answer call(IDispatch& object, const PublishedMember& member, const std::vector<VARIANT>& inOrder) {
    Arguments arguments(inOrder);
    if (member.kind == "put" && !inOrder.empty()) arguments.named({DISPID_PROPERTYPUT});
    return invoke(object, member.id, member.flags(), std::move(arguments));
}

VARTYPE variantType(const std::string& type) {
    if (type.empty()) return VT_EMPTY;
    if (type == "string") return VT_BSTR;
    if (type == "boolean") return VT_BOOL;
    if (type == "single") return VT_R4;
    if (type == "_Collection") return VT_DISPATCH;
    if (type == "unknown") return VT_UNKNOWN;
    return VT_I4;
}

/// Nothing that a test made outlives it.
class Dispatch : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(canUnloadNow(), S_OK); }
};

// ---------------------------------------------------------------------------------------------------------------
// names and descriptions

TEST_F(Dispatch, FindsMembersByNamesInAnyCase) {
    for (const PublishedObject& published : publishedObjects()) {
        for (const PublishedMember& member : published.members) {
            EXPECT_EQ(identifierOf(*published.object.get(), wide(member.name)), member.id) << member.name;
            EXPECT_EQ(identifierOf(*published.object.get(), inCase(member.name, std::toupper)), member.id);
            EXPECT_EQ(identifierOf(*published.object.get(), inCase(member.name, std::tolower)), member.id);
        }
    }
}

TEST_F(Dispatch, FindsParametersByTheirNames) {
    for (const PublishedObject& published : publishedObjects()) {
        for (const PublishedMember& member : published.members) {
            std::vector<std::u16string> names{wide(member.name)};
            std::vector<DISPID> expected{member.id};
            for (std::size_t i = 0; i < member.parameters.size(); ++i) {
                if (member.parameters[i].name.empty()) continue;
                names.push_back(inCase(member.parameters[i].name, std::toupper));
                expected.push_back(static_cast<DISPID>(i));
            }
            const Identifiers answer = identifiersOf(*published.object.get(), names);
            EXPECT_EQ(answer.result, S_OK) << member.title();
            EXPECT_EQ(answer.found, expected) << member.title();
        }
    }
}

TEST_F(Dispatch, SaysWhichNamesItDoesNotKnow) {
    const ComReference<_clsScriptControl> control = newControl();
    struct Row {
        std::vector<std::u16string> names;
        std::vector<DISPID> found;
    };
    for (const Row& row : {
             Row{{u"ScriptFil"}, {DISPID_UNKNOWN}},
             Row{{u"ScriptFiles"}, {DISPID_UNKNOWN}},
             Row{{u""}, {DISPID_UNKNOWN}},
             Row{{u"QueryInterface"}, {DISPID_UNKNOWN}},
             Row{{u"ScriptFil1"}, {DISPID_UNKNOWN}},
             Row{{u"nothing", u"tUID"}, {DISPID_UNKNOWN, DISPID_UNKNOWN}},
             Row{{u"LoadScript_FromScript", u"tUID", u"tNothing", u"tVersion"}, {loadScript, 2, DISPID_UNKNOWN, 3}},
         }) {
        const Identifiers answer = identifiersOf(*control.get(), row.names);
        EXPECT_EQ(answer.result, DISP_E_UNKNOWNNAME);
        EXPECT_EQ(answer.found, row.found);
    }
    DISPID id = 77;
    OLECHAR* nothing = nullptr;
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, &nothing, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(id, DISPID_UNKNOWN);

    std::u16string member(u"LoadScript_FromScript");
    OLECHAR* names[] = {reinterpret_cast<OLECHAR*>(member.data()), nullptr};
    DISPID ids[] = {77, 77};
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], loadScript);
    EXPECT_EQ(ids[1], DISPID_UNKNOWN);
}

TEST_F(Dispatch, HasNothingToSayToNoNames) {
    const ComReference<_clsScriptControl> control = newControl();
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, nullptr, 0, LOCALE_USER_DEFAULT, nullptr), S_OK);
}

TEST_F(Dispatch, HandsOutItsDescription) {
    for (const PublishedObject& published : publishedObjects()) {
        UINT count = 77;
        EXPECT_EQ(published.object->GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1U);
        ComReference<ITypeInfo> information;
        ASSERT_EQ(published.object->GetTypeInfo(0, LOCALE_USER_DEFAULT, information.receive()), S_OK);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(information->GetTypeAttr(&attributes), S_OK);
        EXPECT_TRUE(IsEqualIID(attributes->guid, published.interfaceId)) << published.interfaceName;
        information->ReleaseTypeAttr(attributes);
        auto* other = reinterpret_cast<ITypeInfo*>(1);
        EXPECT_EQ(published.object->GetTypeInfo(1, LOCALE_USER_DEFAULT, &other), DISP_E_BADINDEX);
        EXPECT_EQ(other, nullptr);
    }
}

TEST_F(Dispatch, TellsTheEventsOfTheClassThatHasSome) {
    for (const PublishedObject& published : publishedObjects()) {
        const auto information = queryFor<IProvideClassInfo2>(published.object.get(), IID_IProvideClassInfo2);
        EXPECT_EQ(static_cast<bool>(information), published.interfaceName != "_Collection");
        if (!information) continue;
        const bool hasEvents = published.interfaceName == "_clsScriptControl";
        GUID events = CLSID_clsScriptControl;
        EXPECT_EQ(information->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events), hasEvents ? S_OK : E_INVALIDARG);
        EXPECT_TRUE(IsEqualGUID(events, hasEvents ? DIID___clsScriptControl : GUID_NULL));
        EXPECT_EQ(information->GetGUID(2, &events), E_INVALIDARG);
        EXPECT_EQ(information->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr), E_POINTER);
        EXPECT_EQ(information->GetClassInfo(nullptr), E_POINTER);
    }
}

TEST_F(Dispatch, SupportsErrorInformationOfItsOwnInterface) {
    for (const PublishedObject& published : publishedObjects()) {
        const auto support = queryFor<ISupportErrorInfo>(published.object.get(), IID_ISupportErrorInfo);
        ASSERT_TRUE(support);
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(published.interfaceId), S_OK);
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IProvideClassInfo), S_FALSE);
    }
}

// ---------------------------------------------------------------------------------------------------------------
// what is refused

TEST_F(Dispatch, RefusesNullPointers) {
    const ComReference<_clsScriptControl> control = newControl();
    EXPECT_EQ(control->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(control->GetTypeInfo(0, 0, nullptr), E_POINTER);
    std::u16string name(u"RunScript");
    auto* names = reinterpret_cast<OLECHAR*>(name.data());
    DISPID id = 77;
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_POINTER);
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, &names, 1, 0, nullptr), E_POINTER);

    VARIANTARG argument = text(u"A");
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS noArguments{nullptr, nullptr, 1, 0};
    DISPPARAMS noNames{&argument, nullptr, 1, 1};
    DISPPARAMS moreNames{&argument, &put, 0, 1};
    for (DISPPARAMS* parameters : {static_cast<DISPPARAMS*>(nullptr), &noArguments, &noNames, &moreNames})
        EXPECT_EQ(control->Invoke(0x60030035, IID_NULL, 0, DISPATCH_METHOD, parameters, nullptr, nullptr, nullptr),
                  E_INVALIDARG);
    VariantClear(&argument);
}

// Result, exception and faulty argument may all be left out.
TEST_F(Dispatch, AnswersOnlyWhatIsAsked) {
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    const auto quietly = [&](Arguments&& arguments) {
        return list->Invoke(stringValue, IID_NULL, 0, DISPATCH_PROPERTYGET, arguments.parameters(), nullptr, nullptr,
                            nullptr);
    };
    EXPECT_EQ(quietly({integer(0)}), S_OK);
    EXPECT_EQ(quietly({integer(10)}), DISP_E_EXCEPTION);
    EXPECT_EQ(quietly({text(u"x")}), DISP_E_TYPEMISMATCH);
    const auto named = [&](WORD flags, DISPID name) {
        Arguments arguments{integer(0), text(u"x")};
        return list->Invoke(stringValue, IID_NULL, 0, flags, arguments.named({name}).parameters(), nullptr, nullptr,
                            nullptr);
    };
    EXPECT_EQ(named(DISPATCH_PROPERTYPUT, DISPID_PROPERTYPUT), S_OK);
    EXPECT_EQ(named(DISPATCH_PROPERTYPUT, 7), DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(list->Invoke(stringValue, IID_NULL, 0, DISPATCH_PROPERTYPUT,
                           Arguments{integer(0), text(u"x")}.parameters(), nullptr, nullptr, nullptr),
              DISP_E_PARAMNOTFOUND);
    ComReference<IErrorInfo> leftBehind;
    EXPECT_EQ(GetErrorInfo(0, leftBehind.receive()), S_FALSE);
}

TEST_F(Dispatch, TellsTheErrorOfAMemberThatFails) {
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    const Answer answer = invoke(*list.get(), stringValue, DISPATCH_PROPERTYGET, {integer(10)});
    EXPECT_EQ(answer.result, DISP_E_EXCEPTION);
    EXPECT_EQ(answer.faultyArgument, Answer::untouched);
    EXPECT_EQ(answer.type, VT_EMPTY);
    EXPECT_EQ(answer.scode, static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(answer.source, u"prjCorvaneScript.clsScriptParamList");
    EXPECT_EQ(answer.description, u"Subscript out of range");
}

TEST_F(Dispatch, RefusesOtherReservedIdentifiers) {
    const ComReference<_clsScriptControl> control = newControl();
    std::u16string name(u"RunScript");
    auto* names = reinterpret_cast<OLECHAR*>(name.data());
    DISPID id = 77;
    DISPPARAMS none{};
    EXPECT_EQ(control->GetIDsOfNames(IID_IDispatch, &names, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(control->Invoke(0x60030009, IID_IDispatch, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
}

TEST_F(Dispatch, RefusesUnknownMembersAndOtherKindsOfCall) {
    for (const PublishedObject& published : publishedObjects()) {
        for (const DISPID id : {DISPID{DISPID_UNKNOWN}, DISPID{12345}, DISPID{0x68030010}, DISPID{0x6003003A}})
            EXPECT_EQ(invoke(*published.object.get(), id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {}).result,
                      DISP_E_MEMBERNOTFOUND);
        for (const PublishedMember& member : published.members) {
            WORD offered = 0;
            for (const PublishedMember& other : published.members)
                if (other.id == member.id) offered |= other.flags();
            for (const WORD flags : {WORD{0}, WORD{DISPATCH_METHOD}, WORD{DISPATCH_PROPERTYGET},
                                     WORD{DISPATCH_PROPERTYPUT}, WORD{DISPATCH_PROPERTYPUTREF}}) {
                if ((flags & offered) != 0) continue;
                EXPECT_EQ(invoke(*published.object.get(), member.id, flags, Arguments(suitable(member))).result,
                          DISP_E_MEMBERNOTFOUND)
                    << member.title() << " with " << flags;
            }
        }
    }
}

TEST_F(Dispatch, RefusesWrongNumbersOfArguments) {
    for (const PublishedObject& published : publishedObjects()) {
        for (const PublishedMember& member : published.members) {
            std::vector<VARIANT> more = suitable(member);
            more.push_back(integer(1));
            EXPECT_EQ(call(*published.object.get(), member, more).result, DISP_E_BADPARAMCOUNT) << member.title();
            if (member.parameters.empty()) continue;
            EXPECT_EQ(call(*published.object.get(), member, {}).result, DISP_E_BADPARAMCOUNT) << member.title();
            if (member.parameters.back().optional) continue;
            std::vector<VARIANT> fewer = suitable(member);
            VariantClear(&fewer.back());
            fewer.pop_back();
            EXPECT_EQ(call(*published.object.get(), member, fewer).result, DISP_E_BADPARAMCOUNT) << member.title();
        }
    }
}

/// Arguments that a parameter of the type does not take, and what is said to them.
struct Refused {
    VARIANT argument;
    HRESULT result;
};

std::vector<Refused> refusedBy(const PublishedParameter& parameter) {
    static VARIANT nested = reference(VT_VARIANT, &nested);
    VARIANT error = ofType(VT_ERROR);
    V_ERROR(&error) = E_FAIL;
    std::vector<Refused> refused{{reference(VT_I4, nullptr), DISP_E_TYPEMISMATCH},
                                 {reference(VT_VARIANT, nullptr), DISP_E_TYPEMISMATCH},
                                 {reference(nested), DISP_E_TYPEMISMATCH}};
    if (!parameter.optional) refused.push_back({leftOut(), DISP_E_PARAMNOTOPTIONAL});
    if (parameter.type == "variant") return refused;
    refused.push_back({error, DISP_E_TYPEMISMATCH});
    refused.push_back({ofType(VT_NULL), DISP_E_TYPEMISMATCH});
    if (parameter.type == "string()" || parameter.type == "_Collection") {
        refused.push_back({text(u"text"), DISP_E_TYPEMISMATCH});
        refused.push_back({integer(1), DISP_E_TYPEMISMATCH});
        refused.push_back({ofType(77), DISP_E_TYPEMISMATCH});
        if (parameter.type == "string()") return refused;
        const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
        refused.push_back({object(list.get()), DISP_E_TYPEMISMATCH});
        return refused;
    }
    refused.push_back({ofType(77), DISP_E_BADVARTYPE});
    if (parameter.type == "string") return refused;
    refused.push_back({text(u"no number"), DISP_E_TYPEMISMATCH});
    if (parameter.type != "boolean") refused.push_back({number(1e300), DISP_E_OVERFLOW});
    return refused;
}

TEST_F(Dispatch, RefusesWrongTypesAndNamesTheArgument) {
    for (const PublishedObject& published : publishedObjects()) {
        for (const PublishedMember& member : published.members) {
            for (std::size_t i = 0; i < member.parameters.size(); ++i) {
                for (const Refused& refused : refusedBy(member.parameters[i])) {
                    std::vector<VARIANT> arguments = suitable(member);
                    VariantClear(&arguments[i]);
                    arguments[i] = refused.argument;
                    const VARTYPE given = V_VT(&refused.argument);
                    const Answer answer = call(*published.object.get(), member, arguments);
                    EXPECT_EQ(answer.result, refused.result) << member.title() << ' ' << i << " type " << given;
                    EXPECT_EQ(answer.faultyArgument, member.parameters.size() - 1 - i) << member.title();
                    EXPECT_EQ(answer.type, VT_EMPTY) << member.title();
                }
            }
        }
    }
}

// ---------------------------------------------------------------------------------------------------------------
// what is answered

TEST_F(Dispatch, AnswersInThePublishedTypes) {
    for (const PublishedObject& published : publishedObjects()) {
        for (const PublishedMember& member : published.members) {
            const Answer answer = call(*published.object.get(), member, suitable(member));
            ASSERT_EQ(answer.result, S_OK) << member.title();
            EXPECT_EQ(answer.faultyArgument, Answer::untouched) << member.title();
            if (member.result != "variant")
                EXPECT_EQ(answer.type, variantType(member.result)) << member.title();
            else
                EXPECT_EQ(answer.type, member.name == "Item" ? VT_DISPATCH : VT_BSTR) << member.title();
        }
    }
}

TEST_F(Dispatch, TakesPropertiesAsMethodsWhereAHostCannotTell) {
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    const Answer answer = invoke(*list.get(), stringValue, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {integer(3)});
    EXPECT_EQ(answer.result, S_OK);
    EXPECT_EQ(answer.type, VT_BSTR);
}

// ---------------------------------------------------------------------------------------------------------------
// conversion

/// An argument with the variable that it refers to, if any.
struct Given {
    std::string title;
    std::function<VARIANT()> make;
};

LONG longVariable = 4;
SHORT shortVariable = 4;
double doubleVariable = 4;
VARIANT variantVariable = integer(4);
VARIANT referringVariable = reference(VT_I2, &shortVariable);

const std::vector<Given> fours{
    {"I2", [] { return shortInteger(4); }},
    {"I4", [] { return integer(4); }},
    {"R4", [] { return single(4); }},
    {"R8", [] { return number(4); }},
    {"text", [] { return text(u"4"); }},
    {"I4 by reference", [] { return reference(VT_I4, &longVariable); }},
    {"I2 by reference", [] { return reference(VT_I2, &shortVariable); }},
    {"R8 by reference", [] { return reference(VT_R8, &doubleVariable); }},
    {"a variant variable", [] { return reference(variantVariable); }},
    {"a variant that refers", [] { return reference(referringVariable); }},
};

TEST_F(Dispatch, ConvertsArgumentsOfEveryPropertyAndIndex) {
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    const auto record = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    for (const Given& given : fours) {
        EXPECT_EQ(put(*list.get(), singleValue, {integer(4), single(0)}).result, S_OK);
        EXPECT_EQ(put(*list.get(), singleValue, {given.make(), given.make()}).result, S_OK) << given.title;
        EXPECT_EQ(V_R4(invoke(*list.get(), singleValue, DISPATCH_PROPERTYGET, {integer(4)}).value.get()), 4.0F)
            << given.title;
        EXPECT_EQ(put(*list.get(), stringValue, {given.make(), given.make()}).result, S_OK) << given.title;
        EXPECT_EQ(viewOf(V_BSTR(invoke(*list.get(), stringValue, DISPATCH_PROPERTYGET, {integer(4)}).value.get())),
                  u"4")
            << given.title;
        EXPECT_EQ(put(*list.get(), booleanValue, {given.make(), given.make()}).result, S_OK) << given.title;
        EXPECT_EQ(V_BOOL(invoke(*list.get(), booleanValue, DISPATCH_PROPERTYGET, {given.make()}).value.get()),
                  VARIANT_TRUE)
            << given.title;
        EXPECT_EQ(put(*list.get(), booleanValue, {integer(4), boolean(false)}).result, S_OK);
        EXPECT_EQ(put(*record.get(), direction, {integer(0)}).result, S_OK);
        EXPECT_EQ(put(*record.get(), direction, {given.make()}).result, S_OK) << given.title;
        EXPECT_EQ(V_I4(invoke(*record.get(), direction, DISPATCH_PROPERTYGET, {}).value.get()), 4) << given.title;
    }
    EXPECT_EQ(longVariable, 4);
    EXPECT_EQ(V_VT(&variantVariable), VT_I4);
}

TEST_F(Dispatch, ConvertsAsThePlatformDoes) {
    const auto record = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    const auto directionFrom = [&](const VARIANT& given) {
        EXPECT_EQ(put(*record.get(), direction, {given}).result, S_OK);
        return V_I4(invoke(*record.get(), direction, DISPATCH_PROPERTYGET, {}).value.get());
    };
    EXPECT_EQ(directionFrom(number(2.5)), 2);
    EXPECT_EQ(directionFrom(number(3.5)), 4);
    EXPECT_EQ(directionFrom(number(-2147483648.0)), -2147483647 - 1);
    EXPECT_EQ(directionFrom(boolean(true)), -1);
    EXPECT_EQ(directionFrom(emptyVariant()), 0);
    EXPECT_EQ(directionFrom(text(u" 12 ")), 12);
    const Answer tooLarge = put(*record.get(), direction, {number(2147483648.0)});
    EXPECT_EQ(tooLarge.result, DISP_E_OVERFLOW);
    EXPECT_EQ(tooLarge.faultyArgument, 0U);
    EXPECT_EQ(put(*record.get(), helixAngle, {number(0.1)}).result, S_OK);
    EXPECT_EQ(V_R4(invoke(*record.get(), helixAngle, DISPATCH_PROPERTYGET, {}).value.get()), 0.1F);
}

// ---------------------------------------------------------------------------------------------------------------
// named arguments

TEST_F(Dispatch, TakesArgumentsByName) {
    const ComReference<_clsScriptControl> control = newControl();
    // Last to first: the version by name, the identifier by name, then in order what stands before.
    Arguments arguments{text(u"VAR A = 1"), text(u"name"), integer(5), integer(6)};
    arguments.named({2, 3});
    const Answer answer = invoke(*control.get(), loadScript, DISPATCH_METHOD, std::move(arguments));
    EXPECT_EQ(answer.result, S_OK);
    EXPECT_EQ(V_BOOL(answer.value.get()), VARIANT_TRUE);
    EXPECT_EQ(V_I4(invoke(*control.get(), scriptUid, DISPATCH_PROPERTYGET, {}).value.get()), 6);
    EXPECT_EQ(V_I4(invoke(*control.get(), scriptVersion, DISPATCH_PROPERTYGET, {}).value.get()), 5);
}

TEST_F(Dispatch, RefusesWrongNames) {
    const ComReference<_clsScriptControl> control = newControl();
    struct Row {
        std::vector<DISPID> names;
        UINT faultyArgument;
    };
    for (const Row& row : {Row{{4}, 0}, Row{{-7}, 0}, Row{{0}, 0}, Row{{3, 3}, 1}, Row{{3, 1}, 1},
                           Row{{DISPID_PROPERTYPUT}, 0}, Row{{2, 3, 99, 1}, 2}}) {
        Arguments arguments{text(u"VAR A = 1"), text(u"name"), integer(5), integer(6)};
        const Answer answer =
            invoke(*control.get(), loadScript, DISPATCH_METHOD, std::move(arguments.named(row.names)));
        EXPECT_EQ(answer.result, DISP_E_PARAMNOTFOUND);
        EXPECT_EQ(answer.faultyArgument, row.faultyArgument);
    }
}

TEST_F(Dispatch, WantsTheValueOfAPropertyNamed) {
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    const Answer unnamed = invoke(*list.get(), singleValue, DISPATCH_PROPERTYPUT, {integer(0), single(1)});
    EXPECT_EQ(unnamed.result, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(unnamed.faultyArgument, 0U);
    Arguments both{integer(0), single(1)};
    EXPECT_EQ(invoke(*list.get(), singleValue, DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF,
                     std::move(both.named({DISPID_PROPERTYPUT, 0})))
                  .result,
              S_OK);
    EXPECT_EQ(V_R4(invoke(*list.get(), singleValue, DISPATCH_PROPERTYGET, {integer(0)}).value.get()), 1.0F);
}

// ---------------------------------------------------------------------------------------------------------------
// the collection

ComReference<IDispatch> emptyCollection() {
    const ComReference<_clsProgramFunctionList> list = newFunctionList();
    HostText script(u"Park()");
    LONG zero = 0;
    VARIANT_BOOL loaded = VARIANT_FALSE;
    EXPECT_EQ(list->LoadProgramScript_FromDatabase(script.address(), script.address(), &zero, &zero, &loaded), S_OK);
    ComReference<_Collection> collection;
    EXPECT_EQ(list->get_FunctionList(collection.receive()), S_OK);
    return ComReference<IDispatch>(collection.get());
}

std::vector<LONG> contentOf(IDispatch& collection) {
    std::vector<LONG> content;
    const LONG count = V_I4(invoke(collection, collectionCount, DISPATCH_PROPERTYGET, {}).value.get());
    for (LONG i = 1; i <= count; ++i) {
        const Answer item = invoke(collection, DISPID_VALUE, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {integer(i)});
        EXPECT_EQ(item.type, VT_I4);
        content.push_back(V_I4(item.value.get()));
    }
    return content;
}

TEST_F(Dispatch, LetsOptionalArgumentsBeLeftOut) {
    const ComReference<IDispatch> collection = emptyCollection();
    const auto add = [&](Arguments&& arguments) {
        const Answer answer = invoke(*collection.get(), collectionAdd, DISPATCH_METHOD, std::move(arguments));
        EXPECT_EQ(answer.type, VT_EMPTY);
        return answer.result;
    };
    EXPECT_EQ(add({integer(1)}), S_OK);
    EXPECT_EQ(add({integer(2), text(u"two")}), S_OK);
    EXPECT_EQ(add({integer(3), leftOut(), integer(1)}), S_OK);
    EXPECT_EQ(add({integer(4), leftOut(), leftOut(), integer(1)}), S_OK);
    EXPECT_EQ(add({integer(5), leftOut(), leftOut(), leftOut()}), S_OK);
    VARIANT omitted = leftOut();
    EXPECT_EQ(add({integer(6), reference(omitted), text(u"two"), reference(omitted)}), S_OK);
    EXPECT_EQ(contentOf(*collection.get()), (std::vector<LONG>{3, 4, 1, 6, 2, 5}));
    EXPECT_EQ(add({integer(8), emptyVariant(), emptyVariant(), emptyVariant()}), S_OK);
    EXPECT_EQ(contentOf(*collection.get()), (std::vector<LONG>{3, 4, 1, 6, 2, 5, 8}));
    EXPECT_EQ(invoke(*collection.get(), collectionRemove, DISPATCH_METHOD, {integer(7)}).result, S_OK);

    // Named: After and the item; the names stand beside the last arguments.
    Arguments named{integer(1), integer(7)};
    EXPECT_EQ(add(std::move(named.named({0, 3}))), S_OK);
    EXPECT_EQ(contentOf(*collection.get()), (std::vector<LONG>{3, 7, 4, 1, 6, 2, 5}));

    Arguments noItem{text(u"key")};
    EXPECT_EQ(add(std::move(noItem.named({1}))), DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(add({leftOut()}), DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(add({}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(contentOf(*collection.get()).size(), 7U);
}

// ---------------------------------------------------------------------------------------------------------------
// answers through references

class FunctionListDispatch : public Dispatch {
protected:
    ComReference<_clsProgramFunctionList> list = newFunctionList();
    ComReference<IDispatch> collection;

    void SetUp() override {
        HostText script(u"VAR A = 1\r\nPark()");
        LONG zero = 0;
        VARIANT_BOOL loaded = VARIANT_FALSE;
        ASSERT_EQ(list->LoadProgramScript_FromDatabase(script.address(), script.address(), &zero, &zero, &loaded),
                  S_OK);
        ASSERT_EQ(list->get_FunctionList(reinterpret_cast<_Collection**>(collection.receive())), S_OK);
    }
    void TearDown() override {
        list = {};
        collection = {};
        Dispatch::TearDown();
    }
    Answer create(const VARIANT& argument) {
        return invoke(*list.get(), createFunctionList, DISPATCH_METHOD, {argument});
    }
    void expectCollection(IUnknown* handedOut) {
        ASSERT_NE(handedOut, nullptr);
        EXPECT_EQ(queryFor<IUnknown>(handedOut, IID_IUnknown).get(),
                  queryFor<IUnknown>(collection.get(), IID_IUnknown).get());
    }
};

TEST_F(FunctionListDispatch, HandsOutTheCollectionThroughVariablesOfEveryKind) {
    IDispatch* typed = nullptr;
    ASSERT_EQ(create(reference(VT_DISPATCH, &typed)).result, S_OK);
    expectCollection(typed);
    // Again: the variable holds it already.
    ASSERT_EQ(create(reference(VT_DISPATCH, &typed)).result, S_OK);
    expectCollection(typed);
    typed->Release();

    IUnknown* unknown = nullptr;
    ASSERT_EQ(create(reference(VT_UNKNOWN, &unknown)).result, S_OK);
    expectCollection(unknown);
    unknown->Release();

    for (VARIANT variable : {emptyVariant(), object(nullptr)}) {
        ASSERT_EQ(create(reference(variable)).result, S_OK);
        EXPECT_EQ(V_VT(&variable), VT_DISPATCH);
        expectCollection(V_UNKNOWN(&variable));
        ASSERT_EQ(create(reference(variable)).result, S_OK);
        expectCollection(V_UNKNOWN(&variable));
        VariantClear(&variable);
    }

    IDispatch* referred = nullptr;
    VARIANT referring = reference(VT_DISPATCH, &referred);
    ASSERT_EQ(create(reference(referring)).result, S_OK);
    EXPECT_EQ(V_VT(&referring), VT_DISPATCH | VT_BYREF);
    expectCollection(referred);
    referred->Release();

    // By value nothing comes back, and nothing is wrong with it.
    EXPECT_EQ(create(object(nullptr)).result, S_OK);
    EXPECT_EQ(create(object(collection.get())).result, S_OK);
    EXPECT_EQ(create(emptyVariant()).result, S_OK);
}

TEST_F(FunctionListDispatch, ReleasesWhatTheVariableHeld) {
    ComReference<IDispatch> other = emptyCollection();
    VARIANT variable = object(other.get());
    IDispatch* typed = ComReference<IDispatch>(other).detach();
    ASSERT_EQ(create(reference(variable)).result, S_OK);
    ASSERT_EQ(create(reference(VT_DISPATCH, &typed)).result, S_OK);
    expectCollection(V_UNKNOWN(&variable));
    expectCollection(typed);
    other->AddRef();
    EXPECT_EQ(other->Release(), 1U);
    VariantClear(&variable);
    typed->Release();
}

TEST_F(FunctionListDispatch, LeavesTheVariableAloneWithoutAScript) {
    const ComReference<_clsProgramFunctionList> unloaded = newFunctionList();
    VARIANT variable = object(collection.get());
    const Answer answer = invoke(*unloaded.get(), createFunctionList, DISPATCH_METHOD, {reference(variable)});
    EXPECT_EQ(answer.result, S_OK);
    EXPECT_EQ(V_BOOL(answer.value.get()), VARIANT_FALSE);
    expectCollection(V_UNKNOWN(&variable));
    VariantClear(&variable);
    // Not yet loaded, it has no collection: an object all the same, but none.
    const Answer none = invoke(*unloaded.get(), functionList, DISPATCH_PROPERTYGET, {});
    EXPECT_EQ(none.result, S_OK);
    EXPECT_EQ(none.type, VT_DISPATCH);
    EXPECT_EQ(V_DISPATCH(none.value.get()), nullptr);
}

TEST_F(Dispatch, LeavesTheArrayOfNoEditableItems) {
    const ComReference<_clsScriptControl> control = newControl();
    ASSERT_TRUE(load(*control.get(), u"VAR A = 1"));
    VARIANT table = emptyVariant();
    SHORT count = 5;
    ASSERT_EQ(invoke(*control.get(), getEditable, DISPATCH_METHOD, {reference(table), reference(VT_I2, &count)}).result,
              S_OK);
    EXPECT_EQ(V_VT(&table), VT_EMPTY);
    EXPECT_EQ(count, 0);
}

// A text that the component reads only is the host's before and after.
TEST_F(Dispatch, LeavesTheHostsVariablesAsTheyAre) {
    const ComReference<_clsScriptControl> control = newControl();
    HostText script(u"VAR A = 1");
    VARIANT name = integer(12);
    double uid = 7;
    BSTR const before = script.get();
    const Answer answer =
        invoke(*control.get(), loadScript, DISPATCH_METHOD,
               {reference(VT_BSTR, script.address()), reference(name), reference(VT_R8, &uid), reference(VT_R8, &uid)});
    EXPECT_EQ(answer.result, S_OK);
    EXPECT_EQ(V_BOOL(answer.value.get()), VARIANT_TRUE);
    EXPECT_EQ(script.get(), before);
    EXPECT_EQ(V_VT(&name), VT_I4);
    EXPECT_EQ(uid, 7);
    EXPECT_EQ(V_I4(invoke(*control.get(), scriptUid, DISPATCH_PROPERTYGET, {}).value.get()), 7);
    EXPECT_EQ(V_BOOL(invoke(*control.get(), editDataVariable, DISPATCH_METHOD, {integer(1), text(u"2.5")}).value.get()),
              VARIANT_TRUE);
}

}  // namespace
}  // namespace corvane::testing
