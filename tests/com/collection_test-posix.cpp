// The collection as the listing sees it that fills it.

#include <gtest/gtest.h>

#include "host/com/collection_com.h"
#include "platform/automation_error.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

using ListedCollection = ComponentTest;

int errorOfItem(const FunctionCollection& listing, std::int32_t position) {
    try {
        listing.Item(position);
    } catch (const automation_error& error) {
        return static_cast<int>(error.number());
    }
    return 0;
}

TEST_F(ListedCollection, HoldsWhatIsListedAmongAHostsOwnEntries) {
    const Reference<CollectionObject> collection(new CollectionObject);
    FunctionCollection& listing = *collection;
    const auto function = makeReference<clsProgramFunction>();
    VARIANT number;
    V_VT(&number) = VT_I4;
    V_I4(&number) = 7;
    VARIANT none;
    VariantInit(&none);
    EXPECT_EQ(collection->Add(number, none, none, none), S_OK);
    listing.Add(function);
    EXPECT_EQ(listing.Count(), 2);
    EXPECT_EQ(&listing.Item(2), function.get());
    EXPECT_EQ(errorOfItem(listing, 1), 13) << "the host's own";
    EXPECT_EQ(errorOfItem(listing, 0), 9);
    EXPECT_EQ(errorOfItem(listing, 3), 9);
}

}  // namespace
}  // namespace corvane::testing
