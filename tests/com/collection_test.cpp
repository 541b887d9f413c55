// The collection of a listing, as hosts meet it.

#include <gtest/gtest.h>

#include "platform/utf8.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

/// An argument of the test's own, cleared at its end.
class HostVariant : public OwnedVariant {
public:
    HostVariant() = default;
    explicit HostVariant(int number) {
        V_VT(get()) = VT_I4;
        V_I4(get()) = number;
    }
    explicit HostVariant(double number) {
        V_VT(get()) = VT_R8;
        V_R8(get()) = number;
    }
    explicit HostVariant(std::u16string_view text) {
        V_BSTR(get()) = newText(text);
        V_VT(get()) = VT_BSTR;
    }
    explicit HostVariant(const char16_t* text) : HostVariant(std::u16string_view(text)) {}
    explicit HostVariant(IDispatch& object) {
        object.AddRef();
        V_VT(get()) = VT_DISPATCH;
        V_DISPATCH(get()) = &object;
    }
    static VARIANT leftOut() {
        VARIANT variant;
        VariantInit(&variant);
        V_VT(&variant) = VT_ERROR;
        V_ERROR(&variant) = DISP_E_PARAMNOTFOUND;
        return variant;
    }
    VARIANT operator*() { return *get(); }
};

/// Calls in when its last reference goes.
class LastCall final : public Sink {
public:
    std::function<void()> onEnd;
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = Sink::Release();
        if (left == 0 && onEnd) std::exchange(onEnd, nullptr)();
        return left;
    }
};

class Collection : public ComponentTest {
protected:
    ComReference<_clsProgramFunctionList> list = newFunctionList();

    void TearDown() override {
        list = {};
        ComponentTest::TearDown();
    }

    VARIANT_BOOL loadList(std::u16string_view script) {
        HostText text(script);
        HostText name(u"name");
        LONG number = 1;
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(list->LoadProgramScript_FromDatabase(text.address(), name.address(), &number, &number, &result),
                  S_OK);
        return result;
    }
    ComReference<_Collection> listing() {
        ComReference<_Collection> collection;
        EXPECT_EQ(list->get_FunctionList(collection.receive()), S_OK);
        return collection;
    }
    /// A new listing without entries.
    ComReference<_Collection> emptyCollection() {
        EXPECT_EQ(loadList(u"Park()"), VARIANT_TRUE);
        return listing();
    }
};

LONG countOf(_Collection& collection) {
    LONG count = -1;
    EXPECT_EQ(collection.get_Count(&count), S_OK);
    return count;
}

/// An item in short: a text as it is, a number in digits, a statement by its name.
std::string shown(const VARIANT& item) {
    if (V_VT(&item) == VT_BSTR) return toUtf8(viewOf(V_BSTR(&item)));
    if (V_VT(&item) == VT_I4) return std::to_string(V_I4(&item));
    if (V_VT(&item) != VT_DISPATCH) return "type " + std::to_string(V_VT(&item));
    const auto function = queryFor<_clsProgramFunction>(V_DISPATCH(&item), IID__clsProgramFunction);
    BSTR name = nullptr;
    if (!function || FAILED(function->get_FunctionName(&name))) return "object";
    return toUtf8(taken(name));
}

/// The item at an index, or the number of the automation error.
template <typename Index>
std::string itemAt(_Collection& collection, Index index) {
    HostVariant at(index);
    HostVariant item;
    const HRESULT result = collection.get_Item(*at, item.get());
    if (FAILED(result)) {
        EXPECT_EQ(V_VT(item.get()), VT_EMPTY);
        return "error " + std::to_string(result & 0xFFFF);
    }
    return shown(*item);
}

/// All items in order, as For Each visits them.
std::string itemsOf(_Collection& collection) {
    ComReference<IUnknown> unknown;
    EXPECT_EQ(collection.get__NewEnum(unknown.receive()), S_OK);
    const auto enumerator = queryFor<IEnumVARIANT>(unknown.get(), IID_IEnumVARIANT);
    std::string items;
    for (;;) {
        HostVariant item;
        if (enumerator->Next(1, item.get(), nullptr) != S_OK) return items;
        items += (items.empty() ? "" : " ") + shown(*item);
    }
}

