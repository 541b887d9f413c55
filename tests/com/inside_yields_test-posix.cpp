// Hosts that are reached while the component lets window messages be handled or shows a box.

#include <gtest/gtest.h>

#include "tests/com/held_sink.h"
#include "tests/com/stand_in.h"

namespace corvane::testing {
namespace {

class InsideYields : public ComponentTest {
protected:
    StandInServices& services = standInServices();
    int living = 0;
    ComReference<_clsScriptControl> control = newControl();
    ComReference<_clsProgramFunctionList> list = newFunctionList();

    void SetUp() override { services = {}; }
    void TearDown() override {
        services = {};
        control = {};
        list = {};
        EXPECT_EQ(living, 0);
        ComponentTest::TearDown();
    }
    void adviseOne() {
        adviseHeld(*control.get(), living, [](DISPID event, DISPPARAMS& arguments) {
            Sink::succeed(event, arguments);
            return S_OK;
        });
    }
    VARIANT_BOOL loadList(_clsProgramFunctionList& object) {
        HostText text(u"VAR V = 1\r\nPark()\r\nSaveData()");
        LONG number = 0;
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(object.LoadProgramScript_FromDatabase(text.address(), text.address(), &number, &number, &result),
                  S_OK);
        return result;
    }
    LONG countOf(_Collection& collection) {
        LONG count = -1;
        EXPECT_EQ(collection.get_Count(&count), S_OK);
        return count;
    }
};

TEST_F(InsideYields, AControlMayGoWhileMessagesAreHandled) {
    adviseOne();
    ASSERT_TRUE(load(*control.get(), u"Park()\r\nPark()"));
    services.onYield = [this] { control = {}; };
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    EXPECT_EQ(services.yields, 2);
}

TEST_F(InsideYields, AControlMayGoWhileABoxIsShown) {
    adviseOne();
    ASSERT_TRUE(load(*control.get(), u"MsgInfo(\"note\")\r\nPark()"));
    services.onMessage = [this] { control = {}; };
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
    EXPECT_EQ(services.messages, std::vector<std::string>{"note"});
}

TEST_F(InsideYields, ARejectedLoadMayLetItsControlGo) {
    services.onMessage = [this] { control = {}; };
    EXPECT_FALSE(load(*control.get(), u"Nonsense("));
    EXPECT_EQ(services.messages.size(), 1U);
    EXPECT_FALSE(control);
}

TEST_F(InsideYields, ARunIsRefusedAndALoadIsTakenOver) {
    adviseOne();
    ASSERT_TRUE(load(*control.get(), u"Park()\r\nPark()\r\nPark()"));
    services.onYield = [this] {
        EXPECT_EQ(run(*control.get()).result, automationError(5));
        services.onYield = nullptr;
        EXPECT_TRUE(load(*control.get(), u"Park()\r\nSaveData()"));
    };
    EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
}

TEST_F(InsideYields, AListMayGoWhileItLists) {
    ASSERT_EQ(loadList(*list.get()), VARIANT_TRUE);
    services.onYield = [this] { list = {}; };
    ComReference<_Collection> collection;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(list->CreateFunctionList(collection.receive(), &result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_EQ(countOf(*collection.get()), 3);
}

TEST_F(InsideYields, ANewLoadWhileAListListsEndsTheOldListing) {
    ASSERT_EQ(loadList(*list.get()), VARIANT_TRUE);
    ComReference<_Collection> old;
    ASSERT_EQ(list->get_FunctionList(old.receive()), S_OK);
    services.onYield = [this] {
        services.onYield = nullptr;
        EXPECT_EQ(loadList(*list.get()), VARIANT_TRUE);
    };
    ComReference<_Collection> collection;
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(list->CreateFunctionList(collection.receive(), &result), S_OK);
    EXPECT_EQ(result, VARIANT_FALSE);
    EXPECT_NE(collection.get(), old.get());
    EXPECT_EQ(countOf(*old.get()), 1);
    EXPECT_EQ(countOf(*collection.get()), 1);
}

TEST_F(InsideYields, AHostMayEmptyTheListingWhileItGrows) {
    ASSERT_EQ(loadList(*list.get()), VARIANT_TRUE);
    ComReference<_Collection> listing;
    ASSERT_EQ(list->get_FunctionList(listing.receive()), S_OK);
    services.onYield = [&] {
        VARIANT first;
        V_VT(&first) = VT_I4;
        V_I4(&first) = 1;
        while (countOf(*listing.get()) > 0) EXPECT_EQ(listing->Remove(first), S_OK);
    };
    _Collection* collection = nullptr;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(list->CreateFunctionList(&collection, &result), S_OK);
    EXPECT_EQ(collection, listing.get());
    collection->Release();
    EXPECT_EQ(countOf(*listing.get()), 0);
}

}  // namespace
}  // namespace corvane::testing
