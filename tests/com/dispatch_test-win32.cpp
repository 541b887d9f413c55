// What only the platform's own automation can answer: descriptions of classes, numbers in other languages.

#include <gtest/gtest.h>

#include "platform/utf8.h"
#include "tests/com/component.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/published_objects.h"

namespace corvane::testing {
namespace {

constexpr DISPID helixAngle = 0x6803000F;

/// Nothing that a test made outlives it.
class PlatformDispatch : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(canUnloadNow(), S_OK); }
};

TEST_F(PlatformDispatch, TellsTheClassOfCreatableObjects) {
    for (const PublishedObject& published : publishedObjects()) {
        const auto information = queryFor<IProvideClassInfo2>(published.object.get(), IID_IProvideClassInfo2);
        EXPECT_EQ(static_cast<bool>(queryFor<IProvideClassInfo>(published.object.get(), IID_IProvideClassInfo)),
                  static_cast<bool>(information));
        if (published.interfaceName == "_Collection") {
            EXPECT_FALSE(information);
            continue;
        }
        ASSERT_TRUE(information) << published.interfaceName;
        ComReference<ITypeInfo> described;
        ASSERT_EQ(information->GetClassInfo(described.receive()), S_OK);
        BSTR name = nullptr;
        ASSERT_EQ(described->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
        EXPECT_EQ(u"_" + taken(name), fromUtf8(published.interfaceName));
    }
}

// A host's texts are converted in the host's language.
TEST_F(PlatformDispatch, ReadsNumbersInTheCallersLanguage) {
    const auto record = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    struct Row {
        LCID language;
        std::u16string text;
    };
    for (const Row& row : {Row{MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT), u"1.5"},
                           Row{MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT), u"1,5"}}) {
        Arguments arguments{text(row.text)};
        arguments.named({DISPID_PROPERTYPUT});
        EXPECT_EQ(record->Invoke(helixAngle, IID_NULL, row.language, DISPATCH_PROPERTYPUT, arguments.parameters(),
                                 nullptr, nullptr, nullptr),
                  S_OK);
        EXPECT_EQ(V_R4(invoke(*record.get(), helixAngle, DISPATCH_PROPERTYGET, {}).value.get()), 1.5F);
    }
}

}  // namespace
}  // namespace corvane::testing