HRESULT addText(_Collection& collection, std::u16string_view text, VARIANT key = HostVariant::leftOut(),
                VARIANT before = HostVariant::leftOut(), VARIANT after = HostVariant::leftOut()) {
    HostVariant item(text);
    return collection.Add(*item, key, before, after);
}

template <typename Index>
HRESULT removeAt(_Collection& collection, Index index) {
    HostVariant at(index);
    return collection.Remove(*at);
}

// --------------------------------------------------------------------------------------------------- the list itself

TEST_F(Collection, BeforeALoadThereIsNone) {
    _Collection* collection = reinterpret_cast<_Collection*>(this);
    EXPECT_EQ(list->get_FunctionList(&collection), S_OK);
    EXPECT_EQ(collection, nullptr);
    VARIANT_BOOL loaded = VARIANT_TRUE;
    EXPECT_EQ(list->get_ScriptLoaded(&loaded), S_OK);
    EXPECT_EQ(loaded, VARIANT_FALSE);
}

TEST_F(Collection, ALoadListsTheDeclarations) {
    EXPECT_EQ(loadList(u"ENV E = 1\r\nVAR V = 2\r\nCONST C = 3\r\nPark()"), VARIANT_TRUE);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    EXPECT_EQ(list->get_ScriptLoaded(&loaded), S_OK);
    EXPECT_EQ(loaded, VARIANT_TRUE);
    EXPECT_EQ(itemsOf(*listing().get()), "Declare Environment Variable Declare Variable Declare Constant");
}

