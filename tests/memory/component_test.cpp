// What automation hosts meet when memory runs out: every request for memory that a call makes is refused in turn, those
// for automation's texts and arrays too. The call ends in out of memory, nothing is left behind, and the same object
// then works as if nothing had been.

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "platform/script_file.h"
#include "platform/utf8.h"
#include "tests/com/editable_items.h"
#include "tests/com/every_event.h"
#include "tests/memory/component_memory.h"
#include "tests/memory/every_request.h"

namespace corvane::testing {
namespace {

using test::HostsOwnMemory;
using test::MemoryFault;
using test::Refused;

constexpr std::size_t requestsTried = 60;

/// What a load ends in that answers false: what traps a line's errors traps exhausted memory too.
constexpr HRESULT answeredFalse = S_FALSE;

bool tellsOfMemory(HRESULT result) { return result == E_OUTOFMEMORY || result == automationError(7); }

/// A host with a control and two sinks, which writes down every event.
struct Host {
    Host() : first(handler()), second(handler()), control(newControl()) {
        advisedFirst.emplace(*control.get(), first);
        advisedSecond.emplace(*control.get(), second);
    }
    Sink::Handler handler() {
        return [this](DISPID event, DISPPARAMS& arguments) {
            const HostsOwnMemory own;
            log += show(event, arguments) + "\n";
            answer(event, arguments);
            return S_OK;
        };
    }
    /// S_FALSE for a load that answers false.
    HRESULT load(HostText& script) {
        LONG number = 1;
        VARIANT_BOOL loaded = VARIANT_FALSE;
        const HRESULT result =
            control->LoadScript_FromScript(script.address(), script.address(), &number, &number, &loaded);
        return result == S_OK && loaded == VARIANT_FALSE ? answeredFalse : result;
    }
    std::string performed(HostText& script) {
        log.clear();
        EXPECT_EQ(load(script), S_OK);
        EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
        return log;
    }

    std::string log;
    Sink first;
    Sink second;
    ComReference<_clsScriptControl> control;
    std::optional<Advised> advisedFirst;
    std::optional<Advised> advisedSecond;
};

class ComponentMemoryRunsOut : public ComponentTest {
protected:
    test::ComponentMemory memory;
    HostText script{everyEventScript};
    HostText name{u"Text"};

    /// The error information of a failed call tells of memory, or there was none for it.
    static void expectInformation(HRESULT result, Refused refused) {
        const ErrorSeen error = takeError();
        if (result != automationError(7)) return;
        if (refused == Refused::OnlyThat || !error.description.empty()) {
            EXPECT_TRUE(error.description.starts_with("Out of memory")) << error.description;
        }
    }

