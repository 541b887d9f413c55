// The editable items as a late-bound host asks for them.

#include <gtest/gtest.h>

#include "platform/utf8.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/editable_items.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

class LateBoundEditable : public ComponentTest {
protected:
    ComReference<_clsScriptControl> control = newControl();
    OwnedVariant table;
    LONG count = 77;

    void SetUp() override { ASSERT_TRUE(load(*control.get(), editableScript)); }
    void TearDown() override {
        control = {};
        ComponentTest::TearDown();
    }
    HRESULT getEditable() {
        const DISPID member = identifierOf(*control.get(), u"GetEditable");
        return invoke(*control.get(), member, DISPATCH_METHOD, {reference(*table.get()), reference(VT_I4, &count)})
            .result;
    }
    /// The rows of an array, whose elements may be strings or variants that hold them.
    static std::vector<std::string> rowsOf(SAFEARRAY* array, bool ofVariants) {
        std::vector<std::string> rows(2);
        for (LONG row = 0; row < 2; ++row) {
            for (LONG column = 0; column < 6; ++column) {
                LONG place[] = {row, column};
                OwnedVariant cell;
                V_VT(cell.get()) = VT_BSTR;
                V_BSTR(cell.get()) = nullptr;
                void* const target = ofVariants ? static_cast<void*>(cell.get()) : &V_BSTR(cell.get());
                EXPECT_EQ(SafeArrayGetElement(array, place, target), S_OK);
                EXPECT_EQ(V_VT(cell.get()), VT_BSTR);
                rows[static_cast<std::size_t>(row)] += toUtf8(viewOf(V_BSTR(cell.get()))) + "|";
            }
        }
        return rows;
    }
};

const std::vector<std::string> expectedRows = {"1|3|-0.5|1E+20|mm|How high?|", "3|Run|0|0|||"};

TEST_F(LateBoundEditable, AnEmptyVariableReceivesAnArrayOfVariants) {
    makeItemsEditable(*control.get());
    EXPECT_EQ(getEditable(), S_OK);
    EXPECT_EQ(count, 2);
    ASSERT_EQ(V_VT(table.get()), VT_ARRAY | VT_VARIANT);
    EXPECT_EQ(rowsOf(V_ARRAY(table.get()), true), expectedRows);
}

TEST_F(LateBoundEditable, AnArrayOfStringsIsReplaced) {
    makeItemsEditable(*control.get());
    SAFEARRAYBOUND bounds[] = {{3, 1}};
    V_ARRAY(table.get()) = SafeArrayCreate(VT_BSTR, 1, bounds);
    V_VT(table.get()) = VT_ARRAY | VT_BSTR;
    EXPECT_EQ(getEditable(), S_OK);
    EXPECT_EQ(count, 2);
    ASSERT_EQ(V_VT(table.get()), VT_ARRAY | VT_BSTR);
    EXPECT_EQ(rowsOf(V_ARRAY(table.get()), false), expectedRows);
}

TEST_F(LateBoundEditable, WithoutEditableItemsTheVariableIsLeftAlone) {
    EXPECT_EQ(getEditable(), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(V_VT(table.get()), VT_EMPTY);
}

}  // namespace
}  // namespace corvane::testing