TEST_F(Collection, AListingIsHandedOutItself) {
    ASSERT_EQ(loadList(u"VAR V = 2\r\nWaitTime(V, \"a\")\r\nPark()"), VARIANT_TRUE);
    const ComReference<_Collection> before = listing();
    Sink old;
    _Collection* handed = reinterpret_cast<_Collection*>(static_cast<IDispatch*>(&old));
    handed->AddRef();
    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(list->CreateFunctionList(&handed, &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_EQ(old.references(), 0) << "what stood there is released";
    EXPECT_EQ(handed, before.get());
    EXPECT_EQ(itemsOf(*handed), "Declare Variable WaitTime Park");
    ASSERT_EQ(list->CreateFunctionList(&handed, &result), S_OK);
    EXPECT_EQ(handed, before.get());
    EXPECT_EQ(itemsOf(*handed), "Declare Variable WaitTime Park WaitTime Park");
    handed->Release();
}

TEST_F(Collection, WithoutAScriptNothingIsHandedOut) {
    Sink old;
    _Collection* const before = reinterpret_cast<_Collection*>(static_cast<IDispatch*>(&old));
    _Collection* handed = before;
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(list->CreateFunctionList(&handed, &result), S_OK);
    EXPECT_EQ(result, VARIANT_FALSE);
    EXPECT_EQ(handed, before);
}

TEST_F(Collection, ItOutlivesItsListAndANewLoad) {
    ASSERT_EQ(loadList(u"VAR V = 2\r\nPark()"), VARIANT_TRUE);
    const ComReference<_Collection> kept = listing();
    ASSERT_EQ(loadList(u"Park()"), VARIANT_TRUE);
    EXPECT_NE(listing().get(), kept.get());
    EXPECT_EQ(itemsOf(*listing().get()), "");
    list = {};
    EXPECT_EQ(itemsOf(*kept.get()), "Declare Variable");
    EXPECT_EQ(canUnloadNow(), S_FALSE);
}

TEST_F(Collection, AnItemOutlivesItsCollection) {
    ASSERT_EQ(loadList(u"VAR V = 2\r\nPark()"), VARIANT_TRUE);
    HostVariant first(1);
    HostVariant item;
    ASSERT_EQ(listing()->get_Item(*first, item.get()), S_OK);
    list = {};
    const auto function = queryFor<_clsProgramFunction>(V_DISPATCH(item.get()), IID__clsProgramFunction);
    LONG index = 1;
    BSTR parameter = nullptr;
    EXPECT_EQ(function->get_Param(&index, &parameter), S_OK);
    EXPECT_EQ(taken(parameter), u"2");
}

TEST_F(Collection, AnItemIsTheSameObjectWhereverItIsTakenFrom) {
    ASSERT_EQ(loadList(u"VAR V = 2\r\nVAR W = 3"), VARIANT_TRUE);
    const auto collection = listing();
    HostVariant second(2);
    HostVariant again(2.0);
    HostVariant items[2];
    ASSERT_EQ(collection->get_Item(*second, items[0].get()), S_OK);
    ASSERT_EQ(listing()->get_Item(*again, items[1].get()), S_OK);
    EXPECT_EQ(V_DISPATCH(items[0].get()), V_DISPATCH(items[1].get()));

    ComReference<IUnknown> unknown;
    ASSERT_EQ(collection->get__NewEnum(unknown.receive()), S_OK);
    const auto enumerator = queryFor<IEnumVARIANT>(unknown.get(), IID_IEnumVARIANT);
    EXPECT_EQ(enumerator->Skip(1), S_OK);
    HostVariant visited;
    EXPECT_EQ(enumerator->Next(1, visited.get(), nullptr), S_OK);
    EXPECT_EQ(V_DISPATCH(visited.get()), V_DISPATCH(items[0].get()));
}

TEST_F(Collection, WhatAHostWritesIntoAnItemAllSee) {
    ASSERT_EQ(loadList(u"VAR V = 2"), VARIANT_TRUE);
    {
        HostVariant first(1);
        HostVariant item;
        ASSERT_EQ(listing()->get_Item(*first, item.get()), S_OK);
        const auto function = queryFor<_clsProgramFunction>(V_DISPATCH(item.get()), IID__clsProgramFunction);
        HostText name(u"renamed");
        EXPECT_EQ(function->put_FunctionName(name.address()), S_OK);
    }
    EXPECT_EQ(itemsOf(*listing().get()), "renamed");
}

// --------------------------------------------------------------------------------------------- positions and keys

TEST_F(Collection, ItemsAreFoundByPositionAndByKey) {
    const auto collection = emptyCollection();
    HostVariant key(u"Key");
    HostVariant number(42);
    EXPECT_EQ(addText(*collection.get(), u"one"), S_OK);
    EXPECT_EQ(addText(*collection.get(), u"two", *key), S_OK);
    EXPECT_EQ(collection->Add(*number, HostVariant::leftOut(), HostVariant::leftOut(), HostVariant::leftOut()), S_OK);
    EXPECT_EQ(countOf(*collection.get()), 3);
    EXPECT_EQ(itemsOf(*collection.get()), "one two 42");
    struct Row {
        double position;
        const char* item;
    };
    for (const Row& row : {Row{1, "one"}, Row{2, "two"}, Row{3, "42"}, Row{0, "error 9"}, Row{4, "error 9"},
                           Row{-1, "error 9"}, Row{1.4, "one"}, Row{2.5, "two"}, Row{3.5, "error 9"},
                           Row{0.5, "error 9"}, Row{1e20, "error 9"}, Row{-1e300, "error 9"}})
        EXPECT_EQ(itemAt(*collection.get(), row.position), row.item) << row.position;
    EXPECT_EQ(itemAt(*collection.get(), 2), "two");
    for (const char16_t* same : {u"Key", u"key", u"KEY"}) EXPECT_EQ(itemAt(*collection.get(), same), "two");
    for (const char16_t* other : {u"2", u"", u"Key ", u"two"})
        EXPECT_EQ(itemAt(*collection.get(), other), "error 5") << toUtf8(other);
}

TEST_F(Collection, AnIndexIsANumberOrAText) {
    const auto collection = emptyCollection();
    EXPECT_EQ(addText(*collection.get(), u"one"), S_OK);
    Sink object;
    constexpr VARTYPE unknownType = 77;
    for (const VARTYPE type :
         std::initializer_list<VARTYPE>{VT_EMPTY, VT_NULL, VT_ERROR, VT_DISPATCH, VT_UNKNOWN, unknownType}) {
        HostVariant index;
        V_VT(index.get()) = type;
        V_DISPATCH(index.get()) = nullptr;
        if (type == VT_ERROR) V_ERROR(index.get()) = DISP_E_PARAMNOTFOUND;
        HostVariant item;
        EXPECT_EQ(collection->get_Item(*index, item.get()), automationError(13)) << type;
        EXPECT_EQ(collection->Remove(*index), automationError(13)) << type;
    }
    HostVariant ofObject(object);
    HostVariant item;
    EXPECT_EQ(collection->get_Item(*ofObject, item.get()), automationError(13));
    EXPECT_EQ(countOf(*collection.get()), 1);
}

TEST_F(Collection, ArgumentsMayBeReferences) {
    const auto collection = emptyCollection();
    HostVariant text(u"one");
    BSTR key = newText(u"k");
    VARIANT byReference[2];
    V_VT(&byReference[0]) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&byReference[0]) = text.get();
    V_VT(&byReference[1]) = VT_BYREF | VT_BSTR;
    V_BSTRREF(&byReference[1]) = &key;
    EXPECT_EQ(collection->Add(byReference[0], byReference[1], HostVariant::leftOut(), HostVariant::leftOut()), S_OK);
    HostVariant item;
    EXPECT_EQ(collection->get_Item(byReference[1], item.get()), S_OK);
    EXPECT_EQ(shown(*item), "one");
    SysFreeString(key);

    SHORT position = 1;
    VARIANT index;
    V_VT(&index) = VT_BYREF | VT_I2;
    V_I2REF(&index) = &position;
    EXPECT_EQ(collection->Remove(index), S_OK);
    EXPECT_EQ(countOf(*collection.get()), 0);
}

TEST_F(Collection, AnItemGoesBeforeOrAfterAnother) {
    const auto collection = emptyCollection();
    HostVariant keyA(u"a");
    HostVariant one(1);
    HostVariant two(2);
    HostVariant three(3);
    const VARIANT none = HostVariant::leftOut();
    EXPECT_EQ(addText(*collection.get(), u"A", *keyA), S_OK);
    EXPECT_EQ(addText(*collection.get(), u"B", none, *one), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "B A");
    EXPECT_EQ(addText(*collection.get(), u"C", none, none, *one), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "B C A");
    EXPECT_EQ(addText(*collection.get(), u"D", none, *keyA), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "B C D A");
    EXPECT_EQ(addText(*collection.get(), u"E", none, none, *keyA), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "B C D A E");
    EXPECT_EQ(addText(*collection.get(), u"F", none, none, *three), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "B C D F A E");
    EXPECT_EQ(itemAt(*collection.get(), u"a"), "A") << "the key moved with its item";
}

TEST_F(Collection, ARefusedAddLeavesItAsItWas) {
    const auto collection = emptyCollection();
    HostVariant key(u"k");
    HostVariant sameKey(u"K");
    HostVariant otherKey(u"other");
    HostVariant number(1);
    HostVariant behind(3);
    HostVariant zero(0);
    const VARIANT none = HostVariant::leftOut();
    ASSERT_EQ(addText(*collection.get(), u"A", *key), S_OK);
    ASSERT_EQ(addText(*collection.get(), u"B"), S_OK);
    EXPECT_EQ(addText(*collection.get(), u"X", *sameKey), automationError(457));
    EXPECT_EQ(takeError().description, "This key is already associated with an element of this collection");
    EXPECT_EQ(addText(*collection.get(), u"X", *number), automationError(13)) << "a key is a text";
    EXPECT_EQ(addText(*collection.get(), u"X", *otherKey, *behind), automationError(9));
    EXPECT_EQ(addText(*collection.get(), u"X", *otherKey, none, *zero), automationError(9));
    EXPECT_EQ(addText(*collection.get(), u"X", *otherKey, *otherKey), automationError(5));
    EXPECT_EQ(addText(*collection.get(), u"X", *otherKey, *number, *number), automationError(5));
    VARIANT endless;
    V_VT(&endless) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&endless) = &endless;
    EXPECT_EQ(collection->Add(endless, none, none, none), automationError(13));
    EXPECT_EQ(addText(*collection.get(), u"X", none, endless), automationError(13));
    VARIANT otherError = none;
    V_ERROR(&otherError) = E_FAIL;
    EXPECT_EQ(addText(*collection.get(), u"X", otherError), automationError(13)) << "a key, and none that is left out";
    EXPECT_EQ(addText(*collection.get(), u"X", none, *HostVariant(u"no key")), automationError(5));
    EXPECT_EQ(itemsOf(*collection.get()), "A B");
    EXPECT_EQ(itemAt(*collection.get(), u"other"), "error 5");
    EXPECT_EQ(addText(*collection.get(), u"C", *otherKey), S_OK) << "the key was not taken by a refused one";
}