    /// `work` is a call or several, each of which releases what it was handed; it answers the first failure.
    void refuseEach(const std::string& what, const std::function<void(Host&)>& prepare,
                    const std::function<HRESULT(Host&)>& work) {
        const std::string undisturbed = Host().performed(script);
        test::refuseEachRequest(
            what, requestsTried, test::ComponentMemory::living, [&](std::size_t nth, Refused refused) {
                std::size_t requests = 0;
                {
                    Host host;
                    prepare(host);
                    HRESULT result = S_OK;
                    bool isReached = false;
                    {
                        const MemoryFault fault(nth, refused);
                        result = work(host);
                        requests = fault.requests();
                        isReached = fault.isReached();
                    }
                    EXPECT_EQ(isReached, result != S_OK) << std::hex << result;
                    EXPECT_TRUE(!isReached || result == answeredFalse || tellsOfMemory(result)) << std::hex << result;
                    expectInformation(result, refused);
                    EXPECT_EQ(host.performed(script), undisturbed);
                }
                EXPECT_EQ(canUnloadNow(), S_OK);
                return requests;
            });
    }
    void load(Host& host) { EXPECT_EQ(host.load(script), S_OK); }
    auto loaded() {
        return [this](Host& host) { load(host); };
    }
};

constexpr auto nothing = [](Host&) {};

/// A text that a member hands out; null when it fails.
template <typename Get>
HRESULT textOf(Get&& get) {
    BSTR text = nullptr;
    const HRESULT result = get(&text);
    if (FAILED(result) && text != nullptr) return E_UNEXPECTED;
    SysFreeString(text);
    return result;
}

/// A variant that a member hands out; empty when it fails.
template <typename Get>
HRESULT variantOf(Get&& get) {
    OwnedVariant variant;
    const HRESULT result = get(variant.get());
    return FAILED(result) && V_VT(variant.get()) != VT_EMPTY ? E_UNEXPECTED : result;
}

TEST_F(ComponentMemoryRunsOut, WhileAnObjectOfAClassIsMade) {
    const struct {
        const CLSID& classId;
        const IID& interfaceId;
    } classes[] = {{CLSID_clsScriptControl, IID__clsScriptControl},
                   {CLSID_clsProgramFunctionList, IID__clsProgramFunctionList},
                   {CLSID_clsProgramFunction, IID__clsProgramFunction},
                   {CLSID_clsDataSetParameters, IID__clsDataSetParameters},
                   {CLSID_clsScriptParamList, IID__clsScriptParamList}};
    for (const auto& made : classes)
        refuseEach("class", nothing, [&](Host&) {
            void* factory = nullptr;
            const HRESULT got = getClassObject(made.classId, IID_IClassFactory, &factory);
            if (FAILED(got)) return got;
            const auto owned = ComReference<IClassFactory>::adopt(static_cast<IClassFactory*>(factory));
            void* object = nullptr;
            const HRESULT result = owned->CreateInstance(nullptr, made.interfaceId, &object);
            if (FAILED(result)) return object == nullptr ? result : E_UNEXPECTED;
            static_cast<IUnknown*>(object)->Release();
            return result;
        });
}

TEST_F(ComponentMemoryRunsOut, InALoadThatRaisesDeclarations) {
    refuseEach("load", nothing, [this](Host& host) { return host.load(script); });
}

TEST_F(ComponentMemoryRunsOut, InARunThatRaisesEveryEvent) {
    refuseEach("run", loaded(), [](Host& host) { return run(*host.control.get()).result; });
}

TEST_F(ComponentMemoryRunsOut, InALoadAndARunOfExamples) {
    for (const char16_t* file : {u"examples/shear_cell.script", u"examples/daily_check.script"}) {
        HostText example(readScriptFile(file));
        refuseEach("load of " + toUtf8(file), nothing, [&](Host& host) { return host.load(example); });
        refuseEach(
            "run of " + toUtf8(file), [&](Host& host) { EXPECT_EQ(host.load(example), S_OK); },
            [](Host& host) { return run(*host.control.get()).result; });
    }
}

TEST_F(ComponentMemoryRunsOut, InALoadFromAFile) {
    HostText file(u"examples/shear_cell.script");
    refuseEach("load from a file", nothing, [&](Host& host) {
        VARIANT_BOOL result = VARIANT_FALSE;
        const HRESULT called = host.control->LoadScript_FromFile(file.address(), &result);
        return called == S_OK && result == VARIANT_FALSE ? answeredFalse : called;
    });
}

TEST_F(ComponentMemoryRunsOut, InEachMemberThatHandsOutATextOrAVariant) {
    const std::pair<const char*, std::function<HRESULT(_clsScriptControl&)>> members[] = {
        {"ScriptFile", [](auto& control) { return textOf([&](BSTR* text) { return control.get_ScriptFile(text); }); }},
        {"GetConstant",
         [this](auto& control) {
             return textOf([&](BSTR* text) { return control.GetConstant(name.address(), text); });
         }},
        {"GetEnvironmentVariable",
         [this](auto& control) {
             return textOf([&](BSTR* text) { return control.GetEnvironmentVariable(name.address(), text); });
         }},
        {"GetMemoryValue",
         [this](auto& control) {
             return variantOf([&](VARIANT* value) { return control.GetMemoryValue(name.address(), value); });
         }},
        {"FunctionNameFromType",
         [](auto& control) {
             auto kind = static_cast<::enumCommandType>(ctPark);
             return variantOf([&](VARIANT* value) { return control.FunctionNameFromType(&kind, value); });
         }},
    };
    for (const auto& member : members)
        refuseEach(member.first, loaded(), [&](Host& host) { return member.second(*host.control.get()); });
}

// Where there is no memory to say more, the number alone is left. An error that could not even come about is that of
// exhausted memory.
TEST_F(ComponentMemoryRunsOut, WhileAnErrorIsReported) {
    const Host host;
    LONG position = 99;
    float value = 1;
    test::refuseEachRequest(
        "error", requestsTried, test::ComponentMemory::living, [&](std::size_t nth, Refused refused) {
            VARIANT_BOOL answered = VARIANT_TRUE;
            HRESULT result = S_OK;
            std::size_t requests = 0;
            {
                const MemoryFault fault(nth, refused);
                result = host.control->EditDataVariable(&position, &value, &answered);
                requests = fault.requests();
            }
            {
                const std::string description = takeError().description;
                const bool isTold = requests < nth || !description.empty();
                EXPECT_TRUE(result == automationError(5) || (requests >= nth && result == automationError(7)))
                    << result;
                EXPECT_TRUE(!isTold ||
                            description ==
                                (result == automationError(5) ? "Invalid procedure call or argument" : "Out of memory"))
                    << description;
            }
            return requests;
        });
}

TEST_F(ComponentMemoryRunsOut, WhileTheEditableItemsAreHandedOut) {
    HostText editable(editableScript);
    refuseEach(
        "GetEditable",
        [&](Host& host) {
            EXPECT_EQ(host.load(editable), S_OK);
            makeItemsEditable(*host.control.get());
        },
        [](Host& host) {
            SAFEARRAY* array = nullptr;
            LONG count = 77;
            const HRESULT result = host.control->GetEditable(&array, &count);
            if (FAILED(result)) return array == nullptr && count == 77 ? result : E_UNEXPECTED;
            SafeArrayDestroy(array);
            return result;
        });
}

TEST_F(ComponentMemoryRunsOut, WhileSinksComeAndGo) {
    Sink sink;
    DWORD cookie = 0;
    ComReference<IConnectionPoint> point;
    const auto found = [&](Host& host) { point = connectionPointOf(*host.control.get()); };
    refuseEach("Advise", found, [&](Host&) {
        const HRESULT result = point->Advise(&sink, &cookie);
        if (FAILED(result)) {
            point = {};
            return cookie == 0 ? result : E_UNEXPECTED;
        }
        const HRESULT undone = point->Unadvise(cookie);
        if (FAILED(undone)) {
            const HostsOwnMemory own;
            EXPECT_EQ(point->Unadvise(cookie), S_OK);
        }
        point = {};
        return undone;
    });
    EXPECT_EQ(sink.references(), 0);
}

TEST_F(ComponentMemoryRunsOut, WhileConnectionsAreEnumerated) {
    refuseEach("EnumConnections", nothing, [](Host& host) {
        const ComReference<IConnectionPoint> point = connectionPointOf(*host.control.get());
        ComReference<IEnumConnections> connections;
        HRESULT result = point->EnumConnections(connections.receive());
        if (FAILED(result)) return result;
        CONNECTDATA connection{};
        if (connections->Next(1, &connection, nullptr) == S_OK) connection.pUnk->Release();
        ComReference<IEnumConnections> copy;
        result = connections->Clone(copy.receive());
        return FAILED(result) && copy ? E_UNEXPECTED : result;
    });
    refuseEach("EnumConnectionPoints", nothing, [](Host& host) {
        const auto container = queryFor<IConnectionPointContainer>(host.control.get(), IID_IConnectionPointContainer);
        ComReference<IEnumConnectionPoints> points;
        const HRESULT result = container->EnumConnectionPoints(points.receive());
        if (FAILED(result)) return result;
        IConnectionPoint* point = nullptr;
        if (points->Next(1, &point, nullptr) == S_OK) point->Release();
        ComReference<IEnumConnectionPoints> copy;
        return points->Clone(copy.receive());
    });
}

/// A list as an editor uses it.
struct Listing {
    ComReference<_clsProgramFunctionList> list = newFunctionList();
    ComReference<_Collection> collection;