TEST_F(Collection, ItemsAreRemovedByPositionAndByKey) {
    const auto collection = emptyCollection();
    HostVariant key(u"k");
    for (const char16_t* text : {u"A", u"B", u"C"}) ASSERT_EQ(addText(*collection.get(), text), S_OK);
    ASSERT_EQ(addText(*collection.get(), u"K", *key), S_OK);
    EXPECT_EQ(removeAt(*collection.get(), 5), automationError(9));
    EXPECT_EQ(removeAt(*collection.get(), 0), automationError(9));
    EXPECT_EQ(removeAt(*collection.get(), u"none"), automationError(5));
    EXPECT_EQ(removeAt(*collection.get(), 2), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "A C K");
    EXPECT_EQ(removeAt(*collection.get(), u"K"), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "A C");
    EXPECT_EQ(removeAt(*collection.get(), u"k"), automationError(5));
    EXPECT_EQ(addText(*collection.get(), u"again", *key), S_OK);
    EXPECT_EQ(itemAt(*collection.get(), u"k"), "again");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(removeAt(*collection.get(), 1), S_OK);
    EXPECT_EQ(countOf(*collection.get()), 0);
    EXPECT_EQ(removeAt(*collection.get(), 1), automationError(9));
}

TEST_F(Collection, ObjectsAreHeldOnceAndReleasedOnce) {
    Sink object;
    {
        const auto collection = emptyCollection();
        HostVariant item(object);
        EXPECT_EQ(collection->Add(*item, HostVariant::leftOut(), HostVariant::leftOut(), HostVariant::leftOut()), S_OK);
        EXPECT_EQ(collection->Add(*item, HostVariant::leftOut(), HostVariant::leftOut(), HostVariant::leftOut()), S_OK);
        EXPECT_EQ(object.references(), 3);
        EXPECT_EQ(removeAt(*collection.get(), 1), S_OK);
        EXPECT_EQ(object.references(), 2);
        EXPECT_EQ(collection->Add(*item, *item, HostVariant::leftOut(), HostVariant::leftOut()), automationError(13));
        EXPECT_EQ(object.references(), 2);
    }
    list = {};
    EXPECT_EQ(object.references(), 0);
}