    HRESULT load(HostText& script) {
        LONG number = 1;
        VARIANT_BOOL loaded = VARIANT_FALSE;
        const HRESULT result =
            list->LoadProgramScript_FromDatabase(script.address(), script.address(), &number, &number, &loaded);
        return result == S_OK && loaded == VARIANT_FALSE ? answeredFalse : result;
    }
    HRESULT create() {
        VARIANT_BOOL created = VARIANT_FALSE;
        return list->CreateFunctionList(collection.receive(), &created);
    }
    /// A new list of the script.
    static Listing of(HostText& script) {
        Listing made;
        EXPECT_EQ(made.load(script), S_OK);
        EXPECT_EQ(made.create(), S_OK);
        return made;
    }
    std::string shown() {
        std::string text;
        LONG count = 0;
        EXPECT_EQ(collection->get_Count(&count), S_OK);
        for (LONG i = 1; i <= count; ++i) {
            VARIANT index;
            VariantInit(&index);
            V_VT(&index) = VT_I4;
            V_I4(&index) = i;
            OwnedVariant item;
            EXPECT_EQ(collection->get_Item(index, item.get()), S_OK);
            const auto function = queryFor<_clsProgramFunction>(V_DISPATCH(item.get()), IID__clsProgramFunction);
            BSTR name = nullptr;
            EXPECT_EQ(function->get_FunctionName(&name), S_OK);
            text += toUtf8(taken(name)) + "\n";
        }
        return text;
    }
};

class ListingMemoryRunsOut : public ComponentMemoryRunsOut {
protected:
    /// As `refuseEach`, of a list that lists the script again afterwards.
    void refuseEachOfAListing(const std::string& what, const std::function<void(Listing&)>& prepare,
                              const std::function<HRESULT(Listing&)>& work) {
        const std::string undisturbed = Listing::of(script).shown();
        test::refuseEachRequest(what, requestsTried, test::ComponentMemory::living,
                                [&](std::size_t nth, Refused refused) {
                                    std::size_t requests = 0;
                                    {
                                        Listing listing;
                                        prepare(listing);
                                        HRESULT result = S_OK;
                                        {
                                            const MemoryFault fault(nth, refused);
                                            result = work(listing);
                                            requests = fault.requests();
                                            const HostsOwnMemory own;
                                            EXPECT_EQ(fault.isReached(), result != S_OK) << std::hex << result;
                                        }
                                        EXPECT_TRUE(SUCCEEDED(result) || tellsOfMemory(result)) << std::hex << result;
                                        expectInformation(result, refused);
                                        listing.collection = {};
                                        EXPECT_EQ(listing.load(script), S_OK);
                                        EXPECT_EQ(listing.create(), S_OK);
                                        EXPECT_EQ(listing.shown(), undisturbed);
                                    }
                                    EXPECT_EQ(canUnloadNow(), S_OK);
                                    return requests;
                                });
    }
    auto listed() {
        return [this](Listing& listing) { listing = Listing::of(script); };
    }
};

TEST_F(ListingMemoryRunsOut, WhileAProgramIsLoadedAndListed) {
    refuseEachOfAListing(
        "list load", [](Listing&) {}, [this](Listing& listing) { return listing.load(script); });
    refuseEachOfAListing(
        "list", [this](Listing& listing) { EXPECT_EQ(listing.load(script), S_OK); },
        [](Listing& listing) { return listing.create(); });
}

TEST_F(ListingMemoryRunsOut, WhileItemsAreHandedOut) {
    VARIANT index;
    VariantInit(&index);
    V_VT(&index) = VT_I4;
    V_I4(&index) = 3;
    refuseEachOfAListing("Item", listed(), [&](Listing& listing) {
        return variantOf([&](VARIANT* item) { return listing.collection->get_Item(index, item); });
    });
    refuseEachOfAListing("_NewEnum", listed(), [](Listing& listing) -> HRESULT {
        ComReference<IUnknown> unknown;
        const HRESULT made = listing.collection->get__NewEnum(unknown.receive());
        if (FAILED(made)) return unknown ? E_UNEXPECTED : made;
        const auto items = queryFor<IEnumVARIANT>(unknown.get(), IID_IEnumVARIANT);
        OwnedVariant item;
        const HRESULT next = items->Next(1, item.get(), nullptr);
        if (FAILED(next)) return V_VT(item.get()) == VT_EMPTY ? next : E_UNEXPECTED;
        ComReference<IEnumVARIANT> copy;
        return items->Clone(copy.receive());
    });
}

TEST_F(ListingMemoryRunsOut, WhileAHostAddsAndRemovesEntries) {
    OwnedVariant text;
    V_BSTR(text.get()) = newText(u"an entry of the host's own, and the key that it is found by");
    V_VT(text.get()) = VT_BSTR;
    VARIANT leftOut;
    VariantInit(&leftOut);
    V_VT(&leftOut) = VT_ERROR;
    V_ERROR(&leftOut) = DISP_E_PARAMNOTFOUND;
    LONG before = 0;
    const auto counted = [&](Listing& listing) {
        listing = Listing::of(script);
        EXPECT_EQ(listing.collection->get_Count(&before), S_OK);
    };
    refuseEachOfAListing("Add", counted, [&](Listing& listing) {
        const HRESULT result = listing.collection->Add(*text.get(), *text.get(), leftOut, leftOut);
        LONG after = 0;
        listing.collection->get_Count(&after);
        return after == before + (result == S_OK ? 1 : 0) ? result : E_UNEXPECTED;
    });
    refuseEachOfAListing(
        "Remove",
        [&](Listing& listing) {
            counted(listing);
            EXPECT_EQ(listing.collection->Add(*text.get(), *text.get(), leftOut, leftOut), S_OK);
        },
        [&](Listing& listing) {
            const HRESULT result = listing.collection->Remove(*text.get());
            LONG after = 0;
            listing.collection->get_Count(&after);
            return after == before + (result == S_OK ? 0 : 1) ? result : E_UNEXPECTED;
        });
}

TEST_F(ComponentMemoryRunsOut, WhileRecordsTakeAndHandOutTexts) {
    HostText content(u"a text that is longer than what a short one has room for");
    LONG index = 1;
    refuseEach("clsDataSetParameters", nothing, [&](Host&) -> HRESULT {
        ComReference<_clsDataSetParameters> record;
        {
            const HostsOwnMemory own;
            record = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
        }
        const HRESULT put = record->put_AddDataSetVariable(&index, content.address());
        if (FAILED(put)) return put;
        return textOf([&](BSTR* text) { return record->get_DataSetVariable(&index, text); });
    });
    refuseEach("clsProgramFunction", nothing, [&](Host&) -> HRESULT {
        ComReference<_clsProgramFunction> record;
        {
            const HostsOwnMemory own;
            record = create<_clsProgramFunction>(CLSID_clsProgramFunction, IID__clsProgramFunction);
        }
        HRESULT put = record->put_FunctionName(content.address());
        if (SUCCEEDED(put)) put = record->AddParam(content.get());
        if (FAILED(put)) return put;
        const HRESULT got = textOf([&](BSTR* text) { return record->get_FunctionName(text); });
        LONG first = 0;
        return FAILED(got) ? got : textOf([&](BSTR* text) { return record->get_Param(&first, text); });
    });
    refuseEach("clsScriptParamList", nothing, [&](Host&) -> HRESULT {
        ComReference<_clsScriptParamList> record;
        {
            const HostsOwnMemory own;
            record = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
        }
        const HRESULT put = record->put_StringValue(&index, content.address());
        return FAILED(put) ? put : textOf([&](BSTR* text) { return record->get_StringValue(&index, text); });
    });
}

}  // namespace
}  // namespace corvane::testing