TEST_F(Collection, AnObjectMayCallTheCollectionThatGoesWithIt) {
    for (const bool throughTheList : {false, true}) {
        LastCall object;
        auto collection = emptyCollection();
        _Collection* const going = collection.get();
        ASSERT_EQ(addText(*going, u"A"), S_OK);
        {
            HostVariant item(static_cast<IDispatch&>(object));
            HostVariant key(u"k");
            ASSERT_EQ(going->Add(*item, *key, HostVariant::leftOut(), HostVariant::leftOut()), S_OK);
        }
        ASSERT_EQ(addText(*going, u"B"), S_OK);
        bool called = false;
        object.onEnd = [&] {
            called = true;
            EXPECT_EQ(countOf(*going), 0);
            EXPECT_EQ(itemAt(*going, 1), "error 9");
            EXPECT_EQ(itemAt(*going, u"k"), "error 5");
            EXPECT_EQ(removeAt(*going, 1), automationError(9));
            HostVariant key(u"k");
            EXPECT_EQ(addText(*going, u"C", *key), S_OK);
        };
        if (throughTheList) {
            collection = {};
            list = newFunctionList();
        } else {
            list = newFunctionList();
            collection = {};
        }
        EXPECT_TRUE(called);
        EXPECT_EQ(object.references(), 0);
    }
}

TEST_F(Collection, ALoadFromTheEndOfAnOldListingTakesThePlaceOfTheOneThatEndedIt) {
    LastCall object;
    {
        HostVariant item(static_cast<IDispatch&>(object));
        ASSERT_EQ(emptyCollection()->Add(*item, HostVariant::leftOut(), HostVariant::leftOut(), HostVariant::leftOut()),
                  S_OK);
    }
    object.onEnd = [&] { EXPECT_EQ(loadList(u"VAR Inner1 = 1\r\nVAR Inner2 = 2\r\nPark()"), VARIANT_TRUE); };
    EXPECT_EQ(loadList(u"VAR Outer = 1\r\nGoto(Nowhere)"), VARIANT_FALSE);
    EXPECT_EQ(countOf(*listing().get()), 2);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    EXPECT_EQ(list->get_ScriptLoaded(&loaded), S_OK);
    EXPECT_EQ(loaded, VARIANT_TRUE);
}

TEST_F(Collection, AnObjectMayChangeTheCollectionWhileItIsRemoved) {
    LastCall object;
    const auto collection = emptyCollection();
    ASSERT_EQ(addText(*collection.get(), u"A"), S_OK);
    {
        HostVariant item(static_cast<IDispatch&>(object));
        HostVariant key(u"k");
        ASSERT_EQ(collection->Add(*item, *key, HostVariant::leftOut(), HostVariant::leftOut()), S_OK);
    }
    object.onEnd = [&] {
        EXPECT_EQ(countOf(*collection.get()), 1);
        EXPECT_EQ(itemAt(*collection.get(), u"k"), "error 5");
        HostVariant key(u"k");
        EXPECT_EQ(addText(*collection.get(), u"B", *key), S_OK);
        EXPECT_EQ(removeAt(*collection.get(), 1), S_OK);
    };
    EXPECT_EQ(removeAt(*collection.get(), u"k"), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "B");
}

TEST_F(Collection, AHostsEntriesStandAmongRecordedOnes) {
    ASSERT_EQ(loadList(u"VAR V = 2\r\nPark()"), VARIANT_TRUE);
    const auto collection = listing();
    HostVariant one(1);
    ASSERT_EQ(addText(*collection.get(), u"first", HostVariant::leftOut(), *one), S_OK);
    _Collection* handed = nullptr;
    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(list->CreateFunctionList(&handed, &result), S_OK);
    handed->Release();
    EXPECT_EQ(itemsOf(*collection.get()), "first Declare Variable Park");
    EXPECT_EQ(removeAt(*collection.get(), 2), S_OK);
    EXPECT_EQ(addText(*collection.get(), u"last"), S_OK);
    EXPECT_EQ(itemsOf(*collection.get()), "first Park last");
    EXPECT_EQ(itemAt(*collection.get(), 2), "Park");
}

// ------------------------------------------------------------------------------------------------------- enumeration

class Enumerating : public Collection {
protected:
    ComReference<_Collection> collection = emptyCollection();
    ComReference<IEnumVARIANT> enumerator;

    void SetUp() override {
        for (const char16_t* text : {u"A", u"B", u"C", u"D"}) ASSERT_EQ(addText(*collection.get(), text), S_OK);
        ComReference<IUnknown> unknown;
        ASSERT_EQ(collection->get__NewEnum(unknown.receive()), S_OK);
        enumerator = queryFor<IEnumVARIANT>(unknown.get(), IID_IEnumVARIANT);
        ASSERT_TRUE(enumerator);
    }
    void TearDown() override {
        collection = {};
        enumerator = {};
        Collection::TearDown();
    }
    static std::string next(IEnumVARIANT& from, ULONG wanted, HRESULT expected) {
        VARIANT items[8];
        ULONG count = 77;
        EXPECT_EQ(from.Next(wanted, items, &count), expected);
        std::string text;
        for (ULONG i = 0; i < count; ++i) {
            text += shown(items[i]);
            VariantClear(&items[i]);
        }
        return text;
    }
};

TEST_F(Enumerating, GivesItemsInOrder) {
    EXPECT_EQ(next(*enumerator.get(), 3, S_OK), "ABC");
    EXPECT_EQ(next(*enumerator.get(), 3, S_FALSE), "D");
    EXPECT_EQ(next(*enumerator.get(), 3, S_FALSE), "");
    EXPECT_EQ(enumerator->Reset(), S_OK);
    EXPECT_EQ(next(*enumerator.get(), 4, S_OK), "ABCD");
    EXPECT_EQ(next(*enumerator.get(), 0, S_OK), "");
}

TEST_F(Enumerating, SkipsAndIsCopied) {
    EXPECT_EQ(enumerator->Skip(2), S_OK);
    ComReference<IEnumVARIANT> copy;
    EXPECT_EQ(enumerator->Clone(copy.receive()), S_OK);
    EXPECT_EQ(next(*enumerator.get(), 1, S_OK), "C");
    EXPECT_EQ(enumerator->Skip(1), S_OK);
    EXPECT_EQ(enumerator->Skip(1), S_FALSE);
    EXPECT_EQ(next(*copy.get(), 2, S_OK), "CD");
}

TEST_F(Enumerating, RefusesNullPointers) {
    VARIANT items[2];
    ULONG count = 0;
    EXPECT_EQ(enumerator->Next(1, nullptr, &count), E_POINTER);
    EXPECT_EQ(enumerator->Next(2, items, nullptr), E_POINTER);
    EXPECT_EQ(enumerator->Clone(nullptr), E_POINTER);
    EXPECT_EQ(enumerator->QueryInterface(IID_IEnumVARIANT, nullptr), E_POINTER);
    EXPECT_EQ(next(*enumerator.get(), 1, S_OK), "A");
}

TEST_F(Enumerating, SeesTheCollectionAsItIsAtEachStep) {
    EXPECT_EQ(next(*enumerator.get(), 2, S_OK), "AB");
    EXPECT_EQ(removeAt(*collection.get(), 3), S_OK);
    EXPECT_EQ(addText(*collection.get(), u"E"), S_OK);
    EXPECT_EQ(next(*enumerator.get(), 3, S_FALSE), "DE");
    while (countOf(*collection.get()) > 0) removeAt(*collection.get(), 1);
    EXPECT_EQ(next(*enumerator.get(), 1, S_FALSE), "");
    EXPECT_EQ(enumerator->Skip(1), S_FALSE);
}

TEST_F(Enumerating, KeepsTheCollection) {
    collection = {};
    list = {};
    EXPECT_EQ(canUnloadNow(), S_FALSE);
    EXPECT_EQ(next(*enumerator.get(), 5, S_FALSE), "ABCD");
}

TEST_F(Collection, RefusesNullPointers) {
    const auto collection = emptyCollection();
    HostVariant one(1);
    EXPECT_EQ(collection->get_Item(*one, nullptr), E_POINTER);
    EXPECT_EQ(collection->get_Count(nullptr), E_POINTER);
    EXPECT_EQ(collection->get__NewEnum(nullptr), E_POINTER);
}

TEST_F(Collection, ItsErrorsNameIt) {
    const auto collection = emptyCollection();
    EXPECT_EQ(removeAt(*collection.get(), 1), automationError(9));
    const ErrorSeen error = takeError();
    EXPECT_EQ(error.source, "prjCorvaneScript.Collection");
    EXPECT_EQ(error.description, "Subscript out of range");
    EXPECT_TRUE(IsEqualGUID(error.id, IID__Collection));
}

}  // namespace
}  // namespace corvane::testing
